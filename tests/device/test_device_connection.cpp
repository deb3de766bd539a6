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

// Three devices, found one per FindDevicesEx call.
std::string ThreeDevices() {
    return test::SimDevice(1, "10230417", "KORV-10-001", "Type=2") +
           test::SimDevice(2, "08190233", "192.168.0.42", "Name=KORV MCA-8\nType=3") +
           test::SimDevice(3, "06110108", "KORV-06-003", "Type=1");
}

// Records what the connection asks of the main window.
struct HookLog {
    std::vector<int> refreshCodes;
    std::vector<bool> refreshTimer;
    int settingsRefreshes = 0;
    int spectrumRefreshes = 0;
    int windowsClosed = 0;

    ConnectionHooks hooks() {
        ConnectionHooks h;
        h.refreshMainWindow = [this](int code) { refreshCodes.push_back(code); };
        h.setRefreshTimer = [this](bool on) { refreshTimer.push_back(on); };
        h.refreshSettingsControls = [this] { ++settingsRefreshes; };
        h.displaySpectrumAndStatus = [this] { ++spectrumRefreshes; };
        h.closeDeviceWindows = [this] { ++windowsClosed; };
        return h;
    }
};

class ConnectionTest : public ::testing::Test {
protected:
    DeviceLibrary& Load(const std::string& devices) {
        m_sim.write(devices);
        return *m_sim.lib;
    }

    test::SimAnalyser m_sim;
    ScriptedMessages m_messages;
    HookLog m_log;
    AppSettings m_settings;

    // The main window's hooks: Connect remembers the detector in the settings file.
    ConnectionHooks connectionHooks() {
        ConnectionHooks h = m_log.hooks();
        h.rememberDetector = [this](const std::string& path) {
            RememberDetector(m_settings, path, m_sim.dir(), m_messages);
        };
        return h;
    }
};

TEST_F(ConnectionTest, SearchListsDevicesOneTickBehind) {
    DeviceLibrary& lib = Load(ThreeDevices());
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
    EXPECT_EQ(eth.Name, "KORV MCA-8");
    EXPECT_EQ(eth.Path, "192.168.0.42");
    EXPECT_EQ(eth.Serial, "08190233");
    EXPECT_EQ(eth.Type, 3);
    EXPECT_EQ(search.rows()[2].Type, 1);
    EXPECT_EQ(search.rows()[0].No, 1);

    ASSERT_TRUE(search.chooseOpen(1, m_messages));
    EXPECT_EQ(search.choice().result, kDevicesOpen);
    EXPECT_EQ(search.choice().path, "192.168.0.42");
    EXPECT_EQ(search.choice().type, 3);
    EXPECT_EQ(DetectorPathFor(search.choice().type, search.choice().path), "ETH:192.168.0.42");
    EXPECT_GE(search.close(), 0);
    EXPECT_TRUE(m_messages.shown().empty());
}

TEST_F(ConnectionTest, ReopenedListRestartsTheSearch) {
    DeviceLibrary& lib = Load(ThreeDevices());
    {
        DeviceSearch first(lib);
        for (int i = 0; i < 4; ++i)
            first.tick();
        first.close();
    }
    DeviceSearch second(lib);
    EXPECT_EQ(second.tick(), 1); // the restart flag starts over
    EXPECT_TRUE(second.rows().empty());
}

TEST_F(ConnectionTest, OpenOnAnEmptyListIsRefused) {
    DeviceLibrary& lib = Load(ThreeDevices());
    DeviceSearch search(lib);
    search.tick(); // the first tick never shows devices
    EXPECT_FALSE(search.chooseOpen(0, m_messages));
    ASSERT_EQ(m_messages.shown().size(), 1u);
    EXPECT_EQ(m_messages.shown()[0].title, "Vexo");
    EXPECT_EQ(m_messages.shown()[0].text,
              "The device list is empty, use the \"Search\" button to discover available "
              "devices.");
    EXPECT_EQ(m_messages.shown()[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(search.choice().result, kDevicesCancel);
}

TEST_F(ConnectionTest, ConnectStoresDetectorPathAndDisconnectCloses) {
    DeviceLibrary& lib = Load(ThreeDevices());
    m_sim.doc->bFromFile = true;
    ConnectionController ctl(lib, *m_sim.doc, m_messages, connectionHooks());
    int chooserCalls = 0;
    auto chooser = [&] {
        ++chooserCalls;
        DeviceChoice c;
        c.result = kDevicesOpen;
        c.path = "KORV-10-001";
        c.name = "KORV MCA-10";
        c.type = 2;
        return c;
    };
    EXPECT_TRUE(ctl.connect(chooser));
    EXPECT_TRUE(m_sim.doc->bConnected);
    EXPECT_NE(m_sim.doc->hDevice, 0);
    EXPECT_FALSE(m_sim.doc->bFromFile);
    EXPECT_EQ(m_sim.doc->szDeviceName, "KORV MCA-10");
    EXPECT_EQ(m_sim.doc->szDeviceSerial, "10230417");
    EXPECT_EQ(m_settings.DetectorPath, "USB:KORV-10-001");
    EXPECT_EQ(m_sim.doc->szDevicePath, "USB:KORV-10-001");
    EXPECT_EQ(m_log.refreshCodes, (std::vector<int>{kRefreshDeviceState, kRefreshConnection}));
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

    const int32_t handle = m_sim.doc->hDevice;
    ctl.disconnect();
    EXPECT_EQ(m_sim.doc->hDevice, 0);
    EXPECT_FALSE(m_sim.doc->bConnected);
    EXPECT_EQ(m_log.windowsClosed, 1);
    EXPECT_EQ(m_log.refreshTimer.back(), false);
    EXPECT_EQ(m_log.refreshCodes.back(), kRefreshAll);
    int32_t status = 0;
    EXPECT_LT(lib.getAcquisitionStatus(handle, status), 0); // the handle is gone

    EXPECT_FALSE(ctl.deviceInfo());
    EXPECT_EQ(m_messages.shown().back().text, "Not connected");
}

TEST_F(ConnectionTest, CancelledListOpensNothing) {
    DeviceLibrary& lib = Load(ThreeDevices());
    ConnectionController ctl(lib, *m_sim.doc, m_messages, connectionHooks());
    EXPECT_FALSE(ctl.connect([] { return DeviceChoice{}; }));
    EXPECT_EQ(m_sim.doc->hDevice, 0);
    EXPECT_TRUE(m_log.refreshCodes.empty());
    EXPECT_FALSE(std::filesystem::exists(SettingsFilePath(m_sim.dir())));
}

TEST_F(ConnectionTest, FailedOpenIsReportedByConnectOnly) {
    DeviceLibrary& lib = Load(test::Model10() + "OpenFailures=1\n");
    OpenMca(lib, *m_sim.doc, m_messages, m_log.hooks(), "KORV-10-001", "", false);
    EXPECT_FALSE(m_sim.doc->bConnected);
    EXPECT_TRUE(m_messages.shown().empty());

    OpenMca(lib, *m_sim.doc, m_messages, m_log.hooks(), "NO-SUCH-DEVICE", "", true);
    EXPECT_FALSE(m_sim.doc->bConnected);
    EXPECT_EQ(m_sim.doc->hDevice, 0);
    ASSERT_EQ(m_messages.shown().size(), 1u);
    EXPECT_EQ(m_messages.shown()[0].text.rfind("Could not open MCA: ", 0), 0u)
        << m_messages.shown()[0].text;
    EXPECT_GT(m_messages.shown()[0].text.size(), std::string("Could not open MCA: ").size());
    EXPECT_EQ(m_messages.shown()[0].icon, MsgIcon::Critical);
    EXPECT_TRUE(m_log.refreshCodes.empty());
    EXPECT_TRUE(m_log.refreshTimer.empty());
}

TEST_F(ConnectionTest, ConnectShowsTheOpenError) {
    DeviceLibrary& lib = Load(test::Model10() + "OpenFailures=1\n");
    ConnectionController ctl(lib, *m_sim.doc, m_messages, connectionHooks());
    m_settings.DetectorPath = "ETH:old";
    auto chooser = [] { return DeviceChoice{kDevicesOpen, "KORV-10-001", "KORV MCA-10", 2}; };
    EXPECT_FALSE(ctl.connect(chooser));
    ASSERT_EQ(m_messages.shown().size(), 1u);
    EXPECT_EQ(m_messages.shown()[0].text, "Could not open MCA: Connection failed");
    EXPECT_EQ(m_settings.DetectorPath, "ETH:old"); // nothing remembered on failure
    EXPECT_TRUE(ctl.connect(chooser));             // the device answers the next time
    EXPECT_EQ(m_settings.DetectorPath, "USB:KORV-10-001");
}

TEST_F(ConnectionTest, UnknownTypeRemembersAnEmptyPath) {
    DeviceLibrary& lib = Load(test::Model10());
    ConnectionController ctl(lib, *m_sim.doc, m_messages, connectionHooks());
    m_settings.DetectorPath = "USB:before";
    EXPECT_TRUE(ctl.connect([] { return DeviceChoice{kDevicesOpen, "KORV-10-001", "", 7}; }));
    EXPECT_EQ(m_settings.DetectorPath, "");
    EXPECT_EQ(m_sim.doc->szDevicePath, "KORV-10-001");
}

TEST_F(ConnectionTest, AutoConnectRetriesUntilTheDeviceOpens) {
    DeviceLibrary& lib = Load(test::Model10("OpenFailures=3\nHVOnAtPowerUp=0"));
    m_settings.DetectorPath = "USB:KORV-10-001";
    AutoConnect autoConnect(lib, *m_sim.doc, m_messages, m_log.hooks());
    autoConnect.start(m_settings.DetectorPath, m_settings.ApplyHV);
    EXPECT_TRUE(autoConnect.windowOpen());
    for (int attempt = 1; attempt <= 3; ++attempt) {
        autoConnect.tick();
        EXPECT_FALSE(m_sim.doc->bConnected) << attempt;
        EXPECT_TRUE(autoConnect.timerEnabled());
        EXPECT_EQ(autoConnect.progress(), attempt);
        EXPECT_EQ(autoConnect.label(), "Connecting to KORV-10-001");
    }
    autoConnect.tick();
    EXPECT_TRUE(m_sim.doc->bConnected);
    EXPECT_EQ(autoConnect.attempts(), 4);
    EXPECT_FALSE(autoConnect.timerEnabled());
    EXPECT_FALSE(autoConnect.windowOpen());
    EXPECT_TRUE(m_messages.shown().empty()); // the start-up path never reports a failure
    EXPECT_EQ(m_sim.doc->szDevicePath, "USB:KORV-10-001");
    EXPECT_EQ(m_sim.doc->lHVOn & kHVOn, 0); // ApplyHV is off
    autoConnect.tick();                     // the timer is off: nothing more happens
    EXPECT_EQ(autoConnect.attempts(), 4);
}

TEST_F(ConnectionTest, AutoConnectProgressCyclesThroughTenSteps) {
    DeviceLibrary& lib = Load(test::Model10() + "OpenFailures=1000\n");
    m_settings.DetectorPath = "USB:KORV-10-001";
    AutoConnect autoConnect(lib, *m_sim.doc, m_messages, m_log.hooks());
    autoConnect.start(m_settings.DetectorPath, m_settings.ApplyHV);
    for (int i = 0; i < 9; ++i)
        autoConnect.tick();
    EXPECT_EQ(autoConnect.progress(), 9);
    autoConnect.tick();
    EXPECT_EQ(autoConnect.progress(), 0);
    autoConnect.tick();
    EXPECT_EQ(autoConnect.progress(), 1);
    EXPECT_TRUE(autoConnect.timerEnabled());
}

TEST_F(ConnectionTest, CancelStopsTheRetriesAtTheNextTick) {
    DeviceLibrary& lib = Load(test::Model10() + "OpenFailures=1000\n");
    m_settings.DetectorPath = "USB:KORV-10-001";
    AutoConnect autoConnect(lib, *m_sim.doc, m_messages, m_log.hooks());
    autoConnect.start(m_settings.DetectorPath, m_settings.ApplyHV);
    autoConnect.tick();
    autoConnect.tick();
    autoConnect.cancel();
    EXPECT_TRUE(autoConnect.cancelled());
    EXPECT_TRUE(autoConnect.timerEnabled());
    autoConnect.tick();
    EXPECT_FALSE(autoConnect.timerEnabled());
    EXPECT_EQ(autoConnect.attempts(), 2);
    EXPECT_FALSE(m_sim.doc->bConnected);
}

TEST_F(ConnectionTest, UnusableDetectorPathClosesTheWindowAtOnce) {
    DeviceLibrary& lib = Load(test::Model10());
    for (const char* remembered : {"USB:", "usb:KORV-10-001", "", "KORV-10-001"}) {
        m_settings.DetectorPath = remembered;
        AutoConnect autoConnect(lib, *m_sim.doc, m_messages, m_log.hooks());
        autoConnect.start(m_settings.DetectorPath, m_settings.ApplyHV);
        autoConnect.tick();
        EXPECT_FALSE(autoConnect.windowOpen()) << remembered;
        EXPECT_FALSE(autoConnect.timerEnabled()) << remembered;
        EXPECT_EQ(autoConnect.attempts(), 0) << remembered;
        EXPECT_FALSE(m_sim.doc->bConnected);
    }
}

TEST_F(ConnectionTest, AutoConnectSwitchesHighVoltageOnWhenAsked) {
    DeviceLibrary& lib = Load(test::Model10("HVOnAtPowerUp=0"));
    m_settings.DetectorPath = "USB:KORV-10-001";
    m_settings.ApplyHV = true;
    AutoConnect autoConnect(lib, *m_sim.doc, m_messages, m_log.hooks());
    autoConnect.start(m_settings.DetectorPath, m_settings.ApplyHV);
    autoConnect.tick();
    ASSERT_TRUE(m_sim.doc->bConnected);
    EXPECT_EQ(m_sim.doc->lHVOn, 1);
    int32_t hv = 0;
    ASSERT_EQ(lib.getParam(m_sim.doc->hDevice, DeviceParamId::HVState, hv), 0);
    EXPECT_NE(hv & kHVOn, 0);
    EXPECT_EQ(m_log.settingsRefreshes, 2); // after opening and after the HV switch
    EXPECT_TRUE(m_messages.shown().empty());
}

TEST_F(ConnectionTest, HighVoltageFailureIsShownAndTheDeviceStaysConnected) {
    DeviceLibrary& lib = Load(test::Model10() + "FailParam=22:-16\n");
    m_settings.DetectorPath = "USB:KORV-10-001";
    m_settings.ApplyHV = true;
    AutoConnect autoConnect(lib, *m_sim.doc, m_messages, m_log.hooks());
    autoConnect.start(m_settings.DetectorPath, m_settings.ApplyHV);
    autoConnect.tick();
    EXPECT_TRUE(m_sim.doc->bConnected);
    ASSERT_EQ(m_messages.shown().size(), 1u);
    EXPECT_EQ(m_messages.shown()[0].text, "Failed to turn High Voltage ON: Parameter out of range");
    EXPECT_EQ(m_messages.shown()[0].title, "Vexo");
    EXPECT_EQ(m_messages.shown()[0].icon, MsgIcon::Critical);
    EXPECT_EQ(m_log.settingsRefreshes, 1); // only the refresh after opening
    EXPECT_FALSE(autoConnect.timerEnabled());
}

TEST_F(ConnectionTest, ExitClosesTheDevice) {
    DeviceLibrary& lib = Load(test::Model10());
    ConnectionController ctl(lib, *m_sim.doc, m_messages, connectionHooks());
    ASSERT_TRUE(ctl.connect([] { return DeviceChoice{kDevicesOpen, "USB:KORV-10-001", "", 2}; }));
    const int32_t handle = m_sim.doc->hDevice;
    ctl.exit();
    EXPECT_EQ(m_sim.doc->hDevice, 0);
    int32_t status = 0;
    EXPECT_LT(lib.getAcquisitionStatus(handle, status), 0);
    ctl.exit(); // nothing open: nothing to do
    EXPECT_TRUE(m_messages.shown().empty());
}

} // namespace
} // namespace vexo
