#include "report/ui/PrintPreview.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWebEnginePage>
#include <QWebEngineView>

#include "base/Messages.h"
#include "report/ReportBuilder.h"
#include "report/ui/ReportPdf.h"

namespace vexo {

namespace {

QPushButton* Button(const QString& caption, const char* name) {
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    return button;
}

} // namespace

PrintPreview::PrintPreview(Steps steps, Messages& messages, QWidget* parent)
    : QDialog(parent), m_steps(std::move(steps)), m_messages(messages) {
    setWindowTitle("Print Preview");
    setObjectName("PrintPreview");
    resize(900, 760);
    m_browser = new QWebEngineView(this);
    m_browser->setObjectName("WebBrowser");
    m_cmdPrint = Button("&Print...", "cmdPrint");
    m_cmdPdf = Button("Save as &PDF...", "cmdPdf");
    m_cmdClose = Button("&Close", "cmdClose");
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_cmdPrint);
    buttons->addWidget(m_cmdPdf);
    buttons->addStretch(1);
    buttons->addWidget(m_cmdClose);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_browser, 1);
    layout->addLayout(buttons);
    setPrintingEnabled(false);

    connect(m_cmdPrint, &QPushButton::clicked, this, &PrintPreview::cmdPrint);
    connect(m_cmdPdf, &QPushButton::clicked, this, &PrintPreview::cmdSavePdf);
    connect(m_cmdClose, &QPushButton::clicked, this, &QDialog::close);
    connect(m_browser, &QWebEngineView::loadFinished, this, &PrintPreview::onLoadFinished);
    connect(m_browser, &QWebEngineView::printFinished, this, [this](bool printed) {
        m_printer.reset();
        setPrintingEnabled(true);
        if (!printed)
            m_messages.critical("The report could not be printed.");
    });
    connect(m_browser->page(), &QWebEnginePage::pdfPrintingFinished, this,
            [this](const QString&, bool printed) {
                setPrintingEnabled(true);
                const bool saved = FinishPdf(m_pdfTarget, printed, nullptr);
                if (!saved)
                    m_messages.critical("The report could not be saved as " +
                                        m_pdfTarget.toStdString());
                emit pdfSaved(m_pdfTarget, saved);
            });

    m_browser->setUrl(QUrl("about:blank"));
    m_timer.setSingleShot(true);
    m_timer.setInterval(10);
    connect(&m_timer, &QTimer::timeout, this, &PrintPreview::tmrPreview);
    m_timer.start();
}

PrintPreview::~PrintPreview() = default;

void PrintPreview::tmrPreview() {
    if (m_steps.makePicture)
        m_steps.makePicture();
    const std::filesystem::path page = m_steps.buildReport ? m_steps.buildReport() : "";
    m_pdfDefault = QString::fromStdString((page.parent_path() / "print.pdf").string());
    m_reportRequested = true;
    // The folder rule of ReportUrl is made for Windows folders (it turns "/" into "%2F");
    // here the page is addressed by its native path.
    m_browser->setUrl(QUrl(QString::fromStdString(FileUrl(page))));
    setPrintingEnabled(true);
}

void PrintPreview::onLoadFinished(bool ok) {
    if (m_reportRequested)
        emit reportLoaded(ok);
}

void PrintPreview::setPrintingEnabled(bool on) {
    m_cmdPrint->setEnabled(on);
    m_cmdPdf->setEnabled(on);
}

void PrintPreview::cmdPrint() {
    m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    m_printer->setPageLayout(ReportPageLayout());
    QPrintDialog dialog(m_printer.get(), this);
    if (dialog.exec() != QDialog::Accepted) {
        m_printer.reset();
        return;
    }
    setPrintingEnabled(false);
    m_browser->print(m_printer.get());
}

void PrintPreview::cmdSavePdf() {
    const QString file =
        QFileDialog::getSaveFileName(this, "Save as PDF", m_pdfDefault, "PDF files (*.pdf)");
    if (!file.isEmpty())
        saveAsPdf(file);
}

void PrintPreview::saveAsPdf(const QString& file) {
    setPrintingEnabled(false);
    m_pdfTarget = file;
    m_browser->page()->printToPdf(PdfTempFile(file), ReportPageLayout());
}

} // namespace vexo
