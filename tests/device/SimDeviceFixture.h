#pragma once
// A fixture for tests against the simulated analyser library, loaded by name as the
// program loads it. Each test writes its own simulator configuration into a fresh
// folder (so the library rebuilds its devices) and closes what it opened.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "TestSupport.h"
#include "device/DeviceLibrary.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo::test {

class SimDeviceTest : public ::testing::Test {
protected:
    static std::filesystem::path LibraryPath() { return BinDir() / "libKORVHW.so"; }

    void SetUp() override {
        if (!std::filesystem::exists(LibraryPath()))
            GTEST_SKIP() << "simulated library not built: " << LibraryPath();
        setenv("VEXO_DEVICE_LIBRARY", LibraryPath().c_str(), 1);
        m_doc = std::make_unique<SpectrumDocument>();
    }

    void TearDown() override {
        if (m_lib && m_doc && m_doc->hDevice != 0)
            m_lib->closeDevice(m_doc->hDevice);
        m_lib.reset();
        unsetenv("VEXO_SIM_CONFIG");
    }

    // Writes the configuration (a [Simulator] section with a step clock, a fixed seed
    // and this test's settings folder comes first) and loads the library.
    DeviceLibrary& Load(const std::string& deviceSections) {
        const std::string text =
            "[Simulator]\nSeed=7\nClock=step\nSettingsDir=" + (m_dir.path() / "settings").string() +
            "\n\n" + deviceSections;
        WriteBytes(m_dir / "KORVHW.ini", text);
        setenv("VEXO_SIM_CONFIG", (m_dir / "KORVHW.ini").c_str(), 1);
        DeviceLibraryLoad load = DeviceLibrary::Load();
        if (!load.library)
            ADD_FAILURE() << load.error;
        m_lib = std::move(load.library);
        return *m_lib;
    }

    // The three models the program knows by their feature sets.
    static std::string Model10() {
        return "[Device1]\nSerial=10230417\nPath=KORV-10-001\nName=KORV MCA-10\nType=2\n"
               "Firmware=V3.4\nClockHz=80000000\nMaxHV=1500\n";
    }
    static std::string Model08(const std::string& firmware = "V3.2") {
        return "[Device1]\nSerial=08190233\nPath=192.168.0.42\nName=KORV MCA-8\nType=3\n"
               "Firmware=" +
               firmware + "\nDetector=HPGe\nClockHz=25000000\nMaxHV=5000\n";
    }
    static std::string Model06() {
        return "[Device1]\nSerial=06110108\nPath=KORV-06-003\nName=KORV MCA-6\nType=1\n"
               "Firmware=V2.1\nMaxHV=0\nClockHz=0\n";
    }

    TempDir m_dir;
    std::unique_ptr<DeviceLibrary> m_lib;
    std::unique_ptr<SpectrumDocument> m_doc; // large: kept off the stack
    RoiCollection m_rois;
};

} // namespace vexo::test
