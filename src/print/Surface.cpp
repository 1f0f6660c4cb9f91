#include "print/Surface.h"

#include "platform/Picture.h"

#include <QFont>
#include <QGlyphRun>
#include <QPainter>
#include <QPen>
#include <cmath>

namespace print {

namespace {
// Faces are measured at this pixel size, large enough that their advances are the design ones.
constexpr double kReferencePixels = 2048;
constexpr double kTwipsPerPoint = 20;
// Kept texts per face before the cache starts again (a long list has many distinct texts).
constexpr qsizetype kMaxShapedTexts = 200000;
} // namespace

struct FontBook::Face {
    QRawFont reference;
    double ascent = 0; // ems
    double descent = 0;
    QHash<QString, FontBook::Shaped> shaped;
    std::map<long long, QRawFont> sized;
    // The design advance of each glyph met so far, in pixels of the reference size (0: not yet
    // asked), and the kerned advance of each pair met so far, keyed by the two glyphs. Asking
    // FreeType once per glyph and once per pair, instead of once per glyph of every new text,
    // gives the same numbers: a glyph's advance is its own design advance plus the kerning
    // with the glyph after it, and nothing else.
    std::vector<double> glyphAdvance;
    QHash<quint64, double> pairAdvance;
    double advance(quint32 glyph);
    double advance(quint32 glyph, quint32 next);
};

namespace {
constexpr QRawFont::LayoutFlags kAdvanceFlags = QRawFont::KernedAdvances | QRawFont::UseDesignMetrics;
} // namespace

double FontBook::Face::advance(quint32 glyph) {
    if (glyph >= glyphAdvance.size()) glyphAdvance.resize(glyph + 1, 0);
    double& a = glyphAdvance[glyph];
    if (a == 0) {
        QPointF p;
        a = reference.advancesForGlyphIndexes(&glyph, &p, 1, kAdvanceFlags) ? p.x() : 0;
        // A glyph without width (a mark) is asked again; it is rare.
    }
    return a;
}

double FontBook::Face::advance(quint32 glyph, quint32 next) {
    const quint64 key = (quint64(glyph) << 32) | next;
    auto it = pairAdvance.constFind(key);
    if (it != pairAdvance.constEnd()) return *it;
    const quint32 pair[2] = {glyph, next};
    QPointF p[2];
    const double a = reference.advancesForGlyphIndexes(pair, p, 2, kAdvanceFlags) ? p[0].x() : 0;
    pairAdvance.insert(key, a);
    return a;
}

FontBook::FontBook() = default;
FontBook::~FontBook() = default;

FontBook::Face& FontBook::face(const Font& font) {
    // Runs of texts share a face: the last one is found without making its key.
    if (m_lastFace && font.bold == m_lastBold && font.italic == m_lastItalic && font.name == m_lastName)
        return *m_lastFace;
    Face& found = findFace(font);
    m_lastFace = &found;
    m_lastName = font.name;
    m_lastBold = font.bold;
    m_lastItalic = font.italic;
    return found;
}

FontBook::Face& FontBook::findFace(const Font& font) {
    QString key = font.name;
    key += font.bold ? QLatin1Char('B') : QLatin1Char('-');
    key += font.italic ? QLatin1Char('I') : QLatin1Char('-');
    auto it = m_faces.find(key);
    if (it != m_faces.end()) return *it->second;
    QFont qfont(font.name);
    qfont.setBold(font.bold);
    qfont.setItalic(font.italic);
    qfont.setPixelSize(static_cast<int>(kReferencePixels));
    qfont.setHintingPreference(QFont::PreferNoHinting);
    qfont.setKerning(true);
    auto f = std::make_unique<Face>();
    f->reference = QRawFont::fromFont(qfont);
    if (f->reference.isValid()) {
        f->ascent = f->reference.ascent() / kReferencePixels;
        f->descent = f->reference.descent() / kReferencePixels;
    } else {
        // Without any usable font the texts still take room, so pagination stays sound.
        f->ascent = 0.905;
        f->descent = 0.212;
    }
    if (auto shared = m_sharedLayouts.find(key); shared != m_sharedLayouts.end()) {
        f->shaped = std::move(shared->second);
        m_sharedLayouts.erase(shared);
    }
    return *m_faces.emplace(key, std::move(f)).first->second;
}

void FontBook::shareLayouts(const FontBook& other) {
    for (const auto& [key, face] : other.m_faces)
        if (m_faces.find(key) == m_faces.end()) m_sharedLayouts.insert_or_assign(key, face->shaped);
}

const QRawFont& FontBook::rawFont(Face& face, double pixelSize) {
    const long long key = std::llround(pixelSize * 64);
    auto it = face.sized.find(key);
    if (it != face.sized.end()) return it->second;
    QRawFont raw = face.reference;
    if (raw.isValid()) raw.setPixelSize(pixelSize);
    return face.sized.emplace(key, raw).first->second;
}

const FontBook::Shaped& FontBook::shape(Face& face, const QString& text) {
    auto it = face.shaped.constFind(text);
    if (it != face.shaped.constEnd()) return *it;
    if (face.shaped.size() >= kMaxShapedTexts) face.shaped.clear();
    Shaped s;
    if (!face.reference.isValid()) {
        s.em = 0.5 * text.size();
    } else {
        s.glyphs = face.reference.glyphIndexesForString(text);
        const qsizetype n = s.glyphs.size();
        s.advances.resize(n);
        for (qsizetype i = 0; i < n; ++i) {
            const double a =
                i + 1 < n ? face.advance(s.glyphs[i], s.glyphs[i + 1]) : face.advance(s.glyphs[i]);
            s.advances[i] = a / kReferencePixels;
            s.em += s.advances[i];
        }
    }
    return *face.shaped.insert(text, std::move(s));
}

double FontBook::width(const Font& font, const QString& text) {
    if (text.isEmpty()) return 0;
    return shape(face(font), text).em * font.size * kTwipsPerPoint;
}

double FontBook::height(const Font& font) {
    const Face& f = face(font);
    return (f.ascent + f.descent) * font.size * kTwipsPerPoint;
}

double FontBook::ascent(const Font& font) {
    return face(font).ascent * font.size * kTwipsPerPoint;
}

Surface::Surface(FontBook& fonts)
    : m_fonts(fonts) {}

Surface::Surface(FontBook& fonts, QPainter& painter, double dpiX, double dpiY, QPointF origin, int lineWidth)
    : m_fonts(fonts)
    , m_painter(&painter)
    , m_dpiX(dpiX)
    , m_dpiY(dpiY)
    , m_origin(origin)
    , m_lineWidth(lineWidth < 1 ? 1 : lineWidth) {}

Surface::~Surface() {
    flush();
}

void Surface::setFont(const QString& name, double size, bool bold, bool italic) {
    m_font.name = name;
    m_font.size = size;
    m_font.bold = bold;
    m_font.italic = italic;
}

QPointF Surface::toDevice(double x, double y) const {
    return QPointF(m_origin.x() + x * m_dpiX / 1440.0, m_origin.y() + y * m_dpiY / 1440.0);
}

void Surface::text(double x, double y, const QString& text) {
    if (text.isEmpty()) return;
    if (m_recorder) m_recorder->push_back({x, y, text, m_font});
    if (!m_painter) return;
    FontBook::Face& face = m_fonts.face(m_font);
    if (!face.reference.isValid()) return;
    const double pixelSize = m_font.size * m_dpiY / 72.0;
    if (&face != m_runFace || pixelSize != m_runPixelSize) {
        flush();
        m_runFace = &face;
        m_runPixelSize = pixelSize;
    }
    const FontBook::Shaped& shaped = m_fonts.shape(face, text);
    const double twipsPerEm = m_font.size * kTwipsPerPoint;
    const double baseline = y + face.ascent * twipsPerEm;
    double pen = x;
    m_runGlyphs.append(shaped.glyphs);
    for (qsizetype i = 0; i < shaped.glyphs.size(); ++i) {
        m_runPositions.append(toDevice(pen, baseline));
        pen += shaped.advances[i] * twipsPerEm;
    }
}

void Surface::flush() {
    if (!m_painter || m_runGlyphs.isEmpty()) return;
    QGlyphRun run;
    run.setRawFont(m_fonts.rawFont(*m_runFace, m_runPixelSize));
    run.setGlyphIndexes(m_runGlyphs);
    run.setPositions(m_runPositions);
    m_painter->setPen(Qt::black);
    m_painter->drawGlyphRun(QPointF(0, 0), run);
    m_runGlyphs.clear();
    m_runPositions.clear();
}

void Surface::line(double x1, double y1, double x2, double y2, int width) {
    if (!m_painter) return;
    QPen pen(Qt::black);
    pen.setWidthF(std::max(1, width) * m_lineWidth);
    pen.setCapStyle(Qt::FlatCap);
    m_painter->setPen(pen);
    m_painter->drawLine(toDevice(x1, y1), toDevice(x2, y2));
}

void Surface::picture(const platform::Picture& picture, const QRectF& target) {
    if (!m_painter || picture.isNull()) return;
    flush();
    const QPointF topLeft = toDevice(target.left(), target.top());
    const QPointF bottomRight = toDevice(target.right(), target.bottom());
    picture.draw(*m_painter, QRectF(topLeft, bottomRight));
}

} // namespace print
