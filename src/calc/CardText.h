#pragma once
// The texts of the two cards: the computed (grey) fields of the characteristics card, and the
// numbered field texts that the card print layouts place on the page. Plain texts in and out,
// so that the desktop program, the command line and the tests share them.
#include "calc/CostEstimate.h"

#include <QString>
#include <QStringList>

namespace calc {

// The basic data window's texts that the card figures read.
struct CardBasicData {
    QString totalLength;    // Text1(4) "Kok. pituus (m)"
    QString deckLength;     // Text1(6) "Kannen pit. (m)"
    QString width;          // Text1(8) "Hl (m)"
    QString moneyUnit;      // Combo1(4) "Rahayksikkö"
    QString unitPriceIndex; // Combo1(3) "Yksikköhintojen i"
    QString costIndex;      // Combo1(10) "Kustannus i"
    QString baseYear;       // Combo1(13) "Vuosi (i = 100)"
};

// What the money-unit labels of the characteristics card show.
struct CardLabels {
    QString money;          // the money unit
    QString perSquareMetre; // the money unit followed by "/m2"
};

// Computes the grey fields of the characteristics card. `card` holds the texts of the card's
// Text1 by index (padded to 62 when shorter); the computed ones are replaced, every other text
// stays. `costs` is the cost record of the project's quantity list. Areas: A = deck length x
// width, AT = total length x width; a field whose divisor is 0 is left empty, and so are the
// converted general and superstructure costs when the unit price index is 0.
CardLabels UpdateCardText(const CardBasicData& basic, const CostRecord& costs, QStringList& card);

// The texts of a window's control arrays, by index.
struct WindowTexts {
    QStringList Text1;
    QStringList Combo1;
};

// The figures' inputs from the basic data window's texts.
CardBasicData CardBasicDataOf(const WindowTexts& basic);

// A value without its closing explanation in brackets: when the text ends with ")" and has a
// "(" after its first character, the text before the last "(" (a blank before it stays).
// "Teräs (S355)" gives "Teräs ", "(S355)" stays as it is.
QString RemoveInfo(const QString& text);

// The field texts of the characteristics card's print layout: element i is the text of slot i,
// 1 .. 97; element 0 is unused and empty. `basic` is the basic data window, `card` the card.
QStringList UpdateSTCard(const WindowTexts& basic, const WindowTexts& card);

// The field texts of the charge chamber card's print layout: element i is slot i, 1 .. 17;
// element 0 is unused and empty.
QStringList UpdateSTCharge(const WindowTexts& basic, const WindowTexts& charge);

} // namespace calc
