#pragma once
// What the simulated library offers: its devices with their detectors, sources and
// faults, its clock and seed. Read from an INI file (format in README.md) or, with
// no file, the built-in set of three devices.
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "DetectorModel.h"
#include "SimClock.h"

namespace korvsim {

struct SourceSetup {
    std::string nuclide; // canonical name from the source library
    double rateCps;      // interactions per second in the detector
};

struct ParamFault {
    int32_t id;
    int32_t code; // returned by GetParam and SetParam of that id
};

struct FaultPlan {
    int32_t openFailures = 0;           // the first N OpenDevice calls fail with -8
    double disconnectAfterSeconds = -1; // simulated seconds after opening; < 0 never
    std::vector<ParamFault> paramFaults;
    double readSpectrumFailShare = 0.0; // 0..1, drawn from a seeded generator
};

struct DeviceSetup {
    std::string path; // bare library path, without the "USB:"-style prefix
    std::string name;
    std::string serial; // first two characters are the model code
    int32_t type = 2;   // 1 HID, 2 USB, 3 ETH
    std::string firmware = "V3.4";
    std::string firmwareDate = "20230915";
    std::string productionDate = "20231102";
    DetectorKind detector = DetectorKind::NaI3x3;
    int32_t detectorPolarity = 0; // 0 positive pulses, 1 negative
    double nominalHV = 800.0;     // volts at which the default gain is reached
    double maxHV = 1500.0;        // volts; answered in tenths by id 44; 0 answers 0 (then 1500)
    int32_t clockHz = 80000000;   // answered by id 42; 0 answers 0 (the filter runs at 25 MHz)
    std::vector<SourceSetup> sources;
    double noiseCps = 200.0;
    bool hvInhibitInput = false; // the external inhibit input is asserted
    double hvRampSeconds = 3.0;
    bool hvOnAtPowerUp = false;
    double externalGateSeconds = 1.0; // wait for the external start input (preset bit 8)
    std::vector<int32_t> missingIds;  // ids this unit does not answer beyond its model's
    FaultPlan faults;
};

struct SimConfig {
    uint64_t seed = 20240131;
    ClockMode clockMode = ClockMode::Wall;
    double stepSeconds = 0.5;
    double speed = 1.0;
    int32_t discoveryPerCall = 1; // devices found per FindDevicesEx call
    std::filesystem::path settingsDir;
    std::vector<DeviceSetup> devices;
    std::vector<std::string> warnings; // problems met while reading the file
};

// The built-in set: a current model "10" with NaI, an "08" with HPGe, an old "06".
SimConfig DefaultConfig();
// Reads a configuration text; unknown or malformed values are reported in warnings
// and replaced by their defaults. With no [DeviceN] section the default set is used.
SimConfig ParseConfig(const std::string& text);

struct ConfigLocation {
    std::filesystem::path path; // empty when no file applies
    std::string text;           // file contents; empty when none was read
    std::string error;          // why a named file could not be read
};
// The file named by VEXO_SIM_CONFIG, else KORVHW.ini in the library's own folder.
ConfigLocation LocateConfig();
// Where SaveSettings files go when the configuration names no folder.
std::filesystem::path DefaultSettingsDir();

} // namespace korvsim
