// Opening the nuclide editor with the shipped database: the window, its lists and the
// element query, until it could be shown.
#include <QApplication>
#include <benchmark/benchmark.h>
#include <cstdlib>

#include "base/Messages.h"
#include "nuclide/NuclideDatabase.h"
#include "nuclide/ui/frmNucEditor.h"

using namespace vexo;

static void BM_OpenNucEditor(benchmark::State& state) {
    ScriptedMessages messages;
    const auto db = std::filesystem::path(VEXO_BIN_DIR) / kNuclideDatabaseFile;
    for (auto _ : state) {
        frmNucEditor editor(db, messages, {});
        editor.show();
        QApplication::processEvents();
    }
    if (!messages.shown().empty())
        state.SkipWithError(messages.shown().front().text.c_str());
}
BENCHMARK(BM_OpenNucEditor)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

int main(int argc, char** argv) {
    if (!std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
