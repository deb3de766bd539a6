#include "device/AcquisitionController.h"

#include <algorithm>

#include "base/DateTime.h"
#include "base/NumberText.h"
#include "device/ConnectionController.h"
#include "device/DeviceIO.h"
#include "spectrum/CountRate.h"

namespace vexo {

bool IsConnectionLostCode(int32_t status) {
    // -1/-2 not connected, -9 connection closed, -15 invalid handle: no later call on
    // this handle can succeed. Send/receive failures may pass and are retried instead.
    return status == -1 || status == -2 || status == -9 || status == -15;
}

std::string FinalReadFailedText(int32_t error, const std::string& path) {
    return "The spectrum could not be read after the measurement (" + ErrorText(error) + "); " +
           path + " was not saved";
}

AcquisitionController::AcquisitionController(DeviceLibrary& lib, SpectrumDocument& doc,
                                             RoiCollection& rois, Messages& messages,
                                             AcquisitionHooks hooks, std::function<double()> now)
    : m_lib(lib), m_doc(doc), m_rois(rois), m_messages(messages), m_hooks(std::move(hooks)),
      m_now(now ? std::move(now) : std::function<double()>(NowSerial)),
      m_scratch(KORVHW_SPECTRUM_SLOTS) {}

void AcquisitionController::refresh(RefreshCode code) {
    if (m_hooks.refreshMainWindow)
        m_hooks.refreshMainWindow(code);
}

void AcquisitionController::noteDevice() {
    if (m_doc.hDevice == m_identityHandle)
        return;
    m_identityHandle = m_doc.hDevice;
    m_deviceName = m_doc.szDeviceName;
    m_deviceSerial = m_doc.szDeviceSerial;
}

void AcquisitionController::deviceConnected() {
    m_identityHandle = 0;
    noteDevice();
}

bool AcquisitionController::start() {
    noteDevice();
    if (m_doc.hDevice == 0) {
        m_messages.show({"Vexo", "Not connected", MsgIcon::None, MsgButtons::Ok});
        return false;
    }
    if (m_bCleared)
        m_doc.dtMeasured = m_now();
    const int32_t rc = m_lib.startAcquisition(m_doc.hDevice);
    if (rc != 0) {
        m_messages.critical(ErrorText(rc));
        return false;
    }
    // A spectrum opened from a file meanwhile may have put its own identity into the
    // record; the new measurement is this device's.
    m_doc.szDeviceName = m_deviceName;
    m_doc.szDeviceSerial = m_deviceSerial;
    // Likewise its settings snapshot: the new measurement is taken with the device's.
    if (m_doc.bFromFile)
        ReadAllParams(m_lib, m_doc);
    m_bAcqActive = true;
    m_bCleared = false;
    m_finalReadPending = true;
    m_texts.notice.clear();
    refresh(RefreshCode::Acquisition);
    return true;
}

bool AcquisitionController::stop() {
    if (m_bBatchMode) {
        const Message question{"Stop Batch Acquisition",
                               "You're under batch mode\r\nStop will abort the Batch sequence\r\n"
                               "Do you want to Stop?",
                               MsgIcon::Exclamation, MsgButtons::OkCancel};
        if (m_messages.show(question) != MsgAnswer::Ok)
            return false;
        if (m_batch.abortBatch)
            m_batch.abortBatch();
        m_bBatchMode = false;
    }
    if (m_doc.hDevice != 0) {
        const int32_t rc = m_lib.stopAcquisition(m_doc.hDevice);
        if (rc != 0)
            m_messages.critical(ErrorText(rc));
    }
    m_bAcqActive = false;
    refresh(RefreshCode::Acquisition);
    return true;
}

void AcquisitionController::clear() {
    if (m_doc.hDevice == 0) {
        m_messages.show({"Vexo", "Not connected", MsgIcon::None, MsgButtons::Ok});
        return;
    }
    // The status poll below sees the stopped device; whether to restart is decided by
    // the state before clearing.
    const bool wasRunning = m_bAcqActive;
    // Both calls are made whatever the first answers: a device that refuses to stop
    // (already stopped on some firmware) still has its memory cleared.
    const int32_t stopRc = m_lib.stopAcquisition(m_doc.hDevice);
    const int32_t clearRc = m_lib.clearAll(m_doc.hDevice);
    int32_t rc = stopRc != 0 ? stopRc : clearRc;
    if (rc != 0)
        m_messages.critical(ErrorText(rc));
    m_bCleared = true;
    m_finalReadPending = false; // nothing measured is left to read
    AcquisitionUpdate update;
    readSpectrumAndRois(update);
    update.statusPolled = DisplayStatus();
    announce(update);
    if (wasRunning && m_doc.hDevice != 0) {
        m_doc.dtMeasured = m_now();
        rc = m_lib.startAcquisition(m_doc.hDevice);
        if (rc != 0) {
            m_messages.critical(ErrorText(rc));
            m_bAcqActive = false;
            return;
        }
        m_bAcqActive = true;
        m_bCleared = false;
        m_finalReadPending = true; // a new measurement, whose end is still to be read
    }
}

void AcquisitionController::tick() {
    noteDevice();
    if (m_doc.hDevice == 0)
        return;
    AcquisitionUpdate update;
    if (m_bAcqActive) {
        update.statusPolled = DisplayStatus();
        // Read after the poll: once it has found the device stopped, this read holds the
        // measurement's last counts.
        const bool stopped = update.statusPolled && !m_bAcqActive;
        readSpectrumAndRois(update);
        if (stopped && update.spectrumRead)
            finalSpectrumRead();
    } else {
        update.statusPolled = checkStopped(update);
    }
    announce(update);
    // The scope polls after the status and spectrum work of the same tick.
    if (m_doc.hDevice != 0 && m_hooks.scopeCycle)
        m_hooks.scopeCycle();
}

void AcquisitionController::showDevice() {
    noteDevice();
    AcquisitionUpdate update;
    update.statusPolled = DisplayStatus();
    readSpectrumAndRois(update);
    announce(update);
}

void AcquisitionController::readSpectrumAndRois(AcquisitionUpdate& update) {
    if (m_doc.hDevice == 0 || !readSpectrum())
        return;
    update.spectrumRead = true;
    updateRois();
    update.roisUpdated = true;
}

void AcquisitionController::announce(const AcquisitionUpdate& update) {
    if (!update.statusPolled && !update.spectrumRead)
        return;
    if (m_hooks.updated)
        m_hooks.updated(update);
}

bool AcquisitionController::readFinalSpectrum(int attempts) {
    for (int i = 0; m_finalReadPending && i < attempts && m_doc.hDevice != 0; ++i)
        if (readSpectrum())
            finalSpectrumRead();
    return !m_finalReadPending;
}

void AcquisitionController::finalSpectrumRead() {
    if (!m_finalReadPending)
        return;
    m_finalReadPending = false;
    if ((m_hvState & kHVOn) != 0 || m_doc.lChannels < 1)
        return;
    const auto first = m_doc.lCounts.begin();
    if (std::all_of(first, first + m_doc.lChannels, [](int32_t c) { return c == 0; }))
        m_texts.notice = kNoCountsHvOff;
}

bool AcquisitionController::checkStopped(AcquisitionUpdate& update) {
    const bool polled = DisplayStatus();
    if (m_doc.hDevice == 0)
        return polled;
    int32_t status = -1;
    const int32_t rc = m_lib.getAcquisitionStatus(m_doc.hDevice, status);
    if (rc != 0) {
        connectionLost(rc);
        return polled;
    }
    if (status != 0)
        return polled;
    if (m_finalReadPending) {
        // The read of the tick that found the device stopped failed: try again.
        readSpectrumAndRois(update);
        if (update.spectrumRead)
            finalSpectrumRead();
    }
    if (m_bBatchMode) {
        if (m_batch.doBatch)
            m_batch.doBatch();
    } else {
        refresh(RefreshCode::Acquisition);
    }
    return polled;
}

bool AcquisitionController::DisplayStatus() {
    noteDevice();
    if (m_doc.hDevice == 0)
        return false;
    int32_t status = 0, mode = 0, hv = 0;
    int32_t rc = m_lib.getAcquisitionStatus(m_doc.hDevice, status);
    if (rc == 0)
        rc = m_lib.getParam(m_doc.hDevice, DeviceParamId::AcqMode, mode);
    if (rc == 0)
        rc = m_lib.getParam(m_doc.hDevice, DeviceParamId::HVState, hv);
    if (rc != 0) {
        ++m_failedPolls;
        m_lastPollError = rc;
        connectionLost(rc);
        return false;
    }
    m_failedPolls = 0;
    m_statusWord = status;
    m_deviceMode = mode;
    m_hvState = hv;
    m_texts.status = AcquisitionStatusText(status, ModelCode(m_deviceSerial), hv, m_bBatchMode);
    presetText();
    m_bAcqActive = status != 0;
    return true;
}

void AcquisitionController::presetText() {
    const int32_t mode = m_doc.lPresetMode;
    // A mode that names neither a time nor a counts preset (external start alone) shows
    // no preset text either, rather than the previous mode's.
    m_texts.preset.clear();
    if (mode == 0 || mode == 1 || mode == 6 || mode == 7)
        return;
    if (mode & kPresetTimeActive)
        m_texts.preset = std::string((mode & kPresetLiveTime) ? "Live Time = " : "Real Time = ") +
                         SingleToText(m_doc.sngPresetTime) + " sec";
    // A counts preset names the end condition that matters most, so it is the one shown
    // when both are set.
    if (mode & kPresetCountsActive)
        m_texts.preset = "Counts = " + std::to_string(m_doc.lPresetCounts);
}

bool AcquisitionController::readSpectrum() {
    if (m_doc.hDevice == 0)
        return false;
    // Read into a scratch buffer so a failing call cannot leave half a spectrum behind.
    std::vector<int32_t>& buffer = m_scratch;
    std::fill(buffer.begin(), buffer.end(), 0);
    int32_t channels = 0;
    float realTime = 0.0f, liveTime = 0.0f;
    const int32_t rc =
        m_lib.readSpectrum(m_doc.hDevice, buffer.data(), channels, realTime, liveTime);
    if (rc != 0) {
        m_lastReadError = rc;
        if (!connectionLost(rc))
            m_texts.notice = kSpectrumReadFailed + ErrorText(rc);
        return false;
    }
    if (m_texts.notice.rfind(kSpectrumReadFailed, 0) == 0)
        m_texts.notice.clear();
    channels = std::clamp<int32_t>(channels, 0, MAX_CHANNELS);
    std::copy(buffer.begin(), buffer.end(), m_doc.lCounts.begin());
    m_doc.lChannels = channels;
    m_doc.sngRealTime = realTime;
    m_doc.sngLiveTime = liveTime;

    m_readings.deadTimePercent = realTime > 0.0f ? (1.0f - liveTime / realTime) * 100.0f : 0.0f;
    m_readings.countRate = CountRate(m_doc);

    int32_t mcsChannel = 0;
    const bool haveMcs =
        m_doc.lMCSMode != 0 &&
        m_lib.getParam(m_doc.hDevice, DeviceParamId::McsCurrentChannel, mcsChannel) == 0;
    m_readings.mcsChannel = haveMcs ? std::optional<int32_t>(mcsChannel) : std::nullopt;
    elapsedTexts(mcsChannel, haveMcs);
    m_texts.countRate = FormatSingle(m_readings.countRate, "0.0") + " cps";

    int32_t inputCounts = 0;
    if (m_lib.getParam(m_doc.hDevice, DeviceParamId::InputCounts, inputCounts) == 0) {
        // A fresh start has no real time yet; its throughput is shown as 0.
        const float icr = realTime > 0.0f
                              ? static_cast<float>(inputCounts / static_cast<double>(realTime))
                              : 0.0f;
        m_readings.inputCountRate = icr;
        m_texts.icr = "ICR " + FormatSingle(icr, "0.0") + " cps";
    }
    return true;
}

void AcquisitionController::elapsedTexts(int32_t mcsChannel, bool haveMcsChannel) {
    const std::string live = FormatSingle(m_doc.sngLiveTime, "0.0");
    const std::string real = FormatSingle(m_doc.sngRealTime, "0.0");
    const std::string dead = FormatSingle(m_readings.deadTimePercent, "0.00");
    if (m_doc.lMCSMode != 0) {
        m_texts.elapsed = "Elapsed time (seconds): " + live + " live" + ", " + real + " real*" +
                          " " + "(" + dead + "% dead), " + "channel: " +
                          (haveMcsChannel ? std::to_string(mcsChannel) : std::string{});
    } else {
        m_texts.elapsed = "Elapsed time (seconds): " + live + " live" + ", " + real + " real" +
                          " " + "(" + dead + "% dead)";
    }
}

void AcquisitionController::updateRois() {
    m_roiReadouts.clear();
    if (m_rois.empty())
        return;
    for (clsROI& roi : m_rois)
        m_roiReadouts.push_back(UpdateCompROI(roi, m_doc.sngLiveTime, m_doc));
}

bool AcquisitionController::connectionLost(int32_t status) {
    if (!IsConnectionLostCode(status))
        return false; // one failed call: the screen stays as it is, the next tick retries
    const bool batch = m_bBatchMode;
    m_bAcqActive = false;
    CloseMca(m_lib, m_doc);
    noteDevice();
    // In a batch the sequence reports the loss itself ("No MCA connection") and ends.
    if (batch && m_batch.doBatch)
        m_batch.doBatch();
    else
        m_messages.critical("Lost the connection to the MCA: " + ErrorText(status));
    if (m_hooks.connectionLost)
        m_hooks.connectionLost();
    else
        refresh(RefreshCode::All);
    return true;
}

} // namespace vexo
