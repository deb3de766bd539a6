// vexo-cli info: opens a spectrum file as the File menu's Open does and prints what the
// program now holds: identity, times, snapshots, calibration, ROIs, channel sum, count rate.
#include <cstdio>
#include <string>
#include <vector>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "base/DateTime.h"
#include "base/NumberText.h"
#include "spectrum/CountRate.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli info FILE [--json] [--counts]\n"
    "\n"
    "Opens FILE as the program's Open command does (a full spectrum file, or else a\n"
    "plain counts file) and prints the spectrum's record.\n"
    "  --json    one JSON object with the record's field names\n"
    "  --counts  include the counts of channels 0..lChannels-1";

struct Options {
    std::string file;
    bool json = false;
    bool counts = false;
};

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    o.file = ParseArgsAndFile(args, [&](const std::string& arg, ArgCursor&) {
        if (arg == "--json")
            o.json = true;
        else if (arg == "--counts")
            o.counts = true;
        else
            return false;
        return true;
    });
    return o;
}

nlohmann::ordered_json RoisJson(const SpectrumDocument& doc) {
    nlohmann::ordered_json rois = nlohmann::ordered_json::array();
    for (const PlotRoi& roi : doc.plot.rois)
        rois.push_back({{"lROILCh", roi.lFirst},
                        {"lROIRCh", roi.lLast},
                        {"lROIColor", roi.lColor},
                        {"flag", roi.bFlag},
                        {"name", roi.szName}});
    return rois;
}

nlohmann::ordered_json RecordJson(const Options& o, const OpenedSpectrum& opened) {
    const SpectrumDocument& d = *opened.doc;
    nlohmann::ordered_json j;
    j["file"] = o.file;
    j["full"] = opened.result.full;
    j["szSpectrumID"] = d.szSpectrumID;
    j["dtMeasured"] = FormatSerial(d.dtMeasured, "iso");
    j["sngLiveTime"] = JsonSingle(d.sngLiveTime);
    j["sngRealTime"] = JsonSingle(d.sngRealTime);
    j["szDeviceName"] = d.szDeviceName;
    j["szDeviceSerial"] = d.szDeviceSerial;
    j["lMCSMode"] = d.lMCSMode;
    j["sngHighVoltage"] = JsonSingle(d.sngHighVoltage);
    for (auto [name, value] : {std::pair{"lCoarseGain", d.lCoarseGain},
                               {"lFineGain", d.lFineGain},
                               {"lDigitalGain", d.lDigitalGain},
                               {"lThreshold", d.lThreshold},
                               {"lLLD", d.lLLD},
                               {"lULD", d.lULD},
                               {"lRiseTime", d.lRiseTime},
                               {"lFlatTop", d.lFlatTop},
                               {"lPoleZero", d.lPoleZero},
                               {"lBLR", d.lBLR},
                               {"lPUR", d.lPUR},
                               {"lPresetMode", d.lPresetMode}})
        j[name] = value;
    j["sngPresetTime"] = JsonSingle(d.sngPresetTime);
    j["lPresetCounts"] = d.lPresetCounts;
    j["lPresetFirstCh"] = d.lPresetFirstCh;
    j["lPresetLastCh"] = d.lPresetLastCh;
    j["calibration"] = {{"bCalibrated", d.calibration.bCalibrated},
                        {"dOffset", JsonDouble(d.calibration.dOffset)},
                        {"dSlope", JsonDouble(d.calibration.dSlope)},
                        {"dQuad", JsonDouble(d.calibration.dQuad)}};
    j["rois"] = RoisJson(d);
    j["lChannels"] = d.lChannels;
    j["sum"] = ChannelSum(d);
    j["countRate"] = JsonSingle(CountRate(d));
    if (o.counts) {
        nlohmann::ordered_json counts = nlohmann::ordered_json::array();
        for (int32_t i = 0; i < d.lChannels; ++i)
            counts.push_back(d.lCounts[static_cast<std::size_t>(i)]);
        j["counts"] = std::move(counts);
    }
    return j;
}

void PrintText(const Options& o, const OpenedSpectrum& opened) {
    const SpectrumDocument& d = *opened.doc;
    std::printf("File:          %s (%s)\n", o.file.c_str(),
                opened.result.full ? "full spectrum file" : "plain counts");
    std::printf("Spectrum ID:   %s\n", d.szSpectrumID.c_str());
    std::printf("Measured:      %s\n", FormatSerial(d.dtMeasured, "mm-dd-yyyy  Hh:Nn:Ss").c_str());
    std::printf("Live / real:   %s s / %s s\n", ShortestSingleText(d.sngLiveTime).c_str(),
                ShortestSingleText(d.sngRealTime).c_str());
    std::printf("Device:        %s S/N %s\n", d.szDeviceName.c_str(), d.szDeviceSerial.c_str());
    std::printf("Mode:          %s, high voltage %s V\n", d.lMCSMode ? "MCS" : "PHA",
                ShortestSingleText(d.sngHighVoltage).c_str());
    std::printf("Calibration:   %s, offset %s, slope %s, quadratic %s\n",
                d.calibration.bCalibrated ? "calibrated" : "not calibrated",
                DoubleToText(d.calibration.dOffset).c_str(),
                DoubleToText(d.calibration.dSlope).c_str(),
                DoubleToText(d.calibration.dQuad).c_str());
    for (std::size_t i = 0; i < d.plot.rois.size(); ++i) {
        const PlotRoi& r = d.plot.rois[i];
        std::printf("ROI %zu:         channels %d-%d, colour %d, flag %d, name '%s'\n", i + 1,
                    r.lFirst, r.lLast, r.lColor, r.bFlag ? 1 : 0, r.szName.c_str());
    }
    std::printf("Channels:      %d\n", d.lChannels);
    std::printf("Sum:           %lld\n", static_cast<long long>(ChannelSum(d)));
    std::printf("Count rate:    %s cps\n", FormatSingle(CountRate(d), "0.0").c_str());
    if (o.counts)
        for (int32_t i = 0; i < d.lChannels; ++i)
            std::printf("%d %d\n", i, d.lCounts[static_cast<std::size_t>(i)]);
}

int Run(const std::vector<std::string>& args) {
    const Options o = ParseOptions(args);
    const OpenedSpectrum opened = OpenForCli(o.file);
    if (o.json)
        PrintJson(RecordJson(o, opened));
    else
        PrintText(o, opened);
    return kExitOk;
}

const RegisterCommand kRegister("info", {"open a spectrum file and print its record", kUsage, Run});

} // namespace
} // namespace vexo::cli
