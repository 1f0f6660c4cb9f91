// The list row editor as a window: the card of a row, writing it back, stepping and inspecting
// with the keyboard, new rows, and the file fields.
#include "FormsTestHost.h"
#include "RowCardLists.h"
#include "common/ScriptedDialogs.h"
#include "documents/Controls.h"
#include "documents/Form10.h"
#include "documents/Form5.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using documents::Form5;
using row_card_test::fillList;
using row_card_test::inspectionList;

namespace {

class RowEditorHost : public testing_support::FormsTestHost {
public:
    void openFile(const QString& target) override { opened.append(target); }
    void storeWindowPosition(int slot, QWidget*) override { stored.push_back(slot); }
    QStringList opened;
    std::vector<int> stored;
};

class Form5Test : public ::testing::Test {
protected:
    void SetUp() override {
        inspectionList(list);
        view.setList(&list);
    }
    // Opens the card on `row` in `mode`.
    void open(int row, int mode = 3) {
        host.state.ProgramMode = mode;
        list.selectOnly(row);
        ASSERT_TRUE(editor.ShowListViewEditor(&view));
        ASSERT_EQ(editor.row(), row);
    }
    QString cell(int r, int c) const { return list.cell(r, c); }
    documents::ComboBox* combo(int column) { return editor.comboOfColumn(column); }
    documents::TextBox* text(int column) { return editor.textOfColumn(column); }

    testing_support::ScriptedDialogs dialogs;
    RowEditorHost host;
    lists::ListModel list;
    lists::ListView view;
    Form5 editor{host};
};

} // namespace

TEST_F(Form5Test, TheCardShowsTheRowUnderItsHeaders) {
    open(6);
    ASSERT_EQ(editor.Text1.size(), 6u);
    ASSERT_EQ(editor.Combo1.size(), 18u);
    EXPECT_EQ(editor.Label2[0]->text(), "LAATUVAATIMUS");
    EXPECT_EQ(editor.Label1[16]->text(), "TÄYTTÄÄ VAATIMUKSET");
    EXPECT_EQ(editor.Text1[0]->text(), "Pohja katselmoidaan");
    EXPECT_EQ(editor.Text1[1]->text(), "Katselmus kirjataan");
    EXPECT_EQ(editor.Combo1[1]->text(), "2");
    EXPECT_EQ(editor.Combo1[8]->text(), "K");
    EXPECT_EQ(editor.Combo1[16]->text(), "Ei");
    // Each drop-down has the list of its header.
    EXPECT_EQ(editor.Combo1[2]->count(), 3);
    EXPECT_EQ(editor.Combo1[16]->itemText(0), "Kyllä");
    EXPECT_TRUE(editor.windowTitle().startsWith("TAMRIK 2006 (Laatuvaatimukset)"));
    EXPECT_EQ(editor.SubMenu1[0]->text(), "Lisää uusi laatuvaatimus");
    // Loading a row is no change of the project; a typed change is, and the card says that it
    // has not reached the row until it is written back.
    EXPECT_TRUE(host.changed.empty());
    EXPECT_FALSE(editor.hasUnwrittenChanges());
    editor.Text1[4]->setText("Poikkeama korjataan");
    EXPECT_FALSE(host.changed.empty());
    EXPECT_TRUE(editor.hasUnwrittenChanges());
    ASSERT_TRUE(editor.UpdateRow());
    EXPECT_FALSE(editor.hasUnwrittenChanges());
    EXPECT_EQ(cell(6, 22), "Poikkeama korjataan");
}

TEST_F(Form5Test, ClosingAsksAboutChangesNotWrittenToTheRow) {
    open(6);
    editor.show();
    // Nothing typed: Esc closes at once.
    QTest::keyClick(&editor, Qt::Key_Escape);
    EXPECT_FALSE(editor.isVisible());
    EXPECT_TRUE(dialogs.messages().empty());

    // The card of row 6 with one field changed, closed with the answer given; whether it stays.
    auto closeChanged = [&](int column, const QString& value, platform::MsgAnswer a) {
        if (!editor.isVisible()) {
            open(6);
            editor.show();
            column == 2 ? combo(column)->setText(value) : text(column)->setText(value);
        }
        dialogs.answer(a);
        editor.ToolbarClick("Close");
        return editor.isVisible();
    };
    EXPECT_TRUE(closeChanged(22, "Poikkeama korjataan", platform::MsgAnswer::Cancel));
    EXPECT_TRUE(dialogs.lastText().startsWith("Kortin muutoksia ei ole viety riville."));
    EXPECT_FALSE(closeChanged(22, "", platform::MsgAnswer::No));
    EXPECT_EQ(cell(6, 22), "");
    EXPECT_FALSE(closeChanged(22, "Poikkeama korjataan", platform::MsgAnswer::Yes));
    EXPECT_EQ(cell(6, 22), "Poikkeama korjataan");

    // A write that is refused keeps the card open with what was typed.
    EXPECT_TRUE(closeChanged(2, "", platform::MsgAnswer::Yes));
    EXPECT_EQ(dialogs.lastText(), "Laatuvaatimuksella on oltava numero tai kirjaintunnus.");
    EXPECT_EQ(cell(6, 2), "2");
    EXPECT_TRUE(dialogs.allAnswersUsed());
    editor.hide();
}

TEST_F(Form5Test, UpdateWritesTheCardWithoutExplanations) {
    open(7);
    combo(4)->setText("2 (KLVn mukainen)");
    combo(10)->setText("K (katselmus)");
    text(3)->setText("Ainestodistus (CE-merkintä)\r\ntoinen rivi");
    ASSERT_TRUE(editor.UpdateRow());
    EXPECT_EQ(cell(7, 4), "2 ");
    EXPECT_EQ(cell(7, 10), "K ");
    EXPECT_EQ(cell(7, 3), "Ainestodistus (CE-merkintä)\r\ntoinen rivi");
    // The card shows what the row holds now.
    EXPECT_EQ(combo(4)->text(), "2 ");
    EXPECT_FALSE(host.changed.empty());
}

TEST_F(Form5Test, ARequirementWithoutIdentifierIsNotWritten) {
    open(3);
    text(3)->setText("Kaivu ja täyttö");
    EXPECT_FALSE(editor.UpdateRow());
    EXPECT_EQ(dialogs.lastText(), "Laatuvaatimuksella on oltava numero tai kirjaintunnus.");
    EXPECT_EQ(cell(3, 3), "Kaivu");
    // Nor is one inspected: the message again, and nothing marked or stepped.
    EXPECT_FALSE(editor.CheckAndBrowseNext());
    EXPECT_EQ(dialogs.messages().size(), 2u);
    EXPECT_EQ(cell(3, 21), "");
    EXPECT_EQ(list.currentRow(), 3);

    // Other lists need no identifier.
    list.setKind(lists::kind::RequirementBase);
    open(3);
    text(3)->setText("Kaivu ja täyttö");
    EXPECT_TRUE(editor.UpdateRow());
    EXPECT_EQ(cell(3, 3), "Kaivu ja täyttö");
}

TEST_F(Form5Test, CheckAndBrowseNextInTheContractorsAndTheClientsModes) {
    for (int mode : {2, 3}) {
        inspectionList(list);
        open(7, mode);
        ASSERT_TRUE(editor.CheckAndBrowseNext()) << mode;
        EXPECT_EQ(cell(7, 21), "Kyllä") << mode;
        EXPECT_EQ(editor.row(), 9) << mode;
        EXPECT_EQ(list.currentRow(), 9);
        EXPECT_TRUE(list.isSelected(9));
        // The last requirement is marked and the end is told; the card stays on it.
        open(11, mode);
        EXPECT_TRUE(editor.CheckAndBrowseNext());
        EXPECT_EQ(cell(11, 21), "Kyllä");
        EXPECT_EQ(editor.row(), 11);
        EXPECT_EQ(dialogs.lastText(), "Viimeinen kenttä.");
    }
    // The designer does not inspect.
    inspectionList(list);
    open(7, 1);
    EXPECT_FALSE(editor.CheckAndBrowseNext());
    EXPECT_EQ(cell(7, 21), "");
    EXPECT_EQ(editor.row(), 7);
    EXPECT_FALSE(editor.SubMenu0[8]->isEnabled());
}

TEST_F(Form5Test, KeysInspectStepAndClose) {
    open(4, 3);
    editor.show();
    QWidget* result = combo(21);
    // Ctrl+Return in a drop-down: met, written, next requirement.
    QTest::keyClick(result, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(editor.row(), 6);
    // PgDn without writing: the typed text stays out of the row.
    combo(21)->setText("Ei");
    combo(2)->setText("2b");
    QTest::keyClick(text(3)->editor(), Qt::Key_PageDown);
    EXPECT_EQ(editor.row(), 7);
    EXPECT_EQ(cell(6, 2), "2");
    // Shift+PgUp: the previous unchecked requirement; there is none above row 7.
    QTest::keyClick(combo(2), Qt::Key_PageUp, Qt::ShiftModifier);
    EXPECT_EQ(editor.row(), 7);
    EXPECT_EQ(dialogs.lastText(), "Ensimmäinen kenttä.");
    // Ctrl+Shift+PgDn: the next failed one; Alt+PgUp: the caption above it.
    QTest::keyClick(combo(2)->lineEdit(), Qt::Key_PageDown, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(editor.row(), 11);
    QTest::keyClick(combo(2)->lineEdit(), Qt::Key_PageUp, Qt::AltModifier);
    EXPECT_EQ(editor.row(), 10);
    // Shift+Return in a long text writes back instead of breaking the line; Alt+Return writes
    // and moves on.
    open(9, 3);
    text(3)->setText("Penger tiivistetään");
    QTest::keyClick(text(3)->editor(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(cell(9, 3), "Penger tiivistetään");
    EXPECT_EQ(editor.row(), 9);
    combo(21)->setText("Ei");
    QTest::keyClick(combo(21), Qt::Key_Enter, Qt::AltModifier | Qt::KeypadModifier);
    EXPECT_EQ(cell(9, 21), "Ei");
    EXPECT_EQ(editor.row(), 11);
    // Esc closes, keeping the window's place.
    QTest::keyClick(combo(21), Qt::Key_Escape);
    EXPECT_FALSE(editor.isVisible());
    EXPECT_EQ(host.stored, std::vector<int>{5});
}

TEST_F(Form5Test, TheContractorGivesOnlyAdvisoryRequirements) {
    open(7, 2);
    documents::ComboBox* type = combo(4);
    ASSERT_FALSE(type->locked());
    type->setText("1 (siltakohtainen)");
    EXPECT_FALSE(editor.checkContractorType());
    EXPECT_EQ(dialogs.lastText(), "Urakoitsija voi antaa vain ohjeellisia (Ty = 3) laatuvaatimuksia.");
    EXPECT_EQ(type->lineEdit()->selectedText(), "1 (siltakohtainen)");
    // Nor can it be written back while it holds that type.
    EXPECT_FALSE(editor.UpdateRow());
    EXPECT_EQ(cell(7, 4), "3 ");
    type->setText("3 (ohjeellinen)");
    EXPECT_TRUE(editor.checkContractorType());
    EXPECT_TRUE(editor.UpdateRow());
    // A bridge-specific requirement's type is not the contractor's to change: no message.
    dialogs.clear();
    open(4, 2);
    EXPECT_TRUE(combo(4)->locked());
    EXPECT_TRUE(editor.checkContractorType());
    EXPECT_TRUE(dialogs.messages().empty());
}

TEST_F(Form5Test, ModeRulesFollowTheRowAndTheResult) {
    // A contractor on a failed bridge-specific requirement: the deviation report and the
    // correction plan open, and the factor shows "0,0" without changing the row.
    list.setCell(4, 21, "Ei");
    open(4, 2);
    EXPECT_TRUE(text(3)->locked());
    EXPECT_FALSE(text(22)->locked());
    EXPECT_FALSE(text(23)->locked());
    EXPECT_EQ(combo(24)->text(), "0,0");
    EXPECT_EQ(cell(4, 24), "");
    EXPECT_TRUE(host.changed.empty());
    // Stepping to an advisory requirement applies its own rules.
    editor.Browse(documents::browse::Type3);
    EXPECT_EQ(editor.row(), 7);
    EXPECT_FALSE(text(3)->locked());
    EXPECT_TRUE(text(22)->locked());
    EXPECT_TRUE(combo(11)->locked());
    // The designer: the inspection fields are read-only.
    open(4, 1);
    EXPECT_TRUE(combo(21)->locked());
    EXPECT_FALSE(combo(11)->locked());
    EXPECT_FALSE(editor.SubMenu0[3]->isEnabled()); // no file into a read-only field
}

TEST_F(Form5Test, NewCloneAndNewToEnd) {
    open(6, 3);
    editor.AddRow(0);
    ASSERT_EQ(list.rows(), 12);
    EXPECT_EQ(editor.row(), 6);
    EXPECT_EQ(list.rowNumberText(6), "00006");
    EXPECT_EQ(list.rowNumberText(7), "00007"); // the row that was shown moved down
    EXPECT_TRUE(lists::BlankListItem(list, 6).blank);
    EXPECT_EQ(combo(2)->text(), "");

    open(7, 2);
    editor.AddRow(1);
    ASSERT_EQ(list.rows(), 13);
    EXPECT_EQ(editor.row(), 7);
    EXPECT_EQ(cell(7, 3), "Pohja katselmoidaan");
    EXPECT_EQ(cell(7, 4), "3 "); // the contractor's copy is advisory
    EXPECT_EQ(cell(8, 4), "2 ");

    editor.AddRow(2);
    ASSERT_EQ(list.rows(), 14);
    EXPECT_EQ(editor.row(), 14);
    EXPECT_EQ(list.rowNumberText(14), "00014");
    EXPECT_TRUE(lists::BlankListItem(list, 14).blank);
}

TEST_F(Form5Test, ReadOnlyListsAreRefused) {
    host.state.ProgramMode = 2;
    list.setReadOnly(true);
    list.selectOnly(4);
    EXPECT_FALSE(editor.ShowListViewEditor(&view));
    EXPECT_EQ(dialogs.lastText(), "Toiminto on sallittu ainoastaan\r\nsuunnitelijalle ja tilaajalle");
}

TEST_F(Form5Test, FileFieldsAreBrowsedAndOpened) {
    open(7, 3);
    EXPECT_TRUE(editor.SubMenu0[0]->isEnabled());
    EXPECT_FALSE(editor.SubMenu0[1]->isEnabled());
    dialogs.chooseFile("/tmp/viite.pdf");
    editor.ToolbarClick("Browse attachment");
    EXPECT_EQ(combo(14)->text(), "/tmp/viite.pdf");
    EXPECT_TRUE(editor.SubMenu0[1]->isEnabled());
    editor.ToolbarClick("Open document");
    editor.ToolbarClick("Open attachment");
    EXPECT_EQ(host.opened, QStringList({"selostus.pdf", "/tmp/viite.pdf"}));
    // A cancelled dialog changes nothing.
    dialogs.chooseFile(QString());
    editor.ToolbarClick("Browse document");
    EXPECT_EQ(combo(13)->text(), "selostus.pdf");
}

TEST_F(Form5Test, OtherListsGetTheirOwnCard) {
    fillList(
        list, lists::kind::QuantityList, row_card_test::quantityHeaders(),
        {{"7100", "TYÖMAAN JÄRJESTELYT"}, {}, {"", "Kiertotie", "100", "112", "m", "35,00", "leveys 6 m"}});
    open(3, 1);
    ASSERT_EQ(editor.Text1.size(), 2u);
    ASSERT_EQ(editor.Combo1.size(), 5u);
    EXPECT_EQ(editor.Text1[1]->text(), "leveys 6 m");
    EXPECT_EQ(editor.SubMenu1[0]->text(), "Lisää uusi työvaihe");
    EXPECT_EQ(editor.toolbarButtons["Dublicate"]->toolTip(), "Kloonaa työvaihe");
    EXPECT_EQ(editor.toolbarButtons["New to end"]->toolTip(), "Lisää uusi työvaihe luettelon loppuun");
    EXPECT_FALSE(editor.SubMenu0[3]->isEnabled());
    EXPECT_FALSE(editor.SubMenu20[0]->isEnabled());
    EXPECT_TRUE(editor.SubMenu2[0]->isEnabled());
    editor.Browse(-documents::browse::Any);
    EXPECT_EQ(editor.row(), 1); // the blank row is passed over
    editor.Combo1[1]->setText("110 (kehän anturat 1)");
    EXPECT_FALSE(editor.CheckAndBrowseNext());
    ASSERT_TRUE(editor.UpdateRow());
    EXPECT_EQ(cell(1, 3), "110 ");
}

// ---------------------------------------------------------------- regressions

namespace {

// Makes the card the active window, as the user sees it.
void activate(QWidget& window) {
    window.show();
    QApplication::setActiveWindow(&window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

bool hasFocus(const QWidget* field) {
    QWidget* focus = QApplication::focusWidget();
    return focus && (focus == field || field->isAncestorOf(focus));
}

// Closes the heading index that the card opens modally: goes to heading `heading`, or cancels
// for -1. Counts the indexes it closed.
void answerIndex(int heading, int* opened) {
    QTimer::singleShot(0, [heading, opened] {
        auto* index = qobject_cast<documents::Form10*>(QApplication::activeModalWidget());
        if (!index) return;
        ++*opened;
        if (heading < 0) {
            index->reject();
            return;
        }
        index->selectHeading(heading);
        index->Command1[0]->click();
    });
}

} // namespace

TEST_F(Form5Test, AContractorPickingABridgeSpecificTypeLocksNothingAndWritesNothing) {
    open(7, 2);
    activate(editor);
    // The real message box takes the focus while it is open.
    dialogs.takesFocus = true;
    documents::ComboBox* type = combo(4);
    type->setFocus(Qt::MouseFocusReason);
    type->showPopup();
    QAbstractItemView* items = type->view();
    QTest::mouseClick(items->viewport(), Qt::LeftButton, {},
                      items->visualRect(type->model()->index(0, 0)).center());
    EXPECT_EQ(dialogs.lastText(), "Urakoitsija voi antaa vain ohjeellisia (Ty = 3) laatuvaatimuksia.");
    EXPECT_EQ(type->text(), "1 (siltakohtainen)");
    // Nothing locked on the refused type: the contractor's requirement stays his to change.
    EXPECT_FALSE(type->locked());
    EXPECT_FALSE(combo(2)->locked());
    EXPECT_FALSE(text(3)->locked());
    EXPECT_EQ(type->lineEdit()->selectedText(), "1 (siltakohtainen)");
    EXPECT_FALSE(editor.UpdateRow());
    EXPECT_EQ(cell(7, 4), "3 ");
    // Typed over, the type is the contractor's own again.
    QCoreApplication::processEvents();
    QTest::keyClicks(type->lineEdit(), "3");
    EXPECT_TRUE(editor.UpdateRow());
    EXPECT_EQ(cell(7, 4).left(1), "3");
    editor.hide();
}

TEST_F(Form5Test, AContractorCannotLeaveTheTypeFieldWithAClick) {
    open(7, 2);
    activate(editor);
    documents::ComboBox* type = combo(4);
    type->setFocus(Qt::TabFocusReason);
    type->lineEdit()->selectAll();
    QTest::keyClicks(type->lineEdit(), "1");
    // Tab: the message, and the focus stays with the text selected.
    QTest::keyClick(type->lineEdit(), Qt::Key_Tab);
    EXPECT_EQ(dialogs.texts(),
              QStringList{"Urakoitsija voi antaa vain ohjeellisia (Ty = 3) laatuvaatimuksia."});
    EXPECT_TRUE(hasFocus(type));
    // A click into another field: the same, although the text has not changed since.
    documents::ComboBox* reference = combo(5);
    QTest::mouseClick(reference->lineEdit(), Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_EQ(dialogs.messages().size(), 2u);
    EXPECT_TRUE(hasFocus(type));
    EXPECT_TRUE(type->text().startsWith("1"));
    EXPECT_EQ(type->lineEdit()->selectedText(), type->text());
    // An allowed type lets the focus go.
    QTest::keyClicks(type->lineEdit(), "3");
    QTest::mouseClick(reference->lineEdit(), Qt::LeftButton);
    EXPECT_TRUE(hasFocus(reference));
    EXPECT_EQ(dialogs.messages().size(), 2u);
    editor.hide();
}

TEST_F(Form5Test, GoingToAHeadingAsksAboutChangesNotWrittenToTheRow) {
    open(6);
    int opened = 0;
    text(22)->setText("Poikkeama korjataan");
    // Cancel: no index, the card keeps what was typed.
    dialogs.answer(platform::MsgAnswer::Cancel);
    answerIndex(-1, &opened);
    editor.ToolbarClick("Find");
    QCoreApplication::processEvents();
    EXPECT_EQ(dialogs.lastText(), "Kortin muutoksia ei ole viety riville.\r\n"
                                  "Viedäänkö muutokset riville ennen siirtymistä?");
    EXPECT_EQ(opened, 0);
    EXPECT_EQ(text(22)->text(), "Poikkeama korjataan");
    // Yes: written to the row, then the heading gone to.
    dialogs.answer(platform::MsgAnswer::Yes);
    answerIndex(3, &opened);
    editor.ToolbarClick("Find");
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(cell(6, 22), "Poikkeama korjataan");
    EXPECT_EQ(editor.row(), 10);
    // No: let go.
    open(6);
    text(22)->setText("Toinen");
    dialogs.answer(platform::MsgAnswer::No);
    answerIndex(0, &opened);
    editor.ToolbarClick("Index");
    EXPECT_EQ(opened, 2);
    EXPECT_EQ(cell(6, 22), "Poikkeama korjataan");
    EXPECT_EQ(editor.row(), 1);
    EXPECT_TRUE(dialogs.allAnswersUsed());
}
