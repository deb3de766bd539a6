#include "device/ExternalProcessing.h"

#include <filesystem>
#include <system_error>

#include "base/DateTime.h"
#include "base/ProgramLauncher.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

bool EndsInSeparator(const std::string& folder) {
    if (folder.empty())
        return false;
    const char last = folder.back();
#if defined(_WIN32)
    return last == '\\' || last == '/';
#else
    return last == '/';
#endif
}

// Changes the current folder; returns the reason on failure, empty on success.
std::string ChangeFolder(const std::string& folder) {
    std::error_code ec;
    // On Windows a path with a drive part also makes that drive current.
    std::filesystem::current_path(std::filesystem::path(folder), ec);
    return ec ? ec.message() + ": " + folder : std::string{};
}

} // namespace

std::string ReplaceAll(std::string text, std::string_view placeholder,
                       std::string_view replacement) {
    if (placeholder.empty())
        return text;
    for (std::size_t pos = text.find(placeholder); pos != std::string::npos;
         pos = text.find(placeholder, pos + replacement.size()))
        text.replace(pos, placeholder.size(), replacement);
    return text;
}

std::string WithSeparator(std::string folder) {
    if (!folder.empty() && !EndsInSeparator(folder))
        folder.push_back(static_cast<char>(std::filesystem::path::preferred_separator));
    return folder;
}

ProcessPlan PlanProcessing(const ProcessSettings& settings, const std::string& programFolder,
                           double now) {
    ProcessPlan plan;
    plan.dataFolder =
        WithSeparator(settings.szDataDir.empty() ? programFolder : settings.szDataDir);

    std::string name = settings.szFileName.empty() ? "%T" : settings.szFileName;
    const std::string stamp = FormatSerial(now, "yyyymmdd") + "_" + FormatSerial(now, "HhNnSs");
    name = ReplaceAll(name, "%T", stamp);
    if (name.find('.') == std::string::npos)
        name += ".spe";
    plan.fileName = name;
    plan.spectrumPath = plan.dataFolder + name;

    plan.arguments =
        ReplaceAll(ReplaceAll(settings.szArguments, "%F", name), "%D", plan.dataFolder);
    plan.workingFolder = ReplaceAll(settings.szStartupDir, "%D", plan.dataFolder);
    if (plan.workingFolder.empty())
        plan.workingFolder = programFolder;
    plan.commandLine = settings.szProgram + " " + plan.arguments;
    return plan;
}

ProcessOutcome RunExternalProcessing(const SpectrumDocument& doc, const ProcessSettings& settings,
                                     Messages& messages, const std::string& programFolder,
                                     double now) {
    ProcessOutcome outcome;
    if (!settings.bEnableExtProcessing)
        return outcome;
    outcome.plan = PlanProcessing(settings, programFolder, now);
    const ProcessPlan& plan = outcome.plan;

    std::string saveError;
    if (!bSaveFullSpectrum(doc, plan.spectrumPath, &saveError)) {
        messages.critical("Failed to save the sprectrum");
        outcome.status = ProcessStatus::SaveFailed;
        return outcome;
    }

    std::error_code ec;
    const std::filesystem::path previous = std::filesystem::current_path(ec);
    std::string error = ec ? ec.message() : ChangeFolder(plan.workingFolder);
    if (error.empty()) {
        const LaunchResult launch = LaunchProgram(SplitCommandLine(plan.commandLine));
        error = launch.started ? ChangeFolder(previous.string()) : launch.error;
    }
    if (!error.empty()) {
        // The folder stays where the failure left it; the next run sets its own.
        messages.critical("Failed to execute application: " + error);
        outcome.status = ProcessStatus::LaunchFailed;
        return outcome;
    }
    outcome.status = ProcessStatus::Started;
    return outcome;
}

} // namespace vexo
