// Autosave and recovery: copies of changed projects in the session folder, and the question at
// the next start after a program was killed.
#include "MainWindowFixture.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "persist/ProjectFile.h"
#include "platform/ProjectLock.h"
#include "platform/TempDir.h"
#include "platform/TextFile.h"
#include "shell/Captions.h"
#include "shell/Form8.h"
#include "shell/ProjectFiles.h"
#include "shell/Recovery.h"
#include "shell/Termination.h"

#include <QApplication>
#include <QDir>
#include <QScopeGuard>
#include <QFileInfo>
#include <QStandardPaths>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTimer>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace shell;
using platform::MsgAnswer;

namespace {

class RecoveryTest : public MainWindowFixture {
protected:
    ProjectWindows project(const QString& name) { return main->projectWindowsOf(name); }
    std::vector<RecoveredProject> copies() { return recoveryCopies(main->recovery().sessionFolder()); }

    // A program that changes a project (first saved as `savedAs` when given), and with
    // `newText` a second, never saved project, takes its autosave copies and is killed.
    void runAndKill(const QString& text, const QString& savedAs = QString(),
                    const QString& newText = QString()) {
        const pid_t child = fork();
        if (child == 0) {
            shell::MDIForm1 other;
            other.setProgramDirectory(testing_support::dataDir());
            other.startUp(false);
            if (!savedAs.isEmpty()) WriteSlFile(other, QStringLiteral("Projekti1"), savedAs, false);
            auto change = [&other](const QString& project, const QString& to) {
                const ProjectWindows w = other.projectWindowsOf(project);
                w.f1->Text1[0]->setText(to);
                other.contentChanged(w.f1);
            };
            change(ParseFileName(other.ActiveCaption()).project(), text);
            if (!newText.isEmpty()) change(other.NewProject(), newText);
            other.recovery().autosave();
            raise(SIGKILL);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    }

    // Two programs with the same saved project open, each with its own unsaved change, both
    // killed after their autosave: the second starts while the first still runs.
    void runTwoAndKill(const QString& file, const QString& first, const QString& second) {
        std::vector<pid_t> children;
        // However the test ends, no program is left waiting.
        const auto cleanup = qScopeGuard([&children] {
            for (pid_t child : children) {
                kill(child, SIGKILL);
                waitpid(child, nullptr, 0);
            }
        });
        for (const QString& text : {first, second}) {
            int ready[2];
            ASSERT_EQ(pipe(ready), 0);
            const bool later = !children.empty();
            const pid_t child = fork();
            if (child == 0) {
                ::close(ready[0]);
                shell::MDIForm1 other;
                other.setProgramDirectory(testing_support::dataDir());
                other.startUp(false);
                // The first program has the file open: the second saves over it anyway.
                if (later) dialogs.answer(MsgAnswer::Yes);
                WriteSlFile(other, QStringLiteral("Projekti1"), file, false);
                const ProjectWindows w = other.projectWindowsOf(ParseFileName(file).project());
                w.f1->Text1[0]->setText(text);
                other.contentChanged(w.f1);
                other.recovery().autosave();
                const char byte = 1;
                [[maybe_unused]] const ssize_t n = ::write(ready[1], &byte, 1);
                for (;;)
                    pause();
            }
            ::close(ready[1]);
            children.push_back(child);
            char byte = 0;
            ASSERT_EQ(::read(ready[0], &byte, 1), 1) << "the program took its copy";
            ::close(ready[0]);
        }
    }

    // A program prepared by `prepare` and ended by SIGTERM; the child's pid once it exited.
    pid_t endBySignal(const std::function<void(MDIForm1&)>& prepare) {
        const pid_t child = fork();
        if (child == 0) {
            int status = 3;
            {
                shell::MDIForm1 other;
                other.setProgramDirectory(testing_support::dataDir());
                other.startUp(false);
                prepare(other);
                new Termination(other);
                QTimer::singleShot(0, [] { kill(getpid(), SIGTERM); });
                // Without its own handling the signal ends the process right here.
                status = QApplication::exec();
            }
            _exit(status == 0 ? 0 : 4);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status)) << "ended by the signal without writing anything";
        EXPECT_EQ(WEXITSTATUS(status), 0);
        return child;
    }

    // The next start of the program.
    std::unique_ptr<MDIForm1> restart() {
        auto next = std::make_unique<MDIForm1>();
        next->setProgramDirectory(testing_support::dataDir());
        next->startUp(false);
        return next;
    }

    static void closeQuietly(MDIForm1& m) {
        m.appState().settings.SaveSettingsOnExit = false;
        for (auto* w : m.projectWindows())
            m.FormUntouch(w);
    }

    QTemporaryDir dir;
};

TEST_F(RecoveryTest, AutosaveCopiesChangedProjectsOnlyAndTouchesNothingElse) {
    ASSERT_FALSE(main->recovery().sessionFolder().isEmpty());
    EXPECT_EQ(main->recovery().interval(), 5) << "five minutes unless the settings say otherwise";
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    const QString file = dir.filePath(QStringLiteral("Silta.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    QByteArray saved;
    ASSERT_TRUE(platform::readFileBytes(file, saved));
    main->recovery().autosave();
    EXPECT_TRUE(copies().empty()) << "nothing unsaved, nothing copied";

    const QString project = ParseFileName(file).project();
    const ProjectWindows w = project.isEmpty() ? p1 : main->projectWindowsOf(project);
    w.f1->Text1[0]->setText(QStringLiteral("Muutettu silta"));
    main->contentChanged(w.f1);
    const QString caption = w.f1->caption();
    EXPECT_FALSE(CaptionIsUnchanged(caption));
    main->recovery().autosave();

    const std::vector<RecoveredProject> c = copies();
    ASSERT_EQ(c.size(), 1u);
    EXPECT_EQ(c[0].project, project);
    EXPECT_LE(qAbs(c[0].time.secsTo(QDateTime::currentDateTime())), 60);
    persist::ProjectFile read;
    QString error;
    ASSERT_TRUE(persist::ReadProjectFile(c[0].copy, false, read, &error)) << error.toStdString();
    EXPECT_EQ(read.content.windows[0].texts.value(0), QStringLiteral("Muutettu silta"));
    // The user's file, the captions and the changed state are as they were.
    QByteArray after;
    ASSERT_TRUE(platform::readFileBytes(file, after));
    EXPECT_EQ(after, saved);
    EXPECT_EQ(w.f1->caption(), caption);
    EXPECT_TRUE(main->appState().RecentFiles[0] == file);

    // A save removes the copy at once.
    ASSERT_TRUE(WriteSlFile(*main, project, file, false));
    EXPECT_TRUE(copies().empty());

    // So does closing the project without saving.
    w.f1->Text1[0]->setText(QStringLiteral("Taas muutettu"));
    main->contentChanged(w.f1);
    main->recovery().autosave();
    EXPECT_EQ(copies().size(), 1u);
    dialogs.answer(MsgAnswer::No);
    main->activateWindow(w.f1);
    EXPECT_FALSE(main->UnloadActiveProject());
    EXPECT_TRUE(copies().empty());

    // A normal end removes the whole session folder.
    const QString folder = main->recovery().sessionFolder();
    EXPECT_TRUE(QFileInfo(folder).isDir());
    TearDown();
    EXPECT_FALSE(QFileInfo(folder).exists());
    SetUp();
}

TEST_F(RecoveryTest, AKilledProgramsProjectsComeBackAtTheNextStartWithTheQuestion) {
    const QString file = dir.filePath(QStringLiteral("Kärkölän silta.sl"));
    runAndKill(QStringLiteral("Tallentamaton muutos"), file, QStringLiteral("Uusi projekti"));

    dialogs.clear();
    dialogs.answer(MsgAnswer::Yes);
    dialogs.answer(MsgAnswer::Yes);
    std::unique_ptr<MDIForm1> next = restart();
    ASSERT_EQ(dialogs.messages().size(), 2u);
    const QString asked = dialogs.texts().join(QStringLiteral("\n--\n"));
    const QString when = QDateTime::currentDateTime().toString(QStringLiteral("d.M.yyyy"));
    EXPECT_TRUE(
        asked.contains(QStringLiteral("\r\n") + ParseFileName(file).project() + QStringLiteral("\r\n")))
        << asked.toStdString();
    EXPECT_TRUE(asked.contains(QStringLiteral("\r\nProjekti2\r\n"))) << asked.toStdString();
    EXPECT_EQ(asked.count(QStringLiteral("palautuskopio ajalta ") + when), 2) << asked.toStdString();

    // The saved project opens under its own name, changed, with the unsaved change; the one
    // never saved opens as a new changed project.
    const ProjectWindows saved = next->projectWindowsOf(ParseFileName(file).project());
    ASSERT_TRUE(saved.complete());
    EXPECT_EQ(saved.f1->Text1[0]->text(), QStringLiteral("Tallentamaton muutos"));
    EXPECT_FALSE(CaptionIsUnchanged(saved.f1->caption()));
    int unsaved = 0;
    for (auto* w : next->projectWindows()) {
        auto* f1 = qobject_cast<documents::Form1*>(w);
        if (!f1 || f1->Text1[0]->text() != QStringLiteral("Uusi projekti")) continue;
        ++unsaved;
        EXPECT_TRUE(ParseFileName(f1->caption()).directory.isEmpty());
        EXPECT_FALSE(CaptionIsUnchanged(f1->caption()));
    }
    EXPECT_EQ(unsaved, 1);
    EXPECT_TRUE(next->appState().RecentFiles[0].isEmpty()) << "the copy is not a recent file";
    // The restored projects are this program's now: copied again, and not offered twice.
    EXPECT_EQ(recoveryCopies(next->recovery().sessionFolder()).size(), 2u);
    closeQuietly(*next);
    next.reset();

    dialogs.clear();
    next = restart();
    EXPECT_TRUE(dialogs.messages().empty());
    closeQuietly(*next);
}

TEST_F(RecoveryTest, NoRemovesTheCopyAndARunningProgramKeepsItsOwn) {
    // This program has a changed project with a copy: a second program started beside it
    // leaves that copy alone.
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    p1.f1->Text1[0]->setText(QStringLiteral("Käynnissä"));
    main->contentChanged(p1.f1);
    main->recovery().autosave();
    ASSERT_EQ(copies().size(), 1u);

    runAndKill(QStringLiteral("Hylätään"));
    dialogs.clear();
    dialogs.answer(MsgAnswer::No);
    std::unique_ptr<MDIForm1> next = restart();
    ASSERT_EQ(dialogs.messages().size(), 1u) << "only the killed program's copy is offered";
    EXPECT_EQ(copies().size(), 1u);
    for (auto* w : next->projectWindows())
        if (auto* f1 = qobject_cast<documents::Form1*>(w))
            EXPECT_NE(f1->Text1[0]->text(), QStringLiteral("Hylätään"));
    closeQuietly(*next);
    next.reset();

    dialogs.clear();
    next = restart();
    EXPECT_TRUE(dialogs.messages().empty()) << "no removed the copy";
    closeQuietly(*next);
}

TEST_F(RecoveryTest, TheIntervalIsASettingAndZeroTurnsTheAutosaveOff) {
    Form8 settings(*main);
    EXPECT_EQ(settings.Text4->text(), QStringLiteral("5"));
    settings.Text4->setText(QStringLiteral("0"));
    settings.saveAndClose();
    EXPECT_EQ(main->appState().settings.AutosaveMinutes, 0);
    EXPECT_EQ(main->recovery().interval(), 0);

    // A bad value is said at once and keeps the dialog open; nothing is taken from it.
    for (const char* bad : {"kymmenen", "-5", "1441", "2,5"}) {
        Form8 again(*main);
        again.Text4->setText(QString::fromUtf8(bad));
        again.Text1[2]->setText(QStringLiteral("31"));
        dialogs.clear();
        again.saveAndClose();
        ASSERT_EQ(dialogs.messages().size(), 1u) << bad;
        EXPECT_TRUE(dialogs.lastText().startsWith(QStringLiteral("Palautuskopion väli \"") +
                                                  QString::fromUtf8(bad) + QStringLiteral("\" ei kelpaa.")))
            << dialogs.lastText().toStdString();
        EXPECT_TRUE(dialogs.lastText().contains(QStringLiteral("0...1440")));
        EXPECT_EQ(again.result(), QDialog::Rejected) << bad;
        EXPECT_EQ(main->appState().settings.AutosaveMinutes, 0) << bad;
        EXPECT_EQ(main->appState().settings.VAT, QStringLiteral("22")) << bad;
    }

    Form8 third(*main);
    third.Text4->setText(QStringLiteral("12"));
    third.saveAndClose();
    EXPECT_EQ(main->recovery().interval(), 12);
}

// Recovery copies lay in the temporary folder, which many systems empty at boot: the one case
// where they matter most lost them. They are in the user's data folder now, private.
TEST_F(RecoveryTest, CopiesLieInThePrivateDataFolderThatSurvivesAReboot) {
    const QString folder = main->recovery().sessionFolder();
    ASSERT_FALSE(folder.isEmpty());
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    ASSERT_FALSE(data.isEmpty());
    EXPECT_TRUE(folder.startsWith(data + QStringLiteral("/palautus/"))) << folder.toStdString();
    EXPECT_FALSE(folder.startsWith(main->appState().TempPath)) << folder.toStdString();
    struct stat st {};
    ASSERT_EQ(::stat(QFile::encodeName(data + QStringLiteral("/palautus")).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);
}

// SIGTERM (logout, shutdown, kill) skipped everything: settings, window places and recent
// files were not written, and changed projects had no last copy. It ends like a normal end
// that cannot ask questions now.
TEST_F(RecoveryTest, SigtermWritesTheSettingsAndKeepsACopyOfEveryChangedProject) {
    endBySignal([](MDIForm1& other) {
        other.appState().settings.AutosaveMinutes = 0; // no copy before the end
        other.Submenu10Click(0);                       // designer mode, kept only at the end
        const ProjectWindows w = other.projectWindowsOf(QStringLiteral("Projekti1"));
        w.f1->Text1[0]->setText(QStringLiteral("Lopetettiin signaalilla"));
        other.contentChanged(w.f1);
    });
    EXPECT_EQ(platform::SettingsStore().get(QStringLiteral("General"), QStringLiteral("ProgramMode")),
              QStringLiteral("1"));

    dialogs.clear();
    dialogs.answer(MsgAnswer::Yes);
    std::unique_ptr<MDIForm1> next = restart();
    ASSERT_EQ(dialogs.messages().size(), 1u);
    bool found = false;
    for (auto* w : next->projectWindows())
        if (auto* f1 = qobject_cast<documents::Form1*>(w))
            found = found || f1->Text1[0]->text() == QStringLiteral("Lopetettiin signaalilla");
    EXPECT_TRUE(found);
    closeQuietly(*next);
}

// A program ended by a signal with nothing changed left an empty session folder behind.
TEST_F(RecoveryTest, SigtermWithNothingChangedLeavesNoSessionFolder) {
    const pid_t child = endBySignal([](MDIForm1& other) {
        if (other.recovery().sessionFolder().isEmpty()) _exit(5);
    });
    const QStringList left =
        QDir(platform::recoveryPath())
            .entryList({QStringLiteral("palautus-%1-*").arg(child)}, QDir::Dirs | QDir::NoDotAndDotDot);
    EXPECT_TRUE(left.isEmpty()) << left.join(QLatin1Char(',')).toStdString();
}

// Two programs killed with the same project open came back as two windows with the same
// caption; saving one left the other looking like the same file. The versions are told
// apart now, by name and in the question.
TEST_F(RecoveryTest, TwoVersionsOfOneProjectComeBackUnderNamesOfTheirOwn) {
    const QString file = dir.filePath(QStringLiteral("Yhteinen.sl"));
    runTwoAndKill(file, QStringLiteral("Ensimmäinen"), QStringLiteral("Toinen"));

    dialogs.clear();
    dialogs.answer(MsgAnswer::Yes);
    dialogs.answer(MsgAnswer::Yes);
    std::unique_ptr<MDIForm1> next = restart();
    ASSERT_EQ(dialogs.messages().size(), 2u);
    for (int i = 0; i < 2; ++i) {
        const platform::MessageRequest& q = dialogs.messages()[i];
        EXPECT_TRUE(q.toFront);
        EXPECT_TRUE(q.text.contains(QStringLiteral("on tallessa 2 eri versiota"))) << q.text.toStdString();
        EXPECT_TRUE(q.text.contains(dir.filePath(QStringLiteral("Yhteinen (palautettu %1).sl")).arg(i + 1)))
            << q.text.toStdString();
    }
    QStringList texts;
    for (int v = 1; v <= 2; ++v) {
        const ProjectWindows w =
            next->projectWindowsOf(ParseFileName(recoveredVersionName(file, v)).project());
        ASSERT_TRUE(w.complete()) << v;
        EXPECT_FALSE(CaptionIsUnchanged(w.f1->caption()));
        texts << w.f1->Text1[0]->text();
    }
    texts.sort();
    EXPECT_EQ(texts, (QStringList{QStringLiteral("Ensimmäinen"), QStringLiteral("Toinen")}));
    EXPECT_FALSE(next->projectWindowsOf(ParseFileName(file).project()).complete());
    EXPECT_EQ(recoveredVersionName(QStringLiteral("/a/b.c/Silta"), 2),
              QStringLiteral("/a/b.c/Silta (palautettu 2)"));
    closeQuietly(*next);
}

// A logout or shutdown while the recovery question was open ended the question with "Ei"
// (the answer a closed box gives) and the copies were removed: the work they held was lost.
// The copies not answered yet wait for the next start; the program does not go on running.
TEST_F(RecoveryTest, AnEndWhileTheQuestionIsOpenKeepsTheCopiesNotAnswered) {
    const QString first = dir.filePath(QStringLiteral("Ensimmäinen.sl"));
    runAndKill(QStringLiteral("Ensimmäisen muutos"), first, QStringLiteral("Uuden muutos"));

    dialogs.clear();
    dialogs.answer(MsgAnswer::Yes);
    dialogs.answer(MsgAnswer::No); // what the box gives when the end closes it
    dialogs.whileOpen = [](const platform::MessageRequest& q) {
        if (q.text.contains(QStringLiteral("Ensimmäinen.sl"))) return;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* m = qobject_cast<MDIForm1*>(w)) m->endWithoutQuestions();
    };
    std::unique_ptr<MDIForm1> next = restart();
    dialogs.whileOpen = nullptr;
    ASSERT_EQ(dialogs.messages().size(), 2u) << dialogs.texts().join(QLatin1Char('|')).toStdString();
    EXPECT_TRUE(next->terminating());
    EXPECT_TRUE(next->projectWindowsOf(first).complete());
    next.reset();

    // The next start offers the unanswered copy, and the restored project once (its copy
    // from the run that ended).
    dialogs.clear();
    dialogs.answer(MsgAnswer::Yes);
    dialogs.answer(MsgAnswer::Yes);
    std::unique_ptr<MDIForm1> third = restart();
    const QString texts = dialogs.texts().join(QLatin1Char('|'));
    ASSERT_EQ(dialogs.messages().size(), 2u) << texts.toStdString();
    EXPECT_EQ(texts.count(QStringLiteral("Ensimmäinen.sl")), 1) << texts.toStdString();
    QStringList restored;
    for (documents::ProjectWindow* w : third->projectWindows())
        if (auto* f1 = qobject_cast<documents::Form1*>(w)) restored << f1->Text1[0]->text();
    EXPECT_TRUE(restored.contains(QStringLiteral("Uuden muutos"))) << restored.join(',').toStdString();
    EXPECT_TRUE(restored.contains(QStringLiteral("Ensimmäisen muutos"))) << restored.join(',').toStdString();
    closeQuietly(*third);
}

// A copy of a project that another running program has open now (it was opened anyway in
// both) came back under the file's own name and took over the other program's lock: two
// editors of one file again. It comes back under a version name, and the question says why.
TEST_F(RecoveryTest, AProjectOpenInAnotherProgramComesBackUnderAVersionName) {
    const QString file = dir.filePath(QStringLiteral("Toisessa auki.sl"));
    runAndKill(QStringLiteral("Tapetun muutos"), file);
    const QByteArray lock = "TAMRIK,toinen," + QSysInfo::machineHostName().toUtf8() + ",1," +
                            QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toLatin1() + '\n';
    ASSERT_TRUE(platform::writeFileAtomically(platform::projectLockPath(file), lock));

    dialogs.clear();
    dialogs.answer(MsgAnswer::Yes);
    std::unique_ptr<MDIForm1> next = restart();
    ASSERT_EQ(dialogs.messages().size(), 1u);
    const QString openAs = recoveredVersionName(file, 1);
    const QString text = dialogs.messages()[0].text;
    EXPECT_TRUE(text.contains(QStringLiteral("on nyt avoinna toisessa TAMRIK-ohjelmassa (käyttäjä toinen")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(openAs)) << text.toStdString();
    const ProjectWindows w = next->projectWindowsOf(openAs);
    ASSERT_TRUE(w.complete());
    EXPECT_EQ(w.f1->Text1[0]->text(), QStringLiteral("Tapetun muutos"));
    EXPECT_FALSE(next->projectWindowsOf(file).complete());
    QByteArray after;
    ASSERT_TRUE(platform::readFileBytes(platform::projectLockPath(file), after));
    EXPECT_EQ(after, lock) << "the other program keeps its lock";
    closeQuietly(*next);
}

} // namespace
