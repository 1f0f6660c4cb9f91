#include "app/ValidateCommand.h"

#include "app/Help.h"

#include "calc/ProjectCheck.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "persist/ProjectFile.h"

#include <cstdio>

namespace app {

namespace {

// The findings of a project read from a file: its two lists and the basic data fields, as
// the desktop program checks them in its windows. The lists given are used as they are.
std::vector<calc::Finding> checkProject(const persist::ProjectFile& project,
                                        const lists::ListModel* quantities = nullptr,
                                        const lists::ListModel* requirements = nullptr) {
    std::unique_ptr<lists::ListModel> madeQuantities, madeRequirements;
    if (!quantities) {
        madeQuantities =
            persist::ListFromRecord(persist::RecordList(project.content, 1, 0), lists::kind::QuantityList);
        quantities = madeQuantities.get();
    }
    if (!requirements) {
        madeRequirements =
            persist::ListFromRecord(persist::RecordList(project.content, 1, 1), lists::kind::Requirements);
        requirements = madeRequirements.get();
    }
    calc::CheckSource source;
    source.quantities = quantities;
    source.requirements = requirements;
    source.inputs = calc::CostInputsOf(project.content.windows[0].combos);
    return calc::CheckProject(source);
}

} // namespace

int validateCommand(const QStringList& args) {
    QString file;
    bool json = false;
    bool usable = true;
    for (const QString& a : args) {
        if (a == QLatin1String("--json") && !json)
            json = true;
        else if (!a.startsWith(QLatin1Char('-')) && file.isEmpty())
            file = a;
        else
            usable = false;
    }
    if (!usable || file.isEmpty()) return usageError(QStringLiteral("validate"));

    persist::ProjectFile project;
    QString error;
    if (!persist::ReadProjectFile(file, true, project, &error))
        return fail(file + QStringLiteral(": ") + error);
    const std::vector<calc::Finding> findings = checkProject(project);
    printOut(json ? calc::FindingsAsJson(findings) : calc::FindingsAsLines(findings).toUtf8());
    if (calc::ErrorCount(findings) > 0) return 3;
    return findings.empty() ? 0 : 2;
}

void reportCheckErrors(const persist::ProjectFile& project, const lists::ListModel* quantities,
                       const lists::ListModel* requirements) {
    const int errors = calc::ErrorCount(checkProject(project, quantities, requirements));
    if (errors == 0) return;
    std::fflush(stdout);
    const QString line = QStringLiteral("tamrik: %1, katso tamrik validate\n")
                             .arg(calc::CountText(errors, calc::Severity::Error));
    const QByteArray bytes = line.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
}

} // namespace app
