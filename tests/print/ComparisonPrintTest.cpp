// The printed comparison of two versions ("Muutosvertailu"): a document of the run beside the
// thirteen of the selection, with the program's header and footer, its table continued over
// pages, and landscape paper only when the table needs the width.
#include "calc/CalcLists.h"
#include "calc/ProjectCompare.h"
#include "print/Comparison.h"
#include "print/Outline.h"
#include "print/PdfOutput.h"
#include "print/PrintFixtures.h"
#include "print/Reports.h"

#include <gtest/gtest.h>

using namespace print_test;

namespace {

// The texts of a page without the spaces that end wrapped lines.
QStringList trimmedTexts(const std::vector<print::TextItem>& items) {
    QStringList out;
    for (const QString& t : texts(items))
        out << t.trimmed();
    return out;
}

calc::ProjectVersion version(const std::vector<QStringList>& quantities, const QString& name) {
    calc::ProjectVersion v;
    v.name = name;
    v.windows[0].Combo1 = QStringList(18);
    v.windows[0].Combo1[4] = QStringLiteral("€");
    v.lists[1].push_back(std::make_unique<lists::ListModel>());
    calc_test::fillQuantityList(*v.lists[1][0], quantities);
    return v;
}

// A comparison with `changes` changed quantities; long remarks make the table want the width.
calc::ProjectComparison comparison(int changes, bool longTexts) {
    std::vector<QStringList> older = {{"7150", "BETONITYÖT"}};
    std::vector<QStringList> newer = older;
    for (int i = 0; i < changes; ++i) {
        const QString text = QStringLiteral("Betonointi %1").arg(i);
        const QString remark = longTexts ? QStringLiteral("Betoni K40-1, rakenneosat valetaan yhtenä valuna "
                                                          "ilman työsaumoja, jälkihoito vähintään 7 vrk")
                                         : QString();
        older.push_back({QString(), text, QStringLiteral("T1"), QStringLiteral("10"), QStringLiteral("m3"),
                         QStringLiteral("150"), remark});
        newer.push_back({QString(), text, QStringLiteral("T1"), QStringLiteral("12"), QStringLiteral("m3"),
                         QStringLiteral("150"), remark + QStringLiteral(" (muutettu)")});
    }
    return calc::CompareProjects(version(older, QStringLiteral("/projektit/vanha.sl")),
                                 version(newer, QStringLiteral("/projektit/uusi.sl")));
}

// The sample project, and a run that prints the comparison after the selected documents.
class ComparisonPrint : public ::testing::Test {
protected:
    // The run of `documents` and then `c`, paginated for `layout`.
    std::unique_ptr<print::PrintRun> comparedRun(const calc::ProjectComparison& c,
                                                 std::initializer_list<int> documents,
                                                 QPageLayout layout = print::DefaultPageLayout()) {
        auto run = t.run(documents, std::move(layout));
        run->setComparison(&c);
        EXPECT_EQ(run->PageCount(), print::PageCountResult::Done);
        return run;
    }
    // Three changed quantities after the quantity list of one row.
    std::unique_ptr<print::PrintRun> quantitiesAndThreeChanges() {
        t.setQuantities({entry(QStringLiteral("Kaivu"))});
        return comparedRun(threeChanges, {print::doc::Quantities});
    }

    TestProject t;
    const calc::ProjectComparison threeChanges = comparison(3, false);
};

} // namespace

TEST_F(ComparisonPrint, FollowsTheSelectedDocumentsWithAFrontPageHeadersAndFooters) {
    auto run = quantitiesAndThreeChanges();
    // The quantity list's two pages, then the comparison's front page and its body.
    ASSERT_EQ(run->TotalPages(), 4);
    EXPECT_EQ(run->entry(2).document, print::doc::Quantities);
    EXPECT_EQ(run->entry(3).document, print::doc::Comparison);
    EXPECT_EQ(run->entry(3).number, 1);
    EXPECT_EQ(run->entry(4).count, 2);
    EXPECT_EQ(print::DocumentTitle(print::doc::Comparison, QString()), QStringLiteral("Muutosvertailu"));

    const QStringList front = texts(recordPage(*run, 3));
    EXPECT_TRUE(front.contains(QStringLiteral("Muutosvertailu")));
    EXPECT_TRUE(front.contains(QStringLiteral("Kirkkojoen silta")));
    const QStringList body = trimmedTexts(recordPage(*run, 4));
    for (const char* expected : {"Sivu 2 (2)",
                                 "Tulostettu: 23.11.2026",
                                 "Muutosvertailu",
                                 "Laati: Matti Virtanen 14.3.2006",
                                 "TAMRIK 2006",
                                 "Vanha versio: /projektit/vanha.sl",
                                 "KUSTANNUSARVIO (€)",
                                 "Rakennuskustannukset, silta",
                                 "+900,00",
                                 "+20,0 %",
                                 "SILLAN LAATULUKU",
                                 "MUUTOKSET: lisätty 0, poistettu 0, muutettu 3",
                                 "Laji",
                                 "Kust. muutos",
                                 "Muutettu",
                                 "Määräluettelo",
                                 "MÄÄRÄ",
                                 "10",
                                 "12",
                                 "+300,00",
                                 "Rivien kustannusmuutos yhteensä"})
        EXPECT_TRUE(body.contains(QString::fromUtf8(expected))) << expected;

    // Upright paper wraps the names of the rows: the table wants the width of landscape paper,
    // and there the names stand on one line.
    EXPECT_TRUE(print::ComparisonNeedsLandscape(*run));
    auto wide =
        comparedRun(threeChanges, {print::doc::Quantities}, print::DefaultPageLayout(QPageLayout::Landscape));
    EXPECT_TRUE(trimmedTexts(recordPage(*wide, 4)).contains(QStringLiteral("7150 / Betonointi 2")));
    // Changes of short fields alone fit upright.
    calc::ProjectComparison fields;
    fields.fields.push_back(
        {calc::ChangeKind::Changed, 0, QStringLiteral("ALV %"), QStringLiteral("22"), QStringLiteral("24")});
    fields.lines.push_back({calc::ChangeKind::Changed, calc::ChangeSource::Field, 0, true,
                            QStringLiteral("Perustiedot"), QStringLiteral("ALV %"), QString(),
                            QStringLiteral("22"), QStringLiteral("24")});
    run->setComparison(&fields);
    EXPECT_FALSE(print::ComparisonNeedsLandscape(*run));
}

TEST_F(ComparisonPrint, TheSummaryKeepsEachWorkPhaseOnOneLine) {
    // Work phases with names of usual length, and one longer than any column can hold.
    const QString longest = QStringLiteral("LAAKERIT, LIIKUNTASAUMAT, KAITEET, VARUSTEET JA LAITTEET SEKÄ "
                                           "MUUT SILLAN KOKO PITUUDELLE ULOTTUVAT RAKENTEET");
    std::vector<QStringList> older = {{"7120", "PERUSTUKSET JA PAALUTUKSET"},
                                      {"", "Paalutus", "T1", "10", "m", "150"},
                                      {"7185", "VEDENERISTYS JA PINTARAKENTEET"},
                                      {"", "Eristys", "T1", "10", "m2", "50"},
                                      {"7190", longest},
                                      {"", "Laakeri", "T1", "2", "kpl", "900"}};
    std::vector<QStringList> newer = older;
    newer[1][3] = QStringLiteral("12");
    const calc::ProjectComparison c =
        calc::CompareProjects(version(older, QStringLiteral("/projektit/vanha.sl")),
                              version(newer, QStringLiteral("/projektit/uusi.sl")));
    auto run = comparedRun(c, {}, print::DefaultPageLayout(QPageLayout::Portrait));
    const QStringList body = trimmedTexts(recordPage(*run, 2));
    for (const char* whole : {"7120 PERUSTUKSET JA PAALUTUKSET", "7185 VEDENERISTYS JA PINTARAKENTEET",
                              "Vaatimuksia, joiden arvostelu muuttui"})
        EXPECT_TRUE(body.contains(QString::fromUtf8(whole))) << whole << "\n" << body.join("|").toStdString();
    // The longest name is cut where its column ends, as values are in the other documents.
    const auto cut = std::find_if(body.begin(), body.end(), [](const QString& text) {
        return text.startsWith(QStringLiteral("7190 LAAKERIT")) && text.endsWith(QStringLiteral("…"));
    });
    EXPECT_NE(cut, body.end()) << body.join("|").toStdString();
    for (const char* rest : {"PAALUTUKSET", "PINTARAKENTEET", "muuttui", "RAKENTEET"})
        EXPECT_FALSE(body.contains(QString::fromUtf8(rest))) << rest << " on a line of its own";
}

TEST_F(ComparisonPrint, ALongTableGoesOnOverPagesWithItsColumnHeadings) {
    const calc::ProjectComparison c = comparison(120, true);
    auto run = comparedRun(c, {}, print::DefaultPageLayout(QPageLayout::Landscape));
    ASSERT_GE(run->TotalPages(), 4);
    EXPECT_EQ(run->entry(1).document, print::doc::Comparison);
    // Every change is on exactly one page, and pages after the first of the table repeat its
    // column headings.
    int shown = 0;
    for (int p = 2; p <= run->TotalPages(); ++p) {
        const std::vector<print::TextItem> items = recordPage(*run, p);
        const QStringList all = trimmedTexts(items);
        shown += static_cast<int>(all.count(QStringLiteral("Muutettu")));
        if (p > 2) EXPECT_TRUE(all.contains(QStringLiteral("Kust. muutos"))) << p;
        EXPECT_TRUE(all.contains(QStringLiteral("Sivu %1 (%2)").arg(p).arg(run->TotalPages())));
        // Nothing runs into the footer.
        for (const print::TextItem& item : items)
            if (item.text != QLatin1String("TAMRIK 2006"))
                EXPECT_LE(item.y, run->page().bottom() - 360) << item.text.toStdString();
    }
    EXPECT_EQ(shown, 120);
}

TEST_F(ComparisonPrint, TheComparisonIsDrawnUpByEitherPartyAsAllRequirementsAre) {
    auto run = t.run({});
    EXPECT_EQ(print::PartiesOf(*run, print::doc::Comparison).firstRole, QStringLiteral("SUUNNITTELIJA"));
    t.source.basicCombos[17] = QStringLiteral("Pekka Nieminen");
    EXPECT_EQ(print::PartiesOf(*run, print::doc::Comparison).firstRole, QStringLiteral("URAKOITSIJA"));
}

TEST_F(ComparisonPrint, ALandscapeFrontPageKeepsThePartiesAboveTheSignatures) {
    // Regression: on landscape paper the second party's heading was printed over the
    // signature lines.
    t.source.basicCombos[17] = QStringLiteral("Pekka Nieminen");
    auto run = t.run({print::doc::AllRequirements}, print::DefaultPageLayout(QPageLayout::Landscape));
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    const std::vector<print::TextItem> front = recordPage(*run, 1);
    const print::TextItem* signatures = find(front, QStringLiteral("Tarkastus"));
    const print::TextItem* parts = find(front, QStringLiteral("Rakenneosien numerointi"));
    const print::TextItem* contractor = find(front, QStringLiteral("URAKOITSIJA"));
    ASSERT_TRUE(signatures && parts && contractor);
    // The first party's heading stands beside the part numbering's; the second party has no
    // room above the signatures and is left out rather than printed over them.
    EXPECT_EQ(contractor->y, parts->y);
    const double lh = run->page().LineHeight11;
    if (const print::TextItem* client = find(front, QStringLiteral("TILAAJA")))
        EXPECT_LE(client->y + lh, signatures->y - 1.5 * lh + 1);
}

TEST_F(ComparisonPrint, ThePdfHasABookmarkAndATitleForTheComparison) {
    auto run = quantitiesAndThreeChanges();
    const std::vector<print::Bookmark> outline = print::RunOutline(*run);
    ASSERT_EQ(outline.size(), 2u);
    EXPECT_EQ(outline[0].title, QStringLiteral("1 Määräluettelo"));
    EXPECT_EQ(outline[1].title, QStringLiteral("Muutosvertailu"));
    EXPECT_EQ(outline[1].page, 3);
    EXPECT_EQ(print::DocumentProperties(*run, {}).title,
              QStringLiteral("Kirkkojoen silta – Sillan määräluettelo, Muutosvertailu"));
}
