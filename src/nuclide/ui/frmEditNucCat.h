#pragma once
// The nuclide categories dialog over "Vexo.nct": the category list ("Category :"), a name
// box with "Add" and "Delete", a "Properties" frame with the colour ("Category color:",
// "...") and the "Threat" flag, and "&Update" (save) and "&Cancel".
#include <QDialog>
#include <filesystem>

#include "nuclide/NuclideCategories.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;

namespace vexo {

class Messages;

class frmEditNucCat : public QDialog {
    Q_OBJECT
public:
    // Loads the categories of appDir's "Vexo.nct" (a failure is reported and the list
    // starts empty).
    frmEditNucCat(const std::filesystem::path& appDir, Messages& messages,
                  QWidget* parent = nullptr);

    void cmdAdd();    // a new category named as the box says (not empty, not a duplicate)
    void cmdDelete(); // the selected category leaves the list (its section stays in the file)
    void setColor(int32_t winColor);
    void cmdUpdate(); // saves; closes when the file was written

    const CategoryList& categories() const { return m_list; }
    QListWidget* lstCategories() const { return m_lstCategories; }
    QLineEdit* txtCategory() const { return m_txtCategory; }
    QCheckBox* chkThreat() const { return m_chkThreat; }

private:
    void fillList();
    void showCategory(int row);
    NuclideCategory* current();

    std::filesystem::path m_appDir;
    Messages& m_messages;
    CategoryList m_list;
    QListWidget* m_lstCategories = nullptr;
    QLineEdit* m_txtCategory = nullptr;
    QLabel* m_colorSwatch = nullptr;
    QCheckBox* m_chkThreat = nullptr;
};

} // namespace vexo
