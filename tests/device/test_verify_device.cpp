// Independent checks of the device layer against the simulated analyser: the exact
// order of the library calls (through a pass-through library that logs each call),
// the status-bar texts, batch file names, batch window messages and the processing
// placeholders.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <sys/wait.h>

#include "TestSupport.h"
#include "base/DateTime.h"
#include "base/NumberText.h"
#include "ctrl_sim.h"
#include "device/AcquisitionController.h"
#include "device/BatchController.h"
#include "device/BatchSettings.h"
#include "device/ConnectionController.h"
#include "device/DeviceIO.h"
#include "device/DeviceSearch.h"
#include "device/ExternalProcessing.h"
#include "device/ScopeController.h"

using namespace vexo;
using vexo::test::BinDir;
using vexo::test::ScopedEnvVar;
using vexo::test::TempDir;
using vexo::test::WriteBytes;
namespace fs = std::filesystem;

namespace {

fs::path RecorderPath() {
    return BinDir() / "libKorvhwRecorder.so";
}
fs::path SimulatorPath() {
    return BinDir() / "libKORVHW.so";
}

std::string Model10(const std::string& extra = "") {
    return "[Device1]\nSerial=10230417\nPath=KORV-10-001\nName=KORV MCA-10\nType=2\n"
           "Firmware=V3.4\nClockHz=80000000\nMaxHV=1500\nHVOnAtPowerUp=1\nHVRampSeconds=0\n" +
           extra;
}
std::string Model06(const std::string& extra = "") {
    return "[Device1]\nSerial=06110108\nPath=KORV-06-003\nName=KORV MCA-6\nType=1\n"
           "Firmware=V2.1\nMaxHV=0\nClockHz=0\nHVOnAtPowerUp=1\nHVRampSeconds=0\n" +
           extra;
}

// The simulated analyser behind the logging library, with a fresh configuration.
class Recorded : public ::testing::Test {
protected:
    void SetUp() override {
        if (!fs::exists(RecorderPath()) || !fs::exists(SimulatorPath()))
            GTEST_SKIP() << "libraries not built";
        m_doc = std::make_unique<SpectrumDocument>();
    }
    void TearDown() override {
        if (m_lib && m_doc && m_doc->hDevice != 0)
            CloseMca(*m_lib, *m_doc);
        m_lib.reset();
        m_env.clear();
    }
    DeviceLibrary& Load(const std::string& devices) {
        WriteBytes(m_dir / "korvhw.ini", "[Simulator]\nSeed=3\nClock=step\nStepSeconds=0.5\n"
                                         "SettingsDir=" +
                                             (m_dir.path() / "settings").string() + "\n\n" +
                                             devices);
        m_env.push_back(
            std::make_unique<ScopedEnvVar>("VEXO_SIM_CONFIG", (m_dir / "korvhw.ini").string()));
        m_env.push_back(
            std::make_unique<ScopedEnvVar>("VEXO_RECORDER_TARGET", SimulatorPath().string()));
        m_env.push_back(
            std::make_unique<ScopedEnvVar>("VEXO_RECORDER_LOG", (m_dir / "calls.log").string()));
        m_lib = std::make_unique<DeviceLibrary>(RecorderPath());
        return *m_lib;
    }
    void Open(const std::string& path) {
        OpenMca(*m_lib, *m_doc, m_messages, ConnectionHooks{}, path, "", true);
        ASSERT_TRUE(m_doc->bConnected);
    }
    // Every logged call since the last Forget().
    std::vector<std::string> Calls() const {
        std::vector<std::string> lines;
        std::ifstream in(m_dir / "calls.log");
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        return lines;
    }
    // The calls reduced to operation and id ("GetParam 6", "ReadSpectrum").
    std::vector<std::string> Ops() const {
        std::vector<std::string> ops;
        for (const std::string& line : Calls()) {
            std::istringstream s(line);
            std::string op, id;
            s >> op;
            if (op == "GetParam" || op == "SetParam") {
                s >> id;
                op += " " + id;
            }
            ops.push_back(op);
        }
        return ops;
    }
    // The 32-bit values written to `id`, in order.
    std::vector<int32_t> Written(int id) const {
        std::vector<int32_t> values;
        for (const std::string& line : Calls()) {
            std::istringstream s(line);
            std::string op;
            int i = -1;
            std::string value;
            s >> op >> i >> value;
            if (op == "SetParam" && i == id)
                values.push_back(value.rfind("size", 0) == 0 ? -1 : std::stoi(value));
        }
        return values;
    }
    void Forget() { fs::remove(m_dir / "calls.log"); }

    static std::vector<std::string> Params(const char* op, std::initializer_list<int> ids) {
        std::vector<std::string> v;
        for (int id : ids)
            v.push_back(std::string(op) + " " + std::to_string(id));
        return v;
    }
    static std::vector<std::string> Join(std::initializer_list<std::vector<std::string>> parts) {
        std::vector<std::string> all;
        for (const auto& p : parts)
            all.insert(all.end(), p.begin(), p.end());
        return all;
    }

    TempDir m_dir;
    std::vector<std::unique_ptr<ScopedEnvVar>> m_env;
    std::unique_ptr<DeviceLibrary> m_lib;
    std::unique_ptr<SpectrumDocument> m_doc;
    ScriptedMessages m_messages;
};

} // namespace

TEST_F(Recorded, OpenReadsIdentityThenEveryParameterInTheFixedOrder) {
    Load(Model10());
    Open("KORV-10-001");
    const auto expected = Join({
        {"OpenDevice", "SetParam 23"},
        Params("GetParam", {0, 1, 4, 2, 3}),
        Params("GetParam",
               {6,  5,  30, 35, 39, 40, 41, 36, 50, 48, 49, 51, 9,  9,  28, 13, 14, 12,
                15, 16, 17, 18, 7,  8,  7,  8,  31, 32, 11, 19, 20, 21, 22, 25, 42, 44}),
    });
    EXPECT_EQ(Ops(), expected);
    EXPECT_EQ(Written(23), std::vector<int32_t>{256});
    EXPECT_EQ(Calls()[0], "OpenDevice KORV-10-001 = 0");
    EXPECT_TRUE(m_messages.shown().empty());
}

TEST_F(Recorded, ReadAllOfAnOldModelTakesTheLegacyRoutes) {
    Load(Model06());
    Open("KORV-06-003");
    // No id 30: the legacy word 10; no id 48: the legacy switch 34; no window reads.
    const auto expected = Join({
        {"OpenDevice", "SetParam 23"},
        Params("GetParam", {0, 1, 4, 2, 3}),
        Params("GetParam", {6,  5,  30, 10, 35, 39, 40, 41, 36, 50, 48, 34, 9,  9,  28, 13, 14,
                            12, 15, 16, 17, 18, 7,  8,  7,  8,  11, 19, 20, 21, 22, 25, 42, 44}),
    });
    EXPECT_EQ(Ops(), expected);
    EXPECT_EQ(m_doc->lCapabilities, 5 | 8);
    EXPECT_NE(m_doc->lPresetMode & 2, 0);
    EXPECT_EQ(m_doc->lPresetFirstCh, 0);
    EXPECT_EQ(m_doc->lPresetLastCh, 0);
    EXPECT_EQ(m_doc->lClockHz, 25000000);
    EXPECT_FLOAT_EQ(m_doc->sngMaxHV, 1500.0f);
    EXPECT_EQ(m_doc->lFineGainMax, 4095);
}

TEST_F(Recorded, WriteAllSendsEveryParameterInTheFixedOrder) {
    Load(Model10());
    Open("KORV-10-001");
    Forget();
    SpectrumDocument& d = *m_doc;
    d.lLLD = 20;
    d.lULD = 1000;
    d.lSCALow = 100;
    d.lSCAHigh = 200;
    d.lPresetFirstCh = 300;
    d.lPresetLastCh = 400;
    d.lGPIO1Func = 10;
    d.bGPIO1Neg = 1;
    WriteAllParams(*m_lib, d);
    const auto ops = Ops();
    const auto head = Params("SetParam", {6, 26, 5, 30, 28, 31, 32, 13, 14, 12, 15, 16, 17, 18,
                                          9, 7,  8, 11, 19, 20, 21, 22, 25, 41, 36, 39, 40, 50});
    ASSERT_GE(ops.size(), head.size());
    EXPECT_EQ(std::vector<std::string>(ops.begin(), ops.begin() + head.size()), head);
    // Then the GPIO lines with the preset word again, and the HV inhibit input last.
    const std::vector<std::string> tail(ops.begin() + head.size(), ops.end());
    EXPECT_EQ(tail, Params("SetParam", {48, 49, 30, 51}));
    EXPECT_EQ(Written(7), std::vector<int32_t>{20});
    EXPECT_EQ(Written(8), std::vector<int32_t>{1000});
    EXPECT_EQ(Written(48), std::vector<int32_t>{static_cast<int32_t>(0xFFFF800A)});
    EXPECT_EQ(Written(6), Written(26));
    EXPECT_EQ(Written(25), std::vector<int32_t>{-1}); // 12 bytes
}

TEST_F(Recorded, WriteAllWithoutAWindowOfItsOwnPassesItThroughLldUldFirst) {
    Load(Model10("MissingIds=32\n"));
    Open("KORV-10-001");
    ASSERT_EQ(m_doc->lCapabilities & kCapPresetWindow, 0);
    // The failing window read falls back to the discriminators.
    const auto reads = Ops();
    const auto at = std::find(reads.begin(), reads.end(), "GetParam 31");
    ASSERT_NE(at, reads.end());
    EXPECT_EQ(std::vector<std::string>(at, at + 5), Params("GetParam", {31, 32, 7, 8, 11}));
    EXPECT_EQ(m_doc->lPresetFirstCh, m_doc->lLLD);
    EXPECT_EQ(m_doc->lPresetLastCh, m_doc->lULD);
    Forget();
    SpectrumDocument& d = *m_doc;
    d.lMCSMode = 1;
    d.lPresetFirstCh = 300;
    d.lPresetLastCh = 400;
    d.lLLD = 20;
    d.lULD = 1000;
    d.lSCALow = 100;
    d.lSCAHigh = 200;
    WriteAllParams(*m_lib, d);
    // Window first, then (MCS mode) the SCA window over it.
    EXPECT_EQ(Written(7), (std::vector<int32_t>{300, 100}));
    EXPECT_EQ(Written(8), (std::vector<int32_t>{400, 200}));
    const auto ops = Ops();
    EXPECT_EQ(std::vector<std::string>(ops.begin(), ops.begin() + 7),
              Params("SetParam", {6, 26, 5, 30, 28, 7, 8}));
}

TEST_F(Recorded, WriteAllOfAnOldModelSendsTheLegacyWord) {
    Load(Model06());
    Open("KORV-06-003");
    Forget();
    SpectrumDocument& d = *m_doc;
    d.sngPresetTime = 3.0f;
    d.lGPIO1Func = 1;
    WriteAllParams(*m_lib, d);
    const auto expected = Params("SetParam", {6, 26, 5, 10, 13, 14, 12, 15, 16, 17, 18,
                                              9, 7,  8, 11, 19, 20, 21, 22, 25, 34});
    EXPECT_EQ(Ops(), expected);
    EXPECT_EQ(Written(10), std::vector<int32_t>{1});
    Forget();
    d.sngPresetTime = 2.5f; // ties to even: 2, lowest bit 0
    WriteAllParams(*m_lib, d);
    EXPECT_EQ(Written(10), std::vector<int32_t>{0});
    Forget();
    d.sngPresetTime = 3.5f; // 4
    WriteAllParams(*m_lib, d);
    EXPECT_EQ(Written(10), std::vector<int32_t>{0});
}

TEST_F(Recorded, RefreshTickPollsThenReads) {
    Load(Model10());
    Open("KORV-10-001");
    RoiCollection rois;
    AcquisitionController acq(*m_lib, *m_doc, rois, m_messages);
    acq.deviceConnected();
    // Stopped: the status poll, then one more status read.
    Forget();
    acq.tick();
    EXPECT_EQ(Ops(), (std::vector<std::string>{"GetAcquisitionStatus", "GetParam 5", "GetParam 22",
                                               "GetAcquisitionStatus"}));
    ASSERT_TRUE(acq.start());
    Forget();
    acq.tick();
    EXPECT_EQ(Ops(), (std::vector<std::string>{"GetAcquisitionStatus", "GetParam 5", "GetParam 22",
                                               "ReadSpectrum", "GetParam 35"}));
    acq.stop();
    // MCS mode reads the current channel as well.
    m_doc->lMCSMode = 1;
    m_doc->sngDwellTime = 1.0f;
    WriteAllParams(*m_lib, *m_doc);
    ASSERT_TRUE(acq.start());
    Forget();
    acq.tick();
    EXPECT_EQ(Ops(), (std::vector<std::string>{"GetAcquisitionStatus", "GetParam 5", "GetParam 22",
                                               "ReadSpectrum", "GetParam 27", "GetParam 35"}));
    EXPECT_TRUE(m_messages.shown().empty());
}

TEST_F(Recorded, ClearStopsClearsShowsAndRestartsARunningAcquisition) {
    Load(Model10());
    Open("KORV-10-001");
    RoiCollection rois;
    AcquisitionController acq(*m_lib, *m_doc, rois, m_messages);
    acq.deviceConnected();
    ASSERT_TRUE(acq.start());
    acq.tick();
    Forget();
    acq.clear();
    const auto ops = Ops();
    ASSERT_GE(ops.size(), 3u);
    EXPECT_EQ(ops[0], "StopAcquisition");
    EXPECT_EQ(ops[1], "ClearAll");
    EXPECT_EQ(ops.back(), "StartAcquisition");
    EXPECT_TRUE(acq.bAcqActive());
    EXPECT_FALSE(acq.bCleared());
    // While stopped the clear does not restart.
    acq.stop();
    Forget();
    acq.clear();
    for (const auto& op : Ops())
        EXPECT_NE(op, "StartAcquisition");
    EXPECT_FALSE(acq.bAcqActive());
    EXPECT_TRUE(acq.bCleared());
    EXPECT_TRUE(m_messages.shown().empty());
}

TEST_F(Recorded, ScopeCycleSelectsPollsReadsAndRearms) {
    Load(Model10());
    Open("KORV-10-001");
    ScopeController scope(*m_lib, *m_doc);
    scope.setSource(ScopeSource::Input);
    // The simulator is armed at open and ready after 0.1 simulated s (a status poll).
    int32_t status = 0;
    m_lib->getAcquisitionStatus(m_doc->hDevice, status);
    Forget();
    ASSERT_TRUE(scope.DisplayWaveform());
    EXPECT_EQ(Ops(),
              (std::vector<std::string>{"SetParam 24", "GetScopeStatus", "ReadScope", "ArmScope"}));
    EXPECT_EQ(Written(24), std::vector<int32_t>{7});
    Forget();
    scope.setSource(ScopeSource::Filtered);
    EXPECT_FALSE(scope.DisplayWaveform()); // just re-armed: nothing ready
    EXPECT_EQ(Ops(), (std::vector<std::string>{"SetParam 24", "GetScopeStatus"}));
    EXPECT_EQ(Written(24), std::vector<int32_t>{0});
}

TEST_F(Recorded, SearchRestartsOnceReadsOneTickBehindAndStopsOnClose) {
    Load(Model10());
    DeviceSearch search(*m_lib);
    search.tick();
    EXPECT_TRUE(search.rows().empty());
    search.tick();
    search.close();
    const auto calls = Calls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls[0].substr(0, 20), "FindDevicesEx 0 50 1");
    EXPECT_EQ(calls[1].substr(0, 20), "FindDevicesEx 0 50 0");
    EXPECT_EQ(calls[2].substr(0, 29), "GetDeviceInfo 0 255 255 255 =");
    EXPECT_EQ(calls.back().substr(0, 20), "FindDevicesEx 0 50 0");
    ASSERT_EQ(search.rows().size(), 1u);
    EXPECT_EQ(search.rows()[0].Path, "KORV-10-001");
}

TEST_F(Recorded, StartUpConnectionOpensThePathWithoutItsPrefixAndSwitchesHvOn) {
    Load(Model10("HVOnAtPowerUp=0\n"));
    AutoConnect auto_(*m_lib, *m_doc, m_messages, ConnectionHooks{});
    auto_.start("USB:KORV-10-001", true);
    auto_.tick();
    ASSERT_TRUE(m_doc->bConnected);
    EXPECT_EQ(auto_.label(), "Connecting to KORV-10-001");
    EXPECT_FALSE(auto_.timerEnabled());
    EXPECT_FALSE(auto_.windowOpen());
    const auto calls = Calls();
    EXPECT_EQ(calls.front(), "OpenDevice KORV-10-001 = 0");
    EXPECT_EQ(Ops().back(), "SetParam 22");
    EXPECT_EQ(Written(22), std::vector<int32_t>{1});
    EXPECT_EQ(m_doc->lHVOn, 1);
}

// ---------------------------------------------------------------------------------------
// Texts.

TEST(VerifyTexts, ErrorTextsOutsideTheTableAreEmpty) {
    EXPECT_EQ(ErrorText(-17), "");
    EXPECT_EQ(ErrorText(1), "");
    EXPECT_EQ(ErrorText(-3), "Invalid TPC/IP socket");
    EXPECT_EQ(ErrorText(-2), ErrorText(-1));
}

TEST(VerifyTexts, PresetTextIsClearedForAModeWithoutTimeOrCountsBits) {
    vexo::test::SimSession sim;
    ASSERT_TRUE(sim.open());
    AcquisitionController acq(*sim.lib, *sim.doc, sim.rois, sim.messages);
    sim.doc->sngPresetTime = 5.0f;
    sim.doc->lPresetCounts = 1000;
    sim.doc->lPresetMode = 2;
    ASSERT_TRUE(acq.DisplayStatus());
    EXPECT_EQ(acq.panelTexts().preset, "Real Time = 5 sec");
    for (int32_t mode : {8, 9, 0, 6}) {
        sim.doc->lPresetMode = 3;
        ASSERT_TRUE(acq.DisplayStatus());
        EXPECT_EQ(acq.panelTexts().preset, "Live Time = 5 sec");
        sim.doc->lPresetMode = mode;
        ASSERT_TRUE(acq.DisplayStatus());
        EXPECT_EQ(acq.panelTexts().preset, "") << "mode " << mode;
    }
}

TEST(VerifyTexts, StatusBarDuringABatchMeasurement) {
    vexo::test::SimDeviceSpec spec;
    spec.hvRampSeconds = 0.0;
    vexo::test::SimSession sim(spec);
    ASSERT_TRUE(sim.open());
    SpectrumDocument& d = *sim.doc;
    d.lPresetMode = 3;
    d.sngPresetTime = 2.0f;
    WriteAllParams(*sim.lib, d);
    AcquisitionController acq(*sim.lib, d, sim.rois, sim.messages);
    TempDir out;
    BatchController batch(acq, out.path().string());
    BatchSettings s;
    s.szBatchDir = out.path().string();
    s.nBatchCount = 1;
    acq.clear();
    batch.begin(s);
    EXPECT_EQ(batch.panelTexts().batch, "BATCH ON");
    EXPECT_EQ(batch.panelTexts().counter, "Acq. done: 0 of 1");
    acq.tick();
    const AcquisitionPanelTexts& t = acq.panelTexts();
    EXPECT_EQ(t.status, "(Batch) Acquiring");
    EXPECT_EQ(t.preset, "Live Time = 2 sec");
    const std::regex elapsed(
        R"(Elapsed time \(seconds\): \d+\.\d live, \d+\.\d real \(\d+\.\d\d% dead\))");
    EXPECT_TRUE(std::regex_match(t.elapsed, elapsed)) << t.elapsed;
    EXPECT_TRUE(std::regex_match(t.countRate, std::regex(R"(\d+\.\d cps)"))) << t.countRate;
    EXPECT_TRUE(std::regex_match(t.icr, std::regex(R"(ICR \d+\.\d cps)"))) << t.icr;
    for (int i = 0; i < 100 && batch.bBatchMode(); ++i)
        acq.tick();
    EXPECT_FALSE(batch.bBatchMode());
    EXPECT_TRUE(fs::exists(out / "Vexo_0001.SPE"));
    EXPECT_EQ(batch.panelTexts().batch, "BATCH OFF");
    EXPECT_EQ(batch.panelTexts().counter, "");
    acq.tick();
    EXPECT_EQ(acq.panelTexts().status, "Stopped");
    EXPECT_TRUE(sim.messages.shown().empty());
}

TEST(VerifyTexts, StopDuringABatchAsksFirst) {
    vexo::test::SimSession sim;
    ASSERT_TRUE(sim.open());
    AcquisitionController acq(*sim.lib, *sim.doc, sim.rois, sim.messages);
    TempDir out;
    BatchController batch(acq, out.path().string());
    BatchSettings s;
    s.szBatchDir = out.path().string();
    s.nBatchCount = 5;
    batch.begin(s);
    sim.messages.clear();
    sim.messages.queueAnswer(MsgAnswer::Cancel);
    EXPECT_FALSE(acq.stop());
    ASSERT_EQ(sim.messages.shown().size(), 1u);
    const Message& q = sim.messages.shown()[0];
    EXPECT_EQ(q.title, "Stop Batch Acquisition");
    EXPECT_EQ(
        q.text,
        "You're under batch mode\r\nStop will abort the Batch sequence\r\nDo you want to Stop?");
    EXPECT_EQ(q.icon, MsgIcon::Exclamation);
    EXPECT_EQ(q.buttons, MsgButtons::OkCancel);
    EXPECT_TRUE(batch.bBatchMode());
    sim.messages.queueAnswer(MsgAnswer::Ok);
    EXPECT_TRUE(acq.stop());
    EXPECT_FALSE(batch.bBatchMode());
    EXPECT_FALSE(acq.bAcqActive());
    EXPECT_EQ(batch.nBatchIndex(), 0);
}

TEST(VerifyTexts, BatchWithoutADeviceSaysSo) {
    vexo::test::SimSession sim;
    AcquisitionController acq(*sim.lib, *sim.doc, sim.rois, sim.messages);
    TempDir out;
    BatchController batch(acq, out.path().string());
    BatchSettings s;
    s.szBatchDir = out.path().string();
    batch.begin(s);
    ASSERT_EQ(sim.messages.shown().size(), 1u);
    EXPECT_EQ(sim.messages.shown()[0].title, "Batch Error");
    EXPECT_EQ(sim.messages.shown()[0].text, "No MCA connection");
    EXPECT_EQ(sim.messages.shown()[0].icon, MsgIcon::Exclamation);
}

TEST(VerifyTexts, BatchFileNamesForEveryChoice) {
    const double at = SerialFromParts({2024, 1, 31, 14, 25, 1});
    const std::string sep(1, static_cast<char>(fs::path::preferred_separator));
    for (int mask = 0; mask < 8; ++mask) {
        BatchSettings s;
        s.szBatchDir = "folder";
        s.bNameSampleID = mask & 1;
        s.bNameTimeDate = mask & 2;
        s.bNameTag = mask & 4;
        s.szBatchTag = "lab";
        std::string expected = "folder" + sep + ((mask & 1) ? "S17_" : "Vexo_");
        if (mask & 2)
            expected += "20240131_142501_";
        if (mask & 4)
            expected += "lab_";
        expected += "0003.SPE";
        EXPECT_EQ(BatchFileName(s, "S17", 3, at), expected) << "mask " << mask;
    }
}

TEST(VerifyTexts, BatchWindowMessages) {
    TempDir dir;
    BatchWindowFields f;
    f.folder = dir.path().string();
    f.count = "3";
    f.wait = "0";
    EXPECT_FALSE(ValidateBatchStart(f));
    f.folder = "";
    auto e = ValidateBatchStart(f);
    ASSERT_TRUE(e);
    EXPECT_EQ(e->message,
              "Please enter an existing subdirectory to store the spectra of the Batch");
    f.folder = (dir.path() / "missing").string();
    e = ValidateBatchStart(f);
    ASSERT_TRUE(e);
    EXPECT_EQ(e->message, "Sub-directory not found");
    e = ValidateBatchField(BatchField::Folder, f);
    ASSERT_TRUE(e);
    EXPECT_EQ(e->message,
              "Please enter an existing subdirectory to store the spectra of the Batch");
    f.folder = dir.path().string();
    f.count = "";
    e = ValidateBatchStart(f);
    ASSERT_TRUE(e);
    EXPECT_EQ(e->message, "Please enter a value for the number of measurements in the Batch");
    f.count = "2";
    f.waitChecked = true;
    f.wait = "";
    e = ValidateBatchStart(f);
    ASSERT_TRUE(e);
    EXPECT_EQ(
        e->message,
        "Please enter a value for the waiting interval time between measurements in the Batch");
    EXPECT_STREQ(kBatchSettingsTitle, "Batch Settings");
}

TEST(VerifyTexts, ProcessingPlaceholders) {
    const double at = SerialFromParts({2024, 11, 7, 14, 5, 9});
    ProcessSettings p;
    p.bEnableExtProcessing = true;
    p.szDataDir = "/data";
    p.szFileName = "run_%T_%T";
    p.szProgram = "prog";
    p.szArguments = "-i %D%F %F";
    ProcessPlan plan = PlanProcessing(p, "/opt/vexo", at);
    EXPECT_EQ(plan.fileName, "run_20241107_140509_20241107_140509.spe");
    EXPECT_EQ(plan.dataFolder, "/data/");
    EXPECT_EQ(plan.arguments, "-i /data/" + plan.fileName + " " + plan.fileName);
    EXPECT_EQ(plan.workingFolder, "/opt/vexo");
    EXPECT_EQ(plan.commandLine, "prog " + plan.arguments);
    p.szFileName = "sample.v1";
    p.szStartupDir = "%Dwork";
    plan = PlanProcessing(p, "/opt/vexo", at);
    EXPECT_EQ(plan.fileName, "sample.v1");
    EXPECT_EQ(plan.workingFolder, "/data/work");
    p.szFileName = "";
    p.szDataDir = "";
    plan = PlanProcessing(p, "/opt/vexo", at);
    EXPECT_EQ(plan.fileName, "20241107_140509.spe");
    EXPECT_EQ(plan.spectrumPath, "/opt/vexo/20241107_140509.spe");
    // Placeholders match case-sensitively.
    p.szFileName = "x%t";
    EXPECT_EQ(PlanProcessing(p, "/opt/vexo", at).fileName, "x%t.spe");
}

// ---------------------------------------------------------------------------------------
// The command-line tool on the simulated analyser.

namespace {

int RunCli(const fs::path& dir, const std::string& config, const std::string& args,
           std::string* err = nullptr) {
    WriteBytes(dir / "sim.ini", "[Simulator]\nSeed=5\nClock=step\nStepSeconds=0.5\nSettingsDir=" +
                                    (dir / "settings").string() + "\n\n" + config);
    const std::string cmd = "VEXO_TICK_MS=0 VEXO_SIM_CONFIG='" + (dir / "sim.ini").string() +
                            "' VEXO_DEVICE_LIBRARY='" + SimulatorPath().string() +
                            "' timeout 60 '" + (BinDir() / "vexo-cli").string() + "' " + args +
                            " >'" + (dir / "out.txt").string() + "' 2>'" +
                            (dir / "err.txt").string() + "'";
    const int status = std::system(cmd.c_str());
    if (err)
        *err = vexo::test::ReadBytes(dir / "err.txt");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

TEST(VerifyCli, CountsPresetOnAnAnalyserWithoutOneIsRefusedInsteadOfRunningForever) {
    TempDir dir;
    std::string err;
    const int rc = RunCli(dir.path(), Model06(),
                          "acquire --device HID:KORV-06-003 --preset counts:1000:0:1023 --out '" +
                              (dir / "k.spe").string() + "'",
                          &err);
    EXPECT_EQ(rc, 1) << err;
    EXPECT_NE(err.find("no counts preset"), std::string::npos) << err;
    EXPECT_FALSE(fs::exists(dir / "k.spe"));
    // The time presets of its legacy word work.
    EXPECT_EQ(RunCli(dir.path(), Model06(),
                     "acquire --device HID:KORV-06-003 --preset live:3 --out '" +
                         (dir / "t.spe").string() + "'",
                     &err),
              0)
        << err;
    EXPECT_TRUE(fs::exists(dir / "t.spe"));
}

TEST(VerifyCli, BatchNamesFilesFromEveryChoice) {
    TempDir dir;
    fs::create_directories(dir / "out");
    std::string err;
    const int rc = RunCli(dir.path(), Model10(),
                          "batch --device USB:KORV-10-001 --preset real:1 --count 2 --clear "
                          "--sample-id S17 --tag lab --dir '" +
                              (dir / "out").string() + "/'",
                          &err);
    ASSERT_EQ(rc, 0) << err;
    EXPECT_TRUE(fs::exists(dir / "out" / "S17_lab_0001.SPE"));
    EXPECT_TRUE(fs::exists(dir / "out" / "S17_lab_0002.SPE"));
    const std::string out = vexo::test::ReadBytes(dir / "out.txt");
    EXPECT_EQ(out.find("//"), std::string::npos) << out; // no second separator
    // The batch window's messages for a missing folder.
    EXPECT_EQ(RunCli(dir.path(), Model10(),
                     "batch --device USB:KORV-10-001 --preset real:1 --count 2 --dir '" +
                         (dir / "nowhere").string() + "'",
                     &err),
              2);
    EXPECT_NE(err.find("Sub-directory not found"), std::string::npos) << err;
}
