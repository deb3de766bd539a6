// Parameters of the simulated analyser as each model answers them: which ids exist,
// identity texts, ranges and error codes, value encodings, and settings stored with
// SaveSettings across a power cycle.
#include "KorvhwTest.h"

#include <cmath>
#include <limits>

namespace vexo::test {
namespace {

// The built-in set: model 10 (V3.4), 08 (V3.2) and 06 (V2.1).
constexpr const char* kPath10 = "KORV-10-001";
constexpr const char* kPath08 = "192.168.0.42";
constexpr const char* kPath06 = "KORV-06-003";

class KorvhwParams : public KorvhwTest {};

TEST_F(KorvhwParams, EachModelAnswersItsOwnIds) {
    // GetParam's result per model: 10, 08, 06. The last rows are ids no model knows.
    const struct {
        int32_t id, on10, on08, on06;
    } table[] = {{5, 0, 0, 0},     {6, 0, 0, 0},     {9, 0, 0, 0},     {10, -7, -7, 0},
                 {22, 0, 0, 0},    {27, 0, 0, 0},    {28, 0, 0, -7},   {30, 0, 0, -7},
                 {31, 0, 0, -7},   {32, 0, 0, -7},   {34, -7, -7, 0},  {35, 0, 0, -7},
                 {36, 0, -7, -7},  {39, 0, 0, -7},   {40, 0, 0, -7},   {41, 0, 0, -7},
                 {42, 0, 0, 0},    {44, 0, 0, 0},    {48, 0, 0, -7},   {49, 0, 0, -7},
                 {50, 0, 0, -7},   {51, 0, -7, -7},  {29, -5, -5, -5}, {33, -5, -5, -5},
                 {37, -5, -5, -5}, {38, -5, -5, -5}, {43, -5, -5, -5}, {45, -5, -5, -5},
                 {47, -5, -5, -5}, {52, -5, -5, -5}, {-1, -5, -5, -5}, {1000, -5, -5, -5}};
    const int32_t h10 = Open(kPath10), h08 = Open(kPath08), h06 = Open(kPath06);
    for (const auto& c : table) {
        int32_t value = 0;
        EXPECT_EQ(Get(h10, c.id, value), c.on10) << "model 10, id " << c.id;
        EXPECT_EQ(Get(h08, c.id, value), c.on08) << "model 08, id " << c.id;
        EXPECT_EQ(Get(h06, c.id, value), c.on06) << "model 06, id " << c.id;
    }
}

TEST_F(KorvhwParams, IdentityTextsClockMaxHVAndItsLimit) {
    // Id 44 answering 0 still means a 1500 V limit.
    const struct {
        const char* path;
        const char* serial;
        const char* firmware;
        int32_t clock, maxHvTenths;
        float limit;
    } rows[] = {{kPath10, "10230417", "V3.4", 80000000, 15000, 1500.0f},
                {kPath08, "08190233", "V3.2", 25000000, 50000, 5000.0f},
                {kPath06, "06110108", "V2.1", 0, 0, 1500.0f}};
    for (const auto& r : rows) {
        SCOPED_TRACE(r.path);
        const int32_t h = Open(r.path);
        EXPECT_EQ(GetText(h, 1), r.serial);
        EXPECT_EQ(GetText(h, 2), r.firmware);
        EXPECT_FALSE(GetText(h, 0).empty());
        for (int32_t dateId : {3, 4}) {
            const std::string date = GetText(h, dateId);
            EXPECT_EQ(date.size(), 8u);
            EXPECT_EQ(date.find_first_not_of("0123456789"), std::string::npos);
        }
        int32_t clock = -1, maxHv = -1;
        EXPECT_EQ(Get(h, 42, clock), 0);
        EXPECT_EQ(clock, r.clock);
        EXPECT_EQ(Get(h, 44, maxHv), 0);
        EXPECT_EQ(maxHv, r.maxHvTenths);
        EXPECT_EQ(SetFloat(h, 21, r.limit), 0);
        for (float bad : {r.limit + 1.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()})
            EXPECT_EQ(SetFloat(h, 21, bad), -16) << bad;
        float v = 0;
        EXPECT_EQ(Get(h, 21, v), 0);
        EXPECT_EQ(v, r.limit) << "a refused value leaves the old one";
        Close(h);
    }
}

TEST_F(KorvhwParams, FineGainTopFollowsModelAndFirmware) {
    const struct {
        const char* serial;
        const char* firmware;
        bool wide;
    } rows[] = {{"10000001", "V3.4", true},
                {"08000002", "V3.2", false},
                {"08000003", "V3.3", true},
                {"08000004", "V4.0", true},
                {"06000005", "V4.0", false}};
    for (const auto& r : rows) {
        UseConfig(SimDevice(1, r.serial, "A", std::string("Firmware=") + r.firmware));
        const int32_t h = Open("A");
        EXPECT_EQ(SetInt(h, 14, 4095), 0) << r.serial;
        EXPECT_EQ(SetInt(h, 14, 16383), r.wide ? 0 : -16) << r.serial;
        EXPECT_EQ(SetInt(h, 14, 16384), -16) << r.serial;
        Close(h);
    }
}

TEST_F(KorvhwParams, IntegerRangesOfTheCurrentModel) {
    // {id, value, SetParam's result}; the last four ids are read-only.
    const struct {
        int32_t id, value, expected;
    } cases[] = {
        {5, 0, 0},        {5, 1, 0},        {5, 2, -16},        {6, 256, 0},     {6, 16384, 0},
        {6, 300, -16},    {6, 128, -16},    {6, 32768, -16},    {26, 2048, 0},   {26, 1000, -16},
        {7, 0, 0},        {7, 16383, 0},    {7, 16384, -16},    {7, -1, -16},    {12, 10, 0},
        {12, 11, -16},    {13, 0, 0},       {13, 7, 0},         {13, 8, -16},    {13, -1, -16},
        {15, 1, 0},       {15, 0, -16},     {15, 1023, 0},      {16, 1024, -16}, {17, 65535, 0},
        {17, 65536, -16}, {18, 16384, -16}, {24, 0, 0},         {24, 7, 0},      {24, 8, -16},
        {28, -1, -16},    {30, 15, 0},      {30, 16, -16},      {31, 16383, 0},  {32, 16384, -16},
        {36, 4095, 0},    {36, 4096, -16},  {39, 7, 0},         {39, 8, -16},    {40, 8, -16},
        {41, -512, 0},    {41, -513, -16},  {41, 511, 0},       {50, 3, 0},      {50, 4, -16},
        {48, 127, 0},     {48, 128, -16},   {49, 0x4000, -16},  {51, 1, 0},      {51, 2, -16},
        {27, 0, -7},      {35, 0, -7},      {42, 25000000, -7}, {44, 1, -7}};
    const int32_t h = Open(kPath10);
    for (const auto& c : cases)
        EXPECT_EQ(SetInt(h, c.id, c.value), c.expected) << "id " << c.id << " = " << c.value;
}

TEST_F(KorvhwParams, WrittenValuesReadBackIncludingPolarityPacking) {
    const int32_t h = Open(kPath10);
    for (auto [id, packed] : {std::pair{48, static_cast<int32_t>(0xFFFF800A)},
                              {48, 10},
                              {48, 0},
                              {51, static_cast<int32_t>(0xFFFF8001)}}) {
        ASSERT_EQ(SetInt(h, id, packed), 0);
        int32_t back = 0;
        ASSERT_EQ(Get(h, id, back), 0);
        EXPECT_EQ(back, packed);
    }
    const float cal[3] = {-1.25f, 0.3125f, 1.5e-6f};
    ASSERT_EQ(fn().SetParam(h, 25, cal, 12), 0);
    float back[3] = {};
    ASSERT_EQ(fn().GetParam(h, 25, back, 12), 0);
    EXPECT_EQ(std::memcmp(cal, back, 12), 0);
}

TEST_F(KorvhwParams, PresetValueAndWindowBelongToTheMode) {
    const int32_t h = Open(kPath10);
    ASSERT_EQ(SetFloat(h, 9, 10.0f), 0);
    ASSERT_EQ(SetInt(h, 7, 12), 0);
    ASSERT_EQ(SetInt(h, 5, 1), 0);
    float value = 0;
    int32_t lld = 0;
    ASSERT_EQ(Get(h, 9, value), 0);
    EXPECT_EQ(value, 1.0f) << "MCS dwell time is its own value";
    EXPECT_EQ(SetFloat(h, 9, 0.0f), -16) << "a dwell time of 0 is refused";
    ASSERT_EQ(SetFloat(h, 9, 0.25f), 0);
    ASSERT_EQ(SetInt(h, 7, 300), 0);
    ASSERT_EQ(SetInt(h, 5, 0), 0);
    ASSERT_EQ(Get(h, 9, value), 0);
    ASSERT_EQ(Get(h, 7, lld), 0);
    EXPECT_EQ(value, 10.0f);
    EXPECT_EQ(lld, 12);
    EXPECT_EQ(SetFloat(h, 9, 0.0f), 0) << "PHA: preset time 0 means none";
}

TEST_F(KorvhwParams, BuffersAreChecked) {
    const int32_t h = Open(kPath10);
    int32_t value = 0;
    char text[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(fn().GetParam(h, 6, &value, 2), -6);
    EXPECT_EQ(fn().GetParam(h, 6, nullptr, 4), -6);
    EXPECT_EQ(fn().SetParam(h, 6, nullptr, 4), -6);
    EXPECT_EQ(fn().GetParam(h, 25, &value, 4), -6);
    ASSERT_EQ(fn().GetParam(h, 1, text, 4), 0);
    EXPECT_STREQ(text, "102") << "texts are cut to the buffer and terminated";
    EXPECT_EQ(fn().SetParam(h, 0, "NEW", 4), -7) << "identity is read-only";
    EXPECT_EQ(fn().GetAcquisitionStatus(h, nullptr), -6);
    EXPECT_EQ(fn().ReadSpectrum(h, nullptr, &value, nullptr, nullptr), -6);
    EXPECT_EQ(fn().GetScopeStatus(h, nullptr), -6);
    EXPECT_EQ(fn().FindDevicesEx(0, 0, 1), -6);
}

TEST_F(KorvhwParams, SaveSettingsSurvivesAPowerCycleAndDefaultsAreRestored) {
    const std::string devices = SimDevice(1, "10000001", "A", kHvOn);
    UseConfig(devices);
    int32_t h = Open("A");
    for (auto [id, v] : {std::pair{13, 3}, {6, 4096}, {30, 3}})
        ASSERT_EQ(SetInt(h, id, v), 0);
    ASSERT_EQ(SetFloat(h, 9, 42.5f), 0);
    ASSERT_EQ(fn().SaveSettings(h), 0);
    ASSERT_EQ(SetInt(h, 13, 5), 0); // changed after storing: lost at power-off
    Close(h);
    const std::string stored = ReadBytes(m_sim.dir() / "10000001.ini");
    EXPECT_NE(stored.find("CoarseGain=3\r\n"), std::string::npos) << stored;
    EXPECT_NE(stored.find("PresetTime=42.5\r\n"), std::string::npos) << stored;

    UseConfig(devices, "; power cycle\n"); // a changed text builds the devices afresh
    h = Open("A");
    int32_t coarse = 0, channels = 0, mode = 0, hv = 0;
    float preset = 0;
    EXPECT_EQ(Get(h, 13, coarse) + Get(h, 6, channels) + Get(h, 9, preset) + Get(h, 30, mode), 0);
    EXPECT_EQ(coarse, 3);
    EXPECT_EQ(channels, 4096);
    EXPECT_EQ(preset, 42.5f);
    EXPECT_EQ(mode, 3);
    // Restore Defaults keeps the high-voltage switch.
    ASSERT_EQ(fn().RestoreDefaults(h), 0);
    EXPECT_EQ(Get(h, 13, coarse) + Get(h, 22, hv), 0);
    EXPECT_EQ(coarse, 2);
    EXPECT_EQ(hv & 1, 1);
}

TEST_F(KorvhwParams, DamagedSettingsFileGivesDefaultsForBadValues) {
    WriteBytes(m_sim.dir() / "10000001.ini",
               "[Settings]\nChannels=7\nCoarseGain=99\nFineGain=100\nHighVoltage=nan\nLLD=x\n");
    UseConfig(SimDevice(1, "10000001", "A"));
    const int32_t h = Open("A");
    int32_t channels = 0, coarse = 0, fine = 0;
    float hv = 0;
    EXPECT_EQ(Get(h, 6, channels) + Get(h, 13, coarse) + Get(h, 14, fine) + Get(h, 21, hv), 0);
    EXPECT_EQ(channels, 1024);
    EXPECT_EQ(coarse, 2);
    EXPECT_EQ(fine, 100) << "valid values are taken";
    EXPECT_EQ(hv, 800.0f);
}

} // namespace
} // namespace vexo::test
