#include "spectrum/ui/calib.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
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
        connect(m_ch[row], &QLineEdit::textChanged, this, &calib::showRowProblems);
        m_en[row] = new QComboBox;
        m_en[row]->setObjectName(QString("cmbEn") + names[row]);
        m_en[row]->setEditable(true);
        m_en[row]->setInsertPolicy(QComboBox::NoInsert);
        // Wide enough for a line such as "Eu-152 1408.01 keV (20.9 %)" in full.
        m_en[row]->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        m_en[row]->setMinimumContentsLength(28);
        QComboBox* box = m_en[row];
        connect(box, &QComboBox::activated, this,
                [box](int index) { box->setEditText(box->itemData(index).toString()); });
        connect(box, &QComboBox::editTextChanged, this, &calib::showRowProblems);
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

    // Beside OK: why a row the user filled in does not count as a point.
    m_lblProblems = new QLabel;
    m_lblProblems->setObjectName("lblRowProblems");
    m_lblProblems->setStyleSheet("color: #a00000");
    m_lblProblems->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* compute = buttons->addButton("C&ompute", QDialogButtonBox::ActionRole);
    connect(compute, &QPushButton::clicked, this, &calib::Compute);
    connect(buttons, &QDialogButtonBox::accepted, this, &calib::cmdOk);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_lblProblems, 1);
    bottom->addWidget(buttons);
    layout->addLayout(bottom);
}

void calib::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_listsFilled)
        fillEnergyLists();
}

void calib::fillEnergyLists() {
    m_listsFilled = true;
    const std::vector<EnergyListChoice> choices = EnergyListChoices(m_libraryPath, m_messages);
    for (QComboBox* box : m_en) {
        for (const EnergyListChoice& c : choices)
            box->addItem(QString::fromStdString(c.label), QString::fromStdString(c.value));
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

// A line's label typed out in full (or completed from the list) stands for its value.
std::array<CalibrationRowText, 3> calib::rowTexts() const {
    std::array<CalibrationRowText, 3> rows;
    for (int row = 0; row < 3; ++row) {
        const QComboBox* box = m_en[row];
        const int line = box->findText(box->currentText(), Qt::MatchExactly);
        const QString energy = line >= 0 ? box->itemData(line).toString() : box->currentText();
        rows[row] = {m_ch[row]->text().toStdString(), energy.toStdString()};
    }
    return rows;
}

void calib::showRowProblems() {
    m_lblProblems->setText(QString::fromStdString(RowProblemText(rowTexts())));
}

bool calib::Compute() {
    const CalibrationCompute r = vexo::Compute(rowTexts(), m_result, m_messages);
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

QString calib::rowProblemText() const {
    return m_lblProblems->text();
}

QString calib::resultText() const {
    return m_lblOffset->text() + " " + m_lblSlope->text() + " " + m_lblQuadratic->text();
}

} // namespace vexo
