#include "calc/NumberText.h"

#include <cfloat>
#include <gtest/gtest.h>

using namespace calc;

TEST(CustomVal, ReadsTheLeadingNumberWithACommaOrAPoint) {
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("1 234,5")), 1234.5);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("12 kpl")), 12);
    EXPECT_DOUBLE_EQ(CustomVal(QString()), 0);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("-3,5")), -3.5);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral(",5")), 0.5);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("12.5")), 12.5);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("  7 ")), 7);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("- 2")), -2);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("+4")), 4);
    // The drop-down values carry their explanation after the number.
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("0,5 (virhe vaikuttaa osittain)")), 0.5);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("1,0 (virhe ei vaikuta)")), 1.0);
}

TEST(CustomVal, StopsWhereTheNumberEnds) {
    // A second separator ends the number: grouping points are not thousands.
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("1.234,5")), 1.234);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("kpl 12")), 0);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("-")), 0);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral(",")), 0);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("--3")), 0);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("1e3")), 1000);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("2 e")), 2);
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("3 erä")), 3);
    // Amounts printed with the Finnish grouping (no-break spaces) read back.
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("1\u00A0234\u00A0567,50")), 1234567.5);
    // Out of range counts as no number rather than infinity.
    EXPECT_DOUBLE_EQ(CustomVal(QStringLiteral("1e999")), 0);
}

TEST(CustomRound, RoundsToTheStepOfItsBandWithHalvesToEven) {
    EXPECT_EQ(CustomRound(1234567.0f), 1235000.0f);
    EXPECT_EQ(CustomRound(987654.0f), 987700.0f);
    EXPECT_EQ(CustomRound(50.0f), 0.0f);
    EXPECT_EQ(CustomRound(150.0f), 200.0f);
    EXPECT_EQ(CustomRound(250.0f), 200.0f);
    EXPECT_EQ(CustomRound(350.0f), 400.0f);
    EXPECT_EQ(CustomRound(-250.0f), -200.0f);
    EXPECT_EQ(CustomRound(0.0f), 0.0f);
    EXPECT_EQ(CustomRound(1234500.0f), 1234000.0f);
    EXPECT_EQ(CustomRound(1235500.0f), 1236000.0f);
    EXPECT_EQ(CustomRound(12345678.0f), 12350000.0f);
    // 123456789 is 123456792 in single precision; step 10^5.
    EXPECT_EQ(CustomRound(123456789.0f), 123500000.0f);
    EXPECT_EQ(CustomRound(5.5555e9f), 5.556e9f);
}

TEST(CustomRound, BandLimitsAreSinglePrecisionValuesAndInclusive) {
    // 10^6 starts the 1000 band; just below it the step is 100.
    EXPECT_EQ(CustomRound(1e6f), 1e6f);
    EXPECT_EQ(CustomRound(999950.0f), 1e6f);
    EXPECT_EQ(CustomRound(999849.0f), 999800.0f);
    EXPECT_EQ(CustomRound(1000500.0f), 1000000.0f);
    EXPECT_EQ(CustomRound(1001500.0f), 1002000.0f);
    // The limits themselves, which single precision holds below the powers of ten.
    EXPECT_EQ(1e12f, 999999995904.0f);
    EXPECT_EQ(CustomRound(1e12f), 1e12f);
    EXPECT_EQ(CustomRound(1e11f), 1e11f);
    EXPECT_EQ(CustomRound(1e13f), 1e13f);
    EXPECT_EQ(CustomRound(1.2344e12f), 1.234e12f);
    EXPECT_EQ(CustomRound(1.2346e12f), 1.235e12f);
}

TEST(CustomRound, ValuesFromTenToTheThirteenOnDoNotOverflow) {
    for (const float x : {2e13f, 1e15f, 1e20f, 1e30f, FLT_MAX, -2e13f, -FLT_MAX}) {
        EXPECT_EQ(CustomRound(x), x) << x;
    }
}

TEST(MoneyS, ZeroIsEmptyAndTwoDecimalsAreGroupedWithADecimalComma) {
    EXPECT_EQ(MoneyS(0.0f, 2), QString());
    EXPECT_EQ(MoneyS(0.0f, 0), QString());
    EXPECT_EQ(MoneyS(1234.5f, 2, QLatin1Char(' ')), QStringLiteral("1 234,50"));
    EXPECT_EQ(MoneyS(-1234.5f, 2, QLatin1Char(' ')), QStringLiteral("-1 234,50"));
    EXPECT_EQ(MoneyS(12.0f, 2, QLatin1Char(' ')), QStringLiteral("12,00"));
    EXPECT_EQ(MoneyS(999.0f, 2, QLatin1Char(' ')), QStringLiteral("999,00"));
    EXPECT_EQ(MoneyS(0.5f, 2, QLatin1Char(' ')), QStringLiteral("0,50"));
    EXPECT_EQ(MoneyS(1234567.5f, 2, QLatin1Char('.')), QStringLiteral("1.234.568,00"));
    // The tests run under the Finnish locale, whose grouping character is a no-break space.
    EXPECT_EQ(MoneyS(1234.5f, 2), QStringLiteral("1\u00A0234,50"));
}

TEST(MoneyS, HalvesRoundAwayFromZeroOnTheSevenDigitValue) {
    // 0.125 is exact: away from zero gives 0,13 where halves to even would give 0,12.
    EXPECT_EQ(MoneyS(0.125f, 2, QLatin1Char(' ')), QStringLiteral("0,13"));
    // 2.675 is 2.67499995 in single precision but prints as 2.675000.
    EXPECT_EQ(MoneyS(2.675f, 2, QLatin1Char(' ')), QStringLiteral("2,68"));
    EXPECT_EQ(MoneyS(-2.675f, 2, QLatin1Char(' ')), QStringLiteral("-2,68"));
    EXPECT_EQ(MoneyS(999.995f, 2, QLatin1Char(' ')), QStringLiteral("1 000,00"));
    // Beyond seven digits single precision has nothing more to show.
    EXPECT_EQ(MoneyS(123456789.0f, 2, QLatin1Char(' ')), QStringLiteral("123 456 800,00"));
    EXPECT_EQ(MoneyS(-0.001f, 2, QLatin1Char(' ')), QStringLiteral("0,00"));
}

TEST(MoneyS, NoDecimalsTakesTheIntegerPartTowardsMinusInfinity) {
    EXPECT_EQ(MoneyS(1234.99f, 0), QStringLiteral("1234"));
    EXPECT_EQ(MoneyS(1234567.0f, 0), QStringLiteral("1234567"));
    EXPECT_EQ(MoneyS(0.5f, 0), QStringLiteral("0"));
    EXPECT_EQ(MoneyS(-1.5f, 0), QStringLiteral("-2"));
    EXPECT_EQ(MoneyS(-0.25f, 0), QStringLiteral("-1"));
    EXPECT_EQ(MoneyS(1e20f, 0), QStringLiteral("100000002004087734272"));
}

TEST(DecimalS, ZeroDecimalsRoundHalvesToEven) {
    EXPECT_EQ(DecimalS(0.0f, 0), QStringLiteral("0"));
    EXPECT_EQ(DecimalS(2.5f, 0), QStringLiteral("2"));
    EXPECT_EQ(DecimalS(3.5f, 0), QStringLiteral("4"));
    EXPECT_EQ(DecimalS(-2.5f, 0), QStringLiteral("-2"));
    EXPECT_EQ(DecimalS(-0.4f, 0), QStringLiteral("0"));
    EXPECT_EQ(DecimalS(2.51f, 0), QStringLiteral("3"));
    EXPECT_EQ(DecimalS(1234567.0f, 0), QStringLiteral("1234567"));
}

TEST(DecimalS, OneAndTwoDecimalsRoundHalvesAwayFromZero) {
    EXPECT_EQ(DecimalS(0.0f, 1), QStringLiteral("0,0"));
    EXPECT_EQ(DecimalS(0.0f, 2), QStringLiteral("0,00"));
    EXPECT_EQ(DecimalS(0.25f, 1), QStringLiteral("0,3"));
    EXPECT_EQ(DecimalS(-0.25f, 1), QStringLiteral("-0,3"));
    EXPECT_EQ(DecimalS(0.35f, 1), QStringLiteral("0,4"));
    EXPECT_EQ(DecimalS(12.5f, 1), QStringLiteral("12,5"));
    EXPECT_EQ(DecimalS(99.95f, 1), QStringLiteral("100,0"));
    EXPECT_EQ(DecimalS(1.005f, 2), QStringLiteral("1,01"));
    EXPECT_EQ(DecimalS(1234.56f, 2), QStringLiteral("1234,56"));
    EXPECT_EQ(DecimalS(0.004f, 2), QStringLiteral("0,00"));
    EXPECT_EQ(DecimalS(7.0f, 2), QStringLiteral("7,00"));
}

TEST(FormatHashDotHash, OneOptionalDecimalWithoutLeadingZero) {
    EXPECT_EQ(FormatHashDotHash(82.46f), QStringLiteral("82,5"));
    EXPECT_EQ(FormatHashDotHash(75.0f), QStringLiteral("75,"));
    EXPECT_EQ(FormatHashDotHash(0.5f), QStringLiteral(",5"));
    EXPECT_EQ(FormatHashDotHash(0.0f), QStringLiteral(","));
    EXPECT_EQ(FormatHashDotHash(0.04f), QStringLiteral(","));
    EXPECT_EQ(FormatHashDotHash(82.04f), QStringLiteral("82,"));
    // 99.95 is 99.9499969 in single precision and shows as 100.
    EXPECT_EQ(FormatHashDotHash(99.95f), QStringLiteral("100,"));
    EXPECT_EQ(FormatHashDotHash(31.25f), QStringLiteral("31,3"));
    EXPECT_EQ(FormatHashDotHash(-0.5f), QStringLiteral("-,5"));
}

TEST(RoundHalfEven, HalvesGoToTheEvenNeighbour) {
    EXPECT_EQ(RoundHalfEven(0.5), 0);
    EXPECT_EQ(RoundHalfEven(1.5), 2);
    EXPECT_EQ(RoundHalfEven(2.5), 2);
    EXPECT_EQ(RoundHalfEven(-1.5), -2);
    EXPECT_EQ(RoundHalfEven(-2.5), -2);
    EXPECT_EQ(RoundHalfEven(2.4999999), 2);
    EXPECT_EQ(RoundHalfEven(1e300), 1e300);
}
