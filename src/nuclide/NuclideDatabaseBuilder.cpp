#include "nuclide/NuclideDatabaseBuilder.h"

#include <algorithm>

#include "base/Sqlite.h"
#include "nuclide/LaraFile.h"
#include "nuclide/NuclideDatabase.h"
#include "nuclide/clsNuclide.h"

namespace vexo {
namespace {

constexpr const char* kSchema = R"(
CREATE TABLE NuclearWalletCards (
  Nuclide TEXT NOT NULL, Symbol TEXT NOT NULL, Z INTEGER NOT NULL, At TEXT NOT NULL,
  HL REAL, DHL REAL, HLUnit INTEGER, HLUnits TEXT, HLSec REAL,
  En REAL NOT NULL, DEn REAL, Int REAL, DInt REAL,
  RadType TEXT NOT NULL, LaraType TEXT, Origin TEXT);
CREATE TABLE Source (Key TEXT PRIMARY KEY, Value TEXT);
INSERT INTO Source VALUES ('Data', 'DDEP recommended decay data, LNE-LNHB (LARA files)');
INSERT INTO Source VALUES ('Credit', 'DDEP / LNE-LNHB');
)";

constexpr const char* kIndexes = R"(
CREATE INDEX NWC_Symbol ON NuclearWalletCards (Symbol);
CREATE INDEX NWC_Z ON NuclearWalletCards (Z);
CREATE INDEX NWC_Nuclide ON NuclearWalletCards (Nuclide);
CREATE INDEX NWC_En ON NuclearWalletCards (En);
)";

// "Ag-108m" -> symbol "Ag", mass "108m"; "Ra-226 D" -> "Ra", "226 D".
struct NameParts {
    std::string symbol;
    std::string mass;
    int massNumber = 0; // leading digits of mass, for ordering
};

NameParts SplitName(const std::string& name) {
    NameParts p;
    auto dash = name.find('-');
    p.symbol = name.substr(0, dash);
    if (dash != std::string::npos)
        p.mass = name.substr(dash + 1);
    for (char c : p.mass) {
        if (c < '0' || c > '9')
            break;
        p.massNumber = p.massNumber * 10 + (c - '0');
    }
    return p;
}

struct Loaded {
    std::vector<LaraNuclide> nuclides;
    std::string error;
};

Loaded LoadFolder(const std::filesystem::path& dir) {
    Loaded loaded;
    std::vector<std::filesystem::path> files;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(dir, ec)) {
        const std::string name = entry.path().filename().string();
        if (name.size() > 9 && name.substr(name.size() - 9) == ".lara.txt")
            files.push_back(entry.path());
    }
    if (ec) {
        loaded.error = "cannot list " + dir.string() + ": " + ec.message();
        return loaded;
    }
    if (files.empty()) {
        loaded.error = "no LARA files (*.lara.txt) in " + dir.string();
        return loaded;
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        LaraRead read = ReadLaraFile(file);
        if (!read.ok) {
            loaded.error = read.error;
            return loaded;
        }
        loaded.nuclides.push_back(std::move(read.nuclide));
    }
    std::stable_sort(loaded.nuclides.begin(), loaded.nuclides.end(),
                     [](const LaraNuclide& a, const LaraNuclide& b) {
                         auto pa = SplitName(a.name), pb = SplitName(b.name);
                         if (a.atomicNumber != b.atomicNumber)
                             return a.atomicNumber < b.atomicNumber;
                         if (pa.massNumber != pb.massNumber)
                             return pa.massNumber < pb.massNumber;
                         return pa.mass < pb.mass;
                     });
    return loaded;
}

// Inserts one nuclide's lines; returns how many.
std::size_t InsertNuclide(SqliteStatement& insert, const LaraNuclide& n,
                          std::vector<std::string>& skipped) {
    NameParts parts = SplitName(n.name);
    std::size_t count = 0;
    for (const LaraEmission& e : n.emissions) {
        if (!e.parent.empty() && e.parent != n.name)
            continue;
        auto radType = LaraRadiationText(e.type);
        if (!radType) {
            skipped.push_back(n.name + ": radiation type \"" + e.type + "\" at " +
                              std::to_string(e.energyKeV) + " keV");
            continue;
        }
        double seconds = n.halfLifeUnit ? n.halfLife * HalfLifeConversion(n.halfLifeUnit, 5) : 0;
        insert.bind(1, n.name).bind(2, parts.symbol).bind(3, int64_t{n.atomicNumber});
        insert.bind(4, parts.mass).bind(5, n.halfLife).bind(6, n.halfLifeUnc);
        insert.bind(7, int64_t{n.halfLifeUnit}).bind(8, HalfLifeUnitText(n.halfLifeUnit));
        insert.bind(9, seconds).bind(10, e.energyKeV).bind(11, e.energyUncKeV);
        insert.bind(12, e.intensityPercent).bind(13, e.intensityUncPercent);
        insert.bind(14, *radType).bind(15, e.type).bind(16, e.origin);
        insert.step();
        insert.reset();
        ++count;
    }
    return count;
}

} // namespace

NuclideDatabaseBuild BuildNuclideDatabase(const std::filesystem::path& laraDir,
                                          const std::filesystem::path& out) {
    NuclideDatabaseBuild result;
    Loaded loaded = LoadFolder(laraDir);
    if (!loaded.error.empty()) {
        result.error = loaded.error;
        return result;
    }
    std::error_code ec;
    std::filesystem::remove(out, ec);
    try {
        SqliteDb db(out, SqliteDb::Mode::Create);
        db.exec(kSchema);
        db.exec("BEGIN");
        auto insert = db.prepare("INSERT INTO NuclearWalletCards VALUES "
                                 "(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
        for (const LaraNuclide& n : loaded.nuclides) {
            result.lines += InsertNuclide(insert, n, result.skipped);
            ++result.nuclides;
        }
        db.exec("COMMIT");
        db.exec(kIndexes);
        db.exec("VACUUM");
    } catch (const SqliteError& e) {
        result.error = e.what();
        std::filesystem::remove(out, ec);
        return result;
    }
    result.ok = true;
    return result;
}

} // namespace vexo
