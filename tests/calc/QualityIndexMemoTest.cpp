// The quality index remembers per row what it read from the row's texts. Whatever a user does
// to the list, a run must give what a run over a fresh copy of the texts gives.
#include "calc/QualityIndex.h"

#include "calc/CalcLists.h"
#include "documents/RowCard.h"
#include "lists/EditHistory.h"
#include "lists/ListEditing.h"
#include "lists/ListFiles.h"
#include "lists/ListJournal.h"
#include "lists/ListProcedures.h"
#include "lists/ListStep.h"

#include <QTemporaryDir>
#include <bit>
#include <functional>
#include <gtest/gtest.h>

using namespace calc;
using namespace calc_test;

namespace {

const QString kHalf = QStringLiteral("0,5 (virhe vaikuttaa osittain)");

// Two work phases with sub-phases; every type and result; a failed requirement with a negative
// factor and figures past single precision among them.
std::vector<QStringList> requirementRows() {
    return {
        requirement("1", "Ennen ensimmäistä otsikkoa", kType1, "2", kYes),
        caption("7110", "KAIVUT JA PENGERTYÖT"),
        requirement("1", "Kaivutaso", kType1, "4", kNo, kHalf),
        requirement("2", "Tiiviys", kType2, "6", kYes),
        requirement("3", "Routaeristys", kType3, "9", kNo),
        caption("7110.1", "Kaivutason tarkastus"),
        requirement("4", "Korkeus", kType2, "3", kNo, "-0,25"),
        requirement("", "jatkuu", kType1, "5", kYes),
        requirement("5", "Kaltevuus", kType1, "1e39", kNo, "0"),
        requirement("6", "Leveys", kType2, "7", QString(), kHalf),
        caption("7120", "PERUSTUKSET"),
        requirement("7", "Anturan mitat", kType1, "8", kNo, "1e40"),
        requirement("8", "Raudoitus", kType2, "5", kYes),
        requirement("9", "Betonointi", kType1, "2", kNo, "0,8"),
        requirement("10", "Pinta", kType3, "1", QString()),
    };
}

bool sameFloat(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

// Every field of the record, floats to the bit (a NaN sum equals itself).
void expectSameRecord(const QualityRecord& a, const QualityRecord& b) {
    EXPECT_EQ(a.checkedType1, b.checkedType1);
    EXPECT_EQ(a.checkedType2, b.checkedType2);
    EXPECT_EQ(a.checkedType3, b.checkedType3);
    EXPECT_EQ(a.countType1, b.countType1);
    EXPECT_EQ(a.countType2, b.countType2);
    EXPECT_EQ(a.countType3, b.countType3);
    EXPECT_TRUE(sameFloat(a.qualityNumber, b.qualityNumber)) << a.qualityNumber << " " << b.qualityNumber;
    EXPECT_TRUE(sameFloat(a.totalMax, b.totalMax)) << a.totalMax << " " << b.totalMax;
    EXPECT_TRUE(sameFloat(a.totalRealized, b.totalRealized)) << a.totalRealized << " " << b.totalRealized;
    EXPECT_EQ(a.groupLittera.toVector(), b.groupLittera.toVector());
    EXPECT_EQ(a.groupText.toVector(), b.groupText.toVector());
    ASSERT_EQ(a.groupMax.size(), b.groupMax.size());
    ASSERT_EQ(a.groupRealized.size(), b.groupRealized.size());
    for (size_t g = 0; g < a.groupMax.size(); ++g) {
        EXPECT_TRUE(sameFloat(a.groupMax[g], b.groupMax[g])) << "group " << g;
        EXPECT_TRUE(sameFloat(a.groupRealized[g], b.groupRealized[g])) << "group " << g;
    }
    EXPECT_EQ(a.groupCount, b.groupCount);
    EXPECT_EQ(a.longestGroupText, b.longestGroupText);
}

// A run over a new list made from copies of the texts: nothing remembered from earlier runs.
QualityRecord freshRun(const lists::ListModel& list) {
    std::vector<lists::Row> rows;
    for (const lists::Row& row : list.allRows())
        rows.push_back({lists::RowCells(row.cells.toStringList()), QString(), false});
    lists::ListModel copy;
    copy.reset(list.columns(), std::move(rows));
    return CalculateQualityIndex(copy);
}

QString summaryOf(const QualityRecord& record) {
    return MakeSummaryText(record, QStringLiteral("silta.sl"), QDateTime(QDate(2024, 1, 2), QTime(3, 4)));
}

// The same list with finite figures, so that every change shows in the summary.
std::vector<QStringList> finiteRows() {
    std::vector<QStringList> rows = requirementRows();
    rows[8][10] = QStringLiteral("3");
    rows[11][23] = QStringLiteral("0,4");
    return rows;
}

struct Change {
    const char* name;
    std::function<bool(lists::ListModel&)> run;
};

} // namespace

TEST(QualityIndexMemo, RunsOverUnusualFiguresGiveTheFirstRunsResult) {
    lists::ListModel list;
    calc_test::fillRequirementList(list, requirementRows());
    const QualityRecord first = CalculateQualityIndex(list);
    // The weight past single precision makes the sums infinite, and its failed factor of 0 a
    // NaN: the remembered rows must give the same figures bit for bit.
    EXPECT_TRUE(std::isnan(first.totalRealized));
    expectSameRecord(CalculateQualityIndex(list), first);
    expectSameRecord(CalculateQualityIndex(list), freshRun(list));
}

// Each way a user changes the requirement list, after a run that left its memos: the next run,
// and the runs after undo and redo, equal a run over fresh copies of the texts.
TEST(QualityIndexMemo, EveryChangeOfTheTextsIsSeenByTheNextRun) {
    using namespace lists;
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const EditContext client{3, -1, false};
    const QString saved = dir.filePath(QStringLiteral("toinen.sl2"));
    {
        ListModel other;
        std::vector<QStringList> rows = finiteRows();
        rows[2][20] = kYes;                  // the first phase's failed requirement met
        rows[12][10] = QStringLiteral("50"); // and another weight
        calc_test::fillRequirementList(other, rows);
        ASSERT_TRUE(SaveListView(other, saved));
    }
    const auto card = [](ListModel& l, int row, int column, const QString& text) {
        const std::vector<documents::CardField> fields = documents::CardFields(l);
        QStringList texts, combos;
        for (const documents::CardField& f : fields) {
            QStringList& into = f.longText ? texts : combos;
            while (into.size() <= f.index)
                into.append(QString());
            into[f.index] = f.column == column ? text : l.cell(row, f.column).toString();
        }
        return documents::WriteCardToRow(l, row, fields, texts, combos);
    };

    const std::vector<Change> changes = {
        // Same length: written into the row's block in place.
        {"cell edit of the same length",
         [&](ListModel& l) { return PutToListView(l, 3, 4, kType2, client); }},
        {"cell edit of the weight", [&](ListModel& l) { return PutToListView(l, 13, 11, "15", client); }},
        {"cell edit of the result", [&](ListModel& l) { return PutToListView(l, 4, 21, kNo, client); }},
        {"cell edit of the factor", [&](ListModel& l) { return PutToListView(l, 3, 24, "0,9", client); }},
        // A caption keeps its row; the runs before and after share no caption table.
        {"cell edit of a caption's text, same length",
         [&](ListModel& l) {
             return PutToListView(l, 2, 3, QString::fromUtf8("KAIVUT JA PENGERTYÖX"), client);
         }},
        {"cell edit of a caption's littera",
         [&](ListModel& l) { return PutToListView(l, 2, 1, "7119", client); }},
        {"cell edit making a caption", [&](ListModel& l) { return PutToListView(l, 13, 1, "7130", client); }},
        {"insert rows",
         [&](ListModel& l) {
             l.selectRows({3, 12});
             // The new empty row 3 becomes a requirement.
             return ListViewRowEdit(l, action::InsertRow, client) && PutToListView(l, 3, 2, "11", client) &&
                    PutToListView(l, 3, 4, kType1, client) && PutToListView(l, 3, 11, "5", client);
         }},
        {"delete rows",
         [&](ListModel& l) {
             l.selectRows({2, 7, 13});
             return ListViewRowEdit(l, action::DeleteRows, client);
         }},
        {"clear cells",
         [&](ListModel& l) {
             l.selectRows({4, 14});
             return ListViewCutCopyDelSelection(l, 3, client);
         }},
        {"paste over rows",
         [&](ListModel& l) {
             l.selectOnly(3);
             return PasteText(
                 l,
                 "\t1\tKaivutaso\t2 (KLVn mukainen)\t\t\t\t\t\t\t7\t\t\t\t\t\t\t\t\t\tEi\t\t\t0,25\r"
                 "7111\t\tUUSI VAIHE\r",
                 client);
         }},
        {"sort by the weight",
         [](ListModel& l) {
             SortByColumn(l, 11);
             return true;
         }},
        {"reading a file", [&](ListModel& l) { return InitListView(l, saved, ";"); }},
        {"row editor", [&](ListModel& l) { return card(l, 14, 11, QStringLiteral("12")); }},
        {"row editor checking a requirement", [&](ListModel& l) { return card(l, 10, 21, kYes); }},
    };

    for (const Change& c : changes) {
        SCOPED_TRACE(c.name);
        EditHistory history;
        ListModel list;
        calc_test::fillRequirementList(list, finiteRows());
        list.setHistory(&history);
        const QualityRecord before = CalculateQualityIndex(list);
        {
            ListStep recorded(list, QStringLiteral("muutos"));
            ASSERT_TRUE(c.run(list));
        }
        const QualityRecord after = CalculateQualityIndex(list);
        ASSERT_NE(summaryOf(after), summaryOf(before)) << "the change does not show in the summary";
        expectSameRecord(after, freshRun(list));
        for (int round = 0; round < 2; ++round) {
            ASSERT_TRUE(history.undo(3));
            expectSameRecord(CalculateQualityIndex(list), before);
            ASSERT_TRUE(history.redo(3));
            expectSameRecord(CalculateQualityIndex(list), after);
        }
    }
}

// A record shares its caption texts with the list's rows: it keeps them when the rows change
// or go after the run, and the list's changes do not reach it.
TEST(QualityIndexMemo, ARecordKeepsItsCaptionsWhenTheListChangesAfterTheRun) {
    lists::ListModel list;
    calc_test::fillRequirementList(list, requirementRows());
    const QualityRecord record = CalculateQualityIndex(list);
    const std::vector<QString> texts{"", "KAIVUT JA PENGERTYÖT", "Kaivutason tarkastus", "PERUSTUKSET"};
    const std::vector<QString> litteras{"", "7110", "7110.1", "7120"};
    ASSERT_EQ(record.groupText.toVector(), texts);

    list.setCell(2, 3, QStringLiteral("KAIVUT JA PENGERTYÖX")); // same length: written in place
    list.setCell(6, 1, QStringLiteral(""));
    list.removeRowsAt(11, 1);
    EXPECT_EQ(record.groupText.toVector(), texts);
    EXPECT_EQ(record.groupLittera.toVector(), litteras);
    list.clearRows();
    EXPECT_EQ(record.groupText.toVector(), texts);
    EXPECT_EQ(record.groupLittera.toVector(), litteras);
    EXPECT_EQ(record.groupLittera[0], QString());
}
