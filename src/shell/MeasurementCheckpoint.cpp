#include "shell/MeasurementCheckpoint.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <system_error>

#include "base/DateTime.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

double SteadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// FNV-1a over what a checkpoint would change: counts, channel count, times, start and ID.
class Fingerprint {
public:
    void add(const void* data, std::size_t size) {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < size; ++i)
            m_hash = (m_hash ^ bytes[i]) * 1099511628211ull;
    }
    template <typename T> void add(const T& value) { add(&value, sizeof value); }
    uint64_t value() const { return m_hash; }

private:
    uint64_t m_hash = 14695981039346656037ull;
};

uint64_t FingerprintOf(const SpectrumDocument& doc) {
    Fingerprint f;
    const auto channels =
        static_cast<std::size_t>(std::clamp<int32_t>(doc.lChannels, 0, MAX_CHANNELS));
    f.add(doc.lCounts.data(), channels * sizeof(doc.lCounts[0]));
    f.add(doc.lChannels);
    f.add(doc.sngLiveTime);
    f.add(doc.sngRealTime);
    f.add(doc.dtMeasured);
    f.add(doc.szSpectrumID.data(), doc.szSpectrumID.size());
    return f.value();
}

} // namespace

MeasurementCheckpoint::MeasurementCheckpoint(const std::filesystem::path& appDir,
                                             Messages& messages, std::function<double()> clock)
    : m_file(appDir / kCheckpointFile), m_messages(messages),
      m_clock(clock ? std::move(clock) : SteadySeconds) {}

bool MeasurementCheckpoint::tick(const SpectrumDocument& doc, bool acquiring) {
    const double now = m_clock();
    const bool started = acquiring && !m_wasAcquiring;
    const bool stopped = !acquiring && m_wasAcquiring;
    m_wasAcquiring = acquiring;
    if (started)
        m_lastWrite = now;
    const bool due = acquiring && now - m_lastWrite >= kCheckpointIntervalSeconds;
    if (!due && !stopped)
        return true;
    m_lastWrite = now;
    return write(doc);
}

bool MeasurementCheckpoint::write(const SpectrumDocument& doc) {
    const uint64_t print = FingerprintOf(doc);
    if (m_kept == print)
        return true;
    std::string error;
    if (!bSaveFullSpectrum(doc, m_file, &error)) {
        if (!m_failureTold)
            m_messages.exclamation("The running measurement cannot be kept safe in " +
                                   m_file.string() + ": " + error);
        m_failureTold = true;
        return false;
    }
    m_failureTold = false;
    m_kept = print;
    return true;
}

void MeasurementCheckpoint::saved(const SpectrumDocument& doc) {
    m_kept = FingerprintOf(doc);
    std::error_code ec;
    std::filesystem::remove(m_file, ec);
    // A checkpoint that cannot be removed is offered once more at the next start; the
    // measurement itself is saved, so nothing is lost.
}

bool MeasurementCheckpoint::offerRecovery(SpectrumDocument& doc, RoiCollection& rois) {
    std::error_code ec;
    if (!std::filesystem::exists(m_file, ec))
        return false;
    auto kept = std::make_unique<SpectrumDocument>();
    std::string error;
    if (!bReadFullSpectrum(*kept, m_file, &error)) {
        m_messages.exclamation("The checkpoint of an unsaved measurement, " + m_file.string() +
                               ", cannot be read: " + error);
        return false;
    }
    std::string what = LongDateText(kept->dtMeasured) + " " + LongTimeText(kept->dtMeasured);
    if (!kept->szSpectrumID.empty())
        what += " \"" + kept->szSpectrumID + "\"";
    if (!m_messages.askYesNo("Recover the measurement of " + what + "?")) {
        std::filesystem::remove(m_file, ec);
        return false;
    }
    const OpenResult opened = OpenSpectrumWithRois(doc, rois, m_file);
    if (!opened.opened) {
        m_messages.exclamation("Error opening file: " + opened.error);
        return false;
    }
    m_kept = FingerprintOf(doc);
    return true;
}

} // namespace vexo
