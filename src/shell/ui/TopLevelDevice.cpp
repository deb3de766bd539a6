// The main window's device side: the controllers, their timers and the Connect,
// Disconnect, Start, Stop and Clear commands.
#include <QAction>
#include <QApplication>
#include <QLabel>

#include "base/AppDir.h"
#include "base/Messages.h"
#include "device/AcquisitionController.h"
#include "device/BatchController.h"
#include "device/ConnectionController.h"
#include "device/DeviceLibrary.h"
#include "device/HighVoltage.h"
#include "device/ScopeController.h"
#include "device/ui/Scope.h"
#include "device/ui/Settings.h"
#include "device/ui/frmAutoConnect.h"
#include "device/ui/frmBatch.h"
#include "device/ui/frmDeviceInfo.h"
#include "device/ui/frmDevices.h"
#include "plot/ui/SpectrumPlot.h"
#include "shell/MeasurementCheckpoint.h"
#include "shell/ui/TopLevel.h"

#include <QProgressBar>
#include <algorithm>

namespace vexo {

namespace {

// A tool window opens over the middle of the main window rather than wherever the window
// system puts it (dialogs such as the batch window are centred by Qt itself).
void CentreOver(QWidget* child, const QWidget* parent) {
    child->adjustSize();
    QRect frame(QPoint(), child->size());
    frame.moveCenter(parent->frameGeometry().center());
    child->move(frame.topLeft());
}

} // namespace

void TopLevel::createControllers() {
    DeviceLibraryLoad load = DeviceLibrary::Load();
    if (!load.library) {
        // Spectra can still be opened and saved; Connect explains why it cannot work.
        m_libError = load.error;
        return;
    }
    m_lib = std::move(load.library);

    AcquisitionHooks ah;
    ah.refreshMainWindow = [this](RefreshCode code) {
        RefreshMainWindow(code);
        showAcquisitionTexts();
    };
    // One redraw per pass, once the spectrum, the status and the ROI figures are all new.
    ah.updated = [this](const AcquisitionUpdate& update) {
        if (update.spectrumRead) {
            m_shown = SpectrumShown::Device;
            updateTitle();
            DisplaySpectrum();
            UpdateInfo();
        }
        if (update.statusPolled && m_settingsWindow)
            m_settingsWindow->setHVState(m_acq->hvState());
        showAcquisitionTexts();
        m_checkpoint->tick(m_doc, m_acq->bAcqActive());
    };
    // The same clean-up as Disconnect: the device windows would talk to a closed handle.
    ah.connectionLost = [this] {
        m_tmrRefresh.stop();
        m_tmrBatchWait.stop();
        if (m_scopeWindow)
            m_scopeWindow->close();
        if (m_settingsWindow)
            m_settingsWindow->close();
        RefreshMainWindow(RefreshCode::All);
    };
    ah.scopeCycle = [this] {
        if (m_scopeWindow && m_scopeWindow->isVisible())
            m_scopeWindow->DisplayWaveform();
    };
    m_acq = std::make_unique<AcquisitionController>(*m_lib, m_doc, m_rois, *m_messages, ah);

    ConnectionHooks ch;
    ch.refreshMainWindow = [this](RefreshCode code) { RefreshMainWindow(code); };
    ch.displaySpectrumAndStatus = [this] {
        m_acq->deviceConnected();
        m_acq->showDevice();
    };
    ch.closeDeviceWindows = [this] {
        if (m_scopeWindow)
            m_scopeWindow->close();
        if (m_settingsWindow)
            m_settingsWindow->close();
    };
    ch.refreshSettingsControls = [this] {
        if (m_settingsWindow)
            m_settingsWindow->refreshControls();
    };
    ch.setRefreshTimer = [this](bool on) { on ? m_tmrRefresh.start() : m_tmrRefresh.stop(); };
    ch.rememberDetector = [this](const std::string& path) {
        RememberDetector(m_settings, path, m_appDir, *m_messages);
    };
    m_connection = std::make_unique<ConnectionController>(*m_lib, m_doc, *m_messages, ch);
    m_autoConnect = std::make_unique<AutoConnect>(*m_lib, m_doc, *m_messages, ch);

    BatchHooks bh;
    bh.refreshMainWindow = [this](RefreshCode code) {
        RefreshMainWindow(code);
        showAcquisitionTexts();
    };
    bh.setWaitTimer = [this](bool on) { on ? m_tmrBatchWait.start() : m_tmrBatchWait.stop(); };
    bh.processEvents = [] { QApplication::processEvents(); };
    bh.rememberBatchDir = [this](const std::string& dir) {
        RememberBatchDir(m_settings, dir, m_appDir, *m_messages);
    };
    bh.processSettings = [this] { return ProcessSettingsFrom(m_settings); };
    bh.fileSaved = [this](const std::string&, bool saved) {
        if (saved)
            m_checkpoint->saved(m_doc);
    };
    m_batch = std::make_unique<BatchController>(*m_acq, WithTrailingSeparator(ExecutableDir()), bh);
    m_scope = std::make_unique<ScopeController>(*m_lib, m_doc);

    connect(&m_tmrRefresh, &QTimer::timeout, this, [this] { m_acq->tick(); });
    connect(&m_tmrBatchWait, &QTimer::timeout, this, [this] { m_batch->tmrBatchWait(); });
    connect(&m_tmrConnect, &QTimer::timeout, this, &TopLevel::tmrConnect);
}

bool TopLevel::needDevice() {
    if (m_lib)
        return true;
    m_messages->critical("The device library could not be loaded: " + m_libError);
    return false;
}

void TopLevel::startAutoConnect() {
    if (!needDevice())
        return;
    m_autoConnect->start(m_settings.DetectorPath, m_settings.ApplyHV);
    m_frmAutoConnect = new frmAutoConnect(*m_autoConnect, this);
    m_frmAutoConnect->setAttribute(Qt::WA_DeleteOnClose);
    m_frmAutoConnect->show();
    m_tmrConnect.start();
}

void TopLevel::tmrConnect() {
    m_autoConnect->tick();
    if (m_frmAutoConnect)
        m_frmAutoConnect->showState();
    if (!m_autoConnect->timerEnabled())
        m_tmrConnect.stop();
    if (m_doc.hDevice != 0)
        RefreshMainWindow(RefreshCode::Connection);
}

void TopLevel::showAcquisitionTexts() {
    if (!m_acq)
        return;
    const AcquisitionPanelTexts& t = m_acq->panelTexts();
    setPanelText(StatusPanel::Status, QString::fromStdString(t.status));
    setPanelText(StatusPanel::Preset, QString::fromStdString(t.preset));
    setPanelText(StatusPanel::Elapsed, QString::fromStdString(t.elapsed));
    // Kept in view while it holds (a failing read, an empty run with the high voltage off).
    if (!t.notice.empty())
        showNotice(QString::fromStdString(t.notice));
    setPanelText(StatusPanel::CountRate, QString::fromStdString(t.countRate));
    setPanelText(StatusPanel::Icr, QString::fromStdString(t.icr));
    setPanelText(StatusPanel::HighVoltage,
                 m_doc.hDevice != 0
                     ? QString::fromStdString(DeviceHVPanelText(*m_lib, m_doc, m_acq->hvState()))
                     : QString());
    showRoiReadout();
    if (m_batch) {
        const BatchPanelTexts b = m_batch->panelTexts();
        setPanelText(StatusPanel::Batch, QString::fromStdString(b.batch));
        setPanelText(StatusPanel::BatchCounter, QString::fromStdString(b.counter));
    }
    updateBatchProgress();
}

// A fixed-length batch also shows a bar of the measurements done; an endless one only
// its counter.
void TopLevel::updateBatchProgress() {
    const bool show = m_batch && m_batch->bBatchMode() && !m_batch->settings().bBatchUntilStop;
    m_batchProgress->setVisible(show);
    if (!show)
        return;
    const int count = std::max<int>(1, m_batch->settings().nBatchCount);
    m_batchProgress->setRange(0, count);
    m_batchProgress->setValue(std::clamp<int>(m_batch->nBatchIndex(), 0, count));
}

// The read-out follows the ROI under the cursor, or the first ROI when none holds it.
void TopLevel::showRoiReadout() {
    const std::vector<RoiReadout>& readouts = m_acq->roiReadouts();
    if (readouts.empty())
        return;
    std::size_t pick = 0;
    const int32_t cursor = m_plot41->cursorChannel();
    std::size_t i = 0;
    for (const clsROI& roi : m_rois) {
        if (i < readouts.size() && roi.lROILCh() <= cursor && cursor <= roi.lROIRCh()) {
            pick = i;
            break;
        }
        ++i;
    }
    if (pick >= readouts.size() || !readouts[pick].ok)
        return; // the old figures stay
    const RoiReadout& r = readouts[pick];
    const std::string texts[4] = {r.netArea, r.integral, r.netRate, r.intRate};
    for (int k = 0; k < 4; ++k)
        m_roiLabels[k]->setText(QString::fromStdString(texts[k]));
}

QString TopLevel::roiReadoutText(int index) const {
    return m_roiLabels.at(static_cast<std::size_t>(index))->text();
}

void TopLevel::connectDevice() {
    if (!needDevice())
        return;
    const bool connected =
        m_connection->connect([this] { return ChooseDevice(*m_lib, *m_messages, this); });
    if (connected) {
        DisplaySpectrum();
        UpdateInfo();
    }
}

void TopLevel::disconnectDevice() {
    if (!m_connection)
        return;
    m_tmrBatchWait.stop();
    OfferHVOff(*m_lib, m_doc, *m_messages, HVLeaving::Disconnect);
    m_connection->disconnect();
    RefreshMainWindow(RefreshCode::All);
}

void TopLevel::startAcquisition() {
    if (!needDevice() || !ConfirmStartWithHV(*m_lib, m_doc, *m_messages))
        return;
    m_acq->start();
    showAcquisitionTexts();
}

void TopLevel::stopAcquisition() {
    if (!needDevice())
        return;
    m_acq->stop();
    showAcquisitionTexts();
}

void TopLevel::clearAcquisition() {
    if (!needDevice())
        return;
    m_acq->clear();
    DisplaySpectrum();
    UpdateInfo();
    showAcquisitionTexts();
}

void TopLevel::showBatch() {
    if (!needDevice())
        return;
    BatchSettings initial = m_batch->settings();
    if (initial.szBatchDir.empty())
        initial.szBatchDir = m_settings.BatchDataDir;
    frmBatch dialog(
        initial, m_doc.szSpectrumID, *m_messages,
        [this](const BatchSettings& s) {
            if (!ConfirmStartWithHV(*m_lib, m_doc, *m_messages))
                return;
            m_batch->begin(s);
            RefreshMainWindow(RefreshCode::OptionsBatch);
            showAcquisitionTexts();
        },
        this);
    dialog.exec();
}

Settings* TopLevel::settingsWindow() const {
    return m_settingsWindow.data();
}

void TopLevel::showMcaSettings() {
    if (!needDevice())
        return;
    if (m_doc.hDevice == 0) {
        m_messages->exclamation("Not connected");
        return;
    }
    if (!m_settingsWindow) {
        m_settingsWindow = new Settings(
            *m_lib, m_doc, *m_messages,
            [this] {
                DisplaySpectrum();
                UpdateInfo();
            },
            this);
        CentreOver(m_settingsWindow, this);
    }
    m_settingsWindow->show();
    m_settingsWindow->raise();
}

Scope* TopLevel::scopeWindow() const {
    return m_scopeWindow.data();
}

// The menu's check mark follows the window however it closes: the window reports its
// closing, and the mark is cleared there.
void TopLevel::toggleScope() {
    if (m_scopeWindow) {
        m_scopeWindow->close();
        return;
    }
    if (!needDevice()) {
        UpdateMenu();
        return;
    }
    m_scopeWindow = new Scope(
        *m_scope,
        [this] {
            m_scopeShown = false;
            UpdateMenu();
        },
        this);
    m_scopeShown = true;
    CentreOver(m_scopeWindow, this);
    m_scopeWindow->show();
    UpdateMenu();
}

void TopLevel::showDeviceInfo() {
    if (!needDevice())
        return;
    if (!m_connection->deviceInfo())
        return;
    frmDeviceInfo dialog(m_doc, this);
    dialog.exec();
}

} // namespace vexo
