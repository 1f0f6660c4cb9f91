// The first worksheet of an Office Open XML workbook (.xlsx), transitional or strict: the parts
// are found through the package's relationships, so only the local names of elements and the
// last word of relationship types matter.
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/SheetReaders.h"

#include <QHash>
#include <QXmlStreamReader>

#include <charconv>
#include <cmath>
#include <cstring>
#include <string>

#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlerror.h>
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

// libxml2's SAX parser over one part: a pull parser is several times slower on a sheet of
// thousands of rows, and the sheet is most of an import's time.
class SaxPart {
public:
    virtual ~SaxPart() = default;
    // `attributes` holds `count` entries of five pointers: local name, prefix, URI, value, end.
    virtual void start(std::string_view name, const xmlChar** attributes, int count) = 0;
    virtual void end(std::string_view name) = 0;
    virtual void text(const char* chars, int length) = 0;

    bool parse(const QByteArray& bytes, const QString& part, QString* error) {
        xmlSAXHandler handler{};
        handler.initialized = XML_SAX2_MAGIC;
        handler.startElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                                    const xmlChar**, int count, int, const xmlChar** attributes) {
            static_cast<SaxPart*>(self)->start(reinterpret_cast<const char*>(name), attributes, count);
        };
        handler.endElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*) {
            static_cast<SaxPart*>(self)->end(reinterpret_cast<const char*>(name));
        };
        handler.characters = [](void* self, const xmlChar* chars, int length) {
            static_cast<SaxPart*>(self)->text(reinterpret_cast<const char*>(chars), length);
        };
        handler.cdataBlock = handler.characters;
        handler.serror = [](void*, xmlErrorPtr) {}; // reported below, not printed
        xmlParserCtxtPtr ctxt = xmlCreateMemoryParserCtxt(bytes.constData(), static_cast<int>(bytes.size()));
        if (!ctxt) {
            if (error) *error = QStringLiteral("osaa ") + part + QStringLiteral(" ei voi lukea");
            return false;
        }
        std::memcpy(ctxt->sax, &handler, sizeof handler);
        ctxt->userData = this;
        xmlCtxtUseOptions(ctxt, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
        xmlParseDocument(ctxt);
        const bool ok = ctxt->wellFormed != 0;
        if (!ok && error) {
            const xmlErrorPtr e = xmlCtxtGetLastError(ctxt);
            *error = QStringLiteral("osa %1 ei ole kelvollista XML:ää (rivi %2, sarake %3: %4)")
                         .arg(part)
                         .arg(e ? e->line : 0)
                         .arg(e ? e->int2 : 0)
                         .arg(e && e->message ? QString::fromUtf8(e->message).trimmed() : QString());
        }
        xmlFreeParserCtxt(ctxt);
        return ok;
    }
};

std::string_view saxAttribute(const xmlChar** attributes, int count, std::string_view name) {
    for (int i = 0; i < count; ++i)
        if (name == reinterpret_cast<const char*>(attributes[5 * i]))
            return {reinterpret_cast<const char*>(attributes[5 * i + 3]),
                    static_cast<std::size_t>(attributes[5 * i + 4] - attributes[5 * i + 3])};
    return {};
}

QString fromUtf8(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

// The shared strings: the text of every <si>, its runs' <t> included and its phonetic guides
// (<rPh>) left out.
class SharedStrings : public SaxPart {
public:
    explicit SharedStrings(std::vector<QString>& out)
        : m_out(out) {}
    void start(std::string_view name, const xmlChar**, int) override {
        if (name == "si") {
            m_text.clear();
            m_inString = true;
        } else if (name == "rPh" || name == "phoneticPr") {
            ++m_skip;
        } else if (name == "t") {
            m_inText = m_inString && m_skip == 0;
        }
    }
    void end(std::string_view name) override {
        if (name == "si") {
            m_out.push_back(withCrLf(decodeEscapes(fromUtf8(m_text))));
            m_inString = false;
        } else if (name == "rPh" || name == "phoneticPr") {
            --m_skip;
        } else if (name == "t") {
            m_inText = false;
        }
    }
    void text(const char* chars, int length) override {
        if (m_inText) m_text.append(chars, static_cast<std::size_t>(length));
    }

private:
    std::vector<QString>& m_out;
    std::string m_text;
    bool m_inString = false;
    bool m_inText = false;
    int m_skip = 0;
};

bool readSharedStrings(const Archive& archive, const QString& part, std::vector<QString>& out,
                       QString* error) {
    QByteArray bytes;
    if (!readPart(archive, part, bytes, error)) return false;
    SharedStrings strings(out);
    return strings.parse(bytes, part, error);
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

QString cellText(const Workbook& book, QStringView type, int style, const std::string& rawValue,
                 const QString& inlineText) {
    const CellFormat format =
        style >= 0 && style < static_cast<int>(book.formats.size()) ? book.formats[style] : CellFormat{};
    if (type.isEmpty() || type == "n"_L1) {
        // Numbers are most cells: read them without making a text first.
        const char* begin = rawValue.data();
        const char* end = begin + rawValue.size();
        while (begin < end && *begin == ' ')
            ++begin;
        double number = 0;
        if (begin == end || std::from_chars(begin, end, number).ec != std::errc()) return {};
        return format.isDateOrTime() ? serialText(number, format, nullDate(book.date1904))
                                     : numberText(number, format);
    }
    if (type == "s"_L1) {
        std::size_t index = 0;
        const auto r = std::from_chars(rawValue.data(), rawValue.data() + rawValue.size(), index);
        // A string cell without a valid index shows nothing, not some other cell's text.
        if (rawValue.empty() || r.ec != std::errc() || index >= book.strings.size()) return {};
        return book.strings[index];
    }
    if (type == "inlineStr"_L1) return inlineText;
    const QString value = fromUtf8(rawValue);
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

// The cells of <sheetData>: <row r>, <c r s t> with <v> or an inline <is>; a formula's <f> is
// passed over, its stored result is the <v>.
class Worksheet : public SaxPart {
public:
    Worksheet(const Workbook& book, SheetBuilder& out)
        : m_book(book)
        , m_out(out) {}
    void start(std::string_view name, const xmlChar** attributes, int count) override {
        if (name == "sheetData") {
            m_inData = true;
        } else if (!m_inData) {
        } else if (name == "row") {
            int number = 0;
            const std::string_view r = saxAttribute(attributes, count, "r");
            const auto result = std::from_chars(r.data(), r.data() + r.size(), number);
            m_row = result.ec == std::errc() && number >= 1 ? number - 1 : m_row + 1;
            m_col = -1;
        } else if (name == "c") {
            int col = 0, row = 0;
            if (parseReference(fromLatin1(saxAttribute(attributes, count, "r")), col, row)) {
                m_col = col;
                m_row = row;
            } else {
                ++m_col;
            }
            m_type = saxAttribute(attributes, count, "t");
            const std::string_view s = saxAttribute(attributes, count, "s");
            m_style = 0;
            std::from_chars(s.data(), s.data() + s.size(), m_style);
            m_value.clear();
            m_inline.clear();
            m_inCell = true;
        } else if (m_inCell && name == "v") {
            m_inValue = true;
        } else if (m_inCell && name == "is") {
            m_inInline = true;
        } else if (m_inInline && (name == "rPh" || name == "phoneticPr")) {
            ++m_skip;
        } else if (m_inInline && name == "t") {
            m_inText = m_skip == 0;
        }
    }
    void end(std::string_view name) override {
        if (name == "sheetData") {
            m_inData = false;
        } else if (name == "v") {
            m_inValue = false;
        } else if (name == "t") {
            m_inText = false;
        } else if (name == "rPh" || name == "phoneticPr") {
            --m_skip;
        } else if (name == "is") {
            m_inInline = false;
        } else if (name == "c" && m_inCell) {
            m_inCell = false;
            const QString inlineText =
                m_inline.empty() ? QString() : withCrLf(decodeEscapes(fromUtf8(m_inline)));
            m_out.setCell(m_row, m_col, cellText(m_book, fromLatin1(m_type), m_style, m_value, inlineText));
        }
    }
    void text(const char* chars, int length) override {
        if (m_inValue)
            m_value.append(chars, static_cast<std::size_t>(length));
        else if (m_inText)
            m_inline.append(chars, static_cast<std::size_t>(length));
    }

private:
    static QString fromLatin1(std::string_view s) {
        return QString::fromLatin1(s.data(), static_cast<qsizetype>(s.size()));
    }
    const Workbook& m_book;
    SheetBuilder& m_out;
    bool m_inData = false, m_inCell = false, m_inValue = false, m_inInline = false, m_inText = false;
    int m_skip = 0;
    int m_row = -1, m_col = -1, m_style = 0;
    std::string m_type, m_value, m_inline;
};

bool readWorksheet(const Archive& archive, const QString& part, const Workbook& book, SheetBuilder& out,
                   QString* error) {
    QByteArray bytes;
    if (!readPart(archive, part, bytes, error)) return false;
    Worksheet sheet(book, out);
    return sheet.parse(bytes, part, error);
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
