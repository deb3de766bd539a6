// One refresh tick as the main window runs it, program side included: status poll
// (status word, mode, HV word), the 16,384-channel spectrum read with dead time, count
// rate, input count rate and their texts, 64 ROIs analysed and their read-outs, and the
// `updated` notice. The simulated analyser runs at 100,000 counts/s on a step clock, so
// every tick adds half a second of counts. Target: 1 ms or less per tick.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

#include "base/Messages.h"
#include "device/AcquisitionController.h"
#include "device/ConnectionController.h"
#include "device/DeviceIO.h"
#include "roi/RoiCollection.h"

namespace vexo {
namespace {

// A benchmark has no user: the last message is kept for the error text.
class LastMessage : public Messages {
public:
    MsgAnswer show(const Message& message) override {
        m_last = message.text;
        return MsgAnswer::Ok;
    }
    const std::string& last() const { return m_last; }

private:
    std::string m_last;
};

class TickBench {
public:
    TickBench()
        : m_dir(std::filesystem::temp_directory_path() /
                ("vexo-bench-tick-" + std::to_string(::getpid()))),
          m_doc(std::make_unique<SpectrumDocument>()) {
        std::filesystem::create_directories(m_dir);
        std::ofstream(m_dir / "KORVHW.ini", std::ios::binary)
            << "[Simulator]\r\nSeed=1\r\nClock=step\r\nStepSeconds=0.5\r\nSettingsDir="
            << m_dir.string() << "\r\n[Device1]\r\nSerial=10000001\r\nPath=BENCH\r\n"
            << "Sources=Cs-137:99000\r\nNoiseRate=1000\r\nHVOnAtPowerUp=1\r\nHVRampSeconds=0\r\n";
        setenv("VEXO_SIM_CONFIG", (m_dir / "KORVHW.ini").c_str(), 1);
        DeviceLibraryLoad load = DeviceLibrary::Load(VEXO_BIN_DIR "/libKORVHW.so");
        if (!load.library) {
            m_error = load.error;
            return;
        }
        m_lib = std::move(load.library);
        m_lib->findDevicesEx(0, 50, 1);
        OpenMca(*m_lib, *m_doc, m_messages, {}, "BENCH", "", false);
        if (!m_doc->bConnected) {
            m_error = "OpenDevice failed: " + m_messages.last();
            return;
        }
        m_doc->lChannels = 16384;
        m_doc->lPresetMode = 0; // acquire until stopped
        WriteAllParams(*m_lib, *m_doc);
        for (int i = 0; i < 64; ++i) {
            clsROI roi;
            roi.set_lROILCh(200 * i + 100);
            roi.set_lROIRCh(200 * i + 220);
            m_rois.add(roi);
        }
        AcquisitionHooks hooks;
        hooks.updated = [this](const AcquisitionUpdate& u) { m_complete += u.roisUpdated; };
        m_acq = std::make_unique<AcquisitionController>(*m_lib, *m_doc, m_rois, m_messages, hooks);
        m_acq->deviceConnected();
        if (!m_acq->start())
            m_error = "StartAcquisition failed: " + m_messages.last();
    }
    ~TickBench() {
        if (m_lib && m_doc->hDevice != 0)
            CloseMca(*m_lib, *m_doc);
        unsetenv("VEXO_SIM_CONFIG");
        std::error_code ec;
        std::filesystem::remove_all(m_dir, ec);
    }

    const std::string& error() const { return m_error; }
    AcquisitionController& acquisition() { return *m_acq; }
    long long completeTicks() const { return m_complete; }
    const SpectrumDocument& document() const { return *m_doc; }

private:
    std::filesystem::path m_dir;
    std::unique_ptr<SpectrumDocument> m_doc;
    RoiCollection m_rois;
    LastMessage m_messages;
    std::unique_ptr<DeviceLibrary> m_lib;
    std::unique_ptr<AcquisitionController> m_acq;
    std::string m_error;
    long long m_complete = 0;
};

void BM_RefreshTick16kChannels64Rois(benchmark::State& state) {
    TickBench bench;
    if (!bench.error().empty()) {
        state.SkipWithError(bench.error().c_str());
        return;
    }
    for (auto _ : state) {
        bench.acquisition().tick();
        benchmark::DoNotOptimize(bench.acquisition().panelTexts().elapsed.data());
    }
    if (bench.completeTicks() != static_cast<long long>(state.iterations()))
        state.SkipWithError("a tick did not read the spectrum and analyse the ROIs");
    state.counters["sim_seconds"] = bench.document().sngRealTime;
}
BENCHMARK(BM_RefreshTick16kChannels64Rois)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace vexo
