// Fuzzes the loading of the report styles "RepStyles.ini" and the choice of one by name:
// any file content gives a list with the empty style in place 0 and the count it reports.
#include <cstddef>
#include <cstdint>

#include "FuzzScratch.h"
#include "base/Messages.h"
#include "base/VexoError.h"
#include "report/ReportStyle.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size > fuzz::kMaxInput)
        return 0;
    const auto& dir = fuzz::ScratchDir();
    fuzz::WriteScratch("RepStyles.ini", data, size);
    vexo::ScriptedMessages messages;
    vexo::ReportStyleList list;
    try {
        list = vexo::LoadReportStyles(dir, messages);
    } catch (const vexo::OverflowError&) {
        return 0; // documented: a CS_TitleBorder beyond 16 bits ends the load
    }
    if (list.styles.empty() || list.highestIndex != static_cast<int>(list.styles.size()) - 1)
        __builtin_trap();
    const std::string name = list.styles.back().sectionName;
    if (vexo::ResolveReportStyle(list, name).sectionName != name)
        __builtin_trap();
    return 0;
}
