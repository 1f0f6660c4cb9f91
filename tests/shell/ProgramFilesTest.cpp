// The programs the `tamrik` command is made of, and the libraries each of them loads: a command
// line that writes text must start without the libraries of the windows.
#include "app/Commands.h"
#include "app/TextCommands.h"
#include "common/RunProgram.h"

#include <QProcess>
#include <QRegularExpression>
#include <gtest/gtest.h>

using testing_support::binaryDir;

namespace {

// The libraries the program names in its dynamic section, as readelf lists them.
QStringList neededLibraries(const QString& program) {
    QProcess p;
    p.start(QStringLiteral("readelf"), {QStringLiteral("-d"), binaryDir() + QLatin1Char('/') + program});
    p.waitForFinished(30000);
    QStringList needed;
    const QRegularExpression entry(QStringLiteral(R"(\(NEEDED\)\s+Shared library: \[([^\]]+)\])"));
    for (auto m = entry.globalMatch(QString::fromUtf8(p.readAllStandardOutput())); m.hasNext();)
        needed << m.next().captured(1);
    return needed;
}

bool namesAny(const QStringList& libraries, const QStringList& parts) {
    for (const QString& library : libraries)
        for (const QString& part : parts)
            if (library.contains(part)) return true;
    return false;
}

} // namespace

TEST(ProgramFiles, EachProgramLoadsOnlyWhatItsCommandsUse) {
    const QStringList windows{QStringLiteral("Qt6Widgets"), QStringLiteral("Qt6PrintSupport"),
                              QStringLiteral("Qt6Network"), QStringLiteral("Qt6Svg"),
                              QStringLiteral("qpdf"),       QStringLiteral("wmf"),
                              QStringLiteral("emf2svg")};

    const QStringList commands = neededLibraries(QStringLiteral("tamrik-commands"));
    ASSERT_TRUE(namesAny(commands, {QStringLiteral("Qt6Core")})) << commands.join(u' ').toStdString();
    EXPECT_FALSE(namesAny(commands, windows)) << commands.join(u' ').toStdString();
    // Nor the GUI library (the list model's undo steps and clipboard are apart from it), which
    // would bring the display, font and D-Bus libraries with it.
    EXPECT_FALSE(namesAny(commands, {QStringLiteral("Qt6Gui")})) << commands.join(u' ').toStdString();

    // The front end starts before every command and the desktop: no Qt at all.
    const QStringList frontEnd = neededLibraries(QStringLiteral("tamrik"));
    ASSERT_FALSE(frontEnd.isEmpty());
    EXPECT_FALSE(namesAny(frontEnd, {QStringLiteral("Qt6"), QStringLiteral("xml2"), QStringLiteral("gsf")}))
        << frontEnd.join(u' ').toStdString();

    const QStringList desktop = neededLibraries(QStringLiteral("tamrik-desktop"));
    EXPECT_TRUE(namesAny(desktop, {QStringLiteral("Qt6Widgets")})) << desktop.join(u' ').toStdString();
}

TEST(ProgramFiles, TheFrontEndHandsOverArgumentsAndExitStatus) {
    // A text command (through the command program) and a page command (through the desktop
    // program) both see their own arguments and end with their own status.
    const auto help = testing_support::run({QStringLiteral("help"), QStringLiteral("print")});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.startsWith(QStringLiteral("käyttö: tamrik print "))) << help.out.toStdString();
    const auto print = testing_support::run({QStringLiteral("print"), QStringLiteral("puuttuu.sl")});
    EXPECT_EQ(print.status, 1);
    EXPECT_TRUE(print.err.startsWith(QStringLiteral("tamrik: käyttö: tamrik print TIEDOSTO.sl --pdf")))
        << print.err.toStdString();
    const auto unknown = testing_support::run({QStringLiteral("--ei-tallaista")});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.err,
              QStringLiteral("tamrik: tuntematon valitsin --ei-tallaista; katso tamrik --help\n"));
}

// The front end's list of text commands names commands the program has (a renamed command
// would otherwise go to the desktop program, or be refused by the command program).
TEST(ProgramFiles, EveryTextCommandIsACommand) {
    for (const char* name : app::kTextCommands) {
        SCOPED_TRACE(name);
        if (name[0] != '-') EXPECT_TRUE(app::isCommand(name));
    }
}
