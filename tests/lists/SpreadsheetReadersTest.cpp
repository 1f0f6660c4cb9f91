// The spreadsheet readers on files that LibreOffice does not write: BIFF2 to BIFF5 workbooks,
// Excel's stored formula texts, strict and hand-written .xlsx, hand-written .ods; and damaged
// files, which must fail with a message and never hang or crash.
#include "ListBuilders.h"
#include "SheetEncryption.h"
#include "SheetFiles.h"
#include "common/TestSupport.h"
#include "lists/Spreadsheet.h"
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/SheetData.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <tuple>

using namespace lists;
using namespace sheet_files;

namespace {

std::vector<QStringList> readBack(const QString& path, int columns = 0) {
    std::vector<QStringList> rows;
    QString error;
    EXPECT_TRUE(readFirstSheet(path, columns, rows, &error)) << error.toStdString();
    return rows;
}

QString readError(const QString& path) {
    std::vector<QStringList> rows;
    QString error;
    EXPECT_FALSE(readFirstSheet(path, 0, rows, &error));
    return error;
}

// Where the reader of the file's contents stopped.
platform::ReadError readStop(const QString& path) {
    std::vector<QStringList> rows;
    QString error;
    platform::ReadError where;
    EXPECT_FALSE(readFirstSheet(path, 0, rows, &error, &where));
    EXPECT_TRUE(error.contains(where.text())) << error.toStdString();
    return where;
}

const QByteArray kBof2 = record(0x0009, le16(2) + le16(0x0010));
const QByteArray kEof = record(0x000A, {});

// A BIFF8 workbook: globals with a format, two XFs (0 general, 1 "0.00"), the shared strings
// and a sheet list whose first entry is a chart, then the sheets.
QByteArray biff8Workbook(const QByteArray& sheetCells, bool date1904 = false,
                         const QByteArray& firstGlobals = {}) {
    const QByteArray bof = record(0x0809, le16(0x0600) + le16(0x0005) + QByteArray(12, 0));
    QByteArray sst =
        le32(3) + le32(3) + biff8String("jaettu") + biff8String("€ kallis") + biff8String("rivi\nkaksi");
    const QByteArray format = record(0x041E, le16(164) + biff8String("0.00"));
    const QByteArray xf0 = record(0x00E0, le16(0) + le16(0) + QByteArray(16, 0));
    const QByteArray xf1 = record(0x00E0, le16(0) + le16(164) + QByteArray(16, 0));
    const QByteArray xf2 = record(0x00E0, le16(0) + le16(14) + QByteArray(16, 0)); // a date
    const QByteArray dateMode = record(0x0022, le16(date1904 ? 1 : 0));
    auto boundSheet = [](quint32 offset, int type, const QString& name) {
        return record(0x0085, le32(offset) + QByteArray(1, 0) + QByteArray(1, char(type)) +
                                  QByteArray(1, char(name.size())) + QByteArray(1, 0) + name.toLatin1());
    };
    const QByteArray sheetBof = record(0x0809, le16(0x0600) + le16(0x0010) + QByteArray(12, 0));
    const QByteArray chartBof = record(0x0809, le16(0x0600) + le16(0x0020) + QByteArray(12, 0));
    const QByteArray chart = chartBof + record(0x0203, cellHead(0, 0) + f64(99)) + kEof;
    const QByteArray sheet = sheetBof + sheetCells + kEof;
    // The globals' size does not depend on the offsets, so compute it with zeros first.
    const QByteArray head = bof + firstGlobals + dateMode + format + xf0 + xf1 + xf2 + record(0x00FC, sst);
    const qsizetype globalsSize = head.size() + 2 * boundSheet(0, 0, "Kaavio").size() + kEof.size();
    return head + boundSheet(quint32(globalsSize), 2, "Kaavio") +
           boundSheet(quint32(globalsSize + chart.size()), 0, "Hinnat") + kEof + chart + sheet;
}

// A BIFF5 workbook ("Book" stream): globals with `globals` in them and a sheet list of one
// worksheet, then the worksheet with `cells`.
QByteArray biff5Workbook(const QByteArray& globals, const QByteArray& cells) {
    const QByteArray bof = record(0x0809, le16(0x0500) + le16(0x0005) + le16(0) + le16(0));
    const QByteArray sheetBof = record(0x0809, le16(0x0500) + le16(0x0010) + le16(0) + le16(0));
    const QByteArray boundTail = QByteArray(1, 0) + QByteArray(1, 0) + QByteArray(1, 5) + "Lista";
    const qsizetype offset =
        bof.size() + globals.size() + record(0x0085, le32(0) + boundTail).size() + kEof.size();
    return bof + globals + record(0x0085, le32(quint32(offset)) + boundTail) + kEof + sheetBof + cells + kEof;
}

// A BIFF5 FONT record with the given character set, and an XF record that uses a font.
QByteArray biff5Font(int charset) {
    return record(0x0031, le16(200) + le16(0) + le16(0x7FFF) + le16(400) + le16(0) + QByteArray(1, 0) +
                              QByteArray(1, 0) + QByteArray(1, char(charset)) + QByteArray(1, 0) +
                              QByteArray(1, 5) + "Arial");
}
QByteArray biff5Xf(int font) {
    return record(0x00E0, le16(font) + le16(0) + QByteArray(12, 0));
}

} // namespace

TEST(SpreadsheetReaders, XlsFromBiff2ToBiff8) {
    QTemporaryDir dir;
    // BIFF2: one plain stream of a worksheet, formats given by order, attribute bytes per cell.
    {
        QByteArray s = kBof2;
        s += record(0x001E, QByteArray(1, 7) + "General") + record(0x001E, QByteArray(1, 4) + "0.00");
        s += record(0x0004, cellHead2(0, 0) + QByteArray(1, 6) + "LABEL\xE4");
        s += record(0x0002, cellHead2(0, 1) + le16(7100));
        s += record(0x0003, cellHead2(0, 2, 1) + f64(12.5));
        s += record(0x0005, cellHead2(0, 3) + QByteArray(1, 1) + QByteArray(1, 0));
        // A formula whose result is a text: the text follows in a STRING record.
        s += record(0x0006, cellHead2(1, 0) + QByteArray(6, 0) + le16(0xFFFF) + QByteArray(3, 0));
        s += record(0x0007, QByteArray(1, 5) + "tulos");
        s += kEof;
        const QString path = dir.filePath("biff2.xls");
        ASSERT_TRUE(writeFile(path, s));
        EXPECT_EQ(readBack(path),
                  (std::vector<QStringList>{{"LABELä", "7100", "12,50", "TOSI"}, {"tulos", "", "", ""}}));
    }
    // BIFF3 and BIFF4: XF records carry the format index; BIFF4's FORMAT has two spare bytes.
    for (int version : {3, 4}) {
        SCOPED_TRACE(version);
        const int bofId = version == 3 ? 0x0209 : 0x0409;
        QByteArray s = record(bofId, le16(0) + le16(0x0010) + le16(0));
        s += record(0x0042, le16(1252));
        auto format = [&](const QByteArray& code) {
            return record(version == 3 ? 0x001E : 0x041E,
                          (version == 4 ? le16(0) : QByteArray()) + QByteArray(1, char(code.size())) + code);
        };
        s += format("General") + format("0.000") + format("d.m.yyyy");
        const int xfId = version == 3 ? 0x0243 : 0x0443;
        for (int fmt : {0, 1, 2})
            s += record(xfId, QByteArray(1, 0) + QByteArray(1, char(fmt)) + QByteArray(10, 0));
        s += record(0x0203, cellHead(0, 0, 1) + f64(2.5));
        s += record(0x0203, cellHead(0, 1, 2) + f64(45366)); // 15.3.2024
        s += record(0x0204, cellHead(0, 2) + le16(4) + "\xD6ljy");
        s += record(0x0205, cellHead(0, 3) + QByteArray(1, 0x07) + QByteArray(1, 1));
        s += record(version == 3 ? 0x0206 : 0x0406, cellHead(1, 0) + f64(0.5) + QByteArray(6, 0));
        s += kEof;
        const QString path = dir.filePath(QString("biff%1.xls").arg(version));
        ASSERT_TRUE(writeFile(path, s));
        EXPECT_EQ(readBack(path),
                  (std::vector<QStringList>{{"2,500", "15.3.2024", "Öljy", "#DIV/0!"}, {"0,5", "", "", ""}}));
    }
    // BIFF5: an OLE "Book" stream, byte strings in the workbook's code page.
    {
        const QByteArray cells =
            record(0x0204, cellHead(0, 0) + le16(3) + "\xEC\xEE\xF1") + // "мос"
            record(0x027E, cellHead(0, 1) + le32((1234 << 2) | 2 | 1)); // 12,34 as an RK integer
        const QString path = dir.filePath("biff5.xls");
        ASSERT_TRUE(writeOle(path, "Book", biff5Workbook(record(0x0042, le16(1251)), cells))); // Cyrillic
        EXPECT_EQ(readBack(path), (std::vector<QStringList>{{"мос", "12,34"}}));
    }
    // BIFF8: shared strings, formula results of every kind, MULRK, the first worksheet after a
    // chart sheet, a label with an index beyond the shared strings.
    {
        QByteArray c;
        c += record(0x00FD, cellHead(0, 0) + le32(0));
        c += record(0x00FD, cellHead(0, 1) + le32(1));
        c += record(0x00FD, cellHead(0, 2) + le32(2));
        c += record(0x00FD, cellHead(0, 3) + le32(99));
        c += record(0x0006, cellHead(1, 0, 1) + f64(568.75) + QByteArray(6, 0) + le16(0));
        c += record(0x0006, cellHead(1, 1) + QByteArray(6, 0) + le16(0xFFFF) + QByteArray(8, 0));
        c += record(0x0207, biff8String("kaivu ja täyttö"));
        c += record(0x0006,
                    cellHead(1, 2) + QByteArray("\x01\x00\x01\x00\x00\x00\xFF\xFF", 8) + QByteArray(8, 0));
        c += record(0x0006,
                    cellHead(1, 3) + QByteArray("\x02\x00\x2A\x00\x00\x00\xFF\xFF", 8) + QByteArray(8, 0));
        c += record(0x00BD, le16(2) + le16(0) + le16(0) + le32((7 << 2) | 2) + le16(2) +
                                le32(quint32((45366) << 2) | 2) + le16(1));
        const QString path = dir.filePath("biff8.xls");
        ASSERT_TRUE(writeOle(path, "Workbook", biff8Workbook(c)));
        EXPECT_EQ(readBack(path), (std::vector<QStringList>{{"jaettu", "€ kallis", "rivi\r\nkaksi", ""},
                                                            {"568,75", "kaivu ja täyttö", "TOSI", "#N/A"},
                                                            {"7", "15.3.2024", "", ""}}));
        // The same day number in a workbook of the 1904 system is four years and a day later.
        const QString path1904 = dir.filePath("biff8-1904.xls");
        ASSERT_TRUE(writeOle(path1904, "Workbook", biff8Workbook(c, true)));
        EXPECT_EQ(readBack(path1904)[2][1], "16.3.2028");
    }
}

// Byte strings of BIFF2 to BIFF5 are in the workbook's code page (Greek, Central European and
// Baltic ones read as other letters before); where the CODEPAGE record is missing or names
// UTF-16, the character set of the text's font decides. BIFF8 strings of one byte a character
// are the low bytes of UTF-16 whatever the code page. LibreOffice shows the same cells.
TEST(SpreadsheetReaders, XlsCodePages) {
    QTemporaryDir dir;
    struct Case {
        int codePage;
        QByteArray bytes;
        QString text;
    };
    const std::vector<Case> cases{
        {1253, "\xc3\xdd\xf6\xf5\xf1\xe1", "Γέφυρα"},
        {1250, "Most \x8a\xe8\x9e", "Most Ščž"},
        {1257, "Tiltas \xe0\xe8\xe6\xeb\xe1\xf0\xf8\xfb\xfe", "Tiltas ąčęėįšųūž"},
        {1252, "Silta \x80 \xe4", "Silta € ä"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.codePage);
        const QString path = dir.filePath(QString("koodisivu%1.xls").arg(c.codePage));
        const QByteArray globals = record(0x0042, le16(c.codePage)) + biff5Font(0) + biff5Xf(0);
        const QByteArray cells = record(0x0204, cellHead(0, 0) + le16(int(c.bytes.size())) + c.bytes);
        ASSERT_TRUE(writeOle(path, "Book", biff5Workbook(globals, cells)));
        EXPECT_EQ(readBack(path), (std::vector<QStringList>{{c.text}}));
    }
    // CODEPAGE says UTF-16 (or is missing) in a BIFF5 file: each cell's font decides. Font 4 is
    // never stored, so the fifth FONT record is font 5.
    for (const bool declared : {true, false}) {
        SCOPED_TRACE(declared);
        QByteArray globals = declared ? record(0x0042, le16(1200)) : QByteArray();
        globals += biff5Font(204) + biff5Font(0) + biff5Font(0) + biff5Font(0) + biff5Font(161); // 0 .. 3, 5
        globals += biff5Xf(0) + biff5Xf(5);
        const QByteArray cells = record(0x0204, cellHead(0, 0, 0) + le16(4) + "\xec\xee\xf1\xf2") +
                                 record(0x0204, cellHead(0, 1, 1) + le16(6) + "\xc3\xdd\xf6\xf5\xf1\xe1");
        const QString path = dir.filePath(QString("fontit%1.xls").arg(declared));
        ASSERT_TRUE(writeOle(path, "Book", biff5Workbook(globals, cells)));
        EXPECT_EQ(readBack(path), (std::vector<QStringList>{{"мост", "Γέφυρα"}}));
    }
    // BIFF8 with a Cyrillic CODEPAGE: the one-byte string is still Latin-1.
    {
        const QByteArray cells = record(0x0204, cellHead(0, 0) + le16(5) + QByteArray(1, 0) + "p\xe4iv\xe4");
        const QString path = dir.filePath("biff8-1251.xls");
        ASSERT_TRUE(writeOle(path, "Workbook", biff8Workbook(cells, false, record(0x0042, le16(1251)))));
        EXPECT_EQ(readBack(path)[0][0], "päivä");
    }
}

// The 1904 date system of BIFF2 to BIFF5 workbooks (DATEMODE): a day number is four years and a
// day later than in the 1900 system.
TEST(SpreadsheetReaders, XlsDatesOfThe1904System) {
    QTemporaryDir dir;
    const QByteArray dateMode = record(0x0022, le16(1));
    const QString biff2 = dir.filePath("1904-biff2.xls");
    ASSERT_TRUE(writeFile(biff2, kBof2 + dateMode + record(0x001E, QByteArray(1, 8) + "d.m.yyyy") +
                                     record(0x0003, cellHead2(0, 0) + f64(45366)) + kEof));
    EXPECT_EQ(readBack(biff2), (std::vector<QStringList>{{"16.3.2028"}}));
    const QByteArray globals = dateMode + record(0x041E, le16(164) + QByteArray(1, 8) + "d.m.yyyy") +
                               biff5Font(0) + record(0x00E0, le16(0) + le16(164) + QByteArray(12, 0));
    const QString biff5 = dir.filePath("1904-biff5.xls");
    ASSERT_TRUE(writeOle(biff5, "Book", biff5Workbook(globals, record(0x0203, cellHead(0, 0) + f64(45366)))));
    EXPECT_EQ(readBack(biff5), (std::vector<QStringList>{{"16.3.2028"}}));
}

// A BIFF2 file (BIFF2's BOF) whose cells are BIFF3 to BIFF5 records, as some programs write:
// each record's own layout holds, whatever the file's version.
TEST(SpreadsheetReaders, XlsBiff2WithLaterRecords) {
    QTemporaryDir dir;
    QByteArray s = kBof2;
    s += record(0x001E, QByteArray(1, 7) + "General") + record(0x001E, QByteArray(1, 4) + "0.00");
    s += record(0x0043,
                QByteArray(1, 0) + QByteArray(1, 0) + QByteArray(1, 0) + QByteArray(1, 0)); // XF 0: format 0
    s += record(0x0043,
                QByteArray(1, 0) + QByteArray(1, 0) + QByteArray(1, 1) + QByteArray(1, 0)); // XF 1: format 1
    s += record(0x0203, cellHead(0, 0, 1) + f64(12.5));
    s += record(0x0204, cellHead(0, 1) + le16(6) + "Kaivu\xe4");
    s += record(0x027E, cellHead(0, 2) + le32((7100 << 2) | 2));
    s += record(0x0205, cellHead(0, 3) + QByteArray(1, 1) + QByteArray(1, 0));
    s += record(0x0003, cellHead2(1, 0) + f64(2.5)); // a BIFF2 cell beside them: XF 0 from its first byte
    QByteArray xf1 = cellHead2(1, 1);
    xf1[4] = 1;
    s += record(0x0003, xf1 + f64(2.5));
    s += record(0x0004, cellHead2(1, 2) + QByteArray(1, 5) + "tulos");
    s += kEof;
    const QString path = dir.filePath("biff2-sekoitus.xls");
    ASSERT_TRUE(writeFile(path, s));
    EXPECT_EQ(readBack(path),
              (std::vector<QStringList>{{"12,50", "Kaivuä", "7100", "TOSI"}, {"2,5", "2,50", "tulos", ""}}));
}

// A binary workbook (.xlsb): the package of .xlsx with binary records. The first sheet is a
// chart sheet; the worksheet holds every kind of cell, in long and in short records, formula
// results, number formats that make a number a date, a record far longer than its buffer that
// is passed over, and a cell after the end of the sheet data that is not read. binaari.xlsb is
// this workbook. LibreOffice shows the same texts, numbers, true and false and errors of it; it
// calculates the (empty) formulas again instead of showing their results, and it leaves the
// number formats of this small style part unapplied.
Members binaryWorkbook(bool date1904) {
    // A cell format (all of its parts applied) and a cell style's format (whose parent is none).
    auto xf = [](int format, int parent = 0) {
        return xlsbRecord(47, le16(parent) + le16(format) + QByteArray(10, 0) + le16(parent ? 0 : 0x3F));
    };
    const QByteArray styles =
        xlsbRecord(278) + xlsbRecord(615, le32(1)) + xlsbRecord(44, le16(164) + xlsbString("0.00")) +
        xlsbRecord(616) + xlsbRecord(626, le32(1)) + xf(14, 0xFFFF) + xlsbRecord(627) +
        xlsbRecord(617, le32(3)) + xf(0) + xf(164) + xf(14) + xlsbRecord(618) + xlsbRecord(279);
    const QByteArray strings =
        xlsbRecord(159, le32(2) + le32(2)) + xlsbRecord(19, QByteArray(1, 0) + xlsbString("jaettu")) +
        xlsbRecord(19, QByteArray(1, 1) + xlsbString("rivi\nkaksi") + le32(1) + le32(0)) + xlsbRecord(160);
    auto row = [](int r) { return xlsbRecord(0, le32(quint32(r)) + QByteArray(13, 0)); };
    const QByteArray formula = le16(0) + le32(0) + le32(0);
    QByteArray sheet = xlsbRecord(129) + xlsbRecord(0x1A0, QByteArray(100000, 'x')) + xlsbRecord(145);
    sheet += row(0) + xlsbRecord(7, xlsbCell(0) + le32(0)) +
             xlsbRecord(6, xlsbCell(1) + xlsbString("suora € teksti")) +
             xlsbRecord(5, xlsbCell(2, 1) + f64(12.5)) + xlsbRecord(2, xlsbCell(3) + le32((7100 << 2) | 2));
    sheet += row(1) + xlsbRecord(4, xlsbCell(0) + QByteArray(1, 1)) +
             xlsbRecord(3, xlsbCell(1) + QByteArray(1, 7)) +
             xlsbRecord(9, xlsbCell(2, 1) + f64(568.75) + formula) +
             xlsbRecord(8, xlsbCell(3) + xlsbString("kaivu") + formula);
    // Short cells: each in the column after the one before.
    sheet += row(2) + xlsbRecord(5, xlsbCell(0, 2) + f64(45366)) +
             xlsbRecord(17, le32(0) + xlsbString("lyhyt")) + xlsbRecord(13, le32(0) + le32((325 << 2) | 3)) +
             xlsbRecord(15, le32(0) + QByteArray(1, 0)) + xlsbRecord(18, le32(0) + le32(1));
    sheet += row(4) +
             xlsbRecord(62, xlsbCell(0) + QByteArray(1, 1) + xlsbString("rikas") + le32(1) + le32(0)) +
             xlsbRecord(10, xlsbCell(1) + QByteArray(1, 0) + formula) +
             xlsbRecord(11, xlsbCell(2) + QByteArray(1, 0x2A) + formula) + xlsbRecord(12, le32(0)) +
             xlsbRecord(14, le32(0) + QByteArray(1, 0x0F)) + xlsbRecord(7, xlsbCell(5) + le32(99));
    sheet += xlsbRecord(146) + row(9) + xlsbRecord(6, xlsbCell(0) + xlsbString("ohi")) + xlsbRecord(130);
    const QByteArray properties = xlsbRecord(153, le32(date1904 ? 1 : 0) + le32(0) + xlsbString(""));
    return xlsbPackage(properties, styles, strings, sheet);
}

TEST(SpreadsheetReaders, XlsbWorkbooks) {
    QTemporaryDir dir;
    const std::vector<QStringList> expected{{"jaettu", "suora € teksti", "12,50", "7100", ""},
                                            {"TOSI", "#DIV/0!", "568,75", "kaivu", ""},
                                            {"15.3.2024", "lyhyt", "3,25", "EPÄTOSI", "rivi\r\nkaksi"},
                                            {"", "", "", "", ""},
                                            {"rikas", "EPÄTOSI", "#N/A", "", "#VALUE!"}};
    const QString path = dir.filePath("binaari.xlsb");
    ASSERT_TRUE(writeZip(path, binaryWorkbook(false)));
    EXPECT_EQ(readBack(path), expected);
    EXPECT_EQ(readBack(testing_support::sourceDir() + "/tests/lists/data/binaari.xlsb"), expected);
    // The same day number in the 1904 system.
    const QString path1904 = dir.filePath("binaari1904.xlsb");
    ASSERT_TRUE(writeZip(path1904, binaryWorkbook(true)));
    EXPECT_EQ(readBack(path1904)[2][0], "16.3.2028");
    // Each part cut short anywhere: read or refused with where, never past the data.
    for (const QString part :
         {"xl/workbook.bin", "xl/styles.bin", "xl/sharedStrings.bin", "xl/worksheets/sheet1.bin"}) {
        for (int i = 1; i < 16; ++i) {
            Members members = binaryWorkbook(false);
            for (auto& [name, data] : members)
                if (name == part) data.truncate(data.size() * i / 16);
            const QString cut = dir.filePath(QString("katki%1.xlsb").arg(i));
            ASSERT_TRUE(writeZip(cut, members));
            std::vector<QStringList> rows;
            QString error;
            if (!readFirstSheet(cut, 0, rows, &error))
                EXPECT_TRUE(error.contains(part)) << part.toStdString() << ": " << error.toStdString();
        }
    }
}

// Texts split across CONTINUE records as Excel splits them: a shared string whose two-byte
// characters stop at the end of the SST record and go on as one-byte characters after the
// CONTINUE record's own flags byte, a shared string whose header ends a record, and a label of a
// cell continued in the middle of its characters.
TEST(SpreadsheetReaders, XlsTextsAcrossContinueRecords) {
    QTemporaryDir dir;
    QByteArray wide;
    for (QChar c : QString("Мост "))
        wide += le16(c.unicode());
    const QByteArray sst = record(0x00FC, le32(2) + le32(2) + le16(13) + QByteArray(1, 1) + wide) +
                           record(0x003C, QByteArray(1, 0) + "ja silta") +
                           record(0x003C, le16(4) + QByteArray(1, 0)) +
                           record(0x003C, QByteArray(1, 0) + "sana");
    QByteArray label = cellHead(0, 2) + le16(12) + QByteArray(1, 0) + "kaksi";
    const QByteArray cells = record(0x00FD, cellHead(0, 0) + le32(0)) +
                             record(0x00FD, cellHead(0, 1) + le32(1)) + record(0x0204, label) +
                             record(0x003C, QByteArray(1, 1) + le16(0x2009) + QByteArray("o\0s\0a\0a\0", 8) +
                                                le16(0x00E4) + le16(0x2009));
    const QByteArray bof = record(0x0809, le16(0x0600) + le16(0x0005) + QByteArray(12, 0));
    const QByteArray sheetBof = record(0x0809, le16(0x0600) + le16(0x0010) + QByteArray(12, 0));
    auto boundSheet = [](quint32 offset) {
        return record(0x0085, le32(offset) + QByteArray(1, 0) + QByteArray(1, 0) + QByteArray(1, 1) +
                                  QByteArray(1, 0) + "A");
    };
    const qsizetype globals = bof.size() + sst.size() + boundSheet(0).size() + kEof.size();
    const QString path = dir.filePath("jatkuvat.xls");
    ASSERT_TRUE(writeOle(path, "Workbook",
                         bof + sst + boundSheet(quint32(globals)) + kEof + sheetBof + cells + kEof));
    EXPECT_EQ(readBack(path),
              (std::vector<QStringList>{{"Мост ja silta", "sana", "kaksi\u2009osaa\u00e4\u2009"}}));
}

// Compound files that depart from the standard as some writers' do: the header names an
// allocation table sector past the file, or counts extension sectors there are none of; the
// directory is the file's last sector, cut short after its entries; the stream's chain ends
// before its size. Each was refused ("OLE-rakenne on vahingoittunut"); LibreOffice reads them,
// and so does the import, never past the file.
TEST(SpreadsheetReaders, XlsInOddCompoundFiles) {
    QTemporaryDir dir;
    const QByteArray cells =
        record(0x00FD, cellHead(0, 0) + le32(0)) + record(0x0203, cellHead(0, 1, 1) + f64(12.5));
    const QByteArray workbook = biff8Workbook(cells);
    const std::vector<QStringList> expected{{"jaettu", "12,50"}};
    std::vector<std::pair<const char*, CompoundOptions>> odd(5);
    odd[0].first = "standard";
    odd[1] = {"fat-sector-past-the-file", {2, {1000}}};
    odd[2] = {"extension-count-without-extensions", {1, {}, 1}};
    odd[3].first = "directory-in-short-last-sector";
    odd[3].second.directoryLast = true;
    odd[4].first = "chain-shorter-than-stream";
    odd[4].second.streamChain = 1; // the cells fit in the first sector; the rest is padding
    for (const auto& [name, options] : odd) {
        SCOPED_TRACE(name);
        const QByteArray whole = compoundFile("Workbook", workbook, options);
        const QString path = dir.filePath(QString("%1.xls").arg(name));
        ASSERT_TRUE(writeFile(path, whole));
        EXPECT_EQ(readBack(path), expected);
        // Cut anywhere: read or refused with a reason.
        for (int i = 1; i < 12; ++i) {
            const QString cut = dir.filePath(QString("%1-%2.xls").arg(name).arg(i));
            ASSERT_TRUE(writeFile(cut, whole.left(whole.size() * i / 12)));
            std::vector<QStringList> rows;
            QString error;
            if (!readFirstSheet(cut, 0, rows, &error)) EXPECT_FALSE(error.isEmpty());
        }
    }
}

// Workbooks encrypted in the ways LibreOffice does not write: an .xlsx (and an .xlsb) in agile
// encryption, an .xls in RC4 through the CryptoAPI with 128-bit and 40-bit keys. With the
// password of a workbook only protected against changes they are read (LibreOffice opens them
// too, all but the 40-bit one, whose key it does not pad); with another one they are refused as
// protected, and broken encryption data is said to be broken.
TEST(SpreadsheetReaders, EncryptedWithTheDefaultPassword) {
    QTemporaryDir dir;
    const QString data = testing_support::sourceDir() + "/tests/lists/data/";
    QFile plain(data + "taulukko.xlsx");
    ASSERT_TRUE(plain.open(QIODevice::ReadOnly));
    const QByteArray package = plain.readAll();
    const std::vector<QStringList> expected = readBack(data + "taulukko.xlsx");
    ASSERT_EQ(expected.size(), 9u);
    const QString agile = dir.filePath("agile.xlsx");
    ASSERT_TRUE(writeOle(agile, agileEncrypted(package, "VelvetSweatshop")));
    EXPECT_EQ(readBack(agile), expected);
    const QString binary = dir.filePath("agile.xlsb");
    ASSERT_TRUE(writeZip(binary, binaryWorkbook(false)));
    QFile binaryFile(binary);
    ASSERT_TRUE(binaryFile.open(QIODevice::ReadOnly));
    const QString agileBinary = dir.filePath("agile-binaari.xlsb");
    ASSERT_TRUE(writeOle(agileBinary, agileEncrypted(binaryFile.readAll(), "VelvetSweatshop", 1000)));
    EXPECT_EQ(readBack(agileBinary)[0][0], "jaettu");

    const QByteArray cells = record(0x00FD, cellHead(0, 0) + le32(2)) +
                             record(0x0203, cellHead(0, 1, 1) + f64(12.5)) +
                             record(0x0204, cellHead(0, 2) + biff8String("suora"));
    for (int bits : {128, 40}) {
        SCOPED_TRACE(bits);
        const CryptoApiRc4 rc4{"VelvetSweatshop", bits};
        const QString path = dir.filePath(QString("cryptoapi%1.xls").arg(bits));
        ASSERT_TRUE(writeOle(path, "Workbook", rc4.encrypt(biff8Workbook(cells, false, rc4.filePass()))));
        EXPECT_EQ(readBack(path), (std::vector<QStringList>{{"rivi\r\nkaksi", "12,50", "suora"}}));
    }

    // A password of its own.
    const QString other = dir.filePath("oma.xlsx");
    ASSERT_TRUE(writeOle(other, agileEncrypted(package, "salainen", 1000)));
    EXPECT_TRUE(readError(other).endsWith("ei voitu lukea: työkirja on suojattu salasanalla."))
        << readError(other).toStdString();
    const CryptoApiRc4 own{"salainen"};
    const QString otherXls = dir.filePath("oma.xls");
    ASSERT_TRUE(writeOle(otherXls, "Workbook", own.encrypt(biff8Workbook(cells, false, own.filePass()))));
    EXPECT_TRUE(readError(otherXls).endsWith("ei voitu lukea: työkirja on suojattu salasanalla."));
    // Encryption data cut short.
    Members broken = agileEncrypted(package, "VelvetSweatshop", 1000);
    broken[1].second.truncate(100);
    const QString cut = dir.filePath("katki.xlsx");
    ASSERT_TRUE(writeOle(cut, broken));
    EXPECT_TRUE(readError(cut).endsWith("työkirjan salauksen tiedot ovat vahingoittuneet."))
        << readError(cut).toStdString();
}

TEST(SpreadsheetReaders, XlsxWrittenByOtherPrograms) {
    QTemporaryDir dir;
    const QByteArray contentTypes =
        R"(<?xml version="1.0"?><Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"/>)";
    auto package = [&](const QString& ns, const QString& relNs, const QByteArray& workbookExtra,
                       const QByteArray& sheetData, const QByteArray& strings) {
        const QByteArray rels =
            QString(
                R"(<?xml version="1.0"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
                R"(<Relationship Id="rId1" Type="%1/officeDocument" Target="/xl/workbook.xml"/></Relationships>)")
                .arg(relNs)
                .toUtf8();
        const QByteArray workbook =
            QString(R"(<?xml version="1.0"?><workbook xmlns="%1" xmlns:r="%2">%3)"
                    R"(<sheets><sheet name="Hinnat" sheetId="1" r:id="rId7"/>)"
                    R"(<sheet name="Muu" sheetId="2" r:id="rId8"/></sheets></workbook>)")
                .arg(ns, relNs, QString::fromUtf8(workbookExtra))
                .toUtf8();
        const QByteArray workbookRels =
            QString(
                R"(<?xml version="1.0"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
                R"(<Relationship Id="rId8" Type="%1/worksheet" Target="worksheets/muu.xml"/>)"
                R"(<Relationship Id="rId7" Type="%1/worksheet" Target="worksheets/ensimmainen.xml"/>)"
                R"(<Relationship Id="rId9" Type="%1/sharedStrings" Target="jaetut.xml"/></Relationships>)")
                .arg(relNs)
                .toUtf8();
        const QByteArray sheet =
            QString(R"(<?xml version="1.0"?><worksheet xmlns="%1"><sheetData>%2</sheetData></worksheet>)")
                .arg(ns, QString::fromUtf8(sheetData))
                .toUtf8();
        const QByteArray other =
            QString(
                R"(<?xml version="1.0"?><worksheet xmlns="%1"><sheetData><row><c t="inlineStr"><is><t>muu</t></is></c></row></sheetData></worksheet>)")
                .arg(ns)
                .toUtf8();
        const QByteArray sst =
            QString(R"(<?xml version="1.0"?><sst xmlns="%1" count="99" uniqueCount="99">%2</sst>)")
                .arg(ns, QString::fromUtf8(strings))
                .toUtf8();
        return Members{{"[Content_Types].xml", contentTypes},
                       {"_rels/.rels", rels},
                       {"xl/workbook.xml", workbook},
                       {"xl/_rels/workbook.xml.rels", workbookRels},
                       {"xl/worksheets/ensimmainen.xml", sheet},
                       {"xl/worksheets/muu.xml", other},
                       {"xl/jaetut.xml", sst}};
    };
    const QString transitional = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
    const QString transitionalRels = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

    // Inline strings (with runs and a phonetic guide), cells without references, a string cell
    // without a value, an ISO date, _x000D_ escapes, a defined name, the 1904 system.
    const QByteArray cells =
        R"(<row r="1"><c r="A1" t="inlineStr"><is><t>suora</t></is></c>)"
        R"(<c t="inlineStr"><is><r><t>osa </t></r><r><rPr><b/></rPr><t>kaksi</t></r><rPh><t>ふりがな</t></rPh></is></c>)"
        R"(<c t="s"/><c t="s"><v>1</v></c></row>)"
        R"(<row><c r="A2" t="d"><v>2024-03-15T00:00:00</v></c><c r="B2" t="d"><v>2024-03-15T13:45:00Z</v></c>)"
        R"(<c r="C2" t="s"><v>0</v></c><c r="D2"><v>45366</v></c></row>)"
        // Inline texts of spaces only, with and without xml:space, keep their spaces.
        R"(<row r="3"><c r="A3" t="inlineStr"><is><t xml:space="preserve">   </t></is></c>)"
        R"(<c r="B3" t="inlineStr"><is><t>  </t></is></c><c r="C3" t="inlineStr"><is><r><t xml:space="preserve"> </t></r>)"
        R"(<r><t>x</t></r></is></c><c r="D3"><v>1</v></c></row>)";
    const QByteArray strings =
        R"(<si><t>rivi_x000D_&#10;toinen</t></si><si><t xml:space="preserve">  välit  </t></si>)";
    const QByteArray names =
        R"(<workbookPr date1904="1"/><definedNames><definedName name="Hinta">Taulukko1[Hinta]</definedName></definedNames>)";
    const QString plain = dir.filePath("muut.xlsx");
    ASSERT_TRUE(writeZip(plain, package(transitional, transitionalRels, names, cells, strings)));
    EXPECT_EQ(readBack(plain),
              (std::vector<QStringList>{{"suora", "osa kaksi", "", "  välit  "},
                                        {"15.3.2024", "15.3.2024 13:45", "rivi\r\ntoinen", "45366"},
                                        {"   ", "  ", " x", "1"}}));

    // Strict: other namespaces and relationship types.
    const QString strict = dir.filePath("strict.xlsx");
    ASSERT_TRUE(writeZip(
        strict,
        package("http://purl.oclc.org/ooxml/spreadsheetml/main",
                "http://purl.oclc.org/ooxml/officeDocument/relationships", {},
                R"(<row r="3"><c r="B3" t="s"><v>1</v></c><c r="C3"><v>3.14E-300</v></c></row>)", strings)));
    EXPECT_EQ(readBack(strict),
              (std::vector<QStringList>{{"", "", ""}, {"", "", ""}, {"", "  välit  ", "3,14E-300"}}));
}

TEST(SpreadsheetReaders, OdsWrittenByHand) {
    QTemporaryDir dir;
    const QByteArray content = R"(<?xml version="1.0"?>
<office:document-content xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
  xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
  xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0">
 <office:body><office:spreadsheet><table:table table:name="A">
  <table:table-row table:number-rows-repeated="2">
   <table:table-cell office:value-type="string" table:number-columns-repeated="2"><text:p>
      sama
      solu
   </text:p></table:table-cell>
   <table:table-cell office:value-type="time" office:time-value="PT15H59M59.9999S"/>
   <table:table-cell office:value-type="string"><text:p>  loppu  <text:span> </text:span></text:p></table:table-cell>
  </table:table-row>
  <table:table-row>
   <table:table-cell office:value-type="string"><text:p/><text:p>b</text:p></table:table-cell>
   <table:table-cell office:value-type="string"><text:p>a</text:p><text:p/></table:table-cell>
   <table:table-cell office:value-type="string"><text:p/><text:p/></table:table-cell>
   <table:table-cell office:value-type="string"><text:p>x</text:p></table:table-cell>
  </table:table-row>
  <table:table-row table:number-rows-repeated="1048570"><table:table-cell table:number-columns-repeated="1024"/></table:table-row>
 </table:table></office:spreadsheet></office:body></office:document-content>)";
    const QString path = dir.filePath("kasin.ods");
    ASSERT_TRUE(writeZip(
        path, {{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"}, {"content.xml", content}}));
    // XML white space is one space and none at the start; at the end one space stays, but not
    // the XML's line break and indentation before the closing tag. A time carries into the minute.
    // Each paragraph after the first starts a line, also after an empty first one (LibreOffice
    // shows "\nb", which lost its line break).
    EXPECT_EQ(readBack(path), (std::vector<QStringList>{{"sama solu", "sama solu", "16:00", "loppu "},
                                                        {"sama solu", "sama solu", "16:00", "loppu "},
                                                        {"\r\nb", "a\r\n", "\r\n", "x"}}));
}

TEST(SpreadsheetReaders, DamagedFilesFailWithWhereAndNeverHang) {
    QTemporaryDir dir;
    // A record that claims more bytes than the stream holds.
    {
        QByteArray s = kBof2 + record(0x0003, cellHead2(0, 0) + f64(1));
        s += le16(0x0004) + le16(500) + "lyhyt";
        const QString path = dir.filePath("katkennut.xls");
        ASSERT_TRUE(writeFile(path, s));
        const platform::ReadError where = readStop(path);
        EXPECT_EQ(where.record, "0x0004");
        EXPECT_EQ(where.offset, 27);
        EXPECT_TRUE(where.part.isEmpty());
    }
    // A binary workbook part whose first record holds less than its kind needs.
    {
        const QByteArray rels =
            R"(<?xml version="1.0"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
            R"(<Relationship Id="r1" Type="t/officeDocument" Target="xl/workbook.bin"/></Relationships>)";
        ASSERT_TRUE(writeZip(dir.filePath("vajaa.xlsb"),
                             {{"[Content_Types].xml", "<Types/>"},
                              {"_rels/.rels", rels},
                              {"xl/workbook.bin", QByteArray("\x99\x01\x02\x01\x00", 5)}}));
        const platform::ReadError where = readStop(dir.filePath("vajaa.xlsb"));
        EXPECT_EQ(where.part, "xl/workbook.bin");
        EXPECT_EQ(where.record, "153");
        EXPECT_EQ(where.offset, 0);
    }
    // A BIFF8 sheet list that points past the end, shared strings that promise more than they
    // hold, a workbook encrypted with a password of its own (its verifier does not match the
    // default password's).
    {
        QByteArray globals =
            record(0x0809, le16(0x0600) + le16(0x0005) + QByteArray(12, 0)) +
            record(0x00FC, le32(1000000) + le32(1000000) + biff8String("vain yksi")) +
            record(0x0085, le32(999999) + le16(0) + QByteArray(1, 1) + QByteArray(1, 0) + "A") + kEof;
        ASSERT_TRUE(writeOle(dir.filePath("ohi.xls"), "Workbook", globals));
        EXPECT_TRUE(readError(dir.filePath("ohi.xls")).contains("tavu 999999"))
            << readError(dir.filePath("ohi.xls")).toStdString();
        QByteArray locked = record(0x0809, le16(0x0600) + le16(0x0005) + QByteArray(12, 0)) +
                            record(0x002F, le16(1) + le16(1) + le16(1) + QByteArray(48, 0x5A)) + kEof;
        ASSERT_TRUE(writeOle(dir.filePath("lukittu.xls"), "Workbook", locked));
        EXPECT_TRUE(readError(dir.filePath("lukittu.xls")).contains("salasanalla"))
            << readError(dir.filePath("lukittu.xls")).toStdString();
    }
    // XML that breaks off names the part and the line.
    {
        ASSERT_TRUE(writeZip(
            dir.filePath("rikki.ods"),
            {{"content.xml", "<?xml version=\"1.0\"?>\n<a xmlns:table=\"t\">\n<table:table><b></a>"}}));
        const platform::ReadError where = readStop(dir.filePath("rikki.ods"));
        EXPECT_EQ(where.part, "content.xml");
        EXPECT_EQ(where.line, 3);
        EXPECT_GT(where.column, 0);
        // In the program's words only: nothing of the XML library's English.
        EXPECT_EQ(where.what, "ei ole kelvollista XML:ää");
    }
    // Elements nested far deeper than any spreadsheet nests them: the parser's stack of open
    // elements grew with them, to 760 MB for a file of 300 kB.
    {
        const QByteArray deep = QByteArray("<b>").repeated(300) + QByteArray("</b>").repeated(300);
        ASSERT_TRUE(writeZip(dir.filePath("syva.ods"),
                             {{"content.xml", "<?xml version=\"1.0\"?>\n<a xmlns:table=\"t\"><table:table>" +
                                                  deep + "</table:table></a>"}}));
        const QString error = readError(dir.filePath("syva.ods"));
        EXPECT_TRUE(error.endsWith(" ei voitu lukea: osassa content.xml on yli 256 sisäkkäistä elementtiä."))
            << error.toStdString();
    }
    // A package whose relationships name more parts than any workbook has.
    {
        QByteArray rels =
            R"(<?xml version="1.0"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)";
        for (int i = 0; i < 70000; ++i)
            rels +=
                QString(R"(<Relationship Id="r%1" Type="t/worksheet" Target="x%1.xml"/>)").arg(i).toUtf8();
        rels += "</Relationships>";
        ASSERT_TRUE(writeZip(dir.filePath("viittaukset.xlsx"),
                             {{"[Content_Types].xml", "<Types/>"}, {"_rels/.rels", rels}}));
        const QString error = readError(dir.filePath("viittaukset.xlsx"));
        EXPECT_TRUE(error.endsWith("osassa _rels/.rels on yli 65536 viittausta.")) << error.toStdString();
    }
    // Every fixture cut short and with bytes overwritten here and there: read or refused, but
    // never a crash or an endless loop.
    const QString data = testing_support::sourceDir() + "/tests/lists/data/";
    for (const QString name : {"kaavat.xls", "kaavat.xlsx", "kaavat.ods", "taulukko.xls"}) {
        QFile f(data + name);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        const QByteArray original = f.readAll();
        const QString ext = name.mid(name.lastIndexOf('.'));
        for (int i = 1; i <= 40; ++i) {
            SCOPED_TRACE(name.toStdString() + (i % 2 ? " cut short, " : " overwritten, ") +
                         std::to_string(i));
            QByteArray bytes = original;
            if (i % 2)
                bytes.truncate(original.size() * i / 41);
            else
                for (qsizetype at = i * 37; at < bytes.size(); at += 97 + i)
                    bytes[at] = char(bytes[at] ^ (0x5A + i));
            const QString path = dir.filePath(QString("sotku%1%2").arg(i).arg(ext));
            ASSERT_TRUE(writeFile(path, bytes));
            std::vector<QStringList> rows;
            QString error;
            if (!readFirstSheet(path, 0, rows, &error)) EXPECT_FALSE(error.isEmpty());
        }
    }
}

TEST(SpreadsheetCellText, FormatsAsTheSheetShowsThem) {
    using namespace lists::sheet;
    EXPECT_EQ(numberText(1234.5, excelFormat(u"#,##0.00\\ [$€-40B]")), "1234,50");
    EXPECT_EQ(numberText(0.125, excelFormat(u"0.0%")), "12,5%");
    EXPECT_EQ(numberText(2.675, excelFormat(u"0.00")), "2,68") << "halves away from zero";
    // Rounding starts from the shortest text of the double, not from 15 digits of it.
    EXPECT_EQ(numberText(2.6749999999999994, excelFormat(u"0.00")), "2,67");
    EXPECT_EQ(numberText(0.0105, excelFormat(u"0.0%")), "1,1%");
    EXPECT_EQ(numberText(-0.00527418346560432, {}), "-0,00527418346560432");
    EXPECT_EQ(numberText(9007199254740992.0, {}), "9,00719925474099E+15");
    EXPECT_EQ(numberText(-0.004, excelFormat(u"0.00")), "0,00");
    EXPECT_EQ(numberText(12.5, excelFormat(u"0")), "13");
    EXPECT_EQ(numberText(12.5, excelFormat(u"0.0#")), "12,5");
    EXPECT_EQ(numberText(1e15, excelFormat(u"0.00E+00")), "1000000000000000");
    EXPECT_EQ(numberText(1, excelFormat(u"\"TRUE\";\"TRUE\";\"FALSE\"")), "TOSI");
    const QDate null1900 = nullDate(false);
    EXPECT_EQ(serialText(2.0 / 3, excelFormat(u"hh:mm:ss"), null1900), "16:00:00") << "not 15:59:60";
    EXPECT_EQ(serialText(1.1458912037037, excelFormat(u"[h]:mm:ss"), null1900), "27:30:05");
    EXPECT_EQ(serialText(1.09375, excelFormat(u"[h]:mm"), null1900), "26:15");
    EXPECT_EQ(serialText(0.0208333333, excelFormat(u"[mm]:ss"), null1900), "30:00");
    EXPECT_EQ(serialText(45366.999999999, excelFormat(u"d.m.yyyy h:mm"), null1900), "16.3.2024 0:00");
    EXPECT_EQ(serialText(45366.5, excelFormat(u"yyyy-mm-dd"), null1900), "15.3.2024");
    EXPECT_EQ(serialText(45366.5, excelFormat(u"h:mm AM/PM"), null1900), "12:00");
    EXPECT_EQ(serialText(45366, excelFormat(u"d.m.yyyy"), nullDate(true)), "16.3.2028");
    EXPECT_EQ(excelFormat(u"mmm yyyy").kind, CellFormat::Date);
    EXPECT_EQ(excelFormat(u"mm:ss").kind, CellFormat::Time);
    EXPECT_EQ(excelFormat(u"General").kind, CellFormat::General);
    EXPECT_EQ(excelBuiltinFormat(46).kind, CellFormat::Elapsed);
}

// Rows that come last to first, a row given twice and a cell inside a run of rows: each cell in
// its place, the later of two for the same place, as the file gave them.
TEST(SpreadsheetReaders, RowsOutOfOrderTakeTheirPlaces) {
    using namespace lists::sheet;
    SheetBuilder builder(4);
    builder.addRows(0, 3, {"a", "b"});
    for (int r = 9; r >= 5; --r)
        builder.setCell(r, 0, QString::number(r));
    builder.setCell(7, 2, "myöhempi");
    builder.setCell(7, 0, "uusi");
    builder.setCell(1, 1, "keskellä");
    const SheetData data = builder.take();
    std::vector<std::tuple<int, int, QStringList>> rows;
    for (const SheetRow& r : data.rows)
        rows.emplace_back(r.index, r.repeat, r.cells);
    const std::vector<std::tuple<int, int, QStringList>> expected{
        {0, 1, {"a", "b"}}, {1, 1, {"a", "keskellä"}},        {2, 1, {"a", "b"}}, {5, 1, {"5"}},
        {6, 1, {"6"}},      {7, 1, {"uusi", "", "myöhempi"}}, {8, 1, {"8"}},      {9, 1, {"9"}},
    };
    EXPECT_EQ(rows, expected);
}

// What the readers keep is counted as it comes: past the limit no cell is stored, however many
// the file holds, and the reader stops with a message that says why.
TEST(SpreadsheetReaders, WhatIsKeptIsCounted) {
    using namespace lists::sheet;
    SheetBuilder builder(4);
    const QString text(1000, QLatin1Char('x'));
    const int most = int(SheetBuilder::kMostKept / (2 * text.size())) + 1;
    int row = 0;
    for (; row < most && !builder.full(); ++row)
        builder.setCell(row, 0, text);
    EXPECT_TRUE(builder.full());
    EXPECT_LT(row, most);
    builder.setCell(row + 1, 0, text);
    builder.addRows(row + 2, 1000, {text});
    EXPECT_EQ(builder.take().rows.size(), std::size_t(row - 1)) << "nothing stored once full";
    EXPECT_EQ(SheetBuilder::fullMessage(),
              "taulukossa on enemmän tekstiä kuin ohjelma pystyy tuomaan (yli 256 Mt)");

    // A short text costs its row all the places up to it: a cell in the 1024th column of every
    // row took 24 kB a row where only its characters were counted.
    SheetBuilder far(1024);
    int rows = 0;
    for (; rows < 20000 && !far.full(); ++rows)
        far.setCell(rows, 1023, QStringLiteral("x"));
    EXPECT_TRUE(far.full());
    EXPECT_LT(rows, 12000);
    // A run stored once still has a place for each of its cells.
    SheetBuilder runs(1024);
    const QStringList wide(1024, QStringLiteral("x"));
    int run = 0;
    for (; run < 20000 && !runs.full(); ++run)
        runs.addRows(run * 5, 5, wide);
    EXPECT_TRUE(runs.full());
    EXPECT_LT(run, 6000);
    EXPECT_EQ(runs.take().rows.size(), std::size_t(run - 1));
}
