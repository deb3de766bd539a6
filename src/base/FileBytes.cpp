#include "base/FileBytes.h"

#include "base/ReplaceFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vexo {
namespace {

// Puts the file's data on the disk, so that the rename which follows cannot reach the
// disk first: after a power cut the name would otherwise hold an empty file.
bool FlushToDisk(std::FILE* f) {
#ifdef _WIN32
    return _commit(_fileno(f)) == 0;
#else
    // EINVAL: a file system that cannot sync (some network or FUSE mounts); the data
    // still goes to the disk in the system's own time.
    return ::fdatasync(::fileno(f)) == 0 || errno == EINVAL;
#endif
}

// Creates or truncates `path` and writes `bytes`, each failure with the system's reason.
bool WriteStream(const std::filesystem::path& path, std::string_view bytes, bool flushToDisk,
                 std::string* error) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) {
        if (error)
            *error = std::strerror(errno);
        return false;
    }
    bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size() &&
              std::fflush(f) == 0 && (!flushToDisk || FlushToDisk(f));
    int savedErrno = errno;
    ok = (std::fclose(f) == 0) && ok;
    if (!ok && error)
        *error = std::strerror(savedErrno ? savedErrno : EIO);
    return ok;
}

// The file that a write to `path` replaces: the file a symbolic link names, so that the
// link stays a link.
std::filesystem::path ReplacedFile(const std::filesystem::path& path) {
    std::error_code ec;
    if (!std::filesystem::is_symlink(path, ec))
        return path;
    std::filesystem::path target = std::filesystem::canonical(path, ec);
    return ec ? path : target; // a dangling link is replaced like a file
}

} // namespace

std::ifstream OpenForReading(const std::filesystem::path& path) {
    std::error_code ec;
    if (std::filesystem::is_regular_file(path, ec))
        return std::ifstream(path, std::ios::binary);
    std::ifstream none; // a stream never opened still tests true until it is failed
    none.setstate(std::ios::failbit);
    return none;
}

bool CanOpen(const std::filesystem::path& path) {
    return static_cast<bool>(OpenForReading(path));
}

FileBytes ReadFileBytes(const std::filesystem::path& path, std::size_t maxBytes) {
    FileBytes result;
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) {
        result.error = std::strerror(EISDIR);
        return result;
    }
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) {
        result.error = std::strerror(errno);
        return result;
    }
    char buf[65536];
    bool failed = false;
    while (result.bytes.size() < maxBytes) {
        std::size_t want = std::min(sizeof buf, maxBytes - result.bytes.size());
        std::size_t got = std::fread(buf, 1, want, f);
        result.bytes.append(buf, got);
        if (got < want) {
            failed = std::ferror(f) != 0;
            break;
        }
    }
    if (!failed && result.bytes.size() >= maxBytes)
        result.truncated = std::fgetc(f) != EOF;
    int savedErrno = errno;
    std::fclose(f);
    if (failed) {
        result.error = std::strerror(savedErrno ? savedErrno : EIO);
        result.bytes.clear();
        return result;
    }
    result.ok = true;
    return result;
}

bool WriteFileBytes(const std::filesystem::path& path, std::string_view bytes, std::string* error,
                    bool flushToDisk) {
    const std::filesystem::path file = ReplacedFile(path);
    std::error_code ec;
    const std::filesystem::file_status old = std::filesystem::status(file, ec);
    // A device or a pipe has nothing to keep, and a rename would put a plain file in its
    // place; a folder gives its own error here.
    if (std::filesystem::exists(old) && !std::filesystem::is_regular_file(old))
        return WriteStream(file, bytes, false, error);
    const std::filesystem::path temp = TempFileFor(file);
    // A write that fails part-way leaves what it wrote in the temporary file, beside the
    // untouched old file; the next write of the same file replaces it.
    if (!WriteStream(temp, bytes, flushToDisk, error))
        return false;
    // Best effort: a file system without permissions (FAT) still gets the content.
    if (std::filesystem::exists(old))
        std::filesystem::permissions(temp, old.permissions(), ec);
    return ReplaceFileWith(temp, file, error);
}

} // namespace vexo
