#pragma once
// The nuclide database: evaluated decay data (DDEP / LNE-LNHB) in the SQLite file
// "NuclWalletCards.sqlite", table NuclearWalletCards, one row per emission line:
//   Nuclide ("Co-60", "Ag-108m", "Ra-226 D"), Symbol ("Co"), Z, At (mass number with
//   any isomer or chain mark: "60", "108m", "226 D"), HL, DHL (half-life and its
//   uncertainty in the unit HLUnit 1..9, whose text is HLUnits), HLSec (half-life in
//   seconds), En, DEn (keV), Int, DInt (percent per decay), RadType (radiation text of
//   the library: "G", "G ANH", "X KA1", "X KA2", "X KB", "X L", "A", ...), LaraType (the
//   evaluation's own type: "g", "XKa1", ...), Origin (emitting nuclide or element).
// Indexed on Symbol, Z, Nuclide and En. Searches return at most kMaxDatabaseHits rows.
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "nuclide/clsNuclide.h"

namespace vexo {

class SqliteDb;

inline constexpr const char* kNuclideDatabaseFile = "NuclWalletCards.sqlite";
inline constexpr const char* kNuclideDatabaseTable = "NuclearWalletCards";
inline constexpr std::size_t kMaxDatabaseHits = 100000;

struct DatabaseElement {
    std::string symbol; // "Co"
    int z = 0;
};

struct DatabaseLine {
    std::string nuclide; // "Co-60"
    std::string symbol;
    int z = 0;
    std::string massNumber; // the At column: "60", "108m"
    double halfLife = 0.0;  // in halfLifeUnit
    double halfLifeUnc = 0.0;
    int halfLifeUnit = 0; // 1..9, 0 when the evaluation gives no half-life
    double halfLifeSeconds = 0.0;
    double energyKeV = 0.0;
    double energyUncKeV = 0.0;
    double intensityPercent = 0.0;
    double intensityUncPercent = 0.0;
    std::string radType; // library radiation text
    std::string origin;
};

struct DatabaseLines {
    std::vector<DatabaseLine> lines; // in order of energy
    bool truncated = false;          // more than kMaxDatabaseHits matched
};

// The database file: AppDir()/NuclWalletCards.sqlite when there is one, else the copy
// beside the executable (which is where the build and an installation put it).
std::filesystem::path DefaultNuclideDatabasePath();

class NuclideDatabase {
public:
    // Opens read-only. Throws SqliteError ("PATH: reason") when the file is missing or is
    // not a database with the table.
    explicit NuclideDatabase(const std::filesystem::path& path);
    ~NuclideDatabase();
    NuclideDatabase(const NuclideDatabase&) = delete;
    NuclideDatabase& operator=(const NuclideDatabase&) = delete;

    // "SELECT DISTINCT Symbol,Z FROM NuclearWalletCards ORDER BY Z".
    std::vector<DatabaseElement> Elements();
    // The isotope names of an element from "SELECT * FROM NuclearWalletCards WHERE
    // Symbol = '...'": symbol, "-", trimmed At; each name once, in row order.
    std::vector<std::string> Isotopes(const std::string& symbol);
    // Every nuclide name of the database, ordered by Z and row order.
    std::vector<std::string> Nuclides();
    // The lines of one nuclide with at least minIntensity percent, in order of energy.
    DatabaseLines Lines(const std::string& nuclide, double minIntensityPercent = 0.0);
    // Lines with lowKeV <= energy <= highKeV and at least minIntensity percent, in order of
    // energy: the search behind identification by energy.
    DatabaseLines LinesInWindow(double lowKeV, double highKeV, double minIntensityPercent = 0.0);

private:
    std::unique_ptr<SqliteDb> m_db;
};

// The line as a library record: name, atomic number, half-life with unit, energy,
// intensity, uncertainties and radiation type (a radiation text the table lacks leaves
// the record's type unset).
clsNuclide ToNuclide(const DatabaseLine& line);

} // namespace vexo
