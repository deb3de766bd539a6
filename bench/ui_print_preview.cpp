// File > Print to the report shown in the preview, for a 16,384-channel spectrum with 64
// ROIs and every section on (about 16,400 table rows): picture, page, and the browser's
// load of it. Target: shown 1.5 s or less after the command. The first run also starts
// the browser component; it is measured on its own. Runs offscreen.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <unistd.h>

#include "base/Messages.h"
#include "plot/ui/SpectrumPicture.h"
#include "report/ui/PrintPreview.h"
#include "report/ui/WebEngineSetup.h"
#include "shell/ui/TopLevel.h"
#include "spectrum/SpectrumCommands.h"

namespace {

// A 16,384-channel spectrum with 64 peaks and an ROI on each, saved as a full file.
QString WriteSpectrum(const std::filesystem::path& dir) {
    vexo::SpectrumDocument doc;
    doc.lChannels = 16384;
    doc.sngLiveTime = 3598.5f;
    doc.sngRealTime = 3600.0f;
    std::mt19937 rng(7321);
    std::uniform_real_distribution<> where(100, 16200);
    std::vector<double> mean(16384);
    for (int i = 0; i < 16384; ++i)
        mean[i] = 2000.0 * std::exp(-i / 3000.0) + 5.0;
    for (int p = 0; p < 64; ++p) {
        const double mu = where(rng), sigma = 1.5 + 0.12 * std::sqrt(mu);
        for (int i = std::max(0, int(mu - 6 * sigma)); i <= int(mu + 6 * sigma) && i < 16384; ++i)
            mean[i] += 20000.0 * std::exp(-0.5 * std::pow((i - mu) / sigma, 2));
        doc.plot.rois.push_back({int(mu - 3 * sigma), int(mu + 3 * sigma), 255, false, "P"});
    }
    for (int i = 0; i < 16384; ++i)
        doc.lCounts[i] = std::poisson_distribution<int>(mean[i])(rng);
    const std::filesystem::path file = dir / "big.spe";
    vexo::ScriptedMessages quiet;
    if (!vexo::SaveAllSpectrum(doc, file, quiet))
        std::abort();
    return QString::fromStdString(file.string());
}

struct Setup {
    QTemporaryDir dir;
    vexo::ScriptedMessages messages;
    std::unique_ptr<vexo::TopLevel> window;
    Setup() {
        window = std::make_unique<vexo::TopLevel>(dir.path().toStdString(), &messages);
        window->show();
        if (!window->openSpectrum(WriteSpectrum(dir.path().toStdString())))
            std::abort();
    }
};

Setup& TheSetup() {
    static Setup setup;
    return setup;
}

// CPU seconds used so far by each descendant of process `pid` (the browser's zygote
// and renderer processes, which lay out the page), by process id.
void DescendantCpu(int pid, std::map<int, double>& cpu) {
    std::ifstream children("/proc/" + std::to_string(pid) + "/task/" + std::to_string(pid) +
                           "/children");
    for (int child; children >> child;) {
        std::ifstream stat("/proc/" + std::to_string(child) + "/stat");
        std::string line;
        std::getline(stat, line);
        if (line.rfind(')') == std::string::npos)
            continue; // gone meanwhile
        std::istringstream fields(line.substr(line.rfind(')') + 2));
        std::string skip;
        for (int i = 0; i < 11; ++i) // fields 3..13
            fields >> skip;
        long utime = 0, stime = 0;
        fields >> utime >> stime;
        cpu[child] = static_cast<double>(utime + stime) / sysconf(_SC_CLK_TCK);
        DescendantCpu(child, cpu);
    }
}

std::map<int, double> HelperCpu() {
    std::map<int, double> cpu;
    DescendantCpu(getpid(), cpu);
    return cpu;
}

// What the helpers alive at `after` spent since `before` (a process that ended in
// between belonged to an earlier preview).
double HelperCpuSpent(const std::map<int, double>& before, const std::map<int, double>& after) {
    double seconds = 0.0;
    for (const auto& [pid, cpu] : after) {
        auto it = before.find(pid);
        seconds += cpu - (it == before.end() ? 0.0 : it->second);
    }
    return seconds;
}

// One File > Print until the page has loaded; then the preview is closed again.
// Returns the CPU seconds the browser's helper processes spent meanwhile.
double PrintOnce(benchmark::State& state) {
    vexo::TopLevel& w = *TheSetup().window;
    const std::map<int, double> helperBefore = HelperCpu();
    w.action("mnuFilePrint")->trigger();
    vexo::PrintPreview* preview = w.printPreview();
    QEventLoop loop;
    bool loaded = false;
    QObject::connect(preview, &vexo::PrintPreview::reportLoaded, &loop, [&](bool ok) {
        loaded = ok;
        loop.quit();
    });
    QTimer::singleShot(60000, &loop, &QEventLoop::quit);
    loop.exec();
    if (!loaded)
        state.SkipWithError("the report page did not load");
    const double helper = HelperCpuSpent(helperBefore, HelperCpu());
    state.PauseTiming();
    preview->close();
    QApplication::processEvents();
    state.ResumeTiming();
    return helper;
}

// Runs File > Print; `spectralData` switches the 16,385-row table on or off, which shows
// how much of the time is the browser laying that table out.
void RunPrints(benchmark::State& state, bool spectralData) {
    TheSetup().window->settings().SpctSect = spectralData;
    double helper = 0.0;
    for (auto _ : state)
        helper += PrintOnce(state);
    state.counters["helper_cpu_ms"] =
        benchmark::Counter(helper * 1000.0, benchmark::Counter::kAvgIterations);
}

void BM_PreviewShownFirst(benchmark::State& state) {
    RunPrints(state, true);
}
BENCHMARK(BM_PreviewShownFirst)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

void BM_PreviewShown(benchmark::State& state) {
    RunPrints(state, true);
}
BENCHMARK(BM_PreviewShown)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

void BM_PreviewShownNoSpectralTable(benchmark::State& state) {
    RunPrints(state, false);
}
BENCHMARK(BM_PreviewShownNoSpectralTable)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

// The picture alone: the main plot drawn offscreen at 1200 x 720 and saved as PNG.
void BM_SpectrumPicture(benchmark::State& state) {
    vexo::TopLevel& w = *TheSetup().window;
    const std::filesystem::path file = TheSetup().dir.path().toStdString() + "/spect.png";
    for (auto _ : state)
        if (!vexo::SaveSpectrumPicture(w.document(), vexo::PictureView{}, file).ok)
            state.SkipWithError("the picture was not written");
}
BENCHMARK(BM_SpectrumPicture)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

} // namespace

int main(int argc, char** argv) {
    if (!std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    vexo::PrepareWebEngine();
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    TheSetup().window.reset();
    benchmark::Shutdown();
    return 0;
}
