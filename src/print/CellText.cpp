// Values in their cells: each stays between its neighbours, shrunk to the smallest print and
// then cut with "…" when it is still too long.
#include "print/PrintRun.h"
#include "print/Reports.h"

namespace print {

double CellBaselineDrop(PrintRun& run, double size, double fittedSize, bool bold) {
    FontBook& fonts = run.fonts();
    return fonts.ascent(run.font(size, bold)) - fonts.ascent(run.font(fittedSize, bold));
}

void CellText(PrintRun& run, Surface& s, double left, double right, double y, const QString& text,
              double size, bool bold, CellAlign align) {
    if (text.trimmed().isEmpty()) return;
    const PageModel& m = run.page();
    const double scale = m.ScaleX > 0 ? m.ScaleX : 1.0;
    const FittedText f = run.fit(text, Font{run.settings().PrinterFont, size, bold, false},
                                 std::max(0.0, right - left) / scale, kSmallestValueSize);
    s.setFont(run.font(f.size, bold));
    const QString& line = f.lines.value(0);
    const double top = y + CellBaselineDrop(run, size, f.size, bold);
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

} // namespace print
