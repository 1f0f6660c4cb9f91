// The card texts: the characteristics card's computed fields and the print slots of both cards.
#include "FormsTestHost.h"
#include "documents/CardText.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "lists/ListModel.h"

#include <QLabel>
#include <gtest/gtest.h>
#include <map>

using documents::CardBasicData;
using documents::UpdateCardText;
using documents::WindowTexts;

namespace {

// A bridge 20 m long with an 18 m deck, 10 m wide: AT = 200 m2, A = 180 m2.
CardBasicData bridge() {
    CardBasicData b;
    b.totalLength = QStringLiteral("20");
    b.deckLength = QStringLiteral("18");
    b.width = QStringLiteral("10,0");
    b.moneyUnit = QStringLiteral("€");
    b.unitPriceIndex = QStringLiteral("104");
    b.costIndex = QStringLiteral("104");
    b.baseYear = QStringLiteral("1995");
    return b;
}

calc::CostRecord estimate() {
    calc::CostRecord r;
    r.bridgeRounded = 1000000;
    r.roadRounded = 50000;
    r.bridgeGeneral = 200000;
    r.roadGeneral = 10000;
    r.superstructureSum = 300000;
    return r;
}

QStringList cardWith(const std::map<int, QString>& values) {
    QStringList card;
    for (int i = 0; i < 62; ++i)
        card.append(QString());
    for (const auto& [i, v] : values)
        card[i] = v;
    return card;
}

} // namespace

TEST(UpdateCardText, AreasCostsAndIndex) {
    QStringList card = cardWith({{0, QStringLiteral("5,2")}, {11, QStringLiteral("2 000 000")}});
    const documents::CardLabels labels = UpdateCardText(bridge(), estimate(), card);
    EXPECT_EQ(card[3], QStringLiteral("200,0"));
    EXPECT_EQ(card[4], QStringLiteral("180,0"));
    EXPECT_EQ(card[5], QStringLiteral("1050000"));
    EXPECT_EQ(card[6], QStringLiteral("5250"));
    // Equal indices: the general costs and the superstructure as they are.
    EXPECT_EQ(card[7], QStringLiteral("210000"));
    EXPECT_EQ(card[8], QStringLiteral("300000"));
    EXPECT_EQ(card[9], QStringLiteral("104"));
    EXPECT_EQ(card[10], QStringLiteral("1995"));
    // The realised cost per square metre of the total area.
    EXPECT_EQ(card[12], QStringLiteral("10000"));
    // Typed fields stay as they were.
    EXPECT_EQ(card[0], QStringLiteral("5,2"));
    EXPECT_EQ(card[11], QStringLiteral("2 000 000"));
    EXPECT_EQ(labels.money, QStringLiteral("€"));
    EXPECT_EQ(labels.perSquareMetre, QStringLiteral("€/m2"));
}

TEST(UpdateCardText, ConversionToTheCostIndex) {
    CardBasicData b = bridge();
    b.unitPriceIndex = QStringLiteral("100");
    b.costIndex = QStringLiteral("150");
    QStringList card = cardWith({});
    UpdateCardText(b, estimate(), card);
    EXPECT_EQ(card[7], QStringLiteral("315000"));
    EXPECT_EQ(card[8], QStringLiteral("450000"));
    EXPECT_EQ(card[9], QStringLiteral("150"));

    // A unit price index of 0 leaves both empty, also when they held figures before.
    b.unitPriceIndex = QStringLiteral("0");
    card[7] = QStringLiteral("1");
    card[8] = QStringLiteral("2");
    UpdateCardText(b, estimate(), card);
    EXPECT_EQ(card[7], QString());
    EXPECT_EQ(card[8], QString());
    b.unitPriceIndex.clear();
    UpdateCardText(b, estimate(), card);
    EXPECT_EQ(card[7], QString());
    // The whole bridge is still shown.
    EXPECT_EQ(card[5], QStringLiteral("1050000"));
}

TEST(UpdateCardText, WithoutWidthTheAreasAndPerSquareMetreStayEmpty) {
    CardBasicData b = bridge();
    b.width.clear();
    QStringList card = cardWith({{3, QStringLiteral("old")},
                                 {4, QStringLiteral("old")},
                                 {6, QStringLiteral("old")},
                                 {11, QStringLiteral("500000")},
                                 {12, QStringLiteral("old")},
                                 {43, QStringLiteral("12")},
                                 {44, QStringLiteral("old")}});
    UpdateCardText(b, estimate(), card);
    for (int i : {3, 4, 6, 12, 44})
        EXPECT_EQ(card[i], QString()) << i;
    EXPECT_EQ(card[5], QStringLiteral("1050000"));

    // A deck length without a total length: the deck area shows, the realised cost per m2 not.
    b = bridge();
    b.totalLength.clear();
    UpdateCardText(b, estimate(), card);
    EXPECT_EQ(card[4], QStringLiteral("180,0"));
    EXPECT_EQ(card[3], QString());
    EXPECT_EQ(card[6], QString());
    EXPECT_EQ(card[12], QString());
}

TEST(UpdateCardText, SupportAndSuperstructureRatios) {
    QStringList card = cardWith({
        {21, QStringLiteral("10")},
        {25, QStringLiteral("1234")}, // abutments' foundation
        {22, QString()},
        {26, QStringLiteral("500")}, // no concrete: no ratio
        {23, QStringLiteral("4")},
        {27, QStringLiteral("390")},
        {24, QStringLiteral("3,0")},
        {28, QStringLiteral("100")},
        {30, QStringLiteral("old")},
        {43, QStringLiteral("36")},
        {47, QStringLiteral("90")},
        {57, QStringLiteral("2 500")},
        {59, QStringLiteral("9")},
        {45, QStringLiteral("1,8")},
        {51, QStringLiteral("9000")},
        {55, QStringLiteral("1350")},
        {53, QStringLiteral("225")},
        {49, QStringLiteral("500")},
    });
    UpdateCardText(bridge(), estimate(), card);
    EXPECT_EQ(card[29], QStringLiteral("123,4"));
    EXPECT_EQ(card[30], QString());
    EXPECT_EQ(card[31], QStringLiteral("97,5"));
    EXPECT_EQ(card[32], QStringLiteral("33,3"));
    // Per deck area A = 180 m2.
    EXPECT_EQ(card[44], QStringLiteral("0,20"));
    EXPECT_EQ(card[48], QStringLiteral("0,50"));
    EXPECT_EQ(card[58], QStringLiteral("13,9"));
    EXPECT_EQ(card[60], QStringLiteral("0,05"));
    EXPECT_EQ(card[46], QStringLiteral("0,01"));
    // Per concrete V = 90 m3 and per tonne of structural steel t = 2,5.
    EXPECT_EQ(card[52], QStringLiteral("100,0"));
    EXPECT_EQ(card[56], QStringLiteral("15,0"));
    EXPECT_EQ(card[54], QStringLiteral("2,50"));
    EXPECT_EQ(card[50], QStringLiteral("200,0"));
}

TEST(UpdateCardText, WithoutConcreteOnlyThePerConcreteRatiosStayEmpty) {
    QStringList card = cardWith({{43, QStringLiteral("36")},
                                 {51, QStringLiteral("9000")},
                                 {55, QStringLiteral("1350")},
                                 {53, QStringLiteral("225")},
                                 {52, QStringLiteral("old")},
                                 {54, QStringLiteral("old")},
                                 {56, QStringLiteral("old")}});
    UpdateCardText(bridge(), estimate(), card);
    EXPECT_EQ(card[52], QString());
    EXPECT_EQ(card[56], QString());
    EXPECT_EQ(card[54], QString());
    EXPECT_EQ(card[44], QStringLiteral("0,20"));
    // An empty amount over a non-zero area prints as zero.
    EXPECT_EQ(card[48], QStringLiteral("0,00"));
    // No structural steel: no painted area per tonne.
    EXPECT_EQ(card[50], QString());
}

TEST(UpdateCardText, ShortCardIsPadded) {
    QStringList card;
    UpdateCardText(bridge(), estimate(), card);
    ASSERT_EQ(card.size(), 62);
    EXPECT_EQ(card[5], QStringLiteral("1050000"));
}

TEST(RemoveInfo, CutsAClosingExplanation) {
    EXPECT_EQ(documents::RemoveInfo(QStringLiteral("Teräs (S355)")), QStringLiteral("Teräs "));
    EXPECT_EQ(documents::RemoveInfo(QStringLiteral("2 (KLVn mukainen)")), QStringLiteral("2 "));
    EXPECT_EQ(documents::RemoveInfo(QStringLiteral("x(y)")), QStringLiteral("x"));
    EXPECT_EQ(documents::RemoveInfo(QStringLiteral("LM1 (a) ja (b)")), QStringLiteral("LM1 (a) ja "));
    EXPECT_EQ(documents::RemoveInfo(QStringLiteral("(S355)")), QStringLiteral("(S355)"));
    EXPECT_EQ(documents::RemoveInfo(QStringLiteral("Uusimaa (UUD) etelä")),
              QStringLiteral("Uusimaa (UUD) etelä"));
    EXPECT_EQ(documents::RemoveInfo(QStringLiteral("a)")), QStringLiteral("a)"));
    EXPECT_EQ(documents::RemoveInfo(QString()), QString());
}

namespace {

// Every field of a window named by where it comes from: "B.T4", "K.C11", ...
WindowTexts labelled(const char* window, int texts, int combos) {
    WindowTexts w;
    for (int i = 0; i < texts; ++i)
        w.Text1.append(QStringLiteral("%1.T%2").arg(QLatin1String(window)).arg(i));
    for (int i = 0; i < combos; ++i)
        w.Combo1.append(QStringLiteral("%1.C%2").arg(QLatin1String(window)).arg(i));
    return w;
}

} // namespace

TEST(UpdateSTCard, SlotsTakeTheirFields) {
    WindowTexts basic = labelled("B", 14, 18);
    WindowTexts card = labelled("K", 62, 20);
    basic.Combo1[2] = QStringLiteral("Uusimaa (UUD)");
    card.Combo1[0] = QStringLiteral("Paalut (teräs)");
    card.Combo1[8] = QStringLiteral("Tiesilta (T)");
    const QStringList st = documents::UpdateSTCard(basic, card);
    ASSERT_EQ(st.size(), 98);
    EXPECT_EQ(st[0], QString());
    const std::pair<int, const char*> expected[] = {
        {1, "B.T0"},   {2, "B.T2"},   {3, "B.T1"},   {4, "B.C9"},   {5, "Uusimaa "}, {6, "Tiesilta (T)"},
        {7, "K.C9"},   {8, "B.C0"},   {13, "K.T3"},  {14, "B.T8"},  {19, "Paalut "}, {20, "K.C1"},
        {21, "B.T6"},  {22, "K.T4"},  {25, "K.T7"},  {34, "K.T16"}, {35, "K.T17"},   {36, "K.C7"},
        {50, "K.C4"},  {51, "K.T25"}, {54, "K.T28"}, {55, "K.C11"}, {56, "K.T29"},   {70, "K.T43"},
        {71, "K.C10"}, {72, "K.T44"}, {73, "K.T47"}, {83, "K.C19"}, {86, "K.T50"},   {92, "K.T45"},
        {94, "K.T46"}, {95, "K.T61"}, {96, "B.C7"},  {97, "B.C5"},
    };
    for (const auto& [slot, text] : expected)
        EXPECT_EQ(st[slot], QString::fromUtf8(text)) << slot;

    // Every field of the card is printed exactly once.
    for (int i = 0; i < 62; ++i)
        EXPECT_EQ(st.count(QStringLiteral("K.T%1").arg(i)), 1) << "K.T" << i;
    for (int i = 0; i < 20; ++i) {
        if (i == 0 || i == 8) continue; // replaced above by texts with explanations
        EXPECT_EQ(st.count(QStringLiteral("K.C%1").arg(i)), 1) << "K.C" << i;
    }
}

TEST(UpdateSTCharge, SlotsTakeTheirFields) {
    WindowTexts basic = labelled("B", 14, 18);
    WindowTexts charge = labelled("P", 9, 5);
    basic.Combo1[2] = QStringLiteral("Uusimaa (UUD)");
    const QStringList st = documents::UpdateSTCharge(basic, charge);
    ASSERT_EQ(st.size(), 18);
    const char* const expected[] = {"",     "B.C7", "Uusimaa (UUD)", "B.T0", "P.T0", "B.C9",
                                    "P.C0", "P.C1", "P.T2",          "P.C3", "P.T3", "P.T6",
                                    "B.C0", "P.T5", "P.C2",          "P.T7", "P.T8", "P.C4"};
    for (int i = 0; i < 18; ++i)
        EXPECT_EQ(st[i], QString::fromUtf8(expected[i])) << i;
}

TEST(UpdateSTCard, MissingFieldsGiveEmptyTexts) {
    const QStringList st = documents::UpdateSTCard(WindowTexts{}, WindowTexts{});
    ASSERT_EQ(st.size(), 98);
    for (int i = 0; i < st.size(); ++i)
        EXPECT_TRUE(st[i].isEmpty()) << "slot " << i;
}

TEST(CardWindows, ComputeFromTheWindowsAndTheQuantityList) {
    testing_support::FormsTestHost host;
    documents::Form1 basic(host);
    documents::Form3 card(host);
    basic.Text1[4]->setText(QStringLiteral("20"));
    basic.Text1[6]->setText(QStringLiteral("18"));
    basic.Text1[8]->setText(QStringLiteral("10"));
    basic.Combo1[4]->setText(QStringLiteral("€"));
    basic.Combo1[3]->setText(QStringLiteral("104"));
    basic.Combo1[10]->setText(QStringLiteral("104"));
    basic.Combo1[11]->setText(QStringLiteral("25"));
    basic.Combo1[13]->setText(QStringLiteral("2000"));
    card.Text1[11]->setText(QStringLiteral("3000000"));

    // Bridge: one superstructure item of 10000; road works: 1000.
    lists::ListModel quantities;
    std::vector<lists::Column> columns;
    for (const char* h :
         {"LITTERA", "TYÖVAIHE", "RAK. OSA", "MÄÄRÄ", "YKSIKKÖ", "YKS.HINTA", "HUOMAUTUKSET", "Rivi"})
        columns.push_back({QString::fromUtf8(h), 1000});
    auto row = [](std::initializer_list<const char*> cells) {
        lists::Row r;
        for (const char* c : cells)
            r.cells.append(QString::fromUtf8(c));
        return r;
    };
    quantities.reset(columns, {row({"7171", "Kansilaatan betoni", "", "10", "m3", "1000", "", "00001"}),
                               row({"", "TIETYÖT SILTAPAIKALLA", "", "", "", "", "", "00002"}),
                               row({"1000", "Tien rakenne", "", "5", "m", "200", "", "00003"})});
    host.changed.clear();
    documents::UpdateCardText(basic, &quantities, card);
    // Bridge 12500, road 1250 rounded to 1200: total 13700; general 2500 + 250; superstructure 10000.
    EXPECT_EQ(card.Text1[5]->text(), QStringLiteral("13700"));
    EXPECT_EQ(card.Text1[6]->text(), QStringLiteral("68"));
    EXPECT_EQ(card.Text1[7]->text(), QStringLiteral("2750"));
    EXPECT_EQ(card.Text1[8]->text(), QStringLiteral("10000"));
    EXPECT_EQ(card.Text1[10]->text(), QStringLiteral("2000"));
    EXPECT_EQ(card.Text1[12]->text(), QStringLiteral("15000"));
    EXPECT_EQ(card.Label1[2]->text(), QStringLiteral("€"));
    EXPECT_EQ(card.Label1[4]->text(), QStringLiteral("€/m2"));
    // The computed figures are a change of the card.
    EXPECT_FALSE(host.changed.empty());

    // No detailed data window: an empty estimate.
    documents::UpdateCardText(basic, static_cast<documents::Form2*>(nullptr), card);
    EXPECT_EQ(card.Text1[5]->text(), QString());
    EXPECT_EQ(card.Text1[12]->text(), QStringLiteral("15000"));

    // The print slots read the windows.
    documents::Form4 charge(host);
    charge.Text1[0]->setText(QStringLiteral("U-1234"));
    basic.Combo1[9]->setText(QStringLiteral("Espoo"));
    const QStringList st = documents::UpdateSTCharge(basic, charge);
    EXPECT_EQ(st[4], QStringLiteral("U-1234"));
    EXPECT_EQ(st[5], QStringLiteral("Espoo"));
    EXPECT_EQ(documents::UpdateSTCard(basic, card)[23], QString());
    EXPECT_EQ(documents::UpdateSTCard(basic, card)[29], QStringLiteral("3000000"));
}
