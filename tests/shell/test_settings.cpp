// The settings file "Vexo.ini": defaults, key order, the quirks kept on purpose, batch
// mode and the remembered window placement.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "base/CPrivateINI.h"
#include "shell/AppSettings.h"

using namespace vexo;
using vexo::test::ReadBytes;
using vexo::test::TempDir;
using vexo::test::WriteBytes;

namespace {

class SettingsTest : public ::testing::Test {
protected:
    std::filesystem::path iniPath() const { return SettingsFilePath(m_dir.path()); }
    std::string iniText() const { return ReadBytes(iniPath()); }
    void writeIni(const std::string& bytes) const { WriteBytes(iniPath(), bytes); }
    // A styles file, so loading says nothing about a missing one.
    void writeStyles(const std::string& bytes) const { WriteBytes(m_dir / "RepStyles.ini", bytes); }
    CPrivateINI store() const {
        CPrivateINI ini;
        ini.setINIFile(iniPath().string());
        return ini;
    }

    TempDir m_dir;
    ScriptedMessages m_messages;
};

// A record with every field away from its default.
AppSettings Changed() {
    AppSettings s;
    s.RoiFollowUp = false;
    s.DefNucLib = "/data/libs/Vexo.nli";
    s.OpenLastDetectorUsed = true;
    s.ApplyHV = true;
    s.DetectorPath = "USB:\\\\?\\usb#vid_1234";
    s.SpctBackColor = 1;
    s.SpctForeColor = 2;
    s.SpctScaleColor = 3;
    s.SpctCurColor = 4;
    s.SpctScaleMode = 0;
    s.SpctGraphType = 3;
    s.SpctShowGrid = false;
    s.SpctFilled = false;
    s.RoiOneColor = false;
    for (std::size_t n = 0; n < 9; ++n)
        s.RoiColors[n] = static_cast<int32_t>(100 + n);
    s.PlotSect = false;
    s.SpctSect = false;
    s.HardwareSect = false;
    s.DataAcqSect = false;
    s.CalibrationSect = false;
    s.ROISect = false;
    s.RepStyle = "Blue";
    s.EnableExtProcessing = true;
    s.DataDir = "/tmp/out dir";
    s.FileName = "spec.spe";
    s.Program = "/usr/bin/analyse";
    s.StartupDir = "/tmp";
    s.Arguments = "-f \"%F\" -d %D";
    s.BatchDataDir = "/data/batch";
    return s;
}

const char* const kDefaultSave = "[PROGRAM]\r\n"
                                 "RoiFollowUp=-1\r\n"
                                 "DefNucLib=None\r\n"
                                 "OpenLastDetectorUsed=0\r\n"
                                 "ApplyHV=0\r\n"
                                 "DetectorPath= \r\n"
                                 "[DISPLAY]\r\n"
                                 "SpctBackColor=16777215\r\n"
                                 "SpctForeColor=12632256\r\n"
                                 "SpctLabelColor=12648447\r\n"
                                 "SpctRefColor=12632256\r\n"
                                 "SpctCurColor=0\r\n"
                                 "SpctScaleColor=12648447\r\n"
                                 "SpctFilled=-1\r\n"
                                 "SpctShowGrid=-1\r\n"
                                 "SpctGraphType=2\r\n"
                                 "SpctScaleMode=1\r\n"
                                 "RoiOneColor=-1\r\n"
                                 "RoiBaseColor=255\r\n"
                                 "RoiColorNo1=255\r\n"
                                 "RoiColorNo2=12632064\r\n"
                                 "RoiColorNo3=49184\r\n"
                                 "RoiColorNo4=8454143\r\n"
                                 "RoiColorNo5=8388800\r\n"
                                 "RoiColorNo6=32896\r\n"
                                 "RoiColorNo7=12632256\r\n"
                                 "RoiColorNo8=6605000\r\n"
                                 "[REPORT]\r\n"
                                 "HardwareSect=-1\r\n"
                                 "DataAcqSect=-1\r\n"
                                 "CalibrationSect=-1\r\n"
                                 "ROISect=-1\r\n"
                                 "PlotSect=-1\r\n"
                                 "SpctSect=-1\r\n"
                                 "RepStyle=None\r\n"
                                 "[PROCESS]\r\n"
                                 "EnableExtProcessing=0\r\n"
                                 "DataDir= \r\n"
                                 "FileName= \r\n"
                                 "Program= \r\n"
                                 "StartupDir= \r\n"
                                 "Arguments= \r\n";

} // namespace

TEST(SettingsPath, AppDirWithOrWithoutSeparator) {
    EXPECT_EQ(SettingsFilePath("/opt/vexo").string(), "/opt/vexo/Vexo.ini");
    EXPECT_EQ(SettingsFilePath("/opt/vexo/").string(), "/opt/vexo/Vexo.ini");
    EXPECT_EQ(RgbColor(-5, 300, 0), 65280); // components clamped to 0..255
}

TEST_F(SettingsTest, MissingFileLoadsNothing) {
    AppSettings s = Changed();
    EXPECT_FALSE(LoadSettings(s, m_dir.path(), m_messages));
    EXPECT_EQ(s, Changed());
    EXPECT_TRUE(m_messages.shown().empty()); // not even about the styles file
}

TEST_F(SettingsTest, FullSaveOfFreshRecordWritesEveryKeyInOrder) {
    AppSettings s;
    ASSERT_FALSE(LoadSettings(s, m_dir.path(), m_messages));
    ASSERT_TRUE(SaveSettings(s, false, m_dir.path()));
    EXPECT_EQ(iniText(), kDefaultSave);
    // The empty detector path, written as one blank, reads back empty.
    s.DetectorPath = "USB:old";
    writeStyles("[x]\r\n");
    ASSERT_TRUE(LoadSettings(s, m_dir.path(), m_messages));
    EXPECT_EQ(s.DetectorPath, "");
}

TEST_F(SettingsTest, EmptyFileLoadsTableDefaults) {
    writeIni("");
    writeStyles("[Blue]\r\n");
    AppSettings s = Changed();
    ASSERT_TRUE(LoadSettings(s, m_dir.path(), m_messages));
    AppSettings expected; // fresh record: the defaults of every key
    expected.Style = DefaultReportStyle();
    EXPECT_EQ(s, expected);
}

TEST_F(SettingsTest, SaveThenLoadRoundTrips) {
    writeStyles("[Blue]\r\nCS_TitleColor=#0000FF\r\n");
    AppSettings saved = Changed();
    saved.BatchDataDir.clear(); // a full save does not write it
    ASSERT_TRUE(SaveSettings(saved, false, m_dir.path()));
    AppSettings loaded;
    ASSERT_TRUE(LoadSettings(loaded, m_dir.path(), m_messages));
    EXPECT_EQ(loaded.Style.sectionName, "Blue");
    EXPECT_EQ(loaded.Style.CS_TitleColor, "#0000FF");
    saved.Style = loaded.Style;
    EXPECT_EQ(loaded, saved);
    EXPECT_TRUE(m_messages.shown().empty());
}

TEST_F(SettingsTest, LabelAndRefColoursCarryOtherKeysAndAreNeverRead) {
    AppSettings s = Changed();
    ASSERT_TRUE(SaveSettings(s, false, m_dir.path()));
    auto ini = store();
    EXPECT_EQ(ini.GetLongValue("DISPLAY", "SpctLabelColor", -9), s.SpctScaleColor);
    EXPECT_EQ(ini.GetLongValue("DISPLAY", "SpctRefColor", -9), s.SpctForeColor);
    ini.PutLongValue("DISPLAY", "SpctLabelColor", 777);
    ini.PutLongValue("DISPLAY", "SpctRefColor", 888);
    AppSettings loaded;
    writeStyles("[x]\r\n");
    ASSERT_TRUE(LoadSettings(loaded, m_dir.path(), m_messages));
    EXPECT_EQ(loaded.SpctScaleColor, s.SpctScaleColor);
    EXPECT_EQ(loaded.SpctForeColor, s.SpctForeColor);
}

TEST_F(SettingsTest, BatchModeWritesOnlyBatchDataDir) {
    AppSettings s = Changed();
    ASSERT_TRUE(SaveSettings(s, true, m_dir.path()));
    EXPECT_EQ(iniText(), "[BATCH]\r\nBatchDataDir=/data/batch\r\n");

    ASSERT_TRUE(SaveSettings(AppSettings{}, false, m_dir.path()));
    s.BatchDataDir = "/data/second";
    ASSERT_TRUE(SaveSettings(s, true, m_dir.path()));
    std::string text = iniText();
    EXPECT_EQ(text.find("[BATCH]\r\nBatchDataDir=/data/second\r\n"), 0u);
    EXPECT_NE(text.find("DefNucLib=None\r\n"), std::string::npos); // full keys unchanged
}

TEST_F(SettingsTest, SaveKeepsForeignLinesAndFormSection) {
    writeIni("; my notes\r\n[FORM]\r\nLeft=10\r\n\r\n[PROGRAM]\r\nApplyHV=-1\r\nExtra=x\r\n");
    ASSERT_TRUE(SaveSettings(AppSettings{}, false, m_dir.path()));
    std::string text = iniText();
    EXPECT_EQ(text.find("; my notes\r\n[FORM]\r\nLeft=10\r\n\r\n[PROGRAM]\r\nApplyHV=0\r\n"
                        "Extra=x\r\nRoiFollowUp=-1\r\n"),
              0u);
}

TEST_F(SettingsTest, FlagsAreTrueWhenNotZero) {
    writeStyles("[x]\r\n");
    for (auto [text, expected] : {std::pair{"-1", true},
                                  {"1", true},
                                  {"2", true},
                                  {"0", false},
                                  {"True", false},
                                  {"yes", false},
                                  {"", false}}) {
        writeIni(std::string("[PROGRAM]\r\nApplyHV=") + text + "\r\n");
        AppSettings s;
        ASSERT_TRUE(LoadSettings(s, m_dir.path(), m_messages));
        EXPECT_EQ(s.ApplyHV, expected) << text;
    }
}

TEST_F(SettingsTest, ErrorWhileReadingKeepsWhatWasRead) {
    // A title border beyond 16 bits stops the load while the styles are read: the keys
    // before it are taken, PROCESS and BATCH are not.
    writeIni("[PROGRAM]\r\nDefNucLib=lib.nli\r\n[REPORT]\r\nRepStyle=Big\r\n"
             "[PROCESS]\r\nProgram=/bin/true\r\n[BATCH]\r\nBatchDataDir=/b\r\n");
    writeStyles("[Big]\r\nCS_TitleBorder=40000\r\n");
    AppSettings s = Changed();
    EXPECT_FALSE(LoadSettings(s, m_dir.path(), m_messages));
    EXPECT_EQ(s.DefNucLib, "lib.nli");
    EXPECT_EQ(s.RepStyle, "Big");
    EXPECT_TRUE(s.RoiFollowUp); // read with its default
    EXPECT_EQ(s.Program, Changed().Program);
    EXPECT_EQ(s.BatchDataDir, Changed().BatchDataDir);
    EXPECT_TRUE(m_messages.shown().empty());
}

TEST_F(SettingsTest, RepStyleResolution) {
    writeStyles("[Plain]\r\nCS_Description=Plain style\r\n[Blue]\r\nCS_RowBack=#0000FF\r\n");
    struct Case {
        const char* repStyle; // as written in the file
        const char* expectedSection;
        int expectedIndex;
    };
    // The description does not name a style.
    const Case cases[] = {{"Blue", "Blue", 2},       {"Plain", "Plain", 1}, {"blue", "None", 1},
                          {"Missing", "None", 1},    {"None", "None", 1},   {" ", "", 0},
                          {"Plain style", "None", 1}};
    for (const auto& c : cases) {
        writeIni(std::string("[REPORT]\r\nRepStyle=") + c.repStyle + "\r\n");
        AppSettings s;
        ASSERT_TRUE(LoadSettings(s, m_dir.path(), m_messages));
        EXPECT_EQ(s.Style.sectionName, c.expectedSection) << c.repStyle;
        EXPECT_EQ(s.Style.index, c.expectedIndex) << c.repStyle;
    }
    EXPECT_TRUE(m_messages.shown().empty());
}

TEST_F(SettingsTest, MissingStylesFileTellsAndUsesDefault) {
    writeIni("[REPORT]\r\nRepStyle=Blue\r\n");
    AppSettings s;
    ASSERT_TRUE(LoadSettings(s, m_dir.path(), m_messages));
    EXPECT_EQ(s.Style, DefaultReportStyle());
    ASSERT_EQ(m_messages.shown().size(), 1u);
    EXPECT_EQ(m_messages.shown()[0].title, "Error opening Report Styles");
}

// --- window placement ----------------------------------------------------------------

TEST_F(SettingsTest, FormLocationIsCentredWithHalvesToEvenUntilSaved) {
    // {width, height, left, top} of the screen and the centred 1000 x 600 window.
    const std::array<int32_t, 4> cases[] = {
        {1920, 1080, 460, 240}, {1921, 1081, 460, 240}, // 460.5, 240.5
        {1923, 1083, 462, 242},                         // 461.5, 241.5
        {1001, 601, 0, 0},                              // 0.5
        {1003, 603, 2, 2},                              // 1.5
        {800, 480, -100, -60},  {997, 597, -2, -2}};    // -1.5
    for (const auto& [width, height, left, top] : cases) {
        FormLocation loc;
        LoadFormLocation(loc, m_dir.path(), width, height);
        EXPECT_EQ(loc, (FormLocation{false, left, top, 1000, 600, 0})) << width << "x" << height;
    }
    EXPECT_FALSE(std::filesystem::exists(iniPath())); // reading creates nothing
    FormLocation loc{true, -8, 12, 1280, 720, 2};
    SaveFormLocation(loc, m_dir.path());
    EXPECT_EQ(iniText(), "[FORM]\r\nRememberLoc=-1\r\nLeft=-8\r\nTop=12\r\nWidth=1280\r\n"
                         "Height=720\r\nState=2\r\n");
    // A full save of the settings leaves the section alone.
    ASSERT_TRUE(SaveSettings(Changed(), false, m_dir.path()));
    FormLocation back;
    LoadFormLocation(back, m_dir.path(), 1920, 1080);
    EXPECT_EQ(back, loc);
}

TEST(ShippedNuclideLibrary, OfferedOnlyWhenTheProgramFolderHoldsIt) {
    TempDir dir;
    AppSettings settings;
    EXPECT_FALSE(OfferShippedNuclideLibrary(settings, dir.path()));
    EXPECT_EQ(settings.DefNucLib, "None");
    WriteBytes(dir / "Vexo.nli", "[Info]\r\nFileID=Vexo Nuclide Library\r\n");
    EXPECT_TRUE(OfferShippedNuclideLibrary(settings, dir.path()));
    EXPECT_EQ(settings.DefNucLib, (dir / "Vexo.nli").string());
    AppSettings untouched;
    EXPECT_FALSE(OfferShippedNuclideLibrary(untouched, {}));
    EXPECT_EQ(untouched.DefNucLib, "None");
}
