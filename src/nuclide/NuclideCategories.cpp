#include "nuclide/NuclideCategories.h"

#include "base/AppDir.h"
#include "base/CPrivateINI.h"
#include "base/CPrivateINIBatch.h"
#include "base/FieldSearch.h"
#include "base/Messages.h"

namespace vexo {

std::string CategoriesFilePath(const std::filesystem::path& appDir) {
    return WithTrailingSeparator(appDir) + kCategoriesFile;
}

int LoadCategories(const std::filesystem::path& appDir, CategoryList& list, Messages& messages) {
    const std::string path = CategoriesFilePath(appDir);
    list.clear();
    std::error_code ec;
    // "FileId=Vexo Nuclide Categories File" contains the shorter form, so one search
    // accepts both.
    if (!std::filesystem::exists(path, ec) ||
        !FileHasFieldContaining(path, "Vexo Nuclide Categories File")) {
        messages.exclamation("Error opening file: " + path);
        return -1;
    }
    CPrivateINI named;
    named.setINIFile(path);
    CPrivateINIBatch ini(named); // one read of the file for every key
    const std::vector<std::string> sections = ini.GetSections();
    list.resize(sections.empty() ? 1 : sections.size());
    for (std::size_t k = 1; k < sections.size(); ++k) {
        NuclideCategory& c = list[k];
        c.name = sections[k];
        c.SubCategory = ini.GetValue(c.name, "SubCategory", "NA");
        c.CatColor = ini.GetLongValue(c.name, "CatColor", 0);
        c.IsThread = ini.GetLongValue(c.name, "IsThread", 0) != 0;
    }
    return static_cast<int>(list.size()) - 1;
}

int SaveCategories(const std::filesystem::path& appDir, const CategoryList& list,
                   Messages& messages) {
    const std::string path = CategoriesFilePath(appDir);
    std::error_code ec;
    if (!std::filesystem::exists(path, ec) || list.size() < 2) {
        messages.exclamation("Error saving file: " + path);
        return 0;
    }
    CPrivateINI ini;
    ini.setINIFile(path);
    CPrivateINIBatch batch(ini);
    for (std::size_t k = 1; k < list.size(); ++k) {
        const NuclideCategory& c = list[k];
        batch.PutValue(c.name, "SubCategory", c.SubCategory);
        batch.PutLongValue(c.name, "CatColor", c.CatColor);
        batch.PutLongValue(c.name, "IsThread", c.IsThread ? -1 : 0);
    }
    if (!batch.Commit().ok) {
        messages.exclamation("Error saving file: " + path);
        return 0;
    }
    return static_cast<int>(list.size()) - 1;
}

} // namespace vexo
