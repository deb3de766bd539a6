#include "shell/ui/frmPref.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <cmath>

#include "base/DialogFilter.h"
#include "nuclide/NuclideLibrary.h"
#include "plot/ui/SpectrumPlot.h"
#include "plot/ui/WinColor.h"
#include "shell/PreferencesRules.h"
#include "shell/ui/PlotAppearance.h"

namespace vexo {

namespace {

void PaintSwatch(QPushButton* button, int32_t color) {
    QPixmap swatch(16, 16);
    swatch.fill(FromWinColor(color));
    button->setIcon(QIcon(swatch));
}

// A spectrum shape for the preview: a falling continuum and two peaks.
void FillSample(SpectrumDocument& doc) {
    doc.lChannels = 512;
    for (int ch = 0; ch < doc.lChannels; ++ch)
        doc.lCounts[ch] =
            static_cast<int32_t>(400.0 * std::exp(-ch / 150.0) + 20.0 +
                                 900.0 * std::exp(-0.5 * std::pow((ch - 170) / 6.0, 2)) +
                                 300.0 * std::exp(-0.5 * std::pow((ch - 380) / 8.0, 2)));
    doc.plot.rois.push_back({160, 180, 255, false, ""});
}

} // namespace

frmPref::frmPref(AppSettings& settings, FormLocation& location, const std::filesystem::path& appDir,
                 Messages& messages, QWidget* parent)
    : QDialog(parent), m_shared(settings), m_sharedLocation(location), m_copy(settings),
      m_location(location), m_appDir(appDir), m_messages(messages) {
    setWindowTitle("Preferences");
    FillSample(m_sample);
    auto* tabs = new QTabWidget;
    tabs->addTab(programPage(), "Program settings");
    tabs->addTab(displayPage(), "Display settings");
    tabs->addTab(miscPage(), "Misc");
    tabs->addTab(processingPage(), "Processing");
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(QDialogButtonBox::Ok);
    buttons->addButton("&Cancel", QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmPref::cmdOk);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(buttons);
    enableProcessing(m_copy.EnableExtProcessing);
    updatePreview();
}

frmPref::~frmPref() = default;

QCheckBox* frmPref::check(const QString& name, const QString& caption, bool& field, bool preview) {
    auto* box = new QCheckBox(caption);
    box->setObjectName(name);
    box->setChecked(field);
    connect(box, &QCheckBox::toggled, this, [this, &field, preview](bool on) {
        field = on;
        if (preview)
            updatePreview();
    });
    return box;
}

QPushButton* frmPref::colorButton(const QString& name, const QString& caption, int32_t& field,
                                  bool preview) {
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    PaintSwatch(button, field);
    connect(button, &QPushButton::clicked, this, [this, button, &field, preview] {
        const QColor chosen = QColorDialog::getColor(FromWinColor(field), this);
        if (!chosen.isValid())
            return; // the chooser was cancelled
        field = ToWinColor(chosen);
        PaintSwatch(button, field);
        if (preview)
            updatePreview();
    });
    return button;
}

QLineEdit* frmPref::textBox(const QString& name, const std::string& value) {
    auto* box = new QLineEdit(QString::fromStdString(value));
    box->setObjectName(name);
    m_boxes[name] = box;
    return box;
}

QWidget* frmPref::programPage() {
    auto* page = new QWidget;
    auto* v = new QVBoxLayout(page);
    v->addWidget(check("chkRememberLoc", "Remember window location", m_location.RememberLoc));
    v->addWidget(check("chkOpenLast",
                       "Automatically open the last detector used next time the program is started",
                       m_copy.OpenLastDetectorUsed));
    v->addWidget(check("chkApplyHV", "Also turn the High Voltage ON", m_copy.ApplyHV));
    auto* lib = new QHBoxLayout;
    lib->addWidget(new QLabel("Default nuclide library:"));
    lib->addWidget(textBox("txtDefNucLib", m_copy.DefNucLib), 1);
    auto* browse = new QPushButton("...");
    connect(browse, &QPushButton::clicked, this, &frmPref::browseLibrary);
    lib->addWidget(browse);
    v->addLayout(lib);
    v->addWidget(check("chkRoiFollowUp", "Enable ROI follow-up", m_copy.RoiFollowUp));
    auto* one = new QHBoxLayout;
    one->addWidget(check("chkRoiOneColor", "Use single ROI color scheme:", m_copy.RoiOneColor));
    one->addWidget(colorButton("cmdRoiBaseColor", "", m_copy.RoiColors[0], false));
    one->addStretch(1);
    v->addLayout(one);
    auto* group = new QGroupBox("Select individual ROI colors:");
    auto* grid = new QGridLayout(group);
    for (int n = 1; n <= 8; ++n)
        grid->addWidget(colorButton(QString("cmdRoiColor%1").arg(n), QString("ROI No %1").arg(n),
                                    m_copy.RoiColors[n], false),
                        (n - 1) / 4, (n - 1) % 4);
    v->addWidget(group);
    v->addStretch(1);
    return page;
}

QWidget* frmPref::displayPage() {
    auto* page = new QWidget;
    auto* h = new QHBoxLayout(page);
    auto* v = new QVBoxLayout;
    v->addWidget(check("chkShowGrid", "Show grid", m_copy.SpctShowGrid, true));
    v->addWidget(check("chkFilled", "Filled plot", m_copy.SpctFilled, true));
    auto* form = new QFormLayout;
    auto* scale = new QComboBox;
    scale->setObjectName("cmbScale");
    scale->addItems({"Logarithmic", "Linear", "Square root"});
    scale->setCurrentIndex(std::clamp(m_copy.SpctScaleMode, 0, 2));
    connect(scale, &QComboBox::currentIndexChanged, this, [this](int i) {
        m_copy.SpctScaleMode = i;
        updatePreview();
    });
    auto* type = new QComboBox;
    type->setObjectName("cmbGraphType");
    type->addItems({"Dots", "Lines", "Histograms"});
    type->setCurrentIndex(ListIndexFromGraphType(m_copy.SpctGraphType));
    connect(type, &QComboBox::currentIndexChanged, this, [this](int i) {
        m_copy.SpctGraphType = GraphTypeFromListIndex(i);
        updatePreview();
    });
    form->addRow("Default plot scale:", scale);
    form->addRow("Default plot type:", type);
    v->addLayout(form);
    v->addWidget(colorButton("cmdBackColor", "Back Color...", m_copy.SpctBackColor, true));
    v->addWidget(colorButton("cmdForeColor", "Fore Color...", m_copy.SpctForeColor, true));
    v->addWidget(colorButton("cmdScaleColor", "Scale Color...", m_copy.SpctScaleColor, true));
    v->addWidget(colorButton("cmdCurColor", "Cursor Color...", m_copy.SpctCurColor, true));
    v->addStretch(1);
    h->addLayout(v);
    m_preview = new SpectrumPlot;
    m_preview->setObjectName("picPreview");
    m_preview->setDocument(&m_sample);
    m_preview->setCursorChannel(300);
    m_preview->setMinimumSize(320, 220);
    h->addWidget(m_preview, 1);
    return page;
}

QWidget* frmPref::miscPage() {
    auto* page = new QWidget;
    auto* v = new QVBoxLayout(page);
    auto* group = new QGroupBox("Report sections");
    auto* g = new QVBoxLayout(group);
    g->addWidget(check("chkHardwareSect", "MCA settings", m_copy.HardwareSect));
    g->addWidget(check("chkDataAcqSect", "Data acquisition", m_copy.DataAcqSect));
    g->addWidget(check("chkCalibrationSect", "Calibrations", m_copy.CalibrationSect));
    g->addWidget(check("chkROISect", "ROI analysis results", m_copy.ROISect));
    g->addWidget(check("chkSpctSect", "Spectral data", m_copy.SpctSect));
    g->addWidget(check("chkPlotSect", "Include Plot", m_copy.PlotSect));
    v->addWidget(group);
    v->addWidget(new QLabel("Select report color scheme:"));
    auto* styles = new QComboBox;
    styles->setObjectName("cmbRepStyle");
    m_styles = LoadReportStyles(m_appDir, m_messages);
    // A styles file of a single section leaves the list empty, as it always has.
    if (m_styles.highestIndex >= 2) {
        for (int i = 0; i <= m_styles.highestIndex && i < static_cast<int>(m_styles.styles.size());
             ++i)
            styles->addItem(QString::fromStdString(m_styles.styles[i].sectionName));
        const int at = styles->findText(QString::fromStdString(m_copy.RepStyle),
                                        Qt::MatchExactly | Qt::MatchCaseSensitive);
        styles->setCurrentIndex(at >= 0 ? at : 0);
    }
    connect(styles, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (i < 0 || i >= static_cast<int>(m_styles.styles.size()))
            return;
        m_copy.RepStyle = m_styles.styles[i].sectionName;
        m_copy.Style = ResolveReportStyle(m_styles, m_copy.RepStyle);
    });
    v->addWidget(styles);
    v->addStretch(1);
    return page;
}

QWidget* frmPref::processingPage() {
    auto* page = new QWidget;
    auto* v = new QVBoxLayout(page);
    QCheckBox* enable = check("chkEnableExtProcessing", "Enable external processing application",
                              m_copy.EnableExtProcessing);
    connect(enable, &QCheckBox::toggled, this, &frmPref::enableProcessing);
    v->addWidget(enable);
    auto* grid = new QGridLayout;
    struct Row {
        const char* caption;
        const char* name;
        const std::string& value;
        int browse;
    };
    const Row rows[] = {{"Data directory:", "txtDataDir", m_copy.DataDir, 1},
                        {"File name:", "txtFileName", m_copy.FileName, 0},
                        {"Program:", "txtProgram", m_copy.Program, 2},
                        {"Start in:", "txtStartupDir", m_copy.StartupDir, 3},
                        {"Arguments:", "txtArguments", m_copy.Arguments, 0}};
    for (int r = 0; r < 5; ++r) {
        auto* label = new QLabel(rows[r].caption);
        QLineEdit* box = textBox(rows[r].name, rows[r].value);
        grid->addWidget(label, r, 0);
        grid->addWidget(box, r, 1);
        QPushButton* browse = nullptr;
        if (rows[r].browse) {
            browse = new QPushButton("...");
            grid->addWidget(browse, r, 2);
            const int kind = rows[r].browse;
            connect(browse, &QPushButton::clicked, this, [this, box, kind] {
                if (kind == 2)
                    browseProgram();
                else
                    browseFolder(box, kind == 1 ? "Select data directory..."
                                                : "Select startup directory...");
            });
        }
        if (rows[r].browse == 3)
            continue; // "Start in:" stays enabled
        m_processingControls.insert(m_processingControls.end(), {label, box});
        if (browse)
            m_processingControls.push_back(browse);
    }
    v->addLayout(grid);
    v->addStretch(1);
    return page;
}

void frmPref::enableProcessing(bool on) {
    for (QWidget* w : m_processingControls)
        w->setEnabled(on);
}

void frmPref::updatePreview() {
    if (!m_preview)
        return;
    m_preview->setAppearance(AppearanceFrom(m_copy));
    m_preview->setYScale(static_cast<YScale>(std::clamp(m_copy.SpctScaleMode, 0, 2)));
    m_preview->setGraphType(m_copy.SpctGraphType);
    m_preview->refreshPlot();
}

void frmPref::browseFolder(QLineEdit* box, const QString& title) {
    const QString dir = QFileDialog::getExistingDirectory(this, title, box->text());
    if (!dir.isEmpty())
        box->setText(dir);
}

void frmPref::browseProgram() {
    const QString path =
        QFileDialog::getOpenFileName(this, "Select program...", m_boxes["txtProgram"]->text(),
                                     QString::fromStdString(DialogFilterFromPipes(
                                         "Executable files (*.exe)|*.exe|All files (*.*)|*.*")));
    if (!path.isEmpty())
        m_boxes["txtProgram"]->setText(path);
}

void frmPref::browseLibrary() {
    const QString path = QFileDialog::getOpenFileName(
        this, "Select nuclide library...", m_boxes["txtDefNucLib"]->text(),
        QString::fromStdString(DialogFilterFromPipes(
            "Text files (*.txt)|*.txt|Nuclide Library files (*.nli)|*.nli|All files (*.*)|*.*")));
    if (path.isEmpty())
        return;
    if (!IsNuclideLibrary(path.toStdString())) {
        m_messages.exclamation("Error loading nuclide library: " + path.toStdString());
        return;
    }
    m_boxes["txtDefNucLib"]->setText(path);
}

void frmPref::cmdOk() {
    m_copy.DefNucLib =
        DefaultLibraryAfterOk(m_boxes["txtDefNucLib"]->text().toStdString(), m_copy.DefNucLib);
    m_copy.DataDir = m_boxes["txtDataDir"]->text().toStdString();
    m_copy.FileName = m_boxes["txtFileName"]->text().toStdString();
    m_copy.Program = m_boxes["txtProgram"]->text().toStdString();
    m_copy.StartupDir = m_boxes["txtStartupDir"]->text().toStdString();
    m_copy.Arguments = m_boxes["txtArguments"]->text().toStdString();
    m_shared = m_copy;
    m_sharedLocation = m_location;
    accept();
}

} // namespace vexo
