#include "lists/spreadsheet/SheetReaders.h"

#include <QXmlStreamReader>

namespace lists::sheet {

QString withCrLf(QString text) {
    if (!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r'))) return text;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1String("\n"), QLatin1String("\r\n"));
    return text;
}

bool readPart(const Archive& archive, const QString& path, QByteArray& out, QString* error) {
    return archive.read(path, out, error);
}

QString xmlError(const QString& part, const QXmlStreamReader& xml) {
    return QStringLiteral("osa %1 ei ole kelvollista XML:ää (rivi %2, sarake %3: %4)")
        .arg(part)
        .arg(xml.lineNumber())
        .arg(xml.columnNumber())
        .arg(xml.errorString());
}

} // namespace lists::sheet
