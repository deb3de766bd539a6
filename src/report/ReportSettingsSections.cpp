// The tables of the report that describe the measurement: device identifiers, MCA
// settings, data acquisition and calibration.
#include <charconv>
#include <cmath>

#include "base/DateTime.h"
#include "base/NumberText.h"
#include "report/ReportParts.h"
#include "spectrum/CountRate.h"

namespace vexo {

namespace {

// Bits of the preset-mode word.
constexpr int32_t kPresetLive = 1;
constexpr int32_t kPresetTime = 2;
constexpr int32_t kPresetCounts = 4;
// Bit of the high-voltage state word that says the supply is on.
constexpr int32_t kHVOnBit = 1;
// The filter clock assumed when the device gave none.
constexpr double kDefaultClockHz = 25.0e6;

// 2 raised to a gain code, in the shortest decimal text (code 3 gives "8", -1 "0.5").
std::string PowerOfTwoText(int32_t code) {
    char buf[40];
    auto res = std::to_chars(buf, buf + sizeof buf, std::ldexp(1.0, code));
    return std::string(buf, res.ptr);
}

// Shaping times are kept in filter clock ticks; people read microseconds.
std::string MicrosecondsText(int32_t ticks, int32_t clockHz) {
    const double clock = clockHz > 0 ? clockHz : kDefaultClockHz;
    return FormatNumber(ticks / clock * 1.0e6, "0.00");
}

const char* EnabledText(int32_t value) {
    return value != 0 ? "Enabled" : "Disabled";
}

void PutIdentifierRow(ReportLines& lines, std::string_view labelLine, const std::string& value) {
    lines.put(labelLine);
    lines.put("<td>" + value + "</td></tr>");
}

// The preset-mode row and the preset-value row, from the time, live and counts bits.
void PutPresetRows(ReportLines& lines, const SpectrumDocument& doc) {
    const bool time = (doc.lPresetMode & kPresetTime) != 0;
    const bool counts = (doc.lPresetMode & kPresetCounts) != 0;
    const std::string presetTime = SingleToText(doc.sngPresetTime);
    const std::string presetCounts = ReportLines::Integer(doc.lPresetCounts);
    if (time && counts) {
        lines.row("<td>Preset mode:</td>", "Time or Counts");
        lines.put("<tr>");
        lines.put("<td>Preset value (sec or counts):</td>");
        lines.put("<td>" + presetTime + " sec or " + presetCounts + " counts </td>");
        lines.put("</tr>");
    } else if (!time && !counts) {
        lines.row("<td>Preset mode:</td>", "Acquire Forever");
        lines.row("<td>Preset value :</td>", "none");
    } else if (counts) {
        lines.row("<td>Preset mode:</td>", "On counts between channels " +
                                               ReportLines::Integer(doc.lPresetFirstCh) + " and " +
                                               ReportLines::Integer(doc.lPresetLastCh));
        lines.row("<td>Preset value (cnts):</td>", presetCounts);
    } else {
        lines.row("<td>Preset mode:</td>",
                  (doc.lPresetMode & kPresetLive) != 0 ? "Live Time" : "Real Time");
        lines.row("<td>Preset value (sec):</td>", presetTime);
    }
}

std::string DeadTimeText(const SpectrumDocument& doc) {
    // In 32-bit floats, as the status bar computes it.
    const float dead =
        doc.sngRealTime > 0.0f ? (1.0f - doc.sngLiveTime / doc.sngRealTime) * 100.0f : 0.0f;
    return FormatSingle(dead, "0.00");
}

} // namespace

void PutDeviceIdentifiers(ReportLines& lines, const SpectrumDocument& doc) {
    lines.putAll({"<h2>Vexo Device Identifiers</h2>", "<table class=\"CommonTab\">"});
    PutIdentifierRow(lines, "<tr><td width=\"40%\">Serial Number:</td>", doc.szDeviceSerial);
    PutIdentifierRow(lines, "<tr><td>Firmware Version:</td>", doc.szFirmwareVersion);
    PutIdentifierRow(lines, "<tr><td>Firmware release date:</td>", doc.szFirmwareDate);
    PutIdentifierRow(lines, "<tr><td>Production date:</td>", doc.szProductionDate);
    lines.putAll({"</table>", "<br />"});
}

void PutMcaSettings(ReportLines& lines, const SpectrumDocument& doc) {
    lines.putAll({"<h2>MCA Settings</h2>", "", "<table class=\"Settings\">"});
    lines.row("<td width=\"30%\">Input polarity:</td>",
              doc.lPolarity != 0 ? "Negative" : "Positive");
    lines.row("<td>Number of channels:</td>", ReportLines::Integer(doc.lChannels));
    lines.row("<td>Coarse gain:</td>", PowerOfTwoText(doc.lCoarseGain));
    lines.row("<td>Fine gain:</td>", FormatNumber(doc.lFineGain, "0.000"));
    lines.row("<td>Digital gain:</td>", PowerOfTwoText(doc.lDigitalGain));
    lines.row("<td>LLD (chn):</td>", ReportLines::Integer(doc.lLLD));
    lines.row("<td>ULD (chn):</td>", ReportLines::Integer(doc.lULD));
    lines.row("<td>Threshold:</td>", ReportLines::Integer(doc.lThreshold));
    lines.row("<td>Rise time (&mu;sec):</td>", MicrosecondsText(doc.lRiseTime, doc.lClockHz));
    lines.row("<td>Flat top (&mu;sec):</td>", MicrosecondsText(doc.lFlatTop, doc.lClockHz));
    // The pole/zero constant has no scaling of its own: its device value is shown.
    lines.row("<td>Pole/Zero (&mu;sec):</td>", FormatNumber(doc.lPoleZero, "0.00"));
    lines.row("<td>Base line restorer (BLR):</td>", EnabledText(doc.lBLR));
    lines.row("<td>Pileup rejector (PUR):</td>", EnabledText(doc.lPUR));
    lines.putAll({"<tr><b>", "<td>High Voltage (Volts):</td>"});
    lines.cell(FormatSingle(doc.sngHighVoltage, "0.0") +
               ((doc.lHVOn & kHVOnBit) != 0 ? " (ON)" : " (OFF)"));
    lines.putAll({"</b></tr>", "</table>", "<br />"});
}

void PutDataAcquisition(ReportLines& lines, const SpectrumDocument& doc) {
    lines.putAll({"<h2>Data acquisition</h2>", "<table class=\"Settings\">"});
    lines.row("<td width=\"30%\">Spectrum ID: </td>", doc.szSpectrumID);
    lines.row("<td width=\"30%\">Acquisition date: </td>",
              LongDateText(doc.dtMeasured) + "&nbsp;" + LongTimeText(doc.dtMeasured));
    lines.row("<td width=\"30%\">MCA acquisition mode: </td>", doc.lMCSMode != 0 ? "MCS" : "PHA");
    PutPresetRows(lines, doc);
    lines.row("<td>Elapsed live time (sec):</td>", SingleToText(doc.sngLiveTime));
    lines.row("<td>Elapsed real time (sec):</td>", SingleToText(doc.sngRealTime));
    lines.put("<tr>");
    lines.put("<td>Dead time:</td>");
    lines.put("<td>" + DeadTimeText(doc) + "%</td>");
    lines.put("</tr>");
    lines.row("<td>Throughput (cps):</td>", FormatSingle(CountRate(doc), "0.0"));
    lines.putAll({"</table>", "<br />"});
}

void PutCalibration(ReportLines& lines, const EnergyCalibration& cal) {
    lines.putAll({"<h2>Calibration</h2>", "", "<table class=\"Settings\">"});
    lines.row("<td width=\"30%\">Energy calibration:</td>",
              cal.bCalibrated ? "Calibrated" : "Not calibrated (using default values)");
    lines.putAll({"</table>", "<br />", "<table class=\"TableRes\">", "<tr>"});
    lines.putAll({"<th>Offset<br />(keV)</th>", "<th>Slope<br />(keV/chn)</th>",
                  "<th>Quadratic term<br />(keV/chn<sup>2</sup>)</th>", "</tr>", "<tr>"});
    lines.cell(DoubleToText(cal.dOffset));
    lines.cell(DoubleToText(cal.dSlope));
    lines.cell(DoubleToText(cal.dQuad));
    lines.putAll({"</tr>", "</table>", "<br />"});
}

} // namespace vexo
