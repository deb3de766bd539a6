#pragma once
// Count rate of the spectrum on show, as the status bar and the report give it.
#include "spectrum/SpectrumDocument.h"

namespace vexo {

// Counts per second: the sum of the whole counts array (all 16,385 slots, including
// those past lChannels) divided by the live time, summed and divided in 64-bit floating
// point and returned as a 32-bit float. 0 when the live time is 0. A negative live time
// is divided by as it stands. Never throws.
float CountRate(const SpectrumDocument& doc);

} // namespace vexo
