#include "nuclide/NuclideLibrary.h"

#include <charconv>
#include <cmath>

#include "base/CPrivateINI.h"
#include "base/CPrivateINIBatch.h"
#include "base/FieldSearch.h"
#include "base/FileBytes.h"
#include "base/IniFile.h"
#include "base/NumberText.h"
#include "base/Rounding.h"
#include "base/TextFile.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

// Reads one line section. Throws OverflowError for a number beyond its type's range.
clsNuclide ReadLine(CPrivateINIBatch& ini, const std::string& section,
                    std::vector<std::string>& warnings) {
    // A number with the library's lenient rule, as a single.
    auto number = [&](const char* key) {
        return CSng(LeadingNumber(ini.GetValue(section, key, "")));
    };
    clsNuclide line;
    line.szElemName = ini.GetValue(section, "NucName", "");
    int32_t atomicNumber = ini.GetLongValue(section, "AtNo", 0);
    if (atomicNumber < -32768 || atomicNumber > 32767)
        throw OverflowError("atomic number " + std::to_string(atomicNumber) + " out of range");
    line.nAtNum = static_cast<int16_t>(atomicNumber);
    float halfLife = number("HL");
    std::string unitText = ini.GetValue(section, "HLUnits", "");
    line.sEnergy = number("En");
    line.sIntensity = number("Int");
    std::string radiationText = ini.GetValue(section, "RadID", "");

    auto unit = HalfLifeUnitOfText(unitText);
    line.bSetHL(halfLife, 0.0f, unit ? UnitCode(*unit) : std::string());
    if (!unit && !unitText.empty())
        warnings.push_back(section + ": unknown half-life unit \"" + unitText + "\"");
    auto row = RadiationRowOfText(radiationText);
    if (row)
        line.bSetRadType(RadiationCode(*row));
    else if (!radiationText.empty())
        warnings.push_back(section + ": unknown radiation type \"" + radiationText + "\"");
    return line;
}

} // namespace

bool IsNuclideLibrary(const std::filesystem::path& path) {
    return FileHasFieldContaining(path, "FileId=Vexo Nuclide Library");
}

std::string LibraryNumberText(float value) {
    // Zero has no sign in the file: -0 is written "0".
    return ShortestSingleText(value == 0.0f ? 0.0f : value);
}

std::string LibrarySectionName(const clsNuclide& line) {
    std::string energy;
    if (std::isfinite(line.sEnergy)) {
        // Round to 0.01 keV as display text first, then write that single value in its
        // shortest form, so 1173.20 loses its trailing zero.
        std::string rounded = FormatSingle(line.sEnergy, "0.00");
        float value = 0.0f;
        std::from_chars(rounded.data(), rounded.data() + rounded.size(), value);
        energy = LibraryNumberText(value);
    } else {
        energy = LibraryNumberText(line.sEnergy); // "inf" / "nan": no digits to round
    }
    return line.szElemName + std::to_string(line.nAtNum) + ":" + energy + ":" + line.szDecayRadEx();
}

NuclideLibraryRead ReadNuclideLibrary(const std::filesystem::path& path) {
    NuclideLibraryRead result;
    if (!CanOpen(path)) {
        result.error = "cannot open " + path.string();
        return result;
    }
    CPrivateINI named;
    named.setINIFile(path.string());
    std::string section;
    try {
        // The file is read once for the whole library, not once per section.
        CPrivateINIBatch ini(named);
        for (const std::string& name : ini.GetSections()) {
            section = name;
            // Only the exact name is the header; "info" is an ordinary line section.
            if (name == kLibraryInfoSection)
                continue;
            result.lines.push_back(ReadLine(ini, name, result.warnings));
        }
    } catch (const OverflowError& e) {
        result.lines.clear();
        result.error = "section [" + section + "]: value out of range (" + e.what() + ")";
        return result;
    } catch (const NumberedError& e) {
        result.lines.clear();
        result.error = e.what();
        return result;
    }
    result.ok = true;
    return result;
}

namespace {

// The identification and every line's section, then one write of the file.
NuclideLibraryWrite PutLibrary(CPrivateINIBatch& batch, const std::vector<clsNuclide>& lines) {
    NuclideLibraryWrite result;
    batch.PutValue(kLibraryInfoSection, kLibraryIdKey, kLibraryIdValue);
    for (const clsNuclide& line : lines) {
        const std::string s = LibrarySectionName(line);
        batch.PutValue(s, "NucName", line.szElemName);
        batch.PutLongValue(s, "AtNo", line.nAtNum);
        // Placeholders that older readers expect; nothing reads them.
        batch.PutValue(s, "NucTypes", "TYPE");
        batch.PutValue(s, "NucDecayMode", "DECAYMODE");
        batch.PutValue(s, "NucDecayBranch", "0.0");
        batch.PutValue(s, "HL", LibraryNumberText(line.sHL()));
        batch.PutValue(s, "DHL", LibraryNumberText(line.sDHL));
        batch.PutValue(s, "HLUnits", HalfLifeUnitText(line.eUnits()));
        batch.PutValue(s, "En", LibraryNumberText(line.sEnergy));
        batch.PutValue(s, "DEn", LibraryNumberText(line.sDEnergy));
        batch.PutValue(s, "Int", LibraryNumberText(line.sIntensity));
        batch.PutValue(s, "DInt", LibraryNumberText(line.sDIntensity));
        batch.PutValue(s, "RadID", line.szDecayRadEx());
    }
    IniBatchCommit committed = batch.Commit();
    result.ok = committed.ok;
    result.error = committed.error;
    return result;
}

CPrivateINI NamedIni(const std::filesystem::path& path) {
    CPrivateINI ini;
    ini.setINIFile(path.string());
    return ini;
}

} // namespace

NuclideLibraryWrite WriteNuclideLibrary(const std::filesystem::path& path,
                                        const std::vector<clsNuclide>& lines) {
    try {
        // One read and one write of the file for the whole library, with the bytes that a
        // PutValue per key would leave.
        CPrivateINIBatch batch(NamedIni(path));
        return PutLibrary(batch, lines);
    } catch (const NumberedError& e) {
        return {false, e.what()};
    }
}

NuclideLibraryWrite ReplaceNuclideLibrary(const std::filesystem::path& path,
                                          const std::vector<clsNuclide>& lines,
                                          const std::vector<std::string>& comments) {
    std::vector<std::string> head;
    for (const std::string& comment : comments)
        head.push_back(Utf8ToWin1252("; " + comment));
    try {
        CPrivateINIBatch batch(NamedIni(path), IniFile(std::move(head)));
        return PutLibrary(batch, lines);
    } catch (const NumberedError& e) {
        return {false, e.what()};
    }
}

} // namespace vexo
