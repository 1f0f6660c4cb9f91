#include "calc/CardText.h"

#include "calc/NumberText.h"

#include <vector>

namespace calc {

namespace {

constexpr int kCardTexts = 62;

QString at(const QStringList& texts, int i) {
    return i >= 0 && i < texts.size() ? texts[i] : QString();
}

// One slot of a print layout: which window (B basic data, K characteristics card, P charge
// chamber card), which array (T Text1, C Combo1), the index, and whether the bracketed
// explanation is cut.
struct Slot {
    char window;
    char array;
    int index;
    bool cut;
};

// Reads a slot table written as "BT0 BC2* KT7-16 ...": window, array and index; "*" cuts the
// explanation; "a-b" stands for the indices a to b in order, one slot each.
std::vector<Slot> parseSlots(const char* table) {
    std::vector<Slot> slotList;
    const QStringList tokens = QString::fromLatin1(table).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& token : tokens) {
        const char window = token[0].toLatin1();
        const char array = token[1].toLatin1();
        QString range = token.mid(2);
        const bool cut = range.endsWith(QLatin1Char('*'));
        if (cut) range.chop(1);
        const QStringList ends = range.split(QLatin1Char('-'));
        const int first = ends[0].toInt();
        const int last = ends.size() > 1 ? ends[1].toInt() : first;
        for (int i = first; i <= last; ++i)
            slotList.push_back({window, array, i, cut});
    }
    return slotList;
}

QStringList collect(const std::vector<Slot>& slotList, const WindowTexts& basic, const WindowTexts& own) {
    QStringList out;
    out.reserve(static_cast<int>(slotList.size()) + 1);
    out.append(QString()); // slots count from 1
    for (const Slot& s : slotList) {
        const WindowTexts& w = s.window == 'B' ? basic : own;
        const QString text = at(s.array == 'T' ? w.Text1 : w.Combo1, s.index);
        out.append(s.cut ? RemoveInfo(text) : text);
    }
    return out;
}

// Slots 1 .. 97 of the characteristics card.
const char* const kCardSlots = "BT0 BT2 BT1 BC9 BC2* KC8 KC9 BC0 BC1 BT3 "     // 1-10
                               "BT4 BT5 KT3 BT8 BT7 KT0 KT1 KT2 KC0* KC1* "    // 11-20
                               "BT6 KT4 KT5 KT6 KT7-16 "                       // 21-34
                               "KT17 KC7 KT18 KC13 KT19 KC3 KT20 KC5 "         // 35-42
                               "KT21 KC6 KT22 KC12 KT23 KC2 KT24 KC4 "         // 43-50
                               "KT25-28 KC11 KT29-43 KC10 KT44 "               // 51-72
                               "KT47 KC14 KT48 KT51 KC17 KT52 KT55 KC18 KT56 " // 73-81
                               "KT57 KC19 KT58 KT49 KT50 KT53 KT54 "           // 82-88
                               "KT59 KC16 KT60 KT45 KC15 KT46 KT61 BC7 BC5";   // 89-97

// Slots 1 .. 17 of the charge chamber card.
const char* const kChargeSlots = "BC7 BC2 BT0 PT0 BC9 PC0 PC1 PT2 PC3 PT3 PT6 BC0 PT5 PC2 PT7 PT8 PC4";

} // namespace

namespace {

// 7.-8. The key ratios: reinforcement per concrete of the supports; the superstructure per
// deck area, per concrete and per tonne of structural steel.
void writeRatios(QStringList& card, double deckArea) {
    // 7. Reinforcement per concrete of the supports.
    for (int j = 0; j < 4; ++j) {
        const double concrete = CustomVal(card[21 + j]);
        card[29 + j] =
            concrete != 0 ? DecimalS(static_cast<float>(CustomVal(card[25 + j]) / concrete), 1) : QString();
    }

    // 8. Superstructure ratios: per deck area, per concrete, per tonne of structural steel.
    const double concrete = CustomVal(card[47]);
    const double steelTonnes = CustomVal(card[57]) / 1000;
    struct Ratio {
        int result, amount;
        double divisor;
        int decimals;
    };
    const Ratio ratios[] = {{44, 43, deckArea, 2}, {48, 47, deckArea, 2}, {58, 57, deckArea, 1},
                            {60, 59, deckArea, 2}, {46, 45, deckArea, 2}, {52, 51, concrete, 1},
                            {56, 55, concrete, 1}, {54, 53, concrete, 2}, {50, 49, steelTonnes, 1}};
    for (const Ratio& r : ratios)
        card[r.result] = r.divisor != 0
                             ? DecimalS(static_cast<float>(CustomVal(card[r.amount]) / r.divisor), r.decimals)
                             : QString();
}

} // namespace

CardLabels UpdateCardText(const CardBasicData& basic, const CostRecord& costs, QStringList& card) {
    while (card.size() < kCardTexts)
        card.append(QString());
    auto value = [&card](int i) { return CustomVal(card[i]); };

    // 1. Areas: A of the deck, AT of the whole length.
    const double width = CustomVal(basic.width);
    const double deckArea = CustomVal(basic.deckLength) * width;
    const double totalArea = CustomVal(basic.totalLength) * width;

    // 2.-3. The estimate of the whole bridge, and per square metre of the total area.
    const float total = costs.bridgeRounded + costs.roadRounded;
    card[5] = MoneyS(total, 0);
    card[3] = totalArea != 0 ? DecimalS(static_cast<float>(totalArea), 1) : QString();
    card[6] = totalArea != 0 ? MoneyS(static_cast<float>(total / totalArea), 0) : QString();

    // 4. General costs and the superstructure, converted to the cost index.
    card[7].clear();
    card[8].clear();
    const double unitPriceIndex = CustomVal(basic.unitPriceIndex);
    if (unitPriceIndex != 0) {
        const double f = (CustomVal(basic.costIndex) - unitPriceIndex) / unitPriceIndex + 1;
        card[7] = MoneyS(static_cast<float>(f * (costs.bridgeGeneral + costs.roadGeneral)), 0);
        card[8] = MoneyS(static_cast<float>(f * costs.superstructureSum), 0);
    }

    // 5. The index the estimate is given at.
    card[9] = basic.costIndex;
    card[10] = basic.baseYear;

    // 6. The deck area, and the realised cost per square metre.
    if (deckArea == 0) {
        card[4].clear();
        card[12].clear();
    } else {
        card[4] = DecimalS(static_cast<float>(deckArea), 1);
        card[12] = totalArea != 0 ? MoneyS(static_cast<float>(value(11) / totalArea), 0) : QString();
    }

    writeRatios(card, deckArea);

    // 9. The money-unit labels.
    return {basic.moneyUnit, basic.moneyUnit + QStringLiteral("/m2")};
}

CardBasicData CardBasicDataOf(const WindowTexts& basic) {
    CardBasicData d;
    d.totalLength = at(basic.Text1, 4);
    d.deckLength = at(basic.Text1, 6);
    d.width = at(basic.Text1, 8);
    d.moneyUnit = at(basic.Combo1, 4);
    d.unitPriceIndex = at(basic.Combo1, 3);
    d.costIndex = at(basic.Combo1, 10);
    d.baseYear = at(basic.Combo1, 13);
    return d;
}

QString RemoveInfo(const QString& text) {
    if (!text.endsWith(QLatin1Char(')'))) return text;
    const int open = text.lastIndexOf(QLatin1Char('('));
    // A "(" at the very start is not an explanation after a value.
    if (open < 1) return text;
    return text.left(open);
}

QStringList UpdateSTCard(const WindowTexts& basic, const WindowTexts& card) {
    static const std::vector<Slot> slotList = parseSlots(kCardSlots);
    return collect(slotList, basic, card);
}

QStringList UpdateSTCharge(const WindowTexts& basic, const WindowTexts& charge) {
    static const std::vector<Slot> slotList = parseSlots(kChargeSlots);
    return collect(slotList, basic, charge);
}

} // namespace calc
