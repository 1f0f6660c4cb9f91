// The first worksheet of an Excel binary workbook (.xls): BIFF8 and BIFF5 inside an OLE compound
// file (the "Workbook" or "Book" stream), BIFF2 to BIFF4 as a plain record stream. A record is a
// 16-bit id, a 16-bit length and its data; a record longer than 8224 bytes goes on in CONTINUE
// records. Formula cells keep the result that the writing program stored with them. A stream
// encrypted with the default password (FILEPASS) is decrypted before it is read.
#include "lists/spreadsheet/BinaryValues.h"
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/CompoundFile.h"
#include "lists/spreadsheet/Encryption.h"
#include "lists/spreadsheet/SheetReaders.h"
#include "platform/CodePage.h"
#include "platform/Cp1252.h"

#include <QByteArrayView>
#include <QHash>

#include <cstring>
#include <functional>
#include <optional>
#include <vector>

namespace lists::sheet {

namespace {

enum Record : quint16 {
    kBof2 = 0x0009,
    kBof3 = 0x0209,
    kBof4 = 0x0409,
    kBof58 = 0x0809,
    kEof = 0x000A,
    kContinue = 0x003C,
    kFilePass = 0x002F,
    kCodePage = 0x0042,
    kFont = 0x0031,
    kFont3 = 0x0231,
    kDateMode = 0x0022,
    kFormat23 = 0x001E,
    kFormat = 0x041E,
    kXf2 = 0x0043,
    kXf3 = 0x0243,
    kXf4 = 0x0443,
    kXf = 0x00E0,
    kSst = 0x00FC,
    kBoundSheet = 0x0085,
    kInteger2 = 0x0002,
    kNumber2 = 0x0003,
    kLabel2 = 0x0004,
    kBoolErr2 = 0x0005,
    kFormula = 0x0006,
    kString2 = 0x0007,
    kNumber = 0x0203,
    kLabel = 0x0204,
    kBoolErr = 0x0205,
    kFormula3 = 0x0206,
    kString = 0x0207,
    kFormula4 = 0x0406,
    kRk = 0x027E,
    kMulRk = 0x00BD,
    kRString = 0x00D6,
    kLabelSst = 0x00FD,
    kShrFmla = 0x04BC,
    kArray = 0x0221,
    kTable = 0x0236,
};

enum class Biff { V2, V3, V4, V5, V8 };

// The built-in formats of BIFF2 to BIFF4 files, which number them in their own order.
CellFormat oldBuiltinFormat(int index) {
    static const char* const codes[] = {
        "General",  "0",        "0.00",       "#,##0",         "#,##0.00", "#,##0",   "#,##0",
        "#,##0.00", "#,##0.00", "0%",         "0.00%",         "0.00E+00", "m/d/yy",  "d-mmm-yy",
        "d-mmm",    "mmm-yy",   "h:mm AM/PM", "h:mm:ss AM/PM", "h:mm",     "h:mm:ss", "m/d/yy h:mm"};
    if (index < 0 || index >= static_cast<int>(std::size(codes))) return {};
    return excelFormat(QString::fromLatin1(codes[index]));
}

// The data of a record and of the CONTINUE records after it, read across their borders. Within
// the characters of a string, every continuation starts with a new flags byte.
class Segments {
public:
    void add(QByteArrayView data) { m_parts.push_back(data); }
    bool atEnd() {
        skipEmpty();
        return m_part >= m_parts.size();
    }
    bool bytes(qsizetype n, char* out) {
        while (n > 0) {
            skipEmpty();
            if (m_part >= m_parts.size()) return false;
            const QByteArrayView p = m_parts[m_part];
            const qsizetype take = std::min(n, p.size() - m_pos);
            if (out) {
                std::memcpy(out, p.data() + m_pos, static_cast<std::size_t>(take));
                out += take;
            }
            m_pos += take;
            n -= take;
        }
        return true;
    }
    std::optional<quint32> uint(int size) {
        char buf[4] = {};
        if (!bytes(size, buf)) return std::nullopt;
        return size == 1 ? static_cast<quint8>(buf[0]) : size == 2 ? u16(buf) : u32(buf);
    }
    // `count` characters of one or two bytes each; `decode` turns single bytes into text.
    bool characters(qsizetype count, bool wide, const std::function<QString(QByteArrayView)>& decode,
                    QString& out) {
        while (count > 0) {
            if (m_part >= m_parts.size()) return false;
            if (m_pos >= partSize()) {
                ++m_part;
                m_pos = 0;
                if (m_part >= m_parts.size() || partSize() < 1) return false;
                wide = (m_parts[m_part][0] & 1) != 0;
                m_pos = 1;
                continue;
            }
            const QByteArrayView p = m_parts[m_part];
            const qsizetype available = (p.size() - m_pos) / (wide ? 2 : 1);
            if (available == 0) { // half a character: the rest is in the next part
                m_pos = p.size();
                continue;
            }
            const qsizetype take = std::min(count, available);
            const char* at = p.data() + m_pos;
            out += wide ? utf16(at, take) : decode(QByteArrayView(at, take));
            m_pos += take * (wide ? 2 : 1);
            count -= take;
        }
        return true;
    }

private:
    static QString utf16(const char* at, qsizetype count) {
        QString s(count, Qt::Uninitialized);
        for (qsizetype i = 0; i < count; ++i)
            s[i] = QChar(u16(at + 2 * i));
        return s;
    }
    qsizetype partSize() const { return m_part < m_parts.size() ? m_parts[m_part].size() : 0; }
    void skipEmpty() {
        while (m_part < m_parts.size() && m_pos >= m_parts[m_part].size()) {
            ++m_part;
            m_pos = 0;
        }
    }
    std::vector<QByteArrayView> m_parts;
    std::size_t m_part = 0;
    qsizetype m_pos = 0;
};

class BiffReader {
public:
    // `decrypted`: the stream's records after FILEPASS have been decrypted.
    BiffReader(QByteArrayView stream, SheetBuilder& out, bool decrypted)
        : m_stream(stream)
        , m_out(out)
        , m_decrypted(decrypted) {}

    bool read(platform::ReadError* error);

private:
    struct Rec {
        quint16 id = 0;
        qsizetype offset = 0; // of the record's header in the stream
        QByteArrayView data;
    };
    bool next(qsizetype& pos, Rec& rec);
    bool fail(const QString& what, const Rec& rec);
    bool fail(const QString& what);
    bool need(const Rec& rec, qsizetype size);
    // Reads a substream from its BOF on: the workbook's globals, or a sheet into the builder.
    bool readSubstream(qsizetype pos, bool sheet);
    // A record of the workbook's globals, and a record of the sheet's cells: each kind of record
    // has a function of its own, which checks the record's length before it reads.
    bool globalRecord(const Rec& rec, qsizetype pos);
    bool codePageRecord(const Rec& rec);
    bool fontRecord(const Rec& rec);
    bool dateModeRecord(const Rec& rec);
    bool formatRecord(const Rec& rec);
    bool xfRecord(const Rec& rec);
    bool boundSheetRecord(const Rec& rec);
    bool cellRecord(const Rec& rec, qsizetype pos);
    bool numberRecord(const Rec& rec);
    bool mulRkRecord(const Rec& rec);
    bool labelRecord(const Rec& rec, qsizetype pos);
    bool labelSstRecord(const Rec& rec);
    bool boolErrRecord(const Rec& rec);
    bool formulaRecord(const Rec& rec);
    bool stringRecord(const Rec& rec, qsizetype pos);

    // Where a cell is and how it is shown; `font` is the index of its FONT record.
    struct Cell {
        int row = 0, col = 0;
        CellFormat format;
        int font = 0;
    };
    bool cellOf(const Rec& rec, qsizetype size, Cell& cell);

    // Bytes of an 8-bit string in the code page that holds for text in the given font.
    QString byteText(QByteArrayView bytes, int font) const;
    int codePageOfFont(int font) const;
    // A string whose length field is `lengthSize` bytes, at `at` in the record.
    QString recordString(const Rec& rec, qsizetype at, int lengthSize, bool* ok, int font = 0);
    QString continuedString(const Rec& rec, qsizetype pos, qsizetype at, int lengthSize, bool* ok,
                            int font = 0);
    bool unicodeString(Segments& s, int lengthSize, QString& out);
    void readSst(const Rec& rec, qsizetype pos);

    CellFormat formatOfXf(int xf) const;
    int fontOfXf(int xf) const;
    CellFormat formatAt(int index) const;
    void putNumber(int row, int col, double value, const CellFormat& format);

    QByteArrayView m_stream;
    SheetBuilder& m_out;
    bool m_decrypted = false;
    Biff m_biff = Biff::V8;
    bool m_date1904 = false;
    int m_codePage = 0;               // of the CODEPAGE record; 0 when there is none
    std::vector<int> m_fontCharsets;  // character set of each FONT record, -1 where it has none
    QHash<int, CellFormat> m_formats; // by index (by order before BIFF5)
    int m_formatCount = 0;
    std::vector<int> m_xfFormats; // format index of each XF record
    std::vector<int> m_xfFonts;   // font index of each XF record
    std::vector<QString> m_sst;
    std::optional<quint32> m_firstSheet;                         // stream offset of the first worksheet's BOF
    int m_pendingRow = -1, m_pendingCol = -1, m_pendingFont = 0; // a formula whose text result follows
    platform::ReadError m_error;
};

bool BiffReader::fail(const QString& what, const Rec& rec) {
    m_error = {what, {}, QStringLiteral("0x%1").arg(rec.id, 4, 16, QLatin1Char('0')), rec.offset};
    return false;
}

bool BiffReader::fail(const QString& what) {
    m_error = platform::ReadError::reason(what);
    return false;
}

bool BiffReader::need(const Rec& rec, qsizetype size) {
    return rec.data.size() >= size || fail(QStringLiteral("tietue on vajaa"), rec);
}

bool BiffReader::next(qsizetype& pos, Rec& rec) {
    if (pos + 4 > m_stream.size()) {
        m_error = {QStringLiteral("tietovirta päättyy kesken"), {}, {}, pos};
        return false;
    }
    rec.id = u16(m_stream.data() + pos);
    const quint16 length = u16(m_stream.data() + pos + 2);
    rec.offset = pos;
    if (pos + 4 + length > m_stream.size()) {
        rec.data = {};
        return fail(QStringLiteral("tietue katkeaa"), rec);
    }
    rec.data = m_stream.sliced(pos + 4, length);
    pos += 4 + length;
    return true;
}

// The code page of 8-bit text: the workbook's CODEPAGE record, or where it names none (it is
// missing, or says UTF-16 in a file whose strings are 8-bit) the character set of the text's
// font, as the program that wrote the file had it.
int BiffReader::codePageOfFont(int font) const {
    switch (m_codePage) {
        case 0:
        case 1200:
            break;
        case 367:   // US-ASCII
        case 32769: // Windows-1252 in BIFF2 and BIFF3
            return 1252;
        case 32768: // Mac Roman
            return 10000;
        default:
            return m_codePage;
    }
    // The FONT record with index 4 is left out of the file: the ones after it are one lower.
    const int at = font > 4 ? font - 1 : font;
    const int charset = at >= 0 && at < static_cast<int>(m_fontCharsets.size())
                            ? m_fontCharsets[static_cast<std::size_t>(at)]
                            : (m_fontCharsets.empty() ? -1 : m_fontCharsets.front());
    const int codePage = charset >= 0 ? platform::codePageOfCharset(charset) : 0;
    return codePage != 0 ? codePage : 1252;
}

QString BiffReader::byteText(QByteArrayView bytes, int font) const {
    // BIFF8 stores a string whose characters are all below 256 with one byte a character: the
    // low bytes of UTF-16, whatever the code page.
    if (m_biff == Biff::V8) return QString::fromLatin1(bytes.data(), bytes.size());
    const int codePage = codePageOfFont(font);
    if (codePage == 1252) return platform::fromCp1252(bytes.data(), bytes.size());
    return platform::decodeCodePage(bytes.toByteArray(), codePage);
}

bool BiffReader::unicodeString(Segments& s, int lengthSize, QString& out) {
    const auto count = s.uint(lengthSize);
    const auto flags = s.uint(1);
    if (!count || !flags) return false;
    quint32 runs = 0, extra = 0;
    if (*flags & 0x08) {
        const auto r = s.uint(2);
        if (!r) return false;
        runs = *r;
    }
    if (*flags & 0x04) {
        const auto e = s.uint(4);
        if (!e) return false;
        extra = *e;
    }
    QString text;
    if (!s.characters(
            *count, (*flags & 1) != 0, [this](QByteArrayView b) { return byteText(b, 0); }, text))
        return false;
    if (!s.bytes(qsizetype(runs) * 4, nullptr) || !s.bytes(extra, nullptr)) return false;
    out = withCrLf(text);
    return true;
}

QString BiffReader::recordString(const Rec& rec, qsizetype at, int lengthSize, bool* ok, int font) {
    *ok = false;
    if (m_biff == Biff::V8) {
        Segments s;
        if (at <= rec.data.size()) s.add(rec.data.sliced(at));
        QString out;
        *ok = unicodeString(s, lengthSize, out);
        return out;
    }
    if (at + lengthSize > rec.data.size()) return {};
    const qsizetype n = lengthSize == 1 ? static_cast<quint8>(rec.data[at]) : u16(rec.data.data() + at);
    if (at + lengthSize + n > rec.data.size()) return {};
    *ok = true;
    return withCrLf(byteText(rec.data.sliced(at + lengthSize, n), font));
}

// A BIFF8 string that may go on in CONTINUE records after the record at `pos` (the end of it).
QString BiffReader::continuedString(const Rec& rec, qsizetype pos, qsizetype at, int lengthSize, bool* ok,
                                    int font) {
    if (m_biff != Biff::V8) return recordString(rec, at, lengthSize, ok, font);
    Segments s;
    if (at <= rec.data.size()) s.add(rec.data.sliced(at));
    Rec more;
    qsizetype p = pos;
    while (p + 4 <= m_stream.size() && u16(m_stream.data() + p) == kContinue && next(p, more))
        s.add(more.data);
    QString out;
    *ok = unicodeString(s, lengthSize, out);
    return out;
}

void BiffReader::readSst(const Rec& rec, qsizetype pos) {
    Segments s;
    if (rec.data.size() < 8) return;
    const quint32 unique = u32(rec.data.data() + 4);
    s.add(rec.data.sliced(8));
    Rec more;
    qsizetype p = pos;
    while (p + 4 <= m_stream.size() && u16(m_stream.data() + p) == kContinue && next(p, more))
        s.add(more.data);
    // The count is only an upper bound: what the data holds decides.
    m_sst.reserve(std::min<quint32>({unique, static_cast<quint32>(m_stream.size() / 3), 1u << 20}));
    for (quint32 i = 0; i < unique && !s.atEnd(); ++i) {
        QString text;
        if (!unicodeString(s, 2, text) || !m_out.keep(text.size())) break;
        m_sst.push_back(std::move(text));
    }
}

CellFormat BiffReader::formatAt(int index) const {
    const auto it = m_formats.constFind(index);
    if (it != m_formats.cend()) return *it;
    return m_biff >= Biff::V5 ? excelBuiltinFormat(index) : oldBuiltinFormat(index);
}

CellFormat BiffReader::formatOfXf(int xf) const {
    if (xf < 0 || xf >= static_cast<int>(m_xfFormats.size())) return {};
    return formatAt(m_xfFormats[static_cast<std::size_t>(xf)]);
}

int BiffReader::fontOfXf(int xf) const {
    if (xf < 0 || xf >= static_cast<int>(m_xfFonts.size())) return 0;
    return m_xfFonts[static_cast<std::size_t>(xf)];
}

void BiffReader::putNumber(int row, int col, double value, const CellFormat& format) {
    m_out.setCell(row, col,
                  format.isDateOrTime() ? serialText(value, format, nullDate(m_date1904))
                                        : numberText(value, format));
}

bool BiffReader::globalRecord(const Rec& rec, qsizetype pos) {
    // The fonts and formats kept count as the texts do.
    const bool kept = rec.id == kFont || rec.id == kFont3 || rec.id == kFormat23 || rec.id == kFormat ||
                      rec.id == kXf2 || rec.id == kXf3 || rec.id == kXf4 || rec.id == kXf;
    if (kept && !m_out.keep(0)) return fail(SheetBuilder::fullMessage());
    switch (rec.id) {
        case kFilePass:
            return m_decrypted || fail(decryptionFailure(Decryption::OtherPassword));
        case kCodePage:
            return codePageRecord(rec);
        case kFont:
        case kFont3:
            return fontRecord(rec);
        case kDateMode:
            return dateModeRecord(rec);
        case kFormat23:
        case kFormat:
            return formatRecord(rec);
        case kXf2:
        case kXf3:
        case kXf4:
        case kXf:
            return xfRecord(rec);
        case kSst:
            readSst(rec, pos);
            return !m_out.full() || fail(SheetBuilder::fullMessage());
        case kBoundSheet:
            return boundSheetRecord(rec);
        default:
            return true;
    }
}

bool BiffReader::codePageRecord(const Rec& rec) {
    if (!need(rec, 2)) return false;
    m_codePage = u16(rec.data.data());
    return true;
}

bool BiffReader::fontRecord(const Rec& rec) {
    // Only the BIFF5 and BIFF8 layout has a character set (at byte 12); any length will do.
    m_fontCharsets.push_back(rec.id == kFont && m_biff >= Biff::V5 && rec.data.size() > 12
                                 ? static_cast<quint8>(rec.data[12])
                                 : -1);
    return true;
}

bool BiffReader::dateModeRecord(const Rec& rec) {
    if (!need(rec, 2)) return false;
    m_date1904 = u16(rec.data.data()) != 0;
    return true;
}

// A number format: numbered by its order before BIFF5 (BIFF4's has two unused bytes first),
// by its own index field from BIFF5 on.
bool BiffReader::formatRecord(const Rec& rec) {
    bool ok = false;
    QString code;
    int index = m_formatCount;
    if (rec.id == kFormat23) {
        code = recordString(rec, 0, 1, &ok);
    } else if (m_biff == Biff::V4) {
        code = recordString(rec, 2, 1, &ok);
    } else {
        if (!need(rec, 2)) return false;
        index = u16(rec.data.data());
        code = recordString(rec, 2, m_biff == Biff::V8 ? 2 : 1, &ok);
    }
    if (!ok) return fail(QStringLiteral("lukumuodon teksti on vajaa"), rec);
    m_formats.insert(index, excelFormat(code));
    ++m_formatCount;
    return true;
}

// A cell style's font and number format: bytes in BIFF2 to BIFF4, 16-bit indices from BIFF5 on.
bool BiffReader::xfRecord(const Rec& rec) {
    const char* d = rec.data.data();
    switch (rec.id) {
        case kXf2:
            if (!need(rec, 3)) return false;
            m_xfFonts.push_back(static_cast<quint8>(d[0]));
            m_xfFormats.push_back(static_cast<quint8>(d[2]) & 0x3F);
            return true;
        case kXf3:
        case kXf4:
            if (!need(rec, 2)) return false;
            m_xfFonts.push_back(static_cast<quint8>(d[0]));
            m_xfFormats.push_back(static_cast<quint8>(d[1]));
            return true;
        default:
            if (!need(rec, 4)) return false;
            m_xfFonts.push_back(u16(d));
            m_xfFormats.push_back(u16(d + 2));
            return true;
    }
}

bool BiffReader::boundSheetRecord(const Rec& rec) {
    if (!need(rec, 6)) return false;
    const char* d = rec.data.data();
    // The first sheet that is a worksheet (type 0); charts and macro sheets hold no cells.
    if (!m_firstSheet && (static_cast<quint8>(d[5]) & 0x0F) == 0) m_firstSheet = u32(d);
    return true;
}

// Records of BIFF2 cells carry three attribute bytes where later ones have an XF index. Files
// from some programs mix the two kinds, so the record decides, not the file's version (only the
// formula record kept its id from BIFF2 to BIFF5 with the other layout).
bool BiffReader::cellOf(const Rec& rec, qsizetype size, Cell& cell) {
    if (!need(rec, size)) return false;
    const char* d = rec.data.data();
    cell.row = u16(d);
    cell.col = u16(d + 2);
    const bool attributes = rec.id == kNumber2 || rec.id == kInteger2 || rec.id == kLabel2 ||
                            rec.id == kBoolErr2 || (rec.id == kFormula && m_biff == Biff::V2);
    int xf = -1;
    if (!attributes) {
        xf = u16(d + 4);
    } else if (!m_xfFormats.empty()) {
        xf = static_cast<quint8>(d[4]) & 0x3F;
    } else {
        // No XF records: the second byte holds the format index and the font index.
        cell.format = formatAt(static_cast<quint8>(d[5]) & 0x3F);
        cell.font = static_cast<quint8>(d[5]) >> 6;
        return true;
    }
    cell.format = formatOfXf(xf);
    cell.font = fontOfXf(xf);
    return true;
}

bool BiffReader::cellRecord(const Rec& rec, qsizetype pos) {
    // A formula's text result is the STRING record right after it; any other cell in between
    // means there is none.
    if (rec.id != kString && rec.id != kString2 && rec.id != kShrFmla && rec.id != kArray &&
        rec.id != kTable && rec.id != kContinue)
        m_pendingRow = -1;
    switch (rec.id) {
        case kNumber2:
        case kInteger2:
        case kNumber:
        case kRk:
            return numberRecord(rec);
        case kMulRk:
            return mulRkRecord(rec);
        case kLabel2:
        case kLabel:
        case kRString:
            return labelRecord(rec, pos);
        case kLabelSst:
            return labelSstRecord(rec);
        case kBoolErr2:
        case kBoolErr:
            return boolErrRecord(rec);
        case kFormula:
        case kFormula3:
        case kFormula4:
            return formulaRecord(rec);
        case kString2:
        case kString:
            return stringRecord(rec, pos);
        default:
            return true;
    }
}

// A number cell: a double (NUMBER), a 16-bit integer (BIFF2's INTEGER) or an RK value.
bool BiffReader::numberRecord(const Rec& rec) {
    const char* d = rec.data.data();
    Cell cell;
    switch (rec.id) {
        case kNumber2:
            if (!cellOf(rec, 15, cell)) return false;
            putNumber(cell.row, cell.col, f64(d + 7), cell.format);
            return true;
        case kInteger2:
            if (!cellOf(rec, 9, cell)) return false;
            putNumber(cell.row, cell.col, u16(d + 7), cell.format);
            return true;
        case kNumber:
            if (!cellOf(rec, 14, cell)) return false;
            putNumber(cell.row, cell.col, f64(d + 6), cell.format);
            return true;
        default: // kRk
            if (!cellOf(rec, 10, cell)) return false;
            putNumber(cell.row, cell.col, rkValue(u32(d + 6)), cell.format);
            return true;
    }
}

bool BiffReader::mulRkRecord(const Rec& rec) {
    if (!need(rec, 6)) return false;
    const char* d = rec.data.data();
    const int row = u16(d);
    const int first = u16(d + 2);
    // The record's length says how many cells it holds; its last-column field is not needed.
    const qsizetype count = (rec.data.size() - 6) / 6;
    for (qsizetype i = 0; i < count; ++i) {
        const char* p = d + 4 + 6 * i;
        putNumber(row, first + static_cast<int>(i), rkValue(u32(p + 2)), formatOfXf(u16(p)));
    }
    return true;
}

bool BiffReader::labelRecord(const Rec& rec, qsizetype pos) {
    Cell cell;
    if (!cellOf(rec, 8, cell)) return false;
    bool ok = false;
    // BIFF2's label has a one-byte length before BIFF8, where every label is UTF-16.
    const QString text = rec.id == kLabel2 && m_biff != Biff::V8
                             ? recordString(rec, 7, 1, &ok, cell.font)
                             : continuedString(rec, pos, rec.id == kLabel2 ? 7 : 6, 2, &ok, cell.font);
    if (!ok) return fail(QStringLiteral("solun teksti on vajaa"), rec);
    m_out.setCell(cell.row, cell.col, text);
    return true;
}

bool BiffReader::labelSstRecord(const Rec& rec) {
    Cell cell;
    if (!cellOf(rec, 10, cell)) return false;
    const quint32 index = u32(rec.data.data() + 6);
    // An index beyond the strings read shows nothing rather than some other text.
    if (index < m_sst.size()) m_out.setCell(cell.row, cell.col, m_sst[index]);
    return true;
}

bool BiffReader::boolErrRecord(const Rec& rec) {
    const qsizetype at = rec.id == kBoolErr2 ? 7 : 6;
    Cell cell;
    if (!cellOf(rec, at + 2, cell)) return false;
    const char* d = rec.data.data();
    const int value = static_cast<quint8>(d[at]);
    m_out.setCell(cell.row, cell.col, d[at + 1] ? errorText(value) : booleanText(value != 0));
    return true;
}

// A formula's stored result: a number, or (marked by 0xFFFF in its last two bytes) a text that
// follows in a STRING record, a truth value, an error or an empty text.
bool BiffReader::formulaRecord(const Rec& rec) {
    const qsizetype at = rec.id == kFormula && m_biff == Biff::V2 ? 7 : 6;
    Cell cell;
    if (!cellOf(rec, at + 8, cell)) return false;
    const char* result = rec.data.data() + at;
    if (u16(result + 6) != 0xFFFF) {
        putNumber(cell.row, cell.col, f64(result), cell.format);
        return true;
    }
    switch (static_cast<quint8>(result[0])) {
        case 0: // the text follows in a STRING record
            m_pendingRow = cell.row;
            m_pendingCol = cell.col;
            m_pendingFont = cell.font;
            break;
        case 1:
            m_out.setCell(cell.row, cell.col, booleanText(result[2] != 0));
            break;
        case 2:
            m_out.setCell(cell.row, cell.col, errorText(static_cast<quint8>(result[2])));
            break;
        default: // an empty text
            break;
    }
    return true;
}

// The text result of the formula just before it; a STRING record without one is ignored.
bool BiffReader::stringRecord(const Rec& rec, qsizetype pos) {
    if (m_pendingRow < 0) return true;
    bool ok = false;
    const QString text = rec.id == kString2 ? recordString(rec, 0, 1, &ok, m_pendingFont)
                                            : continuedString(rec, pos, 0, 2, &ok, m_pendingFont);
    if (!ok) return fail(QStringLiteral("kaavan tulosteksti on vajaa"), rec);
    m_out.setCell(m_pendingRow, m_pendingCol, text);
    m_pendingRow = -1;
    return true;
}

bool BiffReader::readSubstream(qsizetype pos, bool sheet) {
    Rec rec;
    if (!next(pos, rec)) return false;
    if (rec.id != kBof2 && rec.id != kBof3 && rec.id != kBof4 && rec.id != kBof58)
        return fail(QStringLiteral("taulukon alkutietue puuttuu"), rec);
    while (pos < m_stream.size()) {
        if (!next(pos, rec)) return false;
        if (rec.id == kEof) return true;
        if (rec.id == kBof2 || rec.id == kBof3 || rec.id == kBof4 || rec.id == kBof58) {
            // An embedded chart or another substream inside: skip to its end.
            int depth = 1;
            while (depth > 0 && pos < m_stream.size()) {
                if (!next(pos, rec)) return false;
                if (rec.id == kEof)
                    --depth;
                else if (rec.id == kBof2 || rec.id == kBof3 || rec.id == kBof4 || rec.id == kBof58)
                    ++depth;
            }
            continue;
        }
        if (!globalRecord(rec, pos)) return false;
        if (sheet && !cellRecord(rec, pos)) return false;
        if (m_out.full()) return fail(SheetBuilder::fullMessage());
    }
    // A stream that ends without its EOF record still gives the cells it holds.
    return true;
}

bool BiffReader::read(platform::ReadError* error) {
    auto done = [&](bool ok) {
        if (!ok && error) *error = m_error;
        return ok;
    };
    if (m_stream.size() < 8) return done(fail(QStringLiteral("tiedosto on liian lyhyt")));
    const quint16 bof = u16(m_stream.data());
    const char* d = m_stream.data() + 4;
    const quint16 length = u16(m_stream.data() + 2);
    if (length < 4) return done(fail(QStringLiteral("tiedoston alkutietue on vajaa")));
    switch (bof) {
        case kBof2:
            m_biff = Biff::V2;
            break;
        case kBof3:
            m_biff = Biff::V3;
            break;
        case kBof4:
            m_biff = Biff::V4;
            break;
        case kBof58:
            m_biff = u16(d) >= 0x0600 ? Biff::V8 : Biff::V5;
            break;
        default:
            return done(fail(QStringLiteral("tiedosto ei ala Excel-taulukon alkutietueella")));
    }
    const quint16 type = u16(d + 2);
    if (m_biff >= Biff::V5 || type == 0x0100) {
        // Workbook globals first; the first worksheet is where its BOUNDSHEET record points
        // (BIFF4 workbooks: the first worksheet substream after the globals).
        qsizetype pos = 0;
        Rec rec;
        if (!next(pos, rec)) return done(false);
        while (true) {
            if (!next(pos, rec)) return done(false);
            if (rec.id == kEof) break;
            if (!globalRecord(rec, pos)) return done(false);
        }
        if (m_biff < Biff::V5) {
            while (pos + 8 <= m_stream.size()) {
                const qsizetype at = pos;
                if (!next(pos, rec)) return done(false);
                if (rec.id == kBof4 && rec.data.size() >= 4 && u16(rec.data.data() + 2) == 0x0010)
                    return done(readSubstream(at, true));
            }
            return done(fail(QStringLiteral("työkirjassa ei ole laskentataulukkoa")));
        }
        if (!m_firstSheet) return done(fail(QStringLiteral("työkirjassa ei ole laskentataulukkoa")));
        if (*m_firstSheet + 8 > static_cast<quint64>(m_stream.size()) ||
            u16(m_stream.data() + *m_firstSheet) != kBof58)
            return done(fail(
                QStringLiteral("ensimmäisen taulukon alku (tavu %1) on virheellinen").arg(*m_firstSheet)));
        return done(readSubstream(static_cast<qsizetype>(*m_firstSheet), true));
    }
    if (type != 0x0010) return done(fail(QStringLiteral("tiedosto ei ole laskentataulukko")));
    return done(readSubstream(0, true));
}

} // namespace

namespace {

// Decrypts the records after a FILEPASS record of the workbook globals in place, with the
// password of a workbook that is only protected against changes. Record headers are not
// encrypted, nor are the records the file format names (BOF, FILEPASS, ...) and a BOUNDSHEET's
// stream offset; the key stream runs on over all of them. False with the reason when the
// password does not open the workbook.
bool decryptStream(QByteArray& stream, bool& decrypted, platform::ReadError* error) {
    decrypted = false;
    qsizetype pos = 0, after = -1;
    QByteArrayView filePass;
    while (pos + 4 <= stream.size()) {
        const quint16 id = u16(stream.constData() + pos), length = u16(stream.constData() + pos + 2);
        if (pos + 4 + length > stream.size() || id == kEof) break;
        if (id == kFilePass) {
            filePass = QByteArrayView(stream).sliced(pos + 4, length);
            after = pos + 4 + length;
            break;
        }
        pos += 4 + length;
    }
    if (after < 0) return true;
    Decryption status = Decryption::Unknown;
    const std::unique_ptr<BiffCipher> cipher = BiffCipher::fromFilePass(filePass, defaultPassword(), status);
    if (!cipher) return platform::fail(error, platform::ReadError::reason(decryptionFailure(status)));
    char* data = stream.data();
    for (pos = after; pos + 4 <= stream.size();) {
        const quint16 id = u16(data + pos), length = u16(data + pos + 2);
        const qsizetype end = std::min<qsizetype>(pos + 4 + length, stream.size());
        const bool clear = id == kBof2 || id == kBof3 || id == kBof4 || id == kBof58 || id == kFilePass ||
                           id == 0x0194 /* USREXCL */ || id == 0x0195 /* FILELOCK */ ||
                           id == 0x00E1 /* INTERFACEHDR */ || id == 0x0196 /* RRDINFO */ ||
                           id == 0x0138 /* RRDHEAD */;
        const qsizetype at = pos + 4 + (id == kBoundSheet ? 4 : 0);
        if (!clear && at < end) cipher->decrypt(data + at, end - at, at);
        pos += 4 + length;
    }
    decrypted = true;
    return true;
}

} // namespace

bool readXls(const QByteArray& bytes, SheetBuilder& out, platform::ReadError* error) {
    QByteArray stream = bytes; // shared until a decryption writes to it
    if (looksLikeOle(bytes)) {
        QString reason;
        const std::unique_ptr<CompoundFile> ole = CompoundFile::open(bytes, &reason);
        if (!ole) return platform::fail(error, platform::ReadError::reason(reason));
        const QString name = ole->contains(QStringLiteral("Workbook")) ? QStringLiteral("Workbook")
                             : ole->contains(QStringLiteral("Book"))   ? QStringLiteral("Book")
                                                                       : QString();
        if (name.isEmpty())
            return platform::fail(
                error, platform::ReadError::reason(QStringLiteral("tiedostossa ei ole Excel-työkirjaa")));
        if (!ole->read(name, stream, &reason))
            return platform::fail(error, platform::ReadError::reason(reason));
    }
    bool decrypted = false;
    if (!decryptStream(stream, decrypted, error)) return false;
    BiffReader reader(stream, out, decrypted);
    return reader.read(error);
}

} // namespace lists::sheet
