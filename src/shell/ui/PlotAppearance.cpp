#include "shell/ui/PlotAppearance.h"

#include "plot/ui/WinColor.h"

namespace vexo {

PlotAppearance AppearanceFrom(const AppSettings& s) {
    PlotAppearance a;
    a.back = FromWinColor(s.SpctBackColor);
    a.fore = FromWinColor(s.SpctForeColor);
    a.scale = FromWinColor(s.SpctScaleColor);
    a.cursor = FromWinColor(s.SpctCurColor);
    a.grid = s.SpctShowGrid;
    a.filled = s.SpctFilled;
    a.roiOneColor = s.RoiOneColor;
    a.roiBase = FromWinColor(s.RoiColors[0]);
    return a;
}

} // namespace vexo
