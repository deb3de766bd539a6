// Text-to-number rules: lenient leading numbers for library files, strict whole-text
// numbers for typed input.
#include <gtest/gtest.h>

#include <limits>

#include "base/NumberText.h"
#include "base/VexoError.h"

using namespace vexo;

struct LeadingCase {
    const char* text;
    double value;
};

class LeadingNumberTest : public ::testing::TestWithParam<LeadingCase> {};

TEST_P(LeadingNumberTest, StopsAtFirstCharacterThatCannotContinue) {
    EXPECT_DOUBLE_EQ(LeadingNumber(GetParam().text), GetParam().value) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, LeadingNumberTest,
    ::testing::Values(LeadingCase{"661.66", 661.66}, LeadingCase{"  12.5 keV", 12.5},
                      LeadingCase{"", 0}, LeadingCase{"abc", 0}, LeadingCase{"-", 0},
                      LeadingCase{".", 0}, LeadingCase{"-.5", -0.5}, LeadingCase{"+7", 7},
                      LeadingCase{"5.", 5}, LeadingCase{"1.2.3", 1.2}, LeadingCase{"1,5", 1},
                      LeadingCase{"2e", 2}, LeadingCase{"2e+", 2}, LeadingCase{"2E3x", 2000},
                      LeadingCase{"8e-04", 0.0008}, LeadingCase{"1e-999", 0},
                      LeadingCase{"0.000e99999", 0}, LeadingCase{"\t3", 3}, LeadingCase{"0x10", 0},
                      LeadingCase{"007", 7}));

TEST(LeadingNumber, BeyondDoubleRangeIsAnOverflow) {
    EXPECT_THROW(LeadingNumber("1e999"), OverflowError);
    EXPECT_THROW(LeadingNumber("-1e400"), OverflowError);
    EXPECT_THROW(LeadingNumber(std::string(400, '9')), OverflowError);
    EXPECT_EQ(LeadingNumber("0." + std::string(400, '0') + "1"), 0.0);
    EXPECT_DOUBLE_EQ(LeadingNumber("1.7976931348623157e308"), std::numeric_limits<double>::max());
}

TEST(StrictDouble, WholeTextMustBeOneNumber) {
    EXPECT_EQ(StrictDouble("661.66"), 661.66);
    EXPECT_EQ(StrictDouble(" 1332.5 "), 1332.5);
    EXPECT_EQ(StrictDouble("1173.23 "), 1173.23); // an energy-list item's number part
    EXPECT_EQ(StrictDouble("-2e2"), -200.0);
    EXPECT_EQ(StrictDouble("0"), 0.0);
    for (const char* bad :
         {"", " ", "abc", "12abc", "1,5", "1e999", "1 2", ".", "-", "e5", "nan", "inf", "0x10"})
        EXPECT_FALSE(StrictDouble(bad)) << bad;
}

TEST(StrictInt16, RoundsTiesToEvenWithinSixteenBits) {
    EXPECT_EQ(StrictInt16("100"), 100);
    EXPECT_EQ(StrictInt16(" 12.5"), 12);
    EXPECT_EQ(StrictInt16("13.5"), 14);
    EXPECT_EQ(StrictInt16("-0.4"), 0);
    EXPECT_EQ(StrictInt16("32767"), 32767);
    EXPECT_EQ(StrictInt16("32767.4"), 32767);
    EXPECT_EQ(StrictInt16("-32768"), -32768);
    EXPECT_EQ(StrictInt16("1e3"), 1000);
    EXPECT_FALSE(StrictInt16("32768"));
    EXPECT_FALSE(StrictInt16("32767.5")); // rounds to 32768
    EXPECT_FALSE(StrictInt16("-32769"));
    EXPECT_FALSE(StrictInt16("40000"));
    EXPECT_FALSE(StrictInt16(""));
    EXPECT_FALSE(StrictInt16("ch 5"));
}
