#include "common/QtPrinters.h"
#include "common/ScriptedDialogs.h"
#include "peripherals/Form13.h"
#include "platform/ui/PictureBox.h"
#include "platform/PictureClipboard.h"
#include "platform/PlatformFixtures.h"

#include <QAction>
#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace peripherals;
using platform::Picture;
using platform_fixtures::fixture;
using platform_fixtures::fixtureBytes;
using testing_support::ScriptedDialogs;

namespace {

QByteArray encoded(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

QImage filled(QSize size, QColor colour) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

// A viewer whose given-back pictures are recorded.
struct Viewer {
    struct Given {
        int slot;
        Picture picture;
        QString file;
    };
    explicit Viewer(int slot, const Picture& picture = Picture(), const QString& owner = "Silta.sl")
        : form(slot, owner, picture, dialogState, [this](int n, const Picture& p, const QString& f) {
            given.push_back({n, p, f});
        }) {}
    // Chooses `file` in the viewer's file dialog.
    void open(ScriptedDialogs& dialogs, const QString& file) {
        dialogs.chooseFile(file);
        form.OpenPictureFile();
    }
    platform::CommonDialogState dialogState;
    std::vector<Given> given;
    Form13 form;
};

} // namespace

TEST(ImageViewer, CaptionNamesTheOwnerAndTheSlot) {
    EXPECT_EQ(Viewer(4).form.windowTitle(), "Silta.sl (Omainaistietokortti - logo)");
    EXPECT_EQ(Viewer(1, Picture(), "TAMRIK 2006").form.windowTitle(), "TAMRIK 2006 (Logotiedosto)");
}

TEST(ImageViewer, NothingChangedGivesNothingBackHoweverItCloses) {
    ScriptedDialogs dialogs;
    const Picture logo = Picture::fromFile(fixture("logo.wmf"));
    // Copying and a cancelled file dialog are no change; then "Päivitä ja sulje", Esc or the
    // window's own close.
    for (int how = 0; how < 3; ++how) {
        SCOPED_TRACE(how);
        Viewer v(3, logo);
        v.form.show();
        v.form.CopyPicture();
        v.open(dialogs, QString());
        if (how == 0)
            v.form.UpdateAndClose();
        else if (how == 1)
            QTest::keyClick(&v.form, Qt::Key_Escape);
        else
            v.form.close();
        EXPECT_FALSE(v.form.isVisible());
        EXPECT_TRUE(v.given.empty());
    }
}

TEST(ImageViewer, ALoadedPictureGoesBackWithItsFileUnlessCancelled) {
    // After a file is loaded: "Päivitä ja sulje" and Esc give it back, "Peruuta" does not.
    const struct {
        const char* how;
        void (*close)(Form13&);
        const char* file;
        Picture::Type type;
        bool givenBack;
    } cases[] = {
        {"update", [](Form13& f) { f.UpdateAndClose(); }, "logo.wmf", Picture::Metafile, true},
        {"Esc", [](Form13& f) { QTest::keyClick(&f, Qt::Key_Escape); }, "logo.emf", Picture::EnhancedMetafile,
         true},
        {"Peruuta", [](Form13& f) { f.MenuItems.back()->trigger(); }, "logo.wmf", Picture::Metafile, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.how);
        ScriptedDialogs dialogs;
        const QString file = fixture(c.file);
        Viewer v(6);
        v.open(dialogs, file);
        EXPECT_EQ(v.form.Image1->picture().bytes(), fixtureBytes(c.file));
        // The file dialog offers the picture types, metafiles first.
        EXPECT_TRUE(dialogs.fileRequests().at(0).filters.first().startsWith("Metatiedosto"));
        v.form.show();
        c.close(v.form);
        ASSERT_EQ(v.given.size(), c.givenBack ? 1u : 0u);
        if (!c.givenBack) continue;
        EXPECT_EQ(v.given[0].slot, 6);
        EXPECT_EQ(v.given[0].file, file);
        EXPECT_EQ(v.given[0].picture.type(), c.type);
    }
}

TEST(ImageViewer, AFileThatIsNoPictureIsRefusedAndThePictureKept) {
    ScriptedDialogs dialogs;
    QTemporaryDir dir;
    const QString text = dir.filePath("muistio.wmf");
    ASSERT_TRUE(platform::writeFileAtomically(text, "ei kuva"));
    const Picture before = Picture::fromFile(fixture("logo.wmf"));
    Viewer v(2, before);
    v.open(dialogs, text);
    EXPECT_TRUE(dialogs.lastText().contains("muistio.wmf"));
    EXPECT_EQ(v.form.Image1->picture().bytes(), before.bytes());
    v.form.UpdateAndClose();
    EXPECT_TRUE(v.given.empty());
}

TEST(ImageViewer, PasteTakesMetafileThenDeviceIndependentBitmapThenBitmap) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    const QByteArray wmf = fixtureBytes("logo.wmf");
    const QByteArray bmp = encoded(filled(QSize(6, 3), Qt::green), "BMP");
    const QByteArray png = encoded(filled(QSize(5, 4), Qt::red), "PNG");

    // What another program offers, by its own names for the formats, and what the viewer takes.
    const QString wmfMime = "application/x-openoffice-wmf;windows_formatname=\"Image WMF\"";
    const struct {
        std::vector<std::pair<QString, QByteArray>> offered;
        Picture::Type type;
        QByteArray bytes; // empty: a converted image of 5 x 4
    } cases[] = {{{{wmfMime, wmf}, {"image/bmp", bmp}, {"image/png", png}}, Picture::Metafile, wmf},
                 {{{"image/bmp", bmp}, {"image/png", png}}, Picture::Bitmap, bmp},
                 {{{"image/png", png}}, Picture::Bitmap, {}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        auto* data = new QMimeData;
        for (const auto& [format, bytes] : c.offered)
            data->setData(format, bytes);
        clipboard->setMimeData(data);
        Viewer v(2);
        v.form.PastePicture();
        const Picture p = v.form.Image1->picture();
        EXPECT_EQ(p.type(), c.type);
        if (c.bytes.isEmpty())
            EXPECT_EQ(p.sizeHint(), QSize(5, 4));
        else
            EXPECT_EQ(p.bytes(), c.bytes);
    }
}

TEST(ImageViewer, NothingToPasteKeepsThePictureButItGoesBackWithoutAFile) {
    ScriptedDialogs dialogs;
    const QByteArray bmp = encoded(filled(QSize(6, 3), Qt::green), "BMP");
    const Picture before = Picture::fromBytes(bmp, Picture::Bitmap);
    Viewer v(7, before);
    v.open(dialogs, fixture("logo.wmf"));
    v.form.Image1->setPicture(before);
    QGuiApplication::clipboard()->clear();
    v.form.PastePicture();
    EXPECT_EQ(v.form.Image1->picture().bytes(), bmp);
    v.form.UpdateAndClose();
    ASSERT_EQ(v.given.size(), 1u);
    EXPECT_EQ(v.given[0].picture.bytes(), bmp);
    EXPECT_TRUE(v.given[0].file.isEmpty());
}

TEST(ImageViewer, CopyPutsThePictureItselfOnTheClipboard) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    const Picture logo = Picture::fromFile(fixture("logo.wmf"));
    Viewer v(4, logo);
    v.form.CopyPicture();
    const QMimeData* data = clipboard->mimeData();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->data(QLatin1String(platform::kWmfMime)), logo.bytes());
    EXPECT_TRUE(data->hasImage());
    // Pasting it back gives the same metafile.
    Viewer other(5);
    other.form.PastePicture();
    EXPECT_EQ(other.form.Image1->picture().bytes(), logo.bytes());
}

TEST(ImageViewer, ADeletedPictureCopiesNothingAndGoesBackEmpty) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    Viewer v(4, Picture::fromFile(fixture("logo.wmf")));
    v.form.DeletePicture();
    v.form.CopyPicture();
    EXPECT_TRUE(clipboard->mimeData() == nullptr || clipboard->mimeData()->formats().isEmpty());
    v.form.UpdateAndClose();
    ASSERT_EQ(v.given.size(), 1u);
    EXPECT_TRUE(v.given[0].picture.isNull());
    EXPECT_TRUE(v.given[0].file.isEmpty());
}

// An EMF recorded for a 1200-dpi printer names its page as 14030 x 9920 device pixels. The
// viewer tells its paper size (A4 across, 297 x 210 mm at 96 pixels to the inch) and copies an
// image of the paper size, not of the printer's pixels; drawing it at that size is the picture's
// own test (PictureRegression.EmfRecordedForAPrinterHasItsPaperSize).
TEST(ImageViewer, PrinterMetafileIsDescribedAndCopiedAtItsPaperSize) {
    const Picture page = Picture::fromFile(fixture("printer-frame.emf"));
    ASSERT_FALSE(page.isNull());
    Viewer v(2, page);
    const QString status = v.form.StatusBar1->currentMessage();
    EXPECT_TRUE(status.contains("Metatiedosto (EMF), 1122 × 793 pikseliä") ||
                status.contains("Metatiedosto (EMF), 1123 × 794 pikseliä"))
        << status.toStdString();

    v.form.CopyPicture();
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(data, nullptr);
    const QImage copied = qvariant_cast<QImage>(data->imageData());
    EXPECT_NEAR(copied.width(), 1122, 1);
    EXPECT_NEAR(copied.height(), 793, 1);
}
