// ROI analysis on synthetic spectra whose results are worked out by hand in the
// comments (default calibration, 2.5 keV per channel, unless a case says otherwise).
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "RoiTestSpectra.h"
#include "roi/clsROI.h"

using namespace vexo;
using namespace vexo::test;

namespace {

struct Results {
    int32_t S, M, chnMax, B, N, bkgRead;
    double b1, c, h, F, fwhmEn, centEn, fwhmP, lEn, rEn;
    float intRate, netRate, bkgRate;
};

struct AnalysisCase {
    const char* name;
    Spectrum spectrum;
    int32_t L, R;
    float sTime;
    EnergyCalibration cal;
    Results e;
};

const EnergyCalibration kDefault = EnergyCalibration::Default();

// ROI 98..110 on Triangle(), 10 s:
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
const Results kTriangle = {450,
                           90,
                           104,
                           150,
                           300,
                           12,
                           150.0 / 13,
                           105.0,
                           60.0,
                           5.5,
                           15.0,
                           262.5,
                           100.0 * 15.0 / 262.5,
                           245.0,
                           275.0,
                           45.0f,
                           30.0f,
                           15.0f};

Results WithoutRates(Results r) {
    r.intRate = r.netRate = r.bkgRate = 0.0f;
    return r;
}

const AnalysisCase kCases[] = {
    {"Triangle", Triangle(), 98, 110, 10.0f, kDefault, kTriangle},
    // No measuring time: zero rates, everything else as before.
    {"TriangleWithoutTime", Triangle(), 98, 110, 0.0f, kDefault, WithoutRates(kTriangle)},
    {"TriangleNegativeTime", Triangle(), 98, 110, -5.0f, kDefault, WithoutRates(kTriangle)},
    // Background 10 left of the ROI and 20 right of it; ROI 100..109 holds
    // 10 12 20 60 100 80 40 22 21 20.
    //   S = 385, W = sum y(i)(i+1) = 40659, c = 40659/385 = 105.6077922, held as the float
    //   105.6077957 (the next steps use that value; h moves by 40 counts per channel of c).
    //   bL = 10, bR = 20, B = round(12 x 30 / 2) = 180, N = 205, b1 = 18.
    //   bc: YL = 10 at XL = 98.5, YR = 20 at XR = 110.5: bc = 10 + (c - 98.5) x 10/12,
    //   the float 15.923163. k = 105, f = 0.6077957:
    //   h = (1-f)(80 - bc) + f(40 - bc) = 39.765008. H = (h - bc)/2 + bc = 27.844086.
    //   Left: y(103) = 60 is the first >= H -> xL = 102 + (H - 20)/40 = 102.196102.
    //   Right: y(107) = 22 is the first <= H -> xR = 106 + (H - 40)/(22 - 40) = 106.675329.
    //   F = 4.479226; round(c + F/2 = 107.847) = 108, round(c - F/2 = 103.368) = 103:
    //   5 channels = 12.5 keV. Centroid energy E(106) = 265; FWHM% = 1250/265.
    {"SkewedPeakOnSlopedBackground",
     Counts({{0, 99, 10}, {110, 199, 20}}, 100, {10, 12, 20, 60, 100, 80, 40, 22, 21, 20}),
     100,
     109,
     0.5f,
     kDefault,
     {385, 100, 104, 180, 205, 18, 18.0, 40659.0 / 385, 39.765008, 4.479226, 12.5, 265.0,
      1250.0 / 265, 250.0, 272.5, 770.0f, 410.0f, 360.0f}},
    // y(103..105) = 40 100 40 on a zero background: c = 105, h = y(105) = 40, H = 20,
    // xL = 102 + 20/40 = 102.5, xR = 105 + (20-40)/(0-40) = 105.5, F = 3. The energy width
    // spans round(106.5) = 106 and round(103.5) = 104 (both halves go to the even channel):
    // 2 channels = 5 keV, where rounding halves up would give 3 channels.
    {"HalfChannelWidthRoundsToEvenChannels",
     Counts({}, 103, {40, 100, 40}),
     100,
     108,
     1.0f,
     kDefault,
     {180, 100, 104, 0, 180, 0, 0.0, 105.0, 40.0, 3.0, 5.0, 262.5, 500.0 / 262.5, 250.0, 270.0,
      180.0f, 180.0f, 0.0f}},
    {"AllZero",
     Counts({}),
     100,
     120,
     10.0f,
     kDefault,
     {0, 0, 0, 0, 0, 0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 250.0, 300.0, 0.0f, 0.0f, 0.0f}},
    // y(10..16) = 0 10 30 20 0 0 0. S = 60, W = 10x12 + 30x13 + 20x14 = 790, c = 13.1667 on
    // the plus-one scale, so k = 13 and the interpolation uses y(13) = 20 and y(14) = 0:
    // h = (1 - 1/6) x 20 = 16.6667, H = 8.3333 (bc = 0). Left: y(11) = 10 is the first
    // >= H -> xL = 10 + H/10 = 10.8333. Right from j = 13: y(14) = 0 -> xR = 13 +
    // (H - 20)/(0 - 20) = 13.5833. F = 2.75; round(14.54) = 15, round(11.79) = 12.
    // E = 1 + 2 ch + 0.01 ch^2: E(15) - E(12) = 33.25 - 26.44 = 6.81; E(13) = 28.69;
    // E(10) = 22, E(16) = 35.56. Rates over 4 s: 15, 15, 0.
    {"PlusOneScaleInterpolation",
     Counts({}, 11, {10, 30, 20}),
     10,
     16,
     4.0f,
     Cal(1, 2, 0.01),
     {60, 30, 12, 0, 60, 0, 0.0, 790.0 / 60, 50.0 / 3, 2.75, 6.81, 28.69, 681.0 / 28.69, 22.0,
      35.56, 15.0f, 15.0f, 0.0f}},
    // y(11) = y(12) = 10. S = 20, W = 120 + 130 = 250, c = 12.5: f = 0.5, h = (10 + 0)/2 = 5,
    // H = 2.5. xL = 10 + 2.5/10 = 10.25; right: y(13) = 0 first -> xR = 12 + 7.5/10 = 12.75.
    // F = 2.5; round(13.75) = 14, round(11.25) = 11: 7.5 keV. Centroid energy at
    // round(12.5) = 12 (ties to even): 30 keV.
    {"CentroidEnergyTiesToEven",
     Counts({}, 11, {10, 10}),
     8,
     15,
     0.0f,
     kDefault,
     {20, 10, 11, 0, 20, 0, 0.0, 12.5, 5.0, 2.5, 7.5, 30.0, 25.0, 20.0, 37.5, 0.0f, 0.0f, 0.0f}},
    // y(0) = 5, ROI 1..7 = 0 10 40 30 0 0 0, y(8) = y(9) = 10. S = 80, W = 30 + 160 + 150
    // = 340, c = 4.25. bL = y(0) = 5, bR = 10: B = round(9 x 15 / 2 = 67.5) = 68, N = 12,
    // b1 = 68/7 (reads 10). Background line: channel 0 does not count on the left, so
    // YL = XL = 0, YR = 10 at XR = 8.5: bc = 4.25 x 10 / 8.5 = 5. k = 4, f = 0.25:
    // h = 0.75 x (30 - 5) + 0.25 x (0 - 5) = 17.5, H = 12.5/2 + 5 = 11.25.
    // Left: y(2) = 10 < H, y(3) = 40 >= H -> xL = 2 + 1.25/30; right: y(5) = 0 ->
    // xR = 4 + 18.75/30 = 4.625. F = 2.58333; round(5.54) = 6, round(2.96) = 3: 7.5 keV.
    // Centroid energy E(4) = 10; FWHM 75 %. Rates over 2 s: 40, 6, 34.
    {"RoiFromChannel1",
     Counts({{8, 9, 10}}, 0, {5, 0, 10, 40, 30}),
     1,
     7,
     2.0f,
     kDefault,
     {80, 40, 3, 68, 12, 10, 68.0 / 7, 4.25, 17.5, 4.625 - (2.0 + 1.25 / 30), 7.5, 10.0, 75.0, 2.5,
      17.5, 40.0f, 6.0f, 34.0f}},
    // ROI 0..8 = 0 0 0 20 40 20 0 0 0. c = (80 + 200 + 120)/80 = 5, bc = 0, h = y(5) = 20,
    // H = 10. The left search skips j = 0 (it would need y(-1)); j = 4 finds y(3) = 20 ->
    // xL = 2.5; right: y(6) = 0 -> xR = 5.5. F = 3 exactly: round(6.5) = 6 and round(3.5)
    // = 4, 2 channels = 5 keV. bL = 0 (L = 0), bR = 0.
    {"RoiFromChannel0",
     Counts({}, 3, {20, 40, 20}),
     0,
     8,
     1.0f,
     kDefault,
     {80, 40, 4, 0, 80, 0, 0.0, 5.0, 20.0, 3.0, 5.0, 12.5, 40.0, 0.0, 20.0, 80.0f, 80.0f, 0.0f}},
    // Near the top: y(16368..16369) = 8, y(16376) = y(16377) = 100, y(Ub) = 6, ROI
    // 16370..16383 (= Ub - 1). c = 16377.5, f = 0.5. The right neighbours 16384 and 16385
    // are not below Ub, so YR = XR = 0: bc = 8 + 9 x (0 - 8)/(0 - 16368.5) = 8.0043987 and
    // h = 50 - bc = 41.9956; H = 25. xL = 16375 + 25/100, xR = 16377 + 75/100, F = 2.5;
    // round(16378.75) = 16379, round(16376.25) = 16376: 7.5 keV; centroid energy at
    // round(16377.5) = 16378: 40945 keV. bL = 8, bR = y(Ub) = 6: B = 16 x 14 / 2 = 112.
    {"RoiEndingBeforeUb",
     Counts({{16368, 16369, 8}, {16376, 16377, 100}, {kUb, kUb, 6}}),
     16370,
     kUb - 1,
     1.0f,
     kDefault,
     {200, 100, 16376, 112, 88, 8, 8.0, 16377.5, 50.0 - 8.0 * 16377.5 / 16368.5, 2.5, 7.5, 40945.0,
      750.0 / 40945.0, 40925.0, 40957.5, 200.0f, 88.0f, 112.0f}},
    // ROI 16378..Ub = 0 20 40 40 40 0 0. S = 140, W = 20 x 16380 + 40 x (16381 + 16382 +
    // 16383) = 2293440, c = 16381.714, bc = 0, h = 40, H = 20. xL = 16378 + 20/20. The
    // right search skips j = Ub, so y(16383) = 0 is never looked at: xR stays 0 and the
    // negative width reads 0 in channels, energy and percent. E(16382) = 40955.
    {"RightSearchSkipsUb",
     Counts({}, 16379, {20, 40, 40, 40}),
     16378,
     kUb,
     1.0f,
     kDefault,
     {140, 40, 16380, 0, 140, 0, 0.0, 2293440.0 / 140, 40.0, 0.0, 0.0, 40955.0, 0.0, 40945.0,
      40960.0, 140.0f, 140.0f, 0.0f}}};

class ComputeRoi : public ::testing::TestWithParam<AnalysisCase> {};

TEST_P(ComputeRoi, HandWorkedResults) {
    const AnalysisCase& c = GetParam();
    clsROI roi = MakeRoi(c.L, c.R);
    Outcome run = Compute(roi, c.spectrum, c.sTime, c.cal);
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(run.nBkgChn, 2);
    const Results& e = c.e;
    EXPECT_EQ((std::array{roi.lInt(), roi.lMax(), int32_t{roi.nChnMax()}, roi.lBkgIntVal(),
                          roi.lNET(), roi.sBkgVal()}),
              (std::array{e.S, e.M, e.chnMax, e.B, e.N, e.bkgRead}));
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

INSTANTIATE_TEST_SUITE_P(Spectra, ComputeRoi, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Background levels at the array edges and the rounding of B and b1.
TEST(ComputeRoiBackground, IntegralBackgroundAndNet) {
    const struct {
        Spectrum spectrum;
        int32_t L, R, S, B, N;
        float b1; // stored background per channel
        int32_t b1Read;
    } cases[] = {
        // L = 0: bL = 0; bR = 51; B = round(13 x 51 / 2 = 331.5) = 332 (ties to even).
        // The high right side keeps the interpolated height at 0, so no width search runs
        // into channel -1.
        {Counts({{0, 10, 5}, {11, 12, 51}}), 0, 10, 55, 332, 0, 332.0f / 11, 30},
        // L = 1: bL = y(0) = 7 alone, bR = 50; B = 12 x 57 / 2 = 342 > S = 50, so N = 0.
        {Counts({{1, 10, 5}, {11, 12, 50}, {0, 0, 7}}), 1, 10, 50, 342, 0, 34.2f, 34},
        // R = Ub: bR = 0; bL = 8; B = 7 x 8 / 2 = 28; S = 4 x 8 (the spare slot is 0).
        {Counts({{16370, kUb - 1, 8}}), 16380, kUb, 32, 28, 4, 5.6f, 6},
        // R = Ub - 1: bR = y(Ub) = 9 alone; bL = 8; B = round(7 x 17 / 2 = 59.5) = 60.
        {Counts({{16370, kUb - 1, 8}, {kUb, kUb, 9}}), 16379, kUb - 1, 40, 60, 0, 12.0f, 12},
        // Neighbours 100, ROI empty: B = 7 x 200 / 2 = 700 > S = 0, N = 0.
        {Counts({{98, 99, 100}, {105, 106, 100}}), 100, 104, 0, 700, 0, 140.0f, 140},
        // n = 8, bL = bR = 2: B = 10 x 4 / 2 = 20, b1 = 2.5 reads 2; n = 12 at 3: 3.5 reads 4.
        {Counts({{0, 200, 2}}), 100, 107, 16, 20, 0, 2.5f, 2},
        {Counts({{0, 200, 3}}), 100, 111, 36, 42, 0, 3.5f, 4},
        // Left mean (11 + 12)/2 = 11.5 -> 12; right mean (13 + 14)/2 = 13.5 -> 14;
        // B = 13 x 26 / 2 = 169.
        {Counts({{61, 61, 13}, {62, 62, 14}}, 48, {11, 12}), 50, 60, 0, 169, 0, 169.0f / 11, 15}};
    for (const auto& c : cases) {
        clsROI roi = MakeRoi(c.L, c.R);
        ASSERT_TRUE(Compute(roi, c.spectrum, 1.0f).ok) << c.L;
        EXPECT_EQ((std::array{roi.lInt(), roi.lBkgIntVal(), roi.lNET(), roi.sBkgVal()}),
                  (std::array{c.S, c.B, c.N, c.b1Read}))
            << c.L << ".." << c.R;
        EXPECT_FLOAT_EQ(roi.sBkgValStored(), c.b1) << c.L;
    }
    // The background rate stands even when the background exceeds the integral.
    clsROI roi = MakeRoi(100, 104);
    const Outcome run = Compute(roi, Counts({{98, 99, 100}, {105, 106, 100}}), 2.0f);
    EXPECT_FLOAT_EQ(run.rates.sBkgRate, 350.0f);
    EXPECT_EQ(run.rates.sNetRate, 0.0f);
}

TEST(ComputeRoiMaximum, TieKeepsLowestChannel) {
    clsROI roi = MakeRoi(100, 110);
    Compute(roi, Counts({}, 103, {50, 20, 20, 50}), 1.0f);
    EXPECT_EQ(roi.lMax(), 50);
    EXPECT_EQ(roi.nChnMax(), 103);
}

} // namespace
