#include "calc/CostEstimate.h"

#include "calc/CalcLists.h"
#include "calc/NumberText.h"

#include <gtest/gtest.h>
#include <limits>

using namespace calc;
using calc_test::fillQuantityList;

namespace {

const QString kNbsp = QStringLiteral("\u00A0");

// A bridge with a substructure, a superstructure (7170..7199), equipment, and the road works
// at the bridge site after it.
std::vector<QStringList> bridgeWithRoadWorks() {
    return {
        {"7160", "ALUSRAKENNE"},                                          // 1
        {"", "Perustusten kaivu", "100", "120", "m3", "12,50"},           // 2: 1500
        {"7169", "Laakerit", "200", "4", "kpl", "1 500"},                 // 3: 6000
        {},                                                               // 4
        {"7170", "PÄÄLLYSRAKENNE"},                                       // 5
        {"", "Betonointi", "300", "45", "m3", "250"},                     // 6: 11250
        {"71705", "Muottityöt", "300", "120", "m2", "35,5"},              // 7: 4260
        {"7185", "Raudoitus", "300", "5 000", "kg", "1,2"},               // 8: 6000
        {"7199", "Pintakäsittely", "300", "1", "erä", "800"},             // 9: 800
        {"7200", "VARUSTEET"},                                            // 10
        {"", "Kaiteet", "400", "24", "m", "85"},                          // 11: 2040
        {"", "TIETYÖT SILTAPAIKALLA"},                                    // 12
        {"2110", "Leikkaukset", "", "50", "m3", "8"},                     // 13: 400
        {"2300", "Päällysteet", "", "120", "m2", "15,25"},                // 14: 1830
        {"", "Liikennejärjestelyt", "", "", "", "", "tilaajan hankinta"}, // 15
    };
}

CostInputs indexInputs(const QString& unitIndex, const QString& costIndex, const QString& general = "12") {
    return {QStringLiteral("€"), unitIndex, costIndex, general, QStringLiteral("24")};
}

} // namespace

TEST(CalculateCosts, BridgeAndRoadWorksBlocksInSinglePrecision) {
    lists::ListModel list;
    fillQuantityList(list, bridgeWithRoadWorks());
    const CostRecord r = CalculateCosts(list, indexInputs("100", "112,5"));

    // S1 = 1500 + 6000 + 11250 + 4260 + 6000 + 800 + 2040; factor (112.5 - 100) / 100 + 1 = 1.125.
    // G2 = 2230 * 12 / 100 = 267.6 is 267.600006 in single precision, and T2 = G2 + S2 rounds to
    // 2497.60010 at that precision.
    EXPECT_EQ(FormatCostRecord(r), QStringLiteral("bridgeSum = 31850\n"
                                                  "bridgeGeneral = 3822\n"
                                                  "superstructureSum = 22310\n"
                                                  "bridgeTotal = 35672\n"
                                                  "bridgeConverted = 40131\n"
                                                  "bridgeRounded = 40100\n"
                                                  "roadSum = 2230\n"
                                                  "roadGeneral = 267.600006\n"
                                                  "roadTotal = 2497.6001\n"
                                                  "roadConverted = 2809.80005\n"
                                                  "roadRounded = 2800\n"
                                                  "bridgeSummaryRow = 11\n"
                                                  "roadSummaryRow = 15\n"
                                                  "bridgeSummaryLines = 12\n"
                                                  "roadSummaryLines = 29\n"));
    EXPECT_EQ(r.roadTotal, 2497.60009765625f);
    EXPECT_EQ(r.roadConverted, 2809.800048828125f);
}

TEST(CalculateCosts, CaptionSubtotalsGoToTheRowThatClosesTheGroup) {
    lists::ListModel list;
    fillQuantityList(list, bridgeWithRoadWorks());
    // Tags from an earlier run, where the list was different, must not survive.
    for (int r = 1; r <= list.rows(); ++r)
        list.setRowTag(r, QStringLiteral("vanha"));
    CalculateCosts(list, indexInputs("100", "100"));

    const std::vector<QString> expected = {"",
                                           "",
                                           "7" + kNbsp + "500,00",
                                           "",
                                           "",
                                           "",
                                           "",
                                           "",
                                           "22" + kNbsp + "310,00",
                                           "",
                                           "2" + kNbsp + "040,00",
                                           "",
                                           "",
                                           "2" + kNbsp + "230,00",
                                           ""};
    for (int r = 1; r <= list.rows(); ++r)
        EXPECT_EQ(list.rowTag(r), expected[r - 1]) << "row " << r;
}

TEST(CalculateCosts, WithoutRoadWorksTheLastRowClosesTheBridgeBlock) {
    lists::ListModel list;
    fillQuantityList(list, {
                               {"7110", "KAIVUT"},
                               {"", "Kaivu", "", "10", "m3", "10"},
                               {"", "Täyttö", "", "2", "m3", "25"},
                           });
    const CostRecord r = CalculateCosts(list, indexInputs("1,0", "1,0", "0"));
    EXPECT_EQ(r.bridgeSum, 100.0f);
    EXPECT_EQ(r.bridgeSummaryRow, 2);
    EXPECT_EQ(r.bridgeSummaryLines, 12);
    // The last row's own amount falls into the road-works block, and its group's subtotal
    // starts again from the close.
    EXPECT_EQ(r.roadSum, 50.0f);
    EXPECT_EQ(r.roadSummaryRow, 3);
    EXPECT_EQ(list.rowTag(2), QString());
    EXPECT_EQ(list.rowTag(3), QStringLiteral("50,00"));
    // Equal indexes: no change of cost level.
    EXPECT_EQ(r.bridgeConverted, r.bridgeTotal);
    EXPECT_EQ(r.bridgeRounded, 100.0f);
    EXPECT_EQ(r.roadRounded, 0.0f);
}

TEST(CalculateCosts, OnlyTheFirstRoadWorksCaptionClosesTheBridgeBlock) {
    lists::ListModel list;
    fillQuantityList(list, {
                               {"7110", "KAIVUT"},
                               {"", "Kaivu", "", "10", "m3", "10"},
                               {"", "Tietyöt siltapaikalla"},
                               {"2110", "Leikkaukset", "", "5", "m3", "10"},
                               {"", "LISÄTYÖT: TIETYÖT SILTAPAIKALLA"},
                               {"2120", "Täytöt", "", "3", "m3", "10"},
                               {"", "Loppusiivous", "", "1", "erä", "7"},
                           });
    const CostRecord r = CalculateCosts(list, indexInputs("100", "100", "0"));
    // The caption is found in any letter case.
    EXPECT_EQ(r.bridgeSum, 100.0f);
    EXPECT_EQ(r.bridgeSummaryRow, 2);
    EXPECT_EQ(r.roadSum, 87.0f);
}

TEST(CalculateCosts, SuperstructureLitterasAreComparedOnTheirFirstFourCharacters) {
    lists::ListModel list;
    fillQuantityList(list, {
                               {"7169", "Laakerit", "", "1", "kpl", "1"},
                               {"7170", "Kansi", "", "1", "kpl", "10"},
                               {"", "jatkuu ilman litteraa", "", "1", "kpl", "100"},
                               {"7185", "Reunapalkit", "", "1", "kpl", "1000"},
                               {"7199", "Pintakäsittely", "", "1", "kpl", "10000"},
                               {"71705", "Muotit", "", "1", "kpl", "100000"},
                               {"7200", "Varusteet", "", "1", "kpl", "1000000"},
                               {"", "", "", "1", "kpl", "2"},
                           });
    const CostRecord r = CalculateCosts(list, indexInputs("100", "100"));
    EXPECT_EQ(r.superstructureSum, 111110.0f);
}

TEST(CalculateCosts, AnEmptyListGivesZerosAndOnlyTheRoadSummaryLines) {
    lists::ListModel list;
    fillQuantityList(list, {});
    EXPECT_EQ(FormatCostRecord(CalculateCosts(list, indexInputs("100", "120"))),
              QStringLiteral("bridgeSum = 0\nbridgeGeneral = 0\nsuperstructureSum = 0\nbridgeTotal = 0\n"
                             "bridgeConverted = 0\nbridgeRounded = 0\nroadSum = 0\nroadGeneral = 0\n"
                             "roadTotal = 0\nroadConverted = 0\nroadRounded = 0\nbridgeSummaryRow = 0\n"
                             "roadSummaryRow = 0\nbridgeSummaryLines = 0\nroadSummaryLines = 29\n"));
}

TEST(CalculateCosts, RowsWithoutQuantityOrPriceAddNothing) {
    lists::ListModel list;
    fillQuantityList(list, {
                               {"7110", "KAIVUT"},
                               {"", "Kaivu", "", "10", "m3", ""},
                               {"", "Täyttö", "", " ", "m3", "25"},
                               {"", "Louhinta", "", "kpl", "m3", "25"},
                               {"", "Viimeinen"},
                           });
    const CostRecord r = CalculateCosts(list, indexInputs("100", "100", "10"));
    EXPECT_EQ(r.bridgeSum, 0.0f);
    EXPECT_EQ(r.roadSum, 0.0f);
    EXPECT_EQ(r.bridgeGeneral, 0.0f);
    // A quantity that is no number counts as 0, and a zero subtotal prints as nothing.
    EXPECT_EQ(list.rowTag(2), QString());
    EXPECT_EQ(list.rowTag(3), QString());
    EXPECT_EQ(list.rowTag(4), QString());
}

TEST(ConversionFactor, MissingIndexesNeverFail) {
    EXPECT_DOUBLE_EQ(ConversionFactor(indexInputs("100", "125,5")), 1.255);
    EXPECT_DOUBLE_EQ(ConversionFactor(indexInputs("100", "100")), 1.0);
    // No unit price index: the estimate stays at its own level.
    EXPECT_DOUBLE_EQ(ConversionFactor(indexInputs("0", "125")), 1.0);
    EXPECT_DOUBLE_EQ(ConversionFactor(indexInputs("", "125")), 1.0);
    EXPECT_DOUBLE_EQ(ConversionFactor(indexInputs("", "")), 1.0);
    // No cost index: the formula gives 0 (the print selection warns about it).
    EXPECT_DOUBLE_EQ(ConversionFactor(indexInputs("100", "")), 0.0);
}

TEST(CalculateCosts, IndexZeroOrMissingKeepsTheTotals) {
    lists::ListModel list;
    fillQuantityList(list, bridgeWithRoadWorks());
    for (const CostInputs& in : {indexInputs("0", "112,5"), indexInputs("", "")}) {
        SCOPED_TRACE("unit price index \"" + in.unitPriceIndex.toStdString() + "\", cost index \"" +
                     in.costIndex.toStdString() + "\"");
        const CostRecord r = CalculateCosts(list, in);
        EXPECT_EQ(r.bridgeConverted, r.bridgeTotal);
        EXPECT_EQ(r.bridgeRounded, 35700.0f);
        EXPECT_EQ(r.roadConverted, r.roadTotal);
        EXPECT_EQ(r.roadRounded, 2500.0f);
    }
    const CostRecord noCostIndex = CalculateCosts(list, indexInputs("100", ""));
    EXPECT_EQ(noCostIndex.bridgeTotal, 35672.0f);
    EXPECT_EQ(noCostIndex.bridgeConverted, 0.0f);
    EXPECT_EQ(noCostIndex.bridgeRounded, 0.0f);
}

TEST(NextIsCaption1, AMainCaptionOrTheEndClosesTheGroup) {
    lists::ListModel list;
    fillQuantityList(list, {
                               {"", "Kaivu", "", "10", "m3", "10"},       // 1
                               {},                                        // 2
                               {"7111", "Alakohta ilman hintaa"},         // 3
                               {"", "Täyttö", "", "", "m3", "25"},        // 4: a price only
                               {"", "jatkoriviä"},                        // 5
                               {"7120", "PAALUTUS"},                      // 6
                               {"", "Paalut", "", "7", "m", ""},          // 7: a quantity only
                               {"", "TIETYÖT SILTAPAIKALLA"},             // 8
                               {"", "Leikkaus", "", "1", "m3", "1"},      // 9
                               {"", "", "", "", "", "", "huomautusrivi"}, // 10
                           });
    EXPECT_FALSE(NextIsCaption1(list, 1)); // a priced row comes first
    EXPECT_FALSE(NextIsCaption1(list, 3));
    EXPECT_TRUE(NextIsCaption1(list, 4));
    EXPECT_TRUE(NextIsCaption1(list, 7)); // the road-works caption is in capitals
    EXPECT_TRUE(NextIsCaption1(list, 9)); // the end of the list
    EXPECT_TRUE(NextIsCaption1(list, 10));
}

// Single precision overflows past 3.4e38: such a figure is no amount, and the record says at
// which row the overflow began, so that the command line, the window and the page can say so.
TEST(CalculateCosts, AnOverflowedFigureNamesItsRowAndNeverPrintsAsANumber) {
    struct Case {
        std::vector<QStringList> rows;
        int row; // the first row whose figure is not finite
    };
    const Case cases[] = {
        {{{"7100", "SILTA"}, {"", "Kaivu", "", "10", "m3", "5"}, {"", "Valtava", "", "1e308", "m3", "2"}}, 3},
        // Two amounts that fit alone but not together.
        {{{"", "A", "", "1", "erä", "3,4e38"},
          {"", "B", "", "1", "erä", "3,4e38"},
          {"", "C", "", "1", "m", "1"}},
         2},
        // Finite sums whose general costs overflow: the block's last row is named.
        {{{"", "A", "", "1", "erä", "3e38"}, {"", "B", "", "1", "erä", "1"}}, 1},
        {{{"", "A", "", "1", "erä", "100"}}, 0},
    };
    for (const Case& c : cases) {
        lists::ListModel list;
        fillQuantityList(list, c.rows);
        const CostRecord r = CalculateCosts(list, indexInputs("100", "100", "25"));
        EXPECT_EQ(r.nonFiniteRow, c.row) << c.rows.size();
        if (c.row == 0) {
            EXPECT_TRUE(NonFiniteMessage(r).isEmpty());
            continue;
        }
        EXPECT_EQ(NonFiniteMessage(r), QStringLiteral("summa ei ole äärellinen: rivi %1").arg(c.row));
    }
    const float inf = std::numeric_limits<float>::infinity();
    for (float v : {inf, -inf, std::numeric_limits<float>::quiet_NaN()}) {
        SCOPED_TRACE(v);
        EXPECT_EQ(MoneyS(v, 2), QStringLiteral("#####"));
        EXPECT_EQ(DecimalS(v, 1), QStringLiteral("#####"));
        EXPECT_EQ(FormatHashDotHash(v), QStringLiteral("#####"));
    }
}
