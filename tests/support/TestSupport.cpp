#include "TestSupport.h"

#include <atomic>
#include <csignal>
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

namespace {

// The shell command of one vexo-cli run, its output going to files in `dir`.
std::string CliCommandLine(const std::string& args, const std::string& env, const TempDir& dir) {
    return "env VEXO_TICK_MS=0 " + env + " " + Quoted((BinDir() / "vexo-cli").string()) + " " +
           args + " >" + Quoted((dir / "out").string()) + " 2>" + Quoted((dir / "err").string());
}

CliRun Finished(int status, const TempDir& dir) {
    CliRun run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = ReadBytes(dir / "out");
    run.err = ReadBytes(dir / "err");
    return run;
}

} // namespace

CliRun RunCli(const std::string& args, const std::string& env, const std::filesystem::path& cwd) {
    TempDir dir;
    const std::string folder = cwd.empty() ? "" : "cd " + Quoted(cwd.string()) + " && ";
    return Finished(std::system((folder + "timeout 60 " + CliCommandLine(args, env, dir)).c_str()),
                    dir);
}

CliChild::CliChild(const std::string& args, const std::string& env) {
    // `exec` leaves the child's process id to vexo-cli itself, the receiver of signals.
    const std::string command = "exec " + CliCommandLine(args, env, m_dir);
    m_pid = ::fork();
    if (m_pid == 0) {
        ::execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
}

CliChild::~CliChild() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
}

void CliChild::signal(int signalNumber) const {
    ::kill(m_pid, signalNumber);
}

CliRun CliChild::wait() {
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    m_pid = -1;
    return Finished(status, m_dir);
}

CliRun Cli(const std::vector<std::string>& args) {
    std::string line;
    for (const std::string& a : args)
        line += " " + Quoted(a);
    return RunCli(line);
}

} // namespace vexo::test
