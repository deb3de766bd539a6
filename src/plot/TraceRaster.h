#pragma once
// Filling the area under a spectrum trace one pixel column at a time. A polygon fill of
// a trace with thousands of vertices is slow in a raster painter; a vertical line from
// the trace's top down to the baseline in every pixel column is cheap and looks the same.
#include <span>
#include <vector>

namespace vexo {

// A point of a trace in pixel coordinates (y grows downwards).
struct PixelPoint {
    double x;
    double y;
};

// The topmost (smallest) y that the polyline `path` reaches inside each pixel column
// c = 0 … columns − 1, where column c covers x in [c, c + 1). Columns the path does not
// touch hold +infinity.
std::vector<double> FillTops(std::span<const PixelPoint> path, int columns);

// The step outline of a histogram through `points` (each a bar's left edge and height),
// ending at `rightEdge`: across, then up or down, bar after bar.
std::vector<PixelPoint> StepPath(std::span<const PixelPoint> points, double rightEdge);

} // namespace vexo
