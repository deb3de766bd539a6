#pragma once
// The batch window: where the spectra go, how many, the wait between them, what is
// done after each, and how the files are named. Start checks the fields and hands the
// settings to the batch sequence, after a warning when the batch would repeat a reached
// preset.
#include <QDialog>
#include <functional>

#include "device/BatchSettings.h"

class QCheckBox;
class QLineEdit;

namespace vexo {

class Messages;

class frmBatch : public QDialog {
    Q_OBJECT
public:
    // `start` runs with the checked settings when the user presses Start. `sampleId` is
    // the spectrum ID that "Begin with the spectrum ID" puts into the file names.
    frmBatch(const BatchSettings& initial, std::string sampleId, Messages& messages,
             std::function<void(const BatchSettings&)> start, QWidget* parent = nullptr);

    void cmdStart();
    QWidget* control(const QString& name) const { return findChild<QWidget*>(name); }

private:
    BatchWindowFields fields() const;
    void checkField(BatchField field);
    void focusField(BatchField field);
    QCheckBox* addCheck(const char* name, const QString& caption, bool value);

    BatchSettings m_base;
    std::string m_sampleId;
    Messages& m_messages;
    std::function<void(const BatchSettings&)> m_start;
    QLineEdit* m_dir = nullptr;
    QLineEdit* m_count = nullptr;
    QLineEdit* m_wait = nullptr;
    QLineEdit* m_tag = nullptr;
    bool m_checking = false; // a message box takes the focus; don't check again then
    bool checked(const char* name) const;
};

} // namespace vexo
