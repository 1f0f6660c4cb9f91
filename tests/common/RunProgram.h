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

// A program still running after `timeoutMs` (a desktop start that waits for a window) is
// killed and reported with status -1.
inline Result run(const QStringList& args, int timeoutMs = 60000) {
    QProcess p;
    p.start(binaryDir() + QStringLiteral("/tamrik"), args);
    if (!p.waitForFinished(timeoutMs)) {
        p.kill();
        p.waitForFinished();
        return {-1, QString(), QStringLiteral("did not end")};
    }
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

} // namespace testing_support
