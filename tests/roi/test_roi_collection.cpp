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

TEST(RoiCollection, PositionsCountFromOneAndRemoveKeepsTheOrder) {
    RoiCollection c = ThreeRois();
    EXPECT_EQ(c.nGetROINo(), 3);
    EXPECT_EQ(c.item(1).vntID() + c.item(2).vntID(), "AB");
    EXPECT_EQ(c.item(3).lROILCh(), 25);
    for (int bad : {0, 4, -1}) {
        EXPECT_THROW(c.item(bad), SubscriptError) << bad;
        EXPECT_THROW(c.remove(bad), SubscriptError) << bad;
        EXPECT_THROW(static_cast<const RoiCollection&>(c).item(bad), SubscriptError) << bad;
    }
    c.remove(2);
    ASSERT_EQ(c.nGetROINo(), 2);
    EXPECT_EQ(c.item(1).lROILCh() * 100 + c.item(2).lROILCh(), 1025);
    c.remove(2);
    c.remove(1);
    EXPECT_TRUE(c.empty());
    EXPECT_EQ(c.nFindROIinCol(0, ""), -1);
}

TEST(RoiCollection, FindsTheFirstMatchByChannelAndId) {
    // Both ends inclusive; the id must match too, letter case included.
    const struct {
        int32_t channel;
        const char* id;
        int16_t expected;
    } cases[] = {{10, "A", 1}, {20, "A", 1},  {9, "A", -1},  {21, "A", -1}, {25, "A", 3},
                 {18, "B", 2}, {12, "B", -1}, {18, "a", -1}, {40, "A", 3},  {41, "A", -1}};
    const RoiCollection c = ThreeRois();
    for (const auto& f : cases)
        EXPECT_EQ(c.nFindROIinCol(f.channel, f.id), f.expected) << f.channel << f.id;
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
