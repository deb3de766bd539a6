// The harness of the simulated-analyser tests (declared in KorvhwFixture.h).
#include "KorvhwFixture.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace vexo::test {

namespace {

template <class T> void Resolve(KorvhwLib& lib, T& slot, const char* name) {
    slot = reinterpret_cast<T>(dlsym(lib.handle, name));
    if (!slot && lib.error.empty())
        lib.error = std::string("missing export ") + name;
}

} // namespace

KorvhwLib& KorvhwLib::Get() {
    static KorvhwLib lib = [] {
        KorvhwLib l;
        const std::string path = (BinDir() / "libKORVHW.so").string();
        l.handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!l.handle) {
            l.error = dlerror();
            return l;
        }
        Resolve(l, l.FindDevicesEx, "FindDevicesEx");
        Resolve(l, l.FindDevices, "FindDevices");
        Resolve(l, l.GetDeviceInfo, "GetDeviceInfo");
        Resolve(l, l.OpenDevice, "OpenDevice");
        Resolve(l, l.OpenDeviceEx, "OpenDeviceEx");
        Resolve(l, l.CloseDevice, "CloseDevice");
        Resolve(l, l.GetParam, "GetParam");
        Resolve(l, l.SetParam, "SetParam");
        Resolve(l, l.StartAcquisition, "StartAcquisition");
        Resolve(l, l.StopAcquisition, "StopAcquisition");
        Resolve(l, l.ClearAll, "ClearAll");
        Resolve(l, l.ClearMemory, "ClearMemory");
        Resolve(l, l.ClearTime, "ClearTime");
        Resolve(l, l.RestoreDefaults, "RestoreDefaults");
        Resolve(l, l.SaveSettings, "SaveSettings");
        Resolve(l, l.ArmScope, "ArmScope");
        Resolve(l, l.GetAcquisitionStatus, "GetAcquisitionStatus");
        Resolve(l, l.ReadSpectrum, "ReadSpectrum");
        Resolve(l, l.GetScopeStatus, "GetScopeStatus");
        Resolve(l, l.ReadScope, "ReadScope");
        return l;
    }();
    return lib;
}

long long Readout::total() const {
    return std::accumulate(counts.begin(), counts.begin() + channels, 0LL);
}

int32_t Readout::peakChannel(int32_t first, int32_t last) const {
    last = std::min(last, channels - 1);
    const auto begin = counts.begin() + first;
    return first + static_cast<int32_t>(std::max_element(begin, counts.begin() + last + 1) - begin);
}

long long Readout::sum(int32_t first, int32_t last) const {
    last = std::min(last, channels - 1);
    return std::accumulate(counts.begin() + first, counts.begin() + last + 1, 0LL);
}

void KorvhwTest::SetUp() {
    ASSERT_TRUE(lib().error.empty()) << lib().error;
}

void KorvhwTest::TearDown() {
    for (int32_t h : m_open)
        lib().CloseDevice(h);
    m_open.clear();
    unsetenv("VEXO_SIM_CONFIG");
}

void KorvhwTest::UseConfig(const std::string& extra, const std::string& simulatorKeys) {
    std::string text = "[Simulator]\r\nSeed=7\r\nClock=step\r\nStepSeconds=0.5\r\nSettingsDir=" +
                       m_dir.path().string() + "\r\n" + simulatorKeys + "\r\n" + extra;
    WriteBytes(m_dir / "KORVHW.ini", text);
    setenv("VEXO_SIM_CONFIG", (m_dir / "KORVHW.ini").c_str(), 1);
}

int32_t KorvhwTest::Open(const std::string& path) {
    lib().FindDevicesEx(0, 50, 1);
    int32_t handle = 0;
    const int32_t status = lib().OpenDevice(path.c_str(), &handle);
    EXPECT_EQ(status, 0) << "OpenDevice(" << path << ")";
    EXPECT_NE(handle, 0);
    if (status == 0)
        m_open.push_back(handle);
    return handle;
}

void KorvhwTest::Close(int32_t handle) {
    lib().CloseDevice(handle);
    m_open.erase(std::remove(m_open.begin(), m_open.end(), handle), m_open.end());
}

int32_t KorvhwTest::GetInt(int32_t handle, int32_t id, int32_t& value) {
    return lib().GetParam(handle, id, &value, 4);
}

int32_t KorvhwTest::SetInt(int32_t handle, int32_t id, int32_t value) {
    return lib().SetParam(handle, id, &value, 4);
}

int32_t KorvhwTest::SetFloat(int32_t handle, int32_t id, float value) {
    return lib().SetParam(handle, id, &value, 4);
}

int32_t KorvhwTest::GetFloat(int32_t handle, int32_t id, float& value) {
    return lib().GetParam(handle, id, &value, 4);
}

std::string KorvhwTest::GetText(int32_t handle, int32_t id, int32_t* status) {
    char buffer[64] = {};
    const int32_t result = lib().GetParam(handle, id, buffer, sizeof buffer);
    if (status)
        *status = result;
    return std::string(buffer, strnlen(buffer, sizeof buffer));
}

int32_t KorvhwTest::Status(int32_t handle) {
    int32_t word = -1;
    EXPECT_EQ(lib().GetAcquisitionStatus(handle, &word), 0);
    return word;
}

int32_t KorvhwTest::PollUntilStopped(int32_t handle, int32_t maxPolls) {
    for (int32_t poll = 1; poll <= maxPolls; ++poll) {
        int32_t word = -1;
        if (lib().GetAcquisitionStatus(handle, &word) != 0)
            return -1;
        if (word == 0)
            return poll;
    }
    return -1;
}

Readout KorvhwTest::Read(int32_t handle) {
    Readout r;
    r.counts.assign(KORVHW_SPECTRUM_SLOTS + 1, 0);
    r.status = lib().ReadSpectrum(handle, r.counts.data(), &r.channels, &r.realTime, &r.liveTime);
    return r;
}

std::string DeviceSection(int index, const std::string& serial, const std::string& path,
                          const std::string& extra) {
    return "[Device" + std::to_string(index) + "]\r\nSerial=" + serial + "\r\nPath=" + path +
           "\r\nHVRampSeconds=0\r\nHVOnAtPowerUp=1\r\n" + extra + "\r\n";
}

} // namespace vexo::test
