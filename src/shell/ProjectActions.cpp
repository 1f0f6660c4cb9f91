// Procedures on a project's windows that the main window's menus call.
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form4.h"
#include "shell/MDIForm1.h"
#include "shell/Modes.h"
#include "shell/ShellActions.h"

#include <QDir>
#include <QFileInfo>
#include <QTextEdit>

namespace shell {

void UpdateTextDocuments(MDIForm1& main, int oldIndex) {
    const int newIndex = main.appState().settings.StartUpDocument;
    const bool wasLoading = main.appState().Loading;
    // Switching the shown document is not a change of the project.
    main.appState().Loading = true;
    for (documents::ProjectWindow* w : main.projectWindows()) {
        if (auto* f2 = qobject_cast<documents::Form2*>(w)) {
            f2->switchDocument(oldIndex, newIndex);
            // Who may edit the shown document depends on which document it is.
            EnableControlsPage2(main, f2, true);
        }
    }
    main.appState().Loading = wasLoading;
}

void focusTextDocument(MDIForm1& main) {
    if (auto* f2 = main.ParseFormIndeces().f2)
        if (!f2->RichTextBox1.empty() && f2->RichTextBox1[0]) f2->RichTextBox1[0]->setFocus();
}

void copyMunicipality(MDIForm1& main, const ProjectWindows& w) {
    if (!w.f1 || !w.f4 || w.f1->Combo1.size() <= 9 || w.f4->Text1.size() <= 1) return;
    const bool wasLoading = main.appState().Loading;
    main.appState().Loading = true;
    w.f4->Text1[1]->setText(w.f1->Combo1[9]->text());
    // The card's grey "Rakenne" is the bridge type of the basic data.
    if (w.f4->Text1.size() > 4) w.f4->Text1[4]->setText(w.f1->Combo1[0]->text());
    main.appState().Loading = wasLoading;
}

bool sameFile(const QString& a, const QString& b) {
    if (a.isEmpty() || b.isEmpty()) return false;
    auto canonical = [](QString p) {
        p.replace(QLatin1Char('\\'), QLatin1Char('/'));
        const QFileInfo fi(p);
        const QString c = fi.canonicalFilePath();
        return QDir::cleanPath(c.isEmpty() ? fi.absoluteFilePath() : c);
    };
    return canonical(a).compare(canonical(b), Qt::CaseInsensitive) == 0;
}

} // namespace shell
