#include "ModelTraits.h"

#include <cstdlib>
#include <initializer_list>

namespace korvsim {

namespace {

void Allow(ModelTraits& t, std::initializer_list<int32_t> ids) {
    for (int32_t id : ids)
        t.answers.set(static_cast<size_t>(id));
}

} // namespace

bool IsKnownParamId(int32_t id) {
    if (id < 0 || id > kHighestParamId)
        return false;
    switch (id) {
    case 29:
    case 33:
    case 37:
    case 38:
    case 43:
    case 45:
    case 46:
    case 47:
        return false;
    default:
        return true;
    }
}

void ParseFirmware(const std::string& text, int32_t& major, int32_t& minor) {
    major = minor = 0;
    if (text.size() < 2 || (text[0] != 'V' && text[0] != 'v'))
        return;
    char* end = nullptr;
    major = static_cast<int32_t>(std::strtol(text.c_str() + 1, &end, 10));
    if (end && *end == '.')
        minor = static_cast<int32_t>(std::strtol(end + 1, nullptr, 10));
}

ModelTraits TraitsFor(const std::string& serial, const std::string& firmware) {
    ModelTraits t;
    t.code = serial.substr(0, 2);
    ParseFirmware(firmware, t.firmwareMajor, t.firmwareMinor);
    // Every model: identity, the MCA settings proper, HV, scope, calibration, clock.
    Allow(t, {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  11, 12, 13, 14, 15,
              16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 42, 44});
    const bool current = t.code == "10";
    const bool old = t.code == "06" || t.code == "13" || t.code == "14";
    if (old) {
        // Old firmware: one legacy preset word and one external-control switch.
        Allow(t, {10, 34});
        t.legacyPreset = true;
    } else {
        Allow(t, {28, 30, 31, 32, 35, 39, 40, 41, 48, 49, 50});
        if (current)
            Allow(t, {36, 51});
    }
    const bool wide = t.code == "10" || t.code == "08";
    const bool newFirmware = t.firmwareMajor > 3 || (t.firmwareMajor == 3 && t.firmwareMinor >= 3);
    t.fineGainMax = wide && newFirmware ? 16383 : 4095;
    t.scopeFullScale = wide ? 65536 : 4096;
    t.hvStatusBits = current;
    return t;
}

} // namespace korvsim
