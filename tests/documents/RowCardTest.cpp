// The row editor's rules without a window: fields by column, drop-down lists, browse filters,
// the program modes on the requirement card, and writing a card back.
#include "RowCardLists.h"
#include "documents/RowCard.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"

#include <gtest/gtest.h>

using namespace documents;
using row_card_test::fillList;
using row_card_test::inspectionList;

TEST(RowCardFields, EachListKindMapsItsColumns) {
    const QString requirementFields =
        "C0 C1 T0 C2 C3 C4 C5 C6 C7 C8 C9 T1 C10 C11 T2 C12 C13 C14 C15 T3 C16 T4 T5 C17";
    struct Case {
        QString kind;
        QStringList headers;
        QString fields; // "T<i>" for Text1[i], "C<i>" for Combo1[i], column by column
    };
    const Case cases[] = {
        {lists::kind::Requirements, row_card_test::requirementHeaders(), requirementFields},
        {lists::kind::RequirementBase, row_card_test::requirementHeaders(), requirementFields},
        {lists::kind::QuantityList, row_card_test::quantityHeaders(), "C0 T0 C1 C2 C3 C4 T1"},
        {lists::kind::UnitPriceList, row_card_test::quantityHeaders(), "C0 T0 C1 C2 C3 C4 T1"},
        {lists::kind::Changes, {"NRO", "PVM", "MUUTOS", "TEKIJÄ"}, "C0 C1 T0 C2"},
        {lists::kind::ChargeChambers, {"TUKI", "RAK.AINE", "(A)", "(B)", "(C)"}, "C0 C1 C2 C3 C4"}};
    lists::ListModel list;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.kind.toStdString());
        fillList(list, c.kind, c.headers, {});
        QStringList names;
        for (const CardField& f : CardFields(list)) {
            SCOPED_TRACE(f.column);
            EXPECT_EQ(f.header, list.column(f.column).header);
            names.append(QStringLiteral("%1%2").arg(f.longText ? 'T' : 'C').arg(f.index));
        }
        EXPECT_EQ(names.join(' '), c.fields);
    }
    EXPECT_EQ(FieldOfColumn(CardFields(list), 6), nullptr); // "Rivi" has no field
}

TEST(RowCardFields, DropDownListsByHeader) {
    lists::ListModel parts;
    fillList(parts, lists::kind::BridgeParts, {"TUNNUS", "OSA"},
             {{"000", "Koko silta"}, {}, {"310", "Välituki 1"}});
    ComboSources sources;
    sources.today = QDate(2026, 3, 5);
    sources.bridgeParts = &parts;
    sources.referenceCodes = {"SYL 1 (yleinen osa)", "SYT (työselitys)"};

    EXPECT_EQ(ComboListItems("PVM", sources), QStringList{"5.3.2026"});
    // Headers are compared in capitals.
    EXPECT_EQ(ComboListItems(" tyyppi ", sources), ComboListItems("TYYPPI", sources));
    // The bridge's own parts, without its blank rows.
    EXPECT_EQ(ComboListItems("RAK. OSA", sources), QStringList({"000 (Koko silta)", "310 (Välituki 1)"}));
    EXPECT_EQ(ComboListItems("VIITE", sources), sources.referenceCodes);
    EXPECT_EQ(ComboListItems("MITTAUSTEN LKM", sources).mid(9, 2), QStringList({"10", "15"}));
    EXPECT_TRUE(ComboListItems("LAATUVAATIMUS", sources).isEmpty());
}

// ---------------------------------------------------------------- browsing

TEST(RowCardBrowse, EveryFilterFindsItsRowInBothDirections) {
    lists::ListModel list;
    inspectionList(list);
    struct Case {
        int code;
        int down; // the row found from row 1 downwards
        int up;   // the row found from the last row upwards
    };
    const Case cases[] = {{browse::Any, 4, 9},
                          {browse::Unchecked, 7, 9},
                          {browse::Checked, 4, 6},
                          {browse::Failed, 6, 6},
                          {browse::Met, 4, 4},
                          {browse::Measurement, 4, 4},
                          {browse::Review, 6, 6},
                          {browse::Certificate, 7, 7},
                          {browse::Type1, 4, 4},
                          {browse::Type2, 6, 6},
                          {browse::Type3, 7, 9},
                          {browse::PlanText, 6, 6},
                          {browse::InspectionText, 9, 9},
                          {browse::ReportText, 9, 9},
                          {browse::ReferenceFile, 7, 7},
                          {browse::Caption, 3, 10}};
    const int last = list.rows();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(BrowseDistance(list, 1, c.code), c.down - 1);
        EXPECT_EQ(BrowseDistance(list, last, -c.code), c.up - last);
    }
    // Letters are compared in capitals: "e" fails as "Ei" does.
    EXPECT_EQ(BrowseDistance(list, 6, browse::Failed), 11 - 6);
    // A caption without a littera: the road works.
    EXPECT_EQ(BrowseDistance(list, 3, browse::Caption), 8 - 3);
    // Codes without a condition find nothing.
    EXPECT_EQ(BrowseDistance(list, 1, 4), 0);
    EXPECT_EQ(BrowseDistance(list, 1, 15), 0);
}

TEST(RowCardBrowse, BaseListsAndOtherListsHaveFewerFilters) {
    lists::ListModel list;
    inspectionList(list);
    list.setKind(lists::kind::RequirementBase);
    EXPECT_EQ(BrowseDistance(list, 1, browse::Review), 5);
    EXPECT_EQ(BrowseDistance(list, 1, browse::Type3), 6);
    for (int code : {browse::Unchecked, browse::Checked, browse::Failed, browse::Met, browse::PlanText,
                     browse::ReferenceFile}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(BrowseDistance(list, 1, code), 0);
    }
    // Elsewhere captions are found by the list's own heading column.
    fillList(list, lists::kind::QuantityList, row_card_test::quantityHeaders(),
             {{"7100", "TYÖMAAN JÄRJESTELYT"}, {}, {"", "Kiertotie", "100", "112", "m"}, {"7101", "Purku"}});
    EXPECT_EQ(BrowseDistance(list, 4, -browse::Caption), -3);
    EXPECT_EQ(BrowseDistance(list, 1, browse::Unchecked), 0);
}

TEST(RowCardBrowse, KeysAndMenuEntriesGiveTheirCodes) {
    // The window's tests press PgDn, Shift+PgUp, Ctrl+Shift+PgDn and Alt+PgUp.
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_PageUp, Qt::ControlModifier), -3);
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_PageDown, Qt::KeypadModifier), 1); // the keypad flag is no modifier
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_Down, Qt::NoModifier), 0);
    // Entry i of a submenu filters with code i + 2; the separators stand where no code is.
    const QStringList next = BrowseMenuTexts(1);
    for (int i = 0; i < next.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(next[i] == "-", !BrowseCodeSelects(lists::kind::Requirements, i + 2));
    }
}

// ---------------------------------------------------------------- the mode rules

TEST(EnableControlsForm5, DesignerContractorAndClient) {
    // Drop-down texts of a requirement card: type, method, result, factor and the work
    // description file; the rest filled.
    auto card = [](const QString& type, const QString& method = {}, const QString& result = {},
                   const QString& factor = {}, const QString& document = {}) {
        QStringList c(18, QStringLiteral("x"));
        c[2] = type;
        c[8] = method;
        c[10] = document;
        c[11] = QString();
        c[16] = result;
        c[17] = factor;
        return c;
    };
    // "E" for an editable field, "-" for a read-only one.
    auto looks = [](const std::vector<char>& editable) {
        QString out;
        for (char e : editable)
            out += e ? QLatin1Char('E') : QLatin1Char('-');
        return out;
    };
    struct Case {
        const char* what;
        QString kind;
        int mode;
        QStringList card;
        QString texts, combos;
        QString set; // the drop-downs the rules give a text: "9=" the weight emptied, "17=0,0"
    };
    const QString req = lists::kind::Requirements;
    const Case cases[] = {
        {"designer, protected", req, 1, card("1 (siltakohtainen)"), "E-----", "EEEEEEEEEE--------", ""},
        {"designer, advisory: no weight", req, 1, card("3"), "E-----", "EEEEEEEEE---------", "9="},
        {"contractor, protected", req, 2, card("2 ", "M"), "-EEE--", "----------EEEEEEE-", ""},
        {"contractor's own", req, 2, card("3", "K"), "EEEE--", "EEEEEEEEE-EE----E-", "9="},
        {"blank method measures", req, 2, card("3", " "), "EEEE--", "EEEEEEEEE-EEEEEEE-", "9="},
        {"protected, failed", req, 2, card("1", "M", "Ei"), "-EEEEE", "----------EEEEEEEE", "17=0,0"},
        {"own, failed", req, 2, card("3", "A", "e", "0,5"), "EEEEEE", "----------EE----E-", "9="},
        {"client", req, 3, card("1", "K", "Ei"), "EEEEEE", "EEEEEEEEEEEEEEEEEE", ""},
        {"base list", lists::kind::RequirementBase, 2, card("1", "K", "Ei"), "EEEEEE", "EEEEEEEEEEEEEEEEEE",
         ""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const CardRules r = EnableControlsForm5(c.kind, c.mode, c.card, 6);
        EXPECT_EQ(looks(r.textEditable), c.texts);
        EXPECT_EQ(looks(r.comboEditable), c.combos);
        QStringList set;
        for (const auto& [i, text] : r.setCombo)
            set.append(QStringLiteral("%1=%2").arg(i).arg(text));
        EXPECT_EQ(set.join(' '), c.set);
    }
}

TEST(EnableControlsForm5, TheFileMenuOpensOnlyFilesThatAreNamed) {
    QStringList card(18, QStringLiteral("x"));
    card[10] = "selostus.pdf";
    card[11] = QString();
    const CardRules r = EnableControlsForm5(lists::kind::Requirements, 3, card, 6);
    EXPECT_TRUE(r.openDocument);
    EXPECT_FALSE(r.openAttachment);
}

TEST(RowCardRules, TheContractorGivesOnlyAdvisoryTypes) {
    struct Case {
        int mode;
        QString kind, type, rowType;
        bool refused;
    };
    const QString req = lists::kind::Requirements;
    const Case cases[] = {{2, req, "1 (siltakohtainen)", "3 ", true},
                          {2, req, "2", "", true},
                          {2, req, "3 (ohjeellinen)", "", false},
                          {3, req, "1", "", false},
                          {2, lists::kind::RequirementBase, "1", "", false},
                          // The designer's bridge-specific requirement keeps its type.
                          {2, req, "1 (siltakohtainen)", "1 ", false}};
    for (const Case& c : cases) {
        SCOPED_TRACE((c.type + " / " + c.rowType).toStdString());
        EXPECT_EQ(ContractorTypeRefused(c.mode, c.kind, c.type, c.rowType), c.refused);
    }
}

TEST(RowCardWrite, ExplanationsAreCutLongTextsKept) {
    lists::ListModel list;
    fillList(list, lists::kind::QuantityList, row_card_test::quantityHeaders(), {{"old"}});
    const std::vector<CardField> fields = CardFields(list);
    // Combo1: littera, rak. osa, määrä, yksikkö, hinta; Text1: työvaihe, huomautukset.
    const QStringList combos{"7131", "330 (välituki 3)", "12,5", "m3", "45,00"};
    const QStringList texts{"Valu (muotissa)", "huom (tärkeä)"};
    EXPECT_TRUE(WriteCardToRow(list, 1, fields, texts, combos));
    EXPECT_EQ(list.row(1).cells, QStringList({"7131", "Valu (muotissa)", "330 ", "12,5", "m3", "45,00",
                                              "huom (tärkeä)", "00001"}));
    EXPECT_FALSE(WriteCardToRow(list, 1, fields, texts, combos));
    EXPECT_TRUE(WriteCardToRow(list, 1, fields, texts, {"7131", "Välituki 3", "12,5", "m3", "45,00"}));
    EXPECT_EQ(list.cell(1, 3).toString(), "Välituki 3");
    EXPECT_FALSE(WriteCardToRow(list, 2, fields, texts, combos));
}
