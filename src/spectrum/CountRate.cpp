#include "spectrum/CountRate.h"

namespace vexo {

float CountRate(const SpectrumDocument& doc) {
    if (doc.sngLiveTime == 0.0f)
        return 0.0f;
    // The whole array is summed, spare slot and stale values past lChannels included:
    // the status bar has always shown the rate this way.
    double sum = 0.0;
    for (int32_t count : doc.lCounts)
        sum += count;
    return static_cast<float>(sum / static_cast<double>(doc.sngLiveTime));
}

} // namespace vexo
