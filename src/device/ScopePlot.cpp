#include "device/ScopePlot.h"

#include "base/Rounding.h"

namespace vexo {
namespace {

struct InnerSize {
    int16_t w;
    int16_t h;
};

InnerSize Inner(double width, double height) {
    return {CInt(width - 2.0 * kScopeMargin), CInt(height - 2.0 * kScopeMargin)};
}

} // namespace

int32_t ScopeFullScale(const std::string& deviceSerial) {
    const std::string model = deviceSerial.substr(0, 2);
    return (model == "10" || model == "08") ? 65536 : 4096;
}

std::vector<ScopePoint> PlotData(const ScopeTrace& trace, double width, double height,
                                 int32_t fullScale) {
    const InnerSize inner = Inner(width, height);
    const double m = kScopeMargin;
    const double centre = m + inner.h / 2.0;
    std::vector<ScopePoint> points;
    points.reserve(kScopeDrawnSamples);
    for (int i = 0; i < kScopeDrawnSamples; ++i) {
        const double x = m + 1 + static_cast<double>(i) * inner.w / 1024.0;
        const double y = centre - static_cast<double>(trace[i]) * inner.h / fullScale;
        points.push_back({CLng(x), CLng(y)});
    }
    return points;
}

std::vector<ScopeLine> DrawGrid(double width, double height) {
    const InnerSize inner = Inner(width, height);
    const double m = kScopeMargin;
    std::vector<ScopeLine> lines;
    for (int c = 0; c <= 4; ++c) {
        const double x = m + c * inner.w / 4.0;
        lines.push_back({x, m, x, m + inner.h});
    }
    for (int r = 0; r <= 8; ++r) {
        const double y = m + r * inner.h / 8.0;
        lines.push_back({m, y, m + inner.w, y});
    }
    return lines;
}

} // namespace vexo
