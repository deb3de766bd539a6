// ROI analysis on synthetic spectra whose results are worked out by hand in the comments.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "RoiTestSpectra.h"
#include "roi/clsROI.h"

using namespace vexo;
using namespace vexo::test;

// ROI 98..110 on Triangle(), default calibration (2.5 keV per channel), 10 s:
//   S = 13 x 10 + (20+40+60+80+60+40+20) = 450; symmetric about channel 104, so on the
//   plus-one scale c = 105 exactly. M = 90 at channel 104. n = 13.
//   bL = bR = 10; B = round(15 x 20 / 2) = 150 (15 channels, not 13); N = 300;
//   b1 = 150/13 = 11.54 -> reads 12. Rates: 45, 30, 15 cps.
//   bc: neighbours 96,97 and 111,112 all 10 -> 10. k = 105, f = 0: h = y(105) - 10 = 60.
//   H = (60 - 10)/2 + 10 = 35. Left: first y(j-1) >= 35 is y(102) = 50 -> between 101 (30)
//   and 102: xL = 101 + 5/20 = 101.25. Right: first y(j-1) <= 35 from j = 105 is y(107)=30
//   -> between 106 (50) and 107: xR = 106 + (35-50)/(30-50) = 106.75. F = 5.5.
//   Energy width: round(107.75) = 108, round(102.25) = 102 -> 6 channels = 15 keV.
//   Centroid energy E(105) = 262.5; FWHM% = 100 x 15 / 262.5.
TEST(ComputeRoi, TriangularPeakOnFlatBackground) {
    Spectrum s = Triangle();
    clsROI roi = MakeRoi(98, 110);
    Outcome run = Compute(roi, s, 10.0f);
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(run.nBkgChn, 2);
    EXPECT_EQ(roi.lInt(), 450);
    EXPECT_EQ(roi.lMax(), 90);
    EXPECT_EQ(roi.nChnMax(), 104);
    EXPECT_EQ(roi.lBkgIntVal(), 150);
    EXPECT_EQ(roi.lNET(), 300);
    EXPECT_FLOAT_EQ(roi.sBkgValStored(), 150.0f / 13.0f);
    EXPECT_EQ(roi.sBkgVal(), 12);
    EXPECT_FLOAT_EQ(roi.sCentCh(), 105.0f);
    EXPECT_FLOAT_EQ(roi.sCentInt(), 60.0f);
    EXPECT_FLOAT_EQ(roi.sFWHMch(), 5.5f);
    EXPECT_FLOAT_EQ(roi.sFWHMen(), 15.0f);
    EXPECT_FLOAT_EQ(roi.sCentEn(), 262.5f);
    EXPECT_FLOAT_EQ(roi.sFWHMp(), static_cast<float>(100.0 * 15.0 / 262.5));
    EXPECT_FLOAT_EQ(roi.sROILEn(), 245.0f);
    EXPECT_FLOAT_EQ(roi.sROIREn(), 275.0f);
    EXPECT_FLOAT_EQ(run.rates.sIntRate, 45.0f);
    EXPECT_FLOAT_EQ(run.rates.sNetRate, 30.0f);
    EXPECT_FLOAT_EQ(run.rates.sBkgRate, 15.0f);
}

// Background 10 left of the ROI and 20 right of it; ROI 100..109 holds
// 10 12 20 60 100 80 40 22 21 20.
//   S = 385, W = sum y(i)(i+1) = 40659, c = 40659/385 = 105.6077922, held as the float
//   105.6077957 (the next steps use that value; h moves by 40 counts per channel of c).
//   bL = 10, bR = 20, B = round(12 x 30 / 2) = 180, N = 205, b1 = 18.
//   bc: YL = 10 at XL = 98.5, YR = 20 at XR = 110.5:
//       bc = 10 + (c - 98.5) x 10/12 = 15.923163.
//   bc is a float: 15.923163. k = 105, f = 0.6077957:
//   h = (1-f)(80 - bc) + f(40 - bc) = 39.765008.
//   H = (h - bc)/2 + bc = 27.844086.
//   Left: y(103) = 60 is the first >= H -> xL = 102 + (H - 20)/40 = 102.196102.
//   Right: y(107) = 22 is the first <= H -> xR = 106 + (H - 40)/(22 - 40) = 106.675329.
//   F = 4.479226; round(c + F/2 = 107.847) = 108, round(c - F/2 = 103.368) = 103:
//   5 channels = 12.5 keV. Centroid energy E(106) = 265; FWHM% = 1250/265.
TEST(ComputeRoi, SkewedPeakOnSlopedBackground) {
    Spectrum s;
    s.fill(0, 99, 10);
    s.fill(110, 199, 20);
    const int32_t peak[] = {10, 12, 20, 60, 100, 80, 40, 22, 21, 20};
    for (int i = 0; i < 10; ++i)
        s.y[100 + i] = peak[i];
    clsROI roi = MakeRoi(100, 109);
    Outcome run = Compute(roi, s, 0.5f);
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(roi.lInt(), 385);
    EXPECT_EQ(roi.lBkgIntVal(), 180);
    EXPECT_EQ(roi.lNET(), 205);
    EXPECT_EQ(roi.sBkgVal(), 18);
    EXPECT_FLOAT_EQ(roi.sCentCh(), static_cast<float>(40659.0 / 385.0));
    EXPECT_FLOAT_EQ(roi.sCentInt(), 39.765008f);
    EXPECT_FLOAT_EQ(roi.sFWHMch(), 4.479226f);
    EXPECT_FLOAT_EQ(roi.sFWHMen(), 12.5f);
    EXPECT_FLOAT_EQ(roi.sCentEn(), 265.0f);
    EXPECT_FLOAT_EQ(roi.sFWHMp(), static_cast<float>(1250.0 / 265.0));
    EXPECT_FLOAT_EQ(run.rates.sIntRate, 770.0f);
    EXPECT_FLOAT_EQ(run.rates.sNetRate, 410.0f);
    EXPECT_FLOAT_EQ(run.rates.sBkgRate, 360.0f);
}

// y(102..106) = 0 40 100 40 0 on a zero background: c = 105, h = y(105) = 40, H = 20,
// xL = 102 + 20/40 = 102.5, xR = 105 + (20-40)/(0-40) = 105.5, F = 3. The energy width
// spans round(106.5) = 106 and round(103.5) = 104 (both halves go to the even channel):
// 2 channels = 5 keV, where rounding halves up would give 3 channels.
TEST(ComputeRoi, HalfChannelWidthRoundsToEvenChannels) {
    Spectrum s;
    s.y[103] = 40;
    s.y[104] = 100;
    s.y[105] = 40;
    clsROI roi = MakeRoi(100, 108);
    ASSERT_TRUE(Compute(roi, s, 1.0f).ok);
    EXPECT_FLOAT_EQ(roi.sCentCh(), 105.0f);
    EXPECT_FLOAT_EQ(roi.sCentInt(), 40.0f);
    EXPECT_FLOAT_EQ(roi.sFWHMch(), 3.0f);
    EXPECT_FLOAT_EQ(roi.sFWHMen(), 5.0f);
    EXPECT_FLOAT_EQ(roi.sCentEn(), 262.5f);
}

TEST(ComputeRoi, AllZeroCountsGiveZeroResults) {
    Spectrum s;
    clsROI roi = MakeRoi(100, 120);
    Outcome run = Compute(roi, s, 10.0f);
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(roi.lInt(), 0);
    EXPECT_EQ(roi.lMax(), 0);
    EXPECT_EQ(roi.nChnMax(), 0);
    EXPECT_EQ(roi.lNET(), 0);
    EXPECT_EQ(roi.lBkgIntVal(), 0);
    EXPECT_EQ(roi.sCentCh(), 0.0f);
    EXPECT_EQ(roi.sCentInt(), 0.0f);
    EXPECT_EQ(roi.sFWHMch(), 0.0f);
    EXPECT_EQ(roi.sFWHMen(), 0.0f);
    EXPECT_EQ(roi.sFWHMp(), 0.0f);
    EXPECT_EQ(run.rates.sIntRate, 0.0f);
}

TEST(ComputeRoi, MaximumTieKeepsLowestChannel) {
    Spectrum s;
    s.y[103] = 50;
    s.y[106] = 50;
    s.y[104] = 20;
    s.y[105] = 20;
    clsROI roi = MakeRoi(100, 110);
    Compute(roi, s, 1.0f);
    EXPECT_EQ(roi.lMax(), 50);
    EXPECT_EQ(roi.nChnMax(), 103);
}

// Background levels at the array edges and the rounding of B and b1, table-driven.
struct LevelCase {
    const char* name;
    std::function<void(Spectrum&)> setup;
    int32_t L, R;
    int32_t S, B, N;
    float b1; // stored background per channel
    int32_t b1Read;
};

class BackgroundLevels : public ::testing::TestWithParam<LevelCase> {};

TEST_P(BackgroundLevels, IntegralBackgroundAndNet) {
    const LevelCase& c = GetParam();
    Spectrum s;
    c.setup(s);
    clsROI roi = MakeRoi(c.L, c.R);
    ASSERT_TRUE(Compute(roi, s, 1.0f).ok);
    EXPECT_EQ(roi.lInt(), c.S);
    EXPECT_EQ(roi.lBkgIntVal(), c.B);
    EXPECT_EQ(roi.lNET(), c.N);
    EXPECT_FLOAT_EQ(roi.sBkgValStored(), c.b1);
    EXPECT_EQ(roi.sBkgVal(), c.b1Read);
}

INSTANTIATE_TEST_SUITE_P(
    EdgesAndRounding, BackgroundLevels,
    ::testing::Values(
        // L = 0: bL = 0; bR = 51; B = round(13 x 51 / 2 = 331.5) = 332 (ties to even).
        // The high right side keeps the interpolated height at 0, so no width search runs
        // into channel -1.
        LevelCase{"StartAtChannel0",
                  [](Spectrum& s) {
                      s.fill(0, 10, 5);
                      s.fill(11, 12, 51);
                  },
                  0, 10, 55, 332, 0, 332.0f / 11, 30},
        // L = 1: bL = y(0) = 7 alone, bR = 50; B = 12 x 57 / 2 = 342 > S = 50, so N = 0.
        LevelCase{"StartAtChannel1",
                  [](Spectrum& s) {
                      s.fill(1, 10, 5);
                      s.fill(11, 12, 50);
                      s.y[0] = 7;
                  },
                  1, 10, 50, 342, 0, 34.2f, 34},
        // R = Ub: bR = 0; bL = 8; B = 7 x 8 / 2 = 28; S = 4 x 8 (the spare slot is 0).
        LevelCase{"EndAtUb", [](Spectrum& s) { s.fill(16370, kUb - 1, 8); }, 16380, kUb, 32, 28, 4,
                  5.6f, 6},
        // R = Ub - 1: bR = y(Ub) = 9 alone; bL = 8; B = round(7 x 17 / 2 = 59.5) = 60.
        LevelCase{"EndAtUbMinus1",
                  [](Spectrum& s) {
                      s.fill(16370, kUb - 1, 8);
                      s.y[kUb] = 9;
                  },
                  16379, kUb - 1, 40, 60, 0, 12.0f, 12},
        // Neighbours 100, ROI empty: B = 7 x 200 / 2 = 700 > S = 0, N = 0.
        LevelCase{"BackgroundAboveIntegral",
                  [](Spectrum& s) {
                      s.fill(98, 99, 100);
                      s.fill(105, 106, 100);
                  },
                  100, 104, 0, 700, 0, 140.0f, 140},
        // n = 8, bL = bR = 2: B = 10 x 4 / 2 = 20, b1 = 2.5 reads 2.
        LevelCase{"BkgPerChannel2_5ReadsAs2", [](Spectrum& s) { s.fill(0, 200, 2); }, 100, 107, 16,
                  20, 0, 2.5f, 2},
        // n = 12, bL = bR = 3: B = 14 x 6 / 2 = 42, b1 = 3.5 reads 4.
        LevelCase{"BkgPerChannel3_5ReadsAs4", [](Spectrum& s) { s.fill(0, 200, 3); }, 100, 111, 36,
                  42, 0, 3.5f, 4},
        // Left mean (11 + 12)/2 = 11.5 -> 12; right mean (13 + 14)/2 = 13.5 -> 14;
        // B = 13 x 26 / 2 = 169.
        LevelCase{"SideMeansRoundToEven",
                  [](Spectrum& s) {
                      s.y[48] = 11;
                      s.y[49] = 12;
                      s.y[61] = 13;
                      s.y[62] = 14;
                  },
                  50, 60, 0, 169, 0, 169.0f / 11, 15}),
    [](const ::testing::TestParamInfo<LevelCase>& info) { return std::string(info.param.name); });

TEST(ComputeRoi, BackgroundAboveIntegralStillGivesBackgroundRate) {
    Spectrum s;
    s.fill(98, 99, 100);
    s.fill(105, 106, 100);
    clsROI roi = MakeRoi(100, 104);
    Outcome run = Compute(roi, s, 2.0f);
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(run.rates.sIntRate, 0.0f);
    EXPECT_EQ(run.rates.sNetRate, 0.0f);
    EXPECT_FLOAT_EQ(run.rates.sBkgRate, 350.0f);
}

TEST(ComputeRoi, NoMeasuringTimeGivesZeroRatesOnly) {
    for (float sTime : {0.0f, -5.0f}) {
        Spectrum s = Triangle();
        clsROI roi = MakeRoi(98, 110);
        Outcome run = Compute(roi, s, sTime);
        ASSERT_TRUE(run.ok);
        EXPECT_EQ(run.rates.sIntRate, 0.0f);
        EXPECT_EQ(run.rates.sNetRate, 0.0f);
        EXPECT_EQ(run.rates.sBkgRate, 0.0f);
        EXPECT_EQ(roi.lNET(), 300);
        EXPECT_FLOAT_EQ(roi.sFWHMch(), 5.5f);
    }
}
