#include "plot/TraceRaster.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vexo {

namespace {

double YAt(const PixelPoint& a, const PixelPoint& b, double x) {
    if (b.x == a.x)
        return std::min(a.y, b.y);
    return a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x);
}

// Lowers tops[c] for every column the segment a–b crosses. A straight segment is
// highest at one end of its part inside a column, so the two ends decide.
void MarkSegment(const PixelPoint& a, const PixelPoint& b, std::vector<double>& tops) {
    const int columns = static_cast<int>(tops.size());
    const double x0 = std::min(a.x, b.x), x1 = std::max(a.x, b.x);
    if (x1 < 0.0 || x0 >= columns)
        return;
    const int c0 = std::max(0, static_cast<int>(std::floor(x0)));
    const int c1 = std::min(columns - 1, static_cast<int>(std::floor(x1)));
    for (int c = c0; c <= c1; ++c) {
        const double lo = std::max(x0, static_cast<double>(c));
        const double hi = std::min(x1, std::nextafter(c + 1.0, 0.0));
        const double top = a.x == b.x ? std::min(a.y, b.y) : std::min(YAt(a, b, lo), YAt(a, b, hi));
        tops[c] = std::min(tops[c], top);
    }
}

} // namespace

std::vector<double> FillTops(std::span<const PixelPoint> path, int columns) {
    std::vector<double> tops(static_cast<std::size_t>(std::max(columns, 0)),
                             std::numeric_limits<double>::infinity());
    if (path.size() == 1)
        MarkSegment(path[0], path[0], tops);
    for (std::size_t i = 1; i < path.size(); ++i)
        MarkSegment(path[i - 1], path[i], tops);
    return tops;
}

std::vector<PixelPoint> StepPath(std::span<const PixelPoint> points, double rightEdge) {
    std::vector<PixelPoint> path;
    path.reserve(points.size() * 2);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double next = i + 1 < points.size() ? points[i + 1].x : rightEdge;
        path.push_back(points[i]);
        path.push_back({next, points[i].y});
    }
    return path;
}

} // namespace vexo
