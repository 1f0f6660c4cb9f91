#pragma once
// The program's private folders: the temporary folder, and the folders in the user's data
// folder that must outlive a reboot (recovery copies) or hold the user's own copies of the
// files that ship with the program.
#include <QString>

namespace platform {

// The folder "tamrik-<uid>" with mode 0700 inside the directory named by TEMP, or inside the
// system temporary directory when TEMP is not set. It is created when missing, and its
// permissions are tightened when someone loosened them. Returns the path ending in "/", or
// an empty string with `error` set when the folder cannot be made private.
QString privateTempPath(QString* error = nullptr);

// `path` made (with its parents) as a folder of this user with mode 0700. Returns the path
// ending in "/", or an empty string with `error` set.
QString privateFolder(const QString& path, QString* error = nullptr);

// The recovery copies' folder "palautus" in the per-user application data folder
// (QStandardPaths::AppLocalDataLocation, under ~/.local/share): kept across a reboot, unlike
// the temporary folder, and private (0700). Empty with `error` set when it cannot be made.
QString recoveryPath(QString* error = nullptr);

// The per-user folder for the user's own copies of files that ship with the program
// (QStandardPaths::AppDataLocation), ending in "/"; made when missing. Empty when there is none.
QString userDataPath();

// The folder for files that a mail program reads after the program handed them over (a draft,
// a project copy attached to a message): "posti/" inside the temporary folder, made when
// missing. They outlive the run; the next start removes those older than a day.
QString mailFolder(const QString& tempPath);

// A normal end: the scratch files of saving and opening ("~Tamrik30_*") go.
void removeScratchFiles(const QString& tempPath);

// At start: mail files and scratch files left behind that are older than `maxAgeSeconds`.
void removeOldTempFiles(const QString& tempPath, qint64 maxAgeSeconds = 24 * 60 * 60);

} // namespace platform
