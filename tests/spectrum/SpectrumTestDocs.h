#pragma once
// Documents used by the spectrum file tests.
#include <memory>
#include <string>
#include <vector>

#include "base/DateTime.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo::test {

// A fully populated 1024-channel PHA spectrum with two plot ROIs and a calibration.
inline std::unique_ptr<SpectrumDocument> MakeFullDocument() {
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lChannels = 1024;
    for (int i = 0; i < 1024; ++i)
        doc->lCounts[i] = (i * 7919) % 100003 - (i == 17 ? 100500 : 0);
    doc->sngLiveTime = 123.456f;
    doc->sngRealTime = 130.0625f;
    doc->dtMeasured = SerialFromParts({2024, 3, 7, 14, 5, 9});
    doc->szSpectrumID = "Soil sample 12 (dried)";
    doc->szDeviceName = "VX2000";
    doc->szDeviceSerial = "SN-0042";
    doc->lMCSMode = 0;
    doc->sngHighVoltage = 712.5f;
    doc->lCoarseGain = 4;
    doc->lFineGain = 3071;
    doc->lDigitalGain = 2;
    doc->lThreshold = 21;
    doc->lLLD = 10;
    doc->lULD = 1020;
    doc->lRiseTime = 40;
    doc->lFlatTop = 12;
    doc->lPoleZero = 2250;
    doc->lBLR = 1;
    doc->lPUR = 0;
    doc->lPresetMode = 1;
    doc->sngPresetTime = 600.0f;
    doc->lPresetCounts = 250000;
    doc->lPresetFirstCh = 100;
    doc->lPresetLastCh = 900;
    doc->setCalibration({true, -3.21, 0.7123456789, 1.5e-6});
    doc->plot.rois.push_back({100, 120, 65280, true, "Cs-137"});
    doc->plot.rois.push_back({400, 460, 16711680, false, "Co 60 line"});
    return doc;
}

// The plot's ROIs as one text, "first-last colour flag name" each, ";" between them.
inline std::string RoiText(const std::vector<PlotRoi>& rois) {
    std::string text;
    for (const PlotRoi& r : rois)
        text += std::to_string(r.lFirst) + "-" + std::to_string(r.lLast) + " " +
                std::to_string(r.lColor) + " " + (r.bFlag ? "1 " : "0 ") + r.szName + ";";
    return text;
}

} // namespace vexo::test
