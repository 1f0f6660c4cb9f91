#include "platform/CodePage.h"

#include "platform/Cp1252.h"

#include <cerrno>
#include <iconv.h>
#include <vector>

namespace platform {

namespace {

// The C library's name of a Windows code page; null for one it is not asked to convert.
const char* iconvName(int codePage) {
    switch (codePage) {
        case 437:
            return "CP437";
        case 850:
            return "CP850";
        case 874:
            return "CP874";
        case 932:
            return "CP932";
        case 936:
            return "CP936";
        case 949:
            return "CP949";
        case 950:
            return "BIG5";
        case 1250:
            return "CP1250";
        case 1251:
            return "CP1251";
        case 1253:
            return "CP1253";
        case 1254:
            return "CP1254";
        case 1255:
            return "CP1255";
        case 1256:
            return "CP1256";
        case 1257:
            return "CP1257";
        case 1258:
            return "CP1258";
        case 1361:
            return "JOHAB";
        case 10000:
            return "MACINTOSH";
        default:
            return nullptr;
    }
}

} // namespace

QString decodeCodePage(const QByteArray& bytes, int codePage) {
    const char* name = iconvName(codePage);
    if (!name || bytes.isEmpty()) return fromCp1252(bytes);
    iconv_t cd = iconv_open("UTF-16LE", name);
    if (cd == reinterpret_cast<iconv_t>(-1)) return fromCp1252(bytes);
    QString out;
    std::vector<char> buffer(static_cast<std::size_t>(bytes.size()) * 4 + 8);
    char* in = const_cast<char*>(bytes.constData());
    std::size_t inLeft = static_cast<std::size_t>(bytes.size());
    while (inLeft > 0) {
        char* o = buffer.data();
        std::size_t outLeft = buffer.size();
        const std::size_t r = iconv(cd, &in, &inLeft, &o, &outLeft);
        out += QString::fromUtf16(reinterpret_cast<const char16_t*>(buffer.data()),
                                  static_cast<qsizetype>((buffer.size() - outLeft) / 2));
        if (r != static_cast<std::size_t>(-1)) break;
        if (errno == E2BIG) continue;
        // An invalid or incomplete sequence: one replacement character, then go on after it.
        out += QChar::ReplacementCharacter;
        ++in;
        --inLeft;
    }
    iconv_close(cd);
    return out;
}

int codePageOfCharset(int charset) {
    switch (charset) {
        case 77:
            return 10000;
        case 128:
            return 932;
        case 129:
            return 949;
        case 130:
            return 1361;
        case 134:
            return 936;
        case 136:
            return 950;
        case 161:
            return 1253;
        case 162:
            return 1254;
        case 163:
            return 1258;
        case 177:
            return 1255;
        case 178:
            return 1256;
        case 186:
            return 1257;
        case 204:
            return 1251;
        case 222:
            return 874;
        case 238:
            return 1250;
        case 255:
            return 437;
        default:
            return 0;
    }
}

} // namespace platform
