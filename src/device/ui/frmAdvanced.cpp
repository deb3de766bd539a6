#include "device/ui/frmAdvanced.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QSpinBox>
#include <QVBoxLayout>

#include "device/DeviceIO.h"
#include "device/DeviceParams.h"
#include "device/SettingsDisplay.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

frmAdvanced::frmAdvanced(DeviceLibrary& lib, SpectrumDocument& doc, QWidget* parent)
    : QDialog(parent), m_lib(lib), m_doc(doc) {
    setWindowTitle("Advanced settings");
    auto* form = new QFormLayout;
    form->addRow("GPIO 1 function:", spin("txtGPIO1Func", 0, 127, doc.lGPIO1Func, kCapGpio));
    form->addRow("", check("chkGPIO1Neg", "GPIO 1 negative", doc.bGPIO1Neg != 0, kCapGpio));
    form->addRow("GPIO 2 function:", spin("txtGPIO2Func", 0, 127, doc.lGPIO2Func, kCapGpio));
    form->addRow("", check("chkGPIO2Neg", "GPIO 2 negative", doc.bGPIO2Neg != 0, kCapGpio));
    form->addRow("", check("chkHVInhibit", "HV inhibit input enabled", doc.lHVInhibitEnable != 0,
                           kCapHVInhibit));
    form->addRow("", check("chkHVInhibitNeg", "HV inhibit active low", doc.bHVInhibitNeg != 0,
                           kCapHVInhibit));
    form->addRow("Live-time trim:", spin("txtLTTrim", -512, 511, doc.lLTTrim, kCapLTTrim));
    form->addRow("Analog pole/zero:", spin("txtAnalogPZ", 0, 4095, doc.lAnalogPZ, kCapAnalogPZ));
    form->addRow("BLR rate:", spin("txtBLRRate", 0, 3, doc.lBLRRate, kCapBLRRate));
    form->addRow("PUR guard:", spin("txtPURGuard", 0, 7, doc.lPURGuard, kCapPURGuard));
    form->addRow("TRP guard:", spin("txtTRPGuard", 0, 7, doc.lTRPGuard, kCapTRPGuard));
    auto* digital = new QComboBox;
    digital->setObjectName("cmbDigitalGain");
    for (int code = 0; code < kDigitalGainCodes; ++code)
        digital->addItem(QString("x%1").arg(GainFactor(code)));
    digital->setCurrentIndex(std::clamp(doc.lDigitalGain, 0, kDigitalGainCodes - 1));
    form->addRow("Digital gain:", digital);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmAdvanced::cmdOk);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

QSpinBox* frmAdvanced::spin(const char* name, int lo, int hi, int value, int32_t capability) {
    auto* box = new QSpinBox;
    box->setObjectName(name);
    box->setRange(lo, hi);
    box->setValue(value);
    box->setEnabled((m_doc.lCapabilities & capability) != 0);
    return box;
}

QCheckBox* frmAdvanced::check(const char* name, const QString& caption, bool value,
                              int32_t capability) {
    auto* box = new QCheckBox(caption);
    box->setObjectName(name);
    box->setChecked(value);
    box->setEnabled((m_doc.lCapabilities & capability) != 0);
    return box;
}

void frmAdvanced::cmdOk() {
    auto value = [this](const char* name) { return findChild<QSpinBox*>(name)->value(); };
    auto on = [this](const char* name) { return findChild<QCheckBox*>(name)->isChecked() ? 1 : 0; };
    m_doc.lGPIO1Func = value("txtGPIO1Func");
    m_doc.bGPIO1Neg = on("chkGPIO1Neg");
    m_doc.lGPIO2Func = value("txtGPIO2Func");
    m_doc.bGPIO2Neg = on("chkGPIO2Neg");
    m_doc.lHVInhibitEnable = on("chkHVInhibit");
    m_doc.bHVInhibitNeg = on("chkHVInhibitNeg");
    m_doc.lLTTrim = value("txtLTTrim");
    m_doc.lAnalogPZ = value("txtAnalogPZ");
    m_doc.lBLRRate = value("txtBLRRate");
    m_doc.lPURGuard = value("txtPURGuard");
    m_doc.lTRPGuard = value("txtTRPGuard");
    m_doc.lDigitalGain = findChild<QComboBox*>("cmbDigitalGain")->currentIndex();
    if (m_doc.hDevice != 0) {
        WriteAllParams(m_lib, m_doc); // the digital gain travels with the main settings
        ReadAllParams(m_lib, m_doc);
    }
    accept();
}

} // namespace vexo
