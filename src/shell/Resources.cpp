// Start-up resources: toolbar pictures, the print logo and the office lines.
#include "platform/TextFile.h"
#include "platform/ui/Icons.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <map>

namespace shell {

QIcon toolbarIcon(const QString& key, QStyle::StandardPixmap fallback) {
    return platform::toolIcon(key, fallback);
}

QIcon shellToolIcon(const QString& key) {
    // Our own pictures, under file names without spaces; a clone is a copy of the row.
    static const std::map<QString, QString> drawn = {
        {QStringLiteral("Dublicate"), QStringLiteral("Copy")},
        {QStringLiteral("Check and browse next"), QStringLiteral("CheckNext")},
        {QStringLiteral("New to end"), QStringLiteral("NewToEnd")},
        {QStringLiteral("Update and browse next"), QStringLiteral("UpdateNext")},
    };
    const auto own = drawn.find(key);
    return toolbarIcon(own != drawn.end() ? own->second : key, QStyle::SP_CustomBase);
}

void LoadLogo(MDIForm1& main) {
    Settings& s = main.appState().settings;
    main.imgLogo = platform::Picture();
    // Without a logo file there is nothing to print; a file that cannot be read leaves no logo.
    if (s.PLogoFile.isEmpty()) {
        s.PrintLogo = false;
        return;
    }
    main.imgLogo = platform::Picture::fromFile(s.PLogoFile);
}

void readOfficeRows(AppState& state) {
    QStringList lines;
    // A missing office file is no reason to stop the start: the rows stay empty.
    if (!platform::readTextLines(state.AppPath + QStringLiteral("Tamrik2000_office.txt"), lines)) return;
    for (int i = 0; i < 4 && i < lines.size(); ++i)
        state.OfficeRows[i] = lines[i];
}

} // namespace shell
