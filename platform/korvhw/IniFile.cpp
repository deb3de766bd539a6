#include "IniFile.h"

#include <cctype>
#include <charconv>
#include <cmath>

namespace korvsim {

bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

namespace {

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

} // namespace

std::string Trim(std::string_view text) {
    size_t first = 0, last = text.size();
    while (first < last && std::isspace(static_cast<unsigned char>(text[first])))
        ++first;
    while (last > first && std::isspace(static_cast<unsigned char>(text[last - 1])))
        --last;
    return std::string(text.substr(first, last - first));
}

std::optional<double> ParseDouble(std::string_view text) {
    const std::string t = Trim(text);
    if (t.empty())
        return std::nullopt;
    double value = 0.0;
    const char* begin = t.data();
    if (*begin == '+')
        ++begin;
    auto [end, ec] = std::from_chars(begin, t.data() + t.size(), value);
    if (ec != std::errc() || end != t.data() + t.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<long long> ParseInteger(std::string_view text) {
    const std::string t = Trim(text);
    if (t.empty())
        return std::nullopt;
    long long value = 0;
    const char* begin = t.data();
    if (*begin == '+')
        ++begin;
    int base = 10;
    if (t.size() > 2 && t[0] == '0' && (t[1] == 'x' || t[1] == 'X')) {
        begin += 2;
        base = 16;
    }
    auto [end, ec] = std::from_chars(begin, t.data() + t.size(), value, base);
    if (ec != std::errc() || end != t.data() + t.size())
        return std::nullopt;
    return value;
}

std::vector<std::string> SplitList(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    size_t start = 0;
    while (start <= text.size()) {
        size_t stop = text.find(separator, start);
        if (stop == std::string_view::npos)
            stop = text.size();
        std::string piece = Trim(text.substr(start, stop - start));
        if (!piece.empty())
            pieces.push_back(std::move(piece));
        start = stop + 1;
    }
    return pieces;
}

IniFile IniFile::Parse(std::string_view text) {
    IniFile ini;
    // Keys before any section header belong to an unnamed section.
    ini.m_sections.push_back(IniSection{});
    size_t pos = 0;
    int lineNo = 0;
    while (pos < text.size()) {
        size_t end = text.find('\n', pos);
        if (end == std::string_view::npos)
            end = text.size();
        ++lineNo;
        const std::string line = Trim(text.substr(pos, end - pos));
        pos = end + 1;
        if (line.empty() || line[0] == ';' || line[0] == '#')
            continue;
        if (line.front() == '[' && line.back() == ']') {
            ini.m_sections.push_back(IniSection{Trim(line.substr(1, line.size() - 2)), {}});
            continue;
        }
        const size_t eq = line.find('=');
        if (eq == std::string::npos || eq == 0) {
            ini.m_problems.push_back("line " + std::to_string(lineNo) + ": '" + line + "'");
            continue;
        }
        ini.m_sections.back().entries.push_back(
            {Trim(line.substr(0, eq)), Trim(line.substr(eq + 1))});
    }
    for (size_t i = 0; i < ini.m_sections.size(); ++i)
        ini.m_index.emplace(LowerCase(ini.m_sections[i].name), i); // the first one wins
    return ini;
}

const IniSection* IniFile::find(std::string_view section) const {
    const auto it = m_index.find(LowerCase(section));
    return it == m_index.end() ? nullptr : &m_sections[it->second];
}

std::optional<std::string> IniFile::get(std::string_view section, std::string_view key) const {
    const IniSection* s = find(section);
    if (!s)
        return std::nullopt;
    // The last occurrence wins, as an edited file is usually read.
    for (auto it = s->entries.rbegin(); it != s->entries.rend(); ++it)
        if (EqualsNoCase(it->key, key))
            return it->value;
    return std::nullopt;
}

} // namespace korvsim
