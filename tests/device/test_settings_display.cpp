#include <gtest/gtest.h>

#include "device/DeviceParams.h"
#include "device/SettingsDisplay.h"

using namespace vexo;

TEST(SettingsDisplay, GainFactors) {
    EXPECT_EQ(GainFactor(0), 1);
    EXPECT_EQ(GainFactor(7), 128);
    EXPECT_EQ(GainFactor(10), 1024);
    EXPECT_EQ(FineGainFactor(2048, 4096), 1.0);
    EXPECT_EQ(FineGainFactor(0, 4095), 0.5);
    EXPECT_EQ(FineGainFactor(4095, 4095), 1.5);
    EXPECT_EQ(FineGainSteps(1.0, 4096), 2048);
    EXPECT_EQ(FineGainSteps(9.0, 4095), 4095);
    EXPECT_EQ(FineGainSteps(0.1, 16383), 0);
    for (int32_t s : {0, 1, 777, 8191, 16383})
        EXPECT_EQ(FineGainSteps(FineGainFactor(s, 16383), 16383), s);
}

TEST(SettingsDisplay, ShapingTimesInMicroseconds) {
    EXPECT_DOUBLE_EQ(TicksToMicroseconds(80, 80000000), 1.0);
    EXPECT_DOUBLE_EQ(TicksToMicroseconds(25, 0), 1.0); // no clock known: 25 MHz
    EXPECT_EQ(MicrosecondsToTicks(0.5, 80000000, kFlatTicksMin, kFlatTicksMax), 40);
    EXPECT_EQ(MicrosecondsToTicks(100.0, 80000000, kRiseTicksMin, kRiseTicksMax), 1023);
    EXPECT_EQ(MicrosecondsToTicks(0.0, 80000000, kRiseTicksMin, kRiseTicksMax), 1);
}

TEST(SettingsDisplay, PresetModeKeepsTheExternalBit) {
    const PresetChoice c =
        PresetChoiceFrom(kPresetLiveTime | kPresetTimeActive | kPresetExternalGpio);
    EXPECT_TRUE(c.timeActive);
    EXPECT_TRUE(c.liveTime);
    EXPECT_FALSE(c.countsActive);
    EXPECT_EQ(PresetModeFrom({false, false, true}, kPresetExternalGpio | kPresetLiveTime),
              kPresetExternalGpio | kPresetCountsActive);
    EXPECT_EQ(PresetModeFrom({true, true, false}, 0), kPresetLiveTime | kPresetTimeActive);
}

TEST(SettingsDisplay, HighVoltageLimits) {
    EXPECT_EQ(ClampHighVoltage(2000.0f, 1200.0f), 1200.0f);
    EXPECT_EQ(ClampHighVoltage(-5.0f, 1200.0f), 0.0f);
    EXPECT_EQ(ClampHighVoltage(1400.0f, 0.0f), 1400.0f);
    EXPECT_EQ(ClampHighVoltage(1600.0f, 0.0f), 1500.0f);
}

TEST(SettingsDisplay, HighVoltageStateTexts) {
    EXPECT_STREQ(HVStateText(0), "Off");
    EXPECT_STREQ(HVStateText(kHVOn), "On");
    EXPECT_STREQ(HVStateText(kHVOn | kHVRamping), "Ramping");
    EXPECT_STREQ(HVStateText(kHVOn | kHVRamping | kHVInhibited), "Inhibited");
}
