#pragma once
// Printing the report page to PDF through the browser component, as the preview's
// "Save as PDF..." does and as `vexo-cli report --pdf` does without a window.
#include <QPageLayout>
#include <QString>
#include <QUrl>
#include <string>

namespace vexo {

// A4 portrait with 15 mm margins: the page the report has always been laid out for.
QPageLayout ReportPageLayout();

struct PdfResult {
    bool ok = false;
    std::string error;
};

// A PDF is printed to its temporary file (base/ReplaceFile.h) and put in place by
// FinishPdf once the browser component has written it whole, so a failed print leaves
// an older PDF of that name as it was.
QString PdfTempFile(const QString& pdfFile);
// After the component's pdfPrintingFinished for PdfTempFile(pdfFile): renames it over
// `pdfFile`. False, with the reason in `error`, when printing or the rename failed.
bool FinishPdf(const QString& pdfFile, bool printed, std::string* error);

// Loads `url` into a browser page without a window, prints it to `pdfFile` and waits
// for both, at most `timeoutMs` in all. Needs a running QApplication (made with
// PrepareWebEngine first); runs a local event loop.
PdfResult PrintPageToPdf(const QUrl& url, const QString& pdfFile, int timeoutMs = 60000);

} // namespace vexo
