// The help menu: the user's guide, the separate help files and the About box.
#include "peripherals/Dialog1.h"
#include "peripherals/OpenDocument.h"
#include "peripherals/TamrikHelp.h"
#include "platform/Dialogs.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"
#include "shell/frmSplash.h"

#include <QAction>
#include <QMenu>
#include <QPointer>

namespace shell {

void loadHelpFileMenu(MDIForm1& main) {
    AppState& state = main.appState();
    const std::vector<peripherals::HelpFileEntry> entries = peripherals::ReadHelpFiles(state.AppPath);
    for (int i = 0; i < 20; ++i) {
        QAction* a = main.SubMenu41[i];
        if (i < static_cast<int>(entries.size())) {
            a->setText(entries[i].caption);
            a->setVisible(true);
            state.HelpFileList[i] = entries[i].target;
        } else {
            a->setVisible(false);
            state.HelpFileList[i].clear();
        }
    }
    // Without a list the sub-menu has nothing to offer.
    main.SubMenu4[1]->setEnabled(!entries.empty());
}

void openHelpFile(MDIForm1& main, int index) {
    if (index < 0 || index >= 20) return;
    const QString target = main.appState().HelpFileList[index];
    if (!target.isEmpty()) peripherals::OpenDocument(target);
}

void TamrikHelp(MDIForm1& main, int context, QWidget* dialog) {
    static QPointer<peripherals::HelpViewer> viewer;
    // A modal dialog blocks every window but its own: help asked for from a dialog belongs to
    // that dialog while it is open, so that it can be read, scrolled and closed.
    QWidget* owner = dialog ? dialog : &main;
    if (viewer && viewer->parentWidget() != owner) {
        const QRect geometry = viewer->geometry();
        viewer->setParent(owner, viewer->windowFlags());
        viewer->setGeometry(geometry);
    }
    if (!viewer) {
        viewer = new peripherals::HelpViewer(owner);
        viewer->setAttribute(Qt::WA_DeleteOnClose, false);
    }
    const QString file = main.appState().HelpFile;
    if (!viewer->showTopic(file, context))
        platform::MsgBox(QStringLiteral("Ohjetiedostoa ") + file + QStringLiteral(" ei löydy."),
                         platform::MsgIcon::Exclamation);
}

void showAbout(MDIForm1& main) {
    const QString version = versionText().mid(QStringLiteral("Ohjelmakäännös ").size());
    peripherals::Dialog1 dialog(version, copyrightText(), companyText(), &main);
    dialog.exec();
}

} // namespace shell
