#include "platform/MailSession.h"

#include "platform/ShellOpen.h"
#include "platform/TextFile.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QLocale>
#include <QMimeDatabase>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <memory>
#include <vector>

namespace platform {

namespace {

const QByteArray kCrLf("\r\n");

// Printable US-ASCII only: such a text may stand in a header as it is.
bool isPlainAscii(const QString& text) {
    for (QChar c : text)
        if (c.unicode() < 0x20 || c.unicode() > 0x7e) return false;
    return true;
}

// Base64 in lines of 76 characters, each ended by CR LF.
QByteArray base64Lines(const QByteArray& data) {
    const QByteArray b64 = data.toBase64();
    QByteArray out;
    out.reserve(b64.size() + b64.size() / 76 * 2 + 2);
    for (qsizetype i = 0; i < b64.size(); i += 76)
        out += b64.mid(i, 76) + kCrLf;
    return out;
}

// A header text as encoded words (RFC 2047), split on character boundaries so that no word
// is longer than 75 characters; the words are folded onto lines of their own.
QByteArray encodedWords(const QString& text) {
    if (isPlainAscii(text)) return text.toLatin1();
    QList<QByteArray> words;
    QByteArray chunk;
    for (qsizetype i = 0; i < text.size(); ++i) {
        // A surrogate pair is one character and stays in one word.
        const qsizetype n = text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        const QByteArray bytes = text.mid(i, n).toUtf8();
        i += n - 1;
        if (chunk.size() + bytes.size() > 45) {
            words << chunk;
            chunk.clear();
        }
        chunk += bytes;
    }
    if (!chunk.isEmpty()) words << chunk;
    QByteArray out;
    for (const QByteArray& w : words) {
        if (!out.isEmpty()) out += "\r\n ";
        out += "=?UTF-8?B?" + w.toBase64() + "?=";
    }
    return out;
}

// A parameter value in quotes, with backslash and quote escaped.
QByteArray quotedValue(const QString& text) {
    QByteArray v = text.toLatin1();
    v.replace('\\', "\\\\");
    v.replace('"', "\\\"");
    return '"' + v + '"';
}

// The file name parameters of a part. A plain name is given in quotes; any other name as
// UTF-8 with the extended syntax (RFC 2231), which mail readers of today decode, and as an
// encoded word in the content type's "name" for the older ones.
QByteArray nameParameter(const QString& name, const char* attribute, bool extended) {
    if (isPlainAscii(name)) return QByteArray(attribute) + '=' + quotedValue(name);
    if (!extended) return QByteArray(attribute) + "=\"" + encodedWords(name).replace("\r\n ", " ") + '"';
    return QByteArray(attribute) + "*=UTF-8''" + name.toUtf8().toPercentEncoding("!#$&+^`{}|~");
}

// The date in the form of Internet mail: "Tue, 01 Jul 2003 10:52:37 +0200".
QByteArray mailDate(const QDateTime& date) {
    const int offset = date.offsetFromUtc() / 60;
    const int a = std::abs(offset);
    return (QLocale::c().toString(date, QStringLiteral("ddd, dd MMM yyyy hh:mm:ss ")) +
            (offset < 0 ? QLatin1Char('-') : QLatin1Char('+')) +
            QStringLiteral("%1%2").arg(a / 60, 2, 10, QLatin1Char('0')).arg(a % 60, 2, 10, QLatin1Char('0')))
        .toLatin1();
}

// Text with CR LF line ends, as mail text is sent.
QByteArray mailText(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    return text.toUtf8();
}

struct Run {
    bool finished = false; // ended within the wait
    bool ok = false;       // ended with status 0
    QByteArray output;
};

// How a program is run: a question is answered on its output and stopped when it overruns its
// wait; a program that may run on (a mail program) is left running after the wait, deletes
// itself when it ends, and is not killed when this program ends.
enum class Kind { Question, MayRunOn };

// The programs started to run on (mail programs) that have not ended yet. They outlive this
// program on purpose; the list is never freed, so it keeps them accounted for to the end.
std::vector<QProcess*>& runningOn() {
    static auto* processes = new std::vector<QProcess*>;
    return *processes;
}

void forget(QProcess* process) {
    auto& running = runningOn();
    running.erase(std::remove(running.begin(), running.end(), process), running.end());
    process->deleteLater();
}

// Runs a program and waits for it at most `wait` milliseconds, letting paint events through
// but no input, so that nothing is started twice.
Run runAndWait(const QString& program, const QStringList& arguments, int wait, Kind kind) {
    const bool question = kind == Kind::Question;
    auto run = std::make_shared<Run>();
    auto* process = new QProcess;
    process->setProgram(program);
    process->setArguments(arguments);
    process->setStandardInputFile(QProcess::nullDevice());
    // Nobody reads a program that may run on: it must not stop on a full pipe.
    if (!question) process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(process, &QProcess::finished, process,
                     [process, run, question](int code, QProcess::ExitStatus s) {
                         run->finished = true;
                         run->ok = s == QProcess::NormalExit && code == 0;
                         if (question) run->output = process->readAllStandardOutput();
                         forget(process);
                     });
    QObject::connect(process, &QProcess::errorOccurred, process, [process, run](QProcess::ProcessError e) {
        if (e != QProcess::FailedToStart) return;
        run->finished = true;
        forget(process);
    });
    QEventLoop loop;
    QObject::connect(process, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(process, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    QTimer::singleShot(wait, &loop, &QEventLoop::quit);
    if (!question) runningOn().push_back(process);
    process->start();
    if (!run->finished) loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (!run->finished && question) {
        QObject::disconnect(process, nullptr, nullptr, nullptr);
        delete process; // kills it
    }
    return *run;
}

// The desktop's default program for a MIME type (its desktop file); empty when there is none,
// "?" when the desktop cannot be asked.
QString defaultApplication(const QString& mimeType) {
    const QString query = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    if (query.isEmpty()) return QStringLiteral("?");
    const Run r = runAndWait(query, {QStringLiteral("query"), QStringLiteral("default"), mimeType}, 10000,
                             Kind::Question);
    if (!r.finished) return QStringLiteral("?");
    return QString::fromLocal8Bit(r.output).trimmed();
}

} // namespace

QByteArray ComposeEml(const MailMessage& message, const QDateTime& date, QString* error) {
    // Base64 never holds "-" or "_", so the boundary cannot occur inside a part.
    const QByteArray boundary =
        "----=_TAMRIK_" + QByteArray::number(QRandomGenerator::global()->generate64(), 16);
    QByteArray out;
    out += "Date: " + mailDate(date) + kCrLf;
    if (!message.subject.isEmpty()) out += "Subject: " + encodedWords(message.subject) + kCrLf;
    // Mail programs that know this mark open the file as a message to send, not as one received.
    out += "X-Unsent: 1" + kCrLf;
    out += "MIME-Version: 1.0" + kCrLf;
    out += "Content-Type: multipart/mixed;" + kCrLf + " boundary=\"" + boundary + '"' + kCrLf;
    out += kCrLf;

    out += "--" + boundary + kCrLf;
    out += "Content-Type: text/plain; charset=UTF-8" + kCrLf;
    out += "Content-Transfer-Encoding: base64" + kCrLf + kCrLf;
    out += base64Lines(mailText(message.body));

    const QMimeDatabase types;
    for (const MailAttachment& a : message.attachments) {
        QByteArray data;
        QString why;
        if (!readFileBytes(a.path, data, &why)) {
            if (error) *error = QStringLiteral("Liitetiedostoa %1 ei voi lukea: %2").arg(a.path, why);
            return {};
        }
        const QString name = a.name.isEmpty() ? QFileInfo(a.path).fileName() : a.name;
        const QString type = types.mimeTypeForFileNameAndData(name, data).name();
        out += "--" + boundary + kCrLf;
        out += "Content-Type: " + type.toLatin1() + ';' + kCrLf + ' ' + nameParameter(name, "name", false) +
               kCrLf;
        out += "Content-Transfer-Encoding: base64" + kCrLf;
        out +=
            "Content-Disposition: attachment;" + kCrLf + ' ' + nameParameter(name, "filename", true) + kCrLf;
        out += kCrLf;
        out += base64Lines(data);
    }
    out += "--" + boundary + "--" + kCrLf;
    return out;
}

bool MailSession::SignOn(const QString& draftFolder) {
    m_composer = QStandardPaths::findExecutable(QStringLiteral("xdg-email"));
    // Without a mail client xdg-email tries every browser it knows before it gives up, which
    // takes seconds; asking first goes straight to the draft.
    m_client = qEnvironmentVariable("MAILER");
    if (m_client.isEmpty() && !m_composer.isEmpty())
        m_client = defaultApplication(QStringLiteral("x-scheme-handler/mailto"));
    m_draftFolder = draftFolder;
    if (!m_draftFolder.isEmpty() && !m_draftFolder.endsWith(QLatin1Char('/')))
        m_draftFolder += QLatin1Char('/');
    m_signedOn = !m_client.isEmpty() || !m_draftFolder.isEmpty();
    return m_signedOn;
}

QStringList MailSession::composeArguments(const MailMessage& message) {
    QStringList args{QStringLiteral("--utf8")};
    if (!message.subject.isEmpty()) args << QStringLiteral("--subject") << message.subject;
    if (!message.body.isEmpty()) args << QStringLiteral("--body") << message.body;
    for (const MailAttachment& a : message.attachments)
        args << QStringLiteral("--attach") << a.path;
    return args;
}

QString MailSession::draftName(const MailMessage& message) {
    QString name;
    if (!message.attachments.empty()) {
        const MailAttachment& first = message.attachments.front();
        name = QFileInfo(first.name.isEmpty() ? first.path : first.name).completeBaseName();
        name.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QLatin1Char('\\'), QLatin1Char('_'));
    }
    return name.isEmpty() ? QStringLiteral("Viesti") : name;
}

bool MailSession::takesAttachments(const QString& client) {
    const QString name = QFileInfo(client.section(QLatin1Char(' '), 0, 0)).fileName().toLower();
    for (const char* known : {"thunderbird", "icedove", "seamonkey", "evolution", "kmail"})
        if (name.contains(QLatin1String(known))) return true;
    return false;
}

bool MailSession::compose(const MailMessage& message) {
    if (m_composer.isEmpty() || m_client.isEmpty()) return false;
    if (!message.attachments.empty() && !takesAttachments(m_client)) {
        m_attachmentsNeededDraft = true;
        return false;
    }
    const Run r = runAndWait(m_composer, composeArguments(message), m_composeWait, Kind::MayRunOn);
    // Still running: the mail program has the message and keeps the command waiting.
    return r.finished ? r.ok : true;
}

bool MailSession::Send(const MailMessage& message) {
    m_route = Route::None;
    m_attachmentsNeededDraft = false;
    m_draftPath.clear();
    if (!m_signedOn) return false;
    if (compose(message)) {
        m_route = Route::Compose;
        return true;
    }
    if (m_draftFolder.isEmpty()) return false;
    const QByteArray draft = ComposeEml(message);
    if (draft.isEmpty()) return false;
    const QString path = m_draftFolder + draftName(message) + QStringLiteral(".eml");
    if (!writeFileAtomically(path, draft)) return false;
    m_draftPath = path;
    // The desktop starts its opener without waiting for it, so a draft that nothing can open
    // is found out by asking first.
    if (defaultApplication(QStringLiteral("message/rfc822")).isEmpty() || ExecuteOpen(path) < 33) {
        m_route = Route::DraftUnopened;
        return false;
    }
    m_route = Route::Draft;
    return true;
}

} // namespace platform
