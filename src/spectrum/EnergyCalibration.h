#pragma once
// Channel <-> energy conversion: E = offset + slope * ch + quad * ch^2 (keV).
#include <cstdint>

namespace vexo {

struct EnergyCalibration {
    bool bCalibrated = false; // whether energies are shown to the user
    double dOffset = 0.0;     // keV
    double dSlope = 2.5;      // keV per channel
    double dQuad = 0.0;       // keV per channel squared

    // The uncalibrated default: offset 0, slope 2.5, quadratic 0, not calibrated.
    static EnergyCalibration Default() { return {}; }
    bool operator==(const EnergyCalibration&) const = default;
};

// Energy in keV of whole channel `ch`, evaluated as (ch * quad + slope) * ch + offset.
// Throws FloatingPointError when the result is infinite or NaN.
double ChannelToEnergy(int32_t ch, const EnergyCalibration& cal);

// Channel of an energy in keV, rounded to nearest with ties to even. In the quadratic
// case the first root is narrowed to 16 bits (OverflowError outside -32768..32767) and
// roots at or above channel 8192 give way to the other root; a negative discriminant
// gives channel 0. Throws FloatingPointError or OverflowError on arithmetic faults.
int32_t EnergyToChannel(double energyKeV, const EnergyCalibration& cal);

} // namespace vexo
