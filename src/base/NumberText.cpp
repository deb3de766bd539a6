#include "base/NumberText.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "base/Rounding.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

// Decimal digits of |value| rounded half away from zero to `decimals` places, after the
// value was first taken to `significantDigits` significant digits.
struct DecimalDigits {
    std::string integerPart;  // no leading zeros; "" for zero
    std::string fractionPart; // exactly `decimals` digits
};

// Digits and decimal exponent of |value| at `sig` significant digits: value = 0.d1d2.. x 10^exp
struct Significand {
    std::string digits; // exactly sig digits, or "" for zero
    int exponent = 0;   // position of the decimal point after the first digits
};

Significand ToSignificand(double value, int sig) {
    Significand s;
    if (value == 0.0)
        return s;
    // to_chars rounds exactly as printf's "%.*e" does, at a fraction of its cost: reports
    // format tens of thousands of numbers.
    char buf[64];
    auto res = std::to_chars(buf, buf + sizeof buf, std::fabs(value), std::chars_format::scientific,
                             sig - 1);
    // buf: d.ddddde±XX
    const std::string_view text(buf, static_cast<std::size_t>(res.ptr - buf));
    const auto ePos = text.find('e');
    int exp10 = 0;
    const char* expBegin = text.data() + ePos + 1 + (text[ePos + 1] == '+' ? 1 : 0);
    std::from_chars(expBegin, text.data() + text.size(), exp10);
    s.digits.reserve(static_cast<std::size_t>(sig));
    for (char c : text.substr(0, ePos))
        if (c != '.')
            s.digits.push_back(c);
    s.exponent = exp10 + 1;
    return s;
}

// Rounds a digit string (value = 0.digits x 10^exponent) half away from zero so that it
// keeps `decimals` places after the point. Returns integer and fraction digit strings.
DecimalDigits RoundToDecimals(const Significand& s, int decimals) {
    DecimalDigits d;
    if (s.digits.empty()) {
        d.fractionPart.assign(decimals, '0');
        return d;
    }
    // Place digits on a fixed grid: index of the units digit relative to digits[0].
    int keep = s.exponent + decimals; // how many leading digits survive
    std::string digits = s.digits;
    int exponent = s.exponent;
    if (keep < 0) {
        d.fractionPart.assign(decimals, '0');
        return d;
    }
    if (keep < static_cast<int>(digits.size())) {
        bool up = digits[keep] >= '5';
        digits.resize(keep);
        if (up) {
            int i = keep - 1;
            while (i >= 0 && digits[i] == '9') {
                digits[i] = '0';
                --i;
            }
            if (i < 0) {
                digits.insert(digits.begin(), '1');
                ++exponent;
            } else {
                ++digits[i];
            }
        }
    }
    // Expand to integer and fraction parts.
    std::string all;
    if (exponent <= 0) {
        all.assign(-exponent, '0');
        all += digits;
        d.integerPart = "";
        d.fractionPart = all;
    } else {
        if (static_cast<int>(digits.size()) < exponent)
            digits.append(exponent - digits.size(), '0');
        d.integerPart = digits.substr(0, exponent);
        d.fractionPart = digits.substr(exponent);
    }
    if (static_cast<int>(d.fractionPart.size()) < decimals)
        d.fractionPart.append(decimals - d.fractionPart.size(), '0');
    d.fractionPart.resize(decimals);
    auto nz = d.integerPart.find_first_not_of('0');
    d.integerPart = (nz == std::string::npos) ? "" : d.integerPart.substr(nz);
    return d;
}

bool IsZeroDigits(const DecimalDigits& d) {
    return d.integerPart.empty() && d.fractionPart.find_first_not_of('0') == std::string::npos;
}

// Patterns of the form [#...][0...][.[0...]]: forced integer digits and decimals.
std::string FormatFixed(double value, int forcedIntegerDigits, int decimals, int sig) {
    DecimalDigits d = RoundToDecimals(ToSignificand(value, sig), decimals);
    std::string integer = d.integerPart;
    if (static_cast<int>(integer.size()) < forcedIntegerDigits)
        integer.insert(0, forcedIntegerDigits - integer.size(), '0');
    std::string out;
    if (value < 0 && !IsZeroDigits(d))
        out = "-";
    out += integer;
    if (decimals > 0)
        out += "." + d.fractionPart;
    return out;
}

// "0.00E+##": one mantissa digit, two decimals, exponent with sign and no padding.
std::string FormatScientific(double value, int sig) {
    Significand s = ToSignificand(value, sig);
    if (s.digits.empty())
        return "0.00E+0";
    // Normalise to one integer digit, then round to two decimals.
    Significand m{s.digits, 1};
    DecimalDigits d = RoundToDecimals(m, 2);
    int exp10 = s.exponent - 1;
    if (d.integerPart.size() > 1) { // 9.995 -> 10.00 -> 1.00E+1
        d.fractionPart = "00";      // only a carry makes two digits: the mantissa is exactly 10
        d.integerPart = "1";
        ++exp10;
    }
    std::string out = value < 0 ? "-" : "";
    out += d.integerPart + "." + d.fractionPart + "E";
    out += exp10 < 0 ? "-" : "+";
    out += std::to_string(std::abs(exp10));
    return out;
}

} // namespace

std::string FormatNumber(double value, std::string_view pattern, int significantDigits) {
    if (!std::isfinite(value))
        throw FloatingPointError(); // no pattern can show NaN or infinity
    if (pattern == "0.00E+##")
        return FormatScientific(value, significantDigits);
    auto dot = pattern.find('.');
    std::string_view integerPattern = pattern.substr(0, dot);
    std::string_view fractionPattern =
        dot == std::string_view::npos ? std::string_view{} : pattern.substr(dot + 1);
    if (integerPattern.find_first_not_of("#0") != std::string_view::npos ||
        fractionPattern.find_first_not_of('0') != std::string_view::npos)
        throw std::invalid_argument("unsupported number pattern: " + std::string(pattern));
    int forced = 0;
    for (char c : integerPattern)
        forced += (c == '0');
    return FormatFixed(value, forced, static_cast<int>(fractionPattern.size()), significantDigits);
}

std::string SingleToText(float value) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.7G", static_cast<double>(value));
    return buf;
}

std::string DoubleToText(double value) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.15G", value);
    return buf;
}

std::string ShortestSingleText(float value) {
    // General form: fixed notation down to 1e-4 ("0.0005", easier to read in a file a
    // person edits), exponent form only below that or for very large values.
    char buf[32];
    auto res = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::general);
    return std::string(buf, res.ptr);
}

std::string IntegerItem(long long value) {
    std::string digits = std::to_string(value < 0 ? -value : value);
    return (value < 0 ? "-" : " ") + digits + " ";
}

std::string FormatAuto(double value) {
    const double a = std::fabs(CheckFinite(value));
    if (a < 9999.0)
        return FormatNumber(value, "###0.00");
    if (a < 99999.0)
        return FormatNumber(value, "#####.0");
    return FormatNumber(value, "0.00E+##");
}

} // namespace vexo
