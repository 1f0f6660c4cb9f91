#include "lists/ListJournal.h"

#include "lists/Columns.h"
#include "lists/ListEditing.h"
#include "lists/ListProcedures.h"

#include <algorithm>

namespace lists {

namespace {

// A row-number text exactly as formatRowNumber writes it, and its value.
bool rowNumberText(QStringView text, long long& value) {
    const qsizetype n = text.size();
    if (n < 5 || n > 12 || (n > 5 && text[0] == QLatin1Char('0'))) return false;
    long long v = 0;
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) return false;
        v = v * 10 + (c.unicode() - '0');
    }
    value = v;
    return true;
}

template <class... Ts> struct Overloaded : Ts... { using Ts::operator()...; };
template <class... Ts> Overloaded(Ts...) -> Overloaded<Ts...>;

bool changesPositions(const ListChange& c) {
    return !std::holds_alternative<change::Cell>(c) && !std::holds_alternative<change::Column>(c);
}

} // namespace

void change::Column::add(int row, QStringView before, QStringView after) {
    long long b = 0;
    long long a = 0;
    if (rowNumberText(before, b) && rowNumberText(after, a)) {
        const long long delta = a - b;
        if (!shifts.empty() && shifts.back().first + shifts.back().count == row && shifts.back().by == delta)
            ++shifts.back().count;
        else
            shifts.push_back({row, 1, delta});
        return;
    }
    texts.push_back({row, before.toString(), after.toString()});
}

void ListJournal::checkRows(const ListModel& list, int first, int last) {
    if (m_protected || list.kind() != kind::Requirements) return;
    first = std::max(first, 1);
    last = std::min(last, list.rows());
    for (int r = first; r <= last && !m_protected; ++r)
        m_protected = ProtectedRequirement(list, r);
}

void ListJournal::checkCell(const ListModel& list, int row, int column, const QString& before) {
    if (m_protected || list.kind() != kind::Requirements) return;
    if (column == requirementCol::kType &&
        (before.startsWith(QLatin1Char('1')) || before.startsWith(QLatin1Char('2')))) {
        m_protected = true;
        return;
    }
    checkRows(list, row, row);
}

void ListJournal::apply(ListModel& list, bool forward) const {
    auto one = Overloaded{
        [&](const change::Cell& c) { list.setCell(c.row, c.column, forward ? c.after : c.before); },
        [&](const change::Column& c) {
            std::size_t t = 0;
            std::size_t s = 0;
            list.updateColumn(c.column, [&](int r, QStringView cell) -> std::optional<QString> {
                while (t < c.texts.size() && c.texts[t].row < r)
                    ++t;
                if (t < c.texts.size() && c.texts[t].row == r)
                    return forward ? c.texts[t].after : c.texts[t].before;
                while (s < c.shifts.size() && c.shifts[s].first + c.shifts[s].count <= r)
                    ++s;
                if (s < c.shifts.size() && c.shifts[s].first <= r)
                    return formatRowNumber(rowNumberValue(cell) +
                                           (forward ? c.shifts[s].by : -c.shifts[s].by));
                return std::nullopt;
            });
        },
        [&](const change::Splice& c) {
            if (forward)
                list.spliceRows(c.removedAt, c.insertedAt, c.inserted);
            else
                list.spliceRows(c.insertedAt, c.removedAt, c.removed);
        },
        [&](const change::Reorder& c) {
            if (forward) {
                list.reorder(c.order);
                return;
            }
            std::vector<int> back(c.order.size());
            for (std::size_t i = 0; i < c.order.size(); ++i)
                back[c.order[i] - 1] = static_cast<int>(i) + 1;
            list.reorder(back);
        },
        [&](const change::Replace& c) {
            if (c.columnsChanged)
                list.reset(forward ? c.columnsAfter : c.columnsBefore, forward ? c.rowsAfter : c.rowsBefore);
            else
                list.replaceRows(forward ? c.rowsAfter : c.rowsBefore);
        },
    };
    if (forward) {
        for (const ListChange& c : m_changes)
            std::visit(one, c);
    } else {
        for (auto it = m_changes.rbegin(); it != m_changes.rend(); ++it)
            std::visit(one, *it);
    }
}

ListJournal::Held ListJournal::held() const {
    Held h;
    for (const ListChange& c : m_changes)
        std::visit(Overloaded{
                       [&](const change::Cell&) { ++h.cells; },
                       [&](const change::Column& x) {
                           h.cells += x.texts.size();
                           h.runs += x.shifts.size();
                       },
                       [&](const change::Splice& x) { h.rows += x.removed.size() + x.inserted.size(); },
                       [&](const change::Reorder& x) { h.reordered += x.order.size(); },
                       [&](const change::Replace& x) { h.rows += x.rowsBefore.size() + x.rowsAfter.size(); },
                   },
                   c);
    return h;
}

std::vector<int> ListJournal::changedRows(const ListModel& list, bool forward) const {
    // The changes that left the rows where they are, up to and with the first one that moved
    // them, are in the coordinates of the list as it now is: undoing, from the first change on;
    // redoing, from the last change back.
    std::vector<int> rows;
    // Every row moved: the rows that changed are all of them, so the row the user was on is
    // the one to show.
    for (const ListChange& c : m_changes) {
        if (std::holds_alternative<change::Reorder>(c) || std::holds_alternative<change::Replace>(c)) {
            const int current = forward ? m_currentAfter : m_currentBefore;
            if (current >= 1 && current <= list.rows()) rows.push_back(current);
            return rows;
        }
    }
    auto collect = [&](const ListChange& c) {
        std::visit(Overloaded{
                       [&](const change::Cell& x) { rows.push_back(x.row); },
                       [&](const change::Column& x) {
                           for (const change::Column::Text& t : x.texts)
                               rows.push_back(t.row);
                       },
                       [&](const change::Splice& x) {
                           const std::vector<int>& came = forward ? x.insertedAt : x.removedAt;
                           const std::vector<int>& went = forward ? x.removedAt : x.insertedAt;
                           if (!came.empty())
                               rows.insert(rows.end(), came.begin(), came.end());
                           else if (!went.empty())
                               rows.push_back(std::min(went.front(), list.rows()));
                       },
                       [&](const change::Reorder&) {},
                       [&](const change::Replace&) {},
                   },
                   c);
    };
    if (forward) {
        for (auto it = m_changes.rbegin(); it != m_changes.rend(); ++it) {
            collect(*it);
            if (changesPositions(*it)) break;
        }
    } else {
        for (const ListChange& c : m_changes) {
            collect(c);
            if (changesPositions(c)) break;
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    rows.erase(std::remove_if(rows.begin(), rows.end(), [&](int r) { return r < 1 || r > list.rows(); }),
               rows.end());
    return rows;
}

} // namespace lists
