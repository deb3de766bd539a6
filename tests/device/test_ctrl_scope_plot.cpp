// Scope trace coordinates and grid.
#include <gtest/gtest.h>

#include "base/VexoError.h"
#include "device/ScopeController.h"
#include "device/ScopePlot.h"

using namespace vexo;

TEST(ScopeFullScale, SixteenBitOnlyForModels10And08) {
    EXPECT_EQ(ScopeFullScale("10-1234"), 65536);
    EXPECT_EQ(ScopeFullScale("08A"), 65536);
    for (const char* serial : {"06-1", "13", "14xyz", "1", "", "01", "80"})
        EXPECT_EQ(ScopeFullScale(serial), 4096) << serial;
}

// Surface 1064 x 440: inner 1024 x 400, so x steps by exactly one unit per sample and
// the centre line is at 20 + 200.
TEST(ScopePlotData, ZeroOnCentreHalfScaleOnTheEdges) {
    ScopeTrace t{};
    t[0] = 0;
    t[1] = 2048;  // +FS/2 of a 12-bit trace: top edge
    t[2] = -2048; // bottom edge
    t[3] = 1024;  // a quarter up
    t[1023] = -1;
    t[1024] = 32767; // the spare sample is never drawn
    const auto p = PlotData(t, 1064, 440, 4096);
    ASSERT_EQ(p.size(), 1024u);
    EXPECT_EQ(p[0].x, 21);
    EXPECT_EQ(p[0].y, 220);
    EXPECT_EQ(p[1].x, 22);
    EXPECT_EQ(p[1].y, 20);
    EXPECT_EQ(p[2].y, 420);
    EXPECT_EQ(p[3].y, 120);
    EXPECT_EQ(p[1023].x, 21 + 1023);
    EXPECT_EQ(p[1023].y, 220); // 220 + 400/4096 = 220.1 rounds back
}

TEST(ScopePlotData, ScalingFollowsTheFullScale) {
    ScopeTrace t{};
    t[0] = 2048;
    t[1] = 32767;
    const auto twelve = PlotData(t, 1064, 440, 4096);
    const auto sixteen = PlotData(t, 1064, 440, 65536);
    EXPECT_EQ(twelve[0].y, 20);
    EXPECT_EQ(sixteen[0].y, 208); // 220 - 2048 * 400 / 65536 = 207.5, ties to even
    EXPECT_EQ(sixteen[1].y, 20);  // 32767 * 400 / 65536 = 199.99 -> top edge
}

TEST(ScopePlotData, RoundingTiesToEven) {
    ScopeTrace t{};
    // Width 532 - 40 = 492: x of sample 1 = 21 + 492/1024 = 21.48 -> 21; sample 533:
    // 21 + 256.08 -> 277.
    const auto p = PlotData(t, 532, 440, 4096);
    EXPECT_EQ(p[1].x, 21);
    EXPECT_EQ(p[533].x, 277);
    // Height 41 - 40 = 1: centre at 20.5, rounded to even 20.
    EXPECT_EQ(PlotData(t, 532, 41, 4096)[0].y, 20);
}

TEST(ScopePlotData, HugeSurfaceIsAnOverflow) {
    ScopeTrace t{};
    EXPECT_THROW(PlotData(t, 40000, 440, 4096), OverflowError);
}

TEST(ScopeGrid, FourColumnsEightRowsInsideTheMargin) {
    const auto lines = DrawGrid(1064, 440);
    ASSERT_EQ(lines.size(), 5u + 9u);
    EXPECT_DOUBLE_EQ(lines[0].x1, 20);
    EXPECT_DOUBLE_EQ(lines[4].x1, 20 + 1024);
    EXPECT_DOUBLE_EQ(lines[1].x1, 20 + 256);
    EXPECT_DOUBLE_EQ(lines[0].y1, 20);
    EXPECT_DOUBLE_EQ(lines[0].y2, 420);
    EXPECT_DOUBLE_EQ(lines[5].y1, 20);
    EXPECT_DOUBLE_EQ(lines[9].y1, 220); // the middle row line is the zero line
    EXPECT_DOUBLE_EQ(lines[13].y1, 420);
}
