#pragma once
// The calibration dialog's logic without the window: fitting a line or parabola through
// (channel, energy) points, turning the dialog's three rows into a new candidate
// calibration, the acceptance question, and the energy lists filled from a nuclide
// library. Fits use 64-bit floating point; x is the channel, y the energy in keV.
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "base/Messages.h"
#include "spectrum/EnergyCalibration.h"

namespace vexo {

// Line through (x0, y0) and (x1, y1): quadratic term 0, slope, and the offset taken from
// the point with the larger channel. Equal channels leave `cal` untouched. Throws
// FloatingPointError on an overflow or invalid result, leaving `cal` untouched.
// bCalibrated is not changed.
void FitLine(double x0, double y0, double x1, double y1, EnergyCalibration& cal);

// Parabola through three points. Coincident channels (zero determinant) leave `cal`
// untouched. Throws FloatingPointError on an overflow or invalid result, leaving `cal`
// untouched. bCalibrated is not changed.
void FitParabola(double x0, double y0, double x1, double y1, double x2, double y2,
                 EnergyCalibration& cal);

// One row of the dialog as the user typed it.
struct CalibrationRowText {
    std::string channel; // txtChA / txtChB / txtChC
    std::string energy;  // cmbEnA / cmbEnB / cmbEnC, keV
};

struct CalibrationCompute {
    bool computed = false;    // the dialog's computed flag after Compute
    EnergyCalibration cal;    // the candidate: new coefficients, or the previous ones
    std::string lblOffset;    // "0.000"
    std::string lblSlope;     // "0.000"
    std::string lblQuadratic; // "0.000"
};

// The dialog's Compute. A row counts when its channel text is a number that rounds into
// 16 bits and its energy text is a number; valid rows are packed in row order (A, B, C).
// One point gives a line through the origin, two a line, three a parabola; coincident
// channels or energies (and a single point at channel 0) show their critical message,
// titled "Vexo", and keep `previous`'s coefficients. A fit that overflows shows the
// error's text the same way. Labels are always filled and `computed` is always set at
// the end, as the dialog does after a message too; bCalibrated is carried over from
// `previous` (accepting the candidate sets it).
CalibrationCompute Compute(const std::array<CalibrationRowText, 3>& rows,
                           const EnergyCalibration& previous, Messages& messages);

inline constexpr const char* kAcceptTitle = "Energy calibration results";

// The five lines of the acceptance question joined by CR LF, coefficients as "0.0000".
std::string AcceptQuestionText(const EnergyCalibration& cal);

// Asks the acceptance question (Yes/No, titled kAcceptTitle); true on Yes.
bool AskAcceptCalibration(const EnergyCalibration& cal, Messages& messages);

// Items for the three energy lists: for every section after the file's first one, the
// "En" value + " (" + section name + ")". A missing or unreadable file shows the critical
// message "Could not load nuclide library information" titled "Load Nuclide info" and
// gives no items; a file with only its header section gives none and no message.
std::vector<std::string> EnergyListEntries(const std::filesystem::path& libraryPath,
                                           Messages& messages);

// What a chosen list item leaves in the energy box: the text before the first "(",
// or the whole text when it has none.
std::string EnergyFromListItem(const std::string& item);

// One line of the energy lists as the dialog shows it.
struct EnergyListChoice {
    std::string label; // "Cs-137 661.66 keV (85.1 %)"
    std::string value; // what choosing it leaves in the box: EnergyFromListItem of the item
    double energyKeV;  // the "En" value; infinity when it is not one number
};

// The lines of EnergyListEntries (same file, same messages), labelled with the nuclide
// ("NucName", else the section name), the energy ("0.00" keV) and, when the line has
// one, its intensity ("Int", "0.0" %), and sorted by energy. A line whose "En" is not
// one number keeps the item text as its label and goes last.
std::vector<EnergyListChoice> EnergyListChoices(const std::filesystem::path& libraryPath,
                                                Messages& messages);

// Why rows that hold something do not count as points, one line per row:
// "Point B does not count: no energy". Empty rows and rows that count give nothing.
std::string RowProblemText(const std::array<CalibrationRowText, 3>& rows);

} // namespace vexo
