#pragma once
// The undo history of one document: a project (all four of its windows share one) or a base
// list window. It is a QUndoStack of steps that were done before they were pushed, and it knows
// whether the document differs from its saved state: a step away from the stack's clean index,
// or a change the history does not hold (a rich-text edit, a list changed outside a step).
//
// Steps are made by the model code that changed the document (ListStep for a list, the record
// steps for window fields and pictures); the windows only push them.
#include <QObject>
#include <QString>
#include <QUndoCommand>
#include <QUndoStack>

#include <memory>
#include <vector>

namespace lists {

// A step of the history. It is pushed after its change was made, so the first redo that the
// stack calls on push does nothing; every later undo and redo applies the change.
class UndoStep : public QUndoCommand {
public:
    explicit UndoStep(const QString& text);

    void undo() final;
    void redo() final;
    // Applies the change backward (undo) or forward (redo).
    virtual void apply(bool forward) = 0;
    // Whether the step may be applied in this program mode: a change to something the mode has
    // made read-only may not be, either way.
    virtual bool allowed(int programMode) const {
        Q_UNUSED(programMode);
        return true;
    }
    // The list model the step changed, so that the windows can show it; null for others.
    virtual QObject* target() const { return nullptr; }
    // The program mode the step was made in (set when it is pushed).
    int recordedMode() const { return m_recordedMode; }
    void setRecordedMode(int mode) { m_recordedMode = mode; }

private:
    bool m_fresh = true;
    int m_recordedMode = 3;
};

class EditHistory : public QObject {
    Q_OBJECT
public:
    // The number of steps kept by default.
    static constexpr int kDefaultLimit = 200;

    explicit EditHistory(QObject* parent = nullptr);
    ~EditHistory() override;

    const QUndoStack& stack() const { return m_stack; }

    // Adds a step that has been done. While a group is open it joins the group; while a step
    // is being undone or redone, or while the history is quiet, it is dropped.
    void push(UndoStep* step);

    // Several steps made as one (the card's computed fields): nested groups join the outermost;
    // a group without steps leaves nothing behind.
    void beginGroup(const QString& text);
    void endGroup();

    bool canUndo() const { return m_stack.canUndo(); }
    bool canRedo() const { return m_stack.canRedo(); }
    QString undoText() const { return m_stack.undoText(); }
    QString redoText() const { return m_stack.redoText(); }
    // Undoes or redoes one step. A step the program mode does not allow is refused with the
    // mode's own message (ShowDeny) and stays where it is. Returns whether a step was applied.
    bool undo(int programMode);
    bool redo(int programMode);
    // True while a step is being undone or redone: the changes it makes are not new steps.
    bool applying() const { return m_applying; }
    // The program mode new steps are made in.
    int programMode() const { return m_programMode; }
    void setProgramMode(int mode) { m_programMode = mode; }

    // Whether the document differs from its saved state.
    bool dirty() const { return m_unrecorded || !m_stack.isClean(); }
    // The document was saved: this state is the clean one (the history stays).
    void markSaved();
    // A change the history does not hold: the document stays changed until it is saved.
    void markUnrecorded();
    // A list changed outside any step: positions in the steps no longer fit, so they go.
    void invalidate();
    // A document opened, made or recovered: no steps, clean or changed.
    void restart(bool dirty);

    // At most this many steps are kept. The stack takes a new limit only while it is empty:
    // otherwise it applies from the next restart.
    int limit() const { return m_limit; }
    void setLimit(int limit);

    // Typing into a field is one step until the focus leaves it: steps merge only within one
    // generation, and every focus change starts a new one.
    int mergeGeneration() const { return m_generation; }
    void closeMerging() { ++m_generation; }

    // While quiet (a file being read into the document), pushes and changes outside steps are
    // ignored; whoever made it quiet restarts the history afterwards.
    class Quiet {
    public:
        explicit Quiet(EditHistory* history);
        ~Quiet();
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;

    private:
        EditHistory* m_history;
    };

signals:
    // The document became changed or clean again.
    void dirtyChanged(bool dirty);
    // The steps, their texts or what can be undone changed.
    void changed();
    // A step was undone or redone; `target` is the list it changed (null for a field).
    void applied(QObject* target);

private:
    class Group;
    bool step(bool forward, int programMode);
    void updateDirty();

    QUndoStack m_stack;
    std::unique_ptr<Group> m_group;
    int m_groupDepth = 0;
    int m_limit = kDefaultLimit;
    int m_generation = 0;
    int m_quiet = 0;
    int m_programMode = 3;
    bool m_unrecorded = false;
    bool m_applying = false;
    bool m_dirty = false;
};

} // namespace lists
