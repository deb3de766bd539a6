#pragma once
// The spectrum picture of the report as the settings draw it, before the user has
// changed the view: their colours, Y scale and graph type, channels on the X axis, the
// whole spectrum. The main window replaces the axis and range with what it shows.
#include "plot/ui/SpectrumPicture.h"
#include "shell/AppSettings.h"

namespace vexo {

PictureView PictureViewFrom(const AppSettings& settings);

} // namespace vexo
