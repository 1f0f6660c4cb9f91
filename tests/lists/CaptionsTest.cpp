// Row classes, the caption that governs a row, copying caption blocks and placing transferred rows.
#include "ListBuilders.h"

#include <gtest/gtest.h>

using namespace lists;
using lists_test::fill;

TEST(RowClasses, CapitalAndBlankStrings) {
    EXPECT_TRUE(CapitalString("ÄÖ"));
    EXPECT_FALSE(CapitalString("Ä")) << "one capital letter";
    EXPECT_FALSE(CapitalString("ÄÖö")) << "a lower-case letter";
    EXPECT_FALSE(CapitalString("123")) << "no letter";
    EXPECT_FALSE(CapitalString(""));
    EXPECT_TRUE(CapitalString("LVI 2"));
    EXPECT_FALSE(CapitalString("A 2"));
    EXPECT_FALSE(CapitalString("KAIVU ja TÄYTTÖ"));
    EXPECT_TRUE(CapitalString("TIETYÖT SILTAPAIKALLA"));
    EXPECT_FALSE(CapitalString("ÅLAND å")) << "å is a lower-case letter";
    EXPECT_FALSE(CapitalString("ÉA")) << "É is not one of the letters counted";

    EXPECT_TRUE(BlankString(""));
    EXPECT_TRUE(BlankString("   "));
    EXPECT_FALSE(BlankString(" x "));

    ListModel list;
    fill(list, kind::QuantityList, lists_test::quantityHeaders(),
         {{"  ", " ", "   ", "", "", " ", ""}, {"7100"}, {"", "", "", "12"}});
    EXPECT_TRUE(BlankListItem(list, 1).blank) << "spaces and a row number only";
    EXPECT_EQ(BlankListItem(list, 1).firstNonBlankCol, 0);
    EXPECT_EQ(BlankListItem(list, 2).firstNonBlankCol, 1);
    EXPECT_FALSE(BlankListItem(list, 3).blank);
    EXPECT_EQ(BlankListItem(list, 3).firstNonBlankCol, 4);
}

TEST(RowClasses, ColumnsByKind) {
    ListModel list;
    fill(list, kind::QuantityList, lists_test::quantityHeaders(), {});
    EXPECT_EQ(ListViewHotSubItem(list), 1);
    EXPECT_EQ(entryColumn(list), 5);
    EXPECT_EQ(detailColumn(list), 3);
    list.setKind(kind::RequirementBase);
    EXPECT_EQ(ListViewHotSubItem(list), 2);
    EXPECT_EQ(entryColumn(list), 2);
    list.setKind(kind::ChargeChambers);
    EXPECT_EQ(ListViewHotSubItem(list), 1);
    EXPECT_EQ(entryColumn(list), 0);
    // Read-only keeps the columns' meaning.
    list.setKind(kind::Requirements);
    list.setReadOnly(true);
    EXPECT_EQ(ListViewHotSubItem(list), 2);
}

namespace {

// A quantity list with a two-line caption, a subcaption with two entries and the road works.
void quantityList(ListModel& list) {
    fill(list, kind::QuantityList, lists_test::quantityHeaders(),
         {
             {"7100", "SILLAN ALUSRAKENTEET", "Koko silta"}, // 1 caption ...
             {"", "JA PERUSTUKSET"},                         // 2 ... on two lines
             {"7110", "Kaivannot", "Maatuet"},               // 3 subcaption
             {"", "Kaivu", "Tuki 1", "10", "m3"},            // 4 entry
             {"", "jatkuu", "Tuki 1"},                       // 5 continuation
             {"", "Täyttö", "Tuki 2", "5", "m3"},            // 6 entry
             {"", "TIETYÖT SILTAPAIKALLA"},                  // 7 caption without littera
             {"", "Penger", "", "3", "m3"},                  // 8 entry
         });
}

} // namespace

TEST(FindCaption, TwoLineCaptionEntriesAndOtherKinds) {
    ListModel list;
    quantityList(list);

    // From inside the caption: the caption row above, two rows, both texts joined.
    CaptionInfo c = FindCaption(list, 2);
    EXPECT_EQ(c.captionRow, 1);
    EXPECT_EQ(c.captionRows, 2);
    EXPECT_EQ(c.captionLittera, "7100");
    EXPECT_EQ(c.captionText, "SILLAN ALUSRAKENTEETJA PERUSTUKSET");
    EXPECT_EQ(c.detailText, "Koko silta");
    EXPECT_EQ(c.subcaptionRow, 0);
    EXPECT_EQ(c.entryRow, 0);

    // From a continuation row: its entry, the subcaption and the caption.
    c = FindCaption(list, 5);
    EXPECT_EQ(c.entryRow, 4);
    EXPECT_EQ(c.entryRows, 2);
    EXPECT_EQ(c.entryText, "Kaivu");
    EXPECT_EQ(c.detailText, "Tuki 1") << "the entry's detail wins over the subcaption's";
    EXPECT_EQ(c.subcaptionRow, 3);
    EXPECT_EQ(c.subcaptionRows, 1);
    EXPECT_EQ(c.subcaptionLittera, "7110");
    EXPECT_EQ(c.subcaptionText, "Kaivannot");
    EXPECT_EQ(c.captionRow, 1);
    EXPECT_EQ(c.captionRows, 2);

    // An entry just above the road works does not run into their caption.
    c = FindCaption(list, 6);
    EXPECT_EQ(c.entryRow, 6);
    EXPECT_EQ(c.entryRows, 1);

    // The road works caption needs no littera.
    c = FindCaption(list, 8);
    EXPECT_EQ(c.captionRow, 7);
    EXPECT_EQ(c.captionText, "TIETYÖT SILTAPAIKALLA");
    EXPECT_EQ(c.entryRow, 8);

    // The subcaption row itself: no entry above it counts.
    c = FindCaption(list, 3);
    EXPECT_EQ(c.subcaptionRow, 3);
    EXPECT_EQ(c.entryRow, 0);
    EXPECT_EQ(c.detailText, "Maatuet");

    // A list of another kind finds nothing.
    list.setKind(kind::Changes);
    c = FindCaption(list, 5);
    EXPECT_EQ(c.captionRow + c.subcaptionRow + c.entryRow + c.captionRows + c.entryRows, 0);
    EXPECT_TRUE(c.captionText.isEmpty() && c.detailText.isEmpty() && c.entryText.isEmpty());
}

TEST(FindCaption, QualityColumns) {
    // Quality kinds: headings in column 3, the requirement number (entry and detail) in column 2.
    ListModel list;
    fill(list, kind::Requirements, lists_test::qualityHeaders(),
         {
             {"7130", "", "PERUSTUKSET"},
             {"7131", "", "Paalut"},
             {"", "1.1", "Paalujen sijainti", "1"},
             {"", "", "ja kaltevuus"},
         });
    const CaptionInfo c = FindCaption(list, 4);
    EXPECT_EQ(c.captionRow, 1);
    EXPECT_EQ(c.subcaptionRow, 2);
    EXPECT_EQ(c.subcaptionText, "Paalut");
    EXPECT_EQ(c.entryRow, 3);
    EXPECT_EQ(c.entryRows, 2);
    EXPECT_EQ(c.entryText, "Paalujen sijainti");
    EXPECT_EQ(c.detailText, "1.1");
}

TEST(InsertCaption, SkipsPresentCaptionAndNumbersInserted) {
    ListModel source;
    quantityList(source);

    ListModel target;
    fill(target, kind::QuantityList, {"LITTERA", "TYÖVAIHE", "RAK. OSA"},
         {{"7000", "ALKU"}, {"7100", "SILLAN ALUSRAKENTEET"}, {"7200", "LOPPU"}});
    const std::vector<QStringList> before = lists_test::dataRows(target);

    // Littera and name present (even on different rows): nothing is inserted.
    EXPECT_EQ(InsertCaption(target, 2, source, 1, 2), 0);
    EXPECT_EQ(lists_test::dataRows(target), before);
    target.setCell(2, 2, "MUU NIMI");
    target.setCell(3, 2, "SILLAN ALUSRAKENTEET");
    EXPECT_EQ(InsertCaption(target, 2, source, 1, 2), 0);

    // Only the littera present: the block goes in, in its own order, numbered at the position,
    // with the columns the target has.
    target.setCell(3, 2, "LOPPU");
    EXPECT_EQ(InsertCaption(target, 2, source, 1, 2), 2);
    EXPECT_EQ(lists_test::dataRows(target),
              (std::vector<QStringList>{{"7000", "ALKU", ""},
                                        {"7100", "SILLAN ALUSRAKENTEET", "Koko silta"},
                                        {"", "JA PERUSTUKSET", ""},
                                        {"7100", "MUU NIMI", ""},
                                        {"7200", "LOPPU", ""}}));
    EXPECT_EQ(lists_test::rowNumbers(target), (QStringList{"00001", "00002", "00003", "00004", "00005"}));
}

namespace {

void placementTarget(ListModel& list) {
    fill(list, kind::QuantityList, lists_test::quantityHeaders(),
         {
             {"7100", "SILTAPAIKAN POHJATYÖT"},     // 1
             {"7110", "Kaivannot"},                 // 2
             {"", "Kaivu", "", "1", "m3"},          // 3
             {"7120", "Paalutus"},                  // 4
             {"", "Teräsputkipaalut", "", "", "m"}, // 5
             {"7130", "PERUSTUKSET"},               // 6
             {"", "Anturat", "", "", "m3"},         // 7
             {"", "TIETYÖT SILTAPAIKALLA"},         // 8
             {"2100", "MAAPENKEREET"},              // 9
             {"", "Penger", "", "", "m3"},          // 10
             {"2300", "PÄÄLLYSTEET"},               // 11
             {"", "Asfaltti", "", "", "m2"},        // 12
         });
}

} // namespace

TEST(LocateRow, SortedPlacementAroundBridgeAndRoadWorks) {
    ListModel target;
    placementTarget(target);
    ListModel source;
    fill(source, kind::UnitPriceList, lists_test::quantityHeaders(),
         {
             {"7100", "SILTAPAIKAN POHJATYÖT"}, // 1
             {"7110", "Kaivannot"},             // 2
             {"7115", "Tukiseinät"},            // 3
             {"7140", "TELINEET"},              // 4
             {"2200", "KUIVATUS"},              // 5
             {"2400", "VARUSTEET"},             // 6
             {"", "TIETYÖT SILTAPAIKALLA"},     // 7
         });

    // A subcaption the target has: after its entries, before the next littera above its own.
    EXPECT_EQ(LocateRow(target, source, 0, 1, 2, 0, 1), 4);
    // A subcaption the target lacks goes in under its caption, among the subcaptions in littera
    // order: 7115 after 7110 and its entry, before 7120.
    EXPECT_EQ(LocateRow(target, source, 0, 1, 3, 1, 1), 4);
    // Only the caption, which the target has: before the first row with a littera below it.
    EXPECT_EQ(LocateRow(target, source, 0, 1, 0, 0, 1), 2);
    // A bridge caption the target lacks: after the bridge phases, before the road works.
    EXPECT_EQ(LocateRow(target, source, 0, 4, 0, 0, 1), 8);
    // Road-work captions (below "7100") the target lacks: in littera order among the road works.
    EXPECT_EQ(LocateRow(target, source, 0, 5, 0, 0, 1), 11);
    EXPECT_EQ(LocateRow(target, source, 0, 6, 0, 0, 1), 13);
    // The road works caption itself: found by its text, the rows go before the next caption.
    EXPECT_EQ(LocateRow(target, source, 0, 7, 0, 0, 1), 9);

    // A target without road works: a road-work caption goes to the end.
    ListModel bridgeOnly;
    fill(bridgeOnly, kind::QuantityList, lists_test::quantityHeaders(),
         {{"7100", "SILTAPAIKAN POHJATYÖT"}, {"7110", "Kaivannot"}});
    EXPECT_EQ(LocateRow(bridgeOnly, source, 0, 5, 0, 0, 1), 3);
    EXPECT_EQ(LocateRow(bridgeOnly, source, 0, 7, 0, 0, 1), 3);

    // The other modes: at the selection plus the offset, appended, or left alone.
    EXPECT_EQ(LocateRow(target, source, 5, 1, 2, 2, 3), 8);
    EXPECT_EQ(LocateRow(target, source, 5, 1, 2, 3, 1), 6);
    EXPECT_EQ(LocateRow(target, source, 5, 1, 2, 4, 1), 13);
    EXPECT_EQ(LocateRow(target, source, 5, 1, 2, 5, 1), 13);
    EXPECT_EQ(LocateRow(target, source, 5, 1, 2, 9, 1), 5);
}

TEST(LocateRow, SecondDecimalLitterasSortTogether) {
    // Normalised, 7131.2 reads 7131.02 and so comes before 7131.12.
    EXPECT_EQ(normalisedLittera(u"2110.1"), "2110.01");
    EXPECT_EQ(normalisedLittera(u"7131.12"), "7131.12");
    ListModel target;
    fill(target, kind::QuantityList, lists_test::quantityHeaders(),
         {{"7131", "Paalut"},
          {"7131.1", "Teräsputkipaalut"},
          {"7131.2", "Betonipaalut"},
          {"", "Lyöntipaalu", "", "", "m"},
          {"7131.12", "Porapaalut"}});
    ListModel source;
    fill(source, kind::UnitPriceList, lists_test::quantityHeaders(),
         {{"7131", "Paalut"}, {"7131.2", "Betonipaalut"}});
    EXPECT_EQ(LocateRow(target, source, 0, 0, 2, 0, 1), 5);
}
