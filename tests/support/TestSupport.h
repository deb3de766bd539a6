#pragma once
// Helpers shared by the test executables: scratch folders and the shared test data.
#include <filesystem>
#include <string>

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

} // namespace vexo::test
