// Discovery and connection against the simulated analyser: the device list's one-tick
// lag, Open on an empty list, the Connect/Disconnect commands with the remembered
// detector path, and the start-up connection's retries, cancel and HV switch-on.
#include <gtest/gtest.h>

#include <vector>

#include "SimAnalyser.h"
#include "base/Messages.h"
#include "device/ConnectionController.h"
#include "device/DeviceSearch.h"
#include "shell/AppSettings.h"

namespace vexo {
namespace {

// Records what the connection asks of the main window.
struct HookLog {
    std::vector<int> refreshCodes;
    std::vector<bool> refreshTimer;
    int settingsRefreshes = 0;
    int spectrumRefreshes = 0;
    int windowsClosed = 0;

    ConnectionHooks hooks() {
        ConnectionHooks h;
        h.refreshMainWindow = [this](RefreshCode code) {
            refreshCodes.push_back(static_cast<int>(code));
        };
        h.setRefreshTimer = [this](bool on) { refreshTimer.push_back(on); };
        h.refreshSettingsControls = [this] { ++settingsRefreshes; };
        h.displaySpectrumAndStatus = [this] { ++spectrumRefreshes; };
        h.closeDeviceWindows = [this] { ++windowsClosed; };
        return h;
    }
};

class ConnectionTest : public ::testing::Test {
protected:
    // The main window's hooks: Connect remembers the detector in the settings file.
    ConnectionHooks connectionHooks() {
        ConnectionHooks h = m_log.hooks();
        h.rememberDetector = [this](const std::string& path) {
            RememberDetector(m_settings, path, m_sim.dir(), m_messages);
        };
        return h;
    }
    // The start-up connection to `detector` (ApplyHV as given), after its first tick.
    std::unique_ptr<AutoConnect> StartUp(const std::string& devices, const std::string& detector,
                                         bool applyHV = false) {
        m_sim.write(devices);
        auto autoConnect = std::make_unique<AutoConnect>(lib, d, m_messages, m_log.hooks());
        autoConnect->start(detector, applyHV);
        autoConnect->tick();
        return autoConnect;
    }
    static DeviceChoice Choice(const std::string& path, int32_t type = 2) {
        return DeviceChoice{kDevicesOpen, path, "KORV MCA-10", type};
    }
    bool HandleClosed(int32_t handle) {
        int32_t status = 0;
        return lib.getAcquisitionStatus(handle, status) < 0;
    }

    test::SimAnalyser m_sim;
    SpectrumDocument& d = *m_sim.doc;
    DeviceLibrary& lib = *m_sim.lib;
    ScriptedMessages m_messages;
    HookLog m_log;
    AppSettings m_settings;
};

TEST_F(ConnectionTest, SearchListsDevicesOneTickBehindAndOpensTheChosenRow) {
    // Three devices, found one per FindDevicesEx call.
    m_sim.write(test::SimDevice(1, "10230417", "KORV-10-001", "Type=2") +
                test::SimDevice(2, "08190233", "192.168.0.42", "Name=KORV MCA-8\nType=3") +
                test::SimDevice(3, "06110108", "KORV-06-003", "Type=1"));
    {
        DeviceSearch search(lib);
        const std::size_t listedAfterTick[] = {0, 1, 2, 3, 3};
        const int32_t foundAtTick[] = {1, 2, 3, 3, 3};
        for (int tick = 0; tick < 5; ++tick) {
            EXPECT_EQ(search.tick(), foundAtTick[tick]) << "tick " << tick + 1;
            EXPECT_EQ(search.rows().size(), listedAfterTick[tick]) << "tick " << tick + 1;
        }
        ASSERT_EQ(search.rows().size(), 3u);
        const DeviceRow& eth = search.rows()[1];
        EXPECT_EQ(eth.No, 2);
        EXPECT_EQ(eth.Name + " " + eth.Path + " " + eth.Serial, "KORV MCA-8 192.168.0.42 08190233");
        EXPECT_EQ((std::array{search.rows()[0].Type, eth.Type, search.rows()[2].Type}),
                  (std::array{2, 3, 1}));
        ASSERT_TRUE(search.chooseOpen(1, m_messages));
        EXPECT_EQ(search.choice().result, kDevicesOpen);
        EXPECT_EQ(DetectorPathFor(search.choice().type, search.choice().path), "ETH:192.168.0.42");
        EXPECT_GE(search.close(), 0);
        EXPECT_TRUE(m_messages.shown().empty());
    }
    // A list opened again starts the search over: its first tick shows no device, and
    // Open on the empty list is refused.
    DeviceSearch again(lib);
    EXPECT_EQ(again.tick(), 1);
    EXPECT_TRUE(again.rows().empty());
    EXPECT_FALSE(again.chooseOpen(0, m_messages));
    ASSERT_EQ(m_messages.shown().size(), 1u);
    EXPECT_EQ(m_messages.shown()[0].title, "Vexo");
    EXPECT_EQ(m_messages.shown()[0].text,
              "The device list is empty, use the \"Search\" button to discover available "
              "devices.");
    EXPECT_EQ(m_messages.shown()[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(again.choice().result, kDevicesCancel);
}

TEST_F(ConnectionTest, ConnectStoresDetectorPathAndDisconnectCloses) {
    d.bFromFile = true;
    ConnectionController ctl(lib, d, m_messages, connectionHooks());
    EXPECT_FALSE(ctl.connect([] { return DeviceChoice{}; })); // the list was cancelled
    EXPECT_FALSE(std::filesystem::exists(SettingsFilePath(m_sim.dir())));
    int chooserCalls = 0;
    auto chooser = [&] { return ++chooserCalls, Choice("KORV-10-001"); };
    EXPECT_TRUE(ctl.connect(chooser));
    EXPECT_TRUE(d.bConnected);
    EXPECT_FALSE(d.bFromFile);
    EXPECT_EQ(d.szDeviceName + " " + d.szDeviceSerial, "KORV MCA-10 10230417");
    EXPECT_EQ(d.szDevicePath, "USB:KORV-10-001");
    EXPECT_EQ(m_settings.DetectorPath, "USB:KORV-10-001");
    EXPECT_EQ(m_log.refreshCodes, (std::vector<int>{1, 4}));
    EXPECT_EQ(m_log.refreshTimer, (std::vector<bool>{true}));
    EXPECT_EQ(m_log.settingsRefreshes, 1);
    EXPECT_EQ(m_log.spectrumRefreshes, 1);
    EXPECT_TRUE(m_messages.shown().empty());

    // The settings file now remembers the detector.
    AppSettings reloaded;
    ScriptedMessages loadMessages; // loading may remark on the missing report styles
    ASSERT_TRUE(LoadSettings(reloaded, m_sim.dir(), loadMessages));
    EXPECT_EQ(reloaded.DetectorPath, "USB:KORV-10-001");

    // A second Connect is refused before the list is shown.
    EXPECT_TRUE(ctl.connect(chooser));
    EXPECT_EQ(chooserCalls, 1);
    ASSERT_EQ(m_messages.shown().size(), 1u);
    EXPECT_EQ(m_messages.shown()[0].text, "Already connected");
    EXPECT_EQ(m_messages.shown()[0].icon, MsgIcon::Exclamation);

    const int32_t handle = d.hDevice;
    ctl.disconnect();
    EXPECT_EQ(d.hDevice, 0);
    EXPECT_FALSE(d.bConnected);
    EXPECT_EQ(m_log.windowsClosed, 1);
    EXPECT_EQ(m_log.refreshTimer.back(), false);
    EXPECT_EQ(m_log.refreshCodes.back(), 0);
    EXPECT_TRUE(HandleClosed(handle));
    EXPECT_FALSE(ctl.deviceInfo());
    EXPECT_EQ(m_messages.shown().back().text, "Not connected");
    // Exit closes the device, and does nothing when none is open.
    ASSERT_TRUE(ctl.connect([] { return Choice("USB:KORV-10-001"); }));
    const int32_t second = d.hDevice;
    ctl.exit();
    ctl.exit();
    EXPECT_EQ(d.hDevice, 0);
    EXPECT_TRUE(HandleClosed(second));
}

TEST_F(ConnectionTest, FailedOpenIsReportedByConnectOnlyAndRemembersNothing) {
    m_sim.write(test::Model10("OpenFailures=2"));
    OpenMca(lib, d, m_messages, m_log.hooks(), "KORV-10-001", "", false);
    EXPECT_FALSE(d.bConnected);
    EXPECT_TRUE(m_messages.shown().empty());
    EXPECT_TRUE(m_log.refreshCodes.empty() && m_log.refreshTimer.empty());

    ConnectionController ctl(lib, d, m_messages, connectionHooks());
    m_settings.DetectorPath = "ETH:old";
    EXPECT_FALSE(ctl.connect([] { return Choice("KORV-10-001"); }));
    ASSERT_EQ(m_messages.shown().size(), 1u);
    EXPECT_EQ(m_messages.shown()[0].text, "Could not open MCA: Connection failed");
    EXPECT_EQ(m_messages.shown()[0].icon, MsgIcon::Critical);
    EXPECT_EQ(m_settings.DetectorPath, "ETH:old");
    EXPECT_EQ(d.hDevice, 0);
    // The device answers the next time; a type without a prefix remembers an empty path.
    EXPECT_TRUE(ctl.connect([] { return Choice("KORV-10-001", 7); }));
    EXPECT_EQ(m_settings.DetectorPath, "");
    EXPECT_EQ(d.szDevicePath, "KORV-10-001");
}

TEST_F(ConnectionTest, AutoConnectRetriesUntilTheDeviceOpens) {
    auto autoConnect = StartUp(test::Model10("OpenFailures=3\nHVOnAtPowerUp=0"), "USB:KORV-10-001");
    for (int attempt = 1; attempt <= 3; ++attempt) {
        EXPECT_FALSE(d.bConnected) << attempt;
        EXPECT_TRUE(autoConnect->timerEnabled() && autoConnect->windowOpen());
        EXPECT_EQ(autoConnect->progress(), attempt);
        EXPECT_EQ(autoConnect->label(), "Connecting to KORV-10-001");
        autoConnect->tick();
    }
    EXPECT_TRUE(d.bConnected);
    EXPECT_EQ(autoConnect->attempts(), 4);
    EXPECT_FALSE(autoConnect->timerEnabled());
    EXPECT_FALSE(autoConnect->windowOpen());
    EXPECT_TRUE(m_messages.shown().empty()); // the start-up path never reports a failure
    EXPECT_EQ(d.szDevicePath, "USB:KORV-10-001");
    EXPECT_EQ(d.lHVOn & kHVOn, 0); // ApplyHV is off
    autoConnect->tick();           // the timer is off: nothing more happens
    EXPECT_EQ(autoConnect->attempts(), 4);
}

TEST_F(ConnectionTest, AutoConnectProgressCyclesAndCancelStopsAtTheNextTick) {
    auto autoConnect = StartUp(test::Model10("OpenFailures=1000"), "USB:KORV-10-001");
    for (int i = 1; i < 9; ++i)
        autoConnect->tick();
    EXPECT_EQ(autoConnect->progress(), 9);
    autoConnect->tick();
    EXPECT_EQ(autoConnect->progress(), 0);
    autoConnect->cancel();
    EXPECT_TRUE(autoConnect->cancelled());
    EXPECT_TRUE(autoConnect->timerEnabled());
    autoConnect->tick();
    EXPECT_FALSE(autoConnect->timerEnabled());
    EXPECT_EQ(autoConnect->attempts(), 10);
    EXPECT_FALSE(d.bConnected);
}

TEST_F(ConnectionTest, UnusableDetectorPathClosesTheWindowAtOnce) {
    for (const char* remembered : {"USB:", "usb:KORV-10-001", "", "KORV-10-001"}) {
        auto autoConnect = StartUp(test::Model10(), remembered);
        EXPECT_FALSE(autoConnect->windowOpen()) << remembered;
        EXPECT_FALSE(autoConnect->timerEnabled()) << remembered;
        EXPECT_EQ(autoConnect->attempts(), 0) << remembered;
        EXPECT_FALSE(d.bConnected);
    }
}

TEST_F(ConnectionTest, AutoConnectSwitchesHighVoltageOnWhenAsked) {
    auto autoConnect = StartUp(test::Model10("HVOnAtPowerUp=0"), "USB:KORV-10-001", true);
    ASSERT_TRUE(d.bConnected);
    EXPECT_EQ(d.lHVOn, 1);
    int32_t hv = 0;
    ASSERT_EQ(lib.getParam(d.hDevice, DeviceParamId::HVState, hv), 0);
    EXPECT_NE(hv & kHVOn, 0);
    EXPECT_EQ(m_log.settingsRefreshes, 2); // after opening and after the HV switch
    EXPECT_TRUE(m_messages.shown().empty());
}

TEST_F(ConnectionTest, HighVoltageFailureIsShownAndTheDeviceStaysConnected) {
    auto autoConnect = StartUp(test::Model10("FailParam=22:-16"), "USB:KORV-10-001", true);
    EXPECT_TRUE(d.bConnected);
    ASSERT_EQ(m_messages.shown().size(), 1u);
    EXPECT_EQ(m_messages.shown()[0].text, "Failed to turn High Voltage ON: Parameter out of range");
    EXPECT_EQ(m_messages.shown()[0].title, "Vexo");
    EXPECT_EQ(m_messages.shown()[0].icon, MsgIcon::Critical);
    EXPECT_EQ(m_log.settingsRefreshes, 1); // only the refresh after opening
    EXPECT_FALSE(autoConnect->timerEnabled());
}

} // namespace
} // namespace vexo
