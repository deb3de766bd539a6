// ROI files: byte-exact writer, reader through the INI class, round trip and bad input.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

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

// What a file keeps of each ROI: "id L-R lEn-rEn colour nuclide plot;".
std::string Fields(const std::vector<clsROI>& rois) {
    std::ostringstream s;
    for (const clsROI& r : rois)
        s << r.vntID() << " " << r.lROILCh() << "-" << r.lROIRCh() << " " << r.sROILEn() << "-"
          << r.sROIREn() << " " << r.lROIColor() << " " << r.szIdNuc() << " " << r.nROIinPlot()
          << ";";
    return s.str();
}

std::vector<clsROI> Read(const std::filesystem::path& file) {
    RoiFileContents read = ReadRoiFile(file);
    EXPECT_TRUE(read.ok) << file;
    return read.rois;
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
    // Read back: bounds, energies (two decimals) and colours; the nuclide and the plot
    // number are not read.
    EXPECT_EQ(Fields(Read(dir / "two.roi")), "Cs-137 262-268 655-670.5 65280  0; 0-16384 "
                                             "-1.5-40960 255  0;");
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
    std::string error;
    EXPECT_FALSE(WriteRoiFile(dir / "missing" / "x.roi", TwoRois(), &error));
    EXPECT_FALSE(error.empty());
}

TEST(RoiFileReader, DefaultsBadFilesAndHandEditedValues) {
    TempDir dir;
    EXPECT_FALSE(ReadRoiFile(dir / "absent.roi").ok);
    EXPECT_FALSE(ReadRoiFile(dir.path()).ok); // a folder is not a file
    WriteBytes(dir / "b.roi", kBanner + "[ROI1]\r\n[whatever]\r\n");
    EXPECT_EQ(Fields(Read(dir / "b.roi")), " 1-1 0-0 255  0; 1-1 0-0 255  0;");
    // Any section names in file order, LF line ends, blanks around values; a comma or a
    // point ends a number, text or a number beyond the float range reads 0, and key names
    // match without regard to case.
    WriteBytes(dir / "h.roi", "; notes\n[Zeta]\nRoiID = peak one \nRoiLEn=12,50\nRoiREn=abc\n"
                              "RoiLeftCh=x7\nRoiRightCh=15.9\n[ROI9]\nroileftch=100\n"
                              "RoiLEn= 1.5e2keV\nRoiREn=1e40\nRoiColor=16711680\n");
    EXPECT_EQ(Fields(Read(dir / "h.roi")), "peak one 0-15 12-0 255  0; 100-1 150-0 16711680  0;");
}
