// Spectrum files checked against hand-written file texts: the writer byte for byte, the
// reader's rules on hand-made files, and the plain counts fallback of Open.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "base/DateTime.h"
#include "base/Messages.h"
#include "spectrum/PlainCountsFile.h"
#include "spectrum/SpectrumCommands.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

using test::TempDir;

// Items in 14-column zones, as a person lays them out by hand: every item but the last
// padded with blanks to the next multiple of 14.
std::string Zones(const std::vector<std::string>& items) {
    std::string line;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0)
            line.append(14 * i - line.size(), ' ');
        line += items[i];
    }
    return line + "\r\n";
}

TEST(VerifySpectrumWriter, ZoneHelperMatchesAHandCountedLine) {
    EXPECT_EQ(Zones({" 1 ", " 3 ", "Cs"}), " 1             3            Cs\r\n");
    EXPECT_EQ(Zones({"-2147483648 ", " 1 "}), "-2147483648    1 \r\n");
}

std::unique_ptr<SpectrumDocument> TenChannels() {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->szSpectrumID = "Sample A 1";
    doc->dtMeasured = SerialFromParts({2024, 3, 7, 14, 5, 9});
    doc->sngLiveTime = 0.1f;
    doc->sngRealTime = 600.0f;
    doc->szDeviceName = "VX100";
    doc->szDeviceSerial = "SN42";
    doc->lPresetMode = 1;
    doc->sngPresetTime = 1e-5f;
    doc->lPresetCounts = 12345678;
    doc->lPresetFirstCh = 0;
    doc->lPresetLastCh = -1;
    doc->lMCSMode = 1;
    doc->sngHighVoltage = 12345678.0f;
    doc->lCoarseGain = 2, doc->lFineGain = 3071, doc->lDigitalGain = 1;
    doc->lThreshold = -5, doc->lLLD = 0, doc->lULD = 1023;
    doc->lRiseTime = 24, doc->lFlatTop = 8, doc->lPoleZero = 2500;
    doc->lBLR = 1, doc->lPUR = 0;
    doc->calibration = {false, 7.0, 7.0, 7.0}; // not what is written
    doc->plot.sngOffset = 0.1f;
    doc->plot.sngSlope = 2.5f;
    doc->plot.sngQuad = 1e-5f;
    doc->plot.rois = {
        {1, 3, 255, true, "Cs 137 peak"}, {4, 6, 65280, false, ""}, {7, 9, 16711680, true, "X"}};
    doc->lChannels = 10;
    const int32_t counts[16] = {0, 57, -3, 100000, 2147483647, -2147483647 - 1, 1, 2, 3, 4, 7,
                                8, 9,  10, 11,     12};
    for (int i = 0; i < 16; ++i)
        doc->lCounts[i] = counts[i];
    return doc;
}

TEST(VerifySpectrumWriter, TenChannelsWithThreeRoisByteForByte) {
    const std::string expected =
        "$SPEC_ID:\r\n"
        "Sample A 1\r\n"
        "$DATE_MEA:\r\n"
        "03-07-2024  14:05:09\r\n"
        "$MEAS_TIM:\r\n" +
        Zones({"0.1", "600"}) +
        "$DEVICE_ID:\r\n"
        "VX100 SN42\r\n"
        "$ACQ_SETTINGS:\r\n" +
        Zones({" 1 ", " 1E-05 ", " 12345678 ", " 0 ", "-1 "}) +
        "$HRDW_PARAMS:\r\n"
        "MCS\r\n"
        "1.234568E+07\r\n" +
        Zones({" 2 ", " 3071 ", " 1 "}) + Zones({"-5 ", " 0 ", " 1023 "}) +
        Zones({" 24 ", " 8 ", " 2500 "}) + Zones({" 1 ", " 0 "}) + "$SPEC_CAL:\r\n" +
        Zones({"0.1", "2.5", "1E-05"}) +
        "$MCA_CAL:\r\n"
        "3\r\n" +
        Zones({"0.1", "2.5", "1E-05"}) + "$ROI:\r\n" +
        Zones({" 1 ", " 3 ", " 255 ", " 1 ", "Cs 137 peak"}) +
        Zones({" 4 ", " 6 ", " 65280 ", " 0 ", ""}) +
        Zones({" 7 ", " 9 ", " 16711680 ", " 1 ", "X"}) + "$DATA:\r\n" + Zones({" 0 ", " 9 "}) +
        Zones({" 0 ", " 57 ", "-3 ", " 100000 ", " 2147483647 ", "-2147483648 ", " 1 ", " 2 "}) +
        Zones({" 3 ", " 4 ", " 7 ", " 8 ", " 9 ", " 10 ", " 11 ", " 12 "});
    // One line counted by hand: the empty ROI name still gets its zone.
    EXPECT_NE(expected.find("\r\n 4             6             65280         0            \r\n"),
              std::string::npos);
    EXPECT_EQ(FullSpectrumBytes(*TenChannels()), expected);

    TempDir dir;
    ASSERT_TRUE(bSaveFullSpectrum(*TenChannels(), dir / "ten.spe"));
    EXPECT_EQ(test::ReadBytes(dir / "ten.spe"), expected);
}

TEST(VerifySpectrumWriter, ThirtyTwoBitFloatTexts) {
    const struct {
        float value;
        const char* text;
    } cases[] = {{0.1f, "0.1"},       {1e-5f, "1E-05"},      {12345678.0f, "1.234568E+07"},
                 {600.0f, "600"},     {0.5f, "0.5"},         {1.234568e-5f, "1.234568E-05"},
                 {-1.5f, "-1.5"},     {0.0f, "0"},           {1234567.0f, "1234567"},
                 {0.0001f, "0.0001"}, {123.456f, "123.456"}, {-0.0f, "0"}};
    for (const auto& c : cases) {
        auto doc = std::make_unique<SpectrumDocument>();
        doc->sngLiveTime = c.value;
        doc->sngRealTime = c.value;
        const std::string bytes = FullSpectrumBytes(*doc);
        const std::string want = Zones({c.text, c.text});
        EXPECT_NE(bytes.find("$MEAS_TIM:\r\n" + want), std::string::npos) << c.text;
    }
}

TEST(VerifySpectrumWriter, NoRoiSectionWithoutRoisAndEmptySpectrum) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lChannels = 0;
    const std::string bytes = FullSpectrumBytes(*doc);
    EXPECT_EQ(bytes.find("$ROI:"), std::string::npos);
    // No channels: the range line "0, -1" and no counts line.
    const std::string tail = "$DATA:\r\n" + Zones({" 0 ", "-1 "});
    ASSERT_GE(bytes.size(), tail.size());
    EXPECT_EQ(bytes.substr(bytes.size() - tail.size()), tail);
    // Uncalibrated plot copy is still written: 0, 2.5, 0; mode PHA; device " ".
    EXPECT_NE(bytes.find("$SPEC_CAL:\r\n" + Zones({"0", "2.5", "0"})), std::string::npos);
    EXPECT_NE(bytes.find("$HRDW_PARAMS:\r\nPHA\r\n0\r\n"), std::string::npos);
    EXPECT_NE(bytes.find("$DEVICE_ID:\r\n \r\n"), std::string::npos);
}

TEST(VerifySpectrumWriter, CountsLinesOf1000And1001Channels) {
    for (int channels : {1000, 1001}) {
        auto doc = std::make_unique<SpectrumDocument>();
        doc->lChannels = channels;
        for (int i = 0; i < 1008; ++i)
            doc->lCounts[i] = i;
        const std::string bytes = FullSpectrumBytes(*doc);
        const std::size_t data = bytes.find("$DATA:\r\n");
        ASSERT_NE(data, std::string::npos);
        std::string rest = bytes.substr(data + 8);
        const std::string range = Zones({" 0 ", " " + std::to_string(channels - 1) + " "});
        ASSERT_EQ(rest.substr(0, range.size()), range);
        rest = rest.substr(range.size());
        std::string expected;
        for (int i = 0; i < channels; i += 8) {
            std::vector<std::string> items;
            for (int k = i; k < i + 8; ++k)
                items.push_back(" " + std::to_string(k) + " ");
            expected += Zones(items);
        }
        EXPECT_EQ(rest, expected) << channels;
        EXPECT_EQ(channels == 1000 ? 125u : 126u,
                  static_cast<unsigned>(std::count(rest.begin(), rest.end(), '\n')));

        auto back = std::make_unique<SpectrumDocument>();
        ASSERT_TRUE(ParseFullSpectrum(*back, bytes));
        EXPECT_EQ(back->lChannels, channels);
        EXPECT_EQ(back->lCounts[channels - 1], channels - 1);
    }
}

TEST(VerifySpectrumWriter, PlainCountsFileIsOneIntegerItemPerLine) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lChannels = 4;
    doc->lCounts[0] = 57, doc->lCounts[1] = 0, doc->lCounts[2] = -3, doc->lCounts[3] = 123456;
    doc->lCounts[4] = 99; // past the last channel: not written
    TempDir dir;
    ASSERT_TRUE(SaveSpectrum(*doc, dir / "plain.dat").ok);
    EXPECT_EQ(test::ReadBytes(dir / "plain.dat"), " 57 \r\n 0 \r\n-3 \r\n 123456 \r\n");
}

// --- Reader -------------------------------------------------------------------------

std::unique_ptr<SpectrumDocument> Parse(const std::string& bytes, bool expectOk = true) {
    auto doc = std::make_unique<SpectrumDocument>();
    EXPECT_EQ(ParseFullSpectrum(*doc, bytes), expectOk) << bytes;
    return doc;
}

TEST(VerifySpectrumReader, RoundTripOfTheTenChannelFile) {
    auto doc = Parse(FullSpectrumBytes(*TenChannels()));
    EXPECT_EQ(doc->szSpectrumID, "Sample A 1");
    EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), "2024-03-07T14:05:09");
    EXPECT_EQ(doc->sngLiveTime, 0.1f);
    EXPECT_EQ(doc->sngRealTime, 600.0f);
    EXPECT_EQ(doc->szDeviceName, "VX100");
    EXPECT_EQ(doc->szDeviceSerial, "SN42");
    EXPECT_EQ(doc->lPresetMode, 1);
    EXPECT_EQ(doc->sngPresetTime, 1e-5f);
    EXPECT_EQ(doc->lPresetCounts, 12345678);
    EXPECT_EQ(doc->lPresetLastCh, -1);
    EXPECT_EQ(doc->lMCSMode, 0); // the word "MCS" reads as 0
    EXPECT_EQ(doc->sngHighVoltage, 12345680.0f);
    EXPECT_EQ(doc->lFineGain, 3071);
    EXPECT_EQ(doc->lThreshold, -5);
    EXPECT_EQ(doc->lULD, 1023);
    EXPECT_EQ(doc->lPoleZero, 2500);
    EXPECT_EQ(doc->lBLR, 1);
    EXPECT_EQ(doc->lPUR, 0);
    EXPECT_TRUE(doc->calibration.bCalibrated);
    EXPECT_EQ(doc->calibration.dOffset, static_cast<double>(0.1f)); // widened, not 0.1
    EXPECT_EQ(doc->calibration.dQuad, static_cast<double>(1e-5f));
    EXPECT_TRUE(doc->plot.bUseCalibration);
    ASSERT_EQ(doc->plot.rois.size(), 3u);
    EXPECT_EQ(doc->plot.rois[0].szName, "Cs 137 peak");
    EXPECT_TRUE(doc->plot.rois[0].bFlag);
    EXPECT_EQ(doc->plot.rois[1].lColor, 65280);
    EXPECT_EQ(doc->plot.rois[1].szName, "");
    EXPECT_FALSE(doc->plot.rois[1].bFlag);
    ASSERT_EQ(static_cast<int>(doc->plot.rois.size()), 3);
    EXPECT_EQ(doc->plot.rois[2].lColor, 16711680);
    EXPECT_EQ(doc->plot.rois[0].szName, "Cs 137 peak");
    EXPECT_EQ(doc->lChannels, 10);
    EXPECT_EQ(doc->lCounts[4], 2147483647);
    EXPECT_EQ(doc->lCounts[5], -2147483647 - 1);
    EXPECT_EQ(doc->lCounts[9], 4);
    EXPECT_EQ(doc->lCounts[10], 0); // the rest of the last line is not read
}

TEST(VerifySpectrumReader, FirstLineMustStartWithTheIdTag) {
    const struct {
        const char* text;
        bool ok;
    } cases[] = {{"$SPEC_ID:\r\nA\r\n", true},   {"$SPEC_ID:extra\nA\n", true},
                 {" $SPEC_ID:\r\nA\r\n", false}, {"$spec_id:\r\nA\r\n", false},
                 {"57\r\n58\r\n", false},        {"", false}};
    for (const auto& c : cases) {
        auto doc = std::make_unique<SpectrumDocument>();
        EXPECT_EQ(ParseFullSpectrum(*doc, c.text), c.ok) << c.text;
    }
}

TEST(VerifySpectrumReader, TagsMustMatchExactlyAndOthersAreSkipped) {
    auto doc = Parse("$SPEC_ID:\nid\n"
                     "$MEAS_TIM: \n1 2\n"          // trailing blank: not a tag
                     "$meas_tim:\n3 4\n"           // letter case: not a tag
                     "$UNKNOWN:\n9 9\n"            // unknown: skipped
                     "$MCA_CAL:\n3\n5 6 7\n"       // not read
                     "$MEAS_TIM:\n10.5\n11.25\n"); // across lines, LF only
    EXPECT_EQ(doc->sngLiveTime, 10.5f);
    EXPECT_EQ(doc->sngRealTime, 11.25f);
    EXPECT_FALSE(doc->calibration.bCalibrated);
    EXPECT_EQ(doc->lPresetMode, 3); // preset snapshot reset after the ID line
}

TEST(VerifySpectrumReader, SectionsInAnyOrderFieldsByCommasAndBlanks) {
    auto doc = Parse("$SPEC_ID:\r\n  spaced  id \r\n"
                     "$DATA:\r\n2,4\r\n7,8\r\n9 1 1 1\r\n"
                     "$ACQ_SETTINGS:\r\n2, 60.5, 1000,5,\r\n50\r\n"
                     "$HRDW_PARAMS:\r\nPHA\r\n700.5\r\n1 2 3\r\n4 5 6\r\n7 8 9\r\n10 11\r\n");
    EXPECT_EQ(doc->szSpectrumID, "  spaced  id "); // the line as it is
    EXPECT_EQ(doc->lChannels, 3);
    EXPECT_EQ(doc->lCounts[2], 7);
    EXPECT_EQ(doc->lCounts[3], 8);
    EXPECT_EQ(doc->lCounts[4], 9);
    EXPECT_EQ(doc->lCounts[5], 0);
    EXPECT_EQ(doc->lPresetMode, 2);
    EXPECT_EQ(doc->sngPresetTime, 60.5f);
    EXPECT_EQ(doc->lPresetCounts, 1000);
    EXPECT_EQ(doc->lPresetFirstCh, 5);
    EXPECT_EQ(doc->lPresetLastCh, 50);
    EXPECT_EQ(doc->lMCSMode, 0);
    EXPECT_EQ(doc->sngHighVoltage, 700.5f);
    EXPECT_EQ(doc->lCoarseGain, 1);
    EXPECT_EQ(doc->lDigitalGain, 3);
    EXPECT_EQ(doc->lThreshold, 4);
    EXPECT_EQ(doc->lPoleZero, 9);
    EXPECT_EQ(doc->lBLR, 10);
    EXPECT_EQ(doc->lPUR, 11);
}

TEST(VerifySpectrumReader, DateByCharacterPosition) {
    const struct {
        const char* line;
        const char* expected; // yyyy-mm-ddThh:nn:ss, or "" for unchanged
    } cases[] = {
        {"03-07-2024  14:05:09", "2024-03-07T14:05:09"},
        {"  12/31/1999   23.59.58  ", "1999-12-31T23:59:58"}, // separators unchecked
        {"03-07-2024", ""},                                   // one part: unchanged
        {"3-7-2024 14:05:09", "2024-02-27T14:05:09"},         // misread by position
    };
    for (const auto& c : cases) {
        auto doc = std::make_unique<SpectrumDocument>();
        doc->dtMeasured = SerialFromParts({2001, 2, 3, 4, 5, 6});
        ASSERT_TRUE(ParseFullSpectrum(*doc, std::string("$SPEC_ID:\r\nx\r\n$DATE_MEA:\r\n") +
                                                c.line + "\r\n"))
            << c.line;
        EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"),
                  *c.expected ? c.expected : "2001-02-03T04:05:06")
            << c.line;
    }
}

TEST(VerifySpectrumReader, DeviceLineSplitAtBlanks) {
    const struct {
        const char* line;
        const char* name;
        const char* serial;
    } cases[] = {{"VX100 SN42", "VX100", "SN42"},
                 {"  My   Device  SN1 ", "My", "Device"},
                 {"OnlyOne", "old", "oldsn"},
                 {"", "old", "oldsn"}};
    for (const auto& c : cases) {
        auto doc = std::make_unique<SpectrumDocument>();
        doc->szDeviceName = "old";
        doc->szDeviceSerial = "oldsn";
        ASSERT_TRUE(ParseFullSpectrum(*doc, std::string("$SPEC_ID:\r\nx\r\n$DEVICE_ID:\r\n") +
                                                c.line + "\r\n"));
        EXPECT_EQ(doc->szDeviceName, c.name) << c.line;
        EXPECT_EQ(doc->szDeviceSerial, c.serial) << c.line;
    }
}

TEST(VerifySpectrumReader, RoiLinesUpToTheNextTag) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->plot.rois.push_back({1, 2, 3, true, "old"});
    ASSERT_TRUE(ParseFullSpectrum(*doc, "$SPEC_ID:\r\nx\r\n"
                                        "$ROI:\r\n"
                                        " 10   20   65280  1   Cs   137   peak \r\n"
                                        "30 40\r\n"
                                        "55\r\n"
                                        "\r\n"
                                        "50.6 60.4 0 0\r\n"
                                        "$DATA:\r\n0 1\r\n5 6\r\n"));
    ASSERT_EQ(doc->plot.rois.size(), 3u);
    EXPECT_EQ(doc->plot.rois[0].lFirst, 10);
    EXPECT_EQ(doc->plot.rois[0].lLast, 20);
    EXPECT_EQ(doc->plot.rois[0].lColor, 65280);
    EXPECT_TRUE(doc->plot.rois[0].bFlag);
    EXPECT_EQ(doc->plot.rois[0].szName, "Cs 137 peak");
    EXPECT_EQ(doc->plot.rois[1].lColor, 255);
    EXPECT_FALSE(doc->plot.rois[1].bFlag);
    EXPECT_EQ(doc->plot.rois[1].szName, "");
    EXPECT_EQ(doc->plot.rois[2].lFirst, 51); // rounded
    EXPECT_EQ(doc->plot.rois[2].lLast, 60);
    EXPECT_EQ(doc->plot.rois[2].lColor, 0);
    ASSERT_EQ(static_cast<int>(doc->plot.rois.size()), 3);
    EXPECT_EQ(doc->plot.rois[1].lFirst, 30);
    // The "$DATA:" after the ROI lines is still read.
    EXPECT_EQ(doc->lChannels, 2);
    EXPECT_EQ(doc->lCounts[1], 6);
}

TEST(VerifySpectrumReader, DataRangeClamped) {
    std::string text = "$SPEC_ID:\r\nx\r\n$DATA:\r\n-5 20000\r\n";
    for (int i = 0; i < 16384; ++i)
        text += std::to_string(i % 1000) + (i % 8 == 7 ? "\r\n" : " ");
    auto doc = Parse(text);
    EXPECT_EQ(doc->lChannels, 16384);
    EXPECT_EQ(doc->lCounts[16383], 16383 % 1000);

    auto empty = Parse("$SPEC_ID:\r\nx\r\n$DATA:\r\n5 2\r\n");
    EXPECT_EQ(empty->lChannels, -2); // fewer than one channel: no counts read
    Parse("$SPEC_ID:\r\nx\r\n$DATA:\r\n0 3\r\n1 2\r\n", false); // counts past the end
}

// --- Open -----------------------------------------------------------------------------

TEST(VerifySpectrumOpen, PlainFallbackStopsAt16384Values) {
    TempDir dir;
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += " " + std::to_string(i) + " \r\n";
    test::WriteBytes(dir / "big.txt", text);
    auto doc = std::make_unique<SpectrumDocument>();
    doc->plot.rois.push_back({1, 2, 3, false, "gone"});
    doc->setCalibration({true, 1.0, 2.0, 3.0});
    OpenResult result = OpenSpectrum(*doc, dir / "big.txt");
    EXPECT_TRUE(result.opened);
    EXPECT_FALSE(result.full);
    EXPECT_EQ(doc->lChannels, 16384);
    EXPECT_EQ(doc->lCounts[16383], 16383);
    EXPECT_EQ(doc->lCounts[16384], 0);
    EXPECT_TRUE(doc->bFromFile);
    EXPECT_EQ(doc->szFileName, "big.txt");
    EXPECT_TRUE(doc->plot.rois.empty());
    EXPECT_FALSE(doc->calibration.bCalibrated);
    EXPECT_EQ(doc->calibration.dSlope, 2.5);
}

TEST(VerifySpectrumOpen, FullFileWithoutRoisAfterOneWithRois) {
    TempDir dir;
    ASSERT_TRUE(bSaveFullSpectrum(*TenChannels(), dir / "with.spe"));
    auto plain = TenChannels();
    plain->plot.rois.clear();
    ASSERT_TRUE(bSaveFullSpectrum(*plain, dir / "without.spe"));
    auto doc = std::make_unique<SpectrumDocument>();
    ASSERT_TRUE(OpenSpectrum(*doc, dir / "with.spe").full);
    EXPECT_EQ(static_cast<int>(doc->plot.rois.size()), 3);
    ASSERT_TRUE(OpenSpectrum(*doc, dir / "without.spe").full);
    EXPECT_EQ(static_cast<int>(doc->plot.rois.size()), 0);
    EXPECT_TRUE(doc->plot.rois.empty());
}

TEST(VerifySpectrumOpen, DialogsAndSaveAllFailure) {
    EXPECT_EQ(kOpenSpectrumFilter, "Text files (*.txt)|*.txt|Data files (*.dat)|*.dat|"
                                   "Spectrum files (*.spe)|*.spe|All files (*.*)|*.*");
    EXPECT_EQ(kSaveSpectrumFilter,
              "Text files (*.txt)|*.txt|Data files (*.dat)|*.dat|All files (*.*)|*.*");
    EXPECT_EQ(kSaveAllSpectrumFilter, kOpenSpectrumFilter);
    EXPECT_EQ(kOpenSpectrumTitle, "Open Spectrum...");
    EXPECT_EQ(kSaveSpectrumTitle, "Save Spectrum As...");
    EXPECT_EQ(kSaveAllSpectrumTitle, "Save Spectrum As...");
    EXPECT_EQ(kOpenSpectrumDefaultExt, "spe");
    EXPECT_EQ(kSaveSpectrumDefaultExt, "dat");
    EXPECT_EQ(kSaveAllSpectrumDefaultExt, "spe");

    TempDir dir;
    ScriptedMessages messages;
    EXPECT_FALSE(SaveAllSpectrum(*TenChannels(), dir / "no" / "such" / "x.spe", messages));
    ASSERT_EQ(messages.shown().size(), 1u);
    EXPECT_EQ(messages.shown()[0].title, "Vexo");
    EXPECT_EQ(messages.shown()[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(messages.shown()[0].text.rfind("Error saving file: ", 0), 0u);
    EXPECT_GT(messages.shown()[0].text.size(), std::string("Error saving file: ").size());
}

// --- Files written by other programs --------------------------------------------------

TEST(VerifySpectrumOpen, RealFilesFromOtherPrograms) {
    const std::filesystem::path folder = test::SharedDir() / "testdata" / "spectra";
    if (!std::filesystem::is_directory(folder))
        GTEST_SKIP() << "no shared test spectra";
    const struct {
        const char* file;
        bool full;
        int32_t channels;
        long long sum;
        float live, real;
        int rois;
        const char* date; // "" when not read
    } cases[] = {
        {"becquerel_1110C_NAA_cave_background_May2017.spe", true, 16384, 1052900, 437817, 437903, 4,
         "2017-04-26T11:05:11"},
        {"becquerel_SGM102432_D3S_CsI_Ba133_Cs137.spe", true, 4094, 166239, 300, 300, 0,
         "2018-07-11T00:00:00"},
        {"becquerel_nai_detector.spe", true, 1001, 398163, 3600, 3600, 0, "2018-03-26T00:00:00"},
        {"interspec_Co60LowResNoCalib.spe", true, 2048, 97236, 96, 97, 2, "2013-12-12T09:05:53"},
        {"interspec_Cs137LowResNoCalib.spe", true, 2048, 29134, 28, 29, 2, "2013-12-12T08:55:24"},
        {"pyne_gv_format_spect.spe", true, 1024, 256038, 199, 209, 0, "2014-08-01T11:43:41"},
        {"tzerk_digibase_calibration_spectrum.spe", true, 1024, 3670244, 10000, 10014, 2,
         "2017-04-26T12:04:52"},
        {"crp2a_Kromek_CZT.spe", false, 4155, -1, 0, 0, 0, ""},
        {"adv0rnik_mca166_sample_1_malformed.spe", false, 5193, -1, 0, 0, 0, ""},
    };
    for (const auto& c : cases) {
        auto doc = std::make_unique<SpectrumDocument>();
        OpenResult result = OpenSpectrum(*doc, folder / c.file);
        ASSERT_TRUE(result.opened) << c.file;
        EXPECT_EQ(result.full, c.full) << c.file;
        EXPECT_EQ(doc->lChannels, c.channels) << c.file;
        EXPECT_EQ(doc->szFileName, c.file);
        if (!c.full)
            continue;
        long long sum = 0;
        for (int32_t i = 0; i < doc->lChannels; ++i)
            sum += doc->lCounts[static_cast<std::size_t>(i)];
        EXPECT_EQ(sum, c.sum) << c.file;
        EXPECT_EQ(doc->sngLiveTime, c.live) << c.file;
        EXPECT_EQ(doc->sngRealTime, c.real) << c.file;
        EXPECT_EQ(static_cast<int>(doc->plot.rois.size()), c.rois) << c.file;
        EXPECT_EQ(doc->plot.rois.size(), static_cast<std::size_t>(c.rois)) << c.file;
        EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), c.date) << c.file;
        EXPECT_FALSE(doc->calibration.bCalibrated) << c.file; // "$MCA_CAL:" is not read
        EXPECT_EQ(doc->lPresetMode, 3) << c.file;
    }
}

} // namespace
} // namespace vexo
