#pragma once
// The small start-up window shown while the last detector is being connected: what is
// being tried, a cycling progress bar and Cancel. The main window's tmrConnect drives
// AutoConnect and then calls showState().
#include <QDialog>

class QLabel;
class QProgressBar;

namespace vexo {

class AutoConnect;

class frmAutoConnect : public QDialog {
    Q_OBJECT
public:
    frmAutoConnect(AutoConnect& logic, QWidget* parent = nullptr);
    // Copies the label and progress from the logic; closes when the logic closed.
    void showState();
    QProgressBar* pbConnect() const { return m_progress; }
    QLabel* lblConnecting() const { return m_label; }

private:
    AutoConnect& m_logic;
    QLabel* m_label;
    QProgressBar* m_progress;
};

} // namespace vexo
