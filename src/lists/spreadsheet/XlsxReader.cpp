// The first worksheet of an Office Open XML workbook (.xlsx), transitional or strict: the parts
// are found through the package's relationships, so only the local names of elements and the
// last word of relationship types matter.
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/SheetReaders.h"

#include <QHash>
#include <QXmlStreamReader>

#include <cmath>
#include <vector>

namespace lists::sheet {

namespace {

using namespace Qt::StringLiterals;

// "xl/worksheets/sheet1.xml" from the folder of the part that points at it and its target.
QString resolveTarget(const QString& fromFolder, const QString& target) {
    QString path = target.startsWith(QLatin1Char('/')) ? target.mid(1) : fromFolder + target;
    QStringList parts;
    for (const QString& p : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (p == QLatin1String("..")) {
            if (!parts.isEmpty()) parts.removeLast();
        } else if (p != QLatin1String(".")) {
            parts.append(p);
        }
    }
    return parts.join(QLatin1Char('/'));
}

QString folderOf(const QString& path) {
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.left(slash + 1);
}

struct Relationship {
    QString type; // the last word of the type: "officeDocument", "worksheet", ...
    QString target;
};

// The relationships of a part, by id. A missing relationships part is no relationship.
bool readRelationships(const Archive& archive, const QString& part, QHash<QString, Relationship>& out,
                       QString* error) {
    const QString relsPath = folderOf(part) + "_rels/"_L1 + part.mid(folderOf(part).size()) + ".rels"_L1;
    if (!archive.contains(relsPath)) return true;
    QByteArray bytes;
    if (!readPart(archive, relsPath, bytes, error)) return false;
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == "Relationship"_L1) {
            const QXmlStreamAttributes a = xml.attributes();
            const QString type = a.value("Type"_L1).toString();
            out.insert(a.value("Id"_L1).toString(),
                       {type.mid(type.lastIndexOf(QLatin1Char('/')) + 1),
                        resolveTarget(folderOf(part), a.value("Target"_L1).toString())});
        }
    }
    if (xml.hasError()) {
        if (error) *error = xmlError(relsPath, xml);
        return false;
    }
    return true;
}

// Text written as _xHHHH_ stands for the character HHHH (Excel writes a CR as _x000D_).
QString decodeEscapes(QString text) {
    if (!text.contains("_x"_L1)) return text;
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('_') && i + 6 < text.size() && text[i + 1] == QLatin1Char('x') &&
            text[i + 6] == QLatin1Char('_')) {
            bool ok = false;
            const ushort code = QStringView(text).mid(i + 2, 4).toUShort(&ok, 16);
            if (ok) {
                out += QChar(code);
                i += 6;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

// The text of an <si> or <is> element: its <t> and the <t> of its runs, without the phonetic
// guides (<rPh>) that some writers add.
QString richText(QXmlStreamReader& xml) {
    QString text;
    const QString outer = xml.name().toString();
    while (xml.readNext() != QXmlStreamReader::Invalid) {
        if (xml.isEndElement() && xml.name() == outer) break;
        if (!xml.isStartElement()) continue;
        if (xml.name() == "t"_L1)
            text += xml.readElementText(QXmlStreamReader::IncludeChildElements);
        else if (xml.name() == "rPh"_L1 || xml.name() == "phoneticPr"_L1)
            xml.skipCurrentElement();
    }
    return withCrLf(decodeEscapes(text));
}

bool readSharedStrings(const Archive& archive, const QString& part, std::vector<QString>& out,
                       QString* error) {
    QByteArray bytes;
    if (!readPart(archive, part, bytes, error)) return false;
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == "si"_L1) out.push_back(richText(xml));
    }
    if (xml.hasError()) {
        if (error) *error = xmlError(part, xml);
        return false;
    }
    return true;
}

// The number format of each cell format (the index a cell's s attribute gives).
bool readStyles(const Archive& archive, const QString& part, std::vector<CellFormat>& out, QString* error) {
    QByteArray bytes;
    if (!readPart(archive, part, bytes, error)) return false;
    QXmlStreamReader xml(bytes);
    QHash<int, CellFormat> custom;
    bool inCellXfs = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isEndElement() && xml.name() == "cellXfs"_L1) inCellXfs = false;
        if (!xml.isStartElement()) continue;
        if (xml.name() == "numFmt"_L1) {
            const QXmlStreamAttributes a = xml.attributes();
            custom.insert(a.value("numFmtId"_L1).toInt(), excelFormat(a.value("formatCode"_L1)));
        } else if (xml.name() == "cellXfs"_L1) {
            inCellXfs = true;
        } else if (inCellXfs && xml.name() == "xf"_L1) {
            const int id = xml.attributes().value("numFmtId"_L1).toInt();
            const auto it = custom.constFind(id);
            out.push_back(it != custom.cend() ? *it : excelBuiltinFormat(id));
        }
    }
    if (xml.hasError()) {
        if (error) *error = xmlError(part, xml);
        return false;
    }
    return true;
}

// "AB12" as a column and a row from 0; false when it is not a cell reference.
bool parseReference(QStringView ref, int& col, int& row) {
    qsizetype i = 0;
    qint64 c = 0, r = 0;
    for (; i < ref.size() && ref[i].isLetter(); ++i) {
        c = c * 26 + (ref[i].toUpper().unicode() - 'A' + 1);
        if (c > kMaxSheetColumns) return false;
    }
    const qsizetype letters = i;
    for (; i < ref.size() && ref[i].isDigit(); ++i) {
        r = r * 10 + (ref[i].unicode() - '0');
        if (r > kMaxSheetRows) return false;
    }
    if (letters == 0 || i == letters || i != ref.size()) return false;
    col = static_cast<int>(c - 1);
    row = static_cast<int>(r - 1);
    return true;
}

// An ISO 8601 date and time ("2024-03-15", "2024-03-15T13:45:00Z") as a day number of the 1900
// system; false when it is none.
bool isoSerial(QStringView text, double& serial, bool& hasTime) {
    const QDate date = QDate::fromString(text.left(10).toString(), Qt::ISODate);
    qsizetype timeAt = -1;
    if (date.isValid()) {
        if (text.size() > 10 && text[10] == QLatin1Char('T')) timeAt = 11;
        serial = static_cast<double>(nullDate(false).daysTo(date));
    } else if (text.size() >= 5 && text[2] == QLatin1Char(':')) {
        timeAt = 0;
        serial = 0;
    } else {
        return false;
    }
    hasTime = false;
    if (timeAt >= 0) {
        const QStringView t = text.mid(timeAt);
        const int h = t.left(2).toInt(), m = t.mid(3, 2).toInt();
        qsizetype end = 6;
        while (end < t.size() && (t[end].isDigit() || t[end] == QLatin1Char('.')))
            ++end;
        const double s = t.size() > 6 ? t.mid(6, end - 6).toDouble() : 0;
        const double seconds = h * 3600.0 + m * 60.0 + s;
        hasTime = seconds != 0;
        serial += seconds / 86400.0;
    }
    return true;
}

struct Workbook {
    bool date1904 = false;
    std::vector<QString> strings;
    std::vector<CellFormat> formats;
};

QString cellText(const Workbook& book, QStringView type, int style, const QString& value,
                 const QString& inlineText) {
    const CellFormat format =
        style >= 0 && style < static_cast<int>(book.formats.size()) ? book.formats[style] : CellFormat{};
    if (type.isEmpty() || type == "n"_L1) {
        if (value.isEmpty()) return {};
        bool ok = false;
        const double number = value.toDouble(&ok);
        if (!ok) return {};
        return format.isDateOrTime() ? serialText(number, format, nullDate(book.date1904))
                                     : numberText(number, format);
    }
    if (type == "s"_L1) {
        bool ok = false;
        const qlonglong index = value.toLongLong(&ok);
        // A string cell without a valid index shows nothing, not some other cell's text.
        if (!ok || index < 0 || index >= static_cast<qlonglong>(book.strings.size())) return {};
        return book.strings[static_cast<std::size_t>(index)];
    }
    if (type == "inlineStr"_L1) return inlineText;
    if (type == "str"_L1) return withCrLf(decodeEscapes(value));
    if (type == "b"_L1) return value.isEmpty() ? QString() : booleanText(value.trimmed() != "0"_L1);
    if (type == "e"_L1) return value;
    if (type == "d"_L1) {
        double serial = 0;
        bool hasTime = false;
        if (!isoSerial(value.trimmed(), serial, hasTime)) return value;
        CellFormat shown = format;
        if (!shown.isDateOrTime()) {
            shown.kind = hasTime ? CellFormat::DateTime : CellFormat::Date;
            shown.seconds = std::llround(serial * 86400) % 60 != 0;
        }
        return serialText(serial, shown, nullDate(false));
    }
    return value;
}

bool readWorksheet(const Archive& archive, const QString& part, const Workbook& book, SheetBuilder& out,
                   QString* error) {
    QByteArray bytes;
    if (!readPart(archive, part, bytes, error)) return false;
    QXmlStreamReader xml(bytes);
    int row = -1;
    int col = -1;
    bool inData = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isEndElement()) {
            if (xml.name() == "sheetData"_L1) break; // nothing after it is a cell
            continue;
        }
        if (!xml.isStartElement()) continue;
        const QStringView name = xml.name();
        if (name == "sheetData"_L1) {
            inData = true;
        } else if (inData && name == "row"_L1) {
            const QStringView r = xml.attributes().value("r"_L1);
            bool ok = false;
            const int number = r.toInt(&ok);
            row = ok && number >= 1 ? number - 1 : row + 1;
            col = -1;
        } else if (inData && name == "c"_L1) {
            const QXmlStreamAttributes a = xml.attributes();
            int refCol = 0, refRow = 0;
            if (parseReference(a.value("r"_L1), refCol, refRow)) {
                col = refCol;
                row = refRow;
            } else {
                ++col;
            }
            const QString type = a.value("t"_L1).toString();
            bool styled = false;
            int style = a.value("s"_L1).toInt(&styled);
            if (!styled) style = 0;
            QString value, inlineText;
            while (xml.readNext() != QXmlStreamReader::Invalid) {
                if (xml.isEndElement() && xml.name() == "c"_L1) break;
                if (!xml.isStartElement()) continue;
                if (xml.name() == "v"_L1)
                    value = xml.readElementText(QXmlStreamReader::IncludeChildElements);
                else if (xml.name() == "is"_L1)
                    inlineText = richText(xml);
                else
                    xml.skipCurrentElement(); // the formula, extensions
            }
            out.setCell(row, col, cellText(book, type, style, value, inlineText));
        }
    }
    if (xml.hasError()) {
        if (error) *error = xmlError(part, xml);
        return false;
    }
    return true;
}

} // namespace

bool readXlsx(const Archive& archive, SheetBuilder& out, QString* error) {
    // The workbook part, through the package's relationships.
    QHash<QString, Relationship> packageRels;
    if (!readRelationships(archive, QString(), packageRels, error)) return false;
    QString workbookPart = QStringLiteral("xl/workbook.xml");
    for (const Relationship& r : std::as_const(packageRels))
        if (r.type == "officeDocument"_L1) workbookPart = r.target;

    QByteArray bytes;
    if (!readPart(archive, workbookPart, bytes, error)) return false;
    Workbook book;
    QString firstSheetId;
    {
        QXmlStreamReader xml(bytes);
        while (!xml.atEnd()) {
            xml.readNext();
            if (!xml.isStartElement()) continue;
            if (xml.name() == "workbookPr"_L1) {
                const QStringView v = xml.attributes().value("date1904"_L1);
                book.date1904 = v == "1"_L1 || v == "true"_L1;
            } else if (xml.name() == "sheet"_L1 && firstSheetId.isNull()) {
                for (const QXmlStreamAttribute& a : xml.attributes())
                    if (a.name() == "id"_L1 && !a.namespaceUri().isEmpty())
                        firstSheetId = a.value().toString();
                if (firstSheetId.isNull()) firstSheetId = QStringLiteral("");
            }
        }
        if (xml.hasError()) {
            if (error) *error = xmlError(workbookPart, xml);
            return false;
        }
    }
    if (firstSheetId.isNull()) {
        if (error)
            *error = QStringLiteral("työkirjassa ") + workbookPart + QStringLiteral(" ei ole taulukoita");
        return false;
    }

    QHash<QString, Relationship> rels;
    if (!readRelationships(archive, workbookPart, rels, error)) return false;
    QString sheetPart;
    if (const auto it = rels.constFind(firstSheetId); it != rels.cend()) sheetPart = it->target;
    if (sheetPart.isEmpty()) {
        if (error) *error = QStringLiteral("työkirjan ensimmäisen taulukon osaa ei löydy");
        return false;
    }
    for (const Relationship& r : std::as_const(rels)) {
        if (r.type == "sharedStrings"_L1 && !readSharedStrings(archive, r.target, book.strings, error))
            return false;
        if (r.type == "styles"_L1 && !readStyles(archive, r.target, book.formats, error)) return false;
    }
    return readWorksheet(archive, sheetPart, book, out, error);
}

} // namespace lists::sheet
