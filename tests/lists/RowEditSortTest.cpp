// Inserting, appending and deleting rows, and sorting a list by a column.
#include "EditingBuilders.h"
#include "common/ScriptedDialogs.h"
#include "lists/ListEditing.h"

#include <gtest/gtest.h>

#include <QCollator>
#include <QLocale>
#include <numeric>
#include <random>

using namespace lists;
using namespace lists_test;
using platform::MsgAnswer;
using testing_support::ScriptedDialogs;

namespace {

const EditContext kClient{3, -1, false};

void fillNumbered(ListModel& list, int rows) {
    std::vector<QStringList> data;
    for (int r = 1; r <= rows; ++r)
        data.push_back({QString(), QStringLiteral("rivi %1").arg(r)});
    fill(list, kind::QuantityList, quantityHeaders(), data);
}

// Inserting before each selected row the way the rule is written: one row at a time, from the
// last selected row to the first, each renumbering the whole list.
void insertOneByOne(ListModel& list) {
    const std::vector<int> selected = list.selectedRows();
    for (auto it = selected.rbegin(); it != selected.rend(); ++it) {
        const long long number = rowNumberValue(list.rowNumberText(*it).toString());
        list.insertEmptyRow(*it);
        UpdateRowNumbers(list, number);
    }
}

} // namespace

TEST(RowEdit, InsertBeforeEachSelectedRow) {
    ListModel list;
    fillNumbered(list, 5);
    selectRows(list, {3});
    ASSERT_TRUE(ListViewRowEdit(list, action::InsertRow, kClient));
    EXPECT_EQ(rowNumbers(list), QStringList({"00001", "00002", "00003", "00004", "00005", "00006"}));
    EXPECT_EQ(columnTexts(list, 2), QStringList({"rivi 1", "rivi 2", "", "rivi 3", "rivi 4", "rivi 5"}));
    EXPECT_EQ(list.selectedRows(), std::vector<int>{3});

    selectRows(list, {6, 2, 4});
    ASSERT_TRUE(ListViewRowEdit(list, action::InsertRow, kClient));
    EXPECT_EQ(columnTexts(list, 2),
              QStringList({"rivi 1", "", "rivi 2", "", "", "rivi 3", "rivi 4", "", "rivi 5"}));
    EXPECT_EQ(rowNumbers(list),
              QStringList({"00001", "00002", "00003", "00004", "00005", "00006", "00007", "00008", "00009"}));
    EXPECT_EQ(list.selectedRows(), std::vector<int>{2}) << "only the new row at the topmost place";
    EXPECT_EQ(list.currentRow(), 2);
}

// The one-pass numbering must give exactly what the one-by-one insertions give, also in
// sorted lists, with gaps left by deletions, rows without a number and duplicate numbers.
TEST(RowEdit, InsertNumbersEqualOneByOneInsertions) {
    std::mt19937 random(20061);
    for (int trial = 0; trial < 400; ++trial) {
        const int n = 1 + static_cast<int>(random() % 30);
        std::vector<QStringList> data;
        std::vector<int> numbers(n);
        for (int i = 0; i < n; ++i)
            numbers[i] = 1 + i * (1 + static_cast<int>(random() % 2));
        std::shuffle(numbers.begin(), numbers.end(), random);
        ListModel a;
        fillNumbered(a, n);
        for (int r = 1; r <= n; ++r) {
            const int kindOfNumber = static_cast<int>(random() % 10);
            QString text = formatRowNumber(numbers[r - 1]);
            if (kindOfNumber == 0) text.clear();
            if (kindOfNumber == 1) text = QStringLiteral("00000");
            if (kindOfNumber == 2 && r > 1) text = a.rowNumberText(r - 1).toString();
            a.setCell(r, a.cols(), text);
        }
        a.clearSelection();
        for (int r = 1; r <= n; ++r)
            if (random() % 3 == 0) a.setSelected(r, true);
        if (a.selectedCount() == 0) a.setSelected(1 + static_cast<int>(random() % n), true);

        ListModel b;
        b.setKind(a.kind());
        b.reset(a.columns(), a.allRows());
        const QStringList before = rowNumbers(a);
        insertOneByOne(b);
        ASSERT_TRUE(ListViewRowEdit(a, action::InsertRow, kClient));
        ASSERT_EQ(rowNumbers(a), rowNumbers(b))
            << "trial " << trial << " before " << before.join(' ').toStdString();
        ASSERT_EQ(columnTexts(a, 2), columnTexts(b, 2));
    }
}

TEST(RowEdit, AppendTakesTheNextNumberAndSelectsTheRow) {
    ListModel list;
    fillNumbered(list, 7);
    selectRows(list, {2, 3});
    ASSERT_TRUE(ListViewRowEdit(list, action::AppendRow, kClient));
    ASSERT_EQ(list.rows(), 8);
    EXPECT_EQ(list.rowNumberText(7).toString(), "00007");
    EXPECT_EQ(list.rowNumberText(8).toString(), "00008");
    EXPECT_EQ(list.selectedRows(), std::vector<int>{8});
    EXPECT_TRUE(BlankListItem(list, 8).blank);

    ListModel empty;
    fill(empty, kind::Changes, {"NRO", "PVM", "MUUTOS", "TEKIJÄ"}, {});
    ASSERT_TRUE(ListViewRowEdit(empty, action::InsertRow, kClient)) << "inserting into an empty list appends";
    EXPECT_EQ(rowNumbers(empty), QStringList{"00001"});
}

TEST(RowEdit, DeleteKeepsNumbersAndSelectsTheNextRow) {
    ListModel list;
    fillNumbered(list, 6);
    selectRows(list, {2, 4});
    ASSERT_TRUE(ListViewRowEdit(list, action::DeleteRows, kClient));
    EXPECT_EQ(rowNumbers(list), QStringList({"00001", "00003", "00005", "00006"}));
    EXPECT_EQ(list.selectedRows(), std::vector<int>{2}) << "the row now where the first removed row was";

    selectRows(list, {3, 4});
    ASSERT_TRUE(ListViewRowEdit(list, action::DeleteRows, kClient));
    EXPECT_EQ(rowNumbers(list), QStringList({"00001", "00003"}));
    EXPECT_EQ(list.selectedRows(), std::vector<int>{2}) << "the last rows went: the new last row";

    list.selectAll();
    ASSERT_TRUE(ListViewRowEdit(list, action::DeleteRows, kClient));
    EXPECT_EQ(list.rows(), 0);
    EXPECT_FALSE(ListViewRowEdit(list, action::DeleteRows, kClient)) << "nothing to delete";
}

TEST(Sorting, OtherColumnsAskFirstAndSortFinnishWithoutCase) {
    ScriptedDialogs dialogs;
    ListModel list;
    const QStringList names{"b", "Ä", "a", "B", "z", "Å", "ö", "A", "aa"};
    std::vector<QStringList> data;
    for (const QString& n : names)
        data.push_back({QString(), n});
    fill(list, kind::UnitPriceList, unitPriceHeaders(), data);

    dialogs.answer(MsgAnswer::No);
    EXPECT_FALSE(SortItems(list, 2));
    EXPECT_EQ(columnTexts(list, 2), names);
    ASSERT_EQ(dialogs.messages().size(), 1u);
    const platform::MessageRequest& question = dialogs.messages()[0];
    EXPECT_EQ(question.text, "Toiminto järjestää rivit aakkosjärjestykseen valitun\r\n"
                             "sarakkeen mukaan. Alukuperäinen järjestys voidaan\r\n"
                             "palauttaa toistamalla toiminto ensimmäiselle sarakkeelle.\r\n"
                             "Haluatko jatkaa?");
    EXPECT_EQ(question.buttons, platform::MsgButtons::YesNo);
    EXPECT_EQ(question.defaultButton, MsgAnswer::No);

    dialogs.answer(MsgAnswer::Yes);
    EXPECT_TRUE(SortItems(list, 2));
    // Å, Ä and Ö come after Z; letters differing only in case keep their order.
    EXPECT_EQ(columnTexts(list, 2), QStringList({"a", "A", "aa", "b", "B", "z", "Å", "Ä", "ö"}));

    // Back by the first column: by row number, without a question.
    dialogs.clear();
    EXPECT_TRUE(SortItems(list, 1));
    EXPECT_TRUE(dialogs.messages().empty());
    EXPECT_EQ(columnTexts(list, 2), names);
    EXPECT_EQ(rowNumbers(list).first(), "00001");
}

TEST(Sorting, InsertionsAfterSortStayWhereTheyArePut) {
    ScriptedDialogs dialogs;
    ListModel list;
    fill(list, kind::QuantityList, quantityHeaders(), {{"", "c"}, {"", "a"}, {"", "b"}});
    dialogs.answer(MsgAnswer::Yes);
    ASSERT_TRUE(SortItems(list, 2));
    selectRows(list, {1});
    ASSERT_TRUE(ListViewRowEdit(list, action::AppendRow, kClient));
    EXPECT_EQ(columnTexts(list, 2), QStringList({"a", "b", "c", ""})) << "the list is not kept sorted";
    EXPECT_EQ(rowNumbers(list), QStringList({"00002", "00003", "00001", "00004"}));
    ASSERT_TRUE(SortItems(list, 1));
    EXPECT_EQ(columnTexts(list, 2), QStringList({"c", "a", "b", ""}));
}

// A large list is sorted a part at a time (its distinct texts collated in chunks that are then
// merged); the order must be the one a single stable sort by collation keys gives, for a column
// of many distinct texts, texts that differ only in case, repeated texts and empty cells.
TEST(Sorting, ALargeListSortsAsOneStableCollatedSortWould) {
    const QStringList syllables{"ka", "Kä", "lo", "ÖR", "vi", "wa", "ää", "Å", "-", " ", "1", "ZY", "é", "e"};
    std::mt19937 random(34);
    auto word = [&] {
        QString w;
        const int n = 1 + static_cast<int>(random() % 6);
        for (int i = 0; i < n; ++i)
            w += syllables[static_cast<int>(random() % syllables.size())];
        return w;
    };
    std::vector<QStringList> data;
    constexpr int kRows = 60000;
    for (int r = 0; r < kRows; ++r) {
        const unsigned pick = random() % 10;
        QString text = pick < 6   ? word() + QString::number(r) // distinct
                       : pick < 8 ? word()                      // likely repeated
                       : pick < 9 ? QString()
                                  : QStringLiteral("Yksikkö");
        if (random() % 4 == 0) text = text.toUpper();
        data.push_back({QString(), text});
    }
    ListModel list;
    fill(list, kind::QuantityList, quantityHeaders(), data);
    ASSERT_GT(list.rows(), 3 * 16384);

    QCollator collator{QLocale(QLocale::Finnish, QLocale::Finland)};
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<QCollatorSortKey> keys;
    for (int r = 1; r <= list.rows(); ++r)
        keys.push_back(collator.sortKey(list.cell(r, 2).toString()));
    std::vector<int> expected(static_cast<std::size_t>(list.rows()));
    std::iota(expected.begin(), expected.end(), 1);
    std::stable_sort(expected.begin(), expected.end(),
                     [&](int a, int b) { return keys[a - 1].compare(keys[b - 1]) < 0; });
    EXPECT_EQ(SortedOrder(list, 2), expected);

    // Sorted in place, every row goes where the order says, and back by "Rivi".
    const QStringList before = columnTexts(list, 2);
    SortByColumn(list, 2);
    QStringList after;
    for (int i : expected)
        after << before[i - 1];
    EXPECT_EQ(columnTexts(list, 2), after);
    SortByColumn(list, list.cols());
    EXPECT_EQ(columnTexts(list, 2), before);
    EXPECT_EQ(rowNumbers(list).last(), QStringLiteral("%1").arg(kRows, 5, 10, QLatin1Char('0')));
}

// From row 100000 on the row numbers have six digits; "Rivi" still puts them in their numeric
// order (not "100000" before "99999"), and texts that are not numbers go after them.
TEST(SortByColumn, RowNumbersOfSixDigitsSortByTheirValue) {
    ListModel list;
    fill(list, kind::QuantityList, quantityHeaders(),
         {{"", "a"}, {"", "b"}, {"", "c"}, {"", "d"}, {"", "e"}});
    const int rivi = list.cols();
    const QStringList numbers = {"100001", "x", "99999", "100000", "00002"};
    for (int r = 1; r <= list.rows(); ++r)
        list.setCell(r, rivi, numbers[r - 1]);
    EXPECT_EQ(SortedOrder(list, rivi), (std::vector<int>{5, 3, 4, 1, 2}));
    SortByColumn(list, rivi);
    EXPECT_EQ(columnTexts(list, 2), (QStringList{"e", "c", "d", "a", "b"}));
}
