#pragma once
// One reader per spreadsheet format. Each reads the first worksheet into a SheetBuilder and
// trusts no count or length in the file; on failure it returns false with what failed and where
// in `error`, and the caller throws the builder away.
//
// The cell texts are what the spreadsheet shows, written as a user would type them (see
// CellText.h); formula cells give the result the file stores with them; true and false are
// "TOSI" and "EPÄTOSI", error values their text ("#DIV/0!"); line breaks inside a cell are CR LF.
#include "lists/spreadsheet/Archive.h"
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/SheetData.h"
#include "platform/ReadError.h"

#include <QByteArray>
#include <QHash>
#include <QString>

namespace lists::sheet {

// .xls: BIFF2 to BIFF8, in an OLE compound file or (BIFF2 to BIFF4) as a plain record stream.
bool readXls(const QByteArray& bytes, SheetBuilder& out, platform::ReadError* error);
// .xlsx (and .xlsm, .xltx, .xltm): Office Open XML workbooks, transitional or strict, whose
// workbook part (workbookPartOf) is `workbookPart`.
bool readXlsx(const Archive& archive, const QString& workbookPart, SheetBuilder& out,
              platform::ReadError* error);
// .xlsb: the same package with binary parts ("xl/workbook.bin").
bool readXlsb(const Archive& archive, const QString& workbookPart, SheetBuilder& out,
              platform::ReadError* error);
// .ods: OpenDocument spreadsheets.
bool readOds(const Archive& archive, SheetBuilder& out, platform::ReadError* error);

// ---- shared by the readers (the binary formats share BinaryValues.h)

// Line breaks inside a cell as the lists hold them: CR LF.
QString withCrLf(QString text);

// ---- the package of Office Open XML workbooks

struct Relationship {
    QString type;   // the last word of the type: "officeDocument", "worksheet", ...
    QString target; // the part it points at, from the package's root ("xl/worksheets/sheet1.xml")
};
using Relationships = QHash<QString, Relationship>; // by id

// The relationships of a part (of the package itself for an empty part). A missing
// relationships part is no relationship.
bool readRelationships(const Archive& archive, const QString& part, Relationships& out,
                       platform::ReadError* error);
// The workbook part the package points at ("xl/workbook.xml" when it names none).
bool workbookPartOf(const Archive& archive, QString& part, platform::ReadError* error);

} // namespace lists::sheet
