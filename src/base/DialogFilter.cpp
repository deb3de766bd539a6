#include "base/DialogFilter.h"

#include <vector>

namespace vexo {

namespace {

std::vector<std::string> SplitPipes(std::string_view text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t bar = text.find('|', start);
        const std::size_t end = bar == std::string_view::npos ? text.size() : bar;
        parts.emplace_back(text.substr(start, end - start));
        if (bar == std::string_view::npos)
            break;
        start = bar + 1;
    }
    return parts;
}

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

} // namespace

std::string DialogFilterFromPipes(std::string_view pipes) {
    const std::vector<std::string> parts = SplitPipes(pipes);
    std::string out;
    for (std::size_t i = 0; i < parts.size(); i += 2) {
        const std::string& name = parts[i];
        std::string pattern = i + 1 < parts.size() ? parts[i + 1] : "";
        if (name.empty() && pattern.empty())
            continue;
        if (pattern.empty())
            pattern = "*";
        pattern = ReplaceAll(ReplaceAll(pattern, "*.*", "*"), ";", " ");
        std::string label = ReplaceAll(name, "(*.*)", "(*)");
        if (label.find('(') == std::string::npos)
            label += " (" + pattern + ")";
        if (!out.empty())
            out += ";;";
        out += label;
    }
    return out;
}

} // namespace vexo
