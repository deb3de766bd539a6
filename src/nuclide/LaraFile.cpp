#include "nuclide/LaraFile.h"

#include "base/NumberText.h"
#include "base/TextFile.h"
#include "base/TextTrim.h"

namespace vexo {
namespace {

std::vector<std::string_view> SplitFields(std::string_view line) {
    std::vector<std::string_view> fields;
    std::size_t start = 0;
    for (;;) {
        std::size_t semicolon = line.find(';', start);
        fields.push_back(TrimBlanks(line.substr(start, semicolon - start)));
        if (semicolon == std::string_view::npos)
            return fields;
        start = semicolon + 1;
    }
}

bool StartsWith(std::string_view s, std::string_view prefix) {
    return s.substr(0, prefix.size()) == prefix;
}

// A field that may be blank (uncertainties): blank is 0, anything else must be a number.
std::optional<double> OptionalNumber(std::string_view field) {
    if (field.empty())
        return 0.0;
    return StrictDouble(field);
}

// "Half-life (a) ; 30.018 ; 0.022": unit text between the parentheses.
std::string_view HalfLifeUnitField(std::string_view key) {
    auto open = key.find('(');
    auto close = key.find(')', open);
    if (open == std::string_view::npos || close == std::string_view::npos)
        return {};
    return TrimBlanks(key.substr(open + 1, close - open - 1));
}

struct Parser {
    LaraRead result;
    bool inEmissions = false;
    bool haveHalfLife = false; // from a natural-unit line, which wins over seconds

    bool fail(int lineNo, const std::string& why) {
        result.error = "line " + std::to_string(lineNo) + ": " + why;
        return false;
    }

    bool halfLife(int lineNo, const std::vector<std::string_view>& f) {
        auto unit = LaraHalfLifeUnit(HalfLifeUnitField(f[0]));
        if (!unit)
            return fail(lineNo, "unknown half-life unit in \"" + std::string(f[0]) + "\"");
        if (haveHalfLife || (*unit == 5 && result.nuclide.halfLifeUnit != 0))
            return true;
        auto value = f.size() > 1 ? StrictDouble(f[1]) : std::nullopt;
        auto unc = f.size() > 2 ? OptionalNumber(f[2]) : std::optional<double>(0.0);
        if (!value || !unc)
            return fail(lineNo, "half-life is not a number");
        result.nuclide.halfLife = *value;
        result.nuclide.halfLifeUnc = *unc;
        result.nuclide.halfLifeUnit = *unit;
        haveHalfLife = *unit != 5;
        return true;
    }

    bool emission(int lineNo, const std::vector<std::string_view>& f) {
        if (f.size() < 6)
            return fail(lineNo, "emission line with fewer than six fields");
        LaraEmission e;
        auto energy = StrictDouble(f[0]);
        auto energyUnc = OptionalNumber(f[1]);
        auto intensity = StrictDouble(f[2]);
        auto intensityUnc = OptionalNumber(f[3]);
        if (!energy || !energyUnc || !intensity || !intensityUnc)
            return fail(lineNo, "emission energy or intensity is not a number");
        e.energyKeV = *energy;
        e.energyUncKeV = *energyUnc;
        e.intensityPercent = *intensity;
        e.intensityUncPercent = *intensityUnc;
        e.type = f[4];
        e.origin = f[5];
        if (f.size() > 8)
            e.parent = f[8];
        result.nuclide.emissions.push_back(std::move(e));
        return true;
    }

    bool line(int lineNo, std::string_view text) {
        if (TrimBlanks(text).empty())
            return true;
        if (StartsWith(text, "===")) { // end of the emission table
            inEmissions = false;
            return true;
        }
        if (StartsWith(text, "---")) // rule, or the banner of a parent's block of lines
            return true;
        auto f = SplitFields(text);
        if (inEmissions)
            return emission(lineNo, f);
        if (f[0] == "Nuclide" && f.size() > 1)
            result.nuclide.name = f[1];
        else if (f[0] == "Z" && f.size() > 1) {
            auto z = StrictDouble(f[1]);
            if (!z || *z < 0 || *z > 200 || *z != static_cast<int>(*z))
                return fail(lineNo, "atomic number is not a whole number from 0 to 200");
            result.nuclide.atomicNumber = static_cast<int>(*z);
        } else if (StartsWith(f[0], "Half-life"))
            return halfLife(lineNo, f);
        else if (StartsWith(f[0], "Energy (keV)"))
            inEmissions = true;
        return true;
    }
};

} // namespace

std::optional<int> LaraHalfLifeUnit(std::string_view unit) {
    struct Entry {
        std::string_view text;
        int unit;
    };
    static constexpr Entry kUnits[] = {
        {"ps", 1},  {"ns", 2}, {"us", 3}, {"\xC2\xB5s", 3}, {"ms", 4}, {"s", 5},
        {"min", 6}, {"h", 7},  {"d", 8},  {"a", 9},         {"y", 9},
    };
    for (const auto& e : kUnits)
        if (e.text == unit)
            return e.unit;
    return std::nullopt;
}

std::optional<std::string> LaraRadiationText(std::string_view type) {
    if (type == "g")
        return "G";
    if (type == "g511")
        return "G ANH";
    if (type == "XKa1")
        return "X KA1";
    if (type == "XKa2")
        return "X KA2";
    if (type == "XKb" || StartsWith(type, "XK'b"))
        return "X KB";
    if (type == "XK")
        return "X K";
    if (StartsWith(type, "XL"))
        return "X L";
    if (type == "a" || type == "a*")
        return "A";
    if (type == "b-")
        return "B-";
    if (type == "b+")
        return "B+";
    return std::nullopt;
}

LaraRead ParseLara(std::string_view text) {
    Parser p;
    int lineNo = 0;
    for (const std::string& line : SplitLines(text))
        if (!p.line(++lineNo, line))
            return p.result;
    if (p.result.nuclide.name.empty()) {
        p.result.error = "no \"Nuclide\" line";
        return p.result;
    }
    p.result.ok = true;
    return p.result;
}

LaraRead ReadLaraFile(const std::filesystem::path& path) {
    auto text = ReadTextFile(path, 4u << 20);
    if (!text) {
        LaraRead failed;
        failed.error = "cannot read " + path.string();
        return failed;
    }
    LaraRead result = ParseLara(*text);
    if (!result.ok)
        result.error = path.string() + ": " + result.error;
    return result;
}

} // namespace vexo
