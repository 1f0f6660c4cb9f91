#include "platform/PictureClipboard.h"

#include "platform/Metafile.h"

#include <QMimeData>

namespace platform {

namespace {

// Formats whose name says what they hold; programs name the same content differently
// ("image/x-wmf", "image/emf", "application/x-openoffice-wmf;...").
QStringList formatsNaming(const QMimeData& data, std::initializer_list<const char*> words) {
    QStringList out;
    for (const QString& f : data.formats())
        for (const char* w : words)
            if (f.contains(QLatin1String(w), Qt::CaseInsensitive)) {
                out << f;
                break;
            }
    return out;
}

} // namespace

Picture pictureFromMimeData(const QMimeData& data) {
    for (const QString& f : formatsNaming(data, {"wmf", "emf", "metafile"})) {
        const QByteArray bytes = data.data(f);
        if (looksLikeWmf(bytes)) return Picture::fromBytes(bytes, Picture::Metafile);
        if (looksLikeEmf(bytes)) return Picture::fromBytes(bytes, Picture::EnhancedMetafile);
    }
    for (const QString& f : formatsNaming(data, {"bmp", "dib"})) {
        // Kept as it is only when it is a whole BMP file; anything else goes through the image.
        const QByteArray bytes = data.data(f);
        if (!bytes.startsWith("BM")) continue;
        const Picture p = Picture::fromBytes(bytes, Picture::Bitmap);
        if (!p.isNull()) return p;
    }
    if (data.hasImage()) return Picture::fromImage(qvariant_cast<QImage>(data.imageData()));
    // Where the toolkit does not turn them into an image itself: any picture format it reads.
    for (const QString& f : data.formats()) {
        if (!f.startsWith(QLatin1String("image/"))) continue;
        const QImage image = QImage::fromData(data.data(f));
        if (!image.isNull()) return Picture::fromImage(image);
    }
    return {};
}

QMimeData* mimeDataFromPicture(const Picture& picture) {
    auto* data = new QMimeData;
    switch (picture.type()) {
        case Picture::Metafile:
            data->setData(QLatin1String(kWmfMime), picture.bytes());
            break;
        case Picture::EnhancedMetafile:
            data->setData(QLatin1String(kEmfMime), picture.bytes());
            break;
        case Picture::Bitmap:
            data->setData(QLatin1String(kBmpMime), picture.bytes());
            break;
        default:
            break;
    }
    const QImage image = picture.toImage();
    if (!image.isNull()) data->setImageData(image);
    return data;
}

} // namespace platform
