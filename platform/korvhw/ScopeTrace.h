#pragma once
// One digital-scope capture: 1025 signed samples of either the shaped (trapezoid)
// signal or the preamplifier input, triggered on a pulse at sample 128.
#include <cstdint>

#include "Rng.h"
#include "SpectralShape.h"

namespace korvsim {

constexpr int32_t kScopeSamples = 1025;
constexpr int32_t kScopeTriggerSample = 128;

struct ScopeRequest {
    bool input = false;       // false: shaped signal; true: preamplifier input
    int32_t fullScale = 4096; // 4096 (12-bit) or 65536 (16-bit)
    int32_t riseTicks = 80, flatTicks = 40;
    int32_t poleZero = 2000; // id 17; the trace undershoots or overshoots away from 2000
    double clockHz = 25.0e6;
    bool polarityMatches = true; // the input polarity setting fits the detector
    int32_t detectorPolarity = 0;
    bool pulses = false;                  // detector biased and counting
    double rateCps = 0.0;                 // pulse rate for pulses besides the trigger
    const SpectralShape* shape = nullptr; // pulse heights
};

// Samples per trace step so that one shaped pulse spans about an eighth of the trace.
int32_t ScopeDecimation(int32_t riseTicks, int32_t flatTicks);
// Writes kScopeSamples samples, clamped to the full scale.
void MakeScopeTrace(const ScopeRequest& request, Rng& rng, int16_t* samples);

} // namespace korvsim
