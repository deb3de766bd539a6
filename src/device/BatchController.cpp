#include "device/BatchController.h"

#include "device/ExternalProcessing.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {

BatchPanelTexts MakeBatchPanelTexts(bool batchOn, bool waiting, float waitRemainingSeconds,
                                    int done, bool untilStop, int count) {
    return {BatchPanelText(batchOn, waiting, waitRemainingSeconds),
            BatchCounterText(batchOn, done, untilStop, count)};
}

BatchController::BatchController(AcquisitionController& acquisition, std::string programFolder,
                                 BatchHooks hooks)
    : m_acq(acquisition), m_programFolder(std::move(programFolder)), m_hooks(std::move(hooks)) {
    m_acq.setBatchHandlers({[this] { DoBatch(); }, [this] { abortByUser(); }});
}

BatchPanelTexts BatchController::panelTexts() const {
    return MakeBatchPanelTexts(m_acq.bBatchMode(), m_bBatchWaiting, waitRemainingSeconds(),
                               m_nBatchIndex, m_settings.bBatchUntilStop, m_settings.nBatchCount);
}

void BatchController::refresh(RefreshCode code) {
    if (m_hooks.refreshMainWindow)
        m_hooks.refreshMainWindow(code);
}

void BatchController::setWaitTimer(bool enabled) {
    m_waitTimer = enabled;
    if (m_hooks.setWaitTimer)
        m_hooks.setWaitTimer(enabled);
}

void BatchController::resetCounters() {
    m_nBatchIndex = 0;
    m_bBatchStarted = false;
    m_bBatchWaiting = false;
    m_sngBatchWaited = 0.0f;
}

void BatchController::begin(const BatchSettings& settings) {
    m_settings = settings;
    // A failed processing run may leave the current folder elsewhere (as the processing
    // command does); the batch's folders are fixed now, so it cannot move them.
    std::error_code ec;
    m_startFolder = std::filesystem::current_path(ec);
    m_settings.szBatchDir = absoluteFolder(settings.szBatchDir);
    if (m_hooks.rememberBatchDir)
        m_hooks.rememberBatchDir(m_settings.szBatchDir);
    setWaitTimer(false);
    resetCounters();
    // The device may still hold the spectrum of an earlier run, which would otherwise
    // be saved as the first measurement.
    if (m_settings.bBatchClearFirst && m_acq.connected())
        m_acq.clear();
    DoBatch();
}

std::string BatchController::absoluteFolder(const std::string& folder) const {
    if (folder.empty())
        return folder;
    return (m_startFolder / std::filesystem::path(folder)).lexically_normal().string();
}

void BatchController::DoBatch() {
    if (!m_acq.connected()) {
        m_acq.messages().exclamation("No MCA connection", "Batch Error");
        // Nothing can be measured any more; end the sequence instead of leaving it on.
        if (m_acq.bBatchMode())
            StopBatch();
        return;
    }
    if (m_bBatchWaiting)
        return;
    if (m_bBatchStarted) {
        saveMeasurement();
        // 32767 is the largest index a file name can carry; an endless batch ends there.
        if ((!m_settings.bBatchUntilStop && m_nBatchIndex >= m_settings.nBatchCount) ||
            m_nBatchIndex == INT16_MAX) {
            StopBatch();
            return;
        }
        if (m_settings.bBatchClear) {
            m_acq.clear();
            if (!m_acq.bBatchMode())
                return; // the device went away while clearing; the batch has ended
        }
        if (m_settings.bBatchWait) {
            m_bBatchWaiting = true;
            m_sngBatchWaited = 0.0f;
            setWaitTimer(true);
            refresh(RefreshCode::OptionsBatch);
            return;
        }
    } else {
        m_bBatchStarted = true; // the first pass only starts measurement 1
    }
    startMeasurement();
}

void BatchController::saveMeasurement() {
    SpectrumDocument& doc = m_acq.document();
    ++m_nBatchIndex;
    m_lastFile = BatchFileName(m_settings, doc.szSpectrumID, m_nBatchIndex, m_acq.now());
    // Only a spectrum read after the device stopped is this measurement's; the record
    // may still hold an earlier read (or the previous measurement's).
    if (!m_acq.readFinalSpectrum()) {
        m_acq.messages().exclamation(FinalReadFailedText(m_acq.lastReadError(), m_lastFile));
        if (m_hooks.fileSaved)
            m_hooks.fileSaved(m_lastFile, false);
        return;
    }
    std::string error;
    const bool saved = bSaveFullSpectrum(doc, m_lastFile, &error);
    if (!saved)
        m_acq.messages().exclamation("Error saving file: " + error);
    if (m_hooks.fileSaved)
        m_hooks.fileSaved(m_lastFile, saved);
    if (m_settings.bBatchProc && m_hooks.processSettings) {
        ProcessSettings process = m_hooks.processSettings();
        process.szDataDir = absoluteFolder(process.szDataDir);
        RunExternalProcessing(doc, process, m_acq.messages(), m_programFolder, m_acq.now());
    }
}

void BatchController::startMeasurement() {
    m_acq.setBatchMode(true);
    m_acq.DisplayStatus();
    refresh(RefreshCode::Acquisition);
    refresh(RefreshCode::OptionsBatch);
    if (m_hooks.processEvents)
        m_hooks.processEvents();
    // A refused start (its error already shown) would otherwise be found "stopped" by
    // the next tick and saved again as a new measurement.
    if (m_acq.bBatchMode() && !m_acq.start())
        StopBatch();
}

void BatchController::StopBatch() {
    setWaitTimer(false);
    m_bBatchWaiting = false;
    m_sngBatchWaited = 0.0f;
    m_acq.setBatchMode(false);
    refresh(RefreshCode::Acquisition);
    refresh(RefreshCode::OptionsBatch);
}

void BatchController::abortByUser() {
    setWaitTimer(false);
    resetCounters();
    m_acq.setBatchMode(false);
    refresh(RefreshCode::OptionsBatch);
}

void BatchController::tmrBatchWait() {
    if (!m_waitTimer)
        return;
    if (m_bBatchStarted && m_bBatchWaiting)
        m_sngBatchWaited += kBatchWaitStepSeconds;
    m_acq.DisplayStatus();
    if (!m_waitTimer)
        return; // the poll found the device gone and the batch has ended
    refresh(RefreshCode::OptionsBatch);
    if (m_hooks.processEvents)
        m_hooks.processEvents();
    if (m_sngBatchWaited >= static_cast<float>(m_settings.lBatchWait)) {
        setWaitTimer(false);
        m_bBatchWaiting = false;
        m_sngBatchWaited = 0.0f;
        refresh(RefreshCode::Acquisition);
        startMeasurement();
    }
}

} // namespace vexo
