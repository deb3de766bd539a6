#include "report/ui/ReportPdf.h"

#include <QEventLoop>
#include <QPageSize>
#include <QTimer>
#include <QWebEnginePage>

namespace vexo {

QPageLayout ReportPageLayout() {
    return QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                       QMarginsF(15.0, 15.0, 15.0, 15.0), QPageLayout::Millimeter);
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
        page.printToPdf(pdfFile, ReportPageLayout());
    });
    QObject::connect(&page, &QWebEnginePage::pdfPrintingFinished, &loop,
                     [&](const QString&, bool printed) {
                         result.ok = printed;
                         result.error = printed ? "" : "the PDF file could not be written";
                         loop.quit();
                     });
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    page.load(url);
    loop.exec();
    return result;
}

} // namespace vexo
