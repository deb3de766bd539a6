#pragma once
// The File menu's spectrum commands without their dialogs: Open, Save and Save All.
// The window asks for the file with the titles, extensions and filters below and then
// calls these.
#include <array>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/Messages.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

// File dialogs. A filter is the entries joined in order ("name|pattern|name|pattern").
constexpr std::string_view kOpenSpectrumTitle = "Open Spectrum...";
constexpr std::string_view kOpenSpectrumDefaultExt = "spe";
constexpr std::string_view kOpenSpectrumFilter =
    "Text files (*.txt)|*.txt|Data files (*.dat)|*.dat|Spectrum files (*.spe)|*.spe|"
    "All files (*.*)|*.*";
constexpr std::string_view kSaveSpectrumTitle = "Save Spectrum As...";
constexpr std::string_view kSaveSpectrumDefaultExt = "dat";
constexpr std::string_view kSaveSpectrumFilter =
    "Text files (*.txt)|*.txt|Data files (*.dat)|*.dat|All files (*.*)|*.*";
constexpr std::string_view kSaveAllSpectrumTitle = "Save Spectrum As...";
constexpr std::string_view kSaveAllSpectrumDefaultExt = "spe";
constexpr std::string_view kSaveAllSpectrumFilter =
    "Text files (*.txt)|*.txt|Data files (*.dat)|*.dat|Spectrum files (*.spe)|*.spe|"
    "All files (*.*)|*.*";

struct OpenResult {
    bool full = false;       // read as a full spectrum file
    bool fullHeader = false; // it starts as one ("$SPEC_ID:"), read as one or not
    bool opened = false;     // the file could be read at all (full or plain)
    std::string fullError;   // why the full reader declined (a plain file is normal)
    std::string error;       // why the file could not be read, or why plain reading stopped
    std::string notice;      // what a plain read met besides counts (PlainCountsNotice)
};

// Open: starts a new empty ROI collection and plot ROI list, resets the calibration to
// the default, reads the file as a full spectrum file and, failing that, as a plain
// counts file. Then bFromFile = true and szFileName = the part of the path after its
// last "\" or "/". Shows no message. When the file cannot be read at all, `opened` is
// false, the error says why, and bFromFile/szFileName are left as they were (the ROIs
// and calibration are already reset). Never throws for bad input.
OpenResult OpenSpectrum(SpectrumDocument& doc, const std::filesystem::path& path);

struct SaveResult {
    bool ok = false;
    std::string error;
};

// Save: writes the plain counts file. No message is shown.
SaveResult SaveSpectrum(const SpectrumDocument& doc, const std::filesystem::path& path);

// Save All: writes the full spectrum file; on failure shows the exclamation message
// titled "Vexo": "Error saving file: " + the error's description. True on success.
bool SaveAllSpectrum(const SpectrumDocument& doc, const std::filesystem::path& path,
                     Messages& messages);

// The part of a path after its last "\" or "/" (the whole text when it has neither).
std::string FileNamePart(std::string_view path);

} // namespace vexo
