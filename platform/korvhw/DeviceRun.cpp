// The running side of a device: what its settings mean for the pulses, the
// acquisition clockwork, status, spectrum read-out and the scope.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "Device.h"
#include "ScopeTrace.h"
#include "StatusCodes.h"

namespace korvsim {

namespace {

constexpr double kDefaultClockHz = 25.0e6;
constexpr double kDefaultMaxHV = 1500.0;
// Conversion gain at coarse x1, fine factor 1, digital x1 and nominal HV: full
// scale is 4 x 2560 keV, so the power-up coarse gain x4 gives 2.5 keV per channel
// at 1024 channels.
constexpr double kFullScaleKeVAtUnitGain = 4.0 * 2560.0;
constexpr double kScopeDelay = 0.1; // seconds from arming to a captured trace
constexpr double kFullScaleThresholdUnits = 16384.0;

} // namespace

double Device::clockHz() const {
    return m_setup.clockHz > 0 ? m_setup.clockHz : kDefaultClockHz;
}

double Device::maxHV() const {
    return m_setup.maxHV > 0.0 ? m_setup.maxHV : kDefaultMaxHV;
}

bool Device::inhibited() const {
    // Models with an HVInhibit parameter honour the inhibit input only when it is enabled there.
    const bool enabled = !m_traits.supports(ParamId::HVInhibit) || (m_settings.hvInhibit & 1) != 0;
    return m_setup.hvInhibitInput && enabled;
}

bool Device::biased() const {
    if (!(m_settings.hvOn & 1) || inhibited() || !(m_settings.highVoltage > 0.0f))
        return false;
    const double minimum =
        MakeDetectorModel(m_setup.detector).minimumBiasShare() * m_setup.nominalHV;
    return m_settings.highVoltage >= minimum;
}

bool Device::pulsesPresent() const {
    // Pulses of the wrong sign never cross the trigger threshold.
    const bool polarityFits = (m_settings.polarity != 0) == (m_setup.detectorPolarity != 0);
    return polarityFits && biased();
}

double Device::channelsPerKeV() const {
    const DetectorModel det = MakeDetectorModel(m_setup.detector);
    const double fine = 0.5 + static_cast<double>(m_settings.fineGain) / m_traits.fineGainMax;
    double gain =
        std::ldexp(1.0, m_settings.coarseGain) * fine * std::ldexp(1.0, m_settings.digitalGain);
    if (det.hvGainExponent() > 0.0 && m_setup.nominalHV > 0.0)
        gain *= std::pow(m_settings.highVoltage / m_setup.nominalHV, det.hvGainExponent());
    return m_settings.channels * gain / kFullScaleKeVAtUnitGain;
}

const SpectralShape& Device::shape() {
    const ShapeKey key{m_settings.channels, channelsPerKeV(),
                       m_settings.threshold * m_settings.channels / kFullScaleThresholdUnits};
    if (!(key == m_shapeKey)) {
        ShapeRequest request;
        request.detector = m_setup.detector;
        request.sources = m_sources;
        request.noiseCps = m_setup.noiseCps;
        request.channels = key.channels;
        request.channelsPerKeV = key.channelsPerKeV;
        request.thresholdChannel = key.thresholdChannel;
        m_shape = BuildShape(request);
        m_shapeKey = key;
    }
    return m_shape;
}

int32_t Device::hvWord(double now) const {
    int32_t word = m_settings.hvOn & 1;
    if (m_traits.hvStatusBits) {
        if (word && !inhibited() && now < m_hvSettledAt)
            word |= 2;
        if (inhibited())
            word |= 4;
    }
    return word;
}

AcquisitionConditions Device::conditions() {
    const DeviceSettings& s = m_settings;
    AcquisitionConditions c;
    c.shape = &shape();
    c.pulsesPresent = pulsesPresent();
    c.pulsesFrom = m_hvSettledAt;
    c.gateOpensAt = m_gateOpensAt;
    const double clock = clockHz();
    c.deadPerEvent = (2.0 * s.riseTime + s.flatTop) / clock;
    c.pileUpWindow = static_cast<double>(s.riseTime + s.flatTop) / clock;
    c.pileUpRejection = s.pur != 0;
    c.channels = s.channels;
    c.lld = s.lld;
    c.uld = s.uld;
    c.mcs = s.acqMode != 0;
    c.scaLow = s.scaLow;
    c.scaHigh = s.scaHigh;
    c.dwellSeconds = std::max(0.001f, s.dwellTime);
    if (m_traits.legacyPreset) {
        // Old firmware: a time preset whenever a time is set; bit 0 picks live time.
        c.timePreset = s.presetTime > 0.0f;
        c.liveTimePreset = (s.legacyPreset & 1) != 0;
    } else {
        c.timePreset = (s.presetMode & 2) != 0 && s.presetTime > 0.0f;
        c.liveTimePreset = (s.presetMode & 1) != 0;
        c.countsPreset = (s.presetMode & 4) != 0 && s.presetCounts > 0;
    }
    c.presetSeconds = s.presetTime;
    c.presetCounts = s.presetCounts;
    // Without its own window registers the counts preset counts between the
    // discriminators.
    const bool ownWindow =
        m_traits.supports(ParamId::PresetFirstCh) && m_traits.supports(ParamId::PresetLastCh);
    c.presetFirst = ownWindow ? s.presetFirst : s.lld;
    c.presetLast = ownWindow ? s.presetLast : s.uld;
    return c;
}

void Device::advance(double now) {
    if (!m_acq.running())
        return;
    if (inhibited()) {
        m_acq.skipTo(now); // suspended: the timers stand still while HV is inhibited
        return;
    }
    m_acq.advance(now, conditions(), m_physics);
}

int32_t Device::start(double now) {
    advance(now);
    if (m_acq.running())
        return kOk;
    m_acq.start(now);
    const bool externalStart = !m_traits.legacyPreset && (m_settings.presetMode & 8) != 0;
    m_gateOpensAt = externalStart ? now + std::max(0.0, m_setup.externalGateSeconds) : now;
    return kOk;
}

int32_t Device::stop(double now) {
    advance(now);
    m_acq.stop();
    return kOk;
}

int32_t Device::clear(double now, bool memory, bool time) {
    advance(now);
    if (memory)
        m_acq.clearMemory();
    if (time)
        m_acq.clearTime();
    return kOk;
}

int32_t Device::status(double now, int32_t& word) {
    advance(now);
    word = 0;
    if (!m_acq.running())
        return kOk;
    word = 1;
    if (now < m_gateOpensAt)
        word |= 2;
    if (inhibited())
        word |= 4;
    return kOk;
}

int32_t Device::readSpectrum(double now, int32_t* counts, int32_t& channels, float& realTime,
                             float& liveTime) {
    advance(now);
    if (m_setup.faults.readSpectrumFailShare > 0.0 &&
        m_faults.uniform() < m_setup.faults.readSpectrumFailShare)
        return kReceiveFailed;
    channels = m_settings.channels;
    std::memcpy(counts, m_acq.counts().data(), sizeof(int32_t) * static_cast<size_t>(channels));
    realTime = static_cast<float>(m_acq.realTime());
    liveTime = static_cast<float>(m_acq.liveTime());
    return kOk;
}

int32_t Device::armScope(double now) {
    advance(now);
    m_scopeArmed = true;
    m_scopeArmedAt = now;
    return kOk;
}

int32_t Device::scopeStatus(double now, int32_t& status) {
    advance(now);
    status = m_scopeArmed && now >= m_scopeArmedAt + kScopeDelay ? 0 : 1;
    return kOk;
}

int32_t Device::readScope(double now, int16_t* samples) {
    int32_t ready = 1;
    scopeStatus(now, ready);
    if (ready != 0)
        return kInvalidArgument; // nothing captured since the last arming
    ScopeRequest request;
    request.input = m_settings.scopeControl == 7;
    request.fullScale = m_traits.scopeFullScale;
    request.riseTicks = m_settings.riseTime;
    request.flatTicks = m_settings.flatTop;
    request.poleZero = m_settings.poleZero;
    request.clockHz = clockHz();
    request.polarityMatches = (m_settings.polarity != 0) == (m_setup.detectorPolarity != 0);
    request.detectorPolarity = m_setup.detectorPolarity;
    request.pulses = biased() && now >= m_hvSettledAt;
    request.shape = &shape();
    request.rateCps = request.pulses ? shape().triggerRateCps : 0.0;
    MakeScopeTrace(request, m_scopeRng, samples);
    return kOk;
}

} // namespace korvsim
