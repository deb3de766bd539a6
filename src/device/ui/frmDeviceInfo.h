#pragma once
// The device information dialog: the identity of the open analyser as read at
// connection.
#include <QDialog>

namespace vexo {

struct SpectrumDocument;

class frmDeviceInfo : public QDialog {
    Q_OBJECT
public:
    frmDeviceInfo(const SpectrumDocument& doc, QWidget* parent = nullptr);
};

} // namespace vexo
