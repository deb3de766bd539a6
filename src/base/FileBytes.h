#pragma once
// Raw bytes of a file, written in one go or read with a cap so that a huge or endless file cannot
// exhaust memory or time; and the check readers make before they open a file.
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace vexo {

struct FileBytes {
    bool ok = false;        // the file was opened and read (possibly only its first part)
    bool truncated = false; // the file holds more than the cap; `bytes` is its first part
    std::string bytes;
    std::string error; // why it could not be read, when !ok
};

// A binary input stream on `path`; it is in a failed state when `path` is not a regular
// file (a folder, missing) or cannot be opened for reading. Never throws.
std::ifstream OpenForReading(const std::filesystem::path& path);

// Whether OpenForReading would give a usable stream.
bool CanOpen(const std::filesystem::path& path);

// Reads at most `maxBytes` bytes of the file. Never throws for I/O problems.
FileBytes ReadFileBytes(const std::filesystem::path& path, std::size_t maxBytes);

// Writes `bytes` exactly as the file's new content, creating or replacing it. A regular
// file (or a new one) is replaced through its temporary file (base/ReplaceFile.h),
// renamed over it once complete, so a failed write or a killed program leaves the old
// file as it was and never a torn one; a symbolic link keeps pointing at the replaced
// file, and the new file keeps the old one's permissions. With `flushToDisk` the data
// reaches the disk before the rename, so that even a power cut leaves the old or the new
// file (it costs milliseconds; measurements pay it). Anything else that exists (a device
// such as /dev/null, a pipe) is written in place. On failure returns false and sets
// `error` to the system's description ("No space left on device"); what a write that
// failed part-way had written stays on disk in the temporary file.
bool WriteFileBytes(const std::filesystem::path& path, std::string_view bytes, std::string* error,
                    bool flushToDisk = false);

} // namespace vexo
