#pragma once
// What the browser component needs before the QApplication exists.
namespace vexo {

// Call before constructing the QApplication of any program that shows or prints the
// report: the browser component shares OpenGL contexts with the widgets, and its
// renderer sandbox refuses to start for the root user, so for root it is switched off
// (QTWEBENGINE_DISABLE_SANDBOX), as the component's documentation advises. An explicit
// setting of that variable is kept.
void PrepareWebEngine();

} // namespace vexo
