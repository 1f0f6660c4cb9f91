// Comparing two versions of a project: which rows pair up, what counts as a change, and what
// the changes cost against each version's own cost estimate.
#include "calc/CalcLists.h"
#include "calc/NumberText.h"
#include "calc/ProjectCompare.h"
#include "lists/ListProcedures.h"

#include <gtest/gtest.h>

using namespace calc;

namespace {

using Rows = std::vector<QStringList>;

// Quantity rows: littera, work phase, structural part, quantity, unit, unit price, remarks.
QStringList q(const QString& littera, const QString& phase, const QString& part = {},
              const QString& quantity = {}, const QString& unit = {}, const QString& price = {},
              const QString& remarks = {}) {
    return {littera, phase, part, quantity, unit, price, remarks};
}

ProjectVersion version(const Rows& quantities, const Rows* requirements = nullptr) {
    ProjectVersion v;
    v.windows[0].Combo1 = QStringList(18);
    v.windows[0].Combo1[3] = QStringLiteral("100");  // unit price index
    v.windows[0].Combo1[10] = QStringLiteral("110"); // cost index
    v.windows[0].Combo1[11] = QStringLiteral("20");  // general costs %
    v.windows[0].Combo1[4] = QStringLiteral("€");
    v.lists[1].push_back(std::make_unique<lists::ListModel>());
    calc_test::fillQuantityList(*v.lists[1][0], quantities);
    if (requirements) {
        v.lists[1].push_back(std::make_unique<lists::ListModel>());
        calc_test::fillRequirementList(*v.lists[1][1], *requirements);
    }
    return v;
}

const char* word(ChangeKind k) {
    return k == ChangeKind::Added ? "added" : k == ChangeKind::Removed ? "removed" : "changed";
}

// The row changes as "kind key [columns]", in report order.
std::vector<std::string> describe(const ProjectComparison& c) {
    std::vector<std::string> out;
    for (const RowChange& r : c.rows) {
        QString text = QString::fromLatin1(word(r.kind)) + QLatin1Char(' ') + r.key;
        QStringList names;
        for (int col : r.columns)
            names << ColumnName(r.list, col);
        if (!names.isEmpty()) text += QStringLiteral(" [") + names.join(QLatin1Char(',')) + QLatin1Char(']');
        out.push_back(text.toStdString());
    }
    return out;
}

const Rows kBase = {
    q("7110", "KAIVUT JA LOUHINNAT"),
    q("", "Kaivu", "T1", "100", "m3", "10"),
    q("", "Täyttö", "T1", "50", "m3", "8"),
    q("7150", "BETONITYÖT"),
    q("7151", "Perustusten betonointi"),
    q("", "Betonointi", "T1", "20", "m3", "150"),
    q("", "Betonointi", "T2", "30", "m3", "150"),
    q("", "Muotti", "T1", "40", "m2", "30", "vaneri"),
    q("", "TIETYÖT SILTAPAIKALLA"),
    q("1100", "MAA- JA POHJARAKENTEET"),
    q("", "Penger", "", "200", "m3", "5"),
};

struct MatchCase {
    const char* name;
    Rows oldRows;
    Rows newRows;
    std::vector<std::string> expected;
};

Rows with(Rows rows, std::size_t at, const QStringList& row) {
    rows[at] = row;
    return rows;
}

Rows inserted(Rows rows, std::size_t at, const QStringList& row) {
    rows.insert(rows.begin() + static_cast<long>(at), row);
    return rows;
}

Rows removed(Rows rows, std::size_t at) {
    rows.erase(rows.begin() + static_cast<long>(at));
    return rows;
}

Rows swapped(Rows rows, std::size_t a, std::size_t b) {
    std::swap(rows[a], rows[b]);
    return rows;
}

} // namespace

TEST(ProjectCompare, QuantityRowsPairByCaptionPathAndDescription) {
    const std::vector<MatchCase> cases = {
        {"the same list", kBase, kBase, {}},
        {"blank rows between the rows are layout",
         kBase,
         inserted(inserted(kBase, 3, q("", "")), 1, q("", "")),
         {}},
        {"rows moved within their work phase", kBase, swapped(swapped(kBase, 1, 2), 5, 7), {}},
        {"rows of one description moved past each other", kBase, swapped(kBase, 5, 6), {}},
        {"a changed quantity and price",
         kBase,
         with(kBase, 2, q("", "Täyttö", "T1", "60", "m3", "9")),
         {"changed 7110 / Täyttö [MÄÄRÄ,YKS.HINTA]"}},
        {"a changed remark and unit",
         kBase,
         with(kBase, 7, q("", "Muotti", "T1", "40", "m3", "30", "teräs")),
         {"changed 7150 / 7151 / Muotti [YKSIKKÖ,HUOMAUTUKSET]"}},
        {"an added and a removed row",
         kBase,
         inserted(removed(kBase, 2), 2, q("", "Louhinta", "T2", "10", "m3", "40")),
         {"removed 7110 / Täyttö", "added 7110 / Louhinta"}},
        {"a row moved to another work phase",
         kBase,
         inserted(removed(kBase, 2), 6, q("", "Täyttö", "T1", "50", "m3", "8")),
         {"removed 7110 / Täyttö", "added 7150 / 7151 / Täyttö"}},
        {"a renamed work phase is one change",
         kBase,
         with(kBase, 3, q("7150", "BETONOINTITYÖT")),
         {"changed 7150 BETONOINTITYÖT [TYÖVAIHE]"}},
        {"a renamed sub-phase is one change",
         kBase,
         with(kBase, 4, q("7151", "Anturoiden betonointi")),
         {"changed 7150 / 7151 Anturoiden betonointi [TYÖVAIHE]"}},
        {"rows of the same description pair in order",
         kBase,
         with(kBase, 6, q("", "Betonointi", "T2", "35", "m3", "150")),
         {"changed 7150 / 7151 / Betonointi [MÄÄRÄ]"}},
        {"a row split in two",
         with(kBase, 1, q("", "Kaivu", "T1-T2", "100", "m3", "10")),
         inserted(with(kBase, 1, q("", "Kaivu", "T1", "60", "m3", "10")), 2,
                  q("", "Kaivu", "T2", "40", "m3", "10")),
         {"changed 7110 / Kaivu [RAK. OSA,MÄÄRÄ]", "added 7110 / Kaivu"}},
        {"a work phase whose littera another one has too",
         inserted(inserted(kBase, 8, q("7150", "BETONITYÖT")), 9, q("", "Jälkihoito", "", "1", "erä", "500")),
         inserted(inserted(kBase, 8, q("7150", "BETONITYÖT")), 9, q("", "Jälkihoito", "", "2", "erä", "500")),
         {"changed 7150 / Jälkihoito [MÄÄRÄ]"}},
        {"a caption without a littera is known by its heading",
         kBase,
         with(kBase, 10, q("", "Penger", "", "250", "m3", "5")),
         {"changed 1100 / Penger [MÄÄRÄ]"}},
        {"everything added to an empty list",
         {},
         Rows(kBase.begin(), kBase.begin() + 3),
         {"added 7110 KAIVUT JA LOUHINNAT", "added 7110 / Kaivu", "added 7110 / Täyttö"}},
        {"everything removed from a list",
         Rows(kBase.begin(), kBase.begin() + 2),
         {},
         {"removed 7110 KAIVUT JA LOUHINNAT", "removed 7110 / Kaivu"}},
        {"two empty lists", {}, {}, {}},
    };
    for (const MatchCase& c : cases) {
        SCOPED_TRACE(c.name);
        const ProjectComparison result = CompareProjects(version(c.oldRows), version(c.newRows));
        EXPECT_EQ(describe(result), c.expected);
        EXPECT_EQ(result.equal(), c.expected.empty());
    }
}

TEST(ProjectCompare, RemovedRowsStandWhereTheyWereAndPointIntoTheNewList) {
    const ProjectComparison c = CompareProjects(version(kBase), version(removed(removed(kBase, 6), 2)));
    ASSERT_EQ(c.rows.size(), 2u);
    EXPECT_EQ(c.rows[0].oldRow, 3);
    EXPECT_EQ(c.rows[0].nearNewRow, 2); // after "Kaivu", row 2 of the new list
    EXPECT_EQ(c.rows[1].oldRow, 7);
    EXPECT_EQ(c.rows[1].nearNewRow, 5); // after the first "Betonointi"
    // And an added row points into the old list.
    const ProjectComparison back = CompareProjects(version(removed(kBase, 2)), version(kBase));
    ASSERT_EQ(back.rows.size(), 1u);
    EXPECT_EQ(back.rows[0].newRow, 3);
    EXPECT_EQ(back.rows[0].nearOldRow, 2);
    // The removed row's cells and its cost go with it.
    EXPECT_EQ(c.rows[0].oldCells.value(1), QStringLiteral("Täyttö"));
    EXPECT_TRUE(c.rows[0].newCells.isEmpty());
    EXPECT_FLOAT_EQ(c.rows[0].costChange(), -400.0f);
}

TEST(ProjectCompare, RequirementsPairByPhaseNumberAndTextAndReportEachField) {
    using calc_test::caption;
    using calc_test::requirement;
    const Rows old = {
        caption("7150", "BETONITYÖT"), requirement("1", "Betonin lujuus", "1 (siltakohtainen)", "4", "Kyllä"),
        requirement("2", "Pinnan tasaisuus", "2 (KLVn mukainen)", "2"),
        requirement("3", "Jälkihoito", "3 (ohjeellinen)", "0"), caption("7170", "PÄÄLLYSRAKENNE")};
    // The work phases in the other order, the requirements of 7150 too; new values and marks.
    Rows now = {old[4], requirement("3", "Jälkihoito 7 vrk", "3 (ohjeellinen)", "0"), old[0], old[2], old[1]};
    now[4][20] = QStringLiteral("Ei");  // the mark
    now[4][23] = QStringLiteral("0,5"); // the factor
    now[3][10] = QStringLiteral("3");   // the weight
    now[3][9] = QStringLiteral("M");    // the inspection method
    now[3][18] = QStringLiteral("4,2"); // the measured mean value
    const ProjectComparison c = CompareProjects(version({}, &old), version({}, &now));
    const std::vector<std::string> expected = {
        "changed 7150 / 1 Betonin lujuus [TÄYTTÄÄ VAATIMUKSET,PAINOARVON KERROIN]",
        "changed 7150 / 2 Pinnan tasaisuus [TARKASTUSTAPA,PAINOARVO,KESKIARVO]",
        "removed 7150 / 3 Jälkihoito",
        "added 7170 / 3 Jälkihoito 7 vrk",
    };
    std::vector<std::string> got = describe(c);
    std::sort(got.begin(), got.end());
    std::vector<std::string> want = expected;
    std::sort(want.begin(), want.end());
    EXPECT_EQ(got, want);
    EXPECT_EQ(c.markChanges, 1);
    // 7150 held weights 4 (met) and 2 (not inspected): 4 of 6; now 4 failed at 0,5 and 3: 2 of 7.
    EXPECT_EQ(QualityNumberText(c.oldQuality, c.oldHasRequirements), QStringLiteral("66,7"));
    EXPECT_EQ(QualityNumberText(c.newQuality, c.newHasRequirements), QStringLiteral("28,6"));
    ASSERT_EQ(c.qualityGroups.size(), 2u);
    EXPECT_EQ(c.qualityGroups[0].littera, QStringLiteral("7170"));
    EXPECT_EQ(c.qualityGroups[1].littera, QStringLiteral("7150"));
    EXPECT_EQ(GroupPercentText(c.qualityGroups[1].oldMax, c.qualityGroups[1].oldRealized),
              QStringLiteral("67"));
    EXPECT_EQ(GroupPercentText(c.qualityGroups[1].newMax, c.qualityGroups[1].newRealized),
              QStringLiteral("29"));
}

TEST(ProjectCompare, AVersionWithoutARequirementListHasNoQualityNumber) {
    const Rows requirements = {calc_test::caption("7150", "BETONITYÖT"),
                               calc_test::requirement("1", "Betonin lujuus", "1", "4", "Kyllä")};
    ProjectVersion old = version(kBase);
    ASSERT_EQ(old.lists[1].size(), 1u); // the file had no requirement list at all
    const ProjectComparison c = CompareProjects(old, version(kBase, &requirements));
    EXPECT_FALSE(c.oldHasRequirements);
    EXPECT_TRUE(c.newHasRequirements);
    EXPECT_EQ(QualityNumberText(c.oldQuality, false), QStringLiteral("-"));
    EXPECT_EQ(describe(c),
              (std::vector<std::string>{"added 7150 BETONITYÖT", "added 7150 / 1 Betonin lujuus"}));
    // And the other way round.
    const ProjectComparison back = CompareProjects(version(kBase, &requirements), version(kBase));
    EXPECT_EQ(back.count(ChangeKind::Removed), 2);
    EXPECT_FALSE(back.newHasRequirements);
}

TEST(ProjectCompare, CostsPerWorkPhaseAgreeWithEachVersionsEstimate) {
    // Prices in the bridge phases and in the road works, a priced row above the first caption,
    // and a phase only the new version has.
    Rows old = inserted(kBase, 0, q("", "Suunnittelu", "", "1", "erä", "1000"));
    Rows now = with(with(old, 3, q("", "Täyttö", "T1", "55,5", "m3", "8,25")), 11,
                    q("", "Penger", "", "180", "m3", "5"));
    now = inserted(inserted(now, 9, q("7190", "LAAKERIT")), 10, q("", "Laakeri", "", "4", "kpl", "1250"));
    ProjectVersion a = version(old);
    ProjectVersion b = version(now);
    const ProjectComparison c = CompareProjects(a, b);

    // Against the estimate: every work phase's sum is the subtotal the estimate leaves on the row
    // that closes the phase, and the phases add up to the two blocks.
    auto check = [](ProjectVersion& v, bool newer, const ProjectComparison& c) {
        lists::ListModel& list = v.quantities();
        const CostRecord estimate = CalculateCosts(list, CostInputsOf(v.windows[0].Combo1));
        std::vector<QString> subtotals;
        for (int r = 1; r <= list.rows(); ++r)
            if (!list.rowTag(r).isEmpty()) subtotals.push_back(list.rowTag(r));
        std::vector<QString> phases;
        double total = 0;
        for (const PhaseCost& p : c.phases) {
            if (!(newer ? p.inNew : p.inOld)) continue;
            const float sum = newer ? p.newSum : p.oldSum;
            total += sum;
            if (sum != 0) phases.push_back(MoneyS(sum, 2));
        }
        EXPECT_EQ(phases, subtotals);
        EXPECT_NEAR(total, estimate.bridgeSum + estimate.roadSum, 0.01);
        const CostRecord& reported = newer ? c.newCosts : c.oldCosts;
        EXPECT_EQ(FormatCostRecord(reported), FormatCostRecord(estimate));
    };
    check(a, false, c);
    check(b, true, c);

    ASSERT_EQ(c.phases.size(), 6u);
    EXPECT_EQ(c.phases[0].label, QStringLiteral("(ennen ensimmäistä työvaihetta)"));
    EXPECT_EQ(c.phases[3].label, QStringLiteral("7190 LAAKERIT"));
    EXPECT_FALSE(c.phases[3].inOld);
    EXPECT_EQ(MoneyChangeText(c.phases[3].newSum - c.phases[3].oldSum), QStringLiteral("+5\u00A0000,00"));
    EXPECT_EQ(PercentChangeText(c.phases[3].oldSum, c.phases[3].newSum), QStringLiteral("-"));
    // 7110: 1400 -> 1457,875; the road works 1000 -> 900.
    EXPECT_EQ(PercentChangeText(c.phases[1].oldSum, c.phases[1].newSum), QStringLiteral("+4,1 %"));
    EXPECT_EQ(PercentChangeText(c.phases[5].oldSum, c.phases[5].newSum), QStringLiteral("-10,0 %"));

    // The rows' own changes add up to the change of the row amounts.
    float rows = 0;
    for (const RowChange& r : c.rows)
        rows += r.costChange();
    EXPECT_NEAR(rows,
                (c.newCosts.bridgeSum + c.newCosts.roadSum) - (c.oldCosts.bridgeSum + c.oldCosts.roadSum),
                0.01);
    const std::vector<CostTotal> totals = CostTotals(c);
    ASSERT_EQ(totals.size(), 5u);
    EXPECT_EQ(totals[4].label, QStringLiteral("Sillan kokonaiskustannus"));
    EXPECT_EQ(totals[4].newValue, CustomRound(c.newCosts.bridgeRounded + c.newCosts.roadRounded));
}

TEST(ProjectCompare, FieldsDocumentsAndPicturesAreComparedByName) {
    ProjectVersion a = version(kBase);
    ProjectVersion b = version(kBase);
    a.windows[0].Text1 = QStringList{QStringLiteral("Joensillan silta"), QStringLiteral("Vt 6")};
    b.windows[0].Text1 = QStringList{QStringLiteral("Joensuun silta"), QStringLiteral("Vt 6"), QString()};
    b.windows[0].Combo1[12] = QStringLiteral("24");
    a.windows[3].Combo1 = QStringList{QStringLiteral("Joensuu")};
    a.checks = QStringList{QStringLiteral("1"), QStringLiteral("0")};
    b.checks = QStringList{QStringLiteral("1"), QStringLiteral("1")};
    // The designer's change list: one row changed, which reads as removed and added.
    for (ProjectVersion* v : {&a, &b}) {
        v->lists[0].push_back(std::make_unique<lists::ListModel>());
        v->lists[0].push_back(std::make_unique<lists::ListModel>());
        calc_test::fillList(*v->lists[0][1], lists::kind::Changes, {"NRO", "PVM", "MUUTOS", "TEKIJÄ"},
                            {{"1", "1.2.2006", "Kansi levennetty", "MV"}});
    }
    b.lists[0][1]->setCell(1, 3, QStringLiteral("Kansi levennetty 0,5 m"));
    a.pictures[0] = {QByteArray("BM1234"), 1};
    b.pictures[0] = {QByteArray("BM5678"), 1};
    b.pictures[5] = {QByteArray("EMF"), 4};

    const ProjectComparison c = CompareProjects(a, b);
    std::vector<std::string> got;
    for (const FieldChange& f : c.fields)
        got.push_back((QString::fromLatin1(word(f.kind)) + QLatin1Char(' ') + WindowName(f.window) +
                       QStringLiteral(": ") + f.field + QStringLiteral(": ") + f.oldText +
                       QStringLiteral(" -> ") + f.newText)
                          .toStdString());
    const std::vector<std::string> expected = {
        "changed Perustiedot: Sillan nimi: Joensillan silta -> Joensuun silta",
        "changed Perustiedot: ALV %:  -> 24",
        "removed Perustiedot: Muutokset (suunnittelija): 1; 1.2.2006; Kansi levennetty; MV -> ",
        "added Perustiedot: Muutokset (suunnittelija):  -> 1; 1.2.2006; Kansi levennetty 0,5 m; MV",
        "changed Panostilakortti: Tiemestaripiiri: Joensuu -> ",
        "changed Panostilakortti: Käytä ominaistietokortin poikkileikkauskuvaa: Ei -> Kyllä",
        "changed Perustiedot: Ominaistietokortin sivukuva: BMP, 6 tavua -> BMP, 6 tavua, eri kuva",
        "added Perustiedot: Panostilakortin merkkikilpi:  -> EMF, 3 tavua",
    };
    EXPECT_EQ(got, expected);
    EXPECT_EQ(c.lines.size(), c.fields.size()); // one line a field, no rows changed
}

TEST(ProjectCompare, ADocumentReportsItsFirstDifferingParagraph) {
    ProjectVersion a = version({});
    ProjectVersion b = version({});
    auto rtf = [](const char* text) {
        return QByteArray("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0\\fs20 ") + text + "}";
    };
    a.documents[0] = rtf("Yleista\\par Perustus paaluille.\\par Kansi betonia.");
    b.documents[0] = rtf("Yleista\\par Perustus maanvaraisena.\\par Kansi betonia.");
    a.documents[2] = rtf("Sama teksti.");
    b.documents[2] = rtf("{\\b Sama} teksti.");
    const ProjectComparison c = CompareProjects(a, b);
    ASSERT_EQ(c.fields.size(), 2u);
    EXPECT_EQ(c.fields[0].field, QStringLiteral("Rakennussuunnitelmaselostus, kappale 2"));
    EXPECT_EQ(c.fields[0].oldText, QStringLiteral("Perustus paaluille."));
    EXPECT_EQ(c.fields[0].newText, QStringLiteral("Perustus maanvaraisena."));
    EXPECT_EQ(c.fields[1].field, QStringLiteral("Urakan laatusuunnitelma (vain muotoilu)"));
    EXPECT_EQ(WindowName(c.fields[1].window), QStringLiteral("Yksityiskohtaiset tiedot"));
}

TEST(ProjectCompare, TheLinesOfTheTableAndTheSummary) {
    const ProjectComparison c = CompareProjects(
        version(kBase),
        version(with(removed(kBase, 2), 6, q("", "Muotti", "T3", "45", "m2", "30", "vaneri"))));
    // The changed row gives a line per column, its name and kind on the first only; the removed
    // row one line with its other cells.
    ASSERT_EQ(c.lines.size(), 3u);
    EXPECT_EQ(c.lines[0].kind, ChangeKind::Removed);
    EXPECT_EQ(c.lines[0].oldText, QStringLiteral("RAK. OSA: T1; MÄÄRÄ: 50; YKSIKKÖ: m3; YKS.HINTA: 8"));
    EXPECT_EQ(c.lines[1].column, QStringLiteral("RAK. OSA"));
    EXPECT_TRUE(c.lines[1].first);
    EXPECT_EQ(c.lines[2].column, QStringLiteral("MÄÄRÄ"));
    EXPECT_EQ(c.lines[2].oldText, QStringLiteral("40"));
    EXPECT_EQ(c.lines[2].newText, QStringLiteral("45"));
    EXPECT_FALSE(c.lines[2].first);
    EXPECT_EQ(c.count(ChangeKind::Changed), 1);
    EXPECT_EQ(c.count(ChangeKind::Removed), 1);

    ASSERT_FALSE(c.summary.empty());
    EXPECT_EQ(c.summary[0].type, SummaryRow::Heading);
    EXPECT_EQ(c.summary[0].label, QStringLiteral("KUSTANNUSARVIO (€)"));
    // Row amounts of the bridge: 400 less for "Täyttö", 150 more for "Muotti".
    EXPECT_EQ(c.summary[1].label, QStringLiteral("Rakennuskustannukset, silta"));
    EXPECT_EQ(c.summary[1].oldText, QStringLiteral("10\u00A0100,00"));
    EXPECT_EQ(c.summary[1].change, QStringLiteral("-250,00"));
    EXPECT_EQ(c.summary[1].percent, QStringLiteral("-2,5 %"));
}
