#pragma once
// The device list window's logic (frmDevices): a background search driven by a
// 1000 ms timer, rows read from the library one tick behind the search, and the
// choice the caller reads after the window closes. The window binds `tmrSearch` to
// tick() and draws rows(); nothing here touches a widget.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/Messages.h"
#include "device/DeviceLibrary.h"

namespace vexo {

constexpr int32_t kSearchMaxDevices = 50;
constexpr int kSearchIntervalMs = 1000; // tmrSearch

// One row of lvDevices. Column keys "Name", "Path", "Serial", "Type"; captions "No",
// "Device Name", "Location", "Serial No", "Type".
struct DeviceRow {
    int No = 0; // row number from 1
    std::string Name;
    std::string Path; // the library's path as reported, what OpenDevice takes
    std::string Serial;
    int32_t Type = 0; // 1 HID, 2 USB, 3 ETH
};

// frmDevices result codes.
constexpr int kDevicesOpen = 1;
constexpr int kDevicesCancel = 2;

// What the caller reads after the list closes.
struct DeviceChoice {
    int result = kDevicesCancel; // kDevicesOpen or kDevicesCancel
    std::string path;            // chosen row's library path
    std::string name;
    int32_t type = 0;
};

class DeviceSearch {
public:
    // Opening the list: the next FindDevicesEx call restarts the search.
    explicit DeviceSearch(DeviceLibrary& lib);

    // tmrSearch: FindDevicesEx(0, 50, restart), restart cleared, then rows 1..N are
    // (re)written from GetDeviceInfo, where N is the count the previous tick's call
    // returned (0 on the first tick, at most 50); N then becomes this tick's return
    // value. Rows past N are dropped. Returns this tick's FindDevicesEx status.
    int32_t tick();

    const std::vector<DeviceRow>& rows() const { return m_rows; }
    int32_t lastFound() const { return m_found; }

    // Open (button or double click) on row `selected` (0-based). With no rows shows
    // the "list is empty" exclamation and returns false; otherwise records the row as
    // the choice with result kDevicesOpen and returns true (the window then closes).
    // A selection outside the rows picks the first row.
    bool chooseOpen(int selected, Messages& messages);
    // Cancel: result kDevicesCancel.
    void chooseCancel();
    const DeviceChoice& choice() const { return m_choice; }

    // Closing the window: FindDevicesEx(0, 50, false) once more. Returns its status.
    int32_t close();

private:
    DeviceLibrary& m_lib;
    bool m_restart = true;
    int32_t m_found = 0; // devices reported by the previous tick
    std::vector<DeviceRow> m_rows;
    DeviceChoice m_choice;
};

// The message shown when Open is asked of an empty list.
extern const char* const kEmptyDeviceListText;

// "HID:" / "USB:" / "ETH:" for types 1 / 2 / 3, else "".
std::string DevicePathPrefix(int32_t type);
// DetectorPath as remembered: prefix by type + trimmed path; "" for another type.
std::string DetectorPathFor(int32_t type, std::string_view path);

// DetectorPath split for the start-up connection: prefix = first four characters,
// path = the rest; a prefix other than "HID:", "USB:", "ETH:" (case matters) makes the
// path empty.
struct DetectorPathParts {
    std::string prefix;
    std::string path;
};
DetectorPathParts SplitDetectorPath(std::string_view detectorPath);

} // namespace vexo
