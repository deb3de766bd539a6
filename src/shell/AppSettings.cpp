#include "shell/AppSettings.h"

#include "base/AppDir.h"
#include "base/CPrivateINI.h"
#include "base/CPrivateINIBatch.h"
#include "base/Rounding.h"
#include "base/TextFile.h"

#include <span>
#include <stdexcept>
#include <system_error>
#include <variant>

namespace vexo {
namespace {

constexpr int32_t kTrue = -1;
constexpr int32_t kFalse = 0;

// One entry of the ROI colour table.
struct RoiColorSlot {
    std::size_t index;
};

// Where a key's value lives in its record. The member's type is the value's kind in the
// file: bool a flag, int32_t an integer or colour, std::string a text.
using SettingsField = std::variant<bool AppSettings::*, int32_t AppSettings::*,
                                   std::string AppSettings::*, RoiColorSlot>;
using FormField = std::variant<bool FormLocation::*, int32_t FormLocation::*>;

// When a key is read and written.
enum class KeyUse {
    Full,        // read by a load, written by a full save
    WrittenOnly, // written by a full save and never read (it carries another key's value)
    BatchOnly,   // read by a load, written only by a batch-mode save
};

// One key of the settings file. A key missing from the file reads as the field's value
// in a fresh record, so the record's initialisers are the defaults.
template <class Field> struct SettingsKey {
    const char* section;
    const char* key;
    Field field;
    KeyUse use = KeyUse::Full;
};

constexpr RoiColorSlot RoiColor(std::size_t index) {
    return {index};
}

using Key = SettingsKey<SettingsField>;

// The keys up to REPORT, in the order a full save writes them (which is the order of a
// new file). The report style is resolved right after these are read.
constexpr Key kKeysBeforeStyle[] = {
    {"PROGRAM", "RoiFollowUp", &AppSettings::RoiFollowUp},
    {"PROGRAM", "DefNucLib", &AppSettings::DefNucLib},
    {"PROGRAM", "OpenLastDetectorUsed", &AppSettings::OpenLastDetectorUsed},
    {"PROGRAM", "ApplyHV", &AppSettings::ApplyHV},
    {"PROGRAM", "DetectorPath", &AppSettings::DetectorPath},
    {"DISPLAY", "SpctBackColor", &AppSettings::SpctBackColor},
    {"DISPLAY", "SpctForeColor", &AppSettings::SpctForeColor},
    // Written for older readers of the file and never read back: the label colour has
    // always been the scale colour, the reference colour the graph colour.
    {"DISPLAY", "SpctLabelColor", &AppSettings::SpctScaleColor, KeyUse::WrittenOnly},
    {"DISPLAY", "SpctRefColor", &AppSettings::SpctForeColor, KeyUse::WrittenOnly},
    {"DISPLAY", "SpctCurColor", &AppSettings::SpctCurColor},
    {"DISPLAY", "SpctScaleColor", &AppSettings::SpctScaleColor},
    {"DISPLAY", "SpctFilled", &AppSettings::SpctFilled},
    {"DISPLAY", "SpctShowGrid", &AppSettings::SpctShowGrid},
    {"DISPLAY", "SpctGraphType", &AppSettings::SpctGraphType},
    {"DISPLAY", "SpctScaleMode", &AppSettings::SpctScaleMode},
    {"DISPLAY", "RoiOneColor", &AppSettings::RoiOneColor},
    {"DISPLAY", "RoiBaseColor", RoiColor(0)},
    {"DISPLAY", "RoiColorNo1", RoiColor(1)},
    {"DISPLAY", "RoiColorNo2", RoiColor(2)},
    {"DISPLAY", "RoiColorNo3", RoiColor(3)},
    {"DISPLAY", "RoiColorNo4", RoiColor(4)},
    {"DISPLAY", "RoiColorNo5", RoiColor(5)},
    {"DISPLAY", "RoiColorNo6", RoiColor(6)},
    {"DISPLAY", "RoiColorNo7", RoiColor(7)},
    {"DISPLAY", "RoiColorNo8", RoiColor(8)},
    {"REPORT", "HardwareSect", &AppSettings::HardwareSect},
    {"REPORT", "DataAcqSect", &AppSettings::DataAcqSect},
    {"REPORT", "CalibrationSect", &AppSettings::CalibrationSect},
    {"REPORT", "ROISect", &AppSettings::ROISect},
    {"REPORT", "PlotSect", &AppSettings::PlotSect},
    {"REPORT", "SpctSect", &AppSettings::SpctSect},
    {"REPORT", "RepStyle", &AppSettings::RepStyle},
};

// The keys read after the report style: a style that cannot be read ends the load with
// these left as they were.
constexpr Key kKeysAfterStyle[] = {
    {"PROCESS", "EnableExtProcessing", &AppSettings::EnableExtProcessing},
    {"PROCESS", "DataDir", &AppSettings::DataDir},
    {"PROCESS", "FileName", &AppSettings::FileName},
    {"PROCESS", "Program", &AppSettings::Program},
    {"PROCESS", "StartupDir", &AppSettings::StartupDir},
    {"PROCESS", "Arguments", &AppSettings::Arguments},
    {"BATCH", "BatchDataDir", &AppSettings::BatchDataDir, KeyUse::BatchOnly},
};

constexpr SettingsKey<FormField> kFormKeys[] = {
    {"FORM", "RememberLoc", &FormLocation::RememberLoc},
    {"FORM", "Left", &FormLocation::Left},
    {"FORM", "Top", &FormLocation::Top},
    {"FORM", "Width", &FormLocation::Width},
    {"FORM", "Height", &FormLocation::Height},
    {"FORM", "State", &FormLocation::State},
};

// The field a key names, in a record or in a const record.
template <class Object, class T, class Record>
decltype(auto) FieldOf(Object& object, T Record::*member) {
    return (object.*member);
}
template <class Object> decltype(auto) FieldOf(Object& settings, RoiColorSlot slot) {
    return (settings.RoiColors[slot.index]);
}

// Flags and integers are read as integers, a flag being true when non-zero; texts as
// they stand.
void ReadValue(CPrivateINIBatch& ini, const char* section, const char* key, bool& value, bool def) {
    value = ini.GetLongValue(section, key, def ? kTrue : kFalse) != 0;
}
void ReadValue(CPrivateINIBatch& ini, const char* section, const char* key, int32_t& value,
               int32_t def) {
    value = ini.GetLongValue(section, key, def);
}
void ReadValue(CPrivateINIBatch& ini, const char* section, const char* key, std::string& value,
               const std::string& def) {
    value = ini.GetValue(section, key, def);
}

// Flags as -1 or 0, integers in decimal, texts as they stand (an empty one as a blank).
void WriteValue(CPrivateINIBatch& ini, const char* section, const char* key, bool value) {
    ini.PutLongValue(section, key, value ? kTrue : kFalse);
}
void WriteValue(CPrivateINIBatch& ini, const char* section, const char* key, int32_t value) {
    ini.PutLongValue(section, key, value);
}
void WriteValue(CPrivateINIBatch& ini, const char* section, const char* key,
                const std::string& value) {
    ini.PutValue(section, key, value);
}

// Reads every key that is read, in table order; a missing key takes its value in
// `defaults`.
template <class Field, class Record>
void ReadKeys(CPrivateINIBatch& ini, std::span<const SettingsKey<Field>> keys, Record& record,
              const Record& defaults) {
    for (const SettingsKey<Field>& k : keys) {
        if (k.use == KeyUse::WrittenOnly)
            continue;
        std::visit(
            [&](auto field) {
                ReadValue(ini, k.section, k.key, FieldOf(record, field), FieldOf(defaults, field));
            },
            k.field);
    }
}

// Writes, in table order, the keys a batch-mode save writes (`batchOnly`) or those a
// full save writes.
template <class Field, class Record>
void WriteKeys(CPrivateINIBatch& ini, std::span<const SettingsKey<Field>> keys,
               const Record& record, bool batchOnly) {
    for (const SettingsKey<Field>& k : keys) {
        if ((k.use == KeyUse::BatchOnly) != batchOnly)
            continue;
        std::visit([&](auto field) { WriteValue(ini, k.section, k.key, FieldOf(record, field)); },
                   k.field);
    }
}

CPrivateINI SettingsStore(const std::filesystem::path& path) {
    CPrivateINI ini;
    ini.setINIFile(path.string());
    return ini;
}

// Half of the screen space left beside a window, rounded half to even.
int32_t CentredEdge(int screenPx, int windowPx) {
    return CLng((static_cast<double>(screenPx) - windowPx) / 2.0);
}

} // namespace

std::filesystem::path SettingsFilePath(const std::filesystem::path& appDir) {
    return WithTrailingSeparator(appDir) + "Vexo.ini";
}

bool LoadSettings(AppSettings& settings, const std::filesystem::path& appDir, Messages& messages) {
    const std::filesystem::path path = SettingsFilePath(appDir);
    std::error_code ec;
    if (!std::filesystem::exists(path, ec))
        return false;
    // Any error raised on the way (the store's error 52, a 16-bit report style field that
    // overflows) ends the load as a plain failure: the caller carries on with what was
    // read, and the user is told nothing, as the program has always done.
    try {
        CPrivateINIBatch ini(SettingsStore(path)); // the file is read once for every key
        const AppSettings defaults;
        ReadKeys<SettingsField>(ini, kKeysBeforeStyle, settings, defaults);
        settings.Style = ResolveReportStyle(LoadReportStyles(appDir, messages), settings.RepStyle);
        ReadKeys<SettingsField>(ini, kKeysAfterStyle, settings, defaults);
    } catch (const std::runtime_error&) {
        return false;
    }
    return true;
}

bool SaveSettings(const AppSettings& settings, bool batchOnly,
                  const std::filesystem::path& appDir) {
    const std::filesystem::path path = SettingsFilePath(appDir);
    std::error_code ec;
    if (!std::filesystem::exists(path, ec) && !TextFileWriter{}.save(path))
        return false;
    // One read and one write of the file for all keys, with the bytes that a PutValue per
    // key would leave.
    CPrivateINIBatch ini(SettingsStore(path));
    WriteKeys<SettingsField>(ini, kKeysBeforeStyle, settings, batchOnly);
    WriteKeys<SettingsField>(ini, kKeysAfterStyle, settings, batchOnly);
    return ini.Commit().ok;
}

void LoadFormLocation(FormLocation& location, const std::filesystem::path& appDir,
                      int screenWidthPx, int screenHeightPx) {
    CPrivateINIBatch ini(SettingsStore(SettingsFilePath(appDir)));
    FormLocation defaults;
    defaults.Left = CentredEdge(screenWidthPx, defaults.Width);
    defaults.Top = CentredEdge(screenHeightPx, defaults.Height);
    ReadKeys<FormField>(ini, kFormKeys, location, defaults);
}

void SaveFormLocation(const FormLocation& location, const std::filesystem::path& appDir) {
    CPrivateINIBatch ini(SettingsStore(SettingsFilePath(appDir)));
    WriteKeys<FormField>(ini, kFormKeys, location, false);
    // The placement is saved on the way out; a file that cannot be written loses only it.
    ini.Commit();
}

bool OfferShippedNuclideLibrary(AppSettings& settings, const std::filesystem::path& programDir) {
    std::error_code ec;
    const auto shipped = programDir / "Vexo.nli";
    if (programDir.empty() || !std::filesystem::is_regular_file(shipped, ec))
        return false;
    settings.DefNucLib = shipped.string();
    return true;
}

ProcessSettings ProcessSettingsFrom(const AppSettings& settings) {
    ProcessSettings p;
    p.bEnableExtProcessing = settings.EnableExtProcessing;
    p.szDataDir = settings.DataDir;
    p.szFileName = settings.FileName;
    p.szProgram = settings.Program;
    p.szStartupDir = settings.StartupDir;
    p.szArguments = settings.Arguments;
    return p;
}

void RememberBatchDir(AppSettings& settings, const std::string& batchDir,
                      const std::filesystem::path& appDir, Messages& messages) {
    settings.BatchDataDir = batchDir;
    if (!SaveSettings(settings, true, appDir))
        messages.exclamation("Could not write the settings file " +
                             SettingsFilePath(appDir).string());
}

void RememberDetector(AppSettings& settings, const std::string& detectorPath,
                      const std::filesystem::path& appDir, Messages& messages) {
    settings.DetectorPath = detectorPath;
    if (!SaveSettings(settings, false, appDir))
        messages.critical("Could not write the settings file " + SettingsFilePath(appDir).string());
}

} // namespace vexo
