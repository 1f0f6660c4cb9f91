#pragma once
// Windows-1252, the single-byte code page of every text file the program reads or writes.
#include <QByteArray>
#include <QString>

namespace platform {

// Decodes Windows-1252 bytes. The five unassigned bytes map to the C1 controls of the same value.
QString fromCp1252(const QByteArray& bytes);
QString fromCp1252(const char* data, qsizetype size);

// Encodes text as Windows-1252. Characters outside the code page become "?"; when `unencodable`
// is given, each of them is appended to it once, so the caller can tell the user which ones.
QByteArray toCp1252(const QString& text, QString* unencodable = nullptr);
// The same, appended to `out`: a long text written piece by piece needs no copy of the whole.
void appendCp1252(QByteArray& out, QStringView text, QString* unencodable = nullptr);

// True when every character of the text has a Windows-1252 byte.
bool isCp1252(QStringView text);

} // namespace platform
