// The simulated analyser's discovery and connection: progressive search, the
// information rows, the path forms OpenDevice accepts and the handle checks.
#include "KorvhwFixture.h"

#include <cstring>

namespace vexo::test {
namespace {

struct InfoRow {
    int32_t status;
    std::string path, name, serial;
    int32_t type;
};

InfoRow Info(KorvhwLib& lib, int32_t index) {
    char path[255] = {}, name[255] = {}, serial[255] = {};
    InfoRow row{};
    row.type = -1;
    row.status = lib.GetDeviceInfo(index, path, 255, name, 255, serial, 255, &row.type);
    row.path = path;
    row.name = name;
    row.serial = serial;
    return row;
}

class KorvhwDiscovery : public KorvhwTest {};

TEST_F(KorvhwDiscovery, BuiltInSetIsFoundOneDevicePerCall) {
    // A configuration file without device sections keeps the built-in three.
    UseConfig("");
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 1), 1);
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 0), 2);
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 0), 3);
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 0), 3);
    // A restart begins the search again.
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 1), 1);
    EXPECT_EQ(lib().FindDevicesEx(0, 2, 0), 2);
    EXPECT_EQ(lib().FindDevicesEx(0, 2, 0), 2) << "capped at the maximum asked for";
}

TEST_F(KorvhwDiscovery, InfoRowsOfTheBuiltInSet) {
    UseConfig("");
    lib().FindDevices(0, 50);
    struct Expected {
        const char* model;
        int32_t type;
    };
    const Expected expected[] = {
        {"10", KORVHW_TYPE_USB}, {"08", KORVHW_TYPE_ETH}, {"06", KORVHW_TYPE_HID}};
    for (int32_t i = 0; i < 3; ++i) {
        const InfoRow row = Info(lib(), i);
        ASSERT_EQ(row.status, 0) << i;
        EXPECT_EQ(row.serial.substr(0, 2), expected[i].model);
        EXPECT_EQ(row.type, expected[i].type);
        EXPECT_FALSE(row.name.empty());
        EXPECT_FALSE(row.path.empty());
        EXPECT_NE(row.path.substr(0, 4), "USB:") << "paths are listed without prefix";
    }
    EXPECT_EQ(Info(lib(), 3).status, -6);
    EXPECT_EQ(Info(lib(), -1).status, -6);
}

TEST_F(KorvhwDiscovery, RowsAppearOnlyOnceFound) {
    UseConfig(DeviceSection(1, "10000001", "A") + DeviceSection(2, "10000002", "B"));
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 1), 1);
    EXPECT_EQ(Info(lib(), 0).path, "A");
    EXPECT_EQ(Info(lib(), 1).status, -6);
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 0), 2);
    EXPECT_EQ(Info(lib(), 1).path, "B");
}

TEST_F(KorvhwDiscovery, ALibraryWithoutDevicesFindsNothing) {
    UseConfig("", "BuiltInDevices=0\r\n");
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 1), 0);
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 0), 0);
    EXPECT_EQ(Info(lib(), 0).status, -6);
    int32_t handle = 0;
    EXPECT_EQ(lib().OpenDevice("USB:KORV-10-001", &handle), -14);
}

TEST_F(KorvhwDiscovery, TextsAreCutToTheCapacity) {
    UseConfig(DeviceSection(1, "10000001", "KORV-10-LONGPATH"));
    lib().FindDevicesEx(0, 50, 1);
    char path[5], name[255], serial[3];
    std::memset(path, 'x', sizeof path);
    int32_t type = 0;
    ASSERT_EQ(lib().GetDeviceInfo(0, path, 5, name, 255, serial, 3, &type), 0);
    EXPECT_STREQ(path, "KORV");
    EXPECT_STREQ(serial, "10");
    EXPECT_EQ(lib().GetDeviceInfo(0, nullptr, 5, name, 255, serial, 3, &type), -6);
}

TEST_F(KorvhwDiscovery, OpenAcceptsBarePathsAndTheirOwnPrefix) {
    UseConfig(DeviceSection(1, "10000001", "KORV-10-001", "Type=2") +
              DeviceSection(2, "08000002", "10.0.0.8", "Type=3"));
    int32_t h = Open("KORV-10-001");
    Close(h);
    h = Open("USB:KORV-10-001");
    Close(h);
    h = Open("ETH:10.0.0.8");
    Close(h);
    int32_t handle = 0;
    EXPECT_EQ(lib().OpenDevice("HID:KORV-10-001", &handle), -14) << "prefix of another type";
    EXPECT_EQ(lib().OpenDevice("usb:KORV-10-001", &handle), -14) << "prefixes are upper case";
    EXPECT_EQ(lib().OpenDevice("KORV-99-999", &handle), -14);
    EXPECT_EQ(lib().OpenDevice(nullptr, &handle), -6);
    EXPECT_EQ(lib().OpenDevice("KORV-10-001", nullptr), -6);
    EXPECT_EQ(handle, 0);
}

TEST_F(KorvhwDiscovery, OneConnectionPerDeviceAndDistinctHandles) {
    UseConfig(DeviceSection(1, "10000001", "A") + DeviceSection(2, "10000002", "B"));
    const int32_t a = Open("A");
    const int32_t b = Open("B");
    EXPECT_NE(a, b);
    int32_t again = 0;
    EXPECT_EQ(lib().OpenDevice("A", &again), -8);
    int32_t viaEx = 0;
    Close(a);
    ASSERT_EQ(lib().OpenDeviceEx("A", &viaEx, 0), 0);
    m_open.push_back(viaEx);
    EXPECT_NE(viaEx, a) << "a closed handle is never handed out again";
}

TEST_F(KorvhwDiscovery, ClosedAndUnknownHandlesAreRefused) {
    UseConfig(DeviceSection(1, "10000001", "A"));
    const int32_t h = Open("A");
    Close(h);
    int32_t value = 0, word = 0;
    std::vector<int32_t> counts(KORVHW_SPECTRUM_SLOTS);
    float rt = 0, lt = 0;
    int16_t samples[KORVHW_SCOPE_SAMPLES];
    for (int32_t bad : {h, 0, -1, 12345}) {
        EXPECT_EQ(lib().CloseDevice(bad), -15);
        EXPECT_EQ(lib().GetParam(bad, 6, &value, 4), -15);
        EXPECT_EQ(lib().SetParam(bad, 6, &value, 4), -15);
        EXPECT_EQ(lib().StartAcquisition(bad), -15);
        EXPECT_EQ(lib().StopAcquisition(bad), -15);
        EXPECT_EQ(lib().ClearAll(bad), -15);
        EXPECT_EQ(lib().GetAcquisitionStatus(bad, &word), -15);
        EXPECT_EQ(lib().ReadSpectrum(bad, counts.data(), &value, &rt, &lt), -15);
        EXPECT_EQ(lib().ArmScope(bad), -15);
        EXPECT_EQ(lib().GetScopeStatus(bad, &word), -15);
        EXPECT_EQ(lib().ReadScope(bad, samples), -15);
        EXPECT_EQ(lib().SaveSettings(bad), -15);
    }
}

TEST_F(KorvhwDiscovery, ConfigurationIsReadAgainForEachTest) {
    // Two configurations in a row in one process: the second one's device is found.
    UseConfig(DeviceSection(1, "10000001", "FIRST"));
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 1), 1);
    EXPECT_EQ(Info(lib(), 0).path, "FIRST");
    TempDir other;
    WriteBytes(other / "KORVHW.ini", "[Device1]\nSerial=06000001\nPath=SECOND\nType=1\n");
    setenv("VEXO_SIM_CONFIG", (other / "KORVHW.ini").c_str(), 1);
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 1), 1);
    const InfoRow row = Info(lib(), 0);
    EXPECT_EQ(row.path, "SECOND");
    EXPECT_EQ(row.type, 1);
}

TEST_F(KorvhwDiscovery, BrokenConfigurationFallsBackToDefaults) {
    WriteBytes(m_dir / "KORVHW.ini",
               "[Simulator]\nSeed=abc\nthis line is garbage\n[Device1]\nSerial=10000009\n"
               "Detector=Plutonium\nSources=Xx-999:5, Cs-137:oops, Co-60:100\nType=2\n");
    setenv("VEXO_SIM_CONFIG", (m_dir / "KORVHW.ini").c_str(), 1);
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 1), 1);
    const InfoRow row = Info(lib(), 0);
    EXPECT_EQ(row.serial, "10000009");
    EXPECT_EQ(row.path, "KORV-10000009") << "path defaults from the serial";
    // A configuration file that cannot be read gives the built-in set.
    setenv("VEXO_SIM_CONFIG", (m_dir / "missing.ini").c_str(), 1);
    lib().FindDevicesEx(0, 50, 1);
    lib().FindDevicesEx(0, 50, 0);
    EXPECT_EQ(lib().FindDevicesEx(0, 50, 0), 3);
}

} // namespace
} // namespace vexo::test
