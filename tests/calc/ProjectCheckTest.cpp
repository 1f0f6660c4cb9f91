// The project check: every kind of finding, from the texts users really type into the cells,
// and what the check says about the sample project.
#include "CalcLists.h"
#include "calc/NumberText.h"
#include "calc/ProjectCheck.h"
#include "common/TestSupport.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "persist/ProjectFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>
#include <optional>

using calc::CheckPlace;
using calc::Finding;
using calc::FindingKind;
using calc::Severity;

namespace {

constexpr Severity E = Severity::Error;
constexpr Severity H = Severity::Remark;

// What one case expects: a finding of this kind, severity and column, and, for a number text,
// the value the message says the calculations read.
struct Expected {
    FindingKind kind;
    Severity severity;
    int column;
    const char* value = nullptr;
};

std::string describe(const std::vector<Finding>& findings) {
    std::string out;
    for (const Finding& f : findings)
        out += "  " + std::to_string(f.row) + "/" + std::to_string(f.column) + " " +
               calc::SeverityText(f.severity).toStdString() + ": " + f.message.toStdString() + "\n";
    return out;
}

void expectFindings(const std::vector<Finding>& got, const std::vector<Expected>& want,
                    const std::string& what) {
    ASSERT_EQ(got.size(), want.size()) << what << "\n" << describe(got);
    for (std::size_t i = 0; i < want.size(); ++i) {
        EXPECT_EQ(got[i].kind, want[i].kind) << what << "\n" << describe(got);
        EXPECT_EQ(got[i].severity, want[i].severity) << what << "\n" << describe(got);
        EXPECT_EQ(got[i].column, want[i].column) << what << "\n" << describe(got);
        if (want[i].value) {
            const QString read =
                QStringLiteral(" luetaan arvoksi ") + QString::fromUtf8(want[i].value) + u':';
            EXPECT_TRUE(got[i].message.contains(read)) << what << ": " << got[i].message.toStdString();
            // The message says what CustomVal gives, nothing of its own.
            QString value = QString::fromUtf8(want[i].value);
            EXPECT_DOUBLE_EQ(calc::CustomVal(got[i].text), value.replace(u',', u'.').toDouble()) << what;
        }
    }
}

std::vector<Finding> checkRow(CheckPlace place, const lists::ListModel& list, int row) {
    std::vector<Finding> out;
    calc::CheckRow(place, list, row, out);
    return out;
}

struct QuantityCase {
    const char* quantity;
    const char* unit;
    const char* price;
    std::vector<Expected> expected;
};

} // namespace

TEST(ProjectCheck, QuantityRowsAsUsersTypeThem) {
    using K = FindingKind;
    const std::vector<QuantityCase> cases = {
        // Numbers that read whole, Finnish thousands spaces included.
        {"12,5", "m3", "1 234,50", {}},
        {"250 000", "kg", "1,20", {}},
        {"1 200,50", "m3", "45,50", {}},
        {"1\u00A0200,50", "m3", "45,50", {}},
        {"0", "kpl", "100", {}},
        {"0,0", "m", "100", {}},
        {",5", "m", "10", {}},
        {"1.5", "m", "10", {}},
        {"0.250", "t", "900", {}},
        {"", "", "", {}},
        // Read as another number than they show.
        {"1.200,50", "m3", "45,50", {{K::TwoSeparators, E, 4, "1,2"}}},
        {"1.200.000", "kg", "1,20", {{K::TwoSeparators, E, 4, "1,2"}}},
        {"1.200", "kg", "2,10", {{K::ThousandsPoint, E, 4, "1,2"}}},
        {"12.500 ", "kg", "2,10", {{K::ThousandsPoint, E, 4, "12,5"}}},
        {"12,5 3", "m3", "10", {{K::DigitsJoined, E, 4, "12,53"}}},
        {"12 34", "kg", "1", {{K::DigitsJoined, E, 4, "1234"}}},
        {"5-6", "kpl", "10", {{K::TrailingNumber, E, 4, "5"}}},
        {"2 x 3", "kpl", "10", {{K::TrailingNumber, E, 4, "2"}}},
        {"100", "m", "1.234,50", {{K::TwoSeparators, E, 6, "1,234"}}},
        // Read as 0.
        {"n. 40", "m", "12", {{K::NumberNotAtStart, E, 4, "0"}}},
        {"noin 40", "m", "12", {{K::NumberNotAtStart, E, 4, "0"}}},
        {"-", "kpl", "150", {{K::NotANumber, E, 4, "0"}}},
        {"?", "kpl", "150", {{K::NotANumber, E, 4, "0"}}},
        {"100", "m", "n.", {{K::NotANumber, E, 6, "0"}}},
        {"1e999", "m", "1", {{K::OutOfRange, E, 4, "0"}}},
        // Outside the estimate, a doubtful text is only a remark.
        {"abc", "", "", {{K::NotANumber, H, 4, "0"}}},
        // A unit or a currency after the number: the number itself is right.
        {"12,5 m3", "m3", "80", {{K::TrailingText, H, 4, "12,5"}}},
        {"40 kpl", "kpl", "80", {{K::TrailingText, H, 4, "40"}}},
        {"100", "m", "45,50 €", {{K::TrailingText, H, 6, "45,5"}}},
        {"40?", "m", "12", {{K::TrailingText, H, 4, "40"}}},
        // Rows that drop out of the estimate, or half of them.
        {"", "m2", "35,00", {{K::PriceWithoutQuantity, E, 4}}},
        {" ", "m2", "35,00", {{K::PriceWithoutQuantity, E, 4}}},
        {"120", "", "35,00", {{K::PriceWithoutUnit, H, 5}}},
        {"120", "m2", "", {{K::QuantityWithoutPrice, E, 6}}},
        {"120", "35,50", "", {{K::PriceInUnitColumn, E, 5}}},
        {"", "1 250", "", {{K::PriceInUnitColumn, E, 5}}},
        {"n. 120", "m2", "", {{K::NumberNotAtStart, H, 4, "0"}, {K::QuantityWithoutPrice, E, 6}}},
        {"?",
         "",
         "n.",
         {{K::NotANumber, E, 4, "0"}, {K::PriceWithoutUnit, H, 5}, {K::NotANumber, E, 6, "0"}}},
    };
    for (const QuantityCase& c : cases) {
        lists::ListModel list;
        calc_test::fillQuantityList(list, {{"", "Betoni K30", "100", QString::fromUtf8(c.quantity),
                                            QString::fromUtf8(c.unit), QString::fromUtf8(c.price)}});
        expectFindings(checkRow(CheckPlace::Quantities, list, 1), c.expected,
                       std::string(c.quantity) + " | " + c.unit + " | " + c.price);
    }
}

TEST(ProjectCheck, MessagesSayWhatIsReadAndWhy) {
    lists::ListModel list;
    calc_test::fillQuantityList(list, {{"", "Betoni", "100", "1.200,50", "m3", "45,50"},
                                       {"", "Muotti", "100", "12,5 m3", "m3", "80"},
                                       {"", "Teräs", "100", "120", "35,50", ""},
                                       {"", "Kaide", "100", "", "m", "95"}});
    const auto message = [&](int row) {
        const std::vector<Finding> f = checkRow(CheckPlace::Quantities, list, row);
        return f.empty() ? QString() : f.front().message;
    };
    EXPECT_EQ(message(1), QStringLiteral("Määrä \"1.200,50\" luetaan arvoksi 1,2: kaksi desimaalierotinta"));
    EXPECT_EQ(
        message(2),
        QStringLiteral("Määrä \"12,5 m3\" luetaan arvoksi 12,5: perässä oleva \"m3\" jätetään huomiotta"));
    EXPECT_EQ(message(3),
              QStringLiteral("Yksikkö \"35,50\" on luku: yksikköhinta on ilmeisesti kirjoitettu yksikön "
                             "sarakkeeseen, ja rivi jää 0 euroon"));
    EXPECT_EQ(message(4),
              QStringLiteral("Rivillä on yksikköhinta mutta ei määrää: rivi ei tule kustannusarvioon"));

    const std::vector<Finding> f = checkRow(CheckPlace::Quantities, list, 1);
    ASSERT_EQ(f.size(), 1u);
    EXPECT_EQ(f[0].place, CheckPlace::Quantities);
    EXPECT_EQ(f[0].row, 1);
    EXPECT_EQ(f[0].columnName, QStringLiteral("MÄÄRÄ"));
    EXPECT_EQ(f[0].text, QStringLiteral("1.200,50"));
}

namespace {

struct RequirementCase {
    const char* type;
    const char* weight;
    const char* result;
    const char* factor;
    std::vector<Expected> expected;
    const char* method = "K (katselmus)";
    const char* count = "";
    const char* mean = "";
};

} // namespace

TEST(ProjectCheck, RequirementRowsAsUsersTypeThem) {
    using K = FindingKind;
    const std::vector<RequirementCase> cases = {
        {"1 (siltakohtainen)", "4", "Kyllä", "0,3", {}},
        {"2", "3", "Ei", "0,5 (virhe vaikuttaa osittain)", {}},
        {"3 (ohjeellinen)", "0", "", "1,0", {}},
        {"2", "", "", "", {}},
        {"1", "0", "Ei", "0,0", {}},
        {"1", "5", "Kyllä", "1", {}},
        // The weight.
        {"2", "5-6", "", "0,5", {{K::TrailingNumber, E, 11, "5"}}},
        {"2", "n. 3", "", "", {{K::NumberNotAtStart, E, 11, "0"}}},
        {"2", "?", "", "", {{K::NotANumber, E, 11, "0"}}},
        {"2", "-", "", "", {{K::NotANumber, E, 11, "0"}}},
        {"2", "3 p", "", "", {{K::TrailingText, H, 11, "3"}}},
        {"2", "2.5.2006", "", "", {{K::TwoSeparators, E, 11, "2,5"}}},
        {"2", "7", "", "0,5", {{K::WeightOutOfRange, E, 11}}},
        {"1", "-1", "", "", {{K::WeightOutOfRange, E, 11}}},
        {"3", "7", "", "", {{K::WeightOutOfRange, H, 11}}},
        // The factor counts only when a weighted requirement failed.
        {"2", "3", "Ei", "1,5", {{K::FactorOutOfRange, E, 24}}},
        {"2", "3", "Kyllä", "1,5", {{K::FactorOutOfRange, H, 24}}},
        {"2", "3", "Ei", "abc", {{K::NotANumber, E, 24, "0"}}},
        {"2", "3", "Ei", "1.5.2006", {{K::TwoSeparators, E, 24, "1,5"}}},
        {"3", "0", "Ei", "puolet", {{K::NotANumber, H, 24, "0"}}},
        // Type and result are read by their first character.
        {" 1", "4", "", "", {{K::TypeNotRead, E, 4}}},
        {"Siltakohtainen", "4", "", "", {{K::TypeNotRead, E, 4}}},
        {"", "0", "", "", {{K::TypeNotRead, H, 4}}},
        {"2", "3", "kyllä", "", {{K::ResultNotRead, E, 21}}},
        {"2", "3", "OK", "", {{K::ResultNotRead, E, 21}}},
        {"3", "0", "x", "", {{K::ResultNotRead, H, 21}}},
        // Inspected by measuring, with nothing of the measurement recorded.
        {"1", "4", "Kyllä", "0,3", {{K::InspectedWithoutMeasurement, H, 21}}, "M (mittaus)"},
        {"2", "3", "Ei", "0,5", {{K::InspectedWithoutMeasurement, H, 21}}, "M"},
        {"1", "4", "Kyllä", "0,3", {}, "M (mittaus)", "5"},
        {"1", "4", "Kyllä", "0,3", {}, "M (mittaus)", "", "42,5"},
        {"1", "4", "", "0,3", {}, "M (mittaus)"},
        // Several at once, in column order.
        {"x",
         "9",
         "joo",
         "2",
         {{K::TypeNotRead, E, 4},
          {K::WeightOutOfRange, H, 11},
          {K::ResultNotRead, H, 21},
          {K::FactorOutOfRange, H, 24}}},
    };
    for (const RequirementCase& c : cases) {
        QStringList row =
            calc_test::requirement("1", "Kaivutaso", QString::fromUtf8(c.type), QString::fromUtf8(c.weight),
                                   QString::fromUtf8(c.result), QString::fromUtf8(c.factor));
        row[9] = QString::fromUtf8(c.method);
        row[15] = QString::fromUtf8(c.count);
        row[18] = QString::fromUtf8(c.mean);
        lists::ListModel list;
        calc_test::fillRequirementList(list, {row});
        expectFindings(checkRow(CheckPlace::Requirements, list, 1), c.expected,
                       std::string(c.type) + " | " + c.weight + " | " + c.result + " | " + c.factor + " | " +
                           c.method);
    }
}

TEST(ProjectCheck, OnlyRequirementsAreChecked) {
    // Captions, and rows without an identifier, are not requirements: the quality number skips them.
    lists::ListModel list;
    QStringList caption = calc_test::caption("7110", "KAIVUT JA LOUHINNAT");
    caption[10] = "9";
    QStringList continuation = calc_test::requirement("", "jatkuu", "x", "abc", "kyllä", "7");
    calc_test::fillRequirementList(list, {caption, continuation});
    EXPECT_TRUE(checkRow(CheckPlace::Requirements, list, 1).empty());
    EXPECT_TRUE(checkRow(CheckPlace::Requirements, list, 2).empty());
    calc::CheckSource source;
    source.requirements = &list;
    EXPECT_TRUE(calc::CheckProject(source).empty()) << describe(calc::CheckProject(source));
}

TEST(ProjectCheck, LitterasInOrderOnceEachAndWorkPhasesWithPrices) {
    lists::ListModel list;
    const QStringList priced{"", "Työ", "100", "10", "m3", "50"};
    calc_test::fillQuantityList(list, {
                                          {"7100", "TYÖMAAN JÄRJESTELYT"},         // 1
                                          {"7102", "Liikennejärjestelyt"},         // 2
                                          priced,                                  // 3
                                          {"7101", "Työmaan perustaminen"},        // 4 order
                                          priced,                                  // 5
                                          {"7110", "KAIVUT JA LOUHINNAT"},         // 6 no prices
                                          {"7111", "Kaivu"},                       // 7
                                          {"", "Kaivu, maa", "", "120", "m3", ""}, // 8 no price
                                          {"7130", "MUOTTITYÖT"},                  // 9
                                          {"7132.1", "Maatukien muotit"},          // 10
                                          priced,                                  // 11
                                          {"7132.2", "Välitukien muotit"},         // 12
                                          {"7132.12", "Välitukien lisämuotit"},    // 13
                                          {"7131", "Perustusten muotit"},          // 14 order
                                          priced,                                  // 15
                                          {"7111", "Kaivu"},                       // 16 twice, order
                                          {"", "TIETYÖT SILTAPAIKALLA"},           // 17
                                          {"1100", "MAA- JA POHJARAKENTEET"},      // 18
                                          {"1120", "Leikkaukset"},                 // 19
                                          priced,                                  // 20
                                      });
    calc::CheckSource source;
    source.quantities = &list;
    source.inputs.unitPriceIndex = "100";
    source.inputs.costIndex = "112";
    const std::vector<Finding> got = calc::CheckProject(source);
    using K = FindingKind;
    struct At {
        int row;
        FindingKind kind;
    };
    const std::vector<At> want = {{4, K::LitteraOrder},         {6, K::PhaseWithoutPrices},
                                  {8, K::QuantityWithoutPrice}, {14, K::LitteraOrder},
                                  {16, K::LitteraOrder},        {16, K::LitteraTwice}};
    ASSERT_EQ(got.size(), want.size()) << describe(got);
    for (std::size_t i = 0; i < want.size(); ++i) {
        EXPECT_EQ(got[i].row, want[i].row) << describe(got);
        EXPECT_EQ(got[i].kind, want[i].kind) << describe(got);
        EXPECT_EQ(got[i].severity, want[i].kind == K::QuantityWithoutPrice ? E : H);
    }
    EXPECT_EQ(got[0].message,
              QStringLiteral(
                  "Littera \"7101\" ei ole nousevassa järjestyksessä työvaiheessa 7100: edellinen littera on "
                  "\"7102\""));
    EXPECT_EQ(got[0].columnName, QStringLiteral("LITTERA"));
    EXPECT_EQ(got[1].message, QStringLiteral("Työvaiheessa 7110 ei ole yhtään hinnoiteltua riviä"));
    EXPECT_EQ(got[1].text, QStringLiteral("KAIVUT JA LOUHINNAT"));
    EXPECT_EQ(got[5].message, QStringLiteral("Littera \"7111\" on jo rivillä 7"));

    // The requirement list is held to the same order.
    lists::ListModel requirements;
    calc_test::fillRequirementList(requirements, {calc_test::caption("7110", "KAIVUT JA LOUHINNAT"),
                                                  calc_test::caption("7112", "Louhinta"),
                                                  calc_test::caption("7111", "Kaivu"),
                                                  calc_test::caption("7120", "PERUSTUKSET"),
                                                  calc_test::caption("7110", "KAIVUT JA LOUHINNAT")});
    calc::CheckSource r;
    r.requirements = &requirements;
    const std::vector<Finding> rf = calc::CheckProject(r);
    ASSERT_EQ(rf.size(), 2u) << describe(rf);
    EXPECT_EQ(rf[0].row, 3);
    EXPECT_EQ(rf[0].kind, K::LitteraOrder);
    EXPECT_EQ(rf[1].row, 5);
    EXPECT_EQ(rf[1].kind, K::LitteraTwice);
    EXPECT_EQ(rf[1].place, CheckPlace::Requirements);
}

TEST(ProjectCheck, IndexAndPercentFieldsOfTheEstimate) {
    using K = FindingKind;
    struct FieldCase {
        const char* unitIndex;
        const char* costIndex;
        const char* general;
        const char* vat;
        std::vector<Expected> expected;
    };
    const std::vector<FieldCase> cases = {
        {"100", "112,5", "15", "22", {}},
        {"100", "127", "15 %", "25,5%", {}},
        {"100", "127", "", "", {}},
        {"", "127", "15", "22", {{K::IndexMissing, E, 3}}},
        {"0", "127", "15", "22", {{K::IndexMissing, E, 3}}},
        {"100", "", "15", "22", {{K::IndexMissing, E, 10}}},
        {"100", "n. 110", "15", "22", {{K::IndexMissing, E, 10}}},
        {"abc", "", "15", "22", {{K::IndexMissing, E, 3}, {K::IndexMissing, H, 10}}},
        {"1.995", "127", "15", "22", {{K::ThousandsPoint, E, 3, "1,995"}}},
        {"100", "112,5 (2005)", "15", "22", {}},
        {"100", "127", "15,5,0", "22", {{K::TwoSeparators, E, 11, "15,5"}}},
        {"100", "127", "15", "22 alv", {{K::TrailingText, H, 12, "22"}}},
    };
    lists::ListModel list;
    calc_test::fillQuantityList(list, {{"", "Betoni", "100", "10", "m3", "50"}});
    for (const FieldCase& c : cases) {
        calc::CheckSource source;
        source.quantities = &list;
        source.inputs = {"€", QString::fromUtf8(c.unitIndex), QString::fromUtf8(c.costIndex),
                         QString::fromUtf8(c.general), QString::fromUtf8(c.vat)};
        const std::vector<Finding> got = calc::CheckProject(source);
        expectFindings(got, c.expected, std::string(c.unitIndex) + " | " + c.costIndex + " | " + c.general);
        for (const Finding& f : got) {
            EXPECT_EQ(f.place, CheckPlace::BasicData);
            EXPECT_EQ(f.row, 0);
        }
    }

    calc::CheckSource source;
    source.quantities = &list;
    source.inputs.costIndex = "127";
    const std::vector<Finding> got = calc::CheckProject(source);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].columnName, QStringLiteral("Yksikköhintojen i"));
    EXPECT_EQ(
        got[0].message,
        QStringLiteral(
            "Yksikköhintojen i puuttuu: kustannuksia ei muunneta kustannusindeksin tasoon (kerroin 1)"));

    // Without a priced row there is nothing to convert, and nothing to say about the indexes.
    lists::ListModel empty;
    calc_test::fillQuantityList(empty, {{"7100", "TYÖMAAN JÄRJESTELYT"}, {"", "Työ", "", "", "m3", ""}});
    calc::CheckSource none;
    none.quantities = &empty;
    for (const Finding& f : calc::CheckProject(none))
        EXPECT_NE(f.place, CheckPlace::BasicData) << f.message.toStdString();
}

TEST(ProjectCheck, LinesAndJsonForTheCommandLine) {
    lists::ListModel list;
    calc_test::fillQuantityList(list, {{"", "Betoni\tK30", "100", "1.200,50", "m3", "45,50"},
                                       {"", "Teräs", "100", "12,5\r\nm3", "kg", "2"}});
    calc::CheckSource source;
    source.quantities = &list;
    source.inputs = {"€", "", "127", "", ""};
    const std::vector<Finding> findings = calc::CheckProject(source);
    ASSERT_EQ(findings.size(), 3u) << describe(findings);
    EXPECT_EQ(calc::ErrorCount(findings), 2);
    EXPECT_EQ(calc::RemarkCount(findings), 1);

    const QStringList lines = calc::FindingsAsLines(findings).split(u'\n');
    ASSERT_EQ(lines.size(), 4); // and the empty text after the last line end
    EXPECT_EQ(lines[0],
              QStringLiteral("virhe\tperustiedot\t\tYksikköhintojen i\t\tYksikköhintojen i puuttuu: "
                             "kustannuksia ei muunneta kustannusindeksin tasoon (kerroin 1)"));
    EXPECT_EQ(lines[1],
              QStringLiteral("virhe\tmääräluettelo\t1\tMÄÄRÄ\t1.200,50\tMäärä \"1.200,50\" luetaan arvoksi "
                             "1,2: kaksi desimaalierotinta"));
    // A line break inside a cell stays on the finding's line.
    EXPECT_EQ(lines[2].split(u'\t').size(), 6);
    EXPECT_TRUE(lines[2].startsWith(QStringLiteral("huomautus\tmääräluettelo\t2\tMÄÄRÄ\t12,5 m3\t")));
    EXPECT_TRUE(lines[3].isEmpty());

    const QJsonDocument json = QJsonDocument::fromJson(calc::FindingsAsJson(findings));
    ASSERT_TRUE(json.isArray());
    const QJsonArray array = json.array();
    ASSERT_EQ(array.size(), 3);
    for (int i = 0; i < 3; ++i) {
        const QJsonObject o = array[i].toObject();
        EXPECT_EQ(o.keys(), (QStringList{"column", "list", "message", "row", "severity", "text"}));
        EXPECT_EQ(o["message"].toString(), findings[i].message);
        EXPECT_EQ(o["text"].toString(), findings[i].text);
        EXPECT_EQ(o["column"].toString(), findings[i].columnName);
    }
    EXPECT_TRUE(array[0].toObject()["row"].isNull());
    EXPECT_EQ(array[0].toObject()["list"].toString(), QStringLiteral("perustiedot"));
    EXPECT_EQ(array[1].toObject()["row"].toInt(), 1);
    EXPECT_EQ(array[1].toObject()["severity"].toString(), QStringLiteral("virhe"));
    EXPECT_EQ(array[2].toObject()["severity"].toString(), QStringLiteral("huomautus"));
    EXPECT_EQ(array[2].toObject()["text"].toString(), QStringLiteral("12,5\r\nm3"));

    EXPECT_EQ(calc::CountText(1, E), QStringLiteral("1 virhe"));
    EXPECT_EQ(calc::CountText(3, E), QStringLiteral("3 virhettä"));
    EXPECT_EQ(calc::CountText(1, H), QStringLiteral("1 huomautus"));
    EXPECT_EQ(calc::CountText(0, H), QStringLiteral("0 huomautusta"));
}

TEST(ProjectCheck, TheSampleProjectHasNoErrors) {
    persist::ProjectFile project;
    QString error;
    ASSERT_TRUE(persist::ReadProjectFile(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"),
                                         true, project, &error))
        << error.toStdString();
    const auto quantities =
        persist::ListFromRecord(persist::RecordList(project.content, 1, 0), lists::kind::QuantityList);
    const auto requirements =
        persist::ListFromRecord(persist::RecordList(project.content, 1, 1), lists::kind::Requirements);
    ASSERT_GT(quantities->rows(), 20);
    ASSERT_GT(requirements->rows(), 20);
    calc::CheckSource source{quantities.get(), requirements.get(),
                             calc::CostInputsOf(project.content.windows[0].combos)};
    const std::vector<Finding> findings = calc::CheckProject(source);
    EXPECT_EQ(calc::ErrorCount(findings), 0) << describe(findings);
}
