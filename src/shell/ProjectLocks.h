#pragma once
// The lock files of this program's open projects: a project opened, saved under a name or
// recovered gets its lock beside it; a project closed or renamed gives it up; the program's
// end gives up all. A project that another running program has open is refused with the
// question whether to open it read-only (as a copy without the file's name) or anyway.
#include "platform/ProjectLock.h"

#include <QObject>
#include <QTimer>
#include <optional>
#include <set>

namespace shell {

class MDIForm1;

class ProjectLocks : public QObject {
    Q_OBJECT
public:
    explicit ProjectLocks(MDIForm1& main);
    // Gives up every lock of this program.
    ~ProjectLocks() override;

    // Follows the open projects: locks the files now open, gives up the others.
    void sync();

    // The owner of another running program's live lock on `file`; none when the file is free,
    // its lock is stale or this program's own.
    static std::optional<platform::LockOwner> openElsewhere(const QString& file);

    enum class OpenChoice { Edit, ReadOnly, Cancel };
    // Asks when `file` is open in another running program; Edit when it is not.
    static OpenChoice askBeforeOpening(const QString& file);
    // Asks before saving over a file that another running program has open; true to save.
    static bool mayWriteOver(const QString& file);

    // Writes this program's lock where none is (the other program that had the project open
    // too has closed it) or where it grows old; another running program's lock stays.
    void renew();

private:
    MDIForm1& m_main;
    std::set<QString> m_held;
    QTimer m_renew;
};

} // namespace shell
