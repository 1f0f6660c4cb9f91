// "&Vertaa projektia...": the active project compared with another version of it from a file.
#include "documents/CompareWindow.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "persist/ProjectFile.h"
#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"
#include "print/ui/PrintHost.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ProjectFiles.h"
#include "shell/ShellActions.h"

#include <QFileInfo>
#include <QPointer>

namespace shell {

namespace {

using platform::MsgIcon;

class ShellCompareHost : public documents::CompareHost {
public:
    ShellCompareHost(MDIForm1& main, const ProjectWindows& windows)
        : m_main(main)
        , m_printHost(makePrintHost(main)) {
        const std::vector<documents::ProjectWindow*> all = windows.all();
        for (int i = 0; i < 4 && i < static_cast<int>(all.size()); ++i)
            m_windows[i] = all[i];
    }

    documents::ProjectWindow* showProjectWindow(int window) override {
        documents::ProjectWindow* w = window >= 0 && window < 4 ? m_windows[window].data() : nullptr;
        // A closed project's windows are on their way out.
        if (!w || w->property("unloading").toBool()) return nullptr;
        m_main.activateWindow(w);
        m_main.raise();
        m_main.QWidget::activateWindow();
        return w;
    }
    print::ui::PrintHost& printHost() override { return *m_printHost; }
    print::ui::PrintSession& printSession() override { return m_main.printSession(); }

private:
    MDIForm1& m_main;
    std::unique_ptr<print::ui::PrintHost> m_printHost;
    std::array<QPointer<documents::ProjectWindow>, 4> m_windows;
};

} // namespace

void showCompareWindow(MDIForm1& main) {
    const ProjectWindows w = main.ParseFormIndeces();
    if (!w.complete()) return;
    AppState& state = main.appState();
    state.CurrentFileName = platform::ShowCommonDialog(1, QStringLiteral(".sl"), false, state.dialog);
    const QString file = state.CurrentFileName;
    if (file.isEmpty()) return;
    auto fail = [&](const QString& what) {
        platform::MsgBox(QStringLiteral("Tiedostoa ") + file + QStringLiteral(" ei voi vertailla:\r\n") +
                             what,
                         MsgIcon::Exclamation);
    };
    persist::ProjectFile other;
    QString error;
    if (!persist::ReadProjectFile(file, false, other, &error)) return fail(error);

    // The open project as its file would hold it now, unsaved changes included.
    const ParsedCaption caption = ParseFileName(main.ActiveCaption());
    persist::ProjectFile open;
    if (!persist::UnpackContainer(ProjectContainer(main, w, false, false), open.members, &error) ||
        !persist::ReadProjectText(open.members[0].data, caption.directory, open.content, &error))
        return fail(error);
    // The row numbers of the open lists, to find the rows again after later edits.
    std::array<QStringList, 2> rowNumbers;
    for (int j = 0; j < 2; ++j) {
        const lists::ListModel* list = w.f2->list(j);
        for (int r = 1; list && r <= list->rows(); ++r)
            rowNumbers[j] << list->rowNumberText(r).toString();
    }
    auto* window = new documents::CompareWindow(std::make_unique<ShellCompareHost>(main, w), std::move(open),
                                                caption.project(), std::move(rowNumbers), std::move(other),
                                                QFileInfo(file).absoluteFilePath(), &main);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
}

} // namespace shell
