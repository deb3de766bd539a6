#pragma once
// The settings an analyser keeps, in its own units, and the rules for reading and
// writing them by parameter id.
#include <array>
#include <cstdint>
#include <string>

#include "ModelTraits.h"
#include "SimConfig.h"

namespace korvsim {

struct DeviceSettings {
    int32_t acqMode = 0;                 // AcqMode: 0 PHA, 1 MCS
    int32_t channels = 1024;             // Channels and McsChannels
    int32_t lld = 0, uld = 16383;        // LLD/ULD in PHA mode, channels
    int32_t scaLow = 0, scaHigh = 16383; // LLD/ULD in MCS mode, channels
    float presetTime = 0.0f;             // PresetValue in PHA mode, seconds (0 = none)
    float dwellTime = 1.0f;              // PresetValue in MCS mode, seconds per channel
    int32_t legacyPreset = 0;            // PresetModeLegacy: bit 0 = live time
    int32_t polarity = 0;                // Polarity
    int32_t digitalGain = 0;             // DigitalGain: x 2^code
    int32_t coarseGain = 2;              // CoarseGain: x 2^code
    int32_t fineGain = 2048;             // FineGain: factor 0.5 + steps / fineGainMax
    int32_t riseTime = 80;               // RiseTime, filter clock ticks
    int32_t flatTop = 40;                // FlatTop, filter clock ticks
    int32_t poleZero = 2000;             // PoleZero
    int32_t threshold = 40;              // Threshold, 1/16384 of full scale
    int32_t blr = 1, pur = 1;            // BLR, PUR
    float highVoltage = 800.0f;          // HighVoltage, volts
    int32_t hvOn = 0;                    // HVState bit value 1
    int32_t connectFlags = 0;            // ConnectFlags
    int32_t scopeControl = 0;            // ScopeControl: 0 filtered, 7 input
    std::array<float, 3> calibration{0.0f, 2.5f, 0.0f}; // DeviceCalibration
    int32_t presetCounts = 0;                           // PresetCounts
    int32_t presetMode = 0;                      // PresetMode: 1 live, 2 time, 4 counts, 8 external
    int32_t presetFirst = 0, presetLast = 16383; // PresetFirstCh/PresetLastCh
    int32_t gpioLegacy = 0;                      // GpioLegacy
    int32_t analogPZ = 0;                        // AnalogPZ
    int32_t purGuard = 0, trpGuard = 0, ltTrim = 0; // PURGuard, TRPGuard, LTTrim
    int32_t gpio1 = 0, gpio2 = 0;                   // Gpio1, Gpio2 (packed function and polarity)
    int32_t blrRate = 0;                            // BLRRate
    int32_t hvInhibit = 1;                          // HVInhibit: bit 0 enabled, bits 15+ negative
};

// Power-up settings of a device: gains giving about 2.5 keV per channel at 1024
// channels, shaping of 1 us rise and 0.5 us flat top at the device's clock, the
// detector's polarity and nominal HV.
DeviceSettings FactoryDefaults(const DeviceSetup& setup, const ModelTraits& traits);

// One parameter value in the form the wire carries it.
struct ParamValue {
    int32_t integer = 0;
    float real = 0.0f;
    std::array<float, 3> triple{};
    std::string text;
};

enum class ParamKind { Integer, Real, Text, Triple };
ParamKind KindOf(int32_t id);
// Bytes the value of an id needs in the caller's buffer (texts: at least 1).
int32_t WireSize(int32_t id);

// The identity texts and the device's live values (McsCurrentChannel, InputCounts, ClockHz,
// MaxHV): answered by the device, never stored or written.
bool IsReadOnly(int32_t id);

// Reads a stored setting. Returns kOk, or kNotSupported for an id held elsewhere
// (identity texts, live values) or not a setting.
int32_t ReadSetting(const DeviceSettings& s, int32_t id, ParamValue& out);
// Checks the value against the id's range and stores it. maxHV in volts.
// Returns kOk, kOutOfRange, or kNotSupported for a read-only id.
int32_t WriteSetting(DeviceSettings& s, const ModelTraits& traits, double maxHV, int32_t id,
                     const ParamValue& in);

} // namespace korvsim

namespace korvsim {
// Settings read back from a stored file, with every value outside its range
// replaced by the default: a damaged file never gives the device impossible settings.
DeviceSettings Sanitised(const DeviceSettings& loaded, const DeviceSettings& defaults,
                         const ModelTraits& traits, double maxHV);
} // namespace korvsim
