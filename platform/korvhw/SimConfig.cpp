#include "SimConfig.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "IniFile.h"
#include "SourceLibrary.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace korvsim {

namespace {

// Beyond this a detector is paralysed anyway; the limit keeps every stretch of
// simulated time affordable.
constexpr double kMaxRateCps = 1.0e7;
// A configuration is a few hundred bytes; anything huge is not one.
constexpr std::uintmax_t kMaxConfigBytes = 1 << 20;

DeviceSetup DefaultDevice10() {
    DeviceSetup d;
    d.path = "KORV-10-001";
    d.name = "KORV MCA-10";
    d.serial = "10230417";
    d.type = 2;
    d.firmware = "V3.4";
    d.detector = DetectorKind::NaI3x3;
    d.sources = {{"Cs-137", 3000.0}, {"K-40", 60.0}};
    return d;
}

DeviceSetup DefaultDevice08() {
    DeviceSetup d;
    d.path = "192.168.0.42";
    d.name = "KORV MCA-8";
    d.serial = "08190233";
    d.type = 3;
    d.firmware = "V3.2";
    d.firmwareDate = "20190611";
    d.productionDate = "20190902";
    d.detector = DetectorKind::HPGe;
    d.detectorPolarity = 1;
    d.nominalHV = 3000.0;
    d.maxHV = 5000.0;
    d.clockHz = 25000000;
    d.noiseCps = 100.0;
    d.sources = {{"Co-60", 800.0}, {"Cs-137", 400.0}, {"K-40", 20.0}};
    return d;
}

DeviceSetup DefaultDevice06() {
    DeviceSetup d;
    d.path = "KORV-06-003";
    d.name = "KORV MCA-6";
    d.serial = "06110108";
    d.type = 1;
    d.firmware = "V2.1";
    d.firmwareDate = "20110307";
    d.productionDate = "20110520";
    d.detector = DetectorKind::NaI3x3;
    d.nominalHV = 750.0;
    d.maxHV = 0.0; // this firmware leaves id 44 at 0
    d.clockHz = 0; // and id 42 as well
    d.sources = {{"Am-241", 1500.0}, {"Cs-137", 1000.0}, {"K-40", 60.0}};
    return d;
}

// The key parsed as a number, `fallback` when it is absent; text that does not parse is
// reported as "is not " + `kind` and gives `fallback` too.
template <class T>
T ReadNumber(const IniFile& ini, const std::string& section, const char* key, T fallback,
             std::optional<T> (*parse)(std::string_view), const char* kind,
             std::vector<std::string>& warnings) {
    const auto text = ini.get(section, key);
    if (!text)
        return fallback;
    if (const auto value = parse(*text))
        return *value;
    warnings.push_back("[" + section + "] " + key + "='" + *text + "' is not " + kind);
    return fallback;
}

double ReadDouble(const IniFile& ini, const std::string& section, const char* key, double fallback,
                  std::vector<std::string>& warnings) {
    return ReadNumber(ini, section, key, fallback, &ParseDouble, "a number", warnings);
}

long long ReadInteger(const IniFile& ini, const std::string& section, const char* key,
                      long long fallback, std::vector<std::string>& warnings) {
    return ReadNumber(ini, section, key, fallback, &ParseInteger, "a whole number", warnings);
}

std::string ReadText(const IniFile& ini, const std::string& section, const char* key,
                     const std::string& fallback) {
    const auto text = ini.get(section, key);
    return text && !text->empty() ? *text : fallback;
}

// "Cs-137:3000, K-40:60" -> sources; a missing rate means 1000 counts/s.
std::vector<SourceSetup> ReadSources(const std::string& text, const std::string& section,
                                     std::vector<std::string>& warnings) {
    std::vector<SourceSetup> sources;
    for (const std::string& item : SplitList(text, ',')) {
        const size_t colon = item.find(':');
        const std::string name = Trim(item.substr(0, colon));
        const SourceNuclide* nuclide = FindSource(name);
        auto rate = colon == std::string::npos ? std::optional<double>(1000.0)
                                               : ParseDouble(item.substr(colon + 1));
        if (rate && *rate > kMaxRateCps) {
            warnings.push_back("[" + section + "] source '" + item + "' limited to 1e7 counts/s");
            rate = kMaxRateCps;
        }
        if (!nuclide || !rate || *rate < 0.0) {
            warnings.push_back("[" + section + "] source '" + item +
                               "' skipped (known: " + KnownSourceNames() + ")");
            continue;
        }
        sources.push_back({nuclide->name, *rate});
    }
    return sources;
}

// "22:-12, 35:-10" -> parameter faults.
std::vector<ParamFault> ReadParamFaults(const std::string& text, const std::string& section,
                                        std::vector<std::string>& warnings) {
    std::vector<ParamFault> faults;
    for (const std::string& item : SplitList(text, ',')) {
        const size_t colon = item.find(':');
        const auto id = ParseInteger(item.substr(0, colon));
        const auto code = colon == std::string::npos ? std::optional<long long>(-13)
                                                     : ParseInteger(item.substr(colon + 1));
        if (!id || !code || *code >= 0) {
            warnings.push_back("[" + section + "] FailParam item '" + item + "' skipped");
            continue;
        }
        faults.push_back({static_cast<int32_t>(*id), static_cast<int32_t>(*code)});
    }
    return faults;
}

FaultPlan ReadFaults(const IniFile& ini, const std::string& s, std::vector<std::string>& w) {
    FaultPlan f;
    f.openFailures = static_cast<int32_t>(ReadInteger(ini, s, "OpenFailures", 0, w));
    f.disconnectAfterSeconds = ReadDouble(ini, s, "DisconnectAfter", -1.0, w);
    f.paramFaults = ReadParamFaults(ReadText(ini, s, "FailParam", ""), s, w);
    f.readSpectrumFailShare = ReadDouble(ini, s, "ReadSpectrumFailShare", 0.0, w);
    return f;
}

DeviceSetup ReadDevice(const IniFile& ini, const std::string& s, size_t index,
                       std::vector<std::string>& w) {
    DeviceSetup d = DefaultDevice10();
    d.serial = ReadText(ini, s, "Serial", "10" + std::to_string(100000 + index));
    d.path = ReadText(ini, s, "Path", "KORV-" + d.serial);
    d.name = ReadText(ini, s, "Name", "KORV MCA-" + d.serial.substr(0, 2));
    d.type = static_cast<int32_t>(ReadInteger(ini, s, "Type", 2, w));
    d.firmware = ReadText(ini, s, "Firmware", d.firmware);
    d.firmwareDate = ReadText(ini, s, "FirmwareDate", d.firmwareDate);
    d.productionDate = ReadText(ini, s, "ProductionDate", d.productionDate);
    const std::string detector = ReadText(ini, s, "Detector", "NaI");
    if (auto kind = ParseDetectorKind(detector))
        d.detector = *kind;
    else
        w.push_back("[" + s + "] unknown detector '" + detector + "', NaI used");
    const bool ge = d.detector == DetectorKind::HPGe;
    d.detectorPolarity = ReadInteger(ini, s, "DetectorPolarity", ge ? 1 : 0, w) != 0 ? 1 : 0;
    d.nominalHV = ReadDouble(ini, s, "NominalHV", ge ? 3000.0 : 800.0, w);
    d.maxHV = ReadDouble(ini, s, "MaxHV", ge ? 5000.0 : 1500.0, w);
    d.clockHz = static_cast<int32_t>(ReadInteger(ini, s, "ClockHz", 80000000, w));
    if (auto text = ini.get(s, "Sources"))
        d.sources = ReadSources(*text, s, w);
    d.noiseCps = std::min(ReadDouble(ini, s, "NoiseRate", 200.0, w), kMaxRateCps);
    d.hvInhibitInput = ReadInteger(ini, s, "HVInhibit", 0, w) != 0;
    d.hvRampSeconds = ReadDouble(ini, s, "HVRampSeconds", 3.0, w);
    d.hvOnAtPowerUp = ReadInteger(ini, s, "HVOnAtPowerUp", 0, w) != 0;
    d.externalGateSeconds = ReadDouble(ini, s, "ExternalGateSeconds", 1.0, w);
    d.faults = ReadFaults(ini, s, w);
    for (const std::string& item : SplitList(ReadText(ini, s, "MissingIds", ""), ','))
        if (auto id = ParseInteger(item))
            d.missingIds.push_back(static_cast<int32_t>(*id));
        else
            w.push_back("[" + s + "] MissingIds item '" + item + "' skipped");
    return d;
}

void ReadSimulatorSection(const IniFile& ini, SimConfig& c) {
    const std::string s = "Simulator";
    auto& w = c.warnings;
    c.seed = static_cast<uint64_t>(ReadInteger(ini, s, "Seed", static_cast<long long>(c.seed), w));
    const std::string clock = ReadText(ini, s, "Clock", "wall");
    if (EqualsNoCase(clock, "step"))
        c.clockMode = ClockMode::Step;
    else if (!EqualsNoCase(clock, "wall"))
        w.push_back("[Simulator] Clock='" + clock + "' is neither wall nor step");
    c.stepSeconds = ReadDouble(ini, s, "StepSeconds", c.stepSeconds, w);
    c.speed = ReadDouble(ini, s, "Speed", c.speed, w);
    c.discoveryPerCall =
        static_cast<int32_t>(ReadInteger(ini, s, "DiscoveryPerCall", c.discoveryPerCall, w));
    if (c.discoveryPerCall < 1)
        c.discoveryPerCall = 1;
    const std::string dir = ReadText(ini, s, "SettingsDir", "");
    if (!dir.empty())
        c.settingsDir = dir;
}

std::filesystem::path LibraryFolder() {
#if defined(_WIN32)
    HMODULE module = nullptr;
    char name[MAX_PATH] = {};
    if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                               GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           reinterpret_cast<LPCSTR>(&LocateConfig), &module) &&
        GetModuleFileNameA(module, name, MAX_PATH) > 0)
        return std::filesystem::path(name).parent_path();
    return {};
#else
    Dl_info info{};
    // Any symbol of this library will do; dladdr reports the file it came from.
    if (dladdr(reinterpret_cast<void*>(&LocateConfig), &info) != 0 && info.dli_fname)
        return std::filesystem::path(info.dli_fname).parent_path();
    return {};
#endif
}

} // namespace

SimConfig DefaultConfig() {
    SimConfig c;
    c.settingsDir = DefaultSettingsDir();
    c.devices = {DefaultDevice10(), DefaultDevice08(), DefaultDevice06()};
    return c;
}

SimConfig ParseConfig(const std::string& text) {
    SimConfig c = DefaultConfig();
    const IniFile ini = IniFile::Parse(text);
    for (const std::string& problem : ini.problems())
        c.warnings.push_back("unreadable " + problem);
    ReadSimulatorSection(ini, c);
    std::vector<DeviceSetup> devices;
    for (const IniSection& section : ini.sections())
        if (section.name.size() > 6 && EqualsNoCase(section.name.substr(0, 6), "Device"))
            devices.push_back(ReadDevice(ini, section.name, devices.size() + 1, c.warnings));
    // BuiltInDevices=0 with no device section gives a library that finds nothing.
    const bool builtIn = ReadInteger(ini, "Simulator", "BuiltInDevices", 1, c.warnings) != 0;
    if (!devices.empty() || !builtIn)
        c.devices = std::move(devices);
    return c;
}

std::filesystem::path DefaultSettingsDir() {
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg)
        return std::filesystem::path(xdg) / "korvhw";
    if (const char* home = std::getenv("HOME"); home && *home)
        return std::filesystem::path(home) / ".config" / "korvhw";
    std::error_code ec;
    return std::filesystem::temp_directory_path(ec) / "korvhw";
}

ConfigLocation LocateConfig() {
    ConfigLocation where;
    if (const char* env = std::getenv("VEXO_SIM_CONFIG"); env && *env) {
        where.path = env;
    } else {
        const std::filesystem::path beside = LibraryFolder() / "KORVHW.ini";
        std::error_code ec;
        if (!std::filesystem::exists(beside, ec))
            return where; // no file: the built-in set
        where.path = beside;
    }
    std::error_code ec;
    const std::uintmax_t size = std::filesystem::file_size(where.path, ec);
    if (!ec && size > kMaxConfigBytes) {
        where.error = where.path.string() + " is too large for a configuration";
        return where;
    }
    std::ifstream in(where.path, std::ios::binary);
    if (!in) {
        where.error = "cannot read " + where.path.string();
        return where;
    }
    std::ostringstream text;
    text << in.rdbuf();
    where.text = text.str();
    return where;
}

} // namespace korvsim
