// One program per user: a later start hands its file to the running program.
#include "MainWindowFixture.h"
#include "common/TestSupport.h"
#include "persist/SlContainer.h"
#include "platform/TextFile.h"
#include "shell/Captions.h"
#include "shell/SingleInstance.h"

#include <QDateTime>
#include <QDialog>
#include <QDir>
#include <QStatusBar>
#include <QTimer>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <atomic>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

bool waitFor(const std::function<bool()>& condition, int ms = 30000) {
    QElapsedTimer t;
    t.start();
    while (!condition()) {
        if (t.elapsed() > ms) return false;
        QThread::msleep(50);
    }
    return true;
}

// Lets this program's events run for about `ms` milliseconds.
void runEvents(int ms) {
    for (int waited = 0; waited < ms; waited += 20) {
        QCoreApplication::processEvents();
        QThread::msleep(20);
    }
}

using SingleInstanceServer = MainWindowFixture;

} // namespace

TEST(SingleInstance, ASecondStartHandsItsFileToTheFirstAndEnds) {
    QTemporaryDir dir;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("TEMP"), dir.path());
    env.insert(QStringLiteral("HOME"), dir.path());
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("config")));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    const QString program = testing_support::binaryDir() + QStringLiteral("/tamrik");

    QProcess first;
    first.setProcessEnvironment(env);
    first.start(program, {});
    ASSERT_TRUE(first.waitForStarted());
    QString privateDir;
    ASSERT_TRUE(waitFor([&] {
        const QStringList found = QDir(dir.path()).entryList({QStringLiteral("tamrik-*")}, QDir::Dirs);
        if (found.isEmpty()) return false;
        privateDir = dir.filePath(found.first()) + QLatin1Char('/');
        return QFileInfo::exists(shell::instanceSocketPath(privateDir));
    })) << "the first program listens";

    const QString project = dir.filePath(QStringLiteral("silta.sl"));
    ASSERT_TRUE(QFile::copy(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"), project));
    QProcess second;
    second.setProcessEnvironment(env);
    second.setWorkingDirectory(dir.path());
    second.start(program, {QStringLiteral("silta.sl")}); // relative to its own folder
    ASSERT_TRUE(second.waitForFinished(30000));
    EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(first.state(), QProcess::Running) << "the first program goes on";

    // The first program opened the project: reading it leaves the text member in its folder.
    QByteArray bytes;
    ASSERT_TRUE(platform::readFileBytes(project, bytes));
    persist::Members members;
    QString error;
    ASSERT_TRUE(persist::UnpackContainer(bytes, members, &error));
    const QString textMember = privateDir + QStringLiteral("~Tamrik30_1_tmp.tmp");
    EXPECT_TRUE(waitFor([&] {
        QByteArray extracted;
        return platform::readFileBytes(textMember, extracted) && extracted.startsWith(members[0].data);
    }));
    first.kill();
    first.waitForFinished();

    // The killed program's socket is left behind: nobody answers there, so a later start does
    // not hand its file to it, and a new program takes the socket over.
    const QString socket = shell::instanceSocketPath(privateDir);
    EXPECT_FALSE(shell::handToRunningProgram(socket, project, 2000));
}

// A program that crashed leaves its socket file behind; the next program takes it over.
TEST_F(SingleInstanceServer, ASocketLeftBehindIsTakenOver) {
    QTemporaryDir dir;
    const QString socket = shell::instanceSocketPath(dir.path() + QLatin1Char('/'));
    {
        // What a crash leaves: a bound socket file that nobody listens on.
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        ASSERT_GE(fd, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray path = QFile::encodeName(socket);
        ASSERT_LT(static_cast<std::size_t>(path.size()), sizeof(address.sun_path));
        std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
        ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
        ::close(fd);
    }
    ASSERT_TRUE(QFileInfo::exists(socket));
    EXPECT_FALSE(shell::handToRunningProgram(socket, dir.filePath(QStringLiteral("x.sl")), 1000));
    auto* server = new shell::InstanceServer(*main);
    EXPECT_TRUE(server->listen(socket));
    QLocalSocket client;
    client.connectToServer(socket);
    EXPECT_TRUE(client.waitForConnected(2000));
    // A second server for the same user finds the first one answering and leaves it alone.
    auto* another = new shell::InstanceServer(*main);
    EXPECT_FALSE(another->listen(socket));
    EXPECT_TRUE(shell::instanceSocketPath(QString()).isEmpty());
}

namespace {

// A later start in its own thread, as a second process would hand its file over.
struct LaterStart {
    LaterStart(const QString& socket, const QString& file, int timeoutMs)
        : thread(
              QThread::create([=, this] { taken = shell::handToRunningProgram(socket, file, timeoutMs); })) {
        thread->start();
    }
    ~LaterStart() {
        thread->wait();
        delete thread;
    }
    // Runs this program's event loop until the later start has its answer.
    bool finish() {
        while (!thread->isFinished())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return taken;
    }
    std::atomic<bool> taken{false};
    QThread* thread;
};

// A running program listening on a socket of its own, with sample projects to hand over.
class HandOver : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        socket = shell::instanceSocketPath(dir.path() + QLatin1Char('/'));
        server = new shell::InstanceServer(*main);
        ASSERT_TRUE(server->listen(socket));
    }
    bool isOpen(const QString& file) const {
        return main->projectWindowsOf(shell::ParseFileName(file).project()).complete();
    }
    // Runs this program's events until `file` is open, for at most 10 seconds.
    bool opens(const QString& file) {
        return waitFor(
            [&] {
                QCoreApplication::processEvents();
                return isOpen(file);
            },
            10000);
    }
    QString sample(const QString& name) {
        const QString file = dir.filePath(name);
        EXPECT_TRUE(QFile::copy(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"), file));
        return file;
    }
    QTemporaryDir dir;
    QString socket;
    shell::InstanceServer* server = nullptr;
};

} // namespace

// A file handed over while the user works in a dialog or the row editor used to close them and
// switch the main window to the file. It waits now, with a note in the status bar.
TEST_F(HandOver, AHandedOverFileWaitsWhileADialogIsOpen) {
    const QString project = sample(QStringLiteral("odottaa.sl"));
    const QString other = sample(QStringLiteral("toinen.sl"));

    QDialog busy(main.get()); // a window of the program that the user works in, not modal
    busy.show();
    for (const QString& file : {project, other}) {
        LaterStart later(socket, file, 5000);
        EXPECT_TRUE(later.finish()) << "the program takes the file";
    }
    runEvents(800);
    EXPECT_TRUE(busy.isVisible());
    EXPECT_EQ(server->waitingFiles(), (QStringList{project, other}));
    EXPECT_FALSE(isOpen(project));
    EXPECT_TRUE(main->statusBar()->currentMessage().contains(QStringLiteral("odottaa.sl")))
        << main->statusBar()->currentMessage().toStdString();
    // However often it looks again, one retry waits at a time.
    int active = 0;
    for (QTimer* t : server->findChildren<QTimer*>())
        active += t->isActive() ? 1 : 0;
    EXPECT_EQ(active, 1);

    busy.hide();
    ASSERT_TRUE(opens(other));
    EXPECT_TRUE(isOpen(project));
    EXPECT_TRUE(server->waitingFiles().isEmpty());
    EXPECT_TRUE(main->statusBar()->currentMessage().isEmpty());
}

// A later start that waited in vain (this program stopped or busy for longer than its wait)
// opens its file itself; the request it gave up on must never be carried out here too.
TEST_F(HandOver, ARequestTheLaterStartGaveUpOnIsNeverCarriedOut) {
    const QString project = sample(QStringLiteral("annettu.sl"));
    {
        // This program is stopped (no events) while the later start waits and gives up.
        LaterStart later(socket, project, 400);
        later.thread->wait();
        EXPECT_FALSE(later.taken);
    }
    runEvents(400);
    EXPECT_TRUE(server->waitingFiles().isEmpty());
    EXPECT_FALSE(isOpen(project));

    // A sender that left after the answer without confirming is not followed either, nor is a
    // line of another form.
    for (const QByteArray& request :
         {QByteArray("OPEN ") + QByteArray::number(QDateTime::currentMSecsSinceEpoch() + 60000) + ' ' +
              QFile::encodeName(project) + '\n',
          QFile::encodeName(project) + '\n'}) {
        QLocalSocket client;
        client.connectToServer(socket);
        ASSERT_TRUE(client.waitForConnected(2000));
        client.write(request);
        client.flush();
        for (int i = 0; i < 10; ++i) {
            QCoreApplication::processEvents();
            client.waitForReadyRead(20);
        }
        client.abort();
        runEvents(200);
    }
    EXPECT_TRUE(server->waitingFiles().isEmpty());
    EXPECT_FALSE(isOpen(project));

    // The same start in time is taken.
    LaterStart later(socket, project, 5000);
    EXPECT_TRUE(later.finish());
    EXPECT_TRUE(opens(project));
}
