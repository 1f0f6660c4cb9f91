// One program per user: a later start hands its file to the running program.
#include "MainWindowFixture.h"
#include "common/TestSupport.h"
#include "persist/SlContainer.h"
#include "platform/TextFile.h"
#include "shell/SingleInstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
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
