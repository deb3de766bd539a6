#pragma once
// Runs the built vexo-cli as a user runs it and collects its exit code and output.
#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "TestSupport.h"

namespace vexo::test {

struct CliRun {
    int status = -1;
    std::string out;
    std::string err;
};

inline std::string Quote(const std::string& arg) {
    std::string q = "'";
    for (char c : arg)
        q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

inline CliRun Cli(const std::vector<std::string>& args) {
    TempDir dir;
    std::string command = Quote((BinDir() / "vexo-cli").string());
    for (const auto& a : args)
        command += " " + Quote(a);
    command += " 2>" + Quote((dir / "stderr").string());
    CliRun run;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return run;
    char buf[4096];
    std::size_t got;
    while ((got = fread(buf, 1, sizeof buf, pipe)) > 0)
        run.out.append(buf, got);
    int raw = pclose(pipe);
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.err = ReadBytes(dir / "stderr");
    return run;
}

} // namespace vexo::test
