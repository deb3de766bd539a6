// A pass-through device library for tests: it has the same exports as the device
// library, forwards every call to the library named by VEXO_RECORDER_TARGET and
// appends one line per call to the file named by VEXO_RECORDER_LOG, so that a test can
// check which calls the program makes and in which order.
//
// Line format (fields separated by one blank):
//   <Operation> [<id>] [<32-bit value as signed integer>] = <status>
// GetParam and SetParam give the id and, for 4-byte buffers, the value written or read
// back (as the raw 32-bit pattern); SetParam of longer buffers gives the size instead.
#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include "KorvhwApi.h"

namespace {

void* Target() {
    static void* module = [] {
        const char* path = std::getenv("VEXO_RECORDER_TARGET");
        void* m = path ? dlopen(path, RTLD_NOW | RTLD_LOCAL) : nullptr;
        if (m == nullptr)
            std::fprintf(stderr, "recorder: cannot load %s\n", path ? path : "(unset)");
        return m;
    }();
    return module;
}

template <typename F> F Resolve(const char* name) {
    void* m = Target();
    return m ? reinterpret_cast<F>(dlsym(m, name)) : nullptr;
}

void Log(const std::string& line) {
    static std::mutex lock;
    const char* path = std::getenv("VEXO_RECORDER_LOG");
    if (path == nullptr || *path == '\0')
        return;
    std::lock_guard<std::mutex> guard(lock);
    if (FILE* f = std::fopen(path, "a")) {
        std::fputs(line.c_str(), f);
        std::fputc('\n', f);
        std::fclose(f);
    }
}

int32_t Word(const void* buffer, int32_t size) {
    int32_t v = 0;
    if (buffer != nullptr && size == 4)
        std::memcpy(&v, buffer, 4);
    return v;
}

constexpr int32_t kNoLibrary = -13;

// "GetParam 6 1024 = 0": the id, then the 32-bit value of a 4-byte buffer or its size.
void LogParam(const char* op, int32_t id, const void* buffer, int32_t size, int32_t rc) {
    Log(std::string(op) + " " + std::to_string(id) +
        (size == 4 ? " " + std::to_string(Word(buffer, size)) : " size" + std::to_string(size)) +
        " = " + std::to_string(rc));
}

} // namespace

#define FORWARD(name, type, ...)                                                                   \
    static const auto fn = Resolve<type>(name);                                                    \
    if (fn == nullptr)                                                                             \
        return kNoLibrary;                                                                         \
    return fn(__VA_ARGS__)

KORVHW_EXPORT int32_t KORVHW_CALL FindDevicesEx(int32_t reserved, int32_t maxDevices,
                                                int32_t restart) {
    static const auto fn = Resolve<FindDevicesEx_t>("FindDevicesEx");
    const int32_t rc = fn ? fn(reserved, maxDevices, restart) : kNoLibrary;
    Log("FindDevicesEx " + std::to_string(reserved) + " " + std::to_string(maxDevices) + " " +
        std::to_string(restart) + " = " + std::to_string(rc));
    return rc;
}

KORVHW_EXPORT int32_t KORVHW_CALL FindDevices(int32_t reserved, int32_t maxDevices) {
    Log("FindDevices");
    FORWARD("FindDevices", FindDevices_t, reserved, maxDevices);
}

KORVHW_EXPORT int32_t KORVHW_CALL GetDeviceInfo(int32_t index, char* path, int32_t pathCapacity,
                                                char* name, int32_t nameCapacity, char* serial,
                                                int32_t serialCapacity, int32_t* type) {
    static const auto fn = Resolve<GetDeviceInfo_t>("GetDeviceInfo");
    const int32_t rc =
        fn ? fn(index, path, pathCapacity, name, nameCapacity, serial, serialCapacity, type)
           : kNoLibrary;
    Log("GetDeviceInfo " + std::to_string(index) + " " + std::to_string(pathCapacity) + " " +
        std::to_string(nameCapacity) + " " + std::to_string(serialCapacity) + " = " +
        std::to_string(rc));
    return rc;
}

KORVHW_EXPORT int32_t KORVHW_CALL OpenDevice(const char* path, int32_t* handle) {
    static const auto fn = Resolve<OpenDevice_t>("OpenDevice");
    const int32_t rc = fn ? fn(path, handle) : kNoLibrary;
    Log(std::string("OpenDevice ") + (path ? path : "") + " = " + std::to_string(rc));
    return rc;
}

KORVHW_EXPORT int32_t KORVHW_CALL OpenDeviceEx(const char* path, int32_t* handle, int32_t flags) {
    Log("OpenDeviceEx");
    FORWARD("OpenDeviceEx", OpenDeviceEx_t, path, handle, flags);
}

#define HANDLE_ONLY(name)                                                                          \
    KORVHW_EXPORT int32_t KORVHW_CALL name(int32_t handle) {                                       \
        static const auto fn = Resolve<HandleOnly_t>(#name);                                       \
        const int32_t rc = fn ? fn(handle) : kNoLibrary;                                           \
        Log(std::string(#name) + " = " + std::to_string(rc));                                      \
        return rc;                                                                                 \
    }

HANDLE_ONLY(CloseDevice)
HANDLE_ONLY(StartAcquisition)
HANDLE_ONLY(StopAcquisition)
HANDLE_ONLY(ClearAll)
HANDLE_ONLY(ClearMemory)
HANDLE_ONLY(ClearTime)
HANDLE_ONLY(RestoreDefaults)
HANDLE_ONLY(ArmScope)
HANDLE_ONLY(SaveSettings)

KORVHW_EXPORT int32_t KORVHW_CALL GetParam(int32_t handle, int32_t id, void* buffer, int32_t size) {
    static const auto fn = Resolve<GetParam_t>("GetParam");
    const int32_t rc = fn ? fn(handle, id, buffer, size) : kNoLibrary;
    LogParam("GetParam", id, buffer, size, rc);
    return rc;
}

KORVHW_EXPORT int32_t KORVHW_CALL SetParam(int32_t handle, int32_t id, const void* buffer,
                                           int32_t size) {
    static const auto fn = Resolve<SetParam_t>("SetParam");
    const int32_t rc = fn ? fn(handle, id, buffer, size) : kNoLibrary;
    LogParam("SetParam", id, buffer, size, rc);
    return rc;
}

KORVHW_EXPORT int32_t KORVHW_CALL GetAcquisitionStatus(int32_t handle, int32_t* status) {
    static const auto fn = Resolve<GetAcquisitionStatus_t>("GetAcquisitionStatus");
    const int32_t rc = fn ? fn(handle, status) : kNoLibrary;
    Log("GetAcquisitionStatus " + std::to_string(status ? *status : 0) + " = " +
        std::to_string(rc));
    return rc;
}

KORVHW_EXPORT int32_t KORVHW_CALL ReadSpectrum(int32_t handle, int32_t* counts, int32_t* channels,
                                               float* realTime, float* liveTime) {
    static const auto fn = Resolve<ReadSpectrum_t>("ReadSpectrum");
    const int32_t rc = fn ? fn(handle, counts, channels, realTime, liveTime) : kNoLibrary;
    Log("ReadSpectrum = " + std::to_string(rc));
    return rc;
}

KORVHW_EXPORT int32_t KORVHW_CALL GetScopeStatus(int32_t handle, int32_t* status) {
    static const auto fn = Resolve<GetScopeStatus_t>("GetScopeStatus");
    const int32_t rc = fn ? fn(handle, status) : kNoLibrary;
    Log("GetScopeStatus " + std::to_string(status ? *status : 0) + " = " + std::to_string(rc));
    return rc;
}

KORVHW_EXPORT int32_t KORVHW_CALL ReadScope(int32_t handle, int16_t* samples) {
    static const auto fn = Resolve<ReadScope_t>("ReadScope");
    const int32_t rc = fn ? fn(handle, samples) : kNoLibrary;
    Log("ReadScope = " + std::to_string(rc));
    return rc;
}
