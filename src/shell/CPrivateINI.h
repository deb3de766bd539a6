#pragma once
// The one class through which every INI-shaped file is read and written: settings,
// report styles, nuclide libraries, nuclide categories and ROI files. Each call opens,
// reads or rewrites the file and closes it again; nothing is cached between calls.
//
// Observable rules: section and key names match without regard to letter case; blanks
// around names and values are dropped on reading; the first of duplicate keys wins;
// a write changes only its own line and keeps every other line, comment and the order
// of the file; a missing file is created on write; new sections go at the end, new keys
// at the end of their section. Every member except the two INIFile accessors raises
// NumberedError 52 ("Bad file name or number") when INIFile is empty.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vexo {

class CPrivateINI {
public:
    // Removes the key from the section.
    void DeleteKey(const std::string& SectionName, const std::string& KeyName);
    // Removes the section with all its keys.
    void DeleteSection(const std::string& SectionName);
    // Every "key=value" line of the section, in file order; empty for a missing section.
    std::vector<std::string> GetEntries(const std::string& SectionName);
    // The key names of the section, in file order.
    std::vector<std::string> GetKeys(const std::string& SectionName);
    // The key read as an integer; DefaultValue when absent, 0 when its text does not
    // begin with a number.
    int32_t GetLongValue(const std::string& SectionName, const std::string& KeyName,
                         int32_t DefaultValue);
    // GetEntries split at the first "=" into (key, value).
    std::vector<std::pair<std::string, std::string>> GetPairs(const std::string& SectionName);
    // The section names, in file order.
    std::vector<std::string> GetSections();
    // The key's value (at most 999 characters), DefaultValue when absent.
    std::string GetValue(const std::string& SectionName, const std::string& KeyName,
                         const std::string& DefaultValue);

    const std::string& INIFile() const { return m_iniFile; }
    // Stores the path with leading and trailing blanks removed; touches no file.
    void setINIFile(const std::string& path);

    // Replaces the whole section by these "key=value" lines.
    void PutEntries(const std::string& SectionName, const std::vector<std::string>& NewEntries);
    void PutLongValue(const std::string& SectionName, const std::string& KeyName, int32_t NewValue);
    void PutPairs(const std::string& SectionName,
                  const std::vector<std::pair<std::string, std::string>>& NewPairs);
    // Writes the value, creating file, section and key as needed. An empty value is
    // written as one blank.
    void PutValue(const std::string& SectionName, const std::string& KeyName,
                  const std::string& NewValue);

private:
    std::string m_iniFile;
};

} // namespace vexo
