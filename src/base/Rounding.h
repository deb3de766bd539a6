#pragma once
// Conversions from floating point to integers: nearest, ties to even, range-checked.
#include <cmath>
#include <cstdint>
#include <limits>

#include "base/VexoError.h"

namespace vexo {

// Nearest integer with ties to the even neighbour (2.5 -> 2, 3.5 -> 4, -2.5 -> -2).
// Throws FloatingPointError for NaN or infinity.
inline double RoundHalfEven(double value) {
    if (!std::isfinite(value))
        throw FloatingPointError();
    double r = std::nearbyint(value); // default rounding mode is to nearest, ties to even
    // nearbyint follows the current mode; guard against a caller that changed it.
    double diff = value - std::floor(value);
    if (diff == 0.5) {
        double f = std::floor(value);
        r = (std::fmod(f, 2.0) == 0.0) ? f : f + 1.0;
    }
    return r;
}

// Round (ties to even) into a signed 16-bit integer; OverflowError outside -32768..32767.
inline int16_t CInt(double value) {
    double r = RoundHalfEven(value);
    if (r < -32768.0 || r > 32767.0)
        throw OverflowError();
    return static_cast<int16_t>(r);
}

// Round (ties to even) into a signed 32-bit integer; OverflowError outside its range.
inline int32_t CLng(double value) {
    double r = RoundHalfEven(value);
    if (r < -2147483648.0 || r > 2147483647.0)
        throw OverflowError();
    return static_cast<int32_t>(r);
}

// Checked 32-bit addition and multiplication, for sums of counts.
inline int32_t AddChecked(int32_t a, int32_t b) {
    int32_t r;
    if (__builtin_add_overflow(a, b, &r))
        throw OverflowError();
    return r;
}
inline int32_t MulChecked(int32_t a, int32_t b) {
    int32_t r;
    if (__builtin_mul_overflow(a, b, &r))
        throw OverflowError();
    return r;
}

// Raises FloatingPointError when a result is infinite or NaN.
inline double CheckFinite(double value) {
    if (!std::isfinite(value))
        throw FloatingPointError();
    return value;
}

// Narrow to a 32-bit float; a finite double beyond float range is an overflow.
inline float CSng(double value) {
    CheckFinite(value);
    if (std::fabs(value) > std::numeric_limits<float>::max())
        throw OverflowError();
    return static_cast<float>(value);
}

} // namespace vexo
