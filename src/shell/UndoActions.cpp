// Undo and redo in the main window: the Edit menu's first two items and their toolbar
// buttons, the project histories of the windows, and the keys Ctrl+Z, Ctrl+Y and Ctrl+Shift+Z,
// which a text box with something of its own to undo keeps for itself.
#include "documents/Form1.h"
#include "lists/EditHistory.h"
#include "lists/ListModel.h"
#include "lists/ui/BaseListWindow.h"
#include "lists/ui/ListEditor.h"
#include "lists/ui/ListView.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>

namespace shell {

namespace {

const QString kUndo = QStringLiteral("&Kumoa");
const QString kRedo = QStringLiteral("&Tee uudelleen");

// The text box of a control: an editable drop-down's line edit, or the control itself.
QWidget* textBoxOf(QWidget* w) {
    if (auto* combo = qobject_cast<QComboBox*>(w))
        if (combo->lineEdit()) return combo->lineEdit();
    return w;
}

// A one-line or plain multi-line text box that can undo (or redo) within itself.
bool textBoxCan(QWidget* w, bool redo) {
    w = textBoxOf(w);
    if (auto* line = qobject_cast<QLineEdit*>(w))
        return !line->isReadOnly() && (redo ? line->isRedoAvailable() : line->isUndoAvailable());
    if (auto* plain = qobject_cast<QPlainTextEdit*>(w))
        return !plain->isReadOnly() &&
               (redo ? plain->document()->isRedoAvailable() : plain->document()->isUndoAvailable());
    return false;
}

void textBoxStep(QWidget* w, bool redo) {
    w = textBoxOf(w);
    if (auto* line = qobject_cast<QLineEdit*>(w)) redo ? line->redo() : line->undo();
    if (auto* plain = qobject_cast<QPlainTextEdit*>(w)) redo ? plain->redo() : plain->undo();
}

// The rich-text box that has the focus in the main window; it keeps its own undo.
QTextEdit* focusedRichText(MDIForm1& main) {
    QWidget* focus = QApplication::focusWidget();
    if (!focus || focus->window() != &main) return nullptr;
    return ancestor<QTextEdit>(focus);
}

QKeySequence keyOf(const QKeyEvent* e) {
    return QKeySequence(e->keyCombination());
}

// Gives the undo keys to the program's items when the text box that has them has nothing of
// its own to undo; rich-text boxes keep theirs. It also keeps the items up to date while a
// text box with the focus gains or loses something to undo.
class UndoKeys : public QObject {
public:
    explicit UndoKeys(MDIForm1& main)
        : QObject(&main)
        , m_main(main) {}

    void watch(QWidget* focus) {
        for (const QMetaObject::Connection& c : m_watching)
            disconnect(c);
        m_watching.clear();
        auto update = [this] { updateUndoActions(m_main); };
        if (auto* rich = ancestor<QTextEdit>(focus)) {
            m_watching.push_back(connect(rich, &QTextEdit::undoAvailable, this, update));
            m_watching.push_back(connect(rich, &QTextEdit::redoAvailable, this, update));
        } else if (auto* line = qobject_cast<QLineEdit*>(textBoxOf(focus))) {
            m_watching.push_back(connect(line, &QLineEdit::textChanged, this, update));
        } else if (auto* plain = qobject_cast<QPlainTextEdit*>(focus)) {
            m_watching.push_back(connect(plain, &QPlainTextEdit::undoAvailable, this, update));
            m_watching.push_back(connect(plain, &QPlainTextEdit::redoAvailable, this, update));
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::ShortcutOverride) return false;
        auto* key = static_cast<QKeyEvent*>(event);
        const bool undo = key->matches(QKeySequence::Undo);
        const bool redo =
            !undo && (key->matches(QKeySequence::Redo) || keyOf(key) == QKeySequence(Qt::CTRL | Qt::Key_Y) ||
                      keyOf(key) == QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
        if (!undo && !redo) return false;
        auto* w = qobject_cast<QWidget*>(watched);
        QWidget* box = w ? textBoxOf(w) : nullptr;
        if (!box || (!qobject_cast<QLineEdit*>(box) && !qobject_cast<QPlainTextEdit*>(box))) return false;
        QWidget* top = w->window();
        if (!qobject_cast<MDIForm1*>(top) && !qobject_cast<lists::BaseListWindow*>(top)) return false;
        if (textBoxCan(w, redo)) return false;
        event->ignore();
        return true;
    }

private:
    MDIForm1& m_main;
    std::vector<QMetaObject::Connection> m_watching;
};

void revealList(MDIForm1& main, QObject* target) {
    if (!target) return;
    for (documents::ProjectWindow* w : main.projectWindows()) {
        for (lists::ListView* view : w->ListView1) {
            if (!view || view->list() != target) continue;
            main.activateWindow(w);
            view->setFocus(Qt::OtherFocusReason);
            // The status bar names the row the step left current.
            main.UpdateCaptionText(view);
            return;
        }
    }
}

} // namespace

lists::EditHistory* activeHistory(MDIForm1& main) {
    documents::ProjectWindow* w = main.activeWindow();
    return w ? w->history() : nullptr;
}

void createUndoActions(MDIForm1& main) {
    QMenu* edit = main.MainMenu[2];
    main.undoAction = new QAction(kUndo, &main);
    main.undoAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    main.redoAction = new QAction(kRedo, &main);
    main.redoAction->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    QAction* first = edit->actions().value(0);
    edit->insertAction(first, main.undoAction);
    edit->insertAction(first, main.redoAction);
    edit->insertSeparator(first);
    QObject::connect(main.undoAction, &QAction::triggered, &main, [&main] { undoOrRedo(main, false); });
    QObject::connect(main.redoAction, &QAction::triggered, &main, [&main] { undoOrRedo(main, true); });
    QObject::connect(edit, &QMenu::aboutToShow, &main, [&main] { updateUndoActions(main); });
    auto* keys = new UndoKeys(main);
    qApp->installEventFilter(keys);
    // The main window's own context: it ends these before its windows go.
    QObject::connect(qApp, &QApplication::focusChanged, &main, [&main, keys](QWidget* old, QWidget* now) {
        // Typing into a field is one step until the focus leaves it.
        if (auto* w = ancestor<documents::ProjectWindow>(old))
            if (lists::EditHistory* h = w->history()) h->closeMerging();
        keys->watch(now);
        updateUndoActions(main);
    });
}

void updateUndoActions(MDIForm1& main) {
    if (!main.undoAction) return;
    QAction* undoButton = main.toolbarButtons[QStringLiteral("Undo")];
    QAction* redoButton = main.toolbarButtons[QStringLiteral("Redo")];
    bool canUndo = false;
    bool canRedo = false;
    QString undoText = kUndo;
    QString redoText = kRedo;
    QWidget* focus = QApplication::focusWidget();
    const bool ours = focus && focus->window() == &main;
    if (QTextEdit* rich = focusedRichText(main)) {
        canUndo = !rich->isReadOnly() && rich->document()->isUndoAvailable();
        canRedo = !rich->isReadOnly() && rich->document()->isRedoAvailable();
    } else if (lists::EditHistory* h = activeHistory(main)) {
        canUndo = (ours && textBoxCan(focus, false)) || h->canUndo();
        canRedo = (ours && textBoxCan(focus, true)) || h->canRedo();
        if (!(ours && textBoxCan(focus, false)) && h->canUndo())
            undoText += QStringLiteral(": ") + h->undoText();
        if (!(ours && textBoxCan(focus, true)) && h->canRedo())
            redoText += QStringLiteral(": ") + h->redoText();
    }
    main.undoAction->setText(undoText);
    main.redoAction->setText(redoText);
    main.undoAction->setEnabled(canUndo);
    main.redoAction->setEnabled(canRedo);
    if (undoButton) {
        undoButton->setEnabled(canUndo);
        undoButton->setToolTip(QString(undoText).remove(QLatin1Char('&')));
    }
    if (redoButton) {
        redoButton->setEnabled(canRedo);
        redoButton->setToolTip(QString(redoText).remove(QLatin1Char('&')));
    }
}

void undoOrRedo(MDIForm1& main, bool redo) {
    if (QTextEdit* rich = focusedRichText(main)) {
        if (!rich->isReadOnly()) redo ? rich->redo() : rich->undo();
        updateUndoActions(main);
        return;
    }
    QWidget* focus = QApplication::focusWidget();
    const bool ours = focus && focus->window() == &main;
    // An open editor undoes within itself first.
    if (ours && textBoxCan(focus, redo)) {
        textBoxStep(focus, redo);
        updateUndoActions(main);
        return;
    }
    lists::EditHistory* history = activeHistory(main);
    if (!history) return;
    // Then the project's steps: an open cell edit goes without storing, as Esc would.
    if (lists::ListView* view = ours ? ancestor<lists::ListView>(focus) : nullptr)
        if (lists::ListEditor* editor = lists::ListEditor::of(view); editor && editor->isEditing())
            editor->EditKeyCode(Qt::Key_Escape, Qt::NoModifier);
    const int mode = main.appState().ProgramMode;
    if (redo)
        history->redo(mode);
    else
        history->undo(mode);
    updateUndoActions(main);
}

void attachProjectHistory(MDIForm1& main, const ProjectWindows& windows) {
    auto history = std::make_shared<lists::EditHistory>();
    history->setLimit(main.appState().settings.UndoLimit);
    history->setProgramMode(main.appState().ProgramMode);
    for (documents::ProjectWindow* w : windows.all())
        w->setHistory(history);
    // The captions follow the history: changed with every step away from the saved state,
    // " Ei muutettu" again when it is reached.
    QPointer<documents::ProjectWindow> anchor = windows.f1;
    auto captions = [&main, anchor](bool unchanged) {
        if (!anchor || main.appState().Loading || CaptionIsUnchanged(anchor->caption()) == unchanged) return;
        const QString project = ParseFileName(anchor->caption()).project();
        main.ChangeFormCaptions(project, project, unchanged);
    };
    lists::EditHistory* h = history.get();
    QObject::connect(h, &lists::EditHistory::dirtyChanged, &main,
                     [captions](bool dirty) { captions(!dirty); });
    QObject::connect(h, &lists::EditHistory::changed, &main, [&main, h, captions] {
        if (h->dirty()) captions(false);
        updateUndoActions(main);
    });
    QObject::connect(history.get(), &lists::EditHistory::applied, &main,
                     [&main](QObject* target) { revealList(main, target); });
}

void followProgramMode(MDIForm1& main) {
    for (documents::ProjectWindow* w : main.projectWindows())
        if (lists::EditHistory* h = w->history()) h->setProgramMode(main.appState().ProgramMode);
    updateUndoActions(main);
}

void setUndoLimit(MDIForm1& main, int limit) {
    main.appState().settings.UndoLimit = limit;
    for (documents::ProjectWindow* w : main.projectWindows())
        if (lists::EditHistory* h = w->history()) h->setLimit(limit);
    for (lists::BaseListWindow* b : {main.Form6, main.Form7})
        if (b) b->history().setLimit(limit);
}

} // namespace shell
