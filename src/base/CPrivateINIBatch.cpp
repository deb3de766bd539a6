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
    std::vector<std::string> names = m_batch.sectionNames();
    for (std::string& name : names)
        name = Win1252ToUtf8(name);
    return names;
}

std::vector<std::pair<std::string, std::string>>
CPrivateINIBatch::GetPairs(const std::string& SectionName) {
    std::vector<std::string> entries = m_batch.sectionEntries(Ansi(SectionName));
    for (std::string& entry : entries)
        entry = Win1252ToUtf8(entry);
    return SplitEntries(entries);
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
