#include "shell/Modes.h"

#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTextEdit>

namespace shell {

namespace {

template <typename T> T* at(const std::vector<T*>& v, int i) {
    return i >= 0 && i < static_cast<int>(v.size()) ? v[i] : nullptr;
}

void setEditable(QWidget* control, bool editable) {
    if (editable)
        EnableControl(control);
    else
        DisableControl(control);
}

void setListEditable(lists::ListView* view, bool editable) {
    if (!view) return;
    if (editable)
        EnableListView(view);
    else
        DisableListView(view);
}

bool isLocked(QWidget* control) {
    if (auto* t = qobject_cast<documents::TextBox*>(control)) return t->locked();
    if (auto* c = qobject_cast<documents::ComboBox*>(control)) return c->locked();
    if (auto* r = qobject_cast<QTextEdit*>(control)) return r->isReadOnly();
    return false;
}

void richTextLook(QTextEdit* r, bool readOnly) {
    r->setReadOnly(readOnly);
    QPalette p = r->palette();
    p.setColor(QPalette::Base,
               readOnly ? QApplication::palette().color(QPalette::Button) : QColor(Qt::white));
    r->setPalette(p);
    r->setFocusPolicy(readOnly ? Qt::ClickFocus : Qt::StrongFocus);
    QTextCursor c = r->textCursor();
    c.clearSelection();
    r->setTextCursor(c);
}

// The menu and toolbar state that goes with the kind of the active window.
void applyMenuState(MDIForm1& main, bool find, bool fromList, bool rows, bool editor) {
    main.toolbarButtons[QStringLiteral("Find")]->setEnabled(find);
    main.SubMenu2[1]->setEnabled(fromList);
    main.SubMenu2[11]->setEnabled(find);
    for (int i : {2, 3, 4})
        main.SubMenu2[i]->setEnabled(rows);
    main.Submenu3[9]->setEnabled(editor);
}

bool isActive(MDIForm1& main, documents::ProjectWindow* w) {
    return main.activeWindow() == w;
}

} // namespace

void DisableControl(QWidget* control) {
    if (!control) return;
    // Undo may not change what the mode has made read-only.
    control->setProperty("lockedByMode", true);
    if (isLocked(control)) return;
    if (auto* t = qobject_cast<documents::TextBox*>(control))
        t->setReadOnlyLook(true);
    else if (auto* c = qobject_cast<documents::ComboBox*>(control))
        c->setReadOnlyLook(true);
    else if (auto* r = qobject_cast<QTextEdit*>(control))
        richTextLook(r, true);
}

void EnableControl(QWidget* control) {
    if (!control) return;
    control->setProperty("lockedByMode", false);
    if (!isLocked(control) && control->property("editableLook").toBool()) return;
    control->setProperty("editableLook", true);
    if (auto* t = qobject_cast<documents::TextBox*>(control))
        t->setReadOnlyLook(false);
    else if (auto* c = qobject_cast<documents::ComboBox*>(control))
        c->setReadOnlyLook(false);
    else if (auto* r = qobject_cast<QTextEdit*>(control))
        richTextLook(r, false);
}

void DisableListView(lists::ListView* view) {
    if (!view || !view->list()) return;
    view->setReadOnlyLook(true);
    view->list()->setReadOnly(true);
}

void EnableListView(lists::ListView* view) {
    if (!view || !view->list()) return;
    view->setReadOnlyLook(false);
    view->list()->setReadOnly(false);
}

void EnableControlsPage(MDIForm1& main, documents::ProjectWindow* window, bool fields) {
    if (auto* f = qobject_cast<documents::Form1*>(window))
        EnableControlsPage1(main, f, fields);
    else if (auto* f = qobject_cast<documents::Form2*>(window))
        EnableControlsPage2(main, f, fields);
    else if (auto* f = qobject_cast<documents::Form3*>(window))
        EnableControlsPage3(main, f, fields);
    else if (auto* f = qobject_cast<documents::Form4*>(window))
        EnableControlsPage4(main, f, fields);
}

void EnableControlsPage1(MDIForm1& main, documents::Form1* w, bool fields) {
    if (isActive(main, w)) applyMenuState(main, false, false, true, false);
    if (!fields) return;
    const int mode = main.appState().ProgramMode;
    const bool designerFields = mode != 2;
    const bool contractorFields = mode != 1;
    for (int i : {3, 4, 5, 6, 7, 8, 10, 11, 12, 13})
        setEditable(at(w->Combo1, i), designerFields);
    for (int i : {14, 15, 16, 17})
        setEditable(at(w->Combo1, i), contractorFields);
    setEditable(at(w->Text1, 11), contractorFields);
    setListEditable(at(w->ListView1, 1), designerFields);
    setListEditable(at(w->ListView1, 2), contractorFields);
}

void EnableControlsPage2(MDIForm1& main, documents::Form2* w, bool fields) {
    if (isActive(main, w)) applyMenuState(main, true, true, true, true);
    if (!fields) return;
    const int mode = main.appState().ProgramMode;
    setListEditable(at(w->ListView1, 0), mode != 2);
    if (QTextEdit* shown = at(w->RichTextBox1, 0)) {
        const bool plan = shown->property("tag").toString() == QStringLiteral("Urakan laatusuunnitelma");
        setEditable(shown, plan ? mode != 1 : mode != 2);
    }
}

void EnableControlsPage3(MDIForm1& main, documents::Form3* w, bool) {
    if (isActive(main, w)) applyMenuState(main, false, false, false, false);
}

void EnableControlsPage4(MDIForm1& main, documents::Form4* w, bool) {
    if (isActive(main, w)) applyMenuState(main, false, false, true, false);
}

void EnableControlsForm6(MDIForm1& main) {
    enableUnitPriceAdding(main, main.appState().ProgramMode != 2);
}

} // namespace shell
