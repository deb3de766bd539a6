// The main window's file, view, ROI, tools and help commands.
#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QToolBar>

#include "base/AppDir.h"
#include "base/DateTime.h"
#include "base/DialogFilter.h"
#include "base/Messages.h"
#include "device/AcquisitionController.h"
#include "device/ExternalProcessing.h"
#include "plot/ui/SpectrumPlot.h"
#include "roi/RoiFile.h"
#include "shell/MeasurementCheckpoint.h"
#include "shell/ui/PlotAppearance.h"
#include "shell/ui/TopLevel.h"
#include "shell/ui/frmPref.h"
#include "spectrum/SpectrumCommands.h"
#include "spectrum/ui/calib.h"

namespace vexo {

namespace {

QString Q(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

constexpr std::string_view kSaveRoiTitle = "Save ROIs into file...";
constexpr std::string_view kSaveRoiFilter =
    "Data files (*.roi)|*.roi|Text files (*.txt)|*.txt|All files (*.*)|*.*";

// A file dialog with the program's title, pipe filter and default extension.
QString AskFile(QWidget* parent, bool save, std::string_view title, std::string_view filter,
                std::string_view defaultExt) {
    QFileDialog dialog(parent, Q(title));
    dialog.setNameFilter(QString::fromStdString(DialogFilterFromPipes(filter)));
    dialog.setNameFilters(dialog.nameFilters()); // keeps every entry selectable
    dialog.setDefaultSuffix(Q(defaultExt));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().front();
}

} // namespace

bool TopLevel::openSpectrum(const QString& path) {
    const OpenResult r = OpenSpectrumWithRois(m_doc, m_rois, path.toStdString());
    if (!r.opened) {
        m_messages->exclamation("Error opening file: " + r.error);
        DisplaySpectrum(); // the ROIs and calibration were reset before reading
        return false;
    }
    showNotice(QString::fromStdString(r.notice)); // reading on regardless, as always
    addRecentFile(path);
    showOpenedSpectrum();
    return true;
}

void TopLevel::showOpenedSpectrum() {
    if (m_acq)
        m_acq->fileOpened();
    m_shown = SpectrumShown::File;
    m_zoom = {false, 0, m_doc.lChannels - 1};
    m_plot42->clearMarkedRange(); // a mark made on the previous spectrum
    for (RefreshCode code : kOpenRefreshCodes)
        RefreshMainWindow(code);
    if (m_xUnit != XUnit::Channels)
        Calibrate(); // the axis follows the new calibration
    DisplaySpectrum();
    UpdateInfo();
}

bool TopLevel::saveSpectrum(const QString& path) {
    const SaveResult r = SaveSpectrum(m_doc, path.toStdString());
    if (!r.ok)
        m_messages->exclamation("Error saving file: " + r.error);
    return r.ok;
}

bool TopLevel::saveAllSpectrum(const QString& path) {
    // After a run only a spectrum read once the device stopped is the measurement's.
    if (m_acq && m_doc.hDevice != 0 && !m_acq->bAcqActive() && !m_acq->readFinalSpectrum()) {
        m_messages->exclamation(FinalReadFailedText(m_acq->lastReadError(), path.toStdString()));
        return false;
    }
    if (!SaveAllSpectrum(m_doc, path.toStdString(), *m_messages))
        return false;
    m_checkpoint->saved(m_doc);
    addRecentFile(path);
    return true;
}

void TopLevel::mnuFileOpen() {
    const QString path =
        AskFile(this, false, kOpenSpectrumTitle, kOpenSpectrumFilter, kOpenSpectrumDefaultExt);
    if (!path.isEmpty())
        openSpectrum(path);
}

void TopLevel::mnuFileSave() {
    const QString path =
        AskFile(this, true, kSaveSpectrumTitle, kSaveSpectrumFilter, kSaveSpectrumDefaultExt);
    if (!path.isEmpty())
        saveSpectrum(path);
}

void TopLevel::mnuFileSaveAll() {
    const QString path = AskFile(this, true, kSaveAllSpectrumTitle, kSaveAllSpectrumFilter,
                                 kSaveAllSpectrumDefaultExt);
    if (!path.isEmpty())
        saveAllSpectrum(path);
}

void TopLevel::addRecentFile(const QString& path) {
    m_recentFiles.removeAll(path);
    m_recentFiles.prepend(path);
    while (m_recentFiles.size() > 8)
        m_recentFiles.removeLast();
    rebuildRecentMenu();
}

void TopLevel::rebuildRecentMenu() {
    m_recentMenu->clear();
    for (int i = 0; i < m_recentFiles.size(); ++i) {
        const QString path = m_recentFiles[i];
        QAction* a =
            m_recentMenu->addAction(QString("&%1 %2").arg(i + 1).arg(QFileInfo(path).fileName()));
        a->setToolTip(path);
        connect(a, &QAction::triggered, this, [this, path] { openSpectrum(path); });
    }
    m_recentMenu->setEnabled(!m_recentFiles.isEmpty());
}

void TopLevel::zoomIn() {
    const SpectrumPlot::MarkedRange mark = m_plot42->markedRange();
    if (!vexo::ZoomIn(m_zoom, mark.first, mark.last, m_doc.lChannels))
        return;
    layoutPlots();
    DisplaySpectrum();
    UpdateMenu();
    m_tools[static_cast<int>(ToolButton::tbZoom)]->setChecked(true);
}

void TopLevel::zoomOut() {
    if (!vexo::ZoomOut(m_zoom, m_doc.lChannels))
        return;
    m_plot42->clearMarkedRange(); // the next zoom starts from a fresh mark
    layoutPlots();
    DisplaySpectrum();
    UpdateMenu();
    m_tools[static_cast<int>(ToolButton::tbZoom)]->setChecked(false);
}

void TopLevel::setGraphType(int graphType) {
    m_settings.SpctGraphType = graphType;
    for (SpectrumPlot* p : {m_plot41, m_plot42})
        p->setGraphType(graphType);
    DisplaySpectrum();
    UpdateMenu();
}

void TopLevel::setYScale(int mode) {
    m_settings.SpctScaleMode = mode;
    for (SpectrumPlot* p : {m_plot41, m_plot42})
        p->setYScale(static_cast<YScale>(mode));
    DisplaySpectrum();
    m_tools[static_cast<int>(ToolButton::tbLin)]->setChecked(mode == 1);
    m_tools[static_cast<int>(ToolButton::tbLog)]->setChecked(mode == 0);
    UpdateMenu();
}

void TopLevel::showChannels() {
    applyXUnit(ShowChannels(m_doc));
}
void TopLevel::showEnergy() {
    Calibrate();
}
// Time is what Calibrate gives an MCS spectrum; a PHA spectrum has no time axis.
void TopLevel::showTime() {
    if (m_doc.lMCSMode != 0)
        Calibrate();
    else
        UpdateMenu(); // puts the check marks back as they were
}

void TopLevel::dispatchToolButton(const QString& key) {
    const auto button = ToolButtonFromKey(key.toStdString());
    if (!button)
        return;
    switch (*button) {
    case ToolButton::tbConnect:
        connectDevice();
        break;
    case ToolButton::tbDisconnect:
        disconnectDevice();
        break;
    case ToolButton::tbOpen:
        mnuFileOpen();
        break;
    case ToolButton::tbSave:
        mnuFileSaveAll();
        break;
    case ToolButton::tbPrint:
        mnuFilePrint();
        break;
    case ToolButton::tbStart:
        startAcquisition();
        break;
    case ToolButton::tbStop:
        stopAcquisition();
        break;
    case ToolButton::tbClear:
        clearAcquisition();
        break;
    case ToolButton::tbLin:
        setYScale(1);
        break;
    case ToolButton::tbLog:
        setYScale(0);
        break;
    case ToolButton::tbZoom:
        m_zoom.zoomed ? zoomOut() : zoomIn();
        break;
    case ToolButton::tbScope:
        toggleScope();
        break;
    case ToolButton::tbSettings:
        showMcaSettings();
        break;
    case ToolButton::tbProcess:
        mnuToolsProcess();
        break;
    }
}

void TopLevel::mnuROISave() {
    const QString path = AskFile(this, true, kSaveRoiTitle, kSaveRoiFilter, "roi");
    if (path.isEmpty())
        return;
    std::string error;
    if (!WriteRoiFile(path.toStdString(), m_rois, &error))
        m_messages->exclamation("Error saving file: " + error);
}

void TopLevel::mnuROIClearAll() {
    m_rois.clear();
    m_doc.plot.rois.clear();
    RefreshMainWindow(RefreshCode::RoiSet);
    DisplaySpectrum();
}

void TopLevel::mnuToolsProcess() {
    RunExternalProcessing(m_doc, ProcessSettingsFrom(m_settings), *m_messages,
                          WithTrailingSeparator(ExecutableDir()), NowSerial());
}

calib* TopLevel::calibDialog() {
    if (!m_calib) {
        CalibHooks hooks;
        hooks.setCursor = [this](int32_t ch) { SetCursor(ch); };
        hooks.applyCalibration = [this] { Calibrate(); };
        m_calib = new calib(m_doc, m_settings.DefNucLib, *m_messages, hooks, this);
        // A tool window over this one, not modal: the plot stays clickable and hands the
        // clicked channel to the row being filled.
        m_calib->setWindowFlag(Qt::Tool);
        m_calib->setModal(false);
        // A closed dialog is unloaded; the next one starts afresh.
        connect(m_calib, &QDialog::finished, m_calib, &QObject::deleteLater);
    }
    return m_calib;
}

// Only one dialog at a time: a second Calibrate brings the open one to the front.
void TopLevel::showCalibration() {
    calib* dialog = calibDialog();
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

void TopLevel::showPreferences() {
    frmPref dialog(m_settings, m_location, m_appDir, *m_messages, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (!SaveSettings(m_settings, false, m_appDir))
        m_messages->critical("Could not write the settings file " +
                             SettingsFilePath(m_appDir).string());
    for (SpectrumPlot* p : {m_plot41, m_plot42})
        p->setAppearance(AppearanceFrom(m_settings));
    setYScale(m_settings.SpctScaleMode);
    setGraphType(m_settings.SpctGraphType);
    RefreshMainWindow(RefreshCode::OptionsBatch); // the processing button follows its setting
}

void TopLevel::mnuHelpAbout() {
    QMessageBox::about(this, "About Vexo",
                       QString("<b>Vexo</b> %1<br>Gamma-ray spectrometry with a digital "
                               "multichannel analyser.")
                           .arg(VEXO_VERSION));
}

} // namespace vexo
