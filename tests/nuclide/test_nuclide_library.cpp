// Nuclide library files: identification, section names, writer and reader.
#include <gtest/gtest.h>

#include <sstream>

#include "TestSupport.h"
#include "base/CPrivateINI.h"
#include "base/NumberText.h"
#include "nuclide/NuclideLibrary.h"

using namespace vexo;
using vexo::test::ReadBytes;
using vexo::test::TempDir;
using vexo::test::WriteBytes;

namespace {

clsNuclide Line(const char* name, int16_t z, float energy, int radiationRow, float hl = 0.0f,
                int unit = NoUnit) {
    clsNuclide n;
    n.szElemName = name;
    n.nAtNum = z;
    n.sEnergy = energy;
    n.bSetRadType(RadiationCode(radiationRow));
    if (unit != NoUnit)
        n.bSetHL(hl, 0.0f, UnitCode(unit));
    return n;
}

// A read line as "name Z energy intensity half-life unit radiation".
std::string Fields(const clsNuclide& n) {
    std::ostringstream s;
    s << n.szElemName << " " << n.nAtNum << " " << n.sEnergy << " " << n.sIntensity << " "
      << n.sHL() << " " << n.eUnits() << " " << n.szDecayRadEx();
    return s.str();
}

NuclideLibraryRead Read(const std::filesystem::path& path, const std::string& lines) {
    WriteBytes(path, "[Info]\r\nFileID=Vexo Nuclide Library\r\n" + lines);
    return ReadNuclideLibrary(path);
}

} // namespace

TEST(LibrarySectionName, RoundsEnergyThenWritesShortestText) {
    struct Case {
        float energy;
        const char* expected;
    } cases[] = {{1173.228f, "Co-6027:1173.23:G"}, {1173.2f, "Co-6027:1173.2:G"},
                 {661.657f, "Co-6027:661.66:G"},   {511.0f, "Co-6027:511:G"},
                 {0.004f, "Co-6027:0:G"},          {59.5409f, "Co-6027:59.54:G"},
                 {2614.511f, "Co-6027:2614.51:G"}, {0.005f, "Co-6027:0.01:G"},
                 {100.0f, "Co-6027:100:G"},        {-5.678f, "Co-6027:-5.68:G"}};
    for (const auto& c : cases)
        EXPECT_EQ(LibrarySectionName(Line("Co-60", 27, c.energy, 3)), c.expected) << c.energy;
    EXPECT_EQ(LibrarySectionName(Line("Na-22", 11, 511.0f, 2)), "Na-2211:511:G ANH");
    EXPECT_EQ(LibrarySectionName(clsNuclide{}), "0:0:");
}

TEST(LibraryNumberText, ShortestRoundTripWithoutSignedZero) {
    const std::pair<float, const char*> cases[] = {
        {661.66f, "661.66"}, {1173.2f, "1173.2"}, {30.018f, "30.018"},   {0.0f, "0"},
        {-0.0f, "0"},        {0.1f, "0.1"},       {0.00012f, "0.00012"}, {1e-5f, "1e-05"}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(LibraryNumberText(value), text);
}

TEST(NuclideLibrary, WriterReaderRoundTrip) {
    TempDir dir;
    auto path = dir / "lib.nli";
    clsNuclide cs = Line("Cs-137", 55, 661.6553f, 3, 30.018f, Years);
    cs.sIntensity = 85.01f;
    cs.sDEnergy = 0.003f;
    clsNuclide am = Line("Am-241", 95, 59.5409f, 3, 432.6f, Years);
    am.sIntensity = 35.92f;
    clsNuclide ba = Line("Ba-137m", 56, 32.1939f, 10, 2.5545f, Minutes);
    ba.sIntensity = 3.66f;
    ASSERT_TRUE(WriteNuclideLibrary(path, {cs, am, ba}).ok);
    ASSERT_TRUE(IsNuclideLibrary(path));

    NuclideLibraryRead read = ReadNuclideLibrary(path);
    ASSERT_TRUE(read.ok) << read.error;
    EXPECT_TRUE(read.warnings.empty());
    ASSERT_EQ(read.lines.size(), 3u);
    const clsNuclide* written[] = {&cs, &am, &ba};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(Fields(read.lines[i]), Fields(*written[i]));
        EXPECT_EQ(read.lines[i].sEnergy, written[i]->sEnergy); // shortest text: bit for bit
        EXPECT_EQ(read.lines[i].dGetHLSec(), written[i]->dGetHLSec());
    }
}

TEST(NuclideLibrary, WriterProducesTheKeysInOrder) {
    TempDir dir;
    auto path = dir / "lib.nli";
    clsNuclide co = Line("Co-60", 27, 1173.228f, 3, 5.2711f, Years);
    co.sDHL = 0.0008f;
    co.sDEnergy = 0.003f;
    co.sIntensity = 99.85f;
    co.sDIntensity = 0.03f;
    ASSERT_TRUE(WriteNuclideLibrary(path, {co}).ok);
    EXPECT_EQ(ReadBytes(path), "[Info]\r\nFileID=Vexo Nuclide Library\r\n"
                               "[Co-6027:1173.23:G]\r\n"
                               "NucName=Co-60\r\nAtNo=27\r\nNucTypes=TYPE\r\n"
                               "NucDecayMode=DECAYMODE\r\nNucDecayBranch=0.0\r\n"
                               "HL=5.2711\r\nDHL=0.0008\r\nHLUnits= years\r\n"
                               "En=1173.228\r\nDEn=0.003\r\nInt=99.85\r\nDInt=0.03\r\n"
                               "RadID=G\r\n");
}

TEST(NuclideLibrary, SameSectionNameOverwrites) {
    TempDir dir;
    auto path = dir / "lib.nli";
    clsNuclide first = Line("Co-60", 27, 1173.228f, 3);
    first.sIntensity = 1.0f;
    clsNuclide second = Line("Co-60", 27, 1173.231f, 3); // same after rounding to 0.01
    second.sIntensity = 2.0f;
    clsNuclide other = Line("Co-60", 27, 1173.228f, 10); // other radiation: own section
    ASSERT_TRUE(WriteNuclideLibrary(path, {first, second, other}).ok);
    auto read = ReadNuclideLibrary(path);
    ASSERT_TRUE(read.ok);
    ASSERT_EQ(read.lines.size(), 2u);
    EXPECT_EQ(read.lines[0].sEnergy, 1173.231f);
    EXPECT_EQ(read.lines[0].sIntensity, 2.0f);
    EXPECT_EQ(read.lines[1].szDecayRadEx(), "X KA1");
}

TEST(NuclideLibrary, IdentificationIgnoresCaseAndNeedsOneField) {
    TempDir dir;
    struct Case {
        const char* text;
        bool library;
    } cases[] = {
        {"[Info]\r\nFILEID=Vexo Nuclide Library\r\n", true},
        {"[Info]\nfileid=VEXO NUCLIDE LIBRARY\n", true},
        {"junk,FileId=Vexo Nuclide Library,more", true},
        {"; comment FileId=Vexo Nuclide Library trailing", true},
        {"[Info]\r\nFileID=Vexo Nuclide\r\nLibrary\r\n", false}, // split by a line end
        {"[Info]\r\nFileID=Vexo, Nuclide Library\r\n", false},   // split by a comma
        {"[Info]\r\nFileID = Vexo Nuclide Library\r\n", false},
        {"", false},
    };
    for (const auto& c : cases) {
        WriteBytes(dir / "f.nli", c.text);
        EXPECT_EQ(IsNuclideLibrary(dir / "f.nli"), c.library) << c.text;
    }
    EXPECT_FALSE(IsNuclideLibrary(dir / "missing.nli"));
    EXPECT_FALSE(IsNuclideLibrary(dir.path())); // a folder is no library
}

TEST(NuclideLibrary, IdentificationFoundPastALongField) {
    TempDir dir;
    std::string text(200000, 'x');
    text += "FileId=Vexo Nuclide Library";
    WriteBytes(dir / "long.nli", text);
    EXPECT_TRUE(IsNuclideLibrary(dir / "long.nli"));
    // Across the point where the long field is cut down.
    std::string edge(65536 - 5, 'y');
    edge += "FileId=Vexo Nuclide Library\n";
    WriteBytes(dir / "edge.nli", edge);
    EXPECT_TRUE(IsNuclideLibrary(dir / "edge.nli"));
}

TEST(NuclideLibrary, ReaderSkipsOnlyTheExactInfoSection) {
    TempDir dir;
    WriteBytes(dir / "lower.nli", "[info]\r\nFileID=Vexo Nuclide Library\r\nNucName=Lower\r\n"
                                  "En=10\r\n[Info2]\r\nNucName=Other\r\n");
    auto read = ReadNuclideLibrary(dir / "lower.nli");
    ASSERT_EQ(read.lines.size(), 2u);
    EXPECT_EQ(Fields(read.lines[0]) + "|" + Fields(read.lines[1]),
              "Lower 0 10 0 0 0 |Other 0 0 0 0 0 ");
    EXPECT_TRUE(Read(dir / "exact.nli", "NucName=Header\r\n").lines.empty());
}

// Numbers are the numbers the texts begin with; a keyless section gives an empty line.
TEST(NuclideLibrary, NumbersAreLeadingNumbers) {
    TempDir dir;
    auto read = Read(dir / "lib.nli", "[A]\nNucName=X-1\nAtNo=12abc\nHL=1.5e3 s\nHLUnits=days\n"
                                      "En= 661.66keV\nInt=abc\nRadID=x kb\n"
                                      "[B]\nHL=-.5\nEn=1,5\nInt=2e\nHLUnits=fortnights\nRadID=Z\n"
                                      "[Empty]\n");
    ASSERT_TRUE(read.ok) << read.error;
    ASSERT_EQ(read.lines.size(), 3u);
    EXPECT_EQ(Fields(read.lines[0]), "X-1 12 661.66 0 1500 8 X KB");
    EXPECT_EQ(Fields(read.lines[1]), " 0 1 2 -0.5 0 ");
    EXPECT_EQ(Fields(read.lines[2]), " 0 0 0 0 0 ");
    ASSERT_EQ(read.warnings.size(), 2u); // the unknown unit and the unknown radiation
    EXPECT_NE(read.warnings[0].find("fortnights"), std::string::npos);
}

TEST(NuclideLibrary, MissingFilesAndOutOfRangeValuesFail) {
    TempDir dir;
    const char* bad[] = {"[L]\nEn=1e39\n", "[L]\nHL=1e999\n", "[L]\nAtNo=40000\n"};
    for (const char* body : bad) {
        auto read = Read(dir / "lib.nli", body);
        EXPECT_FALSE(read.ok) << body;
        EXPECT_NE(read.error.find("[L]"), std::string::npos) << read.error;
        EXPECT_TRUE(read.lines.empty());
    }
    auto read = ReadNuclideLibrary(dir / "none.nli");
    EXPECT_FALSE(read.ok);
    EXPECT_FALSE(read.error.empty());
    auto written = WriteNuclideLibrary(dir / "no" / "such" / "lib.nli", {});
    EXPECT_FALSE(written.ok);
    EXPECT_FALSE(written.error.empty());
}

// The reader takes a section's keys in one pass; its values must be those of
// CPrivateINI::GetValue, key by key.
TEST(NuclideLibrary, ValuesMatchTheIniStoreKeyByKey) {
    TempDir dir;
    std::string longName(1200, 'n');
    WriteBytes(dir / "lib.nli", "[Info]\r\nFileID=Vexo Nuclide Library\r\n"
                                "[Q]\r\nNucName=\"Cs-137\"\r\nEn='661.66'\r\nInt=\"5\r\n"
                                "[Dup]\r\nen=1\r\nEN=2\r\n  NucName  =  spaced  \r\n"
                                "[NoEq]\r\nEn\r\nEn=5\r\nNucName\r\n"
                                "[Long]\r\nNucName=" +
                                    longName +
                                    "\r\n"
                                    "[Q]\r\nNucName=second section of the same name\r\n");
    auto read = ReadNuclideLibrary(dir / "lib.nli");
    ASSERT_TRUE(read.ok) << read.error;
    CPrivateINI ini;
    ini.setINIFile((dir / "lib.nli").string());
    auto sections = ini.GetSections();
    ASSERT_EQ(read.lines.size(), sections.size() - 1);
    for (std::size_t i = 1; i < sections.size(); ++i) {
        const clsNuclide& n = read.lines[i - 1];
        EXPECT_EQ(n.szElemName, ini.GetValue(sections[i], "NucName", "")) << sections[i];
        EXPECT_EQ(n.sEnergy, static_cast<float>(LeadingNumber(ini.GetValue(sections[i], "En", ""))))
            << sections[i];
    }
    // "\"5" keeps its lone quote; the first of duplicate keys counts.
    EXPECT_EQ(Fields(read.lines[0]), "Cs-137 0 661.66 0 0 0 ");
    EXPECT_EQ(Fields(read.lines[1]), "spaced 0 1 0 0 0 ");
    EXPECT_EQ(read.lines[2].sEnergy, 0.0f); // the key line without "=" comes first
    EXPECT_EQ(read.lines[3].szElemName.size(), 999u);
    EXPECT_EQ(read.lines[4].szElemName, "Cs-137"); // a repeated name reads the first section
}
