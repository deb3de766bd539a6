#pragma once
// Where the scope trace and its grid go on the drawing surface. The surface's units are
// whatever the window draws in (pixels for the desktop); x grows to the right, y down.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vexo {

constexpr int kScopeSamples = 1025; // the trace buffer; only 0..1023 are drawn
constexpr int kScopeDrawnSamples = 1024;
constexpr int kScopeMargin = 20;               // drawing units on each side
constexpr int32_t kScopeTraceColor = 0x00FF00; // green, as red + 256 * green + 65536 * blue

using ScopeTrace = std::array<int16_t, kScopeSamples>;

// Full scale of a sample: 65536 for model codes "10" and "08" (16-bit traces), 4096 for
// every other model (12-bit). The model code is the first two characters of the serial.
int32_t ScopeFullScale(const std::string& deviceSerial);

struct ScopePoint {
    int32_t x = 0;
    int32_t y = 0;
};

// The 1024 drawn points of `trace` on a surface `width` x `height` units: the first is
// set as a point, each following one is joined to its predecessor by a line. Sample 0
// lies on the centre line, +FS/2 on the top edge of the area inside the margin, -FS/2 on
// its bottom edge. Coordinates are rounded to nearest, ties to even. Throws
// OverflowError when the surface is so large that the inner size leaves 16 bits, and
// FloatingPointError for a size that is not finite.
std::vector<ScopePoint> PlotData(const ScopeTrace& trace, double width, double height,
                                 int32_t fullScale);

struct ScopeLine {
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

// The grid of 4 columns by 8 rows over the plotting area inside the margin: 5 vertical
// and 9 horizontal lines, so the middle horizontal line is the trace's zero line.
std::vector<ScopeLine> DrawGrid(double width, double height);

} // namespace vexo
