#pragma once
// Included into every test file by the build (tests/CMakeLists.txt).
// Readable failure messages for Qt strings.
#include <QStringList>
#include <ostream>

inline void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}
inline void PrintTo(const QStringList& l, std::ostream* os) {
    *os << '[' << l.join(QStringLiteral("|")).toStdString() << ']';
}
