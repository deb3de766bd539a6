// Writer of the full spectrum file. The file is built as its Windows-1252 bytes in one
// buffer and written in one go; only the few text lines need converting.
#include "base/DateTime.h"
#include "base/FileBytes.h"
#include "base/TextFile.h"
#include "base/VexoError.h"
#include "spectrum/FieldLine.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

// Builds the file's bytes line by line.
class FileText {
public:
    explicit FileText(std::size_t expectedBytes) { m_bytes.reserve(expectedBytes); }
    // A line of ASCII (tags, numbers).
    void line(std::string_view ascii) {
        m_bytes.append(ascii);
        end();
    }
    // A line of the user's text, converted from UTF-8.
    void textLine(std::string_view utf8) { line(Utf8ToWin1252(utf8)); }
    // A field line appended in place; call end() once its items are in.
    FieldLine fields() { return FieldLine(m_bytes); }
    void end() { m_bytes.append("\r\n"); }
    std::string take() { return std::move(m_bytes); }

private:
    std::string m_bytes;
};

void WriteHeader(FileText& out, const SpectrumDocument& doc) {
    out.line("$SPEC_ID:");
    out.textLine(doc.szSpectrumID);
    out.line("$DATE_MEA:");
    out.line(FormatSerial(doc.dtMeasured, "mm-dd-yyyy  Hh:Nn:Ss"));
    out.line("$MEAS_TIM:");
    out.fields().single(doc.sngLiveTime).single(doc.sngRealTime);
    out.end();
    out.line("$DEVICE_ID:");
    out.textLine(doc.szDeviceName + " " + doc.szDeviceSerial);
    out.line("$ACQ_SETTINGS:");
    out.fields()
        .integer(doc.lPresetMode)
        .singleNumber(doc.sngPresetTime)
        .integer(doc.lPresetCounts)
        .integer(doc.lPresetFirstCh)
        .integer(doc.lPresetLastCh);
    out.end();
}

void WriteHardware(FileText& out, const SpectrumDocument& doc) {
    out.line("$HRDW_PARAMS:");
    out.line(doc.lMCSMode != 0 ? "MCS" : "PHA");
    out.line(SingleText(doc.sngHighVoltage));
    out.fields().integer(doc.lCoarseGain).integer(doc.lFineGain).integer(doc.lDigitalGain);
    out.end();
    out.fields().integer(doc.lThreshold).integer(doc.lLLD).integer(doc.lULD);
    out.end();
    out.fields().integer(doc.lRiseTime).integer(doc.lFlatTop).integer(doc.lPoleZero);
    out.end();
    out.fields().integer(doc.lBLR).integer(doc.lPUR);
    out.end();
}

// Both calibration sections carry the plot's 32-bit copy, calibrated or not.
void WriteCalibration(FileText& out, const PlotState& plot) {
    out.line("$SPEC_CAL:");
    out.fields().single(plot.sngOffset).single(plot.sngSlope).single(plot.sngQuad);
    out.end();
    out.line("$MCA_CAL:");
    out.line("3");
    out.fields().single(plot.sngOffset).single(plot.sngSlope).single(plot.sngQuad);
    out.end();
}

void WriteRois(FileText& out, const PlotState& plot) {
    if (plot.rois.empty())
        return;
    out.line("$ROI:");
    for (const PlotRoi& roi : plot.rois) {
        out.fields()
            .integer(roi.lFirst)
            .integer(roi.lLast)
            .integer(roi.lColor)
            .integer(roi.bFlag ? 1 : 0)
            .text(Utf8ToWin1252(roi.szName));
        out.end();
    }
}

void WriteData(FileText& out, const SpectrumDocument& doc) {
    const int32_t last = doc.lChannels - 1;
    out.line("$DATA:");
    out.fields().integer(0).integer(last);
    out.end();
    for (int32_t i = 0; i <= last; i += 8) {
        FieldLine counts = out.fields();
        for (int32_t k = i; k < i + 8; ++k)
            counts.integer(doc.lCounts[static_cast<std::size_t>(k)]);
        out.end();
    }
}

} // namespace

std::string FullSpectrumBytes(const SpectrumDocument& doc) {
    // The last counts line always holds eight slots; it must not run past the array.
    if (doc.lChannels > MAX_CHANNELS)
        throw SubscriptError();
    const std::size_t countLines = doc.lChannels > 0 ? (doc.lChannels + 7) / 8 : 0;
    FileText out(1024 + 24 * 14 * doc.plot.rois.size() + countLines * (8 * kFieldWidth + 2));
    WriteHeader(out, doc);
    WriteHardware(out, doc);
    WriteCalibration(out, doc.plot);
    WriteRois(out, doc.plot);
    WriteData(out, doc);
    return out.take();
}

bool bSaveFullSpectrum(const SpectrumDocument& doc, const std::filesystem::path& path,
                       std::string* error) {
    std::string bytes;
    try {
        bytes = FullSpectrumBytes(doc);
    } catch (const SubscriptError& e) {
        // Reported through the boolean result, as every failure of this routine is.
        if (error)
            *error = e.what();
        return false;
    }
    // A measurement cannot be taken again: it is on the disk before it takes the name.
    return WriteFileBytes(path, bytes, error, true);
}

} // namespace vexo
