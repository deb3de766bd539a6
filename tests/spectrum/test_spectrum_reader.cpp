// The full spectrum file reader: a round trip through the writer and the reading rules
// on hand-made file texts.
#include <gtest/gtest.h>

#include "SpectrumTestDocs.h"
#include "TestSupport.h"
#include "roi/RoiCollection.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

using test::TempDir;

std::unique_ptr<SpectrumDocument> Parse(const std::string& text, bool expectOk = true) {
    auto doc = std::make_unique<SpectrumDocument>();
    std::string error;
    EXPECT_EQ(ParseFullSpectrum(*doc, text, &error), expectOk) << error << "\n" << text;
    return doc;
}

TEST(SpectrumReader, RoundTripOfA1024ChannelSpectrum) {
    auto written = test::MakeFullDocument();
    written->lMCSMode = 1;
    TempDir dir;
    ASSERT_TRUE(bSaveFullSpectrum(*written, dir / "rt.spe"));
    auto doc = std::make_unique<SpectrumDocument>();
    ASSERT_TRUE(bReadFullSpectrum(*doc, dir / "rt.spe"));

    EXPECT_EQ(doc->lChannels, 1024);
    EXPECT_EQ(doc->lCounts, written->lCounts);
    EXPECT_EQ(doc->sngLiveTime, written->sngLiveTime);
    EXPECT_EQ(doc->sngRealTime, written->sngRealTime);
    EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), "2024-03-07T14:05:09");
    EXPECT_EQ(doc->szSpectrumID, written->szSpectrumID);
    EXPECT_EQ(doc->szDeviceName + "|" + doc->szDeviceSerial, "VX2000|SN-0042");
    EXPECT_EQ(doc->lMCSMode, 0);            // the word "MCS" reads back as 0 ...
    EXPECT_EQ(doc->sngHighVoltage, 712.5f); // ... and does not shift the fields after it
    EXPECT_EQ(
        (std::array{doc->lCoarseGain, doc->lFineGain, doc->lDigitalGain, doc->lThreshold, doc->lLLD,
                    doc->lULD, doc->lRiseTime, doc->lFlatTop, doc->lPoleZero, doc->lBLR, doc->lPUR,
                    doc->lPresetMode, doc->lPresetCounts, doc->lPresetFirstCh, doc->lPresetLastCh}),
        (std::array{4, 3071, 2, 21, 10, 1020, 40, 12, 2250, 1, 0, 1, 250000, 100, 900}));
    EXPECT_EQ(doc->sngPresetTime, 600.0f);
    // Seven significant digits in the file: the 64-bit record holds exactly the float read.
    EXPECT_TRUE(doc->calibration.bCalibrated);
    EXPECT_TRUE(doc->plot.bUseCalibration);
    EXPECT_EQ(doc->calibration.dSlope, static_cast<double>(0.7123457f));
    EXPECT_EQ(doc->plot.sngSlope, 0.7123457f);
    EXPECT_FLOAT_EQ(static_cast<float>(doc->calibration.dOffset), written->plot.sngOffset);
    EXPECT_FLOAT_EQ(static_cast<float>(doc->calibration.dQuad), written->plot.sngQuad);
    EXPECT_EQ(test::RoiText(doc->plot.rois),
              "100-120 65280 1 Cs-137;400-460 16711680 0 Co 60 line;");
}

TEST(SpectrumReader, DataRange) {
    // Clamped to the array: -5..20000 reads 16384 channels.
    std::string text = "$SPEC_ID:\r\nclamp\r\n$DATA:\r\n-5 20000\r\n";
    for (int i = 0; i < 16384; ++i)
        text += std::to_string(i % 977) + (i % 8 == 7 ? "\r\n" : " ");
    auto doc = Parse(text);
    EXPECT_EQ(doc->lChannels, 16384);
    EXPECT_EQ(doc->lCounts[16383], 16383 % 977);
    EXPECT_EQ(doc->lCounts[16384], 0);
    // Above the array: one channel, the last slot.
    doc = Parse("$SPEC_ID:\r\nx\r\n$DATA:\r\n20000 30000\r\n42\r\n");
    EXPECT_EQ(doc->lChannels, 1);
    EXPECT_EQ(doc->lCounts[16383], 42);
    // An empty range reads no counts; 1001 channels read no value of the last line's rest.
    doc->lCounts[5] = 77;
    ASSERT_TRUE(ParseFullSpectrum(*doc, "$SPEC_ID:\r\nx\r\n$DATA:\r\n10 5\r\n1 2 3\r\n"));
    EXPECT_EQ(doc->lChannels, -4);
    EXPECT_EQ(doc->lCounts[5], 77);
    auto written = test::MakeFullDocument();
    written->lChannels = 1001;
    doc = Parse(FullSpectrumBytes(*written));
    EXPECT_EQ(doc->lCounts[1000], written->lCounts[1000]);
    EXPECT_EQ(doc->lCounts[1001], 0);
}

TEST(SpectrumReader, DateTakesItsFieldsByPosition) {
    const std::pair<const char*, const char*> cases[] = {
        {"03-07-2024  14:05:09", "2024-03-07T14:05:09"},
        {"04/26/2017 11:05:11", "2017-04-26T11:05:11"},
        {"  12/31/1999   23.59.58  ", "1999-12-31T23:59:58"}, // separators unchecked
        // No leading zeros: month "3-" = 3, day "-2" = -2, year "24" (two digits, so
        // 2024); day -2 of March is three days before March 1st.
        {"3-7-2024 14:05:09", "2024-02-27T14:05:09"},
        {"01-02-95 10:00:00", "1995-01-02T10:00:00"}, // two-digit years
        {"12-31-29 10:00:00", "2029-12-31T10:00:00"},
        {"ab-cd-efgh xx:yy:zz", "1999-11-30T00:00:00"}, // all 0: day 0 of month 0 of 2000
        {"03-07-2024", "2000-01-01T00:00:00"},          // one part: unchanged
        {"", "2000-01-01T00:00:00"}};
    for (const auto& [line, iso] : cases) {
        auto doc = std::make_unique<SpectrumDocument>();
        doc->dtMeasured = SerialFromParts({2000, 1, 1, 0, 0, 0});
        ASSERT_TRUE(ParseFullSpectrum(*doc, std::string("$SPEC_ID:\r\nd\r\n$DATE_MEA:\r\n") + line +
                                                "\r\n"));
        EXPECT_EQ(FormatSerial(doc->dtMeasured, "iso"), iso) << line;
    }
    auto doc = Parse(
        "$SPEC_ID:\r\nx\r\n$DATE_MEA:\r\n01-01--999 00:00:00\r\n$DATA:\r\n0 0\r\n5\r\n", false);
    EXPECT_EQ(doc->lChannels, 1024); // a date beyond the calendar stops the read there
}

TEST(SpectrumReader, RoiLines) {
    // "2" and the empty line have fewer than two parts; two numbers take the defaults;
    // the section ends at the next tag, which is still read.
    auto doc =
        Parse("$SPEC_ID:\r\nx\r\n$ROI:\r\n2\r\n\r\n 5   9   16711680   -1   Ba  133   peak \r\n"
              "12.5 20.5\r\n$DATA:\r\n0 1\r\n3 4\r\n");
    EXPECT_EQ(test::RoiText(doc->plot.rois),
              "5-9 16711680 1 Ba 133 peak;12-20 255 0 ;"); // ties to even
    EXPECT_EQ(doc->lCounts[1], 4);
    doc = Parse("$SPEC_ID:\r\nx\r\n$ROI:\r\n1 2\r\n3 4\r\n$ROI:\r\n5 6\r\n");
    ASSERT_EQ(doc->plot.rois.size(), 1u); // a second section replaces the first
    EXPECT_EQ(doc->plot.rois[0].lFirst, 5);
}

TEST(SpectrumReader, SectionsLeaveOtherFieldsAloneAndTagsMatchWholeLines) {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->szDeviceName = "Old";
    doc->szDeviceSerial = "1";
    doc->sngLiveTime = 9.0f;
    doc->lPresetMode = 1;
    doc->lPresetCounts = 55;
    ASSERT_TRUE(ParseFullSpectrum(*doc,
                                  "$SPEC_ID: trailing text is fine here\r\n  ID with blanks  \r\n"
                                  "$DEVICE_ID:\r\nOnlyOnePart\r\n$MEAS_TIM: \r\n1 2\r\n"
                                  "$meas_tim:\r\n3 4\r\n$MCA_CAL:\r\n3\r\n1 2 3\r\n"));
    EXPECT_EQ(doc->szSpectrumID, "  ID with blanks  ");
    EXPECT_EQ(doc->szDeviceName + "|" + doc->szDeviceSerial, "Old|1");
    EXPECT_EQ(doc->sngLiveTime, 9.0f);
    EXPECT_EQ(doc->lPresetMode, 3); // the preset snapshot is reset whatever the file holds
    EXPECT_EQ(doc->lPresetCounts, 0);
    EXPECT_FALSE(doc->calibration.bCalibrated); // "$MCA_CAL:" is not read
    doc = Parse("$SPEC_ID:\r\nx\r\n$DEVICE_ID:\r\n  Model  X  SN99 \r\n");
    EXPECT_EQ(doc->szDeviceName + "|" + doc->szDeviceSerial, "Model|X");
}

TEST(SpectrumReader, NumbersAreFieldsAcrossLinesAndCommas) {
    auto doc = Parse("$SPEC_ID:\r\nx\r\n$MEAS_TIM:\r\n\r\n  1.5e2,\r\n 2.5E+2\r\n"
                     "$SPEC_CAL:\r\n-1,2.5,0.001\r\n$DATA:\r\n0 4\r\n1,2\r\n3\r\n4 5 6 7\r\n");
    EXPECT_EQ(doc->sngLiveTime, 150.0f);
    EXPECT_EQ(doc->sngRealTime, 250.0f);
    EXPECT_EQ(doc->calibration, (EnergyCalibration{true, -1.0, 2.5, static_cast<double>(0.001f)}));
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
    // A count beyond 32 bits, a time beyond a float: overflow; no ID line after the tag.
    for (const char* text : {"$SPEC_ID:\r\nx\r\n$DATA:\r\n0 0\r\n2147483648\r\n",
                             "$SPEC_ID:\r\nx\r\n$MEAS_TIM:\r\n1e39 1\r\n",
                             "$SPEC_ID:\r\nx\r\n$MEAS_TIM:\r\n1e999999999999 1\r\n", "$SPEC_ID:"})
        Parse(text, false);
    // Not a full file: the first line must be the tag itself.
    for (const char* text :
         {"", "1 2 3\r\n", "$SPEC_ID\r\nx\r\n", "$spec_id:\r\nx\r\n", " $SPEC_ID:\r\nx\r\n"}) {
        std::string error;
        EXPECT_FALSE(ParseFullSpectrum(*doc, text, &error)) << text;
        EXPECT_FALSE(error.empty());
    }
    std::string error;
    EXPECT_FALSE(bReadFullSpectrum(*doc, "/nonexistent/none.spe", &error));
    EXPECT_EQ(error, "No such file or directory");
}

TEST(SpectrumReader, LineEndsAndCodePage) {
    auto lf = Parse("$SPEC_ID:\nLF\n$MEAS_TIM:\n3 4\n$DATA:\n0 2\n7\n8\n9\n");
    EXPECT_EQ(lf->szSpectrumID, "LF");
    EXPECT_EQ(lf->sngRealTime, 4.0f);
    EXPECT_EQ(lf->lCounts[2], 9);
    auto cr = Parse("$SPEC_ID:\rCR\r$DATA:\r0 1\r5 6");
    EXPECT_EQ(cr->szSpectrumID, "CR");
    EXPECT_EQ(cr->lCounts[1], 6);
    auto text = Parse("$SPEC_ID:\r\nProbe \xE4 \x80\r\n$DEVICE_ID:\r\nM\xFC ller\r\n");
    EXPECT_EQ(text->szSpectrumID, "Probe \xC3\xA4 \xE2\x82\xAC");
    EXPECT_EQ(text->szDeviceName, "M\xC3\xBC");
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
