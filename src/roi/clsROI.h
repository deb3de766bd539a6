#pragma once
// One region of interest: an inclusive channel interval with its identity and the
// results of its last analysis.
#include <cstdint>
#include <string>

#include "spectrum/EnergyCalibration.h"

namespace vexo {

// Rates handed out by an analysis, in counts per second.
struct RoiRates {
    float sIntRate = 0.0f;
    float sNetRate = 0.0f;
    float sBkgRate = 0.0f;
};

class clsROI {
public:
    // Identity and placement (read/write).
    const std::string& vntID() const { return m_vntID; }
    void set_vntID(std::string id) { m_vntID = std::move(id); }
    int16_t nROIType() const { return m_nROIType; }
    void set_nROIType(int16_t v) { m_nROIType = v; }
    int16_t nROIinPlot() const { return m_nROIinPlot; }
    void set_nROIinPlot(int16_t v) { m_nROIinPlot = v; }
    int32_t lROILCh() const { return m_lROILCh; }
    void set_lROILCh(int32_t v) { m_lROILCh = v; }
    int32_t lROIRCh() const { return m_lROIRCh; }
    void set_lROIRCh(int32_t v) { m_lROIRCh = v; }
    float sROILEn() const { return m_sROILEn; }
    void set_sROILEn(float v) { m_sROILEn = v; }
    float sROIREn() const { return m_sROIREn; }
    void set_sROIREn(float v) { m_sROIREn = v; }
    const std::string& szIdNuc() const { return m_szIdNuc; }
    void set_szIdNuc(std::string v) { m_szIdNuc = std::move(v); }
    int32_t lROIColor() const { return m_lROIColor; }
    void set_lROIColor(int32_t v) { m_lROIColor = v; }

    // Results (read only), as the properties hand them out.
    int32_t lBkgIntVal() const { return m_lBkgIntVal; }
    // Background per channel, rounded to a whole number (ties to even) on reading.
    int32_t sBkgVal() const;
    int32_t lInt() const { return m_lInt; }
    int32_t lNET() const { return m_lNET; }
    int32_t lMax() const { return m_lMax; }
    int16_t nChnMax() const { return m_nChnMax; }
    float sCentCh() const { return m_sCentCh; }
    float sCentEn() const { return m_sCentEn; }
    float sCentInt() const { return m_sCentInt; }
    // The three widths read as 0 unless the stored value is positive.
    float sFWHMp() const { return m_sFWHMp > 0 ? m_sFWHMp : 0.0f; }
    float sFWHMch() const { return m_sFWHMch > 0 ? m_sFWHMch : 0.0f; }
    float sFWHMen() const { return m_sFWHMen > 0 ? m_sFWHMen : 0.0f; }
    // The stored background per channel, before the read rule.
    float sBkgValStored() const { return m_sBkgVal; }

    // Analyses the ROI on `lCounts` (`countsSize` slots, normally 16385, so the upper
    // bound Ub is countsSize - 1 whatever the number of channels in use) with `cal` for
    // energies and `sTime` seconds for rates (0 or less: all rates 0). `nBkgChn` is set to
    // 2 and `rates.sIntRate` to 0 first; the three rates are handed out only on success.
    // Returns false when the ROI does not lie inside 0..Ub (nothing stored) or when a
    // half-maximum crossing meets two equal counts (previous results kept, edge energies
    // already new). Throws OverflowError when a 32-bit sum or product, a 16-bit channel
    // counter or a float conversion overflows, FloatingPointError on a division by zero or
    // a non-finite result, and SubscriptError when the width search or the interpolation
    // would read outside 0..Ub; after any of them the edge energies may be new but no other
    // result has changed.
    bool bComputeROI(float sTime, int16_t& nBkgChn, const int32_t* lCounts, std::size_t countsSize,
                     const EnergyCalibration& cal, RoiRates& rates);

private:
    std::string m_vntID;
    int16_t m_nROIType = 0;
    int16_t m_nROIinPlot = 0;
    int32_t m_lROILCh = 0;
    int32_t m_lROIRCh = 0;
    float m_sROILEn = 0.0f;
    float m_sROIREn = 0.0f;
    std::string m_szIdNuc;
    int32_t m_lROIColor = 0;
    int16_t m_nChnMax = 0;
    int32_t m_lMax = 0;
    int32_t m_lInt = 0;
    int32_t m_lNET = 0;
    int32_t m_lBkgIntVal = 0;
    float m_sBkgVal = 0.0f;
    float m_sIntCps = 0.0f;
    float m_sNetCps = 0.0f;
    float m_sFWHMp = 0.0f;
    float m_sFWHMch = 0.0f;
    float m_sFWHMen = 0.0f;
    float m_sCentCh = 0.0f;
    float m_sCentEn = 0.0f;
    float m_sCentInt = 0.0f;
};

// Background level at position x by a straight line through the averaged `m` neighbours
// on each side of L..R. Channel 0 never counts on the left, and on the right only channels
// strictly below Ub = countsSize - 1; the sums are divided by m even when neighbours were
// missing. -1 when both averaged positions coincide. Throws FloatingPointError for m = 0,
// SubscriptError for a neighbour outside the array.
float BkgAtPosition(int32_t L, int32_t R, int16_t m, float x, const int32_t* lCounts,
                    std::size_t countsSize);

} // namespace vexo
