// The report page, line by line, against pages written out by hand: every section on,
// every flag off, the style colours, the preset classes, calibration, ROIs, the spectral
// table, the URLs and the safe write.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <sstream>

#include "TestSupport.h"
#include "base/DateTime.h"
#include "base/VexoError.h"
#include "report/ReportBuilder.h"

using namespace vexo;

namespace {

using Lines = std::vector<std::string>;

// The page's lines; fails the test when a line does not end in CR LF.
Lines Split(const std::string& text) {
    Lines lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find("\r\n", start);
        EXPECT_NE(end, std::string::npos) << "last line without CR LF";
        if (end == std::string::npos)
            break;
        lines.push_back(text.substr(start, end - start));
        EXPECT_EQ(lines.back().find('\n'), std::string::npos) << lines.back();
        start = end + 2;
    }
    return lines;
}

Lines Expected(const std::string& text) {
    Lines lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

void ExpectSameLines(const Lines& got, const Lines& want) {
    for (std::size_t i = 0; i < std::min(got.size(), want.size()); ++i)
        ASSERT_EQ(got[i], want[i]) << "line " << i + 1;
    EXPECT_EQ(got.size(), want.size());
}

// From the first line equal to `first` up to and including the next line equal to `last`.
Lines Slice(const Lines& lines, const std::string& first, const std::string& last) {
    auto from = std::find(lines.begin(), lines.end(), first);
    if (from == lines.end())
        return {};
    auto to = std::find(from, lines.end(), last);
    return Lines(from, to == lines.end() ? to : to + 1);
}

// Hand-written pages in tests/data/report: the head of the page with the default style
// (black even rows, an empty row colour) up to the device identifiers of MakeDoc(), and
// everything after the identifiers for MakeDoc() with every section on.
std::string Page(const char* name) {
    return test::ReadBytes(test::TestDataDir() / "report" / name);
}
const std::string kHead = Page("head_default_style.html");
const std::string kAllSections = Page("all_sections_body.html");

// Three channels; slot 3 (the channel count itself) holds 40 and belongs to the table.
SpectrumDocument& MakeDoc() {
    static SpectrumDocument doc;
    doc = SpectrumDocument{};
    doc.lChannels = 3;
    doc.lCounts[0] = 10, doc.lCounts[1] = 20, doc.lCounts[2] = 30, doc.lCounts[3] = 40;
    doc.sngLiveTime = 90.5f;
    doc.sngRealTime = 100.0f;
    doc.szSpectrumID = "Sample <A>"; // the user's own text, not escaped
    doc.szDeviceSerial = "10230417";
    doc.szFirmwareVersion = "V3.3";
    doc.szFirmwareDate = "Thursday, March 7, 2024";
    doc.szProductionDate = "Monday, January 8, 2024";
    doc.dtMeasured = SerialFromParts({2024, 3, 7, 14, 5, 9});
    doc.lPresetMode = 3;
    doc.sngPresetTime = 100.0f;
    doc.lPresetCounts = 5000;
    doc.lPresetFirstCh = 100;
    doc.lPresetLastCh = 200;
    doc.lCoarseGain = 3, doc.lFineGain = 2048, doc.lDigitalGain = 0;
    doc.lLLD = 10, doc.lULD = 1000, doc.lThreshold = 20;
    doc.lRiseTime = 50, doc.lFlatTop = 10, doc.lPoleZero = 1200;
    doc.lBLR = 1, doc.lPUR = 0;
    doc.sngHighVoltage = 650.0f;
    doc.lHVOn = 1;
    doc.setCalibration({true, 1.5, 2.25, 0.001});
    return doc;
}

ReportInput MakeInput(const SpectrumDocument& doc) {
    ReportInput in;
    in.doc = &doc;
    in.style = DefaultReportStyle();
    in.rois.push_back({1, 2, 1.5f, 4.877f, 50, 30, 20, 12.34567f, 30, 1.2f, 2.7f, 55.36f});
    // A failed or never-run analysis: the row shows what the ROI holds.
    in.rois.push_back({0, 3, 0.0f, 0.0f, -5, 0, -5, 1.2345678e-5f, 0, 0.0f, 0.0f, 0.0f});
    return in;
}

Lines Build(const ReportInput& in) {
    return Split(BuildReport(in));
}

} // namespace

TEST(ReportPage, EverySectionOnMatchesLineByLine) {
    ExpectSameLines(Build(MakeInput(MakeDoc())), Expected(kHead + kAllSections));
}

TEST(ReportPage, EveryFlagOffKeepsTitleAndIdentifiers) {
    ReportInput in = MakeInput(MakeDoc());
    in.sections = {false, false, false, false, false, false};
    ExpectSameLines(Build(in), Expected(kHead + "</body>\n</html>\n"));
}

TEST(ReportPage, RoiSectionNeedsRoisAndItsFlag) {
    ReportInput in = MakeInput(MakeDoc());
    in.rois.clear();
    EXPECT_TRUE(Slice(Build(in), "<h2>ROI Analysis</h2>", "</table>").empty());
    in = MakeInput(MakeDoc());
    in.sections.ROISect = false;
    EXPECT_TRUE(Slice(Build(in), "<h2>ROI Analysis</h2>", "</table>").empty());
}

TEST(ReportPage, StyleColoursGoIntoTheirRules) {
    test::TempDir dir;
    test::WriteBytes(dir / "RepStyles.ini",
                     "[Plain]\r\n[Sea]\r\nCS_TitleColor=#003366\r\nCS_TitleFont=verdana\r\n"
                     "CS_HeaderBack=#336699\r\nCS_HeaderFore=#FFFF00\r\nCS_RowBack=#DDEEFF\r\n");
    ScriptedMessages messages;
    const ReportStyleList styles = LoadReportStyles(dir.path(), messages);
    struct Case {
        ReportStyle style;
        Lines h2, th, even;
    } cases[] = {
        {ResolveReportStyle(styles, "Sea"),
         {"  color: #003366;", "  text-align: left;", "  font-family: verdana;"},
         {"  background: #336699;", "  color: #FFFF00;", "  text-align: center;",
          "  vertical-align: top;", "  border-top: 1px solid #336699;",
          "  border-bottom: 1px solid #336699;"},
         {"  background: #DDEEFF;", "  color: #000000;"}},
        // No match: the default style's black rows with an empty colour.
        {ResolveReportStyle(styles, "sea"),
         {"  color: #000000;", "  text-align: left;", "  font-family: tahoma;"},
         {"  background: #FFFFFF;", "  color: #000000;", "  text-align: center;",
          "  vertical-align: top;", "  border-top: 1px solid #FFFFFF;",
          "  border-bottom: 1px solid #FFFFFF;"},
         {"  background: #000000;", "  color: ;"}},
    };
    for (const Case& c : cases) {
        ReportInput in = MakeInput(MakeDoc());
        in.style = c.style;
        const Lines page = Build(in);
        const Lines h2 = Slice(page, "h2 {", "}");
        const Lines th = Slice(page, "table.TableRes th{", "}");
        const Lines even = Slice(page, "table.TableRes tr.even{", "}");
        ASSERT_EQ(h2.size(), 10u);
        ASSERT_EQ(th.size(), 10u);
        ASSERT_EQ(even.size(), 5u);
        EXPECT_EQ(Lines(h2.begin() + 1, h2.begin() + 4), c.h2) << c.style.sectionName;
        EXPECT_EQ(Lines(th.begin() + 3, th.begin() + 9), c.th) << c.style.sectionName;
        EXPECT_EQ(Lines(even.begin() + 2, even.begin() + 4), c.even) << c.style.sectionName;
    }
}

TEST(ReportPage, PresetClassesFromThePresetBits) {
    struct Case {
        int32_t mode;
        const char* modeText;
        const char* valueLabel;
        const char* valueCell;
    } cases[] = {
        {0, "Acquire Forever", "<td>Preset value :</td>", "<td>none</td>"},
        {1, "Acquire Forever", "<td>Preset value :</td>", "<td>none</td>"},
        {8, "Acquire Forever", "<td>Preset value :</td>", "<td>none</td>"},
        {2, "Real Time", "<td>Preset value (sec):</td>", "<td>100</td>"},
        {3, "Live Time", "<td>Preset value (sec):</td>", "<td>100</td>"},
        {4, "On counts between channels 100 and 200", "<td>Preset value (cnts):</td>",
         "<td>5000</td>"},
        {5, "On counts between channels 100 and 200", "<td>Preset value (cnts):</td>",
         "<td>5000</td>"},
        {6, "Time or Counts", "<td>Preset value (sec or counts):</td>",
         "<td>100 sec or 5000 counts </td>"},
        {7, "Time or Counts", "<td>Preset value (sec or counts):</td>",
         "<td>100 sec or 5000 counts </td>"},
    };
    for (const Case& c : cases) {
        SpectrumDocument& doc = MakeDoc();
        doc.lPresetMode = c.mode;
        const Lines rows = Slice(Build(MakeInput(doc)), "        <td>Preset mode:</td>",
                                 "        <td>Elapsed live time (sec):</td>");
        const Lines want = {"        <td>Preset mode:</td>",
                            std::string("        <td>") + c.modeText + "</td>",
                            "      </tr>",
                            "      <tr>",
                            std::string("        ") + c.valueLabel,
                            std::string("        ") + c.valueCell,
                            "      </tr>",
                            "      <tr>",
                            "        <td>Elapsed live time (sec):</td>"};
        EXPECT_EQ(rows, want) << "preset mode " << c.mode;
    }
}

// Values of single rows for records unlike the full case: the cell after `label`.
TEST(ReportPage, ValueCellsOfOtherRecords) {
    struct Case {
        std::function<void(SpectrumDocument&)> change;
        const char* label;
        const char* cell;
    } cases[] = {
        {[](auto& d) { d.sngRealTime = 0.0f; }, "<td>Dead time:</td>", "<td>0.00%</td>"},
        {[](auto& d) { d.sngRealTime = -1.0f; }, "<td>Dead time:</td>", "<td>0.00%</td>"},
        {[](auto& d) { d.sngLiveTime = 0.0f; }, "<td>Throughput (cps):</td>", "<td>0.0</td>"},
        {[](auto& d) { d.sngLiveTime = 1.0f / 3.0f; }, "<td>Elapsed live time (sec):</td>",
         "<td>0.3333333</td>"},
        {[](auto& d) { d.lMCSMode = 1; }, "<td width=\"30%\">MCA acquisition mode: </td>",
         "<td>MCS</td>"},
        {[](auto& d) { d.lPolarity = 1; }, "<td width=\"30%\">Input polarity:</td>",
         "<td>Negative</td>"},
        {[](auto& d) { d.lHVOn = 6; }, "<td>High Voltage (Volts):</td>", "<td>650.0 (OFF)</td>"},
        {[](auto& d) { d.lCoarseGain = 7; }, "<td>Coarse gain:</td>", "<td>128</td>"},
        {[](auto& d) { d.lCoarseGain = -1; }, "<td>Coarse gain:</td>", "<td>0.5</td>"},
        {[](auto& d) { d.lDigitalGain = 10; }, "<td>Digital gain:</td>", "<td>1024</td>"},
        {[](auto& d) { d.lClockHz = 0; }, "<td>Rise time (&mu;sec):</td>", "<td>2.00</td>"},
        {[](auto& d) { d.lClockHz = 100000000; }, "<td>Rise time (&mu;sec):</td>", "<td>0.50</td>"},
        {[](auto& d) { d.resetCalibration(); }, "<td width=\"30%\">Energy calibration:</td>",
         "<td>Not calibrated (using default values)</td>"},
        {[](auto& d) { d.resetCalibration(); },
         "<th>Quadratic term<br />(keV/chn<sup>2</sup>)</th>", "</tr>"},
    };
    for (const Case& c : cases) {
        SpectrumDocument& doc = MakeDoc();
        c.change(doc);
        const Lines page = Build(MakeInput(doc));
        auto at = std::find_if(page.begin(), page.end(),
                               [&](const std::string& line) { return line.ends_with(c.label); });
        ASSERT_NE(at, page.end()) << c.label;
        ASSERT_NE(at + 1, page.end());
        EXPECT_EQ(std::string(at[1].substr(at[1].find('<'))), c.cell) << c.label;
    }
    // The default coefficients themselves, in the row after the header.
    SpectrumDocument& doc = MakeDoc();
    doc.resetCalibration();
    const Lines cal = Slice(Build(MakeInput(doc)), "<table class=\"TableRes\">", "</table>");
    ASSERT_EQ(cal.size(), 12u);
    EXPECT_EQ(Lines(cal.begin() + 6, cal.begin() + 11),
              (Lines{"      <tr>", "        <td>0</td>", "        <td>2.5</td>",
                     "        <td>0</td>", "      </tr>"}));
}

TEST(ReportPage, SpectralTableHoldsChannelCountPlusOneRows) {
    for (int32_t channels : {0, 1, 1024, 16384}) {
        SpectrumDocument& doc = MakeDoc();
        doc.lChannels = channels;
        doc.lCounts[static_cast<std::size_t>(channels)] = 77;
        const Lines table = Slice(Build(MakeInput(doc)), "<h2>Spectral data</h2>", "</table>");
        const auto rows = std::count_if(table.begin(), table.end(), [](const std::string& l) {
            return l.starts_with("      <tr");
        });
        EXPECT_EQ(rows, channels + 2) << channels; // the header row and indices 0..N
        ASSERT_GE(table.size(), 6u);
        EXPECT_EQ(table[table.size() - 6],
                  channels % 2 == 0 ? "      <tr class=\"even\">" : "      <tr>");
        EXPECT_EQ(table[table.size() - 3], "          <td>77</td>") << channels;
    }
}

TEST(ReportPage, CalibrationThatOverflowsEndsTheBuild) {
    SpectrumDocument& doc = MakeDoc();
    doc.setCalibration({true, 0.0, 1.0, 1e308});
    EXPECT_THROW(BuildReport(MakeInput(doc)), FloatingPointError);
    test::TempDir dir;
    test::WriteBytes(dir / "print.html", "good");
    const ReportWriteResult r = WriteReport(MakeInput(doc), dir / "print.html");
    EXPECT_FALSE(r.ok);
    EXPECT_NE(r.error.find("cannot be shown"), std::string::npos) << r.error;
    EXPECT_EQ(test::ReadBytes(dir / "print.html"), "good");
}

TEST(ReportUrl, WindowsFolderRule) {
    EXPECT_EQ(ReportUrl("C:\\My Data"), "file:///C|/My%20Data/print.html");
    EXPECT_EQ(ReportUrl("D:\\a|b/c"), "file:///D|/a%7Cb%2Fc/print.html");
    EXPECT_EQ(ReportUrl("\\\\server\\share"), "file://///server/share/print.html");
    EXPECT_EQ(FileUrl("/tmp/My Data/print.html"), "file:///tmp/My%20Data/print.html");
    EXPECT_EQ(FileUrl("/a#b/%/\xC3\xA9.html"), "file:///a%23b/%25/%C3%A9.html");
}

TEST(ReportFile, WritesWindows1252AndKeepsTheOldFileOnFailure) {
    test::TempDir dir;
    const auto file = dir / "print.html";
    ASSERT_TRUE(WriteReportFile(file, "M\xC3\xBCller\r\n").ok);
    EXPECT_EQ(test::ReadBytes(file), "M\xFCller\r\n");
    // The temporary file cannot be made (a folder has its name): the old page stays.
    std::filesystem::create_directory(dir / ".print.html.tmp");
    ReportWriteResult r = WriteReportFile(file, "new\r\n");
    EXPECT_FALSE(r.ok);
    EXPECT_FALSE(r.error.empty());
    EXPECT_EQ(test::ReadBytes(file), "M\xFCller\r\n");
    // The rename fails (the target is a folder that holds a file): no temporary is left.
    const auto blocked = dir / "sub" / "print.html";
    std::filesystem::create_directories(blocked / "x");
    r = WriteReportFile(blocked, "new\r\n");
    EXPECT_FALSE(r.ok);
    EXPECT_FALSE(std::filesystem::exists(dir / "sub" / ".print.html.tmp"));
}
