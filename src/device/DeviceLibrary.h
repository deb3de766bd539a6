#pragma once
// The device library, loaded by name at run time. One object owns one loaded copy:
// it resolves every export once, when it is constructed, and offers thin typed
// wrappers over the calls the program makes. A missing library or export is reported
// as a DeviceLibraryError naming it, never as a crash at the first call.
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "KorvhwApi.h"
#include "device/DeviceParams.h"

namespace vexo {

// Raised when the library cannot be loaded or lacks an export; what() names the file
// or the export and carries the system's own reason (dlerror / GetLastError).
class DeviceLibraryError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Every export, resolved. The five the program declares but never calls (FindDevices,
// OpenDeviceEx, ClearMemory, ClearTime, RestoreDefaults) are resolved all the same, so
// a library that lacks one is refused up front.
struct KorvhwFunctions {
    FindDevicesEx_t FindDevicesEx = nullptr;
    FindDevices_t FindDevices = nullptr;
    GetDeviceInfo_t GetDeviceInfo = nullptr;
    OpenDevice_t OpenDevice = nullptr;
    OpenDeviceEx_t OpenDeviceEx = nullptr;
    CloseDevice_t CloseDevice = nullptr;
    GetParam_t GetParam = nullptr;
    SetParam_t SetParam = nullptr;
    HandleOnly_t StartAcquisition = nullptr;
    HandleOnly_t StopAcquisition = nullptr;
    HandleOnly_t ClearAll = nullptr;
    HandleOnly_t ClearMemory = nullptr;
    HandleOnly_t ClearTime = nullptr;
    HandleOnly_t RestoreDefaults = nullptr;
    GetAcquisitionStatus_t GetAcquisitionStatus = nullptr;
    ReadSpectrum_t ReadSpectrum = nullptr;
    HandleOnly_t ArmScope = nullptr;
    GetScopeStatus_t GetScopeStatus = nullptr;
    ReadScope_t ReadScope = nullptr;
    HandleOnly_t SaveSettings = nullptr;
};

// One row of the library's device list as GetDeviceInfo reports it (texts cut at the
// first zero byte, converted from the library's Windows-1252 to UTF-8, not trimmed).
struct DeviceInfoResult {
    int32_t status = 0; // library status, 0 = success
    std::string path;
    std::string name;
    std::string serial;
    int32_t type = 0; // KORVHW_TYPE_HID / _USB / _ETH, or anything the library says
};

// Outcome of DeviceLibrary::Load: the library, or the reason why not.
struct DeviceLibraryLoad {
    std::unique_ptr<class DeviceLibrary> library; // null on failure
    std::string error;                            // empty on success
};

class DeviceLibrary {
public:
    // "libKORVHW.so" ("KORVHW.dll" on Windows).
    static std::string DefaultFileName();

    // Where the library is looked for: the VEXO_DEVICE_LIBRARY environment variable when
    // set and not empty (used as given); else the file beside the executable when it
    // exists; else the bare file name, which the system's search path resolves.
    static std::filesystem::path ResolvePath();

    // Loads ResolvePath(), or `path` when given. Never throws.
    static DeviceLibraryLoad Load();
    static DeviceLibraryLoad Load(const std::filesystem::path& path);

    // Loads the library at `path` (a bare file name goes through the system's search)
    // and resolves every export. Throws DeviceLibraryError naming the file or the first
    // missing export. Several objects may load the same file; each holds its own
    // reference and releases it when destroyed.
    explicit DeviceLibrary(const std::filesystem::path& path);
    ~DeviceLibrary();
    DeviceLibrary(const DeviceLibrary&) = delete;
    DeviceLibrary& operator=(const DeviceLibrary&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    const KorvhwFunctions& functions() const { return m_fn; }

    // The system's last-error value captured right after the latest call (errno, or
    // GetLastError on Windows). Kept for diagnosis; the program does not act on it.
    int lastSystemError() const { return m_lastSystemError; }

    // Thin wrappers: each returns the library's status (0 success, negative error code,
    // FindDevicesEx: the number of devices found so far when not negative).
    int32_t findDevicesEx(int32_t reserved, int32_t maxDevices, bool restart);
    DeviceInfoResult getDeviceInfo(int32_t index);
    // `ansiPath` in the library's code page (Windows-1252), see Utf8ToWin1252.
    int32_t openDevice(const std::string& ansiPath, int32_t& handle);
    int32_t closeDevice(int32_t handle);
    int32_t getParam(int32_t handle, DeviceParamId id, void* buffer, int32_t size);
    int32_t setParam(int32_t handle, DeviceParamId id, const void* buffer, int32_t size);
    // One signed 32-bit or one 32-bit float value (buffer size 4). On failure the
    // target keeps whatever the library left in it.
    int32_t getParam(int32_t handle, DeviceParamId id, int32_t& value);
    int32_t getParam(int32_t handle, DeviceParamId id, float& value);
    int32_t setParam(int32_t handle, DeviceParamId id, int32_t value);
    int32_t setParam(int32_t handle, DeviceParamId id, float value);
    int32_t startAcquisition(int32_t handle);
    int32_t stopAcquisition(int32_t handle);
    int32_t clearAll(int32_t handle);
    int32_t getAcquisitionStatus(int32_t handle, int32_t& status);
    // `counts` must hold KORVHW_SPECTRUM_SLOTS values.
    int32_t readSpectrum(int32_t handle, int32_t* counts, int32_t& channels, float& realTime,
                         float& liveTime);
    int32_t armScope(int32_t handle);
    int32_t getScopeStatus(int32_t handle, int32_t& status);
    // `samples` must hold KORVHW_SCOPE_SAMPLES values.
    int32_t readScope(int32_t handle, int16_t* samples);
    int32_t saveSettings(int32_t handle);

private:
    int32_t captured(int32_t status);
    void* resolve(const char* name);

    std::filesystem::path m_path;
    void* m_module = nullptr;
    KorvhwFunctions m_fn;
    int m_lastSystemError = 0;
};

} // namespace vexo
