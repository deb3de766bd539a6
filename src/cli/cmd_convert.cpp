// vexo-cli convert: opens a spectrum file as Open does and writes it again with Save All
// (the full format) or Save (plain counts).
#include <cstdio>
#include <string>
#include <vector>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "base/Messages.h"

namespace vexo::cli {
namespace {

const char* kUsage = "usage: vexo-cli convert IN OUT (--full | --plain)\n"
                     "\n"
                     "Opens IN as the program's Open command does, then writes OUT:\n"
                     "  --full   as Save All does: the full spectrum file (.spe layout)\n"
                     "  --plain  as Save does: one count per line\n"
                     "The extension of OUT does not change what is written.";

enum class Target { None, Full, Plain };

struct Options {
    std::vector<std::string> files;
    Target target = Target::None;
};

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    auto take = [&](const std::string& arg, ArgCursor&) {
        Target t = arg == "--full" ? Target::Full : arg == "--plain" ? Target::Plain : Target::None;
        if (t != Target::None) {
            if (o.target != Target::None && o.target != t)
                throw UsageError{"give either --full or --plain"};
            o.target = t;
        } else if (!arg.empty() && arg[0] == '-') {
            return false;
        } else {
            o.files.push_back(arg);
        }
        return true;
    };
    ParseArgs(args, take, "unknown option");
    if (o.files.size() != 2)
        throw UsageError{"IN and OUT are required"};
    if (o.target == Target::None)
        throw UsageError{"give --full or --plain"};
    return o;
}

int Run(const std::vector<std::string>& args) {
    const Options o = ParseOptions(args);
    const OpenedSpectrum opened = OpenForCli(o.files[0]);
    if (o.target == Target::Full) {
        StderrMessages messages; // Save All's own message ("Error saving file: ...")
        return SaveAllSpectrum(*opened.doc, o.files[1], messages) ? kExitOk : kExitFailure;
    }
    SaveResult saved = SaveSpectrum(*opened.doc, o.files[1]);
    if (!saved.ok)
        throw Failure{"cannot write " + o.files[1] + ": " + saved.error};
    return kExitOk;
}

const RegisterCommand kRegister("convert",
                                {"rewrite a spectrum file as full or plain", kUsage, Run});

} // namespace
} // namespace vexo::cli
