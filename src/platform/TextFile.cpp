#include "platform/TextFile.h"

#include "platform/Cp1252.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <fcntl.h>
#include <unistd.h>

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

QString decodeText(const QByteArray& bytes) {
    static const QByteArray bom("\xEF\xBB\xBF");
    const bool marked = bytes.startsWith(bom);
    const QByteArrayView body = marked ? QByteArrayView(bytes).sliced(bom.size()) : QByteArrayView(bytes);
    bool multiByte = marked;
    if (!marked) {
        for (const char c : body)
            if (static_cast<unsigned char>(c) >= 0x80) {
                multiByte = true;
                break;
            }
    }
    if (multiByte) {
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        QString text = utf8.decode(body);
        if (!utf8.hasError()) return text;
        // Not UTF-8 after all: a byte-order mark before Windows-1252 text is still dropped.
    }
    return fromCp1252(body.data(), body.size());
}

bool readTextLines(const QString& path, QStringList& lines, QString* error) {
    QByteArray bytes;
    if (!readFileBytes(path, bytes, error)) return false;
    lines = splitLines(decodeText(bytes));
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
    return writeFileAtomically(
        path, [&](QIODevice& out) { return out.write(bytes) == bytes.size(); }, error);
}

bool writeFileAtomically(const QString& path, const std::function<bool(QIODevice&)>& write, QString* error) {
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly)) {
        if (error) *error = f.errorString();
        return false;
    }
    if (!write(f) || !f.commit()) {
        if (error) *error = f.errorString();
        f.cancelWriting();
        return false;
    }
    // The commit wrote the new file to the disk before the rename; the folder's entry follows,
    // so that a power cut right after a save does not bring back the old file.
    const int dir =
        ::open(QFile::encodeName(QFileInfo(path).absolutePath()).constData(), O_RDONLY | O_DIRECTORY);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return true;
}

bool writeTextLines(const QString& path, const QStringList& lines, QString* error, QString* unencodable) {
    return writeFileAtomically(path, encodeLines(lines, unencodable), error);
}

} // namespace platform
