// The RTF writer, plain-text loading and saving, and the file rule that chooses between them.
#include "platform/Rtf.h"

#include "platform/Cp1252.h"
#include "platform/TextFile.h"

#include <QFileInfo>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <vector>

namespace platform {

namespace {

// A character format as it shows: every property resolved against the document's default font.
struct Effective {
    QString family;
    int fontSize = 24; // half-points
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strike = false;
    int color = 0; // index in the colour table, 0 the automatic colour
    int offset = 0;
    bool operator==(const Effective&) const = default;
};

qreal pointSizeOf(const QTextCharFormat& f, qreal fallback) {
    if (f.hasProperty(QTextFormat::FontPointSize) && f.fontPointSize() > 0) return f.fontPointSize();
    return fallback > 0 ? fallback : 12;
}

// The code page's byte of a character, or -1.
int cp1252Byte(char16_t c) {
    QString bad;
    const QByteArray b = toCp1252(QString(QChar(c)), &bad);
    return bad.isEmpty() ? static_cast<uchar>(b[0]) : -1;
}

// A font name as the font table can hold it and a reader gives it back: in the code page the
// table names (others become "?"), without control characters or the ";" that ends a name, and
// without spaces at its ends.
QString writableFontName(const QString& name) {
    QString out;
    for (const QChar ch : name) {
        const char16_t c = ch.unicode();
        if (c < 0x20 || c == 0x7F || c == u';') continue;
        out += c >= 0x80 && cp1252Byte(c) < 0 ? QChar(u'?') : ch;
    }
    return out.trimmed();
}

QString familyOf(const QTextCharFormat& f, const QFont& base) {
    const QStringList families = f.fontFamilies().toStringList();
    QString family = families.isEmpty() ? QString() : writableFontName(families.first());
    if (family.isEmpty()) family = writableFontName(f.stringProperty(QTextFormat::FontFamily));
    return family.isEmpty() ? writableFontName(base.family()) : family;
}

class Tables {
public:
    int font(const QString& family) {
        const qsizetype i = m_fonts.indexOf(family);
        if (i >= 0) return static_cast<int>(i);
        m_fonts.append(family);
        return static_cast<int>(m_fonts.size() - 1);
    }
    int color(QRgb rgb) {
        const qsizetype i = m_colors.indexOf(rgb);
        if (i >= 0) return static_cast<int>(i) + 1;
        m_colors.append(rgb);
        return static_cast<int>(m_colors.size());
    }
    const QStringList& fonts() const { return m_fonts; }
    const QList<QRgb>& colors() const { return m_colors; }

private:
    QStringList m_fonts;
    QList<QRgb> m_colors;
};

Effective effective(const QTextCharFormat& f, const QFont& base, Tables& tables) {
    Effective e;
    e.family = familyOf(f, base);
    tables.font(e.family);
    e.fontSize = qRound(pointSizeOf(f, base.pointSizeF()) * 2);
    e.bold = f.hasProperty(QTextFormat::FontWeight) ? f.fontWeight() >= QFont::DemiBold
                                                    : base.weight() >= QFont::DemiBold;
    e.italic = f.hasProperty(QTextFormat::FontItalic) ? f.fontItalic() : base.italic();
    e.underline = f.hasProperty(QTextFormat::TextUnderlineStyle) || f.hasProperty(QTextFormat::FontUnderline)
                      ? f.fontUnderline()
                      : base.underline();
    e.strike = f.hasProperty(QTextFormat::FontStrikeOut) ? f.fontStrikeOut() : base.strikeOut();
    if (f.hasProperty(QTextFormat::ForegroundBrush) && f.foreground().style() != Qt::NoBrush)
        e.color = tables.color(f.foreground().color().rgb());
    if (f.hasProperty(kBaselineOffsetProperty)) {
        e.offset = baselineOffsetHalfPoints(f);
    } else if (f.verticalAlignment() == QTextCharFormat::AlignSuperScript) {
        e.offset = e.fontSize / 2; // pasted HTML: read back as the reader reads \super
    } else if (f.verticalAlignment() == QTextCharFormat::AlignSubScript) {
        e.offset = -(e.fontSize / 2);
    }
    return e;
}

struct Piece {
    QString text;
    Effective format;
};

struct Block {
    QTextBlockFormat format;
    std::vector<Piece> pieces;
    Effective empty; // the format of an empty paragraph
};

// The RTF family keyword of a font, by its name; unknown names are \fnil.
const char* fontFamilyKeyword(const QString& name) {
    const QString n = name.toLower();
    if (n.contains(QLatin1String("courier")) || n.contains(QLatin1String("mono")) ||
        n.contains(QLatin1String("consol")))
        return "\\fmodern";
    if (n.contains(QLatin1String("times")) ||
        (n.contains(QLatin1String("serif")) && !n.contains(QLatin1String("sans"))) ||
        n.contains(QLatin1String("roman")) || n.contains(QLatin1String("georgia")))
        return "\\froman";
    if (n.contains(QLatin1String("sans")) || n.contains(QLatin1String("arial")) ||
        n.contains(QLatin1String("helvetica")) || n.contains(QLatin1String("tahoma")) ||
        n.contains(QLatin1String("verdana")))
        return "\\fswiss";
    if (n.contains(QLatin1String("symbol"))) return "\\ftech";
    return "\\fnil";
}

// The characters that RTF can hold: controls other than the tab and object placeholders go.
QString rtfText(const QString& s) {
    QString out;
    out.reserve(s.size());
    for (const QChar ch : s) {
        const char16_t c = ch.unicode();
        if ((c < 0x20 && c != u'\t') || c == 0xFFFC) continue;
        out.append(ch);
    }
    return out;
}

class Writer {
public:
    // Text (as rtfText leaves it): ASCII as it is, Windows-1252 as \'hh, the rest as \uN with
    // "?" for readers without Unicode.
    void text(const QString& s) {
        for (const QChar ch : s) {
            const char16_t c = ch.unicode();
            if (c == u'\t') {
                word("\\tab");
            } else if (c == 0x2028) {
                word("\\line");
            } else if (c < 0x80) {
                if (m_delimit) m_out.append(' ');
                m_delimit = false;
                if (c == u'\\' || c == u'{' || c == u'}') m_out.append('\\');
                m_out.append(static_cast<char>(c));
            } else if (const int b = cp1252Byte(c); b >= 0) {
                m_out.append("\\'").append(QByteArray::number(b, 16).rightJustified(2, '0'));
                m_delimit = false;
            } else {
                m_out.append("\\u").append(QByteArray::number(static_cast<qint16>(c))).append('?');
                m_delimit = false;
            }
        }
    }
    void word(const char* w) {
        m_out.append(w);
        m_delimit = true;
    }
    void word(const char* w, int n) {
        m_out.append(w).append(QByteArray::number(n));
        m_delimit = true;
    }
    void raw(const QByteArray& b) {
        m_out.append(b);
        m_delimit = false;
    }
    // Writes the control words that change the current character state into `to`.
    void change(const Effective& to, const Tables& tables) {
        const bool first = !m_started;
        m_started = true;
        if (first || to.family != m_state.family)
            word("\\f", static_cast<int>(tables.fonts().indexOf(to.family)));
        if (first || to.fontSize != m_state.fontSize) word("\\fs", to.fontSize);
        if (to.bold != m_state.bold) word(to.bold ? "\\b" : "\\b0");
        if (to.italic != m_state.italic) word(to.italic ? "\\i" : "\\i0");
        if (to.underline != m_state.underline) word(to.underline ? "\\ul" : "\\ulnone");
        if (to.strike != m_state.strike) word(to.strike ? "\\strike" : "\\strike0");
        if (to.color != m_state.color) word("\\cf", to.color);
        if (to.offset != m_state.offset) {
            if (to.offset > 0)
                word("\\up", to.offset);
            else if (to.offset < 0)
                word("\\dn", -to.offset);
            else
                word("\\up0");
        }
        m_state = to;
    }
    QByteArray& out() { return m_out; }

private:
    QByteArray m_out;
    Effective m_state; // RTF's initial state: no bold, no italic, automatic colour
    bool m_started = false;
    bool m_delimit = false; // a control word was written last: text needs a space first
};

} // namespace

int baselineOffsetHalfPoints(const QTextCharFormat& format) {
    return format.hasProperty(kBaselineOffsetProperty) ? format.intProperty(kBaselineOffsetProperty) : 0;
}

void setBaselineOffsetHalfPoints(QTextCharFormat& format, int halfPoints, qreal fallbackPointSize) {
    if (halfPoints == 0) {
        format.clearProperty(kBaselineOffsetProperty);
        format.clearProperty(QTextFormat::TextBaselineOffset);
        return;
    }
    format.setProperty(kBaselineOffsetProperty, halfPoints);
    // Qt's own offset is a percentage of the font height; the half-points stay the truth.
    format.setBaselineOffset(halfPoints / 2.0 / pointSizeOf(format, fallbackPointSize) * 100.0);
}

namespace {

// The document's paragraphs as runs of text of one effective format, the fonts and colours
// they use gathered into `tables`.
std::vector<Block> documentBlocks(const QTextDocument& document, Tables& tables) {
    const QFont base = document.defaultFont();
    std::vector<Block> blocks;
    for (QTextBlock b = document.begin(); b.isValid(); b = b.next()) {
        Block block;
        block.format = b.blockFormat();
        for (auto it = b.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            if (!fragment.isValid()) continue;
            // Text of controls alone writes nothing; its format switches would read back as nothing.
            const QString text = rtfText(fragment.text());
            if (text.isEmpty()) continue;
            const Effective e = effective(fragment.charFormat(), base, tables);
            if (!block.pieces.empty() && block.pieces.back().format == e)
                block.pieces.back().text += text;
            else
                block.pieces.push_back(Piece{text, e});
        }
        if (block.pieces.empty()) block.empty = effective(b.charFormat(), base, tables);
        blocks.push_back(std::move(block));
    }
    return blocks;
}

// The file's header: the font table and the colour table.
void writeHeader(Writer& w, const Tables& tables) {
    w.raw("{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang1035{\\fonttbl");
    for (int i = 0; i < tables.fonts().size(); ++i) {
        w.raw("{");
        w.word("\\f", i);
        w.word(fontFamilyKeyword(tables.fonts()[i]));
        w.word("\\fcharset0");
        w.text(tables.fonts()[i]);
        w.raw(";}");
    }
    w.raw("}\r\n{\\colortbl ;");
    for (const QRgb c : tables.colors()) {
        w.raw(
            QStringLiteral("\\red%1\\green%2\\blue%3;").arg(qRed(c)).arg(qGreen(c)).arg(qBlue(c)).toLatin1());
    }
    w.raw("}\r\n");
    w.word("\\viewkind4");
    w.word("\\uc1");
}

// A paragraph: its alignment and indents, then its runs, each after the switches it needs.
void writeBlock(Writer& w, const Block& block, Tables& tables) {
    w.word("\\pard");
    const Qt::Alignment a = block.format.alignment() & Qt::AlignHorizontal_Mask;
    if (a & Qt::AlignHCenter)
        w.word("\\qc");
    else if (a & Qt::AlignJustify)
        w.word("\\qj");
    else if (a & Qt::AlignRight)
        w.word("\\qr");
    if (const int li = qRound(block.format.leftMargin() * 15)) w.word("\\li", li);
    if (const int ri = qRound(block.format.rightMargin() * 15)) w.word("\\ri", ri);
    if (const int fi = qRound(block.format.textIndent() * 15)) w.word("\\fi", fi);
    if (block.pieces.empty()) w.change(block.empty, tables);
    for (const Piece& p : block.pieces) {
        w.change(p.format, tables);
        w.text(p.text);
    }
    w.word("\\par");
    w.raw("\r\n");
}

} // namespace

QByteArray WriteRtf(const QTextDocument& document) {
    Tables tables;
    const std::vector<Block> blocks = documentBlocks(document, tables);
    Writer w;
    writeHeader(w, tables);
    for (const Block& block : blocks)
        writeBlock(w, block, tables);
    w.raw("}\r\n");
    return w.out();
}

QTextCharFormat defaultStyleFormat() {
    QTextCharFormat f;
    f.setFontFamilies(QStringList{QStringLiteral("MS Sans Serif")});
    f.setForeground(QColor(Qt::black));
    f.setFontWeight(QFont::Normal);
    f.setFontItalic(false);
    f.setFontPointSize(8);
    return f;
}

void loadPlainTextAsDefault(QTextDocument& document, const QString& text) {
    registerRichTextFontSubstitutes();
    QString t = text;
    t.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    t.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const bool undo = document.isUndoRedoEnabled();
    document.setUndoRedoEnabled(false);
    document.clear();
    QTextCursor cursor(&document);
    const QTextCharFormat f = defaultStyleFormat();
    cursor.setBlockCharFormat(f);
    cursor.insertText(t, f);
    document.setUndoRedoEnabled(undo);
    document.setModified(false);
}

QString plainTextWithCrLf(const QTextDocument& document) {
    QString out;
    for (QTextBlock b = document.begin(); b.isValid(); b = b.next()) {
        if (b != document.begin()) out += QLatin1String("\r\n");
        QString line = b.text();
        line.replace(QChar(0x2028), QLatin1String("\r\n"));
        line.remove(QChar(0xFFFC));
        out += line;
    }
    return out;
}

bool isRtfFileName(const QString& fileName) {
    return fileName.size() > 4 && fileName.right(4).toUpper() == QLatin1String(".RTF");
}

bool WriteRtfFile(const QTextDocument& document, const QString& fileName, QString* error) {
    const QByteArray bytes =
        isRtfFileName(fileName) ? WriteRtf(document) : toCp1252(plainTextWithCrLf(document));
    return writeFileAtomically(fileName, bytes, error);
}

bool ReadRtfFile(QTextDocument& document, const QString& fileName, QString* error) {
    QByteArray bytes;
    if (!readFileBytes(fileName, bytes, error)) return false;
    if (!isRtfFileName(fileName)) {
        loadPlainTextAsDefault(document, fromCp1252(bytes));
        return true;
    }
    QString why;
    if (ReadRtf(bytes, document, &why)) return true;
    if (error)
        *error = QStringLiteral("Tiedostoa %1 ei voi lukea: %2").arg(QFileInfo(fileName).fileName(), why);
    return false;
}

void registerRichTextFontSubstitutes() {
    static const bool done = [] {
        QFont::insertSubstitution(QStringLiteral("MS Sans Serif"), QStringLiteral("Sans Serif"));
        return true;
    }();
    (void)done;
}

} // namespace platform
