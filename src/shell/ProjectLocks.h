#pragma once
// The lock files of this program's open projects: a project opened, saved under a name or
// recovered gets its lock beside it; a project closed or renamed gives it up; the program's
// end gives up all. A project that another running program has open is refused with the
// question whether to open it read-only (as a copy without the file's name) or anyway.
#include <QObject>
#include <QTimer>
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

    enum class OpenChoice { Edit, ReadOnly, Cancel };
    // Asks when `file` is open in another running program; Edit when it is not.
    static OpenChoice askBeforeOpening(const QString& file);
    // Asks before saving over a file that another running program has open; true to save.
    static bool mayWriteOver(const QString& file);

private:
    void renew();

    MDIForm1& m_main;
    std::set<QString> m_held;
    QTimer m_renew;
};

} // namespace shell
