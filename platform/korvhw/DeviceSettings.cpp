#include "DeviceSettings.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "StatusCodes.h"

namespace korvsim {

namespace {

constexpr int32_t kTopChannel = 16383;

bool IsChannelCount(int32_t n) {
    for (int32_t c = 256; c <= 16384; c *= 2)
        if (n == c)
            return true;
    return false;
}

bool InRange(int32_t v, int32_t lo, int32_t hi) {
    return v >= lo && v <= hi;
}

using P = ParamId;

// Integer ids with a plain inclusive range; the rest are handled case by case.
struct IntRange {
    ParamId id;
    int32_t lo, hi;
};
constexpr IntRange kRanges[] = {
    {P::AcqMode, 0, 1},
    {P::LLD, 0, kTopChannel},
    {P::ULD, 0, kTopChannel},
    {P::PresetModeLegacy, 0, 0xFFFF},
    {P::DigitalGain, 0, 10},
    {P::CoarseGain, 0, 7},
    {P::RiseTime, 1, 1023},
    {P::FlatTop, 0, 1023},
    {P::PoleZero, 0, 65535},
    {P::Threshold, 0, kTopChannel},
    {P::ScopeControl, 0, 7},
    {P::PresetCounts, 0, INT32_MAX},
    {P::PresetMode, 0, 15},
    {P::PresetFirstCh, 0, kTopChannel},
    {P::PresetLastCh, 0, kTopChannel},
    {P::AnalogPZ, 0, 4095},
    {P::PURGuard, 0, 7},
    {P::TRPGuard, 0, 7},
    {P::LTTrim, -512, 511},
    {P::BLRRate, 0, 3},
};

// Ids that hold different fields in PHA and MCS mode.
constexpr ParamId kModeDependent[] = {P::LLD, P::ULD, P::PresetValue};

bool IsModeDependent(ParamId id) {
    return std::ranges::find(kModeDependent, id) != std::end(kModeDependent);
}

int32_t* IntegerField(DeviceSettings& s, int32_t id) {
    const bool mcs = s.acqMode != 0;
    switch (AsParam(id)) {
    case P::AcqMode:
        return &s.acqMode;
    case P::Channels:
    case P::McsChannels:
        return &s.channels;
    case P::LLD:
        return mcs ? &s.scaLow : &s.lld;
    case P::ULD:
        return mcs ? &s.scaHigh : &s.uld;
    case P::PresetModeLegacy:
        return &s.legacyPreset;
    case P::Polarity:
        return &s.polarity;
    case P::DigitalGain:
        return &s.digitalGain;
    case P::CoarseGain:
        return &s.coarseGain;
    case P::FineGain:
        return &s.fineGain;
    case P::RiseTime:
        return &s.riseTime;
    case P::FlatTop:
        return &s.flatTop;
    case P::PoleZero:
        return &s.poleZero;
    case P::Threshold:
        return &s.threshold;
    case P::BLR:
        return &s.blr;
    case P::PUR:
        return &s.pur;
    case P::HVState:
        return &s.hvOn;
    case P::ConnectFlags:
        return &s.connectFlags;
    case P::ScopeControl:
        return &s.scopeControl;
    case P::PresetCounts:
        return &s.presetCounts;
    case P::PresetMode:
        return &s.presetMode;
    case P::PresetFirstCh:
        return &s.presetFirst;
    case P::PresetLastCh:
        return &s.presetLast;
    case P::GpioLegacy:
        return &s.gpioLegacy;
    case P::AnalogPZ:
        return &s.analogPZ;
    case P::PURGuard:
        return &s.purGuard;
    case P::TRPGuard:
        return &s.trpGuard;
    case P::LTTrim:
        return &s.ltTrim;
    case P::Gpio1:
        return &s.gpio1;
    case P::Gpio2:
        return &s.gpio2;
    case P::BLRRate:
        return &s.blrRate;
    case P::HVInhibit:
        return &s.hvInhibit;
    default:
        return nullptr;
    }
}

int32_t CheckInteger(const ModelTraits& traits, int32_t id, int32_t v) {
    for (const IntRange& r : kRanges)
        if (r.id == AsParam(id))
            return InRange(v, r.lo, r.hi) ? kOk : kOutOfRange;
    switch (AsParam(id)) {
    case P::Channels:
    case P::McsChannels:
        return IsChannelCount(v) ? kOk : kOutOfRange;
    case P::FineGain:
        return InRange(v, 0, traits.fineGainMax) ? kOk : kOutOfRange;
    // Function code in bits 0-6, polarity in bits 15 and up; bits 7-14 must be clear.
    case P::Gpio1:
    case P::Gpio2:
        return (v & 0x7F80) == 0 ? kOk : kOutOfRange;
    case P::HVInhibit:
        return (v & 0x7FFE) == 0 ? kOk : kOutOfRange;
    default:
        return kOk; // switches: any value, non-zero meaning on
    }
}

} // namespace

DeviceSettings FactoryDefaults(const DeviceSetup& setup, const ModelTraits& traits) {
    DeviceSettings s;
    const double clock = setup.clockHz > 0 ? setup.clockHz : 25.0e6;
    s.riseTime = static_cast<int32_t>(std::lround(clock * 1.0e-6));
    s.flatTop = static_cast<int32_t>(std::lround(clock * 0.5e-6));
    s.fineGain = (traits.fineGainMax + 1) / 2;
    s.polarity = setup.detectorPolarity;
    s.highVoltage = static_cast<float>(setup.nominalHV);
    s.hvOn = setup.hvOnAtPowerUp ? 1 : 0;
    return s;
}

ParamKind KindOf(int32_t id) {
    switch (AsParam(id)) {
    case P::DeviceName:
    case P::SerialNumber:
    case P::FirmwareVersion:
    case P::FirmwareDate:
    case P::ProductionDate:
        return ParamKind::Text;
    case P::PresetValue:
    case P::HighVoltage:
        return ParamKind::Real;
    case P::DeviceCalibration:
        return ParamKind::Triple;
    default:
        return ParamKind::Integer;
    }
}

bool IsReadOnly(int32_t id) {
    if (KindOf(id) == ParamKind::Text)
        return true;
    switch (AsParam(id)) {
    case P::McsCurrentChannel:
    case P::InputCounts:
    case P::ClockHz:
    case P::MaxHV:
        return true;
    default:
        return false;
    }
}

int32_t WireSize(int32_t id) {
    switch (KindOf(id)) {
    case ParamKind::Text:
        return 1;
    case ParamKind::Triple:
        return 12;
    default:
        return 4;
    }
}

int32_t ReadSetting(const DeviceSettings& s, int32_t id, ParamValue& out) {
    switch (AsParam(id)) {
    case P::PresetValue:
        out.real = s.acqMode != 0 ? s.dwellTime : s.presetTime;
        return kOk;
    case P::HighVoltage:
        out.real = s.highVoltage;
        return kOk;
    case P::DeviceCalibration:
        out.triple = s.calibration;
        return kOk;
    default:
        break;
    }
    const int32_t* field = IntegerField(const_cast<DeviceSettings&>(s), id);
    if (!field)
        return kNotSupported;
    out.integer = *field;
    return kOk;
}

int32_t WriteSetting(DeviceSettings& s, const ModelTraits& traits, double maxHV, int32_t id,
                     const ParamValue& in) {
    switch (AsParam(id)) {
    case P::PresetValue: {
        const bool mcs = s.acqMode != 0;
        const double lo = mcs ? 0.001 : 0.0, hi = mcs ? 1.0e5 : 1.0e7;
        if (!std::isfinite(in.real) || in.real < lo || in.real > hi)
            return kOutOfRange;
        (mcs ? s.dwellTime : s.presetTime) = in.real;
        return kOk;
    }
    case P::HighVoltage:
        if (!std::isfinite(in.real) || in.real < 0.0f || in.real > maxHV)
            return kOutOfRange;
        s.highVoltage = in.real;
        return kOk;
    case P::DeviceCalibration:
        for (float v : in.triple)
            if (!std::isfinite(v))
                return kOutOfRange;
        s.calibration = in.triple;
        return kOk;
    default:
        break;
    }
    int32_t* field = IntegerField(s, id);
    if (!field)
        return kNotSupported;
    const int32_t check = CheckInteger(traits, id, in.integer);
    if (check != kOk)
        return check;
    *field = in.integer;
    return kOk;
}

} // namespace korvsim

namespace korvsim {

DeviceSettings Sanitised(const DeviceSettings& loaded, const DeviceSettings& defaults,
                         const ModelTraits& traits, double maxHV) {
    DeviceSettings out = defaults;
    ParamValue v;
    // Copy both the PHA and the MCS fields of the mode-dependent ids.
    for (int32_t mode : {0, 1}) {
        DeviceSettings view = loaded;
        view.acqMode = out.acqMode = mode;
        for (ParamId id : kModeDependent)
            if (ReadSetting(view, ToInt(id), v) == kOk)
                WriteSetting(out, traits, maxHV, ToInt(id), v);
    }
    out.acqMode = 0;
    for (int32_t id = 0; id <= kHighestParamId; ++id) {
        if (IsModeDependent(AsParam(id)) || IsReadOnly(id) || !IsKnownParamId(id))
            continue;
        if (ReadSetting(loaded, id, v) == kOk)
            WriteSetting(out, traits, maxHV, id, v); // out-of-range values keep the default
    }
    out.hvOn = defaults.hvOn;
    return out;
}

} // namespace korvsim
