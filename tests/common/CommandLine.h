#pragma once
// Runs the built program's command line as a user would, for the command-line tests.
#include "common/TestSupport.h"

#include <QProcess>
#include <QStringList>

namespace testing_support {

struct Result {
    int status = -1;
    QString out; // standard output as UTF-8 text
    QString err;
    QByteArray bytes; // standard output as it came
};

inline Result run(const QStringList& args) {
    QProcess p;
    p.start(binaryDir() + QStringLiteral("/tamrik"), args);
    p.waitForFinished(60000);
    Result r;
    r.status = p.exitCode();
    r.bytes = p.readAllStandardOutput();
    r.out = QString::fromUtf8(r.bytes);
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

} // namespace testing_support
