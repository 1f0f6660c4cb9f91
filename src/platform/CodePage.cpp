#include "platform/CodePage.h"

#include "platform/Cp1252.h"

#include <algorithm>
#include <cerrno>
#include <iconv.h>
#include <iterator>
#include <string_view>
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

// The Mac Japanese code page (10001) is Shift-JIS with Apple's own rows: circled and
// parenthesised numbers, Roman numerals, units and signs in rows 0x85 to 0x88, the vertical forms
// of punctuation and small kana in rows 0xEB to 0xED (given here as the characters they show), and
// five single bytes. Neither the C library nor Qt converts it; the rest is read as code page 932,
// as LibreOffice reads it.
struct MacJapanese {
    quint16 code;
    std::u16string_view text;
};
// clang-format off
constexpr MacJapanese kMacJapanese[] = {
    {0x8540, u"\u2460"}, {0x8541, u"\u2461"}, {0x8542, u"\u2462"}, {0x8543, u"\u2463"}, {0x8544, u"\u2464"},
    {0x8545, u"\u2465"}, {0x8546, u"\u2466"}, {0x8547, u"\u2467"}, {0x8548, u"\u2468"}, {0x8549, u"\u2469"},
    {0x854A, u"\u246A"}, {0x854B, u"\u246B"}, {0x854C, u"\u246C"}, {0x854D, u"\u246D"}, {0x854E, u"\u246E"},
    {0x854F, u"\u246F"}, {0x8550, u"\u2470"}, {0x8551, u"\u2471"}, {0x8552, u"\u2472"}, {0x8553, u"\u2473"},
    {0x855E, u"\u2474"}, {0x855F, u"\u2475"}, {0x8560, u"\u2476"}, {0x8561, u"\u2477"}, {0x8562, u"\u2478"},
    {0x8563, u"\u2479"}, {0x8564, u"\u247A"}, {0x8565, u"\u247B"}, {0x8566, u"\u247C"}, {0x8567, u"\u247D"},
    {0x8568, u"\u247E"}, {0x8569, u"\u247F"}, {0x856A, u"\u2480"}, {0x856B, u"\u2481"}, {0x856C, u"\u2482"},
    {0x856D, u"\u2483"}, {0x856E, u"\u2484"}, {0x856F, u"\u2485"}, {0x8570, u"\u2486"}, {0x8571, u"\u2487"},
    {0x857C, u"\u2776"}, {0x857D, u"\u2777"}, {0x857E, u"\u2778"}, {0x8580, u"\u2779"}, {0x8581, u"\u277A"},
    {0x8582, u"\u277B"}, {0x8583, u"\u277C"}, {0x8584, u"\u277D"}, {0x8585, u"\u277E"}, {0x8591, u"0."},
    {0x8592, u"\u2488"}, {0x8593, u"\u2489"}, {0x8594, u"\u248A"}, {0x8595, u"\u248B"}, {0x8596, u"\u248C"},
    {0x8597, u"\u248D"}, {0x8598, u"\u248E"}, {0x8599, u"\u248F"}, {0x859A, u"\u2490"}, {0x859F, u"\u2160"},
    {0x85A0, u"\u2161"}, {0x85A1, u"\u2162"}, {0x85A2, u"\u2163"}, {0x85A3, u"\u2164"}, {0x85A4, u"\u2165"},
    {0x85A5, u"\u2166"}, {0x85A6, u"\u2167"}, {0x85A7, u"\u2168"}, {0x85A8, u"\u2169"}, {0x85A9, u"\u216A"},
    {0x85AA, u"\u216B"}, {0x85AB, u"XIII"}, {0x85AC, u"XIV"}, {0x85AD, u"XV"}, {0x85B3, u"\u2170"},
    {0x85B4, u"\u2171"}, {0x85B5, u"\u2172"}, {0x85B6, u"\u2173"}, {0x85B7, u"\u2174"}, {0x85B8, u"\u2175"},
    {0x85B9, u"\u2176"}, {0x85BA, u"\u2177"}, {0x85BB, u"\u2178"}, {0x85BC, u"\u2179"}, {0x85BD, u"\u217A"},
    {0x85BE, u"\u217B"}, {0x85BF, u"xiii"}, {0x85C0, u"xiv"}, {0x85C1, u"xv"}, {0x85DB, u"\u249C"},
    {0x85DC, u"\u249D"}, {0x85DD, u"\u249E"}, {0x85DE, u"\u249F"}, {0x85DF, u"\u24A0"}, {0x85E0, u"\u24A1"},
    {0x85E1, u"\u24A2"}, {0x85E2, u"\u24A3"}, {0x85E3, u"\u24A4"}, {0x85E4, u"\u24A5"}, {0x85E5, u"\u24A6"},
    {0x85E6, u"\u24A7"}, {0x85E7, u"\u24A8"}, {0x85E8, u"\u24A9"}, {0x85E9, u"\u24AA"}, {0x85EA, u"\u24AB"},
    {0x85EB, u"\u24AC"}, {0x85EC, u"\u24AD"}, {0x85ED, u"\u24AE"}, {0x85EE, u"\u24AF"}, {0x85EF, u"\u24B0"},
    {0x85F0, u"\u24B1"}, {0x85F1, u"\u24B2"}, {0x85F2, u"\u24B3"}, {0x85F3, u"\u24B4"}, {0x85F4, u"\u24B5"},
    {0x8640, u"\u339C"}, {0x8641, u"\u339F"}, {0x8642, u"\u339D"}, {0x8643, u"\u33A0"}, {0x8644, u"\u33A4"},
    {0x8645, u"\uFF4D"}, {0x8646, u"\u33A1"}, {0x8647, u"\u33A5"}, {0x8648, u"\u339E"}, {0x8649, u"\u33A2"},
    {0x864A, u"\u338E"}, {0x864B, u"\uFF47"}, {0x864C, u"\u338F"}, {0x864D, u"\u33C4"}, {0x864E, u"\u3396"},
    {0x864F, u"\u3397"}, {0x8650, u"\u2113"}, {0x8651, u"\u3398"}, {0x8652, u"\u33B3"}, {0x8653, u"\u33B2"},
    {0x8654, u"\u33B1"}, {0x8655, u"\u33B0"}, {0x8656, u"\u2109"}, {0x8657, u"\u33D4"}, {0x8658, u"\u33CB"},
    {0x8659, u"\u3390"}, {0x865A, u"\u3385"}, {0x865B, u"\u3386"}, {0x865C, u"\u3387"}, {0x865D, u"TB"},
    {0x869B, u"\u2116"}, {0x869C, u"\u33CD"}, {0x869D, u"\u2121"}, {0x869E, u"FAX"}, {0x869F, u"\u2664"},
    {0x86A0, u"\u2667"}, {0x86A1, u"\u2661"}, {0x86A2, u"\u2662"}, {0x86A3, u"\u2660"}, {0x86A4, u"\u2663"},
    {0x86A5, u"\u2665"}, {0x86A6, u"\u2666"}, {0x86B3, u"\u3020"}, {0x86B4, u"\u260E"}, {0x86B5, u"\u3004"},
    {0x86C7, u"\u261E"}, {0x86C8, u"\u261C"}, {0x86C9, u"\u261D"}, {0x86CA, u"\u261F"}, {0x86CB, u"\u21C6"},
    {0x86CC, u"\u21C4"}, {0x86CD, u"\u21C5"}, {0x86CE, u"\u2193\u2191"}, {0x86CF, u"\u21E8"},
    {0x86D0, u"\u21E6"}, {0x86D1, u"\u21E7"}, {0x86D2, u"\u21E9"}, {0x86D3, u"\u21E8"}, {0x86D4, u"\u21E6"},
    {0x86D5, u"\u21E7"}, {0x86D6, u"\u21E9"}, {0x8740, u"\u3230"}, {0x8741, u"\u322A"}, {0x8742, u"\u322B"},
    {0x8743, u"\u322C"}, {0x8744, u"\u322D"}, {0x8745, u"\u322E"}, {0x8746, u"\u322F"}, {0x8747, u"\u3240"},
    {0x8748, u"\u3237"}, {0x8749, u"\u3242"}, {0x874A, u"\u3243"}, {0x874B, u"\u3239"}, {0x874C, u"\u323A"},
    {0x874D, u"\u3231"}, {0x874E, u"\u323E"}, {0x874F, u"\u3234"}, {0x8750, u"\u3232"}, {0x8751, u"\u323B"},
    {0x8752, u"\u3236"}, {0x8753, u"\u3233"}, {0x8754, u"\u3235"}, {0x8755, u"\u323C"}, {0x8756, u"\u323D"},
    {0x8757, u"\u323F"}, {0x8758, u"\u3238"}, {0x8791, u"\u5927\u20DD"}, {0x8792, u"\u5C0F\u20DD"},
    {0x8793, u"\u32A4"}, {0x8794, u"\u32A5"}, {0x8795, u"\u32A6"}, {0x8796, u"\u32A7"}, {0x8797, u"\u32A8"},
    {0x8798, u"\u32A9"}, {0x8799, u"\u3296"}, {0x879A, u"\u329D"}, {0x879B, u"\u3298"}, {0x879C, u"\u329E"},
    {0x879D, u"\u63A7\u20DD"}, {0x879E, u"\u3299"}, {0x879F, u"\u3349"}, {0x87A0, u"\u3322"},
    {0x87A1, u"\u334D"}, {0x87A2, u"\u3314"}, {0x87A3, u"\u3316"}, {0x87A4, u"\u3305"}, {0x87A5, u"\u3333"},
    {0x87A6, u"\u334E"}, {0x87A7, u"\u3303"}, {0x87A8, u"\u3336"}, {0x87A9, u"\u3318"}, {0x87AA, u"\u3315"},
    {0x87AB, u"\u3327"}, {0x87AC, u"\u3351"}, {0x87AD, u"\u334A"}, {0x87AE, u"\u3339"}, {0x87AF, u"\u3357"},
    {0x87B0, u"\u330D"}, {0x87B1, u"\u3342"}, {0x87B2, u"\u3323"}, {0x87B3, u"\u3326"}, {0x87B4, u"\u333B"},
    {0x87B5, u"\u332B"}, {0x87BD, u"\u3300"}, {0x87BE, u"\u331E"}, {0x87BF, u"\u332A"}, {0x87C0, u"\u3331"},
    {0x87C1, u"\u3347"}, {0x87E5, u"\u337E"}, {0x87E6, u"\u337D"}, {0x87E7, u"\u337C"}, {0x87E8, u"\u337B"},
    {0x87FA, u"\u337F"}, {0x87FB, u"\u6709\u9650\u4F1A\u793E"}, {0x87FC, u"\u8CA1\u56E3\u6CD5\u4EBA"},
    {0x8840, u"\u222E"}, {0x8841, u"\u221F"}, {0x8842, u"\u22BF"}, {0x8854, u"\u301D"}, {0x8855, u"\u301F"},
    {0x8868, u"\u3094"}, {0x886A, u"\u30F7"}, {0x886B, u"\u30F8"}, {0x886C, u"\u30F9"}, {0x886D, u"\u30FA"},
    {0xEB41, u"\u3001"}, {0xEB42, u"\u3002"}, {0xEB50, u"\uFFE3"}, {0xEB51, u"\uFE33"}, {0xEB5B, u"\u30FC"},
    {0xEB5C, u"\uFE31"}, {0xEB5D, u"\u2010"}, {0xEB60, u"\u301C"}, {0xEB61, u"\u2016"}, {0xEB62, u"\uFF5C"},
    {0xEB63, u"\u2026"}, {0xEB64, u"\uFE30"}, {0xEB69, u"\uFE35"}, {0xEB6A, u"\uFE36"}, {0xEB6B, u"\uFE39"},
    {0xEB6C, u"\uFE3A"}, {0xEB6D, u"\uFF3B"}, {0xEB6E, u"\uFF3D"}, {0xEB6F, u"\uFE37"}, {0xEB70, u"\uFE38"},
    {0xEB71, u"\uFE3F"}, {0xEB72, u"\uFE40"}, {0xEB73, u"\uFE3D"}, {0xEB74, u"\uFE3E"}, {0xEB75, u"\uFE41"},
    {0xEB76, u"\uFE42"}, {0xEB77, u"\uFE43"}, {0xEB78, u"\uFE44"}, {0xEB79, u"\uFE3B"}, {0xEB7A, u"\uFE3C"},
    {0xEB81, u"\uFF1D"}, {0xEC9F, u"\u3041"}, {0xECA1, u"\u3043"}, {0xECA3, u"\u3045"}, {0xECA5, u"\u3047"},
    {0xECA7, u"\u3049"}, {0xECC1, u"\u3063"}, {0xECE1, u"\u3083"}, {0xECE3, u"\u3085"}, {0xECE5, u"\u3087"},
    {0xECEC, u"\u308E"}, {0xED40, u"\u30A1"}, {0xED42, u"\u30A3"}, {0xED44, u"\u30A5"}, {0xED46, u"\u30A7"},
    {0xED48, u"\u30A9"}, {0xED62, u"\u30C3"}, {0xED83, u"\u30E3"}, {0xED85, u"\u30E5"}, {0xED87, u"\u30E7"},
    {0xED8E, u"\u30EE"}, {0xED95, u"\u30F5"}, {0xED96, u"\u30F6"},
};
// clang-format on

bool inAppleRows(uchar lead, uchar trail) {
    return (lead >= 0x85 && lead <= 0x87) || (lead == 0x88 && trail < 0x9F) || (lead >= 0xEB && lead <= 0xED);
}

QString decodeMacJapanese(const QByteArray& bytes) {
    QString out;
    QByteArray shiftJis; // bytes read as code page 932, converted together
    const auto flush = [&] {
        out += decodeCodePage(shiftJis, 932);
        shiftJis.clear();
    };
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<uchar>(bytes[i]);
        char16_t single = 0;
        switch (b) {
            case 0x80:
                single = u'\\';
                break;
            case 0xA0:
                single = 0x00A0;
                break;
            case 0xFD:
                single = 0x00A9;
                break;
            case 0xFE:
                single = 0x2122;
                break;
            case 0xFF:
                single = 0x2026;
                break;
            default:
                break;
        }
        if (isLeadByte(10001, b) && i + 1 < bytes.size() && !inAppleRows(b, uchar(bytes[i + 1]))) {
            shiftJis += char(b);
            shiftJis += bytes[++i];
        } else if (single) {
            flush();
            out += QChar(single);
        } else if (isLeadByte(10001, b) && i + 1 < bytes.size()) {
            flush();
            const quint16 code = quint16(b << 8 | uchar(bytes[++i]));
            const auto* found = std::lower_bound(std::begin(kMacJapanese), std::end(kMacJapanese), code,
                                                 [](const MacJapanese& m, quint16 c) { return m.code < c; });
            if (found != std::end(kMacJapanese) && found->code == code)
                out += QString::fromUtf16(found->text.data(), qsizetype(found->text.size()));
            else
                out += QChar::ReplacementCharacter;
        } else {
            shiftJis += char(b);
        }
    }
    flush();
    return out;
}

} // namespace

QString decodeCodePage(const QByteArray& bytes, int codePage) {
    if (codePage == 10001) return decodeMacJapanese(bytes);
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
        // An invalid or incomplete sequence: one replacement character, then go on after it; a
        // lead byte and its trail byte make one character, valid or not.
        out += QChar::ReplacementCharacter;
        const std::size_t invalid = inLeft >= 2 && isLeadByte(codePage, static_cast<uchar>(*in)) ? 2 : 1;
        in += invalid;
        inLeft -= invalid;
    }
    iconv_close(cd);
    return out;
}

bool isLeadByte(int codePage, uchar b) {
    switch (codePage) {
        case 932:
        case 10001:
            return (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC);
        case 936:
        case 949:
        case 950:
            return b >= 0x81 && b <= 0xFE;
        case 1361:
            return (b >= 0x84 && b <= 0xD3) || (b >= 0xD8 && b <= 0xDE) || (b >= 0xE0 && b <= 0xF9);
        default:
            return false;
    }
}

int codePageOfCharset(int charset) {
    switch (charset) {
        case 77:
            return 10000;
        case 78: // the Mac character sets of Japanese, Korean and Chinese documents
            return 10001;
        case 79:
            return 949;
        case 80:
            return 936;
        case 81:
            return 950;
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
