#include "device/DeviceParams.h"

#include <cctype>
#include <charconv>

#include "base/DateTime.h"

namespace vexo {

std::string ErrorText(int32_t code) {
    switch (code) {
    case 0:
        return "No error";
    case -1:
    case -2:
        return "Not connected";
    // Spelled so on purpose: users and their notes know the message by this text.
    case -3:
        return "Invalid TPC/IP socket";
    case -4:
        return "Bind to TCP/IP socket failed";
    case -5:
        return "Invalid parameter";
    case -6:
        return "Invalid argument";
    case -7:
        return "Feature not supported";
    case -8:
        return "Connection failed";
    case -9:
        return "Connection closed";
    case -10:
        return "Invalid response from device";
    case -11:
        return "Failed to send data to device";
    case -12:
        return "Failed to receive data from device";
    case -13:
        return "MCA failure";
    case -14:
        return "Invalid device";
    case -15:
        return "Invalid device handle";
    case -16:
        return "Parameter out of range";
    default:
        return "";
    }
}

std::string ModelCode(std::string_view serial) {
    return std::string(serial.substr(0, 2));
}

std::string AcquisitionStatusText(int32_t status, std::string_view modelCode, int32_t hvState,
                                  bool batchOn) {
    std::string text;
    // Only model "10" reports its HV state through the status panel; its HV word wins
    // over the acquisition word because an inhibited or ramping HV makes counts useless.
    if (modelCode == "10" && (hvState & kHVInhibited) != 0)
        text = "HV Inhibit";
    else if (modelCode == "10" && (hvState & kHVRamping) != 0)
        text = "HV ramping";
    else if (status == 0)
        text = "Stopped";
    else if ((status & kAcqWaiting) != 0)
        text = "Waiting";
    else if ((status & kAcqSuspended) != 0)
        text = "Suspended";
    else if ((status & kAcqAcquiring) != 0)
        text = "Acquiring";
    else
        text = "Unknown";
    return batchOn ? "(Batch) " + text : text;
}

PolarityWord UnpackPolarity(int32_t raw, int32_t functionMask) {
    const uint32_t bits = static_cast<uint32_t>(raw);
    PolarityWord word;
    word.function = static_cast<int32_t>(bits & static_cast<uint32_t>(functionMask));
    word.negative = (bits & kNegativePolarityBits) != 0 ? 1 : 0;
    return word;
}

int32_t PackPolarity(int32_t code, int32_t negative) {
    if (negative == 0)
        return code;
    return static_cast<int32_t>(static_cast<uint32_t>(code) | kNegativePolarityBits);
}

namespace {

// Leading decimal digits of `text` as a number, like a lenient text-to-number
// conversion: "4" -> 4, "12b" -> 12, "" or "x" -> 0. Out of 16-bit range -> 0.
int16_t LeadingNumber(std::string_view text) {
    std::size_t start = 0;
    while (start < text.size() && text[start] == ' ')
        ++start;
    int value = 0;
    auto [end, ec] = std::from_chars(text.data() + start, text.data() + text.size(), value);
    (void)end;
    if (ec != std::errc() || value < -32768 || value > 32767)
        return 0;
    return static_cast<int16_t>(value);
}

} // namespace

FirmwareVersion ParseFirmwareVersion(std::string_view text) {
    FirmwareVersion version;
    const std::size_t dot = text.find('.');
    const std::string_view first = text.substr(0, dot);
    if (!first.empty() && first.front() == 'V')
        version.major = LeadingNumber(first.substr(1));
    if (dot != std::string_view::npos) {
        std::string_view second = text.substr(dot + 1);
        second = second.substr(0, second.find('.'));
        version.minor = LeadingNumber(second);
    }
    return version;
}

std::string DeviceDateText(std::string_view yyyymmdd) {
    if (yyyymmdd.size() < 8)
        return std::string(yyyymmdd);
    for (std::size_t i = 0; i < 8; ++i)
        if (!std::isdigit(static_cast<unsigned char>(yyyymmdd[i])))
            return std::string(yyyymmdd);
    DateTimeParts parts;
    parts.year = LeadingNumber(yyyymmdd.substr(0, 4));
    parts.month = LeadingNumber(yyyymmdd.substr(4, 2));
    parts.day = LeadingNumber(yyyymmdd.substr(6, 2));
    // Month or day 00 roll back as a calendar does; the date is rebuilt, not validated.
    return LongDateText(SerialFromParts(parts));
}

int32_t FineGainMaxFor(std::string_view modelCode, int16_t fwMajor, int16_t fwMinor) {
    const bool wideModel = modelCode == "10" || modelCode == "08";
    const bool newFirmware = fwMajor > 3 || (fwMajor == 3 && fwMinor >= 3);
    return wideModel && newFirmware ? 16383 : 4095;
}

} // namespace vexo
