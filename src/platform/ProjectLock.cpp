#include "platform/ProjectLock.h"

#include "platform/TextFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include <cerrno>
#include <csignal>
#include <pwd.h>
#include <unistd.h>

namespace platform {

namespace {
const QByteArray kProgram("TAMRIK");

QString userName() {
    if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_name) return QString::fromLocal8Bit(pw->pw_name);
    return qEnvironmentVariable("USER");
}

bool processAlive(qint64 pid) {
    if (pid <= 0) return false;
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}
} // namespace

LockOwner currentLockOwner() {
    return {userName(), QSysInfo::machineHostName(), QCoreApplication::applicationPid(),
            QDateTime::currentDateTimeUtc()};
}

QString projectLockPath(const QString& project) {
    const QFileInfo fi(project);
    return fi.dir().filePath(QStringLiteral(".~lock.") + fi.fileName() + QLatin1Char('#'));
}

std::optional<LockOwner> readProjectLock(const QString& project) {
    QByteArray bytes;
    if (!readFileBytes(projectLockPath(project), bytes)) return std::nullopt;
    // TAMRIK,user,host,pid,time
    const QList<QByteArray> fields = bytes.trimmed().split(',');
    if (fields.size() != 5 || fields[0] != kProgram) return std::nullopt;
    LockOwner owner;
    owner.user = QString::fromUtf8(fields[1]);
    owner.host = QString::fromUtf8(fields[2]);
    bool ok = false;
    owner.pid = fields[3].toLongLong(&ok);
    owner.time = QDateTime::fromString(QString::fromLatin1(fields[4]), Qt::ISODate);
    if (!ok || !owner.time.isValid()) return std::nullopt;
    return owner;
}

bool isStaleLock(const LockOwner& owner, int maxAgeHours, const QDateTime& now) {
    if (owner.host == QSysInfo::machineHostName() && !processAlive(owner.pid)) return true;
    return owner.time.secsTo(now) > qint64(maxAgeHours) * 3600;
}

bool isOwnLock(const LockOwner& owner) {
    return owner.host == QSysInfo::machineHostName() && owner.pid == QCoreApplication::applicationPid();
}

bool writeProjectLock(const QString& project) {
    const LockOwner me = currentLockOwner();
    QByteArray line = kProgram + ',' + me.user.toUtf8().replace(',', '_') + ',' +
                      me.host.toUtf8().replace(',', '_') + ',' + QByteArray::number(me.pid) + ',' +
                      me.time.toString(Qt::ISODate).toLatin1() + '\n';
    return writeFileAtomically(projectLockPath(project), line);
}

void removeOwnProjectLock(const QString& project) {
    const std::optional<LockOwner> owner = readProjectLock(project);
    if (owner && isOwnLock(*owner)) QFile::remove(projectLockPath(project));
}

QString describeLockOwner(const LockOwner& owner) {
    return QStringLiteral("käyttäjä %1, kone %2, prosessi %3, avattu %4")
        .arg(owner.user, owner.host)
        .arg(owner.pid)
        .arg(owner.time.toLocalTime().toString(QStringLiteral("d.M.yyyy 'klo' h.mm")));
}

} // namespace platform
