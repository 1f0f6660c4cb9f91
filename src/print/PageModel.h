#pragma once
// The page model shared by every printed document: the paper and its printable area, the
// fixed margins, the drawing scale and the usable area they leave, in twips (1/1440 inch).
//
// Coordinates are those of the target: (0, 0) is the top-left corner of the printable area,
// and every length is already multiplied by the scale (the preview's zoom; 1 on paper).
#include <QPageLayout>

class QPagedPaintDevice;

namespace print {

// The fixed margins, in twips.
struct Margins {
    int top = 800;
    int bottom = 800;
    int left = 1400;
    int right = 800;
};

// What a printer (or a PDF file) tells about its paper, at scale 1.
struct DeviceMetrics {
    double pageWidth = 0; // the paper, twips
    double pageHeight = 0;
    double printableWidth = 0; // the printable area, twips
    double printableHeight = 0;
    double dpiX = 1200; // device pixels to the inch
    double dpiY = 1200;
    bool landscape = false;

    double twipsPerPixelX() const { return 1440.0 / dpiX; }
    double twipsPerPixelY() const { return 1440.0 / dpiY; }
};

// The resolution of a PDF file and of the page metrics when no printer is installed.
inline constexpr int kDefaultResolution = 1200;
// A4 with a quarter-inch unprintable border: the paper when no printer is installed.
QPageLayout DefaultPageLayout(QPageLayout::Orientation orientation = QPageLayout::Portrait);
// The metrics of a page layout at a resolution.
DeviceMetrics MetricsOf(const QPageLayout& layout, int resolution);
DeviceMetrics MetricsOf(const QPagedPaintDevice& device);

struct PageModel {
    float ScaleX = 1;
    float ScaleY = 1;
    Margins margins;
    int PageWidth = 0;
    int PageHeight = 0;
    int PrintableWidth = 0;
    int PrintableHeight = 0;
    float OriginX = 0; // where the usable area starts
    float OriginY = 0;
    float UsableWidth = 0;
    float UsableHeight = 0;
    bool Landscape = false;
    float LineHeight11 = 0; // 1.2 x the line height of the printing font at 11 and 9 points, scaled
    float LineHeight9 = 0;
    float BodyHeight = 0; // the usable height less the 1300 twips of header and footer

    // The right edge of the usable area.
    float right() const { return OriginX + UsableWidth; }
    // The bottom of the usable area.
    float bottom() const { return OriginY + UsableHeight; }
    // Where a page's body must end.
    float bodyLimit() const { return OriginY + BodyHeight; }
};

// The page model of a device at a scale. The line heights are left at 0 (they need the font).
PageModel PrintArea(const DeviceMetrics& device, float scale, const Margins& margins);
// The usable area lies within the printable area.
bool AreaFits(const PageModel& page);
inline const QString kAreaDoesNotFit =
    QStringLiteral("Tulostusalue ei sovi sivulle. Pienennä sivun marginaaleja.");

// The printer's width of a 10-twip line in device pixels, from the vertical resolution; at
// least 1.
int AdjustLineWidth(const DeviceMetrics& device);
// The same from the mean of both resolutions; 1 where that does not give a positive width.
int PrinterDrawWidth(const DeviceMetrics& device);

// The preview's zoom. A step out multiplies by 0.95 while the scale is above 0.2, a step in by
// 1.05 while it is below 5; the limits are tested before the step, so the scale may end just
// beyond them.
float ZoomOut(float scale);
float ZoomIn(float scale);
// The zoom the preview starts with: the saved "PreviewScale" when it is above 0.2, else 1.
float StartScale(float previewScale);

} // namespace print
