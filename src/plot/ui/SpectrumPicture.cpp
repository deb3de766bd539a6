#include "plot/ui/SpectrumPicture.h"

#include <QImageWriter>

#include "base/ReplaceFile.h"

namespace vexo {

namespace {

// Lays the plot out at `size` and reduces the spectrum to that many pixel columns. The
// widget is never shown, so no resize event comes: the first replot places the axes, and
// only then does the axis rectangle tell how many columns the curve needs.
void LayOut(SpectrumPlot& plot, QSize size) {
    plot.resize(size);
    plot.setViewport(QRect(QPoint(0, 0), size));
    plot.replot();
    plot.refreshPlot();
}

} // namespace

PictureResult SaveSpectrumPicture(const SpectrumDocument& doc, const PictureView& view,
                                  const std::filesystem::path& file, QSize size) {
    SpectrumPlot plot;
    plot.setDocument(&doc);
    plot.setAppearance(view.look);
    plot.setYScale(view.scale);
    plot.setGraphType(view.graphType);
    plot.setXUnit(view.unit, view.caption);
    if (view.last >= view.first)
        plot.setXRange(view.first, view.last);
    plot.setCursorChannel(-1); // the cursor line is a screen aid, not part of the picture
    LayOut(plot, size);

    PictureResult result;
    const std::filesystem::path temp = TempFileFor(file);
    QImageWriter writer(QString::fromStdString(temp.string()), "png");
    if (!writer.write(plot.toPixmap(size.width(), size.height()).toImage())) {
        result.error = writer.errorString().toStdString();
        DiscardTempFile(temp);
        return result;
    }
    result.ok = ReplaceFileWith(temp, file, &result.error);
    return result;
}

} // namespace vexo
