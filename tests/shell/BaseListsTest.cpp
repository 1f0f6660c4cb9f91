#include "MainWindowFixture.h"
#include "common/ScriptedDialogs.h"
#include "common/TestSupport.h"
#include "documents/Form2.h"
#include "lists/ui/BaseListWindow.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/Spreadsheet.h"
#include "platform/TextFile.h"
#include "lists/ui/ListView.h"
#include "platform/SettingsStore.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QRadioButton>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace shell;
using platform::MsgAnswer;
using testing_support::ScriptedDialogs;

namespace {

class BaseListsTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        main->appState().settings.SaveSettingsOnExit = false;
        main->showProjectWindow(2);
    }
    // Selects the first row of a base list whose column holds the text.
    int selectRow(lists::BaseListWindow* w, int column, const QString& text) {
        lists::ListModel& list = *w->list();
        for (int r = 1; r <= list.rows(); ++r) {
            if (list.cell(r, column).toString() == text) {
                list.selectOnly(r);
                return r;
            }
        }
        ADD_FAILURE() << "no row " << text.toStdString();
        return 0;
    }
    int findRow(const lists::ListModel& list, int column, const QString& text) {
        for (int r = 1; r <= list.rows(); ++r)
            if (list.cell(r, column).toString() == text) return r;
        return 0;
    }
};

} // namespace

TEST_F(BaseListsTest, LoadedHiddenWithTheDefaultListsAndTheirCaptions) {
    ASSERT_TRUE(main->Form6 && main->Form7);
    EXPECT_FALSE(main->Form6->isVisible());
    EXPECT_EQ(main->Form6->windowTitle(),
              testing_support::dataDir() +
                  QStringLiteral("Yksikköhinnat2002.sl1 (Yksikköhintaluettelo) Ei muutettu"));
    EXPECT_EQ(main->Form7->list()->kind(), QStringLiteral("Laatuvaatimusten perusluettelo"));
    EXPECT_GT(main->Form6->list()->rows(), 150);
    EXPECT_GT(main->Form7->list()->rows(), 120);
    EXPECT_EQ(main->Form6->priceColumn(), 5); // "&B (normaalit)" is chosen at start
    EXPECT_EQ(main->Form6->SubMenu1[6]->text(), QStringLiteral("Listää rivi listan loppuun"));
    EXPECT_EQ(main->Form7->SubMenu12[1]->text(), QStringLiteral("Lisää valinnan kohdelle"));
}

TEST_F(BaseListsTest, AddingARequirementBringsItsCaptionsToTheirPlace) {
    lists::ListModel& target = *main->ParseFormIndeces().f2->list(1);
    ASSERT_EQ(target.rows(), 0);
    lists::BaseListWindow* f7 = main->Form7;
    const lists::ListModel& base = *f7->list();
    // The first requirement after a second-level caption.
    int entry = 0;
    for (int r = 2; r <= base.rows() && !entry; ++r)
        if (!lists::BlankString(base.cell(r, 2).toString()) && lists::BlankString(base.cell(r, 1).toString()))
            entry = r;
    ASSERT_GT(entry, 0);
    const lists::CaptionInfo caption = lists::FindCaption(base, entry);
    base.row(entry); // the entry itself
    f7->list()->selectOnly(entry);
    f7->editMenuClick(0);
    ASSERT_GE(target.rows(), 3);
    const int c = findRow(target, 1, caption.captionLittera);
    const int e = findRow(target, 3, base.cell(entry, 3).toString());
    ASSERT_GT(c, 0);
    ASSERT_GT(e, c);
    if (caption.subcaptionRow > 0) {
        const int s = findRow(target, 1, caption.subcaptionLittera);
        EXPECT_GT(s, c);
        EXPECT_LT(s, e);
    }
    EXPECT_FALSE(CaptionIsUnchanged(main->ParseFormIndeces().f2->caption()));
    // The base list itself is unchanged by adding.
    EXPECT_TRUE(CaptionIsUnchanged(f7->windowTitle()));
}

TEST_F(BaseListsTest, UnitPricesOfTheChosenConditionsAndTheContractorsRights) {
    lists::ListModel& quantities = *main->ParseFormIndeces().f2->list(0);
    lists::BaseListWindow* f6 = main->Form6;
    int item = 0;
    for (int r = 1; r <= f6->list()->rows() && !item; ++r)
        if (lists::BlankString(f6->list()->cell(r, 1).toString()) &&
            !lists::BlankString(f6->list()->cell(r, 5).toString()))
            item = r;
    ASSERT_GT(item, 0);
    const QString name = f6->list()->cell(item, 2).toString();
    f6->list()->selectOnly(item);
    f6->editMenuClick(0);
    int row = 0;
    for (int r = 1; r <= quantities.rows() && !row; ++r)
        if (quantities.cell(r, 2).toString() == name && lists::BlankString(quantities.cell(r, 1).toString()))
            row = r;
    ASSERT_GT(row, 0);
    EXPECT_EQ(quantities.cell(row, 6).toString(), f6->list()->cell(item, 5).toString()); // B
    EXPECT_EQ(quantities.cell(row, 5).toString(), f6->list()->cell(item, 3).toString()); // unit

    // "&C (vaikeat)" and "Lisää loppuun": at the end with the C price.
    f6->Option1[2]->setChecked(true);
    f6->SubMenu12[3]->trigger();
    int last = quantities.rows();
    while (last > 0 && lists::BlankListItem(quantities, last).blank)
        --last;
    EXPECT_EQ(quantities.cell(last, 2).toString(), name);
    EXPECT_EQ(quantities.cell(last, 6).toString(), f6->list()->cell(item, 6).toString());

    // The contractor cannot add unit prices; the button is off and the command does nothing.
    main->Submenu10Click(1);
    EXPECT_FALSE(f6->Command1[0]->isEnabled());
    const int before = quantities.rows();
    f6->editMenuClick(0);
    EXPECT_EQ(quantities.rows(), before);
}

TEST_F(BaseListsTest, AContractorsBridgeSpecificRequirementArrivesAsAdvisory) {
    main->Submenu10Click(1);
    lists::ListModel& target = *main->ParseFormIndeces().f2->list(1);
    lists::BaseListWindow* f7 = main->Form7;
    int entry = 0;
    for (int r = 1; r <= f7->list()->rows() && !entry; ++r)
        if (f7->list()->cell(r, 4).toString().startsWith(QLatin1Char('1'))) entry = r;
    ASSERT_GT(entry, 0);
    f7->list()->selectOnly(entry);
    f7->editMenuClick(0);
    const int row = findRow(target, 3, f7->list()->cell(entry, 3).toString());
    ASSERT_GT(row, 0);
    EXPECT_TRUE(target.cell(row, 4).toString().startsWith(QLatin1Char('3')))
        << target.cell(row, 4).toString().toStdString();
}

TEST_F(BaseListsTest, WithNoProjectOpenAddingDoesNothing) {
    main->UnloadActiveProject();
    QCoreApplication::processEvents();
    ASSERT_TRUE(main->projectWindows().empty());
    main->Form7->list()->selectOnly(5);
    main->Form7->editMenuClick(0);
    EXPECT_TRUE(dialogs.messages().empty());
    EXPECT_TRUE(CaptionIsUnchanged(main->Form7->windowTitle()));
}

TEST_F(BaseListsTest, ClosingAChangedBaseListAsksAndCancelsAShutdown) {
    lists::BaseListWindow* f7 = main->Form7;
    main->showBaseList(7);
    const int rows = f7->list()->rows();
    f7->list()->selectOnly(3);
    f7->editMenuClick(7); // "Poista rivi"
    EXPECT_EQ(f7->list()->rows(), rows - 1);
    EXPECT_FALSE(CaptionIsUnchanged(f7->windowTitle()));
    // Shutdown: No to going on without saving keeps everything open.
    dialogs.answer(MsgAnswer::No);
    EXPECT_FALSE(main->shutDown());
    EXPECT_TRUE(dialogs.lastText().startsWith(QStringLiteral("Perusluettelotiedostoa: ")));
    EXPECT_EQ(main->projectWindows().size(), 4u);
    EXPECT_EQ(f7->list()->rows(), rows - 1);
    // Closing by hand and going on without saving reads the file again and hides the window.
    dialogs.answer(MsgAnswer::Yes);
    f7->close();
    EXPECT_FALSE(f7->isVisible());
    EXPECT_EQ(f7->list()->rows(), rows);
    EXPECT_TRUE(CaptionIsUnchanged(f7->windowTitle()));
}

TEST_F(BaseListsTest, SavingAsGivesTheWindowTheNewFile) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("omat.sl2"));
    main->Form7->list()->setCell(4, 3, QStringLiteral("Muutettu teksti"));
    main->FormTouch(main->Form7);
    dialogs.chooseFile(file);
    main->Form7->ListViewFileMenuActions(2);
    EXPECT_EQ(main->Form7->windowTitle(), file + QStringLiteral(" (Laatuvaatimusluettelo) Ei muutettu"));
    // Cancelling "Avaa..." leaves list and caption alone.
    dialogs.chooseFile(QString());
    main->Form7->ListViewFileMenuActions(0);
    EXPECT_EQ(main->Form7->list()->cell(4, 3).toString(), QStringLiteral("Muutettu teksti"));
    // Opening the saved file gives back what was saved.
    dialogs.chooseFile(file);
    main->Form7->ListViewFileMenuActions(0);
    EXPECT_EQ(main->Form7->list()->cell(4, 3).toString(), QStringLiteral("Muutettu teksti"));
}

TEST_F(BaseListsTest, AMissingDefaultListIsReportedAndLeavesAnEmptyList) {
    platform::SettingsStore store;
    store.save(QStringLiteral("Files"), QStringLiteral("File1"), QStringLiteral("/ei/ole/lista.sl2"));
    MDIForm1 other;
    other.setProgramDirectory(testing_support::dataDir());
    other.startUp(false);
    other.appState().settings.SaveSettingsOnExit = false;
    EXPECT_TRUE(dialogs.texts().contains(QStringLiteral("Tiedostoa: /ei/ole/lista.sl2 ei löydy.")));
    EXPECT_EQ(other.Form7->list()->rows(), 0);
    store.deleteAll();
}

// "&Avaa..." accepted a spreadsheet as a list file: it showed as garbage, the caption named
// the spreadsheet, and saving wrote text over it. It now goes through the import, and the
// window is named after a list file beside it.
TEST_F(BaseListsTest, OpeningASpreadsheetImportsItAndNeverSavesOverIt) {
    QTemporaryDir dir;
    lists::BaseListWindow* f7 = main->Form7;
    const QString sheet = dir.filePath(QStringLiteral("vaatimukset.xlsx"));
    QString error;
    ASSERT_TRUE(lists::ExportListViewXlsx(*f7->list(), sheet, &error)) << error.toStdString();
    QByteArray sheetBytes;
    ASSERT_TRUE(platform::readFileBytes(sheet, sheetBytes));
    const int rows = f7->list()->rows();
    const QString third = f7->list()->cell(3, 3).toString();

    dialogs.chooseFile(sheet);
    f7->SubMenu0[0]->trigger(); // "&Avaa..."
    EXPECT_EQ(f7->windowTitle(),
              dir.filePath(QStringLiteral("vaatimukset.sl2")) + QStringLiteral(" (Laatuvaatimusluettelo)"));
    // The rows came in; the header row the export wrote is not one of them.
    EXPECT_EQ(f7->list()->rows(), rows);
    EXPECT_GT(findRow(*f7->list(), 3, third), 0);
    f7->SubMenu0[1]->trigger(); // "&Tallenna"
    EXPECT_TRUE(QFileInfo::exists(dir.filePath(QStringLiteral("vaatimukset.sl2"))));
    QByteArray after;
    ASSERT_TRUE(platform::readFileBytes(sheet, after));
    EXPECT_EQ(after, sheetBytes);
    EXPECT_TRUE(f7->windowTitle().endsWith(QStringLiteral(" Ei muutettu")));
}

// "T&uo..." refused macro workbooks and templates by their extension. The file dialog offers
// them beside the workbooks, and one is read as the workbook it is (only its cells; nothing in
// it is run).
TEST_F(BaseListsTest, ImportReadsMacroWorkbooksAndTemplates) {
    QTemporaryDir dir;
    lists::BaseListWindow* f6 = main->Form6;
    const QString sheet = dir.filePath(QStringLiteral("hinnat.xlsm"));
    ASSERT_TRUE(
        QFile::copy(testing_support::sourceDir() + QStringLiteral("/tests/lists/data/taulukko.xlsm"), sheet));
    dialogs.chooseFile(sheet);
    f6->ListViewFileMenuActions(4); // "T&uo..."
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
    ASSERT_FALSE(dialogs.fileRequests().empty());
    const QString filters = dialogs.fileRequests().back().filters.join(QStringLiteral(";;"));
    for (const char* pattern : {"*.xlsx", "*.xlsm", "*.xlsb", "*.xltx", "*.xltm", "*.ods"})
        EXPECT_TRUE(filters.contains(QLatin1String(pattern))) << pattern << " in " << filters.toStdString();
    ASSERT_EQ(f6->list()->rows(), 8);
    EXPECT_EQ(f6->list()->cell(2, 2).toString(), QStringLiteral("Kaivu ja täyttö"));
}

// "&Vie..." and "T&uo..." are each other's counterpart: the unit price list goes out to a
// spreadsheet under the extension of what is written and comes back row for row.
TEST_F(BaseListsTest, ExportedPriceListComesBackAsItWent) {
    QTemporaryDir dir;
    lists::BaseListWindow* f6 = main->Form6;
    std::vector<QStringList> before;
    for (const lists::Row& row : f6->list()->allRows())
        before.push_back(row.cells.toStringList());
    ASSERT_GT(before.size(), 150u);

    dialogs.chooseFile(dir.filePath(QStringLiteral("hinnat.xls")));
    f6->ListViewFileMenuActions(5); // "&Vie..."
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
    EXPECT_FALSE(QFileInfo::exists(dir.filePath(QStringLiteral("hinnat.xls"))));
    ASSERT_TRUE(QFileInfo::exists(dir.filePath(QStringLiteral("hinnat.xlsx"))));
    EXPECT_TRUE(CaptionIsUnchanged(f6->windowTitle())) << "exporting changes nothing";

    f6->list()->setCell(4, 2, QStringLiteral("muutettu"));
    dialogs.chooseFile(dir.filePath(QStringLiteral("hinnat.xlsx")));
    f6->ListViewFileMenuActions(4); // "T&uo..."
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
    std::vector<QStringList> after;
    for (const lists::Row& row : f6->list()->allRows())
        after.push_back(row.cells.toStringList());
    EXPECT_EQ(after, before);
    EXPECT_FALSE(CaptionIsUnchanged(f6->windowTitle())) << "an import changes the list";
}

// Installed, the shipped lists lie in the read-only program folder and "&Tallenna" failed for
// every user but root. The user's own copy goes to the data folder now, is read in place of
// the shipped list from then on, and "Palauta ohjelman mukana tullut luettelo" brings the
// shipped one back. A shipped logo is kept in the settings by name, not by the folder's path.
TEST(ShippedFiles, SavingAShippedListWritesTheUsersOwnCopy) {
    testing_support::ScriptedDialogs dialogs;
    platform::SettingsStore().deleteAll();
    // A program folder of its own, so that nothing can write into the repository's data.
    QTemporaryDir program;
    const QDir data(testing_support::dataDir());
    for (const QString& name : data.entryList(QDir::Files))
        ASSERT_TRUE(QFile::copy(data.filePath(name), program.filePath(name)));
    const QString shipped = program.filePath(QStringLiteral("Yksikköhinnat2002.sl1"));
    QByteArray shippedBytes;
    ASSERT_TRUE(platform::readFileBytes(shipped, shippedBytes));
    QFile::setPermissions(shipped, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);

    auto start = [&program] {
        auto m = std::make_unique<shell::MDIForm1>();
        m->setProgramDirectory(program.path());
        m->startUp(false);
        return m;
    };
    auto main = start();
    const QString own = main->appState().UserDataPath + QStringLiteral("Yksikköhinnat2002.sl1");
    ASSERT_FALSE(main->appState().UserDataPath.isEmpty());
    EXPECT_FALSE(QFile::exists(own));
    EXPECT_EQ(main->Form6->currentFile(), shipped);
    main->Form6->list()->setCell(2, 2, QStringLiteral("Oma työvaihe"));
    main->FormTouch(main->Form6);
    main->Form6->ListViewFileMenuActions(1);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
    EXPECT_TRUE(QFile::exists(own));
    EXPECT_EQ(main->Form6->currentFile(), own);
    QByteArray after;
    ASSERT_TRUE(platform::readFileBytes(shipped, after));
    EXPECT_EQ(after, shippedBytes) << "the shipped list is never written";
    main->SaveSettings();
    EXPECT_EQ(platform::SettingsStore().get(QStringLiteral("Printer"), QStringLiteral("PLogoFile")),
              QStringLiteral("Tamrik2006-logo.wmf"));
    main->appState().settings.SaveSettingsOnExit = false;
    main.reset();

    // The next start reads the user's copy; restoring brings the shipped list back.
    main = start();
    EXPECT_EQ(main->Form6->currentFile(), own);
    EXPECT_EQ(main->Form6->list()->cell(2, 2).toString(), QStringLiteral("Oma työvaihe"));
    EXPECT_EQ(main->appState().settings.PLogoFile, program.filePath(QStringLiteral("Tamrik2006-logo.wmf")));
    QAction* restore = main->Form6->SubMenu0.at(8);
    EXPECT_EQ(restore->text(), QStringLiteral("&Palauta ohjelman mukana tullut luettelo"));
    dialogs.answer(platform::MsgAnswer::Yes);
    restore->trigger();
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_TRUE(dialogs.lastText().contains(own));
    EXPECT_FALSE(QFile::exists(own));
    EXPECT_EQ(main->Form6->currentFile(), shipped);
    EXPECT_NE(main->Form6->list()->cell(2, 2).toString(), QStringLiteral("Oma työvaihe"));
    main->appState().settings.SaveSettingsOnExit = false;
}
