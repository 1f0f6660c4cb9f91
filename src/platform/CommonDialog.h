#pragma once
// The shared file dialog of the program: a kind (1 open, 2 save), an extension that chooses
// the filter, and the chosen path as the result (empty when the user cancelled).
#include <QString>
#include <map>

namespace platform {

struct CommonDialogState {
    QString filter;    // the filter in use; an unknown extension keeps it
    QString extension; // the extension the filter belongs to
    QString directory; // where the last dialog for other files (texts, attachments) ended
    // Where the last dialog of each kind of file ended, by `folderKind`; the settings keep them.
    std::map<QString, QString> folders;
};

// The kind of file whose folder a dialog for this extension remembers: "Projects" (.sl),
// "Lists" (.sl1, .sl2), "Spreadsheets" (.xls) or "Pictures" (.wmf); empty for the others.
QString folderKind(const QString& extension);
// The folder the next dialog for this extension starts in: `preferred` (a folder, or a file
// whose folder is meant) when it exists, else the folder of its kind from the state, else the
// user's home folder.
QString startFolder(const QString& extension, const CommonDialogState& state,
                    const QString& preferred = QString());

// The filter for an extension in "Kuvaus|malli|..." form; empty for an unknown extension.
QString filterForExtension(const QString& extension, bool save);

// Shows the dialog, starting in `startFolder(extension, state, preferred)`; a save dialog
// given a file as `preferred` suggests its name. A multiple selection of several files comes
// back as the folder and the names separated by NUL characters; a single file as its full path.
// The chosen file's folder becomes the one its kind starts in next time.
QString ShowCommonDialog(int kind, const QString& extension, bool multiple, CommonDialogState& state,
                         const QString& preferred = QString());

// The number of files in a file dialog's result. Several files, given as the folder and the
// names separated by NUL characters, are rewritten as full paths separated by NUL characters;
// a single path stays as it is. An empty result holds 0 files.
int EvaluateNFiles(QString& files);

} // namespace platform
