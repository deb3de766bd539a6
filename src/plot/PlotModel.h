#pragma once
// What the spectrum plot computes, without drawing: the X value of a channel in the
// chosen unit, the Y transform of a count, the per-pixel min/max reduction that keeps
// 16,384 channels as cheap as the pixels shown, the cursor read-out texts, the zoom
// range and the calibration push to the plots. The plot widget only draws the results.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "spectrum/SpectrumDocument.h"

namespace vexo {

// X unit mode: 0 channels, 1 energy (keV), 2 time (seconds, MCS).
enum class XUnit { Channels = 0, Energy = 1, Time = 2 };
// Y scale mode as the settings file stores it: 0 log, 1 linear, 2 square root.
enum class YScale { Log = 0, Linear = 1, Sqrt = 2 };

// X value of channel `ch`: the channel itself, its energy through the plot's 32-bit
// calibration copy (evaluated in 32-bit floats, as the plot holds it), or ch × dwell.
double AxisValue(int32_t ch, XUnit unit, const PlotState& plot, float sngDwellTime);

// The channel of first … last whose axis value lies nearest `value` (a mouse position
// read back from the axis). Assumes the axis rises with the channel, as every
// calibration in use does; a falling axis is searched the other way round.
int32_t ChannelAtAxisValue(double value, int32_t first, int32_t last, XUnit unit,
                           const PlotState& plot, float sngDwellTime);

// The plotted height of a count. Linear: the count. Log: log10 of the count, with
// counts below 1 drawn at 0 (the bottom of the log axis). Sqrt: the square root, with
// negative counts at 0.
double TransformCount(double counts, YScale scale);

// One tick of the Y axis: where it is drawn (transformed) and what it reads (counts).
struct AxisTick {
    double position;
    std::string label;
};
// Ticks for a Y axis running from 0 to `maxCounts` counts: decades for log, about six
// round steps for linear and square root, never less than one count apart.
std::vector<AxisTick> YTicks(double maxCounts, YScale scale);

// One pixel column of the reduced spectrum: the channel range it covers and the
// smallest and largest count in it.
struct PlotColumn {
    int32_t firstChannel;
    int32_t lastChannel;
    int32_t minCounts;
    int32_t maxCounts;
};

// Reduces channels first..last (inclusive, clamped to `counts`) to at most `columns`
// columns of consecutive channels, each column's range chosen as
// [first + k·n / columns, first + (k+1)·n / columns) with n = last − first + 1. With no
// more channels than columns every channel is its own column. Empty when the range or
// `columns` is empty.
std::vector<PlotColumn> DecimateMinMax(std::span<const int32_t> counts, int32_t first, int32_t last,
                                       int columns);

// The cursor read-out lines of channel `c`: "Channel c", "Counts n", and the position
// ("12.5 seconds" for MCS, "661.66 keV" when calibrated, else "Not calibrated").
struct CursorReadout {
    std::string channel;
    std::string counts;
    std::string position;
};
// nullopt for a channel outside 0 … 16384 (the read-out is then left as it is).
// An energy that overflows reads "Energy out of range".
std::optional<CursorReadout> UpdateInfo(const SpectrumDocument& doc, int32_t c);

// A clicked channel moved onto the peak it was meant for: the highest local maximum
// (a channel with no higher neighbour) within `radius` channels of `channel` and inside
// 0 … lChannels − 1, the nearest one of equal counts, provided it holds more counts than
// `channel`. Otherwise, and for a channel outside the spectrum, `channel` itself.
int32_t SnapToLocalMaximum(const SpectrumDocument& doc, int32_t channel, int32_t radius = 3);

// The shown channel range of the main plot.
struct ZoomState {
    bool zoomed = false;
    int32_t xMin = 0;
    int32_t xMax = 1023;
};
// Zooms to the marked range (either order, clamped to 0 … lChannels − 1). Does
// nothing and returns false when already zoomed.
bool ZoomIn(ZoomState& zoom, int32_t markFirst, int32_t markLast, int32_t lChannels);
// Back to 0 … lChannels − 1. Does nothing and returns false when not zoomed.
bool ZoomOut(ZoomState& zoom, int32_t lChannels);

// The outcome of pushing the calibration to the plots.
struct AxisSetup {
    XUnit unit;
    std::string caption; // "Channels", "Energy, keV" or "Time, seconds"
};

// Loads the plot's axis copy from the document and switches it on: for an MCS spectrum
// slope = sngDwellTime (the axis reads seconds), otherwise the document's calibration
// narrowed to 32 bits. Marks the document calibrated in both cases, also when it was
// not: switching the view to energy adopts the default calibration as a real one.
AxisSetup Calibrate(SpectrumDocument& doc);
// Switches the energy axis off: channels on the X axis.
AxisSetup ShowChannels(SpectrumDocument& doc);

} // namespace vexo
