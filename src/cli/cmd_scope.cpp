// vexo-cli scope: captures digital-scope traces through the same poll-and-read cycle the
// scope window runs on every refresh tick, and writes them as CSV.
#include <cstdio>
#include <string>
#include <vector>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "MeasureSession.h"
#include "base/TextFile.h"
#include "device/AcquisitionController.h"
#include "device/ScopeController.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli scope --device PATH [--input] [--traces N] --out FILE.csv\n"
    "\n"
    "Reads N traces (default 1) of the digital scope: the filtered signal, or the raw input\n"
    "with --input. The CSV has a header \"sample,trace1,...,traceN\" and one row per\n"
    "sample 0..1024, values as the device gives them (signed 16-bit). The full scale of\n"
    "the device's model is printed on stdout. Gives up after 20 ticks per trace without a\n"
    "new one. VEXO_TICK_MS sets the tick's wall time (default 500).";

struct Options {
    DeviceOptions device;
    bool input = false;
    int traces = 1;
    std::string out;
};

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    auto take = [&](const std::string& a, ArgCursor& cursor) {
        if (a == "--device" && !cursor.done()) {
            o.device.device = cursor.next();
        } else if (a == "--input") {
            o.input = true;
        } else if (a == "--traces" && !cursor.done()) {
            const std::string v = cursor.next();
            if (v.empty() || v.size() > 4 ||
                v.find_first_not_of("0123456789") != std::string::npos || std::stoi(v) < 1)
                throw UsageError{"--traces takes a whole number 1..9999"};
            o.traces = std::stoi(v);
        } else if (a == "--out" && !cursor.done()) {
            o.out = cursor.next();
        } else {
            return false;
        }
        return true;
    };
    ParseArgs(args, take, "unknown or incomplete argument");
    if (o.device.device.empty())
        throw UsageError{"--device PATH is required"};
    if (o.out.empty())
        throw UsageError{"--out FILE is required"};
    return o;
}

void WriteCsv(const std::vector<ScopeTrace>& traces, const std::string& path) {
    TextFileWriter w;
    std::string header = "sample";
    for (std::size_t t = 1; t <= traces.size(); ++t)
        header += ",trace" + std::to_string(t);
    w.line(header);
    for (int i = 0; i < kScopeSamples; ++i) {
        std::string row = std::to_string(i);
        for (const ScopeTrace& t : traces)
            row += "," + std::to_string(t[i]);
        w.line(row);
    }
    std::string error;
    if (!w.save(path, &error))
        throw Failure{"Error saving file: " + error};
}

int Run(const std::vector<std::string>& args) {
    const Options o = ParseOptions(args);
    MeasureSession session(o.device);
    ScopeController scope(session.library(), session.document());
    scope.setSource(o.input ? ScopeSource::Input : ScopeSource::Filtered);
    std::vector<ScopeTrace> traces;
    // The scope rides on the refresh tick, after its status poll, as in the window.
    AcquisitionHooks hooks;
    hooks.scopeCycle = [&] {
        if (scope.DisplayWaveform()) {
            traces.push_back(scope.trace());
            std::fprintf(stderr, "trace %zu of %d\n", traces.size(), o.traces);
        }
    };
    AcquisitionController acq(session.library(), session.document(), session.rois(),
                              session.messages(), hooks);
    for (int idle = 0; static_cast<int>(traces.size()) < o.traces;) {
        const std::size_t before = traces.size();
        session.pacer().wait();
        acq.tick();
        if (session.document().hDevice == 0)
            throw Failure{"the device was lost"};
        idle = traces.size() == before ? idle + 1 : 0;
        if (idle >= 20)
            throw Failure{"no scope trace after 20 ticks"};
    }
    WriteCsv(traces, o.out);
    std::printf("fullScale = %d\nfile = %s\n", scope.fullScale(), o.out.c_str());
    return kExitOk;
}

const RegisterCommand kRegister("scope", {"capture digital-scope traces as CSV", kUsage, Run});

} // namespace
} // namespace vexo::cli
