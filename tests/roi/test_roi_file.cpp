// ROI files: byte-exact writer, reader through the INI class, round trip and bad input.
#include <gtest/gtest.h>

#include <filesystem>

#include "TestSupport.h"
#include "roi/RoiFile.h"

using namespace vexo;
using vexo::test::ReadBytes;
using vexo::test::TempDir;
using vexo::test::WriteBytes;

namespace {

const std::string kBanner = "'''**********************************\r\n"
                            "'''******   Vexo ROI file   *********\r\n"
                            "'''**********************************\r\n"
                            "'''Note: Use . as decimal separator**\r\n"
                            "'''**********************************\r\n";

clsROI Roi(const std::string& id, int32_t L, int32_t R, float lEn, float rEn, int32_t color) {
    clsROI roi;
    roi.set_vntID(id);
    roi.set_lROILCh(L);
    roi.set_lROIRCh(R);
    roi.set_sROILEn(lEn);
    roi.set_sROIREn(rEn);
    roi.set_lROIColor(color);
    return roi;
}

RoiCollection TwoRois() {
    RoiCollection c;
    clsROI cs = Roi("Cs-137", 262, 268, 655.004f, 670.5f, 65280);
    cs.set_nROIinPlot(3);
    cs.set_szIdNuc("Cs137");
    c.add(cs);
    c.add(Roi("", 0, 16384, -1.5f, 40960.0f, 255));
    return c;
}

} // namespace

TEST(RoiFileWriter, ByteExactSections) {
    TempDir dir;
    ASSERT_TRUE(WriteRoiFile(dir / "none.roi", RoiCollection{}));
    EXPECT_EQ(ReadBytes(dir / "none.roi"), kBanner);
    ASSERT_TRUE(WriteRoiFile(dir / "two.roi", TwoRois()));
    EXPECT_EQ(ReadBytes(dir / "two.roi"), kBanner + "[ROI1]\r\n"
                                                    "RoiID=Cs-137\r\n"
                                                    "RoiNoInPlot=3\r\n"
                                                    "RoiNoInCol=1\r\n"
                                                    "RoiColor=65280\r\n"
                                                    "RoiLeftCh=262\r\n"
                                                    "RoiRightCh=268\r\n"
                                                    "RoiLEn=655.00\r\n"
                                                    "RoiREn=670.50\r\n"
                                                    "RoiIdNuc=Cs137\r\n"
                                                    "[ROI2]\r\n"
                                                    "RoiID=\r\n"
                                                    "RoiNoInPlot=0\r\n"
                                                    "RoiNoInCol=2\r\n"
                                                    "RoiColor=255\r\n"
                                                    "RoiLeftCh=0\r\n"
                                                    "RoiRightCh=16384\r\n"
                                                    "RoiLEn=-1.50\r\n"
                                                    "RoiREn=40960.00\r\n"
                                                    "RoiIdNuc=\r\n");
}

TEST(RoiFileWriter, IdentifiersInWindows1252AndFreshFileEachTime) {
    TempDir dir;
    const auto path = dir / "id.roi";
    ASSERT_TRUE(WriteRoiFile(path, TwoRois()));
    RoiCollection one;
    one.add(Roi("\xC2\xB5-peak", 1, 2, 0, 0, 0)); // "µ" in UTF-8
    ASSERT_TRUE(WriteRoiFile(path, one));
    const std::string bytes = ReadBytes(path);
    EXPECT_NE(bytes.find("RoiID=\xB5-peak\r\n"), std::string::npos);
    EXPECT_EQ(bytes.find("[ROI2]"), std::string::npos); // nothing left of the longer file
}

TEST(RoiFileWriter, UnwritablePathFailsWithReason) {
    TempDir dir;
    std::string error;
    EXPECT_FALSE(WriteRoiFile(dir / "missing" / "x.roi", TwoRois(), &error));
    EXPECT_FALSE(error.empty());
}

TEST(RoiFileRoundTrip, KeepsBoundsEnergiesColoursLosesNuclideAndPlotNumber) {
    TempDir dir;
    const auto path = dir / "rt.roi";
    ASSERT_TRUE(WriteRoiFile(path, TwoRois()));
    RoiFileContents read = ReadRoiFile(path);
    ASSERT_TRUE(read.ok);
    ASSERT_EQ(read.rois.size(), 2u);
    const clsROI& a = read.rois[0];
    EXPECT_EQ(a.vntID(), "Cs-137");
    EXPECT_EQ(a.lROILCh(), 262);
    EXPECT_EQ(a.lROIRCh(), 268);
    EXPECT_EQ(a.sROILEn(), 655.0f); // two decimals survive, 655.004 does not
    EXPECT_EQ(a.sROIREn(), 670.5f);
    EXPECT_EQ(a.lROIColor(), 65280);
    EXPECT_EQ(a.szIdNuc(), "");
    EXPECT_EQ(a.nROIinPlot(), 0);
    const clsROI& b = read.rois[1];
    EXPECT_EQ(b.vntID(), "");
    EXPECT_EQ(b.lROILCh(), 0);
    EXPECT_EQ(b.lROIRCh(), 16384);
    EXPECT_EQ(b.sROILEn(), -1.5f);
    EXPECT_EQ(b.sROIREn(), 40960.0f);
    EXPECT_EQ(b.lROIColor(), 255);
}

TEST(RoiFileReader, MissingFileFailsAndSectionsWithoutKeysGiveDefaults) {
    TempDir dir;
    EXPECT_FALSE(ReadRoiFile(dir / "absent.roi").ok);
    EXPECT_FALSE(ReadRoiFile(dir.path()).ok); // a folder is not a file
    WriteBytes(dir / "b.roi", kBanner);
    RoiFileContents read = ReadRoiFile(dir / "b.roi");
    EXPECT_TRUE(read.ok);
    EXPECT_TRUE(read.rois.empty());
    WriteBytes(dir / "d.roi", kBanner + "[ROI1]\r\n[whatever]\r\n");
    read = ReadRoiFile(dir / "d.roi");
    ASSERT_TRUE(read.ok);
    ASSERT_EQ(read.rois.size(), 2u);
    for (const clsROI& roi : read.rois) {
        EXPECT_EQ(roi.vntID(), "");
        EXPECT_EQ((std::array{roi.lROILCh(), roi.lROIRCh(), roi.lROIColor()}),
                  (std::array{1, 1, 255}));
        EXPECT_EQ(roi.sROILEn() + roi.sROIREn(), 0.0f);
    }
}

// Hand-edited files: any section names in file order, LF line ends, blanks around values,
// energies taken from the number they begin with.
TEST(RoiFileReader, HandEditedFile) {
    TempDir dir;
    WriteBytes(dir / "h.roi", "; notes\n"
                              "[Zeta]\n"
                              "RoiID = peak one \n"
                              "RoiLEn=12,50\n"
                              "RoiREn=abc\n"
                              "RoiLeftCh=x7\n"
                              "RoiRightCh=15.9\n"
                              "[ROI9]\n"
                              "roileftch=100\n"
                              "RoiLEn= 1.5e2keV\n"
                              "RoiREn=1e40\n"
                              "RoiColor=16711680\n");
    RoiFileContents read = ReadRoiFile(dir / "h.roi");
    ASSERT_TRUE(read.ok);
    ASSERT_EQ(read.rois.size(), 2u);
    const clsROI& z = read.rois[0];
    EXPECT_EQ(z.vntID(), "peak one");
    EXPECT_EQ(z.sROILEn(), 12.0f); // a comma ends the number
    EXPECT_EQ(z.sROIREn(), 0.0f);  // no number at the start
    EXPECT_EQ(z.lROILCh(), 0);     // present but not a number
    EXPECT_EQ(z.lROIRCh(), 15);    // the integer reader stops at the point
    const clsROI& n = read.rois[1];
    EXPECT_EQ(n.lROILCh(), 100); // key names match without regard to case
    EXPECT_EQ(n.sROILEn(), 150.0f);
    EXPECT_EQ(n.sROIREn(), 0.0f); // beyond float range
    EXPECT_EQ(n.lROIColor(), 16711680);
}
