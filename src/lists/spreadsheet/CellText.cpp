#include "lists/spreadsheet/CellText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace lists::sheet {

namespace {

// A number as at most 15 significant decimal digits d1 d2 ... and the exponent of d1:
// value = d1,d2d3... * 10^exponent.
struct Decimal {
    bool negative = false;
    std::string digits; // without trailing zeros; empty for zero
    int exponent = 0;
};

// The digits of `text` as std::to_chars writes a number in scientific notation ("1.2345e-05").
Decimal decimalOfText(std::string_view text, bool negative) {
    Decimal d;
    d.negative = negative;
    const std::size_t e = text.find('e');
    for (std::size_t i = 0; i < e; ++i)
        if (text[i] != '.') d.digits += text[i];
    std::from_chars(text.data() + e + (text[e + 1] == '+' ? 2 : 1), text.data() + text.size(), d.exponent);
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
    return d;
}

// The value rounded to 15 significant digits: what a spreadsheet shows without a format.
Decimal decimalOf(double value) {
    if (value == 0 || !std::isfinite(value)) return {};
    char buf[40];
    const auto result =
        std::to_chars(buf, buf + sizeof buf, std::fabs(value), std::chars_format::scientific, 14);
    return decimalOfText(std::string_view(buf, static_cast<std::size_t>(result.ptr - buf)), value < 0);
}

// The shortest decimal text that reads back as the value: the number a user typed or a program
// wrote. Rounding to a format's decimals starts from it, so 2.675 shows as 2,68 although the
// double closest to it lies a little below.
Decimal shortestDecimalOf(double value) {
    if (value == 0 || !std::isfinite(value)) return {};
    char buf[40];
    const auto result = std::to_chars(buf, buf + sizeof buf, std::fabs(value), std::chars_format::scientific);
    return decimalOfText(std::string_view(buf, static_cast<std::size_t>(result.ptr - buf)), value < 0);
}

// Rounds to `decimals` places, halves away from zero.
void roundTo(Decimal& d, int decimals) {
    const int keep = d.exponent + decimals + 1;
    if (keep >= static_cast<int>(d.digits.size())) return;
    if (keep < 0) {
        d.digits.clear();
        return;
    }
    const bool up = d.digits[static_cast<std::size_t>(keep)] >= '5';
    d.digits.resize(static_cast<std::size_t>(keep));
    if (up) {
        int i = keep - 1;
        for (; i >= 0; --i) {
            char& c = d.digits[static_cast<std::size_t>(i)];
            if (c == '9') {
                c = '0';
            } else {
                ++c;
                break;
            }
        }
        if (i < 0) {
            d.digits.insert(d.digits.begin(), '1');
            ++d.exponent;
        }
    }
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
}

// The digits written out without an exponent, with minDecimals .. maxDecimals decimals.
QString plainText(const Decimal& d, int minDecimals) {
    // Built in bytes and made a text once: most cells of a sheet are numbers.
    std::string out;
    const int n = static_cast<int>(d.digits.size());
    if (d.digits.empty()) {
        out = "0";
    } else {
        if (d.negative) out += '-';
        if (d.exponent < 0) {
            out += '0';
        } else {
            for (int i = 0; i <= d.exponent; ++i)
                out += i < n ? d.digits[static_cast<std::size_t>(i)] : '0';
        }
    }
    std::string fraction;
    if (!d.digits.empty()) {
        for (int i = d.exponent + 1; i < n; ++i)
            fraction += i < 0 ? '0' : d.digits[static_cast<std::size_t>(i)];
    }
    while (static_cast<int>(fraction.size()) < minDecimals)
        fraction += '0';
    if (!fraction.empty()) out += ',' + fraction;
    return QString::fromLatin1(out.data(), static_cast<qsizetype>(out.size()));
}

CellFormat fixed(int decimals) {
    CellFormat f;
    f.kind = CellFormat::Fixed;
    f.minDecimals = f.maxDecimals = static_cast<std::uint8_t>(decimals);
    return f;
}

qint64 floorDiv(qint64 a, qint64 b) {
    return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}

} // namespace

QString generalNumberText(double value) {
    if (!std::isfinite(value)) return {};
    if (value == 0) return QStringLiteral("0");
    // Whole numbers that a double holds exactly are written out in full.
    constexpr double kExactIntegers = 9007199254740992.0; // 2^53
    if (std::floor(value) == value && std::fabs(value) < kExactIntegers)
        return QString::number(static_cast<qint64>(value));
    const Decimal d = decimalOf(value);
    const int n = static_cast<int>(d.digits.size());
    // The spreadsheet's general format: plain decimals from 10^-4 up to 10^15; below that plain
    // only down to 10^-9 and with at most 16 decimals; an exponent otherwise. The magnitude is
    // the spreadsheet's own (the floor of the logarithm), which puts a value just under 10^-4
    // with the plain ones.
    const int magnitude = static_cast<int>(std::floor(std::log10(std::fabs(value))));
    const int decimals = std::max(0, n - 1 - d.exponent);
    const bool plain = magnitude < 15 && (magnitude >= -4 || (magnitude >= -9 && decimals <= 16));
    if (plain) return plainText(d, 0);
    QString out = d.negative ? QStringLiteral("-") : QString();
    out += QLatin1Char(d.digits[0]);
    if (n > 1) out += QLatin1Char(',') + QString::fromLatin1(d.digits.data() + 1, n - 1);
    out += d.exponent < 0 ? QStringLiteral("E-") : QStringLiteral("E+");
    out += QStringLiteral("%1").arg(std::abs(d.exponent), 2, 10, QLatin1Char('0'));
    return out;
}

QString numberText(double value, const CellFormat& format) {
    switch (format.kind) {
        case CellFormat::Fixed:
        case CellFormat::Percent: {
            if (!std::isfinite(value)) return {};
            Decimal d = shortestDecimalOf(value);
            // A percentage is the same digits a hundred times larger.
            if (format.kind == CellFormat::Percent && !d.digits.empty()) d.exponent += 2;
            roundTo(d, format.maxDecimals);
            QString text = plainText(d, format.minDecimals);
            return format.kind == CellFormat::Percent ? text + QLatin1Char('%') : text;
        }
        case CellFormat::General:
            return generalNumberText(value);
        case CellFormat::Boolean:
            return booleanText(value != 0);
        default:
            return serialText(value, format, nullDate(false));
    }
}

QString booleanText(bool value) {
    return value ? QStringLiteral("TOSI") : QStringLiteral("EPÄTOSI");
}

QDate nullDate(bool date1904) {
    return date1904 ? QDate(1904, 1, 1) : QDate(1899, 12, 30);
}

QString dateText(const QDate& date) {
    return QString::number(date.day()) + QLatin1Char('.') + QString::number(date.month()) + QLatin1Char('.') +
           QString::number(date.year());
}

QString clockText(qint64 hours, int minutes, int seconds, bool withSeconds) {
    QString t = QString::number(hours) + QLatin1Char(':') +
                QStringLiteral("%1").arg(minutes, 2, 10, QLatin1Char('0'));
    if (withSeconds) t += QLatin1Char(':') + QStringLiteral("%1").arg(seconds, 2, 10, QLatin1Char('0'));
    return t;
}

QString serialText(double serial, const CellFormat& format, const QDate& nullDate) {
    // Beyond 31.12.9999 no date exists; such a number is shown as a number.
    if (!std::isfinite(serial) || std::fabs(serial) > 3000000) return generalNumberText(serial);
    const qint64 total = std::llround(serial * 86400.0);
    if (format.kind == CellFormat::Elapsed) {
        const qint64 t = total < 0 ? -total : total;
        const QString sign = total < 0 ? QStringLiteral("-") : QString();
        switch (format.elapsedUnit) {
            case 's':
                return sign + QString::number(t);
            case 'm':
                return sign + QString::number(t / 60) + QLatin1Char(':') +
                       QStringLiteral("%1").arg(t % 60, 2, 10, QLatin1Char('0'));
            default:
                return sign + clockText(t / 3600, static_cast<int>(t / 60 % 60), static_cast<int>(t % 60),
                                        format.seconds);
        }
    }
    const qint64 days = floorDiv(total, 86400);
    const int secs = static_cast<int>(total - days * 86400);
    const QString clock = clockText(secs / 3600, secs / 60 % 60, secs % 60, format.seconds);
    switch (format.kind) {
        case CellFormat::Time:
            return clock;
        case CellFormat::DateTime:
            return dateText(nullDate.addDays(days)) + QLatin1Char(' ') + clock;
        default:
            return dateText(nullDate.addDays(days));
    }
}

// Whether the sections of a format code are "TRUE";"TRUE";"FALSE": the format a spreadsheet
// program gives to true and false stored as 1 and 0.
bool isBooleanFormat(QStringView code) {
    const QList<QStringView> sections = code.split(QLatin1Char(';'));
    if (sections.size() != 3) return false;
    auto literal = [](QStringView s) {
        s = s.trimmed();
        if (s.startsWith(QLatin1Char('"')) && s.endsWith(QLatin1Char('"')) && s.size() >= 2)
            s = s.mid(1, s.size() - 2);
        return s.toString().toUpper();
    };
    const QString yes = literal(sections[0]);
    const QString no = literal(sections[2]);
    return (yes == QLatin1String("TRUE") || yes == QStringLiteral("TOSI")) &&
           (no == QLatin1String("FALSE") || no == QStringLiteral("EPÄTOSI"));
}

namespace {

// What the first section of a format code asks for, gathered one character at a time:
// whether it shows a date, a clock or a number, and how many decimals.
class FormatScan {
public:
    explicit FormatScan(QStringView code)
        : code_(code)
        , n_(code.size()) {}

    CellFormat run() {
        for (qsizetype i = 0; i < n_; ++i) {
            const char16_t c = lower(i);
            if (c == ';') break;
            if (c == '[') {
                const qsizetype end = code_.indexOf(QLatin1Char(']'), i);
                bracket(code_.mid(i + 1, (end < 0 ? n_ : end) - i - 1));
                if (end < 0) break;
                i = end;
                continue;
            }
            if (skipLiteral(i, c)) continue;
            if (!clockLetter(i, c)) numberCharacter(i, c);
        }
        return result();
    }

private:
    char16_t lower(qsizetype i) const { return i < n_ ? code_[i].toLower().unicode() : 0; }

    bool startsWith(qsizetype i, QLatin1StringView word) const {
        return code_.mid(i, word.size()).compare(word, Qt::CaseInsensitive) == 0;
    }

    // Quoted text, an escaped or padding character and the words "General", "AM/PM" and
    // "A/P" show nothing about the kind of value: steps i to their last character.
    bool skipLiteral(qsizetype& i, char16_t c) const {
        if (c == '"') {
            while (++i < n_ && code_[i] != QLatin1Char('"')) {
            }
            return true;
        }
        if (c == '\\' || c == '_' || c == '*') { // the next character is shown as it is
            ++i;
            return true;
        }
        for (const QLatin1StringView word :
             {QLatin1StringView("general"), QLatin1StringView("am/pm"), QLatin1StringView("a/p")}) {
            if (startsWith(i, word)) {
                i += word.size() - 1;
                return true;
            }
        }
        return false;
    }

    // [h], [mm] or [ss]: elapsed time; any other bracket (colour, condition, locale) is skipped.
    void bracket(QStringView inner) {
        if (inner.isEmpty() || !std::all_of(inner.begin(), inner.end(),
                                            [&](QChar ch) { return ch.toLower() == inner[0].toLower(); }))
            return;
        const char16_t unit = inner[0].toLower().unicode();
        if (unit == 'h' || unit == 'm' || unit == 's') {
            time_ = true;
            if (!elapsed_) elapsed_ = static_cast<char>(unit);
            if (unit == 's') seconds_ = true;
            lastClock_ = static_cast<char>(unit);
        }
    }

    // The date and clock letters; m means minutes after an hour or before seconds, else months.
    bool clockLetter(qsizetype& i, char16_t c) {
        switch (c) {
            case 'd':
            case 'y':
                date_ = true;
                lastClock_ = static_cast<char>(c);
                return true;
            case 'h':
                time_ = true;
                lastClock_ = 'h';
                return true;
            case 's':
                time_ = seconds_ = true;
                lastClock_ = 's';
                return true;
            case 'm': {
                qsizetype j = i;
                while (lower(j) == 'm')
                    ++j;
                qsizetype next = j;
                while (next < n_ && !code_[next].isLetter() && code_[next] != QLatin1Char(';'))
                    ++next;
                const bool minutes = lastClock_ == 'h' || lower(next) == 's';
                (minutes ? time_ : date_) = true;
                lastClock_ = 'm';
                i = j - 1;
                return true;
            }
            default:
                return false;
        }
    }

    // Digit placeholders, the decimal point, percent, exponent and fraction.
    void numberCharacter(qsizetype i, char16_t c) {
        switch (c) {
            case '0':
            case '#':
            case '?':
                placeholders_ = true;
                if (point_) {
                    if (c == '0') ++minDecimals_;
                    ++maxDecimals_;
                }
                break;
            case '.':
                if (placeholders_ || lower(i + 1) == '0' || lower(i + 1) == '#' || lower(i + 1) == '?')
                    point_ = true;
                break;
            case '%':
                percent_ = true;
                break;
            case 'e':
                if (lower(i + 1) == '+' || lower(i + 1) == '-') other_ = true; // scientific
                break;
            case '/':
                if (placeholders_) other_ = true; // a fraction
                break;
            default:
                break;
        }
    }

    CellFormat result() const {
        CellFormat f;
        if (date_ || time_) {
            f.kind = elapsed_ ? CellFormat::Elapsed
                              : (date_ && time_ ? CellFormat::DateTime
                                                : (date_ ? CellFormat::Date : CellFormat::Time));
            f.seconds = seconds_;
            f.elapsedUnit = elapsed_;
            return f;
        }
        if (other_ || !placeholders_) return f;
        f.kind = percent_ ? CellFormat::Percent : CellFormat::Fixed;
        f.minDecimals = static_cast<std::uint8_t>(std::min(minDecimals_, 30));
        f.maxDecimals = static_cast<std::uint8_t>(std::min(maxDecimals_, 30));
        return f;
    }

    QStringView code_;
    qsizetype n_;
    bool date_ = false, time_ = false, seconds_ = false, percent_ = false, other_ = false;
    bool placeholders_ = false, point_ = false;
    char elapsed_ = 0;
    int minDecimals_ = 0, maxDecimals_ = 0;
    char lastClock_ = 0; // the last of h, m, s, d, y: tells minutes from months
};

} // namespace

CellFormat excelFormat(QStringView code) {
    if (isBooleanFormat(code)) {
        CellFormat f;
        f.kind = CellFormat::Boolean;
        return f;
    }
    return FormatScan(code).run();
}

CellFormat excelBuiltinFormat(int id) {
    switch (id) {
        case 1:
        case 3:
        case 5:
        case 6:
        case 37:
        case 38:
        case 41:
        case 42:
            return fixed(0);
        case 2:
        case 4:
        case 7:
        case 8:
        case 39:
        case 40:
        case 43:
        case 44:
            return fixed(2);
        case 9:
            return excelFormat(u"0%");
        case 10:
            return excelFormat(u"0.00%");
        case 18:
        case 20:
            return excelFormat(u"h:mm");
        case 19:
        case 21:
            return excelFormat(u"h:mm:ss");
        case 22:
            return excelFormat(u"d.m.yyyy h:mm");
        case 45:
            return excelFormat(u"mm:ss");
        case 46:
            return excelFormat(u"[h]:mm:ss");
        case 47:
            return excelFormat(u"mm:ss.0");
        default:
            if ((id >= 14 && id <= 17) || (id >= 27 && id <= 36) || (id >= 50 && id <= 58))
                return excelFormat(u"d.m.yyyy");
            return {};
    }
}

} // namespace lists::sheet
