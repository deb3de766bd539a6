#pragma once
// The nuclide editor's rules: the hidden text each line of its list carries, and how the
// collected lines are saved as a library.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "nuclide/clsNuclide.h"

namespace vexo {

class Messages;

// All values of a line joined by " : ": name, atomic number, half-life, unit text,
// energy, energy uncertainty, intensity, intensity uncertainty, radiation text and
// half-life uncertainty; numbers in their shortest single-precision form.
std::string EditorLineText(const clsNuclide& line);
// The line back from that text; missing or unreadable parts read as empty or 0.
clsNuclide EditorLineFromText(std::string_view text);

// The spaced identification a library must carry to be saved over; the writer itself
// writes "FileID=Vexo Nuclide Library", so a library the editor wrote never matches.
inline constexpr const char* kUpdatableLibraryId = "FileId = Vexo Nuclide Library";

enum class LibrarySave {
    Written,       // a new file was written
    Refused,       // an existing file without the spaced identification: reported
    LeftUntouched, // an existing file with it: nothing is written
    Failed,        // the new file could not be written: reported
};

// A new file is written with the library writer. An existing file is searched field by
// field for kUpdatableLibraryId (letter case ignored): without it the save is refused
// with "Error saving or updating nuclide library " + path (exclamation); with it the file
// is left as it is.
LibrarySave SaveEditorLibrary(const std::filesystem::path& path,
                              const std::vector<clsNuclide>& lines, Messages& messages);

} // namespace vexo
