// Undo and redo through the real windows, with the keys a user presses: rows deleted from the
// quantity list come back with Ctrl+Z and the cost estimate with them, the row editor's
// inspection mark is taken back, a field typed wrong returns, an open editor undoes within
// itself first, and the captions say " Ei muutettu" whenever the saved state is reached.
#include "MainWindowFixture.h"
#include "calc/CostEstimate.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form5.h"
#include "lists/EditHistory.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/BaseListWindow.h"
#include "lists/ui/ListEditor.h"
#include "lists/ui/ListView.h"
#include "platform/ui/PictureBox.h"
#include "shell/Captions.h"
#include "shell/ProjectFiles.h"
#include "lists/Spreadsheet.h"
#include "platform/SettingsStore.h"
#include "shell/Form8.h"
#include "shell/Settings.h"
#include "shell/ShellActions.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

using namespace shell;

namespace {

class UndoWindowsTest : public SampleProjectFixture {
protected:
    // The keys, sent to whatever has the focus.
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* target = QApplication::focusWidget();
        ASSERT_NE(target, nullptr);
        QTest::keyClick(target, static_cast<Qt::Key>(key), modifiers);
        QApplication::processEvents();
    }
    void undoKey() { press(Qt::Key_Z, Qt::ControlModifier); }
    void redoKey() { press(Qt::Key_Y, Qt::ControlModifier); }
    bool projectUnchanged() {
        for (documents::ProjectWindow* w : main->ParseFormIndeces().all())
            if (!CaptionIsUnchanged(w->caption())) return false;
        return true;
    }
    static std::vector<QStringList> rowsOf(const lists::ListModel& list) {
        std::vector<QStringList> out;
        for (const lists::Row& row : list.allRows())
            out.push_back(row.cells.toStringList());
        return out;
    }
};

} // namespace

// Ten rows deleted from the quantity list with Shift+Delete come back with Ctrl+Z, shown
// selected, the cost estimate's totals as before and the project unchanged again; Ctrl+Y
// deletes them again.
TEST_F(UndoWindowsTest, DeletedQuantityRowsComeBackWithTheirCosts) {
    documents::Form2* f2 = openSample();
    ASSERT_NE(f2, nullptr);
    documents::Form1* f1 = main->ParseFormIndeces().f1;
    lists::ListModel& list = *f2->list(0);
    ASSERT_GT(list.rows(), 40);
    const std::vector<QStringList> before = rowsOf(list);
    const calc::CostRecord costs = calc::CalculateCosts(list, f1->costInputs());
    ASSERT_GT(costs.bridgeRounded, 0.0f);
    EXPECT_FALSE(main->undoAction->isEnabled());
    EXPECT_FALSE(main->toolbarButtons[QStringLiteral("Undo")]->isEnabled());

    list.clearSelection();
    for (int r = 11; r <= 20; ++r)
        list.setSelected(r, true);
    list.setCurrentRow(11);
    focus(f2->ListView1[0]);
    press(Qt::Key_Delete, Qt::ShiftModifier);
    ASSERT_EQ(list.rows(), static_cast<int>(before.size()) - 10);
    EXPECT_FALSE(projectUnchanged());
    EXPECT_NE(calc::CalculateCosts(list, f1->costInputs()).bridgeRounded, costs.bridgeRounded);
    EXPECT_TRUE(main->undoAction->isEnabled());
    EXPECT_EQ(main->undoAction->text(), QStringLiteral("&Kumoa: rivien poisto"));
    EXPECT_EQ(main->toolbarButtons[QStringLiteral("Undo")]->toolTip(),
              QStringLiteral("Kumoa: rivien poisto"));

    // The user looks elsewhere first: the undo brings the list back into view.
    main->ToolbarMenuActions(QStringLiteral("Bridge"));
    undoKey();
    EXPECT_EQ(rowsOf(list), before);
    EXPECT_EQ(calc::CalculateCosts(list, f1->costInputs()).bridgeRounded, costs.bridgeRounded);
    EXPECT_EQ(calc::CalculateCosts(list, f1->costInputs()).roadRounded, costs.roadRounded);
    EXPECT_TRUE(projectUnchanged());
    EXPECT_EQ(main->activeWindow(), f2);
    std::vector<int> restored;
    for (int r = 11; r <= 20; ++r)
        restored.push_back(r);
    EXPECT_EQ(list.selectedRows(), restored);
    EXPECT_EQ(main->redoAction->text(), QStringLiteral("&Tee uudelleen: rivien poisto"));

    redoKey();
    EXPECT_EQ(list.rows(), static_cast<int>(before.size()) - 10);
    EXPECT_FALSE(projectUnchanged());
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); // the other redo key: nothing left
    EXPECT_EQ(list.rows(), static_cast<int>(before.size()) - 10);
    undoKey(); // with the list in focus all along
    EXPECT_EQ(rowsOf(list), before);
    EXPECT_EQ(main->statusText(1), lists::CaptionStatusTexts(list, 11)[0]) << "the status bar follows";
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

// The inspector's wrong mark: "Täyttää vaatimukset, siirry seuraavaan" in the row editor is
// one step that Ctrl+Z takes back in the main window.
TEST_F(UndoWindowsTest, TheRowEditorsInspectionMarkIsUndone) {
    main->Submenu10Click(1); // the contractor inspects
    documents::Form2* f2 = openSample();
    lists::ListView* requirements = f2->ListView1[1];
    lists::ListModel& list = *requirements->list();
    // The first requirement not yet marked as fulfilled.
    int first = 1;
    while (first <= list.rows() && (list.cell(first, 2).toString().trimmed().isEmpty() ||
                                    list.cell(first, 21).toString() == QStringLiteral("Kyllä")))
        ++first;
    ASSERT_LE(first, list.rows());
    const QString mark = list.cell(first, 21).toString();
    list.selectOnly(first);
    focus(requirements);
    whenModal([&](QWidget* modal) {
        auto* editor = qobject_cast<documents::Form5*>(modal);
        ASSERT_NE(editor, nullptr);
        ASSERT_EQ(editor->row(), first);
        ASSERT_TRUE(editor->CheckAndBrowseNext());
    });
    main->EditMenuClick(0);
    ASSERT_EQ(list.cell(first, 21).toString(), QStringLiteral("Kyllä"));
    focus(requirements);
    EXPECT_EQ(main->undoAction->text(), QStringLiteral("&Kumoa: tarkastusmerkintä"));
    undoKey();
    EXPECT_EQ(list.cell(first, 21).toString(), mark);
    EXPECT_EQ(list.selectedRows(), std::vector<int>{first});
    EXPECT_TRUE(projectUnchanged());
    // Back at the saved state, closing asks nothing.
    EXPECT_FALSE(main->UnloadActiveProject());
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

// A wrong name typed into "Sillan nimi" is one step once the focus has left the field; while
// the focus is still in it, Ctrl+Z undoes the typing there first.
TEST_F(UndoWindowsTest, AFieldTypedWrongReturns) {
    documents::Form1* f1 = main->ParseFormIndeces().f1;
    ASSERT_NE(f1, nullptr);
    main->activateWindow(f1);
    auto* name = qobject_cast<QLineEdit*>(f1->Text1[0]->editor());
    ASSERT_NE(name, nullptr);
    focus(name);
    QTest::keyClicks(name, QStringLiteral("Vaara silta"));
    EXPECT_FALSE(projectUnchanged());
    undoKey(); // still in the field: the field's own undo
    EXPECT_EQ(f1->Text1[0]->text(), QString());
    EXPECT_FALSE(main->ParseFormIndeces().f1->history()->canUndo()) << "typed back: no step left";
    EXPECT_TRUE(projectUnchanged());

    QTest::keyClicks(name, QStringLiteral("Vaara silta"));
    focus(f1->Text1[1]->editor());
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Tie 4"));
    focus(f1->Combo1[9]);
    lists::EditHistory* history = f1->history();
    ASSERT_EQ(history->stack().count(), 2);
    EXPECT_EQ(main->undoAction->text(), QStringLiteral("&Kumoa: kenttä \"Tieosa\""));
    undoKey();
    EXPECT_EQ(f1->Text1[1]->text(), QString());
    EXPECT_EQ(main->undoAction->text(), QStringLiteral("&Kumoa: kenttä \"Sillan nimi\""));
    // The field that came back has the focus; with nothing of its own to undo the project goes on.
    undoKey();
    EXPECT_EQ(f1->Text1[0]->text(), QString());
    EXPECT_EQ(QApplication::focusWidget(), name);
    EXPECT_TRUE(projectUnchanged());
    redoKey();
    EXPECT_EQ(f1->Text1[0]->text(), QStringLiteral("Vaara silta"));
    EXPECT_FALSE(projectUnchanged());
}

// Typing into a list cell: Ctrl+Z in the open edit box undoes the typing; once the box has
// nothing left, the edit goes without storing and the project's last step is undone.
TEST_F(UndoWindowsTest, AnOpenCellEditUndoesWithinItselfFirst) {
    documents::Form2* f2 = openSample();
    lists::ListView* view = f2->ListView1[0];
    lists::ListModel& list = *view->list();
    ASSERT_GT(list.rows(), 3);
    const QString littera = list.cell(2, 1).toString();
    list.selectOnly(2);
    focus(view);
    QTest::keyClicks(view, QStringLiteral("a"));
    lists::ListEditor* editor = lists::ListEditor::of(view);
    ASSERT_TRUE(editor->isEditing());
    press(Qt::Key_Return); // stored, the edit goes on in the next column
    ASSERT_EQ(list.cell(2, 1).toString(), QStringLiteral("a"));
    ASSERT_TRUE(editor->isEditing());
    QTest::keyClicks(editor->editBox(), QStringLiteral("xyz"));
    undoKey();
    EXPECT_TRUE(editor->isEditing());
    EXPECT_EQ(editor->editBox()->text(), list.cell(2, 2).toString()) << "the box's own typing undone";
    undoKey();
    EXPECT_FALSE(editor->isEditing());
    EXPECT_EQ(list.cell(2, 1).toString(), littera) << "then the stored cell";
    EXPECT_TRUE(projectUnchanged());
}

// Saving keeps the history: undo after a save makes the project changed, redo unchanged.
TEST_F(UndoWindowsTest, SavingKeepsTheStepsAndTheSavedStateIsClean) {
    documents::Form2* f2 = openSample();
    lists::ListModel& list = *f2->list(0);
    list.selectOnly(5);
    focus(f2->ListView1[0]);
    press(Qt::Key_I, Qt::ControlModifier); // "Lisää &rivi"
    press(Qt::Key_I, Qt::ControlModifier);
    const QString project = ParseFileName(f2->caption()).project();
    ASSERT_TRUE(WriteSlFile(*main, project, project, false));
    EXPECT_TRUE(projectUnchanged());
    EXPECT_TRUE(main->undoAction->isEnabled());
    undoKey();
    EXPECT_FALSE(projectUnchanged());
    redoKey();
    EXPECT_TRUE(projectUnchanged());
    undoKey();
    undoKey();
    EXPECT_FALSE(projectUnchanged());
    // Closing asks about the changes, as any change does.
    dialogs.answer(platform::MsgAnswer::No);
    EXPECT_FALSE(main->UnloadActiveProject());
    EXPECT_EQ(dialogs.messages().size(), 1u);
}

// The contractor's mode makes the quantity list read-only: a step of the designer there is
// not undone, with the mode's own message.
TEST_F(UndoWindowsTest, AModeThatMakesAListReadOnlyRefusesItsSteps) {
    main->Submenu10Click(0);
    documents::Form2* f2 = openSample();
    lists::ListModel& list = *f2->list(0);
    const int rows = list.rows();
    list.selectOnly(3);
    focus(f2->ListView1[0]);
    press(Qt::Key_L, Qt::ControlModifier); // a row at the end
    ASSERT_EQ(list.rows(), rows + 1);
    main->Submenu10Click(1);
    ASSERT_TRUE(list.readOnly());
    focus(f2->ListView1[0]);
    undoKey();
    EXPECT_EQ(list.rows(), rows + 1);
    EXPECT_EQ(dialogs.lastText(),
              QStringLiteral("Toiminto on sallittu ainoastaan\r\nsuunnitelijalle ja tilaajalle"));
    main->Submenu10Click(0);
    focus(f2->ListView1[0]);
    undoKey();
    EXPECT_EQ(list.rows(), rows);
}

// The shown text document keeps its own undo: the Edit menu's item acts on it while it has the
// focus, and the project's steps stay where they are.
TEST_F(UndoWindowsTest, TheRichTextBoxKeepsItsOwnUndo) {
    documents::Form2* f2 = main->ParseFormIndeces().f2;
    main->activateWindow(f2);
    lists::ListModel& list = *f2->list(0);
    list.selectOnly(1);
    focus(f2->ListView1[0]);
    press(Qt::Key_L, Qt::ControlModifier);
    QTextEdit* text = f2->RichTextBox1[0];
    focus(text);
    const QString was = text->toPlainText();
    QTest::keyClicks(text, QStringLiteral("Lisatty"));
    main->MainMenu[2]->aboutToShow();
    EXPECT_EQ(main->undoAction->text(), QStringLiteral("&Kumoa"));
    EXPECT_TRUE(main->undoAction->isEnabled());
    main->undoAction->trigger();
    EXPECT_EQ(text->toPlainText(), was);
    EXPECT_TRUE(f2->history()->canUndo()) << "the list's step is still there";
}

// The characteristics card's "Laske tunnusluvut" is one step; a picture put into a slot is one.
TEST_F(UndoWindowsTest, ComputedFiguresAndAPictureAreOneStepEach) {
    openSample();
    const ProjectWindows w = main->ParseFormIndeces();
    documents::Form3* f3 = w.f3;
    ASSERT_NE(f3, nullptr);
    // Figures computed from the project, then taken back at once.
    QStringList before;
    for (documents::TextBox* t : f3->Text1)
        before << (t ? t->text() : QString());
    for (documents::TextBox* t : f3->Text1)
        if (t) t->setText(QString());
    w.f1->history()->restart(false);
    QStringList cleared;
    for (documents::TextBox* t : f3->Text1)
        cleared << (t ? t->text() : QString());
    f3->Command1->click();
    QStringList computed;
    for (documents::TextBox* t : f3->Text1)
        computed << (t ? t->text() : QString());
    ASSERT_NE(computed, cleared);
    ASSERT_EQ(w.f1->history()->stack().count(), 1);
    EXPECT_EQ(w.f1->history()->undoText(), QStringLiteral("tunnuslukujen laskenta"));
    main->activateWindow(f3);
    undoOrRedo(*main, false);
    QStringList after;
    for (documents::TextBox* t : f3->Text1)
        after << (t ? t->text() : QString());
    EXPECT_EQ(after, cleared);

    // A picture put into an empty slot (the viewer gives it back), and taken out again.
    ASSERT_TRUE(w.f1->Image1[5]->picture().isNull());
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::red);
    GiveBackPicture(*main, 7, ParseFileName(w.f1->caption()).project(), platform::Picture::fromImage(image),
                    QString());
    EXPECT_FALSE(w.f1->Image1[5]->picture().isNull());
    EXPECT_EQ(w.f1->history()->undoText(), QStringLiteral("kuvan lisäys"));
    undoOrRedo(*main, false);
    EXPECT_TRUE(w.f1->Image1[5]->picture().isNull());
    EXPECT_EQ(main->activeWindow(), w.f1);
}

// A recovered project is changed from the start and has nothing to undo.
TEST_F(UndoWindowsTest, ARecoveredProjectStartsWithAnEmptyHistory) {
    const QString copy = dir.filePath(QStringLiteral("kopio.sl"));
    QFile::copy(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"), copy);
    main->openRecoveredProject(copy, dir.filePath(QStringLiteral("Oma.sl")));
    const ProjectWindows w = main->projectWindowsOf(dir.filePath(QStringLiteral("Oma.sl")));
    ASSERT_TRUE(w.complete());
    EXPECT_FALSE(w.f1->history()->canUndo());
    EXPECT_TRUE(w.f1->history()->dirty());
    EXPECT_FALSE(CaptionIsUnchanged(w.f1->caption()));
    // Undoing a later change does not make it unchanged: only saving does.
    const QString name = w.f1->Text1[0]->text();
    w.f1->Text1[0]->setText(name + QStringLiteral(" x"));
    main->activateWindow(w.f1);
    undoOrRedo(*main, false);
    EXPECT_EQ(w.f1->Text1[0]->text(), name);
    EXPECT_FALSE(w.f1->history()->canUndo());
    EXPECT_FALSE(CaptionIsUnchanged(w.f1->caption()));
}

// A base list window has a history of its own, whose saved state gives its caption back the
// marker; the project's history is another one.
TEST_F(UndoWindowsTest, ABaseListWindowHasAHistoryOfItsOwn) {
    lists::BaseListWindow* f7 = main->Form7;
    showActive(f7);
    lists::ListModel& list = *f7->list();
    const int rows = list.rows();
    const QString fourth = list.cell(4, 3).toString();
    list.selectOnly(4);
    focus(f7->view());
    QTest::keyClick(f7->view(), Qt::Key_Delete, Qt::ShiftModifier);
    ASSERT_EQ(list.rows(), rows - 1);
    EXPECT_FALSE(f7->windowTitle().endsWith(QStringLiteral(" Ei muutettu")));
    f7->updateUndoActions();
    EXPECT_EQ(f7->undoAction->text(), QStringLiteral("&Kumoa: rivien poisto"));
    EXPECT_FALSE(main->ParseFormIndeces().f1->history()->canUndo()) << "the project's history is another one";
    QTest::keyClick(f7->view(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(list.rows(), rows);
    EXPECT_EQ(list.cell(4, 3).toString(), fourth);
    EXPECT_EQ(list.selectedRows(), std::vector<int>{4});
    EXPECT_TRUE(f7->windowTitle().endsWith(QStringLiteral(" Ei muutettu")));
    QTest::keyClick(f7->view(), Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(list.rows(), rows - 1);
    EXPECT_FALSE(f7->windowTitle().endsWith(QStringLiteral(" Ei muutettu")));
}

// The toolbar has the two buttons with pictures of their own, next to the edit buttons.
TEST_F(UndoWindowsTest, TheToolbarButtonsAndTheMenuItems) {
    for (const char* key : {"Undo", "Redo"}) {
        QAction* a = main->toolbarButtons[QString::fromLatin1(key)];
        ASSERT_NE(a, nullptr) << key;
        EXPECT_FALSE(a->icon().isNull()) << key;
    }
    const QList<QAction*> items = main->MainMenu[2]->actions();
    ASSERT_GE(items.size(), 3);
    EXPECT_EQ(items[0], main->undoAction);
    EXPECT_EQ(items[1], main->redoAction);
    EXPECT_TRUE(items[2]->isSeparator());
    EXPECT_EQ(main->undoAction->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Z));
    EXPECT_EQ(main->redoAction->shortcuts(),
              (QList<QKeySequence>{QKeySequence(Qt::CTRL | Qt::Key_Y),
                                   QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)}));
    EXPECT_EQ(main->undoAction->text(), QStringLiteral("&Kumoa"));
    EXPECT_FALSE(main->redoAction->isEnabled());
}

// Rows dropped from the unit price list onto the quantity list, with the formatting that
// follows, are one step of the project; a sort by a column header is one; an import into a base
// list is one of that window's.
TEST_F(UndoWindowsTest, ADropASortAndAnImportAreOneStepEach) {
    documents::Form2* f2 = openSample();
    lists::ListModel& quantities = *f2->list(0);
    const std::vector<QStringList> before = rowsOf(quantities);
    lists::BaseListWindow* f6 = main->Form6;
    lists::ListModel& prices = *f6->list();
    int entry = 1;
    while (entry <= prices.rows() && prices.cell(entry, 5).toString().trimmed().isEmpty())
        ++entry;
    ASSERT_LE(entry, prices.rows());
    prices.selectOnly(entry);
    lists::ListEditor* target = lists::ListEditor::of(f2->ListView1[0]);
    const QPoint onRow = f2->ListView1[0]->cellRect(3, 1).center();
    ASSERT_TRUE(target->EditListViewDragDrop(f6->view(), onRow, false));
    ASSERT_GT(quantities.rows(), static_cast<int>(before.size()));
    lists::EditHistory* history = f2->history();
    EXPECT_EQ(history->stack().count(), 1);
    EXPECT_EQ(history->undoText(), QStringLiteral("rivien siirto"));
    EXPECT_FALSE(f6->history().canUndo()) << "the unit price list did not change";

    dialogs.answer(platform::MsgAnswer::Yes); // sorting by another column asks first
    ASSERT_TRUE(target->SortItems(3));
    EXPECT_EQ(history->undoText(), QStringLiteral("lajittelu"));
    main->activateWindow(f2);
    undoOrRedo(*main, false);
    undoOrRedo(*main, false);
    EXPECT_EQ(rowsOf(quantities), before);
    EXPECT_TRUE(projectUnchanged());

    lists::BaseListWindow* f7 = main->Form7;
    const std::vector<QStringList> base = rowsOf(*f7->list());
    lists::ListModel small;
    small.setKind(lists::kind::RequirementBase);
    // Two rows with text: an import drops blank rows at the end of the sheet.
    std::vector<lists::Row> twoRows;
    for (int r = 1; r <= f7->list()->rows() && twoRows.size() < 2; ++r)
        if (!f7->list()->cell(r, 3).toString().trimmed().isEmpty()) twoRows.push_back(f7->list()->row(r));
    ASSERT_EQ(twoRows.size(), 2u);
    small.reset(f7->list()->columns(), twoRows);
    const QString sheet = dir.filePath(QStringLiteral("tuonti.xlsx"));
    ASSERT_TRUE(lists::ExportListViewXlsx(small, sheet));
    dialogs.chooseFile(sheet);
    f7->ListViewFileMenuActions(4); // "T&uo..."
    ASSERT_EQ(f7->list()->rows(), 2);
    EXPECT_EQ(f7->history().undoText(), QStringLiteral("taulukon tuonti"));
    f7->undoOrRedo(false);
    EXPECT_EQ(rowsOf(*f7->list()), base);
    EXPECT_TRUE(f7->windowTitle().endsWith(QStringLiteral(" Ei muutettu")));
}

// The steps kept per project are a setting of the settings dialog; a count out of range keeps
// the one there was, and the histories take a new count when they are next empty.
TEST_F(UndoWindowsTest, TheStepLimitIsASetting) {
    EXPECT_EQ(main->appState().settings.UndoLimit, 200);
    Form8 dialog(*main);
    EXPECT_EQ(dialog.Text5->text(), QStringLiteral("200"));
    dialog.Text5->setText(QStringLiteral("0"));
    dialog.saveAndClose();
    EXPECT_EQ(main->appState().settings.UndoLimit, 200);
    Form8 second(*main);
    second.Text5->setText(QStringLiteral("3"));
    second.saveAndClose();
    EXPECT_EQ(main->appState().settings.UndoLimit, 3);

    documents::ProjectWindow* f1 = main->ParseFormIndeces().f1;
    EXPECT_EQ(f1->history()->stack().undoLimit(), 3) << "an empty history takes it at once";
    for (int i = 0; i < 5; ++i) {
        f1->history()->closeMerging(); // as if the focus went elsewhere in between
        f1->Text1[0]->setText(QString::number(i));
    }
    EXPECT_EQ(f1->history()->stack().count(), 3);
    EXPECT_EQ(main->Form7->history().stack().undoLimit(), 3);

    WriteSettingsValues(main->settingsStore(), main->appState());
    AppState read;
    ReadSettingsValues(main->settingsStore(), read);
    EXPECT_EQ(read.settings.UndoLimit, 3);
    main->settingsStore().save(QStringLiteral("General"), QStringLiteral("UndoLimit"), QStringLiteral("-5"));
    ReadSettingsValues(main->settingsStore(), read);
    EXPECT_EQ(read.settings.UndoLimit, 200);
}

// The status bar names the caption, subcaption and entry of the current row by their row
// numbers. A sort moves the current row: the status bar and the base list window's own status
// follow it (they kept the numbers of where the row had been before the sort).
TEST_F(UndoWindowsTest, TheStatusBarFollowsTheCurrentRowThroughASort) {
    documents::Form2* f2 = openSample();
    main->activateWindow(f2);
    lists::ListView* view = f2->ListView1[0];
    lists::ListModel& list = *view->list();
    int entry = list.rows();
    while (entry > 1 && list.cell(entry, 4).toString().trimmed().isEmpty())
        --entry;
    view->setCurrentIndex(list.index(entry - 1, 1));
    ASSERT_EQ(list.currentRow(), entry);
    EXPECT_EQ(main->statusText(5), lists::CaptionStatusTexts(list, entry)[2]);

    dialogs.answer(platform::MsgAnswer::Yes);
    emit view->headerClicked(2);
    ASSERT_NE(list.currentRow(), entry) << "the sort moved the row";
    for (int panel = 0; panel < 3; ++panel)
        EXPECT_EQ(main->statusText(1 + 2 * panel), lists::CaptionStatusTexts(list, list.currentRow())[panel])
            << panel;
    emit view->headerClicked(1);
    EXPECT_EQ(list.currentRow(), entry);
    EXPECT_EQ(main->statusText(5), lists::CaptionStatusTexts(list, entry)[2]);

    lists::BaseListWindow* f7 = main->Form7;
    lists::ListModel& base = *f7->list();
    f7->view()->setCurrentIndex(base.index(base.rows() - 1, 1));
    dialogs.answer(platform::MsgAnswer::Yes);
    emit f7->view()->headerClicked(3);
    QStringList shown;
    for (const QString& t : lists::CaptionStatusTexts(base, base.currentRow()))
        if (!t.isEmpty()) shown << t;
    EXPECT_EQ(f7->statusBar()->currentMessage(), shown.join(QStringLiteral("  |  ")));
}
