// Faults the simulated analyser produces on demand: failing opens, a dropped link,
// failing parameter ids and a share of failed spectrum reads.
#include "KorvhwFixture.h"

namespace vexo::test {
namespace {

class KorvhwFaults : public KorvhwTest {};

TEST_F(KorvhwFaults, OpenFailsTheConfiguredNumberOfTimes) {
    UseConfig(DeviceSection(1, "10000001", "A", "OpenFailures=2"));
    lib().FindDevicesEx(0, 50, 1);
    int32_t handle = 0;
    EXPECT_EQ(lib().OpenDevice("A", &handle), -8);
    EXPECT_EQ(lib().OpenDevice("USB:A", &handle), -8);
    EXPECT_EQ(handle, 0);
    ASSERT_EQ(lib().OpenDevice("A", &handle), 0);
    m_open.push_back(handle);
    EXPECT_NE(handle, 0);
}

TEST_F(KorvhwFaults, DroppedLinkAnswersConnectionClosedEverywhere) {
    UseConfig(DeviceSection(1, "10000001", "A", "DisconnectAfter=2"));
    const int32_t h = Open("A");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Status(h), 0);
    int32_t word = 0, value = 0, channels = 0;
    EXPECT_EQ(lib().GetAcquisitionStatus(h, &word), -9) << "2 s after opening";
    std::vector<int32_t> counts(KORVHW_SPECTRUM_SLOTS);
    float rt = 0, lt = 0;
    int16_t samples[KORVHW_SCOPE_SAMPLES];
    EXPECT_EQ(lib().GetParam(h, 6, &value, 4), -9);
    EXPECT_EQ(lib().SetParam(h, 6, &value, 4), -9);
    EXPECT_EQ(lib().StartAcquisition(h), -9);
    EXPECT_EQ(lib().StopAcquisition(h), -9);
    EXPECT_EQ(lib().ClearAll(h), -9);
    EXPECT_EQ(lib().ReadSpectrum(h, counts.data(), &channels, &rt, &lt), -9);
    EXPECT_EQ(lib().ArmScope(h), -9);
    EXPECT_EQ(lib().GetScopeStatus(h, &word), -9);
    EXPECT_EQ(lib().ReadScope(h, samples), -9);
    EXPECT_EQ(lib().SaveSettings(h), -9);
    EXPECT_EQ(lib().CloseDevice(h), -9) << "closing still ends the handle";
    m_open.clear();
    EXPECT_EQ(lib().CloseDevice(h), -15);
    // Plugged in again, the device opens afresh.
    const int32_t again = Open("A");
    EXPECT_EQ(Status(again), 0);
}

TEST_F(KorvhwFaults, ConfiguredParameterIdsFailWithTheirCode) {
    UseConfig(DeviceSection(1, "10000001", "A", "FailParam=22:-12, 35:-10"));
    const int32_t h = Open("A");
    int32_t value = 0;
    EXPECT_EQ(GetInt(h, 22, value), -12);
    EXPECT_EQ(SetInt(h, 22, 1), -12);
    EXPECT_EQ(GetInt(h, 35, value), -10);
    EXPECT_EQ(GetInt(h, 6, value), 0);
    EXPECT_EQ(GetInt(h, 36, value), 0);
}

TEST_F(KorvhwFaults, ShareOfSpectrumReadsFails) {
    struct Case {
        const char* share;
        int lo, hi; // failures out of 1000
    };
    for (const Case& c : {Case{"0", 0, 0}, Case{"0.3", 250, 350}, Case{"1", 1000, 1000}}) {
        UseConfig(
            DeviceSection(1, "10000001", "A", std::string("ReadSpectrumFailShare=") + c.share));
        const int32_t h = Open("A");
        int failures = 0;
        for (int i = 0; i < 1000; ++i) {
            const Readout r = Read(h);
            if (r.status != 0) {
                EXPECT_EQ(r.status, -12);
                ++failures;
            }
        }
        EXPECT_GE(failures, c.lo) << c.share;
        EXPECT_LE(failures, c.hi) << c.share;
        Close(h);
    }
}

} // namespace
} // namespace vexo::test
