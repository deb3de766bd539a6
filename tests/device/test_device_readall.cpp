// Read-all, write-all and the identity read against the simulated analyser: the
// capability paths of the three models, the legacy preset and window writes, the
// polarity packing on the wire, and parameter reads that fail.
#include <gtest/gtest.h>

#include <array>

#include "SimAnalyser.h"
#include "base/Messages.h"
#include "device/ConnectionController.h"
#include "device/DeviceIO.h"

namespace vexo {
namespace {

using Id = DeviceParamId;

class ReadAllTest : public ::testing::Test {
protected:
    void Load(const std::string& devices) { m_sim.write(devices); }
    // Opens the configured device as the program does (identity, then read-all).
    void Connect(const std::string& path) { ASSERT_TRUE(m_sim.open(path)) << path; }
    int32_t Raw(Id id) {
        int32_t value = 0;
        EXPECT_EQ(m_sim.lib->getParam(m_sim.doc->hDevice, id, value), 0) << "id " << ToInt(id);
        return value;
    }
    test::SimAnalyser m_sim;
    ScriptedMessages& m_messages = m_sim.messages;
};

constexpr int32_t kAllOfModel10 = 7 | kCapInputCounts | kCapBLRRate | kCapPURGuard | kCapTRPGuard |
                                  kCapLTTrim | kCapGpio | kCapAnalogPZ | kCapHVInhibit;

TEST_F(ReadAllTest, CurrentModelTenAnswersEveryOptionalId) {
    Load(test::Model10());
    Connect("KORV-10-001");
    EXPECT_TRUE(m_messages.shown().empty());
    EXPECT_EQ(m_sim.doc->szDeviceName, "KORV MCA-10");
    EXPECT_EQ(m_sim.doc->szDeviceSerial, "10230417");
    EXPECT_EQ(m_sim.doc->szFirmwareVersion, "V3.4");
    EXPECT_EQ(m_sim.doc->nFwMajor, 3);
    EXPECT_EQ(m_sim.doc->nFwMinor, 4);
    EXPECT_EQ(m_sim.doc->szFirmwareDate, DeviceDateText("20230915"));
    EXPECT_EQ(m_sim.doc->szProductionDate, DeviceDateText("20231102"));
    EXPECT_EQ(m_sim.doc->lCapabilities, kAllOfModel10);
    EXPECT_EQ(m_sim.doc->lFineGainMax, 16383);
    EXPECT_EQ(m_sim.doc->lClockHz, 80000000);
    EXPECT_FLOAT_EQ(m_sim.doc->sngMaxHV, 1500.0f);
    EXPECT_EQ(m_sim.doc->lChannels, Raw(Id::Channels));
    EXPECT_EQ(m_sim.doc->lCoarseGain, Raw(Id::CoarseGain));
    EXPECT_EQ(m_sim.doc->lFineGain, Raw(Id::FineGain));
    EXPECT_EQ(m_sim.doc->lPresetMode, Raw(Id::PresetMode));
    EXPECT_EQ(m_sim.doc->lPresetFirstCh, Raw(Id::PresetFirstCh));
    EXPECT_EQ(m_sim.doc->lPresetLastCh, Raw(Id::PresetLastCh));
    EXPECT_EQ(m_sim.doc->lULD, Raw(Id::ULD));
    // In PHA mode the SCA window is read from the same ids as LLD/ULD.
    EXPECT_EQ(m_sim.doc->lSCALow, m_sim.doc->lLLD);
    EXPECT_EQ(m_sim.doc->lSCAHigh, m_sim.doc->lULD);
    EXPECT_EQ(m_sim.doc->sngDwellTime, m_sim.doc->sngPresetTime);
    EXPECT_EQ(Raw(Id::ConnectFlags), 256);
}

TEST_F(ReadAllTest, ModelEightLacksAnalogPoleZeroAndHVInhibit) {
    Load(test::Model08("V3.2"));
    Connect("192.168.0.42");
    EXPECT_EQ(m_sim.doc->lCapabilities, kAllOfModel10 & ~(kCapAnalogPZ | kCapHVInhibit));
    EXPECT_EQ(m_sim.doc->lAnalogPZ, 0);
    EXPECT_EQ(m_sim.doc->lHVInhibitEnable, 0);
    EXPECT_EQ(m_sim.doc->lFineGainMax, 4095);
    EXPECT_EQ(m_sim.doc->lClockHz, 25000000);
    EXPECT_FLOAT_EQ(m_sim.doc->sngMaxHV, 5000.0f);
}

TEST_F(ReadAllTest, FineGainRangeFollowsModelAndFirmware) {
    const struct {
        const char* firmware;
        int32_t max;
    } table[] = {{"V3.2", 4095}, {"V3.3", 16383}, {"V4.0", 16383}, {"V2.9", 4095}};
    for (const auto& row : table) {
        Load(test::Model08(row.firmware));
        Connect("192.168.0.42");
        EXPECT_EQ(m_sim.doc->lFineGainMax, row.max) << row.firmware;
        CloseMca(*m_sim.lib, *m_sim.doc);
    }
}

TEST_F(ReadAllTest, OldModelSixUsesLegacyPresetWordAndGpioSwitch) {
    Load(test::Model06());
    m_sim.doc->lPresetFirstCh = 77;
    m_sim.doc->lPresetLastCh = 88;
    Connect("KORV-06-003");
    // No id 30: capability 2 cleared; no id 35; the legacy GPIO switch answers.
    EXPECT_EQ(m_sim.doc->lCapabilities, 1 | kCapPresetWindow | kCapGpioLegacy);
    EXPECT_EQ(m_sim.doc->lPresetMode, Raw(Id::PresetModeLegacy) | kPresetTimeActive);
    EXPECT_EQ(m_sim.doc->lPresetFirstCh, 0);
    EXPECT_EQ(m_sim.doc->lPresetLastCh, 0);
    EXPECT_EQ(m_sim.doc->lGPIO1Func, Raw(Id::GpioLegacy) != 0 ? 1 : 0);
    // Ids 42 and 44 answer 0 on this firmware.
    EXPECT_EQ(m_sim.doc->lClockHz, 25000000);
    EXPECT_FLOAT_EQ(m_sim.doc->sngMaxHV, 1500.0f);
    EXPECT_EQ(m_sim.doc->lFineGainMax, 4095);
    EXPECT_EQ(m_sim.doc->nFwMajor, 2);
    EXPECT_EQ(m_sim.doc->nFwMinor, 1);
}

TEST_F(ReadAllTest, LegacyGpioSwitchReadsAsOneWhenSet) {
    Load(test::Model06());
    Connect("KORV-06-003");
    ASSERT_EQ(m_sim.lib->setParam(m_sim.doc->hDevice, Id::GpioLegacy, int32_t{5}), 0);
    ReadAllParams(*m_sim.lib, *m_sim.doc);
    EXPECT_EQ(m_sim.doc->lGPIO1Func, 1);
    m_sim.doc->lGPIO1Func = 0;
    WriteAllParams(*m_sim.lib, *m_sim.doc);
    EXPECT_EQ(Raw(Id::GpioLegacy), 0);
}

TEST_F(ReadAllTest, LegacyWriteSendsRoundedPresetTimeAndOne) {
    Load(test::Model06());
    Connect("KORV-06-003");
    const struct {
        float seconds;
        int32_t word;
    } table[] = {{3.0f, 1}, {4.0f, 0}, {2.5f, 0}, {3.5f, 0}, {1.4f, 1}, {600.0f, 0}};
    for (const auto& row : table) {
        m_sim.doc->sngPresetTime = row.seconds;
        WriteAllParams(*m_sim.lib, *m_sim.doc);
        EXPECT_EQ(Raw(Id::PresetModeLegacy), row.word) << row.seconds;
        float back = 0.0f;
        ASSERT_EQ(m_sim.lib->getParam(m_sim.doc->hDevice, Id::PresetValue, back), 0);
        EXPECT_FLOAT_EQ(back, row.seconds);
        ReadAllParams(*m_sim.lib, *m_sim.doc);
        EXPECT_EQ(m_sim.doc->lPresetMode, row.word | kPresetTimeActive);
    }
}

TEST_F(ReadAllTest, MissingCountsWindowComesFromLldUld) {
    Load(test::Model08() + "FailParam=32:-7\n");
    Connect("192.168.0.42");
    EXPECT_EQ(m_sim.doc->lCapabilities & kCapPresetWindow, 0);
    EXPECT_NE(m_sim.doc->lCapabilities & kCapPresetMode, 0);
    EXPECT_EQ(m_sim.doc->lPresetFirstCh, Raw(Id::LLD));
    EXPECT_EQ(m_sim.doc->lPresetLastCh, Raw(Id::ULD));

    // Write-all passes the window through 7/8 and then overwrites them: PHA gets
    // LLD/ULD, MCS the SCA window.
    m_sim.doc->lPresetFirstCh = 100;
    m_sim.doc->lPresetLastCh = 200;
    m_sim.doc->lLLD = 12;
    m_sim.doc->lULD = 900;
    WriteAllParams(*m_sim.lib, *m_sim.doc);
    EXPECT_EQ(Raw(Id::LLD), 12);
    EXPECT_EQ(Raw(Id::ULD), 900);

    m_sim.doc->lMCSMode = 1;
    m_sim.doc->lSCALow = 30;
    m_sim.doc->lSCAHigh = 40;
    m_sim.doc->sngDwellTime = 0.5f;
    WriteAllParams(*m_sim.lib, *m_sim.doc);
    EXPECT_EQ(Raw(Id::AcqMode), 1);
    EXPECT_EQ(Raw(Id::LLD), 30);
    EXPECT_EQ(Raw(Id::ULD), 40);
    float dwell = 0.0f;
    ASSERT_EQ(m_sim.lib->getParam(m_sim.doc->hDevice, Id::PresetValue, dwell), 0);
    EXPECT_FLOAT_EQ(dwell, 0.5f);
}

TEST_F(ReadAllTest, ClockAndMaxHVFallBackWhenNotAnswered) {
    Load(test::Model10() + "FailParam=42:-12, 44:-12\n");
    m_sim.doc->lClockHz = 1;
    m_sim.doc->sngMaxHV = 2.0f;
    Connect("KORV-10-001");
    EXPECT_EQ(m_sim.doc->lClockHz, 25000000);
    EXPECT_FLOAT_EQ(m_sim.doc->sngMaxHV, 1500.0f);
}

TEST_F(ReadAllTest, FailingOptionalReadsClearTheirBitsAndFields) {
    Load(test::Model10() + "FailParam=39:-7, 48:-7, 35:-7\n");
    m_sim.doc->lPURGuard = 5;
    m_sim.doc->lGPIO2Func = 9;
    Connect("KORV-10-001");
    EXPECT_EQ(m_sim.doc->lCapabilities &
                  (kCapPURGuard | kCapGpio | kCapHVInhibit | kCapGpioLegacy | kCapInputCounts),
              0);
    EXPECT_EQ(m_sim.doc->lPURGuard, 0);
    EXPECT_EQ(m_sim.doc->lGPIO2Func, 0);
    EXPECT_NE(m_sim.doc->lCapabilities & kCapTRPGuard, 0);
    EXPECT_TRUE(m_messages.shown().empty()); // read-all never reports
}

TEST_F(ReadAllTest, GpioPolarityIsPackedOnTheWire) {
    Load(test::Model10());
    Connect("KORV-10-001");
    ASSERT_EQ(m_sim.lib->setParam(m_sim.doc->hDevice, Id::Gpio1, int32_t{0x0000800A}), 0);
    ReadAllParams(*m_sim.lib, *m_sim.doc);
    EXPECT_EQ(m_sim.doc->lGPIO1Func, 10);
    EXPECT_EQ(m_sim.doc->bGPIO1Neg, 1);

    m_sim.doc->lGPIO1Func = 10;
    m_sim.doc->bGPIO1Neg = 1;
    m_sim.doc->lGPIO2Func = 3;
    m_sim.doc->bGPIO2Neg = 0;
    m_sim.doc->lHVInhibitEnable = 1;
    m_sim.doc->bHVInhibitNeg = 1;
    ApplyAdvancedSettings(*m_sim.lib, *m_sim.doc);
    EXPECT_EQ(static_cast<uint32_t>(Raw(Id::Gpio1)), 0xFFFF800Au);
    EXPECT_EQ(Raw(Id::Gpio2), 3);
    EXPECT_EQ(static_cast<uint32_t>(Raw(Id::HVInhibit)), 0xFFFF8001u);
}

TEST_F(ReadAllTest, WriteAllThenReadAllRoundTrips) {
    Load(test::Model10());
    Connect("KORV-10-001");
    SpectrumDocument& d = *m_sim.doc;
    d.lChannels = 2048;
    d.lCoarseGain = 3;
    d.lFineGain = 10000;
    d.lDigitalGain = 1;
    d.lRiseTime = 100;
    d.lFlatTop = 50;
    d.lPoleZero = 2100;
    d.lThreshold = 50;
    d.lLLD = 10;
    d.lULD = 2000;
    d.sngPresetTime = 120.0f;
    d.lPresetMode = kPresetLiveTime | kPresetTimeActive | kPresetCountsActive;
    d.lPresetCounts = 5000;
    d.lPresetFirstCh = 100;
    d.lPresetLastCh = 900;
    d.lPolarity = 1;
    d.lBLR = 0;
    d.lPUR = 0;
    d.sngHighVoltage = 700.0f;
    d.lHVOn = 0;
    d.dDeviceCal = {1.5, 0.75, 0.001};
    d.lLTTrim = -3;
    d.lAnalogPZ = 5;
    d.lPURGuard = 2;
    d.lTRPGuard = 1;
    d.lBLRRate = 2;
    d.lGPIO1Func = 4;
    d.bGPIO1Neg = 0;
    d.lGPIO2Func = 7;
    d.bGPIO2Neg = 1;
    d.lHVInhibitEnable = 0;
    d.bHVInhibitNeg = 1;
    WriteAllParams(*m_sim.lib, d);

    auto back = std::make_unique<SpectrumDocument>();
    back->hDevice = d.hDevice;
    back->szDeviceSerial = d.szDeviceSerial;
    back->nFwMajor = d.nFwMajor;
    back->nFwMinor = d.nFwMinor;
    ReadAllParams(*m_sim.lib, *back);
    const SpectrumDocument& b = *back;
    EXPECT_EQ(b.lChannels, 2048);
    EXPECT_EQ(b.lCoarseGain, 3);
    EXPECT_EQ(b.lFineGain, 10000);
    EXPECT_EQ(b.lDigitalGain, 1);
    EXPECT_EQ(b.lRiseTime, 100);
    EXPECT_EQ(b.lFlatTop, 50);
    EXPECT_EQ(b.lPoleZero, 2100);
    EXPECT_EQ(b.lThreshold, 50);
    EXPECT_EQ(b.lLLD, 10);
    EXPECT_EQ(b.lULD, 2000);
    EXPECT_FLOAT_EQ(b.sngPresetTime, 120.0f);
    EXPECT_EQ(b.lPresetMode, d.lPresetMode);
    EXPECT_EQ(b.lPresetCounts, 5000);
    EXPECT_EQ(b.lPresetFirstCh, 100);
    EXPECT_EQ(b.lPresetLastCh, 900);
    EXPECT_EQ(b.lPolarity, 1);
    EXPECT_EQ(b.lBLR, 0);
    EXPECT_EQ(b.lPUR, 0);
    EXPECT_FLOAT_EQ(b.sngHighVoltage, 700.0f);
    EXPECT_EQ(b.lHVOn & kHVOn, 0);
    EXPECT_EQ(b.dDeviceCal[0], static_cast<double>(1.5f));
    EXPECT_EQ(b.dDeviceCal[1], static_cast<double>(0.75f));
    EXPECT_EQ(b.dDeviceCal[2], static_cast<double>(0.001f));
    EXPECT_EQ(b.lLTTrim, -3);
    EXPECT_EQ(b.lAnalogPZ, 5);
    EXPECT_EQ(b.lPURGuard, 2);
    EXPECT_EQ(b.lTRPGuard, 1);
    EXPECT_EQ(b.lBLRRate, 2);
    EXPECT_EQ(b.lGPIO1Func, 4);
    EXPECT_EQ(b.bGPIO1Neg, 0);
    EXPECT_EQ(b.lGPIO2Func, 7);
    EXPECT_EQ(b.bGPIO2Neg, 1);
    EXPECT_EQ(b.lHVInhibitEnable, 0);
    EXPECT_EQ(b.bHVInhibitNeg, 1);
    EXPECT_EQ(Raw(Id::McsChannels), 2048);
}

TEST_F(ReadAllTest, DeviceCalibrationIsWrittenAloneAsFloats) {
    Load(test::Model10());
    Connect("KORV-10-001");
    m_sim.doc->dDeviceCal = {-2.0, 0.5, 1e-4};
    EXPECT_EQ(WriteDeviceCalibration(*m_sim.lib, *m_sim.doc), 0);
    std::array<float, 3> cal{};
    ASSERT_EQ(m_sim.lib->getParam(m_sim.doc->hDevice, Id::DeviceCalibration, cal.data(), 12), 0);
    EXPECT_EQ(cal[0], -2.0f);
    EXPECT_EQ(cal[1], 0.5f);
    EXPECT_EQ(cal[2], 1e-4f);

    auto closed = std::make_unique<SpectrumDocument>();
    EXPECT_EQ(WriteDeviceCalibration(*m_sim.lib, *closed), 0); // nothing open: nothing sent
}

TEST_F(ReadAllTest, IdentityReadFailuresAreShownInReadOrderAndTheReadGoesOn) {
    // Read order is 0, 1, 4, 2, 3: the production date's failure comes before the
    // firmware date's.
    Load(test::Model10() + "FailParam=3:-6, 4:-5, 1:-3\n");
    Connect("KORV-10-001");
    ASSERT_EQ(m_messages.shown().size(), 3u);
    const char* expected[] = {"Invalid TPC/IP socket", "Invalid parameter", "Invalid argument"};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(m_messages.shown()[i].title, "Vexo");
        EXPECT_EQ(m_messages.shown()[i].text, expected[i]);
        EXPECT_EQ(m_messages.shown()[i].icon, MsgIcon::Critical);
    }
    EXPECT_EQ(m_sim.doc->szDeviceName, "KORV MCA-10");
    EXPECT_EQ(m_sim.doc->szFirmwareVersion, "V3.4");
    EXPECT_TRUE(m_sim.doc->bConnected);
    // The serial could not be read, so the model-gated features fall back.
    EXPECT_EQ(m_sim.doc->szDeviceSerial, "");
    EXPECT_EQ(m_sim.doc->lFineGainMax, 4095);
}

TEST_F(ReadAllTest, NothingHappensWithoutADevice) {
    Load(test::Model10());
    m_sim.doc->lCapabilities = 0x55;
    ReadAllParams(*m_sim.lib, *m_sim.doc);
    WriteAllParams(*m_sim.lib, *m_sim.doc);
    ApplyAdvancedSettings(*m_sim.lib, *m_sim.doc);
    EXPECT_EQ(m_sim.doc->lCapabilities, 0x55);
}

} // namespace
} // namespace vexo
