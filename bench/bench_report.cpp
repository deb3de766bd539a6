// The report of a 16,384-channel spectrum with 64 ROIs (about 16,400 table rows): built
// and written as File > Print does. Target: 20 ms or less for build and write.
#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <random>

#include "base/DateTime.h"
#include "report/ReportBuilder.h"
#include "roi/clsROI.h"

namespace {

constexpr int kRois = 64;

struct Workload {
    vexo::SpectrumDocument doc;
    vexo::ReportInput input;
};

// A falling continuum with Poisson noise and 64 peaks, an ROI of +-3 sigma around each,
// analysed, calibrated; every section on. Seeded.
Workload& TheWorkload() {
    static Workload w = [] {
        Workload w;
        vexo::SpectrumDocument& doc = w.doc;
        doc.lChannels = 16384;
        doc.sngLiveTime = 3598.5f;
        doc.sngRealTime = 3600.0f;
        doc.dtMeasured = vexo::SerialFromParts({2024, 3, 7, 14, 5, 9});
        doc.setCalibration({true, 1.2, 0.183, 2e-7});
        std::mt19937 rng(7321);
        std::uniform_real_distribution<> where(100, 16200), height(200, 50000);
        std::vector<double> mean(16384);
        for (int i = 0; i < 16384; ++i)
            mean[i] = 2000.0 * std::exp(-i / 3000.0) + 5.0;
        std::vector<std::pair<int, int>> bounds;
        for (int p = 0; p < kRois; ++p) {
            const double mu = where(rng), amp = height(rng), sigma = 1.5 + 0.12 * std::sqrt(mu);
            for (int i = std::max(0, int(mu - 6 * sigma)); i <= int(mu + 6 * sigma) && i < 16384;
                 ++i)
                mean[i] += amp * std::exp(-0.5 * std::pow((i - mu) / sigma, 2));
            bounds.emplace_back(int(mu - 3 * sigma), int(mu + 3 * sigma));
        }
        for (int i = 0; i < 16384; ++i)
            doc.lCounts[i] = std::poisson_distribution<int>(mean[i])(rng);
        w.input.doc = &doc;
        w.input.style = vexo::DefaultReportStyle();
        for (const auto& [left, right] : bounds) {
            vexo::clsROI roi;
            roi.set_lROILCh(left);
            roi.set_lROIRCh(right);
            int16_t nBkgChn = 0;
            vexo::RoiRates rates;
            roi.bComputeROI(doc.sngLiveTime, nBkgChn, doc.lCounts.data(), doc.lCounts.size(),
                            doc.calibration, rates);
            w.input.rois.push_back({roi.lROILCh(), roi.lROIRCh(), roi.sCentCh(), roi.sCentEn(),
                                    roi.lInt(), roi.lBkgIntVal(), roi.lNET(), roi.sCentInt(),
                                    roi.lMax(), roi.sFWHMch(), roi.sFWHMen(), roi.sFWHMp()});
        }
        return w;
    }();
    return w;
}

void BM_ReportBuildAndWrite(benchmark::State& state) {
    const std::filesystem::path dir =
        std::filesystem::temp_directory_path() / ("vexo-bench-report-" + std::to_string(getpid()));
    std::filesystem::create_directories(dir);
    const std::filesystem::path file = vexo::ReportFilePath(dir);
    for (auto _ : state) {
        const vexo::ReportWriteResult r = vexo::WriteReport(TheWorkload().input, file);
        if (!r.ok)
            state.SkipWithError(r.error.c_str());
    }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(file));
    std::filesystem::remove_all(dir);
}
BENCHMARK(BM_ReportBuildAndWrite)->Unit(benchmark::kMillisecond);

void BM_ReportBuildOnly(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(vexo::BuildReport(TheWorkload().input));
}
BENCHMARK(BM_ReportBuildOnly)->Unit(benchmark::kMillisecond);

} // namespace
