#include "calc/CostEstimate.h"
#include "calc/BasicFields.h"

#include "calc/NumberText.h"
#include "lists/ListProcedures.h"
#include "lists/Columns.h"
#include "lists/ListModel.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cmath>

namespace calc {

namespace {

using namespace lists::quantityCol;

// Litteras of the superstructure, compared as text on their first four characters.
const QString kSuperstructureFrom = QStringLiteral("7170");
const QString kSuperstructureTo = QStringLiteral("7199");

constexpr int kBridgeSummaryLines = 12;
constexpr int kRoadSummaryLines = 29;

// The five figures of one block from its sum of row amounts: general costs, total, the total
// converted to the cost index, and that rounded.
void closeBlock(float sum, double generalPercent, double factor, float& blockSum, float& general,
                float& total, float& converted, float& rounded) {
    blockSum = sum;
    general = static_cast<float>(sum * generalPercent / 100);
    total = general + sum;
    converted = static_cast<float>(factor * total);
    rounded = CustomRound(converted);
}

bool finite(std::initializer_list<float> values) {
    for (float v : values)
        if (!std::isfinite(v)) return false;
    return true;
}

bool opensRoadWorks(QStringView phase) {
    // Only "ö" and "Ö" turn into the caption's "Ö" in capitals: without one of them the costly
    // conversion to capitals can be skipped.
    if (!phase.contains(QChar(u'ö')) && !phase.contains(QChar(u'Ö'))) return false;
    return phase.toString().toUpper().contains(lists::kRoadWorksCaption);
}

} // namespace

CostInputs CostInputsOf(const QStringList& combos) {
    CostInputs in;
    in.moneyUnit = combos.value(basic::MoneyUnit);
    in.unitPriceIndex = combos.value(basic::UnitPriceIndex);
    in.costIndex = combos.value(basic::CostIndex);
    in.generalPercent = combos.value(basic::GeneralCostPercent);
    in.vatPercent = combos.value(basic::VatPercent);
    return in;
}

double ConversionFactor(const CostInputs& inputs) {
    const double unitIndex = CustomVal(inputs.unitPriceIndex);
    if (unitIndex == 0) return 1;
    return (CustomVal(inputs.costIndex) - unitIndex) / unitIndex + 1;
}

bool NextIsCaption1(const lists::ListModel& list, int row) {
    for (int r = row + 1; r <= list.rows(); ++r) {
        if (lists::CapitalString(list.cell(r, kWorkPhase))) return true;
        if (!lists::BlankString(list.cell(r, kQuantity)) || !lists::BlankString(list.cell(r, kUnitPrice)))
            return false;
    }
    return true;
}

namespace {

// One run of the estimate: the record being filled and the running sums of the open caption
// group and cost block.
class CostRun {
public:
    explicit CostRun(const CostInputs& inputs)
        : m_generalPercent(CustomVal(inputs.generalPercent))
        , m_factor(ConversionFactor(inputs)) {}

    // The road-works caption, or the last row when there is none, closes the bridge block;
    // that row already belongs to the road works. Only the first such caption closes it, so a
    // later heading that mentions the road works does not discard the bridge's sum.
    bool bridgeOpen() const { return !m_bridgeClosed; }
    void closeBridge(int row) {
        closeBlock(m_blockSum, m_generalPercent, m_factor, m_rec.bridgeSum, m_rec.bridgeGeneral,
                   m_rec.bridgeTotal, m_rec.bridgeConverted, m_rec.bridgeRounded);
        m_rec.bridgeSummaryRow = row - 1;
        m_rec.bridgeSummaryLines = kBridgeSummaryLines;
        if (m_rec.nonFiniteRow == 0 &&
            !finite({m_rec.bridgeGeneral, m_rec.bridgeTotal, m_rec.bridgeConverted, m_rec.bridgeRounded}))
            m_rec.nonFiniteRow = std::max(1, row - 1);
        m_captionSum = 0;
        m_blockSum = 0;
        m_superstructure = false;
        m_bridgeClosed = true;
    }

    // A row with a littera starts or ends the superstructure; a row without one stays in the
    // block of the row above it.
    void followLittera(QStringView littera) {
        littera = littera.left(4);
        if (!lists::BlankString(littera))
            m_superstructure = littera >= kSuperstructureFrom && littera <= kSuperstructureTo;
    }

    // Adds a priced row's amount; returns the subtotal to leave in its tag, empty when the row
    // does not close its caption group (a subtotal of an earlier run would print under a group
    // it no longer closes).
    QString addAmount(const lists::ListModel& list, int row, float amount) {
        m_captionSum += amount;
        m_blockSum += amount;
        if (m_superstructure) m_rec.superstructureSum += amount;
        if (m_rec.nonFiniteRow == 0 && !finite({amount, m_captionSum, m_blockSum, m_rec.superstructureSum}))
            m_rec.nonFiniteRow = row;
        if (!NextIsCaption1(list, row)) return QString();
        const QString subtotal = MoneyS(m_captionSum, 2);
        m_captionSum = 0;
        return subtotal;
    }

    // Closes the road-works block after the last of `rows` rows.
    CostRecord finish(int rows, const QString& vatPercent) {
        m_rec.roadSummaryRow = rows;
        closeBlock(m_blockSum, m_generalPercent, m_factor, m_rec.roadSum, m_rec.roadGeneral, m_rec.roadTotal,
                   m_rec.roadConverted, m_rec.roadRounded);
        m_rec.roadSummaryLines = kRoadSummaryLines;
        // The whole and its VAT are printed too: a sum of two finite blocks may still overflow.
        const float whole = m_rec.bridgeRounded + m_rec.roadRounded;
        const float vat = static_cast<float>(whole * CustomVal(vatPercent) / 100);
        if (m_rec.nonFiniteRow == 0 && !finite({m_rec.roadGeneral, m_rec.roadTotal, m_rec.roadConverted,
                                                m_rec.roadRounded, whole, CustomRound(whole), vat}))
            m_rec.nonFiniteRow = std::max(1, rows);
        return m_rec;
    }

private:
    const double m_generalPercent;
    const double m_factor;
    CostRecord m_rec;
    float m_captionSum = 0;
    float m_blockSum = 0;
    bool m_superstructure = false;
    bool m_bridgeClosed = false;
};

} // namespace

CostRecord CalculateCosts(lists::ListModel& list, const CostInputs& inputs) {
    CostRun run(inputs);
    const int n = list.rows();
    for (int i = 1; i <= n; ++i) {
        if (run.bridgeOpen() && (i == n || opensRoadWorks(list.cell(i, kWorkPhase)))) run.closeBridge(i);
        run.followLittera(list.cell(i, kLittera));
        const QStringView quantity = list.cell(i, kQuantity);
        const QStringView unitPrice = list.cell(i, kUnitPrice);
        if (lists::BlankString(quantity) || lists::BlankString(unitPrice)) {
            list.setRowTag(i, QString());
            continue;
        }
        const float amount = static_cast<float>(CustomVal(quantity) * CustomVal(unitPrice));
        list.setRowTag(i, run.addAmount(list, i, amount));
    }
    return run.finish(n, inputs.vatPercent);
}

QString NonFiniteMessage(const CostRecord& record) {
    if (record.nonFiniteRow == 0) return QString();
    return QStringLiteral("summa ei ole äärellinen: rivi %1").arg(record.nonFiniteRow);
}

std::vector<std::pair<QString, QString>> CostRecordFields(const CostRecord& r) {
    std::vector<std::pair<QString, QString>> out;
    const auto value = [&out](const char* name, float value) {
        out.emplace_back(QLatin1String(name), FigureText(value));
    };
    const auto count = [&out](const char* name, int value) {
        out.emplace_back(QLatin1String(name), QString::number(value));
    };
    value("bridgeSum", r.bridgeSum);
    value("bridgeGeneral", r.bridgeGeneral);
    value("superstructureSum", r.superstructureSum);
    value("bridgeTotal", r.bridgeTotal);
    value("bridgeConverted", r.bridgeConverted);
    value("bridgeRounded", r.bridgeRounded);
    value("roadSum", r.roadSum);
    value("roadGeneral", r.roadGeneral);
    value("roadTotal", r.roadTotal);
    value("roadConverted", r.roadConverted);
    value("roadRounded", r.roadRounded);
    count("bridgeSummaryRow", r.bridgeSummaryRow);
    count("roadSummaryRow", r.roadSummaryRow);
    count("bridgeSummaryLines", r.bridgeSummaryLines);
    count("roadSummaryLines", r.roadSummaryLines);
    return out;
}

QString FormatCostRecord(const CostRecord& r) {
    QString out;
    for (const auto& [name, value] : CostRecordFields(r))
        out += name + QLatin1String(" = ") + value + QLatin1Char('\n');
    return out;
}

QJsonObject CostRecordObject(const CostRecord& r) {
    QJsonObject object;
    // The numbers the lines show, read back: the same digits in the JSON text.
    for (const auto& [name, value] : CostRecordFields(r))
        object.insert(name, value.toDouble());
    return object;
}

QByteArray CostRecordAsJson(const CostRecord& r) {
    return QJsonDocument(CostRecordObject(r)).toJson(QJsonDocument::Indented);
}

} // namespace calc
