#include "spectrum/ui/calib.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/Messages.h"
#include "spectrum/CalibrationSolver.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

calib::calib(SpectrumDocument& doc, const std::filesystem::path& libraryPath, Messages& messages,
             CalibHooks hooks, QWidget* parent)
    : QDialog(parent), m_doc(doc), m_libraryPath(libraryPath), m_messages(messages),
      m_hooks(std::move(hooks)), m_result(doc.calibration) {
    setWindowTitle("Energy calibration");
    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel("Channel"), 0, 1);
    grid->addWidget(new QLabel("Energy, keV"), 0, 2);
    const char* names[3] = {"A", "B", "C"};
    for (int row = 0; row < 3; ++row) {
        grid->addWidget(new QLabel(QString("Point %1:").arg(names[row])), row + 1, 0);
        m_ch[row] = new QLineEdit;
        m_ch[row]->setObjectName(QString("txtCh") + names[row]);
        m_ch[row]->installEventFilter(this);
        connect(m_ch[row], &QLineEdit::textEdited, this, [this](const QString& text) {
            bool ok = false;
            const int ch = text.trimmed().toInt(&ok);
            if (ok && m_hooks.setCursor)
                m_hooks.setCursor(ch);
        });
        m_en[row] = new QComboBox;
        m_en[row]->setObjectName(QString("cmbEn") + names[row]);
        m_en[row]->setEditable(true);
        m_en[row]->setInsertPolicy(QComboBox::NoInsert);
        QComboBox* box = m_en[row];
        connect(box, &QComboBox::activated, this, [box](int index) {
            box->setEditText(
                QString::fromStdString(EnergyFromListItem(box->itemText(index).toStdString())));
        });
        grid->addWidget(m_ch[row], row + 1, 1);
        grid->addWidget(m_en[row], row + 1, 2);
    }
    m_lblOffset = new QLabel;
    m_lblSlope = new QLabel;
    m_lblQuadratic = new QLabel;
    m_lblOffset->setObjectName("lblOffset");
    m_lblSlope->setObjectName("lblSlope");
    m_lblQuadratic->setObjectName("lblQuadratic");
    grid->addWidget(new QLabel("Offset:"), 4, 0);
    grid->addWidget(m_lblOffset, 4, 1);
    grid->addWidget(new QLabel("Slope:"), 5, 0);
    grid->addWidget(m_lblSlope, 5, 1);
    grid->addWidget(new QLabel("Quadratic:"), 6, 0);
    grid->addWidget(m_lblQuadratic, 6, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* compute = buttons->addButton("C&ompute", QDialogButtonBox::ActionRole);
    connect(compute, &QPushButton::clicked, this, &calib::Compute);
    connect(buttons, &QDialogButtonBox::accepted, this, &calib::cmdOk);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(buttons);
}

void calib::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_listsFilled)
        fillEnergyLists();
}

void calib::fillEnergyLists() {
    m_listsFilled = true;
    const std::vector<std::string> items = EnergyListEntries(m_libraryPath, m_messages);
    for (QComboBox* box : m_en) {
        for (const std::string& item : items)
            box->addItem(QString::fromStdString(item));
        box->setCurrentIndex(-1);
        box->setEditText("");
    }
}

bool calib::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn)
        for (int row = 0; row < 3; ++row)
            if (watched == m_ch[row])
                m_active = row;
    return QDialog::eventFilter(watched, event);
}

void calib::SetChannel(int32_t channel) {
    m_ch[m_active]->setText(QString::number(channel));
}

bool calib::Compute() {
    std::array<CalibrationRowText, 3> rows;
    for (int row = 0; row < 3; ++row)
        rows[row] = {m_ch[row]->text().toStdString(), m_en[row]->currentText().toStdString()};
    const CalibrationCompute r = vexo::Compute(rows, m_result, m_messages);
    m_result = r.cal;
    m_computed = r.computed;
    m_lblOffset->setText(QString::fromStdString(r.lblOffset));
    m_lblSlope->setText(QString::fromStdString(r.lblSlope));
    m_lblQuadratic->setText(QString::fromStdString(r.lblQuadratic));
    return m_computed;
}

void calib::cmdOk() {
    if (!Compute())
        return;
    if (!AskAcceptCalibration(m_result, m_messages))
        return; // No: stay in the dialog
    m_doc.calibration = m_result;
    m_doc.calibration.bCalibrated = true;
    if (m_hooks.applyCalibration)
        m_hooks.applyCalibration();
    accept();
}

QString calib::resultText() const {
    return m_lblOffset->text() + " " + m_lblSlope->text() + " " + m_lblQuadratic->text();
}

} // namespace vexo
