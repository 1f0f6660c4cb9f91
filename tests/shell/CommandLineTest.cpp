// The program's command line, run as a user would run it.
#include "common/RunProgram.h"
#include "persist/ProjectFile.h"
#include "platform/TextFile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using testing_support::Result;
using testing_support::run;

namespace {

// A command under a memory limit of 1 GB, as a user's machine with little memory has it. The
// checked build's sanitizer needs far more address space, so it runs without the limit.
Result runWithinAGigabyte(const QStringList& args) {
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
    return run(args);
#endif
#endif
    QProcess p;
    p.start(QStringLiteral("/bin/sh"),
            QStringList{QStringLiteral("-c"), QStringLiteral("ulimit -v 1048576 && exec \"$0\" \"$@\""),
                        testing_support::binaryDir() + QStringLiteral("/tamrik")} +
                args);
    p.waitForFinished(120000);
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

} // namespace

TEST(CommandLine, VersionAndUnknownCommands) {
    const Result v = run({QStringLiteral("--version")});
    EXPECT_EQ(v.status, 0);
    EXPECT_EQ(v.out, QStringLiteral("TAMRIK 2006 4.0.17\n"));
    const Result bad = run({QStringLiteral("costs")});
    EXPECT_EQ(bad.status, 1);
    EXPECT_TRUE(bad.err.startsWith(QStringLiteral("tamrik: ")));
}

// A mistyped command or a missing file never starts the desktop program (which would wait
// for a window without a display, or hand the word to a program already running).
TEST(CommandLine, AnUnknownWordIsAnErrorNotADesktopStart) {
    QTemporaryDir dir;
    const QString sample = testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl");
    for (const QStringList& args :
         {QStringList{QStringLiteral("costz"), sample}, QStringList{QStringLiteral("costz")},
          QStringList{dir.filePath(QStringLiteral("puuttuu.sl"))}, QStringList{dir.path()}}) {
        const Result r = run(args, 20000);
        EXPECT_EQ(r.status, 1) << args.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(r.err.startsWith(QStringLiteral("tamrik: tuntematon komento ") + args[0]))
            << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty());
    }
    const Result option = run({QStringLiteral("--costs"), sample}, 20000);
    EXPECT_EQ(option.status, 1);
}

TEST(CommandLine, BadInputFilesGiveAPlainErrorAndStatusOne) {
    QTemporaryDir dir;
    const QString damaged = dir.filePath(QStringLiteral("rikki.sl"));
    ASSERT_TRUE(platform::writeFileAtomically(damaged, QByteArray("ei projektitiedosto")));
    for (const char* command : {"costs", "summary"}) {
        const Result r = run({QString::fromLatin1(command), damaged});
        EXPECT_EQ(r.status, 1) << command;
        EXPECT_TRUE(r.err.contains(damaged)) << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty());
        const Result missing = run({QString::fromLatin1(command), dir.filePath(QStringLiteral("ei.sl"))});
        EXPECT_EQ(missing.status, 1);
    }
}

TEST(CommandLine, ConvertsTheShippedUnitPriceListAndBack) {
    QTemporaryDir dir;
    const QString source = testing_support::dataDir() + QStringLiteral("Yksikköhinnat2002.sl1");
    const QString sheet = dir.filePath(QStringLiteral("hinnat.xlsx"));
    const QString back = dir.filePath(QStringLiteral("hinnat.sl1"));
    EXPECT_EQ(run({QStringLiteral("convert"), source, sheet}).status, 0);
    EXPECT_EQ(run({QStringLiteral("convert"), sheet, back}).status, 0);
    QByteArray a, b;
    ASSERT_TRUE(platform::readFileBytes(source, a));
    ASSERT_TRUE(platform::readFileBytes(back, b));
    EXPECT_EQ(a, b);
    // Nothing is written over the input.
    EXPECT_EQ(run({QStringLiteral("convert"), back, back}).status, 1);
}

TEST(CommandLine, CostsAndSummaryOfTheSampleProject) {
    const QString sample = testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl");
    const Result costs = run({QStringLiteral("costs"), sample});
    ASSERT_EQ(costs.status, 0) << costs.err.toStdString();
    const QStringList lines = costs.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 15);
    const char* names[] = {"bridgeSum",          "bridgeGeneral",  "superstructureSum", "bridgeTotal",
                           "bridgeConverted",    "bridgeRounded",  "roadSum",           "roadGeneral",
                           "roadTotal",          "roadConverted",  "roadRounded",       "bridgeSummaryRow",
                           "bridgeSummaryLines", "roadSummaryRow", "roadSummaryLines"};
    QStringList got;
    for (const QString& l : lines)
        got << l.section(QStringLiteral(" = "), 0, 0);
    for (const char* n : names)
        EXPECT_TRUE(got.contains(QString::fromLatin1(n))) << n;
    EXPECT_TRUE(lines.contains(QStringLiteral("roadSummaryLines = 29")));
    const Result summary = run({QStringLiteral("summary"), sample});
    ASSERT_EQ(summary.status, 0);
    EXPECT_TRUE(summary.out.startsWith(QStringLiteral("TAMRIK 2006 - ")));
    EXPECT_TRUE(summary.out.contains(QStringLiteral("\nLAATUVAATIMUSTEN YHTEENVETO\n")));
    EXPECT_TRUE(summary.out.contains(QStringLiteral("SILLAN LAATULUKU : ")));
    EXPECT_FALSE(summary.out.contains(QLatin1Char('\r')));
}

// An amount past single precision's range makes the totals infinite: that is no cost figure,
// and a script reading the record must not take "inf" for one.
TEST(CommandLine, AnOverflowedTotalIsAnErrorNamingItsRow) {
    QTemporaryDir dir;
    persist::ProjectFile project;
    QString error;
    ASSERT_TRUE(persist::ReadProjectFile(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"),
                                         false, project, &error))
        << error.toStdString();
    persist::ListRecord& quantities = project.content.windows[1].lists[0];
    ASSERT_GT(quantities.rows.size(), 5u);
    lists::RowCells& row = quantities.rows[4];
    row.set(3, u"1e308"); // quantity
    row.set(5, u"2");     // unit price
    project.members[0].data = persist::WriteProjectText(project.content, false);
    const QString file = dir.filePath(QStringLiteral("ylivuoto.sl"));
    ASSERT_TRUE(platform::writeFileAtomically(file, persist::PackContainer(project.members)));

    const Result r = run({QStringLiteral("costs"), file});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, QStringLiteral("tamrik: summa ei ole äärellinen: rivi 5\n"));
    EXPECT_FALSE(r.out.contains(QStringLiteral("inf")));

    // Comparing against it gives the same error, not a JSON null or "inf" in place of a figure.
    const QString sample = testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl");
    const Result compared = run({QStringLiteral("compare"), sample, file, QStringLiteral("--json")});
    EXPECT_EQ(compared.status, 1);
    EXPECT_EQ(compared.err,
              QStringLiteral("tamrik: ") + file + QStringLiteral(": summa ei ole äärellinen: rivi 5\n"));
    EXPECT_TRUE(compared.out.isEmpty());
}

// A 420 kB workbook whose sheet unpacks to 400 MB, nearly all of it blanks, took twice that
// in memory and was refused under a 1 GB limit; it is read as it unpacks and converts. A cell of
// 64 MB of text is refused with the program's own words, not the XML library's.
TEST(CommandLine, SheetsThatUnpackHugeStayWithinMemory) {
    QTemporaryDir dir;
    const QString data = testing_support::sourceDir() + QStringLiteral("/tests/lists/data/");
    const QString out = dir.filePath(QStringLiteral("tyhjaa.csv"));
    const Result blanks =
        runWithinAGigabyte({QStringLiteral("convert"), data + QStringLiteral("tyhjaa-400mt.xlsx"), out});
    EXPECT_EQ(blanks.status, 0) << blanks.err.toStdString();
    QByteArray bytes;
    ASSERT_TRUE(platform::readFileBytes(out, bytes));
    EXPECT_EQ(bytes, QByteArray("LITTERA;TY\xD6VAIHE\r\n7100;alku\r\n;\r\n7200;loppu\r\n"));

    const QString text = data + QStringLiteral("damaged/pitka-teksti.xlsx");
    const Result refused =
        runWithinAGigabyte({QStringLiteral("convert"), text, dir.filePath(QStringLiteral("t.csv"))});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, QStringLiteral("tamrik: Taulukkotiedostoa: ") + text +
                               QStringLiteral(" ei voitu lukea: solun teksti on yli 1048576 tavua pitkä.\n"));

    // Few cells far apart or in long runs, which laid out row by row took all the memory and
    // ended in std::bad_alloc or a crash: refused with the program's own words.
    for (const char* name : {"kaukana-toisistaan.ods", "leveat-toistot.ods", "kaukaiset-solut.ods"}) {
        const QString path = data + QStringLiteral("suuret/") + QLatin1String(name);
        const Result r =
            runWithinAGigabyte({QStringLiteral("convert"), path, dir.filePath(QStringLiteral("s.csv"))});
        EXPECT_EQ(r.status, 1) << name;
        EXPECT_TRUE(r.err.startsWith(QStringLiteral("tamrik: Taulukkotiedostoa: ") + path +
                                     QStringLiteral(" ei voitu lukea: taulukossa on enemmän ")))
            << r.err.toStdString();
    }
}
