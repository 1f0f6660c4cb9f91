#include "calc/ProjectCompare.h"

#include "calc/NumberText.h"
#include "lists/Columns.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "platform/Rtf.h"

#include <QHash>
#include <QHashFunctions>
#include <QTextDocument>
#include <algorithm>
#include <cmath>
#include <functional>

namespace calc {

namespace {

const char* const kDocumentNames[3] = {"Rakennussuunnitelmaselostus", "Koodaussuunnitelma",
                                       "Urakan laatusuunnitelma"};
const char* const kPictureNames[6] = {"Ominaistietokortin sivukuva",    "Ominaistietokortin poikkileikkaus",
                                      "Ominaistietokortin logo",        "Panostilakortin sivukuva",
                                      "Panostilakortin poikkileikkaus", "Panostilakortin merkkikilpi"};

// The names of the fields as the windows label them; an empty name gives the control's own.
QString basicDataField(bool combo, int i) {
    static const char* const texts[] = {"Sillan nimi",
                                        "Tieosa",
                                        "Suunn. nro",
                                        "Jm (m)",
                                        "Kok. pituus (m)",
                                        "Va (m)",
                                        "Kannen pit. (m)",
                                        "Vinous (gon)",
                                        "Hl (m)",
                                        "Suunnittelija: Yritys",
                                        "Urakoitsija: Yritys",
                                        "Tilaaja",
                                        "Kohtis. va (m)",
                                        "Alikulkukorkeus (m)"};
    static const char* const combos[] = {"Sillan tyyppi",
                                         "Suun. kuorma",
                                         "Tiepiiri",
                                         "Yksikköhintojen i",
                                         "Rahayksikkö",
                                         "Suunnittelija: Laati",
                                         "Suunnittelija: Tarkasti",
                                         "Suunnittelija: Tarkasti, pvm",
                                         "Suunnittelija: Laati, pvm",
                                         "Kunta",
                                         "Kustannus i",
                                         "Yhteiskustannus %",
                                         "ALV %",
                                         "Vuosi (i = 100)",
                                         "Urakoitsija: Tarkasti, pvm",
                                         "Urakoitsija: Laati, pvm",
                                         "Urakoitsija: Tarkasti",
                                         "Urakoitsija: Laati"};
    if (combo) return i < static_cast<int>(std::size(combos)) ? QString::fromUtf8(combos[i]) : QString();
    return i < static_cast<int>(std::size(texts)) ? QString::fromUtf8(texts[i]) : QString();
}

// The characteristics card's drop-down lists by number.
QString cardComboField(int i) {
    static const char* const combos[] = {"Perustamistapa, maatuet",
                                         "Perustamistapa, välituet",
                                         "Välituet, perustus: K (2. rivi)",
                                         "Välituet, perustus: K (1. rivi)",
                                         "Välituet, pystyrakenne: K (2. rivi)",
                                         "Välituet, pystyrakenne: K (1. rivi)",
                                         "Maatuet, perustus: K (2. rivi)",
                                         "Maatuet, perustus: K (1. rivi)",
                                         "Siltalaji",
                                         "Toimenpide",
                                         "Betonielem.: K",
                                         "Tukien betoniteräs: Lk",
                                         "Maatuet, pystyrakenne: K (2. rivi)",
                                         "Maatuet, pystyrakenne: K (1. rivi)",
                                         "Betonia: K",
                                         "Sahatavaraa: T",
                                         "Liimapuuta: L",
                                         "Betoniterästä: Lk",
                                         "Jänneterästä: Lk",
                                         "Rakenneterästä: Lk"};
    return i < static_cast<int>(std::size(combos)) ? QString::fromUtf8(combos[i]) : QString();
}

// The characteristics card's fields by number: the text boxes by their place on the card.
QString cardField(bool combo, int i) {
    if (combo) return cardComboField(i);
    static const char* const top[] = {"Vapaa korkeus (m)", "Päällysrak. rak. korkeus, aukossa (m)",
                                      "Päällysrak. rak. korkeus, tuella (m)", "Kokonaispinta-ala HlxL (m2)",
                                      "Pinta-ala A (m2)"};
    if (i < 5) return QString::fromUtf8(top[i]);
    static const char* const costs[] = {"koko silta",     "per m2",  "yhteiskustannukset",
                                        "päällysrakenne", "indeksi", "indeksin perusvuosi"};
    if (i < 17)
        return QString::fromUtf8(i < 11 ? "Arvio, " : "Toteuma, ") + QString::fromUtf8(costs[(i - 5) % 6]);
    static const char* const supports[] = {"Maatuet, perustus", "Maatuet, pystyrakenne", "Välituet, perustus",
                                           "Välituet, pystyrakenne"};
    static const char* const supportRows[] = {"1. rivi (m3)", "2. rivi (m3)", "kg", "kg/m3", "m2"};
    if (i < 37)
        return QString::fromUtf8(supports[(i - 17) % 4]) + QStringLiteral(": ") +
               QString::fromUtf8(supportRows[(i - 17) / 4]);
    static const char* const piles[] = {"paaluja (kpl)", "paalujen pituus (m)", "paalujen koko"};
    if (i < 43)
        return QString::fromUtf8(i < 40 ? "Maatuet, " : "Välituet, ") +
               QString::fromUtf8(piles[(i - 37) % 3]);
    // The materials of the superstructure: an amount and its ratio field.
    struct Material {
        int amount;
        const char* name;
        const char* unit;
        const char* ratioUnit;
    };
    static const Material materials[] = {
        {43, "Betonielem.", "m3", "m3/A"},    {45, "Sahatavaraa", "m3", "m3/A"},
        {47, "Betonia", "m3", "m3/A"},        {49, "Maalauspinta-ala", "m2", "m2/rak.teräs t"},
        {51, "Betoniterästä", "kg", "kg/m3"}, {53, "Muottipintoja", "m2", "m2/m3"},
        {55, "Jänneterästä", "kg", "kg/m3"},  {57, "Rakenneterästä", "kg", "kg/A"},
        {59, "Liimapuuta", "m3", "m3/A"}};
    for (const Material& m : materials)
        if (i == m.amount || i == m.amount + 1)
            return QString::fromUtf8(m.name) + QStringLiteral(" (") +
                   QString::fromUtf8(i == m.amount ? m.unit : m.ratioUnit) + QLatin1Char(')');
    return i == 61 ? QStringLiteral("Lisätiedot") : QString();
}

QString chargeCardField(bool combo, int i) {
    static const char* const texts[] = {
        "Sillan numero",       "Kunta",        "Tien numero ja tien (jakson nimi)",
        "Tie/tieosa/etäisyys", "Rakenne",      "Jänsum/VAsum",
        "MaxJän/MaxVa",        "Jänlkm/valkm", "Huom."};
    static const char* const combos[] = {"Tiemestaripiiri", "Vas/oik", "Päivitys pvm", "Vesitösilta",
                                         "Panostila päivitys"};
    if (combo) return i < static_cast<int>(std::size(combos)) ? QString::fromUtf8(combos[i]) : QString();
    return i < static_cast<int>(std::size(texts)) ? QString::fromUtf8(texts[i]) : QString();
}

QString fieldName(int window, bool combo, int i) {
    QString name;
    if (window == 0)
        name = basicDataField(combo, i);
    else if (window == 2)
        name = cardField(combo, i);
    else if (window == 3)
        name = chargeCardField(combo, i);
    if (!name.isEmpty()) return name;
    return (combo ? QStringLiteral("Combo1(%1)") : QStringLiteral("Text1(%1)")).arg(i);
}

QString smallListName(int window, int index) {
    if (window == 0 && index == 0) return QStringLiteral("Sillan osanumerointi");
    if (window == 0 && index == 1) return QStringLiteral("Muutokset (suunnittelija)");
    if (window == 0 && index == 2) return QStringLiteral("Muutokset (urakoitsija)");
    if (window == 3 && index == 0) return QStringLiteral("Panostilat");
    return QStringLiteral("Luettelo %1").arg(index + 1);
}

QString listKindOf(int window, int index) {
    if (window == 1) return index == 0 ? lists::kind::QuantityList : lists::kind::Requirements;
    if (window == 3) return lists::kind::ChargeChambers;
    return index == 0 ? lists::kind::BridgeParts : lists::kind::Changes;
}

// A cell as one line, for keys and short texts.
QString oneLine(QStringView text) {
    QString out = text.toString();
    out.replace(QLatin1String("\r\n"), QLatin1String(" "));
    out.replace(QLatin1Char('\n'), QLatin1Char(' '));
    out.replace(QLatin1Char('\r'), QLatin1Char(' '));
    return out.trimmed();
}

// The identity of a row: its level (-1 for a blank row, which has none), its caption path and
// its own part (a caption: nothing more; a row: its number, for a requirement, and its
// description). The parts are views into the list's cells, the hash made once.
struct RowKey {
    int level = -1;
    QStringView caption, subcaption, number, text;
    size_t hash = 0;
    bool isEmpty() const { return level < 0; }
    bool operator==(const RowKey& o) const {
        return level == o.level && caption == o.caption && subcaption == o.subcaption && number == o.number &&
               text == o.text;
    }
};

size_t qHash(const RowKey& key, size_t seed = 0) {
    return key.hash ^ seed;
}

// The identity of every row of a list, and the caption and subcaption rows that govern it (0
// where none does), from which its name for people is made when it is reported.
struct KeyedRows {
    std::vector<RowKey> keys;
    std::vector<int> caption;
    std::vector<int> subcaption;
};

int headingColumnOf(ChangeSource source) {
    return source == ChangeSource::Requirement ? lists::requirementCol::kText
                                               : lists::quantityCol::kWorkPhase;
}

KeyedRows keyRows(const lists::ListModel& list, ChangeSource source) {
    const bool requirements = source == ChangeSource::Requirement;
    const int heading = headingColumnOf(source);
    KeyedRows out;
    out.keys.resize(list.rows());
    out.caption.assign(list.rows(), 0);
    out.subcaption.assign(list.rows(), 0);
    // The identities of the governing rows: a caption by its littera, or by its heading when
    // it has none (the road works); a subcaption by its littera.
    QStringView caption, subcaption;
    int captionRow = 0, subcaptionRow = 0;
    for (int r = 1; r <= list.rows(); ++r) {
        if (lists::BlankListItem(list, r).blank) continue;
        RowKey& key = out.keys[r - 1];
        key.level = ListViewCaption(list, r, heading).level;
        const QStringView littera = QStringView(list.cell(r, 1)).trimmed();
        if (key.level == 1) {
            caption = littera.isEmpty() ? QStringView(list.cell(r, heading)).trimmed() : littera;
            subcaption = {};
            captionRow = r;
            subcaptionRow = 0;
        } else if (key.level == 2) {
            subcaption = littera;
            subcaptionRow = r;
        }
        key.caption = caption;
        if (key.level != 1) out.caption[r - 1] = captionRow;
        if (key.level == 0) {
            key.subcaption = subcaption;
            out.subcaption[r - 1] = subcaptionRow;
            if (requirements)
                key.number = QStringView(list.cell(r, lists::requirementCol::kNumber)).trimmed();
            key.text = QStringView(list.cell(r, heading)).trimmed();
        } else if (key.level == 2) {
            key.subcaption = subcaption;
        }
        key.hash = qHashMulti(0, key.level, key.caption, key.subcaption, key.number, key.text);
    }
    return out;
}

// A row's name for people: the litteras of its caption path, then its own littera and heading
// (a caption) or its description (a requirement with its number; a row without one by its first
// text).
QString rowName(const lists::ListModel& list, const KeyedRows& keyed, int r, ChangeSource source) {
    const int heading = headingColumnOf(source);
    auto pathPart = [&](int row) {
        const QString littera = list.cell(row, 1).trimmed().toString();
        return littera.isEmpty() ? oneLine(list.cell(row, heading).toString()) : littera;
    };
    QStringList parts;
    const int level = ListViewCaption(list, r, heading).level;
    if (keyed.caption[r - 1] > 0) parts << pathPart(keyed.caption[r - 1]);
    if (keyed.subcaption[r - 1] > 0) parts << pathPart(keyed.subcaption[r - 1]);
    const QString littera = list.cell(r, 1).trimmed().toString();
    QString own = oneLine(list.cell(r, heading).toString());
    if (level > 0) {
        if (!littera.isEmpty()) own = littera + QLatin1Char(' ') + own;
    } else if (source == ChangeSource::Requirement) {
        const QString number = list.cell(r, lists::requirementCol::kNumber).trimmed().toString();
        if (!number.isEmpty()) own = own.isEmpty() ? number : number + QLatin1Char(' ') + own;
    }
    if (own.isEmpty()) own = oneLine(list.cell(r, lists::BlankListItem(list, r).firstNonBlankCol).toString());
    parts << own;
    return parts.join(QStringLiteral(" / "));
}

// Pairs the keyed items of two sequences: items of the same key in the order they stand in.
// With `same`, a first pass pairs each new item with the first unpaired old item of its key
// that `same` says is identical (among the first few, so that the work stays linear); the rest
// of a key then pair in order. Items with an empty key take no part. One hash look-up per item
// and pass.
struct Pairing {
    std::vector<int> oldToNew; // -1: no partner
    std::vector<int> newToOld;
};

template <typename Key>
Pairing pairKeys(const std::vector<Key>& older, const std::vector<Key>& newer,
                 const std::function<bool(int oldIndex, int newIndex)>& same = {}) {
    Pairing p;
    p.oldToNew.assign(older.size(), -1);
    p.newToOld.assign(newer.size(), -1);
    // The old items of each key as a list in their order, from which paired items drop out.
    QHash<Key, int> head;
    head.reserve(static_cast<qsizetype>(older.size()));
    std::vector<int> next(older.size(), -1), prev(older.size(), -1);
    for (int i = static_cast<int>(older.size()) - 1; i >= 0; --i) {
        if (older[i].isEmpty()) continue;
        auto it = head.find(older[i]);
        if (it == head.end()) {
            head.insert(older[i], i);
        } else {
            next[i] = *it;
            prev[*it] = i;
            *it = i;
        }
    }
    auto take = [&](typename QHash<Key, int>::iterator it, int i, int j) {
        if (prev[i] >= 0)
            next[prev[i]] = next[i];
        else
            *it = next[i];
        if (next[i] >= 0) prev[next[i]] = prev[i];
        p.oldToNew[i] = j;
        p.newToOld[j] = i;
    };
    constexpr int kLook = 16;
    for (int pass = same ? 0 : 1; pass < 2; ++pass) {
        for (int j = 0; j < static_cast<int>(newer.size()); ++j) {
            if (newer[j].isEmpty() || p.newToOld[j] >= 0) continue;
            auto it = head.find(newer[j]);
            if (it == head.end() || *it < 0) continue;
            int i = *it;
            if (pass == 0) {
                bool found = false;
                for (int looked = 0; i >= 0 && looked < kLook; ++looked, i = next[i]) {
                    if (same(i, j)) {
                        found = true;
                        break;
                    }
                }
                if (!found) continue;
            }
            take(it, i, j);
        }
    }
    return p;
}

// The order to report two paired sequences in: the newer one in order, and each old item
// without a partner after the partner of the nearest paired old item above it. Items with an
// empty key are left out. Each entry is (old index or -1, new index or -1, and for an item
// without a partner the index of the other sequence's item it follows, or -1).
struct Step {
    int oldIndex;
    int newIndex;
    int follows;
};

template <typename Key>
std::vector<Step> reportOrder(const Pairing& p, const std::vector<Key>& older,
                              const std::vector<Key>& newer) {
    const int n = static_cast<int>(newer.size());
    // Unpaired old items, by the new item they follow (slot 0: before the first).
    std::vector<std::vector<int>> after(n + 1);
    int anchor = 0;
    for (int i = 0; i < static_cast<int>(older.size()); ++i) {
        if (older[i].isEmpty()) continue;
        if (p.oldToNew[i] >= 0)
            anchor = p.oldToNew[i] + 1;
        else
            after[anchor].push_back(i);
    }
    std::vector<Step> out;
    for (int i : after[0])
        out.push_back({i, -1, -1});
    int lastOld = -1; // the old partner of the nearest paired new item so far
    for (int j = 0; j < n; ++j) {
        if (!newer[j].isEmpty()) {
            out.push_back({p.newToOld[j], j, p.newToOld[j] >= 0 ? -1 : lastOld});
            if (p.newToOld[j] >= 0) lastOld = p.newToOld[j];
        }
        for (int i : after[j + 1])
            out.push_back({i, -1, j});
    }
    return out;
}

// The row amount of the cost estimate: quantity x unit price when both are given.
float rowCost(const lists::ListModel& list, int r) {
    const QStringView quantity = list.cell(r, lists::quantityCol::kQuantity);
    const QStringView price = list.cell(r, lists::quantityCol::kUnitPrice);
    if (lists::BlankString(quantity) || lists::BlankString(price)) return 0;
    return static_cast<float>(CustomVal(quantity) * CustomVal(price));
}

// The row's cells up to the list's last data column.
QStringList dataCells(const lists::ListModel& list, int row) {
    QStringList all = list.row(row).cells.toStringList();
    all.resize(std::min<qsizetype>(all.size(), list.lastDataCol()));
    return all;
}

// The inspection mark by its first letter: "K" fulfilled, "E" not, anything else not inspected.
QChar inspectionMark(QStringView text) {
    const QChar c = text.isEmpty() ? QChar() : text.front();
    return c == u'K' || c == u'E' ? c : QChar();
}

void compareList(const lists::ListModel& older, const lists::ListModel& newer, ChangeSource source,
                 ProjectComparison& out) {
    const KeyedRows a = keyRows(older, source);
    const KeyedRows b = keyRows(newer, source);
    // Rows whose cells are all the same pair first, so that rows of one description that moved
    // past each other are no change; the others of the same identity then pair in order.
    const int columns = std::max(older.lastDataCol(), newer.lastDataCol());
    std::vector<char> identical(newer.rows(), 0);
    auto same = [&](int i, int j) {
        for (int col = 1; col <= columns; ++col)
            if (older.cell(i + 1, col) != newer.cell(j + 1, col)) return false;
        identical[j] = 1;
        return true;
    };
    const Pairing p = pairKeys(a.keys, b.keys, same);
    const bool quantities = source == ChangeSource::Quantity;
    for (const Step& s : reportOrder(p, a.keys, b.keys)) {
        RowChange c;
        c.list = source;
        c.oldRow = s.oldIndex + 1;
        c.newRow = s.newIndex + 1;
        if (s.newIndex < 0) c.nearNewRow = s.follows + 1;
        if (s.oldIndex < 0) c.nearOldRow = s.follows + 1;
        if (quantities) {
            if (c.oldRow > 0) c.oldCost = rowCost(older, c.oldRow);
            if (c.newRow > 0) c.newCost = rowCost(newer, c.newRow);
        }
        if (s.newIndex < 0) {
            c.kind = ChangeKind::Removed;
            c.key = rowName(older, a, c.oldRow, source);
            c.oldCells = dataCells(older, c.oldRow);
        } else if (s.oldIndex < 0) {
            c.kind = ChangeKind::Added;
            c.key = rowName(newer, b, c.newRow, source);
            c.newCells = dataCells(newer, c.newRow);
        } else {
            if (identical[s.newIndex]) continue;
            for (int col = 1; col <= columns; ++col)
                if (older.cell(c.oldRow, col) != newer.cell(c.newRow, col)) c.columns.push_back(col);
            if (c.columns.empty()) continue;
            c.kind = ChangeKind::Changed;
            c.oldCells = dataCells(older, c.oldRow);
            c.newCells = dataCells(newer, c.newRow);
            c.key = rowName(newer, b, c.newRow, source);
            const int mark = lists::requirementCol::kFulfilled;
            if (source == ChangeSource::Requirement &&
                inspectionMark(older.cell(c.oldRow, mark)) != inspectionMark(newer.cell(c.newRow, mark)))
                ++out.markChanges;
        }
        out.rows.push_back(std::move(c));
    }
}

// A small list's row as one text: its data cells, without the empty ones at the end.
QString rowText(const lists::ListModel& list, int r) {
    QStringList cells;
    for (int c = 1; c <= list.lastDataCol(); ++c)
        cells << oneLine(list.cell(r, c));
    while (!cells.isEmpty() && cells.last().isEmpty())
        cells.removeLast();
    return cells.join(QStringLiteral("; "));
}

// The rows of a window's small list: added and removed rows (a changed row is both).
void compareSmallList(const lists::ListModel& older, const lists::ListModel& newer, int window,
                      const QString& name, ProjectComparison& out) {
    auto texts = [](const lists::ListModel& list) {
        std::vector<QString> t(list.rows());
        for (int r = 1; r <= list.rows(); ++r)
            if (!lists::BlankListItem(list, r).blank) t[r - 1] = rowText(list, r);
        return t;
    };
    const std::vector<QString> a = texts(older);
    const std::vector<QString> b = texts(newer);
    const Pairing p = pairKeys(a, b);
    for (const Step& s : reportOrder(p, a, b)) {
        if (s.oldIndex >= 0 && s.newIndex >= 0) continue;
        FieldChange f;
        f.window = window;
        f.field = name;
        if (s.newIndex < 0) {
            f.kind = ChangeKind::Removed;
            f.oldText = a[s.oldIndex];
        } else {
            f.kind = ChangeKind::Added;
            f.newText = b[s.newIndex];
        }
        out.fields.push_back(std::move(f));
    }
}

void compareTexts(const QStringList& older, const QStringList& newer, int window, bool combos,
                  ProjectComparison& out) {
    const int n = static_cast<int>(std::max(older.size(), newer.size()));
    for (int i = 0; i < n; ++i) {
        const QString a = older.value(i);
        const QString b = newer.value(i);
        if (a != b) out.fields.push_back({ChangeKind::Changed, window, fieldName(window, combos, i), a, b});
    }
}

QString plainText(const QByteArray& rtf) {
    if (rtf.isEmpty()) return QString();
    QTextDocument document;
    if (!platform::ReadRtf(rtf, document)) return QString::fromLatin1(rtf);
    return platform::plainTextWithCrLf(document);
}

// A text document: its first differing paragraph, or a note that only the formatting changed.
void compareDocument(const QByteArray& older, const QByteArray& newer, int n, ProjectComparison& out) {
    if (older == newer) return;
    const QString name = QString::fromUtf8(kDocumentNames[n]);
    const QStringList a = plainText(older).split(QStringLiteral("\r\n"));
    const QStringList b = plainText(newer).split(QStringLiteral("\r\n"));
    if (a == b) {
        out.fields.push_back({ChangeKind::Changed, 1, name + QStringLiteral(" (vain muotoilu)"), {}, {}});
        return;
    }
    qsizetype k = 0;
    while (k < a.size() && k < b.size() && a[k] == b[k])
        ++k;
    out.fields.push_back(
        {ChangeKind::Changed, 1, name + QStringLiteral(", kappale %1").arg(k + 1), a.value(k), b.value(k)});
}

QString pictureText(const ProjectVersion::Picture& p) {
    static const char* const types[] = {"", "BMP", "WMF", "ICO", "EMF"};
    if (p.type == 0 || p.bytes.isEmpty()) return QString();
    const QString type = p.type > 0 && p.type < 5 ? QString::fromLatin1(types[p.type]) : QStringLiteral("?");
    return type + QStringLiteral(", %1 tavua").arg(p.bytes.size());
}

void comparePicture(const ProjectVersion::Picture& older, const ProjectVersion::Picture& newer, int k,
                    ProjectComparison& out) {
    const QString a = pictureText(older);
    QString b = pictureText(newer);
    if (a == b && (a.isEmpty() || older.bytes == newer.bytes)) return;
    // The same type and size but other bytes: say that the picture itself changed.
    if (a == b) b += QStringLiteral(", eri kuva");
    const ChangeKind kind = a.isEmpty()   ? ChangeKind::Added
                            : b.isEmpty() ? ChangeKind::Removed
                                          : ChangeKind::Changed;
    out.fields.push_back({kind, 0, QString::fromUtf8(kPictureNames[k]), a, b});
}

// The row amounts per main work phase, in list order.
struct PhaseSums {
    std::vector<QString> keys;
    std::vector<QString> labels;
    std::vector<float> sums;
};

PhaseSums phaseSums(const lists::ListModel& list) {
    PhaseSums out;
    QHash<QString, int> index;
    int current = -1;
    for (int r = 1; r <= list.rows(); ++r) {
        const CaptionInfo caption = ListViewCaption(list, r, lists::quantityCol::kWorkPhase);
        if (caption.level == 1) {
            const QString littera = list.cell(r, 1).trimmed().toString();
            const QString key = littera.isEmpty() ? oneLine(caption.text).toUpper() : littera;
            auto it = index.find(key);
            if (it == index.end()) {
                it = index.insert(key, static_cast<int>(out.keys.size()));
                out.keys.push_back(key);
                out.labels.push_back(littera.isEmpty() ? oneLine(caption.text)
                                                       : littera + QLatin1Char(' ') + oneLine(caption.text));
                out.sums.push_back(0);
            }
            current = *it;
            continue;
        }
        const float amount = rowCost(list, r);
        if (amount == 0) continue;
        if (current < 0) {
            // Priced rows above the first work phase.
            current = static_cast<int>(out.keys.size());
            index.insert(QString(), current);
            out.keys.push_back(QStringLiteral(" "));
            out.labels.push_back(QStringLiteral("(ennen ensimmäistä työvaihetta)"));
            out.sums.push_back(0);
        }
        out.sums[current] += amount;
    }
    return out;
}

void comparePhases(const lists::ListModel& older, const lists::ListModel& newer, ProjectComparison& out) {
    const PhaseSums a = phaseSums(older);
    const PhaseSums b = phaseSums(newer);
    const Pairing p = pairKeys(a.keys, b.keys);
    for (const Step& s : reportOrder(p, a.keys, b.keys)) {
        PhaseCost c;
        c.inOld = s.oldIndex >= 0;
        c.inNew = s.newIndex >= 0;
        c.label = c.inNew ? b.labels[s.newIndex] : a.labels[s.oldIndex];
        if (c.inOld) c.oldSum = a.sums[s.oldIndex];
        if (c.inNew) c.newSum = b.sums[s.newIndex];
        out.phases.push_back(c);
    }
}

void compareQualityGroups(const QualityRecord& older, const QualityRecord& newer, ProjectComparison& out) {
    auto keys = [](const QualityRecord& q) {
        std::vector<QString> k;
        for (int g = 1; g <= q.groupCount; ++g) {
            const QString littera = q.groupLittera[g].trimmed();
            k.push_back(littera.isEmpty() ? oneLine(q.groupText[g]).toUpper() : littera);
        }
        return k;
    };
    const std::vector<QString> a = keys(older);
    const std::vector<QString> b = keys(newer);
    const Pairing p = pairKeys(a, b);
    for (const Step& s : reportOrder(p, a, b)) {
        QualityGroup g;
        g.inOld = s.oldIndex >= 0;
        g.inNew = s.newIndex >= 0;
        const QualityRecord& named = g.inNew ? newer : older;
        const int slot = (g.inNew ? s.newIndex : s.oldIndex) + 1;
        g.littera = named.groupLittera[slot].trimmed();
        g.text = oneLine(named.groupText[slot]);
        if (g.inOld) {
            g.oldMax = older.groupMax[s.oldIndex + 1];
            g.oldRealized = older.groupRealized[s.oldIndex + 1];
        }
        if (g.inNew) {
            g.newMax = newer.groupMax[s.newIndex + 1];
            g.newRealized = newer.groupRealized[s.newIndex + 1];
        }
        out.qualityGroups.push_back(g);
    }
}

QString rowSummary(const QStringList& cells, ChangeSource source) {
    // The cells that are not part of the row's name.
    const int firstShown = source == ChangeSource::Requirement ? 4 : 3;
    QStringList parts;
    for (int c = firstShown; c <= cells.size(); ++c) {
        const QString text = oneLine(cells[c - 1]);
        if (!text.isEmpty()) parts << ColumnName(source, c) + QStringLiteral(": ") + text;
    }
    return parts.join(QStringLiteral("; "));
}

void makeLines(ProjectComparison& out) {
    out.lines.reserve(out.rows.size() + out.fields.size());
    for (int i = 0; i < static_cast<int>(out.rows.size()); ++i) {
        const RowChange& c = out.rows[i];
        ChangeLine line;
        line.kind = c.kind;
        line.source = c.list;
        line.change = i;
        line.place = ChangeSourceText(c.list);
        line.key = c.key;
        if (c.kind != ChangeKind::Changed) {
            line.oldText = rowSummary(c.oldCells, c.list);
            line.newText = rowSummary(c.newCells, c.list);
            out.lines.push_back(line);
            continue;
        }
        for (int col : c.columns) {
            line.column = ColumnName(c.list, col);
            line.oldText = c.oldCells.value(col - 1);
            line.newText = c.newCells.value(col - 1);
            out.lines.push_back(line);
            line.first = false;
        }
    }
    for (int i = 0; i < static_cast<int>(out.fields.size()); ++i) {
        const FieldChange& f = out.fields[i];
        ChangeLine line;
        line.kind = f.kind;
        line.source = ChangeSource::Field;
        line.change = i;
        line.place = WindowName(f.window);
        line.key = f.field;
        line.oldText = f.oldText;
        line.newText = f.newText;
        out.lines.push_back(line);
    }
}

const QString kOld = QStringLiteral("Vanha"), kNew = QStringLiteral("Uusi"),
              kChange = QStringLiteral("Muutos");

// The estimate's totals, and the building costs of each work phase.
void addCostSummary(const ProjectComparison& c, std::vector<SummaryRow>& out) {
    const QString unit = c.newInputs.moneyUnit.trimmed();
    const QString percent = QStringLiteral("Muutos %");
    out.push_back(
        {SummaryRow::Heading,
         QStringLiteral("KUSTANNUSARVIO") + (unit.isEmpty() ? QString() : QStringLiteral(" (") + unit + ")"),
         kOld, kNew, kChange, percent});
    for (const CostTotal& t : CostTotals(c))
        out.push_back({SummaryRow::Line, t.label, MoneyText(t.oldValue), MoneyText(t.newValue),
                       MoneyChangeText(t.newValue - t.oldValue), PercentChangeText(t.oldValue, t.newValue)});
    out.push_back({SummaryRow::Blank, {}, {}, {}, {}, {}});
    if (c.phases.empty()) return;
    out.push_back({SummaryRow::Heading, QStringLiteral("Rakennuskustannukset työvaiheittain"), kOld, kNew,
                   kChange, percent});
    const QString none = QStringLiteral("-");
    for (const PhaseCost& p : c.phases)
        out.push_back({SummaryRow::Line, p.label, p.inOld ? MoneyText(p.oldSum) : none,
                       p.inNew ? MoneyText(p.newSum) : none, MoneyChangeText(p.newSum - p.oldSum),
                       PercentChangeText(p.oldSum, p.newSum)});
    out.push_back({SummaryRow::Blank, {}, {}, {}, {}, {}});
}

// The bridge's quality number and the count of requirements whose mark changed.
void addQualitySummary(const ProjectComparison& c, std::vector<SummaryRow>& out) {
    out.push_back({SummaryRow::Heading, QStringLiteral("LAATU"), kOld, kNew, kChange, {}});
    QString qualityChange = QStringLiteral("-");
    if (c.oldHasRequirements && c.newHasRequirements) {
        // Both numbers have one decimal, as the summary shows them.
        const double d =
            std::round((QualityNumberValue(c.newQuality) - QualityNumberValue(c.oldQuality)) * 10) / 10;
        qualityChange = (d > 0 ? QStringLiteral("+") : QString()) + DecimalS(static_cast<float>(d), 1);
    }
    out.push_back({SummaryRow::Line,
                   QStringLiteral("SILLAN LAATULUKU"),
                   QualityNumberText(c.oldQuality, c.oldHasRequirements),
                   QualityNumberText(c.newQuality, c.newHasRequirements),
                   qualityChange,
                   {}});
    out.push_back({SummaryRow::Line,
                   QStringLiteral("Vaatimuksia, joiden arvostelu muuttui"),
                   {},
                   QString::number(c.markChanges),
                   {},
                   {}});
}

// The realized share (Tot%) of each work phase of the requirements.
void addQualityGroups(const ProjectComparison& c, std::vector<SummaryRow>& out) {
    if (c.qualityGroups.empty()) return;
    out.push_back({SummaryRow::Blank, {}, {}, {}, {}, {}});
    out.push_back(
        {SummaryRow::Heading, QStringLiteral("Toteutuma työvaiheittain (Tot%)"), kOld, kNew, kChange, {}});
    const QString none = QStringLiteral("-");
    for (const QualityGroup& g : c.qualityGroups) {
        const QString a = g.inOld ? GroupPercentText(g.oldMax, g.oldRealized) : none;
        const QString b = g.inNew ? GroupPercentText(g.newMax, g.newRealized) : none;
        QString d;
        if (a != none && b != none) {
            const double points =
                RoundHalfEven(g.newRealized / g.newMax * 100) - RoundHalfEven(g.oldRealized / g.oldMax * 100);
            d = (points > 0 ? QStringLiteral("+") : QString()) + QString::number(points);
        }
        out.push_back({SummaryRow::Line,
                       g.littera.isEmpty() ? g.text : g.littera + QLatin1Char(' ') + g.text,
                       a,
                       b,
                       d,
                       {}});
    }
}

std::vector<SummaryRow> makeSummary(const ProjectComparison& c) {
    std::vector<SummaryRow> out;
    addCostSummary(c, out);
    addQualitySummary(c, out);
    addQualityGroups(c, out);
    return out;
}

// The two checks of the charge chamber card that take the characteristics card's pictures.
void compareChecks(const QStringList& older, const QStringList& newer, ProjectComparison& out) {
    static const char* const checkNames[] = {"Käytä ominaistietokortin sivukuvaa",
                                             "Käytä ominaistietokortin poikkileikkauskuvaa"};
    auto checkText = [](const QString& v) {
        return v == QLatin1String("1")   ? QStringLiteral("Kyllä")
               : v == QLatin1String("2") ? QStringLiteral("Harmaa")
                                         : QStringLiteral("Ei");
    };
    for (int i = 0; i < std::max(older.size(), newer.size()); ++i) {
        const QString a = checkText(older.value(i));
        const QString b = checkText(newer.value(i));
        if (a != b)
            out.fields.push_back(
                {ChangeKind::Changed, 3,
                 i < 2 ? QString::fromUtf8(checkNames[i]) : QStringLiteral("Check1(%1)").arg(i), a, b});
    }
}

} // namespace

ProjectVersion::ProjectVersion() = default;
ProjectVersion::~ProjectVersion() = default;
ProjectVersion::ProjectVersion(ProjectVersion&&) noexcept = default;
ProjectVersion& ProjectVersion::operator=(ProjectVersion&&) noexcept = default;

const lists::ListModel& ProjectVersion::list(int window, int index) const {
    // Empty lists for what a version lacks, made once and kept for the life of the program.
    static const auto empties = [] {
        std::array<std::array<lists::ListModel*, 3>, 4> e;
        for (int w = 0; w < 4; ++w)
            for (int j = 0; j < 3; ++j) {
                e[w][j] = new lists::ListModel;
                e[w][j]->setKind(listKindOf(w, j));
            }
        return e;
    }();
    if (window >= 0 && window < 4 && index >= 0 && index < static_cast<int>(lists[window].size()) &&
        lists[window][index])
        return *lists[window][index];
    return *empties[std::clamp(window, 0, 3)][std::clamp(index, 0, 2)];
}

lists::ListModel& ProjectVersion::quantities() const {
    // The tags the estimate writes are the version's own; the list's texts stay as they are.
    return const_cast<lists::ListModel&>(list(1, 0));
}

const lists::ListModel& ProjectVersion::requirements() const {
    return list(1, 1);
}

int ProjectComparison::count(ChangeKind kind) const {
    const auto rowCount =
        std::count_if(rows.begin(), rows.end(), [kind](const RowChange& c) { return c.kind == kind; });
    const auto fieldCount =
        std::count_if(fields.begin(), fields.end(), [kind](const FieldChange& f) { return f.kind == kind; });
    return static_cast<int>(rowCount + fieldCount);
}

ProjectComparison CompareProjects(const ProjectVersion& older, const ProjectVersion& newer) {
    ProjectComparison out;
    out.oldName = older.name;
    out.newName = newer.name;

    // The estimate of each version by the program's own calculation.
    out.oldInputs = CostInputsOf(older.windows[0].Combo1);
    out.newInputs = CostInputsOf(newer.windows[0].Combo1);
    out.oldCosts = CalculateCosts(older.quantities(), out.oldInputs);
    out.newCosts = CalculateCosts(newer.quantities(), out.newInputs);
    comparePhases(older.quantities(), newer.quantities(), out);

    out.oldQuality = CalculateQualityIndex(older.requirements());
    out.newQuality = CalculateQualityIndex(newer.requirements());
    auto hasRequirements = [](const QualityRecord& q) {
        return q.countType1 + q.countType2 + q.countType3 > 0;
    };
    out.oldHasRequirements = hasRequirements(out.oldQuality);
    out.newHasRequirements = hasRequirements(out.newQuality);
    compareQualityGroups(out.oldQuality, out.newQuality, out);

    compareList(older.quantities(), newer.quantities(), ChangeSource::Quantity, out);
    compareList(older.requirements(), newer.requirements(), ChangeSource::Requirement, out);

    // The fields of the four windows, the rows of their small lists, the documents and pictures.
    for (int w = 0; w < 4; ++w) {
        compareTexts(older.windows[w].Text1, newer.windows[w].Text1, w, false, out);
        compareTexts(older.windows[w].Combo1, newer.windows[w].Combo1, w, true, out);
        if (w == 1) continue;
        const int n = static_cast<int>(std::max(older.lists[w].size(), newer.lists[w].size()));
        for (int j = 0; j < n; ++j)
            compareSmallList(older.list(w, j), newer.list(w, j), w, smallListName(w, j), out);
    }
    if (older.referenceItems != newer.referenceItems)
        out.fields.push_back({ChangeKind::Changed, 1, QStringLiteral("Viiteluettelo"),
                              older.referenceItems.join(QStringLiteral("; ")),
                              newer.referenceItems.join(QStringLiteral("; "))});
    compareChecks(older.checks, newer.checks, out);
    for (int n = 0; n < 3; ++n)
        compareDocument(older.documents[n], newer.documents[n], n, out);
    for (int k = 0; k < 6; ++k)
        comparePicture(older.pictures[k], newer.pictures[k], k, out);

    makeLines(out);
    out.summary = makeSummary(out);
    return out;
}

std::vector<CostTotal> CostTotals(const ProjectComparison& c) {
    const CostRecord& a = c.oldCosts;
    const CostRecord& b = c.newCosts;
    return {
        {QStringLiteral("Rakennuskustannukset, silta"), a.bridgeSum, b.bridgeSum},
        {QStringLiteral("Rakennuskustannukset, tietyöt"), a.roadSum, b.roadSum},
        {QStringLiteral("Sillan kustannukset"), a.bridgeRounded, b.bridgeRounded},
        {QStringLiteral("Tietyöt siltapaikalla"), a.roadRounded, b.roadRounded},
        {QStringLiteral("Sillan kokonaiskustannus"), CustomRound(a.bridgeRounded + a.roadRounded),
         CustomRound(b.bridgeRounded + b.roadRounded)},
    };
}

QString ChangeKindText(ChangeKind kind) {
    switch (kind) {
        case ChangeKind::Added:
            return QStringLiteral("Lisätty");
        case ChangeKind::Removed:
            return QStringLiteral("Poistettu");
        case ChangeKind::Changed:
            break;
    }
    return QStringLiteral("Muutettu");
}

QString ChangeSourceText(ChangeSource s) {
    switch (s) {
        case ChangeSource::Quantity:
            return QStringLiteral("Määräluettelo");
        case ChangeSource::Requirement:
            return QStringLiteral("Laatuvaatimukset");
        case ChangeSource::Field:
            break;
    }
    return QStringLiteral("Kentät");
}

QString WindowName(int window) {
    static const char* const names[4] = {"Perustiedot", "Yksityiskohtaiset tiedot", "Ominaistietokortti",
                                         "Panostilakortti"};
    return window >= 0 && window < 4 ? QString::fromUtf8(names[window]) : QString();
}

QString ColumnName(ChangeSource list, int column) {
    static const QStringList quantity = lists::quantityColumnHeaders();
    static const QStringList requirement = lists::requirementColumnHeaders();
    const QStringList& headers = list == ChangeSource::Quantity ? quantity : requirement;
    if (list != ChangeSource::Field && column >= 1 && column <= headers.size()) return headers[column - 1];
    return QStringLiteral("SARAKE %1").arg(column);
}

QString MoneyText(float value) {
    return value == 0 ? QStringLiteral("0,00") : MoneyS(value, 2);
}

QString MoneyChangeText(float change) {
    if (change == 0) return QStringLiteral("0,00");
    const QString text = MoneyS(change, 2);
    return text.startsWith(QLatin1Char('-')) ? text : QLatin1Char('+') + text;
}

QString PercentChangeText(float oldValue, float newValue) {
    if (oldValue == 0) return newValue == 0 ? QStringLiteral("0,0 %") : QStringLiteral("-");
    const float percent = (newValue - oldValue) / std::abs(oldValue) * 100;
    const QString text = DecimalS(percent, 1);
    return (percent > 0 && !text.startsWith(QLatin1Char('-')) ? QStringLiteral("+") : QString()) + text +
           QStringLiteral(" %");
}

QString QualityNumberText(const QualityRecord& record, bool hasRequirements) {
    if (!hasRequirements) return QStringLiteral("-");
    // The summary's "#.#" leaves "75," and ",5"; here the number stands alone in a column.
    QString text = FormatHashDotHash(record.qualityNumber);
    if (text.startsWith(QLatin1Char(','))) text.prepend(QLatin1Char('0'));
    if (text.endsWith(QLatin1Char(','))) text.chop(1);
    return text;
}

double QualityNumberValue(const QualityRecord& record) {
    return CustomVal(FormatHashDotHash(record.qualityNumber));
}

QString GroupPercentText(float max, float realized) {
    return max != 0 ? DecimalS(realized / max * 100, 0) : QStringLiteral("-");
}

} // namespace calc
