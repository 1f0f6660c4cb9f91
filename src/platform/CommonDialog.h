#pragma once
// The shared file dialog of the program: a kind (1 open, 2 save), an extension that chooses
// the filter, and the chosen path as the result (empty when the user cancelled).
#include <QString>

namespace platform {

struct CommonDialogState {
    QString filter;    // the filter in use; an unknown extension keeps it
    QString extension; // the extension the filter belongs to
    QString directory; // where the last dialog ended
};

// The filter for an extension in "Kuvaus|malli|..." form; empty for an unknown extension.
QString filterForExtension(const QString& extension, bool save);

// Shows the dialog. A multiple selection of several files comes back as the folder and the
// names separated by NUL characters; a single file as its full path.
QString ShowCommonDialog(int kind, const QString& extension, bool multiple, CommonDialogState& state);

// The number of files in a file dialog's result. Several files, given as the folder and the
// names separated by NUL characters, are rewritten as full paths separated by NUL characters;
// a single path stays as it is. An empty result holds 0 files.
int EvaluateNFiles(QString& files);

} // namespace platform
