#include "platform/ShellOpen.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>

namespace platform {

namespace {
std::function<bool(const QUrl&)>& opener() {
    static std::function<bool(const QUrl&)> f;
    return f;
}
} // namespace

void setDesktopOpener(std::function<bool(const QUrl&)> f) {
    opener() = std::move(f);
}

int ExecuteOpen(const QString& target) {
    QUrl url;
    if (target.contains(QLatin1String("://")) || target.startsWith(QLatin1String("mailto:"))) {
        url = QUrl(target);
    } else {
        QString path = target;
        path.replace(QLatin1Char('\\'), QLatin1Char('/'));
        const QFileInfo fi(path);
        if (!fi.exists()) return fi.dir().exists() ? 2 : 3;
        if (!fi.isReadable()) return 5;
        url = QUrl::fromLocalFile(fi.absoluteFilePath());
    }
    if (!url.isValid()) return 2;
    const bool ok = opener() ? opener()(url) : QDesktopServices::openUrl(url);
    return ok ? 42 : 31;
}

QString OpenResultMessage(int code) {
    if (code >= 33) return {};
    switch (code) {
        case 2:
            return QStringLiteral("File not found");
        case 3:
            return QStringLiteral("Path not found");
        case 5:
            return QStringLiteral("Access denied");
        case 8:
            return QStringLiteral("Out of memory");
        case 11:
            return QStringLiteral("Invalid EXE file or error in EXE image");
        case 26:
            return QStringLiteral("A sharing violation occurred");
        case 27:
            return QStringLiteral("Incomplete or invalid file association");
        case 28:
            return QStringLiteral("DDE Time out");
        case 29:
            return QStringLiteral("DDE transaction failed");
        case 30:
            return QStringLiteral("DDE busy");
        case 31:
            return QStringLiteral("No association for file extension");
        case 32:
            return QStringLiteral("DLL not found");
        default:
            return QStringLiteral("Unknown error");
    }
}

} // namespace platform
