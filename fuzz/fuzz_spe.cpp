// Fuzzes the full spectrum reader on any bytes: it must return, never crash, and leave
// the channel count within what a clamped data range can give. A successful read is
// written back out, which must not fail either.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "spectrum/SpectrumFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static auto doc = std::make_unique<vexo::SpectrumDocument>();
    *doc = vexo::SpectrumDocument{};
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    std::string error;
    bool ok = vexo::ParseFullSpectrum(*doc, bytes, &error);
    // Both ends of the range are clamped to 0..16383.
    if (doc->lChannels < -16382 || doc->lChannels > vexo::MAX_CHANNELS)
        std::abort();
    if (!ok && error.empty())
        std::abort(); // every failure carries its reason
    if (ok)
        (void)vexo::FullSpectrumBytes(*doc);
    return 0;
}
