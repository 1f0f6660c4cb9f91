// The first table of an OpenDocument spreadsheet (.ods). Rows and cells that repeat are stored
// once with a count, merged-away cells keep their place as covered cells, and how a number is
// shown comes from the data style of the cell's style. styles.xml and content.xml are parsed as
// they are unpacked; the parse ends with the first table.
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/SaxPart.h"
#include "lists/spreadsheet/SheetReaders.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

namespace lists::sheet {

namespace {

using namespace Qt::StringLiterals;

struct Styles {
    QHash<QString, CellFormat> dataStyles; // number:*-style by name
    struct CellStyle {
        QString dataStyle;
        QString parent;
    };
    QHash<QString, CellStyle> cellStyles; // style:style of the table-cell family by name

    // The number format of a cell style, through its parents.
    const CellFormat* formatOf(const QString& styleName) const {
        QString name = styleName;
        for (int depth = 0; depth < 16 && !name.isEmpty(); ++depth) {
            const auto it = cellStyles.constFind(name);
            if (it == cellStyles.cend()) return nullptr;
            if (!it->dataStyle.isEmpty()) {
                const auto f = dataStyles.constFind(it->dataStyle);
                return f == dataStyles.cend() ? nullptr : &*f;
            }
            name = it->parent;
        }
        return nullptr;
    }
};

int intOf(std::string_view s, int fallback) {
    int v = 0;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), v);
    return r.ec == std::errc() && r.ptr == s.data() + s.size() ? v : fallback;
}

// A number:*-style element as it is read: the format it gives, from its child elements.
struct DataStyle {
    std::string kind; // "number-style", "date-style", ...
    QString name;
    CellFormat format;
    bool hasDecimals = false;
    bool general = false; // scientific and fractions show the number as it is

    void child(std::string_view name, const xmlChar** attributes, int count) {
        if (name == "number" && hasSaxAttribute(attributes, count, "decimal-places")) {
            const int places = std::clamp(intOf(saxAttribute(attributes, count, "decimal-places"), 0), 0, 30);
            format.maxDecimals = static_cast<std::uint8_t>(places);
            format.minDecimals = static_cast<std::uint8_t>(
                std::clamp(intOf(saxAttribute(attributes, count, "min-decimal-places"), places), 0, places));
            hasDecimals = true;
        } else if (name == "scientific-number" || name == "fraction") {
            general = true;
        } else if (name == "hours" || name == "minutes" || name == "seconds") {
            if (format.kind == CellFormat::Date) format.kind = CellFormat::DateTime;
            if (name == "seconds") format.seconds = true;
            if (format.kind == CellFormat::Elapsed && !format.elapsedUnit) format.elapsedUnit = name[0];
        }
    }
    CellFormat finished() const {
        CellFormat f = format;
        if (kind == "number-style" || kind == "currency-style")
            f.kind = hasDecimals && !general ? CellFormat::Fixed : CellFormat::General;
        else if (kind == "percentage-style")
            f.kind = hasDecimals && !general ? CellFormat::Percent : CellFormat::General;
        if (f.kind == CellFormat::Elapsed && !f.elapsedUnit) f.elapsedUnit = 'h';
        return f;
    }
};

bool isDataStyle(std::string_view name) {
    return name == "number-style" || name == "currency-style" || name == "percentage-style" ||
           name == "date-style" || name == "time-style";
}

// ODF white space: a run of spaces, tabs and line ends in the XML counts as one space, and none
// at the start of a paragraph; <text:s/>, <text:tab/> and <text:line-break/> stand for the real
// ones. A space at the end of a paragraph stays, as the spreadsheet program that wrote it has
// it (it writes a cell's one trailing space so); a line end there is only the XML's layout.
class ParagraphText {
public:
    // Characters of the XML (UTF-8); false when the paragraph grew beyond any cell.
    bool xmlText(const char* chars, int length) {
        for (int i = 0; i < length; ++i) {
            const char c = chars[i];
            if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
                m_pendingSpace = true;
                m_pendingBreak = m_pendingBreak || c == '\n' || c == '\r';
            } else {
                flush();
                m_text += c;
            }
        }
        return m_text.size() <= kLongestText;
    }
    bool literal(std::string_view text) {
        flush();
        m_text += text;
        m_atStart = false;
        return m_text.size() <= kLongestText;
    }
    std::string take() {
        if (m_pendingSpace && !m_pendingBreak && !m_atStart) m_text += ' ';
        std::string text = std::move(m_text);
        *this = ParagraphText();
        return text;
    }

private:
    void flush() {
        if (m_pendingSpace && !m_atStart) m_text += ' ';
        m_pendingSpace = m_pendingBreak = false;
        m_atStart = false;
    }
    std::string m_text;
    bool m_pendingSpace = false;
    bool m_pendingBreak = false;
    bool m_atStart = true;
};

// "PT27H30M05.5S" (or "-P1DT2H") as seconds.
bool durationSeconds(QStringView text, double& seconds) {
    qsizetype i = 0;
    const bool negative = text.startsWith(QLatin1Char('-'));
    if (negative) ++i;
    if (i >= text.size() || text[i] != QLatin1Char('P')) return false;
    ++i;
    double total = 0;
    bool inTime = false;
    while (i < text.size()) {
        if (text[i] == QLatin1Char('T')) {
            inTime = true;
            ++i;
            continue;
        }
        const qsizetype start = i;
        while (i < text.size() &&
               (text[i].isDigit() || text[i] == QLatin1Char('.') || text[i] == QLatin1Char(',')))
            ++i;
        if (i == start || i >= text.size()) return false;
        bool ok = false;
        const double v =
            text.mid(start, i - start).toString().replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
        if (!ok) return false;
        const char16_t unit = text[i].unicode();
        if (unit == 'D')
            total += v * 86400;
        else if (unit == 'H' && inTime)
            total += v * 3600;
        else if (unit == 'M' && inTime)
            total += v * 60;
        else if (unit == 'S' && inTime)
            total += v;
        else
            return false;
        ++i;
    }
    seconds = negative ? -total : total;
    return true;
}

// What a cell's attributes say about its value.
struct CellValue {
    std::string type;   // office:value-type (another prefix's only where office: has none)
    bool error = false; // calcext:value-type="error": a formula's error, shown as its text
    std::string value, dateValue, timeValue, booleanValue;
    std::optional<std::string> stringValue;
    QString style;
    int repeat = 1;

    void read(const xmlChar** attributes, int count) {
        *this = CellValue();
        for (int i = 0; i < count; ++i) {
            const std::string_view name(reinterpret_cast<const char*>(attributes[5 * i]));
            const std::string_view v(reinterpret_cast<const char*>(attributes[5 * i + 3]),
                                     static_cast<std::size_t>(attributes[5 * i + 4] - attributes[5 * i + 3]));
            if (name == "value-type") {
                if (v == "error") error = true;
                if (saxAttributePrefix(attributes, i) == "office" || type.empty()) type = v;
            } else if (name == "value") {
                value = v;
            } else if (name == "date-value") {
                dateValue = v;
            } else if (name == "time-value") {
                timeValue = v;
            } else if (name == "boolean-value") {
                booleanValue = v;
            } else if (name == "string-value") {
                stringValue = std::string(v);
            } else if (name == "style-name") {
                style = fromUtf8(v);
            } else if (name == "number-columns-repeated") {
                repeat = std::clamp(intOf(v, 1), 1, kMaxSheetColumns);
            }
        }
    }

    QString text(const CellFormat* format, const QString& paragraphs) const {
        if (error) return paragraphs;
        if (type.empty() || type == "string")
            return stringValue ? withCrLf(fromUtf8(*stringValue)) : paragraphs;
        if (type == "boolean") return booleanText(booleanValue == "true" || booleanValue == "1");
        if (type == "date") return dateText(format, paragraphs);
        if (type == "time") return timeText(format, paragraphs);
        return numberValueText(format, paragraphs); // float, percentage, currency
    }

private:
    // office:date-value, a date with or without its time of day, shown in the cell's date
    // format or as a plain date (and time).
    QString dateText(const CellFormat* format, const QString& paragraphs) const {
        const QString v = fromUtf8(dateValue);
        const QDate date = QDate::fromString(v.left(10), Qt::ISODate);
        if (!date.isValid()) return paragraphs;
        double seconds = 0;
        if (v.size() > 11 && v[10] == QLatin1Char('T')) {
            const QStringView t = QStringView(v).mid(11);
            seconds = t.left(2).toInt() * 3600.0 + t.mid(3, 2).toInt() * 60.0 +
                      (t.size() > 6 ? t.mid(6).toDouble() : 0);
        }
        const double serial = nullDate(false).daysTo(date) + seconds / 86400;
        CellFormat shown = format && format->isDateOrTime() ? *format : CellFormat{};
        if (!shown.isDateOrTime()) {
            shown.kind = seconds != 0 ? CellFormat::DateTime : CellFormat::Date;
            shown.seconds = std::llround(seconds) % 60 != 0;
        }
        return serialText(serial, shown, nullDate(false));
    }

    // office:time-value, an ISO 8601 duration.
    QString timeText(const CellFormat* format, const QString& paragraphs) const {
        double seconds = 0;
        if (!durationSeconds(fromUtf8(timeValue), seconds)) return paragraphs;
        CellFormat shown = format && format->isDateOrTime() ? *format : CellFormat{};
        if (!shown.isDateOrTime()) {
            // Without a style: the time of day, or the whole duration when it is a day or more.
            shown.kind = std::fabs(seconds) >= 86400 ? CellFormat::Elapsed : CellFormat::Time;
            shown.elapsedUnit = 'h';
            shown.seconds = std::llround(seconds) % 60 != 0;
        }
        return serialText(seconds / 86400, shown, nullDate(false));
    }

    // office:value; the paragraphs when it is not a number.
    QString numberValueText(const CellFormat* format, const QString& paragraphs) const {
        const char* begin = value.data();
        const char* end = begin + value.size();
        while (begin < end && *begin == ' ')
            ++begin;
        double number = 0;
        if (begin == end || std::from_chars(begin, end, number).ec != std::errc()) return paragraphs;
        if (format && format->isDateOrTime()) return serialText(number, *format, nullDate(false));
        return numberText(number, format ? *format : CellFormat{});
    }
};

// styles.xml and content.xml: the data and cell styles wherever they stand, and in content.xml
// the first table.
class OdsPart : public SaxPart {
public:
    OdsPart(Styles& styles, SheetBuilder* out)
        : m_styles(styles)
        , m_out(out) {}
    bool tableSeen() const { return m_tableSeen; }

protected:
    void start(std::string_view name, const xmlChar** attributes, int count) override {
        if (m_skip > 0) {
            ++m_skip;
        } else if (m_inCell) {
            cellStart(name, attributes, count);
        } else if (m_inTable) {
            tableStart(name, attributes, count);
        } else if (m_dataStyle) {
            m_dataStyle->child(name, attributes, count);
        } else if (isDataStyle(name)) {
            dataStyleStart(name, attributes, count);
        } else if (name == "style") {
            styleStart(attributes, count);
        } else if (name == "table" && m_out) {
            m_inTable = true;
        }
    }

    void end(std::string_view name) override {
        if (m_skip > 0) {
            --m_skip;
        } else if (m_inCell) {
            cellEnd(name);
        } else if (m_inTable) {
            if (name == "table-row") {
                rowEnd();
            } else if (name == "table") {
                m_inTable = false;
                m_tableSeen = true;
                finish();
            }
        } else if (m_dataStyle && name == m_dataStyle->kind) {
            m_styles.dataStyles.insert(m_dataStyle->name, m_dataStyle->finished());
            m_dataStyle.reset();
        }
    }

    void text(const char* chars, int length) override {
        if (m_skip == 0 && m_inParagraph && !m_paragraph.xmlText(chars, length)) stop(tooLong());
    }

private:
    static QString tooLong() {
        return QStringLiteral("solun teksti on yli %1 tavua pitkä").arg(kLongestText);
    }

    // number:*-style: a data style, read up to its end.
    void dataStyleStart(std::string_view name, const xmlChar** attributes, int count) {
        m_dataStyle.emplace();
        m_dataStyle->kind = name;
        m_dataStyle->name = fromUtf8(saxAttribute(attributes, count, "name"));
        if (name == "date-style") m_dataStyle->format.kind = CellFormat::Date;
        if (name == "time-style")
            m_dataStyle->format.kind = saxAttribute(attributes, count, "truncate-on-overflow") == "false"
                                           ? CellFormat::Elapsed
                                           : CellFormat::Time;
    }

    // style:style: a cell style names its data style and the style it inherits from.
    void styleStart(const xmlChar** attributes, int count) {
        if (saxAttribute(attributes, count, "family") == "table-cell")
            m_styles.cellStyles.insert(fromUtf8(saxAttribute(attributes, count, "name")),
                                       {fromUtf8(saxAttribute(attributes, count, "data-style-name")),
                                        fromUtf8(saxAttribute(attributes, count, "parent-style-name"))});
    }

    void tableStart(std::string_view name, const xmlChar** attributes, int count) {
        if (name == "table-column") {
            columnStart(attributes, count);
        } else if (name == "table-row") {
            m_rowRepeat = std::clamp(intOf(saxAttribute(attributes, count, "number-rows-repeated"), 1), 1,
                                     kMaxSheetRows);
            m_rowStyle = fromUtf8(saxAttribute(attributes, count, "default-cell-style-name"));
            m_cells.clear();
            m_col = 0;
        } else if (name == "table-cell" || name == "covered-table-cell") {
            m_cell.read(attributes, count);
            m_inCell = true;
            m_cellDepth = 0;
            m_paragraphs.clear();
            m_paragraphCount = 0;
        } else if (name == "table") {
            m_skip = 1; // a table inside the table's structure is not its cells
        }
    }

    // table:table-column: the default cell style of its columns, as far as the list reads.
    void columnStart(const xmlChar** attributes, int count) {
        const int width = m_out->columns();
        const int repeat = std::clamp(intOf(saxAttribute(attributes, count, "number-columns-repeated"), 1), 1,
                                      kMaxSheetColumns);
        const QString style = fromUtf8(saxAttribute(attributes, count, "default-cell-style-name"));
        for (int i = 0; i < repeat && static_cast<int>(m_columnStyles.size()) < width; ++i)
            m_columnStyles.push_back(style);
    }

    // The end of a row: its cells, as often as it is repeated.
    void rowEnd() {
        m_out->addRows(m_row, m_rowRepeat, m_cells);
        m_row = static_cast<int>(std::min<qint64>(qint64(m_row) + m_rowRepeat, kMaxSheetRows));
        if (m_out->full()) stop(SheetBuilder::fullMessage());
    }

    // Inside a cell: its paragraphs and their spans count; notes, annotations, drawings and
    // anything else at the cell's own level do not.
    void cellStart(std::string_view name, const xmlChar** attributes, int count) {
        if (!m_inParagraph) {
            if (name == "p" || name == "h") {
                m_inParagraph = true;
                m_cellDepth = 1;
            } else {
                m_skip = 1;
            }
            return;
        }
        if (name == "s") {
            const int n = std::clamp(intOf(saxAttribute(attributes, count, "c"), 1), 1, 65535);
            if (!m_paragraph.literal(std::string(static_cast<std::size_t>(n), ' '))) stop(tooLong());
            m_skip = 1;
        } else if (name == "tab") {
            m_paragraph.literal("\t");
            m_skip = 1;
        } else if (name == "line-break") {
            m_paragraph.literal("\r\n");
            m_skip = 1;
        } else if (name == "note" || name == "annotation" || name == "ruby-text" || name == "frame") {
            m_skip = 1;
        } else {
            ++m_cellDepth; // a span, link or field: its text is the paragraph's
        }
    }

    void cellEnd(std::string_view name) {
        if (m_inParagraph) {
            if (--m_cellDepth == 0) {
                m_inParagraph = false;
                // Every paragraph after the first starts a line, an empty first one too.
                if (m_paragraphCount++ > 0) m_paragraphs += "\r\n";
                m_paragraphs += m_paragraph.take();
                if (m_paragraphs.size() > kLongestText) stop(tooLong());
            }
            return;
        }
        if (name != "table-cell" && name != "covered-table-cell") return;
        m_inCell = false;
        QString style = m_cell.style;
        if (style.isEmpty()) style = m_rowStyle;
        if (style.isEmpty() && m_col < static_cast<int>(m_columnStyles.size())) style = m_columnStyles[m_col];
        const QString text = m_cell.text(m_styles.formatOf(style), fromUtf8(m_paragraphs));
        const int width = m_out->columns();
        if (!text.isEmpty()) {
            // Only the columns the list reads are kept; a filled cell beyond them is noted.
            const int last =
                static_cast<int>(std::min<qint64>(qint64(m_col) + m_cell.repeat, kMaxSheetColumns));
            const int kept = std::min(last, width);
            if (m_cells.size() < kept) m_cells.resize(kept);
            for (int c = m_col; c < kept; ++c)
                m_cells[c] = text;
            if (last > width) m_out->setCell(m_row, width, text);
        }
        m_col = static_cast<int>(std::min<qint64>(qint64(m_col) + m_cell.repeat, kMaxSheetColumns));
    }

    Styles& m_styles;
    SheetBuilder* m_out; // null for styles.xml
    std::optional<DataStyle> m_dataStyle;
    int m_skip = 0; // depth inside an element whose content is passed over
    bool m_inTable = false, m_tableSeen = false;
    std::vector<QString> m_columnStyles; // default cell style of each column, as far as the list reads
    int m_row = 0, m_rowRepeat = 1, m_col = 0;
    QString m_rowStyle;
    QStringList m_cells;
    bool m_inCell = false, m_inParagraph = false;
    int m_cellDepth = 0; // inside a paragraph: 1 the paragraph itself, more in its spans
    CellValue m_cell;
    ParagraphText m_paragraph;
    std::string m_paragraphs;
    int m_paragraphCount = 0;
};

} // namespace

bool readOds(const Archive& archive, SheetBuilder& out, platform::ReadError* error) {
    Styles styles;
    if (archive.contains(QStringLiteral("styles.xml")) &&
        !OdsPart(styles, nullptr).parse(archive, QStringLiteral("styles.xml"), error))
        return false;
    OdsPart content(styles, &out);
    if (!content.parse(archive, QStringLiteral("content.xml"), error)) return false;
    return content.tableSeen() ||
           platform::fail(error, platform::ReadError::reason(QStringLiteral("tiedostossa ei ole taulukkoa")));
}

} // namespace lists::sheet
