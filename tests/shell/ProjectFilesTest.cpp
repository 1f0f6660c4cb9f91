#include "MainWindowFixture.h"
#include "common/ScriptedDialogs.h"
#include "common/TestSupport.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"
#include "persist/ProjectText.h"
#include "persist/SlContainer.h"
#include "platform/ui/PictureBox.h"
#include "platform/SettingsStore.h"
#include "platform/TempDir.h"
#include "platform/TextFile.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ProjectFiles.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextCursor>
#include <QTextEdit>
#include <gtest/gtest.h>

using namespace shell;
using platform::MsgAnswer;
using testing_support::ScriptedDialogs;

namespace {

class ProjectFilesTest : public MainWindowFixture {
protected:
    ProjectWindows project(const QString& name) { return main->projectWindowsOf(name); }

    // Fills a project with something in every kind of field.
    void fill(const ProjectWindows& w) {
        w.f1->Text1[0]->setText(QStringLiteral("Kärkölän silta"));
        w.f1->Text1[11]->setText(QStringLiteral("Väylävirasto\r\nPL 33\r\n00521 HELSINKI"));
        w.f1->Combo1[9]->setText(QStringLiteral("Kärkölä"));
        w.f1->Combo1[10]->setText(QStringLiteral("117"));
        lists::ListModel& quantities = *w.f2->list(0);
        lists::AddListViewRow(quantities, 1, true);
        quantities.setCell(1, 1, QStringLiteral("7110"));
        quantities.setCell(1, 2, QStringLiteral("KAIVUT"));
        lists::AddListViewRow(quantities, 2, true);
        quantities.setCell(2, 2, QStringLiteral("Maankaivu"));
        quantities.setCell(2, 4, QStringLiteral("120"));
        quantities.setCell(2, 6, QStringLiteral("8,50"));
        lists::ListModel& requirements = *w.f2->list(1);
        lists::AddListViewRow(requirements, 1, true);
        requirements.setCell(1, 2, QStringLiteral("1"));
        requirements.setCell(1, 3, QStringLiteral("Betonin lujuus\r\nvähintään C35/45"));
        requirements.setCell(1, 13, QStringLiteral("/kuvat/työselostus.pdf"));
        w.f3->Text1[47]->setText(QStringLiteral("320"));
        w.f4->Text1[0]->setText(QStringLiteral("U-1234"));
        w.f4->Check1[1]->setChecked(true);
        QTextCursor cursor(w.f2->RichTextBox1[0]->document());
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        cursor.insertText(QStringLiteral("Rakennussuunnitelman "), bold);
        cursor.insertText(QStringLiteral("selostus"));
        QString error;
        const platform::Picture logo = platform::Picture::fromFile(
            testing_support::dataDir() + QStringLiteral("Tamrik2006-logo.wmf"), &error);
        ASSERT_FALSE(logo.isNull()) << error.toStdString();
        w.f1->Image1[2]->setPicture(logo);
    }

    QByteArray bytesOf(const QString& path) {
        QByteArray b;
        EXPECT_TRUE(platform::readFileBytes(path, b));
        return b;
    }

    QTemporaryDir dir;
};

} // namespace

TEST_F(ProjectFilesTest, SaveOpenSaveIsByteIdenticalAndRestoresEveryField) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    fill(p1);
    const QString first = dir.filePath(QStringLiteral("Kärkölä.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), first, false));
    EXPECT_EQ(p1.f1->caption(), first + QStringLiteral(" (Perustiedot) Ei muutettu"));
    EXPECT_EQ(main->appState().RecentFiles[0], first);
    const QByteArray saved = bytesOf(first);
    // A picture member of type 2 (metafile) in slot 3, the others empty.
    EXPECT_EQ(static_cast<int>(saved[5 * 3 + 4]), 2);
    EXPECT_EQ(saved.mid(5 * 1, 5), QByteArray(5, '\0'));

    main->NewProject();
    const ProjectWindows p2 = project(QStringLiteral("Projekti2"));
    main->activateWindow(p2.f1);
    ASSERT_TRUE(ReadSlFile(*main, QStringLiteral("Projekti2"), first, false));
    const ProjectWindows back = project(first);
    ASSERT_TRUE(back.complete());
    EXPECT_EQ(back.f1, p2.f1);
    EXPECT_EQ(back.f1->Text1[0]->text(), QStringLiteral("Kärkölän silta"));
    EXPECT_EQ(back.f1->Text1[11]->text(), QStringLiteral("Väylävirasto\r\nPL 33\r\n00521 HELSINKI"));
    EXPECT_EQ(back.f1->Combo1[10]->text(), QStringLiteral("117"));
    EXPECT_EQ(back.f2->list(0)->cell(2, 6).toString(), QStringLiteral("8,50"));
    EXPECT_EQ(back.f2->list(0)->rowNumberText(2).toString(), QStringLiteral("00002"));
    EXPECT_EQ(back.f2->list(1)->cell(1, 3).toString(), QStringLiteral("Betonin lujuus\r\nvähintään C35/45"));
    EXPECT_EQ(back.f3->Text1[47]->text(), QStringLiteral("320"));
    EXPECT_EQ(back.f4->Text1[0]->text(), QStringLiteral("U-1234"));
    EXPECT_TRUE(back.f4->Check1[1]->isChecked());
    EXPECT_EQ(back.f1->Image1[2]->picture().type(), 2);
    // The metafile was extracted with its own extension on the way.
    EXPECT_TRUE(QFile::exists(main->appState().TempPath + QStringLiteral("~Tamrik30_4_tmp.wmf")));
    EXPECT_TRUE(back.f1->Image1[0]->picture().isNull());
    EXPECT_EQ(back.f2->RichTextBox1[0]->toPlainText(), QStringLiteral("Rakennussuunnitelman selostus"));
    QTextCursor c(back.f2->RichTextBox1[0]->document());
    c.setPosition(3);
    EXPECT_EQ(c.charFormat().fontWeight(), QFont::Bold);
    EXPECT_TRUE(CaptionIsUnchanged(back.f2->caption()));

    const QString second = dir.filePath(QStringLiteral("toinen.sl"));
    main->activateWindow(back.f1);
    ASSERT_TRUE(WriteSlFile(*main, first, second, false));
    EXPECT_EQ(bytesOf(second), saved);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

// A save writes the file as it makes it, a block at a time; the file and the scratch copies of
// the save must be the bytes of the whole container made at once, for the sample project and
// for a project whose lists span many blocks.
TEST_F(ProjectFilesTest, AFileWrittenAsItIsMadeHasTheBytesOfTheWholeContainer) {
    const QString sample = dir.filePath(QStringLiteral("Esimerkkisilta.sl"));
    ASSERT_TRUE(QFile::copy(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"), sample));
    ASSERT_TRUE(ReadSlFile(*main, QStringLiteral("Projekti1"), sample, false));
    ProjectWindows w = project(sample);
    ASSERT_TRUE(w.complete());
    const QString temp = main->appState().TempPath;
    auto check = [&](const QString& saved) {
        const QByteArray whole = ProjectContainer(*main, project(saved), false, false);
        ASSERT_GT(whole.size(), persist::kHeaderSize);
        EXPECT_TRUE(bytesOf(saved) == whole);
        EXPECT_TRUE(bytesOf(temp + QStringLiteral("~Tamrik30.tmp")) == whole);
        persist::Members members;
        QString error;
        ASSERT_TRUE(persist::UnpackContainer(whole, members, &error)) << error.toStdString();
        EXPECT_TRUE(bytesOf(temp + QStringLiteral("~Tamrik30_1.tmp")) == members[0].data);
    };
    const QString savedSample = dir.filePath(QStringLiteral("Esimerkki tallennettu.sl"));
    ASSERT_TRUE(WriteSlFile(*main, sample, savedSample, false));
    check(savedSample);

    // Many rows with long texts: several megabytes of list cells.
    lists::ListModel& quantities = *w.f2->list(0);
    std::vector<lists::Row> rows;
    lists::RowCells::Builder build;
    for (int r = 1; r <= 30000; ++r) {
        build.add(r % 50 == 1 ? QString::number(7100 + r % 99) : QString());
        build.add(QStringLiteral("Työvaihe %1 äöå, pitkä kuvaus joka jatkuu vielä").arg(r));
        build.add(QStringLiteral("Rakenneosa"));
        build.add(QString::number(r % 997));
        build.add(QStringLiteral("m3"));
        build.add(QStringLiteral("%1,50").arg(r % 300));
        build.add(r % 7 == 0 ? QStringLiteral("huomautus\r\ntoinen rivi") : QString());
        build.add(lists::formatRowNumber(r));
        rows.push_back({build.take(), QString(), false});
    }
    quantities.reset(quantities.columns(), std::move(rows));
    const QString savedLarge = dir.filePath(QStringLiteral("suuri.sl"));
    ASSERT_TRUE(WriteSlFile(*main, savedSample, savedLarge, false));
    EXPECT_GT(QFileInfo(savedLarge).size(), 8 * 256 * 1024);
    check(savedLarge);
    // And it reads back into the same list.
    main->NewProject();
    main->activateWindow(project(QStringLiteral("Projekti2")).f1);
    ASSERT_TRUE(ReadSlFile(*main, QStringLiteral("Projekti2"), savedLarge, false));
    const QString again = dir.filePath(QStringLiteral("uudelleen.sl"));
    ASSERT_TRUE(WriteSlFile(*main, savedLarge, again, false));
    EXPECT_TRUE(bytesOf(again) == bytesOf(savedLarge));
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

TEST_F(ProjectFilesTest, OpeningUsesTheUntouchedProjectAndTheSecondOpenMakesANewOne) {
    fill(project(QStringLiteral("Projekti1")));
    const QString file = dir.filePath(QStringLiteral("a.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    const QString other = dir.filePath(QStringLiteral("b.sl"));
    ASSERT_TRUE(QFile::copy(file, other));
    main->UnloadActiveProject();
    QCoreApplication::processEvents();

    main->NewProject(); // Projekti2, untouched
    main->openFromCommandLine(other);
    EXPECT_EQ(main->projectWindows().size(), 4u);
    EXPECT_TRUE(project(other).complete());
    // A changed project is not reused.
    main->contentChanged(project(other).f1);
    main->openFromCommandLine(file);
    EXPECT_EQ(main->projectWindows().size(), 8u);
    // The same file twice is refused.
    main->openFromCommandLine(file);
    EXPECT_EQ(main->projectWindows().size(), 8u);
    EXPECT_TRUE(dialogs.lastText().endsWith(QStringLiteral("on jo avoinna.")));
}

TEST_F(ProjectFilesTest, TextOnlyOpenLeavesThePicturesAlone) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    fill(p1);
    const QString file = dir.filePath(QStringLiteral("kuvat.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    main->NewProject();
    const ProjectWindows p2 = project(QStringLiteral("Projekti2"));
    const platform::Picture own = platform::Picture::fromImage(QImage(8, 8, QImage::Format_RGB32));
    p2.f1->Image1[0]->setPicture(own);
    main->activateWindow(p2.f1);
    ASSERT_TRUE(ReadSlFile(*main, QStringLiteral("Projekti2"), file, true));
    EXPECT_EQ(p2.f1->Image1[0]->picture().bytes(), own.bytes());
    EXPECT_TRUE(p2.f1->Image1[2]->picture().isNull());
    EXPECT_EQ(p2.f1->Text1[0]->text(), QStringLiteral("Kärkölän silta"));
}

TEST_F(ProjectFilesTest, DamagedFilesAreReportedAndTheWindowsKeepTheirContent) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    fill(p1);
    const QString file = dir.filePath(QStringLiteral("ehja.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    const QByteArray good = bytesOf(file);
    p1.f1->Text1[0]->setText(QStringLiteral("Ennallaan"));

    std::vector<std::pair<QString, QByteArray>> damaged;
    damaged.emplace_back(QStringLiteral("lyhyt.sl"), good.left(30));
    damaged.emplace_back(QStringLiteral("katkennut.sl"), good.left(good.size() - 40));
    QByteArray pastEnd = good;
    pastEnd[1] = '\x7f';
    damaged.emplace_back(QStringLiteral("pituus.sl"), pastEnd);
    QByteArray badCount = good;
    const qsizetype at = badCount.indexOf("\r\n18\r\n");
    badCount.replace(at, 6, "\r\nXX\r\n");
    damaged.emplace_back(QStringLiteral("maara.sl"), badCount);
    persist::Members members;
    QString error;
    ASSERT_TRUE(persist::UnpackContainer(good, members, &error));
    members[0].data.chop(members[0].data.size() / 3);
    damaged.emplace_back(QStringLiteral("kesken.sl"), persist::PackContainer(members));

    for (const auto& [name, bytes] : damaged) {
        const QString path = dir.filePath(name);
        ASSERT_TRUE(platform::writeFileAtomically(path, bytes));
        dialogs.clear();
        main->activateWindow(p1.f1);
        const QString captionBefore = p1.f1->caption();
        EXPECT_FALSE(ReadSlFile(*main, ParseFileName(captionBefore).project(), path, false))
            << name.toStdString();
        ASSERT_EQ(dialogs.messages().size(), 1u) << name.toStdString();
        EXPECT_TRUE(dialogs.lastText().startsWith(QStringLiteral("Tiedostoa ") + path +
                                                  QStringLiteral(" ei voi avata:")))
            << dialogs.lastText().toStdString();
        EXPECT_EQ(p1.f1->Text1[0]->text(), QStringLiteral("Ennallaan")) << name.toStdString();
        EXPECT_EQ(p1.f1->caption(), captionBefore);
        EXPECT_FALSE(main->fileOperationRunning());
    }
    // A project opened into fresh windows that fails goes away again.
    main->NewProject();
    main->openFromCommandLine(dir.filePath(QStringLiteral("maara.sl")));
    EXPECT_EQ(main->projectWindows().size(), 8u);
}

TEST_F(ProjectFilesTest, AFailedSaveKeepsTheCaptionsAndTheOldFile) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    fill(p1);
    main->contentChanged(p1.f1);
    const QString missingFolder = dir.filePath(QStringLiteral("ei/ole/olemassa.sl"));
    EXPECT_FALSE(WriteSlFile(*main, QStringLiteral("Projekti1"), missingFolder, false));
    EXPECT_TRUE(dialogs.lastText().startsWith(QStringLiteral("Tiedostoa ")));
    EXPECT_EQ(p1.f1->caption(), QStringLiteral("Projekti1 (Perustiedot)"));
    EXPECT_TRUE(main->appState().RecentFiles[0].isEmpty());
    EXPECT_FALSE(main->fileOperationRunning());
}

TEST_F(ProjectFilesTest, SavingUnderTheNameOfAnotherOpenProjectIsRefusedAndLeavesBothAsTheyWere) {
    // The other project is open from its file and has changes not saved yet.
    fill(project(QStringLiteral("Projekti1")));
    const QString file = dir.filePath(QStringLiteral("auki.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    const QByteArray onDisk = bytesOf(file);
    const ProjectWindows open = project(file);
    ASSERT_TRUE(open.complete());
    main->contentChanged(open.f1);
    const QString openCaption = open.f1->caption();

    main->NewProject();
    const ProjectWindows other = project(QStringLiteral("Projekti2"));
    ASSERT_TRUE(other.complete());
    other.f1->Text1[0]->setText(QStringLiteral("Toinen silta"));
    main->contentChanged(other.f1);
    main->activateWindow(other.f1);
    EXPECT_FALSE(WriteSlFile(*main, QStringLiteral("Projekti2"), file, false));
    EXPECT_EQ(dialogs.lastText(), QStringLiteral("Tiedosto:") + file + QStringLiteral("\non jo avoinna."));
    EXPECT_EQ(bytesOf(file), onDisk);
    EXPECT_EQ(open.f1->caption(), openCaption);
    EXPECT_EQ(other.f1->caption(), QStringLiteral("Projekti2 (Perustiedot)"));
    // The same name written the other way round, and in another spelling of the path.
    const QString same = dir.path() + QStringLiteral("/./auki.sl");
    EXPECT_FALSE(WriteSlFile(*main, QStringLiteral("Projekti2"), same, false));
    EXPECT_EQ(bytesOf(file), onDisk);
    // The project's own file is still its own to save.
    main->activateWindow(open.f1);
    EXPECT_TRUE(WriteSlFile(*main, file, file, false));
}

TEST_F(ProjectFilesTest, CharactersOutsideTheCodePageAreNamedBeforeSaving) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    p1.f1->Text1[0]->setText(QStringLiteral("Silta \u0101"));
    const QString file = dir.filePath(QStringLiteral("merkit.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_TRUE(dialogs.lastText().contains(QStringLiteral("Perustiedot: Sillan nimi")))
        << dialogs.lastText().toStdString();
    EXPECT_TRUE(bytesOf(file).contains("Silta ?"));
}

TEST_F(ProjectFilesTest, SavingWithThePathOptionKeepsOnlyFileNames) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    fill(p1);
    const QString file = dir.filePath(QStringLiteral("laheta.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, true));
    EXPECT_TRUE(bytesOf(file).contains("{PATH}ty\xF6selostus.pdf"));
    // A copy for sending leaves the captions and the recent files as they were.
    EXPECT_EQ(p1.f1->caption(), QStringLiteral("Projekti1 (Perustiedot)"));
    EXPECT_TRUE(main->appState().RecentFiles[0].isEmpty());
}

namespace {

// The members and text of a saved project, to be edited and packed again.
struct SavedProject {
    persist::Members members;
    persist::ProjectContent content;
    bool read(const QByteArray& file) {
        QString error;
        return persist::UnpackContainer(file, members, &error) &&
               persist::ReadProjectText(members[0].data, QString(), content, &error);
    }
    QByteArray pack() {
        members[0].data = persist::WriteProjectText(content, false);
        return persist::PackContainer(members);
    }
};

} // namespace

// An older or shorter record used to blank every field it did not cover, wiping a new
// project's defaults, and an empty item of the reference list was dropped, moving the rest.
TEST_F(ProjectFilesTest, ShortRecordsLeaveUncoveredFieldsAndEmptyReferenceItemsKeepTheirPlace) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    fill(p1);
    const QString file = dir.filePath(QStringLiteral("vanha.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    SavedProject saved;
    ASSERT_TRUE(saved.read(bytesOf(file)));
    persist::WindowRecord& basic = saved.content.windows[0];
    basic.texts = basic.texts.mid(0, 3);
    basic.combos = basic.combos.mid(0, 2);
    saved.content.windows[1].lists.resize(1); // the requirement list is not in the record
    saved.content.referenceItems[3] = QString();
    saved.content.referenceItems[4] = QStringLiteral("viides");
    const QString older = dir.filePath(QStringLiteral("lyhyt.sl"));
    ASSERT_TRUE(platform::writeFileAtomically(older, saved.pack()));

    main->NewProject();
    const ProjectWindows p2 = project(QStringLiteral("Projekti2"));
    const QString moneyUnit = p2.f1->Combo1[4]->text();
    ASSERT_FALSE(moneyUnit.isEmpty());
    p2.f1->Text1[4]->setText(QStringLiteral("oletus"));
    lists::AddListViewRow(*p2.f2->list(1), 1, true);
    p2.f2->list(1)->setCell(1, 3, QStringLiteral("oma vaatimus"));
    main->activateWindow(p2.f1);
    dialogs.clear();
    ASSERT_TRUE(ReadSlFile(*main, QStringLiteral("Projekti2"), older, false))
        << dialogs.messages().size() << dialogs.texts().join("/").toStdString();
    EXPECT_EQ(p2.f1->Text1[0]->text(), QStringLiteral("Kärkölän silta"));
    EXPECT_EQ(p2.f1->Text1[4]->text(), QStringLiteral("oletus"));
    EXPECT_EQ(p2.f1->Combo1[4]->text(), moneyUnit);
    EXPECT_EQ(p2.f2->list(1)->cell(1, 3).toString(), QStringLiteral("oma vaatimus"));
    EXPECT_EQ(p2.f2->list(0)->cell(2, 6).toString(), QStringLiteral("8,50"));
    const QComboBox* references = p2.f2->Combo1[0];
    ASSERT_EQ(references->count(), 18);
    EXPECT_EQ(references->itemText(3), QString());
    EXPECT_EQ(references->itemText(4), QStringLiteral("viides"));
}

// A list whose template was missing has no columns; reading a project into it kept no
// cells, and the next save wrote the quantity and requirement lists empty.
TEST_F(ProjectFilesTest, AListWithoutColumnsTakesTheRecordsColumnsAndLosesNothing) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    fill(p1);
    const QString file = dir.filePath(QStringLiteral("luettelot.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    const QByteArray original = bytesOf(file);

    main->NewProject();
    const ProjectWindows p2 = project(QStringLiteral("Projekti2"));
    for (int j = 0; j < 2; ++j)
        p2.f2->list(j)->reset({}, {});
    main->activateWindow(p2.f1);
    ASSERT_TRUE(ReadSlFile(*main, QStringLiteral("Projekti2"), file, false));
    const ProjectWindows back = project(file);
    EXPECT_EQ(back.f2->list(0)->cols(), p1.f2->list(0)->cols());
    EXPECT_EQ(back.f2->list(0)->cell(2, 6).toString(), QStringLiteral("8,50"));
    EXPECT_EQ(back.f2->list(0)->rowNumberText(2).toString(), QStringLiteral("00002"));
    EXPECT_EQ(back.f2->list(1)->cell(1, 3).toString(), QStringLiteral("Betonin lujuus\r\nvähintään C35/45"));
    const QString again = dir.filePath(QStringLiteral("uudelleen.sl"));
    main->activateWindow(back.f1);
    ASSERT_TRUE(WriteSlFile(*main, file, again, false));
    SavedProject a, b;
    ASSERT_TRUE(a.read(original));
    ASSERT_TRUE(b.read(bytesOf(again)));
    for (int j = 0; j < 2; ++j) {
        EXPECT_EQ(b.content.windows[1].lists[j].columns, a.content.windows[1].lists[j].columns);
        EXPECT_EQ(b.content.windows[1].lists[j].rows, a.content.windows[1].lists[j].rows);
    }
}

// A member of an unknown picture type cleared the box it would go to; a picture whose bytes
// could not be shown made the whole project unopenable.
TEST_F(ProjectFilesTest, UnknownAndDamagedPictureMembersLoseNothing) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    fill(p1);
    const QString file = dir.filePath(QStringLiteral("kuvat.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    SavedProject saved;
    ASSERT_TRUE(saved.read(bytesOf(file)));
    saved.members[1].data = QByteArray("tuntematon");
    saved.members[1].type = 7;
    saved.members[2].data = QByteArray("ei kuva");
    saved.members[2].type = 1;
    const QString odd = dir.filePath(QStringLiteral("oudot.sl"));
    ASSERT_TRUE(platform::writeFileAtomically(odd, saved.pack()));

    main->NewProject();
    const ProjectWindows p2 = project(QStringLiteral("Projekti2"));
    const platform::Picture own = platform::Picture::fromImage(QImage(8, 8, QImage::Format_RGB32));
    p2.f1->Image1[0]->setPicture(own);
    main->activateWindow(p2.f1);
    dialogs.clear();
    ASSERT_TRUE(ReadSlFile(*main, QStringLiteral("Projekti2"), odd, false));
    EXPECT_EQ(p2.f1->Image1[0]->picture().bytes(), own.bytes());
    EXPECT_EQ(p2.f1->Image1[1]->picture().bytes(), QByteArray("ei kuva"));
    EXPECT_EQ(p2.f1->Image1[2]->picture().type(), 2);
    EXPECT_EQ(p2.f1->Text1[0]->text(), QStringLiteral("Kärkölän silta"));
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_TRUE(dialogs.lastText().contains(QStringLiteral("kuva 2"))) << dialogs.lastText().toStdString();

    // Saved again, the unreadable picture's bytes go back as they came.
    const QString again = dir.filePath(QStringLiteral("oudot2.sl"));
    main->activateWindow(p2.f1);
    ASSERT_TRUE(WriteSlFile(*main, odd, again, false));
    SavedProject back;
    ASSERT_TRUE(back.read(bytesOf(again)));
    EXPECT_EQ(back.members[2].data, QByteArray("ei kuva"));
    EXPECT_EQ(back.members[2].type, 1);
}

// The warning before saving named the three text documents, whose rich text keeps every
// character; only fields that really turn into "?" are named.
TEST_F(ProjectFilesTest, TextDocumentsKeepCharactersOutsideTheCodePageWithoutAWarning) {
    const ProjectWindows p1 = project(QStringLiteral("Projekti1"));
    QTextCursor(p1.f2->RichTextBox1[0]->document()).insertText(QStringLiteral("Łódź \u0101 \u4e2d"));
    const QString file = dir.filePath(QStringLiteral("unicode.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
    main->NewProject();
    main->openFromCommandLine(file);
    const ProjectWindows back = project(file);
    ASSERT_TRUE(back.complete());
    EXPECT_EQ(back.f2->RichTextBox1[0]->toPlainText(), QStringLiteral("Łódź \u0101 \u4e2d"));
}

// The private temporary folder kept the scratch files of saving and opening, the e-mailed
// project copies and the drafts after every exit. A normal end removes the scratch files; a
// mail file, which a mail program may still read, goes at a start when it is over a day old.
TEST_F(ProjectFilesTest, TemporaryFilesGoAtANormalEndAndOldMailFilesAtTheNextStart) {
    QTemporaryDir dir;
    const QString temp = main->appState().TempPath;
    ASSERT_FALSE(temp.isEmpty());
    const QString file = dir.filePath(QStringLiteral("Väliaikaiset.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    const QStringList scratch = QDir(temp).entryList({QStringLiteral("~Tamrik30_*")}, QDir::Files);
    ASSERT_FALSE(scratch.isEmpty());
    const QString mail = platform::mailFolder(temp);
    ASSERT_FALSE(mail.isEmpty());
    const QString oldDraft = mail + QStringLiteral("Vanha.eml");
    const QString newDraft = mail + QStringLiteral("Uusi.eml");
    ASSERT_TRUE(platform::writeFileAtomically(oldDraft, "vanha"));
    ASSERT_TRUE(platform::writeFileAtomically(newDraft, "uusi"));
    {
        QFile f(oldDraft);
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        ASSERT_TRUE(
            f.setFileTime(QDateTime::currentDateTime().addDays(-2), QFileDevice::FileModificationTime));
    }

    main->appState().settings.SaveSettingsOnExit = false;
    ASSERT_TRUE(main->shutDown());
    EXPECT_TRUE(QDir(temp).entryList({QStringLiteral("~Tamrik30_*")}, QDir::Files).isEmpty());
    EXPECT_TRUE(QFile::exists(oldDraft)) << "a mail program may still read it";
    EXPECT_TRUE(QFile::exists(newDraft));
    main.reset();

    SetUp();
    EXPECT_FALSE(QFile::exists(oldDraft));
    EXPECT_TRUE(QFile::exists(newDraft));
    QFile::remove(newDraft);
}
