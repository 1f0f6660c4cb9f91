#pragma once
// Random use of the whole desktop program: a seeded sequence of user actions on the real main
// window (menus, toolbars, buttons, keys, typed text, clicks, drops between lists, window
// switching, closing and opening), with modal dialogs and popup menus answered at random too.
// After every step the invariants that hold whatever the user did are checked; every few steps
// a project is saved, read back and reopened. A failure names the seed and the last actions,
// so that the run replays exactly.
#include "platform/Dialogs.h"

#include <QPointer>
#include <QString>
#include <QStringList>
#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <random>
#include <utility>
#include <vector>

class QWidget;
class QAction;
class QMenu;

namespace shell {
class MDIForm1;
struct ProjectWindows;
} // namespace shell

namespace monkey {

// The dialog facade answered at random: message boxes with one of their buttons, file dialogs
// with a file from the fixed folders (or a new one in the scratch folder when saving), or
// cancelled. While `predictable` is set, every question gets its first button and the file
// dialog the queued file: the checks between steps use that.
class RandomDialogs : public platform::Dialogs {
public:
    RandomDialogs(std::mt19937_64& random, QStringList openFolders, QString saveFolder,
                  std::function<void(const QString&)> log);
    ~RandomDialogs() override;

    platform::MsgAnswer message(const platform::MessageRequest& request) override;
    QStringList files(const platform::FileRequest& request) override;
    std::optional<QFont> font(const QFont& initial) override;
    std::optional<QColor> color(const QColor& initial) override;

    bool predictable = false;
    // Now and then run while a message waits for its answer (the autosave timer).
    std::function<void()> whileOpen;
    QString nextFile;
    // The texts shown while `predictable` was set (what a check saw).
    QStringList shown;

private:
    int pick(int n);
    platform::Dialogs* m_before;
    std::mt19937_64& m_random;
    QStringList m_openFolders;
    QString m_saveFolder;
    std::function<void(const QString&)> m_log;
    int m_saved = 0;
};

// Seconds without progress, not counting the time the process's threads waited for a
// processor (the run-queue wait the kernel keeps in /proc/self/task/*/schedstat).
class HangClock {
public:
    // Called about once a second: progress starts the count again; returns the count.
    double tick(bool progressed);
    // The same with the readings given: `wallNs` since the last call, `waitNs` the run-queue
    // wait of all threads since the last call.
    double advance(long long wallNs, long long waitNs, bool progressed);

private:
    static long long runQueueWaitNs();
    long long m_lastWall = -1;
    long long m_lastWait = 0;
    double m_seconds = 0;
};

struct Settings {
    unsigned long long seed = 1;
    long long maxSteps = 2000; // 0: no limit
    double seconds = 0;        // 0: no limit
    int checkEvery = 150;      // steps between save and reopen checks
    int hangSeconds = 120;     // a step that takes longer is a hang
    QString scratch;           // saved files and copies go here
};

class Monkey {
public:
    Monkey(shell::MDIForm1& main, const Settings& settings);
    ~Monkey();

    // Runs the steps; false on the first broken invariant (failure() says which).
    bool run();
    QString failure() const { return m_failure; }
    long long steps() const { return m_steps; }
    // The seed and the last actions, for a report that replays.
    QString report() const;
    // The folder of good and damaged files the file dialogs choose from.
    static QString filesFolder(const QString& scratch);

private:
    // One random user action on the program's windows (or inside `within`).
    void step(QWidget* within);
    void log(const QString& action);
    void noteDuration(long long ms);
    int pick(int n);
    bool chance(double p);

    void triggerAction(QWidget* within);
    void pressKey(QWidget* within);
    void typeText(QWidget* within);
    void clickList(QWidget* within);
    void clickHeader(QWidget* within);
    void clickButton(QWidget* within);
    void chooseInCombo(QWidget* within);
    void dropBetweenLists();
    void switchWindow();
    void closeWindow();
    void openProject();
    void pasteClipboard();
    void undoRedo();
    void scroll(QWidget* within);

    // Called from a timer that keeps firing inside dialogs' and menus' own event loops.
    void tick();
    void actInModal(QWidget* modal);
    void actInPopup(QMenu* menu);

    bool checkInvariants();
    bool checkSaveAndReopen();
    bool fail(const QString& what);

    shell::MDIForm1& m_main;
    Settings m_settings;
    std::mt19937_64 m_random;
    std::unique_ptr<RandomDialogs> m_dialogs;
    mutable std::mutex m_logMutex;
    std::deque<QString> m_log;
    long long m_steps = 0;
    std::atomic<long long> m_progress{0};
    QString m_failure;
    bool m_running = false;
    int m_modalDepth = 0;
    std::map<std::pair<int, int>, int> m_columns; // (window kind, list index) -> columns
    int m_checks = 0;
    QStringList m_projects;                      // copies the run opens from
    std::multimap<long long, QString> m_slowest; // the slowest steps, by milliseconds
};

} // namespace monkey
