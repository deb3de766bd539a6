#include "nuclide/NuclideLibrary.h"

#include <charconv>
#include <cmath>
#include <fstream>

#include "base/CPrivateINI.h"
#include "base/FileBytes.h"
#include "base/IniFile.h"
#include "base/NumberText.h"
#include "base/Rounding.h"
#include "base/TextFile.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

constexpr std::string_view kIdentification = "fileid=vexo nuclide library";

char LowerAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// Collects one field at a time (lower-cased) and tells whether any field held the
// identification. A very long field is cut from the front, keeping enough of its tail
// that a match across the cut is still seen.
class FieldMatcher {
public:
    void feed(const char* data, std::size_t size) {
        for (std::size_t i = 0; i < size && !m_found; ++i) {
            char c = data[i];
            if (c == ',' || c == '\r' || c == '\n') {
                endField();
                continue;
            }
            m_field.push_back(LowerAscii(c));
            if (m_field.size() >= kMaxField) {
                m_found = m_field.find(kIdentification) != std::string::npos;
                m_field.erase(0, m_field.size() - (kIdentification.size() - 1));
            }
        }
    }
    bool finish() {
        endField();
        return m_found;
    }

private:
    static constexpr std::size_t kMaxField = 1 << 16;
    void endField() {
        if (!m_found && m_field.find(kIdentification) != std::string::npos)
            m_found = true;
        m_field.clear();
    }
    std::string m_field;
    bool m_found = false;
};

// The keys of one line section, read with one pass of the INI store instead of one pass
// per key: a library of a thousand lines is read in about a second rather than ten.
// value() gives what CPrivateINI::GetValue gives: the first key of that name (letter
// case ignored), one pair of enclosing quotes removed, at most 999 characters, and the
// default for a missing key. A key line without "=" reads as empty here where GetValue
// gives the default; every key of a library line defaults to empty, so the two agree.
class SectionValues {
public:
    SectionValues(CPrivateINI& ini, const std::string& section) : m_pairs(ini.GetPairs(section)) {}

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
clsNuclide ReadLine(CPrivateINI& ini, const std::string& section,
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
    std::ifstream in = OpenForReading(path);
    if (!in)
        return false;
    FieldMatcher matcher;
    char buffer[8192];
    while (in) {
        in.read(buffer, sizeof buffer);
        matcher.feed(buffer, static_cast<std::size_t>(in.gcount()));
    }
    return matcher.finish();
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
    CPrivateINI ini;
    ini.setINIFile(path.string());
    std::string section;
    try {
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
        ini.PutValue(kLibraryInfoSection, kLibraryIdKey, kLibraryIdValue);
        for (const clsNuclide& line : lines) {
            const std::string s = LibrarySectionName(line);
            ini.PutValue(s, "NucName", line.szElemName);
            ini.PutLongValue(s, "AtNo", line.nAtNum);
            // Placeholders that older readers expect; nothing reads them.
            ini.PutValue(s, "NucTypes", "TYPE");
            ini.PutValue(s, "NucDecayMode", "DECAYMODE");
            ini.PutValue(s, "NucDecayBranch", "0.0");
            ini.PutValue(s, "HL", LibraryNumberText(line.sHL()));
            ini.PutValue(s, "DHL", LibraryNumberText(line.sDHL));
            ini.PutValue(s, "HLUnits", HalfLifeUnitText(line.eUnits()));
            ini.PutValue(s, "En", LibraryNumberText(line.sEnergy));
            ini.PutValue(s, "DEn", LibraryNumberText(line.sDEnergy));
            ini.PutValue(s, "Int", LibraryNumberText(line.sIntensity));
            ini.PutValue(s, "DInt", LibraryNumberText(line.sDIntensity));
            ini.PutValue(s, "RadID", line.szDecayRadEx());
        }
    } catch (const NumberedError& e) {
        result.error = e.what();
        return result;
    }
    // The INI writer reports nothing, so check that the file now carries its identification.
    if (!IsNuclideLibrary(path)) {
        result.error = "cannot write " + path.string();
        return result;
    }
    result.ok = true;
    return result;
}

} // namespace vexo
