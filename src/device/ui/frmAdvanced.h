#pragma once
// The advanced settings: GPIO line functions and polarities, HV inhibit input, live-time
// trim, analog pole/zero, BLR rate, PUR and TRP guards and the digital gain. A control
// is enabled only when the open device answers its parameter. OK writes and reads back.
#include <QDialog>

class QCheckBox;
class QComboBox;
class QSpinBox;

namespace vexo {

class DeviceLibrary;
struct SpectrumDocument;

class frmAdvanced : public QDialog {
    Q_OBJECT
public:
    frmAdvanced(DeviceLibrary& lib, SpectrumDocument& doc, QWidget* parent = nullptr);
    void cmdOk();
    QWidget* control(const QString& name) const { return findChild<QWidget*>(name); }

private:
    QSpinBox* spin(const char* name, int lo, int hi, int value, int32_t capability);
    QCheckBox* check(const char* name, const QString& caption, bool value, int32_t capability);

    DeviceLibrary& m_lib;
    SpectrumDocument& m_doc;
};

} // namespace vexo
