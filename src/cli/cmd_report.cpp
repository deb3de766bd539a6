// vexo-cli report: the report of a spectrum file as File > Print makes it, written to
// print.html with spect.png beside it, optionally printed to PDF.
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "RenderModule.h"
#include "base/AppDir.h"
#include "base/Messages.h"
#include "report/ReportBuilder.h"
#include "roi/RoiReadout.h"
#include "shell/ReportInput.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli report SPECTRUM --appdir DIR [--roi L:R]... [--time SECONDS]\n"
    "                       [--out FILE] [--pdf FILE.pdf]\n"
    "\n"
    "Opens SPECTRUM as the program's Open command does, analyses its ROIs (or those given\n"
    "with --roi, which replace them) and writes the report as File > Print does, with the\n"
    "REPORT settings and report style of DIR/Vexo.ini and DIR/RepStyles.ini. Prints the\n"
    "path of the page written.\n"
    "  --appdir DIR    the application folder (settings; the report goes there)\n"
    "  --roi L:R       an ROI, first and last channel inclusive (repeatable)\n"
    "  --time SECONDS  measuring time for the ROI rates (default: the live time)\n"
    "  --out FILE      write the page to FILE instead of DIR/print.html; spect.png is\n"
    "                  written beside it\n"
    "  --pdf FILE.pdf  also print the page to PDF through the browser component\n"
    "The picture and the PDF are drawn offscreen by libvexo_render.so beside vexo-cli.";

struct Options {
    std::string spectrum;
    std::string appDir;
    std::vector<clsROI> rois;
    std::optional<float> time;
    std::string out;
    std::string pdf;
};

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    ArgCursor cursor(args);
    while (!cursor.done()) {
        const std::string& arg = cursor.next();
        if (arg == "--appdir")
            o.appDir = cursor.value(arg);
        else if (arg == "--roi")
            o.rois.push_back(RoiFromArg(cursor.value(arg)));
        else if (arg == "--time")
            o.time = static_cast<float>(NumberArg(cursor.value(arg), "--time"));
        else if (arg == "--out")
            o.out = cursor.value(arg);
        else if (arg == "--pdf")
            o.pdf = cursor.value(arg);
        else if (!arg.empty() && arg[0] == '-')
            throw UsageError{"unknown option " + arg};
        else if (o.spectrum.empty())
            o.spectrum = arg;
        else
            throw UsageError{"only one SPECTRUM may be given"};
    }
    if (o.spectrum.empty())
        throw UsageError{"SPECTRUM is required"};
    if (o.appDir.empty())
        throw UsageError{"--appdir is required"};
    return o;
}

// ROIs given on the command line replace the file's, in the plot (whose marks the
// picture draws) and in the collection made from it, as loading them would.
void ReplaceRois(OpenedSpectrum& opened, const std::vector<clsROI>& given,
                 const AppSettings& settings) {
    std::vector<PlotRoi>& plotRois = opened.doc->plot.rois;
    plotRois.clear();
    for (std::size_t i = 0; i < given.size(); ++i)
        plotRois.push_back({given[i].lROILCh(), given[i].lROIRCh(),
                            settings.RoiColors[1 + i % (kRoiColorCount - 2)], false,
                            given[i].vntID()});
    opened.rois.rebuildFromPlot(plotRois);
}

// Every ROI analysed as the main window does; one that fails keeps the results it
// holds, and the report shows those.
void AnalyseRois(RoiCollection& rois, float sTime, const SpectrumDocument& doc) {
    int position = 1;
    for (clsROI& roi : rois) {
        const RoiReadout r = UpdateCompROI(roi, sTime, doc);
        if (!r.error.empty())
            std::fprintf(stderr, "vexo-cli report: ROI %d (%d-%d): %s\n", position, roi.lROILCh(),
                         roi.lROIRCh(), r.error.c_str());
        ++position;
    }
}

int Run(const std::vector<std::string>& args) {
    Options o = ParseOptions(args);
    std::error_code ec;
    if (!std::filesystem::is_directory(o.appDir, ec))
        throw Failure{"the application folder " + o.appDir + " does not exist"};
    StderrMessages messages;
    AppSettings settings;
    LoadSettings(settings, o.appDir, messages); // no Vexo.ini: every key's default
    OpenedSpectrum opened = OpenForCli(o.spectrum);
    if (!o.rois.empty())
        ReplaceRois(opened, o.rois, settings);
    const SpectrumDocument& doc = *opened.doc;
    AnalyseRois(opened.rois, o.time.value_or(doc.sngLiveTime), doc);

    const std::filesystem::path page =
        o.out.empty() ? ReportFilePath(o.appDir) : std::filesystem::path(o.out);
    const RenderModule render(ExecutableDir());
    render.picture(doc, settings, page.parent_path() / "spect.png");
    const ReportWriteResult written =
        WriteReport(ReportInputFrom(doc, opened.rois, settings), page);
    if (!written.ok)
        throw Failure{"cannot write " + page.string() + ": " + written.error};
    std::printf("%s\n", page.string().c_str());
    if (!o.pdf.empty()) {
        render.pdf(std::filesystem::absolute(page), std::filesystem::absolute(o.pdf));
        std::printf("%s\n", o.pdf.c_str());
    }
    return kExitOk;
}

const RegisterCommand kRegister("report",
                                {"write the HTML report of a spectrum file", kUsage, Run});

} // namespace
} // namespace vexo::cli
