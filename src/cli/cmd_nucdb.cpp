// vexo-cli nucdb: builds the nuclide database from LARA decay data and searches it by
// element, nuclide and energy.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "base/Sqlite.h"
#include "nuclide/NuclideDatabase.h"
#include "nuclide/NuclideDatabaseBuilder.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli nucdb [--db FILE] [--json] elements\n"
    "       vexo-cli nucdb [--db FILE] [--json] isotopes SYMBOL\n"
    "       vexo-cli nucdb [--db FILE] [--json] lines NUCLIDE [--min-intensity P]\n"
    "       vexo-cli nucdb [--db FILE] [--json] near KEV [--tolerance KEV] [--min-intensity P]\n"
    "       vexo-cli nucdb build --lara DIR --out FILE\n"
    "\n"
    "Searches the nuclide database (NuclWalletCards.sqlite; decay data DDEP / LNE-LNHB).\n"
    "  elements          the elements, by atomic number\n"
    "  isotopes SYMBOL   the element's nuclides, e.g. isotopes Co\n"
    "  lines NUCLIDE     the nuclide's emission lines, e.g. lines Co-60\n"
    "  near KEV          lines within --tolerance KEV (default 1) of KEV, nearest first\n"
    "  build             writes FILE from every LARA file of DIR\n"
    "  --db FILE         the database (default: NuclWalletCards.sqlite of the application\n"
    "                    directory, else beside vexo-cli)\n"
    "  --min-intensity P only lines of at least P percent per decay\n"
    "  --json            JSON instead of a table\n"
    "At most 100000 lines are listed.";

struct Options {
    std::filesystem::path db;
    bool json = false;
    double minIntensity = 0.0;
    double tolerance = 1.0;
    std::filesystem::path lara, out;
    std::vector<std::string> words; // the action and its argument
};

bool TakeArg(const std::string& a, ArgCursor& cursor, Options& o) {
    if (a == "--db")
        o.db = cursor.value(a);
    else if (a == "--json")
        o.json = true;
    else if (a == "--min-intensity")
        o.minIntensity = NumberArg(cursor.value(a), "--min-intensity");
    else if (a == "--tolerance") {
        o.tolerance = NumberArg(cursor.value(a), "--tolerance");
        if (o.tolerance < 0)
            throw UsageError{"--tolerance needs a value >= 0"};
    } else if (a == "--lara")
        o.lara = cursor.value(a);
    else if (a == "--out")
        o.out = cursor.value(a);
    else if (a.rfind("--", 0) == 0)
        return false;
    else
        o.words.push_back(a);
    return true;
}

nlohmann::ordered_json LineJson(const DatabaseLine& l) {
    return {{"nuclide", l.nuclide},
            {"z", l.z},
            {"energy_keV", JsonDouble(l.energyKeV)},
            {"energy_unc_keV", JsonDouble(l.energyUncKeV)},
            {"intensity_percent", JsonDouble(l.intensityPercent)},
            {"intensity_unc_percent", JsonDouble(l.intensityUncPercent)},
            {"radiation", l.radType},
            {"half_life", JsonDouble(l.halfLife)},
            {"half_life_unit", HalfLifeUnitText(l.halfLifeUnit)},
            {"half_life_s", JsonDouble(l.halfLifeSeconds)},
            {"origin", l.origin}};
}

void PrintLines(const DatabaseLines& found, bool json) {
    if (json) {
        auto list = nlohmann::ordered_json::array();
        for (const auto& l : found.lines)
            list.push_back(LineJson(l));
        PrintJson({{"lines", list}, {"truncated", found.truncated}});
        return;
    }
    std::printf("%-10s %12s %10s %12s %10s  %-7s %s\n", "Nuclide", "Energy keV", "+-",
                "Intensity %", "+-", "Type", "Half-life");
    for (const auto& l : found.lines)
        std::printf("%-10s %12.4f %10.4f %12.5g %10.3g  %-7s %g%s\n", l.nuclide.c_str(),
                    l.energyKeV, l.energyUncKeV, l.intensityPercent, l.intensityUncPercent,
                    l.radType.c_str(), l.halfLife, HalfLifeUnitText(l.halfLifeUnit));
    if (found.truncated)
        std::printf("(only the first %zu lines)\n", kMaxDatabaseHits);
}

void PrintNames(const char* key, const std::vector<std::string>& names, bool json) {
    if (json) {
        PrintJson({{key, names}});
        return;
    }
    for (const auto& n : names)
        std::printf("%s\n", n.c_str());
}

std::string Needs(const Options& o, const char* what) {
    if (o.words.size() != 2)
        throw UsageError{o.words[0] + " needs " + what};
    return o.words[1];
}

int Search(const Options& o) {
    NuclideDatabase db(o.db.empty() ? DefaultNuclideDatabasePath() : o.db);
    const std::string& action = o.words[0];
    if (action == "elements") {
        auto elements = db.Elements();
        if (o.json) {
            auto list = nlohmann::ordered_json::array();
            for (const auto& e : elements)
                list.push_back({{"symbol", e.symbol}, {"z", e.z}});
            PrintJson({{"elements", list}});
        } else {
            for (const auto& e : elements)
                std::printf("%3d %s\n", e.z, e.symbol.c_str());
        }
    } else if (action == "isotopes") {
        PrintNames("isotopes", db.Isotopes(Needs(o, "an element SYMBOL")), o.json);
    } else if (action == "lines") {
        PrintLines(db.Lines(Needs(o, "a NUCLIDE"), o.minIntensity), o.json);
    } else if (action == "near") {
        double kev = NumberArg(Needs(o, "an energy KEV"), "KEV");
        DatabaseLines found =
            db.LinesInWindow(kev - o.tolerance, kev + o.tolerance, o.minIntensity);
        std::stable_sort(found.lines.begin(), found.lines.end(),
                         [kev](const auto& a, const auto& b) {
                             return std::abs(a.energyKeV - kev) < std::abs(b.energyKeV - kev);
                         });
        PrintLines(found, o.json);
    } else {
        throw UsageError{"unknown action " + action};
    }
    return kExitOk;
}

int Build(const Options& o) {
    if (o.lara.empty() || o.out.empty())
        throw UsageError{"build needs --lara DIR and --out FILE"};
    NuclideDatabaseBuild built = BuildNuclideDatabase(o.lara, o.out);
    if (!built.ok)
        throw Failure{built.error};
    for (const auto& s : built.skipped)
        std::fprintf(stderr, "nucdb: left out %s\n", s.c_str());
    std::printf("%s: %zu line(s) of %zu nuclide(s)\n", o.out.string().c_str(), built.lines,
                built.nuclides);
    return kExitOk;
}

int RunNucdb(const std::vector<std::string>& args) {
    Options o;
    ParseArgs(
        args, [&](const std::string& a, ArgCursor& cursor) { return TakeArg(a, cursor, o); },
        "unknown option");
    if (o.words.empty())
        throw UsageError{"name an action: elements, isotopes, lines, near or build"};
    if (o.words[0] == "build")
        return Build(o);
    try {
        return Search(o);
    } catch (const SqliteError& e) {
        throw Failure{e.what()};
    }
}

const RegisterCommand kRegister{
    "nucdb", {"search the nuclide database (or build it from LARA data)", kUsage, RunNucdb}};

} // namespace
} // namespace vexo::cli
