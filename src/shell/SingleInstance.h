#pragma once
// One program per user: a file opened while the program runs (from a file manager, with
// xdg-open, or on the command line) is handed to the running program through a local socket
// in the user's private temporary folder, and opens there as "&Avaa..." would open it.
#include <QObject>
#include <QPointer>
#include <QStringList>

class QLocalServer;
class QLocalSocket;

namespace shell {

class MDIForm1;

// The socket of the user's running program.
QString instanceSocketPath(const QString& tempPath);

// Gives `file` to the program listening at `socketPath`; true when it took it.
bool handToRunningProgram(const QString& socketPath, const QString& file, int timeoutMs = 5000);

// Listens for files from later starts. A file that arrives while a file is being read or
// written, or while a modal dialog is open, waits until the program is free.
class InstanceServer : public QObject {
    Q_OBJECT
public:
    explicit InstanceServer(MDIForm1& main);
    // False when another program already listens there (or the socket cannot be made).
    bool listen(const QString& socketPath);

private:
    void accept();
    void read(QLocalSocket* socket);
    void openPending();

    MDIForm1& m_main;
    QLocalServer* m_server;
    QStringList m_pending;
    bool m_retryScheduled = false;
};

} // namespace shell
