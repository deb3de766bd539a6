// The main window's ordered ROI collection: 1-based access and lookup by channel and id.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "base/VexoError.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumFile.h"

using namespace vexo;

namespace {

clsROI Roi(const std::string& id, int32_t L, int32_t R) {
    clsROI roi;
    roi.set_vntID(id);
    roi.set_lROILCh(L);
    roi.set_lROIRCh(R);
    return roi;
}

RoiCollection ThreeRois() {
    RoiCollection c;
    c.add(Roi("A", 10, 20));
    c.add(Roi("B", 15, 30));
    c.add(Roi("A", 25, 40));
    return c;
}

} // namespace

TEST(RoiCollection, PositionsCountFromOne) {
    RoiCollection c = ThreeRois();
    EXPECT_EQ(c.nGetROINo(), 3);
    EXPECT_EQ(c.item(1).vntID(), "A");
    EXPECT_EQ(c.item(2).vntID(), "B");
    EXPECT_EQ(c.item(3).lROILCh(), 25);
    for (int bad : {0, 4, -1}) {
        EXPECT_THROW(c.item(bad), SubscriptError) << bad;
        EXPECT_THROW(c.remove(bad), SubscriptError) << bad;
        EXPECT_THROW(static_cast<const RoiCollection&>(c).item(bad), SubscriptError) << bad;
    }
    EXPECT_EQ(c.nGetROINo(), 3);
}

TEST(RoiCollection, RemoveKeepsOrderOfTheRest) {
    RoiCollection c = ThreeRois();
    c.remove(2);
    ASSERT_EQ(c.nGetROINo(), 2);
    EXPECT_EQ(c.item(1).lROILCh(), 10);
    EXPECT_EQ(c.item(2).lROILCh(), 25);
    c.remove(2);
    c.remove(1);
    EXPECT_TRUE(c.empty());
}

struct FindCase {
    int32_t channel;
    const char* id;
    int16_t expected;
};

class FindRoiInCol : public ::testing::TestWithParam<FindCase> {};

TEST_P(FindRoiInCol, FirstMatchByChannelAndId) {
    const RoiCollection c = ThreeRois();
    EXPECT_EQ(c.nFindROIinCol(GetParam().channel, GetParam().id), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Lookups, FindRoiInCol,
    ::testing::Values(FindCase{10, "A", 1}, FindCase{20, "A", 1},  // both ends inclusive
                      FindCase{9, "A", -1}, FindCase{21, "A", -1}, // outside the first
                      FindCase{25, "A", 3},                        // second "A"
                      FindCase{18, "B", 2}, FindCase{12, "B", -1}, // id must match too
                      FindCase{18, "a", -1},                       // case matters
                      FindCase{40, "A", 3}, FindCase{41, "A", -1}));

TEST(RoiCollection, EmptyCollectionFindsNothing) {
    RoiCollection c;
    EXPECT_EQ(c.nFindROIinCol(0, ""), -1);
}

TEST(RoiCollection, OpenMakesOneRecordPerPlotRoiAndForgetsTheOldOnes) {
    test::TempDir dir;
    const std::filesystem::path file = dir.path() / "two.spe";
    {
        auto doc = std::make_unique<SpectrumDocument>();
        doc->plot.rois = {{100, 140, 65280, true, "Cs-137"}, {400, 460, 255, false, ""}};
        ASSERT_TRUE(bSaveFullSpectrum(*doc, file));
    }
    auto doc = std::make_unique<SpectrumDocument>();
    RoiCollection rois = ThreeRois();
    ASSERT_TRUE(OpenSpectrumWithRois(*doc, rois, file).full);
    ASSERT_EQ(rois.nGetROINo(), 2);
    EXPECT_EQ(rois.item(1).vntID(), "Cs-137");
    EXPECT_EQ(rois.item(1).lROILCh(), 100);
    EXPECT_EQ(rois.item(1).lROIColor(), 65280);
    EXPECT_EQ(rois.item(2).lROIRCh(), 460);
    for (int i = 1; i <= 2; ++i)
        EXPECT_EQ(rois.item(i).nROIinPlot(), i - 1);

    // A file without ROIs leaves an empty collection, not the previous file's.
    ASSERT_TRUE(
        OpenSpectrumWithRois(*doc, rois, VEXO_TEST_DATA_DIR "/spectrum/plain_counts.dat").opened);
    EXPECT_TRUE(rois.empty());
}
