// `tamrik compare`, run as a user would run it: the report, the JSON read back against
// `tamrik costs` and `tamrik summary` of each version, the exit statuses and the PDF.
#include "common/RunProgram.h"
#include "common/SampleVersions.h"
#include "common/TestSupport.h"
#include "platform/TextFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

using namespace testing_support;

// Two versions of the sample project: the shipped one and one changed by hand.
struct Versions {
    QTemporaryDir dir;
    QString older = dir.filePath(QStringLiteral("vanha.sl"));
    QString newer = dir.filePath(QStringLiteral("uusi.sl"));

    Versions() {
        persist::ProjectFile project = readSample();
        writeProject(project, older);
        // Quantity list: a quantity up, a row gone, a row more.
        recordRow(project, 1, 0, 2, QStringLiteral("Maankaivu kuivana"))->set(3, u"1600");
        auto& rows = project.content.windows[1].lists[0].rows;
        const auto gone = std::find(rows.begin(), rows.end(),
                                    *recordRow(project, 1, 0, 2, QStringLiteral("Kaivu vedestä")));
        const auto at = rows.erase(gone);
        rows.insert(at, QStringList{QString(), QStringLiteral("Kallion louhinta"), QStringLiteral("400"),
                                    QStringLiteral("50"), QStringLiteral("m3ktr"), QStringLiteral("45,00"),
                                    QString()});
        // A requirement that was met is no longer.
        for (lists::RowCells& row : project.content.windows[1].lists[1].rows) {
            if (row.value(20) == QStringLiteral("Kyllä")) {
                row.set(20, u"Ei");
                break;
            }
        }
        // Basic data: the VAT; the construction plan description: a word of its third paragraph.
        project.content.windows[0].combos[12] = QStringLiteral("24");
        project.content.documents[0].replace("kolmiaukkoinen", "nelj\\'e4aukkoinen");
        writeProject(project, newer);
    }
};

// `tamrik costs` of a file as name -> value text.
std::map<QString, QString> costsOf(const QString& file) {
    const Result r = run({QStringLiteral("costs"), file});
    EXPECT_EQ(r.status, 0);
    std::map<QString, QString> out;
    for (const QByteArray& line : r.out.toUtf8().split('\n'))
        if (!line.isEmpty())
            out[QString::fromUtf8(line.split(' ').front())] = QString::fromUtf8(line.split(' ').back());
    return out;
}

// The number `tamrik summary` gives as the quality number.
double summaryQualityNumber(const QString& file) {
    const Result r = run({QStringLiteral("summary"), file});
    const QString& text = r.out;
    const qsizetype at = text.indexOf(QStringLiteral("SILLAN LAATULUKU : "));
    EXPECT_GE(at, 0);
    QString number = text.mid(at + 19).section(QLatin1Char(' '), 0, 0);
    number.replace(QLatin1Char(','), QLatin1Char('.'));
    return number.toDouble();
}

} // namespace

TEST(CompareCommand, EqualVersionsExitWithZero) {
    const QString sample = dataDir() + QStringLiteral("Esimerkkisilta.sl");
    const Result r = run({QStringLiteral("compare"), sample, sample});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    const QString& text = r.out;
    EXPECT_TRUE(text.startsWith(QStringLiteral("MUUTOSVERTAILU\n")));
    EXPECT_TRUE(text.contains(
        QStringLiteral("MUUTOKSET: lisätty 0, poistettu 0, muutettu 0\nVersioissa ei ole eroja.")));
    const Result json = run({QStringLiteral("compare"), sample, sample, QStringLiteral("--json")});
    EXPECT_EQ(json.status, 0);
    const QJsonObject root = QJsonDocument::fromJson(json.out.toUtf8()).object();
    EXPECT_TRUE(root.value(QStringLiteral("rows")).toArray().isEmpty());
    EXPECT_TRUE(root.value(QStringLiteral("fields")).toArray().isEmpty());
}

TEST(CompareCommand, TheReportNamesEveryChangeAndItsCost) {
    Versions v;
    const Result r = run({QStringLiteral("compare"), v.older, v.newer});
    ASSERT_EQ(r.status, 4) << r.err.toStdString();
    const QString& text = r.out;
    EXPECT_TRUE(text.contains(QStringLiteral("Vanha versio: ") + v.older + QLatin1Char('\n')));
    EXPECT_TRUE(text.contains(QStringLiteral("MUUTOKSET: lisätty 1, poistettu 1, muutettu 4\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("Muutettu  Määräluettelo     7110 / 7111 / Maankaivu kuivana\n"
                                             "    Kustannusmuutos: +1\u00A0200,00\n"
                                             "    MÄÄRÄ: 1450 -> 1600\n")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Poistettu Määräluettelo     7110 / 7111 / Kaivu vedestä\n"
                                             "    Kustannusmuutos: -20\u00A0300,00\n")));
    EXPECT_TRUE(
        text.contains(QStringLiteral("Lisätty   Määräluettelo     7110 / 7111 / Kallion louhinta\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("    TÄYTTÄÄ VAATIMUKSET: Kyllä -> Ei\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("Muutettu  Perustiedot       ALV %\n    22 -> 24\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("Vaatimuksia, joiden arvostelu muuttui")));
    // The work phase of the changes, with the change of its row amounts: 1200 - 20300 + 2250.
    EXPECT_TRUE(text.contains(QStringLiteral("-16\u00A0850,00"))) << text.toStdString();
}

TEST(CompareCommand, TheJsonReadsBackWithTheFiguresOfCostsAndSummary) {
    Versions v;
    const Result r = run({QStringLiteral("compare"), v.older, v.newer, QStringLiteral("--json")});
    ASSERT_EQ(r.status, 4) << r.err.toStdString();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(r.out.toUtf8(), &error);
    ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    const QJsonObject root = document.object();
    EXPECT_EQ(root.keys(), (QStringList{"costs", "fields", "quality_number", "rows"}));

    // Each costs object holds exactly what `tamrik costs` prints for its version.
    const QJsonObject costs = root.value(QStringLiteral("costs")).toObject();
    for (const auto& [key, file] : {std::pair{"old", v.older}, std::pair{"new", v.newer}}) {
        const QJsonObject object = costs.value(QLatin1String(key)).toObject();
        const std::map<QString, QString> printed = costsOf(file);
        ASSERT_EQ(object.size(), static_cast<qsizetype>(printed.size())) << key;
        for (const auto& [name, value] : printed) {
            ASSERT_TRUE(object.value(name).isDouble()) << name.toStdString();
            EXPECT_EQ(object.value(name).toDouble(), value.toDouble()) << key << " " << name.toStdString();
        }
        // The numbers are written as `tamrik costs` writes them.
        EXPECT_TRUE(r.out.toUtf8().contains("\"bridgeConverted\": " +
                                            printed.at(QStringLiteral("bridgeConverted")).toUtf8()));
    }
    EXPECT_NE(costs.value(QStringLiteral("old")).toObject().value(QStringLiteral("bridgeSum")).toDouble(),
              costs.value(QStringLiteral("new")).toObject().value(QStringLiteral("bridgeSum")).toDouble());

    const QJsonObject quality = root.value(QStringLiteral("quality_number")).toObject();
    EXPECT_DOUBLE_EQ(quality.value(QStringLiteral("old")).toDouble(), summaryQualityNumber(v.older));
    EXPECT_DOUBLE_EQ(quality.value(QStringLiteral("new")).toDouble(), summaryQualityNumber(v.newer));
    EXPECT_LT(quality.value(QStringLiteral("new")).toDouble(),
              quality.value(QStringLiteral("old")).toDouble());

    const QJsonArray rows = root.value(QStringLiteral("rows")).toArray();
    ASSERT_EQ(rows.size(), 4);
    const QJsonObject changed = rows[0].toObject();
    EXPECT_EQ(changed.value(QStringLiteral("list")).toString(), QStringLiteral("quantity"));
    EXPECT_EQ(changed.value(QStringLiteral("kind")).toString(), QStringLiteral("changed"));
    EXPECT_EQ(changed.value(QStringLiteral("key")).toString(),
              QStringLiteral("7110 / 7111 / Maankaivu kuivana"));
    EXPECT_EQ(changed.value(QStringLiteral("old")).toObject().value(QStringLiteral("MÄÄRÄ")).toString(),
              QStringLiteral("1450"));
    EXPECT_EQ(changed.value(QStringLiteral("new")).toObject().value(QStringLiteral("MÄÄRÄ")).toString(),
              QStringLiteral("1600"));
    EXPECT_EQ(changed.value(QStringLiteral("new")).toObject().size(), 7);
    EXPECT_DOUBLE_EQ(changed.value(QStringLiteral("cost_change")).toDouble(), 1200);
    const QJsonObject removed = rows[1].toObject();
    EXPECT_EQ(removed.value(QStringLiteral("kind")).toString(), QStringLiteral("removed"));
    EXPECT_TRUE(removed.value(QStringLiteral("new")).isNull());
    EXPECT_DOUBLE_EQ(removed.value(QStringLiteral("cost_change")).toDouble(), -20300);
    EXPECT_EQ(rows[2].toObject().value(QStringLiteral("kind")).toString(), QStringLiteral("added"));
    EXPECT_TRUE(rows[2].toObject().value(QStringLiteral("old")).isNull());
    const QJsonObject requirement = rows[3].toObject();
    EXPECT_EQ(requirement.value(QStringLiteral("list")).toString(), QStringLiteral("requirement"));
    EXPECT_EQ(requirement.value(QStringLiteral("new"))
                  .toObject()
                  .value(QStringLiteral("TÄYTTÄÄ VAATIMUKSET"))
                  .toString(),
              QStringLiteral("Ei"));
    EXPECT_EQ(requirement.value(QStringLiteral("cost_change")).toDouble(), 0);

    const QJsonArray fields = root.value(QStringLiteral("fields")).toArray();
    ASSERT_EQ(fields.size(), 2);
    EXPECT_EQ(fields[0].toObject(),
              (QJsonObject{{"window", "Perustiedot"}, {"field", "ALV %"}, {"old", "22"}, {"new", "24"}}));
    // A text document: its first paragraph that differs, read from the rich text.
    const QJsonObject textChange = fields[1].toObject();
    EXPECT_EQ(textChange.value(QStringLiteral("window")).toString(),
              QStringLiteral("Yksityiskohtaiset tiedot"));
    EXPECT_EQ(textChange.value(QStringLiteral("field")).toString(),
              QStringLiteral("Rakennussuunnitelmaselostus, kappale 4"));
    EXPECT_TRUE(textChange.value(QStringLiteral("old"))
                    .toString()
                    .startsWith(QStringLiteral("Silta on kolmiaukkoinen")));
    EXPECT_TRUE(textChange.value(QStringLiteral("new"))
                    .toString()
                    .startsWith(QStringLiteral("Silta on neljäaukkoinen")));
}

TEST(CompareCommand, AVersionWithoutRequirementsHasNoQualityNumber) {
    QTemporaryDir dir;
    persist::ProjectFile project = readSample();
    const QString older = dir.filePath(QStringLiteral("vanha.sl"));
    const QString newer = dir.filePath(QStringLiteral("uusi.sl"));
    project.content.windows[1].lists.resize(1); // an older file without the requirement list
    writeProject(project, older);
    writeProject(readSample(), newer);
    const Result r = run({QStringLiteral("compare"), older, newer, QStringLiteral("--json")});
    ASSERT_EQ(r.status, 4) << r.err.toStdString();
    const QJsonObject root = QJsonDocument::fromJson(r.out.toUtf8()).object();
    const QJsonObject quality = root.value(QStringLiteral("quality_number")).toObject();
    EXPECT_TRUE(quality.value(QStringLiteral("old")).isNull());
    EXPECT_DOUBLE_EQ(quality.value(QStringLiteral("new")).toDouble(), 75.9);
    for (const QJsonValue& row : root.value(QStringLiteral("rows")).toArray()) {
        SCOPED_TRACE(QJsonDocument(row.toObject()).toJson(QJsonDocument::Compact).toStdString());
        EXPECT_EQ(row.toObject().value(QStringLiteral("list")).toString(), QStringLiteral("requirement"));
        EXPECT_EQ(row.toObject().value(QStringLiteral("kind")).toString(), QStringLiteral("added"));
    }
}

TEST(CompareCommand, FileErrorsAndWrongArgumentsExitWithOne) {
    QTemporaryDir dir;
    const QString sample = dataDir() + QStringLiteral("Esimerkkisilta.sl");
    const QString damaged = dir.filePath(QStringLiteral("rikki.sl"));
    ASSERT_TRUE(platform::writeFileAtomically(damaged, QByteArray("ei projektitiedosto")));
    const QString missing = dir.filePath(QStringLiteral("ei.sl"));
    QByteArray before;
    ASSERT_TRUE(platform::readFileBytes(sample, before));
    const std::vector<QStringList> bad = {
        {"compare", sample, damaged},
        {"compare", missing, sample},
        {"compare", sample},
        {"compare", sample, sample, sample},
        {"compare", sample, sample, "--xml"},
        {"compare", sample, sample, "--pdf", sample},
    };
    for (const QStringList& args : bad) {
        const Result r = run(args);
        EXPECT_EQ(r.status, 1) << args.join(' ').toStdString();
        EXPECT_TRUE(r.err.startsWith(QStringLiteral("tamrik: "))) << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty());
    }
    EXPECT_TRUE(run({QStringLiteral("compare"), sample, damaged}).err.contains(damaged));
    // The project file given as the PDF is left as it was.
    QByteArray after;
    ASSERT_TRUE(platform::readFileBytes(sample, after));
    EXPECT_EQ(after, before);
}

TEST(CompareCommand, ThePrintedComparisonIsALandscapeDocumentWithHeadersAndPageNumbers) {
    Versions v;
    const QString pdf = v.dir.filePath(QStringLiteral("vertailu.pdf"));
    const Result r = run({QStringLiteral("compare"), v.older, v.newer, QStringLiteral("--pdf"), pdf});
    ASSERT_EQ(r.status, 4) << r.err.toStdString();
    QProcess info;
    info.start(QStringLiteral("pdfinfo"), {pdf});
    info.waitForFinished();
    const QString metadata = QString::fromUtf8(info.readAllStandardOutput());
    // A4 landscape: wider than tall.
    EXPECT_TRUE(metadata.contains(QStringLiteral("Page size:       842 x 595 pts (A4)")))
        << metadata.toStdString();
    const QString pageCount =
        metadata.section(QStringLiteral("Pages:"), 1).trimmed().section(QLatin1Char('\n'), 0, 0);
    QProcess text;
    text.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    text.waitForFinished();
    const QString pages = QString::fromUtf8(text.readAllStandardOutput());
    EXPECT_TRUE(pages.contains(QStringLiteral("Muutosvertailu")));
    // A front page, then the summary and the table, each page numbered in the document.
    EXPECT_GE(pageCount.toInt(), 3);
    EXPECT_TRUE(pages.contains(QStringLiteral("Sivu 1 (%1)").arg(pageCount)));
    EXPECT_TRUE(pages.contains(QStringLiteral("Sivu %1 (%1)").arg(pageCount)));
    EXPECT_TRUE(pages.contains(QStringLiteral("TAMRIK 2006")));
    EXPECT_TRUE(pages.contains(QStringLiteral("SILLAN LAATULUKU")));
    EXPECT_TRUE(pages.contains(QStringLiteral("Maankaivu kuivana")));
    EXPECT_TRUE(pages.contains(QStringLiteral("Rivien kustannusmuutos yhteensä")));
}
