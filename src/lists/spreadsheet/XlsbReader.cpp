// The first worksheet of an Excel binary workbook (.xlsb): the package of .xlsx, with its parts
// as runs of binary records instead of XML. A record is its type (one or two bytes of seven bits
// each), its length (one to four bytes of seven bits) and its data. Each part is read as it
// unpacks, and only the records that matter are kept, one at a time.
#include "lists/spreadsheet/BinaryValues.h"
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/SheetReaders.h"

#include <QByteArrayView>

#include <cstring>
#include <vector>

namespace lists::sheet {

namespace {

enum Brt : quint32 {
    kRowHdr = 0,
    kCellBlank = 1,
    kCellRk = 2,
    kCellError = 3,
    kCellBool = 4,
    kCellReal = 5,
    kCellSt = 6,
    kCellIsst = 7,
    kFmlaString = 8,
    kFmlaNum = 9,
    kFmlaBool = 10,
    kFmlaError = 11,
    // Newer files leave the column out of a cell that follows the one before it in its row.
    kShortBlank = 12,
    kShortRk = 13,
    kShortError = 14,
    kShortBool = 15,
    kShortReal = 16,
    kShortSt = 17,
    kShortIsst = 18,
    kSstItem = 19,
    kFmt = 44,
    kXf = 47,
    kCellRString = 62,
    kEndSheetData = 146,
    kWbProp = 153,
    kBundleSh = 156,
    kBeginCellXfs = 617,
    kEndCellXfs = 618,
};

// No record this reader keeps comes near this: a shared string of 32767 characters with all its
// runs is far smaller.
constexpr qsizetype kLongestRecord = qsizetype(4) << 20;

// The records of one part, read in pieces.
class Records {
public:
    Records(Archive::Member& member, QString part)
        : m_member(member)
        , m_part(std::move(part)) {}

    // The next record that `wanted(type)` accepts; the others are passed over. False at the end
    // of the part (with error() empty) or where the part is damaged.
    template <typename Wanted> bool next(quint32& type, QByteArrayView& data, Wanted wanted) {
        for (;;) {
            m_at = m_offset + m_pos;
            if (!fill(1)) return false; // the end, or a read error
            quint32 length = 0;
            if (!varint(2, type) || !varint(4, length)) return fail(QStringLiteral("tietue katkeaa"));
            if (!wanted(type)) {
                if (!skip(length)) return fail(QStringLiteral("tietue katkeaa"));
                continue;
            }
            if (length > kLongestRecord) return fail(QStringLiteral("tietue on liian pitkä"));
            if (!fill(length)) return fail(QStringLiteral("tietue katkeaa"));
            data = QByteArrayView(m_buffer.data() + m_pos, length);
            m_pos += length;
            return true;
        }
    }

    // Where the last record failed, or why reading stopped; `what` is empty at the end of the part.
    const platform::ReadError& error() const { return m_error; }
    // A record that holds less than it must: the part, the record's type and its offset.
    bool failRecord(const QString& what, quint32 type) {
        m_error = {what, m_part, QString::number(type), m_at};
        return false;
    }

private:
    bool fail(const QString& what) {
        m_error = {what, m_part, {}, m_at};
        return false;
    }
    // At least n bytes from m_pos on; false when the part ends before them.
    bool fill(qsizetype n) {
        if (m_end - m_pos >= n) return true;
        const auto kept = static_cast<std::size_t>(m_end - m_pos);
        if (kept > 0) std::memmove(m_buffer.data(), m_buffer.data() + m_pos, kept);
        m_offset += m_pos;
        m_end -= m_pos;
        m_pos = 0;
        if (static_cast<qsizetype>(m_buffer.size()) < n) m_buffer.resize(static_cast<std::size_t>(n));
        while (m_end < n) {
            const qsizetype got =
                m_member.read(m_buffer.data() + m_end, static_cast<qsizetype>(m_buffer.size()) - m_end);
            if (got < 0) {
                m_error = platform::ReadError::reason(m_member.error());
                return false;
            }
            if (got == 0) return false;
            m_end += got;
        }
        return true;
    }
    bool varint(int most, quint32& value) {
        value = 0;
        for (int i = 0; i < most; ++i) {
            if (!fill(1)) return false;
            const quint8 b = static_cast<quint8>(m_buffer[static_cast<std::size_t>(m_pos++)]);
            value |= quint32(b & 0x7F) << (7 * i);
            if (!(b & 0x80)) return true;
        }
        return true;
    }
    bool skip(qint64 length) {
        while (length > 0) {
            if (m_pos == m_end && !fill(1)) return false;
            const qint64 take = std::min<qint64>(length, m_end - m_pos);
            m_pos += take;
            length -= take;
        }
        return true;
    }

    Archive::Member& m_member;
    QString m_part;
    std::vector<char> m_buffer = std::vector<char>(std::size_t(1) << 16);
    qsizetype m_pos = 0, m_end = 0;
    qint64 m_offset = 0; // of the buffer's first byte in the part
    qint64 m_at = 0;     // of the record being read
    platform::ReadError m_error;
};

// Reads the records of a part that `wanted` accepts into `take(type, data)`, which returns false
// to fail (after setting the error through Records::failRecord) and may end the reading early
// by setting `done`.
template <typename Wanted, typename Take>
bool readRecords(const Archive& archive, const QString& part, platform::ReadError* error, Wanted wanted,
                 Take take) {
    QString reason;
    const std::unique_ptr<Archive::Member> member = archive.openMember(part, &reason);
    if (!member) return platform::fail(error, platform::ReadError::reason(reason));
    Records records(*member, part);
    quint32 type = 0;
    QByteArrayView data;
    bool done = false;
    while (!done && records.next(type, data, wanted)) {
        if (!take(records, type, data, done)) return platform::fail(error, records.error());
    }
    return done || records.error().what.isEmpty() || platform::fail(error, records.error());
}

// An XLWideString at `at`: a count of characters and as many of UTF-16; `at` moves past it.
// A count of 0xFFFFFFFF (the nullable form's null) reads as an empty string.
bool wideString(QByteArrayView data, qsizetype& at, QString& out) {
    if (at + 4 > data.size()) return false;
    const quint32 count = u32(data.data() + at);
    at += 4;
    if (count == 0xFFFFFFFFu) {
        out.clear();
        return true;
    }
    if (count > static_cast<quint64>(data.size() - at) / 2) return false;
    out = QString::fromUtf16(reinterpret_cast<const char16_t*>(data.data() + at),
                             static_cast<qsizetype>(count));
    at += 2 * static_cast<qsizetype>(count);
    return true;
}

struct Workbook {
    bool date1904 = false;
    std::vector<QString> sheetRelationships; // of the sheets, in their order
    std::vector<QString> strings;
    std::vector<CellFormat> formats;
};

bool readWorkbook(const Archive& archive, const QString& part, Workbook& book, SheetBuilder& out,
                  platform::ReadError* error) {
    return readRecords(
        archive, part, error, [](quint32 type) { return type == kWbProp || type == kBundleSh; },
        [&](Records& records, quint32 type, QByteArrayView data, bool&) {
            if (type == kWbProp) {
                if (data.size() < 4) return records.failRecord(QStringLiteral("tietue on vajaa"), type);
                book.date1904 = (u32(data.data()) & 1) != 0;
                return true;
            }
            qsizetype at = 8;
            QString id;
            if (!wideString(data, at, id)) return records.failRecord(QStringLiteral("tietue on vajaa"), type);
            book.sheetRelationships.push_back(id);
            return out.keep(id.size()) || records.failRecord(SheetBuilder::fullMessage(), type);
        });
}

bool readStyles(const Archive& archive, const QString& part, Workbook& book, SheetBuilder& out,
                platform::ReadError* error) {
    QHash<int, CellFormat> custom;
    bool inCellXfs = false;
    return readRecords(
        archive, part, error,
        [](quint32 type) {
            return type == kFmt || type == kXf || type == kBeginCellXfs || type == kEndCellXfs;
        },
        [&](Records& records, quint32 type, QByteArrayView data, bool& done) {
            // The formats kept count as the texts do.
            if ((type == kFmt || type == kXf) && !out.keep(0))
                return records.failRecord(SheetBuilder::fullMessage(), type);
            switch (type) {
                case kFmt: {
                    qsizetype at = 2;
                    QString code;
                    if (data.size() < 2 || !wideString(data, at, code))
                        return records.failRecord(QStringLiteral("lukumuodon teksti on vajaa"), type);
                    custom.insert(u16(data.data()), excelFormat(code));
                    return true;
                }
                case kBeginCellXfs:
                    inCellXfs = true;
                    return true;
                case kEndCellXfs:
                    done = true; // the cell formats come after the number formats
                    return true;
                default:
                    if (!inCellXfs) return true;
                    if (data.size() < 4) return records.failRecord(QStringLiteral("tietue on vajaa"), type);
                    const int id = u16(data.data() + 2);
                    const auto it = custom.constFind(id);
                    book.formats.push_back(it != custom.cend() ? *it : excelBuiltinFormat(id));
                    return true;
            }
        });
}

bool readSharedStrings(const Archive& archive, const QString& part, Workbook& book, SheetBuilder& out,
                       platform::ReadError* error) {
    return readRecords(
        archive, part, error, [](quint32 type) { return type == kSstItem; },
        [&](Records& records, quint32 type, QByteArrayView data, bool&) {
            // A flags byte (rich text, phonetic guides), the text; runs and guides follow it.
            qsizetype at = 1;
            QString text;
            if (!wideString(data, at, text))
                return records.failRecord(QStringLiteral("teksti on vajaa"), type);
            book.strings.push_back(withCrLf(text));
            if (out.keep(text.size())) return true;
            records.failRecord(SheetBuilder::fullMessage(), type);
            return false;
        });
}

bool isCell(quint32 type) {
    return type <= kShortIsst || type == kCellRString;
}

enum class CellValue { Text, Blank, Damaged };

// The shown text of a cell record's value (what follows its column and format), in `text`.
// A record cut short is reported through `records`.
CellValue cellValueText(Records& records, quint32 type, QByteArrayView value, quint32 style,
                        const Workbook& book, QString& text) {
    auto need = [&](qsizetype size) {
        return value.size() >= size || records.failRecord(QStringLiteral("solun tietue on vajaa"), type);
    };
    auto number = [&](double v) {
        const CellFormat format = style < book.formats.size() ? book.formats[style] : CellFormat{};
        return format.isDateOrTime() ? serialText(v, format, nullDate(book.date1904)) : numberText(v, format);
    };
    switch (type) {
        case kCellRk:
        case kShortRk:
            if (!need(4)) return CellValue::Damaged;
            text = number(rkValue(u32(value.data())));
            return CellValue::Text;
        case kCellReal:
        case kShortReal:
        case kFmlaNum:
            if (!need(8)) return CellValue::Damaged;
            text = number(f64(value.data()));
            return CellValue::Text;
        case kCellBool:
        case kShortBool:
        case kFmlaBool:
            if (!need(1)) return CellValue::Damaged;
            text = booleanText(value[0] != 0);
            return CellValue::Text;
        case kCellError:
        case kShortError:
        case kFmlaError:
            if (!need(1)) return CellValue::Damaged;
            text = errorText(static_cast<quint8>(value[0]));
            return CellValue::Text;
        case kCellIsst:
        case kShortIsst: {
            if (!need(4)) return CellValue::Damaged;
            // An index beyond the strings read shows nothing rather than some other text.
            const quint32 index = u32(value.data());
            if (index < book.strings.size()) text = book.strings[index];
            return CellValue::Text;
        }
        case kCellSt:
        case kShortSt:
        case kFmlaString:
        case kCellRString: {
            qsizetype at = type == kCellRString ? 1 : 0; // a rich text starts with its flags
            if (!wideString(value, at, text)) {
                records.failRecord(QStringLiteral("solun teksti on vajaa"), type);
                return CellValue::Damaged;
            }
            text = withCrLf(text);
            return CellValue::Text;
        }
        default:
            return CellValue::Blank;
    }
}

bool readSheet(const Archive& archive, const QString& part, const Workbook& book, SheetBuilder& out,
               platform::ReadError* error) {
    qint64 row = -1, col = -1;
    return readRecords(
        archive, part, error, [](quint32 type) { return isCell(type) || type == kEndSheetData; },
        [&](Records& records, quint32 type, QByteArrayView data, bool& done) {
            if (type == kEndSheetData) {
                done = true;
                return true;
            }
            const char* d = data.data();
            if (type == kRowHdr) {
                if (data.size() < 4) return records.failRecord(QStringLiteral("rivin tietue on vajaa"), type);
                row = u32(d);
                col = -1;
                return true;
            }
            // The cell: its column (unless short), its format, then its value.
            const bool isShort = type >= kShortBlank && type <= kShortIsst;
            const qsizetype head = isShort ? 4 : 8;
            if (data.size() < head) return records.failRecord(QStringLiteral("solun tietue on vajaa"), type);
            col = isShort ? col + 1 : qint64(u32(d));
            const quint32 style = u32(d + head - 4) & 0xFFFFFF;
            QString text;
            switch (cellValueText(records, type, data.sliced(head), style, book, text)) {
                case CellValue::Damaged:
                    return false;
                case CellValue::Blank:
                    return true;
                case CellValue::Text:
                    break;
            }
            if (row >= 0 && row < kMaxSheetRows && col >= 0 && col < kMaxSheetColumns)
                out.setCell(static_cast<int>(row), static_cast<int>(col), text);
            return !out.full() || records.failRecord(SheetBuilder::fullMessage(), type);
        });
}

} // namespace

bool readXlsb(const Archive& archive, const QString& workbookPart, SheetBuilder& out,
              platform::ReadError* error) {
    Workbook book;
    if (!readWorkbook(archive, workbookPart, book, out, error)) return false;
    Relationships rels;
    if (!readRelationships(archive, workbookPart, rels, error)) return false;
    // The first sheet that is a worksheet: chart and macro sheets hold no cells.
    QString sheetPart;
    for (const QString& id : book.sheetRelationships) {
        const auto it = rels.constFind(id);
        if (it != rels.cend() && it->type == QLatin1String("worksheet")) {
            sheetPart = it->target;
            break;
        }
    }
    if (sheetPart.isEmpty())
        return platform::fail(error,
                              platform::ReadError::reason(QStringLiteral("työkirjassa ") + workbookPart +
                                                          QStringLiteral(" ei ole laskentataulukkoa")));
    for (const Relationship& r : std::as_const(rels)) {
        if (r.type == QLatin1String("sharedStrings") &&
            !readSharedStrings(archive, r.target, book, out, error))
            return false;
        if (r.type == QLatin1String("styles") && !readStyles(archive, r.target, book, out, error))
            return false;
    }
    return readSheet(archive, sheetPart, book, out, error);
}

} // namespace lists::sheet
