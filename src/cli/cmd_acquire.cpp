// vexo-cli acquire: one measurement on one analyser, driven by the same acquisition
// controller and refresh tick as the desktop, saved as a full spectrum file.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "MeasureSession.h"
#include "base/NumberText.h"
#include "device/AcquisitionController.h"
#include "spectrum/SpectrumFile.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli acquire --device PATH --preset PRESET [--hv on] [--set NAME=VALUE]...\n"
    "                        [--mcs DWELL:LOW:HIGH] --out FILE.spe [--json]\n"
    "\n"
    "Opens the analyser, writes the settings, switches the high voltage on when asked and\n"
    "waits for its ramp, clears, starts, and polls every tick until the device stops;\n"
    "then saves the spectrum as a full spectrum file.\n"
    "  --preset live:S            stop at S seconds of live time\n"
    "           real:S            stop at S seconds of real time\n"
    "           counts:N:F:L      stop at N counts in channels F..L\n"
    "           forever:S         no preset; the command stops after S seconds real time\n"
    "  --set NAME=VALUE           an MCA setting by its record name (lCoarseGain=2,\n"
    "                             sngHighVoltage=700, lChannels=4096 ...)\n"
    "  --mcs DWELL:LOW:HIGH       multichannel scaling: dwell seconds, SCA window\n"
    "  --json                     print the summary as one JSON object\n"
    "The folder of FILE must exist and be writable; it is checked before measuring.\n"
    "The command refuses to start (exit 1) when the analyser does not hold the preset or\n"
    "mode asked for, and warns about each --set value it refused. Ctrl-C or SIGTERM stops\n"
    "the measurement and closes the analyser without saving (exit 130 or 143).\n"
    "Progress goes to stderr. VEXO_TICK_MS sets the tick's wall time (default 500;\n"
    "0 for a simulated analyser on a step clock).";

struct Options {
    DeviceOptions device;
    std::string out;
    bool json = false;
};

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    auto take = [&](const std::string& arg, ArgCursor& cursor) {
        if (ParseDeviceOption(arg, cursor, o.device))
            return true;
        if (arg == "--out" && !cursor.done())
            o.out = cursor.next();
        else if (arg == "--json")
            o.json = true;
        else
            return false;
        return true;
    };
    ParseArgs(args, take, "unknown or incomplete argument");
    if (o.device.device.empty())
        throw UsageError{"--device PATH is required"};
    if (!o.device.preset)
        throw UsageError{"--preset is required"};
    if (o.out.empty())
        throw UsageError{"--out FILE is required"};
    return o;
}

// The folder `file` goes into exists and takes a new file: checked before measuring, so
// that a bad --out does not throw the measurement away.
void RequireWritableFolder(const std::string& file) {
    namespace fs = std::filesystem;
    const fs::path path(file);
    const fs::path folder = path.parent_path().empty() ? fs::path(".") : path.parent_path();
    std::error_code ec;
    if (!fs::is_directory(folder, ec))
        throw Failure{"the folder of --out does not exist: " + folder.string()};
    if (fs::is_directory(path, ec))
        throw Failure{"--out names a folder: " + file};
    const fs::path probe =
        folder / (".vexo-probe-" +
                  std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
    const bool writable = static_cast<bool>(std::ofstream(probe));
    fs::remove(probe, ec);
    if (!writable)
        throw Failure{"cannot write in the folder of --out: " + folder.string()};
}

// Ticks until the device stops by itself, or until the forever time has passed (then
// the command stops it). False when the device was lost on the way.
bool Measure(MeasureSession& session, AcquisitionController& acq, bool& lost) {
    const PresetChoice preset = *session.options().preset;
    acq.clear();
    if (!acq.start())
        return false;
    for (long tick = 1; acq.bAcqActive(); ++tick) {
        session.pacer().wait();
        ThrowIfInterrupted();
        acq.tick();
        if (lost)
            return false;
        FailWhenSilent(acq);
        if (tick % 10 == 0)
            std::fprintf(stderr, "%s  %s\n", acq.panelTexts().status.c_str(),
                         acq.panelTexts().elapsed.c_str());
        if (preset.kind == PresetChoice::Kind::Forever && acq.bAcqActive() &&
            session.document().sngRealTime >= preset.seconds) {
            acq.stop(); // the final read below takes the counts up to this moment
        }
    }
    return !lost;
}

void PrintSummary(const AcquisitionController& acq, const SpectrumDocument& doc,
                  const std::string& file, bool json) {
    const AcquisitionReadings& r = acq.readings();
    if (json) {
        nlohmann::ordered_json o;
        o["live"] = doc.sngLiveTime;
        o["real"] = doc.sngRealTime;
        o["deadTimePercent"] = r.deadTimePercent;
        o["countRate"] = r.countRate;
        o["inputCountRate"] = r.inputCountRate ? nlohmann::ordered_json(*r.inputCountRate)
                                               : nlohmann::ordered_json(nullptr);
        o["channels"] = doc.lChannels;
        o["file"] = file;
        std::printf("%s\n", o.dump(2).c_str());
        return;
    }
    std::printf("%s\n%s\n%s\n", acq.panelTexts().elapsed.c_str(),
                acq.panelTexts().countRate.c_str(), acq.panelTexts().icr.c_str());
    std::printf("channels = %d\nfile = %s\n", doc.lChannels, file.c_str());
}

int Run(const std::vector<std::string>& args) {
    const Options o = ParseOptions(args);
    RequireWritableFolder(o.out);
    CatchInterrupts();
    MeasureSession session(o.device);
    session.applySettings();
    bool lost = false;
    AcquisitionHooks hooks;
    hooks.connectionLost = [&lost] { lost = true; };
    AcquisitionController acq(session.library(), session.document(), session.rois(),
                              session.messages(), hooks);
    acq.deviceConnected();
    try {
        if (!Measure(session, acq, lost))
            throw Failure{lost ? "the device was lost during the measurement; nothing was saved"
                               : "the measurement could not be started"};
    } catch (const Interrupted&) {
        std::fprintf(stderr, "the measurement was stopped; nothing was saved\n");
        throw;
    }
    if (!acq.readFinalSpectrum())
        throw Failure{FinalReadFailedText(acq.lastReadError(), o.out)};
    if (!acq.panelTexts().notice.empty())
        std::fprintf(stderr, "warning: %s\n", acq.panelTexts().notice.c_str());
    std::string error;
    if (!bSaveFullSpectrum(session.document(), o.out, &error))
        throw Failure{"Error saving file: " + error};
    PrintSummary(acq, session.document(), o.out, o.json);
    return kExitOk;
}

const RegisterCommand kRegister("acquire", {"measure one spectrum and save it", kUsage, Run});

} // namespace
} // namespace vexo::cli
