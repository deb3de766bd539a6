#include <gtest/gtest.h>

#include "TestSupport.h"
#include "shell/PreferencesRules.h"

using namespace vexo;

TEST(DefaultLibraryAfterOk, KeepsPreviousUnlessTheFileExists) {
    test::TempDir dir;
    const auto lib = dir / "gamma.nli";
    test::WriteBytes(lib, "[Info]\r\nFileId=Vexo Nuclide Library\r\n");
    EXPECT_EQ(DefaultLibraryAfterOk("", "old.nli"), "old.nli");
    EXPECT_EQ(DefaultLibraryAfterOk("   ", "old.nli"), "old.nli");
    EXPECT_EQ(DefaultLibraryAfterOk((dir / "missing.nli").string(), "old.nli"), "old.nli");
    EXPECT_EQ(DefaultLibraryAfterOk("  " + lib.string() + " ", "old.nli"), lib.string());
    EXPECT_EQ(DefaultLibraryAfterOk(dir.path().string(), "old.nli"), "old.nli"); // a folder
}

TEST(GraphTypeList, PositionsAndTypes) {
    EXPECT_EQ(GraphTypeFromListIndex(0), 1);
    EXPECT_EQ(GraphTypeFromListIndex(2), 3); // "Histograms"
    EXPECT_EQ(GraphTypeFromListIndex(7), 3);
    EXPECT_EQ(ListIndexFromGraphType(1), 0);
    EXPECT_EQ(ListIndexFromGraphType(3), 2);
    EXPECT_EQ(ListIndexFromGraphType(0), 0);
}
