#include "device/DeviceIO.h"

#include <array>
#include <cmath>
#include <cstring>

#include "base/Rounding.h"
#include "base/TextFile.h"

namespace vexo {

namespace {

using Id = DeviceParamId;

// Reads one identity text (64-byte buffer, text up to the first zero byte). A failure
// is shown and the field gets whatever the buffer held.
void ReadIdentityText(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages, Id id,
                      std::string& field) {
    char buffer[KORVHW_PARAM_TEXT_BYTES + 1] = {};
    const int32_t status = lib.getParam(doc.hDevice, id, buffer, KORVHW_PARAM_TEXT_BYTES);
    if (status != 0)
        messages.critical(ErrorText(status));
    field = Win1252ToUtf8(std::string_view(buffer, strnlen(buffer, KORVHW_PARAM_TEXT_BYTES)));
}

bool IsLegacyGpioModel(const std::string& model) {
    return model == "13" || model == "06" || model == "14";
}

// Step 5 of read-all: the optional advanced filter settings, each recorded in its bit.
void ReadAdvancedFilter(DeviceLibrary& lib, SpectrumDocument& doc) {
    const struct {
        Id id;
        int32_t capability;
        int32_t SpectrumDocument::*field;
    } optional[] = {{Id::PURGuard, kCapPURGuard, &SpectrumDocument::lPURGuard},
                    {Id::TRPGuard, kCapTRPGuard, &SpectrumDocument::lTRPGuard},
                    {Id::LTTrim, kCapLTTrim, &SpectrumDocument::lLTTrim},
                    {Id::AnalogPZ, kCapAnalogPZ, &SpectrumDocument::lAnalogPZ},
                    {Id::BLRRate, kCapBLRRate, &SpectrumDocument::lBLRRate}};
    for (const auto& p : optional) {
        int32_t value = 0;
        if (lib.getParam(doc.hDevice, p.id, value) == 0) {
            doc.lCapabilities |= p.capability;
            doc.*p.field = value;
        } else {
            doc.*p.field = 0;
        }
    }
}

// Step 6 of read-all: the GPIO lines and the HV inhibit input, or the legacy switch.
void ReadGpio(DeviceLibrary& lib, SpectrumDocument& doc, const std::string& model) {
    doc.lGPIO1Func = doc.bGPIO1Neg = doc.lGPIO2Func = doc.bGPIO2Neg = 0;
    doc.lHVInhibitEnable = doc.bHVInhibitNeg = 0;
    // One value buffer for the whole step: a failing read of id 49 leaves id 48's
    // word in it, which is then unpacked into line 2 as the device code always did.
    int32_t value = 0;
    if (lib.getParam(doc.hDevice, Id::Gpio1, value) != 0) {
        if (IsLegacyGpioModel(model) && lib.getParam(doc.hDevice, Id::GpioLegacy, value) == 0) {
            doc.lCapabilities |= kCapGpioLegacy;
            doc.lGPIO1Func = value != 0 ? 1 : 0;
        }
        return;
    }
    doc.lCapabilities |= kCapGpio;
    PolarityWord line = UnpackPolarity(value);
    doc.lGPIO1Func = line.function;
    doc.bGPIO1Neg = line.negative;
    lib.getParam(doc.hDevice, Id::Gpio2, value);
    line = UnpackPolarity(value);
    doc.lGPIO2Func = line.function;
    doc.bGPIO2Neg = line.negative;
    if (lib.getParam(doc.hDevice, Id::HVInhibit, value) == 0) {
        doc.lCapabilities |= kCapHVInhibit;
        line = UnpackHVInhibit(value);
        doc.lHVInhibitEnable = line.function;
        doc.bHVInhibitNeg = line.negative;
    }
}

// Steps 7-9 of read-all: the plain MCA settings. Failures leave the fields as the
// library left them.
void ReadMcaSettings(DeviceLibrary& lib, SpectrumDocument& doc) {
    const int32_t h = doc.hDevice;
    lib.getParam(h, Id::PresetValue, doc.sngPresetTime);
    lib.getParam(h, Id::PresetValue, doc.sngDwellTime);
    lib.getParam(h, Id::PresetCounts, doc.lPresetCounts);
    lib.getParam(h, Id::CoarseGain, doc.lCoarseGain);
    lib.getParam(h, Id::FineGain, doc.lFineGain);
    lib.getParam(h, Id::DigitalGain, doc.lDigitalGain);
    lib.getParam(h, Id::RiseTime, doc.lRiseTime);
    lib.getParam(h, Id::FlatTop, doc.lFlatTop);
    lib.getParam(h, Id::PoleZero, doc.lPoleZero);
    lib.getParam(h, Id::Threshold, doc.lThreshold);
    lib.getParam(h, Id::LLD, doc.lLLD);
    lib.getParam(h, Id::ULD, doc.lULD);
    lib.getParam(h, Id::LLD, doc.lSCALow);
    lib.getParam(h, Id::ULD, doc.lSCAHigh);

    if ((doc.lCapabilities & kCapPresetMode) != 0) {
        lib.getParam(h, Id::PresetFirstCh, doc.lPresetFirstCh);
        if (lib.getParam(h, Id::PresetLastCh, doc.lPresetLastCh) != 0) {
            // No counts-preset window of its own: the device uses its LLD/ULD pair.
            doc.lCapabilities &= ~kCapPresetWindow;
            lib.getParam(h, Id::LLD, doc.lPresetFirstCh);
            lib.getParam(h, Id::ULD, doc.lPresetLastCh);
        }
    } else {
        doc.lPresetFirstCh = 0;
        doc.lPresetLastCh = 0;
    }

    lib.getParam(h, Id::Polarity, doc.lPolarity);
    lib.getParam(h, Id::BLR, doc.lBLR);
    lib.getParam(h, Id::PUR, doc.lPUR);
    lib.getParam(h, Id::HighVoltage, doc.sngHighVoltage);
    lib.getParam(h, Id::HVState, doc.lHVOn);
}

// Steps 10-13 of read-all: calibration in the device, clock, HV limit, fine-gain range.
void ReadDeviceLimits(DeviceLibrary& lib, SpectrumDocument& doc, const std::string& model) {
    const int32_t h = doc.hDevice;
    std::array<float, 3> cal{0.0f, 0.0f, 0.0f};
    lib.getParam(h, Id::DeviceCalibration, cal.data(), static_cast<int32_t>(sizeof cal));
    for (std::size_t i = 0; i < cal.size(); ++i)
        doc.dDeviceCal[i] = static_cast<double>(cal[i]);

    if (lib.getParam(h, Id::ClockHz, doc.lClockHz) != 0 || doc.lClockHz == 0)
        doc.lClockHz = 25000000;

    int32_t maxHvTenths = 0;
    if (lib.getParam(h, Id::MaxHV, maxHvTenths) == 0 && maxHvTenths != 0)
        doc.sngMaxHV = static_cast<float>(maxHvTenths) / 10.0f;
    else
        doc.sngMaxHV = 1500.0f;

    doc.lFineGainMax = FineGainMaxFor(model, doc.nFwMajor, doc.nFwMinor);
}

} // namespace

void ReadDeviceInfo(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages) {
    ReadIdentityText(lib, doc, messages, Id::DeviceName, doc.szDeviceName);
    ReadIdentityText(lib, doc, messages, Id::SerialNumber, doc.szDeviceSerial);
    doc.szConnectedSerial = doc.szDeviceSerial;
    std::string production, version, firmwareDate;
    ReadIdentityText(lib, doc, messages, Id::ProductionDate, production);
    ReadIdentityText(lib, doc, messages, Id::FirmwareVersion, version);
    ReadIdentityText(lib, doc, messages, Id::FirmwareDate, firmwareDate);

    doc.szFirmwareVersion = version;
    const FirmwareVersion parsed = ParseFirmwareVersion(version);
    doc.nFwMajor = parsed.major;
    doc.nFwMinor = parsed.minor;
    doc.szProductionDate = DeviceDateText(production);
    doc.szFirmwareDate = DeviceDateText(firmwareDate);
}

void ReadAllParams(DeviceLibrary& lib, SpectrumDocument& doc) {
    if (doc.hDevice == 0)
        return;
    const int32_t h = doc.hDevice;
    doc.lCapabilities = kCapabilitiesStart;
    const std::string model = ModelCode(doc.szConnectedSerial);

    // Everything that walks the counts array trusts lChannels, so a device answer
    // outside the array (a damaged or foreign device) leaves the old count in place.
    int32_t channels = doc.lChannels;
    lib.getParam(h, Id::Channels, channels);
    if (channels >= 1 && channels <= MAX_CHANNELS)
        doc.lChannels = channels;
    lib.getParam(h, Id::AcqMode, doc.lMCSMode);

    if (lib.getParam(h, Id::PresetMode, doc.lPresetMode) != 0) {
        // Old firmware: the legacy word, with the time preset always active.
        doc.lCapabilities &= ~kCapPresetMode;
        lib.getParam(h, Id::PresetModeLegacy, doc.lPresetMode);
        doc.lPresetMode |= kPresetTimeActive;
    }

    int32_t probe = 0;
    if (lib.getParam(h, Id::InputCounts, probe) == 0)
        doc.lCapabilities |= kCapInputCounts;

    ReadAdvancedFilter(lib, doc);
    ReadGpio(lib, doc, model);
    ReadMcaSettings(lib, doc);
    ReadDeviceLimits(lib, doc, model);
}

std::unique_ptr<SpectrumDocument> ReadDeviceSettings(DeviceLibrary& lib,
                                                     const SpectrumDocument& doc) {
    auto device = std::make_unique<SpectrumDocument>(doc);
    ReadAllParams(lib, *device);
    return device;
}

void FollowDeviceSettings(DeviceLibrary& lib, SpectrumDocument& doc) {
    if (!doc.bFromFile)
        ReadAllParams(lib, doc);
}

int32_t LegacyPresetWord(float presetTimeSeconds) {
    if (!std::isfinite(presetTimeSeconds))
        return 0;
    // Only the lowest bit survives, so the parity of the rounded value is enough and no
    // preset time can overflow the 32-bit word.
    const double rounded = RoundHalfEven(static_cast<double>(presetTimeSeconds));
    return std::fmod(rounded, 2.0) != 0.0 ? 1 : 0;
}

void ApplyAdvancedSettings(DeviceLibrary& lib, SpectrumDocument& doc) {
    if (doc.hDevice == 0)
        return;
    const int32_t h = doc.hDevice;
    const int32_t caps = doc.lCapabilities;
    if (caps & kCapLTTrim)
        lib.setParam(h, Id::LTTrim, doc.lLTTrim);
    if (caps & kCapAnalogPZ)
        lib.setParam(h, Id::AnalogPZ, doc.lAnalogPZ);
    if (caps & kCapPURGuard)
        lib.setParam(h, Id::PURGuard, doc.lPURGuard);
    if (caps & kCapTRPGuard)
        lib.setParam(h, Id::TRPGuard, doc.lTRPGuard);
    if (caps & kCapBLRRate)
        lib.setParam(h, Id::BLRRate, doc.lBLRRate);
    if (caps & kCapGpio) {
        lib.setParam(h, Id::Gpio1, PackPolarity(doc.lGPIO1Func, doc.bGPIO1Neg));
        lib.setParam(h, Id::Gpio2, PackPolarity(doc.lGPIO2Func, doc.bGPIO2Neg));
        // The preset word carries the external-control bit that the GPIO functions use.
        if (caps & kCapPresetMode)
            lib.setParam(h, Id::PresetMode, doc.lPresetMode);
    } else if (caps & kCapGpioLegacy) {
        lib.setParam(h, Id::GpioLegacy, doc.lGPIO1Func);
    }
    if (caps & kCapHVInhibit)
        lib.setParam(h, Id::HVInhibit, PackPolarity(doc.lHVInhibitEnable, doc.bHVInhibitNeg));
}

void WriteAllParams(DeviceLibrary& lib, SpectrumDocument& doc) {
    if (doc.hDevice == 0)
        return;
    const int32_t h = doc.hDevice;
    lib.setParam(h, Id::Channels, doc.lChannels);
    lib.setParam(h, Id::McsChannels, doc.lChannels);
    lib.setParam(h, Id::AcqMode, doc.lMCSMode);

    if (doc.lCapabilities & kCapPresetMode) {
        lib.setParam(h, Id::PresetMode, doc.lPresetMode);
        lib.setParam(h, Id::PresetCounts, doc.lPresetCounts);
        if (doc.lCapabilities & kCapPresetWindow) {
            lib.setParam(h, Id::PresetFirstCh, doc.lPresetFirstCh);
            lib.setParam(h, Id::PresetLastCh, doc.lPresetLastCh);
        } else {
            // Overwritten below by LLD/ULD or the SCA window; the device takes the
            // counts window from what passes through 7/8 first.
            lib.setParam(h, Id::LLD, doc.lPresetFirstCh);
            lib.setParam(h, Id::ULD, doc.lPresetLastCh);
        }
    } else {
        lib.setParam(h, Id::PresetModeLegacy, LegacyPresetWord(doc.sngPresetTime));
    }

    lib.setParam(h, Id::CoarseGain, doc.lCoarseGain);
    lib.setParam(h, Id::FineGain, doc.lFineGain);
    lib.setParam(h, Id::DigitalGain, doc.lDigitalGain);
    lib.setParam(h, Id::RiseTime, doc.lRiseTime);
    lib.setParam(h, Id::FlatTop, doc.lFlatTop);
    lib.setParam(h, Id::PoleZero, doc.lPoleZero);
    lib.setParam(h, Id::Threshold, doc.lThreshold);

    if (doc.lMCSMode != 0) {
        lib.setParam(h, Id::PresetValue, doc.sngDwellTime);
        lib.setParam(h, Id::LLD, doc.lSCALow);
        lib.setParam(h, Id::ULD, doc.lSCAHigh);
    } else {
        lib.setParam(h, Id::PresetValue, doc.sngPresetTime);
        lib.setParam(h, Id::LLD, doc.lLLD);
        lib.setParam(h, Id::ULD, doc.lULD);
    }

    lib.setParam(h, Id::Polarity, doc.lPolarity);
    lib.setParam(h, Id::BLR, doc.lBLR);
    lib.setParam(h, Id::PUR, doc.lPUR);
    lib.setParam(h, Id::HighVoltage, doc.sngHighVoltage);
    lib.setParam(h, Id::HVState, doc.lHVOn);

    WriteDeviceCalibration(lib, doc);
    ApplyAdvancedSettings(lib, doc);
}

int32_t WriteDeviceCalibration(DeviceLibrary& lib, SpectrumDocument& doc) {
    if (doc.hDevice == 0)
        return 0;
    const std::array<float, 3> cal{static_cast<float>(doc.dDeviceCal[0]),
                                   static_cast<float>(doc.dDeviceCal[1]),
                                   static_cast<float>(doc.dDeviceCal[2])};
    return lib.setParam(doc.hDevice, Id::DeviceCalibration, cal.data(),
                        static_cast<int32_t>(sizeof cal));
}

} // namespace vexo
