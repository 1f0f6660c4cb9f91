// The edit menu's actions on the active control of the active window.
#include "documents/Controls.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ListView.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace shell {

namespace {

// Cut 0, copy 1, paste 2, delete 3 on a text box, drop-down or rich-text box. A locked
// control allows copying only.
void CutCopyPasteDelSelection(QWidget* focus, int operation) {
    if (auto* combo = qobject_cast<QComboBox*>(focus)) focus = combo->lineEdit();
    if (auto* line = qobject_cast<QLineEdit*>(focus)) {
        const bool locked = line->isReadOnly();
        switch (operation) {
            case 0:
                if (!locked) line->cut();
                break;
            case 1: line->copy(); break;
            case 2:
                if (!locked) line->paste();
                break;
            case 3:
                if (!locked) line->del();
                break;
        }
    } else if (auto* plain = qobject_cast<QPlainTextEdit*>(focus)) {
        const bool locked = plain->isReadOnly();
        switch (operation) {
            case 0:
                if (!locked) plain->cut();
                break;
            case 1: plain->copy(); break;
            case 2:
                if (!locked) plain->paste();
                break;
            case 3:
                if (!locked) plain->textCursor().removeSelectedText();
                break;
        }
    } else if (auto* rich = qobject_cast<QTextEdit*>(focus)) {
        const bool locked = rich->isReadOnly();
        switch (operation) {
            case 0:
                if (!locked) rich->cut();
                break;
            case 1: rich->copy(); break;
            case 2:
                if (!locked) rich->paste();
                break;
            case 3:
                if (!locked) rich->textCursor().removeSelectedText();
                break;
        }
    }
}

void selectAllText(QWidget* focus) {
    if (auto* combo = qobject_cast<QComboBox*>(focus)) focus = combo->lineEdit();
    if (auto* line = qobject_cast<QLineEdit*>(focus))
        line->selectAll();
    else if (auto* plain = qobject_cast<QPlainTextEdit*>(focus))
        plain->selectAll();
    else if (auto* rich = qobject_cast<QTextEdit*>(focus))
        rich->selectAll();
}

lists::ListView* focusedList(QWidget* focus) {
    for (QWidget* w = focus; w; w = w->parentWidget())
        if (auto* v = qobject_cast<lists::ListView*>(w)) return v;
    return nullptr;
}

} // namespace

void editMenuAction(MDIForm1& main, int index) {
    QWidget* focus = QApplication::focusWidget();
    if (lists::ListView* view = focusedList(focus)) {
        lists::ListModel* list = view->list();
        if (!list) return;
        switch (index) {
            case 13: list->selectAll(); break;
            default: break;
        }
        return;
    }
    switch (index) {
        case 6:
        case 7:
        case 8:
        case 9: CutCopyPasteDelSelection(focus, index - 6); break;
        case 13: selectAllText(focus); break;
        default: break;
    }
}

} // namespace shell

namespace shell {
void exportFromBaseList(MDIForm1&, lists::BaseListWindow*, int) {}
} // namespace shell
