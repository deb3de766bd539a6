// vexo-cli devices and params against the simulated analyser: exit codes, the rows
// and record fields they print, and failures reported without a crash.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/wait.h>

#include <nlohmann/json.hpp>

#include "TestSupport.h"

namespace vexo {
namespace {

using test::TempDir;

class DeviceCliTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(test::BinDir() / "libKORVHW.so"))
            GTEST_SKIP() << "simulated library not built";
        test::WriteBytes(
            m_dir / "KORVHW.ini",
            "[Simulator]\nSeed=3\nClock=step\nSettingsDir=" + (m_dir / "settings").string() +
                "\n\n[Device1]\nSerial=10230417\nPath=KORV-10-001\nName=KORV "
                "MCA-10\nType=2\nFirmware=V3.4\n\n[Device2]\nSerial=06110108\n"
                "Path=KORV-06-003\nName=KORV MCA-6\nType=1\nFirmware=V2.1\n"
                "OpenFailures=1000\n");
    }

    // Runs vexo-cli with the simulated library and this test's configuration.
    int Run(const std::string& args) {
        const std::string command =
            "VEXO_DEVICE_LIBRARY='" + (test::BinDir() / "libKORVHW.so").string() +
            "' VEXO_SIM_CONFIG='" + (m_dir / "KORVHW.ini").string() + "' '" +
            (test::BinDir() / "vexo-cli").string() + "' " + args + " >'" +
            (m_dir / "out.txt").string() + "' 2>'" + (m_dir / "err.txt").string() + "'";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::string Out() { return test::ReadBytes(m_dir / "out.txt"); }
    std::string Err() { return test::ReadBytes(m_dir / "err.txt"); }

    TempDir m_dir;
};

TEST_F(DeviceCliTest, DevicesListsRowsAsJson) {
    ASSERT_EQ(Run("devices --ticks 3 --interval 0 --json"), 0) << Err();
    const auto rows = nlohmann::json::parse(Out());
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0]["No"], 1);
    EXPECT_EQ(rows[0]["Name"], "KORV MCA-10");
    EXPECT_EQ(rows[0]["Path"], "USB:KORV-10-001");
    EXPECT_EQ(rows[0]["Serial"], "10230417");
    EXPECT_EQ(rows[0]["Type"], 2);
    EXPECT_EQ(rows[1]["Path"], "HID:KORV-06-003");
    EXPECT_NE(Err().find("tick 3/3"), std::string::npos);
}

TEST_F(DeviceCliTest, OneTickListsNothing) {
    ASSERT_EQ(Run("devices --ticks 1 --interval 0 --json"), 0) << Err();
    EXPECT_TRUE(nlohmann::json::parse(Out()).empty());
}

TEST_F(DeviceCliTest, ParamsPrintsTheRecord) {
    ASSERT_EQ(Run("params --device USB:KORV-10-001 --json"), 0) << Err();
    const auto record = nlohmann::json::parse(Out());
    EXPECT_EQ(record["szDeviceName"], "KORV MCA-10");
    EXPECT_EQ(record["szDevicePath"], "USB:KORV-10-001");
    EXPECT_EQ(record["bConnected"], true);
    EXPECT_EQ(record["lFineGainMax"], 16383);
    EXPECT_EQ(record["lCapabilities"], 0xFF7);
    EXPECT_EQ(record["dDeviceCal"].size(), 3u);
    for (const char* key : {"lChannels", "sngPresetTime", "sngHighVoltage", "lGPIO1Func",
                            "lHVInhibitEnable", "lClockHz", "sngMaxHV", "lSCAHigh"})
        EXPECT_TRUE(record.contains(key)) << key;

    ASSERT_EQ(Run("params --device KORV-10-001"), 0) << Err();
    EXPECT_NE(Out().find("szDeviceSerial = 10230417\n"), std::string::npos) << Out();
}

TEST_F(DeviceCliTest, FailuresAndUsage) {
    EXPECT_EQ(Run("params --device KORV-06-003"), 1);
    EXPECT_NE(Err().find("Could not open MCA: Connection failed"), std::string::npos) << Err();
    EXPECT_EQ(Run("params"), 2);
    EXPECT_EQ(Run("params --device"), 2);
    EXPECT_EQ(Run("devices --ticks 0"), 2);
    EXPECT_EQ(Run("devices --ticks x"), 2);
    EXPECT_EQ(Run("devices --bogus"), 2);
    EXPECT_EQ(Run("devices --help"), 0);
    EXPECT_EQ(Run("params --help"), 0);
}

TEST_F(DeviceCliTest, MissingLibraryIsAFailure) {
    const std::string command =
        "VEXO_DEVICE_LIBRARY=/nowhere/libKORVHW.so '" + (test::BinDir() / "vexo-cli").string() +
        "' devices --ticks 1 --interval 0 >/dev/null 2>'" + (m_dir / "err.txt").string() + "'";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_NE(Err().find("/nowhere/libKORVHW.so"), std::string::npos) << Err();
}

} // namespace
} // namespace vexo
