#pragma once
// A picture of the program: the project's pictures, the print logo, the image viewer's picture.
// It keeps the bytes it was made from and its type, so that saving writes them back unchanged
// and the project file can store the type byte. BMP and ICO are kept as they are, WMF and EMF
// too; other raster formats (PNG, JPEG, GIF, ...) are converted to BMP when loaded.
#include <QByteArray>
#include <QImage>
#include <QRectF>
#include <QSize>
#include <QString>
#include <memory>

class QPainter;

namespace platform {

class Picture {
public:
    // The type byte of the project file.
    enum Type : int { None = 0, Bitmap = 1, Metafile = 2, Icon = 3, EnhancedMetafile = 4 };

    Picture() = default;

    // Loads a picture file; the type comes from the file's content, not its name. A file that is
    // not a picture, or a metafile that cannot be shown, gives an empty picture and a Finnish
    // message in `error`. A photo larger than the program keeps is reduced, and `reduced` says so
    // in Finnish (empty when the picture is kept as it is).
    static Picture fromFile(const QString& path, QString* error = nullptr, QString* reduced = nullptr);
    // A picture from stored bytes and type byte (a member of the project file). Type 0 gives an
    // empty picture. Bytes that do not fit the type give an empty picture and an error.
    static Picture fromBytes(const QByteArray& bytes, int type, QString* error = nullptr);
    // Stored bytes of a known picture type (1..4) kept as they are although they cannot be
    // shown: the picture draws nothing, but saving writes the user's bytes back unchanged.
    static Picture keptAsStored(const QByteArray& bytes, int type);
    // An image from the clipboard or elsewhere, stored as a BMP bitmap; transparent parts
    // become white.
    static Picture fromImage(const QImage& image);

    const QByteArray& bytes() const { return m_bytes; }
    int type() const { return m_type; }
    bool isNull() const { return m_type == None; }

    // The extension for this type when a member is extracted: ".bmp", ".wmf", ".ico", ".emf";
    // ".tmp" for no picture or an unknown type.
    QString extension() const { return extensionForType(m_type); }
    static QString extensionForType(int type);

    // Writes the original bytes unchanged; an empty picture writes an empty file.
    bool save(const QString& path, QString* error = nullptr) const;

    // The natural size in pixels at 96 to the inch; invalid for an empty picture or a metafile
    // that cannot be shown.
    QSize sizeHint() const;
    // Draws the picture to fill the target rectangle (callers keep the proportions with
    // fitInto). An empty or damaged picture draws nothing.
    void draw(QPainter& painter, const QRectF& target) const;
    // The picture drawn on white at the given size, or at its natural size when `size` is
    // invalid; a size of more pixels than a few screens is scaled down to that, keeping the
    // proportions. Null for an empty picture. Windows and pages draw with draw(), at the size
    // they show, never through an image.
    QImage toImage(QSize size = QSize()) const;

    // A copy with a rendering of its own, made now: for drawing on another thread, since a
    // rendering is made on first use and draws through one renderer.
    Picture detached() const;

    // The largest rectangle of the picture's proportions inside `target`, placed by `alignment`.
    static QRectF fitInto(const QSizeF& picture, const QRectF& target,
                          Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignTop);

private:
    struct Rendering;
    Picture(QByteArray bytes, Type type);
    const Rendering& rendering() const;

    QByteArray m_bytes;
    Type m_type = None;
    // Decoded image or converted SVG, made on first use and shared by copies (the bytes of a
    // picture never change).
    std::shared_ptr<Rendering> m_rendering;
};

} // namespace platform
