#include <gtest/gtest.h>

#include "SpectrumTestDocs.h"
#include "TestSupport.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumCommands.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

using test::TempDir;

std::unique_ptr<SpectrumDocument> Parse(const std::string& text, bool expectOk = true) {
    auto doc = std::make_unique<SpectrumDocument>();
    std::string error;
    EXPECT_EQ(ParseFullSpectrum(*doc, text, &error), expectOk) << error;
    return doc;
}

TEST(SpectrumReader, RoundTripOfA1024ChannelSpectrum) {
    auto written = test::MakeFullDocument();
    TempDir dir;
    ASSERT_TRUE(bSaveFullSpectrum(*written, dir / "rt.spe"));
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lMCSMode = 1;
    ASSERT_TRUE(bReadFullSpectrum(*doc, dir / "rt.spe"));

    EXPECT_EQ(doc->lChannels, 1024);
    for (int i = 0; i < 1024; ++i)
        ASSERT_EQ(doc->lCounts[i], written->lCounts[i]) << "channel " << i;
    EXPECT_EQ(doc->sngLiveTime, written->sngLiveTime);
    EXPECT_EQ(doc->sngRealTime, written->sngRealTime);
    EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), "2024-03-07T14:05:09");
    EXPECT_EQ(doc->szSpectrumID, written->szSpectrumID);
    EXPECT_EQ(doc->szDeviceName, "VX2000");
    EXPECT_EQ(doc->szDeviceSerial, "SN-0042");
    EXPECT_EQ(doc->lMCSMode, 0); // the mode word reads back as PHA
    EXPECT_EQ(doc->sngHighVoltage, 712.5f);
    EXPECT_EQ((std::array{doc->lCoarseGain, doc->lFineGain, doc->lDigitalGain, doc->lThreshold,
                          doc->lLLD, doc->lULD, doc->lRiseTime, doc->lFlatTop, doc->lPoleZero,
                          doc->lBLR, doc->lPUR}),
              (std::array{4, 3071, 2, 21, 10, 1020, 40, 12, 2250, 1, 0}));
    EXPECT_EQ(doc->lPresetMode, 1);
    EXPECT_EQ(doc->sngPresetTime, 600.0f);
    EXPECT_EQ(doc->lPresetCounts, 250000);
    EXPECT_EQ(doc->lPresetFirstCh, 100);
    EXPECT_EQ(doc->lPresetLastCh, 900);
    EXPECT_TRUE(doc->calibration.bCalibrated);
    // Seven significant digits in the file: equal at 32-bit precision, and the 64-bit
    // record holds exactly the float that was read.
    EXPECT_FLOAT_EQ(static_cast<float>(doc->calibration.dOffset), written->plot.sngOffset);
    EXPECT_FLOAT_EQ(static_cast<float>(doc->calibration.dSlope), written->plot.sngSlope);
    EXPECT_FLOAT_EQ(static_cast<float>(doc->calibration.dQuad), written->plot.sngQuad);
    EXPECT_EQ(doc->calibration.dSlope, static_cast<double>(0.7123457f));
    EXPECT_EQ(doc->plot.sngSlope, 0.7123457f);
    EXPECT_TRUE(doc->plot.bUseCalibration);
    ASSERT_EQ(doc->plot.rois.size(), 2u);
    EXPECT_EQ(doc->plot.rois[1].lFirst, 400);
    EXPECT_EQ(doc->plot.rois[1].lLast, 460);
    EXPECT_EQ(doc->plot.rois[1].lColor, 16711680);
    EXPECT_FALSE(doc->plot.rois[1].bFlag);
    EXPECT_TRUE(doc->plot.rois[0].bFlag);
    EXPECT_EQ(doc->plot.rois[1].szName, "Co 60 line");
    ASSERT_EQ(static_cast<int>(doc->plot.rois.size()), 2);
    EXPECT_EQ(doc->plot.rois[0].szName, "Cs-137");
    EXPECT_EQ(doc->plot.rois[0].lFirst, 100);
    EXPECT_EQ(doc->plot.rois[0].lColor, 65280);
    EXPECT_EQ(doc->plot.rois[1].lLast, 460);
}

TEST(SpectrumReader, McsSpectrumComesBackAsPha) {
    auto written = test::MakeFullDocument();
    written->lMCSMode = 1;
    auto doc = Parse(FullSpectrumBytes(*written));
    EXPECT_EQ(doc->lMCSMode, 0);
    EXPECT_EQ(doc->sngHighVoltage, 712.5f); // the word did not shift the fields after it
}

TEST(SpectrumReader, ThousandAndOneChannelsComeBack) {
    auto written = test::MakeFullDocument();
    written->lChannels = 1001;
    auto doc = Parse(FullSpectrumBytes(*written));
    EXPECT_EQ(doc->lChannels, 1001);
    EXPECT_EQ(doc->lCounts[1000], written->lCounts[1000]);
    EXPECT_EQ(doc->lCounts[1001], 0); // the seven values past the end are not read
}

TEST(SpectrumReader, DataRangeIsClampedToTheArray) {
    std::string text = "$SPEC_ID:\r\nclamp\r\n$DATA:\r\n-5 20000\r\n";
    for (int i = 0; i < 16384; ++i)
        text += std::to_string(i % 977) + (i % 8 == 7 ? "\r\n" : " ");
    auto doc = Parse(text);
    EXPECT_EQ(doc->lChannels, 16384);
    EXPECT_EQ(doc->lCounts[0], 0);
    EXPECT_EQ(doc->lCounts[16383], 16383 % 977);
    EXPECT_EQ(doc->lCounts[16384], 0);
}

TEST(SpectrumReader, DataRangeAboveTheArrayGivesOneChannel) {
    auto doc = Parse("$SPEC_ID:\r\nx\r\n$DATA:\r\n20000 30000\r\n42\r\n");
    EXPECT_EQ(doc->lChannels, 1);
    EXPECT_EQ(doc->lCounts[16383], 42);
}

TEST(SpectrumReader, EmptyDataRangeReadsNoCounts) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lCounts[5] = 77;
    ASSERT_TRUE(ParseFullSpectrum(*doc, "$SPEC_ID:\r\nx\r\n$DATA:\r\n10 5\r\n1 2 3\r\n"));
    EXPECT_EQ(doc->lChannels, -4);
    EXPECT_EQ(doc->lCounts[5], 77);
}

struct DateCase {
    const char* line;
    const char* iso; // nullptr: dtMeasured unchanged
};

class SpectrumReaderDate : public ::testing::TestWithParam<DateCase> {};

TEST_P(SpectrumReaderDate, TakesFieldsByPosition) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->dtMeasured = SerialFromParts({2000, 1, 1, 0, 0, 0});
    std::string text = std::string("$SPEC_ID:\r\nd\r\n$DATE_MEA:\r\n") + GetParam().line + "\r\n";
    ASSERT_TRUE(ParseFullSpectrum(*doc, text));
    EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"),
              GetParam().iso ? GetParam().iso : "2000-01-01T00:00:00");
}

INSTANTIATE_TEST_SUITE_P(
    Lines, SpectrumReaderDate,
    ::testing::Values(DateCase{"03-07-2024  14:05:09", "2024-03-07T14:05:09"},
                      DateCase{"04/26/2017 11:05:11", "2017-04-26T11:05:11"},
                      DateCase{"   12-31-1999    23:59:59  ", "1999-12-31T23:59:59"},
                      // No leading zeros: month "3-" = 3, day "-2" = -2, year "24" (two digits, so
                      // 2024); day -2 of March is three days before March 1st.
                      DateCase{"3-7-2024 14:05:09", "2024-02-27T14:05:09"},
                      DateCase{"01-02-95 10:00:00", "1995-01-02T10:00:00"}, // two-digit years
                      DateCase{"12-31-29 10:00:00", "2029-12-31T10:00:00"},
                      DateCase{"ab-cd-efgh xx:yy:zz",
                               "1999-11-30T00:00:00"}, // all 0: day 0 of month 0 of 2000
                      DateCase{"03-07-2024", nullptr}, // one part: unchanged
                      DateCase{"", nullptr}));

TEST(SpectrumReader, DateBeyondTheCalendarFailsTheRead) {
    auto doc = Parse(
        "$SPEC_ID:\r\nx\r\n$DATE_MEA:\r\n01-01--999 00:00:00\r\n$DATA:\r\n0 0\r\n5\r\n", false);
    EXPECT_EQ(doc->lChannels, 1024); // reading stopped at the date
}

TEST(SpectrumReader, RoiLineWithTwoNumbersTakesTheDefaults) {
    auto doc = Parse("$SPEC_ID:\r\nx\r\n$ROI:\r\n12.5 20\r\n");
    ASSERT_EQ(doc->plot.rois.size(), 1u);
    EXPECT_EQ(doc->plot.rois[0].lFirst, 12); // ties to even
    EXPECT_EQ(doc->plot.rois[0].lLast, 20);
    EXPECT_EQ(doc->plot.rois[0].lColor, 255);
    EXPECT_FALSE(doc->plot.rois[0].bFlag);
    EXPECT_EQ(doc->plot.rois[0].szName, "");
    ASSERT_EQ(static_cast<int>(doc->plot.rois.size()), 1);
    EXPECT_EQ(doc->plot.rois[0].lColor, 255);
    EXPECT_EQ(doc->plot.rois[0].szName, "");
}

TEST(SpectrumReader, RoiSectionEndsAtTheNextTagWhichIsStillRead) {
    auto doc =
        Parse("$SPEC_ID:\r\nx\r\n$ROI:\r\n2\r\n\r\n 5   9   16711680   -1   Ba  133   peak \r\n"
              "$DATA:\r\n0 1\r\n3 4\r\n");
    ASSERT_EQ(doc->plot.rois.size(), 1u); // "2" and the empty line have fewer than two parts
    EXPECT_TRUE(doc->plot.rois[0].bFlag);
    EXPECT_EQ(doc->plot.rois[0].szName, "Ba 133 peak");
    EXPECT_EQ(doc->plot.rois[0].szName, "Ba 133 peak");
    EXPECT_EQ(doc->lChannels, 2);
    EXPECT_EQ(doc->lCounts[1], 4);
}

TEST(SpectrumReader, SecondRoiSectionReplacesTheFirst) {
    auto doc = Parse("$SPEC_ID:\r\nx\r\n$ROI:\r\n1 2\r\n3 4\r\n$ROI:\r\n5 6\r\n");
    ASSERT_EQ(doc->plot.rois.size(), 1u);
    EXPECT_EQ(doc->plot.rois[0].lFirst, 5);
    EXPECT_EQ(static_cast<int>(doc->plot.rois.size()), 1);
}

TEST(SpectrumReader, SectionsLeaveOtherFieldsAlone) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->szDeviceName = "Old";
    doc->szDeviceSerial = "1";
    doc->sngLiveTime = 9.0f;
    doc->lPresetMode = 1;
    doc->lPresetCounts = 55;
    ASSERT_TRUE(ParseFullSpectrum(*doc,
                                  "$SPEC_ID: trailing text is fine here\r\n  ID with blanks  \r\n"
                                  "$DEVICE_ID:\r\nOnlyOnePart\r\n"));
    EXPECT_EQ(doc->szSpectrumID, "  ID with blanks  ");
    EXPECT_EQ(doc->szDeviceName, "Old");
    EXPECT_EQ(doc->szDeviceSerial, "1");
    EXPECT_EQ(doc->sngLiveTime, 9.0f);
    EXPECT_EQ(doc->lPresetMode, 3); // the preset snapshot is reset whatever the file holds
    EXPECT_EQ(doc->lPresetCounts, 0);
    EXPECT_FALSE(doc->calibration.bCalibrated);
}

TEST(SpectrumReader, DeviceIdKeepsTheFirstTwoParts) {
    auto doc = Parse("$SPEC_ID:\r\nx\r\n$DEVICE_ID:\r\n  Model  X  SN99 \r\n");
    EXPECT_EQ(doc->szDeviceName, "Model");
    EXPECT_EQ(doc->szDeviceSerial, "X");
}

TEST(SpectrumReader, TagsMustMatchTheWholeLine) {
    auto doc = Parse(
        "$SPEC_ID:\r\nx\r\n$MEAS_TIM: \r\n1 2\r\n$meas_tim:\r\n3 4\r\n$MCA_CAL:\r\n3\r\n1 2 3\r\n");
    EXPECT_EQ(doc->sngLiveTime, 0.0f);
    EXPECT_FALSE(doc->calibration.bCalibrated); // "$MCA_CAL:" is not read
}

TEST(SpectrumReader, NumbersAreFieldsAcrossLinesAndCommas) {
    auto doc = Parse("$SPEC_ID:\r\nx\r\n$MEAS_TIM:\r\n\r\n  1.5e2,\r\n 2.5E+2\r\n"
                     "$SPEC_CAL:\r\n-1,2.5,0.001\r\n$DATA:\r\n0 4\r\n1,2\r\n3\r\n4 5 6 7\r\n");
    EXPECT_EQ(doc->sngLiveTime, 150.0f);
    EXPECT_EQ(doc->sngRealTime, 250.0f);
    EXPECT_EQ(doc->calibration.dOffset, -1.0);
    EXPECT_EQ(doc->calibration.dSlope, 2.5);
    EXPECT_EQ(doc->calibration.dQuad, static_cast<double>(0.001f));
    EXPECT_EQ(doc->plot.sngQuad, 0.001f);
    EXPECT_EQ((std::array{doc->lCounts[0], doc->lCounts[1], doc->lCounts[2], doc->lCounts[3],
                          doc->lCounts[4], doc->lCounts[5]}),
              (std::array{1, 2, 3, 4, 5, 0}));
}

TEST(SpectrumReader, BrokenFilesFailButKeepWhatWasRead) {
    // Counts run out: the range and the counts before the end stay.
    auto doc =
        Parse("$SPEC_ID:\r\nshort\r\n$MEAS_TIM:\r\n7 8\r\n$DATA:\r\n0 9\r\n1 2 3\r\n", false);
    EXPECT_EQ(doc->szSpectrumID, "short");
    EXPECT_EQ(doc->sngLiveTime, 7.0f);
    EXPECT_EQ(doc->lChannels, 10);
    EXPECT_EQ(doc->lCounts[2], 3);
    // A count beyond 32 bits, a time beyond a float: overflow.
    Parse("$SPEC_ID:\r\nx\r\n$DATA:\r\n0 0\r\n2147483648\r\n", false);
    Parse("$SPEC_ID:\r\nx\r\n$MEAS_TIM:\r\n1e39 1\r\n", false);
    Parse("$SPEC_ID:\r\nx\r\n$MEAS_TIM:\r\n1e999999999999 1\r\n", false);
    // No ID line after the tag.
    Parse("$SPEC_ID:", false);
}

TEST(SpectrumReader, NotAFullFile) {
    for (const char* text : {"", "1 2 3\r\n", "$SPEC_ID\r\nx\r\n", "$spec_id:\r\nx\r\n"}) {
        auto doc = std::make_unique<SpectrumDocument>();
        std::string error;
        EXPECT_FALSE(ParseFullSpectrum(*doc, text, &error)) << text;
        EXPECT_FALSE(error.empty());
    }
}

TEST(SpectrumReader, LineFeedOnlyAndLoneCarriageReturns) {
    auto lf = Parse("$SPEC_ID:\nLF\n$MEAS_TIM:\n3 4\n$DATA:\n0 2\n7\n8\n9\n");
    EXPECT_EQ(lf->szSpectrumID, "LF");
    EXPECT_EQ(lf->sngRealTime, 4.0f);
    EXPECT_EQ(lf->lChannels, 3);
    EXPECT_EQ(lf->lCounts[2], 9);
    auto cr = Parse("$SPEC_ID:\rCR\r$DATA:\r0 1\r5 6");
    EXPECT_EQ(cr->szSpectrumID, "CR");
    EXPECT_EQ(cr->lCounts[1], 6);
}

TEST(SpectrumReader, TextIsReadAsWindows1252) {
    auto doc = Parse("$SPEC_ID:\r\nProbe \xE4 \x80\r\n$DEVICE_ID:\r\nM\xFC ller\r\n");
    EXPECT_EQ(doc->szSpectrumID, "Probe \xC3\xA4 \xE2\x82\xAC");
    EXPECT_EQ(doc->szDeviceName, "M\xC3\xBC");
}

TEST(SpectrumReader, MissingFileFails) {
    TempDir dir;
    auto doc = std::make_unique<SpectrumDocument>();
    std::string error;
    EXPECT_FALSE(bReadFullSpectrum(*doc, dir / "none.spe", &error));
    EXPECT_EQ(error, "No such file or directory");
}

TEST(SpectrumReader, TooManyRoisIsAnOverflowNotUnboundedMemory) {
    std::string text = "$SPEC_ID:\r\nx\r\n$ROI:\r\n";
    for (int i = 0; i < 32769; ++i)
        text += "1 2\n";
    auto doc = Parse(text, false);
    // The 32769th ROI would get plot number 32768, which does not fit 16 bits.
    EXPECT_EQ(doc->plot.rois.size(), 32769u);
    RoiCollection rois;
    rois.rebuildFromPlot(doc->plot.rois);
    EXPECT_EQ(std::distance(rois.begin(), rois.end()), 32768); // plot numbers 0..32767
}

} // namespace
} // namespace vexo
