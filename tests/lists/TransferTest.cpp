// Transfers of whole entries, with their captions, between project lists and base lists.
#include "EditingBuilders.h"
#include "common/TestSupport.h"
#include "lists/ListEditing.h"
#include "lists/ListFiles.h"
#include "lists/ListProcedures.h"

#include <gtest/gtest.h>

using namespace lists;
using namespace lists_test;

namespace {

void fillBaseRequirements(ListModel& list) {
    fill(list, kind::RequirementBase, qualityHeaders(),
         {
             {"7110", "", "KAIVANNOT"},
             {"7111", "", "Kaivannon pohja"},
             {"", "1", "Pohjan tasaisuus", "2", "SYL 2", "50", "0", "100"},
             {"", "", "jatkuu"},
             {"", "2", "Kantavuus", "3", "", "10"},
             {"7120", "", "PERUSTUKSET"},
             {"", "1", "Betonin lujuus", "1 (Siltakohtainen)", "", "K40"},
         });
}

void fillUnitPrices(ListModel& list) {
    fill(list, kind::UnitPriceList, unitPriceHeaders(),
         {
             {"7170", "KANSIRAKENTEET"},
             {"7171", "Muotit"},
             {"", "Kansilaatan muotti", "m2", "40,00", "45,50", "52,00", "pinta"},
             {"", "jatko"},
             {"", "Reunapalkin muotti", "m2", "50,00", "55,00", "61,00"},
         });
}

QStringList consecutiveNumbers(int n) {
    QStringList out;
    for (int i = 1; i <= n; ++i)
        out.append(formatRowNumber(i));
    return out;
}

} // namespace

TEST(Transfer, AllowedPairs) {
    EXPECT_TRUE(TransferAllowed(kind::QuantityList, kind::UnitPriceList));
    EXPECT_TRUE(TransferAllowed(kind::UnitPriceList, kind::QuantityList));
    EXPECT_TRUE(TransferAllowed(kind::Requirements, kind::RequirementBase));
    EXPECT_TRUE(TransferAllowed(kind::RequirementBase, kind::Requirements));
    EXPECT_FALSE(TransferAllowed(kind::QuantityList, kind::QuantityList)) << "same kind";
    EXPECT_FALSE(TransferAllowed(kind::Requirements, kind::UnitPriceList));
    EXPECT_FALSE(TransferAllowed(kind::NoEdit, kind::UnitPriceList)) << "a read-only project list";
    EXPECT_FALSE(TransferAllowed(kind::Changes, kind::BridgeParts));
}

TEST(Transfer, RequirementGoesUnderItsCaptionsAtTheLitterasPlace) {
    ListModel base;
    fillBaseRequirements(base);
    ListModel project;
    fill(project, kind::Requirements, qualityHeaders(),
         {{"7100", "", "YLEISET"},
          {"", "1", "Työmaan järjestelyt", "3"},
          {"7130", "", "ALUSRAKENTEET"},
          {"", "1", "Tukien sijainti", "2"}});

    // The continuation row of one requirement and the next requirement are selected.
    selectRows(base, {4, 5});
    const TransferResult result = TransferData(project, base, 0, 0, TransferOptions{1, 0});
    ASSERT_TRUE(result.changed);
    EXPECT_EQ(columnTexts(project, 1), QStringList({"7100", "", "7110", "7111", "", "", "", "7130", ""}));
    EXPECT_EQ(columnTexts(project, 3),
              QStringList({"YLEISET", "Työmaan järjestelyt", "KAIVANNOT", "Kaivannon pohja",
                           "Pohjan tasaisuus", "jatkuu", "Kantavuus", "ALUSRAKENTEET", "Tukien sijainti"}));
    EXPECT_EQ(project.row(5).cells.toStringList().mid(0, 8),
              QStringList({"", "1", "Pohjan tasaisuus", "2", "SYL 2", "50", "0", "100"}));
    EXPECT_EQ(rowNumbers(project), consecutiveNumbers(9));
    EXPECT_EQ(result.insertedRows, 5);
    EXPECT_EQ(result.lastPosition, 7);
    EXPECT_EQ(project.selectedRows(), std::vector<int>{7});

    // Again: the captions are there already and are not doubled; the entry joins its subcaption.
    selectRows(base, {3});
    ASSERT_TRUE(TransferData(project, base, 0, 0, TransferOptions{1, 0}).changed);
    EXPECT_EQ(columnTexts(project, 3).mid(2, 8),
              QStringList({"KAIVANNOT", "Kaivannon pohja", "Pohjan tasaisuus", "jatkuu", "Kantavuus",
                           "Pohjan tasaisuus", "jatkuu", "ALUSRAKENTEET"}));
    EXPECT_EQ(rowNumbers(project), consecutiveNumbers(11));
}

TEST(Transfer, ContractorsBridgeSpecificRequirementArrivesAdvisory) {
    ListModel base;
    fillBaseRequirements(base);
    ListModel project;
    fill(project, kind::Requirements, qualityHeaders(), {{"", "9", "Olemassa oleva", "3"}});

    // Placed at row 1 (Shift held): no captions in this mode.
    selectRows(base, {7});
    TransferResult result = TransferData(project, base, 0, 2, TransferOptions{2, 0});
    ASSERT_TRUE(result.changed);
    EXPECT_EQ(project.rows(), 2);
    EXPECT_EQ(project.row(1).cells.toStringList().mid(0, 6),
              QStringList({"", "1", "Betonin lujuus", "3", "", "K40"}));
    EXPECT_EQ(project.cell(2, 3).toString(), "Olemassa oleva");

    // The designer's copy keeps its type.
    result = TransferData(project, base, 0, 2, TransferOptions{1, 0});
    EXPECT_EQ(project.cell(1, 4).toString(), "1 (Siltakohtainen)");
}

TEST(Transfer, UnitPriceOfTheChosenConditionsIntoTheQuantityList) {
    ListModel prices;
    fillUnitPrices(prices);
    selectRows(prices, {3});

    // "Lisää" into an empty project list: one empty row first, then to the end (mode 4) with B.
    ListModel quantities;
    fill(quantities, kind::QuantityList, quantityHeaders(), {});
    TransferResult result = ExportToList(quantities, prices, 4, TransferOptions{3, 5});
    ASSERT_TRUE(result.changed);
    EXPECT_EQ(dataRows(quantities), (std::vector<QStringList>{
                                        {"", "", "", "", "", "", ""},
                                        {"7170", "KANSIRAKENTEET", "", "", "", "", ""},
                                        {"7171", "Muotit", "", "", "", "", ""},
                                        {"", "Kansilaatan muotti", "", "", "m2", "45,50", "pinta"},
                                        {"", "jatko", "", "", "", "", ""},
                                    }));
    EXPECT_EQ(rowNumbers(quantities), consecutiveNumbers(5));

    // Without the remarks column (mode 5), with C prices, and with no conditions chosen.
    selectRows(prices, {5});
    ExportToList(quantities, prices, 5, TransferOptions{3, 6});
    EXPECT_EQ(quantities.row(6).cells.toStringList().mid(0, 7),
              QStringList({"", "Reunapalkin muotti", "", "", "m2", "61,00", ""}));
    ExportToList(quantities, prices, 4, TransferOptions{3, 0});
    EXPECT_EQ(quantities.row(7).cells.toStringList().mid(0, 7),
              QStringList({"", "Reunapalkin muotti", "", "", "m2", "", ""}));

    // And back: the quantity list's price goes to the price column chosen in the price window.
    ListModel newPrices;
    fill(newPrices, kind::UnitPriceList, unitPriceHeaders(), {{"7170", "KANSIRAKENTEET"}});
    selectRows(quantities, {4});
    TransferData(newPrices, quantities, 0, 1, TransferOptions{3, 4});
    EXPECT_EQ(dataRows(newPrices), (std::vector<QStringList>{
                                       {"7170", "KANSIRAKENTEET", "", "", "", "", ""},
                                       {"7171", "Muotit", "", "", "", "", ""},
                                       {"", "Kansilaatan muotti", "m2", "45,50", "", "", ""},
                                       {"", "jatko", "", "", "", "", ""},
                                   }));
}

TEST(Transfer, PlacedEntriesFollowEachOtherAboveTheTargetRow) {
    ListModel prices;
    fillUnitPrices(prices);
    ListModel quantities;
    fill(quantities, kind::QuantityList, quantityHeaders(),
         {{"", "A", "", "1", "m"}, {"", "B", "", "2", "m"}, {"", "C"}});
    selectRows(quantities, {2});

    selectRows(prices, {3, 4, 5});
    const TransferResult result = ExportToList(quantities, prices, 2, TransferOptions{3, 4});
    EXPECT_EQ(columnTexts(quantities, 2),
              QStringList({"A", "Kansilaatan muotti", "jatko", "Reunapalkin muotti", "B", "C"}));
    EXPECT_EQ(quantities.cell(2, 6).toString(), "40,00");
    EXPECT_EQ(rowNumbers(quantities), consecutiveNumbers(6));
    EXPECT_EQ(result.lastPosition, 4);

    // A selected row that brings no entry (here a caption) still moves the place on by one row.
    fill(quantities, kind::QuantityList, quantityHeaders(),
         {{"", "A", "", "1", "m"}, {"", "B", "", "2", "m"}, {"", "C"}});
    selectRows(prices, {1, 5});
    TransferData(quantities, prices, 1, 2, TransferOptions{3, 4});
    EXPECT_EQ(columnTexts(quantities, 2), QStringList({"A", "B", "Reunapalkin muotti", "C"}));
}

TEST(Transfer, InsertDataOnlyIfMissing) {
    ListModel base;
    fillBaseRequirements(base);
    ListModel project;
    fill(project, kind::Requirements, qualityHeaders(), {{"7110", "", "KAIVANNOT"}});
    EXPECT_EQ(InsertData(0, base, 1, 1, project, 1, true, {}), 0) << "littera and heading on one row";
    EXPECT_EQ(InsertData(0, base, 2, 1, project, 2, true, {}), 1);
    EXPECT_EQ(InsertData(0, base, 3, 2, project, 3, false, {}), 2);
    EXPECT_EQ(columnTexts(project, 3),
              QStringList({"KAIVANNOT", "Kaivannon pohja", "Pohjan tasaisuus", "jatkuu"}));
    EXPECT_EQ(rowNumbers(project), consecutiveNumbers(4));

    project.setCell(1, 3, "KAIVANNOT JA TÄYTÖT");
    EXPECT_EQ(InsertData(0, base, 1, 1, project, 1, true, {}), 1) << "the heading differs";
}

// Regression: a second subcaption added under a caption the project already had went in
// above the first one instead of below it.
TEST(TransferOrder, SubcaptionsAddedOneByOneStayInLitteraOrder) {
    lists::ListModel base;
    base.setKind(lists::kind::UnitPriceList);
    ASSERT_TRUE(
        lists::InitListView(base, testing_support::dataDir() + QStringLiteral("Yksikköhinnat2002.sl1")));
    lists::ListModel project;
    project.setKind(lists::kind::QuantityList);
    ASSERT_TRUE(lists::InitListView(project, testing_support::dataDir() + QStringLiteral("TAMRIK30_T3.csv")));
    lists::TransferOptions options;
    options.unitPriceColumn = 5;
    // The first entry under each of three subcaptions, the last one first.
    std::vector<QString> subcaptions;
    for (int r = 1; r <= base.rows() && subcaptions.size() < 3; ++r)
        if (!lists::BlankString(base.cell(r, 1).toString()) &&
            !lists::CapitalString(base.cell(r, 2).toString()) &&
            base.cell(r, 1).toString().startsWith(QStringLiteral("710")))
            subcaptions.push_back(base.cell(r, 1).toString());
    ASSERT_EQ(subcaptions.size(), 3u);
    for (const QString& littera : {subcaptions[2], subcaptions[0], subcaptions[1]}) {
        int sub = 0;
        for (int r = 1; r <= base.rows() && !sub; ++r)
            if (base.cell(r, 1).toString() == littera) sub = r;
        base.selectOnly(sub + 1);
        lists::ExportToList(project, base, 0, options);
        lists::FormatListView(project, 1, 0, {1, 1, 0, 1, 1, 0});
    }
    QStringList order;
    for (int r = 1; r <= project.rows(); ++r)
        if (!lists::BlankString(project.cell(r, 1).toString())) order << project.cell(r, 1).toString();
    EXPECT_EQ(order, (QStringList{QStringLiteral("7100"), subcaptions[0], subcaptions[1], subcaptions[2]}));
}
