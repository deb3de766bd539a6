// The scope cycle against the simulated analyser, run from the refresh tick.
#include <gtest/gtest.h>

#include <cstdlib>

#include "SimAnalyser.h"
#include "device/AcquisitionController.h"
#include "device/ScopeController.h"

using namespace vexo;
using vexo::test::SimAnalyser;

namespace {

struct ScopeRig {
    explicit ScopeRig(const std::string& serial = "10230417")
        : sim(test::SimDevice(1, serial, "KORV-10-001",
                              "Sources=Cs-137:3000\nHVOnAtPowerUp=1\nHVRampSeconds=1")) {
        if (!sim.open())
            throw std::runtime_error("the simulated device did not open");
        acq = std::make_unique<AcquisitionController>(*sim.lib, *sim.doc, sim.rois, sim.messages);
        scope = std::make_unique<ScopeController>(*sim.lib, *sim.doc);
        AcquisitionHooks hooks;
        hooks.scopeCycle = [this] { newTraces += scope->DisplayWaveform() ? 1 : 0; };
        acq->setHooks(hooks);
        for (int i = 0; i < 6; ++i) // past the high-voltage ramp
            acq->tick();
    }
    SimAnalyser sim;
    std::unique_ptr<AcquisitionController> acq;
    std::unique_ptr<ScopeController> scope;
    int newTraces = 0;
};

} // namespace

TEST(ScopeCycle, EachTickReadsOneTraceAndRearms) {
    ScopeRig r;
    const int before = r.scope->traceCount();
    EXPECT_GT(before, 0);
    r.acq->tick();
    EXPECT_EQ(r.scope->traceCount(), before + 1);
    // Straight after a read the new capture is not ready: nothing is read, the old
    // trace stays.
    const ScopeTrace kept = r.scope->trace();
    EXPECT_FALSE(r.scope->DisplayWaveform());
    EXPECT_EQ(r.scope->traceCount(), before + 1);
    EXPECT_EQ(r.scope->trace(), kept);
    r.acq->tick(); // time moves on and the re-armed scope has a trace
    EXPECT_EQ(r.scope->traceCount(), before + 2);
    EXPECT_TRUE(r.sim.messages.shown().empty());
}

TEST(ScopeCycle, NothingWithoutADevice) {
    SimAnalyser sim;
    ScopeController scope(*sim.lib, *sim.doc);
    EXPECT_FALSE(scope.DisplayWaveform());
    EXPECT_EQ(scope.traceCount(), 0);
}

TEST(ScopeCycle, FullScaleFollowsTheModelAndTracesStayInIt) {
    const std::pair<const char*, int32_t> cases[] = {
        {"10230417", 65536}, {"08190233", 65536}, {"06110108", 4096}};
    for (const auto& [serial, fullScale] : cases) {
        SCOPED_TRACE(serial);
        ScopeRig r(serial);
        EXPECT_EQ(r.scope->fullScale(), fullScale);
        int peak = 0;
        for (int t = 0; t < 5; ++t) {
            r.acq->tick();
            for (int16_t s : r.scope->trace())
                peak = std::max(peak, std::abs(static_cast<int>(s)));
        }
        EXPECT_LE(peak, fullScale / 2);
        // A real pulse is a sizeable part of the scale the model is drawn with.
        EXPECT_GT(peak, fullScale / 64);
        // Drawn with that scale, every point stays inside the plotting area.
        for (const ScopePoint& p : PlotData(r.scope->trace(), 1064, 440, r.scope->fullScale())) {
            EXPECT_GE(p.y, 20);
            EXPECT_LE(p.y, 420);
        }
    }
}
