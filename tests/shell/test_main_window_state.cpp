// What RefreshMainWindow and UpdateMenu do to the toolbar, the status bar and the menus
// for each refresh code and state of the program.
#include <gtest/gtest.h>

#include "shell/MainWindowState.h"

using namespace vexo;
using enum ToolButton;

namespace {

// The update codes by their numbers, as the connection, acquisition, batch and Open hand
// them over.
MainWindowUpdate Refresh(int code, const MainWindowFlags& flags) {
    return RefreshMainWindow(static_cast<RefreshCode>(code), flags);
}

using Expected = std::initializer_list<std::pair<ToolButton, std::optional<bool>>>;

// Each button's enabled state as given; nullopt: left as it is.
void ExpectEnabled(const MainWindowUpdate& u, Expected expected) {
    for (const auto& [b, enabled] : expected)
        EXPECT_EQ(u.button(b).enabled, enabled) << ToolButtonKey(b);
}

MainWindowFlags Connected() {
    MainWindowFlags f;
    f.connected = true;
    f.szDeviceName = "KORV-1";
    f.szDeviceSerial = "0042";
    return f;
}

// The menu items' enabled (or, for `checked`, checked) states as "key=0/1" words.
std::string Menu(const MainWindowFlags& f, std::initializer_list<const char*> keys,
                 bool checked = false) {
    const auto items = UpdateMenu(f);
    std::string text;
    for (const char* key : keys)
        for (const MenuItemState& i : items)
            if (i.key == key)
                text += std::string(text.empty() ? "" : " ") + key + "=" +
                        ((checked ? i.checked.value_or(false) : i.enabled) ? "1" : "0");
    return text;
}

} // namespace

TEST(ToolButtonKeys, RoundTripEveryKey) {
    for (int i = 0; i < kToolButtonCount; ++i)
        EXPECT_EQ(ToolButtonFromKey(ToolButtonKey(static_cast<ToolButton>(i))),
                  static_cast<ToolButton>(i));
    EXPECT_EQ(ToolButtonKey(tbProcess), "tbProcess");
    EXPECT_FALSE(ToolButtonFromKey("tbconnect").has_value());
}

TEST(RefreshMainWindow, FullRefresh) {
    MainWindowFlags f;
    f.szSpectrumID = "S1";
    MainWindowUpdate u = Refresh(0, f);
    EXPECT_EQ(u.toolbarShown, true);
    ExpectEnabled(u, {{tbConnect, true},
                      {tbDisconnect, false},
                      {tbOpen, true},
                      {tbSave, false},
                      {tbPrint, false},
                      {tbStop, false},
                      {tbStart, false},
                      {tbClear, false},
                      {tbScope, false},
                      {tbSettings, false}});
    EXPECT_EQ(u.button(tbLin).checked, true);
    EXPECT_EQ(u.button(tbLog).checked, false);
    EXPECT_EQ(u.button(tbProcess).visible, false);
    EXPECT_EQ(u.panelText(StatusPanel::Connection), "Not connected");
    EXPECT_EQ(u.panelText(StatusPanel::File), "");
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "");
    EXPECT_EQ(u.spectrumId, "S1");
    EXPECT_FALSE(u.runCalibrate);
    // From a file, log scale, energy axis, external processing.
    f.bFromFile = true;
    f.yScaleMode = 0;
    f.xUnitMode = 1;
    f.externalProcessing = true;
    u = Refresh(0, f);
    ExpectEnabled(u, {{tbSave, true}, {tbPrint, true}});
    EXPECT_EQ(u.button(tbLin).checked, false);
    EXPECT_EQ(u.button(tbLog).checked, true);
    EXPECT_EQ(u.button(tbProcess).visible, true);
    EXPECT_TRUE(u.runCalibrate);
    // The square-root scale leaves both scale buttons up.
    f.yScaleMode = 2;
    u = Refresh(1, f);
    EXPECT_EQ(u.button(tbLin).checked, false);
    EXPECT_EQ(u.button(tbLog).checked, false);
}

TEST(RefreshMainWindow, DeviceState) {
    MainWindowUpdate u = Refresh(1, Connected());
    ExpectEnabled(u, {{tbStart, true},
                      {tbStop, false},
                      {tbConnect, false},
                      {tbDisconnect, true},
                      {tbOpen, false},
                      {tbSave, true},
                      {tbClear, true},
                      {tbSettings, true}});
    EXPECT_TRUE(u.panels.empty());
    // Disconnected, Save stays on.
    u = Refresh(1, MainWindowFlags{});
    ExpectEnabled(u, {{tbSave, true}, {tbPrint, true}, {tbConnect, true}, {tbScope, false}});
    // A waiting batch keeps Start off whatever the code.
    MainWindowFlags f = Connected();
    f.batchOn = true;
    f.batchWaiting = true;
    for (int code : {1, 2, 4})
        ExpectEnabled(Refresh(code, f), {{tbStart, false}, {tbStop, true}});
}

TEST(RefreshMainWindow, AcquisitionCodeTouchesOnlyStartStopClear) {
    MainWindowFlags f = Connected();
    f.acquiring = true;
    const MainWindowUpdate u = Refresh(2, f);
    ExpectEnabled(u, {{tbStart, false},
                      {tbStop, true},
                      {tbClear, true},
                      {tbConnect, std::nullopt},
                      {tbSave, std::nullopt}});
    EXPECT_FALSE(u.button(tbLin).checked.has_value());
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "");
}

TEST(RefreshMainWindow, ConnectionDetailsRoisAndOptions) {
    MainWindowFlags f = Connected();
    f.roiCount = 2;
    MainWindowUpdate u = Refresh(4, f);
    EXPECT_EQ(u.panelText(StatusPanel::Connection), "Connected to KORV-1 S/N 0042");
    ExpectEnabled(u, {{tbOpen, false}, {tbSave, true}});
    EXPECT_EQ(u.roiItemsEnabled, true);
    u = Refresh(4, MainWindowFlags{});
    ExpectEnabled(u, {{tbOpen, true}, {tbSave, false}});
    EXPECT_EQ(u.roiItemsEnabled, false);
    // The ROI code only sets the ROI items.
    u = Refresh(8, f);
    EXPECT_EQ(u.roiItemsEnabled, true);
    for (int i = 0; i < kToolButtonCount; ++i)
        EXPECT_FALSE(u.buttons[i].enabled.has_value());
    EXPECT_EQ(Refresh(8, MainWindowFlags{}).roiItemsEnabled, false);
    // Options and batch panels.
    f = MainWindowFlags{};
    f.externalProcessing = true;
    u = Refresh(16, f);
    EXPECT_EQ(u.button(tbProcess).visible, true);
    EXPECT_EQ(u.panelText(StatusPanel::Batch), "BATCH OFF");
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "");
    f.batchOn = true;
    f.batchDone = 3;
    f.batchCount = 10;
    u = Refresh(16, f);
    EXPECT_EQ(u.panelText(StatusPanel::Batch), "BATCH ON");
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "Acq. done: 3 of 10");
    f.batchWaiting = true;
    f.batchWaitRemaining = 2.5f;
    f.batchUntilStop = true;
    u = Refresh(16, f);
    EXPECT_EQ(u.panelText(StatusPanel::Batch), "BATCH ON (Waiting : 2.5)");
    EXPECT_EQ(u.panelText(StatusPanel::BatchCounter), "Acq. done: 3");
}

TEST(RefreshMainWindow, OpenWhileConnectedOrNot) {
    MainWindowFlags f = Connected();
    f.acquiring = true;
    f.bFromFile = true;
    f.szFileName = "cs137.spe";
    f.szSpectrumID = "Cs-137 test";
    f.countRate = 123.44f;
    MainWindowUpdate u = Refresh(32, f);
    ExpectEnabled(u, {{tbStop, false},
                      {tbStart, true},
                      {tbOpen, true},
                      {tbSave, true},
                      {tbConnect, false},
                      {tbDisconnect, true}});
    EXPECT_EQ(u.panelText(StatusPanel::File), "File: cs137.spe");
    EXPECT_EQ(u.panelText(StatusPanel::CountRate), "123.4 cps");
    EXPECT_EQ(u.spectrumId, "Cs-137 test");
    f = MainWindowFlags{};
    f.bFromFile = true;
    u = Refresh(32, f);
    ExpectEnabled(u, {{tbStart, false}, {tbClear, false}, {tbSave, true}});
    EXPECT_EQ(u.panelText(StatusPanel::CountRate), "0.0 cps");
}

TEST(RefreshMainWindow, UnknownCodeChangesNothing) {
    for (int code : {-1, 3, 5, 64, 100}) {
        const MainWindowUpdate u = Refresh(code, Connected());
        EXPECT_TRUE(u.panels.empty());
        EXPECT_FALSE(u.toolbarShown.has_value() || u.roiItemsEnabled.has_value());
        for (int i = 0; i < kToolButtonCount; ++i)
            EXPECT_FALSE(u.buttons[i].enabled.has_value() || u.buttons[i].visible.has_value());
    }
}

TEST(UpdateMenu, MirrorsTheToolbar) {
    EXPECT_EQ(
        Menu({}, {"mnuFileConnect", "mnuFileDisconnect", "mnuFileSave", "mnuFilePrint",
                  "mnuMCAStart", "mnuViewScope", "mnuROISave", "mnuViewZoomIn", "mnuViewZoomOut"}),
        "mnuFileConnect=1 mnuFileDisconnect=0 mnuFileSave=0 mnuFilePrint=0 mnuMCAStart=0 "
        "mnuViewScope=0 mnuROISave=0 mnuViewZoomIn=1 mnuViewZoomOut=0");
    EXPECT_EQ(Menu({}, {"mnuViewLin", "mnuViewLines", "mnuViewChn"}, true),
              "mnuViewLin=1 mnuViewLines=1 mnuViewChn=1");
    MainWindowFlags f = Connected();
    f.acquiring = true;
    f.zoomed = true;
    f.yScaleMode = 2;
    f.graphType = 3;
    f.xUnitMode = 2;
    f.roiCount = 1;
    EXPECT_EQ(Menu(f, {"mnuMCAStart", "mnuMCAStop", "mnuFileOpen", "mnuFileConnect",
                       "mnuViewZoomIn", "mnuViewZoomOut", "mnuROIClearAll"}),
              "mnuMCAStart=0 mnuMCAStop=1 mnuFileOpen=0 mnuFileConnect=0 mnuViewZoomIn=0 "
              "mnuViewZoomOut=1 mnuROIClearAll=1");
    EXPECT_EQ(Menu(f, {"mnuViewSqrt", "mnuViewLin", "mnuViewHisto", "mnuViewTime"}, true),
              "mnuViewSqrt=1 mnuViewLin=0 mnuViewHisto=1 mnuViewTime=1");
    f = Connected();
    f.batchOn = true;
    f.batchWaiting = true;
    EXPECT_EQ(Menu(f, {"mnuMCAStart", "mnuMCAStop", "mnuMCABatch"}),
              "mnuMCAStart=0 mnuMCAStop=1 mnuMCABatch=0");
}
