#include "Rng.h"

#include <cmath>

namespace korvsim {

namespace {

uint64_t SplitMix(uint64_t& state) {
    uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

uint64_t Rotl(uint64_t x, int k) {
    return (x << k) | (x >> (64 - k));
}

} // namespace

uint64_t MixSeed(uint64_t a, uint64_t b) {
    uint64_t state = a ^ Rotl(b, 29) ^ 0x5851F42D4C957F2Dull;
    SplitMix(state);
    return SplitMix(state);
}

Rng::Rng(uint64_t seed) {
    reseed(seed);
}

void Rng::reseed(uint64_t seed) {
    uint64_t state = seed;
    for (uint64_t& word : m_s)
        word = SplitMix(state);
    m_hasSpare = false;
}

uint64_t Rng::next() {
    const uint64_t result = Rotl(m_s[1] * 5, 7) * 9;
    const uint64_t t = m_s[1] << 17;
    m_s[2] ^= m_s[0];
    m_s[3] ^= m_s[1];
    m_s[1] ^= m_s[2];
    m_s[0] ^= m_s[3];
    m_s[2] ^= t;
    m_s[3] = Rotl(m_s[3], 45);
    return result;
}

double Rng::normal() {
    if (m_hasSpare) {
        m_hasSpare = false;
        return m_spare;
    }
    double u, v, s;
    do {
        u = 2.0 * uniform() - 1.0;
        v = 2.0 * uniform() - 1.0;
        s = u * u + v * v;
    } while (s >= 1.0 || s == 0.0);
    const double f = std::sqrt(-2.0 * std::log(s) / s);
    m_spare = v * f;
    m_hasSpare = true;
    return u * f;
}

uint64_t Rng::poisson(double mean) {
    if (!(mean > 0.0) || !std::isfinite(mean))
        return 0;
    return mean < 12.0 ? poissonSmall(mean) : poissonLarge(mean);
}

uint64_t Rng::poissonSmall(double mean) {
    // Inversion by sequential search: on average mean + 1 steps.
    double u = uniform();
    double p = std::exp(-mean);
    uint64_t k = 0;
    while (u > p) {
        u -= p;
        ++k;
        p *= mean / static_cast<double>(k);
        if (p <= 0.0)
            break; // Far tail: rounding has used up the probability mass.
    }
    return k;
}

uint64_t Rng::poissonLarge(double mean) {
    const double smu = std::sqrt(mean);
    const double b = 0.931 + 2.53 * smu;
    const double a = -0.059 + 0.02483 * b;
    const double invAlpha = 1.1239 + 1.1328 / (b - 3.4);
    const double vr = 0.9277 - 3.6224 / (b - 2.0);
    const double logMean = std::log(mean);
    for (;;) {
        const double u = uniform() - 0.5;
        const double v = uniform();
        const double us = 0.5 - std::fabs(u);
        const double k = std::floor((2.0 * a / us + b) * u + mean + 0.43);
        if (us >= 0.07 && v <= vr)
            return static_cast<uint64_t>(k);
        if (k < 0.0 || (us < 0.013 && v > us))
            continue;
        if (std::log(v) + std::log(invAlpha) - std::log(a / (us * us) + b) <=
            -mean + k * logMean - std::lgamma(k + 1.0))
            return static_cast<uint64_t>(k);
    }
}

} // namespace korvsim
