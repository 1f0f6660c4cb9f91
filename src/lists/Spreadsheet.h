#pragma once
// Lists to and from spreadsheet files: import of the first worksheet of .xls, .xlsx (and its
// macro and template forms), .xlsb and .ods files (our own readers in spreadsheet/), export to
// .xlsx (libxlsxwriter).
//
// Cells become text as a user would have typed them and the spreadsheet shows them: numbers with
// a decimal comma and the decimals their format shows, dates as d.M.yyyy, formula cells as their
// stored result. The export writes number texts as numbers with a format that shows them as
// typed, so export and import give the same texts back.
#include "lists/ListModel.h"
#include "platform/ReadError.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace lists {

// A spreadsheet number as text without a number format: integers plainly, others with a decimal
// comma and at most 15 significant digits, very large and very small ones with an exponent.
QString spreadsheetNumberText(double value);

// A cell text that is a number as a user types it ("12,5", "12,50", "-3", not "007", "1 000" or
// "12,5 m"), with the decimals it was typed with: written as that number with that many
// decimals it reads back as the same text.
struct TypedNumber {
    double value = 0;
    int decimals = 0;
};
std::optional<TypedNumber> cellTextNumber(const QString& text);

// Whether the file name has a spreadsheet extension that can be read (.xls, .xlsx, .xlsm, .xlsb,
// .xltx, .xltm, .ods; any letter case).
bool isSpreadsheetFile(const QString& fileName);
// Those extensions for a message: ".xls, .xlsx, ... ja .ods".
QString spreadsheetExtensionsText();

// Reads the first worksheet into rows of text cells. Rows start at sheet row 1; reading stops
// after 100 consecutive blank rows and the trailing blank rows are dropped. Each row has
// `colCount` cells (columns 1 .. colCount), or, with colCount 0, as many as the widest kept
// row uses. The reader is chosen by what the file holds (an .xls that is really an .xlsx is
// read as one). On failure returns false with a Finnish message in `error`; when a reader
// stopped inside the file's contents, `where` gets what and where it stopped.
bool readFirstSheet(const QString& fileName, int colCount, std::vector<QStringList>& rows,
                    QString* error = nullptr, platform::ReadError* where = nullptr);

// A spreadsheet as a list of its own: the first row gives the header texts, the rows below it
// the list's rows (numbered 1, 2, ...). An empty sheet is an error.
bool readSpreadsheetList(const QString& fileName, ListModel& list, QString* error = nullptr);

// Fills the list's rows from the first worksheet. The list keeps its columns; a first row whose
// cells equal the list's header texts (without regard to case and surrounding blanks) is the
// header an export wrote and is skipped. A list without columns takes the sheet's columns and
// its first row as the header. A file that cannot be read is reported through the message
// facade and leaves the list as it was.
bool ImportListViewXls(ListModel& list, const QString& fileName);

// The name an export writes to for a name the user chose: the extension is .xlsx, since that is
// what is written ("hinnat.xls" becomes "hinnat.xlsx"). When that changes the name and the file
// exists, the user is asked before it is replaced; empty when the user says no.
QString spreadsheetExportName(const QString& chosen);

// Writes the header texts and then columns 1 .. n-1 of every row to the first worksheet of an
// .xlsx file: cell texts that are numbers as numbers with a format showing the typed decimals,
// others as text. The file is replaced only when the whole workbook has been written.
bool ExportListViewXlsx(const ListModel& list, const QString& fileName, QString* error = nullptr);

} // namespace lists
