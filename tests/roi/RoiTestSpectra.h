#pragma once
// Synthetic spectra and a short way to run the ROI analysis on them, shared by the
// ROI analysis tests.
#include <cstdint>
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

inline EnergyCalibration Slope(double slope) {
    EnergyCalibration cal;
    cal.dSlope = slope;
    return cal;
}

// Background 10 on channels 0..200; a triangle on top with apex 90 at channel 104:
// y(100..108) = 10 30 50 70 90 70 50 30 10.
inline Spectrum Triangle() {
    Spectrum s;
    s.fill(0, 200, 10);
    const int32_t peak[] = {10, 30, 50, 70, 90, 70, 50, 30, 10};
    for (int i = 0; i < 9; ++i)
        s.y[100 + i] = peak[i];
    return s;
}

} // namespace vexo::test
