#include "report/ReportStyle.h"

#include "base/AppDir.h"
#include "base/CPrivateINI.h"
#include "base/CPrivateINIBatch.h"
#include "base/VexoError.h"

#include <system_error>

namespace vexo {
namespace {

constexpr const char* kMessageTitle = "Error opening Report Styles";
constexpr const char* kDefaultUsed = "\r\nThe default report style will be used.";

int16_t To16Bit(int64_t value) {
    if (value < INT16_MIN || value > INT16_MAX)
        throw OverflowError();
    return static_cast<int16_t>(value);
}

ReportStyleList DefaultOnly() {
    ReportStyleList list;
    list.styles = {ReportStyle{}, DefaultReportStyle()};
    list.highestIndex = 1;
    return list;
}

ReportStyle ReadStyle(CPrivateINIBatch& ini, const std::string& section, int index) {
    ReportStyle style;
    style.sectionName = section;
    style.index = To16Bit(index);
    style.CS_Description = ini.GetValue(section, "CS_Description", kStyleDefaultDescription);
    style.CS_TitleColor = ini.GetValue(section, "CS_TitleColor", kStyleDefaultTitleColor);
    style.CS_TitleFont = ini.GetValue(section, "CS_TitleFont", kStyleDefaultTitleFont);
    style.CS_TitleBorder =
        To16Bit(ini.GetLongValue(section, "CS_TitleBorder", kStyleDefaultTitleBorder));
    style.CS_HeaderBack = ini.GetValue(section, "CS_HeaderBack", kStyleDefaultHeaderBack);
    style.CS_HeaderFore = ini.GetValue(section, "CS_HeaderFore", kStyleDefaultHeaderFore);
    style.CS_RowBack = ini.GetValue(section, "CS_RowBack", kStyleDefaultRowBack);
    style.CS_RowFore = ini.GetValue(section, "CS_RowFore", kStyleDefaultRowFore);
    return style;
}

} // namespace

ReportStyle DefaultReportStyle() {
    ReportStyle style;
    style.sectionName = "None";
    style.index = 1;
    style.CS_TitleBorder = 1;
    style.CS_TitleColor = "#000000";
    style.CS_TitleFont = "tahoma";
    style.CS_HeaderBack = "#FFFFFF";
    style.CS_HeaderFore = "#000000";
    // Set twice on purpose: the second value is the one reports have always shown.
    style.CS_RowBack = "#FFFFFF";
    style.CS_RowBack = "#000000";
    return style;
}

std::filesystem::path ReportStylesFilePath(const std::filesystem::path& appDir) {
    return WithTrailingSeparator(appDir) + "RepStyles.ini";
}

ReportStyleList LoadReportStyles(const std::filesystem::path& appDir, Messages& messages) {
    const std::string path = ReportStylesFilePath(appDir).string();
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) {
        messages.information("File " + path + " with definitions for report styles was not found." +
                                 kDefaultUsed,
                             kMessageTitle);
        return DefaultOnly();
    }
    CPrivateINI named;
    named.setINIFile(path);
    CPrivateINIBatch ini(named); // one read of the file for every key of every style
    std::vector<std::string> sections = ini.GetSections();
    if (sections.empty()) {
        messages.information("No report style definitions found in file " + path + kDefaultUsed,
                             kMessageTitle);
        return DefaultOnly();
    }
    ReportStyleList list;
    list.styles.reserve(sections.size() + 1);
    list.styles.emplace_back();
    for (std::size_t k = 0; k < sections.size(); ++k)
        list.styles.push_back(ReadStyle(ini, sections[k], static_cast<int>(k + 1)));
    list.highestIndex = static_cast<int>(sections.size());
    return list;
}

ReportStyle ResolveReportStyle(const ReportStyleList& list, const std::string& name) {
    for (const auto& style : list.styles)
        if (style.sectionName == name)
            return style;
    return DefaultReportStyle();
}

} // namespace vexo
