// The heading index: the headings of a list, the mode the active control calls for, going to a
// heading in a list or a text, inserting headings into a text, and choosing one.
#include "FormsTestHost.h"
#include "RowCardLists.h"
#include "common/ScriptedDialogs.h"
#include "documents/Form10.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"

#include <QApplication>
#include <QPushButton>
#include <QTextCursor>
#include <QTextEdit>
#include <QTimer>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace documents;
using row_card_test::fillList;
using row_card_test::inspectionList;

namespace {

QStringList describe(const std::vector<Heading>& headings) {
    QStringList out;
    for (const Heading& h : headings)
        out.append(QStringLiteral("%1|%2|%3|%4|L%5")
                       .arg(h.littera, h.text)
                       .arg(h.row)
                       .arg(h.rowNumber)
                       .arg(h.level));
    return out;
}

QStringList shownRows(const QTreeWidget* tree) {
    QStringList out;
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = tree->topLevelItem(i);
        out.append(item->text(0) + "|" + item->text(1) + "|" + item->text(2));
    }
    return out;
}

} // namespace

TEST(HeadingIndex, HeadingsAreTheRowsWithALittera) {
    lists::ListModel list;
    inspectionList(list);
    EXPECT_EQ(describe(HeadingsOfList(list)),
              QStringList({"7110|KAIVUT JA LOUHINNAT|1|00001|L1", "7111|Kaivu|3|00003|L2",
                           "|TIETYÖT SILTAPAIKALLA|8|00008|L1", "7200|Alikulku|10|00010|L2"}));

    // A caption in capitals continued on the next row is one heading; an entry below a caption
    // is not part of it.
    fillList(list, lists::kind::QuantityList, row_card_test::quantityHeaders(),
             {{"7170", "PÄÄLLYSRAKENNE,"},
              {"", "BETONI"},
              {"", "Kansilaatan valu", "400", "320", "m3"},
              {"7171", "Muotit"},
              {"", "Muotti"}});
    EXPECT_EQ(describe(HeadingsOfList(list)),
              QStringList({"7170|PÄÄLLYSRAKENNE, BETONI|1|00001|L1", "7171|Muotit|4|00004|L2"}));
    list.clearRows();
    EXPECT_TRUE(HeadingsOfList(list).empty());
}

TEST(HeadingIndex, ModeByActiveControl) {
    struct Case {
        int kind;
        QString listTag, textTag, mode;
    };
    const Case cases[] = {
        {0, lists::kind::QuantityList, {}, "0"},     {0, lists::kind::NoEdit, {}, "0"},
        {0, lists::kind::Requirements, {}, "1"},     {0, lists::kind::Changes, {}, ""},
        {0, {}, "Rakennussuunnitelmaselostus", "2"}, {1, {}, "Rakennussuunnitelmaselostus", "3"},
        {1, {}, "Koodaussuunnitelma", ""},           {2, {}, {}, "8"},
        {3, lists::kind::QuantityList, {}, "9"}};
    for (const Case& c : cases) {
        SCOPED_TRACE((QString::number(c.kind) + " " + c.listTag + c.textTag).toStdString());
        EXPECT_EQ(ShowIndexMode(c.kind, c.listTag, c.textTag), c.mode);
    }
}

TEST(Form10, FillsFromAListAndGoesToTheRow) {
    lists::ListModel list;
    inspectionList(list);
    lists::ListView view;
    view.setList(&list);
    list.selectOnly(7);
    Form10::Source source;
    source.list = &view;
    Form10 index(index_mode::Requirements, source);
    EXPECT_EQ(shownRows(index.ListView1), QStringList({"7110|KAIVUT JA LOUHINNAT|1", "7111|Kaivu|3",
                                                       "|TIETYÖT SILTAPAIKALLA|8", "7200|Alikulku|10"}));
    // It opens at the heading of the list's current row.
    EXPECT_EQ(index.chosen(), std::vector<int>{1});

    index.selectHeading(3);
    index.Command1[0]->click();
    EXPECT_EQ(index.result(), QDialog::Accepted);
    EXPECT_EQ(list.currentRow(), 10);
    EXPECT_EQ(list.selectedRows(), std::vector<int>{10});

    // In the index of an empty list going to a heading does nothing.
    list.clearRows();
    Form10 empty(index_mode::QuantityList, source);
    EXPECT_FALSE(empty.JumpToListViewRow());
}

namespace {

// The project's requirement list as the heading source of a text.
struct TextSource {
    TextSource() {
        inspectionList(list);
        text.setPlainText("Yleistä\nKaivu tehdään kuivana.\nLoppu");
        source.headings = &list;
        source.text = &text;
    }
    lists::ListModel list;
    QTextEdit text;
    Form10::Source source;
};

} // namespace

TEST(Form10, GoesToAHeadingInATextOrSaysItIsMissing) {
    testing_support::ScriptedDialogs dialogs;
    TextSource s;
    QTextEdit& text = s.text;
    Form10 jump(index_mode::PlanJump, s.source);
    ASSERT_EQ(jump.headings().size(), 4u);
    jump.selectHeading(1);
    EXPECT_TRUE(jump.JumpToRichTextBoxRow());
    EXPECT_EQ(text.textCursor().selectedText(), "Kaivu");
    jump.selectHeading(3);
    EXPECT_FALSE(jump.JumpToRichTextBoxRow());
    EXPECT_EQ(dialogs.lastText(), "Otsikkoa \"Alikulku\" ei löydy tekstistä.");
}

TEST(Form10, InsertsTheChosenHeadingsTheTextLacksUnlessItIsLocked) {
    // The chosen headings at the caret, each on a line of its own, except those the text
    // already has.
    TextSource s;
    QTextEdit& text = s.text;
    QTextCursor end(text.document());
    end.movePosition(QTextCursor::End);
    text.setTextCursor(end);
    Form10 insert(index_mode::PlanInsert, s.source);
    ASSERT_TRUE(insert.Command1[1]->isEnabled());
    insert.ListView1->clearSelection();
    for (int i : {0, 1, 3})
        insert.ListView1->topLevelItem(i)->setSelected(true);
    insert.Command1[1]->click();
    EXPECT_EQ(text.toPlainText(),
              "Yleistä\nKaivu tehdään kuivana.\nLoppu\n7110\tKAIVUT JA LOUHINNAT\n7200\tAlikulku\n");

    text.setReadOnly(true);
    Form10 locked(index_mode::PlanInsert, s.source);
    EXPECT_FALSE(locked.Command1[1]->isEnabled());
    EXPECT_EQ(locked.AddToRich(), 0);
}

TEST(Form10, ChoosingGivesTheRowNumberOfTheHeading) {
    lists::ListModel list;
    inspectionList(list);
    list.selectOnly(9);
    Form10::Source source;
    source.headings = &list;
    Form10 index(index_mode::Choose, source);
    EXPECT_EQ(index.chosen(), std::vector<int>{2});
    index.selectHeading(3);
    index.Command1[0]->click();
    EXPECT_EQ(index.chosenRowNumber(), std::optional<QString>("00010"));
    EXPECT_EQ(list.currentRow(), 9); // choosing does not move the list

    // The entry point for other windows: a modal index, "&Valitse" or "Peruuta".
    auto answer = [](int heading) {
        QTimer::singleShot(0, [heading] {
            auto* open = qobject_cast<Form10*>(QApplication::activeModalWidget());
            ASSERT_NE(open, nullptr);
            if (heading < 0) {
                open->Command1[2]->click();
                return;
            }
            open->selectHeading(heading);
            open->Command1[0]->click();
        });
    };
    answer(0);
    EXPECT_EQ(ChooseRequirementHeading(list), std::optional<QString>("00001"));
    answer(-1);
    EXPECT_EQ(ChooseRequirementHeading(list), std::nullopt);
}

TEST(Form10, TheSecondColumnIsNamedByTheMode) {
    struct Case {
        QString mode;
        QString kind;
        QString header;
    };
    const Case cases[] = {
        {index_mode::QuantityList, lists::kind::QuantityList, "Työvaihe"},
        {index_mode::Requirements, lists::kind::Requirements, "Vaatimus"},
        {index_mode::UnitPriceBase, lists::kind::UnitPriceList, "Työvaihe"},
        // The requirement base list's window indexes its work phases.
        {index_mode::RequirementBase, lists::kind::RequirementBase, "Työvaihe"},
        {index_mode::ActiveList, lists::kind::RequirementBase, "Vaatimus"},
        {index_mode::ActiveList, lists::kind::Changes, "Työvaihe"},
    };
    lists::ListModel list;
    inspectionList(list);
    lists::ListView view;
    view.setList(&list);
    Form10::Source source;
    source.list = &view;
    for (const Case& c : cases) {
        SCOPED_TRACE((c.mode + " " + c.kind).toStdString());
        list.setKind(c.kind);
        Form10 index(c.mode, source);
        EXPECT_EQ(index.ListView1->headerItem()->text(1), c.header);
    }
}
