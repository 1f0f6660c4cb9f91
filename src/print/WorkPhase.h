#pragma once
// The work phases of the requirement list as the quality documents name them: the caption line
// printed above requirements and used to limit a document to one work phase.
#include <QString>
#include <vector>

namespace lists {
class ListModel;
}

namespace print {

// "littera: caption" when the caption has a littera, the caption text alone otherwise.
QString CaptionLine(const QString& littera, const QString& text);

// The caption line of the work phase (the first-level caption) that governs the row whose
// "Rivi" is `key`; empty when no row has that key or no caption governs it.
QString ParseQualityCaption(const lists::ListModel& list, const QString& key);

// For every row (index = row, 0 unused) the caption line of the work phase that governs it,
// as ParseQualityCaption finds it, in one pass over the list.
std::vector<QString> WorkPhaseLines(const lists::ListModel& list);

} // namespace print
