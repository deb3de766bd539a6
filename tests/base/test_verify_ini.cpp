// The INI store and the settings file checked against hand-written file texts.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "base/CPrivateINI.h"
#include "base/Messages.h"
#include "base/TextFile.h"
#include "base/VexoError.h"
#include "report/ReportStyle.h"
#include "shell/AppSettings.h"

namespace vexo {
namespace {

using test::TempDir;

struct IniOnFile {
    TempDir dir;
    CPrivateINI ini;
    explicit IniOnFile(const std::string& bytes) {
        test::WriteBytes(dir / "t.ini", bytes);
        ini.setINIFile("  " + (dir / "t.ini").string() + " ");
    }
    std::string bytes() const { return test::ReadBytes(dir / "t.ini"); }
};

const char* const kSample = "; top comment\r\n"
                            "[Alpha]\r\n"
                            "; inner comment\r\n"
                            "  Key1  =   spaced value   \r\n"
                            "Key2=2\r\n"
                            "KEY1=second\r\n"
                            "\r\n"
                            "[Beta]\r\n"
                            "X=a=b\r\n"
                            "[alpha]\r\n"
                            "Key1=other section\r\n";

TEST(VerifyIni, ReadingRules) {
    IniOnFile f(kSample);
    const struct {
        const char* section;
        const char* key;
        const char* expected;
    } cases[] = {
        {"Alpha", "Key1", "spaced value"}, // trimmed; first duplicate key wins
        {"ALPHA", "key1", "spaced value"}, // names ignore letter case
        {"alpha", "KEY2", "2"},
        {"Beta", "X", "a=b"},
        {"Beta", "Missing", "dflt"},
        {"Gamma", "X", "dflt"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(f.ini.GetValue(c.section, c.key, "dflt"), c.expected) << c.section << c.key;
    EXPECT_EQ(f.ini.GetSections(), (std::vector<std::string>{"Alpha", "Beta", "alpha"}));
    EXPECT_EQ(f.ini.GetKeys("Alpha"), (std::vector<std::string>{"Key1", "Key2", "KEY1"}));
    EXPECT_EQ(f.ini.GetEntries("Alpha"),
              (std::vector<std::string>{"Key1=spaced value", "Key2=2", "KEY1=second"}));
    auto pairs = f.ini.GetPairs("Beta");
    ASSERT_EQ(pairs.size(), 1u);
    EXPECT_EQ(pairs[0], (std::pair<std::string, std::string>{"X", "a=b"}));
    EXPECT_TRUE(f.ini.GetEntries("Gamma").empty());
    EXPECT_TRUE(f.ini.GetKeys("Gamma").empty());
    EXPECT_TRUE(f.ini.GetPairs("Gamma").empty());
    EXPECT_EQ(f.bytes(), kSample); // reading changes nothing
}

TEST(VerifyIni, LongValues) {
    IniOnFile f("[S]\r\nA=-1\r\nB=abc\r\nC=12abc\r\nD= \r\nE=  42  \r\n");
    const struct {
        const char* key;
        int32_t expected;
    } cases[] = {{"A", -1}, {"B", 0}, {"C", 12}, {"D", 77}, {"E", 42}, {"Missing", 77}};
    for (const auto& c : cases)
        EXPECT_EQ(f.ini.GetLongValue("s", c.key, 77), c.expected) << c.key;
}

TEST(VerifyIni, WritesInPlace) {
    const struct {
        const char* name;
        std::function<void(CPrivateINI&)> change;
        const char* expected;
    } cases[] = {
        {"existing key keeps its spelling and place",
         [](CPrivateINI& i) { i.PutValue("ALPHA", "key2", "new"); },
         "; top comment\r\n[Alpha]\r\n; inner comment\r\n  Key1  =   spaced value   \r\n"
         "Key2=new\r\nKEY1=second\r\n\r\n[Beta]\r\nX=a=b\r\n[alpha]\r\nKey1=other section\r\n"},
        {"new key after the last key of its section",
         [](CPrivateINI& i) { i.PutLongValue("Beta", "Y", -1); },
         "; top comment\r\n[Alpha]\r\n; inner comment\r\n  Key1  =   spaced value   \r\n"
         "Key2=2\r\nKEY1=second\r\n\r\n[Beta]\r\nX=a=b\r\nY=-1\r\n[alpha]\r\n"
         "Key1=other section\r\n"},
        {"new section at the end, empty value as one blank",
         [](CPrivateINI& i) { i.PutValue("Gamma", "Z", ""); },
         "; top comment\r\n[Alpha]\r\n; inner comment\r\n  Key1  =   spaced value   \r\n"
         "Key2=2\r\nKEY1=second\r\n\r\n[Beta]\r\nX=a=b\r\n[alpha]\r\nKey1=other section\r\n"
         "[Gamma]\r\nZ= \r\n"},
        {"delete key", [](CPrivateINI& i) { i.DeleteKey("Beta", "x"); },
         "; top comment\r\n[Alpha]\r\n; inner comment\r\n  Key1  =   spaced value   \r\n"
         "Key2=2\r\nKEY1=second\r\n\r\n[Beta]\r\n[alpha]\r\nKey1=other section\r\n"},
        {"delete section", [](CPrivateINI& i) { i.DeleteSection("Beta"); },
         "; top comment\r\n[Alpha]\r\n; inner comment\r\n  Key1  =   spaced value   \r\n"
         "Key2=2\r\nKEY1=second\r\n\r\n[alpha]\r\nKey1=other section\r\n"},
        {"section write replaces the section's lines",
         [](CPrivateINI& i) {
             i.PutPairs("Beta", {{"P", "1"}, {"Q", "x=y"}});
         },
         "; top comment\r\n[Alpha]\r\n; inner comment\r\n  Key1  =   spaced value   \r\n"
         "Key2=2\r\nKEY1=second\r\n\r\n[Beta]\r\nP=1\r\nQ=x=y\r\n[alpha]\r\n"
         "Key1=other section\r\n"},
        {"section write of a new section",
         [](CPrivateINI& i) {
             i.PutEntries("New", {"a=1", "b=2"});
         },
         "; top comment\r\n[Alpha]\r\n; inner comment\r\n  Key1  =   spaced value   \r\n"
         "Key2=2\r\nKEY1=second\r\n\r\n[Beta]\r\nX=a=b\r\n[alpha]\r\nKey1=other section\r\n"
         "[New]\r\na=1\r\nb=2\r\n"},
    };
    for (const auto& c : cases) {
        IniOnFile f(kSample);
        c.change(f.ini);
        EXPECT_EQ(f.bytes(), c.expected) << c.name;
    }
}

TEST(VerifyIni, DeletedSectionIsNoLongerListedAndEmptyValueReadsEmpty) {
    IniOnFile f("");
    EXPECT_TRUE(f.ini.GetSections().empty());
    f.ini.PutValue("S", "K", "");
    EXPECT_EQ(f.ini.GetValue("S", "K", "dflt"), "");
    f.ini.PutValue("T", "K", "v");
    f.ini.DeleteSection("s");
    EXPECT_EQ(f.ini.GetSections(), (std::vector<std::string>{"T"}));
}

TEST(VerifyIni, MissingFileIsCreatedOnWrite) {
    TempDir dir;
    CPrivateINI ini;
    ini.setINIFile((dir / "new.ini").string());
    EXPECT_EQ(ini.GetValue("S", "K", "d"), "d");
    ini.PutValue("S", "K", "v");
    EXPECT_EQ(test::ReadBytes(dir / "new.ini"), "[S]\r\nK=v\r\n");
}

TEST(VerifyIni, ValueCutAt999Characters) {
    IniOnFile f("[S]\r\nK=" + std::string(1500, 'v') + "\r\n");
    EXPECT_EQ(f.ini.GetValue("S", "K", ""), std::string(999, 'v'));
    // Lists grow as needed.
    std::string many = "[S]\r\n";
    for (int i = 0; i < 400; ++i)
        many += "Key" + std::to_string(i) + "=" + std::to_string(i) + "\r\n";
    IniOnFile g(many);
    EXPECT_EQ(g.ini.GetKeys("S").size(), 400u);
    EXPECT_EQ(g.ini.GetEntries("S").size(), 400u);
    EXPECT_EQ(g.ini.GetEntries("S").back(), "Key399=399");
}

TEST(VerifyIni, Error52WithoutFileName) {
    CPrivateINI ini;
    ini.setINIFile("   ");
    EXPECT_EQ(ini.INIFile(), "");
    const std::vector<std::function<void()>> calls = {
        [&] { ini.DeleteKey("S", "K"); },
        [&] { ini.DeleteSection("S"); },
        [&] { ini.GetEntries("S"); },
        [&] { ini.GetKeys("S"); },
        [&] { ini.GetLongValue("S", "K", 0); },
        [&] { ini.GetPairs("S"); },
        [&] { ini.GetSections(); },
        [&] { ini.GetValue("S", "K", ""); },
        [&] { ini.PutEntries("S", {"a=b"}); },
        [&] { ini.PutLongValue("S", "K", 1); },
        [&] {
            ini.PutPairs("S", {{"a", "b"}});
        },
        [&] { ini.PutValue("S", "K", "V"); },
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        try {
            calls[i]();
            ADD_FAILURE() << "member " << i << " did not raise";
        } catch (const NumberedError& e) {
            EXPECT_EQ(e.number(), 52) << i;
        }
    }
}

// --- Settings file ----------------------------------------------------------------------

// A full save of the defaults and the batch-only save are checked byte for byte with
// the settings tests.

TEST(VerifySettings, LoadDefaultsAndValues) {
    TempDir dir;
    test::WriteBytes(dir / "Vexo.ini", "[PROGRAM]\r\n"
                                       "RoiFollowUp=0\r\n"
                                       "OpenLastDetectorUsed=5\r\n"
                                       "DetectorPath= \r\n"
                                       "[display]\r\n"
                                       "SpctScaleColor=123\r\n"
                                       "SpctLabelColor=999\r\n"
                                       "SpctRefColor=999\r\n"
                                       "RoiColorNo8=7\r\n"
                                       "SpctShowGrid=garbage\r\n"
                                       "[REPORT]\r\n"
                                       "ROISect=0\r\n"
                                       "[BATCH]\r\n"
                                       "BatchDataDir=D:\\b\r\n");
    ScriptedMessages messages;
    AppSettings s;
    s.DetectorPath = "USB:old";
    s.SpctForeColor = 1;
    ASSERT_TRUE(LoadSettings(s, dir.path(), messages));
    EXPECT_FALSE(s.RoiFollowUp);
    EXPECT_EQ(s.DefNucLib, "None");
    EXPECT_TRUE(s.OpenLastDetectorUsed);
    EXPECT_FALSE(s.ApplyHV);
    EXPECT_EQ(s.DetectorPath, "");
    EXPECT_EQ(s.SpctScaleColor, 123);
    EXPECT_EQ(s.SpctForeColor, 12632256); // default, not SpctRefColor
    EXPECT_FALSE(s.SpctShowGrid);         // damaged flag reads as 0
    EXPECT_EQ(s.RoiColors[8], 7);
    EXPECT_EQ(s.RoiColors[2], 12632064);
    EXPECT_FALSE(s.ROISect);
    EXPECT_TRUE(s.PlotSect);
    EXPECT_EQ(s.RepStyle, "None");
    EXPECT_EQ(s.Style, DefaultReportStyle());
    EXPECT_EQ(s.BatchDataDir, "D:\\b");
    // The styles file is missing: the user is told, once.
    ASSERT_EQ(messages.shown().size(), 1u);
    EXPECT_EQ(messages.shown()[0].title, "Error opening Report Styles");
}

TEST(VerifySettings, DefaultScaleColourAndStyle) {
    EXPECT_EQ(AppSettings{}.SpctScaleColor, 12648447);
    const ReportStyle d = DefaultReportStyle();
    EXPECT_EQ(d.sectionName, "None");
    EXPECT_EQ(d.index, 1);
    EXPECT_EQ(d.CS_TitleBorder, 1);
    EXPECT_EQ(d.CS_TitleColor, "#000000");
    EXPECT_EQ(d.CS_TitleFont, "tahoma");
    EXPECT_EQ(d.CS_HeaderBack, "#FFFFFF");
    EXPECT_EQ(d.CS_HeaderFore, "#000000");
    EXPECT_EQ(d.CS_RowBack, "#000000");
    EXPECT_EQ(d.CS_RowFore, "");
    EXPECT_EQ(d.CS_Description, "");
}

TEST(VerifySettings, ReportStylesLoadedAndResolvedBySectionName) {
    TempDir dir;
    test::WriteBytes(dir / "RepStyles.ini", "[Blue]\r\nCS_Description=Blue one\r\n"
                                            "CS_RowBack=#0000FF\r\n"
                                            "[Plain]\r\n");
    ScriptedMessages messages;
    ReportStyleList list = LoadReportStyles(dir.path(), messages);
    EXPECT_TRUE(messages.shown().empty());
    ASSERT_EQ(list.styles.size(), 3u);
    EXPECT_EQ(list.highestIndex, 2);
    EXPECT_EQ(list.styles[0], ReportStyle{});
    const ReportStyle& plain = list.styles[2];
    EXPECT_EQ(plain.index, 2);
    EXPECT_EQ(plain.CS_Description, "No style");
    EXPECT_EQ(plain.CS_TitleFont, "tahoma");
    EXPECT_EQ(plain.CS_TitleBorder, 0);
    EXPECT_EQ(plain.CS_RowBack, "#FFFFFF");
    EXPECT_EQ(plain.CS_RowFore, "#000000");
    const struct {
        const char* name;
        const char* section;
    } cases[] = {
        {"Blue", "Blue"}, {"blue", "None"}, {"Blue one", "None"}, {"", ""}, {"None", "None"}};
    for (const auto& c : cases)
        EXPECT_EQ(ResolveReportStyle(list, c.name).sectionName, c.section) << c.name;
    EXPECT_EQ(ResolveReportStyle(list, "Blue").CS_RowBack, "#0000FF");
}

TEST(VerifySettings, FormLocation) {
    TempDir dir;
    const struct {
        int width, height, left, top;
    } cases[] = {{1920, 1080, 460, 240}, {1921, 1081, 460, 240}, {1923, 1083, 462, 242}};
    for (const auto& c : cases) {
        FormLocation loc;
        LoadFormLocation(loc, dir.path(), c.width, c.height);
        EXPECT_EQ(loc.Left, c.left) << c.width;
        EXPECT_EQ(loc.Top, c.top) << c.height;
        EXPECT_EQ(loc.Width, 1000);
        EXPECT_EQ(loc.Height, 600);
        EXPECT_EQ(loc.State, 0);
        EXPECT_FALSE(loc.RememberLoc);
    }
    FormLocation saved{true, -10, 20, 800, 500, 2};
    SaveFormLocation(saved, dir.path());
    EXPECT_EQ(test::ReadBytes(dir / "Vexo.ini"),
              "[FORM]\r\nRememberLoc=-1\r\nLeft=-10\r\nTop=20\r\nWidth=800\r\nHeight=500\r\n"
              "State=2\r\n");
    FormLocation back;
    LoadFormLocation(back, dir.path(), 1, 1);
    EXPECT_EQ(back, saved);
}

// --- Text decoding --------------------------------------------------------------------

TEST(VerifyTextFile, InvalidUtf8BytesAreTakenAsTheyStand) {
    const struct {
        std::string utf8;
        std::string win1252;
    } cases[] = {
        {"\xC0\x8A", "\xC0\x8A"},                 // overlong line feed
        {"\xE0\x80\xAF", "\xE0\x80\xAF"},         // overlong '/'
        {"\xF0\x80\x80\xAF", "\xF0\x80\x80\xAF"}, // overlong '/'
        {"\xED\xA0\x80", "\xED\xA0\x80"},         // surrogate U+D800
        {"\xF4\x90\x80\x80", "\xF4\x90\x80\x80"}, // past U+10FFFF
        {"\xF8\x88\x80\x80\x80", "\xF8\x88\x80\x80\x80"},
        {"\xC3\xA9", "\xE9"},      // valid: e acute
        {"\xE2\x82\xAC", "\x80"},  // valid: euro sign
        {"\xF0\x9F\x98\x80", "?"}, // valid, not in the code page
        {"\xC2\x80", "?"},         // valid U+0080: no such character
    };
    for (const auto& c : cases)
        EXPECT_EQ(Utf8ToWin1252(c.utf8), c.win1252);
}

} // namespace
} // namespace vexo
