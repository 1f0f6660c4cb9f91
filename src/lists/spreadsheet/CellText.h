#pragma once
// Spreadsheet values as the texts a user would have typed: numbers with a decimal comma and the
// decimals their number format shows, dates as d.M.yyyy, times as h:mm or h:mm:ss.
#include <QDate>
#include <QString>
#include <QStringView>
#include <cstdint>

namespace lists::sheet {

// What a number format does with a number, reduced to what the text of a cell needs.
struct CellFormat {
    enum Kind : std::uint8_t {
        General,  // as many digits as the value has (up to 15 significant ones)
        Fixed,    // minDecimals .. maxDecimals decimals
        Boolean,  // "TOSI" for any number but 0, which is "EPÄTOSI"
        Percent,  // the value times 100 with minDecimals .. maxDecimals decimals, then "%"
        Date,     // d.M.yyyy
        DateTime, // d.M.yyyy h:mm[:ss]
        Time,     // h:mm[:ss], the time of day
        Elapsed,  // [h]:mm[:ss], [m]:ss or [s]: the whole duration in the first unit
    };
    Kind kind = General;
    std::uint8_t minDecimals = 0;
    std::uint8_t maxDecimals = 0;
    bool seconds = false; // the time shows seconds
    char elapsedUnit = 0; // 'h', 'm' or 's' for Elapsed
    bool isDateOrTime() const { return kind >= Date; }
};

// The format of an Excel number format code ("0.00", "#,##0.00 \"€\"", "d.m.yyyy", "[h]:mm:ss").
// Only the first section counts; literal text, colours and grouping are left out.
CellFormat excelFormat(QStringView code);
// The built-in number formats of .xls and .xlsx files by their number (0 "General", 2 "0.00",
// 14 a date, 20 "h:mm", 46 "[h]:mm:ss", ...).
CellFormat excelBuiltinFormat(int id);

// A number with at most 15 significant digits, integers plainly, very large and very small
// numbers with an exponent ("3,14E-300") where the spreadsheet's general format uses one
// ("-0,00527418346560432" but "1,23456789012345E-05"), as a spreadsheet shows a number without a
// format.
QString generalNumberText(double value);
// The value in the given format. Decimals round from the shortest decimal text of the double,
// halves away from zero, as the spreadsheet shows them (2.675 with two decimals is "2,68").
QString numberText(double value, const CellFormat& format);

// The text of true and false as the sheet shows it.
QString booleanText(bool value);

// The first day of a workbook's day numbers: day 0 of the 1900 system is 30.12.1899, of the
// 1904 system 1.1.1904.
QDate nullDate(bool date1904);
// A day number with its fraction of a day in a date or time format. Fractions of a second round
// to the nearest second, carrying into the minute, hour and day.
QString serialText(double serial, const CellFormat& format, const QDate& nullDate);

// A date, a time of day or both from their parts (seconds already whole).
QString dateText(const QDate& date);
QString clockText(qint64 hours, int minutes, int seconds, bool withSeconds);

} // namespace lists::sheet
