#pragma once
// The HTML report "print.html": one page with the device identifiers, the MCA settings,
// the acquisition data, the calibration, the ROI results, the spectral data and the
// spectrum picture, each section switched by a REPORT key of the settings, coloured by
// the chosen report style. The text is fixed line by line; printers and mail programs of
// our users have been fed this exact page for years, so every quirk stays.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "report/ReportStyle.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

// Which optional sections the report holds (the REPORT flags of "Vexo.ini"). The device
// identifiers are always there.
struct ReportSections {
    bool HardwareSect = true;
    bool DataAcqSect = true;
    bool CalibrationSect = true;
    bool ROISect = true;
    bool SpctSect = true;
    bool PlotSect = true;
};

// One row of the ROI table: the ROI's channels and the results its analysis holds, as
// the ROI's properties hand them out (widths already 0 unless positive).
struct ReportRoiRow {
    int32_t lROILCh = 0;
    int32_t lROIRCh = 0;
    float sCentCh = 0.0f;
    float sCentEn = 0.0f;
    int32_t lInt = 0;
    int32_t lBkgIntVal = 0; // the continuum under the peak
    int32_t lNET = 0;
    float sCentInt = 0.0f; // estimated net intensity
    int32_t lMax = 0;
    float sFWHMch = 0.0f;
    float sFWHMen = 0.0f;
    float sFWHMp = 0.0f;
};

// Everything the page is made from. `doc` must not be null.
struct ReportInput {
    const SpectrumDocument* doc = nullptr;
    ReportSections sections;
    ReportStyle style;
    std::vector<ReportRoiRow> rois; // in ROI order; "No" is the 1-based position
};

// The whole page, every line followed by CR LF, as UTF-8 text. Texts of the record (the
// spectrum ID, the identity fields) go in as they stand, without HTML escaping.
// Throws FloatingPointError when a number to be shown is NaN or infinite (an energy
// calibration that overflows, a broken analysis result).
std::string BuildReport(const ReportInput& input);

// "print.html" and "spect.png" in the application directory.
std::filesystem::path ReportFilePath(const std::filesystem::path& appDir);
std::filesystem::path PictureFilePath(const std::filesystem::path& appDir);

// Writes the page as Windows-1252 bytes: first to a temporary file beside `file`, then
// renamed over it, so a failed write leaves the previous report whole. On failure
// `error` says what went wrong ("Permission denied") and no temporary file is left.
struct ReportWriteResult {
    bool ok = false;
    std::string error;
};
ReportWriteResult WriteReportFile(const std::filesystem::path& file, std::string_view text);

// BuildReport and WriteReportFile in one: a value that cannot be shown ends the build
// with its error text, before anything is written.
ReportWriteResult WriteReport(const ReportInput& input, const std::filesystem::path& file);

// The file URL of "print.html" for an application directory given as a Windows folder:
// blanks become "%20", "|" "%7C", "/" "%2F", ":" "|" and "\" "/", in that order, and the
// URL is "file:///" + that + "/print.html". "C:\My Data" gives
// "file:///C|/My%20Data/print.html".
std::string ReportUrl(std::string_view appDir);

// The file URL of a native absolute path: "file://" + the path with every byte outside
// the unreserved set and "/" percent-encoded ("/tmp/My Data/print.html" gives
// "file:///tmp/My%20Data/print.html"). ReportUrl's "/" -> "%2F" step only makes sense for
// Windows folders, so on this platform the preview navigates to this one.
std::string FileUrl(const std::filesystem::path& file);

} // namespace vexo
