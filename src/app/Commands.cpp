#include "app/Commands.h"

#include "app/PrintCommand.h"
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
#include <cstdio>
#include <cstring>

namespace app {

namespace {

const char* const kCommands[] = {"costs", "summary", "print", "convert", "validate"};

int fail(const QString& message) {
    std::fprintf(stderr, "tamrik: %s\n", message.toLocal8Bit().constData());
    return 1;
}

void print(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    std::fwrite(utf8.constData(), 1, static_cast<std::size_t>(utf8.size()), stdout);
}

bool readProject(const QString& fileName, persist::ProjectFile& project, QString* error) {
    // Only the text member is needed; pictures are not read.
    return persist::ReadProjectFile(fileName, true, project, error);
}

int costs(const QString& fileName) {
    persist::ProjectFile project;
    QString error;
    if (!readProject(fileName, project, &error)) return fail(fileName + QStringLiteral(": ") + error);
    const calc::CostInputs inputs = calc::CostInputsOf(project.content.windows[0].combos);
    auto list =
        persist::ListFromRecord(persist::RecordList(project.content, 1, 0), lists::kind::QuantityList);
    print(calc::FormatCostRecord(calc::CalculateCosts(*list, inputs)));
    reportCheckErrors(project);
    return 0;
}

int summary(const QString& fileName) {
    persist::ProjectFile project;
    QString error;
    if (!readProject(fileName, project, &error)) return fail(fileName + QStringLiteral(": ") + error);
    auto list =
        persist::ListFromRecord(persist::RecordList(project.content, 1, 1), lists::kind::Requirements);
    const calc::QualityRecord record = calc::CalculateQualityIndex(*list);
    QString text =
        calc::MakeSummaryText(record, QFileInfo(fileName).absoluteFilePath(), QDateTime::currentDateTime());
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    print(text);
    reportCheckErrors(project);
    return 0;
}

int convert(const QString& in, const QString& out) {
    QString error;
    if (!lists::ConvertListFile(in, out, &error)) return fail(error);
    return 0;
}

} // namespace

bool isCommand(const char* name) {
    for (const char* c : kCommands)
        if (std::strcmp(name, c) == 0) return true;
    return false;
}

int runCommand(int argc, char** argv) {
    if (std::strcmp(argv[1], "print") == 0) return printCommand(argc, argv);
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    const QString command = args.value(1);
    if (command == QLatin1String("costs") || command == QLatin1String("summary")) {
        if (args.size() != 3) return fail(QStringLiteral("käyttö: tamrik %1 TIEDOSTO.sl").arg(command));
        return command == QLatin1String("costs") ? costs(args[2]) : summary(args[2]);
    }
    if (command == QLatin1String("validate")) return validateCommand(args.mid(2));
    if (command == QLatin1String("convert")) {
        if (args.size() != 4) return fail(QStringLiteral("käyttö: tamrik convert LÄHDE KOHDE"));
        return convert(args[2], args[3]);
    }
    return fail(QStringLiteral("komento %1 ei ole käytettävissä tässä versiossa").arg(command));
}

} // namespace app
