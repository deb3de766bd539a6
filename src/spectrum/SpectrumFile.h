#pragma once
// The full spectrum file (".spe"): a sectioned text file with the counts, the identity,
// times, settings snapshot, calibration and ROIs of a spectrum. Windows-1252 with CR LF
// on disk; the reader accepts LF and lone CR line ends too.
//
// Layout written, one line each, items of a line in 14-column zones (shell/FieldLine.h):
//   "$SPEC_ID:" / ID / "$DATE_MEA:" / "mm-dd-yyyy  hh:nn:ss" / "$MEAS_TIM:" / live, real /
//   "$DEVICE_ID:" / name + " " + serial / "$ACQ_SETTINGS:" / mode, time, counts, first,
//   last / "$HRDW_PARAMS:" / "MCS"|"PHA" / high voltage / 3 gains / 3 discriminators /
//   3 shaping / BLR, PUR / "$SPEC_CAL:" / offset, slope, quad / "$MCA_CAL:" / "3" /
//   offset, slope, quad / ["$ROI:" / one line per plot ROI] / "$DATA:" / 0, lChannels-1 /
//   eight counts per line.
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "spectrum/SpectrumDocument.h"

namespace vexo {

// The reader looks at no more than this much of a file, so a huge or endless file cannot
// exhaust memory; a larger file is not read as a full spectrum file. Real files are well
// under a few MiB even with thousands of ROIs; this is far beyond them.
constexpr std::size_t kMaxSpectrumFileBytes = std::size_t{256} << 20;

// Whether bytes begin as a full spectrum file does: its first line starts "$SPEC_ID:".
// Such a file is meant to be read as a full file, whatever its size or later faults.
bool StartsAsFullSpectrum(std::string_view bytes);

// The file's bytes as written: Windows-1252, lines ended by CR LF. The calibration comes
// from the plot's 32-bit copy (doc.plot), the ROI lines from doc.plot.rois. The last
// counts line always holds eight values, those past the last channel being whatever the
// array holds there. Throws SubscriptError when lChannels is above 16384 (the last line
// would run past the counts array).
std::string FullSpectrumBytes(const SpectrumDocument& doc);

// Writes (creates or replaces) the full spectrum file through WriteFileBytes, flushed to
// disk, so neither a failed write nor a crash leaves a torn file under its name. False after any
// error, with a description in `error` (for example "No space left on device"). Does not show any
// message.
bool bSaveFullSpectrum(const SpectrumDocument& doc, const std::filesystem::path& path,
                       std::string* error = nullptr);

// Reads a full spectrum file into `doc`. False when the file cannot be read, does not
// start with "$SPEC_ID:", is larger than kMaxSpectrumFileBytes, or a section is broken
// (a number past the end of the file, a value out of range, an impossible date);
// whatever was read before the error stays in `doc`. `error` receives the reason.
//
// Tag lines must match exactly, case and all, with nothing else on the line: a line
// "$DATA: " with a trailing blank is not a tag. Line ends may be CR LF, LF or CR. Lines
// that are not tags are skipped, and so is "$MCA_CAL:", which the reader does not use.
// Numbers are fields separated by blanks, commas or line ends (spectrum/FieldReader.h).
// Sections: "$DATE_MEA:" (taken by character position, month 1-2, day 4-5, year 7-10,
// hour 1-2, minute 4-5, second 7-8, each piece the number it begins with: "3-7-2024" is
// misread as day -2 of March 2024; years 0-29 mean 2000-2029 and 30-99 mean 1930-1999;
// a date outside the years 100-9999 fails the read; fewer than two parts: unchanged),
// "$MEAS_TIM:", "$DEVICE_ID:", "$ACQ_SETTINGS:", "$HRDW_PARAMS:" (the mode word reads as
// 0, so a spectrum always comes back as PHA), "$SPEC_CAL:" (sets the calibration, both
// the 64-bit record and the plot's copy), "$ROI:" (replaces doc.plot.rois and doc.rois),
// "$DATA:" (range clamped to 0..16383; lChannels = last - first + 1).
// The preset snapshot is reset (mode 3, all else 0) once the ID line has been read.
bool bReadFullSpectrum(SpectrumDocument& doc, const std::filesystem::path& path,
                       std::string* error = nullptr);

// The same on bytes already in memory (the file's raw Windows-1252 bytes).
bool ParseFullSpectrum(SpectrumDocument& doc, std::string_view bytes, std::string* error = nullptr);

} // namespace vexo
