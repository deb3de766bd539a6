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

namespace {

// The filter settings shown as plain boxes of device steps.
struct FilterField {
    const char* label;
    const char* name;
    int lo, hi;
    int32_t SpectrumDocument::*field;
    int32_t capability;
    const char* suffix;
    const char* tip;
};

const FilterField kFilterFields[] = {
    {"Live-time trim:", "txtLTTrim", -512, 511, &SpectrumDocument::lLTTrim, kCapLTTrim, " steps",
     "Fine correction of the live-time clock, in device steps (-512 to 511)"},
    {"Analog pole/zero:", "txtAnalogPZ", 0, 4095, &SpectrumDocument::lAnalogPZ, kCapAnalogPZ,
     " steps", "Pole/zero cancellation of the analog input stage, in device steps (0 to 4095)"},
    {"BLR rate (0 slow - 3 fast):", "txtBLRRate", 0, 3, &SpectrumDocument::lBLRRate, kCapBLRRate,
     "", "How fast the baseline restorer follows the baseline: 0 slowest, 3 fastest"},
    {"PUR guard:", "txtPURGuard", 0, 7, &SpectrumDocument::lPURGuard, kCapPURGuard, " steps",
     "Time a pulse must stand clear of the next before the pile-up rejector accepts it, in "
     "device steps (0 to 7)"},
    {"TRP guard:", "txtTRPGuard", 0, 7, &SpectrumDocument::lTRPGuard, kCapTRPGuard, " steps",
     "Time after a reset of a transistor-reset preamplifier during which pulses are ignored, "
     "in device steps (0 to 7)"},
};

} // namespace

frmAdvanced::frmAdvanced(DeviceLibrary& lib, SpectrumDocument& doc, QWidget* parent)
    : QDialog(parent), m_lib(lib), m_doc(doc) {
    setWindowTitle("Advanced settings");
    auto* form = new QFormLayout;
    for (int line = 1; line <= 2; ++line) {
        const bool first = line == 1;
        form->addRow(QString("GPIO %1 function (code):").arg(line),
                     spin(first ? "txtGPIO1Func" : "txtGPIO2Func", 0, 127,
                          first ? doc.lGPIO1Func : doc.lGPIO2Func, kCapGpio, "",
                          QString("What general-purpose line %1 does, as the device's function "
                                  "code from 0 to 127")
                              .arg(line)));
        form->addRow("", check(first ? "chkGPIO1Neg" : "chkGPIO2Neg",
                               QString("GPIO %1 negative").arg(line),
                               (first ? doc.bGPIO1Neg : doc.bGPIO2Neg) != 0, kCapGpio,
                               QString("Line %1 is active low").arg(line)));
    }
    form->addRow("", check("chkHVInhibit", "HV inhibit input enabled", doc.lHVInhibitEnable != 0,
                           kCapHVInhibit,
                           "The external inhibit input may switch the high voltage off"));
    form->addRow("", check("chkHVInhibitNeg", "HV inhibit active low", doc.bHVInhibitNeg != 0,
                           kCapHVInhibit, "The inhibit input is active when it is low"));
    for (const FilterField& f : kFilterFields)
        form->addRow(f.label,
                     spin(f.name, f.lo, f.hi, doc.*f.field, f.capability, f.suffix, f.tip));
    auto* digital = new QComboBox;
    digital->setObjectName("cmbDigitalGain");
    digital->setToolTip("Gain applied to the digitised pulse heights, after the coarse and fine "
                        "gains (x1 to x1024)");
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

QSpinBox* frmAdvanced::spin(const char* name, int lo, int hi, int value, int32_t capability,
                            const QString& suffix, const QString& tip) {
    auto* box = new QSpinBox;
    box->setObjectName(name);
    box->setSuffix(suffix);
    box->setToolTip(tip);
    box->setRange(lo, hi);
    box->setValue(value);
    box->setEnabled((m_doc.lCapabilities & capability) != 0);
    return box;
}

QCheckBox* frmAdvanced::check(const char* name, const QString& caption, bool value,
                              int32_t capability, const QString& tip) {
    auto* box = new QCheckBox(caption);
    box->setObjectName(name);
    box->setToolTip(tip);
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
    for (const FilterField& f : kFilterFields)
        m_doc.*f.field = value(f.name);
    m_doc.lDigitalGain = findChild<QComboBox*>("cmbDigitalGain")->currentIndex();
    if (m_doc.hDevice != 0) {
        WriteAllParams(m_lib, m_doc); // the digital gain travels with the main settings
        ReadAllParams(m_lib, m_doc);
    }
    accept();
}

} // namespace vexo
