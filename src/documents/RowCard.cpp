#include "documents/RowCard.h"

#include "calc/QualityIndex.h"
#include "documents/CardText.h"
#include "lists/Columns.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "platform/Dialogs.h"

#include <algorithm>
#include <array>

namespace documents {

namespace {

namespace col = lists::requirementCol;

// The change list's ("Muutokset") description of the change, its one long text.
constexpr int kChangeDescription = 3;

// The long-text columns of the two requirement kinds: each has a text box, every other column
// a drop-down.
constexpr std::array kRequirementLongTexts{col::kText,       col::kQualityPlan,
                                           col::kInspection, col::kQualityReportText,
                                           col::kDeviation,  col::kCorrection};

// The drop-down index of a requirement column: drop-downs count from 0 in column order and skip
// the long-text columns (as CardFields numbers them).
constexpr int requirementCombo(int column) {
    int index = column - 1;
    for (int c : kRequirementLongTexts)
        if (c < column) --index;
    return index;
}

constexpr int kTypeCombo = requirementCombo(col::kType);
constexpr int kMethodCombo = requirementCombo(col::kMethod);
constexpr int kWeightCombo = requirementCombo(col::kWeight);
constexpr int kDocumentCombo = requirementCombo(col::kWorkDescriptionFile);
constexpr int kAttachmentCombo = requirementCombo(col::kReferenceFile);
constexpr int kResultCombo = requirementCombo(col::kFulfilled);
constexpr int kFactorCombo = requirementCombo(col::kFactor);

QChar firstUpper(QStringView text) {
    return text.isEmpty() ? QChar() : text.front().toUpper();
}

QStringList fromUtf8(std::initializer_list<const char*> items) {
    QStringList out;
    for (const char* i : items)
        out.append(QString::fromUtf8(i));
    return out;
}

// "RAK. OSA": the project's part numbers with their names, "100 (Maatuki 1)".
QStringList bridgePartItems(const lists::ListModel* parts) {
    QStringList out;
    if (parts)
        for (int r = 1; r <= parts->rows(); ++r)
            if (!lists::BlankString(parts->cell(r, 1)))
                out.append(parts->cell(r, 1).toString() + QStringLiteral(" (") +
                           parts->cell(r, 2).toString() + QLatin1Char(')'));
    return out;
}

// "MITTAUSTEN LKM": 1 to 10, 15, then by tens to 100.
QStringList measurementCounts() {
    QStringList out;
    for (int i = 1; i <= 10; ++i)
        out.append(QString::number(i));
    out.append(QStringLiteral("15"));
    for (int i = 20; i <= 100; i += 10)
        out.append(QString::number(i));
    return out;
}

} // namespace

bool IsLongTextColumn(const QString& kind, int column) {
    if (lists::isQualityKind(kind))
        return std::find(kRequirementLongTexts.begin(), kRequirementLongTexts.end(), column) !=
               kRequirementLongTexts.end();
    if (lists::isQuantityKind(kind))
        return column == lists::quantityCol::kWorkPhase || column == lists::quantityCol::kRemarks;
    if (kind == lists::kind::Changes) return column == kChangeDescription;
    return false;
}

std::vector<CardField> CardFields(const lists::ListModel& list) {
    std::vector<CardField> out;
    int texts = 0;
    int combos = 0;
    for (int c = 1; c <= list.lastDataCol(); ++c) {
        CardField f;
        f.column = c;
        f.header = list.column(c).header;
        f.longText = IsLongTextColumn(list.kind(), c);
        f.index = f.longText ? texts++ : combos++;
        out.push_back(f);
    }
    return out;
}

const CardField* FieldOfColumn(const std::vector<CardField>& fields, int column) {
    for (const CardField& f : fields)
        if (f.column == column) return &f;
    return nullptr;
}

QStringList ComboListItems(const QString& header, const ComboSources& sources) {
    const QString h = header.trimmed().toUpper();
    if (h == QLatin1String("PVM")) return {sources.today.toString(QStringLiteral("d.M.yyyy"))};
    if (h == QLatin1String("OSA"))
        return fromUtf8({"Koko silta", "Maatuki 1", "Kehän anturat 1", "Maatuki 2", "Kehän anturat 2",
                         "Välituki 1", "Välituki 2", "Välituki 3", "Välituki 4", "Välituki 5", "Välituki 6",
                         "Välituki 7", "Välituki 8", "Välituki 9", "Päällysrakenne", "Päällysrak. kaariosa",
                         "Varusteet ja laitteet"});
    if (h == QLatin1String("TUNNUS"))
        return fromUtf8({"000 (koko silta)", "100 (maatuki 1)", "110 (kehän anturat 1)", "200 (maatuki 2)",
                         "210 (kehän anturat 2)", "310 (välituki 1)", "320 (välituki 2)", "330 (välituki 3)",
                         "340 (välituki 4)", "350 (välituki 5)", "360 (välituki 6)", "370 (välituki 7)",
                         "380 (välituki 8)", "390 (välituki 9)", "400 (päällysrakenne)",
                         "500 (päällysrak. kaariosa)", "600 (varusteet ja laitteet)"});
    if (h == QLatin1String("RAK. OSA")) return bridgePartItems(sources.bridgeParts);
    if (h == QLatin1String("TYYPPI"))
        return {QStringLiteral("1 (siltakohtainen)"), QStringLiteral("2 (KLVn mukainen)"),
                QStringLiteral("3 (ohjeellinen)")};
    if (h == QLatin1String("TARKASTUSTAPA"))
        return {QStringLiteral("M (mittaus)"), QStringLiteral("K (katselmus)"),
                QStringLiteral("T (todetaan)"), QStringLiteral("A (ainestodistus ym.)")};
    if (h == QLatin1String("VIITE")) return sources.referenceCodes;
    if (h == QString::fromUtf8("YKSIKKÖ"))
        return fromUtf8(
            {"kpl", "kg", "kg/m3", "kN/m2", "m", "m2", "m3", "m3ktr", "mm", "MN/m2", "MPa", "oC", "P-luku"});
    if (h == QLatin1String("MITTAUSTEN LKM")) return measurementCounts();
    if (h == QString::fromUtf8("TÄYTTÄÄ VAATIMUKSET")) return fromUtf8({"Kyllä", "Ei"});
    if (h == QLatin1String("PAINOARVO"))
        return {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2"),
                QStringLiteral("3"), QStringLiteral("4"), QStringLiteral("5")};
    if (h == QLatin1String("PAINOARVON KERROIN"))
        return {QStringLiteral("0,0 (virhe vaikuttaa)"),
                QStringLiteral("0,1"),
                QStringLiteral("0,2"),
                QStringLiteral("0,3"),
                QStringLiteral("0,4"),
                QStringLiteral("0,5"),
                QStringLiteral("0,6"),
                QStringLiteral("0,7"),
                QStringLiteral("0,8"),
                QStringLiteral("0,9"),
                QStringLiteral("1,0 (virhe ei vaikuta)")};
    if (h == QLatin1String("TUKI"))
        return {QStringLiteral("MT 1"), QStringLiteral("MT 2"), QStringLiteral("VT 1"),
                QStringLiteral("VT 2"), QStringLiteral("VT 3"), QStringLiteral("VT 4"),
                QStringLiteral("VT 5"), QStringLiteral("VT 6"), QStringLiteral("VT 7"),
                QStringLiteral("VT 8"), QStringLiteral("VT 9")};
    if (h == QLatin1String("RAK.AINE")) return fromUtf8({"teräsbetoni"});
    return {};
}

// ---------------------------------------------------------------- browsing

bool BrowseCodeSelects(const QString& kind, int code) {
    code = std::abs(code);
    if (kind == lists::kind::Requirements)
        return (code >= 1 && code <= 20) && code != 4 && code != 7 && code != 11 && code != 15;
    if (kind == lists::kind::RequirementBase)
        return code == browse::Any || (code >= 8 && code <= 10) || (code >= 12 && code <= 14) ||
               code == browse::Caption;
    return code == browse::Any || code == browse::Caption;
}

bool BrowseQualifies(const lists::ListModel& list, int row, int code) {
    code = std::abs(code);
    const QString& kind = list.kind();
    if (!BrowseCodeSelects(kind, code)) return false;
    if (code == browse::Caption)
        return calc::ListViewCaption(list, row, lists::headingColumn(list)).level > 0;
    if (!lists::isQualityKind(kind)) return !lists::BlankListItem(list, row).blank;

    if (code <= browse::Type3 && lists::BlankString(list.cell(row, col::kNumber))) return false;
    const QStringView result = list.cell(row, col::kFulfilled);
    switch (code) {
        case browse::Any:
            return true;
        case browse::Unchecked:
            return lists::BlankString(result);
        case browse::Checked:
            return !lists::BlankString(result);
        case browse::Failed:
            return firstUpper(result) == QLatin1Char('E');
        case browse::Met:
            return firstUpper(result) == QLatin1Char('K');
        case browse::Measurement:
            return firstUpper(list.cell(row, col::kMethod)) == QLatin1Char('M');
        case browse::Review:
            return firstUpper(list.cell(row, col::kMethod)) == QLatin1Char('K');
        case browse::Certificate:
            return firstUpper(list.cell(row, col::kMethod)) == QLatin1Char('A');
        case browse::Type1:
            return firstUpper(list.cell(row, col::kType)) == QLatin1Char('1');
        case browse::Type2:
            return firstUpper(list.cell(row, col::kType)) == QLatin1Char('2');
        case browse::Type3:
            return firstUpper(list.cell(row, col::kType)) == QLatin1Char('3');
        case browse::PlanText:
            return !lists::BlankString(list.cell(row, col::kQualityPlan));
        case browse::InspectionText:
            return !lists::BlankString(list.cell(row, col::kInspection));
        case browse::ReportText:
            return !lists::BlankString(list.cell(row, col::kQualityReportText));
        case browse::ReferenceFile:
            return !lists::BlankString(list.cell(row, col::kWorkDescriptionFile)) ||
                   !lists::BlankString(list.cell(row, col::kReferenceFile));
        default:
            return false;
    }
}

int BrowseDistance(const lists::ListModel& list, int fromRow, int code) {
    if (code == 0 || !BrowseCodeSelects(list.kind(), code)) return 0;
    const int step = code < 0 ? -1 : 1;
    for (int r = fromRow + step; r >= 1 && r <= list.rows(); r += step)
        if (BrowseQualifies(list, r, code)) return r - fromRow;
    return 0;
}

int BrowseStep(const lists::ListModel& list, int code) {
    const int distance = BrowseDistance(list, list.currentRow(), code);
    if (distance == 0)
        platform::MsgBox(code < 0 ? QString::fromUtf8("Ensimmäinen kenttä.")
                                  : QStringLiteral("Viimeinen kenttä."),
                         platform::MsgIcon::Information);
    return distance;
}

int BrowseCodeForKey(int key, Qt::KeyboardModifiers modifiers) {
    if (key != Qt::Key_PageUp && key != Qt::Key_PageDown) return 0;
    const Qt::KeyboardModifiers m =
        modifiers & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    int code = 0;
    if (m == Qt::NoModifier)
        code = browse::Any;
    else if (m == Qt::ShiftModifier)
        code = browse::Unchecked;
    else if (m == Qt::ControlModifier)
        code = browse::Checked;
    else if (m == (Qt::ControlModifier | Qt::ShiftModifier))
        code = browse::Failed;
    else if (m == Qt::AltModifier)
        code = browse::Caption;
    return key == Qt::Key_PageUp ? -code : code;
}

QStringList BrowseMenuTexts(int direction) {
    const bool up = direction < 0;
    return {up ? QStringLiteral("Tarkastamaton (Shift+PgUp)") : QStringLiteral("Tarkastamaton (Shift+PgDn)"),
            up ? QStringLiteral("Tarkastettu (Ctrl+PgUp)") : QStringLiteral("Tarkastettu (Ctrl+PgDn)"),
            QStringLiteral("-"),
            up ? QString::fromUtf8("Ei vaatimuksia täyttävä (Ctrl+Shift+PgUp)")
               : QString::fromUtf8("Ei vaatimuksia täyttävä (Ctrl+Shift+PgDn)"),
            QString::fromUtf8("Vaatimukset täyttävä"),
            QStringLiteral("-"),
            QStringLiteral("&M Mittauksia vaativa"),
            QStringLiteral("&K Katselmusta vaativa"),
            QStringLiteral("&A Ainestodistusta yms. vaativa"),
            QStringLiteral("-"),
            QStringLiteral("&1 Siltakohtainen"),
            QStringLiteral("&2 KLVn mukainen"),
            QStringLiteral("&3 Ohjeellinen"),
            QStringLiteral("-"),
            QStringLiteral("Laatusuunnitelmateksti"),
            QStringLiteral("Tarkastus/mittausraporttiteksti"),
            QStringLiteral("Laaturaporttiteksti"),
            QString::fromUtf8("Viitetiedoston sisältävä")};
}

// ---------------------------------------------------------------- the requirement card

std::array<QString, 4> RowMenuTexts(const QString& kind) {
    if (lists::isQuantityKind(kind))
        return {QString::fromUtf8("Lisää uusi työvaihe"), QStringLiteral("Kloonaa työvaihe"),
                QString::fromUtf8("Lisää uusi työvaihe luettelon loppuun"),
                QStringLiteral("Poista työvaihe")};
    if (lists::isQualityKind(kind))
        return {QString::fromUtf8("Lisää uusi laatuvaatimus"), QStringLiteral("Kloonaa laatuvaatimus"),
                QString::fromUtf8("Lisää uusi laatuvaatimus luettelon loppuun"),
                QStringLiteral("Poista laatuvaatimus")};
    return {QString::fromUtf8("Lisää uusi rivi"), QStringLiteral("Kloonaa rivi"),
            QString::fromUtf8("Lisää uusi rivi luettelon loppuun"), QStringLiteral("Poista rivi")};
}

bool ProtectedRequirement(const QString& type) {
    return type.startsWith(QLatin1Char('1')) || type.startsWith(QLatin1Char('2'));
}

CardRules EnableControlsForm5(const QString& kind, int programMode, const QStringList& comboTexts,
                              int textCount) {
    CardRules r;
    r.textEditable.assign(std::max(textCount, 0), 1);
    r.comboEditable.assign(comboTexts.size(), 1);
    auto combo = [&](int i) { return i < comboTexts.size() ? comboTexts[i] : QString(); };
    r.openDocument = !combo(kDocumentCombo).isEmpty();
    r.openAttachment = !combo(kAttachmentCombo).isEmpty();
    if (kind != lists::kind::Requirements) return r;

    auto text = [&](int i, bool editable) {
        if (i < static_cast<int>(r.textEditable.size())) r.textEditable[i] = editable;
    };
    auto drop = [&](int from, int to, bool editable) {
        for (int i = from; i <= to; ++i)
            if (i < static_cast<int>(r.comboEditable.size())) r.comboEditable[i] = editable;
    };
    const bool prot = ProtectedRequirement(combo(kTypeCombo));
    if (programMode == 1) {
        for (int i = 1; i <= 5; ++i)
            text(i, false);
        drop(kDocumentCombo, kFactorCombo, false);
        drop(kWeightCombo, kWeightCombo, prot);
        if (!prot) r.setCombo.emplace_back(kWeightCombo, QString());
    } else if (programMode == 2) {
        if (prot) {
            text(0, false);
            drop(0, kWeightCombo, false);
        } else {
            text(0, true);
            drop(kTypeCombo, kTypeCombo, true);
            drop(kWeightCombo, kWeightCombo, false);
            r.setCombo.emplace_back(kWeightCombo, QString());
        }
        if (firstUpper(combo(kResultCombo)) == QLatin1Char('E')) {
            drop(0, kWeightCombo, false);
            text(4, true);
            text(5, true);
            if (combo(kFactorCombo).isEmpty()) r.setCombo.emplace_back(kFactorCombo, QStringLiteral("0,0"));
            drop(kFactorCombo, kFactorCombo, prot);
        } else {
            if (!prot) drop(0, kMethodCombo, true);
            text(4, false);
            text(5, false);
            drop(kFactorCombo, kFactorCombo, false);
        }
        const QString method = combo(kMethodCombo);
        const bool measured =
            method.isEmpty() || lists::BlankString(method.left(1)) || firstUpper(method) == QLatin1Char('M');
        drop(12, 15, measured);
    }
    return r;
}

bool ContractorTypeRefused(int programMode, const QString& kind, const QString& type,
                           const QString& rowType) {
    return programMode == 2 && kind == lists::kind::Requirements && ProtectedRequirement(type) &&
           RemoveInfo(type).trimmed() != rowType.trimmed();
}

QString contractorTypeMessage() {
    return QStringLiteral("Urakoitsija voi antaa vain ohjeellisia (Ty = 3) laatuvaatimuksia.");
}

bool NeedsIdentifier(const QString& kind) {
    return kind == lists::kind::Requirements;
}

QString identifierMessage() {
    return QStringLiteral("Laatuvaatimuksella on oltava numero tai kirjaintunnus.");
}

bool CheckAllowed(const QString& kind, int programMode) {
    return kind == lists::kind::Requirements && (programMode == 2 || programMode == 3);
}

bool WriteCardToRow(lists::ListModel& list, int row, const std::vector<CardField>& fields,
                    const QStringList& texts, const QStringList& combos) {
    if (row < 1 || row > list.rows()) return false;
    bool changed = false;
    for (const CardField& f : fields) {
        const QStringList& source = f.longText ? texts : combos;
        if (f.index >= source.size()) continue;
        const QString value = f.longText ? source[f.index] : RemoveInfo(source[f.index]);
        if (list.cell(row, f.column) == value) continue;
        list.setCell(row, f.column, value);
        changed = true;
    }
    return changed;
}

} // namespace documents
