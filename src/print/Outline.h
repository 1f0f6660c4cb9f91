#pragma once
// The outline (bookmarks) of a paginated run: where each document and each of its main parts
// starts, read from the page table, for the PDF reader's side panel.
#include <QString>
#include <vector>

namespace print {

class PrintRun;

struct Bookmark {
    QString title;
    int page = 0; // the run's page (1-based) at whose top the part starts
    std::vector<Bookmark> children;
};

// One bookmark per printed document, titled as its box in the selection dialog, at its first
// page. Under the quantity list and the cost estimate one per main work phase (a caption row of
// the first level: its littera and text, "7150 BETONITYÖT"), under the quality documents one
// per work phase they show, and "Yhteenveto" where the cost summaries or the quality report's
// summary pages start. Empty when the run has no pages.
std::vector<Bookmark> RunOutline(PrintRun& run);

inline const QString kSummaryBookmark = QStringLiteral("Yhteenveto");

} // namespace print
