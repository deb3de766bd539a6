#pragma once
// What the acquire, batch and scope commands share: the device library and the record,
// the connection, the settings given on the command line (--preset, --set, --mcs, --hv)
// applied with write-all, and the pacing of the 500 ms ticks.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Messages.h"
#include "device/DeviceLibrary.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {
class AcquisitionController;
}

namespace vexo::cli {

class ArgCursor;

// Ctrl-C (SIGINT) and SIGTERM end a measuring command: the handler only notes the
// signal, and the command notices it between ticks (so a file being written is finished
// first) and throws Interrupted; the session then stops the acquisition and closes the
// device, and main exits with 128 + the signal.
void CatchInterrupts();
// Throws Interrupted once a signal has arrived.
void ThrowIfInterrupted();

// --preset live:S | real:S | counts:N:FIRST:LAST | forever:S
struct PresetChoice {
    enum class Kind { Live, Real, Counts, Forever } kind = Kind::Live;
    float seconds = 0.0f; // live, real, forever
    int32_t counts = 0, first = 0, last = 0;
};
// Throws UsageError for anything else, non-finite times included.
PresetChoice ParsePreset(const std::string& text);

// --mcs DWELL:LOW:HIGH (dwell seconds per channel, SCA window channels).
struct McsChoice {
    float dwellSeconds = 0.0f;
    int32_t low = 0, high = 0;
};
McsChoice ParseMcs(const std::string& text);

// Sets one MCA setting of the record by its field name (lCoarseGain, sngHighVoltage ...).
// Throws UsageError for an unknown name or a value that is not a number of its type.
void SetRecordField(SpectrumDocument& doc, const std::string& name, const std::string& value);

// Options every measuring command takes.
struct DeviceOptions {
    std::string device;
    std::optional<PresetChoice> preset;
    std::vector<std::pair<std::string, std::string>> sets;
    std::optional<McsChoice> mcs;
    bool hvOn = false;
};

// Takes `arg` (and its value from the cursor) when it is one of the options above;
// returns false for any other argument. Throws UsageError for a missing or bad value.
bool ParseDeviceOption(const std::string& arg, ArgCursor& cursor, DeviceOptions& o);

// Status polls that may fail in a row before a measuring command gives up on the device.
constexpr int kMaxFailedPolls = 20;

// Failure "the device does not answer: " and the last poll's error text once
// kMaxFailedPolls status polls in a row have failed.
void FailWhenSilent(const AcquisitionController& acq);

// Waits between ticks: VEXO_TICK_MS milliseconds of wall time (default 500). A simulated
// analyser on a step clock needs no real waiting, so its users set it to 0.
class TickPacer {
public:
    TickPacer();
    void wait() const;
    int milliseconds() const { return m_ms; }

private:
    int m_ms = 500;
};

// One open analyser with its record. Stops any acquisition and closes the device when
// destroyed.
class MeasureSession {
public:
    // Loads the library (Failure when it cannot) and opens options.device as the Connect
    // command does (Failure when that fails; the reason is printed as the program's
    // message on stderr).
    explicit MeasureSession(const DeviceOptions& options);
    ~MeasureSession();
    MeasureSession(const MeasureSession&) = delete;
    MeasureSession& operator=(const MeasureSession&) = delete;

    // Applies preset, MCS choice, --set values and the HV switch to the record, writes
    // everything with write-all (which does not look at the answers) and reads it all
    // back, so the record holds what the device took: each --set value the device refused
    // is warned about on stderr. Failure, before anything is started, when the mode or
    // the preset in force is not the one asked for or cannot be read back. With --hv on
    // waits (ticking) until the HV word no longer reports ramping; Failure when the ramp
    // does not end in 600 ticks.
    void applySettings();

    DeviceLibrary& library() { return *m_library; }
    SpectrumDocument& document() { return *m_doc; }
    RoiCollection& rois() { return m_rois; }
    Messages& messages() { return m_messages; }
    const TickPacer& pacer() const { return m_pacer; }
    const DeviceOptions& options() const { return m_options; }

private:
    void waitForHighVoltage();
    void warnRefusedSets(const SpectrumDocument& asked) const;
    void requirePresetInForce(const SpectrumDocument& asked);

    DeviceOptions m_options;
    std::unique_ptr<DeviceLibrary> m_library;
    std::unique_ptr<SpectrumDocument> m_doc; // the counts array is large
    RoiCollection m_rois;
    StderrMessages m_messages;
    TickPacer m_pacer;
};

} // namespace vexo::cli
