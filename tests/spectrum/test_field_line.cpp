#include <gtest/gtest.h>

#include "base/NumberText.h"
#include "spectrum/FieldLine.h"

namespace vexo {
namespace {

TEST(FieldLine, ItemsStartEveryFourteenColumns) {
    EXPECT_EQ(FieldLine().integer(57).str(), " 57 ");
    EXPECT_EQ(FieldLine().integer(1).integer(-3).integer(2147483647).str(),
              " 1            -3             2147483647 ");
    EXPECT_EQ(FieldLine().text("").text("x").str(), std::string(14, ' ') + "x");
    // A 13-character item still leaves one blank before the next zone.
    EXPECT_EQ(FieldLine().single(-1.234568e-38f).text("y").str(), "-1.234568E-38 y");
    // A longer one pushes the next item to the following zone.
    EXPECT_EQ(FieldLine().text("ABCDEFGHIJKLMN").text("z").str(),
              "ABCDEFGHIJKLMN" + std::string(14, ' ') + "z");
}

TEST(FieldLine, IntegerItemsMatchTheSharedIntegerItem) {
    for (long long v :
         {0LL, 1LL, -1LL, 9LL, 10LL, -10LL, 57LL, 16383LL, 99999LL, 1234567890LL, 2147483647LL,
          -2147483648LL, 9223372036854775807LL, -9223372036854775807LL}) {
        FieldLine line;
        line.integer(v);
        EXPECT_EQ(line.str(), IntegerItem(v)) << v;
    }
}

TEST(FieldLine, AppendsToAnOuterBufferWithColumnsFromTheLineStart) {
    std::string file = "$DATA:\r\n";
    FieldLine(file).integer(0).integer(15);
    EXPECT_EQ(file, "$DATA:\r\n 0             15 ");
}

TEST(FieldLine, SinglesAsTextAndAsNumberItems) {
    EXPECT_EQ(FieldLine().single(0.5f).single(1234567.0f).single(12345678.0f).str(),
              "0.5           1234567       1.234568E+07");
    EXPECT_EQ(FieldLine().singleNumber(300.0f).singleNumber(-1.5f).str(), " 300          -1.5 ");
    EXPECT_EQ(SingleText(-0.0f), "0");
    EXPECT_EQ(FieldLine().singleNumber(-0.0f).str(), " 0 ");
}

} // namespace
} // namespace vexo
