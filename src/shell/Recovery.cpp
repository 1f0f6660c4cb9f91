#include "shell/Recovery.h"

#include "documents/ProjectWindow.h"
#include "platform/Dialogs.h"
#include "platform/TextFile.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ProjectFiles.h"
#include "shell/ProjectLocks.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QFileInfo>
#include <algorithm>
#include <map>
#include <set>

namespace shell {

namespace {

const QString kSessionPrefix = QStringLiteral("palautus-");
const QString kLockName = QStringLiteral("istunto.lock");
const QString kCopySuffix = QStringLiteral(".sl");
const QString kAboutSuffix = QStringLiteral(".txt");

// A session lock is stale only when its program is gone, however old it is.
std::unique_ptr<QLockFile> sessionLock(const QString& folder) {
    auto lock = std::make_unique<QLockFile>(folder + kLockName);
    lock->setStaleLockTime(0);
    return lock;
}

void removeCopy(const QString& copy) {
    QFile::remove(copy);
    QFile::remove(copy.left(copy.size() - kCopySuffix.size()) + kAboutSuffix);
}

} // namespace

std::vector<RecoveredProject> recoveryCopies(const QString& sessionFolder) {
    std::vector<RecoveredProject> out;
    const QDir dir(sessionFolder);
    for (const QString& about : dir.entryList({QStringLiteral("*") + kAboutSuffix}, QDir::Files)) {
        QByteArray bytes;
        if (!platform::readFileBytes(dir.filePath(about), bytes)) continue;
        const QStringList lines = QString::fromUtf8(bytes).split(QLatin1Char('\n'));
        RecoveredProject r;
        r.copy = dir.filePath(about.left(about.size() - kAboutSuffix.size()) + kCopySuffix);
        r.project = lines.value(0);
        r.time = QDateTime::fromString(lines.value(1), Qt::ISODateWithMs);
        if (r.project.isEmpty() || !r.time.isValid() || !QFile::exists(r.copy)) continue;
        out.push_back(r);
    }
    std::sort(out.begin(), out.end(), [](const auto& a, const auto& b) { return a.time < b.time; });
    return out;
}

QString recoveryQuestion(const RecoveredProject& copy, int version, int versions, const QString& openAs,
                         const QString& openElsewhere) {
    QString text = QStringLiteral("TAMRIK ei sulkeutunut viime kerralla normaalisti. Projektista\r\n\r\n") +
                   copy.project + QStringLiteral("\r\n\r\non tallessa palautuskopio ajalta ") +
                   copy.time.toLocalTime().toString(QStringLiteral("d.M.yyyy 'klo' h.mm")) +
                   QStringLiteral(".");
    if (versions > 1)
        text +=
            QStringLiteral("\r\n\r\nProjektista on tallessa %1 eri versiota: se oli avoinna %1 ohjelmassa. "
                           "Tämä on versio %2, ja se palautetaan nimellä\r\n\r\n%3")
                .arg(versions)
                .arg(version)
                .arg(openAs);
    if (!openElsewhere.isEmpty())
        text += QStringLiteral("\r\n\r\nProjekti on nyt avoinna toisessa TAMRIK-ohjelmassa (%1)")
                    .arg(openElsewhere) +
                (versions > 1 ? QStringLiteral(".")
                              : QStringLiteral(", joten kopio palautetaan nimellä\r\n\r\n") + openAs);
    return text + QStringLiteral("\r\n\r\nPalautetaanko projekti? Jos vastaat Ei, palautuskopio poistetaan.");
}

QString recoveredVersionName(const QString& project, int version) {
    const QFileInfo fi(project);
    const QString tag = QStringLiteral(" (palautettu %1)").arg(version);
    const QString suffix = fi.suffix();
    const QString stem = suffix.isEmpty() ? fi.fileName() : fi.completeBaseName();
    const QString name = stem + tag + (suffix.isEmpty() ? QString() : QLatin1Char('.') + suffix);
    const int slash = project.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? name : project.left(slash + 1) + name;
}

Recovery::Recovery(MDIForm1& main)
    : QObject(&main)
    , m_main(main) {
    m_timer.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Recovery::autosave);
    // A save, a close or a rename changes the captions; the copies follow at once.
    connect(&main, &MDIForm1::projectsChanged, this, &Recovery::prune);
}

Recovery::~Recovery() {
    if (m_folder.isEmpty()) return;
    m_lock.reset();
    // After an end without questions the copies wait for the next start; a session with
    // nothing changed leaves no folder behind.
    if (!m_keep || recoveryCopies(m_folder).empty()) QDir(m_folder).removeRecursively();
}

void Recovery::keepForNextStart() {
    if (m_folder.isEmpty()) return;
    autosave();
    m_keep = true;
}

void Recovery::start(const QString& recoveryPath, int minutes) {
    if (!m_folder.isEmpty() || recoveryPath.isEmpty()) {
        setInterval(minutes);
        return;
    }
    const QString folder = recoveryPath + kSessionPrefix +
                           QStringLiteral("%1-%2/")
                               .arg(QCoreApplication::applicationPid())
                               .arg(QDateTime::currentMSecsSinceEpoch());
    if (QDir().mkpath(folder)) {
        auto lock = sessionLock(folder);
        if (lock->tryLock(0)) {
            m_lock = std::move(lock);
            m_folder = folder;
            m_basePath = recoveryPath;
        }
    }
    setInterval(minutes);
}

void Recovery::setInterval(int minutes) {
    m_minutes = std::max(0, minutes);
    if (m_minutes == 0 || m_folder.isEmpty()) {
        m_timer.stop();
        return;
    }
    m_timer.start(m_minutes * 60 * 1000);
}

QString Recovery::copyName(const QString& project) const {
    const QByteArray hash = QCryptographicHash::hash(project.toUtf8(), QCryptographicHash::Sha1).toHex();
    return m_folder + QString::fromLatin1(hash.left(16)) + kCopySuffix;
}

std::vector<QString> Recovery::changedProjects() const {
    std::vector<QString> out;
    for (documents::ProjectWindow* w : m_main.projectWindows()) {
        const ParsedCaption c = ParseFileName(w->caption());
        if (!c.unchanged && std::find(out.begin(), out.end(), c.project()) == out.end())
            out.push_back(c.project());
    }
    return out;
}

void Recovery::prune() {
    if (m_folder.isEmpty()) return;
    std::set<QString> keep;
    for (const QString& project : changedProjects())
        keep.insert(copyName(project));
    for (const RecoveredProject& r : recoveryCopies(m_folder))
        if (!keep.count(r.copy)) removeCopy(r.copy);
}

void Recovery::autosave() {
    if (m_folder.isEmpty()) return;
    // Half-loaded or half-saved windows are not copied; the next round will.
    if (m_main.fileOperationRunning() || m_main.appState().Loading) return;
    prune();
    for (const QString& project : changedProjects()) {
        const ProjectWindows w = m_main.projectWindowsOf(project);
        if (!w.complete()) continue;
        const QString copy = copyName(project);
        const QString about = copy.left(copy.size() - kCopySuffix.size()) + kAboutSuffix;
        // The copy first, then what it is: a copy without its description is never offered.
        if (!platform::writeFileAtomically(copy, ProjectContainer(m_main, w, false, false))) continue;
        const QString text = project + QLatin1Char('\n') +
                             QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs) + QLatin1Char('\n');
        platform::writeFileAtomically(about, text.toUtf8());
    }
}

namespace {

// The sessions in `basePath` that no running program holds, other than `ownFolder`: their
// locks (this program's now), their folders, and their copies oldest first. A lock held by a
// running program keeps its copies out of reach; a free one is taken, so that two programs
// starting at once do not both offer the same copies.
struct FreeSessions {
    std::vector<std::unique_ptr<QLockFile>> locks;
    QStringList folders;
    std::vector<RecoveredProject> found;
};

FreeSessions takeFreeSessions(const QString& basePath, const QString& ownFolder) {
    FreeSessions sessions;
    const QDir base(basePath);
    for (const QString& name :
         base.entryList({kSessionPrefix + QStringLiteral("*")}, QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString folder = base.filePath(name) + QLatin1Char('/');
        if (folder == ownFolder) continue;
        auto lock = sessionLock(folder);
        if (!lock->tryLock(0)) continue;
        sessions.locks.push_back(std::move(lock));
        sessions.folders << folder;
        for (const RecoveredProject& r : recoveryCopies(folder))
            sessions.found.push_back(r);
    }
    std::stable_sort(sessions.found.begin(), sessions.found.end(),
                     [](const auto& a, const auto& b) { return a.time < b.time; });
    return sessions;
}

// Asks whether to restore copy `version` of `count` of one project; `openAs` gets the name it
// comes back under.
platform::MsgAnswer askToRecover(const RecoveredProject& r, int version, int count, QString& openAs) {
    // A project that another running program has open now never comes back under its
    // file's name: that would take the other program's lock and make two editors of it.
    const std::optional<platform::LockOwner> owner =
        ParseFileName(r.project).directory.isEmpty() ? std::nullopt : ProjectLocks::openElsewhere(r.project);
    openAs = count > 1 || owner ? recoveredVersionName(r.project, version) : r.project;
    platform::MessageRequest question;
    question.text =
        recoveryQuestion(r, version, count, openAs, owner ? platform::describeLockOwner(*owner) : QString());
    question.buttons = platform::MsgButtons::YesNo;
    question.icon = platform::MsgIcon::Question;
    question.defaultButton = platform::MsgAnswer::Yes;
    question.toFront = true;
    return platform::Ask(question);
}

} // namespace

void Recovery::offerRecovery() {
    if (m_folder.isEmpty()) return;
    m_keep = false;
    FreeSessions sessions = takeFreeSessions(m_basePath, m_folder);
    const std::vector<RecoveredProject>& found = sessions.found;
    // Versions of one saved project from programs killed with it open come back under names
    // of their own, so that saving one never leaves the other looking like the same file.
    std::map<QString, int> versions;
    for (const RecoveredProject& r : found)
        if (!ParseFileName(r.project).directory.isEmpty()) ++versions[r.project];
    std::map<QString, int> seen;
    QStringList answered;
    if (!found.empty()) {
        // The questions belong to this program, even when another one's window is in front.
        m_main.raise();
        m_main.QWidget::activateWindow();
    }
    for (const RecoveredProject& r : found) {
        if (m_main.terminating()) break;
        const int count = versions.count(r.project) ? versions[r.project] : 1;
        const int version = ++seen[r.project];
        QString openAs;
        const platform::MsgAnswer answer = askToRecover(r, version, count, openAs);
        // The session ended while the question was open (logout, shutdown): no answer was
        // given, so the copies not yet answered wait for the next start.
        if (m_main.terminating()) break;
        answered.push_back(r.copy);
        if (answer == platform::MsgAnswer::Yes) m_main.openRecoveredProject(r.copy, openAs);
    }
    if (m_main.terminating()) {
        // A restored project is kept in this session's own copies now.
        for (const QString& copy : answered)
            removeCopy(copy);
        return;
    }
    sessions.locks.clear();
    for (const QString& folder : sessions.folders)
        QDir(folder).removeRecursively();
    // The restored projects are changed: their copies belong to this session from now on.
    autosave();
}

} // namespace shell
