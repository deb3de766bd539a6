#include "device/ui/Settings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "base/Messages.h"
#include "device/DeviceIO.h"
#include "device/DeviceLibrary.h"
#include "device/SettingsDisplay.h"
#include "device/ui/frmAdvanced.h"
#include "spectrum/EnergyCalibration.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

namespace {

template <class Box> Box* Named(Box* box, const char* name) {
    box->setObjectName(name);
    return box;
}

QSpinBox* IntBox(const char* name, int lo, int hi) {
    auto* box = Named(new QSpinBox, name);
    box->setRange(lo, hi);
    return box;
}

QDoubleSpinBox* RealBox(const char* name, double lo, double hi, int decimals,
                        const QString& suffix) {
    auto* box = Named(new QDoubleSpinBox, name);
    box->setRange(lo, hi);
    box->setDecimals(decimals);
    box->setSuffix(suffix);
    return box;
}

} // namespace

Settings::Settings(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages,
                   std::function<void()> applied, QWidget* parent)
    : QWidget(parent, Qt::Tool), m_lib(lib), m_doc(doc), m_messages(messages),
      m_applied(std::move(applied)) {
    setWindowTitle("MCA settings");
    setAttribute(Qt::WA_DeleteOnClose);
    auto* columns = new QHBoxLayout;
    columns->addWidget(acquisitionGroup());
    auto* right = new QVBoxLayout;
    right->addWidget(amplifierGroup());
    right->addWidget(voltageGroup());
    right->addWidget(calibrationGroup());
    columns->addLayout(right);
    auto* buttons = new QHBoxLayout;
    const std::pair<const char*, const char*> names[] = {{"cmdApply", "&Apply"},
                                                         {"cmdStore", "&Store"},
                                                         {"cmdAdvanced", "A&dvanced..."},
                                                         {"cmdClose", "&Close"}};
    for (auto [name, caption] : names) {
        auto* b = Named(new QPushButton(caption), name);
        buttons->addWidget(b);
        if (name == std::string("cmdApply"))
            connect(b, &QPushButton::clicked, this, &Settings::cmdApply);
        if (name == std::string("cmdStore"))
            connect(b, &QPushButton::clicked, this, &Settings::cmdStore);
        if (name == std::string("cmdAdvanced"))
            connect(b, &QPushButton::clicked, this, &Settings::cmdAdvanced);
        if (name == std::string("cmdClose"))
            connect(b, &QPushButton::clicked, this, &QWidget::close);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addLayout(buttons);
    connect(m_channels, &QComboBox::currentIndexChanged, this, &Settings::holdToChannels);
    refreshControls();
}

QWidget* Settings::acquisitionGroup() {
    auto* group = new QGroupBox("Acquisition");
    auto* form = new QFormLayout(group);
    m_mode = Named(new QComboBox, "cmbMode");
    m_mode->addItems({"PHA", "MCS"});
    connect(m_mode, &QComboBox::currentIndexChanged, this, &Settings::updateModeControls);
    form->addRow("Mode:", m_mode);
    m_channels = Named(new QComboBox, "cmbChannels");
    for (int n = 256; n <= MAX_CHANNELS; n *= 2)
        m_channels->addItem(QString::number(n), n);
    form->addRow("Channels:", m_channels);
    m_timeOn = Named(new QCheckBox("Time preset"), "chkPresetTime");
    m_presetTime = RealBox("txtPresetTime", 0.0, 1.0e7, 1, " s");
    form->addRow(m_timeOn, m_presetTime);
    auto* which = new QHBoxLayout;
    m_live = Named(new QRadioButton("Live time"), "optLive");
    m_real = Named(new QRadioButton("Real time"), "optReal");
    which->addWidget(m_live);
    which->addWidget(m_real);
    form->addRow("", which);
    m_countsOn = Named(new QCheckBox("Counts preset"), "chkPresetCounts");
    m_presetCounts = IntBox("txtPresetCounts", 0, 2147483647);
    form->addRow(m_countsOn, m_presetCounts);
    m_presetFirst = IntBox("txtPresetFirst", 0, MAX_CHANNELS - 1);
    m_presetLast = IntBox("txtPresetLast", 0, MAX_CHANNELS - 1);
    form->addRow("Counts in channels from:", m_presetFirst);
    form->addRow("to:", m_presetLast);
    m_dwell = RealBox("txtDwell", 0.001, 1.0e5, 3, " s");
    form->addRow("MCS dwell time:", m_dwell);
    m_scaLow = IntBox("txtSCALow", 0, MAX_CHANNELS - 1);
    m_scaHigh = IntBox("txtSCAHigh", 0, MAX_CHANNELS - 1);
    form->addRow("SCA low channel:", m_scaLow);
    form->addRow("SCA high channel:", m_scaHigh);
    return group;
}

QWidget* Settings::amplifierGroup() {
    auto* group = new QGroupBox("Amplifier");
    auto* form = new QFormLayout(group);
    auto* polarity = new QHBoxLayout;
    m_positive = Named(new QRadioButton("Positive"), "optPositive");
    m_negative = Named(new QRadioButton("Negative"), "optNegative");
    polarity->addWidget(m_positive);
    polarity->addWidget(m_negative);
    form->addRow("Input polarity:", polarity);
    m_coarse = Named(new QComboBox, "cmbCoarseGain");
    for (int code = 0; code < kCoarseGainCodes; ++code)
        m_coarse->addItem(QString("x%1").arg(GainFactor(code)));
    form->addRow("Coarse gain:", m_coarse);
    auto* fine = new QHBoxLayout;
    m_fine = IntBox("txtFineGain", 0, 4095);
    m_fineFactor = Named(new QLabel, "lblFineFactor");
    connect(m_fine, &QSpinBox::valueChanged, this, &Settings::showFineFactor);
    fine->addWidget(m_fine);
    fine->addWidget(m_fineFactor);
    form->addRow("Fine gain:", fine);
    m_rise = RealBox("txtRiseTime", 0.0, 100.0, 3, " µs");
    m_flat = RealBox("txtFlatTop", 0.0, 100.0, 3, " µs");
    form->addRow("Rise time:", m_rise);
    form->addRow("Flat top:", m_flat);
    m_poleZero = IntBox("txtPoleZero", 0, 65535);
    form->addRow("Pole/zero:", m_poleZero);
    m_threshold = IntBox("txtThreshold", 0, MAX_CHANNELS - 1);
    form->addRow("Threshold:", m_threshold);
    m_lld = IntBox("txtLLD", 0, MAX_CHANNELS - 1);
    m_uld = IntBox("txtULD", 0, MAX_CHANNELS - 1);
    m_lldEnergy = Named(new QLabel, "lblLLDEnergy");
    m_uldEnergy = Named(new QLabel, "lblULDEnergy");
    connect(m_lld, &QSpinBox::valueChanged, this, &Settings::refreshCalibration);
    connect(m_uld, &QSpinBox::valueChanged, this, &Settings::refreshCalibration);
    auto* lld = new QHBoxLayout;
    lld->addWidget(m_lld);
    lld->addWidget(m_lldEnergy);
    auto* uld = new QHBoxLayout;
    uld->addWidget(m_uld);
    uld->addWidget(m_uldEnergy);
    form->addRow("LLD (channel):", lld);
    form->addRow("ULD (channel):", uld);
    m_blr = Named(new QCheckBox("Baseline restorer (BLR)"), "chkBLR");
    m_pur = Named(new QCheckBox("Pile-up rejection (PUR)"), "chkPUR");
    form->addRow(m_blr);
    form->addRow(m_pur);
    return group;
}

QWidget* Settings::voltageGroup() {
    auto* group = new QGroupBox("High voltage");
    auto* form = new QFormLayout(group);
    m_hv = RealBox("txtHV", 0.0, 1500.0, 0, " V");
    form->addRow("Voltage:", m_hv);
    m_hvOn = Named(new QCheckBox("High voltage on"), "chkHVOn");
    form->addRow(m_hvOn);
    m_hvState = Named(new QLabel, "lblHVState");
    form->addRow("State:", m_hvState);
    return group;
}

// The device's own calibration, carried as 32-bit floats: the boxes show what a float
// keeps. "From spectrum" copies the spectrum's calibration in, to be written by Apply.
QWidget* Settings::calibrationGroup() {
    auto* group = new QGroupBox("Calibration stored in the device");
    auto* form = new QFormLayout(group);
    m_calOffset = RealBox("txtCalOffset", -1.0e5, 1.0e5, 4, " keV");
    m_calSlope = RealBox("txtCalSlope", -1.0e3, 1.0e3, 6, " keV/ch");
    m_calQuadratic = RealBox("txtCalQuadratic", -1.0, 1.0, 9, " keV/ch²");
    form->addRow("Offset:", m_calOffset);
    form->addRow("Slope:", m_calSlope);
    form->addRow("Quadratic:", m_calQuadratic);
    auto* copy = Named(new QPushButton("From s&pectrum"), "cmdCalFromSpectrum");
    connect(copy, &QPushButton::clicked, this, [this] {
        m_calOffset->setValue(m_doc.calibration.dOffset);
        m_calSlope->setValue(m_doc.calibration.dSlope);
        m_calQuadratic->setValue(m_doc.calibration.dQuad);
    });
    form->addRow(copy);
    return group;
}

void Settings::refreshCalibration() {
    const EnergyCalibration& cal = m_doc.calibration;
    const auto energy = [&cal](int32_t ch) {
        return cal.bCalibrated ? QString("%1 keV").arg(ChannelToEnergy(ch, cal), 0, 'f', 1)
                               : QString();
    };
    m_lldEnergy->setText(energy(m_lld->value()));
    m_uldEnergy->setText(energy(m_uld->value()));
}

Settings::~Settings() = default;

void Settings::showFineFactor() {
    if (!m_device)
        return;
    m_fineFactor->setText(
        QString("x%1").arg(FineGainFactor(m_fine->value(), m_device->lFineGainMax), 0, 'f', 4));
}

// A device that has never been given discriminators answers the top of its largest
// channel range; the boxes show (and Apply writes) the top channel of the chosen count.
void Settings::holdToChannels() {
    const int top = std::max(m_channels->currentData().toInt(), 1) - 1;
    for (QSpinBox* box : {m_lld, m_uld, m_presetFirst, m_presetLast, m_scaLow, m_scaHigh})
        box->setMaximum(top);
}

void Settings::updateModeControls() {
    const bool mcs = m_mode->currentIndex() == 1;
    for (QWidget* w : std::initializer_list<QWidget*>{m_dwell, m_scaLow, m_scaHigh})
        w->setEnabled(mcs);
    for (QWidget* w :
         std::initializer_list<QWidget*>{m_timeOn, m_presetTime, m_live, m_real, m_countsOn,
                                         m_presetCounts, m_presetFirst, m_presetLast, m_lld, m_uld})
        w->setEnabled(!mcs);
}

void Settings::refreshControls() {
    m_device = m_doc.hDevice != 0 ? ReadDeviceSettings(m_lib, m_doc)
                                  : std::make_unique<SpectrumDocument>(m_doc);
    const SpectrumDocument& d = *m_device;
    m_mode->setCurrentIndex(d.lMCSMode != 0 ? 1 : 0);
    const int at = m_channels->findData(d.lChannels);
    m_channels->setCurrentIndex(at >= 0 ? at : m_channels->findData(1024));
    holdToChannels();
    const PresetChoice p = PresetChoiceFrom(d.lPresetMode);
    m_timeOn->setChecked(p.timeActive);
    (p.liveTime ? m_live : m_real)->setChecked(true);
    m_presetTime->setValue(d.sngPresetTime);
    m_countsOn->setChecked(p.countsActive);
    m_presetCounts->setValue(d.lPresetCounts);
    m_presetFirst->setValue(d.lPresetFirstCh);
    m_presetLast->setValue(d.lPresetLastCh);
    m_dwell->setValue(d.sngDwellTime);
    m_scaLow->setValue(d.lSCALow);
    m_scaHigh->setValue(d.lSCAHigh);
    (d.lPolarity != 0 ? m_negative : m_positive)->setChecked(true);
    m_coarse->setCurrentIndex(std::clamp(d.lCoarseGain, 0, kCoarseGainCodes - 1));
    m_fine->setRange(0, std::max(d.lFineGainMax, 1));
    m_fine->setValue(d.lFineGain);
    showFineFactor();
    m_rise->setValue(TicksToMicroseconds(d.lRiseTime, d.lClockHz));
    m_flat->setValue(TicksToMicroseconds(d.lFlatTop, d.lClockHz));
    m_poleZero->setValue(d.lPoleZero);
    m_threshold->setValue(d.lThreshold);
    m_lld->setValue(d.lLLD);
    m_uld->setValue(d.lULD);
    m_blr->setChecked(d.lBLR != 0);
    m_pur->setChecked(d.lPUR != 0);
    m_hv->setMaximum(ClampHighVoltage(1.0e9f, d.sngMaxHV));
    m_hv->setValue(d.sngHighVoltage);
    m_hvOn->setChecked(d.lHVOn != 0);
    m_calOffset->setValue(d.dDeviceCal[0]);
    m_calSlope->setValue(d.dDeviceCal[1]);
    m_calQuadratic->setValue(d.dDeviceCal[2]);
    refreshCalibration();
    showHVState();
    updateModeControls();
}

// The state is asked of the device: ramping and inhibit are not kept in the record.
void Settings::showHVState() {
    int32_t word = 0;
    const int32_t status =
        m_doc.hDevice != 0 ? m_lib.getParam(m_doc.hDevice, DeviceParamId::HVState, word) : -1;
    if (status == 0)
        setHVState(word);
    else
        m_hvState->setText("Unknown");
}

void Settings::setHVState(int32_t hvWord) {
    m_hvState->setText(HVStateText(hvWord));
}

void Settings::collect() {
    SpectrumDocument& d = *m_device;
    d.lMCSMode = m_mode->currentIndex();
    d.lChannels = m_channels->currentData().toInt();
    d.lPresetMode = PresetModeFrom(
        {m_timeOn->isChecked(), m_live->isChecked(), m_countsOn->isChecked()}, d.lPresetMode);
    d.sngPresetTime = static_cast<float>(m_presetTime->value());
    d.lPresetCounts = m_presetCounts->value();
    d.lPresetFirstCh = m_presetFirst->value();
    d.lPresetLastCh = m_presetLast->value();
    d.sngDwellTime = static_cast<float>(m_dwell->value());
    d.lSCALow = m_scaLow->value();
    d.lSCAHigh = m_scaHigh->value();
    d.lPolarity = m_negative->isChecked() ? 1 : 0;
    d.lCoarseGain = m_coarse->currentIndex();
    d.lFineGain = m_fine->value();
    d.lRiseTime = MicrosecondsToTicks(m_rise->value(), d.lClockHz, kRiseTicksMin, kRiseTicksMax);
    d.lFlatTop = MicrosecondsToTicks(m_flat->value(), d.lClockHz, kFlatTicksMin, kFlatTicksMax);
    d.lPoleZero = m_poleZero->value();
    d.lThreshold = m_threshold->value();
    d.lLLD = m_lld->value();
    d.lULD = m_uld->value();
    d.lBLR = m_blr->isChecked() ? 1 : 0;
    d.lPUR = m_pur->isChecked() ? 1 : 0;
    d.sngHighVoltage = ClampHighVoltage(static_cast<float>(m_hv->value()), d.sngMaxHV);
    d.lHVOn = m_hvOn->isChecked() ? 1 : 0;
    d.dDeviceCal = {m_calOffset->value(), m_calSlope->value(), m_calQuadratic->value()};
}

void Settings::cmdApply() {
    if (m_doc.hDevice == 0) {
        m_messages.exclamation("Not connected");
        return;
    }
    if (m_mode->currentIndex() == 0) {
        const std::string refusal = DiscriminatorError(m_lld->value(), m_uld->value());
        if (!refusal.empty()) {
            m_messages.exclamation(refusal);
            m_lld->setFocus();
            return;
        }
    }
    collect();
    WriteAllParams(m_lib, *m_device);
    FollowDeviceSettings(m_lib, m_doc);
    refreshControls(); // shows what the device actually took
    if (m_applied)
        m_applied();
}

void Settings::cmdStore() {
    if (m_doc.hDevice == 0) {
        m_messages.exclamation("Not connected");
        return;
    }
    const int32_t status = m_lib.saveSettings(m_doc.hDevice);
    if (status != 0)
        m_messages.critical(ErrorText(status));
}

void Settings::cmdAdvanced() {
    frmAdvanced dialog(m_lib, *m_device, this);
    if (dialog.exec() == QDialog::Accepted)
        FollowDeviceSettings(m_lib, m_doc);
    refreshControls();
}

} // namespace vexo
