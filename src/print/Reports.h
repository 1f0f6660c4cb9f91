#pragma once
// The layouts of the printed documents. Each draws one page of the run on a surface, reading
// the page table and the project through the run; the pagination pass measures rows with the
// same code on a surface that draws nothing.
#include <QString>

namespace platform {
class Picture;
}

namespace print {

class PrintRun;
class Surface;
struct PageModel;

// Page header and footer.
void PrintTopHeader(PrintRun& run, Surface& s, int p, const QString& title);
// Footer kinds: 0 the program's name, 1 the legends of the quality documents, other: the line.
void PrintBottomHeader(PrintRun& run, Surface& s, int kind);

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
// The lines the two summary blocks of the cost estimate take.
int CostSummaryLines(const PrintRun& run, int block);
void PrintQuantity(PrintRun& run, Surface& s, int p);
void PrintCosts(PrintRun& run, Surface& s, int p);
void PrintCostSummary1(PrintRun& run, Surface& s, double& y);
void PrintCostSummary2(PrintRun& run, Surface& s, double& y);

// Numbers of the list as printed: a decimal comma for any point.
QString DecimalComma(const QString& number);

} // namespace print
