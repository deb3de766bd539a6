#include "Device.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "SettingsFile.h"
#include "StatusCodes.h"

namespace korvsim {

namespace {

// Random streams of one device, kept apart so that an injected read failure or a
// scope trace never changes the spectrum a seed gives.
constexpr uint64_t kPhysicsStream = 1, kFaultStream = 2, kScopeStream = 3;

using P = ParamId;

} // namespace

Device::Device(DeviceSetup setup, uint64_t seed, std::filesystem::path settingsDir)
    : m_setup(std::move(setup)), m_traits(TraitsFor(m_setup.serial, m_setup.firmware)),
      m_settingsDir(std::move(settingsDir)), m_seed(seed) {
    for (int32_t id : m_setup.missingIds)
        if (id >= 0 && id <= kHighestParamId)
            m_traits.answers.reset(static_cast<size_t>(id));
    for (const SourceSetup& source : m_setup.sources)
        if (const SourceNuclide* nuclide = FindSource(source.nuclide))
            m_sources.push_back({nuclide, source.rateCps});
    powerUp();
}

void Device::powerUp() {
    const DeviceSettings defaults = FactoryDefaults(m_setup, m_traits);
    DeviceSettings stored = defaults;
    m_settings = LoadSettingsFile(m_settingsDir, m_setup.serial, stored)
                     ? Sanitised(stored, defaults, m_traits, maxHV())
                     : defaults;
}

int32_t Device::open(double now) {
    if (m_open)
        return kConnectionFailed; // one connection at a time, as with the real link
    if (m_openAttempts++ < m_setup.faults.openFailures)
        return kConnectionFailed;
    m_open = true;
    m_lost = false;
    m_openedAt = now;
    m_physics.reseed(MixSeed(m_seed, kPhysicsStream));
    m_faults.reseed(MixSeed(m_seed, kFaultStream));
    m_scopeRng.reseed(MixSeed(m_seed, kScopeStream));
    m_acq.skipTo(now);
    m_scopeArmed = true;
    m_scopeArmedAt = now;
    if (m_settings.hvOn & 1)
        m_hvSettledAt = std::max(m_hvSettledAt, now);
    return kOk;
}

void Device::close() {
    m_open = false;
    m_lost = false;
}

bool Device::lost(double now) {
    const double after = m_setup.faults.disconnectAfterSeconds;
    if (m_open && !m_lost && after >= 0.0 && now - m_openedAt >= after)
        m_lost = true;
    return m_lost;
}

int32_t Device::checkId(int32_t id) const {
    if (!IsKnownParamId(id))
        return kInvalidParameter;
    if (!m_traits.supports(id))
        return kNotSupported;
    for (const ParamFault& fault : m_setup.faults.paramFaults)
        if (fault.id == id)
            return fault.code;
    return kOk;
}

int32_t Device::liveValue(int32_t id, ParamValue& out) const {
    switch (AsParam(id)) {
    case P::DeviceName:
        out.text = m_setup.name;
        return kOk;
    case P::SerialNumber:
        out.text = m_setup.serial;
        return kOk;
    case P::FirmwareVersion:
        out.text = m_setup.firmware;
        return kOk;
    case P::FirmwareDate:
        out.text = m_setup.firmwareDate;
        return kOk;
    case P::ProductionDate:
        out.text = m_setup.productionDate;
        return kOk;
    case P::McsCurrentChannel:
        out.integer = m_acq.mcsChannel();
        return kOk;
    case P::InputCounts:
        out.integer = static_cast<int32_t>(std::min<uint64_t>(m_acq.inputCounts(), INT32_MAX));
        return kOk;
    case P::ClockHz:
        out.integer = m_setup.clockHz;
        return kOk;
    case P::MaxHV:
        out.integer = static_cast<int32_t>(std::lround(m_setup.maxHV * 10.0));
        return kOk;
    default:
        return kNotSupported;
    }
}

int32_t Device::getParam(double now, int32_t id, ParamValue& out) {
    if (const int32_t check = checkId(id); check != kOk)
        return check;
    advance(now);
    if (IsReadOnly(id))
        return liveValue(id, out);
    if (AsParam(id) == P::HVState) {
        out.integer = hvWord(now);
        return kOk;
    }
    return ReadSetting(m_settings, id, out);
}

int32_t Device::setParam(double now, int32_t id, const ParamValue& in) {
    if (const int32_t check = checkId(id); check != kOk)
        return check;
    if (IsReadOnly(id))
        return kNotSupported;
    advance(now);
    const DeviceSettings before = m_settings;
    ParamValue value = in;
    if (AsParam(id) == P::HVState)
        value.integer &= 1; // ramping and inhibit bits are the device's to report
    const int32_t result = WriteSetting(m_settings, m_traits, maxHV(), id, value);
    if (result == kOk)
        afterWrite(id, now, before);
    return result;
}

void Device::afterWrite(int32_t id, double now, const DeviceSettings& before) {
    const ParamId p = AsParam(id);
    const bool wasOn = (before.hvOn & 1) != 0, isOn = (m_settings.hvOn & 1) != 0;
    // Switching on, or moving the voltage while on, starts a new ramp.
    if ((p == P::HVState && isOn && !wasOn) ||
        (p == P::HighVoltage && isOn &&
         std::fabs(m_settings.highVoltage - before.highVoltage) > 0.5f))
        m_hvSettledAt = now + std::max(0.0, m_setup.hvRampSeconds);
    if ((p == P::Channels || p == P::McsChannels) && m_settings.channels != before.channels)
        m_acq.clearMemory(); // memory is re-partitioned, as the hardware does
    if (p == P::AcqMode && m_settings.acqMode != before.acqMode && m_acq.running())
        m_acq.stop(); // a run cannot change its kind half way
}

int32_t Device::restoreDefaults(double now) {
    advance(now);
    const int32_t hvOn = m_settings.hvOn;
    m_settings = FactoryDefaults(m_setup, m_traits);
    m_settings.hvOn = hvOn; // restoring settings never switches the HV by itself
    return kOk;
}

int32_t Device::saveSettings() {
    const std::string error = SaveSettingsFile(m_settingsDir, m_setup.serial, m_settings);
    if (error.empty())
        return kOk;
    std::fprintf(stderr, "KORVHW: SaveSettings: %s\n", error.c_str());
    return kMcaFailure;
}

} // namespace korvsim
