#pragma once
// Lists to and from spreadsheet files: import of the first worksheet of .xls (FreeXL), .xlsx and
// .ods (orcus) files, export to .xlsx (libxlsxwriter).
//
// Cells become text as a user would have typed them: integers plainly, other numbers with a
// decimal comma, dates as d.M.yyyy.
#include "lists/ListModel.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace lists {

// A spreadsheet number as text: integers plainly, others with a decimal comma and at most 15
// significant digits, never with an exponent.
QString spreadsheetNumberText(double value);
// The value of a cell text that is a number written exactly as spreadsheetNumberText writes it
// ("12,5", "-3", not "12,50" or "007"), so that writing it as a number and reading it back
// gives the same text.
std::optional<double> cellTextNumber(const QString& text);

// Whether the file name has a spreadsheet extension that can be read (.xls, .xlsx, .ods).
bool isSpreadsheetFile(const QString& fileName);

// Reads the first worksheet into rows of text cells. Rows start at sheet row 1; reading stops
// after 100 consecutive blank rows and the trailing blank rows are dropped. Each row has
// `colCount` cells (columns 1 .. colCount), or, with colCount 0, as many as the widest kept
// row uses. On failure returns false with a Finnish message in `error`.
bool readFirstSheet(const QString& fileName, int colCount, std::vector<QStringList>& rows,
                    QString* error = nullptr);

// Fills the list's rows from the first worksheet; the list keeps its columns, sheet row r
// becomes a row numbered r. A file that cannot be read is reported through the message
// facade and leaves the list as it was.
bool ImportListViewXls(ListModel& list, const QString& fileName);

// Writes the header texts and then columns 1 .. n-1 of every row to the first worksheet of an
// .xlsx file: cell texts that are numbers as numbers, others as text. The file is replaced only
// when the whole workbook has been written.
bool ExportListViewXlsx(const ListModel& list, const QString& fileName, QString* error = nullptr);

} // namespace lists
