#pragma once
// The application settings file "Vexo.ini" in the application directory, the record that
// mirrors it (AppSettings) and the main window's remembered placement (FormLocation).
//
// Values in the file: flags as -1 (true) or 0 (false), any non-zero value reading as
// true; colours as red + 256 * green + 65536 * blue in decimal; texts as they stand, an
// empty text written as one blank.
#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

#include "base/Messages.h"
#include "device/ExternalProcessing.h"
#include "report/ReportStyle.h"

namespace vexo {

// A Windows colour value; components above 255 count as 255, below 0 as 0.
constexpr int32_t RgbColor(int red, int green, int blue) {
    auto clamp = [](int c) { return c < 0 ? 0 : c > 255 ? 255 : c; };
    return clamp(red) + 256 * clamp(green) + 65536 * clamp(blue);
}

// Number of entries of the ROI colour table; entry 0 is the single ROI colour
// ("RoiBaseColor"), entries 1..8 are "RoiColorNo1".."RoiColorNo8", entry 9 is spare and
// never read or written.
inline constexpr std::size_t kRoiColorCount = 10;

// The process-wide mirror of "Vexo.ini". Field names are the keys' names. A fresh record
// holds the values a load gives for keys missing from the file, and the default report
// style.
struct AppSettings {
    // PROGRAM
    bool RoiFollowUp = true;
    std::string DefNucLib = "None"; // path of the default nuclide library; "None" = none
    bool OpenLastDetectorUsed = false;
    bool ApplyHV = false;
    std::string DetectorPath; // "HID:", "USB:" or "ETH:" and the device path

    // DISPLAY
    int32_t SpctBackColor = RgbColor(255, 255, 255);
    int32_t SpctForeColor = RgbColor(192, 192, 192);
    // Composed from 256, 256, 192 as it always was; the clamp makes it 12648447.
    int32_t SpctScaleColor = RgbColor(256, 256, 192);
    int32_t SpctCurColor = RgbColor(0, 0, 0);
    int32_t SpctScaleMode = 1; // 0 logarithmic, 1 linear, 2 square root
    int32_t SpctGraphType = 2; // 1 dots, 2 lines, 3 histogram
    bool SpctShowGrid = true;
    bool SpctFilled = true;
    bool RoiOneColor = true; // every ROI drawn in RoiColors[0]
    std::array<int32_t, kRoiColorCount> RoiColors = {
        RgbColor(255, 0, 0),     RgbColor(255, 0, 0),
        RgbColor(0, 192, 192),   RgbColor(32, 192, 0),
        RgbColor(255, 255, 128), RgbColor(192, 0, 128),
        RgbColor(128, 128, 0),   RgbColor(192, 192, 192),
        RgbColor(200, 200, 100), 0};

    // REPORT
    bool PlotSect = true;
    bool SpctSect = true;
    bool HardwareSect = true;
    bool DataAcqSect = true;
    bool CalibrationSect = true;
    bool ROISect = true;
    std::string RepStyle = "None";            // section name in "RepStyles.ini"
    ReportStyle Style = DefaultReportStyle(); // the scheme RepStyle resolved to

    // PROCESS
    bool EnableExtProcessing = false;
    std::string DataDir;
    std::string FileName;
    std::string Program;
    std::string StartupDir;
    std::string Arguments;

    // BATCH
    std::string BatchDataDir;

    bool operator==(const AppSettings&) const = default;
};

// The main window's placement in screen pixels (section FORM).
struct FormLocation {
    bool RememberLoc = false;
    int32_t Left = 0;
    int32_t Top = 0;
    int32_t Width = 1000;
    int32_t Height = 600;
    int32_t State = 0; // 0 normal, 1 minimised, 2 maximised

    bool operator==(const FormLocation&) const = default;
};

// `appDir` with the native separator appended when missing, then "Vexo.ini".
std::filesystem::path SettingsFilePath(const std::filesystem::path& appDir);

// Fills `settings` from "Vexo.ini", each missing key taking its default, and resolves
// RepStyle against "RepStyles.ini" (which may tell the user that file is missing or
// empty). Returns false, leaving the record untouched, when "Vexo.ini" does not exist.
// Returns false too when an error is raised while reading; the fields read up to then
// keep their new values. Nothing is reported in either case.
bool LoadSettings(AppSettings& settings, const std::filesystem::path& appDir, Messages& messages);

// On a first start (no "Vexo.ini" yet, so LoadSettings returned false) the nuclide
// library shipped beside the program, "Vexo.nli" in `programDir`, becomes the default
// library when it is there, so the calibration lists work out of the box. Returns whether
// it did. An existing settings file keeps whatever it says, "None" included.
bool OfferShippedNuclideLibrary(AppSettings& settings, const std::filesystem::path& programDir);

// Writes the record, creating "Vexo.ini" first when it is missing. With `batchOnly` only
// BATCH "BatchDataDir" is written; otherwise every key of PROGRAM, DISPLAY, REPORT and
// PROCESS (plus "SpctLabelColor" and "SpctRefColor", which carry the scale and graph
// colours and which nothing reads) and not "BatchDataDir". The keys are written in one
// pass (the file is read once and written once); returns false when the missing file
// cannot be created or the file cannot be read or written.
bool SaveSettings(const AppSettings& settings, bool batchOnly, const std::filesystem::path& appDir);

// Reads section FORM. With nothing remembered, the window is 1000 x 600 pixels, centred
// on a screen of the given size: Left = (screenWidthPx - 1000) / 2 and
// Top = (screenHeightPx - 600) / 2, rounded half to even.
void LoadFormLocation(FormLocation& location, const std::filesystem::path& appDir,
                      int screenWidthPx, int screenHeightPx);

// Writes section FORM: RememberLoc (-1/0), Left, Top, Width, Height, State.
void SaveFormLocation(const FormLocation& location, const std::filesystem::path& appDir);

// The PROCESS keys of the settings record.
ProcessSettings ProcessSettingsFrom(const AppSettings& settings);

// The start of a batch remembers its folder: BatchDataDir set and the batch keys saved.
// A settings file that cannot be written is reported (exclamation) and the batch goes on.
void RememberBatchDir(AppSettings& settings, const std::string& batchDir,
                      const std::filesystem::path& appDir, Messages& messages);

// After Connect: DetectorPath set and the whole settings file saved. A file that cannot
// be written is reported (critical); the device stays connected.
void RememberDetector(AppSettings& settings, const std::string& detectorPath,
                      const std::filesystem::path& appDir, Messages& messages);

} // namespace vexo
