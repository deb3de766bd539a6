#pragma once
// The simulator's random numbers: a small, fast, seedable generator (xoshiro256**)
// with the few distributions the analyser model needs. Written out here rather than
// taken from <random> so that a given seed gives the same spectrum with every
// standard library.
#include <cstdint>

namespace korvsim {

// Combines two 64-bit values into one well-mixed seed (splitmix64 finaliser).
uint64_t MixSeed(uint64_t a, uint64_t b);

class Rng {
public:
    explicit Rng(uint64_t seed = 1);
    void reseed(uint64_t seed);

    uint64_t next();
    // Uniform in [0, 1), 53 bits.
    double uniform() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }
    // Standard normal deviate (polar Box-Muller, one value cached).
    double normal();
    // Poisson deviate of the given mean; 0 for a mean <= 0 or not finite.
    // Exact inversion below mean 12, Hoermann's transformed rejection (PTRS) above.
    uint64_t poisson(double mean);

private:
    uint64_t poissonSmall(double mean);
    uint64_t poissonLarge(double mean);

    uint64_t m_s[4];
    bool m_hasSpare = false;
    double m_spare = 0.0;
};

} // namespace korvsim
