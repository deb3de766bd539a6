// Batch file names and the batch window's checks.
#include <gtest/gtest.h>

#include <filesystem>

#include "TestSupport.h"
#include "base/DateTime.h"
#include "device/BatchController.h"
#include "device/BatchSettings.h"

using namespace vexo;

namespace {

const std::string kSep(1, static_cast<char>(std::filesystem::path::preferred_separator));

double At20240131_142501() {
    return SerialFromParts({2024, 1, 31, 14, 25, 1});
}

} // namespace

TEST(BatchFileName, PartsInOrderAsTheyAreChosen) {
    struct Case {
        bool sample, time, tag;
        std::string expected;
    };
    const Case cases[] = {
        {false, false, false, "Vexo_0003.SPE"},
        {true, false, false, "S17_0003.SPE"},
        {false, true, false, "Vexo_20240131_142501_0003.SPE"},
        {false, false, true, "Vexo_lab_0003.SPE"},
        {true, true, true, "S17_20240131_142501_lab_0003.SPE"},
    };
    for (const auto& c : cases) {
        BatchSettings s;
        s.szBatchDir = "data";
        s.bNameSampleID = c.sample;
        s.bNameTimeDate = c.time;
        s.bNameTag = c.tag;
        s.szBatchTag = "lab";
        EXPECT_EQ(BatchFileName(s, "S17", 3, At20240131_142501()), "data" + kSep + c.expected);
    }
}

TEST(BatchFileName, SeparatorAddedOnceAndNotForAnEmptyFolder) {
    BatchSettings s;
    s.szBatchDir = "out" + kSep;
    EXPECT_EQ(BatchFileName(s, "", 1, 0.0), "out" + kSep + "Vexo_0001.SPE");
    s.szBatchDir = "";
    EXPECT_EQ(BatchFileName(s, "", 1, 0.0), "Vexo_0001.SPE");
}

TEST(BatchFileName, CounterHasAtLeastFourDigits) {
    BatchSettings s;
    EXPECT_EQ(BatchFileName(s, "", 9999, 0.0), "Vexo_9999.SPE");
    EXPECT_EQ(BatchFileName(s, "", 12345, 0.0), "Vexo_12345.SPE");
    // A sample ID that is empty still gets its separator when chosen.
    s.bNameSampleID = true;
    EXPECT_EQ(BatchFileName(s, "", 7, 0.0), "_0007.SPE");
}

class BatchValidation : public ::testing::Test {
protected:
    test::TempDir dir;
    BatchWindowFields Fields() {
        BatchWindowFields f;
        f.folder = dir.path().string();
        f.count = "5";
        f.wait = "10";
        f.waitChecked = true;
        return f;
    }
};

TEST_F(BatchValidation, AcceptsAGoodWindow) {
    EXPECT_FALSE(ValidateBatchStart(Fields()).has_value());
    const BatchSettings s = BatchSettingsFromFields(Fields(), {});
    EXPECT_EQ(s.szBatchDir, dir.path().string());
    EXPECT_EQ(s.nBatchCount, 5);
    EXPECT_EQ(s.lBatchWait, 10);
    EXPECT_TRUE(s.bBatchWait);
}

TEST_F(BatchValidation, StartReportsTheFirstProblemWithItsExactText) {
    const std::string folderText =
        "Please enter an existing subdirectory to store the spectra of the Batch";
    const std::string countText =
        "Please enter a value for the number of measurements in the Batch";
    const std::string waitText =
        "Please enter a value for the waiting interval time between measurements in the Batch";
    struct Case {
        std::string folder, count, wait;
        bool waitChecked, untilStop;
        BatchField field;
        std::string message;
    };
    const std::string good = dir.path().string();
    const Case cases[] = {
        {"", "5", "1", true, false, BatchField::Folder, folderText},
        {"   ", "5", "1", true, false, BatchField::Folder, folderText},
        {good + "/missing", "5", "1", true, false, BatchField::Folder, "Sub-directory not found"},
        {good, "", "1", true, false, BatchField::Count, countText},
        {good, "0", "1", true, false, BatchField::Count, countText},
        {good, "32768", "1", true, false, BatchField::Count, countText},
        {good, "-3", "1", true, false, BatchField::Count, countText},
        {good, "2.5", "1", true, false, BatchField::Count, countText},
        {good, "5", "", true, false, BatchField::Wait, waitText},
        {good, "5", "x", true, false, BatchField::Wait, waitText},
        {good, "", "", true, false, BatchField::Count, countText}, // count before wait
    };
    for (const auto& c : cases) {
        BatchWindowFields f{c.folder, c.count, c.wait, c.waitChecked, c.untilStop};
        const auto e = ValidateBatchStart(f);
        ASSERT_TRUE(e.has_value()) << c.folder << "|" << c.count << "|" << c.wait;
        EXPECT_EQ(e->field, c.field);
        EXPECT_EQ(e->message, c.message);
    }
    EXPECT_STREQ(kBatchSettingsTitle, "Batch Settings");
}

TEST_F(BatchValidation, FieldsThatDoNotApplyAreNotChecked) {
    BatchWindowFields f = Fields();
    f.untilStop = true;
    f.count = "";
    f.waitChecked = false;
    f.wait = "";
    EXPECT_FALSE(ValidateBatchStart(f).has_value());
    EXPECT_FALSE(ValidateBatchField(BatchField::Count, f).has_value());
    EXPECT_FALSE(ValidateBatchField(BatchField::Wait, f).has_value());
    f.waitChecked = true;
    f.wait = "0"; // no wait at all is allowed
    EXPECT_FALSE(ValidateBatchField(BatchField::Wait, f).has_value());
}

TEST_F(BatchValidation, LeavingTheFolderFieldUsesOneMessageForEmptyAndMissing) {
    BatchWindowFields f = Fields();
    f.folder = (dir.path() / "nope").string();
    auto e = ValidateBatchField(BatchField::Folder, f);
    ASSERT_TRUE(e.has_value());
    EXPECT_EQ(e->message,
              "Please enter an existing subdirectory to store the spectra of the Batch");
    f.folder = "";
    e = ValidateBatchField(BatchField::Folder, f);
    ASSERT_TRUE(e.has_value());
    EXPECT_EQ(e->message,
              "Please enter an existing subdirectory to store the spectra of the Batch");
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
