// Fuzzes nuclide library identification and reading, and the calibration dialog's
// energy lists, on arbitrary file contents.
#include <cstddef>
#include <cstdint>

#include "FuzzScratch.h"
#include "base/Messages.h"
#include "nuclide/NuclideLibrary.h"
#include "spectrum/CalibrationSolver.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size > fuzz::kMaxInput)
        return 0;
    const auto path = fuzz::WriteScratch("fuzz.nli", data, size);
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
