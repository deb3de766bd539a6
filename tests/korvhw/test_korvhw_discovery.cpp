// The simulated analyser's discovery and connection: progressive search, the information
// rows, the path forms OpenDevice accepts, the handle checks, and the faults it produces
// on demand (a dropped link, failed spectrum reads; failing opens and ids are pinned by
// the device layer's tests).
#include "KorvhwTest.h"

namespace vexo::test {
namespace {

struct InfoRow {
    int32_t status;
    std::string path, name, serial;
    int32_t type;
};

class KorvhwDiscovery : public KorvhwTest {
protected:
    InfoRow Info(int32_t index) {
        char path[255] = {}, name[255] = {}, serial[255] = {};
        InfoRow row{};
        row.type = -1;
        row.status = fn().GetDeviceInfo(index, path, 255, name, 255, serial, 255, &row.type);
        row.path = path;
        row.name = name;
        row.serial = serial;
        return row;
    }
    // Every call on `h` but CloseDevice answers `expected`.
    void ExpectEveryCallFails(int32_t h, int32_t expected) {
        int32_t value = 0, word = 0;
        std::vector<int32_t> counts(KORVHW_SPECTRUM_SLOTS);
        float rt = 0, lt = 0;
        int16_t samples[KORVHW_SCOPE_SAMPLES];
        EXPECT_EQ(fn().GetAcquisitionStatus(h, &word), expected); // moves the clock on first
        EXPECT_EQ(fn().GetParam(h, 6, &value, 4), expected);
        EXPECT_EQ(fn().SetParam(h, 6, &value, 4), expected);
        for (HandleOnly_t call : {fn().StartAcquisition, fn().StopAcquisition, fn().ClearAll,
                                  fn().ArmScope, fn().SaveSettings})
            EXPECT_EQ(call(h), expected);
        EXPECT_EQ(fn().ReadSpectrum(h, counts.data(), &value, &rt, &lt), expected);
        EXPECT_EQ(fn().GetScopeStatus(h, &word), expected);
        EXPECT_EQ(fn().ReadScope(h, samples), expected);
    }
};

TEST_F(KorvhwDiscovery, BuiltInSetIsFoundOneDevicePerCall) {
    // A configuration file without device sections keeps the built-in three.
    const int32_t expected[] = {1, 2, 3, 3};
    for (int32_t i = 0; i < 4; ++i)
        EXPECT_EQ(fn().FindDevicesEx(0, 50, i == 0), expected[i]);
    // A restart begins the search again.
    EXPECT_EQ(fn().FindDevicesEx(0, 50, 1), 1);
    EXPECT_EQ(fn().FindDevicesEx(0, 2, 0), 2);
    EXPECT_EQ(fn().FindDevicesEx(0, 2, 0), 2) << "capped at the maximum asked for";
    fn().FindDevices(0, 50);
    const std::pair<const char*, int32_t> models[] = {
        {"10", KORVHW_TYPE_USB}, {"08", KORVHW_TYPE_ETH}, {"06", KORVHW_TYPE_HID}};
    for (int32_t i = 0; i < 3; ++i) {
        const InfoRow row = Info(i);
        ASSERT_EQ(row.status, 0) << i;
        EXPECT_EQ(row.serial.substr(0, 2), models[i].first);
        EXPECT_EQ(row.type, models[i].second);
        EXPECT_FALSE(row.name.empty());
        EXPECT_NE(row.path.substr(0, 4), "USB:") << "paths are listed without prefix";
    }
    EXPECT_EQ(Info(3).status, -6);
    EXPECT_EQ(Info(-1).status, -6);
}

TEST_F(KorvhwDiscovery, RowsAppearOnlyOnceFound) {
    UseConfig(SimDevice(1, "10000001", "A") + SimDevice(2, "10000002", "B"));
    EXPECT_EQ(fn().FindDevicesEx(0, 50, 1), 1);
    EXPECT_EQ(Info(0).path, "A");
    EXPECT_EQ(Info(1).status, -6);
    EXPECT_EQ(fn().FindDevicesEx(0, 50, 0), 2);
    EXPECT_EQ(Info(1).path, "B");
}

TEST_F(KorvhwDiscovery, ALibraryWithoutDevicesFindsNothing) {
    UseConfig("", "BuiltInDevices=0\n");
    EXPECT_EQ(fn().FindDevicesEx(0, 50, 1), 0);
    EXPECT_EQ(fn().FindDevicesEx(0, 50, 0), 0);
    EXPECT_EQ(Info(0).status, -6);
    int32_t handle = 0;
    EXPECT_EQ(fn().OpenDevice("USB:KORV-10-001", &handle), -14);
}

TEST_F(KorvhwDiscovery, TextsAreCutToTheCapacity) {
    UseConfig(SimDevice(1, "10000001", "KORV-10-LONGPATH"));
    fn().FindDevicesEx(0, 50, 1);
    char path[5], name[255], serial[3];
    int32_t type = 0;
    ASSERT_EQ(fn().GetDeviceInfo(0, path, 5, name, 255, serial, 3, &type), 0);
    EXPECT_STREQ(path, "KORV");
    EXPECT_STREQ(serial, "10");
    EXPECT_EQ(fn().GetDeviceInfo(0, nullptr, 5, name, 255, serial, 3, &type), -6);
}

TEST_F(KorvhwDiscovery, OpenAcceptsBarePathsAndTheirOwnPrefix) {
    UseConfig(SimDevice(1, "10000001", "KORV-10-001", "Type=2") +
              SimDevice(2, "08000002", "10.0.0.8", "Type=3"));
    for (const char* path : {"KORV-10-001", "USB:KORV-10-001", "ETH:10.0.0.8"})
        Close(Open(path));
    int32_t handle = 0;
    EXPECT_EQ(fn().OpenDevice("HID:KORV-10-001", &handle), -14) << "prefix of another type";
    EXPECT_EQ(fn().OpenDevice("usb:KORV-10-001", &handle), -14) << "prefixes are upper case";
    EXPECT_EQ(fn().OpenDevice("KORV-99-999", &handle), -14);
    EXPECT_EQ(fn().OpenDevice(nullptr, &handle), -6);
    EXPECT_EQ(fn().OpenDevice("KORV-10-001", nullptr), -6);
    EXPECT_EQ(handle, 0);
}

TEST_F(KorvhwDiscovery, OneConnectionPerDeviceAndHandlesNeverReused) {
    UseConfig(SimDevice(1, "10000001", "A") + SimDevice(2, "10000002", "B"));
    const int32_t a = Open("A");
    EXPECT_NE(Open("B"), a);
    int32_t again = 0;
    EXPECT_EQ(fn().OpenDevice("A", &again), -8);
    Close(a);
    int32_t viaEx = 0;
    ASSERT_EQ(fn().OpenDeviceEx("A", &viaEx, 0), 0);
    m_open.push_back(viaEx);
    EXPECT_NE(viaEx, a) << "a closed handle is never handed out again";
    for (int32_t bad : {a, 0, -1, 12345}) {
        EXPECT_EQ(fn().CloseDevice(bad), -15);
        ExpectEveryCallFails(bad, -15);
    }
}

TEST_F(KorvhwDiscovery, ConfigurationIsReadAgainAndBrokenKeysFallBack) {
    UseConfig(SimDevice(1, "10000001", "FIRST"));
    EXPECT_EQ(fn().FindDevicesEx(0, 50, 1), 1);
    EXPECT_EQ(Info(0).path, "FIRST");
    // Garbage lines and values are skipped; a path defaults from the serial.
    WriteBytes(m_sim.file(), "[Simulator]\nSeed=abc\nthis line is garbage\n[Device1]\n"
                             "Serial=10000009\nDetector=Plutonium\n"
                             "Sources=Xx-999:5, Cs-137:oops, Co-60:100\nType=1\n");
    EXPECT_EQ(fn().FindDevicesEx(0, 50, 1), 1);
    const InfoRow row = Info(0);
    EXPECT_EQ(row.serial, "10000009");
    EXPECT_EQ(row.path, "KORV-10000009");
    EXPECT_EQ(row.type, 1);
    // A configuration file that cannot be read gives the built-in set.
    ScopedEnv missing("VEXO_SIM_CONFIG", (m_sim.dir() / "missing.ini").string());
    fn().FindDevicesEx(0, 50, 1);
    fn().FindDevicesEx(0, 50, 0);
    EXPECT_EQ(fn().FindDevicesEx(0, 50, 0), 3);
}

TEST_F(KorvhwDiscovery, DroppedLinkAnswersConnectionClosedEverywhere) {
    UseConfig(SimDevice(1, "10000001", "A", "DisconnectAfter=2"));
    const int32_t h = Open("A");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Status(h), 0);
    ExpectEveryCallFails(h, -9); // 2 s after opening
    EXPECT_EQ(fn().CloseDevice(h), -9) << "closing still ends the handle";
    m_open.clear();
    EXPECT_EQ(fn().CloseDevice(h), -15);
    EXPECT_EQ(Status(Open("A")), 0) << "plugged in again, the device opens afresh";
}

TEST_F(KorvhwDiscovery, ShareOfSpectrumReadsFails) {
    struct Case {
        const char* share;
        int lo, hi; // failures out of 1000
    };
    for (const Case& c : {Case{"0", 0, 0}, Case{"0.3", 250, 350}, Case{"1", 1000, 1000}}) {
        UseConfig(SimDevice(1, "10000001", "A", std::string("ReadSpectrumFailShare=") + c.share));
        const int32_t h = Open("A");
        int failures = 0;
        for (int i = 0; i < 1000; ++i) {
            const int32_t status = Read(h).status;
            EXPECT_TRUE(status == 0 || status == -12) << status;
            failures += status != 0;
        }
        EXPECT_GE(failures, c.lo) << c.share;
        EXPECT_LE(failures, c.hi) << c.share;
        Close(h);
    }
}

} // namespace
} // namespace vexo::test
