#pragma once
// The energy calibration dialog: up to three channel/energy pairs give a line through
// the origin, a line or a parabola. Channels are typed or handed in from the plot
// (SetChannel, into the row whose channel box last had the focus); energies are typed
// or picked from the default nuclide library's lines.
// The main window shows it as a tool window, not modal, so the plot keeps taking clicks
// while it is open.
#include <QDialog>
#include <array>
#include <filesystem>
#include <functional>

#include "spectrum/CalibrationSolver.h"
#include "spectrum/EnergyCalibration.h"

class QComboBox;
class QLabel;
class QLineEdit;

namespace vexo {

class Messages;
struct SpectrumDocument;

// What the dialog asks of the main window.
struct CalibHooks {
    std::function<void(int32_t channel)> setCursor; // typing a channel moves the cursor
    std::function<void()> applyCalibration;         // the main window's Calibrate
};

class calib : public QDialog {
    Q_OBJECT
public:
    // `libraryPath` is the default nuclide library ("None" or a missing file: the
    // energy lists stay empty after a message).
    calib(SpectrumDocument& doc, const std::filesystem::path& libraryPath, Messages& messages,
          CalibHooks hooks, QWidget* parent = nullptr);

    // Writes `channel` into the active row's channel box (row A until one had the focus).
    void SetChannel(int32_t channel);
    // Fits through the valid rows and shows the coefficients; true when computed.
    bool Compute();
    // OK: Compute, ask, and on Yes apply to the document and close.
    void cmdOk();

    QLineEdit* txtCh(int row) const { return m_ch[row]; }
    QComboBox* cmbEn(int row) const { return m_en[row]; }
    QString resultText() const; // "offset slope quadratic" as the labels show them
    // Why filled-in rows do not count, as shown beside OK ("" when every row counts).
    QString rowProblemText() const;
    int activeRow() const { return m_active; }
    const EnergyCalibration& candidate() const { return m_result; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    // The energy lists are filled when the dialog opens, not when it is created to
    // hold a clicked channel.
    void showEvent(QShowEvent* event) override;

private:
    void fillEnergyLists();
    std::array<CalibrationRowText, 3> rowTexts() const;
    void showRowProblems();

    SpectrumDocument& m_doc;
    std::filesystem::path m_libraryPath;
    bool m_listsFilled = false;
    Messages& m_messages;
    CalibHooks m_hooks;
    std::array<QLineEdit*, 3> m_ch{};
    std::array<QComboBox*, 3> m_en{};
    QLabel* m_lblOffset = nullptr;
    QLabel* m_lblSlope = nullptr;
    QLabel* m_lblQuadratic = nullptr;
    QLabel* m_lblProblems = nullptr;
    int m_active = 0; // 0 = row A
    EnergyCalibration m_result;
    bool m_computed = false;
};

} // namespace vexo
