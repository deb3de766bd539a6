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

RoiReadout UpdateCompROI(clsROI& roi, float sTime, const SpectrumDocument& doc) {
    RoiReadout out;
    int16_t nBkgChn = 0;
    // An arithmetic fault in one ROI must not end the refresh of the main window: each
    // documented error is turned into the read-out's error text for the caller to show.
    try {
        out.ok = roi.bComputeROI(sTime, nBkgChn, doc.lCounts.data(), doc.lCounts.size(),
                                 doc.calibration, out.rates);
    } catch (const OverflowError& e) {
        out.error = e.what();
    } catch (const FloatingPointError& e) {
        out.error = e.what();
    } catch (const SubscriptError& e) {
        out.error = e.what();
    }
    if (!out.ok) {
        out.rates = {};
        return out;
    }
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
