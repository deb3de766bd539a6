// Parameter encodings and texts of the device library: error texts, the status panel's
// precedence, polarity packing, firmware version and date texts, fine-gain range, the
// legacy preset word and the remembered detector path.
#include <gtest/gtest.h>

#include "base/DateTime.h"
#include "device/DeviceIO.h"
#include "device/DeviceParams.h"
#include "device/DeviceSearch.h"

namespace vexo {
namespace {

TEST(ErrorText, UnknownCodesGiveEmptyText) {
    for (int32_t code : {-17, 1, 2, 256, -100, INT32_MIN, INT32_MAX})
        EXPECT_EQ(ErrorText(code), "") << "code " << code;
}

TEST(AcquisitionStatusText, Precedence) {
    const struct {
        int32_t status;
        const char* model;
        int32_t hv;
        bool batch;
        const char* text;
    } table[] = {{0, "08", 0, false, "Stopped"},
                 {1, "08", 0, false, "Acquiring"},
                 {2, "08", 0, false, "Waiting"},
                 {3, "08", 0, false, "Waiting"},
                 {4, "08", 0, false, "Suspended"},
                 {5, "08", 0, false, "Suspended"},
                 {6, "08", 0, false, "Waiting"},
                 {7, "08", 0, false, "Waiting"},
                 {8, "08", 0, false, "Unknown"},
                 {16, "08", 0, false, "Unknown"},
                 {9, "08", 0, false, "Acquiring"},
                 {-1, "08", 0, false, "Waiting"},
                 // The "10" looks at the high voltage first; other models never show it.
                 {1, "10", 4 | 1, false, "HV Inhibit"},
                 {0, "10", 4 | 2, false, "HV Inhibit"},
                 {1, "10", 2 | 1, false, "HV ramping"},
                 {1, "10", 1, false, "Acquiring"},
                 {0, "10", 0, false, "Stopped"},
                 {1, "08", 4, false, "Acquiring"},
                 {0, "06", 2, false, "Stopped"},
                 {1, "1", 4, false, "Acquiring"},
                 {1, "08", 0, true, "(Batch) Acquiring"},
                 {0, "08", 0, true, "(Batch) Stopped"},
                 {1, "10", 4, true, "(Batch) HV Inhibit"}};
    for (const auto& r : table)
        EXPECT_EQ(AcquisitionStatusText(r.status, r.model, r.hv, r.batch), r.text)
            << r.status << " " << r.model << " " << r.hv;
}

TEST(Polarity, PackAndUnpack) {
    // Unpacking reads the function and any high bit as negative.
    const struct {
        uint32_t raw;
        int32_t function, negative;
    } table[] = {{0x0000800Au, 10, 1},  {0x0000000Au, 10, 0},  {0xFFFF800Au, 10, 1},
                 {0x00010000u, 0, 1},   {0x80000000u, 0, 1},   {0x00004000u, 0, 0},
                 {0x0000007Fu, 127, 0}, {0x000000FFu, 127, 0}, {0x00007F85u, 5, 0}};
    for (const auto& row : table) {
        const PolarityWord w = UnpackPolarity(static_cast<int32_t>(row.raw));
        EXPECT_EQ(w.function * 10 + w.negative, row.function * 10 + row.negative) << row.raw;
    }
    // The HV inhibit input keeps only bit zero.
    EXPECT_EQ(UnpackHVInhibit(0x00008003).function * 10 + UnpackHVInhibit(0x00008003).negative, 11);
    EXPECT_EQ(UnpackHVInhibit(0x00000002).function * 10 + UnpackHVInhibit(0x00000002).negative, 0);
    // Packing sets the whole high half when negative.
    EXPECT_EQ(static_cast<uint32_t>(PackPolarity(10, 1)), 0xFFFF800Au);
    EXPECT_EQ(static_cast<uint32_t>(PackPolarity(0, -1)), 0xFFFF8000u);
    for (int32_t code = 0; code < 128; ++code)
        for (int32_t neg : {0, 1}) {
            const PolarityWord back = UnpackPolarity(PackPolarity(code, neg));
            EXPECT_EQ(back.function * 10 + back.negative, code * 10 + neg);
        }
}

TEST(FirmwareVersion, ParsingAndFineGainRange) {
    const struct {
        const char* text;
        int16_t major, minor;
    } versions[] = {{"V3.4", 3, 4}, {"V10.12", 10, 12}, {"V4", 4, 0},   {"3.4", 0, 4},
                    {"v3.4", 0, 4}, {"", 0, 0},         {"Vx.y", 0, 0}, {"V3.4.1", 3, 4}};
    for (const auto& row : versions) {
        const FirmwareVersion v = ParseFirmwareVersion(row.text);
        EXPECT_EQ(v.major * 100 + v.minor, row.major * 100 + row.minor) << row.text;
    }
    // The wide fine-gain range from firmware 3.3 on, on the "10" and "08" only.
    const struct {
        const char* model;
        int16_t major, minor;
        int32_t max;
    } gains[] = {{"10", 3, 4, 16383}, {"10", 3, 3, 16383}, {"10", 3, 2, 4095}, {"10", 4, 0, 16383},
                 {"08", 3, 2, 4095},  {"08", 3, 3, 16383}, {"08", 2, 9, 4095}, {"06", 9, 9, 4095},
                 {"", 4, 0, 4095},    {"1", 4, 0, 4095}};
    for (const auto& row : gains)
        EXPECT_EQ(FineGainMaxFor(row.model, row.major, row.minor), row.max)
            << row.model << " " << row.major << "." << row.minor;
    EXPECT_EQ(ModelCode("10-00123"), "10");
    EXPECT_EQ(ModelCode("0"), "0");
}

TEST(DeviceDateText, RebuildsTheDateAsLongDate) {
    EXPECT_EQ(DeviceDateText("20240307"), LongDateText(SerialFromParts({2024, 3, 7, 0, 0, 0})));
    // Not a date: kept as the device sent it.
    for (const char* text : {"2024-03", "", "2024AB07"})
        EXPECT_EQ(DeviceDateText(text), text);
}

TEST(LegacyPresetWord, RoundedPresetTimeAndOne) {
    const std::pair<float, int32_t> table[] = {{0.0f, 0},   {1.0f, 1},   {1.6f, 0},  {4.5f, 0},
                                               {299.0f, 1}, {300.0f, 0}, {1e30f, 0}, {-3.0f, 1}};
    for (const auto& [seconds, word] : table)
        EXPECT_EQ(LegacyPresetWord(seconds), word) << seconds;
}

TEST(DetectorPath, PrefixByTypeAndSplit) {
    EXPECT_EQ(DetectorPathFor(1, "  dev0 "), "HID:dev0");
    EXPECT_EQ(DetectorPathFor(2, "USB:0001"), "USB:USB:0001");
    EXPECT_EQ(DetectorPathFor(3, "192.168.1.5"), "ETH:192.168.1.5");
    EXPECT_EQ(DetectorPathFor(0, "x") + DetectorPathFor(4, "x"), "");
    EXPECT_EQ(SplitDetectorPath("USB:0001").prefix, "USB:");
    const std::pair<const char*, const char*> splits[] = {{"USB:0001", "0001"},
                                                          {"ETH:10.0.0.2", "10.0.0.2"},
                                                          {"HID:a b", "a b"},
                                                          {"USB:", ""},
                                                          {"usb:0001", ""},
                                                          {"COM:0001", ""},
                                                          {"", ""},
                                                          {"US", ""}};
    for (const auto& [remembered, path] : splits)
        EXPECT_EQ(SplitDetectorPath(remembered).path, path) << remembered;
}

} // namespace
} // namespace vexo
