#pragma once
// What the main window, the ROI dialog and vexo-cli show of one ROI: one guarded run of its
// analysis, the read-out texts after it and the rows of the ROI results list.
#include <string>
#include <vector>

#include "roi/clsROI.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

// What one run of bComputeROI gave.
struct RoiAnalysis {
    bool ok = false;     // the analysis returned true and stored its results in the ROI
    std::string error;   // the error's text when the analysis raised; empty otherwise
    int16_t nBkgChn = 0; // background channels on each side, as the analysis set it
    RoiRates rates;      // counts per second, as the analysis left them
};

// Runs bComputeROI on `roi` with the counts and calibration of `doc` and `sTime` seconds
// as the measuring time. An analysis that returns false gives ok = false with an empty
// error; an arithmetic fault or a stray index (OverflowError, FloatingPointError,
// SubscriptError) gives ok = false with the error's text. Never throws for those.
RoiAnalysis AnalyseRoi(clsROI& roi, float sTime, const SpectrumDocument& doc);

// Result of re-analysing one ROI for the main window's read-out.
struct RoiReadout {
    bool ok = false;   // the analysis returned true and stored its results
    std::string error; // the error's text when the analysis raised; empty otherwise
    RoiRates rates;    // counts per second (all 0 unless ok)
    // Read-out texts, filled only when ok (otherwise the window keeps what it showed):
    std::string netArea;  // lNET through FormatAuto
    std::string integral; // lInt through FormatAuto
    std::string netRate;  // net rate "0.0" + " CPS"
    std::string intRate;  // integral rate "0.0" + " CPS"
};

// AnalyseRoi, then the read-out texts when it succeeded.
RoiReadout UpdateCompROI(clsROI& roi, float sTime, const SpectrumDocument& doc);

// One row of the ROI results list: "Category", "Value", "Uncertainty".
struct EditRoiRow {
    std::string category;
    std::string value;
    std::string uncertainty; // empty where no uncertainty is given
};

// The thirteen rows of the results list, from "ROI ID" to "Associate nuclide", with
// values as the properties read them. The uncertainty column gives one-sigma Poisson
// uncertainties, "0.00": integral sqrt(S), total background sqrt(B), net area sqrt(S + B);
// it is empty for every other row and wherever a count is negative.
std::vector<EditRoiRow> EditROIRows(const clsROI& roi);

} // namespace vexo
