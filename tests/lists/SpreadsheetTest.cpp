// Spreadsheet import of files made by LibreOffice (each compared with what LibreOffice shows of
// it), the row rules of the import, damaged files, and the .xlsx export.
#include "ListBuilders.h"
#include "SheetFiles.h"
#include "common/ScriptedDialogs.h"
#include "common/TestSupport.h"
#include "lists/ListFiles.h"
#include "lists/Spreadsheet.h"
#include "lists/spreadsheet/Archive.h"
#include "platform/TextFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

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

std::vector<QStringList> sheetOf(const QString& path, int columns) {
    std::vector<QStringList> rows;
    QString error;
    EXPECT_TRUE(readFirstSheet(path, columns, rows, &error)) << error.toStdString();
    return rows;
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

// What LibreOffice shows of kaavat.fods (and of the .xls, .xlsx and .ods it wrote from it), as
// the import writes it: a decimal comma, no grouping or currency sign, true and false in
// Finnish, hours without a leading zero.
const std::vector<QStringList> kFormulas{
    {"LITTERA", "TYÖVAIHE", "MÄÄRÄ", "YKS.HINTA", "YHTEENSÄ", "HUOMAUTUKSET"},
    {"7110", "Kaivu", "12,5", "45,50", "568,75", "kaivu ja täyttö"},
    {"TOSI", "#DIV/0!", "#N/A", "", "EPÄTOSI", "58"},
    {"16:00", "12:30:00", "27:30:05", "26:15", "8:05:30", "16:00"},
    {"15.3.2024", "15.3.2024 13:45", "29.2.2024", "12,5%", "1234,50", "2,68"},
    {"rivi yksi\r\nrivi kaksi", "a   b", "  sisennys", "kommentoitu", "3,14E-300", "1E-10"},
    {"yhdistetty ylä", "kaksi riviä", "C7", "0,0000001", "1234567", "12,00"},
    {"yhdistetty ala", "", "C8", "D8", "", ""},
    {"sama", "rivi", "", "", "", ""},
    {"sama", "rivi", "", "", "", ""},
    {"sama", "rivi", "", "", "", ""},
    {"loppu", "-3,25", "", "", "", ""},
};

// A cell of an .xlsx file as the file stores it: its type and its number format.
struct StoredCell {
    QString type;   // "s", "n", ... ("n" when the file gives none)
    QString format; // the number format code; "General" for none
};

std::map<QString, StoredCell> storedCells(const QString& path) {
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray bytes = f.readAll();
    QString error;
    const auto zip = sheet::Archive::open(bytes, &error);
    EXPECT_TRUE(zip) << error.toStdString();
    if (!zip) return {};
    QByteArray styles, sheetXml;
    EXPECT_TRUE(zip->read("xl/styles.xml", styles, &error));
    EXPECT_TRUE(zip->read("xl/worksheets/sheet1.xml", sheetXml, &error));
    std::map<int, QString> codes{{0, "General"}};
    std::vector<QString> xfCodes;
    QXmlStreamReader s(styles);
    bool inXfs = false;
    while (!s.atEnd()) {
        s.readNext();
        if (s.isEndElement() && s.name() == QLatin1String("cellXfs")) inXfs = false;
        if (!s.isStartElement()) continue;
        if (s.name() == QLatin1String("numFmt"))
            codes[s.attributes().value("numFmtId").toInt()] = s.attributes().value("formatCode").toString();
        if (s.name() == QLatin1String("cellXfs")) inXfs = true;
        if (inXfs && s.name() == QLatin1String("xf"))
            xfCodes.push_back(codes[s.attributes().value("numFmtId").toInt()]);
    }
    std::map<QString, StoredCell> cells;
    QXmlStreamReader x(sheetXml);
    while (!x.atEnd()) {
        x.readNext();
        if (!x.isStartElement() || x.name() != QLatin1String("c")) continue;
        const QXmlStreamAttributes a = x.attributes();
        const int s = a.value("s").toInt();
        cells[a.value("r").toString()] = {a.hasAttribute("t") ? a.value("t").toString() : "n",
                                          s < int(xfCodes.size()) ? xfCodes[s] : "General"};
    }
    return cells;
}

} // namespace

TEST(SpreadsheetImport, FilesMadeByLibreOffice) {
    for (const QString name : {"taulukko.xls", "taulukko.xlsx", "taulukko.ods", "taulukko.xlsm",
                               "taulukko.xltx", "taulukko.xltm"}) {
        SCOPED_TRACE(name.toStdString());
        ScriptedDialogs dialogs;
        ListModel list;
        unitPriceList(list);
        // Through InitListView with ".xls" as the separator, as the file menu does. The sheet's
        // first row holds the list's headers, so it is not a row of the list.
        ASSERT_TRUE(InitListView(list, fixture(name), ".xls")) << dialogs.lastText().toStdString();
        EXPECT_TRUE(dialogs.messages().empty());
        EXPECT_EQ(list.cols(), 8) << "the list keeps its columns";
        EXPECT_EQ(list.column(2).header, "TYÖVAIHE");
        EXPECT_EQ(lists_test::dataRows(list), std::vector<QStringList>(kSheet.begin() + 1, kSheet.end()));
        EXPECT_EQ(lists_test::rowNumbers(list),
                  (QStringList{"00001", "00002", "00003", "00004", "00005", "00006", "00007", "00008"}));
        EXPECT_EQ(sheetOf(fixture(name), 7), kSheet) << "read as it stands, the header row is there";
    }
    // Any letter case of the extension; a list with fewer columns takes the first ones.
    QTemporaryDir dir;
    const QString upper = dir.filePath("TAULUKKO.XLSX");
    ASSERT_TRUE(QFile::copy(fixture("taulukko.xlsx"), upper));
    ListModel narrow;
    fill(narrow, kind::QuantityList, {"LITTERA", "TYÖVAIHE"}, {});
    ASSERT_TRUE(ImportListViewXls(narrow, upper));
    EXPECT_EQ(narrow.cols(), 3);
    EXPECT_EQ(narrow.row(2).cells, (QStringList{"7110", "Kaivu ja täyttö", "00002"}));
}

// Formula results (numbers, texts, true and false, errors), number formats, times that must
// carry into the minute, durations, dates, several paragraphs, runs of spaces, merged cells,
// repeated rows and tiny numbers: each as LibreOffice shows it, from each format it writes.
TEST(SpreadsheetImport, ReadsWhatLibreOfficeShows) {
    for (const QString name : {"kaavat.xls", "kaavat.xlsx", "kaavat.ods"}) {
        SCOPED_TRACE(name.toStdString());
        std::vector<QStringList> expected = kFormulas;
        // LibreOffice stores 0 as the result of a text formula in an .xls file (it calculates
        // every formula again when it opens one), so 0 is all the file holds. Excel stores the
        // text; SpreadsheetReaders.XlsFromBiff2ToBiff8 reads such a result.
        if (name == "kaavat.xls") expected[1][5] = "0";
        const std::vector<QStringList> rows = sheetOf(fixture(name), 6);
        ASSERT_EQ(rows.size(), expected.size());
        for (std::size_t r = 0; r < rows.size(); ++r)
            EXPECT_EQ(rows[r], expected[r]) << "row " << r + 1;
    }
}

TEST(SpreadsheetImport, DatesOfThe1904System) {
    // LibreOffice shows 15.3.2024, 31.12.1999 23:59, 50:00:00 and 45000 in every format.
    for (const QString name : {"paivat1904.xls", "paivat1904.xlsx", "paivat1904.ods"}) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(sheetOf(fixture(name), 0),
                  (std::vector<QStringList>{{"15.3.2024", "31.12.1999 23:59", "50:00:00", "45000"}}));
    }
}

// General numbers where the spreadsheet writes plain decimals and where it uses an exponent,
// and halves shown with two decimals and as percentages, as LibreOffice shows each of the files
// it wrote from luvut.fods. LibreOffice writes numbers into .xlsx and .ods with 15 digits, so
// 2.6749999999999994 is 2.675 there and 1234567890123456 is 1234567890123460 in the .xlsx.
// LibreOffice's text export writes a large exponent with three digits ("1E+020"), where its
// cells show two, as the import does.
TEST(SpreadsheetImport, NumbersAsTheSpreadsheetShowsThem) {
    for (const QString name : {"luvut.xls", "luvut.xlsx", "luvut.ods"}) {
        SCOPED_TRACE(name.toStdString());
        const bool fifteenDigits = name != "luvut.xls";
        const std::vector<QStringList> expected{
            {"YLEINEN"},
            {"-0,00527418346560432", "0,000123456789012345", "1,23456789012345E-05", "0,0000001", "1E-10",
             "0,0000000012345678", "1,23456789E-09", "0,0000999999999999999"},
            {name == "luvut.xlsx" ? "1234567890123460" : "1234567890123456", "123456789012346", "1,5E-300",
             "0,3", "-1234,5", "12345678901,25", "1E+20", "0,1"},
            {"KAKSI DESIMAALIA"},
            {"2,68", fifteenDigits ? "2,68" : "2,67", "1,01", "0,29", "8,35", "1,02", "-2,68", "1,01"},
            {"1,1%", "12,3%", "0,0%", "-1,1%"},
        };
        std::vector<QStringList> rows = sheetOf(fixture(name), 0);
        for (QStringList& row : rows)
            while (!row.isEmpty() && row.back().isEmpty())
                row.removeLast();
        EXPECT_EQ(rows, expected);
    }
}

// Texts longer than a record of an .xls (its shared strings go on in CONTINUE records, one of
// them split inside a run of two-byte characters), texts of spaces only and texts with spaces
// at their ends, as LibreOffice shows each of the files it wrote from tekstit.fods. An .ods
// ended texts with a space at the end of a paragraph ("x ") one character short.
TEST(SpreadsheetImport, LongTextsAndSpacesAsWritten) {
    QString latin, cyrillic;
    for (int i = 0; latin.size() < 10000; ++i)
        latin += QString("Työvaihe %1 kaivu ja täyttö; ").arg(i);
    for (int i = 0; cyrillic.size() < 9000; ++i)
        cyrillic += QString("Мостовые работы %1; ").arg(i);
    latin.truncate(10000);
    cyrillic.truncate(9000);
    const std::vector<QStringList> expected{
        {latin, cyrillic, latin.left(5000) + cyrillic.left(5000)},
        {"   ", "loppu   ", "  alku", "a  b   ", "x "},
    };
    for (const QString name : {"tekstit.xls", "tekstit.xlsx", "tekstit.ods"}) {
        SCOPED_TRACE(name.toStdString());
        const std::vector<QStringList> rows = sheetOf(fixture(name), 5);
        ASSERT_EQ(rows.size(), 2u);
        EXPECT_EQ(rows[0].mid(0, 3), expected[0]);
        EXPECT_EQ(rows[1], expected[1]);
    }
}

// Workbooks LibreOffice encrypted: with the password a workbook only protected against changes
// has (an .xlsx in standard encryption, an .xls in RC4), they were refused as protected;
// LibreOffice opens them without asking, and they are read. With a password of their own they
// stay refused, with the same clear message.
TEST(SpreadsheetImport, EncryptedWorkbooks) {
    for (const QString name : {"salatut/salattu.xlsx", "salattu.xls"}) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(sheetOf(fixture(name), 7), kSheet);
    }
    for (const QString name : {"salatut/salasana.xlsx", "salasana.xls"}) {
        SCOPED_TRACE(name.toStdString());
        std::vector<QStringList> rows;
        QString error;
        EXPECT_FALSE(readFirstSheet(fixture(name), 7, rows, &error));
        EXPECT_EQ(error, "Taulukkotiedostoa: " + fixture(name) +
                             " ei voitu lukea: työkirja on suojattu salasanalla.");
    }
}

TEST(SpreadsheetImport, LargeWorkbookWithContinuedStrings) {
    // 1200 rows whose texts fill the shared string table across many CONTINUE records, some
    // of them with "€" (two bytes a character) and some without.
    const std::vector<QStringList> rows = sheetOf(fixture("suuri.xls"), 0);
    ASSERT_EQ(rows.size(), 1201u);
    EXPECT_EQ(rows[0], (QStringList{"LITTERA", "TYÖVAIHE", "YKSIKKÖ", "HINTA"}));
    for (int i = 1; i <= 1200; ++i) {
        const QString mark = i % 7 == 0 ? "€ " : "";
        const QStringList expected{
            QString::number(7100 + i % 100),
            QString("Työvaihe %1 kuvaus %2%3 ääkkösin").arg(i).arg(mark).arg(i * 37 % 1000),
            QString("m%1").arg(i % 3 + 1), spreadsheetNumberText(i * 1.25)};
        ASSERT_EQ(rows[i], expected) << "row " << i + 1;
    }
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
    // "ALKU", 99 blank rows, the row after them; the 100 blank rows end the sheet and are
    // dropped, so the last row is never read.
    ASSERT_EQ(list.rows(), 101);
    EXPECT_EQ(list.cell(1, 2).toString(), "ALKU");
    EXPECT_EQ(list.cell(101, 2).toString(), "99 TYHJÄN JÄLKEEN");
    EXPECT_EQ(list.rowNumberText(101).toString(), "00101");
}

TEST(SpreadsheetImport, TwelveUsedRowsWithAGapBecomeTwelveRows) {
    // Rows 3 .. 5 of the sheet are empty, nothing is below row 12, and row 1 is not the list's
    // header row, so it is a row like any other.
    QByteArray rows;
    auto textRow = [](int n) {
        return QString("<table:table-row><table:table-cell office:value-type=\"string\"><text:p>%1</text:p>"
                       "</table:table-cell><table:table-cell office:value-type=\"float\" office:value=\"%1\">"
                       "<text:p>%1</text:p></table:table-cell></table:table-row>")
            .arg(n)
            .toUtf8();
    };
    for (int r = 1; r <= 12; ++r) {
        if (r == 3) // rows 3, 4 and 5, stored once
            rows += "<table:table-row table:number-rows-repeated=\"3\"><table:table-cell/></table:table-row>";
        else if (r < 3 || r > 5)
            rows += textRow(r);
    }
    rows += "<table:table-row table:number-rows-repeated=\"1048564\"><table:table-cell/></table:table-row>";
    const QByteArray content =
        "<?xml version=\"1.0\"?><office:document-content "
        "xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
        "xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\" "
        "xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\"><office:body><office:spreadsheet>"
        "<table:table table:name=\"A\">" +
        rows + "</table:table></office:spreadsheet></office:body></office:document-content>";
    QTemporaryDir dir;
    const QString path = dir.filePath("kaksitoista.ods");
    ASSERT_TRUE(sheet_files::writeZip(
        path, {{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"}, {"content.xml", content}}));

    ListModel list;
    fill(list, kind::QuantityList, {"LITTERA", "TYÖVAIHE"}, {{"vanha"}});
    ASSERT_TRUE(ImportListViewXls(list, path));
    ASSERT_EQ(list.rows(), 12);
    EXPECT_EQ(list.rowNumberText(1).toString(), "00001");
    EXPECT_EQ(list.rowNumberText(12).toString(), "00012");
    for (int r = 1; r <= 12; ++r) {
        const QStringList expected =
            r >= 3 && r <= 5 ? QStringList{"", ""} : QStringList{QString::number(r), QString::number(r)};
        EXPECT_EQ(lists_test::dataRows(list)[r - 1], expected) << "row " << r;
    }
}

TEST(SpreadsheetImport, HeaderRowIsSkippedOnlyWhenItMatches) {
    QTemporaryDir dir;
    ListModel source;
    fill(source, kind::RequirementBase, {"LITTERA", "NRO", "LAATUVAATIMUS"}, {{"7100", "1", "RAKENNE"}});
    const QString path = dir.filePath("vaatimukset.xlsx");
    ASSERT_TRUE(ExportListViewXlsx(source, path));

    // Case and surrounding blanks do not matter.
    ListModel same;
    fill(same, kind::RequirementBase, {"Littera ", " nro", "laatuvaatimus"}, {});
    ASSERT_TRUE(ImportListViewXls(same, path));
    EXPECT_EQ(lists_test::dataRows(same), (std::vector<QStringList>{{"7100", "1", "RAKENNE"}}));

    // Other headers: the first row is a row of the list.
    ListModel other;
    fill(other, kind::RequirementBase, {"LITTERA", "NUMERO", "LAATUVAATIMUS"}, {});
    ASSERT_TRUE(ImportListViewXls(other, path));
    EXPECT_EQ(lists_test::dataRows(other),
              (std::vector<QStringList>{{"LITTERA", "NRO", "LAATUVAATIMUS"}, {"7100", "1", "RAKENNE"}}));
}

TEST(SpreadsheetImport, ListWithoutColumnsKeepsEveryCell) {
    // A list whose template was missing has no columns; it takes the sheet's.
    ScriptedDialogs dialogs;
    ListModel list;
    list.setKind(kind::UnitPriceList);
    ASSERT_EQ(list.lastDataCol(), 0);
    ASSERT_TRUE(ImportListViewXls(list, fixture("taulukko.ods")));
    EXPECT_TRUE(dialogs.messages().empty());
    EXPECT_EQ(list.lastDataCol(), 7);
    EXPECT_EQ(list.column(7).header, "HUOMAUTUKSET");
    EXPECT_EQ(list.column(8).header, "Rivi");
    EXPECT_EQ(lists_test::dataRows(list), std::vector<QStringList>(kSheet.begin() + 1, kSheet.end()));
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
        EXPECT_TRUE(dialogs.lastText().startsWith("Taulukkotiedostoa: " + path + " ei voitu lukea: ") ||
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

// Sheets whose few stored cells would take gigabytes once every row has all its places: a cell
// in the first and in the 1024th column of row 1 and a run of a million rows below them; 20000
// runs of rows filled across 1024 columns; 20000 rows with a cell in their 1024th column. Each
// took all the memory there was. They are refused from what is counted before anything is
// laid out; a list of its own few columns reads the first one whole. A file too large to hold
// is refused before it is read.
TEST(SpreadsheetImport, SheetsTooLargeToLayOutAreRefused) {
    const std::map<QString, QString> refusals{
        {"kaukana-toisistaan.ods",
         "taulukossa on enemmän soluja kuin ohjelma pystyy tuomaan (1048576 riviä, 1024 saraketta)"},
        {"leveat-toistot.ods", "taulukossa on enemmän tekstiä kuin ohjelma pystyy tuomaan (yli 256 Mt)"},
        {"kaukaiset-solut.ods", "taulukossa on enemmän tekstiä kuin ohjelma pystyy tuomaan (yli 256 Mt)"},
    };
    for (const auto& [name, reason] : refusals) {
        SCOPED_TRACE(name.toStdString());
        const QString path = fixture("suuret/" + name);
        std::vector<QStringList> rows;
        QString error;
        EXPECT_FALSE(readFirstSheet(path, 0, rows, &error));
        EXPECT_EQ(error, "Taulukkotiedostoa: " + path + " ei voitu lukea: " + reason + ".");
        EXPECT_TRUE(rows.empty());
    }
    // A file larger than 256 MB (sparse, so it takes no disk) is refused before it is read: the
    // file, a copy of its workbook stream and what is kept of it must stay within 1 GB.
    QTemporaryDir dir;
    QFile big(dir.filePath("suuri.xls"));
    ASSERT_TRUE(big.open(QIODevice::WriteOnly) && big.resize((qint64(256) << 20) + 1));
    big.close();
    std::vector<QStringList> rows;
    QString error;
    EXPECT_FALSE(readFirstSheet(big.fileName(), 0, rows, &error));
    EXPECT_EQ(error, "Taulukkotiedostoa: " + big.fileName() +
                         " ei voitu lukea: tiedosto on liian suuri (yli 256 Mt).");
    ASSERT_TRUE(readFirstSheet(fixture("suuret/kaukana-toisistaan.ods"), 2, rows, &error))
        << error.toStdString();
    ASSERT_EQ(rows.size(), 1048576u);
    EXPECT_EQ(rows.front(), (QStringList{"LITTERA", ""}));
    EXPECT_EQ(rows.back(), (QStringList{"x", ""}));
}

TEST(SpreadsheetImport, ReaderFollowsTheContentNotTheExtension) {
    // An .xlsx saved under an .xls name, as some programs do, is still read.
    QTemporaryDir dir;
    const QString renamed = dir.filePath("oikeasti-xlsx.xls");
    ASSERT_TRUE(QFile::copy(fixture("taulukko.xlsx"), renamed));
    EXPECT_EQ(sheetOf(renamed, 7), kSheet);
}

TEST(SpreadsheetNumbers, TextAsTyped) {
    EXPECT_EQ(spreadsheetNumberText(12.5), "12,5");
    EXPECT_EQ(spreadsheetNumberText(14), "14");
    EXPECT_EQ(spreadsheetNumberText(-3.25), "-3,25");
    EXPECT_EQ(spreadsheetNumberText(0.1 + 0.2), "0,3") << "fifteen significant digits";
    EXPECT_EQ(spreadsheetNumberText(1.0 / 3), "0,333333333333333");
    EXPECT_EQ(spreadsheetNumberText(1e-7), "0,0000001");
    EXPECT_EQ(spreadsheetNumberText(1.23e-9), "0,00000000123");
    EXPECT_EQ(spreadsheetNumberText(9e-10), "9E-10") << "as LibreOffice shows it";
    EXPECT_EQ(spreadsheetNumberText(1.23456789e-9), "1,23456789E-09");
    EXPECT_EQ(spreadsheetNumberText(3.14e-300), "3,14E-300");
    EXPECT_EQ(spreadsheetNumberText(1234567890123.0), "1234567890123");
    EXPECT_EQ(spreadsheetNumberText(1234567890123456.0), "1234567890123456");
    EXPECT_EQ(spreadsheetNumberText(1234567890123456.5), "1,23456789012346E+15");
    EXPECT_EQ(spreadsheetNumberText(-0.0), "0");

    auto typed = [](const QString& text) {
        const std::optional<TypedNumber> n = cellTextNumber(text);
        return n ? std::make_pair(n->value, n->decimals) : std::make_pair(-999.0, -1);
    };
    EXPECT_EQ(typed("12,5"), std::make_pair(12.5, 1));
    EXPECT_EQ(typed("12,50"), std::make_pair(12.5, 2)) << "two decimals stay two decimals";
    EXPECT_EQ(typed("-3"), std::make_pair(-3.0, 0));
    EXPECT_EQ(typed("7100"), std::make_pair(7100.0, 0));
    EXPECT_EQ(typed("0,05"), std::make_pair(0.05, 2));
    for (const QString text : {"007", "7131.1", "1 000", "", "-0", "-0,00", "1,", ",5", "+5", "12,5 m",
                               "12345678901234567", "0,1234567890123456789"})
        EXPECT_FALSE(cellTextNumber(text).has_value()) << text.toStdString();
}

TEST(SpreadsheetExport, NumbersAsNumbersAndReplacesWhole) {
    QTemporaryDir dir;
    ListModel list;
    fill(
        list, kind::UnitPriceList, {"LITTERA", "TYÖVAIHE", "A", "B"},
        {{"7110", "Kaivu", "12,5", "12,50"}, {"7131.1", "  sisennetty", "-3", ""}, {"", "", "0,125", "007"}});
    const QString path = dir.filePath("vienti.xlsx");
    ASSERT_TRUE(platform::writeFileAtomically(path, "vanha sisältö"));
    QString error;
    ASSERT_TRUE(ExportListViewXlsx(list, path, &error)) << error.toStdString();

    const std::map<QString, StoredCell> cells = storedCells(path);
    EXPECT_EQ(cells.at("A1").type, "s") << "header";
    EXPECT_EQ(cells.at("A2").type, "n") << "7110";
    EXPECT_EQ(cells.at("C2").type, "n") << "12,5";
    EXPECT_EQ(cells.at("C2").format, "0.0");
    EXPECT_EQ(cells.at("D2").type, "n") << "12,50 is a number too";
    EXPECT_EQ(cells.at("D2").format, "0.00") << "shown with its two decimals";
    EXPECT_EQ(cells.at("C3").format, "General") << "-3";
    EXPECT_EQ(cells.at("C4").format, "0.000");
    EXPECT_EQ(cells.at("A3").type, "s") << "7131.1";
    EXPECT_EQ(cells.at("D4").type, "s") << "007";
    EXPECT_EQ(cells.count("D3"), 0u) << "an empty cell is not written";

    // Read back, every text is as it was.
    EXPECT_EQ(sheetOf(path, 0), (std::vector<QStringList>{{"LITTERA", "TYÖVAIHE", "A", "B"},
                                                          {"7110", "Kaivu", "12,5", "12,50"},
                                                          {"7131.1", "  sisennetty", "-3", ""},
                                                          {"", "", "0,125", "007"}}));
    // Nothing but the target is left in the folder.
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"vienti.xlsx"});

    // An unwritable place: an error, no file.
    EXPECT_FALSE(ExportListViewXlsx(list, dir.filePath("ei/ole/vienti.xlsx"), &error));
    EXPECT_TRUE(error.startsWith("Tiedostoa: ")) << error.toStdString();
}

TEST(SpreadsheetExport, ColumnsWideEnoughForTheirTexts) {
    QTemporaryDir dir;
    ListModel list;
    fill(list, kind::UnitPriceList, {"LITTERA", "TYÖVAIHE", "HUOMAUTUKSET"},
         {{"7101", "Työmaan perustaminen ja purku", QString(300, 'x')}, {"", "lyhyt", "kaksi\r\nriviä"}});
    for (int c = 1; c <= 3; ++c)
        list.setColumnWidth(c, 1050); // ten characters
    const QString path = dir.filePath("leveys.xlsx");
    ASSERT_TRUE(ExportListViewXlsx(list, path));
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray bytes = f.readAll(); // the archive reads from it
    QString error;
    const auto zip = sheet::Archive::open(bytes, &error);
    ASSERT_TRUE(zip) << error.toStdString();
    QByteArray xml;
    ASSERT_TRUE(zip->read("xl/worksheets/sheet1.xml", xml, &error));
    std::map<int, double> widths;
    QXmlStreamReader x(xml);
    while (!x.atEnd())
        if (x.readNext() == QXmlStreamReader::StartElement && x.name() == QLatin1String("col"))
            widths[x.attributes().value("min").toInt()] = x.attributes().value("width").toDouble();
    EXPECT_GE(widths[1], 10) << "the list's own width at the least";
    EXPECT_LT(widths[1], 12);
    EXPECT_GE(widths[2], 29) << "the longest work phase fits";
    EXPECT_GE(widths[3], 50) << "a long remark widens its column";
    EXPECT_LE(widths[3], 70) << "but not beyond a screen";
}

TEST(SpreadsheetExport, FileGetsTheExtensionOfWhatIsWritten) {
    QTemporaryDir dir;
    ScriptedDialogs dialogs;
    EXPECT_EQ(spreadsheetExportName(dir.filePath("hinnat.xlsx")), dir.filePath("hinnat.xlsx"));
    EXPECT_EQ(spreadsheetExportName(dir.filePath("hinnat.xls")), dir.filePath("hinnat.xlsx"));
    EXPECT_EQ(spreadsheetExportName(dir.filePath("hinnat.XLS")), dir.filePath("hinnat.xlsx"));
    EXPECT_EQ(spreadsheetExportName(dir.filePath("hinnat.2024")), dir.filePath("hinnat.2024.xlsx"));
    EXPECT_EQ(spreadsheetExportName(QString()), QString());
    EXPECT_TRUE(dialogs.messages().empty());

    // A file the user did not name is replaced only when the user agrees.
    ASSERT_TRUE(platform::writeFileAtomically(dir.filePath("hinnat.xlsx"), "vanha"));
    dialogs.answer(platform::MsgAnswer::No);
    EXPECT_EQ(spreadsheetExportName(dir.filePath("hinnat.xls")), QString());
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_TRUE(dialogs.lastText().contains("on jo olemassa")) << dialogs.lastText().toStdString();
    dialogs.answer(platform::MsgAnswer::Yes);
    EXPECT_EQ(spreadsheetExportName(dir.filePath("hinnat.xls")), dir.filePath("hinnat.xlsx"));
    EXPECT_TRUE(dialogs.allAnswersUsed());
}
