// Nuclide library and calibration solver: what the dialogs pay when they open or compute.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <unistd.h>

#include "base/Messages.h"
#include "base/NumberText.h"
#include "nuclide/NuclideLibrary.h"
#include "spectrum/CalibrationSolver.h"

using namespace vexo;

namespace {

std::filesystem::path ShippedLibrary() {
    return std::filesystem::path(VEXO_SOURCE_DIR) / "data" / "Vexo.nli";
}

std::filesystem::path ScratchLibrary() {
    return std::filesystem::temp_directory_path() /
           ("vexo_bench_nli_" + std::to_string(::getpid()) + ".nli");
}

} // namespace

// Reading the shipped library (67 lines): each key is one pass of the INI store.
static void BM_NuclideLibraryReadShipped(benchmark::State& state) {
    for (auto _ : state) {
        auto read = ReadNuclideLibrary(ShippedLibrary());
        if (!read.ok)
            state.SkipWithError(read.error.c_str());
        benchmark::DoNotOptimize(read.lines.data());
    }
}
BENCHMARK(BM_NuclideLibraryReadShipped)->Unit(benchmark::kMillisecond);

// Writing the same lines back: thirteen keyed writes per line, each rewriting the file.
static void BM_NuclideLibraryWrite(benchmark::State& state) {
    auto read = ReadNuclideLibrary(ShippedLibrary());
    if (!read.ok) {
        state.SkipWithError(read.error.c_str());
        return;
    }
    auto path = ScratchLibrary();
    for (auto _ : state) {
        std::filesystem::remove(path);
        auto written = WriteNuclideLibrary(path, read.lines);
        if (!written.ok)
            state.SkipWithError(written.error.c_str());
    }
    std::filesystem::remove(path);
}
BENCHMARK(BM_NuclideLibraryWrite)->Unit(benchmark::kMillisecond);

static void BM_NuclideLibraryEnergyLists(benchmark::State& state) {
    ScriptedMessages messages;
    for (auto _ : state) {
        auto items = EnergyListEntries(ShippedLibrary(), messages);
        benchmark::DoNotOptimize(items.data());
    }
}
BENCHMARK(BM_NuclideLibraryEnergyLists)->Unit(benchmark::kMillisecond);

static void BM_CalibrationComputeThreePoints(benchmark::State& state) {
    ScriptedMessages messages;
    std::array<CalibrationRowText, 3> rows{{{"100", "211"}, {"1000", "3001"}, {"2000", "8001"}}};
    for (auto _ : state) {
        auto r = Compute(rows, EnergyCalibration::Default(), messages);
        benchmark::DoNotOptimize(r.cal.dQuad);
    }
}
BENCHMARK(BM_CalibrationComputeThreePoints);

static void BM_LeadingNumber(benchmark::State& state) {
    const char* texts[] = {"661.6553", "1.600E3", "abc", " 12.5 keV", "8e-04"};
    for (auto _ : state)
        for (const char* t : texts)
            benchmark::DoNotOptimize(LeadingNumber(t));
}
BENCHMARK(BM_LeadingNumber);
