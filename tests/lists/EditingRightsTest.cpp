// The rights of the program modes over list editing, and storing typed text.
#include "EditingBuilders.h"
#include "common/ScriptedDialogs.h"
#include "lists/ListEditing.h"

#include <gtest/gtest.h>

using namespace lists;
using namespace lists_test;
using testing_support::ScriptedDialogs;

namespace {
const QString kDenyDesigner =
    QStringLiteral("Toiminto on sallittu ainoastaan\r\nurakoitsijalle ja tilaajalle");
const QString kDenyContractor =
    QStringLiteral("Toiminto on sallittu ainoastaan\r\nsuunnitelijalle ja tilaajalle");
const EditContext kContractor{2, 1, false};
} // namespace

TEST(EditRights, ShowDenySaysWhoMayByMode) {
    ScriptedDialogs dialogs;
    ShowDeny(1);
    ShowDeny(2);
    ShowDeny(3);
    ASSERT_EQ(dialogs.texts(), QStringList({kDenyDesigner, kDenyContractor}));
    EXPECT_EQ(dialogs.messages()[0].icon, platform::MsgIcon::Information);
}

TEST(EditRights, GoverningRowIsTheEntryElseSubcaptionElseCaption) {
    ListModel list;
    fillRequirements(list);
    // The rule FindCaption gives, row by row, against the one-pass rule of the selection check.
    for (int r = 1; r <= list.rows(); ++r) {
        const CaptionInfo c = FindCaption(list, r);
        const int expected = c.entryRow        ? c.entryRow
                             : c.subcaptionRow ? c.subcaptionRow
                             : c.captionRow    ? c.captionRow
                                               : r;
        EXPECT_EQ(GoverningRow(list, r), expected) << "row " << r;
    }
    EXPECT_EQ(GoverningRow(list, 4), 3) << "continuation of the type 2 requirement";
    EXPECT_EQ(GoverningRow(list, 5), 3) << "the blank row below it";
    EXPECT_EQ(GoverningRow(list, 7), 6);
}

TEST(EditRights, ContractorDeletesOnlyUnprotectedRequirements) {
    ScriptedDialogs dialogs;
    ListModel list;
    fillRequirements(list);

    selectRows(list, {5, 6, 7});
    EXPECT_TRUE(ListViewEditEnabled(list, action::DeleteRows, kContractor))
        << "a blank row and a type 3 requirement";
    EXPECT_TRUE(ListViewEditEnabled(list, action::DeleteSelection, kContractor));
    EXPECT_TRUE(ListViewEditEnabled(list, action::Cut, kContractor));
    EXPECT_TRUE(dialogs.texts().isEmpty());

    selectRows(list, {4, 5, 6});
    for (int code : {action::DeleteRows, action::Cut, action::DeleteSelection}) {
        dialogs.clear();
        EXPECT_FALSE(ListViewEditEnabled(list, code, kContractor))
            << "continuation of a type 2 requirement, code " << code;
        EXPECT_EQ(dialogs.texts(), QStringList{kDenyContractor});
    }
    selectRows(list, {5});
    EXPECT_TRUE(ListViewEditEnabled(list, action::DeleteRows, kContractor)) << "a blank row never counts";

    // Copying, inserting and appending stay allowed over protected rows.
    selectRows(list, {3, 9});
    EXPECT_TRUE(ListViewEditEnabled(list, action::Copy, kContractor));
    EXPECT_TRUE(ListViewEditEnabled(list, action::InsertRow, kContractor));
    EXPECT_TRUE(ListViewEditEnabled(list, action::AppendRow, kContractor));

    // The designer and the client may do anything; the same rows in a base list are free too.
    EXPECT_TRUE(ListViewEditEnabled(list, action::DeleteRows, EditContext{1, 1, false}));
    EXPECT_TRUE(ListViewEditEnabled(list, action::DeleteRows, EditContext{3, 1, false}));
    ListModel base;
    fillRequirements(base, kind::RequirementBase);
    selectRows(base, {3, 9});
    EXPECT_TRUE(ListViewEditEnabled(base, action::DeleteRows, EditContext{2, -1, false}));
}

TEST(EditRights, ContractorEditsAndPastesOnlyUnprotected) {
    ScriptedDialogs dialogs;
    ListModel list;
    fillRequirements(list);

    EXPECT_TRUE(ListViewEditEnabled(list, action::EditCell, kContractor, 7));
    EXPECT_FALSE(ListViewEditEnabled(list, action::EditCell, kContractor, 9)) << "type 1";
    EXPECT_TRUE(ListViewEditEnabled(list, action::EditCell, kContractor, 2)) << "a subcaption has no type";
    EXPECT_EQ(dialogs.texts(), QStringList{kDenyContractor});

    dialogs.clear();
    selectRows(list, {6});
    const QString advisory = "\t1\tUusi\t3\r";
    const QString bridgeSpecific = "\t1\tUusi\t3\r\t2\tToinen\t1 (Siltakohtainen)\r";
    EXPECT_TRUE(ListViewEditEnabled(list, action::Paste, kContractor, 0, advisory));
    EXPECT_FALSE(ListViewEditEnabled(list, action::Paste, kContractor, 0, bridgeSpecific));
    EXPECT_TRUE(ListViewEditEnabled(list, action::Paste, kContractor, 0, "a\tb\r1\t2\r"))
        << "two columns: no types";
    selectRows(list, {4});
    EXPECT_FALSE(ListViewEditEnabled(list, action::Paste, kContractor, 0, advisory))
        << "selected row governed by type 2";
    EXPECT_EQ(dialogs.texts().size(), 2);
}

TEST(EditRights, NoEditListAllowsCopyOnly) {
    ScriptedDialogs dialogs;
    ListModel list;
    fill(list, kind::QuantityList, quantityHeaders(), {{"7100", "YLEISET"}, {"", "Työ", "", "1", "m"}});
    list.setReadOnly(true);
    selectRows(list, {2});
    for (int code : {action::InsertRow, action::AppendRow, action::DeleteRows, action::Cut, action::Paste,
                     action::DeleteSelection, action::EditCell})
        EXPECT_FALSE(ListViewEditEnabled(list, code, EditContext{3, 0, false}, 2, "x")) << code;
    EXPECT_TRUE(ListViewEditEnabled(list, action::Copy, EditContext{3, 0, false}));
    EXPECT_TRUE(dialogs.texts().isEmpty()) << "the client is told nothing";

    EXPECT_FALSE(ListViewRowEdit(list, action::AppendRow, EditContext{1, 0, false}));
    EXPECT_EQ(list.rows(), 2);
    EXPECT_EQ(dialogs.texts(), QStringList{kDenyDesigner});
}

TEST(EditRights, EditableColumnsFollowTheRestriction) {
    ListModel quantity;
    fill(quantity, kind::QuantityList, quantityHeaders(), {});
    ListModel requirements;
    fillRequirements(requirements);
    auto range = [](const ListModel& l, EditContext c) {
        const EditableColumns e = EditableColumnRange(l, c);
        return std::pair(e.first, e.last);
    };
    EXPECT_EQ(range(quantity, {3, 0, false}), std::pair(1, 7));
    EXPECT_EQ(range(quantity, {3, 0, true}), std::pair(3, 4));
    EXPECT_EQ(range(requirements, {3, 1, true}), std::pair(6, 8));
    EXPECT_EQ(range(requirements, {3, -1, true}), std::pair(1, 8)) << "only the detailed data window's lists";
    EXPECT_EQ(RestrictedEntryColumn({3, 0, true}), 5);
    EXPECT_EQ(RestrictedEntryColumn({3, 1, true}), 2);
    EXPECT_EQ(RestrictedEntryColumn({3, 1, false}), 0);
}

TEST(StoringText, ContractorCannotTypeBridgeSpecificType) {
    ScriptedDialogs dialogs;
    ListModel list;
    fillRequirements(list);
    EXPECT_FALSE(PutToListView(list, 6, 4, "1", kContractor));
    EXPECT_EQ(list.cell(6, 4).toString(), "3");
    EXPECT_EQ(dialogs.texts(), QStringList{"Siltakohtaisia (tyyppi 1) laatuvaatimuksia\r\n"
                                           "voi lisätä ainoastaan suunnitelija ja tilaaja."});
    EXPECT_TRUE(PutToListView(list, 6, 4, "3 (Ohjeellinen)", kContractor));
    EXPECT_EQ(list.cell(6, 4).toString(), "3 (Ohjeellinen)");
    EXPECT_TRUE(PutToListView(list, 6, 3, "1 kerros  ", kContractor))
        << "other columns take anything, as typed";
    EXPECT_EQ(list.cell(6, 3).toString(), "1 kerros  ");
    EXPECT_TRUE(PutToListView(list, 6, 4, "1", EditContext{3, 1, false}));
    EXPECT_EQ(dialogs.texts().size(), 1);
    EXPECT_FALSE(PutToListView(list, 6, list.cols(), "99", kContractor)) << "never the row number";

    QString text = "abc   ";
    RemoveTrailingSpaces(text);
    EXPECT_EQ(text, "abc");
    text = "    ";
    RemoveTrailingSpaces(text);
    EXPECT_EQ(text, "");
}

TEST(StoringText, NextNonBlankSkipsContinuationAndBlankRows) {
    ListModel list;
    fillRequirements(list);
    EXPECT_EQ(NextNonBlank(list, 2, +1, 3), 3) << "from row 3 to row 6";
    EXPECT_EQ(NextNonBlank(list, 2, -1, 9), -3);
    EXPECT_EQ(NextNonBlank(list, 2, +1, 10), 0);
    EXPECT_EQ(NextNonBlank(list, 2, -1, 3), 0);
}
