// The first table of an OpenDocument spreadsheet (.ods). Rows and cells that repeat are stored
// once with a count, merged-away cells keep their place as covered cells, and how a number is
// shown comes from the data style of the cell's style.
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/SheetReaders.h"

#include <QHash>
#include <QXmlStreamReader>

#include <cmath>
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

// An attribute by its local name: every attribute of the format has a namespace prefix.
QStringView attr(const QXmlStreamAttributes& a, QLatin1StringView name) {
    for (const QXmlStreamAttribute& at : a)
        if (at.name() == name) return at.value();
    return {};
}

bool hasAttr(const QXmlStreamAttributes& a, QLatin1StringView name) {
    for (const QXmlStreamAttribute& at : a)
        if (at.name() == name) return true;
    return false;
}

int attributeInt(const QXmlStreamAttributes& a, QLatin1StringView name, int fallback) {
    bool ok = false;
    const int v = attr(a, name).toInt(&ok);
    return ok ? v : fallback;
}

// Reads one number:*-style element whole into a format.
CellFormat readDataStyle(QXmlStreamReader& xml) {
    const QString kind = xml.name().toString();
    CellFormat f;
    if (kind == "date-style"_L1) f.kind = CellFormat::Date;
    const bool elapsed =
        kind == "time-style"_L1 && attr(xml.attributes(), "truncate-on-overflow"_L1) == "false"_L1;
    if (kind == "time-style"_L1) f.kind = elapsed ? CellFormat::Elapsed : CellFormat::Time;
    bool hasDecimals = false;
    bool general = false; // scientific and fractions show the number as it is
    while (xml.readNext() != QXmlStreamReader::Invalid) {
        if (xml.isEndElement() && xml.name() == kind) break;
        if (!xml.isStartElement()) continue;
        const QStringView name = xml.name();
        const QXmlStreamAttributes a = xml.attributes();
        if (name == "number"_L1 && hasAttr(a, "decimal-places"_L1)) {
            const int places = std::clamp(attributeInt(a, "decimal-places"_L1, 0), 0, 30);
            f.maxDecimals = static_cast<std::uint8_t>(places);
            f.minDecimals = static_cast<std::uint8_t>(
                std::clamp(attributeInt(a, "min-decimal-places"_L1, places), 0, places));
            hasDecimals = true;
        } else if (name == "scientific-number"_L1 || name == "fraction"_L1) {
            general = true;
        } else if (name == "hours"_L1 || name == "minutes"_L1 || name == "seconds"_L1) {
            if (f.kind == CellFormat::Date) f.kind = CellFormat::DateTime;
            if (name == "seconds"_L1) f.seconds = true;
            if (f.kind == CellFormat::Elapsed && !f.elapsedUnit)
                f.elapsedUnit = static_cast<char>(name[0].unicode());
        }
    }
    if (kind == "number-style"_L1 || kind == "currency-style"_L1)
        f.kind = hasDecimals && !general ? CellFormat::Fixed : CellFormat::General;
    else if (kind == "percentage-style"_L1)
        f.kind = hasDecimals && !general ? CellFormat::Percent : CellFormat::General;
    if (f.kind == CellFormat::Elapsed && !f.elapsedUnit) f.elapsedUnit = 'h';
    return f;
}

bool isDataStyle(QStringView name) {
    return name == "number-style"_L1 || name == "currency-style"_L1 || name == "percentage-style"_L1 ||
           name == "date-style"_L1 || name == "time-style"_L1;
}

void readStyleElement(QXmlStreamReader& xml, Styles& styles) {
    const QStringView name = xml.name();
    if (isDataStyle(name)) {
        const QString styleName = attr(xml.attributes(), "name"_L1).toString();
        styles.dataStyles.insert(styleName, readDataStyle(xml));
    } else if (name == "style"_L1) {
        const QXmlStreamAttributes a = xml.attributes();
        if (attr(a, "family"_L1) == "table-cell"_L1)
            styles.cellStyles.insert(
                attr(a, "name"_L1).toString(),
                {attr(a, "data-style-name"_L1).toString(), attr(a, "parent-style-name"_L1).toString()});
    }
}

// The styles of styles.xml: named cell styles and the data styles they use.
bool readStylesPart(const Archive& archive, Styles& styles, QString* error) {
    if (!archive.contains(QStringLiteral("styles.xml"))) return true;
    QByteArray bytes;
    if (!readPart(archive, QStringLiteral("styles.xml"), bytes, error)) return false;
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) readStyleElement(xml, styles);
    }
    if (xml.hasError()) {
        if (error) *error = xmlError(QStringLiteral("styles.xml"), xml);
        return false;
    }
    return true;
}

// ODF white space: a run of spaces, tabs and line ends in the XML counts as one space, and none
// at the start or end of a paragraph; <text:s/>, <text:tab/> and <text:line-break/> stand for
// the real ones.
class ParagraphText {
public:
    void xmlText(QStringView text) {
        for (const QChar c : text) {
            if (c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\n') ||
                c == QLatin1Char('\r')) {
                m_pendingSpace = true;
            } else {
                flush();
                m_text += c;
            }
        }
    }
    void literal(const QString& text) {
        flush();
        m_text += text;
        m_atStart = false;
    }
    QString take() { return std::move(m_text); }

private:
    void flush() {
        if (m_pendingSpace && !m_atStart) m_text += QLatin1Char(' ');
        m_pendingSpace = false;
        m_atStart = false;
    }
    QString m_text;
    bool m_pendingSpace = false;
    bool m_atStart = true;
};

// The paragraphs of a cell, read up to the cell's end, joined by CR LF. Notes and drawings in
// the cell are not its text.
QString cellParagraphs(QXmlStreamReader& xml, const QString& cellElement) {
    QStringList paragraphs;
    ParagraphText* current = nullptr;
    ParagraphText paragraph;
    int depth = 0; // inside a paragraph
    while (xml.readNext() != QXmlStreamReader::Invalid) {
        if (xml.isEndElement()) {
            if (depth == 0 && xml.name() == cellElement) break;
            if (depth > 0 && --depth == 0) {
                paragraphs.append(paragraph.take());
                paragraph = ParagraphText();
                current = nullptr;
            }
            continue;
        }
        if (xml.isCharacters()) {
            if (current) current->xmlText(xml.text());
            continue;
        }
        if (!xml.isStartElement()) continue;
        const QStringView name = xml.name();
        if (depth == 0) {
            if (name == "p"_L1 || name == "h"_L1) {
                depth = 1;
                current = &paragraph;
            } else {
                xml.skipCurrentElement(); // office:annotation, draw:frame, ...
            }
            continue;
        }
        if (name == "s"_L1) {
            const int count = std::clamp(attributeInt(xml.attributes(), "c"_L1, 1), 1, 65535);
            current->literal(QString(count, QLatin1Char(' ')));
            xml.skipCurrentElement();
        } else if (name == "tab"_L1) {
            current->literal(QStringLiteral("\t"));
            xml.skipCurrentElement();
        } else if (name == "line-break"_L1) {
            current->literal(QStringLiteral("\r\n"));
            xml.skipCurrentElement();
        } else if (name == "note"_L1 || name == "annotation"_L1 || name == "ruby-text"_L1 ||
                   name == "frame"_L1) {
            xml.skipCurrentElement();
        } else {
            ++depth; // a span, link or field: its text is the paragraph's
        }
    }
    return paragraphs.join(QStringLiteral("\r\n"));
}

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

QString valueText(const QXmlStreamAttributes& a, const CellFormat* format, const QString& paragraphs) {
    // calcext:value-type tells an error result apart from a number; office:value-type is the rest.
    QStringView type;
    for (const QXmlStreamAttribute& at : a) {
        if (at.name() != "value-type"_L1) continue;
        if (at.value() == "error"_L1) return paragraphs;
        if (at.prefix() == "office"_L1 || type.isEmpty()) type = at.value();
    }
    if (type.isEmpty() || type == "string"_L1) {
        if (hasAttr(a, "string-value"_L1)) return withCrLf(attr(a, "string-value"_L1).toString());
        return paragraphs;
    }
    if (type == "boolean"_L1) {
        const QStringView v = attr(a, "boolean-value"_L1);
        return booleanText(v == "true"_L1 || v == "1"_L1);
    }
    if (type == "date"_L1) {
        const QStringView v = attr(a, "date-value"_L1);
        const QDate date = QDate::fromString(v.left(10).toString(), Qt::ISODate);
        if (!date.isValid()) return paragraphs;
        double seconds = 0;
        if (v.size() > 11 && v[10] == QLatin1Char('T')) {
            const QStringView t = v.mid(11);
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
    if (type == "time"_L1) {
        double seconds = 0;
        if (!durationSeconds(attr(a, "time-value"_L1), seconds)) return paragraphs;
        CellFormat shown = format && format->isDateOrTime() ? *format : CellFormat{};
        if (!shown.isDateOrTime()) {
            // Without a style: the time of day, or the whole duration when it is a day or more.
            shown.kind = std::fabs(seconds) >= 86400 ? CellFormat::Elapsed : CellFormat::Time;
            shown.elapsedUnit = 'h';
            shown.seconds = std::llround(seconds) % 60 != 0;
        }
        return serialText(seconds / 86400, shown, nullDate(false));
    }
    // float, percentage, currency
    bool ok = false;
    const double number = attr(a, "value"_L1).toDouble(&ok);
    if (!ok) return paragraphs;
    if (format && format->isDateOrTime()) return serialText(number, *format, nullDate(false));
    return numberText(number, format ? *format : CellFormat{});
}

} // namespace

bool readOds(const Archive& archive, SheetBuilder& out, QString* error) {
    Styles styles;
    if (!readStylesPart(archive, styles, error)) return false;
    const QString part = QStringLiteral("content.xml");
    QByteArray bytes;
    if (!readPart(archive, part, bytes, error)) return false;
    QXmlStreamReader xml(bytes);

    bool inTable = false, tableSeen = false;
    int row = 0;
    std::vector<QString> columnStyles; // default cell style of each column, as far as the list reads
    const int width = out.columns();
    QStringList cells;
    int rowRepeat = 1;
    QString rowStyle;
    int col = 0;
    while (!xml.atEnd() && !tableSeen) {
        xml.readNext();
        if (xml.isEndElement()) {
            const QStringView name = xml.name();
            if (inTable && name == "table"_L1) {
                tableSeen = true;
            } else if (inTable && name == "table-row"_L1) {
                out.addRows(row, rowRepeat, cells);
                row = static_cast<int>(std::min<qint64>(qint64(row) + rowRepeat, kMaxSheetRows));
            }
            continue;
        }
        if (!xml.isStartElement()) continue;
        const QStringView name = xml.name();
        if (!inTable) {
            if (name == "table"_L1)
                inTable = true;
            else
                readStyleElement(xml, styles);
            continue;
        }
        if (name == "table-column"_L1) {
            const QXmlStreamAttributes a = xml.attributes();
            const int repeat =
                std::clamp(attributeInt(a, "number-columns-repeated"_L1, 1), 1, kMaxSheetColumns);
            const QString style = attr(a, "default-cell-style-name"_L1).toString();
            for (int i = 0; i < repeat && static_cast<int>(columnStyles.size()) < width; ++i)
                columnStyles.push_back(style);
        } else if (name == "table-row"_L1) {
            const QXmlStreamAttributes a = xml.attributes();
            rowRepeat = std::clamp(attributeInt(a, "number-rows-repeated"_L1, 1), 1, kMaxSheetRows);
            rowStyle = attr(a, "default-cell-style-name"_L1).toString();
            cells.clear();
            col = 0;
        } else if (name == "table-cell"_L1 || name == "covered-table-cell"_L1) {
            const QXmlStreamAttributes a = xml.attributes();
            const int repeat =
                std::clamp(attributeInt(a, "number-columns-repeated"_L1, 1), 1, kMaxSheetColumns);
            QString style = attr(a, "style-name"_L1).toString();
            if (style.isEmpty()) style = rowStyle;
            if (style.isEmpty() && col < static_cast<int>(columnStyles.size())) style = columnStyles[col];
            const QString element = xml.name().toString();
            const QString paragraphs = cellParagraphs(xml, element);
            const QString text = valueText(a, styles.formatOf(style), paragraphs);
            if (!text.isEmpty()) {
                // Only the columns the list reads are kept; a filled cell beyond them is noted.
                const int last = static_cast<int>(std::min<qint64>(qint64(col) + repeat, kMaxSheetColumns));
                const int kept = std::min(last, width);
                if (cells.size() < kept) cells.resize(kept);
                for (int c = col; c < kept; ++c)
                    cells[c] = text;
                if (last > width) out.setCell(row, width, text);
            }
            col = static_cast<int>(std::min<qint64>(qint64(col) + repeat, kMaxSheetColumns));
        }
    }
    if (xml.hasError()) {
        if (error) *error = xmlError(part, xml);
        return false;
    }
    if (!tableSeen) {
        if (error) *error = QStringLiteral("tiedostossa ei ole taulukkoa");
        return false;
    }
    return true;
}

} // namespace lists::sheet
