#pragma once
// Report colour schemes: one section each in "RepStyles.ini" in the application
// directory, chosen by section name through the REPORT key "RepStyle" of the settings.
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/Messages.h"

namespace vexo {

// One colour scheme. A fresh record is empty (texts "", numbers 0); the values a key
// takes when the styles file lacks it are the kStyleDefault* constants below.
struct ReportStyle {
    std::string sectionName;    // the INI section that defines the scheme
    std::string CS_Description; // description shown in the preferences
    int16_t index = 0;          // place in the list of styles, 1-based
    std::string CS_TitleFont;   // font family of section headings
    std::string CS_TitleColor;  // HTML colour of section headings, e.g. "#000000"
    int16_t CS_TitleBorder = 0; // read and kept; the report does not use it
    std::string CS_HeaderBack;  // background and rules of result-table header cells
    std::string CS_HeaderFore;  // text colour of result-table header cells
    std::string CS_RowBack;     // background of the even rows of result tables
    std::string CS_RowFore;     // text colour of those rows

    bool operator==(const ReportStyle&) const = default;
};

// Values of keys missing from a section of "RepStyles.ini".
inline constexpr const char* kStyleDefaultDescription = "No style";
inline constexpr const char* kStyleDefaultTitleFont = "tahoma";
inline constexpr const char* kStyleDefaultTitleColor = "#000000";
inline constexpr int16_t kStyleDefaultTitleBorder = 0;
inline constexpr const char* kStyleDefaultHeaderBack = "#FFFFFF";
inline constexpr const char* kStyleDefaultHeaderFore = "#000000";
inline constexpr const char* kStyleDefaultRowBack = "#FFFFFF";
inline constexpr const char* kStyleDefaultRowFore = "#000000";

// The style used when no scheme matches or the styles file is missing or empty: section
// name "None", index 1, CS_TitleBorder 1, black title in tahoma, white header with black
// text. CS_RowBack is black and CS_RowFore and CS_Description stay empty, so even rows of
// result tables come out with a black background; the program has always looked so.
ReportStyle DefaultReportStyle();

// All styles of the styles file: place 0 is an empty style, places 1..highestIndex hold
// the file's sections in file order.
struct ReportStyleList {
    std::vector<ReportStyle> styles;
    int highestIndex = 0;
};

// "RepStyles.ini" in `appDir`.
std::filesystem::path ReportStylesFilePath(const std::filesystem::path& appDir);

// Reads every section of "RepStyles.ini". When the file is missing or holds no section,
// tells the user so (information box titled "Error opening Report Styles") and returns
// the empty style and DefaultReportStyle() in place 1, highestIndex 1.
// Throws OverflowError when a CS_TitleBorder does not fit 16 bits, or there are more than
// 32767 sections, as the 16-bit fields cannot hold it.
ReportStyleList LoadReportStyles(const std::filesystem::path& appDir, Messages& messages);

// The first style, from place 0 upward, whose section name equals `name` exactly (letter
// case counts; "" matches the empty style in place 0); DefaultReportStyle() when none does.
ReportStyle ResolveReportStyle(const ReportStyleList& list, const std::string& name);

} // namespace vexo
