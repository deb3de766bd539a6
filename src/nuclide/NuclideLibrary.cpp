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

char LowerAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// The keys of one line section, from one read of the section instead of one per key.
// value() gives what CPrivateINI::GetValue gives: the first key of that name (letter
// case ignored), one pair of enclosing quotes removed, at most 999 characters, and the
// default for a missing key. A key line without "=" reads as empty here where GetValue
// gives the default; every key of a library line defaults to empty, so the two agree.
class SectionValues {
public:
    SectionValues(CPrivateINIBatch& ini, const std::string& section)
        : m_pairs(ini.GetPairs(section)) {}

    std::string value(std::string_view key, const std::string& defaultValue) const {
        for (const auto& [name, value] : m_pairs)
            if (EqualNoCase(name, key))
                return FitValue(StripQuotes(value));
        return defaultValue;
    }
    // GetLongValue's rule: the default for an empty or missing value, else the integer the
    // text begins with (0 when it does not begin with one).
    int32_t longValue(std::string_view key, int32_t defaultValue) const {
        std::string text = value(key, "");
        return text.empty() ? defaultValue : IniFile::ParseProfileInt(Utf8ToWin1252(text));
    }
    // A number with the library's lenient rule, as a single.
    float number(std::string_view key) const { return CSng(LeadingNumber(value(key, ""))); }

private:
    static bool EqualNoCase(std::string_view a, std::string_view b) {
        if (a.size() != b.size())
            return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (LowerAscii(a[i]) != LowerAscii(b[i]))
                return false;
        return true;
    }
    static std::string StripQuotes(const std::string& v) {
        if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front())
            return v.substr(1, v.size() - 2);
        return v;
    }
    // The store reads a value into a 1000-character buffer (Windows-1252 characters).
    static std::string FitValue(const std::string& utf8) {
        std::string ansi = Utf8ToWin1252(utf8);
        if (ansi.size() <= 999)
            return utf8;
        return Win1252ToUtf8(std::string_view(ansi).substr(0, 999));
    }

    std::vector<std::pair<std::string, std::string>> m_pairs;
};

// Reads one line section. Throws OverflowError for a number beyond its type's range.
clsNuclide ReadLine(CPrivateINIBatch& ini, const std::string& section,
                    std::vector<std::string>& warnings) {
    SectionValues keys(ini, section);
    clsNuclide line;
    line.szElemName = keys.value("NucName", "");
    int32_t atomicNumber = keys.longValue("AtNo", 0);
    if (atomicNumber < -32768 || atomicNumber > 32767)
        throw OverflowError("atomic number " + std::to_string(atomicNumber) + " out of range");
    line.nAtNum = static_cast<int16_t>(atomicNumber);
    float halfLife = keys.number("HL");
    std::string unitText = keys.value("HLUnits", "");
    line.sEnergy = keys.number("En");
    line.sIntensity = keys.number("Int");
    std::string radiationText = keys.value("RadID", "");

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

NuclideLibraryWrite WriteNuclideLibrary(const std::filesystem::path& path,
                                        const std::vector<clsNuclide>& lines) {
    NuclideLibraryWrite result;
    CPrivateINI ini;
    ini.setINIFile(path.string());
    try {
        // One read and one write of the file for the whole library, with the bytes that a
        // PutValue per key would leave.
        CPrivateINIBatch batch(ini);
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
        if (!committed.ok) {
            result.error = committed.error;
            return result;
        }
    } catch (const NumberedError& e) {
        result.error = e.what();
        return result;
    }
    result.ok = true;
    return result;
}

} // namespace vexo
