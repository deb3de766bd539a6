#pragma once
// Date-times as the program stores them: a day number since 1899-12-30 plus the
// fraction of the day, as a 64-bit float (so 2.5 is 1900-01-01 12:00). Local time.
#include <string>
#include <string_view>

namespace vexo {

struct DateTimeParts {
    int year = 1899, month = 12, day = 30;
    int hour = 0, minute = 0, second = 0;
};

// Serial date of the parts. Months and days out of range roll over as in a calendar
// (month 13 is January of the next year); no validation beyond that.
double SerialFromParts(const DateTimeParts& parts);

// Calendar parts of a serial date, rounded to the nearest second.
DateTimeParts PartsFromSerial(double serial);

// The current local date-time as a serial date, to the second.
double NowSerial();

// Formats with one of the patterns the program uses:
//   "mm-dd-yyyy  Hh:Nn:Ss"  -> "03-07-2024  14:05:09"
//   "yyyymmdd"              -> "20240307"
//   "HhNnSs"                -> "140509"
//   "iso"                   -> "2024-03-07T14:05:09" (ISO 8601, local time)
// Throws std::invalid_argument for any other pattern.
std::string FormatSerial(double serial, std::string_view pattern);

// Long date and long time texts for people: "Thursday, March 7, 2024", "2:05:09 PM".
std::string LongDateText(double serial);
std::string LongTimeText(double serial);

} // namespace vexo
