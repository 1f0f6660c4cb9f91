// Blank-row formatting: the counts between captions, subcaptions and entries, the top of the
// list, ranges, repeated runs and the selection of removed rows.
#include "ListBuilders.h"

#include <gtest/gtest.h>

using namespace lists;
using lists_test::fill;

namespace {

const QStringList B{""}; // a blank row

// A quantity list: captions with and without littera, subcaptions, entries with a
// continuation row and a remark row, and no blank rows.
std::vector<QStringList> compactRows() {
    return {
        {"7100", "SILTAPAIKAN POHJATYÖT"},     // caption
        {"7110", "Kaivannot"},                 // subcaption
        {"", "Kaivu", "", "120", "m3"},        // entry
        {"", "jatkoteksti"},                   // continuation
        {"", "Täyttö", "", "50", "m3"},        // entry
        {"7120", "PERUSTUKSET"},               // caption
        {"", "Anturat", "", "3", "kpl"},       // entry
        {"", "", "", "", "", "", "huomautus"}, // remark
        {"", "TIETYÖT SILTAPAIKALLA"},         // caption without littera
        {"2110", "Maaleikkaus"},               // subcaption
        {"", "Leikkaus", "", "10", "m3"},      // entry
    };
}

// Each row by its heading (or remark) text; blank rows as "".
QStringList shape(const ListModel& list) {
    QStringList out;
    for (int r = 1; r <= list.rows(); ++r)
        out.append(!BlankString(list.cell(r, 2).toString()) ? list.cell(r, 2).toString()
                                                            : list.cell(r, 7).toString());
    return out;
}

ListModel& quantity(ListModel& list, const std::vector<QStringList>& rows) {
    fill(list, kind::QuantityList, lists_test::quantityHeaders(), rows);
    return list;
}

const QStringList kDefaultShape{"SILTAPAIKAN POHJATYÖT",
                                "",
                                "Kaivannot",
                                "",
                                "Kaivu",
                                "jatkoteksti",
                                "Täyttö",
                                "",
                                "PERUSTUKSET",
                                "",
                                "Anturat",
                                "huomautus",
                                "",
                                "TIETYÖT SILTAPAIKALLA",
                                "",
                                "Maaleikkaus",
                                "",
                                "Leikkaus"};

} // namespace

TEST(FormatListView, AllCountsOne) {
    ListModel list;
    quantity(list, compactRows());
    EXPECT_TRUE(FormatListView(list, 1, 0, {1, 1, 1, 1, 1, 1}));
    // One blank row at the top and after every row, the end of the list included.
    QStringList expected{""};
    for (const QStringList& row : compactRows())
        expected << (BlankString(row[1]) ? row.value(6) : row[1]) << "";
    EXPECT_EQ(shape(list), expected);
    // The inserted blank rows have no row number; the others keep theirs.
    EXPECT_EQ(list.rowNumberText(1).toString(), "");
    EXPECT_EQ(list.rowNumberText(2).toString(), "00001");
    EXPECT_EQ(list.rowNumberText(3).toString(), "");

    const std::vector<QStringList> once = lists_test::dataRows(list);
    EXPECT_FALSE(FormatListView(list, 1, 0, {1, 1, 1, 1, 1, 1})) << "a second run changes nothing";
    EXPECT_EQ(lists_test::dataRows(list), once);
}

TEST(FormatListView, DefaultsKeepEntriesTogether) {
    ListModel list;
    quantity(list, compactRows());
    EXPECT_TRUE(FormatListView(list, 1, 0, kDefaultBlankLines));
    EXPECT_EQ(shape(list), kDefaultShape);
    EXPECT_FALSE(FormatListView(list, 1, 0, kDefaultBlankLines));

    // Too many blank rows everywhere, at the top and at the end come back to the same shape.
    std::vector<QStringList> loose;
    for (const QStringList& row : compactRows())
        loose.insert(loose.end(), {B, B, row, B});
    quantity(list, loose);
    EXPECT_TRUE(FormatListView(list, 1, 0, kDefaultBlankLines));
    EXPECT_EQ(shape(list), kDefaultShape);
}

TEST(FormatListView, RangeNotFromTheTop) {
    // Blank rows above the range and at the top stay as they are.
    std::vector<QStringList> rows{B, B, {"7000", "ALKU"}, B, B, B};
    for (const QStringList& row : compactRows())
        rows.push_back(row);
    ListModel list;
    quantity(list, rows);
    EXPECT_TRUE(FormatListView(list, 7, 0, kDefaultBlankLines));
    QStringList expected{"", "", "ALKU", "", "", ""};
    expected += kDefaultShape;
    EXPECT_EQ(shape(list), expected);

    // A range that ends early: the rows below it are not touched, and its last classified
    // row counts as followed by an entry.
    quantity(list, compactRows());
    list.insertRowsAt(9, std::vector<Row>(3)); // three blank rows between the remark and the road works
    EXPECT_TRUE(FormatListView(list, 1, 7, kDefaultBlankLines));
    EXPECT_EQ(shape(list).mid(8), (QStringList{"PERUSTUKSET", "", "Anturat", "huomautus", "", "", "",
                                               "TIETYÖT SILTAPAIKALLA", "Maaleikkaus", "Leikkaus"}));
}

TEST(FormatListView, RemovedSelectedRowPassesSelectionOn) {
    ListModel list;
    // Three blank rows between two entries of which none is wanted; the first is selected
    // and current: the selection moves down through the removed rows to the next entry.
    quantity(list, {{"7100", "SILTAPAIKAN POHJATYÖT"},
                    B,
                    {"", "Kaivu", "", "1", "m3"},
                    B,
                    B,
                    B,
                    {"", "Täyttö", "", "2", "m3"}});
    list.setSelected(4, true);
    list.setCurrentRow(4);
    list.setSelected(1, true);
    EXPECT_TRUE(FormatListView(list, 1, 0, kDefaultBlankLines));
    EXPECT_EQ(shape(list), (QStringList{"SILTAPAIKAN POHJATYÖT", "", "Kaivu", "Täyttö"}));
    EXPECT_EQ(list.selectedRows(), (std::vector<int>{1, 4}));
    EXPECT_EQ(list.currentRow(), 4);

    // Of three blank rows before a caption one stays: the selection of the topmost removed
    // row ends on the blank row that is kept.
    quantity(
        list,
        {{"", "Kaivu", "", "1", "m3"}, B, B, B, {"7120", "PERUSTUKSET"}, {"", "Anturat", "", "1", "m3"}});
    list.setSelected(2, true);
    FormatListView(list, 1, 0, kDefaultBlankLines);
    EXPECT_EQ(shape(list), (QStringList{"Kaivu", "", "PERUSTUKSET", "", "Anturat"}));
    EXPECT_EQ(list.selectedRows(), (std::vector<int>{2}));

    // A selected blank row at the end of the list has no row after it: the selection goes.
    quantity(list, {{"", "Kaivu", "", "1", "m3"}, B});
    list.setSelected(2, true);
    FormatListView(list, 1, 0, kDefaultBlankLines);
    EXPECT_EQ(list.rows(), 1);
    EXPECT_EQ(list.selectedCount(), 0);
}

TEST(FormatListView, RowsWithContentAreNeverRemoved) {
    // A littera without a heading is neither counted nor adjusted; the blank rows around it
    // are what goes.
    ListModel list;
    quantity(list, {{"", "Kaivu", "", "1", "m3"}, B, {"7111"}, B, {"", "Täyttö", "", "2", "m3"}});
    FormatListView(list, 1, 0, kDefaultBlankLines);
    EXPECT_EQ(lists_test::columnTexts(list, 1), (QStringList{"", "7111", ""}));
    EXPECT_EQ(shape(list), (QStringList{"Kaivu", "", "Täyttö"}));
}

TEST(FormatListView, QualityListAndTopCount) {
    // Quality lists read headings from column 3; BlankLines(5) blank rows at the top.
    ListModel list;
    fill(list, kind::Requirements, lists_test::qualityHeaders(),
         {{"7130", "", "PERUSTUKSET"}, {"", "1.1", "Anturat", "1"}, {"", "1.2", "Pilarit", "2"}});
    EXPECT_TRUE(FormatListView(list, 1, 0, {1, 1, 0, 1, 1, 2}));
    EXPECT_EQ(lists_test::columnTexts(list, 3),
              (QStringList{"", "", "PERUSTUKSET", "", "Anturat", "Pilarit"}));

    // An empty list formatted from the top gets its top blank rows too.
    fill(list, kind::Requirements, lists_test::qualityHeaders(), {});
    FormatListView(list, 1, 0, {1, 1, 0, 1, 1, 1});
    EXPECT_EQ(list.rows(), 1);
}
