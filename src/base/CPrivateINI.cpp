#include "base/CPrivateINI.h"

#include "base/IniFile.h"
#include "base/TextFile.h"
#include "base/TextTrim.h"
#include "base/VexoError.h"

#include <limits>
#include <optional>

namespace vexo {
namespace {

// The reader's buffer starts at 1000 characters and grows by 2000 while a list does not
// fit. A single value never triggers the growth, so it reads as at most 999 characters.
constexpr std::size_t kFirstBufferSize = kProfileBufferSize;

std::string BlankIfEmpty(const std::string& s) {
    return s.empty() ? std::string(" ") : s;
}

std::string Ansi(const std::string& utf8) {
    return Utf8ToWin1252(utf8);
}

// Splits at each NUL; "a\0b" gives {"a", "b"}.
std::vector<std::string> SplitAtNul(std::string_view text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        std::size_t nul = text.find('\0', start);
        if (nul == std::string_view::npos) {
            parts.emplace_back(Win1252ToUtf8(text.substr(start)));
            return parts;
        }
        parts.emplace_back(Win1252ToUtf8(text.substr(start, nul - start)));
        start = nul + 1;
    }
}

// Each call reads the file afresh, as the profile functions do; an unreadable file reads
// as an empty one.
IniFile ReadIni(const std::string& path) {
    auto ini = IniFile::Load(path);
    return ini ? std::move(*ini) : IniFile{};
}

// Applies one change to the file. A file that exists but cannot be read is left alone
// rather than overwritten with only the new line; a failed save leaves the file as the
// operating system left it. Neither is reported, as the profile writer reports nothing
// the program looks at.
template <typename Change> void ChangeIni(const std::string& path, Change change) {
    auto ini = IniFile::Load(path);
    if (!ini)
        return;
    if (change(*ini))
        ini->save(path);
}

// The growing-buffer read loop over one of the two readers. A count of size - 2 means a
// list that did not fit (or a text of exactly that length); the loop then grows the
// buffer by 2000 characters until the count says otherwise, which ends with the whole list
// (or the same text). That outcome is read at once, so a list of thousands of names
// costs one pass over the file instead of one per 2000 characters.
template <typename Reader> std::string ReadGrowing(Reader read) {
    std::string got = read(kFirstBufferSize);
    if (got.size() + 2 != kFirstBufferSize)
        return got;
    return read(std::numeric_limits<std::size_t>::max());
}

// An empty section or key name is passed as no name at all, which lists the sections or
// the keys of a section. Returns Windows-1252 text.
std::string ReadProfileString(const std::string& path, const std::string& section,
                              const std::string& key, const std::string& def) {
    IniFile ini = ReadIni(path);
    std::optional<std::string> ansiSection, ansiKey;
    if (!section.empty())
        ansiSection = Ansi(section);
    if (!key.empty())
        ansiKey = Ansi(key);
    std::string ansiDef = Ansi(def);
    return ReadGrowing(
        [&](std::size_t size) { return ini.readString(ansiSection, ansiKey, ansiDef, size); });
}

} // namespace

void CPrivateINI::setINIFile(const std::string& path) {
    m_iniFile = std::string(TrimBlanks(path, " "));
}

void CPrivateINI::RequireFileName() const {
    if (m_iniFile.empty())
        throw NumberedError(52, "Bad file name or number");
}

void CPrivateINI::DeleteKey(const std::string& SectionName, const std::string& KeyName) {
    RequireFileName();
    std::string section = Ansi(BlankIfEmpty(SectionName));
    std::string key = Ansi(BlankIfEmpty(KeyName));
    ChangeIni(m_iniFile, [&](IniFile& ini) { return ini.writeString(section, key, std::nullopt); });
}

void CPrivateINI::DeleteSection(const std::string& SectionName) {
    RequireFileName();
    std::string section = Ansi(BlankIfEmpty(SectionName));
    // With no key name the writer removes the section and ignores the value.
    ChangeIni(m_iniFile, [&](IniFile& ini) {
        return ini.writeString(section, std::nullopt,
                               "dummy value - doesn't matter what goes here");
    });
}

std::vector<std::string> CPrivateINI::GetEntries(const std::string& SectionName) {
    RequireFileName();
    std::string section = Ansi(BlankIfEmpty(SectionName));
    IniFile ini = ReadIni(m_iniFile);
    std::string list =
        ReadGrowing([&](std::size_t size) { return ini.readSection(section, size); });
    if (list.empty())
        return {};
    list.pop_back(); // the last entry's terminator
    return SplitAtNul(list);
}

std::vector<std::string> CPrivateINI::GetKeys(const std::string& SectionName) {
    RequireFileName();
    std::string list = ReadProfileString(m_iniFile, SectionName, "", "");
    if (list.empty())
        return {};
    list.pop_back();
    return SplitAtNul(list);
}

int32_t CPrivateINI::GetLongValue(const std::string& SectionName, const std::string& KeyName,
                                  int32_t DefaultValue) {
    RequireFileName();
    std::string text =
        ReadProfileString(m_iniFile, BlankIfEmpty(SectionName), BlankIfEmpty(KeyName), "");
    return IniFile::LongValue(text, DefaultValue);
}

std::vector<std::pair<std::string, std::string>>
CPrivateINI::GetPairs(const std::string& SectionName) {
    RequireFileName();
    return SplitEntries(GetEntries(SectionName));
}

std::vector<std::pair<std::string, std::string>>
SplitEntries(const std::vector<std::string>& entries) {
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const auto& entry : entries) {
        std::size_t eq = entry.find('=');
        if (eq == std::string::npos)
            pairs.emplace_back(entry, std::string{});
        else
            pairs.emplace_back(entry.substr(0, eq), entry.substr(eq + 1));
    }
    return pairs;
}

std::vector<std::string> CPrivateINI::GetSections() {
    RequireFileName();
    std::string list = ReadProfileString(m_iniFile, "", "", "");
    if (list.size() < 2)
        return {};
    list.pop_back();
    return SplitAtNul(list);
}

std::string CPrivateINI::GetValue(const std::string& SectionName, const std::string& KeyName,
                                  const std::string& DefaultValue) {
    RequireFileName();
    return Win1252ToUtf8(ReadProfileString(m_iniFile, BlankIfEmpty(SectionName),
                                           BlankIfEmpty(KeyName), DefaultValue));
}

void CPrivateINI::PutEntries(const std::string& SectionName,
                             const std::vector<std::string>& NewEntries) {
    RequireFileName();
    std::string section = Ansi(BlankIfEmpty(SectionName));
    std::string joined;
    for (std::size_t i = 0; i < NewEntries.size(); ++i) {
        if (i > 0)
            joined.push_back('\0');
        joined.append(Ansi(NewEntries[i]));
    }
    joined.append(2, '\0');
    ChangeIni(m_iniFile, [&](IniFile& ini) { return ini.writeSection(section, joined); });
}

void CPrivateINI::PutLongValue(const std::string& SectionName, const std::string& KeyName,
                               int32_t NewValue) {
    PutValue(SectionName, KeyName, std::to_string(NewValue));
}

void CPrivateINI::PutPairs(const std::string& SectionName,
                           const std::vector<std::pair<std::string, std::string>>& NewPairs) {
    RequireFileName();
    std::vector<std::string> entries;
    entries.reserve(NewPairs.size());
    for (const auto& [key, value] : NewPairs)
        entries.push_back(key + "=" + value);
    PutEntries(SectionName, entries);
}

void CPrivateINI::PutValue(const std::string& SectionName, const std::string& KeyName,
                           const std::string& NewValue) {
    RequireFileName();
    std::string section = Ansi(BlankIfEmpty(SectionName));
    std::string key = Ansi(BlankIfEmpty(KeyName));
    std::string value = Ansi(BlankIfEmpty(NewValue));
    ChangeIni(m_iniFile, [&](IniFile& ini) { return ini.writeString(section, key, value); });
}

} // namespace vexo
