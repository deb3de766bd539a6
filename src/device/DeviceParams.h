#pragma once
// Parameter ids, capability bits, status and error texts of the device library, and the
// small encodings the program applies to parameter values (polarity packing, firmware
// version and date texts).
#include <cstdint>
#include <string>
#include <string_view>

#include "KorvhwParams.h"

namespace vexo {

// The open device's handle as OpenDevice writes it; 0 = none.
using DeviceHandle = int32_t;

// Every id the program passes to GetParam/SetParam; the list is the device library's own
// (KorvhwParams.h), which the simulated analyser answers to as well.
using DeviceParamId = KorvhwParamId;

constexpr int32_t ToInt(DeviceParamId id) {
    return static_cast<int32_t>(id);
}

constexpr int32_t kConnectFlagsValue = 256; // written to ConnectFlags after opening

// lCapabilities bits: which optional parameters the open device answers.
constexpr int32_t kCapPresetMode = 2;     // id 30
constexpr int32_t kCapPresetWindow = 4;   // ids 31/32
constexpr int32_t kCapGpioLegacy = 8;     // id 34 used
constexpr int32_t kCapInputCounts = 16;   // id 35
constexpr int32_t kCapBLRRate = 32;       // id 50
constexpr int32_t kCapPURGuard = 64;      // id 39
constexpr int32_t kCapTRPGuard = 128;     // id 40
constexpr int32_t kCapLTTrim = 0x100;     // id 41
constexpr int32_t kCapGpio = 0x200;       // ids 48/49
constexpr int32_t kCapAnalogPZ = 0x400;   // id 36
constexpr int32_t kCapHVInhibit = 0x800;  // id 51
constexpr int32_t kCapabilitiesStart = 7; // read-all starts from this

// PresetMode (id 30) bits.
constexpr int32_t kPresetLiveTime = 1;
constexpr int32_t kPresetTimeActive = 2;
constexpr int32_t kPresetCountsActive = 4;
constexpr int32_t kPresetExternalGpio = 8;

// AcquisitionStatus bits as GetAcquisitionStatus writes them; 0 = stopped.
constexpr int32_t kAcqAcquiring = 1;
constexpr int32_t kAcqWaiting = 2;
constexpr int32_t kAcqSuspended = 4;

// HVState (id 22) bits.
constexpr int32_t kHVOn = 1;
constexpr int32_t kHVRamping = 2;   // read only
constexpr int32_t kHVInhibited = 4; // read only: external inhibit active

// The text shown for a library status code; "" for a code outside the known table.
std::string ErrorText(int32_t code);

// The status panel text for a status word. On model code "10" the HV state word is
// looked at first ("HV Inhibit", "HV ramping"); with a batch in progress the text is
// preceded by "(Batch) ".
std::string AcquisitionStatusText(int32_t status, std::string_view modelCode, int32_t hvState,
                                  bool batchOn);

// First two characters of the serial number (fewer when it is shorter).
std::string ModelCode(std::string_view serial);

// GPIO lines (ids 48, 49) and the HV inhibit input (id 51) carry a function (or enable)
// code and a polarity in one word: negative = any of bits 15..31 set.
struct PolarityWord {
    int32_t function = 0; // low 7 bits (id 51: bit 0 only)
    int32_t negative = 0; // 1 when negative, else 0
};
constexpr uint32_t kNegativePolarityBits = 0xFFFF8000u;
PolarityWord UnpackPolarity(int32_t raw, int32_t functionMask = 0x7F);
inline PolarityWord UnpackHVInhibit(int32_t raw) {
    return UnpackPolarity(raw, 1);
}
// code | 0xFFFF8000 when `negative` is non-zero, else the plain code.
int32_t PackPolarity(int32_t code, int32_t negative);

// "V3.4" -> 3, 4. The major number is taken only when the text starts with "V"; a
// missing or unreadable number gives 0. Never throws.
struct FirmwareVersion {
    int16_t major = 0;
    int16_t minor = 0;
};
FirmwareVersion ParseFirmwareVersion(std::string_view text);

// "YYYYMMDD" rebuilt as a date and given as the long-date text ("Thursday, March 7,
// 2024"). Text that is not eight digits comes back unchanged.
std::string DeviceDateText(std::string_view yyyymmdd);

// Top of the fine-gain range: 16383 on model codes "10" and "08" with firmware 3.3 or
// later, else 4095.
int32_t FineGainMaxFor(std::string_view modelCode, int16_t fwMajor, int16_t fwMinor);

} // namespace vexo
