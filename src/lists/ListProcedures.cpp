#include "lists/ListProcedures.h"

#include <algorithm>

namespace lists {

ListGroup groupOfKind(const QString& kindText) {
    if (kindText == kind::QuantityList || kindText == kind::UnitPriceList) return ListGroup::Quantity;
    if (kindText == kind::Requirements || kindText == kind::RequirementBase) return ListGroup::Quality;
    return ListGroup::Other;
}

ListGroup groupOf(const ListModel& list) {
    return groupOfKind(list.kind());
}

bool isQuantityKind(const QString& kindText) {
    return groupOfKind(kindText) == ListGroup::Quantity;
}

bool isQualityKind(const QString& kindText) {
    return groupOfKind(kindText) == ListGroup::Quality;
}

namespace {

struct GroupColumns {
    int heading, entry, detail;
};

GroupColumns columnsOf(const ListModel& list) {
    switch (groupOf(list)) {
        case ListGroup::Quantity:
            return {2, 5, 3};
        case ListGroup::Quality:
            return {3, 2, 2};
        default:
            return {2, 0, 0};
    }
}

} // namespace

int headingColumn(const ListModel& list) {
    return columnsOf(list).heading;
}

int entryColumn(const ListModel& list) {
    return columnsOf(list).entry;
}

int detailColumn(const ListModel& list) {
    return columnsOf(list).detail;
}

bool BlankString(QStringView text) {
    for (const QChar c : text)
        if (c != QLatin1Char(' ')) return false;
    return true;
}

bool CapitalString(QStringView text) {
    int capitals = 0;
    for (const QChar ch : text) {
        const char16_t c = ch.unicode();
        if ((c >= u'a' && c <= u'z') || c == u'å' || c == u'ä' || c == u'ö') return false;
        if ((c >= u'A' && c <= u'Z') || c == u'Å' || c == u'Ä' || c == u'Ö') ++capitals;
    }
    return capitals >= 2;
}

BlankInfo BlankListItem(const ListModel& list, int r) {
    if (!BlankString(list.cell(r, 1))) return {1, false};
    for (int c = 2; c <= list.lastDataCol(); ++c)
        if (!BlankString(list.cell(r, c))) return {c, false};
    return {0, true};
}

int ListViewHotSubItem(const ListModel& list) {
    return headingColumn(list) - 1;
}

QString normalisedLittera(QStringView littera) {
    if (littera.size() != 6) return littera.toString();
    return littera.left(5).toString() + QLatin1Char('0') + littera.right(1).toString();
}

// ---------------------------------------------------------------- row numbers

long long CurrentRowNumber(const ListModel& list, int position) {
    if (list.rows() == 0) return 1;
    if (position > list.rows()) {
        // Appending takes the largest number plus 1, so that a list sorted by another column
        // still gets a number no other row has.
        long long largest = 0;
        for (int r = 1; r <= list.rows(); ++r)
            largest = std::max(largest, rowNumberValue(list.rowNumberText(r)));
        return largest + 1;
    }
    return rowNumberValue(list.rowNumberText(std::max(position, 1)));
}

void UpdateRowNumbers(ListModel& list, long long number) {
    const QString numberText = formatRowNumber(number);
    list.updateColumn(list.cols(), [&](int, QStringView cell) -> std::optional<QString> {
        const long long v = rowNumberValue(cell);
        if (v == 0) return numberText;
        if (v >= number) return formatRowNumber(v + 1);
        return std::nullopt;
    });
}

int InsertListViewRows(ListModel& list, int position, std::vector<Row> rows, bool numbered) {
    position = std::clamp(position, 1, list.rows() + 1);
    const int k = static_cast<int>(rows.size());
    if (k == 0) return position;
    const int n = list.cols();
    for (Row& row : rows) {
        row.cells.resize(n);
        row.selected = false;
    }
    if (numbered && n > 0) {
        // One insertion at a time would take the same number N each time (the row at the
        // position is the one inserted just before): the new rows read N .. N+k-1 from the top,
        // numbers from N on move up by k, and empty numbers end as N+k-1, having become N at
        // the first insertion and moved up with each later one. With N = 0 (the row at the
        // position had no number) every new and empty number stays 0 and all others move up.
        const long long first = CurrentRowNumber(list, position);
        list.updateColumn(n, [&](int, QStringView cell) -> std::optional<QString> {
            const long long v = rowNumberValue(cell);
            if (v == 0) return formatRowNumber(first == 0 ? 0 : first + k - 1);
            if (v >= first) return formatRowNumber(v + k);
            return std::nullopt;
        });
        for (int i = 0; i < k; ++i)
            rows[i].cells.set(n - 1, formatRowNumber(first == 0 ? 0 : first + i));
    } else if (n > 0) {
        for (Row& row : rows)
            row.cells.set(n - 1, {});
    }
    list.insertRowsAt(position, std::move(rows));
    return position;
}

int AddListViewRow(ListModel& list, int position, bool numbered) {
    return InsertListViewRows(list, position, std::vector<Row>(1), numbered);
}

// ---------------------------------------------------------------- captions

CaptionInfo FindCaption(const ListModel& list, int startRow) {
    CaptionInfo out;
    if (groupOf(list) == ListGroup::Other) return out;
    const int h = headingColumn(list);
    const int e = entryColumn(list);
    const int d = detailColumn(list);
    const int n = list.rows();

    for (int r = std::min(startRow, n); r >= 1; --r) {
        const QStringView littera = list.cell(r, 1);
        const QStringView heading = list.cell(r, h);
        const bool hasLittera = !BlankString(littera);
        if (heading == kRoadWorksCaption || (hasLittera && CapitalString(heading))) {
            out.captionRow = r;
            break;
        }
        if (out.subcaptionRow == 0 && hasLittera) {
            out.subcaptionRow = r;
            out.subcaptionLittera = littera.toString();
            out.subcaptionText = heading.toString();
            if (out.detailText.isEmpty()) out.detailText = list.cell(r, d).toString();
        }
        if (out.subcaptionRow == 0 && out.entryRow == 0 && !BlankString(list.cell(r, e))) {
            out.entryRow = r;
            out.detailText = list.cell(r, d).toString();
            out.entryText = heading.toString();
        }
    }

    // A block continues while the rows below have neither a littera nor an entry.
    auto continues = [&](int r) { return BlankString(list.cell(r, 1)) && BlankString(list.cell(r, e)); };
    if (out.captionRow > 0) {
        out.captionLittera = list.cell(out.captionRow, 1).toString();
        out.captionText = list.cell(out.captionRow, h).toString();
        if (out.detailText.isEmpty()) out.detailText = list.cell(out.captionRow, d).toString();
        out.captionRows = 1;
        for (int r = out.captionRow + 1; r <= n && continues(r); ++r) {
            out.captionText += list.cell(r, h);
            ++out.captionRows;
        }
    }
    if (out.subcaptionRow > 0) {
        out.subcaptionRows = 1;
        for (int r = out.subcaptionRow + 1; r <= n && continues(r); ++r)
            ++out.subcaptionRows;
    }
    if (out.entryRow > 0) {
        out.entryRows = 1;
        for (int r = out.entryRow + 1; r <= n && continues(r) && list.cell(r, h) != kRoadWorksCaption; ++r)
            ++out.entryRows;
    }
    return out;
}

int InsertCaption(ListModel& target, int position, const ListModel& source, int firstRow, int rowCount) {
    const int last = std::min(firstRow + rowCount - 1, source.rows());
    if (firstRow < 1 || last < firstRow) return 0;
    const QStringView littera = source.cell(firstRow, 1);
    const QStringView name = source.cell(firstRow, 2);
    bool hasLittera = false;
    bool hasName = false;
    for (int r = 1; r <= target.rows() && !(hasLittera && hasName); ++r) {
        hasLittera = hasLittera || target.cell(r, 1) == littera;
        hasName = hasName || target.cell(r, 2) == name;
    }
    if (hasLittera && hasName) return 0;

    const int m = std::min(source.lastDataCol(), target.lastDataCol());
    std::vector<Row> block(last - firstRow + 1);
    for (int r = firstRow; r <= last; ++r) {
        RowCells::Builder cells;
        for (int c = 1; c <= m; ++c)
            cells.add(source.cell(r, c));
        block[r - firstRow].cells = cells.take();
    }
    const int count = static_cast<int>(block.size());
    InsertListViewRows(target, position, std::move(block), true);
    return count;
}

// ---------------------------------------------------------------- placement

namespace {

// The row of the first heading with this littera, when its text (in column `h`) is this one;
// 0 otherwise.
int headingRow(const ListModel& target, QStringView littera, QStringView text, int h) {
    for (int r = 1; r <= target.rows(); ++r)
        if (target.cell(r, 1) == littera) return target.cell(r, h) == text ? r : 0;
    return 0;
}

// The first row with the road works' caption in any column; 0 for none.
int roadWorksRow(const ListModel& target) {
    for (int r = 1; r <= target.rows(); ++r)
        for (int c = 2; c <= target.lastDataCol(); ++c)
            if (target.cell(r, c) == kRoadWorksCaption) return r;
    return 0;
}

} // namespace

int LocateRow(const ListModel& target, const ListModel& source, int position, int captionRow,
              int subcaptionRow, int mode, int offset) {
    switch (mode) {
        case 2:
        case 3:
            return position + offset;
        case 4:
        case 5:
            return target.rows() + 1;
        case 0:
        case 1:
            break;
        default:
            return position;
    }

    const int sh = headingColumn(source);
    const int h = headingColumn(target);
    const int n = target.rows();
    const QStringView captionLittera = captionRow > 0 ? source.cell(captionRow, 1) : QStringView();
    const QStringView captionText = captionRow > 0 ? source.cell(captionRow, sh) : QStringView();
    const QStringView subLittera = subcaptionRow > 0 ? source.cell(subcaptionRow, 1) : QStringView();
    const QStringView subText = subcaptionRow > 0 ? source.cell(subcaptionRow, sh) : QStringView();

    int anchor = subcaptionRow > 0 ? headingRow(target, subLittera, subText, h) : 0;
    // A subcaption the target does not have yet goes in under its caption, in littera order.
    if (anchor == 0 && !captionText.isEmpty())
        anchor = captionText == kRoadWorksCaption ? roadWorksRow(target)
                                                  : headingRow(target, captionLittera, captionText, h);

    if (anchor > 0) {
        const QString subNormalised = normalisedLittera(subLittera);
        for (int j = anchor + 1; j <= n; ++j) {
            const QStringView littera = target.cell(j, 1);
            if (CapitalString(target.cell(j, h)) && !BlankString(littera)) return j;
            if (subcaptionRow > 0 && subNormalised < normalisedLittera(littera)) return j;
            if (subcaptionRow == 0 && !littera.isEmpty()) return j;
        }
        return n + 1;
    }

    // No anchor: place by littera, road works (below "7100") apart from the bridge's phases.
    const bool roadWork = captionLittera < kBridgeLitteraStart;
    for (int j = 1; j <= n; ++j) {
        const QStringView littera = target.cell(j, 1);
        if (roadWork) {
            if (captionLittera < littera && littera < kBridgeLitteraStart) return j;
        } else if (captionLittera < littera || target.cell(j, h) == kRoadWorksCaption ||
                   (!littera.isEmpty() && littera < kBridgeLitteraStart)) {
            return j;
        }
    }
    return n + 1;
}

// ---------------------------------------------------------------- blank-row formatting

namespace {

// The class of the row below the gap being counted.
enum State { CaptionWithLittera = 0, CaptionWithoutLittera = 1, Subcaption = 2, Entry = 3, Remark = 4 };

// What the formatting changes: blank rows to insert below each row ([0]: at the top) and the
// blank rows that go.
struct BlankRowPlan {
    std::vector<int> insertAfter;
    std::vector<char> removed;
    bool changed = false;
};

// Setting k of the blank lines, a negative one read as none.
int blankRows(const BlankLines& blankLines, int k) {
    return std::max(blankLines[k], 0);
}

// The blank rows wanted below a caption, a subcaption or an entry, by the class of the row
// below the gap.
int blanksBelowCaption(int below, const BlankLines& blankLines) {
    if (below == CaptionWithLittera || below == Subcaption) return blankRows(blankLines, 0);
    if (below == CaptionWithoutLittera || below == Remark) return 0;
    return blankRows(blankLines, 1);
}

int blanksBelowSubcaption(int below, const BlankLines& blankLines) {
    if (below == CaptionWithLittera || below == CaptionWithoutLittera) return blankRows(blankLines, 3);
    if (below == Subcaption) return blankRows(blankLines, 4);
    if (below == Remark) return 0;
    return blankRows(blankLines, 1);
}

int blanksBelowEntry(int below, const BlankLines& blankLines) {
    if (below == CaptionWithLittera || below == CaptionWithoutLittera) return blankRows(blankLines, 3);
    if (below == Subcaption) return blankRows(blankLines, 4);
    return blankRows(blankLines, 2);
}

// The walk only decides; the rows are rebuilt afterwards in one pass. Walking upward, a
// change below row i never moves the rows above it, so deciding on the original rows gives
// what inserting and removing during the walk would.
BlankRowPlan planBlankRows(const ListModel& list, int first, int last, const BlankLines& blankLines) {
    const int n = list.rows();
    const int h = headingColumn(list);
    const bool quantity = groupOf(list) == ListGroup::Quantity;

    BlankRowPlan plan;
    plan.insertAfter.assign(n + 1, 0);
    plan.removed.assign(n + 1, 0);
    std::vector<int> gap; // blank rows of the current gap, bottom first

    // Brings the gap below row i to `wanted`: insertions go directly below row i, removals
    // take the gap's topmost blank rows, as removing at position i + 1 would.
    auto settle = [&](int i, int wanted) {
        const int difference = wanted - static_cast<int>(gap.size());
        if (difference > 0) {
            plan.insertAfter[i] = difference;
            plan.changed = true;
        } else if (difference < 0) {
            for (int k = 0; k < -difference; ++k)
                plan.removed[gap[gap.size() - 1 - k]] = 1;
            plan.changed = true;
        }
        gap.clear();
    };

    int state = Entry;
    for (int i = last; i >= first; --i) {
        const QStringView littera = list.cell(i, 1);
        const QStringView heading = list.cell(i, h);
        const bool hasLittera = !BlankString(littera);
        if (CapitalString(heading)) {
            settle(i, blanksBelowCaption(state, blankLines));
            state = hasLittera ? CaptionWithLittera : CaptionWithoutLittera;
        } else if (hasLittera && !BlankString(heading)) {
            settle(i, blanksBelowSubcaption(state, blankLines));
            state = Subcaption;
        } else if (hasLittera) {
            continue; // a littera without a heading: neither counted nor adjusted
        } else {
            const BlankInfo blank = BlankListItem(list, i);
            if (blank.blank) {
                gap.push_back(i);
                continue;
            }
            settle(i, blanksBelowEntry(state, blankLines));
            state = quantity && blank.firstNonBlankCol == list.lastDataCol() ? Remark : Entry;
        }
    }
    if (first == 1) settle(0, blankRows(blankLines, 5));
    return plan;
}

// The blank rows go and come in one pass. A removed selected row passes its selection on to
// the row after it (and that one on, if it goes too); the current row moves along the same way.
void applyBlankRows(ListModel& list, const BlankRowPlan& plan) {
    const int n = list.rows();
    std::vector<int> removeAt;
    std::vector<int> insertAt;
    std::vector<int> passTo;
    int placed = 0; // rows of the result so far
    for (int k = 0; k < plan.insertAfter[0]; ++k)
        insertAt.push_back(++placed);
    bool passSelection = false;
    bool passCurrent = false;
    int newCurrent = 0;
    for (int i = 1; i <= n; ++i) {
        if (plan.removed[i]) {
            removeAt.push_back(i);
            passSelection = passSelection || list.isSelected(i);
            passCurrent = passCurrent || i == list.currentRow();
            continue;
        }
        ++placed;
        if (passSelection) passTo.push_back(placed);
        if (passCurrent || i == list.currentRow()) newCurrent = placed;
        passSelection = passCurrent = false;
        for (int k = 0; k < plan.insertAfter[i]; ++k)
            insertAt.push_back(++placed);
    }
    // Every new blank row shares one block of empty cells until it is edited.
    Row blank;
    blank.cells.resize(list.cols());
    list.spliceRows(removeAt, insertAt, std::vector<Row>(insertAt.size(), blank));
    for (int r : passTo)
        list.setSelected(r, true);
    list.setCurrentRow(newCurrent);
}

} // namespace

bool FormatListView(ListModel& list, int first, int last, const BlankLines& blankLines) {
    const int n = list.rows();
    if (last <= 0 || last > n) last = n;
    first = std::max(first, 1);
    const BlankRowPlan plan = planBlankRows(list, first, last, blankLines);
    if (!plan.changed) return false;
    applyBlankRows(list, plan);
    return true;
}

std::array<QString, 3> CaptionStatusTexts(const ListModel& list, int row) {
    std::array<QString, 3> out;
    const CaptionInfo c = FindCaption(list, row);
    auto join = [](int r, const QString& a, const QString& b) {
        QStringList parts{QString::number(r)};
        if (!a.trimmed().isEmpty()) parts << a.trimmed();
        if (!b.trimmed().isEmpty()) parts << b.trimmed();
        return parts.join(QLatin1Char(' '));
    };
    if (c.captionRow > 0) out[0] = join(c.captionRow, c.captionLittera, c.captionText);
    if (c.subcaptionRow > 0) out[1] = join(c.subcaptionRow, c.subcaptionLittera, c.subcaptionText);
    if (c.entryRow > 0) {
        out[2] = QString::number(c.entryRow) + QLatin1Char(' ') + c.detailText.trimmed();
        if (!c.entryText.trimmed().isEmpty()) out[2] += QStringLiteral(": ") + c.entryText.trimmed();
    }
    for (QString& t : out)
        t.replace(QLatin1String("\r\n"), QLatin1String(" "));
    return out;
}

} // namespace lists
