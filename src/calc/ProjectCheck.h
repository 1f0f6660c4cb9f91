#pragma once
// The project check: finds the cells whose text the calculations read differently from how it
// looks ("1.200,50" is read as 1,2, "n. 40" as 0, "12,5 m3" as 12,5 without its unit), rows
// that drop out of the cost estimate, weights and factors out of their range, litteras out of
// order, and inspections without measurements. It reads exactly what CalculateCosts and
// CalculateQualityIndex read and changes nothing: it only says what it found.
//
// Every finding names its place as the user sees it: the list (or the basic data window for a
// field), the row from 1 as the list shows it, the column's header and the cell's text.
#include "calc/CostEstimate.h"

#include <QByteArray>
#include <QString>
#include <vector>

namespace lists {
class ListModel;
}

namespace calc {

// "Virhe": the text makes a total or the quality number other than it looks. "Huomautus": it
// only looks wrong, or something is missing that the totals do not depend on.
enum class Severity { Error, Remark };

// Where a finding is: a list of the detailed data window or a field of the basic data window.
enum class CheckPlace { BasicData, Quantities, Requirements };

// What was found. Each kind has one explanation; the tests go through them all.
enum class FindingKind {
    NotANumber,       // no digit at all: "-", "?", "abc", "n." read as 0
    NumberNotAtStart, // a number after other text: "n. 40", "(5)" read as 0
    OutOfRange,       // digits beyond the range of a number, read as 0
    TwoSeparators,    // "1.200,50" read as 1,2
    ThousandsPoint,   // "1.200" read as 1,2
    DigitsJoined,     // "12,5 3" read as 12,53: blanks inside a number are skipped
    TrailingNumber,   // "5-6", "2 x 3": the number after the first is dropped
    TrailingText,     // "12,5 m3": a unit or other text after the number is dropped
    PriceWithoutQuantity,
    PriceWithoutUnit,
    QuantityWithoutPrice,
    PriceInUnitColumn,
    IndexMissing,     // unit price index or cost index empty or 0
    WeightOutOfRange, // outside 0..5
    FactorOutOfRange, // outside 0..1
    TypeNotRead,      // a requirement type that does not start with 1, 2 or 3
    ResultNotRead,    // "TÄYTTÄÄ VAATIMUKSET" that is neither "K..." nor "E..."
    InspectedWithoutMeasurement,
    LitteraOrder, // not above the littera before it in its work phase
    LitteraTwice,
    PhaseWithoutPrices,
};

struct Finding {
    Severity severity = Severity::Remark;
    FindingKind kind = FindingKind::NotANumber;
    CheckPlace place = CheckPlace::Quantities;
    int row = 0;    // the list row from 1; 0 for a field of the basic data window
    int column = 0; // the list column from 1, or the field's Combo1 index
    QString columnName;
    QString text;
    QString message;
};

// What the check reads: the project's two lists and the basic data fields of the estimate.
// The desktop program passes its windows' lists, the command line the lists of a project file.
struct CheckSource {
    const lists::ListModel* quantities = nullptr;
    const lists::ListModel* requirements = nullptr;
    CostInputs inputs;
};

// Every finding of the project: the basic data fields first, then the quantity list and the
// requirement list, each in row and column order. Linear in the rows.
std::vector<Finding> CheckProject(const CheckSource& source);

// The findings that the row itself decides (number texts, missing values, ranges, the
// inspection), in column order: what the lists mark beside the cells the user types in.
// `place` says which of the two lists `list` is.
void CheckRow(CheckPlace place, const lists::ListModel& list, int row, std::vector<Finding>& out);

// "Virhe" / "Huomautus".
QString SeverityText(Severity severity);
// "Perustiedot", "Määräluettelo", "Laatuvaatimukset".
QString PlaceText(CheckPlace place);
int ErrorCount(const std::vector<Finding>& findings);
int RemarkCount(const std::vector<Finding>& findings);
// "1 virhe", "3 virhettä", "1 huomautus", "2 huomautusta".
QString CountText(int count, Severity severity);

// One finding a line, "SEVERITY\tLIST\tROW\tCOLUMN\tTEXT\tEXPLANATION\n" with the severity and
// the list in lower case and an empty ROW for a field; tabs and line breaks inside a text
// become spaces, so that every finding stays on its line.
QString FindingsAsLines(const std::vector<Finding>& findings);
// The findings as a JSON array of objects with the keys "severity", "list", "row" (null for
// a field), "column", "text" and "message", the texts as they stand.
QByteArray FindingsAsJson(const std::vector<Finding>& findings);

} // namespace calc
