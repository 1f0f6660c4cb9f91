#include "calc/NumberText.h"

#include <QLocale>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

namespace calc {

namespace {

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// An exponent ("e3", "E-2") continues a number only when a digit follows it. Appends it to
// `out` and moves `i` past it when there is one.
void readExponent(QStringView text, qsizetype& i, std::string& out) {
    const qsizetype n = text.size();
    if (i >= n || (text[i] != QLatin1Char('e') && text[i] != QLatin1Char('E'))) return;
    qsizetype j = i + 1;
    while (j < n && IsNumberBlank(text[j]))
        ++j;
    std::string exponent = "e";
    if (j < n && (text[j] == QLatin1Char('-') || text[j] == QLatin1Char('+'))) {
        exponent += static_cast<char>(text[j].unicode());
        ++j;
    }
    bool digits = false;
    for (; j < n; ++j) {
        if (IsNumberBlank(text[j])) continue;
        if (!isDigit(text[j])) break;
        exponent += static_cast<char>(text[j].unicode());
        digits = true;
    }
    if (!digits) return;
    out += exponent;
    i = j;
}

// Plain digits of a whole number held in a double, without a sign for zero.
QString wholeDigits(double whole) {
    char buf[400];
    const auto r = std::to_chars(buf, buf + sizeof buf, whole + 0.0, std::chars_format::fixed, 0);
    return QString::fromLatin1(buf, r.ptr - buf);
}

// A figure that overflowed single precision shows as a spreadsheet shows a cell too narrow
// for its number: never as a number the reader could take for an amount.
QString nonFiniteText(float) {
    return QStringLiteral("#####");
}

// A value rounded for a "Format" pattern: the digits before and after the decimal point.
struct PatternDigits {
    bool negative = false;
    std::string whole;    // at least "0"
    std::string fraction; // exactly the decimals asked for
};

// Takes the value as single precision prints it (7 significant digits), then rounds that
// decimal text to `decimals` places with halves away from zero. Working on the decimal digits
// keeps binary fractions out of the halves: 99.95 stored as 99.9499969 prints as 99.95000
// and rounds to 100.0.
PatternDigits roundForPattern(float value, int decimals) {
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, std::fabs(static_cast<double>(value)),
                                 std::chars_format::scientific, 6);
    // buf holds "d.dddddde+XX".
    std::string digits(1, buf[0]);
    digits.append(buf + 2, 6);
    const char* e = buf + 8;
    int exponent = 0;
    std::from_chars(e + 1 + (e[1] == '+' ? 1 : 0), r.ptr, exponent);

    // The value in units of 10^-decimals, as decimal digits.
    const int keep = exponent + 1 + decimals;
    std::string units;
    if (keep >= 7) {
        units = digits + std::string(keep - 7, '0');
    } else if (keep > 0) {
        units = digits.substr(0, keep);
        if (digits[keep] >= '5') {
            int k = keep - 1;
            while (k >= 0 && units[k] == '9')
                units[k--] = '0';
            if (k < 0)
                units.insert(units.begin(), '1');
            else
                ++units[k];
        }
    } else {
        units.assign(1, keep == 0 && digits[0] >= '5' ? '1' : '0');
    }
    if (units.size() < static_cast<size_t>(decimals) + 1)
        units = std::string(decimals + 1 - units.size(), '0') + units;

    PatternDigits out;
    out.whole = units.substr(0, units.size() - decimals);
    out.fraction = units.substr(units.size() - decimals);
    const size_t nonZero = out.whole.find_first_not_of('0');
    out.whole = nonZero == std::string::npos ? "0" : out.whole.substr(nonZero);
    out.negative = value < 0 && units.find_first_not_of('0') != std::string::npos;
    return out;
}

QString withDecimalComma(const PatternDigits& d, QChar group) {
    QString out;
    if (d.negative) out += QLatin1Char('-');
    const int n = static_cast<int>(d.whole.size());
    for (int i = 0; i < n; ++i) {
        if (!group.isNull() && i > 0 && (n - i) % 3 == 0) out += group;
        out += QLatin1Char(d.whole[i]);
    }
    if (!d.fraction.empty()) out += QLatin1Char(',') + QString::fromLatin1(d.fraction.c_str());
    return out;
}

} // namespace

bool IsNumberBlank(QChar c) {
    switch (c.unicode()) {
        case u' ':
        case u'\t':
        case u'\r':
        case u'\n':
        case u'\u00A0':
        case u'\u202F':
            return true;
        default:
            return false;
    }
}

NumberScan ScanNumber(QStringView text) {
    NumberScan scan;
    const qsizetype n = text.size();
    qsizetype i = 0;
    while (i < n && IsNumberBlank(text[i]))
        ++i;
    scan.start = i;
    // A leading "0" lets ",5" read as 0.5.
    std::string number;
    if (i < n && (text[i] == QLatin1Char('-') || text[i] == QLatin1Char('+'))) {
        if (text[i] == QLatin1Char('-')) number += '-';
        ++i;
    }
    number += '0';
    bool point = false;
    for (; i < n; ++i) {
        const QChar c = text[i];
        if (IsNumberBlank(c)) continue;
        if (isDigit(c)) {
            number += static_cast<char>(c.unicode());
            scan.digits = true;
        } else if ((c == QLatin1Char(',') || c == QLatin1Char('.')) && !point) {
            number += '.';
            point = true;
        } else {
            break;
        }
    }
    if (!scan.digits) {
        scan.end = scan.start;
        return scan;
    }
    readExponent(text, i, number);
    scan.end = i;
    const auto r = std::from_chars(number.data(), number.data() + number.size(), scan.value);
    if (r.ec == std::errc::result_out_of_range) {
        scan.value = 0;
        scan.outOfRange = true;
    }
    return scan;
}

double CustomVal(QStringView text) {
    return ScanNumber(text).value;
}

double RoundHalfEven(double x) {
    if (!std::isfinite(x)) return x;
    double whole = std::floor(x);
    const double rest = x - whole; // exact: both lie within one unit of each other
    if (rest > 0.5 || (rest == 0.5 && std::fmod(whole, 2.0) != 0)) whole += 1;
    return whole;
}

float CustomRound(float x) {
    // The band limits are single-precision values, as the estimate is: 10^12 is 999999995904.
    struct Band {
        float from, to;
        double step;
    };
    static constexpr Band bands[] = {{1e12f, 1e13f, 1e9}, {1e11f, 1e12f, 1e8}, {1e10f, 1e11f, 1e7},
                                     {1e9f, 1e10f, 1e6},  {1e8f, 1e9f, 1e5},   {1e7f, 1e8f, 1e4},
                                     {1e6f, 1e7f, 1e3}};
    double step = 100;
    for (const Band& band : bands) {
        if (x >= band.from && x <= band.to) {
            step = band.step;
            break;
        }
    }
    // The quotient is held as a whole number in a 64-bit double: exact up to 2^53 and, unlike
    // a 64-bit integer, never overflowing, even for the largest single-precision values.
    const double quotient = RoundHalfEven(static_cast<double>(x) / step);
    return static_cast<float>(quotient * step);
}

QChar LocaleGroupSeparator() {
    const QString group = QLocale().groupSeparator();
    return group.isEmpty() ? QLatin1Char(' ') : group.at(0);
}

QString MoneyS(float value, int decimals, QChar group) {
    if (value == 0) return QString();
    if (!std::isfinite(value)) return nonFiniteText(value);
    if (decimals <= 0) return wholeDigits(std::floor(static_cast<double>(value)));
    return withDecimalComma(roundForPattern(value, decimals), group);
}

QString DecimalS(float value, int decimals) {
    if (!std::isfinite(value)) return nonFiniteText(value);
    if (decimals <= 0) return wholeDigits(RoundHalfEven(value));
    return withDecimalComma(roundForPattern(value, decimals), QChar());
}

QString FormatHashDotHash(float value) {
    if (!std::isfinite(value)) return nonFiniteText(value);
    const PatternDigits d = roundForPattern(value, 1);
    QString out;
    if (d.negative) out += QLatin1Char('-');
    if (d.whole != "0") out += QString::fromLatin1(d.whole.c_str());
    out += QLatin1Char(',');
    if (d.fraction != "0") out += QString::fromLatin1(d.fraction.c_str());
    return out;
}

QString FigureText(float value) {
    char buf[32];
    const auto end =
        std::to_chars(buf, buf + sizeof buf, static_cast<double>(value), std::chars_format::general, 9);
    return QString::fromLatin1(buf, end.ptr - buf);
}

double FigureValue(float value) {
    return FigureText(value).toDouble();
}

} // namespace calc
