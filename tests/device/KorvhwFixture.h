#pragma once
// Test harness for the simulated analyser: loads the built libKORVHW.so with
// dlopen, resolves its exports, and points it at a configuration written into a
// scratch folder. The library stays loaded for the whole test run; it rereads its
// configuration on a discovery restart or an open while no device is open, so each
// test gets the devices of its own file as long as it closes what it opened.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <string>
#include <vector>

#include "KorvhwApi.h"
#include "TestSupport.h"

namespace vexo::test {

struct KorvhwLib {
    void* handle = nullptr;
    std::string error;
    FindDevicesEx_t FindDevicesEx = nullptr;
    FindDevices_t FindDevices = nullptr;
    GetDeviceInfo_t GetDeviceInfo = nullptr;
    OpenDevice_t OpenDevice = nullptr;
    OpenDeviceEx_t OpenDeviceEx = nullptr;
    CloseDevice_t CloseDevice = nullptr;
    GetParam_t GetParam = nullptr;
    SetParam_t SetParam = nullptr;
    HandleOnly_t StartAcquisition = nullptr, StopAcquisition = nullptr, ClearAll = nullptr,
                 ClearMemory = nullptr, ClearTime = nullptr, RestoreDefaults = nullptr,
                 SaveSettings = nullptr, ArmScope = nullptr;
    GetAcquisitionStatus_t GetAcquisitionStatus = nullptr;
    ReadSpectrum_t ReadSpectrum = nullptr;
    GetScopeStatus_t GetScopeStatus = nullptr;
    ReadScope_t ReadScope = nullptr;

    static KorvhwLib& Get();
};

// One spectrum read-out.
struct Readout {
    int32_t status = 0;
    std::vector<int32_t> counts;
    int32_t channels = 0;
    float realTime = 0.0f;
    float liveTime = 0.0f;
    long long total() const;
    // Channel of the largest count in [first, last].
    int32_t peakChannel(int32_t first, int32_t last) const;
    long long sum(int32_t first, int32_t last) const;
};

class KorvhwTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Writes KORVHW.ini into the scratch folder: a step-clock [Simulator] section
    // (seed 7, 0.5 s per status poll, settings in the scratch folder) followed by
    // extra, and makes the library use it.
    void UseConfig(const std::string& extra, const std::string& simulatorKeys = "");
    // Restarts discovery, opens path and remembers the handle for TearDown.
    int32_t Open(const std::string& path);
    void Close(int32_t handle);

    int32_t GetInt(int32_t handle, int32_t id, int32_t& value);
    int32_t SetInt(int32_t handle, int32_t id, int32_t value);
    int32_t SetFloat(int32_t handle, int32_t id, float value);
    int32_t GetFloat(int32_t handle, int32_t id, float& value);
    std::string GetText(int32_t handle, int32_t id, int32_t* status = nullptr);
    int32_t Status(int32_t handle);
    // Polls the status until it reads 0 (returns the number of polls) or gives up
    // after maxPolls (returns -1).
    int32_t PollUntilStopped(int32_t handle, int32_t maxPolls);
    Readout Read(int32_t handle);

    KorvhwLib& lib() { return KorvhwLib::Get(); }
    TempDir m_dir;
    std::vector<int32_t> m_open;
};

// A [DeviceN] section with the usual keys; extra lines are added verbatim.
std::string DeviceSection(int index, const std::string& serial, const std::string& path,
                          const std::string& extra = "");

} // namespace vexo::test
