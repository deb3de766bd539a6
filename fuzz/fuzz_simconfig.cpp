// Fuzzes the simulated analyser's configuration file (KORVHW.ini): any text gives a
// configuration, unreadable values replaced by their defaults with a warning.
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzScratch.h"
#include "SimConfig.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size > fuzz::kMaxInput)
        return 0;
    const korvsim::SimConfig config =
        korvsim::ParseConfig(std::string(reinterpret_cast<const char*>(data), size));
    if (config.devices.empty() && config.warnings.empty() && size == 0)
        __builtin_trap(); // no [DeviceN] section: the built-in set
    return 0;
}
