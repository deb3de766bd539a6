// Nuclide library files checked against a hand-written library text.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TestSupport.h"
#include "nuclide/NuclideLibrary.h"
#include "nuclide/clsNuclide.h"

namespace vexo {
namespace {

using test::TempDir;

clsNuclide Line(const char* name, int16_t z, float energy, const char* radCode, float hl, float dhl,
                int unit, float den, float intensity, float dint) {
    clsNuclide n;
    n.szElemName = name;
    n.nAtNum = z;
    n.sEnergy = energy;
    n.sDEnergy = den;
    n.sIntensity = intensity;
    n.sDIntensity = dint;
    EXPECT_TRUE(n.bSetRadType(radCode));
    EXPECT_TRUE(n.bSetHL(hl, dhl, std::string(1, static_cast<char>(unit))));
    return n;
}

TEST(VerifyNuclideLibrary, SectionNames) {
    const struct {
        float energy;
        const char* expected;
    } cases[] = {{1173.228f, "Co-6027:1173.23:G"}, {1173.2f, "Co-6027:1173.2:G"},
                 {661.657f, "Co-6027:661.66:G"},   {100.0f, "Co-6027:100:G"},
                 {0.001f, "Co-6027:0:G"},          {-5.678f, "Co-6027:-5.68:G"},
                 {59.5409f, "Co-6027:59.54:G"}};
    for (const auto& c : cases) {
        clsNuclide n = Line("Co-60", 27, c.energy, "C", 1, 0, 5, 0, 0, 0);
        EXPECT_EQ(LibrarySectionName(n), c.expected) << c.energy;
    }
}

TEST(VerifyNuclideLibrary, NumbersAsShortestTextWithoutSignedZero) {
    const struct {
        float value;
        const char* text;
    } cases[] = {{1173.2f, "1173.2"},   {661.657f, "661.657"}, {100.0f, "100"},
                 {0.0f, "0"},           {-0.0f, "0"},          {0.1f, "0.1"},
                 {0.00012f, "0.00012"}, {0.005f, "0.005"},     {1e-5f, "1e-05"}};
    for (const auto& c : cases)
        EXPECT_EQ(LibraryNumberText(c.value), c.text) << c.text;
}

TEST(VerifyNuclideLibrary, WrittenFileByteForByte) {
    TempDir dir;
    const std::vector<clsNuclide> lines = {
        Line("Co-60", 27, 1173.228f, "C", 5.2714f, 0.005f, 9, 0.003f, 99.85f, 0.03f),
        Line("Cs-137", 55, 661.657f, "C", 30.08f, 0.09f, 9, 0.003f, 85.1f, 0.2f),
        Line("Ba-133", 56, 30.973f, "J", 10.551f, 0.011f, 9, 0.0f, 62.2f, 1.0f),
    };
    ASSERT_TRUE(WriteNuclideLibrary(dir / "lib.nli", lines).ok);
    const std::string expected = "[Info]\r\n"
                                 "FileID=Vexo Nuclide Library\r\n"
                                 "[Co-6027:1173.23:G]\r\n"
                                 "NucName=Co-60\r\n"
                                 "AtNo=27\r\n"
                                 "NucTypes=TYPE\r\n"
                                 "NucDecayMode=DECAYMODE\r\n"
                                 "NucDecayBranch=0.0\r\n"
                                 "HL=5.2714\r\n"
                                 "DHL=0.005\r\n"
                                 "HLUnits= years\r\n"
                                 "En=1173.228\r\n"
                                 "DEn=0.003\r\n"
                                 "Int=99.85\r\n"
                                 "DInt=0.03\r\n"
                                 "RadID=G\r\n"
                                 "[Cs-13755:661.66:G]\r\n"
                                 "NucName=Cs-137\r\n"
                                 "AtNo=55\r\n"
                                 "NucTypes=TYPE\r\n"
                                 "NucDecayMode=DECAYMODE\r\n"
                                 "NucDecayBranch=0.0\r\n"
                                 "HL=30.08\r\n"
                                 "DHL=0.09\r\n"
                                 "HLUnits= years\r\n"
                                 "En=661.657\r\n"
                                 "DEn=0.003\r\n"
                                 "Int=85.1\r\n"
                                 "DInt=0.2\r\n"
                                 "RadID=G\r\n"
                                 "[Ba-13356:30.97:X KA1]\r\n"
                                 "NucName=Ba-133\r\n"
                                 "AtNo=56\r\n"
                                 "NucTypes=TYPE\r\n"
                                 "NucDecayMode=DECAYMODE\r\n"
                                 "NucDecayBranch=0.0\r\n"
                                 "HL=10.551\r\n"
                                 "DHL=0.011\r\n"
                                 "HLUnits= years\r\n"
                                 "En=30.973\r\n"
                                 "DEn=0\r\n"
                                 "Int=62.2\r\n"
                                 "DInt=1\r\n"
                                 "RadID=X KA1\r\n";
    EXPECT_EQ(test::ReadBytes(dir / "lib.nli"), expected);

    NuclideLibraryRead back = ReadNuclideLibrary(dir / "lib.nli");
    ASSERT_TRUE(back.ok);
    ASSERT_EQ(back.lines.size(), 3u);
    EXPECT_EQ(back.lines[2].szElemName, "Ba-133");
    EXPECT_EQ(back.lines[2].nAtNum, 56);
    EXPECT_EQ(back.lines[2].sEnergy, 30.973f);
    EXPECT_EQ(back.lines[2].sIntensity, 62.2f);
    EXPECT_EQ(back.lines[2].sHL(), 10.551f);
    EXPECT_EQ(back.lines[2].eUnits(), 9);
    EXPECT_EQ(back.lines[2].szDecayRadEx(), "X KA1");
    EXPECT_TRUE(back.warnings.empty());
}

TEST(VerifyNuclideLibrary, IdentificationAndReadingRules) {
    TempDir dir;
    const struct {
        const char* text;
        bool library;
    } ids[] = {{"[Info]\r\nFILEID=VEXO nuclide LIBRARY\r\n", true},
               {"x,FileId=Vexo Nuclide Library,y\n", true},
               {"[Info]\r\nFileId = Vexo Nuclide Library\r\n", false},
               {"[Info]\r\nFileID=Other\r\n", false}};
    for (const auto& c : ids) {
        test::WriteBytes(dir / "id.nli", c.text);
        EXPECT_EQ(IsNuclideLibrary(dir / "id.nli"), c.library) << c.text;
    }
    EXPECT_FALSE(IsNuclideLibrary(dir / "missing.nli"));

    // Without an "Info" section, "info" is an ordinary line section. (Beside "[Info]" its
    // keys would be looked up in the first section of that name, letter case ignored.)
    test::WriteBytes(dir / "r.nli", "[info]\r\nNucName=Lower\r\n"
                                    "[Empty]\r\n"
                                    "[Odd]\r\nNucName= Am-241 \r\nAtNo=95x\r\nEn=59.54keV\r\n"
                                    "Int=abc\r\nHL=432.6\r\nHLUnits=years\r\nRadID=G\r\n");
    NuclideLibraryRead r = ReadNuclideLibrary(dir / "r.nli");
    ASSERT_TRUE(r.ok);
    ASSERT_EQ(r.lines.size(), 3u);
    EXPECT_EQ(r.lines[0].szElemName, "Lower"); // "info" is an ordinary section
    EXPECT_EQ(r.lines[1].szElemName, "");
    EXPECT_EQ(r.lines[1].nAtNum, 0);
    EXPECT_EQ(r.lines[1].sEnergy, 0.0f);
    EXPECT_EQ(r.lines[2].szElemName, "Am-241");
    EXPECT_EQ(r.lines[2].nAtNum, 95);
    EXPECT_EQ(r.lines[2].sEnergy, 59.54f);
    EXPECT_EQ(r.lines[2].sIntensity, 0.0f);
    EXPECT_EQ(r.lines[2].eUnits(), 9);
    EXPECT_EQ(r.lines[2].eDecayRad(), Gamma);
}

TEST(VerifyNuclideLibrary, SameSectionNameOverwrites) {
    TempDir dir;
    const std::vector<clsNuclide> lines = {
        Line("Co-60", 27, 1173.228f, "C", 5.27f, 0, 9, 0, 99.0f, 0),
        Line("Co-60", 27, 1173.232f, "C", 5.27f, 0, 9, 0, 50.0f, 0)};
    ASSERT_TRUE(WriteNuclideLibrary(dir / "d.nli", lines).ok);
    NuclideLibraryRead r = ReadNuclideLibrary(dir / "d.nli");
    ASSERT_EQ(r.lines.size(), 1u);
    EXPECT_EQ(r.lines[0].sIntensity, 50.0f);
}

} // namespace
} // namespace vexo
