#pragma once
// CPrivateINI's writes in a batch: the file is read once when the batch starts, every
// PutValue, PutLongValue, DeleteKey and DeleteSection is applied in memory with the same
// rules, and Commit writes the file once. The file then holds exactly the bytes that the
// same calls on a CPrivateINI would have left, at a cost that grows with the number of
// writes instead of writes times file size. For writers of whole files (nuclide
// libraries, categories, settings).
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/CPrivateINI.h"
#include "base/IniBatch.h"

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
