// Emission-line records: the radiation table, half-life units and their conversions.
#include <gtest/gtest.h>

#include "base/VexoError.h"
#include "nuclide/clsNuclide.h"

using namespace vexo;

struct RadiationCase {
    const char* code;
    const char* text;
    DecayRadiation group;
};

class RadiationTypeTest : public ::testing::TestWithParam<RadiationCase> {};

TEST_P(RadiationTypeTest, CodeSelectsRowByLowFiveBits) {
    const auto& c = GetParam();
    clsNuclide n;
    ASSERT_TRUE(n.bSetRadType(c.code)) << c.code;
    EXPECT_EQ(n.szDecayRadEx(), c.text);
    EXPECT_EQ(n.eDecayRad(), c.group);
}

// The same row is reached through '@'+row, lower case letters and punctuation alike.
INSTANTIATE_TEST_SUITE_P(
    Rows, RadiationTypeTest,
    ::testing::Values(RadiationCase{"@", "B+", BetaPlus}, RadiationCase{"A", "B+ TOTAL", BetaPlus},
                      RadiationCase{"b", "G ANH", Gamma}, RadiationCase{"C", "G", Gamma},
                      RadiationCase{"#", "G", Gamma}, RadiationCase{"c", "G", Gamma},
                      RadiationCase{"D", "E AU K", Electron}, RadiationCase{"E", "B-", BetaMinus},
                      RadiationCase{"F", "B- TOTAL", BetaMinus}, RadiationCase{"G", "X K", XRay},
                      RadiationCase{"H", "E CE K", Electron},
                      RadiationCase{"I", "E CE L", Electron}, RadiationCase{"J", "X KA1", XRay},
                      RadiationCase{"K", "E AU L", Electron}, RadiationCase{"L", "X KB", XRay},
                      RadiationCase{"M", "X KA2", XRay}, RadiationCase{"N", "X L", XRay},
                      RadiationCase{"O", "E CE M+", Electron},
                      RadiationCase{"P", "E CE M", Electron},
                      RadiationCase{"Q", "E CE N+", Electron}, RadiationCase{"R", "A", Alpha},
                      RadiationCase{"Rest ignored", "A", Alpha}));

TEST(RadiationType, RowsBeyondTheTableChangeNothing) {
    clsNuclide n;
    ASSERT_TRUE(n.bSetRadType("C"));
    // "S" is code 83, row 19; "_" is row 31; both lie past the table.
    for (const char* code : {"S", "s", "_", "\x7f", ""}) {
        EXPECT_FALSE(n.bSetRadType(code)) << static_cast<int>(code[0]);
        EXPECT_EQ(n.szDecayRadEx(), "G");
        EXPECT_EQ(n.eDecayRad(), Gamma);
    }
}

TEST(RadiationType, TextLookupAndCodeAgree) {
    for (int row = 0; row < kRadiationRows; ++row) {
        auto entry = RadiationTableRow(row);
        ASSERT_TRUE(entry);
        EXPECT_EQ(RadiationRowOfText(entry->text), row);
        clsNuclide n;
        ASSERT_TRUE(n.bSetRadType(RadiationCode(row)));
        EXPECT_EQ(n.szDecayRadEx(), entry->text);
    }
    EXPECT_EQ(RadiationRowOfText(" x ka1 "), 10);
    EXPECT_FALSE(RadiationRowOfText("GAMMA"));
    EXPECT_FALSE(RadiationRowOfText(""));
    EXPECT_FALSE(RadiationTableRow(19));
    EXPECT_FALSE(RadiationTableRow(-1));
}

TEST(RadiationType, FreshRecordHasNoText) {
    clsNuclide n;
    EXPECT_EQ(n.szDecayRadEx(), "");
    EXPECT_EQ(n.eUnits(), NoUnit);
    EXPECT_EQ(n.dGetHLSec(), 0.0);
}

TEST(HalfLifeUnits, TextsCarryALeadingBlank) {
    const char* expected[] = {"",     " psec", " nsec", " usec", " msec",
                              " sec", " min",  " hrs",  " days", " years"};
    for (int unit = 0; unit <= 9; ++unit)
        EXPECT_STREQ(HalfLifeUnitText(unit), expected[unit]);
    EXPECT_STREQ(HalfLifeUnitText(10), "");
    EXPECT_EQ(HalfLifeUnitOfText("years"), Years);
    EXPECT_EQ(HalfLifeUnitOfText(" hrs"), Hours);
    EXPECT_EQ(HalfLifeUnitOfText("DAYS"), Days);
    EXPECT_FALSE(HalfLifeUnitOfText("y"));
    EXPECT_FALSE(HalfLifeUnitOfText(""));
}

TEST(HalfLifeUnits, SetHLTakesTheCharacterCodeAsUnit) {
    clsNuclide n;
    EXPECT_TRUE(n.bSetHL(30.018f, 0.022f, "\x09"));
    EXPECT_EQ(n.eUnits(), Years);
    EXPECT_FLOAT_EQ(n.sHL(), 30.018f);
    EXPECT_FLOAT_EQ(n.sDHL, 0.022f);
    // Codes outside 1..9 keep the unit but still store the values.
    for (const char* code : {"9", "\x0a", ""}) {
        EXPECT_FALSE(n.bSetHL(5.0f, 0.1f, code));
        EXPECT_EQ(n.eUnits(), Years);
        EXPECT_FLOAT_EQ(n.sHL(), 5.0f);
        EXPECT_FLOAT_EQ(n.sDHL, 0.1f);
    }
    EXPECT_FALSE(n.bSetHL(1.0f, 0.0f, std::string(1, '\0')));
    EXPECT_EQ(n.eUnits(), Years);
}

struct SecondsCase {
    float halfLife;
    int unit;
    double seconds;
};

class HalfLifeSecondsTest : public ::testing::TestWithParam<SecondsCase> {};

TEST_P(HalfLifeSecondsTest, ConvertsWithSinglePrecisionFactors) {
    const auto& c = GetParam();
    clsNuclide n;
    ASSERT_TRUE(n.bSetHL(c.halfLife, 0.0f, UnitCode(c.unit)));
    EXPECT_DOUBLE_EQ(n.dGetHLSec(), c.seconds);
}

// A year is 365.24 days: 31556736 s exactly (the single product lands on it).
INSTANTIATE_TEST_SUITE_P(
    Units, HalfLifeSecondsTest,
    ::testing::Values(SecondsCase{1.0f, Years, 31556736.0}, SecondsCase{2.0f, Years, 63113472.0},
                      SecondsCase{1.0f, Days, 86400.0}, SecondsCase{2.5f, Hours, 9000.0},
                      SecondsCase{3.0f, Minutes, 180.0}, SecondsCase{7.0f, Seconds, 7.0},
                      SecondsCase{4.0f, Milliseconds, 4.0 * double(1e-3f)},
                      SecondsCase{4.0f, Microseconds, 4.0 * double(1e-6f)},
                      SecondsCase{4.0f, Nanoseconds, 4.0 * double(1e-9f)},
                      SecondsCase{4.0f, Picoseconds, 4.0 * double(1e-12f)}));

TEST(HalfLifeUnits, ConversionIsFactorRatio) {
    EXPECT_DOUBLE_EQ(HalfLifeConversion(Years, Days), 31556736.0 / 86400.0);
    EXPECT_DOUBLE_EQ(HalfLifeConversion(Hours, Minutes), 60.0);
    EXPECT_DOUBLE_EQ(HalfLifeConversion(Seconds, Seconds), 1.0);
    EXPECT_DOUBLE_EQ(HalfLifeConversion(NoUnit, Seconds), 0.0);
    EXPECT_THROW(HalfLifeConversion(Seconds, NoUnit), FloatingPointError);
    EXPECT_FLOAT_EQ(HalfLifeUnitFactor(Years), 31556736.0f);
    EXPECT_EQ(HalfLifeUnitFactor(0), 0.0f);
    EXPECT_EQ(HalfLifeUnitFactor(10), 0.0f);
}
