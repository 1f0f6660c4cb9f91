#pragma once
// Preparing a new project window: its lists from the list templates and its drop-downs from
// the combo data file of the window type, both in the program folder.
#include <QDate>
#include <QString>

namespace documents {

class ProjectWindow;

// Fills ListView1[i] from the list template `fileName` in the program folder (";" separated).
// A missing template is reported by the list reader and leaves the list empty.
void LoadListTemplate(ProjectWindow& window, int i, const QString& fileName);

// Adds the entries of "Tamrik30_combodata<type>.csv" to the window's drop-downs, field i of a
// line to Combo1[i - 1]. A file that cannot be read is reported with the system's description;
// the entries added up to then stay.
void UpdateComboListFromFile(ProjectWindow& window, int type, const QDate& today = QDate::currentDate());

} // namespace documents
