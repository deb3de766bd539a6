#include "device/SettingsDisplay.h"

#include <algorithm>
#include <cmath>

#include "device/DeviceParams.h"

namespace vexo {

namespace {
double Clock(int32_t clockHz) {
    return clockHz > 0 ? clockHz : 25.0e6;
}
} // namespace

double FineGainFactor(int32_t steps, int32_t fineGainMax) {
    if (fineGainMax <= 0)
        return 1.0;
    return 0.5 + static_cast<double>(steps) / fineGainMax;
}

int32_t FineGainSteps(double factor, int32_t fineGainMax) {
    if (fineGainMax <= 0 || !std::isfinite(factor))
        return 0;
    const double steps = std::nearbyint((factor - 0.5) * fineGainMax);
    return static_cast<int32_t>(std::clamp(steps, 0.0, static_cast<double>(fineGainMax)));
}

double TicksToMicroseconds(int32_t ticks, int32_t clockHz) {
    return ticks / Clock(clockHz) * 1.0e6;
}

int32_t MicrosecondsToTicks(double microseconds, int32_t clockHz, int32_t minTicks,
                            int32_t maxTicks) {
    if (!std::isfinite(microseconds))
        return minTicks;
    const double ticks = std::nearbyint(microseconds * 1.0e-6 * Clock(clockHz));
    return static_cast<int32_t>(
        std::clamp(ticks, static_cast<double>(minTicks), static_cast<double>(maxTicks)));
}

PresetChoice PresetChoiceFrom(int32_t presetMode) {
    return {(presetMode & kPresetTimeActive) != 0, (presetMode & kPresetLiveTime) != 0,
            (presetMode & kPresetCountsActive) != 0};
}

int32_t PresetModeFrom(const PresetChoice& choice, int32_t previous) {
    int32_t mode = previous & ~(kPresetLiveTime | kPresetTimeActive | kPresetCountsActive);
    if (choice.liveTime)
        mode |= kPresetLiveTime;
    if (choice.timeActive)
        mode |= kPresetTimeActive;
    if (choice.countsActive)
        mode |= kPresetCountsActive;
    return mode;
}

const char* HVStateText(int32_t hvState) {
    if (hvState & kHVInhibited)
        return "Inhibited";
    if (hvState & kHVRamping)
        return "Ramping";
    return (hvState & kHVOn) ? "On" : "Off";
}

std::string DiscriminatorError(int32_t lld, int32_t uld) {
    if (lld < uld)
        return "";
    return "The LLD (channel " + std::to_string(lld) + ") must be below the ULD (channel " +
           std::to_string(uld) + "). Nothing was applied.";
}

float ClampHighVoltage(float volts, float maxHV) {
    const float top = maxHV > 0.0f ? maxHV : 1500.0f;
    if (!std::isfinite(volts))
        return 0.0f;
    return std::clamp(volts, 0.0f, top);
}

} // namespace vexo
