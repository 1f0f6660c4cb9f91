#pragma once
// A mail program for tests: the search path holds only a folder of the test's own, with or
// without a fake "xdg-email" that records its arguments and exits with a chosen status, and
// the desktop's "open" is recorded instead of done. Nothing is ever sent.
#include "common/QtPrinters.h"
#include "platform/ShellOpen.h"
#include "platform/TextFile.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>
#include <gtest/gtest.h>
#include <vector>

namespace testing_support {

class FakeMail {
public:
    // `exitStatus` < 0 means no xdg-email at all; `seconds` > 0 keeps it running that long;
    // `client` is the mail client the desktop names for "mailto:" and `reader` the program for
    // ".eml" files (empty: none is set up).
    explicit FakeMail(int exitStatus = 0, int seconds = 0, const QByteArray& client = "thunderbird.desktop",
                      const QByteArray& reader = "fakereader.desktop")
        : m_oldPath(qgetenv("PATH"))
        , m_oldMailer(qgetenv("MAILER")) {
        const QString bin = m_dir.filePath(QStringLiteral("bin"));
        QDir().mkpath(bin);
        if (exitStatus >= 0) {
            // One argument per line; only shell built-ins, as the search path has nothing else.
            QByteArray script = "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\" >> '" +
                                QFile::encodeName(logPath()) + "'; done\n";
            if (seconds > 0) script += "exec /bin/sleep " + QByteArray::number(seconds) + "\n";
            script += "exit " + QByteArray::number(exitStatus) + "\n";
            writeProgram(bin + QStringLiteral("/xdg-email"), script);
            writeProgram(bin + QStringLiteral("/xdg-mime"), "#!/bin/sh\ncase \"$3\" in\n"
                                                            "x-scheme-handler/mailto) echo '" +
                                                                client +
                                                                "';;\n"
                                                                "message/rfc822) echo '" +
                                                                reader + "';;\nesac\n");
        }
        qputenv("PATH", QFile::encodeName(bin));
        qunsetenv("MAILER");
        platform::setDesktopOpener([this](const QUrl& url) {
            opened.push_back(url.toLocalFile());
            return openSucceeds;
        });
    }
    ~FakeMail() {
        qputenv("PATH", m_oldPath);
        if (!m_oldMailer.isNull()) qputenv("MAILER", m_oldMailer);
        platform::setDesktopOpener({});
    }

    QString logPath() const { return m_dir.filePath(QStringLiteral("xdg-email.log")); }
    // The arguments of every call of xdg-email, one a line; empty when it was not called.
    QStringList arguments() const {
        QFile f(logPath());
        if (!f.open(QIODevice::ReadOnly)) return {};
        QStringList lines = QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'));
        if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
        return lines;
    }

    std::vector<QString> opened; // files given to the desktop's "open"
    bool openSucceeds = true;

private:
    static void writeProgram(const QString& path, const QByteArray& script) {
        EXPECT_TRUE(platform::writeFileAtomically(path, script));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QTemporaryDir m_dir;
    QByteArray m_oldPath;
    QByteArray m_oldMailer;
};

// Reads a mail draft back with Python's email package, a reader of its own. The attachments'
// bytes go to files "0", "1", ... in `outDir`; the answer is a JSON object with "subject",
// "unsent", "body", "defects" and "parts" (each with "name", "type" and "defects").
inline QByteArray readDraftWithPython(const QString& eml, const QString& outDir) {
    static const char* const script = R"PY(
import email, json, os, sys
from email import policy
with open(sys.argv[1], 'rb') as f:
    msg = email.message_from_binary_file(f, policy=policy.default)
out = {'subject': str(msg['subject'] or ''), 'unsent': str(msg['X-Unsent'] or ''),
       'multipart': msg.is_multipart(), 'defects': [str(d) for d in msg.defects], 'parts': []}
body = msg.get_body(preferencelist=('plain',))
out['body'] = body.get_content() if body is not None else None
for i, part in enumerate(msg.iter_attachments()):
    with open(os.path.join(sys.argv[2], str(i)), 'wb') as f:
        f.write(part.get_payload(decode=True))
    out['parts'].append({'name': part.get_filename(), 'type': part.get_content_type(),
                         'defects': [str(d) for d in part.defects]})
print(json.dumps(out))
)PY";
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"),
                 {QStringLiteral("-c"), QString::fromUtf8(script), eml, outDir});
    EXPECT_TRUE(python.waitForFinished(30000));
    EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    return python.readAllStandardOutput();
}

} // namespace testing_support
