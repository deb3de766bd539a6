#pragma once
// Nuclide categories, kept in "Vexo.nct" in the application directory: an INI file whose
// first section identifies it ("FileId=Vexo Nuclide Categories File", or a line with at
// least "Vexo Nuclide Categories File") and whose every following section is one
// category with the keys SubCategory, CatColor and IsThread.
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vexo {

class Messages;

inline constexpr const char* kCategoriesFile = "Vexo.nct";

struct NuclideCategory {
    std::string name; // the section name
    std::string SubCategory = "NA";
    int32_t CatColor = 0;  // red + 256 green + 65536 blue
    bool IsThread = false; // shown as "Threat"
};

// The list is indexed from 0; place 0 is never used, categories occupy places 1..N.
using CategoryList = std::vector<NuclideCategory>;

// The file's path as the program names it: the directory with its separator, "Vexo.nct".
std::string CategoriesFilePath(const std::filesystem::path& appDir);

// Fills `list` with places 0..(sections - 1) and returns the number of categories; the
// first section is skipped. A missing or unidentified file shows "Error opening file: " +
// path (exclamation) and returns -1, leaving `list` empty.
int LoadCategories(const std::filesystem::path& appDir, CategoryList& list, Messages& messages);

// Writes places 1..N (SubCategory, then CatColor, then IsThread as -1/0), read once and
// written once; sections of categories no longer in the list stay in the file. A missing
// file, a list without categories or a failed write shows "Error saving file: " + path
// (exclamation) and returns 0. Returns the number written.
int SaveCategories(const std::filesystem::path& appDir, const CategoryList& list,
                   Messages& messages);

} // namespace vexo
