#pragma once
// The nuclide editor: pick an element and an isotope from the nuclide database, look at
// its emission lines (filtered by minimum intensity and radiation type), collect lines
// into the library list, edit or remove them, open an existing library into the list,
// and save the list as a new library, which can then be made the default library.
#include <QDialog>
#include <filesystem>
#include <functional>
#include <memory>

#include "nuclide/NucEditor.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace vexo {

class Messages;
class NuclideDatabase;

struct NucEditorHooks {
    // Makes the library the default one (settings saved); false when that failed.
    std::function<bool(const std::filesystem::path& library)> setDefaultLibrary;
};

class frmNucEditor : public QDialog {
    Q_OBJECT
public:
    // Opens the database; when it cannot, says so and the element list stays empty (a
    // library can still be opened, edited and saved).
    frmNucEditor(const std::filesystem::path& databasePath, Messages& messages,
                 NucEditorHooks hooks, QWidget* parent = nullptr);
    ~frmNucEditor() override;

    void selectElement(const QString& symbol);
    void selectIsotope(const QString& name);
    // Lists the chosen isotope's lines that pass both filters; "No isotope emissions
    // found" when none does.
    void showEmissions();
    void cmdAdd(); // selected emission lines to the library list; "Nothing to add"
    void cmdRemove();
    void cmdEdit();
    // Saves the library list with the editor's save rule; true when a new file was
    // written (then "Set as default library" is offered).
    bool saveTo(const std::filesystem::path& path);
    // Replaces the library list with the lines of a library file; false (reported) when
    // it is not one.
    bool openLibrary(const std::filesystem::path& path);
    void cmdSetDefault();

    QListWidget* lstElements() const { return m_elements; }
    QListWidget* lstIsotopes() const { return m_isotopes; }
    QTreeWidget* lvEmissions() const { return m_emissions; }
    QTreeWidget* lvLibrary() const { return m_library; }
    QLineEdit* txtMinIntensity() const { return m_minIntensity; }
    QComboBox* cmbRadType() const { return m_radType; }
    QPushButton* cmdSetDefaultButton() const { return m_setDefault; }
    std::vector<clsNuclide> libraryLines() const;

private:
    QWidget* buildPickers();
    QWidget* buildEmissions();
    QWidget* buildLibrary();
    void cmdSave();
    void cmdOpen();
    static QTreeWidget* lineList(const char* name);
    static void setLineItem(QTreeWidgetItem* item, int number, const clsNuclide& line);
    void appendToLibrary(const clsNuclide& line);
    void renumberLibrary();

    Messages& m_messages;
    NucEditorHooks m_hooks;
    std::unique_ptr<NuclideDatabase> m_db;
    QString m_isotope;
    std::filesystem::path m_saved;
    QListWidget* m_elements = nullptr;
    QListWidget* m_isotopes = nullptr;
    QTreeWidget* m_emissions = nullptr;
    QTreeWidget* m_library = nullptr;
    QLineEdit* m_minIntensity = nullptr;
    QComboBox* m_radType = nullptr;
    QPushButton* m_setDefault = nullptr;
    QLabel* m_savedLabel = nullptr;
};

} // namespace vexo
