#pragma once
// The MCA settings window: acquisition mode and channels, presets, amplifier (polarity,
// gains, shaping, pole/zero, threshold, discriminators, BLR, PUR) and high voltage of
// the open analyser, shown from the record, and the energy calibration kept in the
// device (offset, slope, quadratic term). The window shows the settings the device
// holds, read afresh at each refresh, never the record's snapshot, which may be a file's.
// Apply writes everything and reads it back; Store keeps the device's settings in its
// permanent memory.
#include <QWidget>
#include <functional>
#include <memory>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QRadioButton;
class QSpinBox;

namespace vexo {

class DeviceLibrary;
class Messages;
struct SpectrumDocument;

class Settings : public QWidget {
    Q_OBJECT
public:
    // `applied` runs after Apply has read the settings back (the main window redraws).
    Settings(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages,
             std::function<void()> applied, QWidget* parent = nullptr);
    ~Settings() override;

    void refreshControls(); // device (or, with none open, record) -> controls
    // Only what follows the spectrum's calibration (the discriminator energies), so that a
    // new calibration shows here without discarding edits not yet applied.
    void refreshCalibration();
    // The state field from an HV word polled elsewhere (the refresh tick keeps it live).
    void setHVState(int32_t hvWord);
    void cmdApply();
    void cmdStore();
    void cmdAdvanced();
    QWidget* control(const QString& name) const { return findChild<QWidget*>(name); }

private:
    QWidget* acquisitionGroup();
    QWidget* amplifierGroup();
    QWidget* voltageGroup();
    QWidget* calibrationGroup();
    void collect(); // controls -> m_device
    void updateModeControls();
    void holdToChannels(); // channel boxes within the chosen channel count
    void showFineFactor();
    void showHVState();

    DeviceLibrary& m_lib;
    SpectrumDocument& m_doc;
    Messages& m_messages;
    std::function<void()> m_applied;
    std::unique_ptr<SpectrumDocument> m_device; // the settings shown and applied
    QComboBox* m_mode = nullptr;
    QComboBox* m_channels = nullptr;
    QCheckBox* m_timeOn = nullptr;
    QRadioButton* m_live = nullptr;
    QRadioButton* m_real = nullptr;
    QDoubleSpinBox* m_presetTime = nullptr;
    QCheckBox* m_countsOn = nullptr;
    QSpinBox* m_presetCounts = nullptr;
    QSpinBox* m_presetFirst = nullptr;
    QSpinBox* m_presetLast = nullptr;
    QDoubleSpinBox* m_dwell = nullptr;
    QSpinBox* m_scaLow = nullptr;
    QSpinBox* m_scaHigh = nullptr;
    QRadioButton* m_negative = nullptr;
    QRadioButton* m_positive = nullptr;
    QComboBox* m_coarse = nullptr;
    QSpinBox* m_fine = nullptr;
    QLabel* m_fineFactor = nullptr;
    QDoubleSpinBox* m_rise = nullptr;
    QDoubleSpinBox* m_flat = nullptr;
    QSpinBox* m_poleZero = nullptr;
    QSpinBox* m_threshold = nullptr;
    QSpinBox* m_lld = nullptr;
    QSpinBox* m_uld = nullptr;
    QCheckBox* m_blr = nullptr;
    QCheckBox* m_pur = nullptr;
    QDoubleSpinBox* m_hv = nullptr;
    QCheckBox* m_hvOn = nullptr;
    QLabel* m_hvState = nullptr;
    QLabel* m_lldEnergy = nullptr;
    QLabel* m_uldEnergy = nullptr;
    QDoubleSpinBox* m_calOffset = nullptr;
    QDoubleSpinBox* m_calSlope = nullptr;
    QDoubleSpinBox* m_calQuadratic = nullptr;
};

} // namespace vexo
