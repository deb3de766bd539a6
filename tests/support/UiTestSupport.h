#pragma once
// What the window tests share: a scratch application folder with the simulated
// analyser's configuration and two report styles, scripted messages, a test spectrum,
// and pictures of the windows when VEXO_SCREENSHOT_DIR is set.
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <filesystem>
#include <fstream>
#include <functional>

#include "SimAnalyser.h"
#include "base/Messages.h"
#include "device/ui/frmDevices.h"
#include "shell/ui/TopLevel.h"
#include "spectrum/SpectrumCommands.h"

namespace vexo {

struct UiFixture {
    QTemporaryDir m_dir;
    ScriptedMessages m_messages;

    std::filesystem::path dir() const { return m_dir.path().toStdString(); }
    static bool enabled(TopLevel& w, const char* key) { return w.action(key)->isEnabled(); }

    // One simulated device on a stepped clock, loaded from the built library.
    bool setUp() {
        if (!m_dir.isValid())
            return false;
        const std::filesystem::path sim = dir() / "KORVHW.ini";
        test::WriteBytes(sim, test::SimConfigText(dir() / "sim", test::Model10()));
        qputenv("VEXO_SIM_CONFIG", QByteArray::fromStdString(sim.string()));
        // Two report styles, so that loading the settings has nothing to complain about.
        std::ofstream(dir() / "RepStyles.ini")
            << "[Classic]\r\nCS_Description=Classic\r\n[Blue]\r\nCS_Description=Blue\r\n";
        qputenv("VEXO_DEVICE_LIBRARY", QByteArray::fromStdString(test::SimLibraryPath().string()));
        return true;
    }

    static void shoot(QWidget& w, const char* name) {
        const QByteArray out = qgetenv("VEXO_SCREENSHOT_DIR");
        if (out.isEmpty())
            return;
        QApplication::processEvents();
        w.grab().save(QString::fromUtf8(out) + "/" + name + ".png");
    }

    // `w` with the drop-down list of `box` open over it, in one picture.
    static void shootWithPopup(QWidget& w, QComboBox& box, const char* name) {
        const QByteArray out = qgetenv("VEXO_SCREENSHOT_DIR");
        if (out.isEmpty())
            return;
        QApplication::setEffectEnabled(Qt::UI_AnimateCombo, false); // the list at full size
        box.showPopup();
        QTest::qWait(100);
        QWidget* popup = box.view()->window();
        const QPoint at = popup->mapToGlobal(QPoint()) - w.mapToGlobal(QPoint());
        const QRect all = w.rect().united(QRect(at, popup->size()));
        QPixmap picture(all.size());
        picture.fill(Qt::white);
        QPainter painter(&picture);
        painter.drawPixmap(-all.topLeft(), w.grab());
        painter.drawPixmap(at - all.topLeft(), popup->grab());
        painter.end();
        box.hidePopup();
        picture.save(QString::fromUtf8(out) + "/" + name + ".png");
    }

    // A 1024-channel spectrum with one peak at channel 265, as a full or plain file;
    // `change` may add to the record before it is written.
    QString writeSpectrum(const char* name, bool full = true,
                          const std::function<void(SpectrumDocument&)>& change = {}) {
        SpectrumDocument doc;
        doc.lChannels = 1024;
        for (int ch = 0; ch < 1024; ++ch)
            doc.lCounts[ch] = 50 + (ch > 250 && ch < 280 ? 4000 - 12 * (ch - 265) * (ch - 265) : 0);
        doc.sngLiveTime = 100.0f;
        doc.sngRealTime = 101.0f;
        doc.szSpectrumID = "Cs-137 check";
        if (change)
            change(doc);
        const std::filesystem::path path = dir() / name;
        ScriptedMessages quiet;
        const bool ok = full ? SaveAllSpectrum(doc, path, quiet) : SaveSpectrum(doc, path).ok;
        if (!ok)
            qFatal("cannot write the test spectrum");
        return QString::fromStdString(path.string());
    }

    // The device list is modal: picks the first device from inside its event loop.
    static void pickFirstDeviceSoon() {
        QTimer::singleShot(0, [] {
            auto* list = qobject_cast<frmDevices*>(QApplication::activeModalWidget());
            if (!list)
                return;
            list->tmrSearch();
            list->tmrSearch(); // rows lag one tick behind the search
            list->cmdOpen();
        });
    }
};

} // namespace vexo
