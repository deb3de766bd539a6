// Fuzzes nuclide library identification and reading, and the calibration dialog's
// energy lists, on arbitrary file contents.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "base/Messages.h"
#include "nuclide/NuclideLibrary.h"
#include "spectrum/CalibrationSolver.h"

namespace {

// The INI store opens and parses the file anew for every key, so reading costs about
// sections x file size; beyond a library's usual size that is time, not coverage.
constexpr std::size_t kMaxInput = 16 * 1024;

std::filesystem::path ScratchFile() {
    static const std::filesystem::path path = std::filesystem::temp_directory_path() /
                                              ("fuzz_nli_" + std::to_string(::getpid()) + ".nli");
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size > kMaxInput)
        return 0;
    const auto path = ScratchFile();
    {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
        if (!out)
            return 0;
    }
    bool identified = vexo::IsNuclideLibrary(path);
    vexo::NuclideLibraryRead read = vexo::ReadNuclideLibrary(path);
    if (read.ok) {
        for (const auto& line : read.lines) {
            (void)vexo::LibrarySectionName(line);
            (void)line.dGetHLSec();
        }
    }
    vexo::ScriptedMessages messages;
    auto items = vexo::EnergyListEntries(path, messages);
    for (const auto& item : items)
        (void)vexo::EnergyFromListItem(item);
    // A file the reader took must not have made the list filler complain.
    if (identified && read.ok && !messages.shown().empty())
        __builtin_trap();
    return 0;
}
