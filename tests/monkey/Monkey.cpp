#include "monkey/Monkey.h"

#include "calc/CostEstimate.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/ProjectWindow.h"
#include "lists/EditHistory.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListEditor.h"
#include "lists/ui/ListView.h"
#include "persist/ProjectFile.h"
#include "persist/WindowRecord.h"
#include "platform/Cp1252.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/Recovery.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QImage>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QToolBar>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <thread>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(undefined_behavior_sanitizer)
#include <sanitizer/common_interface_defs.h>
#define MONKEY_SANITIZED 1
#endif
#endif

namespace monkey {

namespace {

using platform::MsgAnswer;
using platform::MsgButtons;

// The monkey whose report a sanitizer prints before the process ends.
Monkey* g_running = nullptr;

#ifdef MONKEY_SANITIZED
void printReportOnDeath() {
    if (g_running) std::fprintf(stderr, "%s\n", qPrintable(g_running->report()));
}
#endif

QString describe(const QWidget* w) {
    if (!w) return QStringLiteral("-");
    QString out = QString::fromLatin1(w->metaObject()->className());
    if (!w->objectName().isEmpty()) out += QLatin1Char('#') + w->objectName();
    if (const auto* v = qobject_cast<const lists::ListView*>(w))
        out += QStringLiteral("[%1]").arg(v->index());
    const QWidget* top = w->window();
    if (top && top != w) out += QStringLiteral(" in ") + QString::fromLatin1(top->metaObject()->className());
    // The project window's caption says which project.
    for (const QWidget* p = w; p; p = p->parentWidget())
        if (const auto* pw = qobject_cast<const documents::ProjectWindow*>(p)) {
            out += QStringLiteral(" '") + pw->caption() + QLatin1Char('\'');
            break;
        }
    return out;
}

bool usable(const QWidget* w) {
    return w && w->isVisible() && w->isEnabled();
}

// Visible top-level windows a user can reach now: with a modal window open, only that one.
QList<QWidget*> reachableWindows(QWidget* within) {
    if (within) return {within};
    QList<QWidget*> out;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible() && !qobject_cast<QMenu*>(w) && w->windowType() != Qt::ToolTip) out << w;
    return out;
}

template <typename T> QList<T*> reachable(QWidget* within) {
    QList<T*> out;
    for (QWidget* top : reachableWindows(within)) {
        if (auto* self = qobject_cast<T*>(top); self && usable(self)) out << self;
        for (T* c : top->findChildren<T*>())
            if (usable(c)) out << c;
    }
    return out;
}

// Texts a user types: Finnish letters, characters Windows-1252 lacks, separators of the files,
// numbers of every shape, and a long one.
const QStringList& typedTexts() {
    static const QStringList texts = {
        QStringLiteral("Äänekoski"), QStringLiteral("öljyä åäö ÅÄÖ"),
        QStringLiteral("12,5"),      QStringLiteral("-0,001"),
        QStringLiteral("1e39"),      QStringLiteral("99999999999999"),
        QStringLiteral("7131.12"),   QStringLiteral("TIETYÖT SILTAPAIKALLA"),
        QStringLiteral("a;b;c"),     QStringLiteral("€ – “lainaus”"),
        QStringLiteral("日本語"),    QStringLiteral("Ω≈√ ł ő"),
        QStringLiteral("😀"),         QStringLiteral("{PATH}x.txt"),
        QStringLiteral(" "),         QString(300, QChar(u'x')),
    };
    return texts;
}

struct KeyChoice {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* name;
};

const std::vector<KeyChoice>& keyChoices() {
    static const std::vector<KeyChoice> keys = {
        {Qt::Key_Up, Qt::NoModifier, "Up"},
        {Qt::Key_Down, Qt::NoModifier, "Down"},
        {Qt::Key_Left, Qt::NoModifier, "Left"},
        {Qt::Key_Right, Qt::NoModifier, "Right"},
        {Qt::Key_Down, Qt::ShiftModifier, "Shift+Down"},
        {Qt::Key_Home, Qt::NoModifier, "Home"},
        {Qt::Key_End, Qt::NoModifier, "End"},
        {Qt::Key_Home, Qt::ControlModifier, "Ctrl+Home"},
        {Qt::Key_End, Qt::ControlModifier, "Ctrl+End"},
        {Qt::Key_PageUp, Qt::NoModifier, "PgUp"},
        {Qt::Key_PageDown, Qt::NoModifier, "PgDown"},
        {Qt::Key_PageUp, Qt::ControlModifier, "Ctrl+PgUp"},
        {Qt::Key_PageDown, Qt::ControlModifier, "Ctrl+PgDown"},
        {Qt::Key_PageDown, Qt::ShiftModifier, "Shift+PgDown"},
        {Qt::Key_PageUp, Qt::ShiftModifier | Qt::ControlModifier, "Ctrl+Shift+PgUp"},
        {Qt::Key_Tab, Qt::NoModifier, "Tab"},
        {Qt::Key_Backtab, Qt::ShiftModifier, "Shift+Tab"},
        {Qt::Key_Escape, Qt::NoModifier, "Esc"},
        {Qt::Key_Return, Qt::NoModifier, "Return"},
        {Qt::Key_Enter, Qt::NoModifier, "Enter"},
        {Qt::Key_Delete, Qt::NoModifier, "Delete"},
        {Qt::Key_Delete, Qt::ShiftModifier, "Shift+Delete"},
        {Qt::Key_Backspace, Qt::NoModifier, "Backspace"},
        {Qt::Key_F2, Qt::NoModifier, "F2"},
        {Qt::Key_Insert, Qt::NoModifier, "Insert"},
        {Qt::Key_Space, Qt::NoModifier, "Space"},
        {Qt::Key_C, Qt::ControlModifier, "Ctrl+C"},
        {Qt::Key_X, Qt::ControlModifier, "Ctrl+X"},
        {Qt::Key_V, Qt::ControlModifier, "Ctrl+V"},
        {Qt::Key_Z, Qt::ControlModifier, "Ctrl+Z"},
        {Qt::Key_Y, Qt::ControlModifier, "Ctrl+Y"},
        {Qt::Key_A, Qt::ControlModifier, "Ctrl+A"},
        {Qt::Key_I, Qt::ControlModifier, "Ctrl+I"},
        {Qt::Key_L, Qt::ControlModifier, "Ctrl+L"},
        {Qt::Key_S, Qt::ControlModifier, "Ctrl+S"},
        {Qt::Key_W, Qt::ControlModifier, "Ctrl+W"},
        {Qt::Key_Q, Qt::ControlModifier, "Ctrl+Q"},
        {Qt::Key_E, Qt::ControlModifier, "Ctrl+E"},
        {Qt::Key_R, Qt::ControlModifier, "Ctrl+R"},
        {Qt::Key_Tab, Qt::ControlModifier, "Ctrl+Tab"},
        {Qt::Key_B, Qt::ControlModifier, "Ctrl+B"},
        {Qt::Key_F7, Qt::NoModifier, "F7"},
        {Qt::Key_F8, Qt::NoModifier, "F8"},
        {Qt::Key_F9, Qt::NoModifier, "F9"},
        {Qt::Key_A, Qt::NoModifier, "a"},
        {Qt::Key_5, Qt::NoModifier, "5"},
    };
    return keys;
}

// Every action of a window's menus and toolbars, separators and submenus' own items left out.
void collectActions(const QList<QAction*>& from, QList<QAction*>& out, int depth = 0) {
    if (depth > 4) return;
    for (QAction* a : from) {
        if (!a || a->isSeparator() || !a->isVisible() || !a->isEnabled()) continue;
        if (QMenu* sub = a->menu()) {
            // A menu that is built when shown gets its items now.
            emit sub->aboutToShow();
            collectActions(sub->actions(), out, depth + 1);
            continue;
        }
        out << a;
    }
}

// Types text key by key as a keyboard would send it, letters outside ASCII included (QTest's
// own typing knows only ASCII).
void typeInto(QWidget* target, const QString& text) {
    QPointer<QWidget> guard = target;
    for (const char32_t u : text.toUcs4()) {
        if (!guard) return;
        const QString one = QString::fromUcs4(&u, 1);
        const Qt::Key key = u < 0x80 && QChar(u).isLetterOrNumber() ? Qt::Key(QChar(u).toUpper().unicode())
                            : u == ' '                              ? Qt::Key_Space
                                                                    : Qt::Key_unknown;
        QTest::sendKeyEvent(QTest::Click, target, key, one, Qt::NoModifier);
    }
}

bool sameRecord(const persist::WindowRecord& a, const persist::WindowRecord& b, QString* diff) {
    auto differs = [&](const QString& what, const QString& x, const QString& y) {
        *diff = what + QStringLiteral(": '") + x.left(120) + QStringLiteral("' / '") + y.left(120) +
                QLatin1Char('\'');
        return false;
    };
    for (int i = 0; i < std::max(a.texts.size(), b.texts.size()); ++i)
        if (a.texts.value(i) != b.texts.value(i))
            return differs(QStringLiteral("Text1[%1]").arg(i), a.texts.value(i), b.texts.value(i));
    for (int i = 0; i < std::max(a.combos.size(), b.combos.size()); ++i)
        if (a.combos.value(i) != b.combos.value(i))
            return differs(QStringLiteral("Combo1[%1]").arg(i), a.combos.value(i), b.combos.value(i));
    if (a.lists.size() != b.lists.size())
        return differs(QStringLiteral("lists"), QString::number(a.lists.size()),
                       QString::number(b.lists.size()));
    for (size_t j = 0; j < a.lists.size(); ++j) {
        const auto& la = a.lists[j];
        const auto& lb = b.lists[j];
        if (la.columns != lb.columns)
            return differs(QStringLiteral("list %1 columns").arg(j), QString::number(la.columns),
                           QString::number(lb.columns));
        if (la.rows.size() != lb.rows.size())
            return differs(QStringLiteral("list %1 rows").arg(j), QString::number(la.rows.size()),
                           QString::number(lb.rows.size()));
        for (size_t r = 0; r < la.rows.size(); ++r)
            if (la.rows[r] != lb.rows[r])
                return differs(QStringLiteral("list %1 row %2").arg(j).arg(r + 1),
                               la.rows[r].toStringList().join(u'|'), lb.rows[r].toStringList().join(u'|'));
    }
    return true;
}

// What a value becomes in the file: characters Windows-1252 lacks are written as "?".
QString asSaved(const QString& value) {
    return platform::fromCp1252(platform::toCp1252(value));
}

persist::WindowRecord asSaved(persist::WindowRecord record) {
    for (QString& t : record.texts)
        t = asSaved(t);
    for (QString& c : record.combos)
        c = asSaved(c);
    // Only a list's stored columns are saved: a row taken from the windows still holds its
    // row number after them, and a row read from a file the number it takes in its list.
    for (auto& l : record.lists)
        for (auto& row : l.rows) {
            row.resize(l.columns);
            for (int c = 0; c < l.columns; ++c)
                row.set(c, asSaved(row[c].toString()));
        }
    return record;
}

QString costsOf(const persist::WindowRecord& basic, const persist::ListRecord& quantities) {
    auto list = persist::ListFromRecord(quantities, lists::kind::QuantityList);
    return calc::FormatCostRecord(calc::CalculateCosts(*list, calc::CostInputsOf(basic.combos)));
}

} // namespace

// ---------------------------------------------------------------------------------------------

RandomDialogs::RandomDialogs(std::mt19937_64& random, QStringList openFolders, QString saveFolder,
                             std::function<void(const QString&)> log)
    : m_before(&platform::Dialogs::instance())
    , m_random(random)
    , m_openFolders(std::move(openFolders))
    , m_saveFolder(std::move(saveFolder))
    , m_log(std::move(log)) {
    platform::Dialogs::install(this);
}

RandomDialogs::~RandomDialogs() {
    platform::Dialogs::install(m_before);
}

int RandomDialogs::pick(int n) {
    return n <= 1 ? 0 : static_cast<int>(m_random() % static_cast<unsigned long long>(n));
}

MsgAnswer RandomDialogs::message(const platform::MessageRequest& request) {
    std::vector<MsgAnswer> choices;
    switch (request.buttons) {
        case MsgButtons::Ok:
            choices = {MsgAnswer::Ok};
            break;
        case MsgButtons::YesNo:
            choices = {MsgAnswer::Yes, MsgAnswer::No};
            break;
        case MsgButtons::YesNoCancel:
            choices = {MsgAnswer::Yes, MsgAnswer::No, MsgAnswer::Cancel};
            break;
    }
    if (predictable) {
        shown << request.text;
        // Saving and reading must go through: yes to every question.
        return choices.front();
    }
    // Something the program does by itself while the box waits for the user.
    if (whileOpen && pick(6) == 0) whileOpen();
    const MsgAnswer a = choices[pick(static_cast<int>(choices.size()))];
    static const char* names[] = {"Ok", "Yes", "No", "Cancel"};
    m_log(QStringLiteral("  message '%1' -> %2").arg(request.text.left(80), QLatin1String(names[int(a)])));
    return a;
}

QStringList RandomDialogs::files(const platform::FileRequest& request) {
    if (predictable) return nextFile.isEmpty() ? QStringList() : QStringList{nextFile};
    QStringList out;
    if (pick(12) == 0) {
        m_log(QStringLiteral("  file dialog -> cancelled"));
        return out;
    }
    if (request.save) {
        QString name;
        switch (pick(6)) {
            case 0: // a folder that cannot be written
                name = QStringLiteral("/proc/tamrik-ei-voi/tiedosto");
                break;
            case 1: // the same name again: the overwrite question
                name = m_saveFolder + QStringLiteral("/sama");
                break;
            default:
                name = m_saveFolder + QStringLiteral("/tallennus-%1").arg(++m_saved);
        }
        if (!request.defaultSuffix.isEmpty() && pick(4) != 0)
            name += QLatin1Char('.') + request.defaultSuffix;
        if (request.option) *request.option = pick(2) == 0;
        out << name;
    } else {
        QStringList pool;
        for (const QString& folder : m_openFolders)
            for (const QFileInfo& f : QDir(folder).entryInfoList(QDir::Files, QDir::Name))
                pool << f.absoluteFilePath();
        // Mostly a file the filter offers; now and then any file, as a typed name would be.
        QStringList matching;
        QStringList patterns;
        for (const QString& filter : request.filters) {
            const qsizetype open = filter.indexOf(u'('), close = filter.lastIndexOf(u')');
            if (open >= 0 && close > open)
                patterns << filter.mid(open + 1, close - open - 1).split(u' ', Qt::SkipEmptyParts);
        }
        for (const QString& file : pool)
            if (QDir::match(patterns, QFileInfo(file).fileName())) matching << file;
        const QStringList& from = (!matching.isEmpty() && pick(5) != 0) ? matching : pool;
        if (from.isEmpty()) return out;
        const int n = request.multiple ? 1 + pick(3) : 1;
        for (int i = 0; i < n; ++i)
            out << from[pick(static_cast<int>(from.size()))];
        out.removeDuplicates();
    }
    m_log(QStringLiteral("  file dialog -> %1").arg(out.join(QStringLiteral(", "))));
    return out;
}

std::optional<QFont> RandomDialogs::font(const QFont& initial) {
    if (predictable || pick(3) == 0) return std::nullopt;
    QFont f = initial;
    f.setPointSize(1 + pick(72));
    f.setBold(pick(2) == 0);
    return f;
}

std::optional<QColor> RandomDialogs::color(const QColor&) {
    if (predictable || pick(3) == 0) return std::nullopt;
    return QColor::fromRgb(static_cast<QRgb>(m_random()));
}

// ---------------------------------------------------------------------------------------------

QString Monkey::filesFolder(const QString& scratch) {
    return scratch + QStringLiteral("/tiedostot");
}

Monkey::Monkey(shell::MDIForm1& main, const Settings& settings)
    : m_main(main)
    , m_settings(settings)
    , m_random(settings.seed) {
    QDir().mkpath(m_settings.scratch + QStringLiteral("/tallennetut"));
    m_dialogs = std::make_unique<RandomDialogs>(
        m_random,
        QStringList{filesFolder(m_settings.scratch), m_settings.scratch + QStringLiteral("/tallennetut")},
        m_settings.scratch + QStringLiteral("/tallennetut"), [this](const QString& s) { log(s); });
    m_dialogs->whileOpen = [this] {
        log(QStringLiteral("  autosave while the message is open"));
        m_main.recovery().autosave();
    };
    for (const QFileInfo& f : QDir(filesFolder(m_settings.scratch)).entryInfoList({QStringLiteral("*.sl")}))
        if (!f.fileName().contains(QStringLiteral("rikki"))) m_projects << f.absoluteFilePath();
}

Monkey::~Monkey() {
    if (g_running == this) g_running = nullptr;
}

int Monkey::pick(int n) {
    return n <= 1 ? 0 : static_cast<int>(m_random() % static_cast<unsigned long long>(n));
}

bool Monkey::chance(double p) {
    return std::uniform_real_distribution<double>(0, 1)(m_random) < p;
}

void Monkey::log(const QString& action) {
    std::lock_guard<std::mutex> lock(m_logMutex);
    m_log.push_back(QStringLiteral("%1: %2").arg(m_steps).arg(action));
    while (m_log.size() > 50)
        m_log.pop_front();
}

void Monkey::noteDuration(long long ms) {
    std::lock_guard<std::mutex> lock(m_logMutex);
    if (m_log.empty()) return;
    m_slowest.emplace(ms, m_log.back());
    while (m_slowest.size() > 15)
        m_slowest.erase(m_slowest.begin());
}

QString Monkey::report() const {
    std::lock_guard<std::mutex> lock(m_logMutex);
    QString out = QStringLiteral("monkey: seed %1, step %2").arg(m_settings.seed).arg(m_steps);
    if (!m_failure.isEmpty()) out += QStringLiteral(": ") + m_failure;
    out += QStringLiteral("\nmonkey: the last actions (replay with ./tamrik monkey SECONDS %1):\n")
               .arg(m_settings.seed);
    for (const QString& a : m_log)
        out += QStringLiteral("  ") + a + QLatin1Char('\n');
    return out;
}

long long HangClock::runQueueWaitNs() {
    // Each line: time on a processor, time waiting in the run queue, time slices (ns, ns, n).
    long long sum = 0;
    QDirIterator it(QStringLiteral("/proc/self/task"), QDir::Dirs | QDir::NoDotAndDotDot);
    while (it.hasNext()) {
        QFile f(it.next() + QStringLiteral("/schedstat"));
        if (!f.open(QIODevice::ReadOnly)) continue; // the thread has just ended
        const QList<QByteArray> fields = f.readAll().simplified().split(' ');
        if (fields.size() >= 2) sum += fields[1].toLongLong();
    }
    return sum;
}

double HangClock::tick(bool progressed) {
    const long long wall = std::chrono::duration_cast<std::chrono::nanoseconds>(
                               std::chrono::steady_clock::now().time_since_epoch())
                               .count();
    const long long wait = runQueueWaitNs();
    if (m_lastWall < 0) {
        m_lastWall = wall;
        m_lastWait = wait;
        return 0;
    }
    // Threads that ended take their wait with them: the sum may go down.
    const double seconds = advance(wall - m_lastWall, std::max(0LL, wait - m_lastWait), progressed);
    m_lastWall = wall;
    m_lastWait = wait;
    return seconds;
}

double HangClock::advance(long long wallNs, long long waitNs, bool progressed) {
    if (progressed) return m_seconds = 0;
    m_seconds += static_cast<double>(wallNs - std::min(wallNs, waitNs)) / 1e9;
    return m_seconds;
}

bool Monkey::fail(const QString& what) {
    if (m_failure.isEmpty()) m_failure = what;
    return false;
}

bool Monkey::run() {
    g_running = this;
#ifdef MONKEY_SANITIZED
    __sanitizer_set_death_callback(printReportOnDeath);
#endif
    // The project lists' column counts as the program made them. (A base list window takes
    // its columns from the file it opens, so it has no fixed count.)
    for (documents::ProjectWindow* w : m_main.projectWindows())
        for (int i = 0; i < w->listCount(); ++i)
            if (w->list(i)) m_columns[{w->kind(), i}] = w->list(i)->cols();

    // A step that does not end is a hang: the report and the end of the process, after
    // `hangSeconds` without progress (a checked build is slow, but not that slow). Time the
    // program's threads spent waiting for a processor does not count: on a loaded machine a
    // run at low priority may wait minutes for its turn without hanging.
    std::mutex doneMutex;
    std::condition_variable doneSignal;
    bool done = false;
    std::thread watchdog([&] {
        long long seen = -1;
        HangClock hang;
        std::unique_lock<std::mutex> lock(doneMutex);
        while (!doneSignal.wait_for(lock, std::chrono::seconds(1), [&] { return done; })) {
            const bool progressed = m_progress != seen;
            seen = m_progress;
            if (hang.tick(progressed) < m_settings.hangSeconds) continue;
            m_failure = QStringLiteral("no progress for %1 s: the program hangs").arg(m_settings.hangSeconds);
            std::fprintf(stderr, "%s\n", qPrintable(report()));
            std::abort();
        }
    });
    struct Join {
        std::function<void()> f;
        ~Join() { f(); }
    } join{[&] {
        {
            std::lock_guard<std::mutex> lock(doneMutex);
            done = true;
        }
        doneSignal.notify_all();
        watchdog.join();
    }};

    // A timer that keeps firing inside every modal dialog's and popup menu's own event loop.
    m_running = true;
    QTimer::singleShot(1, [this] { tick(); });
    QElapsedTimer clock;
    clock.start();
    bool ok = true;
    while (ok) {
        if (m_settings.maxSteps > 0 && m_steps >= m_settings.maxSteps) break;
        if (m_settings.seconds > 0 && clock.elapsed() >= m_settings.seconds * 1000) break;
        ++m_steps;
        m_progress = m_steps;
        QElapsedTimer took;
        took.start();
        // A window shown modal without a loop of its own blocks the others as well.
        step(QApplication::activeModalWidget());
        QApplication::processEvents();
        noteDuration(took.elapsed());
        ok = checkInvariants();
        if (ok && m_settings.checkEvery > 0 && m_steps % m_settings.checkEvery == 0)
            ok = checkSaveAndReopen();
    }
    m_running = false;
    QApplication::processEvents();
    if (qEnvironmentVariableIsSet("MONKEY_SLOWEST")) {
        std::fprintf(stderr, "monkey: the slowest steps:\n");
        for (const auto& [ms, what] : m_slowest)
            std::fprintf(stderr, "  %lld ms: %s\n", ms, qPrintable(what));
    }
    if (!ok) std::fprintf(stderr, "%s\n", qPrintable(report()));
    return ok;
}

void Monkey::step(QWidget* within) {
    // Weights of the kinds of action; inside a modal window only what is inside it.
    const int roll = pick(100);
    if (within) {
        if (roll < 25) return clickButton(within);
        if (roll < 45) return pressKey(within);
        if (roll < 60) return typeText(within);
        if (roll < 75) return clickList(within);
        if (roll < 85) return chooseInCombo(within);
        if (roll < 92) return triggerAction(within);
        return scroll(within);
    }
    if (roll < 22) return triggerAction(nullptr);
    if (roll < 38) return pressKey(nullptr);
    if (roll < 46) return typeText(nullptr);
    if (roll < 60) return clickList(nullptr);
    if (roll < 63) return clickHeader(nullptr);
    if (roll < 70) return clickButton(nullptr);
    if (roll < 74) return chooseInCombo(nullptr);
    if (roll < 79) return dropBetweenLists();
    if (roll < 85) return switchWindow();
    if (roll < 88) return closeWindow();
    if (roll < 91) return openProject();
    if (roll < 94) return undoRedo();
    if (roll < 96) return pasteClipboard();
    if (roll < 98) {
        log(QStringLiteral("autosave"));
        return m_main.recovery().autosave();
    }
    return scroll(nullptr);
}

void Monkey::triggerAction(QWidget* within) {
    QList<QAction*> actions;
    for (QWidget* top : reachableWindows(within)) {
        if (auto* mw = qobject_cast<QMainWindow*>(top); mw && mw->menuBar()) {
            if (!mw->menuBar()->isEnabled()) continue;
            for (QAction* menu : mw->menuBar()->actions())
                if (menu->isEnabled() && menu->menu()) collectActions(menu->menu()->actions(), actions);
        }
        for (QToolBar* bar : top->findChildren<QToolBar*>())
            if (usable(bar)) collectActions(bar->actions(), actions);
    }
    // Ending the program ends the run; the shutdown questions are asked by closing windows.
    actions.removeIf([](QAction* a) { return a->text() == QLatin1String("L&opeta"); });
    if (actions.isEmpty()) return;
    QAction* a = actions[pick(static_cast<int>(actions.size()))];
    log(QStringLiteral("action '%1'").arg(a->text().isEmpty() ? a->toolTip() : a->text()));
    a->trigger();
}

void Monkey::pressKey(QWidget* within) {
    QWidget* target = QApplication::focusWidget();
    if (!target || !target->isVisible() || (within && !within->isAncestorOf(target) && target != within) ||
        chance(0.3)) {
        // Another control of a reachable window takes the focus, as a click would give it.
        QList<QWidget*> candidates;
        for (QWidget* w : reachable<QWidget>(within))
            if (w->focusPolicy() != Qt::NoFocus) candidates << w;
        if (candidates.isEmpty()) return;
        target = candidates[pick(static_cast<int>(candidates.size()))];
        QApplication::setActiveWindow(target->window());
        target->setFocus(Qt::MouseFocusReason);
    }
    const KeyChoice& k = keyChoices()[pick(static_cast<int>(keyChoices().size()))];
    log(QStringLiteral("key %1 -> %2").arg(QLatin1String(k.name), describe(target)));
    QPointer<QWidget> guard = target;
    QTest::keyClick(target, k.key, k.modifiers);
}

void Monkey::typeText(QWidget* within) {
    QList<QWidget*> candidates;
    for (QWidget* w : reachable<QWidget>(within))
        if (qobject_cast<QLineEdit*>(w) || qobject_cast<QTextEdit*>(w) || qobject_cast<QPlainTextEdit*>(w) ||
            qobject_cast<lists::ListView*>(w))
            candidates << w;
    if (candidates.isEmpty()) return;
    QWidget* target = candidates[pick(static_cast<int>(candidates.size()))];
    const QString text = typedTexts()[pick(static_cast<int>(typedTexts().size()))];
    log(QStringLiteral("type '%1' -> %2").arg(text.left(20), describe(target)));
    QApplication::setActiveWindow(target->window());
    target->setFocus(Qt::MouseFocusReason);
    typeInto(target, text);
}

void Monkey::clickList(QWidget* within) {
    const QList<QAbstractItemView*> views = reachable<QAbstractItemView>(within);
    if (views.isEmpty()) return;
    QAbstractItemView* view = views[pick(static_cast<int>(views.size()))];
    QAbstractItemModel* model = view->model();
    QPoint pos;
    QString where;
    if (model && model->rowCount() > 0 && chance(0.85)) {
        const QModelIndex index =
            model->index(pick(model->rowCount()), pick(std::max(1, model->columnCount())));
        view->scrollTo(index);
        pos = view->visualRect(index).center();
        where = QStringLiteral("cell %1,%2").arg(index.row() + 1).arg(index.column() + 1);
    } else {
        pos = QPoint(pick(std::max(1, view->viewport()->width())),
                     pick(std::max(1, view->viewport()->height())));
        where = QStringLiteral("point %1,%2").arg(pos.x()).arg(pos.y());
    }
    const int how = pick(10);
    Qt::KeyboardModifiers mods = Qt::NoModifier;
    if (how == 7) mods = Qt::ShiftModifier;
    if (how == 8) mods = Qt::ControlModifier;
    const char* what = how < 3 ? "double-click" : how == 9 ? "right-click" : "click";
    log(QStringLiteral("%1 %2 -> %3").arg(QLatin1String(what), where, describe(view)));
    QApplication::setActiveWindow(view->window());
    if (how < 3)
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, mods, pos);
    else if (how == 9)
        QTest::mouseClick(view->viewport(), Qt::RightButton, mods, pos);
    else
        QTest::mouseClick(view->viewport(), Qt::LeftButton, mods, pos);
}

void Monkey::clickHeader(QWidget* within) {
    const QList<lists::ListView*> views = reachable<lists::ListView>(within);
    if (views.isEmpty()) return;
    lists::ListView* view = views[pick(static_cast<int>(views.size()))];
    QHeaderView* header = view->header();
    if (!header || header->count() == 0) return;
    const int section = pick(header->count());
    if (header->isSectionHidden(section)) return;
    const QPoint pos(header->sectionViewportPosition(section) + header->sectionSize(section) / 2,
                     header->height() / 2);
    log(QStringLiteral("header %1 -> %2").arg(section + 1).arg(describe(view)));
    QApplication::setActiveWindow(view->window());
    QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
}

void Monkey::clickButton(QWidget* within) {
    const QList<QAbstractButton*> buttons = reachable<QAbstractButton>(within);
    if (buttons.isEmpty()) return;
    QAbstractButton* b = buttons[pick(static_cast<int>(buttons.size()))];
    log(QStringLiteral("button '%1' -> %2").arg(b->text(), describe(b)));
    QApplication::setActiveWindow(b->window());
    b->click();
}

void Monkey::chooseInCombo(QWidget* within) {
    const QList<QComboBox*> combos = reachable<QComboBox>(within);
    if (combos.isEmpty()) return;
    QComboBox* c = combos[pick(static_cast<int>(combos.size()))];
    if (c->count() == 0 || (c->isEditable() && chance(0.3))) {
        const QString text = typedTexts()[pick(static_cast<int>(typedTexts().size()))];
        log(QStringLiteral("combo text '%1' -> %2").arg(text.left(20), describe(c)));
        QApplication::setActiveWindow(c->window());
        c->setFocus(Qt::MouseFocusReason);
        typeInto(c, text);
        return;
    }
    const int i = pick(c->count());
    log(QStringLiteral("combo item %1 -> %2").arg(i).arg(describe(c)));
    QApplication::setActiveWindow(c->window());
    c->setFocus(Qt::MouseFocusReason);
    // As the user picks from the list: the control's own key path, so a locked box refuses.
    if (i < c->currentIndex())
        for (int k = c->currentIndex(); k > i; --k)
            QTest::keyClick(c, Qt::Key_Up);
    else
        for (int k = c->currentIndex(); k < i; ++k)
            QTest::keyClick(c, Qt::Key_Down);
}

void Monkey::dropBetweenLists() {
    const QList<lists::ListView*> views = reachable<lists::ListView>(nullptr);
    if (views.size() < 2) return;
    lists::ListView* source = views[pick(static_cast<int>(views.size()))];
    lists::ListView* target = views[pick(static_cast<int>(views.size()))];
    lists::ListEditor* editor = lists::ListEditor::of(source);
    if (!editor || !source->list() || source->list()->rows() == 0) return;
    // Rows chosen as the user would before dragging them.
    const int first = pick(source->list()->rows());
    const int count = 1 + pick(std::min(20, source->list()->rows() - first));
    source->selectionModel()->clearSelection();
    for (int r = first; r < first + count; ++r)
        source->selectionModel()->select(source->model()->index(r, 0),
                                         QItemSelectionModel::Select | QItemSelectionModel::Rows);
    const bool shift = chance(0.3);
    QPoint pos(pick(std::max(1, target->viewport()->width())),
               pick(std::max(1, target->viewport()->height())));
    log(QStringLiteral("drop rows %1..%2 of %3 -> %4 at %5,%6%7")
            .arg(first + 1)
            .arg(first + count)
            .arg(describe(source), describe(target))
            .arg(pos.x())
            .arg(pos.y())
            .arg(shift ? QStringLiteral(" with Shift") : QString()));
    std::unique_ptr<QMimeData> data(editor->dragData(shift));
    QPointer<QWidget> viewport = target->viewport();
    const Qt::KeyboardModifiers mods = shift ? Qt::ShiftModifier : Qt::NoModifier;
    QDragEnterEvent enter(pos, Qt::CopyAction, data.get(), Qt::LeftButton, mods);
    QApplication::sendEvent(viewport, &enter);
    if (!viewport) return;
    QDragMoveEvent move(pos, Qt::CopyAction, data.get(), Qt::LeftButton, mods);
    QApplication::sendEvent(viewport, &move);
    if (!viewport) return;
    if (!move.isAccepted() && chance(0.8)) {
        QDragLeaveEvent leave;
        QApplication::sendEvent(viewport, &leave);
        return;
    }
    QDropEvent drop(QPointF(pos), Qt::CopyAction, data.get(), Qt::LeftButton, mods);
    QApplication::sendEvent(viewport, &drop);
}

void Monkey::switchWindow() {
    const int how = pick(5);
    if (how == 0) {
        log(QStringLiteral("next window"));
        m_main.stepWindow(1);
    } else if (how == 1) {
        log(QStringLiteral("previous window"));
        m_main.stepWindow(-1);
    } else if (how == 2) {
        const auto windows = m_main.projectWindows();
        if (windows.empty()) return;
        documents::ProjectWindow* w = windows[pick(static_cast<int>(windows.size()))];
        log(QStringLiteral("activate %1").arg(w->caption()));
        m_main.activateWindow(w);
    } else if (how == 3) {
        const QList<QWidget*> tops = reachableWindows(nullptr);
        if (tops.isEmpty()) return;
        QWidget* w = tops[pick(static_cast<int>(tops.size()))];
        log(QStringLiteral("focus window %1").arg(describe(w)));
        QApplication::setActiveWindow(w);
    } else {
        const QList<QMdiSubWindow*> subs = m_main.mdiArea->subWindowList();
        if (subs.isEmpty()) return;
        QMdiSubWindow* sub = subs[pick(static_cast<int>(subs.size()))];
        const int what = pick(3);
        log(QStringLiteral("%1 %2").arg(what == 0   ? QStringLiteral("minimize")
                                        : what == 1 ? QStringLiteral("maximize")
                                                    : QStringLiteral("restore"),
                                        sub->windowTitle()));
        if (what == 0)
            sub->showMinimized();
        else if (what == 1)
            sub->showMaximized();
        else
            sub->showNormal();
    }
}

void Monkey::closeWindow() {
    if (chance(0.5)) {
        const QList<QMdiSubWindow*> subs = m_main.mdiArea->subWindowList();
        if (subs.isEmpty()) return;
        QMdiSubWindow* sub = subs[pick(static_cast<int>(subs.size()))];
        log(QStringLiteral("close %1").arg(sub->windowTitle()));
        sub->close();
        return;
    }
    QList<QWidget*> tops = reachableWindows(nullptr);
    tops.removeIf([this](QWidget* w) { return w == &m_main; });
    if (tops.isEmpty()) return;
    QWidget* w = tops[pick(static_cast<int>(tops.size()))];
    log(QStringLiteral("close window %1").arg(describe(w)));
    w->close();
}

void Monkey::openProject() {
    // A handful of projects at most: each is four windows.
    if (m_main.projectWindows().size() >= 16 || m_projects.isEmpty()) return;
    const QString file = m_projects[pick(static_cast<int>(m_projects.size()))];
    log(QStringLiteral("open %1").arg(QFileInfo(file).fileName()));
    m_main.openFromCommandLine(file);
}

void Monkey::pasteClipboard() {
    // What another program leaves on the clipboard: rows of cells, a long text, odd line ends,
    // a picture, or nothing.
    const int what = pick(7);
    QClipboard* clipboard = QApplication::clipboard();
    QString text;
    switch (what) {
        case 0:
            text = QStringLiteral("7131\tBetoni\t310\t12,5\tm3\t185,50\r\n\tjatkuu\r\n");
            break;
        case 1:
            text = QStringLiteral("a;b;c\rd;e\nf\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\tg");
            break;
        case 2:
            text = QString(40000, QChar(u'y'));
            break;
        case 3:
            text = typedTexts()[pick(static_cast<int>(typedTexts().size()))];
            break;
        case 4: {
            QImage image(40 + pick(400), 30 + pick(300), QImage::Format_RGB32);
            image.fill(QColor::fromRgb(static_cast<QRgb>(m_random())));
            clipboard->setImage(image);
            break;
        }
        case 5:
            clipboard->clear();
            break;
        default:
            text = QStringLiteral("\r\n\r\n\r\n");
    }
    if (what != 4 && what != 5) clipboard->setText(text);
    QWidget* target = QApplication::focusWidget();
    log(QStringLiteral("clipboard %1, Ctrl+V -> %2").arg(what).arg(describe(target)));
    if (target && target->isVisible()) QTest::keyClick(target, Qt::Key_V, Qt::ControlModifier);
}

void Monkey::undoRedo() {
    QAction* a = chance(0.6) ? m_main.undoAction : m_main.redoAction;
    if (!a || !a->isEnabled()) return;
    log(QStringLiteral("action '%1'").arg(a->text()));
    a->trigger();
}

void Monkey::scroll(QWidget* within) {
    QList<QAbstractScrollArea*> areas = reachable<QAbstractScrollArea>(within);
    if (areas.isEmpty()) return;
    QAbstractScrollArea* area = areas[pick(static_cast<int>(areas.size()))];
    QScrollBar* bar = chance(0.7) ? area->verticalScrollBar() : area->horizontalScrollBar();
    const int to = bar->minimum() + pick(bar->maximum() - bar->minimum() + 1);
    log(QStringLiteral("scroll to %1 -> %2").arg(to).arg(describe(area)));
    bar->setValue(to);
}

// ---------------------------------------------------------------------------------------------

void Monkey::tick() {
    if (!m_running) return;
    // Scheduled again first: what this tick does may open a loop of its own.
    QTimer::singleShot(2, [this] { tick(); });
    if (!m_failure.isEmpty()) {
        // Out of every dialog, so that the run can end.
        if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
        if (auto* d = qobject_cast<QDialog*>(QApplication::activeModalWidget())) d->reject();
        return;
    }
    if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) return actInPopup(menu);
    if (QWidget* modal = QApplication::activeModalWidget()) actInModal(modal);
}

void Monkey::actInPopup(QMenu* menu) {
    ++m_steps;
    m_progress = m_steps;
    QList<QAction*> actions;
    for (QAction* a : menu->actions())
        if (!a->isSeparator() && a->isVisible() && a->isEnabled() && !a->menu()) actions << a;
    if (actions.isEmpty() || chance(0.3)) {
        log(QStringLiteral("menu closed"));
        menu->close();
        return;
    }
    QAction* a = actions[pick(static_cast<int>(actions.size()))];
    log(QStringLiteral("menu item '%1'").arg(a->text()));
    menu->setActiveAction(a);
    QTest::keyClick(menu, Qt::Key_Return);
}

void Monkey::actInModal(QWidget* modal) {
    ++m_steps;
    m_progress = m_steps;
    // A few actions inside, then closed as the user would: Esc or the window's close button.
    if (chance(0.2) || m_modalDepth >= 3) {
        log(QStringLiteral("close dialog %1").arg(describe(modal)));
        if (auto* d = qobject_cast<QDialog*>(modal); d && chance(0.5))
            QTest::keyClick(d, Qt::Key_Escape);
        else
            modal->close();
        return;
    }
    ++m_modalDepth;
    step(modal);
    --m_modalDepth;
}

// ---------------------------------------------------------------------------------------------

bool Monkey::checkInvariants() {
    if (QApplication::activeModalWidget()) return true;
    for (documents::ProjectWindow* w : m_main.projectWindows()) {
        for (int i = 0; i < w->listCount(); ++i) {
            const auto expected = m_columns.find({w->kind(), i});
            if (w->list(i) && expected != m_columns.end() && w->list(i)->cols() != expected->second)
                return fail(QStringLiteral("%1: list %2 has %3 columns, not %4")
                                .arg(w->caption())
                                .arg(i)
                                .arg(w->list(i)->cols())
                                .arg(expected->second));
        }
        // The four windows of a project agree on its changed state, and it is the history's.
        const shell::ParsedCaption caption = shell::ParseFileName(w->caption());
        const shell::ProjectWindows all = m_main.projectWindowsOf(caption.project());
        if (!all.complete())
            return fail(QStringLiteral("%1: the project has not got its four windows").arg(w->caption()));
        for (documents::ProjectWindow* other : all.all())
            if (shell::CaptionIsUnchanged(other->caption()) != caption.unchanged)
                return fail(
                    QStringLiteral("captions disagree: '%1' and '%2'").arg(w->caption(), other->caption()));
        // Unsaved changes behind an unchanged caption would go without a question. (The other
        // way round is allowed: the Edit menu marks the project before it acts.)
        if (w->history() && w->history()->dirty() && caption.unchanged)
            return fail(QStringLiteral("%1: the caption says unchanged but the project has unsaved changes")
                            .arg(w->caption()));
    }
    return true;
}

bool Monkey::checkSaveAndReopen() {
    if (QApplication::activeModalWidget() || m_main.fileOperationRunning()) return true;
    const auto windows = m_main.projectWindows();
    if (windows.empty()) return true;
    // Whatever is being typed in a list goes in first, as saving does.
    documents::ProjectWindow* any = windows[pick(static_cast<int>(windows.size()))];
    const QString project = shell::ParseFileName(any->caption()).project();
    const shell::ProjectWindows pw = m_main.projectWindowsOf(project);
    if (!pw.complete()) return fail(QStringLiteral("no four windows for %1").arg(project));
    for (documents::ProjectWindow* w : pw.all())
        for (lists::ListView* v : w->ListView1)
            if (lists::ListEditor* e = lists::ListEditor::of(v); e && e->isEditing()) e->PutToListView();

    const QString file = m_settings.scratch + QStringLiteral("/tarkistus-%1.sl").arg(++m_checks);
    log(QStringLiteral("check: save %1 as %2").arg(project, QFileInfo(file).fileName()));
    m_main.activateWindow(pw.f1);
    m_dialogs->predictable = true;
    m_dialogs->nextFile = file;
    m_dialogs->shown.clear();
    m_main.FileMenuActions(3); // "Tallenna &nimellä..."
    m_dialogs->predictable = false;
    if (!QFileInfo::exists(file))
        return fail(QStringLiteral("saving %1 wrote nothing (%2)")
                        .arg(project, m_dialogs->shown.join(QStringLiteral(" / "))));
    const shell::ProjectWindows saved = m_main.projectWindowsOf(shell::ParseFileName(file).project());
    if (!saved.complete()) return fail(QStringLiteral("after saving, no windows are named %1").arg(file));
    for (documents::ProjectWindow* w : saved.all())
        if (!shell::CaptionIsUnchanged(w->caption()))
            return fail(QStringLiteral("after saving, '%1' says changed").arg(w->caption()));

    // Compared as the windows are after saving: saving brings the party's office text up to
    // date first.
    std::vector<persist::WindowRecord> before;
    for (documents::ProjectWindow* w : pw.all())
        before.push_back(asSaved(w->toRecord()));
    persist::ProjectFile read;
    QString error;
    if (!persist::ReadProjectFile(file, false, read, &error))
        return fail(QStringLiteral("the saved %1 does not read: %2").arg(file, error));
    if (read.content.windows.size() < 4) return fail(QStringLiteral("the saved file has not four windows"));
    for (int i = 0; i < 4; ++i) {
        QString diff;
        // The rows read carry the number the list will give them after the stored columns.
        if (!sameRecord(before[i], asSaved(read.content.windows[i]), &diff))
            return fail(QStringLiteral("window %1 saved differs from the window: %2").arg(i + 1).arg(diff));
    }
    // The estimate the windows compute (as printing does, on the shown list) equals the
    // command line's from the file.
    const QString fromWindows =
        calc::FormatCostRecord(calc::CalculateCosts(*pw.f2->list(0), pw.f1->costInputs()));
    const QString fromFile = costsOf(read.content.windows[0], persist::RecordList(read.content, 1, 0));
    if (fromWindows != fromFile)
        return fail(QStringLiteral("the costs differ:\n%1\n/\n%2").arg(fromWindows, fromFile));

    // Opened again in windows of its own, the copy shows what was saved.
    const QString copy = m_settings.scratch + QStringLiteral("/uudelleen-%1.sl").arg(m_checks);
    QFile::copy(file, copy);
    m_dialogs->predictable = true;
    m_main.openFromCommandLine(copy);
    m_dialogs->predictable = false;
    const shell::ProjectWindows reopened = m_main.projectWindowsOf(shell::ParseFileName(copy).project());
    if (!reopened.complete())
        return fail(QStringLiteral("the saved file did not open again (%1)")
                        .arg(m_dialogs->shown.join(QStringLiteral(" / "))));
    const auto again = reopened.all();
    for (int i = 0; i < 4; ++i) {
        QString diff;
        if (!sameRecord(before[i], asSaved(again[i]->toRecord()), &diff))
            return fail(QStringLiteral("window %1 opened again differs: %2").arg(i + 1).arg(diff));
    }
    m_main.activateWindow(reopened.f1);
    m_dialogs->predictable = true;
    m_main.UnloadActiveProject();
    m_dialogs->predictable = false;
    QApplication::processEvents();
    return checkInvariants();
}

} // namespace monkey
