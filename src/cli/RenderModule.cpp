#include "RenderModule.h"

#include <dlfcn.h>

#include "CliCommand.h"

namespace vexo::cli {

namespace {

void* Symbol(void* module, const char* name) {
    dlerror();
    void* symbol = dlsym(module, name);
    if (!symbol) {
        const char* why = dlerror();
        throw Failure{std::string("the render module lacks ") + name + (why ? ": " : "") +
                      (why ? why : "")};
    }
    return symbol;
}

} // namespace

RenderModule::RenderModule(const std::filesystem::path& dir) {
    const std::filesystem::path file = dir / kRenderModuleFile;
    void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) {
        const char* why = dlerror();
        throw Failure{"cannot load " + file.string() + ": " + (why ? why : "unknown error")};
    }
    m_picture = reinterpret_cast<VexoRenderPictureFn>(Symbol(module, kRenderPictureSymbol));
    m_pdf = reinterpret_cast<VexoRenderPdfFn>(Symbol(module, kRenderPdfSymbol));
    m_shutdown = reinterpret_cast<VexoRenderShutdownFn>(Symbol(module, kRenderShutdownSymbol));
}

RenderModule::~RenderModule() {
    m_shutdown();
}

void RenderModule::picture(const SpectrumDocument& doc, const AppSettings& settings,
                           const std::filesystem::path& pngFile) const {
    std::string error;
    if (!m_picture(&doc, &settings, pngFile.c_str(), &error))
        throw Failure{"cannot write " + pngFile.string() + ": " + error};
}

void RenderModule::pdf(const std::filesystem::path& htmlFile,
                       const std::filesystem::path& pdfFile) const {
    std::string error;
    if (!m_pdf(htmlFile.c_str(), pdfFile.c_str(), &error))
        throw Failure{"cannot print " + htmlFile.string() + " to " + pdfFile.string() + ": " +
                      error};
}

} // namespace vexo::cli
