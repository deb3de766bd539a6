#pragma once
// The batch sequence: each time the device stops at its preset the spectrum is saved
// under a generated name, optionally processed, optionally cleared, optionally followed
// by a waiting interval (tmrBatchWait, 500 ms), and the next measurement started, until
// the set number is reached or the user stops. The refresh tick of the acquisition
// controller calls DoBatch when it finds the device stopped in batch mode.
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "device/AcquisitionController.h"
#include "device/BatchSettings.h"
#include "device/ExternalProcessing.h"
#include "device/RefreshCode.h"

namespace vexo {

constexpr int kBatchWaitIntervalMs = 500; // tmrBatchWait
constexpr float kBatchWaitStepSeconds = 0.5f;

// What the batch asks of its owner; an empty hook is skipped.
struct BatchHooks {
    std::function<void(RefreshCode code)> refreshMainWindow; // RefreshMainWindow(code)
    std::function<void(bool enabled)> setWaitTimer;          // tmrBatchWait
    std::function<void()> processEvents;                     // let pending window events run
    // After each save attempt: the file's path and whether it was written.
    std::function<void(const std::string& path, bool saved)> fileSaved;
    // Start of a batch: remember its folder in the settings file (batch keys only).
    std::function<void(const std::string& batchDir)> rememberBatchDir;
    // The processing command's settings as they are now; without this hook the batch
    // never runs the processing command.
    std::function<ProcessSettings()> processSettings;
};

// The batch panel and the batch counter panel.
struct BatchPanelTexts {
    std::string batch;   // "BATCH ON (Waiting : 2.5)", "BATCH ON", "BATCH OFF"
    std::string counter; // "Acq. done: 3 of 10", "Acq. done: 3", "" when no batch runs
};

class BatchController {
public:
    // `programFolder` is where processing
    // falls back to for empty folders. Registers itself with `acquisition` for DoBatch and
    // for the Stop confirmation; both must outlive each other's use.
    BatchController(AcquisitionController& acquisition, std::string programFolder,
                    BatchHooks hooks = {});

    void setHooks(BatchHooks hooks) { m_hooks = std::move(hooks); }

    // frmBatch's Start with settings that passed ValidateBatchStart: keeps them with the
    // batch folder made absolute (relative to the current folder now, as is the
    // processing data folder at each save), stores that folder (hook rememberBatchDir),
    // resets the counters, clears the device when bBatchClearFirst is set and takes the
    // first step (DoBatch), which starts measurement 1.
    void begin(const BatchSettings& settings);

    // One step of the sequence (see the file comment). No device: "No MCA connection"
    // ("Batch Error", exclamation) and the batch ends. Waiting: nothing. A save that fails
    // is reported ("Error saving file: " + reason) and the sequence goes on; so does a
    // measurement whose spectrum cannot be read after it stopped, which is reported and
    // not saved (fileSaved with false).
    void DoBatch();

    // Ends the sequence: bBatchMode = false, wait timer off; the acquisition stays stopped.
    void StopBatch();

    // One tmrBatchWait tick: 0.5 s more waited, status and panels shown, and at the end
    // of the interval the timer is switched off and the next measurement started.
    void tmrBatchWait();

    bool waitTimerEnabled() const { return m_waitTimer; }
    bool bBatchMode() const { return m_acq.bBatchMode(); }
    bool bBatchStarted() const { return m_bBatchStarted; }
    bool bBatchWaiting() const { return m_bBatchWaiting; }
    float sngBatchWaited() const { return m_sngBatchWaited; }
    int16_t nBatchIndex() const { return m_nBatchIndex; }
    const BatchSettings& settings() const { return m_settings; }
    // Seconds left of the current waiting interval (lBatchWait - sngBatchWaited).
    float waitRemainingSeconds() const {
        return static_cast<float>(m_settings.lBatchWait) - m_sngBatchWaited;
    }
    const std::string& lastFile() const { return m_lastFile; }

    BatchPanelTexts panelTexts() const;

private:
    void abortByUser();
    void resetCounters();
    void setWaitTimer(bool enabled);
    void refresh(RefreshCode code);
    void saveMeasurement();
    void startMeasurement();
    // `folder` taken relative to the folder current when the batch began.
    std::string absoluteFolder(const std::string& folder) const;

    AcquisitionController& m_acq;
    std::string m_programFolder;
    BatchHooks m_hooks;
    BatchSettings m_settings;
    std::filesystem::path m_startFolder;

    int16_t m_nBatchIndex = 0;
    bool m_bBatchStarted = false;
    bool m_bBatchWaiting = false;
    float m_sngBatchWaited = 0.0f;
    bool m_waitTimer = false;
    std::string m_lastFile;
};

// The two panel texts for a batch state; `waitRemainingSeconds` counts only while waiting.
BatchPanelTexts MakeBatchPanelTexts(bool batchOn, bool waiting, float waitRemainingSeconds,
                                    int done, bool untilStop, int count);

} // namespace vexo
