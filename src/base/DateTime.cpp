#include "base/DateTime.h"

#include <cmath>
#include <cstdio>
#include <ctime>
#include <stdexcept>

namespace vexo {
namespace {

// Days from 1970-01-01 to the civil date (proleptic Gregorian); works for any year.
long long DaysFromCivil(long long y, unsigned m, unsigned d) {
    y -= m <= 2;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long long>(doe) - 719468;
}

void CivilFromDays(long long z, int& y, int& m, int& d) {
    z += 719468;
    const long long era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const long long yy = static_cast<long long>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    y = static_cast<int>(yy + (m <= 2));
}

constexpr long long kSerialEpochDays = -25569; // 1899-12-30 relative to 1970-01-01

const char* const kMonthNames[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};
const char* const kDayNames[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                 "Thursday", "Friday", "Saturday"};

} // namespace

double SerialFromParts(const DateTimeParts& p) {
    long long month0 = p.month - 1;
    long long year = p.year + (month0 >= 0 ? month0 / 12 : (month0 - 11) / 12);
    month0 = ((month0 % 12) + 12) % 12;
    long long days =
        DaysFromCivil(year, static_cast<unsigned>(month0 + 1), 1) + (p.day - 1) - kSerialEpochDays;
    double seconds = p.hour * 3600.0 + p.minute * 60.0 + p.second;
    return static_cast<double>(days) + seconds / 86400.0;
}

DateTimeParts PartsFromSerial(double serial) {
    long long totalSeconds = std::llround(serial * 86400.0);
    long long days = totalSeconds >= 0 ? totalSeconds / 86400 : -((-totalSeconds + 86399) / 86400);
    long long secs = totalSeconds - days * 86400;
    DateTimeParts p;
    CivilFromDays(days + kSerialEpochDays, p.year, p.month, p.day);
    p.hour = static_cast<int>(secs / 3600);
    p.minute = static_cast<int>((secs % 3600) / 60);
    p.second = static_cast<int>(secs % 60);
    return p;
}

double NowSerial() {
    std::time_t t = std::time(nullptr);
    std::tm local{};
    localtime_r(&t, &local);
    return SerialFromParts({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                            local.tm_min, local.tm_sec});
}

std::string FormatSerial(double serial, std::string_view pattern) {
    DateTimeParts p = PartsFromSerial(serial);
    char buf[48];
    if (pattern == "mm-dd-yyyy  Hh:Nn:Ss")
        std::snprintf(buf, sizeof buf, "%02d-%02d-%04d  %02d:%02d:%02d", p.month, p.day, p.year,
                      p.hour, p.minute, p.second);
    else if (pattern == "yyyymmdd")
        std::snprintf(buf, sizeof buf, "%04d%02d%02d", p.year, p.month, p.day);
    else if (pattern == "HhNnSs")
        std::snprintf(buf, sizeof buf, "%02d%02d%02d", p.hour, p.minute, p.second);
    else if (pattern == "iso")
        std::snprintf(buf, sizeof buf, "%04d-%02d-%02dT%02d:%02d:%02d", p.year, p.month, p.day,
                      p.hour, p.minute, p.second);
    else
        throw std::invalid_argument("unsupported date pattern: " + std::string(pattern));
    return buf;
}

std::string LongDateText(double serial) {
    DateTimeParts p = PartsFromSerial(serial);
    long long days = static_cast<long long>(std::floor(serial));
    int weekday = static_cast<int>(((days - 1) % 7 + 7) % 7); // serial 1 (1899-12-31) is a Sunday
    char buf[64];
    std::snprintf(buf, sizeof buf, "%s, %s %d, %04d", kDayNames[weekday], kMonthNames[p.month - 1],
                  p.day, p.year);
    return buf;
}

std::string LongTimeText(double serial) {
    DateTimeParts p = PartsFromSerial(serial);
    int h12 = p.hour % 12 == 0 ? 12 : p.hour % 12;
    char buf[32];
    std::snprintf(buf, sizeof buf, "%d:%02d:%02d %s", h12, p.minute, p.second,
                  p.hour < 12 ? "AM" : "PM");
    return buf;
}

} // namespace vexo
