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

namespace {

// Results of a successful run on Triangle(), to check that failures keep them.
void ExpectTriangleResults(const clsROI& roi) {
    EXPECT_EQ((std::array{roi.lInt(), roi.lBkgIntVal(), roi.lNET(), roi.lMax(), roi.sBkgVal()}),
              (std::array{450, 150, 300, 90, 12}));
    EXPECT_FLOAT_EQ(roi.sCentCh(), 105.0f);
    EXPECT_FLOAT_EQ(roi.sFWHMch(), 5.5f);
    EXPECT_FLOAT_EQ(roi.sFWHMen(), 15.0f);
}

clsROI AnalysedTriangle() {
    clsROI roi = MakeRoi(98, 110);
    EXPECT_TRUE(Compute(roi, Triangle(), 10.0f).ok);
    return roi;
}

} // namespace

// Flat background 100 with y(104) = y(105) = 150: the net height h is about 48, so the
// half level H = (h - 100)/2 + 100 = 74 lies below the background. The left search meets
// y(97) = 100 >= H at once and interpolates between y(96) and y(97), both 100: false.
// The earlier results stay; the edge energies are the new ones.
TEST(ComputeRoiFailure, FlatLeftCrossingKeepsResultsButNotEdgeEnergies) {
    clsROI roi = AnalysedTriangle();
    Outcome run = Compute(roi, Counts({{0, kUb - 1, 100}, {104, 105, 150}}), 10.0f, Cal(0, 1, 0));
    EXPECT_FALSE(run.ok);
    EXPECT_EQ(run.nBkgChn, 2);
    ExpectTriangleResults(roi);
    EXPECT_FLOAT_EQ(roi.sROILEn(), 98.0f);
    EXPECT_FLOAT_EQ(roi.sROIREn(), 110.0f);
}

// Two lobes around a dip: S = 270, W = 60x102 + 40x103 + 20x106 + 40x107 + 60x108 +
// 50x109 = 28570, c = 105.81 (k = 105); no background, h = 0.19 x 20 + 0.81 x 40 = 36.3,
// H = 18.1. Left: y(101) = 60 >= H, between y(100) = 0 and 60: fine. The right search
// starts at j = k = 105 with y(104) = 0 <= H between y(103) and y(104), both 0: false.
TEST(ComputeRoiFailure, FlatRightCrossingStoresNothing) {
    clsROI roi = MakeRoi(100, 110);
    EXPECT_FALSE(Compute(roi, Counts({}, 101, {60, 40, 0, 0, 20, 40, 60, 50}), 1.0f).ok);
    EXPECT_EQ(roi.lInt(), 0);
}

TEST(ComputeRoiFailure, RoiOutsideArrayStoresNothing) {
    const Spectrum s = Triangle();
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
        EXPECT_EQ(run.rates.sNetRate + run.rates.sBkgRate, 18.0f);
        EXPECT_EQ(roi.sROILEn() + roi.sROIREn(), 0.0f);
        EXPECT_EQ(roi.lInt(), 0);
    }
}

// Arithmetic faults and stray indexes are typed errors, never a read out of bounds.
TEST(ComputeRoiFailure, FaultsRaiseTheirError) {
    enum Kind { Overflow, Subscript, FloatingPoint };
    const struct {
        const char* name;
        Spectrum spectrum;
        int32_t L, R;
        float sTime;
        Kind kind;
        bool keepsResults; // the earlier results stay
    } cases[] = {
        // 3 x 2^30 does not fit 32 bits.
        {"IntegralOverflow", Counts({{100, 102, 1 << 30}}), 100, 102, 1.0f, Overflow, false},
        // Neighbours of 10^9: bL + bR = 2 x 10^9 still fits, 15 x 2 x 10^9 does not.
        {"BackgroundProduct", Counts({{96, 97, 1000000000}, {111, 112, 1000000000}}), 98, 110,
         10.0f, Overflow, true},
        // R = L - 1 passes the bounds check but gives n = 0, and B / n divides by zero.
        {"EmptyInterval", Triangle(), 100, 99, 10.0f, FloatingPoint, true},
        {"TinyMeasuringTime", Triangle(), 98, 110, 1e-44f, Overflow, false},
        // All counts in the spare slot: c = 16385 on the plus-one scale, so the
        // interpolation needs y(16385), past the array.
        {"InterpolationPastArray", Counts({{kUb, kUb, 100}}), 16380, kUb, 1.0f, Subscript, false},
        // Peak at channel 0 of an ROI starting at 0: the left search reaches j = 1 with
        // y(0) >= H and needs y(-1).
        {"LeftCrossingBeforeChannel0", Counts({}, 0, {100, 100, 10}), 0, 5, 1.0f, Subscript, false},
        // A background level of -1 enters the height: ROI 1..Ub-1 has no neighbour on
        // either side, h = y(k) + 1 = 1 and H = 0, so the left search takes j = 1
        // (y(0) = 0 >= 0) and needs y(-1).
        {"MinusOneBackground", Counts({{5000, 5000, 100}}), 1, kUb - 1, 1.0f, Subscript, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        clsROI roi = c.keepsResults ? AnalysedTriangle() : clsROI{};
        roi.set_lROILCh(c.L);
        roi.set_lROIRCh(c.R);
        Outcome run;
        auto analyse = [&] {
            run.ok = roi.bComputeROI(c.sTime, run.nBkgChn, c.spectrum.y.data(), c.spectrum.y.size(),
                                     Cal(0, 1, 0), run.rates);
        };
        if (c.kind == Overflow)
            EXPECT_THROW(analyse(), OverflowError);
        else if (c.kind == Subscript)
            EXPECT_THROW(analyse(), SubscriptError);
        else
            EXPECT_THROW(analyse(), FloatingPointError);
        EXPECT_EQ(run.nBkgChn, 2);
        if (c.keepsResults) {
            ExpectTriangleResults(roi);
            EXPECT_FLOAT_EQ(roi.sROILEn(), c.L); // the edge energies are the new ones
        } else {
            EXPECT_EQ(roi.lInt(), 0);
        }
    }
    // On an array longer than 16-bit channel numbers reach, the channel counter overflows.
    std::vector<int32_t> y(40000, 1);
    clsROI roi = MakeRoi(33000, 33010);
    int16_t nBkgChn = 0;
    RoiRates rates;
    EXPECT_THROW(
        roi.bComputeROI(1.0f, nBkgChn, y.data(), y.size(), EnergyCalibration::Default(), rates),
        OverflowError);
}

// BkgAtPosition's own rules: sums divided by m always, channel 0 never on the left,
// right neighbours strictly below Ub, -1 when the two positions coincide.
TEST(BkgAtPosition, Rules) {
    const struct {
        const char* name;
        Spectrum spectrum;
        int32_t L, R;
        int16_t m;
        float x;
        double level;
    } cases[] = {
        // YL = 15 at 98.5, YR = 40 at 111.5: 15 + 6.5 x 25/13. With m = 1: 20 at 99,
        // 30 at 111: 20 + 6 x 10/12.
        {"BothSides", Counts({{111, 111, 30}, {112, 112, 50}}, 98, {10, 20}), 100, 110, 2, 105.0f,
         27.5},
        {"OneNeighbour", Counts({{111, 111, 30}, {112, 112, 50}}, 98, {10, 20}), 100, 110, 1,
         105.0f, 25.0},
        // L = 2: only channel 1, still halved: YL = 4 at 0.5; YR = 6 at 11.5: 4 + 5.5 x 2/11.
        {"L2HalvesChannel1", Counts({{1, 1, 8}, {11, 12, 6}}), 2, 10, 2, 6.0f, 5.0},
        // L = 1: no left neighbour, YL = XL = 0: 5.75 x 6/11.5.
        {"L1NoLeft", Counts({{11, 12, 6}}), 1, 10, 2, 5.75f, 3.0},
        // m = 3, L = 2: YL = 8/3 at 1/3, YR = 6 at 12: 8/3 + (17/3)(10/3)/(35/3) = 90/21.
        {"ThreeDividedByThree", Counts({{1, 1, 8}, {11, 13, 6}}), 2, 10, 3, 6.0f, 90.0 / 21},
        // R = Ub - 2: only Ub - 1 counts: YR = 6 at 8191.5; YL = 4 at 16378.5.
        {"RightOnlyUbMinus1", Counts({{16378, 16379, 4}, {kUb - 1, kUb - 1, 12}}), 16380, kUb - 2,
         2, 16381.0f, 4.0 + 2.5 * 2.0 / (8191.5 - 16378.5)},
        // R = Ub - 1: no right neighbour: YL = 10 at 98.5, YR = XR = 0: 10 - 49.25 x 10/98.5.
        {"NoRight", Counts({{98, 99, 10}}), 100, kUb - 1, 2, 49.25f, 5.0},
        {"NoNeighboursAtAll", Counts({}), 1, kUb - 1, 2, 50.0f, -1.0},
        {"WholeArray", Counts({}), 0, kUb, 2, 50.0f, -1.0}};
    for (auto c : cases) {
        c.spectrum.y[0] = 1000;   // channel 0 never counts on the left
        c.spectrum.y[kUb] = 1000; // nor Ub on the right
        EXPECT_NEAR(BkgAtPosition(c.L, c.R, c.m, c.x, c.spectrum.y.data(), c.spectrum.y.size()),
                    c.level, 1e-5)
            << c.name;
    }
}
