// The quantity list (document 0) and the cost estimate with its summaries (document 1).
#include "calc/NumberText.h"
#include "calc/QualityIndex.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/Columns.h"
#include "print/PrintRun.h"
#include "print/Reports.h"

#include <algorithm>

namespace print {

namespace {

using namespace lists::quantityCol;

// Room between a column's text and the next column.
constexpr double kGap = 120;
// Room between two values of a row.
constexpr double kCellGap = 120;

// The description column starts after the widest littera, so that a long littera never runs
// into it.
double descriptionX(PrintRun& run, double fromSpec) {
    const PageModel& m = run.page();
    return std::max(fromSpec, m.OriginX + (run.quantityLitteraWidth() + kGap) * m.ScaleX);
}

struct Layout {
    double descriptionX = 0;
    double descriptionWidth = 0;
    double remarksWidth = 0; // 0: no remarks column
};

Layout layoutOf(PrintRun& run, Surface& s, int document) {
    const PageModel& m = run.page();
    Layout l;
    if (document == doc::Quantities) {
        const QuantityColumns c = quantityColumns(m);
        l.descriptionX = descriptionX(run, c.workPhase);
        l.descriptionWidth = c.part - l.descriptionX - kGap * m.ScaleX;
        l.remarksWidth = m.right() - c.remarks;
    } else {
        const CostColumns c = costColumns(m);
        l.descriptionX = descriptionX(run, c.description);
        s.setFont(run.font(11, false, true));
        const double headerLeft = c.quantity - s.textWidth(QStringLiteral("Määrä"));
        l.descriptionWidth = headerLeft - l.descriptionX - kGap * m.ScaleX;
    }
    return l;
}

const lists::ListModel* quantitiesOf(const PrintRun& run) {
    return run.source().quantities;
}

// The lines of a row: its description and, in the quantity list, its remarks.
struct RowLines {
    QStringList description;
    QStringList remarks;
    int count() const { return std::max<int>(1, std::max(description.size(), remarks.size())); }
};

RowLines rowLines(PrintRun& run, const Layout& l, int row) {
    const lists::ListModel& list = *quantitiesOf(run);
    RowLines lines;
    if (lists::BlankListItem(list, row).blank) return lines;
    lines.description = run.wrap(list.cell(row, kWorkPhase).toString(), 11, l.descriptionWidth);
    if (l.remarksWidth > 0) lines.remarks = run.wrap(list.cell(row, kRemarks).toString(), 11, l.remarksWidth);
    return lines;
}

void headerRow(PrintRun& run, Surface& s, int document) {
    const PageModel& m = run.page();
    const double y = m.OriginY + kBodyTop * m.ScaleY;
    s.setFont(run.font(11, false, true));
    const Layout l = layoutOf(run, s, document);
    s.setFont(run.font(11, false, true));
    if (document == doc::Quantities) {
        const QuantityColumns c = quantityColumns(m);
        s.text(c.littera, y, QStringLiteral("Littera"));
        s.text(l.descriptionX, y, QStringLiteral("Työvaihe"));
        s.text(c.part, y, QStringLiteral("Osa"));
        s.text(c.unit, y, QStringLiteral("Yks"));
        s.text(c.quantity, y, QStringLiteral("Määrä"));
        s.text(c.remarks, y, QStringLiteral("Huomautukset"));
    } else {
        const CostColumns c = costColumns(m);
        s.text(c.littera, y, QStringLiteral("Littera"));
        s.text(l.descriptionX, y, QStringLiteral("Kustanuksen laatu"));
        s.textRight(c.quantity, y, QStringLiteral("Määrä"));
        s.text(c.unit, y, QStringLiteral("Yks"));
        s.text(c.unitPrice - 0.65 * s.textWidth(QStringLiteral("Hinta/yks.")), y,
               QStringLiteral("Yks hinta"));
        s.textRight(c.cost, y, QStringLiteral("Kustannus"));
        s.textRight(c.sum, y, QStringLiteral("Summa"));
    }
}

// Draws a row from y; lines that would pass the body's end are cut.
void drawRow(PrintRun& run, Surface& s, const Layout& l, int document, int row, double y) {
    const lists::ListModel& list = *quantitiesOf(run);
    const PageModel& m = run.page();
    // A row with any value prints, its description line empty when it has none.
    if (lists::BlankListItem(list, row).blank) return;
    const RowLines lines = rowLines(run, l, row);
    const double lh = m.LineHeight11;
    const double limit = m.bodyLimit();
    s.setFont(run.font(11));
    auto column = [&](double x, const QStringList& text) {
        for (int i = 0; i < text.size(); ++i) {
            const double lineY = y + i * lh;
            if (i > 0 && lineY + lh > limit) break;
            s.text(x, lineY, text[i]);
        }
    };
    column(l.descriptionX, lines.description);
    // Every value stays within its cell: between its column and the next one, and right of the
    // description's first line.
    const double gap = kCellGap * m.ScaleX;
    const QString littera = list.cell(row, kLittera).trimmed().toString();
    const QString quantity = DecimalComma(list.cell(row, kQuantity).toString().trimmed());
    const QString unit = list.cell(row, kUnit).trimmed().toString();
    auto cell = [&](double left, double right, const QString& text, CellAlign align) {
        CellText(run, s, left, right, y, text, 11, false, align);
    };
    cell(m.OriginX, l.descriptionX - gap, littera, CellAlign::Left);
    if (document == doc::Quantities) {
        const QuantityColumns c = quantityColumns(m);
        cell(c.part, c.unit - gap, list.cell(row, kPart).toString(), CellAlign::Left);
        cell(c.unit, c.quantity - gap, unit, CellAlign::Left);
        // A quantity may use the remarks' room when the row has none.
        cell(c.quantity, lines.remarks.isEmpty() ? m.right() : c.remarks - gap, quantity, CellAlign::Left);
        column(c.remarks, lines.remarks);
        return;
    }
    const CostColumns c = costColumns(m);
    const QStringView quantityText = list.cell(row, kQuantity);
    const QStringView unitPriceText = list.cell(row, kUnitPrice);
    s.setFont(run.font(11));
    const double descriptionEnd = l.descriptionX + s.textWidth(lines.description.value(0).trimmed());
    cell(std::max(descriptionEnd, l.descriptionX) + gap, c.quantity, quantity, CellAlign::Right);
    // The unit and the unit price share the room from the unit's column to the price's edge; when
    // they do not fit side by side, each takes its share.
    const QString unitPrice = DecimalComma(unitPriceText.trimmed().toString());
    const double unitWidth = s.textWidth(unit);
    const double priceWidth = s.textWidth(unitPrice);
    const double room = c.unitPrice - c.unit - gap;
    const double unitEnd = unitWidth + priceWidth <= room
                               ? c.unitPrice - priceWidth - gap
                               : c.unit + room * unitWidth / std::max(1.0, unitWidth + priceWidth);
    cell(c.unit, unitEnd, unit, CellAlign::Left);
    cell(unitEnd + gap, c.unitPrice, unitPrice, CellAlign::Right);
    if (!lists::BlankString(quantityText) && !lists::BlankString(unitPriceText)) {
        const float amount =
            static_cast<float>(calc::CustomVal(quantityText) * calc::CustomVal(unitPriceText));
        cell(c.unitPrice + gap, c.cost, calc::MoneyS(amount, 2), CellAlign::Right);
    }
    cell(c.cost + gap, c.sum, list.rowTag(row), CellAlign::Right);
}

void listPage(PrintRun& run, Surface& s, int p) {
    const PageEntry& e = run.entry(p);
    const QString title = DocumentTitle(e.document, QString());
    if (!PrintFrontPageOrHeader(run, s, p, title)) return;
    headerRow(run, s, e.document);
    const Layout l = layoutOf(run, s, e.document);
    const int rows = quantitiesOf(run) ? quantitiesOf(run)->rows() : 0;
    double y = ListBodyTop(run);
    for (int r = e.firstRow; r <= std::min(e.lastRow, rows); ++r) {
        drawRow(run, s, l, e.document, r, y);
        y += rowLines(run, l, r).count() * run.page().LineHeight11;
    }
    if (e.document == doc::Costs && e.lastRow > rows) {
        // The summaries are the rows after the list: one block, or each block on its own.
        if (run.costSummaryBlocks() == 1 || e.firstRow <= rows + 1) PrintCostSummary1(run, s, y);
        if (run.costSummaryBlocks() == 1 || e.lastRow >= rows + 2) PrintCostSummary2(run, s, y);
    }
    PrintBottomHeader(run, s, Footer::ProgramName);
}

QString indexText(const QString& index) {
    return DecimalComma(index.trimmed());
}

// One summary line: a label at the description column (a littera before it when given) and an
// amount with the money unit, right-aligned at the sum column, or four spaces in from it.
void summaryLine(PrintRun& run, Surface& s, double& y, const QString& label, float amount, bool bold,
                 bool indent = false, const QString& littera = QString()) {
    const PageModel& m = run.page();
    const CostColumns c = costColumns(m);
    s.setFont(run.font(11, bold));
    if (!littera.isEmpty()) s.text(c.littera, y, littera);
    s.text(descriptionX(run, c.description), y, label);
    const QString money = calc::MoneyS(amount, 2);
    if (!money.isEmpty()) {
        const QString unit = run.source().basicCombo(basic::MoneyUnit).trimmed();
        QString text = unit.isEmpty() ? money : money + QLatin1Char(' ') + unit;
        if (indent) text += QStringLiteral("    ");
        s.textRight(c.sum, y, text);
    }
    y += m.LineHeight11;
}

void heading(PrintRun& run, Surface& s, double& y, const QString& text, bool bold) {
    const CostColumns c = costColumns(run.page());
    s.setFont(run.font(11, bold));
    s.text(descriptionX(run, c.description), y, text);
    y += run.page().LineHeight11;
}

} // namespace

QString DecimalComma(const QString& number) {
    // Only a point that stands before a digit and after a digit (or a number's start) is a
    // decimal point: a range such as 4...7 or an ellipsis keeps its points.
    QString out = number;
    for (qsizetype i = 0; i < out.size(); ++i) {
        if (out[i] != u'.' || i + 1 >= out.size() || !out[i + 1].isDigit()) continue;
        const QChar before = i > 0 ? out[i - 1] : QChar(u' ');
        if (before.isDigit() || before == u' ' || before == u'-' || before == u'+') out[i] = u',';
    }
    return out;
}

QuantityColumns quantityColumns(const PageModel& m) {
    const double r = m.right();
    const double sx = m.ScaleX;
    if (m.Landscape)
        return {m.OriginX, m.OriginX + 1100 * sx, r - 7000 * sx, r - 6000 * sx, r - 5000 * sx, r - 4000 * sx};
    return {m.OriginX, m.OriginX + 700 * sx, r - 5000 * sx, r - 4400 * sx, r - 3600 * sx, r - 2800 * sx};
}

CostColumns costColumns(const PageModel& m) {
    const double r = m.right();
    const double sx = m.ScaleX;
    if (m.Landscape)
        return {m.OriginX, m.OriginX + 1000 * sx, r - 5400 * sx, r - 5100 * sx, r - 3600 * sx, r - 1800 * sx,
                r};
    return {m.OriginX, m.OriginX + 800 * sx, r - 4400 * sx, r - 4200 * sx, r - 3000 * sx, r - 1500 * sx, r};
}

double ListBodyTop(const PrintRun& run) {
    const PageModel& m = run.page();
    return m.OriginY + kBodyTop * m.ScaleY + m.LineHeight11 + 40 * m.ScaleY;
}

double QuantityRowHeight(PrintRun& run, Surface& s, int document, int row) {
    const Layout l = layoutOf(run, s, document);
    return rowLines(run, l, row).count() * run.page().LineHeight11;
}

RowKind QuantityRowKind(const lists::ListModel& list, int row) {
    if (lists::BlankListItem(list, row).blank) return RowKind::Blank;
    if (calc::ListViewCaption(list, row, kWorkPhase).level > 0) return RowKind::Caption;
    return RowKind::Entry;
}

int CostSummaryLines(const PrintRun& run, int block) {
    // An empty list never closes the bridge block; its summaries still print, without amounts.
    if (block == 1) return run.costs().bridgeSummaryLines > 0 ? run.costs().bridgeSummaryLines : 7;
    return run.costs().roadSummaryLines > 0 ? run.costs().roadSummaryLines : 25;
}

void PrintQuantity(PrintRun& run, Surface& s, int p) {
    listPage(run, s, p);
}

void PrintCosts(PrintRun& run, Surface& s, int p) {
    listPage(run, s, p);
}

void PrintCostSummary1(PrintRun& run, Surface& s, double& y) {
    const calc::CostRecord& r = run.costs();
    const calc::CostInputs in = run.source().costInputs();
    const QString unitIndex = indexText(in.unitPriceIndex);
    const QString costIndex = indexText(in.costIndex);
    y += run.page().LineHeight11;
    summaryLine(run, s, y, QStringLiteral("Rakennuskustannukset (i = ") + unitIndex + QLatin1Char(')'),
                r.bridgeSum, true);
    summaryLine(run, s, y,
                QStringLiteral("Työmaan yhteiskustannukset ") + indexText(in.generalPercent) +
                    QLatin1Char('%'),
                r.bridgeGeneral, true, false, QStringLiteral("600"));
    summaryLine(run, s, y, QStringLiteral("Sillan kustannukset (i = ") + unitIndex + QLatin1Char(')'),
                r.bridgeTotal, true);
    summaryLine(run, s, y, QStringLiteral("Kustannustason noususta aiheutuva muutos"),
                r.bridgeConverted - r.bridgeTotal, true);
    summaryLine(run, s, y, QStringLiteral("Pyöristys"), r.bridgeRounded - r.bridgeConverted, true);
    summaryLine(run, s, y, QStringLiteral("Sillan kustannukset (i = ") + costIndex + QLatin1Char(')'),
                r.bridgeRounded, true, true);
}

void PrintCostSummary2(PrintRun& run, Surface& s, double& y) {
    const calc::CostRecord& r = run.costs();
    const calc::CostInputs in = run.source().costInputs();
    const QString unitIndex = indexText(in.unitPriceIndex);
    const QString costIndex = indexText(in.costIndex);
    const double lh = run.page().LineHeight11;
    const float vat = static_cast<float>(calc::CustomVal(in.vatPercent));
    const float whole = calc::CustomRound(r.bridgeRounded + r.roadRounded);
    y += lh;
    summaryLine(run, s, y,
                QStringLiteral("Tietöiden rakennuskustannukset (i = ") + unitIndex + QLatin1Char(')'),
                r.roadSum, true);
    summaryLine(run, s, y,
                QStringLiteral("Työmaan yhteiskustannukset ") + indexText(in.generalPercent) +
                    QLatin1Char('%'),
                r.roadGeneral, true, false, QStringLiteral("600"));
    summaryLine(run, s, y, QStringLiteral("Tietyöt siltapaikalla (i = ") + unitIndex + QLatin1Char(')'),
                r.roadTotal, true);
    summaryLine(run, s, y, QStringLiteral("Kustannustason noususta aiheutuva muutos"),
                r.roadConverted - r.roadTotal, true);
    summaryLine(run, s, y, QStringLiteral("Pyöristys"), r.roadRounded - r.roadConverted, true);
    summaryLine(run, s, y, QStringLiteral("Tietyöt siltapaikalla (i = ") + costIndex + QLatin1Char(')'),
                r.roadRounded, true, true);
    summaryLine(run, s, y, QStringLiteral("Sillan kokonaiskustannus (i = ") + costIndex + QLatin1Char(')'),
                whole, true, true);
    y += lh;
    heading(run, s, y, QStringLiteral("YHTEENVETO JA ARVONLISÄVEROA KOSKEVA ERITTELY"), false);
    const struct {
        const char* title;
        float amount;
    } groups[] = {{"Sillan kustannukset", r.bridgeRounded},
                  {"Tietyöt siltapaikalla", r.roadRounded},
                  {"Sillan ja siltapaikan tietöiden kustannukset", whole}};
    for (const auto& g : groups) {
        y += lh;
        heading(run, s, y, QString::fromUtf8(g.title), true);
        summaryLine(run, s, y, QStringLiteral("- ilman arvonlisäveroa"), g.amount, false);
        summaryLine(run, s, y, QStringLiteral("- arvonlisävero"), g.amount * vat / 100, false);
    }
    y += lh;
    heading(run, s, y, QStringLiteral("Kustannukset eivät sisällä rakennuttamiskustannuksia"), false);
    // An overflowed figure prints as "#####"; the page says where the overflow began. The
    // reserved summary lines leave room for these two.
    if (r.nonFiniteRow != 0) {
        QString message = calc::NonFiniteMessage(r);
        message[0] = message[0].toUpper();
        y += lh;
        heading(run, s, y, message, true);
    }
}

} // namespace print
