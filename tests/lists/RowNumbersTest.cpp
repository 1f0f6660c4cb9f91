// Row numbers: insertion, appending, gaps left by removals, and batch insertion.
#include "ListBuilders.h"

#include <gtest/gtest.h>

#include <random>

using namespace lists;
using lists_test::fill;
using lists_test::rowNumbers;

namespace {

ListModel& numbered(ListModel& list, const QStringList& numbers) {
    std::vector<QStringList> rows;
    for (const QString& n : numbers)
        rows.push_back({n});
    fill(list, kind::QuantityList, {"LITTERA", "TYÖVAIHE"}, rows);
    for (int r = 1; r <= list.rows(); ++r)
        list.setCell(r, list.cols(), numbers[r - 1]);
    return list;
}

} // namespace

TEST(RowNumbers, InsertAndAppend) {
    ListModel empty;
    fill(empty, kind::QuantityList, {"LITTERA", "TYÖVAIHE"}, {});
    EXPECT_EQ(CurrentRowNumber(empty, 1), 1);
    AddListViewRow(empty, 1, true);
    EXPECT_EQ(rowNumbers(empty), QStringList{"00001"});

    // Inserting at 3 of 1..5: the new row takes 3, the old 3, 4, 5 move up.
    ListModel list;
    numbered(list, {"00001", "00002", "00003", "00004", "00005"});
    list.setCell(3, 1, "old third");
    EXPECT_EQ(AddListViewRow(list, 3, true), 3);
    EXPECT_EQ(rowNumbers(list), (QStringList{"00001", "00002", "00003", "00004", "00005", "00006"}));
    EXPECT_EQ(list.cell(3, 1).toString(), "");
    EXPECT_EQ(list.cell(4, 1).toString(), "old third");

    // Appending after "00007" gives "00008" and leaves the old last row alone.
    numbered(list, {"00005", "00006", "00007"});
    AddListViewRow(list, list.rows() + 1, true);
    EXPECT_EQ(rowNumbers(list), (QStringList{"00005", "00006", "00007", "00008"}));

    // A list sorted by another column appends after its largest number, not its last one.
    numbered(list, {"00003", "00001", "00002"});
    EXPECT_EQ(CurrentRowNumber(list, 4), 4);
}

TEST(RowNumbers, GapsAndEmptyNumbers) {
    // Removed rows leave gaps; an insertion moves up only the numbers from its own on.
    ListModel list;
    numbered(list, {"00001", "00002", "00005", "00009"});
    AddListViewRow(list, 3, true);
    EXPECT_EQ(rowNumbers(list), (QStringList{"00001", "00002", "00005", "00006", "00010"}));

    // Blank rows of the formatting have no number; the next numbering gives them its number.
    numbered(list, {"00001", "", "00002", "00003"});
    AddListViewRow(list, 4, false);
    EXPECT_EQ(rowNumbers(list), (QStringList{"00001", "", "00002", "", "00003"}));
    AddListViewRow(list, 3, true);
    EXPECT_EQ(rowNumbers(list), (QStringList{"00001", "00002", "00002", "00003", "00002", "00004"}));
}

TEST(RowNumbers, BatchInsertionNumbersAsOneByOne) {
    // Random lists with gaps, empty numbers and shuffled order: inserting k rows in one step
    // must number every row exactly as k single insertions at the same position.
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const int n = static_cast<int>(random() % 8);
        QStringList numbers;
        for (int i = 0; i < n; ++i)
            numbers.append(random() % 4 == 0 ? QString() : formatRowNumber(1 + random() % 12));
        const int position = 1 + static_cast<int>(random() % (n + 1)); // n + 1 appends
        const int k = 1 + static_cast<int>(random() % 4);

        ListModel single;
        numbered(single, numbers);
        for (int i = k; i >= 1; --i) {
            const int at = AddListViewRow(single, position, true);
            single.setCell(at, 1, QString::number(i));
        }
        ListModel batch;
        numbered(batch, numbers);
        std::vector<Row> rows(k);
        for (int i = 0; i < k; ++i)
            rows[i].cells = QStringList{QString::number(i + 1)};
        InsertListViewRows(batch, position, rows, true);

        ASSERT_EQ(rowNumbers(batch), rowNumbers(single))
            << "numbers " << numbers.join(',').toStdString() << " position " << position << " k " << k;
        ASSERT_EQ(lists_test::columnTexts(batch, 1), lists_test::columnTexts(single, 1));
    }
}
