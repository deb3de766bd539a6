// One refresh tick of the simulated analyser as the program drives it: a status
// poll (which moves the step clock by 500 ms) and a spectrum read, at 100,000
// counts/s into 16,384 channels. Target: 1 ms or less per tick.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "KorvhwApi.h"

namespace {

class SimulatedAnalyser {
public:
    SimulatedAnalyser()
        : m_dir(std::filesystem::temp_directory_path() /
                ("vexo-bench-korvhw-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(m_dir);
        std::ofstream(m_dir / "KORVHW.ini", std::ios::binary)
            << "[Simulator]\r\nSeed=1\r\nClock=step\r\nStepSeconds=0.5\r\nSettingsDir="
            << m_dir.string() << "\r\n[Device1]\r\nSerial=10000001\r\nPath=BENCH\r\n"
            << "Sources=Cs-137:99000\r\nNoiseRate=1000\r\nHVOnAtPowerUp=1\r\nHVRampSeconds=0\r\n";
        setenv("VEXO_SIM_CONFIG", (m_dir / "KORVHW.ini").c_str(), 1);
        m_lib = dlopen(VEXO_BIN_DIR "/libKORVHW.so", RTLD_NOW | RTLD_LOCAL);
        if (!m_lib) {
            m_error = dlerror();
            return;
        }
        m_status = reinterpret_cast<GetAcquisitionStatus_t>(dlsym(m_lib, "GetAcquisitionStatus"));
        m_read = reinterpret_cast<ReadSpectrum_t>(dlsym(m_lib, "ReadSpectrum"));
        m_close = reinterpret_cast<CloseDevice_t>(dlsym(m_lib, "CloseDevice"));
        auto find = reinterpret_cast<FindDevicesEx_t>(dlsym(m_lib, "FindDevicesEx"));
        auto open = reinterpret_cast<OpenDevice_t>(dlsym(m_lib, "OpenDevice"));
        auto set = reinterpret_cast<SetParam_t>(dlsym(m_lib, "SetParam"));
        auto start = reinterpret_cast<HandleOnly_t>(dlsym(m_lib, "StartAcquisition"));
        if (!m_status || !m_read || !m_close || !find || !open || !set || !start) {
            m_error = "libKORVHW.so lacks an export";
            return;
        }
        find(0, 50, 1);
        if (open("BENCH", &m_handle) != 0) {
            m_error = "OpenDevice failed";
            return;
        }
        const int32_t channels = 16384, noPreset = 0;
        set(m_handle, 6, &channels, 4);
        set(m_handle, 30, &noPreset, 4);
        start(m_handle);
    }
    ~SimulatedAnalyser() {
        if (m_handle != 0)
            m_close(m_handle);
        unsetenv("VEXO_SIM_CONFIG");
        std::error_code ec;
        std::filesystem::remove_all(m_dir, ec);
    }

    const std::string& error() const { return m_error; }
    // One tick; returns false when the library reports an error.
    bool tick(std::vector<int32_t>& counts, float& realTime) {
        int32_t status = 0, channels = 0;
        float liveTime = 0.0f;
        return m_status(m_handle, &status) == 0 && status == 1 &&
               m_read(m_handle, counts.data(), &channels, &realTime, &liveTime) == 0 &&
               channels == 16384;
    }

private:
    std::filesystem::path m_dir;
    void* m_lib = nullptr;
    std::string m_error;
    int32_t m_handle = 0;
    GetAcquisitionStatus_t m_status = nullptr;
    ReadSpectrum_t m_read = nullptr;
    CloseDevice_t m_close = nullptr;
};

void BM_KorvhwTick100kcps16kChannels(benchmark::State& state) {
    SimulatedAnalyser analyser;
    if (!analyser.error().empty()) {
        state.SkipWithError(analyser.error().c_str());
        return;
    }
    std::vector<int32_t> counts(KORVHW_SPECTRUM_SLOTS + 1);
    float realTime = 0.0f;
    for (auto _ : state) {
        if (!analyser.tick(counts, realTime)) {
            state.SkipWithError("status poll or spectrum read failed");
            return;
        }
        benchmark::DoNotOptimize(counts.data());
    }
    state.counters["sim_seconds"] = realTime;
}
BENCHMARK(BM_KorvhwTick100kcps16kChannels)->Unit(benchmark::kMicrosecond);

} // namespace
