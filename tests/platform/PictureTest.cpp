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
        SCOPED_TRACE(QFileInfo(path).fileName().toStdString());
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
        SCOPED_TRACE(type == Picture::Metafile ? "truncated WMF" : "scrambled EMF");
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

namespace {

// A placeable WMF of 1000 x 1000 units at 1000 to the inch (96 x 96 pixels) from its records,
// each given as its function and parameter words; the end record is added.
QByteArray wmfOf(const std::vector<std::pair<quint16, std::vector<quint16>>>& records) {
    QByteArray body;
    quint32 largest = 3;
    for (const auto& [function, params] : records) {
        const quint32 words = 3 + quint32(params.size());
        largest = std::max(largest, words);
        body += QByteArray(reinterpret_cast<const char*>(&words), 4);
        body += QByteArray(reinterpret_cast<const char*>(&function), 2);
        for (const quint16 p : params)
            body += QByteArray(reinterpret_cast<const char*>(&p), 2);
    }
    body += QByteArray::fromHex("030000000000");
    QByteArray placeable = QByteArray::fromHex("d7cdc69a000000000000e803e803e803000000000000");
    quint16 checksum = 0;
    for (int i = 0; i < 20; i += 2)
        checksum ^= quint16(uchar(placeable[i]) | uchar(placeable[i + 1]) << 8);
    placeable[20] = char(checksum & 0xFF);
    placeable[21] = char(checksum >> 8);
    const quint32 fileWords = quint32(9 + body.size() / 2);
    QByteArray header = QByteArray::fromHex("010009000003");
    header += QByteArray(reinterpret_cast<const char*>(&fileWords), 4);
    header += QByteArray::fromHex("0800"); // room for eight objects
    header += QByteArray(reinterpret_cast<const char*>(&largest), 4);
    header += QByteArray::fromHex("0000");
    return placeable + header + body;
}

// The records after a white page over the whole picture, drawn without a pen, so that the
// picture is the whole 1000 x 1000 units; the page's pen and brush are objects 0 and 1.
std::vector<std::pair<quint16, std::vector<quint16>>>
onPage(std::vector<std::pair<quint16, std::vector<quint16>>> records) {
    const quint16 createPen = 0x02FA, createBrush = 0x02FC, selectObject = 0x012D, rectangle = 0x041B;
    records.insert(records.begin(), {{createPen, {5, 0, 0, 0, 0}}, // PS_NULL
                                     {createBrush, {0, 0xFFFF, 0x00FF, 0}},
                                     {selectObject, {0}},
                                     {selectObject, {1}},
                                     {rectangle, {1000, 1000, 0, 0}}});
    return records;
}

} // namespace

// The WMF that libUEMF's own test drawing writes (and programs built on the library write as it
// does) draws in LibreOffice but was refused as damaged: libwmf gave up on its region, whose
// header the library writes one word short, so that the scan count read was 10000 and the first
// scan ran past the record. Such a region is now empty in the copy libwmf reads, and the rest of
// the drawing shows.
TEST(PictureRegression, WmfFromTheMetafileLibraryWithItsRegionIsShown) {
    QString error;
    const Picture p = Picture::fromFile(fixture(QStringLiteral("uemf-drawing.wmf")), &error);
    ASSERT_FALSE(p.isNull()) << error.toStdString();
    EXPECT_EQ(p.sizeHint(), QSize(576, 384)); // 6 x 4 inches
    const QImage image = p.toImage(QSize(576, 384));
    // The pale yellow page, the navy title text and the blue shapes under it, filled whole
    // although the drawing's background mode is transparent.
    EXPECT_EQ(image.pixelColor(500, 350), QColor(255, 255, 173));
    int navy = 0, blue = 0;
    for (int y = 30; y < 60; ++y)
        for (int x = 16; x < 130; ++x)
            navy += image.pixelColor(x, y).blue() > 90 && image.pixelColor(x, y).red() < 60;
    for (int y = 75; y < 100; ++y)
        for (int x = 8; x < 70; ++x)
            blue += image.pixelColor(x, y) == QColor(40, 80, 200);
    EXPECT_GT(navy, 300);
    EXPECT_GT(blue, 300);
    EXPECT_TRUE(wmfToSvg(p.bytes()).contains("TEXTOUT"));
}

// Regions as the format lays them out, regions whose scans run past their record and records too
// short for a region all leave the rest of the picture drawn. (The SVG layer draws no region
// itself, neither filled nor as a clip.)
TEST(PictureRegression, WmfRegionsAreReadOnlyInsideTheirRecords) {
    const quint16 createBrush = 0x02FC, createRegion = 0x06FF, fillRegion = 0x0228, selectClip = 0x012C;
    const quint16 rectangle = 0x041B, selectObject = 0x012D;
    // Object 0 a red brush, object 1 the region, object 2 a blue brush.
    const std::vector<quint16> redBrush = {0, 0x00FF, 0, 0};
    const std::vector<quint16> blueBrush = {0, 0, 0x00FF, 0};
    // One scan from y 100 to 400 with two pieces: x 100..300 and 600..900.
    const std::vector<quint16> region = {0,   6, 0,   0,   38,  1,   4,   100, 100, 900,
                                         400, 4, 100, 400, 100, 300, 600, 900, 4};
    std::vector<quint16> runsOver = region;
    runsOver[5] = 10000; // what the metafile library's layout leaves where the scan count is read
    runsOver[11] = 100;  // a first scan whose closing count lies past the record
    const std::vector<quint16> tooShort = {0, 6, 0};
    for (const auto& regionWords : {region, runsOver, tooShort}) {
        for (const bool clip : {false, true}) {
            SCOPED_TRACE(std::to_string(regionWords.size()) + (clip ? " as a clip" : " filled"));
            std::vector<std::pair<quint16, std::vector<quint16>>> records = {
                {createBrush, redBrush}, {createRegion, regionWords}, {createBrush, blueBrush}};
            if (clip) records.push_back({selectClip, {1}});
            records.push_back({selectObject, {2}});
            records.push_back({rectangle, {1000, 1000, 0, 0}});
            if (!clip) records.push_back({fillRegion, {1, 0}}); // region 1 with brush 0
            QString error;
            const Picture p = Picture::fromBytes(wmfOf(records), Picture::Metafile);
            EXPECT_FALSE(wmfToSvg(p.bytes(), &error).isEmpty()) << error.toStdString();
            const QImage image = p.toImage(QSize(100, 100));
            EXPECT_GT(image.pixelColor(50, 70).blue(), 200);
            EXPECT_LT(image.pixelColor(50, 70).red(), 50);
        }
    }
}

// An EMF recorded for a 1200-dpi printer names its A4 page as 14030 x 9920 device pixels. The
// picture took that as its size: copying it made an image of that many pixels (570 MB, 3 s).
// Its size is now its paper size at 96 pixels to the inch, and no image drawn from a picture
// has more pixels than the cap, whatever size is asked for.
TEST(PictureRegression, EmfRecordedForAPrinterHasItsPaperSize) {
    QString error;
    const Picture p = Picture::fromFile(fixture(QStringLiteral("printer-frame.emf")), &error);
    ASSERT_FALSE(p.isNull()) << error.toStdString();
    EXPECT_NEAR(p.sizeHint().width(), 297 / 25.4 * 96, 1.5);
    EXPECT_NEAR(p.sizeHint().height(), 210 / 25.4 * 96, 1.5);
    const QImage natural = p.toImage();
    EXPECT_EQ(natural.size(), p.sizeHint());
    // The blue rectangle fills the page inside a margin of 500 device pixels, the text in black.
    const QColor inside = natural.pixelColor(natural.width() / 4, natural.height() * 3 / 4);
    EXPECT_GT(inside.blue(), 180);
    EXPECT_LT(inside.red(), 100);
    EXPECT_EQ(natural.pixelColor(10, 10), QColor(Qt::white));

    const QImage asked = p.toImage(QSize(14030, 9920));
    EXPECT_LE(qint64(asked.width()) * asked.height(), 4096 * 2048);
    EXPECT_NEAR(double(asked.width()) / asked.height(), 14030.0 / 9920, 0.01);
    EXPECT_GT(asked.pixelColor(asked.width() / 4, asked.height() * 3 / 4).blue(), 180);
}

// A fuzzer's change of uemf-drawing.wmf: the bitmap header of its JPEG counts 1140850688 colours,
// and libwmf asked for a colour table of 3.4 GB before it read a pixel (the checked build's fuzz
// test runs this file under a limit on each allocation). Bitmaps whose header is no header, or
// whose colour table or pixels are not in the record, are now left out of the copy libwmf reads;
// so is the pattern brush of an old device-dependent bitmap, which libwmf reads as such a header
// and filled black: it is hollow. The rest of the picture draws.
TEST(PictureRegression, BitmapThatIsNotInItsRecordIsLeftOut) {
    const QByteArray bytes = fixtureBytes(QStringLiteral("fuzzed/bitmap-colour-count.wmf"));
    QString error;
    EXPECT_FALSE(wmfToSvg(bytes, &error).isEmpty()) << error.toStdString();
    const QImage image = Picture::fromBytes(bytes, Picture::Metafile).toImage(QSize(576, 384));
    EXPECT_EQ(image.pixelColor(500, 350), QColor(255, 255, 173));
    EXPECT_EQ(image.pixelColor(244, 172), QColor(255, 255, 173)); // inside the brush's rectangle
    EXPECT_EQ(image.pixelColor(212, 172), QColor(Qt::black));     // a pattern brush libwmf can read
}

// Another fuzzer's change of the same drawing: a PNG bitmap whose header gives 26211 bits a pixel
// made libwmf ask for 2 GB for its image. A bit count that is none of the kinds leaves the bitmap
// out whatever its compression; the rest of the picture draws.
TEST(PictureRegression, BitmapWithAnImpossibleBitCountIsLeftOut) {
    const QByteArray bytes = fixtureBytes(QStringLiteral("fuzzed/bitmap-bit-count.wmf"));
    QString error;
    const QByteArray svg = wmfToSvg(bytes, &error);
    ASSERT_FALSE(svg.isEmpty()) << error.toStdString();
    const QImage image = Picture::fromBytes(bytes, Picture::Metafile).toImage(QSize(576, 384));
    EXPECT_EQ(image.pixelColor(500, 350), QColor(255, 255, 173));
    const QColor disc = image.pixelColor(20, 84); // the first of the shapes' row, a blue disc
    EXPECT_GT(disc.blue(), 150);
    EXPECT_LT(disc.red(), 100);
}

// libwmf gave arcs, chords and pies their ends relative to the ellipse's centre, so they were
// drawn about the picture's top left corner (a large wedge across the picture), always the
// short way round, and as a whole ellipse when the ends shared an x or a y. Each now stands in
// its box as Windows draws it: counter-clockwise from its start to its end.
TEST(PictureRegression, WmfPiesChordsAndArcsAreDrawnInTheirBoxes) {
    const quint16 createBrush = 0x02FC, createPen = 0x02FA, selectObject = 0x012D;
    const quint16 pie = 0x081A, chord = 0x0830, arc = 0x0817;
    const std::vector<quint16> blueBrush = {0, 0, 0x00FF, 0};
    // The box 500..900 in both directions; the parameters run end y, end x, start y, start x,
    // bottom, right, top, left.
    const auto shape = [&](quint16 function, QPoint start, QPoint end) {
        const auto records = onPage({{createBrush, blueBrush},
                                     {selectObject, {2}},
                                     {createPen, {0, 1, 0, 0, 0}},
                                     {selectObject, {3}},
                                     {function,
                                      {quint16(end.y()), quint16(end.x()), quint16(start.y()),
                                       quint16(start.x()), 900, 900, 500, 500}}});
        return Picture::fromBytes(wmfOf(records), Picture::Metafile).toImage(QSize(100, 100));
    };
    const auto blue = [](const QImage& image, int x, int y) {
        const QColor c = image.pixelColor(x, y);
        return c.blue() > 200 && c.red() < 80;
    };
    const QPoint east(900, 700), north(700, 500), south(700, 900);
    // A quarter: from east to north, the top right quarter.
    QImage image = shape(pie, east, north);
    EXPECT_TRUE(blue(image, 78, 62));
    EXPECT_FALSE(blue(image, 62, 78));
    EXPECT_FALSE(blue(image, 62, 62));
    for (int y = 0; y < 45; ++y) // nothing about the corner
        for (int x = 0; x < 45; ++x)
            ASSERT_EQ(image.pixelColor(x, y), QColor(Qt::white)) << x << "," << y;
    // Three quarters: from north round to east.
    image = shape(pie, north, east);
    EXPECT_FALSE(blue(image, 78, 62));
    EXPECT_TRUE(blue(image, 62, 78));
    EXPECT_TRUE(blue(image, 62, 62));
    EXPECT_TRUE(blue(image, 78, 78));
    // A chord from north to south (ends that share an x): the left half only.
    image = shape(chord, north, south);
    EXPECT_TRUE(blue(image, 60, 70));
    EXPECT_FALSE(blue(image, 80, 70));
    // An arc is a line along the ellipse: its left side is inked, its middle and right are not.
    image = shape(arc, north, south);
    int ink = 0;
    for (int x = 48; x < 54; ++x)
        ink += image.pixelColor(x, 70).lightness() < 160;
    EXPECT_GT(ink, 0);
    EXPECT_EQ(image.pixelColor(70, 70), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(90, 70), QColor(Qt::white));
}

// Pens of width 0 or 1 are drawn a pixel wide whatever the scale, as Windows draws them; the
// converter made them a fortieth of a pixel, and a drawing's lines and outlines did not show.
// A polyline is a line: SVG filled its inside black.
TEST(PictureRegression, WmfThinLinesShowAndPolylinesAreNotFilled) {
    const quint16 createBrush = 0x02FC, createPen = 0x02FA, selectObject = 0x012D;
    const quint16 rectangle = 0x041B, polyline = 0x0325;
    for (const quint16 width : {0, 1}) {
        SCOPED_TRACE(width);
        const auto records = onPage({{createBrush, {1, 0, 0, 0}}, // hollow
                                     {createPen, {0, width, 0, 0, 0}},
                                     {selectObject, {2}},
                                     {selectObject, {3}},
                                     {rectangle, {400, 400, 100, 100}},
                                     {polyline, {4, 600, 100, 900, 400, 600, 400, 600, 100}}});
        const QImage image = Picture::fromBytes(wmfOf(records), Picture::Metafile).toImage(QSize(100, 100));
        int darkest = 255;
        for (int x = 8; x < 13; ++x)
            darkest = std::min(darkest, image.pixelColor(x, 25).lightness());
        EXPECT_LT(darkest, 140);
        EXPECT_EQ(image.pixelColor(25, 25), QColor(Qt::white)); // inside the hollow rectangle
        EXPECT_EQ(image.pixelColor(65, 30), QColor(Qt::white)); // inside the polyline's triangle
        darkest = 255;
        for (int x = 58; x < 63; ++x)
            darkest = std::min(darkest, image.pixelColor(x, 25).lightness());
        EXPECT_LT(darkest, 140);
    }
}

// The converter placed a WMF's bitmaps twice, by their position and again by a transform of as
// much, so every bitmap landed off the picture and a metafile holding a pasted bitmap showed
// nothing. A bitmap now stands where its record puts it, at the size it gives.
TEST(PictureRegression, WmfBitmapIsDrawnWhereItsRecordPutsIt) {
    const quint16 stretchDib = 0x0F43;
    // A 2 x 2 red bitmap of 24 bits, each row padded to 8 bytes.
    QByteArray dib = QByteArray::fromHex(
        "28000000020000000200000001001800000000001000000000000000000000000000000000000000");
    dib += QByteArray::fromHex("0000ff0000ff0000").repeated(2);
    std::vector<quint16> params = {0x0020, 0x00CC, 0,   2,   2,  0,
                                   0,      400,    400, 200, 200}; // SRCCOPY into 200..600
    for (qsizetype i = 0; i < dib.size(); i += 2)
        params.push_back(quint16(uchar(dib[i]) | uchar(dib[i + 1]) << 8));
    const QImage image =
        Picture::fromBytes(wmfOf(onPage({{stretchDib, params}})), Picture::Metafile).toImage(QSize(100, 100));
    EXPECT_EQ(image.pixelColor(40, 40), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(25, 55), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(80, 80), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(10, 10), QColor(Qt::white));
}
