#include "MeasureSession.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <thread>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "base/NumberText.h"
#include "device/AcquisitionController.h"
#include "device/ConnectionController.h"
#include "device/DeviceIO.h"

namespace vexo::cli {
namespace {

volatile std::sig_atomic_t g_signal = 0;

extern "C" void NoteSignal(int signal) {
    g_signal = signal;
}

int32_t ToInt(const std::string& text, const std::string& what) {
    int32_t v = 0;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), v);
    if (text.empty() || r.ec != std::errc() || r.ptr != text.data() + text.size())
        throw UsageError{what + ": '" + text + "' is not a whole number"};
    return v;
}

float ToFloat(const std::string& text, const std::string& what) {
    float v = 0;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), v);
    if (text.empty() || r.ec != std::errc() || r.ptr != text.data() + text.size() ||
        !std::isfinite(v))
        throw UsageError{what + ": '" + text + "' is not a finite number"};
    return v;
}

float ToSeconds(const std::string& text, const std::string& what) {
    const float s = ToFloat(text, what);
    if (s <= 0.0f)
        throw UsageError{what + ": the time must be above 0"};
    return s;
}

using IntField = int32_t SpectrumDocument::*;
using FloatField = float SpectrumDocument::*;

const std::map<std::string, IntField>& IntFields() {
    static const std::map<std::string, IntField> fields = {
        {"lChannels", &SpectrumDocument::lChannels},
        {"lMCSMode", &SpectrumDocument::lMCSMode},
        {"lCoarseGain", &SpectrumDocument::lCoarseGain},
        {"lFineGain", &SpectrumDocument::lFineGain},
        {"lDigitalGain", &SpectrumDocument::lDigitalGain},
        {"lThreshold", &SpectrumDocument::lThreshold},
        {"lLLD", &SpectrumDocument::lLLD},
        {"lULD", &SpectrumDocument::lULD},
        {"lRiseTime", &SpectrumDocument::lRiseTime},
        {"lFlatTop", &SpectrumDocument::lFlatTop},
        {"lPoleZero", &SpectrumDocument::lPoleZero},
        {"lBLR", &SpectrumDocument::lBLR},
        {"lPUR", &SpectrumDocument::lPUR},
        {"lPolarity", &SpectrumDocument::lPolarity},
        {"lPresetMode", &SpectrumDocument::lPresetMode},
        {"lPresetCounts", &SpectrumDocument::lPresetCounts},
        {"lPresetFirstCh", &SpectrumDocument::lPresetFirstCh},
        {"lPresetLastCh", &SpectrumDocument::lPresetLastCh},
        {"lSCALow", &SpectrumDocument::lSCALow},
        {"lSCAHigh", &SpectrumDocument::lSCAHigh},
        {"lHVOn", &SpectrumDocument::lHVOn},
        {"lBLRRate", &SpectrumDocument::lBLRRate},
        {"lPURGuard", &SpectrumDocument::lPURGuard},
        {"lTRPGuard", &SpectrumDocument::lTRPGuard},
        {"lAnalogPZ", &SpectrumDocument::lAnalogPZ},
        {"lLTTrim", &SpectrumDocument::lLTTrim},
    };
    return fields;
}

const std::map<std::string, FloatField>& FloatFields() {
    static const std::map<std::string, FloatField> fields = {
        {"sngHighVoltage", &SpectrumDocument::sngHighVoltage},
        {"sngPresetTime", &SpectrumDocument::sngPresetTime},
        {"sngDwellTime", &SpectrumDocument::sngDwellTime},
    };
    return fields;
}

// A record field named as --set names it, as text; of the HV word only the on bit counts
// (the device adds its ramping and inhibit bits).
std::string FieldText(const SpectrumDocument& doc, const std::string& name) {
    if (const auto it = IntFields().find(name); it != IntFields().end())
        return std::to_string(name == "lHVOn" ? doc.*(it->second) & kHVOn : doc.*(it->second));
    return SingleToText(doc.*(FloatFields().at(name)));
}

// One setting a measurement depends on, as the device must hold it.
struct InForce {
    DeviceParamId id;
    std::string name;
    double asked;
    bool real; // a 32-bit float on the wire
};

std::vector<InForce> PresetAndMode(const SpectrumDocument& asked) {
    using Id = DeviceParamId;
    std::vector<InForce> checks{{Id::AcqMode, "lMCSMode", double(asked.lMCSMode), false}};
    if (asked.lMCSMode != 0) {
        checks.push_back({Id::PresetValue, "sngDwellTime", asked.sngDwellTime, true});
    } else if ((asked.lCapabilities & kCapPresetMode) == 0) {
        checks.push_back({Id::PresetModeLegacy, "the legacy preset word",
                          double(LegacyPresetWord(asked.sngPresetTime)), false});
        checks.push_back({Id::PresetValue, "sngPresetTime", asked.sngPresetTime, true});
    } else {
        checks.push_back({Id::PresetMode, "lPresetMode", double(asked.lPresetMode), false});
        if (asked.lPresetMode & kPresetTimeActive)
            checks.push_back({Id::PresetValue, "sngPresetTime", asked.sngPresetTime, true});
        if (asked.lPresetMode & kPresetCountsActive) {
            checks.push_back(
                {Id::PresetCounts, "lPresetCounts", double(asked.lPresetCounts), false});
            if (asked.lCapabilities & kCapPresetWindow) {
                checks.push_back(
                    {Id::PresetFirstCh, "lPresetFirstCh", double(asked.lPresetFirstCh), false});
                checks.push_back(
                    {Id::PresetLastCh, "lPresetLastCh", double(asked.lPresetLastCh), false});
            }
        }
    }
    return checks;
}

std::string ValueText(double value, bool real) {
    return real ? SingleToText(static_cast<float>(value))
                : std::to_string(static_cast<int64_t>(value));
}

} // namespace

void CatchInterrupts() {
    std::signal(SIGINT, NoteSignal);
    std::signal(SIGTERM, NoteSignal);
}

void ThrowIfInterrupted() {
    if (const int signal = g_signal)
        throw Interrupted{signal};
}

PresetChoice ParsePreset(const std::string& text) {
    const auto parts = SplitArg(text, ':');
    PresetChoice p;
    const std::string& kind = parts[0];
    if ((kind == "live" || kind == "real" || kind == "forever") && parts.size() == 2) {
        p.kind = kind == "live"   ? PresetChoice::Kind::Live
                 : kind == "real" ? PresetChoice::Kind::Real
                                  : PresetChoice::Kind::Forever;
        p.seconds = ToSeconds(parts[1], "--preset");
        return p;
    }
    if (kind == "counts" && parts.size() == 4) {
        p.kind = PresetChoice::Kind::Counts;
        p.counts = ToInt(parts[1], "--preset counts");
        p.first = ToInt(parts[2], "--preset first channel");
        p.last = ToInt(parts[3], "--preset last channel");
        if (p.counts <= 0 || p.first < 0 || p.last < p.first)
            throw UsageError{"--preset counts:N:FIRST:LAST needs N > 0 and 0 <= FIRST <= LAST"};
        return p;
    }
    throw UsageError{"--preset must be live:S, real:S, counts:N:FIRST:LAST or forever:S"};
}

McsChoice ParseMcs(const std::string& text) {
    const auto parts = SplitArg(text, ':', 3, "--mcs must be DWELL:LOW:HIGH");
    McsChoice m;
    m.dwellSeconds = ToSeconds(parts[0], "--mcs dwell");
    m.low = ToInt(parts[1], "--mcs low channel");
    m.high = ToInt(parts[2], "--mcs high channel");
    return m;
}

void SetRecordField(SpectrumDocument& doc, const std::string& name, const std::string& value) {
    if (const auto it = IntFields().find(name); it != IntFields().end()) {
        doc.*(it->second) = ToInt(value, name);
        return;
    }
    if (const auto it = FloatFields().find(name); it != FloatFields().end()) {
        doc.*(it->second) = ToFloat(value, name);
        return;
    }
    throw UsageError{"--set: unknown setting '" + name + "'"};
}

bool ParseDeviceOption(const std::string& a, ArgCursor& cursor, DeviceOptions& o) {
    if (a == "--device") {
        o.device = cursor.value(a);
    } else if (a == "--preset") {
        o.preset = ParsePreset(cursor.value(a));
    } else if (a == "--mcs") {
        o.mcs = ParseMcs(cursor.value(a));
    } else if (a == "--hv") {
        const std::string v = cursor.value(a);
        if (v != "on" && v != "off")
            throw UsageError{"--hv takes on or off"};
        o.hvOn = v == "on";
    } else if (a == "--set") {
        const std::string v = cursor.value(a);
        const auto eq = v.find('=');
        if (eq == std::string::npos || eq == 0)
            throw UsageError{"--set needs NAME=VALUE"};
        SpectrumDocument probe; // checks name and value now, before the device is opened
        SetRecordField(probe, v.substr(0, eq), v.substr(eq + 1));
        o.sets.emplace_back(v.substr(0, eq), v.substr(eq + 1));
    } else {
        return false;
    }
    return true;
}

void FailWhenSilent(const AcquisitionController& acq) {
    if (acq.consecutiveFailedPolls() >= kMaxFailedPolls)
        throw Failure{"the device does not answer: " + ErrorText(acq.lastPollError())};
}

TickPacer::TickPacer() {
    if (const char* env = std::getenv("VEXO_TICK_MS"); env && *env) {
        const int ms = std::atoi(env);
        m_ms = ms < 0 ? 0 : ms > 10000 ? 10000 : ms;
    }
}

void TickPacer::wait() const {
    if (m_ms > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(m_ms));
}

MeasureSession::MeasureSession(const DeviceOptions& options)
    : m_options(options), m_doc(std::make_unique<SpectrumDocument>()) {
    if (options.device.empty())
        throw UsageError{"--device PATH is required"};
    DeviceLibraryLoad load = DeviceLibrary::Load();
    if (!load.library)
        throw Failure{load.error};
    m_library = std::move(load.library);
    std::fprintf(stderr, "opening %s\n", options.device.c_str());
    OpenMca(*m_library, *m_doc, m_messages, ConnectionHooks{}, options.device, std::string(), true);
    if (!m_doc->bConnected)
        throw Failure{"could not open " + options.device};
    m_doc->szDevicePath = options.device;
}

MeasureSession::~MeasureSession() {
    if (m_library && m_doc->hDevice != 0) {
        // A command that ends early (interrupted, failed) leaves no acquisition running.
        m_library->stopAcquisition(m_doc->hDevice);
        const int32_t status = CloseMca(*m_library, *m_doc);
        if (status != 0)
            std::fprintf(stderr, "closing the device: %s\n", ErrorText(status).c_str());
    }
}

void MeasureSession::applySettings() {
    SpectrumDocument& doc = *m_doc;
    if (const auto& p = m_options.preset) {
        switch (p->kind) {
        case PresetChoice::Kind::Live:
            doc.lPresetMode = kPresetTimeActive | kPresetLiveTime;
            doc.sngPresetTime = p->seconds;
            break;
        case PresetChoice::Kind::Real:
            doc.lPresetMode = kPresetTimeActive;
            doc.sngPresetTime = p->seconds;
            break;
        case PresetChoice::Kind::Counts:
            // Older analysers know only the time preset of their legacy word: a counts
            // preset would never end the measurement.
            if ((doc.lCapabilities & kCapPresetMode) == 0)
                throw Failure{"this analyser has no counts preset; use live:S or real:S"};
            doc.lPresetMode = kPresetCountsActive;
            doc.lPresetCounts = p->counts;
            doc.lPresetFirstCh = p->first;
            doc.lPresetLastCh = p->last;
            break;
        case PresetChoice::Kind::Forever:
            doc.lPresetMode = 0; // the program ends it after the given real time
            break;
        }
    }
    if (const auto& m = m_options.mcs) {
        doc.lMCSMode = 1;
        doc.sngDwellTime = m->dwellSeconds;
        doc.lSCALow = m->low;
        doc.lSCAHigh = m->high;
    }
    for (const auto& [name, value] : m_options.sets)
        SetRecordField(doc, name, value);
    if (m_options.hvOn)
        doc.lHVOn = kHVOn;
    const auto asked = std::make_unique<SpectrumDocument>(doc);
    WriteAllParams(*m_library, doc);
    ReadAllParams(*m_library, doc);
    warnRefusedSets(*asked);
    requirePresetInForce(*asked);
    if (m_options.hvOn)
        waitForHighVoltage();
}

void MeasureSession::warnRefusedSets(const SpectrumDocument& asked) const {
    for (const auto& [name, value] : m_options.sets) {
        const std::string held = FieldText(*m_doc, name);
        if (held != FieldText(asked, name))
            std::fprintf(stderr, "warning: the analyser refused %s=%s; it holds %s\n", name.c_str(),
                         value.c_str(), held.c_str());
    }
}

// Write-all ignores the device's answers, and a refused preset or mode would leave a
// measurement that never ends (or ends at the wrong time): each is read back.
void MeasureSession::requirePresetInForce(const SpectrumDocument& asked) {
    for (const InForce& c : PresetAndMode(asked)) {
        double held = 0.0;
        int32_t status = 0;
        if (c.real) {
            float value = 0.0f;
            status = m_library->getParam(m_doc->hDevice, c.id, value);
            held = value;
        } else {
            int32_t value = 0;
            status = m_library->getParam(m_doc->hDevice, c.id, value);
            held = value;
        }
        if (status != 0)
            throw Failure{"cannot read back " + c.name + " from the analyser (" +
                          ErrorText(status) + "); the measurement was not started"};
        if (held != c.asked)
            throw Failure{"the analyser did not take " + c.name + " = " +
                          ValueText(c.asked, c.real) + " (it holds " + ValueText(held, c.real) +
                          "); the measurement was not started"};
    }
}

void MeasureSession::waitForHighVoltage() {
    for (int tick = 0; tick < 600; ++tick) {
        // Polled as the refresh tick polls: status word first, then the HV word. A
        // simulated analyser on a step clock moves its time on the status poll.
        int32_t status = 0, hv = 0;
        int32_t rc = m_library->getAcquisitionStatus(m_doc->hDevice, status);
        if (rc == 0)
            rc = m_library->getParam(m_doc->hDevice, DeviceParamId::HVState, hv);
        if (rc != 0)
            throw Failure{"reading the high-voltage state: " + ErrorText(rc)};
        if ((hv & kHVRamping) == 0) {
            if ((hv & kHVOn) == 0)
                throw Failure{"the high voltage did not switch on"};
            return;
        }
        if (tick % 10 == 0)
            std::fprintf(stderr, "high voltage ramping\n");
        m_pacer.wait();
        ThrowIfInterrupted();
    }
    throw Failure{"the high voltage is still ramping after 600 ticks"};
}

} // namespace vexo::cli
