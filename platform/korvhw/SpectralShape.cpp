#include "SpectralShape.h"

#include <algorithm>
#include <cmath>

namespace korvsim {

namespace {

constexpr double kElectronMassKeV = 510.999;
constexpr double kSqrt2 = 1.4142135623730951;
constexpr double kFwhmToSigma = 1.0 / 2.3548200450309493;

// Accumulates rates (counts/s) into channel bins; energy e maps to channel e * cpk.
class Histogram {
public:
    Histogram(int32_t channels, double channelsPerKeV)
        : m_bins(static_cast<size_t>(channels), 0.0), m_cpk(channelsPerKeV) {}

    // A Gaussian of the given rate, integrated exactly over each channel.
    void addGaussian(double rate, double meanKeV, double sigmaKeV) {
        m_total += rate;
        const double mean = meanKeV * m_cpk, sigma = std::max(sigmaKeV * m_cpk, 1e-3);
        const auto first = static_cast<int64_t>(std::floor(mean - 6.0 * sigma));
        const auto last = static_cast<int64_t>(std::ceil(mean + 6.0 * sigma));
        const int64_t lo = std::max<int64_t>(first, 0);
        const int64_t hi = std::min<int64_t>(last, static_cast<int64_t>(m_bins.size()) - 1);
        double below = 0.5 * std::erfc(-(static_cast<double>(lo) - mean) / (kSqrt2 * sigma));
        for (int64_t ch = lo; ch <= hi; ++ch) {
            const double upper =
                0.5 * std::erfc(-(static_cast<double>(ch + 1) - mean) / (kSqrt2 * sigma));
            m_bins[static_cast<size_t>(ch)] += rate * (upper - below);
            below = upper;
        }
    }

    // A continuous density f(e) (any scale) spread over [0, maxKeV], normalised here.
    template <class Density> void addContinuum(double rate, double maxKeV, Density f) {
        m_total += rate;
        constexpr int kSteps = 2048;
        const double step = maxKeV / kSteps;
        double norm = 0.0;
        for (int i = 0; i < kSteps; ++i)
            norm += f((i + 0.5) * step) * step;
        if (!(norm > 0.0))
            return;
        const double keVPerChannel = 1.0 / m_cpk;
        const auto last = std::min<int64_t>(static_cast<int64_t>(std::ceil(maxKeV * m_cpk)),
                                            static_cast<int64_t>(m_bins.size()) - 1);
        for (int64_t ch = 0; ch <= last; ++ch)
            m_bins[static_cast<size_t>(ch)] +=
                rate * f((static_cast<double>(ch) + 0.5) * keVPerChannel) * keVPerChannel / norm;
    }

    void addNoise(double rate, double scaleKeV) {
        m_total += rate;
        const double keVPerChannel = 1.0 / m_cpk;
        double previous = 1.0;
        for (size_t ch = 0; ch < m_bins.size(); ++ch) {
            const double next = std::exp(-static_cast<double>(ch + 1) * keVPerChannel / scaleKeV);
            m_bins[ch] += rate * (previous - next);
            previous = next;
            if (previous < 1e-12)
                break;
        }
    }

    std::vector<double>& bins() { return m_bins; }
    double total() const { return m_total; }

private:
    std::vector<double> m_bins;
    double m_cpk;
    double m_total = 0.0;
};

// Klein-Nishina distribution of the electron energy t for a photon of energy e.
double KleinNishina(double t, double e) {
    const double eps = e / kElectronMassKeV;
    const double s = t / e;
    if (s >= 1.0)
        return 0.0;
    return 2.0 + s * s / (eps * eps * (1.0 - s) * (1.0 - s)) + s / (1.0 - s) * (s - 2.0 / eps);
}

void AddLine(Histogram& h, const DetectorModel& det, double rate, double e) {
    const double sigma = det.fwhmKeV(e) * kFwhmToSigma;
    const double peakShare = det.peakToTotal(e);
    h.addGaussian(rate * peakShare, e, sigma);
    const double scattered = rate * (1.0 - peakShare);
    if (scattered <= 0.0)
        return;
    const double edge = e * (1.0 - 1.0 / (1.0 + 2.0 * e / kElectronMassKeV));
    const double sigmaEdge = det.fwhmKeV(edge) * kFwhmToSigma;
    // Single scattering up to the Compton edge, the edge smeared by the resolution.
    auto compton = [&](double t) {
        const double edgeStep = 0.5 * std::erfc((t - edge) / (kSqrt2 * sigmaEdge));
        return KleinNishina(std::min(t, edge * 0.999999), e) * edgeStep;
    };
    // Multiple scattering fills the valley between edge and full-energy peak.
    auto valley = [&](double t) {
        const double rise = 0.5 * std::erfc((edge - t) / (kSqrt2 * sigmaEdge));
        const double fall = 0.5 * std::erfc((t - e + 2.0 * sigma) / (kSqrt2 * sigma));
        return rise * fall;
    };
    const double multiple = det.multipleScatterShare();
    const double back = det.backscatterShare();
    h.addContinuum(scattered * (1.0 - multiple - back), edge + 5.0 * sigmaEdge, compton);
    h.addContinuum(scattered * multiple, e + 5.0 * sigma, valley);
    // Photons scattered back into the crystal from the shield behind the source.
    const double backEnergy = e / (1.0 + 2.0 * e / kElectronMassKeV);
    const double backSigma = det.fwhmKeV(backEnergy) * kFwhmToSigma + 0.05 * backEnergy;
    h.addGaussian(scattered * back, backEnergy, backSigma);
}

void AddSource(Histogram& h, const DetectorModel& det, const SourceRate& source) {
    double weightSum = 0.0;
    for (const EmissionLine& line : source.nuclide->lines)
        weightSum += line.perDecay * det.detectionWeight(line.energyKeV);
    if (!(weightSum > 0.0) || !(source.rateCps > 0.0))
        return;
    for (const EmissionLine& line : source.nuclide->lines) {
        const double share = line.perDecay * det.detectionWeight(line.energyKeV) / weightSum;
        AddLine(h, det, source.rateCps * share, line.energyKeV);
    }
}

} // namespace

double SpectralShape::windowShare(int32_t first, int32_t last) const {
    if (cumulative.empty())
        return 0.0;
    first = std::clamp<int32_t>(first, 0, channels);
    last = std::clamp<int32_t>(last, -1, channels - 1);
    if (last < first)
        return 0.0;
    return cumulative[static_cast<size_t>(last) + 1] - cumulative[static_cast<size_t>(first)];
}

SpectralShape BuildShape(const ShapeRequest& request) {
    SpectralShape shape;
    shape.channels = request.channels;
    if (request.channels <= 0 || !(request.channelsPerKeV > 0.0))
        return shape;
    const DetectorModel det = MakeDetectorModel(request.detector);
    Histogram h(request.channels, request.channelsPerKeV);
    for (const SourceRate& source : request.sources)
        if (source.nuclide)
            AddSource(h, det, source);
    if (request.noiseCps > 0.0)
        h.addNoise(request.noiseCps, det.noiseScaleKeV());

    std::vector<double>& bins = h.bins();
    double inRange = 0.0, cut = 0.0;
    const auto thresholdBins = std::clamp<int64_t>(
        static_cast<int64_t>(std::floor(request.thresholdChannel)), 0, request.channels);
    for (size_t ch = 0; ch < bins.size(); ++ch) {
        if (static_cast<int64_t>(ch) < thresholdBins) {
            cut += bins[ch];
            bins[ch] = 0.0;
        }
        inRange += bins[ch];
    }
    const double overflow = std::max(0.0, h.total() - inRange - cut);
    shape.triggerRateCps = inRange + overflow;
    if (!(shape.triggerRateCps > 0.0))
        return shape;
    bins.push_back(overflow);
    shape.probability.resize(bins.size());
    shape.cumulative.assign(bins.size() + 1, 0.0);
    for (size_t i = 0; i < bins.size(); ++i) {
        shape.probability[i] = bins[i] / shape.triggerRateCps;
        shape.cumulative[i + 1] = shape.cumulative[i] + shape.probability[i];
    }
    shape.sampler = AliasTable(shape.probability);
    return shape;
}

} // namespace korvsim
