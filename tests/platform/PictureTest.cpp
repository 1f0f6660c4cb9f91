#include "PlatformFixtures.h"
#include "platform/Metafile.h"
#include "platform/Picture.h"
#include "platform/ui/PictureBox.h"
#include "platform/TextFile.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>
#include <zlib.h>

using namespace platform;
using namespace platform_fixtures;

namespace {

// A small picture with a red left half and a blue right half, in the given format.
QByteArray encoded(const char* format) {
    QImage image(8, 4, QImage::Format_RGB32);
    image.fill(Qt::blue);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            image.setPixel(x, y, qRgb(255, 0, 0));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format)) << format;
    return bytes;
}

// A 1 x 1 GIF (Qt reads GIF but does not write it).
const QByteArray kGif = QByteArray::fromHex(
    "47494638396101000100800000ff000000000021f90400000000002c00000000010001000002024401003b");

QByteArray bigEndian32(quint32 v) {
    const char b[4] = {char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
    return QByteArray(b, 4);
}

// A PNG of w x h pixels in 8-bit RGB, red on the left half and blue on the right, deflated row
// by row so that neither the test nor the file holds the whole picture. Only the first `rows`
// rows are written (a picture whose header is all that is read).
QByteArray largePng(int w, int h, int rows) {
    QByteArray png("\x89PNG\r\n\x1a\n");
    auto chunk = [&png](const char* type, const QByteArray& data) {
        const QByteArray body = QByteArray(type, 4) + data;
        png += bigEndian32(data.size()) + body +
               bigEndian32(crc32(0, reinterpret_cast<const Bytef*>(body.data()), body.size()));
    };
    chunk("IHDR", bigEndian32(w) + bigEndian32(h) + QByteArray("\x08\x02\x00\x00\x00", 5));
    QByteArray row(1 + 3 * w, '\0'); // filter byte 0, then the pixels
    for (int x = 0; x < w; ++x)
        row[1 + 3 * x + (x < w / 2 ? 0 : 2)] = char(255);
    z_stream z{};
    EXPECT_EQ(deflateInit(&z, Z_BEST_SPEED), Z_OK);
    QByteArray data;
    char out[1 << 16];
    for (int y = 0; y < rows; ++y) {
        z.next_in = reinterpret_cast<Bytef*>(row.data());
        z.avail_in = row.size();
        const int flush = y == rows - 1 ? Z_FINISH : Z_NO_FLUSH;
        int status = Z_OK;
        do {
            z.next_out = reinterpret_cast<Bytef*>(out);
            z.avail_out = sizeof out;
            status = deflate(&z, flush);
            data.append(out, int(sizeof out - z.avail_out));
        } while (z.avail_in > 0 || (flush == Z_FINISH && status != Z_STREAM_END));
    }
    deflateEnd(&z);
    chunk("IDAT", data);
    chunk("IEND", {});
    return png;
}

int nonWhitePixels(const QImage& image) {
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            n += (image.pixel(x, y) & 0xFFFFFF) != 0xFFFFFF;
    return n;
}

} // namespace

TEST(Picture, TypeComesFromTheContentAndRastersBecomeBitmaps) {
    QTemporaryDir dir;
    struct Case {
        QString name;
        QByteArray bytes;
        int type;
        bool keptAsIs;
    };
    QByteArray plainWmf =
        bytesOf(fixture(QStringLiteral("logo.wmf"))).mid(22); // without the placeable header
    const std::vector<Case> cases = {
        {QStringLiteral("kuva.bmp"), encoded("BMP"), Picture::Bitmap, true},
        {QStringLiteral("kuva.ico"), encoded("ICO"), Picture::Icon, true},
        {QStringLiteral("kuva.png"), encoded("PNG"), Picture::Bitmap, false},
        {QStringLiteral("kuva.jpg"), encoded("JPEG"), Picture::Bitmap, false},
        {QStringLiteral("kuva.gif"), kGif, Picture::Bitmap, false},
        {QStringLiteral("logo.wmf"), bytesOf(fixture(QStringLiteral("logo.wmf"))), Picture::Metafile, true},
        {QStringLiteral("tavallinen.wmf"), plainWmf, Picture::Metafile, true},
        {QStringLiteral("logo.emf"), bytesOf(fixture(QStringLiteral("logo.emf"))), Picture::EnhancedMetafile,
         true},
        // The name does not decide: a PNG called .bmp is still converted.
        {QStringLiteral("harhaanjohtava.bmp"), encoded("PNG"), Picture::Bitmap, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name.toStdString());
        const QString path = dir.filePath(c.name);
        ASSERT_TRUE(writeFileAtomically(path, c.bytes));
        QString error;
        const Picture p = Picture::fromFile(path, &error);
        ASSERT_FALSE(p.isNull()) << error.toStdString();
        EXPECT_EQ(p.type(), c.type);
        if (c.keptAsIs) {
            EXPECT_EQ(p.bytes(), c.bytes);
        } else {
            EXPECT_TRUE(p.bytes().startsWith("BM"));
            EXPECT_EQ(QImage::fromData(p.bytes(), "BMP").size(), QImage::fromData(c.bytes).size());
        }
        EXPECT_TRUE(p.sizeHint().isValid());
        // Saving writes the stored bytes back unchanged, and they load as the same picture.
        const QString saved = dir.filePath(QStringLiteral("tallennettu") + p.extension());
        ASSERT_TRUE(p.save(saved, &error)) << error.toStdString();
        EXPECT_EQ(bytesOf(saved), p.bytes());
        EXPECT_EQ(Picture::fromFile(saved).bytes(), p.bytes());
    }
    // The converted PNG keeps its colours.
    const QImage png = Picture::fromFile(dir.filePath(QStringLiteral("kuva.png"))).toImage();
    EXPECT_EQ(png.pixel(1, 1), qRgb(255, 0, 0));
    EXPECT_EQ(png.pixel(6, 2), qRgb(0, 0, 255));
}

TEST(Picture, FilesThatAreNotPicturesAreRefusedInFinnish) {
    QTemporaryDir dir;
    const QString text = dir.filePath(QStringLiteral("muistio.txt"));
    ASSERT_TRUE(writeFileAtomically(text, "Ei kuva vaan tekstiä.\r\n"));
    const QString brokenBmp = dir.filePath(QStringLiteral("rikki.bmp"));
    ASSERT_TRUE(writeFileAtomically(brokenBmp, encoded("BMP").left(40)));
    for (const QString& path : {text, brokenBmp, fixture(QStringLiteral("damaged/random.wmf"))}) {
        QString error;
        const Picture p = Picture::fromFile(path, &error);
        EXPECT_TRUE(p.isNull());
        EXPECT_EQ(p.type(), Picture::None);
        EXPECT_EQ(
            error,
            QStringLiteral("Tiedosto %1 ei ole kelvollinen kuvatiedosto.").arg(QFileInfo(path).fileName()));
    }
    QString error;
    EXPECT_TRUE(Picture::fromFile(dir.filePath(QStringLiteral("puuttuu.png")), &error).isNull());
    EXPECT_FALSE(error.isEmpty());
}

TEST(PictureRegression, ALargePictureIsReadScaledDownAndAHugeOneIsTooLarge) {
    QTemporaryDir dir;
    // Larger than Qt's reader decodes by default (128 MB): read at what a page needs.
    const QString large = dir.filePath(QStringLiteral("valokuva.png"));
    ASSERT_TRUE(writeFileAtomically(large, largePng(8000, 8000, 8000)));
    QString error;
    const Picture p = Picture::fromFile(large, &error);
    ASSERT_FALSE(p.isNull()) << error.toStdString();
    EXPECT_EQ(p.type(), Picture::Bitmap);
    EXPECT_EQ(p.sizeHint(), QSize(3600, 3600));
    const QImage shown = p.toImage(QSize(40, 40));
    EXPECT_EQ(shown.pixel(5, 20), qRgb(255, 0, 0));
    EXPECT_EQ(shown.pixel(35, 20), qRgb(0, 0, 255));

    // Too large to read at all: said so, not that the file is damaged.
    const QString huge = dir.filePath(QStringLiteral("panoraama.png"));
    ASSERT_TRUE(writeFileAtomically(huge, largePng(60000, 20000, 1)));
    EXPECT_TRUE(Picture::fromFile(huge, &error).isNull());
    EXPECT_EQ(error, QStringLiteral("Kuva on liian suuri: 60000 × 20000 pikseliä."));
}

TEST(Picture, ExtensionsFollowTheTypeByte) {
    EXPECT_EQ(Picture::extensionForType(0), ".tmp");
    EXPECT_EQ(Picture::extensionForType(1), ".bmp");
    EXPECT_EQ(Picture::extensionForType(2), ".wmf");
    EXPECT_EQ(Picture::extensionForType(3), ".ico");
    EXPECT_EQ(Picture::extensionForType(4), ".emf");
    EXPECT_EQ(Picture::extensionForType(5), ".tmp");
    EXPECT_EQ(Picture().extension(), ".tmp");
}

TEST(Picture, MetafilesRenderTheirShapes) {
    for (const QString name : {QStringLiteral("logo.wmf"), QStringLiteral("logo.emf")}) {
        SCOPED_TRACE(name.toStdString());
        QString error;
        const Picture p = Picture::fromFile(fixture(name), &error);
        ASSERT_FALSE(p.isNull()) << error.toStdString();
        // Drawn from a 200 x 100 SVG: about twice as wide as high.
        const QSize size = p.sizeHint();
        EXPECT_NEAR(double(size.width()) / size.height(), 2.0, 0.3);
        const QImage image = p.toImage(QSize(200, 100));
        ASSERT_EQ(image.size(), QSize(200, 100));
        EXPECT_GT(nonWhitePixels(image), 200 * 100 / 2);
        // The red triangle on the right, the yellow background at the top left.
        const QColor triangle = image.pixelColor(150, 60);
        EXPECT_GT(triangle.red(), 150);
        EXPECT_LT(triangle.green(), 80);
        // The ellipse keeps its exact colour #0050a0 (libwmf alone would name it "teal").
        const QColor ellipse = image.pixelColor(60, 50);
        EXPECT_LT(std::abs(ellipse.red() - 0x00), 8) << ellipse.name().toStdString();
        EXPECT_LT(std::abs(ellipse.green() - 0x50), 8);
        EXPECT_LT(std::abs(ellipse.blue() - 0xa0), 8);
        const QColor background = image.pixelColor(20, 8);
        EXPECT_GT(background.red(), 200);
        EXPECT_GT(background.green(), 150);
        EXPECT_LT(background.blue(), 80);
    }
    // The same SVG comes out of the converters each time, so the cache is only a saving.
    const QByteArray wmf = bytesOf(fixture(QStringLiteral("logo.wmf")));
    EXPECT_EQ(wmfToSvg(wmf), wmfToSvg(wmf));
    EXPECT_TRUE(wmfToSvg(wmf).startsWith("<?xml"));
}

TEST(Picture, DamagedMetafilesDrawNothingAndDoNotCrash) {
    const QByteArray truncatedWmf = bytesOf(fixture(QStringLiteral("damaged/truncated.wmf")));
    const QByteArray scrambledEmf = bytesOf(fixture(QStringLiteral("damaged/scrambled.emf")));
    const QByteArray randomBytes = bytesOf(fixture(QStringLiteral("damaged/random.wmf")));
    // Bytes that do not even start like the type are refused.
    QString error;
    EXPECT_TRUE(Picture::fromBytes(randomBytes, Picture::Metafile, &error).isNull());
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(Picture::fromBytes(randomBytes, Picture::EnhancedMetafile, &error).isNull());
    EXPECT_TRUE(Picture::fromBytes(encoded("BMP"), Picture::Icon, &error).isNull());
    EXPECT_TRUE(Picture::fromBytes(encoded("BMP"), 9, &error).isNull());
    EXPECT_TRUE(Picture::fromBytes(QByteArray(), Picture::None).isNull());
    EXPECT_TRUE(wmfToSvg(randomBytes, &error).isEmpty());
    EXPECT_TRUE(emfToSvg(randomBytes, &error).isEmpty());

    // Headers that look right over damaged records: the bytes are kept (they are the user's), and
    // drawing gives a picture or nothing, never a crash.
    for (const auto& [bytes, type] : {std::pair{truncatedWmf, int(Picture::Metafile)},
                                      std::pair{scrambledEmf, int(Picture::EnhancedMetafile)}}) {
        const Picture p = Picture::fromBytes(bytes, type, &error);
        ASSERT_FALSE(p.isNull());
        EXPECT_EQ(p.bytes(), bytes);
        QImage canvas(50, 50, QImage::Format_RGB32);
        canvas.fill(Qt::white);
        QPainter painter(&canvas);
        p.draw(painter, QRectF(0, 0, 50, 50));
        painter.end();
        (void)p.toImage(QSize(20, 20));
    }

    // Cut-off copies of the good metafiles at every length go through the converters safely.
    const QByteArray emf = bytesOf(fixture(QStringLiteral("logo.emf")));
    const QByteArray wmf = bytesOf(fixture(QStringLiteral("logo.wmf")));
    for (qsizetype n = 0; n < emf.size(); n += 37)
        (void)emfToSvg(emf.left(n));
    for (qsizetype n = 0; n < wmf.size(); n += 37)
        (void)wmfToSvg(wmf.left(n));
}

// An icon whose directory claims tens of thousands of pictures (as a fuzzer's input did) still
// shows the one it holds, without decoding it again for every claimed entry.
TEST(Picture, IconCountBeyondItsBytesStillShowsItsPicture) {
    QByteArray icon = encoded("ICO");
    ASSERT_EQ(icon.mid(2, 4), QByteArray::fromHex("01000100"));
    icon[4] = char(0x60);
    icon[5] = char(0xEA); // 60000 pictures
    const Picture p = Picture::fromBytes(icon, Picture::Icon);
    ASSERT_FALSE(p.isNull());
    EXPECT_EQ(p.sizeHint(), QSize(8, 4));
    EXPECT_EQ(QColor(p.toImage(QSize(8, 4)).pixel(0, 0)), QColor(Qt::red));
}

// A fuzzer's metafile whose EMF+ comment runs past its record: the plain records still draw the
// picture, and nothing reads outside the file (the checked build would stop on it).
TEST(Picture, MetafileWithADamagedEmfPlusCommentDrawsItsPlainRecords) {
    const QByteArray bytes = bytesOf(fixture(QStringLiteral("fuzzed/emf-plus-overrun.emf")));
    const Picture p = Picture::fromBytes(bytes, Picture::EnhancedMetafile);
    ASSERT_FALSE(p.isNull());
    EXPECT_GT(nonWhitePixels(p.toImage(QSize(80, 60))), 50);
}

// An EMF whose text is given as glyph numbers (as Windows programs often write it): the converter
// finds the font through fontconfig and then shut fontconfig down, while Qt, which draws all of
// the program's text through it, still held fonts of it. Once a window had drawn a character from
// a fallback font ("✓" in a field), opening such a picture aborted the program inside fontconfig.
// The test holds a matched font as Qt's font engines do, and shows such pictures twice.
TEST(PictureRegression, GlyphNumberTextInAnEmfLeavesFontconfigRunning) {
    FcPattern* wanted = FcNameParse(reinterpret_cast<const FcChar8*>("Liberation Sans"));
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result = FcResultNoMatch;
    FcPattern* inUse = FcFontMatch(nullptr, wanted, &result);
    ASSERT_NE(inUse, nullptr);

    // "Silta" as Liberation Sans's glyph numbers: the converter maps them back to the letters.
    const QByteArray glyphs = bytesOf(fixture(QStringLiteral("fuzzed/glyph-index-text.emf")));
    const QByteArray damaged = bytesOf(fixture(QStringLiteral("damaged/glyph-index-fontconfig.emf")));
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(emfToSvg(glyphs).contains("<![CDATA[Silta]]>"));
        const Picture p = Picture::fromBytes(glyphs, Picture::EnhancedMetafile);
        EXPECT_GT(nonWhitePixels(p.toImage(QSize(80, 60))), 50);
        QString error;
        EXPECT_TRUE(emfToSvg(damaged, &error).isEmpty());
        EXPECT_EQ(error, QStringLiteral("Kuvan tiedot ovat vaurioituneet."));
    }
    FcChar8* file = nullptr;
    EXPECT_EQ(FcPatternGetString(inUse, FC_FILE, 0, &file), FcResultMatch);
    FcPatternDestroy(inUse);
    FcPatternDestroy(wanted);
}

TEST(Picture, ClipboardImagesAreStoredAsBitmapsOnWhite) {
    QImage image(4, 2, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    image.setPixel(0, 0, qRgba(0, 128, 0, 255));
    const Picture p = Picture::fromImage(image);
    EXPECT_EQ(p.type(), Picture::Bitmap);
    EXPECT_TRUE(p.bytes().startsWith("BM"));
    const QImage back = p.toImage();
    EXPECT_EQ(back.size(), QSize(4, 2));
    EXPECT_EQ(back.pixel(0, 0), qRgb(0, 128, 0));
    EXPECT_EQ(back.pixel(3, 1), qRgb(255, 255, 255));
    EXPECT_TRUE(Picture::fromImage(QImage()).isNull());
    EXPECT_TRUE(Picture().toImage().isNull());
}

TEST(Picture, FitKeepsProportions) {
    EXPECT_EQ(Picture::fitInto(QSizeF(200, 100), QRectF(10, 10, 100, 100)), QRectF(10, 10, 100, 50));
    EXPECT_EQ(Picture::fitInto(QSizeF(200, 100), QRectF(0, 0, 100, 100), Qt::AlignCenter),
              QRectF(0, 25, 100, 50));
    EXPECT_EQ(Picture::fitInto(QSizeF(10, 40), QRectF(0, 0, 100, 100), Qt::AlignRight | Qt::AlignBottom),
              QRectF(75, 0, 25, 100));
    EXPECT_TRUE(Picture::fitInto(QSizeF(), QRectF(0, 0, 10, 10)).isEmpty());
}

TEST(PictureBox, ShowsThePictureScaledOrAnEmptyBox) {
    PictureBox box;
    box.resize(120, 80);
    const QColor base = box.palette().color(QPalette::Base);
    const QImage empty = box.grab().toImage();
    EXPECT_EQ(empty.pixelColor(60, 40), base);

    int changes = 0;
    QObject::connect(&box, &PictureBox::pictureChanged, [&] { ++changes; });
    box.setPicture(Picture::fromFile(fixture(QStringLiteral("logo.emf"))));
    EXPECT_EQ(changes, 1);
    const QImage shown = box.grab().toImage();
    // Twice as wide as high, centred: the middle is picture, the top and bottom bands are not.
    EXPECT_NE(shown.pixelColor(60, 40), base);
    EXPECT_EQ(shown.pixelColor(60, 6), base);
    EXPECT_EQ(shown.pixelColor(60, 74), base);
    box.clear();
    EXPECT_TRUE(box.picture().isNull());
    EXPECT_EQ(box.grab().toImage().pixelColor(60, 40), base);
}

// A metafile whose text holds "&" or "<" was refused as not a picture: its text went into the
// SVG unescaped, and a picture already stored in a project drew nothing.
TEST(PictureRegression, MetafileTextWithMarkupCharactersIsShown) {
    QString error;
    const Picture p = Picture::fromFile(fixture(QStringLiteral("text.wmf")), &error);
    ASSERT_FALSE(p.isNull()) << error.toStdString();
    const QByteArray svg = wmfToSvg(p.bytes());
    EXPECT_TRUE(svg.contains("Silta &amp; Co Oy &lt;\xC3\xA4&gt;")) << svg.right(300).toStdString();
    const QImage image = p.toImage(QSize(400, 100));
    // The text is drawn along the lower part of the frame.
    int ink = 0;
    for (int x = 20; x < 380; ++x)
        for (int y = 60; y < 96; ++y)
            ink += image.pixelColor(x, y).blue() > image.pixelColor(x, y).red() + 40;
    EXPECT_GT(ink, 200);
}
