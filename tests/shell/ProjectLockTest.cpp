// The same project open in two programs: the lock file beside an open project, and the
// question of a program that finds another one's lock.
#include "MainWindowFixture.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "platform/ProjectLock.h"
#include "platform/TextFile.h"
#include "shell/Captions.h"
#include "shell/ProjectFiles.h"

#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace shell;
using platform::MsgAnswer;

namespace {

class ProjectLockTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        file = dir.filePath(QStringLiteral("Yhteinen silta.sl"));
        if (!QFile::exists(file))
            ASSERT_TRUE(QFile::copy(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"), file));
    }
    // A lock as another program writes it.
    void lockBy(const QString& host, qint64 pid, const QDateTime& time) {
        ASSERT_TRUE(platform::writeFileAtomically(platform::projectLockPath(file),
                                                  QByteArray("TAMRIK,toinen,") + host.toUtf8() + ',' +
                                                      QByteArray::number(pid) + ',' +
                                                      time.toUTC().toString(Qt::ISODate).toLatin1() + '\n'));
    }
    bool isOpen() { return main->projectWindowsOf(ParseFileName(file).project()).complete(); }
    // A process id that no process has any more.
    static qint64 goneProcess() {
        QProcess p;
        p.start(QStringLiteral("/bin/true"), {});
        p.waitForFinished();
        return p.processId() ? p.processId() : 999999;
    }

    QTemporaryDir dir;
    QString file;
};

// Nothing warned when a project already open and changed in another program was opened again;
// the last save won. The other program's lock now brings the question, with its owner named.
TEST_F(ProjectLockTest, AProjectOpenInAnotherProgramIsRefusedWithTheChoices) {
    const QString host = QSysInfo::machineHostName();
    lockBy(host, 1, QDateTime::currentDateTime()); // a process that always runs

    dialogs.answer(MsgAnswer::Cancel);
    main->openFromCommandLine(file);
    ASSERT_EQ(dialogs.messages().size(), 1u);
    const platform::MessageRequest& q = dialogs.messages()[0];
    EXPECT_TRUE(
        q.text.contains(QStringLiteral("on jo avoinna toisessa TAMRIK-ohjelmassa (käyttäjä toinen, kone ") +
                        host + QStringLiteral(", prosessi 1, avattu ")))
        << q.text.toStdString();
    EXPECT_EQ(q.buttonTexts, (QStringList{QStringLiteral("Avaa vain luettavaksi"),
                                          QStringLiteral("Avaa silti"), QStringLiteral("Peruuta")}));
    EXPECT_FALSE(isOpen());

    // Read-only: a copy without the file's name, unchanged; the other program's lock stays.
    dialogs.answer(MsgAnswer::Yes);
    main->openFromCommandLine(file);
    EXPECT_FALSE(isOpen());
    const ParsedCaption copy = ParseFileName(main->ActiveCaption());
    EXPECT_TRUE(copy.directory.isEmpty());
    EXPECT_TRUE(copy.unchanged);
    EXPECT_EQ(main->projectWindowsOf(copy.project()).f1->Text1[0]->text().isEmpty(), false);
    EXPECT_EQ(platform::readProjectLock(file)->pid, 1);
    // Saving that copy over the file asks first; "Ei" writes nothing.
    QByteArray before;
    ASSERT_TRUE(platform::readFileBytes(file, before));
    dialogs.answer(MsgAnswer::No);
    EXPECT_FALSE(WriteSlFile(*main, copy.project(), file, false));
    EXPECT_TRUE(dialogs.lastText().contains(QStringLiteral("Tallennetaanko silti sen päälle?")));

    // Anyway: opened for editing, and the lock is this program's.
    dialogs.answer(MsgAnswer::No);
    main->openFromCommandLine(file);
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(platform::isOwnLock(*platform::readProjectLock(file)));

    // Closing the project gives the lock up.
    main->activateWindow(main->projectWindowsOf(ParseFileName(file).project()).f1);
    EXPECT_FALSE(main->UnloadActiveProject());
    EXPECT_FALSE(QFile::exists(platform::projectLockPath(file)));
}

TEST_F(ProjectLockTest, AStaleLockIsTakenOverWithoutAQuestion) {
    const QDateTime now = QDateTime::currentDateTime();
    struct Case {
        QString host;
        qint64 pid;
        QDateTime time;
        bool stale;
    } cases[] = {
        {QSysInfo::machineHostName(), goneProcess(), now, true}, // its program is gone
        {QStringLiteral("muu-kone"), 1, now.addDays(-2), true},  // another host's, old
        {QStringLiteral("muu-kone"), 1, now.addSecs(-600), false},
    };
    for (const Case& c : cases) {
        platform::LockOwner owner{QStringLiteral("toinen"), c.host, c.pid, c.time.toUTC()};
        EXPECT_EQ(platform::isStaleLock(owner), c.stale) << c.host.toStdString() << " " << c.pid;
    }
    lockBy(cases[0].host, cases[0].pid, now);
    main->openFromCommandLine(file);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
    ASSERT_TRUE(isOpen());
    const std::optional<platform::LockOwner> mine = platform::readProjectLock(file);
    ASSERT_TRUE(mine);
    EXPECT_TRUE(platform::isOwnLock(*mine));

    // Saved under another name, the lock moves with the project; the program's end gives up all.
    const QString other = dir.filePath(QStringLiteral("Toinen nimi.sl"));
    ASSERT_TRUE(WriteSlFile(*main, ParseFileName(file).project(), other, false));
    EXPECT_FALSE(QFile::exists(platform::projectLockPath(file)));
    EXPECT_TRUE(QFile::exists(platform::projectLockPath(other)));
    TearDown();
    EXPECT_FALSE(QFile::exists(platform::projectLockPath(other)));
    SetUp();
}

} // namespace
