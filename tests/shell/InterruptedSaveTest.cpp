// Saves that do not finish: a process killed in the middle of saving a large project or a list
// file, and a disk that fills up. The user's file is always either the old one or the new one,
// whole, and a failed save says so.
#include "MainWindowFixture.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "persist/ProjectFile.h"
#include "platform/TextFile.h"
#include "shell/Captions.h"
#include "shell/ProjectFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace shell;

namespace {

constexpr int kKilledSaves = 50; // of each kind: a project and a list file

// Rows enough that a save takes a while: every column of every row filled.
std::vector<lists::Row> manyRows(const lists::ListModel& list, int count, const QString& mark) {
    std::vector<lists::Row> rows(count);
    for (int r = 0; r < count; ++r) {
        lists::RowCells::Builder cells;
        for (int c = 1; c < list.cols(); ++c)
            cells.add(QStringLiteral("%1 rivi %2 sarake %3 työvaihe").arg(mark).arg(r).arg(c));
        cells.add(lists::formatRowNumber(r + 1));
        rows[r].cells = cells.take();
    }
    return rows;
}

// How long `save` takes in a child process, from the fork to its end, in microseconds.
template <typename Save> qint64 childSaveTime(Save save) {
    QElapsedTimer timer;
    timer.start();
    const pid_t child = fork();
    if (child == 0) {
        save();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return timer.nsecsElapsed() / 1000;
}

// Runs `save` in a child process and kills it after a random wait of up to `longest`
// microseconds. Returns whether the child got to the end before the kill.
template <typename Save> bool saveKilledAfter(std::mt19937& random, qint64 longest, Save save) {
    const qint64 wait = std::uniform_int_distribution<qint64>(0, longest)(random);
    const pid_t child = fork();
    if (child == 0) {
        save();
        _exit(0); // no destructors, no exit handlers: the parent owns everything
    }
    usleep(static_cast<useconds_t>(wait));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status);
}

QByteArray bytesOf(const QString& path) {
    QByteArray bytes;
    platform::readFileBytes(path, bytes);
    return bytes;
}

// What a killed save may leave in the folder besides the target. Where the file system cannot
// make unnamed files, the temporary file of a killed save stays behind as "<target>.XXXXXX";
// it never replaces the target, and anything else would be a fault.
QStringList strayFiles(const QDir& dir, const QString& target) {
    QStringList names = dir.entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    names.removeAll(target);
    // The open project's lock file belongs beside it.
    names.removeAll(QStringLiteral(".~lock.") + target + QLatin1Char('#'));
    const QRegularExpression temporary(QRegularExpression::escape(target) +
                                       QStringLiteral("\\.[A-Za-z0-9]{6}$"));
    names.removeIf([&](const QString& name) { return temporary.match(name).hasMatch(); });
    return names;
}

class InterruptedSaveTest : public MainWindowFixture {
protected:
    QTemporaryDir dir;
};

TEST_F(InterruptedSaveTest, AKilledProjectSaveLeavesTheOldOrTheNewProjectWhole) {
    const ProjectWindows w = main->projectWindowsOf(QStringLiteral("Projekti1"));
    lists::ListModel& quantities = *w.f2->list(0);
    quantities.reset(quantities.columns(), manyRows(quantities, 2000, QStringLiteral("määrä")));
    lists::ListModel& requirements = *w.f2->list(1);
    requirements.reset(requirements.columns(), manyRows(requirements, 200, QStringLiteral("vaatimus")));
    const QString file = dir.filePath(QStringLiteral("Silta.sl"));

    auto version = [&](int n) {
        w.f1->Text1[0]->setText(QStringLiteral("Versio %1").arg(n, 4, 10, QChar('0')));
    };
    version(0);
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    // The project is known by its file from now on.
    const QString project = ParseFileName(file).project();
    QByteArray current = bytesOf(file);
    const qint64 oneSave = childSaveTime([&] { WriteSlFile(*main, project, file, false); });
    ASSERT_EQ(bytesOf(file), current);

    std::mt19937 random(20061);
    int finished = 0;
    int current_version = 0;
    for (int n = 1; n <= kKilledSaves; ++n) {
        version(n);
        // Up to twice a whole save (a busy machine makes saves slower than the one measured), so
        // that some saves finish and some are killed, right up to the end.
        const bool done =
            saveKilledAfter(random, oneSave * 2, [&] { WriteSlFile(*main, project, file, false); });
        finished += done;
        const QByteArray now = bytesOf(file);
        if (now == current) {
            EXPECT_FALSE(done) << "a finished save left the old file, round " << n;
            continue;
        }
        persist::ProjectFile read;
        QString error;
        ASSERT_TRUE(persist::ReadProjectFile(file, false, read, &error))
            << "round " << n << ": " << error.toStdString();
        EXPECT_EQ(read.content.windows[0].texts.value(0),
                  QStringLiteral("Versio %1").arg(n, 4, 10, QChar('0')))
            << "round " << n << " after version " << current_version;
        EXPECT_EQ(now.size(), current.size()) << "every version has the same length";
        current = now;
        current_version = n;
        EXPECT_EQ(
            strayFiles(QDir(dir.path()), QStringLiteral("Silta.sl")).join(QLatin1Char(',')).toStdString(), "")
            << "round " << n;
    }
    EXPECT_EQ(strayFiles(QDir(dir.path()), QStringLiteral("Silta.sl")).join(QLatin1Char(',')).toStdString(),
              "");
    // Both outcomes happened, so the kills really fell inside saves.
    EXPECT_GT(finished, 0);
    EXPECT_LT(finished, kKilledSaves);
}

TEST_F(InterruptedSaveTest, AKilledListSaveLeavesTheOldOrTheNewListWhole) {
    lists::ListModel list;
    std::vector<lists::Column> columns;
    for (const char* h :
         {"LITTERA", "TYÖVAIHE", "YKSIKKÖ", "A (HELPOT)", "B (NORMAALIT)", "C (VAIKEAT)", "HUOMAUTUKSET"})
        columns.push_back({QString::fromUtf8(h), 1000});
    columns.push_back({QStringLiteral("Rivi"), 0});
    list.reset(columns, {});
    const QString file = dir.filePath(QStringLiteral("Hinnat.sl1"));

    auto version = [&](int n) {
        list.reset(columns, manyRows(list, 4000, QStringLiteral("v%1").arg(n, 4, 10, QChar('0'))));
    };
    version(0);
    ASSERT_TRUE(lists::SaveListView(list, file));
    QByteArray current = bytesOf(file);
    const qint64 oneSave = childSaveTime([&] { lists::SaveListView(list, file); });

    std::mt19937 random(20062);
    int finished = 0;
    for (int n = 1; n <= kKilledSaves; ++n) {
        version(n);
        const bool done = saveKilledAfter(random, oneSave * 2, [&] { lists::SaveListView(list, file); });
        finished += done;
        const QByteArray now = bytesOf(file);
        if (now == current) {
            EXPECT_FALSE(done) << "a finished save left the old file, round " << n;
            continue;
        }
        lists::ListFileContent read;
        QString error;
        ASSERT_EQ(lists::ReadListFile(file, QStringLiteral(";"), read, &error), lists::ReadStatus::Ok)
            << error.toStdString();
        ASSERT_EQ(read.rows.size(), 4000u) << "round " << n;
        EXPECT_EQ(read.rows.back().cells.value(0), list.cell(4000, 1).toString()) << "round " << n;
        EXPECT_EQ(now.size(), current.size());
        current = now;
    }
    EXPECT_EQ(strayFiles(QDir(dir.path()), QStringLiteral("Hinnat.sl1")).join(QLatin1Char(',')).toStdString(),
              "");
    EXPECT_GT(finished, 0);
    EXPECT_LT(finished, kKilledSaves);
}

// A disk that fills up in the middle of the save: the file size limit makes every write past
// it fail as a full disk does.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &m_old);
        m_oldHandler = signal(SIGXFSZ, SIG_IGN);
        rlimit limit = m_old;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &m_old);
        signal(SIGXFSZ, m_oldHandler);
    }

private:
    rlimit m_old{};
    sighandler_t m_oldHandler = SIG_DFL;
};

TEST_F(InterruptedSaveTest, AFullDiskOrAnUnwritableFolderKeepsTheOldFileAndSaysSo) {
    const ProjectWindows w = main->projectWindowsOf(QStringLiteral("Projekti1"));
    lists::ListModel& quantities = *w.f2->list(0);
    quantities.reset(quantities.columns(), manyRows(quantities, 2000, QStringLiteral("vanha")));
    const QString file = dir.filePath(QStringLiteral("Silta.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    const QString project = ParseFileName(file).project();
    const QByteArray old = bytesOf(file);
    const QString caption = w.f1->caption();

    quantities.reset(quantities.columns(), manyRows(quantities, 4000, QStringLiteral("uusi")));
    main->contentChanged(w.f1);
    const QString changedCaption = w.f1->caption();
    dialogs.clear();
    {
        FullDisk full(old.size() / 2);
        EXPECT_FALSE(WriteSlFile(*main, project, file, false));
    }
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_TRUE(dialogs.lastText().startsWith(QStringLiteral("Tiedostoa ") + file +
                                              QStringLiteral(" ei voi tallentaa:\r\n")))
        << dialogs.lastText().toStdString();
    EXPECT_EQ(bytesOf(file), old);
    EXPECT_EQ(w.f1->caption(), changedCaption) << "the project is still changed";
    EXPECT_NE(changedCaption, caption);
    EXPECT_EQ(strayFiles(QDir(dir.path()), QStringLiteral("Silta.sl")).join(QLatin1Char(',')).toStdString(),
              "");

    // A list file on the full disk: the same.
    lists::ListModel list;
    list.reset(quantities.columns(), manyRows(quantities, 3000, QStringLiteral("lista")));
    const QString listFile = dir.filePath(QStringLiteral("Määrät.csv"));
    ASSERT_TRUE(platform::writeFileAtomically(listFile, "LITTERA;TYÖVAIHE\r\n"));
    QString error;
    {
        FullDisk full(4096);
        EXPECT_FALSE(lists::SaveListView(list, listFile, &error));
    }
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(bytesOf(listFile), QByteArray("LITTERA;TYÖVAIHE\r\n"));

    // A folder that cannot be written: here a "folder" that is a file, which even the
    // administrator cannot write into.
    dialogs.clear();
    const QString intoAFile = listFile + QStringLiteral("/Silta.sl");
    EXPECT_FALSE(WriteSlFile(*main, project, intoAFile, false));
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_TRUE(dialogs.lastText().startsWith(QStringLiteral("Tiedostoa ") + intoAFile +
                                              QStringLiteral(" ei voi tallentaa:\r\n")));
    EXPECT_EQ(bytesOf(listFile), QByteArray("LITTERA;TYÖVAIHE\r\n"));
    if (geteuid() != 0) {
        QDir(dir.path()).mkdir(QStringLiteral("lukittu"));
        const QString locked = dir.filePath(QStringLiteral("lukittu"));
        QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner);
        EXPECT_FALSE(lists::SaveListView(list, locked + QStringLiteral("/lista.csv"), &error));
        QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
}

} // namespace
