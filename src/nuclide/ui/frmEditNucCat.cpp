#include "nuclide/ui/frmEditNucCat.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/Messages.h"

namespace vexo {
namespace {

QColor FromWin(int32_t v) {
    return QColor(v & 0xFF, (v >> 8) & 0xFF, (v >> 16) & 0xFF);
}

int32_t ToWin(const QColor& c) {
    return c.red() + 256 * c.green() + 65536 * c.blue();
}

} // namespace

frmEditNucCat::frmEditNucCat(const std::filesystem::path& appDir, Messages& messages,
                             QWidget* parent)
    : QDialog(parent), m_appDir(appDir), m_messages(messages) {
    setWindowTitle("Nuclide categories");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("Category :"));
    m_lstCategories = new QListWidget;
    layout->addWidget(m_lstCategories);
    auto* nameRow = new QHBoxLayout;
    m_txtCategory = new QLineEdit;
    auto* add = new QPushButton("Add");
    auto* remove = new QPushButton("Delete");
    nameRow->addWidget(m_txtCategory);
    nameRow->addWidget(add);
    nameRow->addWidget(remove);
    layout->addLayout(nameRow);

    auto* properties = new QGroupBox("Properties");
    auto* props = new QHBoxLayout(properties);
    props->addWidget(new QLabel("Category color:"));
    m_colorSwatch = new QLabel;
    m_colorSwatch->setFixedSize(40, 20);
    m_colorSwatch->setAutoFillBackground(true);
    props->addWidget(m_colorSwatch);
    auto* pick = new QPushButton("...");
    pick->setFixedWidth(30);
    props->addWidget(pick);
    m_chkThreat = new QCheckBox("Threat");
    props->addWidget(m_chkThreat);
    layout->addWidget(properties);

    auto* buttons = new QHBoxLayout;
    auto* update = new QPushButton("&Update");
    auto* cancel = new QPushButton("&Cancel");
    buttons->addStretch();
    buttons->addWidget(update);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);

    connect(add, &QPushButton::clicked, this, &frmEditNucCat::cmdAdd);
    connect(remove, &QPushButton::clicked, this, &frmEditNucCat::cmdDelete);
    connect(pick, &QPushButton::clicked, this, [this] {
        if (NuclideCategory* c = current()) {
            QColor chosen = QColorDialog::getColor(FromWin(c->CatColor), this);
            if (chosen.isValid())
                setColor(ToWin(chosen));
        }
    });
    connect(m_chkThreat, &QCheckBox::toggled, this, [this](bool on) {
        if (NuclideCategory* c = current())
            c->IsThread = on;
    });
    connect(m_lstCategories, &QListWidget::currentRowChanged, this, &frmEditNucCat::showCategory);
    connect(update, &QPushButton::clicked, this, &frmEditNucCat::cmdUpdate);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    if (LoadCategories(m_appDir, m_list, m_messages) < 0)
        m_list.assign(1, NuclideCategory{});
    fillList();
}

void frmEditNucCat::fillList() {
    m_lstCategories->clear();
    for (std::size_t k = 1; k < m_list.size(); ++k)
        m_lstCategories->addItem(QString::fromStdString(m_list[k].name));
    m_lstCategories->setCurrentRow(m_list.size() > 1 ? 0 : -1);
}

// List row r shows place r + 1.
NuclideCategory* frmEditNucCat::current() {
    int row = m_lstCategories->currentRow();
    return row >= 0 && row + 1 < static_cast<int>(m_list.size()) ? &m_list[row + 1] : nullptr;
}

void frmEditNucCat::showCategory(int) {
    NuclideCategory* c = current();
    QPalette palette = m_colorSwatch->palette();
    palette.setColor(QPalette::Window, c ? FromWin(c->CatColor) : QColor(Qt::transparent));
    m_colorSwatch->setPalette(palette);
    m_chkThreat->setChecked(c && c->IsThread);
}

void frmEditNucCat::setColor(int32_t winColor) {
    if (NuclideCategory* c = current()) {
        c->CatColor = winColor;
        showCategory(m_lstCategories->currentRow());
    }
}

void frmEditNucCat::cmdAdd() {
    const std::string name = m_txtCategory->text().trimmed().toStdString();
    if (name.empty())
        return;
    for (std::size_t k = 1; k < m_list.size(); ++k)
        if (QString::fromStdString(m_list[k].name)
                .compare(QString::fromStdString(name), Qt::CaseInsensitive) == 0) {
            m_messages.exclamation("The category " + name + " exists already");
            return;
        }
    NuclideCategory added;
    added.name = name;
    m_list.push_back(added);
    m_lstCategories->addItem(QString::fromStdString(name));
    m_lstCategories->setCurrentRow(m_lstCategories->count() - 1);
    m_txtCategory->clear();
}

void frmEditNucCat::cmdDelete() {
    int row = m_lstCategories->currentRow();
    if (!current())
        return;
    m_list.erase(m_list.begin() + row + 1);
    delete m_lstCategories->takeItem(row);
}

void frmEditNucCat::cmdUpdate() {
    if (SaveCategories(m_appDir, m_list, m_messages) > 0)
        accept();
}

} // namespace vexo
