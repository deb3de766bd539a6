#pragma once
// A spectrum curve on a QCustomPlot axis rect, drawn from one min/max pair per pixel
// column: the outline as one polyline, the fill as one vertical line per pixel column.
// Painting cost follows the pixels shown, not the channels or the curve's vertices.
#include <qcustomplot.h>

#include <vector>

namespace vexo {

// One column of the reduced curve: its left edge on the key axis and its lowest and
// highest value (already in plotted units).
struct TraceColumn {
    double key;
    double lo;
    double hi;
};

class SpectrumTrace : public QCPAbstractPlottable {
    Q_OBJECT
public:
    SpectrumTrace(QCPAxis* keyAxis, QCPAxis* valueAxis);

    // `rightEdge` is the key where the last column ends (a histogram's last bar edge).
    void setColumns(std::vector<TraceColumn> columns, double rightEdge);
    // 1 dots, 2 lines, 3 histogram.
    void setGraphType(int graphType) { m_graphType = graphType; }
    void setFilled(bool filled) { m_filled = filled; }

    double selectTest(const QPointF& pos, bool onlySelectable, QVariant* details) const override;
    QCPRange getKeyRange(bool& foundRange, QCP::SignDomain inSignDomain) const override;
    QCPRange getValueRange(bool& foundRange, QCP::SignDomain inSignDomain,
                           const QCPRange& inKeyRange) const override;

protected:
    void draw(QCPPainter* painter) override;
    void drawLegendIcon(QCPPainter* painter, const QRectF& rect) const override;

private:
    void drawFill(QCPPainter* painter, const QPolygonF& outline) const;

    std::vector<TraceColumn> m_columns;
    double m_rightEdge = 0.0;
    int m_graphType = 2;
    bool m_filled = true;
};

} // namespace vexo
