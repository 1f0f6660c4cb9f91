#pragma once
// The bridge quality number ("SILLAN LAATULUKU") from the inspected quality requirements, and
// the plain-text summary "LAATUVAATIMUSTEN YHTEENVETO".
//
// Columns of the requirement list read here: 1 littera of a caption row, 2 the requirement's
// identifier (blank on rows that are no requirement), 3 requirement or caption text,
// 4 "TYYPPI", 11 "PAINOARVO", 21 "TÄYTTÄÄ VAATIMUKSET", 24 "PAINOARVON KERROIN".
#include "lists/Columns.h"
#include "lists/RowCells.h"

#include <QDateTime>
#include <QString>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace lists {
class ListModel;
}

namespace calc {

// How a row stands as a caption: level 1 a work phase (a littera with a heading in capitals,
// or the heading "TIETYÖT SILTAPAIKALLA"), level 2 a sub-phase (a littera with a heading in
// ordinary case), level 0 any other row (littera and text then empty).
struct CaptionInfo {
    int level = 0;
    // Views into the list's cells, valid while the row is unchanged.
    QStringView littera; // column 1, or " " when that is empty
    QStringView text;    // the caption column's text
};

CaptionInfo ListViewCaption(const lists::ListModel& list, int row, int captionColumn);

// The captions' rows of one run, slot 0 (the requirements above the first caption) an empty
// row: the record shares the rows' texts with the list, as an undo step does, so a run copies no
// text and the record stays whole when the list changes after it. Runs over a list whose caption
// rows are unchanged share one such table.
using CaptionRows = std::vector<lists::RowCells>;

// One text of each work-phase group's caption, read from the shared caption rows when asked.
class CaptionTexts {
public:
    // `column` of the caption rows (1-based); an empty one reads as a space when `emptyAsSpace`.
    CaptionTexts(int column, bool emptyAsSpace);
    CaptionTexts(int column, bool emptyAsSpace, std::shared_ptr<const CaptionRows> rows)
        : m_rows(std::move(rows))
        , m_cell(column - 1)
        , m_emptyAsSpace(emptyAsSpace) {}
    QStringView view(std::size_t g) const {
        const lists::RowCells& row = (*m_rows)[g];
        const QStringView text = row.value(m_cell);
        return text.isEmpty() && m_emptyAsSpace && !row.isEmpty() ? QStringView(u" ") : text;
    }
    QString operator[](std::size_t g) const { return view(g).toString(); }
    std::size_t size() const { return m_rows->size(); }
    std::vector<QString> toVector() const;

private:
    std::shared_ptr<const CaptionRows> m_rows;
    qsizetype m_cell;
    bool m_emptyAsSpace;
};

// The results of one run. Weight sums are single precision.
struct QualityRecord {
    int checkedType1 = 0; // type 1 requirements with a result ("Kyllä" or "Ei")
    int checkedType2 = 0;
    int checkedType3 = 0; // any other type
    int countType1 = 0;
    int countType2 = 0;
    int countType3 = 0;
    float qualityNumber = 0; // 100 * totalRealized / totalMax, 0 when totalMax is 0
    float totalMax = 0;      // MaksPa: weights of all type 1 and 2 requirements
    float totalRealized = 0; // TotPa: weights earned by the inspected ones
    // Work-phase groups in list order. Slot 0 collects the requirements above the first caption
    // and is never reported; slots 1 .. groupCount are the captions.
    CaptionTexts groupLittera{lists::requirementCol::kLittera, true};
    CaptionTexts groupText{lists::requirementCol::kText, false};
    std::vector<float> groupMax{0.0f};
    std::vector<float> groupRealized{0.0f};
    int groupCount = 0;
    int longestGroupText = 0; // characters of the longest caption text
};

// Sums the requirement list in one pass. A level-1 group takes in everything up to the next
// level-1 caption, its sub-phases included; a level-2 group up to the next caption of either
// level. Type 3 requirements are counted but carry no weight.
QualityRecord CalculateQualityIndex(const lists::ListModel& list);

// A work phase's share of the bridge's weight in percent (captions in capitals only) and the
// percentage of its weight achieved; no value where the summary prints "-". Groups from 1.
std::optional<float> WorkPhaseShare(const QualityRecord& record, int group);
std::optional<float> WorkPhaseAchieved(const QualityRecord& record, int group);

// The summary report, one line per entry, every line ending in CR LF. `projectFileName` is the
// project's folder and file name; `printedAt` the time stamped on it.
QString MakeSummaryText(const QualityRecord& record, const QString& projectFileName,
                        const QDateTime& printedAt);
// The summary's figures as one JSON object (`tamrik summary --json`): the project, the quality
// number, the weight sums, the counts of each requirement type and in total, and one object per
// work phase (littera, text, realized, max, sharePercent and achievedPercent, null where the
// report shows "-"). Figures carry their single-precision values at 9 significant digits.
QByteArray SummaryAsJson(const QualityRecord& record, const QString& projectFileName);

} // namespace calc
