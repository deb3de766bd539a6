// Read-all, write-all and the identity read against the simulated analyser: the
// capability paths of the three models, the legacy preset and window writes, the
// polarity packing on the wire, and parameter reads that fail.
#include <gtest/gtest.h>

#include <array>

#include "SimAnalyser.h"
#include "device/ConnectionController.h"
#include "device/DeviceIO.h"

namespace vexo {
namespace {

using Id = DeviceParamId;
using Doc = SpectrumDocument;

class ReadAllTest : public ::testing::Test {
protected:
    // Opens the configured device as the program does (identity, then read-all).
    void Connect(const std::string& devices, const std::string& path = "KORV-10-001") {
        m_sim.write(devices);
        ASSERT_TRUE(m_sim.open(path)) << path;
    }
    int32_t Raw(Id id) {
        int32_t value = 0;
        EXPECT_EQ(lib.getParam(d.hDevice, id, value), 0) << "id " << ToInt(id);
        return value;
    }
    float RawFloat(Id id) {
        float value = 0;
        EXPECT_EQ(lib.getParam(d.hDevice, id, value), 0) << "id " << ToInt(id);
        return value;
    }

    test::SimAnalyser m_sim;
    Doc& d = *m_sim.doc;
    DeviceLibrary& lib = *m_sim.lib;
};

constexpr int32_t kAllOfModel10 = 7 | kCapInputCounts | kCapBLRRate | kCapPURGuard | kCapTRPGuard |
                                  kCapLTTrim | kCapGpio | kCapAnalogPZ | kCapHVInhibit;

TEST_F(ReadAllTest, CurrentModelTenAnswersEveryOptionalId) {
    Connect(test::Model10());
    EXPECT_TRUE(m_sim.messages.shown().empty());
    EXPECT_EQ(d.szDeviceName + " " + d.szDeviceSerial + " " + d.szFirmwareVersion,
              "KORV MCA-10 10230417 V3.4");
    EXPECT_EQ(d.nFwMajor * 10 + d.nFwMinor, 34);
    EXPECT_EQ(d.szFirmwareDate, DeviceDateText("20230915"));
    EXPECT_EQ(d.szProductionDate, DeviceDateText("20231102"));
    EXPECT_EQ((std::array{d.lCapabilities, d.lFineGainMax, d.lClockHz}),
              (std::array{kAllOfModel10, 16383, 80000000}));
    EXPECT_FLOAT_EQ(d.sngMaxHV, 1500.0f);
    for (auto [field, id] : {std::pair{&Doc::lChannels, Id::Channels},
                             {&Doc::lULD, Id::ULD},
                             {&Doc::lCoarseGain, Id::CoarseGain},
                             {&Doc::lFineGain, Id::FineGain},
                             {&Doc::lPresetMode, Id::PresetMode},
                             {&Doc::lPresetFirstCh, Id::PresetFirstCh},
                             {&Doc::lPresetLastCh, Id::PresetLastCh}})
        EXPECT_EQ(d.*field, Raw(id)) << ToInt(id);
    // In PHA mode the SCA window and the dwell time are read from the same ids as
    // LLD/ULD and the preset time.
    EXPECT_EQ((std::array{d.lSCALow, d.lSCAHigh}), (std::array{d.lLLD, d.lULD}));
    EXPECT_EQ(d.sngDwellTime, d.sngPresetTime);
    EXPECT_EQ(Raw(Id::ConnectFlags), 256);
}

TEST_F(ReadAllTest, ModelEightLacksAnalogPoleZeroAndHVInhibitAndFineGainFollowsFirmware) {
    for (auto [firmware, max] :
         {std::pair{"V3.2", 4095}, {"V3.3", 16383}, {"V4.0", 16383}, {"V2.9", 4095}}) {
        Connect(test::Model08(firmware), "192.168.0.42");
        EXPECT_EQ(d.lFineGainMax, max) << firmware;
        EXPECT_EQ(d.lCapabilities, kAllOfModel10 & ~(kCapAnalogPZ | kCapHVInhibit));
        EXPECT_EQ(d.lAnalogPZ + d.lHVInhibitEnable, 0);
        EXPECT_EQ(d.lClockHz, 25000000);
        EXPECT_FLOAT_EQ(d.sngMaxHV, 5000.0f);
        CloseMca(lib, d);
    }
}

TEST_F(ReadAllTest, OldModelSixUsesTheLegacyPresetWordAndGpioSwitch) {
    d.lPresetFirstCh = 77;
    d.lPresetLastCh = 88;
    Connect(test::Model06(), "KORV-06-003");
    // No id 30: capability 2 cleared; no id 35; the legacy GPIO switch answers. Ids 42
    // and 44 answer 0 on this firmware.
    EXPECT_EQ((std::array{d.lCapabilities, d.lPresetFirstCh, d.lPresetLastCh, d.lClockHz,
                          d.lFineGainMax}),
              (std::array{1 | kCapPresetWindow | kCapGpioLegacy, 0, 0, 25000000, 4095}));
    EXPECT_EQ(d.lPresetMode, Raw(Id::PresetModeLegacy) | kPresetTimeActive);
    EXPECT_FLOAT_EQ(d.sngMaxHV, 1500.0f);
    ASSERT_EQ(lib.setParam(d.hDevice, Id::GpioLegacy, int32_t{5}), 0);
    ReadAllParams(lib, d);
    EXPECT_EQ(d.lGPIO1Func, 1); // any value of the switch reads as 1
    d.lGPIO1Func = 0;
    // The word is the rounded preset time's lowest bit (ties to even) and 1.
    for (auto [seconds, word] :
         {std::pair{3.0f, 1}, {4.0f, 0}, {2.5f, 0}, {3.5f, 0}, {1.4f, 1}, {600.0f, 0}}) {
        d.sngPresetTime = seconds;
        WriteAllParams(lib, d);
        EXPECT_EQ(Raw(Id::PresetModeLegacy), word) << seconds;
        EXPECT_FLOAT_EQ(RawFloat(Id::PresetValue), seconds);
        ReadAllParams(lib, d);
        EXPECT_EQ(d.lPresetMode, word | kPresetTimeActive);
    }
    EXPECT_EQ(Raw(Id::GpioLegacy), 0);
}

TEST_F(ReadAllTest, FailingOptionalReadsClearTheirBitsAndFieldsSilently) {
    d.lPURGuard = 5;
    d.lGPIO2Func = 9;
    d.lClockHz = 1;
    d.sngMaxHV = 2.0f;
    Connect(test::Model10("FailParam=39:-7, 48:-7, 35:-7, 42:-12, 44:-12"));
    EXPECT_EQ(d.lCapabilities & (kCapPURGuard | kCapGpio | kCapHVInhibit | kCapGpioLegacy |
                                 kCapInputCounts | kCapTRPGuard),
              kCapTRPGuard);
    EXPECT_EQ(d.lPURGuard + d.lGPIO2Func, 0);
    // Clock and maximum HV fall back when not answered.
    EXPECT_EQ(d.lClockHz, 25000000);
    EXPECT_FLOAT_EQ(d.sngMaxHV, 1500.0f);
    EXPECT_TRUE(m_sim.messages.shown().empty()); // read-all never reports
}

TEST_F(ReadAllTest, WriteAllThenReadAllRoundTripsAndPacksPolarities) {
    Connect(test::Model10());
    ASSERT_EQ(lib.setParam(d.hDevice, Id::Gpio1, int32_t{0x0000800A}), 0);
    ReadAllParams(lib, d);
    EXPECT_EQ(d.lGPIO1Func * 10 + d.bGPIO1Neg, 101);
    const std::pair<int32_t Doc::*, int32_t> ints[] = {{&Doc::lChannels, 2048},
                                                       {&Doc::lCoarseGain, 3},
                                                       {&Doc::lFineGain, 10000},
                                                       {&Doc::lDigitalGain, 1},
                                                       {&Doc::lRiseTime, 100},
                                                       {&Doc::lFlatTop, 50},
                                                       {&Doc::lPoleZero, 2100},
                                                       {&Doc::lThreshold, 50},
                                                       {&Doc::lLLD, 10},
                                                       {&Doc::lULD, 2000},
                                                       {&Doc::lPresetMode, 7},
                                                       {&Doc::lPresetCounts, 5000},
                                                       {&Doc::lPresetFirstCh, 100},
                                                       {&Doc::lPresetLastCh, 900},
                                                       {&Doc::lPolarity, 1},
                                                       {&Doc::lBLR, 0},
                                                       {&Doc::lPUR, 0},
                                                       {&Doc::lHVOn, 0},
                                                       {&Doc::lLTTrim, -3},
                                                       {&Doc::lAnalogPZ, 5},
                                                       {&Doc::lPURGuard, 2},
                                                       {&Doc::lTRPGuard, 1},
                                                       {&Doc::lBLRRate, 2},
                                                       {&Doc::lGPIO1Func, 10},
                                                       {&Doc::bGPIO1Neg, 1},
                                                       {&Doc::lGPIO2Func, 7},
                                                       {&Doc::bGPIO2Neg, 0},
                                                       {&Doc::lHVInhibitEnable, 1},
                                                       {&Doc::bHVInhibitNeg, 1}};
    for (auto [field, value] : ints)
        d.*field = value;
    d.sngPresetTime = 120.0f;
    d.sngHighVoltage = 700.0f;
    d.dDeviceCal = {1.5, 0.75, 0.001};
    ApplyAdvancedSettings(lib, d);
    EXPECT_EQ(static_cast<uint32_t>(Raw(Id::Gpio1)), 0xFFFF800Au);
    EXPECT_EQ(Raw(Id::Gpio2), 7);
    EXPECT_EQ(static_cast<uint32_t>(Raw(Id::HVInhibit)), 0xFFFF8001u);
    WriteAllParams(lib, d);
    EXPECT_EQ(Raw(Id::McsChannels), 2048);

    auto back = std::make_unique<Doc>();
    back->hDevice = d.hDevice;
    back->szConnectedSerial = d.szConnectedSerial;
    back->nFwMajor = d.nFwMajor;
    back->nFwMinor = d.nFwMinor;
    ReadAllParams(lib, *back);
    for (auto [field, value] : ints)
        EXPECT_EQ((*back).*field, value);
    EXPECT_FLOAT_EQ(back->sngPresetTime, 120.0f);
    EXPECT_FLOAT_EQ(back->sngHighVoltage, 700.0f);
    EXPECT_EQ(back->dDeviceCal, (std::array<double, 3>{1.5f, 0.75f, 0.001f}));
}

TEST_F(ReadAllTest, DeviceCalibrationIsWrittenAloneAsFloats) {
    auto closed = std::make_unique<Doc>();
    EXPECT_EQ(WriteDeviceCalibration(lib, *closed), 0); // nothing open: nothing sent
    Connect(test::Model10());
    d.dDeviceCal = {-2.0, 0.5, 1e-4};
    EXPECT_EQ(WriteDeviceCalibration(lib, d), 0);
    std::array<float, 3> cal{};
    ASSERT_EQ(lib.getParam(d.hDevice, Id::DeviceCalibration, cal.data(), 12), 0);
    EXPECT_EQ(cal, (std::array{-2.0f, 0.5f, 1e-4f}));
}

TEST_F(ReadAllTest, IdentityReadFailuresAreShownInReadOrderAndTheReadGoesOn) {
    // Read order is 0, 1, 4, 2, 3: the production date's failure comes before the
    // firmware date's.
    Connect(test::Model10("FailParam=3:-6, 4:-5, 1:-3"));
    ASSERT_EQ(m_sim.messages.shown().size(), 3u);
    const char* expected[] = {"Invalid TPC/IP socket", "Invalid parameter", "Invalid argument"};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(m_sim.messages.shown()[i].title, "Vexo");
        EXPECT_EQ(m_sim.messages.shown()[i].text, expected[i]);
        EXPECT_EQ(m_sim.messages.shown()[i].icon, MsgIcon::Critical);
    }
    EXPECT_EQ(d.szDeviceName + " " + d.szFirmwareVersion, "KORV MCA-10 V3.4");
    EXPECT_TRUE(d.bConnected);
    // The serial could not be read, so the model-gated features fall back.
    EXPECT_EQ(d.szDeviceSerial, "");
    EXPECT_EQ(d.lFineGainMax, 4095);
}

TEST_F(ReadAllTest, NothingHappensWithoutADevice) {
    d.lCapabilities = 0x55;
    ReadAllParams(lib, d);
    WriteAllParams(lib, d);
    ApplyAdvancedSettings(lib, d);
    EXPECT_EQ(d.lCapabilities, 0x55);
}

} // namespace
} // namespace vexo
