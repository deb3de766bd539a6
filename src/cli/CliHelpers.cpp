#include "CliHelpers.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "CliCommand.h"
#include "base/NumberText.h"

namespace vexo::cli {

const std::string& ArgCursor::value(const std::string& name) {
    if (done())
        throw UsageError{name + " needs a value"};
    return next();
}

void ParseArgs(const std::vector<std::string>& args, const ArgTaker& take,
               const std::string& unknown) {
    ArgCursor cursor(args);
    while (!cursor.done()) {
        const std::string& arg = cursor.next();
        if (!take(arg, cursor))
            throw UsageError{unknown + " " + arg};
    }
}

std::string ParseArgsAndFile(const std::vector<std::string>& args, const ArgTaker& take) {
    std::string file;
    auto takeOrFile = [&](const std::string& arg, ArgCursor& cursor) {
        if (take(arg, cursor))
            return true;
        if (!arg.empty() && arg[0] == '-')
            return false;
        if (!file.empty())
            throw UsageError{"only one FILE may be given"};
        file = arg;
        return true;
    };
    ParseArgs(args, takeOrFile, "unknown option");
    if (file.empty())
        throw UsageError{"FILE is required"};
    return file;
}

double NumberArg(const std::string& text, const std::string& what) {
    auto value = StrictDouble(text);
    if (!value)
        throw UsageError{what + " is not a number: '" + text + "'"};
    return *value;
}

int32_t IntegerArg(const std::string& text, const std::string& what) {
    double value = NumberArg(text, what);
    if (value != std::floor(value) || value < -2147483648.0 || value > 2147483647.0)
        throw UsageError{what + " is not a 32-bit integer: '" + text + "'"};
    return static_cast<int32_t>(value);
}

std::vector<std::string> SplitArg(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        std::size_t cut = text.find(separator, start);
        parts.push_back(text.substr(start, cut - start));
        if (cut == std::string::npos)
            return parts;
        start = cut + 1;
    }
}

std::vector<std::string> SplitArg(const std::string& text, char separator, std::size_t count,
                                  const std::string& message) {
    std::vector<std::string> parts = SplitArg(text, separator);
    if (parts.size() != count)
        throw UsageError{message};
    return parts;
}

clsROI RoiFromArg(const std::string& text) {
    std::vector<std::string> parts = SplitArg(text, ':', 2, "--roi needs L:R, got '" + text + "'");
    clsROI roi;
    roi.set_lROILCh(IntegerArg(parts[0], "--roi L"));
    roi.set_lROIRCh(IntegerArg(parts[1], "--roi R"));
    roi.set_vntID(text);
    return roi;
}

nlohmann::ordered_json JsonSingle(float value) {
    if (!std::isfinite(value))
        return nullptr;
    // The shortest text reads back as the same float; as a double it is the short
    // decimal the user expects to see.
    std::string text = ShortestSingleText(value);
    double shortest = value;
    std::from_chars(text.data(), text.data() + text.size(), shortest);
    return shortest;
}

nlohmann::ordered_json JsonDouble(double value) {
    if (!std::isfinite(value))
        return nullptr;
    return value;
}

void PrintJson(const nlohmann::ordered_json& json) {
    std::printf("%s\n", json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

OpenedSpectrum OpenForCli(const std::string& path) {
    OpenedSpectrum opened;
    opened.doc = std::make_unique<SpectrumDocument>();
    opened.result = OpenSpectrumWithRois(*opened.doc, opened.rois, path);
    if (!opened.result.opened)
        throw Failure{"cannot read " + path + ": " + opened.result.error};
    // A file that starts as a full spectrum file is one: read as plain counts it would
    // lose its times, calibration and ROIs, so its own reader's complaint is the error.
    if (opened.result.fullHeader && !opened.result.full)
        throw Failure{"reading " + path +
                      " as a full spectrum file failed: " + opened.result.fullError};
    if (!opened.result.error.empty())
        throw Failure{"reading " + path + " as plain counts stopped: " + opened.result.error};
    return opened;
}

int64_t ChannelSum(const SpectrumDocument& doc) {
    int64_t sum = 0;
    for (int32_t i = 0; i < doc.lChannels && i < static_cast<int32_t>(COUNTS_SLOTS); ++i)
        sum += doc.lCounts[static_cast<std::size_t>(i)];
    return sum;
}

} // namespace vexo::cli
