// Fuzzes the plain counts reader: any bytes give at most 16384 values and never crash.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "spectrum/PlainCountsFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static auto doc = std::make_unique<vexo::SpectrumDocument>();
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    vexo::PlainReadResult result = vexo::ParsePlainCounts(*doc, bytes);
    if (result.channels < 0 || result.channels > vexo::MAX_CHANNELS ||
        result.channels != doc->lChannels)
        std::abort();
    if (result.ok != result.error.empty())
        std::abort();
    return 0;
}
