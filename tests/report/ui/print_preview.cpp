// File > Print from the main window: the preview loads the report in the browser
// component, saves it as PDF with as many pages as its sections take, closes, and reports
// a report it cannot write without losing the previous one.
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QWebEngineView>

#include "PdfInfo.h"
#include "UiTestSupport.h"
#include "report/ui/PrintPreview.h"
#include "report/ui/WebEngineSetup.h"

using namespace vexo;

class PrintPreviewTest : public QObject, public UiFixture {
    Q_OBJECT

public:
    static void initMain() { PrepareWebEngine(); }

private:
    static std::string bytes(const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    // A full spectrum file with two ROIs and a device's settings.
    QString writeSpectrumWithRois() {
        return writeSpectrum("rois.spe", true, [](SpectrumDocument& doc) {
            doc.szDeviceName = "MCA-10"; // the file keeps the name up to its first blank
            doc.szDeviceSerial = "10230417";
            doc.sngHighVoltage = 650.0f;
            doc.lCoarseGain = 2;
            doc.lFineGain = 2048;
            doc.lRiseTime = 50;
            doc.lFlatTop = 10;
            doc.plot.rois = {{250, 280, 255, false, "Cs-137"}, {600, 640, 65280, false, "bkg"}};
        });
    }

    // Triggers File > Print and waits for the report page; the preview, or null.
    static PrintPreview* printAndWait(TopLevel& w) {
        w.action("mnuFilePrint")->trigger();
        PrintPreview* preview = w.printPreview();
        if (!preview)
            return nullptr;
        QSignalSpy loaded(preview, &PrintPreview::reportLoaded);
        if (!loaded.wait(30000) || !loaded.first().at(0).toBool())
            return nullptr;
        return preview;
    }

    static int savePdf(PrintPreview* preview, const QString& file) {
        QSignalSpy saved(preview, &PrintPreview::pdfSaved);
        preview->saveAsPdf(file);
        if (!saved.wait(30000) || !saved.first().at(1).toBool())
            return -1;
        return test::PdfPages(file.toStdString());
    }

private slots:
    void initTestCase() {
        QVERIFY(setUp());
        // Spectral data off keeps the page count small and known: one page of tables,
        // and the picture on a page of its own.
        std::ofstream(dir() / "Vexo.ini") << "[REPORT]\r\nSpctSect=0\r\n";
    }

    void printShowsTheReportAndSavesPdf() {
        TopLevel w(dir(), &m_messages);
        w.show();
        QVERIFY(!UiFixture::enabled(w, "tbPrint")); // nothing to report yet
        QVERIFY(w.openSpectrum(writeSpectrumWithRois()));
        QVERIFY(UiFixture::enabled(w, "tbPrint"));
        QVERIFY(UiFixture::enabled(w, "mnuFilePrint"));

        PrintPreview* preview = printAndWait(w);
        QVERIFY(preview);
        QVERIFY(preview->isVisible());
        QVERIFY(preview->printButton()->isEnabled());
        QCOMPARE(preview->browser()->url(),
                 QUrl::fromLocalFile(QString::fromStdString((dir() / "print.html").string())));
        QVERIFY(std::filesystem::file_size(dir() / "spect.png") > 1000);
        QVERIFY(bytes(dir() / "print.html").find("<td>250 - 280</td>") != std::string::npos);
        if (qEnvironmentVariableIsSet("VEXO_SCREENSHOT_DIR"))
            QTest::qWait(1500); // the browser paints a moment after the page has loaded
        shoot(*preview, "print_preview");

        const int withPicture = savePdf(preview, m_dir.path() + "/with.pdf");
        QVERIFY(withPicture >= 2);
        QTest::mouseClick(preview->findChild<QPushButton*>("cmdClose"), Qt::LeftButton);
        QTRY_VERIFY(!w.printPreview());

        w.settings().PlotSect = false;
        preview = printAndWait(w);
        QVERIFY(preview);
        QCOMPARE(savePdf(preview, m_dir.path() + "/without.pdf"), withPicture - 1);
        QVERIFY(m_messages.shown().empty());
    }

    void reportThatCannotBeWrittenIsReported() {
        TopLevel w(dir(), &m_messages);
        QVERIFY(w.openSpectrum(writeSpectrumWithRois()));
        std::ofstream(dir() / "print.html", std::ios::binary) << "good page";
        std::filesystem::create_directory(dir() / ".print.html.tmp");
        QVERIFY(printAndWait(w));
        std::filesystem::remove(dir() / ".print.html.tmp");
        QCOMPARE(m_messages.shown().size(), std::size_t(1));
        QVERIFY(QString::fromStdString(m_messages.shown()[0].text)
                    .startsWith("Cannot write the report "));
        QCOMPARE(bytes(dir() / "print.html"), std::string("good page"));
    }
};

QTEST_MAIN(PrintPreviewTest)
#include "print_preview.moc"
