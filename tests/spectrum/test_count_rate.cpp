#include <gtest/gtest.h>

#include <memory>

#include "spectrum/CountRate.h"

namespace vexo {
namespace {

TEST(CountRate, ZeroLiveTimeGivesZero) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lCounts[0] = 1000;
    doc->sngLiveTime = 0.0f;
    EXPECT_EQ(CountRate(*doc), 0.0f);
}

TEST(CountRate, SumsEverySlotIncludingThosePastTheLastChannel) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lChannels = 4;
    doc->lCounts[0] = 10;
    doc->lCounts[3] = 20;
    doc->lCounts[100] = 30;   // past lChannels: still counted
    doc->lCounts[16384] = 40; // the spare slot: still counted
    doc->sngLiveTime = 4.0f;
    EXPECT_FLOAT_EQ(CountRate(*doc), 25.0f);
}

TEST(CountRate, SumDoesNotOverflowThirtyTwoBits) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lCounts.fill(2000000000);
    doc->sngLiveTime = 16385.0f;
    EXPECT_FLOAT_EQ(CountRate(*doc), 2.0e9f);
}

TEST(CountRate, NegativeCountsAndFractionalLiveTime) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lCounts[5] = -3;
    doc->lCounts[6] = 4;
    doc->sngLiveTime = 0.5f;
    EXPECT_FLOAT_EQ(CountRate(*doc), 2.0f);
}

} // namespace
} // namespace vexo
