// vexo-cli energy: converts a channel to an energy or an energy to a channel with a
// given calibration, as the program's ChannelToEnergy and EnergyToChannel do.
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "base/NumberText.h"
#include "spectrum/EnergyCalibration.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli energy --cal OFFSET,SLOPE,QUAD (--channel N | --energy KEV) [--json]\n"
    "\n"
    "E = OFFSET + SLOPE * ch + QUAD * ch^2 (keV).\n"
    "  --channel N   print the energy of whole channel N\n"
    "  --energy KEV  print the channel of that energy (rounded, ties to even)\n"
    "An arithmetic fault (overflow, a root beyond 16 bits) exits with status 1.";

struct Options {
    std::optional<EnergyCalibration> cal;
    std::optional<int32_t> channel;
    std::optional<double> energy;
    bool json = false;
};

EnergyCalibration ParseCalibration(const std::string& text) {
    std::vector<std::string> parts = SplitArg(text, ',', 3, "--cal needs OFFSET,SLOPE,QUAD");
    return {true, NumberArg(parts[0], "OFFSET"), NumberArg(parts[1], "SLOPE"),
            NumberArg(parts[2], "QUAD")};
}

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    ParseArgs(args, [&](const std::string& arg, ArgCursor& cursor) {
        if (arg == "--cal")
            o.cal = ParseCalibration(cursor.value(arg));
        else if (arg == "--channel")
            o.channel = IntegerArg(cursor.value(arg), "--channel");
        else if (arg == "--energy")
            o.energy = NumberArg(cursor.value(arg), "--energy");
        else if (arg == "--json")
            o.json = true;
        else
            return false;
        return true;
    });
    if (!o.cal)
        throw UsageError{"--cal is required"};
    if (o.channel.has_value() == o.energy.has_value())
        throw UsageError{"give exactly one of --channel and --energy"};
    return o;
}

int Run(const std::vector<std::string>& args) {
    const Options o = ParseOptions(args);
    if (o.channel) {
        double energy = ChannelToEnergy(*o.channel, *o.cal);
        if (o.json)
            PrintJson({{"channel", *o.channel}, {"energy", energy}});
        else
            std::printf("%s\n", DoubleToText(energy).c_str());
    } else {
        int32_t channel = EnergyToChannel(*o.energy, *o.cal);
        if (o.json)
            PrintJson({{"energy", *o.energy}, {"channel", channel}});
        else
            std::printf("%d\n", channel);
    }
    return kExitOk;
}

const RegisterCommand kRegister("energy", {"convert between channel and energy", kUsage, Run});

} // namespace
} // namespace vexo::cli
