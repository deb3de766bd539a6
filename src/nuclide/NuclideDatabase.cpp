#include "nuclide/NuclideDatabase.h"

#include <algorithm>

#include "base/AppDir.h"
#include "base/Sqlite.h"
#include "base/TextTrim.h"

namespace vexo {
namespace {

constexpr const char* kLineColumns =
    "Nuclide, Symbol, Z, At, HL, DHL, HLUnit, HLSec, En, DEn, Int, DInt, RadType, Origin";

DatabaseLine ReadLineRow(const SqliteStatement& row) {
    DatabaseLine l;
    l.nuclide = row.columnText(0);
    l.symbol = row.columnText(1);
    l.z = static_cast<int>(row.columnInt(2));
    l.massNumber = row.columnText(3);
    l.halfLife = row.columnDouble(4);
    l.halfLifeUnc = row.columnDouble(5);
    l.halfLifeUnit = static_cast<int>(row.columnInt(6));
    l.halfLifeSeconds = row.columnDouble(7);
    l.energyKeV = row.columnDouble(8);
    l.energyUncKeV = row.columnDouble(9);
    l.intensityPercent = row.columnDouble(10);
    l.intensityUncPercent = row.columnDouble(11);
    l.radType = row.columnText(12);
    l.origin = row.columnText(13);
    return l;
}

DatabaseLines CollectLines(SqliteStatement& query) {
    DatabaseLines result;
    while (query.step()) {
        if (result.lines.size() == kMaxDatabaseHits) {
            result.truncated = true;
            break;
        }
        result.lines.push_back(ReadLineRow(query));
    }
    return result;
}

// A text literal for the element query, which is built as text: quotes doubled.
std::string QuoteDoubled(const std::string& text) {
    std::string out;
    for (char c : text) {
        out.push_back(c);
        if (c == '\'')
            out.push_back('\'');
    }
    return out;
}

} // namespace

std::filesystem::path DefaultNuclideDatabasePath() {
    std::error_code ec;
    auto inAppDir = AppDir() / kNuclideDatabaseFile;
    if (std::filesystem::exists(inAppDir, ec))
        return inAppDir;
    return ExecutableDir() / kNuclideDatabaseFile;
}

NuclideDatabase::NuclideDatabase(const std::filesystem::path& path)
    : m_db(std::make_unique<SqliteDb>(path, SqliteDb::Mode::ReadOnly)) {
    try {
        m_db->prepare("SELECT 1 FROM NuclearWalletCards LIMIT 1").step();
    } catch (const SqliteError& e) {
        throw SqliteError(path.string() + ": " + e.what());
    }
}

NuclideDatabase::~NuclideDatabase() = default;

std::vector<DatabaseElement> NuclideDatabase::Elements() {
    auto query = m_db->prepare("SELECT DISTINCT Symbol,Z FROM NuclearWalletCards ORDER BY Z");
    std::vector<DatabaseElement> elements;
    while (query.step())
        elements.push_back({query.columnText(0), static_cast<int>(query.columnInt(1))});
    return elements;
}

std::vector<std::string> NuclideDatabase::Isotopes(const std::string& symbol) {
    auto query = m_db->prepare("SELECT * FROM NuclearWalletCards WHERE Symbol = '" +
                               QuoteDoubled(symbol) + "'");
    const int at = query.columnIndex("At");
    std::vector<std::string> names;
    while (query.step()) {
        std::string name = symbol + "-" + std::string(TrimBlanks(query.columnText(at)));
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(std::move(name));
    }
    return names;
}

std::vector<std::string> NuclideDatabase::Nuclides() {
    auto query = m_db->prepare(
        "SELECT Nuclide FROM NuclearWalletCards GROUP BY Nuclide ORDER BY Z, MIN(rowid)");
    std::vector<std::string> names;
    while (query.step())
        names.push_back(query.columnText(0));
    return names;
}

DatabaseLines NuclideDatabase::Lines(const std::string& nuclide, double minIntensityPercent) {
    auto query = m_db->prepare(std::string("SELECT ") + kLineColumns +
                               " FROM NuclearWalletCards WHERE Nuclide = ? AND Int >= ?"
                               " ORDER BY En LIMIT ?");
    query.bind(1, nuclide).bind(2, minIntensityPercent);
    query.bind(3, static_cast<int64_t>(kMaxDatabaseHits + 1));
    return CollectLines(query);
}

DatabaseLines NuclideDatabase::LinesInWindow(double lowKeV, double highKeV,
                                             double minIntensityPercent) {
    auto query = m_db->prepare(std::string("SELECT ") + kLineColumns +
                               " FROM NuclearWalletCards WHERE En BETWEEN ? AND ? AND Int >= ?"
                               " ORDER BY En LIMIT ?");
    query.bind(1, lowKeV).bind(2, highKeV).bind(3, minIntensityPercent);
    query.bind(4, static_cast<int64_t>(kMaxDatabaseHits + 1));
    return CollectLines(query);
}

clsNuclide ToNuclide(const DatabaseLine& line) {
    clsNuclide n;
    n.szElemName = line.nuclide;
    n.nAtNum = static_cast<int16_t>(line.z);
    n.bSetHL(static_cast<float>(line.halfLife), static_cast<float>(line.halfLifeUnc),
             UnitCode(line.halfLifeUnit));
    n.sEnergy = static_cast<float>(line.energyKeV);
    n.sDEnergy = static_cast<float>(line.energyUncKeV);
    n.sIntensity = static_cast<float>(line.intensityPercent);
    n.sDIntensity = static_cast<float>(line.intensityUncPercent);
    if (auto row = RadiationRowOfText(line.radType))
        n.bSetRadType(RadiationCode(*row));
    return n;
}

} // namespace vexo
