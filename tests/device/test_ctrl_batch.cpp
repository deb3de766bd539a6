// The batch sequence against the simulated analyser: naming, counts, waiting, clearing,
// the user's Stop, a lost device, and a long run.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include "SimAnalyser.h"
#include "base/DateTime.h"
#include "base/TextFile.h"
#include "device/AcquisitionController.h"
#include "device/BatchController.h"
#include "device/ConnectionController.h"
#include "device/DeviceIO.h"
#include "shell/AppSettings.h"
#include "spectrum/SpectrumFile.h"

using namespace vexo;
using vexo::test::Model10;
using vexo::test::SimAnalyser;
namespace fs = std::filesystem;

namespace {

struct BatchRig {
    explicit BatchRig(const std::string& devices = Model10(), float liveSeconds = 1.0f)
        : sim(devices) {
        if (!sim.open())
            throw std::runtime_error("the simulated device did not open");
        sim.messages.clear();
        SpectrumDocument& d = *sim.doc;
        d.lPresetMode = 3;
        d.sngPresetTime = liveSeconds;
        d.lChannels = 1024;
        WriteAllParams(*sim.lib, d);
        fs::create_directories(out);
        AcquisitionHooks hooks;
        hooks.connectionLost = [this] { ++lost; };
        acq = std::make_unique<AcquisitionController>(*sim.lib, d, sim.rois, sim.messages, hooks,
                                                      [this] { return clock; });
        BatchHooks bh;
        bh.fileSaved = [this](const std::string& path, bool ok) {
            if (ok)
                saved.push_back(path);
        };
        bh.refreshMainWindow = [this](RefreshCode code) {
            codes.push_back(static_cast<int>(code));
        };
        bh.rememberBatchDir = [this](const std::string& dir) {
            RememberBatchDir(settings, dir, appDir(), sim.messages);
        };
        bh.processSettings = [this] { return ProcessSettingsFrom(settings); };
        batch = std::make_unique<BatchController>(*acq, sim.dir().string(), bh);
        acq->clear();
    }
    fs::path appDir() const { return sim.dir(); }
    // `count` measurements into `out`; waits of `waitSeconds` between them when not < 0.
    BatchSettings Settings(int16_t count, int32_t waitSeconds = -1) const {
        BatchSettings s;
        s.szBatchDir = out.string();
        s.nBatchCount = count;
        s.bBatchWait = waitSeconds >= 0;
        s.lBatchWait = std::max(waitSeconds, 0);
        return s;
    }
    // One 500 ms pass of both timers, as the main window runs them.
    void pass() {
        if (batch->waitTimerEnabled())
            batch->tmrBatchWait();
        acq->tick();
        ++passes;
    }
    void runToEnd(int limit) {
        for (int n = 0; batch->bBatchMode() && n < limit; ++n)
            pass();
    }
    void runUntilSaved(std::size_t files) {
        while (saved.size() < files && passes < 400)
            pass();
        ASSERT_EQ(saved.size(), files);
    }
    // Stop, as the toolbar does, answering the question with `answer`.
    bool stop(MsgAnswer answer) {
        sim.messages.queueAnswer(answer);
        return acq->stop();
    }
    // Every file written is a complete measurement of the preset live time.
    void expectFullMeasurements(float liveSeconds) const {
        auto d = std::make_unique<SpectrumDocument>();
        for (const auto& path : saved) {
            ASSERT_TRUE(bReadFullSpectrum(*d, path)) << path;
            EXPECT_NEAR(d->sngLiveTime, liveSeconds, 0.01f) << path;
            EXPECT_EQ(d->lChannels, 1024) << path;
        }
    }
    std::vector<std::string> filesOnDisk() const {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(out))
            names.push_back(e.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    SimAnalyser sim;
    fs::path out = sim.dir() / "spectra";
    double clock = SerialFromParts({2024, 1, 31, 14, 25, 1});
    AppSettings settings;
    std::unique_ptr<AcquisitionController> acq;
    std::unique_ptr<BatchController> batch;
    std::vector<std::string> saved;
    std::vector<int> codes;
    int lost = 0;
    int passes = 0;
};

const std::string kSep(1, static_cast<char>(fs::path::preferred_separator));

} // namespace

TEST(BatchSequence, CountOfOneSavesMeasurement0001AndEnds) {
    BatchRig r;
    r.batch->begin(r.Settings(1));
    EXPECT_TRUE(r.batch->bBatchMode());
    EXPECT_TRUE(r.acq->bAcqActive());
    EXPECT_EQ(r.batch->panelTexts().batch, "BATCH ON");
    EXPECT_EQ(r.batch->panelTexts().counter, "Acq. done: 0 of 1");
    r.runToEnd(200);
    EXPECT_FALSE(r.batch->bBatchMode());
    EXPECT_FALSE(r.acq->bAcqActive());
    EXPECT_EQ(r.filesOnDisk(), std::vector<std::string>{"Vexo_0001.SPE"});
    EXPECT_EQ(r.batch->panelTexts().batch, "BATCH OFF");
    EXPECT_TRUE(r.sim.messages.shown().empty());
    // The batch folder is remembered in the settings file when the batch starts.
    const auto ini = ReadTextFile(SettingsFilePath(r.appDir()));
    ASSERT_TRUE(ini.has_value());
    EXPECT_NE(ini->find("BatchDataDir=" + r.out.string()), std::string::npos);
}

TEST(BatchSequence, ZeroWaitStillPassesThroughOneWaitTick) {
    BatchRig r;
    r.batch->begin(r.Settings(2, 0));
    r.runUntilSaved(1);
    EXPECT_TRUE(r.batch->bBatchWaiting() && r.batch->waitTimerEnabled());
    EXPECT_FALSE(r.acq->bAcqActive());
    EXPECT_EQ(r.batch->panelTexts().batch, "BATCH ON (Waiting : 0.0)");
    r.batch->tmrBatchWait();
    EXPECT_FALSE(r.batch->bBatchWaiting() || r.batch->waitTimerEnabled());
    EXPECT_TRUE(r.acq->bAcqActive());
    r.runToEnd(200);
    EXPECT_EQ(r.filesOnDisk().size(), 2u);
}

TEST(BatchSequence, WaitCountsDownInHalfSeconds) {
    BatchRig r;
    r.batch->begin(r.Settings(2, 2));
    r.runUntilSaved(1);
    for (const char* text :
         {"BATCH ON (Waiting : 1.5)", "BATCH ON (Waiting : 1.0)", "BATCH ON (Waiting : 0.5)"}) {
        r.batch->tmrBatchWait();
        EXPECT_EQ(r.batch->panelTexts().batch, text);
        EXPECT_FALSE(r.acq->bAcqActive());
        r.acq->tick(); // the refresh tick leaves a waiting batch alone
        EXPECT_EQ(r.saved.size(), 1u);
    }
    r.batch->tmrBatchWait(); // 2.0 s waited: the next measurement starts
    EXPECT_TRUE(r.acq->bAcqActive());
    EXPECT_EQ(r.batch->panelTexts().counter, "Acq. done: 1 of 2");
}

TEST(BatchSequence, UntilStopRunsUntilTheUserConfirmsStop) {
    BatchRig r;
    BatchSettings s = r.Settings(1);
    s.bBatchUntilStop = true;
    s.bBatchClear = true;
    r.batch->begin(s);
    r.runUntilSaved(3); // the count of 1 is ignored
    EXPECT_EQ(r.batch->panelTexts().counter, "Acq. done: 3");

    EXPECT_FALSE(r.stop(MsgAnswer::Cancel));
    EXPECT_TRUE(r.batch->bBatchMode());
    ASSERT_EQ(r.sim.messages.shown().size(), 1u);
    const Message& q = r.sim.messages.shown()[0];
    EXPECT_EQ(q.title, "Stop Batch Acquisition");
    EXPECT_EQ(
        q.text,
        "You're under batch mode\r\nStop will abort the Batch sequence\r\nDo you want to Stop?");
    EXPECT_EQ(q.icon, MsgIcon::Exclamation);
    EXPECT_EQ(q.buttons, MsgButtons::OkCancel);

    EXPECT_TRUE(r.stop(MsgAnswer::Ok));
    EXPECT_FALSE(r.batch->bBatchMode());
    EXPECT_FALSE(r.acq->bAcqActive());
    EXPECT_EQ(r.batch->nBatchIndex(), 0); // counters reset
    for (int i = 0; i < 10; ++i)
        r.pass();
    EXPECT_EQ(r.filesOnDisk().size(), 3u); // nothing more is saved
}

TEST(BatchSequence, StopDuringTheWaitEndsTheWaitToo) {
    BatchRig r;
    r.batch->begin(r.Settings(5, 30));
    EXPECT_NE(std::find(r.codes.begin(), r.codes.end(), 16), r.codes.end());
    r.runUntilSaved(1);
    ASSERT_TRUE(r.batch->waitTimerEnabled());
    EXPECT_TRUE(r.stop(MsgAnswer::Ok));
    EXPECT_FALSE(r.batch->waitTimerEnabled() || r.batch->bBatchWaiting() || r.batch->bBatchMode());
    for (int i = 0; i < 10; ++i)
        r.pass();
    EXPECT_FALSE(r.acq->bAcqActive()); // the wait did not start another measurement
    EXPECT_EQ(r.filesOnDisk().size(), 1u);
}

TEST(BatchSequence, ProcessingRunsAfterEachSave) {
    BatchRig r;
    r.settings.EnableExtProcessing = true;
    r.settings.DataDir = (r.sim.dir() / "proc").string();
    fs::create_directories(r.settings.DataDir);
    r.settings.FileName = "p.spe";
    r.settings.Program = "/bin/sh";
    r.settings.Arguments = "-c \"echo run >> runs.txt\"";
    r.settings.StartupDir = "%D";
    BatchSettings s = r.Settings(2);
    s.bBatchProc = true;
    r.batch->begin(s);
    r.runToEnd(300);
    EXPECT_EQ(r.saved.size(), 2u);
    EXPECT_TRUE(fs::exists(r.sim.dir() / "proc" / "p.spe"));
    EXPECT_TRUE(r.sim.messages.shown().empty());
    // Both programs were started; they end on their own, so wait for their output.
    const fs::path runs = r.sim.dir() / "proc" / "runs.txt";
    std::string text;
    for (int i = 0; i < 500 && text != "run\nrun\n"; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        text = fs::exists(runs) ? test::ReadBytes(runs) : "";
    }
    EXPECT_EQ(text, "run\nrun\n");
}

TEST(BatchSequence, ClearsBeforeTheFirstAndBetweenMeasurementsByDefault) {
    BatchRig r(Model10(), 3.0f); // a longer measurement is left in the device
    r.acq->start();
    for (int i = 0; i < 100 && r.acq->bAcqActive(); ++i)
        r.acq->tick();
    r.sim.doc->sngPresetTime = 1.0f;
    WriteAllParams(*r.sim.lib, *r.sim.doc);
    r.batch->begin(r.Settings(2));
    r.runToEnd(200);
    ASSERT_EQ(r.saved.size(), 2u);
    r.expectFullMeasurements(1.0f);
    EXPECT_NE(test::ReadBytes(r.saved[0]), test::ReadBytes(r.saved[1]));
}

TEST(BatchSequence, RelativeFoldersStayWhereTheyWereWhenTheBatchStarted) {
    BatchRig r;
    const fs::path cwd = fs::current_path();
    fs::current_path(r.sim.dir());
    // A program that cannot start leaves the current folder in its working folder.
    r.settings.EnableExtProcessing = true;
    r.settings.DataDir = ".";
    r.settings.Program = "no-such-program";
    r.settings.StartupDir = r.out.string();
    BatchSettings s = r.Settings(2);
    s.szBatchDir = "spectra";
    s.bBatchProc = true;
    r.batch->begin(s);
    r.runToEnd(300);
    fs::current_path(cwd);
    EXPECT_EQ(r.filesOnDisk(), (std::vector<std::string>{"Vexo_0001.SPE", "Vexo_0002.SPE"}));
    for (const Message& m : r.sim.messages.shown()) // never "Failed to save the sprectrum"
        EXPECT_EQ(m.text.rfind("Failed to execute application: ", 0), 0u) << m.text;
}

TEST(BatchFaults, FailingSaveIsReportedAndTheSequenceGoesOn) {
    BatchRig r;
    BatchSettings s = r.Settings(2);
    s.bNameTag = true;
    s.szBatchTag = "sub" + kSep + "x"; // a folder that does not exist
    r.batch->begin(s);
    r.runToEnd(300);
    EXPECT_FALSE(r.batch->bBatchMode());
    ASSERT_EQ(r.sim.messages.shown().size(), 2u);
    EXPECT_EQ(r.sim.messages.shown()[0].text.rfind("Error saving file: ", 0), 0u);
    EXPECT_TRUE(r.filesOnDisk().empty());
}

TEST(BatchFaults, WithoutADeviceOrWhenItIsLostTheBatchEndsWithoutAPartialSpectrum) {
    BatchRig r(Model10("DisconnectAfter=6"), 2.0f);
    CloseMca(*r.sim.lib, *r.sim.doc);
    r.batch->begin(r.Settings(3)); // refused: no device
    EXPECT_FALSE(r.batch->bBatchMode());
    ASSERT_TRUE(r.sim.open());
    r.acq->deviceConnected();
    BatchSettings s = r.Settings(20);
    s.bBatchClear = true;
    r.batch->begin(s);
    r.runToEnd(300);
    EXPECT_FALSE(r.batch->bBatchMode());
    EXPECT_EQ(r.sim.doc->hDevice, 0);
    EXPECT_EQ(r.lost, 1);
    ASSERT_EQ(r.sim.messages.shown().size(), 2u);
    for (const Message& m : r.sim.messages.shown()) {
        EXPECT_EQ(m.title, "Batch Error");
        EXPECT_EQ(m.text, "No MCA connection");
        EXPECT_EQ(m.icon, MsgIcon::Exclamation);
    }
    ASSERT_FALSE(r.saved.empty());
    EXPECT_LT(r.saved.size(), 20u);
    r.expectFullMeasurements(2.0f);
    // The controllers keep working: reconnect and run a one-measurement batch.
    ASSERT_TRUE(r.sim.open());
    r.acq->deviceConnected();
    r.batch->begin(r.Settings(1));
    r.runToEnd(100);
    EXPECT_FALSE(r.batch->bBatchMode());
}
