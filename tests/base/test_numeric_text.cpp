// Automatic read-out format and the tolerant text-to-number conversions.
#include <gtest/gtest.h>

#include <cmath>

#include "base/NumberText.h"
#include "base/VexoError.h"

using namespace vexo;

struct AutoCase {
    double value;
    const char* expected;
};

class FormatAutoThresholds : public ::testing::TestWithParam<AutoCase> {};

TEST_P(FormatAutoThresholds, PicksPatternByMagnitude) {
    EXPECT_EQ(FormatAuto(GetParam().value), GetParam().expected) << GetParam().value;
}

INSTANTIATE_TEST_SUITE_P(
    Magnitudes, FormatAutoThresholds,
    ::testing::Values(AutoCase{0, "0.00"}, AutoCase{0.004, "0.00"}, AutoCase{12.345, "12.35"},
                      // Below 9999 even when the two decimals round up to 9999.00.
                      AutoCase{9998.994, "9998.99"}, AutoCase{9998.996, "9999.00"},
                      AutoCase{9999, "9999.0"}, AutoCase{12345.67, "12345.7"},
                      AutoCase{99998.96, "99999.0"}, AutoCase{99999, "1.00E+5"},
                      AutoCase{999499, "9.99E+5"}, AutoCase{999500, "1.00E+6"},
                      AutoCase{2147483647, "2.15E+9"}, AutoCase{1.5e20, "1.50E+20"},
                      // Negative values: the same thresholds on the magnitude.
                      AutoCase{-5, "-5.00"}, AutoCase{-9998.996, "-9999.00"},
                      AutoCase{-9999, "-9999.0"}, AutoCase{-99999, "-1.00E+5"}));

TEST(FormatAuto, NonFiniteIsAnError) {
    EXPECT_THROW(FormatAuto(std::nan("")), FloatingPointError);
    EXPECT_THROW(FormatAuto(INFINITY), FloatingPointError);
}

struct SafeCase {
    const char* text;
    int16_t i16;
    int32_t i32;
    float f32;
    double f64;
};

class SafeConversions : public ::testing::TestWithParam<SafeCase> {};

TEST_P(SafeConversions, AllFourTargets) {
    const SafeCase& c = GetParam();
    EXPECT_EQ(SafeInt(c.text), c.i16) << '"' << c.text << '"';
    EXPECT_EQ(SafeLng(c.text), c.i32) << '"' << c.text << '"';
    EXPECT_EQ(SafeSng(c.text), c.f32) << '"' << c.text << '"';
    EXPECT_EQ(SafeDbl(c.text), c.f64) << '"' << c.text << '"';
}

INSTANTIATE_TEST_SUITE_P(
    Texts, SafeConversions,
    ::testing::Values(
        SafeCase{"", 0, 0, 0, 0}, SafeCase{"   ", 0, 0, 0, 0}, SafeCase{"12", 12, 12, 12, 12},
        SafeCase{"  12.5  ", 12, 12, 12.5f, 12.5}, // ties to even
        SafeCase{"13.5", 14, 14, 13.5f, 13.5}, SafeCase{"-2.5", -2, -2, -2.5f, -2.5},
        SafeCase{"+7", 7, 7, 7, 7}, SafeCase{".5", 0, 0, 0.5f, 0.5},
        SafeCase{"1e3", 1000, 1000, 1000, 1000}, SafeCase{"2.5E-1", 0, 0, 0.25f, 0.25},
        // Not one number as a whole: 0, never an error.
        SafeCase{"1,5", 0, 0, 0, 0}, SafeCase{"12abc", 0, 0, 0, 0}, SafeCase{"abc", 0, 0, 0, 0},
        SafeCase{"1 2", 0, 0, 0, 0}, SafeCase{"1e", 0, 0, 0, 0}, SafeCase{"-", 0, 0, 0, 0},
        SafeCase{".", 0, 0, 0, 0}, SafeCase{"inf", 0, 0, 0, 0}, SafeCase{"nan", 0, 0, 0, 0},
        SafeCase{"0x10", 0, 0, 0, 0},
        // Beyond the target type: 0 for that type only.
        SafeCase{"32767.4", 32767, 32767, 32767.4f, 32767.4},
        SafeCase{"32767.5", 0, 32768, 32767.5f, 32767.5},
        SafeCase{"-32768.5", -32768, -32768, -32768.5f, -32768.5},
        SafeCase{"40000", 0, 40000, 40000, 40000}, SafeCase{"3e9", 0, 0, 3e9f, 3e9},
        SafeCase{"-2147483648", 0, -2147483647 - 1, -2147483648.0f, -2147483648.0},
        SafeCase{"1e39", 0, 0, 0, 1e39}, SafeCase{"1e400", 0, 0, 0, 0}));
