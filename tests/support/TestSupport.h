#pragma once
// Helpers shared by the test executables: scratch folders, the shared test data, the
// environment and runs of the built command-line tool.
#include <filesystem>
#include <string>
#include <vector>

namespace vexo::test {

// A fresh empty folder under the system temp folder, removed when the object dies.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

// Sets an environment variable while the object lives (child processes inherit it) and
// restores the earlier value afterwards.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const std::string& value);
    ~ScopedEnv();
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    const char* m_name;
    std::string m_old;
    bool m_had = false;
};

// Writes bytes exactly as given (no line-end or code-page conversion).
void WriteBytes(const std::filesystem::path& path, const std::string& bytes);
// Reads a file's bytes exactly.
std::string ReadBytes(const std::filesystem::path& path);

// tests/data of the source tree.
std::filesystem::path TestDataDir();
// ../shared beside the checkout; may not exist (tests that need it skip).
std::filesystem::path SharedDir();
// The folder holding the built executables and the simulated analyser.
std::filesystem::path BinDir();

// What one run of the built vexo-cli gave; exitCode is -1 when it did not exit.
struct CliRun {
    int exitCode = -1;
    std::string out;
    std::string err;
};

// Runs vexo-cli with `args` (shell words, quoted by the caller where needed), without
// the wall-clock pause between its polls and for at most 60 s. `env` goes in front of
// the command ("NAME=value ...", or a program that runs vexo-cli, such as "timeout 1");
// `cwd`, when given, is its current folder.
CliRun RunCli(const std::string& args, const std::string& env = "",
              const std::filesystem::path& cwd = {});
// `text` as one shell word.
std::string Quoted(const std::string& text);
// RunCli with each argument quoted as one shell word.
CliRun Cli(const std::vector<std::string>& args);

} // namespace vexo::test
