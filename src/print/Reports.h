#pragma once
// The layouts of the printed documents. Each draws one page of the run on a surface, reading
// the page table and the project through the run; the pagination pass measures rows with the
// same code on a surface that draws nothing.
#include "print/Surface.h"

#include <QString>
#include <vector>

namespace lists {
class ListModel;
}

namespace platform {
class Picture;
}

namespace print {

class PrintRun;
class Surface;
struct PageModel;

// The smallest print a value shrinks to before it wraps or is cut.
inline constexpr double kSmallestValueSize = 7;
enum class CellAlign { Left, Right, Centre };
// Draws a value in the printing font at `size` points into the cell from `left` to `right`
// (target twips) on the line whose top is y: shrunk, and cut with "…" at the smallest print,
// so that it stays within the cell; its baseline stays that of the line.
void CellText(PrintRun& run, Surface& s, double left, double right, double y, const QString& text,
              double size, bool bold, CellAlign align);
// The same in any font, given at scale 1 with the target's scales (a card's own font and scale).
void CellText(PrintRun& run, Surface& s, const Font& font, double sx, double sy, double left, double right,
              double y, const QString& text, CellAlign align);
// How far a text shrunk from `size` to `fittedSize` points moves down to keep its baseline.
double CellBaselineDrop(PrintRun& run, double size, double fittedSize, bool bold);

// Page header and footer.
// The footer's rule stands this many twips (scaled) above the bottom of the usable area; the
// body of a page after the first starts this many below its top, under the header.
inline constexpr double kFooterRule = 360;
inline constexpr double kBodyTop = 700;
void PrintTopHeader(PrintRun& run, Surface& s, int p, const QString& title);
// The first page of a document is its front page; any other gets the top header. True when the
// page goes on with the document's body.
bool PrintFrontPageOrHeader(PrintRun& run, Surface& s, int p, const QString& title);
// What the footer holds under its line: the program's name, or the legends of the quality
// documents' abbreviations with the program's name on the right.
enum class Footer { ProgramName, QualityLegend };
void PrintBottomHeader(PrintRun& run, Surface& s, Footer kind);

// Who drew up and checked a document, and for whom: the parties of the front page and the
// "Laati" line of the header.
struct Parties {
    QString firstRole; // "SUUNNITTELIJA" or "URAKOITSIJA"
    QString firstCompany;
    QString secondRole; // "TILAAJA" or empty
    QString secondCompany;
    QString drewUp; // "Laati" name and date
    QString drewUpDate;
    QString checked; // "Tarkasti" name and date
    QString checkedDate;
};
Parties PartiesOf(const PrintRun& run, int document);

// Draws a picture scaled into a box of w x h twips at (x, y), keeping its proportions; with
// `centred` the picture is centred on (x, y). Nothing for an empty picture; a picture that
// cannot be drawn is reported.
void PrintImage(PrintRun& run, Surface& s, const platform::Picture& picture, double x, double y, double w,
                double h, bool centred);
inline const QString kBadPicture = QStringLiteral("Virheellinen kuvatiedosto.");

// The front page of a list, quality or text document.
void PrintFrontPage(PrintRun& run, Surface& s, int p, const QString& title);

// The quantity list (document 0) and the cost estimate (document 1).
struct QuantityColumns {
    double littera, workPhase, part, unit, quantity, remarks; // left edges
};
QuantityColumns quantityColumns(const PageModel& page);
struct CostColumns {
    double littera, description; // left edges
    double quantity;             // right edge
    double unit;                 // left edge
    double unitPrice;            // right edge of the values
    double cost, sum;            // right edges
};
CostColumns costColumns(const PageModel& page);
// Where the first row of a list page starts: below the column headers.
double ListBodyTop(const PrintRun& run);
// The height of list row `row` of document 0 or 1.
double QuantityRowHeight(PrintRun& run, Surface& s, int document, int row);
// What a row of the quantity list is to pagination: a caption (a work phase, or the road works
// heading) keeps the first entry under it on its page, across blank rows.
enum class RowKind { Entry, Caption, Blank };
RowKind QuantityRowKind(const lists::ListModel& list, int row);
// The lines the two summary blocks of the cost estimate take.
int CostSummaryLines(const PrintRun& run, int block);
void PrintQuantity(PrintRun& run, Surface& s, int p);
void PrintCosts(PrintRun& run, Surface& s, int p);
void PrintCostSummary1(PrintRun& run, Surface& s, double& y);
void PrintCostSummary2(PrintRun& run, Surface& s, double& y);

// The quality requirement documents (2, 7 to 12). Their rows: work-phase captions and
// requirements, in list order, each caption before the first requirement shown under it.
struct QualityItem {
    int row = 0;
    bool caption = false;
};
// Whether a requirement row belongs to a document: type 1 only in document 2; the work phase
// (`phases`: the caption line of every row, as WorkPhaseLines gives them) when one is chosen;
// "E" only in document 11; document 12 leaves out the advisory ones (type blank or 3) that
// have no report text.
bool PrintBrowseStep(const lists::ListModel& list, int row, int document, const QString& workPhase,
                     const std::vector<QString>& phases);
// The last row of the requirement on `row`: the continuation rows after it (no littera, no
// number) go on its texts.
int RequirementEnd(const lists::ListModel& list, int row);
std::vector<QualityItem> QualityItems(const lists::ListModel& list, int document, const QString& workPhase);
// Where the body of a quality page starts, and how tall an item is when it starts at `top` of
// its page: a text cut at the page's foot counts as far as it is drawn, and sets `cut`.
double QualityBodyTop(const PrintRun& run);
double QualityItemHeight(PrintRun& run, Surface& s, int document, const QualityItem& item, double top,
                         bool* cut = nullptr);
// The derived cells of the quality report block: "Täyttää vaat." and "TotPa".
struct ReportCells {
    QString fulfilled;
    QString totPa;
};
ReportCells ReportCellsOf(const lists::ListModel& list, int row);
void PrintQuality(PrintRun& run, Surface& s, int p);
// The summary pages of document 12: how many work-phase rows the first one and each further
// one hold.
struct SummaryLayout {
    int firstRows = 1;
    int laterRows = 1;
};
SummaryLayout QualitySummaryLayout(const PrintRun& run);
void PrintQualitySummary(PrintRun& run, Surface& s, int p);

// The text documents 3, 6 and 8: their buffer (0..2), or -1 for any other document.
int TextBufferOf(int document);
void PrintTextPage(PrintRun& run, Surface& s, int p);

// The cards: placed on the printable area, scaled down when they do not fit.
struct CardPlacement {
    double x0 = 0, y0 = 0; // the card's origin in target twips
    double sx = 1, sy = 1; // target twips per card twip
    double x(int cardX) const { return x0 + sx * cardX; }
    double y(int cardY) const { return y0 + sy * cardY; }
};
CardPlacement PlaceCard(const PageModel& page, int width, int height);
void PrintCard(PrintRun& run, Surface& s, int p);
void PrintCharge(PrintRun& run, Surface& s, int p);

// Numbers of the list as printed: a decimal comma for a number's point ("12.5" is 12,5; a range
// "35...50" stays as it is).
QString DecimalComma(const QString& number);

} // namespace print
