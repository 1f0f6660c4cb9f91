// The two base list windows as the main window sees them.
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"
#include "shell/MDIForm1.h"
#include "shell/Settings.h"
#include "shell/ShellActions.h"

#include <QFile>
#include <QFileInfo>

namespace shell {

namespace {
lists::BaseListWindow*& windowOf(MDIForm1& main, int slot) {
    return slot == 6 ? main.Form6 : main.Form7;
}
} // namespace

void loadBaseListWindow(MDIForm1& main, int slot) {
    lists::BaseListWindow*& w = windowOf(main, slot);
    if (!w) {
        w = new lists::BaseListWindow(main, slot, &main);
        GetWinPos(main.appState().settings.pos, slot, w);
    }
    const Settings& s = main.appState().settings;
    w->history().setLimit(s.UndoLimit);
    w->loadFile(slot == 6 ? s.File2 : s.File1);
    if (slot == 6) w->setAddingEnabled(main.appState().ProgramMode != 2);
}

void showBaseListWindow(MDIForm1& main, int slot) {
    lists::BaseListWindow* w = windowOf(main, slot);
    if (!w) {
        loadBaseListWindow(main, slot);
        w = windowOf(main, slot);
    }
    w->show();
    w->raise();
    w->activateWindow();
    w->view()->setFocus();
}

bool closeBaseListWindow(MDIForm1& main, int slot) {
    lists::BaseListWindow* w = windowOf(main, slot);
    if (!w) return true;
    UpdateWinPosTable(main.appState().settings.pos, slot, w);
    return !main.FormTouched(w);
}

void restoreBaseListWindow(MDIForm1& main, int slot, bool agreedToClose) {
    // The shutdown was cancelled: a list whose changes the user agreed to drop is read again.
    lists::BaseListWindow* w = windowOf(main, slot);
    if (!w || !agreedToClose || w->windowTitle().endsWith(QStringLiteral(" Ei muutettu"))) return;
    w->loadFile(w->currentFile());
}

void enableUnitPriceAdding(MDIForm1& main, bool enabled) {
    if (main.Form6) main.Form6->setAddingEnabled(enabled);
}

} // namespace shell

namespace shell {

void MDIForm1::showBaseList(int slot) {
    showBaseListWindow(*this, slot);
}

void MDIForm1::baseListEditAction(lists::BaseListWindow* window, int index) {
    // "Siirry..." of a base list window: the heading index of its own list.
    if (index == 11) {
        ShowBaseListIndex(*this, window);
        return;
    }
    listMenuAction(*this, window->view(), index);
}

void MDIForm1::baseListHelp(lists::BaseListWindow*) {
    TamrikHelp(*this, 2200);
}

QString MDIForm1::baseListFileDialog(int kind, const QString& extension) {
    m_state.CurrentFileName = platform::ShowCommonDialog(kind, extension, false, m_state.dialog);
    return m_state.CurrentFileName;
}

QString MDIForm1::baseListSaveTarget(lists::BaseListWindow*, const QString& file) {
    return UserWritablePath(m_state, file);
}

void MDIForm1::baseListRestoreShipped(lists::BaseListWindow* window) {
    const QString name = window->slot() == 6 ? QStringLiteral("Yksikköhinnat2002.sl1")
                                             : QStringLiteral("Laatuvaatimukset2006.sl2");
    if (FormTouched(window)) return;
    const QString own = m_state.UserDataPath.isEmpty() ? QString() : m_state.UserDataPath + name;
    if (!own.isEmpty() && QFileInfo::exists(own)) {
        const platform::MsgAnswer a = platform::Ask(
            QStringLiteral("Palautetaanko ohjelman mukana tullut luettelo %1?\r\n\r\nOmat tallennetut "
                           "muutoksesi poistetaan (tiedosto %2).")
                .arg(name, own),
            platform::MsgButtons::YesNo, platform::MsgIcon::Question, platform::MsgAnswer::No);
        if (a != platform::MsgAnswer::Yes) return;
        if (!QFile::remove(own)) {
            platform::MsgBox(QStringLiteral("Tiedostoa ") + own + QStringLiteral(" ei voi poistaa."),
                             platform::MsgIcon::Critical);
            return;
        }
    }
    window->loadFile(m_state.AppPath + name);
}

void MDIForm1::baseListExport(lists::BaseListWindow* window, int mode) {
    exportFromBaseList(*this, window, mode);
}

} // namespace shell
