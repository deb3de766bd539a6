#include "shell/MainWindowState.h"

#include "base/NumberText.h"
#include "device/BatchSettings.h"

namespace vexo {
namespace {

constexpr std::array<std::string_view, kToolButtonCount> kKeys = {
    "tbConnect", "tbDisconnect", "tbOpen", "tbSave", "tbPrint", "tbStart",    "tbStop",
    "tbClear",   "tbLin",        "tbLog",  "tbZoom", "tbScope", "tbSettings", "tbProcess"};

// Builds one update while the rules of a code are applied to it.
class UpdateBuilder {
public:
    explicit UpdateBuilder(const MainWindowFlags& f) : m_f(f) {}
    void enable(ToolButton b, bool on) { at(b).enabled = on; }
    void check(ToolButton b, bool on) { at(b).checked = on; }
    void show(ToolButton b, bool on) { at(b).visible = on; }
    void panel(StatusPanel p, std::string text) { m_u.panels.push_back({p, std::move(text)}); }
    MainWindowUpdate& update() { return m_u; }
    const MainWindowFlags& flags() const { return m_f; }
    bool busy() const { return m_f.acquiring || m_f.batchOn; }

    // tbLin is down in linear mode, tbLog in log mode; square root leaves both up.
    void scaleButtons() {
        check(ToolButton::tbLin, m_f.yScaleMode == 1);
        check(ToolButton::tbLog, m_f.yScaleMode == 0);
    }
    void deviceButtons() {
        enable(ToolButton::tbClear, m_f.connected);
        enable(ToolButton::tbScope, m_f.connected);
        enable(ToolButton::tbSettings, m_f.connected);
    }
    void roiItems() { m_u.roiItemsEnabled = m_f.roiCount > 0; }
    void batchCounter() { panel(StatusPanel::BatchCounter, BatchCounterText(m_f)); }

private:
    ButtonUpdate& at(ToolButton b) { return m_u.buttons[static_cast<int>(b)]; }
    const MainWindowFlags& m_f;
    MainWindowUpdate m_u;
};

void FullRefresh(UpdateBuilder& u) {
    const MainWindowFlags& f = u.flags();
    u.update().toolbarShown = true;
    u.enable(ToolButton::tbConnect, true);
    u.enable(ToolButton::tbDisconnect, false);
    u.enable(ToolButton::tbOpen, true);
    u.enable(ToolButton::tbSave, f.bFromFile || f.connected);
    u.enable(ToolButton::tbPrint, f.bFromFile || f.connected);
    u.enable(ToolButton::tbStop, f.connected);
    u.enable(ToolButton::tbStart, f.connected);
    u.deviceButtons();
    u.scaleButtons();
    u.show(ToolButton::tbProcess, f.externalProcessing);
    u.panel(StatusPanel::Connection, "Not connected");
    for (StatusPanel p : {StatusPanel::File, StatusPanel::Status, StatusPanel::Preset,
                          StatusPanel::Elapsed, StatusPanel::CountRate, StatusPanel::Icr,
                          StatusPanel::Batch, StatusPanel::BatchCounter, StatusPanel::HighVoltage})
        u.panel(p, "");
    u.update().spectrumId = f.szSpectrumID;
    u.update().runCalibrate = f.xUnitMode != 0;
}

// Codes 1 and 4 share everything but Open, Save and Print.
void DeviceState(UpdateBuilder& u, bool connectionDetails) {
    const MainWindowFlags& f = u.flags();
    u.enable(ToolButton::tbConnect, !f.connected);
    u.enable(ToolButton::tbDisconnect, f.connected);
    if (connectionDetails) {
        u.enable(ToolButton::tbOpen, !f.connected);
        u.enable(ToolButton::tbSave, f.bFromFile || f.connected);
        u.enable(ToolButton::tbPrint, f.bFromFile || f.connected);
    } else {
        u.enable(ToolButton::tbOpen, false);
        u.enable(ToolButton::tbSave, true);
        u.enable(ToolButton::tbPrint, true);
    }
    u.enable(ToolButton::tbStop, u.busy());
    u.enable(ToolButton::tbStart, !u.busy());
    u.deviceButtons();
    u.scaleButtons();
}

void ConnectionDetails(UpdateBuilder& u) {
    DeviceState(u, true);
    const MainWindowFlags& f = u.flags();
    u.panel(StatusPanel::Connection, "Connected to " + f.szDeviceName + " S/N " + f.szDeviceSerial);
    u.roiItems();
}

void AcquisitionState(UpdateBuilder& u) {
    u.enable(ToolButton::tbStop, u.busy());
    u.enable(ToolButton::tbStart, !u.busy());
    u.enable(ToolButton::tbClear, u.flags().connected);
    u.batchCounter();
}

void OptionsAndBatch(UpdateBuilder& u) {
    u.show(ToolButton::tbProcess, u.flags().externalProcessing);
    u.panel(StatusPanel::Batch, BatchPanelText(u.flags()));
    u.batchCounter();
}

void LoadedFromFile(UpdateBuilder& u) {
    const MainWindowFlags& f = u.flags();
    u.enable(ToolButton::tbConnect, !f.connected);
    u.enable(ToolButton::tbDisconnect, f.connected);
    u.enable(ToolButton::tbOpen, true);
    u.enable(ToolButton::tbSave, true);
    u.enable(ToolButton::tbPrint, true);
    // A spectrum from a file is not being acquired, whatever the device does.
    u.enable(ToolButton::tbStop, false);
    u.enable(ToolButton::tbStart, f.connected);
    u.deviceButtons();
    u.panel(StatusPanel::File, "File: " + f.szFileName);
    u.roiItems();
    u.panel(StatusPanel::CountRate, FormatSingle(f.countRate, "0.0") + " cps");
    u.update().spectrumId = f.szSpectrumID;
}

} // namespace

std::string_view ToolButtonKey(ToolButton button) {
    return kKeys[static_cast<int>(button)];
}

std::optional<ToolButton> ToolButtonFromKey(std::string_view key) {
    for (int i = 0; i < kToolButtonCount; ++i)
        if (kKeys[i] == key)
            return static_cast<ToolButton>(i);
    return std::nullopt;
}

std::optional<std::string> MainWindowUpdate::panelText(StatusPanel panel) const {
    std::optional<std::string> text;
    for (const PanelText& p : panels)
        if (p.panel == panel)
            text = p.text; // the last one set wins
    return text;
}

MainWindowUpdate RefreshMainWindow(RefreshCode code, const MainWindowFlags& flags) {
    UpdateBuilder u(flags);
    switch (code) {
    case RefreshCode::All:
        FullRefresh(u);
        break;
    case RefreshCode::DeviceState:
        DeviceState(u, false);
        break;
    case RefreshCode::Acquisition:
        AcquisitionState(u);
        break;
    case RefreshCode::Connection:
        ConnectionDetails(u);
        break;
    case RefreshCode::RoiSet:
        u.roiItems();
        break;
    case RefreshCode::OptionsBatch:
        OptionsAndBatch(u);
        break;
    case RefreshCode::LoadedFromFile:
        LoadedFromFile(u);
        break;
    default:
        break;
    }
    return u.update();
}

std::string BatchPanelText(const MainWindowFlags& f) {
    return BatchPanelText(f.batchOn, f.batchWaiting, f.batchWaitRemaining);
}

std::string BatchCounterText(const MainWindowFlags& f) {
    return BatchCounterText(f.batchOn, f.batchDone, f.batchUntilStop, f.batchCount);
}

std::string MainWindowTitle(SpectrumShown shown, const MainWindowFlags& f) {
    switch (shown) {
    case SpectrumShown::File:
        return "Vexo - " + f.szFileName;
    case SpectrumShown::Device:
        return "Vexo - " + f.szDeviceName + " S/N " + f.szDeviceSerial +
               (f.connected ? " (live)" : "");
    case SpectrumShown::None:
        break;
    }
    return "Vexo";
}

const std::vector<std::string>& RoiMenuItems() {
    static const std::vector<std::string> items = {"mnuROISave", "mnuROIClearAll"};
    return items;
}

std::vector<MenuItemState> UpdateMenu(const MainWindowFlags& f) {
    const bool busy = f.acquiring || f.batchOn;
    const bool haveSpectrum = f.bFromFile || f.connected;
    std::vector<MenuItemState> items = {
        {"mnuFileConnect", !f.connected, {}},
        {"mnuFileDisconnect", f.connected, {}},
        {"mnuFileOpen", !busy, {}},
        {"mnuFileSave", haveSpectrum, {}},
        {"mnuFileSaveAll", haveSpectrum, {}},
        {"mnuFilePrint", haveSpectrum, {}},
        {"mnuMCAStart", f.connected && !busy, {}},
        {"mnuMCAStop", f.connected && busy, {}},
        {"mnuMCAClear", f.connected, {}},
        {"mnuMCASetup", f.connected, {}},
        {"mnuMCABatch", f.connected && !f.batchOn, {}},
        {"mnuViewZoomIn", !f.zoomed, {}},
        {"mnuViewZoomOut", f.zoomed, {}},
        {"mnuViewDots", true, f.graphType == 1},
        {"mnuViewLines", true, f.graphType == 2},
        {"mnuViewHisto", true, f.graphType == 3},
        {"mnuViewLin", true, f.yScaleMode == 1},
        {"mnuViewLog", true, f.yScaleMode == 0},
        {"mnuViewSqrt", true, f.yScaleMode == 2},
        {"mnuViewChn", true, f.xUnitMode == 0},
        {"mnuViewEn", true, f.xUnitMode == 1},
        {"mnuViewTime", true, f.xUnitMode == 2},
        {"mnuViewScope", f.connected, f.scopeShown},
        {"mnuToolsProcess", f.externalProcessing && haveSpectrum, {}},
    };
    for (const std::string& key : RoiMenuItems())
        items.push_back({key, f.roiCount > 0, {}});
    return items;
}

} // namespace vexo
