#pragma once
// Many writes to one INI file for the price of one: the file is read once, every write is
// applied in memory with exactly the rules of IniFile::writeString, and the result is
// written once. The bytes written are those that the same writes, each reading and
// rewriting the file, would leave (the tests prove it on randomised files).
//
// Sections and their keys are indexed, so a write costs about the same whatever the size
// of the file; a write that the index cannot follow exactly (a CR or LF inside a name or
// value, which splits the line when the file is read again, or a line that would read as
// a section header) goes through the engine itself. Strings are Windows-1252, as in
// IniFile.
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/IniFile.h"

namespace vexo {

class IniBatch {
public:
    explicit IniBatch(const IniFile& file = IniFile{});

    // IniFile::writeString: no key removes every section of that name, no value removes
    // the key, otherwise the key is set. Returns true when the text changed.
    bool writeString(std::string_view section, std::optional<std::string_view> key,
                     std::optional<std::string_view> value);

    // GetPrivateProfileString's list of section names (a section named "" is left out)
    // and GetPrivateProfileSection's entries of the first section of that name ("key=value",
    // or the key alone for a line without '='), read from the lines as they now stand.
    std::vector<std::string> sectionNames() const;
    std::vector<std::string> sectionEntries(std::string_view section);
    // The value (trimmed, quotes kept) of the first key of that name in the first section
    // of that name, as IniFile::readString finds it; std::nullopt when the section, the
    // key or its '=' is missing. Costs the same whatever the size of the file.
    std::optional<std::string> keyValue(std::string_view section, std::string_view key);

    // True once any write changed the text.
    bool changed() const { return m_changed; }
    // The file's lines as they now stand.
    IniFile file() const;

private:
    struct Section {
        std::vector<std::string> lines; // header first
        std::size_t lastEntry = 0;      // index of the last entry line, 0 when none
        // Name key -> index of its first entry line; built when first needed.
        std::unordered_map<std::string, std::size_t> keys;
        bool keysBuilt = false;
    };

    void load(const std::vector<std::string>& lines);
    void indexSections();
    Section* findSection(std::string_view name);
    std::optional<std::size_t> findKey(Section& s, std::string_view key);
    static void rescan(Section& s);

    // Each returns true when the text changed, or std::nullopt when the write is one for
    // the engine itself.
    std::optional<bool> setValue(std::string_view section, std::string_view key,
                                 std::string_view value);
    bool removeKey(std::string_view section, std::string_view key);
    bool removeSections(std::string_view section);
    bool engineWrite(std::string_view section, std::optional<std::string_view> key,
                     std::optional<std::string_view> value);

    std::vector<std::string> m_preamble; // lines before the first section
    std::vector<Section> m_sections;
    std::unordered_map<std::string, std::size_t> m_firstSection; // name key -> index
    bool m_changed = false;
};

} // namespace vexo
