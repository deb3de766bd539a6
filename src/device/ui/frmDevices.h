#pragma once
// The device list: searches in the background once a second (tmrSearch) and lists what
// the library found; Open or a double click picks a row, Cancel gives up.
#include <QDialog>
#include <QTimer>
#include <memory>

#include "device/DeviceSearch.h"

class QLabel;
class QTreeWidget;

namespace vexo {

class frmDevices : public QDialog {
    Q_OBJECT
public:
    frmDevices(DeviceLibrary& lib, Messages& messages, QWidget* parent = nullptr);
    ~frmDevices() override;

    // The choice after the window closed (kDevicesCancel unless Open succeeded).
    const DeviceChoice& choice() const { return m_search->choice(); }
    // One tmrSearch tick, also callable by tests.
    void tmrSearch();
    QTreeWidget* lvDevices() const { return m_list; }
    QLabel* searchingLabel() const { return m_searching; }
    void cmdOpen();
    void cmdSearch();

protected:
    void done(int result) override;

private:
    void showRows();

    DeviceLibrary& m_lib;
    Messages& m_messages;
    std::unique_ptr<DeviceSearch> m_search;
    QTimer m_timer;
    QTreeWidget* m_list = nullptr;
    QLabel* m_searching = nullptr; // "searching…" while the list is empty
    bool m_closed = false;
};

// Shows the list modally and returns the user's choice.
DeviceChoice ChooseDevice(DeviceLibrary& lib, Messages& messages, QWidget* parent);

} // namespace vexo
