// Undo steps over lists, without windows: every list operation recorded as a step gives back
// exactly the rows and cells it found and left, and the history's changed state follows its
// clean index.
#include "EditingBuilders.h"
#include "common/ScriptedDialogs.h"
#include "lists/EditHistory.h"
#include "lists/ListEditing.h"
#include "lists/ListStep.h"
#include "lists/ListProcedures.h"
#include "lists/Spreadsheet.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

using namespace lists;
using namespace lists_test;

namespace {

// Everything a step may change: the header texts and every cell with the row number.
struct Snapshot {
    QStringList headers;
    std::vector<QStringList> rows;
    bool operator==(const Snapshot&) const = default;
};

Snapshot snapshot(const ListModel& list) {
    Snapshot s;
    for (const Column& c : list.columns())
        s.headers << c.header;
    for (const Row& row : list.allRows())
        s.rows.push_back(row.cells.toStringList());
    return s;
}

void PrintTo(const Snapshot& s, std::ostream* os) {
    *os << s.rows.size() << " rows";
    for (const QStringList& row : s.rows)
        *os << "\n  " << row.join(QLatin1Char('|')).toStdString();
}

// A quantity list of 12 rows in two caption groups, with blank rows between entries.
void fillQuantities(ListModel& list) {
    fill(list, kind::QuantityList, quantityHeaders(),
         {
             {"7110", "KAIVANNOT"},
             {"7111", "Kaivannon pohja", "Tuki 1"},
             {"", "Kaivu", "Tuki 1", "12", "m3", "10,50"},
             {},
             {"", "Täyttö", "Tuki 2", "8", "m3", "7,00", "huom"},
             {},
             {"7120", "PERUSTUKSET"},
             {"7121", "Anturat"},
             {"", "Muotti", "T1", "40", "m2", "45,50"},
             {"", "jatko"},
             {"", "Raudoitus", "T1", "800", "kg", "1,20"},
             {"", "", "", "", "", "", "lopuksi"},
         });
}

void fillPrices(ListModel& list) {
    fill(list, kind::UnitPriceList, unitPriceHeaders(),
         {
             {"7170", "KANSIRAKENTEET"},
             {"7171", "Muotit"},
             {"", "Kansilaatan muotti", "m2", "40,00", "45,50", "52,00", "pinta"},
             {"", "Reunapalkin muotti", "m2", "50,00", "55,00", "61,00"},
         });
}

struct Case {
    const char* name;
    QString step;
    std::function<void(ListModel&)> prepare;
    std::function<bool(ListModel&)> run;
};

} // namespace

// Every list operation, recorded in a step: undo gives back exactly the list before, redo the
// list after, as many times as asked; the step carries the operation's name.
TEST(UndoSteps, EveryListOperationUndoesAndRedoesExactly) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    ListModel prices;
    fillPrices(prices);
    prices.selectRows({3, 4});
    const EditContext client{3, 0, false};
    const BlankLines blanks = kDefaultBlankLines;

    // A spreadsheet to import, written from a list of a different shape.
    ListModel sheetSource;
    fill(sheetSource, kind::QuantityList, quantityHeaders(),
         {{"7130", "PILARIT"}, {"", "Valu", "P1", "3", "m3", "150"}, {"", "Muotti", "P1", "20", "m2", "45"}});
    const QString sheet = dir.filePath(QStringLiteral("tuonti.xlsx"));
    ASSERT_TRUE(ExportListViewXlsx(sheetSource, sheet));

    const std::vector<Case> cases = {
        {"cell edit", step::CellEdit, [](ListModel& l) { l.selectOnly(3); },
         [&](ListModel& l) { return PutToListView(l, 3, 4, QStringLiteral("13,5"), client); }},
        {"insert before three rows", step::InsertRows,
         [](ListModel& l) {
             selectRows(l, {2, 5, 9});
         },
         [&](ListModel& l) { return ListViewRowEdit(l, action::InsertRow, client); }},
        {"append", step::InsertRows, [](ListModel& l) { l.selectOnly(2); },
         [&](ListModel& l) { return ListViewRowEdit(l, action::AppendRow, client); }},
        {"delete a block", step::DeleteRows,
         [](ListModel& l) {
             selectRows(l, {7, 8, 9, 10});
         },
         [&](ListModel& l) { return ListViewRowEdit(l, action::DeleteRows, client); }},
        {"delete scattered rows", step::DeleteRows,
         [](ListModel& l) {
             selectRows(l, {1, 4, 11});
         },
         [&](ListModel& l) { return ListViewRowEdit(l, action::DeleteRows, client); }},
        {"clear the selection", step::ClearCells,
         [](ListModel& l) {
             selectRows(l, {3, 5, 9});
         },
         [&](ListModel& l) { return ListViewCutCopyDelSelection(l, 3, client); }},
        {"paste many rows", step::Paste, [](ListModel& l) { l.selectOnly(6); },
         [&](ListModel& l) {
             return PasteText(l, QStringLiteral("\tA\tx\t1\r\tB\ty\t2\r\tC\tz\t3\r7199\tLOPPU\r"), client);
         }},
        {"sort by a column", step::Sort, [](ListModel&) {},
         [](ListModel& l) {
             SortByColumn(l, 3);
             return true;
         }},
        {"format blank rows", step::Format, [](ListModel& l) { l.selectOnly(5); },
         [&](ListModel& l) { return FormatListView(l, 1, 0, blanks); }},
        {"transfer with its formatting", step::Transfer, [](ListModel& l) { l.selectOnly(6); },
         [&](ListModel& l) {
             const TransferResult r = TransferData(l, prices, 5, 0, TransferOptions{3, 5});
             FormatListView(l, 1, 0, blanks);
             return r.changed;
         }},
        {"spreadsheet import", step::Import, [](ListModel&) {},
         [&](ListModel& l) { return ImportListViewXls(l, sheet); }},
        {"clear all rows", step::DeleteRows, [](ListModel&) {},
         [](ListModel& l) {
             l.clearRows();
             return true;
         }},
    };

    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EditHistory history;
        ListModel list;
        fillQuantities(list);
        list.setHistory(&history);
        c.prepare(list);
        const Snapshot before = snapshot(list);
        {
            ListStep recorded(list, c.step);
            ASSERT_TRUE(c.run(list));
        }
        const Snapshot after = snapshot(list);
        ASSERT_NE(before, after) << "the operation changed nothing";
        ASSERT_EQ(history.stack().count(), 1);
        EXPECT_EQ(history.undoText(), c.step);
        EXPECT_TRUE(history.dirty());
        for (int round = 0; round < 2; ++round) {
            ASSERT_TRUE(history.undo(3));
            EXPECT_EQ(snapshot(list), before);
            EXPECT_FALSE(history.dirty());
            ASSERT_TRUE(history.redo(3));
            EXPECT_EQ(snapshot(list), after);
            EXPECT_TRUE(history.dirty());
        }
    }
}

// Steps keep what they changed, not the list: a cell edit one cell, a paste its rows and a run
// for the renumbered rows, a deletion the rows it took; undo shows what came back selected.
TEST(UndoSteps, StepsHoldOnlyWhatChangedAndSelectWhatCameBack) {
    EditHistory history;
    ListModel list;
    std::vector<QStringList> rows;
    for (int i = 0; i < 1000; ++i)
        rows.push_back({QString(), QStringLiteral("Työ %1").arg(i), QStringLiteral("T"), QString::number(i)});
    fill(list, kind::QuantityList, quantityHeaders(), rows);
    list.setHistory(&history);

    {
        ListStep recorded(list, step::CellEdit);
        PutToListView(list, 500, 2, QStringLiteral("Uusi"), EditContext{});
    }
    const ListJournal* cell = journalOf(history.stack().command(0));
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->held().cells, 1u);
    EXPECT_EQ(cell->held().rows, 0u);

    list.selectOnly(300);
    {
        ListStep recorded(list, step::Paste);
        ASSERT_TRUE(PasteText(list, QStringLiteral("\ta\r\tb\r\tc\r\td\r\te\r"), EditContext{}));
    }
    const ListJournal* paste = journalOf(history.stack().command(1));
    ASSERT_NE(paste, nullptr);
    EXPECT_EQ(paste->held().rows, 5u);
    EXPECT_EQ(paste->held().cells, 0u);
    EXPECT_EQ(paste->held().runs, 1u) << "rows 300..1000 renumbered by one run";

    selectRows(list, {10, 11, 12, 600});
    {
        ListStep recorded(list, step::DeleteRows);
        ASSERT_TRUE(ListViewRowEdit(list, action::DeleteRows, EditContext{}));
    }
    EXPECT_EQ(journalOf(history.stack().command(2))->held().rows, 4u);

    list.selectOnly(1);
    ASSERT_TRUE(history.undo(3));
    EXPECT_EQ(list.selectedRows(), (std::vector<int>{10, 11, 12, 600}));
    EXPECT_EQ(list.currentRow(), 10);
    ASSERT_TRUE(history.undo(3));
    EXPECT_EQ(list.selectedRows(), std::vector<int>{300}) << "where the pasted rows were";
    ASSERT_TRUE(history.redo(3));
    EXPECT_EQ(list.selectedRows(), (std::vector<int>{300, 301, 302, 303, 304}));
    ASSERT_TRUE(history.undo(3));
    ASSERT_TRUE(history.undo(3));
    EXPECT_EQ(list.selectedRows(), std::vector<int>{500});
    EXPECT_EQ(list.cell(500, 2).toString(), QStringLiteral("Työ 499"));

    // A sort moves every row: the row the user was on is shown where it was and where it went.
    list.selectOnly(700);
    const QString onRow = list.cell(700, 2).toString();
    {
        ListStep recorded(list, step::Sort);
        SortByColumn(list, 2);
    }
    const int sortedAt = list.currentRow();
    ASSERT_NE(sortedAt, 700);
    ASSERT_EQ(list.cell(sortedAt, 2).toString(), onRow);
    list.selectOnly(1);
    ASSERT_TRUE(history.undo(3));
    EXPECT_EQ(list.selectedRows(), std::vector<int>{700});
    list.selectOnly(1);
    ASSERT_TRUE(history.redo(3));
    EXPECT_EQ(list.selectedRows(), std::vector<int>{sortedAt});
}

// The history's changed state: clean at the saved index whichever way it is reached, changed
// for good by a change it does not hold; saving keeps the steps.
TEST(UndoSteps, ChangedStateFollowsTheCleanIndex) {
    EditHistory history;
    QSignalSpy changes(&history, &EditHistory::dirtyChanged);
    ListModel list;
    fillQuantities(list);
    list.setHistory(&history);
    auto edit = [&](int row, const QString& text) {
        ListStep recorded(list, step::CellEdit);
        PutToListView(list, row, 2, text, EditContext{});
    };
    edit(3, QStringLiteral("a"));
    edit(3, QStringLiteral("b"));
    EXPECT_TRUE(history.dirty());
    history.markSaved();
    EXPECT_FALSE(history.dirty());
    EXPECT_EQ(history.stack().count(), 2) << "saving keeps the history";
    history.undo(3);
    EXPECT_TRUE(history.dirty());
    history.redo(3);
    EXPECT_FALSE(history.dirty());
    history.undo(3);
    history.undo(3);
    edit(5, QStringLiteral("c")); // the saved state can no longer be reached
    EXPECT_TRUE(history.dirty());
    history.undo(3);
    EXPECT_TRUE(history.dirty()) << "back at the first state, not the saved one";
    EXPECT_EQ(changes.count(), 5);

    // A change the history does not hold keeps the document changed until it is saved.
    history.markSaved();
    edit(4, QStringLiteral("d"));
    history.markUnrecorded();
    history.undo(3);
    EXPECT_TRUE(history.dirty());
    history.markSaved();
    EXPECT_FALSE(history.dirty());

    // A list changed outside any step: its steps would no longer fit, so they go.
    ASSERT_TRUE(history.canRedo());
    list.setCell(1, 2, QStringLiteral("ohi"));
    EXPECT_FALSE(history.canRedo());
    EXPECT_TRUE(history.dirty());
    // Nor does a change in a quiet history (a file being read) count, until it restarts.
    {
        EditHistory::Quiet quiet(&history);
        history.markSaved();
        list.setCell(1, 2, QStringLiteral("luettu"));
        EXPECT_FALSE(history.dirty());
    }
    history.restart(true);
    EXPECT_TRUE(history.dirty());
    EXPECT_FALSE(history.canUndo());
}

// At most the limit of steps is kept: the oldest go, and a saved state among them can no
// longer be reached. A new limit waits for an empty history.
TEST(UndoSteps, TheLimitDropsTheOldestSteps) {
    EditHistory history;
    history.setLimit(3);
    ListModel list;
    fillQuantities(list);
    list.setHistory(&history);
    history.markSaved();
    for (int i = 0; i < 5; ++i) {
        ListStep recorded(list, step::CellEdit);
        PutToListView(list, 3, 2, QString::number(i), EditContext{});
    }
    EXPECT_EQ(history.stack().count(), 3);
    while (history.undo(3)) {
    }
    EXPECT_EQ(list.cell(3, 2).toString(), QStringLiteral("1"));
    EXPECT_TRUE(history.dirty());
    history.setLimit(10);
    EXPECT_EQ(history.stack().undoLimit(), 3) << "steps are kept";
    history.restart(false);
    EXPECT_EQ(history.stack().undoLimit(), 10);
}

// A contractor may not undo what touches a bridge-specific or general requirement, nor may
// anybody undo a change of a list the program mode has made read-only; the refusal is the
// mode's own message and the step stays.
TEST(UndoSteps, ReadOnlyListsAndProtectedRequirementsRefuseUndo) {
    testing_support::ScriptedDialogs dialogs;
    EditHistory history;
    history.setProgramMode(1);
    ListModel list;
    fillRequirements(list);
    list.setHistory(&history);
    {
        ListStep recorded(list, step::CellEdit);
        PutToListView(list, 9, 6, QStringLiteral("K50"), EditContext{1, 1, false});
    }
    {
        ListStep recorded(list, step::CellEdit);
        PutToListView(list, 6, 6, QStringLiteral("12"), EditContext{1, 1, false});
    }
    EXPECT_TRUE(history.undo(2)) << "an advisory requirement is the contractor's to change";
    EXPECT_EQ(list.cell(6, 6).toString(), QStringLiteral("10"));
    EXPECT_FALSE(history.undo(2)) << "row 9 is a bridge-specific requirement";
    EXPECT_EQ(list.cell(9, 6).toString(), QStringLiteral("K50"));
    EXPECT_EQ(dialogs.lastText(),
              QStringLiteral("Toiminto on sallittu ainoastaan\r\nsuunnitelijalle ja tilaajalle"));
    EXPECT_TRUE(history.undo(1));
    EXPECT_EQ(list.cell(9, 6).toString(), QStringLiteral("K40"));
    list.setReadOnly(true);
    EXPECT_FALSE(history.redo(3));
    EXPECT_EQ(list.cell(9, 6).toString(), QStringLiteral("K40"));
    list.setReadOnly(false);
    EXPECT_TRUE(history.redo(3));
    EXPECT_EQ(list.cell(9, 6).toString(), QStringLiteral("K50"));

    // What the contractor did on such a row (an inspection mark) is the contractor's to undo.
    history.setProgramMode(2);
    {
        ListStep recorded(list, step::Inspection);
        list.setCell(9, 8, QStringLiteral("Kyllä"));
    }
    EXPECT_TRUE(history.undo(2));
    EXPECT_EQ(list.cell(9, 8).toString(), QString());
}

// Steps nest: an edit and the formatting it causes are one step; a list without a history
// records nothing.
TEST(UndoSteps, NestedStepsAreOneAndListsWithoutHistoryRecordNothing) {
    EditHistory history;
    ListModel list;
    fillQuantities(list);
    list.setHistory(&history);
    const Snapshot before = snapshot(list);
    {
        ListStep outer(list, step::UpdateRow);
        {
            ListStep inner(list, step::CellEdit);
            list.setCell(3, 2, QStringLiteral("Kaivu ja lajittelu"));
        }
        FormatListView(list, 1, 0, {2, 2, 1, 1, 1, 0});
    }
    ASSERT_EQ(history.stack().count(), 1);
    EXPECT_EQ(history.undoText(), step::UpdateRow);
    history.undo(3);
    EXPECT_EQ(snapshot(list), before);

    ListModel loose;
    fillQuantities(loose);
    ListStep recorded(loose, step::CellEdit);
    loose.setCell(1, 1, QStringLiteral("x"));
    EXPECT_EQ(loose.cell(1, 1).toString(), QStringLiteral("x"));
}
