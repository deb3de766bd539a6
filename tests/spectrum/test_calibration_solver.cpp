// Channel/energy conversions and the calibration dialog's logic: fits, Compute's point
// rules and messages, the acceptance question and the energy lists from a nuclide
// library. Expected values are worked out by hand in the comments.
#include <gtest/gtest.h>

#include <random>

#include "TestSupport.h"
#include "base/VexoError.h"
#include "spectrum/CalibrationSolver.h"

using namespace vexo;
using vexo::test::TempDir;
using vexo::test::WriteBytes;

namespace {

EnergyCalibration Cal(double offset, double slope, double quad) {
    return {false, offset, slope, quad};
}

EnergyCalibration Marked() {
    return Cal(11.0, 22.0, 33.0); // a recognisable "before"
}

} // namespace

TEST(EnergyToChannel, RootRules) {
    const struct {
        double offset, slope, quad, energy;
        int32_t channel;
    } cases[] = {
        {0, 2.5, 0, 250.0, 100},
        // Slope 0: the energy itself, rounded ties to even.
        {5, 0, 0, 37.4, 37},
        {5, 0, 0, 36.5, 36},
        {5, 0, 0, 37.5, 38},
        {5, 0, 0, -1.5, -2},
        // Slope 2: 5 keV -> 2.5 -> 2, 7 keV -> 3.5 -> 4; offset 10: 15 keV -> 2.5 -> 2.
        {0, 2, 0, 5.0, 2},
        {0, 2, 0, 7.0, 4},
        {10, 2, 0, 15.0, 2},
        // E = ch + 0.001 ch^2 at ch 100 = 110: D = 1.44, r1 = -1100 < 0 -> r2 = 100.
        {0, 1, 0.001, 110.0, 100},
        // E = 2 ch - 0.001 ch^2 at ch 100 = 190: D = 3.24, r1 = (-3.8/2)/-0.001 = 1900,
        // which lies below 8192 and wins although channel 100 is the nearer root.
        {0, 2, -0.001, 190.0, 1900},
        // E = 2 ch - 0.0001 ch^2 = 1900: r1 = 19000 >= 8192 -> r2 = 1000; at -2100:
        // D = 4.84, r1 = 21000 -> r2 = (0.2/2)/-0.0001 = -1000, negative or not.
        {0, 2, -0.0001, 1900.0, 1000},
        {0, 2, -0.0001, -2100.0, -1000},
        // E = 0.0001 ch^2 - 2 ch at ch 8192: r1 = 8192 exactly is refused -> r2 = 11808;
        // at -9900: D = 0.04, r1 = 9000 -> r2 = 11000.
        {0, -2, 0.0001, 0.0001 * 8192.0 * 8192.0 - 2.0 * 8192.0, 11808},
        {0, -2, 0.0001, -9900.0, 11000},
        // D = 0 - (100 - 50) x 0.001 x 4 < 0 -> 0.
        {100, 0, 0.001, 50.0, 0},
        // E = ch^2: r1 = -sqrt(E), r2 = sqrt(E); E = -ch^2: r1 = +sqrt(-E). 2.5 -> 2, 3.5 -> 4.
        {0, 0, 1, 6.25, 2},
        {0, 0, 1, 12.25, 4},
        {0, 0, -1, -6.25, 2},
        {0, 0, -1, -12.25, 4},
        // r1 = 32766.5 -> 32766 fits, lies above 8192 and gives way to r2 = -32766.
        {0, 0, -1, -32766.5 * 32766.5, -32766}};
    for (const auto& c : cases)
        EXPECT_EQ(EnergyToChannel(c.energy, Cal(c.offset, c.slope, c.quad)), c.channel)
            << c.offset << " " << c.slope << " " << c.quad << " at " << c.energy;
    // E = 2 ch - 0.00001 ch^2 at 0: r1 = 200000; E = -ch^2: r1 = 32767.5 rounds to 32768.
    EXPECT_THROW(EnergyToChannel(0.0, Cal(0, 2, -0.00001)), OverflowError);
    EXPECT_THROW(EnergyToChannel(-32767.5 * 32767.5, Cal(0, 0, -1)), OverflowError);
}

TEST(ChannelToEnergy, HornerValuesAndFaults) {
    EXPECT_EQ(ChannelToEnergy(100, EnergyCalibration::Default()), 250.0);
    EXPECT_DOUBLE_EQ(ChannelToEnergy(13, Cal(1, 2, 0.01)), 28.69); // (13 x 0.01 + 2) x 13 + 1
    EXPECT_DOUBLE_EQ(ChannelToEnergy(-4, Cal(1, 2, 0.5)), 1.0);
    EXPECT_THROW(ChannelToEnergy(16384, Cal(0, 0, 1e305)), FloatingPointError);
}

TEST(FitLine, OffsetComesFromTheLargerChannel) {
    EnergyCalibration up = Marked(), down = Marked();
    FitLine(400, 661.7, 800, 1332.5, up);
    FitLine(800, 1332.5, 400, 661.7, down);
    EXPECT_EQ(up, down); // bit for bit: both take the offset from channel 800
    const double slope = (1332.5 - 661.7) / 400.0;
    EXPECT_EQ(up, Cal(1332.5 - slope * 800.0, slope, 0.0));
    // Equal channels leave the calibration untouched; an overflow raises and keeps it.
    EnergyCalibration cal = Marked();
    FitLine(100, 1, 100, 2, cal);
    EXPECT_THROW(FitLine(0, -1.7e308, 1, 1.7e308, cal), FloatingPointError);
    EXPECT_EQ(cal, Marked());
}

TEST(FitParabola, RecoversKnownQuadratics) {
    // E = 2 + 3 ch + 0.5 ch^2 through channels 0, 2, 4: all terms exact in binary.
    EnergyCalibration cal = Marked();
    FitParabola(0, 2, 2, 10, 4, 22, cal);
    EXPECT_EQ(cal, Cal(2.0, 3.0, 0.5));
    std::mt19937 rng(12345);
    std::uniform_real_distribution<double> coef(-1.0, 1.0);
    std::uniform_int_distribution<int> channel(0, 16383);
    for (int trial = 0; trial < 200; ++trial) {
        const double a = 50 * coef(rng), b = 3 * coef(rng), c = 1e-4 * coef(rng);
        int x[3];
        do {
            for (int& xi : x)
                xi = channel(rng);
        } while (x[0] == x[1] || x[0] == x[2] || x[1] == x[2]);
        auto y = [&](int ch) { return a + b * ch + c * ch * double(ch); };
        FitParabola(x[0], y(x[0]), x[1], y(x[1]), x[2], y(x[2]), cal);
        EXPECT_NEAR(cal.dQuad, c, 1e-12) << trial;
        EXPECT_NEAR(cal.dSlope, b, 1e-8) << trial;
        EXPECT_NEAR(cal.dOffset, a, 1e-4) << trial;
    }
    cal = Marked();
    FitParabola(1, 1, 1, 2, 3, 3, cal); // coincident channels: untouched
    EXPECT_THROW(FitParabola(0, 1e307, 1000, -1e307, 2000, 1e307, cal), FloatingPointError);
    EXPECT_EQ(cal, Marked());
}

TEST(Compute, PointsOfTheValidRows) {
    const struct {
        std::array<CalibrationRowText, 3> rows;
        double offset, slope, quad;
    } cases[] = {// One point: a line through the origin.
                 {{{{"100", "661.66"}, {"", ""}, {"", ""}}}, 0, 6.6166, 0},
                 // Channel text 101.5 is channel 102 (ties to even).
                 {{{{"", ""}, {"101.5", "204"}, {"", ""}}}, 0, 2, 0},
                 // Rows A and C, B unparsable: the line through A and C.
                 {{{{"400", "661.7"}, {"x", "5"}, {"800", "1332.5"}}}, -9.1, 1.677, 0},
                 {{{{"100", "250"}, {"200", "500"}, {"300", "750"}}}, 0, 2.5, 0}, // collinear
                 {{{{"100", "211"}, {"1000", "3001"}, {"2000", "8001"}}}, 1, 2, 0.001},
                 // A channel beyond 16 bits or an energy that is no number leaves its row out;
                 // 32767 still fits.
                 {{{{"40000", "100"}, {"200", "abc"}, {"100", "661.66"}}}, 0, 6.6166, 0},
                 {{{{"32768", "1"}, {"32767", "32767"}, {"", "5"}}}, 0, 1, 0},
                 {{{{"100", EnergyFromListItem("661.66 (Cs-13755:661.66:G)")}, {"", ""}, {"", ""}}},
                  0,
                  6.6166,
                  0}};
    for (const auto& c : cases) {
        ScriptedMessages msgs;
        const CalibrationCompute r = Compute(c.rows, Marked(), msgs);
        EXPECT_TRUE(msgs.shown().empty());
        EXPECT_TRUE(r.computed);
        EXPECT_NEAR(r.cal.dOffset, c.offset, 1e-6) << c.rows[0].channel;
        EXPECT_NEAR(r.cal.dSlope, c.slope, 1e-9) << c.rows[0].channel;
        EXPECT_NEAR(r.cal.dQuad, c.quad, 1e-12) << c.rows[0].channel;
    }
    ScriptedMessages msgs;
    const auto r = Compute({{{"800", "1332.5"}, {"400", "661.7"}, {"", ""}}}, Marked(), msgs);
    EnergyCalibration line = Marked();
    FitLine(400, 661.7, 800, 1332.5, line);
    EXPECT_EQ(r.cal, line); // from channel 800, bit for bit
    EXPECT_EQ(r.lblOffset + " " + r.lblSlope + " " + r.lblQuadratic, "-9.100 1.677 0.000");
}

TEST(Compute, RefusalsShowTheirMessageAndKeepCoefficients) {
    const struct {
        std::array<CalibrationRowText, 3> rows;
        const char* message;
    } cases[] = {
        {{{{"0", "661.66"}, {"", ""}, {"", ""}}},
         "Channel value cannot be zero for a single-point calibration"},
        {{{{"100", "100"}, {"100", "200"}, {"", ""}}}, "Channel values must be different"},
        {{{{"100", "100"}, {"200", "100"}, {"", ""}}}, "Energy values must be different"},
        {{{{"100", "1"}, {"200", "2"}, {"100", "3"}}}, "All channel values must be different"},
        {{{{"100", "1"}, {"200", "2"}, {"300", "2"}}}, "All energy values must be different"},
        // Equal channels are reported before equal energies.
        {{{{"100", "1"}, {"100", "1"}, {"", ""}}}, "Channel values must be different"},
        // A fit that overflows is reported, not thrown.
        {{{{"1", "-1.7e308"}, {"2", "1.7e308"}, {"", ""}}}, nullptr}};
    for (const auto& c : cases) {
        ScriptedMessages msgs;
        auto r = Compute(c.rows, Marked(), msgs);
        ASSERT_EQ(msgs.shown().size(), 1u) << c.rows[0].energy;
        const Message& m = msgs.shown()[0];
        EXPECT_EQ(m.text, c.message ? c.message : m.text);
        EXPECT_EQ(m.title, "Vexo");
        EXPECT_EQ(m.icon, MsgIcon::Critical);
        EXPECT_EQ(m.buttons, MsgButtons::Ok);
        EXPECT_EQ(r.cal, Marked());
        EXPECT_EQ(r.lblOffset + " " + r.lblSlope + " " + r.lblQuadratic, "11.000 22.000 33.000");
        EXPECT_TRUE(r.computed); // the dialog sets its flag after a message as well
    }
}

TEST(Compute, NoPointsFitsNothingAndTheCalibratedFlagIsCarriedOver) {
    ScriptedMessages msgs;
    EXPECT_EQ(Compute({{{"", ""}, {"x", "1"}, {"5", ""}}}, Marked(), msgs).cal, Marked());
    EnergyCalibration previous = Marked();
    previous.bCalibrated = true;
    EXPECT_TRUE(Compute({{{"100", "661.66"}, {"", ""}, {"", ""}}}, previous, msgs).cal.bCalibrated);
    EXPECT_TRUE(msgs.shown().empty());
}

TEST(AcceptQuestion, TextAndTitle) {
    EnergyCalibration cal{true, -9.1, 1.677, 0.00001234};
    EXPECT_EQ(AcceptQuestionText(cal), "Energy calibration successfully done.\r\n"
                                       "Offset = -9.1000 keV\r\n"
                                       "Slope = 1.6770 keV/chn\r\n"
                                       "Quadratic = 0.0000 keV/chn^2\r\n"
                                       "Accept this calibration?");
    ScriptedMessages msgs;
    msgs.queueAnswer(MsgAnswer::Yes);
    EXPECT_TRUE(AskAcceptCalibration(cal, msgs));
    EXPECT_FALSE(AskAcceptCalibration(cal, msgs)); // default answer No
    ASSERT_EQ(msgs.shown().size(), 2u);
    EXPECT_EQ(msgs.shown()[0].title, "Energy calibration results");
    EXPECT_EQ(msgs.shown()[0].buttons, MsgButtons::YesNo);
    EXPECT_EQ(msgs.shown()[0].text, AcceptQuestionText(cal));
}

TEST(EnergyLists, OneItemPerSectionAfterTheFirst) {
    TempDir dir;
    WriteBytes(dir / "lib.nli", "[Info]\r\nFileID=Vexo Nuclide Library\r\n"
                                "[Cs-13755:661.66:G]\r\nEn=661.6553\r\nNucName=Cs-137\r\n"
                                "Int=85.1\r\n"
                                "[Co-6027:1173.23:G]\r\nNucName=Co-60\r\n"
                                "[Am-24195:59.54:G]\r\nEn= 59.5409 \r\n");
    ScriptedMessages msgs;
    auto items = EnergyListEntries(dir / "lib.nli", msgs);
    EXPECT_TRUE(msgs.shown().empty());
    EXPECT_EQ(items,
              (std::vector<std::string>{"661.6553 (Cs-13755:661.66:G)", " (Co-6027:1173.23:G)",
                                        "59.5409 (Am-24195:59.54:G)"}));
    // The dialog's lines: by energy, labelled, each giving the value its item gives.
    const auto choices = EnergyListChoices(dir / "lib.nli", msgs);
    ASSERT_EQ(choices.size(), 3u);
    EXPECT_EQ(choices[0].label, "Am-24195:59.54:G 59.54 keV"); // no name, no intensity
    EXPECT_EQ(choices[0].value, "59.5409 ");
    EXPECT_EQ(choices[1].label, "Cs-137 661.66 keV (85.1 %)");
    EXPECT_EQ(choices[1].value, "661.6553 ");
    EXPECT_EQ(choices[2].label, " (Co-6027:1173.23:G)"); // no energy: last, as it stands
    // A header-only or empty library gives nothing, silently.
    WriteBytes(dir / "lib.nli", "[Info]\r\nFileID=Vexo Nuclide Library\r\n");
    WriteBytes(dir / "empty.nli", "");
    EXPECT_TRUE(EnergyListEntries(dir / "lib.nli", msgs).empty());
    EXPECT_TRUE(EnergyListEntries(dir / "empty.nli", msgs).empty());
    EXPECT_TRUE(msgs.shown().empty());
}

TEST(EnergyLists, MissingOrUnreadableLibraryIsReported) {
    TempDir dir;
    for (const auto& path : {dir / "none.nli", dir.path(), std::filesystem::path()}) {
        ScriptedMessages msgs;
        EXPECT_TRUE(EnergyListEntries(path, msgs).empty());
        ASSERT_EQ(msgs.shown().size(), 1u) << path;
        EXPECT_EQ(msgs.shown()[0].title, "Load Nuclide info");
        EXPECT_EQ(msgs.shown()[0].text, "Could not load nuclide library information");
        EXPECT_EQ(msgs.shown()[0].icon, MsgIcon::Critical);
    }
}

TEST(EnergyFromListItem, TakesTextBeforeFirstParenthesis) {
    EXPECT_EQ(EnergyFromListItem("1173.228 (Co-6027:1173.23:G)"), "1173.228 ");
    EXPECT_EQ(EnergyFromListItem(" (Co-6027:1173.23:G)"), " ");
    EXPECT_EQ(EnergyFromListItem("a (b) (c)"), "a ");
    EXPECT_EQ(EnergyFromListItem("661.66"), "661.66");
    EXPECT_EQ(EnergyFromListItem("(x)"), "");
}
