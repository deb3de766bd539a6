// The C entry points of the simulated analyser. Each one hands over to the
// Simulator and turns any C++ exception into a status code: an exception must never
// unwind into the caller's C frames, and from the program's side an internal fault
// of the device library is exactly an "MCA failure" (-13).
#include <cstdio>
#include <exception>

#include "KorvhwApi.h"
#include "Simulator.h"
#include "StatusCodes.h"
#include "WireCodec.h"

using korvsim::Device;
using korvsim::Simulator;

namespace {

template <class Body> int32_t Guarded(const char* operation, Body body) noexcept {
    try {
        return body();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "KORVHW: %s failed: %s\n", operation, e.what());
    } catch (...) {
        std::fprintf(stderr, "KORVHW: %s failed with an unknown exception\n", operation);
    }
    return korvsim::kMcaFailure;
}

template <class Op> int32_t OnDevice(const char* operation, int32_t handle, Op op) noexcept {
    return Guarded(operation, [&] { return Simulator::instance().withDevice(handle, op); });
}

} // namespace

KORVHW_EXPORT int32_t KORVHW_CALL FindDevicesEx(int32_t, int32_t maxDevices, int32_t restart) {
    return Guarded("FindDevicesEx", [&] {
        return Simulator::instance().findDevices(maxDevices, restart != 0, false);
    });
}

KORVHW_EXPORT int32_t KORVHW_CALL FindDevices(int32_t, int32_t maxDevices) {
    return Guarded("FindDevices",
                   [&] { return Simulator::instance().findDevices(maxDevices, true, true); });
}

KORVHW_EXPORT int32_t KORVHW_CALL GetDeviceInfo(int32_t index, char* path, int32_t pathCapacity,
                                                char* name, int32_t nameCapacity, char* serial,
                                                int32_t serialCapacity, int32_t* type) {
    return Guarded("GetDeviceInfo", [&] {
        if (!path || !name || !serial || !type || pathCapacity <= 0 || nameCapacity <= 0 ||
            serialCapacity <= 0)
            return korvsim::kInvalidArgument;
        korvsim::DeviceInfoRow row;
        const int32_t result = Simulator::instance().deviceInfo(index, row);
        if (result != korvsim::kOk)
            return result;
        korvsim::CopyText(row.path, path, pathCapacity);
        korvsim::CopyText(row.name, name, nameCapacity);
        korvsim::CopyText(row.serial, serial, serialCapacity);
        *type = row.type;
        return korvsim::kOk;
    });
}

KORVHW_EXPORT int32_t KORVHW_CALL OpenDevice(const char* path, int32_t* handle) {
    return Guarded("OpenDevice", [&] { return Simulator::instance().open(path, handle); });
}

KORVHW_EXPORT int32_t KORVHW_CALL OpenDeviceEx(const char* path, int32_t* handle, int32_t) {
    // The flags select link options of real hardware; the simulation has none.
    return Guarded("OpenDeviceEx", [&] { return Simulator::instance().open(path, handle); });
}

KORVHW_EXPORT int32_t KORVHW_CALL CloseDevice(int32_t handle) {
    return Guarded("CloseDevice", [&] { return Simulator::instance().close(handle); });
}

KORVHW_EXPORT int32_t KORVHW_CALL GetParam(int32_t handle, int32_t id, void* buffer, int32_t size) {
    return OnDevice("GetParam", handle, [&](Device& d, double now) {
        korvsim::ParamValue value;
        const int32_t result = d.getParam(now, id, value);
        return result != korvsim::kOk ? result : korvsim::EncodeParam(id, value, buffer, size);
    });
}

KORVHW_EXPORT int32_t KORVHW_CALL SetParam(int32_t handle, int32_t id, const void* buffer,
                                           int32_t size) {
    return OnDevice("SetParam", handle, [&](Device& d, double now) {
        if (const int32_t check = d.checkId(id); check != korvsim::kOk)
            return check;
        korvsim::ParamValue value;
        const int32_t decoded = korvsim::DecodeParam(id, buffer, size, value);
        return decoded != korvsim::kOk ? decoded : d.setParam(now, id, value);
    });
}

KORVHW_EXPORT int32_t KORVHW_CALL StartAcquisition(int32_t handle) {
    return OnDevice("StartAcquisition", handle, [](Device& d, double now) { return d.start(now); });
}

KORVHW_EXPORT int32_t KORVHW_CALL StopAcquisition(int32_t handle) {
    return OnDevice("StopAcquisition", handle, [](Device& d, double now) { return d.stop(now); });
}

KORVHW_EXPORT int32_t KORVHW_CALL ClearAll(int32_t handle) {
    return OnDevice("ClearAll", handle,
                    [](Device& d, double now) { return d.clear(now, true, true); });
}

KORVHW_EXPORT int32_t KORVHW_CALL ClearMemory(int32_t handle) {
    return OnDevice("ClearMemory", handle,
                    [](Device& d, double now) { return d.clear(now, true, false); });
}

KORVHW_EXPORT int32_t KORVHW_CALL ClearTime(int32_t handle) {
    return OnDevice("ClearTime", handle,
                    [](Device& d, double now) { return d.clear(now, false, true); });
}

KORVHW_EXPORT int32_t KORVHW_CALL RestoreDefaults(int32_t handle) {
    return OnDevice("RestoreDefaults", handle,
                    [](Device& d, double now) { return d.restoreDefaults(now); });
}

KORVHW_EXPORT int32_t KORVHW_CALL SaveSettings(int32_t handle) {
    return OnDevice("SaveSettings", handle, [](Device& d, double) { return d.saveSettings(); });
}

KORVHW_EXPORT int32_t KORVHW_CALL GetAcquisitionStatus(int32_t handle, int32_t* status) {
    return Guarded("GetAcquisitionStatus",
                   [&] { return Simulator::instance().pollStatus(handle, status); });
}

KORVHW_EXPORT int32_t KORVHW_CALL ReadSpectrum(int32_t handle, int32_t* counts, int32_t* channels,
                                               float* realTime, float* liveTime) {
    return OnDevice("ReadSpectrum", handle, [&](Device& d, double now) {
        if (!counts || !channels || !realTime || !liveTime)
            return korvsim::kInvalidArgument;
        return d.readSpectrum(now, counts, *channels, *realTime, *liveTime);
    });
}

KORVHW_EXPORT int32_t KORVHW_CALL ArmScope(int32_t handle) {
    return OnDevice("ArmScope", handle, [](Device& d, double now) { return d.armScope(now); });
}

KORVHW_EXPORT int32_t KORVHW_CALL GetScopeStatus(int32_t handle, int32_t* status) {
    return OnDevice("GetScopeStatus", handle, [&](Device& d, double now) {
        return status ? d.scopeStatus(now, *status) : korvsim::kInvalidArgument;
    });
}

KORVHW_EXPORT int32_t KORVHW_CALL ReadScope(int32_t handle, int16_t* samples) {
    return OnDevice("ReadScope", handle, [&](Device& d, double now) {
        return samples ? d.readScope(now, samples) : korvsim::kInvalidArgument;
    });
}
