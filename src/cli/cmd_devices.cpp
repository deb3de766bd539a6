// vexo-cli devices: runs the device list's search for a number of timer ticks and
// prints the rows the list would show, one tick behind the search as the window is.
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include <nlohmann/json.hpp>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "device/DeviceLibrary.h"
#include "device/DeviceSearch.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli devices [--ticks N] [--interval MS] [--json]\n"
    "\n"
    "Searches for analysers through the device library and lists them.\n"
    "  --ticks N      search timer ticks to run (default 3); rows appear from the second\n"
    "  --interval MS  wait between ticks in milliseconds (default 1000, as the window)\n"
    "  --json         print a JSON array of {No, Name, Path, Serial, Type, Location}\n"
    "Path is the device as \"DetectorPath\" remembers it: a \"HID:\", \"USB:\" or \"ETH:\"\n"
    "type prefix and the library's device path (Location); 'vexo-cli params --device'\n"
    "takes either form.\n"
    "The library is VEXO_DEVICE_LIBRARY, else libKORVHW.so beside the program, else the\n"
    "system's search path.";

struct Options {
    int ticks = 3;
    int intervalMs = kSearchIntervalMs;
    bool json = false;
};

// The value of option `name` as a whole number from `low` to `high`.
int WholeNumber(const std::string& name, ArgCursor& cursor, int low, int high) {
    const std::string& text = cursor.value(name);
    std::size_t used = 0;
    long value = 0;
    try {
        value = std::stol(text, &used);
    } catch (const std::exception&) {
        used = 0; // reported just below as a usage error
    }
    if (used == 0 || used != text.size() || value < low || value > high)
        throw UsageError{name + " needs a whole number from " + std::to_string(low) + " to " +
                         std::to_string(high)};
    return static_cast<int>(value);
}

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    ParseArgs(args, [&](const std::string& arg, ArgCursor& cursor) {
        if (arg == "--ticks")
            o.ticks = WholeNumber(arg, cursor, 1, 3600);
        else if (arg == "--interval")
            o.intervalMs = WholeNumber(arg, cursor, 0, 60000);
        else if (arg == "--json")
            o.json = true;
        else
            return false;
        return true;
    });
    return o;
}

void PrintRows(const std::vector<DeviceRow>& rows, bool json) {
    if (json) {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const DeviceRow& row : rows)
            list.push_back(nlohmann::ordered_json{{"No", row.No},
                                                  {"Name", row.Name},
                                                  {"Path", DetectorPathFor(row.Type, row.Path)},
                                                  {"Serial", row.Serial},
                                                  {"Type", row.Type},
                                                  {"Location", row.Path}});
        std::printf("%s\n", list.dump(2).c_str());
        return;
    }
    std::printf("%-4s %-24s %-32s %-16s %s\n", "No", "Device Name", "Location", "Serial No",
                "Type");
    for (const DeviceRow& row : rows)
        std::printf("%-4d %-24s %-32s %-16s %d\n", row.No, row.Name.c_str(), row.Path.c_str(),
                    row.Serial.c_str(), row.Type);
}

int Run(const std::vector<std::string>& args) {
    const Options o = ParseOptions(args);
    DeviceLibraryLoad load = DeviceLibrary::Load();
    if (!load.library)
        throw Failure{load.error};
    DeviceSearch search(*load.library);
    for (int tick = 1; tick <= o.ticks; ++tick) {
        if (tick > 1 && o.intervalMs > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(o.intervalMs));
        const int32_t found = search.tick();
        if (found < 0)
            std::fprintf(stderr, "tick %d/%d: search failed: %d %s\n", tick, o.ticks, found,
                         ErrorText(found).c_str());
        else
            std::fprintf(stderr, "tick %d/%d: %d found, %zu listed\n", tick, o.ticks, found,
                         search.rows().size());
    }
    search.close();
    PrintRows(search.rows(), o.json);
    return kExitOk;
}

const RegisterCommand kRegister("devices", {"search for analysers and list them", kUsage, Run});

} // namespace
} // namespace vexo::cli
