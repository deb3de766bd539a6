#pragma once
// Identification lines of INI-shaped files are found by reading the file as text, field
// by field (a field ends at a comma or a line end), until a field contains the wanted
// text, compared without regard to letter case.
#include <filesystem>
#include <string_view>

namespace vexo {

// True when a field of the file contains `needle` (ASCII letters compared without regard
// to case). False for a missing or unreadable file. Reads the file in pieces, so its size
// costs no memory.
bool FileHasFieldContaining(const std::filesystem::path& path, std::string_view needle);

} // namespace vexo
