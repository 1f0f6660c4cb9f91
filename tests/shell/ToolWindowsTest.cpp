// The row editor, the text editor and the heading index as the main window opens them: every
// menu, toolbar and key entry, and an inspection that is saved and read back.
#include "MainWindowFixture.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form10.h"
#include "documents/Form2.h"
#include "documents/Form5.h"
#include "documents/Form9.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "shell/Captions.h"
#include "shell/ProjectFiles.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <functional>

using shell::ParseFileName;

using ToolWindowsTest = SampleProjectFixture;

TEST_F(ToolWindowsTest, TheEntriesAreEnabledWhereTheyAct) {
    documents::Form2* f2 = openSample();
    ASSERT_NE(f2, nullptr);
    EXPECT_TRUE(main->SubMenu2[0]->isEnabled());
    EXPECT_TRUE(main->SubMenu2[11]->isEnabled());
    EXPECT_TRUE(main->Submenu3[9]->isEnabled());
    EXPECT_TRUE(main->Submenu3[10]->isEnabled());
    EXPECT_TRUE(main->toolbarButtons["Find"]->isEnabled());
    main->ToolbarMenuActions("Bridge");
    EXPECT_FALSE(main->SubMenu2[11]->isEnabled());
    EXPECT_FALSE(main->Submenu3[9]->isEnabled());
    EXPECT_TRUE(main->Submenu3[10]->isEnabled());
    main->showBaseList(7);
    EXPECT_TRUE(main->Form7->SubMenu1[3]->isEnabled());
    EXPECT_TRUE(main->Form7->SubMenu1[14]->isEnabled());
}

TEST_F(ToolWindowsTest, AnInspectionByTheRowEditorIsSavedAndReadBack) {
    main->Submenu10Click(1); // the contractor inspects
    documents::Form2* f2 = openSample();
    lists::ListView* requirements = f2->ListView1[1];
    lists::ListModel& list = *requirements->list();
    int first = 1;
    while (list.cell(first, 2).toString().trimmed().isEmpty())
        ++first;
    list.selectOnly(first);
    focus(requirements);

    std::vector<int> inspected;
    whenModal([&](QWidget* modal) {
        auto* editor = qobject_cast<documents::Form5*>(modal);
        ASSERT_NE(editor, nullptr);
        ASSERT_EQ(editor->view(), requirements);
        // Ten requirements in a row, from the first one.
        for (int i = 0; i < 10; ++i) {
            inspected.push_back(editor->row());
            ASSERT_TRUE(editor->CheckAndBrowseNext());
        }
    });
    main->EditMenuClick(0);
    ASSERT_EQ(inspected.size(), 10u);
    EXPECT_FALSE(main->Form5->isVisible());
    const QString caption = f2->caption();
    EXPECT_FALSE(shell::CaptionIsUnchanged(caption));

    const QString saved = dir.filePath("Tarkastettu.sl");
    ASSERT_TRUE(shell::WriteSlFile(*main, ParseFileName(caption).project(), saved, false));
    const QString second = main->NewProject();
    ASSERT_TRUE(shell::ReadSlFile(*main, second, saved, false));
    documents::Form2* reopened = main->projectWindowsOf(saved).f2;
    ASSERT_NE(reopened, nullptr);
    ASSERT_NE(reopened, f2);
    for (int r : inspected)
        EXPECT_EQ(reopened->list(1)->cell(r, 21).toString(), "Kyllä") << r;
}

TEST_F(ToolWindowsTest, TheRowEditorOpensFromEveryList) {
    documents::Form2* f2 = openSample();
    // The right-button menu's "&Muokkaa..." on the quantity list.
    lists::ListView* quantities = f2->ListView1[0];
    quantities->list()->selectOnly(3);
    focus(quantities);
    QString shown;
    whenModal([&](QWidget* modal) {
        auto* editor = qobject_cast<documents::Form5*>(modal);
        ASSERT_NE(editor, nullptr);
        shown = editor->Combo1[0]->text() + "|" + editor->Text1[0]->text();
        EXPECT_EQ(editor->SubMenu1[0]->text(), "Lisää uusi työvaihe");
    });
    main->ShowMenu2(0, QPoint(10, 10));
    main->MainMenu[2]->hide();
    main->SubMenu2[0]->trigger();
    EXPECT_EQ(shown,
              quantities->list()->cell(3, 1).toString() + "|" + quantities->list()->cell(3, 2).toString());

    // "Muokkaa..." of the requirement base list window.
    main->showBaseList(7);
    lists::ListModel& base = *main->Form7->list();
    base.selectOnly(5);
    whenModal([&](QWidget* modal) {
        auto* editor = qobject_cast<documents::Form5*>(modal);
        ASSERT_NE(editor, nullptr);
        EXPECT_EQ(editor->view(), main->Form7->view());
        EXPECT_EQ(editor->row(), 5);
        EXPECT_EQ(editor->SubMenu1[1]->text(), "Kloonaa laatuvaatimus");
    });
    main->Form7->editMenuClick(3);
}

TEST_F(ToolWindowsTest, TheTextEditorInItsModes) {
    documents::Form2* f2 = openSample();
    QString title;
    whenModal([&](QWidget* modal) { title = modal->windowTitle(); });
    main->Submenu3[10]->trigger();
    EXPECT_EQ(title, "TAMRIK 2006 (Laatuvaatimusten yhteenveto)");
    EXPECT_EQ(main->appState().EditorMode, 100);

    whenModal([&](QWidget* modal) {
        auto* editor = qobject_cast<documents::Form9*>(modal);
        ASSERT_NE(editor, nullptr);
        title = editor->windowTitle();
        EXPECT_EQ(editor->RichTextBox1->toPlainText(), f2->RichTextBox1[0]->toPlainText());
    });
    main->Submenu3[9]->trigger();
    EXPECT_EQ(title, "TAMRIK 2006 (Rakennussuunnitelmaselostus)");

    // "&Muokkaa..." in the shown document opens it in the editor too; "&Lisää luettelosta" in
    // the contract quality plan opens its template.
    focus(f2->RichTextBox1[0]);
    title.clear();
    whenModal([&](QWidget* modal) { title = modal->windowTitle(); });
    main->EditMenuClick(0);
    EXPECT_EQ(title, "TAMRIK 2006 (Rakennussuunnitelmaselostus)");
    main->Submenu30Click(2);
    focus(f2->RichTextBox1[0]);
    whenModal([&](QWidget* modal) {
        auto* editor = qobject_cast<documents::Form9*>(modal);
        ASSERT_NE(editor, nullptr);
        EXPECT_EQ(editor->mode(), 8);
        EXPECT_EQ(editor->SubMenu0[0]->text(), "Lisää asiakirjaan");
    });
    main->EditMenuClick(1);
}

TEST_F(ToolWindowsTest, TheHeadingIndexGoesToARequirementCaption) {
    documents::Form2* f2 = openSample();
    lists::ListView* requirements = f2->ListView1[1];
    requirements->list()->selectOnly(1);
    focus(requirements);
    int target = 0;
    whenModal([&](QWidget* modal) {
        auto* index = qobject_cast<documents::Form10*>(modal);
        ASSERT_NE(index, nullptr);
        EXPECT_EQ(index->mode(), "1");
        ASSERT_GE(index->headings().size(), 3u);
        target = index->headings()[2].row;
        index->selectHeading(2);
        index->Command1[0]->click();
    });
    main->toolbarButtons["Find"]->trigger();
    ASSERT_GT(target, 1);
    EXPECT_EQ(requirements->list()->currentRow(), target);

    // In the construction plan description "&Lisää luettelosta" inserts headings.
    main->Submenu30Click(0);
    focus(f2->RichTextBox1[0]);
    whenModal([&](QWidget* modal) {
        auto* index = qobject_cast<documents::Form10*>(modal);
        ASSERT_NE(index, nullptr);
        EXPECT_EQ(index->mode(), "3");
        EXPECT_TRUE(index->Command1[1]->isEnabled());
    });
    main->EditMenuClick(1);

    // The base list window's "Siirry..." indexes its own list.
    main->showBaseList(6);
    whenModal([&](QWidget* modal) {
        auto* index = qobject_cast<documents::Form10*>(modal);
        ASSERT_NE(index, nullptr);
        EXPECT_EQ(index->mode(), "6");
        EXPECT_GT(index->ListView1->topLevelItemCount(), 10);
    });
    main->Form6->editMenuClick(14);

    // Ctrl+F is its key in both base list windows, as in the main window.
    for (int slot : {6, 7}) {
        SCOPED_TRACE(slot);
        main->showBaseList(slot);
        lists::BaseListWindow* window = slot == 6 ? main->Form6 : main->Form7;
        showActive(window);
        window->view()->setFocus();
        QString mode;
        whenModal([&](QWidget* modal) {
            auto* index = qobject_cast<documents::Form10*>(modal);
            ASSERT_NE(index, nullptr);
            mode = index->mode();
        });
        QTest::keyClick(window->view(), Qt::Key_F, Qt::ControlModifier);
        QApplication::processEvents();
        EXPECT_EQ(mode, QString::number(slot));
        window->hide();
    }
}
