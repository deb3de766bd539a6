// vexo-cli acquire, batch and scope, run as a separate process on the simulated analyser.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/wait.h>

#include "base/TextFile.h"
#include "ctrl_sim.h"
#include "spectrum/SpectrumFile.h"

using namespace vexo;
using vexo::test::SimDeviceSpec;
namespace fs = std::filesystem;

namespace {

struct CliRun {
    int exitCode = -1;
    std::string out;
    std::string err;
};

class CliTest : public ::testing::Test {
protected:
    void SetUp() override { Configure({}); }
    void Configure(const SimDeviceSpec& spec) {
        fs::create_directories(dir.path() / "settings");
        test::WriteBytes(dir / "sim.ini", test::SimConfigText(spec, dir.path() / "settings"));
    }
    CliRun Run(const std::string& args) {
        const std::string cmd =
            "VEXO_TICK_MS=0 VEXO_SIM_CONFIG='" + (dir / "sim.ini").string() +
            "' VEXO_DEVICE_LIBRARY='" + (test::BinDir() / "libKORVHW.so").string() + "' '" +
            (test::BinDir() / "vexo-cli").string() + "' " + args + " >'" +
            (dir / "out.txt").string() + "' 2>'" + (dir / "err.txt").string() + "'";
        const int status = std::system(cmd.c_str());
        CliRun r;
        r.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        r.out = test::ReadBytes(dir / "out.txt");
        r.err = test::ReadBytes(dir / "err.txt");
        return r;
    }
    std::string Device() const { return std::string("--device USB:") + test::kSimPath; }

    test::TempDir dir;
};

} // namespace

TEST_F(CliTest, AcquireMeasuresToThePresetAndSaves) {
    const fs::path spe = dir / "a.spe";
    const CliRun r = Run("acquire " + Device() +
                         " --preset live:4 --hv on --set lCoarseGain=2 "
                         "--set sngHighVoltage=750 --out '" +
                         spe.string() + "' --json");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("\"live\": 4.0"), std::string::npos) << r.out;
    for (const char* key : {"\"real\"", "\"deadTimePercent\"", "\"countRate\"",
                            "\"inputCountRate\"", "\"channels\": 1024", "\"file\""})
        EXPECT_NE(r.out.find(key), std::string::npos) << key;
    auto doc = std::make_unique<SpectrumDocument>();
    ASSERT_TRUE(bReadFullSpectrum(*doc, spe));
    EXPECT_NEAR(doc->sngLiveTime, 4.0f, 0.01f);
    EXPECT_EQ(doc->lCoarseGain, 2);
    EXPECT_FLOAT_EQ(doc->sngHighVoltage, 750.0f);
    EXPECT_NE(r.err.find("opening USB:"), std::string::npos); // progress on stderr
}

TEST_F(CliTest, AcquireForeverStopsAfterTheGivenRealTime) {
    const fs::path spe = dir / "f.spe";
    const CliRun r =
        Run("acquire " + Device() + " --preset forever:3 --out '" + spe.string() + "'");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    auto doc = std::make_unique<SpectrumDocument>();
    ASSERT_TRUE(bReadFullSpectrum(*doc, spe));
    EXPECT_GE(doc->sngRealTime, 3.0f);
    EXPECT_LT(doc->sngRealTime, 4.0f);
}

TEST_F(CliTest, UsageErrorsExitWithTwo) {
    for (const char* args : {"acquire --preset live:1 --out x.spe", // no device
                             "acquire --device USB:X --preset sometimes --out x.spe",
                             "acquire --device USB:X --preset live:1 --set lNoSuch=1 --out x",
                             "batch --device USB:X --preset live:1 --count 0 --dir /tmp",
                             "scope --device USB:X --traces 0 --out x.csv"}) {
        const CliRun r = Run(args);
        EXPECT_EQ(r.exitCode, 2) << args << "\n" << r.err;
    }
    const CliRun r = Run("batch " + Device() + " --preset live:1 --count 2 --dir '" +
                         (dir / "missing").string() + "'");
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_NE(r.err.find("Sub-directory not found"), std::string::npos) << r.err;
}

TEST_F(CliTest, UnknownDeviceFailsWithTheProgramsMessage) {
    const CliRun r =
        Run("acquire --device USB:NOPE --preset live:1 --out '" + (dir / "n.spe").string() + "'");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("Could not open MCA: Invalid device"), std::string::npos) << r.err;
    EXPECT_FALSE(fs::exists(dir / "n.spe"));
}

TEST_F(CliTest, LostDeviceDuringAcquireSavesNothing) {
    SimDeviceSpec spec;
    spec.disconnectAfter = 2.0;
    Configure(spec);
    const CliRun r =
        Run("acquire " + Device() + " --preset live:30 --out '" + (dir / "l.spe").string() + "'");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("Lost the connection to the MCA: Connection closed"), std::string::npos)
        << r.err;
    EXPECT_FALSE(fs::exists(dir / "l.spe"));
}

TEST_F(CliTest, SilentDeviceEndsTheCommandInsteadOfHanging) {
    SimDeviceSpec spec;
    spec.failParam = "22:-12"; // every status poll fails, the link itself stays up
    Configure(spec);
    const CliRun r =
        Run("acquire " + Device() + " --preset live:5 --out '" + (dir / "q.spe").string() + "'");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("the device does not answer: Failed to receive data from device"),
              std::string::npos)
        << r.err;
    EXPECT_FALSE(fs::exists(dir / "q.spe"));
}

TEST_F(CliTest, BatchPrintsEachSavedFile) {
    fs::create_directories(dir / "b");
    const CliRun r = Run("batch " + Device() + " --preset live:1 --count 3 --dir '" +
                         (dir / "b").string() + "' --sample-id S9 --tag run --clear --wait 1");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const auto lines = SplitLines(r.out);
    ASSERT_EQ(lines.size(), 3u) << r.out;
    for (int i = 0; i < 3; ++i) {
        const std::string expected =
            (dir / "b" / ("S9_run_000" + std::to_string(i + 1) + ".SPE")).string();
        EXPECT_EQ(lines[i], expected);
        auto doc = std::make_unique<SpectrumDocument>();
        ASSERT_TRUE(bReadFullSpectrum(*doc, expected));
        EXPECT_EQ(doc->szSpectrumID, "S9");
        EXPECT_NEAR(doc->sngLiveTime, 1.0f, 0.01f);
    }
}

TEST_F(CliTest, ScopeWritesTracesAsCsv) {
    const fs::path csv = dir / "s.csv";
    const CliRun r = Run("scope " + Device() + " --input --traces 3 --out '" + csv.string() + "'");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("fullScale = 65536"), std::string::npos) << r.out;
    const std::string text = test::ReadBytes(csv);
    const auto lines = SplitLines(text);
    ASSERT_EQ(lines.size(), 1026u);
    EXPECT_EQ(lines[0], "sample,trace1,trace2,trace3");
    EXPECT_EQ(lines[1025].rfind("1024,", 0), 0u);
    EXPECT_NE(text.find("\r\n"), std::string::npos);
}
