#pragma once
// The plot's appearance as the settings file chooses it.
#include "plot/ui/SpectrumPlot.h"
#include "shell/AppSettings.h"

namespace vexo {

PlotAppearance AppearanceFrom(const AppSettings& settings);

} // namespace vexo
