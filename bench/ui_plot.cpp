// Redraw cost of the two spectrum plots (main view and overview) at 16,384 channels,
// filled, log scale, in a 1280 x 800 window, against one plain QCustomPlot filled graph
// of the same counts. Runs offscreen; prints both times and their ratio.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QVBoxLayout>
#include <QWidget>
#include <cmath>
#include <cstdlib>
#include <map>
#include <random>

#include "plot/ui/SpectrumPlot.h"

namespace {

// A gamma spectrum's shape: falling continuum, a few peaks, Poisson noise. Fixed seed.
void FillSpectrum(vexo::SpectrumDocument& doc) {
    std::mt19937 rng(2024);
    doc.lChannels = 16384;
    for (int ch = 0; ch < doc.lChannels; ++ch) {
        double mean = 2000.0 * std::exp(-ch / 3000.0) + 5.0;
        for (double peak : {1200.0, 2650.0, 6100.0, 11000.0})
            mean += 40000.0 * std::exp(-0.5 * std::pow((ch - peak) / 9.0, 2));
        doc.lCounts[ch] = std::poisson_distribution<int>(mean)(rng);
    }
}

vexo::SpectrumDocument& Doc() {
    static vexo::SpectrumDocument doc = [] {
        vexo::SpectrumDocument d;
        FillSpectrum(d);
        return d;
    }();
    return doc;
}

void BM_VexoBothPlots(benchmark::State& state) {
    QWidget window;
    window.resize(1280, 800);
    auto* layout = new QVBoxLayout(&window);
    auto* main = new vexo::SpectrumPlot;
    auto* overview = new vexo::SpectrumPlot;
    layout->addWidget(main, 3);
    layout->addWidget(overview, 1);
    for (vexo::SpectrumPlot* p : {main, overview}) {
        vexo::PlotAppearance look;
        look.filled = true;
        p->setAppearance(look);
        p->setDocument(&Doc());
        p->setYScale(vexo::YScale::Log);
        p->setGraphType(2);
    }
    window.show();
    QApplication::processEvents();
    for (auto _ : state) {
        main->refreshPlot();
        overview->refreshPlot();
    }
}
BENCHMARK(BM_VexoBothPlots)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_PlainQCustomPlotFilled(benchmark::State& state) {
    QCustomPlot plot;
    plot.resize(1280, 800);
    QCPGraph* graph = plot.addGraph();
    QVector<double> keys, values;
    for (int ch = 0; ch < Doc().lChannels; ++ch) {
        keys.append(ch);
        values.append(std::max(Doc().lCounts[ch], 1)); // log axis: no zero counts
    }
    graph->setData(keys, values, true);
    graph->setBrush(QBrush(Qt::lightGray));
    plot.yAxis->setScaleType(QCPAxis::stLogarithmic);
    plot.yAxis->setTicker(QSharedPointer<QCPAxisTickerLog>(new QCPAxisTickerLog));
    plot.rescaleAxes();
    plot.show();
    QApplication::processEvents();
    for (auto _ : state)
        plot.replot();
}
BENCHMARK(BM_PlainQCustomPlotFilled)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// Keeps each benchmark's mean time so the ratio can be printed at the end.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs)
            if (r.run_type == Run::RT_Iteration)
                m_ms[r.benchmark_name()] = r.GetAdjustedRealTime(); // in kMillisecond
    }
    double ms(const std::string& name) const {
        auto it = m_ms.find(name);
        return it == m_ms.end() ? 0.0 : it->second;
    }

private:
    std::map<std::string, double> m_ms;
};

} // namespace

int main(int argc, char** argv) {
    if (!std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double vexoMs = reporter.ms("BM_VexoBothPlots/min_time:2.000");
    const double plainMs = reporter.ms("BM_PlainQCustomPlotFilled/min_time:2.000");
    if (vexoMs > 0 && plainMs > 0)
        std::printf("both plots %.3f ms, plain filled graph %.3f ms, ratio vexo/plain %.3f\n",
                    vexoMs, plainMs, vexoMs / plainMs);
    benchmark::Shutdown();
    return 0;
}
