// The edit menus acting on the control that has the focus (an open cell edit of a base list,
// a one-line field, the right-button menu's changes to the menu bar), and help asked for from
// a modal dialog.
#include "MainWindowFixture.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ui/BaseListWindow.h"
#include "lists/ui/ListEditor.h"
#include "lists/ui/ListView.h"
#include "peripherals/TamrikHelp.h"
#include "shell/Form8.h"
#include "shell/MDIForm1.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTextEdit>
#include <gtest/gtest.h>

using namespace shell;

using EditMenuTest = ShownMainWindowFixture;

// With a cell of a base list being edited, the Edit menu chosen with the mouse acted on whole
// rows: paste inserted the clipboard as new rows, delete emptied the selected rows.
TEST_F(EditMenuTest, BaseListEditMenuActsOnAnOpenCellEdit) {
    lists::BaseListWindow* f7 = main->Form7;
    showActive(f7);
    lists::ListModel& list = *f7->list();
    const int rows = list.rows();
    const QString second = list.cell(2, 2).toString();
    list.selectOnly(2);
    f7->view()->setFocus();
    QTest::keyClick(f7->view(), Qt::Key_X);
    lists::ListEditor* editor = lists::ListEditor::of(f7->view());
    ASSERT_TRUE(editor->isEditing());
    QLineEdit* box = editor->editBox();
    QTest::keyClicks(box, "yz");
    box->selectAll();
    // SubMenu1: 9 "Leikkaa", 11 "Liitä", 12 "Poista", 16 "&Valitse kaikki".
    f7->SubMenu1[9]->trigger();
    ASSERT_TRUE(editor->isEditing());
    EXPECT_EQ(box->text(), QString());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("xyz"));
    f7->SubMenu1[11]->trigger();
    EXPECT_EQ(box->text(), QStringLiteral("xyz"));
    box->setCursorPosition(1);
    f7->SubMenu1[12]->trigger();
    EXPECT_EQ(box->text(), QStringLiteral("xyz")) << "no selection, nothing to delete";
    f7->SubMenu1[16]->trigger();
    EXPECT_EQ(box->selectedText(), QStringLiteral("xyz"));
    EXPECT_EQ(list.rows(), rows);
    EXPECT_EQ(list.cell(2, 2).toString(), second);
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_EQ(list.cell(2, 2).toString(), second);
    main->FormUntouch(f7);
}

// "Poista" on a one-line box or drop-down with nothing selected deleted the character after
// the caret; delete removes the selection only.
TEST_F(EditMenuTest, DeleteWithoutASelectionLeavesOneLineFieldsAlone) {
    const ProjectWindows w = main->ParseFormIndeces();
    ASSERT_TRUE(w.f1);
    main->activateWindow(w.f1);
    auto* line = qobject_cast<QLineEdit*>(w.f1->Text1[0]->editor());
    ASSERT_TRUE(line);
    line->setText(QStringLiteral("abc"));
    line->setFocus();
    ASSERT_EQ(QApplication::focusWidget(), line);
    line->setCursorPosition(1);
    main->EditMenuActions(9);
    EXPECT_EQ(line->text(), QStringLiteral("abc"));
    line->setSelection(1, 1);
    main->EditMenuActions(9);
    EXPECT_EQ(line->text(), QStringLiteral("ac"));

    QComboBox* combo = w.f1->Combo1[9];
    combo->setEditText(QStringLiteral("Kärkölä"));
    combo->setFocus();
    combo->lineEdit()->setCursorPosition(0);
    main->EditMenuActions(9);
    EXPECT_EQ(combo->currentText(), QStringLiteral("Kärkölä"));
}

// After one right-click in the detailed data window's text document, "M&uoteile luettelo"
// stayed disabled for the rest of the run: the pop-up disabled it and never gave it back.
TEST_F(EditMenuTest, TheRightButtonMenuGivesBackEveryItemItChanged) {
    main->showProjectWindow(2);
    const ProjectWindows w = main->ParseFormIndeces();
    ASSERT_TRUE(w.f2);
    main->activateWindow(w.f2);
    std::vector<bool> before;
    for (QAction* a : main->SubMenu2)
        before.push_back(a->isEnabled());
    ASSERT_TRUE(before[15]);
    QMenu* edit = main->MainMenu[2];
    for (int context : {1, 0}) {
        main->ShowMenu2(context, QPoint(100, 100));
        ASSERT_TRUE(edit->isVisible());
        EXPECT_EQ(main->SubMenu2[15]->isEnabled(), context == 0);
        edit->hide();
        QApplication::processEvents();
        for (std::size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(main->SubMenu2[i]->isEnabled(), before[i]) << "item " << i << ", context " << context;
    }
}

// "Ohjeet" of the settings dialog opened the help window as a child of the main window, which
// the modal dialog blocks: it could not be scrolled or closed until the dialog closed.
TEST_F(EditMenuTest, HelpFromAModalDialogCanBeUsedWhileTheDialogIsOpen) {
    Form8 dialog(*main);
    bool checked = false;
    QTimer::singleShot(0, &dialog, [&] {
        dialog.Command1[2]->click();
        peripherals::HelpViewer* viewer = shownHelp();
        EXPECT_TRUE(viewer && viewer->isVisible());
        if (viewer) {
            ASSERT_TRUE(QTest::qWaitForWindowExposed(viewer));
            EXPECT_TRUE(viewer->currentSource().endsWith(QStringLiteral("#topic2100")));
            // A key through the window system reaches only a window that the dialog does not block.
            QTest::keyClick(viewer->windowHandle(), Qt::Key_Escape);
            QApplication::processEvents();
            EXPECT_FALSE(viewer->isVisible());
        }
        checked = true;
        dialog.reject();
    });
    dialog.exec();
    EXPECT_TRUE(checked);
}
