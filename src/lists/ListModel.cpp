#include "lists/ListModel.h"

#include <algorithm>

namespace lists {

namespace {
const QString kEmpty;
}

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

long long rowNumberValue(const QString& text) {
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

const QString& ListModel::cell(int r, int c) const {
    if (r < 1 || r > rows() || c < 1) return kEmpty;
    const QStringList& cells = m_rows[r - 1].cells;
    if (c > cells.size()) return kEmpty;
    return cells[c - 1];
}

void ListModel::setCell(int r, int c, const QString& text) {
    if (r < 1 || r > rows() || c < 1 || c > cols()) return;
    QString& target = m_rows[r - 1].cells[c - 1];
    if (target == text) return;
    target = text;
    const QModelIndex i = index(r - 1, c - 1);
    emit dataChanged(i, i, {Qt::DisplayRole});
}

void ListModel::updateColumn(int c, const std::function<void(int r, QString& cell)>& fn) {
    if (c < 1 || c > cols() || m_rows.empty()) return;
    for (int r = 1; r <= rows(); ++r)
        fn(r, m_rows[r - 1].cells[c - 1]);
    emit dataChanged(index(0, c - 1), index(rows() - 1, c - 1), {Qt::DisplayRole});
}

void ListModel::normalise(Row& row) const {
    const qsizetype n = cols();
    if (row.cells.size() > n) row.cells.resize(n);
    while (row.cells.size() < n)
        row.cells.append(QString());
}

void ListModel::reset(std::vector<Column> columns, std::vector<Row> rows) {
    beginResetModel();
    m_columns = std::move(columns);
    m_rows = std::move(rows);
    for (Row& row : m_rows)
        normalise(row);
    m_current = 0;
    endResetModel();
    emit selectionChangedByModel();
}

void ListModel::clearRows() {
    if (m_rows.empty()) return;
    beginResetModel();
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
    m_rows.insert(m_rows.begin() + (pos - 1), std::make_move_iterator(rows.begin()),
                  std::make_move_iterator(rows.end()));
    if (m_current >= pos) m_current += count;
    endInsertRows();
}

void ListModel::removeRowsAt(int pos, int count) {
    if (pos < 1 || pos > rows() || count <= 0) return;
    count = std::min(count, rows() - pos + 1);
    beginRemoveRows(QModelIndex(), pos - 1, pos - 1 + count - 1);
    m_rows.erase(m_rows.begin() + (pos - 1), m_rows.begin() + (pos - 1 + count));
    if (m_current >= pos + count)
        m_current -= count;
    else if (m_current >= pos)
        m_current = 0;
    endRemoveRows();
}

void ListModel::replaceRows(std::vector<Row> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    for (Row& row : m_rows)
        normalise(row);
    if (m_current > this->rows()) m_current = 0;
    endResetModel();
    emit selectionChangedByModel();
}

void ListModel::reorder(const std::vector<int>& newOrder) {
    // newOrder[i] is the 1-based old position of the row that goes to position i + 1.
    if (newOrder.size() != m_rows.size()) return;
    emit layoutAboutToBeChanged();
    std::vector<Row> sorted;
    sorted.reserve(m_rows.size());
    int newCurrent = 0;
    for (std::size_t i = 0; i < newOrder.size(); ++i) {
        sorted.push_back(std::move(m_rows[newOrder[i] - 1]));
        if (newOrder[i] == m_current) newCurrent = static_cast<int>(i) + 1;
    }
    m_rows = std::move(sorted);
    m_current = newCurrent;
    const QModelIndexList old = persistentIndexList();
    changePersistentIndexList(old, QModelIndexList(old.size()));
    emit layoutChanged();
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
        const QString& t = m_rows[index.row()].cells[index.column()];
        if (role == Qt::DisplayRole && (t.contains(QLatin1Char('\r')) || t.contains(QLatin1Char('\n')))) {
            QString shown = t;
            shown.replace(QLatin1String("\r\n"), QLatin1String(" "));
            shown.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
            return shown;
        }
        if (role == Qt::ToolTipRole && t.size() < 40) return {};
        return t;
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
