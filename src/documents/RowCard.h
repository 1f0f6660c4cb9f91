#pragma once
// The list row editor's rules, without widgets: which field of the card shows which column,
// the drop-down lists chosen by column header, the browse filters, the program modes' rules for
// the requirement card, and writing a card back into its row. Form5 is the window over them.
//
// Rows and columns are 1-based, as in the list procedures.
#include <QDate>
#include <QString>
#include <QStringList>
#include <Qt>
#include <array>
#include <vector>

namespace lists {
class ListModel;
}

namespace documents {

// One field of the card: a column shown in a multi-line box (Text1[index]) or in an editable
// drop-down (Combo1[index]).
struct CardField {
    int column = 0;
    bool longText = false;
    int index = 0;
    QString header;
};

// Whether column `column` of a list of this kind holds long texts: in the two requirement kinds
// the requirement and report texts (3, 12, 15, 20, 22, 23), in the quantity and unit price
// lists the work phase and the remarks (2, 7), in the change lists the change (3).
bool IsLongTextColumn(const QString& kind, int column);

// The card of a list: one field per column but "Rivi", in column order. Long-text columns
// count Text1 from 0; every other column c is Combo1[c - 1 - n], n the long-text columns
// before c.
std::vector<CardField> CardFields(const lists::ListModel& list);
// The field of a column; null when the column has none.
const CardField* FieldOfColumn(const std::vector<CardField>& fields, int column);

// What the drop-down lists are made of besides fixed items.
struct ComboSources {
    QDate today;
    // The bridge's part numbering ("Sillan osanumerointi") for "RAK. OSA"; null when none.
    const lists::ListModel* bridgeParts = nullptr;
    // The reference-document codes of "VIITE".
    QStringList referenceCodes;
};

// The items of a drop-down whose column has this header (compared in capitals); an empty list
// for a header without one.
QStringList ComboListItems(const QString& header, const ComboSources& sources);

// ---------------------------------------------------------------- browsing

// Browse filter codes; a negative code steps towards the top of the list.
namespace browse {
inline constexpr int Any = 1;
inline constexpr int Unchecked = 2;
inline constexpr int Checked = 3;
inline constexpr int Failed = 5;
inline constexpr int Met = 6;
inline constexpr int Measurement = 8;
inline constexpr int Review = 9;
inline constexpr int Certificate = 10;
inline constexpr int Type1 = 12;
inline constexpr int Type2 = 13;
inline constexpr int Type3 = 14;
inline constexpr int PlanText = 16;
inline constexpr int InspectionText = 17;
inline constexpr int ReportText = 18;
inline constexpr int ReferenceFile = 19;
inline constexpr int Caption = 20;
} // namespace browse

// Whether a filter code can select rows in a list of this kind: every code in the project's
// requirement list, 1, 8..10, 12..14 and 20 in the requirement base list, 1 and 20 elsewhere.
bool BrowseCodeSelects(const QString& kind, int code);
// Whether row `row` satisfies the condition of the code (its sign is ignored). In the
// requirement kinds codes 1..14 pass over rows without an identifier (column 2); in other
// lists code 1 passes over blank rows.
bool BrowseQualifies(const lists::ListModel& list, int row, int code);
// The signed distance from `fromRow` to the first row in the code's direction that qualifies;
// 0 when none does.
int BrowseDistance(const lists::ListModel& list, int fromRow, int code);
// BrowseDistance from the list's current row; when no row qualifies, the information box
// "Ensimmäinen kenttä." (stepping up) or "Viimeinen kenttä." (down) and 0.
int BrowseStep(const lists::ListModel& list, int code);

// The code of a browse key: PgUp/PgDn alone 1, with Shift 2, Ctrl 3, Ctrl+Shift 5, Alt 20,
// negative for PgUp. 0 for any other key.
int BrowseCodeForKey(int key, Qt::KeyboardModifiers modifiers);

// The "&Edellinen..." (direction -1) or "&Seuraava..." (+1) submenu: entry i filters with code
// i + 2; "-" is a separator.
QStringList BrowseMenuTexts(int direction);

// ---------------------------------------------------------------- the requirement card

// The four row entries of the "Muokkaa" menu for the list kind: new, clone, new at the end,
// delete.
std::array<QString, 4> RowMenuTexts(const QString& kind);

// What the program mode allows on the card of a project requirement, from the card's current
// drop-down texts (EnableControlsForm5). Other kinds leave every field editable.
struct CardRules {
    std::vector<char> textEditable;  // per Text1 index
    std::vector<char> comboEditable; // per Combo1 index
    // Drop-downs that get a new text: Combo1(9) emptied, an empty Combo1(17) "0,0".
    std::vector<std::pair<int, QString>> setCombo;
    bool openDocument = false;   // the file menu's item 0: column 13 names a file
    bool openAttachment = false; // item 1: column 14 names a file
};
CardRules EnableControlsForm5(const QString& kind, int programMode, const QStringList& comboTexts,
                              int textCount);

// A requirement is protected when its type begins with "1" or "2".
bool ProtectedRequirement(const QString& type);
// The contractor may give only advisory (type 3) requirements: true when the card's `type` is
// a type 1 or 2 that the contractor gave, one that the row (`rowType`) does not hold already. A
// bridge-specific requirement of the designer keeps its type when the contractor writes it back.
bool ContractorTypeRefused(int programMode, const QString& kind, const QString& type, const QString& rowType);
QString contractorTypeMessage();

// Requirements of the project's list must have an identifier.
bool NeedsIdentifier(const QString& kind);
QString identifierMessage();
// "Check and browse next" acts only on the project's requirements, for the contractor and the
// client.
bool CheckAllowed(const QString& kind, int programMode);

// Writes the card into row `row`: drop-down values without their bracketed explanation
// (RemoveInfo), long texts as they are. Returns whether a cell changed.
bool WriteCardToRow(lists::ListModel& list, int row, const std::vector<CardField>& fields,
                    const QStringList& texts, const QStringList& combos);

} // namespace documents
