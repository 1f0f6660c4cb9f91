#pragma once
// One program per user: a file opened while the program runs (from a file manager, with
// xdg-open, or on the command line) is handed to the running program through a local socket
// in the user's private temporary folder, and opens there as "&Avaa..." would open it.
//
// The hand-over is a short exchange, so that a request the later start gave up on is never
// carried out (the later start then opens the file itself):
//   later start:  "OPEN <deadline, ms since the epoch> <absolute path>\n"
//   program:      "OK\n"  (only while the deadline has not passed)
//   later start:  "GO\n"  (only when the answer came in time; then it ends)
// The program takes the file only on "GO"; a request whose deadline passed, or whose sender
// left without "GO", is dropped.
#include <QObject>
#include <QPointer>
#include <QStringList>

class QLocalServer;
class QLocalSocket;
class QTimer;

namespace shell {

class MDIForm1;

// The socket of the user's running program.
QString instanceSocketPath(const QString& tempPath);

// Gives `file` to the program listening at `socketPath`; true when it took it. After
// `timeoutMs` without an answer the request is withdrawn and false returned.
bool handToRunningProgram(const QString& socketPath, const QString& file, int timeoutMs = 5000);

// Listens for files from later starts. A file that arrives while the user is busy in a
// dialog or the row editor, or while a file is being read or written, waits (with a note in
// the status bar) until the user is back in the main window.
class InstanceServer : public QObject {
    Q_OBJECT
public:
    explicit InstanceServer(MDIForm1& main);
    // False when another program already listens there (or the socket cannot be made).
    bool listen(const QString& socketPath);
    // The files taken and not yet opened.
    QStringList waitingFiles() const { return m_pending; }

private:
    void accept();
    void read(QLocalSocket* socket);
    void openPending();

    MDIForm1& m_main;
    QLocalServer* m_server;
    QStringList m_pending;
    // One retry at a time, however many files arrive while the user is busy.
    QTimer* m_retry;
};

} // namespace shell
