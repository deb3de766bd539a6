#pragma once
// The advanced settings: GPIO line functions and polarities, HV inhibit input, live-time
// trim, analog pole/zero, BLR rate, PUR and TRP guards and the digital gain. A control
// is enabled only when the open device answers its parameter; each says its unit and
// what it does in its tool tip. OK writes and reads back.
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
    // A box of device steps lo..hi, shown with `suffix` (its unit, may be empty).
    QSpinBox* spin(const char* name, int lo, int hi, int value, int32_t capability,
                   const QString& suffix, const QString& tip);
    QCheckBox* check(const char* name, const QString& caption, bool value, int32_t capability,
                     const QString& tip);

    DeviceLibrary& m_lib;
    SpectrumDocument& m_doc;
};

} // namespace vexo
