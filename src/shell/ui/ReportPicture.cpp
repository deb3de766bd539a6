#include "shell/ui/ReportPicture.h"

#include <algorithm>

#include "shell/ui/PlotAppearance.h"

namespace vexo {

PictureView PictureViewFrom(const AppSettings& settings) {
    PictureView view;
    view.look = AppearanceFrom(settings);
    view.scale = static_cast<YScale>(std::clamp(settings.SpctScaleMode, 0, 2));
    view.graphType = settings.SpctGraphType;
    return view;
}

} // namespace vexo
