#pragma once
// The one class through which every INI-shaped file is read and written: settings,
// report styles, nuclide libraries, nuclide categories and ROI files. Each call opens,
// reads or rewrites the file and closes it again; nothing is cached between calls.
//
// Observable rules (those of the Windows private-profile functions; the file engine is
// IniFile): section and key names match without regard to letter case and with blanks
// around them removed; blanks around values are dropped on reading, and so is one pair of
// enclosing quotes of a value read by key; lines before the first section are ignored by
// readers; ';' starts a comment line; the first of duplicate sections or keys wins; a
// write changes only its own lines and keeps every other line, comment and the order of
// the file (lines are written back with CR LF); a missing file is created on write; new
// sections go at the end (with no blank line before them), new keys after the last key of
// their section. An unreadable file reads as empty and is not written; a failed write is
// not reported.
//
// Every member except the two INIFile accessors raises NumberedError 52 ("Bad file name
// or number") when INIFile is empty. Strings are UTF-8; the file is Windows-1252, and
// lengths such as the 999-character limit of a value count its characters.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vexo {

class CPrivateINI {
public:
    // Except in GetKeys, an empty section or key argument is passed on as one blank, which
    // trims to the empty name: "" addresses the section "[]" or the key of "=value".

    // Removes the key from the section: every line of it in the first section of that
    // name.
    void DeleteKey(const std::string& SectionName, const std::string& KeyName);
    // Removes the section with all its keys, and every other section of the same name.
    void DeleteSection(const std::string& SectionName);
    // Every "key=value" line of the section, in file order; empty for a missing section.
    std::vector<std::string> GetEntries(const std::string& SectionName);
    // The key names of the section, in file order (lines without '=' are not keys). An
    // empty SectionName is passed as no section at all and lists the section names.
    std::vector<std::string> GetKeys(const std::string& SectionName);
    // The key read as an integer: leading blanks, optional sign, decimal digits (or 0x
    // hex); DefaultValue when the key or its value is absent or empty, 0 when its text
    // does not begin with a number.
    int32_t GetLongValue(const std::string& SectionName, const std::string& KeyName,
                         int32_t DefaultValue);
    // GetEntries split at the first "=" into (key, value); "K=a=b" gives ("K", "a=b"), an
    // entry without "=" gives (entry, "").
    std::vector<std::pair<std::string, std::string>> GetPairs(const std::string& SectionName);
    // The section names, in file order; a section named "" is not listed.
    std::vector<std::string> GetSections();
    // The key's value (at most its first 999 characters), DefaultValue when absent.
    std::string GetValue(const std::string& SectionName, const std::string& KeyName,
                         const std::string& DefaultValue);

    const std::string& INIFile() const { return m_iniFile; }
    // Stores the path with leading and trailing blanks removed; touches no file.
    void setINIFile(const std::string& path);

    // Replaces the section's lines (header to last key) by these "key=value" lines,
    // written as they stand; an empty entry ends the list. Creates the section if needed.
    void PutEntries(const std::string& SectionName, const std::vector<std::string>& NewEntries);
    void PutLongValue(const std::string& SectionName, const std::string& KeyName, int32_t NewValue);
    void PutPairs(const std::string& SectionName,
                  const std::vector<std::pair<std::string, std::string>>& NewPairs);
    // Writes the value, creating file, section and key as needed. An empty value is
    // written as one blank, which reads back as "".
    void PutValue(const std::string& SectionName, const std::string& KeyName,
                  const std::string& NewValue);

private:
    // Raises NumberedError 52 when no file name is set.
    void RequireFileName() const;

    std::string m_iniFile;
};

// Section entries ("key=value" texts) split at the first "=" into (key, value); an entry
// without "=" gives (entry, ""). Shared by GetPairs and the batched store.
std::vector<std::pair<std::string, std::string>>
SplitEntries(const std::vector<std::string>& entries);

} // namespace vexo
