// Batch file names, the batch window's checks and the batch panels' texts.
#include <gtest/gtest.h>

#include <filesystem>

#include "TestSupport.h"
#include "base/DateTime.h"
#include "device/BatchController.h"
#include "device/BatchSettings.h"

using namespace vexo;

namespace {

const std::string kSep(1, static_cast<char>(std::filesystem::path::preferred_separator));

} // namespace

TEST(BatchFileName, PartsInOrderAsTheyAreChosen) {
    const double at = SerialFromParts({2024, 1, 31, 14, 25, 1});
    const struct {
        std::string folder;
        bool sample, time, tag;
        int32_t counter;
        std::string expected;
    } cases[] = {{"data", false, false, false, 3, "data" + kSep + "Vexo_0003.SPE"},
                 {"data", true, false, false, 3, "data" + kSep + "S17_0003.SPE"},
                 {"data", false, true, false, 3, "data" + kSep + "Vexo_20240131_142501_0003.SPE"},
                 {"data", false, false, true, 3, "data" + kSep + "Vexo_lab_0003.SPE"},
                 {"data", true, true, true, 3, "data" + kSep + "S17_20240131_142501_lab_0003.SPE"},
                 // The separator is added once, and not at all for an empty folder; the counter
                 // has at least four digits.
                 {"out" + kSep, false, false, false, 1, "out" + kSep + "Vexo_0001.SPE"},
                 {"", false, false, false, 9999, "Vexo_9999.SPE"},
                 {"", false, false, false, 12345, "Vexo_12345.SPE"}};
    for (const auto& c : cases) {
        BatchSettings s;
        s.szBatchDir = c.folder;
        s.bNameSampleID = c.sample;
        s.bNameTimeDate = c.time;
        s.bNameTag = c.tag;
        s.szBatchTag = "lab";
        EXPECT_EQ(BatchFileName(s, "S17", c.counter, at), c.expected);
    }
    // A sample ID that is empty still gets its separator when chosen.
    BatchSettings s;
    s.bNameSampleID = true;
    EXPECT_EQ(BatchFileName(s, "", 7, 0.0), "_0007.SPE");
}

class BatchValidation : public ::testing::Test {
protected:
    test::TempDir dir;
    BatchWindowFields Fields() { return {dir.path().string(), "5", "10", true, false}; }
};

TEST_F(BatchValidation, AcceptsAGoodWindow) {
    EXPECT_FALSE(ValidateBatchStart(Fields()).has_value());
    const BatchSettings s = BatchSettingsFromFields(Fields(), {});
    EXPECT_EQ(s.szBatchDir, dir.path().string());
    EXPECT_EQ(s.nBatchCount, 5);
    EXPECT_EQ(s.lBatchWait, 10);
    EXPECT_TRUE(s.bBatchWait);
    // Fields that do not apply are not checked; no wait at all is allowed.
    const BatchWindowFields untilStop{dir.path().string(), "", "", false, true};
    EXPECT_FALSE(ValidateBatchStart(untilStop).has_value());
    EXPECT_FALSE(ValidateBatchField(BatchField::Count, untilStop).has_value());
    EXPECT_FALSE(ValidateBatchField(BatchField::Wait, untilStop).has_value());
    EXPECT_FALSE(
        ValidateBatchField(BatchField::Wait, {dir.path().string(), "5", "0", true, false}));
}

TEST_F(BatchValidation, StartReportsTheFirstProblemWithItsExactText) {
    const std::string folderText =
        "Please enter an existing subdirectory to store the spectra of the Batch";
    const std::string countText =
        "Please enter a value for the number of measurements in the Batch";
    const std::string waitText =
        "Please enter a value for the waiting interval time between measurements in the Batch";
    const std::string good = dir.path().string();
    const struct {
        std::string folder, count, wait;
        BatchField field;
        std::string message;
    } cases[] = {{"", "5", "1", BatchField::Folder, folderText},
                 {"   ", "5", "1", BatchField::Folder, folderText},
                 {good + "/missing", "5", "1", BatchField::Folder, "Sub-directory not found"},
                 {good, "", "1", BatchField::Count, countText},
                 {good, "0", "1", BatchField::Count, countText},
                 {good, "32768", "1", BatchField::Count, countText},
                 {good, "-3", "1", BatchField::Count, countText},
                 {good, "2.5", "1", BatchField::Count, countText},
                 {good, "5", "", BatchField::Wait, waitText},
                 {good, "5", "x", BatchField::Wait, waitText},
                 {good, "", "", BatchField::Count, countText}}; // count before wait
    for (const auto& c : cases) {
        const auto e = ValidateBatchStart({c.folder, c.count, c.wait, true, false});
        ASSERT_TRUE(e.has_value()) << c.folder << "|" << c.count << "|" << c.wait;
        EXPECT_EQ(e->field, c.field);
        EXPECT_EQ(e->message, c.message);
    }
    // Leaving the folder field uses one message for an empty and a missing folder.
    for (const std::string& folder : {std::string(), good + "/nope"}) {
        const auto e = ValidateBatchField(BatchField::Folder, {folder, "5", "1", true, false});
        ASSERT_TRUE(e.has_value());
        EXPECT_EQ(e->message, folderText);
    }
}

TEST(BatchPanels, TextsForEachState) {
    EXPECT_EQ(MakeBatchPanelTexts(false, false, 0, 0, false, 5).batch, "BATCH OFF");
    EXPECT_EQ(MakeBatchPanelTexts(false, false, 0, 0, false, 5).counter, "");
    EXPECT_EQ(MakeBatchPanelTexts(true, false, 0, 2, false, 5).batch, "BATCH ON");
    EXPECT_EQ(MakeBatchPanelTexts(true, true, 2.5f, 2, false, 5).batch, "BATCH ON (Waiting : 2.5)");
    EXPECT_EQ(MakeBatchPanelTexts(true, true, 10.0f, 2, false, 5).batch,
              "BATCH ON (Waiting : 10.0)");
    EXPECT_EQ(MakeBatchPanelTexts(true, false, 0, 2, false, 5).counter, "Acq. done: 2 of 5");
    EXPECT_EQ(MakeBatchPanelTexts(true, false, 0, 2, true, 5).counter, "Acq. done: 2");
}
