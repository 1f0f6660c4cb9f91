// The program's command line, run as a user would run it.
#include "common/RunProgram.h"
#include "platform/TextFile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using testing_support::Result;
using testing_support::run;

TEST(CommandLine, VersionAndUnknownCommands) {
    const Result v = run({QStringLiteral("--version")});
    EXPECT_EQ(v.status, 0);
    EXPECT_EQ(v.out, QStringLiteral("TAMRIK 2006 4.0.17\n"));
    const Result bad = run({QStringLiteral("costs")});
    EXPECT_EQ(bad.status, 1);
    EXPECT_TRUE(bad.err.startsWith(QStringLiteral("tamrik: ")));
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
