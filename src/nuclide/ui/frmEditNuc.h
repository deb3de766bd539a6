#pragma once
// Edits one line of the nuclide editor's library list: name, atomic number, half-life
// with unit and uncertainty, energy, intensity, their uncertainties and radiation type.
#include <QDialog>
#include <map>

#include "nuclide/clsNuclide.h"

class QComboBox;
class QFormLayout;
class QLineEdit;

namespace vexo {

class Messages;

class frmEditNuc : public QDialog {
    Q_OBJECT
public:
    frmEditNuc(const clsNuclide& line, Messages& messages, QWidget* parent = nullptr);

    // OK: takes the boxes into the line and closes; a box that does not hold a number
    // (or an atomic number outside 0..200) is reported and the dialog stays open.
    void cmdOk();
    const clsNuclide& line() const { return m_line; }

    QLineEdit* box(const char* key) const { return m_boxes.at(key); }
    QComboBox* cmbUnits() const { return m_units; }
    QComboBox* cmbRadType() const { return m_radType; }

private:
    QLineEdit* addBox(QFormLayout* form, const char* key, const QString& caption,
                      const QString& value);

    QFormLayout* m_form = nullptr;
    clsNuclide m_line;
    Messages& m_messages;
    std::map<std::string, QLineEdit*> m_boxes;
    QComboBox* m_units = nullptr;
    QComboBox* m_radType = nullptr;
};

} // namespace vexo
