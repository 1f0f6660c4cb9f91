#pragma once
// Rich text of the program's text boxes as RTF. Qt reads and writes only HTML and Markdown, so
// the reader and writer here are our own, over QTextDocument.
//
// What a document carries, and how it maps to RTF:
// - paragraphs (\par) with alignment (\ql \qc \qr \qj) and indents (\li \ri \fi, twips; in the
//   document 15 twips make one unit of QTextBlockFormat's margins);
// - tabs (\tab) and line breaks inside a paragraph (\line, U+2028 in the document);
// - per character: font name (\f), size (\fs, half-points), bold, italic, underline,
//   strike-through, colour (\cf; no foreground brush means the automatic colour \cf0), and a
//   baseline offset for super- and subscript (\up / \dn, half-points).
//
// The baseline offset lives in the user property `kBaselineOffsetProperty` of QTextCharFormat, in
// half-points, positive up. QTextCharFormat's own vertical alignment has no distance, so it is not
// used; Qt's percentage baseline offset is kept in step with it only so that the editor shows the
// raised text.
//
// The writer is deterministic: the same document always gives the same bytes, and a document
// read from the writer's output writes back byte for byte the same.
#include <QByteArray>
#include <QColor>
#include <QFont>
#include <QString>
#include <QTextFormat>

class QTextCharFormat;
class QTextCursor;
class QTextDocument;

namespace platform {

struct ReadError;

// QTextCharFormat property holding the baseline offset in half-points (int, positive raises).
constexpr int kBaselineOffsetProperty = QTextFormat::UserProperty + 0x5254;

int baselineOffsetHalfPoints(const QTextCharFormat& format);
// Sets the offset (0 removes it) and Qt's display percentage from the format's font size.
void setBaselineOffsetHalfPoints(QTextCharFormat& format, int halfPoints, qreal fallbackPointSize = 12);

// RTF 1.x text of the document: font and colour tables, paragraphs and character formats.
QByteArray WriteRtf(const QTextDocument& document);

// Reads RTF into the document, replacing its content. On failure returns false, leaves the
// document as it was and puts into `error` what is wrong and at which byte, and into `where`
// the place (the byte it stopped at). Destinations the program does not use (pictures, style
// sheets, document information, ...) are skipped.
bool ReadRtf(const QByteArray& rtf, QTextDocument& document, QString* error = nullptr,
             ReadError* where = nullptr);

// The character format of the "Default" style: font "MS Sans Serif", black, not bold, not
// italic, 8 points.
QTextCharFormat defaultStyleFormat();

// Replaces the document's content with plain text in the "Default" style. CR LF, CR and LF all
// end a paragraph.
void loadPlainTextAsDefault(QTextDocument& document, const QString& text);

// The document as plain text with CR LF between paragraphs and for line breaks.
QString plainTextWithCrLf(const QTextDocument& document);

// Applies a named text style to the cursor's selection, or to what is typed next when nothing
// is selected (take the editor's cursor, apply, and give it back with setTextCursor):
// "Default", "Normal", "Header1", "Header2", "Bold", "Italic", "Underline", "Superscript"
// (raised by the font size of each piece of text), "Subscript" (back on the base line).
// Returns false for any other name; "Custom" needs the font and colour dialogs, the caller asks
// them and calls applyCustomStyle.
bool FormatRichText(QTextCursor& cursor, const QString& style);

// The font dialog's choice: name, size, bold, italic, underline and strike-through, and colour.
void applyCustomStyle(QTextCursor& cursor, const QFont& font, const QColor& color);

// True when the name says rich text: longer than four characters and ending in ".RTF" in any
// letter case. Everything else is plain text.
bool isRtfFileName(const QString& fileName);

// Saves the document as RTF or, by the name, as plain Windows-1252 text with CR LF (characters
// outside the code page become "?"). The file is replaced atomically.
bool WriteRtfFile(const QTextDocument& document, const QString& fileName, QString* error = nullptr);

// Loads a file saved by WriteRtfFile or any other program, with the same rule for the format.
// Plain text is shown in the "Default" style. On failure the document is left as it was.
bool ReadRtfFile(QTextDocument& document, const QString& fileName, QString* error = nullptr);

// Makes "MS Sans Serif", the name the documents carry, show in the system's sans-serif font.
void registerRichTextFontSubstitutes();

} // namespace platform
