// The calibration dialog's logic: fits, Compute's point rules and messages, the
// acceptance question and the energy lists from a nuclide library.
#include <gtest/gtest.h>

#include <random>

#include "TestSupport.h"
#include "base/VexoError.h"
#include "spectrum/CalibrationSolver.h"

using namespace vexo;
using vexo::test::TempDir;
using vexo::test::WriteBytes;

namespace {

EnergyCalibration Marked() {
    return {false, 11.0, 22.0, 33.0};
} // recognisable "before"

CalibrationCompute ComputeRows(const std::array<CalibrationRowText, 3>& rows,
                               ScriptedMessages& msgs, EnergyCalibration previous = Marked()) {
    return Compute(rows, previous, msgs);
}

} // namespace

TEST(FitLine, OffsetComesFromTheLargerChannel) {
    EnergyCalibration up = Marked(), down = Marked();
    FitLine(400, 661.7, 800, 1332.5, up);
    FitLine(800, 1332.5, 400, 661.7, down);
    EXPECT_EQ(up, down); // bit for bit: both take the offset from channel 800
    double slope = (1332.5 - 661.7) / 400.0;
    EXPECT_EQ(up.dSlope, slope);
    EXPECT_EQ(up.dOffset, 1332.5 - slope * 800.0);
    EXPECT_EQ(up.dQuad, 0.0);
    EXPECT_FALSE(up.bCalibrated);
}

TEST(FitLine, EqualChannelsLeaveCalibrationUntouched) {
    EnergyCalibration cal = Marked();
    FitLine(100, 1, 100, 2, cal);
    EXPECT_EQ(cal, Marked());
}

TEST(FitLine, OverflowRaisesAndKeepsCalibration) {
    EnergyCalibration cal = Marked();
    EXPECT_THROW(FitLine(0, -1.7e308, 1, 1.7e308, cal), FloatingPointError);
    EXPECT_EQ(cal, Marked());
}

TEST(FitParabola, RecoversAKnownQuadratic) {
    std::mt19937 rng(12345);
    std::uniform_real_distribution<double> coef(-1.0, 1.0);
    std::uniform_int_distribution<int> channel(0, 16383);
    for (int trial = 0; trial < 200; ++trial) {
        double a = 50 * coef(rng), b = 3 * coef(rng), c = 1e-4 * coef(rng);
        int x[3];
        do {
            for (int& xi : x)
                xi = channel(rng);
        } while (x[0] == x[1] || x[0] == x[2] || x[1] == x[2]);
        auto y = [&](int ch) { return a + b * ch + c * ch * double(ch); };
        EnergyCalibration cal = Marked();
        FitParabola(x[0], y(x[0]), x[1], y(x[1]), x[2], y(x[2]), cal);
        EXPECT_NEAR(cal.dQuad, c, 1e-12) << trial;
        EXPECT_NEAR(cal.dSlope, b, 1e-8) << trial;
        EXPECT_NEAR(cal.dOffset, a, 1e-4) << trial;
    }
}

TEST(FitParabola, ExactSmallCase) {
    // E = 2 + 3 ch + 0.5 ch^2 through channels 0, 2, 4: all terms exact in binary.
    EnergyCalibration cal = Marked();
    FitParabola(0, 2, 2, 10, 4, 22, cal);
    EXPECT_EQ(cal.dQuad, 0.5);
    EXPECT_EQ(cal.dSlope, 3.0);
    EXPECT_EQ(cal.dOffset, 2.0);
}

TEST(FitParabola, CoincidentChannelsLeaveCalibrationUntouched) {
    EnergyCalibration cal = Marked();
    FitParabola(1, 1, 1, 2, 3, 3, cal);
    EXPECT_EQ(cal, Marked());
}

TEST(FitParabola, OverflowRaisesAndKeepsCalibration) {
    EnergyCalibration cal = Marked();
    EXPECT_THROW(FitParabola(0, 1e307, 1000, -1e307, 2000, 1e307, cal), FloatingPointError);
    EXPECT_EQ(cal, Marked());
}

TEST(Compute, OnePointIsALineThroughTheOrigin) {
    ScriptedMessages msgs;
    auto r = ComputeRows({{{"100", "661.66"}, {"", ""}, {"", ""}}}, msgs);
    EXPECT_TRUE(msgs.shown().empty());
    EXPECT_TRUE(r.computed);
    EXPECT_EQ(r.cal.dOffset, 0.0);
    EXPECT_DOUBLE_EQ(r.cal.dSlope, 6.6166);
    EXPECT_EQ(r.cal.dQuad, 0.0);
    EXPECT_EQ(r.lblOffset, "0.000");
    EXPECT_EQ(r.lblSlope, "6.617");
    EXPECT_EQ(r.lblQuadratic, "0.000");
}

TEST(Compute, TwoPointsInEitherOrderGiveTheSameLine) {
    ScriptedMessages msgs;
    auto asc = ComputeRows({{{"400", "661.7"}, {"800", "1332.5"}, {"", ""}}}, msgs);
    auto desc = ComputeRows({{{"800", "1332.5"}, {"400", "661.7"}, {"", ""}}}, msgs);
    EXPECT_TRUE(msgs.shown().empty());
    EXPECT_EQ(asc.cal, desc.cal);
    double slope = (1332.5 - 661.7) / 400.0;
    EXPECT_EQ(asc.cal.dSlope, slope);
    EXPECT_EQ(asc.cal.dOffset, 1332.5 - slope * 800.0); // from channel 800, bit for bit
    EXPECT_EQ(asc.lblSlope, "1.677");
    EXPECT_EQ(asc.lblOffset, "-9.100");
}

TEST(Compute, RowsAAndCWithBEmptyMakeTwoPoints) {
    ScriptedMessages msgs;
    auto r = ComputeRows({{{"400", "661.7"}, {"", ""}, {"800", "1332.5"}}}, msgs);
    EnergyCalibration line = Marked();
    FitLine(400, 661.7, 800, 1332.5, line);
    EXPECT_EQ(r.cal, line);
    EXPECT_TRUE(msgs.shown().empty());
}

TEST(Compute, ThreeCollinearPointsHaveNoQuadraticTerm) {
    ScriptedMessages msgs;
    auto r = ComputeRows({{{"100", "250"}, {"200", "500"}, {"300", "750"}}}, msgs);
    EXPECT_NEAR(r.cal.dQuad, 0.0, 1e-12);
    EXPECT_NEAR(r.cal.dSlope, 2.5, 1e-9);
    EXPECT_NEAR(r.cal.dOffset, 0.0, 1e-6);
    EXPECT_EQ(r.lblQuadratic, "0.000");
}

TEST(Compute, ThreePointsRecoverAParabola) {
    ScriptedMessages msgs;
    // E = 1 + 2 ch + 0.001 ch^2
    auto r = ComputeRows({{{"100", "211"}, {"1000", "3001"}, {"2000", "8001"}}}, msgs);
    EXPECT_NEAR(r.cal.dQuad, 0.001, 1e-12);
    EXPECT_NEAR(r.cal.dSlope, 2.0, 1e-9);
    EXPECT_NEAR(r.cal.dOffset, 1.0, 1e-6);
}

TEST(Compute, RefusalsShowTheirMessageAndKeepCoefficients) {
    struct Case {
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
    };
    for (const auto& c : cases) {
        ScriptedMessages msgs;
        auto r = ComputeRows(c.rows, msgs);
        ASSERT_EQ(msgs.shown().size(), 1u) << c.message;
        const Message& m = msgs.shown()[0];
        EXPECT_EQ(m.text, c.message);
        EXPECT_EQ(m.title, "Vexo");
        EXPECT_EQ(m.icon, MsgIcon::Critical);
        EXPECT_EQ(m.buttons, MsgButtons::Ok);
        EXPECT_EQ(r.cal, Marked());
        EXPECT_EQ(r.lblOffset, "11.000");
        EXPECT_EQ(r.lblSlope, "22.000");
        EXPECT_EQ(r.lblQuadratic, "33.000");
        EXPECT_TRUE(r.computed); // the dialog sets its flag after a message as well
    }
}

TEST(Compute, UnparsableAndOutOfRangeRowsAreLeftOut) {
    ScriptedMessages msgs;
    // Row A's channel does not fit 16 bits, row B's energy is no number: one point left.
    auto r = ComputeRows({{{"40000", "100"}, {"200", "abc"}, {"100", "661.66"}}}, msgs);
    EXPECT_TRUE(msgs.shown().empty());
    EXPECT_DOUBLE_EQ(r.cal.dSlope, 6.6166);
    EXPECT_EQ(r.cal.dOffset, 0.0);
    // 32767 still fits, 32768 does not.
    auto edge = ComputeRows({{{"32768", "1"}, {"32767", "32767"}, {"", "5"}}}, msgs);
    EXPECT_DOUBLE_EQ(edge.cal.dSlope, 1.0);
}

TEST(Compute, NoPointsFitsNothing) {
    ScriptedMessages msgs;
    auto r = ComputeRows({{{"", ""}, {"x", "1"}, {"5", ""}}}, msgs);
    EXPECT_TRUE(msgs.shown().empty());
    EXPECT_EQ(r.cal, Marked());
    EXPECT_TRUE(r.computed);
}

TEST(Compute, ListItemTextWorksAsEnergy) {
    ScriptedMessages msgs;
    auto r = ComputeRows(
        {{{"100", EnergyFromListItem("661.66 (Cs-13755:661.66:G)")}, {"", ""}, {"", ""}}}, msgs);
    EXPECT_DOUBLE_EQ(r.cal.dSlope, 6.6166);
}

TEST(Compute, FitOverflowIsReportedNotThrown) {
    ScriptedMessages msgs;
    auto r = ComputeRows({{{"1", "-1.7e308"}, {"2", "1.7e308"}, {"", ""}}}, msgs);
    ASSERT_EQ(msgs.shown().size(), 1u);
    EXPECT_EQ(msgs.shown()[0].title, "Vexo");
    EXPECT_EQ(msgs.shown()[0].icon, MsgIcon::Critical);
    EXPECT_EQ(r.cal, Marked());
}

TEST(Compute, CalibratedFlagIsCarriedOver) {
    ScriptedMessages msgs;
    EnergyCalibration previous = Marked();
    previous.bCalibrated = true;
    auto r = ComputeRows({{{"100", "661.66"}, {"", ""}, {"", ""}}}, msgs, previous);
    EXPECT_TRUE(r.cal.bCalibrated);
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
                                "[Cs-13755:661.66:G]\r\nEn=661.6553\r\n"
                                "[Co-6027:1173.23:G]\r\nNucName=Co-60\r\n"
                                "[Am-24195:59.54:G]\r\nEn= 59.5409 \r\n");
    ScriptedMessages msgs;
    auto items = EnergyListEntries(dir / "lib.nli", msgs);
    EXPECT_TRUE(msgs.shown().empty());
    std::vector<std::string> expected{"661.6553 (Cs-13755:661.66:G)", " (Co-6027:1173.23:G)",
                                      "59.5409 (Am-24195:59.54:G)"};
    EXPECT_EQ(items, expected);
    EXPECT_EQ(EnergyFromListItem(items[0]), "661.6553 ");
    EXPECT_EQ(EnergyFromListItem(items[1]), " ");
}

TEST(EnergyLists, HeaderOnlyLibraryGivesNothingSilently) {
    TempDir dir;
    WriteBytes(dir / "lib.nli", "[Info]\r\nFileID=Vexo Nuclide Library\r\n");
    ScriptedMessages msgs;
    EXPECT_TRUE(EnergyListEntries(dir / "lib.nli", msgs).empty());
    EXPECT_TRUE(msgs.shown().empty());
    WriteBytes(dir / "empty.nli", "");
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
    EXPECT_EQ(EnergyFromListItem("a (b) (c)"), "a ");
    EXPECT_EQ(EnergyFromListItem("661.66"), "661.66");
    EXPECT_EQ(EnergyFromListItem("(x)"), "");
    EXPECT_EQ(EnergyFromListItem(""), "");
}
