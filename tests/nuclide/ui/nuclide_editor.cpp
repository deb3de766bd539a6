// The nuclide editor end to end from the Tools menu: pick Eu-152, keep lines above 2 %,
// add Co-60 and Cs-137, save a new library, make it the default, and find its lines in
// the calibration dialog; plus the categories dialog over the shipped defaults.
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <fstream>

#include "UiTestSupport.h"
#include "nuclide/NuclideDatabase.h"
#include "nuclide/NuclideLibrary.h"
#include "nuclide/ui/frmEditNucCat.h"
#include "nuclide/ui/frmNucEditor.h"
#include "shell/AppSettings.h"
#include "spectrum/ui/calib.h"

using namespace vexo;

class NuclideEditorTest : public QObject, public UiFixture {
    Q_OBJECT

    static std::string Bytes(const std::filesystem::path& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    static void pick(QListWidget* list, const QString& text) {
        auto found = list->findItems(text, Qt::MatchExactly);
        QVERIFY2(!found.isEmpty(), qPrintable(text));
        list->setCurrentItem(found.front());
    }
    static void selectAll(QTreeWidget* list) {
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            list->topLevelItem(i)->setSelected(true);
    }
    // Picks an isotope and adds all its lines that pass the filters.
    static void addIsotope(frmNucEditor& e, const QString& symbol, const QString& isotope) {
        pick(e.lstElements(), symbol);
        pick(e.lstIsotopes(), isotope);
        selectAll(e.lvEmissions());
        e.cmdAdd();
    }

private slots:
    void initTestCase() { QVERIFY(setUp()); }
    void init() { m_messages.clear(); }

    void buildSaveAndUseALibrary() {
        TopLevel w(dir(), &m_messages);
        w.action("mnuToolsNucEditor")->trigger();
        auto* editor = w.findChild<frmNucEditor*>();
        QVERIFY(editor);
        QVERIFY(editor->lstElements()->count() > 50);

        editor->txtMinIntensity()->setText("2");
        editor->cmbRadType()->setCurrentIndex(1); // Gamma
        pick(editor->lstElements(), "Eu");
        pick(editor->lstIsotopes(), "Eu-152");
        const int strong = editor->lvEmissions()->topLevelItemCount();
        QVERIFY(strong >= 8 && strong <= 20);
        for (int i = 0; i < strong; ++i) {
            QVERIFY(editor->lvEmissions()->topLevelItem(i)->text(4).toDouble() >= 2.0);
            QCOMPARE(editor->lvEmissions()->topLevelItem(i)->text(5), QString("G"));
        }
        editor->cmdAdd(); // nothing selected yet
        QCOMPARE(m_messages.shown().back().text, std::string("Nothing to add"));
        QCOMPARE(m_messages.shown().back().title, std::string("Nuclide library"));
        selectAll(editor->lvEmissions());
        editor->cmdAdd();
        addIsotope(*editor, "Co", "Co-60");
        addIsotope(*editor, "Cs", "Cs-137");
        QCOMPARE(editor->lvLibrary()->topLevelItemCount(), strong + 3);

        // A filter that leaves nothing says so.
        editor->txtMinIntensity()->setText("101");
        editor->showEmissions();
        QCOMPARE(m_messages.shown().back().text, std::string("No isotope emissions found"));
        QCOMPARE(m_messages.shown().back().title, std::string("Isotope emissions"));

        const auto path = dir() / "mine.nli";
        QVERIFY(!editor->cmdSetDefaultButton()->isEnabled());
        QVERIFY(editor->saveTo(path));
        QVERIFY(IsNuclideLibrary(path));
        auto read = ReadNuclideLibrary(path);
        QCOMPARE(static_cast<int>(read.lines.size()), strong + 3);
        QCOMPARE(read.lines.back().szElemName, std::string("Cs-137"));

        // Saving again onto the editor's own file is refused and changes nothing.
        const std::string before = Bytes(path);
        QVERIFY(!editor->saveTo(path));
        QCOMPARE(m_messages.shown().back().text,
                 "Error saving or updating nuclide library " + path.string());
        QCOMPARE(Bytes(path), before);

        QVERIFY(editor->cmdSetDefaultButton()->isEnabled());
        editor->cmdSetDefault();
        QCOMPARE(w.settings().DefNucLib, path.string());
        AppSettings saved;
        LoadSettings(saved, dir(), m_messages);
        QCOMPARE(saved.DefNucLib, path.string());

        // The calibration dialog offers the new library's lines (by the energy they give).
        w.action("mnuEditCalibrate")->trigger();
        calib* c = w.existingCalibDialog();
        QVERIFY(c);
        QVERIFY(c->cmbEn(0)->findData("1332.492 ") >= 0);
        QVERIFY(c->cmbEn(0)->findData("1408.013 ") >= 0);
        shoot(*editor, "nuclide_editor");
        editor->close();
    }

    void reopenEditAndRemove() {
        const auto path = dir() / "two.nli";
        {
            frmNucEditor editor(std::filesystem::path(VEXO_BIN_DIR) / kNuclideDatabaseFile,
                                m_messages, {});
            addIsotope(editor, "Co", "Co-60");
            QVERIFY(editor.saveTo(path));
        }
        frmNucEditor editor(std::filesystem::path(VEXO_BIN_DIR) / kNuclideDatabaseFile, m_messages,
                            {});
        QVERIFY(editor.openLibrary(path));
        const int lines = editor.lvLibrary()->topLevelItemCount();
        QVERIFY(lines >= 2);
        editor.lvLibrary()->topLevelItem(0)->setSelected(true);
        editor.cmdRemove();
        QCOMPARE(editor.lvLibrary()->topLevelItemCount(), lines - 1);
        QCOMPARE(editor.lvLibrary()->topLevelItem(0)->text(0), QString("1"));
        QVERIFY(!editor.openLibrary(dir() / "KORVHW.ini"));
        QCOMPARE(m_messages.shown().back().text,
                 "Error loading nuclide library: " + (dir() / "KORVHW.ini").string());
    }

    void categoriesDialog() {
        std::filesystem::copy_file(std::filesystem::path(VEXO_SOURCE_DIR) / "data" / "Vexo.nct",
                                   dir() / "Vexo.nct",
                                   std::filesystem::copy_options::overwrite_existing);
        frmEditNucCat dialog(dir(), m_messages);
        QVERIFY(m_messages.shown().empty());
        const int shipped = dialog.lstCategories()->count();
        QVERIFY(shipped >= 4);
        dialog.txtCategory()->setText("Waste");
        dialog.cmdAdd();
        dialog.setColor(0x0000FF);
        dialog.chkThreat()->setChecked(true);
        dialog.cmdUpdate();
        QVERIFY(m_messages.shown().empty());
        CategoryList back;
        QCOMPARE(LoadCategories(dir(), back, m_messages), shipped + 1);
        QCOMPARE(back.back().name, std::string("Waste"));
        QCOMPARE(back.back().CatColor, 0x0000FF);
        QVERIFY(back.back().IsThread);
    }
};

QTEST_MAIN(NuclideEditorTest)
#include "nuclide_editor.moc"
