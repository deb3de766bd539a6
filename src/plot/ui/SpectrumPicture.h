#pragma once
// The spectrum picture of the report ("spect.png"): the main plot as the user sees it,
// drawn offscreen at a fixed size whatever the window's size, and saved as PNG.
#include <QSize>
#include <QString>
#include <cstdint>
#include <filesystem>
#include <string>

#include "plot/ui/SpectrumPlot.h"

namespace vexo {

// What the main plot shows: colours, Y scale, graph type, X unit with its caption and
// the channel range (last < first: the whole spectrum).
struct PictureView {
    PlotAppearance look;
    YScale scale = YScale::Linear;
    int graphType = 2; // 1 dots, 2 lines, 3 histogram
    XUnit unit = XUnit::Channels;
    QString caption = "Channels";
    int32_t first = 0;
    int32_t last = -1;
};

// Big enough to stay sharp on a printed A4 page at full width.
inline constexpr QSize kPictureSize{1200, 720};

struct PictureResult {
    bool ok = false;
    std::string error; // why the file could not be written
};

// Draws `doc` with its ROI marks as `view` says and writes the PNG to `file` (through a
// temporary file beside it, so a failed write leaves an older picture whole). Needs a
// running QApplication.
PictureResult SaveSpectrumPicture(const SpectrumDocument& doc, const PictureView& view,
                                  const std::filesystem::path& file, QSize size = kPictureSize);

} // namespace vexo
