// Pictures of windows for looking at them as a user would, without a window manager:
//   tamrik_screens OUTDIR [FILE.sl]
// writes main.png (the main window with the project), splash.png, about.png and, with a project,
// editor.png (the row editor on its first requirement).
// Run with QT_SCALE_FACTOR=2 to see the high-resolution look.
#include "peripherals/Dialog1.h"
#include "documents/Form2.h"
#include "documents/Form5.h"
#include "documents/ProjectWindow.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
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
    if (args.size() > 2) {
        main.ToolbarMenuActions(QStringLiteral("Rulers"));
        if (documents::Form2* f2 = main.ParseFormIndeces().f2) {
            lists::ListView* requirements = f2->ListView1[1];
            requirements->list()->selectOnly(2);
            QApplication::setActiveWindow(&main);
            requirements->setFocus();
            QApplication::processEvents();
            // The editor is modal: grab it once it is up, then close it.
            QTimer::singleShot(300, [&out] {
                if (QWidget* modal = QApplication::activeModalWidget()) {
                    modal->grab().save(out.filePath(QStringLiteral("editor.png")));
                    modal->close();
                }
            });
            main.EditMenuClick(0);
        }
    }
    main.appState().settings.SaveSettingsOnExit = false;
    for (auto* w : main.projectWindows())
        main.FormUntouch(w);
    return 0;
}
