#include "platform/TextFile.h"

#include "platform/Cp1252.h"

#include <QFile>
#include <QSaveFile>

namespace platform {

QStringList splitLines(const QString& text) {
    QStringList lines;
    const qsizetype n = text.size();
    const QChar* s = text.constData();
    qsizetype start = 0;
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = s[i].unicode();
        if (c != '\r' && c != '\n') continue;
        lines.append(QString(s + start, i - start));
        if (c == '\r' && i + 1 < n && s[i + 1] == QLatin1Char('\n')) ++i;
        start = i + 1;
    }
    if (start < n) lines.append(QString(s + start, n - start));
    return lines;
}

bool readFileBytes(const QString& path, QByteArray& bytes, QString* error) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        if (error) *error = f.errorString();
        return false;
    }
    bytes = f.readAll();
    if (f.error() != QFileDevice::NoError) {
        if (error) *error = f.errorString();
        return false;
    }
    return true;
}

bool readTextLines(const QString& path, QStringList& lines, QString* error) {
    QByteArray bytes;
    if (!readFileBytes(path, bytes, error)) return false;
    lines = splitLines(fromCp1252(bytes));
    return true;
}

QByteArray encodeLines(const QStringList& lines, QString* unencodable) {
    QString all;
    qsizetype size = 0;
    for (const QString& l : lines)
        size += l.size() + 2;
    all.reserve(size);
    for (const QString& l : lines) {
        all += l;
        all += QLatin1String("\r\n");
    }
    return toCp1252(all, unencodable);
}

bool writeFileAtomically(const QString& path, const QByteArray& bytes, QString* error) {
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly)) {
        if (error) *error = f.errorString();
        return false;
    }
    if (f.write(bytes) != bytes.size() || !f.commit()) {
        if (error) *error = f.errorString();
        f.cancelWriting();
        return false;
    }
    return true;
}

bool writeTextLines(const QString& path, const QStringList& lines, QString* error, QString* unencodable) {
    return writeFileAtomically(path, encodeLines(lines, unencodable), error);
}

} // namespace platform
