#pragma once
// The preferences dialog: edits a working copy of the settings and the window
// placement on four pages; OK copies it back (the caller then saves), Cancel drops it.
#include <QDialog>
#include <array>
#include <filesystem>
#include <functional>
#include <map>

#include "report/ReportStyle.h"
#include "shell/AppSettings.h"
#include "spectrum/SpectrumDocument.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QWidget;

namespace vexo {

class SpectrumPlot;

class frmPref : public QDialog {
    Q_OBJECT
public:
    frmPref(AppSettings& settings, FormLocation& location, const std::filesystem::path& appDir,
            Messages& messages, QWidget* parent = nullptr);
    ~frmPref() override;

    void cmdOk();
    const AppSettings& workingCopy() const { return m_copy; }
    // A control by its object name ("chkShowGrid", "cmbScale", "txtDataDir" ...).
    QWidget* control(const QString& name) const { return findChild<QWidget*>(name); }

private:
    QWidget* programPage();
    QWidget* displayPage();
    QWidget* miscPage();
    QWidget* processingPage();
    QCheckBox* check(const QString& name, const QString& caption, bool& field,
                     bool preview = false);
    QPushButton* colorButton(const QString& name, const QString& caption, int32_t& field,
                             bool preview);
    QLineEdit* textBox(const QString& name, const std::string& value);
    void browseFolder(QLineEdit* box, const QString& title);
    void browseProgram();
    void browseLibrary();
    void enableProcessing(bool on);
    void updatePreview();

    AppSettings& m_shared;
    FormLocation& m_sharedLocation;
    AppSettings m_copy;
    FormLocation m_location;
    std::filesystem::path m_appDir;
    Messages& m_messages;
    ReportStyleList m_styles;
    SpectrumDocument m_sample; // the preview's made-up spectrum
    SpectrumPlot* m_preview = nullptr;
    std::map<QString, QLineEdit*> m_boxes;
    std::vector<QWidget*> m_processingControls; // greyed out with external processing off
};

} // namespace vexo
