#include "ScopeTrace.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace korvsim {

namespace {

constexpr double kPreampDecaySeconds = 50e-6;
constexpr int32_t kBalancedPoleZero = 2000;

struct Pulse {
    double startTick; // filter clock ticks from the trace start
    double height;    // signed, in sample units
};

// Shaped response to one pulse t ticks after its start: the trapezoid, plus the
// exponential tail a mis-set pole/zero leaves behind.
double Trapezoid(double t, double height, const ScopeRequest& r, double decayTicks) {
    const double rise = std::max(1, r.riseTicks), flat = std::max(0, r.flatTicks);
    if (t < 0.0)
        return 0.0;
    if (t < rise)
        return height * t / rise;
    if (t < rise + flat)
        return height;
    if (t < 2.0 * rise + flat)
        return height * (2.0 * rise + flat - t) / rise;
    const double mismatch = static_cast<double>(r.poleZero - kBalancedPoleZero) / kBalancedPoleZero;
    return 0.2 * height * mismatch * std::exp(-(t - 2.0 * rise - flat) / decayTicks);
}

// Preamplifier output: a fast step decaying with the feedback time constant.
double PreampStep(double t, double height, double decayTicks) {
    constexpr double kRiseTicks = 6.0;
    if (t < 0.0)
        return 0.0;
    const double front = std::min(1.0, t / kRiseTicks);
    return height * front * std::exp(-t / decayTicks);
}

double PulseHeight(const ScopeRequest& r, Rng& rng) {
    const int32_t channels = r.shape ? r.shape->channels : 0;
    if (!r.shape || r.shape->sampler.empty() || channels <= 0)
        return 0.0;
    const int32_t ch = std::min(r.shape->sampler.sample(rng), channels);
    return 0.45 * r.fullScale * (ch + 0.5) / channels;
}

// The trigger fires on the first pulse above its level (a tenth of the largest
// height); after many small ones in a row it takes the largest seen.
double TriggerPulseHeight(const ScopeRequest& r, Rng& rng) {
    const double level = 0.1 * 0.45 * r.fullScale;
    double largest = 0.0;
    for (int attempt = 0; attempt < 64; ++attempt) {
        const double height = PulseHeight(r, rng);
        if (height >= level)
            return height;
        largest = std::max(largest, height);
    }
    return largest;
}

std::vector<Pulse> PlacePulses(const ScopeRequest& r, Rng& rng, double ticksPerSample,
                               double decayTicks) {
    std::vector<Pulse> pulses;
    if (!r.pulses)
        return pulses;
    pulses.push_back({kScopeTriggerSample * ticksPerSample, TriggerPulseHeight(r, rng)});
    // Others arrive at random, including tails of pulses from before the trace.
    const double span = kScopeSamples * ticksPerSample + 3.0 * decayTicks;
    const double expected = r.rateCps * span / r.clockHz;
    const uint64_t n = std::min<uint64_t>(rng.poisson(expected), 64);
    for (uint64_t i = 0; i < n; ++i)
        pulses.push_back({rng.uniform() * span - 3.0 * decayTicks, PulseHeight(r, rng)});
    return pulses;
}

} // namespace

int32_t ScopeDecimation(int32_t riseTicks, int32_t flatTicks) {
    const int32_t width = 2 * std::max(1, riseTicks) + std::max(0, flatTicks);
    return std::max(1, (width * 8 + 1023) / 1024);
}

void MakeScopeTrace(const ScopeRequest& r, Rng& rng, int16_t* samples) {
    const double ticksPerSample = ScopeDecimation(r.riseTicks, r.flatTicks);
    const double decayTicks = kPreampDecaySeconds * r.clockHz;
    const std::vector<Pulse> pulses = PlacePulses(r, rng, ticksPerSample, decayTicks);
    // The shaped signal is positive when the polarity setting fits the detector; the
    // input shows the detector's own sign.
    const double shapedSign = r.polarityMatches ? 1.0 : -1.0;
    const double inputSign = r.detectorPolarity != 0 ? -1.0 : 1.0;
    const double noise = r.fullScale * (r.input ? 0.001 : 0.0005);
    const double top = r.fullScale / 2 - 1, bottom = -r.fullScale / 2;
    for (int32_t i = 0; i < kScopeSamples; ++i) {
        const double tick = i * ticksPerSample;
        double value = 0.0;
        for (const Pulse& p : pulses)
            value += r.input
                         ? inputSign * PreampStep(tick - p.startTick, 0.5 * p.height, decayTicks)
                         : shapedSign * Trapezoid(tick - p.startTick, p.height, r, decayTicks);
        value += noise * rng.normal();
        samples[i] = static_cast<int16_t>(std::lround(std::clamp(value, bottom, top)));
    }
}

} // namespace korvsim
