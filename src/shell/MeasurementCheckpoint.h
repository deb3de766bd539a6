#pragma once
// The running measurement kept safe from a crash or a power cut. While the analyser
// acquires, the spectrum is written every 10 s, and once more when the run stops, as a
// full spectrum file "Vexo_checkpoint.spe" in the application folder (through a temporary
// file flushed to disk and renamed, so the checkpoint is never torn). Saving the
// measurement removes it. A checkpoint found at start-up is therefore a measurement
// nobody saved, and the program offers to reopen it.
//
// Tick-driven: the window calls tick() after every refresh pass of the acquisition,
// saved() after the user's Save All and after each batch save, and offerRecovery() once
// at start-up.
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "base/Messages.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

constexpr double kCheckpointIntervalSeconds = 10.0;
constexpr const char* kCheckpointFile = "Vexo_checkpoint.spe";

class MeasurementCheckpoint {
public:
    // `clock` gives monotonic seconds (the steady clock when empty); `messages` hears of
    // the first checkpoint that cannot be written, and answers the recovery question.
    MeasurementCheckpoint(const std::filesystem::path& appDir, Messages& messages,
                          std::function<double()> clock = {});

    // After a refresh pass; `acquiring` says whether the analyser runs now. While it runs
    // the spectrum is written each time the interval has passed since the run started or
    // since the last write; on the first pass that finds a run ended, once more. Nothing
    // is written for a spectrum unchanged since the last write or save. False when a
    // write failed (the next pass tries again; only the first failure in a row is told).
    bool tick(const SpectrumDocument& doc, bool acquiring);

    // The measurement `doc` holds was saved: the checkpoint goes, and comes back only
    // when the spectrum changes.
    void saved(const SpectrumDocument& doc);

    // At start-up: when a checkpoint is left, asks "Recover the measurement of <date>?"
    // (with its spectrum ID in quotes when it has one). Yes opens it into `doc` and
    // `rois` as File > Open does and returns true; No removes it. A checkpoint that
    // cannot be read is reported and left on disk.
    bool offerRecovery(SpectrumDocument& doc, RoiCollection& rois);

    const std::filesystem::path& file() const { return m_file; }

private:
    bool write(const SpectrumDocument& doc);

    std::filesystem::path m_file;
    Messages& m_messages;
    std::function<double()> m_clock;
    bool m_wasAcquiring = false;
    double m_lastWrite = 0.0;       // clock time of the run's start or of the last write
    std::optional<uint64_t> m_kept; // fingerprint of the spectrum last written or saved
    bool m_failureTold = false;
};

} // namespace vexo
