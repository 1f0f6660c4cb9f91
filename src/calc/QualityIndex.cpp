#include "calc/QualityIndex.h"

#include "calc/NumberText.h"
#include "lists/ListProcedures.h"
#include "lists/Columns.h"
#include "lists/ListModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace calc {

namespace {

using namespace lists::requirementCol;

const QString kCrLf = QStringLiteral("\r\n");

// Drop-down values are known by their first character ("1 (siltakohtainen)", "Kyllä").
QChar firstChar(QStringView text) {
    return text.isEmpty() ? QChar() : text.front();
}

// "@@@@" fields: right-aligned in `width` characters, never cut.
QString padLeft(const QString& text, int width) {
    return text.rightJustified(width, QLatin1Char(' '));
}

// "!@@@@" fields: left-aligned in `width` characters, never cut.
QString padRight(const QString& text, int width) {
    return text.leftJustified(width, QLatin1Char(' '));
}

// One line of the type table: count, checked, checked per cent (blank without requirements)
// and not checked.
QString typeLine(const QString& label, int count, int checked) {
    const QString percent =
        count == 0 ? QString(7, QLatin1Char(' '))
                   : padLeft(QString::number(RoundHalfEven(static_cast<double>(checked) / count * 100)), 7);
    return label + padLeft(QString::number(count), 8) + padLeft(QString::number(checked), 6) + percent +
           padLeft(QString::number(count - checked), 10);
}

} // namespace

CaptionInfo ListViewCaption(const lists::ListModel& list, int row, int captionColumn) {
    const QStringView littera = list.cell(row, kLittera);
    const QStringView text = list.cell(row, captionColumn);
    const bool roadWorks = text == lists::kRoadWorksCaption;
    if (!roadWorks && lists::BlankString(littera)) return {};
    return {roadWorks || lists::CapitalString(text) ? 1 : 2, littera.isEmpty() ? QStringView(u" ") : littera,
            text};
}

namespace {
const std::shared_ptr<const CaptionRows>& noCaptions() {
    static const auto none = std::make_shared<const CaptionRows>(1);
    return none;
}
} // namespace

CaptionTexts::CaptionTexts(int column, bool emptyAsSpace)
    : CaptionTexts(column, emptyAsSpace, noCaptions()) {}

std::vector<QString> CaptionTexts::toVector() const {
    std::vector<QString> out;
    for (std::size_t g = 0; g < size(); ++g)
        out.push_back((*this)[g]);
    return out;
}

namespace {

// How a row of the requirement list counts. A requirement is a row that is no caption and has
// an identifier; "TYYPPI" 1 and 2 carry weight, any other type is advisory.
enum class RowKind : std::uint8_t { Phase, SubPhase, Other, Advisory, Weighted };
// "TÄYTTÄÄ VAATIMUKSET" by its first character: "Kyllä", "Ei", or anything else.
enum class Result : std::uint8_t { Unchecked, Met, Failed };

struct RowFacts {
    RowKind kind = RowKind::Other;
    Result result = Result::Unchecked; // requirements only
    bool type2 = false;                // weighted: type 2 rather than 1
    float weight = 0;                  // weighted: "PAINOARVO"
    float factor = 0;                  // weighted and failed: "PAINOARVON KERROIN"
};

RowFacts readRow(const lists::ListModel& list, int r) {
    RowFacts facts;
    const int level = ListViewCaption(list, r, kText).level;
    if (level != 0) {
        facts.kind = level == 1 ? RowKind::Phase : RowKind::SubPhase;
        return facts;
    }
    if (lists::BlankString(list.cell(r, kNumber))) return facts;
    const QChar result = firstChar(list.cell(r, kFulfilled));
    facts.result = result == u'K' ? Result::Met : result == u'E' ? Result::Failed : Result::Unchecked;
    const QChar type = firstChar(list.cell(r, kType));
    if (type != u'1' && type != u'2') {
        facts.kind = RowKind::Advisory;
        return facts;
    }
    facts.kind = RowKind::Weighted;
    facts.type2 = type == u'2';
    facts.weight = static_cast<float>(CustomVal(list.cell(r, kWeight)));
    if (facts.result == Result::Failed) facts.factor = static_cast<float>(CustomVal(list.cell(r, kFactor)));
    return facts;
}

// The memo packs RowFacts into 64 bits: the low half is the weight's float bits; the high half
// is a failed weighted requirement's factor as float bits, or for every other row its kind and
// result as a code among the NaN patterns, which no factor has (CustomVal reads digits, never a
// NaN). The top bit of the high half, a factor's sign bit, says type 2; a failed requirement
// with a negative factor has no memo and is read from its texts on every run.
constexpr std::uint32_t kTypeTwoBit = 0x8000'0000;
constexpr std::uint32_t kInfinityBits = 0x7f80'0000; // above it, to 0x7fff'ffff, the NaNs
constexpr int kResults = 3;

std::uint64_t packRow(const RowFacts& f) {
    std::uint32_t high = 0;
    if (f.kind == RowKind::Weighted && f.result == Result::Failed) {
        high = std::bit_cast<std::uint32_t>(f.factor);
        if (high & kTypeTwoBit) return lists::RowCells::kNoMemo;
    } else {
        high = kInfinityBits + 1 + static_cast<std::uint32_t>(f.kind) * kResults +
               static_cast<std::uint32_t>(f.result);
    }
    if (f.type2) high |= kTypeTwoBit;
    return (std::uint64_t{high} << 32) | std::bit_cast<std::uint32_t>(f.weight);
}

RowFacts unpackRow(std::uint64_t memo) {
    RowFacts f;
    const auto high = static_cast<std::uint32_t>(memo >> 32);
    const std::uint32_t value = high & ~kTypeTwoBit;
    f.type2 = (high & kTypeTwoBit) != 0;
    f.weight = std::bit_cast<float>(static_cast<std::uint32_t>(memo));
    if (value <= kInfinityBits) {
        f.kind = RowKind::Weighted;
        f.result = Result::Failed;
        f.factor = std::bit_cast<float>(value);
    } else {
        const std::uint32_t code = value - kInfinityBits - 1;
        f.kind = static_cast<RowKind>(code / kResults);
        f.result = static_cast<Result>(code % kResults);
    }
    return f;
}

// The row's facts from its memo, or read from its texts and remembered. The memo is written
// from this const path: see RowCells::setMemo.
RowFacts factsOf(const lists::ListModel& list, int r) {
    const lists::RowCells& cells = list.row(r).cells;
    if (const std::uint64_t memo = cells.memo(); memo != lists::RowCells::kNoMemo) return unpackRow(memo);
    const RowFacts facts = readRow(list, r);
    cells.setMemo(packRow(facts));
    return facts;
}

// An open work phase or sub-phase: its slot in the record and its running weight sums.
struct OpenGroup {
    int slot = 0;
    float max = 0;
    float realized = 0;
};

void storeGroup(QualityRecord& rec, const OpenGroup& group) {
    rec.groupMax[group.slot] = group.max;
    rec.groupRealized[group.slot] = group.realized;
}

// Opens the group of caption row `r` in a new slot of the record.
OpenGroup openGroup(QualityRecord& rec, std::vector<int>& captionRows, int r) {
    captionRows.push_back(r);
    rec.groupMax.push_back(0);
    rec.groupRealized.push_back(0);
    return {static_cast<int>(captionRows.size())};
}

// The caption rows of the last run over a list, kept with the list.
struct CaptionCache {
    std::vector<int> rows; // their row numbers
    std::shared_ptr<const CaptionRows> cells;
    int longestText = 0;
};

// The captions' rows of this run. A caption row's texts lie in a block of their own somewhere in
// the heap; sharing each one again on every run reached a block per caption, and a large list's
// blocks do not stay in the cache. So the table of the last run is kept with the list and used
// again while the captions are the same rows with the same blocks (a changed row has a block of
// its own, and the table holds the old ones, so none of them can be given to another row).
std::shared_ptr<const CaptionCache> captionsOf(const lists::ListModel& list, std::vector<int>&& rows) {
    auto kept = std::static_pointer_cast<const CaptionCache>(list.calculationCache());
    const auto same = [&] {
        if (!kept || kept->rows != rows) return false;
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (!list.row(rows[i]).cells.sharesBlockWith((*kept->cells)[i + 1])) return false;
        return true;
    };
    if (same()) return kept;
    auto cells = std::make_shared<CaptionRows>();
    cells->reserve(rows.size() + 1);
    cells->emplace_back();
    auto made = std::make_shared<CaptionCache>();
    for (int r : rows) {
        cells->push_back(list.row(r).cells);
        made->longestText =
            std::max(made->longestText,
                     static_cast<int>(cells->back().value(lists::requirementCol::kText - 1).size()));
    }
    made->rows = std::move(rows);
    made->cells = std::move(cells);
    list.calculationCache() = made;
    return made;
}

void countRequirement(QualityRecord& rec, OpenGroup& phase, OpenGroup& sub, const RowFacts& f) {
    const bool checked = f.result != Result::Unchecked;
    if (f.kind == RowKind::Advisory) {
        ++rec.countType3;
        if (checked) ++rec.checkedType3;
        return;
    }
    (f.type2 ? rec.countType2 : rec.countType1)++;
    rec.totalMax += f.weight;
    phase.max += f.weight;
    sub.max += f.weight;
    if (!checked) return;
    // A failed requirement still earns the share of its weight that its factor says.
    const float earned = f.result == Result::Met ? f.weight : f.factor * f.weight;
    rec.totalRealized += earned;
    phase.realized += earned;
    sub.realized += earned;
    (f.type2 ? rec.checkedType2 : rec.checkedType1)++;
}

} // namespace

QualityRecord CalculateQualityIndex(const lists::ListModel& list) {
    QualityRecord rec;
    std::vector<int> captionRows;
    // The open work phase (level 1) and sub-phase (level 2); both start in slot 0.
    OpenGroup phase, sub;
    for (int r = 1; r <= list.rows(); ++r) {
        const RowFacts facts = factsOf(list, r);
        switch (facts.kind) {
            case RowKind::Phase:
                storeGroup(rec, phase);
                storeGroup(rec, sub);
                phase = openGroup(rec, captionRows, r);
                sub = {};
                break;
            case RowKind::SubPhase:
                storeGroup(rec, sub);
                sub = openGroup(rec, captionRows, r);
                break;
            case RowKind::Other:
                break;
            case RowKind::Advisory:
            case RowKind::Weighted:
                countRequirement(rec, phase, sub, facts);
                break;
        }
    }
    storeGroup(rec, phase);
    storeGroup(rec, sub);
    const std::shared_ptr<const CaptionCache> captions = captionsOf(list, std::move(captionRows));
    rec.groupLittera = CaptionTexts(lists::requirementCol::kLittera, true, captions->cells);
    rec.groupText = CaptionTexts(lists::requirementCol::kText, false, captions->cells);
    rec.longestGroupText = captions->longestText;
    rec.groupCount = static_cast<int>(rec.groupText.size()) - 1;
    if (rec.totalMax != 0) rec.qualityNumber = rec.totalRealized / rec.totalMax * 100;
    return rec;
}

std::optional<float> WorkPhaseShare(const QualityRecord& rec, int group) {
    // Only work phases (captions in capitals) show their share of the bridge's weight.
    if (!lists::CapitalString(rec.groupText[group]) || rec.totalMax == 0) return std::nullopt;
    return rec.groupMax[group] / rec.totalMax * 100;
}

std::optional<float> WorkPhaseAchieved(const QualityRecord& rec, int group) {
    if (rec.groupMax[group] == 0) return std::nullopt;
    return rec.groupRealized[group] / rec.groupMax[group] * 100;
}

QString MakeSummaryText(const QualityRecord& rec, const QString& projectFileName,
                        const QDateTime& printedAt) {
    QString out;
    const auto line = [&out](const QString& text) { out += text + kCrLf; };
    const QLocale c = QLocale::c();

    line(QStringLiteral("TAMRIK 2006 - ") + projectFileName);
    line(QString());
    line(QStringLiteral("LAATUVAATIMUSTEN YHTEENVETO"));
    line(QStringLiteral("Tulostettu: ") + c.toString(printedAt, QStringLiteral("dd.MM.yyyy")) +
         QStringLiteral("  ") + c.toString(printedAt, QStringLiteral("HH:mm")));
    line(QString());
    line(QStringLiteral("Tyyppi") + QString(15, QLatin1Char(' ')) +
         QStringLiteral("lkm  tark.  tark%  ei tark."));
    line(QString(48, QLatin1Char('-')));
    line(typeLine(QStringLiteral("1 Siltakohtainen"), rec.countType1, rec.checkedType1));
    line(typeLine(QStringLiteral("2 KLVn mukainen "), rec.countType2, rec.checkedType2));
    line(typeLine(QStringLiteral("3 Ohjeellinen    "), rec.countType3, rec.checkedType3));
    line(QString(48, QLatin1Char('-')));
    line(typeLine(QStringLiteral("Yhteensä        "), rec.countType1 + rec.countType2 + rec.countType3,
                  rec.checkedType1 + rec.checkedType2 + rec.checkedType3));
    line(QString());
    line(QStringLiteral("Toteutunut painoarvojen summa (TotPA) koko sillalle: ") +
         DecimalS(rec.totalRealized, 0) + QStringLiteral(" (") + DecimalS(rec.totalMax, 0) +
         QStringLiteral(")"));
    line(QString());
    line(QStringLiteral("SILLAN LAATULUKU : ") + FormatHashDotHash(rec.qualityNumber) +
         QStringLiteral(" (100)"));
    line(QString());

    // The captions start under "Työvaihe" (8 characters) and take the longest caption's width.
    const int gap = std::max(1, rec.longestGroupText + 4 - 8);
    const QString header = QStringLiteral("Littera Työvaihe") + QString(gap, QLatin1Char(' ')) +
                           QStringLiteral("Pa%  TotPa  MaksPa  Tot%");
    line(header);
    line(QString(header.size(), QLatin1Char('-')));

    const QString none = QStringLiteral("-");
    const int groups = std::min<int>(rec.groupCount, static_cast<int>(rec.groupText.size()) - 1);
    for (int g = 1; g <= groups; ++g) {
        const QString& text = rec.groupText[g];
        const float max = rec.groupMax[g];
        const float realized = rec.groupRealized[g];
        const std::optional<float> sharePercent = WorkPhaseShare(rec, g);
        const std::optional<float> achievedPercent = WorkPhaseAchieved(rec, g);
        const QString share = sharePercent ? DecimalS(*sharePercent, 0) : none;
        const QString achieved = achievedPercent ? DecimalS(*achievedPercent, 0) : none;
        line(padRight(rec.groupLittera[g], 8) + padRight(text, rec.longestGroupText) + padLeft(share, 7) +
             padLeft(DecimalS(realized, 0), 7) + padLeft(DecimalS(max, 0), 7) + padLeft(achieved, 7));
    }
    return out;
}

QByteArray SummaryAsJson(const QualityRecord& rec, const QString& projectFileName) {
    const auto figure = [](std::optional<float> v) { return v ? QJsonValue(FigureValue(*v)) : QJsonValue(); };
    QJsonArray types;
    const std::array<std::array<int, 2>, 3> counts = {{{rec.countType1, rec.checkedType1},
                                                       {rec.countType2, rec.checkedType2},
                                                       {rec.countType3, rec.checkedType3}}};
    const char* const names[] = {"Siltakohtainen", "KLVn mukainen", "Ohjeellinen"};
    const auto countObject = [](int count, int checked) {
        QJsonObject o;
        o.insert(QLatin1String("count"), count);
        o.insert(QLatin1String("checked"), checked);
        o.insert(QLatin1String("unchecked"), count - checked);
        return o;
    };
    for (int t = 0; t < 3; ++t) {
        QJsonObject o = countObject(counts[t][0], counts[t][1]);
        o.insert(QLatin1String("type"), t + 1);
        o.insert(QLatin1String("name"), QString::fromUtf8(names[t]));
        types.append(o);
    }
    QJsonArray phases;
    const int groups = std::min<int>(rec.groupCount, static_cast<int>(rec.groupText.size()) - 1);
    for (int g = 1; g <= groups; ++g) {
        QJsonObject o;
        o.insert(QLatin1String("littera"), rec.groupLittera[g]);
        o.insert(QLatin1String("text"), rec.groupText[g]);
        o.insert(QLatin1String("realized"), FigureValue(rec.groupRealized[g]));
        o.insert(QLatin1String("max"), FigureValue(rec.groupMax[g]));
        o.insert(QLatin1String("sharePercent"), figure(WorkPhaseShare(rec, g)));
        o.insert(QLatin1String("achievedPercent"), figure(WorkPhaseAchieved(rec, g)));
        phases.append(o);
    }
    QJsonObject out;
    out.insert(QLatin1String("project"), projectFileName);
    out.insert(QLatin1String("qualityNumber"), FigureValue(rec.qualityNumber));
    out.insert(QLatin1String("totalRealized"), FigureValue(rec.totalRealized));
    out.insert(QLatin1String("totalMax"), FigureValue(rec.totalMax));
    out.insert(QLatin1String("types"), types);
    out.insert(QLatin1String("total"), countObject(rec.countType1 + rec.countType2 + rec.countType3,
                                                   rec.checkedType1 + rec.checkedType2 + rec.checkedType3));
    out.insert(QLatin1String("workPhases"), phases);
    return QJsonDocument(out).toJson(QJsonDocument::Indented);
}

} // namespace calc
