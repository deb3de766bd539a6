// Writer of the full spectrum file.
#include "shell/DateTime.h"
#include "shell/FieldLine.h"
#include "shell/TextFile.h"
#include "shell/VexoError.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

void WriteHeader(TextFileWriter& out, const SpectrumDocument& doc) {
    out.line("$SPEC_ID:");
    out.line(doc.szSpectrumID);
    out.line("$DATE_MEA:");
    out.line(FormatSerial(doc.dtMeasured, "mm-dd-yyyy  Hh:Nn:Ss"));
    out.line("$MEAS_TIM:");
    out.line(FieldLine().single(doc.sngLiveTime).single(doc.sngRealTime).str());
    out.line("$DEVICE_ID:");
    out.line(doc.szDeviceName + " " + doc.szDeviceSerial);
    out.line("$ACQ_SETTINGS:");
    out.line(FieldLine()
                 .integer(doc.lPresetMode)
                 .singleNumber(doc.sngPresetTime)
                 .integer(doc.lPresetCounts)
                 .integer(doc.lPresetFirstCh)
                 .integer(doc.lPresetLastCh)
                 .str());
}

void WriteHardware(TextFileWriter& out, const SpectrumDocument& doc) {
    out.line("$HRDW_PARAMS:");
    out.line(doc.lMCSMode != 0 ? "MCS" : "PHA");
    out.line(SingleText(doc.sngHighVoltage));
    out.line(FieldLine().integer(doc.lCoarseGain).integer(doc.lFineGain).integer(doc.lDigitalGain).str());
    out.line(FieldLine().integer(doc.lThreshold).integer(doc.lLLD).integer(doc.lULD).str());
    out.line(FieldLine().integer(doc.lRiseTime).integer(doc.lFlatTop).integer(doc.lPoleZero).str());
    out.line(FieldLine().integer(doc.lBLR).integer(doc.lPUR).str());
}

// Both calibration sections carry the plot's 32-bit copy, calibrated or not.
void WriteCalibration(TextFileWriter& out, const PlotState& plot) {
    std::string coefficients =
        FieldLine().single(plot.sngOffset).single(plot.sngSlope).single(plot.sngQuad).str();
    out.line("$SPEC_CAL:");
    out.line(coefficients);
    out.line("$MCA_CAL:");
    out.line("3");
    out.line(coefficients);
}

void WriteRois(TextFileWriter& out, const PlotState& plot) {
    if (plot.rois.empty())
        return;
    out.line("$ROI:");
    for (const PlotRoi& roi : plot.rois)
        out.line(FieldLine()
                     .integer(roi.lFirst)
                     .integer(roi.lLast)
                     .integer(roi.lColor)
                     .integer(roi.bFlag ? 1 : 0)
                     .text(roi.szName)
                     .str());
}

void WriteData(TextFileWriter& out, const SpectrumDocument& doc) {
    const int32_t last = doc.lChannels - 1;
    // The last line always holds eight slots; it must not run past the array.
    if (last >= MAX_CHANNELS)
        throw SubscriptError();
    out.line("$DATA:");
    out.line(FieldLine().integer(0).integer(last).str());
    for (int32_t i = 0; i <= last; i += 8) {
        FieldLine counts;
        for (int32_t k = i; k < i + 8; ++k)
            counts.integer(doc.lCounts[static_cast<std::size_t>(k)]);
        out.line(counts.str());
    }
}

void Compose(TextFileWriter& out, const SpectrumDocument& doc) {
    WriteHeader(out, doc);
    WriteHardware(out, doc);
    WriteCalibration(out, doc.plot);
    WriteRois(out, doc.plot);
    WriteData(out, doc);
}

} // namespace

std::string FullSpectrumText(const SpectrumDocument& doc) {
    TextFileWriter out;
    Compose(out, doc);
    return out.text();
}

bool bSaveFullSpectrum(const SpectrumDocument& doc, const std::filesystem::path& path,
                       std::string* error) {
    TextFileWriter out;
    try {
        Compose(out, doc);
    } catch (const SubscriptError& e) {
        // Reported through the boolean result, as every failure of this routine is.
        if (error)
            *error = e.what();
        return false;
    }
    return out.save(path, error);
}

} // namespace vexo
