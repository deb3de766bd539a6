// libvexo_render.so: the widget and browser pieces that `vexo-cli report` loads to draw
// the spectrum picture and to print the page to PDF, offscreen.
#include <QApplication>
#include <QUrl>
#include <cstdio>

#include "cli/RenderModule.h"
#include "report/ReportBuilder.h"
#include "report/ui/ReportPdf.h"
#include "report/ui/WebEngineSetup.h"
#include "shell/ui/ReportPicture.h"

namespace {

QApplication* g_app = nullptr;

// A command-line tool answers with one line: the toolkit's notes about starting without
// a display or a GPU (runtime folder, graphics backend) are not for its user. Critical
// and fatal messages still reach stderr; every failure that matters comes back to
// vexo-cli as an error text. VEXO_RENDER_VERBOSE=1 shows everything.
void QuietHandler(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

// The application object the widgets and the browser need. Made on first use, offscreen
// unless the caller chose a platform, and kept until vexo_render_shutdown: the browser
// is started once for all calls.
void EnsureApplication() {
    if (QCoreApplication::instance())
        return;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("VEXO_RENDER_VERBOSE"))
        qInstallMessageHandler(QuietHandler);
    vexo::PrepareWebEngine();
    static int argc = 1;
    static char name[] = "vexo-cli";
    static char* argv[] = {name, nullptr};
    g_app = new QApplication(argc, argv);
}

} // namespace

extern "C" __attribute__((visibility("default"))) bool
vexo_render_picture(const vexo::SpectrumDocument* doc, const vexo::AppSettings* settings,
                    const char* pngFile, std::string* error) {
    EnsureApplication();
    const vexo::PictureResult r =
        vexo::SaveSpectrumPicture(*doc, vexo::PictureViewFrom(*settings), pngFile);
    if (!r.ok)
        *error = r.error;
    return r.ok;
}

extern "C" __attribute__((visibility("default"))) bool
vexo_render_pdf(const char* htmlFile, const char* pdfFile, std::string* error) {
    EnsureApplication();
    const vexo::PdfResult r = vexo::PrintPageToPdf(
        QUrl(QString::fromStdString(vexo::FileUrl(htmlFile))), QString::fromLocal8Bit(pdfFile));
    if (!r.ok)
        *error = r.error;
    return r.ok;
}

// The entry points must match the types vexo-cli calls them through.
static_assert(std::is_same_v<decltype(&vexo_render_picture), VexoRenderPictureFn>);
static_assert(std::is_same_v<decltype(&vexo_render_pdf), VexoRenderPdfFn>);

// Ends what EnsureApplication started, while the process is still whole: the browser's
// helper process and threads must stop before the libraries unload at exit.
extern "C" __attribute__((visibility("default"))) void vexo_render_shutdown() {
    if (!g_app)
        return;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    delete g_app;
    g_app = nullptr;
}
static_assert(std::is_same_v<decltype(&vexo_render_shutdown), VexoRenderShutdownFn>);
