// Start, Stop, Clear and the refresh tick against the simulated analyser.
#include <gtest/gtest.h>

#include <numeric>

#include "SimAnalyser.h"
#include "base/NumberText.h"
#include "device/AcquisitionController.h"
#include "device/DeviceIO.h"
#include "spectrum/CountRate.h"

using namespace vexo;
using vexo::test::Model10;
using vexo::test::SimAnalyser;

namespace {

// A controller on an opened simulator, recording the refresh codes it asks for.
struct Rig {
    explicit Rig(const std::string& devices = Model10()) : sim(devices) {
        if (!sim.open())
            throw std::runtime_error("the simulated device did not open");
        sim.messages.clear();
        AcquisitionHooks hooks;
        hooks.refreshMainWindow = [this](RefreshCode code) {
            codes.push_back(static_cast<int>(code));
        };
        hooks.connectionLost = [this] { ++lostCalls; };
        acq = std::make_unique<AcquisitionController>(*sim.lib, *sim.doc, sim.rois, sim.messages,
                                                      hooks, [this] { return clock; });
    }
    // Ticks until the acquisition is no longer believed to run; the number of ticks.
    int runToEnd(int limit = 400) {
        int n = 0;
        for (; acq->bAcqActive() && n < limit; ++n)
            acq->tick();
        return n;
    }
    void applyPreset(int32_t mode, float seconds, int32_t counts = 0, int32_t first = 0,
                     int32_t last = 0) {
        SpectrumDocument& d = *sim.doc;
        d.lPresetMode = mode;
        d.sngPresetTime = seconds;
        d.lPresetCounts = counts;
        d.lPresetFirstCh = first;
        d.lPresetLastCh = last;
        WriteAllParams(*sim.lib, d);
    }

    SimAnalyser sim;
    double clock = 45000.0;
    std::vector<int> codes;
    int lostCalls = 0;
    std::unique_ptr<AcquisitionController> acq;
};

int64_t SumCounts(const SpectrumDocument& d, int first, int last) {
    int64_t s = 0;
    for (int i = first; i <= last; ++i)
        s += d.lCounts[i];
    return s;
}

} // namespace

TEST(AcquisitionControl, StartWithoutADeviceSaysNotConnected) {
    SimAnalyser sim;
    AcquisitionController acq(*sim.lib, *sim.doc, sim.rois, sim.messages);
    EXPECT_FALSE(acq.start());
    ASSERT_EQ(sim.messages.shown().size(), 1u);
    EXPECT_EQ(sim.messages.shown()[0].title, "Vexo");
    EXPECT_EQ(sim.messages.shown()[0].text, "Not connected");
    EXPECT_FALSE(acq.bAcqActive());
    acq.tick(); // no device: nothing happens, nothing is shown
    EXPECT_EQ(sim.messages.shown().size(), 1u);
}

TEST(AcquisitionControl, ClearWhileStoppedMarksTheNextStartAsANewMeasurement) {
    Rig r;
    r.applyPreset(3, 100.0f);
    r.clock = 100.0;
    r.acq->clear();
    EXPECT_TRUE(r.acq->bCleared());
    EXPECT_FALSE(r.acq->bAcqActive()); // clearing a stopped device does not start it
    r.clock = 200.0;
    ASSERT_TRUE(r.acq->start());
    EXPECT_DOUBLE_EQ(r.sim.doc->dtMeasured, 200.0);
    EXPECT_TRUE(r.acq->bAcqActive());
    EXPECT_FALSE(r.acq->bCleared());
    EXPECT_EQ(r.codes, std::vector<int>{2});

    // Stop and start again without a Clear: the same measurement goes on.
    EXPECT_TRUE(r.acq->stop());
    EXPECT_FALSE(r.acq->bAcqActive());
    r.clock = 300.0;
    ASSERT_TRUE(r.acq->start());
    EXPECT_DOUBLE_EQ(r.sim.doc->dtMeasured, 200.0);
    EXPECT_EQ(r.codes, (std::vector<int>{2, 2, 2}));
    EXPECT_TRUE(r.sim.messages.shown().empty());
}

TEST(AcquisitionControl, ClearWhileRunningRestartsFromZeroWithANewStartTime) {
    Rig r;
    r.applyPreset(3, 1000.0f);
    r.acq->clear();
    ASSERT_TRUE(r.acq->start());
    for (int i = 0; i < 10; ++i)
        r.acq->tick();
    const float liveBefore = r.sim.doc->sngLiveTime;
    EXPECT_GT(liveBefore, 1.0f);
    EXPECT_GT(SumCounts(*r.sim.doc, 0, 16383), 0);

    r.clock = 777.0;
    r.acq->clear();
    EXPECT_TRUE(r.acq->bAcqActive());
    EXPECT_FALSE(r.acq->bCleared());
    EXPECT_DOUBLE_EQ(r.sim.doc->dtMeasured, 777.0);
    // The redisplay right after clearing shows the empty spectrum.
    EXPECT_LT(r.sim.doc->sngLiveTime, liveBefore);
    r.acq->tick();
    EXPECT_TRUE(r.acq->bAcqActive());
}

TEST(AcquisitionControl, DeviceStopsAtItsPreset) {
    const struct {
        const char* name;
        int32_t mode;
        float seconds;
        int32_t counts, first, last;
    } cases[] = {{"live", 3, 4.0f, 0, 0, 0},
                 {"real", 2, 3.0f, 0, 0, 0},
                 {"counts", 4, 0.0f, 2000, 0, 16383}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Rig r;
        r.applyPreset(c.mode, c.seconds, c.counts, c.first, c.last);
        r.acq->clear();
        ASSERT_TRUE(r.acq->start());
        const int ticks = r.runToEnd();
        EXPECT_LT(ticks, 400);
        EXPECT_FALSE(r.acq->bAcqActive());
        const SpectrumDocument& d = *r.sim.doc;
        if (c.mode == 3) {
            EXPECT_NEAR(d.sngLiveTime, c.seconds, 0.01);
        } else if (c.mode == 2) {
            EXPECT_NEAR(d.sngRealTime, c.seconds, 0.01);
        } else {
            EXPECT_GE(SumCounts(d, c.first, c.last), c.counts);
        }
        // The final spectrum was read in the tick that found the device stopped.
        EXPECT_GT(SumCounts(d, 0, 16383), 0);
        EXPECT_EQ(r.acq->panelTexts().status, "Stopped");
        // The next tick notices the stop and asks for the stopped state.
        r.codes.clear();
        r.acq->tick();
        EXPECT_EQ(r.codes, std::vector<int>{2});
    }
}

TEST(AcquisitionPanel, TextsOfAFreshAndARunningMeasurement) {
    Rig r;
    r.applyPreset(3, 10.0f);
    r.acq->clear();
    const AcquisitionPanelTexts& t = r.acq->panelTexts();
    EXPECT_EQ(t.elapsed, "Elapsed time (seconds): 0.0 live, 0.0 real (0.00% dead)");
    EXPECT_EQ(t.countRate, "0.0 cps");
    EXPECT_EQ(t.status, "Stopped");
    EXPECT_EQ(t.preset, "Live Time = 10 sec");
    EXPECT_EQ(r.acq->readings().deadTimePercent, 0.0f);

    ASSERT_TRUE(r.acq->start());
    for (int i = 0; i < 6; ++i)
        r.acq->tick();
    EXPECT_EQ(t.status, "Acquiring");
    const SpectrumDocument& d = *r.sim.doc;
    ASSERT_GT(d.sngRealTime, 0.0f);
    const float dead = (1.0f - d.sngLiveTime / d.sngRealTime) * 100.0f;
    EXPECT_FLOAT_EQ(r.acq->readings().deadTimePercent, dead);
    EXPECT_EQ(t.elapsed, "Elapsed time (seconds): " + FormatSingle(d.sngLiveTime, "0.0") +
                             " live, " + FormatSingle(d.sngRealTime, "0.0") + " real (" +
                             FormatSingle(dead, "0.00") + "% dead)");
    EXPECT_EQ(t.countRate, FormatSingle(CountRate(d), "0.0") + " cps");
    ASSERT_TRUE(r.acq->readings().inputCountRate.has_value());
    EXPECT_GE(*r.acq->readings().inputCountRate, r.acq->readings().countRate * 0.5f);
    EXPECT_EQ(t.icr, "ICR " + FormatSingle(*r.acq->readings().inputCountRate, "0.0") + " cps");
}

TEST(AcquisitionPanel, PresetTextFollowsThePresetMode) {
    Rig r;
    SpectrumDocument& d = *r.sim.doc;
    d.sngPresetTime = 2.5f;
    d.lPresetCounts = 5000;
    // The text of preset modes 0 to 11.
    const char* texts[] = {"",
                           "",
                           "Real Time = 2.5 sec",
                           "Live Time = 2.5 sec",
                           "Counts = 5000",
                           "Counts = 5000",
                           "",
                           "",
                           "",
                           "",
                           "Real Time = 2.5 sec",
                           "Live Time = 2.5 sec"};
    for (int32_t mode = 0; mode < 12; ++mode) {
        d.lPresetMode = mode;
        ASSERT_TRUE(r.acq->DisplayStatus());
        EXPECT_EQ(r.acq->panelTexts().preset, texts[mode]) << "mode " << mode;
    }
}

TEST(AcquisitionPanel, StatusTextPrecedence) {
    // HV switched on just now: the "10" model reports the ramp first; other models only
    // know the status word.
    const struct {
        const char* serial;
        bool inhibit, batch;
        const char* expected;
    } cases[] = {{"10230417", false, false, "HV ramping"},
                 {"10230417", true, false, "HV Inhibit"},
                 {"10230417", false, true, "(Batch) HV ramping"},
                 {"08190233", false, false, "Stopped"},
                 {"06110108", true, true, "(Batch) Stopped"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        Rig r(
            test::SimDevice(1, c.serial, "KORV-10-001",
                            std::string("HVRampSeconds=30\nHVInhibit=") + (c.inhibit ? "1" : "0")));
        r.sim.lib->setParam(r.sim.doc->hDevice, DeviceParamId::HVState, int32_t{1});
        r.acq->setBatchMode(c.batch);
        ASSERT_TRUE(r.acq->DisplayStatus());
        EXPECT_EQ(r.acq->panelTexts().status, c.expected);
    }
}

TEST(AcquisitionPanel, McsModeShowsTheChannelBeingFilled) {
    Rig r;
    SpectrumDocument& d = *r.sim.doc;
    d.lMCSMode = 1;
    d.lChannels = 256;
    d.sngDwellTime = 0.5f;
    WriteAllParams(*r.sim.lib, d);
    r.acq->clear();
    ASSERT_TRUE(r.acq->start());
    for (int i = 0; i < 6; ++i)
        r.acq->tick();
    const std::string& e = r.acq->panelTexts().elapsed;
    ASSERT_TRUE(r.acq->readings().mcsChannel.has_value());
    EXPECT_NE(e.find(" real* ("), std::string::npos) << e;
    EXPECT_NE(e.find("% dead), channel: " + std::to_string(*r.acq->readings().mcsChannel)),
              std::string::npos)
        << e;
}

TEST(AcquisitionFaults, FailingStatusPollChangesNothing) {
    Rig r(Model10("FailParam=22:-12")); // the HV word cannot be read: every poll fails
    ASSERT_FALSE(r.acq->DisplayStatus());
    EXPECT_EQ(r.acq->panelTexts().status, "");
    ASSERT_TRUE(r.acq->start());
    r.acq->tick();
    EXPECT_TRUE(r.acq->bAcqActive()); // not taken for a stop
    EXPECT_EQ(r.acq->panelTexts().status, "");
    EXPECT_NE(r.sim.doc->hDevice, 0); // a failed poll is not a lost device
    EXPECT_TRUE(r.sim.messages.shown().empty());
}

TEST(AcquisitionFaults, MissingInputCountsLeaveTheIcrTextAlone) {
    Rig r(Model10("FailParam=35:-7"));
    r.applyPreset(3, 100.0f);
    ASSERT_TRUE(r.acq->start());
    for (int i = 0; i < 4; ++i)
        r.acq->tick();
    EXPECT_FALSE(r.acq->readings().inputCountRate.has_value());
    EXPECT_EQ(r.acq->panelTexts().icr, "");
    EXPECT_NE(r.acq->panelTexts().countRate, "0.0 cps");
}

TEST(AcquisitionFaults, LostDeviceIsReportedClosedAndCanBeReopened) {
    Rig r(Model10("DisconnectAfter=3"));
    r.applyPreset(3, 1000.0f);
    r.acq->clear();
    ASSERT_TRUE(r.acq->start());
    const float liveAtStart = r.sim.doc->sngLiveTime;
    for (int i = 0; i < 40 && r.lostCalls == 0; ++i)
        r.acq->tick();
    ASSERT_EQ(r.lostCalls, 1);
    ASSERT_EQ(r.sim.messages.shown().size(), 1u);
    EXPECT_EQ(r.sim.messages.shown()[0].title, "Vexo");
    EXPECT_EQ(r.sim.messages.shown()[0].text, "Lost the connection to the MCA: Connection closed");
    EXPECT_EQ(r.sim.messages.shown()[0].icon, MsgIcon::Critical);
    EXPECT_FALSE(r.acq->bAcqActive());
    EXPECT_EQ(r.sim.doc->hDevice, 0);
    EXPECT_FALSE(r.sim.doc->bConnected);
    EXPECT_GE(r.sim.doc->sngLiveTime, liveAtStart); // the last good spectrum stays

    r.acq->tick(); // nothing more happens without a device
    EXPECT_EQ(r.sim.messages.shown().size(), 1u);

    ASSERT_TRUE(r.sim.open());
    r.acq->deviceConnected();
    ASSERT_TRUE(r.acq->start());
    r.acq->tick();
    EXPECT_TRUE(r.acq->bAcqActive());
}
