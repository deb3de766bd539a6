#pragma once
// A deliberately small INI reader for the simulator's own files (its configuration
// and the per-device settings it stores). Sections in [brackets], key=value lines,
// ';' or '#' starting a comment line; section and key names compare without case;
// CR LF and LF line ends both accepted. Values keep their text, trimmed.
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvsim {

struct IniEntry {
    std::string key;
    std::string value;
};

struct IniSection {
    std::string name;
    std::vector<IniEntry> entries;
};

class IniFile {
public:
    // Parses text; lines that are neither a section, a key=value pair, a comment nor
    // blank are collected in problems() (with their 1-based line numbers) and skipped.
    static IniFile Parse(std::string_view text);

    const std::vector<IniSection>& sections() const { return m_sections; }
    const IniSection* find(std::string_view section) const;
    std::optional<std::string> get(std::string_view section, std::string_view key) const;
    const std::vector<std::string>& problems() const { return m_problems; }

private:
    std::vector<IniSection> m_sections;
    std::vector<std::string> m_problems;
    // Lower-case name -> the first section of that name, so a file of thousands of
    // device sections reads in time proportional to its size.
    std::unordered_map<std::string, size_t> m_index;
};

bool EqualsNoCase(std::string_view a, std::string_view b);
std::string Trim(std::string_view text);
// Strict number parsing of a whole trimmed text ("." decimal point); nullopt otherwise.
std::optional<double> ParseDouble(std::string_view text);
std::optional<long long> ParseInteger(std::string_view text);
// Splits at a separator, trimming the pieces and dropping empty ones.
std::vector<std::string> SplitList(std::string_view text, char separator);

} // namespace korvsim
