#pragma once
// Replacing a file safely: the new content goes to a temporary file beside it, which is
// flushed to disk and then renamed over the old one, so at every moment the file is
// either the old one or the new one. A failed, interrupted or killed write never leaves
// a torn file in place of a good one.
#include <filesystem>
#include <string>

namespace vexo {

// The temporary file for `file`: in the same folder (a rename never crosses file
// systems), named "." + the file's name + ".tmp", so folder listings, file dialogs and
// patterns such as "*.SPE" pass over it. A leftover of an interrupted write is simply
// overwritten by the next write of the same file.
std::filesystem::path TempFileFor(const std::filesystem::path& file);

// Renames `temp` over `file`. On failure sets `error` to the system's description,
// removes `temp` and returns false; `file` is then as it was.
bool ReplaceFileWith(const std::filesystem::path& temp, const std::filesystem::path& file,
                     std::string* error);

// Removes a temporary file after its write failed (nothing happens when there is none).
void DiscardTempFile(const std::filesystem::path& temp);

} // namespace vexo
