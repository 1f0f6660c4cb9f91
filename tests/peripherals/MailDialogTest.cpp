#include "common/FakeMail.h"
#include "common/ScriptedDialogs.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "peripherals/Dialog2.h"
#include "persist/ProjectFile.h"
#include "platform/CommonDialog.h"
#include "platform/TextFile.h"
#include "shell/Captions.h"
#include "shell/MainWindowFixture.h"
#include "shell/ProjectFiles.h"
#include "shell/ShellActions.h"

#include <QApplication>
#include <QCheckBox>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

using namespace peripherals;
using testing_support::FakeMail;

TEST(MailMessage, OnlyAnUnsavedProjectsNameGetsTheExtensionAndNeverTwice) {
    for (const auto& [caption, name] : {std::pair{"Projekti1", "Projekti1.sl"},
                                        {"Projekti12.SL", "Projekti12.SL"},
                                        {"Projekti3.sL", "Projekti3.sL"},
                                        {"Esimerkkisilta.sl", "Esimerkkisilta.sl"},
                                        {"silta", "silta"}})
        EXPECT_EQ(ProjectAttachmentName(QString::fromUtf8(caption)), QString::fromUtf8(name)) << caption;
}

TEST(MailMessage, AttachmentPositionsAndBody) {
    // The project first, then the list's files, five spaces apart in the body; blank entries
    // are counted in the body only.
    const QStringList files{"/home/a/selostus.pdf", "   ", "C:\\Työt\\mittaus.xls"};
    platform::MailMessage m = BuildMailMessage("Projekti1.sl", "/tmp/t/Projekti1.sl", files, true);
    EXPECT_EQ(m.body, QString(20, QLatin1Char(' ')));
    const QStringList names{"Projekti1.sl", "selostus.pdf", "mittaus.xls"};
    const QStringList paths{"/tmp/t/Projekti1.sl", files[0], files[2]};
    ASSERT_EQ(m.attachments.size(), 3u);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(m.attachments[k].name, names[k]);
        EXPECT_EQ(m.attachments[k].path, paths[k]);
        EXPECT_EQ(m.attachments[k].position, 5 * k);
    }
    // Without the project; the list unchecked leaves its files out of the count as well; only
    // the list, and it is empty.
    const struct {
        QString project;
        QStringList files;
        bool list;
        int spaces;
        size_t attachments;
    } cases[] = {{"", files, true, 15, 2}, {"S.sl", files, false, 5, 1}, {"", {}, true, 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        m = BuildMailMessage(c.project, c.project, c.files, c.list);
        EXPECT_EQ(m.body, QString(c.spaces, QLatin1Char(' ')));
        ASSERT_EQ(m.attachments.size(), c.attachments);
        if (c.attachments) EXPECT_EQ(m.attachments[0].position, 0);
    }
}

TEST(MailMessage, EvaluateNFilesOnOneAndOnSeveralFiles) {
    // The dialog's answer ("|" for its NUL separators), the count, and the full paths. A folder
    // that already ends in a separator gets no second one.
    const struct {
        const char* chosen;
        int count;
        const char* paths;
    } cases[] = {{"", 0, ""},
                 {"/home/a/yksi tiedosto.pdf", 1, "/home/a/yksi tiedosto.pdf"},
                 {"/home/a|b.pdf|c d.xls", 2, "/home/a/b.pdf|/home/a/c d.xls"},
                 {"/|x|y", 2, "/x|/y"},
                 {"C:\\Työt\\|a.doc|b.doc", 2, "C:\\Työt\\a.doc|C:\\Työt\\b.doc"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.chosen);
        QString files = QString::fromUtf8(c.chosen).replace(QLatin1Char('|'), QChar(0));
        EXPECT_EQ(platform::EvaluateNFiles(files), c.count);
        EXPECT_EQ(files, QString::fromUtf8(c.paths).replace(QLatin1Char('|'), QChar(0)));
    }
}

namespace {

class MailDialogTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        host = std::make_unique<Host>(*main);
    }
    void TearDown() override {
        host.reset();
        MainWindowFixture::TearDown();
    }

    // The main window's answers, as the File menu's dialog gets them.
    struct Host : MailHost {
        explicit Host(shell::MDIForm1& m)
            : main(m) {}
        QString ActiveCaption() const override { return main.ActiveCaption(); }
        bool SaveProjectCopy(const QString& project, const QString& file) override {
            ++saves;
            return shell::WriteSlFile(main, project, file, true);
        }
        QString TempPath() const override { return main.appState().TempPath; }
        platform::CommonDialogState& DialogState() override { return main.appState().dialog; }
        QStringList RequirementFiles() override {
            return persist::PopulateFiles(*main.ParseFormIndeces().f2->list(1));
        }
        void ShowHelp(int context, QWidget*) override { helpContexts.push_back(context); }
        shell::MDIForm1& main;
        int saves = 0;
        std::vector<int> helpContexts;
    };

    QString writeFile(const QString& name, const QByteArray& bytes) {
        const QString path = files.filePath(name);
        EXPECT_TRUE(platform::writeFileAtomically(path, bytes));
        return path;
    }

    QTemporaryDir files;
    std::unique_ptr<Host> host;
};

QStringList entries(const QListWidget* list) {
    QStringList out;
    for (int i = 0; i < list->count(); ++i)
        out << list->item(i)->text();
    return out;
}

} // namespace

TEST_F(MailDialogTest, ChecksEnableTheListAndTheSendButton) {
    Dialog2 dialog(*host);
    // After each click on a check box (-1: as the dialog opens, the project checked): the
    // attachment frame with its buttons, and "Lähetä" while anything is checked.
    const struct {
        int click;
        bool frame, send;
    } steps[] = {{-1, false, true}, {1, true, true}, {0, true, true}, {1, false, false}};
    for (const auto& s : steps) {
        SCOPED_TRACE(&s - steps);
        if (s.click >= 0) dialog.Check1[s.click]->click();
        EXPECT_EQ(dialog.List1->isEnabled(), s.frame);
        EXPECT_EQ(dialog.Command1[3]->isEnabled(), s.frame);
        EXPECT_EQ(dialog.Command1[0]->isEnabled(), s.send);
    }
}

TEST_F(MailDialogTest, HelpOpensTheGuideAtTheMailTopic) {
    Dialog2 dialog(*host);
    dialog.Command1[2]->click();
    EXPECT_EQ(host->helpContexts, std::vector<int>{2300});
}

TEST_F(MailDialogTest, AddingSeveralFilesAndRemovingSeveralSelected) {
    // The files the requirement list refers to are offered from the start.
    lists::ListModel& requirements = *main->ParseFormIndeces().f2->list(1);
    lists::AddListViewRow(requirements, 1, true);
    requirements.setCell(1, 13, "/kuvat/työselostus.pdf");
    requirements.setCell(1, 14, "viite ilman kansiota.pdf");
    Dialog2 dialog(*host);
    EXPECT_EQ(entries(dialog.List1), QStringList{"/kuvat/työselostus.pdf"});

    dialog.Check1[1]->click();
    dialogs.chooseFiles({"/data/a.pdf", "/data/b c.xls", "/data/d.txt"});
    dialog.Command1[3]->click();
    // Several files at a time, and every file, also one without an extension.
    ASSERT_EQ(dialogs.fileRequests().size(), 1u);
    EXPECT_TRUE(dialogs.fileRequests()[0].multiple);
    EXPECT_EQ(dialogs.fileRequests()[0].filters.first(), "Kaikki tiedostot (*)");
    dialogs.chooseFile("/muu/e.doc");
    dialog.Command1[3]->click();
    dialogs.chooseFiles({}); // cancelled: nothing changes
    dialog.Command1[3]->click();
    EXPECT_EQ(entries(dialog.List1), (QStringList{"/kuvat/työselostus.pdf", "/data/a.pdf", "/data/b c.xls",
                                                  "/data/d.txt", "/muu/e.doc"}));

    for (int i : {0, 2, 3})
        dialog.List1->item(i)->setSelected(true);
    dialog.Command1[4]->click();
    EXPECT_EQ(entries(dialog.List1), (QStringList{"/data/a.pdf", "/muu/e.doc"}));
}

TEST_F(MailDialogTest, UnsavedProjectGoesAsACopyWithItsFilesAndTheWindowsStayAsTheyWere) {
    FakeMail mail(0);
    const shell::ProjectWindows w = main->ParseFormIndeces();
    w.f1->Text1[0]->setText("Kärkölän silta");
    const QString captionBefore = w.f1->caption();
    ASSERT_FALSE(shell::CaptionIsUnchanged(captionBefore));
    const QString pdf = writeFile("selostus.pdf", "%PDF-1.4");
    const QString xls = writeFile("mittaukset.xls", QByteArray("\xd0\xcf\x11\xe0", 4));

    Dialog2 dialog(*host);
    dialog.Check1[1]->click();
    dialog.List1->addItems({pdf, xls});
    dialog.show();
    dialog.Command1[0]->click();

    const QString copy = main->appState().TempPath + "posti/Projekti1.sl";
    EXPECT_EQ(mail.arguments(), (QStringList{"--utf8", "--body", QString(15, QLatin1Char(' ')), "--attach",
                                             copy, "--attach", pdf, "--attach", xls}));
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(dialog.isVisible());
    // The copy is the project as it is now; the windows keep their captions and changed state.
    persist::ProjectFile sent;
    QString error;
    ASSERT_TRUE(persist::ReadProjectFile(copy, false, sent, &error)) << error.toStdString();
    EXPECT_EQ(sent.content.windows[0].texts[0], "Kärkölän silta");
    EXPECT_EQ(w.f1->caption(), captionBefore);
    EXPECT_TRUE(main->appState().RecentFiles[0].isEmpty());
}

TEST_F(MailDialogTest, SavedProjectGoesUnderItsOwnName) {
    FakeMail mail(0);
    const QString file = files.filePath("Projektin silta.sl");
    ASSERT_TRUE(shell::WriteSlFile(*main, "Projekti1", file, false));
    Dialog2 dialog(*host);
    dialog.Command1[0]->click();
    EXPECT_EQ(mail.arguments().mid(3),
              (QStringList{"--attach", main->appState().TempPath + "posti/Projektin silta.sl"}));
}

// What a draft holds is the mail session's to test; here, what the user is told about it.
TEST_F(MailDialogTest, WithoutAMailClientTheUserIsToldWhereTheDraftIs) {
    FakeMail mail(-1);
    Dialog2 dialog(*host);
    dialog.Command1[0]->click();
    ASSERT_EQ(mail.opened.size(), 1u);
    const QString draft = mail.opened[0];
    EXPECT_EQ(draft, main->appState().TempPath + "posti/Projekti1.eml");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_TRUE(dialogs.lastText().startsWith("Viesti liitteineen tallennettiin tiedostoon\r\n" + draft))
        << dialogs.lastText().toStdString();

    // When no program opens the draft either, the user is told where it is.
    mail.openSucceeds = false;
    Dialog2 again(*host);
    again.Command1[0]->click();
    ASSERT_EQ(dialogs.messages().size(), 2u);
    EXPECT_TRUE(dialogs.lastText().startsWith("Viestiä ei voitu avata"));
    EXPECT_TRUE(dialogs.lastText().contains(draft));
    EXPECT_EQ(again.result(), QDialog::Accepted);
}

TEST_F(MailDialogTest, MissingFileIsNamedAndNothingIsSent) {
    FakeMail mail(0);
    const QString gone = files.filePath("poistettu.pdf");
    Dialog2 dialog(*host);
    dialog.Check1[1]->click();
    dialog.List1->addItem(gone);
    dialog.show();
    dialog.Command1[0]->click();
    EXPECT_TRUE(dialogs.lastText().contains(gone));
    EXPECT_TRUE(mail.arguments().isEmpty());
    EXPECT_EQ(host->saves, 0);
    // The dialog stays open so that the user can take the file off the list.
    EXPECT_TRUE(dialog.isVisible());
    dialog.List1->item(0)->setSelected(true);
    dialog.Command1[4]->click();
    dialog.Command1[0]->click();
    EXPECT_EQ(mail.arguments().count("--attach"), 1);
}

TEST_F(MailDialogTest, CancelSavesAndSendsNothing) {
    FakeMail mail(0);
    Dialog2 dialog(*host);
    dialog.show();
    dialog.Command1[1]->click();
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_EQ(host->saves, 0);
    EXPECT_TRUE(mail.arguments().isEmpty());
}

TEST_F(MailDialogTest, AFailedSendClosesTheDialogAndLeavesTheProjectAsItWas) {
    // A mail program that fails, and no program for the draft.
    FakeMail mail(4);
    mail.openSucceeds = false;
    const QString caption = main->ActiveCaption();
    Dialog2 dialog(*host);
    dialog.show();
    dialog.Command1[0]->click();
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(main->ActiveCaption(), caption);
}

TEST_F(MailDialogTest, FileMenuOpensTheDialogOnlyWithAProject) {
    EXPECT_TRUE(main->SubMenu0[8]->isEnabled());
    bool shown = false;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<Dialog2*>(QApplication::activeModalWidget());
        shown = dialog != nullptr;
        if (dialog) dialog->Command1[1]->click();
    });
    main->FileMenuActions(8);
    EXPECT_TRUE(shown);
    main->UnloadActiveProject();
    EXPECT_FALSE(main->SubMenu0[8]->isEnabled());
}
