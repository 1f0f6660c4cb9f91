#include "print/Outline.h"

#include "calc/QualityIndex.h"
#include "lists/Columns.h"
#include "lists/ListModel.h"
#include "print/PrintRun.h"

namespace print {

namespace {

QString captionTitle(const lists::ListModel& list, int row, int textColumn) {
    const calc::CaptionInfo c = calc::ListViewCaption(list, row, textColumn);
    if (c.level != 1) return QString();
    const QString littera = c.littera.trimmed().toString();
    const QString text = c.text.trimmed().toString();
    return littera.isEmpty() ? text : littera + QLatin1Char(' ') + text;
}

// The page among `first` .. `last` whose rows hold `row`; 0 when none does.
int pageOfRow(const PrintRun& run, int first, int last, int row) {
    for (int p = first; p <= last; ++p) {
        const PageEntry& e = run.entry(p);
        if (e.number > 1 && e.firstRow <= row && row <= e.lastRow) return p;
    }
    return 0;
}

bool qualityDocument(int document) {
    return document == doc::BridgeRequirements || document == doc::AllRequirements ||
           (document >= doc::QualityPlans && document <= doc::QualityReport);
}

} // namespace

std::vector<Bookmark> RunOutline(PrintRun& run) {
    std::vector<Bookmark> outline;
    const int total = run.TotalPages();
    const PrintSource& source = run.source();
    for (int first = 1; first <= total;) {
        // A document's pages follow one another; the quality report's summary pages are its own.
        const int document = run.entry(first).document;
        int last = first;
        while (last < total && run.entry(last + 1).number > 1)
            ++last;
        const QString phase =
            document < kDocumentCount ? run.selection().WorkPhaseFilter[document] : QString();
        Bookmark mark{SelectionCaption(document, phase), first, {}};
        mark.title.remove(QLatin1Char('&'));
        // A comparison has no box in the selection dialog; its pages' title names it.
        if (mark.title.isEmpty()) mark.title = DocumentTitle(document, phase);

        if ((document == doc::Quantities || document == doc::Costs) && source.quantities) {
            const lists::ListModel& list = *source.quantities;
            // The body pages hold the rows in order, so one walk finds every caption's page.
            int p = first;
            for (int r = 1; r <= list.rows(); ++r) {
                const QString title = captionTitle(list, r, lists::quantityCol::kWorkPhase);
                if (title.isEmpty()) continue;
                while (p <= last && !(run.entry(p).number > 1 && r <= run.entry(p).lastRow))
                    ++p;
                if (p > last) break;
                mark.children.push_back({title, p, {}});
            }
            // The cost summaries are the rows after the list.
            if (document == doc::Costs)
                if (const int at = pageOfRow(run, first, last, list.rows() + 1))
                    mark.children.push_back({kSummaryBookmark, at, {}});
        } else if (qualityDocument(document)) {
            for (int p = first; p <= last; ++p)
                if (run.entry(p).document == kQualitySummary) {
                    mark.children.push_back({kSummaryBookmark, p, {}});
                    break;
                }
            if (source.requirements) {
                const lists::ListModel& list = *source.requirements;
                int p = first;
                for (const QualityItem& item : run.qualityItems(document)) {
                    if (!item.caption) continue;
                    const QString title = captionTitle(list, item.row, lists::requirementCol::kText);
                    if (title.isEmpty()) continue;
                    while (p <= last && !(run.entry(p).document == document && run.entry(p).number > 1 &&
                                          item.row <= run.entry(p).lastRow))
                        ++p;
                    if (p > last) break;
                    mark.children.push_back({title, p, {}});
                }
            }
        }
        outline.push_back(std::move(mark));
        first = last + 1;
    }
    return outline;
}

} // namespace print
