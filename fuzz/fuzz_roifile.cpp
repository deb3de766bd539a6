// Fuzzes the ROI file reader with any file content, then analyses every ROI it read on a
// small spectrum built from the same bytes. The analysis may refuse (false) or raise one
// of its documented errors; anything else escaping, a crash or a sanitizer report is a bug.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "FuzzScratch.h"
#include "base/VexoError.h"
#include "roi/RoiFile.h"

namespace {

constexpr std::size_t kSlots = 64;

// Counts from the input's bytes, so the peak shapes vary with the input too.
std::vector<int32_t> SpectrumFrom(const uint8_t* data, std::size_t size) {
    std::vector<int32_t> counts(kSlots, 0);
    for (std::size_t i = 0; i < kSlots && i < size; ++i)
        counts[i] = static_cast<int32_t>(data[size - 1 - i]) * 97;
    return counts;
}

void Analyse(vexo::clsROI& roi, const std::vector<int32_t>& counts) {
    int16_t nBkgChn = 0;
    vexo::RoiRates rates;
    try {
        roi.bComputeROI(10.0f, nBkgChn, counts.data(), counts.size(),
                        vexo::EnergyCalibration::Default(), rates);
    } catch (const vexo::OverflowError&) {
        // documented outcome for sums beyond 32 bits
    } catch (const vexo::FloatingPointError&) {
        // documented outcome for a division by zero (an empty interval)
    } catch (const vexo::SubscriptError&) {
        // documented outcome for a search that would leave the array
    }
    if (nBkgChn != 2)
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size > fuzz::kMaxInput)
        return 0;
    vexo::RoiFileContents read = vexo::ReadRoiFile(fuzz::WriteScratch("fuzz.roi", data, size));
    if (!read.ok)
        __builtin_trap(); // the file was just written
    const std::vector<int32_t> counts = SpectrumFrom(data, size);
    for (vexo::clsROI& roi : read.rois)
        Analyse(roi, counts);
    return 0;
}
