#include <gtest/gtest.h>

#include "SpectrumTestDocs.h"
#include "TestSupport.h"
#include "spectrum/CountRate.h"
#include "spectrum/PlainCountsFile.h"
#include "spectrum/SpectrumCommands.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

using test::TempDir;

TEST(OpenSpectrum, FileWithoutRoisAfterOneWithRoisLeavesNoRois) {
    TempDir dir;
    auto withRois = test::MakeFullDocument();
    ASSERT_TRUE(bSaveFullSpectrum(*withRois, dir / "rois.spe"));
    withRois->plot.rois.clear();
    withRois->plot = PlotState{}; // uncalibrated copy, no ROIs
    ASSERT_TRUE(bSaveFullSpectrum(*withRois, dir / "plain.spe"));
    std::string text = test::ReadBytes(dir / "plain.spe");
    // Drop the calibration section so that the second file carries none.
    text.erase(text.find("$SPEC_CAL:"), text.find("$MCA_CAL:") - text.find("$SPEC_CAL:"));
    test::WriteBytes(dir / "plain.spe", text);

    auto doc = std::make_unique<SpectrumDocument>();
    ASSERT_TRUE(OpenSpectrum(*doc, dir / "rois.spe").full);
    ASSERT_EQ(static_cast<int>(doc->plot.rois.size()), 2);
    ASSERT_TRUE(doc->calibration.bCalibrated);
    OpenResult second = OpenSpectrum(*doc, dir / "plain.spe");
    EXPECT_TRUE(second.full);
    EXPECT_EQ(static_cast<int>(doc->plot.rois.size()), 0);
    EXPECT_TRUE(doc->plot.rois.empty());
    EXPECT_EQ(doc->calibration, EnergyCalibration::Default());
    EXPECT_FALSE(doc->plot.bUseCalibration);
    EXPECT_EQ(doc->plot.sngSlope, 2.5f);
}

TEST(OpenSpectrum, NotAFullFileIsReadAsPlainCounts) {
    TempDir dir;
    test::WriteBytes(dir / "counts.txt", " 57 \r\n3,4\r\n\r\n  8  \r\nabc\r\n12.5\r\n\r\n");
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lCounts[6] = 99;
    doc->bFromFile = false;
    OpenResult result = OpenSpectrum(*doc, dir / "counts.txt");
    EXPECT_FALSE(result.full);
    EXPECT_TRUE(result.opened);
    EXPECT_TRUE(result.error.empty()) << result.error;
    EXPECT_FALSE(result.fullError.empty());
    EXPECT_EQ(doc->lChannels, 6);
    EXPECT_EQ((std::array{doc->lCounts[0], doc->lCounts[1], doc->lCounts[2], doc->lCounts[3],
                          doc->lCounts[4], doc->lCounts[5], doc->lCounts[6]}),
              (std::array{57, 3, 4, 8, 0, 12, 99}));
    EXPECT_TRUE(doc->bFromFile);
    EXPECT_EQ(doc->szFileName, "counts.txt");
}

TEST(OpenSpectrum, PlainFileReadsAtMost16384Values) {
    TempDir dir;
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += std::to_string(i) + "\r\n";
    test::WriteBytes(dir / "big.dat", text);
    auto doc = std::make_unique<SpectrumDocument>();
    OpenResult result = OpenSpectrum(*doc, dir / "big.dat");
    EXPECT_TRUE(result.opened);
    EXPECT_EQ(doc->lChannels, 16384);
    EXPECT_EQ(doc->lCounts[16383], 16383);
    EXPECT_EQ(doc->lCounts[16384], 0);
}

TEST(OpenSpectrum, OversizedFileIsNotReadAsFullButItsStartAsPlain) {
    TempDir dir;
    std::string text = "$SPEC_ID:\r\nhuge\r\n$DATA:\r\n0 3\r\n1 2 3 4\r\n";
    text.append(kMaxSpectrumFileBytes, ' ');
    test::WriteBytes(dir / "huge.spe", text);
    auto doc = std::make_unique<SpectrumDocument>();
    OpenResult result = OpenSpectrum(*doc, dir / "huge.spe");
    EXPECT_FALSE(result.full);
    EXPECT_EQ(result.fullError, "file too large for a spectrum file");
    EXPECT_TRUE(result.opened);
    // "$SPEC_ID:", "huge", "$DATA:" read as 0, then 0 3 1 2 3 4.
    EXPECT_EQ(doc->lChannels, 9);
    EXPECT_EQ(doc->lCounts[8], 4);
}

TEST(OpenSpectrum, PlainValueBeyond32BitsStopsThereWithAReason) {
    TempDir dir;
    test::WriteBytes(dir / "bad.dat", "1\r\n2\r\n99999999999\r\n4\r\n");
    auto doc = std::make_unique<SpectrumDocument>();
    OpenResult result = OpenSpectrum(*doc, dir / "bad.dat");
    EXPECT_TRUE(result.opened);
    EXPECT_EQ(doc->lChannels, 2);
    EXPECT_EQ(result.error, "Overflow in value 3");
}

TEST(OpenSpectrum, MissingFileChangesNeitherNameNorSource) {
    TempDir dir;
    auto doc = std::make_unique<SpectrumDocument>();
    doc->szFileName = "before.spe";
    doc->lChannels = 512;
    OpenResult result = OpenSpectrum(*doc, dir / "missing.spe");
    EXPECT_FALSE(result.opened);
    EXPECT_EQ(result.error, "No such file or directory");
    EXPECT_EQ(doc->szFileName, "before.spe");
    EXPECT_FALSE(doc->bFromFile);
    EXPECT_EQ(doc->lChannels, 512);
}

TEST(OpenSpectrum, FileNameIsThePartAfterTheLastSeparator) {
    EXPECT_EQ(FileNamePart("C:\\Data\\run 1\\a.spe"), "a.spe");
    EXPECT_EQ(FileNamePart("/tmp/x/b.dat"), "b.dat");
    EXPECT_EQ(FileNamePart("mixed/dir\\c.txt"), "c.txt");
    EXPECT_EQ(FileNamePart("plain.spe"), "plain.spe");
    EXPECT_EQ(FileNamePart("ends/"), "");
}

TEST(OpenSpectrum, SaveThenOpenPlainKeepsCountsOnly) {
    TempDir dir;
    auto written = test::MakeFullDocument();
    ASSERT_TRUE(SaveSpectrum(*written, dir / "s.dat").ok);
    auto doc = std::make_unique<SpectrumDocument>();
    OpenResult result = OpenSpectrum(*doc, dir / "s.dat");
    EXPECT_FALSE(result.full);
    EXPECT_EQ(doc->lChannels, 1024);
    EXPECT_EQ(doc->lCounts[17], written->lCounts[17]);
    EXPECT_EQ(doc->sngLiveTime, 0.0f);
}

// Files of our own making under tests/data/spectrum.
TEST(OpenSpectrum, SmallFullFileOfOurOwn) {
    auto doc = std::make_unique<SpectrumDocument>();
    OpenResult result = OpenSpectrum(*doc, test::TestDataDir() / "spectrum" / "small_full.spe");
    ASSERT_TRUE(result.full) << result.fullError;
    EXPECT_EQ(doc->szSpectrumID, "Lab sample 7");
    EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), "2023-11-02T08:15:42");
    EXPECT_EQ(doc->sngLiveTime, 100.0f);
    EXPECT_EQ(doc->sngRealTime, 102.5f);
    EXPECT_EQ(doc->szDeviceSerial, "0042");
    EXPECT_EQ(doc->lPresetLastCh, 15);
    EXPECT_EQ(doc->lPoleZero, 1800);
    EXPECT_EQ(doc->calibration.dOffset, 1.5);
    EXPECT_EQ(doc->calibration.dSlope, 10.0);
    EXPECT_EQ(doc->lChannels, 16);
    EXPECT_EQ(doc->lCounts[5], 910);
    ASSERT_EQ(static_cast<int>(doc->plot.rois.size()), 1);
    EXPECT_EQ(doc->plot.rois[0].szName, "Peak A");
    EXPECT_FLOAT_EQ(CountRate(*doc), 21.58f);
}

TEST(OpenSpectrum, LineFeedOnlyFileFromOtherSoftware) {
    auto doc = std::make_unique<SpectrumDocument>();
    OpenResult result = OpenSpectrum(*doc, test::TestDataDir() / "spectrum" / "lf_only.spe");
    ASSERT_TRUE(result.full) << result.fullError;
    EXPECT_EQ(doc->szSpectrumID, "LF only sample");
    EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), "2022-05-17T23:59:58");
    EXPECT_EQ(doc->sngRealTime, 61.0f);
    EXPECT_EQ(doc->lChannels, 10);
    EXPECT_EQ(doc->lCounts[9], 14);
    EXPECT_FALSE(doc->calibration.bCalibrated);
}

TEST(OpenSpectrum, PlainFileOfOurOwn) {
    auto doc = std::make_unique<SpectrumDocument>();
    OpenResult result = OpenSpectrum(*doc, test::TestDataDir() / "spectrum" / "plain_counts.dat");
    EXPECT_FALSE(result.full);
    EXPECT_EQ(doc->lChannels, 6);
    EXPECT_EQ(doc->lCounts[5], 42);
    EXPECT_EQ(doc->szFileName, "plain_counts.dat");
}

} // namespace
} // namespace vexo
