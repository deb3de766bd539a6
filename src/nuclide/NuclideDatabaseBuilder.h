#pragma once
// Builds the nuclide database (see NuclideDatabase.h) from a folder of LARA files of
// evaluated decay data (DDEP / LNE-LNHB): every "*.lara.txt" file, every emission line
// whose radiation type the library's table can express. Lines that a file lists for a
// decay product in a block of its own ("Parent" column naming another nuclide) are left
// to that nuclide's own file.
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace vexo {

struct NuclideDatabaseBuild {
    bool ok = false;
    std::size_t nuclides = 0;
    std::size_t lines = 0;
    std::vector<std::string> skipped; // "FILE: reason" for files or lines left out
    std::string error;                // why ok is false
};

// Replaces `out` with a fresh database built from every LARA file of `laraDir`, in order
// of atomic number, mass number and energy, so the same data always give the same rows.
// Fails when the folder holds no LARA file, a file cannot be parsed or the database
// cannot be written; `out` is then removed.
NuclideDatabaseBuild BuildNuclideDatabase(const std::filesystem::path& laraDir,
                                          const std::filesystem::path& out);

} // namespace vexo
