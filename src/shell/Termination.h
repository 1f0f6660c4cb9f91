#pragma once
// The end of the program that cannot ask questions: SIGTERM (logout, shutdown, `kill`),
// SIGHUP and SIGINT, and the session manager's request to save. Settings are written and every
// changed project gets a last recovery copy that the next start offers back; on a signal the
// program then quits.
#include <QObject>

class QSocketNotifier;

namespace shell {

class MDIForm1;

class Termination : public QObject {
    Q_OBJECT
public:
    // Installs the signal handlers (one instance per process) and follows the session manager.
    explicit Termination(MDIForm1& main);
    // Gives the signals their default handling back.
    ~Termination() override;

private:
    void signalled();

    MDIForm1& m_main;
    QSocketNotifier* m_notifier = nullptr;
};

} // namespace shell
