// The device windows with the simulated analyser loaded for real: the device list,
// Connect, Start, the refresh tick, the MCA settings and scope windows, Stop, Save All
// and reopening the file; batches; the start-up connection to the last detector.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <fstream>
#include <ranges>

#include "UiTestSupport.h"
#include "device/AcquisitionController.h"
#include "device/BatchController.h"
#include "device/ui/Scope.h"
#include "device/ui/Settings.h"
#include "device/ui/frmBatch.h"
#include "device/ui/frmDeviceInfo.h"
#include "device/ui/frmDevices.h"
#include "roi/RoiReadout.h"
#include "shell/MeasurementCheckpoint.h"
#include "shell/ui/TopLevel.h"
#include "spectrum/ui/calib.h"

using namespace vexo;

class DeviceWindowsTest : public QObject, public UiFixture {
    Q_OBJECT

    // Every status-bar panel with a text is wide enough for all of it.
    static void assertPanelsNotCut(TopLevel& w) {
        int shown = 0;
        for (int i = 0; i < kStatusPanelCount; ++i) {
            QLabel* panel = w.panel(static_cast<StatusPanel>(i));
            if (panel->text().isEmpty()) {
                QVERIFY(!panel->isVisible());
                continue;
            }
            ++shown;
            QVERIFY(panel->isVisible());
            const int needed =
                panel->fontMetrics().horizontalAdvance(panel->text()) + 2 * panel->frameWidth();
            QVERIFY2(panel->contentsRect().width() + 2 * panel->frameWidth() >= needed,
                     qPrintable(QString("%1: %2 of %3 pixels")
                                    .arg(panel->text())
                                    .arg(panel->width())
                                    .arg(needed)));
        }
        QVERIFY(shown > 0);
    }

    // Points the simulated analyser at a model-10 configuration with `extra` keys, written
    // to `name`; returns the configuration in use before, to be put back.
    QByteArray useModel10With(const char* name, const std::string& extra) {
        const QByteArray previous = qgetenv("VEXO_SIM_CONFIG");
        const std::filesystem::path file = dir() / name;
        test::WriteBytes(file, test::SimConfigText(dir() / "sim", test::Model10(extra)));
        qputenv("VEXO_SIM_CONFIG", QByteArray::fromStdString(file.string()));
        return previous;
    }

private slots:
    void initTestCase() { QVERIFY(setUp()); }
    void init() {
        m_messages.clear();
        // A run the test before left unsaved would be offered for recovery.
        std::filesystem::remove(dir() / kCheckpointFile);
    }

    void connectStartTickStopSaveAllReopen() {
        TopLevel w(dir(), &m_messages);
        w.show();
        pickFirstDeviceSoon();
        w.connectDevice();
        QVERIFY2(w.document().hDevice != 0, "the simulated analyser did not open");
        QCOMPARE(w.panelText(StatusPanel::Connection),
                 QString("Connected to KORV MCA-10 S/N 10230417"));
        QCOMPARE(w.windowTitle(), QString("Vexo - KORV MCA-10 S/N 10230417 (live)"));
        QVERIFY(enabled(w, "tbStart"));
        QVERIFY(!enabled(w, "tbStop"));
        QVERIFY(!enabled(w, "tbConnect"));
        QVERIFY(w.refreshTimer().isActive());

        clsROI roi; // an ROI over the Cs-137 line, so the ROI read-out fills in
        roi.set_vntID("Cs");
        roi.set_lROILCh(150);
        roi.set_lROIRCh(400);
        w.rois().add(roi);
        w.action("mnuMCAStart")->trigger();
        QVERIFY(w.acquisition()->bAcqActive());
        QVERIFY(enabled(w, "tbStop"));
        QVERIFY(!enabled(w, "tbStart"));
        for (int i = 0; i < 6; ++i)
            w.acquisition()->tick();
        QVERIFY(w.panelText(StatusPanel::Elapsed).startsWith("Elapsed time (seconds): "));
        QVERIFY(w.panelText(StatusPanel::CountRate).endsWith(" cps"));
        long long total = 0;
        for (int ch = 0; ch < w.document().lChannels; ++ch)
            total += w.document().lCounts[ch];
        QVERIFY(total > 0);
        const QStringList info = w.infoTexts();
        QVERIFY2(info[5].endsWith(" CPS") && info[6].endsWith(" CPS"), qPrintable(info.join("|")));
        QVERIFY(info[3] != "0.00 keV");
        QCOMPARE(w.width(), 1000); // the default width
        QApplication::processEvents();
        assertPanelsNotCut(w);
        shoot(w, "main_acquiring");

        // MCA settings: a coarse gain chosen and applied comes back from the device.
        w.dispatchToolButton("tbSettings");
        QVERIFY(w.settingsWindow());
        auto* coarse = qobject_cast<QComboBox*>(w.settingsWindow()->control("cmbCoarseGain"));
        QCOMPARE(coarse->count(), 8);
        QCOMPARE(coarse->itemText(7), QString("x128"));
        coarse->setCurrentIndex(4);
        w.settingsWindow()->cmdApply();
        QCOMPARE(w.document().lCoarseGain, 4);
        QCOMPARE(coarse->currentIndex(), 4);
        QCOMPARE(qobject_cast<QLabel*>(w.settingsWindow()->control("lblHVState"))->text(),
                 QString("On"));
        shoot(*w.settingsWindow(), "mca_settings");
        w.settingsWindow()->close();
        QApplication::processEvents();
        QVERIFY(!w.settingsWindow());

        // The scope: opened from the menu, fed by the tick, closed by its own button.
        w.action("mnuViewScope")->trigger();
        QVERIFY(w.scopeWindow());
        QVERIFY(w.action("mnuViewScope")->isChecked());
        w.scopeWindow()->optInput()->setChecked(true);
        for (int i = 0; i < 4; ++i)
            w.acquisition()->tick();
        w.scopeWindow()->resize(640, 360);
        shoot(*w.scopeWindow(), "scope");
        QTest::mouseClick(w.scopeWindow()->findChild<QPushButton*>("cmdClose"), Qt::LeftButton);
        QApplication::processEvents();
        QVERIFY(!w.scopeWindow());
        QVERIFY(!w.action("mnuViewScope")->isChecked());
        w.dispatchToolButton("tbScope"); // reopened from the toolbar, closed by the menu
        QVERIFY(w.action("mnuViewScope")->isChecked());
        w.action("mnuViewScope")->trigger();
        QApplication::processEvents();
        QVERIFY(!w.scopeWindow());
        QVERIFY(!w.action("mnuViewScope")->isChecked());

        w.dispatchToolButton("tbStop");
        QVERIFY(!w.acquisition()->bAcqActive());
        QVERIFY(enabled(w, "tbStart"));
        const QString saved = m_dir.path() + "/measured.spe";
        QVERIFY(w.saveAllSpectrum(saved));
        const auto counts = w.document().lCounts;
        const int channels = w.document().lChannels;

        w.action("mnuFileDisconnect")->trigger(); // the voltage is on: asked, left on
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QCOMPARE(m_messages.shown()[0].buttons, MsgButtons::YesNoDefaultNo);
        m_messages.clear();
        QCOMPARE(w.document().hDevice, 0);
        QCOMPARE(w.panelText(StatusPanel::Connection), QString("Not connected"));
        QVERIFY(!w.refreshTimer().isActive());

        w.document().lCounts.fill(0);
        QVERIFY(w.openSpectrum(saved));
        QCOMPARE(w.windowTitle(), QString("Vexo - measured.spe"));
        QCOMPARE(w.document().lChannels, channels);
        for (int ch = 0; ch < channels; ++ch)
            QCOMPARE(w.document().lCounts[ch], counts[ch]);
        QVERIFY2(m_messages.shown().empty(),
                 m_messages.shown().empty() ? "" : m_messages.shown()[0].text.c_str());
    }

    // The high voltage in the status bar and the settings window, tick by tick, and the
    // questions before starting with it off and before letting go of the device with it on.
    void highVoltageWatchedAndAskedAbout() {
        const QByteArray healthy = useModel10With("KORVHW-ramp.ini", "HVRampSeconds=2");
        TopLevel w(dir(), &m_messages);
        pickFirstDeviceSoon();
        w.connectDevice();
        QVERIFY(w.document().hDevice != 0);
        QCOMPARE(w.panelText(StatusPanel::HighVoltage), QString("HV 800 V on"));
        w.showMcaSettings();
        auto* hvOn = qobject_cast<QCheckBox*>(w.settingsWindow()->control("chkHVOn"));
        auto* state = qobject_cast<QLabel*>(w.settingsWindow()->control("lblHVState"));
        hvOn->setChecked(false);
        w.settingsWindow()->cmdApply();
        w.acquisition()->tick();
        QCOMPARE(w.panelText(StatusPanel::HighVoltage), QString("HV 800 V off"));
        w.startAcquisition(); // asked; the default answer No leaves it stopped
        QCOMPARE(m_messages.shown().back().text, std::string("High voltage is off: start anyway?"));
        QVERIFY(!w.acquisition()->bAcqActive());
        m_messages.queueAnswer(MsgAnswer::Yes);
        w.startAcquisition();
        QVERIFY(w.acquisition()->bAcqActive());
        w.stopAcquisition();
        hvOn->setChecked(true);
        w.settingsWindow()->cmdApply();
        QCOMPARE(state->text(), QString("Ramping"));
        for (int i = 0; i < 6; ++i)
            w.acquisition()->tick();
        QCOMPARE(state->text(), QString("On")); // live, without reopening the window
        QCOMPARE(w.panelText(StatusPanel::HighVoltage), QString("HV 800 V on"));
        m_messages.clear();
        m_messages.queueAnswer(MsgAnswer::Yes); // switch it off before disconnecting
        w.disconnectDevice();
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QCOMPARE(m_messages.shown()[0].text,
                 std::string("High voltage is on: switch it off before disconnecting?"));
        pickFirstDeviceSoon();
        w.connectDevice();
        QCOMPARE(w.panelText(StatusPanel::HighVoltage), QString("HV 800 V off"));
        qputenv("VEXO_SIM_CONFIG", healthy);
        m_messages.clear();
        w.close(); // off: nothing to ask
        QVERIFY(m_messages.shown().empty());
    }

    // Each tick's ROI read-out shows the figures of the spectrum read in that tick, not
    // those of the tick before.
    void roiReadoutShowsTheSpectrumOfItsOwnTick() {
        TopLevel w(dir(), &m_messages);
        pickFirstDeviceSoon();
        w.connectDevice();
        QVERIFY(w.document().hDevice != 0);
        clsROI roi;
        roi.set_vntID("Cs");
        roi.set_lROILCh(150);
        roi.set_lROIRCh(400);
        w.rois().add(roi);
        w.action("mnuMCAStart")->trigger();
        for (int tick = 1; tick <= 3; ++tick) {
            w.acquisition()->tick();
            clsROI expected = roi;
            const RoiReadout r = UpdateCompROI(expected, w.document().sngLiveTime, w.document());
            QVERIFY(r.ok);
            QCOMPARE(w.roiReadoutText(0), QString::fromStdString(r.netArea));
            QCOMPARE(w.roiReadoutText(1), QString::fromStdString(r.integral));
            QCOMPARE(w.roiReadoutText(3), QString::fromStdString(r.intRate));
        }
        w.action("mnuMCAStop")->trigger();
        w.action("mnuFileDisconnect")->trigger();
    }

    // The calibration kept in the device: edited in the MCA settings window, written by
    // Apply, and read back on the next connection.
    void deviceCalibrationAppliedAndReadBack() {
        TopLevel w(dir(), &m_messages);
        w.show();
        pickFirstDeviceSoon();
        w.connectDevice();
        QVERIFY(w.document().hDevice != 0);
        w.showMcaSettings();
        QVERIFY(w.settingsWindow());
        const auto box = [&w](const char* name) {
            return qobject_cast<QDoubleSpinBox*>(w.settingsWindow()->control(name));
        };
        QVERIFY(box("txtCalOffset") && box("txtCalSlope") && box("txtCalQuadratic"));
        box("txtCalOffset")->setValue(-3.25);
        box("txtCalSlope")->setValue(0.7317);
        box("txtCalQuadratic")->setValue(1.5e-6);
        w.settingsWindow()->cmdApply();
        QCOMPARE(float(w.document().dDeviceCal[0]), -3.25f);
        QCOMPARE(float(w.document().dDeviceCal[1]), 0.7317f);
        QCOMPARE(float(w.document().dDeviceCal[2]), 1.5e-6f);
        w.settingsWindow()->close();
        QApplication::processEvents();
        QVERIFY(!w.settingsWindow());

        // A new connection reads id 25 again: the values come from the device.
        w.disconnectDevice();
        w.document().dDeviceCal = {0.0, 0.0, 0.0};
        pickFirstDeviceSoon();
        w.connectDevice();
        QVERIFY(w.document().hDevice != 0);
        QCOMPARE(float(w.document().dDeviceCal[1]), 0.7317f);
        w.showMcaSettings();
        QVERIFY(w.settingsWindow());
        QCOMPARE(box("txtCalOffset")->value(), -3.25);
        QCOMPARE(box("txtCalSlope")->text(), QString("0.731700 keV/ch"));
        QCOMPARE(box("txtCalQuadratic")->text(), QString("0.000001500 keV/ch²"));

        // Accepting an energy calibration refreshes the open window's discriminator energies.
        auto* lld = qobject_cast<QSpinBox*>(w.settingsWindow()->control("txtLLD"));
        auto* lldEnergy = qobject_cast<QLabel*>(w.settingsWindow()->control("lblLLDEnergy"));
        lld->setValue(100);
        const QString before = lldEnergy->text();
        w.showCalibration();
        calib* dialog = w.existingCalibDialog();
        QVERIFY(dialog);
        dialog->txtCh(0)->setText("100");
        dialog->cmbEn(0)->setEditText("300");
        m_messages.queueAnswer(MsgAnswer::Yes);
        dialog->cmdOk();
        QVERIFY(w.document().calibration.bCalibrated);
        QVERIFY(before != "300.0 keV");
        QCOMPARE(lldEnergy->text(), QString("300.0 keV"));
        QCOMPARE(lld->value(), 100); // the edit not yet applied is kept
        w.close();
    }

    // Every setting the device holds (ids 5-51 but the live values and write-only words),
    // each as its read status and raw bytes.
    static QStringList deviceParameters(TopLevel& w) {
        QStringList values;
        for (int id : std::views::iota(5, 52)) {
            char raw[64] = {};
            if (id != 23 && id != 24 && id != 27 && id != 35)
                values << QString("%1:%2:%3")
                              .arg(id)
                              .arg(w.acquisition()->library().getParam(
                                  w.document().hDevice, DeviceParamId(id), raw, sizeof raw))
                              .arg(QByteArray(raw, 12).toHex());
        }
        return values;
    }

    // A spectrum from another analyser opened while connected: its settings snapshot and
    // serial go into the record, but MCA > Setup and Apply keep to the device's own.
    void openWhileConnectedThenApplyLeavesTheDevice() {
        TopLevel w(dir(), &m_messages);
        pickFirstDeviceSoon();
        w.connectDevice();
        QVERIFY(w.document().hDevice != 0);
        w.showMcaSettings();
        w.settingsWindow()->cmdApply(); // the settings as the window writes them
        const QStringList before = deviceParameters(w);
        w.settingsWindow()->close();
        QApplication::processEvents(); // MCA > Setup opens a new window after File > Open
        QVERIFY(w.openSpectrum(writeSpectrum("model06.spe", true, [](SpectrumDocument& d) {
            d.szDeviceSerial = "06110108"; // a fine-gain range of 4095 steps
            d.lFineGain = 4095;
            d.lCoarseGain = 5;
            d.lULD = 300;
            d.sngPresetTime = 7.0f;
        })));
        w.showMcaSettings();
        w.settingsWindow()->cmdApply();
        w.settingsWindow()->cmdApply();
        QCOMPARE(deviceParameters(w), before);
        QCOMPARE(w.document().lFineGain, 4095); // the file's snapshot stays on show
        w.close();
    }

    // The discriminators are channels of the chosen count, and an LLD at or above the
    // ULD is refused before anything is written.
    void discriminatorsKeepToTheChannelCount() {
        TopLevel w(dir(), &m_messages);
        pickFirstDeviceSoon();
        w.connectDevice();
        QVERIFY(w.document().hDevice != 0);
        // The device's power-up answer, above the 1024 channels in use.
        w.acquisition()->library().setParam(w.document().hDevice, DeviceParamId::ULD, 16383);
        w.showMcaSettings();
        const auto box = [&w](const char* name) {
            return qobject_cast<QSpinBox*>(w.settingsWindow()->control(name));
        };
        QCOMPARE(box("txtULD")->value(), 1023);
        box("txtLLD")->setValue(600);
        box("txtULD")->setValue(600);
        w.settingsWindow()->cmdApply();
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QCOMPARE(m_messages.shown()[0].text,
                 std::string("The LLD (channel 600) must be below the ULD (channel 600). "
                             "Nothing was applied."));
        QCOMPARE(w.document().lLLD, 0);
        w.close();
    }

    // The link drops while acquiring: one message, the disconnected state, and a later
    // Connect (to a device without the fault) works.
    void lostDeviceDuringAcquisition() {
        const QByteArray healthy = useModel10With("KORVHW-drops.ini", "DisconnectAfter=3");
        TopLevel w(dir(), &m_messages);
        w.show();
        pickFirstDeviceSoon();
        w.connectDevice();
        qputenv("VEXO_SIM_CONFIG", healthy);
        QVERIFY(w.document().hDevice != 0);
        w.dispatchToolButton("tbSettings");
        w.action("mnuViewScope")->trigger();
        QVERIFY(w.settingsWindow() && w.scopeWindow());
        w.startAcquisition();
        QVERIFY(w.acquisition()->bAcqActive());
        for (int i = 0; i < 20; ++i)
            w.acquisition()->tick(); // well past 3 simulated seconds
        QApplication::processEvents();
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QCOMPARE(m_messages.shown()[0].text,
                 std::string("Lost the connection to the MCA: Connection closed"));
        QCOMPARE(w.document().hDevice, 0);
        QVERIFY(!w.acquisition()->bAcqActive());
        QVERIFY(!w.refreshTimer().isActive());
        QCOMPARE(w.panelText(StatusPanel::Connection), QString("Not connected"));
        QVERIFY(enabled(w, "tbConnect"));
        QVERIFY(!enabled(w, "tbDisconnect"));
        QVERIFY(!enabled(w, "tbStart"));
        QVERIFY(!enabled(w, "tbStop"));
        QVERIFY(!w.settingsWindow()); // the device windows closed with the device
        QVERIFY(!w.scopeWindow());
        QVERIFY(!w.action("mnuViewScope")->isChecked());

        // Connect again, to the configuration without the fault.
        pickFirstDeviceSoon();
        w.dispatchToolButton("tbConnect");
        QVERIFY(w.document().hDevice != 0);
        QCOMPARE(w.panelText(StatusPanel::Connection),
                 QString("Connected to KORV MCA-10 S/N 10230417"));
        QVERIFY(enabled(w, "tbStart"));
        QVERIFY(w.refreshTimer().isActive());
        w.startAcquisition();
        for (int i = 0; i < 10; ++i)
            w.acquisition()->tick();
        QVERIFY(w.acquisition()->bAcqActive());
        QCOMPARE(m_messages.shown().size(), std::size_t(1)); // nothing more to report
        w.close();
    }

    // A crash (the window gone without a save) loses nothing: the next start offers the
    // run's checkpoint and reopens exactly the spectrum it held.
    void crashedMeasurementIsOffered() {
        auto w = std::make_unique<TopLevel>(dir(), &m_messages);
        pickFirstDeviceSoon();
        w->connectDevice();
        QVERIFY(w->document().hDevice != 0);
        w->startAcquisition();
        for (int i = 0; i < 4; ++i)
            w->acquisition()->tick();
        w->stopAcquisition();
        w->acquisition()->tick(); // the pass that finds the run ended
        const auto kept = std::make_unique<SpectrumDocument>(w->document());
        w.reset();
        m_messages.queueAnswer(MsgAnswer::Yes);
        TopLevel again(dir(), &m_messages);
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QVERIFY(m_messages.shown()[0].text.rfind("Recover the measurement of ", 0) == 0);
        const SpectrumDocument& doc = again.document();
        QCOMPARE(doc.lChannels, kept->lChannels);
        QVERIFY(std::equal(doc.lCounts.begin(), doc.lCounts.begin() + doc.lChannels,
                           kept->lCounts.begin()));
        QCOMPARE(doc.sngLiveTime, kept->sngLiveTime);
    }

    void batchOfTwoSavesTwoFiles() {
        TopLevel w(dir(), &m_messages);
        pickFirstDeviceSoon();
        w.connectDevice();
        QVERIFY(w.document().hDevice != 0);
        w.document().lPresetMode = 3; // live-time preset
        const QString out = m_dir.path() + "/batch";
        QVERIFY(QDir().mkpath(out));
        QTimer::singleShot(0, [out] {
            auto* batch = qobject_cast<frmBatch*>(QApplication::activeModalWidget());
            if (!batch)
                return;
            qobject_cast<QLineEdit*>(batch->control("txtBatchSubDir"))->setText(out + "/nowhere");
            batch->cmdStart(); // a folder that does not exist is refused
            qobject_cast<QLineEdit*>(batch->control("txtBatchSubDir"))->setText(out);
            qobject_cast<QLineEdit*>(batch->control("txtNoOfMeas"))->setText("2");
            batch->cmdStart();
            if (batch->isVisible())
                batch->reject();
        });
        w.action("mnuMCABatch")->trigger();
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QCOMPARE(m_messages.shown()[0].title, std::string("Batch Settings"));
        QVERIFY(w.acquisition()->bBatchMode());
        QCOMPARE(w.panelText(StatusPanel::Batch), QString("BATCH ON"));
        QVERIFY(!enabled(w, "tbStart")); // batch on counts as busy
        auto* progress = w.findChild<QProgressBar*>("batchProgress");
        QVERIFY(progress && progress->isVisibleTo(&w));
        QCOMPARE(progress->maximum(), 2);
        QCOMPARE(progress->value(), int(w.batch()->nBatchIndex()));
        // Stop during the batch asks first; Cancel leaves it running.
        m_messages.queueAnswer(MsgAnswer::Cancel);
        w.stopAcquisition();
        QCOMPARE(m_messages.shown().back().title, std::string("Stop Batch Acquisition"));
        QVERIFY(w.acquisition()->bBatchMode());
        m_messages.queueAnswer(MsgAnswer::Ok);
        w.stopAcquisition();
        QVERIFY(!w.acquisition()->bBatchMode());
        QVERIFY(enabled(w, "tbStart"));
        QVERIFY(!progress->isVisibleTo(&w));
        w.close();
    }

    void secondConnectIsRefused() {
        TopLevel w(dir(), &m_messages);
        pickFirstDeviceSoon();
        w.connectDevice();
        QVERIFY(w.document().hDevice != 0);
        // Device information shows the identity read at connection.
        QString shownName;
        QTimer::singleShot(0, [&shownName] {
            auto* info = qobject_cast<frmDeviceInfo*>(QApplication::activeModalWidget());
            if (!info)
                return;
            for (QLabel* l : info->findChildren<QLabel*>())
                if (l->text() == "KORV MCA-10")
                    shownName = l->text();
            info->accept();
        });
        w.action("mnuFileDevInfo")->trigger();
        QCOMPARE(shownName, QString("KORV MCA-10"));
        m_messages.clear();
        w.dispatchToolButton("tbConnect");
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QCOMPARE(m_messages.shown()[0].text, std::string("Already connected"));
        w.close();
        QCOMPARE(w.document().hDevice, 0); // shut-down closes the device
        m_messages.clear();
        w.showDeviceInfo(); // not connected any more
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QCOMPARE(m_messages.shown()[0].text, std::string("Not connected"));
    }

    void emptyDeviceListRefusesOpen() {
        TopLevel w(dir(), &m_messages);
        bool searching = false;
        QString type;
        QTimer::singleShot(0, [&searching, &type] {
            auto* list = qobject_cast<frmDevices*>(QApplication::activeModalWidget());
            if (!list)
                return;
            list->cmdOpen(); // no tick yet: the list is empty
            searching = list->searchingLabel()->isVisibleTo(list);
            list->tmrSearch();
            list->tmrSearch(); // rows lag one tick behind the search
            searching = searching && !list->searchingLabel()->isVisibleTo(list);
            type = list->lvDevices()->topLevelItem(0)->text(4);
            list->reject();
        });
        w.connectDevice();
        QVERIFY(searching); // shown while the list is empty, gone with the first row
        QCOMPARE(type, QString("USB"));
        QCOMPARE(w.document().hDevice, 0);
        // Start-up may also have said that the report styles file is missing.
        int listEmpty = 0;
        for (const Message& m : m_messages.shown())
            listEmpty += m.text == kEmptyDeviceListText && m.title == "Vexo";
        QCOMPARE(listEmpty, 1);
    }
    // Start-up with "OpenLastDetectorUsed": tmrConnect opens the remembered detector.
    void autoConnectAtStartUp() {
        {
            std::ofstream ini(dir() / "Vexo.ini");
            ini << "[PROGRAM]\r\nOpenLastDetectorUsed=-1\r\nDetectorPath=USB:KORV-10-001\r\n";
        }
        TopLevel w(dir(), &m_messages);
        QTRY_VERIFY_WITH_TIMEOUT(w.document().hDevice != 0, 5000);
        QCOMPARE(w.panelText(StatusPanel::Connection),
                 QString("Connected to KORV MCA-10 S/N 10230417"));
        QVERIFY(w.refreshTimer().isActive());
        w.close();
        QCOMPARE(w.document().hDevice, 0);
        std::filesystem::remove(dir() / "Vexo.ini");
    }
};

QTEST_MAIN(DeviceWindowsTest)
#include "device_windows.moc"
