// vexo-cli's device commands (devices, params, acquire, batch, scope) run as a separate
// process on the simulated analyser: exit codes, what they print and save, and failures
// reported without a crash or a hang.
#include <gtest/gtest.h>

#include <set>

#include <nlohmann/json.hpp>

#include "SimAnalyser.h"
#include "base/TextFile.h"
#include "device/ExternalProcessing.h"
#include "spectrum/SpectrumFile.h"

namespace vexo::test {
namespace {

namespace fs = std::filesystem;

const std::string kDevice = "--device USB:KORV-10-001";

std::unique_ptr<SpectrumDocument> ReadBack(const fs::path& file) {
    auto doc = std::make_unique<SpectrumDocument>();
    EXPECT_TRUE(bReadFullSpectrum(*doc, file)) << file;
    return doc;
}

TEST(CliDevices, ListsRowsOneTickBehindAndPrintsTheRecord) {
    SimConfig sim(Model10() + SimDevice(2, "06110108", "KORV-06-003",
                                        "Name=KORV MCA-6\nType=1\nOpenFailures=1000"));
    CliRun r = RunCli("devices --ticks 3 --interval 0 --json");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const auto rows = nlohmann::json::parse(r.out);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0], nlohmann::json::parse(R"({"No": 1, "Name": "KORV MCA-10", "Type": 2,
        "Path": "USB:KORV-10-001", "Location": "KORV-10-001", "Serial": "10230417"})"));
    EXPECT_EQ(rows[1]["Path"], "HID:KORV-06-003");
    EXPECT_NE(r.err.find("tick 3/3"), std::string::npos);
    EXPECT_TRUE(nlohmann::json::parse(RunCli("devices --ticks 1 --interval 0 --json").out).empty());

    r = RunCli("params " + kDevice + " --json");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const auto record = nlohmann::json::parse(r.out);
    EXPECT_EQ(record["szDeviceName"], "KORV MCA-10");
    EXPECT_EQ(record["szDevicePath"], "USB:KORV-10-001");
    EXPECT_EQ(record["bConnected"], true);
    EXPECT_EQ(record["lFineGainMax"], 16383);
    EXPECT_EQ(record["lCapabilities"], 0xFF7);
    EXPECT_EQ(record["dDeviceCal"].size(), 3u);
    for (const char* key : {"lChannels", "sngPresetTime", "sngHighVoltage", "lGPIO1Func",
                            "lHVInhibitEnable", "lClockHz", "sngMaxHV", "lSCAHigh"})
        EXPECT_TRUE(record.contains(key)) << key;
    r = RunCli("params --device KORV-10-001");
    EXPECT_NE(r.out.find("szDeviceSerial = 10230417\n"), std::string::npos) << r.out;
    r = RunCli("params --device KORV-06-003");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("Could not open MCA: Connection failed"), std::string::npos) << r.err;
}

TEST(CliDevices, ExitCodes) {
    SimConfig sim;
    TempDir dir;
    const std::pair<std::string, int> cases[] = {
        {"params", 2},
        {"params --device", 2},
        {"devices --ticks 0", 2},
        {"devices --ticks x", 2},
        {"devices --bogus", 2},
        {"devices --help", 0},
        {"params --help", 0},
        {"acquire --preset live:1 --out x.spe", 2}, // no device
        {"acquire --device USB:X --preset sometimes --out x.spe", 2},
        {"acquire --device USB:X --preset live:1 --set lNoSuch=1 --out x", 2},
        {"batch --device USB:X --preset live:1 --count 0 --dir /tmp", 2},
        {"batch --device USB:X --preset live:1 --count 1 --dir /tmp --sample-id ../../x", 2},
        {"batch --device USB:X --preset live:1 --count 1 --dir /tmp --tag a/b", 2},
        {"acquire --device USB:X --preset live:inf --out x.spe", 2},
        {"acquire --device USB:X --preset real:nan --out x.spe", 2},
        {"scope --device USB:X --traces 0 --out x.csv", 2}};
    for (const auto& [args, code] : cases)
        EXPECT_EQ(RunCli(args).exitCode, code) << args;
    const CliRun noFolder = RunCli("batch " + kDevice + " --preset live:1 --count 2 --dir " +
                                   Quoted((dir / "missing").string()));
    EXPECT_EQ(noFolder.exitCode, 2);
    EXPECT_NE(noFolder.err.find("Sub-directory not found"), std::string::npos) << noFolder.err;
    const CliRun noLibrary =
        RunCli("devices --ticks 1 --interval 0", "VEXO_DEVICE_LIBRARY=/nowhere/libKORVHW.so");
    EXPECT_EQ(noLibrary.exitCode, 1);
    EXPECT_NE(noLibrary.err.find("/nowhere/libKORVHW.so"), std::string::npos) << noLibrary.err;
}

TEST(CliAcquire, MeasuresToThePresetAndSaves) {
    SimConfig sim;
    const fs::path spe = sim.dir() / "a.spe";
    CliRun r =
        RunCli("acquire " + kDevice +
               " --preset live:4 --hv on --set lCoarseGain=2 --set sngHighVoltage=750 --out " +
               Quoted(spe.string()) + " --json");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("\"live\": 4.0"), std::string::npos) << r.out;
    for (const char* key : {"\"real\"", "\"deadTimePercent\"", "\"countRate\"",
                            "\"inputCountRate\"", "\"channels\": 1024", "\"file\""})
        EXPECT_NE(r.out.find(key), std::string::npos) << key;
    EXPECT_NE(r.err.find("opening USB:"), std::string::npos); // progress on stderr
    auto doc = ReadBack(spe);
    EXPECT_NEAR(doc->sngLiveTime, 4.0f, 0.01f);
    EXPECT_EQ(doc->lCoarseGain, 2);
    EXPECT_FLOAT_EQ(doc->sngHighVoltage, 750.0f);

    r = RunCli("acquire " + kDevice + " --preset forever:3 --out " + Quoted(spe.string()));
    ASSERT_EQ(r.exitCode, 0) << r.err;
    doc = ReadBack(spe);
    EXPECT_GE(doc->sngRealTime, 3.0f);
    EXPECT_LT(doc->sngRealTime, 4.0f);
}

TEST(CliAcquire, CountsPresetOnAnAnalyserWithoutOneIsRefusedInsteadOfRunningForever) {
    SimConfig sim(Model06());
    const fs::path spe = sim.dir() / "k.spe";
    CliRun r = RunCli("acquire --device HID:KORV-06-003 --preset counts:1000:0:1023 --out " +
                      Quoted(spe.string()));
    EXPECT_EQ(r.exitCode, 1) << r.err;
    EXPECT_NE(r.err.find("no counts preset"), std::string::npos) << r.err;
    EXPECT_FALSE(fs::exists(spe));
    // The time presets of its legacy word work.
    r = RunCli("acquire --device HID:KORV-06-003 --preset live:3 --out " + Quoted(spe.string()));
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(fs::exists(spe));
}

TEST(CliAcquire, FailuresEndTheCommandAndSaveNothing) {
    const struct {
        const char* device;
        const char* keys;
        const char* message;
        const char* more = ""; // further arguments
    } cases[] = {{"USB:NOPE", "", "Could not open MCA: Invalid device"},
                 {"USB:KORV-10-001", "DisconnectAfter=2",
                  "Lost the connection to the MCA: Connection closed"},
                 // Every status poll fails while the link itself stays up.
                 {"USB:KORV-10-001", "FailParam=22:-12",
                  "the device does not answer: Failed to receive data from device"},
                 // A preset or mode the analyser did not take would never end the run.
                 {"USB:KORV-10-001", "FailParam=9:-12", "cannot read back sngPresetTime"},
                 {"USB:KORV-10-001", "", "did not take lMCSMode = 7", "--set lMCSMode=7"},
                 {"USB:KORV-10-001", "", "did not take lPresetMode = 255", "--set lPresetMode=255"},
                 {"USB:KORV-10-001", "", "does not exist: /no-such", "--out /no-such/x.spe"},
                 {"USB:KORV-10-001", "ReadSpectrumFailShare=1",
                  "could not be read after the measurement (Failed to receive data from device)"}};
    for (const auto& c : cases) {
        SimConfig sim(Model10(c.keys));
        const fs::path spe = sim.dir() / "n.spe";
        const CliRun r = RunCli(std::string("acquire --device ") + c.device +
                                " --preset live:30 --out " + Quoted(spe.string()) + " " + c.more);
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
        EXPECT_FALSE(fs::exists(spe));
    }
}

TEST(CliAcquire, RefusedSettingsAndAnEmptyRunAreWarnedAbout) {
    SimConfig sim;
    const fs::path spe = sim.dir() / "r.spe";
    const CliRun r =
        RunCli("acquire " + kDevice + " --preset live:1 --out " + Quoted(spe.string()) +
               " --set sngHighVoltage=99999 --set lCoarseGain=99 --set lHVOn=0");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    for (const char* warning :
         {"refused sngHighVoltage=99999; it holds 800\n", "refused lCoarseGain=99; it holds 2\n",
          "warning: No counts: the high voltage is off\n"})
        EXPECT_NE(r.err.find(warning), std::string::npos) << r.err;
    EXPECT_EQ(ReadBack(spe)->lCoarseGain, 2); // what the analyser holds
}

TEST(CliBatch, ASpectrumIsSavedOnlyFromAReadAfterTheMeasurement) {
    SimConfig sim(Model10("ReadSpectrumFailShare=0.8"));
    const CliRun r = RunCli("batch " + kDevice + " --preset live:2 --count 10 --hv on --dir " +
                            Quoted(sim.dir().string()));
    std::set<std::string> contents;
    for (const std::string& file : SplitLines(r.out)) {
        contents.insert(ReadBytes(file));
        EXPECT_NEAR(ReadBack(file)->sngLiveTime, 2.0f, 0.01f) << file;
    }
    EXPECT_EQ(contents.size(), SplitLines(r.out).size()); // no measurement saved twice
    EXPECT_NE(r.err.find(std::to_string(contents.size()) + " file(s) saved, " +
                         std::to_string(10 - contents.size()) + " failed"),
              std::string::npos)
        << r.err;
}

// SIGINT mid-batch: the file being written is finished, every file saved is complete and
// reported, the summary printed and the exit status 130.
TEST(CliBatch, InterruptEndsTheBatchCleanly) {
    SimConfig sim;
    const CliRun r = RunCli("batch " + kDevice + " --preset live:1 --until-stop --dir " +
                                Quoted(sim.dir().string()),
                            "VEXO_TICK_MS=2 timeout --preserve-status -s INT 1");
    EXPECT_EQ(r.exitCode, 130) << r.err;
    const auto files = SplitLines(r.out);
    EXPECT_GT(files.size(), 2u);
    for (const std::string& file : files)
        EXPECT_EQ(ReadBack(file)->lChannels, 1024) << file;
    EXPECT_NE(r.err.find(std::to_string(files.size()) + " file(s) saved, 0 failed"),
              std::string::npos);
}

// The README's vexo-cli examples run as written and in order in a scratch folder, with
// "build/bin" standing for the built programs (a comment ends each line's command).
TEST(CliReadme, ExamplesRunAsWritten) {
    SimConfig sim;
    TempDir work;
    const std::string readme = ReadBytes(fs::path(VEXO_SOURCE_DIR) / "README.md");
    const std::size_t begin = readme.find("```sh\n", readme.find("\n## vexo-cli\n")) + 6;
    int examples = 0;
    for (std::string line : SplitLines(readme.substr(begin, readme.find("```", begin) - begin))) {
        line = ReplaceAll(line.substr(0, line.find(" #")), "build/bin", BinDir().string());
        if (line.rfind(BinDir().string(), 0) != 0) { // a shell step between the examples
            EXPECT_EQ(std::system(("cd " + Quoted(work.path().string()) + " && " + line).c_str()),
                      0);
            continue;
        }
        const CliRun r = RunCli(line.substr(line.find(' ') + 1), "", work.path());
        EXPECT_EQ(r.exitCode, 0) << line << "\n" << r.err;
        ++examples;
    }
    EXPECT_GE(examples, 12);
}

TEST(CliBatch, PrintsEachSavedFile) {
    SimConfig sim;
    const fs::path folder = sim.dir() / "b";
    fs::create_directories(folder);
    const CliRun r =
        RunCli("batch " + kDevice + " --preset live:1 --count 3 --dir " +
               Quoted(folder.string() + "/") + " --sample-id S9 --tag run --clear --wait 1");
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const auto lines = SplitLines(r.out);
    ASSERT_EQ(lines.size(), 3u) << r.out;
    for (int i = 0; i < 3; ++i) {
        const fs::path expected = folder / ("S9_run_000" + std::to_string(i + 1) + ".SPE");
        EXPECT_EQ(lines[i], expected.string()); // the trailing separator is not doubled
        auto doc = ReadBack(expected);
        EXPECT_EQ(doc->szSpectrumID, "S9");
        EXPECT_NEAR(doc->sngLiveTime, 1.0f, 0.01f);
    }
}

// A batch killed at any moment leaves each measurement complete or absent: what a listing
// shows under a measurement's name reads back whole (a write in progress is hidden).
TEST(CliBatch, KilledAnywhereLeavesOnlyWholeFiles) {
    SimConfig sim;
    for (const char* after : {"0.15", "0.2", "0.3", "0.35", "0.4", "0.5", "0.6", "0.7"}) {
        const fs::path folder = sim.dir() / (std::string("k") + after);
        fs::create_directories(folder);
        RunCli("batch " + kDevice + " --preset live:1 --until-stop --set lChannels=16384 --dir " +
                   Quoted(folder.string()),
               std::string("timeout -s KILL ") + after);
        for (const auto& entry : fs::directory_iterator(folder)) {
            const std::string name = entry.path().filename().string();
            if (name.front() == '.')
                continue;
            SCOPED_TRACE(name);
            auto doc = ReadBack(entry.path());
            EXPECT_EQ(doc->lChannels, 16384);
            EXPECT_NEAR(doc->sngLiveTime, 1.0f, 0.01f);
        }
    }
}

TEST(CliScope, WritesTracesAsCsv) {
    SimConfig sim;
    const fs::path csv = sim.dir() / "s.csv";
    const CliRun r =
        RunCli("scope " + kDevice + " --input --traces 3 --out " + Quoted(csv.string()));
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("fullScale = 65536"), std::string::npos) << r.out;
    const std::string text = ReadBytes(csv);
    const auto lines = SplitLines(text);
    ASSERT_EQ(lines.size(), 1026u);
    EXPECT_EQ(lines[0], "sample,trace1,trace2,trace3");
    EXPECT_EQ(lines[1025].rfind("1024,", 0), 0u);
    EXPECT_NE(text.find("\r\n"), std::string::npos);
}

} // namespace
} // namespace vexo::test
