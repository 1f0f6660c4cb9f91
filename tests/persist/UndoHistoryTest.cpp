// The steps over window fields and pictures, and a project's whole history without windows:
// long random sequences of every kind of step, undone to the start, give the file that was
// saved before them byte for byte, and every state between comes back as it was.
#include "common/ListHeaders.h"
#include "lists/EditHistory.h"
#include "lists/ListEditing.h"
#include "lists/ListFiles.h"
#include "lists/ListStep.h"
#include "lists/ListProcedures.h"
#include "persist/ProjectText.h"
#include "persist/RecordSteps.h"
#include "persist/SlContainer.h"

#include <QImage>
#include <gtest/gtest.h>
#include <map>
#include <random>

using namespace persist;
using lists::EditHistory;
using lists::ListModel;
using Kind = FieldRef::Kind;

namespace {

// The fields of a window without widgets.
class FakeRecord : public RecordFields {
public:
    QStringList texts = QStringList(12);
    QStringList combos = QStringList(18);
    QStringList checks = {QStringLiteral("0"), QStringLiteral("0")};
    std::array<platform::Picture, 6> pictures;
    std::vector<FieldRef> locked;
    std::vector<FieldRef> revealed;

    QStringList& values(Kind k) { return k == Kind::Text ? texts : k == Kind::Combo ? combos : checks; }
    QString fieldValue(FieldRef f) const override {
        return const_cast<FakeRecord*>(this)->values(f.kind).value(f.index);
    }
    void setFieldValue(FieldRef f, const QString& v) override { values(f.kind)[f.index] = v; }
    bool fieldLocked(FieldRef f) const override {
        return std::find(locked.begin(), locked.end(), f) != locked.end();
    }
    void revealField(FieldRef f) override { revealed.push_back(f); }
    platform::Picture picture(int slot) const override { return pictures[slot]; }
    void setPicture(int slot, const platform::Picture& p) override { pictures[slot] = p; }

    // A user's change as the windows record it: the value, then the step.
    void edit(EditHistory& history, FieldRef f, const QString& value) {
        const QString before = fieldValue(f);
        if (before == value) return;
        setFieldValue(f, value);
        history.push(
            new FieldEdit(*this, f, before, value, history.mergeGeneration(), fieldStepText("Kenttä")));
    }
    void putPicture(EditHistory& history, int slot, const platform::Picture& p) {
        const platform::Picture before = pictures[slot];
        pictures[slot] = p;
        history.push(new PictureEdit(*this, slot, before, p));
    }
};

platform::Picture smallPicture(QRgb colour) {
    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(colour);
    return platform::Picture::fromImage(image);
}

std::vector<lists::Column> columnsFor(const QStringList& headers) {
    std::vector<lists::Column> columns;
    for (const QString& h : headers)
        columns.push_back({h, 1000});
    columns.push_back({QStringLiteral("Rivi"), 0});
    return columns;
}

void fillList(ListModel& list, const QString& kind, const QStringList& headers, int rows,
              std::mt19937& random) {
    std::vector<lists::Row> out;
    for (int r = 0; r < rows; ++r) {
        QStringList cells;
        for (int c = 0; c < headers.size(); ++c)
            cells << (random() % 3 == 0 ? QString() : QStringLiteral("%1-%2").arg(r).arg(c));
        if (r % 7 == 0) cells[0] = QString::number(7100 + r);
        if (r % 7 == 0 && headers.size() > 2) cells[1] = QStringLiteral("OTSIKKO %1").arg(r);
        if (r % 5 == 4) cells = QStringList(headers.size()); // blank rows to format
        cells << lists::formatRowNumber(r + 1);
        lists::Row row;
        row.cells = cells;
        out.push_back(row);
    }
    list.setKind(kind);
    list.reset(columnsFor(headers), std::move(out));
}

ListRecord recordOf(const ListModel& list) {
    ListRecord r;
    r.columns = list.lastDataCol();
    for (const lists::Row& row : list.allRows())
        r.rows.push_back(row.cells.toStringList().mid(0, r.columns));
    return r;
}

// A project without windows: the basic data's fields and pictures, the detailed data's two
// lists, one history for all of them, and the project file they make.
struct Project {
    EditHistory history;
    FakeRecord fields;
    ListModel quantities;
    ListModel requirements;
    ListModel prices; // a base list to transfer from

    explicit Project(std::mt19937& random) {
        history.setLimit(100000);
        fillList(quantities, lists::kind::QuantityList, testing_support::quantityHeaders(), 40, random);
        fillList(requirements, lists::kind::Requirements,
                 {"LITTERA", "NRO", "LAATUVAATIMUS", "TYYPPI", "VIITE", "VAATIMUS"}, 30, random);
        fillList(prices, lists::kind::UnitPriceList,
                 {"LITTERA", "TYÖVAIHE", "YKSIKKÖ", "A", "B", "C", "HUOMAUTUKSET"}, 20, random);
        quantities.setHistory(&history);
        requirements.setHistory(&history);
    }

    // The file, and the row numbers that the file does not hold but sorting and inserting use.
    QByteArray state() const {
        QByteArray out = file();
        for (const ListModel* list : {&quantities, &requirements})
            for (int r = 1; r <= list->rows(); ++r)
                out += list->rowNumberText(r).toString().toLatin1() + ' ';
        return out;
    }

    QByteArray file() const {
        ProjectContent content;
        content.windows[0].texts = fields.texts;
        content.windows[0].combos = fields.combos;
        content.windows[1].lists = {recordOf(quantities), recordOf(requirements)};
        content.checks = fields.checks;
        Members members;
        members[0].data = WriteProjectText(content, false);
        for (int k = 0; k < 6; ++k) {
            members[k + 1].data = fields.pictures[k].bytes();
            members[k + 1].type = fields.pictures[k].type();
        }
        return PackContainer(members);
    }
};

// One random step of any kind, as the windows make them.
void randomStep(Project& p, std::mt19937& random) {
    auto pick = [&](int n) { return n > 0 ? static_cast<int>(random() % static_cast<unsigned>(n)) : 0; };
    const lists::EditContext client{3, -1, false};
    ListModel& list = pick(3) == 0 ? p.requirements : p.quantities;
    auto selectSome = [&](int count) {
        list.clearSelection();
        for (int i = 0; i < count && list.rows() > 0; ++i)
            list.setSelected(1 + pick(list.rows()), true);
        if (list.rows() > 0) list.setCurrentRow(list.selectedRow());
    };
    const QString text = QStringLiteral("t%1").arg(random() % 1000);
    switch (pick(14)) {
        case 0: { // typing into a field, merged while the focus stays
            if (pick(2) == 0) p.history.closeMerging();
            const FieldRef f{pick(2) == 0 ? Kind::Text : Kind::Combo, pick(12)};
            p.fields.edit(p.history, f, p.fields.fieldValue(f) + text.right(1));
            break;
        }
        case 1: {
            p.history.closeMerging();
            p.fields.edit(p.history, {Kind::Check, pick(2)}, QString::number(pick(3)));
            break;
        }
        case 2: // a picture put into a slot or cleared from it
            p.fields.putPicture(p.history, pick(6),
                                pick(3) == 0 ? platform::Picture() : smallPicture(qRgb(pick(255), 0, 9)));
            break;
        case 3: { // the card's computed fields: one step
            p.history.beginGroup(kComputeFiguresStep);
            for (int i = 0; i < 3; ++i)
                p.fields.edit(p.history, {Kind::Text, pick(12)}, text + QString::number(i));
            p.history.endGroup();
            break;
        }
        case 4: {
            if (list.rows() == 0) break;
            lists::ListStep recorded(list, lists::step::CellEdit);
            lists::PutToListView(list, 1 + pick(list.rows()), 1 + pick(list.lastDataCol()), text, client);
            break;
        }
        case 5: {
            selectSome(1 + pick(4));
            lists::ListStep recorded(list, lists::step::InsertRows);
            lists::ListViewRowEdit(list, pick(3) == 0 ? lists::action::AppendRow : lists::action::InsertRow,
                                   client);
            break;
        }
        case 6: {
            if (list.rows() < 4) break;
            selectSome(1 + pick(5));
            lists::ListStep recorded(list, lists::step::DeleteRows);
            lists::ListViewRowEdit(list, lists::action::DeleteRows, client);
            break;
        }
        case 7: {
            selectSome(1 + pick(4));
            lists::ListStep recorded(list, lists::step::ClearCells);
            lists::ListViewCutCopyDelSelection(list, 3, client);
            break;
        }
        case 8: {
            if (list.rows() == 0) break;
            selectSome(1);
            QString clip;
            for (int r = 0, n = 1 + pick(5); r < n; ++r)
                clip += QStringLiteral("%1\t%2\t%3\r")
                            .arg(pick(2) ? QString() : QStringLiteral("7150"), text)
                            .arg(r);
            lists::ListStep recorded(list, lists::step::Paste);
            lists::PasteText(list, clip, client);
            break;
        }
        case 9: {
            lists::ListStep recorded(list, lists::step::Sort);
            lists::SortByColumn(list, 1 + pick(list.cols()));
            break;
        }
        case 10: {
            lists::ListStep recorded(list, lists::step::Format);
            lists::FormatListView(list, 1, 0, {pick(3), pick(3), pick(2), 1, 1, pick(2)});
            break;
        }
        case 11: { // rows dropped from the unit price list, formatted as the program does
            p.prices.clearSelection();
            for (int i = 0; i < 3; ++i)
                p.prices.setSelected(1 + pick(p.prices.rows()), true);
            lists::ListStep recorded(p.quantities, lists::step::Transfer);
            lists::TransferData(p.quantities, p.prices, pick(p.quantities.rows() + 1), 2 * pick(3),
                                lists::TransferOptions{3, 5});
            lists::FormatListView(p.quantities, 1, 0, lists::kDefaultBlankLines);
            break;
        }
        case 12: { // the row editor writing a card back
            if (list.rows() == 0) break;
            const int r = 1 + pick(list.rows());
            lists::ListStep recorded(list, lists::step::UpdateRow);
            for (int c = 1; c <= list.lastDataCol(); c += 1 + pick(3))
                list.setCell(r, c, text + QString::number(c));
            break;
        }
        case 13: { // a spreadsheet import replacing the rows
            std::vector<lists::Row> rows(1 + pick(6));
            for (lists::Row& row : rows)
                row.cells = QStringList{QStringLiteral("7160"), text, QString(), QStringLiteral("00001")};
            lists::ListStep recorded(list, lists::step::Import);
            list.replaceRows(std::move(rows));
            break;
        }
    }
}

} // namespace

// Typing into a field is one step until the focus leaves it; a field typed back to where it
// was leaves nothing; a locked field refuses; undo shows the field.
TEST(RecordSteps, FieldTypingMergesUntilTheFocusLeaves) {
    EditHistory history;
    FakeRecord fields;
    const FieldRef name{Kind::Combo, 0};
    fields.edit(history, name, "S");
    fields.edit(history, name, "Si");
    fields.edit(history, name, "Sil");
    ASSERT_EQ(history.stack().count(), 1);
    EXPECT_EQ(history.undoText(), QStringLiteral("kenttä \"Kenttä\""));
    history.closeMerging();
    fields.edit(history, name, "Silta");
    fields.edit(history, {Kind::Text, 1}, "x"); // another field is another step
    EXPECT_EQ(history.stack().count(), 3);
    history.undo(3);
    history.undo(3);
    EXPECT_EQ(fields.combos[0], QStringLiteral("Sil"));
    ASSERT_FALSE(fields.revealed.empty());
    EXPECT_EQ(fields.revealed.back(), name);
    history.undo(3);
    EXPECT_EQ(fields.combos[0], QString());
    EXPECT_FALSE(history.dirty());

    // Typed and then typed back within one generation: the step disappears.
    history.redo(3);
    history.closeMerging();
    fields.edit(history, {Kind::Text, 2}, "a");
    fields.edit(history, {Kind::Text, 2}, "");
    EXPECT_EQ(history.stack().count(), 1);
    EXPECT_EQ(history.undoText(), QStringLiteral("kenttä \"Kenttä\""));

    // Merging never reaches into the saved step: after a save the next typing is a new step.
    history.markSaved();
    fields.edit(history, name, "Sila");
    EXPECT_TRUE(history.dirty());
    history.undo(3);
    EXPECT_EQ(fields.combos[0], QStringLiteral("Sil"));
    EXPECT_FALSE(history.dirty());

    // A field the program mode has locked is not changed by undo either.
    fields.locked.push_back(name);
    EXPECT_FALSE(history.undo(3));
    EXPECT_EQ(fields.combos[0], QStringLiteral("Sil"));
}

// The card's computed figures are one step; a picture put in and cleared are steps named for
// what they did.
TEST(RecordSteps, ComputedFiguresAndPictures) {
    EditHistory history;
    FakeRecord fields;
    history.beginGroup(kComputeFiguresStep);
    for (int i = 0; i < 5; ++i)
        fields.edit(history, {Kind::Text, i}, QString::number(i * 10));
    history.endGroup();
    ASSERT_EQ(history.stack().count(), 1);
    EXPECT_EQ(history.undoText(), QStringLiteral("tunnuslukujen laskenta"));
    history.beginGroup(kComputeFiguresStep);
    history.endGroup();
    EXPECT_EQ(history.stack().count(), 1) << "nothing computed anew, no step";
    history.undo(3);
    EXPECT_EQ(fields.texts.mid(0, 5), QStringList(5));
    history.redo(3);
    EXPECT_EQ(fields.texts[4], QStringLiteral("40"));

    const platform::Picture red = smallPicture(qRgb(255, 0, 0));
    const platform::Picture blue = smallPicture(qRgb(0, 0, 255));
    fields.putPicture(history, 2, red);
    EXPECT_EQ(history.undoText(), QStringLiteral("kuvan lisäys"));
    fields.putPicture(history, 2, blue);
    EXPECT_EQ(history.undoText(), QStringLiteral("kuvan vaihto"));
    fields.putPicture(history, 2, platform::Picture());
    EXPECT_EQ(history.undoText(), QStringLiteral("kuvan poisto"));
    history.undo(3);
    EXPECT_EQ(fields.pictures[2].bytes(), blue.bytes());
    history.undo(3);
    history.undo(3);
    EXPECT_TRUE(fields.pictures[2].isNull());
}

// Long random sequences of every kind of step: each undo gives back the project file of the
// state before the step byte for byte, down to the saved file; each redo the file after it.
// Undoing part of the way and going on drops the steps that were undone.
TEST(RecordSteps, RandomSequencesUndoToTheSavedFileBytes) {
    for (unsigned seed : {1u, 7u, 2024u, 31337u}) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Project p(random);
        p.history.markSaved();
        const QByteArray saved = p.file();
        // Each state, by the history's index.
        std::map<int, QByteArray> states{{0, p.state()}};
        auto note = [&] {
            const int i = p.history.stack().index();
            states.erase(states.upper_bound(i), states.end());
            states[i] = p.state();
        };
        for (int n = 0; n < 400; ++n) {
            randomStep(p, random);
            note();
            // Now and then a few steps back, and on from there.
            if (random() % 25 == 0) {
                for (int k = 0, back = 1 + static_cast<int>(random() % 4); k < back && p.history.canUndo();
                     ++k) {
                    ASSERT_TRUE(p.history.undo(3));
                    ASSERT_EQ(p.state(), states.at(p.history.stack().index())) << "after step " << n;
                }
            }
        }
        const int top = p.history.stack().index();
        ASSERT_GT(top, 150);
        EXPECT_TRUE(p.history.dirty());
        while (p.history.canUndo()) {
            ASSERT_TRUE(p.history.undo(3));
            ASSERT_EQ(p.state(), states.at(p.history.stack().index()))
                << "undone to " << p.history.stack().index();
        }
        EXPECT_EQ(p.file(), saved);
        EXPECT_FALSE(p.history.dirty());
        while (p.history.canRedo()) {
            ASSERT_TRUE(p.history.redo(3));
            ASSERT_EQ(p.state(), states.at(p.history.stack().index()))
                << "redone to " << p.history.stack().index();
        }
        EXPECT_EQ(p.history.stack().index(), top);
    }
}
