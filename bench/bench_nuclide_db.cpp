// Nuclide database and library files at editor sizes: a 2,000-line library written in one
// batch and read back, the database opened with its element list, an energy search.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <unistd.h>

#include "nuclide/NuclideDatabase.h"
#include "nuclide/NuclideLibrary.h"

using namespace vexo;

namespace {

std::filesystem::path Database() {
    return std::filesystem::path(VEXO_BIN_DIR) / kNuclideDatabaseFile;
}

std::filesystem::path Scratch(const char* name) {
    return std::filesystem::temp_directory_path() /
           (std::string("vexo_bench_") + std::to_string(::getpid()) + "_" + name);
}

// The first 2,000 lines of the database in nuclide order, as the editor would collect them.
std::vector<clsNuclide> TwoThousandLines() {
    NuclideDatabase db(Database());
    std::vector<clsNuclide> lines;
    for (const std::string& nuclide : db.Nuclides())
        for (const DatabaseLine& l : db.Lines(nuclide).lines)
            if (lines.size() < 2000)
                lines.push_back(ToNuclide(l));
    return lines;
}

} // namespace

static void BM_LibraryWrite2000(benchmark::State& state) {
    auto lines = TwoThousandLines();
    auto path = Scratch("write.nli");
    for (auto _ : state) {
        std::filesystem::remove(path);
        if (!WriteNuclideLibrary(path, lines).ok)
            state.SkipWithError("write failed");
    }
    std::filesystem::remove(path);
}
BENCHMARK(BM_LibraryWrite2000)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

static void BM_LibraryRead2000(benchmark::State& state) {
    auto path = Scratch("read.nli");
    std::filesystem::remove(path);
    WriteNuclideLibrary(path, TwoThousandLines());
    for (auto _ : state) {
        auto read = ReadNuclideLibrary(path);
        if (!read.ok)
            state.SkipWithError(read.error.c_str());
        benchmark::DoNotOptimize(read.lines.data());
    }
    std::filesystem::remove(path);
}
BENCHMARK(BM_LibraryRead2000)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

// What the editor does before it shows: open the database and list the elements.
static void BM_DatabaseOpenAndElements(benchmark::State& state) {
    for (auto _ : state) {
        NuclideDatabase db(Database());
        benchmark::DoNotOptimize(db.Elements().size());
    }
}
BENCHMARK(BM_DatabaseOpenAndElements)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

// An identification query: every line within 1 keV of 661.66 keV.
static void BM_EnergySearch(benchmark::State& state) {
    NuclideDatabase db(Database());
    for (auto _ : state)
        benchmark::DoNotOptimize(db.LinesInWindow(660.66, 662.66).lines.size());
}
BENCHMARK(BM_EnergySearch)->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime();
