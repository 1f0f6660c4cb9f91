// Pictures of windows for looking at them as a user would, without a window manager:
//   tamrik_screens OUTDIR [FILE.sl]
// writes main.png (the main window with the project), splash.png and about.png.
// Run with QT_SCALE_FACTOR=2 to see the high-resolution look.
#include "peripherals/Dialog1.h"
#include "documents/ProjectWindow.h"
#include "platform/ui/Icons.h"
#include "shell/MDIForm1.h"
#include "shell/frmSplash.h"

#include <QApplication>
#include <QDir>
#include <QTimer>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setWindowIcon(platform::applicationIcon());
    const QStringList args = QCoreApplication::arguments();
    const QDir out(args.value(1, QStringLiteral(".")));
    shell::frmSplash splash;
    splash.setProgress(60);
    splash.grab().save(out.filePath(QStringLiteral("splash.png")));
    shell::MDIForm1 main;
    main.startUp(false);
    main.resize(1280, 860);
    main.show();
    if (args.size() > 2) main.openFromCommandLine(args[2]);
    QApplication::processEvents();
    main.grab().save(out.filePath(QStringLiteral("main.png")));
    peripherals::Dialog1 about(shell::versionText().mid(15), shell::copyrightText(), shell::companyText());
    about.show();
    QApplication::processEvents();
    about.grab().save(out.filePath(QStringLiteral("about.png")));
    main.appState().settings.SaveSettingsOnExit = false;
    for (auto* w : main.projectWindows())
        main.FormUntouch(w);
    return 0;
}
