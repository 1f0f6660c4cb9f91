#include "app/PrintCommand.h"

#include "app/Help.h"

#include "persist/ProjectFile.h"
#include "platform/SettingsStore.h"
#include "print/PdfOutput.h"
#include "print/PrintRun.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace app {

namespace {

std::atomic<bool> g_interrupted{false};

void onInterrupt(int) {
    g_interrupted = true;
}

} // namespace

print::PrintSettings userPrintSettings(const QString& appPath) {
    print::PrintSettings s;
    s.appPath = appPath;
    const platform::SettingsStore store;
    const QString section = QStringLiteral("Printer");
    s.PrinterFont = store.get(section, QStringLiteral("PrinterFont"), s.PrinterFont);
    if (s.PrinterFont.trimmed().isEmpty()) s.PrinterFont = QStringLiteral("Arial");
    s.PrintLogo = store.get(section, QStringLiteral("PrintLogo"), QStringLiteral("1")) == QLatin1String("1");
    QString logo = store.get(section, QStringLiteral("PLogoFile"), QStringLiteral("Tamrik2006-logo.wmf"));
    if (logo == QLatin1String("Tamrik2006-logo.wmf")) logo = appPath + logo;
    if (logo.isEmpty())
        s.PrintLogo = false;
    else
        s.logo = platform::Picture::fromFile(logo);
    return s;
}

namespace {

// What `tamrik print` was asked: the project, the PDF, the documents ("0,3,7"; all when empty).
struct PrintArgs {
    QString input, output, docs;
    print::PdfOptions options;
};

// The arguments after "print"; false for arguments the command does not take.
bool parsePrintArgs(const QStringList& args, PrintArgs& out) {
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--pdf") && i + 1 < args.size())
            out.output = args[++i];
        else if (args[i] == QLatin1String("--pdfa"))
            out.options.archival = true;
        else if (args[i] == QLatin1String("--docs") && i + 1 < args.size())
            out.docs = args[++i];
        else if (!args[i].startsWith(QLatin1Char('-')) && out.input.isEmpty())
            out.input = args[i];
        else
            return false;
    }
    return !out.input.isEmpty() && !out.output.isEmpty();
}

// The documents of "--docs", every one without it; the number that is no document in `bad`.
bool selectDocuments(const QString& docs, print::Selection& selection, QString& bad) {
    if (docs.isEmpty()) {
        for (int d = 0; d < print::kDocumentCount; ++d)
            selection.DocumentSelected[d] = true;
        return true;
    }
    for (const QString& part : docs.split(QLatin1Char(','))) {
        bool ok = false;
        const int d = part.trimmed().toInt(&ok);
        if (!ok || d < 0 || d >= print::kDocumentCount) {
            bad = part;
            return false;
        }
        selection.DocumentSelected[d] = true;
    }
    return true;
}

} // namespace

int printCommand(int argc, char** argv) {
    // Printing needs fonts and a paint device, not a display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    // Money is grouped as the desktop program groups it, whatever the shell's locale.
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));

    PrintArgs a;
    a.options.endsProcess = true;
    if (!parsePrintArgs(QCoreApplication::arguments().mid(2), a)) return usageError(QStringLiteral("print"));
    const QString& input = a.input;
    const QString& output = a.output;
    print::PdfOptions& options = a.options;
    if (QFileInfo(input).absoluteFilePath() == QFileInfo(output).absoluteFilePath())
        return fail(QStringLiteral("tuloste ei voi korvata projektitiedostoa %1").arg(input));

    print::Selection selection;
    QString bad;
    if (!selectDocuments(a.docs, selection, bad))
        return fail(QStringLiteral("asiakirjan numero %1 ei kelpaa (0..12)").arg(bad));

    persist::ProjectFile project;
    QString error;
    if (!persist::ReadProjectFile(input, false, project, &error))
        return fail(input + QStringLiteral(": ") + error);
    options.projectFile = input;
    print::ProjectSource source = print::SourceFromProject(project);

    print::PrintRun run(source.source, selection,
                        userPrintSettings(QCoreApplication::applicationDirPath() + QLatin1Char('/')));
    run.setInform([](const QString& message) {
        std::fprintf(stderr, "tamrik: %s\n", message.toLocal8Bit().constData());
    });

    // Ctrl+C ends the run without leaving a half-written file.
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);
    const print::OutputResult result = print::WritePdf(
        run, output, print::DefaultPageLayout(), print::kDefaultResolution,
        [](int, double) { return !g_interrupted; }, &error, options);
    switch (result) {
        case print::OutputResult::Printed:
            // The file is in place: the process ends here and returns its memory (the project,
            // the pages, the PDF's objects) whole, instead of freeing it piece by piece.
            std::fflush(nullptr);
            std::_Exit(0);
        case print::OutputResult::Cancelled:
            return fail(QStringLiteral("tulostus keskeytettiin; tiedostoa %1 ei kirjoitettu").arg(output));
        case print::OutputResult::NothingToPrint:
            return fail(QStringLiteral("ei tulostettavia sivuja; tiedostoa %1 ei kirjoitettu").arg(output));
        case print::OutputResult::DeviceFailed:
            break;
    }
    return fail(error);
}

} // namespace app
