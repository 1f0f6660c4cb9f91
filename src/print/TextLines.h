#pragma once
// Wrapping and counting the lines of printed texts. Lines end with CR LF.
#include "print/Surface.h"

#include <QString>
#include <QStringList>

namespace print {

// The lines of a text wrapped to `maxWidth` twips in `font`. Paragraphs end at CR LF (a CR LF
// at the very end adds no empty paragraph). Words are collected up to each space; a word that
// would bring its line to the width starts the next line. A word longer than a whole line is
// split where the line is full, and `tooLong` is set. An empty text has no lines.
QStringList WrapLines(FontBook& fonts, const Font& font, const QString& text, double maxWidth,
                      bool* tooLong = nullptr);

// The text wrapped in place as the lines of WrapLines, each line closed with CR LF. Callers
// give the size and the width at scale 1, so that the preview at any zoom breaks lines where
// the printer does. Returns false when a word was too long for a line; the text is then still
// wrapped, that word split.
bool InsertLineFeeds(FontBook& fonts, QString& text, const QString& fontName, double size, double maxWidth);
inline const QString kWordTooLong = QStringLiteral("Sanan pituus on liian suuri. Rivitys ei onnistu.");

// `text` cut at its end until it with `mark` after it fits `maxWidth` twips in `font`; blanks at
// the cut go. A value that goes on past its room ends with "…" so.
QString CutToWidth(FontBook& fonts, const Font& font, QString text, const QString& mark, double maxWidth);

// The number of CR LF pairs in a text; 0 for an empty text.
int EvaluateNRows(const QString& text);

// Lines `first` to `last` (1-based) of a text whose lines end with CR LF, each with its CR LF;
// the last line of the text may lack it. An empty text gives an empty text.
QString ParseTextPage(const QString& text, int first, int last);

// The 1-based position of the last space in a text; 0 when there is none.
int LastSpace(const QString& text);

} // namespace print
