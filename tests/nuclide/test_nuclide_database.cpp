// The nuclide database: built from the LARA files and checked against the files' own
// text, read here without the program's parser; the editor's queries; energy search.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>

#include "TestSupport.h"
#include "base/Sqlite.h"
#include "nuclide/NuclideDatabase.h"
#include "nuclide/NuclideDatabaseBuilder.h"
#include "nuclide/NuclideLibrary.h"

using namespace vexo;

namespace {

std::filesystem::path LaraDir() {
    return vexo::test::SharedDir() / "nucdata" / "lara";
}

std::filesystem::path ShippedDatabase() {
    return std::filesystem::path(VEXO_SOURCE_DIR) / "data" / kNuclideDatabaseFile;
}

// What the file says, read with plain text matching: the emission rows (lines that begin
// with a digit) and the half-life in seconds.
struct FileFacts {
    std::size_t emissionRows = 0;
    double halfLifeSeconds = 0.0;
    double halfLifeSecondsUnc = 0.0;
};

FileFacts ReadFacts(const std::string& nuclide) {
    FileFacts facts;
    std::ifstream in(LaraDir() / (nuclide + ".lara.txt"));
    std::string line;
    std::regex seconds(R"(^Half-life \(s\) ; ([0-9.E+-]+) ; ([0-9.E+-]+))");
    std::smatch m;
    while (std::getline(in, line)) {
        if (!line.empty() && line[0] >= '0' && line[0] <= '9')
            ++facts.emissionRows;
        if (std::regex_search(line, m, seconds)) {
            facts.halfLifeSeconds = std::stod(m[1]);
            facts.halfLifeSecondsUnc = std::stod(m[2]);
        }
    }
    return facts;
}

const DatabaseLine* Find(const DatabaseLines& found, double energyKeV) {
    for (const auto& l : found.lines)
        if (std::abs(l.energyKeV - energyKeV) < 1e-6)
            return &l;
    return nullptr;
}

// One build for the whole suite: it reads all 229 files.
class BuiltDatabase : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        if (!std::filesystem::exists(LaraDir()))
            return;
        dir = std::make_unique<vexo::test::TempDir>();
        built = BuildNuclideDatabase(LaraDir(), *dir / "db.sqlite");
    }
    static void TearDownTestSuite() { dir.reset(); }
    void SetUp() override {
        if (!dir)
            GTEST_SKIP() << "no decay data at " << LaraDir();
        ASSERT_TRUE(built.ok) << built.error;
        db = std::make_unique<NuclideDatabase>(*dir / "db.sqlite");
    }
    static inline std::unique_ptr<vexo::test::TempDir> dir;
    static inline NuclideDatabaseBuild built;
    std::unique_ptr<NuclideDatabase> db;
};

} // namespace

TEST_F(BuiltDatabase, MatchesTheFilesLineForLine) {
    EXPECT_EQ(built.nuclides, 229u);
    EXPECT_TRUE(built.skipped.empty());
    for (const char* nuclide : {"Co-60", "Cs-137", "Eu-152", "Am-241"}) {
        FileFacts facts = ReadFacts(nuclide);
        DatabaseLines lines = db->Lines(nuclide);
        EXPECT_EQ(lines.lines.size(), facts.emissionRows) << nuclide;
        ASSERT_FALSE(lines.lines.empty()) << nuclide;
        // Half-lives in seconds agree with the file's seconds line within its uncertainty.
        EXPECT_NEAR(lines.lines[0].halfLifeSeconds, facts.halfLifeSeconds, facts.halfLifeSecondsUnc)
            << nuclide;
    }
    const DatabaseLine* co = Find(db->Lines("Co-60"), 1332.492);
    ASSERT_NE(co, nullptr);
    EXPECT_EQ(co->symbol, "Co");
    EXPECT_EQ(co->z, 27);
    EXPECT_EQ(co->massNumber, "60");
    EXPECT_DOUBLE_EQ(co->intensityPercent, 99.9826);
    EXPECT_EQ(co->radType, "G");
    EXPECT_EQ(co->halfLifeUnit, 9);
    EXPECT_DOUBLE_EQ(co->halfLife, 5.2711);
    const DatabaseLine* eu = Find(db->Lines("Eu-152"), 1408.013);
    ASSERT_NE(eu, nullptr);
    EXPECT_DOUBLE_EQ(eu->intensityPercent, 20.85);
    EXPECT_DOUBLE_EQ(eu->energyUncKeV, 0.003);
    EXPECT_EQ(eu->origin, "Sm-152");
}

TEST_F(BuiltDatabase, TheShippedDatabaseIsTheBuiltOne) {
    NuclideDatabase shipped(ShippedDatabase());
    EXPECT_EQ(shipped.Nuclides(), db->Nuclides());
    auto all = [](NuclideDatabase& d) { return d.LinesInWindow(-1.0, 1e9).lines.size(); };
    EXPECT_EQ(all(shipped), all(*db));
    EXPECT_EQ(all(*db), built.lines);
}

TEST_F(BuiltDatabase, ElementAndIsotopeQueries) {
    auto elements = db->Elements();
    ASSERT_FALSE(elements.empty());
    for (std::size_t i = 1; i < elements.size(); ++i)
        EXPECT_LT(elements[i - 1].z, elements[i].z) << "one row per element, by Z";
    EXPECT_EQ(std::count_if(elements.begin(), elements.end(),
                            [](const auto& e) { return e.symbol == "Co" && e.z == 27; }),
              1);
    auto cobalt = db->Isotopes("Co");
    EXPECT_NE(std::find(cobalt.begin(), cobalt.end(), "Co-57"), cobalt.end());
    EXPECT_NE(std::find(cobalt.begin(), cobalt.end(), "Co-60"), cobalt.end());
    auto silver = db->Isotopes("Ag");
    EXPECT_NE(std::find(silver.begin(), silver.end(), "Ag-108m"), silver.end());
    EXPECT_TRUE(db->Isotopes("Xx").empty());
    EXPECT_TRUE(db->Isotopes("C' OR '1'='1").empty()) << "the symbol is a literal";
}

TEST_F(BuiltDatabase, EnergyWindowIsInclusiveAndFiltered) {
    DatabaseLines cs = db->LinesInWindow(661.6553, 661.6553);
    EXPECT_NE(std::find_if(cs.lines.begin(), cs.lines.end(),
                           [](const auto& l) { return l.nuclide == "Cs-137"; }),
              cs.lines.end());
    DatabaseLines wide = db->LinesInWindow(600, 700);
    DatabaseLines strong = db->LinesInWindow(600, 700, 10.0);
    EXPECT_LT(strong.lines.size(), wide.lines.size());
    for (std::size_t i = 1; i < wide.lines.size(); ++i)
        EXPECT_LE(wide.lines[i - 1].energyKeV, wide.lines[i].energyKeV);
    for (const auto& l : strong.lines) {
        EXPECT_GE(l.intensityPercent, 10.0);
        EXPECT_TRUE(l.energyKeV >= 600 && l.energyKeV <= 700);
    }
    EXPECT_TRUE(db->LinesInWindow(700, 600).lines.empty());
    EXPECT_FALSE(wide.truncated);
}

TEST_F(BuiltDatabase, LineBecomesALibraryRecord) {
    clsNuclide n = ToNuclide(*Find(db->Lines("Co-60"), 1173.228));
    EXPECT_EQ(LibrarySectionName(n), "Co-6027:1173.23:G");
    EXPECT_EQ(n.eUnits(), 9);
    EXPECT_FLOAT_EQ(n.sHL(), 5.2711f);
    EXPECT_FLOAT_EQ(n.sDHL, 0.0008f);
    EXPECT_NEAR(n.dGetHLSec(), 5.2711 * 365.24 * 86400, 1e3);
    clsNuclide x = ToNuclide(*Find(db->Lines("Cs-137"), 32.1939));
    EXPECT_EQ(x.szDecayRadEx(), "X KA1");
}

TEST(NuclideDatabase, MissingOrForeignFilesAreReported) {
    vexo::test::TempDir dir;
    EXPECT_THROW(NuclideDatabase(dir / "none.sqlite"), SqliteError);
    vexo::test::WriteBytes(dir / "text.sqlite", "not a database\r\n");
    EXPECT_THROW(NuclideDatabase(dir / "text.sqlite"), SqliteError);
    {
        SqliteDb other(dir / "other.sqlite", SqliteDb::Mode::Create);
        other.exec("CREATE TABLE T (A)");
    }
    try {
        NuclideDatabase db(dir / "other.sqlite");
        FAIL() << "a database without the table opened";
    } catch (const SqliteError& e) {
        EXPECT_NE(std::string(e.what()).find("NuclearWalletCards"), std::string::npos);
    }
}

TEST(NuclideDatabase, BuildFailsOnAFolderWithoutData) {
    vexo::test::TempDir dir;
    NuclideDatabaseBuild built = BuildNuclideDatabase(dir.path(), dir / "db.sqlite");
    EXPECT_FALSE(built.ok);
    EXPECT_NE(built.error.find("no LARA files"), std::string::npos);
    vexo::test::WriteBytes(dir / "Bad-1.lara.txt", "Nuclide ; Bad-1\r\nZ ; x\r\n");
    built = BuildNuclideDatabase(dir.path(), dir / "db.sqlite");
    EXPECT_FALSE(built.ok);
    EXPECT_NE(built.error.find("Bad-1.lara.txt"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir / "db.sqlite"));
}
