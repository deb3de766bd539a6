#pragma once
// The simulated analyser as every test uses it: one way to write its configuration, and
// the built library loaded by name through the program's own loader.
#include <filesystem>
#include <memory>
#include <string>

#include "TestSupport.h"
#include "base/Messages.h"
#include "device/DeviceLibrary.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo::test {

// A [DeviceN] section; `extra` holds more "Key=Value\n" lines (a key given twice takes
// its last value).
std::string SimDevice(int index, const std::string& serial, const std::string& path,
                      const std::string& extra = "");
// The three models the program tells apart, as device 1. The "10" (USB) has Cs-137 at
// 3000 cps and its high voltage on and settled from power-up; the "08" (Ethernet) has a
// germanium detector; the old "06" (HID) has the legacy preset word and neither clock
// nor maximum-HV id.
std::string Model10(const std::string& extra = "");
std::string Model08(const std::string& firmware = "V3.2", const std::string& extra = "");
std::string Model06(const std::string& extra = "");

// The configuration text: a [Simulator] section with a step clock (half a second per
// status poll), a fixed seed and `settingsDir` for stored settings, then `devices`.
// `simulatorKeys` go last into the [Simulator] section and so override the others.
std::string SimConfigText(const std::filesystem::path& settingsDir, const std::string& devices,
                          const std::string& simulatorKeys = "");

// The built simulated analyser.
std::filesystem::path SimLibraryPath();

// A configuration in a scratch folder, named by VEXO_SIM_CONFIG (and the simulated
// library by VEXO_DEVICE_LIBRARY) while the object lives, so that vexo-cli started from
// the test sees it too.
class SimConfig {
public:
    explicit SimConfig(const std::string& devices = Model10(),
                       const std::string& simulatorKeys = "");
    // A new configuration: the library builds its devices afresh at the next discovery
    // restart, or open while none is open.
    void write(const std::string& devices, const std::string& simulatorKeys = "");
    const std::filesystem::path& dir() const { return m_dir.path(); }
    std::filesystem::path file() const { return m_dir / "KORVHW.ini"; }

private:
    TempDir m_dir;
    ScopedEnv m_config;
    ScopedEnv m_library;
};

// The configured simulator loaded as the program loads it (`library` may be a
// pass-through library in front of it), with a document to open a device into. The
// device is closed and the library released when the object dies.
class SimAnalyser : public SimConfig {
public:
    explicit SimAnalyser(const std::string& devices = Model10(),
                         const std::filesystem::path& library = SimLibraryPath());
    ~SimAnalyser();
    // Opens `path` as Connect does (identity, then every parameter); true when connected.
    bool open(const std::string& path = "USB:KORV-10-001");

    std::unique_ptr<DeviceLibrary> lib;
    std::unique_ptr<SpectrumDocument> doc; // large: kept off the stack
    RoiCollection rois;
    ScriptedMessages messages;
};

} // namespace vexo::test
