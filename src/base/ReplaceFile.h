#pragma once
// Replacing a file safely: the new content goes to a temporary file beside it, which is
// then renamed over the old one, so a failed or interrupted write never leaves a torn
// file in place of a good one.
#include <filesystem>
#include <string>

namespace vexo {

// The temporary file for `file`: same folder, ".tmp" appended.
std::filesystem::path TempFileFor(const std::filesystem::path& file);

// Renames `temp` over `file`. On failure sets `error` to the system's description,
// removes `temp` and returns false; `file` is then as it was.
bool ReplaceFileWith(const std::filesystem::path& temp, const std::filesystem::path& file,
                     std::string* error);

// Removes a temporary file after its write failed (nothing happens when there is none).
void DiscardTempFile(const std::filesystem::path& temp);

} // namespace vexo
