#pragma once
// The print preview: the report page in a browser component, with Print (the platform's
// print dialog, then the page printed to the chosen printer), Save as PDF and Close.
// When it opens it shows a blank page and starts a one-shot timer; when the timer fires
// it has the picture made and the report built, navigates to the page and only then
// enables printing.
#include <QDialog>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>

class QPrinter;
class QPushButton;
class QWebEngineView;

namespace vexo {

class Messages;

class PrintPreview : public QDialog {
    Q_OBJECT
public:
    // The steps the window runs when its timer fires, supplied by its opener: make the
    // spectrum picture, then build the report and return the page's file. The file is
    // shown even when the build failed (the step reports that itself): the browser then
    // shows what it can load.
    struct Steps {
        std::function<void()> makePicture;
        std::function<std::filesystem::path()> buildReport;
    };

    PrintPreview(Steps steps, Messages& messages, QWidget* parent = nullptr);
    ~PrintPreview() override;

    QWebEngineView* browser() const { return m_browser; }
    QPushButton* printButton() const { return m_cmdPrint; }
    QPushButton* pdfButton() const { return m_cmdPdf; }
    // Prints the shown page to `file` as PDF; pdfSaved tells the outcome, and a failure
    // is also reported to the user.
    void saveAsPdf(const QString& file);

signals:
    // The report page (not the blank start page) finished loading.
    void reportLoaded(bool ok);
    void pdfSaved(const QString& file, bool ok);

private:
    void tmrPreview();
    void cmdPrint();
    void cmdSavePdf();
    void onLoadFinished(bool ok);
    void setPrintingEnabled(bool on);

    Steps m_steps;
    Messages& m_messages;
    QTimer m_timer;
    QWebEngineView* m_browser = nullptr;
    QPushButton* m_cmdPrint = nullptr;
    QPushButton* m_cmdPdf = nullptr;
    QPushButton* m_cmdClose = nullptr;
    std::unique_ptr<QPrinter> m_printer; // lives until the component has printed
    QString m_pdfDefault;                // where Save as PDF proposes to write
    QString m_pdfTarget;                 // the PDF being printed (to its temporary file)
    bool m_reportRequested = false;
};

} // namespace vexo
