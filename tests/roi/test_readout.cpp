// The main window's ROI read-out and the rows of the ROI results list.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "roi/RoiReadout.h"

using namespace vexo;

namespace {

// Background 10 on 0..200 and a triangle y(100..108) = 10 30 50 70 90 70 50 30 10, every
// count multiplied by `scale`. ROI 98..110 then has S = 450, B = 150, N = 300 (times
// `scale`), centroid 105, h = 60 x scale, FWHM 5.5 channels = 15 keV at 262.5 keV.
std::unique_ptr<SpectrumDocument> TriangleDocument(int32_t scale) {
    auto doc = std::make_unique<SpectrumDocument>();
    for (int i = 0; i <= 200; ++i)
        doc->lCounts[i] = 10 * scale;
    const int32_t peak[] = {10, 30, 50, 70, 90, 70, 50, 30, 10};
    for (int i = 0; i < 9; ++i)
        doc->lCounts[100 + i] = peak[i] * scale;
    return doc;
}

clsROI Roi98To110() {
    clsROI roi;
    roi.set_vntID("Pb-214");
    roi.set_szIdNuc("Pb214");
    roi.set_lROILCh(98);
    roi.set_lROIRCh(110);
    return roi;
}

} // namespace

TEST(UpdateCompRoi, FormatsAreaAndRatesByMagnitude) {
    const struct {
        int32_t scale;
        float sTime;
        const char *netArea, *integral, *netRate, *intRate;
    } cases[] = {{1, 10.0f, "300.00", "450.00", "30.0 CPS", "45.0 CPS"},
                 {100, 3.0f, "30000.0", "45000.0", "10000.0 CPS", "15000.0 CPS"},
                 {1000, 7.0f, "3.00E+5", "4.50E+5", "42857.1 CPS", "64285.7 CPS"},
                 {1, 0.0f, "300.00", "450.00", "0.0 CPS", "0.0 CPS"}};
    for (const auto& c : cases) {
        auto doc = TriangleDocument(c.scale);
        clsROI roi = Roi98To110();
        RoiReadout r = UpdateCompROI(roi, c.sTime, *doc);
        ASSERT_TRUE(r.ok);
        EXPECT_EQ(r.error, "");
        EXPECT_EQ(r.netArea + " " + r.integral + " " + r.netRate + " " + r.intRate,
                  std::string(c.netArea) + " " + c.integral + " " + c.netRate + " " + c.intRate);
    }
}

TEST(UpdateCompRoi, FalseAnalysisGivesNoTextsAndNoError) {
    auto doc = std::make_unique<SpectrumDocument>();
    // Flat 100 with a small bump: the half level falls below the background and the left
    // crossing is flat.
    for (int i = 0; i < 16384; ++i)
        doc->lCounts[i] = 100;
    doc->lCounts[104] = doc->lCounts[105] = 150;
    clsROI roi = Roi98To110();
    RoiReadout r = UpdateCompROI(roi, 1.0f, *doc);
    EXPECT_FALSE(r.ok);
    EXPECT_EQ(r.error, "");
    EXPECT_EQ(r.netArea, "");
    EXPECT_EQ(r.netRate, "");
}

TEST(UpdateCompRoi, ArithmeticFaultsBecomeErrorText) {
    // Counts beyond 32 bits together; the centroid past the last slot; no channel at all
    // (the background per channel divides by 0).
    const struct {
        int32_t first, last, L, R;
        const char* error;
    } cases[] = {{100, 101, 98, 110, "Overflow"},
                 {16384, 16384, 16380, 16384, "Subscript out of range"},
                 {0, -1, 100, 99, "Division by zero"}};
    for (const auto& c : cases) {
        auto doc = std::make_unique<SpectrumDocument>();
        for (int32_t i = c.first; i <= c.last; ++i)
            doc->lCounts[i] = c.first == 16384 ? 5 : 2000000000;
        clsROI roi = Roi98To110();
        roi.set_lROILCh(c.L);
        roi.set_lROIRCh(c.R);
        RoiReadout r = UpdateCompROI(roi, 1.0f, *doc);
        EXPECT_FALSE(r.ok);
        EXPECT_EQ(r.error, c.error);
    }
}

TEST(EditRoiRows, ThirteenRowsAfterAnalysis) {
    auto doc = TriangleDocument(1);
    clsROI roi = Roi98To110();
    ASSERT_TRUE(UpdateCompROI(roi, 10.0f, *doc).ok);
    const std::vector<EditRoiRow> expected = {
        {"ROI ID", "Pb-214", ""},
        {"Integral", "450", "21.21"},            // sqrt(450)
        {"Total background", "150", "12.25"},    // sqrt(150)
        {"Background per channel", "12.00", ""}, // 150/13 = 11.54 reads as 12
        {"Net area", "300", "24.49"},            // sqrt(450 + 150)
        {"Centroid", "105.00", ""},
        {"Centroid in energy", "262.50", ""},
        {"Estimated net intensity", "60.00", ""},
        {"Maximum counts in channels", "90", ""},
        {"FWHM in channels", "5.50", ""},
        {"FWHM in energy", "15.00", ""},
        {"FWHM in percentage", "5.71%", ""}, // 100 x 15 / 262.5
        {"Associate nuclide", "Pb214", ""},
    };
    const std::vector<EditRoiRow> rows = EditROIRows(roi);
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].category, expected[i].category) << i;
        EXPECT_EQ(rows[i].value, expected[i].value) << expected[i].category;
        EXPECT_EQ(rows[i].uncertainty, expected[i].uncertainty) << expected[i].category;
    }
}

TEST(EditRoiRows, FreshRoiShowsZeros) {
    clsROI roi;
    const std::vector<EditRoiRow> rows = EditROIRows(roi);
    ASSERT_EQ(rows.size(), 13u);
    EXPECT_EQ(rows[0].value, "");
    EXPECT_EQ(rows[1].value, "0");
    EXPECT_EQ(rows[1].uncertainty, "0.00");
    EXPECT_EQ(rows[3].value, "0.00");
    EXPECT_EQ(rows[11].value, "0.00%");
    EXPECT_EQ(rows[12].value, "");
}
