// LARA decay-data files: synthetic text for the rules, real files read in place.
#include <gtest/gtest.h>

#include <algorithm>

#include "TestSupport.h"
#include "nuclide/LaraFile.h"

using namespace vexo;

namespace {

const char* kSample =
    "Nuclide ; Cs-137 \r\n"
    "Element ; Cesium\r\n"
    "Z ; 55\r\n"
    "Half-life (s) ; 947.3E6 ; 0.7E6\r\n"
    "Half-life (a) ; 30.018 ; 0.022\r\n"
    "Emissions (3 lines) sorted by increasing energy\r\n"
    "-----------------------------------------------\r\n"
    "Energy (keV) ; Ener. unc. (keV) ; Intensity (%) ; Int. unc. (%) ; Type ; Origin ; Lvl. "
    "start ; Lvl. end\r\n"
    "32.1939 ;  ; 3.66 ; 0.06 ; XKa1 ; Ba ;  ;  ; \r\n"
    "511 ;  ; 1.5 ; 0.2 ; g511 ; Ne-22 ; -1 ; -1\r\n"
    "661.6553 ; 0.0030 ; 85.01 ; 0.20 ; g ; Ba-137 ; 2 ; 0 ; \r\n"
    "===============================================\r\n";

std::filesystem::path LaraDir() {
    return vexo::test::SharedDir() / "nucdata" / "lara";
}

} // namespace

TEST(Lara, ParsesHeaderHalfLifeAndEmissions) {
    LaraRead read = ParseLara(kSample);
    ASSERT_TRUE(read.ok) << read.error;
    const LaraNuclide& n = read.nuclide;
    EXPECT_EQ(n.name, "Cs-137");
    EXPECT_EQ(n.atomicNumber, 55);
    // The natural unit wins over the seconds line, whichever comes first.
    EXPECT_EQ(n.halfLifeUnit, 9);
    EXPECT_DOUBLE_EQ(n.halfLife, 30.018);
    EXPECT_DOUBLE_EQ(n.halfLifeUnc, 0.022);
    ASSERT_EQ(n.emissions.size(), 3u);
    EXPECT_DOUBLE_EQ(n.emissions[0].energyKeV, 32.1939);
    EXPECT_EQ(n.emissions[0].energyUncKeV, 0.0); // blank uncertainty
    EXPECT_EQ(n.emissions[0].type, "XKa1");
    EXPECT_EQ(n.emissions[1].type, "g511");
    EXPECT_DOUBLE_EQ(n.emissions[2].intensityPercent, 85.01);
    EXPECT_DOUBLE_EQ(n.emissions[2].energyUncKeV, 0.003);
    EXPECT_EQ(n.emissions[2].origin, "Ba-137");
    // A half-life in seconds only is kept in seconds.
    read = ParseLara("Nuclide ; X-1\nHalf-life (s) ; 153.27 ; 0.08\n");
    ASSERT_TRUE(read.ok);
    EXPECT_EQ(read.nuclide.halfLifeUnit, 5);
    EXPECT_DOUBLE_EQ(read.nuclide.halfLife, 153.27);
}

TEST(Lara, BrokenInputIsReportedWithItsLine) {
    struct Case {
        const char* text;
        const char* inError;
    } cases[] = {
        {"Z ; 55\n", "Nuclide"},
        {"Nuclide ; X-1\nHalf-life (fortnight) ; 1 ; 0\n", "line 2"},
        {"Nuclide ; X-1\nHalf-life (d) ; soon ; 0\n", "line 2"},
        {"Nuclide ; X-1\nZ ; many\n", "line 2"},
        {"Nuclide ; X-1\nZ ; 55.5\n", "line 2"},
        {"Nuclide ; X-1\nEnergy (keV) ; a\n12 ; ; x ; ; g ; X\n", "line 3"},
        {"Nuclide ; X-1\nEnergy (keV) ; a\n12 ; ; 1\n", "line 3"},
    };
    for (const auto& c : cases) {
        LaraRead read = ParseLara(c.text);
        EXPECT_FALSE(read.ok) << c.text;
        EXPECT_NE(read.error.find(c.inError), std::string::npos) << read.error;
    }
}

TEST(Lara, TypeAndUnitVocabularies) {
    struct TypeCase {
        const char* lara;
        const char* ours;
    } types[] = {{"g", "G"},        {"g511", "G ANH"}, {"XKa1", "X KA1"}, {"XKa2", "X KA2"},
                 {"XK'b1", "X KB"}, {"XK'b2", "X KB"}, {"XKb", "X KB"},   {"XK", "X K"},
                 {"XL", "X L"},     {"XLa", "X L"},    {"a", "A"},        {"b-", "B-"},
                 {"b+", "B+"}};
    for (const auto& t : types)
        EXPECT_EQ(LaraRadiationText(t.lara), t.ours) << t.lara;
    EXPECT_FALSE(LaraRadiationText("e"));
    EXPECT_FALSE(LaraRadiationText("G"));
    int unit = 9;
    for (const char* text : {"a", "d", "h", "min", "s", "ms", "\xC2\xB5s"})
        EXPECT_EQ(LaraHalfLifeUnit(text), unit--) << text;
    EXPECT_FALSE(LaraHalfLifeUnit("yr"));
}

TEST(Lara, RealFilesReadInPlace) {
    if (!std::filesystem::is_directory(LaraDir()))
        GTEST_SKIP() << "no decay data at " << LaraDir();
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(LaraDir())) {
        if (entry.path().extension() != ".txt")
            continue;
        ++files;
        LaraRead read = ReadLaraFile(entry.path());
        EXPECT_TRUE(read.ok) << read.error;
        EXPECT_GT(read.nuclide.atomicNumber, 0) << entry.path();
    }
    EXPECT_GT(files, 0);
    const struct {
        const char* name;
        int z, unit;
        double halfLife, lineKeV, intensity; // one line and its intensity, 0: none checked
    } cases[] = {{"Cs-137", 55, 9, 30.018, 661.6553, 85.01},
                 {"Na-22", 11, 9, 2.6029, 1274.537, 99.94},
                 {"Co-57", 27, 8, 271.81, 0, 0},
                 {"Ba-137m", 56, 6, 2.5545, 0, 0},
                 {"Tl-208", 81, 6, 3.058, 0, 0}};
    for (const auto& c : cases) {
        LaraRead read = ReadLaraFile(LaraDir() / (std::string(c.name) + ".lara.txt"));
        ASSERT_TRUE(read.ok) << read.error;
        EXPECT_EQ(read.nuclide.name, c.name);
        EXPECT_EQ(read.nuclide.atomicNumber, c.z);
        EXPECT_EQ(read.nuclide.halfLifeUnit, c.unit) << c.name;
        EXPECT_DOUBLE_EQ(read.nuclide.halfLife, c.halfLife) << c.name;
        const auto& e = read.nuclide.emissions;
        EXPECT_TRUE(std::is_sorted(e.begin(), e.end(), [](const auto& a, const auto& b) {
            return a.energyKeV < b.energyKeV;
        })) << c.name;
        const auto line = std::find_if(e.begin(), e.end(),
                                       [&](const auto& x) { return x.energyKeV == c.lineKeV; });
        if (c.lineKeV > 0) {
            ASSERT_NE(line, e.end()) << c.name << " " << c.lineKeV;
            EXPECT_DOUBLE_EQ(line->intensityPercent, c.intensity);
        }
    }
    LaraRead missing = ReadLaraFile(LaraDir() / "none.lara.txt");
    EXPECT_FALSE(missing.ok);
    EXPECT_NE(missing.error.find("none.lara.txt"), std::string::npos);
}

TEST(Lara, ParentBlocksAreTaggedAndRulesSkipped) {
    LaraRead read = ParseLara(
        "Nuclide ; Am-242\nZ ; 95\n"
        "------------ Am-242 ------------\n"
        "Energy (keV) ; Ener. unc. (keV) ; Intensity (%) ; Int. unc. (%) ; Type ; Origin ; "
        "Lvl. start ; Lvl. end ; Parent\n"
        "42.13 ; 0.05 ; 0.03954 ; 0.00005 ; g ; Cm-242 ; 1 ; 0 ; Am-242\n"
        "------------ Pu-242 ------------\n"
        "44.915 ; 0.013 ; 0.0384 ; 0.0008 ; g ; U-238 ; 1 ; 0 ; Pu-242\n"
        "=================================\n");
    ASSERT_TRUE(read.ok) << read.error;
    ASSERT_EQ(read.nuclide.emissions.size(), 2u);
    EXPECT_EQ(read.nuclide.emissions[0].parent, "Am-242");
    EXPECT_EQ(read.nuclide.emissions[1].parent, "Pu-242");
}
