#include "print/ui/PrintIcons.h"

#include <QPainter>
#include <QPixmap>

namespace print::ui {

QIcon printerIcon() {
    QPixmap pm(40, 40);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(40, 40, 40), 2.5));
    p.setBrush(Qt::white);
    p.drawRect(QRectF(12, 4, 16, 12));
    p.setBrush(QColor(180, 180, 180));
    p.drawRoundedRect(QRectF(4, 15, 32, 14), 3, 3);
    p.setBrush(Qt::white);
    p.drawRect(QRectF(12, 24, 16, 12));
    return QIcon(pm);
}

} // namespace print::ui
