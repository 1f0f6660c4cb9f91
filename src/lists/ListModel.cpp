#include "lists/ListModel.h"

#include "lists/ListJournal.h"

#include <algorithm>

namespace lists {

// A large project's lists hold well over 100,000 rows; each byte of a row is 0.1 MB of them.
static_assert(sizeof(Row) <= 48, "a row: its cells' block and memo, the tag's pointer and the selection");

const QString& RowTag::none() {
    static const QString empty;
    return empty;
}

namespace {

// The pass of spliceRows over `all`: the rows at `removeAt` go (into `removed` when given), the
// first `inserting` of `rows` come in at `insertAt`. Returns the position the current row
// `current` has afterwards, 0 when it went.
int mergeSplice(std::vector<Row>& all, int current, const std::vector<int>& removeAt,
                const std::vector<int>& insertAt, std::vector<Row>& rows, std::size_t inserting,
                std::vector<Row>* removed) {
    const int n = static_cast<int>(all.size());
    const std::size_t removing = removeAt.size();
    std::vector<Row> out;
    out.reserve(n - removing + inserting);
    std::size_t ri = 0;
    std::size_t ii = 0;
    int newCurrent = 0;
    auto insertDue = [&] {
        while (ii < inserting && insertAt[ii] <= static_cast<int>(out.size()) + 1)
            out.push_back(std::move(rows[ii++]));
    };
    for (int r = 1; r <= n; ++r) {
        if (ri < removing && removeAt[ri] == r) {
            if (removed) removed->push_back(std::move(all[r - 1]));
            ++ri;
            continue;
        }
        insertDue();
        if (r == current) newCurrent = static_cast<int>(out.size()) + 1;
        out.push_back(std::move(all[r - 1]));
    }
    while (ii < inserting)
        out.push_back(std::move(rows[ii++]));
    all = std::move(out);
    return newCurrent;
}

} // namespace

QString formatRowNumber(long long n) {
    // Every row of a list read from a file gets one: the usual five digits without arg().
    if (n >= 0 && n <= 99999) {
        QChar digits[5];
        for (int i = 4; i >= 0; --i, n /= 10)
            digits[i] = QChar(u'0' + static_cast<char16_t>(n % 10));
        return QString(digits, 5);
    }
    return QStringLiteral("%1").arg(n, 5, 10, QLatin1Char('0'));
}

long long rowNumberValue(QStringView text) {
    // Like Val(): leading blanks skipped, digits read up to the first other character.
    long long v = 0;
    qsizetype i = 0;
    while (i < text.size() && text[i] == QLatin1Char(' '))
        ++i;
    for (; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) break;
        v = v * 10 + (c.unicode() - '0');
        if (v > 1000000000000LL) break;
    }
    return v;
}

ListModel::ListModel(QObject* parent)
    : QAbstractTableModel(parent) {}

ListModel::~ListModel() = default;

void ListModel::setKind(const QString& kind) {
    if (m_kind == kind) return;
    m_kind = kind;
    emit kindChanged();
}

void ListModel::setReadOnly(bool readOnly) {
    if (m_readOnly == readOnly) return;
    m_readOnly = readOnly;
    emit kindChanged();
}

QString ListModel::tag() const {
    return m_readOnly ? QStringLiteral("No edit") : m_kind;
}

void ListModel::setColumnWidth(int c, int width) {
    m_columns[c - 1].width = width;
    emit headerDataChanged(Qt::Horizontal, c - 1, c - 1);
}

void ListModel::setCell(int r, int c, QStringView text) {
    if (r < 1 || r > rows() || c < 1 || c > cols()) return;
    RowCells& cells = m_rows[r - 1].cells;
    if (cells.value(c - 1) == text) return;
    if (recording()) {
        m_journal->checkRows(*this, r, r);
        m_journal->add(change::Cell{r, c, cells.value(c - 1).toString(), text.toString()});
    }
    cells.set(c - 1, text);
    if (recording())
        m_journal->checkRows(*this, r, r);
    else if (watched())
        emit changedOutsideStep();
    const QModelIndex i = index(r - 1, c - 1);
    emit dataChanged(i, i, {Qt::DisplayRole});
}

void ListModel::updateColumn(int c,
                             const std::function<std::optional<QString>(int r, QStringView cell)>& fn) {
    if (c < 1 || c > cols() || m_rows.empty()) return;
    if (recording() || watched()) {
        change::Column edit;
        edit.column = c;
        for (int r = 1; r <= rows(); ++r) {
            RowCells& cells = m_rows[r - 1].cells;
            const QStringView before = cells.value(c - 1);
            std::optional<QString> after = fn(r, before);
            if (!after || *after == before) continue;
            edit.add(r, before, *after);
            cells.set(c - 1, *after);
        }
        if (!edit.empty()) {
            if (recording()) {
                for (const change::Column::Text& t : edit.texts)
                    m_journal->checkCell(*this, t.row, c, t.before);
                m_journal->add(std::move(edit));
            } else {
                emit changedOutsideStep();
            }
        }
    } else {
        for (int r = 1; r <= rows(); ++r) {
            RowCells& cells = m_rows[r - 1].cells;
            if (std::optional<QString> after = fn(r, cells.value(c - 1))) cells.set(c - 1, *after);
        }
    }
    emit dataChanged(index(0, c - 1), index(rows() - 1, c - 1), {Qt::DisplayRole});
}

void ListModel::normalise(Row& row) const {
    row.cells.resize(cols());
}

void ListModel::reset(std::vector<Column> columns, std::vector<Row> rows) {
    beginResetModel();
    change::Replace replaced;
    if (recording()) {
        m_journal->checkRows(*this, 1, this->rows());
        replaced.columnsChanged = true;
        replaced.columnsBefore = m_columns;
        replaced.rowsBefore = std::move(m_rows);
    }
    m_columns = std::move(columns);
    m_rows = std::move(rows);
    for (Row& row : m_rows)
        normalise(row);
    m_current = 0;
    if (recording()) {
        replaced.columnsAfter = m_columns;
        replaced.rowsAfter = m_rows;
        m_journal->add(std::move(replaced));
        m_journal->checkRows(*this, 1, this->rows());
    } else if (watched()) {
        emit changedOutsideStep();
    }
    endResetModel();
    emit selectionChangedByModel();
}

void ListModel::clearRows() {
    if (m_rows.empty()) return;
    beginResetModel();
    if (recording()) {
        m_journal->checkRows(*this, 1, rows());
        change::Replace replaced;
        replaced.rowsBefore = std::move(m_rows);
        m_journal->add(std::move(replaced));
    } else if (watched()) {
        emit changedOutsideStep();
    }
    m_rows.clear();
    m_current = 0;
    endResetModel();
    emit selectionChangedByModel();
}

void ListModel::insertEmptyRow(int pos) {
    std::vector<Row> one(1);
    insertRowsAt(pos, std::move(one));
}

void ListModel::insertRowsAt(int pos, std::vector<Row> rows) {
    if (rows.empty()) return;
    pos = std::clamp(pos, 1, this->rows() + 1);
    for (Row& row : rows)
        normalise(row);
    const int count = static_cast<int>(rows.size());
    beginInsertRows(QModelIndex(), pos - 1, pos - 1 + count - 1);
    if (recording()) {
        change::Splice splice;
        splice.insertedAt.resize(count);
        for (int i = 0; i < count; ++i)
            splice.insertedAt[i] = pos + i;
        splice.inserted = rows;
        m_journal->add(std::move(splice));
    } else if (watched()) {
        emit changedOutsideStep();
    }
    m_rows.insert(m_rows.begin() + (pos - 1), std::make_move_iterator(rows.begin()),
                  std::make_move_iterator(rows.end()));
    if (m_current >= pos) m_current += count;
    if (recording()) m_journal->checkRows(*this, pos, pos + count - 1);
    endInsertRows();
}

void ListModel::removeRowsAt(int pos, int count) {
    if (pos < 1 || pos > rows() || count <= 0) return;
    count = std::min(count, rows() - pos + 1);
    beginRemoveRows(QModelIndex(), pos - 1, pos - 1 + count - 1);
    if (recording()) {
        m_journal->checkRows(*this, pos, pos + count - 1);
        change::Splice splice;
        splice.removedAt.resize(count);
        for (int i = 0; i < count; ++i)
            splice.removedAt[i] = pos + i;
        splice.removed.assign(std::make_move_iterator(m_rows.begin() + (pos - 1)),
                              std::make_move_iterator(m_rows.begin() + (pos - 1 + count)));
        m_journal->add(std::move(splice));
    } else if (watched()) {
        emit changedOutsideStep();
    }
    m_rows.erase(m_rows.begin() + (pos - 1), m_rows.begin() + (pos - 1 + count));
    if (m_current >= pos + count)
        m_current -= count;
    else if (m_current >= pos)
        m_current = 0;
    endRemoveRows();
}

void ListModel::replaceRows(std::vector<Row> rows) {
    beginResetModel();
    change::Replace replaced;
    if (recording()) {
        m_journal->checkRows(*this, 1, this->rows());
        replaced.rowsBefore = std::move(m_rows);
    }
    m_rows = std::move(rows);
    for (Row& row : m_rows)
        normalise(row);
    if (recording()) {
        replaced.rowsAfter = m_rows;
        m_journal->add(std::move(replaced));
        m_journal->checkRows(*this, 1, this->rows());
    } else if (watched()) {
        emit changedOutsideStep();
    }
    if (m_current > this->rows()) m_current = 0;
    endResetModel();
    emit selectionChangedByModel();
}

void ListModel::reorder(const std::vector<int>& newOrder) {
    // newOrder[i] is the 1-based old position of the row that goes to position i + 1.
    if (newOrder.size() != m_rows.size()) return;
    // Only a permutation of the rows: the cycles below would not end otherwise.
    std::vector<bool> placed(newOrder.size(), false);
    for (int from : newOrder) {
        if (from < 1 || from > static_cast<int>(placed.size()) || placed[static_cast<std::size_t>(from - 1)])
            return;
        placed[static_cast<std::size_t>(from - 1)] = true;
    }
    placed.assign(placed.size(), false);
    if (recording() || watched()) {
        bool same = true;
        for (std::size_t i = 0; i < newOrder.size() && same; ++i)
            same = newOrder[i] == static_cast<int>(i) + 1;
        if (!same && recording()) m_journal->add(change::Reorder{newOrder});
        if (!same && watched()) emit changedOutsideStep();
    }
    emit layoutAboutToBeChanged();
    // In place, one cycle of the permutation at a time: a copy of a large list's rows would
    // double its memory while it sorts.
    int newCurrent = 0;
    for (std::size_t start = 0; start < newOrder.size(); ++start) {
        if (newOrder[start] == m_current) newCurrent = static_cast<int>(start) + 1;
        if (placed[start]) continue;
        Row first = std::move(m_rows[start]);
        std::size_t to = start;
        for (;;) {
            placed[to] = true;
            const std::size_t from = static_cast<std::size_t>(newOrder[to] - 1);
            if (from == start) break;
            m_rows[to] = std::move(m_rows[from]);
            to = from;
        }
        m_rows[to] = std::move(first);
    }
    m_current = newCurrent;
    const QModelIndexList old = persistentIndexList();
    changePersistentIndexList(old, QModelIndexList(old.size()));
    emit layoutChanged();
    emit selectionChangedByModel();
}

void ListModel::spliceRows(const std::vector<int>& removeAt, const std::vector<int>& insertAt,
                           std::vector<Row> rows) {
    const std::size_t removing = removeAt.size();
    const std::size_t inserting = std::min(insertAt.size(), rows.size());
    if (removing == 0 && inserting == 0) return;
    for (Row& row : rows)
        normalise(row);
    // One block of either kind keeps the views' place; anything else resets them once.
    const bool oneRemoval =
        inserting == 0 && removeAt.back() - removeAt.front() + 1 == static_cast<int>(removing);
    const bool oneInsertion =
        removing == 0 && insertAt.back() - insertAt.front() + 1 == static_cast<int>(inserting);
    if (oneRemoval) {
        removeRowsAt(removeAt.front(), static_cast<int>(removing));
        return;
    }
    if (oneInsertion) {
        rows.resize(inserting);
        insertRowsAt(insertAt.front(), std::move(rows));
        return;
    }

    beginResetModel();
    change::Splice splice;
    const bool record = recording();
    if (record) {
        for (int r : removeAt)
            m_journal->checkRows(*this, r, r);
        splice.removedAt = removeAt;
        splice.insertedAt.assign(insertAt.begin(), insertAt.begin() + static_cast<std::ptrdiff_t>(inserting));
        splice.inserted.assign(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(inserting));
        splice.removed.reserve(removing);
    } else if (watched()) {
        emit changedOutsideStep();
    }
    m_current = mergeSplice(m_rows, m_current, removeAt, insertAt, rows, inserting,
                            record ? &splice.removed : nullptr);
    if (record) {
        for (int r : splice.insertedAt)
            m_journal->checkRows(*this, r, r);
        m_journal->add(std::move(splice));
    }
    endResetModel();
    emit selectionChangedByModel();
}

void ListModel::selectRows(const std::vector<int>& rows) {
    for (Row& row : m_rows)
        row.selected = false;
    m_current = 0;
    for (int r : rows) {
        if (r < 1 || r > this->rows()) continue;
        m_rows[r - 1].selected = true;
        if (m_current == 0) m_current = r;
    }
    emit selectionChangedByModel();
}

void ListModel::setSelected(int r, bool selected) {
    if (r < 1 || r > rows() || m_rows[r - 1].selected == selected) return;
    m_rows[r - 1].selected = selected;
    emit selectionChangedByModel();
}

void ListModel::clearSelection() {
    bool any = false;
    for (Row& row : m_rows) {
        any = any || row.selected;
        row.selected = false;
    }
    if (any) emit selectionChangedByModel();
}

void ListModel::selectAll() {
    for (Row& row : m_rows)
        row.selected = true;
    emit selectionChangedByModel();
}

std::vector<int> ListModel::selectedRows() const {
    std::vector<int> out;
    for (int r = 1; r <= rows(); ++r)
        if (m_rows[r - 1].selected) out.push_back(r);
    return out;
}

int ListModel::selectedCount() const {
    return static_cast<int>(
        std::count_if(m_rows.begin(), m_rows.end(), [](const Row& r) { return r.selected; }));
}

void ListModel::setCurrentRow(int r) {
    if (r < 0 || r > rows()) r = 0;
    if (m_current == r) return;
    m_current = r;
    emit selectionChangedByModel();
}

int ListModel::selectedRow() const {
    if (m_current >= 1 && m_current <= rows() && m_rows[m_current - 1].selected) return m_current;
    for (int r = 1; r <= rows(); ++r)
        if (m_rows[r - 1].selected) return r;
    return 0;
}

void ListModel::selectOnly(int r) {
    for (Row& row : m_rows)
        row.selected = false;
    if (r >= 1 && r <= rows()) {
        m_rows[r - 1].selected = true;
        m_current = r;
    }
    emit selectionChangedByModel();
}

void ListModel::ensureVisible(int r) {
    if (r >= 1 && r <= rows()) emit scrollToRowRequested(r);
}

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows();
}

int ListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : cols();
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows() || index.column() >= cols()) return {};
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
        const QStringView t = m_rows[index.row()].cells.value(index.column());
        if (role == Qt::DisplayRole && (t.contains(QLatin1Char('\r')) || t.contains(QLatin1Char('\n')))) {
            QString shown = t.toString();
            shown.replace(QLatin1String("\r\n"), QLatin1String(" "));
            shown.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
            return shown;
        }
        if (role == Qt::ToolTipRole && t.size() < 40) return {};
        return t.toString();
    }
    return {};
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 && section < cols())
        return m_columns[section].header;
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags ListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
}

} // namespace lists
