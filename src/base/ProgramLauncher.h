#pragma once
// Starting an outside program without waiting for it and without a shell: the command
// line is split into arguments here, and the program is found on PATH when its name has
// no folder part.
#include <string>
#include <vector>

namespace vexo {

// Splits a command line into arguments. Blanks and tabs separate arguments unless they
// stand inside double quotes; the quotes themselves are removed, and "" inside a quoted
// part gives one literal quote. Nothing else is special: no escapes, no variables, no
// globbing. An empty or blank line gives no arguments.
std::vector<std::string> SplitCommandLine(const std::string& commandLine);

// The outcome of a launch; `error` describes the failure when `started` is false.
struct LaunchResult {
    bool started = false;
    std::string error;
};

// Starts `arguments[0]` with the whole vector as its argument list, in the current
// folder, and returns at once. Never throws. On POSIX the started programs are reaped
// by later calls so that no zombies pile up; on Windows the command line is handed to
// CreateProcess as written.
LaunchResult LaunchProgram(const std::vector<std::string>& arguments);

} // namespace vexo
