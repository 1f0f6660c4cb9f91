// The row editor, the text editor and the heading index as the main window opens them, and the
// main window's answers to what those windows ask.
#include "documents/Form1.h"
#include "documents/Form10.h"
#include "documents/Form2.h"
#include "documents/Form5.h"
#include "documents/Form9.h"
#include "documents/HeadingIndex.h"
#include "lists/ui/BaseListWindow.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "peripherals/OpenDocument.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/Settings.h"
#include "shell/ShellActions.h"

#include <QApplication>
#include <QTextEdit>

namespace shell {

void ShowListViewEditor(MDIForm1& main, lists::ListView* view) {
    if (!view) return;
    if (!main.Form5) main.Form5 = new documents::Form5(main, &main);
    if (main.Form5->ShowListViewEditor(view)) main.Form5->exec();
    // Back in the list, at the row the card showed last.
    view->window()->activateWindow();
    view->setFocus();
    if (ancestor<documents::ProjectWindow>(view)) main.UpdateCaptionText(view);
}

QTextEdit* activeRichTextBox(MDIForm1& main) {
    auto* f2 = qobject_cast<documents::Form2*>(main.activeWindow());
    if (!f2 || f2->RichTextBox1.empty()) return nullptr;
    QTextEdit* shown = f2->RichTextBox1[0];
    QWidget* focus = QApplication::focusWidget();
    return focus && (focus == shown || shown->isAncestorOf(focus)) ? shown : nullptr;
}

void ShowTextEditor(MDIForm1& main, int mode) {
    documents::ProjectWindow* active = main.activeWindow();
    if (!active) return;
    documents::EditorSource source;
    source.mode = mode;
    source.project = main.ParseFormIndeces().f2;
    source.projectFileName = ParseFileName(active->caption()).project();
    if ((mode == 1 || mode == 8) && !source.project) return;
    main.appState().EditorMode = mode;
    documents::Form9 editor(main, source, &main);
    editor.exec();
    static_cast<QWidget&>(main).activateWindow();
    if (source.project && mode != 100) source.project->RichTextBox1[0]->setFocus();
}

void ShowIndex(MDIForm1& main, int kind) {
    documents::Form2* f2 = qobject_cast<documents::Form2*>(main.activeWindow());
    QWidget* focus = QApplication::focusWidget();
    lists::ListView* view = ancestor<lists::ListView>(focus);
    QTextEdit* text = activeRichTextBox(main);
    const QString listTag = view && view->list() ? view->list()->tag() : QString();
    const QString textTag = text ? text->property("tag").toString() : QString();
    const QString mode = documents::ShowIndexMode(kind, listTag, textTag);
    if (mode.isEmpty() || !f2) return;

    documents::Form10::Source source;
    if (mode == documents::index_mode::QuantityList || mode == documents::index_mode::Requirements) {
        source.list = f2->ListView1[mode == documents::index_mode::QuantityList ? 0 : 1];
    } else {
        source.headings = f2->list(1);
        source.text = f2->RichTextBox1[0];
    }
    documents::Form10 index(mode, source, &main, &main);
    index.exec();
    static_cast<QWidget&>(main).activateWindow();
    if (source.list) main.UpdateCaptionText(source.list);
}

void ShowBaseListIndex(MDIForm1& main, lists::BaseListWindow* window) {
    if (!window) return;
    documents::Form10::Source source;
    source.list = window->view();
    const QString mode =
        window->slot() == 6 ? documents::index_mode::UnitPriceBase : documents::index_mode::RequirementBase;
    documents::Form10 index(mode, source, &main, window);
    index.exec();
}

// ---------------------------------------------------------------------------------------------
// What the tool windows ask of the main window

documents::Form1* MDIForm1::basicDataWindowOf(QWidget* window) {
    auto* pw = ancestor<documents::ProjectWindow>(window);
    return (pw ? projectWindowsOf(ParseFileName(pw->caption()).project()) : ParseFormIndeces()).f1;
}

documents::Form2* MDIForm1::detailedDataWindowOf(QWidget* window) {
    auto* pw = ancestor<documents::ProjectWindow>(window);
    return (pw ? projectWindowsOf(ParseFileName(pw->caption()).project()) : ParseFormIndeces()).f2;
}

void MDIForm1::openFile(const QString& target) {
    peripherals::OpenDocument(target);
}

void MDIForm1::showHelp(int context, QWidget* from) {
    TamrikHelp(*this, context, from);
}

void MDIForm1::restoreWindowPosition(int slot, QWidget* window) {
    GetWinPos(m_state.settings.pos, slot, window);
}

void MDIForm1::storeWindowPosition(int slot, QWidget* window) {
    UpdateWinPosTable(m_state.settings.pos, slot, window);
}

QIcon MDIForm1::toolIcon(const QString& key) {
    return shellToolIcon(key);
}

} // namespace shell
