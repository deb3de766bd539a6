#include "DeviceSettings.h"

#include <cmath>

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

// Integer ids with a plain inclusive range; the rest are handled case by case.
struct IntRange {
    int32_t id, lo, hi;
};
constexpr IntRange kRanges[] = {
    {5, 0, 1},      {7, 0, kTopChannel},  {8, 0, kTopChannel},  {10, 0, 0xFFFF},
    {12, 0, 10},    {13, 0, 7},           {15, 1, 1023},        {16, 0, 1023},
    {17, 0, 65535}, {18, 0, kTopChannel}, {24, 0, 7},           {28, 0, INT32_MAX},
    {30, 0, 15},    {31, 0, kTopChannel}, {32, 0, kTopChannel}, {36, 0, 4095},
    {39, 0, 7},     {40, 0, 7},           {41, -512, 511},      {50, 0, 3},
};

int32_t* IntegerField(DeviceSettings& s, int32_t id) {
    const bool mcs = s.acqMode != 0;
    switch (id) {
    case 5:
        return &s.acqMode;
    case 6:
    case 26:
        return &s.channels;
    case 7:
        return mcs ? &s.scaLow : &s.lld;
    case 8:
        return mcs ? &s.scaHigh : &s.uld;
    case 10:
        return &s.legacyPreset;
    case 11:
        return &s.polarity;
    case 12:
        return &s.digitalGain;
    case 13:
        return &s.coarseGain;
    case 14:
        return &s.fineGain;
    case 15:
        return &s.riseTime;
    case 16:
        return &s.flatTop;
    case 17:
        return &s.poleZero;
    case 18:
        return &s.threshold;
    case 19:
        return &s.blr;
    case 20:
        return &s.pur;
    case 22:
        return &s.hvOn;
    case 23:
        return &s.connectFlags;
    case 24:
        return &s.scopeControl;
    case 28:
        return &s.presetCounts;
    case 30:
        return &s.presetMode;
    case 31:
        return &s.presetFirst;
    case 32:
        return &s.presetLast;
    case 34:
        return &s.gpioLegacy;
    case 36:
        return &s.analogPZ;
    case 39:
        return &s.purGuard;
    case 40:
        return &s.trpGuard;
    case 41:
        return &s.ltTrim;
    case 48:
        return &s.gpio1;
    case 49:
        return &s.gpio2;
    case 50:
        return &s.blrRate;
    case 51:
        return &s.hvInhibit;
    default:
        return nullptr;
    }
}

int32_t CheckInteger(const ModelTraits& traits, int32_t id, int32_t v) {
    for (const IntRange& r : kRanges)
        if (r.id == id)
            return InRange(v, r.lo, r.hi) ? kOk : kOutOfRange;
    switch (id) {
    case 6:
    case 26:
        return IsChannelCount(v) ? kOk : kOutOfRange;
    case 14:
        return InRange(v, 0, traits.fineGainMax) ? kOk : kOutOfRange;
    // Function code in bits 0-6, polarity in bits 15 and up; bits 7-14 must be clear.
    case 48:
    case 49:
        return (v & 0x7F80) == 0 ? kOk : kOutOfRange;
    case 51:
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
    switch (id) {
    case 0:
    case 1:
    case 2:
    case 3:
    case 4:
        return ParamKind::Text;
    case 9:
    case 21:
        return ParamKind::Real;
    case 25:
        return ParamKind::Triple;
    default:
        return ParamKind::Integer;
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
    switch (id) {
    case 9:
        out.real = s.acqMode != 0 ? s.dwellTime : s.presetTime;
        return kOk;
    case 21:
        out.real = s.highVoltage;
        return kOk;
    case 25:
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
    switch (id) {
    case 9: {
        const bool mcs = s.acqMode != 0;
        const double lo = mcs ? 0.001 : 0.0, hi = mcs ? 1.0e5 : 1.0e7;
        if (!std::isfinite(in.real) || in.real < lo || in.real > hi)
            return kOutOfRange;
        (mcs ? s.dwellTime : s.presetTime) = in.real;
        return kOk;
    }
    case 21:
        if (!std::isfinite(in.real) || in.real < 0.0f || in.real > maxHV)
            return kOutOfRange;
        s.highVoltage = in.real;
        return kOk;
    case 25:
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
    // Ids 7, 8 and 9 hold different fields in PHA and MCS mode: copy both sets.
    for (int32_t mode : {0, 1}) {
        DeviceSettings view = loaded;
        view.acqMode = out.acqMode = mode;
        for (int32_t id : {7, 8, 9})
            if (ReadSetting(view, id, v) == kOk)
                WriteSetting(out, traits, maxHV, id, v);
    }
    out.acqMode = 0;
    for (int32_t id = 5; id <= kHighestParamId; ++id) {
        if (id == 7 || id == 8 || id == 9 || id == 27 || id == 35 || !IsKnownParamId(id))
            continue;
        if (ReadSetting(loaded, id, v) == kOk)
            WriteSetting(out, traits, maxHV, id, v); // out-of-range values keep the default
    }
    out.hvOn = defaults.hvOn;
    return out;
}

} // namespace korvsim
