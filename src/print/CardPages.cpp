// The characteristics card (document 4) and the charge chamber card (document 5): one page
// each, drawn from their layout files, with three pictures of the project.
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "print/CardLayout.h"
#include "print/PrintRun.h"
#include "print/Reports.h"
#include "print/TextLines.h"

#include <algorithm>
#include <cmath>

namespace print {

namespace {

// The picture boxes of the cards, in card twips: x, y, width, height.
struct Box {
    int x, y, w, h;
};
constexpr Box kCardLogo{200, 150, 2600, 700};
constexpr Box kCardSideView{200, 13150, 5800, 2300};
constexpr Box kCardCrossSection{6300, 13150, 4300, 2300};
constexpr Box kChargePlate{200, 150, 2600, 700};
constexpr Box kChargeSideView{200, 9450, 10400, 2900};
constexpr Box kChargeCrossSection{200, 12550, 10400, 2900};

// The characteristics card's slots that hold money amounts, and those per square metre.
bool moneySlot(int slot) {
    return (slot >= 23 && slot <= 26) || (slot >= 29 && slot <= 32);
}
bool perSquareMetreSlot(int slot) {
    return slot == 24 || slot == 30;
}

} // namespace

CardPlacement PlaceCard(const PageModel& m, int width, int height) {
    CardPlacement p;
    auto axis = [](double printable, double scale, int size, double& origin, double& s) {
        origin = std::max(0.0, std::round((printable - scale * size) / 2));
        s = scale;
        if (origin + scale * size > printable) {
            origin = 0;
            s = scale * printable / size;
        }
    };
    axis(m.PrintableWidth, m.ScaleX, width, p.x0, p.sx);
    axis(m.PrintableHeight, m.ScaleY, height, p.y0, p.sy);
    return p;
}

namespace {

void drawSlotText(Surface& s, double x, double y, int alignment, const QString& text) {
    switch (alignment / 2) {
        case 1:
            s.textRight(x, y, text);
            break;
        case 2:
            s.text(x - s.textWidth(text) / 2, y, text);
            break;
        default:
            s.text(x, y, text);
            break;
    }
}

// What stands on a card, in card twips: the extent of each text and field on its line, and the
// card's vertical lines, so that a field keeps within its cell.
struct Extent {
    double left, right, top, bottom;
};

// A single-line field's cell: from its anchor to the nearest thing on its line in the direction
// it runs (both ways when centred), or the card's edge.
std::pair<double, double> slotCell(const CardSlot& slot, double height, double cardWidth,
                                   const std::vector<Extent>& around, std::size_t self) {
    const double gap = 60;
    double left = 0, right = cardWidth;
    for (std::size_t k = 0; k < around.size(); ++k) {
        const Extent& e = around[k];
        if (k == self || e.bottom <= slot.y || e.top >= slot.y + height) continue;
        if (e.left > slot.x + 1) right = std::min(right, e.left);
        if (e.right < slot.x - 1) left = std::max(left, e.right);
    }
    left += gap;
    right -= gap;
    switch (slot.alignment / 2) {
        case 1:
            return {left, slot.x};
        case 2: {
            const double half = std::max(0.0, std::min(slot.x - left, right - slot.x));
            return {slot.x - half, slot.x + half};
        }
        default:
            return {slot.x, right};
    }
}

// Draws the card's fixed texts and lines; returns their extents in card twips: the texts, and
// the vertical lines.
std::vector<Extent> drawTextsAndLines(Surface& s, FontBook& fonts, const CardLayout& layout,
                                      const QString& fontName, const CardPlacement& p) {
    std::vector<Extent> around;
    for (const CardText& t : layout.texts) {
        s.setFont(Font{fontName, std::abs(t.size) * p.sy, t.size < 0, false});
        s.text(p.x0 + p.sx * t.x, p.y0 + p.sy * t.y, t.text);
        const Font f{fontName, static_cast<double>(std::abs(t.size)), t.size < 0, false};
        around.push_back({static_cast<double>(t.x), t.x + fonts.width(f, t.text), static_cast<double>(t.y),
                          t.y + fonts.height(f)});
    }
    for (const CardLine& l : layout.lines) {
        s.line(p.x0 + p.sx * l.x1, p.y0 + p.sy * l.y1, p.x0 + p.sx * l.x2, p.y0 + p.sy * l.y2,
               std::max(1, l.width));
        if (l.x1 == l.x2)
            around.push_back({static_cast<double>(l.x1), static_cast<double>(l.x1),
                              static_cast<double>(std::min(l.y1, l.y2)),
                              static_cast<double>(std::max(l.y1, l.y2))});
    }
    return around;
}

// The text of each field slot (money with the project's unit), its extent at its natural width
// added to `around`.
QStringList fieldTexts(PrintRun& run, const CardLayout& layout, const QStringList& fields, bool money,
                       const QString& fontName, std::vector<Extent>& around) {
    FontBook& fonts = run.fonts();
    const QString unit = run.source().basicCombo(basic::MoneyUnit).trimmed();
    QStringList texts;
    for (int i = 0; i < static_cast<int>(layout.fieldSlots.size()); ++i) {
        const CardSlot& slot = layout.fieldSlots[i];
        const int number = i + 1;
        QString text = fields.value(number);
        if (money && moneySlot(number) && !text.trimmed().isEmpty() && !unit.isEmpty()) {
            text += QLatin1Char(' ') + unit;
            if (perSquareMetreSlot(number)) text += QStringLiteral("/m2");
        }
        texts << text;
        const Font f{fontName, 11, slot.alignment % 2 == 1, false};
        const double w = text.contains(QLatin1Char('\n')) ? 0 : fonts.width(f, text.trimmed());
        const double left = slot.alignment / 2 == 1   ? slot.x - w
                            : slot.alignment / 2 == 2 ? slot.x - w / 2
                                                      : slot.x;
        around.push_back({left, left + w, static_cast<double>(slot.y), slot.y + fonts.height(f)});
    }
    return texts;
}

void drawLayout(PrintRun& run, Surface& s, const CardLayout& layout, const QStringList& fields, bool money,
                const CardPlacement& p) {
    const PageModel& m = run.page();
    const QString fontName = layout.font.trimmed().isEmpty() ? run.settings().PrinterFont : layout.font;
    FontBook& fonts = run.fonts();
    // The extents in card twips: fixed texts, fields at their natural width, vertical lines.
    std::vector<Extent> around = drawTextsAndLines(s, fonts, layout, fontName, p);
    const std::size_t firstSlot = around.size();
    const QStringList texts = fieldTexts(run, layout, fields, money, fontName, around);
    // The lines of a multi-line field follow at the line height of the card's scale.
    const double lh = m.ScaleY > 0 ? m.LineHeight11 * p.sy / m.ScaleY : m.LineHeight11;
    const double cardRight = p.x0 + p.sx * layout.width;
    for (int i = 0; i < static_cast<int>(layout.fieldSlots.size()); ++i) {
        const CardSlot& slot = layout.fieldSlots[i];
        const QString& text = texts[i];
        const Font f{fontName, 11, slot.alignment % 2 == 1, false};
        const double x = p.x0 + p.sx * slot.x;
        const double y = p.y0 + p.sy * slot.y;
        if (!text.contains(QLatin1Char('\n'))) {
            // A single-line field stays between its neighbours: shrunk, then cut with "…".
            const auto [left, right] = slotCell(slot, fonts.height(f), layout.width, around, firstSlot + i);
            const CellAlign align = slot.alignment / 2 == 1   ? CellAlign::Right
                                    : slot.alignment / 2 == 2 ? CellAlign::Centre
                                                              : CellAlign::Left;
            CellText(run, s, f, p.sx, p.sy, p.x0 + p.sx * left, p.x0 + p.sx * right, y, text, align);
            continue;
        }
        // A multi-line field: its own lines, wrapped to the card's right edge in the type they
        // are drawn in (the card's font, bold where the slot says so).
        const bool bold = slot.alignment % 2 == 1;
        s.setFont(Font{fontName, 11 * p.sy, bold, false});
        const double room =
            std::max(500.0 * p.sx, cardRight - x - 100 * p.sx) / (m.ScaleX > 0 ? m.ScaleX : 1.0);
        bool tooLong = false;
        const QStringList lines = WrapLines(
            fonts, Font{fontName, 11 * p.sy / std::max(0.01f, m.ScaleY), bold, false}, text, room, &tooLong);
        if (tooLong) run.inform(kWordTooLong);
        for (int k = 0; k < lines.size(); ++k)
            drawSlotText(s, x, y + k * lh, slot.alignment, lines[k]);
    }
}

// The "Panostilat" table of the charge chamber card.
void drawTable(PrintRun& run, Surface& s, const CardLayout& layout, const CardPlacement& p) {
    const lists::ListModel* list = run.source().charges;
    if (layout.tableColumns.empty()) return;
    const QString fontName = layout.font.trimmed().isEmpty() ? run.settings().PrinterFont : layout.font;
    const PageModel& m = run.page();
    const double lh = m.ScaleY > 0 ? m.LineHeight11 * p.sy / m.ScaleY : m.LineHeight11;
    double bottom = p.y(layout.height);
    if (!layout.tableArea.empty()) bottom = p.y(layout.tableArea.front().y2);
    // Each column's cell reaches to the next column (or the table's right edge).
    const double tableRight = layout.tableArea.empty() ? layout.width : layout.tableArea.front().x2;
    auto cellRight = [&](const CardSlot& column) {
        double right = tableRight;
        for (const CardSlot& other : layout.tableColumns)
            if (other.x > column.x) right = std::min<double>(right, other.x);
        return p.x0 + p.sx * (right - 60);
    };
    auto cell = [&](const CardSlot& column, double y, const QString& text, double size, bool bold) {
        CellText(run, s, Font{fontName, size, bold, false}, p.sx, p.sy, p.x(column.x), cellRight(column), y,
                 text, CellAlign::Left);
    };
    int top = 0;
    for (const CardSlot& c : layout.tableColumns) {
        cell(c, p.y(c.y), c.name, 9, c.alignment % 2 == 1);
        top = std::max(top, c.y);
    }
    if (!list) return;
    double y = p.y(top) + lh * 1.2;
    const int columns = std::min<int>(static_cast<int>(layout.tableColumns.size()), list->cols() - 1);
    for (int r = 1; r <= list->rows(); ++r) {
        if (lists::BlankListItem(*list, r).blank) continue;
        if (y + 2 * lh > bottom) {
            // The rows that do not fit are left out, and the table says so.
            s.setFont(Font{fontName, 10 * p.sy, false, false});
            s.text(p.x(layout.tableColumns.front().x), y, QStringLiteral("..."));
            break;
        }
        for (int c = 0; c < columns; ++c)
            cell(layout.tableColumns[c], y, list->cell(r, c + 1).toString(), 10, false);
        y += lh;
    }
}

void drawPicture(PrintRun& run, Surface& s, const platform::Picture& picture, const Box& b,
                 const CardPlacement& p) {
    PrintImage(run, s, picture, p.x(b.x + b.w / 2), p.y(b.y + b.h / 2), p.sx * b.w, p.sy * b.h, true);
}

// Without its layout the card cannot be drawn: its page says why in a sentence that names the
// file, the message adds where it was looked for, and the run goes on.
void layoutMissing(PrintRun& run, Surface& s, const QString& message, const QString& detail) {
    run.inform(detail.isEmpty() ? message : message + QStringLiteral("\r\n") + detail);
    const PageModel& m = run.page();
    s.setFont(run.font(11, true));
    const QStringList lines = run.wrap(message, 11, m.UsableWidth);
    double y = m.OriginY + kBodyTop * m.ScaleY;
    for (const QString& line : lines) {
        s.text(m.OriginX, y, line);
        y += m.LineHeight11;
    }
}

} // namespace

void PrintCard(PrintRun& run, Surface& s, int) {
    CardLayout layout;
    QString error, detail;
    if (!ReadCardLayoutFile(run.settings().appPath, kCardLayoutFile, false, layout, &error, &detail)) {
        layoutMissing(run, s, error, detail);
        return;
    }
    const CardPlacement p = PlaceCard(run.page(), layout.width, layout.height);
    drawLayout(run, s, layout, run.source().cardFields, true, p);
    const auto& pictures = run.source().pictures;
    drawPicture(run, s, pictures[2], kCardLogo, p);
    drawPicture(run, s, pictures[0], kCardSideView, p);
    drawPicture(run, s, pictures[1], kCardCrossSection, p);
}

void PrintCharge(PrintRun& run, Surface& s, int) {
    CardLayout layout;
    QString error, detail;
    if (!ReadCardLayoutFile(run.settings().appPath, kChargeLayoutFile, true, layout, &error, &detail)) {
        layoutMissing(run, s, error, detail);
        return;
    }
    const CardPlacement p = PlaceCard(run.page(), layout.width, layout.height);
    drawLayout(run, s, layout, run.source().chargeFields, false, p);
    drawTable(run, s, layout, p);
    const PrintSource& src = run.source();
    // The check boxes put the characteristics card's side view or cross-section in place of
    // the charge chamber card's own.
    auto checked = [&src](int i) {
        return i < static_cast<int>(src.chargeChecks.size()) && src.chargeChecks[i] == 1;
    };
    drawPicture(run, s, src.pictures[5], kChargePlate, p);
    drawPicture(run, s, checked(0) ? src.pictures[0] : src.pictures[3], kChargeSideView, p);
    drawPicture(run, s, checked(1) ? src.pictures[1] : src.pictures[4], kChargeCrossSection, p);
}

} // namespace print
