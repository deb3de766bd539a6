// Fuzzes the INI store: any file content through every reader, then a write and a delete
// of a key, checked against what a second read sees.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzScratch.h"
#include "base/CPrivateINI.h"
#include "base/TextFile.h"

namespace {

// The first line of the input, short, as a name to look up: lets the fuzzer reach names
// that only match after trimming or case folding.
std::string NameFrom(const std::string& text) {
    std::size_t end = text.find_first_of("\r\n");
    return text.substr(0, std::min<std::size_t>(end, 40));
}

// A name that stays one name in the file: none of `breaking` in it as the file will hold
// it (the code-page conversion may turn a malformed UTF-8 sequence into a line end).
bool IsPlainName(const std::string& name, const char* breaking) {
    const std::string onDisk = vexo::Utf8ToWin1252(name);
    return !onDisk.empty() && onDisk.find_first_of(breaking) == std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size > fuzz::kMaxInput)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    vexo::CPrivateINI ini;
    ini.setINIFile(fuzz::WriteScratch("fuzz.ini", data, size).string());

    const std::string probe = NameFrom(text);
    auto sections = ini.GetSections();
    const std::string section = sections.empty() ? probe : sections.front();
    auto keys = ini.GetKeys(section);
    const std::string key = keys.empty() ? probe : keys.front();
    ini.GetEntries(section);
    ini.GetPairs(section);
    ini.GetKeys(probe);
    ini.GetValue(section, key, "default");
    ini.GetValue(probe, probe, "");
    ini.GetLongValue(section, key, 7);

    ini.PutValue(section, key, "fuzz value");
    if (IsPlainName(section, "\r\n]") && IsPlainName(key, "\r\n=;[") &&
        ini.GetValue(section, key, "") != "fuzz value")
        std::abort(); // a plain name written must read back
    ini.DeleteKey(section, key);
    ini.DeleteSection(section);
    // A NUL in a header splits the name in the list of sections, so a piece of it is
    // listed that no section carries; without one, a plain name deleted must be gone.
    const bool hasNul = text.find('\0') != std::string::npos;
    for (const std::string& left : ini.GetSections())
        if (!hasNul && IsPlainName(section, "\r\n]") && left == section)
            std::abort();
    return 0;
}
