// Emission-line records: the radiation table, half-life units and their conversions.
#include <gtest/gtest.h>

#include "base/VexoError.h"
#include "nuclide/clsNuclide.h"

using namespace vexo;

TEST(RadiationType, CodeSelectsRowByLowFiveBits) {
    // The same row is reached through '@'+row, lower case letters and punctuation alike.
    const struct {
        const char* code;
        const char* text;
        DecayRadiation group;
    } cases[] = {
        {"@", "B+", BetaPlus},       {"A", "B+ TOTAL", BetaPlus}, {"b", "G ANH", Gamma},
        {"C", "G", Gamma},           {"#", "G", Gamma},           {"c", "G", Gamma},
        {"D", "E AU K", Electron},   {"E", "B-", BetaMinus},      {"F", "B- TOTAL", BetaMinus},
        {"G", "X K", XRay},          {"H", "E CE K", Electron},   {"I", "E CE L", Electron},
        {"J", "X KA1", XRay},        {"K", "E AU L", Electron},   {"L", "X KB", XRay},
        {"M", "X KA2", XRay},        {"N", "X L", XRay},          {"O", "E CE M+", Electron},
        {"P", "E CE M", Electron},   {"Q", "E CE N+", Electron},  {"R", "A", Alpha},
        {"Rest ignored", "A", Alpha}};
    for (const auto& c : cases) {
        clsNuclide n;
        ASSERT_TRUE(n.bSetRadType(c.code)) << c.code;
        EXPECT_EQ(n.szDecayRadEx(), c.text);
        EXPECT_EQ(n.eDecayRad(), c.group);
    }
    // "S" is code 83, row 19; "_" is row 31; both lie past the table and change nothing.
    clsNuclide n;
    ASSERT_TRUE(n.bSetRadType("C"));
    for (const char* code : {"S", "s", "_", "\x7f", ""}) {
        EXPECT_FALSE(n.bSetRadType(code)) << static_cast<int>(code[0]);
        EXPECT_EQ(n.szDecayRadEx(), "G");
    }
}

TEST(RadiationType, TextLookupAndCodeAgree) {
    for (int row = 0; row < kRadiationRows; ++row) {
        auto entry = RadiationTableRow(row);
        ASSERT_TRUE(entry);
        EXPECT_EQ(RadiationRowOfText(entry->text), row);
    }
    EXPECT_EQ(RadiationRowOfText(" x ka1 "), 10);
    EXPECT_FALSE(RadiationRowOfText("GAMMA"));
    EXPECT_FALSE(RadiationRowOfText(""));
    EXPECT_FALSE(RadiationTableRow(19));
    EXPECT_FALSE(RadiationTableRow(-1));
    clsNuclide fresh; // a fresh record has no text, unit or half-life
    EXPECT_EQ(fresh.szDecayRadEx(), "");
    EXPECT_EQ(fresh.eUnits(), NoUnit);
    EXPECT_EQ(fresh.dGetHLSec(), 0.0);
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
    for (const std::string& code :
         {std::string("9"), std::string("\x0a"), std::string(), std::string(1, '\0')}) {
        EXPECT_FALSE(n.bSetHL(5.0f, 0.1f, code));
        EXPECT_EQ(n.eUnits(), Years);
        EXPECT_FLOAT_EQ(n.sHL(), 5.0f);
        EXPECT_FLOAT_EQ(n.sDHL, 0.1f);
    }
}

TEST(HalfLifeUnits, SecondsWithSinglePrecisionFactors) {
    // A year is 365.24 days: 31556736 s exactly (the single product lands on it).
    const struct {
        float halfLife;
        int unit;
        double seconds;
    } cases[] = {{1.0f, Years, 31556736.0},
                 {2.0f, Years, 63113472.0},
                 {1.0f, Days, 86400.0},
                 {2.5f, Hours, 9000.0},
                 {3.0f, Minutes, 180.0},
                 {7.0f, Seconds, 7.0},
                 {4.0f, Milliseconds, 4.0 * double(1e-3f)},
                 {4.0f, Microseconds, 4.0 * double(1e-6f)},
                 {4.0f, Nanoseconds, 4.0 * double(1e-9f)},
                 {4.0f, Picoseconds, 4.0 * double(1e-12f)}};
    for (const auto& c : cases) {
        clsNuclide n;
        ASSERT_TRUE(n.bSetHL(c.halfLife, 0.0f, UnitCode(c.unit)));
        EXPECT_DOUBLE_EQ(n.dGetHLSec(), c.seconds) << c.unit;
    }
    EXPECT_DOUBLE_EQ(HalfLifeConversion(Years, Days), 31556736.0 / 86400.0);
    EXPECT_DOUBLE_EQ(HalfLifeConversion(Hours, Minutes), 60.0);
    EXPECT_DOUBLE_EQ(HalfLifeConversion(NoUnit, Seconds), 0.0);
    EXPECT_THROW(HalfLifeConversion(Seconds, NoUnit), FloatingPointError);
    EXPECT_EQ(HalfLifeUnitFactor(0), 0.0f);
    EXPECT_EQ(HalfLifeUnitFactor(10), 0.0f);
}
