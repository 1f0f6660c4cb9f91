#pragma once
// The lock file beside a project that is open in a program, as office programs keep one:
// ".~lock.<file name>#" in the project's folder, one line naming the program, the user, the
// host, the process and the time it was opened. Another program of the same or another user
// finds it and can say who has the project open; a lock whose program is gone is stale.
#include <QDateTime>
#include <QString>
#include <optional>

namespace platform {

struct LockOwner {
    QString user;
    QString host;
    qint64 pid = 0;
    QDateTime time; // UTC
};

// This process as the owner of a lock, now.
LockOwner currentLockOwner();

// The lock file of a project file.
QString projectLockPath(const QString& project);

// The owner named in the project's lock file; none when there is no readable lock.
std::optional<LockOwner> readProjectLock(const QString& project);

// A lock is stale when its process is gone on this host, or when it is older than
// `maxAgeHours` (a program on another host that crashed; a running program renews its locks).
bool isStaleLock(const LockOwner& owner, int maxAgeHours = 24,
                 const QDateTime& now = QDateTime::currentDateTimeUtc());

// True when the lock is this process's own.
bool isOwnLock(const LockOwner& owner);

// Writes this process's lock beside the project (atomically); false when the folder is not
// writable, which only means that other programs are not warned.
bool writeProjectLock(const QString& project);

// Removes the project's lock when it is this process's own.
void removeOwnProjectLock(const QString& project);

// The owner as the user reads it: "käyttäjä U, kone H, prosessi P, avattu d.M.yyyy klo h.mm".
QString describeLockOwner(const LockOwner& owner);

} // namespace platform
