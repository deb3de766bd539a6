#include "device/ui/frmDevices.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vexo {

frmDevices::frmDevices(DeviceLibrary& lib, Messages& messages, QWidget* parent)
    : QDialog(parent), m_lib(lib), m_messages(messages),
      m_search(std::make_unique<DeviceSearch>(lib)) {
    setWindowTitle("Devices");
    resize(640, 300);
    m_list = new QTreeWidget;
    m_list->setObjectName("lvDevices");
    m_list->setRootIsDecorated(false);
    m_list->setHeaderLabels({"No", "Device Name", "Location", "Serial No", "Type"});
    m_list->header()->setSectionResizeMode(2, QHeaderView::Stretch);
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, [this] { cmdOpen(); });
    // The first ticks never show a device (the rows lag one tick behind the search), so
    // the list says that it is still looking rather than look empty.
    m_searching = new QLabel("searching…");
    m_searching->setObjectName("lblSearching");

    auto* buttons = new QDialogButtonBox;
    QPushButton* search = buttons->addButton("&Search", QDialogButtonBox::ActionRole);
    QPushButton* open = buttons->addButton("&Open", QDialogButtonBox::AcceptRole);
    buttons->addButton(QDialogButtonBox::Cancel);
    open->setDefault(true);
    connect(search, &QPushButton::clicked, this, &frmDevices::cmdSearch);
    connect(open, &QPushButton::clicked, this, &frmDevices::cmdOpen);
    connect(buttons, &QDialogButtonBox::rejected, this, [this] {
        m_search->chooseCancel();
        reject();
    });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addWidget(m_searching);
    layout->addWidget(buttons);

    m_timer.setInterval(kSearchIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &frmDevices::tmrSearch);
    m_timer.start();
}

frmDevices::~frmDevices() {
    if (!m_closed)
        m_search->close();
}

void frmDevices::tmrSearch() {
    m_search->tick();
    showRows();
}

// Rows are rewritten by index, so a device keeps its row from one tick to the next.
void frmDevices::showRows() {
    const std::vector<DeviceRow>& rows = m_search->rows();
    while (m_list->topLevelItemCount() > static_cast<int>(rows.size()))
        delete m_list->takeTopLevelItem(m_list->topLevelItemCount() - 1);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        QTreeWidgetItem* item = m_list->topLevelItem(static_cast<int>(i));
        if (!item)
            item = new QTreeWidgetItem(m_list);
        const DeviceRow& r = rows[i];
        item->setText(0, QString::number(r.No));
        item->setText(1, QString::fromStdString(r.Name));
        item->setText(2, QString::fromStdString(r.Path));
        item->setText(3, QString::fromStdString(r.Serial));
        // The bus by name; the record keeps the library's number.
        const std::string prefix = DevicePathPrefix(r.Type);
        item->setText(4, prefix.empty() ? QString::number(r.Type)
                                        : QString::fromStdString(prefix.substr(0, 3)));
    }
    m_searching->setVisible(rows.empty());
    if (!m_list->currentItem() && m_list->topLevelItemCount() > 0)
        m_list->setCurrentItem(m_list->topLevelItem(0));
}

void frmDevices::cmdOpen() {
    const int selected =
        m_list->currentItem() ? m_list->indexOfTopLevelItem(m_list->currentItem()) : 0;
    if (m_search->chooseOpen(selected, m_messages))
        accept();
}

// A fresh search object restarts the library's search from scratch.
void frmDevices::cmdSearch() {
    m_search = std::make_unique<DeviceSearch>(m_lib);
    m_list->clear();
    m_searching->setVisible(true);
}

void frmDevices::done(int result) {
    m_timer.stop();
    if (!m_closed) {
        m_search->close();
        m_closed = true;
    }
    QDialog::done(result);
}

DeviceChoice ChooseDevice(DeviceLibrary& lib, Messages& messages, QWidget* parent) {
    frmDevices dialog(lib, messages, parent);
    dialog.exec();
    return dialog.choice();
}

} // namespace vexo
