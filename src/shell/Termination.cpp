#include "shell/Termination.h"

#include "shell/MDIForm1.h"

#include <QApplication>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace shell {

namespace {

// A signal handler may do next to nothing: it writes a byte that the event loop then reads
// (the self-pipe pattern), and the end runs there as ordinary code.
int g_pipe[2] = {-1, -1};
constexpr int kSignals[] = {SIGTERM, SIGHUP, SIGINT};

void onSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t n = ::write(g_pipe[0], &byte, 1);
}

void handle(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int s : kSignals)
        sigaction(s, &action, nullptr);
}

} // namespace

Termination::Termination(MDIForm1& main)
    : QObject(&main)
    , m_main(main) {
    if (g_pipe[0] < 0 && ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_pipe) != 0) {
        g_pipe[0] = g_pipe[1] = -1;
    }
    if (g_pipe[0] >= 0) {
        m_notifier = new QSocketNotifier(g_pipe[1], QSocketNotifier::Read, this);
        connect(m_notifier, &QSocketNotifier::activated, this, [this] {
            char byte = 0;
            [[maybe_unused]] const ssize_t n = ::read(g_pipe[1], &byte, 1);
            signalled();
        });
        handle(onSignal);
    }
    // The session manager (logout) asks for the data first and ends the program later; the
    // logout may still be cancelled, and then the program goes on as before.
    connect(qApp, &QGuiApplication::commitDataRequest, this,
            [this](QSessionManager&) { m_main.endWithoutQuestions(); });
}

Termination::~Termination() {
    if (m_notifier) handle(SIG_DFL);
}

void Termination::signalled() {
    // A file being written or read is finished first: its windows are whole only then.
    if (m_main.fileOperationRunning() || m_main.appState().Loading) {
        QTimer::singleShot(100, this, &Termination::signalled);
        return;
    }
    m_main.endWithoutQuestions();
    // Every event loop ends, the dialogs' own ones too.
    QCoreApplication::exit(0);
}

} // namespace shell
