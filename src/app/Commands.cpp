#include "app/Commands.h"

#include "app/Help.h"
#include "app/ValidateCommand.h"
#include "calc/CostEstimate.h"
#include "calc/QualityIndex.h"
#include "lists/ListConvert.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "persist/ProjectFile.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <cstring>

namespace app {

namespace {

bool readProject(const QString& fileName, persist::ProjectFile& project, QString* error) {
    // Only the text member is needed; pictures are not read.
    return persist::ReadProjectFile(fileName, true, project, error);
}

int costs(const QString& fileName, bool json) {
    persist::ProjectFile project;
    QString error;
    if (!readProject(fileName, project, &error)) return fail(fileName + QStringLiteral(": ") + error);
    const calc::CostInputs inputs = calc::CostInputsOf(project.content.windows[0].combos);
    // The list is made once, for the estimate and the check alike.
    auto list =
        persist::ListFromRecord(persist::TakeRecordList(project.content, 1, 0), lists::kind::QuantityList);
    const calc::CostRecord record = calc::CalculateCosts(*list, inputs);
    // An overflowed figure is no amount: a script must not take it for one.
    if (record.nonFiniteRow != 0) return fail(calc::NonFiniteMessage(record));
    if (json)
        printOut(calc::CostRecordAsJson(record));
    else
        printOut(calc::FormatCostRecord(record));
    reportCheckErrors(project, list.get(), nullptr);
    return 0;
}

int summary(const QString& fileName, bool json) {
    persist::ProjectFile project;
    QString error;
    if (!readProject(fileName, project, &error)) return fail(fileName + QStringLiteral(": ") + error);
    auto list =
        persist::ListFromRecord(persist::TakeRecordList(project.content, 1, 1), lists::kind::Requirements);
    const calc::QualityRecord record = calc::CalculateQualityIndex(*list);
    const QString path = QFileInfo(fileName).absoluteFilePath();
    if (json) {
        printOut(calc::SummaryAsJson(record, path));
    } else {
        QString text = calc::MakeSummaryText(record, path, QDateTime::currentDateTime());
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        printOut(text);
    }
    reportCheckErrors(project, nullptr, list.get());
    return 0;
}

int convert(const QString& in, const QString& out) {
    QString error;
    if (!lists::ConvertListFile(in, out, &error)) return fail(error);
    return 0;
}

} // namespace

bool isCommand(const char* name) {
    return findCommand(QString::fromLocal8Bit(name)) != nullptr;
}

int runCommand(int argc, char** argv, const PageCommands& pages) {
    const QString command = QString::fromLocal8Bit(argv[1]);
    // "tamrik COMMAND --help" is the command's help, wherever the option stands.
    for (int i = 2; i < argc; ++i)
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0)
            return helpCommand({command});
    if (command == QLatin1String("print") && pages.print) return pages.print(argc, argv);
    if (command == QLatin1String("compare") && pages.compare) return pages.compare(argc, argv);
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments().mid(2);
    if (command == QLatin1String("help")) return helpCommand(args);
    if (command == QLatin1String("costs") || command == QLatin1String("summary")) {
        QString file;
        bool json = false;
        for (const QString& a : args) {
            if (a == QLatin1String("--json") && !json)
                json = true;
            else if (a.startsWith(QLatin1Char('-')))
                return usageError(command, QStringLiteral("tuntematon valitsin %1").arg(a));
            else if (file.isEmpty())
                file = a;
            else
                return usageError(command);
        }
        if (file.isEmpty()) return usageError(command);
        return command == QLatin1String("costs") ? costs(file, json) : summary(file, json);
    }
    if (command == QLatin1String("validate")) return validateCommand(args);
    if (command == QLatin1String("convert")) {
        if (args.size() != 2) return usageError(command);
        return convert(args[0], args[1]);
    }
    return fail(QStringLiteral("komento %1 ei ole käytettävissä tässä versiossa").arg(command));
}

} // namespace app
