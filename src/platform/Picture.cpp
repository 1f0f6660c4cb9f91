#include "platform/Picture.h"

#include "platform/Metafile.h"
#include "platform/TextFile.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>

namespace platform {

struct Picture::Rendering {
    bool done = false;
    QImage image;                      // bitmaps and icons
    std::unique_ptr<QSvgRenderer> svg; // metafiles
    QString error;                     // why a metafile or a bitmap cannot be shown
};

namespace {

// The most pixels of an image drawn from a picture (4 bytes each): a drawing several times the
// size of a screen. A metafile may name any size, and the image is only a copy for the clipboard.
constexpr double kMostImagePixels = 4096.0 * 2048.0;

bool isBmp(const QByteArray& b) {
    return b.size() >= 26 && b.startsWith("BM");
}

bool isIco(const QByteArray& b) {
    return b.size() >= 22 && b.startsWith(QByteArray("\0\0\1\0", 4)) && (b[4] != 0 || b[5] != 0);
}

// Pictures are read at most this many pixels on their longer side: a card or a printed page
// needs no more (an A4 page is 3508 pixels long at 300 dpi), and a larger bitmap would only
// make the project file big.
constexpr int kLargestSide = 3600;
// A picture is decoded up to this many megabytes (Qt's own limit of 128 would refuse a
// 6000 x 6000 photo). PNG, BMP and the rest are decoded whole and then scaled; JPEG scales while
// it reads, to an eighth of each side at the most.
constexpr int kDecodeLimitMB = 1024;
constexpr int kJpegLargestReduction = 8;
constexpr int kMostIconPictures = 64;

QString tooLarge(QSize size) {
    return QString::fromUtf8("Kuva on liian suuri: %1 × %2 pikseliä.").arg(size.width()).arg(size.height());
}

QString reducedFrom(QSize full, QSize kept) {
    return QString::fromUtf8(
               "Kuva on suuri (%1 × %2 pikseliä), ja se on pienennetty kokoon %3 × %4 pikseliä.")
        .arg(full.width())
        .arg(full.height())
        .arg(kept.width())
        .arg(kept.height());
}

// Decodes a raster image, scaled down to kLargestSide when it is larger (`reduced` then says so);
// for an icon the largest of its images. A picture too large to read gives a null image and says
// so in `error`.
QImage decodeRaster(const QByteArray& bytes, const char* format = nullptr, QString* error = nullptr,
                    QString* reduced = nullptr) {
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    reader.setAutoTransform(true);
    const QSize full = reader.size();
    if (full.width() > kLargestSide || full.height() > kLargestSide) {
        const int reduction = reader.format() == "jpeg" ? kJpegLargestReduction : 1;
        // Four bytes a pixel, eight for the 16-bit channels of a PNG.
        const int pixelBytes = std::max(4, QImage::toPixelFormat(reader.imageFormat()).bitsPerPixel() / 8);
        const qint64 megabytes = qint64(full.width() / reduction + 1) * (full.height() / reduction + 1) *
                                 pixelBytes / (1024 * 1024);
        if (megabytes > kDecodeLimitMB) {
            if (error) *error = tooLarge(full);
            return {};
        }
        reader.setAllocationLimit(kDecodeLimitMB);
        const QSize kept = full.scaled(kLargestSide, kLargestSide, Qt::KeepAspectRatio).expandedTo({1, 1});
        reader.setScaledSize(kept);
        if (reduced) *reduced = reducedFrom(full, kept);
    }
    QImage best;
    int count = std::max(reader.imageCount(), 1);
    // An icon's directory names its pictures in 16 bytes each after a 6-byte header; a count
    // beyond what the file holds (or beyond any real icon) would decode the same bytes again
    // and again.
    if (format) count = std::min({count, kMostIconPictures, std::max(1, int((bytes.size() - 6) / 16))});
    for (int i = 0; i < count; ++i) {
        if (i > 0 && !reader.jumpToImage(i)) break;
        const QImage image = reader.read();
        if (image.isNull()) continue;
        if (best.isNull() || image.width() * image.height() > best.width() * best.height()) best = image;
        if (!format) break; // only icons hold several pictures worth choosing from
    }
    return best;
}

QByteArray toBmp(const QImage& image) {
    // BMP has no transparency that every reader honours: put the picture on white.
    QImage flat(image.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    {
        QPainter p(&flat);
        p.drawImage(0, 0, image);
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    flat.save(&buffer, "BMP");
    return bytes;
}

QString notAPicture(const QString& path) {
    return QStringLiteral("Tiedosto %1 ei ole kelvollinen kuvatiedosto.").arg(QFileInfo(path).fileName());
}

} // namespace

Picture::Picture(QByteArray bytes, Type type)
    : m_bytes(std::move(bytes))
    , m_type(type)
    , m_rendering(std::make_shared<Rendering>()) {}

Picture Picture::fromFile(const QString& path, QString* error, QString* reduced) {
    if (reduced) reduced->clear();
    QByteArray bytes;
    if (!readFileBytes(path, bytes, error)) return {};
    Type type = None;
    if (isBmp(bytes))
        type = Bitmap;
    else if (isIco(bytes))
        type = Icon;
    else if (looksLikeWmf(bytes))
        type = Metafile;
    else if (looksLikeEmf(bytes))
        type = EnhancedMetafile;
    if (type == None) {
        QString large;
        const QImage image = decodeRaster(bytes, nullptr, &large, reduced);
        if (image.isNull()) {
            if (error) *error = large.isEmpty() ? notAPicture(path) : large;
            if (reduced) reduced->clear();
            return {};
        }
        return fromImage(image);
    }
    Picture picture(std::move(bytes), type);
    const Rendering& r = picture.rendering();
    if (r.image.isNull() && !r.svg) {
        if (error) *error = type == Bitmap && !r.error.isEmpty() ? r.error : notAPicture(path);
        return {};
    }
    return picture;
}

Picture Picture::fromBytes(const QByteArray& bytes, int type, QString* error) {
    bool fits = false;
    switch (type) {
        case None:
            return {};
        case Bitmap:
            fits = isBmp(bytes) || !decodeRaster(bytes).isNull();
            break;
        case Metafile:
            fits = looksLikeWmf(bytes);
            break;
        case Icon:
            fits = isIco(bytes);
            break;
        case EnhancedMetafile:
            fits = looksLikeEmf(bytes);
            break;
        default:
            if (error) *error = QStringLiteral("Tuntematon kuvan tyyppi %1.").arg(type);
            return {};
    }
    if (!fits) {
        if (error) *error = QStringLiteral("Kuvan tiedot eivät vastaa kuvan tyyppiä %1.").arg(type);
        return {};
    }
    // A metafile whose records are damaged is kept: its bytes are the user's, it only draws nothing.
    return Picture(bytes, static_cast<Type>(type));
}

Picture Picture::keptAsStored(const QByteArray& bytes, int type) {
    if (type < Bitmap || type > EnhancedMetafile || bytes.isEmpty()) return {};
    return Picture(bytes, static_cast<Type>(type));
}

Picture Picture::fromImage(const QImage& image) {
    if (image.isNull()) return {};
    return Picture(toBmp(image), Bitmap);
}

QString Picture::extensionForType(int type) {
    switch (type) {
        case Bitmap:
            return QStringLiteral(".bmp");
        case Metafile:
            return QStringLiteral(".wmf");
        case Icon:
            return QStringLiteral(".ico");
        case EnhancedMetafile:
            return QStringLiteral(".emf");
        default:
            return QStringLiteral(".tmp");
    }
}

bool Picture::save(const QString& path, QString* error) const {
    return writeFileAtomically(path, m_bytes, error);
}

const Picture::Rendering& Picture::rendering() const {
    static const Rendering none;
    if (!m_rendering) return none;
    Rendering& r = *m_rendering;
    if (r.done) return r;
    r.done = true;
    switch (m_type) {
        case Bitmap:
            r.image = decodeRaster(m_bytes, nullptr, &r.error);
            break;
        case Icon:
            r.image = decodeRaster(m_bytes, "ico");
            break;
        case Metafile:
        case EnhancedMetafile: {
            const QByteArray svg =
                m_type == Metafile ? wmfToSvg(m_bytes, &r.error) : emfToSvg(m_bytes, &r.error);
            if (svg.isEmpty()) break;
            auto renderer = std::make_unique<QSvgRenderer>(svg);
            if (renderer->isValid() && !renderer->defaultSize().isEmpty()) r.svg = std::move(renderer);
            break;
        }
        default:
            break;
    }
    return r;
}

Picture Picture::detached() const {
    Picture copy = *this;
    if (m_rendering) {
        copy.m_rendering = std::make_shared<Rendering>();
        copy.rendering();
    }
    return copy;
}

QSize Picture::sizeHint() const {
    const Rendering& r = rendering();
    if (!r.image.isNull()) return r.image.size();
    if (r.svg) return r.svg->defaultSize();
    return {};
}

void Picture::draw(QPainter& painter, const QRectF& target) const {
    const Rendering& r = rendering();
    if (target.isEmpty()) return;
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!r.image.isNull())
        painter.drawImage(target, r.image, QRectF(r.image.rect()));
    else if (r.svg)
        r.svg->render(&painter, target);
    painter.restore();
}

QImage Picture::toImage(QSize size) const {
    if (isNull()) return {};
    if (!size.isValid() || size.isEmpty()) size = sizeHint();
    if (!size.isValid() || size.isEmpty()) return {};
    if (const double pixels = double(size.width()) * size.height(); pixels > kMostImagePixels)
        size = (QSizeF(size) * std::sqrt(kMostImagePixels / pixels)).toSize().expandedTo(QSize(1, 1));
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    draw(painter, QRectF(QPointF(0, 0), QSizeF(size)));
    return image;
}

QRectF Picture::fitInto(const QSizeF& picture, const QRectF& target, Qt::Alignment alignment) {
    if (picture.isEmpty() || target.isEmpty()) return {};
    const QSizeF fitted = picture.scaled(target.size(), Qt::KeepAspectRatio);
    qreal x = target.left();
    qreal y = target.top();
    if (alignment & Qt::AlignHCenter) x += (target.width() - fitted.width()) / 2;
    if (alignment & Qt::AlignRight) x += target.width() - fitted.width();
    if (alignment & Qt::AlignVCenter) y += (target.height() - fitted.height()) / 2;
    if (alignment & Qt::AlignBottom) y += target.height() - fitted.height();
    return QRectF(QPointF(x, y), fitted);
}

} // namespace platform
