// vexo-cli roi: opens a spectrum as Open does and analyses ROIs on it with bComputeROI,
// printing every result the ROI's properties give.
#include <cstdio>
#include <string>
#include <vector>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "base/NumberText.h"
#include "roi/RoiFile.h"
#include "roi/RoiReadout.h"
#include "roi/clsROI.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli roi FILE [--roi L:R]... [--roi-file F.roi] [--time SECONDS] [--json]\n"
    "\n"
    "Opens FILE as the program's Open command does and analyses each ROI given with\n"
    "--roi (first and last channel, inclusive) and in --roi-file; with none given, the\n"
    "ROIs stored in FILE. Energies use FILE's calibration.\n"
    "  --time SECONDS  measuring time for the rates (default: the live time)\n"
    "  --json          a JSON array, one object per ROI";

struct Options {
    std::string file;
    std::vector<clsROI> rois;
    std::string roiFile;
    std::optional<float> time;
    bool json = false;
};

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    o.file = ParseArgsAndFile(args, [&](const std::string& arg, ArgCursor& cursor) {
        if (arg == "--roi")
            o.rois.push_back(RoiFromArg(cursor.value(arg)));
        else if (arg == "--roi-file")
            o.roiFile = cursor.value(arg);
        else if (arg == "--time")
            o.time = static_cast<float>(NumberArg(cursor.value(arg), "--time"));
        else if (arg == "--json")
            o.json = true;
        else
            return false;
        return true;
    });
    return o;
}

nlohmann::ordered_json AnalysisJson(const clsROI& r, const RoiAnalysis& a) {
    nlohmann::ordered_json j;
    j["ok"] = a.ok;
    j["error"] =
        a.error.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(a.error);
    j["nBkgChn"] = a.nBkgChn;
    j["lROILCh"] = r.lROILCh();
    j["lROIRCh"] = r.lROIRCh();
    j["sROILEn"] = JsonSingle(r.sROILEn());
    j["sROIREn"] = JsonSingle(r.sROIREn());
    j["lInt"] = r.lInt();
    j["lNET"] = r.lNET();
    j["lBkgIntVal"] = r.lBkgIntVal();
    j["sBkgVal"] = r.sBkgVal();
    j["lMax"] = r.lMax();
    j["nChnMax"] = r.nChnMax();
    j["sCentCh"] = JsonSingle(r.sCentCh());
    j["sCentEn"] = JsonSingle(r.sCentEn());
    j["sCentInt"] = JsonSingle(r.sCentInt());
    j["sFWHMch"] = JsonSingle(r.sFWHMch());
    j["sFWHMen"] = JsonSingle(r.sFWHMen());
    j["sFWHMp"] = JsonSingle(r.sFWHMp());
    j["sIntRate"] = JsonSingle(a.rates.sIntRate);
    j["sNetRate"] = JsonSingle(a.rates.sNetRate);
    j["sBkgRate"] = JsonSingle(a.rates.sBkgRate);
    return j;
}

void PrintText(std::size_t number, const clsROI& r, const RoiAnalysis& a) {
    std::printf("ROI %zu: channels %d-%d\n", number, r.lROILCh(), r.lROIRCh());
    if (!a.ok) {
        std::printf("  analysis failed%s%s\n", a.error.empty() ? "" : ": ", a.error.c_str());
        return;
    }
    for (const EditRoiRow& row : EditROIRows(r))
        std::printf("  %-28s %s%s%s\n", row.category.c_str(), row.value.c_str(),
                    row.uncertainty.empty() ? "" : " +/- ", row.uncertainty.c_str());
    std::printf("  %-28s %s CPS\n", "Integral rate", FormatSingle(a.rates.sIntRate, "0.0").c_str());
    std::printf("  %-28s %s CPS\n", "Net rate", FormatSingle(a.rates.sNetRate, "0.0").c_str());
    std::printf("  %-28s %s CPS\n", "Background rate",
                FormatSingle(a.rates.sBkgRate, "0.0").c_str());
}

std::vector<clsROI> RoisToAnalyse(Options& o, const RoiCollection& fileRois) {
    std::vector<clsROI> rois = std::move(o.rois);
    if (!o.roiFile.empty()) {
        RoiFileContents contents = ReadRoiFile(o.roiFile);
        if (!contents.ok)
            throw Failure{"cannot read ROI file " + o.roiFile};
        for (clsROI& roi : contents.rois)
            rois.push_back(std::move(roi));
    }
    if (rois.empty() && o.roiFile.empty())
        rois.assign(fileRois.begin(), fileRois.end());
    return rois;
}

int Run(const std::vector<std::string>& args) {
    Options o = ParseOptions(args);
    const OpenedSpectrum opened = OpenForCli(o.file);
    const SpectrumDocument& doc = *opened.doc;
    std::vector<clsROI> rois = RoisToAnalyse(o, opened.rois);
    const float sTime = o.time.value_or(doc.sngLiveTime);
    nlohmann::ordered_json results = nlohmann::ordered_json::array();
    for (std::size_t i = 0; i < rois.size(); ++i) {
        const RoiAnalysis a = AnalyseRoi(rois[i], sTime, doc);
        if (o.json)
            results.push_back(AnalysisJson(rois[i], a));
        else
            PrintText(i + 1, rois[i], a);
    }
    if (o.json)
        PrintJson(results);
    return kExitOk;
}

const RegisterCommand kRegister("roi", {"analyse ROIs of a spectrum file", kUsage, Run});

} // namespace
} // namespace vexo::cli
