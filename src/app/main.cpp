// The desktop program: parses the command line, then either runs a command without any window
// or starts the desktop application. The `tamrik` front end starts it for everything that is not
// a text-only command; run directly it does all of them.
#include "app/Commands.h"
#include "app/CompareCommand.h"
#include "app/Help.h"
#include "app/PrintCommand.h"
#include "platform/Allocator.h"
#include "platform/RuntimeDir.h"
#include "platform/TempDir.h"
#include "platform/ui/Icons.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"
#include "shell/SingleInstance.h"
#include "shell/Termination.h"

#include <QApplication>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QTimer>
#include <QTranslator>
#include <cstdio>
#include <cstring>

namespace {

// The application's name, Finnish locale, icon and desktop entry; `qtTranslator` (which must
// live as long as the application) puts Qt's standard buttons and dialogs into Finnish.
void setUpApplication(QTranslator& qtTranslator) {
    QApplication::setApplicationName(QStringLiteral("TAMRIK 2006"));
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
    if (qtTranslator.load(QLocale(QLocale::Finnish), QStringLiteral("qtbase"), QStringLiteral("_"),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&qtTranslator);
    QApplication::setWindowIcon(platform::applicationIcon());
    // The desktop finds the program's menu entry and icon by this name.
    QGuiApplication::setDesktopFileName(QStringLiteral("tamrik"));
}

} // namespace

int main(int argc, char** argv) {
    // Long print runs, from the command line or the desktop, keep their page buffers in the heap.
    platform::keepLargeBuffersInHeap();
    platform::providePrivateRuntimeDir();
    if (argc >= 2 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("TAMRIK 2006 %s\n", TAMRIK_VERSION);
        return 0;
    }
    if (argc >= 2 && app::isCommand(argv[1]))
        return app::runCommand(argc, argv, {app::printCommand, app::compareCommand});

    bool smoke = false;
    QString file;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0)
            return app::helpCommand({});
        if (std::strcmp(argv[i], "--smoke") == 0)
            smoke = true;
        else if (argv[i][0] == '-' || !QFileInfo(QString::fromLocal8Bit(argv[i])).isFile())
            // Only an existing file starts the desktop program: a mistyped command (or a
            // folder) must not open a window, nor be handed to a program already running.
            return app::unknownArgument(QString::fromLocal8Bit(argv[i]));
        else
            file = QString::fromLocal8Bit(argv[i]);
    }
    if (smoke && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication application(argc, argv);
    QTranslator qtTranslator;
    setUpApplication(qtTranslator);
    // A file opened while the program runs goes to the running program.
    const QString socket = shell::instanceSocketPath(platform::privateTempPath());
    if (!smoke && !file.isEmpty() && shell::handToRunningProgram(socket, file)) return 0;

    shell::MDIForm1 main;
    if (!smoke) {
        (new shell::InstanceServer(main))->listen(socket);
        new shell::Termination(main);
    }
    main.startUp(!smoke);
    // Ended while the start-up questions were open: the main loop is not started at all.
    if (main.terminating()) return 0;
    if (smoke) main.show();
    if (!file.isEmpty()) main.openFromCommandLine(file);
    if (smoke) {
        // A smoke run leaves the user's settings as they were.
        main.appState().settings.SaveSettingsOnExit = false;
        QTimer::singleShot(0, &application, [&main] { main.close(); });
        return application.exec();
    }
    return application.exec();
}
