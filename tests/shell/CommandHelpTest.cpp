// The command line as a script or a person at a terminal meets it: the help texts, the exit
// statuses of wrong calls, the JSON output read back, a quiet standard error, and the manual
// page and shell completion that name the same commands.
#include "app/Help.h"
#include "calc/NumberText.h"
#include "common/RunProgram.h"
#include "platform/TextFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using testing_support::Result;

namespace {

// Runs the program as from a terminal without a desktop session: no runtime folder, the
// offscreen platform only where the test's environment has it.
Result runBare(const QStringList& args) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("XDG_RUNTIME_DIR"));
    p.setProcessEnvironment(env);
    p.start(testing_support::binaryDir() + QStringLiteral("/tamrik"), args);
    p.waitForFinished(60000);
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

QString sample() {
    return testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl");
}

QStringList commandNames() {
    QStringList names;
    for (const app::CommandHelp& c : app::commandTable())
        names << QString::fromUtf8(c.name);
    return names;
}

// The names listed under "Komennot:" of the help listing, one a line.
QStringList listedCommands(const QString& listing) {
    QStringList names;
    bool inCommands = false;
    for (const QString& line : listing.split(QLatin1Char('\n'))) {
        if (line == QLatin1String("Komennot:")) {
            inCommands = true;
            continue;
        }
        if (!inCommands) continue;
        if (line.isEmpty()) break;
        names << line.trimmed().section(QLatin1Char(' '), 0, 0);
    }
    return names;
}

} // namespace

TEST(CommandHelp, HelpListsEveryCommandOnALineOfItsOwn) {
    // The commands the program has; a command added later must be added to the table.
    for (const char* name : {"costs", "summary", "print", "convert", "validate", "compare", "help"})
        EXPECT_TRUE(commandNames().contains(QString::fromLatin1(name))) << name;

    const Result help = runBare({QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, QString());
    EXPECT_EQ(listedCommands(help.out), commandNames());
    EXPECT_TRUE(help.out.contains(QStringLiteral("--version")));
    for (const QStringList& same : {QStringList{QStringLiteral("-h")}, QStringList{QStringLiteral("help")}}) {
        const Result r = runBare(same);
        EXPECT_EQ(r.status, 0) << same.first().toStdString();
        EXPECT_EQ(r.out, help.out);
    }
    // Every listed word runs as a command: asked for its help, it gives its usage.
    for (const QString& name : commandNames()) {
        const Result r = runBare({QStringLiteral("help"), name});
        EXPECT_EQ(r.status, 0) << name.toStdString();
        EXPECT_TRUE(r.out.startsWith(QStringLiteral("käyttö: tamrik ") + name + QLatin1Char(' ')))
            << r.out.toStdString();
        EXPECT_TRUE(r.out.contains(QStringLiteral("Paluuarvo"))) << name.toStdString();
        const Result option = runBare({name, QStringLiteral("--help")});
        EXPECT_EQ(option.status, 0) << name.toStdString();
        EXPECT_EQ(option.out, r.out) << name.toStdString();
    }
    const Result version = runBare({QStringLiteral("--version")});
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.out.startsWith(QStringLiteral("TAMRIK 2006 ")));
}

TEST(CommandHelp, WrongCallsSaySoPointToTheHelpAndExitWithOne) {
    struct Case {
        QStringList args;
        QString error; // the start of standard error
    };
    const Case cases[] = {
        {{QStringLiteral("--bogus")},
         QStringLiteral("tamrik: tuntematon valitsin --bogus; katso tamrik --help")},
        {{QStringLiteral("costz"), sample()}, QStringLiteral("tamrik: tuntematon komento costz ")},
        {{QStringLiteral("help"), QStringLiteral("costz")},
         QStringLiteral("tamrik: tuntematon komento costz")},
        {{QStringLiteral("costs"), sample(), QStringLiteral("--xml")},
         QStringLiteral("tamrik: tuntematon valitsin --xml; käyttö: tamrik costs TIEDOSTO.sl [--json]")},
        {{QStringLiteral("summary")}, QStringLiteral("tamrik: käyttö: tamrik summary TIEDOSTO.sl [--json]")},
        {{QStringLiteral("convert"), sample()}, QStringLiteral("tamrik: käyttö: tamrik convert LÄHDE KOHDE")},
        {{QStringLiteral("print"), sample()},
         QStringLiteral("tamrik: käyttö: tamrik print TIEDOSTO.sl --pdf")},
        {{QStringLiteral("validate")}, QStringLiteral("tamrik: käyttö: tamrik validate TIEDOSTO.sl")},
        {{QStringLiteral("compare"), sample()},
         QStringLiteral("tamrik: käyttö: tamrik compare VANHA.sl UUSI.sl")},
    };
    for (const Case& c : cases) {
        const Result r = runBare(c.args);
        const std::string call = c.args.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(r.status, 1) << call;
        EXPECT_TRUE(r.err.startsWith(c.error)) << call << ": " << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(QStringLiteral("tamrik --help")) ||
                    r.err.contains(QStringLiteral("tamrik help")))
            << r.err.toStdString();
        EXPECT_EQ(r.err.count(QLatin1Char('\n')), 1) << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << call;
    }
}

// A run without a desktop session writes nothing on standard error but the program's own
// messages (Qt warned about the missing runtime folder on every such run).
TEST(CommandHelp, SuccessfulRunsLeaveStandardErrorEmpty) {
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("kaikki.pdf"));
    const QString csv = dir.filePath(QStringLiteral("hinnat.csv"));
    const QStringList calls[] = {
        {QStringLiteral("costs"), sample()},
        {QStringLiteral("summary"), sample(), QStringLiteral("--json")},
        {QStringLiteral("print"), sample(), QStringLiteral("--pdf"), pdf, QStringLiteral("--docs"),
         QStringLiteral("0,4")},
        {QStringLiteral("convert"), testing_support::dataDir() + QStringLiteral("Yksikköhinnat2002.sl1"),
         csv},
        {QStringLiteral("validate"), sample()},
        {QStringLiteral("compare"), sample(), sample()},
    };
    for (const QStringList& args : calls) {
        const Result r = runBare(args);
        EXPECT_EQ(r.status, 0) << args.first().toStdString() << ": " << r.err.toStdString();
        EXPECT_EQ(r.err, QString()) << args.first().toStdString();
    }
    EXPECT_TRUE(QFileInfo(pdf).size() > 0);
}

TEST(CommandHelp, CostsAsJsonAreTheFiguresOfTheLines) {
    const Result text = runBare({QStringLiteral("costs"), sample()});
    const Result json = runBare({QStringLiteral("costs"), sample(), QStringLiteral("--json")});
    ASSERT_EQ(text.status, 0);
    ASSERT_EQ(json.status, 0) << json.err.toStdString();
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(json.out.toUtf8(), &error);
    ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    const QJsonObject object = doc.object();
    const QStringList lines = text.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 15);
    EXPECT_EQ(object.size(), 15);
    for (const QString& line : lines) {
        const QString name = line.section(QStringLiteral(" = "), 0, 0);
        const QString value = line.section(QStringLiteral(" = "), 1);
        ASSERT_TRUE(object.contains(name)) << name.toStdString();
        EXPECT_TRUE(object.value(name).isDouble()) << name.toStdString();
        EXPECT_EQ(object.value(name).toDouble(), value.toDouble()) << line.toStdString();
    }
    EXPECT_EQ(object.value(QStringLiteral("roadSummaryLines")).toInt(), 29);
    // The option may stand before the file too.
    EXPECT_EQ(runBare({QStringLiteral("costs"), QStringLiteral("--json"), sample()}).out, json.out);
}

TEST(CommandHelp, SummaryAsJsonHoldsTheReportsFigures) {
    const Result text = runBare({QStringLiteral("summary"), sample()});
    const Result json = runBare({QStringLiteral("summary"), sample(), QStringLiteral("--json")});
    ASSERT_EQ(text.status, 0);
    ASSERT_EQ(json.status, 0) << json.err.toStdString();
    QJsonParseError error;
    const QJsonObject o = QJsonDocument::fromJson(json.out.toUtf8(), &error).object();
    ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();

    EXPECT_EQ(o.value(QStringLiteral("project")).toString(), QFileInfo(sample()).absoluteFilePath());
    // "SILLAN LAATULUKU : 75,9 (100)" is the number rounded as the report prints it.
    const QRegularExpressionMatch quality =
        QRegularExpression(QStringLiteral("SILLAN LAATULUKU : (\\S+) \\(100\\)")).match(text.out);
    ASSERT_TRUE(quality.hasMatch());
    EXPECT_EQ(
        calc::FormatHashDotHash(static_cast<float>(o.value(QStringLiteral("qualityNumber")).toDouble())),
        quality.captured(1));
    EXPECT_GT(o.value(QStringLiteral("qualityNumber")).toDouble(), 0.0);

    // The type lines: label, count, checked, percent, unchecked.
    const QJsonArray types = o.value(QStringLiteral("types")).toArray();
    ASSERT_EQ(types.size(), 3);
    int count = 0;
    for (int t = 0; t < 3; ++t) {
        const QJsonObject type = types[t].toObject();
        EXPECT_EQ(type.value(QStringLiteral("type")).toInt(), t + 1);
        const QRegularExpressionMatch m =
            QRegularExpression(QStringLiteral("\n%1 \\D*(\\d+) +(\\d+)").arg(t + 1)).match(text.out);
        ASSERT_TRUE(m.hasMatch()) << t;
        EXPECT_EQ(type.value(QStringLiteral("count")).toInt(), m.captured(1).toInt());
        EXPECT_EQ(type.value(QStringLiteral("checked")).toInt(), m.captured(2).toInt());
        EXPECT_EQ(type.value(QStringLiteral("unchecked")).toInt(),
                  m.captured(1).toInt() - m.captured(2).toInt());
        count += type.value(QStringLiteral("count")).toInt();
    }
    EXPECT_EQ(o.value(QStringLiteral("total")).toObject().value(QStringLiteral("count")).toInt(), count);

    // One object per work-phase line of the report, in its order, "-" as null. The table's
    // lines follow the rest of its heading line and the rule under it.
    const QString table = text.out.section(QStringLiteral("Littera Työvaihe"), 1);
    const QStringList phaseLines = table.split(QLatin1Char('\n'), Qt::SkipEmptyParts).mid(2);
    const QJsonArray phases = o.value(QStringLiteral("workPhases")).toArray();
    ASSERT_EQ(phases.size(), phaseLines.size());
    ASSERT_GT(phases.size(), 2);
    bool sawNull = false;
    for (int i = 0; i < phases.size(); ++i) {
        const QJsonObject p = phases[i].toObject();
        EXPECT_TRUE(phaseLines[i].startsWith(p.value(QStringLiteral("littera")).toString()));
        EXPECT_TRUE(phaseLines[i].contains(p.value(QStringLiteral("text")).toString()));
        const QStringList words = phaseLines[i].split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const QStringList figures = words.mid(words.size() - 4); // Pa%, TotPa, MaksPa, Tot%
        const QJsonValue share = p.value(QStringLiteral("sharePercent"));
        if (share.isNull()) {
            sawNull = true;
            EXPECT_EQ(figures[0], QStringLiteral("-")) << phaseLines[i].toStdString();
        } else {
            EXPECT_EQ(calc::DecimalS(static_cast<float>(share.toDouble()), 0), figures[0]);
        }
        EXPECT_EQ(calc::DecimalS(static_cast<float>(p.value(QStringLiteral("realized")).toDouble()), 0),
                  figures[1]);
        EXPECT_EQ(calc::DecimalS(static_cast<float>(p.value(QStringLiteral("max")).toDouble()), 0),
                  figures[2]);
    }
    EXPECT_TRUE(sawNull) << "a subcaption shows no share";
}

TEST(CommandHelp, ManualPageAndCompletionNameEveryCommand) {
    QByteArray page;
    ASSERT_TRUE(
        platform::readFileBytes(testing_support::sourceDir() + QStringLiteral("/packaging/tamrik.1"), page));
    const QString manual = QString::fromUtf8(page);
    for (const QString& name : commandNames())
        EXPECT_TRUE(
            QRegularExpression(QStringLiteral("\n\\.B[IR]? \"?%1[ \"\n]").arg(name)).match(manual).hasMatch())
            << name.toStdString();
    for (const char* section : {".SH PALUUARVOT", ".SH TIEDOSTOT", ".SH KOMENNOT"})
        EXPECT_TRUE(manual.contains(QLatin1String(section))) << section;

    // The completion script with bash-completion's two helpers stood in for: _filedir
    // completes nothing, so what is offered comes from the script itself.
    const QString script = testing_support::sourceDir() + QStringLiteral("/packaging/tamrik.bash-completion");
    const auto complete = [&script](const QString& words, int cword) {
        QProcess bash;
        const QString program =
            QStringLiteral("_init_completion() { cur=${COMP_WORDS[COMP_CWORD]}; "
                           "prev=${COMP_WORDS[COMP_CWORD-1]}; words=(\"${COMP_WORDS[@]}\"); "
                           "cword=$COMP_CWORD; }\n"
                           "_filedir() { :; }\n"
                           "source '%1'\n"
                           "COMP_WORDS=(%2); COMP_CWORD=%3; _tamrik; echo \"${COMPREPLY[*]}\"\n")
                .arg(script, words)
                .arg(cword);
        bash.start(QStringLiteral("bash"), {QStringLiteral("-c"), program});
        bash.waitForFinished(10000);
        return QString::fromUtf8(bash.readAllStandardOutput())
            .trimmed()
            .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    };
    EXPECT_EQ(complete(QStringLiteral("tamrik ''"), 1), commandNames());
    EXPECT_EQ(complete(QStringLiteral("tamrik help c"), 2),
              (QStringList{QStringLiteral("costs"), QStringLiteral("convert"), QStringLiteral("compare")}));
    EXPECT_EQ(complete(QStringLiteral("tamrik costs x.sl --j"), 3), QStringList{QStringLiteral("--json")});
    EXPECT_EQ(complete(QStringLiteral("tamrik --h"), 1), QStringList{QStringLiteral("--help")});
}
