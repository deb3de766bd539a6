#pragma once
// What a batch is asked to do, how its files are named, and the batch window's checks
// of its field texts (the window shows the answer; the rules live here).
#include <cstdint>
#include <optional>
#include <string>

namespace vexo {

// The batch window's choices.
struct BatchSettings {
    std::string szBatchDir;       // folder for the spectra
    int16_t nBatchCount = 1;      // number of measurements (ignored with bBatchUntilStop)
    int32_t lBatchWait = 0;       // waiting interval, whole seconds
    bool bBatchWait = false;      // wait between measurements
    bool bBatchClear = true;      // clear the spectrum between measurements
    bool bBatchClearFirst = true; // clear the spectrum before the first measurement
    bool bBatchProc = false;      // run the external processing command after each save
    bool bBatchUntilStop = false; // run until the user stops
    bool bNameTimeDate = false;   // "yyyymmdd_HHMMSS_" in the file name
    bool bNameTag = false;        // szBatchTag + "_" in the file name
    bool bNameSampleID = false;   // the spectrum ID + "_" instead of "Vexo_"
    std::string szBatchTag;
};

// File name of measurement `index` (counted from 1): the folder with the native
// separator appended when it is not empty and lacks one; the sample ID + "_" or
// "Vexo_"; the saving time "yyyymmdd_HHMMSS_" (serial date-time `now`) when asked; the
// tag + "_" when asked; the index as at least four digits; ".SPE".
std::string BatchFileName(const BatchSettings& settings, const std::string& sampleId, int16_t index,
                          double now);

// The batch window's fields, as typed.
struct BatchWindowFields {
    std::string folder;
    std::string count;
    std::string wait;
    bool waitChecked = false;
    bool untilStop = false;
    std::string sampleId; // the spectrum ID, checked when nameSampleId is set
    bool nameSampleId = false;
    std::string tag; // checked when nameTag is set
    bool nameTag = false;
};

enum class BatchField { Folder, Count, Wait, SampleId, Tag };

// The first problem found, for a message box titled "Batch Settings" (exclamation icon)
// with the focus put back on `field`.
struct BatchFieldError {
    BatchField field;
    std::string message;
};

constexpr const char* kBatchSettingsTitle = "Batch Settings";

// Check of one field when the user leaves it. The folder must name an existing folder;
// the count must be a whole number 1..32767 unless the batch runs until stopped; the
// wait must be a whole number 0..2147483647 when waiting is ticked.
std::optional<BatchFieldError> ValidateBatchField(BatchField field, const BatchWindowFields& f);

// Check of the whole window when Start is pressed: folder, count, wait, then the sample
// ID and tag that go into the file names (neither may hold a path separator or "..",
// which would put files outside the folder). An empty folder and a folder that does not
// exist get different messages here.
std::optional<BatchFieldError> ValidateBatchStart(const BatchWindowFields& f);

// The warning given before a batch that would repeat a reached preset: without clearing
// between measurements the device is still at its preset when the next one starts, so it
// stops at once and every later file holds the first spectrum again. Empty when the
// settings clear between measurements or the batch has only one.
std::string BatchRepeatWarning(const BatchSettings& settings);

// Settings from fields that passed ValidateBatchStart (folder, count, wait, naming
// choices and tag); the other members of `base` (clear and process flags) are kept.
// Unparsable numbers keep base values.
BatchSettings BatchSettingsFromFields(const BatchWindowFields& f, BatchSettings base);

// Batch panel of the status bar: "BATCH ON (Waiting : 2.5)", "BATCH ON" or "BATCH OFF".
std::string BatchPanelText(bool batchOn, bool waiting, float waitRemainingSeconds);
// Batch counter panel: "Acq. done: 3 of 10", "Acq. done: 3" (endless), or empty when no
// batch runs.
std::string BatchCounterText(bool batchOn, int done, bool untilStop, int count);

} // namespace vexo
