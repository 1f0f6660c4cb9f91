#include "platform/Cp1252.h"

#include <array>

namespace platform {

namespace {

// Bytes 0x80..0x9F; 0 marks the five bytes the code page leaves unassigned.
constexpr std::array<char16_t, 32> kHigh = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                            0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

int encodeChar(char16_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return c;
    if (c >= 0x80 && c <= 0x9F) {
        // A C1 control stands for an unassigned byte only when the byte has no character.
        return kHigh[c - 0x80] == 0 ? c : -1;
    }
    for (int i = 0; i < 32; ++i)
        if (kHigh[i] == c) return 0x80 + i;
    return -1;
}

} // namespace

QString fromCp1252(const char* data, qsizetype size) {
    QString out(size, Qt::Uninitialized);
    QChar* dst = out.data();
    for (qsizetype i = 0; i < size; ++i) {
        const auto b = static_cast<unsigned char>(data[i]);
        if (b >= 0x80 && b <= 0x9F && kHigh[b - 0x80] != 0)
            dst[i] = QChar(kHigh[b - 0x80]);
        else
            dst[i] = QChar(b);
    }
    return out;
}

QString fromCp1252(const QByteArray& bytes) {
    return fromCp1252(bytes.constData(), bytes.size());
}

QByteArray toCp1252(const QString& text, QString* unencodable) {
    QByteArray out;
    out.reserve(text.size());
    appendCp1252(out, text, unencodable);
    return out;
}

void appendCp1252(QByteArray& out, QStringView text, QString* unencodable) {
    const qsizetype start = out.size();
    out.resize(start + text.size());
    char* dst = out.data();
    qsizetype n = start;
    const QChar* src = text.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = src[i].unicode();
        const int b = encodeChar(c);
        if (b >= 0) {
            dst[n++] = static_cast<char>(b);
            continue;
        }
        // A surrogate pair is one character and becomes one "?".
        QString ch(src[i]);
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && src[i + 1].isLowSurrogate()) {
            ch += src[i + 1];
            ++i;
        }
        dst[n++] = '?';
        if (unencodable && !unencodable->contains(ch)) unencodable->append(ch);
    }
    out.truncate(n);
}

bool isCp1252(QStringView text) {
    for (QChar c : text)
        if (encodeChar(c.unicode()) < 0) return false;
    return true;
}

} // namespace platform
