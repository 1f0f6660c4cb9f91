#include "MainWindowFixture.h"
#include "common/QtPrinters.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "peripherals/Form13.h"
#include "persist/ProjectFile.h"
#include "platform/ui/PictureBox.h"
#include "shell/Captions.h"
#include "shell/Form8.h"
#include "shell/ProjectFiles.h"
#include "shell/Settings.h"
#include "shell/ShellActions.h"

#include <QApplication>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

using namespace shell;
using platform::Picture;

namespace {

class PicturesTest : public MainWindowFixture {
protected:
    QString logoFile() const {
        return testing_support::sourceDir() + QStringLiteral("/tests/platform/data/logo.wmf");
    }
    QString emfFile() const {
        return testing_support::sourceDir() + QStringLiteral("/tests/platform/data/logo.emf");
    }

    // Clicks `button` and, once the image viewer is up, hands it to `act`; false when no viewer
    // came up.
    bool withViewer(QPushButton* button, const std::function<void(peripherals::Form13&)>& act) {
        bool seen = false;
        QTimer::singleShot(0, [&] {
            auto* viewer = qobject_cast<peripherals::Form13*>(QApplication::activeModalWidget());
            if (!viewer) return;
            seen = true;
            act(*viewer);
            if (viewer->isVisible()) viewer->UpdateAndClose();
        });
        button->click();
        return seen;
    }
    QTemporaryDir dir;
};

} // namespace

TEST_F(PicturesTest, LogoTakesTheFileOnlyWhenItCameFromOne) {
    Settings& s = main->appState().settings;
    const QString before = s.PLogoFile;
    const Picture fromFile = Picture::fromFile(logoFile());
    GiveBackPicture(*main, 1, QString(), fromFile, logoFile());
    EXPECT_EQ(s.PLogoFile, logoFile());
    EXPECT_EQ(main->imgLogo.bytes(), fromFile.bytes());
    // A pasted logo has no file: the stored name stays while the picture changes for this run.
    const Picture pasted = Picture::fromImage(QImage(4, 4, QImage::Format_RGB32));
    GiveBackPicture(*main, 1, QString(), pasted, QString());
    EXPECT_EQ(s.PLogoFile, logoFile());
    EXPECT_EQ(main->imgLogo.bytes(), pasted.bytes());
    EXPECT_NE(before, s.PLogoFile);
    // No project picture changed.
    for (platform::PictureBox* box : main->ParseFormIndeces().f1->Image1)
        EXPECT_TRUE(box->picture().isNull());
}

TEST_F(PicturesTest, CardButtonsOpenTheViewerOnTheirProjectsPictures) {
    const ProjectWindows w = main->ParseFormIndeces();
    ASSERT_TRUE(w.complete());
    for (QPushButton* b : w.f3->Command2)
        EXPECT_TRUE(b->isEnabled());
    for (QPushButton* b : w.f4->Command1)
        EXPECT_TRUE(b->isEnabled());

    // "&Poikkileikkaus..." of the characteristics card: picture 3, the basic data's Image1(1).
    w.f1->Image1[1]->setPicture(Picture::fromFile(emfFile()));
    for (auto* pw : w.all())
        pw->setCaption(CaptionUntouched(pw->caption()));
    QString caption;
    QByteArray shown;
    ASSERT_TRUE(withViewer(w.f3->Command2[1], [&](peripherals::Form13& v) {
        caption = v.windowTitle();
        shown = v.Image1->picture().bytes();
        v.UpdateAndClose(); // unchanged: nothing goes back
    }));
    EXPECT_EQ(caption, QStringLiteral("Projekti1 (Ominaistietokortti - poikkileikkaus)"));
    EXPECT_EQ(shown, w.f1->Image1[1]->picture().bytes());
    EXPECT_TRUE(CaptionIsUnchanged(w.f1->caption()));

    // "M&erkkikilpi..." of the charge chamber card: picture 7, Image1(5). Giving a picture back
    // marks the project changed.
    dialogs.chooseFile(logoFile());
    ASSERT_TRUE(withViewer(w.f4->Command1[2], [&](peripherals::Form13& v) {
        caption = v.windowTitle();
        v.OpenPictureFile();
    }));
    EXPECT_EQ(caption, QStringLiteral("Projekti1 (Panostilakortti - merkkikilpi)"));
    EXPECT_EQ(w.f1->Image1[5]->picture().type(), Picture::Metafile);
    EXPECT_FALSE(CaptionIsUnchanged(w.f1->caption()));
    for (int k : {0, 1, 2, 3, 4})
        EXPECT_EQ(w.f1->Image1[k]->picture().isNull(), k != 1) << k;
    // The viewer keeps its place in slot 13 of the window table.
    EXPECT_GT(main->appState().settings.pos.width[13], 0);
}

TEST_F(PicturesTest, DeletedProjectPictureIsSavedAsAnEmptyMemberAndReopenedAsNone) {
    const ProjectWindows w = main->ParseFormIndeces();
    w.f1->Image1[0]->setPicture(Picture::fromFile(logoFile()));
    w.f1->Image1[2]->setPicture(Picture::fromFile(emfFile()));
    ASSERT_TRUE(withViewer(w.f3->Command2[0], [](peripherals::Form13& v) { v.DeletePicture(); }));
    EXPECT_TRUE(w.f1->Image1[0]->picture().isNull());

    const QString file = dir.filePath(QStringLiteral("ilman sivukuvaa.sl"));
    ASSERT_TRUE(WriteSlFile(*main, QStringLiteral("Projekti1"), file, false));
    persist::ProjectFile read;
    QString error;
    ASSERT_TRUE(persist::ReadProjectFile(file, false, read, &error)) << error.toStdString();
    EXPECT_EQ(read.members[1].type, 0);
    EXPECT_TRUE(read.members[1].data.isEmpty());
    EXPECT_EQ(read.members[3].type, Picture::EnhancedMetafile);

    // Opened again (into a new project, as "&Avaa..." does), there is no side view.
    main->NewProject();
    ASSERT_TRUE(ReadSlFile(*main, QStringLiteral("Projekti2"), file, false));
    const ProjectWindows opened = main->projectWindowsOf(file);
    ASSERT_TRUE(opened.f1);
    EXPECT_TRUE(opened.f1->Image1[0]->picture().isNull());
    EXPECT_EQ(opened.f1->Image1[2]->picture().type(), Picture::EnhancedMetafile);
}

TEST_F(PicturesTest, SettingsDialogChoosesTheLogoInTheViewer) {
    Form8 dialog(*main);
    dialogs.chooseFile(logoFile());
    ASSERT_TRUE(withViewer(dialog.Command1[4], [](peripherals::Form13& v) {
        EXPECT_EQ(v.windowTitle(), QStringLiteral("TAMRIK 2006 (Logotiedosto)"));
        v.OpenPictureFile();
    }));
    EXPECT_EQ(dialog.Text1[5]->text(), logoFile());
    EXPECT_EQ(main->appState().settings.PLogoFile, logoFile());
    EXPECT_EQ(main->imgLogo.type(), Picture::Metafile);

    // Cancelled in the viewer: the logo stays.
    const QByteArray kept = main->imgLogo.bytes();
    dialogs.chooseFile(emfFile());
    ASSERT_TRUE(withViewer(dialog.Command1[4], [](peripherals::Form13& v) {
        v.OpenPictureFile();
        v.Cancel();
    }));
    EXPECT_EQ(main->imgLogo.bytes(), kept);
    EXPECT_EQ(dialog.Text1[5]->text(), logoFile());
}
