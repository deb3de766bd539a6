#include "shell/AppSettings.h"

#include "base/AppDir.h"
#include "base/CPrivateINI.h"
#include "base/Rounding.h"
#include "base/TextFile.h"

#include <stdexcept>
#include <system_error>

namespace vexo {
namespace {

constexpr int32_t kTrue = -1;
constexpr int32_t kFalse = 0;

// Reading and writing the value kinds of the settings file through one store.
class SettingsIni {
public:
    explicit SettingsIni(const std::filesystem::path& path) { m_ini.setINIFile(path.string()); }

    bool flag(const std::string& section, const std::string& key, bool def) {
        return m_ini.GetLongValue(section, key, def ? kTrue : kFalse) != 0;
    }
    int32_t integer(const std::string& section, const std::string& key, int32_t def) {
        return m_ini.GetLongValue(section, key, def);
    }
    std::string text(const std::string& section, const std::string& key, const std::string& def) {
        return m_ini.GetValue(section, key, def);
    }

    void putFlag(const std::string& section, const std::string& key, bool value) {
        m_ini.PutLongValue(section, key, value ? kTrue : kFalse);
    }
    void putInteger(const std::string& section, const std::string& key, int32_t value) {
        m_ini.PutLongValue(section, key, value);
    }
    void putText(const std::string& section, const std::string& key, const std::string& value) {
        m_ini.PutValue(section, key, value);
    }

private:
    CPrivateINI m_ini;
};

std::string RoiColorKey(std::size_t n) {
    return "RoiColorNo" + std::to_string(n);
}

void ReadProgram(SettingsIni& ini, AppSettings& s) {
    const AppSettings d;
    s.RoiFollowUp = ini.flag("PROGRAM", "RoiFollowUp", d.RoiFollowUp);
    s.DefNucLib = ini.text("PROGRAM", "DefNucLib", d.DefNucLib);
    s.OpenLastDetectorUsed = ini.flag("PROGRAM", "OpenLastDetectorUsed", d.OpenLastDetectorUsed);
    s.ApplyHV = ini.flag("PROGRAM", "ApplyHV", d.ApplyHV);
    s.DetectorPath = ini.text("PROGRAM", "DetectorPath", d.DetectorPath);
}

void ReadDisplay(SettingsIni& ini, AppSettings& s) {
    const AppSettings d;
    s.SpctFilled = ini.flag("DISPLAY", "SpctFilled", d.SpctFilled);
    s.SpctBackColor = ini.integer("DISPLAY", "SpctBackColor", d.SpctBackColor);
    s.SpctForeColor = ini.integer("DISPLAY", "SpctForeColor", d.SpctForeColor);
    s.SpctScaleColor = ini.integer("DISPLAY", "SpctScaleColor", d.SpctScaleColor);
    s.SpctCurColor = ini.integer("DISPLAY", "SpctCurColor", d.SpctCurColor);
    s.SpctShowGrid = ini.flag("DISPLAY", "SpctShowGrid", d.SpctShowGrid);
    s.SpctScaleMode = ini.integer("DISPLAY", "SpctScaleMode", d.SpctScaleMode);
    s.SpctGraphType = ini.integer("DISPLAY", "SpctGraphType", d.SpctGraphType);
    s.RoiOneColor = ini.flag("DISPLAY", "RoiOneColor", d.RoiOneColor);
    s.RoiColors[0] = ini.integer("DISPLAY", "RoiBaseColor", d.RoiColors[0]);
    for (std::size_t n = 1; n <= 8; ++n)
        s.RoiColors[n] = ini.integer("DISPLAY", RoiColorKey(n), d.RoiColors[n]);
}

void ReadReport(SettingsIni& ini, AppSettings& s) {
    const AppSettings d;
    s.PlotSect = ini.flag("REPORT", "PlotSect", d.PlotSect);
    s.SpctSect = ini.flag("REPORT", "SpctSect", d.SpctSect);
    s.RepStyle = ini.text("REPORT", "RepStyle", d.RepStyle);
    s.HardwareSect = ini.flag("REPORT", "HardwareSect", d.HardwareSect);
    s.DataAcqSect = ini.flag("REPORT", "DataAcqSect", d.DataAcqSect);
    s.CalibrationSect = ini.flag("REPORT", "CalibrationSect", d.CalibrationSect);
    s.ROISect = ini.flag("REPORT", "ROISect", d.ROISect);
}

void ReadProcessAndBatch(SettingsIni& ini, AppSettings& s) {
    const AppSettings d;
    s.EnableExtProcessing = ini.flag("PROCESS", "EnableExtProcessing", d.EnableExtProcessing);
    s.DataDir = ini.text("PROCESS", "DataDir", d.DataDir);
    s.FileName = ini.text("PROCESS", "FileName", d.FileName);
    s.Program = ini.text("PROCESS", "Program", d.Program);
    s.StartupDir = ini.text("PROCESS", "StartupDir", d.StartupDir);
    s.Arguments = ini.text("PROCESS", "Arguments", d.Arguments);
    s.BatchDataDir = ini.text("BATCH", "BatchDataDir", d.BatchDataDir);
}

void WriteProgram(SettingsIni& ini, const AppSettings& s) {
    ini.putFlag("PROGRAM", "RoiFollowUp", s.RoiFollowUp);
    ini.putText("PROGRAM", "DefNucLib", s.DefNucLib);
    ini.putFlag("PROGRAM", "OpenLastDetectorUsed", s.OpenLastDetectorUsed);
    ini.putFlag("PROGRAM", "ApplyHV", s.ApplyHV);
    ini.putText("PROGRAM", "DetectorPath", s.DetectorPath);
}

void WriteDisplay(SettingsIni& ini, const AppSettings& s) {
    ini.putInteger("DISPLAY", "SpctBackColor", s.SpctBackColor);
    ini.putInteger("DISPLAY", "SpctForeColor", s.SpctForeColor);
    // Written for older readers of the file and never read back: the label colour has
    // always been the scale colour, the reference colour the graph colour.
    ini.putInteger("DISPLAY", "SpctLabelColor", s.SpctScaleColor);
    ini.putInteger("DISPLAY", "SpctRefColor", s.SpctForeColor);
    ini.putInteger("DISPLAY", "SpctCurColor", s.SpctCurColor);
    ini.putInteger("DISPLAY", "SpctScaleColor", s.SpctScaleColor);
    ini.putFlag("DISPLAY", "SpctFilled", s.SpctFilled);
    ini.putFlag("DISPLAY", "SpctShowGrid", s.SpctShowGrid);
    ini.putInteger("DISPLAY", "SpctGraphType", s.SpctGraphType);
    ini.putInteger("DISPLAY", "SpctScaleMode", s.SpctScaleMode);
    ini.putFlag("DISPLAY", "RoiOneColor", s.RoiOneColor);
    ini.putInteger("DISPLAY", "RoiBaseColor", s.RoiColors[0]);
    for (std::size_t n = 1; n <= 8; ++n)
        ini.putInteger("DISPLAY", RoiColorKey(n), s.RoiColors[n]);
}

void WriteReport(SettingsIni& ini, const AppSettings& s) {
    ini.putFlag("REPORT", "HardwareSect", s.HardwareSect);
    ini.putFlag("REPORT", "DataAcqSect", s.DataAcqSect);
    ini.putFlag("REPORT", "CalibrationSect", s.CalibrationSect);
    ini.putFlag("REPORT", "ROISect", s.ROISect);
    ini.putFlag("REPORT", "PlotSect", s.PlotSect);
    ini.putFlag("REPORT", "SpctSect", s.SpctSect);
    ini.putText("REPORT", "RepStyle", s.RepStyle);
}

void WriteProcess(SettingsIni& ini, const AppSettings& s) {
    ini.putFlag("PROCESS", "EnableExtProcessing", s.EnableExtProcessing);
    ini.putText("PROCESS", "DataDir", s.DataDir);
    ini.putText("PROCESS", "FileName", s.FileName);
    ini.putText("PROCESS", "Program", s.Program);
    ini.putText("PROCESS", "StartupDir", s.StartupDir);
    ini.putText("PROCESS", "Arguments", s.Arguments);
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
        SettingsIni ini(path);
        ReadProgram(ini, settings);
        ReadDisplay(ini, settings);
        ReadReport(ini, settings);
        settings.Style = ResolveReportStyle(LoadReportStyles(appDir, messages), settings.RepStyle);
        ReadProcessAndBatch(ini, settings);
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
    SettingsIni ini(path);
    if (batchOnly) {
        ini.putText("BATCH", "BatchDataDir", settings.BatchDataDir);
        return true;
    }
    WriteProgram(ini, settings);
    WriteDisplay(ini, settings);
    WriteReport(ini, settings);
    WriteProcess(ini, settings);
    return true;
}

void LoadFormLocation(FormLocation& location, const std::filesystem::path& appDir,
                      int screenWidthPx, int screenHeightPx) {
    SettingsIni ini(SettingsFilePath(appDir));
    const FormLocation d;
    location.RememberLoc = ini.flag("FORM", "RememberLoc", d.RememberLoc);
    location.Left = ini.integer("FORM", "Left", CentredEdge(screenWidthPx, d.Width));
    location.Top = ini.integer("FORM", "Top", CentredEdge(screenHeightPx, d.Height));
    location.Width = ini.integer("FORM", "Width", d.Width);
    location.Height = ini.integer("FORM", "Height", d.Height);
    location.State = ini.integer("FORM", "State", d.State);
}

void SaveFormLocation(const FormLocation& location, const std::filesystem::path& appDir) {
    SettingsIni ini(SettingsFilePath(appDir));
    ini.putFlag("FORM", "RememberLoc", location.RememberLoc);
    ini.putInteger("FORM", "Left", location.Left);
    ini.putInteger("FORM", "Top", location.Top);
    ini.putInteger("FORM", "Width", location.Width);
    ini.putInteger("FORM", "Height", location.Height);
    ini.putInteger("FORM", "State", location.State);
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
