#include "nuclide/ui/frmNucEditor.h"

#include <QComboBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "base/Messages.h"
#include "base/NumberText.h"
#include "base/Sqlite.h"
#include "nuclide/NuclideDatabase.h"
#include "nuclide/NuclideLibrary.h"
#include "nuclide/ui/frmEditNuc.h"

namespace vexo {
namespace {

constexpr int kLineRole = Qt::UserRole; // the line's values joined by " : "

// The radiation-type filter: its caption and the groups it lets through (bit set of
// 1 << group, beta+ being group 0).
struct RadFilter {
    const char* caption;
    unsigned groups;
};
constexpr RadFilter kRadFilters[] = {
    {"All", ~0u},
    {"Gamma", 1u << Gamma},
    {"X-ray", 1u << XRay},
    {"Alpha", 1u << Alpha},
    {"Beta", (1u << BetaPlus) | (1u << BetaMinus)},
    {"Electron", 1u << Electron},
};

QString Text(const std::string& s) {
    return QString::fromStdString(s);
}

} // namespace

frmNucEditor::frmNucEditor(const std::filesystem::path& databasePath, Messages& messages,
                           NucEditorHooks hooks, QWidget* parent)
    : QDialog(parent), m_messages(messages), m_hooks(std::move(hooks)) {
    setWindowTitle("Nuclide editor");
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(buildPickers());
    layout->addWidget(buildEmissions(), 3);
    layout->addWidget(buildLibrary(), 3);
    resize(1100, 560);
    try {
        m_db = std::make_unique<NuclideDatabase>(databasePath);
        for (const DatabaseElement& e : m_db->Elements()) {
            auto* item = new QListWidgetItem(Text(e.symbol), m_elements);
            item->setToolTip(QString("Z = %1").arg(e.z));
        }
    } catch (const SqliteError& e) {
        m_messages.critical(std::string("Could not open the nuclide database: ") + e.what());
    }
}

frmNucEditor::~frmNucEditor() = default;

QWidget* frmNucEditor::buildPickers() {
    auto* box = new QWidget;
    auto* grid = new QGridLayout(box);
    grid->addWidget(new QLabel("Element"), 0, 0);
    grid->addWidget(new QLabel("Isotope"), 0, 1);
    m_elements = new QListWidget;
    m_isotopes = new QListWidget;
    m_elements->setFixedWidth(70);
    m_isotopes->setFixedWidth(100);
    grid->addWidget(m_elements, 1, 0);
    grid->addWidget(m_isotopes, 1, 1);
    connect(m_elements, &QListWidget::currentTextChanged, this, &frmNucEditor::selectElement);
    connect(m_isotopes, &QListWidget::currentTextChanged, this, &frmNucEditor::selectIsotope);
    return box;
}

QTreeWidget* frmNucEditor::lineList(const char* name) {
    auto* list = new QTreeWidget;
    list->setObjectName(name);
    list->setHeaderLabels(
        {"No", "Nuclide", "HalfLife ", "Energy (keV)", "Intensity (%)", "Rad Type"});
    list->setRootIsDecorated(false);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    return list;
}

QWidget* frmNucEditor::buildEmissions() {
    auto* box = new QWidget;
    auto* v = new QVBoxLayout(box);
    auto* filters = new QHBoxLayout;
    filters->addWidget(new QLabel("Minimum intensity (%)"));
    m_minIntensity = new QLineEdit("0");
    m_minIntensity->setMaximumWidth(70);
    filters->addWidget(m_minIntensity);
    m_radType = new QComboBox;
    for (const RadFilter& f : kRadFilters)
        m_radType->addItem(f.caption);
    filters->addWidget(new QLabel("Rad Type"));
    filters->addWidget(m_radType);
    filters->addStretch();
    v->addLayout(filters);
    m_emissions = lineList("lvEmissions");
    v->addWidget(m_emissions);
    auto* add = new QPushButton("&Add to library >>");
    v->addWidget(add);
    connect(m_minIntensity, &QLineEdit::editingFinished, this, &frmNucEditor::showEmissions);
    connect(m_radType, &QComboBox::currentIndexChanged, this, &frmNucEditor::showEmissions);
    connect(m_emissions, &QTreeWidget::itemDoubleClicked, this, &frmNucEditor::cmdAdd);
    connect(add, &QPushButton::clicked, this, &frmNucEditor::cmdAdd);
    return box;
}

QWidget* frmNucEditor::buildLibrary() {
    auto* box = new QWidget;
    auto* v = new QVBoxLayout(box);
    v->addWidget(new QLabel("Library"));
    m_library = lineList("lvLibrary");
    v->addWidget(m_library);
    auto* row = new QHBoxLayout;
    auto button = [&](const QString& caption, void (frmNucEditor::*slot)()) {
        auto* b = new QPushButton(caption);
        row->addWidget(b);
        connect(b, &QPushButton::clicked, this, slot);
        return b;
    };
    button("&Remove", &frmNucEditor::cmdRemove);
    button("&Edit...", &frmNucEditor::cmdEdit);
    button("&Open library...", &frmNucEditor::cmdOpen);
    button("&Save library...", &frmNucEditor::cmdSave);
    v->addLayout(row);
    auto* hint = new QLabel("Save writes a new library file. An existing file is only updated "
                            "if its identification line reads \"FileId = Vexo Nuclide Library\", "
                            "which libraries written here do not carry: choose a new name.");
    hint->setWordWrap(true);
    v->addWidget(hint);
    m_savedLabel = new QLabel;
    m_savedLabel->setWordWrap(true);
    v->addWidget(m_savedLabel);
    m_setDefault = button("Set as default library", &frmNucEditor::cmdSetDefault);
    v->addWidget(m_setDefault);
    m_setDefault->setEnabled(false);
    return box;
}

void frmNucEditor::selectElement(const QString& symbol) {
    m_isotopes->clear();
    m_emissions->clear();
    if (!m_db || symbol.isEmpty())
        return;
    for (const std::string& name : m_db->Isotopes(symbol.toStdString()))
        m_isotopes->addItem(Text(name));
}

void frmNucEditor::selectIsotope(const QString& name) {
    m_isotope = name;
    if (!name.isEmpty())
        showEmissions();
}

void frmNucEditor::showEmissions() {
    m_emissions->clear();
    if (!m_db || m_isotope.isEmpty())
        return;
    const QString text = m_minIntensity->text().trimmed();
    auto minimum = text.isEmpty() ? std::optional<double>(0.0) : StrictDouble(text.toStdString());
    if (!minimum) {
        m_messages.exclamation("Minimum intensity (%) must be a number", "Isotope emissions");
        return;
    }
    const unsigned groups = kRadFilters[std::max(0, m_radType->currentIndex())].groups;
    int number = 0;
    for (const DatabaseLine& l : m_db->Lines(m_isotope.toStdString(), *minimum).lines) {
        clsNuclide line = ToNuclide(l);
        if ((groups & (1u << line.eDecayRad())) == 0)
            continue;
        setLineItem(new QTreeWidgetItem(m_emissions), ++number, line);
    }
    if (number == 0)
        m_messages.exclamation("No isotope emissions found", "Isotope emissions");
}

void frmNucEditor::setLineItem(QTreeWidgetItem* item, int number, const clsNuclide& line) {
    item->setText(0, QString::number(number));
    item->setText(1, Text(line.szElemName));
    item->setText(2, Text(LibraryNumberText(line.sHL()) + HalfLifeUnitText(line.eUnits())));
    item->setText(3, Text(LibraryNumberText(line.sEnergy)));
    item->setText(4, Text(LibraryNumberText(line.sIntensity)));
    item->setText(5, Text(line.szDecayRadEx()));
    item->setData(0, kLineRole, Text(EditorLineText(line)));
}

void frmNucEditor::appendToLibrary(const clsNuclide& line) {
    setLineItem(new QTreeWidgetItem(m_library), m_library->topLevelItemCount(), line);
}

void frmNucEditor::renumberLibrary() {
    for (int i = 0; i < m_library->topLevelItemCount(); ++i)
        m_library->topLevelItem(i)->setText(0, QString::number(i + 1));
}

void frmNucEditor::cmdAdd() {
    const auto selected = m_emissions->selectedItems();
    if (selected.isEmpty()) {
        m_messages.exclamation("Nothing to add", "Nuclide library");
        return;
    }
    for (int i = 0; i < m_emissions->topLevelItemCount(); ++i) // in list order
        if (m_emissions->topLevelItem(i)->isSelected())
            appendToLibrary(EditorLineFromText(
                m_emissions->topLevelItem(i)->data(0, kLineRole).toString().toStdString()));
}

void frmNucEditor::cmdRemove() {
    qDeleteAll(m_library->selectedItems());
    renumberLibrary();
}

void frmNucEditor::cmdEdit() {
    QTreeWidgetItem* item = m_library->currentItem();
    if (!item)
        return;
    frmEditNuc dialog(EditorLineFromText(item->data(0, kLineRole).toString().toStdString()),
                      m_messages, this);
    if (dialog.exec() == QDialog::Accepted)
        setLineItem(item, m_library->indexOfTopLevelItem(item) + 1, dialog.line());
}

std::vector<clsNuclide> frmNucEditor::libraryLines() const {
    std::vector<clsNuclide> lines;
    for (int i = 0; i < m_library->topLevelItemCount(); ++i)
        lines.push_back(EditorLineFromText(
            m_library->topLevelItem(i)->data(0, kLineRole).toString().toStdString()));
    return lines;
}

bool frmNucEditor::saveTo(const std::filesystem::path& path) {
    if (SaveEditorLibrary(path, libraryLines(), m_messages) != LibrarySave::Written)
        return false;
    m_saved = path;
    m_savedLabel->setText("Saved " + Text(path.string()));
    m_setDefault->setEnabled(static_cast<bool>(m_hooks.setDefaultLibrary));
    return true;
}

void frmNucEditor::cmdSave() {
    QFileDialog chooser(this, "Select nuclide library ...");
    chooser.setAcceptMode(QFileDialog::AcceptSave);
    chooser.setOption(QFileDialog::DontConfirmOverwrite); // the save rule decides
    chooser.setDefaultSuffix("nli");
    chooser.setNameFilters(
        {"Text files (*.txt)", "Nuclide library files (*.nli)", "All files (*.*)"});
    if (chooser.exec() == QDialog::Accepted && !chooser.selectedFiles().isEmpty())
        saveTo(chooser.selectedFiles().front().toStdString());
}

bool frmNucEditor::openLibrary(const std::filesystem::path& path) {
    NuclideLibraryRead read;
    if (IsNuclideLibrary(path))
        read = ReadNuclideLibrary(path);
    if (!read.ok) {
        m_messages.exclamation("Error loading nuclide library: " + path.string());
        return false;
    }
    m_library->clear();
    for (const clsNuclide& line : read.lines)
        appendToLibrary(line);
    return true;
}

void frmNucEditor::cmdOpen() {
    const QString path = QFileDialog::getOpenFileName(
        this, "Select nuclide library ...", {},
        "Nuclide library files (*.nli);;Text files (*.txt);;All files (*.*)");
    if (!path.isEmpty())
        openLibrary(path.toStdString());
}

void frmNucEditor::cmdSetDefault() {
    if (m_saved.empty() || !m_hooks.setDefaultLibrary)
        return;
    if (m_hooks.setDefaultLibrary(m_saved))
        m_savedLabel->setText("Default library: " + Text(m_saved.string()));
}

} // namespace vexo
