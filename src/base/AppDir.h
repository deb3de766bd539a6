#pragma once
// The application directory: where "Vexo.ini", "RepStyles.ini", "Vexo.nct", the report
// and the default nuclide library live.
#include <filesystem>
#include <string>

namespace vexo {

// Resolution order: the explicit directory (from --appdir) when not empty; the
// VEXO_APPDIR environment variable; the executable's folder when it holds "Vexo.ini" or
// is writable (a portable copy); else the per-user folder ~/.config/vexo (created).
std::filesystem::path ResolveAppDir(const std::filesystem::path& explicitDir,
                                    const std::filesystem::path& executableDir);

// The folder of the running executable.
std::filesystem::path ExecutableDir();

// The directory set for this run; ResolveAppDir's answer once SetAppDir was called,
// else the current folder.
const std::filesystem::path& AppDir();
void SetAppDir(const std::filesystem::path& dir);

// `dir` as text with the native separator appended when it does not end in one.
std::string WithTrailingSeparator(const std::filesystem::path& dir);

} // namespace vexo
