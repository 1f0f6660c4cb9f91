#pragma once
// The comparison of two versions of a project: which rows of the quantity list and the
// requirement list were added, removed or changed, which fields, text documents and pictures
// changed, and what the changes do to the cost estimate and to the bridge quality number.
//
// Rows are matched by identity, not by position:
// - a caption row (work phase) by its littera (its heading when it has none, as the road works
//   caption), a subcaption by its caption and its littera; so a renamed work phase is one
//   changed row and its rows keep their identity;
// - any other row of the quantity list by its caption path and its description (column 2), a
//   requirement by its caption path, its number ("Nro") and its text.
// Rows of the same identity are paired in the order they stand in, so a row moved within its
// work phase is no change. Blank rows are layout and are not compared. Everything runs in time
// linear in the number of rows.
#include "calc/CardText.h"
#include "calc/CostEstimate.h"
#include "calc/QualityIndex.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <array>
#include <memory>
#include <vector>

namespace lists {
class ListModel;
}

namespace calc {

// One version of a project as a file holds it, with its lists as list models.
struct ProjectVersion {
    ProjectVersion();
    ~ProjectVersion();
    ProjectVersion(ProjectVersion&&) noexcept;
    ProjectVersion& operator=(ProjectVersion&&) noexcept;

    QString name; // the file with its folder (or the project's name), as reports show it
    // The four windows (basic data, detailed data, characteristics card, charge chamber card):
    // their Text1 and Combo1 texts and their lists by index.
    std::array<WindowTexts, 4> windows;
    std::array<std::vector<std::unique_ptr<lists::ListModel>>, 4> lists;
    QStringList referenceItems;          // the detailed data window's reference drop-down
    QStringList checks;                  // the charge chamber card's check boxes, "0", "1" or "2"
    std::array<QByteArray, 3> documents; // the rich text of the three documents
    struct Picture {
        QByteArray bytes;
        int type = 0; // the project file's type byte; 0 no picture
    };
    std::array<Picture, 6> pictures;

    // A list of a window; an empty list of the right kind when the version does not have it.
    const lists::ListModel& list(int window, int index) const;
    // The quantity list and the requirement list. The cost estimate writes the row tags of the
    // quantity list, as it does in the window.
    lists::ListModel& quantities() const;
    const lists::ListModel& requirements() const;
};

enum class ChangeKind { Added, Removed, Changed };
// Where a change is: the two project lists, or the fields, documents and pictures.
enum class ChangeSource { Quantity, Requirement, Field };

// A row of the quantity list or the requirement list that differs.
struct RowChange {
    ChangeSource list = ChangeSource::Quantity;
    ChangeKind kind = ChangeKind::Changed;
    int oldRow = 0; // rows of the two versions' lists, 1-based; 0 where the version lacks it
    int newRow = 0;
    // A removed row: the new version's row it would follow (0: before the first row); an added
    // row: the old version's row it follows.
    int nearNewRow = 0;
    int nearOldRow = 0;
    QString key;          // the row's identity for people: caption path and description
    QStringList oldCells; // the row's data cells in each version (empty where it lacks it)
    QStringList newCells;
    std::vector<int> columns; // changed: the columns that differ
    float oldCost = 0;        // the row amounts (quantity x unit price) of the quantity list
    float newCost = 0;
    float costChange() const { return newCost - oldCost; }
};

// A field, a row of a window's small list, a text document or a picture that differs.
struct FieldChange {
    ChangeKind kind = ChangeKind::Changed;
    int window = 0; // 0 basic data, 1 detailed data, 2 characteristics card, 3 charge chamber card
    QString field;  // the name the window shows it by
    QString oldText;
    QString newText;
};

// The row amounts of one main work phase (a caption of the first level) in both versions.
struct PhaseCost {
    QString label; // littera and heading, as the newer version has it where it has the phase
    float oldSum = 0;
    float newSum = 0;
    bool inOld = false;
    bool inNew = false;
};

// A work phase of the quality summary in both versions.
struct QualityGroup {
    QString littera;
    QString text;
    float oldMax = 0, oldRealized = 0;
    float newMax = 0, newRealized = 0;
    bool inOld = false;
    bool inNew = false;
};

// One line of the table of changes, as the comparison window and the printed comparison show
// it: a changed row gives a line per changed column, an added or removed row one line with its
// other cells, a field one line.
struct ChangeLine {
    ChangeKind kind = ChangeKind::Changed;
    ChangeSource source = ChangeSource::Quantity;
    int change = 0;    // index into rows or fields
    bool first = true; // the first line of its row
    QString place;     // the list or the window
    QString key;       // the row's identity or the field's name
    QString column;    // the changed column of a row
    QString oldText;
    QString newText;
};

// A row of the comparison's summary: a heading with the names of its columns, a label with
// the figures of both versions, or an empty row between the parts.
struct SummaryRow {
    enum Type { Heading, Line, Blank };
    Type type = Line;
    QString label;
    QString oldText, newText, change, percent;
};

struct ProjectComparison {
    QString oldName, newName;
    CostRecord oldCosts, newCosts;
    CostInputs oldInputs, newInputs;
    std::vector<PhaseCost> phases;
    QualityRecord oldQuality, newQuality;
    bool oldHasRequirements = false; // a version without requirements has no quality number
    bool newHasRequirements = false;
    std::vector<QualityGroup> qualityGroups;
    int markChanges = 0; // paired requirements whose mark (fulfilled / not / not inspected) changed
    std::vector<RowChange> rows;
    std::vector<FieldChange> fields;
    std::vector<ChangeLine> lines;
    // The cost totals, the row amounts per work phase, the quality number and Tot% per work
    // phase, and the requirements whose mark changed, as the reports show them.
    std::vector<SummaryRow> summary;

    bool equal() const { return rows.empty() && fields.empty(); }
    // Changes of each kind over rows and fields.
    int count(ChangeKind kind) const;
};

ProjectComparison CompareProjects(const ProjectVersion& older, const ProjectVersion& newer);

// The totals of the cost estimate the comparison reports, in order: the row amounts of the
// bridge and the road works, the bridge's and the road works' costs at the cost index, and the
// whole ("Sillan kokonaiskustannus", rounded as the summary rounds it).
struct CostTotal {
    QString label;
    float oldValue = 0;
    float newValue = 0;
};
std::vector<CostTotal> CostTotals(const ProjectComparison& comparison);

// Texts of the reports.
QString ChangeKindText(ChangeKind kind);  // "Lisätty", "Poistettu", "Muutettu"
QString ChangeSourceText(ChangeSource s); // "Määräluettelo", "Laatuvaatimukset", "Kentät"
QString WindowName(int window);           // "Perustiedot", ...
// The header of a column of the quantity list or the requirement list ("MÄÄRÄ"); "SARAKE n"
// beyond the known columns.
QString ColumnName(ChangeSource list, int column);
// Money with two decimals, 0 as "0,00"; a change with its sign.
QString MoneyText(float value);
QString MoneyChangeText(float change);
// The change in per cent of the old value, with one decimal and its sign; "-" from 0.
QString PercentChangeText(float oldValue, float newValue);
// The quality number as the summary shows it ("75,9"); "-" for a version without requirements.
QString QualityNumberText(const QualityRecord& record, bool hasRequirements);
// The quality number as a number, rounded as the summary shows it.
double QualityNumberValue(const QualityRecord& record);
// Tot% of a work phase, as the summary shows it; "-" without weights.
QString GroupPercentText(float max, float realized);

} // namespace calc
