#include "lists/ListSort.h"

#include <QCollator>
#include <QHash>
#include <QLocale>
#include <algorithm>
#include <numeric>

namespace lists {

namespace {

// Collation keys are made for this many texts at a time: a key takes about as much memory as
// its row, so keys for a whole large list at once would double the list's memory while it sorts.
constexpr std::size_t kKeysAtOnce = 16384;

// The distinct texts of a column, found with a hash of the texts: a column of units or
// types holds a few texts in many rows, and each distinct text is collated once.
struct TextGroups {
    std::vector<int> groupOfRow; // for each row (0-based), its text's group
    std::vector<int> firstRow;   // for each group, the 1-based row where its text first occurs
};

TextGroups groupTexts(const ListModel& list, int column) {
    const int n = list.rows();
    TextGroups g;
    g.groupOfRow.resize(static_cast<std::size_t>(n));
    std::size_t capacity = 16;
    while (capacity < 2 * static_cast<std::size_t>(n))
        capacity *= 2;
    const std::size_t mask = capacity - 1;
    std::vector<int> table(capacity, -1); // open addressing: a group per slot, -1 free
    for (int r = 1; r <= n; ++r) {
        const QStringView text = list.cell(r, column);
        std::size_t s = qHash(text) & mask;
        while (table[s] >= 0 && list.cell(g.firstRow[static_cast<std::size_t>(table[s])], column) != text)
            s = (s + 1) & mask;
        if (table[s] < 0) {
            table[s] = static_cast<int>(g.firstRow.size());
            g.firstRow.push_back(r);
        }
        g.groupOfRow[static_cast<std::size_t>(r - 1)] = table[s];
    }
    return g;
}

// For each group its rank in the collation order; groups whose texts collate alike (letters
// that differ in case only) share a rank. The groups are sorted by collation keys a chunk at a
// time, and the sorted chunks merged by comparing the texts themselves.
std::vector<int> collationRanks(const ListModel& list, int column, const std::vector<int>& firstRow) {
    QCollator collator{QLocale(QLocale::Finnish, QLocale::Finland)};
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    auto text = [&](int group) { return list.cell(firstRow[static_cast<std::size_t>(group)], column); };
    const std::size_t count = firstRow.size();
    std::vector<int> sorted(count);
    std::iota(sorted.begin(), sorted.end(), 0);
    for (std::size_t from = 0; from < count; from += kKeysAtOnce) {
        const std::size_t to = std::min(count, from + kKeysAtOnce);
        std::vector<QCollatorSortKey> keys;
        keys.reserve(to - from);
        for (std::size_t i = from; i < to; ++i)
            keys.push_back(collator.sortKey(text(static_cast<int>(i)).toString()));
        std::sort(sorted.begin() + static_cast<std::ptrdiff_t>(from),
                  sorted.begin() + static_cast<std::ptrdiff_t>(to), [&](int a, int b) {
                      return keys[static_cast<std::size_t>(a) - from].compare(
                                 keys[static_cast<std::size_t>(b) - from]) < 0;
                  });
    }
    auto before = [&](int a, int b) { return collator.compare(text(a), text(b)) < 0; };
    for (std::size_t width = kKeysAtOnce; width < count; width *= 2) {
        for (std::size_t from = 0; from + width < count; from += 2 * width) {
            const auto begin = sorted.begin() + static_cast<std::ptrdiff_t>(from);
            std::inplace_merge(
                begin, begin + static_cast<std::ptrdiff_t>(width),
                sorted.begin() + static_cast<std::ptrdiff_t>(std::min(count, from + 2 * width)), before);
        }
    }
    std::vector<int> rank(count);
    int r = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0 && collator.compare(text(sorted[i - 1]), text(sorted[i])) != 0) ++r;
        rank[static_cast<std::size_t>(sorted[i])] = r;
    }
    return rank;
}

// Row numbers are digit texts of five digits, six from row 100000 on: they go by their value,
// and a text that is not a number (a damaged file's) after all numbers, in plain text order.
// Each row's number is read once.
std::vector<int> rowNumberOrder(const ListModel& list) {
    constexpr qsizetype kLongestNumber = 18; // digits that fit a long long
    const int n = list.rows();
    std::vector<long long> value(static_cast<std::size_t>(n) + 1, -1);
    for (int r = 1; r <= n; ++r) {
        const QStringView t = list.rowNumberText(r);
        qsizetype zeros = 0;
        while (zeros + 1 < t.size() && t[zeros] == u'0')
            ++zeros;
        const bool number = !t.isEmpty() && t.size() - zeros <= kLongestNumber &&
                            std::all_of(t.begin(), t.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
        if (!number) continue;
        long long v = 0;
        for (const QChar c : t.mid(zeros))
            v = v * 10 + (c.unicode() - u'0');
        value[static_cast<std::size_t>(r)] = v;
    }
    std::vector<int> order(static_cast<std::size_t>(n));
    std::iota(order.begin(), order.end(), 1);
    std::stable_sort(order.begin(), order.end(), [&](int x, int y) {
        const long long a = value[static_cast<std::size_t>(x)], b = value[static_cast<std::size_t>(y)];
        if (a >= 0 && b >= 0) return a < b;
        if (a >= 0 || b >= 0) return a >= 0;
        return list.rowNumberText(x) < list.rowNumberText(y);
    });
    return order;
}

} // namespace

std::vector<int> SortedOrder(const ListModel& list, int keyColumn) {
    const int n = list.rows();
    std::vector<int> order(static_cast<std::size_t>(n));
    std::iota(order.begin(), order.end(), 1);
    if (n == 0 || keyColumn < 1 || keyColumn > list.cols()) return order;
    if (keyColumn == list.cols()) return rowNumberOrder(list);
    TextGroups groups = groupTexts(list, keyColumn);
    const std::vector<int> rank = collationRanks(list, keyColumn, groups.firstRow);
    groups.firstRow = {};
    // The rows by rank, each rank's rows in their own order: a counting sort, stable.
    std::vector<int> start(rank.size() + 1, 0);
    for (int g : groups.groupOfRow)
        ++start[static_cast<std::size_t>(rank[static_cast<std::size_t>(g)]) + 1];
    std::partial_sum(start.begin(), start.end(), start.begin());
    for (int r = 1; r <= n; ++r) {
        const int g = groups.groupOfRow[static_cast<std::size_t>(r - 1)];
        order[static_cast<std::size_t>(
            start[static_cast<std::size_t>(rank[static_cast<std::size_t>(g)])]++)] = r;
    }
    return order;
}

void SortByColumn(ListModel& list, int keyColumn) {
    if (list.rows() == 0 || keyColumn < 1 || keyColumn > list.cols()) return;
    list.reorder(SortedOrder(list, keyColumn));
}

} // namespace lists
