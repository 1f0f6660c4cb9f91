#pragma once
// The heading index's contents without widgets: the work-phase headings of a list, the index
// mode that the active control calls for, and the lines the index inserts into a text.
#include <QString>
#include <vector>

namespace lists {
class ListModel;
}

namespace documents {

// One heading of a list: a row with a littera (a caption or a subcaption), or the road-works
// caption "TIETYÖT SILTAPAIKALLA", which may have none.
struct Heading {
    QString littera;
    // The heading column's text; a caption in capitals continued on the rows below it (texts in
    // capitals without a littera or an entry) has those texts joined to it with a blank.
    QString text;
    int row = 0;       // its position in the list
    QString rowNumber; // its "Rivi" value
    int level = 1;     // 1 a work phase (in capitals, or the road works), 2 a sub-phase
};

// The headings of the list, in list order.
std::vector<Heading> HeadingsOfList(const lists::ListModel& list);

// The index modes, as the windows pass them to the heading index.
namespace index_mode {
inline const QString QuantityList = QStringLiteral("0");    // the active project's quantity list
inline const QString Requirements = QStringLiteral("1");    // its requirement list
inline const QString PlanJump = QStringLiteral("2");        // find a heading in the plan description
inline const QString PlanInsert = QStringLiteral("3");      // insert headings into it
inline const QString EditorJump = QStringLiteral("4");      // find a heading in the text editor
inline const QString EditorInsert = QStringLiteral("5");    // insert headings into the editor's text
inline const QString UnitPriceBase = QStringLiteral("6");   // the unit price base list window
inline const QString RequirementBase = QStringLiteral("7"); // the requirement base list window
inline const QString Choose = QStringLiteral("8");          // choose a requirement heading ("&Valitse")
inline const QString ActiveList = QStringLiteral("9");      // the list of the active control
} // namespace index_mode

// The mode ShowIndex chooses: kind 2 gives "8" and kind 3 "9"; otherwise a list of the quantity
// kind or read-only ("No edit") "0", the project's requirement list "1", and the text box that
// shows "Rakennussuunnitelmaselostus" "2" (kind 0) or "3" (kind 1). `listTag` is the tag of the
// active list (empty when the active control is no list), `textTag` the name of the document
// in the active text box. An empty mode: no index for this control.
QString ShowIndexMode(int kind, const QString& listTag, const QString& textTag);

// Whether the index's source in this mode is a text rather than a list.
bool IsTextIndexMode(const QString& mode);
// Whether the index inserts headings rather than going to one.
bool IsInsertIndexMode(const QString& mode);

// The header of the index's second column: "Vaatimus" for the project's requirement list and
// for choosing a requirement, "Työvaihe" for the quantity list and the two base list windows;
// in the other modes "Vaatimus" when the headings come from a requirement kind.
QString IndexTextHeader(const QString& mode, const QString& sourceKind);

// The line AddToRich inserts for a heading: the littera, TAB and the text.
QString HeadingLine(const Heading& heading);

} // namespace documents
