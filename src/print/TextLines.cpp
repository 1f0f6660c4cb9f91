#include "print/TextLines.h"

namespace print {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

// Splits a word that is wider than a line into pieces that fit, each at least one character.
void splitLongWord(FontBook& fonts, const Font& font, const QString& word, double maxWidth,
                   QStringList& lines, QString& rest) {
    QString piece;
    for (QChar c : word) {
        if (!piece.isEmpty() && fonts.width(font, piece + c) >= maxWidth) {
            lines.append(piece);
            piece.clear();
        }
        piece += c;
    }
    rest = piece;
}

void wrapParagraph(FontBook& fonts, const Font& font, QStringView paragraph, double maxWidth,
                   QStringList& lines, bool& tooLong) {
    QString line;         // the words of the current line, each followed by its space
    double lineWidth = 0; // measured width of `line`
    auto addWord = [&](const QString& word, bool withSpace) {
        const QString piece = withSpace ? word + QLatin1Char(' ') : word;
        const double w = fonts.width(font, piece);
        if (!line.isEmpty() && lineWidth + fonts.width(font, word) >= maxWidth) {
            lines.append(line);
            line.clear();
            lineWidth = 0;
        }
        if (line.isEmpty() && fonts.width(font, word) >= maxWidth && word.size() > 1) {
            tooLong = true;
            QString rest;
            splitLongWord(fonts, font, word, maxWidth, lines, rest);
            line = withSpace ? rest + QLatin1Char(' ') : rest;
            lineWidth = fonts.width(font, line);
            return;
        }
        line += piece;
        lineWidth += w;
    };
    qsizetype start = 0;
    for (qsizetype i = 0; i < paragraph.size(); ++i) {
        if (paragraph[i] == QLatin1Char(' ')) {
            addWord(paragraph.mid(start, i - start).toString(), true);
            start = i + 1;
        }
    }
    if (start < paragraph.size()) addWord(paragraph.mid(start).toString(), false);
    lines.append(line);
}

} // namespace

QStringList WrapLines(FontBook& fonts, const Font& font, const QString& text, double maxWidth,
                      bool* tooLong) {
    QStringList lines;
    bool failed = false;
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = text.indexOf(kCrLf, start);
        if (end < 0) end = text.size();
        wrapParagraph(fonts, font, QStringView(text).mid(start, end - start), maxWidth, lines, failed);
        start = end + 2;
    }
    if (tooLong) *tooLong = failed;
    return lines;
}

bool InsertLineFeeds(FontBook& fonts, QString& text, const QString& fontName, double size, double maxWidth) {
    bool tooLong = false;
    const QStringList lines = WrapLines(fonts, Font{fontName, size}, text, maxWidth, &tooLong);
    QString out;
    for (const QString& l : lines) {
        out += l;
        out += kCrLf;
    }
    text = out;
    return !tooLong;
}

int EvaluateNRows(const QString& text) {
    return static_cast<int>(text.count(kCrLf));
}

QString ParseTextPage(const QString& text, int first, int last) {
    if (text.isEmpty() || last < first || last < 1) return QString();
    qsizetype begin = 0;
    int line = 1;
    while (line < first) {
        const qsizetype e = text.indexOf(kCrLf, begin);
        if (e < 0) return QString();
        begin = e + 2;
        ++line;
    }
    qsizetype end = begin;
    while (line <= last) {
        const qsizetype e = text.indexOf(kCrLf, end);
        if (e < 0) {
            end = text.size();
            break;
        }
        end = e + 2;
        ++line;
    }
    return text.mid(begin, end - begin);
}

int LastSpace(const QString& text) {
    return static_cast<int>(text.lastIndexOf(QLatin1Char(' ')) + 1);
}

QString CutToWidth(FontBook& fonts, const Font& font, QString text, const QString& mark, double maxWidth) {
    while (!text.isEmpty() && fonts.width(font, text + mark) > maxWidth)
        text.chop(1);
    return text.trimmed() + mark;
}

} // namespace print
