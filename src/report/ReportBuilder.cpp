#include "report/ReportBuilder.h"

#include <algorithm>

#include "base/AppDir.h"
#include "base/NumberText.h"
#include "report/ReportParts.h"

namespace vexo {

namespace {

constexpr std::string_view kRoiHeader[] = {
    "<th>No</th>",
    "<th>Boundaries<br />(chn)</th>",
    "<th>Centroid<br />(chn)</th>",
    "<th>Centroid<br />(keV)</th>",
    "<th>Integral<br />(cnts)</th>",
    "<th>Continuum<br />(cnts)</th>",
    "<th>Net area<br />(cnts)</th>",
    "<th>Est. net intensity<br />(cnts)</th>",
    "<th>Max. intensity<br />(cnts)</th>",
    "<th>FWHM<br />(chn)</th>",
    "<th>FWHM<br />(keV)</th>",
    "<th>FWHM<br />(%)</th>",
};

void PutRoiTable(ReportLines& lines, const std::vector<ReportRoiRow>& rois) {
    lines.putAll({"<h2>ROI Analysis</h2>", "",
                  "<font size=\"-2\">ROI analysis results table</font>",
                  "<table class=\"TableRes\">", "<tr>"});
    lines.putAll(kRoiHeader);
    lines.put("</tr>");
    for (std::size_t i = 0; i < rois.size(); ++i) {
        const ReportRoiRow& r = rois[i];
        lines.put("<tr>");
        lines.cell(static_cast<int64_t>(i + 1));
        lines.cell(ReportLines::Integer(r.lROILCh) + " - " + ReportLines::Integer(r.lROIRCh));
        lines.cell(FormatSingle(r.sCentCh, "0.00"));
        lines.cell(FormatSingle(r.sCentEn, "0.00"));
        lines.cell(r.lInt);
        lines.cell(r.lBkgIntVal);
        lines.cell(r.lNET);
        lines.cell(SingleToText(r.sCentInt));
        lines.cell(r.lMax);
        lines.cell(FormatSingle(r.sFWHMch, "0.00"));
        lines.cell(FormatSingle(r.sFWHMen, "0.00"));
        lines.cell(FormatSingle(r.sFWHMp, "0.00"));
        lines.put("</tr>");
    }
    lines.putAll({"</table>", "<br />"});
}

// One row per channel index 0 .. lChannels inclusive: the channel count itself is the
// last index, so the table holds one row more than there are channels. Even indices get
// the "even" class and so the report style's row colours.
void PutSpectralData(ReportLines& lines, const SpectrumDocument& doc) {
    lines.putAll({"<h2>Spectral data</h2>", "<font size=\"-2\">Spectrum contents</font>",
                  "<table class=\"TableRes\">"});
    lines.setDataTable(true);
    lines.putAll({"<tr>", "<th>Channel No</th>", "<th>Energy<br />(keV)</th>",
                  "<th>Intensity<br />(counts)</th>", "</tr>"});
    const int32_t last = std::min<int32_t>(doc.lChannels, static_cast<int32_t>(COUNTS_SLOTS) - 1);
    for (int32_t i = 0; i <= last; ++i) {
        lines.put(i % 2 == 0 ? "<tr class=\"even\">" : "<tr>");
        lines.cell(i);
        lines.cell(FormatNumber(ChannelToEnergy(i, doc.calibration), "0.00"));
        lines.cell(doc.lCounts[static_cast<std::size_t>(i)]);
        lines.put("</tr>");
    }
    lines.setDataTable(false);
    lines.putAll({"</table>", "<br />"});
}

} // namespace

std::string BuildReport(const ReportInput& input) {
    const SpectrumDocument& doc = *input.doc;
    const ReportSections& s = input.sections;
    std::string text;
    // About 60 bytes per spectral row; growing the string step by step costs more.
    text.reserve(8192 +
                 (s.SpctSect ? 64 * static_cast<std::size_t>(std::max(doc.lChannels, 0)) : 0));
    ReportLines lines(text);
    PutReportHead(lines, input.style);
    PutDeviceIdentifiers(lines, doc);
    if (s.HardwareSect)
        PutMcaSettings(lines, doc);
    if (s.DataAcqSect)
        PutDataAcquisition(lines, doc);
    if (s.CalibrationSect)
        PutCalibration(lines, doc.calibration);
    if (!input.rois.empty() && s.ROISect)
        PutRoiTable(lines, input.rois);
    if (s.SpctSect)
        PutSpectralData(lines, doc);
    if (s.PlotSect)
        lines.putAll({"<h2 style=\"page-break-before: always\">Spectrum</h2>",
                      "<img src=\"spect.png\" alt=\"Spectrum\" width=\"100%\" />", "<br />",
                      "</body>"});
    else
        lines.put("</body>");
    lines.put("</html>");
    return text;
}

std::filesystem::path ReportFilePath(const std::filesystem::path& appDir) {
    return WithTrailingSeparator(appDir) + "print.html";
}

std::filesystem::path PictureFilePath(const std::filesystem::path& appDir) {
    return WithTrailingSeparator(appDir) + "spect.png";
}

} // namespace vexo
