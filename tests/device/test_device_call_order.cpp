// The exact order of the device-library calls the program makes, logged by the
// pass-through library in recorder/ in front of the simulated analyser.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "SimAnalyser.h"
#include "device/AcquisitionController.h"
#include "device/ConnectionController.h"
#include "device/DeviceIO.h"
#include "device/DeviceSearch.h"
#include "device/ScopeController.h"

namespace vexo::test {
namespace {

using Ops = std::vector<std::string>;

std::filesystem::path RecorderPath() {
    return BinDir() / "libKorvhwRecorder.so";
}

// "GetParam" or "SetParam" with each id.
Ops Params(const char* op, std::initializer_list<int> ids) {
    Ops v;
    for (int id : ids)
        v.push_back(std::string(op) + " " + std::to_string(id));
    return v;
}

Ops Join(std::initializer_list<Ops> parts) {
    Ops all;
    for (const auto& p : parts)
        all.insert(all.end(), p.begin(), p.end());
    return all;
}

class CallOrder : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(RecorderPath()))
            GTEST_SKIP() << "recorder library not built";
    }
    // The simulator behind the recorder, with `devices`; opens `path` when given.
    void Load(const std::string& devices, const std::string& path = "") {
        m_sim = std::make_unique<SimAnalyser>(devices, RecorderPath());
        if (!path.empty()) {
            ASSERT_TRUE(m_sim->open(path));
        }
    }
    // Every logged call since the last Forget().
    Ops Calls() const {
        Ops lines;
        std::ifstream in(m_log.path() / "calls.log");
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        return lines;
    }
    // The calls reduced to operation and id ("GetParam 6", "ReadSpectrum").
    Ops Operations() const {
        Ops ops;
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
    // The 32-bit values written to `id`, in order (-1 for a longer buffer).
    std::vector<int32_t> Written(int id) const {
        std::vector<int32_t> values;
        for (const std::string& line : Calls()) {
            std::istringstream s(line);
            std::string op, value;
            int i = -1;
            s >> op >> i >> value;
            if (op == "SetParam" && i == id)
                values.push_back(value.rfind("size", 0) == 0 ? -1 : std::stoi(value));
        }
        return values;
    }
    void Forget() { std::filesystem::remove(m_log.path() / "calls.log"); }
    DeviceLibrary& lib() { return *m_sim->lib; }
    SpectrumDocument& doc() { return *m_sim->doc; }

    TempDir m_log;
    ScopedEnv m_target{"VEXO_RECORDER_TARGET", SimLibraryPath().string()};
    ScopedEnv m_logFile{"VEXO_RECORDER_LOG", (m_log / "calls.log").string()};
    std::unique_ptr<SimAnalyser> m_sim;
};

TEST_F(CallOrder, OpenReadsIdentityThenEveryParameterInTheFixedOrder) {
    Load(Model10(), "KORV-10-001");
    EXPECT_EQ(Operations(),
              Join({{"OpenDevice", "SetParam 23"},
                    Params("GetParam", {0, 1, 4, 2, 3}),
                    Params("GetParam", {6, 5, 30, 35, 39, 40, 41, 36, 50, 48, 49, 51,
                                        9, 9, 28, 13, 14, 12, 15, 16, 17, 18, 7,  8,
                                        7, 8, 31, 32, 11, 19, 20, 21, 22, 25, 42, 44})}));
    EXPECT_EQ(Written(23), std::vector<int32_t>{256});
    EXPECT_EQ(Calls()[0], "OpenDevice KORV-10-001 = 0");
    EXPECT_TRUE(m_sim->messages.shown().empty());
}

TEST_F(CallOrder, ReadAllOfAnOldModelTakesTheLegacyRoutes) {
    Load(Model06(), "KORV-06-003");
    // No id 30: the legacy word 10; no id 48: the legacy switch 34; no window reads.
    EXPECT_EQ(Operations(), Join({{"OpenDevice", "SetParam 23"},
                                  Params("GetParam", {0, 1, 4, 2, 3}),
                                  Params("GetParam", {6, 5, 30, 10, 35, 39, 40, 41, 36, 50, 48, 34,
                                                      9, 9, 28, 13, 14, 12, 15, 16, 17, 18, 7,  8,
                                                      7, 8, 11, 19, 20, 21, 22, 25, 42, 44})}));
    EXPECT_EQ(doc().lCapabilities, 5 | 8);
    EXPECT_NE(doc().lPresetMode & 2, 0);
    EXPECT_EQ(doc().lClockHz, 25000000);
    EXPECT_FLOAT_EQ(doc().sngMaxHV, 1500.0f);
}

TEST_F(CallOrder, WriteAllSendsEveryParameterInTheFixedOrder) {
    Load(Model10(), "KORV-10-001");
    Forget();
    SpectrumDocument& d = doc();
    d.lLLD = 20;
    d.lULD = 1000;
    d.lGPIO1Func = 10;
    d.bGPIO1Neg = 1;
    WriteAllParams(lib(), d);
    // Then the GPIO lines with the preset word again, and the HV inhibit input last.
    EXPECT_EQ(Operations(),
              Params("SetParam", {6, 26, 5,  30, 28, 31, 32, 13, 14, 12, 15, 16, 17, 18, 9,  7,
                                  8, 11, 19, 20, 21, 22, 25, 41, 36, 39, 40, 50, 48, 49, 30, 51}));
    EXPECT_EQ(Written(7), std::vector<int32_t>{20});
    EXPECT_EQ(Written(8), std::vector<int32_t>{1000});
    EXPECT_EQ(Written(48), std::vector<int32_t>{static_cast<int32_t>(0xFFFF800A)});
    EXPECT_EQ(Written(6), Written(26));
    EXPECT_EQ(Written(25), std::vector<int32_t>{-1}); // 12 bytes
}

TEST_F(CallOrder, WithoutAWindowOfItsOwnTheCountsWindowPassesThroughLldUld) {
    Load(Model10("MissingIds=32\n"), "KORV-10-001");
    ASSERT_EQ(doc().lCapabilities & kCapPresetWindow, 0);
    // The failing window read falls back to the discriminators.
    const Ops reads = Operations();
    const auto at = std::find(reads.begin(), reads.end(), "GetParam 31");
    ASSERT_NE(at, reads.end());
    EXPECT_EQ(Ops(at, at + 5), Params("GetParam", {31, 32, 7, 8, 11}));
    EXPECT_EQ(doc().lPresetFirstCh, doc().lLLD);
    EXPECT_EQ(doc().lPresetLastCh, doc().lULD);
    Forget();
    SpectrumDocument& d = doc();
    d.lMCSMode = 1;
    d.lPresetFirstCh = 300;
    d.lPresetLastCh = 400;
    d.lSCALow = 100;
    d.lSCAHigh = 200;
    WriteAllParams(lib(), d);
    // Window first, then (MCS mode) the SCA window over it.
    EXPECT_EQ(Written(5), std::vector<int32_t>{1});
    EXPECT_EQ(Written(7), (std::vector<int32_t>{300, 100}));
    EXPECT_EQ(Written(8), (std::vector<int32_t>{400, 200}));
    const Ops ops = Operations();
    EXPECT_EQ(Ops(ops.begin(), ops.begin() + 7), Params("SetParam", {6, 26, 5, 30, 28, 7, 8}));
}

TEST_F(CallOrder, WriteAllOfAnOldModelSendsTheLegacyWord) {
    Load(Model06(), "KORV-06-003");
    Forget();
    doc().lGPIO1Func = 1;
    WriteAllParams(lib(), doc());
    EXPECT_EQ(Operations(), Params("SetParam", {6, 26, 5, 10, 13, 14, 12, 15, 16, 17, 18,
                                                9, 7,  8, 11, 19, 20, 21, 22, 25, 34}));
}

TEST_F(CallOrder, RefreshTickPollsThenReads) {
    Load(Model10(), "KORV-10-001");
    AcquisitionController acq(lib(), doc(), m_sim->rois, m_sim->messages);
    acq.deviceConnected();
    const Ops poll = {"GetAcquisitionStatus", "GetParam 5", "GetParam 22"};
    Forget();
    acq.tick(); // stopped: the status poll, then one more status read
    EXPECT_EQ(Operations(), Join({poll, {"GetAcquisitionStatus"}}));
    ASSERT_TRUE(acq.start());
    Forget();
    acq.tick();
    EXPECT_EQ(Operations(), Join({poll, {"ReadSpectrum", "GetParam 35"}}));
    acq.stop();
    // MCS mode reads the current channel as well.
    doc().lMCSMode = 1;
    doc().sngDwellTime = 1.0f;
    WriteAllParams(lib(), doc());
    ASSERT_TRUE(acq.start());
    Forget();
    acq.tick();
    EXPECT_EQ(Operations(), Join({poll, {"ReadSpectrum", "GetParam 27", "GetParam 35"}}));
    EXPECT_TRUE(m_sim->messages.shown().empty());
}

TEST_F(CallOrder, ClearStopsClearsShowsAndRestartsARunningAcquisition) {
    Load(Model10(), "KORV-10-001");
    AcquisitionController acq(lib(), doc(), m_sim->rois, m_sim->messages);
    acq.deviceConnected();
    ASSERT_TRUE(acq.start());
    acq.tick();
    Forget();
    acq.clear();
    Ops ops = Operations();
    ASSERT_GE(ops.size(), 3u);
    EXPECT_EQ(Ops(ops.begin(), ops.begin() + 2), (Ops{"StopAcquisition", "ClearAll"}));
    EXPECT_EQ(ops.back(), "StartAcquisition");
    EXPECT_TRUE(acq.bAcqActive());
    EXPECT_FALSE(acq.bCleared());
    // While stopped the clear does not restart.
    acq.stop();
    Forget();
    acq.clear();
    ops = Operations();
    EXPECT_EQ(std::count(ops.begin(), ops.end(), "StartAcquisition"), 0);
    EXPECT_TRUE(acq.bCleared());
}

TEST_F(CallOrder, ScopeCycleSelectsPollsReadsAndRearms) {
    Load(Model10(), "KORV-10-001");
    ScopeController scope(lib(), doc());
    scope.setSource(ScopeSource::Input);
    // The simulator is armed at open and ready after 0.1 simulated s (a status poll).
    int32_t status = 0;
    lib().getAcquisitionStatus(doc().hDevice, status);
    Forget();
    ASSERT_TRUE(scope.DisplayWaveform());
    EXPECT_EQ(Operations(), (Ops{"SetParam 24", "GetScopeStatus", "ReadScope", "ArmScope"}));
    EXPECT_EQ(Written(24), std::vector<int32_t>{7});
    Forget();
    scope.setSource(ScopeSource::Filtered);
    EXPECT_FALSE(scope.DisplayWaveform()); // just re-armed: nothing ready
    EXPECT_EQ(Operations(), (Ops{"SetParam 24", "GetScopeStatus"}));
    EXPECT_EQ(Written(24), std::vector<int32_t>{0});
}

TEST_F(CallOrder, SearchRestartsOnceReadsOneTickBehindAndStopsOnClose) {
    Load(Model10());
    DeviceSearch search(lib());
    search.tick();
    EXPECT_TRUE(search.rows().empty());
    search.tick();
    search.close();
    const Ops calls = Calls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls[0].substr(0, 20), "FindDevicesEx 0 50 1");
    EXPECT_EQ(calls[1].substr(0, 20), "FindDevicesEx 0 50 0");
    EXPECT_EQ(calls[2].substr(0, 29), "GetDeviceInfo 0 255 255 255 =");
    EXPECT_EQ(calls.back().substr(0, 20), "FindDevicesEx 0 50 0");
    ASSERT_EQ(search.rows().size(), 1u);
    EXPECT_EQ(search.rows()[0].Path, "KORV-10-001");
}

TEST_F(CallOrder, StartUpConnectionOpensThePathWithoutItsPrefixAndSwitchesHvOn) {
    Load(Model10("HVOnAtPowerUp=0\n"));
    AutoConnect autoConnect(lib(), doc(), m_sim->messages, ConnectionHooks{});
    autoConnect.start("USB:KORV-10-001", true);
    autoConnect.tick();
    ASSERT_TRUE(doc().bConnected);
    EXPECT_EQ(Calls().front(), "OpenDevice KORV-10-001 = 0");
    EXPECT_EQ(Operations().back(), "SetParam 22");
    EXPECT_EQ(Written(22), std::vector<int32_t>{1});
    EXPECT_EQ(doc().lHVOn, 1);
}

} // namespace
} // namespace vexo::test
