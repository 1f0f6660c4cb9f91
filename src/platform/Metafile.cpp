#include "platform/Metafile.h"

#include "platform/Cp1252.h"

#include <QColor>
#include <QFile>
#include <QRegularExpression>
#include <QtEndian>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

extern "C" {
#include <emf2svg.h>
#include <fontconfig/fontconfig.h>
#include <libwmf/api.h>
#include <libwmf/ipa.h>
#include <libwmf/svg.h>
}

// The EMF converter finds the font of text given as glyph numbers through fontconfig, and after
// each such string shuts fontconfig down (FcFini). Qt draws all of the program's text through the
// same fontconfig and holds fonts of it for the life of the program: shutting it down under them
// made fontconfig abort the program, or would have left Qt with freed fonts. Shutting fontconfig
// down only matters to a process that ends, so the program defines FcFini itself and leaves
// fontconfig running; the converter's call binds to this definition (the executable's symbols
// come first), and the fonts it found stay cached for the next picture.
extern "C" __attribute__((visibility("default"))) void FcFini(void) {}

namespace platform {

namespace {

quint16 word16(const QByteArray& b, qsizetype at) {
    return qFromLittleEndian<quint16>(b.constData() + at);
}
quint32 word32(const QByteArray& b, qsizetype at) {
    return qFromLittleEndian<quint32>(b.constData() + at);
}

constexpr quint32 kPlaceableKey = 0x9AC6CDD7;
constexpr qsizetype kPlaceableSize = 22;
constexpr qsizetype kWmfHeaderSize = 18;
constexpr qsizetype kMaxRecordAt = 12;        // in the standard header: the largest record, in words
constexpr quint32 kEmfSignature = 0x464D4520; // " EMF"
constexpr qsizetype kEmfHeaderSize = 88;
constexpr qsizetype kEmfDescriptionAt = 60; // its length in UTF-16 units, then its offset
constexpr qsizetype kEmfPixelFormatAt = 88; // its size in bytes, then its offset

bool standardWmfHeaderAt(const QByteArray& b, qsizetype at) {
    if (b.size() < at + kWmfHeaderSize) return false;
    const quint16 type = word16(b, at);
    const quint16 headerWords = word16(b, at + 2);
    const quint16 version = word16(b, at + 4);
    return (type == 1 || type == 2) && headerWords == 9 && (version == 0x0100 || version == 0x0300);
}

QString damaged() {
    return QStringLiteral("Kuvan tiedot ovat vaurioituneet.");
}

constexpr qsizetype kFileWordsAt = 6; // in the standard header: the file's length in words
constexpr quint16 kCreateRegion = 0x06FF;
constexpr qsizetype kRegionScanCount = 5; // parameter words of a region before its scans
constexpr qsizetype kRegionScansAt = 11;

// The number of scans of a region record, counted from its start, that lie whole inside the
// record as the WMF format lays them out: a count of x coordinates (even), top, bottom, the
// coordinates, and the count again.
quint16 wholeScans(const QByteArray& b, qsizetype params, qsizetype words) {
    const quint16 declared = word16(b, params + 2 * kRegionScanCount);
    qsizetype at = kRegionScansAt;
    quint16 whole = 0;
    while (whole < declared && at < words) {
        const quint16 count = word16(b, params + 2 * at);
        const qsizetype closing = at + count + 3;
        if (count % 2 != 0 || closing >= words || word16(b, params + 2 * closing) != count) break;
        at = closing + 1;
        ++whole;
    }
    return whole;
}

// Records that carry a device-independent bitmap, and the parameter word where it starts.
constexpr quint16 kDibPatternBrush = 0x0142;
constexpr quint16 kEscape = 0x0626;
constexpr quint16 kCreateBrush = 0x02FC;
qsizetype dibAt(quint16 function, qsizetype params) {
    switch (function) {
        case 0x0D33: // SETDIBTODEV
            return 9;
        case 0x0F43: // STRETCHDIB
            return 11;
        case 0x0B41: // DIBSTRETCHBLT
            return 10;
        case 0x0940: // DIBBITBLT; with nine parameters it has no bitmap, only its raster operation
            return params == 9 ? -1 : 8;
        case kDibPatternBrush:
            return 2;
        default:
            return -1;
    }
}

// libwmf sets aside an image of the size a bitmap's header gives, and a colour table of the
// count of colours it gives, before it reads a pixel: a JPEG's header counting 1140850688 colours
// made it ask for 3.4 GB. A header that is none of the bitmap header kinds, sizes beyond this, or
// a colour table or uncompressed pixels that the record does not hold are not given to it (a
// pattern brush given as an old device-dependent bitmap is read as such a header).
constexpr qint64 kMostBitmapPixels = 4096 * 4096;

bool readableDib(const QByteArray& b, qsizetype at, qsizetype end) {
    if (end - at < 12) return false;
    const quint32 headerSize = word32(b, at);
    qint64 width = 0, height = 0;
    quint16 bits = 0;
    quint32 compression = 0, colours = 0;
    if (headerSize == 12) {
        width = word16(b, at + 4);
        height = qint16(word16(b, at + 6));
        bits = word16(b, at + 10);
    } else {
        static constexpr quint32 kinds[] = {40, 52, 56, 64, 108, 124};
        if (std::find(std::begin(kinds), std::end(kinds), headerSize) == std::end(kinds)) return false;
        if (end - at < 40) return false;
        width = qint32(word32(b, at + 4));
        height = qint32(word32(b, at + 8));
        bits = word16(b, at + 14);
        compression = word32(b, at + 16);
        colours = word32(b, at + 32);
    }
    height = std::abs(height);
    if (width <= 0 || height <= 0 || width * height > kMostBitmapPixels) return false;
    // The colour table (its length the header's count of colours, which libwmf allocates as it
    // stands) must be in the record whatever the compression.
    const qint64 tableEntries = colours ? qint64(colours) : bits >= 1 && bits <= 8 ? (1 << bits) : 0;
    const qint64 table = headerSize + tableEntries * (headerSize == 12 ? 3 : 4);
    if (table > end - at) return false;
    // A JPEG or PNG (compression 4 or 5) may give no bit count, but never one that is none of the
    // kinds: libwmf sizes its image from the count whatever the compression (a PNG's header giving
    // 26211 bits a pixel made it ask for 2 GB). Uncompressed pixels (also with colour masks) must
    // all be in the record.
    const bool jpegOrPng = compression == 4 || compression == 5;
    if (jpegOrPng && bits == 0) return true;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return false;
    if (jpegOrPng) return true;
    if (compression != 0 && compression != 3) return true;
    const qint64 masks = compression == 3 && headerSize == 40 ? 12 : 0;
    return table + masks + (width * bits + 31) / 32 * 4 * height <= end - at;
}

// libwmf reads a region's scans wherever the record's scan count sends it, past the record's end
// too, and gives up on the whole picture at the first scan that does not close as the format
// says. Writers differ on the region layout (the metafile library whose test drawing other
// programs show puts its counts one word early), and Windows and LibreOffice draw such files.
// In the copy the library reads, a region keeps only the scans that lie whole inside its record;
// a region without scans is empty, which as a clip clips nothing, as LibreOffice shows it. A
// region record too short for its header becomes an empty region of the same object number.
// A bitmap record whose bitmap cannot be read is left out (it becomes an escape, which draws
// nothing), and a pattern brush of such a bitmap becomes a hollow brush of the same number.
QByteArray mendRecords(const QByteArray& wmf, qsizetype header) {
    const qsizetype first = header + 2 * qsizetype(word16(wmf, header + 2));
    QByteArray out = wmf.left(first);
    quint32 largest = 0;
    qsizetype at = first;
    bool changed = false;
    while (at + 6 <= wmf.size()) {
        const quint32 words = word32(wmf, at);
        const quint16 function = word16(wmf, at + 4);
        if (words < 3 || words > quint32((wmf.size() - at) / 2)) break;
        QByteArray record = wmf.mid(at, 2 * qsizetype(words));
        at += record.size();
        const qsizetype params = words - 3;
        if (function == kCreateRegion) {
            if (params <= kRegionScanCount) {
                record = QByteArray(2 * (3 + kRegionScansAt), '\0');
                qToLittleEndian(quint32(3 + kRegionScansAt), record.data());
                qToLittleEndian(kCreateRegion, record.data() + 4);
                qToLittleEndian(quint16(6), record.data() + 6 + 2); // the region object type
                changed = true;
            } else if (const quint16 whole = wholeScans(record, 6, params);
                       whole != word16(record, 6 + 2 * kRegionScanCount)) {
                qToLittleEndian(whole, record.data() + 6 + 2 * kRegionScanCount);
                changed = true;
            }
        } else if (const qsizetype dib = dibAt(function, params);
                   dib >= 0 && !readableDib(record, 6 + 2 * dib, record.size())) {
            if (function == kDibPatternBrush) {
                record = QByteArray(2 * 7, '\0');
                qToLittleEndian(quint32(7), record.data());
                qToLittleEndian(kCreateBrush, record.data() + 4);
                qToLittleEndian(quint16(1), record.data() + 6); // BS_NULL
            } else {
                qToLittleEndian(kEscape, record.data() + 4);
            }
            changed = true;
        }
        largest = std::max(largest, quint32(record.size() / 2));
        out += record;
        if (function == 0) break;
    }
    if (!changed) return wmf;
    out += wmf.mid(at);
    qToLittleEndian(quint32((out.size() - header) / 2), out.data() + header + kFileWordsAt);
    qToLittleEndian(largest, out.data() + header + kMaxRecordAt);
    return out;
}

// libwmf's SVG layer names every colour by the nearest of the SVG colour words ("teal" for a
// dark blue), so the SVG is captured here with the exact colours put back: each drawing call of
// the layer is wrapped to note the device context it draws with, and every "fill:" or "stroke:"
// word written during the call is replaced by the context's colour that lies nearest to it.
// The text arrives through a stream of ours, so no stream of the library's has to be destroyed
// (its memory stream's destroy crashes).
struct SvgCapture {
    std::string svg;
    wmfFunctionReference layer{}; // the SVG layer's own functions
    const wmfDC* dc = nullptr;    // context of the drawing call in progress
    const wmfRGB* pixel = nullptr;
    bool text = false;
};

int chebyshev(const wmfRGB& a, const QColor& b) {
    return std::max({std::abs(a.r - b.red()), std::abs(a.g - b.green()), std::abs(a.b - b.blue())});
}

QByteArray exactColour(const SvgCapture& c, bool fill, const QColor& named) {
    std::vector<const wmfRGB*> candidates;
    if (c.pixel) candidates.push_back(c.pixel);
    if (c.dc) {
        const wmfRGB* brush = c.dc->brush ? &c.dc->brush->lbColor : nullptr;
        const wmfRGB* pen = c.dc->pen ? &c.dc->pen->lopnColor : nullptr;
        if (c.text) candidates.push_back(&c.dc->textcolor);
        // Thick pens are drawn as filled shapes, so both kinds of word may come from either.
        for (const wmfRGB* rgb : fill ? std::array{brush, pen} : std::array{pen, brush})
            if (rgb) candidates.push_back(rgb);
        candidates.push_back(&c.dc->bgcolor);
        if (!c.text) candidates.push_back(&c.dc->textcolor);
    }
    const wmfRGB* best = nullptr;
    for (const wmfRGB* rgb : candidates)
        if (!best || chebyshev(*rgb, named) < chebyshev(*best, named)) best = rgb;
    if (!best) return {};
    return QColor(best->r, best->g, best->b).name().toLatin1();
}

int captureText(char* text, void* context) {
    auto* c = static_cast<SvgCapture*>(context);
    // The SVG layer fills every shape at half opacity while the background mode is transparent,
    // the mode nearly every Windows program sets before it writes text. The mode concerns only
    // the gaps of hatches, dashes and text; the layer draws a hatch as a plain fill, so only a
    // hatched fill keeps its half opacity.
    static constexpr std::string_view halfFill = "fill-opacity:0.5";
    constexpr U16 kHatchedBrush = 2; // BS_HATCHED
    std::string whole;
    if (c->dc && c->dc->brush && c->dc->brush->lbStyle != kHatchedBrush &&
        std::strstr(text, halfFill.data())) {
        whole = text;
        for (std::size_t at = whole.find(halfFill); at != std::string::npos; at = whole.find(halfFill, at))
            whole.replace(at, halfFill.size(), "fill-opacity:1.0");
        text = whole.data();
    }
    // Windows draws a pen of width 0 or 1 one pixel wide whatever the scale, and the layer gave
    // such a pen a fortieth of a pixel, so a drawing's outlines and thin lines did not show. No
    // stroke is thinner than a pixel of the picture's own size.
    static constexpr std::string_view strokeWidth = "stroke-width:";
    if (!c->text && std::strstr(text, strokeWidth.data())) {
        if (whole.empty()) whole = text;
        for (std::size_t at = whole.find(strokeWidth); at != std::string::npos;
             at = whole.find(strokeWidth, at + 1)) {
            const std::size_t from = at + strokeWidth.size();
            char* end = nullptr;
            const double width = std::strtod(whole.c_str() + from, &end);
            if (end != whole.c_str() + from && width < 1)
                whole.replace(from, std::size_t(end - (whole.c_str() + from)), "1");
        }
        text = whole.data();
    }
    if (!c->dc && !c->pixel) {
        c->svg.append(text);
        return 0;
    }
    static const QRegularExpression word(QStringLiteral("\\b(fill|stroke):([a-z]+)"));
    const QString chunk = QString::fromLatin1(text);
    qsizetype done = 0;
    for (auto it = word.globalMatch(chunk); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const QColor named(m.captured(2));
        const QByteArray exact =
            named.isValid() ? exactColour(*c, m.captured(1) == QLatin1String("fill"), named) : QByteArray();
        if (exact.isEmpty()) continue;
        c->svg.append(text + done, static_cast<size_t>(m.capturedStart(2) - done));
        c->svg.append(exact.constData());
        done = m.capturedEnd(2);
    }
    c->svg.append(text + done);
    return 0;
}

int clearCapture(void* context) {
    static_cast<SvgCapture*>(context)->svg.clear();
    return 0;
}

// The SVG layer writes a metafile's text into the element as it stands, so "Silta & Co" made
// the whole picture invalid XML. The text of each element written from `from` on is escaped.
void escapeTextElements(std::string& svg, std::size_t from) {
    for (std::size_t at = svg.find("<text", from); at != std::string::npos; at = svg.find("<text", at)) {
        const std::size_t open = svg.find('>', at);
        const std::size_t close = open == std::string::npos ? open : svg.find("</text>", open);
        if (close == std::string::npos) return;
        std::string escaped;
        for (std::size_t i = open + 1; i < close; ++i) {
            switch (svg[i]) {
                case '&':
                    escaped += "&amp;";
                    break;
                case '<':
                    escaped += "&lt;";
                    break;
                case '>':
                    escaped += "&gt;";
                    break;
                default:
                    escaped += svg[i];
            }
        }
        svg.replace(open + 1, close - open - 1, escaped);
        at = open + 1 + escaped.size() + 7;
    }
}

template <typename Call, void (*wmfFunctionReference::*Layer)(wmfAPI*, Call*)>
void noting(wmfAPI* api, Call* call) {
    auto* c = static_cast<SvgCapture*>(api->user_data);
    c->dc = call->dc;
    const std::size_t start = c->svg.size();
    if constexpr (std::is_same_v<Call, wmfDrawPixel_t>) c->pixel = &call->color;
    if constexpr (std::is_same_v<Call, wmfDrawText_t>) c->text = true;
    (c->layer.*Layer)(api, call);
    if constexpr (std::is_same_v<Call, wmfDrawText_t>) escapeTextElements(c->svg, start);
    c->dc = nullptr;
    c->pixel = nullptr;
    c->text = false;
}

// libwmf gives the drawing layer an arc's ends relative to the ellipse's centre and clamped to
// its box, and its SVG layer writes them as they stand: arcs, chords and pies were drawn about
// the picture's top left corner, always the short way round, through ends off the ellipse, and
// as a whole ellipse when the ends shared an x or a y. Here the ends become the points of the
// ellipse in their directions, in the drawing's coordinates, and an arc that goes more than half
// way round is marked as the long one. (The library passes the record's ends swapped, and the
// layer draws clockwise from the first, which is the counter-clockwise arc Windows draws.)
template <void (*wmfFunctionReference::*Layer)(wmfAPI*, wmfDrawArc_t*)>
void arcNoting(wmfAPI* api, wmfDrawArc_t* arc) {
    const double cx = (double(arc->TL.x) + arc->BR.x) / 2;
    const double cy = (double(arc->TL.y) + arc->BR.y) / 2;
    const double rx = std::abs(double(arc->BR.x) - arc->TL.x) / 2;
    const double ry = std::abs(double(arc->BR.y) - arc->TL.y) / 2;
    if (!(rx > 0 && ry > 0)) return noting<wmfDrawArc_t, Layer>(api, arc);
    const auto angle = [&](const wmfD_Coord& p) { return std::atan2(p.y / ry, p.x / rx); };
    const auto onEllipse = [&](double a) {
        return wmfD_Coord{float(cx + rx * std::cos(a)), float(cy + ry * std::sin(a))};
    };
    const double from = angle(arc->start);
    double to = angle(arc->end);
    constexpr double kTurn = 2 * 3.14159265358979323846;
    double sweep = std::fmod(to - from + 2 * kTurn, kTurn);
    if (sweep < 1e-9) sweep = kTurn; // the same direction: the whole ellipse
    arc->start = onEllipse(from);
    arc->end = onEllipse(to);
    // The layer draws a whole ellipse for ends that share a coordinate; an arc that is not whole
    // ends a hair earlier instead.
    while (sweep < kTurn && (arc->start.x == arc->end.x || arc->start.y == arc->end.y)) {
        to -= 1e-4;
        sweep -= 1e-4;
        arc->end = onEllipse(to);
    }
    auto* c = static_cast<SvgCapture*>(api->user_data);
    const std::size_t start = c->svg.size();
    noting<wmfDrawArc_t, Layer>(api, arc);
    static constexpr std::string_view shortWay = " 0 0,1 ";
    if (const std::size_t at = c->svg.find(shortWay, start); sweep > kTurn / 2 && at != std::string::npos)
        c->svg.replace(at, shortWay.size(), " 0 1,1 ");
}

// The layer writes a polyline's stroke only, and SVG fills a shape black unless told not to:
// an open star of lines came out a black star.
void polylineNoting(wmfAPI* api, wmfPolyLine_t* line) {
    auto* c = static_cast<SvgCapture*>(api->user_data);
    const std::size_t start = c->svg.size();
    noting<wmfPolyLine_t, &wmfFunctionReference::poly_line>(api, line);
    static constexpr std::string_view style = "style=\"";
    if (const std::size_t at = c->svg.find(style, start); at != std::string::npos)
        c->svg.insert(at + style.size(), "fill:none; ");
}

// The layer places a bitmap twice: by the image's position and size, and again by a transform
// that scales and moves it by as much, so every bitmap of a WMF landed off the picture. The
// position and size alone are right.
void bitmapNoting(wmfAPI* api, wmfBMP_Draw_t* bitmap) {
    auto* c = static_cast<SvgCapture*>(api->user_data);
    const std::size_t start = c->svg.size();
    c->layer.bmp_draw(api, bitmap);
    static constexpr std::string_view transform = "transform=\"matrix(";
    const std::size_t at = c->svg.find(transform, start);
    const std::size_t end = at == std::string::npos ? at : c->svg.find('"', at + transform.size());
    if (end != std::string::npos) c->svg.erase(at, end + 1 - at);
}

void wrapDrawing(wmfAPI* api, SvgCapture& capture) {
    auto* f = static_cast<wmfFunctionReference*>(api->function_reference);
    capture.layer = *f;
    api->user_data = &capture;
    using R = wmfFunctionReference;
    f->draw_pixel = noting<wmfDrawPixel_t, &R::draw_pixel>;
    f->draw_pie = arcNoting<&R::draw_pie>;
    f->draw_chord = arcNoting<&R::draw_chord>;
    f->draw_arc = arcNoting<&R::draw_arc>;
    f->draw_ellipse = noting<wmfDrawArc_t, &R::draw_ellipse>;
    f->draw_line = noting<wmfDrawLine_t, &R::draw_line>;
    f->poly_line = polylineNoting;
    f->bmp_draw = bitmapNoting;
    f->draw_polygon = noting<wmfPolyLine_t, &R::draw_polygon>;
    f->draw_polypolygon = noting<wmfPolyPoly_t, &R::draw_polypolygon>;
    f->draw_rectangle = noting<wmfDrawRectangle_t, &R::draw_rectangle>;
    f->draw_text = noting<wmfDrawText_t, &R::draw_text>;
    f->region_frame = noting<wmfPolyRectangle_t, &R::region_frame>;
    f->region_paint = noting<wmfPolyRectangle_t, &R::region_paint>;
}

constexpr qsizetype kEmfFrameAt = 24; // left, top, right, bottom in hundredths of a millimetre

// The value of the attribute `name="..."` of an element's text: where it starts and ends, or -1.
std::pair<qsizetype, qsizetype> attributeValue(const QByteArray& element, const QByteArray& name) {
    const QByteArray key = ' ' + name + "=\"";
    const qsizetype start = element.indexOf(key);
    const qsizetype end = start < 0 ? -1 : element.indexOf('"', start + key.size());
    return end < 0 ? std::pair<qsizetype, qsizetype>{-1, -1} : std::pair{start + key.size(), end};
}

double attributeNumber(const QByteArray& element, const QByteArray& name) {
    const auto [from, to] = attributeValue(element, name);
    bool ok = false;
    const double number = from < 0 ? 0 : element.mid(from, to - from).toDouble(&ok);
    return ok ? number : -1;
}

void setAttribute(QByteArray& element, const QByteArray& name, const QByteArray& value) {
    const auto [from, to] = attributeValue(element, name);
    if (from >= 0) element.replace(from, to - from, value);
}

// The converter sizes the SVG in the pixels of the device the metafile was recorded for (the
// header's bounds), so a page recorded for a 1200-dpi printer came out 14030 pixels wide and was
// drawn and copied at that size. The header's frame gives the picture's real size: the SVG is
// sized to it at 96 pixels to the inch, and a viewBox keeps the drawing's own coordinates. A
// missing or senseless frame leaves the converter's size.
QByteArray sizedToFrame(const QByteArray& svg, const QByteArray& emf) {
    const qsizetype open = svg.indexOf("<svg");
    const qsizetype close = open < 0 ? -1 : svg.indexOf('>', open);
    if (close < 0) return svg;
    QByteArray element = svg.mid(open, close - open);
    const double width = attributeNumber(element, "width");
    const double height = attributeNumber(element, "height");
    if (width <= 0 || height <= 0 || element.contains(" viewBox=")) return svg;
    const auto frameLength = [&](qsizetype from) { // from the left or top edge to the right or bottom
        const double hundredths = double(qint32(word32(emf, kEmfFrameAt + from + 8))) -
                                  double(qint32(word32(emf, kEmfFrameAt + from)));
        return hundredths / 2540.0 * 96.0;
    };
    const double frameWidth = frameLength(0);
    const double frameHeight = frameLength(4);
    // One scale for both axes, so the drawing keeps its proportions whatever the frame rounds to.
    const double scale = frameWidth > 0 ? frameWidth / width : frameHeight > 0 ? frameHeight / height : 0;
    if (!(scale > 1e-3 && scale < 1e3) || std::abs(scale - 1) < 0.01) return svg;
    setAttribute(element, "width", QByteArray::number(width * scale, 'f', 4));
    setAttribute(element, "height", QByteArray::number(height * scale, 'f', 4));
    element += " viewBox=\"0 0 " + QByteArray::number(width, 'f', 4) + ' ' +
               QByteArray::number(height, 'f', 4) + '"';
    return svg.left(open) + element + svg.mid(close);
}

// Text in a metafile is measured (for centred and right-aligned strings) with the font its name
// maps to. The library's own standard fonts are Type 1 files that FreeType parses whole, for
// every metafile again, which made showing a picture cost most of a millisecond before a record
// was read. Windows metafiles name Arial, Times New Roman and Courier New, for which the
// Liberation fonts are metric-compatible TrueType stand-ins (the program prints with them too),
// and a TrueType face opens lazily. The PostScript names stay the library's, so the SVG names
// the same families; only the measuring face changes. A missing font file keeps the library's.
constexpr const char* kLiberationDir = "/usr/share/fonts/truetype/liberation";

struct FontMapping {
    const char* psName;
    const char* file;
};
constexpr FontMapping kStandIns[] = {
    {"Times-Roman", "LiberationSerif-Regular.ttf"},
    {"Times-Italic", "LiberationSerif-Italic.ttf"},
    {"Times-Bold", "LiberationSerif-Bold.ttf"},
    {"Times-BoldItalic", "LiberationSerif-BoldItalic.ttf"},
    {"Helvetica", "LiberationSans-Regular.ttf"},
    {"Helvetica-Oblique", "LiberationSans-Italic.ttf"},
    {"Helvetica-Bold", "LiberationSans-Bold.ttf"},
    {"Helvetica-BoldOblique", "LiberationSans-BoldItalic.ttf"},
    {"Courier", "LiberationMono-Regular.ttf"},
    {"Courier-Oblique", "LiberationMono-Italic.ttf"},
    {"Courier-Bold", "LiberationMono-Bold.ttf"},
    {"Courier-BoldOblique", "LiberationMono-BoldItalic.ttf"},
};

// The stand-ins whose files exist, ending in the library's terminating empty entry. Found once.
const std::vector<wmfMapping>& standInFonts() {
    static const std::vector<wmfMapping> mappings = [] {
        std::vector<wmfMapping> found;
        for (const FontMapping& m : kStandIns)
            if (QFile::exists(QLatin1String(kLiberationDir) + QLatin1Char('/') + QLatin1String(m.file)))
                found.push_back({const_cast<char*>(m.psName), const_cast<char*>(m.file), FT_ENCODING_NONE});
        found.push_back({nullptr, nullptr, FT_ENCODING_NONE});
        return found;
    }();
    return mappings;
}

// libwmf's handle, given back with wmf_api_destroy (which also frees what the library
// allocated; wmf_stream_destroy must not be called, it crashes).
struct WmfApiDestroy {
    void operator()(wmfAPI* api) const {
        if (api) wmf_api_destroy(api);
    }
};
using WmfApi = std::unique_ptr<wmfAPI, WmfApiDestroy>;

// Plays the metafile `input` through the library's SVG device into `stream` (over `capture`);
// false when the library cannot read it.
bool playToSvg(wmfAPI* api, QByteArray& input, wmfStream& stream, SvgCapture& capture) {
    wrapDrawing(api, capture);
    bool ok = wmf_mem_open(api, reinterpret_cast<unsigned char*>(input.data()),
                           static_cast<long>(input.size())) == wmf_E_None;
    wmfD_Rect box{};
    ok = ok && wmf_scan(api, 0, &box) == wmf_E_None;
    unsigned int width = 0, height = 0;
    ok = ok && wmf_display_size(api, &width, &height, 96, 96) == wmf_E_None && width > 0 && height > 0;
    if (ok) {
        wmf_svg_t* device = WMF_SVG_GetData(api);
        device->out = &stream;
        device->Description = const_cast<char*>("TAMRIK");
        device->bbox = box;
        device->width = width;
        device->height = height;
        device->flags |= WMF_SVG_INLINE_IMAGES; // embedded bitmaps inline, no files beside
        ok = wmf_play(api, 0, &box) == wmf_E_None;
    }
    wmf_mem_close(api);
    return ok;
}

} // namespace

bool looksLikeWmf(const QByteArray& bytes) {
    if (bytes.size() >= kPlaceableSize + kWmfHeaderSize && word32(bytes, 0) == kPlaceableKey)
        return standardWmfHeaderAt(bytes, kPlaceableSize);
    return standardWmfHeaderAt(bytes, 0);
}

bool looksLikeEmf(const QByteArray& bytes) {
    return bytes.size() >= kEmfHeaderSize && word32(bytes, 0) == 1 && word32(bytes, 4) >= kEmfHeaderSize &&
           word32(bytes, 40) == kEmfSignature;
}

QByteArray wmfToSvg(const QByteArray& wmf, QString* error) {
    if (!looksLikeWmf(wmf)) {
        if (error) *error = damaged();
        return {};
    }
    const qsizetype header = word32(wmf, 0) == kPlaceableKey ? kPlaceableSize : 0;
    QByteArray input = mendRecords(wmf, header); // the library reads through a non-const pointer
    // The library sets aside room for the largest record the header names; no record can be
    // longer than the file, so a larger figure (a damaged header) is brought down to that.
    const quint32 mostWords = static_cast<quint32>((input.size() - header) / 2);
    if (word32(input, header + kMaxRecordAt) > mostWords)
        qToLittleEndian(mostWords, input.data() + header + kMaxRecordAt);
    wmfAPI_Options options{};
    options.function = wmf_svg_function;
    unsigned long flags = WMF_OPT_FUNCTION | WMF_OPT_IGNORE_NONFATAL | WMF_OPT_NO_ERROR | WMF_OPT_NO_DEBUG;
    char* fontDirs[] = {const_cast<char*>(kLiberationDir), nullptr};
    if (standInFonts().size() > 1) {
        options.fontdirs = fontDirs;
        options.font.ps = const_cast<wmfMapping*>(standInFonts().data());
        flags |= WMF_OPT_FONTDIRS | WMF_OPT_FONTMAP;
    }
    wmfAPI* created = nullptr;
    const bool made = wmf_api_create(&created, flags, &options) == wmf_E_None;
    // The capture and its stream outlive the library's handle, given back on every way out.
    SvgCapture capture;
    wmfStream stream{&capture, captureText, clearCapture};
    {
        const WmfApi api(created);
        if (!made) {
            if (error) *error = QStringLiteral("Metatiedoston näyttäminen ei onnistu.");
            return {};
        }
        if (!playToSvg(api.get(), input, stream, capture)) {
            if (error) *error = damaged();
            return {};
        }
    }
    const std::string& svg = capture.svg;
    if (svg.find("</svg>") == std::string::npos) {
        if (error) *error = damaged();
        return {};
    }
    // The SVG holds the metafile's text as Windows-1252 bytes without saying so: make it UTF-8,
    // which is what an XML declaration without an encoding means.
    return fromCp1252(svg.data(), static_cast<qsizetype>(svg.size())).toUtf8();
}

QByteArray emfToSvg(const QByteArray& emf, QString* error) {
    if (!looksLikeEmf(emf)) {
        if (error) *error = damaged();
        return {};
    }
    QByteArray input = emf;
    // The converter reads the header's description (and pixel format) wherever the header says,
    // and reads a description of no stated length up to a zero it may never find: a part that
    // does not lie inside the header record is taken out of the copy it reads.
    const quint32 headerSize = word32(input, 4);
    if (headerSize > input.size()) {
        if (error) *error = damaged();
        return {};
    }
    auto insideHeader = [&](quint32 offset, quint64 length) {
        return length > 0 && offset >= kEmfHeaderSize && offset + length <= headerSize;
    };
    if (!insideHeader(word32(input, kEmfDescriptionAt + 4), 2ull * word32(input, kEmfDescriptionAt))) {
        qToLittleEndian(quint32(0), input.data() + kEmfDescriptionAt);
        qToLittleEndian(quint32(0), input.data() + kEmfDescriptionAt + 4);
    }
    if (headerSize >= kEmfPixelFormatAt + 8 &&
        !insideHeader(word32(input, kEmfPixelFormatAt + 4), word32(input, kEmfPixelFormatAt))) {
        qToLittleEndian(quint32(0), input.data() + kEmfPixelFormatAt);
        qToLittleEndian(quint32(0), input.data() + kEmfPixelFormatAt + 4);
    }
    generatorOptions options{};
    options.nameSpace = const_cast<char*>(""); // a prefix makes the XML invalid
    options.verbose = false;
    // EMF+ records ride inside comment records, and the converter's EMF+ reader reads past
    // their ends on damaged files; the plain EMF records that every dual file also holds draw
    // the same picture.
    options.emfplus = false;
    options.svgDelimiter = true;
    char* out = nullptr;
    size_t outLength = 0;
    const int ok = emf2svg(input.data(), static_cast<size_t>(input.size()), &out, &outLength, &options);
    QByteArray svg;
    if (out) {
        svg = QByteArray(out, static_cast<qsizetype>(outLength));
        std::free(out);
    }
    if (!ok || !svg.contains("</svg>")) {
        if (error) *error = damaged();
        return {};
    }
    return sizedToFrame(svg, emf);
}

} // namespace platform
