// The RTF reader: a tokenizer and a stack of group states. The text is collected into
// paragraphs and runs first; the document is filled only when the whole input has been read,
// so a damaged file leaves the document as it was.
#include "platform/CodePage.h"
#include "platform/Cp1252.h"
#include "platform/Rtf.h"

#include <QHash>
#include <QSet>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>
#include <cctype>
#include <optional>
#include <vector>

namespace platform {

namespace {

constexpr int kDefaultFontSize = 24; // half-points, the RTF default

struct CharState {
    int font = -1; // -1: the default font (\deff)
    int fontSize = kDefaultFontSize;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strike = false;
    int color = 0;
    int offset = 0;   // \up / \dn, half-points, positive up
    int superSub = 0; // \super 1, \sub -1: half the font height, whatever size follows
    bool operator==(const CharState&) const = default;
};

struct ParaState {
    Qt::Alignment alignment = Qt::AlignLeft;
    int leftIndent = 0; // twips
    int rightIndent = 0;
    int firstIndent = 0;
};

enum class Destination { Text, FontTable, ColorTable, Skip };

struct Group {
    CharState chars;
    ParaState para;
    Destination destination = Destination::Text;
    int unicodeSkip = 1; // \ucN: characters that stand in for each \uN
    qsizetype openedAt = 0;
};

struct Run {
    QString text;
    CharState chars;
};

struct Paragraph {
    ParaState para;
    std::vector<Run> runs;
    CharState endChars; // the character state at \par: the format of an empty paragraph
};

struct ColorEntry {
    int red = 0, green = 0, blue = 0;
    bool given = false; // an entry with no components is the automatic colour
};

// Destinations whose content is not text of the document.
bool isSkippedDestination(const QByteArray& word) {
    static const QSet<QByteArray> skipped = {"stylesheet",
                                             "info",
                                             "pict",
                                             "object",
                                             "header",
                                             "headerl",
                                             "headerr",
                                             "headerf",
                                             "footer",
                                             "footerl",
                                             "footerr",
                                             "footerf",
                                             "footnote",
                                             "fldinst",
                                             "listtable",
                                             "listoverridetable",
                                             "revtbl",
                                             "rsidtbl",
                                             "generator",
                                             "themedata",
                                             "colorschememapping",
                                             "latentstyles",
                                             "datastore",
                                             "xmlnstbl",
                                             "pgdsctbl",
                                             "nonshppict",
                                             "shpinst",
                                             "bkmkstart",
                                             "bkmkend",
                                             "template",
                                             "filetbl",
                                             "annotation",
                                             "atnid",
                                             "atnauthor",
                                             "private",
                                             "userprops",
                                             "docvar",
                                             "mmathPr",
                                             "pnseclvl",
                                             "listpicture",
                                             "objdata",
                                             "blipuid",
                                             "falt",
                                             "panose",
                                             "fchars",
                                             "lchars",
                                             "protusertbl",
                                             "background"};
    return skipped.contains(word);
}

// Single characters that RTF names with a control word.
std::optional<char16_t> namedCharacter(const QByteArray& word) {
    static const QHash<QByteArray, char16_t> named = {
        {"tab", u'\t'},      {"line", 0x2028},    {"emdash", 0x2014},    {"endash", 0x2013},
        {"emspace", 0x2003}, {"enspace", 0x2002}, {"qmspace", 0x2005},   {"bullet", 0x2022},
        {"lquote", 0x2018},  {"rquote", 0x2019},  {"ldblquote", 0x201C}, {"rdblquote", 0x201D},
        {"cell", u'\t'},     {"zwj", 0x200D},     {"zwnj", 0x200C}};
    const auto it = named.constFind(word);
    if (it == named.constEnd()) return std::nullopt;
    return *it;
}

class Reader {
public:
    explicit Reader(const QByteArray& rtf)
        : m_in(rtf) {}

    bool read(QString* error);
    void fill(QTextDocument& document) const;

private:
    bool fail(QString* error, const QString& message);
    void controlWord(const QByteArray& word, bool hasParam, int param);
    void controlSymbol(char c);
    void text(char16_t c);
    // A byte of text in the current font's code page; bytes are decoded together, since a
    // character of a double-byte code page comes as two of them.
    void textByte(char b);
    void flushBytes();
    int currentCodePage() const;
    int fontCodePage(int font) const;
    void endFontName();
    void endParagraph();
    Group& top() { return m_groups.back(); }
    const Group& top() const { return m_groups.back(); }
    bool skipping() const { return m_groups.back().destination == Destination::Skip; }
    QTextCharFormat charFormat(const CharState& state) const;

    const QByteArray& m_in;
    qsizetype m_pos = 0;
    std::vector<Group> m_groups;
    std::vector<Paragraph> m_paragraphs{1};
    bool m_paragraphOpen = false; // text or a change since the last \par
    int m_defaultFont = 0;
    int m_pendingSkip = 0;  // fallback characters still to drop after \uN
    CharState m_finalChars; // the state when the document's group closed
    QHash<int, QString> m_fonts;
    int m_fontNumber = 0; // the font table entry being read
    QByteArray m_fontName;
    int m_documentCodePage = 1252;   // \ansicpg
    QHash<int, int> m_fontCodePages; // from \fcharset or \cpg
    QByteArray m_bytes;              // text bytes not decoded yet
    int m_bytesCodePage = 1252;
    std::vector<ColorEntry> m_colors;
    ColorEntry m_color;
};

bool Reader::fail(QString* error, const QString& message) {
    if (error) *error = message;
    return false;
}

bool Reader::read(QString* error) {
    const qsizetype n = m_in.size();
    // Leading white space is tolerated; the text must open with "{\rtf".
    while (m_pos < n &&
           (m_in[m_pos] == ' ' || m_in[m_pos] == '\r' || m_in[m_pos] == '\n' || m_in[m_pos] == '\t'))
        ++m_pos;
    if (!m_in.mid(m_pos, 5).startsWith("{\\rtf"))
        return fail(error, QStringLiteral("Teksti ei ole RTF-muotoista (tavu %1).").arg(m_pos));

    while (m_pos < n) {
        const char c = m_in[m_pos];
        if (c == '{') {
            flushBytes();
            m_pendingSkip = 0;
            Group g = m_groups.empty() ? Group{} : top();
            g.openedAt = m_pos;
            m_groups.push_back(g);
            ++m_pos;
            continue;
        }
        if (c == '}') {
            flushBytes();
            m_pendingSkip = 0;
            const Destination closing = top().destination;
            if (closing == Destination::FontTable) endFontName();
            if (m_groups.size() == 1) m_finalChars = top().chars;
            m_groups.pop_back();
            ++m_pos;
            if (m_groups.empty()) break; // the document's own group closed; what follows is not read
            continue;
        }
        if (c == '\\') {
            if (m_pos + 1 >= n) break; // reported below as a text that ends early
            const char next = m_in[m_pos + 1];
            if (!std::isalpha(static_cast<unsigned char>(next))) {
                if (next == '\'') {
                    if (m_pos + 3 >= n) break;
                    bool ok = false;
                    const int byte = m_in.mid(m_pos + 2, 2).toInt(&ok, 16);
                    m_pos += 4;
                    if (!ok) continue;
                    if (m_pendingSkip > 0) {
                        --m_pendingSkip;
                        continue;
                    }
                    if (top().destination == Destination::FontTable) {
                        m_fontName.append(static_cast<char>(byte));
                        continue;
                    }
                    textByte(static_cast<char>(byte));
                    continue;
                }
                flushBytes();
                m_pos += 2;
                if (m_pendingSkip > 0) {
                    --m_pendingSkip;
                    continue;
                }
                controlSymbol(next);
                continue;
            }
            // A control word: letters, an optional signed number, and an optional space.
            flushBytes();
            qsizetype p = m_pos + 1;
            while (p < n && p - m_pos <= 32 && std::isalpha(static_cast<unsigned char>(m_in[p])))
                ++p;
            const QByteArray word = m_in.mid(m_pos + 1, p - m_pos - 1);
            bool negative = false;
            if (p < n && m_in[p] == '-' && p + 1 < n &&
                std::isdigit(static_cast<unsigned char>(m_in[p + 1]))) {
                negative = true;
                ++p;
            }
            bool hasParam = false;
            long long value = 0;
            while (p < n && std::isdigit(static_cast<unsigned char>(m_in[p]))) {
                hasParam = true;
                if (value < 100000000000LL) value = value * 10 + (m_in[p] - '0');
                ++p;
            }
            if (p < n && m_in[p] == ' ') ++p;
            value = std::clamp(value, 0LL, 2147483647LL);
            const int param = static_cast<int>(negative ? -value : value);
            m_pos = p;
            if (word == "bin") {
                // Binary data: skip its bytes whatever they are, braces included.
                if (!hasParam || param < 0 || param > n - m_pos) {
                    m_pos = n;
                    break;
                }
                m_pos += param;
                continue;
            }
            if (m_pendingSkip > 0 && word != "u") {
                --m_pendingSkip;
                continue;
            }
            m_pendingSkip = 0;
            controlWord(word, hasParam, param);
            continue;
        }
        ++m_pos;
        if (c == '\r' || c == '\n' || c == '\0') continue;
        if (m_pendingSkip > 0) {
            --m_pendingSkip;
            continue;
        }
        const Destination d = top().destination;
        if (d == Destination::FontTable) {
            if (c == ';') {
                endFontName();
            } else {
                m_fontName.append(c);
            }
            continue;
        }
        if (d == Destination::ColorTable) {
            if (c == ';') {
                m_colors.push_back(m_color);
                m_color = ColorEntry{};
            }
            continue;
        }
        if (d == Destination::Skip) continue;
        if (c == '\t') {
            flushBytes();
            text(u'\t');
            continue;
        }
        if (static_cast<unsigned char>(c) < 0x20) continue;
        textByte(c);
    }
    flushBytes();
    if (!m_groups.empty()) {
        return fail(
            error,
            QStringLiteral("RTF-teksti päättyy kesken tavussa %1: tavussa %2 alkanut ryhmä jää sulkematta.")
                .arg(n)
                .arg(m_groups.back().openedAt));
    }
    // A last paragraph without \par keeps the format it ended in.
    Paragraph& last = m_paragraphs.back();
    last.endChars = last.runs.empty() ? m_finalChars : last.runs.back().chars;
    return true;
}

void Reader::controlSymbol(char c) {
    if (c == '*') {
        // An optional destination: this program knows none of them.
        top().destination = Destination::Skip;
        return;
    }
    if (skipping()) return;
    switch (c) {
        case '\\':
        case '{':
        case '}':
            if (top().destination == Destination::FontTable)
                m_fontName.append(c);
            else
                text(static_cast<char16_t>(c));
            break;
        case '~':
            text(0x00A0);
            break;
        case '_':
            text(0x2011);
            break;
        case '-':
            break; // an optional hyphen shows only where a line breaks
        case '\r':
        case '\n':
            endParagraph();
            break;
        case '\t':
            text(u'\t');
            break;
        default:
            break;
    }
}

void Reader::controlWord(const QByteArray& w, bool hasParam, int param) {
    Group& g = top();
    if (w == "u") {
        // \uN is a signed 16-bit unit followed by \ucN fallback characters.
        int code = param;
        if (code < 0) code += 65536;
        if (!skipping() && g.destination != Destination::ColorTable) {
            if (g.destination == Destination::FontTable) {
                // Font names keep to the code page; a \u in a name keeps its fallback instead.
            } else if (code > 0 && code < 65536) {
                text(static_cast<char16_t>(code));
            }
        }
        if (g.destination != Destination::FontTable) m_pendingSkip = g.unicodeSkip;
        return;
    }
    if (w == "uc") {
        g.unicodeSkip = std::clamp(param, 0, 16);
        return;
    }
    if (skipping()) return;
    if (isSkippedDestination(w)) {
        g.destination = Destination::Skip;
        return;
    }
    if (w == "ansicpg") {
        if (hasParam && param > 0) m_documentCodePage = param;
        return;
    }
    if (w == "fonttbl") {
        g.destination = Destination::FontTable;
        return;
    }
    if (w == "colortbl") {
        g.destination = Destination::ColorTable;
        m_color = ColorEntry{};
        return;
    }
    if (g.destination == Destination::FontTable) {
        if (w == "f") {
            endFontName();
            m_fontNumber = param;
        } else if (w == "fcharset") {
            if (const int cp = codePageOfCharset(param)) m_fontCodePages.insert(m_fontNumber, cp);
        } else if (w == "cpg" && hasParam && param > 0) {
            m_fontCodePages.insert(m_fontNumber, param);
        }
        return;
    }
    if (g.destination == Destination::ColorTable) {
        const int v = std::clamp(param, 0, 255);
        if (w == "red") m_color.red = v, m_color.given = true;
        if (w == "green") m_color.green = v, m_color.given = true;
        if (w == "blue") m_color.blue = v, m_color.given = true;
        return;
    }

    CharState& ch = g.chars;
    ParaState& para = g.para;
    const bool on = !hasParam || param != 0;
    if (auto named = namedCharacter(w)) {
        text(*named);
    } else if (w == "par" || w == "row" || w == "page" || w == "sect") {
        endParagraph();
    } else if (w == "pard") {
        para = ParaState{};
    } else if (w == "plain") {
        ch = CharState{};
    } else if (w == "deff") {
        m_defaultFont = param;
    } else if (w == "b") {
        ch.bold = on;
    } else if (w == "i") {
        ch.italic = on;
    } else if (w == "ulnone") {
        ch.underline = false;
    } else if (w.startsWith("ul") && w != "ulc") {
        // \ul and its kinds (\uld, \ulw, \uldb, ...) all show as an underline.
        ch.underline = on;
    } else if (w == "strike" || w == "striked") {
        ch.strike = on;
    } else if (w == "fs") {
        ch.fontSize = hasParam ? std::clamp(param, 2, 3276) : kDefaultFontSize;
    } else if (w == "f") {
        ch.font = param;
    } else if (w == "cf") {
        ch.color = std::max(param, 0);
    } else if (w == "up") {
        ch.offset = hasParam ? std::clamp(param, -3276, 3276) : 6;
        ch.superSub = 0;
    } else if (w == "dn") {
        ch.offset = -(hasParam ? std::clamp(param, -3276, 3276) : 6);
        ch.superSub = 0;
    } else if (w == "super") {
        ch.superSub = 1;
        ch.offset = 0;
    } else if (w == "sub") {
        ch.superSub = -1;
        ch.offset = 0;
    } else if (w == "nosupersub") {
        ch.superSub = 0;
    } else if (w == "ql") {
        para.alignment = Qt::AlignLeft;
    } else if (w == "qc") {
        para.alignment = Qt::AlignHCenter;
    } else if (w == "qr") {
        para.alignment = Qt::AlignRight;
    } else if (w == "qj") {
        para.alignment = Qt::AlignJustify;
    } else if (w == "li") {
        para.leftIndent = std::clamp(param, -31680, 31680);
    } else if (w == "ri") {
        para.rightIndent = std::clamp(param, -31680, 31680);
    } else if (w == "fi") {
        para.firstIndent = std::clamp(param, -31680, 31680);
    }
}

void Reader::text(char16_t c) {
    const Group& g = top();
    if (g.destination != Destination::Text) return;
    if (c == u'\n' || c == u'\r' || c == 0x2029) c = 0x2028; // a paragraph ends only at \par
    if (c == 0xFFFC || c == 0) return;
    Paragraph& p = m_paragraphs.back();
    if (!m_paragraphOpen) {
        p.para = g.para;
        m_paragraphOpen = true;
    }
    if (p.runs.empty() || !(p.runs.back().chars == g.chars)) p.runs.push_back(Run{QString(), g.chars});
    p.runs.back().text.append(QChar(c));
}

int Reader::fontCodePage(int font) const {
    return m_fontCodePages.value(font, m_documentCodePage);
}

int Reader::currentCodePage() const {
    const int font = top().chars.font;
    return fontCodePage(font < 0 ? m_defaultFont : font);
}

void Reader::textByte(char b) {
    if (top().destination != Destination::Text) return;
    const int codePage = currentCodePage();
    if (codePage != m_bytesCodePage) flushBytes();
    m_bytesCodePage = codePage;
    m_bytes.append(b);
}

void Reader::flushBytes() {
    if (m_bytes.isEmpty()) return;
    const QString decoded = decodeCodePage(m_bytes, m_bytesCodePage);
    m_bytes.clear();
    for (const QChar c : decoded)
        text(c.unicode());
}

void Reader::endFontName() {
    // Control characters are no part of a font's name; a name of nothing else names no font, and
    // text in it takes the default font, as the writer would write it.
    QString name = decodeCodePage(m_fontName, fontCodePage(m_fontNumber));
    name.removeIf([](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7F; });
    name = name.trimmed();
    if (!name.isEmpty()) m_fonts.insert(m_fontNumber, name);
    m_fontName.clear();
}

void Reader::endParagraph() {
    const Group& g = top();
    if (g.destination != Destination::Text) return;
    // Paragraph properties count as they stand at the paragraph's end.
    Paragraph& p = m_paragraphs.back();
    p.para = g.para;
    p.endChars = g.chars;
    m_paragraphs.emplace_back();
    m_paragraphOpen = false;
}

QTextCharFormat Reader::charFormat(const CharState& s) const {
    QTextCharFormat f;
    const int font = s.font < 0 ? m_defaultFont : s.font;
    QString family = m_fonts.value(font);
    if (family.isEmpty()) family = m_fonts.value(m_defaultFont);
    if (!family.isEmpty()) f.setFontFamilies(QStringList{family});
    f.setFontPointSize(s.fontSize / 2.0);
    f.setFontWeight(s.bold ? QFont::Bold : QFont::Normal);
    f.setFontItalic(s.italic);
    f.setFontUnderline(s.underline);
    f.setFontStrikeOut(s.strike);
    if (s.color > 0 && s.color < static_cast<int>(m_colors.size()) && m_colors[s.color].given) {
        const ColorEntry& c = m_colors[s.color];
        f.setForeground(QColor(c.red, c.green, c.blue));
    } else if (s.color == 0 && !m_colors.empty() && m_colors[0].given) {
        // A table without the leading automatic entry: colour 0 is a real colour.
        f.setForeground(QColor(m_colors[0].red, m_colors[0].green, m_colors[0].blue));
    }
    // \super and \sub name no distance: they show as half the font height.
    setBaselineOffsetHalfPoints(f, s.superSub != 0 ? s.superSub * (s.fontSize / 2) : s.offset);
    return f;
}

void Reader::fill(QTextDocument& document) const {
    // The paragraph after the last \par is kept only when it holds text: RTF writers end the
    // last paragraph with \par too.
    auto count = static_cast<qsizetype>(m_paragraphs.size());
    if (count > 1 && m_paragraphs.back().runs.empty()) --count;

    const bool undo = document.isUndoRedoEnabled();
    document.setUndoRedoEnabled(false);
    document.clear();
    QTextCursor cursor(&document);
    for (qsizetype i = 0; i < count; ++i) {
        const Paragraph& p = m_paragraphs[i];
        QTextBlockFormat block;
        block.setAlignment(p.para.alignment);
        if (p.para.leftIndent) block.setLeftMargin(p.para.leftIndent / 15.0);
        if (p.para.rightIndent) block.setRightMargin(p.para.rightIndent / 15.0);
        if (p.para.firstIndent) block.setTextIndent(p.para.firstIndent / 15.0);
        const QTextCharFormat end = charFormat(p.endChars);
        if (i == 0) {
            cursor.setBlockFormat(block);
            cursor.setBlockCharFormat(end);
        } else {
            cursor.insertBlock(block, end);
        }
        for (const Run& r : p.runs)
            cursor.insertText(r.text, charFormat(r.chars));
    }
    document.setUndoRedoEnabled(undo);
    document.setModified(false);
}

} // namespace

bool ReadRtf(const QByteArray& rtf, QTextDocument& document, QString* error) {
    registerRichTextFontSubstitutes();
    Reader reader(rtf);
    if (!reader.read(error)) return false;
    reader.fill(document);
    return true;
}

} // namespace platform
