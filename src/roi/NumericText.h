#pragma once
// Number formatting for the ROI read-outs and the tolerant text-to-number conversions
// used by dialogs that take numbers from text fields.
#include <cstdint>
#include <string>
#include <string_view>

namespace vexo {

// Formats `value` with a pattern picked from its magnitude |value|:
//   below 9999  -> "###0.00"   (9998.996 -> "9999.00")
//   below 99999 -> "#####.0"   (9999 -> "9999.0")
//   otherwise   -> "0.00E+##"  (99999 -> "1.00E+5")
// Negative values use the same thresholds on their magnitude. Throws FloatingPointError
// for NaN or infinity, which no read-out can show.
std::string FormatAuto(double value);

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
