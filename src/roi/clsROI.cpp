#include "roi/clsROI.h"

#include <cmath>
#include <limits>

#include "base/Rounding.h"
#include "base/VexoError.h"

// Numeric types in the analysis. The stored fields keep their declared widths; the
// intermediates follow the same rule throughout:
//   - sums and differences of counts are 32-bit and overflow-checked;
//   - channel counters and the channel count n are 16-bit and overflow-checked;
//   - every mixed integer/float expression is evaluated in 64-bit floating point; the
//     values defined as floats are narrowed where they are formed (centroid c, background
//     per channel b1, the rates, BkgAtPosition and its four averaged sums), the others
//     (height h, half level H, crossings xL/xR, width F, energies) stay in double until
//     they are stored: near channel 16000 a float resolves only a thousandth of a channel,
//     which would show in a width of a few channels. A finite double beyond float range is an
//     OverflowError, an infinite or NaN result or a division by zero a FloatingPointError;
//   - float-to-integer conversions round to nearest, ties to even, range-checked.

namespace vexo {
namespace {

constexpr int64_t kInt16Min = std::numeric_limits<int16_t>::min();
constexpr int64_t kInt16Max = std::numeric_limits<int16_t>::max();

// The counts array with its bounds 0..Ub. Every read that is not already known to lie
// inside goes through at(), so a stray index is an error and never a read past the end.
class CountsView {
public:
    CountsView(const int32_t* data, std::size_t size)
        : m_data(data), m_ub(static_cast<int64_t>(size) - 1) {}
    int64_t ub() const { return m_ub; }
    int32_t at(int64_t i) const {
        if (i < 0 || i > m_ub)
            throw SubscriptError();
        return m_data[i];
    }
    const int32_t* data() const { return m_data; }

private:
    const int32_t* m_data;
    int64_t m_ub;
};

int16_t NarrowInt16(int64_t v) {
    if (v < kInt16Min || v > kInt16Max)
        throw OverflowError();
    return static_cast<int16_t>(v);
}

int32_t SubChecked(int32_t a, int32_t b) {
    int32_t r;
    if (__builtin_sub_overflow(a, b, &r))
        throw OverflowError();
    return r;
}

// Division in 64-bit floating point; a zero divisor is a floating-point fault.
double Divide(double a, double b) {
    if (b == 0.0)
        throw FloatingPointError("Division by zero");
    return CheckFinite(a / b);
}

// Largest whole number not above `x`, as a 32-bit channel index.
int32_t FloorToInt32(float x) {
    const double f = std::floor(static_cast<double>(CheckFinite(x)));
    if (f < -2147483648.0 || f > 2147483647.0)
        throw OverflowError();
    return static_cast<int32_t>(f);
}

// One sweep over L..R with a 16-bit channel counter.
struct Sweep {
    int32_t S = 0;      // integral
    double W = 0.0;     // counts weighted by channel + 1
    int32_t M = 0;      // largest count
    int16_t chnMax = 0; // channel of the largest count (lowest on a tie)
    int16_t n = 0;      // R - L + 1
};

Sweep SweepRoi(const CountsView& y, int32_t L, int32_t R) {
    Sweep s;
    const int16_t first = NarrowInt16(L);
    const int16_t last = NarrowInt16(R);
    // A 16-bit counter cannot step past 32767 when the loop ends.
    if (first <= last && last == kInt16Max)
        throw OverflowError();
    // The caller checked 0 <= L and R <= Ub, so every i in L..R lies inside the array.
    const int32_t* counts = y.data();
    for (int32_t i = first; i <= last; ++i) {
        const int32_t c = counts[i];
        s.S = AddChecked(s.S, c);
        s.W += static_cast<double>(c) * static_cast<double>(i + 1);
        if (c > s.M) {
            s.M = c;
            s.chnMax = static_cast<int16_t>(i);
        }
    }
    s.n = NarrowInt16(static_cast<int64_t>(R) - L + 1);
    return s;
}

// Mean of two counts, rounded ties to even; the sum is 32-bit.
int32_t RoundedMean(int32_t a, int32_t b) {
    return CLng(AddChecked(a, b) / 2.0);
}

// Background level left of the ROI.
int32_t LeftLevel(const CountsView& y, int32_t L) {
    if (L < 1)
        return 0;
    if (L == 1)
        return y.at(0);
    return RoundedMean(y.at(static_cast<int64_t>(L) - 2), y.at(static_cast<int64_t>(L) - 1));
}

// Background level right of the ROI.
int32_t RightLevel(const CountsView& y, int32_t R) {
    const int64_t ub = y.ub();
    if (R > ub - 1)
        return 0;
    if (R == ub - 1)
        return y.at(static_cast<int64_t>(R) + 1);
    return RoundedMean(y.at(static_cast<int64_t>(R) + 2), y.at(static_cast<int64_t>(R) + 1));
}

// Total background: a trapezoid over R - L + 3 channels; width and level sum are 32-bit products.
int32_t TotalBackground(int32_t L, int32_t R, int32_t bL, int32_t bR) {
    const int32_t span = AddChecked(SubChecked(R, L), 3);
    return CLng(MulChecked(span, AddChecked(bL, bR)) / 2.0);
}

// One half-maximum crossing. `flat` is set when the two counts around it are equal.
// `x` stays 0 when the search finds no crossing at all.
struct Crossing {
    bool flat = false;
    double x = 0.0;
};

// Linear interpolation of the half level between channels a = j - 2 and b = j - 1.
Crossing InterpolateCrossing(const CountsView& y, int32_t j, double H) {
    const int32_t a = j - 2;
    const int32_t ya = y.at(a);
    const int32_t yb = y.at(static_cast<int64_t>(j) - 1);
    Crossing c;
    if (yb == ya) {
        c.flat = true;
        return c;
    }
    const double step = static_cast<double>(SubChecked(yb, ya));
    c.x = a + Divide(H - ya, step);
    return c;
}

// Left half-maximum crossing: first j in L..floor(c)+10 (j >= 1) with y(j-1) >= H.
Crossing LeftCrossing(const CountsView& y, int32_t L, int32_t k, double H) {
    const int16_t first = NarrowInt16(L);
    const int16_t last = NarrowInt16(static_cast<int64_t>(k) + 10);
    for (int32_t j = first; j <= last; ++j) {
        if (j >= 1 && y.at(j - 1) >= H)
            return InterpolateCrossing(y, j, H);
        if (j == kInt16Max) // the 16-bit counter cannot step past 32767
            throw OverflowError();
    }
    return {};
}

// Right half-maximum crossing: first j in floor(c)..R (j <= Ub - 1) with y(j-1) <= H.
Crossing RightCrossing(const CountsView& y, int32_t k, int32_t R, double H) {
    const int16_t first = NarrowInt16(k);
    const int16_t last = NarrowInt16(R);
    for (int32_t j = first; j <= last; ++j) {
        if (j <= y.ub() - 1 && y.at(static_cast<int64_t>(j) - 1) <= H)
            return InterpolateCrossing(y, j, H);
        if (j == kInt16Max)
            throw OverflowError();
    }
    return {};
}

// Net height at the centroid and FWHM in channels, in double; they become
// floats only when stored.
struct PeakShape {
    bool flat = false; // a crossing met two equal counts
    double h = 0.0;    // estimated net intensity
    double F = 0.0;    // FWHM, channels
};

PeakShape MeasurePeak(const CountsView& y, int32_t L, int32_t R, float c) {
    PeakShape p;
    const int32_t k = FloorToInt32(c);
    const double bc = BkgAtPosition(L, R, 2, c, y.data(), static_cast<std::size_t>(y.ub() + 1));
    // Interpolation between y(k) and y(k+1) written as the program forms it; the array is
    // indexed with k on the plus-one centroid scale.
    const double cd = c;
    const double r = Divide(k - cd, k + 1.0 - cd);
    const double yk = y.at(k);
    const double yk1 = y.at(static_cast<int64_t>(k) + 1);
    p.h = Divide((yk - bc) - (yk1 - bc) * r, 1.0 - r);
    if (p.h < 0.0)
        p.h = 0.0;
    if (p.h <= 0.0)
        return p;
    // Midpoint between the net height and the background level.
    const double H = (p.h - bc) / 2.0 + bc;
    const Crossing left = LeftCrossing(y, L, k, H);
    if (left.flat) {
        p.flat = true;
        return p;
    }
    const Crossing right = RightCrossing(y, k, R, H);
    if (right.flat) {
        p.flat = true;
        return p;
    }
    p.F = CheckFinite(right.x - left.x);
    return p;
}

// Count rates over `sTime` seconds; all 0 when no time is known.
RoiRates RatesOf(int32_t S, int32_t N, int32_t B, float sTime) {
    RoiRates r;
    if (sTime > 0.0f) {
        r.sIntRate = CSng(Divide(S, sTime));
        r.sNetRate = N > 0 ? CSng(Divide(N, sTime)) : 0.0f;
        r.sBkgRate = CSng(Divide(B, sTime));
    }
    return r;
}

// Centroid energy, FWHM in energy and FWHM in percent of the centroid energy.
struct WidthEnergies {
    float sCentEn = 0.0f;
    float sFWHMen = 0.0f; // as stored, before the read rule
    float sFWHMp = 0.0f;
};

WidthEnergies WidthEnergiesOf(float c, double F, const EnergyCalibration& cal) {
    WidthEnergies w;
    // The width in energy is taken between whole channels, rounded ties to even.
    const double halfF = F / 2.0;
    const double fwhmEn =
        ChannelToEnergy(CLng(c + halfF), cal) - ChannelToEnergy(CLng(c - halfF), cal);
    w.sCentEn = CSng(ChannelToEnergy(CLng(c), cal));
    w.sFWHMen = CSng(CheckFinite(fwhmEn));
    // The percentage uses the centroid energy and the width as their properties read them.
    const float readFWHMen = w.sFWHMen > 0.0f ? w.sFWHMen : 0.0f;
    w.sFWHMp = w.sCentEn > 0.0f ? CSng(Divide(100.0 * readFWHMen, w.sCentEn)) : 0.0f;
    return w;
}

} // namespace

int32_t clsROI::sBkgVal() const {
    return CLng(m_sBkgVal);
}

float BkgAtPosition(int32_t L, int32_t R, int16_t m, float x, const int32_t* lCounts,
                    std::size_t countsSize) {
    const CountsView y(lCounts, countsSize);
    // The four sums are floats; each addition is formed in double and narrowed again.
    float YL = 0.0f, XL = 0.0f, YR = 0.0f, XR = 0.0f;
    for (int32_t k = 1; k <= m; ++k) {
        const int64_t left = static_cast<int64_t>(L) - k;
        const int64_t right = static_cast<int64_t>(R) + k;
        if (left > 0) { // channel 0 never contributes
            YL = CSng(static_cast<double>(YL) + y.at(left));
            XL = CSng(static_cast<double>(XL) + static_cast<double>(left));
        }
        if (right < y.ub()) { // strictly below the upper bound
            YR = CSng(static_cast<double>(YR) + y.at(right));
            XR = CSng(static_cast<double>(XR) + static_cast<double>(right));
        }
    }
    // Divided by m whether or not every neighbour existed.
    YL = CSng(Divide(YL, m));
    XL = CSng(Divide(XL, m));
    YR = CSng(Divide(YR, m));
    XR = CSng(Divide(XR, m));
    if (XR - XL == 0.0f)
        return -1.0f;
    return CSng(YL + (static_cast<double>(x) - XL) *
                         Divide(static_cast<double>(YR) - YL, static_cast<double>(XR) - XL));
}

bool clsROI::bComputeROI(float sTime, int16_t& nBkgChn, const int32_t* lCounts,
                         std::size_t countsSize, const EnergyCalibration& cal, RoiRates& rates) {
    nBkgChn = 2;
    rates.sIntRate = 0.0f;
    const CountsView y(lCounts, countsSize);
    const int32_t L = m_lROILCh;
    const int32_t R = m_lROIRCh;
    if (L < 0 || R > y.ub())
        return false;

    const Sweep sw = SweepRoi(y, L, R);
    const float c = sw.S >= 1 ? CSng(sw.W / sw.S) : 0.0f;
    // The edge energies are stored at once and stay even when a later step fails.
    m_sROILEn = CSng(ChannelToEnergy(L, cal));
    m_sROIREn = CSng(ChannelToEnergy(R, cal));

    const int32_t bL = LeftLevel(y, L);
    const int32_t bR = RightLevel(y, R);
    const int32_t B = TotalBackground(L, R, bL, bR);
    int32_t N = SubChecked(sw.S, B);
    if (N < 0)
        N = 0;
    const float b1 = CSng(Divide(B, sw.n));

    const RoiRates out = RatesOf(sw.S, N, B, sTime);
    const PeakShape peak = MeasurePeak(y, L, R, c);
    if (peak.flat)
        return false;
    // Everything is converted before the first result is stored, so that a fault leaves
    // every result as it was.
    const WidthEnergies en = WidthEnergiesOf(c, peak.F, cal);
    const float sCentInt = CSng(peak.h);
    const float sFWHMch = CSng(peak.F);

    m_sBkgVal = b1;
    m_lBkgIntVal = B;
    m_lNET = N;
    m_lInt = sw.S;
    m_lMax = sw.M;
    m_nChnMax = sw.chnMax;
    m_sCentCh = c;
    m_sCentEn = en.sCentEn;
    m_sCentInt = sCentInt;
    m_sFWHMch = sFWHMch;
    m_sFWHMen = en.sFWHMen;
    m_sFWHMp = en.sFWHMp;
    // The kept rates belong to the results and change with them.
    m_sIntCps = out.sIntRate;
    m_sNetCps = out.sNetRate;
    rates = out;
    return true;
}

} // namespace vexo
