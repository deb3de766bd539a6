// Spectra written by other programs open: the IAEA-style files as full spectrum files,
// the two that do not start with "$SPEC_ID:" as plain counts files.
#include <gtest/gtest.h>

#include <numeric>

#include "TestSupport.h"
#include "base/DateTime.h"
#include "spectrum/SpectrumCommands.h"

namespace vexo {
namespace {

struct RealFile {
    const char* name;
    bool full;
    int32_t channels;
    float live, real;
    const char* iso; // measurement date, full files only
    int64_t sum;     // counts 0..channels-1
    int32_t index;   // one count checked
    int32_t count;
    int rois;
};

std::filesystem::path SpectraDir() {
    return test::SharedDir() / "testdata" / "spectra";
}

const RealFile kFiles[] = {
    {"becquerel_1110C_NAA_cave_background_May2017.spe", true, 16384, 437817, 437903,
     "2017-04-26T11:05:11", 1052900, 506, 1507, 4},
    {"becquerel_nai_detector.spe", true, 1001, 3600, 3600, "2018-03-26T00:00:00", 398163, 15, 536,
     0},
    {"becquerel_SGM102432_D3S_CsI_Ba133_Cs137.spe", true, 4094, 300, 300, "2018-07-11T00:00:00",
     166239, 4093, 1, 0},
    {"interspec_Co60LowResNoCalib.spe", true, 2048, 96, 97, "2013-12-12T09:05:53", 97236, 20, 174,
     2},
    {"interspec_Cs137LowResNoCalib.spe", true, 2048, 28, 29, "2013-12-12T08:55:24", 29134, 20, 91,
     2},
    {"pyne_gv_format_spect.spe", true, 1024, 199, 209, "2014-08-01T11:43:41", 256038, 479, 15055,
     0},
    {"tzerk_digibase_calibration_spectrum.spe", true, 1024, 10000, 10014, "2017-04-26T12:04:52",
     3670244, 30, 62677, 2},
    // No "$SPEC_ID:" first line: read as plain counts, every field one value (text that is
    // no number reads as 0, "07/30/2024" as 7, "3599.749" as 3600).
    {"crp2a_Kromek_CZT.spe", false, 4155, 0, 0, nullptr, 39997, 13, 3600, 0},
    // The malformed file starts with "$MCA_166_ID:", so it too is plain counts:
    // "SN# 1087" gives 0 and 1087, the orphaned date 10 and 15, "$CPS:" 252.000000 252.
    {"adv0rnik_mca166_sample_1_malformed.spe", false, 5193, 0, 0, nullptr, 2669597, 14, 252, 0},
};

class RealSpectrumFile : public ::testing::TestWithParam<RealFile> {};

TEST_P(RealSpectrumFile, Opens) {
    const RealFile& f = GetParam();
    auto path = SpectraDir() / f.name;
    if (!std::filesystem::exists(path))
        GTEST_SKIP() << "no shared spectra at " << SpectraDir();
    auto doc = std::make_unique<SpectrumDocument>();
    OpenResult result = OpenSpectrum(*doc, path);
    ASSERT_TRUE(result.opened) << result.error;
    EXPECT_TRUE(result.error.empty()) << result.error;
    EXPECT_EQ(result.full, f.full) << result.fullError;
    EXPECT_EQ(doc->lChannels, f.channels);
    EXPECT_EQ(
        std::accumulate(doc->lCounts.begin(), doc->lCounts.begin() + doc->lChannels, int64_t{0}),
        f.sum);
    EXPECT_EQ(doc->lCounts[f.index], f.count);
    EXPECT_EQ(static_cast<int>(doc->plot.rois.size()), f.rois);
    EXPECT_EQ(doc->szFileName, f.name);
    // None carries "$SPEC_CAL:"; "$MCA_CAL:" with its "keV" is skipped.
    EXPECT_FALSE(doc->calibration.bCalibrated);
    if (f.full) {
        EXPECT_EQ(doc->sngLiveTime, f.live);
        EXPECT_EQ(doc->sngRealTime, f.real);
        EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), f.iso);
    }
}

INSTANTIATE_TEST_SUITE_P(SharedSpectra, RealSpectrumFile, ::testing::ValuesIn(kFiles),
                         [](const auto& info) {
                             std::string n = info.param.name;
                             n = n.substr(0, n.find('.'));
                             for (char& c : n)
                                 if (!std::isalnum(static_cast<unsigned char>(c)))
                                     c = '_';
                             return n;
                         });

TEST(RealSpectrumFile, SectionedFileRoisAndIdentity) {
    auto path = SpectraDir() / "becquerel_1110C_NAA_cave_background_May2017.spe";
    if (!std::filesystem::exists(path))
        GTEST_SKIP() << "no shared spectra";
    auto doc = std::make_unique<SpectrumDocument>();
    ASSERT_TRUE(OpenSpectrum(*doc, path).full);
    EXPECT_EQ(doc->szSpectrumID, "No sample description was entered.");
    ASSERT_EQ(doc->plot.rois.size(), 4u); // the count line "4" has one part and is skipped
    EXPECT_EQ(doc->plot.rois[3].lFirst, 14225);
    EXPECT_EQ(doc->plot.rois[3].lLast, 14398);
    EXPECT_EQ(doc->plot.rois[3].lColor, 255);
    EXPECT_EQ(doc->lPresetMode, 3);
    EXPECT_EQ(doc->lCounts[100], 474);
}

TEST(RealSpectrumFile, EveryFileInTheFolderOpens) {
    if (!std::filesystem::exists(SpectraDir()))
        GTEST_SKIP() << "no shared spectra";
    int opened = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SpectraDir())) {
        if (entry.path().extension() != ".spe")
            continue;
        auto doc = std::make_unique<SpectrumDocument>();
        OpenResult result = OpenSpectrum(*doc, entry.path());
        EXPECT_TRUE(result.opened) << entry.path();
        EXPECT_GT(doc->lChannels, 0) << entry.path();
        ++opened;
    }
    EXPECT_GE(opened, 9);
}

} // namespace
} // namespace vexo
