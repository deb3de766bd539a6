#include "device/DeviceLibrary.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "base/AppDir.h"
#include "base/TextFile.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace vexo {

namespace {

// The library's single-byte text up to the first zero byte, as UTF-8.
std::string CutAtZero(const char* buffer, std::size_t capacity) {
    return Win1252ToUtf8(std::string_view(buffer, strnlen(buffer, capacity)));
}

#if defined(_WIN32)
std::string LastSystemErrorText() {
    return std::system_category().message(static_cast<int>(GetLastError()));
}
#endif

// On 32-bit Windows a standard-call export may carry its decorated name
// ("_OpenDevice@8"); the argument bytes are taken from the declared signature.
#if defined(_WIN32) && !defined(_WIN64)
int ArgumentBytes(const char* name) {
    static const struct {
        const char* name;
        int bytes;
    } table[] = {{"FindDevicesEx", 12}, {"FindDevices", 8},
                 {"GetDeviceInfo", 32}, {"OpenDevice", 8},
                 {"OpenDeviceEx", 12},  {"GetParam", 16},
                 {"SetParam", 16},      {"GetAcquisitionStatus", 8},
                 {"ReadSpectrum", 20},  {"GetScopeStatus", 8},
                 {"ReadScope", 8}};
    for (const auto& entry : table)
        if (std::strcmp(entry.name, name) == 0)
            return entry.bytes;
    return 4; // the handle-only operations
}
#endif

} // namespace

std::string DeviceLibrary::DefaultFileName() {
#if defined(_WIN32)
    return "KORVHW.dll";
#else
    return "libKORVHW.so";
#endif
}

std::filesystem::path DeviceLibrary::ResolvePath() {
    if (const char* env = std::getenv("VEXO_DEVICE_LIBRARY"); env != nullptr && *env != '\0')
        return std::filesystem::path(env);
    std::error_code ec;
    std::filesystem::path beside = ExecutableDir() / DefaultFileName();
    if (std::filesystem::exists(beside, ec))
        return beside;
    // A bare name: the loader searches the system's library path.
    return std::filesystem::path(DefaultFileName());
}

DeviceLibraryLoad DeviceLibrary::Load() {
    return Load(ResolvePath());
}

DeviceLibraryLoad DeviceLibrary::Load(const std::filesystem::path& path) {
    DeviceLibraryLoad result;
    try {
        result.library = std::make_unique<DeviceLibrary>(path);
    } catch (const DeviceLibraryError& e) {
        // Converted into the result's reason: callers of Load decide how to show it.
        result.error = e.what();
    }
    return result;
}

DeviceLibrary::DeviceLibrary(const std::filesystem::path& path) : m_path(path) {
#if defined(_WIN32)
    m_module = reinterpret_cast<void*>(LoadLibraryW(path.wstring().c_str()));
    if (m_module == nullptr)
        throw DeviceLibraryError("Cannot load the device library " + path.string() + ": " +
                                 LastSystemErrorText());
#else
    // A name without a slash would make dlopen search the system path, which is what a
    // bare file name asks for; a relative path with a folder is taken as given.
    m_module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_module == nullptr) {
        const char* why = dlerror();
        throw DeviceLibraryError("Cannot load the device library " + path.string() + ": " +
                                 (why ? why : "unknown reason"));
    }
#endif
    try {
        m_fn.FindDevicesEx = reinterpret_cast<FindDevicesEx_t>(resolve("FindDevicesEx"));
        m_fn.FindDevices = reinterpret_cast<FindDevices_t>(resolve("FindDevices"));
        m_fn.GetDeviceInfo = reinterpret_cast<GetDeviceInfo_t>(resolve("GetDeviceInfo"));
        m_fn.OpenDevice = reinterpret_cast<OpenDevice_t>(resolve("OpenDevice"));
        m_fn.OpenDeviceEx = reinterpret_cast<OpenDeviceEx_t>(resolve("OpenDeviceEx"));
        m_fn.CloseDevice = reinterpret_cast<CloseDevice_t>(resolve("CloseDevice"));
        m_fn.GetParam = reinterpret_cast<GetParam_t>(resolve("GetParam"));
        m_fn.SetParam = reinterpret_cast<SetParam_t>(resolve("SetParam"));
        m_fn.StartAcquisition = reinterpret_cast<HandleOnly_t>(resolve("StartAcquisition"));
        m_fn.StopAcquisition = reinterpret_cast<HandleOnly_t>(resolve("StopAcquisition"));
        m_fn.ClearAll = reinterpret_cast<HandleOnly_t>(resolve("ClearAll"));
        m_fn.ClearMemory = reinterpret_cast<HandleOnly_t>(resolve("ClearMemory"));
        m_fn.ClearTime = reinterpret_cast<HandleOnly_t>(resolve("ClearTime"));
        m_fn.RestoreDefaults = reinterpret_cast<HandleOnly_t>(resolve("RestoreDefaults"));
        m_fn.GetAcquisitionStatus =
            reinterpret_cast<GetAcquisitionStatus_t>(resolve("GetAcquisitionStatus"));
        m_fn.ReadSpectrum = reinterpret_cast<ReadSpectrum_t>(resolve("ReadSpectrum"));
        m_fn.ArmScope = reinterpret_cast<HandleOnly_t>(resolve("ArmScope"));
        m_fn.GetScopeStatus = reinterpret_cast<GetScopeStatus_t>(resolve("GetScopeStatus"));
        m_fn.ReadScope = reinterpret_cast<ReadScope_t>(resolve("ReadScope"));
        m_fn.SaveSettings = reinterpret_cast<HandleOnly_t>(resolve("SaveSettings"));
    } catch (const DeviceLibraryError&) {
        // The half-resolved library is released before the error travels on.
#if defined(_WIN32)
        FreeLibrary(reinterpret_cast<HMODULE>(m_module));
#else
        dlclose(m_module);
#endif
        m_module = nullptr;
        throw;
    }
}

DeviceLibrary::~DeviceLibrary() {
    if (m_module == nullptr)
        return;
#if defined(_WIN32)
    FreeLibrary(reinterpret_cast<HMODULE>(m_module));
#else
    dlclose(m_module);
#endif
}

void* DeviceLibrary::resolve(const char* name) {
#if defined(_WIN32)
    FARPROC symbol = GetProcAddress(reinterpret_cast<HMODULE>(m_module), name);
#if !defined(_WIN64)
    if (symbol == nullptr) {
        std::string decorated = "_" + std::string(name) + "@" + std::to_string(ArgumentBytes(name));
        symbol = GetProcAddress(reinterpret_cast<HMODULE>(m_module), decorated.c_str());
    }
#endif
    if (symbol == nullptr)
        throw DeviceLibraryError("The device library " + m_path.string() + " has no export " +
                                 name + ": " + LastSystemErrorText());
    return reinterpret_cast<void*>(symbol);
#else
    dlerror(); // clear a stale error so the one below belongs to this lookup
    void* symbol = dlsym(m_module, name);
    const char* why = dlerror();
    if (symbol == nullptr || why != nullptr)
        throw DeviceLibraryError("The device library " + m_path.string() + " has no export " +
                                 name + ": " + (why ? why : "null symbol"));
    return symbol;
#endif
}

int32_t DeviceLibrary::captured(int32_t status) {
#if defined(_WIN32)
    m_lastSystemError = static_cast<int>(GetLastError());
#else
    m_lastSystemError = errno;
#endif
    return status;
}

int32_t DeviceLibrary::findDevicesEx(int32_t reserved, int32_t maxDevices, bool restart) {
    return captured(m_fn.FindDevicesEx(reserved, maxDevices, restart ? 1 : 0));
}

DeviceInfoResult DeviceLibrary::getDeviceInfo(int32_t index) {
    char path[KORVHW_TEXT_CAPACITY + 1] = {};
    char name[KORVHW_TEXT_CAPACITY + 1] = {};
    char serial[KORVHW_TEXT_CAPACITY + 1] = {};
    DeviceInfoResult row;
    row.status =
        captured(m_fn.GetDeviceInfo(index, path, KORVHW_TEXT_CAPACITY, name, KORVHW_TEXT_CAPACITY,
                                    serial, KORVHW_TEXT_CAPACITY, &row.type));
    // One spare zero byte past the capacity keeps a library that fills the whole
    // buffer from running the text off its end.
    row.path = CutAtZero(path, KORVHW_TEXT_CAPACITY);
    row.name = CutAtZero(name, KORVHW_TEXT_CAPACITY);
    row.serial = CutAtZero(serial, KORVHW_TEXT_CAPACITY);
    return row;
}

int32_t DeviceLibrary::openDevice(const std::string& ansiPath, int32_t& handle) {
    return captured(m_fn.OpenDevice(ansiPath.c_str(), &handle));
}

int32_t DeviceLibrary::closeDevice(int32_t handle) {
    return captured(m_fn.CloseDevice(handle));
}

int32_t DeviceLibrary::getParam(int32_t handle, DeviceParamId id, void* buffer, int32_t size) {
    return captured(m_fn.GetParam(handle, ToInt(id), buffer, size));
}

int32_t DeviceLibrary::setParam(int32_t handle, DeviceParamId id, const void* buffer,
                                int32_t size) {
    return captured(m_fn.SetParam(handle, ToInt(id), buffer, size));
}

int32_t DeviceLibrary::getParam(int32_t handle, DeviceParamId id, int32_t& value) {
    return getParam(handle, id, &value, static_cast<int32_t>(sizeof value));
}

int32_t DeviceLibrary::getParam(int32_t handle, DeviceParamId id, float& value) {
    return getParam(handle, id, &value, static_cast<int32_t>(sizeof value));
}

int32_t DeviceLibrary::setParam(int32_t handle, DeviceParamId id, int32_t value) {
    return setParam(handle, id, &value, static_cast<int32_t>(sizeof value));
}

int32_t DeviceLibrary::setParam(int32_t handle, DeviceParamId id, float value) {
    return setParam(handle, id, &value, static_cast<int32_t>(sizeof value));
}

int32_t DeviceLibrary::startAcquisition(int32_t handle) {
    return captured(m_fn.StartAcquisition(handle));
}

int32_t DeviceLibrary::stopAcquisition(int32_t handle) {
    return captured(m_fn.StopAcquisition(handle));
}

int32_t DeviceLibrary::clearAll(int32_t handle) {
    return captured(m_fn.ClearAll(handle));
}

int32_t DeviceLibrary::getAcquisitionStatus(int32_t handle, int32_t& status) {
    return captured(m_fn.GetAcquisitionStatus(handle, &status));
}

int32_t DeviceLibrary::readSpectrum(int32_t handle, int32_t* counts, int32_t& channels,
                                    float& realTime, float& liveTime) {
    return captured(m_fn.ReadSpectrum(handle, counts, &channels, &realTime, &liveTime));
}

int32_t DeviceLibrary::armScope(int32_t handle) {
    return captured(m_fn.ArmScope(handle));
}

int32_t DeviceLibrary::getScopeStatus(int32_t handle, int32_t& status) {
    return captured(m_fn.GetScopeStatus(handle, &status));
}

int32_t DeviceLibrary::readScope(int32_t handle, int16_t* samples) {
    return captured(m_fn.ReadScope(handle, samples));
}

int32_t DeviceLibrary::saveSettings(int32_t handle) {
    return captured(m_fn.SaveSettings(handle));
}

} // namespace vexo
