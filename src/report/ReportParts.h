#pragma once
// The pieces of the report page, in page order. Each writes its lines through `lines`.
#include <vector>

#include "report/ReportBuilder.h"
#include "report/ReportLines.h"

namespace vexo {

// Doctype, head with the style block in the report style's colours, and the page title.
void PutReportHead(ReportLines& lines, const ReportStyle& style);
// The device identifiers table, always present.
void PutDeviceIdentifiers(ReportLines& lines, const SpectrumDocument& doc);
// "MCA Settings", "Data acquisition" and "Calibration".
void PutMcaSettings(ReportLines& lines, const SpectrumDocument& doc);
void PutDataAcquisition(ReportLines& lines, const SpectrumDocument& doc);
void PutCalibration(ReportLines& lines, const EnergyCalibration& cal);

} // namespace vexo
