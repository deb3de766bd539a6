#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "plot/PlotModel.h"

using namespace vexo;

namespace {

// The reference: every channel walks to its column one at a time. Channel offset j
// of n belongs to column k exactly when k·n < (j+1)·c ≤ (k+1)·n.
std::vector<PlotColumn> ReferenceMinMax(const std::vector<int32_t>& counts, int32_t first,
                                        int32_t last, int columns) {
    const int64_t n = last - first + 1;
    const int64_t c = std::min<int64_t>(columns, n);
    std::vector<PlotColumn> out(static_cast<std::size_t>(c),
                                {std::numeric_limits<int32_t>::max(), -1,
                                 std::numeric_limits<int32_t>::max(),
                                 std::numeric_limits<int32_t>::min()});
    for (int64_t j = 0; j < n; ++j) {
        const int64_t k = ((j + 1) * c - 1) / n;
        PlotColumn& col = out[static_cast<std::size_t>(k)];
        const int32_t ch = first + static_cast<int32_t>(j);
        col.firstChannel = std::min(col.firstChannel, ch);
        col.lastChannel = std::max(col.lastChannel, ch);
        col.minCounts = std::min(col.minCounts, counts[ch]);
        col.maxCounts = std::max(col.maxCounts, counts[ch]);
    }
    return out;
}

void ExpectSame(const std::vector<PlotColumn>& a, const std::vector<PlotColumn>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        EXPECT_EQ(a[i].firstChannel, b[i].firstChannel) << i;
        EXPECT_EQ(a[i].lastChannel, b[i].lastChannel) << i;
        EXPECT_EQ(a[i].minCounts, b[i].minCounts) << i;
        EXPECT_EQ(a[i].maxCounts, b[i].maxCounts) << i;
    }
}

} // namespace

TEST(DecimateMinMax, MatchesReferenceLoop) {
    std::mt19937 rng(12345);
    std::uniform_int_distribution<int32_t> value(-50, 1000000);
    std::vector<int32_t> counts(16385);
    for (auto& v : counts)
        v = value(rng);
    struct Case {
        int32_t first, last;
        int columns;
    };
    for (Case c :
         {Case{0, 16383, 1280}, Case{0, 16383, 1000}, Case{0, 16383, 1}, Case{100, 4195, 777},
          Case{0, 1023, 1280}, Case{5, 5, 10}, Case{0, 16384, 16385}, Case{3000, 3999, 999}}) {
        SCOPED_TRACE(testing::Message() << c.first << ".." << c.last << " in " << c.columns);
        ExpectSame(DecimateMinMax(counts, c.first, c.last, c.columns),
                   ReferenceMinMax(counts, c.first, c.last, c.columns));
    }
}

TEST(DecimateMinMax, EmptyAndClampedRanges) {
    std::vector<int32_t> counts(100, 7);
    EXPECT_TRUE(DecimateMinMax(counts, 10, 5, 10).empty());
    EXPECT_TRUE(DecimateMinMax(counts, 0, 99, 0).empty());
    const auto cols = DecimateMinMax(counts, -20, 500, 1000);
    ASSERT_EQ(cols.size(), 100u);
    EXPECT_EQ(cols.back().lastChannel, 99);
}

TEST(AxisValue, ChannelsEnergyTime) {
    PlotState plot;
    plot.sngOffset = 1.5f;
    plot.sngSlope = 0.5f;
    plot.sngQuad = 0.001f;
    EXPECT_EQ(AxisValue(100, XUnit::Channels, plot, 0.0f), 100.0);
    const float c = 100.0f;
    EXPECT_EQ(AxisValue(100, XUnit::Energy, plot, 0.0f),
              static_cast<double>((0.001f * c + 0.5f) * c + 1.5f));
    EXPECT_NEAR(AxisValue(100, XUnit::Energy, plot, 0.0f), 61.5, 1e-4);
    EXPECT_EQ(AxisValue(40, XUnit::Time, plot, 0.25f), 10.0);
}

TEST(TransformCount, Scales) {
    EXPECT_EQ(TransformCount(250, YScale::Linear), 250);
    EXPECT_EQ(TransformCount(1000, YScale::Log), 3.0);
    EXPECT_EQ(TransformCount(0, YScale::Log), 0.0);
    EXPECT_EQ(TransformCount(-5, YScale::Log), 0.0);
    EXPECT_EQ(TransformCount(144, YScale::Sqrt), 12.0);
    EXPECT_EQ(TransformCount(-4, YScale::Sqrt), 0.0);
}

TEST(YTicks, LogDecadesAndLinearSteps) {
    const auto log = YTicks(5000, YScale::Log);
    ASSERT_GE(log.size(), 4u);
    EXPECT_EQ(log[0].label, "1");
    EXPECT_EQ(log[3].label, "1000");
    EXPECT_EQ(log[3].position, 3.0);
    const auto lin = YTicks(1000, YScale::Linear);
    EXPECT_EQ(lin[0].label, "0");
    EXPECT_EQ(lin[1].label, "200");
    const auto sq = YTicks(1000, YScale::Sqrt);
    EXPECT_EQ(sq[1].position, std::sqrt(200.0));
    // An empty or nearly empty spectrum: whole counts, each label once.
    for (double top : {0.0, 1.0, 3.0}) {
        const auto few = YTicks(top, YScale::Linear);
        for (std::size_t i = 1; i < few.size(); ++i)
            EXPECT_EQ(few[i].label, std::to_string(i)) << top;
    }
}

TEST(SnapToLocalMaximum, PeakTopWithinThreeChannels) {
    SpectrumDocument doc;
    doc.lChannels = 100;
    for (int ch = 45; ch <= 55; ++ch)
        doc.lCounts[ch] = 100 - 10 * std::abs(ch - 50); // a peak at 50
    doc.lCounts[60] = 40;                               // a small one, and a higher one
    doc.lCounts[64] = 50;                               // four channels further
    doc.lCounts[97] = 10, doc.lCounts[98] = 20, doc.lCounts[99] = 30; // rising to the end
    doc.lCounts[100] = 99; // past lChannels: not a channel
    const std::pair<int32_t, int32_t> cases[] = {
        {47, 50}, {53, 50}, {50, 50}, {46, 46}, // the top only within three channels
        {40, 40}, {61, 64}, {60, 60}, {62, 64}, // flat stays; the highest maximum wins
        {97, 99}, {0, 0},   {-1, -1}, {100, 100}};
    for (auto [clicked, snapped] : cases)
        EXPECT_EQ(SnapToLocalMaximum(doc, clicked), snapped) << clicked;
}

TEST(UpdateInfo, UncalibratedCalibratedAndMcs) {
    SpectrumDocument doc;
    doc.lCounts[10] = 77;
    auto r = UpdateInfo(doc, 10);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->channel, "Channel 10");
    EXPECT_EQ(r->counts, "Counts 77");
    EXPECT_EQ(r->position, "Not calibrated");
    EXPECT_FALSE(UpdateInfo(doc, -1).has_value()); // outside the array: nothing
    EXPECT_FALSE(UpdateInfo(doc, 16385).has_value());
    EXPECT_TRUE(UpdateInfo(doc, 16384).has_value());

    doc.setCalibration({true, 0.5, 0.25, 0.0});
    EXPECT_EQ(UpdateInfo(doc, 10)->position, "3.00 keV");
    EXPECT_EQ(UpdateInfo(doc, 0)->position, ".50 keV");

    doc.lMCSMode = 1;
    doc.sngDwellTime = 0.5f;
    EXPECT_EQ(UpdateInfo(doc, 25)->position, "12.5 seconds");
}

TEST(Zoom, InTwiceAndOutWhenNotZoomed) {
    ZoomState z{false, 0, 1023};
    EXPECT_FALSE(ZoomOut(z, 1024));
    EXPECT_EQ(z.xMax, 1023);
    EXPECT_TRUE(ZoomIn(z, 600, 200, 1024));
    EXPECT_TRUE(z.zoomed);
    EXPECT_EQ(z.xMin, 200);
    EXPECT_EQ(z.xMax, 600);
    EXPECT_FALSE(ZoomIn(z, 10, 20, 1024));
    EXPECT_EQ(z.xMin, 200);
    EXPECT_TRUE(ZoomOut(z, 2048));
    EXPECT_FALSE(z.zoomed);
    EXPECT_EQ(z.xMin, 0);
    EXPECT_EQ(z.xMax, 2047);
    // A marked range is clamped to the channels.
    ASSERT_TRUE(ZoomIn(z, -10, 5000, 1024));
    EXPECT_EQ(z.xMin, 0);
    EXPECT_EQ(z.xMax, 1023);
}

TEST(Calibrate, UncalibratedPhaAdoptsDefaultSlope) {
    SpectrumDocument doc;
    ASSERT_FALSE(doc.calibration.bCalibrated);
    const AxisSetup s = Calibrate(doc);
    EXPECT_EQ(s.unit, XUnit::Energy);
    EXPECT_EQ(s.caption, "Energy, keV");
    EXPECT_EQ(doc.plot.sngSlope, 2.5f);
    EXPECT_TRUE(doc.plot.bUseCalibration);
    EXPECT_TRUE(doc.calibration.bCalibrated);
    EXPECT_EQ(AxisValue(100, XUnit::Energy, doc.plot, 0.0f), 250.0);
}

TEST(Calibrate, NarrowsToSingleAndMcsUsesDwell) {
    SpectrumDocument doc;
    doc.calibration = {false, 0.1, 0.3, 1e-7};
    Calibrate(doc);
    EXPECT_EQ(doc.plot.sngOffset, 0.1f);
    EXPECT_EQ(doc.plot.sngSlope, 0.3f);
    EXPECT_EQ(doc.plot.sngQuad, 1e-7f);

    doc.lMCSMode = 1;
    doc.sngDwellTime = 0.2f;
    const AxisSetup s = Calibrate(doc);
    EXPECT_EQ(s.unit, XUnit::Time);
    EXPECT_EQ(s.caption, "Time, seconds");
    EXPECT_EQ(doc.plot.sngSlope, 0.2f);
    EXPECT_EQ(doc.plot.sngOffset, 0.0f);

    const AxisSetup c = ShowChannels(doc);
    EXPECT_EQ(c.caption, "Channels");
    EXPECT_FALSE(doc.plot.bUseCalibration);
}

TEST(ChannelAtAxisValue, InvertsEachUnit) {
    PlotState plot;
    plot.sngOffset = 10.0f;
    plot.sngSlope = 0.5f;
    plot.sngQuad = 1e-5f;
    for (int32_t ch : {0, 1, 517, 4095}) {
        EXPECT_EQ(ChannelAtAxisValue(ch, 0, 4095, XUnit::Channels, plot, 0.0f), ch);
        const double e = AxisValue(ch, XUnit::Energy, plot, 0.0f);
        EXPECT_EQ(ChannelAtAxisValue(e + 0.1, 0, 4095, XUnit::Energy, plot, 0.0f), ch);
        EXPECT_EQ(ChannelAtAxisValue(ch * 0.25 - 0.1, 0, 4095, XUnit::Time, plot, 0.25f), ch);
    }
    EXPECT_EQ(ChannelAtAxisValue(-100.0, 20, 300, XUnit::Channels, plot, 0.0f), 20);
    EXPECT_EQ(ChannelAtAxisValue(1e9, 20, 300, XUnit::Channels, plot, 0.0f), 300);
    plot.sngSlope = -1.0f;
    plot.sngQuad = 0.0f;
    EXPECT_EQ(ChannelAtAxisValue(10.0 - 40.0, 0, 100, XUnit::Energy, plot, 0.0f), 40);
}
