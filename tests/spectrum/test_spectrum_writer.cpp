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
    doc->lCounts[4] = 2147483647;
    doc->lCounts[5] = -2147483647 - 1;
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
    " 0             11            22            33            2147483647   -2147483648    66            77 \r\n"
    " 88            99            7             7            -3             7             7             7 \r\n";
// clang-format on

TEST(SpectrumWriter, WritesTheExactLayoutWhateverTheExtension) {
    auto doc = SmallDocument();
    TempDir dir;
    std::string error;
    ASSERT_TRUE(bSaveFullSpectrum(*doc, dir / "small.spe", &error)) << error;
    EXPECT_EQ(test::ReadBytes(dir / "small.spe"), kSmallExpected);
    ScriptedMessages messages;
    EXPECT_TRUE(SaveAllSpectrum(*doc, dir / "a.dat", messages));
    EXPECT_TRUE(messages.shown().empty());
    EXPECT_EQ(test::ReadBytes(dir / "a.dat"), kSmallExpected);
}

TEST(SpectrumWriter, NoRoiSectionWithoutPlotRoisAndNoCountsWithoutChannels) {
    auto doc = SmallDocument();
    doc->plot.rois.clear();
    EXPECT_NE(FullSpectrumBytes(*doc).find("1.234568E-05\r\n$DATA:\r\n"), std::string::npos);
    doc->lChannels = 0;
    EXPECT_EQ(SplitLines(FullSpectrumBytes(*doc)).back(), " 0            -1 ");
}

TEST(SpectrumWriter, TextIsWrittenInWindows1252) {
    auto doc = SmallDocument();
    doc->szSpectrumID = "Probe \xC3\xA4 \xE2\x82\xAC"; // a-umlaut and euro sign in UTF-8
    EXPECT_NE(FullSpectrumBytes(*doc).find("\r\nProbe \xE4 \x80\r\n"), std::string::npos);
}

TEST(SpectrumWriter, LastCountsLineHoldsEightValuesFromTheArray) {
    auto doc = std::make_unique<SpectrumDocument>();
    for (std::size_t i = 0; i < COUNTS_SLOTS; ++i)
        doc->lCounts[i] = static_cast<int32_t>(i) + 100000;
    // {channels, index of the first value on the last counts line}
    for (auto [channels, first] : {std::pair{1000, 992}, {1001, 1000}, {1, 0}, {16384, 16376}}) {
        doc->lChannels = channels;
        const auto lines = SplitLines(FullSpectrumBytes(*doc));
        std::string expected;
        for (int k = 0; k < 8; ++k) {
            std::string item = " " + std::to_string(first + k + 100000) + " ";
            item.resize(k < 7 ? 14 : item.size(), ' ');
            expected += item;
        }
        EXPECT_EQ(lines.back(), expected) << channels;
        auto dataTag = std::find(lines.begin(), lines.end(), "$DATA:");
        EXPECT_EQ(lines.end() - dataTag - 2, (channels + 7) / 8) << channels;
    }
    doc->lChannels = 16385;
    TempDir dir;
    std::string error;
    EXPECT_FALSE(bSaveFullSpectrum(*doc, dir / "x.spe", &error));
    EXPECT_EQ(error, "Subscript out of range");
    EXPECT_FALSE(std::filesystem::exists(dir / "x.spe"));
}

TEST(PlainCountsWriter, OneIntegerItemPerChannel) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lChannels = 3;
    doc->lCounts = {57, -3, 0, 99}; // the fourth is past the end: not written
    TempDir dir;
    SaveResult saved = SaveSpectrum(*doc, dir / "p.dat");
    ASSERT_TRUE(saved.ok) << saved.error;
    EXPECT_EQ(test::ReadBytes(dir / "p.dat"), " 57 \r\n-3 \r\n 0 \r\n");
}

TEST(SaveAll, FailureShowsTheExclamationMessage) {
    TempDir dir;
    ScriptedMessages messages;
    EXPECT_FALSE(SaveAllSpectrum(*SmallDocument(), dir / "missing-folder" / "a.spe", messages));
    ASSERT_EQ(messages.shown().size(), 1u);
    EXPECT_EQ(messages.shown()[0].title, "Vexo");
    EXPECT_EQ(messages.shown()[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(messages.shown()[0].text, "Error saving file: No such file or directory");
}

} // namespace
} // namespace vexo
