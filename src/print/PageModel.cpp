#include "print/PageModel.h"

#include <QPagedPaintDevice>
#include <cmath>

namespace print {

namespace {
constexpr double kTwipsPerMillimetre = 1440.0 / 25.4;
}

QPageLayout DefaultPageLayout(QPageLayout::Orientation orientation) {
    // A quarter of an inch is 18 points.
    return QPageLayout(QPageSize(QPageSize::A4), orientation, QMarginsF(18, 18, 18, 18), QPageLayout::Point);
}

DeviceMetrics MetricsOf(const QPageLayout& layout, int resolution) {
    DeviceMetrics m;
    // Millimetres, since points are whole numbers here and would round the paper.
    const QRectF full = layout.fullRect(QPageLayout::Millimeter);
    const QRectF paint = layout.paintRect(QPageLayout::Millimeter);
    m.pageWidth = full.width() * kTwipsPerMillimetre;
    m.pageHeight = full.height() * kTwipsPerMillimetre;
    m.printableWidth = paint.width() * kTwipsPerMillimetre;
    m.printableHeight = paint.height() * kTwipsPerMillimetre;
    m.dpiX = m.dpiY = resolution > 0 ? resolution : kDefaultResolution;
    m.landscape = layout.orientation() == QPageLayout::Landscape;
    return m;
}

DeviceMetrics MetricsOf(const QPagedPaintDevice& device) {
    DeviceMetrics m = MetricsOf(device.pageLayout(), device.logicalDpiY());
    m.dpiX = device.logicalDpiX() > 0 ? device.logicalDpiX() : m.dpiY;
    return m;
}

PageModel PrintArea(const DeviceMetrics& device, float scale, const Margins& margins) {
    PageModel p;
    p.ScaleX = p.ScaleY = scale;
    p.margins = margins;
    p.PageWidth = static_cast<int>(std::lround(device.pageWidth * p.ScaleX));
    p.PageHeight = static_cast<int>(std::lround(device.pageHeight * p.ScaleY));
    p.PrintableWidth = static_cast<int>(std::lround(device.printableWidth * p.ScaleX));
    p.PrintableHeight = static_cast<int>(std::lround(device.printableHeight * p.ScaleY));
    // The unprintable border is taken to be the same on both sides.
    p.OriginX = p.ScaleX * margins.left - std::round((p.PageWidth - p.PrintableWidth) / 2.0f);
    p.OriginY = p.ScaleY * margins.top - std::round((p.PageHeight - p.PrintableHeight) / 2.0f);
    p.UsableWidth = p.PageWidth - p.ScaleX * (margins.left + margins.right);
    p.UsableHeight = p.PageHeight - p.ScaleY * (margins.top + margins.bottom);
    p.Landscape = device.landscape;
    p.BodyHeight = p.UsableHeight - 1300 * p.ScaleY;
    return p;
}

bool AreaFits(const PageModel& p) {
    return p.OriginY >= 0 && p.UsableWidth <= p.PrintableWidth && p.UsableHeight <= p.PrintableHeight &&
           p.OriginX >= 0;
}

int AdjustLineWidth(const DeviceMetrics& device) {
    const int w = static_cast<int>(std::lround(10.0 / device.twipsPerPixelY()));
    return w == 0 ? 1 : w;
}

int PrinterDrawWidth(const DeviceMetrics& device) {
    const double mean = (device.twipsPerPixelX() + device.twipsPerPixelY()) / 2;
    if (mean <= 0) return 1;
    const int w = static_cast<int>(std::lround(10.0 / mean));
    return w < 1 ? 1 : w;
}

float ZoomOut(float scale) {
    return scale > 0.2f ? scale * 0.95f : scale;
}

float ZoomIn(float scale) {
    return scale < 5.0f ? scale * 1.05f : scale;
}

float StartScale(float previewScale) {
    return previewScale > 0.2f ? previewScale : 1.0f;
}

} // namespace print
