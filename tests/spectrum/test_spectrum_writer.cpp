#include <gtest/gtest.h>

#include <algorithm>

#include "SpectrumTestDocs.h"
#include "TestSupport.h"
#include "base/Messages.h"
#include "base/TextFile.h"
#include "spectrum/PlainCountsFile.h"
#include "spectrum/SpectrumCommands.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

using test::TempDir;

std::unique_ptr<SpectrumDocument> SmallDocument() {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->szSpectrumID = "Test spectrum";
    doc->dtMeasured = SerialFromParts({2024, 3, 7, 14, 5, 9});
    doc->sngLiveTime = 12.5f;
    doc->sngRealTime = 13.25f;
    doc->szDeviceName = "VX100";
    doc->szDeviceSerial = "SN42";
    doc->lPresetMode = 1;
    doc->sngPresetTime = 300.0f;
    doc->lPresetCounts = 10000;
    doc->lPresetFirstCh = 10;
    doc->lPresetLastCh = 20;
    doc->lMCSMode = 1;
    doc->sngHighVoltage = 650.5f;
    doc->lCoarseGain = 2, doc->lFineGain = 1234, doc->lDigitalGain = 1;
    doc->lThreshold = 15, doc->lLLD = 5, doc->lULD = 1000;
    doc->lRiseTime = 24, doc->lFlatTop = 8, doc->lPoleZero = 2500;
    doc->lBLR = 1, doc->lPUR = 0;
    // Only the plot's 32-bit copy is written; the 64-bit record must not leak through.
    doc->calibration = {true, 99.0, 99.0, 99.0};
    doc->plot.sngOffset = -1.5f;
    doc->plot.sngSlope = 0.5f;
    doc->plot.sngQuad = 1.2345678e-5f;
    doc->plot.rois.push_back({3, 5, 65280, true, "Cs 137"});
    doc->plot.rois.push_back({7, 9, 255, false, ""});
    doc->lChannels = 10;
    for (int i = 0; i < 10; ++i)
        doc->lCounts[i] = i * 11;
    // Slots past the last channel are written as they are on the last line.
    for (int i = 10; i < 16; ++i)
        doc->lCounts[i] = 7;
    doc->lCounts[12] = -3;
    return doc;
}

const char* const kSmallExpected =
    "$SPEC_ID:\r\n"
    "Test spectrum\r\n"
    "$DATE_MEA:\r\n"
    "03-07-2024  14:05:09\r\n"
    "$MEAS_TIM:\r\n"
    "12.5          13.25\r\n"
    "$DEVICE_ID:\r\n"
    "VX100 SN42\r\n"
    "$ACQ_SETTINGS:\r\n"
    " 1             300           10000         10            20 \r\n"
    "$HRDW_PARAMS:\r\n"
    "MCS\r\n"
    "650.5\r\n"
    " 2             1234          1 \r\n"
    " 15            5             1000 \r\n"
    " 24            8             2500 \r\n"
    " 1             0 \r\n"
    "$SPEC_CAL:\r\n"
    "-1.5          0.5           1.234568E-05\r\n"
    "$MCA_CAL:\r\n"
    "3\r\n"
    "-1.5          0.5           1.234568E-05\r\n"
    "$ROI:\r\n"
    " 3             5             65280         1            Cs 137\r\n"
    " 7             9             255           0            \r\n"
    "$DATA:\r\n"
    " 0             9 \r\n"
    // clang-format off
    " 0             11            22            33            44            55            66            77 \r\n"
    " 88            99            7             7            -3             7             7             7 \r\n";
// clang-format on

TEST(SpectrumWriter, WritesTheExactLayout) {
    auto doc = SmallDocument();
    TempDir dir;
    std::string error;
    ASSERT_TRUE(bSaveFullSpectrum(*doc, dir / "small.spe", &error)) << error;
    EXPECT_EQ(test::ReadBytes(dir / "small.spe"), kSmallExpected);
}

TEST(SpectrumWriter, NoRoiSectionWithoutPlotRois) {
    auto doc = SmallDocument();
    doc->plot.rois.clear();
    std::string text = FullSpectrumBytes(*doc);
    EXPECT_EQ(text.find("$ROI:"), std::string::npos);
    EXPECT_NE(text.find("1.234568E-05\r\n$DATA:\r\n"), std::string::npos);
}

TEST(SpectrumWriter, TextIsWrittenInWindows1252) {
    auto doc = SmallDocument();
    doc->szSpectrumID = "Probe \xC3\xA4 \xE2\x82\xAC"; // a-umlaut and euro sign in UTF-8
    TempDir dir;
    ASSERT_TRUE(bSaveFullSpectrum(*doc, dir / "w.spe"));
    EXPECT_NE(test::ReadBytes(dir / "w.spe").find("\r\nProbe \xE4 \x80\r\n"), std::string::npos);
}

struct LastLineCase {
    int32_t channels;
    int32_t firstIndex; // index of the first value on the last counts line
};

class SpectrumWriterLastLine : public ::testing::TestWithParam<LastLineCase> {};

TEST_P(SpectrumWriterLastLine, HoldsEightValuesFromTheArray) {
    auto doc = std::make_unique<SpectrumDocument>();
    for (std::size_t i = 0; i < COUNTS_SLOTS; ++i)
        doc->lCounts[i] = static_cast<int32_t>(i) + 100000;
    doc->lChannels = GetParam().channels;
    std::string text = FullSpectrumBytes(*doc);
    auto lines = SplitLines(text);
    std::string expected;
    for (int k = 0; k < 8; ++k) {
        std::string item = " " + std::to_string(GetParam().firstIndex + k + 100000) + " ";
        if (k < 7)
            item.resize(14, ' ');
        expected += item;
    }
    EXPECT_EQ(lines.back(), expected);
    auto dataTag = std::find(lines.begin(), lines.end(), "$DATA:");
    ASSERT_NE(dataTag, lines.end());
    EXPECT_EQ(lines.end() - dataTag - 2, (GetParam().channels + 7) / 8);
}

INSTANTIATE_TEST_SUITE_P(Boundaries, SpectrumWriterLastLine,
                         ::testing::Values(LastLineCase{1000, 992}, LastLineCase{1001, 1000},
                                           LastLineCase{1, 0}, LastLineCase{16384, 16376}));

TEST(SpectrumWriter, MoreChannelsThanTheArrayFailsWithoutWriting) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lChannels = 16385;
    TempDir dir;
    std::string error;
    EXPECT_FALSE(bSaveFullSpectrum(*doc, dir / "x.spe", &error));
    EXPECT_EQ(error, "Subscript out of range");
    EXPECT_FALSE(std::filesystem::exists(dir / "x.spe"));
}

TEST(SpectrumWriter, ZeroChannelsWritesTheRangeAndNoCounts) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lChannels = 0;
    auto lines = SplitLines(FullSpectrumBytes(*doc));
    EXPECT_EQ(lines.back(), " 0            -1 ");
}

TEST(PlainCountsWriter, OneIntegerItemPerChannel) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lChannels = 3;
    doc->lCounts[0] = 57;
    doc->lCounts[1] = -3;
    doc->lCounts[2] = 0;
    doc->lCounts[3] = 99; // past the end: not written
    TempDir dir;
    SaveResult saved = SaveSpectrum(*doc, dir / "p.dat");
    ASSERT_TRUE(saved.ok) << saved.error;
    EXPECT_EQ(test::ReadBytes(dir / "p.dat"), " 57 \r\n-3 \r\n 0 \r\n");
}

TEST(SaveAll, FailureShowsTheExclamationMessage) {
    auto doc = SmallDocument();
    TempDir dir;
    ScriptedMessages messages;
    EXPECT_FALSE(SaveAllSpectrum(*doc, dir / "missing-folder" / "a.spe", messages));
    ASSERT_EQ(messages.shown().size(), 1u);
    EXPECT_EQ(messages.shown()[0].title, "Vexo");
    EXPECT_EQ(messages.shown()[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(messages.shown()[0].text, "Error saving file: No such file or directory");
}

TEST(SaveAll, SuccessShowsNothingAndWritesTheFullFormatWhateverTheExtension) {
    auto doc = SmallDocument();
    TempDir dir;
    ScriptedMessages messages;
    EXPECT_TRUE(SaveAllSpectrum(*doc, dir / "a.dat", messages));
    EXPECT_TRUE(messages.shown().empty());
    EXPECT_EQ(test::ReadBytes(dir / "a.dat"), kSmallExpected);
}

TEST(SpectrumDialogs, FiltersJoinTheirEntriesInOrder) {
    EXPECT_EQ(kOpenSpectrumTitle, "Open Spectrum...");
    EXPECT_EQ(kSaveSpectrumDefaultExt, "dat");
    EXPECT_EQ(kSaveAllSpectrumFilter, kOpenSpectrumFilter);
    EXPECT_EQ(kSaveSpectrumFilter,
              "Text files (*.txt)|*.txt|Data files (*.dat)|*.dat|All files (*.*)|*.*");
}

} // namespace
} // namespace vexo
