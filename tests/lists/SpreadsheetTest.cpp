// Spreadsheet import of files made by LibreOffice, the row rules of the import, damaged files,
// and the .xlsx export.
#include "ListBuilders.h"
#include "common/ScriptedDialogs.h"
#include "common/TestSupport.h"
#include "lists/ListFiles.h"
#include "lists/Spreadsheet.h"
#include "platform/TextFile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <ixion/address.hpp>
#include <ixion/cell_access.hpp>
#include <ixion/model_context.hpp>
#include <orcus/orcus_xlsx.hpp>
#include <orcus/spreadsheet/document.hpp>
#include <orcus/spreadsheet/factory.hpp>

using namespace lists;
using lists_test::fill;
using testing_support::ScriptedDialogs;

namespace {

QString fixture(const QString& name) {
    return testing_support::sourceDir() + "/tests/lists/data/" + name;
}

void unitPriceList(ListModel& list) {
    fill(list, kind::UnitPriceList,
         {"LITTERA", "TYÖVAIHE", "YKSIKKÖ", "A (HELPOT)", "B (NORMAALIT)", "C (VAIKEAT)", "HUOMAUTUKSET"},
         {{"9999", "VANHA RIVI"}});
}

// What taulukko-lahde.csv holds, as the import must give it.
const std::vector<QStringList> kSheet{
    {"LITTERA", "TYÖVAIHE", "YKSIKKÖ", "A (HELPOT)", "B (NORMAALIT)", "C (VAIKEAT)", "HUOMAUTUKSET"},
    {"7100", "SILTAPAIKAN POHJATYÖT", "", "", "", "", ""},
    {"7110", "Kaivu ja täyttö", "m3", "12,5", "14", "16,75", "15.3.2024"},
    {"", "Kallion louhinta", "m3", "1234567", "0,1", "-3,25", ""},
    {"", "", "", "", "", "", ""},
    {"", "", "", "", "", "", ""},
    {"", "", "", "", "", "", ""},
    {"7131.1", "Paalutus; teräsputki", "kpl", "", "2500", "", "Ääriarvot Öljy ålandsk"},
    {"", "jatkorivi", "", "", "", "", ""},
};

// The type of a cell in an .xlsx file as the file stores it.
ixion::celltype_t storedType(const QString& path, int row, int col) {
    orcus::spreadsheet::document doc({1048576, 16384});
    orcus::spreadsheet::import_factory factory(doc);
    orcus::orcus_xlsx(&factory).read_file(path.toStdString());
    return doc.get_model_context().get_cell_access(ixion::abs_address_t(0, row, col)).get_type();
}

} // namespace

TEST(SpreadsheetImport, FilesMadeByLibreOffice) {
    for (const QString name : {"taulukko.xls", "taulukko.xlsx", "taulukko.ods"}) {
        SCOPED_TRACE(name.toStdString());
        ScriptedDialogs dialogs;
        ListModel list;
        unitPriceList(list);
        // Through InitListView with ".xls" as the separator, as the file menu does.
        ASSERT_TRUE(InitListView(list, fixture(name), ".xls")) << dialogs.lastText().toStdString();
        EXPECT_TRUE(dialogs.messages().empty());
        EXPECT_EQ(list.cols(), 8) << "the list keeps its columns";
        EXPECT_EQ(list.column(2).header, "TYÖVAIHE");
        EXPECT_EQ(lists_test::dataRows(list), kSheet);
        EXPECT_EQ(lists_test::rowNumbers(list), (QStringList{"00001", "00002", "00003", "00004", "00005",
                                                             "00006", "00007", "00008", "00009"}));
    }
    // Any letter case of the extension; a list with fewer columns takes the first ones.
    QTemporaryDir dir;
    const QString upper = dir.filePath("TAULUKKO.XLSX");
    ASSERT_TRUE(QFile::copy(fixture("taulukko.xlsx"), upper));
    ListModel narrow;
    fill(narrow, kind::QuantityList, {"LITTERA", "TYÖVAIHE"}, {});
    ASSERT_TRUE(ImportListViewXls(narrow, upper));
    EXPECT_EQ(narrow.cols(), 3);
    EXPECT_EQ(narrow.row(3).cells, (QStringList{"7110", "Kaivu ja täyttö", "00003"}));
}

TEST(SpreadsheetImport, HundredBlankRowsEndTheSheet) {
    // Written by the export: row 1 is the header, then the list's rows.
    QTemporaryDir dir;
    ListModel source;
    std::vector<QStringList> rows{{"7100", "ALKU"}};
    for (int i = 0; i < 99; ++i)
        rows.push_back({});
    rows.push_back({"7200", "99 TYHJÄN JÄLKEEN"});
    for (int i = 0; i < 100; ++i)
        rows.push_back({});
    rows.push_back({"7300", "100 TYHJÄN JÄLKEEN"});
    fill(source, kind::UnitPriceList, {"LITTERA", "TYÖVAIHE"}, rows);
    const QString path = dir.filePath("aukot.xlsx");
    QString error;
    ASSERT_TRUE(ExportListViewXlsx(source, path, &error)) << error.toStdString();

    ListModel list;
    fill(list, kind::UnitPriceList, {"LITTERA", "TYÖVAIHE"}, {});
    ASSERT_TRUE(ImportListViewXls(list, path));
    // Header, "ALKU", 99 blank rows, the row after them; the 100 blank rows end the sheet and
    // are dropped, so the last row is never read.
    ASSERT_EQ(list.rows(), 102);
    EXPECT_EQ(list.cell(2, 2), "ALKU");
    EXPECT_EQ(list.cell(102, 2), "99 TYHJÄN JÄLKEEN");
    EXPECT_EQ(list.rowNumberText(102), "00102");
}

TEST(SpreadsheetImport, DamagedOrMissingFileLeavesListAlone) {
    const QStringList files{fixture("damaged/katkennut.xlsx"), fixture("damaged/katkennut.ods"),
                            fixture("damaged/sotkettu.xls"), fixture("damaged/tekstia.xlsx"),
                            fixture("taulukko-lahde.csv")};
    for (const QString& path : files) {
        SCOPED_TRACE(path.toStdString());
        ScriptedDialogs dialogs;
        ListModel list;
        unitPriceList(list);
        list.selectOnly(1);
        EXPECT_FALSE(ImportListViewXls(list, path));
        ASSERT_EQ(dialogs.messages().size(), 1u);
        EXPECT_TRUE(dialogs.lastText().startsWith("Taulukkotiedostoa: " + path + " ei voitu lukea.") ||
                    dialogs.lastText().startsWith("Tiedostoa: " + path + " ei voi tuoda."))
            << dialogs.lastText().toStdString();
        EXPECT_EQ(lists_test::dataRows(list),
                  (std::vector<QStringList>{{"9999", "VANHA RIVI", "", "", "", "", ""}}));
        EXPECT_EQ(list.selectedRows(), std::vector<int>{1});
    }
    ScriptedDialogs dialogs;
    ListModel list;
    unitPriceList(list);
    EXPECT_FALSE(InitListView(list, fixture("puuttuu.xls"), ".xls"));
    EXPECT_EQ(dialogs.lastText(), "Tiedostoa: " + fixture("puuttuu.xls") + " ei löydy.");
    EXPECT_EQ(list.rows(), 1);
}

TEST(SpreadsheetNumbers, TextAsTyped) {
    EXPECT_EQ(spreadsheetNumberText(12.5), "12,5");
    EXPECT_EQ(spreadsheetNumberText(14), "14");
    EXPECT_EQ(spreadsheetNumberText(-3.25), "-3,25");
    EXPECT_EQ(spreadsheetNumberText(0.1 + 0.2), "0,3") << "fifteen significant digits";
    EXPECT_EQ(spreadsheetNumberText(1.0 / 3), "0,333333333333333");
    EXPECT_EQ(spreadsheetNumberText(1e-7), "0,0000001") << "never an exponent";
    EXPECT_EQ(spreadsheetNumberText(1234567890123.0), "1234567890123");
    EXPECT_EQ(spreadsheetNumberText(-0.0), "0");

    EXPECT_EQ(cellTextNumber("12,5"), 12.5);
    EXPECT_EQ(cellTextNumber("-3"), -3.0);
    EXPECT_EQ(cellTextNumber("7100"), 7100.0);
    for (const QString text : {"12,50", "007", "7131.1", "1 000", "", "-0", "1,", "+5", "12,5 m"})
        EXPECT_FALSE(cellTextNumber(text).has_value()) << text.toStdString();
}

TEST(SpreadsheetExport, NumbersAsNumbersAndReplacesWhole) {
    QTemporaryDir dir;
    ListModel list;
    fill(list, kind::UnitPriceList, {"LITTERA", "TYÖVAIHE", "A", "B"},
         {{"7110", "Kaivu", "12,5", "12,50"}, {"7131.1", "  sisennetty", "-3", ""}});
    const QString path = dir.filePath("vienti.xlsx");
    ASSERT_TRUE(platform::writeFileAtomically(path, "vanha sisältö"));
    QString error;
    ASSERT_TRUE(ExportListViewXlsx(list, path, &error)) << error.toStdString();

    EXPECT_EQ(storedType(path, 0, 0), ixion::celltype_t::string) << "header";
    EXPECT_EQ(storedType(path, 1, 0), ixion::celltype_t::numeric) << "7110";
    EXPECT_EQ(storedType(path, 1, 2), ixion::celltype_t::numeric) << "12,5";
    EXPECT_EQ(storedType(path, 1, 3), ixion::celltype_t::string) << "12,50 stays as typed";
    EXPECT_EQ(storedType(path, 2, 0), ixion::celltype_t::string) << "7131.1";
    EXPECT_EQ(storedType(path, 2, 3), ixion::celltype_t::empty);

    std::vector<QStringList> rows;
    ASSERT_TRUE(readFirstSheet(path, 0, rows, &error));
    EXPECT_EQ(rows, (std::vector<QStringList>{{"LITTERA", "TYÖVAIHE", "A", "B"},
                                              {"7110", "Kaivu", "12,5", "12,50"},
                                              {"7131.1", "  sisennetty", "-3", ""}}));
    // Nothing but the target is left in the folder.
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"vienti.xlsx"});

    // An unwritable place: an error, no file.
    EXPECT_FALSE(ExportListViewXlsx(list, dir.filePath("ei/ole/vienti.xlsx"), &error));
    EXPECT_TRUE(error.startsWith("Tiedostoa: ")) << error.toStdString();
}
