// vexo-cli nuclib: exit codes and the library it writes from real decay data.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/wait.h>

#include "TestSupport.h"
#include "nuclide/NuclideLibrary.h"

using namespace vexo;
using vexo::test::TempDir;

namespace {

std::filesystem::path LaraDir() {
    return vexo::test::SharedDir() / "nucdata" / "lara";
}

int RunCli(const std::string& args, const TempDir& dir) {
    std::string command = (vexo::test::BinDir() / "vexo-cli").string() + " " + args + " >" +
                          (dir / "out.txt").string() + " 2>" + (dir / "err.txt").string();
    int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

TEST(NuclibCommand, UsageErrorsExitWithTwo) {
    TempDir dir;
    EXPECT_EQ(RunCli("nuclib", dir), 2);
    EXPECT_EQ(RunCli("nuclib --lara x --out y.nli", dir), 2); // no nuclide
    EXPECT_EQ(RunCli("nuclib --lara x Cs-137", dir), 2);      // no --out
    EXPECT_EQ(RunCli("nuclib --lara x --out y --max-lines -1 Cs-137", dir), 2);
    EXPECT_EQ(RunCli("nuclib --lara x --out y --frobnicate Cs-137", dir), 2);
    EXPECT_EQ(RunCli("nuclib --lara x --out y ../etc/passwd", dir), 2);
    EXPECT_EQ(RunCli("nuclib --help", dir), 0);
}

TEST(NuclibCommand, MissingDecayDataExitsWithOne) {
    TempDir dir;
    EXPECT_EQ(RunCli("nuclib --lara " + dir.path().string() + " --out " + (dir / "l.nli").string() +
                         " Cs-137",
                     dir),
              1);
    EXPECT_NE(vexo::test::ReadBytes(dir / "err.txt").find("Cs-137.lara.txt"), std::string::npos);
}

TEST(NuclibCommand, WritesSelectedGammaLines) {
    if (!std::filesystem::is_directory(LaraDir()))
        GTEST_SKIP() << "no decay data at " << LaraDir();
    TempDir dir;
    auto out = dir / "lib.nli";
    vexo::test::WriteBytes(out, "[Old]\r\nEn=1\r\n"); // replaced, not merged
    ASSERT_EQ(RunCli("nuclib --lara " + LaraDir().string() + " --out " + out.string() +
                         " --min-intensity 5 --max-lines 3 --note credit Co-60 Na-22 Eu-152",
                     dir),
              0)
        << vexo::test::ReadBytes(dir / "err.txt");
    ASSERT_TRUE(IsNuclideLibrary(out));
    EXPECT_EQ(vexo::test::ReadBytes(out).rfind("; credit\r\n[Info]\r\n", 0), 0u);
    auto read = ReadNuclideLibrary(out);
    ASSERT_TRUE(read.ok) << read.error;
    std::vector<std::string> names;
    for (const auto& l : read.lines)
        names.push_back(LibrarySectionName(l));
    // Co-60 in energy order; Na-22 with its annihilation line; Eu-152's three strongest
    // lines at or above 5 %, in energy order.
    std::vector<std::string> expected{"Co-6027:1173.23:G", "Co-6027:1332.49:G", "Na-2211:511:G ANH",
                                      "Na-2211:1274.54:G", "Eu-15263:121.78:G", "Eu-15263:344.28:G",
                                      "Eu-15263:1408.01:G"};
    EXPECT_EQ(names, expected);
}

TEST(NuclibCommand, XraysOnRequest) {
    if (!std::filesystem::is_directory(LaraDir()))
        GTEST_SKIP() << "no decay data at " << LaraDir();
    TempDir dir;
    auto out = dir / "lib.nli";
    ASSERT_EQ(RunCli("nuclib --lara " + LaraDir().string() + " --out " + out.string() +
                         " --min-intensity 5 --with-xrays Cs-137",
                     dir),
              0);
    auto read = ReadNuclideLibrary(out);
    ASSERT_TRUE(read.ok);
    ASSERT_EQ(read.lines.size(), 1u + 0u); // Ba K X-rays of Cs-137 stay below 5 %
    EXPECT_EQ(read.lines[0].szDecayRadEx(), "G");
    ASSERT_EQ(RunCli("nuclib --lara " + LaraDir().string() + " --out " + out.string() +
                         " --min-intensity 3 --with-xrays Cs-137",
                     dir),
              0);
    read = ReadNuclideLibrary(out);
    ASSERT_EQ(read.lines.size(), 2u);
    EXPECT_EQ(read.lines[0].szDecayRadEx(), "X KA1"); // 32.19 keV, 3.66 %
}
