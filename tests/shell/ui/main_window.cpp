// The main window without a device: opening files, the toolbar and menus per update
// code, zoom, the cursor read-out and energy axis, calibration and preferences. With
// VEXO_SCREENSHOT_DIR set, the states are also saved as pictures (scripts/screenshots.sh).
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <cmath>

#include "UiTestSupport.h"
#include "plot/ui/SpectrumPlot.h"
#include "shell/ui/TopLevel.h"
#include "shell/ui/frmPref.h"
#include "spectrum/ui/calib.h"

using namespace vexo;

class MainWindowTest : public QObject, public UiFixture {
    Q_OBJECT

    // A left click on the main plot at `channel`, through the plot's own conversion.
    static void clickPlotAt(SpectrumPlot* plot, int channel) {
        const int x = static_cast<int>(std::lround(plot->xAxis->coordToPixel(channel)));
        QTest::mouseClick(plot, Qt::LeftButton, {}, QPoint(x, plot->axisRect()->center().y()));
    }
    // What a click into a row's channel box does to the dialog: the box gets the focus.
    static void focusRow(calib& dialog, int row) {
        QFocusEvent in(QEvent::FocusIn, Qt::MouseFocusReason);
        QApplication::sendEvent(dialog.txtCh(row), &in);
    }

private slots:
    void initTestCase() { QVERIFY(setUp()); }
    void init() { m_messages.clear(); }

    void startUpDisconnectedNoFile() {
        TopLevel w(dir(), &m_messages);
        QCOMPARE(w.panelText(StatusPanel::Connection), QString("Not connected"));
        QVERIFY(enabled(w, "tbConnect"));
        QVERIFY(!enabled(w, "tbDisconnect"));
        QVERIFY(!enabled(w, "tbSave"));
        QVERIFY(!enabled(w, "tbPrint"));
        QVERIFY(!enabled(w, "tbStart"));
        QVERIFY(!enabled(w, "mnuFileSave"));
        QVERIFY(w.action("tbLin")->isChecked()); // linear is the default scale
        QVERIFY(!w.action("tbProcess")->isVisible());
        QVERIFY(m_messages.shown().empty());
    }

    void openFileSetsTitlePanelsAndButtons() {
        TopLevel w(dir(), &m_messages);
        w.show();
        QVERIFY(w.openSpectrum(writeSpectrum("cs137.spe")));
        QCOMPARE(w.windowTitle(), QString("Vexo - cs137.spe"));
        QCOMPARE(w.panelText(StatusPanel::File), QString("File: cs137.spe"));
        QVERIFY(w.panelText(StatusPanel::CountRate).endsWith(" cps"));
        QCOMPARE(w.spectrumIdBox()->text(), QString("Cs-137 check"));
        QVERIFY(enabled(w, "tbSave"));
        QVERIFY(enabled(w, "tbPrint"));
        QVERIFY(!enabled(w, "tbStop"));
        QVERIFY(!enabled(w, "tbStart"));
        QCOMPARE(w.document().lChannels, 1024);
        QCOMPARE(w.DataPlot42()->xMax(), 1023);
        QVERIFY(m_messages.shown().empty());
        shoot(w, "main_file");
    }

    void openMissingFileIsReported() {
        TopLevel w(dir(), &m_messages);
        QVERIFY(!w.openSpectrum(m_dir.path() + "/missing.spe"));
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QCOMPARE(QString::fromStdString(m_messages.shown()[0].title), QString("Vexo"));
        QVERIFY(
            QString::fromStdString(m_messages.shown()[0].text).startsWith("Error opening file: "));
        QCOMPARE(w.windowTitle(), QString("Vexo"));
    }

    // Any file reads as plain counts; what was not counts is noticed, not asked about.
    void plainFileWithTextIsNoticed() {
        TopLevel w(dir(), &m_messages);
        test::WriteBytes(dir() / "notes.txt", "12\r\n15\r\nchannel seventeen\r\n20\r\n");
        QVERIFY(w.openSpectrum(m_dir.path() + "/notes.txt"));
        QCOMPARE(w.document().lChannels, 5);
        QCOMPARE(w.noticeText(),
                 QString("Read as plain counts: 5 values; the file holds text that is not counts"));
        QVERIFY(m_messages.shown().empty());
    }

    void spectrumIdBoxWritesTheRecord() {
        TopLevel w(dir(), &m_messages);
        QTest::keyClicks(w.spectrumIdBox(), "S17");
        QCOMPARE(w.document().szSpectrumID, std::string("S17"));
    }

    void zoomInAndOut() {
        TopLevel w(dir(), &m_messages);
        w.show();
        QVERIFY(w.openSpectrum(writeSpectrum("zoom.spe")));
        w.DataPlot42()->setMarkedRange(300, 200);
        w.action("mnuViewZoomIn")->trigger();
        QVERIFY(w.zoom().zoomed);
        QCOMPARE(w.DataPlot41()->xMin(), 200);
        QCOMPARE(w.DataPlot41()->xMax(), 300);
        QVERIFY(w.action("tbZoom")->isChecked());
        QVERIFY(!enabled(w, "mnuViewZoomIn"));
        shoot(w, "main_zoomed");
        w.DataPlot42()->setMarkedRange(10, 20);
        w.zoomIn(); // already zoomed: nothing changes
        QCOMPARE(w.DataPlot41()->xMin(), 200);
        w.dispatchToolButton("tbZoom");
        QVERIFY(!w.zoom().zoomed);
        QCOMPARE(w.DataPlot41()->xMin(), 0);
        QCOMPARE(w.DataPlot41()->xMax(), 1023);
        QVERIFY(!w.action("tbZoom")->isChecked());
        QCOMPARE(w.DataPlot42()->markedRange().first, 0); // the old mark is gone
        QCOMPARE(w.DataPlot42()->markedRange().last, 1023);
        w.zoomOut(); // not zoomed: nothing happens
        QCOMPARE(w.DataPlot41()->xMax(), 1023);
        // A range dragged out on the overview with the mouse is what Zoom in shows.
        SpectrumPlot* overview = w.DataPlot42();
        const int y = overview->axisRect()->center().y();
        const int x0 = static_cast<int>(overview->xAxis->coordToPixel(400));
        const int x1 = static_cast<int>(overview->xAxis->coordToPixel(600));
        QTest::mousePress(overview, Qt::LeftButton, {}, QPoint(x0, y));
        QMouseEvent move(QEvent::MouseMove, QPointF(x1, y), overview->mapToGlobal(QPointF(x1, y)),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(overview, &move);
        QTest::mouseRelease(overview, Qt::LeftButton, {}, QPoint(x1, y));
        const SpectrumPlot::MarkedRange mark = overview->markedRange();
        QVERIFY(std::abs(mark.first - 400) <= 3 && std::abs(mark.last - 600) <= 3);
        w.action("mnuViewZoomIn")->trigger();
        QCOMPARE(w.DataPlot41()->xMin(), mark.first);
        QCOMPARE(w.DataPlot41()->xMax(), mark.last);
    }

    void cursorReadoutAndEnergyAxis() {
        TopLevel w(dir(), &m_messages);
        w.show();
        QVERIFY(w.openSpectrum(writeSpectrum("cursor.dat", false))); // plain: not calibrated
        w.SetCursor(265);
        QStringList info = w.infoTexts();
        QCOMPARE(info[0], QString("Channel 265"));
        QCOMPARE(info[1], QString("Counts 4050"));
        QCOMPARE(info[2], QString("Not calibrated"));
        QVERIFY(w.noticeText().isEmpty()); // counts and nothing else: no notice
        QCOMPARE(info[3], QString("0.00 keV"));
        QCOMPARE(info[4], QString("0 CPS"));
        w.action("mnuViewEn")->trigger();
        QVERIFY(w.document().calibration.bCalibrated); // viewing energies adopts the default
        QCOMPARE(w.xUnit(), XUnit::Energy);
        QVERIFY(w.action("mnuViewEn")->isChecked());
        QVERIFY(!w.action("mnuViewChn")->isChecked());
        w.UpdateInfo();
        QCOMPARE(w.infoTexts()[2], QString("662.50 keV"));
        w.SetCursor(20000); // outside the array: read-out unchanged
        QCOMPARE(w.infoTexts()[0], QString("Channel 265"));
        w.SetCursor(265);
        w.dispatchToolButton("tbLog");
        QVERIFY(w.action("tbLog")->isChecked());
        QVERIFY(!w.action("tbLin")->isChecked());
        QVERIFY(w.action("mnuViewLog")->isChecked());
        shoot(w, "main_energy_log");
        // A click on the main plot moves the cursor and the read-out follows.
        SpectrumPlot* plot = w.DataPlot41();
        const int x = static_cast<int>(plot->xAxis->coordToPixel(plot->xAxis->range().center()));
        QTest::mouseClick(plot, Qt::LeftButton, {}, QPoint(x, plot->height() / 2));
        QVERIFY(plot->cursorChannel() > 400 && plot->cursorChannel() < 620);
        QCOMPARE(w.infoTexts()[0], QString("Channel %1").arg(plot->cursorChannel()));
        w.action("mnuViewChn")->trigger();
        QCOMPARE(w.xUnit(), XUnit::Channels);
    }

    void calibrationFromClickedChannel() {
        TopLevel w(dir(), &m_messages);
        w.show();
        QVERIFY(w.openSpectrum(writeSpectrum("calib.dat", false)));
        QVERIFY(!w.existingCalibDialog());
        SpectrumPlot* plot = w.DataPlot41();
        QTest::mouseClick(
            plot, Qt::LeftButton, {},
            QPoint(static_cast<int>(plot->xAxis->coordToPixel(100)), plot->height() / 2));
        const int clicked = plot->cursorChannel();
        QVERIFY(clicked >= 98 && clicked <= 102);
        // The dialog was created unshown and already holds the channel in row A.
        QVERIFY(w.existingCalibDialog());
        QVERIFY(!w.existingCalibDialog()->isVisible());
        QCOMPARE(w.existingCalibDialog()->txtCh(0)->text(), QString::number(clicked));

        w.action("mnuEditCalibrate")->trigger();
        QPointer<calib> dialog = w.existingCalibDialog();
        QVERIFY(dialog && dialog->isVisible());
        QVERIFY(!dialog->isModal());
        QVERIFY(dialog->windowFlags().testFlag(Qt::Tool));
        QCOMPARE(dialog->parentWidget(), static_cast<QWidget*>(&w));
        QVERIFY(!QApplication::activeModalWidget());
        // While the dialog is open the plot stays clickable; the clicked channel lands in
        // the active row, first A, then B once its box has the focus.
        clickPlotAt(plot, 120);
        const int first = plot->cursorChannel();
        QVERIFY(std::abs(first - 120) <= 1);
        QCOMPARE(dialog->txtCh(0)->text(), QString::number(first));
        focusRow(*dialog, 1);
        QCOMPARE(dialog->activeRow(), 1);
        clickPlotAt(plot, 300);
        const int second = plot->cursorChannel();
        QVERIFY(std::abs(second - 300) <= 1);
        QCOMPARE(dialog->txtCh(1)->text(), QString::number(second));
        QCOMPARE(dialog->txtCh(0)->text(), QString::number(first)); // row A kept its channel
        // Near a peak the click lands on its top (265), with the cursor; Alt keeps the click.
        focusRow(*dialog, 2);
        clickPlotAt(plot, 263);
        QCOMPARE(dialog->txtCh(2)->text(), QString("265"));
        QCOMPARE(plot->cursorChannel(), 265);
        const int x = static_cast<int>(std::lround(plot->xAxis->coordToPixel(263)));
        QTest::mouseClick(plot, Qt::LeftButton, Qt::AltModifier, QPoint(x, plot->height() / 2));
        QVERIFY(plot->cursorChannel() != 265);
        QCOMPARE(dialog->txtCh(2)->text(), QString::number(plot->cursorChannel()));
        dialog->txtCh(2)->clear();
        // A second Calibrate brings up the same dialog.
        w.showCalibration();
        QCOMPARE(w.existingCalibDialog(), dialog.data());
        dialog->cmbEn(0)->setEditText(QString::number(2 * first));
        dialog->cmbEn(1)->setEditText(QString::number(2 * second));
        m_messages.clear(); // opening may have said that the nuclide library is missing
        m_messages.queueAnswer(MsgAnswer::Yes);
        dialog->cmdOk();
        QTRY_VERIFY(!dialog);              // accepted: closed and unloaded
        QVERIFY(!w.existingCalibDialog()); // unloaded after closing
        const auto& shown = m_messages.shown();
        QCOMPARE(shown.size(), std::size_t(1));
        QCOMPARE(shown[0].title, std::string("Energy calibration results"));
        QCOMPARE(shown[0].text,
                 std::string("Energy calibration successfully done.\r\n"
                             "Offset = 0.0000 keV\r\nSlope = 2.0000 keV/chn\r\n"
                             "Quadratic = 0.0000 keV/chn^2\r\nAccept this calibration?"));
        QVERIFY(w.document().calibration.bCalibrated);
        QCOMPARE(w.document().calibration.dSlope, 2.0);
        QCOMPARE(w.xUnit(), XUnit::Energy);
        QCOMPARE(w.document().plot.sngSlope, 2.0f);
    }

    void calibrationAnsweredNoStaysOpen() {
        TopLevel w(dir(), &m_messages);
        w.show();
        w.showCalibration();
        QPointer<calib> dialog = w.existingCalibDialog();
        QVERIFY(dialog);
        dialog->txtCh(0)->setText("400");
        dialog->cmbEn(0)->setEditText("661.7");
        dialog->txtCh(2)->setText("800");
        dialog->cmbEn(2)->setEditText("1332.5");
        dialog->txtCh(1)->setText("4x0"); // does not count, and the dialog says why
        QCOMPARE(dialog->rowProblemText(),
                 QString("Point B does not count: the channel is not a number"));
        shootWithPopup(*dialog, *dialog->cmbEn(1), "calibration");
        m_messages.queueAnswer(MsgAnswer::No);
        dialog->cmdOk();
        QTest::qWait(20);
        QVERIFY(dialog && dialog->isVisible()); // No: the dialog stays
        QCOMPARE(dialog->resultText(), QString("-9.100 1.677 0.000"));
        QVERIFY(!w.document().calibration.bCalibrated);
        QCOMPARE(w.document().calibration.dSlope, 2.5);
        dialog->reject();
        QTRY_VERIFY(!dialog);
        QVERIFY(!w.document().calibration.bCalibrated);
    }

    void preferencesOkSavesAndApplies() {
        TopLevel w(dir(), &m_messages);
        const std::string previousLibrary = w.settings().DefNucLib;
        QTimer::singleShot(0, [this] {
            auto* pref = qobject_cast<frmPref*>(QApplication::activeModalWidget());
            if (!pref)
                return;
            pref->findChild<QTabWidget*>()->setCurrentIndex(1); // the display page and its preview
            qobject_cast<QComboBox*>(pref->control("cmbGraphType"))->setCurrentIndex(2);
            qobject_cast<QComboBox*>(pref->control("cmbScale"))->setCurrentIndex(0);
            qobject_cast<QCheckBox*>(pref->control("chkEnableExtProcessing"))->setChecked(false);
            // Processing controls grey out, except "Start in:".
            const bool greyed = !pref->control("txtProgram")->isEnabled() &&
                                !pref->control("txtDataDir")->isEnabled() &&
                                pref->control("txtStartupDir")->isEnabled();
            qobject_cast<QCheckBox*>(pref->control("chkEnableExtProcessing"))->setChecked(true);
            qobject_cast<QLineEdit*>(pref->control("txtDefNucLib"))->clear();
            auto* styles = qobject_cast<QComboBox*>(pref->control("cmbRepStyle"));
            if (styles->count() == 3)
                styles->setCurrentIndex(2); // place 0 is the empty style
            qobject_cast<QLineEdit*>(pref->control("txtArguments"))
                ->setText(greyed ? "%F" : "not greyed");
            shoot(*pref, "preferences");
            pref->cmdOk();
        });
        w.action("mnuEditPref")->trigger();
        QCOMPARE(w.settings().SpctGraphType, 3);
        QCOMPARE(w.settings().SpctScaleMode, 0);
        QCOMPARE(w.settings().Arguments, std::string("%F"));
        QCOMPARE(w.settings().RepStyle, std::string("Blue"));
        QCOMPARE(w.settings().DefNucLib, previousLibrary); // an empty box keeps the library
        QVERIFY(w.action("mnuViewHisto")->isChecked());
        QVERIFY(w.action("tbLog")->isChecked());
        QVERIFY(w.action("tbProcess")->isVisible());
        QFile ini(QString::fromStdString(SettingsFilePath(dir()).string()));
        QVERIFY(ini.open(QIODevice::ReadOnly));
        const QByteArray text = ini.readAll();
        QVERIFY(text.contains("SpctGraphType=3"));
        QVERIFY(text.contains("EnableExtProcessing=-1"));
    }
};

QTEST_MAIN(MainWindowTest)
#include "main_window.moc"
