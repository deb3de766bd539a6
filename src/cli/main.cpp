// vexo-cli: the headless face of the core.
#include <cstdio>
#include <exception>

#include "CliCommand.h"

namespace vexo::cli {

std::map<std::string, CliCommand>& Commands() {
    static std::map<std::string, CliCommand> commands;
    return commands;
}

} // namespace vexo::cli

namespace {

void PrintOverview() {
    std::printf("usage: vexo-cli COMMAND [ARGS...]\n\ncommands:\n");
    for (const auto& [name, command] : vexo::cli::Commands())
        std::printf("  %-10s %s\n", name.c_str(), command.summary.c_str());
    std::printf("\n'vexo-cli COMMAND --help' describes one command.\n");
}

bool WantsHelp(const std::vector<std::string>& args) {
    for (const auto& a : args)
        if (a == "--help" || a == "-h")
            return true;
    return false;
}

} // namespace

int main(int argc, char** argv) {
    using namespace vexo::cli;
    if (argc < 2 || std::string(argv[1]) == "--help" || std::string(argv[1]) == "-h") {
        PrintOverview();
        return argc < 2 ? kExitUsage : kExitOk;
    }
    auto it = Commands().find(argv[1]);
    if (it == Commands().end()) {
        std::fprintf(stderr, "vexo-cli: unknown command '%s'\n", argv[1]);
        return kExitUsage;
    }
    std::vector<std::string> args(argv + 2, argv + argc);
    if (WantsHelp(args)) {
        std::printf("%s\n", it->second.usage.c_str());
        return kExitOk;
    }
    try {
        return it->second.run(args);
    } catch (const UsageError& e) {
        std::fprintf(stderr, "vexo-cli %s: %s\n%s\n", argv[1], e.message.c_str(),
                     it->second.usage.c_str());
        return kExitUsage;
    } catch (const Failure& e) {
        std::fprintf(stderr, "vexo-cli %s: %s\n", argv[1], e.message.c_str());
        return kExitFailure;
    } catch (const Interrupted& e) {
        std::fprintf(stderr, "vexo-cli %s: interrupted\n", argv[1]);
        return 128 + e.signal;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "vexo-cli %s: %s\n", argv[1], e.what());
        return kExitFailure;
    }
}
