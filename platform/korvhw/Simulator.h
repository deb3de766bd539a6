#pragma once
// The library's one instance: the configuration, the simulated clock, the devices
// and the open handles. All entry points lock it, so the library may be called
// from any thread (the program calls it from one).
//
// The configuration is (re)read on FindDevices/FindDevicesEx with restart and on
// OpenDevice, when no device is open and the file's path or text has changed; a
// process that switches VEXO_SIM_CONFIG between tests gets fresh devices.
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Device.h"
#include "SimClock.h"
#include "SimConfig.h"

namespace korvsim {

struct DeviceInfoRow {
    std::string path; // bare path as listed; OpenDevice also accepts it with its prefix
    std::string name;
    std::string serial;
    int32_t type = 0;
};

class Simulator {
public:
    static Simulator& instance();

    // Progressive search: after a restart, each call finds discoveryPerCall more
    // devices. Returns the number found so far (at most maxDevices), or
    // kInvalidArgument for maxDevices < 1. findAll finds everything at once.
    int32_t findDevices(int32_t maxDevices, bool restart, bool findAll);
    int32_t deviceInfo(int32_t index, DeviceInfoRow& row);
    int32_t open(const char* path, int32_t* handle);
    int32_t close(int32_t handle);

    // Runs op(device, now) for an open handle: kInvalidHandle for an unknown one,
    // kConnectionClosed once the device has dropped its connection.
    template <class Op> int32_t withDevice(int32_t handle, Op op) {
        std::lock_guard<std::mutex> lock(m_mutex);
        Device* device = find(handle);
        if (!device)
            return kInvalidHandleCode;
        const double now = m_clock.now();
        if (device->lost(now))
            return kConnectionClosedCode;
        return op(*device, now);
    }
    // The status poll is the step clock's tick.
    int32_t pollStatus(int32_t handle, int32_t* status);

private:
    static constexpr int32_t kInvalidHandleCode = -15;
    static constexpr int32_t kConnectionClosedCode = -9;

    Simulator();
    Device* find(int32_t handle);
    void reloadIfChanged();
    void install(const SimConfig& config);

    std::mutex m_mutex;
    SimClock m_clock;
    SimConfig m_config;
    bool m_loaded = false;
    std::string m_configKey; // path and text the devices were built from
    std::vector<std::unique_ptr<Device>> m_devices;
    std::map<int32_t, Device*> m_handles;
    int32_t m_nextHandle = 0x4B0001;
    int32_t m_found = 0;
};

} // namespace korvsim
