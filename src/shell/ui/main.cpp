// Vexo desktop application: parses --appdir, settles the application folder and shows
// the main window.
#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>
#include <filesystem>

#include "base/AppDir.h"
#include "report/ui/WebEngineSetup.h"
#include "shell/ui/TopLevel.h"

int main(int argc, char** argv) {
    vexo::PrepareWebEngine(); // before the application object: the report preview needs it
    QApplication app(argc, argv);
    QApplication::setApplicationName("Vexo");
    QApplication::setApplicationVersion(VEXO_VERSION);

    QCommandLineParser parser;
    parser.setApplicationDescription("Gamma-ray spectrometry with a digital multichannel analyser");
    parser.addHelpOption();
    parser.addVersionOption();
    QCommandLineOption appDirOption("appdir",
                                    "Folder holding Vexo.ini and the program's data files.", "DIR");
    parser.addOption(appDirOption);
    parser.addPositionalArgument("file", "Spectrum file to open.", "[file]");
    parser.process(app);

    const std::filesystem::path appDir =
        vexo::ResolveAppDir(parser.value(appDirOption).toStdString(), vexo::ExecutableDir());
    // A folder named on the command line that does not exist yet is made, so the
    // settings can be saved there; one that cannot be made ends the start here.
    std::error_code ec;
    if (!std::filesystem::is_directory(appDir, ec) &&
        !std::filesystem::create_directories(appDir, ec)) {
        std::fprintf(stderr, "vexo: cannot use %s as the application folder: %s\n",
                     appDir.string().c_str(), ec ? ec.message().c_str() : "not a folder");
        return 1;
    }
    vexo::SetAppDir(appDir);

    vexo::TopLevel window(appDir);
    window.show();
    if (!parser.positionalArguments().isEmpty())
        window.openSpectrum(parser.positionalArguments().front());
    return app.exec();
}
