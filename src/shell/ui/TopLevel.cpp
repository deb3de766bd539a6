#include "shell/ui/TopLevel.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>

#include "base/AppDir.h"
#include "base/DateTime.h"
#include "device/AcquisitionController.h"
#include "device/BatchController.h"
#include "device/ConnectionController.h"
#include "device/DeviceLibrary.h"
#include "device/HighVoltage.h"
#include "device/ScopeController.h"
#include "device/ui/Settings.h"
#include "plot/ui/SpectrumPlot.h"
#include "shell/MeasurementCheckpoint.h"
#include "shell/ui/PlotAppearance.h"
#include "shell/ui/QtMessages.h"
#include "spectrum/CountRate.h"
#include "spectrum/ui/calib.h"

namespace vexo {

TopLevel::TopLevel(const std::filesystem::path& appDir, Messages* messages)
    : m_appDir(appDir), m_messages(messages) {
    if (!m_messages) {
        m_ownMessages = std::make_unique<QtMessages>(this);
        m_messages = m_ownMessages.get();
    }
    setWindowTitle("Vexo");
    setAcceptDrops(true);
    buildMenus();
    buildToolbar();
    buildStatusBar();
    buildCentral();
    m_tmrRefresh.setInterval(kRefreshIntervalMs);
    m_tmrConnect.setInterval(kConnectIntervalMs);
    m_tmrBatchWait.setInterval(kBatchWaitIntervalMs);
    startUp();
}

// A window destroyed without being closed (a test, an aborted start) still releases
// the device before the library goes away.
TopLevel::~TopLevel() {
    if (m_connection && m_doc.hDevice != 0)
        m_connection->exit();
}

// Start-up, in the order the program has always followed.
void TopLevel::startUp() {
    m_doc = SpectrumDocument{}; // no device, nothing acquiring or loaded, not calibrated
    m_zoom = {false, 0, m_doc.lChannels - 1};
    m_doc.dtMeasured = NowSerial();
    m_rois.clear();
    std::error_code ec;
    std::filesystem::current_path(m_appDir, ec);
    if (ec)
        m_messages->critical("Cannot change to the program folder " + m_appDir.string() + ": " +
                             ec.message());
    if (!LoadSettings(m_settings, m_appDir, *m_messages))
        OfferShippedNuclideLibrary(m_settings, ExecutableDir());
    m_doc.resetCalibration();
    restorePlacement();

    for (SpectrumPlot* p : {m_plot41, m_plot42}) {
        p->setDocument(&m_doc);
        p->setAppearance(AppearanceFrom(m_settings));
        p->setYScale(static_cast<YScale>(std::clamp(m_settings.SpctScaleMode, 0, 2)));
        p->setGraphType(m_settings.SpctGraphType);
    }
    m_checkpoint = std::make_unique<MeasurementCheckpoint>(m_appDir, *m_messages);
    createControllers();
    RefreshMainWindow(RefreshCode::All);
    RefreshMainWindow(RefreshCode::OptionsBatch);
    DisplaySpectrum();
    UpdateInfo();
    // A measurement that a crash kept from being saved.
    if (m_checkpoint->offerRecovery(m_doc, m_rois))
        showOpenedSpectrum();
    if (m_settings.OpenLastDetectorUsed)
        startAutoConnect();
}

void TopLevel::restorePlacement() {
    const QRect screen = QGuiApplication::primaryScreen()
                             ? QGuiApplication::primaryScreen()->geometry()
                             : QRect(0, 0, 1280, 800);
    LoadFormLocation(m_location, m_appDir, screen.width(), screen.height());
    resize(1000, 600);
    if (!m_location.RememberLoc)
        return;
    // Pixels are pixels here: the twips-per-pixel factor of the stored values is 1.
    setGeometry(m_location.Left, m_location.Top, m_location.Width, m_location.Height);
    if (m_location.State == 2)
        setWindowState(Qt::WindowMaximized);
}

void TopLevel::storePlacement() {
    const QRect g = isMaximized() || isMinimized() ? normalGeometry() : geometry();
    m_location.Left = g.left();
    m_location.Top = g.top();
    m_location.Width = g.width();
    m_location.Height = g.height();
    m_location.State = isMinimized() ? 1 : isMaximized() ? 2 : 0;
    SaveFormLocation(m_location, m_appDir);
}

// Shut-down: the device is closed first, then the placement is stored.
void TopLevel::closeEvent(QCloseEvent* event) {
    m_tmrRefresh.stop();
    m_tmrConnect.stop();
    m_tmrBatchWait.stop();
    if (m_lib)
        OfferHVOff(*m_lib, m_doc, *m_messages, HVLeaving::Exit);
    if (m_connection)
        m_connection->exit();
    storePlacement();
    event->accept();
}

MainWindowFlags TopLevel::flags() const {
    MainWindowFlags f;
    f.connected = m_doc.hDevice != 0;
    f.acquiring = m_acq && m_acq->bAcqActive();
    f.batchOn = m_acq && m_acq->bBatchMode();
    f.batchWaiting = m_batch && m_batch->bBatchWaiting();
    f.bFromFile = m_doc.bFromFile;
    f.zoomed = m_zoom.zoomed;
    f.yScaleMode = m_settings.SpctScaleMode;
    f.xUnitMode = static_cast<int>(m_xUnit);
    f.graphType = m_settings.SpctGraphType;
    f.externalProcessing = m_settings.EnableExtProcessing;
    f.roiCount = m_rois.nGetROINo();
    f.scopeShown = m_scopeShown;
    f.szFileName = m_doc.szFileName;
    f.szSpectrumID = m_doc.szSpectrumID;
    f.szDeviceName = m_doc.szDeviceName;
    f.szDeviceSerial = m_doc.szDeviceSerial;
    f.countRate = CountRate(m_doc);
    if (m_batch) {
        f.batchDone = m_batch->nBatchIndex();
        f.batchCount = m_batch->settings().nBatchCount;
        f.batchUntilStop = m_batch->settings().bBatchUntilStop;
        f.batchWaitRemaining =
            static_cast<float>(m_batch->settings().lBatchWait) - m_batch->sngBatchWaited();
    }
    return f;
}

void TopLevel::RefreshMainWindow(RefreshCode code) {
    applyUpdate(vexo::RefreshMainWindow(code, flags()));
    UpdateMenu();
    updateTitle();
}

void TopLevel::updateTitle() {
    setWindowTitle(QString::fromStdString(MainWindowTitle(m_shown, flags())));
}

void TopLevel::applyUpdate(const MainWindowUpdate& u) {
    if (u.toolbarShown) {
        m_toolbar->setVisible(*u.toolbarShown);
        m_items["mnuViewToolbar"]->setChecked(*u.toolbarShown);
    }
    for (int i = 0; i < kToolButtonCount; ++i) {
        const ButtonUpdate& b = u.buttons[i];
        QAction* a = m_tools[i];
        if (b.enabled)
            a->setEnabled(*b.enabled && !m_unavailable.count(a->objectName()));
        if (b.checked)
            a->setChecked(*b.checked);
        if (b.visible)
            a->setVisible(*b.visible);
    }
    for (const PanelText& p : u.panels)
        setPanelText(p.panel, QString::fromStdString(p.text));
    if (u.spectrumId)
        m_txtSpectrumID->setText(QString::fromStdString(*u.spectrumId));
    if (u.roiItemsEnabled)
        for (const std::string& key : RoiMenuItems())
            m_items[QString::fromStdString(key)]->setEnabled(*u.roiItemsEnabled);
    if (u.runCalibrate)
        Calibrate();
    m_tools[static_cast<int>(ToolButton::tbZoom)]->setChecked(m_zoom.zoomed);
}

void TopLevel::UpdateMenu() {
    for (const MenuItemState& item : vexo::UpdateMenu(flags())) {
        auto it = m_items.find(QString::fromStdString(item.key));
        if (it == m_items.end())
            continue;
        it->second->setEnabled(item.enabled && !m_unavailable.count(it->first));
        if (item.checked)
            it->second->setChecked(*item.checked);
    }
    for (const auto& [key, tip] : m_unavailable) {
        if (QAction* a = action(key)) {
            a->setEnabled(false);
            a->setToolTip(tip);
        }
    }
    if (!m_lib)
        for (const char* key : {"mnuFileConnect", "tbConnect"})
            action(key)->setToolTip(QString::fromStdString("No device library: " + m_libError));
}

QAction* TopLevel::action(const QString& key) const {
    if (auto b = ToolButtonFromKey(key.toStdString()))
        return m_tools[static_cast<int>(*b)];
    auto it = m_items.find(key);
    return it == m_items.end() ? nullptr : it->second;
}

QString TopLevel::panelText(StatusPanel panel) const {
    return m_panels[static_cast<int>(panel)]->text();
}

QStringList TopLevel::infoTexts() const {
    QStringList out;
    for (QLabel* l : m_cursorLabels)
        out << l->text();
    for (QLabel* l : m_roiLabels)
        out << l->text();
    return out;
}

void TopLevel::DisplaySpectrum() {
    m_plot41->setXRange(m_zoom.zoomed ? m_zoom.xMin : 0,
                        m_zoom.zoomed ? m_zoom.xMax : m_doc.lChannels - 1);
    m_plot42->setXRange(0, m_doc.lChannels - 1);
    m_plot41->refreshPlot();
    m_plot42->refreshPlot();
}

void TopLevel::applyXUnit(const AxisSetup& setup) {
    m_xUnit = setup.unit;
    for (SpectrumPlot* p : {m_plot41, m_plot42})
        p->setXUnit(setup.unit, QString::fromStdString(setup.caption));
    DisplaySpectrum();
    UpdateMenu();
}

// An open MCA settings window follows too: its discriminator energies use the calibration.
void TopLevel::Calibrate() {
    applyXUnit(vexo::Calibrate(m_doc));
    if (m_settingsWindow)
        m_settingsWindow->refreshCalibration();
}

void TopLevel::SetCursor(int32_t channel) {
    m_plot41->setCursorChannel(channel);
    m_plot41->refreshPlot();
    UpdateInfo();
}

void TopLevel::UpdateInfo() {
    const auto r = vexo::UpdateInfo(m_doc, m_plot41->cursorChannel());
    if (!r)
        return; // a channel outside the array leaves the read-out as it was
    m_cursorLabels[0]->setText(QString::fromStdString(r->channel));
    m_cursorLabels[1]->setText(QString::fromStdString(r->counts));
    m_cursorLabels[2]->setText(QString::fromStdString(r->position));
}

// The clicked channel also waits in the calibration dialog, for the row being filled.
// While the dialog is open a click lands on the top of the peak beside it, and the cursor
// follows, so what the dialog holds is what the plot shows; Alt keeps the channel as
// clicked.
void TopLevel::onCursorMoved(int channel, Qt::KeyboardModifiers modifiers) {
    calib* dialog = calibDialog();
    if (dialog->isVisible() && !modifiers.testFlag(Qt::AltModifier)) {
        const int32_t peak = SnapToLocalMaximum(m_doc, channel);
        if (peak != channel)
            SetCursor(peak);
        channel = peak;
    }
    dialog->SetChannel(channel);
    UpdateInfo();
}

calib* TopLevel::existingCalibDialog() const {
    return m_calib.data();
}

void TopLevel::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void TopLevel::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.front().isLocalFile())
        openSpectrum(urls.front().toLocalFile());
}

} // namespace vexo
