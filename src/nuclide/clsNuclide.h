#pragma once
// One emission line of one nuclide: name, atomic number, radiation type, half-life with
// its unit, energy and intensity with their uncertainties.
//
// Radiation types and half-life units are set through one-character codes, the way
// library readers and the editor hand them over:
//   - radiation: the character's code AND 31 selects a row of the radiation table;
//     rows 0..18 exist (row 3, e.g. "C" or "#", is gamma "G"); RadiationCode(row)
//     gives a code for a row;
//   - half-life unit: the character's code itself is the unit number 1..9
//     (UnitCode(unit) gives it).
// A fresh record has no radiation text (group 0) and unit 0, "no unit", whose factor
// is 0, so its half-life in seconds is 0.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vexo {

// Radiation groups. Bit-like values, except beta+ which is 0.
enum DecayRadiation : int {
    BetaPlus = 0,
    BetaMinus = 1,
    Gamma = 2,
    XRay = 4,
    Electron = 8,
    Alpha = 16,
};

// Half-life units 1..9; 0 is "no unit".
enum HalfLifeUnit : int {
    NoUnit = 0,
    Picoseconds = 1,
    Nanoseconds = 2,
    Microseconds = 3,
    Milliseconds = 4,
    Seconds = 5,
    Minutes = 6,
    Hours = 7,
    Days = 8,
    Years = 9,
};

constexpr int kRadiationRows = 19;

// Text and group of a radiation-table row; std::nullopt outside 0..18.
struct RadiationRow {
    const char* text; // "B+", "G", "X KA1", ...
    DecayRadiation group;
};
std::optional<RadiationRow> RadiationTableRow(int row);
// The row whose text equals `text` (blanks around it and letter case ignored).
std::optional<int> RadiationRowOfText(std::string_view text);
// A one-character code that selects `row` (0..18): the character 64 + row ("@", "A".."R").
std::string RadiationCode(int row);

// Unit text with its leading blank (" psec" .. " years"); "" for unit 0 or out of range.
const char* HalfLifeUnitText(int unit);
// The unit whose text equals `text` once blanks around both are dropped ("years" and
// " years" both give 9; letter case ignored); std::nullopt when none does.
std::optional<int> HalfLifeUnitOfText(std::string_view text);
// The one-character unit code for bSetHL: the character whose code is `unit`.
std::string UnitCode(int unit);
// Seconds per unit as a single-precision factor; 0 for unit 0 or out of range.
float HalfLifeUnitFactor(int unit);
// Multiplier that turns a value in unit `from` into unit `to`: factor(from) / factor(to).
// Throws FloatingPointError when `to` has no factor (unit 0 or out of range).
double HalfLifeConversion(int from, int to);

class clsNuclide {
public:
    std::string szElemName; // the nuclide's name as shown, e.g. "Cs-137"

    DecayRadiation eDecayRad() const { return m_decayRad; }
    const std::string& szDecayRadEx() const { return m_decayRadEx; }

    float sDHL = 0.0f; // half-life uncertainty, in the half-life's unit

    int eUnits() const { return m_units; }

    int16_t nAtNum = 0;       // atomic number
    float sEnergy = 0.0f;     // keV
    float sDEnergy = 0.0f;    // keV
    float sIntensity = 0.0f;  // percent per decay
    float sDIntensity = 0.0f; // percent per decay

    // Sets group and text from the row chosen by (first character's code AND 31).
    // Rows 19..31 return false and change nothing. An empty code has no first
    // character: it also returns false and changes nothing.
    bool bSetRadType(std::string_view code);

    // Stores half-life and uncertainty, then the unit whose number is the code of the
    // first character. A code outside 1..9 (or an empty one) returns false and leaves
    // the unit unchanged; the two values are stored either way.
    bool bSetHL(float halfLife, float halfLifeUnc, std::string_view unitCode);

    // Half-life in seconds: the stored value times its unit's factor (0 with no unit).
    double dGetHLSec() const;

    float sHL() const { return m_halfLife; } // half-life, in eUnits()

private:
    DecayRadiation m_decayRad = BetaPlus;
    std::string m_decayRadEx;
    int m_units = NoUnit;
    float m_halfLife = 0.0f;
};

} // namespace vexo
