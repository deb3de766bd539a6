// Report colour schemes from "RepStyles.ini": the messages for a missing or empty file,
// reading each section with its defaults, and choosing a scheme by section name.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "base/VexoError.h"
#include "report/ReportStyle.h"

using namespace vexo;
using vexo::test::TempDir;
using vexo::test::WriteBytes;

namespace {

class ReportStylesTest : public ::testing::Test {
protected:
    std::string stylesPath() const { return (m_dir / "RepStyles.ini").string(); }
    void writeStyles(const std::string& bytes) const { WriteBytes(stylesPath(), bytes); }
    ReportStyleList load() { return LoadReportStyles(m_dir.path(), m_messages); }

    TempDir m_dir;
    ScriptedMessages m_messages;
};

void ExpectDefaultOnly(const ReportStyleList& list) {
    EXPECT_EQ(list.highestIndex, 1);
    ASSERT_EQ(list.styles.size(), 2u);
    EXPECT_EQ(list.styles[0], ReportStyle{});
    EXPECT_EQ(list.styles[1], DefaultReportStyle());
}

} // namespace

TEST(DefaultReportStyle, KeepsItsQuirks) {
    // Black even rows with no text colour, a title border of 1.
    EXPECT_EQ(DefaultReportStyle(), (ReportStyle{"None", "", 1, "tahoma", "#000000", 1, "#FFFFFF",
                                                 "#000000", "#000000", ""}));
}

TEST_F(ReportStylesTest, MissingFileTellsAndGivesDefault) {
    ExpectDefaultOnly(load());
    ASSERT_EQ(m_messages.shown().size(), 1u);
    const Message& m = m_messages.shown()[0];
    EXPECT_EQ(m.title, "Error opening Report Styles");
    EXPECT_EQ(m.icon, MsgIcon::Information);
    EXPECT_EQ(m.buttons, MsgButtons::Ok);
    EXPECT_EQ(m.text, "File " + stylesPath() +
                          " with definitions for report styles was not found.\r\n"
                          "The default report style will be used.");
}

TEST_F(ReportStylesTest, FileWithoutSectionsTellsAndGivesDefault) {
    writeStyles("; no styles yet\r\nCS_RowBack=#123456\r\n");
    ExpectDefaultOnly(load());
    ASSERT_EQ(m_messages.shown().size(), 1u);
    const Message& m = m_messages.shown()[0];
    EXPECT_EQ(m.title, "Error opening Report Styles");
    EXPECT_EQ(m.icon, MsgIcon::Information);
    EXPECT_EQ(m.text, "No report style definitions found in file " + stylesPath() +
                          "\r\nThe default report style will be used.");
}

TEST_F(ReportStylesTest, SectionsInFileOrderWithDefaults) {
    writeStyles("[Ocean]\r\n"
                "CS_Description=Blue and white\r\n"
                "CS_TitleFont=Verdana\r\n"
                "CS_TitleColor=#000080\r\n"
                "CS_TitleBorder=2\r\n"
                "CS_HeaderBack=#000080\r\n"
                "CS_HeaderFore=#FFFFFF\r\n"
                "CS_RowBack=#E0E0FF\r\n"
                "CS_RowFore=#000040\r\n"
                "[Bare]\r\n");
    ReportStyleList list = load();
    EXPECT_TRUE(m_messages.shown().empty());
    ASSERT_EQ(list.highestIndex, 2);
    ASSERT_EQ(list.styles.size(), 3u);
    EXPECT_EQ(list.styles[0], ReportStyle{});
    EXPECT_EQ(list.styles[1], (ReportStyle{"Ocean", "Blue and white", 1, "Verdana", "#000080", 2,
                                           "#000080", "#FFFFFF", "#E0E0FF", "#000040"}));
    EXPECT_EQ(list.styles[2], (ReportStyle{"Bare", "No style", 2, "tahoma", "#000000", 0, "#FFFFFF",
                                           "#000000", "#FFFFFF", "#000000"}));
}

TEST_F(ReportStylesTest, TitleBorderBeyond16BitsOverflows) {
    writeStyles("[S]\r\nCS_TitleBorder=32768\r\n");
    EXPECT_THROW(load(), OverflowError);
    writeStyles("[S]\r\nCS_TitleBorder=-32768\r\n");
    EXPECT_EQ(load().styles[1].CS_TitleBorder, -32768);
}

TEST(ResolveReportStyle, FirstExactSectionNameFromPlaceZero) {
    auto named = [](const char* section, int16_t index) {
        ReportStyle style;
        style.sectionName = section;
        style.index = index;
        return style;
    };
    ReportStyleList list;
    list.styles = {ReportStyle{}, named("Plain", 1), named("Blue", 2), named("Blue", 3)};
    list.highestIndex = 3;
    EXPECT_EQ(ResolveReportStyle(list, "Blue").index, 2);
    EXPECT_EQ(ResolveReportStyle(list, "Plain").index, 1);
    EXPECT_EQ(ResolveReportStyle(list, ""), ReportStyle{});
    EXPECT_EQ(ResolveReportStyle(list, "BLUE"), DefaultReportStyle());
    EXPECT_EQ(ResolveReportStyle(list, "Blue "), DefaultReportStyle());
    EXPECT_EQ(ResolveReportStyle(list, "None"), DefaultReportStyle());
    EXPECT_EQ(ResolveReportStyle(ReportStyleList{}, "Blue"), DefaultReportStyle());
}
