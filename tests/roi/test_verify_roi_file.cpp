// ROI files checked against a hand-written file text.
#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "roi/RoiCollection.h"
#include "roi/RoiFile.h"

namespace vexo {
namespace {

using test::TempDir;

const char* const kBanner = "'''**********************************\r\n"
                            "'''******   Vexo ROI file   *********\r\n"
                            "'''**********************************\r\n"
                            "'''Note: Use . as decimal separator**\r\n"
                            "'''**********************************\r\n";

TEST(VerifyRoiFile, BannerLinesAre37Characters) {
    std::string banner = kBanner;
    for (std::size_t start = 0; start < banner.size();) {
        std::size_t end = banner.find("\r\n", start);
        EXPECT_EQ(end - start, 37u) << banner.substr(start, end - start);
        start = end + 2;
    }
}

TEST(VerifyRoiFile, WrittenFileByteForByte) {
    RoiCollection rois;
    clsROI a;
    a.set_vntID("Cs 137");
    a.set_nROIinPlot(0);
    a.set_lROIColor(65280);
    a.set_lROILCh(250);
    a.set_lROIRCh(290);
    a.set_sROILEn(645.5f);
    a.set_sROIREn(678.125f);
    a.set_szIdNuc("Cs-137");
    rois.add(a);
    clsROI b;
    b.set_nROIinPlot(3);
    b.set_lROIColor(255);
    b.set_lROILCh(1);
    b.set_lROIRCh(1);
    b.set_sROILEn(0.0f);
    b.set_sROIREn(-2.004f);
    rois.add(b);

    TempDir dir;
    ASSERT_TRUE(WriteRoiFile(dir / "r.roi", rois));
    const std::string expected = std::string(kBanner) + "[ROI1]\r\n"
                                                        "RoiID=Cs 137\r\n"
                                                        "RoiNoInPlot=0\r\n"
                                                        "RoiNoInCol=1\r\n"
                                                        "RoiColor=65280\r\n"
                                                        "RoiLeftCh=250\r\n"
                                                        "RoiRightCh=290\r\n"
                                                        "RoiLEn=645.50\r\n"
                                                        "RoiREn=678.13\r\n"
                                                        "RoiIdNuc=Cs-137\r\n"
                                                        "[ROI2]\r\n"
                                                        "RoiID=\r\n"
                                                        "RoiNoInPlot=3\r\n"
                                                        "RoiNoInCol=2\r\n"
                                                        "RoiColor=255\r\n"
                                                        "RoiLeftCh=1\r\n"
                                                        "RoiRightCh=1\r\n"
                                                        "RoiLEn=0.00\r\n"
                                                        "RoiREn=-2.00\r\n"
                                                        "RoiIdNuc=\r\n";
    EXPECT_EQ(test::ReadBytes(dir / "r.roi"), expected);

    RoiFileContents back = ReadRoiFile(dir / "r.roi");
    ASSERT_TRUE(back.ok);
    ASSERT_EQ(back.rois.size(), 2u);
    EXPECT_EQ(back.rois[0].vntID(), "Cs 137");
    EXPECT_EQ(back.rois[0].lROIColor(), 65280);
    EXPECT_EQ(back.rois[0].sROIREn(), 678.13f);
    EXPECT_EQ(back.rois[0].szIdNuc(), "");   // not read
    EXPECT_EQ(back.rois[1].nROIinPlot(), 0); // not read

    ASSERT_TRUE(WriteRoiFile(dir / "none.roi", RoiCollection{}));
    EXPECT_EQ(test::ReadBytes(dir / "none.roi"), kBanner);
}

TEST(VerifyRoiFile, ReadingDefaultsAndHandEditedValues) {
    TempDir dir;
    test::WriteBytes(dir / "h.roi", std::string(kBanner) +
                                        "[Bare]\r\n"
                                        "[anything]\r\n"
                                        "roiid=Peak\r\nRoiLEn=12,50\r\nRoiREn=abc\r\n"
                                        "RoiLeftCh=7\r\nRoiRightCh=9\r\nRoiColor=16711680\r\n");
    RoiFileContents r = ReadRoiFile(dir / "h.roi");
    ASSERT_TRUE(r.ok);
    ASSERT_EQ(r.rois.size(), 2u);
    EXPECT_EQ(r.rois[0].vntID(), "");
    EXPECT_EQ(r.rois[0].lROILCh(), 1);
    EXPECT_EQ(r.rois[0].lROIRCh(), 1);
    EXPECT_EQ(r.rois[0].lROIColor(), 255);
    EXPECT_EQ(r.rois[1].vntID(), "Peak");
    EXPECT_EQ(r.rois[1].sROILEn(), 12.0f);
    EXPECT_EQ(r.rois[1].sROIREn(), 0.0f);
    EXPECT_EQ(r.rois[1].lROILCh(), 7);
    EXPECT_EQ(r.rois[1].lROIColor(), 16711680);
    EXPECT_FALSE(ReadRoiFile(dir / "missing.roi").ok);
}

} // namespace
} // namespace vexo
