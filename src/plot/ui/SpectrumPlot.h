#pragma once
// The spectrum plot control. The main window has two bound to the same counts:
// DataPlot41, the main view, and DataPlot42, the overview on which the user marks the
// range to zoom into. Every redraw reduces the shown channels to one min/max pair per
// pixel column first, so 16,384 channels cost no more than the pixels on screen.
#include <qcustomplot.h>

#include <cstdint>
#include <vector>

#include "plot/PlotModel.h"
#include "plot/ui/SpectrumTrace.h"

namespace vexo {

// The appearance the settings file chooses.
struct PlotAppearance {
    QColor back{Qt::white};      // plot area
    QColor fore{Qt::lightGray};  // spectrum
    QColor scale{255, 255, 192}; // area around the axes
    QColor cursor{Qt::black};
    bool grid = true;
    bool filled = true;
    bool roiOneColor = true;
    QColor roiBase{Qt::red}; // every ROI's colour when roiOneColor is set
};

class SpectrumPlot : public QCustomPlot {
    Q_OBJECT
public:
    explicit SpectrumPlot(QWidget* parent = nullptr);

    // The record whose counts, channel count, calibration copy and ROIs are drawn.
    // It must outlive the plot.
    void setDocument(const SpectrumDocument* doc);
    void setAppearance(const PlotAppearance& appearance);
    // Y scale 0 log, 1 linear, 2 square root; graph type 1 dots, 2 lines, 3 histogram.
    void setYScale(YScale scale);
    void setGraphType(int graphType);
    void setXUnit(XUnit unit, const QString& caption);
    // The shown channel range (inclusive); clamped to the document's channels.
    void setXRange(int32_t first, int32_t last);
    int32_t xMin() const { return m_first; }
    int32_t xMax() const { return m_last; }

    int32_t cursorChannel() const { return m_cursor; }
    void setCursorChannel(int32_t channel);

    // The overview lets the user drag out a range with the left button.
    void setMarkingEnabled(bool on) { m_marking = on; }
    struct MarkedRange {
        int32_t first;
        int32_t last;
    };
    // The marked range, or the whole spectrum when nothing is marked.
    MarkedRange markedRange() const;
    void setMarkedRange(int32_t first, int32_t last);
    void clearMarkedRange() { m_markFirst = m_markLast = -1; }

    // Recomputes the reduced curve from the counts and redraws now.
    void refreshPlot();
    // Channel under a widget x coordinate (pixels), within the shown range.
    int32_t channelAtPixel(double x) const;

signals:
    // A left click moved the cursor; `modifiers` are the keys held while clicking.
    void cursorMoved(int channel, Qt::KeyboardModifiers modifiers);
    void plotMouseDown(Qt::MouseButton button, Qt::KeyboardModifiers mods, int channel);
    void plotMouseMove(Qt::MouseButtons buttons, Qt::KeyboardModifiers mods, int channel);
    void plotMouseUp(Qt::MouseButton button, Qt::KeyboardModifiers mods, int channel);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void onPress(QMouseEvent* event);
    void onMove(QMouseEvent* event);
    void onRelease(QMouseEvent* event);
    void fillTrace(SpectrumTrace* trace, int32_t first, int32_t last, int columns, double* peak);
    void styleTrace(SpectrumTrace* trace, const QColor& color, bool filled);
    void updateRois(int columns);
    void updateCursorAndMark();
    void updateYAxis(double peakCounts);
    double x(int32_t ch) const;

    const SpectrumDocument* m_doc = nullptr;
    PlotAppearance m_look;
    YScale m_scale = YScale::Linear;
    int m_graphType = 2;
    XUnit m_unit = XUnit::Channels;
    int32_t m_first = 0;
    int32_t m_last = 1023;
    int32_t m_cursor = 0;
    bool m_marking = false;
    bool m_dragging = false;
    int32_t m_markFirst = -1;
    int32_t m_markLast = -1;

    SpectrumTrace* m_trace = nullptr;
    std::vector<SpectrumTrace*> m_roiTraces;
    QCPItemStraightLine* m_cursorLine = nullptr;
    QCPItemRect* m_markRect = nullptr;
    QSharedPointer<QCPAxisTickerText> m_yTicker;
};

} // namespace vexo
