#pragma once
// How the MCA settings windows show the device's parameter codes to people: gains as
// factors, shaping times in microseconds, the preset mode as choices, and the limits
// each entry is held to.
#include <cstdint>
#include <string>

namespace vexo {

// Coarse gain code 0..7 shows as x1..x128; digital gain code 0..10 as x1..x1024.
constexpr int kCoarseGainCodes = 8;
constexpr int kDigitalGainCodes = 11;
constexpr int32_t GainFactor(int32_t code) {
    return code < 0 ? 1 : code > 30 ? 1 << 30 : 1 << code;
}

// Fine gain steps 0..fineGainMax as a factor 0.5 .. 1.5 (the middle step is x1.0).
double FineGainFactor(int32_t steps, int32_t fineGainMax);
// The nearest step of a factor, held to 0..fineGainMax.
int32_t FineGainSteps(double factor, int32_t fineGainMax);

// Filter clock ticks as microseconds at `clockHz`, and back (rounded, ties to even,
// held to minTicks..maxTicks). A clock of 0 or less counts as 25 MHz.
double TicksToMicroseconds(int32_t ticks, int32_t clockHz);
int32_t MicrosecondsToTicks(double microseconds, int32_t clockHz, int32_t minTicks,
                            int32_t maxTicks);
constexpr int32_t kRiseTicksMin = 1, kRiseTicksMax = 1023;
constexpr int32_t kFlatTicksMin = 0, kFlatTicksMax = 1023;

// The preset choices of the settings window and the preset-mode word they make. Bits
// the window does not show (the external start) are carried over from `previous`.
struct PresetChoice {
    bool timeActive = false;
    bool liveTime = true; // live time, else real time
    bool countsActive = false;
};
PresetChoice PresetChoiceFrom(int32_t presetMode);
int32_t PresetModeFrom(const PresetChoice& choice, int32_t previous);

// The high-voltage state word (id 22) for people: "Inhibited" when the external inhibit
// holds it off, "Ramping" while it moves, else "On" or "Off".
const char* HVStateText(int32_t hvState);

// The refusal shown when Apply is given discriminators the device cannot use (the LLD
// at or above the ULD, in channels); "" when they are fine.
std::string DiscriminatorError(int32_t lld, int32_t uld);

// High voltage held to 0..maxHV volts (a maxHV of 0 or less counts as 1500 V).
float ClampHighVoltage(float volts, float maxHV);

} // namespace vexo
