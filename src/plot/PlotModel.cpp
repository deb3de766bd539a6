#include "plot/PlotModel.h"

#include <algorithm>
#include <cmath>

#include "base/NumberText.h"
#include "base/VexoError.h"

namespace vexo {

double AxisValue(int32_t ch, XUnit unit, const PlotState& plot, float sngDwellTime) {
    switch (unit) {
    case XUnit::Channels:
        return ch;
    case XUnit::Energy: {
        const float c = static_cast<float>(ch);
        return (plot.sngQuad * c + plot.sngSlope) * c + plot.sngOffset;
    }
    case XUnit::Time:
        return static_cast<double>(static_cast<float>(ch) * sngDwellTime);
    }
    return ch;
}

int32_t ChannelAtAxisValue(double value, int32_t first, int32_t last, XUnit unit,
                           const PlotState& plot, float sngDwellTime) {
    if (first >= last)
        return first;
    auto at = [&](int32_t ch) { return AxisValue(ch, unit, plot, sngDwellTime); };
    const bool rising = at(last) >= at(first);
    // Binary search for the first channel at or past `value`, then take the nearer
    // of it and its neighbour below.
    int32_t lo = first, hi = last;
    while (lo < hi) {
        const int32_t mid = lo + (hi - lo) / 2;
        if (rising ? at(mid) < value : at(mid) > value)
            lo = mid + 1;
        else
            hi = mid;
    }
    if (lo > first && std::abs(at(lo - 1) - value) <= std::abs(at(lo) - value))
        return lo - 1;
    return lo;
}

double TransformCount(double counts, YScale scale) {
    switch (scale) {
    case YScale::Linear:
        return counts;
    case YScale::Log:
        return counts < 1.0 ? 0.0 : std::log10(counts);
    case YScale::Sqrt:
        return counts < 0.0 ? 0.0 : std::sqrt(counts);
    }
    return counts;
}

namespace {

// A round step (1, 2 or 5 × 10^k) giving about `wanted` steps over `span`.
double RoundStep(double span, int wanted) {
    const double raw = span / wanted;
    const double decade = std::pow(10.0, std::floor(std::log10(raw)));
    for (double m : {1.0, 2.0, 5.0})
        if (m * decade >= raw)
            return m * decade;
    return 10.0 * decade;
}

std::string CountLabel(double counts) {
    if (counts >= 1e6)
        return FormatNumber(counts, "0.00E+##");
    return FormatNumber(counts, "0");
}

} // namespace

std::vector<AxisTick> YTicks(double maxCounts, YScale scale) {
    std::vector<AxisTick> ticks;
    const double top = std::max(maxCounts, 1.0);
    if (scale == YScale::Log) {
        for (double v = 1.0; v <= top * 10.0 && ticks.size() < 12; v *= 10.0)
            ticks.push_back({TransformCount(v, scale), CountLabel(v)});
        return ticks;
    }
    // Counts are whole numbers: a step below one would label neighbouring ticks alike
    // ("0 0 0 1 1 1" on an empty spectrum).
    const double step = std::max(RoundStep(top, 6), 1.0);
    for (double v = 0.0; v <= top + step && ticks.size() < 20; v += step)
        ticks.push_back({TransformCount(v, scale), CountLabel(v)});
    return ticks;
}

std::vector<PlotColumn> DecimateMinMax(std::span<const int32_t> counts, int32_t first, int32_t last,
                                       int columns) {
    std::vector<PlotColumn> out;
    const int32_t size = static_cast<int32_t>(counts.size());
    first = std::max(first, 0);
    last = std::min(last, size - 1);
    if (columns <= 0 || first > last)
        return out;
    const int64_t n = static_cast<int64_t>(last) - first + 1;
    const int64_t cols = std::min<int64_t>(columns, n);
    out.reserve(static_cast<std::size_t>(cols));
    const int32_t* data = counts.data();
    for (int64_t k = 0; k < cols; ++k) {
        const int32_t a = first + static_cast<int32_t>(k * n / cols);
        const int32_t b = first + static_cast<int32_t>((k + 1) * n / cols) - 1;
        int32_t lo = data[a], hi = data[a];
        for (int32_t i = a + 1; i <= b; ++i) {
            lo = std::min(lo, data[i]);
            hi = std::max(hi, data[i]);
        }
        out.push_back({a, b, lo, hi});
    }
    return out;
}

std::optional<CursorReadout> UpdateInfo(const SpectrumDocument& doc, int32_t c) {
    if (c < 0 || c > MAX_CHANNELS)
        return std::nullopt;
    CursorReadout r;
    r.channel = "Channel " + std::to_string(c);
    r.counts = "Counts " + std::to_string(doc.lCounts[static_cast<std::size_t>(c)]);
    if (doc.lMCSMode != 0) {
        r.position = FormatSingle(static_cast<float>(c) * doc.sngDwellTime, "0.0") + " seconds";
    } else if (doc.calibration.bCalibrated) {
        try {
            r.position = FormatNumber(ChannelToEnergy(c, doc.calibration), ".00") + " keV";
        } catch (const FloatingPointError&) {
            // A calibration that overflows at this channel still leaves the other lines.
            r.position = "Energy out of range";
        }
    } else {
        r.position = "Not calibrated";
    }
    return r;
}

int32_t SnapToLocalMaximum(const SpectrumDocument& doc, int32_t channel, int32_t radius) {
    const int32_t last = std::min(doc.lChannels, MAX_CHANNELS) - 1;
    if (channel < 0 || channel > last)
        return channel;
    const auto at = [&doc](int32_t ch) { return doc.lCounts[static_cast<std::size_t>(ch)]; };
    int32_t best = -1;
    // Outwards from the clicked channel, so that of equal maxima the nearest wins.
    for (int32_t d = 0; d <= radius; ++d) {
        for (int32_t ch : {channel - d, channel + d}) {
            if (ch < 0 || ch > last)
                continue;
            const bool peak =
                (ch == 0 || at(ch - 1) <= at(ch)) && (ch == last || at(ch + 1) <= at(ch));
            if (peak && (best < 0 || at(ch) > at(best)))
                best = ch;
        }
    }
    return best < 0 || at(best) <= at(channel) ? channel : best;
}

bool ZoomIn(ZoomState& zoom, int32_t markFirst, int32_t markLast, int32_t lChannels) {
    if (zoom.zoomed)
        return false;
    const int32_t top = std::max(lChannels - 1, 0);
    const int32_t lo = std::clamp(std::min(markFirst, markLast), 0, top);
    const int32_t hi = std::clamp(std::max(markFirst, markLast), 0, top);
    zoom = {true, lo, hi};
    return true;
}

bool ZoomOut(ZoomState& zoom, int32_t lChannels) {
    if (!zoom.zoomed)
        return false;
    zoom = {false, 0, std::max(lChannels - 1, 0)};
    return true;
}

AxisSetup Calibrate(SpectrumDocument& doc) {
    AxisSetup setup;
    if (doc.lMCSMode != 0) {
        doc.plot.sngOffset = 0.0f;
        doc.plot.sngSlope = doc.sngDwellTime;
        doc.plot.sngQuad = 0.0f;
        setup = {XUnit::Time, "Time, seconds"};
    } else {
        doc.plot.sngOffset = static_cast<float>(doc.calibration.dOffset);
        doc.plot.sngSlope = static_cast<float>(doc.calibration.dSlope);
        doc.plot.sngQuad = static_cast<float>(doc.calibration.dQuad);
        setup = {XUnit::Energy, "Energy, keV"};
    }
    doc.plot.bUseCalibration = true;
    // Kept on purpose: merely viewing energies marks the spectrum calibrated.
    doc.calibration.bCalibrated = true;
    return setup;
}

AxisSetup ShowChannels(SpectrumDocument& doc) {
    doc.plot.bUseCalibration = false;
    return {XUnit::Channels, "Channels"};
}

} // namespace vexo
