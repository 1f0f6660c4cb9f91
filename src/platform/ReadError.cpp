#include "platform/ReadError.h"

namespace platform {

QString ReadError::text() const {
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
