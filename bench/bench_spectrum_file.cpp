// Reading and writing a 16,384-channel full spectrum file, as Open and Save All (and
// every batch measurement) do. Target: 2 ms or less each.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <unistd.h>

#include "base/DateTime.h"
#include "spectrum/SpectrumFile.h"

namespace {

std::unique_ptr<vexo::SpectrumDocument> FullSpectrum() {
    auto doc = std::make_unique<vexo::SpectrumDocument>();
    std::mt19937 rng(20240307);
    std::poisson_distribution<int32_t> counts(5000);
    doc->lChannels = vexo::MAX_CHANNELS;
    for (int32_t i = 0; i < doc->lChannels; ++i)
        doc->lCounts[static_cast<std::size_t>(i)] = counts(rng);
    doc->sngLiveTime = 3599.75f;
    doc->sngRealTime = 3600.0f;
    doc->dtMeasured = vexo::SerialFromParts({2024, 3, 7, 14, 5, 9});
    doc->szSpectrumID = "Benchmark spectrum";
    doc->szDeviceName = "VX2000";
    doc->szDeviceSerial = "0042";
    doc->setCalibration({true, -1.25, 0.1834, 2.5e-7});
    doc->plot.rois.push_back({1000, 1040, 255, true, "Cs-137"});
    return doc;
}

std::filesystem::path ScratchFile() {
    return std::filesystem::temp_directory_path() /
           ("vexo-bench-spectrum-" + std::to_string(::getpid()) + ".spe");
}

void BM_SpectrumFileWrite(benchmark::State& state) {
    auto doc = FullSpectrum();
    auto path = ScratchFile();
    std::string error;
    for (auto _ : state)
        if (!vexo::bSaveFullSpectrum(*doc, path, &error))
            state.SkipWithError(error.c_str());
    std::filesystem::remove(path);
}
BENCHMARK(BM_SpectrumFileWrite)->Unit(benchmark::kMillisecond);

// The text alone, without the file: what the write costs before the disk.
void BM_SpectrumFileText(benchmark::State& state) {
    auto doc = FullSpectrum();
    for (auto _ : state)
        benchmark::DoNotOptimize(vexo::FullSpectrumBytes(*doc));
}
BENCHMARK(BM_SpectrumFileText)->Unit(benchmark::kMillisecond);

void BM_SpectrumFileRead(benchmark::State& state) {
    auto path = ScratchFile();
    if (!vexo::bSaveFullSpectrum(*FullSpectrum(), path)) {
        state.SkipWithError("cannot write the scratch file");
        return;
    }
    auto doc = std::make_unique<vexo::SpectrumDocument>();
    std::string error;
    for (auto _ : state)
        if (!vexo::bReadFullSpectrum(*doc, path, &error))
            state.SkipWithError(error.c_str());
    std::filesystem::remove(path);
}
BENCHMARK(BM_SpectrumFileRead)->Unit(benchmark::kMillisecond);

} // namespace
