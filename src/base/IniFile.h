#pragma once
// The file engine under CPrivateINI: one INI file as the list of its lines, read and
// changed with the rules of the Windows private-profile functions
// (GetPrivateProfileString, GetPrivateProfileSection, WritePrivateProfileString,
// WritePrivateProfileSection).
//
// Every string here is in the single-byte code page (Windows-1252), as the "A" functions
// see it, so lengths and buffer sizes count characters. CPrivateINI converts to and from
// UTF-8 at its boundary.
//
// Line model: every line of the file is kept as it stands (comments, blank lines, lines
// that are neither a key nor a section header, and their order), so a write replaces,
// inserts or removes only the lines it concerns. A line is
//   - blank: only blanks (space, tab, CR, LF, VT, FF);
//   - a comment: its first non-blank character is ';';
//   - a section header: its first non-blank character is '[' and a ']' follows somewhere
//     (the name is what lies between '[' and the last ']');
//   - an entry: anything else; the key is the text before the first '=', the value the
//     text after it. A line without '=' is an entry with a key and no value.
// Lines before the first section header belong to no section: readers ignore them and
// writers keep them. Section and key names match with blanks around them removed and
// without regard to letter case (Windows-1252 letters included); the first of duplicate
// sections or keys is the one read and changed.
//
// What a section "owns" when it is replaced or removed: its header and every line up to
// and including its last entry line. Comment and blank lines after the last entry stay
// with the gap before the next section (they usually introduce it), except that removing
// a section also removes the blank lines right after it, so no gap is left doubled.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vexo {

// The profile reader's buffer as CPrivateINI sizes it at first: a value read by key fits
// in it, so it reads as at most 999 characters.
inline constexpr std::size_t kProfileBufferSize = 1000;

class IniFile {
public:
    IniFile() = default;
    explicit IniFile(std::vector<std::string> lines) : m_lines(std::move(lines)) {}

    // Splits text at CR LF, LF or a lone CR.
    static IniFile FromText(std::string_view ansiText);

    // Reads the file from disk (Windows-1252 bytes kept as they are). A missing file is an
    // empty one; std::nullopt when the file exists but cannot be read, or holds more than
    // 256 MiB (a device that never ends, say).
    static std::optional<IniFile> Load(const std::filesystem::path& path);
    // Writes every line followed by CR LF through WriteFileBytes (a failed write leaves
    // the old file as it was). False, with the system's reason in `error`, when it
    // cannot be written.
    bool save(const std::filesystem::path& path, std::string* error = nullptr) const;

    const std::vector<std::string>& lines() const { return m_lines; }

    // GetPrivateProfileString into a buffer of `bufferSize` characters. Returns the first
    // "returned count" characters the function leaves in its buffer:
    //   - no section: every section name, each followed by a NUL;
    //   - a section but no key: the section's key names (entries without '=' are left
    //     out), each followed by a NUL; when that is empty, the default value instead;
    //   - section and key: the key's value, with one pair of enclosing double or single
    //     quotes removed; the default (trailing blanks dropped, quotes removed likewise)
    //     when the section, the key or its '=' is missing.
    // A list that does not fit (it needs its characters, a NUL after each and one more
    // NUL) is cut and the count is bufferSize - 2; a value that does not fit is cut to
    // bufferSize - 1 characters.
    std::string readString(std::optional<std::string_view> section,
                           std::optional<std::string_view> key, std::string_view defaultValue,
                           std::size_t bufferSize) const;

    // GetPrivateProfileSection: every entry of the section as "key=value" (or the key
    // alone for a line without '='), names and values trimmed, each followed by a NUL;
    // comments and blank lines are left out. Same cutting rule as the lists above; empty
    // for a missing section.
    std::string readSection(std::string_view section, std::size_t bufferSize) const;

    // WritePrivateProfileString. No key: removes every section of that name. No value:
    // removes the key's lines from the section. Otherwise sets the key's value: an
    // existing line keeps its text up to and including '=' and gets the new value; a new
    // key goes after the section's last entry; a new section is appended at the end of
    // the file (no blank line is put before it). Values are written as given. Returns
    // true when the text changed.
    bool writeString(std::string_view section, std::optional<std::string_view> key,
                     std::optional<std::string_view> value);

    // WritePrivateProfileSection: `entries` holds lines separated by NUL and ends with two
    // NULs (the first empty string ends the list). The section's lines up to its last
    // entry are replaced by these lines, written as they stand; a missing section is
    // appended at the end. Returns true when the text changed.
    bool writeSection(std::string_view section, std::string_view entries);

    // What GetPrivateProfileString leaves in a buffer of `bufferSize` characters for a
    // key looked up by name: the key's value (`found`) with one pair of enclosing quotes
    // removed, or when there is none the default with its trailing blanks dropped and
    // quotes removed likewise; cut to bufferSize - 1 characters.
    static std::string KeyValue(std::optional<std::string_view> found,
                                std::string_view defaultValue, std::size_t bufferSize);

    // GetPrivateProfileInt's conversion of a value: leading blanks, an optional sign, an
    // optional base prefix 0x (hex), 0o (octal) or 0b (binary), then digits up to the
    // first character that is not one; wraps modulo 2^32 like the 32-bit original.
    // Text that does not begin with a number gives 0.
    static int32_t ParseProfileInt(std::string_view text);
    // The integer reader's rule: the default for an empty value (as for a missing key),
    // else ParseProfileInt.
    static int32_t LongValue(std::string_view text, int32_t defaultValue) {
        return text.empty() ? defaultValue : ParseProfileInt(text);
    }

private:
    struct SectionSpan {
        std::size_t header;    // index of the header line
        std::size_t lastEntry; // index of the last entry line, or header when none
        std::size_t end;       // index of the next header, or the line count
    };

    std::optional<SectionSpan> findSection(std::string_view name) const;
    bool removeSections(std::string_view section);
    bool removeKey(std::string_view section, std::string_view key);
    bool setValue(std::string_view section, std::string_view key, std::string_view value);
    std::optional<std::size_t> findKey(const SectionSpan& span, std::string_view key) const;

    std::vector<std::string> m_lines;
};

} // namespace vexo

namespace vexo {

// How the engine sees one line, for writers that keep their own index of a file's lines
// (IniBatch): its kind, for a section header or an entry its trimmed name, and for an
// entry with '=' its trimmed value.
enum class IniLineKind { Blank, Comment, Section, Entry };
struct IniLineView {
    IniLineKind kind;
    std::string_view name;
    std::optional<std::string_view> value;
};
IniLineView ClassifyIniLine(std::string_view line);
// A name as the engine compares it (blanks around it removed, letters folded to one
// case), for use as a lookup key: two names match exactly when their keys are equal.
std::string IniNameKey(std::string_view name);

} // namespace vexo
