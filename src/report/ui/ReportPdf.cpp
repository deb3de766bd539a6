#include "report/ui/ReportPdf.h"

#include <QEventLoop>
#include <QPageSize>
#include <QTimer>
#include <QWebEnginePage>

#include "base/ReplaceFile.h"

namespace vexo {

QPageLayout ReportPageLayout() {
    return QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                       QMarginsF(15.0, 15.0, 15.0, 15.0), QPageLayout::Millimeter);
}

QString PdfTempFile(const QString& pdfFile) {
    return QString::fromStdString(TempFileFor(pdfFile.toStdString()).string());
}

bool FinishPdf(const QString& pdfFile, bool printed, std::string* error) {
    const std::filesystem::path temp = PdfTempFile(pdfFile).toStdString();
    if (!printed) {
        DiscardTempFile(temp);
        if (error)
            *error = "the PDF file could not be written";
        return false;
    }
    return ReplaceFileWith(temp, pdfFile.toStdString(), error);
}

PdfResult PrintPageToPdf(const QUrl& url, const QString& pdfFile, int timeoutMs) {
    QWebEnginePage page;
    QEventLoop loop;
    PdfResult result;
    result.error = "the page did not load within " + std::to_string(timeoutMs / 1000) + " s";
    QObject::connect(&page, &QWebEnginePage::loadFinished, &loop, [&](bool loaded) {
        if (!loaded) {
            result.error = "the browser could not load " + url.toString().toStdString();
            loop.quit();
            return;
        }
        result.error =
            "printing to PDF did not finish within " + std::to_string(timeoutMs / 1000) + " s";
        page.printToPdf(PdfTempFile(pdfFile), ReportPageLayout());
    });
    QObject::connect(&page, &QWebEnginePage::pdfPrintingFinished, &loop,
                     [&](const QString&, bool printed) {
                         result.error.clear();
                         result.ok = FinishPdf(pdfFile, printed, &result.error);
                         loop.quit();
                     });
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    page.load(url);
    loop.exec();
    return result;
}

} // namespace vexo
