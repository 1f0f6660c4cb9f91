// The edit menu's actions on the active control, and the main window's answers to the list
// editors of every window.
#include "documents/Controls.h"
#include "documents/Form2.h"
#include "lists/ui/BaseListWindow.h"
#include "lists/ListEditing.h"
#include "lists/ListStep.h"
#include "lists/ui/ListEditor.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"
#include "shell/MDIForm1.h"
#include "shell/Modes.h"
#include "shell/ShellActions.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace shell {

namespace {

// The list that has the focus, unless its in-place edit box has it (that is a text control).
lists::ListView* focusedList(QWidget* focus) {
    lists::ListView* view = ancestor<lists::ListView>(focus);
    if (!view) return nullptr;
    lists::ListEditor* editor = lists::ListEditor::of(view);
    if (editor && editor->isEditing() && focus == editor->editBox()) return nullptr;
    return view;
}

} // namespace

namespace {

// While a cell is being edited, the text items act on the edit box, not on whole rows: true
// when `index` was one of them.
bool editBoxAction(lists::ListEditor& editor, int index) {
    if (!editor.isEditing()) return false;
    if (index >= 6 && index <= 9) {
        documents::CutCopyPasteDelSelection(editor.editBox(), index - 6);
        return true;
    }
    if (index == 13) {
        documents::SelectAllText(editor.editBox());
        return true;
    }
    return false;
}

// Formats the list again as one step that undo takes back whole.
void formatList(MDIForm1& main, lists::ListView* view, lists::ListModel& list, lists::ListEditor& editor) {
    if (list.readOnly()) return;
    editor.closeEditor();
    lists::ListStep recorded(list, lists::step::Format);
    lists::FormatListView(list, 1, 0, main.appState().settings.BlankLines);
    main.listEdited(view);
}

} // namespace

void listMenuAction(MDIForm1& main, lists::ListView* view, int index) {
    lists::ListModel* list = view->list();
    lists::ListEditor* editor = lists::ListEditor::of(view);
    if (!list || !editor) return;
    if (editBoxAction(*editor, index)) return;
    switch (index) {
        case 0:
            ShowListViewEditor(main, view);
            return;
        case 1: {
            // Only the two lists of the detailed data window have base lists of their own.
            if (!ancestor<documents::Form2>(view)) return;
            if (view->index() == 0) showBaseListWindow(main, 6);
            if (view->index() == 1) showBaseListWindow(main, 7);
            return;
        }
        case 2:
            editor->rowEdit(1);
            return;
        case 3:
            editor->rowEdit(2);
            return;
        case 4:
            editor->rowEdit(3);
            return;
        case 6:
            editor->cutCopyDelete(0);
            return;
        case 7:
            editor->cutCopyDelete(1);
            return;
        case 9:
            editor->cutCopyDelete(3);
            return;
        case 8:
            editor->paste();
            return;
        case 11:
            ShowIndex(main, 0);
            return;
        case 13:
            list->selectAll();
            return;
        case 15:
            formatList(main, view, *list, *editor);
            return;
        default:
            return;
    }
}

void editMenuAction(MDIForm1& main, int index) {
    QWidget* focus = QApplication::focusWidget();
    if (lists::ListView* view = focusedList(focus)) {
        listMenuAction(main, view, index);
        return;
    }
    switch (index) {
        case 0:
            // The shown document of the detailed data window opens in the text editor.
            if (activeRichTextBox(main)) ShowTextEditor(main, 1);
            break;
        case 1:
            if (QTextEdit* text = activeRichTextBox(main)) {
                if (text->property("tag").toString() == QStringLiteral("Urakan laatusuunnitelma"))
                    ShowTextEditor(main, 8);
                else
                    ShowIndex(main, 1);
            }
            break;
        case 6:
        case 7:
        case 8:
        case 9:
            documents::CutCopyPasteDelSelection(focus, index - 6);
            break;
        case 11:
            ShowIndex(main, 0);
            break;
        case 13:
            documents::SelectAllText(focus);
            break;
        default:
            break;
    }
}

void exportFromBaseList(MDIForm1& main, lists::BaseListWindow* window, int mode) {
    // The target is the detailed data window that is the active document window; the unit
    // prices are not the contractor's to add.
    auto* f2 = qobject_cast<documents::Form2*>(main.activeWindow());
    if (!f2 || !window) return;
    const bool prices = window->slot() == 6;
    if (prices && main.appState().ProgramMode == 2) return;
    lists::ListView* target = f2->ListView1[prices ? 0 : 1];
    if (!target->list() || target->list()->readOnly()) {
        lists::ShowDeny(main.appState().ProgramMode);
        return;
    }
    if (lists::ListEditor* editor = lists::ListEditor::of(target)) editor->closeEditor();
    // The rows and the formatting that follows them are one step.
    lists::ListStep recorded(*target->list(), lists::step::Transfer);
    const lists::TransferResult result = lists::ExportToList(*target->list(), *window->list(), mode,
                                                             main.transferOptions(target, window->view()));
    main.transferDone(target, result);
}

// ---------------------------------------------------------------------------------------------
// Answers to the list editors

lists::EditContext MDIForm1::editContext(lists::ListView* view) {
    lists::EditContext ctx;
    ctx.programMode = m_state.ProgramMode;
    ctx.listIndex = -1;
    ctx.restricted = false;
    if (auto* f2 = ancestor<documents::Form2>(view)) {
        ctx.listIndex = view->index();
        ctx.restricted = f2->restrictEdit(view->index());
    }
    return ctx;
}

void MDIForm1::listEdited(lists::ListView* view) {
    // The change is a step of the list's history (or has cleared it): the captions follow the
    // history, and the marker goes now as before.
    if (auto* w = ancestor<documents::ProjectWindow>(view)) {
        if (!m_state.Loading) touchProjectOf(w);
        return;
    }
    if (auto* base = ancestor<lists::BaseListWindow>(view)) FormTouch(base);
}

lists::TransferOptions MDIForm1::transferOptions(lists::ListView* target, lists::ListView* source) {
    lists::TransferOptions options;
    options.programMode = m_state.ProgramMode;
    // The working conditions chosen in the unit price window decide which price travels.
    if (Form6 && (source == Form6->view() || target == Form6->view()))
        options.unitPriceColumn = Form6->priceColumn();
    return options;
}

void MDIForm1::transferDone(lists::ListView* target, const lists::TransferResult& result) {
    if (!result.changed || !target->list()) return;
    if (auto* w = ancestor<documents::ProjectWindow>(target)) {
        touchProjectOf(w);
        if (m_state.settings.AutoFormat) {
            lists::ListModel& list = *target->list();
            lists::FormatListView(list, 1, 0, m_state.settings.BlankLines);
        }
        return;
    }
    if (auto* base = ancestor<lists::BaseListWindow>(target)) FormTouch(base);
}

void MDIForm1::showContextMenu(int context, const QPoint& globalPos) {
    ShowMenu2(context, globalPos);
}

void MDIForm1::ShowMenu2(int context, const QPoint& globalPos) {
    // Row operations and formatting belong to lists; text operations to both.
    const bool list = context == 0;
    // The menu bar's items come back as they were when the pop-up closes, each one it changed.
    std::vector<bool> before;
    for (QAction* a : SubMenu2)
        before.push_back(a->isEnabled());
    for (int i : {2, 3, 4, 15})
        SubMenu2[i]->setEnabled(list);
    for (int i : {6, 7, 8, 9, 13})
        SubMenu2[i]->setEnabled(true);
    MainMenu[2]->popup(globalPos);
    connect(
        MainMenu[2], &QMenu::aboutToHide, this,
        [this, before] {
            for (std::size_t i = 0; i < before.size() && i < SubMenu2.size(); ++i)
                SubMenu2[i]->setEnabled(before[i]);
            if (documents::ProjectWindow* w = activeWindow()) EnableControlsPage(*this, w, false);
        },
        Qt::SingleShotConnection);
}

} // namespace shell
