// The RTF reader: a tokenizer and a stack of group states. The text is collected into
// paragraphs and runs first; the document is filled only when the whole input has been read,
// so a damaged file leaves the document as it was.
#include "platform/CodePage.h"
#include "platform/Cp1252.h"
#include "platform/ReadError.h"
#include "platform/Rtf.h"
#include "platform/SymbolFonts.h"

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

// A font number that stands for the document's text font: a symbol font's code read as its
// character is shown in it, since the symbol font itself has no such character.
constexpr int kTextFont = -2;

struct CharState {
    int font = -1; // -1: the default font (\deff); kTextFont
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
    int list = 0;  // \ls: the list override the paragraph belongs to, 0 for none
    int level = 0; // \ilvl
};

// Footnotes and nested tables are read for what shows in the text: the reference number of a
// footnote where it is anchored, and the row ends of a table in a table cell.
enum class Destination {
    Text,
    FontTable,
    ColorTable,
    ListTable,
    ListOverrideTable,
    Footnote,
    NestedRow,
    Skip
};

struct Group {
    CharState chars;
    ParaState para;
    Destination destination = Destination::Text;
    int unicodeSkip = 1;    // \ucN: characters that stand in for each \uN
    bool listLabel = false; // \listtext or \pntext: the number or bullet of a list paragraph
    qsizetype openedAt = 0;
};

struct Run {
    QString text;
    CharState chars;
};

// A character of a list label given as a symbol font's private-use code in a font that is not a
// symbol font: the list's own font, known when the paragraph says which list it belongs to,
// decides what it is.
struct LabelSymbol {
    std::size_t run = 0;
    qsizetype at = 0;
};

struct Paragraph {
    ParaState para;
    std::vector<Run> runs;
    CharState endChars; // the character state at \par: the format of an empty paragraph
    std::vector<LabelSymbol> labelSymbols;
};

// The fonts of the levels of one list of the list table, and which list each override names.
struct ListFonts {
    int id = 0;
    std::vector<int> levelFonts; // -1 where a level names no font
};

struct ListOverride {
    int list = 0;   // \listid
    int number = 0; // \ls
};

enum class NoteNumbering { Arabic, LowerLetter, UpperLetter, LowerRoman, UpperRoman, Chicago };

struct NoteSeries {
    int next = 1;
    NoteNumbering numbering = NoteNumbering::Arabic;
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
                                             "fldinst",
                                             "nonesttables",
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
        {"zwj", 0x200D},     {"zwnj", 0x200C}};
    const auto it = named.constFind(word);
    if (it == named.constEnd()) return std::nullopt;
    return *it;
}

std::optional<NoteNumbering> noteNumbering(const QByteArray& word) {
    static const QHash<QByteArray, NoteNumbering> numberings = {
        {"ftnnar", NoteNumbering::Arabic},       {"ftnnalc", NoteNumbering::LowerLetter},
        {"ftnnauc", NoteNumbering::UpperLetter}, {"ftnnrlc", NoteNumbering::LowerRoman},
        {"ftnnruc", NoteNumbering::UpperRoman},  {"ftnnchi", NoteNumbering::Chicago}};
    const auto it = numberings.constFind(word);
    if (it == numberings.constEnd()) return std::nullopt;
    return *it;
}

// A note's reference as word processors number them: 1, 2, 3; a, b, ... z, aa, bb; i, ii, iii;
// or *, †, ‡, §, **, ... Numbers beyond what a repeated mark can sensibly show are written plainly.
QString noteNumber(int n, NoteNumbering numbering) {
    constexpr int kMostRepeats = 10;
    switch (numbering) {
        case NoteNumbering::LowerLetter:
        case NoteNumbering::UpperLetter: {
            if (n > 26 * kMostRepeats) break;
            const QString letters(((n - 1) / 26) + 1, QChar(u'a' + (n - 1) % 26));
            return numbering == NoteNumbering::UpperLetter ? letters.toUpper() : letters;
        }
        case NoteNumbering::LowerRoman:
        case NoteNumbering::UpperRoman: {
            if (n >= 4000) break;
            static const std::pair<int, const char*> numerals[] = {
                {1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
                {40, "xl"},  {10, "x"},   {9, "ix"},  {5, "v"},    {4, "iv"},  {1, "i"}};
            QString roman;
            for (const auto& [value, numeral] : numerals)
                for (; n >= value; n -= value)
                    roman += QLatin1String(numeral);
            return numbering == NoteNumbering::UpperRoman ? roman.toUpper() : roman;
        }
        case NoteNumbering::Chicago: {
            if (n > 4 * kMostRepeats) break;
            static const char16_t marks[] = {u'*', 0x2020, 0x2021, 0x00A7};
            return QString(((n - 1) / 4) + 1, QChar(marks[(n - 1) % 4]));
        }
        case NoteNumbering::Arabic:
            break;
    }
    return QString::number(n);
}

class Reader {
public:
    explicit Reader(const QByteArray& rtf)
        : m_in(rtf) {}

    bool read(ReadError& failure);
    void fill(QTextDocument& document) const;

private:
    // The steps of read(), each at m_pos: false when nothing more is read.
    void openGroup();
    bool closeGroup();
    bool backslash(); // a control symbol, a \'hh byte or a control word
    bool hexByte();
    bool controlWordAt();
    void plainByte(char c);
    // Symbol fonts' codes as the characters they show, once the font table is known.
    void resolveSymbolFonts();
    void controlWord(const QByteArray& word, bool hasParam, int param);
    // controlWord() by where it stands: in the font table, the colour table, or the text, where
    // a word changes the document's structure, the characters or the paragraph. The text's
    // kinds return false for a word that is not theirs.
    void fontTableWord(const QByteArray& w, bool hasParam, int param);
    void colorTableWord(const QByteArray& w, int param);
    bool structureWord(const QByteArray& w, int param);
    bool charWord(const QByteArray& w, bool hasParam, int param);
    void paragraphWord(const QByteArray& w, int param);
    bool optionalDestination(const QByteArray& word);
    void destinationWord(const QByteArray& word, bool hasParam, int param);
    void controlSymbol(char c);
    void text(char16_t c);
    void textAs(char16_t c, const CharState& chars);
    void append(char16_t c, const CharState& chars);
    // A byte of text in the current font's code page; bytes are decoded together, since a
    // character of a double-byte code page comes as two of them.
    void textByte(char b);
    void flushBytes();
    // One unit of the fallback text after \uN: a byte (-1 for a control word or symbol).
    void skipFallback(int byte);
    void unicode(int code);
    int currentFont() const;
    int currentCodePage() const;
    int fontCodePage(int font) const;
    QString fontName(int font) const;
    SymbolFont symbolFont(int font) const;
    void endFontName();
    void endCell();
    void endParagraph(bool row = false);
    void emitNoteNumber();
    int listLevelFont(int list, int level) const;
    void resolveLabelSymbols(Paragraph& p) const;
    Group& top() { return m_groups.back(); }
    const Group& top() const { return m_groups.back(); }
    bool skipping() const { return m_groups.back().destination == Destination::Skip; }
    QTextCharFormat charFormat(const CharState& state) const;

    const QByteArray& m_in;
    qsizetype m_pos = 0;
    qsizetype m_wordAt = -1;     // where the control word being handled starts
    qsizetype m_optionalAt = -1; // where a control word right after \* would start
    std::vector<Group> m_groups;
    std::vector<Paragraph> m_paragraphs{1};
    bool m_paragraphOpen = false; // text or a change since the last \par
    int m_defaultFont = 0;
    int m_pendingSkip = 0;   // fallback characters still to drop after \uN
    bool m_skipLead = false; // the last byte dropped began a two-byte character
    CharState m_finalChars;  // the state when the document's group closed
    QHash<int, QString> m_fonts;
    QSet<int> m_symbolCharsetFonts; // \fcharset2: bytes are font codes, not characters
    int m_fontNumber = 0;           // the font table entry being read
    QByteArray m_fontName;
    int m_documentCodePage = 1252;   // \ansicpg, or the character set (\mac, \pc, \pca)
    bool m_codePageGiven = false;    // \ansicpg was read
    bool m_mac = false;              // \mac: a document from a Macintosh
    QHash<int, int> m_fontCodePages; // from \fcharset or \cpg
    QByteArray m_bytes;              // text bytes not decoded yet
    int m_bytesCodePage = 1252;
    std::vector<ColorEntry> m_colors;
    ColorEntry m_color;
    std::vector<ListFonts> m_lists;
    std::vector<ListOverride> m_listOverrides;
    bool m_cellEnded = false; // a cell ended: a tab goes before the next cell's text
    CharState m_cellChars;
    NoteSeries m_footnotes;
    NoteSeries m_endnotes{1, NoteNumbering::LowerRoman};
    std::optional<CharState> m_noteAnchor; // \chftn read, its number not written yet
    bool m_endnote = false;                // the note being read is an endnote (\ftnalt)
};

bool Reader::read(ReadError& failure) {
    const qsizetype n = m_in.size();
    // Leading white space is tolerated; the text must open with "{\rtf".
    while (m_pos < n &&
           (m_in[m_pos] == ' ' || m_in[m_pos] == '\r' || m_in[m_pos] == '\n' || m_in[m_pos] == '\t'))
        ++m_pos;
    if (!m_in.mid(m_pos, 5).startsWith("{\\rtf"))
        return fail(&failure, ReadError::atByte(QStringLiteral("Teksti ei ole RTF-muotoista"), m_pos));

    // Each step reads one brace, control or byte; a step that returns false has reached the end
    // of what is read (the document's group closed, or the text ends inside a control).
    bool more = true;
    while (more && m_pos < n) {
        const char c = m_in[m_pos];
        if (c == '{')
            openGroup();
        else if (c == '}')
            more = closeGroup();
        else if (c == '\\')
            more = backslash();
        else
            plainByte(c);
    }
    flushBytes();
    if (!m_groups.empty()) {
        return fail(
            &failure,
            ReadError::endsAt(
                QStringLiteral("RTF-teksti päättyy kesken"), n,
                QStringLiteral("tavussa %1 alkanut ryhmä jää sulkematta").arg(m_groups.back().openedAt)));
    }
    // A last paragraph without \par keeps the format it ended in.
    Paragraph& last = m_paragraphs.back();
    last.endChars = last.runs.empty() ? m_finalChars : last.runs.back().chars;
    resolveLabelSymbols(last);
    resolveSymbolFonts();
    return true;
}

void Reader::openGroup() {
    flushBytes();
    m_pendingSkip = 0;
    m_skipLead = false;
    Group g = m_groups.empty() ? Group{} : top();
    g.openedAt = m_pos;
    m_groups.push_back(g);
    ++m_pos;
}

bool Reader::closeGroup() {
    flushBytes();
    m_pendingSkip = 0;
    m_skipLead = false;
    const Destination closing = top().destination;
    if (closing == Destination::FontTable) endFontName();
    if (m_groups.size() == 1) {
        emitNoteNumber();
        m_finalChars = top().chars;
    }
    m_groups.pop_back();
    ++m_pos;
    if (m_groups.empty()) return false; // the document's own group closed; what follows is not read
    // A footnote's reference number is written where it is anchored once the note has said
    // whether it is a footnote or an endnote.
    if (closing == Destination::Footnote && top().destination != Destination::Footnote) emitNoteNumber();
    return true;
}

bool Reader::backslash() {
    const qsizetype n = m_in.size();
    if (m_pos + 1 >= n) return false; // reported by read() as a text that ends early
    const char next = m_in[m_pos + 1];
    if (std::isalpha(static_cast<unsigned char>(next))) return controlWordAt();
    if (next == '\'') return hexByte();
    m_pos += 2;
    if (m_pendingSkip > 0) {
        // An escaped \, { or } stands for its byte, the trail byte of a pair too.
        skipFallback(next == '\\' || next == '{' || next == '}' ? static_cast<uchar>(next) : -1);
        return true;
    }
    if (next != '\\' && next != '{' && next != '}') flushBytes();
    controlSymbol(next);
    return true;
}

bool Reader::hexByte() {
    if (m_pos + 3 >= m_in.size()) return false;
    bool ok = false;
    const int byte = m_in.mid(m_pos + 2, 2).toInt(&ok, 16);
    m_pos += 4;
    if (!ok) return true;
    if (m_pendingSkip > 0)
        skipFallback(byte);
    else if (top().destination == Destination::FontTable)
        m_fontName.append(static_cast<char>(byte));
    else
        textByte(static_cast<char>(byte));
    return true;
}

bool Reader::controlWordAt() {
    // A control word: letters, an optional signed number, and an optional space.
    const qsizetype n = m_in.size();
    flushBytes();
    m_wordAt = m_pos;
    qsizetype p = m_pos + 1;
    while (p < n && p - m_pos <= 32 && std::isalpha(static_cast<unsigned char>(m_in[p])))
        ++p;
    const QByteArray word = m_in.mid(m_pos + 1, p - m_pos - 1);
    bool negative = false;
    if (p < n && m_in[p] == '-' && p + 1 < n && std::isdigit(static_cast<unsigned char>(m_in[p + 1]))) {
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
            return false;
        }
        m_pos += param;
        return true;
    }
    if (m_pendingSkip > 0 && word != "u") {
        skipFallback(-1);
        return true;
    }
    m_pendingSkip = 0;
    m_skipLead = false;
    controlWord(word, hasParam, param);
    return true;
}

void Reader::plainByte(char c) {
    ++m_pos;
    if (c == '\r' || c == '\n' || c == '\0') return;
    if (m_pendingSkip > 0) {
        skipFallback(static_cast<uchar>(c));
        return;
    }
    const Destination d = top().destination;
    if (d == Destination::FontTable) {
        if (c == ';')
            endFontName();
        else
            m_fontName.append(c);
        return;
    }
    if (d == Destination::ColorTable) {
        if (c == ';') {
            m_colors.push_back(m_color);
            m_color = ColorEntry{};
        }
        return;
    }
    if (d != Destination::Text) return;
    if (c == '\t') {
        flushBytes();
        text(u'\t');
        return;
    }
    if (static_cast<unsigned char>(c) < 0x20) return;
    textByte(c);
}

void Reader::resolveSymbolFonts() {
    // Symbol codes are the characters of the font they show in, which a font table after the text
    // may still have named; read as characters they show in the text font.
    for (Paragraph& p : m_paragraphs) {
        std::vector<Run> runs;
        runs.reserve(p.runs.size());
        for (Run& r : p.runs) {
            const SymbolFont table = symbolFont(r.chars.font == -1 ? m_defaultFont : r.chars.font);
            if (table == SymbolFont::None) {
                runs.push_back(std::move(r));
                continue;
            }
            CharState text = r.chars;
            text.font = kTextFont;
            for (const QChar c : r.text) {
                const char16_t mapped = c.unicode() >= 0xF020 ? symbolFontCharacter(table, c.unicode()) : 0;
                const CharState& chars = mapped ? text : r.chars;
                if (runs.empty() || !(runs.back().chars == chars)) runs.push_back(Run{QString(), chars});
                runs.back().text.append(mapped ? QChar(mapped) : c);
            }
        }
        p.runs = std::move(runs);
    }
}

void Reader::skipFallback(int byte) {
    if (m_pendingSkip <= 0) {
        m_skipLead = false;
        return;
    }
    --m_pendingSkip;
    // A fallback in a double-byte code page is counted in bytes, but some writers count its
    // characters: a lead byte at the end of the count takes its trail byte with it.
    if (byte < 0 || m_skipLead)
        m_skipLead = false;
    else
        m_skipLead = isLeadByte(currentCodePage(), static_cast<uchar>(byte));
    if (m_pendingSkip == 0 && m_skipLead) m_pendingSkip = 1;
}

void Reader::controlSymbol(char c) {
    if (skipping()) return;
    if (c == '*') {
        // An optional destination: skipped unless it is one of the few this reader knows.
        top().destination = Destination::Skip;
        m_optionalAt = m_pos;
        return;
    }
    switch (c) {
        case '\\':
        case '{':
        case '}':
            // A byte like any other: the trail byte of a two-byte character may be one of these.
            if (top().destination == Destination::FontTable)
                m_fontName.append(c);
            else
                textByte(c);
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

// The destinations that may come after \* and that this reader reads; true when `word` opened one.
bool Reader::optionalDestination(const QByteArray& word) {
    static const QHash<QByteArray, Destination> known = {
        {"footnote", Destination::Footnote},
        {"listtable", Destination::ListTable},
        {"listoverridetable", Destination::ListOverrideTable},
        {"nesttableprops", Destination::NestedRow}};
    const auto it = known.constFind(word);
    if (it == known.constEnd()) return false;
    top().destination = *it;
    if (*it == Destination::Footnote) m_endnote = false;
    return true;
}

// Control words inside the destinations that are read for one thing only.
void Reader::destinationWord(const QByteArray& w, bool hasParam, int param) {
    switch (top().destination) {
        case Destination::ListTable:
            if (w == "list") {
                m_lists.emplace_back();
            } else if (m_lists.empty()) {
            } else if (w == "listlevel") {
                m_lists.back().levelFonts.push_back(-1);
            } else if (w == "f" && hasParam && !m_lists.back().levelFonts.empty()) {
                m_lists.back().levelFonts.back() = param;
            } else if (w == "listid") {
                m_lists.back().id = param;
            }
            break;
        case Destination::ListOverrideTable:
            if (w == "listoverride")
                m_listOverrides.emplace_back();
            else if (w == "listid" && !m_listOverrides.empty())
                m_listOverrides.back().list = param;
            else if (w == "ls" && !m_listOverrides.empty())
                m_listOverrides.back().number = param;
            break;
        case Destination::Footnote:
            if (w == "ftnalt") m_endnote = true;
            break;
        case Destination::NestedRow:
            // A table in a table cell ends its rows here; the cells were ended by \nestcell.
            if (w == "nestrow") {
                m_cellEnded = false;
                endParagraph(true);
            }
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
                unicode(code);
            }
        }
        if (g.destination != Destination::FontTable) m_pendingSkip = g.unicodeSkip;
        m_skipLead = false;
        return;
    }
    if (w == "uc") {
        g.unicodeSkip = std::clamp(param, 0, 16);
        return;
    }
    if ((m_wordAt == m_optionalAt || g.destination == Destination::Text) && optionalDestination(w)) return;
    if (skipping()) return;
    if (isSkippedDestination(w)) {
        g.destination = Destination::Skip;
        return;
    }
    if (w == "ansicpg") {
        if (hasParam && param > 0) m_documentCodePage = param;
        m_codePageGiven = true;
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
    if (g.destination == Destination::FontTable)
        fontTableWord(w, hasParam, param);
    else if (g.destination == Destination::ColorTable)
        colorTableWord(w, param);
    else if (g.destination != Destination::Text)
        destinationWord(w, hasParam, param);
    else if (!structureWord(w, param) && !charWord(w, hasParam, param))
        paragraphWord(w, param);
}

void Reader::fontTableWord(const QByteArray& w, bool hasParam, int param) {
    if (w == "f") {
        endFontName();
        m_fontNumber = param;
    } else if (w == "fcharset") {
        // In a Macintosh document the Japanese character set is Apple's.
        if (int cp = codePageOfCharset(param))
            m_fontCodePages.insert(m_fontNumber, cp == 932 && m_mac ? 10001 : cp);
        if (param == 2)
            m_symbolCharsetFonts.insert(m_fontNumber);
        else
            m_symbolCharsetFonts.remove(m_fontNumber);
    } else if (w == "cpg" && hasParam && param > 0) {
        m_fontCodePages.insert(m_fontNumber, param);
    }
}

void Reader::colorTableWord(const QByteArray& w, int param) {
    const int v = std::clamp(param, 0, 255);
    if (w == "red") m_color.red = v, m_color.given = true;
    if (w == "green") m_color.green = v, m_color.given = true;
    if (w == "blue") m_color.blue = v, m_color.given = true;
}

bool Reader::structureWord(const QByteArray& w, int param) {
    Group& g = top();
    CharState& ch = g.chars;
    ParaState& para = g.para;
    if (auto named = namedCharacter(w)) {
        text(*named);
    } else if (w == "par" || w == "page" || w == "sect") {
        endParagraph();
    } else if (w == "cell" || w == "nestcell") {
        endCell();
    } else if (w == "row" || w == "nestrow") {
        m_cellEnded = false;
        endParagraph();
    } else if (w == "pard") {
        para = ParaState{};
    } else if (w == "plain") {
        ch = CharState{};
    } else if (w == "deff") {
        m_defaultFont = param;
    } else if (w == "mac" || w == "pc" || w == "pca") {
        // The character set of a document that names no code page.
        if (!m_codePageGiven) m_documentCodePage = w == "mac" ? 10000 : w == "pc" ? 437 : 850;
        m_mac = w == "mac";
    } else if (w == "listtext" || w == "pntext") {
        g.listLabel = true;
    } else if (w == "ls") {
        para.list = param;
    } else if (w == "ilvl") {
        para.level = std::clamp(param, 0, 8);
    } else if (w == "chftn") {
        // A footnote's reference: its number is known when the note itself has been read.
        emitNoteNumber();
        m_noteAnchor = ch;
    } else if (w == "ftnstart") {
        m_footnotes.next = std::clamp(param, 1, 32767);
    } else if (w == "aftnstart") {
        m_endnotes.next = std::clamp(param, 1, 32767);
    } else if (const auto numbering = noteNumbering(w.startsWith('a') ? w.mid(1) : w)) {
        (w.startsWith('a') ? m_endnotes : m_footnotes).numbering = *numbering;
    } else {
        return false;
    }
    return true;
}

bool Reader::charWord(const QByteArray& w, bool hasParam, int param) {
    CharState& ch = top().chars;
    const bool on = !hasParam || param != 0;
    if (w == "b") {
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
    } else {
        return false;
    }
    return true;
}

void Reader::paragraphWord(const QByteArray& w, int param) {
    ParaState& para = top().para;
    if (w == "ql") {
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

void Reader::unicode(int code) {
    const auto c = static_cast<char16_t>(code);
    const int font = currentFont();
    text(c);
    // A symbol font's code as Windows gives it (U+F020..U+F0FF) is read as the character its font
    // shows once the whole document is read. A bullet in a list label whose font was left out
    // (LibreOffice writes them so) is the character of the font the list's level names, known
    // when the paragraph says its list.
    if (c >= 0xF020 && c <= 0xF0FF && top().listLabel && top().destination == Destination::Text &&
        symbolFont(font) == SymbolFont::None && !m_symbolCharsetFonts.contains(font)) {
        Paragraph& p = m_paragraphs.back();
        if (!p.runs.empty() && !p.runs.back().text.isEmpty())
            p.labelSymbols.push_back({p.runs.size() - 1, p.runs.back().text.size() - 1});
    }
}

void Reader::append(char16_t c, const CharState& chars) {
    if (c == u'\n' || c == u'\r' || c == 0x2029) c = 0x2028; // a paragraph ends only at \par
    if (c == 0xFFFC || c == 0) return;
    Paragraph& p = m_paragraphs.back();
    if (!m_paragraphOpen) {
        p.para = top().para;
        m_paragraphOpen = true;
    }
    if (p.runs.empty() || !(p.runs.back().chars == chars)) p.runs.push_back(Run{QString(), chars});
    p.runs.back().text.append(QChar(c));
}

void Reader::text(char16_t c) {
    if (top().destination != Destination::Text) return;
    textAs(c, top().chars);
}

void Reader::textAs(char16_t c, const CharState& chars) {
    emitNoteNumber();
    if (m_cellEnded) {
        m_cellEnded = false;
        append(u'\t', m_cellChars);
    }
    append(c, chars);
}

// Cells of a table row are read as one paragraph with a tab between cells; the tab is written
// when the next cell's text comes, so a row does not end in one.
void Reader::endCell() {
    if (m_cellEnded) append(u'\t', m_cellChars);
    m_cellEnded = true;
    m_cellChars = top().chars;
}

void Reader::emitNoteNumber() {
    if (!m_noteAnchor) return; // a note with a mark of its own, which is in the text already
    const CharState anchor = *m_noteAnchor;
    m_noteAnchor.reset();
    if (m_cellEnded) {
        m_cellEnded = false;
        append(u'\t', m_cellChars);
    }
    NoteSeries& series = m_endnote ? m_endnotes : m_footnotes;
    m_endnote = false;
    for (const QChar c : noteNumber(series.next, series.numbering))
        append(c.unicode(), anchor);
    series.next = std::min(series.next + 1, 32767);
}

int Reader::currentFont() const {
    const int font = top().chars.font;
    return font < 0 ? m_defaultFont : font;
}

int Reader::fontCodePage(int font) const {
    return m_fontCodePages.value(font, m_documentCodePage);
}

int Reader::currentCodePage() const {
    return fontCodePage(currentFont());
}

SymbolFont Reader::symbolFont(int font) const {
    return font == kTextFont ? SymbolFont::None : symbolFontNamed(fontName(font));
}

void Reader::textByte(char b) {
    if (top().destination != Destination::Text) return;
    const int font = currentFont();
    if (m_symbolCharsetFonts.contains(font)) {
        // Bytes in a symbol font are the font's codes: the character the font shows for each, or
        // Windows' private-use character for a code the font's table does not name.
        flushBytes();
        const auto code = static_cast<char16_t>(static_cast<uchar>(b));
        if (const char16_t mapped = symbolFontCharacter(symbolFont(font), code)) {
            CharState chars = top().chars;
            chars.font = kTextFont;
            textAs(mapped, chars);
        } else {
            text(code < 0x20 ? code : char16_t(0xF000 + code));
        }
        return;
    }
    const int codePage = fontCodePage(font);
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

void Reader::endParagraph(bool row) {
    const Group& g = top();
    if (g.destination != Destination::Text && !(row && g.destination == Destination::NestedRow)) return;
    emitNoteNumber();
    m_cellEnded = false;
    // Paragraph properties count as they stand at the paragraph's end.
    Paragraph& p = m_paragraphs.back();
    p.para = g.para;
    p.endChars = g.chars;
    resolveLabelSymbols(p);
    m_paragraphs.emplace_back();
    m_paragraphOpen = false;
}

int Reader::listLevelFont(int list, int level) const {
    if (list <= 0) return -1;
    const auto override = std::find_if(m_listOverrides.rbegin(), m_listOverrides.rend(),
                                       [&](const ListOverride& o) { return o.number == list; });
    if (override == m_listOverrides.rend()) return -1;
    const auto fonts = std::find_if(m_lists.rbegin(), m_lists.rend(),
                                    [&](const ListFonts& l) { return l.id == override->list; });
    if (fonts == m_lists.rend() || level >= static_cast<int>(fonts->levelFonts.size())) return -1;
    return fonts->levelFonts[level];
}

void Reader::resolveLabelSymbols(Paragraph& p) const {
    if (p.labelSymbols.empty()) return;
    const int font = listLevelFont(p.para.list, p.para.level);
    SymbolFont table = font >= 0 ? symbolFont(font) : SymbolFont::None;
    // A level in a symbol font the tables do not know keeps the codes; without a font to go by,
    // the label is read as the Symbol font, where Windows' bullets come from.
    if (table == SymbolFont::None && !(font >= 0 && m_symbolCharsetFonts.contains(font)))
        table = SymbolFont::Symbol;
    for (const LabelSymbol& s : p.labelSymbols) {
        QChar& c = p.runs[s.run].text[s.at];
        if (const char16_t mapped = symbolFontCharacter(table, c.unicode())) c = QChar(mapped);
    }
    p.labelSymbols.clear();
}

// The name text in the font shows with: a font the table does not name shows in the default font.
QString Reader::fontName(int font) const {
    const QString name = m_fonts.value(font);
    return name.isEmpty() ? m_fonts.value(m_defaultFont) : name;
}

QTextCharFormat Reader::charFormat(const CharState& s) const {
    QTextCharFormat f;
    QString family = fontName(s.font == kTextFont || s.font < 0 ? m_defaultFont : s.font);
    // The text font is the default font, unless that is a symbol font itself: then the editor's.
    if (s.font == kTextFont &&
        (symbolFont(m_defaultFont) != SymbolFont::None || m_symbolCharsetFonts.contains(m_defaultFont)))
        family.clear();
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

bool ReadRtf(const QByteArray& rtf, QTextDocument& document, QString* error, ReadError* where) {
    registerRichTextFontSubstitutes();
    Reader reader(rtf);
    ReadError failure;
    if (!reader.read(failure)) {
        // The message is a sentence of its own.
        if (error) *error = failure.text() + QLatin1Char('.');
        return fail(where, failure);
    }
    reader.fill(document);
    return true;
}

} // namespace platform
