// Fuzzes the LARA decay-data reader (the source of vexo-cli nuclib) on any text: it must
// return, a nuclide it accepts has a name, and a refusal carries its reason.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "FuzzScratch.h"
#include "nuclide/LaraFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size > fuzz::kMaxInput)
        return 0;
    const vexo::LaraRead read =
        vexo::ParseLara(std::string_view(reinterpret_cast<const char*>(data), size));
    if ((read.ok && read.nuclide.name.empty()) || read.ok != read.error.empty())
        __builtin_trap();
    for (const vexo::LaraEmission& e : read.nuclide.emissions)
        (void)vexo::LaraRadiationText(e.type);
    return 0;
}
