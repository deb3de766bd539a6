// vexo-cli batch: a batch of measurements, driven by the same batch and acquisition
// controllers as the desktop; prints each saved file.
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "MeasureSession.h"
#include "base/AppDir.h"
#include "device/AcquisitionController.h"
#include "device/BatchController.h"
#include "shell/AppSettings.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli batch --device PATH --preset PRESET --count N --dir DIR\n"
    "                      [--wait SECONDS] [--clear] [--until-stop] [--sample-id ID]\n"
    "                      [--timestamp] [--tag TEXT] [--process] [--appdir DIR]\n"
    "                      [--hv on] [--set NAME=VALUE]... [--mcs DWELL:LOW:HIGH]\n"
    "\n"
    "Runs the batch sequence: each time the device stops at its preset the spectrum is\n"
    "saved in DIR as [ID_|Vexo_][yyyymmdd_HHMMSS_][TEXT_]NNNN.SPE and the next measurement\n"
    "started, until N are saved. Each saved file is printed on stdout.\n"
    "  --preset     live:S, real:S or counts:N:F:L (as for acquire)\n"
    "  --wait S     wait S whole seconds between measurements\n"
    "  --no-clear-first  do not clear the spectrum before the first measurement\n"
    "  --no-clear   do not clear it between measurements (each one after the first\n"
    "               then ends at once at the preset already reached; warned about)\n"
    "  --until-stop ignore --count; runs until interrupted (or 32767 files)\n"
    "  --process    run the external processing command of Vexo.ini after each save\n"
    "  --appdir DIR where Vexo.ini is (default: the application directory); with\n"
    "               --process the batch folder is remembered there as the desktop does\n"
    "The sample ID and the tag may not hold a path separator or \"..\". A measurement\n"
    "whose spectrum cannot be read after it stopped is reported, not saved, and counted\n"
    "as failed. Ctrl-C or SIGTERM (the way to end --until-stop) stops after the file\n"
    "being written, closes the analyser, prints the summary and exits with 130 or 143.\n"
    "Progress goes to stderr. VEXO_TICK_MS sets the tick's wall time (default 500).";

struct Options {
    DeviceOptions device;
    BatchWindowFields fields;
    BatchSettings settings;
    std::string appDir;
};

// Takes `a` (and its value) when it is one of the batch's own options.
bool ParseBatchOption(const std::string& a, ArgCursor& cursor, Options& o) {
    if (a == "--count") {
        o.fields.count = cursor.value(a);
    } else if (a == "--dir") {
        o.fields.folder = cursor.value(a);
    } else if (a == "--wait") {
        o.fields.wait = cursor.value(a);
        o.fields.waitChecked = true;
    } else if (a == "--clear") {
        o.settings.bBatchClear = true; // the default; kept for older scripts
    } else if (a == "--no-clear") {
        o.settings.bBatchClear = false;
    } else if (a == "--no-clear-first") {
        o.settings.bBatchClearFirst = false;
    } else if (a == "--until-stop") {
        o.fields.untilStop = true;
    } else if (a == "--sample-id") {
        o.fields.sampleId = cursor.value(a);
        o.fields.nameSampleId = true;
    } else if (a == "--timestamp") {
        o.settings.bNameTimeDate = true;
    } else if (a == "--tag") {
        o.fields.tag = cursor.value(a);
        o.fields.nameTag = true;
    } else if (a == "--process") {
        o.settings.bBatchProc = true;
    } else if (a == "--appdir") {
        o.appDir = cursor.value(a);
    } else {
        return false;
    }
    return true;
}

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    ParseArgs(args, [&](const std::string& arg, ArgCursor& cursor) {
        return ParseDeviceOption(arg, cursor, o.device) || ParseBatchOption(arg, cursor, o);
    });
    if (o.device.device.empty())
        throw UsageError{"--device PATH is required"};
    if (!o.device.preset || o.device.preset->kind == PresetChoice::Kind::Forever)
        throw UsageError{"--preset live:S, real:S or counts:N:F:L is required"};
    if (o.fields.count.empty() && !o.fields.untilStop)
        throw UsageError{"--count N is required"};
    // The same checks and messages as the batch window's Start button.
    if (const auto e = ValidateBatchStart(o.fields))
        throw UsageError{e->message};
    o.settings = BatchSettingsFromFields(o.fields, o.settings);
    return o;
}

// Runs the timers as the desktop does: the wait timer (when it was already running)
// and the refresh tick, one pass per 500 ms.
int RunSequence(MeasureSession& session, AcquisitionController& acq, BatchController& batch,
                const bool& lost) {
    while (batch.bBatchMode() && !lost) {
        session.pacer().wait();
        ThrowIfInterrupted();
        if (batch.waitTimerEnabled())
            batch.tmrBatchWait();
        acq.tick();
        FailWhenSilent(acq);
    }
    return lost ? kExitFailure : kExitOk;
}

int Run(const std::vector<std::string>& args) {
    Options o = ParseOptions(args);
    if (const std::string warning = BatchRepeatWarning(o.settings); !warning.empty())
        std::fprintf(stderr, "warning: %s\n", warning.c_str());
    CatchInterrupts();
    MeasureSession session(o.device);
    session.applySettings();
    session.document().szSpectrumID = o.fields.sampleId;

    const std::filesystem::path appDir = ResolveAppDir(o.appDir, ExecutableDir());
    auto appSettings = std::make_unique<AppSettings>();
    if (o.settings.bBatchProc && !LoadSettings(*appSettings, appDir, session.messages()))
        throw Failure{"--process needs the settings file " + SettingsFilePath(appDir).string()};

    bool lost = false;
    AcquisitionHooks acqHooks;
    acqHooks.connectionLost = [&lost] { lost = true; };
    AcquisitionController acq(session.library(), session.document(), session.rois(),
                              session.messages(), acqHooks);
    acq.deviceConnected();
    int saved = 0, failed = 0;
    BatchHooks hooks;
    hooks.fileSaved = [&](const std::string& path, bool ok) {
        (ok ? saved : failed)++;
        if (ok)
            std::printf("%s\n", path.c_str());
        std::fflush(stdout);
        if (ok && !acq.panelTexts().notice.empty())
            std::fprintf(stderr, "warning: %s: %s\n", path.c_str(),
                         acq.panelTexts().notice.c_str());
    };
    if (o.settings.bBatchProc) {
        hooks.rememberBatchDir = [&](const std::string& dir) {
            RememberBatchDir(*appSettings, dir, appDir, session.messages());
        };
        hooks.processSettings = [&] { return ProcessSettingsFrom(*appSettings); };
    }
    BatchController batch(acq, ExecutableDir().string(), hooks);
    batch.begin(o.settings);
    const auto summary = [&] {
        std::fprintf(stderr, "%d file(s) saved, %d failed\n", saved, failed);
    };
    int rc = kExitOk;
    try {
        rc = RunSequence(session, acq, batch, lost);
    } catch (const Interrupted&) {
        batch.StopBatch(); // the session stops the acquisition and closes the device
        summary();
        throw;
    }
    summary();
    if (lost)
        throw Failure{"the device was lost during the batch"};
    return failed > 0 ? kExitFailure : rc;
}

const RegisterCommand kRegister("batch", {"run a batch of measurements", kUsage, Run});

} // namespace
} // namespace vexo::cli
