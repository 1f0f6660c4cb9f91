#pragma once
// Numbers as the user types them and as reports print them. Cells hold numbers as text; the
// calculations read them with CustomVal and print results with a decimal comma whatever the
// regional settings say. Money values are single precision throughout, so the printed figures
// are those of a single-precision computation.
#include <QChar>
#include <QString>

namespace calc {

// The leading number of a text: "," reads as ".", blanks inside the number are skipped, and
// reading stops at the first character that cannot continue it. "1 234,5" gives 1234.5,
// "12 kpl" gives 12; a text that does not start with a number gives 0, as does a number
// beyond the range of a double.
double CustomVal(QStringView text);

// Blanks that CustomVal skips inside a number: spaces (also the no-break spaces that grouped
// amounts carry), tabs and line breaks.
bool IsNumberBlank(QChar c);

// How CustomVal reads a text: the value, and where reading began and stopped, so that the
// project check can tell what part of a cell the calculations leave unread.
struct NumberScan {
    double value = 0;        // what CustomVal gives
    qsizetype start = 0;     // the first character after the leading blanks
    qsizetype end = 0;       // the first character not read; `start` when nothing was read
    bool digits = false;     // the text starts with a number
    bool outOfRange = false; // a number beyond the range of a double, read as 0
};
NumberScan ScanNumber(QStringView text);

// Rounds a converted estimate to about four significant digits: a step chosen by the
// magnitude (10^9 from 10^12 to 10^13, down to 1000 from 10^6 to 10^7, otherwise 100), the
// quotient rounded to the nearest whole number with halves to even. 1234567 gives 1235000,
// 250 gives 200.
float CustomRound(float x);

// Rounds to the nearest whole number, halves to the even neighbour (2.5 -> 2, 3.5 -> 4).
double RoundHalfEven(double x);

// The grouping character of the regional settings (a space when the locale has none).
QChar LocaleGroupSeparator();

// A money amount. 0 gives an empty text. With 0 decimals: the integer part (towards minus
// infinity) as plain digits. With 2 decimals: grouped thousands and two decimals after a
// comma ("1 234,50"), halves away from zero on the value as single precision prints it.
QString MoneyS(float value, int decimals, QChar group = LocaleGroupSeparator());

// A plain number. 0 decimals: the nearest whole number, halves to even. 1 or 2 decimals:
// the patterns "0.0" and "0.00" with a decimal comma, halves away from zero on the value as
// single precision prints it. Zero prints as 0, 0,0 or 0,00.
QString DecimalS(float value, int decimals);

// The pattern "#.#": at most one decimal, no leading zero, the decimal comma always present.
// 82.46 gives "82,5", 75 gives "75,", 0.5 gives ",5" and 0 gives ",".
QString FormatHashDotHash(float value);

// A single-precision figure as the command line prints it: 9 significant digits, enough to
// read back the same float, with a decimal point ("1234.56006", "0", "1e+20").
QString FigureText(float value);
// The same figure as a double for machine-readable output: exactly the value FigureText shows.
double FigureValue(float value);

} // namespace calc
