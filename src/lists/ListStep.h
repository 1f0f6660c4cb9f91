#pragma once
// A step of a list's undo history. A step is opened with ListStep around an operation (an edit,
// a paste, a transfer with the formatting that follows it). Every change of the list's content
// inside it is recorded in a ListJournal; when the outermost ListStep ends, the changes become
// one step of the list's history. A change of a list that has a history but happens outside
// any step invalidates that history.
//
// The steps live apart from the list model and its journal because the history is a
// QUndoStack of the GUI library: only the desktop program links them.
#include "lists/ListJournal.h"

#include <QString>

class QUndoCommand;

namespace lists {

// The journal of a list step in a history; null for any other step.
const ListJournal* journalOf(const QUndoCommand* step);

// Records the operations on a list within its scope as one step named `text` ("rivien
// poisto"). Steps nest: only the outermost one goes into the history, with everything recorded
// inside it. A list without a history records nothing.
class ListStep {
public:
    ListStep(ListModel& list, const QString& text);
    ~ListStep();
    ListStep(const ListStep&) = delete;
    ListStep& operator=(const ListStep&) = delete;

private:
    ListModel& m_list;
};

// The step texts of the list operations, for the Edit menu's "Kumoa: ..." items.
namespace step {
inline const QString CellEdit = QStringLiteral("solun muokkaus");
inline const QString InsertRows = QStringLiteral("rivin lisäys");
inline const QString DeleteRows = QStringLiteral("rivien poisto");
inline const QString Cut = QStringLiteral("leikkaus");
inline const QString ClearCells = QStringLiteral("poisto");
inline const QString Paste = QStringLiteral("liittäminen");
inline const QString Sort = QStringLiteral("lajittelu");
inline const QString Transfer = QStringLiteral("rivien siirto");
inline const QString Format = QStringLiteral("luettelon muotoilu");
inline const QString Import = QStringLiteral("taulukon tuonti");
inline const QString UpdateRow = QStringLiteral("rivin päivitys");
inline const QString Inspection = QStringLiteral("tarkastusmerkintä");
} // namespace step

} // namespace lists
