#pragma once
// The procedures every list shares: row numbers, row classes, the caption that governs a row,
// copying caption blocks, the place of transferred rows and blank-row formatting.
//
// Rows and columns are 1-based. The column roles come from the list's kind (not from the
// read-only state: a list made read-only keeps its columns' meaning for reports and sums).
#include "lists/ListModel.h"

#include <QString>
#include <array>
#include <vector>

namespace lists {

// The kind texts of the lists.
namespace kind {
inline const QString QuantityList = QStringLiteral("Määräluettelo ja kustannusarvio");
inline const QString UnitPriceList = QStringLiteral("Yksikköhintaluettelo");
inline const QString Requirements = QStringLiteral("Laatuvaatimukset");
inline const QString RequirementBase = QStringLiteral("Laatuvaatimusten perusluettelo");
inline const QString BridgeParts = QStringLiteral("Sillan osanumerointi");
inline const QString Changes = QStringLiteral("Muutokset");
inline const QString ChargeChambers = QStringLiteral("Panostilat");
inline const QString NoEdit = QStringLiteral("No edit");
} // namespace kind

// The caption of the road works at the bridge site; it is a caption with or without a littera.
inline const QString kRoadWorksCaption = QStringLiteral("TIETYÖT SILTAPAIKALLA");
// Litteras below this one are road works, the bridge's work phases start here.
inline const QString kBridgeLitteraStart = QStringLiteral("7100");

// The two groups of main kinds, which fix the heading, entry and detail columns.
enum class ListGroup { Other, Quantity, Quality };

ListGroup groupOfKind(const QString& kindText);
ListGroup groupOf(const ListModel& list);
bool isQuantityKind(const QString& kindText);
bool isQualityKind(const QString& kindText);
// The column of work-phase names and entry texts: 3 for the quality kinds, 2 for every other list.
int headingColumn(const ListModel& list);
// The column that is filled on the first row of an entry: 5 (quantity), 2 (quality), 0 (others).
int entryColumn(const ListModel& list);
// The column reported with a found entry or caption: 3 (quantity), 2 (quality), 0 (others).
int detailColumn(const ListModel& list);

// Empty or spaces only.
bool BlankString(QStringView text);
// No lower-case letter and at least two upper-case ones (a-z, å, ä, ö and their capitals,
// compared by code; everything else is ignored).
bool CapitalString(QStringView text);
inline bool BlankString(const QString& text) {
    return BlankString(QStringView(text));
}
inline bool CapitalString(const QString& text) {
    return CapitalString(QStringView(text));
}

struct BlankInfo {
    int firstNonBlankCol = 0; // 0 when the row is blank
    bool blank = true;
};
// Looks at the littera and the data columns of row r; the row-number column never counts.
BlankInfo BlankListItem(const ListModel& list, int r);

// The sub-item number (column less one) of the heading column.
int ListViewHotSubItem(const ListModel& list);

// Row numbers.
// The number a row inserted at `position` takes: 1 in an empty list, the largest row number
// plus 1 when appending, otherwise the number of the row now at the position.
long long CurrentRowNumber(const ListModel& list, int position);
// After inserting a row with an empty number: empty (zero) numbers become `number`, numbers
// from `number` on move up by one.
void UpdateRowNumbers(ListModel& list, long long number);
// Inserts one empty row at `position` (beyond the last row appends) and returns its position.
// A numbered row gets CurrentRowNumber; an unnumbered one keeps an empty number cell.
int AddListViewRow(ListModel& list, int position, bool numbered);
// Inserts rows at `position` in one step, with exactly the row numbers that inserting them one
// by one from the last to the first, each at `position`, would give. Each row is padded or cut
// to the list's columns; its row-number cell is ignored. Returns the position of the first.
int InsertListViewRows(ListModel& list, int position, std::vector<Row> rows, bool numbered);

// What governs a row: its caption, subcaption and entry blocks. Rows not found stay 0.
struct CaptionInfo {
    int captionRow = 0;
    int captionRows = 0;
    int subcaptionRow = 0;
    int subcaptionRows = 0;
    int entryRow = 0;
    int entryRows = 0;
    QString captionLittera;
    QString captionText; // the heading texts of the caption's continuation rows appended
    QString subcaptionLittera;
    QString subcaptionText;
    QString detailText;
    QString entryText;
};
// Finds the blocks governing `startRow`; nothing for a list that is not of a main kind.
CaptionInfo FindCaption(const ListModel& list, int startRow);

// Copies the block of `rowCount` rows from `firstRow` of `source` to `position` of `target`
// unless the target already has its littera and its column 2 text. Returns the rows inserted.
int InsertCaption(ListModel& target, int position, const ListModel& source, int firstRow, int rowCount);

// Where rows transferred from `source` go in `target`. Modes 0 and 1 place them after their
// caption or subcaption (or in littera order), 2 and 3 add `offset` to `position`, 4 and 5
// append; any other mode keeps `position`.
int LocateRow(const ListModel& target, const ListModel& source, int position, int captionRow,
              int subcaptionRow, int mode, int offset);

// The counts of the blank-row settings "BlankLines_0" .. "BlankLines_5" and their defaults.
using BlankLines = std::array<int, 6>;
inline constexpr BlankLines kDefaultBlankLines{1, 1, 0, 1, 1, 0};

// Brings the blank rows between rows `first` and `last` (0: the last row) to the counts wanted
// between captions, subcaptions and entries; from row 1 also the blank rows at the top. Rows
// with content are never removed; a removed selected row passes its selection to the row
// after it. Returns whether anything changed.
bool FormatListView(ListModel& list, int first, int last, const BlankLines& blankLines);

// A littera of six characters gets a "0" before its last character (2110.1 -> 2110.01), so
// that first- and second-decimal litteras sort together.
QString normalisedLittera(QStringView littera);

// Where a row stands in its list's caption hierarchy, for the status bar: its caption, its
// subcaption and its entry, each as the row number and the texts.
std::array<QString, 3> CaptionStatusTexts(const ListModel& list, int row);

} // namespace lists
