#include "calc/ProjectCheck.h"

#include "calc/NumberText.h"
#include "calc/QualityIndex.h"
#include "lists/Columns.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <optional>

namespace calc {

namespace {

namespace qc = lists::quantityCol;
namespace rc = lists::requirementCol;

// ------------------------------------------------------------------ reading a number text

// How a calculation reads a text as a number, and what is doubtful about it: `issue` is empty
// for a text that reads whole, else one of the number-text kinds (NotANumber .. TrailingText).
struct TextReading {
    std::optional<FindingKind> issue;
    double value = 0;
    QString rest; // what follows the number (TrailingNumber, TrailingText)
};

bool isDigitChar(QChar c) {
    return c >= u'0' && c <= u'9';
}

bool containsDigit(QStringView text) {
    return std::any_of(text.begin(), text.end(), isDigitChar);
}

// The next character from `i` on that is not a blank; -1 when there is none.
qsizetype skipBlanks(QStringView text, qsizetype i) {
    while (i < text.size() && IsNumberBlank(text[i]))
        ++i;
    return i < text.size() ? i : -1;
}

// The digits CustomVal read, by their blanks and separator: whether blanks join digits that do
// not stand in Finnish groups of three ("12 5", "12,5 3"), and whether a single point stands
// where a thousands separator would ("1.200", "250.000").
struct NumberShape {
    bool joined = false;
    bool thousandsPoint = false;
};

NumberShape shapeOf(QStringView text, const NumberScan& scan) {
    NumberShape shape;
    qsizetype i = scan.start;
    if (i < scan.end && (text[i] == u'-' || text[i] == u'+')) ++i;
    int groups = 0, firstGroup = 0, group = 0;
    bool laterGroupsOfThree = true;
    bool blankInGroup = false;
    QChar separator;
    int fractionDigits = 0;
    bool blankInFraction = false;
    QChar firstDigit;
    const auto closeGroup = [&] {
        if (group == 0) return;
        if (groups == 0)
            firstGroup = group;
        else if (group != 3)
            laterGroupsOfThree = false;
        ++groups;
        group = 0;
    };
    bool exponent = false;
    for (; i < scan.end; ++i) {
        const QChar c = text[i];
        if (IsNumberBlank(c)) {
            if (separator.isNull())
                blankInGroup = group > 0;
            else
                blankInFraction = true;
        } else if (isDigitChar(c)) {
            if (separator.isNull()) {
                if (blankInGroup) closeGroup();
                blankInGroup = false;
                if (firstDigit.isNull()) firstDigit = c;
                ++group;
            } else {
                if (blankInFraction) shape.joined = true;
                ++fractionDigits;
            }
        } else if (c == u',' || c == u'.') {
            separator = c;
            closeGroup();
        } else {
            exponent = true; // "e" or "E": what follows is the exponent
            break;
        }
    }
    if (separator.isNull()) closeGroup();
    if (groups > 1 && (firstGroup > 3 || !laterGroupsOfThree)) shape.joined = true;
    shape.thousandsPoint = !exponent && separator == u'.' && groups == 1 && firstGroup <= 3 &&
                           firstDigit != u'0' && fractionDigits == 3;
    return shape;
}

// How CalculateCosts and CalculateQualityIndex read a non-blank cell (CustomVal), and what in
// it they leave unread. A "%" after the number is its unit where the field is a percentage.
TextReading readNumberText(QStringView text, bool percentField = false) {
    TextReading out;
    const NumberScan scan = ScanNumber(text);
    out.value = scan.value;
    if (!scan.digits) {
        out.issue = containsDigit(text) ? FindingKind::NumberNotAtStart : FindingKind::NotANumber;
        return out;
    }
    if (scan.outOfRange) {
        out.issue = FindingKind::OutOfRange;
        return out;
    }
    const qsizetype r = skipBlanks(text, scan.end);
    const QChar next = r < 0 ? QChar() : text[r];
    if (next == u',' || next == u'.') {
        const qsizetype after = skipBlanks(text, r + 1);
        if (after >= 0 && isDigitChar(text[after])) {
            out.issue = FindingKind::TwoSeparators;
            return out;
        }
    }
    const NumberShape shape = shapeOf(text, scan);
    if (shape.thousandsPoint) {
        out.issue = FindingKind::ThousandsPoint;
        return out;
    }
    if (shape.joined) {
        out.issue = FindingKind::DigitsJoined;
        return out;
    }
    if (r < 0) return out;
    out.rest = text.mid(r).trimmed().toString();
    // A drop-down value carries its explanation in brackets: "0,5 (virhe vaikuttaa osittain)".
    if (next == u'(') {
        out.rest.clear();
        return out;
    }
    if (percentField && next == u'%' && skipBlanks(text, r + 1) < 0) {
        out.rest.clear();
        return out;
    }
    const bool times = next == u'x' || next == u'X' || next == u'\u00D7' || next == u'*';
    if (times) {
        const qsizetype after = skipBlanks(text, r + 1);
        if (after >= 0 && isDigitChar(text[after])) {
            out.issue = FindingKind::TrailingNumber;
            return out;
        }
    }
    out.issue =
        !next.isLetter() && containsDigit(out.rest) ? FindingKind::TrailingNumber : FindingKind::TrailingText;
    return out;
}

// The value as the message shows it: a decimal comma, no trailing zeros.
QString valueText(double value) {
    QString s = QString::number(value + 0.0, 'g', 12);
    s.replace(QLatin1Char('.'), QLatin1Char(','));
    return s;
}

QString quoted(QStringView text) {
    return QLatin1Char('"') + text.toString() + QLatin1Char('"');
}

// True when the issue makes the value other than the text shows; TrailingText leaves the
// number as it stands.
bool changesValue(const std::optional<FindingKind>& issue) {
    return issue && *issue != FindingKind::TrailingText;
}

QString reasonOf(const TextReading& reading) {
    switch (reading.issue.value_or(FindingKind::TrailingText)) {
        case FindingKind::NotANumber:
            return QStringLiteral("ei ole luku");
        case FindingKind::NumberNotAtStart:
            return QStringLiteral("teksti ei ala numerolla");
        case FindingKind::OutOfRange:
            return QStringLiteral("luku on liian suuri");
        case FindingKind::TwoSeparators:
            return QStringLiteral("kaksi desimaalierotinta");
        case FindingKind::ThousandsPoint:
            return QStringLiteral("piste luetaan desimaalierottimeksi eikä tuhaterottimeksi");
        case FindingKind::DigitsJoined:
            return QStringLiteral("välilyönnin erottamat numerot luetaan yhdeksi luvuksi");
        case FindingKind::TrailingNumber:
            return QStringLiteral("perässä oleva %1 jätetään pois").arg(quoted(reading.rest));
        case FindingKind::TrailingText:
            return QStringLiteral("perässä oleva %1 jätetään huomiotta").arg(quoted(reading.rest));
        default:
            break;
    }
    return QString();
}

// "Määrä "1.200,50" luetaan arvoksi 1,2: kaksi desimaalierotinta".
QString readingMessage(const QString& label, QStringView text, const TextReading& reading) {
    return label + QLatin1Char(' ') + quoted(text) + QStringLiteral(" luetaan arvoksi ") +
           valueText(reading.value) + QStringLiteral(": ") + reasonOf(reading);
}

// ------------------------------------------------------------------ names of the places

struct ColumnName {
    int column;
    const char* header; // as the shipped templates name the column
    const char* label;  // how a message begins
};

constexpr ColumnName kQuantityColumns[] = {
    {qc::kLittera, "LITTERA", "Littera"},
    {qc::kWorkPhase, "TYÖVAIHE", "Työvaihe"},
    {qc::kQuantity, "MÄÄRÄ", "Määrä"},
    {qc::kUnit, "YKSIKKÖ", "Yksikkö"},
    {qc::kUnitPrice, "YKS.HINTA", "Yksikköhinta"},
};

constexpr ColumnName kRequirementColumns[] = {
    {rc::kLittera, "LITTERA", "Littera"},
    {rc::kType, "TYYPPI", "Tyyppi"},
    {rc::kWeight, "PAINOARVO", "Painoarvo"},
    {rc::kFulfilled, "TÄYTTÄÄ VAATIMUKSET", "Täyttää vaatimukset"},
    {rc::kFactor, "PAINOARVON KERROIN", "Painoarvon kerroin"},
};

const ColumnName* columnName(CheckPlace place, int column) {
    if (place == CheckPlace::Quantities) {
        for (const ColumnName& c : kQuantityColumns)
            if (c.column == column) return &c;
    } else {
        for (const ColumnName& c : kRequirementColumns)
            if (c.column == column) return &c;
    }
    return nullptr;
}

// The header the list shows; the template's header when the list has none (a list read from
// a project file outside the windows).
QString headerOf(CheckPlace place, const lists::ListModel& list, int column) {
    if (column < list.cols() && !list.column(column).header.isEmpty()) return list.column(column).header;
    const ColumnName* name = columnName(place, column);
    return name ? QString::fromUtf8(name->header) : QString();
}

QString labelOf(CheckPlace place, int column) {
    const ColumnName* name = columnName(place, column);
    return name ? QString::fromUtf8(name->label) : QString();
}

// The basic data fields the estimate reads: Combo1 index and label.
constexpr int kUnitPriceIndexField = 3;
constexpr int kCostIndexField = 10;
constexpr int kGeneralPercentField = 11;
constexpr int kVatPercentField = 12;

QString fieldLabel(int field) {
    switch (field) {
        case kUnitPriceIndexField:
            return QStringLiteral("Yksikköhintojen i");
        case kCostIndexField:
            return QStringLiteral("Kustannus i");
        case kGeneralPercentField:
            return QStringLiteral("Yhteiskustannus %");
        case kVatPercentField:
            return QStringLiteral("ALV %");
        default:
            return QString();
    }
}

// ------------------------------------------------------------------ collecting findings

class Collector {
public:
    Collector(CheckPlace place, const lists::ListModel* list, std::vector<Finding>& out)
        : m_place(place)
        , m_list(list)
        , m_out(out) {}

    void add(Severity severity, FindingKind kind, int row, int column, QStringView text, QString message) {
        Finding f;
        f.severity = severity;
        f.kind = kind;
        f.place = m_place;
        f.row = row;
        f.column = column;
        f.columnName = m_list ? headerOf(m_place, *m_list, column) : fieldLabel(column);
        f.text = text.toString();
        f.message = std::move(message);
        m_out.push_back(std::move(f));
    }

    // A number cell of a list row: what the reading leaves out. `feeds` says whether the
    // value goes into a total, which makes a changed value an error. Returns the reading.
    TextReading numberCell(int row, int column, bool feeds) {
        const QStringView text = m_list->cell(row, column);
        TextReading reading = readNumberText(text);
        if (reading.issue)
            add(changesValue(reading.issue) && feeds ? Severity::Error : Severity::Remark, *reading.issue,
                row, column, text, readingMessage(labelOf(m_place, column), text, reading));
        return reading;
    }

private:
    CheckPlace m_place;
    const lists::ListModel* m_list;
    std::vector<Finding>& m_out;
};

bool blank(QStringView text) {
    return lists::BlankString(text);
}

// A unit that is a number through and through: a unit price typed one column too early.
bool unitIsNumber(QStringView unit) {
    const TextReading reading = readNumberText(unit);
    return !reading.issue || reading.issue == FindingKind::ThousandsPoint ||
           reading.issue == FindingKind::TwoSeparators;
}

void checkQuantityRow(const lists::ListModel& list, int r, std::vector<Finding>& out) {
    const QStringView quantity = list.cell(r, qc::kQuantity);
    const QStringView unit = list.cell(r, qc::kUnit);
    const QStringView price = list.cell(r, qc::kUnitPrice);
    const bool hasQuantity = !blank(quantity);
    const bool hasUnit = !blank(unit);
    const bool hasPrice = !blank(price);
    if (!hasQuantity && !hasUnit && !hasPrice) return;
    Collector c(CheckPlace::Quantities, &list, out);
    // CalculateCosts multiplies the two whenever neither is blank.
    const bool priced = hasQuantity && hasPrice;

    if (hasQuantity)
        c.numberCell(r, qc::kQuantity, priced);
    else if (hasPrice)
        c.add(Severity::Error, FindingKind::PriceWithoutQuantity, r, qc::kQuantity, quantity,
              QStringLiteral("Rivillä on yksikköhinta mutta ei määrää: rivi ei tule kustannusarvioon"));

    if (!hasPrice && hasUnit && unitIsNumber(unit)) {
        c.add(Severity::Error, FindingKind::PriceInUnitColumn, r, qc::kUnit, unit,
              QStringLiteral(
                  "Yksikkö %1 on luku: yksikköhinta on ilmeisesti kirjoitettu yksikön sarakkeeseen, ja "
                  "rivi jää 0 euroon")
                  .arg(quoted(unit)));
    } else if (priced && !hasUnit) {
        c.add(Severity::Remark, FindingKind::PriceWithoutUnit, r, qc::kUnit, unit,
              QStringLiteral("Hinnoitellulta riviltä puuttuu yksikkö"));
    } else if (hasQuantity && hasUnit && !hasPrice) {
        c.add(Severity::Error, FindingKind::QuantityWithoutPrice, r, qc::kUnitPrice, price,
              QStringLiteral("Rivillä on määrä ja yksikkö mutta ei yksikköhintaa: rivi jää 0 euroon"));
    }

    if (hasPrice) c.numberCell(r, qc::kUnitPrice, priced);
}

// Only what CalculateQualityIndex counts: rows without a littera whose identifier is filled.
bool isRequirement(const lists::ListModel& list, int r) {
    return !blank(list.cell(r, rc::kNumber)) && blank(list.cell(r, rc::kLittera)) &&
           list.cell(r, rc::kText) != lists::kRoadWorksCaption;
}

QChar firstChar(QStringView text) {
    return text.isEmpty() ? QChar() : text.front();
}

void checkRange(Collector& c, int r, int column, QStringView text, const TextReading& reading, double high,
                FindingKind kind, bool feeds) {
    if (changesValue(reading.issue) || (reading.value >= 0 && reading.value <= high)) return;
    c.add(feeds ? Severity::Error : Severity::Remark, kind, r, column, text,
          QStringLiteral("%1 %2 on alueen 0..%3 ulkopuolella")
              .arg(labelOf(CheckPlace::Requirements, column), quoted(text), valueText(high)));
}

// Something of the measurement is recorded: the count or a measured value. The results
// themselves may stand in an attached report, so a count alone is enough.
bool measured(const lists::ListModel& list, int r) {
    for (int c : {rc::kCount, rc::kMinimum, rc::kMaximum, rc::kMean})
        if (!blank(list.cell(r, c))) return true;
    return false;
}

void checkRequirementRow(const lists::ListModel& list, int r, std::vector<Finding>& out) {
    if (!isRequirement(list, r)) return;
    Collector c(CheckPlace::Requirements, &list, out);
    const QStringView type = list.cell(r, rc::kType);
    const QStringView weight = list.cell(r, rc::kWeight);
    const QStringView result = list.cell(r, rc::kFulfilled);
    const QStringView factor = list.cell(r, rc::kFactor);
    const QChar t = firstChar(type);
    const bool weighted = t == u'1' || t == u'2';
    const QChar res = firstChar(result);
    const bool inspected = res == u'K' || res == u'E';

    if (t != u'1' && t != u'2' && t != u'3') {
        // Anything else counts as advisory: the weight goes nowhere.
        const bool weightLost = CustomVal(weight) != 0;
        const QString message =
            blank(type)
                ? QStringLiteral("Tyyppi puuttuu: vaatimus luetaan ohjeelliseksi (tyyppi 3)")
                : QStringLiteral("Tyyppi %1 luetaan ohjeelliseksi (tyyppi 3): ensimmäinen merkki ei ole 1, 2 "
                                 "tai 3")
                      .arg(quoted(type));
        c.add(weightLost ? Severity::Error : Severity::Remark, FindingKind::TypeNotRead, r, rc::kType, type,
              weightLost ? message + QStringLiteral(", eikä sen painoarvoa lasketa") : message);
    }

    if (!blank(weight)) {
        const TextReading reading = c.numberCell(r, rc::kWeight, weighted);
        checkRange(c, r, rc::kWeight, weight, reading, 5, FindingKind::WeightOutOfRange, weighted);
    }

    if (!blank(result) && !inspected)
        c.add(weighted ? Severity::Error : Severity::Remark, FindingKind::ResultNotRead, r, rc::kFulfilled,
              result,
              QStringLiteral(
                  "Täyttää vaatimukset %1 luetaan tarkastamattomaksi: vain \"K\"- tai \"E\"-alkuinen "
                  "arvo luetaan")
                  .arg(quoted(result)));
    else if (inspected && firstChar(list.cell(r, rc::kMethod).trimmed()) == u'M' && !measured(list, r))
        c.add(Severity::Remark, FindingKind::InspectedWithoutMeasurement, r, rc::kFulfilled, result,
              QStringLiteral("Vaatimus on tarkastettu, mutta mittauksia (MITTAUSTEN LKM, MINIMI, MAKSIMI, "
                             "KESKIARVO) ei ole kirjattu, vaikka tarkastustapa on mittaus"));

    if (!blank(factor)) {
        // The factor counts only for a failed requirement that carries weight.
        const bool feeds = weighted && res == u'E';
        const TextReading reading = c.numberCell(r, rc::kFactor, feeds);
        checkRange(c, r, rc::kFactor, factor, reading, 1, FindingKind::FactorOutOfRange, feeds);
    }
}

// A caption's littera that is not above the one before it in its work phase.
void reportOrder(Collector& c, int r, QStringView littera, const QString& phaseLittera,
                 const QString& previousShown) {
    c.add(Severity::Remark, FindingKind::LitteraOrder, r, qc::kLittera, littera,
          QStringLiteral("Littera %1 ei ole nousevassa järjestyksessä%2: edellinen littera on %3")
              .arg(quoted(littera.trimmed()),
                   phaseLittera.isEmpty() ? QString() : QStringLiteral(" työvaiheessa ") + phaseLittera,
                   quoted(previousShown)));
}

// A littera (by its normalised `key`) that an earlier row already has; else it is noted as seen.
void checkRepeated(Collector& c, QHash<QString, int>& seen, int r, QStringView littera, const QString& key) {
    const auto it = seen.constFind(key);
    if (it != seen.constEnd())
        c.add(Severity::Remark, FindingKind::LitteraTwice, r, qc::kLittera, littera,
              QStringLiteral("Littera %1 on jo rivillä %2").arg(quoted(littera.trimmed())).arg(it.value()));
    else
        seen.insert(key, r);
}

// Litteras of the captions: ascending within each work phase, and each only once in the list.
// Work phases of the quantity list without a single unit price.
void checkLitteras(CheckPlace place, const lists::ListModel& list, std::vector<Finding>& out) {
    Collector c(place, &list, out);
    const bool quantities = place == CheckPlace::Quantities;
    const int headingCol = quantities ? qc::kWorkPhase : rc::kText;
    QHash<QString, int> seen;
    QString previous;      // normalised littera of the caption before, in this work phase
    QString previousShown; // the same as the list shows it
    QString phaseLittera;  // for the messages
    int phaseRow = 0;      // the open work phase of the quantity list, 0 when none
    bool phasePriced = false;
    const auto closePhase = [&] {
        if (phaseRow != 0 && !phasePriced)
            c.add(Severity::Remark, FindingKind::PhaseWithoutPrices, phaseRow, qc::kWorkPhase,
                  list.cell(phaseRow, qc::kWorkPhase),
                  QStringLiteral("Työvaiheessa %1 ei ole yhtään hinnoiteltua riviä").arg(phaseLittera));
        phaseRow = 0;
    };

    for (int r = 1; r <= list.rows(); ++r) {
        const bool priced = quantities && !blank(list.cell(r, qc::kUnitPrice));
        const QStringView littera = list.cell(r, qc::kLittera);
        const QStringView heading = list.cell(r, headingCol);
        const bool roadWorks = heading == lists::kRoadWorksCaption;
        if (blank(littera) && !roadWorks) {
            phasePriced = phasePriced || priced;
            continue;
        }
        const QString trimmed = littera.trimmed().toString();
        const QString key = lists::normalisedLittera(trimmed);
        if (roadWorks || lists::CapitalString(heading)) {
            // A work phase; the road works' caption only opens their block.
            if (quantities) {
                closePhase();
                if (!roadWorks && !trimmed.isEmpty()) {
                    phaseRow = r;
                    phasePriced = false;
                }
            }
            previous = key;
            previousShown = trimmed;
            phaseLittera = trimmed;
        } else {
            if (!previous.isEmpty() && key <= previous)
                reportOrder(c, r, littera, phaseLittera, previousShown);
            previous = key;
            previousShown = trimmed;
        }
        phasePriced = phasePriced || priced;
        if (!trimmed.isEmpty()) checkRepeated(c, seen, r, littera, key);
    }
    if (quantities) closePhase();
}

// ------------------------------------------------------------------ the basic data fields

void checkFields(const CostInputs& inputs, std::vector<Finding>& out) {
    Collector c(CheckPlace::BasicData, nullptr, out);
    const auto number = [&](int field, const QString& text, bool percent) {
        const TextReading reading = readNumberText(text, percent);
        if (reading.issue)
            c.add(changesValue(reading.issue) ? Severity::Error : Severity::Remark, *reading.issue, 0, field,
                  text, readingMessage(fieldLabel(field), text, reading));
    };
    // The estimate divides by the unit price index; without one it converts nothing.
    const double unitIndex = CustomVal(inputs.unitPriceIndex);
    const QString noConversion =
        QStringLiteral("kustannuksia ei muunneta kustannusindeksin tasoon (kerroin 1)");
    const auto missing = [&](int field, const QString& text, Severity severity, const QString& consequence) {
        const QString what = blank(text) ? fieldLabel(field) + QStringLiteral(" puuttuu")
                                         : fieldLabel(field) + QLatin1Char(' ') + quoted(text) +
                                               QStringLiteral(" luetaan arvoksi 0");
        c.add(severity, FindingKind::IndexMissing, 0, field, text, what + QStringLiteral(": ") + consequence);
    };
    if (unitIndex == 0)
        missing(kUnitPriceIndexField, inputs.unitPriceIndex, Severity::Error, noConversion);
    else
        number(kUnitPriceIndexField, inputs.unitPriceIndex, false);
    if (CustomVal(inputs.costIndex) == 0) {
        if (unitIndex != 0)
            missing(kCostIndexField, inputs.costIndex, Severity::Error,
                    QStringLiteral("muunnetut kustannukset ovat 0 (kerroin 0)"));
        else
            missing(kCostIndexField, inputs.costIndex, Severity::Remark, noConversion);
    } else {
        number(kCostIndexField, inputs.costIndex, false);
    }
    if (!blank(inputs.generalPercent)) number(kGeneralPercentField, inputs.generalPercent, true);
    if (!blank(inputs.vatPercent)) number(kVatPercentField, inputs.vatPercent, true);
}

bool hasPricedRow(const lists::ListModel& list) {
    for (int r = 1; r <= list.rows(); ++r)
        if (!blank(list.cell(r, qc::kQuantity)) && !blank(list.cell(r, qc::kUnitPrice))) return true;
    return false;
}

void checkList(CheckPlace place, const lists::ListModel& list, std::vector<Finding>& out) {
    const std::size_t first = out.size();
    for (int r = 1; r <= list.rows(); ++r)
        CheckRow(place, list, r, out);
    const std::size_t rowFindings = out.size();
    checkLitteras(place, list, out);
    // Both parts are in row order; merge them, keeping the columns of a row in order.
    const auto byPlace = [](const Finding& a, const Finding& b) {
        return a.row != b.row ? a.row < b.row : a.column < b.column;
    };
    std::stable_sort(out.begin() + static_cast<std::ptrdiff_t>(rowFindings), out.end(), byPlace);
    std::inplace_merge(out.begin() + static_cast<std::ptrdiff_t>(first),
                       out.begin() + static_cast<std::ptrdiff_t>(rowFindings), out.end(), byPlace);
}

QString oneLine(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String(" "));
    for (QChar& ch : text)
        if (ch == u'\t' || ch == u'\r' || ch == u'\n') ch = u' ';
    return text;
}

} // namespace

void CheckRow(CheckPlace place, const lists::ListModel& list, int row, std::vector<Finding>& out) {
    if (place == CheckPlace::Quantities)
        checkQuantityRow(list, row, out);
    else if (place == CheckPlace::Requirements)
        checkRequirementRow(list, row, out);
}

std::vector<Finding> CheckProject(const CheckSource& source) {
    std::vector<Finding> out;
    // The index fields matter only once the estimate has something to convert.
    if (source.quantities && hasPricedRow(*source.quantities)) checkFields(source.inputs, out);
    if (source.quantities) checkList(CheckPlace::Quantities, *source.quantities, out);
    if (source.requirements) checkList(CheckPlace::Requirements, *source.requirements, out);
    return out;
}

QString SeverityText(Severity severity) {
    return severity == Severity::Error ? QStringLiteral("Virhe") : QStringLiteral("Huomautus");
}

QString PlaceText(CheckPlace place) {
    switch (place) {
        case CheckPlace::BasicData:
            return QStringLiteral("Perustiedot");
        case CheckPlace::Quantities:
            return QStringLiteral("Määräluettelo");
        case CheckPlace::Requirements:
            break;
    }
    return QStringLiteral("Laatuvaatimukset");
}

int ErrorCount(const std::vector<Finding>& findings) {
    return static_cast<int>(std::count_if(findings.begin(), findings.end(),
                                          [](const Finding& f) { return f.severity == Severity::Error; }));
}

int RemarkCount(const std::vector<Finding>& findings) {
    return static_cast<int>(findings.size()) - ErrorCount(findings);
}

QString CountText(int count, Severity severity) {
    const bool one = count == 1;
    if (severity == Severity::Error)
        return QString::number(count) + (one ? QStringLiteral(" virhe") : QStringLiteral(" virhettä"));
    return QString::number(count) + (one ? QStringLiteral(" huomautus") : QStringLiteral(" huomautusta"));
}

QString FindingsAsLines(const std::vector<Finding>& findings) {
    QString out;
    const QLatin1Char tab('\t');
    for (const Finding& f : findings) {
        out += SeverityText(f.severity).toLower() + tab + PlaceText(f.place).toLower() + tab +
               (f.row > 0 ? QString::number(f.row) : QString()) + tab + oneLine(f.columnName) + tab +
               oneLine(f.text) + tab + oneLine(f.message) + QLatin1Char('\n');
    }
    return out;
}

QByteArray FindingsAsJson(const std::vector<Finding>& findings) {
    QJsonArray array;
    for (const Finding& f : findings) {
        QJsonObject o;
        o.insert(QStringLiteral("severity"), SeverityText(f.severity).toLower());
        o.insert(QStringLiteral("list"), PlaceText(f.place).toLower());
        o.insert(QStringLiteral("row"), f.row > 0 ? QJsonValue(f.row) : QJsonValue(QJsonValue::Null));
        o.insert(QStringLiteral("column"), f.columnName);
        o.insert(QStringLiteral("text"), f.text);
        o.insert(QStringLiteral("message"), f.message);
        array.append(o);
    }
    return QJsonDocument(array).toJson(QJsonDocument::Indented);
}

} // namespace calc
