#include "shell/SingleInstance.h"

#include "shell/MDIForm1.h"

#include <QApplication>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTimer>

namespace shell {

namespace {
const QByteArray kOpen("OPEN ");
const QByteArray kTaken("OK\n");
const QByteArray kGo("GO\n");
constexpr int kMaxLine = 64 * 1024;
// Set on a socket whose request was answered and waits for the sender's "GO".
const char* const kOffered = "tamrikOffered";
constexpr int kRetryMs = 300;
} // namespace

QString instanceSocketPath(const QString& tempPath) {
    return tempPath.isEmpty() ? QString() : tempPath + QStringLiteral("tamrik.socket");
}

bool handToRunningProgram(const QString& socketPath, const QString& file, int timeoutMs) {
    if (socketPath.isEmpty() || !QFileInfo::exists(socketPath)) return false;
    QDeadlineTimer deadline(timeoutMs);
    const qint64 until = QDateTime::currentMSecsSinceEpoch() + timeoutMs;
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    if (!socket.waitForConnected(static_cast<int>(deadline.remainingTime()))) return false;
    socket.write(kOpen + QByteArray::number(until) + ' ' + QFileInfo(file).absoluteFilePath().toUtf8() +
                 '\n');
    if (!socket.waitForBytesWritten(static_cast<int>(deadline.remainingTime()))) return false;
    QByteArray answer;
    while (!answer.endsWith('\n') && !deadline.hasExpired() &&
           socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
        answer += socket.readAll();
    // Too late or no answer: the request is withdrawn by leaving without "GO".
    if (answer != kTaken || deadline.hasExpired()) {
        socket.abort();
        return false;
    }
    socket.write(kGo);
    if (!socket.waitForBytesWritten(2000)) return false;
    socket.disconnectFromServer();
    return true;
}

InstanceServer::InstanceServer(MDIForm1& main)
    : QObject(&main)
    , m_main(main)
    , m_server(new QLocalServer(this))
    , m_retry(new QTimer(this)) {
    // No socket options: the private temporary folder already keeps other users out, and
    // options would make listening replace a socket that another program still serves.
    connect(m_server, &QLocalServer::newConnection, this, &InstanceServer::accept);
    m_retry->setSingleShot(true);
    m_retry->setInterval(kRetryMs);
    connect(m_retry, &QTimer::timeout, this, &InstanceServer::openPending);
}

bool InstanceServer::listen(const QString& socketPath) {
    if (socketPath.isEmpty()) return false;
    // Another program of this user answers there: it keeps the socket.
    QLocalSocket probe;
    probe.connectToServer(socketPath);
    if (probe.waitForConnected(500)) return false;
    // Nobody answers: a socket left by a program that ended without closing it.
    QLocalServer::removeServer(socketPath);
    return m_server->listen(socketPath);
}

void InstanceServer::accept() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(socket); });
        read(socket);
    }
}

void InstanceServer::read(QLocalSocket* socket) {
    while (socket->canReadLine()) {
        const QByteArray line = socket->readLine(kMaxLine);
        const QString offered = socket->property(kOffered).toString();
        if (!offered.isEmpty()) {
            // The sender still waited for the answer: the file is this program's now.
            socket->setProperty(kOffered, QVariant());
            socket->disconnectFromServer();
            if (line != kGo) return;
            m_pending << offered;
            // Opened from the event loop, never from inside the socket's own signal.
            QTimer::singleShot(0, this, &InstanceServer::openPending);
            return;
        }
        // "OPEN <deadline> <path>": a request past its deadline was given up by its sender
        // (this program was stopped or busy): it is never carried out.
        const QList<QByteArray> parts = line.trimmed().split(' ');
        bool ok = false;
        const qint64 deadline = parts.value(1).toLongLong(&ok);
        const QString file =
            QString::fromUtf8(line.trimmed().mid(kOpen.size() + parts.value(1).size() + 1)).trimmed();
        if (!line.startsWith(kOpen) || !ok || file.isEmpty() ||
            deadline <= QDateTime::currentMSecsSinceEpoch()) {
            socket->abort();
            return;
        }
        socket->setProperty(kOffered, file);
        socket->write(kTaken);
        socket->flush();
    }
    if (socket->bytesAvailable() > kMaxLine) socket->abort();
}

void InstanceServer::openPending() {
    if (m_pending.isEmpty()) {
        m_main.setWaitingFileNote(QString());
        return;
    }
    if (m_main.userBusy()) {
        m_main.setWaitingFileNote(m_pending.first());
        if (!m_retry->isActive()) m_retry->start();
        return;
    }
    const QStringList files = std::exchange(m_pending, {});
    m_main.setWaitingFileNote(QString());
    if (m_main.isMinimized()) m_main.showNormal();
    m_main.raise();
    m_main.QWidget::activateWindow();
    for (const QString& file : files)
        m_main.openFromCommandLine(file);
}

} // namespace shell
