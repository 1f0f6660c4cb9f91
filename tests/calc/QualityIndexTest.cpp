#include "calc/QualityIndex.h"

#include "calc/CalcLists.h"

#include <gtest/gtest.h>

using namespace calc;
using namespace calc_test;

namespace {

QStringList lines(const QString& text) {
    return text.split(QStringLiteral("\r\n"));
}

// The summary line that starts with `prefix`; empty when there is none.
QString lineStarting(const QString& text, const QString& prefix) {
    for (const QString& l : lines(text))
        if (l.startsWith(prefix)) return l;
    return QString();
}

QString summaryOf(const std::vector<QStringList>& rows) {
    lists::ListModel list;
    fillRequirementList(list, rows);
    return MakeSummaryText(CalculateQualityIndex(list), QStringLiteral("silta.sl"),
                           QDateTime(QDate(2024, 1, 2), QTime(3, 4)));
}

} // namespace

TEST(ListViewCaption, LevelsFollowTheLitteraAndTheCapitals) {
    lists::ListModel list;
    fillRequirementList(list, {
                                  caption("7110", "KAIVUT JA PENGERTYÖT"),
                                  caption("7110.1", "Kaivutaso"),
                                  caption("", "TIETYÖT SILTAPAIKALLA"),
                                  caption("2000", "TIETYÖT SILTAPAIKALLA"),
                                  caption("", "KAIVUT"),
                                  caption("  ", "KAIVUT"),
                                  caption("7120", ""),
                                  caption("7130", "LVI 2"),
                                  caption("7140", "A 2"),
                              });
    const auto level = [&](int row) { return ListViewCaption(list, row, 3).level; };
    EXPECT_EQ(level(1), 1);
    EXPECT_EQ(level(2), 2);
    EXPECT_EQ(level(3), 1);
    EXPECT_EQ(level(4), 1);
    EXPECT_EQ(level(5), 0);
    EXPECT_EQ(level(6), 0);
    EXPECT_EQ(level(7), 2);
    EXPECT_EQ(level(8), 1);
    EXPECT_EQ(level(9), 2); // one capital letter is no capital string

    const CaptionInfo phase = ListViewCaption(list, 1, 3);
    EXPECT_EQ(phase.littera, QStringLiteral("7110"));
    EXPECT_EQ(phase.text, QStringLiteral("KAIVUT JA PENGERTYÖT"));
    // The road works need no littera; the empty one reads as a space.
    EXPECT_EQ(ListViewCaption(list, 3, 3).littera, QStringLiteral(" "));
    const CaptionInfo ordinary = ListViewCaption(list, 5, 3);
    EXPECT_TRUE(ordinary.littera.isEmpty());
    EXPECT_TRUE(ordinary.text.isEmpty());
}

TEST(CalculateQualityIndex, AFailedRequirementEarnsItsFactorOfTheWeight) {
    lists::ListModel list;
    fillRequirementList(list,
                        {
                            caption("7110", "KAIVUT"),
                            requirement("1", "Kaivutaso", kType1, "4", kNo, "0,5 (virhe vaikuttaa osittain)"),
                            requirement("2", "Tiiviys", kType2, "4", kYes, "0,0 (virhe vaikuttaa)"),
                        });
    const QualityRecord r = CalculateQualityIndex(list);
    EXPECT_EQ(r.totalRealized, 6.0f);
    EXPECT_EQ(r.totalMax, 8.0f);
    EXPECT_EQ(r.qualityNumber, 75.0f);
    EXPECT_EQ(r.countType1, 1);
    EXPECT_EQ(r.checkedType1, 1);
    EXPECT_EQ(r.countType2, 1);
    EXPECT_EQ(r.checkedType2, 1);
    EXPECT_EQ(r.groupCount, 1);
    EXPECT_EQ(r.groupRealized[1], 6.0f);
    EXPECT_EQ(r.groupMax[1], 8.0f);
    EXPECT_EQ(lineStarting(MakeSummaryText(r, "a.sl", QDateTime::currentDateTime()), "SILLAN"),
              QStringLiteral("SILLAN LAATULUKU : 75, (100)"));
}

TEST(CalculateQualityIndex, UninspectedRequirementsCountButEarnNothing) {
    lists::ListModel list;
    fillRequirementList(list, {
                                  caption("7110", "KAIVUT"),
                                  requirement("1", "Kaivutaso", kType1, "3", kYes),
                                  requirement("2", "Tiiviys", kType1, "1"),
                                  requirement("3", "Kuivatus", kType2, "1", QStringLiteral("?")),
                              });
    const QualityRecord r = CalculateQualityIndex(list);
    EXPECT_EQ(r.totalMax, 5.0f);
    EXPECT_EQ(r.totalRealized, 3.0f);
    EXPECT_FLOAT_EQ(r.qualityNumber, 60.0f);
    EXPECT_EQ(r.countType1, 2);
    EXPECT_EQ(r.checkedType1, 1);
    EXPECT_EQ(r.countType2, 1);
    EXPECT_EQ(r.checkedType2, 0);
}

TEST(CalculateQualityIndex, AdvisoryRequirementsAreCountedWithoutWeight) {
    lists::ListModel list;
    fillRequirementList(list, {
                                  caption("7110", "KAIVUT"),
                                  requirement("1", "Kaivutaso", kType1, "2", kYes),
                                  requirement("a", "Suositus", kType3, "5", kNo, "0,0"),
                                  requirement("b", "Suositus", kType3, "5"),
                                  requirement("c", "Tyyppi puuttuu", "", "5", kYes),
                              });
    const QualityRecord r = CalculateQualityIndex(list);
    EXPECT_EQ(r.countType3, 3);
    EXPECT_EQ(r.checkedType3, 2);
    EXPECT_EQ(r.totalMax, 2.0f);
    EXPECT_EQ(r.totalRealized, 2.0f);
    EXPECT_EQ(r.groupMax[1], 2.0f);
    EXPECT_EQ(r.qualityNumber, 100.0f);
}

TEST(CalculateQualityIndex, RequirementsBeforeTheFirstCaptionCountOnlyInTheBridgeTotals) {
    lists::ListModel list;
    fillRequirementList(list, {
                                  requirement("1", "Yleinen", kType1, "2", kYes),
                                  caption("7110", "KAIVUT"),
                                  requirement("2", "Kaivutaso", kType1, "3", kNo, "0"),
                                  // A blank identifier is no requirement, whatever its weight.
                                  requirement(" ", "jatkoa edelliseen", kType1, "5", kYes),
                                  requirement("", "jatkoa", kType2, "5", kNo, "1"),
                              });
    const QualityRecord r = CalculateQualityIndex(list);
    EXPECT_EQ(r.totalMax, 5.0f);
    EXPECT_EQ(r.totalRealized, 2.0f);
    EXPECT_EQ(r.countType1, 2);
    EXPECT_EQ(r.countType2, 0);
    EXPECT_EQ(r.groupCount, 1);
    EXPECT_EQ(r.groupMax[1], 3.0f);
    EXPECT_EQ(r.groupRealized[1], 0.0f);
    const QStringList summary = lines(MakeSummaryText(r, "a.sl", QDateTime::currentDateTime()));
    // Nineteen lines before the work phases, one work phase, and the empty text after the
    // last CR LF.
    ASSERT_EQ(summary.size(), 21);
    EXPECT_EQ(summary[19], QStringLiteral("7110    KAIVUT     60      0      3      0"));
}

TEST(CalculateQualityIndex, PhasesTakeInTheirSubPhases) {
    lists::ListModel list;
    fillRequirementList(list, {
                                  caption("7110", "KAIVUT"),
                                  requirement("1", "a", kType1, "1", kYes),
                                  caption("7111", "Kaivutaso"),
                                  requirement("2", "b", kType1, "2", kYes),
                                  caption("7112", "Tiiviys"),
                                  requirement("3", "c", kType2, "4", kNo, "0,5"),
                                  caption("7120", "PAALUTUS"),
                                  requirement("4", "d", kType2, "8"),
                              });
    const QualityRecord r = CalculateQualityIndex(list);
    ASSERT_EQ(r.groupCount, 4);
    EXPECT_EQ(r.groupLittera.toVector(), (std::vector<QString>{"", "7110", "7111", "7112", "7120"}));
    EXPECT_EQ(r.groupMax, (std::vector<float>{r.groupMax[0], 7, 2, 4, 8}));
    EXPECT_EQ(r.groupRealized, (std::vector<float>{r.groupRealized[0], 5, 2, 2, 0}));
    EXPECT_EQ(r.longestGroupText, 9);
}

TEST(MakeSummaryText, WithoutWeightedRequirementsTheNumberIsALoneComma) {
    const QString text = summaryOf({
        caption("7110", "KAIVUT"),
        requirement("a", "Suositus", kType3, "5", kNo),
    });
    EXPECT_EQ(lineStarting(text, "SILLAN"), QStringLiteral("SILLAN LAATULUKU : , (100)"));
    EXPECT_EQ(lineStarting(text, "Toteutunut"),
              QStringLiteral("Toteutunut painoarvojen summa (TotPA) koko sillalle: 0 (0)"));
    // No requirements of a type leave its per cent empty; the work phase has no share.
    EXPECT_EQ(lineStarting(text, "1 Silta"),
              QStringLiteral("1 Siltakohtainen       0     0                0"));
    EXPECT_EQ(lineStarting(text, "7110"), QStringLiteral("7110    KAIVUT      -      0      0      -"));
    EXPECT_EQ(lineStarting(text, "Littera"), QStringLiteral("Littera Työvaihe  Pa%  TotPa  MaksPa  Tot%"));
    // Short captions still leave one space after "Työvaihe".
    const QString shortCaption = summaryOf({caption("7300", "LVI")});
    EXPECT_EQ(lineStarting(shortCaption, "Littera"),
              QStringLiteral("Littera Työvaihe Pa%  TotPa  MaksPa  Tot%"));
    EXPECT_EQ(lineStarting(shortCaption, "7300"), QStringLiteral("7300    LVI      -      0      0      -"));
}

TEST(MakeSummaryText, PercentagesRoundHalvesToEvenAndTheNumberAwayFromZero) {
    std::vector<QStringList> rows = {
        caption("7110", "KAIVUT"),
        requirement("1", "a", kType1, "5", kNo, "0,5"), // earns 2.5
        requirement("2", "b", kType1, "3"),
    };
    // One advisory requirement in eight inspected: 12.5 %.
    for (int i = 0; i < 8; ++i)
        rows.push_back(requirement(QString::number(10 + i), "c", kType3, "1", i == 0 ? kYes : ""));
    const QString text = summaryOf(rows);
    // 2.5 / 8 is 31.25: "#.#" rounds it away from zero, the integer columns to even.
    EXPECT_EQ(lineStarting(text, "SILLAN"), QStringLiteral("SILLAN LAATULUKU : 31,3 (100)"));
    EXPECT_EQ(lineStarting(text, "Toteutunut"),
              QStringLiteral("Toteutunut painoarvojen summa (TotPA) koko sillalle: 2 (8)"));
    EXPECT_EQ(lineStarting(text, "3 Ohje"),
              QStringLiteral("3 Ohjeellinen           8     1     12         7"));
    EXPECT_EQ(lineStarting(text, "7110"), QStringLiteral("7110    KAIVUT    100      2      8     31"));
}

TEST(MakeSummaryText, WholeReportOfARealisticList) {
    lists::ListModel list;
    fillRequirementList(
        list, {
                  caption("7110", "KAIVUT JA PENGERTYÖT"),
                  requirement("1", "Kaivutason korkeus", kType1, "3", kYes, "0,0 (virhe vaikuttaa)"),
                  requirement("2", "Täytön tiiviys", kType2, "4", kNo, "0,5"),
                  requirement("", "(jatkoa edelliseen)", "", "5"),
                  caption("7112", "Pengerrys"),
                  requirement("3", "Pengerryksen kaltevuus", kType1, "2"),
                  requirement("a", "Ohjeellinen mittaus", kType3, "5", kNo),
                  caption("7170", "PÄÄLLYSRAKENNE"),
                  requirement("4", "Betonin lujuus", kType1, "5", kYes),
                  requirement("5", "Kannen tasaisuus", kType2, "4", kNo, "0,25"),
                  requirement("6", "Pintakäsittely", kType3, "1", kYes),
                  caption("", "TIETYÖT SILTAPAIKALLA"),
                  requirement("7", "Päällysteen paksuus", kType2, "3"),
              });
    const QualityRecord r = CalculateQualityIndex(list);
    const QString text = MakeSummaryText(r, QStringLiteral("/home/urakoitsija/Sillat/Esimerkkisilta.sl"),
                                         QDateTime(QDate(2024, 3, 5), QTime(9, 7)));

    // Types 1: 3 requirements, 2 inspected; 2: 3 and 2; 3: 2 and 2. TotPa 3 + 2 + 5 + 1 = 11 of
    // MaksPa 3 + 4 + 2 + 5 + 4 + 3 = 21: 52.38 %. The longest caption has 21 characters.
    const QStringList expected = {
        "TAMRIK 2006 - /home/urakoitsija/Sillat/Esimerkkisilta.sl",
        "",
        "LAATUVAATIMUSTEN YHTEENVETO",
        "Tulostettu: 05.03.2024  09:07",
        "",
        "Tyyppi               lkm  tark.  tark%  ei tark.",
        "------------------------------------------------",
        "1 Siltakohtainen       3     2     67         1",
        "2 KLVn mukainen        3     2     67         1",
        "3 Ohjeellinen           2     2    100         0",
        "------------------------------------------------",
        "Yhteensä               8     6     75         2",
        "",
        "Toteutunut painoarvojen summa (TotPA) koko sillalle: 11 (21)",
        "",
        "SILLAN LAATULUKU : 52,4 (100)",
        "",
        "Littera Työvaihe                 Pa%  TotPa  MaksPa  Tot%",
        "---------------------------------------------------------",
        "7110    KAIVUT JA PENGERTYÖT      43      5      9     56",
        "7112    Pengerrys                  -      0      2      0",
        "7170    PÄÄLLYSRAKENNE            43      6      9     67",
        "        TIETYÖT SILTAPAIKALLA     14      0      3      0",
    };
    const QStringList actual = lines(text);
    ASSERT_EQ(actual.size(), expected.size() + 1);
    for (qsizetype i = 0; i < expected.size(); ++i)
        EXPECT_EQ(actual[i], expected[i]) << "line " << i + 1;
    // Every line ends in CR LF, the last one too, and there are no other line breaks.
    EXPECT_TRUE(text.endsWith(QStringLiteral("0\r\n")));
    EXPECT_EQ(text.count(QLatin1Char('\n')), expected.size());
    EXPECT_EQ(text.count(QLatin1Char('\r')), expected.size());
}

// The checked share was computed as 100 × checked / count, which rounds some halves the other
// way than checked / count × 100: 23 of 40 printed 58 instead of 57.
TEST(MakeSummaryTextRegression, CheckedShareIsCheckedOverCountTimesHundred) {
    std::vector<QStringList> rows = {caption("7110", "KAIVUT")};
    for (int i = 0; i < 40; ++i)
        rows.push_back(requirement(QString::number(i + 1), "a", kType1, "1", i < 23 ? kYes : ""));
    EXPECT_EQ(lineStarting(summaryOf(rows), "1 Silta"),
              QStringLiteral("1 Siltakohtainen      40    23     57        17"));
}
