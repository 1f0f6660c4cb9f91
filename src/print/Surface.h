#pragma once
// The drawing surface of the reports: text placed by the top of its line, text widths and
// heights, lines with a width and scaled pictures, all in twips of the target (the page
// model's coordinates), over a QPainter on a printer, a PDF file or a preview image.
//
// Text is measured from the fonts' design metrics, independent of the device, and drawn glyph
// by glyph at the measured positions. So a printer, a PDF file and a preview at any zoom put
// every word at the same place and break lines at the same words.
#include <QHash>
#include <QPointF>
#include <QRawFont>
#include <QString>
#include <map>
#include <memory>
#include <vector>

class QPainter;
class QPagedPaintDevice;
class QRectF;

namespace platform {
class Picture;
}

namespace print {

struct Font {
    QString name;
    double size = 11; // points, the scale included
    bool bold = false;
    bool italic = false;
};

// The fonts of a print run and their measures. Each distinct text is laid out once per face
// and kept (its glyphs, their advances and its width): the reports measure the same words
// again and again, pagination measures every row, and drawing puts down what was measured.
class FontBook {
public:
    FontBook();
    ~FontBook();
    FontBook(const FontBook&) = delete;
    FontBook& operator=(const FontBook&) = delete;

    // The width of a text, in twips.
    double width(const Font& font, const QString& text);
    // The font's line height (ascent and descent), in twips.
    double height(const Font& font);
    double ascent(const Font& font);

    struct Face;
    Face& face(const Font& font);
    // The face at a size in device pixels, for drawing.
    const QRawFont& rawFont(Face& face, double pixelSize);
    // A text laid out in a face: its glyphs with their design advances (kerned), and their sum,
    // in ems. Valid until the next call.
    struct Shaped {
        QList<quint32> glyphs;
        std::vector<double> advances;
        double em = 0;
    };
    const Shaped& shape(Face& face, const QString& text);

    // The texts `other` has laid out, for a book on another thread: its faces are made again
    // when first used (a face's font engine serves the thread that made it), the laid-out
    // texts are shared until either book adds one.
    void shareLayouts(const FontBook& other);

private:
    Face& findFace(const Font& font);

    std::map<QString, std::unique_ptr<Face>> m_faces;
    Face* m_lastFace = nullptr;
    QString m_lastName;
    bool m_lastBold = false;
    bool m_lastItalic = false;
    std::map<QString, QHash<QString, Shaped>> m_sharedLayouts;
};

// One text that a surface put down: for tests and for finding what a page shows.
struct TextItem {
    double x = 0;
    double y = 0; // the top of the line
    QString text;
    Font font;
};

class Surface {
public:
    // A surface that draws nothing: the pagination pass measures with it.
    explicit Surface(FontBook& fonts);
    // A surface on a painter's device. `dpiX` and `dpiY` map twips to device pixels, `origin`
    // is where (0, 0) lies in device pixels, `lineWidth` the width in pixels of a line of
    // width 1.
    Surface(FontBook& fonts, QPainter& painter, double dpiX, double dpiY, QPointF origin, int lineWidth);
    ~Surface();
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    bool drawing() const { return m_painter != nullptr; }
    FontBook& fonts() { return m_fonts; }

    // The current font.
    void setFont(const QString& name, double size, bool bold = false, bool italic = false);
    void setFont(const Font& font) { m_font = font; }
    const Font& font() const { return m_font; }
    void setBold(bool bold) { m_font.bold = bold; }
    void setItalic(bool italic) { m_font.italic = italic; }

    // Puts a text with the top of its line at (x, y).
    void text(double x, double y, const QString& text);
    // Puts a text so that it ends at x.
    void textRight(double x, double y, const QString& text) { this->text(x - textWidth(text), y, text); }
    double textWidth(const QString& text) { return m_fonts.width(m_font, text); }
    double textHeight() { return m_fonts.height(m_font); }

    // The width in device pixels of a line of width 1: the printer line width, or 1 pixel in the
    // preview.
    int lineWidth() const { return m_lineWidth; }
    // A line `width` line widths wide.
    void line(double x1, double y1, double x2, double y2, int width = 1);
    // Draws a picture into a rectangle in twips.
    void picture(const platform::Picture& picture, const QRectF& target);
    // Puts down the texts collected so far (they are drawn in runs, per font).
    void flush();

    // Records every text put down (tests).
    void setRecorder(std::vector<TextItem>* recorder) { m_recorder = recorder; }

private:
    QPointF toDevice(double x, double y) const;

    FontBook& m_fonts;
    QPainter* m_painter = nullptr;
    double m_dpiX = 1440;
    double m_dpiY = 1440;
    QPointF m_origin;
    int m_lineWidth = 1;
    Font m_font;
    std::vector<TextItem>* m_recorder = nullptr;

    // Glyphs waiting to be drawn in one run.
    FontBook::Face* m_runFace = nullptr;
    double m_runPixelSize = 0;
    QList<quint32> m_runGlyphs;
    QList<QPointF> m_runPositions;
};

} // namespace print
