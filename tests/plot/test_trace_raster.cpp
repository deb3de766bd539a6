#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "plot/TraceRaster.h"

using namespace vexo;

namespace {

// Reference: sample every segment finely and keep the smallest y per column.
std::vector<double> SampledTops(const std::vector<PixelPoint>& path, int columns) {
    std::vector<double> tops(columns, std::numeric_limits<double>::infinity());
    for (std::size_t i = 1; i < path.size(); ++i) {
        const PixelPoint a = path[i - 1], b = path[i];
        for (int s = 0; s <= 4000; ++s) {
            const double t = s / 4000.0;
            const double x = a.x + (b.x - a.x) * t, y = a.y + (b.y - a.y) * t;
            const int c = static_cast<int>(std::floor(x));
            if (c >= 0 && c < columns)
                tops[c] = std::min(tops[c], y);
        }
    }
    return tops;
}

} // namespace

TEST(FillTops, MatchesFineSamplingOfRandomPolylines) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> step(0.0, 3.0), height(0.0, 500.0);
    for (int trial = 0; trial < 20; ++trial) {
        std::vector<PixelPoint> path;
        double x = -2.0;
        while (x < 70.0) {
            path.push_back({x, height(rng)});
            if (trial % 2)
                path.push_back({x, height(rng)}); // min/max pairs share x
            x += step(rng);
        }
        const auto fast = FillTops(path, 64);
        const auto ref = SampledTops(path, 64);
        for (int c = 0; c < 64; ++c)
            EXPECT_NEAR(fast[c], ref[c], 0.2) << "trial " << trial << " col " << c;
    }
}

TEST(FillTops, UntouchedColumnsStayInfinite) {
    const std::vector<PixelPoint> path = {{2.5, 10.0}, {4.5, 20.0}};
    const auto tops = FillTops(path, 8);
    EXPECT_TRUE(std::isinf(tops[0]));
    EXPECT_TRUE(std::isinf(tops[1]));
    EXPECT_EQ(tops[2], 10.0);
    EXPECT_EQ(tops[4], 17.5);
    EXPECT_TRUE(std::isinf(tops[5]));
}

TEST(StepPath, GoesAcrossThenUpOrDown) {
    const std::vector<PixelPoint> pts = {{0, 5}, {10, 2}};
    const auto path = StepPath(pts, 20);
    ASSERT_EQ(path.size(), 4u);
    EXPECT_EQ(path[1].x, 10);
    EXPECT_EQ(path[1].y, 5);
    EXPECT_EQ(path[3].x, 20);
    EXPECT_EQ(path[3].y, 2);
    const auto tops = FillTops(path, 20);
    EXPECT_EQ(tops[3], 5);
    EXPECT_EQ(tops[15], 2);
    EXPECT_EQ(tops[10], 2); // the riser column takes the higher bar
}
