#include "shell/SingleInstance.h"

#include "shell/MDIForm1.h"

#include <QApplication>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTimer>

namespace shell {

namespace {
const QByteArray kTaken("OK\n");
constexpr int kMaxLine = 64 * 1024;
} // namespace

QString instanceSocketPath(const QString& tempPath) {
    return tempPath.isEmpty() ? QString() : tempPath + QStringLiteral("tamrik.socket");
}

bool handToRunningProgram(const QString& socketPath, const QString& file, int timeoutMs) {
    if (socketPath.isEmpty() || !QFileInfo::exists(socketPath)) return false;
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    if (!socket.waitForConnected(timeoutMs)) return false;
    socket.write(QFileInfo(file).absoluteFilePath().toUtf8() + '\n');
    if (!socket.waitForBytesWritten(timeoutMs)) return false;
    QByteArray answer;
    while (!answer.endsWith('\n') && socket.waitForReadyRead(timeoutMs))
        answer += socket.readAll();
    return answer == kTaken;
}

InstanceServer::InstanceServer(MDIForm1& main)
    : QObject(&main)
    , m_main(main)
    , m_server(new QLocalServer(this)) {
    // No socket options: the private temporary folder already keeps other users out, and
    // options would make listening replace a socket that another program still serves.
    connect(m_server, &QLocalServer::newConnection, this, &InstanceServer::accept);
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
    if (!socket->canReadLine()) {
        if (socket->bytesAvailable() > kMaxLine) socket->abort();
        return;
    }
    const QString file = QString::fromUtf8(socket->readLine(kMaxLine)).trimmed();
    if (file.isEmpty()) {
        socket->abort();
        return;
    }
    socket->write(kTaken);
    socket->flush();
    socket->disconnectFromServer();
    m_pending << file;
    // Opened from the event loop, never from inside the socket's own signal.
    QTimer::singleShot(0, this, &InstanceServer::openPending);
}

void InstanceServer::openPending() {
    m_retryScheduled = false;
    if (m_pending.isEmpty()) return;
    if (m_main.fileOperationRunning() || QApplication::activeModalWidget() || m_main.appState().Loading) {
        if (!m_retryScheduled) {
            m_retryScheduled = true;
            QTimer::singleShot(300, this, &InstanceServer::openPending);
        }
        return;
    }
    const QStringList files = std::exchange(m_pending, {});
    if (m_main.isMinimized()) m_main.showNormal();
    m_main.raise();
    m_main.QWidget::activateWindow();
    for (const QString& file : files)
        m_main.openFromCommandLine(file);
}

} // namespace shell
