// vexo-cli nuclib and nucdb: exit codes, the library nuclib writes from real decay data,
// and database searches.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "nuclide/NuclideLibrary.h"

namespace vexo::test {
namespace {

std::filesystem::path LaraDir() {
    return SharedDir() / "nucdata" / "lara";
}

TEST(NuclibCommand, UsageErrorsAndMissingDecayData) {
    for (const char* args :
         {"nuclib", "nuclib --lara x --out y.nli", "nuclib --lara x Cs-137",
          "nuclib --lara x --out y --max-lines -1 Cs-137",
          "nuclib --lara x --out y --frobnicate Cs-137", "nuclib --lara x --out y ../etc/passwd"})
        EXPECT_EQ(RunCli(args).exitCode, 2) << args;
    EXPECT_EQ(RunCli("nuclib --help").exitCode, 0);
    TempDir dir;
    const CliRun run = RunCli("nuclib --lara " + Quoted(dir.path().string()) + " --out " +
                              Quoted((dir / "l.nli").string()) + " Cs-137");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("Cs-137.lara.txt"), std::string::npos) << run.err;
}

// A library that cannot be written (a full disk) ends at once with the system's reason.
TEST(NuclibCommand, FullDiskEndsAtOnce) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "no /dev/full";
    TempDir dir;
    WriteBytes(dir / "Cs-137.lara.txt",
               "Nuclide ; Cs-137\nZ ; 55\nEnergy (keV) ; u ; I ; u ; Type ; "
               "Origin\n661.6553 ; 0.003 ; 85.01 ; 0.20 ; g ; Ba-137\n");
    const CliRun run =
        RunCli("nuclib --lara " + Quoted(dir.path().string()) + " --out /dev/full Cs-137");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("No space left on device"), std::string::npos) << run.err;
}

// The section names of the library written by `nuclib ... options nuclides`.
std::vector<std::string> Written(const std::string& options) {
    TempDir dir;
    const auto out = dir / "lib.nli";
    WriteBytes(out, "[Old]\r\nEn=1\r\n"); // replaced, not merged
    const CliRun run = RunCli("nuclib --lara " + Quoted(LaraDir().string()) + " --out " +
                              Quoted(out.string()) + " " + options);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(IsNuclideLibrary(out));
    EXPECT_EQ(ReadBytes(out).rfind("; credit\r\n[Info]\r\n", 0) == 0,
              options.find("--note credit") != std::string::npos);
    const NuclideLibraryRead read = ReadNuclideLibrary(out);
    EXPECT_TRUE(read.ok) << read.error;
    std::vector<std::string> names;
    for (const auto& l : read.lines)
        names.push_back(LibrarySectionName(l));
    return names;
}

TEST(NuclibCommand, WritesTheSelectedLines) {
    if (!std::filesystem::is_directory(LaraDir()))
        GTEST_SKIP() << "no decay data at " << LaraDir();
    // Co-60 in energy order; Na-22 with its annihilation line; Eu-152's three strongest
    // lines at or above 5 %, in energy order.
    EXPECT_EQ(
        Written("--min-intensity 5 --max-lines 3 --note credit Co-60 Na-22 Eu-152"),
        (std::vector<std::string>{"Co-6027:1173.23:G", "Co-6027:1332.49:G", "Na-2211:511:G ANH",
                                  "Na-2211:1274.54:G", "Eu-15263:121.78:G", "Eu-15263:344.28:G",
                                  "Eu-15263:1408.01:G"}));
    // Ba K X-rays of Cs-137 stay below 5 %; the Ka1 line has 3.66 %.
    EXPECT_EQ(Written("--min-intensity 5 --with-xrays Cs-137"),
              std::vector<std::string>{"Cs-13755:661.66:G"});
    EXPECT_EQ(Written("--min-intensity 3 --with-xrays Cs-137"),
              (std::vector<std::string>{"Cs-13755:32.19:X KA1", "Cs-13755:661.66:G"}));
}

TEST(NucdbCommand, SearchesTheShippedDatabase) {
    const std::string db = "nucdb --db " + Quoted((BinDir() / "NuclWalletCards.sqlite").string());
    CliRun run = RunCli(db + " isotopes Co");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("Co-60\n"), std::string::npos);
    run = RunCli(db + " --json near 1332.5 --tolerance 0.05 --min-intensity 50");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("\"nuclide\": \"Co-60\""), std::string::npos);
    EXPECT_NE(run.out.find("\"energy_keV\": 1332.492"), std::string::npos);
    run = RunCli(db + " lines Co-60 --min-intensity 99.9");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out.find("1173"), std::string::npos);
}

TEST(NucdbCommand, BadUseAndMissingDatabase) {
    for (const char* args : {"nucdb", "nucdb lines", "nucdb near abc", "nucdb frobnicate"})
        EXPECT_EQ(RunCli(args).exitCode, 2) << args;
    TempDir dir;
    const CliRun run = RunCli("nucdb --db " + Quoted((dir / "none.sqlite").string()) + " elements");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("none.sqlite"), std::string::npos) << run.err;
}

} // namespace
} // namespace vexo::test
