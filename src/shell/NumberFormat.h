#pragma once
// Number-to-text conversions used in files, read-outs and reports. Every result uses
// "." as decimal point, whatever the user's locale.
#include <string>
#include <string_view>

namespace vexo {

// Formats `value` with a display pattern. Supported patterns, as the program uses them:
//   "0", "0.0", "0.00", "0.000", "0.0000"  fixed decimals, at least one integer digit
//   ".00"                                   fixed decimals, no integer digit when it is 0
//   "###0.00", "#####.0"                    '#' optional digit, '0' forced digit
//   "0.00E+##"                              mantissa with two decimals, signed exponent
// Rounding is half away from zero on the decimal digits of the value, as display
// formatting does: the value is first taken to `significantDigits` digits (15 for a
// 64-bit float, 7 for a 32-bit one), so 2.675 shows as "2.68".
// Throws std::invalid_argument for a pattern outside this set and FloatingPointError
// for NaN or infinity.
std::string FormatNumber(double value, std::string_view pattern, int significantDigits = 15);

// Same, for a 32-bit float (taken to seven significant digits before rounding).
inline std::string FormatSingle(float value, std::string_view pattern) {
    return FormatNumber(static_cast<double>(value), pattern, 7);
}

// A 32-bit float as text in the general form with at most seven significant digits:
// "0.5", "1234567", "1.234568E-05", "1.234568E+07". No padding.
std::string SingleToText(float value);

// A 64-bit float in the general form with at most fifteen significant digits.
std::string DoubleToText(double value);

// The shortest decimal text that reads back as the same 32-bit float, in the general
// form (1173.2f -> "1173.2", 661.66f -> "661.66", 0.0008f -> "0.0008", 1e-5f -> "1e-05").
std::string ShortestSingleText(float value);

// A 32-bit integer as a spectrum-file item: a blank (or "-") in place of the sign and
// one trailing blank, so 57 -> " 57 " and -3 -> "-3 ".
std::string IntegerItem(long long value);

} // namespace vexo
