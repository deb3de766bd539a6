// The spectrum subcommands of the built vexo-cli, run as a user runs them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "TestSupport.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

using test::Cli;
using test::CliRun;
using test::TempDir;

std::string SmallFull() {
    return (test::TestDataDir() / "spectrum" / "small_full.spe").string();
}

// Each key of `expected` (JSON text) has its value in `actual`.
void ExpectKeys(const nlohmann::json& actual, const char* expected) {
    const auto want = nlohmann::json::parse(expected);
    for (const auto& [key, value] : want.items())
        EXPECT_EQ(actual[key], value) << key;
}

TEST(CliInfo, JsonCarriesTheRecord) {
    CliRun run = Cli({"info", SmallFull(), "--json", "--counts"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    auto j = nlohmann::json::parse(run.out);
    ExpectKeys(j, R"({"full": true, "szSpectrumID": "Lab sample 7", "sngRealTime": 102.5,
        "dtMeasured": "2023-11-02T08:15:42", "szDeviceName": "VX16", "lMCSMode": 0,
        "lPoleZero": 1800, "lPresetLastCh": 15, "lChannels": 16, "sum": 2158})");
    ExpectKeys(j["calibration"], R"({"bCalibrated": true, "dSlope": 10.0})");
    ASSERT_EQ(j["rois"].size(), 1u);
    ExpectKeys(j["rois"][0], R"({"lROIColor": 65280, "flag": true, "name": "Peak A"})");
    EXPECT_NEAR(j["countRate"].get<double>(), 21.58, 1e-6);
    ASSERT_EQ(j["counts"].size(), 16u);
    EXPECT_EQ(j["counts"][5], 910);
}

TEST(CliInfo, PlainFileAndTextOutput) {
    CliRun json =
        Cli({"info", (test::TestDataDir() / "spectrum" / "plain_counts.dat").string(), "--json"});
    ASSERT_EQ(json.exitCode, 0) << json.err;
    auto j = nlohmann::json::parse(json.out);
    EXPECT_EQ(j["full"], false);
    EXPECT_EQ(j["lChannels"], 6);
    EXPECT_FALSE(j.contains("counts"));
    CliRun text = Cli({"info", SmallFull()});
    ASSERT_EQ(text.exitCode, 0);
    EXPECT_NE(text.out.find("Lab sample 7"), std::string::npos);
    EXPECT_NE(text.out.find("21.6 cps"), std::string::npos);
}

// A file that starts as a full spectrum file but breaks is reported with the full
// reader's reason, not as plain counts.
TEST(CliInfo, BrokenFullFileSaysWhatFailed) {
    TempDir dir;
    test::WriteBytes(dir / "o.spe", "$SPEC_ID:\r\nx\r\n$DATA:\r\n0 1\r\n5 99999999999\r\n");
    CliRun run = Cli({"info", (dir / "o.spe").string()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("as a full spectrum file failed: Overflow in $DATA:"), std::string::npos)
        << run.err;
}

TEST(CliConvert, FullRoundTripAndPlain) {
    TempDir dir;
    std::string full = (dir / "copy.spe").string();
    ASSERT_EQ(Cli({"convert", SmallFull(), full, "--full"}).exitCode, 0);
    // Our own file written back by Save All is byte-identical.
    EXPECT_EQ(test::ReadBytes(full), test::ReadBytes(SmallFull()));
    std::string plain = (dir / "copy.dat").string();
    ASSERT_EQ(Cli({"convert", full, plain, "--plain"}).exitCode, 0);
    EXPECT_EQ(test::ReadBytes(plain).substr(0, 18), " 0 \r\n 3 \r\n 17 \r\n 1");
    CliRun failed = Cli({"convert", SmallFull(), (dir / "no" / "x.spe").string(), "--full"});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_NE(failed.err.find("Error saving file: "), std::string::npos);
}

// A write that fails part-way (at the file size limit, as on a full disk) reports why and
// leaves the file it was to replace as it was.
TEST(CliConvert, FailedWriteKeepsTheOldFile) {
    TempDir dir;
    auto big = std::make_unique<SpectrumDocument>();
    big->lChannels = 16384;
    big->lCounts.fill(1234567);
    ASSERT_TRUE(bSaveFullSpectrum(*big, dir / "big.spe")); // about 230 KB, plain 160 KB
    const std::string good = test::ReadBytes(SmallFull());
    for (const char* mode : {"--full", "--plain"}) {
        test::WriteBytes(dir / "good.spe", good);
        // At most 100 blocks per file; with SIGXFSZ ignored the write fails with EFBIG.
        CliRun run = test::RunCli(
            "convert " + test::Quoted((dir / "big.spe").string()) + " " +
                test::Quoted((dir / "good.spe").string()) + " " + mode,
            "sh -c " + test::Quoted("trap '' XFSZ; ulimit -f 100; exec \"$0\" \"$@\""));
        EXPECT_EQ(run.exitCode, 1) << mode;
        EXPECT_NE(run.err.find("File too large"), std::string::npos) << run.err;
        EXPECT_EQ(test::ReadBytes(dir / "good.spe"), good) << mode;
    }
}

TEST(CliEnergy, BothDirectionsAndFaults) {
    CliRun e = Cli({"energy", "--cal", "0,2.5,0", "--channel", "100"});
    EXPECT_EQ(e.exitCode, 0);
    EXPECT_EQ(e.out, "250\n");
    CliRun c = Cli({"energy", "--cal", "0,2,0", "--energy", "5"});
    EXPECT_EQ(c.out, "2\n"); // 2.5 rounds to even
    CliRun fault = Cli({"energy", "--cal", "0,1e-300,0", "--energy", "1e300"});
    EXPECT_EQ(fault.exitCode, 1);
    EXPECT_EQ(std::count(fault.err.begin(), fault.err.end(), '\n'), 1);
}

TEST(CliRoi, AnalysesGivenRoisWithTheGivenTime) {
    CliRun run = Cli({"roi", SmallFull(), "--roi", "2:8", "--time", "10", "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    auto j = nlohmann::json::parse(run.out);
    ASSERT_EQ(j.size(), 1u);
    // lInt = 17 + 120 + 480 + 910 + 470 + 130 + 22; sROILEn = 1.5 + 10 x 2.
    ExpectKeys(j[0], R"({"ok": true, "error": null, "nBkgChn": 2, "lInt": 2149, "lMax": 910,
        "nChnMax": 5, "sROILEn": 21.5})");
    EXPECT_NEAR(j[0]["sIntRate"].get<double>(), 214.9, 1e-3);
    // Without --roi the file's ROIs are analysed.
    j = nlohmann::json::parse(Cli({"roi", SmallFull(), "--json"}).out);
    ASSERT_EQ(j.size(), 1u);
    ExpectKeys(j[0], R"({"lROILCh": 3, "lROIRCh": 7})");
    CliRun text = Cli({"roi", SmallFull()});
    EXPECT_NE(text.out.find("Net area"), std::string::npos);
}

TEST(CliCalibrate, PointsAndRefusals) {
    CliRun one = Cli({"calibrate", "--point", "100:661.66", "--json"});
    ASSERT_EQ(one.exitCode, 0) << one.err;
    auto j = nlohmann::json::parse(one.out);
    EXPECT_DOUBLE_EQ(j["dSlope"].get<double>(), 6.6166);
    EXPECT_EQ(j["dOffset"], 0.0);
    // The texts of the dialog's acceptance question, not the numbers' full precision.
    EXPECT_EQ(Cli({"calibrate", "--point", "400:661.66", "--point", "800:1332.49"}).out,
              "Offset = -9.1700 keV\nSlope = 1.6771 keV/chn\nQuadratic = 0.0000 keV/chn^2\n");
    CliRun same = Cli({"calibrate", "--point", "5:10", "--point", "5:20"});
    EXPECT_EQ(same.exitCode, 1);
    EXPECT_NE(same.err.find("Channel values must be different"), std::string::npos);
}

struct ExitCase {
    std::vector<std::string> args;
    int status;
};

TEST(Cli, ExitCodesAndHelp) {
    const ExitCase cases[] = {
        {{"info", "/nonexistent/file.spe"}, 1},
        {{"info"}, 2},
        {{"info", SmallFull(), "--bogus"}, 2},
        {{"convert", SmallFull(), "/tmp/x.spe"}, 2},
        {{"convert", SmallFull(), "/tmp/x.spe", "--full", "--plain"}, 2},
        {{"energy", "--cal", "0,1", "--channel", "1"}, 2},
        {{"energy", "--cal", "0,1,0", "--channel", "1", "--energy", "2"}, 2},
        {{"energy", "--cal", "0,1,0", "--channel", "1.5"}, 2},
        {{"roi", SmallFull(), "--roi", "3"}, 2},
        {{"calibrate"}, 2},
        {{"calibrate", "--point", "1:1", "--point", "2:2", "--point", "3:3", "--point", "4:4"}, 2},
    };
    for (const ExitCase& c : cases) {
        CliRun run = Cli(c.args);
        EXPECT_EQ(run.exitCode, c.status) << c.args[0] << " " << run.err;
        if (c.status == 1) {
            EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        }
    }
    for (const char* name : {"info", "convert", "energy", "roi", "calibrate"}) {
        CliRun help = Cli({name, "--help"});
        EXPECT_EQ(help.exitCode, 0) << name;
        EXPECT_EQ(help.out.rfind(std::string("usage: vexo-cli ") + name, 0), 0u) << help.out;
    }
}

} // namespace
} // namespace vexo
