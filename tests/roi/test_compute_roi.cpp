// ROI analysis on synthetic spectra whose results are worked out by hand in the comments.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "roi/clsROI.h"
#include "shell/VexoError.h"

using namespace vexo;

namespace {

constexpr int32_t kUb = 16384; // upper bound of the 16,385-slot counts array

struct Spectrum {
    std::vector<int32_t> y = std::vector<int32_t>(kUb + 1, 0);
    void fill(int32_t first, int32_t last, int32_t value) {
        for (int32_t i = first; i <= last; ++i)
            y[i] = value;
    }
};

struct Outcome {
    bool ok = false;
    int16_t nBkgChn = 0;
    RoiRates rates;
};

clsROI MakeRoi(int32_t L, int32_t R) {
    clsROI roi;
    roi.set_lROILCh(L);
    roi.set_lROIRCh(R);
    return roi;
}

Outcome Compute(clsROI& roi, const Spectrum& s, float sTime,
            const EnergyCalibration& cal = EnergyCalibration::Default()) {
    Outcome run;
    run.ok = roi.bComputeROI(sTime, run.nBkgChn, s.y.data(), s.y.size(), cal, run.rates);
    return run;
}

EnergyCalibration Slope(double slope) {
    EnergyCalibration cal;
    cal.dSlope = slope;
    return cal;
}

// Background 10 on channels 0..200; a triangle on top with apex 90 at channel 104:
// y(100..108) = 10 30 50 70 90 70 50 30 10.
Spectrum Triangle() {
    Spectrum s;
    s.fill(0, 200, 10);
    const int32_t peak[] = {10, 30, 50, 70, 90, 70, 50, 30, 10};
    for (int i = 0; i < 9; ++i)
        s.y[100 + i] = peak[i];
    return s;
}

} // namespace

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
        LevelCase{"EndAtUb", [](Spectrum& s) { s.fill(16370, kUb - 1, 8); }, 16380, kUb, 32, 28,
                  4, 5.6f, 6},
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
        LevelCase{"BkgPerChannel2_5ReadsAs2", [](Spectrum& s) { s.fill(0, 200, 2); }, 100, 107,
                  16, 20, 0, 2.5f, 2},
        // n = 12, bL = bR = 3: B = 14 x 6 / 2 = 42, b1 = 3.5 reads 4.
        LevelCase{"BkgPerChannel3_5ReadsAs4", [](Spectrum& s) { s.fill(0, 200, 3); }, 100, 111,
                  36, 42, 0, 3.5f, 4},
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

// Results of a successful run on Triangle(), to check that failures keep them.
void ExpectTriangleResults(const clsROI& roi) {
    EXPECT_EQ(roi.lInt(), 450);
    EXPECT_EQ(roi.lBkgIntVal(), 150);
    EXPECT_EQ(roi.lNET(), 300);
    EXPECT_EQ(roi.lMax(), 90);
    EXPECT_EQ(roi.nChnMax(), 104);
    EXPECT_EQ(roi.sBkgVal(), 12);
    EXPECT_FLOAT_EQ(roi.sCentCh(), 105.0f);
    EXPECT_FLOAT_EQ(roi.sCentEn(), 262.5f);
    EXPECT_FLOAT_EQ(roi.sCentInt(), 60.0f);
    EXPECT_FLOAT_EQ(roi.sFWHMch(), 5.5f);
    EXPECT_FLOAT_EQ(roi.sFWHMen(), 15.0f);
    EXPECT_FLOAT_EQ(roi.sFWHMp(), static_cast<float>(100.0 * 15.0 / 262.5));
}

// Flat background 100 with y(104) = y(105) = 150: the net height h is about 48, so the
// half level H = (h - 100)/2 + 100 = 74 lies below the background. The left search meets
// y(97) = 100 >= H at once and interpolates between y(96) and y(97), both 100: false.
TEST(ComputeRoi, FlatLeftCrossingFailsKeepingResultsButNotEdgeEnergies) {
    Spectrum triangle = Triangle();
    clsROI roi = MakeRoi(98, 110);
    ASSERT_TRUE(Compute(roi, triangle, 10.0f).ok);

    Spectrum flat;
    flat.fill(0, kUb - 1, 100);
    flat.y[104] = 150;
    flat.y[105] = 150;
    Outcome run = Compute(roi, flat, 10.0f, Slope(1.0));
    EXPECT_FALSE(run.ok);
    EXPECT_EQ(run.nBkgChn, 2);
    ExpectTriangleResults(roi);
    EXPECT_FLOAT_EQ(roi.sROILEn(), 98.0f);
    EXPECT_FLOAT_EQ(roi.sROIREn(), 110.0f);
}

// Two lobes around a dip. The right search starts at j = k = 105 with y(104) = 0 <= H and
// interpolates between y(103) and y(104), both 0: false.
TEST(ComputeRoi, FlatRightCrossingFails) {
    Spectrum s;
    s.y[101] = 60;
    s.y[102] = 40;
    s.y[105] = 20;
    s.y[106] = 40;
    s.y[107] = 60;
    s.y[108] = 50;
    // S = 270, W = 60x102 + 40x103 + 20x106 + 40x107 + 60x108 + 50x109 = 28570,
    // c = 105.81 (k = 105); no background, h = 0.19 x 20 + 0.81 x 40 = 36.3, H = 18.1.
    // Left: y(101) = 60 >= H, between y(100) = 0 and 60: fine.
    clsROI roi = MakeRoi(100, 110);
    EXPECT_FALSE(Compute(roi, s, 1.0f).ok);
    EXPECT_EQ(roi.lInt(), 0); // nothing stored
}

TEST(ComputeRoi, RoiOutsideArrayStoresNothing) {
    Spectrum s = Triangle();
    for (auto [L, R] : {std::pair{-1, 10}, std::pair{100, kUb + 1}, std::pair{-5, kUb + 7}}) {
        clsROI roi = MakeRoi(L, R);
        Outcome run;
        run.rates = {9.0f, 9.0f, 9.0f};
        run.ok = roi.bComputeROI(1.0f, run.nBkgChn, s.y.data(), s.y.size(),
                                 EnergyCalibration::Default(), run.rates);
        EXPECT_FALSE(run.ok);
        EXPECT_EQ(run.nBkgChn, 2);
        // Only the integral rate is cleared on entry; the other two are handed out at the end.
        EXPECT_EQ(run.rates.sIntRate, 0.0f);
        EXPECT_EQ(run.rates.sNetRate, 9.0f);
        EXPECT_EQ(run.rates.sBkgRate, 9.0f);
        EXPECT_EQ(roi.sROILEn(), 0.0f);
        EXPECT_EQ(roi.sROIREn(), 0.0f);
        EXPECT_EQ(roi.lInt(), 0);
    }
}

TEST(ComputeRoi, IntegralOverflowRaisesBeforeEdgeEnergies) {
    Spectrum s;
    s.fill(100, 102, 1 << 30); // 3 x 2^30 does not fit 32 bits
    clsROI roi = MakeRoi(100, 102);
    Outcome run;
    EXPECT_THROW(roi.bComputeROI(1.0f, run.nBkgChn, s.y.data(), s.y.size(),
                                 EnergyCalibration::Default(), run.rates),
                 OverflowError);
    EXPECT_EQ(run.nBkgChn, 2);
    EXPECT_EQ(roi.sROILEn(), 0.0f);
}

// Neighbours of 10^9: bL + bR = 2 x 10^9 still fits, but 15 x 2 x 10^9 does not.
TEST(ComputeRoi, BackgroundProductOverflowKeepsResultsButNotEdgeEnergies) {
    Spectrum triangle = Triangle();
    clsROI roi = MakeRoi(98, 110);
    ASSERT_TRUE(Compute(roi, triangle, 10.0f).ok);
    Spectrum s;
    s.fill(96, 97, 1000000000);
    s.fill(111, 112, 1000000000);
    EXPECT_THROW(Compute(roi, s, 10.0f, Slope(1.0)), OverflowError);
    ExpectTriangleResults(roi);
    EXPECT_FLOAT_EQ(roi.sROILEn(), 98.0f);
}

// R = L - 1 passes the bounds check but gives n = 0, and B / n divides by zero.
TEST(ComputeRoi, EmptyInterval_DivisionByZeroIsFloatingPointError) {
    Spectrum triangle = Triangle();
    clsROI roi = MakeRoi(98, 110);
    ASSERT_TRUE(Compute(roi, triangle, 10.0f).ok);
    roi.set_lROILCh(100);
    roi.set_lROIRCh(99);
    EXPECT_THROW(Compute(roi, triangle, 10.0f), FloatingPointError);
    roi.set_lROILCh(98);
    roi.set_lROIRCh(110);
    ExpectTriangleResults(roi);
}

TEST(ComputeRoi, TinyMeasuringTimeOverflowsTheRate) {
    Spectrum s = Triangle();
    clsROI roi = MakeRoi(98, 110);
    EXPECT_THROW(Compute(roi, s, 1e-44f), OverflowError);
}

// All counts in the spare slot: c = 16385 on the plus-one scale, so the interpolation
// needs y(16385), past the array: a subscript error, not a read out of bounds.
TEST(ComputeRoi, InterpolationPastArrayIsSubscriptError) {
    Spectrum s;
    s.y[kUb] = 100;
    clsROI roi = MakeRoi(16380, kUb);
    EXPECT_THROW(Compute(roi, s, 1.0f), SubscriptError);
}

// Peak at channel 0 of an ROI starting at 0: the left search reaches j = 1 with
// y(0) >= H and needs y(-1).
TEST(ComputeRoi, LeftCrossingBeforeChannel0IsSubscriptError) {
    Spectrum s;
    s.y[0] = 100;
    s.y[1] = 100;
    s.y[2] = 10;
    clsROI roi = MakeRoi(0, 5);
    EXPECT_THROW(Compute(roi, s, 1.0f), SubscriptError);
}

// On an array longer than 16-bit channel numbers reach, the 16-bit channel counter
// overflows.
TEST(ComputeRoi, ChannelBeyond16BitsOverflows) {
    std::vector<int32_t> y(40000, 1);
    clsROI roi = MakeRoi(33000, 33010);
    int16_t nBkgChn = 0;
    RoiRates rates;
    EXPECT_THROW(roi.bComputeROI(1.0f, nBkgChn, y.data(), y.size(), EnergyCalibration::Default(),
                                 rates),
                 OverflowError);
}

// BkgAtPosition's own rules: sums divided by m always, channel 0 never on the left,
// right neighbours strictly below Ub, -1 for coinciding positions.
struct BkgCase {
    const char* name;
    int32_t L, R;
    float x;
    float expected;
};

class BkgAtPositionRules : public ::testing::TestWithParam<BkgCase> {};

TEST_P(BkgAtPositionRules, Level) {
    Spectrum s;
    s.fill(0, kUb, 20);
    s.y[0] = 1000; // would show if channel 0 were used
    s.y[kUb] = 1000; // would show if Ub were used
    const BkgCase& c = GetParam();
    EXPECT_FLOAT_EQ(BkgAtPosition(c.L, c.R, 2, c.x, s.y.data(), s.y.size()), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Quirks, BkgAtPositionRules,
    ::testing::Values(
        // Both sides: YL = YR = 20 -> flat 20.
        BkgCase{"BothSides", 100, 110, 105.0f, 20.0f},
        // L = 1: no left neighbour (0 is skipped); YL = XL = 0, YR = 20 at XR = 11.5:
        // 0 + 5 x 20 / 11.5.
        BkgCase{"NoLeftNeighbours", 1, 10, 5.0f, 100.0f / 11.5f},
        // L = 2: only channel 1; YL = 20/2 = 10 at XL = 0.5; YR = 20 at XR = 11.5:
        // 10 + (6.5 - 0.5) x 10 / 11.
        BkgCase{"OneLeftNeighbourHalved", 2, 10, 6.5f, 10.0f + 60.0f / 11.0f},
        // L = 1, R = Ub - 1: no neighbours at all -> XR - XL = 0 -> -1.
        BkgCase{"NoNeighboursGivesMinusOne", 1, kUb - 1, 50.0f, -1.0f}),
    [](const ::testing::TestParamInfo<BkgCase>& info) { return std::string(info.param.name); });

TEST(BkgAtPosition, RightSideWithOneNeighbourIsHalved) {
    Spectrum s;
    s.fill(0, kUb, 20);
    // L = 100: YL = 20 at XL = 98.5. R = Ub - 2: only Ub - 1 counts: YR = 10 at XR = 8191.5.
    const double slope = (10.0 - 20.0) / (8191.5 - 98.5);
    const float at = 4000.0f;
    EXPECT_NEAR(BkgAtPosition(100, kUb - 2, 2, at, s.y.data(), s.y.size()),
                20.0 + (at - 98.5) * slope, 1e-5);
}

TEST(ClsRoi, WidthsReadAsZeroUnlessPositive) {
    // ROI 100..109 of a spectrum whose right side never falls to the half level: xR stays
    // 0, F = -xL is stored negative and every width reads 0.
    Spectrum s;
    s.fill(0, 99, 10);
    s.fill(106, 200, 60);
    s.y[104] = 100;
    s.y[105] = 90;
    clsROI roi = MakeRoi(100, 109);
    ASSERT_TRUE(Compute(roi, s, 1.0f).ok);
    EXPECT_EQ(roi.sFWHMch(), 0.0f);
    EXPECT_EQ(roi.sFWHMen(), 0.0f);
    EXPECT_EQ(roi.sFWHMp(), 0.0f);
    EXPECT_GT(roi.sCentInt(), 0.0f);
}
