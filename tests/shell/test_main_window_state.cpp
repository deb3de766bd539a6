#include <gtest/gtest.h>

#include "shell/MainWindowState.h"

using namespace vexo;

namespace {

std::optional<bool> Enabled(const MainWindowUpdate& u, ToolButton b) {
    return u.button(b).enabled;
}

MainWindowFlags Connected() {
    MainWindowFlags f;
    f.connected = true;
    f.szDeviceName = "KORV-1";
    f.szDeviceSerial = "0042";
    return f;
}

const MenuItemState& Item(const std::vector<MenuItemState>& items, const std::string& key) {
    for (const MenuItemState& i : items)
        if (i.key == key)
            return i;
    throw std::runtime_error("no menu item " + key);
}

} // namespace

TEST(ToolButtonKeys, RoundTripEveryKey) {
    for (int i = 0; i < kToolButtonCount; ++i) {
        const auto b = static_cast<ToolButton>(i);
        EXPECT_EQ(ToolButtonFromKey(ToolButtonKey(b)), b);
    }
    EXPECT_EQ(ToolButtonKey(ToolButton::tbProcess), "tbProcess");
    EXPECT_FALSE(ToolButtonFromKey("tbconnect").has_value());
}

TEST(RefreshMainWindow, FullRefreshDisconnectedNoFile) {
    MainWindowFlags f;
    f.szSpectrumID = "S1";
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::All, f);
    EXPECT_EQ(u.toolbarShown, true);
    EXPECT_EQ(Enabled(u, ToolButton::tbConnect), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbDisconnect), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbOpen), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbSave), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbPrint), false);
    for (ToolButton b : {ToolButton::tbStop, ToolButton::tbStart, ToolButton::tbClear,
                         ToolButton::tbScope, ToolButton::tbSettings})
        EXPECT_EQ(Enabled(u, b), false) << ToolButtonKey(b);
    EXPECT_EQ(u.button(ToolButton::tbLin).checked, true);
    EXPECT_EQ(u.button(ToolButton::tbLog).checked, false);
    EXPECT_EQ(u.button(ToolButton::tbProcess).visible, false);
    EXPECT_EQ(u.panelText(StatusPanel::Connection), "Not connected");
    EXPECT_EQ(u.panelText(StatusPanel::File), "");
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "");
    EXPECT_EQ(u.spectrumId, "S1");
    EXPECT_FALSE(u.runCalibrate);
}

TEST(RefreshMainWindow, FullRefreshFromFileLogEnergyProcessing) {
    MainWindowFlags f;
    f.bFromFile = true;
    f.yScaleMode = 0;
    f.xUnitMode = 1;
    f.externalProcessing = true;
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::All, f);
    EXPECT_EQ(Enabled(u, ToolButton::tbSave), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbPrint), true);
    EXPECT_EQ(u.button(ToolButton::tbLin).checked, false);
    EXPECT_EQ(u.button(ToolButton::tbLog).checked, true);
    EXPECT_EQ(u.button(ToolButton::tbProcess).visible, true);
    EXPECT_TRUE(u.runCalibrate);
}

TEST(RefreshMainWindow, SqrtScaleLeavesBothScaleButtonsUp) {
    MainWindowFlags f;
    f.yScaleMode = 2;
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::DeviceState, f);
    EXPECT_EQ(u.button(ToolButton::tbLin).checked, false);
    EXPECT_EQ(u.button(ToolButton::tbLog).checked, false);
}

TEST(RefreshMainWindow, ConnectedIdleStartOnStopOff) {
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::DeviceState, Connected());
    EXPECT_EQ(Enabled(u, ToolButton::tbStart), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbStop), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbConnect), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbDisconnect), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbOpen), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbSave), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbClear), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbSettings), true);
    EXPECT_TRUE(u.panels.empty());
}

TEST(RefreshMainWindow, DeviceStateDisconnectedStillEnablesSave) {
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::DeviceState, MainWindowFlags{});
    EXPECT_EQ(Enabled(u, ToolButton::tbSave), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbPrint), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbConnect), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbScope), false);
}

TEST(RefreshMainWindow, BatchWaitingKeepsStartOff) {
    MainWindowFlags f = Connected();
    f.batchOn = true;
    f.batchWaiting = true;
    f.acquiring = false;
    for (int code : {1, 2, 4}) {
        const MainWindowUpdate u = RefreshMainWindow(static_cast<RefreshCode>(code), f);
        EXPECT_EQ(Enabled(u, ToolButton::tbStart), false) << code;
        EXPECT_EQ(Enabled(u, ToolButton::tbStop), true) << code;
    }
}

TEST(RefreshMainWindow, AcquisitionCodeTouchesOnlyStartStopClear) {
    MainWindowFlags f = Connected();
    f.acquiring = true;
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::Acquisition, f);
    EXPECT_EQ(Enabled(u, ToolButton::tbStart), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbStop), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbClear), true);
    EXPECT_FALSE(Enabled(u, ToolButton::tbConnect).has_value());
    EXPECT_FALSE(Enabled(u, ToolButton::tbSave).has_value());
    EXPECT_FALSE(u.button(ToolButton::tbLin).checked.has_value());
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "");
}

TEST(RefreshMainWindow, ConnectionDetailsPanelAndOpen) {
    MainWindowFlags f = Connected();
    f.roiCount = 2;
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::Connection, f);
    EXPECT_EQ(u.panelText(StatusPanel::Connection), "Connected to KORV-1 S/N 0042");
    EXPECT_EQ(Enabled(u, ToolButton::tbOpen), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbSave), true);
    EXPECT_EQ(u.roiItemsEnabled, true);

    const MainWindowUpdate off = RefreshMainWindow(RefreshCode::Connection, MainWindowFlags{});
    EXPECT_EQ(Enabled(off, ToolButton::tbOpen), true);
    EXPECT_EQ(Enabled(off, ToolButton::tbSave), false);
    EXPECT_EQ(off.roiItemsEnabled, false);
}

TEST(RefreshMainWindow, RoiCodeOnlySetsRoiItems) {
    MainWindowFlags f;
    f.roiCount = 1;
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::RoiSet, f);
    EXPECT_EQ(u.roiItemsEnabled, true);
    for (int i = 0; i < kToolButtonCount; ++i)
        EXPECT_FALSE(u.buttons[i].enabled.has_value());
    f.roiCount = 0;
    EXPECT_EQ(RefreshMainWindow(RefreshCode::RoiSet, f).roiItemsEnabled, false);
}

TEST(RefreshMainWindow, OptionsAndBatchPanels) {
    MainWindowFlags f;
    f.externalProcessing = true;
    MainWindowUpdate u = RefreshMainWindow(RefreshCode::OptionsBatch, f);
    EXPECT_EQ(u.button(ToolButton::tbProcess).visible, true);
    EXPECT_EQ(u.panelText(StatusPanel::Batch), "BATCH OFF");
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "");

    f.batchOn = true;
    f.batchDone = 3;
    f.batchCount = 10;
    u = RefreshMainWindow(RefreshCode::OptionsBatch, f);
    EXPECT_EQ(u.panelText(StatusPanel::Batch), "BATCH ON");
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "Acq. done: 3 of 10");

    f.batchWaiting = true;
    f.batchWaitRemaining = 2.5f;
    f.batchUntilStop = true;
    u = RefreshMainWindow(RefreshCode::OptionsBatch, f);
    EXPECT_EQ(u.panelText(StatusPanel::Batch), "BATCH ON (Waiting : 2.5)");
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "Acq. done: 3");
}

TEST(RefreshMainWindow, OpenWhileConnectedDisablesStop) {
    MainWindowFlags f = Connected();
    f.acquiring = true;
    f.bFromFile = true;
    f.szFileName = "cs137.spe";
    f.szSpectrumID = "Cs-137 test";
    f.countRate = 123.44f;
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::LoadedFromFile, f);
    EXPECT_EQ(Enabled(u, ToolButton::tbStop), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbStart), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbOpen), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbSave), true);
    EXPECT_EQ(Enabled(u, ToolButton::tbConnect), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbDisconnect), true);
    EXPECT_EQ(u.panelText(StatusPanel::File), "File: cs137.spe");
    EXPECT_EQ(u.panelText(StatusPanel::CountRate), "123.4 cps");
    EXPECT_EQ(u.spectrumId, "Cs-137 test");
}

TEST(RefreshMainWindow, OpenWhileDisconnected) {
    MainWindowFlags f;
    f.bFromFile = true;
    const MainWindowUpdate u = RefreshMainWindow(RefreshCode::LoadedFromFile, f);
    EXPECT_EQ(Enabled(u, ToolButton::tbStart), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbClear), false);
    EXPECT_EQ(Enabled(u, ToolButton::tbSave), true);
    EXPECT_EQ(u.panelText(StatusPanel::CountRate), "0.0 cps");
}

TEST(RefreshMainWindow, UnknownCodeChangesNothing) {
    for (int code : {-1, 3, 5, 64, 100}) {
        const MainWindowUpdate u = RefreshMainWindow(static_cast<RefreshCode>(code), Connected());
        EXPECT_TRUE(u.panels.empty());
        EXPECT_FALSE(u.toolbarShown.has_value());
        EXPECT_FALSE(u.roiItemsEnabled.has_value());
        for (int i = 0; i < kToolButtonCount; ++i) {
            EXPECT_FALSE(u.buttons[i].enabled.has_value());
            EXPECT_FALSE(u.buttons[i].visible.has_value());
        }
    }
}

TEST(UpdateMenu, DisconnectedNoFile) {
    const auto items = UpdateMenu(MainWindowFlags{});
    EXPECT_TRUE(Item(items, "mnuFileConnect").enabled);
    EXPECT_FALSE(Item(items, "mnuFileDisconnect").enabled);
    EXPECT_FALSE(Item(items, "mnuFileSave").enabled);
    EXPECT_FALSE(Item(items, "mnuFilePrint").enabled);
    EXPECT_FALSE(Item(items, "mnuMCAStart").enabled);
    EXPECT_FALSE(Item(items, "mnuViewScope").enabled);
    EXPECT_FALSE(Item(items, "mnuROISave").enabled);
    EXPECT_TRUE(Item(items, "mnuViewZoomIn").enabled);
    EXPECT_FALSE(Item(items, "mnuViewZoomOut").enabled);
    EXPECT_EQ(Item(items, "mnuViewLin").checked, true);
    EXPECT_EQ(Item(items, "mnuViewLines").checked, true);
    EXPECT_EQ(Item(items, "mnuViewChn").checked, true);
}

TEST(UpdateMenu, AcquiringMirrorsToolbar) {
    MainWindowFlags f = Connected();
    f.acquiring = true;
    f.zoomed = true;
    f.yScaleMode = 2;
    f.graphType = 3;
    f.xUnitMode = 2;
    f.roiCount = 1;
    const auto items = UpdateMenu(f);
    EXPECT_FALSE(Item(items, "mnuMCAStart").enabled);
    EXPECT_TRUE(Item(items, "mnuMCAStop").enabled);
    EXPECT_FALSE(Item(items, "mnuFileOpen").enabled);
    EXPECT_FALSE(Item(items, "mnuFileConnect").enabled);
    EXPECT_FALSE(Item(items, "mnuViewZoomIn").enabled);
    EXPECT_TRUE(Item(items, "mnuViewZoomOut").enabled);
    EXPECT_EQ(Item(items, "mnuViewSqrt").checked, true);
    EXPECT_EQ(Item(items, "mnuViewLin").checked, false);
    EXPECT_EQ(Item(items, "mnuViewHisto").checked, true);
    EXPECT_EQ(Item(items, "mnuViewTime").checked, true);
    EXPECT_TRUE(Item(items, "mnuROIClearAll").enabled);
}

TEST(UpdateMenu, BatchWaitingKeepsStartOff) {
    MainWindowFlags f = Connected();
    f.batchOn = true;
    f.batchWaiting = true;
    const auto items = UpdateMenu(f);
    EXPECT_FALSE(Item(items, "mnuMCAStart").enabled);
    EXPECT_TRUE(Item(items, "mnuMCAStop").enabled);
    EXPECT_FALSE(Item(items, "mnuMCABatch").enabled);
}
