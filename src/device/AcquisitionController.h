#pragma once
// Start, Stop and Clear of the open analyser and the 500 ms refresh tick (tmrRefresh)
// that keeps the record and the status bar in step with it: status poll, spectrum read,
// elapsed times, dead time, count rate, input count rate and the ROI figures, and the
// notice that the device stopped by itself (a preset reached), which in batch mode hands
// over to the batch sequence. Headless: the window binds its timer to tick(), shows
// panelTexts() and applies the refresh codes it is handed.
//
// Wiring in a window: tmrRefresh (kRefreshIntervalMs) -> tick(); hooks.refreshMainWindow
// -> RefreshMainWindow(code); hooks.updated -> redraw the plots, the status texts and the
// ROI read-outs (roiReadouts()); hooks.scopeCycle -> ScopeController::DisplayWaveform
// when the scope is shown; hooks.connectionLost -> the Disconnect command's clean-up
// (timers off, device windows closed, full refresh). Menu Start/Stop/Clear ->
// start()/stop()/clear(). After a successful connect call deviceConnected().
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Messages.h"
#include "device/DeviceLibrary.h"
#include "device/RefreshCode.h"
#include "roi/RoiCollection.h"
#include "roi/RoiReadout.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

constexpr int kRefreshIntervalMs = 500; // tmrRefresh

// The status-bar texts of the acquisition, as the window shows them. A text is only
// rewritten by the step that owns it; a failing step leaves the old text.
struct AcquisitionPanelTexts {
    std::string status;    // panel 3: "Acquiring", "(Batch) Stopped", "HV ramping" ...
    std::string preset;    // "Live Time = 10 sec", "Real Time = 5 sec", "Counts = 1000", ""
    std::string elapsed;   // "Elapsed time (seconds): 1.5 live, 2.0 real (25.00% dead)"
    std::string countRate; // "123.4 cps"
    std::string icr;       // "ICR 150.0 cps"
    // What the operator should know about the spectrum on show: "Spectrum read failed:
    // " + the error text (the counts shown are the last good ones), or kNoCountsHvOff
    // after a measurement that ended empty with the high voltage off; "" otherwise.
    std::string notice;
};

constexpr const char* kSpectrumReadFailed = "Spectrum read failed: ";
constexpr const char* kNoCountsHvOff = "No counts: the high voltage is off";
// Reads tried before the spectrum of a stopped measurement is given up as unreadable.
constexpr int kFinalReadAttempts = 5;

// The figures behind the texts, from the latest spectrum read.
struct AcquisitionReadings {
    float deadTimePercent = 0.0f;        // 0 while the real time is 0
    float countRate = 0.0f;              // counts per second of live time
    std::optional<float> inputCountRate; // input counts per second of real time
    std::optional<int32_t> mcsChannel;   // channel the MCS scan is filling
};

// What one pass of the controller (a refresh tick, Clear, a read after connecting)
// brought up to date. It is announced once, after everything it names is updated, so a
// window that redraws from it never shows figures of two different spectra.
struct AcquisitionUpdate {
    bool statusPolled = false; // status and preset texts are from this pass
    bool spectrumRead = false; // counts, times, rates and their texts are from this pass
    bool roisUpdated = false;  // the ROI figures are those of this pass's spectrum
};

// What the acquisition asks of its owner; an empty hook is skipped.
struct AcquisitionHooks {
    std::function<void(RefreshCode code)> refreshMainWindow; // RefreshMainWindow(code)
    // End of a pass that polled the status or read the spectrum: redraw from the record,
    // panelTexts() and roiReadouts().
    std::function<void(const AcquisitionUpdate& update)> updated;
    // The device stopped answering (closed link, invalid handle). The controller has
    // already closed it (hDevice = 0); the owner stops its timers and shows the
    // disconnected state. Without this hook the controller asks for a full refresh (0).
    std::function<void()> connectionLost;
    // At the end of every tick with a device: the scope window, when it is open and
    // visible, runs its cycle here (ScopeController::DisplayWaveform).
    std::function<void()> scopeCycle;
};

// The batch sequence's entry points, set by the batch controller.
struct BatchHandlers {
    std::function<void()> doBatch;    // the device was found stopped in batch mode
    std::function<void()> abortBatch; // the user confirmed Stop during a batch
};

class AcquisitionController {
public:
    // `now` gives the serial date-time for dtMeasured (shell/DateTime.h NowSerial when
    // empty). The library and the record must outlive the controller.
    // `rois` are the analysis records of the record's ROIs, recomputed every tick.
    AcquisitionController(DeviceLibrary& lib, SpectrumDocument& doc, RoiCollection& rois,
                          Messages& messages, AcquisitionHooks hooks = {},
                          std::function<double()> now = {});

    void setHooks(AcquisitionHooks hooks) { m_hooks = std::move(hooks); }
    void setBatchHandlers(BatchHandlers handlers) { m_batch = std::move(handlers); }

    // Takes the identity (name, serial) of the device just opened. The controller also
    // notices a new handle by itself at its next call; this covers a reconnect that
    // happens to get the same handle back.
    void deviceConnected();

    // mnuMCAStart. No device: "Not connected". StartAcquisition failing shows its error
    // text and changes nothing. On success: dtMeasured stamped when the spectrum was
    // cleared, device name and serial copied into the spectrum, running state, code 2.
    // Returns true when the acquisition was started.
    bool start();

    // mnuMCAStop. In batch mode the user is asked first ("Stop Batch Acquisition");
    // Cancel returns false with everything left running, OK aborts the batch. Then
    // StopAcquisition (its error text shown on failure), bAcqActive = false, code 2.
    bool stop();

    // mnuMCAClear: StopAcquisition and ClearAll, the empty spectrum and status shown
    // (one `updated` notice), and a running acquisition restarted from zero with a new
    // dtMeasured.
    void clear();

    // One tmrRefresh tick; does nothing without a device. Running: status, spectrum and
    // ROI figures. Stopped: status, then a status read; a device found stopped whose
    // final spectrum has not been read yet is read again, then it hands over to the batch
    // (batch mode) or asks for code 2. Then the `updated` notice, and last the scopeCycle
    // hook.
    void tick();

    // The spectrum of a measurement that has stopped, as a file may take it: true when a
    // read after the device stopped has succeeded, trying up to `attempts` more reads when
    // none has yet. False leaves the last good counts in the record, which then belong to
    // no finished measurement; lastReadError() says why. Call only with the device stopped.
    bool readFinalSpectrum(int attempts = kFinalReadAttempts);
    // A measurement was started and the spectrum it ended with has not been read since.
    bool finalReadPending() const { return m_finalReadPending; }
    // The record now shows a spectrum opened from a file: a stopped measurement whose
    // spectrum was never read is no longer read into it, and its notice is dropped.
    void fileOpened() {
        m_finalReadPending = false;
        m_texts.notice.clear();
    }
    int32_t lastReadError() const { return m_lastReadError; }

    // The spectrum and status of the device just opened, shown at once rather than at
    // the next tick: status poll, spectrum read, ROI figures, one `updated` notice.
    void showDevice();

    // Status poll: status word, mode (id 5) and HV word (id 22). When any of the three
    // fails nothing changes and false is returned. Otherwise the status and preset
    // texts are set and bAcqActive = (status word != 0).
    bool DisplayStatus();

    // Spectrum read into lCounts, lChannels, sngRealTime, sngLiveTime, with dead time,
    // count rate, MCS channel (id 27) or input count rate (id 35) and their texts. A
    // failing read leaves the record and the texts as they were and returns false.
    // Announces nothing: the pass that called it does, once it is complete.
    bool readSpectrum();

    // Re-analyses every ROI with the current live time (nothing when there are none).
    void updateRois();

    const AcquisitionPanelTexts& panelTexts() const { return m_texts; }
    const AcquisitionReadings& readings() const { return m_readings; }
    const std::vector<RoiReadout>& roiReadouts() const { return m_roiReadouts; }

    bool bAcqActive() const { return m_bAcqActive; }
    bool bCleared() const { return m_bCleared; }
    bool bBatchMode() const { return m_bBatchMode; }
    void setBatchMode(bool on) { m_bBatchMode = on; }
    bool connected() const { return m_doc.hDevice != 0; }
    // Status word of the latest successful poll (0 stopped, bits 1/2/4).
    int32_t statusWord() const { return m_statusWord; }
    // Status polls that failed in a row (0 after a good one), and the latest failure's
    // library code: a caller without a user to watch can give up on a silent device.
    int consecutiveFailedPolls() const { return m_failedPolls; }
    int32_t lastPollError() const { return m_lastPollError; }
    // Acquisition mode the device reported at the latest poll (0 PHA, 1 MCS).
    int32_t deviceMode() const { return m_deviceMode; }
    // HV word (id 22) of the latest successful poll.
    int32_t hvState() const { return m_hvState; }

    const std::string& deviceSerial() const { return m_deviceSerial; }
    DeviceLibrary& library() { return m_lib; }
    SpectrumDocument& document() { return m_doc; }
    Messages& messages() { return m_messages; }
    double now() const { return m_now(); }

private:
    bool connectionLost(int32_t status);
    // The stopped branch of a tick; true when its status poll succeeded.
    bool checkStopped(AcquisitionUpdate& update);
    void noteDevice();
    void presetText();
    void elapsedTexts(int32_t mcsChannel, bool haveMcsChannel);
    void refresh(RefreshCode code);
    // Spectrum read, then the ROI figures of it; what was done is added to `update`.
    void readSpectrumAndRois(AcquisitionUpdate& update);
    void announce(const AcquisitionUpdate& update);
    // A read after the device stopped succeeded: the record holds the measurement's
    // spectrum. Warns when it is empty with the high voltage off.
    void finalSpectrumRead();

    DeviceLibrary& m_lib;
    SpectrumDocument& m_doc;
    RoiCollection& m_rois;
    Messages& m_messages;
    AcquisitionHooks m_hooks;
    BatchHandlers m_batch;
    std::function<double()> m_now;

    bool m_bAcqActive = false;
    bool m_bCleared = false;
    bool m_bBatchMode = false;
    int32_t m_statusWord = 0;
    int32_t m_deviceMode = 0;
    int32_t m_hvState = 0;
    // The open device's identity, kept apart from the record's spectrum identity (which
    // a file opened while connected replaces): the model code gates the status texts.
    DeviceHandle m_identityHandle = 0;
    std::string m_deviceName;
    std::string m_deviceSerial;
    AcquisitionPanelTexts m_texts;
    AcquisitionReadings m_readings;
    std::vector<RoiReadout> m_roiReadouts;
    std::vector<int32_t> m_scratch; // ReadSpectrum's target, KORVHW_SPECTRUM_SLOTS values
    int m_failedPolls = 0;
    int32_t m_lastPollError = 0;
    bool m_finalReadPending = false;
    int32_t m_lastReadError = 0;
};

// The report of a measurement whose spectrum could not be read after it stopped, so that
// `path` was not written.
std::string FinalReadFailedText(int32_t error, const std::string& path);

// Library codes that mean the device is gone rather than that one call failed.
bool IsConnectionLostCode(int32_t status);

} // namespace vexo
