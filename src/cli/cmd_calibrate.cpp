// vexo-cli calibrate: the calibration dialog's Compute on up to three channel/energy
// points; prints the coefficients, or the dialog's message with exit status 1.
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "base/Messages.h"
#include "base/NumberText.h"
#include "spectrum/CalibrationSolver.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli calibrate --point CH:KEV [--point CH:KEV [--point CH:KEV]] [--json]\n"
    "\n"
    "Computes an energy calibration as the calibration dialog does: one point gives a\n"
    "line through the origin, two a line, three a parabola. CH is a channel (16-bit),\n"
    "KEV its energy in keV. Coincident points are refused with the dialog's message.\n"
    "  --json  print {bCalibrated, dOffset, dSlope, dQuad, lblOffset, lblSlope, lblQuadratic}";

struct Options {
    std::vector<CalibrationRowText> points;
    bool json = false;
};

CalibrationRowText PointFromArg(const std::string& text) {
    std::vector<std::string> parts =
        SplitArg(text, ':', 2, "--point needs CH:KEV, got '" + text + "'");
    // The dialog silently leaves out a row it cannot convert; on the command line that
    // would hide a typing error, so it is refused here with the same conversions.
    if (!StrictInt16(parts[0]))
        throw UsageError{"channel is not a 16-bit number: '" + parts[0] + "'"};
    if (!StrictDouble(parts[1]))
        throw UsageError{"energy is not a number: '" + parts[1] + "'"};
    return {parts[0], parts[1]};
}

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    ParseArgs(args, [&](const std::string& arg, ArgCursor& cursor) {
        if (arg == "--point")
            o.points.push_back(PointFromArg(cursor.value(arg)));
        else if (arg == "--json")
            o.json = true;
        else
            return false;
        return true;
    });
    if (o.points.empty() || o.points.size() > 3)
        throw UsageError{"give one to three --point CH:KEV"};
    return o;
}

int Run(const std::vector<std::string>& args) {
    const Options o = ParseOptions(args);
    std::array<CalibrationRowText, 3> rows{};
    for (std::size_t i = 0; i < o.points.size(); ++i)
        rows[i] = o.points[i];
    ScriptedMessages messages;
    CalibrationCompute result = Compute(rows, EnergyCalibration::Default(), messages);
    if (!messages.shown().empty())
        throw Failure{messages.shown().front().text};
    if (o.json) {
        PrintJson({{"bCalibrated", true},
                   {"dOffset", JsonDouble(result.cal.dOffset)},
                   {"dSlope", JsonDouble(result.cal.dSlope)},
                   {"dQuad", JsonDouble(result.cal.dQuad)},
                   {"lblOffset", result.lblOffset},
                   {"lblSlope", result.lblSlope},
                   {"lblQuadratic", result.lblQuadratic}});
    } else {
        // The coefficient lines of the dialog's acceptance question ("0.0000"), without
        // its first and last lines.
        const std::vector<std::string> lines = SplitArg(AcceptQuestionText(result.cal), '\n');
        for (std::size_t i = 1; i + 1 < lines.size(); ++i)
            std::printf("%s\n", lines[i].substr(0, lines[i].find('\r')).c_str());
    }
    return kExitOk;
}

const RegisterCommand kRegister("calibrate",
                                {"compute an energy calibration from points", kUsage, Run});

} // namespace
} // namespace vexo::cli
