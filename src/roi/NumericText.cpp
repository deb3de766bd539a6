#include "roi/NumericText.h"

#include <cmath>
#include <limits>
#include <optional>

#include "shell/NumberFormat.h"
#include "shell/Rounding.h"
#include "spectrum/NumberParse.h"

namespace vexo {
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

std::string FormatAuto(double value) {
    const double a = std::fabs(CheckFinite(value));
    if (a < 9999.0)
        return FormatNumber(value, "###0.00");
    if (a < 99999.0)
        return FormatNumber(value, "#####.0");
    return FormatNumber(value, "0.00E+##");
}

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
