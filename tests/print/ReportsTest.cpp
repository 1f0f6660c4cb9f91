// What the quantity list, the cost estimate and the front page put where.
#include "calc/CostEstimate.h"
#include "calc/NumberText.h"
#include "print/PrintFixtures.h"
#include "print/Reports.h"
#include "print/TextLines.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

using print_test::entry;
using print_test::find;
using print_test::recordPage;
using print_test::TestProject;
using print_test::texts;

namespace {

constexpr double kTolerance = 0.5; // twips

double rightEdge(print::PrintRun& run, const print::TextItem& item) {
    return item.x + run.fonts().width(item.font, item.text);
}

// The text at the height of `label` that ends furthest right: a summary line's amount.
QString amountBeside(const std::vector<print::TextItem>& items, const QString& label) {
    const print::TextItem* l = find(items, label);
    if (!l) return QStringLiteral("<no label>");
    const print::TextItem* best = nullptr;
    for (const print::TextItem& i : items)
        if (std::abs(i.y - l->y) < 1 && &i != l && (!best || i.x > best->x)) best = &i;
    return best && best->x > l->x ? best->text : QString();
}

} // namespace

TEST(Reports, QuantityColumnsSitAtTheirEdgesInPortraitAndLandscape) {
    for (auto orientation : {QPageLayout::Portrait, QPageLayout::Landscape}) {
        TestProject t;
        t.setQuantities(
            {{QStringLiteral("7101"), QStringLiteral("Kaivu"), QStringLiteral("100"), QStringLiteral("12.5"),
              QStringLiteral("m3"), QStringLiteral("8.25"), QStringLiteral("kallio")}});
        auto run = t.run({print::doc::Quantities, print::doc::Costs}, print::DefaultPageLayout(orientation));
        ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
        const print::PageModel& m = run->page();
        const bool landscape = orientation == QPageLayout::Landscape;
        ASSERT_EQ(m.Landscape, landscape);
        const double r = m.right();

        const auto quantity = recordPage(*run, 2);
        const struct {
            const char* header;
            double x;
        } left[] = {{"Littera", m.OriginX},
                    {"Työvaihe", m.OriginX + (landscape ? 1100 : 700)},
                    {"Osa", r - (landscape ? 7000 : 5000)},
                    {"Yks", r - (landscape ? 6000 : 4400)},
                    {"Määrä", r - (landscape ? 5000 : 3600)},
                    {"Huomautukset", r - (landscape ? 4000 : 2800)}};
        for (const auto& c : left) {
            const print::TextItem* item = find(quantity, QString::fromUtf8(c.header));
            ASSERT_TRUE(item) << c.header;
            EXPECT_NEAR(item->x, c.x, kTolerance) << c.header << (landscape ? " landscape" : " portrait");
            EXPECT_NEAR(item->y, m.OriginY + 700, kTolerance);
            EXPECT_TRUE(item->font.italic);
        }
        // Values under their headers, numbers with a decimal comma (and only numbers).
        EXPECT_EQ(print::DecimalComma(QStringLiteral("-.5")), QStringLiteral("-,5"));
        EXPECT_EQ(print::DecimalComma(QStringLiteral("4.5...7.0 %")), QStringLiteral("4,5...7,0 %"));
        EXPECT_NEAR(find(quantity, QStringLiteral("12,5"))->x, r - (landscape ? 5000 : 3600), kTolerance);
        EXPECT_NEAR(find(quantity, QStringLiteral("kallio"))->x, r - (landscape ? 4000 : 2800), kTolerance);

        const auto costs = recordPage(*run, 4);
        const struct {
            const char* text;
            double right;
        } rightAligned[] = {{"Määrä", r - (landscape ? 5400 : 4400)},
                            {"Kustannus", r - (landscape ? 1800 : 1500)},
                            {"Summa", r},
                            {"12,5", r - (landscape ? 5400 : 4400)},
                            {"8,25", r - (landscape ? 3600 : 3000)},
                            {"103,13", r - (landscape ? 1800 : 1500)}};
        for (const auto& c : rightAligned) {
            const print::TextItem* item = find(costs, QString::fromUtf8(c.text));
            ASSERT_TRUE(item) << c.text;
            EXPECT_NEAR(rightEdge(*run, *item), c.right, kTolerance) << c.text;
        }
        EXPECT_NEAR(find(costs, QStringLiteral("Yks"))->x, r - (landscape ? 5100 : 4200), kTolerance);
        EXPECT_NEAR(find(costs, QStringLiteral("Kustanuksen laatu"))->x, m.OriginX + (landscape ? 1000 : 800),
                    kTolerance);
    }
}

TEST(Reports, LongDescriptionsWrapWithinTheirColumnAndTheDescriptionFollowsTheWidestLittera) {
    TestProject t;
    const QString text = QStringLiteral(
        "Teräsbetonirakenteiden raudoitus sisältäen tartuntateräkset, jatkokset ja tukiraudoitteet");
    t.setQuantities(
        {{QStringLiteral("7131.12"), text, QStringLiteral("100"), QStringLiteral("5"), QStringLiteral("t")}});
    auto run = t.run({print::doc::Quantities});
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    const auto items = recordPage(*run, 2);
    const print::TextItem* littera = find(items, QStringLiteral("7131.12"));
    ASSERT_TRUE(littera);
    const double litteraEnd = rightEdge(*run, *littera);
    const double columnEnd = print::quantityColumns(run->page()).part;
    QString joined;
    int lines = 0;
    const print::TextItem* first = find(items, QStringLiteral("Teräsbetonirakenteiden raudoitus "));
    ASSERT_TRUE(first);
    EXPECT_GT(first->x, litteraEnd) << "the description starts after the littera";
    for (const print::TextItem& i : items) {
        if (i.y < littera->y - 1 || std::abs(i.x - first->x) > kTolerance) continue;
        SCOPED_TRACE(i.text.toStdString());
        ++lines;
        joined += i.text;
        EXPECT_LT(rightEdge(*run, i), columnEnd);
    }
    EXPECT_GE(lines, 2);
    EXPECT_EQ(joined.simplified(), text);
}

TEST(Reports, CostSummariesPrintTheFiguresOfTheCostEstimate) {
    TestProject t;
    t.setQuantities(
        {{QStringLiteral("7110"), QStringLiteral("KAIVUT")},
         entry(QStringLiteral("Kaivu"), QStringLiteral("1450"), QStringLiteral("m3ktr"),
               QStringLiteral("8,00")),
         entry(QStringLiteral("Täyttö"), QStringLiteral("620"), QStringLiteral("m3rtr"),
               QStringLiteral("10.50")),
         {QString(), QStringLiteral("TIETYÖT SILTAPAIKALLA")},
         entry(QStringLiteral("Rumpu"), QStringLiteral("12"), QStringLiteral("m"), QStringLiteral("72"))});
    auto run = t.run({print::doc::Costs});
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    const calc::CostRecord r = calc::CalculateCosts(t.quantities, t.source.costInputs());
    ASSERT_GT(r.roadSum, 0);
    const auto items = recordPage(*run, run->TotalPages());
    auto money = [](float v) { return calc::MoneyS(v, 2) + QStringLiteral(" €"); };
    const float whole = calc::CustomRound(r.bridgeRounded + r.roadRounded);
    const struct {
        const char* label;
        QString amount;
    } lines[] = {{"Rakennuskustannukset (i = 104)", money(r.bridgeSum)},
                 {"Sillan kustannukset (i = 104)", money(r.bridgeTotal)},
                 {"Kustannustason noususta aiheutuva muutos", money(r.bridgeConverted - r.bridgeTotal)},
                 {"Sillan kustannukset (i = 127)", money(r.bridgeRounded) + QStringLiteral("    ")},
                 {"Tietöiden rakennuskustannukset (i = 104)", money(r.roadSum)},
                 {"Tietyöt siltapaikalla (i = 104)", money(r.roadTotal)},
                 {"Tietyöt siltapaikalla (i = 127)", money(r.roadRounded) + QStringLiteral("    ")},
                 {"Sillan kokonaiskustannus (i = 127)", money(whole) + QStringLiteral("    ")}};
    for (const auto& l : lines)
        EXPECT_EQ(amountBeside(items, QString::fromUtf8(l.label)), l.amount) << l.label;
    // The general costs line carries its littera; the VAT lines their amounts.
    const QStringList all = texts(items);
    EXPECT_EQ(all.count(QStringLiteral("Työmaan yhteiskustannukset 25%")), 2);
    EXPECT_EQ(all.count(QStringLiteral("600")), 2);
    EXPECT_TRUE(all.contains(money(r.bridgeGeneral)));
    EXPECT_TRUE(all.contains(money(whole * 22 / 100)));
    EXPECT_TRUE(all.contains(money(r.bridgeRounded * 22 / 100)));
    EXPECT_TRUE(all.contains(QStringLiteral("YHTEENVETO JA ARVONLISÄVEROA KOSKEVA ERITTELY")));
    EXPECT_TRUE(all.contains(QStringLiteral("Kustannukset eivät sisällä rakennuttamiskustannuksia")));
    // The caption group's subtotal stands in the sum column of the row that closes it.
    const auto body = recordPage(*run, 2);
    EXPECT_TRUE(texts(body).contains(calc::MoneyS(1450 * 8.0f + 620 * 10.5f, 2)));

    // Without a cost index the estimate still prints; its labels show an empty index.
    t.source.basicCombos[10].clear();
    auto noIndex = t.run({print::doc::Costs});
    ASSERT_EQ(noIndex->PageCount(), print::PageCountResult::Done);
    EXPECT_TRUE(texts(recordPage(*noIndex, noIndex->TotalPages()))
                    .contains(QStringLiteral("Sillan kustannukset (i = )")));
}

// An amount past single precision's range: the page shows "#####" for every overflowed figure
// and says where the overflow began, instead of printing "inf" as an amount.
TEST(Reports, AnOverflowedTotalPrintsHashesAndTheRow) {
    TestProject t;
    t.setQuantities(
        {{QStringLiteral("7110"), QStringLiteral("KAIVUT")},
         entry(QStringLiteral("Kaivu"), QStringLiteral("1e308"), QStringLiteral("m3"), QStringLiteral("2")),
         entry(QStringLiteral("Täyttö"), QStringLiteral("620"), QStringLiteral("m3"), QStringLiteral("10")),
         {QString(), QStringLiteral("TIETYÖT SILTAPAIKALLA")}});
    auto run = t.run({print::doc::Costs});
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    QStringList all;
    for (int p = 1; p <= run->TotalPages(); ++p)
        all += texts(recordPage(*run, p));
    const QString joined = all.join(QLatin1Char('|'));
    EXPECT_FALSE(joined.contains(QRegularExpression(QStringLiteral("(^|[|\\s])-?inf\\b"))))
        << joined.toStdString();
    EXPECT_FALSE(joined.contains(QStringLiteral("∞"))) << joined.toStdString();
    EXPECT_TRUE(joined.contains(QStringLiteral("##### €"))) << joined.toStdString();
    EXPECT_TRUE(all.contains(QStringLiteral("Summa ei ole äärellinen: rivi 2"))) << joined.toStdString();
}

TEST(Reports, HeadersNameThePageTheDateAndWhoDrewUpTheDocument) {
    TestProject t;
    t.setQuantities({entry(QStringLiteral("Kaivu"))});
    auto run = t.run({print::doc::Quantities});
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    const auto front = recordPage(*run, 1);
    EXPECT_TRUE(find(front, QStringLiteral("Sivu 1 (2)")));
    EXPECT_TRUE(find(front, QStringLiteral("Tulostettu: 23.11.2026")));
    EXPECT_FALSE(find(front, QStringLiteral("Laati: Matti Virtanen 14.3.2006")));
    const auto body = recordPage(*run, 2);
    const print::TextItem* page = find(body, QStringLiteral("Sivu 2 (2)"));
    ASSERT_TRUE(page);
    EXPECT_NEAR(rightEdge(*run, *page), run->page().right(), kTolerance);
    EXPECT_DOUBLE_EQ(page->font.size, 9);
    EXPECT_TRUE(find(body, QStringLiteral("Kirkkojoen silta  Vt 4, tieosa 215/Jyväskylä")));
    EXPECT_TRUE(find(body, QStringLiteral("Laati: Matti Virtanen 14.3.2006")));
    EXPECT_TRUE(find(body, QStringLiteral("Sillan määräluettelo")));
    EXPECT_TRUE(find(body, QStringLiteral("TAMRIK 2006")));
}

TEST(Reports, FrontPagePartiesFollowTheDocument) {
    TestProject t;
    auto run = t.run({print::doc::Quantities});
    struct Case {
        int document;
        bool contractorFilled;
        const char* first;
        const char* second;
        const char* drewUp;
    };
    const Case cases[] = {{0, true, "SUUNNITTELIJA", "", "Matti Virtanen"},
                          {6, true, "SUUNNITTELIJA", "", "Matti Virtanen"},
                          {7, false, "SUUNNITTELIJA", "", "Matti Virtanen"},
                          {7, true, "URAKOITSIJA", "TILAAJA", "Pekka Nieminen"},
                          {8, true, "URAKOITSIJA", "TILAAJA", "Pekka Nieminen"},
                          {12, false, "URAKOITSIJA", "TILAAJA", ""}};
    for (const Case& c : cases) {
        // Any one of the contractor's names or dates makes document 7 the contractor's.
        t.source.basicCombos[17] = c.contractorFilled ? QStringLiteral("Pekka Nieminen") : QString();
        const print::Parties p = print::PartiesOf(*run, c.document);
        EXPECT_EQ(p.firstRole, QString::fromUtf8(c.first)) << c.document;
        EXPECT_EQ(p.secondRole, QString::fromUtf8(c.second)) << c.document;
        EXPECT_EQ(p.drewUp, QString::fromUtf8(c.drewUp)) << c.document;
        if (p.secondRole == QLatin1String("TILAAJA"))
            EXPECT_EQ(p.secondCompany, t.source.basicText(basic::Client));
        EXPECT_EQ(p.firstCompany,
                  t.source.basicText(p.firstRole == QLatin1String("URAKOITSIJA") ? basic::ContractorCompany
                                                                                 : basic::DesignerCompany));
    }
    t.source.basicCombos[17].clear();
    t.source.basicCombos[14] = QStringLiteral("5.5.2006");
    EXPECT_EQ(print::PartiesOf(*run, 7).firstRole, QStringLiteral("URAKOITSIJA"));

    // The front page of the quantity list: the bridge, the title, the designer and the signatures.
    t.source.basicCombos[14].clear();
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    const QStringList front = texts(recordPage(*run, 1));
    for (const char* expected :
         {"Keski-Suomi", "Kirkkojoen silta", "Vt 4, tieosa 215 / Jyväskylä", "Suunnitelman numero   KeS-2817",
          "Sillan määräluettelo", "Rakenneosien numerointi", "100  Maatuki 1", "SUUNNITTELIJA",
          "Suunnittelu Oy", "40100 JYVÄSKYLÄ", "Laati: Matti Virtanen", "14.3.2006", "Tarkastus",
          "Hyväksyntä", "Geotekninen tarkastus", "Kulkukorkeus (m)", "TAMRIK 2006"})
        EXPECT_TRUE(front.contains(QString::fromUtf8(expected))) << expected;
    EXPECT_FALSE(front.contains(QStringLiteral("TILAAJA")));
}

TEST(Reports, APricedRowWithoutADescriptionPrintsItsValuesInBothLists) {
    TestProject t;
    t.setQuantities({{QStringLiteral("7101"), QStringLiteral("TYÖMAAN JÄRJESTELYT")},
                     {QString(), QString(), QString(), QStringLiteral("1"), QStringLiteral("erä"),
                      QStringLiteral("6000,00"), QString()},
                     entry(QStringLiteral("Kaivu")),
                     {QStringLiteral("7110"), QStringLiteral("KAIVUT")},
                     entry(QStringLiteral("Täyttö"))});
    auto run = t.run({print::doc::Quantities, print::doc::Costs});
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    const print::PageModel& m = run->page();
    // The quantity list: the unit and the quantity in their columns, though the remarks are empty.
    const auto quantities = recordPage(*run, 2);
    const print::TextItem* unit = find(quantities, QStringLiteral("erä"));
    ASSERT_TRUE(unit);
    EXPECT_NEAR(unit->x, print::quantityColumns(m).unit, kTolerance);
    const print::TextItem* quantity = find(quantities, QStringLiteral("1"));
    ASSERT_TRUE(quantity);
    EXPECT_NEAR(quantity->y, unit->y, kTolerance);
    // The cost estimate: the price, the amount, and the group's sum that includes it.
    const auto costs = recordPage(*run, 4);
    for (const QString& text :
         {QStringLiteral("erä"), QStringLiteral("6000,00"), calc::MoneyS(6000, 2), calc::MoneyS(6200, 2)})
        EXPECT_TRUE(find(costs, text)) << text.toStdString();
    // The row's line lies between the caption's and the next row's.
    const print::TextItem* caption = find(costs, QStringLiteral("TYÖMAAN JÄRJESTELYT"));
    const print::TextItem* next = find(costs, QStringLiteral("Kaivu"));
    ASSERT_TRUE(caption && next);
    EXPECT_GT(find(costs, QStringLiteral("6000,00"))->y, caption->y);
    EXPECT_LT(find(costs, QStringLiteral("6000,00"))->y, next->y);
}

TEST(Reports, ACaptionGoesToTheNextPageWithTheFirstRowUnderIt) {
    // However many rows come before, no page of either list ends with a caption: the work
    // phase, its blank row and the sub-phase go over with the first entry under them.
    for (int before = 36; before <= 48; ++before) {
        TestProject t;
        std::vector<QStringList> rows;
        for (int i = 0; i < before; ++i)
            rows.push_back(entry(QStringLiteral("Rivi %1").arg(i)));
        rows.push_back({QStringLiteral("7140"), QStringLiteral("RAUDOITUS")});
        rows.push_back({});
        rows.push_back({QStringLiteral("7141"), QStringLiteral("Betoniteräkset")});
        rows.push_back({});
        rows.push_back(entry(QStringLiteral("Harjateräs A500HW")));
        rows.push_back(entry(QStringLiteral("Pintateräs")));
        t.setQuantities(rows);
        auto run = t.run({print::doc::Quantities, print::doc::Costs});
        ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
        const print::PageModel& m = run->page();
        for (int p = 1; p <= run->TotalPages(); ++p) {
            if (run->entry(p).number < 2) continue;
            // The lowest text of the body.
            const auto page = recordPage(*run, p);
            const print::TextItem* lowest = nullptr;
            for (const print::TextItem& i : page)
                if (i.y < m.bodyLimit() && i.y > print::ListBodyTop(*run) - 1 && (!lowest || i.y > lowest->y))
                    lowest = &i;
            ASSERT_TRUE(lowest) << before << " page " << p;
            for (const char* caption : {"7140", "RAUDOITUS", "7141", "Betoniteräkset"})
                EXPECT_NE(lowest->text, QString::fromUtf8(caption)) << before << " page " << p;
        }
    }
}

TEST(Reports, LargeValuesStayWithinTheirCellsShrunkOrCut) {
    for (auto orientation : {QPageLayout::Portrait, QPageLayout::Landscape}) {
        TestProject t;
        t.setQuantities(
            {{QStringLiteral("7111"), QStringLiteral("Kaivu")},
             {QString(), QStringLiteral("Kallion louhinta"), QStringLiteral("100, 310, 320"),
              QStringLiteral("1450"), QStringLiteral("m3ktr"), QStringLiteral("125000,50")},
             {QString(), QStringLiteral("Suuri määrä"), QStringLiteral("400"), QStringLiteral("1234567,75"),
              QStringLiteral("m3ktr"), QStringLiteral("125000,50")},
             {QString(), QStringLiteral("Pitkä yksikkö"), QStringLiteral("400"), QStringLiteral("12"),
              QStringLiteral("kappaletta kuormaa kohti"), QStringLiteral("8")}});
        auto run = t.run({print::doc::Quantities, print::doc::Costs}, print::DefaultPageLayout(orientation));
        QStringList told;
        run->setInform([&told](const QString& m) { told << m; });
        ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
        for (int p : {2, 4}) {
            const auto items = recordPage(*run, p);
            EXPECT_EQ(print_test::overprinted(*run, items), QStringList())
                << "page " << p << " " << orientation;
            // Numbers keep every digit, in a smaller print when they must.
            QStringList values{QStringLiteral("1234567,75"), QStringLiteral("1450")};
            if (p == 4) values << QStringLiteral("125000,50");
            for (const QString& value : values)
                EXPECT_TRUE(find(items, value)) << value.toStdString() << " page " << p;
        }
        const auto costs = recordPage(*run, 4);
        const print::TextItem* price = find(costs, QStringLiteral("125000,50"));
        const print::TextItem* unit = find(costs, QStringLiteral("m3ktr"));
        ASSERT_TRUE(price && unit);
        EXPECT_NEAR(rightEdge(*run, *price), print::costColumns(run->page()).unitPrice, kTolerance);
        EXPECT_NEAR(unit->x, print::costColumns(run->page()).unit, kTolerance);
        EXPECT_GE(price->font.size, print::kSmallestValueSize * run->page().ScaleY);
        // A unit too long even in the smallest print is cut, once reported.
        if (orientation == QPageLayout::Portrait) {
            bool cut = false;
            for (const print::TextItem& i : costs)
                cut = cut ||
                      (i.text.startsWith(QStringLiteral("kappale")) && i.text.endsWith(QStringLiteral("…")));
            EXPECT_TRUE(cut);
            EXPECT_EQ(told.count(print::kValueCut), 1);
        }
    }
}

namespace {

// The texts at the page header's first line on the left: the identification.
QStringList headerLeft(const print::PrintRun& run, const std::vector<print::TextItem>& page) {
    QStringList left;
    for (const print::TextItem& i : page)
        if (std::abs(i.y - run.page().OriginY) < 1 && std::abs(i.x - run.page().OriginX) < 1) left << i.text;
    return left;
}

} // namespace

TEST(Reports, TheHeaderJoinsOnlyTheBridgeFieldsThatHaveText) {
    const struct {
        const char* name;
        const char* section;
        const char* municipality;
        const char* shown;
    } cases[] = {{"Kirkkojoen silta", "", "", "Kirkkojoen silta"},
                 {"", "", "", ""},
                 {"", "Vt 4", "", "Vt 4"},
                 {"Kirkkojoen silta", "", "Jyväskylä", "Kirkkojoen silta  Jyväskylä"},
                 {"", "Vt 4", "Jyväskylä", "Vt 4/Jyväskylä"}};
    for (const auto& c : cases) {
        TestProject t;
        t.source.basicTexts[0] = QString::fromUtf8(c.name);
        t.source.basicTexts[1] = QString::fromUtf8(c.section);
        t.source.basicCombos[9] = QString::fromUtf8(c.municipality);
        t.setQuantities({entry(QStringLiteral("Kaivu"))});
        auto run = t.run({print::doc::Quantities});
        ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
        const auto body = recordPage(*run, 2);
        // The header's first line at the left: the identification, and nothing with a lone "/".
        const QStringList left = headerLeft(*run, body);
        const QString shown = QString::fromUtf8(c.shown);
        EXPECT_EQ(left, shown.isEmpty() ? QStringList() : QStringList{shown}) << c.shown;
    }
}

TEST(Reports, ALongIdentificationLeavesTheHeaderTitleItsWordsWhole) {
    TestProject t;
    t.source.basicTexts[0] =
        QStringLiteral("Kirkkojoen silta Keski-Suomen ylitys valtatiellä 4 ja kevyen liikenteen väylä");
    t.source.documents[0] = QStringLiteral("1 Yleistä\r\nSilta korvaa nykyisen sillan.");
    for (int document : {print::doc::PlanDescription, print::doc::Inspections}) {
        auto run = t.run({document});
        QStringList told;
        run->setInform([&told](const QString& m) { told << m; });
        ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
        const print::PageModel& m = run->page();
        const auto body = recordPage(*run, 2);
        const print::TextItem* printed = find(body, QStringLiteral("Tulostettu: 23.11.2026"));
        ASSERT_TRUE(printed);
        // The title: the texts of the header's two lines between the identification and the
        // right-hand texts, each ending before the print date.
        QStringList title;
        for (const print::TextItem& i : body) {
            if (i.y > m.OriginY + m.LineHeight9 + 1 || i.x < m.OriginX + 1 || i.x >= printed->x) continue;
            title << i.text.trimmed();
            EXPECT_LE(i.x + run->fonts().width(i.font, i.text), printed->x) << i.text.toStdString();
        }
        const QString expected = document == print::doc::PlanDescription
                                     ? QStringLiteral("Rakennussuunnitelmaselostus")
                                     : QStringLiteral("Sillan tarkastus- ja mittausraportti");
        EXPECT_EQ(title.join(QLatin1Char(' ')), expected);
        EXPECT_FALSE(told.contains(print::kWordTooLong)) << document;
    }
}

// The header's identification has one line: one too long for it is cut with "…" (not silently
// at a word), and the run says a value was cut.
TEST(Reports, AnIdentificationTooLongForItsLineEndsWithAnEllipsisAndIsTold) {
    TestProject t;
    t.source.basicTexts[0] = QStringLiteral(
        "Kirkkojoen ylikulkusilta valtatien 4 ja Jyväskylän läntisen ohikulkutien eritasoliittymässä");
    t.source.basicTexts[1] = QStringLiteral("Vt 4");
    t.setQuantities({entry(QStringLiteral("Kaivu"))});
    auto run = t.run({print::doc::Quantities});
    QStringList told;
    run->setInform([&told](const QString& m) { told << m; });
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    const auto body = recordPage(*run, 2);
    const QStringList left = headerLeft(*run, body);
    ASSERT_EQ(left.size(), 1);
    EXPECT_TRUE(left[0].endsWith(QStringLiteral("…"))) << left[0].toStdString();
    EXPECT_TRUE(left[0].startsWith(QStringLiteral("Kirkkojoen ylikulkusilta"))) << left[0].toStdString();
    EXPECT_TRUE(told.contains(print::kValueCut));
}

TEST(Reports, FrontPagesKeepTheirColumnsAboveTheSignaturesUprightOrLandscape) {
    // Two long names: the second fills the line in the regular font but not in the bold one.
    const QString names[] = {
        QStringLiteral(
            "Kirkkojoen ylikulkusilta valtatien 4 ja Jyväskylän läntisen ohikulkutien eritasoliittymässä"),
        QStringLiteral("Kirkkojoen silta Keski-Suomen ylitys valtatiellä 4 ja kevyen liikenteen väylä")};
    for (auto orientation : {QPageLayout::Portrait, QPageLayout::Landscape}) {
        for (int partCount : {2, 40}) {
            for (const QString& name : names) {
                TestProject t;
                std::vector<QStringList> parts;
                for (int i = 0; i < partCount; ++i)
                    parts.push_back({QString::number(100 + 10 * i), QStringLiteral("Osa %1").arg(i)});
                print_test::fillList(t.parts, lists::kind::BridgeParts, 2, parts);
                t.source.basicTexts[0] = name;
                auto run = t.run({print::doc::Quantities}, print::DefaultPageLayout(orientation));
                ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
                const auto front = recordPage(*run, 1);
                const print::PageModel& m = run->page();
                const QString context = QStringLiteral("%1 parts, %2").arg(partCount).arg(orientation);
                EXPECT_EQ(print_test::overprinted(*run, front), QStringList()) << context.toStdString();
                // The part numbering, the party and its company lines are all there.
                for (const char* text : {"Rakenneosien numerointi", "100  Osa 0", "SUUNNITTELIJA",
                                         "Suunnittelu Oy", "40100 JYVÄSKYLÄ"})
                    EXPECT_TRUE(find(front, QString::fromUtf8(text))) << text << " " << context.toStdString();
                // A part list too long ends with "..." above the signature rule.
                const print::TextItem* signatures = find(front, QStringLiteral("Laati: Matti Virtanen"));
                ASSERT_TRUE(signatures);
                const double rule = signatures->y - 0.6 * m.LineHeight11;
                EXPECT_EQ(find(front, QStringLiteral("...")) != nullptr, partCount == 40)
                    << context.toStdString();
                for (const print::TextItem& i : front)
                    if (i.y < rule) EXPECT_LE(i.y + m.LineHeight11, rule + 1) << i.text.toStdString();
                // The long name: on two lines within the page, every word there.
                QString shown;
                for (const print::TextItem& i : front)
                    if (i.font.size == 16 && i.font.bold) {
                        shown += i.text + QLatin1Char(' ');
                        EXPECT_LE(i.x + run->fonts().width(i.font, i.text), m.right() + 1);
                    }
                EXPECT_TRUE(shown.simplified().startsWith(t.source.basicTexts[0])) << shown.toStdString();
            }
        }
    }
}
