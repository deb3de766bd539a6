#include "base/FileBytes.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace vexo {

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

bool WriteFileBytes(const std::filesystem::path& path, std::string_view bytes, std::string* error) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) {
        if (error)
            *error = std::strerror(errno);
        return false;
    }
    bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    int savedErrno = errno;
    ok = (std::fclose(f) == 0) && ok;
    if (!ok && error)
        *error = std::strerror(savedErrno ? savedErrno : EIO);
    return ok;
}

} // namespace vexo
