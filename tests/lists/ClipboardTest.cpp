// Cut, copy, paste and delete of list rows through the clipboard's plain text.
#include "EditingBuilders.h"
#include "common/ScriptedDialogs.h"
#include "lists/ListEditing.h"

#include <QClipboard>
#include <QGuiApplication>
#include <gtest/gtest.h>

using namespace lists;
using namespace lists_test;
using testing_support::ScriptedDialogs;

namespace {

const EditContext kClient{3, -1, false};
const QString kBadRange = QStringLiteral("Virheellinen alue. Liitä toiminto keskeytty.");

void fillThreeColumns(ListModel& list, const std::vector<QStringList>& rows) {
    fill(list, kind::UnitPriceList, {"LITTERA", "TYÖVAIHE", "YKSIKKÖ"}, rows);
}

QString clipboardText() {
    return QGuiApplication::clipboard()->text();
}

} // namespace

TEST(ClipboardText, SizeAndCells) {
    QString text = "a\tb\tc\rd\te\tf\r";
    ClipDimensions size = ClipSize(text);
    EXPECT_EQ(size.rows, 2);
    EXPECT_EQ(size.columns, 3);
    EXPECT_EQ(ParseClipData(text, 2, 2, 3), "e");
    EXPECT_EQ(ParseClipData(text, 3, 1, 3), "") << "beyond the text";

    // A spreadsheet's CR LF line ends, with and without the last one; LF alone as well.
    for (QString t : {QString("1\t2\r\n3\t4\r\n5\t6\r\n"), QString("1\t2\r\n3\t4\r\n5\t6"),
                      QString("1\t2\n3\t4\n5\t6\n")}) {
        size = ClipSize(t);
        EXPECT_EQ(size.rows, 3) << t.toStdString();
        EXPECT_EQ(size.columns, 2);
        EXPECT_FALSE(t.contains('\n')) << "line ends are read as CR";
        EXPECT_EQ(ParseClipData(t, 3, 2, 2), "6");
    }
    // Columns are cells per row rounded to the nearest, halves to even: 5 cells in 2 rows -> 2.
    text = "a\tb\tc\rd\te";
    EXPECT_EQ(ClipSize(text).columns, 2);
    text = "a\tb\tc\td\re\tf\tg";
    EXPECT_EQ(ClipSize(text).columns, 4) << "7 cells in 2 rows";

    EXPECT_EQ(EncodeClipCell(u"rivi\r\ntoinen\tsarake"),
              QString("rivi") + QChar(1) + "toinen" + QChar(2) + "sarake");
    EXPECT_EQ(DecodeClipCell(EncodeClipCell(u"rivi\r\ntoinen\tsarake")), "rivi\r\ntoinen\tsarake");
}

TEST(ClipboardCopy, TwoRowsAsTabsAndCarriageReturns) {
    ListModel list;
    fillThreeColumns(list,
                     {{"7100", "YLEISET", ""}, {"", "Muotti", "m2"}, {"", "Raudoitus\r\nsidottu", "kg"}});
    selectRows(list, {2, 3});
    EXPECT_FALSE(ListViewCutCopyDelSelection(list, 1, kClient)) << "copying changes nothing";
    EXPECT_EQ(clipboardText(), QString("\tMuotti\tm2\r\tRaudoitus") + QChar(1) + "sidottu\tkg\r");

    // Pasted above a selected row: the line break comes back inside its cell.
    ListModel target;
    fillThreeColumns(target, {{"1"}, {"2"}});
    selectRows(target, {2});
    ASSERT_TRUE(PasteSelection(target, kClient));
    EXPECT_EQ(dataRows(target),
              (std::vector<QStringList>{
                  {"1", "", ""}, {"", "Muotti", "m2"}, {"", "Raudoitus\r\nsidottu", "kg"}, {"2", "", ""}}));
    EXPECT_EQ(rowNumbers(target), QStringList({"00001", "00002", "00003", "00004"}));
    EXPECT_EQ(target.selectedRow(), 4) << "the selected row moved down below the pasted rows";
}

TEST(ClipboardPaste, SpreadsheetRowsWithCrLf) {
    ScriptedDialogs dialogs;
    ListModel list;
    fill(list, kind::QuantityList, quantityHeaders(), {{"7100", "YLEISET"}, {"", "Työ"}});
    selectRows(list, {2});
    ASSERT_TRUE(PasteText(list, "7101\tValmistelu\r\n\tTelineet\r\n\tSuojaus\r\n", kClient));
    EXPECT_EQ(columnTexts(list, 1), QStringList({"7100", "7101", "", "", ""}));
    EXPECT_EQ(columnTexts(list, 2), QStringList({"YLEISET", "Valmistelu", "Telineet", "Suojaus", "Työ"}));
    EXPECT_EQ(columnTexts(list, 3), QStringList({"", "", "", "", ""}));
    EXPECT_EQ(rowNumbers(list), QStringList({"00001", "00002", "00003", "00004", "00005"}));
    EXPECT_TRUE(dialogs.messages().empty());

    // As many cells as the list has columns with "Rivi": the row number is not taken.
    ListModel small;
    fillThreeColumns(small, {{"x"}});
    selectRows(small, {1});
    ASSERT_TRUE(PasteText(small, "a\tb\tc\t99999\r", kClient));
    EXPECT_EQ(small.row(1).cells, QStringList({"a", "b", "c", "00001"}));
    EXPECT_EQ(small.rowNumberText(2).toString(), "00002");
}

TEST(ClipboardPaste, BadRangeChangesNothing) {
    ScriptedDialogs dialogs;
    ListModel list;
    fillThreeColumns(list, {{"1"}, {"2"}});
    list.clearSelection();
    EXPECT_FALSE(PasteText(list, "a\tb\r", kClient));
    EXPECT_EQ(dialogs.texts(), QStringList{kBadRange});
    EXPECT_EQ(list.rows(), 2);

    selectRows(list, {1});
    dialogs.clear();
    EXPECT_FALSE(PasteText(list, "a\tb\tc\td\te\r", kClient)) << "more columns than the list";
    EXPECT_EQ(dialogs.texts(), QStringList{kBadRange});
    EXPECT_EQ(dataRows(list), (std::vector<QStringList>{{"1", "", ""}, {"2", "", ""}}));

    dialogs.clear();
    EXPECT_FALSE(PasteText(list, "", kClient)) << "an empty clipboard does nothing";
    EXPECT_TRUE(dialogs.messages().empty());
}

TEST(ClipboardCut, EmptiesTheRowsButKeepsThem) {
    ListModel list;
    fillThreeColumns(list, {{"7100", "YLEISET", ""}, {"", "Muotti", "m2"}, {"", "Valu", "m3"}});
    QGuiApplication::clipboard()->setText("vanha");
    selectRows(list, {2, 3});
    ASSERT_TRUE(ListViewCutCopyDelSelection(list, 0, kClient));
    EXPECT_EQ(clipboardText(), "\tMuotti\tm2\r\tValu\tm3\r");
    EXPECT_EQ(dataRows(list),
              (std::vector<QStringList>{{"7100", "YLEISET", ""}, {"", "", ""}, {"", "", ""}}));
    EXPECT_EQ(rowNumbers(list), QStringList({"00001", "00002", "00003"}));

    // Delete empties the same way and leaves the clipboard alone.
    selectRows(list, {1});
    ASSERT_TRUE(ListViewCutCopyDelSelection(list, 3, kClient));
    EXPECT_TRUE(BlankListItem(list, 1).blank);
    EXPECT_EQ(list.rows(), 3);
    EXPECT_EQ(clipboardText(), "\tMuotti\tm2\r\tValu\tm3\r");
}

TEST(ClipboardRights, ContractorAndReadOnlyLists) {
    ScriptedDialogs dialogs;
    const EditContext contractor{2, 1, false};
    ListModel list;
    fillRequirements(list);

    // Rows of a type 1 requirement cannot be pasted by the contractor.
    selectRows(list, {9});
    ASSERT_FALSE(ListViewCutCopyDelSelection(list, 1, contractor));
    selectRows(list, {10});
    EXPECT_FALSE(PasteSelection(list, contractor));
    EXPECT_EQ(dialogs.texts(),
              QStringList{"Toiminto on sallittu ainoastaan\r\nsuunnitelijalle ja tilaajalle"});
    EXPECT_EQ(list.rows(), 10);
    // The client may.
    EXPECT_TRUE(PasteSelection(list, EditContext{3, 1, false}));
    EXPECT_EQ(list.rows(), 11);
    EXPECT_EQ(list.cell(10, 3).toString(), "Betonin lujuus");

    // A read-only list gives its rows to the clipboard and takes nothing.
    dialogs.clear();
    ListModel readOnly;
    fillThreeColumns(readOnly, {{"1", "a"}, {"2", "b"}});
    readOnly.setReadOnly(true);
    selectRows(readOnly, {2});
    EXPECT_FALSE(ListViewCutCopyDelSelection(readOnly, 1, kClient));
    EXPECT_EQ(clipboardText(), "2\tb\t\r");
    EXPECT_FALSE(ListViewCutCopyDelSelection(readOnly, 0, kClient));
    EXPECT_FALSE(PasteSelection(readOnly, kClient));
    EXPECT_EQ(dataRows(readOnly), (std::vector<QStringList>{{"1", "a", ""}, {"2", "b", ""}}));
    EXPECT_TRUE(dialogs.messages().empty()) << "the client is told nothing";
}
