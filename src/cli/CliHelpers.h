#pragma once
// Helpers shared by the subcommands of vexo-cli: argument parsing, JSON numbers, and
// opening a spectrum as Open does.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "roi/RoiCollection.h"
#include "spectrum/SpectrumCommands.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo::cli {

// Walks the argument list; options and their values are taken in order.
class ArgCursor {
public:
    explicit ArgCursor(const std::vector<std::string>& args) : m_args(args) {}
    bool done() const { return m_next >= m_args.size(); }
    const std::string& next() { return m_args[m_next++]; }
    // The value after option `name`; UsageError "NAME needs a value" when there is none.
    const std::string& value(const std::string& name);

private:
    const std::vector<std::string>& m_args;
    std::size_t m_next = 0;
};

// A command's own options: takes `arg` (and its value from the cursor, when it has one)
// and returns true, or returns false for an argument that is none of its options.
using ArgTaker = std::function<bool(const std::string& arg, ArgCursor& cursor)>;

// Hands every argument in turn to `take`. An argument it does not take is a UsageError
// `unknown` + " " + the argument ("unknown argument --x"); `take` throws its own
// UsageErrors for bad values.
void ParseArgs(const std::vector<std::string>& args, const ArgTaker& take,
               const std::string& unknown = "unknown argument");

// For commands that name one FILE: an argument `take` does not take is the FILE. UsageErrors:
// "unknown option ARG" for one that starts with '-', "only one FILE may be given" for a
// second FILE, and "FILE is required" when none (or only an empty one) was given.
// Returns the FILE.
std::string ParseArgsAndFile(const std::vector<std::string>& args, const ArgTaker& take);

// The whole text as a number ("." decimal point); UsageError naming `what` otherwise.
double NumberArg(const std::string& text, const std::string& what);
// The whole text as a 32-bit integer; UsageError naming `what` otherwise.
int32_t IntegerArg(const std::string& text, const std::string& what);
// An ROI given as "L:R" (first and last channel, inclusive), with that text as its
// identifier; UsageError for anything else.
clsROI RoiFromArg(const std::string& text);
// Splits at every `separator` ("1,2,3" -> {"1","2","3"}; empty parts kept).
std::vector<std::string> SplitArg(const std::string& text, char separator);
// SplitArg into exactly `count` parts; UsageError `message` for any other number.
std::vector<std::string> SplitArg(const std::string& text, char separator, std::size_t count,
                                  const std::string& message);

// A 32-bit float as the JSON number of its shortest decimal text (123.456f -> 123.456,
// not 123.45600128173828). Infinite or NaN values become null.
nlohmann::ordered_json JsonSingle(float value);
// A 64-bit float; infinite or NaN values become null.
nlohmann::ordered_json JsonDouble(double value);
// Prints the JSON with two-space indents and a final newline; text that is not valid
// UTF-8 is replaced rather than failing.
void PrintJson(const nlohmann::ordered_json& json);

// A spectrum opened as the File menu's Open does.
struct OpenedSpectrum {
    std::unique_ptr<SpectrumDocument> doc; // large: kept on the heap
    RoiCollection rois;
    OpenResult result;
};

// Opens `path` into a fresh document. Throws Failure when the file cannot be read, when
// it starts as a full spectrum file that the full reader cannot take (its reason), or
// when reading it as plain counts stopped at a bad value.
OpenedSpectrum OpenForCli(const std::string& path);

// Sum of counts 0..lChannels-1 (0 when lChannels < 1), in 64 bits.
int64_t ChannelSum(const SpectrumDocument& doc);

} // namespace vexo::cli
