#include "Simulator.h"

#include <cstdio>
#include <string_view>

#include "IniFile.h"
#include "StatusCodes.h"

namespace korvsim {

namespace {

constexpr std::string_view kPrefixes[] = {"HID:", "USB:", "ETH:"};

// Splits an optional type prefix off a path; 0 when there is none.
int32_t SplitPrefix(std::string& path) {
    for (int32_t type = 1; type <= 3; ++type)
        if (path.rfind(kPrefixes[type - 1], 0) == 0) {
            path = Trim(std::string_view(path).substr(4));
            return type;
        }
    return 0;
}

} // namespace

Simulator& Simulator::instance() {
    static Simulator simulator;
    return simulator;
}

Simulator::Simulator() {
    reloadIfChanged();
}

void Simulator::reloadIfChanged() {
    if (!m_handles.empty())
        return; // open handles point into the current devices
    const ConfigLocation where = LocateConfig();
    std::string key = where.path.string();
    key.append(1, '\n').append(where.text);
    if (m_loaded && key == m_configKey)
        return;
    m_loaded = true;
    m_configKey = key;
    SimConfig config = where.text.empty() && where.error.empty() && where.path.empty()
                           ? DefaultConfig()
                           : ParseConfig(where.text);
    if (!where.error.empty())
        config.warnings.insert(config.warnings.begin(),
                               std::string(where.error).append("; built-in devices used"));
    for (const std::string& warning : config.warnings)
        std::fprintf(stderr, "KORVHW: %s: %s\n", where.path.string().c_str(), warning.c_str());
    install(config);
}

void Simulator::install(const SimConfig& config) {
    m_config = config;
    m_clock.configure(config.clockMode, config.stepSeconds, config.speed);
    m_devices.clear();
    m_found = 0;
    for (size_t i = 0; i < config.devices.size(); ++i)
        m_devices.push_back(std::make_unique<Device>(config.devices[i], MixSeed(config.seed, i + 1),
                                                     config.settingsDir));
}

int32_t Simulator::findDevices(int32_t maxDevices, bool restart, bool findAll) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (maxDevices < 1)
        return kInvalidArgument;
    if (restart || findAll) {
        reloadIfChanged();
        m_found = 0;
    }
    const auto total = static_cast<int32_t>(m_devices.size());
    m_found = findAll ? total : std::min(total, m_found + m_config.discoveryPerCall);
    return std::min(m_found, maxDevices);
}

int32_t Simulator::deviceInfo(int32_t index, DeviceInfoRow& row) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (index < 0 || index >= m_found || index >= static_cast<int32_t>(m_devices.size()))
        return kInvalidArgument;
    const DeviceSetup& setup = m_devices[static_cast<size_t>(index)]->setup();
    row = {setup.path, setup.name, setup.serial, setup.type};
    return kOk;
}

int32_t Simulator::open(const char* path, int32_t* handle) {
    if (!path || !handle)
        return kInvalidArgument;
    std::lock_guard<std::mutex> lock(m_mutex);
    reloadIfChanged();
    std::string bare = Trim(path);
    const int32_t prefixType = SplitPrefix(bare);
    for (const auto& device : m_devices) {
        if (device->setup().path != bare)
            continue;
        if (prefixType != 0 && prefixType != device->setup().type)
            return kInvalidDevice; // e.g. "HID:" before the path of a network device
        const int32_t result = device->open(m_clock.now());
        if (result != kOk)
            return result;
        *handle = m_nextHandle++;
        m_handles[*handle] = device.get();
        return kOk;
    }
    return kInvalidDevice;
}

int32_t Simulator::close(int32_t handle) {
    std::lock_guard<std::mutex> lock(m_mutex);
    Device* device = find(handle);
    if (!device)
        return kInvalidHandle;
    const bool wasLost = device->lost(m_clock.now());
    device->close();
    m_handles.erase(handle);
    // The handle is gone either way; a dropped link still reports how it ended.
    return wasLost ? kConnectionClosed : kOk;
}

int32_t Simulator::pollStatus(int32_t handle, int32_t* status) {
    if (!status)
        return kInvalidArgument;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!find(handle))
            return kInvalidHandle;
        m_clock.onStatusPoll();
    }
    return withDevice(handle, [&](Device& d, double now) { return d.status(now, *status); });
}

Device* Simulator::find(int32_t handle) {
    const auto it = m_handles.find(handle);
    return it == m_handles.end() ? nullptr : it->second;
}

} // namespace korvsim
