#include "plot/ui/SpectrumPlot.h"

#include <algorithm>
#include <span>

#include "plot/ui/WinColor.h"

namespace vexo {

SpectrumPlot::SpectrumPlot(QWidget* parent) : QCustomPlot(parent) {
    // Thousands of segments redraw much faster without antialiasing, and at one
    // segment per pixel column it would not show anyway.
    setNotAntialiasedElements(QCP::aeAll);
    setPlottingHint(QCP::phFastPolylines, true);
    m_trace = new SpectrumTrace(xAxis, yAxis);
    m_yTicker.reset(new QCPAxisTickerText);
    yAxis->setTicker(m_yTicker);
    xAxis->setLabel("Channels");
    m_cursorLine = new QCPItemStraightLine(this);
    m_cursorLine->setLayer("overlay");
    m_markRect = new QCPItemRect(this);
    m_markRect->setVisible(false);
    m_markRect->setPen(QPen(QColor(0, 0, 160)));
    m_markRect->setBrush(QColor(0, 0, 160, 50));
    connect(this, &QCustomPlot::mousePress, this, &SpectrumPlot::onPress);
    connect(this, &QCustomPlot::mouseMove, this, &SpectrumPlot::onMove);
    connect(this, &QCustomPlot::mouseRelease, this, &SpectrumPlot::onRelease);
    setAppearance(PlotAppearance{});
}

void SpectrumPlot::setDocument(const SpectrumDocument* doc) {
    m_doc = doc;
    setXRange(0, doc ? doc->lChannels - 1 : 0);
}

void SpectrumPlot::setAppearance(const PlotAppearance& a) {
    m_look = a;
    setBackground(QBrush(a.scale));
    axisRect()->setBackground(QBrush(a.back));
    for (QCPAxis* axis : {xAxis, yAxis}) {
        axis->grid()->setVisible(a.grid);
        axis->grid()->setPen(QPen(QColor(128, 128, 128), 0, Qt::DotLine));
    }
    m_cursorLine->setPen(QPen(a.cursor));
    styleTrace(m_trace, a.fore, a.filled);
}

void SpectrumPlot::styleTrace(SpectrumTrace* trace, const QColor& color, bool filled) {
    trace->setPen(QPen(color));
    trace->setBrush(QBrush(color));
    trace->setFilled(filled);
    trace->setGraphType(m_graphType);
}

void SpectrumPlot::setYScale(YScale scale) {
    m_scale = scale;
}

void SpectrumPlot::setGraphType(int graphType) {
    m_graphType = std::clamp(graphType, 1, 3);
    styleTrace(m_trace, m_look.fore, m_look.filled);
}

void SpectrumPlot::setXUnit(XUnit unit, const QString& caption) {
    m_unit = unit;
    xAxis->setLabel(caption);
}

void SpectrumPlot::setXRange(int32_t first, int32_t last) {
    const int32_t top = m_doc ? std::max(m_doc->lChannels - 1, 0) : 0;
    m_first = std::clamp(std::min(first, last), 0, top);
    m_last = std::clamp(std::max(first, last), 0, top);
}

void SpectrumPlot::setCursorChannel(int32_t channel) {
    m_cursor = channel;
}

SpectrumPlot::MarkedRange SpectrumPlot::markedRange() const {
    if (m_markFirst < 0)
        return {0, m_doc ? m_doc->lChannels - 1 : 0};
    return {std::min(m_markFirst, m_markLast), std::max(m_markFirst, m_markLast)};
}

void SpectrumPlot::setMarkedRange(int32_t first, int32_t last) {
    m_markFirst = first;
    m_markLast = last;
}

double SpectrumPlot::x(int32_t ch) const {
    if (!m_doc)
        return ch;
    return AxisValue(ch, m_unit, m_doc->plot, m_doc->sngDwellTime);
}

int32_t SpectrumPlot::channelAtPixel(double px) const {
    if (!m_doc)
        return 0;
    return ChannelAtAxisValue(xAxis->pixelToCoord(px), m_first, m_last, m_unit, m_doc->plot,
                              m_doc->sngDwellTime);
}

void SpectrumPlot::fillTrace(SpectrumTrace* trace, int32_t first, int32_t last, int columns,
                             double* peak) {
    const std::span<const int32_t> counts(m_doc->lCounts.data(), m_doc->lCounts.size());
    const std::vector<PlotColumn> cols = DecimateMinMax(counts, first, last, columns);
    std::vector<TraceColumn> trace_columns;
    trace_columns.reserve(cols.size());
    for (const PlotColumn& c : cols) {
        trace_columns.push_back({x(c.firstChannel), TransformCount(c.minCounts, m_scale),
                                 TransformCount(c.maxCounts, m_scale)});
        if (peak)
            *peak = std::max(*peak, static_cast<double>(c.maxCounts));
    }
    trace->setColumns(std::move(trace_columns), x(last + 1));
}

void SpectrumPlot::updateRois(int columns) {
    const std::vector<PlotRoi>& rois = m_doc->plot.rois;
    while (m_roiTraces.size() < rois.size())
        m_roiTraces.push_back(new SpectrumTrace(xAxis, yAxis));
    const double span = static_cast<double>(m_last - m_first + 1);
    for (std::size_t i = 0; i < m_roiTraces.size(); ++i) {
        SpectrumTrace* g = m_roiTraces[i];
        const bool shown = i < rois.size() && rois[i].lLast >= m_first && rois[i].lFirst <= m_last;
        g->setVisible(shown);
        if (!shown)
            continue;
        const int32_t a = std::max(rois[i].lFirst, m_first);
        const int32_t b = std::min(rois[i].lLast, m_last);
        const int cols = std::max(1, static_cast<int>(columns * (b - a + 1) / span + 0.5));
        const QColor color = m_look.roiOneColor ? m_look.roiBase : FromWinColor(rois[i].lColor);
        styleTrace(g, color, true);
        fillTrace(g, a, b, cols, nullptr);
    }
}

void SpectrumPlot::updateYAxis(double peakCounts) {
    const double top = std::max(peakCounts, m_scale == YScale::Log ? 10.0 : 1.0);
    yAxis->setRange(0.0, TransformCount(top, m_scale) * 1.05);
    QVector<double> positions;
    QVector<QString> labels;
    for (const AxisTick& t : YTicks(top, m_scale)) {
        positions.append(t.position);
        labels.append(QString::fromStdString(t.label));
    }
    m_yTicker->setTicks(positions, labels);
}

void SpectrumPlot::updateCursorAndMark() {
    const double cx = x(m_cursor);
    m_cursorLine->point1->setCoords(cx, 0.0);
    m_cursorLine->point2->setCoords(cx, 1.0);
    m_cursorLine->setVisible(m_cursor >= m_first && m_cursor <= m_last);
    const bool marked = m_marking && m_markFirst >= 0;
    m_markRect->setVisible(marked);
    if (marked) {
        const MarkedRange r = markedRange();
        m_markRect->topLeft->setCoords(x(r.first), yAxis->range().upper);
        m_markRect->bottomRight->setCoords(x(r.last), yAxis->range().lower);
    }
}

void SpectrumPlot::refreshPlot() {
    if (m_doc) {
        setXRange(m_first, m_last);
        const int columns = std::max(axisRect()->width(), 1);
        double peak = 0.0;
        fillTrace(m_trace, m_first, m_last, columns, &peak);
        updateRois(columns);
        double lo = x(m_first), hi = x(m_graphType == 3 ? m_last + 1 : m_last);
        if (!(hi > lo))
            hi = lo + 1.0; // a one-channel range or a zero dwell time
        xAxis->setRange(lo, hi);
        updateYAxis(peak);
        updateCursorAndMark();
    }
    replot();
}

void SpectrumPlot::resizeEvent(QResizeEvent* event) {
    QCustomPlot::resizeEvent(event);
    // The number of pixel columns changed, so the reduced curve must be rebuilt.
    refreshPlot();
}

void SpectrumPlot::onPress(QMouseEvent* event) {
    const int ch = channelAtPixel(event->position().x());
    if (event->button() == Qt::LeftButton) {
        if (m_marking) {
            m_dragging = true;
            m_markFirst = m_markLast = ch;
            updateCursorAndMark();
            replot(rpQueuedReplot);
        } else {
            m_cursor = ch;
            updateCursorAndMark();
            replot(rpQueuedReplot);
            emit cursorMoved(ch, event->modifiers());
        }
    }
    emit plotMouseDown(event->button(), event->modifiers(), ch);
}

void SpectrumPlot::onMove(QMouseEvent* event) {
    const int ch = channelAtPixel(event->position().x());
    if (m_dragging) {
        m_markLast = ch;
        updateCursorAndMark();
        replot(rpQueuedReplot);
    }
    emit plotMouseMove(event->buttons(), event->modifiers(), ch);
}

void SpectrumPlot::onRelease(QMouseEvent* event) {
    m_dragging = false;
    emit plotMouseUp(event->button(), event->modifiers(), channelAtPixel(event->position().x()));
}

} // namespace vexo
