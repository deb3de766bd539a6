#include "report/ReportParts.h"

namespace vexo {

namespace {

// The style rules that do not depend on the report style. "valign" and the comma in
// "font: 8pt, Tahoma;" are not CSS; the page has always carried them and browsers skip them.
constexpr std::string_view kBodyRules[] = {
    "body {",
    "  color: #000;",
    "  padding: 0;",
    "  margin-left: 1em;",
    "  margin-right: 1em;",
    "  font: 8pt, Tahoma;",
    "  font-weight: normal;",
    "}",
    "img {",
    "  border: 0;",
    "}",
    "h1 {",
    "  background: #2020FF;",
    "  color: white;",
    "  width: 100%;",
    "  font: 18pt, Tahoma;",
    "  font-weight: bold;",
    "}",
};

// The properties table.CommonTab and table.Settings share after their font line.
constexpr std::string_view kTableProperties[] = {
    "  font-weight: normal;", "  border-collapse: collapse;",
    "  background: #FFFFFF;", "  text-align: left;",
    "  valign: center;",      "  padding: 10;",
    "  width: 100%;",         "}",
};

constexpr std::string_view kSettingsRules[] = {
    "table.Settings th {",
    "  font: 8pt, Tahoma;",
    "  font-weight: normal;",
    "  text-align: left;",
    "  valign: center;",
    "  background: #000080;",
    "  color: #FFFFFF;",
    "}",
    "table.Settings tr.even {",
    "  font: 8pt, Tahoma;",
    "  font-weight: normal;",
    "  background: #CCE9EE;",
    "}",
    "table.TableRes{",
    "  font: 8pt, tahoma;",
    "  border-collapse: collapse;",
    "  background: #FFFFFF;",
    "  color: #000000;",
    "  text-align: center;",
    "  valign: center;",
    "  padding: 10;",
    "  width: 100%;",
    "}",
};

std::string Property(std::string_view name, const std::string& value) {
    return "  " + std::string(name) + ": " + value + ";";
}

void PutStyleBlock(ReportLines& lines, const ReportStyle& style) {
    lines.putAll({"<style type=\"text/css\">", "<!--"});
    lines.putAll(kBodyRules);
    lines.put("h2 {");
    lines.put(Property("color", style.CS_TitleColor));
    lines.put("  text-align: left;");
    lines.put(Property("font-family", style.CS_TitleFont));
    lines.putAll({"  margin-left: 0em;", "  padding: 0 .5em;", "  width: 100%;",
                  "  border-bottom: 1px solid black;", "  font: 12pt; ", "}"});
    lines.putAll({"table.CommonTab {", "  font: 9pt, Tahoma;"});
    lines.putAll(kTableProperties);
    lines.putAll({"table.Settings {", "  font: 8pt, Tahoma;"});
    lines.putAll(kTableProperties);
    lines.putAll(kSettingsRules);
    lines.putAll({"table.TableRes th{", "  font: 8pt, tahoma;", "  text-align: center;"});
    lines.put(Property("background", style.CS_HeaderBack));
    lines.put(Property("color", style.CS_HeaderFore));
    lines.putAll({"  text-align: center;", "  vertical-align: top;"});
    lines.put(Property("border-top", "1px solid " + style.CS_HeaderBack));
    lines.put(Property("border-bottom", "1px solid " + style.CS_HeaderBack));
    lines.putAll({"}", "table.TableRes tr.even{", "  font: 8pt, tahoma;"});
    lines.put(Property("background", style.CS_RowBack));
    lines.put(Property("color", style.CS_RowFore));
    lines.putAll({"}", "-->", "</style>"});
}

} // namespace

void PutReportHead(ReportLines& lines, const ReportStyle& style) {
    lines.putAll({"<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 3.2 Final//EN\">", "<html>", "<head>",
                  "<title>Vexeo</title>"});
    PutStyleBlock(lines, style);
    lines.putAll({"</head>", "", "<body>", "<center><h1>Vexo Report</h1></center>", "<br />"});
}

} // namespace vexo
