// Tools > Nuclide editor and Tools > Nuclide categories.
#include <system_error>

#include "base/AppDir.h"
#include "base/Messages.h"
#include "nuclide/NuclideCategories.h"
#include "nuclide/NuclideDatabase.h"
#include "nuclide/ui/frmEditNucCat.h"
#include "nuclide/ui/frmNucEditor.h"
#include "shell/AppSettings.h"
#include "shell/ui/TopLevel.h"

namespace vexo {

// The editor is a window of its own beside the spectrum, not modal; a second command
// brings the open one to the front.
void TopLevel::mnuToolsNucEditor() {
    if (auto* open = findChild<frmNucEditor*>()) {
        open->raise();
        open->activateWindow();
        return;
    }
    NucEditorHooks hooks;
    hooks.setDefaultLibrary = [this](const std::filesystem::path& library) {
        m_settings.DefNucLib = library.string();
        if (SaveSettings(m_settings, false, m_appDir))
            return true;
        m_messages->critical("Could not write the settings file " +
                             SettingsFilePath(m_appDir).string());
        return false;
    };
    auto* editor = new frmNucEditor(DefaultNuclideDatabasePath(), *m_messages, hooks, this);
    editor->setAttribute(Qt::WA_DeleteOnClose);
    editor->setWindowFlag(Qt::Window);
    editor->show();
}

void TopLevel::mnuToolsNucCategories() {
    // A first run finds the shipped default categories beside the program and starts from
    // a copy of them in the application directory.
    const auto installed = std::filesystem::path(CategoriesFilePath(m_appDir));
    const auto shipped = ExecutableDir() / kCategoriesFile;
    std::error_code ec;
    if (!std::filesystem::exists(installed, ec) && std::filesystem::exists(shipped, ec))
        std::filesystem::copy_file(shipped, installed, ec); // a failure shows when loading
    frmEditNucCat dialog(m_appDir, *m_messages, this);
    dialog.exec();
}

} // namespace vexo
