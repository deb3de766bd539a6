#include "device/ui/Scope.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "base/VexoError.h"
#include "device/ScopeController.h"

namespace vexo {

namespace {

// The drawing surface: clears, then DrawGrid and PlotData from the controller's trace.
class ScopeScreen : public QWidget {
public:
    explicit ScopeScreen(ScopeController& c) : m_c(c) {
        setObjectName("Screen");
        setMinimumSize(420, 260);
        setAttribute(Qt::WA_OpaquePaintEvent);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.fillRect(rect(), Qt::black);
        p.setPen(QPen(QColor(90, 90, 90), 0, Qt::DotLine));
        for (const ScopeLine& l : DrawGrid(width(), height()))
            p.drawLine(QLineF(l.x1, l.y1, l.x2, l.y2));
        std::vector<ScopePoint> pts;
        try {
            pts = PlotData(m_c.trace(), width(), height(), m_c.fullScale());
        } catch (const OverflowError&) {
            return; // a surface too large for 16-bit coordinates: the grid alone
        } catch (const FloatingPointError&) {
            return; // a degenerate surface size: the grid alone
        }
        QPolygon line;
        line.reserve(static_cast<int>(pts.size()));
        for (const ScopePoint& s : pts)
            line.append(QPoint(s.x, s.y));
        p.setPen(QPen(QColor(0, 255, 0)));
        p.drawPolyline(line);
    }

private:
    ScopeController& m_c;
};

} // namespace

Scope::Scope(ScopeController& controller, std::function<void()> closed, QWidget* parent)
    : QWidget(parent, Qt::Tool), m_controller(controller), m_closed(std::move(closed)) {
    setWindowTitle("Scope");
    setAttribute(Qt::WA_DeleteOnClose);
    m_screen = new ScopeScreen(controller);
    m_filtered = new QRadioButton("&Filtered");
    m_filtered->setObjectName("optFiltered");
    m_input = new QRadioButton("&Input");
    m_input->setObjectName("optInput");
    (controller.source() == ScopeSource::Filtered ? m_filtered : m_input)->setChecked(true);
    connect(m_filtered, &QRadioButton::toggled, this, [this](bool on) {
        m_controller.setSource(on ? ScopeSource::Filtered : ScopeSource::Input);
    });
    auto* close = new QPushButton("&Close");
    close->setObjectName("cmdClose");
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    auto* row = new QHBoxLayout;
    row->addWidget(m_filtered);
    row->addWidget(m_input);
    row->addStretch(1);
    row->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_screen, 1);
    layout->addLayout(row);
}

void Scope::DisplayWaveform() {
    if (m_controller.DisplayWaveform())
        m_screen->update();
}

void Scope::closeEvent(QCloseEvent* event) {
    if (m_closed)
        m_closed();
    event->accept();
}

} // namespace vexo
