#pragma once
// What the report is made from, gathered from the program's records: the REPORT flags and
// the resolved style of the settings, and one row per ROI of the collection.
#include "report/ReportBuilder.h"
#include "roi/RoiCollection.h"
#include "shell/AppSettings.h"

namespace vexo {

// The returned input points at `doc`, which must outlive it. ROI rows carry the results
// each ROI holds, also when its last analysis returned false.
ReportInput ReportInputFrom(const SpectrumDocument& doc, const RoiCollection& rois,
                            const AppSettings& settings);

} // namespace vexo
