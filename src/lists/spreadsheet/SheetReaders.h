#pragma once
// One reader per spreadsheet format. Each reads the first worksheet into a SheetBuilder and
// trusts no count or length in the file; on failure it returns false with what failed and where
// in `error` (Finnish, without a full stop), and the caller throws the builder away.
//
// The cell texts are what the spreadsheet shows, written as a user would type them (see
// CellText.h); formula cells give the result the file stores with them; true and false are
// "TOSI" and "EPÄTOSI", error values their text ("#DIV/0!"); line breaks inside a cell are CR LF.
#include "lists/spreadsheet/Archive.h"
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/SheetData.h"

#include <QByteArray>
#include <QString>

class QXmlStreamReader;

namespace lists::sheet {

// .xls: BIFF2 to BIFF8, in an OLE compound file or (BIFF2 to BIFF4) as a plain record stream.
bool readXls(const QByteArray& bytes, SheetBuilder& out, QString* error);
// .xlsx: Office Open XML workbooks, transitional or strict.
bool readXlsx(const Archive& archive, SheetBuilder& out, QString* error);
// .ods: OpenDocument spreadsheets.
bool readOds(const Archive& archive, SheetBuilder& out, QString* error);

// ---- shared by the XML readers

// Line breaks inside a cell as the lists hold them: CR LF.
QString withCrLf(QString text);
// Reads an XML member of the archive; false with the reason when it is missing or unreadable.
bool readPart(const Archive& archive, const QString& path, QByteArray& out, QString* error);
// "osa NAME ei ole kelvollista XML:ää (rivi L, sarake C: ...)" for a reader that failed.
QString xmlError(const QString& part, const QXmlStreamReader& xml);

} // namespace lists::sheet
