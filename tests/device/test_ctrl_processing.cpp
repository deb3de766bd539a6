// The external processing command: names, placeholders, argument splitting and a real
// program started without a shell.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "TestSupport.h"
#include "base/DateTime.h"
#include "base/ProgramLauncher.h"
#include "device/ExternalProcessing.h"
#include "spectrum/SpectrumFile.h"

using namespace vexo;
namespace fs = std::filesystem;

namespace {

const std::string kSep(1, static_cast<char>(fs::path::preferred_separator));
const double kNow = SerialFromParts({2024, 11, 7, 14, 5, 9});

// Keeps the test process's current folder whatever the command does to it.
struct FolderGuard {
    fs::path saved = fs::current_path();
    ~FolderGuard() { fs::current_path(saved); }
};

bool WaitForFile(const fs::path& path) {
    for (int i = 0; i < 500; ++i) {
        if (fs::exists(path) && fs::file_size(path) > 0)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

SpectrumDocument SmallSpectrum() {
    SpectrumDocument doc;
    doc.lChannels = 256;
    for (int i = 0; i < 256; ++i)
        doc.lCounts[i] = i;
    return doc;
}

// Processing enabled, the spectrum saved into `folder`, then `program` started.
ProcessSettings Enabled(const fs::path& folder, const std::string& program) {
    ProcessSettings s;
    s.bEnableExtProcessing = true;
    s.szDataDir = folder.string();
    s.szProgram = program;
    return s;
}

} // namespace

TEST(ProcessPlan, FileNameTemplates) {
    ProcessSettings s;
    s.szDataDir = "/data";
    struct Case {
        std::string templ, expected;
    };
    const Case cases[] = {
        {"", "20241107_140509.spe"},
        {"run_%T_%T", "run_20241107_140509_20241107_140509.spe"},
        {"sample.v1", "sample.v1"},
        {"a.%T", "a.20241107_140509"},
        {"%t", "%t.spe"}, // placeholders are case-sensitive
    };
    for (const auto& c : cases) {
        s.szFileName = c.templ;
        EXPECT_EQ(PlanProcessing(s, "/prog", kNow).fileName, c.expected) << c.templ;
    }
}

TEST(ProcessPlan, FoldersAndArguments) {
    ProcessSettings s;
    s.szDataDir = "/data";
    s.szFileName = "x";
    s.szProgram = "tool";
    s.szArguments = "-i %D%F -o %D%F.out %f";
    ProcessPlan p = PlanProcessing(s, "/prog", kNow);
    EXPECT_EQ(p.dataFolder, "/data" + kSep);
    EXPECT_EQ(p.spectrumPath, "/data" + kSep + "x.spe");
    EXPECT_EQ(p.arguments, "-i /data" + kSep + "x.spe -o /data" + kSep + "x.spe.out %f");
    EXPECT_EQ(p.commandLine, "tool " + p.arguments);
    EXPECT_EQ(p.workingFolder, "/prog"); // empty StartupDir: the program's folder, not D

    s.szStartupDir = "%Dwork";
    s.szDataDir = "/data" + kSep; // already ends in the separator: not doubled
    p = PlanProcessing(s, "/prog", kNow);
    EXPECT_EQ(p.workingFolder, "/data" + kSep + "work");

    s.szDataDir = "";
    p = PlanProcessing(s, "/prog", kNow);
    EXPECT_EQ(p.dataFolder, "/prog" + kSep);
}

TEST(ReplaceAll, EveryOccurrenceEvenWhenTheReplacementHoldsThePlaceholder) {
    EXPECT_EQ(ReplaceAll("%F-%F", "%F", "a%Fb"), "a%Fb-a%Fb");
    EXPECT_EQ(ReplaceAll("none", "%F", "x"), "none");
    EXPECT_EQ(ReplaceAll("", "%F", "x"), "");
}

TEST(LaunchProgram, ProgramsThatCannotRunAreRefusedWithTheReason) {
    EXPECT_FALSE(LaunchProgram({}).started);
    const LaunchResult missing = LaunchProgram({"vexo-no-such-program-on-path"});
    EXPECT_FALSE(missing.started);
    EXPECT_EQ(missing.error, "No such file or directory: vexo-no-such-program-on-path");
    test::TempDir dir;
    const fs::path plain = dir / "plain.txt";
    test::WriteBytes(plain, "not a program");
    const LaunchResult notExecutable = LaunchProgram({plain.string()});
    EXPECT_FALSE(notExecutable.started);
    EXPECT_EQ(notExecutable.error, "Permission denied: " + plain.string());
    EXPECT_TRUE(LaunchProgram({"true"}).started); // found on PATH
}

TEST(SplitCommandLine, QuotesGroupAndAreRemoved) {
    using V = std::vector<std::string>;
    EXPECT_EQ(SplitCommandLine("prog a b"), (V{"prog", "a", "b"}));
    EXPECT_EQ(SplitCommandLine("  prog\t a   "), (V{"prog", "a"}));
    EXPECT_EQ(SplitCommandLine("\"/my tools/prog\" -i \"C:\\my data\\x.spe\""),
              (V{"/my tools/prog", "-i", "C:\\my data\\x.spe"}));
    EXPECT_EQ(SplitCommandLine("a\"b c\"d e"), (V{"ab cd", "e"}));
    EXPECT_EQ(SplitCommandLine("x \"\" y"), (V{"x", "", "y"}));
    EXPECT_EQ(SplitCommandLine("\"say \"\"hi\"\"\""), (V{"say \"hi\""}));
    EXPECT_EQ(SplitCommandLine("'single quotes' stay"), (V{"'single", "quotes'", "stay"}));
    EXPECT_TRUE(SplitCommandLine("").empty());
    EXPECT_TRUE(SplitCommandLine("   ").empty());
}

TEST(ExternalProcessing, SavesThenStartsTheProgramInItsFolderWithoutAShell) {
    test::TempDir dir;
    FolderGuard guard;
    const fs::path before = fs::current_path();
    ScriptedMessages messages;
    ProcessSettings s = Enabled(dir.path(), "/bin/true");
    s.bEnableExtProcessing = false;
    EXPECT_EQ(RunExternalProcessing(SmallSpectrum(), s, messages, "/", kNow).status,
              ProcessStatus::Disabled);
    EXPECT_TRUE(fs::is_empty(dir.path()));

    s = Enabled(dir.path(), "/bin/sh");
    s.szFileName = "run_%T";
    // The script writes its arguments into the working folder; $0 is the first one.
    s.szArguments = "-c \"echo \"\"$0|$1\"\" > out.txt\" %F \"%D\"";
    s.szStartupDir = "%Dwork";
    fs::create_directory(dir.path() / "work");
    const auto outcome = RunExternalProcessing(SmallSpectrum(), s, messages, "/", kNow);
    ASSERT_EQ(outcome.status, ProcessStatus::Started)
        << (messages.shown().empty() ? "" : messages.shown()[0].text);
    EXPECT_TRUE(messages.shown().empty());
    EXPECT_EQ(fs::current_path(), before); // changed back after starting
    SpectrumDocument back;
    ASSERT_TRUE(bReadFullSpectrum(back, dir.path() / "run_20241107_140509.spe"));
    EXPECT_EQ(back.lCounts[100], 100);
    const fs::path out = dir.path() / "work" / "out.txt";
    ASSERT_TRUE(WaitForFile(out));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(test::ReadBytes(out), "run_20241107_140509.spe|" + dir.path().string() + kSep + "\n");
}

TEST(ExternalProcessing, FailuresAreReportedAndLeaveTheFolderWhereTheyHappened) {
    test::TempDir dir;
    const std::string missing = (dir / "no-such-program").string();
    const struct {
        ProcessSettings settings;
        ProcessStatus status;
        std::string message; // its start
        fs::path folderAfter;
    } cases[] = {// The save fails: nothing is started.
                 {Enabled(dir / "missing", "/bin/sh"), ProcessStatus::SaveFailed,
                  "Failed to save the sprectrum", fs::current_path()},
                 // The program cannot start: the working folder stays where it was changed to.
                 {Enabled(dir.path(), missing), ProcessStatus::LaunchFailed,
                  "Failed to execute application: No such file or directory: " + missing,
                  fs::canonical(dir.path())},
                 // The working folder is missing: nothing moves.
                 {Enabled(dir.path(), "/bin/true"), ProcessStatus::LaunchFailed,
                  "Failed to execute application: ", fs::current_path()}};
    const std::string startups[] = {dir.path().string(), "%D", "%Dnot-there"};
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        FolderGuard guard;
        ProcessSettings s = cases[i].settings;
        s.szStartupDir = startups[i];
        s.szArguments = "-c \"touch started\"";
        ScriptedMessages messages;
        EXPECT_EQ(RunExternalProcessing(SmallSpectrum(), s, messages, "/", kNow).status,
                  cases[i].status);
        ASSERT_EQ(messages.shown().size(), 1u) << i;
        EXPECT_EQ(messages.shown()[0].title, "Vexo");
        EXPECT_EQ(messages.shown()[0].icon, MsgIcon::Critical);
        EXPECT_EQ(messages.shown()[0].text.rfind(cases[i].message, 0), 0u)
            << messages.shown()[0].text;
        EXPECT_EQ(fs::current_path(), cases[i].folderAfter) << i;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(fs::exists(dir / "started"));
}
