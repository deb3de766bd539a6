#include "base/ProgramLauncher.h"

#include <cerrno>
#include <cstring>

#if defined(_WIN32)
#include <windows.h>
#else
#include <cstdlib>
#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
extern char** environ;
#endif

namespace vexo {

std::vector<std::string> SplitCommandLine(const std::string& commandLine) {
    std::vector<std::string> args;
    std::string current;
    bool inArgument = false;
    bool quoted = false;
    for (std::size_t i = 0; i < commandLine.size(); ++i) {
        const char c = commandLine[i];
        if (c == '"') {
            inArgument = true;
            if (quoted && i + 1 < commandLine.size() && commandLine[i + 1] == '"') {
                current.push_back('"'); // "" inside quotes: a literal quote
                ++i;
            } else {
                quoted = !quoted;
            }
        } else if ((c == ' ' || c == '\t') && !quoted) {
            if (inArgument)
                args.push_back(std::move(current));
            current.clear();
            inArgument = false;
        } else {
            current.push_back(c);
            inArgument = true;
        }
    }
    if (inArgument)
        args.push_back(std::move(current));
    return args;
}

#if defined(_WIN32)

LaunchResult LaunchProgram(const std::vector<std::string>& arguments) {
    if (arguments.empty())
        return {false, "No program to start"};
    // CreateProcess takes one line; rebuild it with quotes around arguments with blanks.
    std::string line;
    for (const auto& a : arguments) {
        if (!line.empty())
            line.push_back(' ');
        line += a.find_first_of(" \t") == std::string::npos ? a : "\"" + a + "\"";
    }
    STARTUPINFOA si{};
    si.cb = sizeof(si);
    si.dwFlags = STARTF_USESHOWWINDOW;
    si.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION pi{};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &si,
                        &pi)) {
        char text[512] = {};
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       GetLastError(), 0, text, sizeof(text), nullptr);
        return {false, text};
    }
    CloseHandle(pi.hThread);
    CloseHandle(pi.hProcess);
    return {true, {}};
}

#else

namespace {

// Programs started earlier and not yet reaped. Only our own children are waited for,
// so other parts of the process that start programs keep their exit statuses.
std::vector<pid_t>& StartedChildren() {
    static std::vector<pid_t> children;
    return children;
}

void ReapFinishedChildren() {
    auto& children = StartedChildren();
    for (auto it = children.begin(); it != children.end();) {
        int status = 0;
        const pid_t r = ::waitpid(*it, &status, WNOHANG);
        if (r == *it || (r < 0 && errno == ECHILD))
            it = children.erase(it);
        else
            ++it;
    }
}

// Why `program` cannot be executed (empty when it can), looked up on PATH when its name
// has no folder part. Checked up front because not every posix_spawn reports a failing
// exec (implementations that fork and exec separately return success regardless).
std::string NotExecutableReason(const std::string& program) {
    if (program.empty())
        return std::strerror(ENOENT);
    if (program.find('/') != std::string::npos)
        return ::access(program.c_str(), X_OK) == 0 ? std::string{} : std::strerror(errno);
    const char* path = std::getenv("PATH");
    std::string dirs = path ? path : "/usr/bin:/bin";
    for (std::size_t start = 0; start <= dirs.size();) {
        std::size_t end = dirs.find(':', start);
        if (end == std::string::npos)
            end = dirs.size();
        const std::string dir = end > start ? dirs.substr(start, end - start) : ".";
        if (::access((dir + "/" + program).c_str(), X_OK) == 0)
            return {};
        start = end + 1;
    }
    return std::strerror(ENOENT);
}

} // namespace

LaunchResult LaunchProgram(const std::vector<std::string>& arguments) {
    ReapFinishedChildren();
    if (arguments.empty())
        return {false, "No program to start"};
    if (std::string reason = NotExecutableReason(arguments[0]); !reason.empty())
        return {false, reason + ": " + arguments[0]};
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const auto& a : arguments)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    pid_t pid = 0;
    // posix_spawnp reports a program that cannot be executed (missing, not executable)
    // as its return value, so the caller learns of it at once.
    const int rc = ::posix_spawnp(&pid, argv[0], nullptr, nullptr, argv.data(), environ);
    if (rc != 0)
        return {false, std::strerror(rc)};
    StartedChildren().push_back(pid);
    return {true, {}};
}

#endif

} // namespace vexo
