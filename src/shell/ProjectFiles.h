#pragma once
// Saving and opening the active project through the main window.
#include <QByteArray>
#include <QString>

namespace shell {

class MDIForm1;
struct ProjectWindows;

// Saves the project whose directory + name is `project` to `file`. With keepNames the
// windows keep their captions (a copy for sending). Returns false when nothing was saved.
bool WriteSlFile(MDIForm1& main, const QString& project, const QString& file, bool keepNames);

// Opens `file` into the windows of `project`. Returns false when the file could not be read;
// the windows then keep what they had. With `openAs` (a recovered copy) the project takes that
// name, as changed, and the recent files stay as they were.
bool ReadSlFile(MDIForm1& main, const QString& project, const QString& file, bool textOnly,
                const QString& openAs = QString());

// The project's windows as the bytes of a project file. With `progress` it is a save: the
// progress strip moves and the members also go to the temporary folder; without, only the
// bytes are made and nothing else changes.
QByteArray ProjectContainer(MDIForm1& main, const ProjectWindows& w, bool keepNames, bool progress);

} // namespace shell
