#pragma once
// The main window's command state as a pure function of the program's state: which
// toolbar buttons an update code enables, checks or shows, which status panels it
// rewrites, and which menu items are enabled or checked. The window applies the
// answer; nothing here touches a widget, so every rule is testable without one.
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "device/RefreshCode.h"

namespace vexo {

// The toolbar buttons, in toolbar order.
enum class ToolButton {
    tbConnect,
    tbDisconnect,
    tbOpen,
    tbSave,
    tbPrint,
    tbStart,
    tbStop,
    tbClear,
    tbLin,
    tbLog,
    tbZoom,
    tbScope,
    tbSettings,
    tbProcess
};
constexpr int kToolButtonCount = 14;
// The key of a button ("tbConnect" ...), as the toolbar dispatches it.
std::string_view ToolButtonKey(ToolButton button);
// The button of a key; nullopt for an unknown key.
std::optional<ToolButton> ToolButtonFromKey(std::string_view key);

// Everything the rules read. Y scale: 0 log, 1 linear, 2 square root. X unit:
// 0 channels, 1 energy, 2 time. Graph type: 1 dots, 2 lines, 3 histogram.
struct MainWindowFlags {
    bool connected = false;
    bool acquiring = false;
    bool batchOn = false;
    bool batchWaiting = false;
    bool bFromFile = false;
    bool zoomed = false;
    int yScaleMode = 1;
    int xUnitMode = 0;
    int graphType = 2;
    bool externalProcessing = false;
    int roiCount = 0;
    bool scopeShown = false;
    std::string szFileName; // without folder
    std::string szSpectrumID;
    std::string szDeviceName;
    std::string szDeviceSerial;
    float countRate = 0.0f;          // counts per second
    int batchDone = 0;               // measurements done in this batch
    int batchCount = 0;              // measurements asked for
    bool batchUntilStop = false;     // endless batch: no " of N"
    float batchWaitRemaining = 0.0f; // seconds left of the waiting interval
};

// What an update does to one toolbar button; an empty member is left as it is.
struct ButtonUpdate {
    std::optional<bool> enabled;
    std::optional<bool> checked;
    std::optional<bool> visible;
};

// The status-bar panels and the texts an update puts into them.
enum class StatusPanel {
    Connection,
    File,
    Status,
    Preset,
    Elapsed,
    CountRate,
    Icr,
    Batch,
    BatchCounter,
    HighVoltage // "HV 800 V on" while connected (device/HighVoltage.h)
};
constexpr int kStatusPanelCount = 10;

struct PanelText {
    StatusPanel panel;
    std::string text;
};

// The answer for one update code. `buttons` is indexed by ToolButton.
struct MainWindowUpdate {
    std::array<ButtonUpdate, kToolButtonCount> buttons{};
    std::optional<bool> toolbarShown;
    std::vector<PanelText> panels;         // in the order they are to be set
    std::optional<std::string> spectrumId; // text for the spectrum-ID box
    bool runCalibrate = false;             // push the calibration to the plots
    std::optional<bool> roiItemsEnabled;   // set the ROI-dependent items

    const ButtonUpdate& button(ToolButton b) const { return buttons[static_cast<int>(b)]; }
    // The text set for `panel`, nullopt when the update leaves it alone.
    std::optional<std::string> panelText(StatusPanel panel) const;
};

// The rules of one update code (0, 1, 2, 4, 8, 16 or 32). Any other code changes
// nothing: the answer is empty (the menu update runs regardless).
// After Open the main window refreshes with these update codes, in this order: the
// spectrum loaded from a file, then options and batch.
constexpr std::array<RefreshCode, 2> kOpenRefreshCodes = {RefreshCode::LoadedFromFile,
                                                          RefreshCode::OptionsBatch};

MainWindowUpdate RefreshMainWindow(RefreshCode code, const MainWindowFlags& flags);

// "BATCH ON (Waiting : 2.5)", "BATCH ON" or "BATCH OFF".
std::string BatchPanelText(const MainWindowFlags& flags);
// "Acq. done: 3 of 10", "Acq. done: 3" (endless), or empty when no batch runs.
std::string BatchCounterText(const MainWindowFlags& flags);

// Where the spectrum on show came from, for the window title.
enum class SpectrumShown { None, File, Device };
// "Vexo - " + the file name for a spectrum opened from a file; "Vexo - " + device name +
// " S/N " + serial for one read from the analyser, with " (live)" while it is connected;
// "Vexo" before either.
std::string MainWindowTitle(SpectrumShown shown, const MainWindowFlags& flags);

// One menu item's state; `checked` only for items that carry a check mark.
struct MenuItemState {
    std::string key; // "mnuFileConnect" ...
    bool enabled = true;
    std::optional<bool> checked;
};

// The menu items whose state depends on the program's state, with that state.
// Items that are always available are not listed.
std::vector<MenuItemState> UpdateMenu(const MainWindowFlags& flags);

// The menu items that need at least one ROI.
const std::vector<std::string>& RoiMenuItems();

} // namespace vexo
