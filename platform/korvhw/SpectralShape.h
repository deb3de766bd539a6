#pragma once
// The expected pulse-height distribution of one device configuration: detector,
// sources, gain and threshold. Built once per configuration (cost O(channels x
// lines)) and then sampled for every event.
#include <cstdint>
#include <vector>

#include "AliasTable.h"
#include "DetectorModel.h"
#include "SourceLibrary.h"

namespace korvsim {

struct SourceRate {
    const SourceNuclide* nuclide;
    double rateCps; // interactions per second in the detector from this source
};

struct ShapeRequest {
    DetectorKind detector = DetectorKind::NaI3x3;
    std::vector<SourceRate> sources;
    double noiseCps = 0.0;       // electronic noise pulses above zero energy
    int32_t channels = 1024;     // 256 .. 16384
    double channelsPerKeV = 0.4; // conversion gain; > 0
    double thresholdChannel = 0; // pulses below this (in channels) never trigger
};

struct SpectralShape {
    int32_t channels = 0;
    // Rate of pulses above the threshold, per second, including those beyond the
    // last channel (they are processed and cost dead time but are not stored).
    double triggerRateCps = 0.0;
    // Bin probabilities over channels 0..channels-1 plus one overflow bin.
    std::vector<double> probability;
    // cumulative[i] = probability of a pulse landing in channels 0..i-1
    // (size channels + 2, first 0, last 1).
    std::vector<double> cumulative;
    AliasTable sampler;

    // Share of pulses landing in the inclusive channel window [first, last].
    double windowShare(int32_t first, int32_t last) const;
};

// Builds the shape; an empty request (no rate, no sources) gives triggerRateCps 0.
SpectralShape BuildShape(const ShapeRequest& request);

} // namespace korvsim
