// ROI analysis, background line and read-out format on small spectra whose every result
// is worked out by hand in the comments (default calibration, 2.5 keV per channel, unless
// a case says otherwise).
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "RoiTestSpectra.h"
#include "base/NumberText.h"
#include "base/VexoError.h"
#include "roi/clsROI.h"

using namespace vexo;
using namespace vexo::test;

namespace {

struct AnalysisCase {
    const char* name;
    std::function<void(Spectrum&)> setup;
    int32_t L, R;
    float sTime;
    EnergyCalibration cal;
    // Expected results.
    int32_t S, M, chnMax, B, N, bkgRead;
    double b1, c, h, F, fwhmEn, centEn, fwhmP, lEn, rEn;
    float intRate, netRate, bkgRate;
};

EnergyCalibration Quad(double o, double s, double q) {
    EnergyCalibration c;
    c.dOffset = o;
    c.dSlope = s;
    c.dQuad = q;
    return c;
}

class VerifyAnalysis : public ::testing::TestWithParam<AnalysisCase> {};

TEST_P(VerifyAnalysis, Results) {
    const AnalysisCase& e = GetParam();
    Spectrum s;
    e.setup(s);
    clsROI roi = MakeRoi(e.L, e.R);
    Outcome run = Compute(roi, s, e.sTime, e.cal);
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(run.nBkgChn, 2);
    EXPECT_EQ(roi.lInt(), e.S);
    EXPECT_EQ(roi.lMax(), e.M);
    EXPECT_EQ(roi.nChnMax(), e.chnMax);
    EXPECT_EQ(roi.lBkgIntVal(), e.B);
    EXPECT_EQ(roi.lNET(), e.N);
    EXPECT_EQ(roi.sBkgVal(), e.bkgRead);
    EXPECT_NEAR(roi.sBkgValStored(), e.b1, 1e-5);
    EXPECT_NEAR(roi.sCentCh(), e.c, 1e-3);
    EXPECT_NEAR(roi.sCentInt(), e.h, 1e-4);
    EXPECT_NEAR(roi.sFWHMch(), e.F, 1e-4);
    EXPECT_NEAR(roi.sFWHMen(), e.fwhmEn, 1e-3);
    EXPECT_NEAR(roi.sCentEn(), e.centEn, 1e-3);
    EXPECT_NEAR(roi.sFWHMp(), e.fwhmP, 1e-4);
    EXPECT_NEAR(roi.sROILEn(), e.lEn, 1e-3);
    EXPECT_NEAR(roi.sROIREn(), e.rEn, 1e-3);
    EXPECT_FLOAT_EQ(run.rates.sIntRate, e.intRate);
    EXPECT_FLOAT_EQ(run.rates.sNetRate, e.netRate);
    EXPECT_FLOAT_EQ(run.rates.sBkgRate, e.bkgRate);
}

INSTANTIATE_TEST_SUITE_P(
    HandWorked, VerifyAnalysis,
    ::testing::Values(
        // y(10..16) = 0 10 30 20 0 0 0, nothing else. S = 60, W = 10x12 + 30x13 + 20x14 = 790,
        // c = 13.1667 on the plus-one scale, so k = 13 and the interpolation uses y(13) = 20 and
        // y(14) = 0: h = (1 - 1/6) x 20 = 16.6667, H = 8.3333 (bc = 0). Left: y(11) = 10 is the
        // first >= H -> xL = 10 + H/10 = 10.8333. Right from j = 13: y(14) = 0 -> xR = 13 +
        // (H - 20)/(0 - 20) = 13.5833. F = 2.75; round(14.54) = 15, round(11.79) = 12.
        // E = 1 + 2 ch + 0.01 ch^2: E(15) - E(12) = 33.25 - 26.44 = 6.81; E(13) = 28.69;
        // E(10) = 22, E(16) = 35.56. Rates over 4 s: 15, 15, 0.
        AnalysisCase{"PlusOneScaleInterpolation",
                     [](Spectrum& s) {
                         s.y[11] = 10;
                         s.y[12] = 30;
                         s.y[13] = 20;
                     },
                     10,
                     16,
                     4.0f,
                     Quad(1, 2, 0.01),
                     60,
                     30,
                     12,
                     0,
                     60,
                     0,
                     0.0,
                     790.0 / 60,
                     50.0 / 3,
                     2.75,
                     6.81,
                     28.69,
                     681.0 / 28.69,
                     22.0,
                     35.56,
                     15.0f,
                     15.0f,
                     0.0f},
        // y(11) = y(12) = 10. S = 20, W = 120 + 130 = 250, c = 12.5: f = 0.5, h = (10 + 0)/2 = 5,
        // H = 2.5. xL = 10 + 2.5/10 = 10.25; right: y(13) = 0 first -> xR = 12 + 7.5/10 = 12.75.
        // F = 2.5; round(13.75) = 14, round(11.25) = 11: 7.5 keV. Centroid energy at
        // round(12.5) = 12 (ties to even): 30 keV. sTime 0: no rates.
        AnalysisCase{"CentroidEnergyTiesToEven",
                     [](Spectrum& s) {
                         s.y[11] = 10;
                         s.y[12] = 10;
                     },
                     8,
                     15,
                     0.0f,
                     EnergyCalibration::Default(),
                     20,
                     10,
                     11,
                     0,
                     20,
                     0,
                     0.0,
                     12.5,
                     5.0,
                     2.5,
                     7.5,
                     30.0,
                     25.0,
                     20.0,
                     37.5,
                     0.0f,
                     0.0f,
                     0.0f},
        // y(0) = 5, ROI 1..7 = 0 10 40 30 0 0 0, y(8) = y(9) = 10. S = 80, W = 30 + 160 + 150
        // = 340, c = 4.25. bL = y(0) = 5, bR = 10: B = round(9 x 15 / 2 = 67.5) = 68, N = 12,
        // b1 = 68/7 (reads 10). Background line: channel 0 does not count on the left, so
        // YL = XL = 0, YR = 10 at XR = 8.5: bc = 4.25 x 10 / 8.5 = 5. k = 4, f = 0.25:
        // h = 0.75 x (30 - 5) + 0.25 x (0 - 5) = 17.5, H = 12.5/2 + 5 = 11.25.
        // Left: y(2) = 10 < H, y(3) = 40 >= H -> xL = 2 + 1.25/30; right: y(5) = 0 ->
        // xR = 4 + 18.75/30 = 4.625. F = 2.58333; round(5.54) = 6, round(2.96) = 3: 7.5 keV.
        // Centroid energy E(4) = 10; FWHM 75 %. Rates over 2 s: 40, 6, 34.
        AnalysisCase{"RoiFromChannel1",
                     [](Spectrum& s) {
                         s.y[0] = 5;
                         s.y[2] = 10;
                         s.y[3] = 40;
                         s.y[4] = 30;
                         s.y[8] = 10;
                         s.y[9] = 10;
                     },
                     1,
                     7,
                     2.0f,
                     EnergyCalibration::Default(),
                     80,
                     40,
                     3,
                     68,
                     12,
                     10,
                     68.0 / 7,
                     4.25,
                     17.5,
                     4.625 - (2.0 + 1.25 / 30),
                     7.5,
                     10.0,
                     75.0,
                     2.5,
                     17.5,
                     40.0f,
                     6.0f,
                     34.0f},
        // ROI 0..8 = 0 0 0 20 40 20 0 0 0. c = (80 + 200 + 120)/80 = 5, bc = 0, h = y(5) = 20,
        // H = 10. The left search skips j = 0 (it would need y(-1)); j = 4 finds y(3) = 20 ->
        // xL = 2.5; right: y(6) = 0 -> xR = 5.5. F = 3 exactly: round(6.5) = 6 and round(3.5)
        // = 4, 2 channels = 5 keV. bL = 0 (L = 0), bR = 0.
        AnalysisCase{"RoiFromChannel0HalfChannelTies",
                     [](Spectrum& s) {
                         s.y[3] = 20;
                         s.y[4] = 40;
                         s.y[5] = 20;
                     },
                     0,
                     8,
                     1.0f,
                     EnergyCalibration::Default(),
                     80,
                     40,
                     4,
                     0,
                     80,
                     0,
                     0.0,
                     5.0,
                     20.0,
                     3.0,
                     5.0,
                     12.5,
                     40.0,
                     0.0,
                     20.0,
                     80.0f,
                     80.0f,
                     0.0f},
        // Near the top: y(16368..16369) = 8, y(16376) = y(16377) = 100, y(Ub) = 6, ROI
        // 16370..16383 (= Ub - 1). c = 16377.5, f = 0.5. The right neighbours 16384 and 16385
        // are not below Ub, so YR = XR = 0: bc = 8 + 9 x (0 - 8)/(0 - 16368.5) = 8.0043987 and
        // h = 50 - bc = 41.9956; H = 25. xL = 16375 + 25/100, xR = 16377 + 75/100, F = 2.5;
        // round(16378.75) = 16379, round(16376.25) = 16376: 7.5 keV; centroid energy at
        // round(16377.5) = 16378: 40945 keV. bL = 8, bR = y(Ub) = 6: B = 16 x 14 / 2 = 112.
        AnalysisCase{"RoiEndingBeforeUb",
                     [](Spectrum& s) {
                         s.y[16368] = 8;
                         s.y[16369] = 8;
                         s.y[16376] = 100;
                         s.y[16377] = 100;
                         s.y[kUb] = 6;
                     },
                     16370,
                     kUb - 1,
                     1.0f,
                     EnergyCalibration::Default(),
                     200,
                     100,
                     16376,
                     112,
                     88,
                     8,
                     8.0,
                     16377.5,
                     50.0 - 8.0 * 16377.5 / 16368.5,
                     2.5,
                     7.5,
                     40945.0,
                     750.0 / 40945.0,
                     40925.0,
                     40957.5,
                     200.0f,
                     88.0f,
                     112.0f},
        // ROI 16378..Ub = 0 20 40 40 40 0 0. S = 140, W = 20 x 16380 + 40 x (16381 + 16382 +
        // 16383) = 2293440, c = 16381.714, bc = 0, h = 40, H = 20. xL = 16378 + 20/20. The
        // right search skips j = Ub, so y(16383) = 0 is never looked at: xR stays 0 and the
        // negative width reads 0 in channels, energy and percent. E(16382) = 40955.
        AnalysisCase{"RightSearchSkipsUb",
                     [](Spectrum& s) {
                         s.y[16379] = 20;
                         s.y[16380] = 40;
                         s.y[16381] = 40;
                         s.y[16382] = 40;
                     },
                     16378,
                     kUb,
                     1.0f,
                     EnergyCalibration::Default(),
                     140,
                     40,
                     16380,
                     0,
                     140,
                     0,
                     0.0,
                     2293440.0 / 140,
                     40.0,
                     0.0,
                     0.0,
                     40955.0,
                     0.0,
                     40945.0,
                     40960.0,
                     140.0f,
                     140.0f,
                     0.0f}),
    [](const auto& info) { return std::string(info.param.name); });

// After a refusal the previous results stay, the edge energies are new and only the
// integral rate is cleared.
TEST(VerifyAnalysis, FlatCrossingKeepsResultsButNotEdgeEnergies) {
    Spectrum s;
    s.y[11] = 10;
    s.y[12] = 30;
    s.y[13] = 20;
    // y(38) = y(39) = 30, y(41) = y(42) = 100 in ROI 40..44: c = 42.5, bc = 30 - 4 x 30/7,
    // h = 50 - bc, H = 25; the left search meets y(39) = 30 >= H at j = 40 and y(38) = y(39).
    s.y[38] = s.y[39] = 30;
    s.y[41] = s.y[42] = 100;
    clsROI roi = MakeRoi(10, 16);
    ASSERT_TRUE(Compute(roi, s, 4.0f).ok);
    roi.set_lROILCh(40);
    roi.set_lROIRCh(44);
    int16_t nBkgChn = 0;
    RoiRates rates{7.0f, 7.0f, 7.0f};
    EXPECT_FALSE(roi.bComputeROI(4.0f, nBkgChn, s.y.data(), s.y.size(),
                                 EnergyCalibration::Default(), rates));
    EXPECT_EQ(nBkgChn, 2);
    EXPECT_EQ(rates.sIntRate, 0.0f);
    EXPECT_EQ(rates.sNetRate, 7.0f);
    EXPECT_EQ(rates.sBkgRate, 7.0f);
    EXPECT_EQ(roi.lInt(), 60);
    EXPECT_NEAR(roi.sCentCh(), 790.0 / 60, 1e-4);
    EXPECT_NEAR(roi.sFWHMch(), 2.75, 1e-4);
    EXPECT_EQ(roi.sROILEn(), 100.0f);
    EXPECT_EQ(roi.sROIREn(), 110.0f);
}

TEST(VerifyAnalysis, OutsideTheArrayStoresNothing) {
    Spectrum s = Triangle();
    for (auto [L, R] : {std::pair{-1, 10}, std::pair{100, kUb + 1}}) {
        clsROI roi = MakeRoi(L, R);
        roi.set_sROILEn(1.0f);
        Outcome run = Compute(roi, s, 1.0f);
        EXPECT_FALSE(run.ok);
        EXPECT_EQ(run.nBkgChn, 2);
        EXPECT_EQ(roi.sROILEn(), 1.0f);
        EXPECT_EQ(roi.lInt(), 0);
    }
}

// A background level of -1 enters the height: ROI 1..Ub-1 has no neighbour on either
// side, h = y(k) + 1 = 1 and H = 0, so the left search takes j = 1 (y(0) = 0 >= 0) and
// needs y(-1).
TEST(VerifyAnalysis, MinusOneBackgroundReachesTheWidthSearch) {
    Spectrum s;
    s.y[5000] = 100;
    clsROI roi = MakeRoi(1, kUb - 1);
    EXPECT_THROW(Compute(roi, s, 1.0f), SubscriptError);
}

struct BkgCase {
    const char* name;
    std::function<void(Spectrum&)> setup;
    int32_t L, R;
    int16_t m;
    float x;
    double level;
};

class VerifyBkgAtPosition : public ::testing::TestWithParam<BkgCase> {};

TEST_P(VerifyBkgAtPosition, Level) {
    const BkgCase& c = GetParam();
    Spectrum s;
    s.y[0] = 1000;   // channel 0 never counts on the left
    s.y[kUb] = 1000; // nor Ub on the right
    c.setup(s);
    EXPECT_NEAR(BkgAtPosition(c.L, c.R, c.m, c.x, s.y.data(), s.y.size()), c.level, 1e-5);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, VerifyBkgAtPosition,
    ::testing::Values(
        // YL = 15 at 98.5, YR = 40 at 111.5: 15 + 6.5 x 25/13.
        BkgCase{"BothSides",
                [](Spectrum& s) {
                    s.y[98] = 10;
                    s.y[99] = 20;
                    s.y[111] = 30;
                    s.y[112] = 50;
                },
                100, 110, 2, 105.0f, 27.5},
        // m = 1: 20 at 99, 30 at 111: 20 + 6 x 10/12.
        BkgCase{"OneNeighbour",
                [](Spectrum& s) {
                    s.y[98] = 10;
                    s.y[99] = 20;
                    s.y[111] = 30;
                    s.y[112] = 50;
                },
                100, 110, 1, 105.0f, 25.0},
        // L = 2: only channel 1, still halved: YL = 4 at 0.5; YR = 6 at 11.5: 4 + 5.5 x 2/11.
        BkgCase{"L2HalvesChannel1",
                [](Spectrum& s) {
                    s.y[1] = 8;
                    s.y[11] = s.y[12] = 6;
                },
                2, 10, 2, 6.0f, 5.0},
        // L = 1: no left neighbour, YL = XL = 0: 5.75 x 6/11.5.
        BkgCase{"L1NoLeft", [](Spectrum& s) { s.y[11] = s.y[12] = 6; }, 1, 10, 2, 5.75f, 3.0},
        // m = 3, L = 2: YL = 8/3 at 1/3, YR = 6 at 12: 8/3 + (17/3)(10/3)/(35/3) = 90/21.
        BkgCase{"ThreeDividedByThree",
                [](Spectrum& s) {
                    s.y[1] = 8;
                    s.y[11] = s.y[12] = s.y[13] = 6;
                },
                2, 10, 3, 6.0f, 90.0 / 21},
        // R = Ub - 2: only Ub - 1 counts: YR = 6 at 8191.5; YL = 4 at 16378.5.
        BkgCase{"RightOnlyUbMinus1",
                [](Spectrum& s) {
                    s.y[16378] = s.y[16379] = 4;
                    s.y[kUb - 1] = 12;
                },
                16380, kUb - 2, 2, 16381.0f, 4.0 + 2.5 * 2.0 / (8191.5 - 16378.5)},
        // R = Ub - 1: no right neighbour: YL = 10 at 98.5, YR = XR = 0: 10 - 49.25 x 10/98.5.
        BkgCase{"NoRight", [](Spectrum& s) { s.y[98] = s.y[99] = 10; }, 100, kUb - 1, 2, 49.25f,
                5.0},
        BkgCase{"NoNeighboursAtAll", [](Spectrum&) {}, 1, kUb - 1, 2, 50.0f, -1.0},
        BkgCase{"WholeArray", [](Spectrum&) {}, 0, kUb, 2, 50.0f, -1.0}),
    [](const auto& info) { return std::string(info.param.name); });

struct AutoFormatCase {
    double value;
    const char* text;
};

class VerifyFormatAuto : public ::testing::TestWithParam<AutoFormatCase> {};

TEST_P(VerifyFormatAuto, Text) {
    EXPECT_EQ(FormatAuto(GetParam().value), GetParam().text) << GetParam().value;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, VerifyFormatAuto,
    ::testing::Values(AutoFormatCase{9998.996, "9999.00"}, AutoFormatCase{9998.994, "9998.99"},
                      AutoFormatCase{0.004, "0.00"}, AutoFormatCase{1234.5, "1234.50"},
                      AutoFormatCase{9999, "9999.0"}, AutoFormatCase{12345, "12345.0"},
                      AutoFormatCase{99998.96, "99999.0"}, AutoFormatCase{99999, "1.00E+5"},
                      AutoFormatCase{100000, "1.00E+5"}, AutoFormatCase{123456789, "1.23E+8"},
                      AutoFormatCase{999499, "9.99E+5"}, AutoFormatCase{999500, "1.00E+6"},
                      AutoFormatCase{1.5e20, "1.50E+20"}, AutoFormatCase{-9998.996, "-9999.00"},
                      AutoFormatCase{-9999, "-9999.0"}, AutoFormatCase{-12345.67, "-12345.7"},
                      AutoFormatCase{-99999, "-1.00E+5"}, AutoFormatCase{-123456, "-1.23E+5"}));

} // namespace
