#include "spectrum/CalibrationSolver.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "base/CPrivateINI.h"
#include "base/CPrivateINIBatch.h"
#include "base/FileBytes.h"
#include "base/NumberText.h"
#include "base/Rounding.h"
#include "base/TextTrim.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

// A double whose every arithmetic result is checked, so an overflow or invalid result
// anywhere inside a formula is raised as FloatingPointError instead of travelling on as
// infinity or NaN.
struct Fp {
    double v;
};
Fp operator+(Fp a, Fp b) {
    return {CheckFinite(a.v + b.v)};
}
Fp operator-(Fp a, Fp b) {
    return {CheckFinite(a.v - b.v)};
}
Fp operator*(Fp a, Fp b) {
    return {CheckFinite(a.v * b.v)};
}
Fp operator/(Fp a, Fp b) {
    return {CheckFinite(a.v / b.v)};
}

struct CalibrationPoint {
    int16_t channel;
    double energyKeV;
};

std::vector<CalibrationPoint> CollectPoints(const std::array<CalibrationRowText, 3>& rows) {
    std::vector<CalibrationPoint> points;
    for (const auto& row : rows) {
        // A row that does not convert simply does not count; the dialog says nothing.
        auto channel = StrictInt16(row.channel);
        auto energy = StrictDouble(row.energy);
        if (channel && energy)
            points.push_back({*channel, *energy});
    }
    return points;
}

// Fits the candidate through the points, or returns the message that refuses to.
std::optional<std::string> FitPoints(const std::vector<CalibrationPoint>& p,
                                     EnergyCalibration& cal) {
    switch (p.size()) {
    case 1:
        if (p[0].channel == 0)
            return "Channel value cannot be zero for a single-point calibration";
        cal.dOffset = 0.0;
        cal.dSlope = p[0].energyKeV / p[0].channel;
        cal.dQuad = 0.0;
        return std::nullopt;
    case 2:
        if (p[0].channel == p[1].channel)
            return "Channel values must be different";
        if (p[0].energyKeV == p[1].energyKeV)
            return "Energy values must be different";
        FitLine(p[0].channel, p[0].energyKeV, p[1].channel, p[1].energyKeV, cal);
        return std::nullopt;
    case 3:
        if (p[0].channel == p[1].channel || p[0].channel == p[2].channel ||
            p[1].channel == p[2].channel)
            return "All channel values must be different";
        if (p[0].energyKeV == p[1].energyKeV || p[0].energyKeV == p[2].energyKeV ||
            p[1].energyKeV == p[2].energyKeV)
            return "All energy values must be different";
        FitParabola(p[0].channel, p[0].energyKeV, p[1].channel, p[1].energyKeV, p[2].channel,
                    p[2].energyKeV, cal);
        return std::nullopt;
    default: // no point: nothing to fit
        return std::nullopt;
    }
}

} // namespace

void FitLine(double x0, double y0, double x1, double y1, EnergyCalibration& cal) {
    Fp dx = Fp{x1} - Fp{x0};
    if (dx.v == 0.0)
        return;
    Fp slope = (Fp{y1} - Fp{y0}) / dx;
    // The offset comes from the point with the larger channel.
    Fp offset = x1 > x0 ? Fp{y1} - slope * Fp{x1} : Fp{y0} - slope * Fp{x0};
    cal.dQuad = 0.0;
    cal.dSlope = slope.v;
    cal.dOffset = offset.v;
}

void FitParabola(double x0, double y0, double x1, double y1, double x2, double y2,
                 EnergyCalibration& cal) {
    Fp X0{x0}, Y0{y0}, X1{x1}, Y1{y1}, X2{x2}, Y2{y2};
    Fp d = (X0 - X1) * (X0 - X2) * (X1 - X2);
    if (d.v == 0.0)
        return;
    Fp quad = ((Y1 - Y0) * X2 + (Y0 - Y2) * X1 + (Y2 - Y1) * X0) / d;
    Fp slope = (X0 * X0 * (Y1 - Y2) + (Y0 - Y1) * (X2 * X2) + X1 * X1 * (Y2 - Y0)) / d;
    Fp offset = (((X2 - X0) * X0 * Y1 + (X1 - X2) * X1 * Y0) * X2 + (X0 - X1) * X0 * X1 * Y2) / d;
    cal.dQuad = quad.v;
    cal.dSlope = slope.v;
    cal.dOffset = offset.v;
}

CalibrationCompute Compute(const std::array<CalibrationRowText, 3>& rows,
                           const EnergyCalibration& previous, Messages& messages) {
    CalibrationCompute result;
    result.cal = previous;
    std::vector<CalibrationPoint> points = CollectPoints(rows);
    EnergyCalibration candidate = previous;
    std::optional<std::string> refusal;
    try {
        refusal = FitPoints(points, candidate);
    } catch (const FloatingPointError& e) {
        refusal = e.what(); // huge typed energies: say so rather than show infinity
    }
    if (refusal)
        messages.critical(*refusal); // the coefficients stay as they were
    else
        result.cal = candidate;
    result.lblOffset = FormatNumber(result.cal.dOffset, "0.000");
    result.lblSlope = FormatNumber(result.cal.dSlope, "0.000");
    result.lblQuadratic = FormatNumber(result.cal.dQuad, "0.000");
    result.computed = true;
    return result;
}

std::string AcceptQuestionText(const EnergyCalibration& cal) {
    return "Energy calibration successfully done.\r\n"
           "Offset = " +
           FormatNumber(cal.dOffset, "0.0000") +
           " keV\r\n"
           "Slope = " +
           FormatNumber(cal.dSlope, "0.0000") +
           " keV/chn\r\n"
           "Quadratic = " +
           FormatNumber(cal.dQuad, "0.0000") +
           " keV/chn^2\r\n"
           "Accept this calibration?";
}

bool AskAcceptCalibration(const EnergyCalibration& cal, Messages& messages) {
    return messages.askYesNo(AcceptQuestionText(cal), kAcceptTitle);
}

namespace {

// A line of the library as the energy lists use it.
struct LibraryLine {
    std::string section;
    std::string en;
    std::string name;
    std::string intensity;
};

std::vector<LibraryLine> ReadLibraryLines(const std::filesystem::path& libraryPath,
                                          Messages& messages) {
    std::vector<LibraryLine> lines;
    const char* kText = "Could not load nuclide library information";
    const char* kTitle = "Load Nuclide info";
    if (!CanOpen(libraryPath)) {
        messages.critical(kText, kTitle);
        return lines;
    }
    try {
        CPrivateINI named;
        named.setINIFile(libraryPath.string());
        CPrivateINIBatch ini(named); // one read of the file, not one per line
        std::vector<std::string> sections = ini.GetSections();
        // The first section is the file's header ("Info"); the lines follow it.
        for (std::size_t i = 1; i < sections.size(); ++i)
            lines.push_back({sections[i], ini.GetValue(sections[i], "En", ""),
                             ini.GetValue(sections[i], "NucName", ""),
                             ini.GetValue(sections[i], "Int", "")});
    } catch (const NumberedError&) {
        // Raised only for an unusable file name: the same failure as a missing file.
        lines.clear();
        messages.critical(kText, kTitle);
    }
    return lines;
}

std::string ListItem(const LibraryLine& line) {
    return line.en + " (" + line.section + ")";
}

EnergyListChoice ChoiceOf(const LibraryLine& line) {
    const std::string item = ListItem(line);
    const std::optional<double> energy = StrictDouble(line.en);
    if (!energy)
        return {item, EnergyFromListItem(item), std::numeric_limits<double>::infinity()};
    const std::string_view name = TrimBlanks(line.name);
    std::string label = (name.empty() ? line.section : std::string(name)) + " " +
                        FormatNumber(*energy, "0.00") + " keV";
    if (const std::optional<double> percent = StrictDouble(line.intensity))
        label += " (" + FormatNumber(*percent, "0.0") + " %)";
    return {label, EnergyFromListItem(item), *energy};
}

// Why one row does not count; empty when it counts or holds nothing.
std::string RowProblem(const CalibrationRowText& row) {
    const bool noChannel = TrimBlanks(row.channel).empty();
    const bool noEnergy = TrimBlanks(row.energy).empty();
    if (noChannel && noEnergy)
        return {};
    if (noChannel)
        return "no channel";
    if (!StrictDouble(row.channel))
        return "the channel is not a number";
    if (!StrictInt16(row.channel))
        return "the channel is outside -32768 to 32767";
    if (noEnergy)
        return "no energy";
    if (!StrictDouble(row.energy))
        return "the energy is not a number";
    return {};
}

} // namespace

std::vector<std::string> EnergyListEntries(const std::filesystem::path& libraryPath,
                                           Messages& messages) {
    std::vector<std::string> items;
    for (const LibraryLine& line : ReadLibraryLines(libraryPath, messages))
        items.push_back(ListItem(line));
    return items;
}

std::string EnergyFromListItem(const std::string& item) {
    return item.substr(0, item.find('('));
}

std::vector<EnergyListChoice> EnergyListChoices(const std::filesystem::path& libraryPath,
                                                Messages& messages) {
    std::vector<EnergyListChoice> choices;
    for (const LibraryLine& line : ReadLibraryLines(libraryPath, messages))
        choices.push_back(ChoiceOf(line));
    std::stable_sort(choices.begin(), choices.end(),
                     [](const EnergyListChoice& a, const EnergyListChoice& b) {
                         return a.energyKeV < b.energyKeV;
                     });
    return choices;
}

std::string RowProblemText(const std::array<CalibrationRowText, 3>& rows) {
    std::string text;
    const char names[3] = {'A', 'B', 'C'};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::string problem = RowProblem(rows[i]);
        if (problem.empty())
            continue;
        if (!text.empty())
            text += "\n";
        text += std::string("Point ") + names[i] + " does not count: " + problem;
    }
    return text;
}

} // namespace vexo
