#pragma once
// Blanks cut from both ends of a text.
#include <string_view>

namespace vexo {

// What a person may type around a value: spaces and tabs.
inline constexpr std::string_view kBlanks = " \t";

// `text` without any of the characters of `blanks` at its start and end (empty when it
// holds nothing else); a view into `text`.
constexpr std::string_view TrimBlanks(std::string_view text, std::string_view blanks = kBlanks) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace vexo
