#pragma once
// Text-to-number conversions with "." as the decimal point, whatever the locale.
//
// Two flavours are needed. Library files are read leniently: a value is the number its
// text begins with ("12.5 keV" gives 12.5, "abc" gives 0), as the nuclide library reader
// expects. Typed dialog input is read strictly: the whole text must be one number, so a
// caller can tell a row that failed from a row that holds 0.
//
// Number syntax in both: optional blanks, optional sign, digits with at most one ".",
// at least one digit, then an optional exponent "e"/"E" with optional sign and digits
// (an "e" not followed by digits is not part of the number).
#include <cstdint>
#include <optional>
#include <string_view>

namespace vexo {

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

} // namespace vexo
