#include "device/BatchSettings.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "base/DateTime.h"
#include "base/NumberText.h"
#include "base/TextTrim.h"
#include "device/ExternalProcessing.h"

namespace vexo {
namespace {

const char* const kFolderMessage =
    "Please enter an existing subdirectory to store the spectra of the Batch";
const char* const kFolderMissingMessage = "Sub-directory not found";
const char* const kCountMessage =
    "Please enter a value for the number of measurements in the Batch";
const char* const kWaitMessage =
    "Please enter a value for the waiting interval time between measurements in the Batch";
const char* const kSampleIdMessage =
    "The sample ID goes into the file names and must not contain \"/\", \"\\\" or \"..\"";
const char* const kTagMessage =
    "The tag goes into the file names and must not contain \"/\", \"\\\" or \"..\"";

std::string Trimmed(const std::string& text) {
    return std::string(TrimBlanks(text));
}

// A whole number of digits only (the fields filter other keys) within 0..maximum.
std::optional<int64_t> WholeNumber(const std::string& text, int64_t maximum) {
    const std::string t = Trimmed(text);
    if (t.empty() || t.size() > 10)
        return std::nullopt;
    int64_t value = 0;
    for (char c : t) {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = value * 10 + (c - '0');
    }
    if (value > maximum)
        return std::nullopt;
    return value;
}

bool FolderExists(const std::string& folder) {
    std::error_code ec;
    return std::filesystem::is_directory(std::filesystem::path(folder), ec);
}

std::optional<BatchFieldError> CheckCount(const BatchWindowFields& f) {
    if (f.untilStop)
        return std::nullopt;
    const auto n = WholeNumber(f.count, 32767);
    if (!n || *n < 1)
        return BatchFieldError{BatchField::Count, kCountMessage};
    return std::nullopt;
}

std::optional<BatchFieldError> CheckWait(const BatchWindowFields& f) {
    if (f.waitChecked && !WholeNumber(f.wait, 2147483647))
        return BatchFieldError{BatchField::Wait, kWaitMessage};
    return std::nullopt;
}

// A name part that would lead out of the batch folder.
bool LeavesFolder(const std::string& part) {
    return part.find_first_of("/\\") != std::string::npos || part.find("..") != std::string::npos;
}

std::optional<BatchFieldError> CheckNames(const BatchWindowFields& f) {
    if (f.nameSampleId && LeavesFolder(f.sampleId))
        return BatchFieldError{BatchField::SampleId, kSampleIdMessage};
    if (f.nameTag && LeavesFolder(f.tag))
        return BatchFieldError{BatchField::Tag, kTagMessage};
    return std::nullopt;
}

} // namespace

std::string BatchFileName(const BatchSettings& settings, const std::string& sampleId, int16_t index,
                          double now) {
    std::string name = WithSeparator(settings.szBatchDir);
    name += settings.bNameSampleID ? sampleId + "_" : std::string("Vexo_");
    if (settings.bNameTimeDate)
        name += FormatSerial(now, "yyyymmdd") + "_" + FormatSerial(now, "HhNnSs") + "_";
    if (settings.bNameTag)
        name += settings.szBatchTag + "_";
    char counter[16];
    std::snprintf(counter, sizeof(counter), "%04d", static_cast<int>(index));
    return name + counter + ".SPE";
}

std::optional<BatchFieldError> ValidateBatchField(BatchField field, const BatchWindowFields& f) {
    switch (field) {
    case BatchField::Folder:
        if (Trimmed(f.folder).empty() || !FolderExists(Trimmed(f.folder)))
            return BatchFieldError{BatchField::Folder, kFolderMessage};
        return std::nullopt;
    case BatchField::Count:
        return CheckCount(f);
    case BatchField::Wait:
        return CheckWait(f);
    case BatchField::SampleId:
    case BatchField::Tag:
        return CheckNames(f);
    }
    return std::nullopt;
}

std::optional<BatchFieldError> ValidateBatchStart(const BatchWindowFields& f) {
    const std::string folder = Trimmed(f.folder);
    if (folder.empty())
        return BatchFieldError{BatchField::Folder, kFolderMessage};
    if (!FolderExists(folder))
        return BatchFieldError{BatchField::Folder, kFolderMissingMessage};
    if (auto e = CheckCount(f))
        return e;
    if (auto e = CheckWait(f))
        return e;
    return CheckNames(f);
}

std::string BatchRepeatWarning(const BatchSettings& settings) {
    if (settings.bBatchClear || (!settings.bBatchUntilStop && settings.nBatchCount <= 1))
        return "";
    return "The spectrum is not cleared between measurements: each one after the first starts "
           "at the preset already reached, stops at once and saves the same spectrum again.";
}

BatchSettings BatchSettingsFromFields(const BatchWindowFields& f, BatchSettings base) {
    base.szBatchDir = Trimmed(f.folder);
    if (const auto n = WholeNumber(f.count, 32767))
        base.nBatchCount = static_cast<int16_t>(*n);
    if (const auto w = WholeNumber(f.wait, 2147483647))
        base.lBatchWait = static_cast<int32_t>(*w);
    base.bBatchWait = f.waitChecked;
    base.bBatchUntilStop = f.untilStop;
    base.bNameSampleID = f.nameSampleId;
    base.bNameTag = f.nameTag;
    base.szBatchTag = f.tag;
    return base;
}

std::string BatchPanelText(bool batchOn, bool waiting, float waitRemainingSeconds) {
    if (!batchOn)
        return "BATCH OFF";
    if (waiting)
        return "BATCH ON (Waiting : " + FormatSingle(waitRemainingSeconds, "0.0") + ")";
    return "BATCH ON";
}

std::string BatchCounterText(bool batchOn, int done, bool untilStop, int count) {
    if (!batchOn)
        return "";
    std::string text = "Acq. done: " + std::to_string(done);
    if (!untilStop)
        text += " of " + std::to_string(count);
    return text;
}

} // namespace vexo
