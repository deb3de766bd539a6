#pragma once
// ROI files (".roi"): five banner comment lines, then one INI section per ROI named
// "[ROI" + its 1-based position + "]" with the keys RoiID, RoiNoInPlot, RoiNoInCol,
// RoiColor, RoiLeftCh, RoiRightCh, RoiLEn, RoiREn, RoiIdNuc. Written in Windows-1252
// with CR LF line ends; energies with "." as the decimal point.
#include <filesystem>
#include <string>
#include <vector>

#include "roi/RoiCollection.h"
#include "roi/clsROI.h"

namespace vexo {

// Writes every ROI of `rois` in collection order to a fresh file at `path` (created or
// overwritten). Energies are written with two decimals ("0.00"), integers plain, an
// empty identifier or nuclide as nothing after the "=". Returns false and sets `error`
// (when given) to the system's description when the file cannot be written.
bool WriteRoiFile(const std::filesystem::path& path, const RoiCollection& rois,
                  std::string* error = nullptr);

struct RoiFileContents {
    bool ok = false;          // false only when the file does not exist
    std::vector<clsROI> rois; // one per section, in file order
};

// Reads an ROI file. Every section counts, whatever its name. Only RoiID, RoiLeftCh,
// RoiRightCh, RoiLEn, RoiREn and RoiColor are read (defaults "", 1, 1, 0, 0, 255); the
// plot number, collection position and nuclide are not. Energies take the number their
// text begins with ("12,50" gives 12, "abc" gives 0; a value beyond float range gives 0).
// A file with no sections reads as ok with no ROIs.
RoiFileContents ReadRoiFile(const std::filesystem::path& path);

} // namespace vexo
