// Start-up resources: toolbar pictures, the print logo and the office lines.
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "platform/TextFile.h"
#include "platform/ui/Icons.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPushButton>

namespace shell {

QIcon toolbarIcon(const QString& key, QStyle::StandardPixmap fallback) {
    return platform::toolIcon(key, fallback);
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

void disablePictureButtons(documents::ProjectWindow* window) {
    // The picture buttons of the cards open the image viewer, which is not part of this build.
    if (auto* card = qobject_cast<documents::Form3*>(window))
        for (QPushButton* b : card->Command2) b->setEnabled(false);
    if (auto* charge = qobject_cast<documents::Form4*>(window))
        for (QPushButton* b : charge->Command1) b->setEnabled(false);
}

void applyAvailability(MDIForm1& main) {
    // Printing, e-mail, the row editor, the text editor and the heading index are not part
    // of this build: their items stay disabled so that nothing looks like it does something.
    main.SubMenu0[7]->setEnabled(false);
    main.SubMenu0[8]->setEnabled(false);
    main.toolbarButtons[QStringLiteral("Print")]->setEnabled(false);
    main.toolbarButtons[QStringLiteral("Find")]->setEnabled(false);
    main.SubMenu2[0]->setEnabled(false);
    main.SubMenu2[11]->setEnabled(false);
    main.Submenu3[9]->setEnabled(false);
    main.Submenu3[10]->setEnabled(false);
}

} // namespace shell
