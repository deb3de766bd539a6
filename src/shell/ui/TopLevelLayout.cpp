// The main window's widgets: menus, toolbar, status bar and the central area.
#include <QAction>
#include <QApplication>
#include <QFile>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QProgressBar>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "base/AppDir.h"
#include "plot/ui/SpectrumPlot.h"
#include "shell/ui/TopLevel.h"

namespace vexo {

namespace {

struct ToolSpec {
    ToolButton button;
    const char* icon;  // icon name: the platform theme's, else Breeze's (icons/<name>.svg)
    const char* label; // shown on the button only when no picture can be had
    const char* tip;
};

// The names are those of the freedesktop icon naming where it has one. The same list is
// copied from the Breeze theme at build time (VEXO_TOOLBAR_ICONS in CMakeLists.txt).
const ToolSpec kToolSpecs[] = {
    {ToolButton::tbConnect, "network-connect", "Connect", "Connect to an MCA"},
    {ToolButton::tbDisconnect, "network-disconnect", "Disconnect", "Disconnect from the MCA"},
    {ToolButton::tbOpen, "document-open", "Open", "Open a spectrum file"},
    {ToolButton::tbSave, "document-save", "Save", "Save the spectrum with all its data"},
    {ToolButton::tbPrint, "document-print", "Print", "Print report"},
    {ToolButton::tbStart, "media-playback-start", "Start", "Start acquisition"},
    {ToolButton::tbStop, "media-playback-stop", "Stop", "Stop acquisition"},
    {ToolButton::tbClear, "edit-clear", "Clear", "Clear the spectrum"},
    {ToolButton::tbLin, "view-object-histogram-linear", "Lin", "Linear scale"},
    {ToolButton::tbLog, "view-object-histogram-logarithmic", "Log", "Logarithmic scale"},
    {ToolButton::tbZoom, "zoom-select", "Zoom", "Zoom to the range marked on the overview"},
    {ToolButton::tbScope, "office-chart-line", "Scope", "Digital scope"},
    {ToolButton::tbSettings, "configure", "Settings", "MCA settings"},
    {ToolButton::tbProcess, "system-run", "Process", "Process spectrum with an external program"},
};

// One set of pictures: the platform theme's when it has every icon (a desktop with
// Breeze or a theme as complete), else the Breeze SVGs beside the executable, rather
// than a mix of two styles. SVG keeps them sharp at any scale.
std::vector<QIcon> ToolbarIcons() {
    const bool themed = std::all_of(std::begin(kToolSpecs), std::end(kToolSpecs),
                                    [](const ToolSpec& s) { return QIcon::hasThemeIcon(s.icon); });
    const QString folder = QString::fromStdString((ExecutableDir() / "icons").string());
    std::vector<QIcon> icons;
    for (const ToolSpec& spec : kToolSpecs) {
        const QString file = folder + "/" + spec.icon + ".svg";
        icons.push_back(themed                ? QIcon::fromTheme(spec.icon)
                        : QFile::exists(file) ? QIcon(file)
                                              : QIcon());
    }
    return icons;
}

} // namespace

QAction* TopLevel::addItem(QMenu* menu, const char* key, const QString& caption,
                           void (TopLevel::*slot)(), const QKeySequence& shortcut) {
    QAction* a = menu->addAction(caption);
    a->setObjectName(key);
    if (!shortcut.isEmpty())
        a->setShortcut(shortcut);
    if (slot)
        connect(a, &QAction::triggered, this, slot);
    m_items[QString(key)] = a;
    return a;
}

void TopLevel::buildFileMenu() {
    QMenu* file = menuBar()->addMenu("&File");
    file->setToolTipsVisible(true);
    addItem(file, "mnuFileOpen", "&Open...", &TopLevel::mnuFileOpen, QKeySequence::Open);
    addItem(file, "mnuFileSave", "&Save...", &TopLevel::mnuFileSave, QKeySequence::Save);
    addItem(file, "mnuFileSaveAll", "Save &All...", &TopLevel::mnuFileSaveAll,
            QKeySequence("Ctrl+Shift+S"));
    file->addSeparator();
    addItem(file, "mnuFilePrint", "&Print...", &TopLevel::mnuFilePrint, QKeySequence::Print);
    file->addSeparator();
    addItem(file, "mnuFileConnect", "&Connect...", &TopLevel::connectDevice);
    addItem(file, "mnuFileDisconnect", "&Disconnect", &TopLevel::disconnectDevice);
    addItem(file, "mnuFileDevInfo", "Device &information...", &TopLevel::showDeviceInfo);
    file->addSeparator();
    m_recentMenu = file->addMenu("&Recent files");
    file->addSeparator();
    addItem(file, "mnuFileExit", "E&xit", nullptr, QKeySequence::Quit);
    connect(m_items["mnuFileExit"], &QAction::triggered, this, &QWidget::close);
}

void TopLevel::buildViewMenu() {
    QMenu* view = menuBar()->addMenu("&View");
    auto check = [&](const char* key, const QString& caption, auto fn, QKeySequence keys = {}) {
        QAction* a = addItem(view, key, caption, nullptr, keys);
        a->setCheckable(true);
        connect(a, &QAction::triggered, this, fn);
        return a;
    };
    check("mnuViewToolbar", "&Toolbar", [this](bool on) {
        m_toolbar->setVisible(on);
    })->setChecked(true);
    check("mnuViewStatusBar", "&Status bar", [this](bool on) {
        statusBar()->setVisible(on);
    })->setChecked(true);
    check("mnuViewInfobar", "&Info bar", [this](bool on) {
        m_infoBar->setVisible(on);
    })->setChecked(true);
    view->addSeparator();
    addItem(view, "mnuViewZoomIn", "&Zoom in", &TopLevel::zoomIn, QKeySequence::ZoomIn);
    addItem(view, "mnuViewZoomOut", "Zoom &out", &TopLevel::zoomOut, QKeySequence::ZoomOut);
    view->addSeparator();
    check("mnuViewDots", "&Dots", [this] { setGraphType(1); });
    check("mnuViewLines", "&Lines", [this] { setGraphType(2); });
    check("mnuViewHisto", "&Histogram", [this] { setGraphType(3); });
    view->addSeparator();
    check("mnuViewLin", "L&in", [this] { setYScale(1); });
    check("mnuViewLog", "L&og", [this] { setYScale(0); });
    check("mnuViewSqrt", "S&qrt", [this] { setYScale(2); });
    view->addSeparator();
    check("mnuViewChn", "&Channels", [this] { showChannels(); });
    check("mnuViewEn", "&Energy", [this] { showEnergy(); });
    check("mnuViewTime", "&Time", [this] { showTime(); });
    // Its caption shares "C" with "&Channels"; the caption is kept, so pressing C moves
    // between the two items and Enter picks one.
    addItem(view, "mnuViewScope", "S&cope", &TopLevel::toggleScope)->setCheckable(true);
}

void TopLevel::buildDeviceMenus() {
    QMenu* mca = menuBar()->addMenu("&MCA");
    mca->setToolTipsVisible(true);
    addItem(mca, "mnuMCAStart", "&Start", &TopLevel::startAcquisition, QKeySequence("F5"));
    addItem(mca, "mnuMCAStop", "S&top", &TopLevel::stopAcquisition, QKeySequence("F6"));
    addItem(mca, "mnuMCAClear", "&Clear", &TopLevel::clearAcquisition, QKeySequence("F7"));
    mca->addSeparator();
    addItem(mca, "mnuMCASetup", "Set&up...", &TopLevel::showMcaSettings);
    addItem(mca, "mnuMCABatch", "&Batch...", &TopLevel::showBatch);

    QMenu* roi = menuBar()->addMenu("&ROI");
    addItem(roi, "mnuROISave", "&Save ROIs...", &TopLevel::mnuROISave);
    addItem(roi, "mnuROIClearAll", "&Clear all", &TopLevel::mnuROIClearAll);

    QMenu* tools = menuBar()->addMenu("&Tools");
    addItem(tools, "mnuToolsProcess", "&Process", &TopLevel::mnuToolsProcess);
    addItem(tools, "mnuToolsNucEditor", "&Nuclide editor...", &TopLevel::mnuToolsNucEditor);
    addItem(tools, "mnuToolsNucCat", "Nuclide &categories...", &TopLevel::mnuToolsNucCategories);

    QMenu* help = menuBar()->addMenu("&Help");
    addItem(help, "mnuHelpAbout", "&About Vexo...", &TopLevel::mnuHelpAbout);
}

void TopLevel::buildMenus() {
    buildFileMenu();
    QMenu* edit = menuBar()->addMenu("&Edit");
    addItem(edit, "mnuEditPref", "&Preferences...", &TopLevel::showPreferences);
    addItem(edit, "mnuEditCalibrate", "&Calibrate...", &TopLevel::showCalibration);
    buildViewMenu();
    buildDeviceMenus();
}

void TopLevel::buildToolbar() {
    m_toolbar = addToolBar("Toolbar");
    m_toolbar->setObjectName("Toolbar");
    m_toolbar->setIconSize(QSize(22, 22)); // the size Breeze draws its toolbar icons for
    const std::vector<QIcon> icons = ToolbarIcons();
    for (std::size_t i = 0; i < std::size(kToolSpecs); ++i) {
        const ToolSpec& spec = kToolSpecs[i];
        const QString key = QString::fromUtf8(ToolButtonKey(spec.button).data(),
                                              static_cast<int>(ToolButtonKey(spec.button).size()));
        QAction* a = m_toolbar->addAction(icons[i], key);
        a->setIconText(spec.label); // what an icon-less button shows
        a->setObjectName(key);
        a->setToolTip(spec.tip);
        a->setCheckable(spec.button == ToolButton::tbLin || spec.button == ToolButton::tbLog ||
                        spec.button == ToolButton::tbZoom);
        connect(a, &QAction::triggered, this, [this, key] { dispatchToolButton(key); });
        m_tools[static_cast<int>(spec.button)] = a;
        if (spec.button == ToolButton::tbPrint || spec.button == ToolButton::tbClear ||
            spec.button == ToolButton::tbLog || spec.button == ToolButton::tbZoom)
            m_toolbar->addSeparator();
    }
}

namespace {

// Where a status panel sits and the longest text it is expected to show.
struct PanelSpec {
    StatusPanel panel;
    int row;             // 0: what is connected or open, the voltage, the batch; 1: the run
    const char* longest; // sets the panel's least width
    int stretch;         // the panels that take the room left over in their row
};

const PanelSpec kPanelSpecs[] = {
    {StatusPanel::Connection, 0, "Connected to KORV MCA-10 S/N 10230417", 0},
    {StatusPanel::File, 0, "File: spectrum.spe", 0},
    {StatusPanel::HighVoltage, 0, "HV 1500 V inhibited", 0},
    {StatusPanel::Batch, 0, "BATCH ON (Waiting : 999.9)", 0},
    {StatusPanel::BatchCounter, 0, "Acq. done: 99 of 99", 0},
    {StatusPanel::Status, 1, "(Batch) HV ramping", 0},
    {StatusPanel::Preset, 1, "Live Time = 3600 sec", 0},
    {StatusPanel::Elapsed, 1, "Elapsed time (seconds): 3600.0 live, 3600.0 real (10.00% dead)", 1},
    {StatusPanel::CountRate, 1, "99999.9 cps", 0},
    {StatusPanel::Icr, 1, "ICR 99999.9 cps", 0},
};

} // namespace

// Two rows of panels, so that every text fits at the default width of 1000 pixels: each
// panel is at least as wide as the longest text it is expected to show, measured with
// the status bar's font; a longer text (a long device name) widens its panel further
// while there is room. Empty panels are hidden and give their room to the others. A
// third row holds the passing notice, shown only while there is one.
void TopLevel::buildStatusBar() {
    auto* area = new QWidget(this);
    auto* rows = new QVBoxLayout(area);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(1);
    QHBoxLayout* row[2] = {new QHBoxLayout, new QHBoxLayout};
    for (QHBoxLayout* r : row) {
        r->setSpacing(3);
        rows->addLayout(r);
    }
    const QFontMetrics metrics(statusBar()->font());
    for (const PanelSpec& spec : kPanelSpecs) {
        auto* label = new QLabel(this);
        label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        const int frame = 2 * label->frameWidth() + 2 * label->margin() + 4;
        label->setMinimumWidth(metrics.horizontalAdvance(QString::fromLatin1(spec.longest)) +
                               frame);
        row[spec.row]->addWidget(label, spec.stretch);
        label->setVisible(false);
        m_panels[static_cast<int>(spec.panel)] = label;
    }
    m_batchProgress = new QProgressBar(this);
    m_batchProgress->setObjectName("batchProgress");
    m_batchProgress->setMaximumWidth(120);
    m_batchProgress->setFormat("%v / %m");
    m_batchProgress->setVisible(false);
    row[0]->addWidget(m_batchProgress);
    // The panels keep to the left, each as wide as its text; in the second row the
    // elapsed time takes the room left over whenever it is shown.
    row[0]->addStretch(1);
    row[1]->addStretch(0);
    m_notice = new QLabel(this);
    m_notice->setObjectName("statusNotice");
    m_notice->setWordWrap(true);
    m_notice->setVisible(false);
    rows->addWidget(m_notice);
    statusBar()->addWidget(area, 1);
    m_noticeTimer.setSingleShot(true);
    m_noticeTimer.setInterval(30000);
    connect(&m_noticeTimer, &QTimer::timeout, this, [this] { showNotice({}); });
}

void TopLevel::showNotice(const QString& text) {
    m_notice->setText(text);
    m_notice->setVisible(!text.isEmpty());
    if (text.isEmpty())
        m_noticeTimer.stop();
    else
        m_noticeTimer.start();
}

QString TopLevel::noticeText() const {
    return m_notice->text();
}

void TopLevel::setPanelText(StatusPanel panel, const QString& text) {
    QLabel* label = m_panels[static_cast<int>(panel)];
    label->setText(text);
    label->setToolTip(text); // the whole text where a long file name is cut
    label->setVisible(!text.isEmpty());
}

void TopLevel::buildCentral() {
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(4, 4, 4, 4);
    auto* idRow = new QHBoxLayout;
    idRow->addWidget(new QLabel("Spectrum ID:"));
    m_txtSpectrumID = new QLineEdit;
    m_txtSpectrumID->setObjectName("txtSpectrumID");
    connect(m_txtSpectrumID, &QLineEdit::textEdited, this,
            [this](const QString& text) { m_doc.szSpectrumID = text.toStdString(); });
    idRow->addWidget(m_txtSpectrumID, 1);
    layout->addLayout(idRow);

    m_plot41 = new SpectrumPlot;
    m_plot41->setObjectName("DataPlot41");
    m_plot42 = new SpectrumPlot;
    m_plot42->setObjectName("DataPlot42");
    m_plot42->setMarkingEnabled(true);
    layout->addWidget(m_plot41, 4);
    layout->addWidget(m_plot42, 1);
    connect(m_plot41, &SpectrumPlot::cursorMoved, this, &TopLevel::onCursorMoved);
    m_plot41->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_plot41, &QWidget::customContextMenuRequested, this, &TopLevel::popupSpect);

    m_infoBar = new QFrame;
    m_infoBar->setObjectName("InfoBar");
    auto* info = new QHBoxLayout(m_infoBar);
    info->setContentsMargins(2, 0, 2, 0);
    for (QLabel*& l : m_cursorLabels) {
        l = new QLabel;
        l->setMinimumWidth(130);
        info->addWidget(l);
    }
    info->addStretch(1);
    info->addWidget(new QLabel("ROI:"));
    for (QLabel*& l : m_roiLabels) {
        l = new QLabel;
        l->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        l->setMinimumWidth(100);
        info->addWidget(l);
    }
    m_roiLabels[0]->setText("0.00 keV");
    m_roiLabels[1]->setText("0 CPS");
    layout->addWidget(m_infoBar);
    setCentralWidget(central);
}

// The "Spectrum" pop-up: each item runs the View menu item of the same meaning.
void TopLevel::popupSpect(const QPoint& pos) {
    QMenu menu("Spectrum", this);
    menu.setObjectName("popupSpect");
    const std::pair<const char*, const char*> items[] = {
        {"popupSpectDots", "mnuViewDots"},  {"popupSpectLines", "mnuViewLines"},
        {"popupSpectBars", "mnuViewHisto"}, {"popupSpectLin", "mnuViewLin"},
        {"popupSpectLog", "mnuViewLog"},    {"popupSpectSqrt", "mnuViewSqrt"}};
    const char* captions[] = {"&Dots", "&Lines", "&Histogram", "L&in", "L&og", "Sqrt"};
    for (int i = 0; i < 6; ++i) {
        QAction* view = m_items[items[i].second];
        QAction* a = menu.addAction(captions[i], view, &QAction::trigger);
        a->setObjectName(items[i].first);
        a->setCheckable(true);
        a->setChecked(view->isChecked());
        if (i == 2)
            menu.addSeparator();
    }
    menu.addSeparator();
    menu.addAction("&Calibrate...", this, &TopLevel::showCalibration);
    menu.exec(m_plot41->mapToGlobal(pos));
}

// The overview gets more room while zoomed, so the marked range stays easy to adjust.
void TopLevel::layoutPlots() {
    auto* layout = static_cast<QVBoxLayout*>(centralWidget()->layout());
    layout->setStretchFactor(m_plot41, m_zoom.zoomed ? 3 : 4);
    layout->setStretchFactor(m_plot42, 1);
}

} // namespace vexo
