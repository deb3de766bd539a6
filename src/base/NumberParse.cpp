#include "base/NumberText.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "base/Rounding.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Where a number starting at `begin` ends, and what its digits say about its magnitude.
struct NumberScan {
    std::size_t end = 0; // one past the number's last character; == start if none
    bool negative = false;
    std::size_t mantissaBegin = 0; // first digit or "." after the sign
    long long exponent = 0;        // explicit exponent, saturated far beyond any double
    // Decimal position of the first non-zero digit: > 0 means the value is at least 1.
    long long leadPosition = 0;
    bool allZero = true;
};

NumberScan Scan(std::string_view text, std::size_t begin) {
    NumberScan s;
    s.end = begin;
    std::size_t i = begin;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        s.negative = text[i] == '-';
        ++i;
    }
    s.mantissaBegin = i;
    long long intDigits = 0, zerosAfterPoint = 0;
    bool seenPoint = false, seenDigit = false;
    for (; i < text.size(); ++i) {
        char c = text[i];
        if (c == '.' && !seenPoint) {
            seenPoint = true;
        } else if (IsDigit(c)) {
            seenDigit = true;
            if (s.allZero && c != '0')
                s.allZero = false;
            if (!seenPoint && !s.allZero)
                ++intDigits;
            else if (seenPoint && s.allZero)
                ++zerosAfterPoint;
        } else {
            break;
        }
    }
    if (!seenDigit)
        return s; // a sign or "." alone is no number
    s.end = i;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        std::size_t j = i + 1;
        bool expNegative = false;
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
            expNegative = text[j] == '-';
            ++j;
        }
        if (j < text.size() && IsDigit(text[j])) {
            long long e = 0;
            for (; j < text.size() && IsDigit(text[j]); ++j)
                if (e < 1000000000LL)
                    e = e * 10 + (text[j] - '0');
            s.exponent = expNegative ? -e : e;
            s.end = j;
        }
    }
    s.leadPosition = (intDigits > 0 ? intDigits : -zerosAfterPoint) + s.exponent;
    return s;
}

// The value of a scanned number. Sets `overflow` instead of returning infinity.
double Evaluate(std::string_view text, const NumberScan& s, bool& overflow) {
    overflow = false;
    if (s.allZero)
        return s.negative ? -0.0 : 0.0;
    const char* first = text.data() + s.mantissaBegin;
    const char* last = text.data() + s.end;
    double value = 0.0;
    auto r = std::from_chars(first, last, value, std::chars_format::general);
    if (r.ec == std::errc::result_out_of_range) {
        // from_chars leaves the value alone; the digits tell which end of the range
        // was passed. Too small is 0, too large is an overflow.
        if (s.leadPosition > 0) {
            overflow = true;
            return 0.0;
        }
        value = 0.0;
    } else if (r.ec != std::errc() || r.ptr != last) {
        // Cannot happen for a scanned number; treat it as no number rather than guess.
        return 0.0;
    }
    return s.negative ? -value : value;
}

std::size_t SkipBlanks(std::string_view text, std::size_t i) {
    while (i < text.size() && IsBlank(text[i]))
        ++i;
    return i;
}

} // namespace

double LeadingNumber(std::string_view text) {
    std::size_t begin = SkipBlanks(text, 0);
    NumberScan s = Scan(text, begin);
    if (s.end == begin)
        return 0.0;
    bool overflow = false;
    double value = Evaluate(text, s, overflow);
    if (overflow)
        throw OverflowError();
    return value;
}

std::optional<double> StrictDouble(std::string_view text) {
    std::size_t begin = SkipBlanks(text, 0);
    NumberScan s = Scan(text, begin);
    if (s.end == begin || SkipBlanks(text, s.end) != text.size())
        return std::nullopt;
    bool overflow = false;
    double value = Evaluate(text, s, overflow);
    if (overflow)
        return std::nullopt;
    return value;
}

std::optional<int16_t> StrictInt16(std::string_view text) {
    auto value = StrictDouble(text);
    if (!value)
        return std::nullopt;
    double rounded = RoundHalfEven(*value); // finite: StrictDouble never yields inf/NaN
    if (rounded < -32768.0 || rounded > 32767.0)
        return std::nullopt;
    return static_cast<int16_t>(rounded);
}

// ---- Tolerant conversions of text fields ----

namespace {

// The text as one number, or nothing. StrictDouble already allows blanks around it and
// refuses values beyond the double range.
std::optional<double> WholeNumber(std::string_view text) {
    return StrictDouble(text);
}

// Rounded (ties to even) into [lo, hi], or 0 when the rounded value falls outside.
template <typename T> T RoundedInto(std::string_view text) {
    const std::optional<double> value = WholeNumber(text);
    if (!value)
        return 0;
    const double r = RoundHalfEven(*value);
    if (r < static_cast<double>(std::numeric_limits<T>::min()) ||
        r > static_cast<double>(std::numeric_limits<T>::max()))
        return 0;
    return static_cast<T>(r);
}

} // namespace

int16_t SafeInt(std::string_view text) {
    return RoundedInto<int16_t>(text);
}

int32_t SafeLng(std::string_view text) {
    return RoundedInto<int32_t>(text);
}

float SafeSng(std::string_view text) {
    const std::optional<double> value = WholeNumber(text);
    if (!value || std::fabs(*value) > std::numeric_limits<float>::max())
        return 0.0f;
    return static_cast<float>(*value);
}

double SafeDbl(std::string_view text) {
    return WholeNumber(text).value_or(0.0);
}

} // namespace vexo
