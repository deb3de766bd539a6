#include "roi/RoiReadout.h"

#include <cmath>
#include <string>

#include "base/NumberText.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

std::string RateText(float cps) {
    return FormatSingle(cps, "0.0") + " CPS";
}

// One-sigma Poisson uncertainty of a count; empty when the count cannot be one.
std::string PoissonSigma(double counts) {
    if (counts < 0.0)
        return "";
    return FormatNumber(std::sqrt(counts), "0.00");
}

} // namespace

RoiAnalysis AnalyseRoi(clsROI& roi, float sTime, const SpectrumDocument& doc) {
    RoiAnalysis a;
    // An arithmetic fault in one ROI must not end the refresh of the main window or the
    // analysis of the other ROIs: each documented error becomes the analysis's error text
    // for the caller to show.
    try {
        a.ok = roi.bComputeROI(sTime, a.nBkgChn, doc.lCounts.data(), doc.lCounts.size(),
                               doc.calibration, a.rates);
    } catch (const OverflowError& e) {
        a.error = e.what();
    } catch (const FloatingPointError& e) {
        a.error = e.what();
    } catch (const SubscriptError& e) {
        a.error = e.what();
    }
    return a;
}

RoiReadout UpdateCompROI(clsROI& roi, float sTime, const SpectrumDocument& doc) {
    const RoiAnalysis a = AnalyseRoi(roi, sTime, doc);
    RoiReadout out;
    out.ok = a.ok;
    out.error = a.error;
    if (!out.ok)
        return out; // the rates stay 0
    out.rates = a.rates;
    out.netArea = FormatAuto(roi.lNET());
    out.integral = FormatAuto(roi.lInt());
    out.netRate = RateText(out.rates.sNetRate);
    out.intRate = RateText(out.rates.sIntRate);
    return out;
}

std::vector<EditRoiRow> EditROIRows(const clsROI& roi) {
    const double S = roi.lInt();
    const double B = roi.lBkgIntVal();
    const std::string netSigma = (S < 0.0 || B < 0.0) ? "" : PoissonSigma(S + B);
    return {
        {"ROI ID", roi.vntID(), ""},
        {"Integral", std::to_string(roi.lInt()), PoissonSigma(S)},
        {"Total background", std::to_string(roi.lBkgIntVal()), PoissonSigma(B)},
        // The property reads the background per channel as a whole number.
        {"Background per channel", FormatNumber(roi.sBkgVal(), "0.00"), ""},
        {"Net area", std::to_string(roi.lNET()), netSigma},
        {"Centroid", FormatSingle(roi.sCentCh(), "0.00"), ""},
        {"Centroid in energy", FormatSingle(roi.sCentEn(), "0.00"), ""},
        {"Estimated net intensity", FormatSingle(roi.sCentInt(), "0.00"), ""},
        {"Maximum counts in channels", std::to_string(roi.lMax()), ""},
        {"FWHM in channels", FormatSingle(roi.sFWHMch(), "0.00"), ""},
        {"FWHM in energy", FormatSingle(roi.sFWHMen(), "0.00"), ""},
        {"FWHM in percentage", FormatSingle(roi.sFWHMp(), "0.00") + "%", ""},
        {"Associate nuclide", roi.szIdNuc(), ""},
    };
}

} // namespace vexo
