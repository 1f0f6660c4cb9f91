#include "MainWindowFixture.h"
#include "common/ScriptedDialogs.h"
#include "common/TestSupport.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "platform/SettingsStore.h"
#include "shell/Captions.h"
#include "shell/Form8.h"
#include "shell/MDIForm1.h"
#include "shell/Settings.h"
#include "shell/frmSplash.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCoreApplication>
#include <QProgressBar>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <gtest/gtest.h>

using namespace shell;
using platform::MsgAnswer;
using testing_support::ScriptedDialogs;

namespace {

class MainWindowTest : public MainWindowFixture {
protected:
    QStringList captions() const {
        QStringList out;
        for (auto* w : main->projectWindows())
            out << w->caption();
        return out;
    }
};

} // namespace

TEST_F(MainWindowTest, StartsWithProjekti1AndTheBasicDataWindowOnTop) {
    EXPECT_EQ(main->windowTitle(), QStringLiteral("TAMRIK 2006"));
    EXPECT_EQ(captions(), (QStringList{QStringLiteral("Projekti1 (Perustiedot) Ei muutettu"),
                                       QStringLiteral("Projekti1 (Yksityiskohtaiset tiedot) Ei muutettu"),
                                       QStringLiteral("Projekti1 (Ominaistietokortti) Ei muutettu"),
                                       QStringLiteral("Projekti1 (Panostilakortti) Ei muutettu")}));
    ASSERT_NE(main->activeWindow(), nullptr);
    EXPECT_EQ(main->activeWindow()->kind(), 1);
    EXPECT_EQ(main->ActiveCaption(), QStringLiteral("Projekti1 (Perustiedot) Ei muutettu"));
    EXPECT_TRUE(main->MainMenu[2]->menuAction()->isEnabled());
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

TEST_F(MainWindowTest, MenuTreeHasItsIndicesShortcutsAndHiddenItems) {
    ASSERT_EQ(main->SubMenu0.size(), 21u);
    EXPECT_EQ(main->SubMenu0[10]->text(), QStringLiteral("Tuo ainostataan teksi..."));
    EXPECT_FALSE(main->SubMenu0[11]->isVisible());
    EXPECT_FALSE(main->SubMenu0[13]->isVisible());
    EXPECT_FALSE(main->SubMenu0[19]->isVisible());
    EXPECT_EQ(main->SubMenu0[20]->text(), QStringLiteral("L&opeta"));
    ASSERT_EQ(main->SubMenu2.size(), 16u);
    EXPECT_EQ(main->SubMenu2[4]->shortcut(), QKeySequence(Qt::SHIFT | Qt::Key_Delete));
    EXPECT_EQ(main->SubMenu2[11]->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_F));
    EXPECT_EQ(main->SubMenu2[15]->text(), QStringLiteral("M&uoteile luettelo"));
    ASSERT_EQ(main->Submenu3.size(), 13u);
    EXPECT_EQ(main->Submenu3[10]->shortcut(), QKeySequence(Qt::SHIFT | Qt::Key_F8));
    ASSERT_EQ(main->SubMenu41.size(), 20u);
    // The About item is the last item of the help menu.
    EXPECT_EQ(main->SubMenu4.back()->text(), QStringLiteral("&Tietoja ohjelmasta..."));
    const char* keys[] = {"New",  "Open",  "Save",   "Cut",    "Copy", "Paste",    "Del", "Undo",
                          "Redo", "Print", "Bridge", "Rulers", "Card", "Dynamite", "Find"};
    const QList<QAction*> buttons = main->Toolbar1->actions();
    int i = 0;
    for (QAction* a : buttons) {
        if (a->isSeparator()) continue;
        ASSERT_LT(i, 15);
        EXPECT_EQ(a->data().toString(), QString::fromLatin1(keys[i]));
        ++i;
    }
    EXPECT_EQ(i, 15);
    EXPECT_EQ(main->toolbarButtons[QStringLiteral("Find")]->toolTip(), QStringLiteral("Siirry kohtaan..."));
    // Exactly one program mode and one text document are checked.
    int modes = 0;
    for (QAction* a : main->Submenu10)
        modes += a->isChecked();
    EXPECT_EQ(modes, 1);
    EXPECT_TRUE(main->Submenu10[2]->isChecked());
}

TEST_F(MainWindowTest, TouchMarksOnlyTheProjectOfTheWindowThatChanged) {
    main->NewProject();
    ASSERT_EQ(main->projectWindows().size(), 8u);
    // A change in a card of Projekti1 marks all four of its windows and none of Projekti2's.
    const ProjectWindows p1 = main->projectWindowsOf(QStringLiteral("Projekti1"));
    ASSERT_TRUE(p1.complete());
    p1.f3->Text1[0]->setText(QStringLiteral("5,2"));
    for (auto* w : p1.all())
        EXPECT_FALSE(CaptionIsUnchanged(w->caption())) << w->caption().toStdString();
    for (auto* w : main->projectWindowsOf(QStringLiteral("Projekti2")).all())
        EXPECT_TRUE(CaptionIsUnchanged(w->caption())) << w->caption().toStdString();
    // While a file is read, changes do not count.
    const ProjectWindows p2 = main->projectWindowsOf(QStringLiteral("Projekti2"));
    main->appState().Loading = true;
    main->contentChanged(p2.f1);
    main->appState().Loading = false;
    EXPECT_TRUE(CaptionIsUnchanged(p2.f1->caption()));
}

TEST_F(MainWindowTest, ClosingAChangedProjectAsksAndCanBeCancelled) {
    main->NewProject();
    const ProjectWindows p1 = main->projectWindowsOf(QStringLiteral("Projekti1"));
    main->contentChanged(p1.f1);
    main->activateWindow(p1.f1);
    dialogs.answer(MsgAnswer::Cancel);
    EXPECT_TRUE(main->UnloadActiveProject());
    EXPECT_EQ(main->projectWindows().size(), 8u);
    EXPECT_EQ(dialogs.lastText(),
              QStringLiteral("Tiedostoa: Projekti1\non muutettu. Tallennetaanko tiedosto:"));
    EXPECT_EQ(dialogs.messages().back().icon, platform::MsgIcon::Exclamation);
    // Yes with a cancelled save dialog also keeps the project.
    dialogs.answer(MsgAnswer::Yes);
    dialogs.chooseFile(QString());
    EXPECT_TRUE(main->UnloadActiveProject());
    EXPECT_EQ(main->projectWindows().size(), 8u);
    // No closes Projekti1 and leaves Projekti2's four windows.
    dialogs.answer(MsgAnswer::No);
    EXPECT_FALSE(main->UnloadActiveProject());
    QCoreApplication::processEvents();
    const QStringList left = captions();
    ASSERT_EQ(left.size(), 4);
    for (const QString& c : left)
        EXPECT_TRUE(c.startsWith(QStringLiteral("Projekti2 "))) << c.toStdString();
}

TEST_F(MainWindowTest, ShutdownClosesProjectsOneByOneAndCanBeCancelled) {
    main->NewProject();
    const ProjectWindows p2 = main->projectWindowsOf(QStringLiteral("Projekti2"));
    main->contentChanged(p2.f2);
    // Projekti1 is unchanged and goes without a question; Projekti2 asks, and Cancel stops.
    dialogs.answer(MsgAnswer::Cancel);
    EXPECT_FALSE(main->shutDown());
    QCoreApplication::processEvents();
    EXPECT_EQ(main->projectWindows().size(), 4u);
    EXPECT_EQ(main->tag(), QString());
    // While a file is being processed the user is asked first; No keeps everything.
    main->setFileOperation(true);
    dialogs.answer(MsgAnswer::No);
    EXPECT_FALSE(main->shutDown());
    EXPECT_EQ(dialogs.messages().back().icon, platform::MsgIcon::Critical);
    EXPECT_EQ(dialogs.messages().back().defaultButton, MsgAnswer::No);
    EXPECT_EQ(main->projectWindows().size(), 4u);
    main->setFileOperation(false);
    // Going on without saving ends the run.
    dialogs.answer(MsgAnswer::No);
    main->appState().settings.SaveSettingsOnExit = false;
    EXPECT_TRUE(main->shutDown());
    EXPECT_EQ(main->tag(), QStringLiteral("HardEnd"));
}

TEST_F(MainWindowTest, ShutdownWritesSettingsOnlyWhenAskedTo) {
    platform::SettingsStore store;
    main->appState().settings.VAT = QStringLiteral("24");
    main->appState().settings.SaveSettingsOnExit = false;
    EXPECT_TRUE(main->shutDown());
    EXPECT_EQ(store.get(QStringLiteral("General"), QStringLiteral("VAT"), QStringLiteral("-")),
              QStringLiteral("-"));

    MDIForm1 second;
    second.setProgramDirectory(testing_support::dataDir());
    second.startUp(false);
    second.appState().settings.VAT = QStringLiteral("24");
    EXPECT_TRUE(second.shutDown());
    store.sync();
    EXPECT_EQ(platform::SettingsStore().get(QStringLiteral("General"), QStringLiteral("VAT")),
              QStringLiteral("24"));
}

TEST_F(MainWindowTest, RecentFilesFillTheFileMenu) {
    main->UpdateRecentFiles(QStringLiteral("/sillat/a.sl"));
    main->UpdateRecentFiles(QStringLiteral("/sillat/b & c.sl"));
    EXPECT_TRUE(main->SubMenu0[19]->isVisible());
    EXPECT_TRUE(main->SubMenu0[13]->isVisible());
    EXPECT_EQ(main->SubMenu0[13]->text(), QStringLiteral("&1 /sillat/b && c.sl"));
    EXPECT_EQ(main->SubMenu0[14]->text(), QStringLiteral("&2 /sillat/a.sl"));
    EXPECT_FALSE(main->SubMenu0[15]->isVisible());
    // A recent file that no longer exists is reported, and nothing opens.
    main->FileMenuActions(14);
    EXPECT_EQ(dialogs.lastText(), QStringLiteral("Tiedostoa: /sillat/a.sl ei löydy."));
    EXPECT_EQ(main->projectWindows().size(), 4u);
}

TEST_F(MainWindowTest, FileNameInUseIgnoresLetterCase) {
    const ProjectWindows p1 = main->projectWindowsOf(QStringLiteral("Projekti1"));
    main->activateWindow(p1.f1);
    main->ChangeFormCaptions(QStringLiteral("Projekti1"), QStringLiteral("/tmp/Sillat/Silta12.sl"), true);
    EXPECT_EQ(p1.f4->caption(), QStringLiteral("/tmp/Sillat/Silta12.sl (Panostilakortti) Ei muutettu"));
    EXPECT_TRUE(main->FileNameInUse(QStringLiteral("/tmp/SILLAT/silta12.SL")));
    EXPECT_EQ(dialogs.lastText(), QStringLiteral("Tiedosto:/tmp/SILLAT/silta12.SL\non jo avoinna."));
    dialogs.clear();
    EXPECT_FALSE(main->FileNameInUse(QStringLiteral("/tmp/Sillat/Silta13.sl")));
    EXPECT_TRUE(dialogs.messages().empty());
}

TEST_F(MainWindowTest, NoActiveWindowDisablesProjectMenus) {
    main->UnloadActiveProject();
    QCoreApplication::processEvents();
    EXPECT_TRUE(main->projectWindows().empty());
    EXPECT_FALSE(main->MainMenu[2]->menuAction()->isEnabled());
    EXPECT_FALSE(main->MainMenu[3]->menuAction()->isEnabled());
    EXPECT_FALSE(main->SubMenu0[2]->isEnabled());
    EXPECT_FALSE(main->toolbarButtons[QStringLiteral("Save")]->isEnabled());
    EXPECT_TRUE(main->toolbarButtons[QStringLiteral("Open")]->isEnabled());
}

TEST_F(MainWindowTest, ProgressStripReplacesTheStatusBar) {
    main->show();
    main->DisplayProgress(0, QStringLiteral("Tallentaa tiedostoa..."));
    EXPECT_FALSE(main->statusBar()->isVisible());
    main->DisplayProgress(40);
    EXPECT_EQ(main->ProgressBar1->value(), 40);
    main->DisplayProgress(100);
    EXPECT_TRUE(main->statusBar()->isVisible());
    EXPECT_FALSE(main->ProgressBar1->isVisible());
}

TEST_F(MainWindowTest, ContractorModeDoesNotShowTheChargeChamberCard) {
    main->Submenu10Click(1);
    EXPECT_EQ(main->appState().ProgramMode, 2);
    main->NewProject();
    const ProjectWindows p2 = main->projectWindowsOf(QStringLiteral("Projekti2"));
    ASSERT_TRUE(p2.f4);
    auto* sub = qobject_cast<QMdiSubWindow*>(p2.f4->parentWidget());
    ASSERT_TRUE(sub);
    EXPECT_FALSE(sub->isVisible());
    main->ToolbarMenuActions(QStringLiteral("Dynamite"));
    EXPECT_NE(main->activeWindow(), p2.f4);
}

TEST_F(MainWindowTest, SettingsDialogEditsMemoryAndRestoringDefaultsSurvivesTheExit) {
    Form8 dialog(*main);
    EXPECT_EQ(dialog.Text1[0]->text(), QStringLiteral("€"));
    dialog.Text1[2]->setText(QStringLiteral("24"));
    dialog.Text2[2]->setText(QStringLiteral("2"));
    dialog.Text2[3]->setText(QStringLiteral("kolme")); // not a number: keeps its value
    dialog.Check2[0]->setChecked(false);
    dialog.Text3->setText(QStringLiteral("Rivi 1\r\nRivi 2\r\nRivi 3\r\nRivi 4\r\nRivi 5"));
    dialog.saveAndClose();
    const Settings& s = main->appState().settings;
    EXPECT_EQ(s.VAT, QStringLiteral("24"));
    EXPECT_EQ(s.BlankLines[2], 2);
    EXPECT_EQ(s.BlankLines[3], 1);
    EXPECT_FALSE(s.AutoFormat);
    EXPECT_EQ(main->appState().OfficeRows[3], QStringLiteral("Rivi 4"));
    // Nothing reaches the store before the end of the run.
    EXPECT_EQ(
        platform::SettingsStore().get(QStringLiteral("General"), QStringLiteral("VAT"), QStringLiteral("-")),
        QStringLiteral("-"));

    platform::SettingsStore().save(QStringLiteral("General"), QStringLiteral("VAT"), QStringLiteral("19"));
    Form8 second(*main);
    second.restoreDefaults();
    EXPECT_EQ(
        dialogs.lastText(),
        QStringLiteral("Ohjelman alkuperäiset asetukset palautuvat\r\nkun ohjelma käynnistetään uudestaan."));
    EXPECT_FALSE(second.Check1[2]->isChecked());
    EXPECT_TRUE(main->shutDown());
    AppState next;
    ReadSettingsValues(platform::SettingsStore(), next);
    EXPECT_EQ(next.settings.VAT, QStringLiteral("22"));
    EXPECT_TRUE(next.settings.AutoFormat);
    EXPECT_EQ(next.settings.BlankLines, (std::array<int, 6>{1, 1, 0, 1, 1, 0}));
}

// The main window showed before the splash and then jumped to its stored size, and the splash
// could not be closed early. Now the splash stands alone while the program starts, and a key
// on it closes it.
TEST(StartUp, TheSplashComesFirstAndAKeyClosesIt) {
    ScriptedDialogs dialogs;
    platform::SettingsStore().deleteAll();
    MDIForm1 main;
    main.setProgramDirectory(testing_support::dataDir());
    bool seen = false;
    QTimer::singleShot(0, &main, [&] {
        frmSplash* splash = nullptr;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* s = qobject_cast<frmSplash*>(w); s && s->isVisible()) splash = s;
        ASSERT_TRUE(splash);
        EXPECT_FALSE(main.isVisible());
        QTest::keyClick(splash, Qt::Key_Escape);
        EXPECT_FALSE(splash->isVisible());
        seen = true;
    });
    main.startUp(true);
    EXPECT_TRUE(seen);
    EXPECT_TRUE(main.isVisible());
    EXPECT_EQ(main.projectWindows().size(), 4u);
    for (QWidget* w : QApplication::topLevelWidgets())
        EXPECT_FALSE(qobject_cast<frmSplash*>(w)) << "the splash is gone after start-up";
    main.appState().settings.SaveSettingsOnExit = false;
    for (auto* w : main.projectWindows())
        main.FormUntouch(w);
}
