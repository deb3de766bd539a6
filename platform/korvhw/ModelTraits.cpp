#include "ModelTraits.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <iterator>

namespace korvsim {

namespace {

// Ids in 0..kHighestParamId that no parameter has.
constexpr int32_t kUnassignedIds[] = {29, 33, 37, 38, 43, 45, 46, 47};

void Allow(ModelTraits& t, std::initializer_list<ParamId> ids) {
    for (ParamId id : ids)
        t.answers.set(static_cast<size_t>(ToInt(id)));
}

} // namespace

bool IsKnownParamId(int32_t id) {
    if (id < 0 || id > kHighestParamId)
        return false;
    return std::find(std::begin(kUnassignedIds), std::end(kUnassignedIds), id) ==
           std::end(kUnassignedIds);
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
    using P = ParamId;
    Allow(t, {P::DeviceName, P::SerialNumber, P::FirmwareVersion, P::FirmwareDate});
    Allow(t, {P::ProductionDate, P::AcqMode, P::Channels, P::LLD, P::ULD, P::PresetValue});
    Allow(t, {P::Polarity, P::DigitalGain, P::CoarseGain, P::FineGain, P::RiseTime});
    Allow(t, {P::FlatTop, P::PoleZero, P::Threshold, P::BLR, P::PUR, P::HighVoltage});
    Allow(t, {P::HVState, P::ConnectFlags, P::ScopeControl, P::DeviceCalibration});
    Allow(t, {P::McsChannels, P::McsCurrentChannel, P::ClockHz, P::MaxHV});
    const bool current = t.code == "10";
    const bool old = t.code == "06" || t.code == "13" || t.code == "14";
    if (old) {
        // Old firmware: one legacy preset word and one external-control switch.
        Allow(t, {P::PresetModeLegacy, P::GpioLegacy});
        t.legacyPreset = true;
    } else {
        Allow(t, {P::PresetCounts, P::PresetMode, P::PresetFirstCh, P::PresetLastCh, P::InputCounts,
                  P::PURGuard, P::TRPGuard, P::LTTrim, P::Gpio1, P::Gpio2, P::BLRRate});
        if (current)
            Allow(t, {P::AnalogPZ, P::HVInhibit});
    }
    const bool wide = t.code == "10" || t.code == "08";
    const bool newFirmware = t.firmwareMajor > 3 || (t.firmwareMajor == 3 && t.firmwareMinor >= 3);
    t.fineGainMax = wide && newFirmware ? 16383 : 4095;
    t.scopeFullScale = wide ? 65536 : 4096;
    t.hvStatusBits = current;
    return t;
}

} // namespace korvsim
