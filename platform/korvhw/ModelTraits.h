#pragma once
// What a model of the analyser answers, decided by the model code (the first two
// characters of the serial number) and the firmware version.
#include <bitset>
#include <cstdint>
#include <string>

#include "KorvhwParams.h"

namespace korvsim {

using ParamId = KorvhwParamId;
constexpr int32_t kHighestParamId = KORVHW_HIGHEST_PARAM_ID;

// The library's functions take ids as plain integers; any integer converts, named or not.
constexpr ParamId AsParam(int32_t id) {
    return static_cast<ParamId>(id);
}
constexpr int32_t ToInt(ParamId id) {
    return static_cast<int32_t>(id);
}

struct ModelTraits {
    std::string code;
    int32_t firmwareMajor = 0;
    int32_t firmwareMinor = 0;
    std::bitset<kHighestParamId + 1> answers; // ids this model answers
    int32_t fineGainMax = 4095;
    int32_t scopeFullScale = 4096; // 65536 for 16-bit traces
    bool hvStatusBits = false;     // HV word carries ramping (2) and inhibit (4)
    bool legacyPreset = false;     // presets through id 10 instead of id 30

    bool supports(int32_t id) const {
        return id >= 0 && id <= kHighestParamId && answers.test(static_cast<size_t>(id));
    }
    bool supports(ParamId id) const { return supports(ToInt(id)); }
};

// Whether the id is one of KorvhwParamId's; the gaps (29, 33, 37, 38, 43, 45, 46 and 47)
// are unknown to every model.
bool IsKnownParamId(int32_t id);
// Parses "V3.4" into 3 and 4; anything unreadable gives 0.0.
void ParseFirmware(const std::string& text, int32_t& major, int32_t& minor);
ModelTraits TraitsFor(const std::string& serial, const std::string& firmware);

} // namespace korvsim
