#include "Acquisition.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace korvsim {

namespace {

constexpr size_t kSlots = 16384;
constexpr double kTimeEpsilon = 1e-9;
// Pulses handled one by one in a stretch that may end on a counts preset; longer
// stretches are cut, so a long gap between calls costs a bounded amount per pulse
// rate and never one loop over hours of pulses.
constexpr double kMaxPulsesPerStretch = 2.0e6;
// Piled-up pulses sampled one by one per stretch; above this each sample stands for
// several, which only matters after long gaps at high rates.
constexpr uint64_t kMaxPileSamples = 1000000;

} // namespace

Acquisition::Acquisition() : m_counts(kSlots, 0) {}

void Acquisition::start(double now) {
    m_running = true;
    m_last = now;
}

void Acquisition::clearMemory() {
    std::fill(m_counts.begin(), m_counts.end(), 0);
    m_windowCounts = 0;
    m_mcsChannel = 0;
    m_dwellElapsed = 0.0;
}

void Acquisition::clearTime() {
    m_real = m_live = 0.0;
    m_input = 0;
}

void Acquisition::syncWindow(const AcquisitionConditions& c) {
    if (c.presetFirst == m_windowFirst && c.presetLast == m_windowLast)
        return;
    m_windowFirst = c.presetFirst;
    m_windowLast = c.presetLast;
    m_windowCounts = 0;
    const int32_t lo = std::max(0, std::min(m_windowFirst, m_windowLast));
    const int32_t hi = std::min<int32_t>(kSlots - 1, std::max(m_windowFirst, m_windowLast));
    for (int32_t ch = lo; ch <= hi; ++ch)
        m_windowCounts += m_counts[static_cast<size_t>(ch)];
}

void Acquisition::store(int32_t channel, const AcquisitionConditions& c, uint64_t n) {
    if (channel < c.lld || channel > c.uld || channel >= c.channels)
        return;
    int32_t& slot = m_counts[static_cast<size_t>(channel)];
    // A full channel saturates rather than wrapping.
    slot = static_cast<int32_t>(std::min<uint64_t>(INT32_MAX, static_cast<uint64_t>(slot) + n));
    if (channel >= std::min(m_windowFirst, m_windowLast) &&
        channel <= std::max(m_windowFirst, m_windowLast))
        m_windowCounts += static_cast<int64_t>(n);
}

int32_t Acquisition::pileUpChannel(const SpectralShape& shape, Rng& rng) const {
    const int32_t a = shape.sampler.sample(rng);
    const int32_t b = shape.sampler.sample(rng);
    if (a >= shape.channels || b >= shape.channels)
        return shape.channels; // beyond full scale
    // Two channel centres add up to a bin edge; split the difference at random.
    return a + b + static_cast<int32_t>(rng.next() >> 63);
}

void Acquisition::advance(double now, const AcquisitionConditions& c, Rng& rng) {
    syncWindow(c);
    while (m_running && m_last < now - kTimeEpsilon) {
        double dt = now - m_last;
        if (m_last < c.gateOpensAt) { // waiting for the external start: no time runs
            m_last += std::min(dt, c.gateOpensAt - m_last);
            continue;
        }
        bool pulses = c.pulsesPresent;
        if (pulses && m_last < c.pulsesFrom) {
            dt = std::min(dt, c.pulsesFrom - m_last);
            pulses = false; // HV still ramping: no usable pulses yet
        }
        const double rate = pulses && c.shape ? c.shape->triggerRateCps : 0.0;
        const double liveShare = 1.0 / (1.0 + rate * c.deadPerEvent);
        if (c.mcs)
            stepMcs(dt, pulses, c, rng);
        else
            stepPha(dt, pulses, liveShare, c, rng);
    }
    if (!m_running)
        m_last = now;
}

void Acquisition::stepMcs(double dt, bool pulses, const AcquisitionConditions& c, Rng& rng) {
    // A dwell time shortened mid-run may already be used up: then the channel only
    // moves on.
    dt = std::min(dt, std::max(0.0, c.dwellSeconds - m_dwellElapsed));
    if (dt > 0.0) {
        runMcs(dt, pulses, c, rng);
        m_last += dt;
        m_dwellElapsed += dt;
    }
    if (m_dwellElapsed >= c.dwellSeconds - kTimeEpsilon) {
        m_dwellElapsed = 0.0;
        if (m_mcsChannel + 1 >= c.channels)
            m_running = false; // the scan has filled its last channel
        else
            ++m_mcsChannel;
    }
}

void Acquisition::stepPha(double dt, bool pulses, double liveShare, const AcquisitionConditions& c,
                          Rng& rng) {
    if (c.countsPreset && pulses && c.shape && c.shape->triggerRateCps > 0.0)
        dt = std::min(dt, kMaxPulsesPerStretch / c.shape->triggerRateCps);
    bool timeUp = false;
    if (c.timePreset) {
        const double done = c.liveTimePreset ? m_live : m_real;
        const double remaining = std::max(0.0, c.presetSeconds - done);
        const double needed = c.liveTimePreset ? remaining / liveShare : remaining;
        if (needed <= dt) {
            dt = needed;
            timeUp = true;
        }
    }
    const Segment segment = runPha(dt, pulses, c, rng);
    m_last += segment.used;
    if (timeUp && !segment.presetReached) {
        // Stop exactly at the preset, as the hardware compares its own timers.
        (c.liveTimePreset ? m_live : m_real) = c.presetSeconds;
        m_running = false;
    }
    if (segment.presetReached)
        m_running = false;
}

Acquisition::Segment Acquisition::runPha(double dt, bool pulses, const AcquisitionConditions& c,
                                         Rng& rng) {
    const double rate = pulses && c.shape ? c.shape->triggerRateCps : 0.0;
    if (!(rate > 0.0) || dt <= 0.0) {
        m_real += std::max(dt, 0.0);
        addLive(dt);
        return {std::max(dt, 0.0), false};
    }
    const double recordedMean = rate * dt / (1.0 + rate * c.deadPerEvent);
    const double lostMean = rate * dt - recordedMean;
    const double pileShare = 1.0 - std::exp(-rate * c.pileUpWindow);
    const double singlesMean = recordedMean * (1.0 - pileShare);
    const double pileMean = recordedMean * pileShare;
    if (singlesMean > 16.0 * (c.channels + 1)) {
        // Channel by channel is exact for the spectrum but not for the moment a counts
        // preset is reached: use it only while the window stays far below the preset.
        const double window =
            (singlesMean * c.shape->windowShare(std::min(m_windowFirst, m_windowLast),
                                                std::max(m_windowFirst, m_windowLast)) +
             pileMean);
        const double remaining = static_cast<double>(c.presetCounts - m_windowCounts);
        if (!c.countsPreset || window + 10.0 * std::sqrt(window) + 10.0 < remaining)
            return runPhaPerBin(dt, singlesMean, pileMean, lostMean, c, rng);
    }

    const uint64_t singles = rng.poisson(singlesMean);
    const uint64_t piles = rng.poisson(pileMean);
    const uint64_t lost = rng.poisson(lostMean);
    const uint64_t total = singles + piles;
    const SpectralShape& shape = *c.shape;
    for (uint64_t k = 0; k < total; ++k) {
        if (k < singles)
            store(shape.sampler.sample(rng), c);
        else if (c.pileUpRejection)
            continue; // both pulses thrown away; their dead time is spent all the same
        else
            store(pileUpChannel(shape, rng), c);
        if (c.countsPreset && m_windowCounts >= c.presetCounts) {
            // Preset reached by pulse k: the run ends at that share of the stretch.
            const double share = static_cast<double>(k + 1) / static_cast<double>(total);
            const double used = dt * share;
            m_real += used;
            addLive(used - static_cast<double>(k + 1) * c.deadPerEvent);
            m_input += k + 1 + static_cast<uint64_t>(std::llround(lost * share));
            return {used, true};
        }
    }
    m_real += dt;
    addLive(dt - static_cast<double>(total) * c.deadPerEvent);
    m_input += total + lost;
    return {dt, c.countsPreset && m_windowCounts >= c.presetCounts};
}

Acquisition::Segment Acquisition::runPhaPerBin(double dt, double singlesMean, double pileMean,
                                               double lostMean, const AcquisitionConditions& c,
                                               Rng& rng) {
    // Long stretches: one Poisson draw per channel costs less than one per pulse.
    const SpectralShape& shape = *c.shape;
    uint64_t recorded = 0;
    const int32_t lo = std::max(0, c.lld);
    const int32_t hi = std::min({c.uld, c.channels - 1, shape.channels - 1});
    const int32_t windowLo = std::min(m_windowFirst, m_windowLast);
    const int32_t windowHi = std::max(m_windowFirst, m_windowLast);
    for (int32_t ch = lo; ch <= hi; ++ch) {
        const uint64_t n = rng.poisson(singlesMean * shape.probability[static_cast<size_t>(ch)]);
        int32_t& slot = m_counts[static_cast<size_t>(ch)];
        slot = static_cast<int32_t>(std::min<uint64_t>(INT32_MAX, static_cast<uint64_t>(slot) + n));
        recorded += n;
        if (ch >= windowLo && ch <= windowHi)
            m_windowCounts += static_cast<int64_t>(n);
    }
    const uint64_t piles = rng.poisson(pileMean);
    if (!c.pileUpRejection && piles > 0)
        storePiles(piles, c, rng);
    // Pulses outside the stored window were processed too.
    const uint64_t outside = rng.poisson(singlesMean * (1.0 - shape.windowShare(lo, hi)));
    const uint64_t total = recorded + outside + piles;
    m_real += dt;
    addLive(dt - static_cast<double>(total) * c.deadPerEvent);
    m_input += total + rng.poisson(lostMean);
    return {dt, false};
}

void Acquisition::storePiles(uint64_t piles, const AcquisitionConditions& c, Rng& rng) {
    const uint64_t samples = std::min(piles, kMaxPileSamples);
    const uint64_t each = piles / samples, extra = piles % samples;
    for (uint64_t k = 0; k < samples; ++k) {
        store(pileUpChannel(*c.shape, rng), c, each + (k < extra ? 1 : 0));
    }
}

void Acquisition::runMcs(double dt, bool pulses, const AcquisitionConditions& c, Rng& rng) {
    const double rate = pulses && c.shape ? c.shape->triggerRateCps : 0.0;
    m_real += dt;
    if (!(rate > 0.0)) {
        addLive(dt);
        return;
    }
    const double recordedRate = rate / (1.0 + rate * c.deadPerEvent);
    const double inWindow = recordedRate * c.shape->windowShare(c.scaLow, c.scaHigh);
    int32_t& slot = m_counts[static_cast<size_t>(std::clamp(m_mcsChannel, 0, int32_t(kSlots) - 1))];
    const uint64_t n = rng.poisson(inWindow * dt);
    slot = static_cast<int32_t>(std::min<uint64_t>(INT32_MAX, static_cast<uint64_t>(slot) + n));
    addLive(dt / (1.0 + rate * c.deadPerEvent));
    m_input += rng.poisson(rate * dt);
}

} // namespace korvsim
