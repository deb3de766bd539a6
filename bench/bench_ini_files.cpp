// Whole INI-shaped files read the way the program reads them, at sizes far beyond the
// usual: ROI files of 2,000 and 5,000 sections, "RepStyles.ini" with 1,000 and 3,000
// styles. Each is read once into memory and then looked up by key. Target: a 5,000-section
// ROI file in 100 ms or less.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <unistd.h>

#include "base/Messages.h"
#include "base/TextFile.h"
#include "report/ReportStyle.h"
#include "roi/RoiFile.h"

using namespace vexo;

namespace {

std::filesystem::path Scratch(const std::string& name) {
    return std::filesystem::temp_directory_path() /
           ("vexo_bench_ini_" + std::to_string(::getpid()) + "_" + name);
}

} // namespace

static void BM_RoiFileRead(benchmark::State& state) {
    const auto path = Scratch("rois.roi");
    RoiCollection rois;
    for (int i = 0; i < state.range(0); ++i) {
        clsROI roi;
        roi.set_vntID("Peak " + std::to_string(i + 1));
        roi.set_lROILCh(i * 3);
        roi.set_lROIRCh(i * 3 + 2);
        rois.add(roi);
    }
    if (!WriteRoiFile(path, rois))
        state.SkipWithError("cannot write the ROI file");
    for (auto _ : state) {
        RoiFileContents read = ReadRoiFile(path);
        if (read.rois.size() != static_cast<std::size_t>(state.range(0)))
            state.SkipWithError("ROIs missing");
        benchmark::DoNotOptimize(read.rois.data());
    }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(path));
    std::filesystem::remove(path);
}
BENCHMARK(BM_RoiFileRead)->Arg(2000)->Arg(5000)->Unit(benchmark::kMillisecond);

static void BM_ReportStylesLoad(benchmark::State& state) {
    const auto dir = Scratch("styles");
    std::filesystem::create_directories(dir);
    std::string text;
    for (int i = 0; i < state.range(0); ++i)
        text += "[Style" + std::to_string(i) + "]\r\nCS_Description=Scheme " + std::to_string(i) +
                "\r\nCS_TitleFont=Verdana\r\nCS_TitleColor=#000080\r\nCS_TitleBorder=1\r\n"
                "CS_HeaderBack=#000080\r\nCS_HeaderFore=#FFFFFF\r\nCS_RowBack=#E0E0FF\r\n"
                "CS_RowFore=#000000\r\n\r\n";
    TextFileWriter out;
    out.line(text);
    out.save(ReportStylesFilePath(dir));
    ScriptedMessages messages;
    for (auto _ : state) {
        ReportStyleList list = LoadReportStyles(dir, messages);
        if (list.highestIndex != state.range(0))
            state.SkipWithError("styles missing");
        benchmark::DoNotOptimize(list.styles.data());
    }
    std::filesystem::remove_all(dir);
}
BENCHMARK(BM_ReportStylesLoad)->Arg(1000)->Arg(3000)->Unit(benchmark::kMillisecond);
