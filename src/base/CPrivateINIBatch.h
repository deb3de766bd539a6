#pragma once
// CPrivateINI's calls in a batch: the file is read once when the batch starts, every
// PutValue, PutLongValue, DeleteKey and DeleteSection is applied in memory with the same
// rules, and Commit writes the file once. The file then holds exactly the bytes that the
// same calls on a CPrivateINI would have left, at a cost that grows with the number of
// calls instead of calls times file size. For writers of whole files (nuclide libraries,
// categories, settings) and, through the Get members, for readers of whole files (ROI
// files, report styles, categories, settings): a file of thousands of sections reads in
// milliseconds where a CPrivateINI call per key would parse it thousands of times.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/CPrivateINI.h"
#include "base/IniBatch.h"
#include "base/IniFile.h"

namespace vexo {

struct IniBatchCommit {
    bool ok = false;
    std::string error; // why ok is false
};

class CPrivateINIBatch {
public:
    // Reads the file named by ini.INIFile() (a missing file is an empty one). Raises
    // NumberedError 52 ("Bad file name or number") when no name is set.
    explicit CPrivateINIBatch(const CPrivateINI& ini);
    // Starts from `start` (Windows-1252 lines, e.g. comments) instead of reading the file:
    // Commit then replaces the file by `start` with this batch's writes applied. For a
    // writer of a new file that must not read what the path holds now.
    CPrivateINIBatch(const CPrivateINI& ini, const IniFile& start);

    void PutValue(const std::string& SectionName, const std::string& KeyName,
                  const std::string& NewValue);
    void PutLongValue(const std::string& SectionName, const std::string& KeyName, int32_t NewValue);
    void DeleteKey(const std::string& SectionName, const std::string& KeyName);
    void DeleteSection(const std::string& SectionName);

    // CPrivateINI::GetSections and GetPairs, read from the batch: the file as read at the
    // start with this batch's writes applied. A reader of a whole file uses a batch to read
    // the file once instead of once per call.
    std::vector<std::string> GetSections() const;
    std::vector<std::pair<std::string, std::string>> GetPairs(const std::string& SectionName);
    // CPrivateINI::GetValue and GetLongValue, from the batch; an unreadable file reads as
    // an empty one, as it does there.
    std::string GetValue(const std::string& SectionName, const std::string& KeyName,
                         const std::string& DefaultValue);
    int32_t GetLongValue(const std::string& SectionName, const std::string& KeyName,
                         int32_t DefaultValue);

    // Writes the file when any call changed it; a file nothing changed is not touched.
    // ok is false when the file existed but could not be read at the start (it is then
    // left alone, as CPrivateINI leaves it) or cannot be written.
    IniBatchCommit Commit();

private:
    std::string m_path;
    bool m_readable = true;
    IniBatch m_batch;
};

} // namespace vexo
