#pragma once
// The digital scope: one trace of the analyser's pulse signal, filtered or raw input,
// redrawn from the last trace read whenever the surface repaints. Polling rides on the
// main window's refresh tick (DisplayWaveform).
#include <QWidget>
#include <functional>

class QRadioButton;

namespace vexo {

class ScopeController;

class Scope : public QWidget {
    Q_OBJECT
public:
    // `closed` runs however the window closes (Close button or title bar), so the
    // owner can clear its menu check mark.
    Scope(ScopeController& controller, std::function<void()> closed, QWidget* parent = nullptr);

    // One poll-and-draw cycle; repaints only when a new trace was read.
    void DisplayWaveform();
    QRadioButton* optFiltered() const { return m_filtered; }
    QRadioButton* optInput() const { return m_input; }
    QWidget* screen() const { return m_screen; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    ScopeController& m_controller;
    std::function<void()> m_closed;
    QRadioButton* m_filtered;
    QRadioButton* m_input;
    QWidget* m_screen;
};

} // namespace vexo
