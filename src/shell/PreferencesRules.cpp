#include "shell/PreferencesRules.h"

#include <algorithm>
#include <filesystem>

#include "base/TextTrim.h"

namespace vexo {

std::string DefaultLibraryAfterOk(std::string_view boxText, const std::string& current) {
    const std::string_view trimmed = TrimBlanks(boxText);
    std::string candidate = trimmed.empty() ? "none" : std::string(trimmed);
    std::error_code ec;
    return std::filesystem::is_regular_file(candidate, ec) ? candidate : current;
}

int GraphTypeFromListIndex(int index) {
    return std::clamp(index, 0, 2) + 1;
}

int ListIndexFromGraphType(int graphType) {
    return std::clamp(graphType, 1, 3) - 1;
}

} // namespace vexo
