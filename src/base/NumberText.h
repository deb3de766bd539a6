#pragma once
// Numbers as text and text as numbers: the formats of files, read-outs and reports, and
// the readers of typed and stored values. Every text uses "." as decimal point, whatever
// the user's locale.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vexo {

// ---- Number to text ----

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

// ---- Read-out format picked from the magnitude ----

// Formats `value` with a pattern picked from its magnitude |value|:
//   below 9999  -> "###0.00"   (9998.996 -> "9999.00")
//   below 99999 -> "#####.0"   (9999 -> "9999.0")
//   otherwise   -> "0.00E+##"  (99999 -> "1.00E+5")
// Negative values use the same thresholds on their magnitude. Throws FloatingPointError
// for NaN or infinity, which no read-out can show.
std::string FormatAuto(double value);

// ---- Text to number ----
//
// Two flavours are needed. Library files are read leniently: a value is the number its
// text begins with ("12.5 keV" gives 12.5, "abc" gives 0), as the nuclide library reader
// expects. Typed dialog input is read strictly: the whole text must be one number, so a
// caller can tell a row that failed from a row that holds 0.
//
// Number syntax in both: optional blanks, optional sign, digits with at most one ".",
// at least one digit, then an optional exponent "e"/"E" with optional sign and digits
// (an "e" not followed by digits is not part of the number).

// The number at the start of `text` (leading blanks and tabs skipped), stopping at the
// first character that cannot continue it. Empty or non-numeric text gives 0, and so
// does a value too small for a double. Throws OverflowError when the value is beyond the
// range of a double.
double LeadingNumber(std::string_view text);

// The whole text (blanks around it allowed) as a 64-bit float; std::nullopt when the
// text is empty, holds anything besides one number, or the value is beyond the double
// range.
std::optional<double> StrictDouble(std::string_view text);

// The whole text as a number rounded to the nearest 16-bit integer (ties to even, so
// "12.5" gives 12); std::nullopt when StrictDouble fails or the rounded value lies
// outside -32768..32767.
std::optional<int16_t> StrictInt16(std::string_view text);

// Tolerant conversions of a text field. The text is trimmed of blanks; an empty text,
// a text that is not one number as a whole ("." as the decimal point, optional sign and
// exponent; "1,5" or "12 kg" are not numbers) or a value outside the target type gives 0.
// Nothing is reported: a field that cannot be read counts as 0. Integer targets round to
// the nearest integer with ties to even ("2.5" -> 2, "3.5" -> 4).
int16_t SafeInt(std::string_view text);
int32_t SafeLng(std::string_view text);
float SafeSng(std::string_view text);
double SafeDbl(std::string_view text);

} // namespace vexo
