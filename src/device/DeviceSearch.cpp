#include "device/DeviceSearch.h"

#include <algorithm>

#include "base/TextTrim.h"

namespace vexo {

const char* const kEmptyDeviceListText =
    "The device list is empty, use the \"Search\" button to discover available devices.";

namespace {

// The library pads its texts with spaces only.
std::string Trimmed(std::string_view text) {
    return std::string(TrimBlanks(text, " "));
}

} // namespace

DeviceSearch::DeviceSearch(DeviceLibrary& lib) : m_lib(lib) {}

int32_t DeviceSearch::tick() {
    const int32_t found = m_lib.findDevicesEx(0, kSearchMaxDevices, m_restart);
    m_restart = false;
    // Rows come from the previous tick's count: the library is still filling its list
    // for this call, so the window shows what it knew one tick ago.
    // Never more rows than were asked for, whatever count a faulty library returns.
    const int32_t rowsToRead = std::clamp(m_found, int32_t{0}, kSearchMaxDevices);
    m_rows.resize(static_cast<std::size_t>(rowsToRead));
    for (int32_t i = 1; i <= rowsToRead; ++i) {
        const DeviceInfoResult info = m_lib.getDeviceInfo(i - 1);
        DeviceRow& row = m_rows[static_cast<std::size_t>(i - 1)];
        row.No = i;
        row.Name = Trimmed(info.name);
        row.Path = Trimmed(info.path);
        row.Serial = Trimmed(info.serial);
        row.Type = info.type;
    }
    m_found = found;
    return found;
}

bool DeviceSearch::chooseOpen(int selected, Messages& messages) {
    if (m_rows.empty()) {
        messages.exclamation(kEmptyDeviceListText);
        return false;
    }
    if (selected < 0 || selected >= static_cast<int>(m_rows.size()))
        selected = 0;
    const DeviceRow& row = m_rows[static_cast<std::size_t>(selected)];
    m_choice.result = kDevicesOpen;
    m_choice.path = row.Path;
    m_choice.name = row.Name;
    m_choice.type = row.Type;
    return true;
}

void DeviceSearch::chooseCancel() {
    m_choice.result = kDevicesCancel;
}

int32_t DeviceSearch::close() {
    return m_lib.findDevicesEx(0, kSearchMaxDevices, false);
}

std::string DevicePathPrefix(int32_t type) {
    switch (type) {
    case KORVHW_TYPE_HID:
        return "HID:";
    case KORVHW_TYPE_USB:
        return "USB:";
    case KORVHW_TYPE_ETH:
        return "ETH:";
    default:
        return "";
    }
}

std::string DetectorPathFor(int32_t type, std::string_view path) {
    const std::string prefix = DevicePathPrefix(type);
    if (prefix.empty())
        return {};
    return prefix + Trimmed(path);
}

DetectorPathParts SplitDetectorPath(std::string_view detectorPath) {
    DetectorPathParts parts;
    parts.prefix = std::string(detectorPath.substr(0, 4));
    if (detectorPath.size() > 4)
        parts.path = std::string(detectorPath.substr(4));
    if (parts.prefix != "HID:" && parts.prefix != "USB:" && parts.prefix != "ETH:")
        parts.path.clear();
    return parts;
}

} // namespace vexo
