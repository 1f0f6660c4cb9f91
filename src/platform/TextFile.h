#pragma once
// Text files of the program: Windows-1252 with CR LF line ends.
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

class QIODevice;

namespace platform {

// Splits decoded text into lines. CR LF, a lone CR and a lone LF all end a line, so files
// from either platform are read alike. A final line end does not start an empty last line.
QStringList splitLines(const QString& text);

// Decodes the bytes of a text file: Windows-1252, unless they begin with a UTF-8 byte-order
// mark (which is dropped) or hold multi-byte UTF-8 sequences and nothing that is not UTF-8,
// as spreadsheet programs write ".csv" files today.
QString decodeText(const QByteArray& bytes);

// Reads a whole text file as lines (decoded by decodeText). On failure returns false and puts the system's
// description of the error, in Finnish where Qt has one, into `error`.
bool readTextLines(const QString& path, QStringList& lines, QString* error = nullptr);

// Joins lines with CR LF after each line and encodes them.
QByteArray encodeLines(const QStringList& lines, QString* unencodable = nullptr);

// Writes lines with CR LF after each, replacing the file atomically. Characters outside
// the code page are written as "?" and listed in `unencodable` when it is given.
bool writeTextLines(const QString& path, const QStringList& lines, QString* error = nullptr,
                    QString* unencodable = nullptr);

// Writes raw bytes atomically: a temporary file in the same folder, flushed to the disk and
// renamed over the target, so that a crash, a kill or a full disk leaves the old file whole.
bool writeFileAtomically(const QString& path, const QByteArray& bytes, QString* error = nullptr);
// The same for a file made as it is written: `write` puts the bytes into the temporary file
// (it may seek back in it) and returns false on a failure, which leaves the old file whole.
bool writeFileAtomically(const QString& path, const std::function<bool(QIODevice&)>& write,
                         QString* error = nullptr);

// Reads a whole file; false with the error description when it cannot be read.
bool readFileBytes(const QString& path, QByteArray& bytes, QString* error = nullptr);

} // namespace platform
