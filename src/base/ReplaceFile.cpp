#include "base/ReplaceFile.h"

#include <system_error>

namespace vexo {

std::filesystem::path TempFileFor(const std::filesystem::path& file) {
    return file.parent_path() / ("." + file.filename().string() + ".tmp");
}

bool ReplaceFileWith(const std::filesystem::path& temp, const std::filesystem::path& file,
                     std::string* error) {
    std::error_code ec;
    std::filesystem::rename(temp, file, ec);
    if (!ec)
        return true;
    if (error)
        *error = ec.message();
    DiscardTempFile(temp);
    return false;
}

void DiscardTempFile(const std::filesystem::path& temp) {
    // Called only after a failure that is already being reported; a leftover temporary
    // file that cannot be removed either adds nothing the user could act on.
    std::error_code ignored;
    std::filesystem::remove(temp, ignored);
}

} // namespace vexo
