// Channel/energy conversions, line and parabola fits and the calibration dialog's
// Compute, checked against values worked out by hand in the comments.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>

#include "base/Messages.h"
#include "base/NumberText.h"
#include "base/VexoError.h"
#include "spectrum/CalibrationSolver.h"
#include "spectrum/EnergyCalibration.h"

using namespace vexo;

namespace {

EnergyCalibration Cal(double offset, double slope, double quad) {
    EnergyCalibration c;
    c.dOffset = offset;
    c.dSlope = slope;
    c.dQuad = quad;
    return c;
}

struct ToChannelCase {
    const char* name;
    EnergyCalibration cal;
    double energy;
    int32_t channel;
};

class VerifyEnergyToChannel : public ::testing::TestWithParam<ToChannelCase> {};

TEST_P(VerifyEnergyToChannel, Channel) {
    const ToChannelCase& c = GetParam();
    EXPECT_EQ(EnergyToChannel(c.energy, c.cal), c.channel);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, VerifyEnergyToChannel,
    ::testing::Values(
        ToChannelCase{"Default250", EnergyCalibration::Default(), 250.0, 100},
        // Slope 0: the energy itself, rounded ties to even.
        ToChannelCase{"Flat37_4", Cal(5, 0, 0), 37.4, 37},
        ToChannelCase{"Flat36_5", Cal(5, 0, 0), 36.5, 36},
        ToChannelCase{"Flat37_5", Cal(5, 0, 0), 37.5, 38},
        ToChannelCase{"FlatMinus1_5", Cal(5, 0, 0), -1.5, -2},
        // Slope 2: 5 keV -> 2.5 -> 2, 7 keV -> 3.5 -> 4, offset 10: 15 keV -> 2.5 -> 2.
        ToChannelCase{"Line5", Cal(0, 2, 0), 5.0, 2}, ToChannelCase{"Line7", Cal(0, 2, 0), 7.0, 4},
        ToChannelCase{"LineOffset", Cal(10, 2, 0), 15.0, 2},
        // E = ch + 0.001 ch^2 at ch 100 = 110: D = 1.44, r1 = -1100 < 0 -> r2 = 100.
        ToChannelCase{"NegativeFirstRoot", Cal(0, 1, 0.001), 110.0, 100},
        // E = 2 ch - 0.001 ch^2 at ch 100 = 190: D = 3.24, r1 = (-3.8/2)/-0.001 = 1900,
        // which lies below 8192 and wins although channel 100 is the nearer root.
        ToChannelCase{"FirstRootBelow8192Wins", Cal(0, 2, -0.001), 190.0, 1900},
        // E = 2 ch - 0.0001 ch^2 = 1900: r1 = 19000 >= 8192 -> r2 = 1000.
        ToChannelCase{"FirstRootAbove8192", Cal(0, 2, -0.0001), 1900.0, 1000},
        // E = -2100: D = 4.84, r1 = 21000 -> r2 = (0.2/2)/-0.0001 = -1000, negative or not.
        ToChannelCase{"SecondRootEvenIfNegative", Cal(0, 2, -0.0001), -2100.0, -1000},
        // E = 0.0001 ch^2 - 2 ch at ch 8192: r1 = 8192 exactly is refused -> r2 = 11808.
        ToChannelCase{"FirstRootExactly8192", Cal(0, -2, 0.0001),
                      0.0001 * 8192.0 * 8192.0 - 2.0 * 8192.0, 11808},
        // E = 0.0001 ch^2 - 2 ch = -9900: D = 0.04, r1 = 9000 -> r2 = 11000.
        ToChannelCase{"BothRootsHigh", Cal(0, -2, 0.0001), -9900.0, 11000},
        // D = 0 - (100 - 50) x 0.001 x 4 < 0 -> 0.
        ToChannelCase{"NegativeDiscriminant", Cal(100, 0, 0.001), 50.0, 0},
        // E = ch^2: r1 = -sqrt(E), r2 = sqrt(E); 2.5 -> 2 and 3.5 -> 4.
        ToChannelCase{"QuadTieR2Down", Cal(0, 0, 1), 6.25, 2},
        ToChannelCase{"QuadTieR2Up", Cal(0, 0, 1), 12.25, 4},
        // E = -ch^2: r1 = +sqrt(-E); 2.5 -> 2 and 3.5 -> 4.
        ToChannelCase{"QuadTieR1Down", Cal(0, 0, -1), -6.25, 2},
        ToChannelCase{"QuadTieR1Up", Cal(0, 0, -1), -12.25, 4}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(VerifyEnergyToChannel, FirstRootBeyond16BitsIsOverflow) {
    // E = 2 ch - 0.00001 ch^2 at 0: r1 = (-4/2)/-0.00001 = 200000.
    EXPECT_THROW(EnergyToChannel(0.0, Cal(0, 2, -0.00001)), OverflowError);
    // E = -ch^2 at -32767.5^2: r1 = 32767.5 rounds (to even) to 32768.
    EXPECT_THROW(EnergyToChannel(-32767.5 * 32767.5, Cal(0, 0, -1)), OverflowError);
    // r1 = 32766.5 -> 32766 fits, lies above 8192 and gives way to r2 = -32766.5 -> -32766.
    EXPECT_EQ(EnergyToChannel(-32766.5 * 32766.5, Cal(0, 0, -1)), -32766);
}

TEST(VerifyChannelToEnergy, HornerValuesAndFaults) {
    EXPECT_EQ(ChannelToEnergy(100, EnergyCalibration::Default()), 250.0);
    // (13 x 0.01 + 2) x 13 + 1 = 28.69.
    EXPECT_DOUBLE_EQ(ChannelToEnergy(13, Cal(1, 2, 0.01)), 28.69);
    EXPECT_DOUBLE_EQ(ChannelToEnergy(-4, Cal(1, 2, 0.5)), 1.0);
    EXPECT_THROW(ChannelToEnergy(16384, Cal(0, 0, 1e305)), FloatingPointError);
}

TEST(VerifyFitLine, EitherOrderGivesTheLineThroughTheLargerChannel) {
    // slope = (661.7 - 1332.5)/(400 - 800) = 1.677; offset = 1332.5 - 1.677 x 800 = -9.1.
    EnergyCalibration up = Cal(7, 7, 7), down = Cal(7, 7, 7);
    FitLine(400, 661.7, 800, 1332.5, up);
    FitLine(800, 1332.5, 400, 661.7, down);
    EXPECT_EQ(up, down);
    EXPECT_NEAR(up.dSlope, 1.677, 1e-12);
    EXPECT_NEAR(up.dOffset, -9.1, 1e-9);
    EXPECT_EQ(up.dQuad, 0.0);
    EXPECT_EQ(up.dOffset, 1332.5 - up.dSlope * 800.0); // exactly, from channel 800
    // Equal channels: untouched.
    EnergyCalibration same = Cal(7, 7, 7);
    FitLine(5, 1, 5, 2, same);
    EXPECT_EQ(same, Cal(7, 7, 7));
}

TEST(VerifyFitParabola, HandWorkedAndTermOrder) {
    // E = 1 + ch + ch^2 through (0,1), (1,3), (2,7): d = -2, quad = -2/-2, slope = -2/-2,
    // offset = -2/-2.
    EnergyCalibration c = Cal(9, 9, 9);
    FitParabola(0, 1, 1, 3, 2, 7, c);
    EXPECT_EQ(c.dQuad, 1.0);
    EXPECT_EQ(c.dSlope, 1.0);
    EXPECT_EQ(c.dOffset, 1.0);
    // Each term written out as defined, with the squares formed first, compared exactly.
    const double x0 = 3, y0 = 0.7, x1 = 11, y1 = 0.1, x2 = 7, y2 = 0.3;
    const double d = (x0 - x1) * (x0 - x2) * (x1 - x2);
    const double q = ((y1 - y0) * x2 + (y0 - y2) * x1 + (y2 - y1) * x0) / d;
    const double sx0 = x0 * x0, sx1 = x1 * x1, sx2 = x2 * x2;
    const double s = (sx0 * (y1 - y2) + (y0 - y1) * sx2 + sx1 * (y2 - y0)) / d;
    const double o =
        (((x2 - x0) * x0 * y1 + (x1 - x2) * x1 * y0) * x2 + (x0 - x1) * x0 * x1 * y2) / d;
    FitParabola(x0, y0, x1, y1, x2, y2, c);
    EXPECT_EQ(c.dQuad, q);
    EXPECT_EQ(c.dSlope, s);
    EXPECT_EQ(c.dOffset, o);
    // Coincident channels: untouched.
    EnergyCalibration same = Cal(9, 9, 9);
    FitParabola(1, 1, 1, 2, 3, 4, same);
    EXPECT_EQ(same, Cal(9, 9, 9));
}

// One Compute case: the three rows, the message expected (empty: none) and the
// coefficients afterwards (the previous ones, 1/2/3, after a message).
struct ComputeCase {
    const char* name;
    std::array<CalibrationRowText, 3> rows;
    const char* message;
    double offset, slope, quad;
};

class VerifyCompute : public ::testing::TestWithParam<ComputeCase> {};

TEST_P(VerifyCompute, RowsMessagesAndCoefficients) {
    const ComputeCase& c = GetParam();
    ScriptedMessages msgs;
    const CalibrationCompute r = Compute(c.rows, Cal(1, 2, 3), msgs);
    if (*c.message) {
        ASSERT_EQ(msgs.shown().size(), 1u);
        EXPECT_EQ(msgs.shown()[0].text, c.message);
        EXPECT_EQ(msgs.shown()[0].title, "Vexo");
        EXPECT_EQ(msgs.shown()[0].icon, MsgIcon::Critical);
    } else {
        EXPECT_TRUE(msgs.shown().empty());
    }
    EXPECT_NEAR(r.cal.dOffset, c.offset, 1e-9);
    EXPECT_NEAR(r.cal.dSlope, c.slope, 1e-12);
    EXPECT_NEAR(r.cal.dQuad, c.quad, 1e-12);
    EXPECT_EQ(r.lblOffset, FormatNumber(c.offset, "0.000"));
    EXPECT_EQ(r.lblSlope, FormatNumber(c.slope, "0.000"));
    EXPECT_EQ(r.lblQuadratic, FormatNumber(c.quad, "0.000"));
    EXPECT_TRUE(r.computed);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, VerifyCompute,
    ::testing::Values(
        ComputeCase{"OnePoint", {{{"100", "661.66"}, {"", ""}, {"", ""}}}, "", 0, 6.6166, 0},
        // Channel text "100.5" is channel 100 (ties to even), "101.5" channel 102.
        ComputeCase{
            "OnePointRoundedChannel", {{{"", ""}, {"101.5", "204"}, {"", ""}}}, "", 0, 2, 0},
        ComputeCase{"OnePointChannel0",
                    {{{"0", "10"}, {"", ""}, {"", ""}}},
                    "Channel value cannot be zero for a single-point calibration",
                    1,
                    2,
                    3},
        // Rows A and C with B unparsable: the line through A and C.
        ComputeCase{
            "RowsAAndC", {{{"400", "661.7"}, {"x", "5"}, {"800", "1332.5"}}}, "", -9.1, 1.677, 0},
        ComputeCase{"TwoEqualChannels",
                    {{{"5", "10"}, {"5", "20"}, {"", ""}}},
                    "Channel values must be different",
                    1,
                    2,
                    3},
        ComputeCase{"TwoEqualEnergies",
                    {{{"5", "10"}, {"6", "10"}, {"", ""}}},
                    "Energy values must be different",
                    1,
                    2,
                    3},
        // Both equal: the channel message comes first.
        ComputeCase{"TwoBothEqual",
                    {{{"5", "10"}, {"5", "10"}, {"", ""}}},
                    "Channel values must be different",
                    1,
                    2,
                    3},
        ComputeCase{"ThreeEqualChannels",
                    {{{"5", "10"}, {"6", "20"}, {"5", "10"}}},
                    "All channel values must be different",
                    1,
                    2,
                    3},
        ComputeCase{"ThreeEqualEnergies",
                    {{{"5", "10"}, {"6", "20"}, {"7", "10"}}},
                    "All energy values must be different",
                    1,
                    2,
                    3},
        // E = 1 + ch + ch^2 through channels 0, 1, 2.
        ComputeCase{"Parabola", {{{"0", "1"}, {"1", "3"}, {"2", "7"}}}, "", 1, 1, 1},
        // Collinear: E = 5 + 2 ch.
        ComputeCase{"Collinear", {{{"10", "25"}, {"20", "45"}, {"40", "85"}}}, "", 5, 2, 0},
        // Channel beyond 16 bits: that row does not count; one point remains.
        ComputeCase{
            "ChannelBeyond16Bits", {{{"32768", "5"}, {"50", "100"}, {"", ""}}}, "", 0, 2, 0},
        ComputeCase{"NoPoints", {{{"", "1"}, {"2", ""}, {"a", "b"}}}, "", 1, 2, 3}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(VerifyCompute, AcceptQuestionLines) {
    EXPECT_EQ(AcceptQuestionText(Cal(-9.1, 1.677, 0.00001)),
              "Energy calibration successfully done.\r\nOffset = -9.1000 keV\r\n"
              "Slope = 1.6770 keV/chn\r\nQuadratic = 0.0000 keV/chn^2\r\nAccept this calibration?");
    ScriptedMessages msgs;
    msgs.queueAnswer(MsgAnswer::Yes);
    EXPECT_TRUE(AskAcceptCalibration(Cal(0, 2, 0), msgs));
    ASSERT_EQ(msgs.shown().size(), 1u);
    EXPECT_EQ(msgs.shown()[0].title, "Energy calibration results");
    EXPECT_EQ(msgs.shown()[0].buttons, MsgButtons::YesNo);
    EXPECT_EQ(EnergyFromListItem("661.66 (Cs-137)"), "661.66 ");
}

} // namespace
