#pragma once
// The parameter ids of the device library's GetParam and SetParam, shared by the program
// and the simulated analyser so that the two cannot drift. Unless noted the value is one
// signed 32-bit integer in the device's own units (buffer size 4). Ids 29, 33, 37, 38, 43,
// 45, 46 and 47 are not assigned.
#include <cstdint>

enum class KorvhwParamId : int32_t {
    DeviceName = 0,      // text, 64 bytes
    SerialNumber = 1,    // text, 64 bytes; first two characters = model code
    FirmwareVersion = 2, // text, 64 bytes: "V3.4"
    FirmwareDate = 3,    // text, 64 bytes: "YYYYMMDD"
    ProductionDate = 4,  // text, 64 bytes: "YYYYMMDD"
    AcqMode = 5,         // 0 PHA, 1 MCS
    Channels = 6,        // 256 .. 16384
    LLD = 7,             // channel; in MCS mode the SCA window low channel
    ULD = 8,             // channel; in MCS mode the SCA window high channel
    PresetValue = 9,     // float seconds: preset time (PHA) or dwell time (MCS)
    PresetModeLegacy = 10,
    Polarity = 11, // 0 positive, non-zero negative
    DigitalGain = 12,
    CoarseGain = 13,
    FineGain = 14, // 0 .. the model's fine-gain maximum
    RiseTime = 15, // filter clock ticks
    FlatTop = 16,  // filter clock ticks
    PoleZero = 17,
    Threshold = 18,
    BLR = 19,
    PUR = 20,
    HighVoltage = 21,  // float volts
    HVState = 22,      // bit 0 on; read only: bit 1 ramping, bit 2 inhibited
    ConnectFlags = 23, // written once with 256 after opening
    ScopeControl = 24,
    DeviceCalibration = 25, // three floats (12 bytes): keV, keV/ch, keV/ch^2
    McsChannels = 26,
    McsCurrentChannel = 27, // read only
    PresetCounts = 28,
    PresetMode = 30, // bits: 1 live time, 2 time preset, 4 counts preset, 8 external start
    PresetFirstCh = 31,
    PresetLastCh = 32,
    GpioLegacy = 34,
    InputCounts = 35, // read only
    AnalogPZ = 36,
    PURGuard = 39,
    TRPGuard = 40,
    LTTrim = 41,
    ClockHz = 42, // read only, hertz
    MaxHV = 44,   // read only, tenths of a volt
    Gpio1 = 48,   // function code in bits 0-6, negative polarity in bits 15 and up
    Gpio2 = 49,
    BLRRate = 50,
    HVInhibit = 51, // bit 0 enabled, negative polarity in bits 15 and up
};

constexpr int32_t KORVHW_HIGHEST_PARAM_ID = 51;
