// vexo-cli params: connects to one analyser as the Connect command does, reads its
// identity and every parameter, prints the device state and MCA settings, and closes it.
#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <nlohmann/json.hpp>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "base/Messages.h"
#include "base/NumberText.h"
#include "device/ConnectionController.h"
#include "device/DeviceLibrary.h"
#include "device/DeviceSearch.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli params --device PATH [--json]\n"
    "\n"
    "Opens the analyser at PATH, reads its identity and every parameter, and prints\n"
    "them with the record's field names; then closes it.\n"
    "  --json  print one JSON object instead of 'name = value' lines\n"
    "PATH is a Path of 'vexo-cli devices' (\"USB:KORV-10-001\", as \"DetectorPath\" keeps\n"
    "it) or the bare library path (its Location).\n"
    "Device errors are reported on stderr as the program's messages.";

struct Options {
    std::string device;
    bool json = false;
};

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    ParseArgs(args, [&](const std::string& arg, ArgCursor& cursor) {
        if (arg == "--device")
            o.device = cursor.value(arg);
        else if (arg == "--json")
            o.json = true;
        else
            return false;
        return true;
    });
    if (o.device.empty())
        throw UsageError{"--device PATH is required"};
    return o;
}

using FieldValue = std::variant<bool, int64_t, float, std::array<double, 3>, std::string>;
struct Field {
    const char* name;
    FieldValue value;
};

// Every device field and MCA setting of the record, in the order read-all fills them.
std::vector<Field> RecordFields(const SpectrumDocument& d) {
    return {
        {"szDevicePath", d.szDevicePath},
        {"hDevice", int64_t{d.hDevice}},
        {"bConnected", d.bConnected},
        {"szDeviceName", d.szDeviceName},
        {"szDeviceSerial", d.szDeviceSerial},
        {"szFirmwareVersion", d.szFirmwareVersion},
        {"nFwMajor", int64_t{d.nFwMajor}},
        {"nFwMinor", int64_t{d.nFwMinor}},
        {"szFirmwareDate", d.szFirmwareDate},
        {"szProductionDate", d.szProductionDate},
        {"lCapabilities", int64_t{d.lCapabilities}},
        {"lChannels", int64_t{d.lChannels}},
        {"lMCSMode", int64_t{d.lMCSMode}},
        {"lPresetMode", int64_t{d.lPresetMode}},
        {"lPURGuard", int64_t{d.lPURGuard}},
        {"lTRPGuard", int64_t{d.lTRPGuard}},
        {"lLTTrim", int64_t{d.lLTTrim}},
        {"lAnalogPZ", int64_t{d.lAnalogPZ}},
        {"lBLRRate", int64_t{d.lBLRRate}},
        {"lGPIO1Func", int64_t{d.lGPIO1Func}},
        {"bGPIO1Neg", int64_t{d.bGPIO1Neg}},
        {"lGPIO2Func", int64_t{d.lGPIO2Func}},
        {"bGPIO2Neg", int64_t{d.bGPIO2Neg}},
        {"lHVInhibitEnable", int64_t{d.lHVInhibitEnable}},
        {"bHVInhibitNeg", int64_t{d.bHVInhibitNeg}},
        {"sngPresetTime", d.sngPresetTime},
        {"sngDwellTime", d.sngDwellTime},
        {"lPresetCounts", int64_t{d.lPresetCounts}},
        {"lCoarseGain", int64_t{d.lCoarseGain}},
        {"lFineGain", int64_t{d.lFineGain}},
        {"lDigitalGain", int64_t{d.lDigitalGain}},
        {"lRiseTime", int64_t{d.lRiseTime}},
        {"lFlatTop", int64_t{d.lFlatTop}},
        {"lPoleZero", int64_t{d.lPoleZero}},
        {"lThreshold", int64_t{d.lThreshold}},
        {"lLLD", int64_t{d.lLLD}},
        {"lULD", int64_t{d.lULD}},
        {"lSCALow", int64_t{d.lSCALow}},
        {"lSCAHigh", int64_t{d.lSCAHigh}},
        {"lPresetFirstCh", int64_t{d.lPresetFirstCh}},
        {"lPresetLastCh", int64_t{d.lPresetLastCh}},
        {"lPolarity", int64_t{d.lPolarity}},
        {"lBLR", int64_t{d.lBLR}},
        {"lPUR", int64_t{d.lPUR}},
        {"sngHighVoltage", d.sngHighVoltage},
        {"lHVOn", int64_t{d.lHVOn}},
        {"dDeviceCal", d.dDeviceCal},
        {"lClockHz", int64_t{d.lClockHz}},
        {"sngMaxHV", d.sngMaxHV},
        {"lFineGainMax", int64_t{d.lFineGainMax}},
    };
}

std::string AsText(const FieldValue& value) {
    if (const auto* b = std::get_if<bool>(&value))
        return *b ? "true" : "false";
    if (const auto* i = std::get_if<int64_t>(&value))
        return std::to_string(*i);
    if (const auto* f = std::get_if<float>(&value))
        return ShortestSingleText(*f);
    if (const auto* cal = std::get_if<std::array<double, 3>>(&value))
        return DoubleToText((*cal)[0]) + " " + DoubleToText((*cal)[1]) + " " +
               DoubleToText((*cal)[2]);
    return std::get<std::string>(value);
}

void PrintRecord(const SpectrumDocument& doc, bool json) {
    const std::vector<Field> fields = RecordFields(doc);
    if (!json) {
        for (const Field& f : fields)
            std::printf("%s = %s\n", f.name, AsText(f.value).c_str());
        return;
    }
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    for (const Field& f : fields)
        std::visit([&](const auto& v) { object[f.name] = v; }, f.value);
    std::printf("%s\n", object.dump(2).c_str());
}

int Run(const std::vector<std::string>& args) {
    const Options o = ParseOptions(args);
    DeviceLibraryLoad load = DeviceLibrary::Load();
    if (!load.library)
        throw Failure{load.error};
    auto doc = std::make_unique<SpectrumDocument>(); // the counts array is large
    StderrMessages messages;
    // A remembered detector path opens as the start-up connection opens it: without its
    // type prefix.
    const DetectorPathParts parts = SplitDetectorPath(o.device);
    const std::string libraryPath = parts.path.empty() ? o.device : parts.path;
    std::fprintf(stderr, "opening %s\n", libraryPath.c_str());
    OpenMca(*load.library, *doc, messages, ConnectionHooks{}, libraryPath, std::string(), true);
    if (!doc->bConnected)
        return kExitFailure; // the reason was printed as the program's message
    doc->szDevicePath = o.device;
    PrintRecord(*doc, o.json);
    const int32_t status = CloseMca(*load.library, *doc);
    if (status != 0)
        std::fprintf(stderr, "closing the device: %s\n", ErrorText(status).c_str());
    return kExitOk;
}

const RegisterCommand kRegister("params", {"read every parameter of one analyser", kUsage, Run});

} // namespace
} // namespace vexo::cli
