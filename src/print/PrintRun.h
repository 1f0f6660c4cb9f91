#pragma once
// A print run: the documents chosen from one project, paginated into one numbered run of pages
// and drawn page by page on a printer, a PDF file or the preview.
//
// Pagination (PageCount) is a pass of its own that fills the page table; drawing a page
// (PrintPage) reads only the page table and the project, so any page can be drawn at any time,
// in any order, on any surface.
#include "calc/CostEstimate.h"
#include "calc/QualityIndex.h"
#include "print/PageModel.h"
#include "print/PrintSource.h"
#include "print/Reports.h"
#include "print/Surface.h"

#include <QDate>
#include <QHash>
#include <QSet>
#include <QString>
#include <array>
#include <memory>
#include <functional>
#include <vector>

class QImage;
class QPagedPaintDevice;
class QPainter;

namespace calc {
struct ProjectComparison;
}

namespace print {

inline constexpr int kDocumentCount = 13;
// The selection's document slots: room for more documents than the run prints today; only the
// first kDocumentCount are ever read.
inline constexpr int kDocumentSlots = 21;
// The size of the page table.
inline constexpr int kMaxPages = 10000;
// The document index of the quality summary pages of document 12.
inline constexpr int kQualitySummary = -1;

// Documents: 0 quantity list, 1 cost estimate, 2 bridge-specific requirements, 3 construction
// plan description, 4 characteristics card, 5 charge chamber card, 6 coding plan, 7 all
// requirements, 8 contract quality plan, 9 quality plans, 10 inspection and measurement
// reports, 11 deviation reports, 12 the bridge's quality report.
namespace doc {
inline constexpr int Quantities = 0;
inline constexpr int Costs = 1;
inline constexpr int BridgeRequirements = 2;
inline constexpr int PlanDescription = 3;
inline constexpr int Card = 4;
inline constexpr int ChargeCard = 5;
inline constexpr int CodingPlan = 6;
inline constexpr int AllRequirements = 7;
inline constexpr int QualityPlan = 8;
inline constexpr int QualityPlans = 9;
inline constexpr int Inspections = 10;
inline constexpr int Deviations = 11;
inline constexpr int QualityReport = 12;
// The comparison of two project versions ("Muutosvertailu"): not one of the selection's
// documents; a run given a comparison prints it after them.
inline constexpr int Comparison = 13;
} // namespace doc

// The choice of documents, kept for the life of the program.
struct Selection {
    std::array<bool, kDocumentSlots> DocumentSelected{};
    // For documents 7, 9, 10 and 11: the work phase the document is limited to (its caption
    // line); empty for all work phases.
    std::array<QString, kDocumentCount> WorkPhaseFilter;
    // The page table no longer matches the selection, the project or the printer.
    bool PaginationStale = true;
};

// One page of the run.
struct PageEntry {
    int document = 0; // 0..12, or kQualitySummary
    int number = 0;   // the page's number in its document; 1 is the front page
    int count = 0;    // the pages of the document, front page included
    int firstRow = 0; // the list rows (or text lines) the page shows; 0 and 0 on a front page
    int lastRow = 0;
};

struct PrintSettings {
    QString PrinterFont = QStringLiteral("Arial");
    bool PrintLogo = true;
    platform::Picture logo;
    Margins margins;
    QDate printedOn = QDate::currentDate();
    QString appPath; // where the card layout files are, ending in "/"
};

// Called after each page; `done` runs from 0 to 1. Returning false cancels the pass.
using Progress = std::function<bool(int page, double done)>;

enum class PageCountResult { Done, Cancelled, TooManyPages, AreaDoesNotFit };
enum class OutputResult { Printed, Cancelled, NothingToPrint, DeviceFailed };
// A value that does not fit its cell even in the smallest print is cut where it ends with "…".
inline const QString kValueCut =
    QStringLiteral("Arvo on liian pitkä sarakkeeseensa. Tulosteessa se on katkaistu merkkiin \"…\".");

// A value fitted into its cell: the size it prints at (points at scale 1) and its lines.
struct FittedText {
    double size = 11;
    QStringList lines;
};

inline const QString kTooManyPages = QStringLiteral(
    "Tulosteeseen tulisi yli 10000 sivua, eikä sitä voi sivuttaa. Valitse vähemmän asiakirjoja tai "
    "rajaa laatuasiakirjat yhteen työvaiheeseen.");

class PrintRun {
public:
    PrintRun(const PrintSource& source, Selection& selection, PrintSettings settings);
    ~PrintRun();
    PrintRun(const PrintRun&) = delete;
    PrintRun& operator=(const PrintRun&) = delete;
    // A run that draws the pages this paginated run laid out, with fonts and caches of its own,
    // so that part of the pages can be drawn on another thread: drawing only reads the source,
    // the selection and the page table. Its messages are kept in messages() for the caller.
    std::unique_ptr<PrintRun> drawingCopy() const;

    // Messages for the user (a damaged picture, a word too long for its line, ...), each shown
    // once in a run. Without a handler they are kept in messages().
    void setInform(std::function<void(const QString&)> inform) { m_inform = std::move(inform); }
    void inform(const QString& message);
    const QStringList& messages() const { return m_messages; }

    // The device whose paper the run is laid out for.
    void setDevice(const DeviceMetrics& device) { m_device = device; }
    const DeviceMetrics& device() const { return m_device; }

    // Fills the page model for the device at a scale, with the line heights. False, after the
    // message, when the usable area does not fit on the page.
    bool PrintArea(float scale);

    // The pagination pass at scale 1, when the pagination is stale. Leaves the page model at
    // scale 1.
    PageCountResult PageCount(const Progress& progress = {});
    int TotalPages() const { return static_cast<int>(m_pages.size()); }
    const PageEntry& entry(int p) const { return m_pages[p - 1]; }
    const std::vector<PageEntry>& pages() const { return m_pages; }

    // Draws page p (1 .. TotalPages) on a surface with the current page model.
    void PrintPage(Surface& surface, int p);

    // The output pass on a printer or a PDF writer, at scale 1: paginates when stale (or when the
    // device's paper differs from the run's), then draws every page, a new sheet before each but
    // the first.
    OutputResult PrintAllDocuments(QPagedPaintDevice& device, const Progress& progress = {});
    // PrintAllDocuments in two steps: the pagination for the device (Printed when there are
    // pages to draw), then the pages first .. last drawn at scale 1, a new sheet before each but
    // the first; `progress` hears of each page drawn.
    OutputResult PaginateFor(QPagedPaintDevice& device, const Progress& progress = {});
    OutputResult PrintPages(QPagedPaintDevice& device, int first, int last, const Progress& progress = {});

    // The preview: page p at the current scale, the paper's top-left corner at `paper` in the
    // painter's pixels (15 twips to a pixel at scale 1).
    void PrintPreviewPage(QPainter& painter, QPointF paper, int p);
    // The whole paper of page p at the current scale, as the preview shows it.
    QImage PreviewImage(int p);

    // What the reports read.
    const PrintSource& source() const { return m_source; }
    const Selection& selection() const { return m_selection; }
    const PrintSettings& settings() const { return m_settings; }
    const PageModel& page() const { return m_page; }
    FontBook& fonts() { return m_fonts; }
    const calc::CostRecord& costs() const { return m_costs; }
    const calc::QualityRecord& quality() const { return m_quality; }
    // The comparison of two versions to print after the selected documents; it must outlive
    // the run. The source is then the newer version.
    void setComparison(const calc::ProjectComparison* comparison);
    const calc::ProjectComparison* comparison() const { return m_comparison; }

    // The width at scale 1 of the widest littera of the quantity list in the body font, measured
    // once per run: the description column starts after it.
    double quantityLitteraWidth();
    // How the cost estimate's two summaries were paginated: 1 as one block, 2 each on its own.
    int costSummaryBlocks() const { return m_costSummaryBlocks; }
    // The text of document 3, 6 or 8 (buffer 0, 1 or 2) wrapped to the usable width, each line
    // ending in CR LF; filled by the pagination pass.
    const QString& textBuffer(int n) const;
    // The rows a quality document shows, in order (the work-phase filter of the selection
    // applied); found once per pagination.
    const std::vector<QualityItem>& qualityItems(int document);

    // The printing font at `size` points times the scale.
    Font font(double size, bool bold = false, bool italic = false) const;
    // The lines of a text wrapped to a width (target twips) at `size` points of the printing
    // font, measured at scale 1. A word too long for its line is reported. Kept for the run:
    // pagination wraps every cell, and each page wraps its header again.
    QStringList wrap(const QString& text, double size, double width);
    // A value in a cell `width` twips wide, in `font`, both at scale 1: at the font's size when
    // it fits, else at the largest half point down to `floor` that holds it on one line, else
    // wrapped at `floor` into at most `maxLines` lines, the last one cut and ended with "…" when
    // the text goes on (which is reported, once a run).
    FittedText fit(const QString& text, const Font& font, double width, double floor, int maxLines = 1);

private:
    bool addPage(int& page, int document, int number, int firstRow, int lastRow);
    void finishDocument(int firstPage, int lastPage);
    bool CalculateListViewPages(int& page, int document, int rowCount,
                                const std::function<double(int)>& rowHeight,
                                const std::function<RowKind(int)>& rowKind, int extraRows,
                                const std::function<double(int)>& extraHeight);
    bool CalculateNormalPages(int& page, int document, int count);
    bool CalculateTextPages(int& page, int document, int rowsPerPage);
    bool CalculateActivePages(int& page, int document);
    // The quantity list or the cost estimate, whose summaries follow its last row.
    bool CalculateQuantityPages(int& page, int document, Surface& measure);
    // Empties the page table and counts the rows that the progress goes through.
    void startCounting(const Progress& progress);
    bool progressed(int page);

    const PrintSource& m_source;
    std::unique_ptr<PrintSource> m_ownSource; // a drawing copy's source
    Selection& m_selection;
    const calc::ProjectComparison* m_comparison = nullptr;
    PrintSettings m_settings;
    FontBook m_fonts;
    DeviceMetrics m_device;
    PageModel m_page;
    std::vector<PageEntry> m_pages;
    calc::CostRecord m_costs;
    calc::QualityRecord m_quality;
    struct WrapKey {
        QString text;
        double size;
        double width;
        bool operator==(const WrapKey&) const = default;
        friend size_t qHash(const WrapKey& k, size_t seed = 0) noexcept {
            return qHashMulti(seed, k.text, k.size, k.width);
        }
    };
    struct Wrapped {
        QStringList lines;
        bool tooLong = false;
    };
    QHash<WrapKey, Wrapped> m_wrapped;
    std::function<void(const QString&)> m_inform;
    QStringList m_messages;
    QSet<QString> m_shown;
    // Pagination progress.
    double m_litteraWidth = -1;
    int m_costSummaryBlocks = 1;
    std::array<QString, 3> m_textBuffers;
    std::array<std::vector<QualityItem>, kDocumentCount> m_qualityItems;
    std::array<bool, kDocumentCount> m_qualityItemsFound{};
    Progress m_progress;
    double m_rowsDone = 0;
    double m_rowsTotal = 1;
    bool m_cancelled = false;
};

// The title of a document as its pages show it (the work phase of documents 7, 9, 10 and 11
// included). Cards have no title.
QString DocumentTitle(int document, const QString& workPhase);
// The caption of a document's box in the selection dialog, with its access key ("&1
// Määräluettelo"); for documents 7, 9, 10 and 11 limited to a work phase, the prefix of the
// box followed by the phase.
QString SelectionCaption(int document, const QString& workPhase = QString());
// The prefix that a chosen work phase follows in the caption of box 7, 9, 10 or 11; empty for
// the other boxes.
QString WorkPhasePrefix(int document);

} // namespace print
