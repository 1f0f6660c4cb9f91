#pragma once
// Editing lists without widgets: the rights of the program modes, storing typed text, row
// insertion, appending and deletion, sorting by a column, the clipboard text of list rows, and
// transfers of whole entries between a project list and a base list. The window side (the edit
// box, keys, dragging) is ListEditor.
//
// Rows and columns are 1-based, as in ListProcedures. Every procedure that refuses an action has
// already told the user (through the dialog facade) when it returns.
#include "lists/ListModel.h"
#include "lists/ListSort.h"

#include <QString>
#include <QStringList>
#include <vector>

namespace lists {

// The action codes that ListViewEditEnabled is asked about.
namespace action {
inline constexpr int InsertRow = 1;        // "Lisää rivi": an empty row before each selected row
inline constexpr int AppendRow = 2;        // "Lisää rivi listan loppuun"
inline constexpr int DeleteRows = 3;       // "Poista rivi"
inline constexpr int Cut = 10;             // cut the selection
inline constexpr int Copy = 11;            // copy the selection
inline constexpr int Paste = 12;           // paste
inline constexpr int DeleteSelection = 13; // delete the selection's contents
inline constexpr int EditCell = 20;        // edit one cell
} // namespace action

// What the rules need to know about the list being edited besides the list itself.
struct EditContext {
    int programMode = 3; // 1 designer, 2 contractor, 3 client
    // 0: the quantity list of the detailed data window, 1: its requirement list, -1: any other.
    int listIndex = -1;
    // That list's "edit only ..." check box; never set for listIndex -1.
    bool restricted = false;
};

// Tells the user that the current mode forbids what was tried; the client is told nothing.
void ShowDeny(int programMode);

// The message shown when a contractor types a bridge-specific requirement type.
QString typeOneRefusalText();

// The columns that may be edited: all but "Rivi", or with the restriction only the structural
// part and quantity (3..4) of the quantity list or the numeric values (6..8) of the requirement
// list. `last` < `first` when nothing can be edited.
struct EditableColumns {
    int first = 1;
    int last = 0;
};
EditableColumns EditableColumnRange(const ListModel& list, const EditContext& ctx);
// The column whose non-blank cells a restricted list moves between with Enter: 5 in the
// quantity list, 2 in the requirement list; 0 when no restriction applies.
int RestrictedEntryColumn(const EditContext& ctx);

// Whether `actionCode` is allowed on the list; a refusal has been reported with ShowDeny.
// `editRow` is the cell's row for EditCell. Paste reads the clipboard unless the text is given
// (the overload that reads it is in ListClipboard.cpp, with the other users of the clipboard).
bool ListViewEditEnabled(const ListModel& list, int actionCode, const EditContext& ctx, int editRow = 0);
bool ListViewEditEnabled(const ListModel& list, int actionCode, const EditContext& ctx, int editRow,
                         const QString& clipboardText);

// The row that decides a contractor's rights over row `r` of a requirement list: its entry row,
// else its subcaption, else its caption, else the row itself.
int GoverningRow(const ListModel& list, int r);

// Whether row `r` of a project requirement list belongs to a requirement the contractor may not
// change: its governing row has a type beginning with 1 or 2.
bool ProtectedRequirement(const ListModel& list, int r);

// Offset from `fromRow` to the nearest row in `direction` (+1 or -1) whose cell in `column` is
// not blank; 0 when there is none.
int NextNonBlank(const ListModel& list, int column, int direction, int fromRow);

// Removes trailing spaces in place; a text of spaces only becomes empty.
void RemoveTrailingSpaces(QString& text);

// Stores typed text into a cell exactly as typed. A contractor's type beginning with "1" in a
// project requirement list is refused with a message. Returns whether the cell changed.
bool PutToListView(ListModel& list, int row, int column, const QString& text, const EditContext& ctx);

// Row action 1 (an empty, numbered row before each selected row), 2 (an empty row at the end)
// or 3 (remove the selected rows), after the rights check. Numbers come out exactly as the
// one-by-one insertions would give them, computed in one pass. Returns whether the list changed.
bool ListViewRowEdit(ListModel& list, int rowAction, const EditContext& ctx);

// A click on a column header: asks first unless it is the first column, then sorts once,
// stably, by that column (by "Rivi" for the first column, which restores the original order).
// Returns whether the rows were sorted.
bool SortItems(ListModel& list, int column);

// ---------------------------------------------------------------- clipboard text

// A cell as it travels on the clipboard: CR LF becomes character 1 and TAB character 2.
QString EncodeClipCell(QStringView cell);
QString DecodeClipCell(const QString& cell);
// The littera and data cells of the rows, TAB between cells and CR after each row.
QString ClipTextOfRows(const ListModel& list, const std::vector<int>& rows);

struct ClipDimensions {
    int rows = 0;
    int columns = 0;
};
// Rows and columns of clipboard text. Line ends LF and CR LF are turned into CR in place.
ClipDimensions ClipSize(QString& text);
// All cells of clipboard text in order, decoded: cell (r, c) is at (r - 1) * columns + c - 1.
QStringList ClipCells(const QString& text);
// One cell (1-based row and column) of clipboard text; empty when it does not exist.
QString ParseClipData(const QString& text, int row, int column, int columns);

// The two operations with the system clipboard (ListClipboard.cpp).
// Operation 0 cut, 1 copy, 3 delete on the selected rows: copy and cut put their text on the
// clipboard, cut and delete empty the rows' cells but keep the rows and their numbers. Returns
// whether the list changed.
bool ListViewCutCopyDelSelection(ListModel& list, int operation, const EditContext& ctx);
// Inserts the clipboard's rows above the selected row and fills them. Returns whether the list
// changed. PasteText does the same with text given by the caller.
bool PasteSelection(ListModel& list, const EditContext& ctx);
bool PasteText(ListModel& list, const QString& clipboardText, const EditContext& ctx);

// ---------------------------------------------------------------- transfers

// Whether rows of a list of kind `sourceTag` may be transferred into one of kind `targetTag`:
// unit prices and quantities either way, requirements and the requirement base list either way.
bool TransferAllowed(const QString& targetTag, const QString& sourceTag);

struct TransferOptions {
    int programMode = 3;
    // The unit price column (4 A, 5 B, 6 C) chosen in the unit price window; 0 for none.
    int unitPriceColumn = 0;
};

struct TransferResult {
    bool changed = false;
    int lastPosition = 0; // the row selected afterwards
    int insertedRows = 0;
};

// Copies one block of rows (an entry, a subcaption or a caption) from `source` into `target` at
// `position`, converting its columns to the target's kind; with `onlyIfMissing` nothing happens
// when the target already has a row with the block's littera and heading. Returns the rows
// inserted.
int InsertData(int mode, const ListModel& source, int firstRow, int rowCount, ListModel& target, int position,
               bool onlyIfMissing, const TransferOptions& options);

// Where rows dropped on a list go, as TransferData's mode and position: appended when dropped
// below the rows, into an empty list at its start, else sorted in where their litteras say, or
// (`shift`) placed above the drop row.
struct DropPlace {
    int mode = 4;
    int position = 0;
};
DropPlace dropPlace(const ListModel& target, int dropRow, bool shift);

// Transfers the selected rows of `source` into `target` as whole entries, with their captions
// in modes 0, 1, 4 and 5. `position` is the target row less one for modes 2 and 3. The caller
// marks its window changed and formats the list when the result says it changed.
TransferResult TransferData(ListModel& target, const ListModel& source, int position, int mode,
                            const TransferOptions& options);

// The "Lisää" commands of a base list window: into an empty target one empty row first, the
// target's selected row deselected, and the transfer from that row less one (from the end when
// the target has no selected row).
TransferResult ExportToList(ListModel& target, const ListModel& source, int mode,
                            const TransferOptions& options);

} // namespace lists
