#pragma once
// Subcommands of vexo-cli register themselves here; main() dispatches by name.
// Exit codes: 0 success, 1 failure (one-line message on stderr), 2 usage error.
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace vexo::cli {

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

struct CliCommand {
    std::string summary; // one line for the overview
    std::string usage;   // full --help text
    std::function<int(const std::vector<std::string>& args)> run;
};

std::map<std::string, CliCommand>& Commands();

// Registers a subcommand at static-initialisation time.
struct RegisterCommand {
    RegisterCommand(const std::string& name, CliCommand command) {
        Commands().emplace(name, std::move(command));
    }
};

// Thrown by argument parsing; main prints the message and exits with kExitUsage.
struct UsageError {
    std::string message;
};

// Thrown for a failure; main prints the message and exits with kExitFailure.
struct Failure {
    std::string message;
};

// Thrown when SIGINT or SIGTERM ended a command; main exits with 128 + the signal.
struct Interrupted {
    int signal;
};

} // namespace vexo::cli
