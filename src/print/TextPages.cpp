// The three text documents: the construction plan description (3), the coding plan (6) and the
// contract quality plan (8).
#include "print/PrintRun.h"
#include "print/Reports.h"
#include "print/TextLines.h"

namespace print {

int TextBufferOf(int document) {
    switch (document) {
        case doc::PlanDescription:
            return 0;
        case doc::CodingPlan:
            return 1;
        case doc::QualityPlan:
            return 2;
        default:
            return -1;
    }
}

void PrintTextPage(PrintRun& run, Surface& s, int p) {
    const PageEntry& e = run.entry(p);
    const QString title = DocumentTitle(e.document, QString());
    if (!PrintFrontPageOrHeader(run, s, p, title)) return;
    const PageModel& m = run.page();
    const QString lines = ParseTextPage(run.textBuffer(TextBufferOf(e.document)), e.firstRow, e.lastRow);
    s.setFont(run.font(11));
    double y = m.OriginY + kBodyTop * m.ScaleY;
    for (const QStringView line : QStringView(lines).split(QStringLiteral("\r\n"))) {
        if (y + m.LineHeight11 > m.bottom() - kFooterRule * m.ScaleY) break;
        s.text(m.OriginX, y, line.toString());
        y += m.LineHeight11;
    }
    PrintBottomHeader(run, s, Footer::ProgramName);
}

} // namespace print
