// The categories file "Vexo.nct" and the editor's save rule, on real files.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "base/Messages.h"
#include "nuclide/NucEditor.h"
#include "nuclide/NuclideCategories.h"
#include "nuclide/NuclideLibrary.h"

using namespace vexo;

namespace {

std::string Shown(const ScriptedMessages& m) {
    return m.shown().empty() ? std::string() : m.shown().back().text;
}

} // namespace

TEST(NuclideCategories, LoadSkipsTheFirstSectionAndReadsDefaults) {
    struct Case {
        const char* text;
        int loaded;
        const char* firstName;
    } cases[] = {
        {"[Head]\r\nFileId=Vexo Nuclide Categories File\r\n[NORM]\r\nCatColor=255\r\n"
         "IsThread=1\r\n[Medical]\r\n",
         2, "NORM"},
        // The bare identification line is enough; the first section is still skipped.
        {"vexo nuclide categories file\r\n[Skipped]\r\n[Kept]\r\n", 1, "Kept"},
        {"Vexo Nuclide Categories File\r\n", 0, nullptr},
        {"[Only]\r\nFileId=Vexo Nuclide Categories File\r\n", 0, nullptr},
    };
    for (const Case& c : cases) {
        vexo::test::TempDir dir;
        vexo::test::WriteBytes(dir / "Vexo.nct", c.text);
        ScriptedMessages messages;
        CategoryList list;
        ASSERT_EQ(LoadCategories(dir.path(), list, messages), c.loaded) << c.text;
        EXPECT_TRUE(messages.shown().empty());
        if (!c.firstName)
            continue;
        EXPECT_EQ(list[1].name, c.firstName);
    }
    vexo::test::TempDir dir;
    vexo::test::WriteBytes(dir / "Vexo.nct", std::string(cases[0].text));
    ScriptedMessages messages;
    CategoryList list;
    LoadCategories(dir.path(), list, messages);
    EXPECT_EQ(list[1].CatColor, 255);
    EXPECT_TRUE(list[1].IsThread);
    EXPECT_EQ(list[2].SubCategory, "NA");
    EXPECT_EQ(list[2].CatColor, 0);
    EXPECT_FALSE(list[2].IsThread);
}

TEST(NuclideCategories, MissingOrUnidentifiedFileFailsToLoad) {
    vexo::test::TempDir dir;
    ScriptedMessages messages;
    CategoryList list;
    EXPECT_EQ(LoadCategories(dir.path(), list, messages), -1);
    EXPECT_EQ(Shown(messages), "Error opening file: " + CategoriesFilePath(dir.path()));
    EXPECT_EQ(messages.shown().back().icon, MsgIcon::Exclamation);
    vexo::test::WriteBytes(dir / "Vexo.nct", "[A]\r\nSubCategory=x\r\n");
    EXPECT_EQ(LoadCategories(dir.path(), list, messages), -1);
    EXPECT_TRUE(list.empty());
}

TEST(NuclideCategories, SaveKeepsRemovedSectionsAndRefusesNothing) {
    vexo::test::TempDir dir;
    vexo::test::WriteBytes(dir / "Vexo.nct", "[Head]\r\nFileId=Vexo Nuclide Categories File\r\n"
                                             "[Old]\r\nSubCategory=gone\r\n");
    ScriptedMessages messages;
    CategoryList list(1);
    EXPECT_EQ(SaveCategories(dir.path(), list, messages), 0);
    EXPECT_EQ(Shown(messages), "Error saving file: " + CategoriesFilePath(dir.path()));
    list.push_back({"NORM", "Natural", 3368601, true});
    list.push_back({"Medical", "NA", 0, false});
    EXPECT_EQ(SaveCategories(dir.path(), list, messages), 2);
    EXPECT_EQ(vexo::test::ReadBytes(dir / "Vexo.nct"),
              "[Head]\r\nFileId=Vexo Nuclide Categories File\r\n[Old]\r\nSubCategory=gone\r\n"
              "[NORM]\r\nSubCategory=Natural\r\nCatColor=3368601\r\nIsThread=-1\r\n"
              "[Medical]\r\nSubCategory=NA\r\nCatColor=0\r\nIsThread=0\r\n");
    CategoryList back;
    EXPECT_EQ(LoadCategories(dir.path(), back, messages), 3);
    EXPECT_EQ(back[2].name, "NORM");
    EXPECT_TRUE(back[2].IsThread);
    // The file is never created by a save.
    vexo::test::TempDir empty;
    messages.clear();
    EXPECT_EQ(SaveCategories(empty.path(), list, messages), 0);
    EXPECT_FALSE(std::filesystem::exists(empty / "Vexo.nct"));
    EXPECT_EQ(messages.shown().size(), 1u);
}

TEST(NuclideCategories, ShippedDefaultsLoad) {
    ScriptedMessages messages;
    CategoryList list;
    EXPECT_GE(LoadCategories(std::filesystem::path(VEXO_SOURCE_DIR) / "data", list, messages), 4);
}

TEST(EditorSave, TheThreeBranches) {
    vexo::test::TempDir dir;
    clsNuclide line = EditorLineFromText("Co-60 : 27 : 5.2711 :  years : 1173.228 : 0.003 : "
                                         "99.85 : 0.03 : G : 0.0008");
    const auto path = dir / "new.nli";
    ScriptedMessages messages;
    EXPECT_EQ(SaveEditorLibrary(path, {line}, messages), LibrarySave::Written);
    EXPECT_TRUE(messages.shown().empty());
    auto read = ReadNuclideLibrary(path);
    ASSERT_EQ(read.lines.size(), 1u);
    EXPECT_EQ(EditorLineText(read.lines[0]).substr(0, 40), EditorLineText(line).substr(0, 40));

    // A library the editor wrote lacks the spaced identification: refused, unchanged.
    const std::string before = vexo::test::ReadBytes(path);
    EXPECT_EQ(SaveEditorLibrary(path, {line, line}, messages), LibrarySave::Refused);
    EXPECT_EQ(Shown(messages), "Error saving or updating nuclide library " + path.string());
    EXPECT_EQ(messages.shown().back().icon, MsgIcon::Exclamation);
    EXPECT_EQ(vexo::test::ReadBytes(path), before);

    const auto spaced = dir / "spaced.nli";
    vexo::test::WriteBytes(spaced, "[Info]\r\nFILEID = Vexo Nuclide Library\r\n");
    messages.clear();
    EXPECT_EQ(SaveEditorLibrary(spaced, {line}, messages), LibrarySave::LeftUntouched);
    EXPECT_TRUE(messages.shown().empty());
    EXPECT_EQ(vexo::test::ReadBytes(spaced), "[Info]\r\nFILEID = Vexo Nuclide Library\r\n");
}

TEST(EditorSave, LineTextRoundTrip) {
    clsNuclide l = EditorLineFromText("Eu-152 : 63 : 13.522 :  years : 1408.013 : 0.003 : "
                                      "20.85 : 0.08 : G : 0.016");
    EXPECT_EQ(l.eUnits(), 9);
    EXPECT_EQ(l.szDecayRadEx(), "G");
    EXPECT_FLOAT_EQ(l.sDHL, 0.016f);
    EXPECT_EQ(EditorLineText(l),
              "Eu-152 : 63 : 13.522 :  years : 1408.013 : 0.003 : 20.85 : 0.08 : G : 0.016");
    clsNuclide empty = EditorLineFromText("");
    EXPECT_EQ(empty.szElemName, "");
    EXPECT_EQ(empty.sEnergy, 0.0f);
}
