#include "platform/ui/Icons.h"

#include <QApplication>
#include <QFile>

namespace platform {

QIcon toolIcon(const QString& key, QStyle::StandardPixmap fallback) {
    const QString path = QStringLiteral(":/icons/") + key + QStringLiteral(".svg");
    if (QFile::exists(path)) return QIcon(path);
    if (fallback != QStyle::SP_CustomBase) return QApplication::style()->standardIcon(fallback);
    return {};
}

QIcon applicationIcon() {
    return QIcon(QStringLiteral(":/icons/tamrik.svg"));
}

} // namespace platform
