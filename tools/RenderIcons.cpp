// Renders the program's SVG icons to PNG files of the icon theme's sizes, at build time:
//   tamrik_icons OUTDIR SIZE[,SIZE...] FILE.svg...
// writes OUTDIR/<size>x<size>/<name>.png for each file and size.
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() < 4) {
        std::fprintf(stderr, "käyttö: tamrik_icons KANSIO KOOT TIEDOSTO.svg...\n");
        return 1;
    }
    for (const QString& sizeText : args[2].split(QLatin1Char(','))) {
        const int size = sizeText.toInt();
        const QString folder = QStringLiteral("%1/%2x%2").arg(args[1]).arg(size);
        QDir().mkpath(folder);
        for (int i = 3; i < args.size(); ++i) {
            QSvgRenderer svg(args[i]);
            if (!svg.isValid() || size <= 0) {
                std::fprintf(stderr, "tamrik_icons: %s ei kelpaa\n", qPrintable(args[i]));
                return 1;
            }
            QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            svg.render(&painter);
            painter.end();
            const QString out = folder + QLatin1Char('/') + QFileInfo(args[i]).completeBaseName() + ".png";
            if (!image.save(out)) {
                std::fprintf(stderr, "tamrik_icons: %s ei tallennu\n", qPrintable(out));
                return 1;
            }
        }
    }
    return 0;
}
