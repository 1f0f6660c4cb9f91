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
    QString cell(int r, int c) const { return list.cell(r, c).toString(); }
    documents::ComboBox* combo(int column) { return editor.comboOfColumn(column); }
    documents::TextBox* text(int column) { return editor.textOfColumn(column); }

    testing_support::ScriptedDialogs dialogs;
    RowEditorHost host;
    lists::ListModel list;
    lists::ListView view;
    Form5 editor{host};
};

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

// Answers the heading index that the card opens modally: goes to heading `heading` (0-based).
// Counts the indexes it answered.
void answerIndex(int heading, int* opened) {
    QTimer::singleShot(0, [heading, opened] {
        auto* index = qobject_cast<documents::Form10*>(QApplication::activeModalWidget());
        if (!index) return;
        ++*opened;
        index->selectHeading(heading);
        index->Command1[0]->click();
    });
}

const QString kTypeMessage =
    QStringLiteral("Urakoitsija voi antaa vain ohjeellisia (Ty = 3) laatuvaatimuksia.");

} // namespace

TEST_F(Form5Test, TheCardShowsTheRowAndWritesItBackWithoutExplanations) {
    open(6);
    EXPECT_EQ(editor.Label1[16]->text(), "TÄYTTÄÄ VAATIMUKSET"); // labels are the list's headers
    EXPECT_EQ(text(3)->text(), "Pohja katselmoidaan");
    EXPECT_EQ(combo(21)->text(), "Ei");
    EXPECT_EQ(combo(4)->count(), 3); // each drop-down has the list of its header
    EXPECT_TRUE(editor.windowTitle().startsWith("TAMRIK 2006 (Laatuvaatimukset)"));
    // Loading a row is no change of the project; a typed change is, and the card says that it
    // has not reached the row until it is written back.
    EXPECT_TRUE(host.changed.empty());
    EXPECT_FALSE(editor.hasUnwrittenChanges());
    combo(4)->setText("3 (ohjeellinen)");
    text(3)->setText("Pohja (kuivana)\r\ntoinen rivi");
    EXPECT_FALSE(host.changed.empty());
    EXPECT_TRUE(editor.hasUnwrittenChanges());
    ASSERT_TRUE(editor.UpdateRow());
    EXPECT_FALSE(editor.hasUnwrittenChanges());
    EXPECT_EQ(cell(6, 4), "3 ");
    EXPECT_EQ(cell(6, 3), "Pohja (kuivana)\r\ntoinen rivi");
    EXPECT_EQ(combo(4)->text(), "3 "); // the card shows what the row holds now
}

TEST_F(Form5Test, ARequirementWithoutIdentifierIsNeitherWrittenNorInspected) {
    open(3);
    text(3)->setText("Kaivu ja täyttö");
    EXPECT_FALSE(editor.UpdateRow());
    EXPECT_FALSE(editor.CheckAndBrowseNext());
    EXPECT_EQ(dialogs.texts(), QStringList(2, "Laatuvaatimuksella on oltava numero tai kirjaintunnus."));
    EXPECT_EQ(cell(3, 3), "Kaivu");
    EXPECT_EQ(cell(3, 21), "");
    EXPECT_EQ(list.currentRow(), 3);
    // Other lists need no identifier.
    list.setKind(lists::kind::RequirementBase);
    open(3);
    text(3)->setText("Kaivu ja täyttö");
    EXPECT_TRUE(editor.UpdateRow());
    EXPECT_EQ(cell(3, 3), "Kaivu ja täyttö");
}

TEST_F(Form5Test, WithNothingTypedEscClosesAtOnceAndTheWindowKeepsItsPlace) {
    open(6);
    editor.show();
    QTest::keyClick(&editor, Qt::Key_Escape);
    EXPECT_FALSE(editor.isVisible());
    EXPECT_TRUE(dialogs.messages().empty());
    EXPECT_EQ(host.stored, std::vector<int>{5});
}

TEST_F(Form5Test, LeavingTheCardsRowAsksAboutChangesNotWrittenToIt) {
    using platform::MsgAnswer;
    const MsgAnswer Cancel = MsgAnswer::Cancel, No = MsgAnswer::No, Yes = MsgAnswer::Yes;
    // Typed into row 6: "Korjataan" in column 22, or column 2 emptied (which cannot be written).
    struct Case {
        const char* key; // "Find" goes to the heading on row 10; "New" adds a row above row 6
        int column;
        MsgAnswer answer;
        bool stays;   // the card is still open
        int written;  // where the shown row's content is afterwards
        QString cell; // its cell in `column` afterwards
        int row;      // the row the card shows afterwards
        int rows;     // the list's rows afterwards
    };
    const Case cases[] = {{"Close", 22, Cancel, true, 6, "", 6, 11},
                          {"Close", 22, No, false, 6, "", 6, 11},
                          {"Close", 22, Yes, false, 6, "Korjataan", 6, 11},
                          {"Close", 2, Yes, true, 6, "2", 6, 11}, // a refused write keeps the card open
                          {"Find", 22, Cancel, true, 6, "", 6, 11},
                          {"Find", 22, No, true, 6, "", 10, 11},
                          {"Find", 22, Yes, true, 6, "Korjataan", 10, 11},
                          {"Find", 2, Yes, true, 6, "2", 6, 11},
                          {"PgDn", 22, Cancel, true, 6, "", 6, 11},
                          {"PgDn", 22, No, true, 6, "", 7, 11},
                          {"PgDn", 22, Yes, true, 6, "Korjataan", 7, 11},
                          {"PgDn", 2, Yes, true, 6, "2", 6, 11},
                          {"New", 22, Cancel, true, 6, "", 6, 11},
                          {"New", 22, No, true, 7, "", 6, 12},
                          {"New", 22, Yes, true, 7, "Korjataan", 6, 12},
                          {"New to end", 22, Cancel, true, 6, "", 6, 11},
                          {"New to end", 22, No, true, 6, "", 12, 12},
                          {"New to end", 22, Yes, true, 6, "Korjataan", 12, 12}};
    for (const Case& c : cases) {
        SCOPED_TRACE(QStringLiteral("%1 %2 %3").arg(c.key).arg(c.column).arg(int(c.answer)).toStdString());
        inspectionList(list);
        open(6);
        editor.show();
        c.column == 2 ? combo(c.column)->setText("") : text(c.column)->setText("Korjataan");
        dialogs.clear();
        dialogs.answer(c.answer);
        int opened = 0;
        answerIndex(3, &opened);
        editor.ToolbarClick(c.key);
        QCoreApplication::processEvents();
        ASSERT_EQ(dialogs.messages().size(), c.column == 2 ? 2u : 1u); // a refused write says why
        EXPECT_EQ(
            dialogs.texts().first(),
            QStringLiteral("Kortin muutoksia ei ole viety riville.\r\nViedäänkö muutokset riville ennen ") +
                (c.key == QLatin1String("Close") ? "sulkemista?" : "siirtymistä?"));
        EXPECT_EQ(editor.isVisible(), c.stays);
        EXPECT_EQ(cell(c.written, c.column), c.cell);
        EXPECT_EQ(editor.row(), c.row);
        EXPECT_EQ(list.rows(), c.rows);
        EXPECT_EQ(opened, c.row == 10 ? 1 : 0);
        // Cancelled, the card keeps what was typed.
        if (c.answer == Cancel) EXPECT_EQ(text(22)->text(), "Korjataan");
        editor.hide();
    }
    EXPECT_TRUE(dialogs.allAnswersUsed());
}

TEST_F(Form5Test, CloningTakesTheCardAsItIsWithoutAsking) {
    open(6);
    text(22)->setText("Korjataan");
    dialogs.clear();
    editor.AddRow(1);
    EXPECT_TRUE(dialogs.messages().empty());
    EXPECT_EQ(cell(6, 22), "Korjataan");
}

TEST_F(Form5Test, CheckAndBrowseNextInTheContractorsAndTheClientsModes) {
    struct Case {
        int mode;
        int from;
        bool acts;
        int to;
        QString message;
    };
    const Case cases[] = {
        {2, 7, true, 9, ""},
        {3, 7, true, 9, ""},
        {3, 11, true, 11, "Viimeinen kenttä."}, // the last one is marked and the end told
        {1, 7, false, 7, ""}                    // the designer does not inspect
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(QStringLiteral("mode %1 row %2").arg(c.mode).arg(c.from).toStdString());
        inspectionList(list);
        dialogs.clear();
        open(c.from, c.mode);
        EXPECT_EQ(editor.SubMenu0[8]->isEnabled(), c.acts);
        EXPECT_EQ(editor.CheckAndBrowseNext(), c.acts);
        EXPECT_EQ(cell(c.from, 21), c.acts ? "Kyllä" : "");
        EXPECT_EQ(editor.row(), c.to);
        EXPECT_TRUE(list.isSelected(c.to));
        EXPECT_EQ(dialogs.lastText(), c.message);
    }
}

TEST_F(Form5Test, KeysInspectStepAndClose) {
    open(4, 3);
    editor.show();
    QWidget* result = combo(21);
    // Ctrl+Return in a drop-down: met, written, next requirement.
    QTest::keyClick(result, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(editor.row(), 6);
    // PgDn over typed changes asks first; "No" leaves them out of the row.
    combo(21)->setText("Ei");
    combo(2)->setText("2b");
    dialogs.answer(platform::MsgAnswer::No);
    QTest::keyClick(text(3)->editor(), Qt::Key_PageDown);
    EXPECT_EQ(editor.row(), 7);
    EXPECT_EQ(cell(6, 2), "2");
    EXPECT_TRUE(dialogs.lastText().startsWith("Kortin muutoksia ei ole viety riville."));
    // Shift+PgUp: the previous unchecked requirement; there is none above row 7, so the card
    // keeps what was typed into it without a question.
    combo(2)->setText("7b");
    QTest::keyClick(combo(2), Qt::Key_PageUp, Qt::ShiftModifier);
    EXPECT_EQ(editor.row(), 7);
    EXPECT_EQ(dialogs.lastText(), "Ensimmäinen kenttä.");
    EXPECT_EQ(combo(2)->text(), "7b");
    EXPECT_TRUE(editor.hasUnwrittenChanges());
    // Ctrl+Shift+PgDn: the next failed one (the typed change written first); Alt+PgUp: the
    // caption above it.
    dialogs.answer(platform::MsgAnswer::Yes);
    QTest::keyClick(combo(2)->lineEdit(), Qt::Key_PageDown, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(cell(7, 2), "7b");
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
    editor.hide();
}

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
    EXPECT_EQ(dialogs.lastText(), kTypeMessage);
    EXPECT_EQ(type->text(), "1 (siltakohtainen)");
    // Nothing locked on the refused type: the contractor's requirement stays his to change.
    EXPECT_FALSE(type->locked());
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

    // A bridge-specific requirement keeps its own type: locked, and written back without a word.
    dialogs.clear();
    open(4, 2);
    EXPECT_TRUE(combo(4)->locked());
    EXPECT_TRUE(editor.UpdateRow());
    EXPECT_TRUE(dialogs.messages().empty());
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
    EXPECT_EQ(dialogs.texts(), QStringList{kTypeMessage});
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

// The rules themselves are tested without the window; here, that the card applies them to the
// row it shows, also after a step, and shows a value they set without changing the row.
TEST_F(Form5Test, ModeRulesFollowTheRowAndTheResult) {
    list.setCell(4, 21, "Ei");
    open(4, 2);
    EXPECT_TRUE(text(3)->locked());
    EXPECT_FALSE(text(22)->locked());
    EXPECT_EQ(combo(24)->text(), "0,0");
    EXPECT_EQ(cell(4, 24), "");
    EXPECT_TRUE(host.changed.empty());
    editor.Browse(documents::browse::Type3);
    EXPECT_EQ(editor.row(), 7);
    EXPECT_FALSE(text(3)->locked());
    EXPECT_TRUE(text(22)->locked());
    open(4, 1);
    EXPECT_TRUE(combo(21)->locked());
    EXPECT_FALSE(editor.SubMenu0[3]->isEnabled()); // no file into a read-only field
}

TEST_F(Form5Test, NewCloneAndNewToEnd) {
    open(6, 3);
    editor.AddRow(0);
    ASSERT_EQ(list.rows(), 12);
    EXPECT_EQ(editor.row(), 6);
    EXPECT_EQ(list.rowNumberText(7).toString(), "00007"); // the row that was shown moved down
    EXPECT_TRUE(lists::BlankListItem(list, 6).blank);

    open(7, 2);
    editor.AddRow(1);
    EXPECT_EQ(editor.row(), 7);
    EXPECT_EQ(cell(7, 3), "Pohja katselmoidaan");
    EXPECT_EQ(cell(7, 4), "3 "); // the contractor's copy is advisory
    EXPECT_EQ(cell(8, 4), "2 ");

    editor.AddRow(2);
    EXPECT_EQ(editor.row(), 14);
    EXPECT_EQ(list.rowNumberText(14).toString(), "00014");
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
    EXPECT_EQ(text(7)->text(), "leveys 6 m");
    EXPECT_EQ(editor.toolbarButtons["Dublicate"]->toolTip(), "Kloonaa työvaihe");
    EXPECT_FALSE(editor.SubMenu0[3]->isEnabled()); // no file fields
    editor.Browse(-documents::browse::Any);
    EXPECT_EQ(editor.row(), 1); // the blank row is passed over
    combo(3)->setText("110 (kehän anturat 1)");
    EXPECT_FALSE(editor.CheckAndBrowseNext());
    ASSERT_TRUE(editor.UpdateRow());
    EXPECT_EQ(cell(1, 3), "110 ");
}
