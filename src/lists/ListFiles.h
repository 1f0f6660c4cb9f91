#pragma once
// List text files (.sl1, .sl2, .csv and the list templates) and the combo data files.
//
// A list file is Windows-1252 text with CR LF line ends. Line 1 holds the header texts of the
// columns before "Rivi", every further line one row; fields are separated by ";" with no
// quoting, so ";" and line breaks inside a cell are written as spaces. Row numbers are not
// stored: they are given anew in file order when the file is read.
#include "lists/ListModel.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace lists {

// The display width of a header text in twips.
using TextMeasure = std::function<int(const QString&)>;
// Without a window font: about six pixels (90 twips) a character.
int approximateTextWidth(const QString& text);

// The columns of a list with these header texts: each as wide as its text plus 200 twips, then
// the hidden row-number column "Rivi".
std::vector<Column> columnsForHeaders(const QStringList& headers, const TextMeasure& measure = {});

// 1 plus the number of separators in the line.
int CalculateCols(const QString& line, const QString& separator);
// Field k (from 1) of the line; empty when the line has fewer fields.
QString ParseString(const QString& line, int field, const QString& separator);

// A list file read into columns and rows, ready for ListModel::reset().
struct ListFileContent {
    std::vector<Column> columns; // the header fields, then "Rivi"
    std::vector<Row> rows;       // numbered 00001, 00002, ... in file order
};
// What a file holds, told from its first bytes before it is read as a list: a spreadsheet
// (a ZIP package or an OLE compound file), a TAMRIK project, other binary data (NUL bytes, or
// more than one control character in a hundred other than tab, line ends and form feed), or
// text.
enum class FileContent { Text, Spreadsheet, Project, Binary };
FileContent recogniseFile(const QByteArray& bytes);
// The same for a file on disk (its first 64 kB); Text when it cannot be read.
FileContent recogniseFile(const QString& fileName);

// The most columns a list file may have; a list has a few dozen.
constexpr int kMaxListColumns = 256;
// Cells a list file may have beyond two for each of its bytes (short lines under a wide header).
constexpr qsizetype kListCellMargin = 1000000;

enum class ReadStatus { Ok, Missing, Failed };
// Reads a list text file (Windows-1252, or UTF-8 as decodeText tells). A spreadsheet, a
// project or a binary file is refused, and so is a header of more than kMaxListColumns fields.
// On failure `error` holds the message to show: "Tiedostoa: " + name + " ei löydy." for a
// missing file, the system's description for other errors.
ReadStatus ReadListFile(const QString& fileName, const QString& separator, ListFileContent& content,
                        QString* error = nullptr, const TextMeasure& measure = {});
// The same for a file's bytes already read; `fileName` only names the file in the messages.
ReadStatus readListBytes(const QByteArray& bytes, const QString& fileName, const QString& separator,
                         ListFileContent& content, QString* error = nullptr, const TextMeasure& measure = {});

// Replaces the list's columns and rows with those of a list file; column widths are the header
// text's width plus 200 twips. With ".xls" as the separator the file is a spreadsheet and goes
// to ImportListViewXls instead. A file that cannot be read is reported through the message
// facade and leaves the list as it was. Returns whether the list was filled.
bool InitListView(ListModel& list, const QString& fileName, const QString& separator = QStringLiteral(";"),
                  const TextMeasure& measure = {});

// A list file's bytes for the list: header, then one line per row, in Windows-1252, each line
// ended by CR LF. Characters outside Windows-1252 become "?" and are listed in `unencodable`.
QByteArray listFileBytes(const ListModel& list, QString* unencodable = nullptr);
// Writes the list as a list file, replacing an existing file (atomically). Characters outside
// Windows-1252 are written as "?" and listed in `unencodable`.
bool SaveListView(const ListModel& list, const QString& fileName, QString* error = nullptr,
                  QString* unencodable = nullptr);

// A cell (row 0: the header) holding characters that Windows-1252 cannot store.
struct CellRef {
    int row = 0;
    int col = 0;
    QString characters;
};
// The cells whose text would not be written as it stands, so the window can name them before saving.
std::vector<CellRef> cellsOutsideCp1252(const ListModel& list);

// The combo data file of a window type (1 .. 4) in the program folder `appPath` (ending in "/").
QString comboDataPath(const QString& appPath, int windowType);
// The entries a combo data file gives to each of `comboCount` combo boxes: line 1 is skipped,
// field i of every further line is added to box i - 1 unless empty, "{DATE}" becoming
// `today` as d.M.yyyy. `error` is the system's description when the file cannot be read.
struct ComboData {
    std::vector<QStringList> entries; // one list per combo box
    QString error;
    bool ok() const { return error.isEmpty(); }
};
ComboData readComboData(const QString& path, int comboCount, const QDate& today);

} // namespace lists
