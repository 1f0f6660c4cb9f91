#include "lists/EditHistory.h"

#include "lists/ListEditing.h"

namespace lists {

UndoStep::UndoStep(const QString& text)
    : QUndoCommand(text) {}

void UndoStep::undo() {
    apply(false);
}

void UndoStep::redo() {
    // The change was made before the step was pushed.
    if (m_fresh) {
        m_fresh = false;
        return;
    }
    apply(true);
}

// Steps pushed while a group is open, undone and redone as one.
class EditHistory::Group : public UndoStep {
public:
    explicit Group(const QString& text)
        : UndoStep(text) {}

    void add(UndoStep* step) {
        // The stack would have called it; a member of a group is done once pushed as well.
        step->redo();
        m_steps.emplace_back(step);
    }
    bool empty() const { return m_steps.empty(); }

    void apply(bool forward) override {
        if (forward) {
            for (auto& s : m_steps)
                s->apply(true);
        } else {
            for (auto it = m_steps.rbegin(); it != m_steps.rend(); ++it)
                (*it)->apply(false);
        }
    }
    bool allowed(int programMode) const override {
        for (const auto& s : m_steps)
            if (!s->allowed(programMode)) return false;
        return true;
    }
    QObject* target() const override {
        for (const auto& s : m_steps)
            if (QObject* t = s->target()) return t;
        return nullptr;
    }

private:
    std::vector<std::unique_ptr<UndoStep>> m_steps;
};

EditHistory::EditHistory(QObject* parent)
    : QObject(parent) {
    m_stack.setUndoLimit(m_limit);
    connect(&m_stack, &QUndoStack::cleanChanged, this, [this] { updateDirty(); });
    connect(&m_stack, &QUndoStack::indexChanged, this, [this] {
        updateDirty();
        emit changed();
    });
    connect(&m_stack, &QUndoStack::undoTextChanged, this, &EditHistory::changed);
    connect(&m_stack, &QUndoStack::redoTextChanged, this, &EditHistory::changed);
}

EditHistory::~EditHistory() {
    // The stack clears itself as it goes; nobody is to hear of that.
    disconnect(&m_stack, nullptr, this, nullptr);
}

void EditHistory::push(UndoStep* step) {
    if (!step) return;
    if (m_applying || m_quiet > 0) {
        delete step;
        return;
    }
    step->setRecordedMode(m_programMode);
    if (m_group) {
        m_group->add(step);
        return;
    }
    m_stack.push(step);
    updateDirty();
}

void EditHistory::beginGroup(const QString& text) {
    if (m_groupDepth++ == 0) m_group = std::make_unique<Group>(text);
}

void EditHistory::endGroup() {
    if (m_groupDepth == 0 || --m_groupDepth > 0) return;
    std::unique_ptr<Group> group = std::move(m_group);
    if (!group->empty()) push(group.release());
}

bool EditHistory::undo(int programMode) {
    return step(false, programMode);
}

bool EditHistory::redo(int programMode) {
    return step(true, programMode);
}

bool EditHistory::step(bool forward, int programMode) {
    if (m_applying || m_group) return false;
    const int i = forward ? m_stack.index() : m_stack.index() - 1;
    if (i < 0 || i >= m_stack.count()) return false;
    const auto* s = dynamic_cast<const UndoStep*>(m_stack.command(i));
    if (s && !s->allowed(programMode)) {
        ShowDeny(programMode);
        return false;
    }
    m_applying = true;
    if (forward)
        m_stack.redo();
    else
        m_stack.undo();
    m_applying = false;
    updateDirty();
    emit applied(s ? s->target() : nullptr);
    return true;
}

void EditHistory::markSaved() {
    m_stack.setClean();
    m_unrecorded = false;
    updateDirty();
}

void EditHistory::markUnrecorded() {
    if (m_quiet > 0 || m_applying) return;
    m_unrecorded = true;
    updateDirty();
}

void EditHistory::invalidate() {
    if (m_quiet > 0 || m_applying) return;
    m_unrecorded = true;
    m_stack.clear();
    if (m_stack.undoLimit() != m_limit) m_stack.setUndoLimit(m_limit);
    updateDirty();
    emit changed();
}

void EditHistory::restart(bool dirty) {
    m_group.reset();
    m_groupDepth = 0;
    m_stack.clear();
    if (m_stack.undoLimit() != m_limit) m_stack.setUndoLimit(m_limit);
    m_unrecorded = dirty;
    closeMerging();
    updateDirty();
    emit changed();
}

void EditHistory::setLimit(int limit) {
    m_limit = std::max(limit, 1);
    if (m_stack.count() == 0) m_stack.setUndoLimit(m_limit);
}

void EditHistory::updateDirty() {
    const bool d = dirty();
    if (d == m_dirty) return;
    m_dirty = d;
    emit dirtyChanged(d);
}

EditHistory::Quiet::Quiet(EditHistory* history)
    : m_history(history) {
    if (m_history) ++m_history->m_quiet;
}

EditHistory::Quiet::~Quiet() {
    if (m_history) --m_history->m_quiet;
}

} // namespace lists

// The meta-object code of the history goes with it, not into the model library's common moc
// file, which every program with a list model links: it reaches the undo stack of QtGui.
#include "moc_EditHistory.cpp"
