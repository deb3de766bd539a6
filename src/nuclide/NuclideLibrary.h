#pragma once
// Nuclide library files (".nli"): INI files with an "Info" section that identifies them
// ("FileID" = "Vexo Nuclide Library") and one section per emission line, named
//   nuclide name + atomic number + ":" + energy (0.01 keV) + ":" + radiation text,
// e.g. "Co-6027:1173.23:G". Read and written through CPrivateINI, so the file keeps
// the INI rules (case-insensitive names, CR LF, Windows-1252).
#include <filesystem>
#include <string>
#include <vector>

#include "nuclide/clsNuclide.h"

namespace vexo {

inline constexpr const char* kLibraryInfoSection = "Info";
inline constexpr const char* kLibraryIdKey = "FileID";
inline constexpr const char* kLibraryIdValue = "Vexo Nuclide Library";

// True when the file holds the identification "FileId=Vexo Nuclide Library" (letter case
// ignored) inside one of its fields, a field ending at a comma or a line end. False for a
// missing or unreadable file. Reads the file in pieces, so size costs no memory.
bool IsNuclideLibrary(const std::filesystem::path& path);

// The section name of a line: name, atomic number, ":", the energy rounded to two
// decimals and written as the shortest text of that single value, ":", radiation text.
// 1173.228 keV gives "1173.23", 1173.2 keV gives "1173.2".
std::string LibrarySectionName(const clsNuclide& line);

// The shortest text that reads back as the same single value ("661.66", "30.018").
std::string LibraryNumberText(float value);

struct NuclideLibraryRead {
    bool ok = false;
    std::vector<clsNuclide> lines;     // in section order
    std::vector<std::string> warnings; // unknown unit or radiation texts, per section
    std::string error;                 // why ok is false
};

// Every section except the one named exactly "Info" becomes a line, read from the keys
// NucName, AtNo, HL, HLUnits, En, Int and RadID; a missing key reads as its default
// (empty text, 0). Numbers are the number their text begins with ("." decimal point;
// empty or non-numeric text gives 0). A unit or radiation text the tables do not know
// leaves the record's unit or radiation unset and adds a warning.
// ok is false, with `error` set, when the file does not exist or cannot be read, or a
// value is beyond the single-precision range; the file's identification is not
// checked (see IsNuclideLibrary).
NuclideLibraryRead ReadNuclideLibrary(const std::filesystem::path& path);

struct NuclideLibraryWrite {
    bool ok = false;
    std::string error;
};

// Writes the "Info" identification, then every line's section with its thirteen keys
// (NucName, AtNo, NucTypes "TYPE", NucDecayMode "DECAYMODE", NucDecayBranch "0.0", HL,
// DHL, HLUnits, En, DEn, Int, DInt, RadID). Sections already in the file are updated in
// place and others are kept, so a caller that wants exactly these lines removes the file
// first. Two lines with the same section name share it: the later one wins.
// The file is read once and written once (CPrivateINIBatch), with the bytes a PutValue
// per key would leave. ok is false, with `error` set, when the file cannot be read or
// written.
NuclideLibraryWrite WriteNuclideLibrary(const std::filesystem::path& path,
                                        const std::vector<clsNuclide>& lines);

// The same written as a new file that replaces whatever `path` holds, without reading
// it: each of `comments` as a line "; " + comment, then the library. One write, so a
// failing one (a full disk) ends at once with its error.
NuclideLibraryWrite ReplaceNuclideLibrary(const std::filesystem::path& path,
                                          const std::vector<clsNuclide>& lines,
                                          const std::vector<std::string>& comments);

} // namespace vexo
