#include "shell/PreferencesRules.h"

#include <algorithm>
#include <filesystem>

namespace vexo {

std::string DefaultLibraryAfterOk(std::string_view boxText, const std::string& current) {
    const auto first = boxText.find_first_not_of(" \t");
    const auto last = boxText.find_last_not_of(" \t");
    std::string candidate = first == std::string_view::npos
                                ? "none"
                                : std::string(boxText.substr(first, last - first + 1));
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
