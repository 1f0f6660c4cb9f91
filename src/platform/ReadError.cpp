#include "platform/ReadError.h"

namespace platform {

ReadError ReadError::atByte(const QString& what, qint64 offset, const QString& part) {
    return ReadError{what, part, {}, offset, -1, -1, -1, {}, Wording::ByteInParentheses};
}

ReadError ReadError::ofSize(const QString& what, qint64 size, const QString& part, qint64 offset) {
    return ReadError{what, part, {}, offset, -1, -1, size, {}, Wording::SizeInParentheses};
}

ReadError ReadError::endsAt(const QString& what, qint64 offset, const QString& detail) {
    return ReadError{what, {}, {}, offset, -1, -1, -1, detail, Wording::ByteThenDetail};
}

QString ReadError::text() const {
    switch (wording) {
        case Wording::ByteInParentheses: {
            const QString subject = part.isEmpty() ? what : QStringLiteral("osan %1 %2").arg(part, what);
            return subject + QStringLiteral(" (tavu %1)").arg(offset);
        }
        case Wording::SizeInParentheses:
            if (part.isEmpty()) return what + QStringLiteral(" (%1 tavua)").arg(size);
            return QStringLiteral("osa %1 (%2 tavua, alkaa tavusta %3) %4")
                .arg(part, QString::number(size), QString::number(offset), what);
        case Wording::ByteThenDetail:
            return QStringLiteral("%1 tavussa %2: %3").arg(what, QString::number(offset), detail);
        case Wording::Trailing:
            break;
    }
    // A text part names its place by line and column, and the part itself as the subject of
    // the sentence; a text read by whole lines starts with its line; a binary part names its
    // record and byte after the part's name.
    if (line >= 0 && column < 0) return QStringLiteral("rivi %1: %2").arg(line).arg(what);
    if (line >= 0) {
        const QString subject = part.isEmpty() ? what : QStringLiteral("osa %1 %2").arg(part, what);
        return subject + QStringLiteral(" (rivi %1, sarake %2)").arg(line).arg(column);
    }
    QString words = part.isEmpty() ? what : QStringLiteral("osa %1: %2").arg(part, what);
    if (!record.isEmpty())
        words += QStringLiteral(" (tietue %1 tavussa %2)").arg(record).arg(offset);
    else if (offset >= 0)
        words += QStringLiteral(" tavussa %1").arg(offset);
    return words;
}

} // namespace platform
