// Parameters of the simulated analyser as each model answers them: which ids exist,
// identity texts, ranges and error codes, value encodings, and settings stored with
// SaveSettings across a power cycle.
#include "KorvhwFixture.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace vexo::test {
namespace {

constexpr const char* kPath10 = "KORV-10-001";
constexpr const char* kPath08 = "192.168.0.42";
constexpr const char* kPath06 = "KORV-06-003";

class KorvhwParams : public KorvhwTest {
protected:
    // The built-in set: model 10 (V3.4), 08 (V3.2) and 06 (V2.1).
    void SetUp() override {
        KorvhwTest::SetUp();
        UseConfig("");
    }
};

struct Capability {
    int32_t id;
    int32_t on10, on08, on06; // GetParam result per model
};

TEST_F(KorvhwParams, EachModelAnswersItsOwnIds) {
    const Capability table[] = {
        {5, 0, 0, 0},
        {6, 0, 0, 0},
        {9, 0, 0, 0},
        {10, -7, -7, 0},
        {22, 0, 0, 0},
        {27, 0, 0, 0},
        {28, 0, 0, -7},
        {30, 0, 0, -7},
        {31, 0, 0, -7},
        {32, 0, 0, -7},
        {34, -7, -7, 0},
        {35, 0, 0, -7},
        {36, 0, -7, -7},
        {39, 0, 0, -7},
        {40, 0, 0, -7},
        {41, 0, 0, -7},
        {42, 0, 0, 0},
        {44, 0, 0, 0},
        {48, 0, 0, -7},
        {49, 0, 0, -7},
        {50, 0, 0, -7},
        {51, 0, -7, -7},
        // Ids no model knows.
        {29, -5, -5, -5},
        {33, -5, -5, -5},
        {37, -5, -5, -5},
        {38, -5, -5, -5},
        {43, -5, -5, -5},
        {45, -5, -5, -5},
        {47, -5, -5, -5},
        {52, -5, -5, -5},
        {-1, -5, -5, -5},
        {1000, -5, -5, -5},
    };
    const int32_t h10 = Open(kPath10), h08 = Open(kPath08), h06 = Open(kPath06);
    for (const Capability& c : table) {
        int32_t value = 0;
        EXPECT_EQ(GetInt(h10, c.id, value), c.on10) << "model 10, id " << c.id;
        EXPECT_EQ(GetInt(h08, c.id, value), c.on08) << "model 08, id " << c.id;
        EXPECT_EQ(GetInt(h06, c.id, value), c.on06) << "model 06, id " << c.id;
    }
}

TEST_F(KorvhwParams, IdentityTextsClockAndMaxHV) {
    struct Row {
        const char* path;
        const char* serial;
        const char* firmware;
        int32_t clock;
        int32_t maxHvTenths;
    };
    const Row rows[] = {{kPath10, "10230417", "V3.4", 80000000, 15000},
                        {kPath08, "08190233", "V3.2", 25000000, 50000},
                        {kPath06, "06110108", "V2.1", 0, 0}};
    for (const Row& r : rows) {
        const int32_t h = Open(r.path);
        int32_t status = -1;
        EXPECT_EQ(GetText(h, 1, &status), r.serial);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(GetText(h, 2), r.firmware);
        EXPECT_FALSE(GetText(h, 0).empty());
        for (int32_t dateId : {3, 4}) {
            const std::string date = GetText(h, dateId);
            ASSERT_EQ(date.size(), 8u) << r.path;
            EXPECT_EQ(date.find_first_not_of("0123456789"), std::string::npos);
        }
        int32_t clock = -1, maxHv = -1;
        EXPECT_EQ(GetInt(h, 42, clock), 0);
        EXPECT_EQ(clock, r.clock);
        EXPECT_EQ(GetInt(h, 44, maxHv), 0);
        EXPECT_EQ(maxHv, r.maxHvTenths);
        Close(h);
    }
}

TEST_F(KorvhwParams, FineGainTopFollowsModelAndFirmware) {
    UseConfig(DeviceSection(1, "10000001", "A", "Firmware=V3.4") +
              DeviceSection(2, "08000002", "B", "Firmware=V3.2") +
              DeviceSection(3, "08000003", "C", "Firmware=V3.3") +
              DeviceSection(4, "08000004", "D", "Firmware=V4.0") +
              DeviceSection(5, "06000005", "E", "Firmware=V4.0"));
    const struct {
        const char* path;
        bool wide;
    } rows[] = {{"A", true}, {"B", false}, {"C", true}, {"D", true}, {"E", false}};
    for (const auto& r : rows) {
        const int32_t h = Open(r.path);
        EXPECT_EQ(SetInt(h, 14, 4095), 0) << r.path;
        EXPECT_EQ(SetInt(h, 14, 16383), r.wide ? 0 : -16) << r.path;
        EXPECT_EQ(SetInt(h, 14, 16384), -16) << r.path;
        Close(h);
    }
}

struct RangeCase {
    int32_t id;
    int32_t value;
    int32_t expected;
};

TEST_F(KorvhwParams, IntegerRangesOfTheCurrentModel) {
    const RangeCase cases[] = {
        {5, 0, 0},
        {5, 1, 0},
        {5, 2, -16},
        {6, 256, 0},
        {6, 16384, 0},
        {6, 300, -16},
        {6, 128, -16},
        {6, 32768, -16},
        {26, 2048, 0},
        {26, 1000, -16},
        {7, 0, 0},
        {7, 16383, 0},
        {7, 16384, -16},
        {7, -1, -16},
        {12, 10, 0},
        {12, 11, -16},
        {13, 0, 0},
        {13, 7, 0},
        {13, 8, -16},
        {13, -1, -16},
        {15, 1, 0},
        {15, 0, -16},
        {15, 1023, 0},
        {16, 1024, -16},
        {17, 65535, 0},
        {17, 65536, -16},
        {18, 16384, -16},
        {24, 0, 0},
        {24, 7, 0},
        {24, 8, -16},
        {28, -1, -16},
        {30, 15, 0},
        {30, 16, -16},
        {31, 16383, 0},
        {32, 16384, -16},
        {36, 4095, 0},
        {36, 4096, -16},
        {39, 7, 0},
        {39, 8, -16},
        {40, 8, -16},
        {41, -512, 0},
        {41, -513, -16},
        {41, 511, 0},
        {50, 3, 0},
        {50, 4, -16},
        {48, 127, 0},
        {48, 128, -16},
        {48, static_cast<int32_t>(0xFFFF800A), 0},
        {49, 0x4000, -16},
        {51, 1, 0},
        {51, 2, -16},
        {51, static_cast<int32_t>(0xFFFF8001), 0},
        // Read-only ids.
        {27, 0, -7},
        {35, 0, -7},
        {42, 25000000, -7},
        {44, 1, -7},
    };
    const int32_t h = Open(kPath10);
    for (const RangeCase& c : cases)
        EXPECT_EQ(SetInt(h, c.id, c.value), c.expected) << "id " << c.id << " = " << c.value;
}

TEST_F(KorvhwParams, WrittenValuesReadBackIncludingPolarityPacking) {
    const int32_t h = Open(kPath10);
    for (int32_t packed : {static_cast<int32_t>(0xFFFF800A), 10, 0}) {
        ASSERT_EQ(SetInt(h, 48, packed), 0);
        int32_t back = 0;
        ASSERT_EQ(GetInt(h, 48, back), 0);
        EXPECT_EQ(back, packed);
    }
    const float cal[3] = {-1.25f, 0.3125f, 1.5e-6f};
    ASSERT_EQ(lib().SetParam(h, 25, cal, 12), 0);
    float back[3] = {};
    ASSERT_EQ(lib().GetParam(h, 25, back, 12), 0);
    EXPECT_EQ(std::memcmp(cal, back, 12), 0);
}

TEST_F(KorvhwParams, HighVoltageIsLimitedToTheModelsMaximum) {
    const struct {
        const char* path;
        float limit; // id 44 answering 0 still means a 1500 V limit
    } rows[] = {{kPath10, 1500.0f}, {kPath08, 5000.0f}, {kPath06, 1500.0f}};
    for (const auto& r : rows) {
        const int32_t h = Open(r.path);
        EXPECT_EQ(SetFloat(h, 21, r.limit), 0) << r.path;
        EXPECT_EQ(SetFloat(h, 21, r.limit + 1.0f), -16) << r.path;
        EXPECT_EQ(SetFloat(h, 21, -1.0f), -16);
        EXPECT_EQ(SetFloat(h, 21, std::numeric_limits<float>::quiet_NaN()), -16);
        float v = 0;
        EXPECT_EQ(GetFloat(h, 21, v), 0);
        EXPECT_EQ(v, r.limit) << "a refused value leaves the old one";
        Close(h);
    }
}

TEST_F(KorvhwParams, PresetValueAndWindowBelongToTheMode) {
    const int32_t h = Open(kPath10);
    ASSERT_EQ(SetFloat(h, 9, 10.0f), 0);
    ASSERT_EQ(SetInt(h, 7, 12), 0);
    ASSERT_EQ(SetInt(h, 5, 1), 0);
    float dwell = 0;
    ASSERT_EQ(GetFloat(h, 9, dwell), 0);
    EXPECT_EQ(dwell, 1.0f) << "MCS dwell time is its own value";
    EXPECT_EQ(SetFloat(h, 9, 0.0f), -16) << "a dwell time of 0 is refused";
    ASSERT_EQ(SetFloat(h, 9, 0.25f), 0);
    ASSERT_EQ(SetInt(h, 7, 300), 0);
    ASSERT_EQ(SetInt(h, 5, 0), 0);
    float preset = 0;
    int32_t lld = 0;
    ASSERT_EQ(GetFloat(h, 9, preset), 0);
    ASSERT_EQ(GetInt(h, 7, lld), 0);
    EXPECT_EQ(preset, 10.0f);
    EXPECT_EQ(lld, 12);
    EXPECT_EQ(SetFloat(h, 9, 0.0f), 0) << "PHA: preset time 0 means none";
}

TEST_F(KorvhwParams, BuffersAreChecked) {
    const int32_t h = Open(kPath10);
    int32_t value = 0;
    char text[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(lib().GetParam(h, 6, &value, 2), -6);
    EXPECT_EQ(lib().GetParam(h, 6, nullptr, 4), -6);
    EXPECT_EQ(lib().SetParam(h, 6, nullptr, 4), -6);
    EXPECT_EQ(lib().GetParam(h, 25, &value, 4), -6);
    ASSERT_EQ(lib().GetParam(h, 1, text, 4), 0);
    EXPECT_STREQ(text, "102") << "texts are cut to the buffer and terminated";
    EXPECT_EQ(lib().SetParam(h, 0, "NEW", 4), -7) << "identity is read-only";
    int32_t found = 0, status = 0;
    EXPECT_EQ(lib().GetAcquisitionStatus(h, nullptr), -6);
    EXPECT_EQ(lib().ReadSpectrum(h, nullptr, &found, nullptr, nullptr), -6);
    EXPECT_EQ(lib().GetScopeStatus(h, nullptr), -6);
    EXPECT_EQ(lib().FindDevicesEx(0, 0, 1), -6);
    (void)status;
}

TEST_F(KorvhwParams, SaveSettingsSurvivesAPowerCycle) {
    const std::string devices = DeviceSection(1, "10000001", "A");
    UseConfig(devices);
    int32_t h = Open("A");
    ASSERT_EQ(SetInt(h, 13, 3), 0);
    ASSERT_EQ(SetInt(h, 6, 4096), 0);
    ASSERT_EQ(SetFloat(h, 9, 42.5f), 0);
    ASSERT_EQ(SetInt(h, 30, 3), 0);
    ASSERT_EQ(lib().SaveSettings(h), 0);
    ASSERT_EQ(SetInt(h, 13, 5), 0); // changed after storing: lost at power-off
    Close(h);
    const std::string stored = ReadBytes(m_dir / "10000001.ini");
    EXPECT_NE(stored.find("CoarseGain=3\r\n"), std::string::npos) << stored;
    EXPECT_NE(stored.find("PresetTime=42.5\r\n"), std::string::npos) << stored;

    // A changed configuration text builds the devices afresh: a power cycle.
    UseConfig(devices, "; power cycle\r\n");
    h = Open("A");
    int32_t coarse = 0, channels = 0, mode = 0;
    float preset = 0;
    EXPECT_EQ(GetInt(h, 13, coarse), 0);
    EXPECT_EQ(coarse, 3);
    EXPECT_EQ(GetInt(h, 6, channels), 0);
    EXPECT_EQ(channels, 4096);
    EXPECT_EQ(GetFloat(h, 9, preset), 0);
    EXPECT_EQ(preset, 42.5f);
    EXPECT_EQ(GetInt(h, 30, mode), 0);
    EXPECT_EQ(mode, 3);
}

TEST_F(KorvhwParams, DamagedSettingsFileGivesDefaultsForBadValues) {
    WriteBytes(m_dir / "10000001.ini",
               "[Settings]\nChannels=7\nCoarseGain=99\nFineGain=100\nHighVoltage=nan\nLLD=x\n");
    UseConfig(DeviceSection(1, "10000001", "A"));
    const int32_t h = Open("A");
    int32_t channels = 0, coarse = 0, fine = 0;
    float hv = 0;
    EXPECT_EQ(GetInt(h, 6, channels), 0);
    EXPECT_EQ(channels, 1024);
    EXPECT_EQ(GetInt(h, 13, coarse), 0);
    EXPECT_EQ(coarse, 2);
    EXPECT_EQ(GetInt(h, 14, fine), 0);
    EXPECT_EQ(fine, 100) << "valid values are taken";
    EXPECT_EQ(GetFloat(h, 21, hv), 0);
    EXPECT_EQ(hv, 800.0f);
}

TEST_F(KorvhwParams, RestoreDefaultsKeepsTheHighVoltageSwitch) {
    UseConfig(DeviceSection(1, "10000001", "A"));
    const int32_t h = Open("A");
    ASSERT_EQ(SetInt(h, 13, 6), 0);
    ASSERT_EQ(lib().RestoreDefaults(h), 0);
    int32_t coarse = 0, hv = 0;
    EXPECT_EQ(GetInt(h, 13, coarse), 0);
    EXPECT_EQ(coarse, 2);
    EXPECT_EQ(GetInt(h, 22, hv), 0);
    EXPECT_EQ(hv & 1, 1);
}

} // namespace
} // namespace vexo::test
