#include <gtest/gtest.h>

#include <memory>

#include "spectrum/CountRate.h"

namespace vexo {
namespace {

TEST(CountRate, SumsEverySlotOverTheLiveTime) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lCounts[0] = 1000;
    EXPECT_EQ(CountRate(*doc), 0.0f); // no live time: 0
    doc->lChannels = 4;
    doc->lCounts[0] = 10;
    doc->lCounts[3] = -30;    // negative counts count as they are
    doc->lCounts[100] = 30;   // past lChannels: still counted
    doc->lCounts[16384] = 40; // the spare slot: still counted
    doc->sngLiveTime = 0.5f;
    EXPECT_FLOAT_EQ(CountRate(*doc), 100.0f);
    doc->lCounts.fill(2000000000); // the sum does not overflow 32 bits
    doc->sngLiveTime = 16385.0f;
    EXPECT_FLOAT_EQ(CountRate(*doc), 2.0e9f);
}

} // namespace
} // namespace vexo
