#pragma once
// The cost estimate of a project's quantity list ("Määräluettelo ja kustannusarvio"): row
// amounts, subtotals per caption group left in the row tags, and two cost blocks, the bridge
// itself and the road works at the bridge site ("TIETYÖT SILTAPAIKALLA"), each with general
// site costs, conversion from the unit price index to the cost index, and rounding.
//
// Columns of the quantity list: 1 littera, 2 work phase (or caption), 3 structural part,
// 4 quantity, 5 unit, 6 unit price, 7 remarks, then "Rivi".
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

namespace lists {
class ListModel;
}

namespace calc {

// The texts of the basic data window's fields, read at the start of every run.
struct CostInputs {
    QString moneyUnit;      // Combo1(4) "Rahayksikkö"
    QString unitPriceIndex; // Combo1(3) "Yksikköhintojen i"
    QString costIndex;      // Combo1(10) "Kustannus i"
    QString generalPercent; // Combo1(11) "Yhteiskustannus %"
    QString vatPercent;     // Combo1(12) "ALV %"
};

// The inputs from the basic data window's Combo1 texts, by index (missing ones empty).
CostInputs CostInputsOf(const QStringList& basicCombos);

// The results of one run. Money values and sums are single precision, as the printed
// figures are.
struct CostRecord {
    float bridgeSum = 0;         // S1: row amounts of the bridge block
    float bridgeGeneral = 0;     // G1 = S1 * general% / 100
    float superstructureSum = 0; // amounts of the rows under litteras 7170..7199, whole list
    float bridgeTotal = 0;       // T1 = G1 + S1
    float bridgeConverted = 0;   // C1 = T1 converted from the unit price index to the cost index
    float bridgeRounded = 0;     // R1 = CustomRound(C1)
    float roadSum = 0;           // S2: row amounts of the road-works block
    float roadGeneral = 0;       // G2
    float roadTotal = 0;         // T2
    float roadConverted = 0;     // C2
    float roadRounded = 0;       // R2
    int bridgeSummaryRow = 0;    // the last list row of the bridge block
    int roadSummaryRow = 0;      // the number of rows in the list
    int bridgeSummaryLines = 0;  // print lines of the bridge summary (12 once the block closed)
    int roadSummaryLines = 0;    // print lines of the road-works summary with the VAT lines (29)
    // The first list row from which an amount, a sum or a total is no longer a finite number
    // (single precision overflows past 3.4e38); 0 when every figure is finite.
    int nonFiniteRow = 0;
};

// The multiplier from the unit price index to the cost index: (cost - unit) / unit + 1. A unit
// price index of 0 or an empty one gives 1; an empty cost index gives 0, as the formula says
// (the print selection warns about it).
double ConversionFactor(const CostInputs& inputs);

// Runs the estimate over the list and writes each row's tag: the subtotal of its caption group
// (MoneyS with 2 decimals) on the row that closes the group, an empty text on every other row.
CostRecord CalculateCosts(lists::ListModel& list, const CostInputs& inputs);

// True when, after `row`, a main caption row (its work-phase text a capital string) comes
// before any row with a quantity or a unit price. The end of the list counts as such a caption,
// so the last group's subtotal closes too.
bool NextIsCaption1(const lists::ListModel& list, int row);

// "summa ei ole äärellinen: rivi N" for a record with a figure that is not finite, else empty.
QString NonFiniteMessage(const CostRecord& record);

// The record's fields in order, each as its name and its value: single precision values with
// 9 significant digits, integers plainly.
std::vector<std::pair<QString, QString>> CostRecordFields(const CostRecord& record);

// The record as "name = value" lines in field order, each ending in a line feed.
QString FormatCostRecord(const CostRecord& record);
// The same fields as one JSON object (`tamrik costs --json`, the comparison's costs): the
// figures as numbers with the values the lines show, the counts as integers.
QJsonObject CostRecordObject(const CostRecord& record);
QByteArray CostRecordAsJson(const CostRecord& record);

} // namespace calc
