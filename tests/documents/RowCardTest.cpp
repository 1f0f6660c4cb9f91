// The row editor's rules without a window: fields by column, drop-down lists, browse filters,
// the program modes on the requirement card, and writing a card back.
#include "RowCardLists.h"
#include "common/ScriptedDialogs.h"
#include "documents/RowCard.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"

#include <gtest/gtest.h>

using namespace documents;
using row_card_test::fillList;
using row_card_test::inspectionList;

namespace {

// "T<i>" for Text1[i], "C<i>" for Combo1[i], per column from 1.
QStringList fieldNames(const lists::ListModel& list) {
    QStringList out;
    for (const CardField& f : CardFields(list)) {
        EXPECT_EQ(f.header, list.column(f.column).header);
        out.append(QStringLiteral("%1%2").arg(f.longText ? 'T' : 'C').arg(f.index));
    }
    return out;
}

} // namespace

TEST(RowCardFields, EachListKindMapsItsColumns) {
    lists::ListModel list;
    for (const QString& kind : {lists::kind::Requirements, lists::kind::RequirementBase}) {
        fillList(list, kind, row_card_test::requirementHeaders(), {});
        const QStringList names = fieldNames(list);
        ASSERT_EQ(names.size(), 24) << kind.toStdString();
        // Long texts 3, 12, 15, 20, 22, 23; every other column c is Combo1(c - 1 - n).
        EXPECT_EQ(names, QStringList({"C0",  "C1",  "T0",  "C2", "C3",  "C4",  "C5", "C6",
                                      "C7",  "C8",  "C9",  "T1", "C10", "C11", "T2", "C12",
                                      "C13", "C14", "C15", "T3", "C16", "T4",  "T5", "C17"}))
            << kind.toStdString();
    }
    for (const QString& kind : {lists::kind::QuantityList, lists::kind::UnitPriceList}) {
        fillList(list, kind, row_card_test::quantityHeaders(), {});
        EXPECT_EQ(fieldNames(list), QStringList({"C0", "T0", "C1", "C2", "C3", "C4", "T1"}))
            << kind.toStdString();
    }
    fillList(list, lists::kind::Changes, {"NRO", "PVM", "MUUTOS", "TEKIJÄ"}, {});
    EXPECT_EQ(fieldNames(list), QStringList({"C0", "C1", "T0", "C2"}));
    fillList(list, lists::kind::BridgeParts, {"TUNNUS", "OSA"}, {});
    EXPECT_EQ(fieldNames(list), QStringList({"C0", "C1"}));
    fillList(list, lists::kind::ChargeChambers, {"TUKI", "RAK.AINE", "(A)", "(B)", "(C)"}, {});
    EXPECT_EQ(fieldNames(list), QStringList({"C0", "C1", "C2", "C3", "C4"}));

    // The fields the mode rules name.
    fillList(list, lists::kind::Requirements, row_card_test::requirementHeaders(), {});
    const std::vector<CardField> fields = CardFields(list);
    EXPECT_EQ(FieldOfColumn(fields, 4)->index, 2);
    EXPECT_EQ(FieldOfColumn(fields, 10)->index, 8);
    EXPECT_EQ(FieldOfColumn(fields, 13)->index, 10);
    EXPECT_EQ(FieldOfColumn(fields, 21)->index, 16);
    EXPECT_EQ(FieldOfColumn(fields, 25), nullptr); // "Rivi" has no field
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
    EXPECT_EQ(ComboListItems("tyyppi", sources),
              QStringList({"1 (siltakohtainen)", "2 (KLVn mukainen)", "3 (ohjeellinen)"}));
    EXPECT_EQ(ComboListItems("RAK. OSA", sources), QStringList({"000 (Koko silta)", "310 (Välituki 1)"}));
    EXPECT_EQ(ComboListItems("VIITE", sources), sources.referenceCodes);
    EXPECT_EQ(ComboListItems("TÄYTTÄÄ VAATIMUKSET", sources), QStringList({"Kyllä", "Ei"}));
    EXPECT_EQ(ComboListItems("TARKASTUSTAPA", sources),
              QStringList({"M (mittaus)", "K (katselmus)", "T (todetaan)", "A (ainestodistus ym.)"}));

    const QStringList counts = ComboListItems("MITTAUSTEN LKM", sources);
    ASSERT_EQ(counts.size(), 20);
    EXPECT_EQ(counts[9], "10");
    EXPECT_EQ(counts[10], "15");
    EXPECT_EQ(counts.last(), "100");

    const QStringList ids = ComboListItems("TUNNUS", sources);
    ASSERT_EQ(ids.size(), 17);
    EXPECT_EQ(ids[5], "310 (välituki 1)");
    EXPECT_EQ(ids[13], "390 (välituki 9)");
    EXPECT_EQ(ids.last(), "600 (varusteet ja laitteet)");
    const QStringList names = ComboListItems("OSA", sources);
    ASSERT_EQ(names.size(), 17);
    EXPECT_EQ(names[13], "Välituki 9");

    const QStringList factors = ComboListItems("PAINOARVON KERROIN", sources);
    ASSERT_EQ(factors.size(), 11);
    EXPECT_EQ(factors.first(), "0,0 (virhe vaikuttaa)");
    EXPECT_EQ(factors[5], "0,5");
    EXPECT_EQ(factors.last(), "1,0 (virhe ei vaikuta)");
    EXPECT_EQ(ComboListItems("TUKI", sources).size(), 11);
    EXPECT_EQ(ComboListItems("YKSIKKÖ", sources).size(), 13);
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
    const Case cases[] = {
        {browse::Any, 4, 9},
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
        {browse::Caption, 3, 10},
    };
    const int last = list.rows();
    for (const Case& c : cases) {
        EXPECT_EQ(BrowseDistance(list, 1, c.code), c.down - 1) << c.code;
        EXPECT_EQ(BrowseDistance(list, last, -c.code), c.up - last) << c.code;
    }
    // Letters are compared in capitals: "e" fails as "Ei" does.
    EXPECT_EQ(BrowseDistance(list, 6, browse::Failed), 11 - 6);
    // A caption without a littera: the road works.
    EXPECT_EQ(BrowseDistance(list, 3, browse::Caption), 8 - 3);
    // Codes without a condition find nothing.
    EXPECT_EQ(BrowseDistance(list, 1, 4), 0);
    EXPECT_EQ(BrowseDistance(list, 1, 15), 0);
}

TEST(RowCardBrowse, TheEndsOfTheListAreTold) {
    testing_support::ScriptedDialogs dialogs;
    lists::ListModel list;
    inspectionList(list);
    list.selectOnly(list.rows());
    EXPECT_EQ(BrowseStep(list, browse::Any), 0);
    EXPECT_EQ(dialogs.lastText(), "Viimeinen kenttä.");
    list.selectOnly(9);
    EXPECT_EQ(BrowseStep(list, browse::Checked), 2);
    EXPECT_EQ(BrowseStep(list, browse::Certificate), 0);
    EXPECT_EQ(dialogs.lastText(), "Viimeinen kenttä.");
    list.selectOnly(4);
    EXPECT_EQ(BrowseStep(list, -browse::Any), 0);
    EXPECT_EQ(dialogs.lastText(), "Ensimmäinen kenttä.");
    EXPECT_EQ(BrowseStep(list, -browse::Caption), -1);
    EXPECT_EQ(dialogs.messages().size(), 3u);
}

TEST(RowCardBrowse, BaseListsAndOtherListsHaveFewerFilters) {
    lists::ListModel list;
    inspectionList(list);
    list.setKind(lists::kind::RequirementBase);
    EXPECT_EQ(BrowseDistance(list, 1, browse::Any), 3);
    EXPECT_EQ(BrowseDistance(list, 1, browse::Review), 5);
    EXPECT_EQ(BrowseDistance(list, 1, browse::Type3), 6);
    EXPECT_EQ(BrowseDistance(list, 1, browse::Caption), 2);
    for (int code : {browse::Unchecked, browse::Checked, browse::Failed, browse::Met, browse::PlanText,
                     browse::ReferenceFile})
        EXPECT_EQ(BrowseDistance(list, 1, code), 0) << code;

    // Elsewhere a step passes over blank rows, and captions are found by the list's own
    // heading column.
    fillList(
        list, lists::kind::QuantityList, row_card_test::quantityHeaders(),
        {{"7100", "TYÖMAAN JÄRJESTELYT"}, {}, {"", "Kiertotie", "100", "112", "m"}, {}, {"7101", "Purku"}});
    EXPECT_EQ(BrowseDistance(list, 1, browse::Any), 2);
    EXPECT_EQ(BrowseDistance(list, 3, browse::Caption), 2);
    EXPECT_EQ(BrowseDistance(list, 5, -browse::Caption), -4);
    EXPECT_EQ(BrowseDistance(list, 1, browse::Unchecked), 0);
    EXPECT_FALSE(BrowseCodeSelects(lists::kind::Changes, browse::Met));
}

TEST(RowCardBrowse, KeysAndMenuEntriesGiveTheirCodes) {
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_PageDown, Qt::NoModifier), 1);
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_PageUp, Qt::NoModifier), -1);
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_PageDown, Qt::ShiftModifier), 2);
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_PageUp, Qt::ControlModifier), -3);
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_PageDown, Qt::ControlModifier | Qt::ShiftModifier), 5);
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_PageUp, Qt::AltModifier), -20);
    // The keypad flag does not change the key.
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_PageDown, Qt::KeypadModifier), 1);
    EXPECT_EQ(BrowseCodeForKey(Qt::Key_Down, Qt::NoModifier), 0);

    // Entry i of a submenu filters with code i + 2; the separators stand where no code is.
    const QStringList next = BrowseMenuTexts(1);
    ASSERT_EQ(next.size(), 18);
    EXPECT_EQ(next[0], "Tarkastamaton (Shift+PgDn)");
    EXPECT_EQ(next[3], "Ei vaatimuksia täyttävä (Ctrl+Shift+PgDn)");
    EXPECT_EQ(next[17], "Viitetiedoston sisältävä");
    EXPECT_EQ(BrowseMenuTexts(-1)[1], "Tarkastettu (Ctrl+PgUp)");
    for (int i = 0; i < next.size(); ++i)
        EXPECT_EQ(next[i] == "-", !BrowseCodeSelects(lists::kind::Requirements, i + 2)) << i;
}

// ---------------------------------------------------------------- the mode rules

namespace {

// Drop-down texts of a requirement card: type, method, result, factor and the file names.
QStringList card(const QString& type, const QString& method = {}, const QString& result = {},
                 const QString& factor = {}, const QString& document = {}) {
    QStringList c;
    for (int i = 0; i < 18; ++i)
        c.append(QStringLiteral("x"));
    c[2] = type;
    c[8] = method;
    c[10] = document;
    c[11] = QString();
    c[16] = result;
    c[17] = factor;
    return c;
}

// "E" for an editable field, "-" for a read-only one.
QString looks(const std::vector<char>& editable) {
    QString out;
    for (char e : editable)
        out += e ? QLatin1Char('E') : QLatin1Char('-');
    return out;
}

QString setTo(const CardRules& r, int index) {
    for (const auto& [i, text] : r.setCombo)
        if (i == index) return text.isEmpty() ? QStringLiteral("<empty>") : text;
    return {};
}

} // namespace

TEST(EnableControlsForm5, DesignerContractorAndClient) {
    const QString req = lists::kind::Requirements;

    // Designer: the inspection fields are not his; the weight only for a protected requirement.
    CardRules r = EnableControlsForm5(req, 1, card("1 (siltakohtainen)"), 6);
    EXPECT_EQ(looks(r.textEditable), "E-----");
    EXPECT_EQ(looks(r.comboEditable), "EEEEEEEEEE--------");
    EXPECT_TRUE(r.setCombo.empty());
    r = EnableControlsForm5(req, 1, card("3"), 6);
    EXPECT_EQ(looks(r.comboEditable), "EEEEEEEEE---------");
    EXPECT_EQ(setTo(r, 9), "<empty>");

    // Contractor, protected requirement, not failed: its definition is read-only.
    r = EnableControlsForm5(req, 2, card("2 ", "M"), 6);
    EXPECT_EQ(looks(r.textEditable), "-EEE--");
    EXPECT_EQ(looks(r.comboEditable), "----------EEEEEEE-");
    // Unprotected: the contractor's own requirement, without a weight.
    r = EnableControlsForm5(req, 2, card("3", "K"), 6);
    EXPECT_EQ(looks(r.textEditable), "EEEE--");
    EXPECT_EQ(looks(r.comboEditable), "EEEEEEEEE-EE----E-");
    EXPECT_EQ(setTo(r, 9), "<empty>");
    // A blank method counts as a measurement.
    r = EnableControlsForm5(req, 2, card("3", " "), 6);
    EXPECT_EQ(looks(r.comboEditable).mid(12, 4), "EEEE");

    // Failed: the deviation report and correction plan open, an empty factor becomes "0,0",
    // editable for a protected requirement only.
    r = EnableControlsForm5(req, 2, card("1", "M", "Ei"), 6);
    EXPECT_EQ(looks(r.textEditable), "-EEEEE");
    EXPECT_EQ(looks(r.comboEditable), "----------EEEEEEEE");
    EXPECT_EQ(setTo(r, 17), "0,0");
    r = EnableControlsForm5(req, 2, card("3", "A", "e", "0,5"), 6);
    EXPECT_EQ(looks(r.textEditable), "EEEEEE");
    EXPECT_EQ(looks(r.comboEditable), "----------EE----E-");
    EXPECT_EQ(setTo(r, 17), "");

    // Client: nothing is restricted. Other lists: nothing happens.
    r = EnableControlsForm5(req, 3, card("1", "K", "Ei"), 6);
    EXPECT_EQ(looks(r.textEditable), "EEEEEE");
    EXPECT_EQ(looks(r.comboEditable), "EEEEEEEEEEEEEEEEEE");
    EXPECT_TRUE(r.setCombo.empty());
    r = EnableControlsForm5(lists::kind::RequirementBase, 2, card("1", "K", "Ei"), 6);
    EXPECT_EQ(looks(r.comboEditable), "EEEEEEEEEEEEEEEEEE");
    EXPECT_TRUE(r.setCombo.empty());

    // The file menu opens only files that are named.
    r = EnableControlsForm5(req, 3, card("1", "M", "", "", "selostus.pdf"), 6);
    EXPECT_TRUE(r.openDocument);
    EXPECT_FALSE(r.openAttachment);
}

TEST(RowCardRules, ContractorTypeIdentifierAndCheck) {
    const QString req = lists::kind::Requirements;
    EXPECT_TRUE(ContractorTypeRefused(2, req, "1 (siltakohtainen)", "3 "));
    EXPECT_TRUE(ContractorTypeRefused(2, req, "2", ""));
    EXPECT_FALSE(ContractorTypeRefused(2, req, "3 (ohjeellinen)", ""));
    EXPECT_FALSE(ContractorTypeRefused(3, req, "1", ""));
    EXPECT_FALSE(ContractorTypeRefused(2, lists::kind::RequirementBase, "1", ""));
    // The designer's bridge-specific requirement keeps its type.
    EXPECT_FALSE(ContractorTypeRefused(2, req, "1 (siltakohtainen)", "1 "));
    EXPECT_EQ(contractorTypeMessage(), "Urakoitsija voi antaa vain ohjeellisia (Ty = 3) laatuvaatimuksia.");
    EXPECT_TRUE(NeedsIdentifier(req));
    EXPECT_FALSE(NeedsIdentifier(lists::kind::RequirementBase));
    EXPECT_FALSE(CheckAllowed(req, 1));
    EXPECT_TRUE(CheckAllowed(req, 2));
    EXPECT_TRUE(CheckAllowed(req, 3));
    EXPECT_FALSE(CheckAllowed(lists::kind::QuantityList, 3));
    EXPECT_EQ(RowMenuTexts(lists::kind::UnitPriceList)[2], "Lisää uusi työvaihe luettelon loppuun");
    EXPECT_EQ(RowMenuTexts(lists::kind::RequirementBase)[1], "Kloonaa laatuvaatimus");
    EXPECT_EQ(RowMenuTexts(lists::kind::Changes)[3], "Poista rivi");
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
    EXPECT_EQ(list.cell(1, 3), "Välituki 3");
    EXPECT_FALSE(WriteCardToRow(list, 2, fields, texts, combos));
}
