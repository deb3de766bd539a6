#include "device/ConnectionController.h"

#include <utility>

#include "base/TextFile.h"
#include "device/DeviceIO.h"

namespace vexo {

namespace {

void Call(const std::function<void()>& hook) {
    if (hook)
        hook();
}

void Refresh(const ConnectionHooks& hooks, RefreshCode code) {
    if (hooks.refreshMainWindow)
        hooks.refreshMainWindow(code);
}

void SetRefreshTimer(const ConnectionHooks& hooks, bool enabled) {
    if (hooks.setRefreshTimer)
        hooks.setRefreshTimer(enabled);
}

} // namespace

void OpenMca(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages,
             const ConnectionHooks& hooks, const std::string& path, const std::string& name,
             bool showMessages) {
    (void)name; // the record takes the name the device itself reports
    if (doc.hDevice != 0) {
        if (showMessages)
            messages.exclamation("Already connected");
        doc.bConnected = true;
        return;
    }
    // The program keeps text as UTF-8; the library takes its own single-byte code page.
    const int32_t status = lib.openDevice(Utf8ToWin1252(path), doc.hDevice);
    if (status != 0) {
        if (showMessages)
            messages.critical("Could not open MCA: " + ErrorText(status));
        doc.hDevice = 0; // a failed open leaves no handle behind, whatever was written
        doc.bConnected = false;
        return;
    }
    if (doc.hDevice == 0) {
        if (showMessages)
            messages.critical("Could not open MCA");
        doc.bConnected = false;
        return;
    }
    doc.bConnected = true;
    lib.setParam(doc.hDevice, DeviceParamId::ConnectFlags, kConnectFlagsValue);
    ReadDeviceInfo(lib, doc, messages);
    ReadAllParams(lib, doc);
    Call(hooks.refreshSettingsControls);
    Call(hooks.displaySpectrumAndStatus);
    Refresh(hooks, RefreshCode::DeviceState);
    SetRefreshTimer(hooks, true);
}

int32_t CloseMca(DeviceLibrary& lib, SpectrumDocument& doc) {
    int32_t status = 0;
    if (doc.hDevice != 0)
        status = lib.closeDevice(doc.hDevice);
    doc.hDevice = 0;
    doc.bConnected = false;
    doc.szConnectedSerial.clear();
    return status;
}

ConnectionController::ConnectionController(DeviceLibrary& lib, SpectrumDocument& doc,
                                           Messages& messages, ConnectionHooks hooks)
    : m_lib(lib), m_doc(doc), m_messages(messages), m_hooks(std::move(hooks)) {}

bool ConnectionController::connect(const std::function<DeviceChoice()>& chooseDevice) {
    if (m_doc.hDevice != 0) {
        m_messages.exclamation("Already connected");
        return true;
    }
    const DeviceChoice choice = chooseDevice ? chooseDevice() : DeviceChoice{};
    if (choice.result == kDevicesCancel)
        return false;
    OpenMca(m_lib, m_doc, m_messages, m_hooks, choice.path, choice.name, true);
    if (!m_doc.bConnected)
        return false;
    m_doc.bFromFile = false;
    Refresh(m_hooks, RefreshCode::Connection);
    const std::string detectorPath = DetectorPathFor(choice.type, choice.path);
    // A device of another type has no prefix to remember, but it is open all the same.
    m_doc.szDevicePath = detectorPath.empty() ? choice.path : detectorPath;
    if (m_hooks.rememberDetector)
        m_hooks.rememberDetector(detectorPath);
    return true;
}

void ConnectionController::disconnect() {
    CloseMca(m_lib, m_doc);
    Call(m_hooks.closeDeviceWindows);
    SetRefreshTimer(m_hooks, false);
    Refresh(m_hooks, RefreshCode::All);
}

void ConnectionController::exit() {
    CloseMca(m_lib, m_doc);
}

bool ConnectionController::deviceInfo() {
    if (m_doc.hDevice == 0) {
        m_messages.exclamation("Not connected");
        return false;
    }
    return true;
}

AutoConnect::AutoConnect(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages,
                         ConnectionHooks hooks)
    : m_lib(lib), m_doc(doc), m_messages(messages), m_hooks(std::move(hooks)) {}

void AutoConnect::start(std::string detectorPath, bool applyHV) {
    m_detectorPath = std::move(detectorPath);
    m_applyHV = applyHV;
    m_cancelled = false;
    m_windowOpen = true;
    m_timerEnabled = true;
    m_progress = 0;
    m_attempts = 0;
    m_label.clear();
}

void AutoConnect::cancel() {
    m_cancelled = true;
    m_windowOpen = false;
}

void AutoConnect::finish() {
    m_windowOpen = false;
    m_timerEnabled = false;
}

void AutoConnect::tick() {
    if (!m_timerEnabled)
        return;
    if (m_cancelled) {
        m_timerEnabled = false;
        return;
    }
    const DetectorPathParts parts = SplitDetectorPath(m_detectorPath);
    if (parts.path.empty()) {
        finish();
        return;
    }
    m_label = "Connecting to " + parts.path;
    m_progress = (m_progress + 1) % kConnectProgressSteps;
    ++m_attempts;
    OpenMca(m_lib, m_doc, m_messages, m_hooks, parts.path, std::string(), false);
    if (!m_doc.bConnected)
        return; // the next tick tries again
    m_doc.szDevicePath = m_detectorPath;
    if (m_applyHV)
        switchHighVoltageOn();
    finish();
}

void AutoConnect::switchHighVoltageOn() {
    m_doc.lHVOn = 1;
    const int32_t status = m_lib.setParam(m_doc.hDevice, DeviceParamId::HVState, m_doc.lHVOn);
    if (status != 0) {
        m_messages.critical("Failed to turn High Voltage ON: " + ErrorText(status));
        return;
    }
    Call(m_hooks.refreshSettingsControls);
}

} // namespace vexo
