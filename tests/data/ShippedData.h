#pragma once
// Reading the files that ship in data/ the way the program reads them.
#include "common/TestSupport.h"
#include "platform/Cp1252.h"
#include "platform/TextFile.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace shipped {

// The bytes of a file in data/; empty when it cannot be read (the callers' checks then fail).
inline QByteArray bytes(const QString& name) {
    QByteArray data;
    platform::readFileBytes(testing_support::dataDir() + name, data);
    return data;
}

// The lines of a Windows-1252 text file in data/.
inline QStringList lines(const QString& name) {
    return platform::splitLines(platform::fromCp1252(bytes(name)));
}

} // namespace shipped
