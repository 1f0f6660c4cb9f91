#pragma once
// Windows metafiles (WMF, also with the Aldus placeable header) and enhanced metafiles (EMF):
// recognising them by their headers, and converting them to SVG for QtSvg to draw. The
// conversion goes through libwmf and libemf2svg.
#include <QByteArray>
#include <QString>

namespace platform {

// True when the bytes start with a WMF header: the placeable header's key, or a standard
// header (type 1 or 2, nine-word header, version 0x0100 or 0x0300).
bool looksLikeWmf(const QByteArray& bytes);
// True when the bytes start with an EMF header record carrying the " EMF" signature.
bool looksLikeEmf(const QByteArray& bytes);

// The picture as UTF-8 SVG at 96 pixels to the inch. On failure an empty array and, in
// `error`, why. Damaged input gives an error, never a crash.
QByteArray wmfToSvg(const QByteArray& wmf, QString* error = nullptr);
QByteArray emfToSvg(const QByteArray& emf, QString* error = nullptr);

} // namespace platform
