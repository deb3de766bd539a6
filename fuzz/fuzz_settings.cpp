// Fuzzes the loading of "Vexo.ini" (every key with its default, the window placement) and
// a full save of what was loaded: any file content, no crash, no hang.
#include <cstddef>
#include <cstdint>

#include "FuzzScratch.h"
#include "base/Messages.h"
#include "shell/AppSettings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size > fuzz::kMaxInput)
        return 0;
    const auto& dir = fuzz::ScratchDir();
    fuzz::WriteScratch("Vexo.ini", data, size);
    vexo::ScriptedMessages messages; // the styles file is missing: said, not fatal
    vexo::AppSettings settings;
    if (!vexo::LoadSettings(settings, dir, messages))
        return 0;
    vexo::FormLocation location;
    vexo::LoadFormLocation(location, dir, 1920, 1080);
    if (!vexo::SaveSettings(settings, false, dir) || !vexo::LoadSettings(settings, dir, messages))
        __builtin_trap(); // a file just read must take its own settings back
    return 0;
}
