#include "TestSupport.h"

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace vexo::test {

TempDir::TempDir() {
    static std::atomic<int> counter{0};
    auto base = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 100; ++attempt) {
        auto candidate =
            base / ("vexo-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
        if (std::filesystem::create_directory(candidate)) {
            m_path = candidate;
            return;
        }
    }
    throw std::runtime_error("cannot create a temporary folder");
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(m_path, ec);
}

ScopedEnv::ScopedEnv(const char* name, const std::string& value) : m_name(name) {
    if (const char* old = std::getenv(name)) {
        m_had = true;
        m_old = old;
    }
    ::setenv(name, value.c_str(), 1);
}

ScopedEnv::~ScopedEnv() {
    if (m_had)
        ::setenv(m_name, m_old.c_str(), 1);
    else
        ::unsetenv(m_name);
}

void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::filesystem::path TestDataDir() {
    return VEXO_TEST_DATA_DIR;
}
std::filesystem::path SharedDir() {
    return VEXO_SHARED_DIR;
}
std::filesystem::path BinDir() {
    return VEXO_BIN_DIR;
}

std::string Quoted(const std::string& text) {
    std::string q = "'";
    for (char c : text)
        q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

CliRun RunCli(const std::string& args, const std::string& env, const std::filesystem::path& cwd) {
    TempDir dir;
    const std::string command =
        (cwd.empty() ? "" : "cd " + Quoted(cwd.string()) + " && ") +
        "timeout 60 env VEXO_TICK_MS=0 " + env + " " + Quoted((BinDir() / "vexo-cli").string()) +
        " " + args + " >" + Quoted((dir / "out").string()) + " 2>" + Quoted((dir / "err").string());
    const int status = std::system(command.c_str());
    CliRun run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = ReadBytes(dir / "out");
    run.err = ReadBytes(dir / "err");
    return run;
}

CliRun Cli(const std::vector<std::string>& args) {
    std::string line;
    for (const std::string& a : args)
        line += " " + Quoted(a);
    return RunCli(line);
}

} // namespace vexo::test
