#include "platform/TempDir.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace platform {

QString privateTempPath(QString* error) {
    QString base = qEnvironmentVariable("TEMP");
    if (base.isEmpty()) base = QDir::tempPath();
    const QString path = QDir(base).absoluteFilePath(QStringLiteral("tamrik-%1").arg(getuid()));
    const QByteArray native = QFile::encodeName(path);
    if (::mkdir(native.constData(), 0700) != 0 && errno != EEXIST) {
        if (error) *error = QStringLiteral("Väliaikaishakemistoa %1 ei voi luoda.").arg(path);
        return {};
    }
    struct stat st {};
    if (::lstat(native.constData(), &st) != 0 || !S_ISDIR(st.st_mode) || st.st_uid != getuid()) {
        if (error) *error = QStringLiteral("Väliaikaishakemisto %1 ei ole käyttäjän oma.").arg(path);
        return {};
    }
    if ((st.st_mode & 0777) != 0700 && ::chmod(native.constData(), 0700) != 0) {
        if (error) *error = QStringLiteral("Väliaikaishakemiston %1 oikeuksia ei voi rajata.").arg(path);
        return {};
    }
    return path + QLatin1Char('/');
}

} // namespace platform
