#include "nuclide/NucEditor.h"

#include "base/FieldSearch.h"
#include "base/Messages.h"
#include "base/NumberText.h"
#include "base/Rounding.h"
#include "base/TextTrim.h"
#include "nuclide/NuclideLibrary.h"

namespace vexo {
namespace {

constexpr std::string_view kSeparator = " : ";

std::vector<std::string> SplitParts(std::string_view text) {
    std::vector<std::string> parts;
    for (;;) {
        std::size_t at = text.find(kSeparator);
        parts.emplace_back(TrimBlanks(text.substr(0, at)));
        if (at == std::string_view::npos)
            return parts;
        text.remove_prefix(at + kSeparator.size());
    }
}

float PartNumber(const std::vector<std::string>& parts, std::size_t i) {
    return i < parts.size() ? CSng(LeadingNumber(parts[i])) : 0.0f;
}

} // namespace

std::string EditorLineText(const clsNuclide& l) {
    std::string text = l.szElemName;
    for (const std::string& part :
         {std::to_string(l.nAtNum), LibraryNumberText(l.sHL()),
          std::string(HalfLifeUnitText(l.eUnits())), LibraryNumberText(l.sEnergy),
          LibraryNumberText(l.sDEnergy), LibraryNumberText(l.sIntensity),
          LibraryNumberText(l.sDIntensity), l.szDecayRadEx(), LibraryNumberText(l.sDHL)})
        text.append(kSeparator).append(part);
    return text;
}

clsNuclide EditorLineFromText(std::string_view text) {
    std::vector<std::string> parts = SplitParts(text);
    parts.resize(10);
    clsNuclide l;
    l.szElemName = parts[0];
    l.nAtNum = static_cast<int16_t>(LeadingNumber(parts[1]));
    auto unit = HalfLifeUnitOfText(parts[3]);
    l.bSetHL(PartNumber(parts, 2), PartNumber(parts, 9), unit ? UnitCode(*unit) : "");
    l.sEnergy = PartNumber(parts, 4);
    l.sDEnergy = PartNumber(parts, 5);
    l.sIntensity = PartNumber(parts, 6);
    l.sDIntensity = PartNumber(parts, 7);
    if (auto row = RadiationRowOfText(parts[8]))
        l.bSetRadType(RadiationCode(*row));
    return l;
}

LibrarySave SaveEditorLibrary(const std::filesystem::path& path,
                              const std::vector<clsNuclide>& lines, Messages& messages) {
    const std::string refused = "Error saving or updating nuclide library " + path.string();
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) {
        NuclideLibraryWrite written = WriteNuclideLibrary(path, lines);
        if (written.ok)
            return LibrarySave::Written;
        messages.critical(refused + ": " + written.error);
        return LibrarySave::Failed;
    }
    if (!FileHasFieldContaining(path, kUpdatableLibraryId)) {
        messages.exclamation(refused);
        return LibrarySave::Refused;
    }
    return LibrarySave::LeftUntouched;
}

} // namespace vexo
