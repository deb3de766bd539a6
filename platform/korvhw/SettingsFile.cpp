#include "SettingsFile.h"

#include <cctype>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <vector>

#include "IniFile.h"

namespace korvsim {

namespace {

struct IntKey {
    const char* name;
    int32_t DeviceSettings::*field;
};
struct FloatKey {
    const char* name;
    float DeviceSettings::*field;
};

// The HV on/off state is deliberately not stored: the device always powers up
// with its high voltage off.
const IntKey kIntKeys[] = {
    {"AcqMode", &DeviceSettings::acqMode},
    {"Channels", &DeviceSettings::channels},
    {"LLD", &DeviceSettings::lld},
    {"ULD", &DeviceSettings::uld},
    {"SCALow", &DeviceSettings::scaLow},
    {"SCAHigh", &DeviceSettings::scaHigh},
    {"PresetLegacy", &DeviceSettings::legacyPreset},
    {"Polarity", &DeviceSettings::polarity},
    {"DigitalGain", &DeviceSettings::digitalGain},
    {"CoarseGain", &DeviceSettings::coarseGain},
    {"FineGain", &DeviceSettings::fineGain},
    {"RiseTime", &DeviceSettings::riseTime},
    {"FlatTop", &DeviceSettings::flatTop},
    {"PoleZero", &DeviceSettings::poleZero},
    {"Threshold", &DeviceSettings::threshold},
    {"BLR", &DeviceSettings::blr},
    {"PUR", &DeviceSettings::pur},
    {"PresetCounts", &DeviceSettings::presetCounts},
    {"PresetMode", &DeviceSettings::presetMode},
    {"PresetFirstCh", &DeviceSettings::presetFirst},
    {"PresetLastCh", &DeviceSettings::presetLast},
    {"GpioLegacy", &DeviceSettings::gpioLegacy},
    {"AnalogPZ", &DeviceSettings::analogPZ},
    {"PURGuard", &DeviceSettings::purGuard},
    {"TRPGuard", &DeviceSettings::trpGuard},
    {"LTTrim", &DeviceSettings::ltTrim},
    {"Gpio1", &DeviceSettings::gpio1},
    {"Gpio2", &DeviceSettings::gpio2},
    {"BLRRate", &DeviceSettings::blrRate},
    {"HVInhibit", &DeviceSettings::hvInhibit},
};
const FloatKey kFloatKeys[] = {
    {"PresetTime", &DeviceSettings::presetTime},
    {"DwellTime", &DeviceSettings::dwellTime},
    {"HighVoltage", &DeviceSettings::highVoltage},
};
const char* const kCalibrationKeys[] = {"CalOffset", "CalSlope", "CalQuad"};

std::string FloatText(float v) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.9g", static_cast<double>(v)); // "." in the C locale
    return buffer;
}

} // namespace

std::filesystem::path SettingsFilePath(const std::filesystem::path& folder,
                                       const std::string& serial) {
    std::string safe;
    for (char c : serial)
        safe += (std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_') ? c : '_';
    return folder / (safe + ".ini");
}

std::string SaveSettingsFile(const std::filesystem::path& folder, const std::string& serial,
                             const DeviceSettings& s) {
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    if (ec)
        return "cannot create " + folder.string() + ": " + ec.message();
    std::ostringstream text;
    text << "; Settings stored in the simulated analyser " << serial << "\r\n[Settings]\r\n";
    for (const IntKey& key : kIntKeys)
        text << key.name << '=' << s.*key.field << "\r\n";
    for (const FloatKey& key : kFloatKeys)
        text << key.name << '=' << FloatText(s.*key.field) << "\r\n";
    for (size_t i = 0; i < 3; ++i)
        text << kCalibrationKeys[i] << '=' << FloatText(s.calibration[i]) << "\r\n";
    const std::filesystem::path path = SettingsFilePath(folder, serial);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text.str();
    out.close();
    return out ? std::string() : "cannot write " + path.string();
}

bool LoadSettingsFile(const std::filesystem::path& folder, const std::string& serial,
                      DeviceSettings& s) {
    std::ifstream in(SettingsFilePath(folder, serial), std::ios::binary);
    if (!in)
        return false;
    std::ostringstream text;
    text << in.rdbuf();
    const IniFile ini = IniFile::Parse(text.str());
    if (!ini.find("Settings"))
        return false;
    for (const IntKey& key : kIntKeys)
        if (auto v = ini.get("Settings", key.name))
            if (auto n = ParseInteger(*v); n && *n >= INT32_MIN && *n <= INT32_MAX)
                s.*key.field = static_cast<int32_t>(*n);
    for (const FloatKey& key : kFloatKeys)
        if (auto v = ini.get("Settings", key.name))
            if (auto d = ParseDouble(*v))
                s.*key.field = static_cast<float>(*d);
    for (size_t i = 0; i < 3; ++i)
        if (auto v = ini.get("Settings", kCalibrationKeys[i]))
            if (auto d = ParseDouble(*v))
                s.calibration[i] = static_cast<float>(*d);
    return true;
}

} // namespace korvsim
