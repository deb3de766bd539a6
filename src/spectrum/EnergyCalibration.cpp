#include "spectrum/EnergyCalibration.h"

#include <cmath>

#include "base/Rounding.h"

namespace vexo {

double ChannelToEnergy(int32_t ch, const EnergyCalibration& cal) {
    const double x = static_cast<double>(ch);
    return CheckFinite((x * cal.dQuad + cal.dSlope) * x + cal.dOffset);
}

int32_t EnergyToChannel(double energyKeV, const EnergyCalibration& cal) {
    if (cal.dQuad != 0.0) {
        const double d =
            CheckFinite(cal.dSlope * cal.dSlope - (cal.dOffset - energyKeV) * cal.dQuad * 4.0);
        if (d < 0.0)
            return 0;
        const double root = std::sqrt(d);
        const int16_t r1 = CInt(CheckFinite(((-cal.dSlope - root) / 2.0) / cal.dQuad));
        const int32_t r2 = CLng(CheckFinite(((-cal.dSlope + root) / 2.0) / cal.dQuad));
        if (r1 < 0)
            return r2;
        // Roots from channel 8192 up are taken as the wrong branch of the parabola.
        if (r1 < 8192)
            return r1;
        return r2;
    }
    if (cal.dSlope == 0.0)
        return CLng(energyKeV);
    return CLng(CheckFinite((energyKeV - cal.dOffset) / cal.dSlope));
}

} // namespace vexo
