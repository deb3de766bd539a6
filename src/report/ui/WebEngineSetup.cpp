#include "report/ui/WebEngineSetup.h"

#include <QCoreApplication>
#include <unistd.h>

namespace vexo {

void PrepareWebEngine() {
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    if (geteuid() == 0 && qEnvironmentVariableIsEmpty("QTWEBENGINE_DISABLE_SANDBOX"))
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
}

} // namespace vexo
