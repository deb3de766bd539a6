#pragma once
// Opening and closing the analyser: the common open routine OpenMca, the File menu's
// Connect, Disconnect and Exit, the device-information command, and the start-up
// connection to the last detector (frmAutoConnect driven by tmrConnect). The main
// window supplies ConnectionHooks for everything that touches its widgets; every
// message goes through Messages.
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "base/Messages.h"
#include "device/DeviceLibrary.h"
#include "device/DeviceSearch.h"
#include "device/RefreshCode.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

constexpr int kConnectIntervalMs = 500;   // tmrConnect
constexpr int kConnectProgressSteps = 10; // pbConnect cycles through 0..9

// What the connection asks of the main window; an empty hook is skipped.
struct ConnectionHooks {
    std::function<void(RefreshCode code)> refreshMainWindow; // RefreshMainWindow(code)
    std::function<void()> displaySpectrumAndStatus;          // DisplaySpectrum + DisplayStatus
    std::function<void()> refreshSettingsControls;           // MCA settings window from the record
    std::function<void(bool enabled)> setRefreshTimer;       // tmrRefresh
    std::function<void()> closeDeviceWindows;                // settings and scope windows
    // After Connect: store DetectorPath ("" for a device type without a prefix) and save
    // the settings file (full save).
    std::function<void(const std::string& detectorPath)> rememberDetector;
};

// Opens `path` (UTF-8, as the device list reports it; the library also takes it with
// its type prefix) and brings the program into the connected state; the outcome is doc.bConnected.
// With a device already open: "Already connected" (when showMessages) and bConnected = true.
// OpenDevice failing: "Could not open MCA: " + ErrorText, or "Could not open MCA" for success
// without a handle (critical, only when showMessages). On success: id 23 = 256, ReadDeviceInfo
// (which reports its own failures), ReadAllParams, then the settings controls,
// spectrum/status and main window (code 1) are refreshed and the refresh timer enabled.
// `name` is the list's device name; the device's own name read back by ReadDeviceInfo
// is what the record keeps. szDevicePath is left to the caller, which knows the prefix.
void OpenMca(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages,
             const ConnectionHooks& hooks, const std::string& path, const std::string& name,
             bool showMessages);

// Closes the open device (if any) and forgets its handle: hDevice = 0, bConnected =
// false. Returns CloseDevice's status, or 0 when nothing was open.
int32_t CloseMca(DeviceLibrary& lib, SpectrumDocument& doc);

class ConnectionController {
public:
    ConnectionController(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages,
                         ConnectionHooks hooks);

    // mnuFileConnect. `chooseDevice` shows the device list modally and returns its
    // choice; it is not called when a device is already open ("Already connected").
    // On success clears bFromFile, refreshes with code 4 and hands DetectorPath (prefix
    // by type + trimmed path, or "") to the rememberDetector hook.
    // Returns doc.bConnected.
    bool connect(const std::function<DeviceChoice()>& chooseDevice);

    // mnuFileDisconnect: closes the device, closes the settings and scope windows,
    // stops the refresh timer and refreshes with code 0.
    void disconnect();

    // mnuFileExit (and the main window's unload): closes the device before the program
    // ends. Nothing is saved.
    void exit();

    // The device-information command: true when connected (the caller shows the
    // identity dialog from the record); otherwise shows "Not connected" and returns false.
    bool deviceInfo();

private:
    DeviceLibrary& m_lib;
    SpectrumDocument& m_doc;
    Messages& m_messages;
    ConnectionHooks m_hooks;
};

// frmAutoConnect with the main window's tmrConnect: connects to DetectorPath at
// start-up, retrying every tick until it succeeds or the user cancels.
class AutoConnect {
public:
    AutoConnect(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages,
                ConnectionHooks hooks);

    // Shows the window and enables the timer (start-up with OpenLastDetectorUsed set).
    // `detectorPath` is the remembered DetectorPath with its type prefix; `applyHV`
    // switches the high voltage on once connected (ApplyHV).
    void start(std::string detectorPath, bool applyHV);

    // One tmrConnect tick. Cancelled: timer off. Empty path after the split: window
    // closed, timer off. Otherwise lblConnecting = "Connecting to " + path, pbConnect
    // advances one step, OpenMca without messages; on success with ApplyHV, lHVOn = 1
    // is written to id 22 ("Failed to turn High Voltage ON: " + ErrorText on failure),
    // then window closed and timer off. Does nothing while the timer is off.
    void tick();

    // The window's Cancel button: sets the cancelled flag and closes the window; the
    // next tick switches the timer off.
    void cancel();

    bool timerEnabled() const { return m_timerEnabled; }
    bool windowOpen() const { return m_windowOpen; }
    bool cancelled() const { return m_cancelled; }
    const std::string& label() const { return m_label; } // lblConnecting
    int progress() const { return m_progress; }          // pbConnect, 0..9
    int attempts() const { return m_attempts; }          // OpenMca calls so far

private:
    void finish();
    void switchHighVoltageOn();

    DeviceLibrary& m_lib;
    SpectrumDocument& m_doc;
    std::string m_detectorPath;
    bool m_applyHV = false;
    Messages& m_messages;
    ConnectionHooks m_hooks;
    bool m_timerEnabled = false;
    bool m_windowOpen = false;
    bool m_cancelled = false;
    std::string m_label;
    int m_progress = 0;
    int m_attempts = 0;
};

} // namespace vexo
