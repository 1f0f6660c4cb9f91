// The quality requirement documents, the text documents and the cards: which rows each
// document shows, how pages split, what a page puts down.
#include "calc/NumberText.h"
#include "platform/ReadError.h"
#include "print/CardLayout.h"
#include "print/PrintFixtures.h"
#include "print/Reports.h"
#include "print/WorkPhase.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <memory>
#include <gtest/gtest.h>

using print::PageCountResult;
using print_test::find;
using print_test::recordPage;
using print_test::TestProject;
using print_test::texts;

namespace {

// A requirement row: number, text, type, weight, fulfilment mark and the long texts.
QStringList requirement(const QString& number, const QString& text, const QString& type,
                        const QString& mark = QString(), const QString& report = QString()) {
    QStringList row(24);
    row[1] = number;
    row[2] = text;
    row[3] = type;
    row[4] = QStringLiteral("SFS-EN 206");
    row[5] = QStringLiteral("C35/45");
    row[8] = QStringLiteral("MPa");
    row[9] = QStringLiteral("M");
    row[10] = QStringLiteral("3");
    row[11] = QStringLiteral("Laatusuunnitelma ") + number;
    row[14] = QStringLiteral("Mittausraportti ") + number;
    row[15] = QStringLiteral("5");
    row[19] = report;
    row[20] = mark;
    row[21] = QStringLiteral("Poikkeama ") + number;
    row[22] = QStringLiteral("Korjaus ") + number;
    row[23] = QStringLiteral("0.5");
    return row;
}

QStringList caption(const QString& littera, const QString& text) {
    QStringList row(24);
    row[0] = littera;
    row[2] = text;
    return row;
}

// Two work phases with requirements of every kind.
std::vector<QStringList> requirementRows() {
    return {caption(QStringLiteral("7110"), QStringLiteral("PERUSTUKSET")),
            requirement(QStringLiteral("1"), QStringLiteral("Anturan korko"), QStringLiteral("1"),
                        QStringLiteral("K")),
            requirement(QStringLiteral("2"), QStringLiteral("Betonin lujuus"), QStringLiteral("2"),
                        QStringLiteral("E")),
            requirement(QStringLiteral("3"), QStringLiteral("Ohje ilman raporttia"), QStringLiteral("3")),
            caption(QStringLiteral("7150"), QStringLiteral("PÄÄLLYSRAKENNE")),
            caption(QStringLiteral("7151"), QStringLiteral("Muotit")),
            requirement(QStringLiteral("4"), QStringLiteral("Muottien mittatarkkuus"), QStringLiteral("1"),
                        QStringLiteral("E")),
            requirement(QStringLiteral("5"), QStringLiteral("Ohje raportin kanssa"), QStringLiteral("3"),
                        QString(), QStringLiteral("Tarkastettu silmämääräisesti")),
            requirement(QStringLiteral("6"), QStringLiteral("Ilman tyyppiä"), QString())};
}

// The items of a document as "C7110" for a caption row and "R1" for requirement number 1.
QStringList itemsOf(const lists::ListModel& list, int document, const QString& phase = QString()) {
    QStringList out;
    for (const print::QualityItem& item : print::QualityItems(list, document, phase))
        out << (item.caption ? QStringLiteral("C") + list.cell(item.row, 1).toString()
                             : QStringLiteral("R") + list.cell(item.row, 2).toString());
    return out;
}

QString joined(const std::vector<print::TextItem>& items) {
    return texts(items).join(QLatin1Char('|'));
}

} // namespace

TEST(QualityDocuments, EachDocumentShowsItsRowsUnderTheirCaptions) {
    TestProject t;
    print_test::fillList(t.requirements, lists::kind::Requirements, 24, requirementRows());
    struct Case {
        int document;
        QString phase;
        QStringList items;
    };
    const QString foundations = print::CaptionLine(QStringLiteral("7110"), QStringLiteral("PERUSTUKSET"));
    const Case cases[] = {
        {print::doc::BridgeRequirements, QString(), {"C7110", "R1", "C7150", "C7151", "R4"}},
        {print::doc::AllRequirements,
         QString(),
         {"C7110", "R1", "R2", "R3", "C7150", "C7151", "R4", "R5", "R6"}},
        {print::doc::AllRequirements, foundations, {"C7110", "R1", "R2", "R3"}},
        {print::doc::QualityPlans, foundations, {"C7110", "R1", "R2", "R3"}},
        {print::doc::Deviations, QString(), {"C7110", "R2", "C7150", "C7151", "R4"}},
        {print::doc::Deviations, foundations, {"C7110", "R2"}},
        {print::doc::QualityReport, QString(), {"C7110", "R1", "R2", "C7150", "C7151", "R4", "R5"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(itemsOf(t.requirements, c.document, c.phase), c.items)
            << c.document << " " << c.phase.toStdString();

    // The work phase of a row is found from its "Rivi" value, the way the selection stores it.
    const QString rivi = t.requirements.cell(3, t.requirements.cols()).toString();
    EXPECT_EQ(print::ParseQualityCaption(t.requirements, rivi), foundations);
    EXPECT_EQ(print::ParseQualityCaption(t.requirements, QStringLiteral("no such row")), QString());

    // A document without admitted rows: its front page and one empty body page.
    print_test::fillList(t.requirements, lists::kind::Requirements, 24,
                         {caption(QStringLiteral("7110"), QStringLiteral("PERUSTUKSET")),
                          requirement(QStringLiteral("1"), QStringLiteral("Korko"), QStringLiteral("1"),
                                      QStringLiteral("K"))});
    auto run = t.run({print::doc::Deviations});
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    ASSERT_EQ(run->TotalPages(), 2);
    EXPECT_EQ(run->entry(2).number, 2);
    EXPECT_EQ(run->entry(2).count, 2);
    const auto body = recordPage(*run, 2);
    EXPECT_TRUE(find(body, QStringLiteral("Sillan poikkeamaraportti")));
    EXPECT_FALSE(find(body, QStringLiteral("Korko")));
}

TEST(QualityDocuments, PagesShowTheirBlocksTitlesAndLegends) {
    TestProject t;
    print_test::fillList(t.requirements, lists::kind::Requirements, 24, requirementRows());
    auto run = t.run({print::doc::AllRequirements, print::doc::Inspections, print::doc::QualityReport});
    t.selection.WorkPhaseFilter[print::doc::Inspections] =
        print::CaptionLine(QStringLiteral("7110"), QStringLiteral("PERUSTUKSET"));
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    auto firstBody = [&run](int document) {
        for (int p = 1; p <= run->TotalPages(); ++p)
            if (run->entry(p).document == document && run->entry(p).number == 2) return p;
        return 0;
    };
    // Document 7: the identification block and the legends of the footer.
    const auto all = recordPage(*run, firstBody(print::doc::AllRequirements));
    EXPECT_TRUE(find(all, QStringLiteral("Sillan laatuvaatimukset")));
    for (const char* label :
         {"Laatuvaatimus", "Nro", "Vaat.", "Ala", "Ylä", "Yks", "Ty", "Tt", "Pa", "Viite", "C35/45"})
        EXPECT_TRUE(find(all, QString::fromUtf8(label))) << label;
    EXPECT_TRUE(find(all, QStringLiteral("7110")));
    EXPECT_TRUE(joined(all).contains(QStringLiteral("Ty = vaatimustyyppi")));
    EXPECT_FALSE(find(all, QStringLiteral("Laatusuunnitelma")));
    // Caption before requirement, requirement text before its block.
    EXPECT_LT(find(all, QStringLiteral("PERUSTUKSET"))->y, find(all, QStringLiteral("Anturan korko"))->y);
    EXPECT_LT(find(all, QStringLiteral("Anturan korko"))->y, find(all, QStringLiteral("C35/45"))->y);

    // Document 10 limited to one work phase: its title, the plan, the report and the results.
    const auto inspections = recordPage(*run, firstBody(print::doc::Inspections));
    EXPECT_EQ(
        print::DocumentTitle(print::doc::Inspections, t.selection.WorkPhaseFilter[print::doc::Inspections]),
        QStringLiteral("Tarkastus- ja mittausraportti  7110: PERUSTUKSET"));
    EXPECT_TRUE(joined(inspections).contains(QStringLiteral("PERUSTUKSET")));
    for (const char* text : {"Laatusuunnitelma 1", "Mittausraportti 1", "Mittauksia", "Täyttää vaatimukset",
                             "Pa kerroin", "0,5"})
        EXPECT_TRUE(find(inspections, QString::fromUtf8(text))) << text;
    EXPECT_FALSE(find(inspections, QStringLiteral("Muottien mittatarkkuus")));

    // Document 12: the summary page comes first, then the report blocks.
    const int summary = firstBody(print::kQualitySummary);
    ASSERT_GT(summary, 0);
    EXPECT_EQ(run->entry(summary - 1).document, print::doc::QualityReport);
    EXPECT_EQ(run->entry(summary).count, run->entry(summary - 1).count);
    const auto sums = recordPage(*run, summary);
    const calc::QualityRecord& q = run->quality();
    EXPECT_TRUE(find(sums, QStringLiteral("SILLAN LAATULUKU ") + calc::DecimalS(q.qualityNumber, 1) +
                               QStringLiteral(" (100)")));
    for (const char* text :
         {"Pa%", "TotPa", "MaksPa", "Tot%", "PERUSTUKSET", "Muotit", "Yhteenveto laatuvaatimuksista",
          "1 Siltakohtainen", "2 KLVn mukainen", "3 Ohjeellinen", "Yhteensä", "Tot% = suhde TotPa/MaksPa"})
        EXPECT_TRUE(find(sums, QString::fromUtf8(text))) << text;
    // Types: two of type 1 (one inspected with K, one with E), one of type 2, three others.
    EXPECT_EQ(q.countType1, 2);
    const print::TextItem* total = find(sums, QStringLiteral("Yhteensä"));
    ASSERT_TRUE(total);
    QStringList totals;
    for (const print::TextItem& i : sums)
        if (std::abs(i.y - total->y) < 1 && i.text != total->text) totals << i.text;
    EXPECT_EQ(totals, (QStringList{QStringLiteral("6"),
                                   QString::number(q.checkedType1 + q.checkedType2 + q.checkedType3),
                                   QString::number(6 - q.checkedType1 - q.checkedType2 - q.checkedType3)}));

    const auto report = recordPage(*run, summary + 1);
    for (const char* text :
         {"Laaturaportti", "Täyttää vaat.", "TotPa", "Mit.lkm", "K.arvo", "Kyllä", "Ei", "3,0", "1,5"})
        EXPECT_TRUE(find(report, QString::fromUtf8(text))) << text;
    EXPECT_TRUE(joined(report).contains(QStringLiteral("TAMRIK 2006")));
    EXPECT_FALSE(joined(report).contains(QStringLiteral("Ty = vaatimustyyppi")));
}

TEST(QualityDocuments, ContinuationRowsPrintWithTheirRequirementInEveryDocument) {
    TestProject t;
    // A requirement whose texts go on in the rows below it (no littera, no number), as the
    // shipped base list has them; a blank row and the next requirement end it.
    QStringList more(24);
    more[2] = QStringLiteral("Loppulyönneissä paalun painuma on enintään 20 mm.");
    more[11] = QStringLiteral("Painumat kirjataan paalutuspöytäkirjaan.");
    more[14] = QStringLiteral("Painumat mitattu kaikista paaluista.");
    more[19] = QStringLiteral("Paalutus hyväksytty.");
    more[21] = QStringLiteral("Kaksi paalua lyöty uudelleen.");
    more[22] = QStringLiteral("Lisäpaalu suunniteltu.");
    print_test::fillList(
        t.requirements, lists::kind::Requirements, 24,
        {caption(QStringLiteral("7120"), QStringLiteral("PAALUTUS")),
         requirement(QStringLiteral("4"), QStringLiteral("Paalut lyödään tiiviiseen pohjaan."),
                     QStringLiteral("1"), QStringLiteral("E"), QStringLiteral("Raportti 4")),
         more, QStringList(24),
         requirement(QStringLiteral("5"), QStringLiteral("Seuraava"), QStringLiteral("1"),
                     QStringLiteral("E"))});
    EXPECT_EQ(print::RequirementEnd(t.requirements, 2), 4);
    EXPECT_EQ(print::RequirementEnd(t.requirements, 5), 5);
    const struct {
        int document;
        std::vector<const char*> texts;
    } cases[] = {
        {print::doc::BridgeRequirements, {"enintään 20 mm."}},
        {print::doc::AllRequirements, {"enintään 20 mm."}},
        {print::doc::QualityPlans, {"enintään 20 mm.", "Painumat kirjataan paalutuspöytäkirjaan."}},
        {print::doc::Inspections, {"enintään 20 mm.", "Painumat mitattu kaikista paaluista."}},
        {print::doc::Deviations,
         {"enintään 20 mm.", "Kaksi paalua lyöty uudelleen.", "Lisäpaalu suunniteltu."}},
        {print::doc::QualityReport, {"enintään 20 mm.", "Paalutus hyväksytty."}},
    };
    for (const auto& c : cases) {
        auto run = t.run({c.document});
        ASSERT_EQ(run->PageCount(), PageCountResult::Done);
        const auto page = recordPage(*run, run->TotalPages());
        // The requirement's own text first, its continuation after it and before the next one.
        const QString text = joined(page);
        for (const char* expected : c.texts) {
            const qsizetype at = text.indexOf(QString::fromUtf8(expected));
            EXPECT_GT(at, text.indexOf(QStringLiteral("tiiviiseen"))) << c.document << " " << expected;
            EXPECT_LT(at, text.indexOf(QStringLiteral("Seuraava"))) << c.document << " " << expected;
        }
    }
}

TEST(QualityDocuments, ReportCellsComeFromWeightMarkAndType) {
    TestProject t;
    print_test::fillList(
        t.requirements, lists::kind::Requirements, 24,
        {requirement(QStringLiteral("1"), QStringLiteral("a"), QStringLiteral("1"), QStringLiteral("K")),
         requirement(QStringLiteral("2"), QStringLiteral("b"), QStringLiteral("2"), QStringLiteral("E")),
         requirement(QStringLiteral("3"), QStringLiteral("c"), QStringLiteral("2")),
         requirement(QStringLiteral("4"), QStringLiteral("d"), QStringLiteral("3"), QStringLiteral("K"))});
    const struct {
        QString fulfilled, totPa;
    } expected[] = {{"Kyllä", "3,0"}, {"Ei", "1,5"}, {"-", "-"}, {"Kyllä", "-"}};
    for (int r = 1; r <= 4; ++r) {
        const print::ReportCells cells = print::ReportCellsOf(t.requirements, r);
        EXPECT_EQ(cells.fulfilled, expected[r - 1].fulfilled) << r;
        EXPECT_EQ(cells.totPa, expected[r - 1].totPa) << r;
    }
}

TEST(QualityDocuments, ATextTooLongForItsPageIsCutWithANoteAndNothingMoves) {
    TestProject t;
    QString longText;
    for (int i = 0; i < 400; ++i)
        longText += QStringLiteral("Betonin laatu todetaan koekappaleista. ");
    // Its quality plan takes three lines, which the cut leaves room for.
    QStringList tooLong = requirement(QStringLiteral("2"), longText, QStringLiteral("1"));
    tooLong[11] = QStringLiteral("Laatusuunnitelma 2: koekappaleet otetaan jokaisesta valuerästä, ja niiden "
                                 "lujuus todetaan akkreditoidussa laboratoriossa. Tulokset liitetään "
                                 "laatukansioon ennen muottien purkua.");
    print_test::fillList(t.requirements, lists::kind::Requirements, 24,
                         {requirement(QStringLiteral("1"), QStringLiteral("Lyhyt"), QStringLiteral("1")),
                          tooLong,
                          requirement(QStringLiteral("3"), QStringLiteral("Kolmas"), QStringLiteral("1"))});
    auto run = t.run({print::doc::QualityPlans});
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    // The long requirement stands alone on its page, between the two short ones.
    ASSERT_EQ(run->TotalPages(), 4);
    EXPECT_EQ(run->entry(3).firstRow, 2);
    EXPECT_EQ(run->entry(3).lastRow, 2);
    const auto page = recordPage(*run, 3);
    const QString cut = QStringLiteral(
        "... (tulostus katkaistu, täydellinen teksti voidaan lukea TAMRIK 2006 ohjelmasta käsin)");
    const print::TextItem* note = find(page, cut);
    ASSERT_TRUE(note);
    const print::PageModel& m = run->page();
    EXPECT_FALSE(find(recordPage(*run, 4), QStringLiteral("Betonin")));
    // Below the cut the requirement's other blocks still print, and nothing runs into the
    // footer.
    EXPECT_EQ(texts(page).count(cut), 1) << "the plan is not cut";
    const QString all = joined(page).replace(QLatin1Char('|'), QLatin1Char(' ')).simplified();
    EXPECT_TRUE(all.contains(tooLong[11])) << all.toStdString();
    ASSERT_TRUE(find(page, QStringLiteral("C35/45")));
    EXPECT_GT(find(page, QStringLiteral("C35/45"))->y, note->y);
    EXPECT_TRUE(find(page, QStringLiteral("C35/45")));
    for (const print::TextItem& i : page)
        if (i.y > m.OriginY + 700 && i.text != QStringLiteral("TAMRIK 2006") &&
            !i.text.startsWith(QStringLiteral("Ty =")) && !i.text.startsWith(QStringLiteral("Tt =")))
            EXPECT_LE(i.y + m.LineHeight11, m.bottom() - 600 * m.ScaleY + 1) << i.text.toStdString();
}

TEST(QualityDocuments, ADeviationCutAtItsReservedLinesFillsItsPageAsPaginated) {
    TestProject t;
    QString plan;
    for (int i = 1; i <= 70; ++i)
        plan += QStringLiteral("Laatusuunnitelman kohta %1: muottien ja raudoituksen tarkastus.\r\n").arg(i);
    QStringList deviation = requirement(QStringLiteral("3"), QStringLiteral("Ilmamäärä"), QStringLiteral("2"),
                                        QStringLiteral("E"));
    deviation[11] = plan;
    print_test::fillList(
        t.requirements, lists::kind::Requirements, 24,
        {requirement(QStringLiteral("1"), QStringLiteral("Lyhyt"), QStringLiteral("1"), QStringLiteral("E")),
         deviation,
         requirement(QStringLiteral("4"), QStringLiteral("Neljäs"), QStringLiteral("1"),
                     QStringLiteral("E"))});
    auto run = t.run({print::doc::Deviations});
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    ASSERT_EQ(run->TotalPages(), 4);
    ASSERT_EQ(run->entry(3).firstRow, 2);
    ASSERT_EQ(run->entry(3).lastRow, 2);
    const print::PageModel& m = run->page();
    const double lh = m.LineHeight11;

    // Pagination measures the block as drawn: cut, it ends above the page's foot.
    print::Surface measure(run->fonts());
    bool cut = false;
    const double top = print::QualityBodyTop(*run);
    const double h = print::QualityItemHeight(*run, measure, print::doc::Deviations, {2, false}, top, &cut);
    EXPECT_TRUE(cut);
    EXPECT_LT(top + h, m.bottom() - 360 * m.ScaleY);
    EXPECT_GT(top + h, m.bodyLimit());

    // The quality plan is cut where its seven reserved lines begin, and the blocks after it
    // take those lines: the page is not left a third empty below them.
    const auto page = recordPage(*run, 3);
    const print::TextItem* note = find(page, QStringLiteral("... (tulostus katkaistu, täydellinen teksti "
                                                            "voidaan lukea TAMRIK 2006 ohjelmasta käsin)"));
    ASSERT_TRUE(note);
    EXPECT_NEAR(note->y + lh, m.bottom() - 600 * m.ScaleY - 7 * lh, lh);
    const print::TextItem* last = find(page, QStringLiteral("Korjaus 3"));
    ASSERT_TRUE(last);
    EXPECT_GT(last->y, note->y);
    EXPECT_GT(last->y + lh, m.bottom() - 600 * m.ScaleY - 3 * lh);
    EXPECT_LE(last->y + lh, m.bottom() - 600 * m.ScaleY);
    EXPECT_TRUE(find(recordPage(*run, 4), QStringLiteral("Neljäs")));
}

TEST(QualityDocuments, CaptionsStayWithTheFirstLinesOfALongRequirement) {
    TestProject t;
    QString longText;
    while (longText.size() < 5000)
        longText +=
            QStringLiteral("Kaivannon pohja tarkastetaan ja mitataan ennen perustusten rakentamista. ");
    std::vector<QStringList> rows = {caption(QStringLiteral("7100"), QStringLiteral("TYÖMAAN JÄRJESTELYT"))};
    for (int i = 1; i <= 4; ++i)
        rows.push_back(requirement(QString::number(i), QStringLiteral("Järjestely %1").arg(i),
                                   QStringLiteral("1"), QStringLiteral("E"), QStringLiteral("Raportti")));
    rows.push_back(caption(QStringLiteral("7110"), QStringLiteral("KAIVUT JA LOUHINNAT")));
    rows.push_back(caption(QStringLiteral("7111"), QStringLiteral("Kaivu")));
    rows.push_back(requirement(QStringLiteral("5"), longText, QStringLiteral("1"), QStringLiteral("E"),
                               QStringLiteral("Raportti")));
    rows.push_back(requirement(QStringLiteral("6"), QStringLiteral("Kaivun jälkeen"), QStringLiteral("1"),
                               QStringLiteral("E"), QStringLiteral("Raportti")));
    print_test::fillList(t.requirements, lists::kind::Requirements, 24, rows);
    for (int document : {print::doc::BridgeRequirements, print::doc::AllRequirements, print::doc::Inspections,
                         print::doc::Deviations, print::doc::QualityReport}) {
        auto run = t.run({document});
        ASSERT_EQ(run->PageCount(), PageCountResult::Done);
        int longPage = 0;
        for (int p = 1; p <= run->TotalPages(); ++p) {
            const auto page = recordPage(*run, p);
            const QString text = joined(page);
            if (text.contains(QStringLiteral("Kaivannon pohja"))) longPage = p;
            // No page holds only captions.
            if (run->entry(p).document == document && run->entry(p).number > 1)
                EXPECT_TRUE(find(page, QStringLiteral("Laatuvaatimus"))) << document << " page " << p;
        }
        ASSERT_GT(longPage, 0) << document;
        // The long requirement starts on the page of its two captions, right below them.
        const auto page = recordPage(*run, longPage);
        const print::TextItem* phase = find(page, QStringLiteral("KAIVUT JA LOUHINNAT"));
        const print::TextItem* sub = find(page, QStringLiteral("Kaivu"));
        ASSERT_TRUE(phase && sub) << document;
        EXPECT_LT(phase->y, sub->y);
        EXPECT_LT(sub->y, print::QualityBodyTop(*run) + 3 * run->page().LineHeight11) << document;
    }
}

TEST(QualityDocuments, LongValuesStayInTheirCellsWhole) {
    TestProject t;
    const QString reference =
        QStringLiteral("SFS-EN 13670-1 Betonirakenteiden toteutus, kansallinen liite SFS 7022");
    QStringList first = requirement(QStringLiteral("1"), QStringLiteral("Betonin lujuus"),
                                    QStringLiteral("1"), QStringLiteral("K"));
    first[4] = reference;
    QStringList second = requirement(QStringLiteral("2"), QStringLiteral("Peitepaksuus"), QStringLiteral("1"),
                                     QStringLiteral("E"));
    second[4] = QStringLiteral("SFS-EN 13670-1");
    second[5] = QStringLiteral("35...50 mm tai suunnitelman mukaan");
    print_test::fillList(
        t.requirements, lists::kind::Requirements, 24,
        {caption(QStringLiteral("7150"), QStringLiteral("BETONITYÖT, MUOTTI- JA RAUDOITUSTYÖT SEKÄ "
                                                        "BETONIN JÄLKIHOITO JA PINTOJEN VIIMEISTELY")),
         first, second});
    for (int document : {print::doc::AllRequirements, print::doc::Inspections, print::doc::QualityReport}) {
        auto run = t.run({document});
        ASSERT_EQ(run->PageCount(), PageCountResult::Done);
        const auto page = recordPage(*run, run->TotalPages());
        // Nothing is drawn over its neighbour, nor past the frame.
        EXPECT_EQ(print_test::overprinted(*run, page), QStringList()) << document;
        const double frame = run->page().right() - 50 * run->page().ScaleX;
        for (const print::TextItem& i : page)
            if (i.y > print::QualityBodyTop(*run) && i.font.bold)
                EXPECT_LE(i.x + run->fonts().width(i.font, i.text), frame) << i.text.toStdString();
        // The values are there whole, the short reference on its line; a word too long for its
        // cell's line goes on on the next.
        QString text = joined(page);
        text.remove(QLatin1Char('|')).remove(QLatin1Char(' '));
        for (const QString& whole : {reference, second[5]})
            EXPECT_TRUE(text.contains(QString(whole).remove(QLatin1Char(' '))))
                << document << " " << whole.toStdString();
        EXPECT_TRUE(find(page, QStringLiteral("SFS-EN 13670-1"))) << document;
        // A range keeps its points; a number takes a decimal comma.
        EXPECT_TRUE(text.contains(QStringLiteral("35...50"))) << document;
    }
    // The quality report's summary: a work phase too long for its column ends with "…".
    auto run = t.run({print::doc::QualityReport});
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    const auto summary = recordPage(*run, 2);
    EXPECT_EQ(print_test::overprinted(*run, summary), QStringList());
    bool shown = false;
    for (const print::TextItem& i : summary)
        shown = shown || (i.text.startsWith(QStringLiteral("BETONITYÖT, MUOTTI")) &&
                          i.text.endsWith(QStringLiteral("…")));
    EXPECT_TRUE(shown);
}

TEST(QualityDocuments, TheGridScalesWithTheUsableWidth) {
    TestProject t;
    print_test::fillList(t.requirements, lists::kind::Requirements, 24,
                         {requirement(QStringLiteral("1"), QStringLiteral("Korko"), QStringLiteral("1"))});
    std::map<bool, std::pair<double, double>> at; // landscape: x of "Viite" and of "Ylä"
    std::map<bool, double> widths;
    for (bool landscape : {false, true}) {
        SCOPED_TRACE(landscape ? "landscape" : "portrait");
        auto run =
            t.run({print::doc::AllRequirements},
                  print::DefaultPageLayout(landscape ? QPageLayout::Landscape : QPageLayout::Portrait));
        ASSERT_EQ(run->PageCount(), PageCountResult::Done);
        const auto page = recordPage(*run, 2);
        const print::PageModel& m = run->page();
        widths[landscape] = m.UsableWidth;
        ASSERT_TRUE(find(page, QStringLiteral("Viite")) && find(page, QStringLiteral("Ylä")));
        at[landscape] = {find(page, QStringLiteral("Viite"))->x, find(page, QStringLiteral("Ylä"))->x};
        EXPECT_NEAR(at[landscape].first, m.OriginX + 14.4 / 18 * m.UsableWidth, 1);
        EXPECT_NEAR(at[landscape].second, m.OriginX + 7.2 / 18 * m.UsableWidth, 1);
    }
    EXPECT_GT(widths[true], widths[false]);
    EXPECT_GT(at[true].first - at[true].second, at[false].first - at[false].second);
}

TEST(QualityDocuments, SummaryPagesSplitTheWorkPhases) {
    TestProject t;
    std::vector<QStringList> rows;
    const int phases = 120;
    for (int i = 0; i < phases; ++i) {
        rows.push_back(caption(QString::number(7100 + i), QStringLiteral("VAIHE %1").arg(i)));
        rows.push_back(requirement(QString::number(i + 1), QStringLiteral("Vaatimus"), QStringLiteral("1"),
                                   i % 2 ? QStringLiteral("K") : QString()));
    }
    print_test::fillList(t.requirements, lists::kind::Requirements, 24, rows);
    auto run = t.run({print::doc::QualityReport});
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    const print::SummaryLayout layout = print::QualitySummaryLayout(*run);
    std::vector<std::pair<int, int>> ranges;
    for (const print::PageEntry& e : run->pages())
        if (e.document == print::kQualitySummary) ranges.push_back({e.firstRow, e.lastRow});
    ASSERT_GE(ranges.size(), 2u);
    EXPECT_EQ(ranges.front(), std::make_pair(1, layout.firstRows));
    for (size_t k = 1; k < ranges.size(); ++k)
        EXPECT_EQ(ranges[k].first, ranges[k - 1].second + 1);
    EXPECT_EQ(ranges.back().second, phases);
    // The title and the count table only on the first summary page; the phases where they belong.
    const auto first = recordPage(*run, 2);
    const auto second = recordPage(*run, 3);
    EXPECT_TRUE(joined(first).contains(QStringLiteral("SILLAN LAATULUKU")));
    EXPECT_FALSE(joined(second).contains(QStringLiteral("SILLAN LAATULUKU")));
    EXPECT_TRUE(find(first, QStringLiteral("Yhteenveto laatuvaatimuksista")));
    EXPECT_FALSE(find(second, QStringLiteral("Yhteenveto laatuvaatimuksista")));
    EXPECT_TRUE(find(first, QStringLiteral("VAIHE 0")));
    EXPECT_TRUE(find(second, QStringLiteral("VAIHE %1").arg(layout.firstRows)));
    EXPECT_FALSE(find(second, QStringLiteral("VAIHE 0")));
    // Pages of the document are numbered on through the summaries.
    for (int p = 1; p <= run->TotalPages(); ++p) {
        EXPECT_EQ(run->entry(p).number, p);
        EXPECT_EQ(run->entry(p).count, run->TotalPages());
    }
}

TEST(TextDocuments, LinesSplitOverPagesAndAnEmptyTextHasOnlyItsFrontPage) {
    TestProject t;
    QString text;
    for (int i = 1; i <= 100; ++i)
        text += QStringLiteral("Rivi %1 selostusta\r\n").arg(i);
    t.source.documents[0] = text;
    auto run = t.run({print::doc::PlanDescription, print::doc::CodingPlan});
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    const print::PageModel& m = run->page();
    const int r = static_cast<int>(std::lround(m.BodyHeight / m.LineHeight11));
    const int bodies = (100 - 1) / r + 1;
    ASSERT_EQ(run->TotalPages(), 1 + bodies + 1);
    EXPECT_EQ(run->entry(2).firstRow, 1);
    EXPECT_EQ(run->entry(2).lastRow, r);
    EXPECT_EQ(run->entry(1 + bodies).lastRow, 100);
    EXPECT_EQ(run->entry(run->TotalPages()).document, print::doc::CodingPlan);
    EXPECT_EQ(run->entry(run->TotalPages()).count, 1);
    const auto page = recordPage(*run, 3);
    EXPECT_TRUE(find(page, QStringLiteral("Rivi %1 selostusta").arg(r + 1)));
    EXPECT_FALSE(find(page, QStringLiteral("Rivi %1 selostusta").arg(r)));
    EXPECT_TRUE(find(page, QStringLiteral("Rakennussuunnitelmaselostus")));
    EXPECT_NEAR(find(page, QStringLiteral("Rivi %1 selostusta").arg(r + 1))->y, m.OriginY + 700, 1);
}

namespace {

const QByteArray kGoodLayout = "\"\"\r\n"
                               "10000,14000\r\n"
                               "2\r\n"
                               "\"OTSIKKO\",100,100,-12\r\n"
                               "\"Pieni, teksti\",100,600,8\r\n"
                               "1\r\n"
                               "0,1000,10000,1000,2\r\n"
                               "3\r\n"
                               "\"Nimi\",1000,2000,0\r\n"
                               "\"Määrä\",5000,2000,3\r\n"
                               "\"Keskellä\",8000,2000,4\r\n";

// A print run of the bridge card alone, with `layout` as the card layout file in `dir`.
std::unique_ptr<print::PrintRun> cardAlone(TestProject& t, const QTemporaryDir& dir,
                                           const QByteArray& layout) {
    QFile f(dir.filePath(print::kCardLayoutFile));
    if (!f.open(QIODevice::WriteOnly) || f.write(layout) != layout.size()) return nullptr;
    f.close();
    t.selection = print::Selection{};
    t.selection.DocumentSelected[print::doc::Card] = true;
    print::PrintSettings settings;
    settings.appPath = dir.path() + QLatin1Char('/');
    return std::make_unique<print::PrintRun>(t.source, t.selection, settings);
}

} // namespace

TEST(CardLayouts, FieldsArePlacedByTheirAlignmentAndBoldIsANegativeSize) {
    QTemporaryDir dir;
    TestProject t;
    t.source.cardFields = {QString(), QStringLiteral("Kirkkojoen silta"), QStringLiteral("1234"),
                           QStringLiteral("keski")};
    const std::unique_ptr<print::PrintRun> run = cardAlone(t, dir, kGoodLayout);
    ASSERT_TRUE(run);
    print::PrintRun& cardRun = *run;
    ASSERT_EQ(cardRun.PageCount(), PageCountResult::Done);
    ASSERT_EQ(cardRun.TotalPages(), 1);
    const auto items = recordPage(cardRun, 1);
    const print::PageModel& m = cardRun.page();
    const print::CardPlacement p = print::PlaceCard(m, 10000, 14000);
    EXPECT_NEAR(p.x0, std::round((m.PrintableWidth - 10000) / 2.0), 1);
    EXPECT_DOUBLE_EQ(p.sx, 1.0);

    const print::TextItem* title = find(items, QStringLiteral("OTSIKKO"));
    ASSERT_TRUE(title);
    EXPECT_TRUE(title->font.bold);
    EXPECT_DOUBLE_EQ(title->font.size, 12);
    const print::TextItem* small = find(items, QStringLiteral("Pieni, teksti"));
    ASSERT_TRUE(small);
    EXPECT_FALSE(small->font.bold);
    EXPECT_DOUBLE_EQ(small->font.size, 8);

    print::FontBook& fonts = cardRun.fonts();
    const print::TextItem* name = find(items, QStringLiteral("Kirkkojoen silta"));
    const print::TextItem* amount = find(items, QStringLiteral("1234"));
    const print::TextItem* centred = find(items, QStringLiteral("keski"));
    ASSERT_TRUE(name && amount && centred);
    EXPECT_NEAR(name->x, p.x(1000), 0.5);
    EXPECT_FALSE(name->font.bold);
    EXPECT_NEAR(amount->x + fonts.width(amount->font, amount->text), p.x(5000), 0.5);
    EXPECT_TRUE(amount->font.bold);
    EXPECT_NEAR(centred->x + fonts.width(centred->font, centred->text) / 2, p.x(8000), 0.5);

    // A card larger than the printable area is scaled down to it.
    const print::CardPlacement big = print::PlaceCard(m, 2 * m.PrintableWidth, m.PrintableHeight / 2);
    EXPECT_EQ(big.x0, 0);
    EXPECT_DOUBLE_EQ(big.sx, 0.5);
    EXPECT_DOUBLE_EQ(big.sy, 1.0);
}

// A field of several lines in a bold slot is wrapped in the bold type it is drawn in, so that
// none of its lines runs past the card's right edge.
TEST(CardLayouts, AFieldOfSeveralLinesInABoldSlotStaysOnTheCard) {
    QTemporaryDir dir;
    QByteArray layout = kGoodLayout;
    layout.replace("\"Nimi\",1000,2000,0", "\"Nimi\",1000,2000,1");
    TestProject t;
    QString words;
    for (int i = 0; i < 40; ++i)
        words += QStringLiteral("laakeri ja liikuntasauma ");
    t.source.cardFields = {QString(), QStringLiteral("Kirkkojoen silta\n") + words.trimmed(), QString(),
                           QString()};
    const std::unique_ptr<print::PrintRun> run = cardAlone(t, dir, layout);
    ASSERT_TRUE(run);
    print::PrintRun& cardRun = *run;
    ASSERT_EQ(cardRun.PageCount(), PageCountResult::Done);
    const auto items = recordPage(cardRun, 1);
    const print::CardPlacement p = print::PlaceCard(cardRun.page(), 10000, 14000);
    print::FontBook& fonts = cardRun.fonts();
    int lines = 0;
    for (const print::TextItem& i : items) {
        if (!i.text.contains(QStringLiteral("laakeri")) && i.text != QStringLiteral("Kirkkojoen silta"))
            continue;
        ++lines;
        EXPECT_TRUE(i.font.bold) << i.text.toStdString();
        EXPECT_LE(i.x + fonts.width(i.font, i.text), p.x(10000) - 100 * p.sx + 0.5) << i.text.toStdString();
    }
    EXPECT_GT(lines, 5);
}

TEST(CardLayouts, DamagedOrMissingFilesAreNamedWithTheLineAndTheRunGoesOn) {
    const struct {
        QByteArray bytes;
        int line;
    } damaged[] = {
        {"\"\"\r\n10000\r\n", 2},
        {"\"\"\r\n10000,14000\r\n5\r\n\"a\",1,1,8\r\n", 5},
        {"\"\"\r\n10000,14000\r\n1\r\n\"a,1,1,8\r\n", 4},
        {"\"\"\r\n10000,14000\r\n999999999\r\n", 3},
        {"\"\"\r\n10000,14000\r\n0\r\n0\r\n1\r\n\"x\",1,1,7\r\n", 6},
        {"\"\"\r\n10000,14000\r\n0\r\n1\r\n0,0,x,0,1\r\n", 5},
    };
    for (const auto& d : damaged) {
        SCOPED_TRACE(d.bytes.toStdString());
        print::CardLayout layout;
        layout.width = 77;
        QString error;
        platform::ReadError where;
        EXPECT_FALSE(print::ReadCardLayout(d.bytes, print::kCardLayoutFile, false, layout, &error, &where));
        EXPECT_TRUE(error.startsWith("Korttitiedosto " + print::kCardLayoutFile)) << error.toStdString();
        EXPECT_EQ(where.line, d.line);
        EXPECT_EQ(layout.width, 77);
    }
    // The message puts the line and what was wrong with it after the file's name.
    QString error;
    print::CardLayout layout;
    print::ReadCardLayout(damaged[0].bytes, print::kCardLayoutFile, false, layout, &error);
    EXPECT_EQ(error, "Korttitiedosto Tamrik30Card.dat on virheellinen (rivi 2: rivillä pitäisi olla 2 arvoa, "
                     "siinä on 1).");
    // The charge chamber card's table blocks are read only for it.
    EXPECT_TRUE(print::ReadCardLayout(kGoodLayout, print::kCardLayoutFile, false, layout, nullptr));
    EXPECT_EQ(layout.fieldSlots.size(), 3u);
    EXPECT_FALSE(print::ReadCardLayout(kGoodLayout, print::kChargeLayoutFile, true, layout, nullptr));
    EXPECT_TRUE(
        print::ReadCardLayout(kGoodLayout + "1\r\n\"Tuki\",100,3000,1\r\n1\r\n0,3000,10000,9000,1\r\n",
                              print::kChargeLayoutFile, true, layout, nullptr));
    EXPECT_EQ(layout.tableColumns.size(), 1u);

    // Without its layout file the card's page says so, and the other documents still print.
    QTemporaryDir dir;
    TestProject t;
    t.selection = print::Selection{};
    t.selection.DocumentSelected[print::doc::Card] = true;
    t.selection.DocumentSelected[print::doc::ChargeCard] = true;
    t.selection.DocumentSelected[print::doc::Quantities] = true;
    print::PrintSettings settings;
    settings.appPath = dir.path() + QLatin1Char('/');
    print::PrintRun run(t.source, t.selection, settings);
    QStringList told;
    run.setInform([&told](const QString& m) { told << m; });
    ASSERT_EQ(run.PageCount(), PageCountResult::Done);
    ASSERT_EQ(run.TotalPages(), 4);
    // The page names the file in Finnish; where it was looked for goes to the message only.
    const QString card = joined(recordPage(run, 3));
    EXPECT_EQ(card, QStringLiteral(
                        "Korttitiedostoa Tamrik30Card.dat ei voi lukea, joten korttia ei voi tulostaa."));
    EXPECT_TRUE(joined(recordPage(run, 4)).contains(print::kChargeLayoutFile));
    EXPECT_FALSE(joined(recordPage(run, 4)).contains(dir.path()));
    EXPECT_TRUE(find(recordPage(run, 2), QStringLiteral("Littera")));
    ASSERT_EQ(told.size(), 2);
    EXPECT_TRUE(told[0].startsWith(card));
    EXPECT_TRUE(
        told[0].contains(dir.filePath(print::kCardLayoutFile) + QStringLiteral(": tiedostoa ei ole")));
}

TEST(CardLayouts, TheShippedLayoutsReadAndHoldEverySlot) {
    const QString data = QStringLiteral(TAMRIK_SOURCE_DIR "/data/");
    print::CardLayout card, charge;
    QString error;
    ASSERT_TRUE(print::ReadCardLayoutFile(data, print::kCardLayoutFile, false, card, &error))
        << error.toStdString();
    ASSERT_TRUE(print::ReadCardLayoutFile(data, print::kChargeLayoutFile, true, charge, &error))
        << error.toStdString();
    EXPECT_EQ(card.fieldSlots.size(), 97u);
    EXPECT_EQ(charge.fieldSlots.size(), 17u);
    EXPECT_EQ(charge.tableColumns.size(), 5u);
    // Everything lies on the card.
    for (const print::CardLayout* l : {&card, &charge}) {
        SCOPED_TRACE(l == &card ? "characteristics card" : "charge chamber card");
        for (const print::CardSlot& s : l->fieldSlots) {
            SCOPED_TRACE(::testing::Message() << "slot at " << s.x << ", " << s.y);
            EXPECT_GE(s.x, 0);
            EXPECT_LE(s.x, l->width);
            EXPECT_GE(s.y, 0);
            EXPECT_LE(s.y, l->height);
        }
        for (const print::CardLine& ln : l->lines)
            EXPECT_TRUE(ln.x1 >= 0 && ln.x2 <= l->width && ln.y1 >= 0 && ln.y2 <= l->height)
                << "line " << ln.x1 << "," << ln.y1 << " - " << ln.x2 << "," << ln.y2;
    }
}

TEST(CardLayouts, ALongFieldStaysBetweenItsNeighboursOnTheShippedCard) {
    TestProject t;
    QStringList fields(98);
    fields[1] = QStringLiteral("Kirkkojoen ylikulkusilta valtatien 4 ja Jyväskylän läntisen ohikulkutien "
                               "eritasoliittymässä");
    fields[2] = QStringLiteral("KeS-2817");
    fields[3] = QStringLiteral("Vt 4, tieosa 215, etäisyys 1 840");
    fields[4] = QStringLiteral("Jyväskylä");
    fields[10] = QStringLiteral("15,0 + 18,0 + 15,0 + 18,0 + 15,0");
    t.source.cardFields = fields;
    t.selection = print::Selection{};
    t.selection.DocumentSelected[print::doc::Card] = true;
    print::PrintSettings settings;
    settings.appPath = QStringLiteral(TAMRIK_SOURCE_DIR "/data/");
    print::PrintRun run(t.source, t.selection, settings);
    QStringList told;
    run.setInform([&told](const QString& m) { told << m; });
    ASSERT_EQ(run.PageCount(), PageCountResult::Done);
    const auto items = recordPage(run, 1);
    EXPECT_EQ(print_test::overprinted(run, items), QStringList());
    // The name ends before the plan number's cell, cut with "…" once it is as small as it goes.
    const print::TextItem* plan = find(items, QStringLiteral("KeS-2817"));
    ASSERT_TRUE(plan);
    const print::TextItem* name = nullptr;
    for (const print::TextItem& i : items)
        if (i.text.startsWith(QStringLiteral("Kirkkojoen"))) name = &i;
    ASSERT_TRUE(name);
    EXPECT_LT(name->x + run.fonts().width(name->font, name->text), plan->x);
    EXPECT_TRUE(name->text.endsWith(QStringLiteral("…")));
    EXPECT_EQ(told.count(print::kValueCut), 1);
    EXPECT_TRUE(find(items, QStringLiteral("Jyväskylä")));
    // A right-aligned value keeps to its right edge and its label's right.
    const print::TextItem* spans = find(items, fields[10]);
    ASSERT_TRUE(spans);
    EXPECT_LT(spans->font.size, 11);
}

TEST(CardLayouts, TheChargeTableKeepsEachValueInItsColumn) {
    TestProject t;
    print_test::fillList(
        t.charges, lists::kind::ChargeChambers, 5,
        {{QStringLiteral("Välituki 2 (länsipuoli)"), QStringLiteral("Teräsbetoni K35-2 ja teräs S355"),
          QStringLiteral("4 kpl laatan alapinnassa, kukin 200 x 200 mm"), QStringLiteral("2"),
          QStringLiteral("8 kpl kiinnikkeitä")}});
    t.selection = print::Selection{};
    t.selection.DocumentSelected[print::doc::ChargeCard] = true;
    print::PrintSettings settings;
    settings.appPath = QStringLiteral(TAMRIK_SOURCE_DIR "/data/");
    print::PrintRun run(t.source, t.selection, settings);
    run.setInform([](const QString&) {});
    ASSERT_EQ(run.PageCount(), PageCountResult::Done);
    const auto items = recordPage(run, 1);
    EXPECT_EQ(print_test::overprinted(run, items), QStringList());
    EXPECT_TRUE(find(items, QStringLiteral("2")));
    bool first = false;
    for (const print::TextItem& i : items)
        first = first || i.text.startsWith(QStringLiteral("Välituki 2"));
    EXPECT_TRUE(first);
}
