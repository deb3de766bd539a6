#pragma once
// The report's spectrum picture and PDF need the widget toolkit and the browser
// component. vexo-cli does not link them: `report` loads them at run time from the
// module libvexo_render.so beside the executable, which draws offscreen.
#include <filesystem>
#include <string>

#include "shell/AppSettings.h"
#include "spectrum/SpectrumDocument.h"

// The module's two entry points, exported with C linkage under these names. Each
// returns true on success and otherwise sets *error.
extern "C" {
using VexoRenderPictureFn = bool (*)(const vexo::SpectrumDocument* doc,
                                     const vexo::AppSettings* settings, const char* pngFile,
                                     std::string* error);
using VexoRenderPdfFn = bool (*)(const char* htmlFile, const char* pdfFile, std::string* error);
// Ends the toolkit the other two started; safe to call when they did not.
using VexoRenderShutdownFn = void (*)();
}

namespace vexo::cli {

inline constexpr const char* kRenderModuleFile = "libvexo_render.so";
inline constexpr const char* kRenderPictureSymbol = "vexo_render_picture";
inline constexpr const char* kRenderPdfSymbol = "vexo_render_pdf";
inline constexpr const char* kRenderShutdownSymbol = "vexo_render_shutdown";

class RenderModule {
public:
    // Loads the module from `dir` and resolves both entry points; throws Failure naming
    // the file or the missing symbol when it cannot.
    explicit RenderModule(const std::filesystem::path& dir);
    RenderModule(const RenderModule&) = delete;
    RenderModule& operator=(const RenderModule&) = delete;
    // Shuts the toolkit down but keeps the module loaded: unloading Qt from a running
    // process is not supported.
    ~RenderModule();

    // "spect.png" of the document as the settings draw it; throws Failure on error.
    void picture(const SpectrumDocument& doc, const AppSettings& settings,
                 const std::filesystem::path& pngFile) const;
    // The report page printed to PDF by the browser component; throws Failure on error.
    void pdf(const std::filesystem::path& htmlFile, const std::filesystem::path& pdfFile) const;

private:
    VexoRenderPictureFn m_picture = nullptr;
    VexoRenderPdfFn m_pdf = nullptr;
    VexoRenderShutdownFn m_shutdown = nullptr;
};

} // namespace vexo::cli
