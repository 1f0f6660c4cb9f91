#include "print/PrintRun.h"

#include "lists/ListModel.h"
#include "print/Comparison.h"
#include "print/Reports.h"
#include "print/TextLines.h"

#include <QImage>
#include <QPagedPaintDevice>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace print {

namespace {

// The preview's pixels: 15 twips to a pixel at scale 1.
constexpr double kPreviewDpi = 96;

bool sameMetrics(const DeviceMetrics& a, const DeviceMetrics& b) {
    return std::abs(a.pageWidth - b.pageWidth) < 0.5 && std::abs(a.pageHeight - b.pageHeight) < 0.5 &&
           std::abs(a.printableWidth - b.printableWidth) < 0.5 &&
           std::abs(a.printableHeight - b.printableHeight) < 0.5 && a.landscape == b.landscape;
}

int rowsOf(const lists::ListModel* list) {
    return list ? list->rows() : 0;
}

} // namespace

QString DocumentTitle(int document, const QString& workPhase) {
    const QString phase = workPhase.trimmed();
    switch (document) {
        case doc::Quantities:
            return QStringLiteral("Sillan määräluettelo");
        case doc::Costs:
            return QStringLiteral("Sillan kustannusarvio");
        case doc::BridgeRequirements:
            return QStringLiteral("Siltakohtaiset laatuvaatimukset");
        case doc::PlanDescription:
            return QStringLiteral("Rakennussuunnitelmaselostus");
        case doc::CodingPlan:
            return QStringLiteral("Koodaussuunnitelma");
        case doc::AllRequirements:
            return phase.isEmpty() ? QStringLiteral("Sillan laatuvaatimukset")
                                   : QStringLiteral("Laatuvaatimukset  ") + phase;
        case doc::QualityPlan:
            return QStringLiteral("Urakan laatusuunnitelma");
        case doc::QualityPlans:
            return phase.isEmpty() ? QStringLiteral("Sillan laatusuunnitelma")
                                   : QStringLiteral("Laatusuunnitelma  ") + phase;
        case doc::Inspections:
            return phase.isEmpty() ? QStringLiteral("Sillan tarkastus- ja mittausraportti")
                                   : QStringLiteral("Tarkastus- ja mittausraportti  ") + phase;
        case doc::Deviations:
            return phase.isEmpty() ? QStringLiteral("Sillan poikkeamaraportti")
                                   : QStringLiteral("Poikkeamaraportti  ") + phase;
        case doc::QualityReport:
        case kQualitySummary:
            return QStringLiteral("Sillan laaturaportti");
        case doc::Comparison:
            return QStringLiteral("Muutosvertailu");
        default:
            return QString();
    }
}

QString SelectionCaption(int document, const QString& workPhase) {
    static const char* const captions[kDocumentCount] = {"&1 Määräluettelo",
                                                         "&2 Kustannusarvio",
                                                         "&3 Siltakohtaiset laatuvaatimukset",
                                                         "&4 Rakennussuunnitelmaselotus",
                                                         "&5 Ominaistietokortti",
                                                         "&6 Panostilakortti",
                                                         "&7 Koodaussuunnitelma",
                                                         "&A Laatuvaatimukset: kaikki",
                                                         "&B Urakan laatusuunnitelma",
                                                         "&C Laatusuunnitelmat: kaikki",
                                                         "&D Tarkastus- ja mittausraportit: kaikki",
                                                         "&E Poikkeamaraportit: kaikki",
                                                         "&F Sillan laaturaportti"};
    if (document < 0 || document >= kDocumentCount) return QString();
    const QString prefix = WorkPhasePrefix(document);
    if (!workPhase.isEmpty() && !prefix.isEmpty()) return prefix + workPhase;
    return QString::fromUtf8(captions[document]);
}

QString WorkPhasePrefix(int document) {
    switch (document) {
        case doc::AllRequirements:
            return QStringLiteral("&A Laatuvaatimukset: ");
        case doc::QualityPlans:
            return QStringLiteral("&C Laatusuunitelmat: ");
        case doc::Inspections:
            return QStringLiteral("&D Tarkastus- ja mittausraportit: ");
        case doc::Deviations:
            return QStringLiteral("&E Poikkeamaraportit: ");
        default:
            return QString();
    }
}

PrintRun::PrintRun(const PrintSource& source, Selection& selection, PrintSettings settings)
    : m_source(source)
    , m_selection(selection)
    , m_settings(std::move(settings))
    , m_device(MetricsOf(DefaultPageLayout(), kDefaultResolution)) {}

PrintRun::~PrintRun() = default;

std::unique_ptr<PrintRun> PrintRun::drawingCopy() const {
    // The pictures get renderings of their own; the lists are only read.
    auto source = std::make_unique<PrintSource>(m_source);
    for (platform::Picture& picture : source->pictures)
        picture = picture.detached();
    PrintSettings settings = m_settings;
    settings.logo = settings.logo.detached();
    auto copy = std::make_unique<PrintRun>(*source, m_selection, std::move(settings));
    copy->m_ownSource = std::move(source);
    // What pagination measured and wrapped is not measured again.
    copy->m_fonts.shareLayouts(m_fonts);
    copy->m_wrapped = m_wrapped;
    copy->m_comparison = m_comparison;
    copy->m_device = m_device;
    copy->m_page = m_page;
    copy->m_pages = m_pages;
    copy->m_costs = m_costs;
    copy->m_quality = m_quality;
    copy->m_litteraWidth = m_litteraWidth;
    copy->m_costSummaryBlocks = m_costSummaryBlocks;
    copy->m_textBuffers = m_textBuffers;
    copy->m_qualityItems = m_qualityItems;
    copy->m_qualityItemsFound = m_qualityItemsFound;
    return copy;
}

void PrintRun::setComparison(const calc::ProjectComparison* comparison) {
    m_comparison = comparison;
    m_selection.PaginationStale = true;
}

void PrintRun::inform(const QString& message) {
    if (m_shown.contains(message)) return;
    m_shown.insert(message);
    m_messages.append(message);
    if (m_inform) m_inform(message);
}

Font PrintRun::font(double size, bool bold, bool italic) const {
    return Font{m_settings.PrinterFont, size * m_page.ScaleY, bold, italic};
}

double PrintRun::quantityLitteraWidth() {
    if (m_litteraWidth >= 0) return m_litteraWidth;
    m_litteraWidth = 0;
    const Font body{m_settings.PrinterFont, 11};
    if (const lists::ListModel* list = m_source.quantities)
        for (int r = 1; r <= list->rows(); ++r)
            m_litteraWidth =
                std::max(m_litteraWidth, m_fonts.width(body, list->cell(r, 1).toString().trimmed()));
    return m_litteraWidth;
}

QStringList PrintRun::wrap(const QString& text, double size, double width) {
    const float scale = m_page.ScaleX > 0 ? m_page.ScaleX : 1.0f;
    WrapKey key{text, size, width / scale};
    auto it = m_wrapped.constFind(key);
    if (it == m_wrapped.constEnd()) {
        // A long list has many distinct cells; the cache starts again rather than growing on.
        if (m_wrapped.size() >= 200000) m_wrapped.clear();
        Wrapped w;
        w.lines = WrapLines(m_fonts, Font{m_settings.PrinterFont, size}, text, key.width, &w.tooLong);
        it = m_wrapped.insert(std::move(key), std::move(w));
    }
    if (it->tooLong) inform(kWordTooLong);
    return it->lines;
}

FittedText PrintRun::fit(const QString& text, const Font& base, double room, double floor, int maxLines) {
    Font font = base;
    const double size = base.size;
    const QString value = text.trimmed();
    const double full = m_fonts.width(font, value);
    if (full <= room) return {size, {value}};
    // Widths grow with the size: the size that fills the cell, down to a half point.
    for (double s = std::floor(2 * size * room / full) / 2; s >= floor; s -= 0.5) {
        font.size = s;
        if (m_fonts.width(font, value) <= room) return {s, {value}};
    }
    font.size = floor;
    bool tooLong = false;
    const QStringList wrapped = WrapLines(m_fonts, font, value, room, &tooLong);
    const int keep = std::max(1, maxLines);
    FittedText out{floor, {}};
    for (int i = 0; i < std::min<int>(keep, wrapped.size()); ++i)
        out.lines.append(wrapped[i].trimmed());
    if (wrapped.size() <= keep) {
        if (tooLong) inform(kWordTooLong);
        return out;
    }
    // The last line takes the rest of the text as far as it goes.
    const QString last = QStringList(wrapped.mid(keep - 1)).join(QString()).trimmed();
    out.lines.last() = CutToWidth(m_fonts, font, last, QStringLiteral("…"), room);
    inform(kValueCut);
    return out;
}

bool PrintRun::PrintArea(float scale) {
    m_page = print::PrintArea(m_device, scale, m_settings.margins);
    const Font f11{m_settings.PrinterFont, 11};
    const Font f9{m_settings.PrinterFont, 9};
    m_page.LineHeight11 = static_cast<float>(1.2 * m_fonts.height(f11) * m_page.ScaleY);
    m_page.LineHeight9 = static_cast<float>(1.2 * m_fonts.height(f9) * m_page.ScaleY);
    if (AreaFits(m_page)) return true;
    inform(kAreaDoesNotFit);
    return false;
}

bool PrintRun::progressed(int page) {
    if (m_cancelled) return false;
    if (m_progress && !m_progress(page, m_rowsTotal > 0 ? m_rowsDone / m_rowsTotal : 1.0)) m_cancelled = true;
    return !m_cancelled;
}

bool PrintRun::addPage(int& page, int document, int number, int firstRow, int lastRow) {
    if (page >= kMaxPages) return false;
    ++page;
    m_pages.push_back(PageEntry{document, number, 0, firstRow, lastRow});
    return progressed(page);
}

void PrintRun::finishDocument(int firstPage, int lastPage) {
    const int count = lastPage - firstPage + 1;
    for (int p = firstPage; p <= lastPage; ++p)
        m_pages[p - 1].count = count;
}

bool PrintRun::CalculateListViewPages(int& page, int document, int rowCount,
                                      const std::function<double(int)>& rowHeight,
                                      const std::function<RowKind(int)>& rowKind, int extraRows,
                                      const std::function<double(int)>& extraHeight) {
    const int first = page + 1;
    if (!addPage(page, document, 1, 0, 0)) return false;
    const double top = ListBodyTop(*this);
    const double limit = m_page.bodyLimit();
    int number = 2;
    // An empty body page shows the rows from firstRow to lastRow = firstRow - 1, none.
    if (!addPage(page, document, number, 1, 0)) return false;
    // Heights are measured once: a caption looks ahead at the rows under it.
    std::vector<double> heights(rowCount + extraRows + 1, -1);
    auto height = [&](int r) {
        if (heights[r] < 0) heights[r] = r <= rowCount ? rowHeight(r) : extraHeight(r - rowCount);
        return heights[r];
    };
    double y = top;
    for (int r = 1; r <= rowCount + extraRows; ++r) {
        // A caption keeps the first row under it on its page: the captions and blank rows up to
        // that row count with it, as long as they fit on a page at all.
        double keep = height(r);
        if (r <= rowCount && rowKind(r) == RowKind::Caption) {
            for (int k = r + 1; k <= rowCount; ++k) {
                keep += height(k);
                if (rowKind(k) == RowKind::Entry) break;
            }
            if (keep > limit - top) keep = height(r);
        }
        PageEntry& current = m_pages.back();
        // A row that crosses the body's end starts the next page, unless it is the page's first.
        if (y + keep > limit && current.lastRow >= current.firstRow) {
            if (!addPage(page, document, ++number, r, r - 1)) return false;
            y = top;
        }
        y += height(r);
        m_pages.back().lastRow = r;
        if (r <= rowCount) m_rowsDone += 1;
    }
    finishDocument(first, page);
    return true;
}

const QString& PrintRun::textBuffer(int n) const {
    static const QString none;
    return n >= 0 && n < 3 ? m_textBuffers[n] : none;
}

const std::vector<QualityItem>& PrintRun::qualityItems(int document) {
    static const std::vector<QualityItem> none;
    if (document < 0 || document >= kDocumentCount || !m_source.requirements) return none;
    if (!m_qualityItemsFound[document]) {
        m_qualityItems[document] =
            QualityItems(*m_source.requirements, document, m_selection.WorkPhaseFilter[document]);
        m_qualityItemsFound[document] = true;
    }
    return m_qualityItems[document];
}

bool PrintRun::CalculateTextPages(int& page, int document, int rowsPerPage) {
    const int n = TextBufferOf(document);
    QString& buffer = m_textBuffers[n];
    buffer = m_source.documents[n];
    if (!InsertLineFeeds(m_fonts, buffer, m_settings.PrinterFont, 11, m_page.UsableWidth / m_page.ScaleX))
        inform(kWordTooLong);
    const int lines = EvaluateNRows(buffer);
    const int first = page + 1;
    if (!addPage(page, document, 1, 0, 0)) return false;
    const int r = std::max(1, rowsPerPage);
    for (int from = 1; from <= lines; from += r)
        if (!addPage(page, document, (from - 1) / r + 2, from, std::min(lines, from + r - 1))) return false;
    finishDocument(first, page);
    m_rowsDone += 1;
    return true;
}

bool PrintRun::CalculateActivePages(int& page, int document) {
    const int first = page + 1;
    if (!addPage(page, document, 1, 0, 0)) return false;
    int number = 2;
    if (document == doc::QualityReport) {
        // The summary pages come first, the work phases split over them.
        const SummaryLayout layout = QualitySummaryLayout(*this);
        int from = 1;
        int rows = layout.firstRows;
        do {
            const int to = std::min(m_quality.groupCount, from + rows - 1);
            if (!addPage(page, kQualitySummary, number++, from, to)) return false;
            from = to + 1;
            rows = layout.laterRows;
        } while (from <= m_quality.groupCount);
    }
    const std::vector<QualityItem>& items = qualityItems(document);
    Surface measure(m_fonts);
    const double top = QualityBodyTop(*this);
    // The quality report keeps a line free for its footer.
    const double limit = m_page.bodyLimit() - (document == doc::QualityReport ? m_page.LineHeight11 : 0);
    if (!addPage(page, document, number, items.empty() ? 1 : items.front().row, 0)) return false;
    double y = top;
    bool empty = true;
    std::vector<double> heights;
    for (std::size_t i = 0; i < items.size();) {
        // A requirement goes with the captions above it: together they stay on this page when
        // they fit below the rows before, whole and uncut; otherwise they start the next page,
        // where a text too long for any page is cut at its foot.
        const std::size_t end =
            std::find_if(items.begin() + i, items.end(), [](const QualityItem& it) { return !it.caption; }) -
            items.begin();
        const std::size_t last = std::min(end, items.size() - 1);
        auto measureGroup = [&](double from) {
            heights.clear();
            bool cut = false;
            for (std::size_t k = i; k <= last; ++k) {
                bool itemCut = false;
                heights.push_back(QualityItemHeight(*this, measure, document, items[k], from, &itemCut));
                from += heights.back();
                cut = cut || itemCut;
            }
            return !cut && from <= limit;
        };
        if (!measureGroup(y) && !empty) {
            if (!addPage(page, document, ++number, items[i].row, items[i].row)) return false;
            y = top;
            measureGroup(y);
        }
        for (std::size_t k = i; k <= last; ++k) {
            y += heights[k - i];
            m_pages.back().lastRow = items[k].row;
        }
        empty = false;
        i = last + 1;
    }
    finishDocument(first, page);
    m_rowsDone += 1;
    return true;
}

bool PrintRun::CalculateNormalPages(int& page, int document, int count) {
    const int first = page + 1;
    for (int n = 1; n <= count; ++n)
        if (!addPage(page, document, n, 0, 0)) return false;
    finishDocument(first, page);
    return true;
}

void PrintRun::startCounting(const Progress& progress) {
    m_pages.clear();
    m_progress = progress;
    m_cancelled = false;
    m_rowsDone = 0;
    m_rowsTotal = 0;
    m_qualityItemsFound.fill(false);
    for (int d = 0; d < kDocumentCount; ++d) {
        if (!m_selection.DocumentSelected[d]) continue;
        m_rowsTotal += (d == doc::Quantities || d == doc::Costs) ? rowsOf(m_source.quantities) : 1;
    }
    if (m_comparison) m_rowsTotal += ComparisonRowCount(*m_comparison);
}

bool PrintRun::CalculateQuantityPages(int& page, int document, Surface& measure) {
    auto height = [&](int r) { return QuantityRowHeight(*this, measure, document, r); };
    auto kind = [this](int r) { return QuantityRowKind(*m_source.quantities, r); };
    int extra = 0;
    std::function<double(int)> extraHeight;
    if (document == doc::Costs) {
        // The summaries follow the last row; they go on a page of their own when they
        // do not fit below it, and each on its own when a page cannot hold both.
        const double lh = m_page.LineHeight11;
        const double both = (CostSummaryLines(*this, 1) + CostSummaryLines(*this, 2)) * lh;
        const double room = m_page.bodyLimit() - ListBodyTop(*this);
        m_costSummaryBlocks = both <= room ? 1 : 2;
        if (both <= room) {
            extra = 1;
            extraHeight = [both](int) { return both; };
        } else {
            extra = 2;
            extraHeight = [this, lh](int k) { return CostSummaryLines(*this, k) * lh; };
        }
    }
    return CalculateListViewPages(page, document, rowsOf(m_source.quantities), height, kind, extra,
                                  extraHeight);
}

PageCountResult PrintRun::PageCount(const Progress& progress) {
    if (!PrintArea(1.0f)) return PageCountResult::AreaDoesNotFit;
    const bool costs = m_selection.DocumentSelected[doc::Costs];
    if (costs && m_source.quantities)
        m_costs = calc::CalculateCosts(*m_source.quantities, m_source.costInputs());
    if (m_selection.DocumentSelected[doc::QualityReport] && m_source.requirements)
        m_quality = calc::CalculateQualityIndex(*m_source.requirements);
    if (!m_selection.PaginationStale) return PageCountResult::Done;

    startCounting(progress);
    Surface measure(m_fonts);
    int page = 0;
    bool ok = true;
    for (int d = 0; d < kDocumentCount && ok; ++d) {
        if (!m_selection.DocumentSelected[d]) continue;
        switch (d) {
            case doc::Quantities:
            case doc::Costs:
                ok = CalculateQuantityPages(page, d, measure);
                break;
            case doc::Card:
            case doc::ChargeCard:
                ok = CalculateNormalPages(page, d, 1);
                m_rowsDone += 1;
                break;
            case doc::PlanDescription:
            case doc::CodingPlan:
            case doc::QualityPlan:
                ok = CalculateTextPages(
                    page, d, static_cast<int>(std::lround(m_page.BodyHeight / m_page.LineHeight11)));
                break;
            default:
                ok = CalculateActivePages(page, d);
                break;
        }
    }
    if (ok && m_comparison)
        ok = CalculateListViewPages(
            page, doc::Comparison, ComparisonRowCount(*m_comparison),
            [this](int r) { return ComparisonRowHeight(*this, r); }, [](int) { return RowKind::Entry; }, 0,
            {});
    m_progress = nullptr;
    if (!ok) {
        m_pages.clear();
        if (m_cancelled) return PageCountResult::Cancelled;
        inform(kTooManyPages);
        return PageCountResult::TooManyPages;
    }
    m_selection.PaginationStale = false;
    return PageCountResult::Done;
}

void PrintRun::PrintPage(Surface& surface, int p) {
    if (p < 1 || p > TotalPages()) return;
    switch (entry(p).document) {
        case doc::Quantities:
            PrintQuantity(*this, surface, p);
            break;
        case doc::Costs:
            PrintCosts(*this, surface, p);
            break;
        case doc::PlanDescription:
        case doc::CodingPlan:
        case doc::QualityPlan:
            PrintTextPage(*this, surface, p);
            break;
        case doc::Card:
            PrintCard(*this, surface, p);
            break;
        case doc::ChargeCard:
            PrintCharge(*this, surface, p);
            break;
        case doc::Comparison:
            PrintComparison(*this, surface, p);
            break;
        default:
            PrintQuality(*this, surface, p);
            break;
    }
    surface.flush();
}

OutputResult PrintRun::PrintAllDocuments(QPagedPaintDevice& device, const Progress& progress) {
    const OutputResult ready = PaginateFor(device, progress);
    return ready == OutputResult::Printed ? PrintPages(device, 1, TotalPages(), progress) : ready;
}

OutputResult PrintRun::PaginateFor(QPagedPaintDevice& device, const Progress& progress) {
    const DeviceMetrics metrics = MetricsOf(device);
    if (!sameMetrics(metrics, m_device)) m_selection.PaginationStale = true;
    m_device = metrics;
    // Callers that show what is going on paginate first; here pagination reports like output.
    switch (PageCount(progress)) {
        case PageCountResult::Done:
            break;
        case PageCountResult::Cancelled:
            return OutputResult::Cancelled;
        default:
            return OutputResult::NothingToPrint;
    }
    return TotalPages() == 0 ? OutputResult::NothingToPrint : OutputResult::Printed;
}

OutputResult PrintRun::PrintPages(QPagedPaintDevice& device, int first, int last, const Progress& progress) {
    const DeviceMetrics metrics = MetricsOf(device);
    QPainter painter;
    if (!painter.begin(&device)) return OutputResult::DeviceFailed;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    Surface surface(m_fonts, painter, metrics.dpiX, metrics.dpiY, QPointF(0, 0), AdjustLineWidth(metrics));
    const int total = TotalPages();
    for (int p = first; p <= last; ++p) {
        if (p > first) device.newPage();
        PrintPage(surface, p);
        if (progress && !progress(p, static_cast<double>(p) / total)) {
            painter.end();
            return OutputResult::Cancelled;
        }
    }
    painter.end();
    return OutputResult::Printed;
}

void PrintRun::PrintPreviewPage(QPainter& painter, QPointF paper, int p) {
    const double px = 1440.0 / kPreviewDpi;
    const QPointF origin =
        paper + QPointF(std::round((m_page.PageWidth - m_page.PrintableWidth) / 2.0) / px,
                        std::round((m_page.PageHeight - m_page.PrintableHeight) / 2.0) / px);
    Surface surface(m_fonts, painter, kPreviewDpi, kPreviewDpi, origin, 1);
    PrintPage(surface, p);
}

QImage PrintRun::PreviewImage(int p) {
    const double px = 1440.0 / kPreviewDpi;
    QImage image(std::max(1, static_cast<int>(std::ceil(m_page.PageWidth / px))),
                 std::max(1, static_cast<int>(std::ceil(m_page.PageHeight / px))), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    PrintPreviewPage(painter, QPointF(0, 0), p);
    painter.end();
    return image;
}

} // namespace print
