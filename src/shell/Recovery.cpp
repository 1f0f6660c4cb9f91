#include "shell/Recovery.h"

#include "documents/ProjectWindow.h"
#include "platform/Dialogs.h"
#include "platform/TextFile.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ProjectFiles.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <algorithm>
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

QString recoveryQuestion(const RecoveredProject& copy) {
    return QStringLiteral("TAMRIK ei sulkeutunut viime kerralla normaalisti. Projektista\r\n\r\n") +
           copy.project + QStringLiteral("\r\n\r\non tallessa palautuskopio ajalta ") +
           copy.time.toLocalTime().toString(QStringLiteral("d.M.yyyy 'klo' h.mm")) +
           QStringLiteral(".\r\n\r\nPalautetaanko projekti? Jos vastaat Ei, palautuskopio poistetaan.");
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
    QDir(m_folder).removeRecursively();
}

void Recovery::start(const QString& tempPath, int minutes) {
    if (!m_folder.isEmpty() || tempPath.isEmpty()) {
        setInterval(minutes);
        return;
    }
    const QString folder = tempPath + kSessionPrefix +
                           QStringLiteral("%1-%2/")
                               .arg(QCoreApplication::applicationPid())
                               .arg(QDateTime::currentMSecsSinceEpoch());
    if (QDir().mkpath(folder)) {
        auto lock = sessionLock(folder);
        if (lock->tryLock(0)) {
            m_lock = std::move(lock);
            m_folder = folder;
            m_tempPath = tempPath;
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

void Recovery::offerRecovery() {
    if (m_folder.isEmpty()) return;
    const QDir temp(m_tempPath);
    for (const QString& name :
         temp.entryList({kSessionPrefix + QStringLiteral("*")}, QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString folder = temp.filePath(name) + QLatin1Char('/');
        if (folder == m_folder) continue;
        // A lock held by a running program keeps its copies out of reach; a free one is ours
        // now, so that two programs starting at once do not both offer the same copies.
        auto lock = sessionLock(folder);
        if (!lock->tryLock(0)) continue;
        for (const RecoveredProject& r : recoveryCopies(folder)) {
            const platform::MsgAnswer a =
                platform::Ask(recoveryQuestion(r), platform::MsgButtons::YesNo, platform::MsgIcon::Question,
                              platform::MsgAnswer::Yes);
            if (a == platform::MsgAnswer::Yes) m_main.openRecoveredProject(r.copy, r.project);
        }
        lock.reset();
        QDir(folder).removeRecursively();
    }
    // The restored projects are changed: their copies belong to this session from now on.
    autosave();
}

} // namespace shell
