// The first worksheet of an Office Open XML workbook (.xlsx), transitional or strict: the parts
// are found through the package's relationships, so only the local names of elements and the
// last word of relationship types matter. Every part is parsed as it is unpacked.
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/SaxPart.h"
#include "lists/spreadsheet/SheetReaders.h"

#include <QHash>

#include <charconv>
#include <cmath>
#include <string>
#include <vector>

namespace lists::sheet {

namespace {

using namespace Qt::StringLiterals;

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

// The shared strings: the text of every <si>, its runs' <t> included and its phonetic guides
// (<rPh>) left out.
class SharedStrings : public SaxPart {
public:
    SharedStrings(std::vector<QString>& out, SheetBuilder& budget)
        : m_out(out)
        , m_budget(budget)
        , m_budgetBefore(budget)
        , m_outBefore(out.size()) {}

protected:
    bool plainXml() const override { return true; }
    void rewind() override {
        m_out.resize(m_outBefore);
        m_budget = m_budgetBefore;
        m_text.clear();
        m_inString = m_inText = false;
        m_skip = 0;
    }
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
            if (!m_budget.keep(m_out.back().size())) stop(SheetBuilder::fullMessage());
        } else if (name == "rPh" || name == "phoneticPr") {
            --m_skip;
        } else if (name == "t") {
            m_inText = false;
        }
    }
    void text(const char* chars, int length) override {
        if (m_inText) append(m_text, chars, length);
    }

private:
    std::vector<QString>& m_out;
    SheetBuilder& m_budget;
    const SheetBuilder m_budgetBefore; // holds no cells yet: a count to go back to
    const std::size_t m_outBefore;
    std::string m_text;
    bool m_inString = false;
    bool m_inText = false;
    int m_skip = 0;
};

// The number format of each cell format (the index a cell's s attribute gives): <numFmt>s give
// the workbook's own formats, the <xf>s of <cellXfs> point at them or at built-in ones.
class Styles : public SaxPart {
public:
    Styles(std::vector<CellFormat>& out, SheetBuilder& budget)
        : m_out(out)
        , m_budget(budget) {}

protected:
    void start(std::string_view name, const xmlChar** attributes, int count) override {
        // The formats kept count as the texts do.
        if ((name == "numFmt" || (m_inCellXfs && name == "xf")) && !m_budget.keep(0))
            return stop(SheetBuilder::fullMessage());
        if (name == "numFmt") {
            m_custom.insert(intOf(saxAttribute(attributes, count, "numFmtId")),
                            excelFormat(fromUtf8(saxAttribute(attributes, count, "formatCode"))));
        } else if (name == "cellXfs") {
            m_inCellXfs = true;
        } else if (m_inCellXfs && name == "xf") {
            const int id = intOf(saxAttribute(attributes, count, "numFmtId"));
            const auto it = m_custom.constFind(id);
            m_out.push_back(it != m_custom.cend() ? *it : excelBuiltinFormat(id));
        }
    }
    void end(std::string_view name) override {
        if (name == "cellXfs") m_inCellXfs = false;
    }
    void text(const char*, int) override {}

private:
    static int intOf(std::string_view s) {
        int v = 0;
        std::from_chars(s.data(), s.data() + s.size(), v);
        return v;
    }
    std::vector<CellFormat>& m_out;
    SheetBuilder& m_budget;
    QHash<int, CellFormat> m_custom;
    bool m_inCellXfs = false;
};

// The workbook part: its date system and the relationship id of its first sheet.
class WorkbookPart : public SaxPart {
public:
    bool date1904 = false;
    QString firstSheetId; // null while no sheet was seen

protected:
    void start(std::string_view name, const xmlChar** attributes, int count) override {
        if (name == "workbookPr") {
            const std::string_view v = saxAttribute(attributes, count, "date1904");
            date1904 = v == "1" || v == "true";
        } else if (name == "sheet" && firstSheetId.isNull()) {
            firstSheetId = QStringLiteral("");
            // r:id: the attribute named id that has a namespace.
            for (int i = 0; i < count; ++i)
                if (std::string_view(reinterpret_cast<const char*>(attributes[5 * i])) == "id" &&
                    attributes[5 * i + 2])
                    firstSheetId =
                        fromUtf8({reinterpret_cast<const char*>(attributes[5 * i + 3]),
                                  static_cast<std::size_t>(attributes[5 * i + 4] - attributes[5 * i + 3])});
        }
    }
    void end(std::string_view) override {}
    void text(const char*, int) override {}
};

// "AB12" as a column and a row from 0; false when it is not a cell reference.
bool parseReference(std::string_view ref, int& col, int& row) {
    std::size_t i = 0;
    qint64 c = 0, r = 0;
    for (; i < ref.size() && ((ref[i] >= 'A' && ref[i] <= 'Z') || (ref[i] >= 'a' && ref[i] <= 'z')); ++i) {
        c = c * 26 + ((ref[i] & ~0x20) - 'A' + 1);
        if (c > kMaxSheetColumns) return false;
    }
    const std::size_t letters = i;
    for (; i < ref.size() && ref[i] >= '0' && ref[i] <= '9'; ++i) {
        r = r * 10 + (ref[i] - '0');
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

QString cellText(const Workbook& book, std::string_view type, int style, const std::string& rawValue,
                 const QString& inlineText) {
    const CellFormat format =
        style >= 0 && style < static_cast<int>(book.formats.size()) ? book.formats[style] : CellFormat{};
    if (type.empty() || type == "n") {
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
    if (type == "s") {
        std::size_t index = 0;
        const auto r = std::from_chars(rawValue.data(), rawValue.data() + rawValue.size(), index);
        // A string cell without a valid index shows nothing, not some other cell's text.
        if (rawValue.empty() || r.ec != std::errc() || index >= book.strings.size()) return {};
        return book.strings[index];
    }
    if (type == "inlineStr") return inlineText;
    const QString value = fromUtf8(rawValue);
    if (type == "str") return withCrLf(decodeEscapes(value));
    if (type == "b") return value.isEmpty() ? QString() : booleanText(value.trimmed() != "0"_L1);
    if (type == "e") return value;
    if (type == "d") {
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
        , m_out(out)
        , m_outBefore(out) {}

protected:
    bool plainXml() const override { return true; }
    void rewind() override {
        m_out = m_outBefore;
        m_inData = m_inCell = m_inValue = m_inInline = m_inText = false;
        m_skip = 0;
        m_row = m_col = -1;
        m_style = 0;
        m_type.clear();
        m_value.clear();
        m_inline.clear();
    }
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
            if (parseReference(saxAttribute(attributes, count, "r"), col, row)) {
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
        } else if (name == "row") {
            if (m_out.full()) stop(SheetBuilder::fullMessage());
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
            m_out.setCell(m_row, m_col, cellText(m_book, m_type, m_style, m_value, inlineText));
        }
    }
    void text(const char* chars, int length) override {
        if (m_inValue)
            append(m_value, chars, length);
        else if (m_inText)
            append(m_inline, chars, length);
    }

private:
    const Workbook& m_book;
    SheetBuilder& m_out;
    const SheetBuilder m_outBefore; // the builder before the sheet's first cell
    bool m_inData = false, m_inCell = false, m_inValue = false, m_inInline = false, m_inText = false;
    int m_skip = 0;
    int m_row = -1, m_col = -1, m_style = 0;
    std::string m_type, m_value, m_inline;
};

} // namespace

bool readXlsx(const Archive& archive, const QString& workbookPart, SheetBuilder& out,
              platform::ReadError* error) {
    WorkbookPart workbook;
    if (!workbook.parse(archive, workbookPart, error)) return false;
    if (workbook.firstSheetId.isNull())
        return platform::fail(error,
                              platform::ReadError::reason(QStringLiteral("työkirjassa ") + workbookPart +
                                                          QStringLiteral(" ei ole taulukoita")));
    Workbook book;
    book.date1904 = workbook.date1904;

    Relationships rels;
    if (!readRelationships(archive, workbookPart, rels, error)) return false;
    QString sheetPart;
    if (const auto it = rels.constFind(workbook.firstSheetId); it != rels.cend()) sheetPart = it->target;
    if (sheetPart.isEmpty())
        return platform::fail(error, platform::ReadError::reason(
                                         QStringLiteral("työkirjan ensimmäisen taulukon osaa ei löydy")));
    for (const Relationship& r : std::as_const(rels)) {
        if (r.type == "sharedStrings"_L1 && !SharedStrings(book.strings, out).parse(archive, r.target, error))
            return false;
        if (r.type == "styles"_L1 && !Styles(book.formats, out).parse(archive, r.target, error)) return false;
    }
    return Worksheet(book, out).parse(archive, sheetPart, error);
}

} // namespace lists::sheet
