#include "lists/ListEditing.h"
#include "lists/Columns.h"

#include "lists/ListProcedures.h"
#include "platform/Dialogs.h"

#include <algorithm>

namespace lists {

namespace {

// The requirement type column of both quality kinds.
constexpr int kTypeColumn = requirementCol::kType;

bool beginsWithOneOrTwo(QStringView text) {
    return text.startsWith(QLatin1Char('1')) || text.startsWith(QLatin1Char('2'));
}

// A row that governs the rows below it in a contractor's rights: a caption (the road works
// caption may have no littera), a subcaption or the first row of an entry. Scanning upward from
// a row, FindCaption stops its search for the governing row at the first such row.
bool isGoverningRow(const ListModel& list, int r, int headingCol, int entryCol) {
    return list.cell(r, headingCol) == kRoadWorksCaption || !BlankString(list.cell(r, 1)) ||
           (entryCol > 0 && !BlankString(list.cell(r, entryCol)));
}

bool isProtected(const ListModel& list, int governingRow) {
    return beginsWithOneOrTwo(list.cell(governingRow, kTypeColumn));
}

// Whether a selected row with content belongs to a protected requirement; one pass from the
// top, carrying the governing row down, so that selecting a whole list stays linear.
bool selectionTouchesProtected(const ListModel& list) {
    const int h = headingColumn(list);
    const int e = entryColumn(list);
    int governing = 0;
    for (int r = 1; r <= list.rows(); ++r) {
        if (isGoverningRow(list, r, h, e)) governing = r;
        if (!list.isSelected(r) || BlankListItem(list, r).blank) continue;
        if (isProtected(list, governing > 0 ? governing : r)) return true;
    }
    return false;
}

bool clipboardHasProtectedType(const QString& clipboardText) {
    QString text = clipboardText;
    const ClipDimensions size = ClipSize(text);
    if (size.columns < kTypeColumn) return false;
    const QStringList cells = ClipCells(text);
    for (int r = 0; r < size.rows; ++r) {
        const qsizetype i = static_cast<qsizetype>(r) * size.columns + kTypeColumn - 1;
        if (i < cells.size() && beginsWithOneOrTwo(cells[i])) return true;
    }
    return false;
}

// The text of a row number: an unchanged value keeps its text, anything else is rewritten.
std::optional<QString> numberText(QStringView old, long long value) {
    if (!old.isEmpty() && rowNumberValue(old) == value) return std::nullopt;
    return formatRowNumber(value);
}

// Counts of keys added so far, by rank among a fixed sorted set of keys.
class RankCounter {
public:
    explicit RankCounter(std::vector<long long> keys)
        : m_keys(std::move(keys))
        , m_tree(m_keys.size() + 1, 0) {}
    void add(long long key) {
        for (std::size_t i = rank(key) + 1; i < m_tree.size(); i += i & (~i + 1))
            ++m_tree[i];
    }
    int countAtMost(long long key) const {
        return prefix(std::upper_bound(m_keys.begin(), m_keys.end(), key) - m_keys.begin());
    }
    int countBelow(long long key) const {
        return prefix(std::lower_bound(m_keys.begin(), m_keys.end(), key) - m_keys.begin());
    }

private:
    std::size_t rank(long long key) const {
        return static_cast<std::size_t>(std::lower_bound(m_keys.begin(), m_keys.end(), key) - m_keys.begin());
    }
    int prefix(std::ptrdiff_t count) const {
        int s = 0;
        for (auto i = static_cast<std::size_t>(count); i > 0; i -= i & (~i + 1))
            s += m_tree[i];
        return s;
    }
    std::vector<long long> m_keys; // sorted, unique
    std::vector<int> m_tree;
};

// An empty row before each selected row. Done one by one from the last selected row to the
// first, each insertion takes the number of the row it goes before and renumbers the whole
// list; here the same numbers are worked out at once.
//
// Step j (0 = the last selected row) takes the number a_j the row had at first. While the steps
// meet only rows without a number (a prefix of z steps), every numbered row moves up by one and
// the new rows stay unnumbered. From then on the order of the numbers is fixed: a row with the
// number v sorts at key 2v, the rows without a number join the first number taken after the
// prefix just below it (key 2a_z - 1), and each new row goes just below the row it was inserted
// before. A step moves up every row whose key is at least the step's key, so a row's final
// number is its first number plus the steps it lies above.
// The numbers of such an insertion: `newNumber[j]` for the new row of step j, and `finalOf(v)`
// for a row that had the number v.
struct InsertNumbers {
    int k = 0;
    int z = 0;
    std::vector<long long> sortedKeys; // the keys of the steps after the prefix
    std::vector<long long> newNumber;
    long long zeroFinal = 0;

    long long stepsAtMost(long long key) const {
        return static_cast<long long>(std::upper_bound(sortedKeys.begin(), sortedKeys.end(), key) -
                                      sortedKeys.begin());
    }
    long long finalOf(long long v) const {
        if (z == k) return v == 0 ? 0 : v + k;
        return v == 0 ? zeroFinal : v + z + stepsAtMost(2 * v);
    }
};

// `a[j]`: the first number of the row of step j (0 = the last selected row).
InsertNumbers insertNumbers(const std::vector<long long>& a) {
    InsertNumbers n;
    const int k = n.k = static_cast<int>(a.size());
    n.newNumber.assign(k, 0);
    int& z = n.z;
    while (z < k && a[z] == 0)
        ++z;
    if (z == k) return n;

    const long long zeroKey = 2 * a[z] - 1;
    std::vector<long long> key(k, 0);
    for (int j = z; j < k; ++j)
        key[j] = a[j] != 0 ? 2 * a[j] : zeroKey;
    n.sortedKeys.assign(key.begin() + z, key.end());
    std::sort(n.sortedKeys.begin(), n.sortedKeys.end());
    std::vector<long long> uniqueKeys = n.sortedKeys;
    uniqueKeys.erase(std::unique(uniqueKeys.begin(), uniqueKeys.end()), uniqueKeys.end());

    // The number each step takes: its row's first number, plus the prefix, plus the earlier
    // steps at or below its key.
    std::vector<long long> taken(k, 0);
    RankCounter earlier(uniqueKeys);
    for (int j = z; j < k; ++j) {
        taken[j] = (a[j] != 0 ? a[j] : a[z]) + z + earlier.countAtMost(key[j]);
        earlier.add(key[j]);
    }
    n.zeroFinal = a[z] + z + n.stepsAtMost(zeroKey);
    // A new row moves up with each later step strictly below the row it went before.
    RankCounter later(uniqueKeys);
    for (int j = k - 1; j > z; --j) {
        n.newNumber[j] = taken[j] + later.countBelow(key[j]);
        later.add(key[j]);
    }
    // The new rows up to step z join the rows without a number.
    for (int j = 0; j <= z; ++j)
        n.newNumber[j] = n.zeroFinal;
    return n;
}

bool insertBeforeSelected(ListModel& list) {
    const std::vector<int> selected = list.selectedRows();
    const int k = static_cast<int>(selected.size());
    const int numberCol = list.cols();
    if (k == 0) return false;

    std::vector<long long> a(k);
    for (int j = 0; j < k; ++j)
        a[j] = rowNumberValue(list.rowNumberText(selected[k - 1 - j]));
    const InsertNumbers numbers = insertNumbers(a);

    // Renumber in place first, so that the rows copied below stay shared with the list's own.
    list.updateColumn(numberCol, [&](int, QStringView cell) {
        return numberText(cell, numbers.finalOf(rowNumberValue(cell)));
    });
    // The new row before the s-th selected row lands s rows below that row's old place.
    std::vector<int> insertAt(k);
    std::vector<Row> rows(k);
    for (int s = 0; s < k; ++s) {
        insertAt[s] = selected[s] + s;
        rows[s].cells.set(numberCol - 1, formatRowNumber(numbers.newNumber[k - 1 - s]));
    }
    list.spliceRows({}, insertAt, std::move(rows));
    list.selectOnly(selected[0]);
    list.ensureVisible(selected[0]);
    return true;
}

bool appendRow(ListModel& list) {
    list.clearSelection();
    const int r = AddListViewRow(list, list.rows() + 1, true);
    list.selectOnly(r);
    list.ensureVisible(r);
    return true;
}

bool deleteSelected(ListModel& list) {
    const std::vector<int> selected = list.selectedRows();
    if (selected.empty()) return false;
    const int first = selected.front();
    list.spliceRows(selected, {}, {});
    const int next = std::min(first, list.rows());
    if (next > 0) {
        list.selectOnly(next);
        list.ensureVisible(next);
    } else {
        list.clearSelection();
    }
    return true;
}

} // namespace

void ShowDeny(int programMode) {
    if (programMode == 1)
        platform::MsgBox(QStringLiteral("Toiminto on sallittu ainoastaan\r\nurakoitsijalle ja tilaajalle"),
                         platform::MsgIcon::Information);
    else if (programMode == 2)
        platform::MsgBox(QStringLiteral("Toiminto on sallittu ainoastaan\r\nsuunnitelijalle ja tilaajalle"),
                         platform::MsgIcon::Information);
}

QString typeOneRefusalText() {
    return QStringLiteral(
        "Siltakohtaisia (tyyppi 1) laatuvaatimuksia\r\nvoi lisätä ainoastaan suunnitelija ja tilaaja.");
}

EditableColumns EditableColumnRange(const ListModel& list, const EditContext& ctx) {
    const int last = list.lastDataCol();
    if (ctx.restricted && ctx.listIndex == 0) return {3, std::min(4, last)};
    if (ctx.restricted && ctx.listIndex == 1) return {6, std::min(8, last)};
    return {1, last};
}

int RestrictedEntryColumn(const EditContext& ctx) {
    if (!ctx.restricted) return 0;
    if (ctx.listIndex == 0) return 5;
    if (ctx.listIndex == 1) return 2;
    return 0;
}

int GoverningRow(const ListModel& list, int r) {
    const int h = headingColumn(list);
    const int e = entryColumn(list);
    for (int q = std::min(r, list.rows()); q >= 1; --q)
        if (isGoverningRow(list, q, h, e)) return q;
    return r;
}

bool ListViewEditEnabled(const ListModel& list, int actionCode, const EditContext& ctx, int editRow,
                         const QString& clipboardText) {
    auto deny = [&] {
        ShowDeny(ctx.programMode);
        return false;
    };
    if (list.tag() == kind::NoEdit) return actionCode == action::Copy || deny();
    if (list.kind() != kind::Requirements || ctx.programMode != 2) return true;

    switch (actionCode) {
        case action::DeleteRows:
        case action::Cut:
        case action::DeleteSelection:
            return !selectionTouchesProtected(list) || deny();
        case action::Paste: {
            const int r = list.selectedRow();
            if (r > 0 && isProtected(list, GoverningRow(list, r))) return deny();
            return !clipboardHasProtectedType(clipboardText) || deny();
        }
        case action::EditCell:
            return editRow < 1 || editRow > list.rows() || !isProtected(list, GoverningRow(list, editRow)) ||
                   deny();
        default:
            return true;
    }
}

bool ProtectedRequirement(const ListModel& list, int r) {
    return list.kind() == kind::Requirements && r >= 1 && r <= list.rows() &&
           isProtected(list, GoverningRow(list, r));
}

int NextNonBlank(const ListModel& list, int column, int direction, int fromRow) {
    if (direction == 0) return 0;
    for (int r = fromRow + direction; r >= 1 && r <= list.rows(); r += direction)
        if (!BlankString(list.cell(r, column))) return r - fromRow;
    return 0;
}

void RemoveTrailingSpaces(QString& text) {
    qsizetype end = text.size();
    while (end > 0 && text[end - 1] == QLatin1Char(' '))
        --end;
    text.truncate(end);
}

bool PutToListView(ListModel& list, int row, int column, const QString& text, const EditContext& ctx) {
    if (row < 1 || row > list.rows() || column < 1 || column > list.lastDataCol()) return false;
    if (column == kTypeColumn && list.tag() == kind::Requirements && ctx.programMode == 2 &&
        text.startsWith(QLatin1Char('1'))) {
        platform::MsgBox(typeOneRefusalText(), platform::MsgIcon::Information);
        return false;
    }
    if (list.cell(row, column) == text) return false;
    list.setCell(row, column, text);
    return true;
}

bool ListViewRowEdit(ListModel& list, int rowAction, const EditContext& ctx) {
    if (rowAction != action::InsertRow && rowAction != action::AppendRow && rowAction != action::DeleteRows)
        return false;
    if (!ListViewEditEnabled(list, rowAction, ctx, 0, QString())) return false;
    if (list.cols() == 0) return false;
    switch (rowAction) {
        case action::InsertRow:
            return list.rows() == 0 ? appendRow(list) : insertBeforeSelected(list);
        case action::AppendRow:
            return appendRow(list);
        default:
            return list.rows() > 0 && deleteSelected(list);
    }
}

bool SortItems(ListModel& list, int column) {
    if (column < 1 || column > list.cols()) return false;
    if (column != 1) {
        const QString question =
            QStringLiteral("Toiminto järjestää rivit aakkosjärjestykseen valitun\r\n"
                           "sarakkeen mukaan. Alukuperäinen järjestys voidaan\r\n"
                           "palauttaa toistamalla toiminto ensimmäiselle sarakkeelle.\r\n"
                           "Haluatko jatkaa?");
        if (platform::Ask(question, platform::MsgButtons::YesNo, platform::MsgIcon::Question,
                          platform::MsgAnswer::No) != platform::MsgAnswer::Yes)
            return false;
    }
    SortByColumn(list, column == 1 ? list.cols() : column);
    return true;
}

// ---------------------------------------------------------------- clipboard text

QString EncodeClipCell(QStringView cell) {
    if (!cell.contains(QLatin1Char('\r')) && !cell.contains(QLatin1Char('\n')) &&
        !cell.contains(QLatin1Char('\t')))
        return cell.toString();
    QString out = cell.toString();
    // A lone CR or LF is a line break too; it comes back as CR LF, the program's line break.
    out.replace(QLatin1String("\r\n"), QString(QChar(1)));
    out.replace(QLatin1Char('\r'), QChar(1)).replace(QLatin1Char('\n'), QChar(1));
    out.replace(QLatin1Char('\t'), QChar(2));
    return out;
}

QString DecodeClipCell(const QString& cell) {
    if (!cell.contains(QChar(1)) && !cell.contains(QChar(2))) return cell;
    QString out = cell;
    out.replace(QChar(1), QLatin1String("\r\n"));
    out.replace(QChar(2), QLatin1Char('\t'));
    return out;
}

QString ClipTextOfRows(const ListModel& list, const std::vector<int>& rows) {
    QString text;
    for (int r : rows) {
        text += EncodeClipCell(list.cell(r, 1));
        for (int c = 2; c <= list.lastDataCol(); ++c) {
            text += QLatin1Char('\t');
            text += EncodeClipCell(list.cell(r, c));
        }
        text += QLatin1Char('\r');
    }
    return text;
}

namespace {
void normaliseLineEnds(QString& text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\r"));
    text.replace(QLatin1Char('\n'), QLatin1Char('\r'));
}
} // namespace

ClipDimensions ClipSize(QString& text) {
    normaliseLineEnds(text);
    int rows = 1;
    int cells = 1;
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == QLatin1Char('\t')) {
            ++cells;
        } else if (text[i] == QLatin1Char('\r')) {
            ++cells;
            ++rows;
        }
    }
    // cells / rows to the nearest integer, halves to even.
    int columns = cells / rows;
    const int twiceRest = 2 * (cells % rows);
    if (twiceRest > rows || (twiceRest == rows && columns % 2 == 1)) ++columns;
    return {rows, columns};
}

QStringList ClipCells(const QString& text) {
    QString flat = text;
    normaliseLineEnds(flat);
    flat.replace(QLatin1Char('\t'), QLatin1Char('\r'));
    QStringList cells = flat.split(QLatin1Char('\r'));
    for (QString& cell : cells)
        cell = DecodeClipCell(cell);
    return cells;
}

QString ParseClipData(const QString& text, int row, int column, int columns) {
    if (row < 1 || column < 1 || columns < 1) return {};
    const QStringList cells = ClipCells(text);
    const qsizetype i = static_cast<qsizetype>(row - 1) * columns + column - 1;
    return i < cells.size() ? cells[i] : QString();
}

bool PasteText(ListModel& list, const QString& clipboardText, const EditContext& ctx) {
    if (clipboardText.isEmpty()) return false;
    if (!ListViewEditEnabled(list, action::Paste, ctx, 0, clipboardText)) return false;
    QString text = clipboardText;
    const ClipDimensions size = ClipSize(text);
    const int position = list.selectedRow();
    if (position == 0 || size.columns > list.cols()) {
        platform::MsgBox(QStringLiteral("Virheellinen alue. Liitä toiminto keskeytty."),
                         platform::MsgIcon::Information);
        return false;
    }
    const QStringList cells = ClipCells(text);
    // The row-number column is never written, even when the text has a cell for it.
    const int lastCol = std::min(size.columns, list.lastDataCol());
    std::vector<Row> rows(size.rows);
    RowCells::Builder row;
    for (int r = 0; r < size.rows; ++r) {
        for (int c = 1; c <= lastCol; ++c)
            row.add(cells.value(static_cast<qsizetype>(r) * size.columns + c - 1));
        row.addEmpty(list.cols() - row.size());
        rows[r].cells = row.take();
    }
    InsertListViewRows(list, position, std::move(rows), true);
    return true;
}

// ---------------------------------------------------------------- transfers

DropPlace dropPlace(const ListModel& target, int dropRow, bool shift) {
    if (target.rows() == 0) return {2, 0};
    // Placed rows go above the drop row; sorted ones where their litteras say.
    if (dropRow > 0) return {shift ? 2 : 0, dropRow - 1};
    return {4, target.rows()};
}

bool TransferAllowed(const QString& targetTag, const QString& sourceTag) {
    if (targetTag == sourceTag) return false;
    return (targetTag == kind::QuantityList && sourceTag == kind::UnitPriceList) ||
           (targetTag == kind::UnitPriceList && sourceTag == kind::QuantityList) ||
           (targetTag == kind::Requirements && sourceTag == kind::RequirementBase) ||
           (targetTag == kind::RequirementBase && sourceTag == kind::Requirements);
}

namespace {

// The block's rows converted to the target's columns; row numbers empty.
std::vector<Row> convertBlock(int mode, const ListModel& source, int firstRow, int rowCount,
                              const ListModel& target, const TransferOptions& options) {
    const int last = std::min(firstRow + rowCount - 1, source.rows());
    std::vector<Row> out;
    if (firstRow < 1 || last < firstRow) return out;
    out.reserve(last - firstRow + 1);
    const QString& targetKind = target.kind();
    const int targetLast = target.lastDataCol();
    const int priceCol =
        options.unitPriceColumn >= 4 && options.unitPriceColumn <= 6 ? options.unitPriceColumn : 0;
    const bool withRemarks = mode % 2 == 0;
    std::vector<QStringView> cells;
    for (int r = firstRow; r <= last; ++r) {
        cells.assign(target.cols(), QStringView());
        auto src = [&](int c) {
            return c >= 1 && c <= source.lastDataCol() ? source.cell(r, c) : QStringView();
        };
        auto set = [&](int c, QStringView text) {
            if (c >= 1 && c <= targetLast) cells[c - 1] = text;
        };
        set(1, source.cell(r, 1));
        if (targetKind == kind::QuantityList) {
            set(2, src(2));
            set(5, src(3));
            if (priceCol) set(6, src(priceCol));
            if (withRemarks) set(7, src(7));
        } else if (targetKind == kind::UnitPriceList) {
            set(2, src(2));
            set(3, src(5));
            if (priceCol) set(priceCol, src(6));
            if (withRemarks) set(7, src(7));
        } else if (isQualityKind(targetKind)) {
            for (int c = 2; c <= targetLast; ++c)
                set(c, src(c));
        }
        Row row;
        row.cells = RowCells(cells);
        out.push_back(std::move(row));
    }
    // A contractor's additions are advisory requirements.
    if (targetKind == kind::Requirements && options.programMode == 2 && targetLast >= kTypeColumn &&
        beginsWithOneOrTwo(out.front().cells[kTypeColumn - 1]))
        out.front().cells.set(kTypeColumn - 1, u"3");
    return out;
}

// Whether the target already has the block: a row with its first littera and heading text.
bool hasBlock(const ListModel& target, const ListModel& source, int firstRow) {
    const QStringView littera = source.cell(firstRow, 1);
    const QStringView heading = source.cell(firstRow, headingColumn(source));
    const int h = headingColumn(target);
    for (int r = 1; r <= target.rows(); ++r)
        if (target.cell(r, 1) == littera && target.cell(r, h) == heading) return true;
    return false;
}

// The target of a transfer while it is built: a copy of its rows in a list no view shows, with
// the row numbers kept as integers beside them. Numbering a block is then one pass over
// integers, and the texts are written once at the end.
class TransferBuffer {
public:
    explicit TransferBuffer(const ListModel& target) {
        m_work.setKind(target.kind());
        m_work.reset(target.columns(), target.allRows());
        m_numbers.reserve(target.rows());
        for (int r = 1; r <= target.rows(); ++r) {
            m_numbers.push_back(rowNumberValue(target.rowNumberText(r)));
            m_fresh.push_back(0);
            m_largest = std::max(m_largest, m_numbers.back());
        }
    }

    const ListModel& list() const { return m_work; }
    int rows() const { return m_work.rows(); }

    // Inserts the rows at `position` numbered as InsertListViewRows numbers them.
    void insert(int position, std::vector<Row> rows) {
        const int n = m_work.rows();
        const long long k = static_cast<long long>(rows.size());
        if (k == 0) return;
        position = std::clamp(position, 1, n + 1);
        const long long first = n == 0 ? 1 : position > n ? m_largest + 1 : m_numbers[position - 1];
        m_largest = 0;
        for (long long& v : m_numbers) {
            if (v == 0)
                v = first == 0 ? 0 : first + k - 1;
            else if (v >= first)
                v += k;
            m_largest = std::max(m_largest, v);
        }
        std::vector<long long> fresh(k);
        for (long long i = 0; i < k; ++i)
            fresh[i] = first == 0 ? 0 : first + i;
        if (first > 0) m_largest = std::max(m_largest, first + k - 1);
        for (Row& row : rows)
            row.selected = false;
        m_numbers.insert(m_numbers.begin() + (position - 1), fresh.begin(), fresh.end());
        m_fresh.insert(m_fresh.begin() + (position - 1), static_cast<std::size_t>(k), 1);
        m_work.insertRowsAt(position, std::move(rows));
        m_changed = true;
    }

    int insertBlock(int mode, const ListModel& source, int firstRow, int rowCount, int position,
                    bool onlyIfMissing, const TransferOptions& options) {
        if (firstRow < 1 || firstRow > source.rows()) return 0;
        if (onlyIfMissing && hasBlock(m_work, source, firstRow)) return 0;
        std::vector<Row> rows = convertBlock(mode, source, firstRow, rowCount, m_work, options);
        const int count = static_cast<int>(rows.size());
        insert(position, std::move(rows));
        return count;
    }

    bool changed() const { return m_changed; }

    // Gives the target its new numbers and then the new rows, each once, so that the target
    // changes only where it has to.
    void writeTo(ListModel& target) {
        const std::vector<Row>& rows = m_work.allRows();
        const int c = m_work.cols();
        auto text = [&](QStringView old, std::size_t i) -> std::optional<QString> {
            if (old.isEmpty()) return formatRowNumber(m_numbers[i]);
            return numberText(old, m_numbers[i]);
        };
        std::vector<long long> kept;
        std::vector<int> insertAt;
        std::vector<Row> inserted;
        kept.reserve(target.rows());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (!m_fresh[i]) {
                kept.push_back(static_cast<long long>(i));
                continue;
            }
            insertAt.push_back(static_cast<int>(i) + 1);
            inserted.push_back(rows[i]);
            if (std::optional<QString> renumbered = text(rows[i].cells[c - 1], i))
                inserted.back().cells.set(c - 1, *renumbered);
        }
        target.updateColumn(
            c, [&](int r, QStringView cell) { return text(cell, static_cast<std::size_t>(kept[r - 1])); });
        target.spliceRows({}, insertAt, std::move(inserted));
    }

private:
    ListModel m_work;
    std::vector<long long> m_numbers;
    std::vector<char> m_fresh; // per row of m_work: 1 for a row the transfer brings
    long long m_largest = 0;
    bool m_changed = false;
};

} // namespace

int InsertData(int mode, const ListModel& source, int firstRow, int rowCount, ListModel& target, int position,
               bool onlyIfMissing, const TransferOptions& options) {
    if (firstRow < 1 || firstRow > source.rows() || target.cols() == 0) return 0;
    if (onlyIfMissing && hasBlock(target, source, firstRow)) return 0;
    std::vector<Row> rows = convertBlock(mode, source, firstRow, rowCount, target, options);
    const int count = static_cast<int>(rows.size());
    InsertListViewRows(target, position, std::move(rows), true);
    return count;
}

TransferResult TransferData(ListModel& target, const ListModel& source, int position, int mode,
                            const TransferOptions& options) {
    TransferResult result;
    if (&target == &source || target.cols() == 0 || source.selectedCount() == 0) return result;
    TransferBuffer buffer(target);
    const bool withCaptions = mode == 0 || mode == 1 || mode == 4 || mode == 5;
    int offset = 1;
    for (int i = 1; i <= source.rows(); ++i) {
        if (!source.isSelected(i)) continue;
        const CaptionInfo found = FindCaption(source, i);
        position =
            LocateRow(buffer.list(), source, position, found.captionRow, found.subcaptionRow, mode, offset);
        if (found.entryRow > 0) {
            result.insertedRows +=
                buffer.insertBlock(mode, source, found.entryRow, found.entryRows, position, false, options);
            // An entry goes over once, however many of its rows are selected.
            i = std::max(i, found.entryRow + found.entryRows - 1);
            offset = found.entryRows;
        } else {
            offset = 1;
        }
        if (withCaptions) {
            // Subcaption, then caption at the same place: the target reads caption, subcaption, entry.
            if (found.subcaptionRow > 0)
                result.insertedRows += buffer.insertBlock(mode, source, found.subcaptionRow,
                                                          found.subcaptionRows, position, true, options);
            if (found.captionRow > 0)
                result.insertedRows += buffer.insertBlock(mode, source, found.captionRow, found.captionRows,
                                                          position, true, options);
        }
    }
    if (position > buffer.rows()) buffer.insert(buffer.rows() + 1, std::vector<Row>(1));
    if (!buffer.changed()) return result;

    buffer.writeTo(target);
    result.changed = true;
    result.lastPosition = std::clamp(position, 1, target.rows());
    target.selectOnly(result.lastPosition);
    target.ensureVisible(result.lastPosition);
    return result;
}

TransferResult ExportToList(ListModel& target, const ListModel& source, int mode,
                            const TransferOptions& options) {
    if (target.cols() == 0) return {};
    bool appended = false;
    if (target.rows() == 0) {
        AddListViewRow(target, 1, true);
        appended = true;
    }
    const int row = target.selectedRow();
    if (row > 0) target.setSelected(row, false);
    // Without a selected row the rows go to the end.
    const int position = (row > 0 ? row : target.rows() + 1) - 1;
    TransferResult result = TransferData(target, source, position, mode, options);
    result.changed = result.changed || appended;
    return result;
}

} // namespace lists
