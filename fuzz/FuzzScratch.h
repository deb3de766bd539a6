#pragma once
// Scratch files of the fuzz targets that read from disk: one folder per process, on a RAM
// file system when there is one (/dev/shm), so that writing each input costs no disk
// flush; removed when the fuzzer exits. Inputs of up to kMaxInput bytes are taken, large
// enough for slow-downs that grow with the size of a file to show as timeouts.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <unistd.h>

namespace fuzz {

constexpr std::size_t kMaxInput = std::size_t{1} << 20;

inline const std::filesystem::path& ScratchDir() {
    struct Dir {
        std::filesystem::path path;
        Dir() {
            std::error_code ec;
            const std::filesystem::path base = std::filesystem::is_directory("/dev/shm", ec)
                                                   ? std::filesystem::path("/dev/shm")
                                                   : std::filesystem::temp_directory_path();
            path = base / ("vexo-fuzz-" + std::to_string(::getpid()));
            std::filesystem::create_directories(path);
        }
        ~Dir() {
            std::error_code ec;
            std::filesystem::remove_all(path, ec);
        }
    };
    static const Dir dir;
    return dir.path;
}

// Writes the input as `name` in the scratch folder and returns its path.
inline std::filesystem::path WriteScratch(const std::string& name, const uint8_t* data,
                                          std::size_t size) {
    const std::filesystem::path path = ScratchDir() / name;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return path;
}

} // namespace fuzz
