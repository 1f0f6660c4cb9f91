// Values in their cells: each stays between its neighbours, shrunk to the smallest print and
// then cut with "…" when it is still too long.
#include "print/PrintRun.h"
#include "print/Reports.h"

namespace print {

double CellBaselineDrop(PrintRun& run, double size, double fittedSize, bool bold) {
    FontBook& fonts = run.fonts();
    return fonts.ascent(run.font(size, bold)) - fonts.ascent(run.font(fittedSize, bold));
}

void CellText(PrintRun& run, Surface& s, const Font& font, double sx, double sy, double left, double right,
              double y, const QString& text, CellAlign align) {
    if (text.trimmed().isEmpty()) return;
    const FittedText f =
        run.fit(text, font, std::max(0.0, right - left) / std::max(0.01, sx), kSmallestValueSize);
    Font full = font;
    full.size *= sy;
    Font drawn = font;
    drawn.size = f.size * sy;
    s.setFont(drawn);
    const QString& line = f.lines.value(0);
    const double top = y + run.fonts().ascent(full) - run.fonts().ascent(drawn);
    switch (align) {
        case CellAlign::Left:
            s.text(left, top, line);
            break;
        case CellAlign::Right:
            s.textRight(right, top, line);
            break;
        case CellAlign::Centre:
            s.text((left + right - s.textWidth(line)) / 2, top, line);
            break;
    }
}

void CellText(PrintRun& run, Surface& s, double left, double right, double y, const QString& text,
              double size, bool bold, CellAlign align) {
    const PageModel& m = run.page();
    CellText(run, s, Font{run.settings().PrinterFont, size, bold, false}, m.ScaleX, m.ScaleY, left, right, y,
             text, align);
}

} // namespace print
