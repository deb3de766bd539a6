#include "base/CPrivateINIBatch.h"

#include "base/TextFile.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

// CPrivateINI passes an empty name or value as one blank, in Windows-1252.
std::string Ansi(const std::string& utf8) {
    return Utf8ToWin1252(utf8.empty() ? std::string(" ") : utf8);
}

} // namespace

CPrivateINIBatch::CPrivateINIBatch(const CPrivateINI& ini) : m_path(ini.INIFile()) {
    if (m_path.empty())
        throw NumberedError(52, "Bad file name or number");
    auto file = IniFile::Load(m_path);
    m_readable = file.has_value();
    if (file)
        m_batch = IniBatch(*file);
}

CPrivateINIBatch::CPrivateINIBatch(const CPrivateINI& ini, const IniFile& start)
    : m_path(ini.INIFile()), m_batch(start) {
    if (m_path.empty())
        throw NumberedError(52, "Bad file name or number");
}

void CPrivateINIBatch::PutValue(const std::string& SectionName, const std::string& KeyName,
                                const std::string& NewValue) {
    m_batch.writeString(Ansi(SectionName), Ansi(KeyName), Ansi(NewValue));
}

void CPrivateINIBatch::PutLongValue(const std::string& SectionName, const std::string& KeyName,
                                    int32_t NewValue) {
    PutValue(SectionName, KeyName, std::to_string(NewValue));
}

void CPrivateINIBatch::DeleteKey(const std::string& SectionName, const std::string& KeyName) {
    m_batch.writeString(Ansi(SectionName), Ansi(KeyName), std::nullopt);
}

void CPrivateINIBatch::DeleteSection(const std::string& SectionName) {
    m_batch.writeString(Ansi(SectionName), std::nullopt, std::nullopt);
}

std::vector<std::string> CPrivateINIBatch::GetSections() const {
    std::vector<std::string> names;
    // The profile reader's list separates names with NUL, so a NUL inside a name splits
    // it there, as CPrivateINI::GetSections splits it.
    for (const std::string& name : m_batch.sectionNames())
        for (std::size_t start = 0;;) {
            const std::size_t nul = name.find('\0', start);
            names.push_back(Win1252ToUtf8(std::string_view(name).substr(start, nul - start)));
            if (nul == std::string::npos)
                break;
            start = nul + 1;
        }
    return names;
}

std::vector<std::pair<std::string, std::string>>
CPrivateINIBatch::GetPairs(const std::string& SectionName) {
    std::vector<std::string> entries = m_batch.sectionEntries(Ansi(SectionName));
    for (std::string& entry : entries)
        entry = Win1252ToUtf8(entry);
    return SplitEntries(entries);
}

std::string CPrivateINIBatch::GetValue(const std::string& SectionName, const std::string& KeyName,
                                       const std::string& DefaultValue) {
    return Win1252ToUtf8(IniFile::KeyValue(m_batch.keyValue(Ansi(SectionName), Ansi(KeyName)),
                                           Utf8ToWin1252(DefaultValue), kProfileBufferSize));
}

int32_t CPrivateINIBatch::GetLongValue(const std::string& SectionName, const std::string& KeyName,
                                       int32_t DefaultValue) {
    return IniFile::LongValue(IniFile::KeyValue(m_batch.keyValue(Ansi(SectionName), Ansi(KeyName)),
                                                "", kProfileBufferSize),
                              DefaultValue);
}

IniBatchCommit CPrivateINIBatch::Commit() {
    IniBatchCommit result;
    if (!m_readable) {
        result.error = "cannot read " + m_path;
        return result;
    }
    std::string why;
    if (m_batch.changed() && !m_batch.file().save(m_path, &why)) {
        result.error = "cannot write " + m_path + ": " + why;
        return result;
    }
    result.ok = true;
    return result;
}

} // namespace vexo
