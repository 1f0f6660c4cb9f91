#include "platform/TempDir.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

namespace platform {

QString privateFolder(const QString& path, QString* error) {
    const QByteArray native = QFile::encodeName(path);
    const QFileInfo parent(QFileInfo(path).absolutePath());
    if (!parent.isDir() && !QDir().mkpath(parent.filePath())) {
        if (error) *error = QStringLiteral("Hakemistoa %1 ei voi luoda.").arg(parent.filePath());
        return {};
    }
    if (::mkdir(native.constData(), 0700) != 0 && errno != EEXIST) {
        if (error) *error = QStringLiteral("Hakemistoa %1 ei voi luoda.").arg(path);
        return {};
    }
    struct stat st {};
    if (::lstat(native.constData(), &st) != 0 || !S_ISDIR(st.st_mode) || st.st_uid != getuid()) {
        if (error) *error = QStringLiteral("Hakemisto %1 ei ole käyttäjän oma.").arg(path);
        return {};
    }
    if ((st.st_mode & 0777) != 0700 && ::chmod(native.constData(), 0700) != 0) {
        if (error) *error = QStringLiteral("Hakemiston %1 oikeuksia ei voi rajata.").arg(path);
        return {};
    }
    return path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
}

QString privateTempPath(QString* error) {
    QString base = qEnvironmentVariable("TEMP");
    if (base.isEmpty()) base = QDir::tempPath();
    const QString path = QDir(base).absoluteFilePath(QStringLiteral("tamrik-%1").arg(getuid()));
    const QString made = privateFolder(path, error);
    // The messages name the folder as the temporary one.
    if (made.isEmpty() && error)
        error->replace(QStringLiteral("Hakemist"), QStringLiteral("Väliaikaishakemist"));
    return made;
}

QString recoveryPath(QString* error) {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    if (base.isEmpty()) {
        if (error) *error = QStringLiteral("Käyttäjän tietohakemistoa ei löydy palautuskopioille.");
        return {};
    }
    QDir().mkpath(base);
    return privateFolder(QDir(base).absoluteFilePath(QStringLiteral("palautus")), error);
}

QString userDataPath() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    if (base.isEmpty() || !QDir().mkpath(base)) return {};
    return base.endsWith(QLatin1Char('/')) ? base : base + QLatin1Char('/');
}

namespace {
const QString kScratchPattern = QStringLiteral("~Tamrik30_*");
const QString kMailFolder = QStringLiteral("posti");
} // namespace

QString mailFolder(const QString& tempPath) {
    if (tempPath.isEmpty()) return {};
    return privateFolder(tempPath + kMailFolder);
}

void removeScratchFiles(const QString& tempPath) {
    if (tempPath.isEmpty()) return;
    const QDir dir(tempPath);
    for (const QString& name : dir.entryList({kScratchPattern}, QDir::Files | QDir::Hidden))
        QFile::remove(dir.filePath(name));
}

void removeOldTempFiles(const QString& tempPath, qint64 maxAgeSeconds) {
    if (tempPath.isEmpty()) return;
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-maxAgeSeconds);
    const auto removeOld = [&before](const QDir& dir, const QStringList& patterns) {
        for (const QFileInfo& fi : dir.entryInfoList(patterns, QDir::Files | QDir::Hidden))
            if (fi.lastModified().toUTC() < before) QFile::remove(fi.filePath());
    };
    removeOld(QDir(tempPath), {kScratchPattern});
    removeOld(QDir(tempPath + kMailFolder), {});
}

} // namespace platform
