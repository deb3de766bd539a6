// Number formats, rounding and date texts shared by files, read-outs and reports.
#include <gtest/gtest.h>

#include <cmath>

#include "base/DateTime.h"
#include "base/NumberText.h"
#include "base/Rounding.h"
#include "base/TextFile.h"
#include "base/VexoError.h"

using namespace vexo;

struct FormatCase {
    double value;
    const char* pattern;
    const char* expected;
};

class FormatNumberTest : public ::testing::TestWithParam<FormatCase> {};

TEST_P(FormatNumberTest, MatchesDisplayFormatting) {
    const auto& c = GetParam();
    EXPECT_EQ(FormatNumber(c.value, c.pattern), c.expected) << c.value << " " << c.pattern;
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, FormatNumberTest,
    ::testing::Values(FormatCase{661.657, "0.00", "661.66"}, FormatCase{2.675, "0.00", "2.68"},
                      FormatCase{0.125, "0.00", "0.13"}, FormatCase{-0.004, "0.00", "0.00"},
                      FormatCase{-1.5, "0.0", "-1.5"}, FormatCase{6.6166, "0.000", "6.617"},
                      FormatCase{1332.5, "0.0000", "1332.5000"}, FormatCase{0.5, ".00", ".50"},
                      FormatCase{12.5, ".00", "12.50"}, FormatCase{9998.996, "###0.00", "9999.00"},
                      FormatCase{0.25, "###0.00", "0.25"},
                      FormatCase{12345.67, "#####.0", "12345.7"}, FormatCase{0.5, "#####.0", ".5"},
                      FormatCase{123456, "0.00E+##", "1.23E+5"},
                      FormatCase{-0.00015, "0.00E+##", "-1.50E-4"},
                      FormatCase{99999, "0.00E+##", "1.00E+5"}, FormatCase{99.5, "0", "100"}));

TEST(FormatNumber, NonFiniteIsAFloatingPointError) {
    for (double v : {std::nan(""), HUGE_VAL, -HUGE_VAL})
        for (const char* pattern : {"0.00", "###0.00", "#####.0", "0.00E+##"})
            EXPECT_THROW(FormatNumber(v, pattern), FloatingPointError) << v << " " << pattern;
    EXPECT_THROW(FormatSingle(INFINITY, "0.0"), FloatingPointError);
}

TEST(SingleToText, GeneralFormSevenDigits) {
    const std::pair<float, const char*> cases[] = {{1.2345678e-5f, "1.234568E-05"},
                                                   {1e-5f, "1E-05"},
                                                   {0.0001f, "0.0001"},
                                                   {0.1f, "0.1"},
                                                   {0.5f, "0.5"},
                                                   {0.0f, "0"},
                                                   {123.456f, "123.456"},
                                                   {1234567.0f, "1234567"},
                                                   {12345678.0f, "1.234568E+07"},
                                                   {-60.25f, "-60.25"}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(SingleToText(value), text) << text;
}

TEST(ShortestSingleText, RoundTripsShortest) {
    EXPECT_EQ(ShortestSingleText(1173.2f), "1173.2");
    EXPECT_EQ(ShortestSingleText(661.66f), "661.66");
    EXPECT_EQ(ShortestSingleText(30.08f), "30.08");
}

TEST(IntegerItem, SignSpaceAndTrailingSpace) {
    EXPECT_EQ(IntegerItem(57), " 57 ");
    EXPECT_EQ(IntegerItem(0), " 0 ");
    EXPECT_EQ(IntegerItem(-3), "-3 ");
}

TEST(Rounding, TiesToEvenAndRanges) {
    EXPECT_EQ(CInt(2.5), 2);
    EXPECT_EQ(CInt(3.5), 4);
    EXPECT_EQ(CInt(-2.5), -2);
    EXPECT_EQ(CLng(36.5), 36);
    EXPECT_EQ(CLng(37.4), 37);
    EXPECT_THROW(CInt(32767.5), OverflowError); // rounds to 32768
    EXPECT_EQ(CInt(32766.5), 32766);
    EXPECT_THROW(CLng(3e9), OverflowError);
    EXPECT_THROW(CLng(std::nan("")), FloatingPointError);
    EXPECT_THROW(AddChecked(2147483647, 1), OverflowError);
}

TEST(DateTime, PatternsAndSerialRoundTrip) {
    double t = SerialFromParts({2024, 3, 7, 14, 5, 9});
    EXPECT_EQ(FormatSerial(t, "mm-dd-yyyy  Hh:Nn:Ss"), "03-07-2024  14:05:09");
    EXPECT_EQ(FormatSerial(t, "yyyymmdd"), "20240307");
    EXPECT_EQ(FormatSerial(t, "HhNnSs"), "140509");
    EXPECT_EQ(FormatSerial(t, "iso"), "2024-03-07T14:05:09");
    EXPECT_DOUBLE_EQ(SerialFromParts({1900, 1, 1, 12, 0, 0}), 2.5);
    EXPECT_EQ(LongDateText(t), "Thursday, March 7, 2024");
    EXPECT_EQ(LongTimeText(t), "2:05:09 PM");
}

TEST(TextFile, CodePageRoundTripAndLineSplitting) {
    std::string bytes = "Caf\xE9 \x80 \x81";
    EXPECT_EQ(Utf8ToWin1252(Win1252ToUtf8(bytes)), bytes);
    EXPECT_EQ(Win1252ToUtf8("\xB5s"), "\xC2\xB5s");
    // Invalid UTF-8 (overlong forms, surrogates, past U+10FFFF) is taken byte for byte;
    // valid characters outside the code page become "?".
    const std::pair<std::string, std::string> cases[] = {
        {"\xC0\x8A", "\xC0\x8A"},
        {"\xE0\x80\xAF", "\xE0\x80\xAF"},
        {"\xF0\x80\x80\xAF", "\xF0\x80\x80\xAF"},
        {"\xED\xA0\x80", "\xED\xA0\x80"},
        {"\xF4\x90\x80\x80", "\xF4\x90\x80\x80"},
        {"\xF8\x88\x80\x80\x80", "\xF8\x88\x80\x80\x80"},
        {"\xC3\xA9", "\xE9"},
        {"\xE2\x82\xAC", "\x80"},
        {"\xF0\x9F\x98\x80", "?"},
        {"\xC2\x80", "?"}};
    for (const auto& [utf8, win1252] : cases)
        EXPECT_EQ(Utf8ToWin1252(utf8), win1252);
    auto lines = SplitLines("a\r\nb\nc\r\n\r\nd");
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[2], "c");
    EXPECT_EQ(lines[3], "");
    EXPECT_EQ(lines[4], "d");
}

TEST(ShortestSingleText, FixedDownToOneTenThousandth) {
    EXPECT_EQ(ShortestSingleText(0.0008f), "0.0008");
    EXPECT_EQ(ShortestSingleText(0.0001f), "0.0001");
    EXPECT_EQ(ShortestSingleText(1e-5f), "1e-05");
    EXPECT_EQ(ShortestSingleText(0.0f), "0");
}
