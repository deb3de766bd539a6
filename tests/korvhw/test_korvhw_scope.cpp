// The simulated analyser's digital scope: arming and readiness, trace shapes for the
// shaped and the input signal, and the sample scale of each model.
#include "KorvhwTest.h"

#include <algorithm>
#include <array>

namespace vexo::test {
namespace {

using Trace = std::array<int16_t, KORVHW_SCOPE_SAMPLES>;

class KorvhwScope : public KorvhwTest {
protected:
    // Devices without noise pulses and with a rare source, so a trace holds only
    // its trigger pulse.
    void SetUp() override {
        const std::string rare = kHvOn + "NoiseRate=0\nSources=";
        UseConfig(SimDevice(1, "10000001", "A", rare + "Cs-137:50") +
                  SimDevice(2, "08000003", "C", rare + "Co-60:50\nDetector=HPGe"));
    }
    int32_t ScopeStatus(int32_t h) {
        int32_t status = -1;
        EXPECT_EQ(fn().GetScopeStatus(h, &status), 0);
        return status;
    }
    Trace Capture(int32_t h, int32_t source) {
        EXPECT_EQ(SetInt(h, 24, source), 0);
        EXPECT_EQ(fn().ArmScope(h), 0);
        Status(h); // half a second passes
        EXPECT_EQ(ScopeStatus(h), 0);
        Trace t{};
        EXPECT_EQ(fn().ReadScope(h, t.data()), 0);
        return t;
    }
};

TEST_F(KorvhwScope, ArmedAtOpenAndReadyAfterAShortDelay) {
    const int32_t h = Open("A");
    Trace t{};
    EXPECT_EQ(ScopeStatus(h), 1) << "no simulated time has passed yet";
    EXPECT_EQ(fn().ReadScope(h, t.data()), -6);
    Status(h);
    EXPECT_EQ(ScopeStatus(h), 0);
    EXPECT_EQ(fn().ReadScope(h, t.data()), 0);
    EXPECT_EQ(fn().ArmScope(h), 0);
    EXPECT_EQ(ScopeStatus(h), 1) << "re-armed: waiting for the next capture";
    EXPECT_EQ(SetInt(h, 24, 3), 0);
    EXPECT_EQ(SetInt(h, 24, 8), -16);
}

TEST_F(KorvhwScope, ShapedTraceIsATrapezoidAtTheTrigger) {
    const int32_t h = Open("A");
    const Trace t = Capture(h, 0);
    // Power-up shaping at 80 MHz: rise 80, flat top 40 ticks; 2 ticks per sample.
    const auto top = std::max_element(t.begin(), t.end());
    const int32_t peakAt = static_cast<int32_t>(top - t.begin());
    EXPECT_GE(peakAt, 128 + 38);
    EXPECT_LE(peakAt, 128 + 62);
    EXPECT_GT(*top, 2900) << "above the trigger level";
    // Baseline before the trigger, rising edge, flat top, falling edge, baseline.
    const double noise = 0.0015 * 65536 * 5;
    for (int32_t i = 0; i < 120; ++i)
        ASSERT_LT(std::abs(t[i]), noise) << i;
    EXPECT_NEAR(t[128 + 20], *top / 2.0, noise + *top * 0.1) << "half way up the rise";
    EXPECT_NEAR(t[128 + 50], *top, noise + *top * 0.05) << "flat top";
    EXPECT_NEAR(t[128 + 80], *top / 2.0, noise + *top * 0.1) << "half way down";
    for (int32_t i = 128 + 105; i < 400; ++i)
        ASSERT_LT(std::abs(t[i]), noise) << i;
}

TEST_F(KorvhwScope, InputTraceIsAStepWithSlowDecay) {
    const int32_t h = Open("A");
    const Trace t = Capture(h, 7);
    const auto top = std::max_element(t.begin(), t.end());
    EXPECT_GT(*top, 500);
    EXPECT_LT(top - t.begin(), 128 + 10) << "the preamplifier step rises fast";
    EXPECT_GT(t[1000], *top * 0.5) << "50 us decay is long against the trace";
}

TEST_F(KorvhwScope, WrongPolarityInvertsTheShapedPulse) {
    const int32_t h = Open("C"); // germanium: negative pulses, polarity setting 1
    Trace t = Capture(h, 0);
    EXPECT_GT(*std::max_element(t.begin(), t.end()), 1000);
    ASSERT_EQ(SetInt(h, 11, 0), 0);
    t = Capture(h, 0);
    EXPECT_LT(*std::min_element(t.begin(), t.end()), -1000);
    t = Capture(h, 7);
    EXPECT_LT(*std::min_element(t.begin(), t.end()), -500) << "the input shows the detector's sign";
}

TEST_F(KorvhwScope, WithoutHighVoltageOnlyNoise) {
    const int32_t h = Open("A");
    ASSERT_EQ(SetInt(h, 22, 0), 0);
    const Trace t = Capture(h, 0);
    EXPECT_LT(*std::max_element(t.begin(), t.end()), 0.0015 * 65536 * 6);
}

} // namespace
} // namespace vexo::test
