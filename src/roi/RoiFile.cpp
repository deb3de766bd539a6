#include "roi/RoiFile.h"

#include <cmath>
#include <limits>

#include "base/CPrivateINI.h"
#include "base/CPrivateINIBatch.h"
#include "base/NumberText.h"
#include "base/TextFile.h"
#include "base/TextTrim.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

// Each banner line is 37 characters; the fourth tells a person editing the file which
// decimal separator the reader accepts.
constexpr const char* kBanner[] = {
    "'''**********************************", "'''******   Vexo ROI file   *********",
    "'''**********************************", "'''Note: Use . as decimal separator**",
    "'''**********************************",
};

std::string EnergyText(float keV) {
    return std::string(TrimBlanks(FormatSingle(keV, "0.00"), " "));
}

void WriteSection(TextFileWriter& out, const clsROI& roi, int position) {
    const std::string i = std::to_string(position);
    out.line("[ROI" + i + "]");
    out.line("RoiID=" + roi.vntID());
    out.line("RoiNoInPlot=" + std::to_string(roi.nROIinPlot()));
    out.line("RoiNoInCol=" + i);
    out.line("RoiColor=" + std::to_string(roi.lROIColor()));
    out.line("RoiLeftCh=" + std::to_string(roi.lROILCh()));
    out.line("RoiRightCh=" + std::to_string(roi.lROIRCh()));
    out.line("RoiLEn=" + EnergyText(roi.sROILEn()));
    out.line("RoiREn=" + EnergyText(roi.sROIREn()));
    out.line("RoiIdNuc=" + roi.szIdNuc());
}

// The number the text begins with, as a float. A hand-edited value that does not fit a
// float (or a double) cannot be an energy and reads as 0, as unreadable text does.
float LeadingEnergy(const std::string& text) {
    double value = 0.0;
    try {
        value = LeadingNumber(text);
    } catch (const OverflowError&) {
        return 0.0f; // beyond the double range: deliberately read as no energy
    }
    if (std::fabs(value) > std::numeric_limits<float>::max())
        return 0.0f;
    return static_cast<float>(value);
}

clsROI ReadSection(CPrivateINIBatch& ini, const std::string& section) {
    clsROI roi;
    roi.set_vntID(ini.GetValue(section, "RoiID", ""));
    roi.set_lROILCh(ini.GetLongValue(section, "RoiLeftCh", 1));
    roi.set_lROIRCh(ini.GetLongValue(section, "RoiRightCh", 1));
    roi.set_sROILEn(LeadingEnergy(ini.GetValue(section, "RoiLEn", "")));
    roi.set_sROIREn(LeadingEnergy(ini.GetValue(section, "RoiREn", "")));
    roi.set_lROIColor(ini.GetLongValue(section, "RoiColor", 255));
    return roi;
}

} // namespace

bool WriteRoiFile(const std::filesystem::path& path, const RoiCollection& rois,
                  std::string* error) {
    TextFileWriter out;
    for (const char* line : kBanner)
        out.line(line);
    int position = 0;
    for (const clsROI& roi : rois)
        WriteSection(out, roi, ++position);
    return out.save(path, error);
}

RoiFileContents ReadRoiFile(const std::filesystem::path& path) {
    RoiFileContents result;
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        return result;
    result.ok = true;
    CPrivateINI named;
    named.setINIFile(path.string());
    CPrivateINIBatch ini(named); // one read of the file for every key of every ROI
    for (const std::string& section : ini.GetSections())
        result.rois.push_back(ReadSection(ini, section));
    return result;
}

} // namespace vexo
