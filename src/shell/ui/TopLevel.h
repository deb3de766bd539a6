#pragma once
// The main window: owns the program-wide record, the settings, the two plots, the
// device controllers and the three timers, and keeps its menus, toolbar and status
// bar in step with them through RefreshMainWindow. Every rule it applies comes from the
// core (MainWindowState, PlotModel, the controllers); this class only wires widgets.
#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <array>
#include <filesystem>
#include <map>
#include <memory>

#include "plot/PlotModel.h"
#include "plot/ui/SpectrumPicture.h"
#include "roi/RoiCollection.h"
#include "shell/AppSettings.h"
#include "shell/MainWindowState.h"
#include "spectrum/SpectrumDocument.h"

class QAction;
class QLabel;
class QProgressBar;
class QLineEdit;
class QMenu;
class QToolBar;

namespace vexo {

class AcquisitionController;
class AutoConnect;
class BatchController;
class ConnectionController;
class DeviceLibrary;
class MeasurementCheckpoint;
class Messages;
class PrintPreview;
class QtMessages;
class ScopeController;
class SpectrumPlot;
class frmAutoConnect;
class calib;
class Scope;
class Settings;

class TopLevel : public QMainWindow {
    Q_OBJECT
public:
    // `appDir` holds "Vexo.ini". `messages` answers every message (tests pass a script);
    // null means message boxes over this window.
    explicit TopLevel(const std::filesystem::path& appDir, Messages* messages = nullptr);
    ~TopLevel() override;

    // The public operations the dialogs and controllers use.
    void RefreshMainWindow(RefreshCode code);
    void UpdateMenu();
    void DisplaySpectrum(); // hand the counts to both plots and redraw
    void Calibrate();
    void SetCursor(int32_t channel);
    void UpdateInfo();

    // File commands without their dialogs. True on success; failures are reported.
    bool openSpectrum(const QString& path);
    bool saveSpectrum(const QString& path);
    bool saveAllSpectrum(const QString& path);

    // View commands.
    void zoomIn();
    void zoomOut();
    void setGraphType(int graphType); // 1 dots, 2 lines, 3 histogram
    void setYScale(int mode);         // 0 log, 1 linear, 2 square root
    void showChannels();
    void showEnergy();
    void showTime();

    // A toolbar click, by the button's key ("tbConnect" ...).
    void dispatchToolButton(const QString& key);

    // Device commands.
    void connectDevice();
    void disconnectDevice();
    void startAcquisition();
    void stopAcquisition();
    void clearAcquisition();
    void showDeviceInfo();
    void showCalibration(); // Edit > Calibrate: the dialog, a non-modal tool window
    void showPreferences(); // Edit > Preferences: saves the settings file on OK
    void toggleScope();     // View > Scope: opens or closes the scope window
    void showBatch();       // MCA > Batch: the batch window, modal
    void showMcaSettings(); // MCA > Setup: the settings window, modeless
    void mnuFilePrint();    // File > Print: the report in the print preview, modeless
    PrintPreview* printPreview() const;
    Settings* settingsWindow() const;
    Scope* scopeWindow() const;

    SpectrumDocument& document() { return m_doc; }
    RoiCollection& rois() { return m_rois; }
    AppSettings& settings() { return m_settings; }
    const std::filesystem::path& appDir() const { return m_appDir; }
    Messages& messages() { return *m_messages; }
    SpectrumPlot* DataPlot41() const { return m_plot41; }
    SpectrumPlot* DataPlot42() const { return m_plot42; }
    const ZoomState& zoom() const { return m_zoom; }
    XUnit xUnit() const { return m_xUnit; }
    // A menu item or toolbar button by its key ("mnuFileOpen", "tbStart").
    QAction* action(const QString& key) const;
    QString panelText(StatusPanel panel) const;
    // The ROI read-out: 0 net area, 1 integral, 2 net rate, 3 integral rate.
    QString roiReadoutText(int index) const;
    QLabel* panel(StatusPanel panel) const { return m_panels[static_cast<int>(panel)]; }
    QStringList infoTexts() const; // cursor read-out lines and the ROI panel
    QLineEdit* spectrumIdBox() const { return m_txtSpectrumID; }
    // The passing notice under the status panels ("Read as plain counts: ..."); empty
    // when none is shown.
    QString noticeText() const;
    calib* existingCalibDialog() const;
    MainWindowFlags flags() const;
    AcquisitionController* acquisition() const { return m_acq.get(); }
    BatchController* batch() const { return m_batch.get(); }
    QTimer& refreshTimer() { return m_tmrRefresh; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // Layout (TopLevelLayout.cpp).
    void buildMenus();
    void buildFileMenu();
    void buildViewMenu();
    void buildDeviceMenus();
    void buildToolbar();
    void buildStatusBar();
    void buildCentral();
    void setPanelText(StatusPanel panel, const QString& text); // empty: hidden
    void showNotice(const QString& text);                      // empty: hidden
    void updateTitle();
    QAction* addItem(QMenu* menu, const char* key, const QString& caption, void (TopLevel::*slot)(),
                     const QKeySequence& shortcut = {});
    void layoutPlots();

    // Start-up and shut-down (TopLevel.cpp).
    void startUp();
    void restorePlacement();
    void storePlacement();
    void createControllers();
    void applyUpdate(const MainWindowUpdate& update);
    void showAcquisitionTexts();
    void updateBatchProgress();
    void showRoiReadout();
    void startAutoConnect();
    void tmrConnect();
    void applyXUnit(const AxisSetup& setup);
    void addRecentFile(const QString& path);
    void showOpenedSpectrum(); // title, state and plots after Open or a recovery
    void rebuildRecentMenu();
    bool needDevice();

    // Dialog commands (TopLevelCommands.cpp).
    void mnuFileOpen();
    void mnuFileSave();
    void mnuFileSaveAll();
    void mnuToolsProcess();
    void mnuToolsNucEditor();     // Tools > Nuclide editor (TopLevelNuclide.cpp)
    void mnuToolsNucCategories(); // Tools > Nuclide categories
    void mnuROIClearAll();
    void mnuROISave();
    void mnuHelpAbout();
    void onCursorMoved(int channel, Qt::KeyboardModifiers modifiers);
    calib* calibDialog(); // created, unshown, on first use
    void popupSpect(const QPoint& pos);
    PictureView pictureView() const; // the main plot as it stands (TopLevelReport.cpp)

    std::filesystem::path m_appDir;
    std::unique_ptr<QtMessages> m_ownMessages;
    Messages* m_messages;
    SpectrumDocument m_doc;
    RoiCollection m_rois; // the analysis records of m_doc.plot.rois
    AppSettings m_settings;
    FormLocation m_location;
    ZoomState m_zoom;
    XUnit m_xUnit = XUnit::Channels;
    bool m_scopeShown = false;
    SpectrumShown m_shown = SpectrumShown::None;

    std::unique_ptr<DeviceLibrary> m_lib;
    std::string m_libError;
    std::unique_ptr<AcquisitionController> m_acq;
    std::unique_ptr<ConnectionController> m_connection;
    std::unique_ptr<BatchController> m_batch;
    std::unique_ptr<ScopeController> m_scope;
    std::unique_ptr<AutoConnect> m_autoConnect;
    std::unique_ptr<MeasurementCheckpoint> m_checkpoint;

    QPointer<frmAutoConnect> m_frmAutoConnect;
    QPointer<calib> m_calib;
    QPointer<Scope> m_scopeWindow;
    QPointer<Settings> m_settingsWindow;
    QPointer<PrintPreview> m_preview;
    QTimer m_tmrRefresh;
    QTimer m_tmrConnect;
    QTimer m_tmrBatchWait;
    QTimer m_noticeTimer; // hides the notice again

    SpectrumPlot* m_plot41 = nullptr;
    SpectrumPlot* m_plot42 = nullptr;
    QLineEdit* m_txtSpectrumID = nullptr;
    QToolBar* m_toolbar = nullptr;
    QWidget* m_infoBar = nullptr;
    std::array<QLabel*, 3> m_cursorLabels{};
    std::array<QLabel*, 4> m_roiLabels{}; // net area, integral, net rate, integral rate
    std::array<QLabel*, kStatusPanelCount> m_panels{};
    QProgressBar* m_batchProgress = nullptr; // beside the batch counter while a batch runs
    QLabel* m_notice = nullptr;
    std::array<QAction*, kToolButtonCount> m_tools{};
    std::map<QString, QAction*> m_items;
    QMenu* m_recentMenu = nullptr;
    QStringList m_recentFiles;
    // Items and buttons whose window this version does not have: kept disabled, with a
    // tool tip saying so, whatever the state rules would allow.
    std::map<QString, QString> m_unavailable;
};

} // namespace vexo
