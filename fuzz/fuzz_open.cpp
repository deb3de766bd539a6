// Fuzzes the whole of File > Open on any file: the full reader, then the plain counts
// fallback, with the ROI collection made from what was read. A file opened as a full
// spectrum file and saved again with Save All must open again as a full one.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "FuzzScratch.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size > fuzz::kMaxInput)
        return 0;
    static auto doc = std::make_unique<vexo::SpectrumDocument>();
    *doc = vexo::SpectrumDocument{};
    vexo::RoiCollection rois;
    const auto path = fuzz::WriteScratch("input.spe", data, size);
    const vexo::OpenResult opened = vexo::OpenSpectrumWithRois(*doc, rois, path);
    if (!opened.opened)
        __builtin_trap(); // the file was just written
    // A range of fewer than one channel reads back as one channel, as the format has it.
    if (!opened.full || doc->lChannels < 1 || doc->lChannels > vexo::MAX_CHANNELS)
        return 0;
    const auto again = fuzz::ScratchDir() / "again.spe";
    std::string error;
    if (!vexo::bSaveFullSpectrum(*doc, again, &error))
        __builtin_trap();
    static auto reread = std::make_unique<vexo::SpectrumDocument>();
    *reread = vexo::SpectrumDocument{};
    if (!vexo::bReadFullSpectrum(*reread, again, &error) || reread->lChannels != doc->lChannels ||
        !std::equal(doc->lCounts.begin(), doc->lCounts.begin() + doc->lChannels,
                    reread->lCounts.begin()))
        __builtin_trap();
    return 0;
}
