#include "nuclide/clsNuclide.h"

#include <array>
#include <cctype>

#include "base/TextTrim.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

constexpr std::array<RadiationRow, kRadiationRows> kRadiationTable{{
    {"B+", BetaPlus},
    {"B+ TOTAL", BetaPlus},
    {"G ANH", Gamma},
    {"G", Gamma},
    {"E AU K", Electron},
    {"B-", BetaMinus},
    {"B- TOTAL", BetaMinus},
    {"X K", XRay},
    {"E CE K", Electron},
    {"E CE L", Electron},
    {"X KA1", XRay},
    {"E AU L", Electron},
    {"X KB", XRay},
    {"X KA2", XRay},
    {"X L", XRay},
    {"E CE M+", Electron},
    {"E CE M", Electron},
    {"E CE N+", Electron},
    {"A", Alpha},
}};

constexpr std::array<const char*, 10> kUnitTexts{"",     " psec", " nsec", " usec", " msec",
                                                 " sec", " min",  " hrs",  " days", " years"};

// Single-precision factors built the way they are defined: powers of a thousand below
// the second, 60 and 60 x 60 above it, then x 24 for days and x 365.24 for years.
struct UnitFactors {
    std::array<float, 10> f{};
    UnitFactors() {
        f[5] = 1.0f;
        f[4] = 1e-3f;
        f[3] = 1e-6f;
        f[2] = 1e-9f;
        f[1] = 1e-12f;
        f[6] = 60.0f;
        f[7] = f[6] * 60.0f;
        f[8] = f[7] * 24.0f;
        f[9] = f[8] * 365.24f;
    }
};
const UnitFactors kFactors;

bool EqualNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

} // namespace

std::optional<RadiationRow> RadiationTableRow(int row) {
    if (row < 0 || row >= kRadiationRows)
        return std::nullopt;
    return kRadiationTable[row];
}

std::optional<int> RadiationRowOfText(std::string_view text) {
    text = TrimBlanks(text);
    for (int row = 0; row < kRadiationRows; ++row)
        if (EqualNoCase(text, kRadiationTable[row].text))
            return row;
    return std::nullopt;
}

std::string RadiationCode(int row) {
    return std::string(1, static_cast<char>(64 + row));
}

const char* HalfLifeUnitText(int unit) {
    return (unit >= 1 && unit <= 9) ? kUnitTexts[unit] : "";
}

std::optional<int> HalfLifeUnitOfText(std::string_view text) {
    text = TrimBlanks(text);
    for (int unit = 1; unit <= 9; ++unit)
        if (EqualNoCase(text, TrimBlanks(kUnitTexts[unit])))
            return unit;
    return std::nullopt;
}

std::string UnitCode(int unit) {
    return std::string(1, static_cast<char>(unit));
}

float HalfLifeUnitFactor(int unit) {
    return (unit >= 1 && unit <= 9) ? kFactors.f[unit] : 0.0f;
}

double HalfLifeConversion(int from, int to) {
    float toFactor = HalfLifeUnitFactor(to);
    if (toFactor == 0.0f)
        throw FloatingPointError("Division by zero");
    return static_cast<double>(HalfLifeUnitFactor(from)) / static_cast<double>(toFactor);
}

bool clsNuclide::bSetRadType(std::string_view code) {
    if (code.empty())
        return false;
    int row = static_cast<unsigned char>(code.front()) & 31;
    if (row >= kRadiationRows)
        return false;
    m_decayRad = kRadiationTable[row].group;
    m_decayRadEx = kRadiationTable[row].text;
    return true;
}

bool clsNuclide::bSetHL(float halfLife, float halfLifeUnc, std::string_view unitCode) {
    m_halfLife = halfLife;
    sDHL = halfLifeUnc;
    if (unitCode.empty())
        return false;
    int unit = static_cast<unsigned char>(unitCode.front());
    if (unit < 1 || unit > 9)
        return false;
    m_units = unit;
    return true;
}

double clsNuclide::dGetHLSec() const {
    return static_cast<double>(m_halfLife) * HalfLifeConversion(m_units, Seconds);
}

} // namespace vexo
