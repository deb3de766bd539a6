#pragma once
// Tools > Process and the batch's "process after each measurement": save the current
// spectrum under a generated name, then start the configured program on it without
// waiting for it.
#include <string>
#include <string_view>

#include "base/Messages.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

// The "PROCESS" settings, as the settings file holds them.
struct ProcessSettings {
    bool bEnableExtProcessing = false;
    std::string szDataDir;    // empty: the program's own folder
    std::string szFileName;   // name template, may hold "%T"; empty: "%T"
    std::string szProgram;    // executable to start
    std::string szStartupDir; // working folder, may hold "%D"; empty: the program's folder
    std::string szArguments;  // argument template, may hold "%F" and "%D"
};

// Every occurrence of `placeholder` in `text` replaced, matched case-sensitively.
std::string ReplaceAll(std::string text, std::string_view placeholder,
                       std::string_view replacement);

// `folder` with the native separator appended when it is not empty and does not end in
// one already.
std::string WithSeparator(std::string folder);

// What one processing run does, worked out from the settings before anything happens.
struct ProcessPlan {
    std::string dataFolder;    // ends in the separator (unless the program folder is empty)
    std::string fileName;      // without folder
    std::string spectrumPath;  // dataFolder + fileName
    std::string arguments;     // "%F" and "%D" replaced
    std::string workingFolder; // "%D" replaced; the program's folder when empty
    std::string commandLine;   // program + " " + arguments
};

// Builds the plan. `programFolder` is the running executable's folder; `now` is the
// serial date-time used for "%T" (formatted "yyyymmdd" + "_" + "HhNnSs"). A file name
// without any "." gets ".spe" appended.
ProcessPlan PlanProcessing(const ProcessSettings& settings, const std::string& programFolder,
                           double now);

enum class ProcessStatus { Disabled, SaveFailed, LaunchFailed, Started };

struct ProcessOutcome {
    ProcessStatus status = ProcessStatus::Disabled;
    ProcessPlan plan;
};

// Runs the command: nothing when processing is disabled; otherwise saves the spectrum
// with bSaveFullSpectrum (failure: "Failed to save the sprectrum", critical, "Vexo"; the
// program is not started), changes the current folder to the plan's working folder,
// starts the program, and changes back. A launch or folder failure shows "Failed to
// execute application: " + the reason and leaves the current folder as it was when the
// error happened. Never throws.
ProcessOutcome RunExternalProcessing(const SpectrumDocument& doc, const ProcessSettings& settings,
                                     Messages& messages, const std::string& programFolder,
                                     double now);

} // namespace vexo
