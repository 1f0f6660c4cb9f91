// Where the file dialogs start, and the recent files of the File menu.
#include "MainWindowFixture.h"
#include "platform/CommonDialog.h"
#include "shell/Captions.h"
#include "shell/Settings.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>

using platform::CommonDialogState;
using platform::ShowCommonDialog;

namespace {

class FileFoldersTest : public MainWindowFixture {
protected:
    // A copy of the sample project in a folder of its own.
    QString sampleIn(const QString& folder) {
        QDir().mkpath(dir.filePath(folder));
        const QString file = dir.filePath(folder + QStringLiteral("/Silta.sl"));
        QFile::copy(testing_support::dataDir() + "Esimerkkisilta.sl", file);
        return file;
    }
    // The folder and suggested name of the next project dialog of a File menu item (cancelled).
    platform::FileRequest requestOf(int item) {
        dialogs.chooseFile(QString());
        main->FileMenuActions(item);
        return dialogs.fileRequests().empty() ? platform::FileRequest() : dialogs.fileRequests().back();
    }
    QTemporaryDir dir;
};

} // namespace

TEST_F(FileFoldersTest, ProjectDialogsStartInTheActiveProjectsFolderElseTheLastOne) {
    // Nothing used yet: the user's home folder, not the top of the computer.
    EXPECT_EQ(requestOf(1).directory, QDir::homePath());

    const QString a = sampleIn("a");
    main->openFromCommandLine(a);
    ASSERT_EQ(shell::ParseFileName(main->ActiveCaption()).project(), a);
    EXPECT_EQ(requestOf(1).directory, dir.filePath("a"));
    // "Tallenna nimellä..." starts at the project's own file.
    const platform::FileRequest saveAs = requestOf(3);
    EXPECT_TRUE(saveAs.save);
    EXPECT_EQ(saveAs.directory, dir.filePath("a"));
    EXPECT_EQ(saveAs.fileName, QStringLiteral("Silta.sl"));

    // A second project from another folder, chosen in the dialog: that folder is the last one.
    const QString b = sampleIn("b");
    main->FileMenuActions(0);
    dialogs.chooseFile(b);
    main->FileMenuActions(1);
    ASSERT_EQ(shell::ParseFileName(main->ActiveCaption()).project(), b);
    // A new project has no folder: its dialogs start where projects were last opened.
    main->FileMenuActions(0);
    EXPECT_TRUE(shell::ParseFileName(main->ActiveCaption()).directory.isEmpty());
    EXPECT_EQ(requestOf(1).directory, dir.filePath("b"));
    const platform::FileRequest save = requestOf(2);
    EXPECT_EQ(save.directory, dir.filePath("b"));
    EXPECT_TRUE(save.fileName.isEmpty());
    // Back on the first project, its own folder again.
    main->ShowWindowByCaption(shell::MakeCaption(a, 1, true));
    EXPECT_EQ(requestOf(1).directory, dir.filePath("a"));

    // The settings keep the projects' folder for the next run.
    main->SaveSettings();
    shell::AppState next;
    shell::ReadSettingsValues(main->settingsStore(), next);
    EXPECT_EQ(next.dialog.folders["Projects"], dir.filePath("b"));
}

TEST_F(FileFoldersTest, PictureListAndSpreadsheetDialogsEachKeepTheirOwnFolder) {
    CommonDialogState state;
    const char* const kinds[][2] = {{".wmf", "kuvat"}, {".sl1", "luettelot"}, {".xls", "taulukot"}};
    for (const auto& [extension, folder] : kinds) {
        QDir().mkpath(dir.filePath(folder));
        EXPECT_EQ(platform::startFolder(extension, state), QDir::homePath()) << extension;
        dialogs.chooseFile(dir.filePath(QString::fromLatin1(folder) + "/x" + extension));
        ShowCommonDialog(1, QString::fromLatin1(extension), false, state);
    }
    for (const auto& [extension, folder] : kinds) {
        dialogs.chooseFile(QString());
        ShowCommonDialog(1, QString::fromLatin1(extension), false, state);
        EXPECT_EQ(dialogs.fileRequests().back().directory, dir.filePath(folder)) << extension;
    }
    // The two base lists share the lists' folder; a text or an attachment keeps its own.
    EXPECT_EQ(platform::startFolder(".sl2", state), dir.filePath("luettelot"));
    EXPECT_EQ(platform::startFolder(".*", state), QDir::homePath());
    // A remembered folder that is gone gives way to the home folder.
    QDir(dir.filePath("kuvat")).removeRecursively();
    EXPECT_EQ(platform::startFolder(".wmf", state), QDir::homePath());

    // Kept in the settings, and left out of them while unused.
    shell::AppState used;
    used.dialog = state;
    platform::SettingsStore store(QStringLiteral("tamrik-test-folders"));
    store.deleteAll();
    shell::AppState none;
    shell::WriteSettingsValues(store, none);
    EXPECT_TRUE(store.get("Folders", "Lists").isEmpty());
    shell::WriteSettingsValues(store, used);
    shell::AppState back;
    shell::ReadSettingsValues(store, back);
    EXPECT_EQ(back.dialog.folders, state.folders);
    store.deleteAll();
}

TEST_F(FileFoldersTest, RecentFilesShowTheirFolderAndDropFilesThatAreGone) {
    const QString a = sampleIn("a");
    const QString b = sampleIn("b");
    main->openFromCommandLine(a);
    main->openFromCommandLine(b);
    QAction* first = main->SubMenu0[13];
    QAction* second = main->SubMenu0[14];
    EXPECT_TRUE(first->text().endsWith(b));
    EXPECT_EQ(first->toolTip(), QDir::toNativeSeparators(dir.filePath("b")));
    EXPECT_EQ(second->toolTip(), QDir::toNativeSeparators(dir.filePath("a")));

    // A file gone before the menu opens leaves the list.
    QFile::remove(b);
    emit main->MainMenu[0]->aboutToShow();
    EXPECT_TRUE(first->text().endsWith(a));
    EXPECT_FALSE(second->isVisible());
    EXPECT_TRUE(main->appState().RecentFiles[1].isEmpty());

    // One gone while the menu is open says so when chosen, and leaves the list too.
    QFile::remove(a);
    main->FileMenuActions(13);
    EXPECT_EQ(dialogs.lastText(), QStringLiteral("Tiedostoa: ") + a + QStringLiteral(" ei löydy."));
    EXPECT_FALSE(first->isVisible());
    EXPECT_FALSE(main->SubMenu0[19]->isVisible());
}
