#include "shell/ReportInput.h"

namespace vexo {

namespace {

ReportRoiRow RowFrom(const clsROI& roi) {
    ReportRoiRow row;
    row.lROILCh = roi.lROILCh();
    row.lROIRCh = roi.lROIRCh();
    row.sCentCh = roi.sCentCh();
    row.sCentEn = roi.sCentEn();
    row.lInt = roi.lInt();
    row.lBkgIntVal = roi.lBkgIntVal();
    row.lNET = roi.lNET();
    row.sCentInt = roi.sCentInt();
    row.lMax = roi.lMax();
    row.sFWHMch = roi.sFWHMch();
    row.sFWHMen = roi.sFWHMen();
    row.sFWHMp = roi.sFWHMp();
    return row;
}

} // namespace

ReportInput ReportInputFrom(const SpectrumDocument& doc, const RoiCollection& rois,
                            const AppSettings& settings) {
    ReportInput input;
    input.doc = &doc;
    input.sections.HardwareSect = settings.HardwareSect;
    input.sections.DataAcqSect = settings.DataAcqSect;
    input.sections.CalibrationSect = settings.CalibrationSect;
    input.sections.ROISect = settings.ROISect;
    input.sections.SpctSect = settings.SpctSect;
    input.sections.PlotSect = settings.PlotSect;
    input.style = settings.Style;
    for (const clsROI& roi : rois)
        input.rois.push_back(RowFrom(roi));
    return input;
}

} // namespace vexo
