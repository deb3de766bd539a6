#pragma once
// Helpers shared by the spectrum subcommands of vexo-cli (info, convert, energy, roi,
// calibrate): argument parsing, JSON numbers, and opening a spectrum as Open does.
#include <cstdint>
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
    // The value after option `name`; UsageError when there is none.
    const std::string& value(const std::string& name);

private:
    const std::vector<std::string>& m_args;
    std::size_t m_next = 0;
};

// The whole text as a number ("." decimal point); UsageError naming `what` otherwise.
double NumberArg(const std::string& text, const std::string& what);
// The whole text as a 32-bit integer; UsageError naming `what` otherwise.
int32_t IntegerArg(const std::string& text, const std::string& what);
// An ROI given as "L:R" (first and last channel, inclusive), with that text as its
// identifier; UsageError for anything else.
clsROI RoiFromArg(const std::string& text);
// Splits at every `separator` ("1,2,3" -> {"1","2","3"}; empty parts kept).
std::vector<std::string> SplitArg(const std::string& text, char separator);

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

// Opens `path` into a fresh document. Throws Failure when the file cannot be read, or
// when reading it as plain counts stopped at a bad value.
OpenedSpectrum OpenForCli(const std::string& path);

// Sum of counts 0..lChannels-1 (0 when lChannels < 1), in 64 bits.
int64_t ChannelSum(const SpectrumDocument& doc);

} // namespace vexo::cli
