#pragma once
// Text in the single- and double-byte code pages of other systems (RTF documents declare theirs
// with \ansicpg and per font with \fcharset or \cpg).
#include <QByteArray>
#include <QString>

namespace platform {

// Decodes bytes of a Windows code page (1250 .. 1258, 874, 932, 936, 949, 950, 1361, 437, 850,
// 10000 for Mac Roman, 10001 for Mac Japanese). Windows-1252 and any code page this system cannot
// convert decode as Windows-1252; a byte sequence that is not valid in its code page becomes
// U+FFFD. Bytes of a double-byte code page must come with both bytes of each character.
QString decodeCodePage(const QByteArray& bytes, int codePage);

// True when the byte starts a two-byte character in the code page (932, 936, 949, 950, 1361,
// 10001); always false in single-byte code pages.
bool isLeadByte(int codePage, uchar b);

// The code page of an RTF font character set (\fcharsetN); 0 when the set names no code page
// of its own (ANSI, default, symbol), so that the document's code page applies.
int codePageOfCharset(int charset);

} // namespace platform
