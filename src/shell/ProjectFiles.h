#pragma once
// Saving and opening the active project through the main window.
#include <QString>

namespace shell {

class MDIForm1;

// Saves the project whose directory + name is `project` to `file`. With keepNames the
// windows keep their captions (a copy for sending). Returns false when nothing was saved.
bool WriteSlFile(MDIForm1& main, const QString& project, const QString& file, bool keepNames);

// Opens `file` into the windows of `project`. Returns false when the file could not be read;
// the windows then keep what they had.
bool ReadSlFile(MDIForm1& main, const QString& project, const QString& file, bool textOnly);

} // namespace shell
