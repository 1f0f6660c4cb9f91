#include "lists/ListStep.h"

#include "lists/EditHistory.h"

#include <QPointer>

namespace lists {

EditHistory* ListModel::history() const {
    return m_history.data();
}

void ListModel::setHistory(EditHistory* history) {
    if (m_history) disconnect(this, &ListModel::changedOutsideStep, m_history, &EditHistory::invalidate);
    m_history = history;
    if (history) connect(this, &ListModel::changedOutsideStep, history, &EditHistory::invalidate);
}

// A step of one list.
class ListEdit : public UndoStep {
public:
    ListEdit(ListModel& list, const QString& text, std::unique_ptr<ListJournal> journal)
        : UndoStep(text)
        , m_list(&list)
        , m_journal(std::move(journal)) {}

    void apply(bool forward) override {
        if (!m_list) return;
        m_list->m_applying = true;
        m_journal->apply(*m_list, forward);
        m_list->m_applying = false;
        // What came back is shown selected, the first of it in view.
        const std::vector<int> rows = m_journal->changedRows(*m_list, forward);
        if (rows.empty()) return;
        m_list->selectRows(rows);
        m_list->ensureVisible(rows.front());
    }

    bool allowed(int programMode) const override {
        if (!m_list) return true;
        if (m_list->readOnly()) return false;
        // What the contractor did may be taken back by the contractor (an inspection mark on
        // any requirement); what others did to a protected requirement may not.
        return !(programMode == 2 && recordedMode() != 2 && m_journal->touchesProtected());
    }

    QObject* target() const override { return m_list.data(); }
    const ListJournal& journal() const { return *m_journal; }

private:
    QPointer<ListModel> m_list;
    std::unique_ptr<ListJournal> m_journal;
};

const ListJournal* journalOf(const QUndoCommand* step) {
    const auto* edit = dynamic_cast<const ListEdit*>(step);
    return edit ? &edit->journal() : nullptr;
}

ListStep::ListStep(ListModel& list, const QString& text)
    : m_list(list) {
    if (list.m_stepDepth++ > 0) return;
    list.m_stepText = text;
    if (list.m_history) {
        list.m_journal = std::make_unique<ListJournal>();
        list.m_journal->noteCurrentRow(list.currentRow(), false);
    }
}

ListStep::~ListStep() {
    if (--m_list.m_stepDepth > 0) return;
    std::unique_ptr<ListJournal> journal = std::move(m_list.m_journal);
    if (journal) journal->noteCurrentRow(m_list.currentRow(), true);
    if (journal && !journal->empty() && m_list.m_history)
        m_list.m_history->push(new ListEdit(m_list, m_list.m_stepText, std::move(journal)));
}

} // namespace lists
