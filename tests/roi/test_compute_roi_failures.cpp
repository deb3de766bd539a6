// ROI analysis failures: refusals, arithmetic faults and stray indexes, and the rules of
// the background line. Expected values are worked out by hand in the comments.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "RoiTestSpectra.h"
#include "base/VexoError.h"
#include "roi/clsROI.h"

using namespace vexo;
using namespace vexo::test;

// Results of a successful run on Triangle(), to check that failures keep them.
static void ExpectTriangleResults(const clsROI& roi) {
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
    EXPECT_THROW(
        roi.bComputeROI(1.0f, nBkgChn, y.data(), y.size(), EnergyCalibration::Default(), rates),
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
    s.y[0] = 1000;   // would show if channel 0 were used
    s.y[kUb] = 1000; // would show if Ub were used
    const BkgCase& c = GetParam();
    EXPECT_FLOAT_EQ(BkgAtPosition(c.L, c.R, 2, c.x, s.y.data(), s.y.size()), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Quirks, BkgAtPositionRules,
                         ::testing::Values(
                             // Both sides: YL = YR = 20 -> flat 20.
                             BkgCase{"BothSides", 100, 110, 105.0f, 20.0f},
                             // L = 1: no left neighbour (0 is skipped); YL = XL = 0, YR = 20 at XR
                             // = 11.5: 0 + 5 x 20 / 11.5.
                             BkgCase{"NoLeftNeighbours", 1, 10, 5.0f, 100.0f / 11.5f},
                             // L = 2: only channel 1; YL = 20/2 = 10 at XL = 0.5; YR = 20 at XR
                             // = 11.5: 10 + (6.5 - 0.5) x 10 / 11.
                             BkgCase{"OneLeftNeighbourHalved", 2, 10, 6.5f, 10.0f + 60.0f / 11.0f},
                             // L = 1, R = Ub - 1: no neighbours at all -> XR - XL = 0 -> -1.
                             BkgCase{"NoNeighboursGivesMinusOne", 1, kUb - 1, 50.0f, -1.0f}),
                         [](const ::testing::TestParamInfo<BkgCase>& info) {
                             return std::string(info.param.name);
                         });

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
