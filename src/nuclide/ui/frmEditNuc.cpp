#include "nuclide/ui/frmEditNuc.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <cmath>
#include <optional>

#include "base/Messages.h"
#include "base/NumberText.h"
#include "nuclide/NuclideLibrary.h"

namespace vexo {
namespace {

QString Number(float value) {
    return QString::fromStdString(LibraryNumberText(value));
}

} // namespace

frmEditNuc::frmEditNuc(const clsNuclide& line, Messages& messages, QWidget* parent)
    : QDialog(parent), m_line(line), m_messages(messages) {
    setWindowTitle("Edit nuclide line");
    auto* form = m_form = new QFormLayout;
    addBox(form, "txtName", "Nuclide", QString::fromStdString(line.szElemName));
    addBox(form, "txtAtNo", "Atomic number", QString::number(line.nAtNum));
    addBox(form, "txtHL", "Half-life", Number(line.sHL()));
    addBox(form, "txtDHL", "Half-life uncertainty", Number(line.sDHL));
    m_units = new QComboBox;
    for (int unit = Picoseconds; unit <= Years; ++unit)
        m_units->addItem(QString(HalfLifeUnitText(unit)).trimmed(), unit);
    m_units->setCurrentIndex(std::max(0, m_units->findData(line.eUnits())));
    form->addRow("Half-life unit", m_units);
    addBox(form, "txtEn", "Energy (keV)", Number(line.sEnergy));
    addBox(form, "txtDEn", "Energy uncertainty (keV)", Number(line.sDEnergy));
    addBox(form, "txtInt", "Intensity (%)", Number(line.sIntensity));
    addBox(form, "txtDInt", "Intensity uncertainty (%)", Number(line.sDIntensity));
    m_radType = new QComboBox;
    for (int row = 0; row < kRadiationRows; ++row)
        m_radType->addItem(RadiationTableRow(row)->text, row);
    auto current = RadiationRowOfText(line.szDecayRadEx());
    m_radType->setCurrentIndex(current ? *current : 3); // gamma for a line without a type
    form->addRow("Rad Type", m_radType);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmEditNuc::cmdOk);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

QLineEdit* frmEditNuc::addBox(QFormLayout* form, const char* key, const QString& caption,
                              const QString& value) {
    auto* box = new QLineEdit(value);
    box->setObjectName(key);
    form->addRow(caption, box);
    m_boxes[key] = box;
    return box;
}

void frmEditNuc::cmdOk() {
    std::map<std::string, float> numbers;
    for (const char* key : {"txtAtNo", "txtHL", "txtDHL", "txtEn", "txtDEn", "txtInt", "txtDInt"}) {
        auto value = StrictDouble(m_boxes[key]->text().trimmed().toStdString());
        if (!value || std::abs(*value) > 3.0e38) {
            auto* label = qobject_cast<QLabel*>(m_form->labelForField(m_boxes[key]));
            m_messages.exclamation("Enter a number for " +
                                   (label ? label->text() : QString(key)).toStdString());
            m_boxes[key]->setFocus();
            return;
        }
        numbers[key] = static_cast<float>(*value);
    }
    const float z = numbers["txtAtNo"];
    if (z < 0 || z > 200 || z != static_cast<int>(z)) {
        m_messages.exclamation("The atomic number must be a whole number from 0 to 200");
        return;
    }
    m_line.szElemName = m_boxes["txtName"]->text().trimmed().toStdString();
    m_line.nAtNum = static_cast<int16_t>(z);
    m_line.bSetHL(numbers["txtHL"], numbers["txtDHL"], UnitCode(m_units->currentData().toInt()));
    m_line.sEnergy = numbers["txtEn"];
    m_line.sDEnergy = numbers["txtDEn"];
    m_line.sIntensity = numbers["txtInt"];
    m_line.sDIntensity = numbers["txtDInt"];
    m_line.bSetRadType(RadiationCode(m_radType->currentData().toInt()));
    accept();
}

} // namespace vexo
