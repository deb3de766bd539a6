#include "device/ui/frmDeviceInfo.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "base/NumberText.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

frmDeviceInfo::frmDeviceInfo(const SpectrumDocument& doc, QWidget* parent) : QDialog(parent) {
    setWindowTitle("Device information");
    auto* form = new QFormLayout;
    auto row = [form](const char* caption, const std::string& value) {
        auto* label = new QLabel(QString::fromStdString(value));
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        form->addRow(caption, label);
    };
    row("Device name:", doc.szDeviceName);
    row("Serial number:", doc.szDeviceSerial);
    row("Device path:", doc.szDevicePath);
    row("Firmware version:", doc.szFirmwareVersion);
    row("Firmware date:", doc.szFirmwareDate);
    row("Production date:", doc.szProductionDate);
    row("Clock:", std::to_string(doc.lClockHz) + " Hz");
    row("Maximum high voltage:", FormatSingle(doc.sngMaxHV, "0") + " V");
    row("Fine gain steps:", std::to_string(doc.lFineGainMax));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

} // namespace vexo
