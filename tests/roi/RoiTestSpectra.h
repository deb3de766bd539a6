#pragma once
// Synthetic spectra and a short way to run the ROI analysis on them, shared by the
// ROI analysis tests.
#include <array>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "roi/clsROI.h"

namespace vexo::test {

constexpr int32_t kUb = 16384; // upper bound of the 16,385-slot counts array

struct Spectrum {
    std::vector<int32_t> y = std::vector<int32_t>(kUb + 1, 0);
    void fill(int32_t first, int32_t last, int32_t value) {
        for (int32_t i = first; i <= last; ++i)
            y[i] = value;
    }
};

// Flat runs {first, last, level}, then `values` from channel `first` on over them.
inline Spectrum Counts(std::initializer_list<std::array<int32_t, 3>> runs, int32_t first = 0,
                       std::initializer_list<int32_t> values = {}) {
    Spectrum s;
    for (const auto& r : runs)
        s.fill(r[0], r[1], r[2]);
    for (int32_t v : values)
        s.y[first++] = v;
    return s;
}

struct Outcome {
    bool ok = false;
    int16_t nBkgChn = 0;
    RoiRates rates;
};

inline clsROI MakeRoi(int32_t L, int32_t R) {
    clsROI roi;
    roi.set_lROILCh(L);
    roi.set_lROIRCh(R);
    return roi;
}

inline Outcome Compute(clsROI& roi, const Spectrum& s, float sTime,
                       const EnergyCalibration& cal = EnergyCalibration::Default()) {
    Outcome run;
    run.ok = roi.bComputeROI(sTime, run.nBkgChn, s.y.data(), s.y.size(), cal, run.rates);
    return run;
}

inline EnergyCalibration Cal(double offset, double slope, double quad) {
    return {false, offset, slope, quad};
}

// Background 10 on channels 0..200; a triangle on top with apex 90 at channel 104:
// y(100..108) = 10 30 50 70 90 70 50 30 10.
inline Spectrum Triangle() {
    return Counts({{0, 200, 10}}, 100, {10, 30, 50, 70, 90, 70, 50, 30, 10});
}

} // namespace vexo::test
