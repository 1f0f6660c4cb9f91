#pragma once
// Converting a list file from one format to another, without windows (`tamrik convert IN OUT`).
//
// Read: .sl1, .sl2, .csv (list text files), the spreadsheets of isSpreadsheetFile (first
// worksheet).
// Write: .sl1, .sl2, .csv, .xlsx.
// The format is chosen by the extension in any letter case. A spreadsheet has no separate
// header: its first row becomes the header row of the list and the rows below it the list's
// rows, which is what the .xlsx export writes, so .sl1 -> .xlsx -> .sl1 gives the same file.
#include <QString>

namespace lists {

// Converts `in` to `out`. Never writes over the input, and writes nothing when the input cannot
// be read or holds characters the output's code page cannot store. On failure returns false
// with a Finnish message in `error`.
bool ConvertListFile(const QString& in, const QString& out, QString* error = nullptr);

} // namespace lists
