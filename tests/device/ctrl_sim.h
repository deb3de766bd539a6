#pragma once
// Shared set-up of the controller tests: the real simulated analyser, loaded by name,
// configured through a file in a temp folder, on a step clock so that every status poll
// moves simulated time on by half a second.
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TestSupport.h"
#include "base/Messages.h"
#include "device/ConnectionController.h"
#include "device/DeviceLibrary.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo::test {

// What one simulated device looks like.
struct SimDeviceSpec {
    std::string serial = "10230417"; // model code "10"
    std::string sources = "Cs-137:3000";
    double disconnectAfter = -1; // simulated seconds after opening; < 0 never
    std::string failParam;       // "35:-7, 22:-12"
    double hvRampSeconds = 1.0;
    bool hvInhibit = false;
    bool hvOnAtPowerUp = true;
};

inline const char* kSimPath = "SIM-CTRL-1";

// Sets an environment variable for the lifetime of the object.
class ScopedEnvVar {
public:
    ScopedEnvVar(const char* name, const std::string& value) : m_name(name) {
        if (const char* old = std::getenv(name))
            m_old = old, m_had = true;
        ::setenv(name, value.c_str(), 1);
    }
    ~ScopedEnvVar() {
        if (m_had)
            ::setenv(m_name, m_old.c_str(), 1);
        else
            ::unsetenv(m_name);
    }

private:
    const char* m_name;
    std::string m_old;
    bool m_had = false;
};

inline std::string SimConfigText(const SimDeviceSpec& d, const std::filesystem::path& settingsDir) {
    std::string t = "[Simulator]\nClock=step\nStepSeconds=0.5\nSeed=20240131\nSettingsDir=" +
                    settingsDir.string() + "\n\n[Device1]\nPath=" + kSimPath +
                    "\nSerial=" + d.serial + "\nSources=" + d.sources +
                    "\nHVRampSeconds=" + std::to_string(d.hvRampSeconds) +
                    "\nHVInhibit=" + (d.hvInhibit ? "1" : "0") +
                    "\nHVOnAtPowerUp=" + (d.hvOnAtPowerUp ? "1" : "0") + "\n";
    if (d.disconnectAfter >= 0)
        t += "DisconnectAfter=" + std::to_string(d.disconnectAfter) + "\n";
    if (!d.failParam.empty())
        t += "FailParam=" + d.failParam + "\n";
    return t;
}

// One configured simulator with an open device and its record.
class SimSession {
public:
    explicit SimSession(const SimDeviceSpec& spec = {})
        : m_config((m_dir / "korvhw.ini").string()),
          m_env1("VEXO_DEVICE_LIBRARY", (BinDir() / "libKORVHW.so").string()),
          m_env2("VEXO_SIM_CONFIG", (m_dir / "korvhw.ini").string()),
          doc(std::make_unique<SpectrumDocument>()) {
        std::filesystem::create_directories(m_dir / "settings");
        WriteBytes(m_dir / "korvhw.ini", SimConfigText(spec, m_dir / "settings"));
        DeviceLibraryLoad load = DeviceLibrary::Load();
        if (!load.library)
            throw std::runtime_error("simulated analyser not loadable: " + load.error);
        lib = std::move(load.library);
    }
    ~SimSession() {
        if (lib && doc->hDevice != 0)
            CloseMca(*lib, *doc);
    }

    // Opens the device as the Connect command does; true when connected.
    bool open() {
        OpenMca(*lib, *doc, messages, ConnectionHooks{}, std::string("USB:") + kSimPath, "", true);
        return doc->bConnected;
    }

    const std::filesystem::path& dir() const { return m_dir.path(); }

private:
    TempDir m_dir;
    std::string m_config;
    ScopedEnvVar m_env1;
    ScopedEnvVar m_env2;

public:
    std::unique_ptr<DeviceLibrary> lib;
    std::unique_ptr<SpectrumDocument> doc;
    RoiCollection rois;
    ScriptedMessages messages;
};

// A clock for dtMeasured that tests can read and move.
struct TestClock {
    double value = 45000.0;
    double operator()() const { return value; }
};

} // namespace vexo::test
