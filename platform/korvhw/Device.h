#pragma once
// One simulated analyser: its identity, settings, high voltage, acquisition and
// scope. Every operation takes the current simulated time and first brings the
// acquisition up to it, so data always follows elapsed time x rate.
// Operations return the library's status codes (StatusCodes.h).
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "Acquisition.h"
#include "DeviceSettings.h"
#include "ModelTraits.h"
#include "Rng.h"
#include "SimConfig.h"
#include "SpectralShape.h"

namespace korvsim {

class Device {
public:
    // seed: this device's physics seed; settingsDir: where SaveSettings writes.
    Device(DeviceSetup setup, uint64_t seed, std::filesystem::path settingsDir);

    const DeviceSetup& setup() const { return m_setup; }
    const ModelTraits& traits() const { return m_traits; }

    // Connection. open() applies the open-failure fault and restarts the
    // disconnect timer and the random streams.
    int32_t open(double now);
    void close();
    bool isOpen() const { return m_open; }
    // True once the configured disconnect time has passed since opening.
    bool lost(double now);

    // Parameters. checkId gives kInvalidParameter for ids no model knows and
    // kNotSupported for ids this model lacks; the configured fault code of an id
    // comes next.
    int32_t checkId(int32_t id) const;
    int32_t getParam(double now, int32_t id, ParamValue& out);
    int32_t setParam(double now, int32_t id, const ParamValue& in);

    // Acquisition.
    int32_t start(double now);
    int32_t stop(double now);
    int32_t clear(double now, bool memory, bool time);
    int32_t restoreDefaults(double now);
    int32_t saveSettings();
    int32_t status(double now, int32_t& word);
    // Copies the channels in use; counts must hold KORVHW_SPECTRUM_SLOTS values.
    int32_t readSpectrum(double now, int32_t* counts, int32_t& channels, float& realTime,
                         float& liveTime);

    // Digital scope: armed at power-up; a trace is ready kScopeDelay seconds after arming.
    int32_t armScope(double now);
    int32_t scopeStatus(double now, int32_t& status);
    int32_t readScope(double now, int16_t* samples);

private:
    struct ShapeKey {
        int32_t channels = -1;
        double channelsPerKeV = 0.0;
        double thresholdChannel = 0.0;
        bool operator==(const ShapeKey&) const = default;
    };

    void advance(double now);
    AcquisitionConditions conditions();
    const SpectralShape& shape();
    double clockHz() const;
    double maxHV() const;
    double channelsPerKeV() const;
    bool inhibited() const;
    bool biased() const;
    bool pulsesPresent() const;
    int32_t hvWord(double now) const;
    int32_t liveValue(int32_t id, ParamValue& out) const;
    void afterWrite(int32_t id, double now, const DeviceSettings& before);
    void powerUp();

    DeviceSetup m_setup;
    ModelTraits m_traits;
    std::filesystem::path m_settingsDir;
    uint64_t m_seed;
    std::vector<SourceRate> m_sources;
    DeviceSettings m_settings;
    Acquisition m_acq;
    Rng m_physics;
    Rng m_faults;
    Rng m_scopeRng;
    SpectralShape m_shape;
    ShapeKey m_shapeKey;

    bool m_open = false;
    bool m_lost = false;
    int32_t m_openAttempts = 0;
    double m_openedAt = 0.0;
    double m_hvSettledAt = 0.0;
    double m_gateOpensAt = 0.0;
    bool m_scopeArmed = true;
    double m_scopeArmedAt = 0.0;
};

} // namespace korvsim
