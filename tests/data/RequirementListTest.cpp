// The shipped requirement base list: the row editor finds its columns by their headers, the
// list engine classifies its rows by littera and capitals, and the quality number reads the
// type, weight and weight factor of every requirement. These tests hold the file to that.
#include "ShippedData.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

const QString kFile = QStringLiteral("Laatuvaatimukset2006.sl2");
constexpr int kColumns = 24;
const QString kRoadWorks = QStringLiteral("TIETYÖT SILTAPAIKALLA");

enum class Kind { Blank, Caption, Subcaption, RoadWorks, Requirement, Continuation };

struct Row {
    int line = 0; // 1-based line in the file, for the failure messages
    QStringList cells;
    Kind kind = Kind::Blank;
    QString cell(int column) const { return cells.at(column - 1); }
};

bool blank(const QString& text) {
    return text.trimmed().isEmpty();
}

// A heading in capitals: no lower-case letter and at least two upper-case ones.
bool capitals(const QString& text) {
    int upper = 0;
    for (const QChar c : text) {
        if ((c >= u'a' && c <= u'z') || c == u'å' || c == u'ä' || c == u'ö') return false;
        if ((c >= u'A' && c <= u'Z') || c == u'Å' || c == u'Ä' || c == u'Ö') ++upper;
    }
    return upper >= 2;
}

// Littera order compares 2110.1 as 2110.01, so that 2110.2 comes before 2110.12.
QString normalised(const QString& littera) {
    if (littera.size() != 6) return littera;
    return littera.left(5) + QLatin1Char('0') + littera.right(1);
}

bool otherCellsBlank(const Row& row, std::initializer_list<int> filled) {
    for (int c = 1; c <= kColumns; ++c) {
        if (std::find(filled.begin(), filled.end(), c) != filled.end()) continue;
        if (!blank(row.cell(c))) return false;
    }
    return true;
}

Kind classify(const Row& row) {
    if (otherCellsBlank(row, {})) return Kind::Blank;
    if (!blank(row.cell(1))) return capitals(row.cell(3)) ? Kind::Caption : Kind::Subcaption;
    if (row.cell(3) == kRoadWorks) return Kind::RoadWorks;
    return blank(row.cell(2)) ? Kind::Continuation : Kind::Requirement;
}

std::vector<Row> readRows() {
    std::vector<Row> rows;
    const QStringList lines = shipped::lines(kFile);
    for (int i = 1; i < lines.size(); ++i) {
        Row row;
        row.line = i + 1;
        row.cells = lines.at(i).split(QLatin1Char(';'));
        while (row.cells.size() < kColumns)
            row.cells.append(QString());
        row.kind = classify(row);
        rows.push_back(row);
    }
    return rows;
}

QString where(const Row& row) {
    return kFile + QStringLiteral(" line %1").arg(row.line);
}

} // namespace

TEST(RequirementBaseList, HeaderNamesTheTwentyFourColumnsAndNoLineHasMore) {
    const QStringList lines = shipped::lines(kFile);
    ASSERT_GT(lines.size(), 1) << "missing or empty " << kFile.toStdString();
    // The row editor picks each field's drop-down list by these header words.
    const QString expected = QStringLiteral(
        "LITTERA;NRO;LAATUVAATIMUS;TYYPPI;VIITE;VAATIMUS;ALARAJA;YLÄRAJA;YKSIKKÖ;TARKASTUSTAPA;PAINOARVO;"
        "LAATUSUUNNITELMATEKSTI;TEKNINEN TYÖSELOSTUS;VIITETIEDOSTO;TARKASTUS/MITTAUSRAPORTTITEKSTI;"
        "MITTAUSTEN LKM;MINIMI;MAKSIMI;KESKIARVO;LAATURAPORTTITEKSTI;TÄYTTÄÄ VAATIMUKSET;POIKKEAMARAPORTTI;"
        "KORJAUSSUUNNITELMA;PAINOARVON KERROIN");
    EXPECT_EQ(expected.count(QLatin1Char(';')) + 1, kColumns);
    EXPECT_EQ(lines.first().toStdString(), expected.toStdString());
    for (int i = 1; i < lines.size(); ++i)
        EXPECT_LE(lines.at(i).count(QLatin1Char(';')) + 1, kColumns) << "line " << i + 1;
}

TEST(RequirementBaseList, EveryRequirementCarriesTypeMethodWeightAndPlanText) {
    const QStringList units = {"kpl",   "kg", "kg/m3", "kN/m2", "m",  "m2",    "m3",
                               "m3ktr", "mm", "MN/m2", "MPa",   "oC", "P-luku"};
    const QRegularExpression number(QStringLiteral("^-?\\d+(,\\d+)?$"));
    const QRegularExpression factor(QStringLiteral("^(0,\\d|1,0)$"));
    QSet<QString> types, methods;
    int requirements = 0;
    for (const Row& row : readRows()) {
        if (row.kind == Kind::Continuation) {
            // A continuation carries only more text for the requirement above it.
            EXPECT_TRUE(otherCellsBlank(row, {3, 12})) << where(row).toStdString();
            EXPECT_FALSE(capitals(row.cell(3))) << where(row).toStdString();
            continue;
        }
        if (row.kind != Kind::Requirement) continue;
        ++requirements;
        const std::string at = where(row).toStdString();
        EXPECT_FALSE(blank(row.cell(3))) << at;
        EXPECT_FALSE(capitals(row.cell(3))) << at << ": a text in capitals would read as a work phase";
        EXPECT_TRUE(QStringList({"1", "2", "3"}).contains(row.cell(4))) << at;
        EXPECT_FALSE(blank(row.cell(5))) << at;
        for (int c : {6, 7, 8})
            EXPECT_TRUE(row.cell(c).isEmpty() || number.match(row.cell(c)).hasMatch())
                << at << " column " << c;
        EXPECT_TRUE(row.cell(9).isEmpty() || units.contains(row.cell(9))) << at;
        EXPECT_TRUE(QStringList({"M", "K", "T", "A"}).contains(row.cell(10))) << at;
        bool weightOk = false;
        const int weight = row.cell(11).toInt(&weightOk);
        EXPECT_TRUE(weightOk && weight >= 0 && weight <= 5) << at;
        // Advisory requirements carry no weight into the quality number; the others must.
        if (row.cell(4) == QLatin1String("3"))
            EXPECT_EQ(weight, 0) << at;
        else
            EXPECT_GT(weight, 0) << at;
        EXPECT_FALSE(blank(row.cell(12))) << at;
        for (int c = 13; c <= 23; ++c)
            EXPECT_TRUE(row.cell(c).isEmpty()) << at << " column " << c;
        EXPECT_TRUE(factor.match(row.cell(24)).hasMatch()) << at;
        types.insert(row.cell(4));
        methods.insert(row.cell(10));
    }
    EXPECT_GE(requirements, 120);
    EXPECT_EQ(types.size(), 3);
    EXPECT_EQ(methods.size(), 4);
}

TEST(RequirementBaseList, WorkPhaseCaptionsStandInLitteraOrder) {
    const QRegularExpression first(QStringLiteral("^\\d{4}$"));
    const QRegularExpression second(QStringLiteral("^\\d{4}(\\.\\d{1,2})?$"));
    QString previous;
    bool phaseInBlock = false, seenCaption = false;
    QSet<QString> identifiers;
    Kind before = Kind::Blank;
    for (const Row& row : readRows()) {
        const std::string at = where(row).toStdString();
        switch (row.kind) {
            case Kind::Caption:
            case Kind::Subcaption: {
                const QString littera = row.cell(1);
                EXPECT_TRUE(otherCellsBlank(row, {1, 3})) << at;
                EXPECT_FALSE(blank(row.cell(3))) << at;
                if (row.kind == Kind::Caption) {
                    EXPECT_TRUE(first.match(littera).hasMatch()) << at;
                    phaseInBlock = true;
                } else {
                    EXPECT_TRUE(second.match(littera).hasMatch()) << at;
                    EXPECT_TRUE(phaseInBlock) << at << ": a sub-phase needs a work phase above it";
                }
                if (!previous.isEmpty())
                    EXPECT_LT(normalised(previous).toStdString(), normalised(littera).toStdString()) << at;
                previous = littera;
                identifiers.clear();
                seenCaption = true;
                break;
            }
            case Kind::RoadWorks:
                EXPECT_TRUE(otherCellsBlank(row, {3})) << at;
                previous.clear(); // the road works start their own littera order
                phaseInBlock = false;
                identifiers.clear();
                break;
            case Kind::Requirement:
                EXPECT_TRUE(seenCaption) << at << ": a requirement before any work phase";
                EXPECT_FALSE(identifiers.contains(row.cell(2))) << at << ": identifier used twice";
                identifiers.insert(row.cell(2));
                break;
            case Kind::Continuation:
                EXPECT_TRUE(before == Kind::Requirement || before == Kind::Continuation) << at;
                break;
            case Kind::Blank:
                continue;
        }
        before = row.kind;
    }
    EXPECT_TRUE(seenCaption);
}

// A project's quantity list and requirement list are filled from the two base lists; the same
// work phase must read the same in both, or the reports and the heading index show two names.
TEST(RequirementBaseList, WorkPhasesMatchTheUnitPriceList) {
    QHash<QString, QString> unitPricePhases;
    const QStringList priceLines = shipped::lines(QStringLiteral("Yksikköhinnat2002.sl1"));
    ASSERT_GT(priceLines.size(), 1);
    for (const QString& line : priceLines.mid(1)) {
        const QStringList cells = line.split(QLatin1Char(';'));
        if (cells.size() > 1 && !blank(cells.at(0))) unitPricePhases.insert(cells.at(0), cells.at(1));
    }
    int shared = 0;
    for (const Row& row : readRows()) {
        if (row.kind != Kind::Caption && row.kind != Kind::Subcaption) continue;
        const std::string at = where(row).toStdString();
        const auto it = unitPricePhases.constFind(row.cell(1));
        // Every main work phase comes from the unit price list; a sub-phase may be the
        // requirement list's own, but not under a littera that names something else there.
        if (row.kind == Kind::Caption) EXPECT_NE(it, unitPricePhases.constEnd()) << at;
        if (it == unitPricePhases.constEnd()) continue;
        EXPECT_EQ(row.cell(3).toStdString(), it->toStdString()) << at;
        ++shared;
    }
    EXPECT_GT(shared, 0);
}

TEST(RequirementBaseList, RoadWorksAtTheBridgeSiteFollowTheBridgePhases) {
    const std::vector<Row> rows = readRows();
    int roadWorksRows = 0;
    bool inRoadWorks = false, superstructure = false;
    int bridgeRequirements = 0, roadRequirements = 0;
    for (const Row& row : rows) {
        const std::string at = where(row).toStdString();
        if (row.kind == Kind::RoadWorks) {
            ++roadWorksRows;
            inRoadWorks = true;
        } else if (row.kind == Kind::Caption || row.kind == Kind::Subcaption) {
            const QString littera = row.cell(1);
            if (inRoadWorks) {
                EXPECT_LT(littera.toStdString(), "7100") << at;
            } else {
                EXPECT_GE(littera.toStdString(), "7100") << at;
                EXPECT_LT(littera.toStdString(), "7200") << at;
                if (littera >= QStringLiteral("7170")) superstructure = true;
            }
        } else if (row.kind == Kind::Requirement) {
            ++(inRoadWorks ? roadRequirements : bridgeRequirements);
        }
    }
    EXPECT_EQ(roadWorksRows, 1);
    EXPECT_TRUE(superstructure) << "no superstructure phase (7170..7199)";
    EXPECT_GT(bridgeRequirements, 0);
    EXPECT_GT(roadRequirements, 0);
}
