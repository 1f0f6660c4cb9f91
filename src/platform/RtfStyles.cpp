// The named text styles of the rich-text boxes (FormatRichText) and the custom style.
#include "platform/Rtf.h"

#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <functional>
#include <vector>

namespace platform {

namespace {

using Change = std::function<void(QTextCharFormat&, qreal pointSize)>;

// Changes each piece of the selection from its own format, so that a style that depends on the
// font size (superscript) follows the size of every piece. Without a selection the change goes
// to what is typed next, and to the paragraph itself when it is empty.
void applyToSelection(QTextCursor& cursor, const Change& change) {
    QTextDocument* doc = cursor.document();
    if (!doc) return;
    const qreal basePoints = doc->defaultFont().pointSizeF();
    auto changed = [&](QTextCharFormat f) {
        const qreal before = f.hasProperty(QTextFormat::FontPointSize) ? f.fontPointSize() : basePoints;
        change(f, before > 0 ? before : 12);
        // Keep the shown offset in step with a size the change may have set.
        setBaselineOffsetHalfPoints(f, baselineOffsetHalfPoints(f), basePoints);
        return f;
    };
    if (!cursor.hasSelection()) {
        const QTextCharFormat f = changed(cursor.charFormat());
        cursor.setCharFormat(f);
        if (cursor.block().length() <= 1) cursor.setBlockCharFormat(f);
        return;
    }
    const int start = cursor.selectionStart();
    const int end = cursor.selectionEnd();
    struct Range {
        int from, to;
        QTextCharFormat format;
    };
    std::vector<Range> ranges;
    std::vector<QTextBlock> emptyBlocks;
    for (QTextBlock b = doc->findBlock(start); b.isValid() && b.position() <= end; b = b.next()) {
        if (b.length() <= 1) emptyBlocks.push_back(b);
        for (auto it = b.begin(); !it.atEnd(); ++it) {
            const QTextFragment fr = it.fragment();
            const int from = std::max(start, fr.position());
            const int to = std::min(end, fr.position() + fr.length());
            if (from < to) ranges.push_back(Range{from, to, fr.charFormat()});
        }
    }
    cursor.beginEditBlock();
    for (const Range& r : ranges) {
        QTextCursor c(doc);
        c.setPosition(r.from);
        c.setPosition(r.to, QTextCursor::KeepAnchor);
        c.setCharFormat(changed(r.format));
    }
    for (const QTextBlock& b : emptyBlocks) {
        QTextCursor c(b);
        c.setBlockCharFormat(changed(b.charFormat()));
    }
    cursor.endEditBlock();
}

} // namespace

bool FormatRichText(QTextCursor& cursor, const QString& style) {
    registerRichTextFontSubstitutes();
    Change change;
    if (style == QLatin1String("Default")) {
        change = [](QTextCharFormat& f, qreal) { f.merge(defaultStyleFormat()); };
    } else if (style == QLatin1String("Normal")) {
        change = [](QTextCharFormat& f, qreal) {
            f.setForeground(QColor(Qt::black));
            f.setFontWeight(QFont::Normal);
            f.setFontItalic(false);
            f.setFontPointSize(8);
        };
    } else if (style == QLatin1String("Header1") || style == QLatin1String("Header2")) {
        const qreal size = style == QLatin1String("Header1") ? 16 : 12;
        change = [size](QTextCharFormat& f, qreal) {
            f.setFontWeight(QFont::Bold);
            f.setFontItalic(false);
            f.setFontPointSize(size);
        };
    } else if (style == QLatin1String("Bold")) {
        change = [](QTextCharFormat& f, qreal) { f.setFontWeight(QFont::Bold); };
    } else if (style == QLatin1String("Italic")) {
        change = [](QTextCharFormat& f, qreal) { f.setFontItalic(true); };
    } else if (style == QLatin1String("Underline")) {
        change = [](QTextCharFormat& f, qreal) { f.setFontUnderline(true); };
    } else if (style == QLatin1String("Superscript")) {
        // Raised by its own height: the size in points is twice that many half-points.
        change = [](QTextCharFormat& f, qreal points) {
            setBaselineOffsetHalfPoints(f, qRound(points * 2), points);
        };
    } else if (style == QLatin1String("Subscript")) {
        change = [](QTextCharFormat& f, qreal) { setBaselineOffsetHalfPoints(f, 0); };
    } else {
        return false;
    }
    applyToSelection(cursor, change);
    return true;
}

void applyCustomStyle(QTextCursor& cursor, const QFont& font, const QColor& color) {
    applyToSelection(cursor, [&](QTextCharFormat& f, qreal) {
        f.setFontFamilies(QStringList{font.family()});
        if (font.pointSizeF() > 0) f.setFontPointSize(font.pointSizeF());
        f.setFontWeight(font.bold() ? QFont::Bold : QFont::Normal);
        f.setFontItalic(font.italic());
        f.setFontUnderline(font.underline());
        f.setFontStrikeOut(font.strikeOut());
        if (color.isValid()) f.setForeground(color);
    });
}

} // namespace platform
