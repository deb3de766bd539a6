#include "SimAnalyser.h"

#include "device/ConnectionController.h"

namespace vexo::test {

std::string SimDevice(int index, const std::string& serial, const std::string& path,
                      const std::string& extra) {
    return "[Device" + std::to_string(index) + "]\nSerial=" + serial + "\nPath=" + path + "\n" +
           extra + "\n";
}

std::string Model10(const std::string& extra) {
    return SimDevice(1, "10230417", "KORV-10-001",
                     "Name=KORV MCA-10\nType=2\nFirmware=V3.4\nSources=Cs-137:3000\n"
                     "HVOnAtPowerUp=1\nHVRampSeconds=0\n" +
                         extra);
}

std::string Model08(const std::string& firmware, const std::string& extra) {
    return SimDevice(1, "08190233", "192.168.0.42",
                     "Name=KORV MCA-8\nType=3\nFirmware=" + firmware +
                         "\nDetector=HPGe\nClockHz=25000000\nMaxHV=5000\n" + extra);
}

std::string Model06(const std::string& extra) {
    return SimDevice(1, "06110108", "KORV-06-003",
                     "Name=KORV MCA-6\nType=1\nFirmware=V2.1\nMaxHV=0\nClockHz=0\n"
                     "HVOnAtPowerUp=1\nHVRampSeconds=0\n" +
                         extra);
}

std::string SimConfigText(const std::filesystem::path& settingsDir, const std::string& devices,
                          const std::string& simulatorKeys) {
    return "[Simulator]\nSeed=7\nClock=step\nStepSeconds=0.5\nSettingsDir=" + settingsDir.string() +
           "\n" + simulatorKeys + "\n" + devices;
}

std::filesystem::path SimLibraryPath() {
    return BinDir() / "libKORVHW.so";
}

SimConfig::SimConfig(const std::string& devices, const std::string& simulatorKeys)
    : m_config("VEXO_SIM_CONFIG", file().string()),
      m_library("VEXO_DEVICE_LIBRARY", SimLibraryPath().string()) {
    write(devices, simulatorKeys);
}

void SimConfig::write(const std::string& devices, const std::string& simulatorKeys) {
    WriteBytes(file(), SimConfigText(dir(), devices, simulatorKeys));
}

SimAnalyser::SimAnalyser(const std::string& devices, const std::filesystem::path& library)
    : SimConfig(devices), lib(std::make_unique<DeviceLibrary>(library)),
      doc(std::make_unique<SpectrumDocument>()) {}

SimAnalyser::~SimAnalyser() {
    if (doc->hDevice != 0)
        CloseMca(*lib, *doc);
}

bool SimAnalyser::open(const std::string& path) {
    OpenMca(*lib, *doc, messages, ConnectionHooks{}, path, "", true);
    return doc->bConnected;
}

} // namespace vexo::test
