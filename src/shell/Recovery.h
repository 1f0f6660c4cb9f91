#pragma once
// Autosave and recovery after a crash. Every few minutes each project with unsaved changes is
// copied into this program's own session folder inside the private recovery folder of the
// user's data folder (kept across a reboot, unlike the temporary folder); the user's file, the
// captions and the changed state are not touched. A normal end removes the session folder; an
// end that cannot ask (SIGTERM, the session manager) writes a last copy of every changed
// project and keeps them. A session folder whose program is gone (its lock is free) holds the
// copies that the next start offers to restore.
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>
#include <memory>
#include <vector>

class QLockFile;

namespace shell {

class MDIForm1;

// A copy of one project, written by the autosave.
struct RecoveredProject {
    QString copy;    // the copy's file
    QString project; // the project as its captions named it: a file path, or "ProjektiN"
    QDateTime time;  // when the copy was written
};

// The copies in a session folder, oldest first; copies without their description are left out.
std::vector<RecoveredProject> recoveryCopies(const QString& sessionFolder);

// The question asked about a copy at start-up. With `versions` above 1 (programs killed with
// the same project open) it says so and names `openAs`, the name this version comes back under.
QString recoveryQuestion(const RecoveredProject& copy, int version = 1, int versions = 1,
                         const QString& openAs = QString());

// The name of version `version` of a project recovered more than once: "A.sl" becomes
// "A (palautettu 1).sl" in the same folder.
QString recoveredVersionName(const QString& project, int version);

class Recovery : public QObject {
    Q_OBJECT
public:
    explicit Recovery(MDIForm1& main);
    // A normal end: the session folder and its copies go away.
    ~Recovery() override;

    // Makes and locks this program's session folder inside `recoveryPath` and starts the
    // timer; `minutes` 0 keeps the autosave off. Without a recovery folder nothing is kept.
    void start(const QString& recoveryPath, int minutes);
    void setInterval(int minutes);
    int interval() const { return m_minutes; }
    QString sessionFolder() const { return m_folder; }

    // Writes a copy of every open project with unsaved changes and removes the copies of the
    // others. Does nothing while a file is being saved or opened.
    void autosave();
    // Removes the copies of projects that are no longer open with unsaved changes.
    void prune();
    // An end without questions: a last copy of every changed project, kept for the next start.
    void keepForNextStart();
    // A normal end after the user answered for every project: the session folder goes.
    void removeAtEnd() { m_keep = false; }

    // Asks about each copy left by a program that ended without closing: "Kyllä" opens it
    // as a changed project under its own name, "Ei" removes it.
    void offerRecovery();

private:
    QString copyName(const QString& project) const;
    std::vector<QString> changedProjects() const;

    MDIForm1& m_main;
    QTimer m_timer;
    int m_minutes = 0;
    QString m_folder; // ends in "/"; empty when nothing is kept
    QString m_basePath;
    bool m_keep = false;
    std::unique_ptr<QLockFile> m_lock;
};

} // namespace shell
