#include "device/ui/frmBatch.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/Messages.h"

namespace vexo {

frmBatch::frmBatch(const BatchSettings& initial, std::string sampleId, Messages& messages,
                   std::function<void(const BatchSettings&)> start, QWidget* parent)
    : QDialog(parent), m_base(initial), m_sampleId(std::move(sampleId)), m_messages(messages),
      m_start(std::move(start)) {
    setWindowTitle("Batch acquisition");
    auto* grid = new QGridLayout;
    m_dir = new QLineEdit(QString::fromStdString(initial.szBatchDir));
    m_dir->setObjectName("txtBatchSubDir");
    auto* browse = new QPushButton("...");
    browse->setObjectName("cmdBatchSubDir");
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString dir =
            QFileDialog::getExistingDirectory(this, "Select data directory...", m_dir->text());
        if (!dir.isEmpty())
            m_dir->setText(dir);
    });
    grid->addWidget(new QLabel("Data directory:"), 0, 0);
    grid->addWidget(m_dir, 0, 1);
    grid->addWidget(browse, 0, 2);

    // Whole numbers only: the validators keep anything else out of the boxes.
    m_count = new QLineEdit(QString::number(initial.nBatchCount));
    m_count->setObjectName("txtNoOfMeas");
    m_count->setValidator(new QIntValidator(0, 32767, m_count));
    grid->addWidget(new QLabel("Number of measurements:"), 1, 0);
    grid->addWidget(m_count, 1, 1);
    m_wait = new QLineEdit(QString::number(initial.lBatchWait));
    m_wait->setObjectName("txtWaitTime");
    m_wait->setValidator(new QIntValidator(0, 2147483647, m_wait));
    grid->addWidget(
        addCheck("chkBatchWait", "Wait between measurements (seconds):", initial.bBatchWait), 2, 0);
    grid->addWidget(m_wait, 2, 1);

    auto* v = new QVBoxLayout;
    v->addWidget(addCheck("chkBatchUntilStop", "Run until stopped", initial.bBatchUntilStop));
    v->addWidget(addCheck("chkBatchClearFirst", "Clear before the first measurement",
                          initial.bBatchClearFirst));
    v->addWidget(
        addCheck("chkBatchClear", "Clear the spectrum between measurements", initial.bBatchClear));
    v->addWidget(
        addCheck("chkBatchProc", "Launch Process after each measurement", initial.bBatchProc));
    v->addWidget(new QLabel("File names:"));
    v->addWidget(addCheck("chkSampleID", "Begin with the spectrum ID", initial.bNameSampleID));
    v->addWidget(addCheck("chkTimeDate", "Add date and time", initial.bNameTimeDate));
    auto* tagRow = new QHBoxLayout;
    tagRow->addWidget(addCheck("chkTag", "Add tag:", initial.bNameTag));
    m_tag = new QLineEdit(QString::fromStdString(initial.szBatchTag));
    m_tag->setObjectName("txtTag");
    tagRow->addWidget(m_tag, 1);
    v->addLayout(tagRow);

    for (auto [box, field] :
         {std::pair{m_dir, BatchField::Folder}, std::pair{m_count, BatchField::Count},
          std::pair{m_wait, BatchField::Wait}, std::pair{m_tag, BatchField::Tag}})
        connect(box, &QLineEdit::editingFinished, this, [this, field] { checkField(field); });

    auto* buttons = new QDialogButtonBox;
    QPushButton* startButton = buttons->addButton("&Start", QDialogButtonBox::AcceptRole);
    startButton->setObjectName("cmdStart");
    buttons->addButton("&Cancel", QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmBatch::cmdStart);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(v);
    layout->addWidget(buttons);
}

QCheckBox* frmBatch::addCheck(const char* name, const QString& caption, bool value) {
    auto* box = new QCheckBox(caption);
    box->setObjectName(name);
    box->setChecked(value);
    return box;
}

bool frmBatch::checked(const char* name) const {
    return findChild<QCheckBox*>(name)->isChecked();
}

BatchWindowFields frmBatch::fields() const {
    BatchWindowFields f;
    f.folder = m_dir->text().toStdString();
    f.count = m_count->text().toStdString();
    f.wait = m_wait->text().toStdString();
    f.waitChecked = checked("chkBatchWait");
    f.untilStop = checked("chkBatchUntilStop");
    f.sampleId = m_sampleId;
    f.nameSampleId = checked("chkSampleID");
    f.tag = m_tag->text().toStdString();
    f.nameTag = checked("chkTag");
    return f;
}

void frmBatch::focusField(BatchField field) {
    // The sample ID is the main window's spectrum ID; it has no box here.
    if (field == BatchField::SampleId)
        return;
    QLineEdit* box = field == BatchField::Folder  ? m_dir
                     : field == BatchField::Count ? m_count
                     : field == BatchField::Tag   ? m_tag
                                                  : m_wait;
    box->setFocus();
    box->selectAll();
}

void frmBatch::checkField(BatchField field) {
    if (m_checking || !isVisible())
        return;
    const auto error = ValidateBatchField(field, fields());
    if (!error)
        return;
    m_checking = true;
    m_messages.exclamation(error->message, kBatchSettingsTitle);
    focusField(error->field);
    m_checking = false;
}

void frmBatch::cmdStart() {
    const BatchWindowFields f = fields();
    if (const auto error = ValidateBatchStart(f)) {
        m_checking = true;
        m_messages.exclamation(error->message, kBatchSettingsTitle);
        focusField(error->field);
        m_checking = false;
        return;
    }
    BatchSettings s = BatchSettingsFromFields(f, m_base);
    s.bBatchClear = checked("chkBatchClear");
    s.bBatchClearFirst = checked("chkBatchClearFirst");
    s.bBatchProc = checked("chkBatchProc");
    s.bNameTimeDate = checked("chkTimeDate");
    const std::string warning = BatchRepeatWarning(s);
    if (!warning.empty() &&
        m_messages.show({kBatchSettingsTitle, warning + "\r\nStart the batch anyway?",
                         MsgIcon::Exclamation, MsgButtons::YesNo}) != MsgAnswer::Yes)
        return;
    m_checking = true; // closing moves the focus; nothing more to check
    accept();
    if (m_start)
        m_start(s);
}

} // namespace vexo
