#include "base/AppDir.h"

#include <cstdlib>
#include <system_error>
#include <unistd.h>

namespace vexo {
namespace {

std::filesystem::path& CurrentAppDir() {
    static std::filesystem::path dir;
    return dir;
}

bool IsWritableDir(const std::filesystem::path& dir) {
    return !dir.empty() && ::access(dir.c_str(), W_OK) == 0;
}

} // namespace

std::filesystem::path ResolveAppDir(const std::filesystem::path& explicitDir,
                                    const std::filesystem::path& executableDir) {
    if (!explicitDir.empty())
        return explicitDir;
    if (const char* env = std::getenv("VEXO_APPDIR"); env && *env)
        return env;
    std::error_code ec;
    if (!executableDir.empty() &&
        (std::filesystem::exists(executableDir / "Vexo.ini", ec) || IsWritableDir(executableDir)))
        return executableDir;
    std::filesystem::path home = std::getenv("HOME") ? std::getenv("HOME") : ".";
    std::filesystem::path user = home / ".config" / "vexo";
    std::filesystem::create_directories(user, ec);
    return user;
}

std::filesystem::path ExecutableDir() {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::filesystem::path{} : exe.parent_path();
}

const std::filesystem::path& AppDir() {
    if (CurrentAppDir().empty()) {
        std::error_code ec;
        CurrentAppDir() = std::filesystem::current_path(ec);
    }
    return CurrentAppDir();
}

void SetAppDir(const std::filesystem::path& dir) {
    CurrentAppDir() = dir;
}

std::string WithTrailingSeparator(const std::filesystem::path& dir) {
    std::string s = dir.string();
    if (s.empty() || s.back() != std::filesystem::path::preferred_separator)
        s.push_back(std::filesystem::path::preferred_separator);
    return s;
}

} // namespace vexo
