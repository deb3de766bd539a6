// vexo-cli report as a user runs it: the page and picture it writes, the settings it
// honours, the ROI figures it reports, the PDF, and its refusals.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "PdfInfo.h"
#include "TestSupport.h"

namespace vexo {
namespace {

using test::Cli;
using test::CliRun;
using test::TempDir;

std::string SmallFull() {
    return (test::TestDataDir() / "spectrum" / "small_full.spe").string();
}

// Lines of a CR LF file.
std::vector<std::string> FileLines(const std::filesystem::path& file) {
    std::vector<std::string> lines;
    const std::string text = test::ReadBytes(file);
    for (std::size_t start = 0, end; (end = text.find("\r\n", start)) != std::string::npos;
         start = end + 2)
        lines.push_back(text.substr(start, end - start));
    return lines;
}

// The cell lines of the first ROI row: the lines after "<td>1</td>", trimmed.
std::vector<std::string> RoiRow(const std::vector<std::string>& page) {
    auto at = std::find(page.begin(), page.end(), "        <td>1</td>");
    std::vector<std::string> cells;
    for (; at != page.end() && at->starts_with("        <td>"); ++at)
        cells.push_back(at->substr(8));
    return cells;
}

// Width and height from a PNG's header; {0, 0} when the file is no PNG.
std::pair<int, int> PngSize(const std::filesystem::path& file) {
    const std::string b = test::ReadBytes(file);
    if (b.size() < 24 || b.compare(0, 8, "\x89PNG\r\n\x1A\n") != 0 || b.compare(12, 4, "IHDR"))
        return {0, 0};
    auto be32 = [&](std::size_t at) {
        return (static_cast<unsigned char>(b[at]) << 24) |
               (static_cast<unsigned char>(b[at + 1]) << 16) |
               (static_cast<unsigned char>(b[at + 2]) << 8) | static_cast<unsigned char>(b[at + 3]);
    };
    return {be32(16), be32(20)};
}

TEST(CliReport, WritesPageAndPictureWithTheFolderSettings) {
    TempDir app;
    test::WriteBytes(app / "Vexo.ini", "[REPORT]\r\nSpctSect=0\r\nRepStyle=Sea\r\n");
    test::WriteBytes(app / "RepStyles.ini", "[Sea]\r\nCS_RowBack=#DDEEFF\r\n");
    CliRun run = Cli(
        {"report", SmallFull(), "--appdir", app.path().string(), "--roi", "2:8", "--time", "50"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, (app / "print.html").string() + "\n");
    const std::vector<std::string> page = FileLines(app / "print.html");
    ASSERT_FALSE(page.empty());
    EXPECT_EQ(page.back(), "</html>");
    EXPECT_EQ(std::count(page.begin(), page.end(), "<h2>Spectral data</h2>"), 0);
    EXPECT_EQ(std::count(page.begin(), page.end(), "  background: #DDEEFF;"), 1);
    // A file's record: its serial, no firmware texts, the high voltage off.
    EXPECT_EQ(std::count(page.begin(), page.end(), "        <td>0042</td></tr>"), 1);
    EXPECT_EQ(std::count(page.begin(), page.end(), "        <td></td></tr>"), 3);
    EXPECT_EQ(std::count(page.begin(), page.end(), "        <td>700.0 (OFF)</td>"), 1);

    // The ROI row carries what `vexo-cli roi` reports for the same ROI and time.
    CliRun roi = Cli({"roi", SmallFull(), "--roi", "2:8", "--time", "50", "--json"});
    ASSERT_EQ(roi.exitCode, 0) << roi.err;
    const auto r = nlohmann::json::parse(roi.out)[0];
    const std::vector<std::string> cells = RoiRow(page);
    ASSERT_EQ(cells.size(), 12u);
    EXPECT_EQ(cells[1], "<td>2 - 8</td>");
    EXPECT_EQ(cells[4], "<td>" + std::to_string(r["lInt"].get<int>()) + "</td>");
    EXPECT_EQ(cells[5], "<td>" + std::to_string(r["lBkgIntVal"].get<int>()) + "</td>");
    EXPECT_EQ(cells[6], "<td>" + std::to_string(r["lNET"].get<int>()) + "</td>");
    EXPECT_EQ(cells[8], "<td>" + std::to_string(r["lMax"].get<int>()) + "</td>");
    EXPECT_NE(r["lInt"].get<int>(), 0);

    const auto [width, height] = PngSize(app / "spect.png");
    EXPECT_GE(width, 1000);
    EXPECT_GE(height, 600);
}

TEST(CliReport, OutAndPdf) {
    TempDir app, out;
    const std::string page = (out / "r.html").string(), pdf = (out / "r.pdf").string();
    CliRun run =
        Cli({"report", SmallFull(), "--appdir", app.path().string(), "--out", page, "--pdf", pdf});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, page + "\n" + pdf + "\n");
    EXPECT_TRUE(std::filesystem::exists(out / "spect.png"));
    EXPECT_FALSE(std::filesystem::exists(app / "print.html"));
    EXPECT_GE(test::PdfPages(pdf), 2); // the picture starts a page of its own
}

TEST(CliReport, RefusalsLeaveAGoodPageAlone) {
    TempDir app;
    const std::string dir = app.path().string();
    EXPECT_EQ(Cli({"report"}).exitCode, 2);
    EXPECT_EQ(Cli({"report", SmallFull()}).exitCode, 2); // no --appdir
    EXPECT_EQ(Cli({"report", SmallFull(), "--appdir", dir, "--roi", "7"}).exitCode, 2);
    EXPECT_EQ(Cli({"report", SmallFull(), "--appdir", dir, "--frobnicate"}).exitCode, 2);

    struct Case {
        std::vector<std::string> args;
        const char* says;
    } cases[] = {
        {{"report", (app / "missing.spe").string(), "--appdir", dir}, "missing.spe"},
        {{"report", SmallFull(), "--appdir", (app / "nowhere").string()}, "nowhere"},
        {{"report", SmallFull(), "--appdir", dir, "--out", (app / "no" / "p.html").string()},
         "spect.png"},
        // The page's temporary file cannot be made: the good page stays as it was.
        {{"report", SmallFull(), "--appdir", dir}, "print.html"},
    };
    test::WriteBytes(app / "print.html", "good page");
    std::filesystem::create_directory(app / ".print.html.tmp");
    for (const Case& c : cases) {
        CliRun run = Cli(c.args);
        EXPECT_EQ(run.exitCode, 1) << c.says;
        EXPECT_NE(run.err.find(c.says), std::string::npos) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_TRUE(run.out.empty());
    }
    EXPECT_EQ(test::ReadBytes(app / "print.html"), "good page");
}

} // namespace
} // namespace vexo
