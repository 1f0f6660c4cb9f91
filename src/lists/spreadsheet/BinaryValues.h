#pragma once
// What the two binary formats (.xls and .xlsb) store alike: little-endian numbers, the RK form
// of a number and the codes of error values.
#include <QString>
#include <QtGlobal>

#include <cstring>

namespace lists::sheet {

inline quint16 u16(const char* p) {
    return static_cast<quint16>(static_cast<quint8>(p[0]) | (static_cast<quint8>(p[1]) << 8));
}
inline quint32 u32(const char* p) {
    return static_cast<quint32>(u16(p)) | (static_cast<quint32>(u16(p + 2)) << 16);
}
inline double f64(const char* p) {
    quint64 bits = 0;
    for (int i = 7; i >= 0; --i)
        bits = (bits << 8) | static_cast<quint8>(p[i]);
    double v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

// An RK number: 30 bits of an integer or of a double's high bits, perhaps divided by 100.
inline double rkValue(quint32 rk) {
    double v;
    if (rk & 2) {
        v = static_cast<double>(static_cast<qint32>(rk) >> 2);
    } else {
        const quint64 bits = static_cast<quint64>(rk & 0xFFFFFFFCu) << 32;
        std::memcpy(&v, &bits, sizeof v);
    }
    return (rk & 1) ? v / 100 : v;
}

// The text of an error value by its code ("#DIV/0!").
inline QString errorText(int code) {
    switch (code) {
        case 0x00:
            return QStringLiteral("#NULL!");
        case 0x07:
            return QStringLiteral("#DIV/0!");
        case 0x0F:
            return QStringLiteral("#VALUE!");
        case 0x17:
            return QStringLiteral("#REF!");
        case 0x1D:
            return QStringLiteral("#NAME?");
        case 0x24:
            return QStringLiteral("#NUM!");
        default:
            return QStringLiteral("#N/A");
    }
}

} // namespace lists::sheet
