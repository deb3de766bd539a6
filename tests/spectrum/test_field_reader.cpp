#include <gtest/gtest.h>

#include "base/VexoError.h"
#include "spectrum/FieldReader.h"

namespace vexo {
namespace {

std::vector<std::string> AllFields(std::string_view text) {
    FieldReader in(text);
    std::vector<std::string> fields;
    while (auto f = in.readField())
        fields.emplace_back(*f);
    return fields;
}

TEST(FieldReader, SeparatorsAreBlanksCommasAndLineEnds) {
    using V = std::vector<std::string>;
    EXPECT_EQ(AllFields(" 1  2\t3\r\n4,5 , 6\n\n7\r8"),
              (V{"1", "2", "3", "4", "5", "6", "7", "8"}));
    EXPECT_EQ(AllFields("1,,2"), (V{"1", "", "2"}));
    EXPECT_EQ(AllFields(",3"), (V{"", "3"}));
    EXPECT_EQ(AllFields("\"a b\",7 \"x\"y 9"), (V{"a b", "7", "x", "9"}));
    EXPECT_EQ(AllFields("  \r\n \n"), V{});
    EXPECT_EQ(AllFields("\"open"), V{"open"});
}

TEST(FieldReader, LineAfterFieldsStartsBehindTheConsumedDelimiter) {
    FieldReader in("1 2\r\nnext line\r\n3 4 rest of it\r\n");
    EXPECT_EQ(in.readLong(), 1);
    EXPECT_EQ(in.readLong(), 2);
    EXPECT_EQ(in.readLine(), "next line");
    EXPECT_EQ(in.readLong(), 3);
    EXPECT_EQ(in.readLine(), "4 rest of it");
    EXPECT_FALSE(in.readLine().has_value());
}

TEST(FieldReader, LinesEndAtCrLfLfOrCr) {
    FieldReader in("a\r\nb\nc\rd");
    EXPECT_EQ(in.readLine(), "a");
    EXPECT_EQ(in.readLine(), "b");
    EXPECT_EQ(in.readLine(), "c");
    std::size_t mark = in.position();
    EXPECT_EQ(in.readLine(), "d");
    in.seek(mark);
    EXPECT_EQ(in.readLine(), "d");
    EXPECT_TRUE(in.atEnd());
}

struct NumberCase {
    const char* field;
    int32_t asLong;
    float asSingle;
};

class FieldReaderNumbers : public ::testing::TestWithParam<NumberCase> {};

TEST_P(FieldReaderNumbers, AsLongAndSingle) {
    FieldReader longs(GetParam().field);
    EXPECT_EQ(longs.readLong(), GetParam().asLong);
    FieldReader singles(GetParam().field);
    EXPECT_EQ(singles.readSingle(), GetParam().asSingle);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, FieldReaderNumbers,
    ::testing::Values(NumberCase{"57", 57, 57.0f}, NumberCase{"-3", -3, -3.0f},
                      NumberCase{"+4", 4, 4.0f}, NumberCase{"2.5", 2, 2.5f},
                      NumberCase{"3.5", 4, 3.5f}, NumberCase{"1.234568E-05", 0, 1.234568e-5f},
                      NumberCase{"PHA", 0, 0.0f}, NumberCase{"12abc", 12, 12.0f},
                      NumberCase{"07/30/2024", 7, 7.0f}, NumberCase{"\"\"", 0, 0.0f},
                      NumberCase{"2147483647", 2147483647, 2147483647.0f}));

TEST(FieldReader, OutOfRangeAndPastTheEnd) {
    FieldReader big("2147483648");
    EXPECT_THROW(big.readLong(), OverflowError);
    FieldReader huge("4e38");
    EXPECT_THROW(huge.readSingle(), OverflowError);
    FieldReader empty(" \r\n ");
    try {
        empty.readLong();
        FAIL() << "no field left must throw";
    } catch (const NumberedError& e) {
        EXPECT_EQ(e.number(), 62);
        EXPECT_STREQ(e.what(), "Input past end of file");
    }
}

} // namespace
} // namespace vexo
