#pragma once
// The device library's C exports, as the program loads them by name at run time.
// Every function returns a signed 32-bit status: 0 success, a negative error code
// otherwise. Text arguments are zero-terminated ANSI (Windows-1252). On Windows the
// exports use the standard-call convention.
#include <cstdint>

#if defined(_WIN32)
#define KORVHW_CALL __stdcall
#else
#define KORVHW_CALL
#endif

#if defined(_WIN32)
#define KORVHW_EXPORT extern "C" __declspec(dllexport)
#else
#define KORVHW_EXPORT extern "C" __attribute__((visibility("default")))
#endif

// Sizes fixed by the library's contract.
constexpr int32_t KORVHW_TEXT_CAPACITY = 255;    // GetDeviceInfo text buffers
constexpr int32_t KORVHW_PARAM_TEXT_BYTES = 64;  // text parameters 0..4
constexpr int32_t KORVHW_SPECTRUM_SLOTS = 16384; // ReadSpectrum writes at most this many
constexpr int32_t KORVHW_SCOPE_SAMPLES = 1025;   // ReadScope writes this many int16 samples

// Device types reported by GetDeviceInfo.
constexpr int32_t KORVHW_TYPE_HID = 1;
constexpr int32_t KORVHW_TYPE_USB = 2;
constexpr int32_t KORVHW_TYPE_ETH = 3;

extern "C" {
using FindDevicesEx_t = int32_t(KORVHW_CALL*)(int32_t reserved, int32_t maxDevices,
                                              int32_t restart);
using FindDevices_t = int32_t(KORVHW_CALL*)(int32_t reserved, int32_t maxDevices);
using GetDeviceInfo_t = int32_t(KORVHW_CALL*)(int32_t index, char* path, int32_t pathCapacity,
                                              char* name, int32_t nameCapacity, char* serial,
                                              int32_t serialCapacity, int32_t* type);
using OpenDevice_t = int32_t(KORVHW_CALL*)(const char* path, int32_t* handle);
using OpenDeviceEx_t = int32_t(KORVHW_CALL*)(const char* path, int32_t* handle, int32_t flags);
using CloseDevice_t = int32_t(KORVHW_CALL*)(int32_t handle);
using GetParam_t = int32_t(KORVHW_CALL*)(int32_t handle, int32_t id, void* buffer, int32_t size);
using SetParam_t = int32_t(KORVHW_CALL*)(int32_t handle, int32_t id, const void* buffer,
                                         int32_t size);
using HandleOnly_t = int32_t(KORVHW_CALL*)(int32_t handle); // Start/Stop/Clear*/Restore/Save/Arm
using GetAcquisitionStatus_t = int32_t(KORVHW_CALL*)(int32_t handle, int32_t* status);
using ReadSpectrum_t = int32_t(KORVHW_CALL*)(int32_t handle, int32_t* counts, int32_t* channels,
                                             float* realTime, float* liveTime);
using GetScopeStatus_t = int32_t(KORVHW_CALL*)(int32_t handle, int32_t* status);
using ReadScope_t = int32_t(KORVHW_CALL*)(int32_t handle, int16_t* samples);
}

// Export names, in one list so the loader and the simulated library cannot drift:
// FindDevicesEx, FindDevices, GetDeviceInfo, OpenDevice, OpenDeviceEx, CloseDevice,
// GetParam, SetParam, StartAcquisition, StopAcquisition, ClearAll, ClearMemory,
// ClearTime, RestoreDefaults, GetAcquisitionStatus, ReadSpectrum, ArmScope,
// GetScopeStatus, ReadScope, SaveSettings.
