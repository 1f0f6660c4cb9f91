#include "print/WorkPhase.h"

#include "lists/ListModel.h"
#include "lists/ListProcedures.h"

namespace print {

QString CaptionLine(const QString& littera, const QString& text) {
    const QString l = littera.trimmed();
    const QString t = text.trimmed();
    return l.isEmpty() ? t : l + QStringLiteral(": ") + t;
}

QString ParseQualityCaption(const lists::ListModel& list, const QString& key) {
    const int rivi = list.cols();
    for (int r = 1; r <= list.rows(); ++r) {
        if (list.cell(r, rivi) != key) continue;
        const lists::CaptionInfo c = lists::FindCaption(list, r);
        return c.captionRow > 0 ? CaptionLine(c.captionLittera, c.captionText) : QString();
    }
    return QString();
}

std::vector<QString> WorkPhaseLines(const lists::ListModel& list) {
    const int n = list.rows();
    std::vector<QString> lines(n + 1);
    if (lists::groupOf(list) == lists::ListGroup::Other) return lines;
    const int h = lists::headingColumn(list);
    const int e = lists::entryColumn(list);
    QString current;
    int captionRow = 0;
    for (int r = 1; r <= n; ++r) {
        const QStringView littera = list.cell(r, 1);
        const QStringView heading = list.cell(r, h);
        const bool blankLittera = lists::BlankString(littera);
        if (heading == lists::kRoadWorksCaption || (!blankLittera && lists::CapitalString(heading))) {
            // The caption and the heading texts of its continuation rows.
            QString text = heading.toString();
            for (int c = r + 1;
                 c <= n && lists::BlankString(list.cell(c, 1)) && lists::BlankString(list.cell(c, e)); ++c)
                text += list.cell(c, h);
            current = CaptionLine(littera.toString(), text);
            captionRow = r;
        }
        lines[r] = captionRow > 0 ? current : QString();
    }
    return lines;
}

} // namespace print
