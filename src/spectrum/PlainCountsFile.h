#pragma once
// The plain counts file (".dat", ".txt"): one count per line, nothing else.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "spectrum/SpectrumDocument.h"

namespace vexo {

// Writes channels 0 to lChannels - 1, one integer item (" 57 ") per line, CR LF.
// False with a description in `error` when the file cannot be written, or when
// lChannels is beyond the counts array (SubscriptError text); no message is shown.
bool SavePlainCounts(const SpectrumDocument& doc, const std::filesystem::path& path,
                     std::string* error = nullptr);

struct PlainReadResult {
    bool fileRead = false; // the file could be opened and read
    bool ok = false;       // read to the end or to the 16384th value without error
    int32_t channels = 0;  // values read into lCounts[0..channels-1]
    std::string error;     // why reading failed or stopped early
    // What the file held besides counts. Neither stops the reading; the window says so.
    int32_t textFields = 0;   // fields read that are not one number ("PHA", "12kg")
    bool binaryBytes = false; // control bytes other than tab, CR, LF and form feed
};

// Reads numbers as fields (blanks, commas or line ends between them; a field that does
// not start with a number reads as 0) into lCounts[0], lCounts[1], ... until 16384 values
// have been read or only blanks and line ends remain, and sets lChannels to the number
// read. Slots past it keep what they held. A value beyond the 32-bit range stops the
// reading there: lChannels = the values read before it, ok = false. When the file cannot
// be opened the document is left unchanged. Looks at no more than the first
// kMaxPlainFileBytes of a file.
PlainReadResult ReadPlainCounts(SpectrumDocument& doc, const std::filesystem::path& path);
PlainReadResult ParsePlainCounts(SpectrumDocument& doc, std::string_view bytes);

constexpr std::size_t kMaxPlainFileBytes = std::size_t{8} << 20;

// The passing notice after a plain read that met more than counts:
// "Read as plain counts: 350 values; the file holds text that is not counts" (or "binary
// data that is not counts"); empty for a clean file.
std::string PlainCountsNotice(const PlainReadResult& result);

} // namespace vexo
