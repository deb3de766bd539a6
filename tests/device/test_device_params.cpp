// Parameter encodings and texts of the device library: error texts, the status panel's
// precedence, polarity packing, firmware version and date texts, fine-gain range and
// the remembered detector path.
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

TEST(AcquisitionStatusText, PrecedenceOfTheStatusWord) {
    const struct {
        int32_t status;
        const char* text;
    } table[] = {
        {0, "Stopped"},   {1, "Acquiring"}, {2, "Waiting"},   {3, "Waiting"},
        {4, "Suspended"}, {5, "Suspended"}, {6, "Waiting"},   {7, "Waiting"},
        {8, "Unknown"},   {16, "Unknown"},  {9, "Acquiring"}, {-1, "Waiting"},
    };
    for (const auto& row : table)
        EXPECT_EQ(AcquisitionStatusText(row.status, "08", 0, false), row.text)
            << "status " << row.status;
}

TEST(AcquisitionStatusText, ModelTenLooksAtTheHighVoltageFirst) {
    EXPECT_EQ(AcquisitionStatusText(1, "10", 4 | 1, false), "HV Inhibit");
    EXPECT_EQ(AcquisitionStatusText(0, "10", 4 | 2, false), "HV Inhibit");
    EXPECT_EQ(AcquisitionStatusText(1, "10", 2 | 1, false), "HV ramping");
    EXPECT_EQ(AcquisitionStatusText(1, "10", 1, false), "Acquiring");
    EXPECT_EQ(AcquisitionStatusText(0, "10", 0, false), "Stopped");
    // Other models never show the HV state, whatever it says.
    EXPECT_EQ(AcquisitionStatusText(1, "08", 4, false), "Acquiring");
    EXPECT_EQ(AcquisitionStatusText(0, "06", 2, false), "Stopped");
    EXPECT_EQ(AcquisitionStatusText(1, "1", 4, false), "Acquiring");
}

TEST(AcquisitionStatusText, BatchPrefix) {
    EXPECT_EQ(AcquisitionStatusText(1, "08", 0, true), "(Batch) Acquiring");
    EXPECT_EQ(AcquisitionStatusText(0, "08", 0, true), "(Batch) Stopped");
    EXPECT_EQ(AcquisitionStatusText(1, "10", 4, true), "(Batch) HV Inhibit");
}

TEST(Polarity, UnpackReadsFunctionAndAnyHighBitAsNegative) {
    const struct {
        uint32_t raw;
        int32_t function;
        int32_t negative;
    } table[] = {
        {0x0000800Au, 10, 1},  {0x0000000Au, 10, 0},  {0xFFFF800Au, 10, 1},
        {0x00010000u, 0, 1},   {0x80000000u, 0, 1},   {0x00004000u, 0, 0},
        {0x0000007Fu, 127, 0}, {0x000000FFu, 127, 0}, {0x00007F85u, 5, 0},
    };
    for (const auto& row : table) {
        const PolarityWord w = UnpackPolarity(static_cast<int32_t>(row.raw));
        EXPECT_EQ(w.function, row.function) << std::hex << row.raw;
        EXPECT_EQ(w.negative, row.negative) << std::hex << row.raw;
    }
}

TEST(Polarity, HVInhibitKeepsOnlyBitZero) {
    EXPECT_EQ(UnpackHVInhibit(0x00008003).function, 1);
    EXPECT_EQ(UnpackHVInhibit(0x00008003).negative, 1);
    EXPECT_EQ(UnpackHVInhibit(0x00000002).function, 0);
    EXPECT_EQ(UnpackHVInhibit(0x00000002).negative, 0);
}

TEST(Polarity, PackSetsTheWholeHighHalfWhenNegative) {
    EXPECT_EQ(static_cast<uint32_t>(PackPolarity(10, 1)), 0xFFFF800Au);
    EXPECT_EQ(PackPolarity(10, 0), 10);
    EXPECT_EQ(static_cast<uint32_t>(PackPolarity(0, -1)), 0xFFFF8000u);
    for (int32_t code = 0; code < 128; ++code)
        for (int32_t neg : {0, 1}) {
            const PolarityWord back = UnpackPolarity(PackPolarity(code, neg));
            EXPECT_EQ(back.function, code);
            EXPECT_EQ(back.negative, neg);
        }
}

TEST(FirmwareVersion, Parsing) {
    const struct {
        const char* text;
        int16_t major, minor;
    } table[] = {
        {"V3.4", 3, 4}, {"V3.2", 3, 2}, {"V10.12", 10, 12}, {"V4", 4, 0},     {"3.4", 0, 4},
        {"v3.4", 0, 4}, {"", 0, 0},     {"Vx.y", 0, 0},     {"V3.4.1", 3, 4},
    };
    for (const auto& row : table) {
        const FirmwareVersion v = ParseFirmwareVersion(row.text);
        EXPECT_EQ(v.major, row.major) << row.text;
        EXPECT_EQ(v.minor, row.minor) << row.text;
    }
}

TEST(DeviceDateText, RebuildsTheDateAsLongDate) {
    const double serial = SerialFromParts({2024, 3, 7, 0, 0, 0});
    EXPECT_EQ(DeviceDateText("20240307"), LongDateText(serial));
    EXPECT_NE(DeviceDateText("20240307"), "20240307");
    // Not a date: kept as the device sent it.
    EXPECT_EQ(DeviceDateText("2024-03"), "2024-03");
    EXPECT_EQ(DeviceDateText(""), "");
    EXPECT_EQ(DeviceDateText("2024AB07"), "2024AB07");
}

TEST(FineGainMax, ModelAndFirmwareRules) {
    const struct {
        const char* model;
        int16_t major, minor;
        int32_t max;
    } table[] = {
        {"10", 3, 4, 16383}, {"10", 3, 3, 16383}, {"10", 3, 2, 4095},  {"10", 4, 0, 16383},
        {"08", 3, 2, 4095},  {"08", 3, 3, 16383}, {"08", 4, 0, 16383}, {"08", 2, 9, 4095},
        {"06", 4, 0, 4095},  {"06", 9, 9, 4095},  {"", 4, 0, 4095},    {"1", 4, 0, 4095},
    };
    for (const auto& row : table)
        EXPECT_EQ(FineGainMaxFor(row.model, row.major, row.minor), row.max)
            << row.model << " " << row.major << "." << row.minor;
}

TEST(ModelCode, FirstTwoCharacters) {
    EXPECT_EQ(ModelCode("10-00123"), "10");
    EXPECT_EQ(ModelCode("0"), "0");
    EXPECT_EQ(ModelCode(""), "");
}

TEST(LegacyPresetWord, RoundedPresetTimeAndOne) {
    const struct {
        float seconds;
        int32_t word;
    } table[] = {{0.0f, 0}, {1.0f, 1}, {2.0f, 0},   {2.5f, 0},   {3.5f, 0},  {4.5f, 0},
                 {1.4f, 1}, {1.6f, 0}, {299.0f, 1}, {300.0f, 0}, {1e30f, 0}, {-3.0f, 1}};
    for (const auto& row : table)
        EXPECT_EQ(LegacyPresetWord(row.seconds), row.word) << row.seconds;
}

TEST(DetectorPath, PrefixByType) {
    EXPECT_EQ(DetectorPathFor(1, "  dev0 "), "HID:dev0");
    EXPECT_EQ(DetectorPathFor(2, "USB:0001"), "USB:USB:0001");
    EXPECT_EQ(DetectorPathFor(3, "192.168.1.5"), "ETH:192.168.1.5");
    EXPECT_EQ(DetectorPathFor(0, "x"), "");
    EXPECT_EQ(DetectorPathFor(4, "x"), "");
}

TEST(DetectorPath, SplitRecognisesOnlyTheThreePrefixes) {
    EXPECT_EQ(SplitDetectorPath("USB:0001").path, "0001");
    EXPECT_EQ(SplitDetectorPath("ETH:10.0.0.2").path, "10.0.0.2");
    EXPECT_EQ(SplitDetectorPath("HID:a b").path, "a b");
    EXPECT_EQ(SplitDetectorPath("USB:").path, "");
    EXPECT_EQ(SplitDetectorPath("usb:0001").path, "");
    EXPECT_EQ(SplitDetectorPath("COM:0001").path, "");
    EXPECT_EQ(SplitDetectorPath("").path, "");
    EXPECT_EQ(SplitDetectorPath("US").path, "");
    EXPECT_EQ(SplitDetectorPath("USB:0001").prefix, "USB:");
}

} // namespace
} // namespace vexo
