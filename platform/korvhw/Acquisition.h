#pragma once
// The acquisition memory and its clockwork: counts, real and live time, input
// counts and the MCS scan, advanced from one simulated instant to the next.
// Pulses arrive as a Poisson process at the shape's trigger rate; each recorded
// pulse costs a fixed (non-paralysable) dead time, and a second pulse inside the
// pile-up window sums with the first unless the pile-up rejector throws both away.
#include <cstdint>
#include <vector>

#include "Rng.h"
#include "SpectralShape.h"

namespace korvsim {

// Everything the clockwork needs to know about the device for one advance.
struct AcquisitionConditions {
    const SpectralShape* shape = nullptr;
    bool pulsesPresent = false; // detector biased, polarity right, not inhibited
    double pulsesFrom = 0.0;    // simulated time the HV has settled
    double gateOpensAt = 0.0;   // before this the run waits for its external start
    double deadPerEvent = 0.0;  // seconds of processing per recorded pulse
    double pileUpWindow = 0.0;  // seconds within which a second pulse piles up
    bool pileUpRejection = true;
    int32_t channels = 1024;
    int32_t lld = 0, uld = 16383;
    bool mcs = false;
    int32_t scaLow = 0, scaHigh = 16383;
    double dwellSeconds = 1.0;
    bool timePreset = false;
    bool liveTimePreset = false;
    double presetSeconds = 0.0;
    bool countsPreset = false;
    int64_t presetCounts = 0;
    int32_t presetFirst = 0, presetLast = 16383;
};

class Acquisition {
public:
    Acquisition();

    void start(double now);
    void stop() { m_running = false; }
    bool running() const { return m_running; }
    // Time only runs while the acquisition runs; a suspended device skips ahead.
    void skipTo(double now) { m_last = now; }
    // Advances to now; stops by itself at a preset or at the end of an MCS scan.
    void advance(double now, const AcquisitionConditions& c, Rng& rng);

    void clearMemory();
    void clearTime();

    const std::vector<int32_t>& counts() const { return m_counts; }
    double realTime() const { return m_real; }
    double liveTime() const { return m_live; }
    uint64_t inputCounts() const { return m_input; }
    int32_t mcsChannel() const { return m_mcsChannel; }

private:
    struct Segment {
        double used; // seconds actually consumed (less when a counts preset ends it)
        bool presetReached;
    };
    void stepMcs(double dt, bool pulses, const AcquisitionConditions& c, Rng& rng);
    void stepPha(double dt, bool pulses, double liveShare, const AcquisitionConditions& c,
                 Rng& rng);
    Segment runPha(double dt, bool pulses, const AcquisitionConditions& c, Rng& rng);
    Segment runPhaPerBin(double dt, double singlesMean, double pileMean, double lostMean,
                         const AcquisitionConditions& c, Rng& rng);
    void runMcs(double dt, bool pulses, const AcquisitionConditions& c, Rng& rng);
    void store(int32_t channel, const AcquisitionConditions& c, uint64_t n = 1);
    void storePiles(uint64_t piles, const AcquisitionConditions& c, Rng& rng);
    int32_t pileUpChannel(const SpectralShape& shape, Rng& rng) const;
    void syncWindow(const AcquisitionConditions& c);
    void addLive(double seconds) { m_live += seconds > 0.0 ? seconds : 0.0; }

    std::vector<int32_t> m_counts;
    bool m_running = false;
    double m_last = 0.0;
    double m_real = 0.0;
    double m_live = 0.0;
    uint64_t m_input = 0;
    int32_t m_mcsChannel = 0;
    double m_dwellElapsed = 0.0;
    // Counts inside the counts-preset window, kept up to date pulse by pulse.
    int64_t m_windowCounts = 0;
    int32_t m_windowFirst = -1, m_windowLast = -1;
};

} // namespace korvsim
