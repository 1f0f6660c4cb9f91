#include "platform/DroppedFiles.h"

#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace platform {

QStringList droppedFiles(const QMimeData* data) {
    QStringList files;
    if (!data || !data->hasUrls()) return files;
    for (const QUrl& url : data->urls()) {
        // One address that is not a local file makes the whole drag something else.
        if (!url.isLocalFile()) return {};
        files << url.toLocalFile();
    }
    return files;
}

DroppedKind droppedKind(const QString& file) {
    const QString e = QFileInfo(file).suffix().toLower();
    if (e == QLatin1String("sl")) return DroppedKind::Project;
    if (e == QLatin1String("sl1")) return DroppedKind::UnitPrices;
    if (e == QLatin1String("sl2")) return DroppedKind::Requirements;
    for (const char* sheet : {"csv", "xls", "xlsx", "ods"})
        if (e == QLatin1String(sheet)) return DroppedKind::ListOrSheet;
    for (const char* picture : {"wmf", "emf", "bmp", "jpg", "jpeg", "gif", "png", "ico"})
        if (e == QLatin1String(picture)) return DroppedKind::Picture;
    return DroppedKind::Other;
}

} // namespace platform
