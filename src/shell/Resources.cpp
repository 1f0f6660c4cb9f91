// Start-up resources: toolbar pictures, the print logo and the office lines.
#include "platform/TextFile.h"
#include "print/ui/PrintIcons.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <map>

namespace shell {

namespace {

// Small line drawings for the buttons that have no standard picture.
QPixmap drawIcon(const QString& key) {
    QPixmap pm(40, 40);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(40, 40, 40), 2.5));
    p.setBrush(Qt::NoBrush);
    if (key == QLatin1String("Cut")) {
        p.drawEllipse(QPointF(12, 31), 5, 5);
        p.drawEllipse(QPointF(28, 31), 5, 5);
        p.drawLine(QPointF(15, 27), QPointF(28, 5));
        p.drawLine(QPointF(25, 27), QPointF(12, 5));
    } else if (key == QLatin1String("Copy")) {
        p.setBrush(Qt::white);
        p.drawRect(QRectF(6, 5, 18, 22));
        p.drawRect(QRectF(16, 13, 18, 22));
    } else if (key == QLatin1String("Paste")) {
        p.setBrush(QColor(222, 184, 135));
        p.drawRoundedRect(QRectF(7, 7, 24, 29), 3, 3);
        p.setBrush(Qt::white);
        p.drawRect(QRectF(14, 4, 10, 7));
        p.drawRect(QRectF(17, 17, 17, 19));
    } else if (key == QLatin1String("Bridge")) {
        QPainterPath arch;
        arch.moveTo(6, 30);
        arch.quadTo(20, 8, 34, 30);
        p.drawPath(arch);
        p.drawLine(QPointF(2, 16), QPointF(38, 16));
        p.drawLine(QPointF(13, 16), QPointF(13, 21));
        p.drawLine(QPointF(27, 16), QPointF(27, 21));
        p.drawLine(QPointF(2, 34), QPointF(38, 34));
    } else if (key == QLatin1String("Rulers")) {
        p.setBrush(QColor(250, 220, 90));
        p.drawRect(QRectF(3, 14, 34, 12));
        for (int x = 7; x < 37; x += 5)
            p.drawLine(QPointF(x, 14), QPointF(x, x % 10 == 2 ? 21 : 18));
    } else if (key == QLatin1String("Card")) {
        p.setBrush(Qt::white);
        p.drawRect(QRectF(5, 6, 30, 28));
        for (int y = 13; y < 32; y += 6)
            p.drawLine(QPointF(10, y), QPointF(30, y));
    } else if (key == QLatin1String("Check and browse next")) {
        p.setPen(QPen(QColor(20, 130, 40), 5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPolyline(QPolygonF({QPointF(7, 21), QPointF(16, 30), QPointF(33, 9)}));
    } else if (key == QLatin1String("New to end")) {
        p.setBrush(Qt::white);
        p.drawRect(QRectF(9, 4, 22, 20));
        p.setBrush(QColor(60, 110, 200));
        p.drawRect(QRectF(9, 29, 22, 7));
    } else if (key == QLatin1String("Dynamite")) {
        p.setBrush(QColor(200, 40, 40));
        p.drawRoundedRect(QRectF(6, 18, 28, 12), 3, 3);
        QPainterPath fuse;
        fuse.moveTo(20, 18);
        fuse.quadTo(22, 8, 31, 6);
        p.drawPath(fuse);
        p.setPen(QPen(QColor(240, 150, 0), 3));
        p.drawPoint(QPointF(32, 5));
    }
    return pm;
}

} // namespace

QIcon toolbarIcon(const QString& key, QStyle::StandardPixmap fallback) {
    if (key == QLatin1String("Print")) return print::ui::printerIcon();
    if (fallback != QStyle::SP_CustomBase) return QApplication::style()->standardIcon(fallback);
    return QIcon(drawIcon(key));
}

QIcon shellToolIcon(const QString& key) {
    static const std::map<QString, QStyle::StandardPixmap> standard = {
        {QStringLiteral("New"), QStyle::SP_FileIcon},
        {QStringLiteral("Del"), QStyle::SP_TrashIcon},
        {QStringLiteral("Find"), QStyle::SP_FileDialogContentsView},
        {QStringLiteral("Update"), QStyle::SP_DialogSaveButton},
        {QStringLiteral("Update and browse next"), QStyle::SP_MediaSkipForward},
        {QStringLiteral("PgUp"), QStyle::SP_ArrowUp},
        {QStringLiteral("PgDn"), QStyle::SP_ArrowDown},
    };
    const auto it = standard.find(key);
    if (it != standard.end()) return toolbarIcon(key, it->second);
    // A clone is a copy of the row.
    return toolbarIcon(key == QLatin1String("Dublicate") ? QStringLiteral("Copy") : key,
                       QStyle::SP_CustomBase);
}

QIcon applicationIcon() {
    QPixmap pm(64, 64);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(225, 236, 247));
    p.drawRoundedRect(QRectF(1, 1, 62, 62), 10, 10);
    p.drawPixmap(QRect(6, 8, 52, 52), drawIcon(QStringLiteral("Bridge")));
    p.end();
    return QIcon(pm);
}

void LoadLogo(MDIForm1& main) {
    Settings& s = main.appState().settings;
    main.imgLogo = platform::Picture();
    // Without a logo file there is nothing to print; a file that cannot be read leaves no logo.
    if (s.PLogoFile.isEmpty()) {
        s.PrintLogo = false;
        return;
    }
    main.imgLogo = platform::Picture::fromFile(s.PLogoFile);
}

void readOfficeRows(AppState& state) {
    QStringList lines;
    // A missing office file is no reason to stop the start: the rows stay empty.
    if (!platform::readTextLines(state.AppPath + QStringLiteral("Tamrik2000_office.txt"), lines)) return;
    for (int i = 0; i < 4 && i < lines.size(); ++i)
        state.OfficeRows[i] = lines[i];
}

} // namespace shell
