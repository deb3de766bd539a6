// Open: full spectrum files, the plain counts fallback, and spectra written by other
// programs (the IAEA-style files as full files, two that do not start with "$SPEC_ID:"
// as plain counts).
#include <gtest/gtest.h>

#include <numeric>

#include "SpectrumTestDocs.h"
#include "TestSupport.h"
#include "spectrum/PlainCountsFile.h"
#include "spectrum/SpectrumCommands.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

using test::TempDir;

std::unique_ptr<SpectrumDocument> Open(const std::filesystem::path& path, bool full) {
    auto doc = std::make_unique<SpectrumDocument>();
    OpenResult result = OpenSpectrum(*doc, path);
    EXPECT_TRUE(result.opened) << result.error;
    EXPECT_EQ(result.full, full) << result.fullError;
    EXPECT_TRUE(doc->bFromFile);
    EXPECT_EQ(doc->szFileName, path.filename().string());
    return doc;
}

TEST(OpenSpectrum, FileWithoutRoisOrCalibrationAfterOneWithThem) {
    TempDir dir;
    auto withRois = test::MakeFullDocument();
    ASSERT_TRUE(bSaveFullSpectrum(*withRois, dir / "rois.spe"));
    withRois->plot = PlotState{}; // uncalibrated copy, no ROIs
    std::string text = FullSpectrumBytes(*withRois);
    // Drop the calibration section so that the second file carries none.
    text.erase(text.find("$SPEC_CAL:"), text.find("$MCA_CAL:") - text.find("$SPEC_CAL:"));
    test::WriteBytes(dir / "plain.spe", text);

    auto doc = std::make_unique<SpectrumDocument>();
    ASSERT_TRUE(OpenSpectrum(*doc, dir / "rois.spe").full);
    ASSERT_EQ(doc->plot.rois.size(), 2u);
    ASSERT_TRUE(doc->calibration.bCalibrated);
    EXPECT_TRUE(OpenSpectrum(*doc, dir / "plain.spe").full);
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
    doc->plot.rois.push_back({1, 2, 3, false, "gone"});
    doc->setCalibration({true, 1.0, 2.0, 3.0});
    OpenResult result = OpenSpectrum(*doc, dir / "counts.txt");
    EXPECT_TRUE(result.opened);
    EXPECT_FALSE(result.full);
    EXPECT_TRUE(result.error.empty()) << result.error;
    EXPECT_FALSE(result.fullError.empty());
    EXPECT_EQ(doc->lChannels, 6);
    EXPECT_EQ((std::array{doc->lCounts[0], doc->lCounts[1], doc->lCounts[2], doc->lCounts[3],
                          doc->lCounts[4], doc->lCounts[5], doc->lCounts[6]}),
              (std::array{57, 3, 4, 8, 0, 12, 99}));
    EXPECT_TRUE(doc->bFromFile);
    EXPECT_EQ(doc->szFileName, "counts.txt");
    EXPECT_TRUE(doc->plot.rois.empty()); // nothing of the previous spectrum stays
    EXPECT_FALSE(doc->calibration.bCalibrated);
    EXPECT_EQ(doc->calibration.dSlope, 2.5);
}

TEST(OpenSpectrum, PlainFilesStopAt16384ValuesOrAtAValueBeyond32Bits) {
    TempDir dir;
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += std::to_string(i) + "\r\n";
    test::WriteBytes(dir / "big.dat", text);
    auto doc = Open(dir / "big.dat", false);
    EXPECT_EQ(doc->lChannels, 16384);
    EXPECT_EQ(doc->lCounts[16383], 16383);
    EXPECT_EQ(doc->lCounts[16384], 0);

    test::WriteBytes(dir / "bad.dat", "1\r\n2\r\n99999999999\r\n4\r\n");
    OpenResult result = OpenSpectrum(*doc, dir / "bad.dat");
    EXPECT_TRUE(result.opened);
    EXPECT_EQ(doc->lChannels, 2);
    EXPECT_EQ(result.error, "Overflow in value 3");
}

// A full file is read as one whatever its size (thousands of ROIs, long notes).
TEST(OpenSpectrum, LargeFullFileKeepsItsRecord) {
    TempDir dir;
    std::string text = "$SPEC_ID:\r\nhuge\r\n$DATA:\r\n0 3\r\n1 2 3 4\r\n";
    text.append(std::size_t{9} << 20, ' '); // a line the reader skips
    test::WriteBytes(dir / "huge.spe", text);
    auto doc = Open(dir / "huge.spe", true);
    EXPECT_EQ(doc->szSpectrumID, "huge");
    EXPECT_EQ(doc->lChannels, 4);
    EXPECT_EQ(doc->lCounts[3], 4);
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
    EXPECT_EQ(FileNamePart("mixed/dir\\c.txt"), "c.txt");
    EXPECT_EQ(FileNamePart("plain.spe"), "plain.spe");
    EXPECT_EQ(FileNamePart("ends/"), "");
}

TEST(OpenSpectrum, SaveThenOpenPlainKeepsCountsOnly) {
    TempDir dir;
    auto written = test::MakeFullDocument();
    ASSERT_TRUE(SaveSpectrum(*written, dir / "s.dat").ok);
    auto doc = Open(dir / "s.dat", false);
    EXPECT_EQ(doc->lChannels, 1024);
    EXPECT_EQ(doc->lCounts[17], written->lCounts[17]);
    EXPECT_EQ(doc->sngLiveTime, 0.0f);
}

// Files of our own making under tests/data/spectrum.
TEST(OpenSpectrum, FilesOfOurOwn) {
    const auto data = test::TestDataDir() / "spectrum";
    // vexo-cli info checks the rest of this file's record.
    auto doc = Open(data / "small_full.spe", true);
    EXPECT_EQ(doc->sngLiveTime, 100.0f);
    EXPECT_EQ(doc->szDeviceSerial, "0042");
    EXPECT_EQ(doc->calibration, (EnergyCalibration{true, 1.5, 10.0, 0.0}));
    EXPECT_EQ(test::RoiText(doc->plot.rois), "3-7 65280 1 Peak A;");

    doc = Open(data / "lf_only.spe", true);
    EXPECT_EQ(doc->szSpectrumID, "LF only sample");
    EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), "2022-05-17T23:59:58");
    EXPECT_EQ(doc->sngRealTime, 61.0f);
    EXPECT_EQ(doc->lChannels, 10);
    EXPECT_EQ(doc->lCounts[9], 14);
    EXPECT_FALSE(doc->calibration.bCalibrated);

    doc = Open(data / "plain_counts.dat", false);
    EXPECT_EQ(doc->lChannels, 6);
    EXPECT_EQ(doc->lCounts[5], 42);
}

TEST(OpenSpectrum, FilesOfOtherPrograms) {
    const auto folder = test::SharedDir() / "testdata" / "spectra";
    if (!std::filesystem::is_directory(folder))
        GTEST_SKIP() << "no shared spectra at " << folder;
    const struct {
        const char* name;
        bool full;
        int32_t channels;
        float live, real;
        const char* iso; // measurement date, full files only
        int64_t sum;     // counts 0..channels-1
        int32_t index;   // one count checked
        int32_t count;
        int rois;
    } files[] = {{"becquerel_1110C_NAA_cave_background_May2017.spe", true, 16384, 437817, 437903,
                  "2017-04-26T11:05:11", 1052900, 506, 1507, 4},
                 {"becquerel_nai_detector.spe", true, 1001, 3600, 3600, "2018-03-26T00:00:00",
                  398163, 15, 536, 0},
                 {"becquerel_SGM102432_D3S_CsI_Ba133_Cs137.spe", true, 4094, 300, 300,
                  "2018-07-11T00:00:00", 166239, 4093, 1, 0},
                 {"interspec_Co60LowResNoCalib.spe", true, 2048, 96, 97, "2013-12-12T09:05:53",
                  97236, 20, 174, 2},
                 {"interspec_Cs137LowResNoCalib.spe", true, 2048, 28, 29, "2013-12-12T08:55:24",
                  29134, 20, 91, 2},
                 {"pyne_gv_format_spect.spe", true, 1024, 199, 209, "2014-08-01T11:43:41", 256038,
                  479, 15055, 0},
                 {"tzerk_digibase_calibration_spectrum.spe", true, 1024, 10000, 10014,
                  "2017-04-26T12:04:52", 3670244, 30, 62677, 2},
                 // No "$SPEC_ID:" first line: read as plain counts, every field one value (text
                 // that is no number reads as 0, "07/30/2024" as 7, "3599.749" as 3600).
                 {"crp2a_Kromek_CZT.spe", false, 4155, 0, 0, nullptr, 39997, 13, 3600, 0},
                 // The malformed file starts with "$MCA_166_ID:", so it too is plain counts:
                 // "SN# 1087" gives 0 and 1087, the orphaned date 10 and 15, "$CPS:" 252.0 252.
                 {"adv0rnik_mca166_sample_1_malformed.spe", false, 5193, 0, 0, nullptr, 2669597, 14,
                  252, 0}};
    for (const auto& f : files) {
        SCOPED_TRACE(f.name);
        auto doc = Open(folder / f.name, f.full);
        EXPECT_EQ(doc->lChannels, f.channels);
        EXPECT_EQ(std::accumulate(doc->lCounts.begin(), doc->lCounts.begin() + doc->lChannels,
                                  int64_t{0}),
                  f.sum);
        EXPECT_EQ(doc->lCounts[f.index], f.count);
        EXPECT_EQ(static_cast<int>(doc->plot.rois.size()), f.rois);
        // None carries "$SPEC_CAL:"; "$MCA_CAL:" with its "keV" is skipped.
        EXPECT_FALSE(doc->calibration.bCalibrated);
        if (f.full) {
            EXPECT_EQ(doc->sngLiveTime, f.live);
            EXPECT_EQ(doc->sngRealTime, f.real);
            EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), f.iso);
            EXPECT_EQ(doc->lPresetMode, 3);
        }
    }
    // The sectioned file's last ROI and identity; the count line "4" has one part.
    auto doc = Open(folder / files[0].name, true);
    EXPECT_EQ(doc->szSpectrumID, "No sample description was entered.");
    EXPECT_EQ(test::RoiText({doc->plot.rois.back()}), "14225-14398 255 0 ;");
    EXPECT_EQ(doc->lCounts[100], 474);
}

} // namespace
} // namespace vexo
