#include "device/ui/frmAutoConnect.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "device/ConnectionController.h"

namespace vexo {

frmAutoConnect::frmAutoConnect(AutoConnect& logic, QWidget* parent)
    : QDialog(parent), m_logic(logic) {
    setWindowTitle("Vexo");
    m_label = new QLabel("Connecting...");
    m_label->setObjectName("lblConnecting");
    m_progress = new QProgressBar;
    m_progress->setObjectName("pbConnect");
    m_progress->setRange(0, kConnectProgressSteps - 1);
    m_progress->setTextVisible(false);
    auto* cancel = new QPushButton("&Cancel");
    connect(cancel, &QPushButton::clicked, this, [this] {
        m_logic.cancel();
        close();
    });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_label);
    layout->addWidget(m_progress);
    layout->addWidget(cancel, 0, Qt::AlignRight);
    resize(360, 120);
}

void frmAutoConnect::showState() {
    m_label->setText(QString::fromStdString(m_logic.label()));
    m_progress->setValue(m_logic.progress());
    if (!m_logic.windowOpen())
        close();
}

} // namespace vexo
