#include "plot/ui/SpectrumTrace.h"

#include <algorithm>
#include <cmath>

#include "plot/TraceRaster.h"

namespace vexo {

SpectrumTrace::SpectrumTrace(QCPAxis* keyAxis, QCPAxis* valueAxis)
    : QCPAbstractPlottable(keyAxis, valueAxis) {
    setAntialiased(false);
    setAntialiasedFill(false);
}

void SpectrumTrace::setColumns(std::vector<TraceColumn> columns, double rightEdge) {
    m_columns = std::move(columns);
    m_rightEdge = rightEdge;
}

double SpectrumTrace::selectTest(const QPointF&, bool, QVariant*) const {
    return -1.0; // the curve is never selected; clicks belong to the cursor
}

QCPRange SpectrumTrace::getKeyRange(bool& foundRange, QCP::SignDomain) const {
    foundRange = !m_columns.empty();
    if (!foundRange)
        return {};
    return {m_columns.front().key, std::max(m_rightEdge, m_columns.back().key)};
}

QCPRange SpectrumTrace::getValueRange(bool& foundRange, QCP::SignDomain, const QCPRange&) const {
    foundRange = !m_columns.empty();
    if (!foundRange)
        return {};
    QCPRange r(m_columns.front().lo, m_columns.front().hi);
    for (const TraceColumn& c : m_columns) {
        r.lower = std::min(r.lower, c.lo);
        r.upper = std::max(r.upper, c.hi);
    }
    return r;
}

void SpectrumTrace::draw(QCPPainter* painter) {
    QCPAxis* kx = keyAxis();
    QCPAxis* vy = valueAxis();
    if (!kx || !vy || m_columns.empty())
        return;
    QPolygonF outline;
    outline.reserve(static_cast<int>(m_columns.size() * 3));
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const TraceColumn& c = m_columns[i];
        const double px = kx->coordToPixel(c.key);
        const double ylo = vy->coordToPixel(c.lo), yhi = vy->coordToPixel(c.hi);
        if (ylo != yhi)
            outline.append(QPointF(px, ylo));
        outline.append(QPointF(px, yhi));
        if (m_graphType == 3) {
            const double next = i + 1 < m_columns.size() ? m_columns[i + 1].key : m_rightEdge;
            outline.append(QPointF(kx->coordToPixel(next), yhi));
        }
    }
    painter->setClipRect(clipRect());
    if (m_graphType == 1) {
        // One-pixel points vanish on a screen; three pixels read as dots at any density,
        // and a darker shade keeps a colour chosen for filled areas visible as dots.
        QPen dot = pen();
        dot.setColor(dot.color().darker(150));
        dot.setWidthF(3.0);
        dot.setCapStyle(Qt::SquareCap);
        painter->setPen(dot);
        painter->drawPoints(outline);
        return;
    }
    if (m_filled)
        drawFill(painter, outline);
    painter->setPen(pen());
    painter->setBrush(Qt::NoBrush);
    painter->drawPolyline(outline);
}

void SpectrumTrace::drawFill(QCPPainter* painter, const QPolygonF& outline) const {
    const QRect area = clipRect();
    std::vector<PixelPoint> path;
    path.reserve(static_cast<std::size_t>(outline.size()));
    for (const QPointF& p : outline)
        path.push_back({p.x() - area.left(), p.y()});
    const std::vector<double> tops = FillTops(path, area.width());
    // The fill runs down to the value 0 (the lowest count shown), or to the bottom edge.
    const double zero = valueAxis()->coordToPixel(std::max(0.0, valueAxis()->range().lower));
    const int base = static_cast<int>(std::min<double>(zero, area.bottom()));
    QVector<QLine> lines;
    lines.reserve(area.width());
    for (int c = 0; c < area.width(); ++c) {
        if (!std::isfinite(tops[c]))
            continue;
        const int top = std::max(area.top(), static_cast<int>(std::lround(tops[c])));
        if (top < base)
            lines.append(QLine(area.left() + c, top, area.left() + c, base));
    }
    painter->setPen(QPen(brush().color()));
    painter->drawLines(lines);
}

void SpectrumTrace::drawLegendIcon(QCPPainter* painter, const QRectF& rect) const {
    painter->fillRect(rect, brush().style() == Qt::NoBrush ? pen().color() : brush().color());
}

} // namespace vexo
