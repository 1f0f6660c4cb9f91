#pragma once
// Runs the built program as a user runs it from a shell, for the command-line tests.
#include "common/TestSupport.h"

#include <QProcess>
#include <QStringList>

namespace testing_support {

struct Result {
    int status = -1;
    QString out;
    QString err;
};

inline Result run(const QStringList& args) {
    QProcess p;
    p.start(binaryDir() + QStringLiteral("/tamrik"), args);
    p.waitForFinished(60000);
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

} // namespace testing_support
